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

using numbers = std::vector<long long>;

template <class... fields> numbers row(fields... values)
{
	return { static_cast<long long>(values)... };
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
	EXPECT_EQ(row(p.sampler_type, p.midi_pgm_number, p.keygroups, p.s1000_basic_loudness,
			  p.s2000_out_mod1_level, p.s2000_out_mod2_level, p.s2000_pan_mod1_level,
			  p.s2000_pan_mod2_level, p.s2000_pan_mod3_level, p.s1000_velocity_loudness,
			  p.s1000_tunning_offset, p.c_detune),
		(numbers{ model_z4, 7, 2, 0x55, 1, 2, 3, 4, 5, -10, -200, 1 }));
	EXPECT_EQ(row(p.c_cross_detune, p.f_detune, p.f_cross_detune, p.bb_detune, p.b_detune,
			  p.s1000_bendwheel_pitch_up, p.s2000_bendwheel_pitch_down,
			  p.s2000_aftertouch_bend_mode, p.s1000_aftertouch_bend,
			  p.s2000_lfo1_waveform, p.s1000_lfo1_speed, p.s1000_lfo1_delay),
		(numbers{ 2, 6, 7, 11, -2, 2, 12, 1, -12, 0x21, 0x22, 0x23 }));
	EXPECT_EQ(
		row(p.s1000_lfo1_depth, p.s1000_lfo1_sync, p.s1000_lfo1_modwheel,
			p.s1000_lfo1_pressure, p.s2000_lfo1_rate_source, p.s2000_lfo1_delay_source,
			p.s2000_lfo1_depth_source, p.s2000_lfo2_waveform, p.s1000_lfo2_speed,
			p.s1000_lfo2_delay, p.s1000_lfo2_depth, p.s2000_lfo2_retrigger),
		(numbers{
			0x24, 0x25, 0x27, 0x28, 0x29, 0x2A, 0x2B, 0x41, 0x42, 0x43, 0x44, 0x45 }));
	EXPECT_EQ(row(p.polyphony), (numbers{ 0 }));
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(h.progress.caption, "Importing AKP [Grand.old]...");
	EXPECT_TRUE(h.logged("[D] --------> KEYGROUPS: 2, PGM_NUMBER: 7"));
}

TEST_F(wave_akp, the_order_of_the_chunks_decides)
{
	const bytes lfo = chunk("lfo ", count_up(12)), mods = chunk("mods", count_up(38, 0x40));
	ASSERT_TRUE(read(lfo + mods));
	EXPECT_EQ(
		row(p.s2000_lfo1_rate_source, p.s2000_lfo1_delay_source, p.s2000_lfo1_depth_source,
			p.s2000_out_mod1_source, p.s2000_pan_mod3_source, p.s5000_lfo2_rate_source,
			p.s5000_kg_amp_mod_source, p.s2000_flt_mod1_source,
			p.s2000_flt_mod3_source),
		(numbers{ 0x4F, 0x51, 0x53, 0x45, 0x4D, 0x55, 0x5F, 0x61, 0x65 }));
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
	EXPECT_EQ(
		row(k.low_note, k.high_note, k.s5000_semitone_tune, k.s5000_fine_tune,
			k.s1000_tune_offset, k.fx_override, k.fx_sendlevel, k.s5000_pitch_mod1_val,
			k.s5000_pitch_mod2_val, k.s5000_amp_mod1_val, k.crossfade, k.mute_group),
		(numbers{ 0x18, 0x60, -1, -100, -200, 2, 3, -15, -14, -13, 1, 9 }));
	EXPECT_EQ(row(k.amp_attack, k.amp_decay, k.amp_sustain, k.amp_release, k.filter_attack,
			  k.filter_sustain, k.filter_release, k.aux_rate1, k.s2000_env2_r2,
			  k.aux_rate4, k.s1000_env2_r4, k.s2000_env2_l1),
		(numbers{ 1, 3, 7, 4, 0x21, 0x27, 0x24, 0x41, 0x42, 0x44, 0x44, 0x45 }));
	EXPECT_EQ(
		row(k.s1000_env2_l3, k.aux_rate4_level, k.s1000_env2_velocity_r1,
			k.s1000_env2_key_r2_r4, k.s1000_env2_velocity_r4,
			k.s1000_env2_off_velocity_r4, k.s1000_env2_velocity_envelope,
			k.s5000_filter_mode, k.s5000_filter_cutoff, k.s1000_basic_filter_frequency,
			k.s5000_filter_resonance, k.s2000_filter_resonance),
		(numbers{ 0x47, 0x48, 0x4A, 0x4C, 0x4E, 0x4F, 0x50, 3, 0x64, 0x64, 0xF4, -12 }));
	EXPECT_EQ(row(k.s1000_filter_keyboard, k.s5000_filter_mod3_input, k.s2000_flt_mod1_level,
			  k.s5000_filter_attenuation),
		(numbers{ -32, -29, -31, 5 }));
	ASSERT_EQ(k.keyzones, 3);
	EXPECT_STREQ(k.keyzone[0].samplename, "PIANO C3");
	EXPECT_EQ(row(k.keyzone[0].low_velocity, k.keyzone[0].high_velocity, k.keyzone[0].filter,
			  k.keyzone[0].zone_filter, k.keyzone[0].level, k.keyzone[0].zone_level,
			  k.keyzone[0].zone_keyboard_track),
		(numbers{ 5, 0x7F, -16, -16, -2, -2, 1 }));
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
	EXPECT_EQ(row(p.keygroups, p.keygroup[127].low_note, p.keygroup[127].keyzones),
		(numbers{ 128, 127, 8 }));
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
	auto refused = [&](const std::string &file, const std::string &words, bool bar) {
		EXPECT_FALSE(import_akp_file(file.c_str(), &p));
		EXPECT_EQ(h.boxes.back(), (shown_box{ words, "ERROR" }));
		EXPECT_EQ(h.progress.visible, bar); // left for the caller to hide, or hidden
	};
	const std::string analyze = "Cannot analyze [" + path + "] (Code: ";
	h.put_content(path, hex("52 49 46 58 00*4 41 50 52 47"));
	refused(path, analyze + "2034)", false);
	h.put_content(path, riff({}));
	refused(path, analyze + "2042)", false);
	h.put_content(path, {});
	refused(path, analyze + "2034)", false);
	std::filesystem::resize_file(h.root + "/VELMOR/CONFIG/disk/Grand.old.akp", 0x100000000);
	refused(path, "Cannot read [" + path + "]", true);
	refused(path + "x", "Cannot stat [" + path + "x]", true);
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
	const bytes wave = riff(fmt(mono_16) + chunk("data", word(0x00020001)));
	h.put_content(folder + "\\KICK.WAV", wave);
	h.put_content(folder + "\\Snare.wav", wave);
	h.put_content(h.root + "/evil.wav", wave);
	h.boxes.clear();
	import_required_samples(0, path.c_str(), &p);
	EXPECT_EQ(names_in(h.config + "\\sample"),
		(std::vector<std::string>{ "KICK.WAV", "SNARE.wav" })); // as the program says
	ASSERT_EQ(h.boxes.size(), 3u);
	EXPECT_EQ(h.boxes[1].text,
		"Sample [..\\..\\..\\evil] File: " + folder + "\\.._.._.._evil.wav (not found!)");
	EXPECT_EQ(h.boxes[2],
		(shown_box{ "Sample [LOST] File: " + folder + "\\LOST.wav (not found!)", "INFO" }));
	EXPECT_TRUE(h.logged("Importing Sample [" + folder + "\\KICK.WAV]"));
	EXPECT_FALSE(h.progress.visible);
	// Cases tell two samples apart here, and one file is both.
	p.keygroups = 1;
	copy_text(p.keygroup[0].keyzone[1].samplename, "Kick");
	import_required_samples(0, path.c_str(), &p);
	EXPECT_EQ(names_in(h.config + "\\sample"),
		(std::vector<std::string>{ "KICK.WAV", "Kick.WAV", "SNARE.wav" }));
	h.put_content(folder + "\\KICK.WAV", hex("00"));
	import_required_samples(0, path.c_str(), &p);
	EXPECT_TRUE(logged_part(h, "[W] [" + folder + "\\KICK.WAV] was not imported: "));
	p.keygroups = 0;
	h.boxes.clear();
	import_required_samples(0, path.c_str(), &p);
	EXPECT_TRUE(h.boxes.empty());
}

TEST(akp_values, two_bytes)
{
	EXPECT_EQ(get16val(hex("34 12").data()), 0x1234);
}

} // namespace

} // namespace velmor
