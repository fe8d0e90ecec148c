// velmor_player.h - the player's page: what its two files know of each other
//
// Main thread only. Knows nothing of: toolkits.

#pragma once
#include "src/velmor_window.h"

namespace velmor
{

// What stands over the tracks, and which buttons work: after another file, speed or port.
void show_player();
// "0:18.2" of so many ticks at the speed chosen.
std::string song_time(std::uint64_t ticks);
// Ticks to the end of the longest track of the loaded file.
std::uint64_t song_length();

// The step mode: one track, event by event. No button offers it yet.
enum player_step_control : int {
	player_pause = 9112, // or continue
	player_play_track = 9113,
	player_stop_track = 9114,
};
// The track whose frame was used last.
int chosen_track();

// What is done in the frame of a track.
bool midi_class_proc(track_event event, int track, int value);
void forget_midi_tracks();

} // namespace velmor
