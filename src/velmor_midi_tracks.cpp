// velmor_midi_tracks.cpp - the tracks of a MIDI file on the player's page
//
// Knows nothing of: files, timing, toolkits.

#include "src/velmor_midi.h"

namespace velmor
{

void display_track(_midif *, int) {}

void show_midi_tracks(_midif *) {}

void remove_midi_tracks(_midif *) {}

void show_midi_position(std::int64_t) {}

} // namespace velmor
