// player_window.h - a Standard MIDI File, its tracks, and playing it

#pragma once

class QWidget;

namespace velmor
{

void create_player_window(QWidget *owner);

} // namespace velmor
