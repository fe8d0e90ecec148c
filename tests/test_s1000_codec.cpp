// test_s1000_codec.cpp - nibbles, numbers, names, tuning, and the parameter tables
//
// Bytes are worked out by hand from the description of the protocol. Properties walk
// the real tables, so that a new row is tested by being there.

#include "src/akais1000.h"
#include "tests/support/test_host.h"
#include "tests/support/told.h"
#include <cstring>
#include <map>
#include <sstream>

namespace velmor
{
namespace
{

using codec = host_test;

std::vector<u8> decoded(std::string_view nibbles)
{
	return akai_bytes_from_nibbles({ hex(nibbles) });
}

// ---- Nibbles -----------------------------------------------------------------------------

TEST_F(codec, nibbles_travel_low_half_first)
{
	u8 out[6] = { 1, 1, 1, 1, 1, 1 };
	int length = 0;
	create_akai_nibblebuf(hex("A5 3C").data(), 2, out, &length);
	EXPECT_EQ(length, 5);
	EXPECT_EQ(std::vector<u8>(out, out + 6), hex("05 0A 0C 03 F7 01"));
	u8 raw[3] = { 9, 9, 9 };
	create_akai_nibblebuf_raw(hex("F7").data(), raw, 1);
	EXPECT_EQ(std::vector<u8>(raw, raw + 3), hex("07 0F 09"));
	create_akai_nibblebuf_raw(nullptr, nullptr, 0);
	create_akai_nibblebuf_raw(nullptr, nullptr, -1);
}

TEST_F(codec, decoding_ends_at_an_end_byte_in_the_low_place_only)
{
	EXPECT_EQ(decoded("05 0A 0C 03 F7 01 01"), hex("A5 3C"));
	EXPECT_EQ(decoded("F7"), hex(""));
	EXPECT_EQ(decoded("F7 01 02"), hex(""));
	// The high half is neither masked nor an end: 5 + 16 * F7 hex, cut to a byte.
	EXPECT_EQ(decoded("05 F7 01 02 F7"), hex("75 21"));
	// The low half is masked.
	EXPECT_EQ(decoded("15 0A F7"), hex("A5"));
	// What never came is zero and not read on into.
	EXPECT_EQ(decoded("05 0A 0C"), hex("A5 0C"));
	EXPECT_EQ(decoded(""), hex(""));
}

TEST_F(codec, decoding_stays_inside_what_it_is_given)
{
	const std::vector<u8> in(100, 0x01);
	u8 out[4] = {};
	int length = -1;
	create_akai_charbuf({ in }, std::span(out, 3), &length);
	EXPECT_EQ(length, 3);
	EXPECT_EQ(out[3], 0);
}

// ---- Numbers -----------------------------------------------------------------------------

TEST_F(codec, numbers_go_low_part_first)
{
	EXPECT_EQ(get_akai8_word({ hex("34 12") }), 0x1234u);
	EXPECT_EQ(get_akai8_dword({ hex("78 56 34 F2") }), 0xF2345678u);
	EXPECT_TRUE(h.logged("[D] ############# Decoding: [0x34,0x12] --> 4660"));
	EXPECT_TRUE(h.logged("[D] ############# Decoding: [0x78,0x56,0x34,0xF2] --> 4063516280"));
	EXPECT_EQ(get_akai8_dword({ hex("78 56") }), 0x5678u) << "what never came is zero";

	u8 p[5] = { 0xEE, 0xEE, 0xEE, 0xEE, 0xEE };
	set_akai8_word(0x31234, p);
	EXPECT_EQ(std::vector<u8>(p, p + 3), hex("34 12 EE"));
	set_akai8_dword(0xF2345678, p);
	EXPECT_EQ(std::vector<u8>(p, p + 5), hex("78 56 34 F2 EE"));
	// 16383 is 7F 7F; 16384 no longer fits in two bytes and is 00 00 01 in more.
	set_akai7_word(16383, p);
	EXPECT_EQ(std::vector<u8>(p, p + 3), hex("7F 7F 34"));
	set_akai7_word(16384, p);
	EXPECT_EQ(std::vector<u8>(p, p + 3), hex("00 00 34"));
	set_akai7_dword(16384 + 2 * 128 + 3, p);
	EXPECT_EQ(std::vector<u8>(p, p + 5), hex("03 02 01 00 EE"));
}

// The two ways are not the reverse of each other, and must not be made so.
TEST_F(codec, words_of_a_sample_unpack_one_way_and_pack_another)
{
	// 40 00 00 is the midpoint: 0x8000 + 32768 wraps to 0.
	EXPECT_EQ(akai_unpack3(hex("40 00 00").data()), 0);
	EXPECT_EQ(akai_unpack3(hex("00 00 00").data()), 0x8000);
	EXPECT_EQ(akai_unpack3(hex("7F 7F 60").data()), 0x7FFF);
	EXPECT_EQ(akai_unpack3(hex("40 00 20").data()), 1);
	u8 p[3];
	akai_dump_word(0, p);
	EXPECT_EQ(std::vector<u8>(p, p + 3), hex("40 00 00"));
	akai_dump_word(0x8000, p);
	EXPECT_EQ(std::vector<u8>(p, p + 3), hex("00 00 00"));
	akai_dump_word(0x7FFF, p);
	EXPECT_EQ(std::vector<u8>(p, p + 3), hex("7F 7F 03")) << "low bits in the low bits";
	// 1234 - 8000 is 9234: 49 0D 00.
	akai_dump_word(0x1234, p);
	EXPECT_EQ(std::vector<u8>(p, p + 3), hex("49 0D 00"));
}

// ---- Names -------------------------------------------------------------------------------

TEST_F(codec, names_decode_by_the_alphabet)
{
	struct {
		const char *bytes, *text;
	} rows[] = {
		{ "1A 13 0B 18 19 0A 0A 0A 0A 0A 0A 0A", "PIANO       " },
		{ "00 09 0A 0B 24 25 26 27 28 0A 0A 0A", "09 AZ#+-.   " },
		{ "0B 0C 29 0D 0D 0D 0D 0D 0D 0D 0D 0D", "AB" },
		{ "0B 2A 7F FF 0C 0A 0A 0A 0A 0A 0A 0A", "A???B       " },
		{ "29 0B 0B 0B 0B 0B 0B 0B 0B 0B 0B 0B", "" },
		{ "0B 0C", "AB0000000000" },
	};
	for (const auto &it : rows)
		EXPECT_EQ(akai_name({ hex(it.bytes) }), it.text) << it.bytes;
}

TEST_F(codec, names_lose_their_blanks_at_the_end_only)
{
	EXPECT_EQ(akai_trimmed_name({ hex("0A 0B 0A 0B 0A*8") }), " A A");
	EXPECT_EQ(akai_trimmed_name({ hex("0A*12") }), "");
	EXPECT_EQ(akai_trimmed_name({ hex("29 0A*11") }), "");
	EXPECT_EQ(akai_trimmed_name({ hex("0B*12") }), "AAAAAAAAAAAA");
}

TEST_F(codec, names_encode_with_capitals_blanks_and_full_stops)
{
	struct {
		const char *text, *bytes;
	} rows[] = {
		{ "Piano", "1A 13 0B 18 19 0A*7" },
		{ "", "0A*12" },
		{ "a:\\b", "0B 28 28 0C 0A*8" },
		{ "EXACTLYTWELV", "0F 22 0B 0D 1E 16 23 1E 21 0F 16 20" },
		{ "EXACTLYTWELVE", "0F 22 0B 0D 1E 16 23 1E 21 0F 16 20" },
		{ "#+-.\xFC", "25 26 27 28 28 0A*7" },
	};
	for (const auto &it : rows) {
		u8 out[14];
		std::memset(out, 0xEE, sizeof out);
		make_akai_name(it.text, out, 12);
		EXPECT_EQ(std::vector<u8>(out, out + 12), hex(it.bytes)) << it.text;
		EXPECT_EQ(out[12], 0);
		EXPECT_EQ(out[13], 0xEE);
	}
}

TEST_F(codec, every_character_of_the_alphabet_goes_both_ways)
{
	for (u8 index = 0; index <= 40; index++) {
		char text[2];
		from_akai_ascii({ std::span(&index, 1) }, 1, text);
		u8 back[2];
		make_akai_name(text, back, 1);
		EXPECT_EQ(back[0], index);
	}
}

// ---- Tuning ------------------------------------------------------------------------------

TEST_F(codec, tuning_is_written_lowered_and_stays_lowered)
{
	struct {
		i32 cents;
		const char *bytes;
		i32 kept, read_back;
	} rows[] = {
		{ 0, "00 00", 0, 0 },
		{ 50, "80 00", 50, 50 },
		{ 150, "80 01", 150, 150 },
		{ 1200, "00 0C", 1200, 1200 },
		{ -50, "80 FF", -150, -50 },
		{ -100, "00 FE", -200, -200 },
		{ -150, "80 FE", -250, -150 },
	};
	// Where a byte is cut from a negative fraction: -150 % 100 is -50, times 256 / 100 is -128.
	for (const auto &it : rows) {
		u8 bytes[2];
		EXPECT_EQ(as_akai_tuning.put(bytes, it.cents), it.kept) << it.cents;
		EXPECT_EQ(std::vector<u8>(bytes, bytes + 2), hex(it.bytes)) << it.cents;
		EXPECT_EQ(as_akai_tuning.get({ bytes }), it.read_back) << it.cents;
	}
	EXPECT_EQ(as_akai_tuning.get({ hex("00 80") }), -12800);
	EXPECT_EQ(as_akai_tuning.get({ hex("FF 7F") }), 12799);
}

// ---- Where each field lies -------------------------------------------------------------------

// The format told once more, apart from the program's tables: offset, step to the next zone,
// how the bytes are meant, who takes it back, field.
//   b byte  s signed  p plus one  n plus one or none  x not  t tuning  w word  a name  z trimmed
//   * all models  2 from the S2000 on  c when a program is created  - nobody
// The balance is a signed byte that the record keeps as it came.
constexpr char program_format[] =
	"3a*name 15p*midi_pgm_number 16p*midi_channel 17p*polyphony 18b*s1000_priority "
	"19b*play_range_low 20b*play_range_high 22n*s1000_output 23b*s1000_level "
	"24b*s1000_balance 25b*s1000_basic_loudness 26s*s1000_velocity_loudness "
	"27s*s1000_key_loudness 28s*s1000_aftertouch_loudness 29b*s1000_lfo2_speed "
	"30b*s1000_lfo2_depth 31b*s1000_lfo2_delay 32s*s1000_key_panning 33b*s1000_lfo1_speed "
	"34b*s1000_lfo1_depth 35b*s1000_lfo1_delay 36b*s1000_lfo1_modwheel "
	"37b*s1000_lfo1_pressure 39b*s1000_bendwheel_pitch_up 40b*s1000_aftertouch_bend "
	"41b*crossfade_enable 42bckeygroups 56b*s1000_effect_out 57s*s1000_mod_panning "
	"59b*s1000_lfo1_sync 61b*s1000_reasignement 65t*s1000_tunning_offset "
	"72b2s2000_mono_legato 73b2s2000_bendwheel_pitch_down 74b2s2000_aftertouch_bend_mode "
	"75s2s2000_transpose_offset 76b2s2000_pan_mod1_source 77b2s2000_pan_mod2_source "
	"78b2s2000_pan_mod3_source 79b2s2000_out_mod1_source 80b2s2000_out_mod2_source "
	"81b2s2000_lfo1_rate_source 82b2s2000_lfo1_depth_source 83b2s2000_lfo1_delay_source "
	"84b2s2000_flt_mod1_source 85b2s2000_flt_mod2_source 86b2s2000_flt_mod3_source "
	"88b2s2000_amp_mod3_source 89s2s2000_pan_mod1_level 90s2s2000_pan_mod2_level "
	"91s2s2000_pan_mod3_level 92s2s2000_out_mod1_level 93s2s2000_out_mod2_level "
	"94s2s2000_lfo1_rate_level 95s2s2000_lfo1_depth_level 96s2s2000_lfo1_delay_level "
	"97b2s2000_lfo1_waveform 98b2s2000_lfo2_waveform 102x2s2000_lfo2_retrigger "
	"110b2s2000_portamento_rate 111b2s2000_portamento_mode 112b2s2000_portamento ";
constexpr char keygroup_format[] =
	"3b*low_note 4b*high_note 5t*s1000_tune_offset 7b*s1000_basic_filter_frequency "
	"8s*s1000_filter_keyboard 9s*s1000_filter_velocity_freq 10s*s1000_filter_pressure_freq "
	"11s*s1000_filter_env2_freq 12b*amp_attack 13b*amp_decay 14b*amp_sustain 15b*amp_release "
	"16s*s1000_env1_velocity_attack 17s*s1000_env1_velocity_release "
	"18s*s1000_env1_off_velocity_release 19s*s1000_env1_key_scaling 20s*s1000_env2_r1 "
	"21s*s1000_env2_r3 22s*s1000_env2_l3 23s*s1000_env2_r4 24s*s1000_env2_velocity_r1 "
	"25s*s1000_env2_velocity_r4 26s*s1000_env2_off_velocity_r4 27s*s1000_env2_key_r2_r4 "
	"28s*s1000_env2_velocity_envelope 29s*s1000_filter_env2_pitch 30b*crossfade 130b-kbeat "
	"131b-ahold 131b2s1000_env1_attack_hold 148s*s1000_filter_loudness_offset "
	"149b2s2000_filter_resonance 151s2s2000_flt_mod1_level 152s2s2000_flt_mod2_level "
	"153s2s2000_flt_mod3_level 155s2s2000_amp_mod3_level 156s2s2000_env2_l1 "
	"157s2s2000_env2_r2 158s2s2000_env2_l2 159s2s2000_env2_l4 160n2mute_group ";
constexpr char zone_format[] =
	"34+24z*samplename 46+24b*low_velocity 47+24b*high_velocity 48+24t*tunning 50+24b*level "
	"51+24b*filter 52+24b*zone_panning 53+24b*zone_playback 132+1b*zone_keyboard_track "
	"136+1b*s1000_vzout 140+2w*velocity_start ";

struct format_row {
	std::size_t at, width;
	char kind, who;
	std::string name;
};

std::vector<format_row> format_of(const char *text, int nth)
{
	std::vector<format_row> rows;
	std::istringstream in(text);
	std::size_t at, step;
	for (format_row row; in >> at; rows.push_back(row)) {
		step = 0;
		if (in.peek() == '+')
			in >> step;
		in >> row.kind >> row.who >> row.name;
		row.at = at + static_cast<std::size_t>(nth) * step;
		row.width = row.kind == 'a' || row.kind == 'z'   ? 12
			    : row.kind == 't' || row.kind == 'w' ? 2
								 : 1;
	}
	return rows;
}

// No two bytes are alike, and of this block and its inverse one has any bit; names end in blanks.
std::vector<u8> telling_block(const std::vector<format_row> &rows, bool inverted)
{
	std::vector<u8> block(192);
	for (std::size_t i = 0; i < block.size(); i++)
		block[i] = static_cast<u8>((5 * i + 131) ^ (inverted ? 0xFF : 0));
	for (const format_row &row : rows)
		for (std::size_t i = 0; row.width == 12 && i < 12; i++)
			block[row.at + i] = static_cast<u8>(i < 10 ? 11 + i + inverted : 10);
	return block;
}

i32 meant(char kind, const u8 *b)
{
	switch (kind) {
	case 's':
		return static_cast<std::int8_t>(b[0]);
	case 'p':
		return b[0] + 1;
	case 'n':
		return b[0] == 255 ? 0 : b[0] + 1;
	case 'x':
		return b[0] == 0;
	case 'w':
		return b[0] + 256 * b[1];
	case 't':
		return (b[0] * 100 >> 8) + 100 * static_cast<std::int8_t>(b[1]);
	}
	return b[0];
}

unsigned takers_of(char who)
{
	const std::map<char, unsigned> takers = { { '*', taken_by_all }, { '2', taken_by_s2000 },
		{ 'c', taken_at_creation } };
	return takers.contains(who) ? takers.at(who) : 0;
}

// What a row reads there.
template <typename record>
std::string due_text(const parameter<record> &row, const format_row &format, const u8 *bytes)
{
	i32 value = meant(format.kind, bytes);
	if (std::holds_alternative<u8 record::*>(row.field.at.field))
		value = static_cast<u8>(value);
	std::string name = bytes[0] == 11 ? "ABCDEFGHIJ" : "BCDEFGHIJK";
	name += format.kind == 'a' ? "  " : "";
	return format.name + " " + (format.width == 12 ? name : std::to_string(value));
}

// What a row makes of the bytes of another block. Tuning and flags do not go back as they came,
// which has its own test; all else does.
template <typename record>
void put_due(const parameter<record> &row, const format_row &format, const u8 *bytes, u8 *due)
{
	if (format.kind == 't' || format.kind == 'x')
		row.as->put(due, meant(format.kind, bytes));
	else
		std::copy_n(bytes, format.width, due);
}

// Reads the telling block and its inverse, and writes each over the other.
template <typename record>
void expect_format(parameters<record> table, const char *text, int nth = 0)
{
	const std::vector<format_row> rows = format_of(text, nth);
	ASSERT_EQ(table.size(), rows.size());
	for (unsigned takers : { 1u, 2u, 4u })
		for (bool inverted : { false, true }) {
			const std::vector<u8> block = telling_block(rows, inverted);
			std::vector<u8> written = telling_block(rows, !inverted), due = written;
			auto r = std::make_unique<record>();
			block_to_record(table, { block }, *r, nth);
			for (std::size_t i = 0; i < rows.size(); i++) {
				const std::size_t at = rows[i].at;
				EXPECT_EQ(told<record>({ &table[i], 1 }, *r),
					due_text(table[i], rows[i], &block[at]));
				if (takers_of(rows[i].who) & takers)
					put_due(table[i], rows[i], &block[at], &due[at]);
			}
			record_to_block(table, takers, *r, written, nth);
			EXPECT_EQ(hex_text(written), hex_text(due)) << "taken by " << takers;
		}
}

TEST_F(codec, every_field_is_read_from_its_place_and_goes_back_where_it_is_taken)
{
	expect_format(akai_s1000_program_parameters, program_format);
	expect_format(akai_s1000_keygroup_parameters, keygroup_format);
	for (int zone = 0; zone < akai_zones; zone++)
		expect_format(akai_s1000_keyzone_parameters, zone_format, zone);
	EXPECT_EQ(akai_s1000_takers(model_s1000), taken_by_s1000);
	EXPECT_EQ(akai_s1000_takers(model_mpc4000), taken_by_s1000);
	EXPECT_EQ(akai_s1000_takers(model_s2000), taken_by_s2000);
	EXPECT_EQ(akai_s1000_takers(model_s3000), taken_by_s2000);
}

TEST_F(codec, a_record_saved_twice_sinks_twice)
{
	_keyzone zone = {};
	zone.tunning = -50;
	u8 block[192] = {};
	for (const auto &[kept, semitones] : { std::pair(-150, 0xFF), std::pair(-250, 0xFE) }) {
		record_to_block(akai_s1000_keyzone_parameters, taken_by_s1000, zone, block, 2);
		EXPECT_EQ(zone.tunning, kept);
		EXPECT_EQ(block[96], 0x80);
		EXPECT_EQ(block[97], semitones);
	}
}

TEST_F(codec, a_keygroup_has_four_zones_and_leaves_the_others)
{
	auto keygroup = std::make_unique<_keygroup>();
	keygroup->keyzone[0].solo = 1;
	copy_text(keygroup->keyzone[4].samplename, "untouched");
	std::vector<u8> block(192, 0x0A);
	block[34 + 3 * 24] = 0x1D;
	akai_s1000_keygroup_from_block({ block }, keygroup.get());
	EXPECT_EQ(keygroup->keyzones, 4);
	EXPECT_EQ(keygroup->keyzone[0].solo, 0) << "cleared first";
	EXPECT_STREQ(keygroup->keyzone[3].samplename, "S");
	EXPECT_EQ(keygroup->keyzone[3].level, 10);
	EXPECT_STREQ(keygroup->keyzone[4].samplename, "untouched");
}

TEST_F(codec, a_new_program_starts_from_the_template)
{
	auto program = std::make_unique<_program>();
	copy_text(program->name, "Grand");
	program->keygroups = 3;
	u8 block[193];
	int length = 0;
	std::memset(block, 0xEE, sizeof block);
	h.use_sampler(model_s1000, 0);
	akai_s1000_init_progblock(block, &length, program.get());
	EXPECT_EQ(length, 150);
	EXPECT_EQ(std::vector<u8>(block, block + 23),
		hex("01 0C 90 11 1C 0B 18 0E 0A*7 00 00 1F 01 18 7F 00 FF"));
	EXPECT_EQ(block[42], 3);
	EXPECT_EQ(block[62], 0x0A);
	EXPECT_EQ(block[88], 0x05);
	EXPECT_EQ(block[149], 0);
	EXPECT_EQ(block[150], 0xEE);
	h.use_sampler(model_s3000, 0);
	akai_s1000_init_progblock(block, &length, program.get());
	EXPECT_EQ(length, 192);
	EXPECT_EQ(block[191], 0);
	EXPECT_EQ(block[192], 0xEE);
}

} // namespace
} // namespace velmor
