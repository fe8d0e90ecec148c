// s900.h - an S900 or S950
//
// Holds programs, keygroups and samples in the machine's own bytes: 38 to a program, 70 to
// each of its keygroups, 60 to a sample header, and words of 12 bits. A byte travels as
// two, its low seven bits and its top bit. The frames are
//
//	F0 47 cc 02 40 nn 00 F7     program?     F0 47 cc 0A 40 nn 00 pairs xx F7
//	F0 47 cc 03 40 00 00 F7     catalogue?   F0 47 cc 0B 40 00 00 entries F7
//	F0 47 cc 04 40 nn 00 F7     header?      F0 47 cc 0C 40 nn 00 pairs xx F7
//	F0 47 cc 05 40 00 00 F7     common exclusive on, and 06 off
//	F0 47 cc 0A .. F7           writes a program, F0 47 cc 0C .. F7 a header
//
// where nn is the machine's own number of a program or sample, xx the exclusive-or of the
// pairs, and an entry "P" or "S", the number, and ten characters. A program of 2 keygroups
// takes 85 + 280 bytes, a header 129.
//
// The sample dump has no channel. Only a machine whose common exclusive is on hears it, so
// that one of several on a cable can be meant, and a standard dump to another is not
// mistaken for it:
//
//	F0 7E 00 nn 00 F7           dump?
//	F0 7E 7F F7                 go on
//	F0 7E 01 nn 00 0C period*3 words*3 start*3 end*3 loop     the dump: a head,
//	kk data*120 xx              its blocks of 60 words,
//	F7                          and the end
//
// What the machine does where only the host's side of a conversation is known:
//
//	- It has no word for no. What is not for it, has a wrong length, checksum or pair, or
//	  asks for something that does not exist or has no room, gets no answer and changes
//	  nothing. Writing and common exclusive get none either when they are done.
//	- With omni on it hears every channel; it answers on its own.
//	- Asked for a dump it sends the head and stops. Each "go on" brings one block and, after
//	  the last block, the end. Another request begins anew; any other frame for the machine
//	  breaks the dump off.
//	- Taking a dump it says "go on" after the head and after each block that is right. A
//	  block with a wrong number or checksum, a head that promises what does not fit, and a
//	  block or an end that comes before the last one is put away spoil the dump: it says
//	  nothing more, and the memory stays as it was. So does a dump that breaks off.
//	- A dump to a number that exists replaces its words and loop and keeps the rest of its
//	  header; to any other number it makes a new sample, which the machine names.
//	- A program written to a number that does not exist is created.
//
// Called by a wire, on the thread of the timeline. Contents are set up before it is
// plugged in, or in virtual time at any moment.
// Knows nothing of: wires, ports, the system under src/.

#pragma once
#include "virtual/wire.h"
#include <deque>
#include <optional>
#include <string>

namespace velmor
{

enum class s900_model {
	s900,
	s950,
};

// "s900" and "s950", as the command line has it.
bool read_s900_model(std::string_view text, s900_model *model);

struct s900_program {
	std::uint8_t number;
	machine::bytes common;
	std::vector<machine::bytes> keygroups;
};

struct s900_sample {
	std::uint8_t number;
	machine::bytes header;
	std::vector<std::int16_t> words; // -2048 to 2047
};

class s900_machine
{
public:
	explicit s900_machine(s900_model model, std::uint8_t channel = 0);

	// What the machine sends for one whole message; empty for nothing.
	machine::bytes answer(machine::byte_view message);
	// The same for bytes of a message that has not ended; at is the place of the first.
	machine::bytes part(std::size_t at, machine::byte_view fresh);
	// From then on it needs its time: what comes too fast is lost.
	midi_machine on_wire(timeline &time);

	// Contents.
	std::vector<s900_program> programs;
	std::vector<s900_sample> samples;
	std::uint8_t channel;
	bool omni = false;
	bool common_exclusive = false;
	// False: it is never too busy, whatever the pace.
	bool takes_time = true;
	// Words, keygroups of all programs, and numbers of programs and of samples.
	std::size_t word_room, keygroup_room, number_room;
	// The whole messages that reached it, with those it did not take; the last thousand.
	std::deque<machine::bytes> heard;

	std::size_t words_free() const;
	std::size_t keygroups_free() const;

	// As the machine makes them on its own panel, with the lowest free number. Levels
	// beyond 12 bits are cut off.
	machine::bytes new_keygroup() const;
	s900_sample &add_sample(
		std::string_view name, unsigned rate, std::vector<std::int16_t> words);
	s900_program &add_program(std::string_view name, std::size_t keygroups);
	// From the first word up to the last, which is the first again.
	static void set_loop(s900_sample &sample, std::uint32_t first, std::uint32_t last);
	// Ten characters from a place in a block: capitals, blanks behind the text. And back,
	// without the blanks.
	static void put_name(machine::bytes &block, std::size_t at, std::string_view text);
	static std::string get_name(machine::byte_view block, std::size_t at);

private:
	using view = machine::byte_view;
	using bytes = machine::bytes;
	enum header_place {
		header_length = 16,
		header_rate = 20,  // words a second
		header_pitch = 22, // sixteenths of a semitone
		header_mode = 26,
		header_end = 28,
		header_loop_start = 32,
		header_loop_length = 36,
	};
	static constexpr std::uint8_t one_shot = 'O', looping = 'L', alternating = 'A';
	struct function_row;
	static const function_row function_rows[];

	// Length, rate and mode of what the words are now, not looped.
	static void describe(s900_sample &sample, unsigned rate);
	bool for_me(view message) const;
	s900_program *program_of(std::uint8_t number);
	s900_sample *sample_of(std::uint8_t number);
	bytes data_message(std::uint8_t function, std::uint8_t number, view block) const;

	bytes give_program(view message);
	bytes give_catalogue(view message);
	bytes give_header(view message);
	bytes take_program(view message);
	bytes take_header(view message);
	bytes common_on(view message);
	bytes common_off(view message);

	// Dumps (s900_dump.cpp).
	struct dump_out {
		std::uint8_t number;
		std::size_t block; // the next one
	};
	struct dump_in {
		std::size_t taken = 0; // bytes of the message so far
		bytes unread;          // of the head or block under way
		bool begun = false;    // the head is there
		bool spoiled = false;
		double ready = 0; // moment from which it can take more
		std::uint8_t number = 0;
		std::uint32_t rate = 0, length = 0, loop_start = 0, loop_end = 0;
		bool looped = false;
		std::size_t block = 0; // the next one
		std::vector<std::int16_t> words;
	};
	std::optional<dump_out> sending;
	std::optional<dump_in> receiving;

	bytes dump_message(view message);
	bytes begin_sending(view message);
	bytes go_on();
	bytes dump_head(const s900_sample &sample) const;
	bytes hear_dump(dump_in &d, view fresh);
	bool take_head(dump_in &d, view head) const;
	bool take_block(dump_in &d, view block) const;
	void finish_dump(dump_in &d);
	void busy_for(dump_in &d, double seconds) const;
	bool early(double ready) const;

	std::function<double()> clock;
	double deaf_until = 0;
	const s900_model model;
};

} // namespace velmor
