// window.h - a window of the program: its content, and the status line at its foot

#pragma once
#include <QWidget>

class QBoxLayout;
class QPushButton;

namespace velmor
{

// Its close box and Escape are a command.
class top_window : public QWidget
{
public:
	const int id, close_command;
	int enter_command;         // what Enter does where the focus takes none
	QBoxLayout *const content; // a column with the margins of a window
	bool has_place = true;     // where the user puts it is remembered
	bool keeps_size = true;    // and how large; not of a window that fits its content

	// Enrolled as control 0, titled by its caption.
	top_window(int window, int close, QWidget *owner);
	// To be called when the content is complete: the status line comes last in the order of
	// the keys, and letters are given to the buttons.
	void finish(bool with_status = true);
	// Give a letter to the buttons that have none.
	void letter_buttons();
	// Open as large as its content wants and the screen allows.
	void open_at(const QSize &wanted);
	// Have a button say something else, with a letter of its own.
	void caption(QPushButton *button, const QString &words);

protected:
	void closeEvent(QCloseEvent *event) override;
	void keyPressEvent(QKeyEvent *event) override;
	void changeEvent(QEvent *event) override;
	void showEvent(QShowEvent *event) override;
	void hideEvent(QHideEvent *event) override;

private:
	bool take_common_key(const QKeyEvent *event);
	QString with_letter(const QString &words);
	QString letters_taken;
	bool was_shown = false;
};

} // namespace velmor
