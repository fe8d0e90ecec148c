// parts.h - what the windows are made of: controls enrolled by window and id
//
// One function below makes each kind of control: it takes its words from the
// table of captions, enrolls it, and connects it to the commands of the system.
// A control without a command is not made; the makers then give null, and
// add_to leaves a null out.

#pragma once
#include "src/controls.h"
#include "ui/parts/icons.h"
#include "ui/parts/words.h"
#include <QString>
#include <functional>
#include <initializer_list>
#include <string>

class QBoxLayout;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QLayout;
class QLineEdit;
class QMenu;
class QPushButton;
class QRadioButton;
class QToolButton;
class QWidget;

namespace velmor
{

class entry_list;
class pixel_picture;
class told_label;
class top_window;

// Make this object findable, and give it its words.
void enroll(int window, int control, QObject *object);
QString caption_of(int window, int control);
// Where several controls of a window say the same, a screen reader is told which this is.
void tell_apart(QWidget *widget, const QString &among);

QPushButton *make_button(top_window *window, int control);
void make_entry(top_window *window, QMenu *menu, int control);
entry_list *make_list(top_window *window, int control);
QLineEdit *make_search(top_window *window, int control, entry_list *list);
// A field with a lens in it, of no id.
QLineEdit *make_search_field(QWidget *parent);
QLineEdit *make_field(top_window *window, int control);
told_label *make_text(top_window *window, int control);
// What came of something, beside the button that did it; it keeps its room.
told_label *make_verdict(top_window *window, int control);
QComboBox *make_choice(top_window *window, int control);
QRadioButton *make_option(top_window *window, int control, QButtonGroup *group);
// A group of exclusive options, the first of them chosen.
QWidget *make_options(
	top_window *window, const QString &title, std::initializer_list<int> controls, int columns);
QCheckBox *make_check(top_window *window, int control);
pixel_picture *make_picture(top_window *window, int control);
// Shows and hides a part of the window.
QToolButton *make_fold(QWidget *part, const QString &name, bool open, QWidget *parent);

// Above a list: its name, what its heading tells, and a button at the right, or null.
QLayout *make_heading(
	top_window *window, int list, int told, icon picture, QPushButton *button = nullptr);

// A small screen scrolls the window's content instead of losing its lower half.
QBoxLayout *scrolled_column(top_window *window);

// Add a row whose label is the control's caption.
void add_row(QFormLayout *form, int window, int control, QWidget *field);
void add_to(QBoxLayout *layout, std::initializer_list<QWidget *> widgets);
// The keys go through them in this order; a null is passed over.
void set_order(std::initializer_list<QWidget *> widgets);
// The foot of a dialog: the button that keeps, filled, and the one that leaves.
void add_closing_buttons(top_window *window);

// The windows, one a file.
void create_main_window();
// From when until when find_control makes the dialog that it looks for.
void let_dialogs_be_made(bool wanted);
// What is done to a dialog that nobody has asked for waits until it is made.
bool not_made_yet(int window);
void keep_for_later(int window, std::function<void()> work);
void create_settings_dialog(QWidget *owner);
void create_sampler_dialog(QWidget *owner);
void create_usb_dialog(QWidget *owner);
void create_multi_window(QWidget *owner);
void create_backup_window(QWidget *owner);
void create_self_test_window(QWidget *owner);
void create_panel_window(QWidget *owner);
void create_progress_window(QWidget *owner);
void create_sample_manager(QWidget *owner);
void create_program_manager(QWidget *owner);
void create_player_window(QWidget *owner);
void create_history_window(QWidget *owner);

// What waits to be sent is told beside the tabs, and fills the button that sends it.
void show_unsent(const QString &words);
// The page of a tab of the program manager.
void show_program_tab(int tab);
// Choices that name what the sampler does not hold are in the colour of what failed.
void mark_missing(QComboBox *box);

// True while the list of samplers is empty: the main window says how to begin.
void show_samplers_wanted(bool wanted);

// The log's text is kept here and painted a little later, so that logging stays cheap.
void set_log_text(const char *text);
std::string log_text();
// With what the text has let go of.
std::string whole_log_text();
void forget_log_text();

} // namespace velmor
