// akais1000_codec.cpp - nibbles, numbers, names and tuning of the S1000 family, and asking
//
// Nothing that comes from a sampler is trusted to be long enough: decoding stops at
// the end of what was received, and bytes that never came read as zero.
//
// Knows nothing of: lists, samples, programs.

#include "src/akais1000.h"
#include <algorithm>
#include <cstring>

namespace velmor
{

// ---- Nibbles -----------------------------------------------------------------------------

void create_akai_nibblebuf_raw(const u8 *in, u8 *out, int n)
{
	for (int i = 0; i < n; i++) {
		out[2 * i] = in[i] & 0x0F;
		out[2 * i + 1] = in[i] >> 4;
	}
}

void create_akai_nibblebuf(const u8 *in, unsigned n, u8 *out, int *out_length)
{
	create_akai_nibblebuf_raw(in, out, static_cast<int>(n));
	out[2 * n] = 0xF7;
	*out_length = static_cast<int>(2 * n + 1);
}

void create_akai_charbuf(bounded_bytes in, std::span<u8> out, int *out_length)
{
	std::size_t count = 0;
	for (std::size_t at = 0; at < in.size() && in[at] != 0xF7 && count < out.size(); at += 2)
		out[count++] = static_cast<u8>((in[at] & 0x0F) + 16 * in[at + 1]);
	*out_length = static_cast<int>(count);
}

std::vector<u8> akai_bytes_from_nibbles(bounded_bytes in)
{
	std::vector<u8> out(in.size() / 2 + 1);
	int length = 0;
	create_akai_charbuf(in, out, &length);
	out.resize(static_cast<std::size_t>(length));
	return out;
}

// ---- Numbers -----------------------------------------------------------------------------

u32 get_akai8_word(bounded_bytes p)
{
	const u32 v = p[0] + 256u * p[1];
	log_line("[D] ############# Decoding: [0x%02X,0x%02X] --> %d\r\n", p[0], p[1],
		static_cast<int>(v));
	return v;
}

u32 get_akai8_dword(bounded_bytes p)
{
	const u32 v = u32{ p[0] } | u32{ p[1] } << 8 | u32{ p[2] } << 16 | u32{ p[3] } << 24;
	log_line("[D] ############# Decoding: [0x%02X,0x%02X,0x%02X,0x%02X] --> %u\r\n", p[0], p[1],
		p[2], p[3], v);
	return v;
}

static void set_bits(u32 v, u8 *p, int bytes, int bits)
{
	for (int i = 0; i < bytes; i++)
		p[i] = static_cast<u8>(v >> (bits * i) & ((1u << bits) - 1));
}

void set_akai8_word(u32 v, u8 *p)
{
	set_bits(v, p, 2, 8);
}

void set_akai8_dword(u32 v, u8 *p)
{
	set_bits(v, p, 4, 8);
}

void set_akai7_word(u32 v, u8 *p)
{
	set_bits(v, p, 2, 7);
}

void set_akai7_dword(u32 v, u8 *p)
{
	set_bits(v, p, 4, 7);
}

// ---- Words of a sample --------------------------------------------------------------------

u16 akai_unpack3(const u8 *p)
{
	return static_cast<u16>((p[0] * 512 | p[1] * 4 | p[2] >> 5) + 32768);
}

void akai_pack3(u32, u8 *) {}

void akai_dump_word(u32 word, u8 *p)
{
	const u16 v = static_cast<u16>(word - 32768);
	p[0] = static_cast<u8>(v >> 9);
	p[1] = v >> 2 & 0x7F;
	p[2] = v & 3;
}

// ---- Names -------------------------------------------------------------------------------

const char akai_ascii[42] = "0123456789 ABCDEFGHIJKLMNOPQRSTUVWXYZ#+-.";
enum {
	akai_characters = 41,
	akai_blank = 10,
	akai_full_stop = 40
};

void from_akai_ascii(bounded_bytes in, int n, char *out)
{
	out[n] = '\0';
	// Strictly above: index 41 fetches the alphabet's own terminator and so ends the text.
	for (int i = 0; i < n; i++) {
		const u8 index = in[static_cast<std::size_t>(i)];
		out[i] = index > akai_characters ? '?' : akai_ascii[index];
	}
}

static u8 akai_index_of(char c)
{
	const char upper = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
	for (u8 index = 0; index < akai_characters; index++)
		if (akai_ascii[index] == upper)
			return index;
	return akai_full_stop;
}

void make_akai_name(const char *in, u8 *out, int n)
{
	int at = 0;
	for (; at < n && in[at]; at++)
		out[at] = akai_index_of(in[at]);
	std::fill(out + at, out + n, u8{ akai_blank });
	out[n] = 0;
}

void put_akai_name(u8 *bytes, const char *text)
{
	u8 name[akai_name_size + 1];
	make_akai_name(text, name, akai_name_size);
	std::copy_n(name, akai_name_size, bytes);
}

void trim_akai_name(char *name)
{
	for (std::size_t length = std::strlen(name); length && name[length - 1] == ' '; length--)
		name[length - 1] = '\0';
}

std::string akai_name(bounded_bytes in)
{
	char name[akai_name_size + 1];
	from_akai_ascii(in, akai_name_size, name);
	return name;
}

std::string akai_trimmed_name(bounded_bytes in)
{
	std::string name = akai_name(in);
	trim_akai_name(name.data());
	return name.c_str();
}

// ---- Tuning ------------------------------------------------------------------------------

i32 akai_cents_from_bytes(bounded_bytes bytes)
{
	const i32 fraction = bytes[0] * 100 >> 8;
	const i32 semitones = bytes[1] & 0x80 ? -(128 - (bytes[1] & 127)) : bytes[1];
	return fraction + semitones * 100;
}

// The fraction always counts upward, so a negative value needs the semitone below it. The
// machines are given one too many for whole semitones, and the record keeps the lowered
// value: a record that is written twice goes down twice.
i32 akai_cents_to_bytes(u8 *bytes, i32 cents)
{
	if (cents < 0)
		cents -= 100;
	put_low_byte(bytes, cents % 100 * 256 / 100);
	put_low_byte(bytes + 1, cents / 100);
	return cents;
}

// ---- New programs ------------------------------------------------------------------------

// clang-format off
const u8 akai_s1000_dummy_program[s2000_program_size] = {
	/*   0 */ 0x01, 0x0C, 0x90,
	/*   3 */ 0x1E, 0x0F, 0x1D, 0x1E, 0x0A, 0x1A, 0x1C, 0x19, 0x11, 0x1C, 0x0B, 0x17, // TEST PROGRAM
	/*  15 */ 0x00, 0x00, 0x1F, 0x01, 0x18, 0x7F, 0x00, 0xFF, 0x63, 0x00, 0x50, 0x14, 0x00, 0x00, 0x01, 0x63,
	/*  31 */ 0x00, 0x00, 0x32, 0x00, 0x00, 0x1E, 0x00, 0x00, 0x02, 0x00, 0x00, 0x01, 0x01, 0x00, 0x00, 0x00,
	/*  47 */ 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
	/*  62 */ 0x0A, 0x0A, 0x0A, 0x00, 0x00, 0x00, 0x00, 0x00, 0x32, 0x00, 0x00, 0x02, 0x00, 0x00, 0x08, 0x06,
	/*  78 */ 0x0C, 0x06, 0x03, 0x06, 0x06, 0x06, 0x05, 0x08, 0x0A, 0x0A, 0x05,
};
// clang-format on

void akai_s1000_init_progblock(u8 *block, int *length, const _program *program)
{
	enum {
		program_midi_number = 15,
		program_keygroups = 42
	};
	const bool s2000 = current_sampler && current_sampler->sampler_type >= u32{ model_s2000 };
	*length = s2000 ? s2000_program_size : s1000_program_size;
	std::copy_n(akai_s1000_dummy_program, *length, block);
	block[0] = block_is_program;
	// Twelve bytes and a 0, which falls on the MIDI program number.
	static_assert(program_name + akai_name_size == program_midi_number);
	make_akai_name(program->name, &block[program_name], akai_name_size);
	block[program_keygroups] = static_cast<u8>(program->keygroups);
}

} // namespace velmor
