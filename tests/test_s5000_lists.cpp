// test_s5000_lists.cpp - status, lists and the program walk of an S5000, byte for byte

#include "src/akais5000.h"
#include "src/akaiz4.h"
#include "tests/support/told.h"
#include "tests/support/usb_fixture.h"
#include <cstring>
#include <memory>
#include <numeric>

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

class s5000_lists : public usb_test
{
protected:
	s5000_lists() : wire(h, 0x5E), dev(load(model_s5000)) { dev->status = 0; }
	void TearDown() override
	{
		EXPECT_EQ(wire.steps_left(), 0);
		usb_test::TearDown();
	}
	// A request in its frame, with the sum of its bytes in seven bits, and the data at offset 9
	// of the answer. 'text' is for its letters.
	void ask(std::string command, const std::string &data)
	{
		for (std::size_t at; (at = command.find('\'')) != command.npos;) {
			const std::size_t end = command.find('\'', at + 1);
			const std::string text = command.substr(at + 1, end - at - 1);
			const auto *letters = reinterpret_cast<const u8 *>(text.data());
			command.replace(at, end - at + 1, hex_text({ letters, text.size() }));
		}
		const std::vector<u8> bytes = hex(command);
		const int sum = std::accumulate(bytes.begin(), bytes.end(), 0);
		play(format_text("> 10 %02X 00 F0 47 5E 21 00 00 %s %02X F7",
			static_cast<unsigned>(bytes.size() + 8), command.c_str(), sum & 0x7F));
		if (data != "silence")
			play("< F0 47 5E 21 00 00 52 00 00 " + data + " F7");
		else
			play("! silence");
	}
	void play(const std::string &steps) { wire.play(steps.c_str()); }
	// The list of programs, and what the head of one is asked for.
	void list(const std::string &count, const std::string &names)
	{
		dev->status = 1;
		wire.play(open_s5000);
		ask("0A 10", count);
		ask("0A 19", names);
	}
	void head(const std::string &name, const std::string &index, const std::string &keygroups)
	{
		ask("0A 05 " + name + " 00", "");
		ask("0A 13", name + " 00");
		ask("0A 12", index);
		ask("0A 14", keygroups);
	}
	void keygroup(int number, int sign);
	transcript_usb wire;
	_dev_status *dev;
};

TEST_F(s5000_lists, status)
{
	wire.play(open_s5000);
	play("> 10 0B 00 F0 47 5E 21 00 00 00 04 00 04 F7 \n < F0 47 5E 21 00 00 44 00 04 F7");
	ask("00 01 00", "");
	ask("02 00", "02 0E");
	ask("02 03", "'Studio' 00");
	akai_s5000_getstatus(1, 7, dev);
	EXPECT_EQ(dev->status, 1);
	EXPECT_STREQ(dev->version, "2.14");
	EXPECT_STREQ(dev->sampler_name, "Studio");
	EXPECT_EQ(dev->exclusive_channel, 7);
	expect_logged({ "[D] Requesting Akai S5000 CONFIRMATION OFF on Exclusive Channel: 1 "
			"[SYSEX-CHANNEL: 7]",
		"[D] Requested Akai S5000 MAJOR OS NUMBER on Exclusive Channel: 1 "
		"[SYSEX-CHANNEL: 7]",
		"[D] Requested Akai S5000 Name on Exclusive Channel: 1 "
		"[SYSEX-CHANNEL: 7][Studio]" });
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
	struct {
		const char *count, *names;
		int multis;
		const char *first, *logged;
	} rows[] = {
		{ "00 02", "'LIVE SET' 00 'B' 00", 2, "LIVE SET",
			"[D] Requesting Akai S5000 MULTILIST on Exclusive Channel: 1 "
			"[SYSEX-CHANNEL: 1]" },
		{ "7F 7F", "'A' 00 'B' 00", 2, "A",
			"[W] The sampler announced 16383 multis, only 512 can be held" },
		{ "00 03", "'A' 00 'B' 00", 2, "A",
			"[W] The sampler announced 3 multis and listed 2" },
		// The count stays, and no names.
		{ "01 02", "silence", 130, "", ") WARNING! SYSEX-MIDI_USB FAILED!" },
	};
	for (const auto &row : rows) {
		dev->multi[0] = {};
		wire.play(open_s5000);
		ask("0C 40", row.count);
		ask("0C 51", row.names);
		akai_s5000_getmultilist(1, 1, dev);
		EXPECT_EQ(dev->multis, row.multis) << row.logged;
		EXPECT_STREQ(dev->multi[0].name, row.first) << row.logged;
		const auto told_so = [&](const std::string &line) {
			return line.starts_with("[") &&
			       line.ends_with(row.logged + std::string("\r\n"));
		};
		const std::vector<std::string> log = h.log();
		EXPECT_TRUE(std::any_of(log.begin(), log.end(), told_so)) << row.logged;
	}
	EXPECT_STREQ(dev->multi[1].name, "B");
}

// The high byte of the count is left out: 130 samples show as 2.
TEST_F(s5000_lists, samples_are_counted_modulo_128)
{
	dev->status = 1;
	dev->samples = 77;
	wire.play(open_s5000);
	ask("0E 10", "01 02");
	ask("0E 12", "'KICK' 00 'SNARE' 00 'HAT' 00");
	akai_s5000_getsamplelist(1, 1, dev);
	EXPECT_EQ(dev->samples, 2);
	EXPECT_STREQ(dev->sample[0].name, "KICK");
	EXPECT_STREQ(dev->sample[1].name, "SNARE");
	EXPECT_STREQ(dev->sample[2].name, "");
	expect_logged({ "[I] USB--> Sample-List-Len: 77 Entries",
		"[D] USB--> Sample-List-Len: 25 Bytes" });
}

TEST_F(s5000_lists, no_programs)
{
	list("00 00", "");
	akai_s5000_getproglist(1, 1, dev);
	EXPECT_EQ(dev->programs, 0);
	EXPECT_EQ(h.progress.caption, "Retrieving programs information...");
	EXPECT_FALSE(h.progress.visible);
	EXPECT_TRUE(h.logged("[D] Sampler has loaded 0 Keygroups"));
}

// A keygroup of program 130 (01 02), whose signed values have that sign byte.
void s5000_lists::keygroup(int number, int sign)
{
	const auto block = [&](const char *groups, std::string data) {
		for (std::size_t at; (at = data.find("S")) != data.npos;)
			data.replace(at, 1, format_text("%02X", sign));
		ask(format_text("3A 01 02 %02X ", number) + groups, data);
	};
	block("0A 00 00 00 0B 00 00 00 0C 00 00 00 0D 00 00 00 0E 00 00 00 0F 00 00 00 "
	      "18 00 00 00 19 00 00 00 1A 00 00 00 1B 01 00 00 1B 02 00 00 1C 01 00 00",
		"18 60 02 01 32 03 S 05 S 07 64 S 32 S 14 S 0A");
	block("28 00 00 00 29 00 00 00 2A 00 00 00 2B 00 00 00 "
	      "2C 01 00 00 2C 02 00 00 2C 03 00 00 2D 00 00 00",
		"04 63 0F S 24 S 0A S 0B S 0C 05");
	block("40 00 00 00 41 00 00 00 42 00 00 00 43 00 00 00 44 00 00 00 "
	      "45 00 00 00 46 00 00 00 47 00 00 00 48 00 00 00",
		"05 S 14 32 63 2D S 07 S 08 S 09 S 0A");
	ask(format_text("08 01 %02X", number), "");
	for (const char *one : { "58", "5A", "5B", "5C", "68 01", "68 02", "68 03", "68 04",
		     "6B 01", "6B 02", "6B 03", "6B 04" })
		ask(std::string("08 ") + one, one + std::strlen(one) - 2);
	// Items of a zone in their order, and what zone 1 answers.
	const std::pair<u8, const char *> zone[] = { { 0x21, "'PIANO C3' 00" }, { 0x2B, "7F" },
		{ 0x2C, "40" }, { 0x22, "02 05" }, { 0x23, "20" }, { 0x24, "03" },
		{ 0x25, "01 07" }, { 0x26, "02 32" }, { 0x27, "02 0C" }, { 0x28, "01" },
		{ 0x29, "02" }, { 0x2A, "01 01 00" }, { 0x2D, "04" }, { 0x2E, "06" } };
	for (int z = 1; z <= 4; z++)
		for (const auto &[item, data] : zone)
			ask(format_text("06 %02X %02X", item, z), z == 1 ? data : "00");
}

TEST_F(s5000_lists, one_program_with_two_keygroups)
{
	list("00 01", "'PIANO' 00");
	head("'PIANO'", "01 02", "02");
	keygroup(1, 2);
	keygroup(2, 1);
	akai_s5000_getproglist(1, 1, dev);
	ASSERT_EQ(dev->programs, 1);
	const _program &p = dev->program[0];
	EXPECT_STREQ(p.name, "PIANO");
	EXPECT_EQ(p.index, 130);
	EXPECT_EQ(p.sampler_type, 1002);
	ASSERT_EQ(p.keygroups, 2);
	const auto &blocks = akai_s5000_keygroup_blocks;
	const _keygroup &k = p.keygroup[0];
	for (const _keygroup *any : { &p.keygroup[0], &p.keygroup[1] }) {
		EXPECT_EQ(told(blocks[0], *any),
			"low_note 24, high_note 96, mute_group 2, fx_override 1, fx_sendlevel 50, "
			"crossfade 3, s5000_semitone_tune -5, s5000_fine_tune -7, "
			"s5000_keygroup_level 100, s5000_pitch_mod1_val -50, "
			"s5000_pitch_mod2_val -20, s5000_amp_mod1_val -10");
		EXPECT_EQ(told(blocks[1], *any),
			"s5000_filter_mode 4, s5000_filter_cutoff 99, s5000_filter_resonance 15, "
			"s5000_filter_keyboard_track -36, s5000_filter_mod1_input -10, "
			"s5000_filter_mod2_input -11, s5000_filter_mod3_input -12, "
			"s5000_filter_attenuation 5");
	}
	EXPECT_EQ(told(blocks[2], k),
		"filter_attack 5, s1000_env1_velocity_attack 20, filter_decay 50, filter_sustain "
		"99, filter_release 45, s5000_env1_on_velocity_release 7, s1000_env1_key_scaling "
		"8, s5000_env1_depth 9, s1000_env1_off_velocity_release 10")
		<< "a sign of 2 is positive here alone";
	EXPECT_EQ(told(blocks[2], p.keygroup[1]),
		"filter_attack 5, s1000_env1_velocity_attack -20, filter_decay 50, filter_sustain "
		"99, filter_release 45, s5000_env1_on_velocity_release -7, s1000_env1_key_scaling "
		"-8, s5000_env1_depth -9, s1000_env1_off_velocity_release -10");
	EXPECT_EQ(told(akai_s5000_keygroup_values, k),
		"amp_attack 88, amp_decay 90, amp_sustain 91, amp_release 92, aux_rate1 1, "
		"aux_rate2 2, aux_rate3 3, aux_rate4 4, aux_rate1_level 1, aux_rate2_level 2, "
		"aux_rate3_level 3, aux_rate4_level 4");
	EXPECT_EQ(k.keyzones, 4) << "always four, named or not";
	EXPECT_EQ(told(akai_s5000_zone_values, k.keyzone[0]),
		"samplename PIANO C3, high_velocity 127, low_velocity 64, zone_level -5, "
		"zone_panning -32, zone_output 3, zone_filter -7, fine_tune -50, semitone_tune "
		"-12, zone_keyboard_track 1, zone_playback 2, velocity_start -128, zone_mute 4, "
		"zone_solo 6");
	EXPECT_STREQ(k.keyzone[1].samplename, "");
	expect_logged({ "[D] I: 0, PTR: [PIANO]", "[D] {PIANO} INDEX: 130",
		"[D] {PIANO} number of keygroups: 2",
		"[D] ------> REQUESTING KEYGROUP(1) BLOCK-DATA (52 Bytes)[1]",
		"[D] ------> REQUESTING KEYGROUP(1) BLOCK-DATA (36 Bytes)[2]",
		"[D] ------> REQUESTING KEYGROUP(1) BLOCK-DATA (40 Bytes)[3]",
		"[D] ------> BLOCK-ANSWER: [24 Bytes] [F0 47 5E 21 00 00 52 00 00 05 02 14 32 "
		"63 2D 02 07 02 08 02 09 02 0A F7][3]",
		"[D] Selecting Keygroup 2 for [PIANO]",
		"[D] Zone(1) Sample: [PIANO C3] VEL-LOW: 64, VEL-HIGH: 127",
		"[D] Sampler has loaded 2 Keygroups" });
	EXPECT_FALSE(h.progress.visible);
}

TEST_F(s5000_lists, a_failed_walk_keeps_what_it_read_and_the_bar)
{
	list("00 02", "'A' 00 'B' 00");
	head("'A'", "00 05", "00");
	ask("0A 05 'B' 00", "silence");
	akai_s5000_getproglist(1, 1, dev);
	EXPECT_EQ(dev->programs, 2);
	EXPECT_STREQ(dev->program[0].name, "A");
	EXPECT_EQ(dev->program[0].index, 5);
	EXPECT_STREQ(dev->program[1].name, "B");
	EXPECT_TRUE(h.progress.visible);
	hide_progressbar(0);
}

TEST_F(s5000_lists, fewer_programs_than_announced)
{
	list("00 03", "'A' 00");
	head("'A'", "00 05", "00");
	akai_s5000_getproglist(1, 1, dev);
	EXPECT_EQ(dev->programs, 1);
	EXPECT_TRUE(h.logged("[W] The sampler announced 3 programs and listed 1"));
	EXPECT_FALSE(h.progress.visible);
}

// Pressed before the first keygroup, and while the first is being read, which is then finished.
TEST_F(s5000_lists, stop_ends_the_walk_behind_a_keygroup)
{
	for (int whole : { 0, 1 }) {
		list("00 02", "'A' 00 'B' 00");
		head("'A'", "01 02", "03");
		if (whole)
			keygroup(1, 0);
		h.on_pump = [this, whole] {
			if (h.progress.visible &&
				dev->program[0].keygroup[0].low_note == 24 * whole)
				stop_progress();
		};
		akai_s5000_getproglist(1, 1, dev);
		h.on_pump = nullptr;
		EXPECT_EQ(dev->programs, 1);
		EXPECT_EQ(dev->program[0].keygroups, whole);
		EXPECT_EQ(dev->program[0].keygroup[0].keyzone[3].high_velocity, 0);
		EXPECT_EQ(dev->program[0].keygroup[0].keyzones, 4 * whole);
		EXPECT_FALSE(h.progress.visible);
		EXPECT_TRUE(h.logged("[I] Reading the programs was stopped"));
	}
}

// ---- Values ----------------------------------------------------------------------------

TEST(usb_values, examples)
{
	struct {
		const conversion *as;
		const char *bytes;
		i32 value, kept;
	} rows[] = {
		{ &as_word14, "01 02", 130, 130 },
		{ &as_word28, "00 02 58 44", 44100, 44100 }, // 2 * 16384 + 88 * 128 + 68
		{ &as_signed, "01 32", -50, -50 },
		{ &as_signed_one, "01 32", -50, -50 },
		{ &as_panning, "20", -32, -32 },
		{ &as_panning, "00", -64, -64 },
		{ &as_zone_signed, "01 32", -50, 50 },
		{ &as_zone_level, "01 64", -100, 100 },
		{ &as_velocity_start, "00 01 00", 128, 128 },
		{ &as_z4_word28, "44 58 02 00", 44100, 44100 },
		{ &as_z4_signed14, "01 05 01", -133, -133 },
	};
	for (const auto &row : rows) {
		EXPECT_EQ(row.as->get({ hex(row.bytes) }), row.value) << row.as->name;
		u8 out[max_value_size] = {};
		EXPECT_EQ(row.as->put(out, row.value), row.kept) << row.as->name;
		EXPECT_EQ(hex_text({ out, static_cast<std::size_t>(row.as->width) }), row.bytes)
			<< row.as->name;
	}
	EXPECT_EQ(as_z4_rate.get({ hex("44 58 02") }), 44100);
}

// Reading is no inverse of writing: the low bits are taken for a shift, modulo 32.
TEST(usb_values, velocity_start)
{
	const std::pair<const char *, i32> rows[] = {
		{ "00 01 00", 128 }, { "01 01 00", -128 }, { "02 01 00", -128 },
		{ "00 01 01", 256 }, { "00 00 05", 0 },
		{ "00 03 19", 3 }, // 0x19 + 7 is 32, and so no shift
	};
	for (const auto &[bytes, value] : rows)
		EXPECT_EQ(as_velocity_start.get({ hex(bytes) }), value) << bytes;
}

TEST(usb_values, checksum)
{
	const std::vector<u8> bytes = hex("F0 47 5E 20 FF 05");
	EXPECT_EQ(akai_s5000_calc_checksum(bytes.data(), 6), 4); // 104 in seven bits
	EXPECT_EQ(akai_s5000_calc_checksum(bytes.data(), 5), 0x7F);
	EXPECT_EQ(akai_s5000_calc_checksum(bytes.data(), 4), 0);
}

// ---- What rows send ----------------------------------------------------------------------

// All requests of a table in the order of writing.
template <typename record, typename... zone>
std::string written(parameters<record> table, record &r, zone... number)
{
	std::string text;
	in_order_of_writing(table, [&](const auto &row) {
		text += (text.empty() ? "" : " | ") + hex_text(write_request(row, r, number...));
	});
	return text;
}

TEST(usb_values, a_zone_is_written_in_its_own_order_and_keeps_magnitudes)
{
	_keyzone z = {};
	copy_text(z.samplename, "AB");
	z.high_velocity = 127, z.low_velocity = 1, z.zone_level = -200, z.zone_panning = -64;
	z.zone_output = 24, z.zone_filter = -7, z.fine_tune = -50, z.semitone_tune = 12;
	z.velocity_start = -200, z.zone_keyboard_track = 1, z.zone_playback = 6;
	z.zone_mute = 1, z.zone_solo = 2;
	// 200 is C8 hex, 48 in seven bits, and 01 48 in fourteen.
	EXPECT_EQ(written(akai_s5000_zone_values, z, u8{ 3 }),
		"06 01 03 41 42 00 | 06 0B 03 7F | 06 0C 03 01 | 06 02 03 01 48 | 06 03 03 00 | "
		"06 04 03 18 | 06 05 03 01 07 | 06 06 03 01 32 | 06 07 03 00 0C | "
		"06 0A 03 01 01 48 | 06 08 03 01 | 06 09 03 06 | 06 0D 03 01 | 06 0E 03 02");
	EXPECT_EQ(told(akai_s5000_zone_values.subspan(3), z),
		"zone_level 200, zone_panning -64, zone_output 24, zone_filter 7, fine_tune 50, "
		"semitone_tune 12, zone_keyboard_track 1, zone_playback 6, velocity_start 200, "
		"zone_mute 1, zone_solo 2");
	z.zone_level = -200;
	EXPECT_EQ(
		written(akai_z4_zone_values, z, u8{ 1 }), "0E 01 01 41 42 00 | 0E 02 01 01 48 01");
	EXPECT_EQ(z.zone_level, -200) << "here the sign stays";
}

TEST(usb_values, a_keygroup_is_written_in_blocks_and_one_by_one)
{
	const auto k = std::make_unique<_keygroup>();
	i32 value = 1;
	for (const auto &block : akai_s5000_keygroup_blocks)
		for (const auto &row : block)
			row.field.at.set(k.get(), row.as == &as_byte ? value++ : -value++);
	value = 0x31;
	for (const auto &row : akai_s5000_keygroup_values)
		row.field.at.set(k.get(), value++);
	const auto block = [&](int i) { return hex_text(block_write_request(i, 1, 2, 5, *k)); };
	EXPECT_EQ(block(1),
		"3A 01 02 05 04 01 00 00 05 02 00 00 06 03 00 00 07 04 00 00 08 05 00 00 "
		"09 06 00 00 12 09 00 00 10 01 07 00 11 01 08 00 13 01 01 0A 13 02 01 "
		"0B 14 01 01 0C");
	EXPECT_EQ(block(2),
		"3A 01 02 05 20 0D 00 00 21 0E 00 00 22 0F 00 00 23 01 10 00 24 01 01 11 "
		"24 02 01 12 24 03 01 13 25 14 00 00");
	EXPECT_EQ(block(3),
		"3A 01 02 05 30 15 00 00 31 01 16 00 32 17 00 00 33 18 00 00 34 19 00 00 "
		"35 01 1A 00 36 01 1B 00 37 01 1C 00 38 01 1D");
	EXPECT_EQ(k->s5000_fine_tune, -8) << "a block leaves the sign in the record";
	EXPECT_EQ(written(akai_s5000_keygroup_notes, *k), "08 04 01 | 08 05 02");
	EXPECT_EQ(written(akai_s5000_keygroup_values, *k),
		"08 50 31 | 08 52 32 | 08 53 33 | 08 54 34 | 08 60 01 35 | 08 60 02 36 | 08 60 03 "
		"37 | 08 60 04 38 | 08 63 01 39 | 08 63 02 3A | 08 63 03 3B | 08 63 04 3C");
	EXPECT_EQ(written(akai_z4_keygroup_values, *k), "12 04 01 | 12 05 02");
	const auto p = std::make_unique<_program>();
	p->polyphony = 32, p->s1000_reasignement = 1;
	EXPECT_EQ(written(akai_z4_program_values, *p), "16 10 20 | 16 11 01");
}

} // namespace
