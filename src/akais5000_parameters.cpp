// akais5000_parameters.cpp - every parameter of a keygroup and a zone of the S5000/6000
//
//   block request    3A hh ll kg  group*n     hh ll: the program's index, 7 bits a byte
//   group, reading   item sub 00 00
//   group, writing   item value 00 00 | item sign magnitude 00 | item sub sign magnitude
//   block answer     values from offset 9 on, in the order of the groups
//   single value     section item [sub] [zone] [value]; its answer has the value at offset 9
//
// Knows nothing of: transports, the order of an operation's requests.

#include "src/akais5000.h"
#include <cstdlib>

namespace velmor
{

// ---- Conversions -----------------------------------------------------------------------------

static u8 seven_bits(i32 value, int shift)
{
	return static_cast<u8>((value >> shift) & 0x7F);
}

// Also of the lowest number.
static i32 magnitude(i32 value)
{
	return static_cast<i32>(value < 0 ? 0 - static_cast<u32>(value) : static_cast<u32>(value));
}

static i32 get_word14(bounded_bytes b)
{
	return b[0] * 128 + b[1];
}

static i32 put_word14(u8 *b, i32 value)
{
	b[0] = seven_bits(value, 7);
	b[1] = seven_bits(value, 0);
	return value;
}

static i32 get_word28(bounded_bytes b)
{
	return ((b[0] * 128 + b[1]) * 128 + b[2]) * 128 + b[3];
}

static i32 put_word28(u8 *b, i32 value)
{
	for (int i = 0; i < 4; i++)
		b[i] = seven_bits(value, 21 - 7 * i);
	return value;
}

static i32 get_signed(bounded_bytes b)
{
	return b[0] ? -b[1] : b[1];
}

static i32 get_signed_one(bounded_bytes b)
{
	return b[0] == 1 ? -b[1] : b[1];
}

static i32 put_signed(u8 *b, i32 value)
{
	b[0] = value < 0;
	b[1] = static_cast<u8>(magnitude(value));
	return value;
}

static i32 put_and_keep_magnitude(u8 *b, i32 value)
{
	put_signed(b, value);
	return magnitude(value);
}

static i32 put_level(u8 *b, i32 value)
{
	put_signed(b, value);
	b[1] &= 0x7F;
	return magnitude(value);
}

static i32 get_panning(bounded_bytes b)
{
	return b[0] - 64;
}

static i32 put_panning(u8 *b, i32 value)
{
	put_low_byte(b, value + 64);
	return value;
}

// Reading shifts by what writing puts in as the low bits: 0 1 0 is 128, 0 1 1 is 256, and
// 0 0 5 is 0. It stays so; it is not the inverse of put_velocity_start.
static i32 get_velocity_start(bounded_bytes b)
{
	const u32 value = static_cast<u32>(b[1]) << ((b[2] + 7) % 32);
	return static_cast<i32>(b[0] ? 0 - value : value);
}

static i32 put_velocity_start(u8 *b, i32 value)
{
	b[0] = value < 0;
	put_word14(b + 1, magnitude(value));
	return magnitude(value);
}

// clang-format off
constexpr conversion as_word14         = { "14 bits, high first",          2, get_word14,         put_word14 };
constexpr conversion as_word28         = { "28 bits, high first",          4, get_word28,         put_word28 };
constexpr conversion as_signed         = { "sign, magnitude",              2, get_signed,         put_signed };
constexpr conversion as_signed_one     = { "sign of one, magnitude",       2, get_signed_one,     put_signed };
constexpr conversion as_panning        = { "value plus 64",                1, get_panning,        put_panning };
// What is written leaves its magnitude in the record: a zone that is sent a second time, and
// was not read in between, sends it as positive.
constexpr conversion as_zone_signed    = { "sign, magnitude, which stays", 2, get_signed,         put_and_keep_magnitude };
constexpr conversion as_zone_level     = { "sign, 7 bits of magnitude",    2, get_signed,         put_level };
constexpr conversion as_velocity_start = { "velocity start",               3, get_velocity_start, put_velocity_start };

// ---- A keygroup in three blocks --------------------------------------------------------------

// A block that is written has item 12 in front of 10 and 11.
static constexpr parameter<_keygroup> block_1[] = {
	// answer   field                                               conversion                  read        write      sub  turn
	{ {  9 }, field_of<&_keygroup::low_note>,                       &as_byte,       taken_back, { 0x3A, 0x0A, 0x3A, 0x04 },     1 },
	{ { 10 }, field_of<&_keygroup::high_note>,                      &as_byte,       taken_back, { 0x3A, 0x0B, 0x3A, 0x05 },     2 },
	{ { 11 }, field_of<&_keygroup::mute_group>,                     &as_byte,       taken_back, { 0x3A, 0x0C, 0x3A, 0x06 },     3 },
	{ { 12 }, field_of<&_keygroup::fx_override>,                    &as_byte,       taken_back, { 0x3A, 0x0D, 0x3A, 0x07 },     4 },
	{ { 13 }, field_of<&_keygroup::fx_sendlevel>,                   &as_byte,       taken_back, { 0x3A, 0x0E, 0x3A, 0x08 },     5 },
	{ { 14 }, field_of<&_keygroup::crossfade>,                      &as_byte,       taken_back, { 0x3A, 0x0F, 0x3A, 0x09 },     6 },
	{ { 15 }, field_of<&_keygroup::s5000_semitone_tune>,            &as_signed,     taken_back, { 0x3A, 0x18, 0x3A, 0x10 },     8 },
	{ { 17 }, field_of<&_keygroup::s5000_fine_tune>,                &as_signed,     taken_back, { 0x3A, 0x19, 0x3A, 0x11 },     9 },
	{ { 19 }, field_of<&_keygroup::s5000_keygroup_level>,           &as_byte,       taken_back, { 0x3A, 0x1A, 0x3A, 0x12 },     7 },
	{ { 20 }, field_of<&_keygroup::s5000_pitch_mod1_val>,           &as_signed,     taken_back, { 0x3A, 0x1B, 0x3A, 0x13, 1 }, 10 },
	{ { 22 }, field_of<&_keygroup::s5000_pitch_mod2_val>,           &as_signed,     taken_back, { 0x3A, 0x1B, 0x3A, 0x13, 2 }, 11 },
	{ { 24 }, field_of<&_keygroup::s5000_amp_mod1_val>,             &as_signed,     taken_back, { 0x3A, 0x1C, 0x3A, 0x14, 1 }, 12 },
};

static constexpr parameter<_keygroup> block_2[] = {
	{ {  9 }, field_of<&_keygroup::s5000_filter_mode>,              &as_byte,       taken_back, { 0x3A, 0x28, 0x3A, 0x20 } },
	{ { 10 }, field_of<&_keygroup::s5000_filter_cutoff>,            &as_byte,       taken_back, { 0x3A, 0x29, 0x3A, 0x21 } },
	{ { 11 }, field_of<&_keygroup::s5000_filter_resonance>,         &as_byte,       taken_back, { 0x3A, 0x2A, 0x3A, 0x22 } },
	{ { 12 }, field_of<&_keygroup::s5000_filter_keyboard_track>,    &as_signed,     taken_back, { 0x3A, 0x2B, 0x3A, 0x23 } },
	{ { 14 }, field_of<&_keygroup::s5000_filter_mod1_input>,        &as_signed,     taken_back, { 0x3A, 0x2C, 0x3A, 0x24, 1 } },
	{ { 16 }, field_of<&_keygroup::s5000_filter_mod2_input>,        &as_signed,     taken_back, { 0x3A, 0x2C, 0x3A, 0x24, 2 } },
	{ { 18 }, field_of<&_keygroup::s5000_filter_mod3_input>,        &as_signed,     taken_back, { 0x3A, 0x2C, 0x3A, 0x24, 3 } },
	{ { 20 }, field_of<&_keygroup::s5000_filter_attenuation>,       &as_byte,       taken_back, { 0x3A, 0x2D, 0x3A, 0x25 } },
};

// Here a sign byte means negative only when it is one.
static constexpr parameter<_keygroup> block_3[] = {
	{ {  9 }, field_of<&_keygroup::filter_attack>,                  &as_byte,       taken_back, { 0x3A, 0x40, 0x3A, 0x30 } },
	{ { 10 }, field_of<&_keygroup::s1000_env1_velocity_attack>,     &as_signed_one, taken_back, { 0x3A, 0x41, 0x3A, 0x31 } },
	{ { 12 }, field_of<&_keygroup::filter_decay>,                   &as_byte,       taken_back, { 0x3A, 0x42, 0x3A, 0x32 } },
	{ { 13 }, field_of<&_keygroup::filter_sustain>,                 &as_byte,       taken_back, { 0x3A, 0x43, 0x3A, 0x33 } },
	{ { 14 }, field_of<&_keygroup::filter_release>,                 &as_byte,       taken_back, { 0x3A, 0x44, 0x3A, 0x34 } },
	{ { 15 }, field_of<&_keygroup::s5000_env1_on_velocity_release>, &as_signed_one, taken_back, { 0x3A, 0x45, 0x3A, 0x35 } },
	{ { 17 }, field_of<&_keygroup::s1000_env1_key_scaling>,         &as_signed_one, taken_back, { 0x3A, 0x46, 0x3A, 0x36 } },
	{ { 19 }, field_of<&_keygroup::s5000_env1_depth>,               &as_signed_one, taken_back, { 0x3A, 0x47, 0x3A, 0x37 } },
	{ { 21 }, field_of<&_keygroup::s1000_env1_off_velocity_release>, &as_signed_one, taken_back, { 0x3A, 0x48, 0x3A, 0x38 } },
};

// ---- Values that travel alone ------------------------------------------------------------------

// The notes come with block 1, and are written a second time behind the blocks.
static constexpr parameter<_keygroup> notes[] = {
	// answer field                                conversion                                        write
	{ { 9 }, field_of<&_keygroup::low_note>,        &as_byte, taken_back | never_read, { 0x08, 0x00, 0x08, 0x04 } },
	{ { 9 }, field_of<&_keygroup::high_note>,       &as_byte, taken_back | never_read, { 0x08, 0x00, 0x08, 0x05 } },
};

static constexpr parameter<_keygroup> values[] = {
	// answer field                                conversion            read        write      sub
	{ { 9 }, field_of<&_keygroup::amp_attack>,      &as_byte, taken_back, { 0x08, 0x58, 0x08, 0x50 } },
	{ { 9 }, field_of<&_keygroup::amp_decay>,       &as_byte, taken_back, { 0x08, 0x5A, 0x08, 0x52 } },
	{ { 9 }, field_of<&_keygroup::amp_sustain>,     &as_byte, taken_back, { 0x08, 0x5B, 0x08, 0x53 } },
	{ { 9 }, field_of<&_keygroup::amp_release>,     &as_byte, taken_back, { 0x08, 0x5C, 0x08, 0x54 } },
	{ { 9 }, field_of<&_keygroup::aux_rate1>,       &as_byte, taken_back, { 0x08, 0x68, 0x08, 0x60, 1 } },
	{ { 9 }, field_of<&_keygroup::aux_rate2>,       &as_byte, taken_back, { 0x08, 0x68, 0x08, 0x60, 2 } },
	{ { 9 }, field_of<&_keygroup::aux_rate3>,       &as_byte, taken_back, { 0x08, 0x68, 0x08, 0x60, 3 } },
	{ { 9 }, field_of<&_keygroup::aux_rate4>,       &as_byte, taken_back, { 0x08, 0x68, 0x08, 0x60, 4 } },
	{ { 9 }, field_of<&_keygroup::aux_rate1_level>, &as_byte, taken_back, { 0x08, 0x6B, 0x08, 0x63, 1 } },
	{ { 9 }, field_of<&_keygroup::aux_rate2_level>, &as_byte, taken_back, { 0x08, 0x6B, 0x08, 0x63, 2 } },
	{ { 9 }, field_of<&_keygroup::aux_rate3_level>, &as_byte, taken_back, { 0x08, 0x6B, 0x08, 0x63, 3 } },
	{ { 9 }, field_of<&_keygroup::aux_rate4_level>, &as_byte, taken_back, { 0x08, 0x6B, 0x08, 0x63, 4 } },
};

// Read in the order of the table; written with the velocity start in front of keyboard track
// and playback.
static constexpr parameter<_keyzone> zone[] = {
	// answer field                                   conversion                      read        write       turn
	{ { 9 }, field_of<&_keyzone::samplename>,          &as_text,           taken_back, { 0x06, 0x21, 0x06, 0x01 },  1 },
	{ { 9 }, field_of<&_keyzone::high_velocity>,       &as_byte,           taken_back, { 0x06, 0x2B, 0x06, 0x0B },  2 },
	{ { 9 }, field_of<&_keyzone::low_velocity>,        &as_byte,           taken_back, { 0x06, 0x2C, 0x06, 0x0C },  3 },
	{ { 9 }, field_of<&_keyzone::zone_level>,          &as_zone_level,     taken_back, { 0x06, 0x22, 0x06, 0x02 },  4 },
	{ { 9 }, field_of<&_keyzone::zone_panning>,        &as_panning,        taken_back, { 0x06, 0x23, 0x06, 0x03 },  5 },
	{ { 9 }, field_of<&_keyzone::zone_output>,         &as_byte,           taken_back, { 0x06, 0x24, 0x06, 0x04 },  6 },
	{ { 9 }, field_of<&_keyzone::zone_filter>,         &as_zone_signed,    taken_back, { 0x06, 0x25, 0x06, 0x05 },  7 },
	{ { 9 }, field_of<&_keyzone::fine_tune>,           &as_zone_signed,    taken_back, { 0x06, 0x26, 0x06, 0x06 },  8 },
	{ { 9 }, field_of<&_keyzone::semitone_tune>,       &as_zone_signed,    taken_back, { 0x06, 0x27, 0x06, 0x07 },  9 },
	{ { 9 }, field_of<&_keyzone::zone_keyboard_track>, &as_byte,           taken_back, { 0x06, 0x28, 0x06, 0x08 }, 11 },
	{ { 9 }, field_of<&_keyzone::zone_playback>,       &as_byte,           taken_back, { 0x06, 0x29, 0x06, 0x09 }, 12 },
	{ { 9 }, field_of<&_keyzone::velocity_start>,      &as_velocity_start, taken_back, { 0x06, 0x2A, 0x06, 0x0A }, 10 },
	{ { 9 }, field_of<&_keyzone::zone_mute>,           &as_byte,           taken_back, { 0x06, 0x2D, 0x06, 0x0D }, 13 },
	{ { 9 }, field_of<&_keyzone::zone_solo>,           &as_byte,           taken_back, { 0x06, 0x2E, 0x06, 0x0E }, 14 },
};
// clang-format on

static_assert(rows_touch<_keygroup>(block_1, s5000_answer_data));
static_assert(rows_touch<_keygroup>(block_2, s5000_answer_data));
static_assert(rows_touch<_keygroup>(block_3, s5000_answer_data));
static_assert(requests_are_sound<_keygroup>(block_1) && requests_are_sound<_keygroup>(block_2));
static_assert(requests_are_sound<_keygroup>(block_3) && requests_are_sound<_keygroup>(notes));
static_assert(requests_are_sound<_keygroup>(values) && requests_are_sound<_keyzone>(zone));
static_assert(names_are_unique<_keygroup>({ block_1, block_2, block_3, notes, values }));

const std::array<parameters<_keygroup>, 3> akai_s5000_keygroup_blocks = { block_1, block_2,
	block_3 };
const parameters<_keygroup> akai_s5000_keygroup_notes = notes;
const parameters<_keygroup> akai_s5000_keygroup_values = values;
const parameters<_keyzone> akai_s5000_zone_values = zone;

// ---- Requests of rows ------------------------------------------------------------------------

request_bytes read_request(const request_items &items, u8 zone_number)
{
	request_bytes request = { { items.read_section, items.read_item }, 2 };
	for (u8 argument : { items.sub, zone_number })
		if (argument)
			request.bytes[request.count++] = argument;
	return request;
}

template <typename record>
static std::vector<u8> write_request_of(const parameter<record> &row, record &r, u8 zone_number)
{
	std::vector<u8> request = { row.items.write_section, row.items.write_item };
	for (u8 argument : { row.items.sub, zone_number })
		if (argument)
			request.push_back(argument);
	if (const auto *text = std::get_if<typename member<record>::text>(&row.field.at.field)) {
		const char *from = r.*(*text);
		request.insert(request.end(), from, from + std::string_view(from).size() + 1);
		return request;
	}
	const std::size_t at = request.size();
	request.resize(at + static_cast<std::size_t>(row.as->width));
	record_to_value(row, r, &request[at]);
	return request;
}

std::vector<u8> write_request(const parameter<_program> &row, _program &r)
{
	return write_request_of(row, r, 0);
}

std::vector<u8> write_request(const parameter<_keygroup> &row, _keygroup &r)
{
	return write_request_of(row, r, 0);
}

std::vector<u8> write_request(const parameter<_keyzone> &row, _keyzone &r, u8 zone_number)
{
	return write_request_of(row, r, zone_number);
}

std::vector<u8> block_read_request(int block, u8 index_high, u8 index_low, u8 number)
{
	std::vector<u8> request = { section_block, index_high, index_low, number };
	for (const auto &row : akai_s5000_keygroup_blocks[static_cast<std::size_t>(block - 1)])
		request.insert(request.end(), { row.items.read_item, row.items.sub, 0, 0 });
	return request;
}

// Groups in the order of writing, each filled up with zeros, but for the last of block 3.
std::vector<u8> block_write_request(
	int block, u8 index_high, u8 index_low, u8 number, _keygroup &keygroup)
{
	std::vector<u8> request = { section_block, index_high, index_low, number };
	const auto write_group = [&](const parameter<_keygroup> &row) {
		u8 group[block_group_size + max_value_size] = { row.items.write_item };
		std::size_t at = 1;
		if (row.items.sub)
			group[at++] = row.items.sub;
		record_to_value(row, keygroup, &group[at]);
		request.insert(request.end(), group, group + block_group_size);
	};
	in_order_of_writing(
		akai_s5000_keygroup_blocks[static_cast<std::size_t>(block - 1)], write_group);
	if (block == 3)
		request.pop_back();
	return request;
}

} // namespace velmor
