// transcript_midi.h - a MIDI port that plays what was written down
//
//	transcript_midi t(h, R"(
//		# who is there
//		> F0 47 00 00 48 F7
//		< F0 47 00 01 48 00*4 F7
//		# half a message, the rest later, then silence
//		> F0 47 00 .. 48 F7
//		< F0 47 00
//		< @0.5 01 F7
//		> F0 47 00 02 48 F7
//		< nothing
//	)");
//
// `>` must be sent, byte by byte; `..` is any byte; `00*384` repeats; `#` names
// the steps under it in a failure. `<` comes 1 ms, or `@` seconds, after the message
// has left the wire (31250 baud) or after the answer before it, whole at once. Answers
// at the start of the transcript count from the moment an input is first armed or listens. Bytes
// that come while no input does are lost, as on a wire.
//
// Installs itself as input 0 and output 0, and chooses both. What is sent and
// not written down, and what is written down and never sent, fails the test.

#pragma once
#include "tests/support/test_host.h"
#include <memory>

namespace velmor
{

// Codes that a port answers on purpose; 0 is none.
struct port_faults {
	int open_output = 0, write = 0, leaving = 0;
	int open_input = 0, arm = 0, input = 0; // input: what input_error says
	bool stuck = false;                     // bytes never leave
};

class transcript_midi
{
public:
	transcript_midi(test_host &h, std::string_view script);
	~transcript_midi();
	transcript_midi(const transcript_midi &) = delete;

	// True when every message was sent and every answer has come.
	bool finished() const;

	port_faults faults;
	int outputs_opened = 0, outputs_open = 0;
	int inputs_opened = 0, inputs_open = 0;

	// The service's side.
	int write(std::span<const u8> bytes);
	long leaving() const;
	void arm(u8 *buffer, std::size_t capacity);
	void disarm() { armed = {}; }
	std::size_t received = 0;
	// A listener is an input of its own, opened beside the one that exchanges arm.
	void listen(int handle);
	void close_input(int handle);
	std::size_t take(int handle, u8 *bytes, std::size_t capacity);
	void (*wake)() = nullptr;

private:
	struct step {
		bool sent;              // otherwise it comes
		std::vector<int> bytes; // -1: any
		double delay;
		std::string name;
	};

	void read_line(std::string line, std::string *name);
	void send_byte(u8 byte);
	void schedule_answers(double from);
	void deliver(const std::vector<int> &bytes);
	void fail(const std::string &what);

	test_host &owner;
	const midi_service *before;
	std::vector<step> steps;
	std::size_t at = 0;     // step under way
	std::size_t sent = 0;   // bytes of it
	std::size_t coming = 0; // answers scheduled and not yet there
	double wire_free = 0;   // when the last byte written has left
	bool broken = false;
	std::span<u8> armed;
	std::map<int, std::vector<u8>> heard;    // by listeners
	std::shared_ptr<transcript_midi *> self; // outlives this in events
};

// A block as it travels: two bytes of nibbles for each of its bytes, and blanks around each.
std::string nibbles(std::string_view block);

} // namespace velmor
