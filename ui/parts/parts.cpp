// parts.cpp - what the windows are made of: controls enrolled by window and id

#include "ui/parts/parts.h"
#include "src/velmor_window.h"
#include "ui/parts/entry_list.h"
#include "ui/parts/pixel_picture.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include "ui/qt_ui.h"
#include <QAction>
#include <QBoxLayout>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QToolButton>
#include <algorithm>
#include <map>
#include <utility>

namespace velmor
{

// ---- Ids ------------------------------------------------------------------------------------

// Everything enrolled. A destroyed window leaves nulls behind.
static std::map<std::pair<int, int>, QPointer<QObject>> controls;

static QObject *enrolled(int window, int control)
{
	const auto found = controls.find({ window, control });
	return found == controls.end() ? nullptr : found->second.data();
}

// A dialog is made when something of it is first needed, so that the main window is there at
// once.
struct dialog_maker {
	int window;
	void (*make)(QWidget *owner);
};

static constexpr dialog_maker dialogs[] = {
	{ window_samples, create_sample_manager },
	{ window_programs, create_program_manager },
	{ window_settings, create_settings_dialog },
	{ window_sampler, create_sampler_dialog },
	{ window_usb, create_usb_dialog },
	{ window_multis, create_multi_window },
	{ window_backup, create_backup_window },
	{ window_self_test, create_self_test_window },
	{ window_panel, create_panel_window },
	{ window_midi_files, create_player_window },
	{ window_history, create_history_window },
	{ window_progress, create_progress_window },
};

static bool dialogs_wanted;

// What was to be done to the controls of a dialog before it was made, in order.
static std::map<int, std::vector<std::function<void()>>> kept_for_later;

static void make_dialog(int window)
{
	auto *owner = qobject_cast<QWidget *>(enrolled(window_main, 0));
	for (const dialog_maker &row : dialogs)
		if (row.window == window && owner)
			row.make(owner);
	const auto kept = std::exchange(kept_for_later[window], {});
	for (const std::function<void()> &work : kept)
		work();
}

void let_dialogs_be_made(bool wanted)
{
	dialogs_wanted = wanted;
	kept_for_later.clear();
}

bool not_made_yet(int window)
{
	const auto is_it = [window](const dialog_maker &row) { return row.window == window; };
	return dialogs_wanted && !enrolled(window, 0) &&
	       std::any_of(std::begin(dialogs), std::end(dialogs), is_it);
}

void keep_for_later(int window, std::function<void()> work)
{
	kept_for_later[window].push_back(std::move(work));
}

QObject *find_control(int window, int control)
{
	if (dialogs_wanted && !enrolled(window, 0))
		make_dialog(window);
	return enrolled(window, control);
}

QWidget *find_widget(int window, int control)
{
	return qobject_cast<QWidget *>(find_control(window, control));
}

QString caption_of(int window, int control)
{
	const caption_row *row = find_caption(window, control);
	return row ? qtr(row->caption) : QString();
}

// As it is said, and in a menu as it is shown: one letter at most is marked.
static QString without_marks(QString caption)
{
	return caption.remove('&').remove(':');
}

static QString with_one_mark(QString caption)
{
	const qsizetype mark = caption.indexOf('&');
	return mark < 0 ? caption : caption.remove('&').insert(mark, '&');
}

void enroll(int window, int control, QObject *object)
{
	controls[{ window, control }] = object;
	object->setProperty("id", control ? control : window);
	const caption_row *row = find_caption(window, control);
	auto *widget = qobject_cast<QWidget *>(object);
	if (!row || !widget)
		return;
	const QString said = without_marks(qtr(row->caption));
	if (auto *label = dynamic_cast<told_label *>(widget))
		label->set_spoken(said);
	else
		widget->setAccessibleName(said);
	if (!row->tooltip)
		return;
	widget->setToolTip(qtr(row->tooltip));
	widget->setAccessibleDescription(qtr(row->tooltip));
}

void tell_apart(QWidget *widget, const QString &among)
{
	widget->setProperty("among", among);
	widget->setAccessibleName(widget->accessibleName() + ", " + among);
}

// ---- Makers ---------------------------------------------------------------------------------

QPushButton *make_button(top_window *window, int control)
{
	const int id = window->id;
	if (!has_command(id, control))
		return nullptr;
	auto *button = new QPushButton(caption_of(id, control), window);
	button->setAutoDefault(true);
	button->setIcon(make_icon(icon_of(id, control)));
	enroll(id, control, button);
	QObject::connect(button, &QPushButton::clicked, button,
		[id, control] { velmor_command(id, control); });
	return button;
}

void make_entry(top_window *window, QMenu *menu, int control)
{
	const int id = window->id;
	if (!has_command(id, control))
		return;
	QAction *entry = menu->addAction(
		make_icon(icon_of(id, control)), with_one_mark(caption_of(id, control)));
	enroll(id, control, entry);
	const caption_row *row = find_caption(id, control);
	if (row && row->tooltip)
		entry->setStatusTip(qtr(row->tooltip));
	QObject::connect(
		entry, &QAction::triggered, entry, [id, control] { velmor_command(id, control); });
}

entry_list *make_list(top_window *window, int control)
{
	auto *list = new entry_list(window, control);
	enroll(window->id, control, list);
	return list;
}

static void set_empty_text(QLineEdit *field, int window, int control)
{
	const caption_row *row = find_caption(window, control);
	if (row && row->empty)
		field->setPlaceholderText(qtr(row->empty));
}

QLineEdit *make_field(top_window *window, int control)
{
	auto *field = new QLineEdit(window);
	field->setTextMargins(2, 0, 2, 0);
	enroll(window->id, control, field);
	set_empty_text(field, window->id, control);
	return field;
}

QLineEdit *make_search_field(QWidget *parent)
{
	auto *field = new QLineEdit(parent);
	field->setTextMargins(icon_size + between_controls, 0, 2, 0);
	auto *inside = new QHBoxLayout(field);
	inside->setContentsMargins(between_controls, 0, 0, 0);
	inside->addWidget(new icon_label(icon::search, icon_size, QPalette::Dark, field));
	inside->addStretch();
	return field;
}

QLineEdit *make_search(top_window *window, int control, entry_list *list)
{
	QLineEdit *field = make_search_field(window);
	enroll(window->id, control, field);
	set_empty_text(field, window->id, control);
	field->setProperty("searched", QVariant::fromValue<QWidget *>(list));
	QObject::connect(field, &QLineEdit::textChanged, list,
		[list](const QString &letters) { list->search(letters); });
	return field;
}

told_label *make_text(top_window *window, int control)
{
	auto *label = new told_label(window);
	enroll(window->id, control, label);
	return label;
}

told_label *make_verdict(top_window *window, int control)
{
	told_label *verdict = make_text(window, control);
	verdict->set_spoken(qtr("Verdict"));
	verdict->set_marked();
	verdict->setWordWrap(true);
	verdict->setAlignment(Qt::AlignLeft | Qt::AlignTop);
	verdict->setMinimumHeight(verdict->fontMetrics().lineSpacing() * 3 + 4);
	return verdict;
}

pixel_picture *make_picture(top_window *window, int control)
{
	auto *picture = new pixel_picture(window->id, control, window);
	enroll(window->id, control, picture);
	return picture;
}

QComboBox *make_choice(top_window *window, int control)
{
	const int id = window->id;
	auto *box = new QComboBox(window);
	box->setSizeAdjustPolicy(QComboBox::AdjustToContents);
	enroll(id, control, box);
	QObject::connect(
		box, &QComboBox::activated, box, [id, control] { velmor_selection(id, control); });
	return box;
}

QRadioButton *make_option(top_window *window, int control, QButtonGroup *group)
{
	const int id = window->id;
	auto *option = new QRadioButton(caption_of(id, control), window);
	enroll(id, control, option);
	group->addButton(option);
	QObject::connect(option, &QRadioButton::clicked, option,
		[id, control] { velmor_selection(id, control); });
	return option;
}

// A box that says something of itself need not be told: what it lets through asks for it.
QCheckBox *make_check(top_window *window, int control)
{
	const int id = window->id;
	auto *box = new QCheckBox(caption_of(id, control), window);
	enroll(id, control, box);
	QObject::connect(
		box, &QCheckBox::clicked, box, [id, control] { velmor_selection(id, control); });
	return box;
}

QWidget *make_options(
	top_window *window, const QString &title, std::initializer_list<int> ids, int columns)
{
	auto *box = new QGroupBox(title, window);
	// The title is bold, and wider than the box thinks.
	QFont bold = box->font();
	bold.setBold(true);
	box->setMinimumWidth(QFontMetrics(bold).horizontalAdvance(title) + 2 * between_controls);
	auto *grid = new QGridLayout(box);
	grid->setContentsMargins(0, between_controls / 2, 0, 0);
	grid->setVerticalSpacing(between_controls / 2);
	auto *group = new QButtonGroup(box);
	const int rows = (static_cast<int>(ids.size()) + columns - 1) / columns;
	int place = 0;
	for (int control : ids) {
		QRadioButton *option = make_option(window, control, group);
		tell_apart(option, title);
		option->setChecked(place == 0);
		grid->addWidget(option, place % rows, place / rows);
		place++;
	}
	grid->setRowStretch(rows, 1);
	return box;
}

QToolButton *make_fold(QWidget *part, const QString &name, bool open, QWidget *parent)
{
	auto *fold = new QToolButton(parent);
	fold->setAutoRaise(true);
	fold->setFocusPolicy(Qt::TabFocus);
	fold->setAccessibleName(name);
	fold->setCheckable(true);
	const auto turn = [fold, part, name](bool shown) {
		fold->setIcon(make_icon(shown ? icon::fold_open : icon::fold_closed));
		fold->setToolTip((shown ? qtr("Hide ") : qtr("Show ")) + name);
		part->setVisible(shown);
	};
	QObject::connect(fold, &QToolButton::toggled, part, turn);
	fold->setChecked(open);
	turn(open);
	return fold;
}

QLayout *make_heading(top_window *window, int list, int told, icon picture, QPushButton *button)
{
	auto *row = new QHBoxLayout;
	if (picture != icon::none)
		row->addWidget(new icon_label(picture, icon_size, QPalette::Link, window));
	told_label *title = make_title(caption_of(window->id, list), 1.1, true, window);
	title->setBuddy(find_widget(window->id, list));
	row->addWidget(title);
	if (told) {
		told_label *words = make_text(window, told);
		words->set_spoken(title->text() + qtr(" heading"));
		words->set_role(text_role::quiet);
		words->set_cut();
		row->addWidget(words, 1);
	} else {
		row->addStretch(1);
	}
	if (button) {
		button->setFlat(true);
		row->addWidget(button);
	}
	// The same height with a button and without.
	row->addStrut(button_height);
	return row;
}

QBoxLayout *scrolled_column(top_window *window)
{
	window->content->setContentsMargins(0, 0, 0, 0);
	auto *area = new QScrollArea(window);
	area->setFrameShape(QFrame::NoFrame);
	area->setFocusPolicy(Qt::NoFocus);
	area->setWidgetResizable(true);
	auto *content = new QWidget(area);
	area->setWidget(content);
	window->content->addWidget(area);
	auto *column = new QVBoxLayout(content);
	column->setContentsMargins(margin_side, margin_above, margin_side, margin_above);
	column->setSpacing(12);
	return column;
}

void add_row(QFormLayout *form, int window, int control, QWidget *field)
{
	auto *label = new told_label(field->parentWidget());
	label->say(caption_of(window, control));
	label->setBuddy(field);
	label->setMinimumHeight(dynamic_cast<told_label *>(field) ? 0 : form_row_height);
	form->addRow(label, field);
}

void add_to(QBoxLayout *layout, std::initializer_list<QWidget *> widgets)
{
	for (QWidget *widget : widgets)
		if (widget)
			layout->addWidget(widget);
}

void set_order(std::initializer_list<QWidget *> widgets)
{
	QWidget *last = nullptr;
	for (QWidget *widget : widgets) {
		if (last && widget)
			QWidget::setTabOrder(last, widget);
		last = widget ? widget : last;
	}
}

void add_closing_buttons(top_window *window)
{
	auto *row = new QHBoxLayout;
	row->addStretch();
	QPushButton *leave = make_button(window, control_cancel);
	QPushButton *keep = make_button(window, control_ok);
	keep->setProperty("main", true);
	add_to(row, { leave, keep });
	window->content->addStretch();
	window->content->addLayout(row);
}

} // namespace velmor
