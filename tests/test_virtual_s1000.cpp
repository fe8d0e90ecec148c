// test_virtual_s1000.cpp - the virtual S1000 family on its own: what it refuses and how it changes
//
// What it answers when all goes well is seen by the conversations. Every message here is
// written out by hand; a block's nibbles are counted, not computed: byte A5 is 05 0A.

#include "tests/support/test_host.h"
#include "virtual/s1000.h"

namespace velmor
{

using machine::bytes;

static const char done[] = "F0 47 05 16 48 00 F7", refused[] = "F0 47 05 16 48 01 F7";

struct exchange_row {
	const char *message, *answer;
};

struct virtual_s3000 : ::testing::Test {
	s1000_machine m{ s1000_model::s3000, 5 };

	void talk(std::initializer_list<exchange_row> rows)
	{
		for (const exchange_row &row : rows)
			EXPECT_EQ(m.answer(hex(row.message)), hex(row.answer)) << row.message;
	}
};

// 2046 blocks are 7E 0F; 2 to the 22nd words are 00 00 00 02; 257 is 01 02 in groups of seven.
// Counted from the bottom, -32768 is 0000, 0 is 8000, 1 is 8001, 32767 is FFFF and -1 is 7FFF;
// the two lowest bits stand at the top of the third byte. 7E, 05 and 02 come to 79, the first
// bytes of the words to 40, the second to 00, the third to 20: checksum 19.
TEST_F(virtual_s3000, answers_with_its_own_bytes)
{
	talk({ { "F0 47 05 00 48 F7",
		"F0 47 05 01 48 00 02 7E 0F 7E 0F 00 00 00 02 00 00 00 02 05 F7" } });
	m.add_program("E-PIANO 1", 2);
	std::vector<std::int16_t> words(257, 0);
	words.insert(words.end(), { -32768, 0, 1, 32767, -1 });
	m.add_sample("A:B", 44100, words);
	m.programs[0].common = bytes(192, 0xA5);
	talk({ { "F0 47 05 00 48 F7", "F0 47 05 01 48 00 02 7E 0F 7A 0F 00 00 00 02 7A 7D 7F 01 05 "
				      "F7" },
		{ "F0 47 05 04 48 F7", "F0 47 05 05 48 01 00 0B 28 0C 0A*9 F7" },
		{ "F0 47 05 0C 48 00 00 01 02 00 00 05 00 00 00 01 01 F7",
			"F0 7E 05 02 00 00 00 00 40 00 00 40 00 20 7F 7F 60 3F 7F 60 00*105 19 "
			"F7" } });
	const bytes block = m.answer(hex("F0 47 05 06 48 00 00 F7"));
	ASSERT_EQ(block.size(), 8u + 2 * 192);
	EXPECT_EQ(
		bytes(block.begin(), block.begin() + 11), hex("F0 47 05 07 48 00 00 05 0A 05 0A"));

	s1000_machine old(s1000_model::s1000, 0);
	old.add_program("P", 1);
	EXPECT_EQ(old.answer(hex("F0 47 00 08 48 00 00 00 F7")).size(), 9u + 2 * 150);
	EXPECT_EQ(old.answer(hex("F0 47 00 00 48 F7")).at(6), 4);
}

// Channel, maker, family, function, channel of a dump, a channel nobody is on.
TEST_F(virtual_s3000, hears_only_what_is_for_it)
{
	talk({ { "F0 47 04 00 48 F7", "" }, { "F0 43 05 00 48 F7", "" },
		{ "F0 47 05 00 40 F7", "" }, { "F0 47 05 3E 48 F7", "" },
		{ "F0 7E 04 02 00*122 F7", "" }, { "F0 F7", "" } });
}

TEST_F(virtual_s3000, refuses_what_it_cannot_do)
{
	m.add_program("P", 1);
	m.add_sample("S", 44100, { 1, 2, 3 });
	for (const char *message : {
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
		     "F0 47 05 0C 48 00 00 00 00 00 00 29 00 00 00 01 01 F7", // too many
		     "F0 47 05 07 48 00 00 F7",                               // no block
		     "F0 47 05 09 48 00 00 00 F7",
		     "F0 47 05 07 48 00 00 01 00 0F*298 F7",       // 150 bytes of 192
		     "F0 47 05 07 48 00 00 02 00 00*382 F7",       // not a program
		     "F0 47 05 07 48 00 00 01 00 00*380 10 00 F7", // no nibble
		     "F0 47 05 07 48 02 00 01 00 00*382 F7",       // a gap in the list
		     "F0 47 05 09 48 00 00 02 02 00 00*382 F7",
		     "F0 47 05 0B 48 00 00 03 00 00*50 04 00 00*330 F7", // not its length
	     })
		talk({ { message, refused } });
	EXPECT_EQ(m.programs.size(), 1u);
	EXPECT_EQ(m.programs[0].keygroups.size(), 1u);
	EXPECT_EQ(m.samples.size(), 1u);
	EXPECT_EQ(machine::get_name(m.samples[0].header, 3), "S");
	m.block_room = 4;                                                 // three are taken
	talk({ { "F0 47 05 07 48 01 00 01 00*83 01 00*299 F7", refused }, // needs two
		{ "F0 47 05 07 48 01 00 01 00*383 F7", done },
		{ "F0 47 05 09 48 00 00 01 02 00*383 F7", refused } });
}

// Three keygroups at index 42; 7F 7F where the address stands; 1F at the end.
TEST_F(virtual_s3000, creates_updates_and_deletes)
{
	talk({ { "F0 47 05 07 48 00 00 01 00 0F 07 0F 07 0E 01 00*76 03 00 00*298 F7", done } });
	ASSERT_EQ(m.programs.size(), 1u);
	EXPECT_EQ(m.programs[0].keygroups.size(), 3u);
	EXPECT_NE(machine::get_number(m.programs[0].common, 1, 2), 0x7F7Fu) << "its own bytes";
	const u8 address = m.programs[0].common[1];
	talk({ { "F0 47 05 07 48 00 00 01 00 0F 07 0F 07 00*78 09 00 00*296 0F 01 F7", done },
		// Keygroup 0 from 24 to 79, last byte DE; two more behind the last one.
		{ "F0 47 05 09 48 00 00 00 02 00 00*4 08 01 0F 04 00*372 0E 0D F7", done },
		{ "F0 47 05 09 48 00 00 03 02 00 00*4 08 01 0F 04 00*372 0E 0D F7", done },
		{ "F0 47 05 09 48 00 00 04 F7", done } });
	const stored_program &p = m.programs[0];
	EXPECT_EQ(p.common[191], 0x1F);
	EXPECT_EQ(p.common[1], address);
	ASSERT_EQ(p.keygroups.size(), 5u);
	EXPECT_EQ(p.common[42], 5) << "counted by the machine, not by the host";
	EXPECT_EQ(p.keygroups[0][4], 79);
	EXPECT_EQ(p.keygroups[3][191], 0xDE);
	EXPECT_EQ(p.keygroups[4][4], 127) << "of its own making";
	talk({ { "F0 47 05 13 48 00 00 03 F7", done } });
	EXPECT_EQ(m.programs[0].common[42], 4);
	EXPECT_EQ(m.programs[0].keygroups[3][4], 127);
	m.add_sample("S", 44100, { 1 });
	talk({ { "F0 47 05 12 48 00 00 F7", done }, { "F0 47 05 14 48 00 00 F7", done } });
	EXPECT_TRUE(m.programs.empty() && m.samples.empty());
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

// Another length, no character, no note, no playback mode, start behind the end, end and loop behind
// the words, a loop before them; then all as far as it can be.
TEST_F(virtual_s3000, takes_only_headers_that_fit)
{
	const bytes before = m.add_sample("S", 44100, { 1, 2, 3 }).header;
	const struct {
		std::size_t at;
		std::uint32_t value;
		int width;
		const char *answer;
	} rows[] = { { 26, 4, 4, refused }, { 14, 41, 1, refused }, { 2, 128, 1, refused },
		{ 19, 4, 1, refused }, { 30, 3, 4, refused }, { 34, 3, 4, refused },
		{ 38, 4, 4, refused }, { 44, 1, 4, refused }, { 14, 40, 1, done },
		{ 2, 127, 1, done }, { 19, 3, 1, done }, { 30, 2, 4, done }, { 38, 3, 4, done },
		{ 44, 3, 4, done } };
	for (const auto &row : rows) {
		bytes header = m.samples[0].header, message = hex("F0 47 05 0B 48 00 00");
		machine::put_number(header, row.at, row.value, row.width);
		machine::append_nibbles(message, header);
		message.push_back(0xF7);
		const bytes held = row.answer == done ? header : before;
		EXPECT_EQ(m.answer(message), hex(row.answer)) << row.at;
		EXPECT_EQ(m.samples[0].header, held) << row.at;
	}
}

// ---- Dumps -------------------------------------------------------------------------

// 45 words at 22050 Hz (45351 ns: 27 62 02), looped from 3 to 40.
static const char header_to_0[] = "F0 7E 05 01 00 00 10 27 62 02 2D 00 00 03 00 00 28 00 00 00 F7";
static const char ack_0[] = "F0 7E 05 7F 00 F7", nak_0[] = "F0 7E 05 7E 00 F7";
// Packets of the lowest word: 7E ^ 05 ^ 02 is 79.
static const char packet_0[] = "F0 7E 05 02 00 00*120 79 F7";
static const char packet_1[] = "F0 7E 05 02 01 00*120 78 F7";

TEST_F(virtual_s3000, takes_a_dump)
{
	talk({ { header_to_0, ack_0 } });
	EXPECT_TRUE(m.samples.empty()) << "not before the last packet";
	// 40 01 01 is 8005, or 5. Of the second packet five words count.
	talk({ { "F0 7E 05 02 00 40 01 01 00*117 39 F7", ack_0 },
		{ "F0 7E 05 02 01 00*15 7F*105 07 F7", "F0 7E 05 7F 01 F7" },
		{ "F0 7E 05 02 02 00*120 7B F7", "F0 7E 05 7D 02 F7" } }); // no dump any more
	ASSERT_EQ(m.samples.size(), 1u);
	const stored_sample &s = m.samples[0];
	ASSERT_EQ(s.words.size(), 45u);
	EXPECT_EQ(s.words[0], 5);
	EXPECT_EQ(s.words[44], -32768);
	EXPECT_EQ(machine::get_name(s.header, 3), "MIDI DUMP 1");
	EXPECT_EQ(s.header[1], 0) << "22050 Hz";
	EXPECT_EQ(machine::get_number(s.header, 38, 4), 40u);
	EXPECT_EQ(machine::get_number(s.header, 44, 4), 37u);
}

// Checksum, number, length; then as it should be, and once more because the answer was lost.
TEST_F(virtual_s3000, refuses_bad_packets_and_takes_them_again)
{
	talk({ { header_to_0, ack_0 }, { "F0 7E 05 02 00 00*120 78 F7", nak_0 },
		{ packet_1, "F0 7E 05 7E 01 F7" }, { "F0 7E 05 02 00 00*119 79 F7", nak_0 },
		{ packet_0, ack_0 }, { packet_0, ack_0 }, { packet_1, "F0 7E 05 7F 01 F7" } });
	ASSERT_EQ(m.samples.size(), 1u);
	EXPECT_EQ(m.samples[0].words.size(), 45u);
}

TEST_F(virtual_s3000, a_dump_over_a_sample_keeps_its_name_alone)
{
	m.add_sample("KEPT", 44100, { 1, 2 });
	talk({ { header_to_0, ack_0 }, { packet_0, ack_0 }, { "F0 7E 05 7D 00 F7", "" },
		{ packet_1, "F0 7E 05 7D 01 F7" } });
	EXPECT_TRUE(m.samples.at(0).words.empty()) << "gone with the header";
	EXPECT_EQ(machine::get_number(m.samples[0].header, 26, 4), 0u);
	talk({ { header_to_0, ack_0 }, { packet_0, ack_0 }, { packet_1, "F0 7E 05 7F 01 F7" } });
	ASSERT_EQ(m.samples.size(), 1u);
	EXPECT_EQ(machine::get_name(m.samples[0].header, 3), "KEPT");
	EXPECT_EQ(m.samples[0].words.size(), 45u);
}

// A gap in the list, 12 bits, memory full; and a dump of no words makes an empty sample.
TEST_F(virtual_s3000, refuses_dumps_it_cannot_hold)
{
	talk({ { "F0 7E 05 01 01 00 10 27 62 02 2D 00 00 00*6 00 F7", nak_0 },
		{ "F0 7E 05 01 00 00 0C 27 62 02 2D 00 00 00*6 00 F7", nak_0 } });
	m.word_room = 44;
	talk({ { header_to_0, "F0 7E 05 7D 00 F7" } });
	m.word_room = 45;
	talk({ { header_to_0, ack_0 }, { "F0 7E 05 01 00 00 10 27 62 02 00*9 00 F7", ack_0 } });
	ASSERT_EQ(m.samples.size(), 1u);
	EXPECT_TRUE(m.samples[0].words.empty());
}

} // namespace velmor
