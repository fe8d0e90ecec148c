// test_s900.cpp - lists and programs of an S900: byte by byte, and with a virtual machine
//
// What a byte means was written down from the format, not from the driver. The virtual machine
// was written apart from it.

#include "src/akais900.h"
#include "src/velmor_outcome.h"
#include "tests/support/transcript_midi.h"
#include "virtual/midi_ports.h"
#include "virtual/s900.h"
#include <cstring>

namespace velmor
{
namespace
{

std::string text_of(const std::vector<u8> &bytes)
{
	return hex_text(bytes);
}

// Bytes at their places in a message that is zero elsewhere.
struct at_place {
	std::size_t at;
	const char *bytes;
};
using places = std::vector<at_place>;

void put(std::vector<u8> &message, std::size_t base, const places &rows)
{
	for (const at_place &row : rows) {
		const std::vector<u8> bytes = hex(row.bytes);
		std::copy(bytes.begin(), bytes.end(), message.begin() + base + row.at);
	}
}

// A program, its keygroups 140 bytes apart, closed with the exclusive-or of bytes 7 to there.
std::vector<u8> program_bytes(const places &head, const std::vector<places> &keygroups)
{
	const std::size_t end = 83 + 140 * keygroups.size();
	std::vector<u8> message(end + 2);
	put(message, 0, { { 0, "F0 47 00 0A 40" } });
	put(message, 0, head);
	for (std::size_t k = 0; k < keygroups.size(); k++)
		put(message, 140 * k, keygroups[k]);
	for (std::size_t i = 7; i < end; i++)
		message[end] ^= message[i];
	message[end + 1] = 0xF7;
	return message;
}

// BASSLINE, its nine and ten characters with blanks; positional crossfade on; 2 keygroups.
const places head_of_two = { { 5, "07" },
	{ 7, "42 00 41 00 53 00 53 00 4C 00 49 00 4E 00 45 00 20 00 20 00" }, { 27, "11 00 12" },
	{ 49, "7F" }, { 53, "02" } };
const places no_keygroups = { { 5, "07" }, { 7, "42 00 41 00" } };

// 36 to 72, switch at 80, flags 1, 4 and 16, output 255, soft BASS 1 up a semitone, loud SNARE
// down one at -18; bytes 97 to 115 are nobody's.
const places keygroup_a = { { 83, "48 00 24 00 50 00 01 00 02 00 03 00 04 00" },
	{ 97, "0A 00 32 00 01 01 02 00 1E 00" }, { 119, "15 00 7F 01 0A 00" }, { 127, "32 00" },
	{ 131, "42 00 41 00 53 00 53 00 20 00 31 00 20 00 20 00 20 00 20 00" },
	{ 151, "05 00 06 00 07 00 08 00 40 00" }, { 167, "10 00 00 00 63 00 0A 00" },
	{ 175, "53 00 4E 00 41 00 52 00 45 00 20 00 20 00 20 00 20 00 20 00" },
	{ 211, "70 01 7F 01 32 00 6E 01" } };
// Switch off, flags 2, 8 and 32, and values at the edges of their signs.
const places keygroup_b = { { 83, "7F 00 18 00 7F 01" }, { 119, "2A 00 03 00 00 00" },
	{ 131, "41 00 42 00 43 00 44 00 45 00 46 00 47 00 48 00 49 00 4A 00" },
	{ 167, "00 00 40 00 00 00 40 00" }, { 211, "01 00 40 00 00 00 41 00" } };

const std::string catalogue = "> F0 47 00 03 40 00 00 F7\n";
const std::string overall = "> F0 47 00 04 40 00 00 F7\n";

class s900 : public host_test
{
protected:
	s900()
	{
		h.use_sampler(model_s900, 0);
		dev().status = 1;
	}
	_dev_status &dev() { return *current_sampler->status; }
	void add_programs(int count)
	{
		dev().programs = count;
		for (int i = 0; i < count; i++) {
			copy_text(dev().program[i].name, "BASSLINE");
			dev().program[i].number = 7 + i;
		}
	}
	template <typename work> void play(const std::string &script, work run)
	{
		transcript_midi port(h, script);
		run();
		EXPECT_TRUE(port.finished());
	}
	void status() { akai_s900_getstatus(1, 0, &dev()); }
	void programs(const std::string &script)
	{
		play(script, [&] { akai_s900_getproglist(1, 0, &dev()); });
	}
	void save(const std::string &script, int program = 0)
	{
		play(script, [&] { akai_s900_save_program(program, nullptr); });
	}
	std::string last_box() const { return h.boxes.empty() ? "" : h.boxes.back().text; }
};

// ---- Catalogue ---------------------------------------------------------------------------

TEST_F(s900, reads_the_catalogue_up_to_what_is_no_entry)
{
	const std::string bass = "50 02 42 41 53 53 20 31 20 20 20 20 ", // P 2
		kick = "53 00 4B 49 43 4B 20 20 20 20 20 20 ",           // S 0
		ten = "53 05 41 42 43 44 45 46 47 48 49 4A ";            // the tenth is J
	struct {
		std::string entries;
		int programs, samples;
	} rows[] = {
		{ "", 0, 0 }, { bass + kick + ten, 1, 2 },
		{ kick + "4D 00 41*10 " + ten, 0, 1 },   // neither S nor P
		{ kick + "53 01 F7", 0, 1 },             // F7 for a name
		{ bass + "53 01 41 42 43 44 45", 1, 0 }, // cut off
	};
	for (const auto &it : rows) {
		dev().samples = dev().programs = dev().multis = 9;
		dev().status = 0;
		const bool sample_0 = it.entries.find(kick) != std::string::npos;
		play(catalogue + "< F0 47 00 0B 40 00 00 " + it.entries + "F7\n" + overall +
				(sample_0 ? "< F0 47 00 0C 40 00 00 00*121 F7\n" : "< nothing\n"),
			[&] { status(); });
		EXPECT_EQ(dev().programs, it.programs) << it.entries;
		EXPECT_EQ(dev().samples, it.samples) << it.entries;
		EXPECT_EQ(dev().multis, 0);
		EXPECT_EQ(dev().status, 1);
		EXPECT_STREQ(dev().version, "1.1");
	}
	play(catalogue + "< F0 47 00 0B 40 00 00 " + bass + kick + ten + "F7\n" + overall +
			"< F0 47 00 0C 40 00 00 00*121 F7",
		[&] { status(); });
	EXPECT_STREQ(dev().program[0].name, "BASS 1");
	EXPECT_EQ(dev().program[0].number, 2);
	EXPECT_STREQ(dev().sample[0].name, "KICK");
	EXPECT_STREQ(dev().sample[1].name, "ABCDEFGHI");
	EXPECT_EQ(dev().sample[1].number, 5);
	for (const char *line : { "[D] Requesting Akai s900 Status on Exclusive Channel: 1 "
				  "[SYSEX-CHANNEL: 0], REQUEST_LEN: 8",
		     "[D] Requested Akai s900 Status on Exclusive Channel: 1 [SYSEX-CHANNEL: 0] "
		     "--> 44 Bytes",
		     "[D] S900 (Type: P), NR: 2 {BASS 1}", "[D] S900 (Type: S), NR: 5 {ABCDEFGHI}",
		     "[D] OVERALL Requesting Akai s900 Status on Exclusive Channel: 1 "
		     "[SYSEX-CHANNEL: 0], REQUEST_LEN: 8",
		     "[D] OVERALL Requested Akai s900 Status on Exclusive Channel: 1 "
		     "[SYSEX-CHANNEL: 0] --> 129 Bytes" })
		EXPECT_TRUE(h.logged(line)) << line;
	EXPECT_FALSE(the_line.failing);
}

TEST_F(s900, succeeds_without_an_answer_and_keeps_a_long_catalogue_within_bounds)
{
	dev().status = 0;
	const double began = h.time.now();
	play(catalogue + overall, [&] { status(); });
	EXPECT_EQ(dev().status, 1);
	EXPECT_GT(h.time.now() - began, 4) << "the header is waited for when nothing is known";
	std::string entries;
	for (int i = 0; i < 600; i++)
		entries += "53 01 41*10 ";
	play(catalogue + "< @0.1 F0 47 00 0B 40 00 00 " + entries + "F7\n" + overall,
		[&] { status(); });
	EXPECT_EQ(dev().samples, 512);
	EXPECT_TRUE(h.logged("[W] The sampler's catalogue is longer than a list"));
}

TEST_F(s900, lists_want_a_status)
{
	dev().status = 0;
	play("", [&] {
		akai_s900_getproglist(1, 0, &dev());
		akai_s900_getsamplelist(1, 0, &dev());
		akai_s900_getmultilist(1, 0, &dev());
		akai_s900_upload_sample("C:\\X");
		akai_s900_download_sample(1, 0, "X");
	});
	int told = 0;
	for (const std::string &line : h.log())
		told += line == "WARNING! Must do a 'getstatus' before\r\n";
	EXPECT_EQ(told, 5);
}

// ---- Programs ----------------------------------------------------------------------------

const std::string one_program =
	catalogue + "< F0 47 00 0B 40 00 00 50 07 42 41 53 53 4C 49 4E 45 20 20 F7\n" + overall;
const std::string ask_7 = "> F0 47 00 02 40 07 00 F7\n";

TEST_F(s900, a_program_fills_its_record)
{
	programs(one_program + ask_7 + "< " +
		 text_of(program_bytes(head_of_two, { keygroup_a, keygroup_b })));
	const _program &p = dev().program[0];
	EXPECT_EQ(p.crossfade_enable, 0x7F);
	ASSERT_EQ(p.keygroups, 2);
	const _keygroup &a = p.keygroup[0], &b = p.keygroup[1];
	const std::pair<i32, i32> numbers[] = { { a.keyzones, 2 }, { a.high_note, 72 },
		{ a.low_note, 36 }, { a.amp_attack, 1 }, { a.amp_decay, 2 }, { a.amp_sustain, 3 },
		{ a.amp_release, 4 }, { a.s900_transpose_disable, 1 },
		{ a.s900_velocity_crossfade, 0 }, { a.s900_lfo_desync, 4 },
		{ a.s900_one_shot_trigger, 0 }, { a.s900_velocity_release_from_note_on, 16 },
		{ a.s900_velocity_crossfade_curve_modification, 0 }, { a.s900_output, 255 },
		{ a.s900_midi_offset, 10 }, { a.filter_attack, 5 }, { a.filter_decay, 6 },
		{ a.filter_sustain, 7 }, { a.filter_release, 8 }, { a.keyzone[0].low_velocity, 0 },
		{ a.keyzone[0].high_velocity, 80 }, { a.keyzone[1].low_velocity, 80 },
		{ a.keyzone[1].high_velocity, 127 }, { a.keyzone[0].transpose_offset, 16 },
		{ a.keyzone[1].transpose_offset, -16 }, { a.keyzone[0].s900_filter, 99 },
		{ a.keyzone[1].s900_filter, 50 }, { a.keyzone[0].s900_loudness, 10 },
		{ a.keyzone[1].s900_loudness, -18 }, { b.s900_transpose_disable, 0 },
		{ b.s900_velocity_crossfade, 2 }, { b.s900_lfo_desync, 0 },
		{ b.s900_one_shot_trigger, 8 }, { b.s900_velocity_release_from_note_on, 0 },
		{ b.s900_velocity_crossfade_curve_modification, 32 }, { b.s900_output, 3 },
		{ b.keyzone[0].high_velocity, 128 }, { b.keyzone[1].low_velocity, 128 },
		{ b.keyzone[0].transpose_offset, 16384 }, { b.keyzone[1].transpose_offset, -16383 },
		{ b.keyzone[0].s900_loudness, 64 }, { b.keyzone[1].s900_loudness, -63 } };
	int row = 0;
	for (const auto &[is, wanted] : numbers)
		EXPECT_EQ(is, wanted) << "row " << row++;
	EXPECT_STREQ(a.keyzone[0].samplename, "BASS 1");
	EXPECT_STREQ(a.keyzone[1].samplename, "SNARE");
	EXPECT_STREQ(b.keyzone[0].samplename, "ABCDEFGHI");
	EXPECT_STREQ(b.keyzone[1].samplename, "");
	for (const char *line : { "[D] Requesting PRG-Info (7)",
		     "[D] --> NAME: {BASSLINE} <> [BASSLINE], 53: 2, 54: 0",
		     "[D] KEYGROUP[0], TRANSPOSE_OFFSET(0): 16[0x00000010] TRANSPOSE_OFFSET(1): "
		     "-16[0xFFFFFFF0]",
		     "[D] KEYGROUP[0], FILTER(0): 99, LOUDNESS(0): 10 (0), FILTER(1): 50, "
		     "LOUDNESS(1): -18",
		     "[D] SOFT-Sample-Name: [BASS 1] (42 00 41 00 53 00 53 00 20 00 31 00 20 00 20 "
		     "00 20 00)",
		     "[D] LOUD-Sample-Name: [SNARE] (53 00 4E 00 41 00 52 00 45 00 20 00 20 00 20 "
		     "00 20 00) VEL-SWITCH: 0x50, 0x00" })
		EXPECT_TRUE(h.logged(line)) << line;
}

TEST_F(s900, a_program_that_comes_short_has_the_keygroups_that_came)
{
	std::vector<u8> whole = program_bytes(head_of_two, { keygroup_a, keygroup_b });
	// The second keygroup ends before byte 363.
	for (const auto &[length, keygroups] : std::vector<std::pair<int, int>>{ { 0, 0 },
		     { 30, 0 }, { 84, 0 }, { 222, 0 }, { 223, 1 }, { 362, 1 }, { 363, 2 } }) {
		std::vector<u8> cut(whole.begin(), whole.begin() + length);
		dev().program[0].keygroups = 99;
		programs(one_program + ask_7 + "< " + (length ? text_of(cut) : "nothing"));
		EXPECT_EQ(dev().program[0].keygroups, keygroups) << length;
	}
	whole[53] = 0;
	programs(one_program + ask_7 + "< " + text_of(whole));
	EXPECT_EQ(dev().program[0].keygroups, 0);
}

TEST_F(s900, a_machine_that_falls_silent_is_left_alone)
{
	std::string list = catalogue + "< F0 47 00 0B 40 00 00 ";
	for (int i = 0; i < 5; i++)
		list += format_text("50 %02X 41*10 53 %02X 41*10 ", i, i);
	list += "F7\n" + overall + "< F0 47 00 0C 40 00 00 00*121 F7\n";
	std::string asked;
	for (int i = 0; i < 3; i++)
		asked += format_text("> F0 47 00 02 40 %02X 00 F7\n", i);
	dev().program[4].keygroups = 3;
	programs(list + asked);
	EXPECT_EQ(dev().program[4].keygroups, 0) << "none of an earlier list";
	EXPECT_TRUE(h.logged("[W] Reading of programs ended early"));
	for (std::size_t at; (at = asked.find(" 02 40 ")) != asked.npos;)
		asked.replace(at, 7, " 04 40 ");
	play(asked, [&] { akai_s900_getsamplelist(1, 0, &dev()); });
	EXPECT_TRUE(the_line.failing);
}

// ---- Samples -----------------------------------------------------------------------------

// A word of 16 or 32 bits in pairs; 40000 is 9C40, in pairs 40 00 1C 01.
const std::string header_of_kick =
	"F0 47 00 0C 40 04 00 4B 00 49 00 43 00 4B 00 00*24 "          // up to 39
	"01 01 02 00 01 00 00 01 40 00 1C 01 4F 01 03 00 00*4 4C 00*11 " // 39 to 71
	"0A 00*7 7F 01 00*6 00*40 00 F7";

TEST_F(s900, a_header_fills_the_record)
{
	const auto header = hex(header_of_kick);
	ASSERT_EQ(header.size(), 129u);
	dev().samples = 1;
	copy_text(dev().sample[0].name, "KICK+");
	dev().sample[0].number = 4;
	play("> F0 47 00 04 40 04 00 F7\n< " + header_of_kick,
		[&] { akai_s900_sample_info(1, 0, "whatever"); });
	const _sample &s = dev().sample[0];
	const std::pair<u64, u64> numbers[] = { { s.sample_length, 0x80010281 },
		{ s.end_position, 0x80010281 }, { s.sample_bytes, 0x40008140 },
		{ s.sample_rate, 16000 }, { s.original_pitch, 0x3CF >> 4 }, { s.playback_mode, 1 },
		{ s.loop_start, 10 }, { s.loop_end, 265 }, { s.channels, 1 },
		{ s.start_position, 0 }, { s.absolute_start, 0 }, { s.loop_times, 9999 },
		{ s.bitspersample, 12 }, { s.bytespersample, 2 } };
	int row = 0;
	for (const auto &[is, wanted] : numbers)
		EXPECT_EQ(is, wanted) << "row " << row++;
	EXPECT_STREQ(s.name, "KICK+") << "the list's name stands";
	EXPECT_TRUE(h.logged("[D] Requesting SAMP-Info (4) [KICK+]"));
	EXPECT_TRUE(
		h.logged("[D] --> NAME: {KICK} <> [KICK+], Rate: 16000 Hz (40 00 1C 01), Pitch: "
			 "975 (4F 01 03 00) --> 60, LEN: [01 01 02 00 01 00 00 01] "
			 "(-2147417471) (TOTAL_DATA: 129 Bytes)"));
	for (const auto &[letter, mode] :
		{ std::pair{ "41", 2 }, { "4C", 1 }, { "4F", 0 }, { "00", 0 } }) {
		std::string other = header_of_kick;
		other.replace(other.find("4C 00*11"), 2, letter);
		play("> F0 47 00 04 40 04 00 F7\n< " + other,
			[&] { akai_s900_getsamplelist(1, 0, &dev()); });
		EXPECT_EQ(dev().sample[0].playback_mode, mode) << letter;
	}
}

TEST_F(s900, asked_about_a_sample_it_reads_the_status_first_if_it_must)
{
	dev().status = 0;
	play(catalogue + "< F0 47 00 0B 40 00 00 53 04 4B*10 F7\n" + overall +
			"> F0 47 00 04 40 04 00 F7\n< F0 47 00 0C 40 04 00 00*121 F7",
		[&] { akai_s900_sample_info(1, 0, "KKKKKKKKK"); });
	EXPECT_EQ(dev().samples, 1);
}

TEST_F(s900, the_later_alphabet_is_there)
{
	char out[6];
	const u8 in[] = { 0, 11, 40, 42, 255 };
	from_akai_900_ascii({ in }, 5, out);
	EXPECT_STREQ(out, "0A.??");
	const u8 ends[] = { 10, 41, 12 };
	from_akai_900_ascii({ ends }, 3, out);
	EXPECT_STREQ(out, " ");
}

// ---- Saving ------------------------------------------------------------------------------

// By place in the list, not by number.
const std::string ask_place_0 = "> F0 47 00 02 40 00 00 F7\n";

TEST_F(s900, a_saved_program_is_what_was_read_with_the_record_over_it)
{
	add_programs(1);
	_program &p = dev().program[0];
	p.keygroups = 3;
	_keygroup &k = p.keygroup[0];
	k.high_note = 127, k.low_note = 24, k.s900_output = 0xAB, k.s900_midi_offset = 15;
	k.amp_attack = 99, k.amp_decay = 98, k.amp_sustain = 97, k.amp_release = 96;
	k.filter_attack = 95, k.filter_decay = 94, k.filter_sustain = 93, k.filter_release = 92;
	k.s900_velocity_crossfade = 77, k.s900_one_shot_trigger = 1;
	_keyzone &soft = k.keyzone[0], &loud = k.keyzone[1];
	copy_text(soft.samplename, "Lo+-é"), copy_text(loud.samplename, "abcdefghij");
	soft.high_velocity = 128, soft.transpose_offset = -512, loud.transpose_offset = 511;
	soft.s900_filter = 0xC1, loud.s900_filter = 5;
	soft.s900_loudness = -50, loud.s900_loudness = 50;
	p.keygroup[1] = k;
	p.keygroup[2].s900_lfo_desync = 1;
	// What the machine has of the first keygroup and the record does not know stays; of the
	// flags' byte that is bit 64. The name is shorter than what was there.
	places before = keygroup_a;
	before.push_back({ 119, "55" });
	const places known = { { 83, "7F 00 18 00 00 01 63 00 62 00 61 00 60 00" },
		{ 121, "2B 01 0F 00" },
		{ 131, "4C 00 4F 00 2B 00 2D 00 2E 00 2E 00" }, // é is two bytes
		{ 151, "5F 00 5E 00 5D 00 5C 00" }, { 167, "00 00 7E 01 41 00 4E 01" },
		{ 175, "41 00 42 00 43 00 44 00 45 00 46 00 47 00 48 00 49 00" },
		{ 211, "7F 01 01 00 41 00 32 00" } };
	places first = before, second = keygroup_b;
	first.insert(first.end(), known.begin(), known.end());
	first.push_back({ 119, "4A" }); // 64, 2 and 8
	second.insert(second.end(), known.begin(), known.end());
	second.push_back({ 119, "0A" });
	// The third is new: the template, and a record of zeros over it.
	const places third = { { 97, "0A 00 32 00" }, { 105, "1E" }, { 111, "63" }, { 113, "40" },
		{ 115, "2A" }, { 119, "04" }, { 127, "32" }, { 159, "40" } };
	places head = head_of_two;
	head[0] = { 5, "00" };
	head.push_back({ 53, "03 00" });
	save(ask_place_0 + "< " + text_of(program_bytes(head_of_two, { before, keygroup_b })) +
		"\n> " + text_of(program_bytes(head, { first, second, third })));
	EXPECT_TRUE(h.boxes.empty()) << last_box();
	for (const char *line :
		{ "[D] S900 Request for saving program [0] --> [BASSLINE] (7) SYSEX: 1",
			"[D] Requesting Program Index for 0 of COMMON SYSEX (8 Bytes) [F0 47 00 02 "
			"40 00 00 F7], Keygroups: 3",
			"[D] Program has stored 2 Keygroups", "[D] RESULT[53] = 0x03" })
		EXPECT_TRUE(h.logged(line)) << line;
	const std::vector<std::string> log = h.log();
	const auto logged = [&](const char *begin) {
		return std::any_of(log.begin(), log.end(),
			[&](const std::string &line) { return line.starts_with(begin); });
	};
	EXPECT_TRUE(logged("[D] --> (365 Bytes) [F0 47 00 0A 40 07 "));
	EXPECT_TRUE(logged("[D] Requesting update for Program Index for 0 of COMMON SYSEX (505 "
			   "Bytes) [F0 47 00 0A 40 00 "));
}

TEST_F(s900, a_program_without_keygroups_is_85_bytes_on_the_channel_of_the_control)
{
	add_programs(2);
	current_sampler->sampler_sysex = 5;
	places sent = no_keygroups, back = no_keygroups;
	sent.push_back({ 2, "04" }), back.push_back({ 2, "04" });
	back[0] = { 5, "01" };
	copy_text(dev().program[1].name, "BA");
	const std::vector<u8> message = program_bytes(back, {});
	EXPECT_EQ(message.size(), 85u);
	save("> F0 47 04 02 40 01 00 F7\n< " + text_of(program_bytes(sent, {})) + "\n> " +
			text_of(message),
		1);
	EXPECT_TRUE(h.boxes.empty());
}

TEST_F(s900, what_did_not_come_whole_is_never_written_back)
{
	add_programs(1);
	dev().program[0].keygroups = 2;
	const std::vector<u8> whole = program_bytes(head_of_two, { keygroup_a, keygroup_b });
	const std::string as_it_was =
		"The program [BASSLINE] was not saved, and the sampler has it as it was: ";
	save(ask_place_0);
	EXPECT_EQ(
		h.boxes.back(), (shown_box{ as_it_was + "the sampler does not answer.", "ERROR" }));
	for (const std::size_t length : { 10, 54, 84, 363, 364 }) {
		h.boxes.clear();
		save(ask_place_0 + "< " + text_of({ whole.begin(), whole.begin() + length }));
		EXPECT_EQ(last_box(), as_it_was + "what the sampler sent of it broke off.")
			<< length;
	}
	h.boxes.clear();
	save(ask_place_0 + "< " + text_of({ whole.begin(), whole.begin() + 200 }) + " F7");
	EXPECT_EQ(h.boxes.size(), 1u) << "two keygroups were promised";
	save("", 1), save("", -1);
	EXPECT_EQ(last_box(), "The program is not in the sampler's list. Read the list again.");
	dev().program[0].keygroups = 128;
	save("");
	EXPECT_NE(last_box().find("counts to 127"), std::string::npos) << last_box();
}

TEST_F(s900, the_user_is_asked_before_another_program_is_overwritten)
{
	add_programs(1);
	std::vector<u8> damaged = program_bytes(head_of_two, { keygroup_a, keygroup_b });
	damaged[84] ^= 1;
	places bo = head_of_two;
	bo.push_back({ 9, "4F 00 20 00 20 00 20 00 20 00 20 00 20 00" });
	const struct {
		std::vector<u8> stored;
		int keygroups;
		const char *words;
	} rows[] = {
		{ damaged, 2, "It came damaged from the sampler: its checksum is wrong. " },
		{ program_bytes(bo, { keygroup_a, keygroup_b }), 2,
			"In its place the sampler has the program [BO]. " },
		{ program_bytes(head_of_two, { keygroup_a, keygroup_b }), 1,
			"The sampler has 2 keygroups of it and this computer 1; the others will be "
			"gone. " },
	};
	for (const auto &it : rows) {
		h.boxes.clear();
		h.answers = { false };
		dev().program[0].keygroups = it.keygroups;
		save(ask_place_0 + "< " + text_of(it.stored));
		ASSERT_EQ(h.boxes.size(), 1u);
		EXPECT_EQ(h.boxes[0],
			(shown_box{ std::string("Save the program [BASSLINE]? ") + it.words,
				"WARNING" }));
	}
	// Said yes: one keygroup goes.
	h.answers = { true };
	dev().program[0].keygroups = 0;
	places head = head_of_two;
	head.push_back({ 5, "00" }), head.push_back({ 53, "00" });
	save(ask_place_0 + "< " + text_of(rows[2].stored) + "\n> " +
		text_of(program_bytes(head, {})));
}

// ---- With a machine ----------------------------------------------------------------------

class s900_machine_test : public s900
{
protected:
	s900_machine_test()
	{
		machine.add_program("BASSLINE", 2);
		machine.add_program("Choir", 64 - 2 - 1);
		machine.add_program("EMPTY", 1);
		machine.add_sample("KICK", 40000, std::vector<std::int16_t>(61, 5));
		machine.add_sample("ABCDEFGHIJ", 20000, std::vector<std::int16_t>(60, 6));
		host.midi = &virtual_midi;
		port = plug_midi(h.time, machine.on_wire(h.time), "virtual");
		selected_midi_in_interface = selected_midi_out_interface = 0;
	}
	~s900_machine_test()
	{
		close_midi_output();
		unplug_all_midi();
	}
	void read()
	{
		status();
		akai_s900_getproglist(1, 0, &dev());
		akai_s900_getsamplelist(1, 0, &dev());
	}
	s900_machine machine{ s900_model::s950 };
	int port;
};

TEST_F(s900_machine_test, shows_what_the_machine_holds)
{
	read();
	ASSERT_EQ(dev().programs, 3);
	EXPECT_STREQ(dev().program[1].name, "CHOIR");
	EXPECT_EQ(dev().program[1].keygroups, 61) << "8625 bytes, more than two seconds of wire";
	EXPECT_EQ(dev().program[1].keygroup[60].high_note, 127);
	ASSERT_EQ(dev().samples, 2);
	EXPECT_STREQ(dev().sample[1].name, "ABCDEFGHI");
	EXPECT_EQ(dev().sample[0].sample_length, 61u);
	EXPECT_EQ(dev().sample[0].sample_rate, 16000u);
	EXPECT_EQ(dev().sample[0].original_pitch, 60);
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_FALSE(the_line.failing);
}

TEST_F(s900_machine_test, holds_what_was_saved)
{
	read();
	_program &p = dev().program[0];
	const _keygroup untouched = dev().program[2].keygroup[0];
	p.keygroups = 3;
	_keygroup &k = p.keygroup[2];
	k = p.keygroup[1];
	k.low_note = 40, k.s900_output = 255, k.amp_attack = 99, k.s900_lfo_desync = 0;
	k.keyzone[0].transpose_offset = -100, k.keyzone[1].s900_loudness = -50;
	k.keyzone[0].high_velocity = k.keyzone[1].low_velocity = 64;
	copy_text(k.keyzone[0].samplename, "KICK     ");
	copy_text(k.keyzone[1].samplename, "ABCDEFGHI");
	k.keyzone[0].s900_filter = k.keyzone[1].s900_filter = 33;
	machine.keygroup_room = 100;
	const _keygroup wanted = k;
	akai_s900_save_program(0, nullptr);
	read();
	ASSERT_EQ(dev().program[0].keygroups, 3);
	_keygroup is = dev().program[0].keygroup[2];
	EXPECT_STREQ(is.keyzone[0].samplename, "KICK");
	copy_text(is.keyzone[0].samplename, "KICK     ");
	EXPECT_EQ(std::memcmp(&is, &wanted, sizeof is), 0);
	EXPECT_EQ(std::memcmp(&dev().program[2].keygroup[0], &untouched, sizeof untouched), 0);
	akai_s900_save_program(1, nullptr);
	EXPECT_EQ(machine.programs[1].keygroups.size(), 61u);
	EXPECT_TRUE(h.boxes.empty()) << last_box();
}

TEST_F(s900_machine_test, loses_no_program_by_any_fault_at_any_exchange)
{
	machine.programs[1].keygroups.resize(2); // quicker
	read();
	const auto same = [](const s900_program &a, const s900_program &b) {
		return a.common == b.common && a.keygroups == b.keygroups;
	};
	const std::vector<s900_program> before = machine.programs;
	for (int kind = 0; kind <= static_cast<int>(wire_fault_kind::overrun); kind++)
		for (int exchange = 1; exchange <= 10; exchange++) {
			port_wire(port).set_fault({ .kind = static_cast<wire_fault_kind>(kind),
				.exchange = exchange });
			read();
			for (int i = 0; i < dev().programs; i++)
				EXPECT_LE(dev().program[i].keygroups, max_keygroups);
			port_wire(port).clear_faults();
			read(); // after that all is well
			ASSERT_EQ(dev().programs, 3) << kind << " " << exchange;
			ASSERT_EQ(dev().program[1].keygroups, 2);
			if (exchange > 2)
				continue;
			h.answers = { false };
			port_wire(port).set_fault({ .kind = static_cast<wire_fault_kind>(kind),
				.exchange = exchange });
			akai_s900_save_program(0, nullptr);
			h.time.run_until(h.time.now() + 5);
			port_wire(port).clear_faults();
			h.answers.clear();
			for (std::size_t i = 0; i < 3; i++)
				ASSERT_TRUE(same(machine.programs[i], before[i]))
					<< kind << " " << exchange;
		}
	port_wire(port).set_fault({ .kind = wire_fault_kind::unplugged });
	akai_s900_save_program(0, nullptr);
	EXPECT_TRUE(the_line.failing);
}

} // namespace
} // namespace velmor
