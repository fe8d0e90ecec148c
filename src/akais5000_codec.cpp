// akais5000_codec.cpp - values of the USB samplers on the wire, and the tables of a keygroup
//
//   block request    3A hh ll kg  group*n     hh ll: the program's index, 7 bits a byte
//   group, reading   item sub 00 00
//   group, writing   item value 00 00 | item sign magnitude 00 | item sub sign magnitude
//   block answer     values from offset 9 on, in the order of the groups
//
// Knows nothing of: transports, the order of an operation's requests.

#include "src/akais5000.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace velmor
{

// ---- Forms ---------------------------------------------------------------------------------

static u8 seven_bits(i32 value, int shift)
{
	return static_cast<u8>((value >> shift) & 0x7F);
}

static i32 get_plain(bounded_bytes b)
{
	return b[0];
}

static int put_plain(u8 *b, i32 value)
{
	b[0] = static_cast<u8>(value);
	return 1;
}

static i32 get_word14(bounded_bytes b)
{
	return b[0] * 128 + b[1];
}

static int put_word14(u8 *b, i32 value)
{
	b[0] = seven_bits(value, 7);
	b[1] = seven_bits(value, 0);
	return 2;
}

static i32 get_word28(bounded_bytes b)
{
	return ((b[0] * 128 + b[1]) * 128 + b[2]) * 128 + b[3];
}

static int put_word28(u8 *b, i32 value)
{
	for (int i = 0; i < 4; i++)
		b[i] = seven_bits(value, 21 - 7 * i);
	return 4;
}

static i32 get_signed(bounded_bytes b)
{
	return b[0] ? -b[1] : b[1];
}

static i32 get_signed_one(bounded_bytes b)
{
	return b[0] == 1 ? -b[1] : b[1];
}

static int put_signed(u8 *b, i32 value)
{
	b[0] = value < 0;
	b[1] = static_cast<u8>(std::abs(value));
	return 2;
}

static i32 get_panning(bounded_bytes b)
{
	return b[0] - 64;
}

static int put_panning(u8 *b, i32 value)
{
	b[0] = static_cast<u8>(value + 64);
	return 1;
}

// Reading shifts by what writing puts in as the low bits: 0 1 0 is 128, 0 1 1 is 256, and
// 0 0 5 is 0. It stays so; it is not the inverse of put_velocity_start.
static i32 get_velocity_start(bounded_bytes b)
{
	const u32 value = static_cast<u32>(b[1]) << ((b[2] + 7) % 32);
	return static_cast<i32>(b[0] ? 0 - value : value);
}

static int put_velocity_start(u8 *b, i32 value)
{
	b[0] = value < 0;
	put_word14(b + 1, std::abs(value));
	return 3;
}

static i32 get_z4_word28(bounded_bytes b)
{
	return b[0] + b[1] * 128 + b[2] * 16384 + b[3] * 2097152;
}

static int put_z4_word28(u8 *b, i32 value)
{
	for (int i = 0; i < 4; i++)
		b[i] = seven_bits(value, 7 * i);
	return 4;
}

static i32 get_z4_rate(bounded_bytes b)
{
	return b[0] + b[1] * 128 + b[2] * 16384;
}

static i32 get_z4_signed14(bounded_bytes b)
{
	const i32 value = b[1] + b[2] * 128;
	return b[0] ? -value : value;
}

static int put_z4_signed14(u8 *b, i32 value)
{
	b[0] = value < 0;
	b[1] = seven_bits(std::abs(value), 0);
	b[2] = seven_bits(std::abs(value), 7);
	return 3;
}

// clang-format off
const value_form as_plain          = { "byte",                       1, get_plain,          put_plain };
const value_form as_word14         = { "14 bits, high first",        2, get_word14,         put_word14 };
const value_form as_word28         = { "28 bits, high first",        4, get_word28,         put_word28 };
const value_form as_signed         = { "sign, magnitude",            2, get_signed,         put_signed };
const value_form as_signed_one     = { "sign of one, magnitude",     2, get_signed_one,     put_signed };
const value_form as_panning        = { "value plus 64",              1, get_panning,        put_panning };
const value_form as_velocity_start = { "velocity start",             3, get_velocity_start, put_velocity_start };
const value_form as_z4_word28      = { "28 bits, low first",         4, get_z4_word28,      put_z4_word28 };
const value_form as_z4_rate        = { "21 bits, low first",         3, get_z4_rate,        nullptr };
const value_form as_z4_signed14    = { "sign, 14 bits, low first",   3, get_z4_signed14,    put_z4_signed14 };

// ---- A keygroup in three blocks --------------------------------------------------------------

const std::array<block_row, 12> keygroup_block_1 = { {
	// read  write sub offset form        field
	{ 0x0A, 0x04, 0,  9, &as_plain,  &_keygroup::low_note },
	{ 0x0B, 0x05, 0, 10, &as_plain,  &_keygroup::high_note },
	{ 0x0C, 0x06, 0, 11, &as_plain,  &_keygroup::mute_group },
	{ 0x0D, 0x07, 0, 12, &as_plain,  &_keygroup::fx_override },
	{ 0x0E, 0x08, 0, 13, &as_plain,  &_keygroup::fx_sendlevel },
	{ 0x0F, 0x09, 0, 14, &as_plain,  &_keygroup::crossfade },
	// A block to be written has item 12 in front of 10 and 11.
	{ 0x18, 0x10, 0, 15, &as_signed, &_keygroup::s5000_semitone_tune },
	{ 0x19, 0x11, 0, 17, &as_signed, &_keygroup::s5000_fine_tune },
	{ 0x1A, 0x12, 0, 19, &as_plain,  &_keygroup::s5000_keygroup_level },
	{ 0x1B, 0x13, 1, 20, &as_signed, &_keygroup::s5000_pitch_mod1_val },
	{ 0x1B, 0x13, 2, 22, &as_signed, &_keygroup::s5000_pitch_mod2_val },
	{ 0x1C, 0x14, 1, 24, &as_signed, &_keygroup::s5000_amp_mod1_val },
} };

const std::array<block_row, 8> keygroup_block_2 = { {
	{ 0x28, 0x20, 0,  9, &as_plain,  &_keygroup::s5000_filter_mode },
	{ 0x29, 0x21, 0, 10, &as_plain,  &_keygroup::s5000_filter_cutoff },
	{ 0x2A, 0x22, 0, 11, &as_plain,  &_keygroup::s5000_filter_resonance },
	{ 0x2B, 0x23, 0, 12, &as_signed, &_keygroup::s5000_filter_keyboard_track },
	{ 0x2C, 0x24, 1, 14, &as_signed, &_keygroup::s5000_filter_mod1_input },
	{ 0x2C, 0x24, 2, 16, &as_signed, &_keygroup::s5000_filter_mod2_input },
	{ 0x2C, 0x24, 3, 18, &as_signed, &_keygroup::s5000_filter_mod3_input },
	{ 0x2D, 0x25, 0, 20, &as_plain,  &_keygroup::s5000_filter_attenuation },
} };

// Here a sign byte means negative only when it is one.
const std::array<block_row, 9> keygroup_block_3 = { {
	{ 0x40, 0x30, 0,  9, &as_plain,      &_keygroup::filter_attack },
	{ 0x41, 0x31, 0, 10, &as_signed_one, &_keygroup::s1000_env1_velocity_attack },
	{ 0x42, 0x32, 0, 12, &as_plain,      &_keygroup::filter_decay },
	{ 0x43, 0x33, 0, 13, &as_plain,      &_keygroup::filter_sustain },
	{ 0x44, 0x34, 0, 14, &as_plain,      &_keygroup::filter_release },
	{ 0x45, 0x35, 0, 15, &as_signed_one, &_keygroup::s5000_env1_on_velocity_release },
	{ 0x46, 0x36, 0, 17, &as_signed_one, &_keygroup::s1000_env1_key_scaling },
	{ 0x47, 0x37, 0, 19, &as_signed_one, &_keygroup::s5000_env1_depth },
	{ 0x48, 0x38, 0, 21, &as_signed_one, &_keygroup::s1000_env1_off_velocity_release },
} };

// ---- Values that travel alone ------------------------------------------------------------------

const std::array<keygroup_row, 12> keygroup_values = { {
	// read  write sub form       field
	{ 0x58, 0x50, 0, &as_plain, &_keygroup::amp_attack },
	{ 0x5A, 0x52, 0, &as_plain, &_keygroup::amp_decay },
	{ 0x5B, 0x53, 0, &as_plain, &_keygroup::amp_sustain },
	{ 0x5C, 0x54, 0, &as_plain, &_keygroup::amp_release },
	{ 0x68, 0x60, 1, &as_plain, &_keygroup::aux_rate1 },
	{ 0x68, 0x60, 2, &as_plain, &_keygroup::aux_rate2 },
	{ 0x68, 0x60, 3, &as_plain, &_keygroup::aux_rate3 },
	{ 0x68, 0x60, 4, &as_plain, &_keygroup::aux_rate4 },
	{ 0x6B, 0x63, 1, &as_plain, &_keygroup::aux_rate1_level },
	{ 0x6B, 0x63, 2, &as_plain, &_keygroup::aux_rate2_level },
	{ 0x6B, 0x63, 3, &as_plain, &_keygroup::aux_rate3_level },
	{ 0x6B, 0x63, 4, &as_plain, &_keygroup::aux_rate4_level },
} };

const std::array<zone_row, 2> zone_velocities = { {
	// read  write form                field
	{ 0x2B, 0x0B, &as_plain,          &_keyzone::high_velocity },
	{ 0x2C, 0x0C, &as_plain,          &_keyzone::low_velocity },
} };

const std::array<zone_row, 11> zone_values = { {
	{ 0x22, 0x02, &as_signed,         &_keyzone::zone_level },
	{ 0x23, 0x03, &as_panning,        &_keyzone::zone_panning },
	{ 0x24, 0x04, &as_plain,          &_keyzone::zone_output },
	{ 0x25, 0x05, &as_signed,         &_keyzone::zone_filter },
	{ 0x26, 0x06, &as_signed,         &_keyzone::fine_tune },
	{ 0x27, 0x07, &as_signed,         &_keyzone::semitone_tune },
	{ 0x28, 0x08, &as_plain,          &_keyzone::zone_keyboard_track },
	{ 0x29, 0x09, &as_plain,          &_keyzone::zone_playback },
	{ 0x2A, 0x0A, &as_velocity_start, &_keyzone::velocity_start },
	{ 0x2D, 0x0D, &as_plain,          &_keyzone::zone_mute },
	{ 0x2E, 0x0E, &as_plain,          &_keyzone::zone_solo },
} };
// clang-format on

std::vector<u8> block_read_request(
	std::span<const block_row> block, u8 index_high, u8 index_low, u8 keygroup)
{
	std::vector<u8> request = { section_block, index_high, index_low, keygroup };
	for (const block_row &row : block)
		request.insert(request.end(), { row.read_item, row.sub, 0, 0 });
	return request;
}

void block_to_keygroup(std::span<const block_row> block, bounded_bytes answer, _keygroup *kg)
{
	for (const block_row &row : block)
		row.field.set(kg, row.form->get(answer.from(static_cast<std::size_t>(row.offset))));
}

} // namespace velmor
