// program_manager.cpp - the programs of the sampler and of this computer, and one of them in full
//
// Lists at the left; at the right the forms of program, keygroup, keyzone and envelopes, one a
// tab; below both the key map, and what can be done with the program that is shown. What a form
// holds is the system's affair.

#include "src/velmor_window.h"
#include "ui/envelope_view.h"
#include "ui/key_map.h"
#include "ui/parts/entry_list.h"
#include "ui/parts/form_view.h"
#include "ui/parts/palette.h"
#include "ui/parts/parts.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include "ui/parts/words.h"
#include "ui/qt_ui.h"
#include <QApplication>
#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QStackedWidget>
#include <QTabBar>

namespace velmor
{

// ---- The two lists ----------------------------------------------------------------------------

// One side: its list with a search field, and what can be done with the chosen program.
struct side {
	int list, heading, search;
	int open; // what double click and Enter do
	int rename, new_name, remove;
	std::initializer_list<int> others;
	int compare;        // 0: none
	int refresh, retry; // 0: none
	icon picture;
};

static const side sides[] = {
	{ .list = programs_loaded_list,
		.heading = programs_loaded_heading,
		.search = programs_loaded_search,
		.open = programs_information,
		.rename = programs_loaded_rename,
		.new_name = programs_loaded_new_name,
		.remove = programs_loaded_delete,
		.others = { programs_information, programs_download },
		.compare = 0,
		.refresh = programs_refresh,
		.retry = programs_retry,
		.picture = icon::sampler },
	{ .list = programs_local_list,
		.heading = programs_local_heading,
		.search = programs_local_search,
		.open = programs_upload,
		.rename = programs_local_rename,
		.new_name = programs_local_new_name,
		.remove = programs_local_delete,
		.others = { programs_upload, programs_import_akp },
		.compare = programs_compare,
		.refresh = 0,
		.retry = 0,
		.picture = icon::computer },
};

static QPushButton *button_of(int control)
{
	return qobject_cast<QPushButton *>(find_control(window_programs, control));
}

static void press(int control)
{
	if (QPushButton *button = button_of(control); button && button->isEnabled())
		button->click();
}

// The new name begins as the old one.
static void begin_renaming(const side &s)
{
	auto *list = static_cast<entry_list *>(find_widget(window_programs, s.list));
	auto *field = static_cast<QLineEdit *>(find_widget(window_programs, s.new_name));
	if (list->chosen() < 0 || !field->isEnabled())
		return;
	if (field->text().isEmpty())
		field->setText(list->name_of(list->chosen()));
	field->selectAll();
	field->setFocus();
}

static void show_menu(const side &s, entry_list *list, const QPoint &at)
{
	QMenu menu(list);
	std::vector<int> controls = s.others;
	controls.insert(controls.end(), { s.rename, s.remove, s.compare });
	for (const int control : controls) {
		QPushButton *button = button_of(control);
		if (!button)
			continue;
		QAction *entry = menu.addAction(button->icon(), button->text());
		entry->setEnabled(button->isEnabled());
		QObject::connect(entry, &QAction::triggered, list, [&s, control] {
			if (control == s.rename)
				begin_renaming(s);
			else
				press(control);
		});
	}
	menu.exec(list->viewport()->mapToGlobal(at));
}

static void add_shortcut(QWidget *where, const QList<QKeySequence> &keys,
	Qt::ShortcutContext context, const std::function<void()> &work)
{
	auto *shortcut = new QShortcut(where);
	shortcut->setKeys(keys);
	shortcut->setContext(context);
	QObject::connect(shortcut, &QShortcut::activated, where, work);
}

static entry_list *make_side_list(top_window *window, const side &s)
{
	entry_list *list = make_list(window, s.list);
	list->set_columns({ qtr("Name"), qtr("Keygroups"), qtr("Unsent") });
	list->take_several();
	list->setMinimumHeight(header_height + row_height * 2);
	if (QPushButton *retry = s.retry ? make_button(window, s.retry) : nullptr)
		list->set_retry(retry);
	list->setContextMenuPolicy(Qt::CustomContextMenu);
	QObject::connect(list, &QWidget::customContextMenuRequested, list,
		[&s, list](const QPoint &at) { show_menu(s, list, at); });
	QObject::connect(list, &QTreeWidget::itemActivated, list, [&s] { press(s.open); });
	add_shortcut(list, { Qt::Key_Delete }, Qt::WidgetShortcut, [&s] { press(s.remove); });
	add_shortcut(list, { Qt::Key_F2 }, Qt::WidgetShortcut, [&s] { begin_renaming(s); });
	return list;
}

static constexpr int search_width = 96; // at least

// Flat buttons in two columns under the list; the lists keep the room.
static QLayout *make_side_buttons(top_window *window, const side &s)
{
	auto *grid = new QGridLayout;
	grid->setSpacing(2);
	grid->setColumnStretch(0, 1);
	grid->setColumnStretch(1, 1);
	int place = 0;
	const auto add = [&](int control) {
		QPushButton *button = make_button(window, control);
		if (!button)
			return;
		tell_apart(button, caption_of(window->id, s.list));
		button->setFlat(true);
		button->setFixedHeight(field_height);
		grid->addWidget(button, place / 2, place % 2);
		place++;
	};
	for (const int control : s.others)
		add(control);
	QLineEdit *name = make_field(window, s.new_name);
	QObject::connect(name, &QLineEdit::returnPressed, name, [&s] { press(s.rename); });
	grid->addWidget(name, place / 2, place % 2);
	place++;
	for (const int control : { s.rename, s.remove, s.compare })
		add(control);
	return grid;
}

static QBoxLayout *make_side(top_window *window, const side &s)
{
	auto *column = new QVBoxLayout;
	column->setSpacing(4);
	entry_list *list = make_side_list(window, s);
	QPushButton *refresh = s.refresh ? make_button(window, s.refresh) : nullptr;
	QLayout *heading = make_heading(window, s.list, s.heading, s.picture);
	QLineEdit *search = make_search(window, s.search, list);
	auto *head = new QHBoxLayout;
	column->addLayout(head);
	if (refresh) {
		head->addLayout(heading, 1);
		auto *row = new QHBoxLayout;
		row->addWidget(search, 1);
		row->addWidget(refresh);
		column->addLayout(row);
	} else {
		// The search field takes what the words leave.
		find_widget(window_programs, s.heading)
			->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
		search->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
		search->setMinimumWidth(search_width);
		head->addLayout(heading);
		head->addWidget(search, 1);
	}
	column->addWidget(list, 1);
	column->addLayout(make_side_buttons(window, s));
	set_order({ search, refresh, list });
	return column;
}

static QWidget *make_lists(top_window *window)
{
	auto *all = new QWidget(window);
	auto *column = new QVBoxLayout(all);
	column->setContentsMargins(0, 0, 0, 0);
	column->setSpacing(between_controls);
	column->addLayout(make_side(window, sides[0]), 3);
	column->addLayout(make_side(window, sides[1]), 2);
	return all;
}

// ---- What the tabs show -----------------------------------------------------------------------

enum tab : int {
	tab_program,
	tab_keygroup,
	tab_keyzone,
	tab_envelopes,
};

struct tab_row {
	const char *name; // until the system has another
	icon picture;
};

static constexpr tab_row tabs[] = {
	{ "Program", icon::keys },
	{ own("Keygroup"), icon::layers },
	{ own("Keyzone"), icon::wave },
	{ own("Envelopes"), icon::envelope },
};

static constexpr unsigned on(std::initializer_list<tab> shown)
{
	unsigned bits = 0;
	for (const tab each : shown)
		bits |= 1U << each;
	return bits;
}

// What stands over the form, and with which tabs.
struct head_row {
	int control;
	unsigned shown_with;
};

static constexpr head_row heads[] = {
	{ programs_keygroup_list, on({ tab_keygroup, tab_keyzone, tab_envelopes }) },
	{ programs_keyzone_list, on({ tab_keyzone }) },
	{ programs_keygroup_facts, on({ tab_keygroup, tab_envelopes }) },
	{ programs_zone_sample, on({ tab_keyzone }) },
	{ apply_to_keygroups, on({ tab_keygroup, tab_envelopes }) },
	{ apply_to_keyzones, on({ tab_keyzone }) },
	{ programs_program_form, on({ tab_program }) },
	{ programs_voice_form, on({ tab_keygroup }) },
	{ programs_zone_form, on({ tab_keyzone }) },
	{ programs_adsr, on({ tab_envelopes }) },
};

static QPointer<QStackedWidget> pages;

void show_program_tab(int tab)
{
	if (!pages || tab < 0)
		return;
	pages->setCurrentIndex(tab);
	for (const head_row &row : heads)
		if (QWidget *widget = find_widget(window_programs, row.control))
			widget->setVisible(row.shown_with >> tab & 1);
}

static QTabBar *make_tabs(top_window *window)
{
	auto *bar = new QTabBar(window);
	bar->setExpanding(false);
	bar->setDrawBase(false);
	bar->setUsesScrollButtons(true);
	bar->setElideMode(Qt::ElideNone);
	for (const tab_row &row : tabs)
		bar->addTab(make_icon(row.picture), qtr(row.name));
	enroll(window->id, programs_tabs, bar);
	QObject::connect(bar, &QTabBar::currentChanged, bar, [](int tab) {
		show_program_tab(tab);
		velmor_selection(window_programs, programs_tabs);
	});
	return bar;
}

// "3 changes unsent", in a frame of the accent; nothing when there are none.
class unsent_badge : public told_label
{
public:
	explicit unsent_badge(QWidget *parent) : told_label(parent)
	{
		setContentsMargins(22, 3, 12, 3);
		QFont bold = font();
		bold.setBold(true);
		setFont(bold);
	}

protected:
	void paintEvent(QPaintEvent *event) override
	{
		if (text().isEmpty())
			return;
		QPainter painter(this);
		const QColor link = palette().color(QPalette::Link);
		draw_box(&painter, rect(), mixed(palette().color(QPalette::Window), link, 0.1),
			link, 1.2, height() / 2.0);
		paint_icon(&painter, icon::dot, QRectF(10, height() / 2.0 - 4, 8, 8), link);
		painter.end();
		told_label::paintEvent(event);
	}
};

void show_unsent(const QString &words)
{
	if (QWidget *badge = find_widget(window_programs, programs_unsent))
		badge->setVisible(!words.isEmpty());
	if (QPushButton *send = button_of(programs_life_update)) {
		send->setProperty("main", !words.isEmpty());
		send->update();
	}
}

void mark_missing(QComboBox *box)
{
	for (int i = 0; i < box->count(); i++)
		if (box->itemText(i).endsWith(qtr("(not loaded)")))
			box->setItemData(i, role_color(box->palette(), text_role::failed),
				Qt::ForegroundRole);
}

// Of a sample that the sampler lacks: in the key map and where the sample is chosen.
static QMenu *make_sample_menu(top_window *window)
{
	auto *menu = new QMenu(window);
	menu->setToolTipsVisible(true);
	make_entry(window, menu, programs_find_sample);
	return menu;
}

static QBoxLayout *make_tab_line(top_window *window)
{
	auto *row = new QHBoxLayout;
	row->addWidget(make_tabs(window));
	row->addStretch();
	auto *badge = new unsent_badge(window);
	enroll(window->id, programs_unsent, badge);
	badge->hide();
	row->addWidget(badge);
	row->addStrut(34);
	return row;
}

// A tab says which keygroup or keyzone it shows.
static void name_tab(int tab, const QString &chosen)
{
	if (auto *bar = qobject_cast<QTabBar *>(find_control(window_programs, programs_tabs)))
		bar->setTabText(tab, chosen.isEmpty() ? tabs[tab].name : chosen);
}

// Which keygroup and keyzone the form is of.
static QBoxLayout *make_choices(top_window *window, QMenu *menu)
{
	auto *row = new QHBoxLayout;
	for (const int control : { programs_keygroup_list, programs_keyzone_list }) {
		QComboBox *choice = make_choice(window, control);
		choice->setMinimumContentsLength(10);
		const int tab = control == programs_keygroup_list ? tab_keygroup : tab_keyzone;
		QObject::connect(choice, &QComboBox::currentTextChanged, choice,
			[tab](const QString &chosen) { name_tab(tab, chosen); });
		row->addWidget(choice);
	}
	told_label *facts = make_text(window, programs_keygroup_facts);
	facts->set_cut();
	row->addWidget(facts, 1);
	QComboBox *sample = make_choice(window, programs_zone_sample);
	sample->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
	sample->setMinimumContentsLength(14);
	QObject::connect(sample, &QComboBox::currentTextChanged, sample, [sample] {
		QPalette colors = QApplication::palette();
		if (sample->currentText().endsWith(qtr("(not loaded)")))
			colors.setColor(
				QPalette::ButtonText, role_color(colors, text_role::failed));
		sample->setPalette(colors);
	});
	sample->setContextMenuPolicy(Qt::CustomContextMenu);
	QObject::connect(sample, &QWidget::customContextMenuRequested, sample,
		[sample, menu](const QPoint &at) { menu->popup(sample->mapToGlobal(at)); });
	row->addWidget(sample, 1);
	row->addWidget(make_check(window, apply_to_keygroups));
	row->addWidget(make_check(window, apply_to_keyzones));
	row->addStrut(field_height);
	return row;
}

static QBoxLayout *make_title_line(top_window *window)
{
	auto *row = new QHBoxLayout;
	told_label *title = make_text(window, programs_title);
	title->set_role(text_role::quiet);
	title->set_cut();
	row->addWidget(title, 1);
	for (const int control :
		{ programs_program_form, programs_voice_form, programs_zone_form, programs_adsr })
		add_to(row, { make_button(window, control) });
	row->addStrut(button_height);
	return row;
}

// A form longer than its room scrolls down.
static QWidget *scrolled(QWidget *content, QWidget *parent)
{
	auto *area = new QScrollArea(parent);
	area->setFrameShape(QFrame::NoFrame);
	area->setFocusPolicy(Qt::NoFocus);
	area->setWidgetResizable(true);
	area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
	area->setWidget(content);
	area->setMinimumHeight(form_row_height * 4);
	return area;
}

static QWidget *make_envelopes(top_window *window)
{
	auto *all = new QWidget(window);
	auto *row = new QHBoxLayout(all);
	row->setContentsMargins(0, 0, 0, 0);
	row->setSpacing(between_panels);
	auto *column = new QVBoxLayout;
	column->setSpacing(4);
	for (const int control : { programs_amp_envelope, programs_second_envelope,
		     programs_filter_envelope, programs_aux_envelope }) {
		told_label *title = make_title(caption_of(window->id, control), 1.1, true, all);
		column->addWidget(title);
		auto *curve =
			new envelope_curve(window->id, control, qtr("No keygroup chosen"), all);
		curve->set_title(title);
		enroll(window->id, control, curve);
		column->addWidget(curve);
	}
	column->addStretch();
	row->addLayout(column, 1);
	auto *form = new form_view(window, programs_adsr_form);
	row->addWidget(form, 1);
	return all;
}

static QWidget *make_program(top_window *window, QMenu *menu)
{
	auto *all = new QWidget(window);
	auto *column = new QVBoxLayout(all);
	column->setContentsMargins(0, 0, 0, 0);
	column->setSpacing(4);
	column->addLayout(make_tab_line(window));
	column->addWidget(make_line(all));
	column->addLayout(make_choices(window, menu));
	column->addLayout(make_title_line(window));
	pages = new QStackedWidget(all);
	for (const int form : { form_of_program, form_of_keygroup, form_of_keyzone })
		pages->addWidget(scrolled(new form_view(window, form), pages));
	pages->addWidget(scrolled(make_envelopes(window), pages));
	column->addWidget(pages, 1);
	return all;
}

// ---- The window -------------------------------------------------------------------------------

static QBoxLayout *make_foot(top_window *window)
{
	auto *row = new QHBoxLayout;
	for (const int control : std::initializer_list<int>{ programs_life_update,
		     programs_save_changes, programs_add_keygroup, programs_delete_keygroup,
		     programs_undo, programs_redo, control_cancel }) {
		if (control == programs_undo)
			row->addStretch();
		QPushButton *button = make_button(window, control);
		if (!button)
			continue;
		button->setMinimumHeight(main_button_height);
		row->addWidget(button);
	}
	return row;
}

static void find_in_list()
{
	const QWidget *focus = QApplication::focusWidget();
	const bool local = focus && focus == find_widget(window_programs, programs_local_list);
	auto *search = static_cast<QLineEdit *>(find_widget(
		window_programs, local ? programs_local_search : programs_loaded_search));
	search->setFocus();
	search->selectAll();
}

static void add_shortcuts(top_window *window)
{
	// A field that is typed in keeps the first two for itself.
	static const std::pair<QList<QKeySequence>, int> keys[] = {
		{ { Qt::CTRL | Qt::Key_Z }, programs_undo },
		{ { Qt::CTRL | Qt::SHIFT | Qt::Key_Z, Qt::CTRL | Qt::Key_Y }, programs_redo },
		{ { Qt::Key_F5 }, programs_refresh },
	};
	for (const auto &[key, control] : keys)
		add_shortcut(
			window, key, Qt::WindowShortcut, [control = control] { press(control); });
	add_shortcut(window, { Qt::CTRL | Qt::Key_F }, Qt::WindowShortcut, find_in_list);
}

// Always to be seen, whatever scrolls above it.
static QBoxLayout *make_below(top_window *window, QMenu *menu)
{
	auto *column = new QVBoxLayout;
	column->setContentsMargins(margin_side, 0, margin_side, margin_above);
	column->setSpacing(between_controls);
	auto *map = new key_map(window->id, programs_key_map, qtr("No program chosen"), window);
	enroll(window->id, programs_key_map, map);
	map->set_menu(menu);
	column->addWidget(map, 1);
	column->addLayout(make_foot(window));
	return column;
}

void create_program_manager(QWidget *owner)
{
	auto *window = new top_window(window_programs, control_cancel, owner);
	window->enter_command = 0;
	QBoxLayout *column = scrolled_column(window);
	column->setContentsMargins(margin_side, margin_above, margin_side, 0);
	auto *both = new QHBoxLayout;
	both->setSpacing(between_panels);
	QWidget *lists = make_lists(window);
	lists->setFixedWidth(std::max(340, lists->sizeHint().width()));
	both->addWidget(lists);
	QMenu *menu = make_sample_menu(window);
	both->addWidget(make_program(window, menu), 1);
	column->addLayout(both, 1);
	window->content->setStretch(0, 3);
	window->content->addLayout(make_below(window, menu), 1);
	window->finish();
	show_program_tab(0);
	add_shortcuts(window);
	find_widget(window_programs, programs_loaded_list)->setFocus();
	window->open_at({ 1007, 704 });
}

} // namespace velmor
