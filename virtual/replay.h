// replay.h - a sampler that answers as one did in a transcript
//
// A transcript is a text of events: what was sent to a sampler (>), what came from it (<), and
// when. docs/transcripts.md tells the format. What is asked here as it was asked there is
// answered as it was answered there, as late as then.
//
// Strict: the first byte that was not sent then ends it, and is remembered. Otherwise a message
// that was not next is looked for further on, and from the beginning again.
//
//	replay_sampler then(text);            // then.wrong() is "" if it could be read
//	const int port = plug_midi(time, then.on_wire(time, [&](machine::bytes late) {
//		port_wire(port).play(late); }), "then");
//
// Knows nothing of: the system under src/, what the bytes mean.

#pragma once
#include "virtual/usb_machine.h"
#include "virtual/wire.h"
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmor
{

// An answer, so many seconds after the end of what it answers.
struct replay_answer {
	double delay;
	usb_message message;
};
struct replay_step {
	machine::bytes heard;
	std::vector<replay_answer> answers;
	double begins, ends; // when it was sent
	int row;             // of the file
};

// The first byte that was sent otherwise than then.
struct replay_parting {
	int row;        // of the file, 0: behind its end
	double time;    // then, in seconds
	std::size_t at; // place in the step
	int then, now;  // the bytes, -1: none
	std::string words() const;
};

class replay_script
{
public:
	explicit replay_script(std::string_view text, bool strict = true);

	// "", or what cannot be read, a sentence.
	const std::string &wrong() const { return failure; }
	bool on_usb() const { return usb; }
	std::uint16_t vendor = 0, product = 0;

	// The next bytes to the machine; ended says that a message ends with them.
	std::vector<const replay_answer *> hear(machine::byte_view bytes, bool ended);
	const std::optional<replay_parting> &parted() const { return parting; }
	// Steps that have not been heard.
	std::size_t left() const { return steps.size() - next; }
	// Messages that stand nowhere in it.
	int unknown() const { return strangers; }

private:
	void make_steps(const std::vector<struct replay_event> &events);
	void add_heard(const struct replay_event &event);
	void add_answer(const struct replay_event &event);
	void part_at(int now);
	bool find_message();

	std::vector<replay_step> steps;
	std::string failure;
	const bool strict;
	bool usb = false, goes_on = false; // the last answer on the USB
	std::size_t next = 0, fed = 0;     // step, and bytes of it that were heard
	machine::bytes message;            // heard since one ended
	bool lost = false;                 // it is not the next one
	int strangers = 0;
	std::optional<replay_parting> parting;
};

// On a MIDI wire, or behind the TCP server.
class replay_sampler : public replay_script
{
public:
	using replay_script::replay_script;
	// later puts bytes on the wire that come after a pause.
	midi_machine on_wire(timeline &time, std::function<void(machine::bytes)> later);

private:
	machine::bytes hear_now(timeline &time, machine::byte_view bytes, bool ended,
		const std::function<void(machine::bytes)> &later);
	std::size_t taken = 0; // bytes of the message under way that were heard in parts
};

// On the USB.
class replay_usb : public usb_machine, public replay_script
{
public:
	explicit replay_usb(std::string_view text, bool strict = true);

protected:
	std::size_t message_size(std::span<const std::uint8_t> come, bool ended) const override;
	void handle(std::span<const std::uint8_t> message) override;
};

} // namespace velmor
