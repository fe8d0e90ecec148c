// parts.h - what the windows are made of: controls enrolled by window and id
//
// One function below makes each kind of control: it takes its words from the
// table of captions, enrolls it, and connects it to the commands of the system.
// A control without a command is not made; the makers then give null, and
// add_to leaves a null out.

#pragma once
#include "src/controls.h"
#include <QListWidget>
#include <QWidget>
#include <initializer_list>
#include <string>

class QBoxLayout;
class QButtonGroup;
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QRadioButton;

namespace velmor
{

// A window of the program. Its close box and Escape are a command.
class top_window : public QWidget
{
public:
	const int id, close_command;

	// Enrolled as control 0, titled by its caption.
	top_window(int window, int close, QWidget *owner);

protected:
	void closeEvent(QCloseEvent *event) override;
	void keyPressEvent(QKeyEvent *event) override;
};

// A list that says something when it is empty, and takes dropped files if it is told to.
class named_list : public QListWidget
{
public:
	named_list(int window, int control, QWidget *parent);
	void take_files();
	// Hide every entry that does not hold these letters.
	void search(const QString &letters);
	// The chosen entry, -1 when it is none or hidden by the search.
	int chosen() const;
	// Fill without telling the system, as only the user's choices are told.
	void fill(const QStringList &names);
	void choose(int index);

protected:
	void paintEvent(QPaintEvent *event) override;
	void dragEnterEvent(QDragEnterEvent *event) override;
	void dragMoveEvent(QDragMoveEvent *event) override;
	void dragLeaveEvent(QDragLeaveEvent *event) override;
	void dropEvent(QDropEvent *event) override;

private:
	const int window_id, control_id;
	QString letters_sought, empty_text;
};

// Make this object findable, and give it its words.
void enroll(int window, int control, QObject *object);
QString caption_of(int window, int control);

QPushButton *make_button(top_window *window, int control);
void make_entry(top_window *window, QMenu *menu, int control);
named_list *make_list(top_window *window, int control);
QLineEdit *make_search(top_window *window, int control, named_list *list);
QLineEdit *make_field(top_window *window, int control);
QLabel *make_text(top_window *window, int control);
QComboBox *make_choice(top_window *window, int control);
QRadioButton *make_option(top_window *window, int control, QButtonGroup *group);
// A box around exclusive options, the first of them chosen.
QWidget *make_options(
	top_window *window, const QString &title, std::initializer_list<int> controls, int columns);

// Add a row whose label is the control's caption.
void add_row(QFormLayout *form, int window, int control, QWidget *field);
void add_to(QBoxLayout *layout, std::initializer_list<QWidget *> widgets);

// The windows, one a file.
void create_main_window();
// From when until when find_control makes the dialog that it looks for.
void let_dialogs_be_made(bool wanted);
void create_settings_dialog(QWidget *owner);
void create_sampler_dialog(QWidget *owner);
void create_usb_dialog(QWidget *owner);
void create_multi_window(QWidget *owner);
void create_progress_window(QWidget *owner);
void create_sample_manager(QWidget *owner);

// The log's text is kept here and painted a little later, so that logging stays cheap.
void set_log_text(const char *text);
std::string log_text();
void forget_log_text();

} // namespace velmor
