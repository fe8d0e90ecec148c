// wave_editor.h - the picture of a local sample, with what moves it and what changes the sample

#pragma once

class QWidget;

namespace velmor
{

class top_window;

QWidget *make_wave_editor(top_window *window, QWidget *parent);

} // namespace velmor
