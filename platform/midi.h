// midi.h - MIDI ports of the host: any run of bytes out, an armed buffer or a listener in
//
// An exchange arms a buffer of its own for one answer. A listener runs on, for the monitor and
// for a dump that is one long message. Both may be there at once, on one port too: each opens
// the input for itself and gets every byte.
//
// Called by the System Exclusive exchange. Results of type int are 0 for
// success, otherwise a code for which error_text has words. All functions are
// called on the main thread; only the functions given to on_arrival and pass_on are
// called from other threads.

#pragma once
#include <cstddef>

namespace velmor
{

// What is known of the message that an input is in the middle of.
struct midi_sorter {
	unsigned char message[3] = {};
	unsigned char count = 0;  // bytes of it so far
	unsigned char status = 0; // for data bytes without one; 0: none is known
	bool exclusive = false;   // inside a System Exclusive message
	bool lost = false;        // data bytes come that belong to nothing
};
// Takes the next byte of an input. Gives how many bytes of message, 0 to 3, are to be passed on
// now. Touches nothing but its arguments: it runs on the thread that reads.
using midi_judge = int (*)(midi_sorter *sorter, unsigned char byte, unsigned char *message);

struct midi_service {
	// Number of ports now. Ports are named by their place in the list, so a change of
	// hardware shifts them. Listing again happens inside these two.
	int (*outputs)();
	int (*inputs)();
	// Name of port index, in a static buffer that the next call overwrites; "" if there is none.
	const char *(*output_name)(int index);
	const char *(*input_name)(int index);

	// Open an output. Index -1 is the first one listed.
	int (*open_output)(int index, int *handle);
	// Hand over a run of bytes, whole messages or parts of one. The bytes are copied.
	// A short write is a failure, never silence.
	int (*write)(int handle, const unsigned char *bytes, std::size_t count);
	// Bytes written that have not left yet; 0 when all are out, negative when the port failed
	// (the code is minus the result).
	long (*leaving)(int handle);
	void (*close_output)(int handle);

	// Open an input; index -1 fails. Nothing is received before it is armed or listens.
	int (*open_input)(int index, int *handle);
	// Receive every byte that comes into buffer, at most capacity bytes, from now until disarm
	// or close_input. What exceeds the capacity is dropped.
	int (*arm)(int handle, unsigned char *buffer, std::size_t capacity);
	// Bytes in the armed buffer at this moment.
	std::size_t (*received)(int handle);
	// Instead of arm: keep every byte that comes from now on, until disarm or close_input, and
	// hand them over in their order. At most room bytes are kept; a listener that is not asked
	// in time has lost the rest, which input_error says.
	int (*listen)(int handle, std::size_t room);
	// Take the oldest bytes kept, at most capacity of them. Gives back how many.
	std::size_t (*take)(int handle, unsigned char *bytes, std::size_t capacity);
	// 0, or the code of what went wrong since arm or listen: an overrun, a port that vanished.
	int (*input_error)(int handle);
	// Beside listen, until disarm or close_input: give each byte that comes to judge, and what
	// it says to the output, at once and on the thread that reads. What would fall into a System
	// Exclusive message that is written in parts waits for its end, unless it is real time.
	// Output -1 ends it, as does closing the output.
	int (*pass_on)(int handle, int output, midi_judge judge) = nullptr;
	void (*disarm)(int handle);
	void (*close_input)(int handle);

	// wake is called, from any thread, whenever bytes arrived, left, or a port failed.
	void (*on_arrival)(void (*wake)());
	// Words for a code, in a static buffer that the next call overwrites; never null.
	const char *(*error_text)(int code);
};

} // namespace velmor
