// velmor_monitor.h - what arrives on a MIDI input: told in words and passed on; test notes
//
// The monitor listens beside everything else that the program does. What comes goes on to the
// output at once, on the thread of the port; the words for it follow on the main thread, in
// portions, so that no flood holds up the windows.
//
// Main thread only. Knows nothing of: models, toolkits.

#pragma once
#include "src/velmor.h"

namespace velmor
{

// What can be told of an input, by the numbers that Windows gives it.
enum midi_message : int {
	MIM_OPEN = 961,
	MIM_CLOSE = 962,
	MIM_DATA = 963,
	MIM_LONGDATA = 964,
	MIM_ERROR = 965,
	MIM_LONGERROR = 966,
	MOM_OPEN = 967,
	MOM_CLOSE = 968,
	MOM_DONE = 969,
	MIM_MOREDATA = 972,
};

// The monitor runs while this is not 0.
extern int receive_monitor_active;
// Fields of the sampler dialog that show the chosen ports; 0 where there is none.
extern int midi_in_text, midi_out_text;

// Run the monitor from now on, until receive_monitor_active is cleared; a second one is not begun.
void receive_monitor();
// Hand the port what it passes on by once more: the host's tables have changed.
void renew_monitor();
// As "Mon. off", with everything told that came before.
void end_monitor();
// Tell of one thing that came; the bytes of a short message are in dwParam1, the first lowest.
void midiCallback(int dev, int msg, u32 dwInstance, u32 dwParam1, u32 dwParam2);
// A message of three bytes in words, in one static buffer.
const char *display_midi_command(const u8 *cmd);
// The next byte of an input. Gives the length of the message that it completes, 0 for none, and
// a midi_message for what is to be told before it, or 0. Whole messages have their status byte.
int sort_midi_byte(midi_sorter *sorter, u8 byte, u8 *message, int *told);

// Show the name of a port, counted from 1; 0 is none.
void update_midi_in(int index);
void update_midi_out(int index);
void show_chosen_ports();

// status is 0x90 or 0x80; channel counts from 1.
void send_note(int channel, u8 status, int note, int velocity);
// The buttons of the sampler dialog.
void fill_note_lists();
void test_note_on();
void test_note_off();
void all_test_notes_off();
// End what sounds still.
void end_test_notes();
void monitor_on();
void monitor_off();

// For tests.
void forget_monitor();

} // namespace velmor
