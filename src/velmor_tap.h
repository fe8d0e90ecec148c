// velmor_tap.h - the recorder's place in front of the host's services
//
// Each service has a table that passes every call on and tells here what crossed. While nobody
// wants to know, the host has its own tables.
//
// Main thread only. Knows nothing of: files, what the bytes mean.

#pragma once
#include "src/velmor.h"
#include "src/velmor_transcript.h"
#include <span>

namespace velmor
{

// A table of the host, and the one in front of it.
template <typename service> struct wrapping {
	const service **slot;
	const service *real = nullptr;
	service table = {};

	bool is_in() const { return *slot == &table; }
	void put_in(void (*wrap)())
	{
		if (!*slot || is_in())
			return;
		real = *slot;
		table = *real;
		wrap();
		*slot = &table;
	}
	void take_out()
	{
		if (is_in())
			*slot = real;
	}
};
// The services, in velmor_tap_<line>.cpp.
struct tapped_line {
	void (*put_in)();
	void (*take_out)();
	bool (*is_in)();
};
extern const tapped_line tapped_midi, tapped_net, tapped_usb;

// ---- What the tables tell ---------------------------------------------------------------------

void tap_bytes(wire_line line, bool sent, std::span<const u8> bytes, double moment);
void tap_bytes(wire_line line, bool sent, std::span<const u8> bytes); // now
void tap_event(crossing c);                                           // whole; its time is now
void tap_note(const std::string &words);
// A note that is true until another one of its kind comes.
void tap_state(const char *kind, const std::string &words);
void tap_forget_state(const char *kind);
// What another thread has kept; of the MIDI ports.
void tap_passed();

// ---- Who wants to know --------------------------------------------------------------------------

// The file that is written; null: none.
extern void (*tap_record)(const crossing &c);
bool tap_is_in();
// The event under way ends, and what is noted from now on is told anew.
void tap_begin();
void tap_flush();
// Out of the way, if nobody is there.
void tap_leave_if_idle();

// A port's own words, or none.
std::string words_or_none(const char *words);

} // namespace velmor
