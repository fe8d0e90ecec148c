// test_s5000_lists.cpp - status, lists and the program walk of an S5000, byte for byte

#include "src/akais5000.h"
#include "tests/support/transcript_usb.h"
#include <memory>

using namespace velmor;

namespace
{

// Checksums below are the sum of the command's bytes in seven bits. The channel byte is
// 20 with the 1 that the sampler tells when it is opened.
const char *const open_s5000 = R"(
	# open
	> 03 14
	> 04 03
	> 10 0B 00 F0 47 5E 20 00 00 00 01 00 01 F7
	< F0 47 5E 21 00 00 44 00 01 F7
)";

class s5000_lists : public host_test
{
protected:
	s5000_lists() : wire(h, 0x5E)
	{
		_usbdev entry = {};
		copy_text(entry.device_path, "usb:1");
		copy_text(entry.usb_name, "Studio");
		entry.device_handle = no_usb_handle;
		entry.pipe_id = 2;
		entry.packet_size = 64;
		entry.device_type = model_s5000;
		usbdev.assign(1, entry);
		usbdevs = 1;
		h.use_sampler(model_s5000, 1, "Studio");
		dev = current_sampler->status;
	}
	void TearDown() override
	{
		EXPECT_EQ(wire.steps_left(), 0);
		EXPECT_FALSE(usb_in_use());
		usbdev.clear();
		usbdevs = 0;
	}
	// What the sampler answers to a small request: its data at offset 9.
	void ask(const std::string &frame, const std::string &data)
	{
		wire.play(
			("> " + frame + "\n < F0 47 5E 21 00 00 52 00 00 " + data + " F7").c_str());
	}
	transcript_usb wire;
	_dev_status *dev;
};

TEST_F(s5000_lists, status)
{
	wire.play(open_s5000);
	ask("10 0B 00 F0 47 5E 21 00 00 00 04 00 04 F7", "");
	ask("10 0B 00 F0 47 5E 21 00 00 00 01 00 01 F7", "");
	ask("10 0A 00 F0 47 5E 21 00 00 02 00 02 F7", "02 0E");
	ask("10 0A 00 F0 47 5E 21 00 00 02 03 05 F7", "'Studio' 00");
	akai_s5000_getstatus(1, 7, dev);
	EXPECT_EQ(dev->status, 1);
	EXPECT_STREQ(dev->version, "2.14");
	EXPECT_STREQ(dev->sampler_name, "Studio");
	EXPECT_EQ(dev->exclusive_channel, 7);
	EXPECT_TRUE(h.logged("[D] Requesting Akai S5000 CONFIRMATION OFF on Exclusive Channel: 1 "
			     "[SYSEX-CHANNEL: 7]"));
	EXPECT_TRUE(h.logged("[D] Requested Akai S5000 MAJOR OS NUMBER on Exclusive Channel: 1 "
			     "[SYSEX-CHANNEL: 7]"));
	EXPECT_TRUE(h.logged("[D] Requested Akai S5000 Name on Exclusive Channel: 1 "
			     "[SYSEX-CHANNEL: 7][Studio]"));
}

TEST_F(s5000_lists, nothing_works_without_a_status_or_a_device)
{
	akai_s5000_getproglist(1, 1, dev);
	akai_s5000_getmultilist(1, 1, dev);
	wire.play(open_s5000);
	akai_s5000_getsamplelist(1, 1, dev); // opens first, and only then looks
	const auto log = h.log();
	EXPECT_EQ(
		std::count(log.begin(), log.end(), "WARNING! Must do a 'getstatus' before\r\n"), 3);
	wire.open_result = usb_no_device;
	akai_s5000_getstatus(1, 1, dev);
	EXPECT_TRUE(h.logged("WARNING! USB Device cannot be opened!"));
	usbdev.clear();
	akai_s5000_getstatus(1, 1, dev);
	EXPECT_TRUE(h.logged("WARNING! USB Device not found!"));
	EXPECT_EQ(dev->status, 0);
}

TEST_F(s5000_lists, multis)
{
	dev->status = 1;
	wire.play(open_s5000);
	ask("10 0A 00 F0 47 5E 21 00 00 0C 40 4C F7", "00 02");
	ask("10 0A 00 F0 47 5E 21 00 00 0C 51 5D F7", "'LIVE SET' 00 'B' 00");
	akai_s5000_getmultilist(1, 1, dev);
	EXPECT_EQ(dev->multis, 2);
	EXPECT_STREQ(dev->multi[0].name, "LIVE SET");
	EXPECT_STREQ(dev->multi[1].name, "B");
}

TEST_F(s5000_lists, a_failed_multi_list_leaves_the_count_and_no_names)
{
	dev->status = 1;
	wire.play(open_s5000);
	ask("10 0A 00 F0 47 5E 21 00 00 0C 40 4C F7", "01 02");
	wire.play("> 10 0A 00 F0 47 5E 21 00 00 0C 51 5D F7 \n ! silence");
	akai_s5000_getmultilist(1, 1, dev);
	EXPECT_EQ(dev->multis, 130);
	EXPECT_STREQ(dev->multi[0].name, "");
	bool warned = false;
	for (const std::string &line : h.log())
		warned |= line.starts_with("[I] (akais5000_lists.cpp:") &&
			  line.ends_with(") WARNING! SYSEX-MIDI_USB FAILED!\r\n");
	EXPECT_TRUE(warned);
}

TEST_F(s5000_lists, more_multis_than_can_be_held_and_fewer_than_announced)
{
	dev->status = 1;
	wire.play(open_s5000);
	ask("10 0A 00 F0 47 5E 21 00 00 0C 40 4C F7", "7F 7F");
	ask("10 0A 00 F0 47 5E 21 00 00 0C 51 5D F7", "'A' 00 'B' 00");
	akai_s5000_getmultilist(1, 1, dev);
	EXPECT_EQ(dev->multis, 2);
	EXPECT_TRUE(h.logged("[W] The sampler announced 16383 multis, only 512 can be held"));
	EXPECT_TRUE(h.logged("[W] The sampler announced 512 multis and listed 2"));
}

// The high byte of the count is left out: 130 samples show as 2.
TEST_F(s5000_lists, samples_are_counted_modulo_128)
{
	dev->status = 1;
	dev->samples = 77;
	wire.play(open_s5000);
	ask("10 0A 00 F0 47 5E 21 00 00 0E 10 1E F7", "01 02");
	ask("10 0A 00 F0 47 5E 21 00 00 0E 12 20 F7", "'KICK' 00 'SNARE' 00 'HAT' 00");
	akai_s5000_getsamplelist(1, 1, dev);
	EXPECT_EQ(dev->samples, 2);
	EXPECT_STREQ(dev->sample[0].name, "KICK");
	EXPECT_STREQ(dev->sample[1].name, "SNARE");
	EXPECT_STREQ(dev->sample[2].name, "");
	EXPECT_TRUE(h.logged("[I] USB--> Sample-List-Len: 77 Entries"));
	EXPECT_TRUE(h.logged("[D] USB--> Sample-List-Len: 25 Bytes"));
}

TEST_F(s5000_lists, no_programs)
{
	dev->status = 1;
	wire.play(open_s5000);
	ask("10 0A 00 F0 47 5E 21 00 00 0A 10 1A F7", "00 00");
	ask("10 0A 00 F0 47 5E 21 00 00 0A 19 23 F7", "");
	akai_s5000_getproglist(1, 1, dev);
	EXPECT_EQ(dev->programs, 0);
	EXPECT_EQ(h.progress.caption, "Retrieving programs information...");
	EXPECT_FALSE(h.progress.visible);
	EXPECT_TRUE(h.logged("[D] Sampler has loaded 0 Keygroups"));
}

// Program 130 (01 02), keygroup 1: 3A 01 02 01 and the groups, in the order of the answer.
const char *const block_1_groups = "0A 00 00 00 0B 00 00 00 0C 00 00 00 0D 00 00 00 "
				   "0E 00 00 00 0F 00 00 00 18 00 00 00 19 00 00 00 "
				   "1A 00 00 00 1B 01 00 00 1B 02 00 00 1C 01 00 00";
const char *const block_2_groups = "28 00 00 00 29 00 00 00 2A 00 00 00 2B 00 00 00 "
				   "2C 01 00 00 2C 02 00 00 2C 03 00 00 2D 00 00 00";
const char *const block_3_groups = "40 00 00 00 41 00 00 00 42 00 00 00 43 00 00 00 "
				   "44 00 00 00 45 00 00 00 46 00 00 00 47 00 00 00 48 00 00 00";

TEST_F(s5000_lists, one_program_with_one_keygroup)
{
	dev->status = 1;
	wire.play(open_s5000);
	ask("10 0A 00 F0 47 5E 21 00 00 0A 10 1A F7", "00 01");
	ask("10 0A 00 F0 47 5E 21 00 00 0A 19 23 F7", "'PIANO' 00");
	// P 50 I 49 A 41 N 4E O 4F: 177, with 0A and 05 186, 06 in seven bits.
	ask("10 10 00 F0 47 5E 21 00 00 0A 05 'PIANO' 00 06 F7", "");
	ask("10 0A 00 F0 47 5E 21 00 00 0A 13 1D F7", "'PIANO' 00");
	ask("10 0A 00 F0 47 5E 21 00 00 0A 12 1C F7", "01 02");
	ask("10 0A 00 F0 47 5E 21 00 00 0A 14 1E F7", "01");
	// 3A+01+02+01 = 3E; items 4B + 4B + 36 + 1C, sub-indexes 4: 12A -> 2A. 52 + 8 = 3C.
	ask(std::string("10 3C 00 F0 47 5E 21 00 00 3A 01 02 01 ") + block_1_groups + " 2A F7",
		"18 60 02 01 32 01 00 05 02 07 64 01 32 00 14 02 0A");
	// 28+29+2A+2B+3*2C+6+2D = 15D; with 3E 19B -> 1B. 36 + 8 = 2C.
	ask(std::string("10 2C 00 F0 47 5E 21 00 00 3A 01 02 01 ") + block_2_groups + " 1B F7",
		"02 63 0F 01 24 00 0A 02 0B 00 0C 05");
	// 40+...+48 = 264; with 3E 2A2 -> 22. 40 + 8 = 30.
	ask(std::string("10 30 00 F0 47 5E 21 00 00 3A 01 02 01 ") + block_3_groups + " 22 F7",
		"05 01 14 32 63 2D 02 07 00 08 01 09 00 0A");
	ask("10 0B 00 F0 47 5E 21 00 00 08 01 01 0A F7", "");
	ask("10 0A 00 F0 47 5E 21 00 00 08 58 60 F7", "01");
	ask("10 0A 00 F0 47 5E 21 00 00 08 5A 62 F7", "02");
	ask("10 0A 00 F0 47 5E 21 00 00 08 5B 63 F7", "03");
	ask("10 0A 00 F0 47 5E 21 00 00 08 5C 64 F7", "04");
	ask("10 0B 00 F0 47 5E 21 00 00 08 68 01 71 F7", "11");
	ask("10 0B 00 F0 47 5E 21 00 00 08 68 02 72 F7", "12");
	ask("10 0B 00 F0 47 5E 21 00 00 08 68 03 73 F7", "13");
	ask("10 0B 00 F0 47 5E 21 00 00 08 68 04 74 F7", "14");
	ask("10 0B 00 F0 47 5E 21 00 00 08 6B 01 74 F7", "21");
	ask("10 0B 00 F0 47 5E 21 00 00 08 6B 02 75 F7", "22");
	ask("10 0B 00 F0 47 5E 21 00 00 08 6B 03 76 F7", "23");
	ask("10 0B 00 F0 47 5E 21 00 00 08 6B 04 77 F7", "24");
	// Items of a zone in their order, and what zone 1 answers. Zone z adds z to the sum.
	struct {
		u8 item;
		const char *data;
	} zone[] = {
		{ 0x21, "'PIANO C3' 00" },
		{ 0x2B, "7F" },
		{ 0x2C, "40" },
		{ 0x22, "02 05" },
		{ 0x23, "20" },
		{ 0x24, "03" },
		{ 0x25, "00 07" },
		{ 0x26, "01 32" },
		{ 0x27, "00 0C" },
		{ 0x28, "01" },
		{ 0x29, "02" },
		{ 0x2A, "01 01 00" },
		{ 0x2D, "01" },
		{ 0x2E, "00" },
	};
	for (int z = 1; z <= 4; z++)
		for (const auto &row : zone)
			ask(format_text("10 0B 00 F0 47 5E 21 00 00 06 %02X %02X %02X F7", row.item,
				    z, (6 + row.item + z) & 0x7F),
				z == 1 ? row.data : "00");
	akai_s5000_getproglist(1, 1, dev);

	ASSERT_EQ(dev->programs, 1);
	const _program &p = dev->program[0];
	EXPECT_STREQ(p.name, "PIANO");
	EXPECT_EQ(p.index, 130);
	EXPECT_EQ(p.sampler_type, 1002);
	ASSERT_EQ(p.keygroups, 1);
	const _keygroup &k = p.keygroup[0];
	EXPECT_EQ(k.low_note, 24);
	EXPECT_EQ(k.high_note, 96);
	EXPECT_EQ(k.mute_group, 2);
	EXPECT_EQ(k.fx_override, 1);
	EXPECT_EQ(k.fx_sendlevel, 50);
	EXPECT_EQ(k.crossfade, 1);
	EXPECT_EQ(k.s5000_semitone_tune, 5);
	EXPECT_EQ(k.s5000_fine_tune, -7) << "a sign of 2 is negative here";
	EXPECT_EQ(k.s5000_keygroup_level, 100);
	EXPECT_EQ(k.s5000_pitch_mod1_val, -50);
	EXPECT_EQ(k.s5000_pitch_mod2_val, 20);
	EXPECT_EQ(k.s5000_amp_mod1_val, -10);
	EXPECT_EQ(k.s5000_filter_mode, 2);
	EXPECT_EQ(k.s5000_filter_cutoff, 99);
	EXPECT_EQ(k.s5000_filter_resonance, 15);
	EXPECT_EQ(k.s5000_filter_keyboard_track, -36);
	EXPECT_EQ(k.s5000_filter_mod1_input, 10);
	EXPECT_EQ(k.s5000_filter_mod2_input, -11);
	EXPECT_EQ(k.s5000_filter_mod3_input, 12);
	EXPECT_EQ(k.s5000_filter_attenuation, 5);
	EXPECT_EQ(k.filter_attack, 5u);
	EXPECT_EQ(k.s1000_env1_velocity_attack, -20);
	EXPECT_EQ(k.filter_decay, 50u);
	EXPECT_EQ(k.filter_sustain, 99u);
	EXPECT_EQ(k.filter_release, 45u);
	EXPECT_EQ(k.s5000_env1_on_velocity_release, 7) << "a sign of 2 is positive here";
	EXPECT_EQ(k.s1000_env1_key_scaling, 8);
	EXPECT_EQ(k.s5000_env1_depth, -9);
	EXPECT_EQ(k.s1000_env1_off_velocity_release, 10);
	EXPECT_EQ(k.amp_attack, 1u);
	EXPECT_EQ(k.amp_decay, 2u);
	EXPECT_EQ(k.amp_sustain, 3u);
	EXPECT_EQ(k.amp_release, 4u);
	EXPECT_EQ(k.aux_rate1, 0x11u);
	EXPECT_EQ(k.aux_rate4, 0x14u);
	EXPECT_EQ(k.aux_rate1_level, 0x21u);
	EXPECT_EQ(k.aux_rate4_level, 0x24u);
	EXPECT_EQ(k.keyzones, 4) << "always four, named or not";
	const _keyzone &z = k.keyzone[0];
	EXPECT_STREQ(z.samplename, "PIANO C3");
	EXPECT_EQ(z.high_velocity, 127);
	EXPECT_EQ(z.low_velocity, 64);
	EXPECT_EQ(z.zone_level, -5);
	EXPECT_EQ(z.zone_panning, -32);
	EXPECT_EQ(z.zone_output, 3);
	EXPECT_EQ(z.zone_filter, 7);
	EXPECT_EQ(z.fine_tune, -50);
	EXPECT_EQ(z.semitone_tune, 12);
	EXPECT_EQ(z.zone_keyboard_track, 1);
	EXPECT_EQ(z.zone_playback, 2);
	EXPECT_EQ(z.velocity_start, -128);
	EXPECT_EQ(z.zone_mute, 1);
	EXPECT_EQ(z.zone_solo, 0);
	EXPECT_STREQ(k.keyzone[1].samplename, "");
	EXPECT_TRUE(h.logged("[D] I: 0, PTR: [PIANO]"));
	EXPECT_TRUE(h.logged("[D] {PIANO} INDEX: 130"));
	EXPECT_TRUE(h.logged("[D] {PIANO} number of keygroups: 1"));
	EXPECT_TRUE(h.logged("[D] ------> REQUESTING KEYGROUP(1) BLOCK-DATA (52 Bytes)[1]"));
	EXPECT_TRUE(h.logged("[D] ------> REQUESTING KEYGROUP(1) BLOCK-DATA (36 Bytes)[2]"));
	EXPECT_TRUE(h.logged("[D] ------> REQUESTING KEYGROUP(1) BLOCK-DATA (40 Bytes)[3]"));
	EXPECT_TRUE(h.logged("[D] ------> BLOCK-ANSWER: [24 Bytes] [F0 47 5E 21 00 00 52 00 00 05 "
			     "01 14 32 63 2D 02 07 00 08 01 09 00 0A F7][3]"));
	EXPECT_TRUE(h.logged("[D] Selecting Keygroup 1 for [PIANO]"));
	EXPECT_TRUE(h.logged("[D] Zone(1) Sample: [PIANO C3] VEL-LOW: 64, VEL-HIGH: 127"));
	EXPECT_TRUE(h.logged("[D] Sampler has loaded 1 Keygroups"));
	EXPECT_FALSE(h.progress.visible);
}

TEST_F(s5000_lists, a_failed_walk_keeps_what_it_read_and_the_bar)
{
	dev->status = 1;
	wire.play(open_s5000);
	ask("10 0A 00 F0 47 5E 21 00 00 0A 10 1A F7", "00 02");
	ask("10 0A 00 F0 47 5E 21 00 00 0A 19 23 F7", "'A' 00 'B' 00");
	ask("10 0C 00 F0 47 5E 21 00 00 0A 05 'A' 00 50 F7", "");
	ask("10 0A 00 F0 47 5E 21 00 00 0A 13 1D F7", "'A' 00");
	ask("10 0A 00 F0 47 5E 21 00 00 0A 12 1C F7", "00 05");
	ask("10 0A 00 F0 47 5E 21 00 00 0A 14 1E F7", "00"); // no keygroups
	wire.play("> 10 0C 00 F0 47 5E 21 00 00 0A 05 'B' 00 51 F7 \n ! silence");
	akai_s5000_getproglist(1, 1, dev);
	EXPECT_EQ(dev->programs, 2);
	EXPECT_STREQ(dev->program[0].name, "A");
	EXPECT_EQ(dev->program[0].index, 5);
	EXPECT_STREQ(dev->program[1].name, "B");
	EXPECT_TRUE(h.progress.visible);
	hide_progressbar(0);
}

TEST_F(s5000_lists, stop_ends_the_walk_behind_a_request)
{
	dev->status = 1;
	wire.play(open_s5000);
	ask("10 0A 00 F0 47 5E 21 00 00 0A 10 1A F7", "00 02");
	ask("10 0A 00 F0 47 5E 21 00 00 0A 19 23 F7", "'A' 00 'B' 00");
	ask("10 0C 00 F0 47 5E 21 00 00 0A 05 'A' 00 50 F7", "");
	ask("10 0A 00 F0 47 5E 21 00 00 0A 13 1D F7", "'A' 00");
	ask("10 0A 00 F0 47 5E 21 00 00 0A 12 1C F7", "00 05");
	ask("10 0A 00 F0 47 5E 21 00 00 0A 14 1E F7", "03");
	h.on_pump = [this] {
		if (h.progress.visible)
			stop_progress();
	};
	akai_s5000_getproglist(1, 1, dev);
	h.on_pump = nullptr;
	EXPECT_EQ(dev->programs, 1);
	EXPECT_EQ(dev->program[0].keygroups, 0);
	EXPECT_FALSE(h.progress.visible);
	EXPECT_TRUE(h.logged("[I] Reading the programs was stopped"));
}

// ---- Values ----------------------------------------------------------------------------

TEST(usb_values, examples)
{
	struct {
		const value_form *form;
		const char *bytes;
		i32 value;
	} rows[] = {
		{ &as_plain, "7F", 127 },
		{ &as_word14, "01 02", 130 },
		{ &as_word28, "00 02 58 44", 44100 }, // 2 * 16384 + 88 * 128 + 68
		{ &as_signed, "01 32", -50 },
		{ &as_signed_one, "01 32", -50 },
		{ &as_panning, "20", -32 },
		{ &as_z4_word28, "44 58 02 00", 44100 },
		{ &as_z4_signed14, "01 05 01", -133 },
	};
	for (const auto &row : rows) {
		const std::vector<u8> bytes = hex(row.bytes);
		EXPECT_EQ(row.form->get({ bytes }), row.value) << row.form->name;
		u8 out[max_value_size] = {};
		const int count = row.form->put(out, row.value);
		EXPECT_EQ(hex_text({ out, static_cast<std::size_t>(count) }), row.bytes)
			<< row.form->name;
	}
	EXPECT_EQ(as_z4_rate.get({ hex("44 58 02") }), 44100);
}

// Reading is no inverse of writing: the low bits are taken for a shift, modulo 32.
TEST(usb_values, velocity_start)
{
	struct {
		const char *bytes;
		i32 value;
	} rows[] = {
		{ "00 01 00", 128 }, { "01 01 00", -128 }, { "02 01 00", -128 },
		{ "00 01 01", 256 }, { "00 00 05", 0 },
		{ "00 03 19", 3 }, // 0x19 + 7 is 32, and so no shift
	};
	for (const auto &row : rows)
		EXPECT_EQ(as_velocity_start.get({ hex(row.bytes) }), row.value) << row.bytes;
	u8 out[max_value_size];
	EXPECT_EQ(as_velocity_start.put(out, -130), 3);
	EXPECT_EQ(hex_text({ out, 3 }), "01 01 02");
}

TEST(usb_values, checksum)
{
	const std::vector<u8> bytes = hex("F0 47 5E 20 00 00 00 04 00");
	EXPECT_EQ(akai_s5000_calc_checksum(bytes.data(), 9), 4);
	EXPECT_EQ(akai_s5000_calc_checksum(bytes.data(), 4), 0);
	const std::vector<u8> full = hex("F0 47 5E 20 FF 01");
	EXPECT_EQ(akai_s5000_calc_checksum(full.data(), 6), 0); // 100 in seven bits
}

// Offsets rise by the width of each value, so no two fields share bytes.
TEST(usb_values, blocks_are_whole)
{
	const auto check = [](std::span<const block_row> block) {
		int at = block_answer_start;
		for (const block_row &row : block) {
			EXPECT_EQ(row.offset, at);
			at += row.form->width;
		}
	};
	check(keygroup_block_1);
	check(keygroup_block_2);
	check(keygroup_block_3);
}

} // namespace
