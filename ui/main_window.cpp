// main_window.cpp - the samplers, what can be done with them, and the log

#include "platform/host.h"
#include "src/velmor_window.h"
#include "ui/first_start.h"
#include "ui/log_view.h"
#include "ui/parts/entry_list.h"
#include "ui/parts/palette.h"
#include "ui/parts/parts.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include <QAction>
#include <QBoxLayout>
#include <QDesktopServices>
#include <QGridLayout>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QPushButton>
#include <QSplitter>
#include <QTimer>
#include <QUrl>
#include <functional>

namespace velmor
{

static constexpr int plug_watch_ms = 3000;

// ---- Window -----------------------------------------------------------------------------------

static QMenuBar *make_menu(top_window *window)
{
	auto *bar = new QMenuBar(window);
	QMenu *file = bar->addMenu("&File");
	make_entry(window, file, menu_midi_files);
	make_entry(window, file, menu_history);
	make_entry(window, file, menu_backup);
	for (int control : { menu_record, menu_record_names }) {
		make_entry(window, file, control);
		file->actions().back()->setCheckable(true);
	}
	make_entry(window, file, menu_exit);
	QMenu *settings = bar->addMenu("&Settings");
	make_entry(window, settings, menu_settings);
	make_entry(window, settings, menu_midi_samplers);
	make_entry(window, settings, menu_usb_samplers);
	return bar;
}

// The folder of the samplers in the desktop's own file manager; where there is none, its name.
static void show_folder()
{
	const std::string folder = host.files->host_path(current_config_path.c_str());
	if (!QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(folder))))
		host.ui->message(
			format_text(tr("The folder of your samplers is %s"), folder.c_str())
				.c_str(),
			"INFO");
}

static QAction *add_own_entry(QMenu *menu, int control, std::function<void()> work)
{
	QAction *entry = menu->addAction(
		make_icon(icon_of(window_main, control)), caption_of(window_main, control));
	QObject::connect(entry, &QAction::triggered, entry, std::move(work));
	return entry;
}

// What can be done with an entry, by a menu and by keys.
static void add_entry_menu(top_window *window, entry_list *list)
{
	auto *menu = new QMenu(list);
	add_own_entry(menu, main_load, [] { velmor_command(window_main, main_load); });
	const std::pair<int, QKeySequence> keys[] = { { main_entry_edit, Qt::Key_F2 },
		{ main_entry_remove, QKeySequence::Delete }, { main_read_again, Qt::Key_F5 } };
	for (const auto &[control, key] : keys) {
		make_entry(window, menu, control);
		QAction *entry = menu->actions().back();
		entry->setShortcut(key);
		entry->setShortcutContext(
			control == main_read_again ? Qt::WindowShortcut : Qt::WidgetShortcut);
		list->addAction(entry);
	}
	add_own_entry(menu, main_entry_folder, show_folder);
	list->setContextMenuPolicy(Qt::CustomContextMenu);
	QObject::connect(list, &QWidget::customContextMenuRequested, menu,
		[=](const QPoint &at) { menu->popup(list->viewport()->mapToGlobal(at)); });
}

// A sampler on the USB comes and goes at any time.
static void watch_plugs(entry_list *list)
{
	auto *timer = new QTimer(list);
	QObject::connect(timer, &QTimer::timeout, list, [list] {
		if (list->isVisible())
			update_plugged_entries();
	});
	timer->start(plug_watch_ms);
}

static QWidget *make_left_side(top_window *window)
{
	auto *side = new QWidget(window);
	side->setMinimumWidth(220);
	auto *column = new QVBoxLayout(side);
	column->setContentsMargins(0, 0, 0, 0);
	entry_list *list = make_list(window, main_sampler_list);
	list->set_two_lines();
	QObject::connect(list, &QTreeWidget::itemActivated, list,
		[] { velmor_command(window_main, main_load); });
	add_entry_menu(window, list);
	watch_plugs(list);
	QPushButton *load = make_button(window, main_load);
	load->setProperty("main", true);
	column->addLayout(make_heading(window, main_sampler_list, 0, icon::none));
	add_to(column, { list, load });
	return side;
}

struct view_row {
	int button, count;
	const char *spoken; // of the count
};

static constexpr view_row views[] = {
	{ main_samples, main_card_samples, own("Samples") },
	{ main_programs, main_card_programs, own("Programs") },
	{ main_multis, main_card_multis, own("Multis") },
	{ main_lcd, 0, nullptr },
};

// What can be done with the sampler, and over each how much of it there is. Shown by a load,
// according to what the model can do.
static QLayout *make_views(top_window *window)
{
	auto *grid = new QGridLayout;
	grid->setHorizontalSpacing(12);
	int place = 0;
	for (const view_row &row : views) {
		QPushButton *button = make_button(window, row.button);
		if (!button)
			continue;
		button->setMinimumHeight(36);
		button->hide();
		if (row.count) {
			told_label *count = make_text(window, row.count);
			count->set_spoken(qtr(row.spoken));
			count->set_role(text_role::quiet);
			grid->addWidget(count, 0, place);
		}
		grid->addWidget(button, 1, place++);
	}
	grid->setColumnStretch(place, 1);
	return grid;
}

static QWidget *make_loaded_card(top_window *window)
{
	auto *box = new card(window);
	auto *column = new QVBoxLayout(box);
	column->setContentsMargins(16, 12, 16, 16);
	auto *head = new QHBoxLayout;
	head->setSpacing(between_panels);
	head->addWidget(new icon_label(icon::sampler, 48, QPalette::Link, box));
	auto *words = new QVBoxLayout;
	words->setSpacing(2);
	told_label *name = make_title({}, 1.55, true, box);
	enroll(window_main, main_card_name, name);
	name->set_spoken(qtr("Loaded sampler"));
	name->set_cut();
	told_label *way = make_text(window, main_card_way);
	way->set_spoken(qtr("Way to it"));
	way->set_role(text_role::quiet);
	way->set_cut();
	add_to(words, { name, way });
	head->addLayout(words, 1);
	column->addLayout(head);
	column->addWidget(make_line(box));
	column->addLayout(make_views(window));
	enroll(window_main, main_card, box);
	box->hide();
	return box;
}

static QPointer<QBoxLayout> right_side;

static QWidget *make_right_side(top_window *window)
{
	auto *side = new QWidget(window);
	auto *column = new QVBoxLayout(side);
	right_side = column;
	column->setContentsMargins(0, 0, 0, 0);
	column->setSpacing(between_panels);
	column->addWidget(make_loaded_card(window));
	column->addStretch(); // above the log when it is folded
	column->addWidget(make_log_card(window), 1);
	return side;
}

void show_samplers_wanted(bool wanted)
{
	if (right_side)
		show_first_start(right_side, wanted);
}

void create_main_window()
{
	auto *window = new top_window(window_main, menu_exit, nullptr);
	window->layout()->setMenuBar(make_menu(window));
	auto *sides = new QSplitter(window);
	sides->setChildrenCollapsible(false);
	sides->setHandleWidth(between_panels);
	sides->addWidget(make_left_side(window));
	sides->addWidget(make_right_side(window));
	sides->setStretchFactor(1, 1);
	sides->setSizes({ 300, 644 });
	window->content->addWidget(sides);
	window->finish();
	window->open_at({ 992, 620 });
}

} // namespace velmor
