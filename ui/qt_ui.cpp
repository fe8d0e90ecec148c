// qt_ui.cpp - the ui service in Qt: controls by id, boxes, progress, pump
//
// A control that does not exist is quietly passed over, as a control of work
// that is not built has no widget. Setting a control never counts as a choice of
// the user: signals are held back meanwhile.

#include "ui/qt_ui.h"
#include "platform/host.h"
#include "src/velmor_window.h"
#include "ui/parts.h"
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
#include <QProgressBar>
#include <QTimer>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace velmor
{

static top_window *find_window(int window)
{
	return static_cast<top_window *>(find_widget(window, 0));
}

// ---- Controls ---------------------------------------------------------------------------------

static void set_text(int window, int control, const char *text)
{
	QObject *object = find_control(window, control);
	if (window == window_main && control == main_log)
		set_log_text(text);
	else if (auto *label = qobject_cast<QLabel *>(object))
		label->setText(QString::fromUtf8(text));
	else if (auto *field = qobject_cast<QLineEdit *>(object))
		field->setText(QString::fromUtf8(text));
	else if (auto *button = qobject_cast<QAbstractButton *>(object))
		button->setText(QString::fromUtf8(text));
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
	if (auto *label = qobject_cast<QLabel *>(object))
		return label->text().toStdString();
	if (auto *field = qobject_cast<QLineEdit *>(object))
		return field->text().toStdString();
	if (auto *button = qobject_cast<QAbstractButton *>(object))
		return button->text().toStdString();
	if (auto *entry = qobject_cast<QAction *>(object))
		return entry->text().toStdString();
	auto *widget = qobject_cast<QWidget *>(object);
	return widget ? widget->windowTitle().toStdString() : "";
}

static void set_list(int window, int control, std::span<const std::string> items)
{
	QStringList names;
	for (const std::string &item : items)
		names += QString::fromUtf8(item.c_str());
	QObject *object = find_control(window, control);
	if (auto *list = dynamic_cast<named_list *>(object)) {
		list->fill(names);
	} else if (auto *box = qobject_cast<QComboBox *>(object)) {
		const QSignalBlocker quiet(box);
		box->clear();
		box->addItems(names);
		box->setCurrentIndex(-1);
	}
}

static void set_rows(int window, int control, std::span<const std::vector<std::string>> rows)
{
	std::vector<std::string> names;
	for (const std::vector<std::string> &row : rows)
		names.push_back(row.empty() ? "" : row.front());
	set_list(window, control, names);
}

static void select_entry(int window, int control, int index)
{
	QObject *object = find_control(window, control);
	if (auto *list = dynamic_cast<named_list *>(object)) {
		list->choose(index);
	} else if (auto *box = qobject_cast<QComboBox *>(object)) {
		const QSignalBlocker quiet(box);
		box->setCurrentIndex(index);
	}
}

static int selection(int window, int control)
{
	QObject *object = find_control(window, control);
	if (auto *list = dynamic_cast<named_list *>(object))
		return list->chosen();
	auto *box = qobject_cast<QComboBox *>(object);
	return box ? box->currentIndex() : -1;
}

static void set_checked(int window, int control, bool checked)
{
	if (auto *button = qobject_cast<QAbstractButton *>(find_control(window, control)))
		button->setChecked(checked);
}

static bool is_checked(int window, int control)
{
	auto *button = qobject_cast<QAbstractButton *>(find_control(window, control));
	return button && button->isChecked();
}

static void show_control(int window, int control, bool visible)
{
	QObject *object = find_control(window, control);
	if (auto *entry = qobject_cast<QAction *>(object)) {
		entry->setVisible(visible);
		return;
	}
	auto *widget = qobject_cast<QWidget *>(object);
	if (!widget)
		return;
	widget->setVisible(visible);
	if (visible && control == 0) {
		widget->raise();
		widget->activateWindow();
	}
}

static void enable_control(int window, int control, bool enabled)
{
	QObject *object = find_control(window, control);
	if (auto *entry = qobject_cast<QAction *>(object))
		entry->setEnabled(enabled);
	else if (auto *widget = qobject_cast<QWidget *>(object))
		widget->setEnabled(enabled);
}

static void set_reason(int window, int control, const char *why_not)
{
	enable_control(window, control, !why_not);
	if (QWidget *widget = find_widget(window, control); widget && why_not)
		widget->setToolTip(QString::fromUtf8(why_not));
}

static void focus_control(int window, int control)
{
	if (QWidget *widget = find_widget(window, control))
		widget->setFocus();
}

static void set_waveform(int window, int control, const waveform_view *view)
{
	if (auto *picture = dynamic_cast<waveform_widget *>(find_control(window, control)))
		picture->show_view(view);
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

static QMessageBox::Icon icon_of(const QString &caption)
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
	box.setIcon(icon_of(box.windowTitle()));
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
	enable_windows(false);
	set_text(window_progress, 0, caption);
	set_text(window_progress, progress_info, "");
	set_text(window_progress, progress_time_left, "");
	if (auto *bar = qobject_cast<QProgressBar *>(find_control(window_progress, progress_bar))) {
		bar->setRange(0, range);
		bar->setValue(0);
	}
	show_control(window_progress, 0, true);
	if (QWidget *stop = find_widget(window_progress, progress_stop))
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
}

// ---- Timers -------------------------------------------------------------------------------------

static std::map<int, QTimer *> timers;

static int start_timer(int milliseconds, void (*tick)())
{
	static int last = 0;
	auto *timer = new QTimer(QCoreApplication::instance());
	timers[++last] = timer;
	QObject::connect(timer, &QTimer::timeout, timer, tick);
	timer->start(milliseconds);
	return last;
}

static void stop_timer(int timer)
{
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
	.exists        = [](int window, int control) { return find_control(window, control) != nullptr; },
	.set_rows      = set_rows,
	.set_list_state = [](int, int, list_state, const char *) {},
	.set_role      = [](int, int, text_role) {},
	.set_reason    = set_reason,
	.focus         = focus_control,
	.set_bitmap    = [](int, int, const bitmap_view *) {},
	.set_waveform  = set_waveform,
	.message       = message,
	.ask           = ask,
	.choose_files  = choose_files,
	.choose_folder = choose_folder,
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
	QApplication::setQuitOnLastWindowClosed(false);
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
