// velmor_midi.h - Standard MIDI Files: the tracks of one file, and playing them to the MIDI output
//
// Standard MIDI Files 1.0 gives a file as a head and chunks of events, each with the time since
// the one before it in parts of a quarter note that the head states. The reader brings all times
// to one grid of 960 ticks a quarter, so that the player compares nothing but absolute ticks.
//
// The player's time base is speed_factor ticks a second, which the user sets; tempo events are
// logged only. A timer of 10 ms sends what has come due. A send runs interface events until its
// bytes have left, so anything may happen inside one: Stop, another file, the next tick. Whoever
// waits in a send looks afterwards whether the song is still the one that it played.
//
// Main thread only. Knows nothing of: models, toolkits.

#pragma once
#include "src/velmor_outcome.h"
#include <memory>
#include <string>
#include <vector>

namespace velmor
{

inline constexpr int midi_grid = 960;       // ticks of a quarter note
inline constexpr int stack_room = 128;      // sounding notes of a track that are kept
inline constexpr int unforced_channel = 16; // forced_channel: as in the file
// What a file may hold: beyond it there is no song for a cable that carries about a thousand
// events a second, only memory.
inline constexpr u64 max_midi_image = 64 << 20; // bytes
inline constexpr int max_midi_events = 1000000; // of all tracks

enum midi_meta : int {
	no_meta = -1, // a channel or system event
	meta_track_name = 0x03,
	meta_instrument = 0x04,
	meta_text_last = 0x07, // 0x01 to here are texts
	meta_channel = 0x20,
	meta_port = 0x21,
	meta_end_of_track = 0x2F,
	meta_tempo = 0x51,
	meta_time_signature = 0x58,
	meta_key_signature = 0x59,
	meta_sequencer = 0x7F,
};

struct _midi_event {
	u64 absolute_time = 0; // ticks from the track's start
	u64 delta_time = 0;    // ticks since the event before
	std::unique_ptr<u8[]> data;
	int data_len = 0; // bytes of data
	int meta_type = no_meta;
	int meta_sub_type = -1; // the length byte of a meta event that has a fixed length

	bounded_bytes bytes() const
	{
		return { { data.get(), static_cast<std::size_t>(data ? data_len : 0) } };
	}
};

// What a track has sounding.
struct _midi_stack {
	int event_id; // its place in the track
	int type;     // 1, a note
	int channel;  // 0 to 15, as in the file
	int controller;
	int original_event_len; // bytes of original_event
	u8 original_event[16];
	int pitch;
};

// What the page shows of a track beyond the track itself (velmor_midi_tracks.cpp).
struct _track_display {
	int current_brush = -1;    // a track_colour; -1: none was shown
	std::string the_trackname; // its last name event; "": none was played
	std::string the_info;      // where play_track is
};

struct _midi_track {
	int volume = 127;
	int detected_channel = 0; // of the last event played
	int forced_channel = unforced_channel;
	int events = 0;                        // of event
	int takt_nenner = 4, takt_zaehler = 4; // the bar: its denominator and numerator
	int takt_len = 0;                      // parts of the file's division in a bar
	std::vector<_midi_event> event;
	_track_display display;
	int is_running = 0, is_mute = 0, is_finished = 0;
	int last_event = -1; // played last
	int redraw = 0;
	int stacks = 0;                 // entries used of stack
	std::vector<_midi_stack> stack; // none, or stack_room of them
};

struct _midif {
	char name[1024] = {}; // its path
	int format = 0, ntrks = 0;
	int division = 0; // as in the head
	int parent_window = 0;
	std::vector<_midi_track> track;
	// Counted while it is read.
	int all_events = 0;
	u64 all_data = 0; // bytes of those events whose length stands in the file
};

// The loaded file. Changed by open_midi_file and free_midi.
extern _midif current_midi_file;
extern int have_midi_file;

// ---- The reader (velmor_midi.cpp) --------------------------------------------------------------

// Load a file in place of the loaded one, which stops playing first: 1, or 0 where there is none
// then. What the file lacks reads as zeros.
int open_midi_file(int window, const char *path);
// Read the chunk at *offset, and move *offset behind it: 1, or 0 where it is no track or holds
// what cannot be read.
int read_midi_track(
	_midif *file, _midi_track *track, const bounded_bytes &data, std::size_t *offset);
// A number of one to four bytes; *_length is how many.
u32 read_midivar(const bounded_bytes &bytes, int *_length);
u32 read_midi32bit(const bounded_bytes &bytes);
u16 read_midi16bit(const bounded_bytes &bytes);
// Stop the file if it plays, and give its tracks back.
void free_midi(_midif *file);

// ---- The player (velmor_midi_player.cpp) -------------------------------------------------------

inline constexpr int slowest_speed = 300, fastest_speed = 1800;
extern int speed_factor;     // ticks a second; set by the page
extern _midif *timer_mid;    // the file being played, or null
extern int timer_is_busy;    // 1 while a tick is being handled
extern u64 playing_position; // ticks: of the last event sent
extern u64 player_position;  // ticks: reached at the last tick
// What play_track shall do. Set by the page.
enum : int {
	track_paused = -1,
	track_stopped = 0,
	track_plays = 1,
};
extern int play_the_file;

// Play a file from its start. An output that cannot be opened ends the process.
void play_really_all(int window, _midif *file);
// The timer's tick.
void timer_playback();
// Stop, and let go of all notes on the first 15 channels. Harmless when nothing plays.
void stop_really_all(int window);
// Stop this file if it plays, and make whatever waits in a send for it give up.
void stop_midi_file(const _midif *file);
// True from play_really_all to the song's end.
bool song_plays();
// Play one track, event by event, without its times.
void play_track(int window, _midif *file, int track);

// Play one event. True: the port failed, and *why has the words. The file may be gone afterwards.
bool send_midi_event(int window, _midif *file, int track, int event, outcome *why);
void stack_midi_event(_midif *file, int track, int event);
void remove_midi_event(_midi_track *track, int index);
// "[0] ORIG.ID: 12, CHANNEL: 1, PITCH: 60 (C3)"
std::string get_stack_string(const _midi_track *track, int index);
// Send bytes on the MIDI output, opened if need be, and run the interface until they have left.
// True: the port failed, and *why has the words.
bool play_midi_data(const u8 *data, int length, outcome *why);
// "" where sampler work over MIDI may use the output; otherwise that the player has it, a
// sentence.
std::string why_output_is_taken();
// As at the start of the program; for tests.
void forget_midi_player();

// ---- Its tracks on the page (velmor_midi_tracks.cpp) -------------------------------------------

// Show the state of one track: called for each that has redraw set, at most once a tick.
void display_track(_midif *file, int track);
// Show all tracks of a file that was loaded.
void show_midi_tracks(_midif *file);
// The file is about to be freed: nothing may show it any more.
void remove_midi_tracks(_midif *file);
// Where the song is, after each tick; negative: nowhere.
void show_midi_position(std::int64_t ticks);

} // namespace velmor
