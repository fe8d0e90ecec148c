// test_virtual_s1000.cpp - the virtual S1000 family on its own: message in, message out
//
// Every message is written out by hand. A block's nibbles are counted, not computed:
// byte A5 is 05 0A.

#include "tests/support/test_host.h"
#include "virtual/s1000.h"

namespace velmor
{

using machine::bytes;

static const bytes done = hex("F0 47 05 16 48 00 F7");
static const bytes refused = hex("F0 47 05 16 48 01 F7");

struct virtual_s3000 : ::testing::Test {
	s1000_machine m{ s1000_model::s3000, 5 };

	bytes ask(std::string_view message) { return m.answer(hex(message)); }
	// The nibbles of a block, as words of hex().
	static std::string nibbles(const bytes &block)
	{
		std::string text;
		for (const u8 b : block) {
			static const char digit[] = "0123456789ABCDEF";
			text += std::string("0") + digit[b & 15] + " 0" + digit[b >> 4] + " ";
		}
		return text;
	}
};

TEST_F(virtual_s3000, says_its_version_memory_and_channel)
{
	// 2046 blocks are 7E 0F; 2 to the 22nd words are 00 00 00 02.
	EXPECT_EQ(ask("F0 47 05 00 48 F7"),
		hex("F0 47 05 01 48 00 02 7E 0F 7E 0F 00 00 00 02 00 00 00 02 05 F7"));
	m.add_sample("ONE WORD", 44100, { 1 });
	m.add_program("P", 2);
	EXPECT_EQ(ask("F0 47 05 00 48 F7"),
		hex("F0 47 05 01 48 00 02 7E 0F 7A 0F 00 00 00 02 7F 7F 7F 01 05 F7"));
}

TEST(virtual_s1000, is_of_the_older_generation)
{
	s1000_machine m(s1000_model::s1000, 0);
	EXPECT_EQ(bytes(m.answer(hex("F0 47 00 00 48 F7"))).at(6), 4);
	m.add_program("P", 1);
	m.add_sample("S", 22050, { 1, 2 });
	EXPECT_EQ(m.answer(hex("F0 47 00 06 48 00 00 F7")).size(), 8u + 2 * 150);
	EXPECT_EQ(m.answer(hex("F0 47 00 08 48 00 00 00 F7")).size(), 9u + 2 * 150);
	EXPECT_EQ(m.answer(hex("F0 47 00 0A 48 00 00 F7")).size(), 8u + 2 * 150);
}

TEST_F(virtual_s3000, lists_names_in_its_own_alphabet)
{
	EXPECT_EQ(ask("F0 47 05 02 48 F7"), hex("F0 47 05 03 48 00 00 F7"));
	EXPECT_EQ(ask("F0 47 05 04 48 F7"), hex("F0 47 05 05 48 00 00 F7"));
	m.add_program("Test Program", 1);
	m.add_program("E-PIANO 1", 1);
	m.add_sample("A:B", 44100, {});
	EXPECT_EQ(ask("F0 47 05 02 48 F7"),
		hex("F0 47 05 03 48 02 00 1E 0F 1D 1E 0A 1A 1C 19 11 1C 0B 17 "
		    "0F 27 1A 13 0B 18 19 0A 01 0A 0A 0A F7"));
	EXPECT_EQ(ask("F0 47 05 04 48 F7"), hex("F0 47 05 05 48 01 00 0B 28 0C 0A*9 F7"));
	for (int i = 0; i < 128; i++)
		m.add_sample("N", 44100, {});
	const bytes list = ask("F0 47 05 04 48 F7");
	EXPECT_EQ(list.size(), 8u + 129 * 12);
	EXPECT_EQ(bytes(list.begin(), list.begin() + 7), hex("F0 47 05 05 48 01 01"));
}

TEST_F(virtual_s3000, hears_only_what_is_for_it)
{
	EXPECT_EQ(ask("F0 47 04 00 48 F7"), bytes()) << "channel";
	EXPECT_EQ(ask("F0 43 05 00 48 F7"), bytes()) << "maker";
	EXPECT_EQ(ask("F0 47 05 00 40 F7"), bytes()) << "family";
	EXPECT_EQ(ask("F0 47 05 3E 48 F7"), bytes()) << "function";
	EXPECT_EQ(ask("F0 7E 04 02 00*122 F7"), bytes()) << "channel of a dump";
	EXPECT_EQ(ask("F0 F7"), bytes());
}

TEST_F(virtual_s3000, refuses_what_it_cannot_do)
{
	m.add_program("P", 1);
	m.add_sample("S", 44100, { 1, 2, 3 });
	const char *bad[] = {
		"F0 47 05 00 48 00 F7",       // a status request too long
		"F0 47 05 06 48 00 F7",       // an index too short
		"F0 47 05 06 48 01 00 F7",    // no program 1
		"F0 47 05 06 48 00 01 F7",    // no program 128
		"F0 47 05 08 48 00 00 01 F7", // no keygroup 1
		"F0 47 05 0A 48 01 00 F7",    // no sample 1
		"F0 47 05 12 48 01 00 F7",    // nothing to delete
		"F0 47 05 13 48 00 00 01 F7", "F0 47 05 14 48 01 00 F7",
		"F0 47 05 0C 48 00 00 00 00 00 00 04 00 00 00 01 01 F7", // past the end
		"F0 47 05 0C 48 00 00 00 00 00 00 00 00 00 00 01 01 F7", // no words
		"F0 47 05 0C 48 00 00 00 00 00 00 29 00 00 00 01 01 F7", // more than a packet
		"F0 47 05 07 48 00 00 F7",                               // a block of nothing
		"F0 47 05 09 48 00 00 00 F7",
		"F0 47 05 07 48 00 00 01 00 0F*298 F7",       // 150 bytes on a 192 machine
		"F0 47 05 07 48 00 00 02 00 00*382 F7",       // not a program
		"F0 47 05 07 48 00 00 01 00 00*380 10 00 F7", // no nibble
	};
	for (const char *message : bad)
		EXPECT_EQ(ask(message), refused) << message;
	EXPECT_EQ(m.programs.size(), 1u);
	EXPECT_EQ(m.programs[0].keygroups.size(), 1u);
	EXPECT_EQ(m.samples.size(), 1u);
}

TEST_F(virtual_s3000, gives_blocks_low_nibble_first)
{
	m.add_program("P", 1);
	m.programs[0].common = bytes(192, 0xA5);
	m.programs[0].keygroups[0] = bytes(192, 0x3C);
	m.add_sample("S", 44100, { 7 });
	m.samples[0].header = bytes(192, 0x81);
	bytes due = hex("F0 47 05 07 48 00 00");
	for (int i = 0; i < 192; i++)
		due.insert(due.end(), { 0x05, 0x0A });
	due.push_back(0xF7);
	EXPECT_EQ(ask("F0 47 05 06 48 00 00 F7"), due);
	due = hex("F0 47 05 09 48 00 00 00");
	for (int i = 0; i < 192; i++)
		due.insert(due.end(), { 0x0C, 0x03 });
	due.push_back(0xF7);
	EXPECT_EQ(ask("F0 47 05 08 48 00 00 00 F7"), due);
	due = hex("F0 47 05 0B 48 00 00");
	for (int i = 0; i < 192; i++)
		due.insert(due.end(), { 0x01, 0x08 });
	due.push_back(0xF7);
	EXPECT_EQ(ask("F0 47 05 0A 48 00 00 F7"), due);
}

TEST_F(virtual_s3000, creates_and_updates_a_program)
{
	// Three keygroups at index 42; name "TEST PROGRAM"; 7F 7F where the address stands.
	const std::string head = "01 00 0F 07 0F 07 0E 01 0F 00 0D 01 0E 01 0A 00 0A 01 0C 01 "
				 "09 01 01 01 0C 01 0B 00 07 01 ";
	const std::string written = head + "00*54 03 00 00*298 F7";
	EXPECT_EQ(ask("F0 47 05 07 48 01 00 " + written), refused) << "a gap in the list";
	EXPECT_EQ(ask("F0 47 05 07 48 00 00 " + written), done);
	ASSERT_EQ(m.programs.size(), 1u);
	EXPECT_EQ(machine::get_name(m.programs[0].common, 3), "TEST PROGRAM");
	EXPECT_EQ(m.programs[0].keygroups.size(), 3u);
	EXPECT_NE(machine::get_number(m.programs[0].common, 1, 2), 0x7F7Fu) << "its own bytes";

	const u8 address = m.programs[0].common[1];
	EXPECT_EQ(ask("F0 47 05 07 48 00 00 " + head + "00*54 09 00 00*296 0F 01 F7"), done);
	EXPECT_EQ(m.programs.size(), 1u);
	EXPECT_EQ(m.programs[0].common[42], 3) << "the number of keygroups is not taken";
	EXPECT_EQ(m.programs[0].common[191], 0x1F);
	EXPECT_EQ(m.programs[0].common[1], address);
}

TEST_F(virtual_s3000, takes_and_adds_keygroups)
{
	m.add_program("P", 1);
	const std::string block = "02 00 00*4 08 01 0F 04 00*372 0E 0D F7"; // 24 to 79, last DE
	EXPECT_EQ(ask("F0 47 05 09 48 00 00 00 " + block), done);
	EXPECT_EQ(m.programs[0].keygroups[0][3], 24);
	EXPECT_EQ(m.programs[0].keygroups[0][4], 79);
	EXPECT_EQ(m.programs[0].keygroups[0][191], 0xDE);
	EXPECT_EQ(ask("F0 47 05 09 48 00 00 01 " + block), done) << "behind the last: added";
	EXPECT_EQ(ask("F0 47 05 09 48 00 00 02 F7"), done) << "and one of its own making";
	EXPECT_EQ(ask("F0 47 05 09 48 00 00 04 " + block), refused) << "a gap";
	ASSERT_EQ(m.programs[0].keygroups.size(), 3u);
	EXPECT_EQ(m.programs[0].common[42], 3);
	EXPECT_EQ(m.programs[0].keygroups[2], [&] {
		bytes fresh = m.new_keygroup();
		std::copy_n(m.programs[0].keygroups[2].begin() + 1, 2, fresh.begin() + 1);
		return fresh;
	}());
	EXPECT_EQ(ask("F0 47 05 13 48 00 00 01 F7"), done);
	EXPECT_EQ(m.programs[0].keygroups.size(), 2u);
	EXPECT_EQ(m.programs[0].common[42], 2);
	EXPECT_EQ(ask("F0 47 05 12 48 00 00 F7"), done);
	EXPECT_TRUE(m.programs.empty());
}

TEST_F(virtual_s3000, refuses_programs_when_its_memory_is_full)
{
	m.block_room = 3;
	m.add_program("P", 1);
	EXPECT_EQ(ask("F0 47 05 07 48 01 00 01 00*83 01 00*299 F7"), refused) << "needs two";
	EXPECT_EQ(ask("F0 47 05 07 48 01 00 01 00*383 F7"), done);
	EXPECT_EQ(ask("F0 47 05 09 48 00 00 01 02 00*383 F7"), refused);
}

TEST_F(virtual_s3000, renames_a_sample_by_its_header)
{
	m.add_sample("KICK", 44100, { 1, 2, 3 });
	bytes header = m.samples[0].header;
	const bytes name = hex("1D 18 0B 1C 0F 0A*7"); // SNARE
	std::copy(name.begin(), name.end(), header.begin() + 3);
	EXPECT_EQ(ask("F0 47 05 0B 48 00 00 " + nibbles(header) + "F7"), done);
	EXPECT_EQ(machine::get_name(m.samples[0].header, 3), "SNARE");
	header[26] = 4; // a length that is not its own
	EXPECT_EQ(ask("F0 47 05 0B 48 00 00 " + nibbles(header) + "F7"), refused);
	EXPECT_EQ(ask("F0 47 05 14 48 00 00 F7"), done);
	EXPECT_TRUE(m.samples.empty());
}

TEST_F(virtual_s3000, describes_its_samples)
{
	set_loop(m.add_sample("S", 22050, std::vector<std::int16_t>(0x12345, 0)), 0x100, 0x10300);
	const bytes &h = m.samples[0].header;
	EXPECT_EQ(bytes(h.begin(), h.begin() + 4), hex("03 00 3C 1D"));
	EXPECT_EQ(bytes(h.begin() + 26, h.begin() + 50),
		hex("45 23 01 00 00*4 44 23 01 00 00 03 01 00 00 00 00 02 01 00 0F 27"));
	EXPECT_EQ(h[19], 0) << "looping";
	m.add_sample("T", 44100, { 0 });
	EXPECT_EQ(m.samples[1].header[1], 1);
	EXPECT_EQ(m.samples[1].header[19], 2) << "not looping";
}

TEST_F(virtual_s3000, answers_words_as_a_dump_packet)
{
	// Counted from the bottom, -32768 is 0000, 0 is 8000, 1 is 8001, 32767 is FFFF and -1 is
	// 7FFF; the two lowest bits stand at the top of the third byte.
	std::vector<std::int16_t> words(257, 0);
	words.insert(words.end(), { -32768, 0, 1, 32767, -1 });
	m.add_sample("S", 44100, words);
	// 257 is 01 02 00 00 in groups of seven bits. Checksum: 7E, 05 and 02 come to 79, the
	// first bytes of the words to 40, the second to 00, the third to 20.
	EXPECT_EQ(ask("F0 47 05 0C 48 00 00 01 02 00 00 05 00 00 00 01 01 F7"),
		hex("F0 7E 05 02 00 00 00 00 40 00 00 40 00 20 7F 7F 60 3F 7F 60 00*105 19 F7"));
}

// ---- Dumps -------------------------------------------------------------------------

// 45 words at 22050 Hz (45351 ns: 27 62 02), looped from 3 to 40.
static const char header_to_0[] = "F0 7E 05 01 00 00 10 27 62 02 2D 00 00 03 00 00 28 00 00 00 F7";
// 40 words of 1, 40 00 01 each: both columns cancel out, and 7E^05^02^00 is 79.
static std::string packet(const char *number, const char *data, const char *sum)
{
	return std::string("F0 7E 05 02 ") + number + " " + data + " " + sum + " F7";
}

TEST_F(virtual_s3000, takes_a_dump)
{
	EXPECT_EQ(ask(header_to_0), hex("F0 7E 05 7F 00 F7"));
	EXPECT_TRUE(m.samples.empty()) << "not before the last packet";
	// One word of 7FFF+4 levels (40 01 01 is 8005, or 5), then 39 of 8000: 39 and one 40
	// cancel, 01^01 too: 79.
	std::string words = "40 01 01";
	for (int i = 1; i < 40; i++)
		words += " 40 00 00";
	EXPECT_EQ(ask(packet("00", words.c_str(), "79")), hex("F0 7E 05 7F 00 F7"));
	// Five of them -32768 and the rest is no part of it.
	EXPECT_EQ(ask(packet("01", "00*15 7F*105", "07")), hex("F0 7E 05 7F 01 F7"));
	ASSERT_EQ(m.samples.size(), 1u);
	const stored_sample &s = m.samples[0];
	ASSERT_EQ(s.words.size(), 45u);
	EXPECT_EQ(s.words[0], 5);
	EXPECT_EQ(s.words[1], 0);
	EXPECT_EQ(s.words[44], -32768);
	EXPECT_EQ(machine::get_name(s.header, 3), "MIDI DUMP 1");
	EXPECT_EQ(s.header[1], 0) << "22050 Hz";
	EXPECT_EQ(machine::get_number(s.header, 38, 4), 40u);
	EXPECT_EQ(machine::get_number(s.header, 44, 4), 37u);
}

TEST_F(virtual_s3000, refuses_bad_packets_and_takes_them_again)
{
	ask(header_to_0);
	const std::string good = packet("00", "00*120", "79");
	EXPECT_EQ(ask(packet("00", "00*120", "78")), hex("F0 7E 05 7E 00 F7")) << "checksum";
	EXPECT_EQ(ask(packet("01", "00*120", "78")), hex("F0 7E 05 7E 01 F7")) << "number";
	EXPECT_EQ(ask(packet("00", "00*119", "79")), hex("F0 7E 05 7E 00 F7")) << "length";
	EXPECT_EQ(ask(good), hex("F0 7E 05 7F 00 F7"));
	EXPECT_EQ(ask(good), hex("F0 7E 05 7F 00 F7")) << "the acknowledgement was lost";
	EXPECT_EQ(ask(packet("01", "00*120", "78")), hex("F0 7E 05 7F 01 F7"));
	ASSERT_EQ(m.samples.size(), 1u);
	EXPECT_EQ(m.samples[0].words.size(), 45u);
	EXPECT_EQ(ask(packet("02", "00*120", "7B")), hex("F0 7E 05 7D 02 F7")) << "no dump";
}

TEST_F(virtual_s3000, replaces_a_sample_but_not_its_name)
{
	m.add_sample("KEPT", 44100, { 1, 2 });
	ask(header_to_0);
	ask(packet("00", "00*120", "79"));
	EXPECT_EQ(ask("F0 7E 05 7D 00 F7"), bytes()) << "the host breaks off";
	EXPECT_EQ(m.samples[0].words, (std::vector<std::int16_t>{ 1, 2 }));
	EXPECT_EQ(ask(packet("01", "00*120", "78")), hex("F0 7E 05 7D 01 F7"));
	ask(header_to_0);
	ask(packet("00", "00*120", "79"));
	ask(packet("01", "00*120", "78"));
	ASSERT_EQ(m.samples.size(), 1u);
	EXPECT_EQ(machine::get_name(m.samples[0].header, 3), "KEPT");
	EXPECT_EQ(m.samples[0].words.size(), 45u);
}

TEST_F(virtual_s3000, refuses_dumps_it_cannot_hold)
{
	EXPECT_EQ(
		ask("F0 7E 05 01 01 00 10 27 62 02 2D 00 00 00*6 00 F7"), hex("F0 7E 05 7E 00 F7"))
		<< "a gap in the list";
	EXPECT_EQ(
		ask("F0 7E 05 01 00 00 0C 27 62 02 2D 00 00 00*6 00 F7"), hex("F0 7E 05 7E 00 F7"))
		<< "12 bits";
	m.word_room = 44;
	EXPECT_EQ(ask(header_to_0), hex("F0 7E 05 7D 00 F7")) << "memory full";
	m.word_room = 45;
	EXPECT_EQ(ask(header_to_0), hex("F0 7E 05 7F 00 F7"));
	EXPECT_EQ(ask("F0 7E 05 01 00 00 10 27 62 02 00*9 00 F7"), hex("F0 7E 05 7F 00 F7"));
	ASSERT_EQ(m.samples.size(), 1u) << "a dump of no words makes an empty sample";
	EXPECT_TRUE(m.samples[0].words.empty());
}

} // namespace velmor
