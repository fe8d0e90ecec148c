// test_virtual_s900.cpp - the virtual S900 on its own: message in, message out
//
// Every message is written out by hand. A byte of a block is counted, not computed, into
// its low seven bits and its top bit: A5 is 25 01. So are the checksums.

#include "tests/support/test_host.h"
#include "virtual/demo_content.h"

namespace velmor
{

using machine::bytes;

static const std::string enable = "F0 47 03 05 40 00 00 F7";

static std::string times(int count, const std::string &text)
{
	return count ? text + " " + times(count - 1, text) : "";
}

struct virtual_s900 : ::testing::Test {
	s900_machine m{ s900_model::s900, 3 };

	bytes ask(const std::string &message) { return m.answer(hex(message)); }
	void is_silent_about(const std::vector<std::string> &messages)
	{
		for (const std::string &message : messages)
			EXPECT_EQ(ask(message), bytes()) << message;
	}
	static bytes go_on(int count) { return hex(times(count, "F0 7E 7F F7")); }
};

TEST_F(virtual_s900, lists_programs_and_samples_by_their_numbers)
{
	EXPECT_EQ(ask("F0 47 03 03 40 00 00 F7"), hex("F0 47 03 0B 40 00 00 F7"));
	m.add_program("Bass", 1).number = 7;
	m.add_sample("KICK 1", 20000, { 0 });
	m.add_sample("ABCDEFGHIJK", 20000, { 0 });
	EXPECT_EQ(ask("F0 47 03 03 40 00 00 F7"),
		hex("F0 47 03 0B 40 00 00 50 07 42 41 53 53 20*6 53 00 4B 49 43 4B 20 31 20*4 "
		    "53 01 41 42 43 44 45 46 47 48 49 4A F7"));
}

TEST_F(virtual_s900, is_silent_about_what_is_not_for_it_or_does_not_exist)
{
	m.add_program("P", 0);
	m.add_sample("S", 20000, { 0 });
	// Channel, maker, family, function; length; number and zero; things that do not exist; a
	// dump while common exclusive is off.
	is_silent_about({ "F0 47 02 03 40 00 00 F7", "F0 43 03 03 40 00 00 F7",
		"F0 47 03 03 48 00 00 F7", "F0 47 03 3E 40 00 00 F7", "F0 47 03 03 40 00 F7",
		"F0 47 03 03 40 00 00 00 F7", "F0 47 03 03 40 01 00 F7", "F0 47 03 02 40 00 01 F7",
		"F0 47 03 05 40 01 00 F7", "F0 47 03 02 40 01 00 F7", "F0 47 03 04 40 01 00 F7",
		"F0 7E 00 00 00 F7", "F0 F7" });
	EXPECT_FALSE(m.common_exclusive);
	m.omni = true;
	EXPECT_EQ(bytes(ask("F0 47 0F 03 40 00 00 F7")).at(2), 3) << "answers on its own channel";
}

// A message with holes, "..", filled from the words of another text.
static std::string filled(std::string text, std::string_view holes)
{
	for (std::size_t at = 0; (at = text.find("..")) != text.npos; holes.remove_prefix(3))
		text.replace(at, 2, holes.substr(0, 2));
	return text + " F7";
}

// A header of 200 words at 40000 Hz (9C40), looped for 80.
static std::string header(const std::string &name, const char *holes)
{
	return filled("F0 47 03 0C 40 00 00 " + name +
			      " 00*12 .. 01 00*6 40 00 1C 01 .. 01 03 00 "
			      "00*4 .. 00 00 00 48 01 00*6 .. 00*7 50 00*47 ..",
		holes);
}

TEST_F(virtual_s900, describes_its_samples_and_is_told_by_a_header)
{
	// The name comes to 1B; length and end cancel out; 5D, 42, 4C, 64 and 50 make 7C.
	s900_machine::set_loop(
		m.add_sample("KICK 1", 40000, std::vector<std::int16_t>(200, 0)), 100, 180);
	const char kick[] = "4B 00 49 00 43 00 4B 00 20 00 31 00 20 00 20 00 20 00 20 00";
	EXPECT_EQ(ask("F0 47 03 04 40 00 00 F7"), hex(header(kick, "48 40 4C 64 7C")));
	// SNARE comes to 6B, and to 4B with a zero at its end; pitch 62 is 03E0.
	const std::string snare = "53 00 4E 00 41 00 52 00 45 00 20 00 20 00 20 00 20 00 ";
	const std::string good = header(snare + "20 00", "48 60 4C 78 30");
	// Checksum, length, a loop from 121 to 201, mode X, the zero.
	is_silent_about({ header(snare + "20 00", "48 60 4C 64 2D"),
		header(snare + "20 00", "49 60 4C 64 2D"),
		header(snare + "20 00", "48 60 4C 79 31"),
		header(snare + "20 00", "48 60 58 64 38"),
		header(snare + "00 00", "48 60 4C 64 0C") });
	EXPECT_EQ(s900_machine::get_name(m.samples[0].header, 0), "KICK 1");
	is_silent_about({ good });
	EXPECT_EQ(ask("F0 47 03 04 40 00 00 F7"), hex(good));
}

// "NEW" comes to 7C; a keygroup from 24 to 127 brings 7F and 18, and its count 01.
static const std::string new_name = "4E 00 45 00 57 00" + times(7, " 20 00");
TEST_F(virtual_s900, takes_programs_and_gives_them_back)
{
	m.keygroup_room = 1;
	const auto program = [](const char *holes, const char *keygroups = "00*137") {
		return filled("F0 47 03 0A 40 .. 00 " + new_name + "00*26 .. 00*29 7F .. .. " +
				      keygroups + " ..",
			holes);
	};
	// Number, count, then what a keygroup begins with, and the checksum: it is wrong, the
	// count, a pair, number 32, no room for two, a control character in the name.
	is_silent_about({ program("05 01 00 18 1B"), program("05 02 00 18 19"),
		program("05 00 00 18 1B"), program("05 01 02 18 18"), program("20 01 00 18 1A"),
		program("05 02 00 18 19", "00*277"), "F0 47 03 0A 40 05 00 09 00*75 09 F7" });
	EXPECT_TRUE(m.programs.empty());
	is_silent_about({ program("05 01 00 18 1A") });
	EXPECT_EQ(ask("F0 47 03 02 40 05 00 F7"), hex(program("05 01 00 18 1A")));
	is_silent_about({ program("05 01 00 19 1B") });
	EXPECT_EQ(m.programs[0].keygroups[0][1], 0x19) << "its own room counts";
	EXPECT_EQ(ask("F0 47 03 0A 40 05 00 " + new_name + "00*56 7C F7"), bytes());
	EXPECT_TRUE(m.programs.at(0).keygroups.empty()) << "85 bytes are a program of none";
}

// ---- Dumps -------------------------------------------------------------------------

TEST_F(virtual_s900, gives_a_dump_block_by_block)
{
	std::vector<std::int16_t> words(61, 0);
	words[0] = 2047, words[1] = -2048, words[2] = 1;
	m.add_sample("S", 40000, words);
	m.add_sample("L", 16000, words);
	s900_machine::set_loop(m.samples[1], 10, 50);
	// Nothing for a sample that does not exist, and without its zero.
	is_silent_about({ enable, "F0 7E 00 02 00 F7", "F0 7E 00 00 01 F7" });
	// 62500 ns are 24 68 03, 25000 are 28 43 01.
	EXPECT_EQ(ask("F0 7E 00 01 00 F7"),
		hex("F0 7E 01 01 00 0C 24 68 03 3D 00 00 0A 00 00 32 00 00 00"));
	ask("F0 7E 7F F7");
	EXPECT_EQ(ask("F0 7E 00 00 00 F7"),
		hex("F0 7E 01 00 00 0C 28 43 01 3D 00 00 3D 00 00 3D 00 00 01"));
	// 7F^7C^40^04 is 47, and of 57 times 40 one is left.
	EXPECT_EQ(ask("F0 7E 7F F7"), hex("00 7F 7C 00 00 40 04" + times(57, " 40 00") + "07"));
	EXPECT_EQ(ask("F0 47 02 03 40 00 00 F7"), bytes()) << "for another machine";
	EXPECT_EQ(ask("F0 7E 7F F7"), hex("01 40 00 00*118 40"));
	EXPECT_EQ(ask("F0 7E 7F F7"), hex("F7"));
	is_silent_about({ "F0 7E 7F F7" });
	// Broken off by a frame, by a dump, and off.
	ask("F0 7E 00 00 00 F7");
	is_silent_about({ "F0 47 03 02 40 00 00 F7", "F0 7E 7F F7" });
	ask("F0 7E 00 00 00 F7");
	is_silent_about({ "F0 7E 01 F7", "F0 7E 7F F7" });
	is_silent_about({ "F0 47 03 06 40 00 00 F7", "F0 7E 00 00 00 F7" });
}

// 61 words at 16000 Hz to number 5; the words behind the last are no part of it.
static const std::string rate_and_count = "0C 24 68 03 3D 00 00 ";
static const std::string block_0 = "00 7F 7C 00 00 40 04 " + times(57, "40 00") + "07 ";
static const std::string block_1 = "01 40 00 7F 00*117 3F ";
static const std::string looped = "F0 7E 01 05 00 " + rate_and_count + "0A 00 00 32 00 00 00 ";

TEST_F(virtual_s900, takes_a_dump)
{
	ask(enable);
	EXPECT_EQ(ask(looped + block_0 + block_1 + "F7"), go_on(3));
	ASSERT_EQ(m.samples.size(), 1u);
	s900_sample &s = m.samples[0];
	EXPECT_EQ(s.number, 5);
	EXPECT_EQ(s.words.size(), 61u);
	s.words.resize(4);
	EXPECT_EQ(s.words, (std::vector<std::int16_t>{ 2047, -2048, 1, 0 }));
	EXPECT_EQ(s900_machine::get_name(s.header, 0), "DUMP 06");
	// Length, rate 3E80, pitch 03C0, mode, end, loop from 10 for 40.
	EXPECT_EQ(bytes(s.header.begin() + 16, s.header.begin() + 40),
		hex("3D 00 00 00 80 3E C0 03 00 00 4C 00 3D 00 00 00 0A 00 00 00 28 00 00 00"));

	s900_machine::put_name(s.header, 0, "KEPT");
	m.word_room = 4;
	EXPECT_EQ(
		ask("F0 7E 01 05 00 0C 28 43 01 01 00 00 00*6 01 00 40 04 00*118 44 F7"), go_on(2));
	EXPECT_EQ(s.words, std::vector<std::int16_t>{ 1 });
	EXPECT_EQ(bytes(s.header.begin() + 16, s.header.begin() + 40),
		hex("01 00 00 00 40 9C C0 03 00 00 4F 00 01 00*11"));
	EXPECT_EQ(s900_machine::get_name(s.header, 0), "KEPT");
}

TEST_F(virtual_s900, counts_blocks_to_127_and_on_from_0)
{
	std::string dump = "F0 7E 01 00 00 0C 24 68 03 3C 3C 00 00*6 01 ";
	for (const char tens : std::string("01234567"))
		for (const char ones : std::string("0123456789ABCDEF"))
			dump += { tens, ones, ' ', '0', '0', '*', '1', '2', '1', ' ' };
	ask(enable);
	EXPECT_EQ(ask(dump + "00*122 F7"), go_on(130));
	EXPECT_EQ(ask("F0 7E 00 00 00 F7").size(), 19u);
	for (int k = 0; k < 129; k++)
		EXPECT_EQ(ask("F0 7E 7F F7").at(0), k % 128);
}

TEST_F(virtual_s900, refuses_dumps_that_are_wrong_or_do_not_fit)
{
	const std::string blocks = block_0 + block_1 + "F7";
	EXPECT_EQ(ask(looped + blocks), bytes()) << "common exclusive is off";
	ask(enable);
	m.word_room = 121;
	m.add_sample("KEPT", 20000, std::vector<std::int16_t>(60, 1));
	const std::string to_5 = "F0 7E 01 05 00 ", ends = "3D 00 00 3D 00 00 01 ";
	// What is wrong: a checksum, a block's number, too few, too many; bits, no words, no room,
	// no period, 40001 Hz, the kind of loop, number 32, no zero.
	const std::pair<std::string, int> rows[] = {
		{ looped + block_0 + "01 40 00 7F 00*117 3E F7", 2 },
		{ looped + block_0 + "02 40 00 7F 00*117 3F F7", 2 },
		{ looped + block_0 + "F7", 2 },
		{ looped + block_0 + block_1 + "02 00*121 F7", 3 },
		{ looped + block_0 + block_1 + "00 F7", 3 },
		{ to_5 + "10 24 68 03 3D 00 00 " + ends + blocks, 0 },
		{ to_5 + "0C 24 68 03 00 00 00 " + ends + "F7", 0 },
		{ to_5 + "0C 24 68 03 3E 00 00 " + ends + blocks, 0 },
		{ to_5 + "0C 00 00 00 3D 00 00 " + ends + blocks, 0 },
		{ to_5 + "0C 27 43 01 3D 00 00 " + ends + blocks, 0 },
		{ to_5 + rate_and_count + "00*6 02 " + blocks, 0 },
		{ "F0 7E 01 20 00 " + rate_and_count + ends + blocks, 0 },
		{ "F0 7E 01 05 01 " + rate_and_count + ends + blocks, 0 },
	};
	for (const auto &[dump, taken] : rows) {
		EXPECT_EQ(ask(dump), go_on(taken)) << dump;
		EXPECT_EQ(m.samples.size(), 1u) << dump;
	}
	EXPECT_EQ(ask(to_5 + rate_and_count + ends + blocks), go_on(3));
}

// ---- In time -----------------------------------------------------------------------

struct s900_on_wire : virtual_s900 {
	timeline time;
	s1000_machine other{ s1000_model::s3000, 0 };
	midi_wire wire{ time, on_one_cable({ m.on_wire(time), other.on_wire() }) };
	int reader = wire.attach();

	bytes hear(const std::string &run, double seconds)
	{
		bytes heard(1000);
		wire.send(hex(run));
		time.run_until(time.now() + seconds);
		heard.resize(wire.take(reader, heard.data(), heard.size()));
		return heard;
	}
	// Samples there are after the dump, with a pause behind each piece.
	std::size_t dump(double head, double block, double last)
	{
		hear(enable, 0.1);
		EXPECT_EQ(hear(looped, head), go_on(1));
		hear(block_0, block), hear(block_1, last), hear("F7", 0.3);
		return m.samples.size();
	}
};

TEST_F(s900_on_wire, takes_a_dump_at_its_own_pace)
{
	// A block is on the wire for 39 ms, and the machine at work for 250, 350 behind a head.
	EXPECT_EQ(dump(0.31, 0.40, 0.50), 0u);
	EXPECT_EQ(dump(0.33, 0.24, 0.50), 0u);
	EXPECT_EQ(dump(0.33, 0.26, 0.28), 0u);
	EXPECT_EQ(dump(0.33, 0.26, 0.30), 1u);
	EXPECT_EQ(hear("F0 47 03 04 40 05 00 F7", 0.2), bytes()) << "still at work on it";
	EXPECT_EQ(hear("F0 47 03 04 40 05 00 F7", 0.2).size(), 129u);
}

TEST_F(s900_on_wire, loses_a_dump_with_a_block_and_begins_anew)
{
	EXPECT_EQ(hear(looped, 0.4), bytes()) << "common exclusive is off";
	m.takes_time = false;
	wire.set_fault({ .kind = wire_fault_kind::silent, .exchange = 4 });
	EXPECT_EQ(dump(0.1, 0.1, 0.1), 0u);
	EXPECT_EQ(hear(looped, 0.1), go_on(1));
	EXPECT_EQ(hear(looped, 0.1), go_on(1)) << "the first one is forgotten";
	hear("F0 47 03 03", 0.1);
	EXPECT_EQ(hear(looped + block_0 + "F7", 0.1), go_on(2));
	EXPECT_EQ(dump(0.1, 0.1, 0.1), 1u);
	EXPECT_EQ(hear(looped + block_0 + "F7", 0.1), go_on(2));
}

TEST_F(s900_on_wire, shares_its_cable)
{
	EXPECT_EQ(hear("F0 47 00 02 48 F7", 0.1), hex("F0 47 00 03 48 00 00 F7"));
	EXPECT_EQ(hear("F0 47 03 03 40 00 00 F7", 0.1), hex("F0 47 03 0B 40 00 00 F7"));
	m.add_sample("S", 40000, std::vector<std::int16_t>(60, 0));
	wire.set_fault({ .kind = wire_fault_kind::garbled, .exchange = 3 });
	hear(enable + " F0 7E 00 00 00 F7", 0.1);
	// 60 times 40 come to 00; 118 bytes and the checksum are wrong, so it tells.
	EXPECT_EQ(hear("F0 7E 7F F7", 0.1), hex("00 40 00" + times(59, " 6A 2A") + "2A"));
}

} // namespace velmor
