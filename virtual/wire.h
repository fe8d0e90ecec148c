// wire.h - a MIDI cable pair between a host and one machine, with its faults
//
// A byte takes 320 us at 31250 baud, ten bits with its start and stop, in each
// direction on its own. The machine begins to answer its latency after the last
// byte of a message has reached it. No byte is an event: what has left and what has
// arrived is worked out from the time, and the timeline holds one event for the end
// of each run of bytes.
//
// Called by the virtual MIDI ports and by the TCP server, from the main thread; the
// timeline calls the machine. Safe between those two. A machine must outlive its
// wire, and a timeline in real time must be stopped before either goes.
//
// Example, with a test_host h:
//
//	s1000_machine machine(s1000_model::s3000, 5);
//	midi_wire wire(h.time, machine.on_wire());
//	wire.set_fault({ .kind = wire_fault_kind::truncated, .exchange = 3 });
//
// Knows nothing of: what the messages mean.

#pragma once
#include "virtual/akai_codec.h"
#include "virtual/timeline.h"
#include <functional>
#include <memory>
#include <string_view>

namespace velmor
{

// A machine as its cable sees it. Each function is handed one whole exclusive message,
// F0 to F7, and gives back what the machine sends: nothing, or whole messages.
struct midi_machine {
	std::function<machine::bytes(machine::byte_view)> answer;
	// The same, by a machine that will not do it and changes nothing.
	std::function<machine::bytes(machine::byte_view)> refuse;
	// What the machine sends first when its answer will take a while.
	std::function<machine::bytes(machine::byte_view)> wait;
	// For a machine that answers inside a message of many kilobytes: the bytes that have
	// reached it since the last call, of a message that has not ended, and the place of the
	// first of them in the message. No bytes at place 0: the message was broken off. Each
	// call is an exchange of its own to the faults; one that is lost or refused takes its
	// bytes out of the message.
	std::function<machine::bytes(std::size_t, machine::byte_view)> part = {};
	// What reaches it beside exclusive messages: notes, what they are played with, real time.
	std::function<void(machine::byte_view)> played = {};
	// In place of all that: a cable from the output to the input. What comes back of bytes as
	// they come.
	std::function<machine::bytes(machine::byte_view)> loop = {};
};

// A cable from an output to the input of the same interface.
midi_machine loop_cable();

// What an interface does to bytes on their way to the cable.
struct interface_faults {
	unsigned lose_every = 0, double_every = 0; // the nth byte of all
	unsigned turn_every = 0;                   // a bit of it
	// Bytes that it holds until they are on the cable. What does not fit is lost, and the host
	// is told at once that all have left. 0: any number, as the host is told.
	std::size_t room = 0;
	double late = 0;   // seconds, of what comes back
	bool dead = false; // nothing does
};

// Machines on one cable, in order: what one of them does not answer is for the next.
midi_machine on_one_cable(std::vector<midi_machine> machines);

struct wire_settings {
	double byte_time = 320e-6; // seconds a byte; 0 for no wire delay
	double latency = 0.003;    // seconds from the end of a message to the first answer bit
};
inline constexpr wire_settings no_wire_delay = { .byte_time = 0, .latency = 0 };

enum class wire_fault_kind {
	silent,         // the message is lost; nothing comes back
	slow,           // the answer comes so many seconds late
	truncated,      // the second half of the answer is lost
	garbled,        // data bytes arrive wrong; the length is right
	wrong_function, // byte [3] of the answer is one that nothing uses
	wait_first,     // the machine asks to wait, and answers so many seconds later
	refused,        // the machine says no: NAK in a dump, an error to its own messages
	stray_bytes,    // two data bytes of no message come before the answer
	active_sensing, // FE comes before the answer
	overrun,        // bytes from the middle of the answer are lost, and the port says so
	unplugged,      // the cable is pulled in the middle of the answer
};

struct wire_fault {
	wire_fault_kind kind;
	int exchange = 1;          // 1 is the next message to the machine after set_fault
	bool from_then_on = false; // and all that follow
	double seconds = 1;        // slow, wait_first
};

// "silent", "slow:3", "slow:3+", "slow:1:2.5": kind, exchange, seconds; '+' for from then
// on. false when the text says no such thing.
bool read_wire_fault(std::string_view text, wire_fault *fault);
// The kinds by name, with blanks between.
std::string wire_fault_names();

class midi_wire
{
public:
	midi_wire(timeline &time, midi_machine machine, wire_settings settings = {});

	void set_settings(wire_settings settings);
	// Faults add up; the one set first wins an exchange.
	void set_fault(wire_fault fault);
	void clear_faults();
	void set_interface(interface_faults faults);

	// Put bytes on the wire behind those still leaving. Any run, also parts of a message.
	void send(machine::byte_view run);
	// Bytes that the machine sends unasked, as a keyboard does: from any thread.
	void play(machine::bytes run);
	// Bytes sent that have not left yet.
	std::size_t leaving() const;

	// Somebody who listens from now on, until detach.
	int attach();
	void detach(int reader);
	// Bytes that have arrived by now and were not taken yet, at most room of them.
	std::size_t take(int reader, std::uint8_t *out, std::size_t room);
	// Times that bytes were lost on this side since the beginning.
	int overruns() const;

	// Pull the cable: what was on its way is lost, and nothing goes any more.
	void unplug();
	bool unplugged() const;

	// Called, mostly on the thread of the timeline, when bytes have arrived or left, and
	// when the cable was pulled.
	void on_change(std::function<void()> what);

private:
	struct line;
	std::shared_ptr<line> state;
};

} // namespace velmor
