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
class QLineEdit;
class QSlider;

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
	void set_changed(int row, bool changed);

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
	void add_line(QGridLayout *grid, const form_row &row, int place, const QString &group);
	void tell(int row, form_event event, int value) const;
	const line *find(int row) const;

	const int window_id, control_id;
	std::vector<line> lines;
	QWidget *rows_shown = nullptr;
};

} // namespace velmor
