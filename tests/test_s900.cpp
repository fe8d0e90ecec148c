// test_s900.cpp - lists and programs of an S900: byte by byte, and with a virtual machine
//
// What a byte means was written down from the format, not from the driver. The virtual machine
// was written apart from it.

#include "tests/support/s900_talk.h"
#include "tests/support/told.h"
#include <cstring>

namespace velmor
{
namespace
{

// Bytes at their places in a message that is zero elsewhere.
using places = std::vector<std::pair<std::size_t, const char *>>;

places operator+(places a, const places &b)
{
	a.insert(a.end(), b.begin(), b.end());
	return a;
}

// A program, its keygroups 140 bytes apart, closed with the exclusive-or of bytes 7 to there.
std::vector<u8> program_bytes(const places &head, const std::vector<places> &keygroups)
{
	const std::size_t end = 83 + 140 * keygroups.size();
	std::vector<u8> message(end + 2);
	const auto put = [&](std::size_t base, const places &rows) {
		for (const auto &[at, text] : rows) {
			const std::vector<u8> bytes = hex(text);
			std::copy(bytes.begin(), bytes.end(), message.begin() + base + at);
		}
	};
	put(0, places{ { 0, "F0 47 00 0A 40" } } + head);
	for (std::size_t k = 0; k < keygroups.size(); k++)
		put(140 * k, keygroups[k]);
	for (std::size_t i = 7; i < end; i++)
		message[end] ^= message[i];
	message[end + 1] = 0xF7;
	return message;
}

std::string program_text(const places &head, const std::vector<places> &keygroups)
{
	return hex_text(program_bytes(head, keygroups));
}

// BASSLINE; positional crossfade on; 2 keygroups.
const places head_of_two = { { 5, "07" },
	{ 7, "42 00 41 00 53 00 53 00 4C 00 49 00 4E 00 45 00 20 00 20 00" }, { 27, "11 00 12" },
	{ 49, "7F" }, { 53, "02" } };
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

const std::string catalogue = "> F0 47 00 03 40 00 00 F7\n",
		  overall = "> F0 47 00 04 40 00 00 F7\n",
		  header_0 = "< F0 47 00 0C 40 00 00 00*121 F7\n";

class s900 : public s900_talk
{
protected:
	s900()
	{
		dev().programs = 1;
		copy_text(dev().program[0].name, "BASSLINE");
		dev().program[0].number = 7;
	}
	void status(const std::string &script)
	{
		play(script, [&] { akai_s900_getstatus(1, 0, &dev()); });
	}
	void programs(const std::string &script)
	{
		play(script, [&] { akai_s900_getproglist(1, 0, &dev()); });
	}
	void save(const std::string &script, int program = 0)
	{
		play(script, [&] { akai_s900_save_program(program, nullptr); });
	}
};

// ---- Catalogue ---------------------------------------------------------------------------

TEST_F(s900, reads_the_catalogue_up_to_what_is_no_entry)
{
	const std::string answer = "< @0.1 F0 47 00 0B 40 00 00 ",
			  bass = "50 02 42 41 53 53 20 31 20 20 20 20 ", // P 2
		kick = "53 00 4B 49 43 4B 20 20 20 20 20 20 ",           // S 0
		ten = "53 05 41 42 43 44 45 46 47 48 49 4A ";            // the tenth is J
	std::string many;
	for (int i = 0; i < 600; i++)
		many += "53 01 41*10 ";
	const struct {
		std::string answer;
		int programs, samples;
	} rows[] = {
		{ "", 0, 0 },
		{ answer + bass + "53 01 41\n", 1, 0 },
		{ answer + "F7\n", 0, 0 },
		{ answer + kick + "4D 00 41*10 " + ten + "F7\n", 0, 1 }, // neither S nor P
		{ answer + kick + "53 01 F7\n", 0, 1 },                  // F7 for a name
		{ answer + bass + "53 01 41 42 43 44 45 F7\n", 1, 0 },   // cut off
		{ answer + many + "F7\n", 0, 512 },
		{ answer + bass + kick + ten + "F7\n", 1, 2 },
	};
	for (const auto &it : rows) {
		dev().samples = dev().programs = dev().multis = 9;
		dev().status = 0;
		const bool sample_0 = it.answer.find(kick) != std::string::npos;
		const double began = h.time.now();
		status(catalogue + it.answer + overall + (sample_0 ? header_0 : ""));
		EXPECT_EQ(dev().programs, it.programs) << it.answer;
		EXPECT_EQ(dev().samples, it.samples) << it.answer;
		EXPECT_EQ(dev().multis, 0);
		EXPECT_EQ(dev().status, 1);
		EXPECT_STREQ(dev().version, "1.1");
		// Where not all is known, the header of sample 0 is waited for as well.
		const bool complete = it.answer.ends_with("F7\n");
		EXPECT_EQ(h.time.now() - began < 4, complete) << it.answer;
		EXPECT_EQ(the_line.failing, !complete);
	}
	EXPECT_STREQ(dev().program[0].name, "BASS 1");
	EXPECT_EQ(dev().program[0].number, 2);
	EXPECT_STREQ(dev().sample[0].name, "KICK");
	EXPECT_STREQ(dev().sample[1].name, "ABCDEFGHI");
	EXPECT_EQ(dev().sample[1].number, 5);
	expect_logged(
		R"([D] Requesting Akai s900 Status on Exclusive Channel: 1 [SYSEX-CHANNEL: 0], REQUEST_LEN: 8
[D] Requested Akai s900 Status on Exclusive Channel: 1 [SYSEX-CHANNEL: 0] --> 44 Bytes
[D] S900 (Type: P), NR: 2 {BASS 1}
[D] S900 (Type: S), NR: 5 {ABCDEFGHI}
[D] OVERALL Requesting Akai s900 Status on Exclusive Channel: 1 [SYSEX-CHANNEL: 0], REQUEST_LEN: 8
[D] OVERALL Requested Akai s900 Status on Exclusive Channel: 1 [SYSEX-CHANNEL: 0] --> 129 Bytes
)");
}

TEST_F(s900, lists_and_transfers_want_a_status)
{
	dev().status = 0;
	play("", [&] {
		akai_s900_getproglist(1, 0, &dev());
		akai_s900_getsamplelist(1, 0, &dev());
		akai_s900_getmultilist(1, 0, &dev());
		akai_s900_upload_sample("C:\\X");
		akai_s900_download_sample(1, 0, "X");
	});
	const std::vector<std::string> log = h.log();
	EXPECT_EQ(
		std::count(log.begin(), log.end(), "WARNING! Must do a 'getstatus' before\r\n"), 5);
}

// ---- Programs ----------------------------------------------------------------------------

const std::string one_program = catalogue +
				"< F0 47 00 0B 40 00 00 50 07 42 41 53 53 4C 49 4E 45 20 20 F7\n" +
				overall + "> F0 47 00 02 40 07 00 F7\n< ";

TEST_F(s900, a_program_fills_its_record)
{
	programs(one_program + program_text(head_of_two, { keygroup_a, keygroup_b }));
	const _program &p = dev().program[0];
	EXPECT_EQ(p.crossfade_enable, 0x7F);
	ASSERT_EQ(p.keygroups, 2);
	const _keygroup &a = p.keygroup[0], &b = p.keygroup[1];
	EXPECT_EQ(told(akai_s900_keygroup_parameters, a),
		"high_note 72, low_note 36, amp_attack 1, amp_decay 2, amp_sustain 3, amp_release "
		"4, "
		"s900_transpose_disable 1, s900_velocity_crossfade 0, s900_lfo_desync 4, "
		"s900_one_shot_trigger 0, s900_velocity_release_from_note_on 16, "
		"s900_velocity_crossfade_curve_modification 0, s900_output 255, s900_midi_offset "
		"10, "
		"filter_attack 5, filter_decay 6, filter_sustain 7, filter_release 8");
	EXPECT_EQ(told(akai_s900_keygroup_parameters, b),
		"high_note 127, low_note 24, amp_attack 0, amp_decay 0, amp_sustain 0, amp_release "
		"0, "
		"s900_transpose_disable 0, s900_velocity_crossfade 2, s900_lfo_desync 0, "
		"s900_one_shot_trigger 8, s900_velocity_release_from_note_on 0, "
		"s900_velocity_crossfade_curve_modification 32, s900_output 3, s900_midi_offset 0, "
		"filter_attack 0, filter_decay 0, filter_sustain 0, filter_release 0");
	const struct {
		const _keyzone &zone;
		const char *rows;
		int low, high;
	} zones[] = {
		{ a.keyzone[0],
			"samplename BASS 1, transpose_offset 16, s900_filter 99, s900_loudness 10",
			0, 80 },
		{ a.keyzone[1],
			"samplename SNARE, transpose_offset -16, s900_filter 50, s900_loudness -18",
			80, 127 },
		{ b.keyzone[0],
			"samplename ABCDEFGHI, transpose_offset 16384, s900_filter 0, "
			"s900_loudness 64",
			0, 128 },
		{ b.keyzone[1],
			"samplename , transpose_offset -16383, s900_filter 0, s900_loudness -63",
			128, 127 },
	};
	for (const auto &it : zones) {
		EXPECT_EQ(told(akai_s900_keyzone_parameters, it.zone), it.rows);
		EXPECT_EQ(it.zone.low_velocity, it.low) << it.rows;
		EXPECT_EQ(it.zone.high_velocity, it.high) << it.rows;
	}
	EXPECT_EQ(b.keyzones, 2);
	expect_logged(R"([D] Requesting PRG-Info (7)
[D] --> NAME: {BASSLINE} <> [BASSLINE], 53: 2, 54: 0
[D] KEYGROUP[0], TRANSPOSE_OFFSET(0): 16[0x00000010] TRANSPOSE_OFFSET(1): -16[0xFFFFFFF0]
[D] KEYGROUP[0], FILTER(0): 99, LOUDNESS(0): 10 (0), FILTER(1): 50, LOUDNESS(1): -18
[D] SOFT-Sample-Name: [BASS 1] (42 00 41 00 53 00 53 00 20 00 31 00 20 00 20 00 20 00)
[D] LOUD-Sample-Name: [SNARE] (53 00 4E 00 41 00 52 00 45 00 20 00 20 00 20 00 20 00) VEL-SWITCH: 0x50, 0x00
)");
}

TEST_F(s900, a_program_that_comes_short_has_the_keygroups_that_came)
{
	std::vector<u8> whole = program_bytes(head_of_two, { keygroup_a, keygroup_b });
	// The second keygroup ends before byte 363.
	for (const auto &[length, keygroups] : std::vector<std::pair<int, int>>{ { 0, 0 },
		     { 30, 0 }, { 84, 0 }, { 222, 0 }, { 223, 1 }, { 362, 1 }, { 363, 2 } }) {
		dev().program[0].keygroups = 99;
		const auto cut = std::span(whole).first(static_cast<std::size_t>(length));
		programs(one_program + (length ? hex_text(cut) : "nothing"));
		EXPECT_EQ(dev().program[0].keygroups, keygroups) << length;
	}
	whole[53] = 0;
	programs(one_program + hex_text(whole));
	EXPECT_EQ(dev().program[0].keygroups, 0);
}

TEST_F(s900, a_machine_that_falls_silent_is_left_alone)
{
	std::string list = catalogue + "< F0 47 00 0B 40 00 00 ", programs_asked, samples_asked;
	for (int i = 0; i < 5; i++) {
		list += format_text("50 %02X 41*10 53 %02X 41*10 ", i, i);
		if (i < 3)
			programs_asked += format_text("> F0 47 00 02 40 %02X 00 F7\n", i);
		if (i < 3)
			samples_asked += format_text("> F0 47 00 04 40 %02X 00 F7\n", i);
	}
	dev().program[4].keygroups = 3;
	programs(list + "F7\n" + overall + header_0 + programs_asked);
	EXPECT_EQ(dev().program[4].keygroups, 0) << "none of an earlier list";
	expect_logged("[W] Reading of programs ended early\n");
	play(samples_asked, [&] { akai_s900_getsamplelist(1, 0, &dev()); });
}

// ---- Samples -----------------------------------------------------------------------------

TEST_F(s900, a_header_fills_the_record)
{
	// Pairs: 80010281, 9C40, 03CF; a loop from 10 for 255.
	const std::string up_to_mode =
				  "> F0 47 00 04 40 04 00 F7\n< F0 47 00 0C 40 04 00 4B 00 49 00 "
				  "43 00 4B 00 00*24 01 01 02 00 01 00 00 01 40 00 1C 01 4F 01 "
				  "03 00 00*4 ",
			  behind_mode = " 00*11 0A 00*7 7F 01 00*6 00*40 00 F7";
	dev().status = 0;
	for (const auto &[letter, mode] :
		{ std::pair{ "41", 2 }, { "4F", 0 }, { "00", 0 }, { "4C", 1 } }) {
		const std::string list = catalogue +
					 "< F0 47 00 0B 40 00 00 53 04 4B 49 43 4B 2B 20*5 F7\n" +
					 overall;
		// The status is read first if there is none.
		play((dev().status ? "" : list) + up_to_mode + letter + behind_mode,
			[&] { akai_s900_sample_info(1, 0, "whatever"); });
		EXPECT_EQ(dev().sample[0].playback_mode, mode) << letter;
	}
	const _sample &s = dev().sample[0];
	EXPECT_STREQ(s.name, "KICK+") << "the list's name stands";
	EXPECT_EQ(std::vector<u64>({ s.sample_length, s.end_position, s.sample_bytes, s.sample_rate,
			  s.original_pitch, s.loop_start, s.loop_end, s.channels, s.start_position,
			  s.absolute_start, s.loop_times, s.bitspersample, s.bytespersample }),
		std::vector<u64>({ 0x80010281, 0x80010281, 0x40008140, 16000, 60, 10, 265, 1, 0, 0,
			9999, 12, 2 }));
	expect_logged(R"([D] Requesting SAMP-Info (4) [KICK+]
[D] --> NAME: {KICK} <> [KICK+], Rate: 16000 Hz (40 00 1C 01), Pitch: 975 (4F 01 03 00) --> 60, LEN: [01 01 02 00 01 00 00 01] (-2147417471) (TOTAL_DATA: 129 Bytes)
)");
	char out[6];
	const u8 later[] = { 0, 11, 40, 42, 255 }, ends[] = { 10, 41, 12 };
	from_akai_900_ascii({ later }, 5, out);
	EXPECT_STREQ(out, "0A.??");
	from_akai_900_ascii({ ends }, 3, out);
	EXPECT_STREQ(out, " ");
}

// ---- Saving ------------------------------------------------------------------------------

// By place in the list, not by number.
const std::string ask_0 = "> F0 47 00 02 40 00 00 F7\n< ";

TEST_F(s900, a_saved_program_is_what_was_read_with_the_record_over_it)
{
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
	// What the record does not know stays; of the flags' byte that is bit 64. The name is
	// shorter than what was there.
	const places before = keygroup_a + places{ { 119, "55" } };
	const places known = { { 83, "7F 00 18 00 00 01 63 00 62 00 61 00 60 00" },
		{ 121, "2B 01 0F 00" },
		{ 131, "4C 00 4F 00 2B 00 2D 00 2E 00 2E 00" }, // é is two bytes
		{ 151, "5F 00 5E 00 5D 00 5C 00" }, { 167, "00 00 7E 01 41 00 4E 01" },
		{ 175, "41 00 42 00 43 00 44 00 45 00 46 00 47 00 48 00 49 00" },
		{ 211, "7F 01 01 00 41 00 32 00" } };
	// The third is new: the template, and a record of zeros over it.
	const places third = { { 97, "0A 00 32 00" }, { 105, "1E" }, { 111, "63" }, { 113, "40" },
		{ 115, "2A" }, { 119, "04" }, { 127, "32" }, { 159, "40" } };
	save(ask_0 + program_text(head_of_two, { before, keygroup_b }) + "\n> " +
		program_text(head_of_two + places{ { 5, "00" }, { 53, "03 00" } },
			{ before + known + places{ { 119, "4A" } },
				keygroup_b + known + places{ { 119, "0A" } }, third }));
	EXPECT_TRUE(h.boxes.empty()) << last_box();
	expect_logged(R"([D] S900 Request for saving program [0] --> [BASSLINE] (7) SYSEX: 1
[D] Requesting Program Index for 0 of COMMON SYSEX (8 Bytes) [F0 47 00 02 40 00 00 F7], Keygroups: 3
[D] --> (365 Bytes) [F0 47 00 0A 40 07 ..
[D] Program has stored 2 Keygroups
[D] RESULT[53] = 0x03
[D] Requesting update for Program Index for 0 of COMMON SYSEX (505 Bytes) [F0 47 00 0A 40 00 ..
)");
}

TEST_F(s900, what_did_not_come_whole_is_never_written_back)
{
	_program &p = dev().program[0];
	p.keygroups = 2;
	const std::string whole = program_text(head_of_two, { keygroup_a, keygroup_b });
	const std::string as_it_was =
		"The program [BASSLINE] was not saved, and the sampler has it as it was: ";
	save(ask_0 + "nothing");
	expect_box(as_it_was + "the sampler does not answer.", "ERROR");
	std::string status_byte = whole;
	status_byte.replace(3 * 300, 2, "90");
	for (const std::string &answer : { whole.substr(0, 3 * 84), whole.substr(0, 3 * 363),
		     whole.substr(0, 3 * 364), whole.substr(0, 3 * 200) + "F7", status_byte }) {
		save(ask_0 + answer);
		expect_box(as_it_was + "what the sampler sent of it broke off.", "ERROR");
	}
	for (const int program : { 1, -1 }) {
		save("", program);
		expect_box(
			"The program is not in the sampler's list. Read the list again.", "ERROR");
	}
	p.keygroups = 128;
	save("");
	expect_box("The program [BASSLINE] cannot be sent: a message to this sampler counts to "
		   "127, and "
		   "it is program 0 with 128 keygroups.",
		"ERROR");
}

TEST_F(s900, the_user_is_asked_before_another_program_is_overwritten)
{
	const std::vector<places> both = { keygroup_a, keygroup_b };
	std::vector<u8> damaged = program_bytes(head_of_two, both);
	damaged[84] ^= 1;
	const places bo =
		head_of_two + places{ { 9, "4F 00 20 00 20 00 20 00 20 00 20 00 20 00" } };
	const struct {
		std::string stored;
		int keygroups;
		const char *words;
	} rows[] = {
		{ hex_text(damaged), 2,
			"It came damaged from the sampler: its checksum is wrong. " },
		{ program_text(bo, both), 2, "In its place the sampler has the program [BO]. " },
		{ program_text(head_of_two, both), 1,
			"The sampler has 2 keygroups of it and this computer "
			"1; the others will be gone. " },
	};
	for (const auto &it : rows) {
		h.answers = { false };
		dev().program[0].keygroups = it.keygroups;
		save(ask_0 + it.stored);
		expect_box(std::string("Save the program [BASSLINE]? ") + it.words, "WARNING");
	}
	// Said yes; and as the second of the list, on the control channel less 1.
	dev().programs = 2;
	copy_text(dev().program[1].name, "BASSLINE");
	current_sampler->sampler_sysex = 5;
	const std::string back =
		program_text(head_of_two + places{ { 2, "04" }, { 5, "01" }, { 53, "00" } }, {});
	EXPECT_EQ(back.size(), 3u * 85 - 1);
	save("> F0 47 04 02 40 01 00 F7\n< " +
			program_text(head_of_two + places{ { 2, "04" } }, both) + "\n> " + back,
		1);
}

// ---- With a machine ----------------------------------------------------------------------

class s900_machine_test : public s900_plugged
{
protected:
	s900_machine_test()
	{
		machine.add_program("BASSLINE", 2);
		machine.add_program("Choir", 61);
		machine.add_program("EMPTY", 1);
		machine.add_sample("KICK", 40000, std::vector<std::int16_t>(61, 5));
		machine.add_sample("ABCDEFGHIJ", 20000, std::vector<std::int16_t>(60, 6));
		machine.keygroup_room = 100;
		read_lists();
	}
};

TEST_F(s900_machine_test, holds_what_was_saved)
{
	ASSERT_EQ(dev().programs, 3);
	EXPECT_STREQ(dev().program[1].name, "CHOIR");
	EXPECT_EQ(dev().program[1].keygroups, 61) << "8625 bytes, more than two seconds of wire";
	EXPECT_EQ(dev().program[1].keygroup[60].high_note, 127);
	ASSERT_EQ(dev().samples, 2);
	EXPECT_STREQ(dev().sample[1].name, "ABCDEFGHI");
	EXPECT_EQ(dev().sample[0].sample_length, 61u);
	EXPECT_EQ(dev().sample[0].sample_rate, 16000u);
	EXPECT_FALSE(the_line.failing);
	_program &p = dev().program[0];
	const _keygroup untouched = dev().program[2].keygroup[0];
	p.keygroups = 3;
	_keygroup &k = p.keygroup[2];
	k = p.keygroup[1];
	k.low_note = 40, k.s900_output = 255, k.amp_attack = 99, k.s900_lfo_desync = 0;
	k.keyzone[0].transpose_offset = -100, k.keyzone[1].s900_loudness = -50;
	k.keyzone[0].high_velocity = k.keyzone[1].low_velocity = 64;
	copy_text(k.keyzone[0].samplename, "KICK");
	copy_text(k.keyzone[1].samplename, "ABCDEFGHI");
	k.keyzone[0].s900_filter = k.keyzone[1].s900_filter = 33;
	const _keygroup wanted = k;
	akai_s900_save_program(0, nullptr);
	akai_s900_save_program(1, nullptr);
	read_lists();
	ASSERT_EQ(dev().program[0].keygroups, 3);
	EXPECT_EQ(std::memcmp(&dev().program[0].keygroup[2], &wanted, sizeof wanted), 0);
	EXPECT_EQ(std::memcmp(&dev().program[2].keygroup[0], &untouched, sizeof untouched), 0);
	EXPECT_EQ(machine.programs[1].keygroups.size(), 61u);
	EXPECT_TRUE(h.boxes.empty()) << last_box();
}

TEST_F(s900_machine_test, loses_no_program_by_any_fault_at_any_exchange)
{
	machine.programs[1].keygroups.resize(2); // quicker
	read_lists();
	const auto holds = [&] {
		std::vector<machine::bytes> all;
		for (const s900_program &p : machine.programs) {
			all.push_back(p.common);
			all.insert(all.end(), p.keygroups.begin(), p.keygroups.end());
		}
		return all;
	};
	const auto before = holds();
	for (int kind = 0; kind <= static_cast<int>(wire_fault_kind::overrun); kind++)
		for (int exchange = 1; exchange <= 10; exchange++) {
			const wire_fault fault = { .kind = static_cast<wire_fault_kind>(kind),
				.exchange = exchange };
			with_fault(fault, [&] { read_lists(); });
			read_lists(); // after that all is well
			ASSERT_EQ(dev().programs, 3) << kind << " " << exchange;
			ASSERT_EQ(dev().program[1].keygroups, 2);
			h.answers = { false };
			if (exchange <= 2)
				with_fault(fault, [&] { akai_s900_save_program(0, nullptr); });
			h.answers.clear();
			ASSERT_EQ(holds(), before) << kind << " " << exchange;
		}
	port_wire(port).set_fault({ .kind = wire_fault_kind::unplugged });
	akai_s900_save_program(0, nullptr);
	EXPECT_TRUE(the_line.failing);
}

} // namespace
} // namespace velmor
