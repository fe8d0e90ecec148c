// qt_ui.cpp - the ui service in Qt: controls by id, boxes, progress, pump
//
// A control that does not exist is quietly passed over, as a control of work
// that is not built has no widget. Setting a control never counts as a choice of
// the user: signals are held back meanwhile.

#include "ui/qt_ui.h"
#include "platform/host.h"
#include "src/velmor_window.h"
#include "ui/envelope_view.h"
#include "ui/key_map.h"
#include "ui/panel_window.h"
#include "ui/parts/entry_list.h"
#include "ui/parts/form_view.h"
#include "ui/parts/palette.h"
#include "ui/parts/parts.h"
#include "ui/parts/pixel_picture.h"
#include "ui/parts/place.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include "ui/track_strip_list.h"
#include "ui/translation.h"
#include "ui/waveform.h"
#include <QAbstractButton>
#include <QAbstractEventDispatcher>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QTabBar>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <clocale>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <thread>

namespace velmor
{

static top_window *find_window(int window)
{
	return static_cast<top_window *>(find_widget(window, 0));
}

// ---- Controls ---------------------------------------------------------------------------------

static void say_in(int window, int control, told_label *label, const QString &words)
{
	label->say(words);
	if (window == window_programs && control == programs_unsent)
		show_unsent(words);
}

static void set_text(int window, int control, const char *text)
{
	if (not_made_yet(window))
		return keep_for_later(window, [window, control, kept = std::string(text)] {
			set_text(window, control, kept.c_str());
		});
	QObject *object = find_control(window, control);
	if (window == window_main && control == main_log)
		set_log_text(text);
	else if (auto *label = dynamic_cast<told_label *>(object))
		say_in(window, control, label, QString::fromUtf8(text));
	else if (auto *field = qobject_cast<QLineEdit *>(object))
		field->setText(QString::fromUtf8(text));
	else if (auto *button = qobject_cast<QPushButton *>(object))
		find_window(window)->caption(button, QString::fromUtf8(text));
	else if (auto *entry = qobject_cast<QAction *>(object))
		entry->setText(QString::fromUtf8(text));
	else if (auto *widget = qobject_cast<QWidget *>(object))
		widget->setWindowTitle(QString::fromUtf8(text));
}

static std::string get_text(int window, int control)
{
	QObject *object = find_control(window, control);
	if (window == window_main && control == main_log)
		return log_text();
	if (window == window_main && control == main_log_whole)
		return whole_log_text();
	if (auto *label = qobject_cast<QLabel *>(object))
		return label->text().toStdString();
	if (auto *field = qobject_cast<QLineEdit *>(object))
		return field->text().toStdString();
	if (auto *button = qobject_cast<QPushButton *>(object))
		return button->property("caption").toString().toStdString();
	if (auto *entry = qobject_cast<QAction *>(object))
		return entry->text().toStdString();
	auto *widget = qobject_cast<QWidget *>(object);
	return widget ? widget->windowTitle().toStdString() : "";
}

static void fill_list(int window, int control, const std::vector<QStringList> &rows)
{
	QObject *object = find_control(window, control);
	if (auto *list = dynamic_cast<entry_list *>(object)) {
		list->fill(rows);
		if (window == window_main)
			show_samplers_wanted(rows.empty());
	} else if (auto *box = qobject_cast<QComboBox *>(object)) {
		// Its choices are told when a user makes them, so it may be set as it is.
		box->clear();
		for (const QStringList &row : rows)
			box->addItem(row.value(0));
		mark_missing(box);
		box->setCurrentIndex(-1);
	} else if (auto *tabs = qobject_cast<QTabBar *>(object)) {
		for (int i = 0; i < tabs->count() && i < static_cast<int>(rows.size()); i++)
			tabs->setTabText(i, rows[static_cast<std::size_t>(i)].value(0));
	}
}

static void set_list(int window, int control, std::span<const std::string> items)
{
	std::vector<QStringList> rows;
	for (const std::string &item : items)
		rows.push_back({ QString::fromUtf8(item.c_str()) });
	fill_list(window, control, rows);
}

static void set_rows(int window, int control, std::span<const std::vector<std::string>> rows)
{
	std::vector<QStringList> texts;
	for (const std::vector<std::string> &row : rows) {
		texts.emplace_back();
		for (const std::string &text : row)
			texts.back() += QString::fromUtf8(text.c_str());
	}
	fill_list(window, control, texts);
}

static void set_list_state(int window, int control, list_state state, const char *words)
{
	if (auto *list = dynamic_cast<entry_list *>(find_control(window, control)))
		list->set_state(state, QString::fromUtf8(words));
}

static void set_marks(int window, int control, std::span<const entry_mark> marks)
{
	if (auto *list = dynamic_cast<entry_list *>(find_control(window, control)))
		list->set_marks(marks);
}

static void set_bar(int window, int control, int value, int range)
{
	if (auto *bar = qobject_cast<QProgressBar *>(find_control(window, control))) {
		bar->setRange(0, range);
		bar->setValue(std::min(value, range));
	}
}

static void set_role(int window, int control, text_role role)
{
	if (not_made_yet(window))
		return keep_for_later(window, [=] { set_role(window, control, role); });
	if (auto *label = dynamic_cast<told_label *>(find_control(window, control)))
		label->set_role(role);
}

static void select_entry(int window, int control, int index)
{
	QObject *object = find_control(window, control);
	if (auto *list = dynamic_cast<entry_list *>(object)) {
		list->choose(index);
	} else if (auto *box = qobject_cast<QComboBox *>(object)) {
		box->setCurrentIndex(index);
	} else if (auto *tabs = qobject_cast<QTabBar *>(object)) {
		const QSignalBlocker quiet(tabs);
		tabs->setCurrentIndex(index);
		show_program_tab(index);
	}
}

static int selection(int window, int control)
{
	QObject *object = find_control(window, control);
	if (auto *list = dynamic_cast<entry_list *>(object))
		return list->chosen();
	if (auto *tabs = qobject_cast<QTabBar *>(object))
		return tabs->currentIndex();
	auto *box = qobject_cast<QComboBox *>(object);
	return box ? box->currentIndex() : -1;
}

static std::vector<int> selections(int window, int control)
{
	if (auto *list = dynamic_cast<entry_list *>(find_control(window, control)))
		return list->all_chosen();
	const int one = selection(window, control);
	return one < 0 ? std::vector<int>{} : std::vector<int>{ one };
}

static void select_several(int window, int control, std::span<const int> places)
{
	if (auto *list = dynamic_cast<entry_list *>(find_control(window, control)))
		list->choose_several(places);
}

static void set_checked(int window, int control, bool checked)
{
	QObject *object = find_control(window, control);
	if (auto *button = qobject_cast<QAbstractButton *>(object))
		button->setChecked(checked);
	else if (auto *entry = qobject_cast<QAction *>(object))
		entry->setChecked(checked);
}

static bool is_checked(int window, int control)
{
	QObject *object = find_control(window, control);
	if (auto *entry = qobject_cast<QAction *>(object))
		return entry->isChecked();
	auto *button = qobject_cast<QAbstractButton *>(object);
	return button && button->isChecked();
}

static void show_control(int window, int control, bool visible)
{
	if (not_made_yet(window) && (control || !visible))
		return keep_for_later(window, [=] { show_control(window, control, visible); });
	QObject *object = find_control(window, control);
	if (auto *entry = qobject_cast<QAction *>(object)) {
		entry->setVisible(visible);
		return;
	}
	auto *widget = qobject_cast<QWidget *>(object);
	if (!widget)
		return;
	widget->setVisible(visible);
	// What stands on a card brings it along.
	if (auto *box = dynamic_cast<card *>(widget->parentWidget()); box && visible)
		box->show();
	if (visible && control == 0) {
		widget->raise();
		widget->activateWindow();
	}
}

// A control that works says again what it is for.
static void set_reason(int window, int control, const char *why_not)
{
	QObject *object = find_control(window, control);
	if (auto *entry = qobject_cast<QAction *>(object)) {
		entry->setEnabled(!why_not);
		entry->setToolTip(QString::fromUtf8(why_not ? why_not : ""));
	}
	auto *widget = qobject_cast<QWidget *>(object);
	if (!widget)
		return;
	widget->setEnabled(!why_not);
	const caption_row *row = find_caption(window, control);
	const QString tip = QString::fromUtf8(why_not && *why_not   ? why_not
					      : row && row->tooltip ? row->tooltip
								    : "");
	widget->setToolTip(tip);
	widget->setAccessibleDescription(tip);
}

static void enable_control(int window, int control, bool enabled)
{
	set_reason(window, control, enabled ? nullptr : "");
}

// Disabled windows cannot have the focus: it goes where it should when they work again.
static QPointer<QWidget> focus_wanted;

// A dialog that is not made has what it has words for.
static bool exists(int window, int control)
{
	return not_made_yet(window) ? find_caption(window, control) != nullptr
				    : find_control(window, control) != nullptr;
}

static void focus_control(int window, int control)
{
	QWidget *widget = find_widget(window, control);
	if (!widget)
		return;
	if (widget->window()->isEnabled())
		widget->setFocus();
	else
		focus_wanted = widget;
}

static void set_bitmap(int window, int control, const bitmap_view *view)
{
	if (auto *picture = dynamic_cast<pixel_picture *>(find_control(window, control)))
		picture->show_view(view);
}

static void set_waveform(int window, int control, const waveform_view *view)
{
	if (auto *picture = dynamic_cast<waveform_widget *>(find_control(window, control)))
		picture->show_view(view);
}

static void set_key_map(int window, int control, const key_map_view *view)
{
	if (auto *map = dynamic_cast<key_map *>(find_control(window, control)))
		map->show_view(view);
}

static void set_envelope(int window, int control, const envelope_view *view)
{
	if (auto *curve = dynamic_cast<envelope_curve *>(find_control(window, control)))
		curve->show_view(view);
}

// ---- Forms --------------------------------------------------------------------------------------

static form_view *find_form(int window, int form)
{
	return dynamic_cast<form_view *>(find_control(window, form));
}

static void build_form(int window, int form, std::span<const form_row> rows)
{
	if (form_view *view = find_form(window, form))
		view->build(rows);
}

static void set_row_value(int window, int form, int row, int value)
{
	if (form_view *view = find_form(window, form))
		view->set_value(row, value);
}

static int row_value(int window, int form, int row)
{
	const form_view *view = find_form(window, form);
	return view ? view->value(row) : 0;
}

static void set_row_text(int window, int form, int row, const char *text)
{
	if (form_view *view = find_form(window, form))
		view->set_text(row, QString::fromUtf8(text));
}

static std::string row_text(int window, int form, int row)
{
	const form_view *view = find_form(window, form);
	return view ? view->text(row).toStdString() : "";
}

static void set_row_changed(int window, int form, int row, bool changed)
{
	if (form_view *view = find_form(window, form))
		view->set_changed(row, changed);
}

// ---- Tracks -------------------------------------------------------------------------------------

static track_list *find_tracks(int window, int control)
{
	return not_made_yet(window) ? nullptr
				    : dynamic_cast<track_list *>(find_control(window, control));
}

static void set_track_count(int window, int control, int count)
{
	if (track_list *list = find_tracks(window, control))
		list->set_count(count);
}

static void set_track(int window, int control, int track, const track_view *view)
{
	if (track_list *list = find_tracks(window, control))
		list->set_track(track, *view);
}

static void set_strip(int window, int control, int track, const strip_view *view)
{
	if (track_list *list = find_tracks(window, control))
		list->set_strip(track, *view);
}

static void set_play_position(int window, int control, std::int64_t ticks, int ticks_per_second)
{
	if (track_list *list = find_tracks(window, control))
		list->set_position(ticks, ticks_per_second);
	else if (auto *picture = dynamic_cast<waveform_widget *>(find_control(window, control)))
		picture->show_played(ticks);
}

// ---- Boxes --------------------------------------------------------------------------------------

struct box_icon {
	const char *word;
	QMessageBox::Icon icon;
};

static constexpr box_icon box_icons[] = {
	{ "FATAL", QMessageBox::Critical },
	{ "ERROR", QMessageBox::Critical },
	{ "WARNING", QMessageBox::Warning },
};

static QMessageBox::Icon icon_of_box(const QString &caption)
{
	for (const box_icon &row : box_icons)
		if (caption.startsWith(row.word, Qt::CaseInsensitive))
			return row.icon;
	return QMessageBox::Information;
}

// The program is to end, and nobody may be there to press a button.
static bool unattended = false;

// Disabled windows would look dead beside the box, and a box of a hidden window would be
// nowhere, so it belongs to the active window.
static int show_message(const char *text, const char *caption, QMessageBox::StandardButtons buttons)
{
	if (unattended) {
		std::fprintf(stderr, "%s: %s\n", caption, text);
		return QMessageBox::Cancel;
	}
	QMessageBox box(QApplication::activeWindow());
	box.setWindowTitle(QString::fromUtf8(caption));
	box.setTextFormat(Qt::PlainText);
	box.setText(QString::fromUtf8(text));
	box.setIcon(icon_of_box(box.windowTitle()));
	box.setStandardButtons(buttons);
	return box.exec();
}

static void message(const char *text, const char *caption)
{
	show_message(text, caption, QMessageBox::Ok);
}

static bool ask(const char *text, const char *caption)
{
	return show_message(text, caption, QMessageBox::Ok | QMessageBox::Cancel) ==
	       QMessageBox::Ok;
}

static std::vector<std::string> choose_files(const char *title, const char *filter)
{
	std::vector<std::string> paths;
	for (const QString &name :
		QFileDialog::getOpenFileNames(QApplication::activeWindow(), title, {}, filter))
		paths.push_back(host.files->system_path(name.toUtf8().constData()));
	return paths;
}

static std::string choose_folder(const char *title)
{
	const QString name = QFileDialog::getExistingDirectory(QApplication::activeWindow(), title);
	return name.isEmpty() ? "" : host.files->system_path(name.toUtf8().constData());
}

static std::string choose_new_file(const char *title, const char *filter, const char *name)
{
	const QString path = QFileDialog::getSaveFileName(
		QApplication::activeWindow(), title, QString::fromUtf8(name), filter);
	return path.isEmpty() ? "" : host.files->system_path(path.toUtf8().constData());
}

// ---- Progress -----------------------------------------------------------------------------------

// Its owner's state must not reach the progress window, so it comes last.
static void enable_windows(bool enabled)
{
	for (QWidget *widget : QApplication::topLevelWidgets())
		if (auto *window = dynamic_cast<top_window *>(widget))
			window->setEnabled(enabled);
	if (top_window *progress = find_window(window_progress))
		progress->setEnabled(true);
}

static void progress_show(const char *caption, int range)
{
	// A second piece of work may show the window that a first has left.
	if (QWidget *focus = QApplication::focusWidget();
		focus && focus->window() != find_window(window_progress))
		focus_wanted = focus;
	enable_windows(false);
	set_text(window_progress, 0, caption);
	set_text(window_progress, progress_info, "");
	set_text(window_progress, progress_time_left, "");
	if (auto *bar = qobject_cast<QProgressBar *>(find_control(window_progress, progress_bar))) {
		bar->setRange(0, range);
		bar->setValue(0);
		bar->setAccessibleDescription(QString::fromUtf8(caption));
	}
	show_control(window_progress, 0, true);
	// Between the items of a queue the focus stays where the user has put it.
	QWidget *stop = find_widget(window_progress, progress_stop);
	const QWidget *focus = QApplication::focusWidget();
	if (stop && !(focus && focus->window() == stop->window()))
		stop->setFocus();
}

static void progress_set(int value, const char *info, const char *time_left)
{
	if (auto *bar = qobject_cast<QProgressBar *>(find_control(window_progress, progress_bar)))
		bar->setValue(std::min(value, bar->maximum()));
	set_text(window_progress, progress_info, info);
	set_text(window_progress, progress_time_left, time_left);
}

static void progress_hide()
{
	show_control(window_progress, 0, false);
	enable_windows(true);
	top_window *main = find_window(window_main);
	if (main && main->isVisible())
		main->raise();
	if (focus_wanted && focus_wanted->isEnabled())
		focus_wanted->setFocus();
	focus_wanted = nullptr;
}

// ---- Timers -------------------------------------------------------------------------------------

// A tick of few milliseconds comes from a thread that only keeps time: the toolkit's own timers
// round their waits up to whole milliseconds, which is heard in a song. One that finds the
// last tick unheard passes.
class ticker : public QObject
{
public:
	ticker(QObject *parent, int milliseconds, void (*tick)())
		: QObject(parent), keeper([this, milliseconds, tick](const std::stop_token &stop) {
			  keep_time(stop, std::chrono::milliseconds(milliseconds), tick);
		  })
	{
	}
	~ticker() override { end(); }
	void end()
	{
		ended = true;
		keeper.request_stop();
	}

private:
	void keep_time(
		const std::stop_token &stop, std::chrono::milliseconds interval, void (*tick)())
	{
		std::mutex mutex;
		std::condition_variable_any stopped;
		std::unique_lock lock(mutex);
		auto due = std::chrono::steady_clock::now();
		while (!stop.stop_requested()) {
			due = std::max(due + interval, std::chrono::steady_clock::now());
			if (stopped.wait_until(lock, stop, due, [] { return false; }) ||
				stop.stop_requested() || unheard.exchange(true))
				continue;
			QMetaObject::invokeMethod(
				this,
				[this, tick] {
					unheard = false;
					if (!ended)
						tick();
				},
				Qt::QueuedConnection);
		}
	}

	bool ended = false; // on the main thread
	std::atomic<bool> unheard = false;
	std::jthread keeper; // the last: it uses the others
};

static std::map<int, QTimer *> timers;
static std::map<int, ticker *> tickers;

static int start_timer(int milliseconds, void (*tick)())
{
	constexpr int soon = 1, kept_exactly = 10;
	static int last = 0;
	if (milliseconds > soon && milliseconds <= kept_exactly) {
		tickers[++last] = new ticker(QCoreApplication::instance(), milliseconds, tick);
		return last;
	}
	auto *timer = new QTimer(QCoreApplication::instance());
	timers[++last] = timer;
	QObject::connect(timer, &QTimer::timeout, timer, tick);
	timer->start(milliseconds);
	return last;
}

static void stop_timer(int timer)
{
	if (const auto found = tickers.find(timer); found != tickers.end()) {
		found->second->end();
		found->second->deleteLater();
		tickers.erase(found);
		return;
	}
	const auto found = timers.find(timer);
	if (found == timers.end())
		return;
	found->second->stop();
	found->second->deleteLater();
	timers.erase(found);
}

// ---- Waiting ------------------------------------------------------------------------------------

static std::atomic<bool> woken;
static std::atomic<QAbstractEventDispatcher *> events;

static void wake()
{
	woken = true;
	if (QAbstractEventDispatcher *dispatcher = events)
		dispatcher->wakeUp();
}

static void post(void (*work)())
{
	QMetaObject::invokeMethod(QCoreApplication::instance(), work, Qt::QueuedConnection);
	wake();
}

// The first round runs what is waiting. A wake that came before the second round leaves the
// dispatcher's own mark behind, so the second round returns at once.
static void pump(int max_ms)
{
	if (QCoreApplication::eventDispatcher()->processEvents(QEventLoop::AllEvents) ||
		woken.exchange(false) || max_ms <= 0)
		return;
	QTimer limit;
	limit.setTimerType(Qt::PreciseTimer);
	limit.setSingleShot(true);
	limit.start(max_ms);
	QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
	woken = false;
}

// Back ends have threads of their own, which must not outlive what they use: no destructors.
static void exit_process(int status)
{
	remember_places();
	std::fflush(nullptr);
	std::_Exit(status);
}

// clang-format off
const ui_service qt_ui = {
	.set_text      = set_text,
	.get_text      = get_text,
	.set_list      = set_list,
	.select        = select_entry,
	.selection     = selection,
	.set_checked   = set_checked,
	.checked       = is_checked,
	.show          = show_control,
	.enable        = enable_control,
	.exists        = exists,
	.set_rows      = set_rows,
	.set_list_state = set_list_state,
	.selections    = selections,
	.select_several = select_several,
	.set_marks     = set_marks,
	.set_bar       = set_bar,
	.set_role      = set_role,
	.set_reason    = set_reason,
	.focus         = focus_control,
	.set_bitmap    = set_bitmap,
	.set_waveform  = set_waveform,
	.set_key_map   = set_key_map,
	.set_envelope  = set_envelope,
	.build_form    = build_form,
	.set_row_value = set_row_value,
	.row_value     = row_value,
	.set_row_text  = set_row_text,
	.row_text      = row_text,
	.set_row_changed = set_row_changed,
	.build_panel   = build_panel,
	.copy_bitmap   = copy_bitmap,
	.save_bitmap   = save_bitmap,
	.set_track_count = set_track_count,
	.set_track     = set_track,
	.set_strip     = set_strip,
	.set_play_position = set_play_position,
	.translate     = translate_words,
	.message       = message,
	.ask           = ask,
	.choose_files  = choose_files,
	.choose_folder = choose_folder,
	.choose_new_file = choose_new_file,
	.progress_show = progress_show,
	.progress_set  = progress_set,
	.progress_hide = progress_hide,
	.start_timer   = start_timer,
	.stop_timer    = stop_timer,
	.pump          = pump,
	.wake          = wake,
	.post          = post,
	.exit_process  = exit_process,
};
// clang-format on

// ---- All windows ----------------------------------------------------------------------------------

void create_windows()
{
	// A QApplication takes the user's locale, but the numbers in the program's words follow none.
	std::setlocale(LC_NUMERIC, "C");
	QApplication::setQuitOnLastWindowClosed(false);
	QApplication::setStyle(new flat_style);
	follow_desktop();
	events = QCoreApplication::eventDispatcher();
	create_main_window();
	let_dialogs_be_made(true);
}

void destroy_windows()
{
	events = nullptr;
	let_dialogs_be_made(false);
	delete find_widget(window_main, 0);
	forget_log_text();
}

// A box that is open is closed, its question is answered with Cancel; then everything goes as
// with the entry of the menu.
void end_windows()
{
	unattended = true;
	while (QWidget *box = QApplication::activeModalWidget())
		if (!box->close())
			break;
	velmor_command(window_main, menu_exit);
}

int run_windows()
{
	show_control(window_main, 0, true);
	return QApplication::exec();
}

} // namespace velmor
