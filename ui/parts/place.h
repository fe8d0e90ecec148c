// place.h - where the windows stand: remembered in the settings, and on a screen in any case
//
// A setting "window_<id>" holds numbers: left, top, width, height, 1 for maximized, and after them
// the sizes of what splitters divide. A place that no screen shows any more is not used.

#pragma once
#include <QRect>

namespace velmor
{

class top_window;

// Put a window that is about to be shown where it stood last; one that has not been anywhere
// stands beside the main window.
void restore_place(top_window *window);
void remember_place(const top_window *window);
// A number that a window keeps; -1 where there is none.
int kept_setting(const char *name);
void keep_setting(const char *name, int value);
// Of all windows that are shown, before the program ends.
void remember_places();

// Where a window of that size stands beside another on a screen, over as little of it as can be.
QRect beside(const QRect &other, const QSize &size, const QRect &screen);

} // namespace velmor
