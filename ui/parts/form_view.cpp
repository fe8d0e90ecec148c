// form_view.cpp - a form made of rows that are known only when it is shown

#include "ui/parts/form_view.h"
#include "src/velmor_forms.h"
#include "src/velmor_window.h"
#include "ui/parts/parts.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include <QBoxLayout>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QGridLayout>
#include <QLineEdit>
#include <QMenu>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSlider>
#include <algorithm>
#include <cstdlib>
#include <initializer_list>

namespace velmor
{

static constexpr int field_characters = 32;
static constexpr int field_width = 56, bar_width = 60, least_width = 280;

// The columns of the grid; of a wide form, twice.
enum : int {
	column_dot,
	column_label,
	column_bar,
	column_field,
	column_unit,
	columns,
};
static constexpr qsizetype sentence_from = 40;            // letters of a heading
static constexpr int dot_width = 12, between_columns = 4; // pixels

form_view::form_view(top_window *window, int control)
	: QWidget(window), window_id(window->id), control_id(control)
{
	enroll(window->id, control, this);
	auto *all = new QVBoxLayout(this);
	all->setContentsMargins(0, 0, 0, 0);
}

// A label of the system may end in a colon and in line feeds, which a layout has no use for.
static QString words_of(const std::string &label)
{
	return QString::fromUtf8(label.c_str()).trimmed();
}

static void name_control(QWidget *widget, int id, const QString &name)
{
	widget->setProperty("id", id);
	widget->setAccessibleName(name);
}

void form_view::tell(int row, form_event event, int value) const
{
	velmor_form(window_id, control_id, row, event, value);
}

// ---- Making -----------------------------------------------------------------------------------

QLineEdit *form_view::make_field(const form_row &row, int place, const QString &name)
{
	auto *field = new QLineEdit(rows_shown);
	field->setMaxLength(field_characters);
	field->setFixedWidth(field_width);
	field->setAlignment(Qt::AlignRight);
	field->setText(row.text.empty() ? QString::number(row.value)
					: QString::fromUtf8(row.text.c_str()));
	name_control(field, row.field_id, name + qtr(" value"));
	connect(field, &QLineEdit::textEdited, this, [this, place](const QString &typed) {
		const long number = std::strtol(typed.toUtf8().constData(), nullptr, 10);
		tell(place, form_event::edit,
			static_cast<int>(std::clamp(number, -0x7FFFFFFFL, 0x7FFFFFFFL)));
	});
	return field;
}

QWidget *form_view::make_bar(line *made, const form_row &row, int place, const QString &name)
{
	auto *bar = new QSlider(Qt::Horizontal, rows_shown);
	bar->setRange(row.low, row.high);
	bar->setPageStep(1);
	bar->setValue(row.value);
	bar->setMinimumWidth(bar_width);
	made->bar = bar;
	name_control(bar, row.id, name);
	// A press on the groove and a key move it in one step; a drag ends when it is let go.
	connect(bar, &QSlider::valueChanged, this, [this, bar, place](int value) {
		tell(place, bar->isSliderDown() ? form_event::drag : form_event::drag_end, value);
	});
	connect(bar, &QSlider::sliderReleased, this,
		[this, bar, place] { tell(place, form_event::drag_end, bar->value()); });
	return bar;
}

QWidget *form_view::make_choice(line *made, const form_row &row, int place)
{
	auto *choice = new QComboBox(rows_shown);
	QStringList items;
	for (const std::string &item : row.items)
		items += QString::fromUtf8(item.c_str());
	choice->addItems(items);
	choice->setCurrentIndex(row.value);
	choice->setMinimumContentsLength(8);
	choice->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
	connect(choice, &QComboBox::activated, this,
		[this, place](int item) { tell(place, form_event::choice, item); });
	made->choice = choice;
	return choice;
}

QWidget *form_view::make_radio(line *made, const form_row &row, int place, const QString &name)
{
	auto *all = new QWidget(rows_shown);
	auto *grid = new QGridLayout(all);
	grid->setContentsMargins(0, 0, 0, 0);
	made->buttons = new QButtonGroup(all);
	for (std::size_t i = 0; i < row.items.size(); i++) {
		const int item = static_cast<int>(i);
		auto *button = new QRadioButton(QString::fromUtf8(row.items[i].c_str()), all);
		name_control(button, i < row.item_ids.size() ? row.item_ids[i] : row.id,
			button->text() + ", " + name);
		button->setChecked(item == row.value);
		made->buttons->addButton(button, item);
		grid->addWidget(button, item / 4, item % 4);
		connect(button, &QRadioButton::clicked, this,
			[this, place, item] { tell(place, form_event::choice, item); });
	}
	return all;
}

QWidget *form_view::make_value(line *made, const form_row &row, int place, const QString &name)
{
	QWidget *widget = nullptr;
	if (row.kind == row_kind::choice) {
		widget = make_choice(made, row, place);
	} else if (row.kind == row_kind::radio) {
		return make_radio(made, row, place, name);
	} else if (row.kind == row_kind::check) {
		auto *box = new QCheckBox(words_of(row.label), rows_shown);
		box->setChecked(row.value != 0);
		connect(box, &QCheckBox::clicked, this,
			[this, place](bool ticked) { tell(place, form_event::choice, ticked); });
		made->check = widget = box;
	} else {
		made->reading = new told_label(rows_shown);
		made->reading->set_spoken(name);
		made->reading->say(QString::fromUtf8(row.text.c_str()));
		made->reading->setProperty("id", row.id);
		return made->reading;
	}
	name_control(widget, row.id, name);
	return widget;
}

void form_view::add_line(const form_row &row, int place, const QString &group)
{
	line made;
	const QString label = words_of(row.label);
	// The same label may come in two groups.
	const QString said = QString(label).remove(':');
	const QString name = group.isEmpty() ? said : said + ", " + group;
	if (row.kind != row_kind::check) {
		made.label = new told_label(rows_shown);
		made.label->say(label);
		made.label->setMinimumHeight(form_row_height);
		put(made.label, place, column_label);
	}
	if (row.kind == row_kind::slider)
		put(make_bar(&made, row, place, name), place, column_bar);
	else if (row.kind != row_kind::number)
		put(make_value(&made, row, place, name), place, column_bar, 2);
	if (row.kind == row_kind::slider || row.kind == row_kind::number) {
		made.field = make_field(row, place, name);
		put(made.field, place, column_field);
		if (made.label)
			made.label->setBuddy(made.field);
	}
	if (!row.unit.empty()) {
		auto *unit = new told_label(rows_shown);
		unit->set_role(text_role::quiet);
		unit->say(QString::fromUtf8(row.unit.c_str()));
		put(unit, place, column_unit);
	}
	for (QWidget *each : std::initializer_list<QWidget *>{
		     made.label, made.bar, made.field, made.choice, made.check })
		if (each)
			watch(each, place);
	for (QWidget *each : std::initializer_list<QWidget *>{ made.bar, made.choice })
		if (each)
			each->setFocusPolicy(Qt::StrongFocus);
	lines.push_back(made);
	if (row.why_not.empty())
		return;
	for (const cell &c : cells)
		if (c.row == place && (c.column == column_bar || c.column == column_field)) {
			c.widget->setEnabled(row.kind == row_kind::reading);
			c.widget->setToolTip(QString::fromUtf8(row.why_not.c_str()));
		}
}

// Words over the rows below, with a hairline behind them.
static QWidget *make_heading(const QString &words, QWidget *parent)
{
	auto *all = new QWidget(parent);
	auto *row = new QHBoxLayout(all);
	row->setContentsMargins(0, 0, 0, 0);
	told_label *title = make_title(words, 1.1, true, all);
	row->addWidget(title, words.size() > sentence_from ? 1 : 0);
	if (words.size() > sentence_from) {
		// A sentence goes on in the next line, and has no hairline behind it.
		title->setWordWrap(true);
		title->setMinimumHeight(2 * title->fontMetrics().lineSpacing());
		return all;
	}
	row->addWidget(make_line(all), 1);
	return all;
}

void form_view::put(QWidget *widget, int row, int column, int span)
{
	cells.push_back({ widget, row, column, span });
}

// The rows of a form are made on a widget that is not shown yet, so that nothing is laid out
// before all are there.
void form_view::build(std::span<const form_row> rows)
{
	delete rows_shown;
	lines.clear();
	cells.clear();
	heads.clear();
	rows_shown = new QWidget;
	QString group;
	for (std::size_t i = 0; i < rows.size(); i++) {
		const int place = static_cast<int>(i);
		if (rows[i].kind == row_kind::heading) {
			group = words_of(rows[i].label);
			put(make_heading(group, rows_shown), place, column_dot, columns);
			heads.push_back(place);
			lines.emplace_back();
			continue;
		}
		add_line(rows[i], place, group);
	}
	const int half = second_half(), count = static_cast<int>(lines.size());
	wide_from = width_of(0, half) + between_controls + width_of(half, count);
	arrange();
	for (std::size_t i = 0; i < rows.size(); i++)
		if (rows[i].changed)
			set_changed(static_cast<int>(i), true);
	layout()->addWidget(rows_shown);
	order_keys();
	rows_shown->show();
}

// What is made while the window stands would come last in it.
void form_view::order_keys()
{
	QWidget *last = previousInFocusChain();
	while (last != this && last->focusPolicy() == Qt::NoFocus)
		last = last->previousInFocusChain();
	for (const cell &c : cells)
		for (QWidget *widget :
			QList<QWidget *>{ c.widget } + c.widget->findChildren<QWidget *>())
			if (widget->focusPolicy() & Qt::TabFocus && widget->window() == window()) {
				setTabOrder(last, widget);
				last = widget;
			}
}

// The first row of the second half of a wide form: the group that makes both most alike.
int form_view::second_half() const
{
	const int count = static_cast<int>(lines.size());
	int found = count;
	for (const int head : heads)
		if (head > 0 && std::max(head, count - head) < std::max(found, count - found))
			found = head;
	return found;
}

// What these rows need, so that no word of them is cut.
int form_view::width_of(int from, int to) const
{
	int widest[columns] = {}, over_two = 0;
	for (const cell &c : cells) {
		const int wanted = c.widget->minimumSizeHint().width();
		if (c.row < from || c.row >= to || c.column == column_dot)
			continue;
		int &column = c.span == 1 ? widest[c.column] : over_two;
		column = std::max({ column, wanted, c.widget->minimumWidth() });
	}
	return dot_width + widest[column_label] + widest[column_unit] + 4 * between_columns +
	       std::max(over_two, widest[column_bar] + between_columns + widest[column_field]);
}

// From anew, as another width may want other columns.
void form_view::arrange()
{
	delete rows_shown->layout();
	auto *grid = new QGridLayout(rows_shown);
	grid->setContentsMargins(0, 0, 0, 0);
	grid->setVerticalSpacing(0);
	grid->setHorizontalSpacing(between_columns);
	shown_wide = width() >= wide_from;
	split = shown_wide ? second_half() : static_cast<int>(lines.size());
	const bool halves = split < static_cast<int>(lines.size());
	for (int first = 0; first <= (halves ? columns + 1 : 0); first += columns + 1) {
		grid->setColumnMinimumWidth(first + column_dot, dot_width);
		grid->setColumnStretch(first + column_bar, 1);
	}
	if (halves)
		grid->setColumnMinimumWidth(columns, between_controls);
	for (const cell &c : cells)
		place_cell(grid, c);
	for (int row = 0; row < std::max(split, static_cast<int>(lines.size()) - split); row++)
		grid->setRowMinimumHeight(row, form_row_height);
	grid->setRowStretch(static_cast<int>(lines.size()), 1);
}

void form_view::place_cell(QGridLayout *grid, const cell &c)
{
	const bool second = c.row >= split;
	grid->addWidget(c.widget, second ? c.row - split : c.row,
		c.column + (second ? columns + 1 : 0), 1, c.span,
		c.column == column_dot && c.span == 1 ? Qt::AlignCenter : Qt::Alignment());
}

void form_view::resizeEvent(QResizeEvent *event)
{
	if (rows_shown && shown_wide != (width() >= wide_from))
		arrange();
	QWidget::resizeEvent(event);
}

// Narrow enough to give up the second half.
QSize form_view::minimumSizeHint() const
{
	const QSize all = QWidget::minimumSizeHint();
	return { std::min(all.width(), least_width), all.height() };
}

// ---- Steps, and putting back ------------------------------------------------------------------

void form_view::watch(QWidget *widget, int place)
{
	widget->setProperty("row", place);
	widget->installEventFilter(this);
}

// A bar tells of it as of a key; a number alone as if it was typed.
void form_view::step(int row, int by)
{
	const line *l = find(row);
	if (l && l->bar)
		return l->bar->setValue(l->bar->value() + by);
	bool is_number = false;
	const int before = l && l->field ? l->field->text().toInt(&is_number) : 0;
	if (!is_number)
		return;
	l->field->setText(QString::number(before + by));
	tell(row, form_event::edit, before + by);
}

static int step_of(const QInputEvent *event)
{
	return event->modifiers() & Qt::ShiftModifier ? 10 : 1;
}

// A form is no dialog: Enter in a field ends nothing.
bool form_view::take_key(int row, QObject *watched, QKeyEvent *event)
{
	const int key = event->key();
	if (!qobject_cast<QSlider *>(watched) && !qobject_cast<QLineEdit *>(watched))
		return false;
	if (key == Qt::Key_Return || key == Qt::Key_Enter)
		return true;
	const bool bar = qobject_cast<QSlider *>(watched) != nullptr;
	if (key == Qt::Key_Up || (bar && key == Qt::Key_Right))
		step(row, step_of(event));
	else if (key == Qt::Key_Down || (bar && key == Qt::Key_Left))
		step(row, -step_of(event));
	else if (key == Qt::Key_PageUp || key == Qt::Key_PageDown)
		step(row, key == Qt::Key_PageUp ? 10 : -10);
	else
		return false;
	return true;
}

// Only of what has the focus: a form that is scrolled must not change what passes under the
// mouse. With Shift some systems turn the wheel across.
bool form_view::take_wheel(int row, QWidget *watched, QWheelEvent *event)
{
	if (!watched->hasFocus()) {
		event->ignore();
		return true;
	}
	if (qobject_cast<QComboBox *>(watched))
		return false;
	const QPoint turned = event->angleDelta();
	wheel_turned += turned.y() ? turned.y() : turned.x();
	const int steps = wheel_turned / QWheelEvent::DefaultDeltasPerStep;
	wheel_turned %= QWheelEvent::DefaultDeltasPerStep;
	if (steps)
		step(row, steps * step_of(event));
	return true;
}

void form_view::offer_put_back(int row, const QPoint &where)
{
	const std::string words = put_back_words(window_id, control_id, row);
	if (words.empty())
		return;
	QMenu menu(this);
	QAction *entry = menu.addAction(make_icon(icon::undo), QString::fromUtf8(words.c_str()));
	if (menu.exec(where) == entry)
		tell(row, form_event::put_back, 0);
}

bool form_view::eventFilter(QObject *watched, QEvent *event)
{
	auto *widget = qobject_cast<QWidget *>(watched);
	const int row = watched->property("row").toInt();
	switch (event->type()) {
	case QEvent::MouseButtonDblClick:
		if (qobject_cast<QLabel *>(widget))
			tell(row, form_event::put_back, 0);
		return false;
	case QEvent::ContextMenu:
		// A field has a menu of its own for its text.
		if (qobject_cast<QLineEdit *>(widget))
			return false;
		offer_put_back(row, static_cast<QContextMenuEvent *>(event)->globalPos());
		return true;
	case QEvent::ShortcutOverride: {
		// Undo is of edits, not of the letters in a field.
		auto *key = static_cast<QKeyEvent *>(event);
		if (!key->matches(QKeySequence::Undo) && !key->matches(QKeySequence::Redo))
			return false;
		event->ignore();
		return true;
	}
	case QEvent::KeyPress:
		return take_key(row, watched, static_cast<QKeyEvent *>(event));
	case QEvent::Wheel:
		return take_wheel(row, widget, static_cast<QWheelEvent *>(event));
	default:
		return false;
	}
}

// ---- Values -----------------------------------------------------------------------------------

const form_view::line *form_view::find(int row) const
{
	return row >= 0 && static_cast<std::size_t>(row) < lines.size()
		       ? &lines[static_cast<std::size_t>(row)]
		       : nullptr;
}

void form_view::set_value(int row, int value)
{
	const line *l = find(row);
	if (!l)
		return;
	if (l->bar) {
		const QSignalBlocker quiet(l->bar);
		l->bar->setValue(value);
	} else if (l->field) {
		l->field->setText(QString::number(value));
	} else if (l->choice) {
		l->choice->setCurrentIndex(value);
	} else if (auto *box = qobject_cast<QCheckBox *>(l->check)) {
		box->setChecked(value != 0);
	} else if (l->buttons) {
		// A value that no button has clears them all.
		l->buttons->setExclusive(false);
		for (QAbstractButton *button : l->buttons->buttons())
			button->setChecked(l->buttons->id(button) == value);
		l->buttons->setExclusive(true);
	}
}

int form_view::value(int row) const
{
	const line *l = find(row);
	if (!l)
		return 0;
	if (l->bar)
		return l->bar->value();
	if (l->field)
		return l->field->text().toInt();
	if (l->choice)
		return l->choice->currentIndex();
	if (auto *box = qobject_cast<QCheckBox *>(l->check))
		return box->isChecked();
	return l->buttons ? l->buttons->checkedId() : 0;
}

void form_view::set_text(int row, const QString &text)
{
	const line *l = find(row);
	if (l && l->field)
		l->field->setText(text);
	else if (l && l->reading)
		l->reading->say(text);
}

QString form_view::text(int row) const
{
	const line *l = find(row);
	return !l ? QString() : l->field ? l->field->text() : l->reading ? l->reading->text() : "";
}

static void set_bold(QWidget *widget, bool bold)
{
	if (!widget || widget->font().bold() == bold)
		return;
	QFont font = widget->font();
	font.setBold(bold);
	widget->setFont(font);
}

void form_view::set_changed(int row, bool changed)
{
	const line *l = find(row);
	if (!l)
		return;
	line &shown = lines[static_cast<std::size_t>(row)];
	if (changed && !shown.dot) {
		shown.dot = new icon_label(icon::dot, 8, QPalette::Link, rows_shown);
		put(shown.dot, row, column_dot);
		place_cell(static_cast<QGridLayout *>(rows_shown->layout()), cells.back());
	}
	if (shown.dot)
		shown.dot->setVisible(changed);
	if (l->field)
		l->field->setAccessibleDescription(changed ? qtr("Changed") : "");
	set_bold(l->label, changed);
	set_bold(l->field, changed);
	set_bold(l->check, changed);
	if (l->bar) {
		l->bar->setProperty("changed", changed);
		l->bar->update();
	}
}

} // namespace velmor
