// test_s1000_codec.cpp - nibbles, numbers, names, tuning, and the parameter tables
//
// Bytes are worked out by hand from the description of the protocol. Properties walk
// the real tables, so that a new row is tested by being there.

#include "src/akais1000.h"
#include "tests/support/test_host.h"
#include <cstring>
#include <set>

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
		EXPECT_EQ(as_akai_tuning.get(bytes), it.read_back) << it.cents;
	}
	EXPECT_EQ(as_akai_tuning.get(hex("00 80").data()), -12800);
	EXPECT_EQ(as_akai_tuning.get(hex("FF 7F").data()), 12799);
}

TEST_F(codec, a_record_saved_twice_sinks_twice)
{
	_keyzone zone = {};
	zone.tunning = -50;
	u8 block[192] = {};
	record_to_block(
		akai_s1000_keyzone_parameters, taken_by_s1000, zone, std::span<u8>(block), 2);
	EXPECT_EQ(zone.tunning, -150);
	EXPECT_EQ(block[96], 0x80);
	EXPECT_EQ(block[97], 0xFF);
	record_to_block(
		akai_s1000_keyzone_parameters, taken_by_s1000, zone, std::span<u8>(block), 2);
	EXPECT_EQ(zone.tunning, -250);
	EXPECT_EQ(block[97], 0xFE);
}

// ---- Conversions ---------------------------------------------------------------------------

TEST_F(codec, conversions_are_as_the_machines_count)
{
	struct {
		const conversion *as;
		const char *bytes;
		i32 value;
	} rows[] = {
		{ &as_byte, "A5", 165 },
		{ &as_signed_byte, "FE", -2 },
		{ &as_signed_byte, "7F", 127 },
		{ &as_signed_byte, "80", -128 },
		{ &as_byte_from_one, "00", 1 },
		{ &as_byte_from_one, "0F", 16 },
		{ &as_byte_from_one_or_none, "FF", 0 },
		{ &as_byte_from_one_or_none, "07", 8 },
		{ &as_not, "00", 1 },
		{ &as_not, "01", 0 },
		{ &as_word, "34 12", 0x1234 },
	};
	for (const auto &it : rows) {
		u8 bytes[4] = {};
		EXPECT_EQ(it.as->get(hex(it.bytes).data()), it.value) << it.as->name;
		EXPECT_EQ(it.as->put(bytes, it.value), it.value) << it.as->name;
		EXPECT_EQ(std::vector<u8>(bytes, bytes + it.as->width), hex(it.bytes))
			<< it.as->name;
	}
	EXPECT_EQ(as_not.get(hex("05").data()), 0) << "any other byte than 0";
}

TEST_F(codec, conversions_go_both_ways_over_all_bytes)
{
	for (const conversion *as :
		{ &as_byte, &as_signed_byte, &as_byte_from_one, &as_byte_from_one_or_none })
		for (int byte = 0; byte < 256; byte++) {
			const u8 in[1] = { static_cast<u8>(byte) };
			u8 out[2] = { 0, 0xEE };
			as->put(out, as->get(in));
			EXPECT_EQ(out[0], byte) << as->name;
			EXPECT_EQ(out[1], 0xEE) << as->name;
		}
	for (int word = 0; word < 65536; word++) {
		u8 out[3] = { 0, 0, 0xEE };
		as_word.put(out, word);
		EXPECT_EQ(as_word.get(out), word);
		EXPECT_EQ(out[2], 0xEE);
	}
}

// ---- Tables --------------------------------------------------------------------------------

template <typename record> std::vector<u8> some_block(std::size_t size, unsigned seed)
{
	std::vector<u8> block(size);
	for (std::size_t i = 0; i < size; i++)
		block[i] = static_cast<u8>(i * 37 + seed);
	return block;
}

// Bytes that a row changes by reading and writing although nothing was edited.
template <typename record>
std::set<int> lossy_bytes(std::span<const parameter<record>> table, int nth)
{
	std::set<int> bytes;
	for (const auto &row : table)
		for (int i = 0; i < row.as->width; i++)
			if (row.as == &as_akai_tuning || row.as == &as_not)
				bytes.insert(row.offset + nth * row.step + i);
	return bytes;
}

// But for tuning and a flag that is not 0 or 1, whatever the sampler holds goes back as it came.
template <typename record>
void expect_read_then_write_is_identity(std::span<const parameter<record>> table, int elements)
{
	for (unsigned seed : { 0u, 5u, 91u, 200u }) {
		const std::vector<u8> before = some_block<record>(192, seed);
		for (int nth = 0; nth < elements; nth++) {
			auto r = std::make_unique<record>();
			std::vector<u8> block = before;
			block_to_record(table, { block }, *r, nth);
			record_to_block(table, taken_by_all, *r, std::span<u8>(block), nth);
			const std::set<int> lossy = lossy_bytes(table, nth);
			for (int i = 0; i < 192; i++)
				if (!lossy.contains(i)) {
					EXPECT_EQ(block[i], before[i]) << "byte " << i;
				}
		}
	}
}

TEST_F(codec, reading_then_writing_changes_nothing)
{
	expect_read_then_write_is_identity(akai_s1000_program_parameters, 1);
	expect_read_then_write_is_identity(akai_s1000_keygroup_parameters, 1);
	expect_read_then_write_is_identity(akai_s1000_keyzone_parameters, akai_zones);
}

// Each row alone: another value lands in the row's own bytes and nowhere else, on the models
// that take it; on the others no byte moves.
template <typename record>
void expect_each_row_writes_its_bytes(std::span<const parameter<record>> table, unsigned takers)
{
	for (const auto &row : table) {
		auto r = std::make_unique<record>();
		set_number(*r, row.field, 77);
		std::vector<u8> block(192, 0xEE);
		record_to_block(std::span(&row, 1), takers, *r, std::span<u8>(block));
		for (int i = 0; i < 192; i++) {
			const bool own = i >= row.offset && i < row.offset + row.as->width;
			EXPECT_EQ(block[i] != 0xEE, own && (row.taken_by & takers))
				<< "row " << row.offset << " byte " << i;
		}
		auto back = std::make_unique<record>();
		block_to_record(std::span(&row, 1), { block }, *back);
		if (!(row.taken_by & takers))
			continue;
		const i32 expected = row.as == &as_not ? 1 : row.as == &as_akai_tuning ? 76 : 77;
		EXPECT_EQ(number_of(*back, row.field), expected) << "row " << row.offset;
	}
}

TEST_F(codec, each_row_writes_its_own_bytes_where_they_are_taken)
{
	for (unsigned takers : { unsigned{ taken_by_s1000 }, unsigned{ taken_by_s2000 } }) {
		expect_each_row_writes_its_bytes(akai_s1000_program_parameters, takers);
		expect_each_row_writes_its_bytes(akai_s1000_keygroup_parameters, takers);
		expect_each_row_writes_its_bytes(akai_s1000_keyzone_parameters, takers);
	}
}

TEST_F(codec, an_s1000_keeps_what_only_later_models_take)
{
	EXPECT_EQ(akai_s1000_takers(model_s1000), taken_by_s1000);
	EXPECT_EQ(akai_s1000_takers(model_mpc4000), taken_by_s1000);
	EXPECT_EQ(akai_s1000_takers(model_s2000), taken_by_s2000);
	EXPECT_EQ(akai_s1000_takers(model_s3000), taken_by_s2000);

	// Values that differ from the block's in every field.
	auto program = std::make_unique<_program>();
	std::vector<u8> block(192, 0x42), later(192, 0x42);
	record_to_block(akai_s1000_program_parameters, akai_s1000_takers(model_s1000), *program,
		std::span<u8>(block));
	record_to_block(akai_s1000_program_parameters, akai_s1000_takers(model_s2000), *program,
		std::span<u8>(later));
	for (int i = 72; i < 192; i++)
		EXPECT_EQ(block[i], 0x42) << i;
	EXPECT_EQ(block[42], 0x42) << "the count of keygroups only goes with a new program";
	EXPECT_EQ(later[42], 0x42);
	EXPECT_EQ(later[72], 0);
	EXPECT_EQ(later[102], 1);
	EXPECT_EQ(later[112], 0);
	record_to_block(
		akai_s1000_program_parameters, taken_at_creation, *program, std::span<u8>(block));
	EXPECT_EQ(block[42], 0);

	auto keygroup = std::make_unique<_keygroup>();
	std::vector<u8> old_block(192, 0x42), new_block(192, 0x42);
	keygroup->ahold = 3;
	keygroup->kbeat = 4;
	keygroup->s1000_env1_attack_hold = 1;
	record_to_block(akai_s1000_keygroup_parameters, taken_by_s1000, *keygroup,
		std::span<u8>(old_block));
	record_to_block(akai_s1000_keygroup_parameters, taken_by_s2000, *keygroup,
		std::span<u8>(new_block));
	EXPECT_EQ(old_block[131], 0x42);
	EXPECT_EQ(new_block[131], 1) << "from the attack hold of envelope 1";
	EXPECT_EQ(new_block[130], 0x42) << "never";
	EXPECT_EQ(old_block[148], 0);
	for (int i = 149; i < 192; i++)
		EXPECT_EQ(old_block[i], 0x42) << i;
	EXPECT_EQ(new_block[149], 0);
	EXPECT_EQ(new_block[160], 0xFF) << "no mute group";
}

TEST_F(codec, a_short_block_is_not_written_past_its_end)
{
	auto program = std::make_unique<_program>();
	std::vector<u8> block(66, 0x42); // ends between the two bytes of the tuning
	record_to_block(
		akai_s1000_program_parameters, taken_by_all, *program, std::span<u8>(block));
	EXPECT_EQ(block[61], 0);
	EXPECT_EQ(block[65], 0x42);
}

// ---- Where each field lies -------------------------------------------------------------------

// Byte i is 5i + 131, cut to a byte, so that no two bytes of a block are alike. What each field
// reads from that was worked out apart from the tables.
std::vector<u8> telling_block()
{
	std::vector<u8> block(192);
	for (std::size_t i = 0; i < block.size(); i++)
		block[i] = static_cast<u8>(5 * i + 131);
	return block;
}

template <typename record> struct expected_field {
	number_field<record> field;
	i32 value;
};

template <typename record>
void expect_fields(const record &r, std::span<const expected_field<record>> fields)
{
	for (std::size_t i = 0; i < fields.size(); i++)
		EXPECT_EQ(number_of(r, fields[i].field), fields[i].value) << "row " << i;
}

TEST_F(codec, every_field_of_a_program_reads_from_its_place)
{
	// clang-format off
	static constexpr expected_field<_program> fields[] = {
		{ &_program::midi_pgm_number, 207 },
		{ &_program::midi_channel, 212 },
		{ &_program::polyphony, 217 },
		{ &_program::s1000_priority, 221 },
		{ &_program::play_range_low, 226 },
		{ &_program::play_range_high, 231 },
		{ &_program::s1000_output, 242 },
		{ &_program::s1000_level, 246 },
		{ &_program::s1000_balance, 251 },
		{ &_program::s1000_basic_loudness, 0 },
		{ &_program::s1000_velocity_loudness, 5 },
		{ &_program::s1000_key_loudness, 10 },
		{ &_program::s1000_aftertouch_loudness, 15 },
		{ &_program::s1000_lfo2_speed, 20 },
		{ &_program::s1000_lfo2_depth, 25 },
		{ &_program::s1000_lfo2_delay, 30 },
		{ &_program::s1000_key_panning, 35 },
		{ &_program::s1000_lfo1_speed, 40 },
		{ &_program::s1000_lfo1_depth, 45 },
		{ &_program::s1000_lfo1_delay, 50 },
		{ &_program::s1000_lfo1_modwheel, 55 },
		{ &_program::s1000_lfo1_pressure, 60 },
		{ &_program::s1000_bendwheel_pitch_up, 70 },
		{ &_program::s1000_aftertouch_bend, 75 },
		{ &_program::crossfade_enable, 80 },
		{ &_program::keygroups, 85 },
		{ &_program::s1000_effect_out, 155 },
		{ &_program::s1000_mod_panning, -96 },
		{ &_program::s1000_lfo1_sync, 170 },
		{ &_program::s1000_reasignement, 180 },
		{ &_program::s1000_tunning_offset, -5022 },
		{ &_program::s2000_mono_legato, 235 },
		{ &_program::s2000_bendwheel_pitch_down, 240 },
		{ &_program::s2000_aftertouch_bend_mode, 245 },
		{ &_program::s2000_transpose_offset, -6 },
		{ &_program::s2000_pan_mod1_source, 255 },
		{ &_program::s2000_pan_mod2_source, 4 },
		{ &_program::s2000_pan_mod3_source, 9 },
		{ &_program::s2000_out_mod1_source, 14 },
		{ &_program::s2000_out_mod2_source, 19 },
		{ &_program::s2000_lfo1_rate_source, 24 },
		{ &_program::s2000_lfo1_depth_source, 29 },
		{ &_program::s2000_lfo1_delay_source, 34 },
		{ &_program::s2000_flt_mod1_source, 39 },
		{ &_program::s2000_flt_mod2_source, 44 },
		{ &_program::s2000_flt_mod3_source, 49 },
		{ &_program::s2000_amp_mod3_source, 59 },
		{ &_program::s2000_pan_mod1_level, 64 },
		{ &_program::s2000_pan_mod2_level, 69 },
		{ &_program::s2000_pan_mod3_level, 74 },
		{ &_program::s2000_out_mod1_level, 79 },
		{ &_program::s2000_out_mod2_level, 84 },
		{ &_program::s2000_lfo1_rate_level, 89 },
		{ &_program::s2000_lfo1_depth_level, 94 },
		{ &_program::s2000_lfo1_delay_level, 99 },
		{ &_program::s2000_lfo1_waveform, 104 },
		{ &_program::s2000_lfo2_waveform, 109 },
		{ &_program::s2000_lfo2_retrigger, 0 },
		{ &_program::s2000_portamento_rate, 169 },
		{ &_program::s2000_portamento_mode, 174 },
		{ &_program::s2000_portamento, 179 },
	};
	// clang-format on
	auto program = std::make_unique<_program>();
	akai_s1000_program_from_block({ telling_block() }, program.get());
	expect_fields<_program>(*program, fields);
	EXPECT_EQ(std::size(fields), akai_s1000_program_parameters.size());
}

TEST_F(codec, every_field_of_a_keygroup_reads_from_its_place)
{
	// clang-format off
	static constexpr expected_field<_keygroup> fields[] = {
		{ &_keygroup::low_note, 146 },
		{ &_keygroup::high_note, 151 },
		{ &_keygroup::s1000_tune_offset, -9440 },
		{ &_keygroup::s1000_basic_filter_frequency, 166 },
		{ &_keygroup::s1000_filter_keyboard, -85 },
		{ &_keygroup::s1000_filter_velocity_freq, -80 },
		{ &_keygroup::s1000_filter_pressure_freq, -75 },
		{ &_keygroup::s1000_filter_env2_freq, -70 },
		{ &_keygroup::amp_attack, 191 },
		{ &_keygroup::amp_decay, 196 },
		{ &_keygroup::amp_sustain, 201 },
		{ &_keygroup::amp_release, 206 },
		{ &_keygroup::s1000_env1_velocity_attack, -45 },
		{ &_keygroup::s1000_env1_velocity_release, -40 },
		{ &_keygroup::s1000_env1_off_velocity_release, -35 },
		{ &_keygroup::s1000_env1_key_scaling, -30 },
		{ &_keygroup::s1000_env2_r1, -25 },
		{ &_keygroup::s1000_env2_r3, -20 },
		{ &_keygroup::s1000_env2_l3, -15 },
		{ &_keygroup::s1000_env2_r4, -10 },
		{ &_keygroup::s1000_env2_velocity_r1, -5 },
		{ &_keygroup::s1000_env2_velocity_r4, 0 },
		{ &_keygroup::s1000_env2_off_velocity_r4, 5 },
		{ &_keygroup::s1000_env2_key_r2_r4, 10 },
		{ &_keygroup::s1000_env2_velocity_envelope, 15 },
		{ &_keygroup::s1000_filter_env2_pitch, 20 },
		{ &_keygroup::crossfade, 25 },
		{ &_keygroup::kbeat, 13 },
		{ &_keygroup::ahold, 18 },
		{ &_keygroup::s1000_env1_attack_hold, 18 },
		{ &_keygroup::s1000_filter_loudness_offset, 103 },
		{ &_keygroup::s2000_filter_resonance, 108 },
		{ &_keygroup::s2000_flt_mod1_level, 118 },
		{ &_keygroup::s2000_flt_mod2_level, 123 },
		{ &_keygroup::s2000_flt_mod3_level, -128 },
		{ &_keygroup::s2000_amp_mod3_level, -118 },
		{ &_keygroup::s2000_env2_l1, -113 },
		{ &_keygroup::s2000_env2_r2, -108 },
		{ &_keygroup::s2000_env2_l2, -103 },
		{ &_keygroup::s2000_env2_l4, -98 },
		{ &_keygroup::mute_group, 164 },
	};
	// clang-format on
	auto keygroup = std::make_unique<_keygroup>();
	akai_s1000_keygroup_from_block({ telling_block() }, keygroup.get());
	expect_fields<_keygroup>(*keygroup, fields);
	EXPECT_EQ(std::size(fields), akai_s1000_keygroup_parameters.size());
}

// ---- Blocks --------------------------------------------------------------------------------

TEST_F(codec, a_keygroup_block_fills_its_four_zones)
{
	std::vector<u8> block(192, 0);
	block[0] = block_is_keygroup;
	auto put = [&](int at, std::string_view bytes) {
		const std::vector<u8> run = hex(bytes);
		std::copy(run.begin(), run.end(), block.begin() + at);
	};
	put(3, "18 7F 80 FF 63 FE"); // low, high, -50 cents, filter, key track -2
	put(131, "01");
	put(160, "FF");
	put(34 + 24 * 3, "1D 18 0B 1C 0F 0A 0A 0A 0A 0A 0A 0A 01 7F 00 0C 32 07 FE 04"); // SNARE
	put(132 + 3, "01");
	put(136 + 3, "06");
	put(140 + 2 * 3, "34 12");
	auto keygroup = std::make_unique<_keygroup>();
	copy_text(keygroup->keyzone[0].samplename, "old");
	keygroup->keyzone[0].solo = 1;
	copy_text(keygroup->keyzone[4].samplename, "untouched");
	akai_s1000_keygroup_from_block({ block }, keygroup.get());
	EXPECT_EQ(keygroup->keyzones, 4);
	EXPECT_EQ(keygroup->low_note, 24);
	EXPECT_EQ(keygroup->high_note, 127);
	EXPECT_EQ(keygroup->s1000_tune_offset, -50);
	EXPECT_EQ(keygroup->s1000_basic_filter_frequency, 99);
	EXPECT_EQ(keygroup->s1000_filter_keyboard, -2);
	EXPECT_EQ(keygroup->ahold, 1);
	EXPECT_EQ(keygroup->s1000_env1_attack_hold, 1);
	EXPECT_EQ(keygroup->mute_group, 0);
	EXPECT_STREQ(keygroup->keyzone[0].samplename, "000000000000");
	EXPECT_EQ(keygroup->keyzone[0].solo, 0) << "cleared first";
	EXPECT_STREQ(keygroup->keyzone[4].samplename, "untouched");
	const _keyzone &zone = keygroup->keyzone[3];
	EXPECT_STREQ(zone.samplename, "SNARE");
	EXPECT_EQ(zone.low_velocity, 1);
	EXPECT_EQ(zone.high_velocity, 127);
	EXPECT_EQ(zone.tunning, 1200);
	EXPECT_EQ(zone.level, 50);
	EXPECT_EQ(zone.filter, 7);
	EXPECT_EQ(zone.zone_panning, 0xFE);
	EXPECT_EQ(zone.zone_playback, 4);
	EXPECT_EQ(zone.zone_keyboard_track, 1);
	EXPECT_EQ(zone.s1000_vzout, 6);
	EXPECT_EQ(zone.velocity_start, 0x1234);
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
