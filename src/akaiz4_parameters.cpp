// akaiz4_parameters.cpp - what a Z4/Z8 or MPC 4000 tells of a program, a keygroup and a zone
//
//   asking    section item [zone]            the answer has the value at offset 8
//   setting   section item [zone] value      in a section of its own
//
// Knows nothing of: transports, the order of an operation's requests.

#include "src/akaiz4.h"

namespace velmor
{

static u8 seven_bits(u32 value, int shift)
{
	return static_cast<u8>((value >> shift) & 0x7F);
}

static i32 get_z4_word28(bounded_bytes b)
{
	return b[0] + b[1] * 128 + b[2] * 16384 + b[3] * 2097152;
}

static i32 put_z4_word28(u8 *b, i32 value)
{
	for (int i = 0; i < 4; i++)
		b[i] = seven_bits(static_cast<u32>(value), 7 * i);
	return value;
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

static i32 put_z4_signed14(u8 *b, i32 value)
{
	const u32 bits = static_cast<u32>(value), magnitude = value < 0 ? 0 - bits : bits;
	b[0] = value < 0;
	b[1] = seven_bits(magnitude, 0);
	b[2] = seven_bits(magnitude, 7);
	return value;
}

// clang-format off
constexpr conversion as_z4_word28   = { "28 bits, low first",       4, get_z4_word28,   put_z4_word28 };
constexpr conversion as_z4_rate     = { "21 bits, low first",       3, get_z4_rate,     nullptr };
constexpr conversion as_z4_signed14 = { "sign, 14 bits, low first", 3, get_z4_signed14, put_z4_signed14 };

static constexpr parameter<_program> program[] = {
	// answer field                                   conversion                   read        write
	{ { 8 }, field_of<&_program::polyphony>,           &as_byte,        taken_back, { 0x17, 0x10, 0x16, 0x10 } },
	{ { 8 }, field_of<&_program::s1000_reasignement>,  &as_byte,        taken_back, { 0x17, 0x11, 0x16, 0x11 } },
};
static constexpr parameter<_keygroup> keygroup[] = {
	{ { 8 }, field_of<&_keygroup::low_note>,           &as_byte,        taken_back, { 0x13, 0x04, 0x12, 0x04 } },
	{ { 8 }, field_of<&_keygroup::high_note>,          &as_byte,        taken_back, { 0x13, 0x05, 0x12, 0x05 } },
};
static constexpr parameter<_keyzone> zone[] = {
	{ { 8 }, field_of<&_keyzone::samplename>,          &as_text,        taken_back, { 0x0F, 0x01, 0x0E, 0x01 } },
	{ { 8 }, field_of<&_keyzone::zone_level>,          &as_z4_signed14, taken_back, { 0x0F, 0x02, 0x0E, 0x02 } },
};
// clang-format on

static_assert(requests_are_sound<_program>(program) && requests_are_sound<_keygroup>(keygroup));
static_assert(requests_are_sound<_keyzone>(zone));

const parameters<_program> akai_z4_program_values = program;
const parameters<_keygroup> akai_z4_keygroup_values = keygroup;
const parameters<_keyzone> akai_z4_zone_values = zone;

} // namespace velmor
