// first_start.h - the two ways to a first sampler, where none is set up yet

#pragma once

class QWidget;

namespace velmor
{

class top_window;

// Shown as long as the list of samplers is empty (show_first_start).
QWidget *make_first_start(top_window *window);
void show_first_start(bool wanted);

} // namespace velmor
