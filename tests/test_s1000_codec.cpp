// test_s1000_codec.cpp - nibbles, numbers, names, tuning, and the parameter tables
//
// Bytes are worked out by hand from the description of the protocol. The parameter tables
// are compared with a second telling of the format, row by row.

#include "src/akais1000.h"
#include "tests/support/test_host.h"
#include "tests/support/told.h"
#include <map>
#include <sstream>

namespace velmor
{
namespace
{

using codec = host_test;

// What put leaves in a buffer of EE, which shows where it ends.
template <typename action> std::string left_by(std::size_t size, action put)
{
	std::vector<u8> out(size, 0xEE);
	put(out.data());
	return hex_text(out);
}

// ---- Nibbles -----------------------------------------------------------------------------

TEST_F(codec, nibbles_travel_low_half_first)
{
	int length = 0;
	const auto coded = [&](u8 *p) {
		create_akai_nibblebuf(hex("A5 3C").data(), 2, p, &length);
	};
	EXPECT_EQ(left_by(6, coded), "05 0A 0C 03 F7 EE");
	EXPECT_EQ(length, 5);
	const auto raw = [](u8 *p) { create_akai_nibblebuf_raw(hex("F7").data(), p, 1); };
	EXPECT_EQ(left_by(3, raw), "07 0F EE");
	create_akai_nibblebuf_raw(nullptr, nullptr, 0);
	create_akai_nibblebuf_raw(nullptr, nullptr, -1);
}

TEST_F(codec, decoding_ends_at_an_end_byte_in_the_low_place_only)
{
	const std::pair<const char *, const char *> rows[] = {
		{ "05 0A 0C 03 F7 01 01", "A5 3C" }, { "F7", "" }, { "F7 01 02", "" }, { "", "" },
		{ "05 F7 01 02 F7", "75 21" }, // the high half is neither masked nor an end
		{ "15 0A F7", "A5" },          // the low half is masked
		{ "05 0A 0C", "A5 0C" },       // what never came is zero and not read on into
	};
	for (const auto &[in, out] : rows)
		EXPECT_EQ(hex_text(akai_bytes_from_nibbles({ hex(in) })), out) << in;
	int length = -1;
	const auto into_three = [&](u8 *p) {
		create_akai_charbuf({ hex("01*100") }, std::span(p, 3), &length);
	};
	EXPECT_EQ(left_by(4, into_three), "11 11 11 EE");
	EXPECT_EQ(length, 3);
}

// ---- Numbers -----------------------------------------------------------------------------

TEST_F(codec, numbers_go_low_part_first)
{
	EXPECT_EQ(get_akai8_word({ hex("34 12") }), 0x1234u);
	EXPECT_EQ(get_akai8_dword({ hex("78 56 34 F2") }), 0xF2345678u);
	expect_logged({ "[D] ############# Decoding: [0x34,0x12] --> 4660",
		"[D] ############# Decoding: [0x78,0x56,0x34,0xF2] --> 4063516280" });
	EXPECT_EQ(get_akai8_dword({ hex("78 56") }), 0x5678u) << "what never came is zero";
	struct {
		void (*put)(u32 value, u8 *p);
		u32 value;
		const char *bytes;
	} rows[] = {
		{ set_akai8_word, 0x31234, "34 12 EE EE EE" },
		{ set_akai8_dword, 0xF2345678, "78 56 34 F2 EE" },
		{ set_akai7_word, 16383, "7F 7F EE EE EE" },
		{ set_akai7_word, 16384, "00 00 EE EE EE" }, // does not fit in two bytes
		{ set_akai7_dword, 16384 + 2 * 128 + 3, "03 02 01 00 EE" },
		// A word of a sample: 40 00 00 is the midpoint.
		{ akai_dump_word, 0, "40 00 00 EE EE" },
		{ akai_dump_word, 0x8000, "00 00 00 EE EE" },
		{ akai_dump_word, 0x7FFF, "7F 7F 03 EE EE" }, // low bits in the low bits
		{ akai_dump_word, 0x1234, "49 0D 00 EE EE" },
	};
	for (const auto &row : rows)
		EXPECT_EQ(left_by(5, [&](u8 *p) { row.put(row.value, p); }), row.bytes);
	// Unpacking is not the reverse of packing, and must not be made so.
	const std::pair<const char *, u16> unpacked[] = { { "40 00 00", 0 }, { "00 00 00", 0x8000 },
		{ "7F 7F 60", 0x7FFF }, { "40 00 20", 1 } };
	for (const auto &[bytes, word] : unpacked)
		EXPECT_EQ(akai_unpack3(hex(bytes).data()), word) << bytes;
}

// ---- Names -------------------------------------------------------------------------------

TEST_F(codec, names_decode_by_the_alphabet)
{
	const std::pair<const char *, const char *> rows[] = {
		{ "1A 13 0B 18 19 0A*7", "PIANO       " },
		{ "00 09 0A 0B 24 25 26 27 28 0A*3", "09 AZ#+-.   " },
		{ "0B 0C 29 0D*9", "AB" },
		{ "0B 2A 7F FF 0C 0A*7", "A???B       " },
		{ "29 0B*11", "" },
		{ "0B 0C", "AB0000000000" },
	};
	for (const auto &[bytes, text] : rows)
		EXPECT_EQ(akai_name({ hex(bytes) }), text) << bytes;
	const std::pair<const char *, const char *> trimmed[] = { { "0A 0B 0A 0B 0A*8", " A A" },
		{ "0A*12", "" }, { "29 0A*11", "" }, { "0B*12", "AAAAAAAAAAAA" } };
	for (const auto &[bytes, text] : trimmed)
		EXPECT_EQ(akai_trimmed_name({ hex(bytes) }), text) << bytes;
}

TEST_F(codec, names_encode_with_capitals_blanks_and_full_stops)
{
	const std::pair<const char *, const char *> rows[] = {
		{ "Piano", "1A 13 0B 18 19 0A*7" },
		{ "", "0A*12" },
		{ "a:\\b", "0B 28 28 0C 0A*8" },
		{ "EXACTLYTWELV", "0F 22 0B 0D 1E 16 23 1E 21 0F 16 20" },
		{ "EXACTLYTWELVE", "0F 22 0B 0D 1E 16 23 1E 21 0F 16 20" },
		{ "#+-.\xFC", "25 26 27 28 28 0A*7" },
	};
	for (const auto &[text, bytes] : rows) {
		EXPECT_EQ(left_by(14, [&](u8 *p) { make_akai_name(text, p, 12); }),
			hex_text(hex(std::string(bytes) + " 00 EE")));
		EXPECT_EQ(left_by(13, [&](u8 *p) { put_akai_name(p, text); }),
			hex_text(hex(std::string(bytes) + " EE")));
	}
	for (u8 index = 0; index <= 40; index++) {
		char text[2];
		u8 back[2];
		from_akai_ascii({ std::span(&index, 1) }, 1, text);
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
	block[102] = inverted ? 0 : block[102]; // the flag
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

// What a row makes of the bytes of another block. Tuning does not go back as it came, which has
// its own test, and a flag that is not 0 comes back as 1; all else does.
template <typename record>
void put_due(const parameter<record> &row, const format_row &format, const u8 *bytes, u8 *due)
{
	if (format.kind == 't')
		row.as->put(due, meant(format.kind, bytes));
	else if (format.kind == 'x')
		due[0] = bytes[0] != 0;
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
	for (const auto &[model, size] :
		{ std::pair(model_s1000, 150), std::pair(model_s3000, 192) }) {
		h.use_sampler(model, 0);
		int length = 0;
		const std::string block = left_by(static_cast<std::size_t>(size) + 1,
			[&](u8 *p) { akai_s1000_init_progblock(p, &length, program.get()); });
		EXPECT_EQ(length, size);
		// Its own name and count, and no MIDI program number.
		EXPECT_EQ(block,
			hex_text(
				hex("01 0C 90 11 1C 0B 18 0E 0A*7 00 00 1F 01 18 7F 00 FF 63 00 50 "
				    "14 00 00 01 63 00 00 32 00 00 1E 00 00 02 00 00 03 01 00*18 "
				    "0A 0A 0A 00*5 32 00 00 02 00 00 08 06 0C 06 03 06 06 06 05 08 "
				    "0A 0A 05 " +
					format_text("00*%d EE", size - 89))));
	}
}

} // namespace
} // namespace velmor
