// window.cpp - a window of the program: its content, and the status line at its foot

#include "ui/parts/window.h"
#include "src/velmor_window.h"
#include "ui/parts/icons.h"
#include "ui/parts/palette.h"
#include "ui/parts/parts.h"
#include "ui/parts/place.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/qt_ui.h"
#include <QBoxLayout>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>

namespace velmor
{

// Above the content, so that finish can add the status line below it.
static QBoxLayout *make_content(QWidget *window)
{
	auto *all = new QVBoxLayout(window);
	all->setContentsMargins(0, 0, 0, 0);
	all->setSpacing(0);
	auto *content = new QVBoxLayout;
	content->setContentsMargins(margin_side, margin_above, margin_side, margin_above);
	content->setSpacing(between_controls);
	all->addLayout(content, 1);
	return content;
}

top_window::top_window(int window, int close, QWidget *owner)
	: QWidget(owner, owner ? Qt::Dialog : Qt::Window), id(window), close_command(close),
	  enter_command(control_ok), content(make_content(this))
{
	enroll(window, 0, this);
	setWindowTitle(caption_of(window, 0));
	setWindowIcon(make_icon(icon_of(window, 0)));
}

// ---- Status line ------------------------------------------------------------------------------

static told_label *make_told(top_window *window, int control, const char *spoken, QWidget *parent)
{
	auto *label = new told_label(parent);
	label->set_marked();
	label->set_spoken(qtr(spoken));
	enroll(window->id, control, label);
	return label;
}

// One line; two in a window that is too narrow for both sentences and what is to be put back.
class status_foot : public QWidget
{
public:
	explicit status_foot(QWidget *parent)
		: QWidget(parent), row(new QBoxLayout(QBoxLayout::LeftToRight, this))
	{
	}
	void set_connection(QWidget *label)
	{
		connection = label;
		turn(false);
	}
	QBoxLayout *const row;

protected:
	void resizeEvent(QResizeEvent *event) override
	{
		const bool narrow = width() < fontMetrics().averageCharWidth() * letters_for_both;
		if (narrow != (row->direction() == QBoxLayout::TopToBottom))
			turn(narrow);
		QWidget::resizeEvent(event);
	}

private:
	static constexpr int letters_for_both = 155;

	void turn(bool narrow)
	{
		row->setDirection(narrow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
		row->setSpacing(narrow ? 0 : between_panels);
		connection->setSizePolicy(narrow ? QSizePolicy::Ignored : QSizePolicy::Maximum,
			QSizePolicy::Preferred);
		const int above = narrow ? between_controls / 2 : 0;
		row->setContentsMargins(margin_side, above, margin_side, above);
		setMinimumHeight(narrow ? status_height * 5 / 3 : status_height);
	}

	QWidget *connection = nullptr;
};

static QWidget *make_status_line(top_window *window)
{
	auto *foot = new status_foot(window);
	// Neither makes the window wider: nothing jumps when the words change.
	told_label *connection = make_told(window, status_line, own("Connection"), foot);
	connection->set_cut();
	foot->row->addWidget(connection);
	foot->set_connection(connection);
	auto *row = new QHBoxLayout;
	row->setSpacing(between_panels);
	foot->row->addLayout(row, 1);
	told_label *outcome = make_told(window, status_outcome, own("Last outcome"), foot);
	outcome->set_cut();
	row->addWidget(outcome, 1);
	for (const int control : { status_undo_sampler, status_undo })
		if (QPushButton *undo = make_button(window, control)) {
			undo->setFlat(true);
			undo->setProperty("link", true);
			undo->hide();
			row->addWidget(undo);
		}
	return foot;
}

void top_window::finish(bool with_status)
{
	if (with_status) {
		layout()->addWidget(make_line(this));
		layout()->addWidget(make_status_line(this));
	}
	for (const QMenuBar *bar : findChildren<QMenuBar *>())
		for (const QAction *menu : bar->actions())
			letters_taken +=
				menu->text().mid(menu->text().indexOf('&') + 1, 1).toLower();
	letter_buttons();
}

// A dialog's buttons are its own, although the dialog belongs to the main window.
void top_window::letter_buttons()
{
	QList<QPushButton *> buttons;
	for (QPushButton *button : findChildren<QPushButton *>())
		if (button->window() == this && !button->property("caption").isValid())
			buttons += button;
	for (const QPushButton *button : buttons)
		if (const qsizetype mark = button->text().indexOf('&'); mark >= 0)
			letters_taken += button->text().mid(mark + 1, 1).toLower();
	for (QPushButton *button : buttons)
		caption(button, button->text());
}

// The desktop's frame takes some of the screen too.
void top_window::open_at(const QSize &wanted)
{
	const QSize screen = QGuiApplication::primaryScreen()->availableSize();
	resize(wanted.expandedTo(sizeHint()).boundedTo(screen - QSize(16, 48)));
}

// ---- Letters ----------------------------------------------------------------------------------

// The first letter of a word serves better than one within.
QString top_window::with_letter(const QString &words)
{
	for (const bool heads : { true, false })
		for (qsizetype i = 0; i < words.size(); i++) {
			const bool head = i == 0 || words[i - 1] == ' ';
			const QChar letter = words[i].toLower();
			if (head != heads || !letter.isLetter() || letters_taken.contains(letter))
				continue;
			letters_taken += letter;
			return QString(words).insert(i, '&');
		}
	return words;
}

void top_window::caption(QPushButton *button, const QString &words)
{
	const QString before = button->text();
	if (const qsizetype mark = before.indexOf('&');
		mark >= 0 && button->property("caption").isValid())
		letters_taken.remove(before[mark + 1].toLower());
	button->setProperty("caption", words);
	const bool has_letter = words.contains('&') || words.isEmpty();
	button->setText(has_letter ? words : with_letter(words));
	const QString among = button->property("among").toString();
	button->setAccessibleName(
		QString(words).remove('&') + (among.isEmpty() ? "" : ", " + among));
}

// ---- Events -----------------------------------------------------------------------------------

// The command hides the window, or ends the program: the system decides.
void top_window::closeEvent(QCloseEvent *event)
{
	event->ignore();
	velmor_command(id, close_command);
}

// The field that searches the list with the focus, or the first one.
static bool go_to_search(const QWidget *window)
{
	QLineEdit *found = nullptr;
	for (QLineEdit *field : window->findChildren<QLineEdit *>()) {
		const auto *list = field->property("searched").value<QWidget *>();
		if (list && field->isVisible() && (!found || list->hasFocus()))
			found = field;
	}
	if (!found)
		return false;
	found->setFocus();
	found->selectAll();
	return true;
}

// Keys of every window, for what no control of it takes.
bool top_window::take_common_key(const QKeyEvent *event)
{
	if (event->matches(QKeySequence::Find))
		return go_to_search(this);
	const QWidget *undo = find_widget(id, status_undo);
	return event->matches(QKeySequence::Undo) && undo && undo->isVisible() &&
	       undo->isEnabled() && velmor_command(id, status_undo);
}

void top_window::keyPressEvent(QKeyEvent *event)
{
	if (take_common_key(event))
		return;
	if (event->matches(QKeySequence::Cancel) && close_command == control_cancel)
		velmor_command(id, close_command);
	else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
		velmor_command(id, enter_command);
	else
		QWidget::keyPressEvent(event);
}

void top_window::showEvent(QShowEvent *event)
{
	if (has_place && !was_shown && !event->spontaneous())
		restore_place(this);
	was_shown = true;
	QWidget::showEvent(event);
}

void top_window::hideEvent(QHideEvent *event)
{
	if (!event->spontaneous())
		remember_place(this);
	QWidget::hideEvent(event);
}

void top_window::changeEvent(QEvent *event)
{
	if (event->type() == QEvent::ThemeChange && !parent())
		follow_desktop();
	QWidget::changeEvent(event);
}

} // namespace velmor
