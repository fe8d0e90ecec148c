// test_wave_akp.cpp - AKP programs, byte by byte, and the list that they are filed in

#include "src/waveqx.h"
#include "tests/support/wave_files.h"
#include <filesystem>

namespace velmor
{

namespace
{

bytes akp(const bytes &chunks)
{
	return riff(chunks, "APRG");
}

// Bytes 0, 1, 2, ... from first on: every field gets another value.
bytes count_up(std::size_t size, int first = 0)
{
	bytes out;
	for (std::size_t i = 0; i < size; i++)
		out.push_back(static_cast<u8>(first + static_cast<int>(i)));
	return out;
}

bytes zone(const char *name, std::size_t size = 46)
{
	bytes out = hex("01") + word(std::strlen(name), 1) + text(name);
	out.resize(size);
	return out;
}

// What a record holds and what it should, by the names of the fields.
struct field_check {
	const char *name;
	long long value, expected;
};
#define field(record, member, expected)                                                            \
	{                                                                                          \
#member, static_cast < long long>((record).member), expected                       \
	}

void check(std::initializer_list<field_check> fields)
{
	for (const field_check &f : fields)
		EXPECT_EQ(f.value, f.expected) << f.name;
}

struct wave_akp : host_test {
	std::string folder = h.config + "\\disk", path = folder + "\\Grand.old.akp";
	_program p;

	wave_akp()
	{
		host.files->make_folder(folder.c_str());
		h.use_sampler(model_z4, 0);
		std::memset(static_cast<void *>(&p), 0xEE, sizeof p);
		local_pgm.clear();
		local_pgms = 0;
	}
	~wave_akp() override { local_pgm.clear(); }

	bool read(const bytes &chunks)
	{
		h.put_content(path, akp(chunks));
		return import_akp_file(path.c_str(), &p);
	}
};

TEST_F(wave_akp, the_program)
{
	ASSERT_TRUE(read(
		chunk("PRG ", hex("00 07 02 00*3")) +
		chunk("out ", hex("00 55 01 02 03 04 05 F6")) +
		chunk("tune",
			hex("00 FF 9C 01 02 03 04 05 06 07 08 09 0A 0B FE 02 0C 01 F4 00*3")) +
		chunk("lfo ", count_up(12, 0x20)) + chunk("lfo ", count_up(14, 0x40)) +
		chunk("lfo ", count_up(12, 0x60)) + chunk("junk", hex("01"))));
	EXPECT_STREQ(p.name, "Grand.old");
	check({ field(p, sampler_type, model_z4), field(p, midi_pgm_number, 7),
		field(p, keygroups, 2), field(p, s1000_basic_loudness, 0x55),
		field(p, s2000_out_mod1_level, 1), field(p, s2000_out_mod2_level, 2),
		field(p, s2000_pan_mod1_level, 3), field(p, s2000_pan_mod2_level, 4),
		field(p, s2000_pan_mod3_level, 5), field(p, s1000_velocity_loudness, -10),
		field(p, s1000_tunning_offset, -200), field(p, c_detune, 1),
		field(p, c_cross_detune, 2), field(p, f_detune, 6), field(p, f_cross_detune, 7),
		field(p, bb_detune, 11), field(p, b_detune, -2),
		field(p, s1000_bendwheel_pitch_up, 2), field(p, s2000_bendwheel_pitch_down, 12),
		field(p, s2000_aftertouch_bend_mode, 1), field(p, s1000_aftertouch_bend, -12),
		field(p, s2000_lfo1_waveform, 0x21), field(p, s1000_lfo1_speed, 0x22),
		field(p, s1000_lfo1_delay, 0x23), field(p, s1000_lfo1_depth, 0x24),
		field(p, s1000_lfo1_sync, 0x25), field(p, s1000_lfo1_modwheel, 0x27),
		field(p, s1000_lfo1_pressure, 0x28), field(p, s2000_lfo1_rate_source, 0x29),
		field(p, s2000_lfo1_delay_source, 0x2A), field(p, s2000_lfo1_depth_source, 0x2B),
		field(p, s2000_lfo2_waveform, 0x41), field(p, s1000_lfo2_speed, 0x42),
		field(p, s1000_lfo2_delay, 0x43), field(p, s1000_lfo2_depth, 0x44),
		field(p, s2000_lfo2_retrigger, 0x45), field(p, polyphony, 0) });
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(h.progress.caption, "Importing AKP [Grand.old]...");
	EXPECT_TRUE(h.logged("[D] --------> KEYGROUPS: 2, PGM_NUMBER: 7"));
}

TEST_F(wave_akp, the_order_of_the_chunks_decides)
{
	const bytes lfo = chunk("lfo ", count_up(12)), mods = chunk("mods", count_up(38, 0x40));
	ASSERT_TRUE(read(lfo + mods));
	check({ field(p, s2000_lfo1_rate_source, 0x4F), field(p, s2000_lfo1_delay_source, 0x51),
		field(p, s2000_lfo1_depth_source, 0x53), field(p, s2000_out_mod1_source, 0x45),
		field(p, s2000_pan_mod3_source, 0x4D), field(p, s5000_lfo2_rate_source, 0x55),
		field(p, s5000_kg_amp_mod_source, 0x5F), field(p, s2000_flt_mod1_source, 0x61),
		field(p, s2000_flt_mod3_source, 0x65) });
	ASSERT_TRUE(read(mods + lfo));
	EXPECT_EQ(p.s2000_lfo1_rate_source, 9);
	// Shorter than its fields: what it does not hold is not read.
	ASSERT_TRUE(read(mods + chunk("lfo ", count_up(10))));
	EXPECT_EQ(p.s2000_lfo1_rate_source, 9);
	EXPECT_EQ(p.s2000_lfo1_delay_source, 0x51);
}

TEST_F(wave_akp, a_keygroup)
{
	bytes first_zone = zone("PIANO C3", 48);
	first_zone[34] = 5, first_zone[35] = 0x7F, first_zone[38] = 0xF0, first_zone[42] = 0xFE,
	first_zone[43] = 1;
	bytes unused = hex("01 00") + text("LEFT OVER");
	unused.resize(46);
	const bytes filt = hex("00 03 64 F4 E0 E1 E2 E3 05 00");
	const bytes inner = chunk("kloc", hex("00*4 18 60 FF 9C 02 03 F1 F2 F3 01 09 00")) +
			    chunk("env ", count_up(18)) + chunk("env ", count_up(18, 0x20)) +
			    chunk("env ", count_up(18, 0x40)) + chunk("env ", count_up(18, 0x60)) +
			    chunk("filt", filt) + chunk("zone", first_zone) +
			    chunk("zone", unused) + chunk("ZONE", zone("NOT THIS")) +
			    chunk("zone", zone("TWENTY CHARACTERS 20"));
	ASSERT_TRUE(read(chunk("prg ", hex("00 00 01")) + chunk("kgrp", inner)));
	const _keygroup &k = p.keygroup[0];
	check({ field(k, low_note, 0x18), field(k, high_note, 0x60),
		field(k, s5000_semitone_tune, -1), field(k, s5000_fine_tune, -100),
		field(k, s1000_tune_offset, -200), field(k, fx_override, 2),
		field(k, fx_sendlevel, 3), field(k, s5000_pitch_mod1_val, -15),
		field(k, s5000_pitch_mod2_val, -14), field(k, s5000_amp_mod1_val, -13),
		field(k, crossfade, 1), field(k, mute_group, 9), field(k, amp_attack, 1),
		field(k, amp_decay, 3), field(k, amp_sustain, 7), field(k, amp_release, 4),
		field(k, filter_attack, 0x21), field(k, filter_sustain, 0x27),
		field(k, filter_release, 0x24), field(k, aux_rate1, 0x41),
		field(k, s2000_env2_r2, 0x42), field(k, aux_rate4, 0x44),
		field(k, s1000_env2_r4, 0x44), field(k, s2000_env2_l1, 0x45),
		field(k, s1000_env2_l3, 0x47), field(k, aux_rate4_level, 0x48),
		field(k, s1000_env2_velocity_r1, 0x4A), field(k, s1000_env2_key_r2_r4, 0x4C),
		field(k, s1000_env2_velocity_r4, 0x4E), field(k, s1000_env2_off_velocity_r4, 0x4F),
		field(k, s1000_env2_velocity_envelope, 0x50), field(k, s5000_filter_mode, 3),
		field(k, s5000_filter_cutoff, 0x64), field(k, s1000_basic_filter_frequency, 0x64),
		field(k, s5000_filter_resonance, 0xF4), field(k, s2000_filter_resonance, -12),
		field(k, s1000_filter_keyboard, -32), field(k, s5000_filter_mod3_input, -29),
		field(k, s2000_flt_mod1_level, -31), field(k, s5000_filter_attenuation, 5) });
	ASSERT_EQ(k.keyzones, 3);
	EXPECT_STREQ(k.keyzone[0].samplename, "PIANO C3");
	check({ field(k, keyzone[0].low_velocity, 5), field(k, keyzone[0].high_velocity, 0x7F),
		field(k, keyzone[0].filter, -16), field(k, keyzone[0].zone_filter, -16),
		field(k, keyzone[0].level, -2), field(k, keyzone[0].zone_level, -2),
		field(k, keyzone[0].zone_keyboard_track, 1) });
	EXPECT_STREQ(k.keyzone[1].samplename, "");
	EXPECT_STREQ(k.keyzone[2].samplename, "TWENTY CHARACTERS 20");
}

TEST_F(wave_akp, more_than_a_record_holds)
{
	bytes zones, groups;
	for (int i = 0; i < 10; i++)
		zones = zones + chunk("zone", zone(i < 8 ? "INSIDE" : "OUTSIDE"));
	for (int i = 0; i < 130; i++)
		groups = groups + chunk("kgrp", chunk("kloc", { 0, 0, 0, 0, u8(i), 0x7F }) + zones);
	ASSERT_TRUE(read(chunk("prg ", hex("00 00 FF")) + groups));
	check({ field(p, keygroups, 128), field(p, keygroup[127].low_note, 127),
		field(p, keygroup[127].keyzones, 8) });
	EXPECT_STREQ(p.keygroup[127].keyzone[7].samplename, "INSIDE");
	EXPECT_EQ(p.midi_pgm_number, 0); // what follows the keygroups is whole
	// The stated length, zeros and all, up to what the field holds.
	bytes named = zone("AB", 48);
	named[1] = 5, named[4] = 'C', named[5] = 0, named[6] = 'D', named[7] = 'E';
	ASSERT_TRUE(read(chunk("kgrp", chunk("zone", named))));
	EXPECT_EQ(std::string(p.keygroup[0].keyzone[0].samplename, 6), std::string("ABC\0D\0", 6));
	const bytes wide = hex("00 FF") + bytes(200, 'N');
	ASSERT_TRUE(read(chunk("kgrp", chunk("zone", wide) + chunk("zone", zone("NEXT")))));
	EXPECT_EQ(p.keygroup[0].keyzone[0].samplename, std::string(127, 'N'));
	EXPECT_EQ(p.keygroup[0].keyzone[0].low_velocity, 'N');
	EXPECT_STREQ(p.keygroup[0].keyzone[1].samplename, "NEXT");
}

TEST_F(wave_akp, lengths_that_lie)
{
	ASSERT_TRUE(read({})); // no prg: no keygroup
	EXPECT_EQ(p.keygroups, 0);
	ASSERT_TRUE(read(chunk("prg ", hex("00 05 01")) + text("kgrp") + hex("FF FF FF FF") +
			 chunk("kloc", hex("00*4 18 60")) + text("zone") +
			 hex("00 00 00 80 01 04") + text("AB")));
	EXPECT_EQ(p.midi_pgm_number, 5);
	EXPECT_EQ(p.keygroup[0].high_note, 0x60);
	EXPECT_STREQ(p.keygroup[0].keyzone[0].samplename, "AB");
	ASSERT_TRUE(read(text("prg ") + hex("03 00"))); // ends in the length
	EXPECT_EQ(p.keygroups, 0);
}

TEST_F(wave_akp, what_is_no_program_is_refused)
{
	h.put_content(path, hex("52 49 46 58 00*4 41 50 52 47"));
	EXPECT_FALSE(import_akp_file(path.c_str(), &p));
	EXPECT_EQ(h.boxes.back(),
		(shown_box{ "Cannot analyze [" + path + "] (Code: 2034)", "ERROR" }));
	EXPECT_FALSE(h.progress.visible);
	h.put_content(path, hex("52 49 46 46 00*4 57 41 56 45"));
	EXPECT_FALSE(import_akp_file(path.c_str(), &p));
	EXPECT_EQ(h.boxes.back().text, "Cannot analyze [" + path + "] (Code: 2042)");
	h.put_content(path, {});
	EXPECT_FALSE(import_akp_file(path.c_str(), &p));
	EXPECT_EQ(h.boxes.back().text, "Cannot analyze [" + path + "] (Code: 2034)");
	std::filesystem::resize_file(h.root + "/VELMOR/CONFIG/disk/Grand.old.akp", 0x100000000);
	EXPECT_FALSE(import_akp_file(path.c_str(), &p));
	EXPECT_EQ(h.boxes.back(), (shown_box{ "Cannot read [" + path + "]", "ERROR" }));
	EXPECT_TRUE(h.progress.visible); // for the caller to hide
	EXPECT_FALSE(import_akp_file((path + "x").c_str(), &p));
	EXPECT_EQ(h.boxes.back(), (shown_box{ "Cannot stat [" + path + "x]", "ERROR" }));
}

TEST_F(wave_akp, programs_of_one_name_are_asked_about_and_stand_side_by_side)
{
	ASSERT_TRUE(read(chunk("prg ", hex("00 01 00"))));
	EXPECT_TRUE(add_local_pgm(&p));
	EXPECT_TRUE(h.boxes.empty());
	p.midi_pgm_number = 2;
	h.answers = { false };
	EXPECT_FALSE(add_local_pgm(&p));
	EXPECT_EQ(h.boxes.back(),
		(shown_box{ "Program [Grand.old] already exists! Overwrite?", "INFO" }));
	EXPECT_EQ(local_pgms, 1);
	EXPECT_TRUE(add_local_pgm(&p));
	ASSERT_EQ(local_pgms, 2);
	EXPECT_EQ(local_pgm[0]->midi_pgm_number, 1);
	EXPECT_EQ(local_pgm[1]->midi_pgm_number, 2);
	p.midi_pgm_number = 3;
	EXPECT_EQ(local_pgm[1]->midi_pgm_number, 2); // a copy
}

TEST_F(wave_akp, required_samples)
{
	auto kgrp = [](const char *a, const char *b) {
		return chunk("kgrp", chunk("zone", zone(a)) + chunk("zone", zone(b)));
	};
	ASSERT_TRUE(read(chunk("prg ", hex("00 00 03")) + kgrp("KICK", "") + kgrp("SNARE", "KICK") +
			 kgrp("..\\..\\..\\evil", "LOST")));
	h.answers = { false };
	import_required_samples(0, path.c_str(), &p);
	EXPECT_EQ(h.boxes, (std::vector<shown_box>{ { "Also import 4 Samples?", "INFO" } }));
	const bytes wave = hex("52 49 46 46 28 00 00 00 57 41 56 45 66 6D 74 20 10 00 00 00 01 00 "
			       "01 00 22 56 00 00 44 AC 00 00 02 00 10 00 64 61 74 61 04 00 00 00 "
			       "01 00 02 00");
	h.put_content(folder + "\\KICK.WAV", wave);
	h.put_content(folder + "\\Snare.wav", wave);
	h.put_content(h.root + "/evil.wav", wave);
	h.boxes.clear();
	import_required_samples(0, path.c_str(), &p);
	std::vector<std::string> names;
	host.files->list((h.config + "\\sample").c_str(), &names);
	std::sort(names.begin(), names.end());
	EXPECT_EQ(names, (std::vector<std::string>{ "KICK.WAV", "Snare.wav" }));
	ASSERT_EQ(h.boxes.size(), 3u);
	EXPECT_EQ(h.boxes[1].text,
		"Sample [..\\..\\..\\evil] File: " + folder + "\\.._.._.._evil.wav (not found!)");
	EXPECT_EQ(h.boxes[2],
		(shown_box{ "Sample [LOST] File: " + folder + "\\LOST.wav (not found!)", "INFO" }));
	EXPECT_TRUE(h.logged("Importing Sample [" + folder + "\\KICK.WAV]"));
	EXPECT_FALSE(h.progress.visible);
	p.keygroups = 0;
	h.boxes.clear();
	import_required_samples(0, path.c_str(), &p);
	EXPECT_TRUE(h.boxes.empty());
}

TEST(akp_values, two_bytes)
{
	const u8 bytes[] = { 0x34, 0x12 };
	EXPECT_EQ(get16val(bytes), 0x1234);
}

} // namespace

} // namespace velmor
