// s1000.h - a sampler of the S1000 family: S1000, S2000, S2800, S3000
//
// Holds programs, keygroups and samples in the machine's own bytes, 150 to a block on
// the S1000 and 192 on the later ones, and answers exclusive messages as the machine
// does. It reads strictly:
//
//	- a frame on another channel, of another maker or family, or of a function the
//	  machine does not know, is not for it and gets no answer;
//	- a frame for it that has the wrong length, data that are no nibbles, a block of the
//	  wrong kind, or an index that does not exist, is refused with
//	  F0 47 cc 16 48 01 F7 and changes nothing. Done is F0 47 cc 16 48 00 F7;
//	- so is a sample header that cannot be that of its sample: another length, a name
//	  outside the alphabet, a note or playback mode that there is not, a start, end or
//	  loop behind its words;
//	- a dump is read packet by packet: right is 7F, wrong checksum, length or packet
//	  number 7E, no room or no dump under way 7D.
//
//	F0 47 cc 00 48 F7                       status?       F0 47 cc 01 48 .. F7, 21 bytes
//	F0 47 cc 02 48 F7                       programs?     F0 47 cc 03 48 nn nn names F7
//	F0 47 cc 04 48 F7                       samples?      F0 47 cc 05 48 nn nn names F7
//	F0 47 cc 06 48 pp pp F7                 program?      07, which also writes it
//	F0 47 cc 08 48 pp pp kk F7              keygroup?     09, which also writes it
//	F0 47 cc 0A 48 ss ss F7                 header?       0B, which also writes it
//	F0 47 cc 0C 48 ss ss oo*4 nn 0*3 1 1 F7 words?        F0 7E cc 02 .. F7, 127 bytes
//	F0 47 cc 12 48 pp pp F7                 delete program
//	F0 47 cc 13 48 pp pp kk F7              delete keygroup
//	F0 47 cc 14 48 ss ss F7                 delete sample
//	F0 7E cc 01 .. F7                       dump header, 21 bytes, then packets of 127
//
// A program written behind the last one is created, with as many keygroups of the
// machine's own making as its block says; a keygroup written behind the last one is
// added. A dump to the number behind the last sample makes a new one. A program that is written
// to the place of the one deleted by the message before it is created there, in front of those
// that stood behind, unless the machine closes such gaps at once.
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

enum class s1000_model {
	s1000,
	s2000,
	s2800,
	s3000,
};

// "s1000" and so on, as the command line has it.
bool read_s1000_model(std::string_view text, s1000_model *model);

struct stored_program {
	machine::bytes common;
	std::vector<machine::bytes> keygroups;
};

struct stored_sample {
	machine::bytes header;
	std::vector<std::int16_t> words;
};

// Loop from first to last word for as long as the key is held.
void set_loop(stored_sample &sample, std::uint32_t first, std::uint32_t last);

class s1000_machine
{
public:
	explicit s1000_machine(s1000_model model, std::uint8_t channel = 0);

	// What the machine sends for one whole message; empty for nothing.
	machine::bytes answer(machine::byte_view message);
	// The same when it will not do it, whatever it is; and its request to wait.
	machine::bytes refuse(machine::byte_view message) const;
	machine::bytes wait(machine::byte_view message) const;
	midi_machine on_wire();

	// Contents.
	std::vector<stored_program> programs;
	std::vector<stored_sample> samples;
	std::uint8_t channel;
	// Words and blocks (a program, a keygroup and a sample header take one each) that its
	// memory holds.
	std::size_t word_room, block_room;
	// Whether a program written to the place of one just deleted goes over the next one.
	bool closes_gaps = false;
	// The whole messages that reached it, with those it did not take; the last ten thousand.
	std::deque<machine::bytes> heard;

	std::size_t block_size() const;
	std::size_t words_free() const;
	std::size_t blocks_free() const;

	// Blocks as the machine makes them on its own panel.
	machine::bytes new_program(std::string_view name) const;
	machine::bytes new_keygroup() const;
	// Adds a sample with a header that fits: from first to last word, not looped.
	stored_sample &add_sample(
		std::string_view name, unsigned rate, std::vector<std::int16_t> words);
	stored_program &add_program(std::string_view name, std::size_t keygroups);

private:
	using view = machine::byte_view;
	using bytes = machine::bytes;
	struct function_row;
	static const function_row function_rows[];

	bytes frame(std::uint8_t function) const;
	bytes reply(bool done) const;
	bool for_me(view message) const;
	stored_program *program_at(view message);
	stored_sample *sample_at(view message);
	std::optional<bytes> block_in(view message, std::size_t at, std::uint8_t identity) const;

	bytes give_status(view message);
	bytes give_programs(view message);
	bytes give_samples(view message);
	bytes give_program(view message);
	bytes take_program(view message);
	bytes create_program(std::size_t index, bytes block);
	bytes give_keygroup(view message);
	bytes take_keygroup(view message);
	bytes give_header(view message);
	bytes take_header(view message);
	bytes give_words(view message);
	bytes delete_program(view message);
	bytes delete_keygroup(view message);
	bytes delete_sample(view message);

	std::optional<std::size_t> gap; // left by the message before

	// A dump towards the machine (s1000_dump.cpp).
	struct dump {
		std::size_t sample;
		std::size_t length; // words that the header promised
		unsigned rate;
		std::uint32_t loop_start, loop_end;
		bool looped;
		std::uint8_t packet; // number of the next one
		std::vector<std::int16_t> words;
	};
	std::optional<dump> receiving;
	// Number of the packet last taken: a host that missed its acknowledgement sends it again.
	std::optional<std::uint8_t> last_packet;

	bytes handshake(std::uint8_t word, std::uint8_t packet) const;
	bytes dump_message(view message);
	bytes begin_dump(view message);
	bytes take_packet(view message);
	stored_sample &put_sample(
		std::size_t number, unsigned rate, std::vector<std::int16_t> words);
	void finish_dump();

	const s1000_model model;
	// Bytes 1 and 2 of a program or keygroup block say where it lies in memory. They are the
	// machine's own: what a host writes there is not taken.
	std::uint16_t next_address = 0x900C;
	void place(bytes &block);
};

} // namespace velmor
