// form_view.h - a form made of rows that are known only when it is shown
//
// Label, bar, number, unit in columns; what was changed has a dot, a bold label and a bold
// number. Everything a user does goes to the system by the row's place; what the system sets
// tells nobody.

#pragma once
#include "platform/ui.h"
#include <QWidget>

class QButtonGroup;
class QComboBox;
class QGridLayout;
class QKeyEvent;
class QLineEdit;
class QSlider;
class QWheelEvent;

namespace velmor
{

class told_label;
class top_window;

class form_view : public QWidget
{
public:
	form_view(top_window *window, int control);
	void build(std::span<const form_row> rows);

	void set_value(int row, int value);
	int value(int row) const;
	void set_text(int row, const QString &text);
	QString text(int row) const;
	QSize minimumSizeHint() const override;
	void set_changed(int row, bool changed);

protected:
	bool eventFilter(QObject *watched, QEvent *event) override;
	void resizeEvent(QResizeEvent *event) override;

private:
	struct line {
		QWidget *dot = nullptr;
		told_label *label = nullptr;
		QSlider *bar = nullptr;
		QLineEdit *field = nullptr;
		QComboBox *choice = nullptr;
		QWidget *check = nullptr;
		QButtonGroup *buttons = nullptr;
		told_label *reading = nullptr;
	};
	QWidget *make_value(line *made, const form_row &row, int place, const QString &name);
	QLineEdit *make_field(const form_row &row, int place, const QString &name);
	QWidget *make_bar(line *made, const form_row &row, int place, const QString &name);
	QWidget *make_choice(line *made, const form_row &row, int place);
	QWidget *make_radio(line *made, const form_row &row, int place, const QString &name);
	void add_line(const form_row &row, int place, const QString &group);
	// Where a widget stands: in the row of the form, and in the column of its half.
	struct cell {
		QWidget *widget;
		int row, column, span;
	};
	void put(QWidget *widget, int row, int column, int span = 1);
	void arrange();
	void place_cell(QGridLayout *grid, const cell &c);
	void order_keys();
	int second_half() const;
	int width_of(int from, int to) const;
	void watch(QWidget *widget, int place);
	void step(int row, int by);
	bool take_key(int row, QObject *watched, QKeyEvent *event);
	bool take_wheel(int row, QWidget *watched, QWheelEvent *event);
	void offer_put_back(int row, const QPoint &where);
	void tell(int row, form_event event, int value) const;
	const line *find(int row) const;

	const int window_id, control_id;
	std::vector<line> lines;
	QWidget *rows_shown = nullptr;
	std::vector<cell> cells;
	std::vector<int> heads; // rows that are headings
	bool shown_wide = false;
	int wide_from = 0;    // pixels
	int split = 0;        // the first row of the second half
	int wheel_turned = 0; // not yet a step
};

} // namespace velmor
