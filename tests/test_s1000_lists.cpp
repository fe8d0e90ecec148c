// test_s1000_lists.cpp - status and lists of the S1000 family, byte by byte on the wire

#include "src/akais1000.h"
#include "tests/support/told.h"
#include "tests/support/transcript_midi.h"

namespace velmor
{
namespace
{

class lists : public host_test
{
protected:
	lists() { h.use_sampler(model_s3000, 5); }

	_dev_status &dev() { return *current_sampler->status; }
	_dev_status *answered()
	{
		dev().status = 1;
		return &dev();
	}
	void play(const std::string &script, list_operation operation)
	{
		transcript_midi port(h, script);
		operation(1, 5, &dev());
		EXPECT_TRUE(port.finished());
	}
};

// Exchanges on channel 5, each what is asked and what is answered, "" for silence.
std::string said(std::initializer_list<std::pair<std::string, std::string>> exchanges)
{
	std::string script;
	for (const auto &[request, answer] : exchanges)
		script += "> F0 47 05 " + request + " F7\n" +
			  (answer.empty() ? "< nothing\n" : "< F0 47 05 " + answer + " F7\n");
	return script;
}
constexpr char refused[] = "16 48 01";

// ---- Status ------------------------------------------------------------------------------

constexpr char status_answer[] = "< F0 47 05 01 48 0A 02 00*12 04 F7\n";

TEST_F(lists, a_status_is_logged_by_the_s2000_alone)
{
	play(std::string("> F0 47 05 00 48 F7\n") + status_answer, akai_s1000_getstatus);
	EXPECT_EQ(dev().status, 1);
	EXPECT_STREQ(dev().version, "2.10");
	EXPECT_EQ(dev().exclusive_channel, 5);
	EXPECT_TRUE(h.logged("[D] Requesting Akai S1000 Status on Exclusive Channel: 1 "
			     "[SYSEX-CHANNEL: 5]"));
	for (const std::string &line : h.log())
		EXPECT_EQ(line.find("Requested Akai S1000"), line.npos);
	play(std::string("> F0 47 05 00 48 F7\n") + status_answer, akai_s2000_getstatus);
	expect_logged({ "[D] Requesting Akai S2000 Status on Exclusive Channel: 1 "
			"[SYSEX-CHANNEL: 5] [F0 47 05 00 48 F7]",
		"Requested Akai S2000 Status on Exclusive Channel: 1 "
		"[SYSEX-CHANNEL: 5] --> 21 Bytes [F0 47 05 01 48 0A 02 00 00 00 00 00 "
		"00 00 00 00 00 00 00 04 F7]" });
}

TEST_F(lists, a_status_counts_by_length_or_by_function)
{
	struct {
		const char *what, *answer, *version;
		int status, channel;
	} rows[] = {
		{ "another function, 21 bytes", "< F0 47 05 16 48 02 03 00*12 06 F7", "3.2", 1, 7 },
		{ "another length, function 01", "< F0 47 05 01 48 02 03 F7", "3.2", 1, 1 },
		{ "neither", "< F0 47 05 16 48 02 03 F7", "old", 0, 9 },
		{ "silence", "< nothing", "old", 0, 9 },
		{ "nothing but an end", "< F7", "old", 0, 9 },
		{ "channel 127 and rising", "< F0 47 05 01 48 7F 7F 7F*12 7F F7", "127.127", 1,
			128 },
	};
	for (const auto &it : rows)
		for (list_operation operation : { akai_s1000_getstatus, akai_s2000_getstatus }) {
			dev().status = 0;
			dev().exclusive_channel = 9;
			copy_text(dev().version, "old");
			play(std::string("> F0 47 05 00 48 F7\n") + it.answer, operation);
			EXPECT_EQ(dev().status, it.status) << it.what;
			EXPECT_STREQ(dev().version, it.version) << it.what;
			EXPECT_EQ(dev().exclusive_channel, it.channel) << it.what;
		}
}

TEST_F(lists, without_a_port_the_status_stays_and_a_box_says_so)
{
	akai_s1000_getstatus(1, 5, &dev());
	EXPECT_EQ(dev().status, 0);
	EXPECT_EQ(h.boxes.size(), 1u);
}

// ---- Programs ----------------------------------------------------------------------------

// PIANO and BASS, the first with two keygroups, on a sampler that sends 192 bytes a block.
TEST_F(lists, programs_come_with_keygroups_and_zones)
{
	answered();
	const std::string program_0 = nibbles("01 0C 90  1A 13 0B 18 19 0A*7  00 01 0F 01 18 7F 00 "
					      "FF 63 CE 50 EC 00*15 02  00*29 01 02 00 FE 00*116");
	const std::string program_1 = nibbles("01 0C 90  0C 0B 1D 1D 0A*8  7F 0F 1F 02 00*132");
	const std::string keygroup_0 = nibbles("02 00 00  18 3B 80 FF 63 0C 00*25 "
					       "1A 13 0B 18 19 0A 0C 0D 0A*4 00 7F");
	const std::string keygroup_1 = nibbles("02 00 00  3C 7F");
	play(said({ { "02 48", "03 48 02 00  19 16 0E 0A*9  0C 0B 1D 1D 0A*8" },
		     { "06 48 00 00", "07 48 00 00" + program_0 },
		     { "06 48 01 00", "07 48 01 00" + program_1 },
		     { "08 48 00 00 00", "09 48 00 00 00" + keygroup_0 },
		     { "08 48 00 00 01", "09 48 00 00 01" + keygroup_1 } }),
		akai_s1000_getproglist);
	ASSERT_EQ(dev().programs, 2);
	const _program &piano = dev().program[0], &bass = dev().program[1];
	EXPECT_EQ(told(akai_s1000_program_parameters.first(4), piano),
		"name PIANO       , midi_pgm_number 1, midi_channel 2, polyphony 16")
		<< "the block's name, untrimmed";
	EXPECT_EQ(piano.s2000_transpose_offset, -2);
	EXPECT_EQ(piano.keygroups, 2);
	EXPECT_STREQ(bass.name, "BASS        ");
	EXPECT_EQ(bass.midi_pgm_number, 128);
	EXPECT_EQ(bass.keygroups, 0);
	EXPECT_EQ(told(akai_s1000_keygroup_parameters.first(3), piano.keygroup[0]),
		"low_note 24, high_note 59, s1000_tune_offset -50");
	EXPECT_EQ(piano.keygroup[0].keyzones, 4);
	EXPECT_EQ(told(akai_s1000_keyzone_parameters.first(3), piano.keygroup[0].keyzone[0]),
		"samplename PIANO BC, low_velocity 0, high_velocity 127");
	EXPECT_EQ(piano.keygroup[1].low_note, 60);
	// The bar counts programs, and one more than there are.
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(h.progress.caption, "Getting program information...");
	EXPECT_EQ(h.progress.range, 3);
	EXPECT_EQ(h.progress.value, 2);
}

TEST_F(lists, a_list_needs_a_status_first)
{
	dev().programs = dev().samples = dev().multis = 7;
	play("", akai_s1000_getproglist);
	EXPECT_TRUE(h.logged("[D] WARNING! Must do a 'getstatus' before"));
	h.forget_log();
	play("", akai_s1000_getsamplelist);
	EXPECT_TRUE(h.logged("WARNING! Must do a 'getstatus' before"));
	h.forget_log();
	play("", akai_s1000_getmultilist);
	EXPECT_TRUE(h.logged("WARNING! Must do a 'getstatus' before"));
	EXPECT_EQ(dev().programs + dev().samples + dev().multis, 21);
}

TEST_F(lists, a_wrong_first_answer_leaves_the_lists_as_they_were)
{
	answered();
	struct {
		const char *what, *answer;
	} rows[] = {
		{ "silence", "< nothing" },
		{ "another function", "< F0 47 05 16 48 01 F7" },
		{ "garbage", "< 00 FF 7F 80 F7" },
		{ "an end byte", "< F7" },
		{ "too short for a function", "< F0 47 F7" },
	};
	for (const auto &it : rows) {
		dev().programs = dev().samples = 3;
		copy_text(dev().program[0].name, "KEPT");
		play(std::string("> F0 47 05 02 48 F7\n") + it.answer, akai_s1000_getproglist);
		play(std::string("> F0 47 05 04 48 F7\n") + it.answer, akai_s1000_getsamplelist);
		EXPECT_EQ(dev().programs, 3) << it.what;
		EXPECT_EQ(dev().samples, 3) << it.what;
		EXPECT_STREQ(dev().program[0].name, "KEPT") << it.what;
	}
	EXPECT_TRUE(h.boxes.empty());
}

// A reply of 30 bytes holds no program, one of 31 does.
TEST_F(lists, a_refused_program_keeps_its_fields_and_the_lists_name)
{
	answered();
	dev().program[0].polyphony = 11;
	dev().program[0].keygroups = 0;
	dev().program[1].polyphony = 11;
	play(said({ { "02 48", "03 48 02 00 0B*4 0A*8 0C*4 0A*8" },
		     { "06 48 00 00", "07 48 00 00 01 00 00*20" },
		     { "06 48 01 00", "07 48 01 00 01 00 00*4 0D 00 0D 00 0D 00 0D 00 0D 00 0D 00 "
				      "0D 00 0D 00 0D" } }),
		akai_s1000_getproglist);
	EXPECT_STREQ(dev().program[0].name, "AAAA") << "trimmed in the list";
	EXPECT_EQ(dev().program[0].polyphony, 11);
	EXPECT_STREQ(dev().program[1].name, "CCCCCCCC?000")
		<< "an end byte in the high place is taken for a nibble, what did not come is 0";
	EXPECT_EQ(dev().program[1].polyphony, 1);
}

TEST_F(lists, a_silent_keygroup_reads_as_zero)
{
	answered();
	dev().program[0].keygroup[0].high_note = 99;
	play(said({ { "02 48", "03 48 01 00 0B*4 0A*8" },
		     { "06 48 00 00", "07 48 00 00" + nibbles("01 00*41 01 00*10") },
		     { "08 48 00 00 00", "" } }),
		akai_s1000_getproglist);
	ASSERT_EQ(dev().program[0].keygroups, 1);
	EXPECT_EQ(dev().program[0].keygroup[0].high_note, 0);
	EXPECT_EQ(dev().program[0].keygroup[0].keyzones, 4);
	EXPECT_FALSE(h.progress.visible);
}

// 7F 7F is 16383 programs. 512 are read, all of them are refused here; and 255 keygroups of
// another sampler, of which 128 are read.
TEST_F(lists, counts_beyond_the_record_are_cut)
{
	answered();
	std::string script = said({ { "02 48", "03 48 7F 7F 0B*12 0C*5" } });
	for (int i = 0; i < 512; i++)
		script += said({ { format_text("06 48 %02X %02X", i & 0x7F, i >> 7), refused } });
	play(script, akai_s1000_getproglist);
	EXPECT_EQ(dev().programs, 512);
	EXPECT_STREQ(dev().program[0].name, "AAAAAAAAAAAA");
	EXPECT_STREQ(dev().program[1].name, "BBBBB") << "as far as it came";
	EXPECT_STREQ(dev().program[2].name, "");
	EXPECT_TRUE(h.logged("[W] The sampler counts 16383 programs, 512 are read"));

	script = said({ { "04 48", "05 48 7F 7F" } });
	for (int i = 0; i < 512; i++)
		script += said({ { format_text("0A 48 %02X %02X", i & 0x7F, i >> 7), refused } });
	play(script, akai_s1000_getsamplelist);
	EXPECT_EQ(dev().samples, 512);
	EXPECT_EQ(dev().sample[511].number, 511);

	script =
		said({ { "02 48", "03 48 01 00 0B*12" }, { "06 48 00 00", "07 48 00 00 0F*300" } });
	for (int k = 0; k < 128; k++)
		script += said({ { format_text("08 48 00 00 %02X", k), refused } });
	play(script, akai_s1000_getproglist);
	EXPECT_EQ(dev().program[0].keygroups, 128);
	EXPECT_TRUE(h.logged("[W] The sampler counts 255 keygroups, 128 are read"));
}

// Pressed in the first pass, and while the second keygroup is on its way: what is not whole
// has no keygroups, also not those of an earlier list.
TEST_F(lists, stop_ends_a_list_and_leaves_no_keygroups)
{
	answered();
	dev().program[1].keygroups = 5;
	h.on_pump = [this] {
		if (h.progress.visible)
			stop_progress();
	};
	play(said({ { "02 48", "03 48 02 00 0B*12 0C*12" },
		     { "06 48 00 00", "07 48 00 00 0F*300" } }),
		akai_s1000_getproglist);
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(dev().programs, 2);
	EXPECT_STREQ(dev().program[1].name, "BBBBBBBBBBBB");
	EXPECT_EQ(dev().program[1].keygroups, 0);
	EXPECT_TRUE(h.logged("[W] Reading of programs ended early, 0 of 2 are complete"));

	h.on_pump = [this] {
		if (dev().program[0].keygroup[0].low_note == 24)
			stop_progress();
	};
	play(said({ { "02 48", "03 48 01 00 0B*12" },
		     { "06 48 00 00", "07 48 00 00" + nibbles("01 00*41 02 00*10") },
		     { "08 48 00 00 00", "09 48 00 00 00" + nibbles("02 00 00 18 3B") },
		     { "08 48 00 00 01", "09 48 00 00 01" + nibbles("02 00 00 3C 7F") } }),
		akai_s1000_getproglist);
	EXPECT_EQ(dev().program[0].keygroups, 0);
	EXPECT_EQ(dev().program[0].keygroup[1].low_note, 0);
	EXPECT_TRUE(h.logged("[W] Reading of programs ended early, 0 of 1 are complete"));
	// What comes next begins afresh.
	h.on_pump = nullptr;
	play(said({ { "02 48", "03 48 00 00" } }), akai_s1000_getproglist);
	EXPECT_EQ(dev().programs, 0);
	EXPECT_EQ(h.progress.range, 1);
}

TEST_F(lists, a_port_that_fails_in_a_list_says_so_once)
{
	answered();
	transcript_midi port(h, said({ { "02 48", "03 48 7F 00 0B*12" } }));
	h.on_pump = [&] {
		if (h.progress.visible)
			port.faults.write = 19;
	};
	akai_s1000_getproglist(1, 5, &dev());
	EXPECT_EQ(h.boxes.size(), 1u);
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(dev().programs, 127);
	EXPECT_EQ(dev().program[0].keygroups, 0);
}

// ---- Samples -----------------------------------------------------------------------------

TEST_F(lists, the_header_names_a_sample_and_not_the_list)
{
	answered();
	// The first names KICK, the second is refused, the third has another function.
	play(said({ { "04 48", "05 48 03 00  0B*12  0C 0C 0A*10  0D*12" },
		     { "0A 48 00 00", "0B 48 00 00" + nibbles("03 01 3C 15 13 0D 15 0A*8 00*135") },
		     { "0A 48 01 00", refused },
		     { "0A 48 02 00", "07 48 01 00" + nibbles("03 01 3C 1E 19 17 0A*9") } }),
		akai_s1000_getsamplelist);
	ASSERT_EQ(dev().samples, 3);
	EXPECT_STREQ(dev().sample[0].name, "KICK");
	EXPECT_STREQ(dev().sample[1].name, "BB") << "no header came, the list's name stays";
	EXPECT_STREQ(dev().sample[2].name, "TOM");
	EXPECT_EQ(dev().sample[2].number, 2);
	EXPECT_TRUE(h.progress.infos.empty());
}

TEST_F(lists, a_sampler_that_falls_silent_is_left_alone)
{
	answered();
	dev().samples = 5;
	play(said({ { "04 48", "05 48 00 00" } }), akai_s1000_getsamplelist);
	EXPECT_EQ(dev().samples, 0);
	// Three silent answers in a row end it; two, and two more, do not.
	play(said({ { "04 48", "05 48 09 00 0B*108" }, { "0A 48 00 00", "" }, { "0A 48 01 00", "" },
		     { "0A 48 02 00", refused }, { "0A 48 03 00", "" }, { "0A 48 04 00", "" },
		     { "0A 48 05 00", "" } }),
		akai_s1000_getsamplelist);
	EXPECT_EQ(dev().samples, 9);
	EXPECT_STREQ(dev().sample[8].name, "AAAAAAAAAAAA");
	EXPECT_LT(h.time.now(), 20);
	EXPECT_TRUE(h.logged("[W] The sampler no longer answers, the names of the list are kept"));
}

// ---- Multis and words --------------------------------------------------------------------

TEST_F(lists, the_family_shows_no_multis_and_asks_for_none)
{
	answered();
	dev().multis = 4;
	play("", akai_s1000_getmultilist);
	EXPECT_EQ(dev().multis, 0);
	EXPECT_TRUE(h.logged("[D] Requesting Akai S1000 MULTILIST on Exclusive Channel: 1 "
			     "[SYSEX-CHANNEL: 5]"));
}

TEST_F(lists, play_modes_have_names)
{
	const char *const names[] = { "UNKNOWN", "NORMAL LOOPING", "LOOP UNTIL RELEASE",
		"NO LOOPING", "PLAY TO SAMPLE END", "UNKNOWN" };
	for (i32 mode = -1; mode <= 4; mode++)
		EXPECT_STREQ(akai_s1000_getplaymode(mode), names[mode + 1]);
}

} // namespace
} // namespace velmor
