// qt_ui.h - the windows of the program in Qt
//
// A program installs qt_ui as its ui service, makes a QApplication, creates the
// windows, starts the system and runs the loop.

#pragma once
#include "platform/ui.h"
#include <QObject>

class QWidget;

namespace velmor
{

extern const ui_service qt_ui;

// Make the main window, hidden, and the dialogs as they are needed. Once, after the
// QApplication.
void create_windows();
// Forget them again; for tests, which make them anew.
void destroy_windows();
// Show the main window and run until the process ends.
int run_windows();
// End the program from outside, on the main thread: work ends at its next safe point, nobody is
// asked, and the rest is that of the menu's Exit.
void end_windows();

// The window (control 0), widget or menu entry of that id, or null. Makes its dialog if need be.
QObject *find_control(int window, int control);
// The same as a widget, or null.
QWidget *find_widget(int window, int control);

} // namespace velmor
