// akais900_codec.cpp - how an S900 writes numbers and names, and every parameter it has
//
// The tables are the format. Offsets count in the message that brings a program or a header,
// as the machine sends it and takes it back; those of a keygroup count from 140 bytes times
// its number.
//
// A data byte of a message has seven bits. What has more in a record is cut to them, so that a
// value out of its range can never break a message in two.
//
// Knows nothing of: requests, lists, dumps.

#include "src/akais900.h"
#include <algorithm>

namespace velmor
{

// ---- Numbers and names -------------------------------------------------------------------

u32 get_s900_paired(bounded_bytes bytes, int count)
{
	u32 value = 0;
	for (int i = 0; i < count; i++) {
		const int shift = 8 * (i / 2) + (i % 2 ? 7 : 0);
		value += u32{ bytes[static_cast<std::size_t>(i)] } << shift;
	}
	return value;
}

void set_s900_paired(u32 value, u8 *bytes, int count)
{
	for (int i = 0; i < count; i += 2) {
		const u32 byte = value >> 4 * i & 0xFF;
		bytes[i] = byte & 0x7F;
		bytes[i + 1] = static_cast<u8>(byte >> 7);
	}
}

u8 s900_checksum(bounded_bytes bytes, std::size_t from, std::size_t to)
{
	u8 sum = 0;
	for (std::size_t i = from; i < to; i++)
		sum ^= bytes[i];
	return sum;
}

std::string s900_spaced_text(bounded_bytes bytes, int count)
{
	std::string text;
	for (std::size_t at = 0; count-- > 0 && bytes[at]; at += 2)
		text += static_cast<char>(bytes[at]);
	return text;
}

std::string s900_trimmed(std::string text)
{
	text.erase(text.find_last_not_of(' ') + 1);
	return text;
}

// What is no character of a message becomes a full stop.
static u8 sent_character(char c)
{
	if (c >= 'a' && c <= 'z')
		return static_cast<u8>(c - 'a' + 'A');
	return c >= ' ' && c <= '~' ? static_cast<u8>(c) : u8{ '.' };
}

const char akai_900_ascii[42] = "0123456789 ABCDEFGHIJKLMNOPQRSTUVWXYZ#+-.";

void from_akai_900_ascii(bounded_bytes in, int n, char *out)
{
	out[n] = '\0';
	for (int i = 0; i < n; i++) {
		const u8 index = in[static_cast<std::size_t>(i)];
		out[i] = index >= sizeof akai_900_ascii ? '?' : akai_900_ascii[index];
	}
}

// ---- Conversions -------------------------------------------------------------------------

static constexpr conversion as_seven_bits = {
	.name = "seven bits",
	.width = 1,
	.get = as_byte.get,
	.put =
		[](u8 *bytes, i32 value) {
			bytes[0] = value & 0x7F;
			return value;
		},
};

static constexpr conversion as_eight_bits = {
	.name = "low seven bits and the top one",
	.width = 2,
	.get = [](bounded_bytes bytes) { return bytes[0] | bytes[1] << 7; },
	.put =
		[](u8 *bytes, i32 value) {
			bytes[0] = value & 0x7F;
			bytes[1] = static_cast<u8>(value >> 7 & 1);
			return value;
		},
};

// Read as the bit where it stands, and set from anything that is not 0.
static constexpr conversion as_flag = {
	.name = "one bit",
	.width = 1,
	.get = as_byte.get,
	.put =
		[](u8 *bytes, i32 value) {
			bytes[0] = value ? 0xFF : 0;
			return value;
		},
};

// The lowest velocity of the loud zone; with a top bit the switch is off the scale.
static constexpr conversion as_velocity_switch = {
	.name = "velocity, 128 for off",
	.width = 2,
	.get = [](bounded_bytes bytes) { return bytes[1] ? 128 : i32{ bytes[0] }; },
	.put = as_eight_bits.put,
};

// Sixteenths of a semitone. Both ways differ: the fourth byte repeats bit 9, which the third
// one has too, and a value is negative above 16384.
static constexpr conversion as_transpose = {
	.name = "sixteenths of a semitone",
	.width = 4,
	.get =
		[](bounded_bytes bytes) {
			const i32 value =
				bytes[3] << 9 | bytes[2] << 8 | bytes[1] << 7 | (bytes[0] & 0x7F);
			return value > 16384 ? value - 32768 : value;
		},
	.put =
		[](u8 *bytes, i32 value) {
			bytes[0] = value & 0x7F;
			bytes[1] = value >> 7 & 1;
			bytes[2] = value >> 8 & 0x7F;
			bytes[3] = value >> 9 & 1;
			return value;
		},
};

// Seven bits with a sign of their own; a byte that says so follows, and is not needed to read.
static constexpr conversion as_loudness = {
	.name = "signed seven bits, and 1 when negative",
	.width = 2,
	.get = [](bounded_bytes bytes) { return bytes[0] > 64 ? bytes[0] - 128 : i32{ bytes[0] }; },
	.put =
		[](u8 *bytes, i32 value) {
			bytes[0] = value & 0x7F;
			bytes[1] = value < 0;
			return value;
		},
};

// Characters that a shorter name does not reach stay as the machine had them.
static constexpr conversion as_zone_name = {
	.name = "nine characters, a zero behind each",
	.width = 2 * s900_name_size,
	.of_text = true,
	.get_text =
		[](bounded_bytes bytes) {
			return s900_trimmed(s900_spaced_text(bytes, s900_name_size));
		},
	.put_text =
		[](u8 *bytes, const char *text) {
			for (int i = 0; i < s900_name_size; i++) {
				if (*text)
					bytes[2 * i] = sent_character(*text++);
				bytes[2 * i + 1] = 0;
			}
		},
};

static constexpr conversion as_header_name = {
	.name = "ten characters, a zero behind each, blanks at the end",
	.width = 20,
	.of_text = true,
	.get_text = [](bounded_bytes bytes) { return s900_trimmed(s900_spaced_text(bytes, 10)); },
	.put_text =
		[](u8 *bytes, const char *text) {
			for (int i = 0; i < 10; i++) {
				bytes[2 * i] = *text ? sent_character(*text++) : u8{ ' ' };
				bytes[2 * i + 1] = 0;
			}
		},
};

static constexpr conversion as_catalogue_name = {
	.name = "nine characters of the catalogue",
	.width = s900_name_size,
	.of_text = true,
	.get_text = [](bounded_bytes bytes) -> std::string {
		std::string text;
		for (std::size_t i = 0; i < s900_name_size && bytes[i]; i++)
			text += static_cast<char>(bytes[i]);
		return s900_trimmed(text);
	},
};

// [53] alone counts; what is sent has 0 behind it.
static constexpr conversion as_count = {
	.name = "count, and a zero",
	.width = 2,
	.get = as_byte.get,
	.put =
		[](u8 *bytes, i32 value) {
			bytes[0] = value & 0x7F;
			bytes[1] = 0;
			return value;
		},
};

static i32 paired_dword(bounded_bytes bytes)
{
	return static_cast<i32>(get_s900_paired(bytes, 8));
}

static constexpr conversion as_paired_dword = {
	.name = "32 bits in pairs",
	.width = 8,
	.get = paired_dword,
};

static constexpr conversion as_half_of_paired_dword = {
	.name = "half of 32 bits in pairs",
	.width = 8,
	.get = [](bounded_bytes bytes) { return static_cast<i32>(get_s900_paired(bytes, 8) / 2); },
};

// The machine counts two and a half times the rate that a record and a file have.
static constexpr conversion as_rate = {
	.name = "rate in pairs, times 10 / 25",
	.width = 4,
	.get =
		[](bounded_bytes bytes) {
			return static_cast<i32>(get_s900_paired(bytes, 4) * 10 / 25);
		},
};

static constexpr conversion as_pitch = {
	.name = "note in sixteenths, in pairs",
	.width = 4,
	.get = [](bounded_bytes bytes) { return static_cast<i32>(get_s900_paired(bytes, 4) >> 4); },
	.put =
		[](u8 *bytes, i32 value) {
			set_s900_paired(static_cast<u32>(value & 0x7F) * 16, bytes, 4);
			return value;
		},
};

static constexpr conversion as_play_mode = {
	.name = "A 2, L 1, anything else 0",
	.width = 1,
	.get = [](bounded_bytes bytes) { return bytes[0] == 'A'   ? 2
						: bytes[0] == 'L' ? 1
								  : 0; },
};

// ---- Tables ------------------------------------------------------------------------------

// clang-format off
static constexpr parameter<_program> catalogue_program_rows[] = {
	// offset  field                           conversion
	{ {   1 }, field_of<&_program::number>,    &as_byte },
	{ {   2 }, field_of<&_program::name>,      &as_catalogue_name },
};
static constexpr parameter<_sample> catalogue_sample_rows[] = {
	{ {   1 }, field_of<&_sample::number>,     &as_byte },
	{ {   2 }, field_of<&_sample::name>,       &as_catalogue_name },
};

static constexpr parameter<_program> program_rows[] = {
	// offset  field                                 conversion            taken back
	{ {  49 }, field_of<&_program::crossfade_enable>, &as_byte },
	{ {  53 }, field_of<&_program::keygroups>,        &as_count,            taken_back },
};

static constexpr parameter<_keygroup> keygroup_rows[] = {
	// offset          field                                                       conversion       taken back
	{ {  83 },         field_of<&_keygroup::high_note>,                            &as_seven_bits,  taken_back },
	{ {  85 },         field_of<&_keygroup::low_note>,                             &as_seven_bits,  taken_back },
	{ {  89 },         field_of<&_keygroup::amp_attack>,                           &as_seven_bits,  taken_back },
	{ {  91 },         field_of<&_keygroup::amp_decay>,                            &as_seven_bits,  taken_back },
	{ {  93 },         field_of<&_keygroup::amp_sustain>,                          &as_seven_bits,  taken_back },
	{ {  95 },         field_of<&_keygroup::amp_release>,                          &as_seven_bits,  taken_back },
	{ { 119, 0,  1 },  field_of<&_keygroup::s900_transpose_disable>,               &as_flag,        taken_back },
	{ { 119, 0,  2 },  field_of<&_keygroup::s900_velocity_crossfade>,              &as_flag,        taken_back },
	{ { 119, 0,  4 },  field_of<&_keygroup::s900_lfo_desync>,                      &as_flag,        taken_back },
	{ { 119, 0,  8 },  field_of<&_keygroup::s900_one_shot_trigger>,                &as_flag,        taken_back },
	{ { 119, 0, 16 },  field_of<&_keygroup::s900_velocity_release_from_note_on>,   &as_flag,        taken_back },
	{ { 119, 0, 32 },  field_of<&_keygroup::s900_velocity_crossfade_curve_modification>, &as_flag,  taken_back },
	{ { 121 },         field_of<&_keygroup::s900_output>,                          &as_eight_bits,  taken_back },
	{ { 123 },         field_of<&_keygroup::s900_midi_offset>,                     &as_seven_bits,  taken_back },
	{ { 151 },         field_of<&_keygroup::filter_attack>,                        &as_seven_bits,  taken_back },
	{ { 153 },         field_of<&_keygroup::filter_decay>,                         &as_seven_bits,  taken_back },
	{ { 155 },         field_of<&_keygroup::filter_sustain>,                       &as_seven_bits,  taken_back },
	{ { 157 },         field_of<&_keygroup::filter_release>,                       &as_seven_bits,  taken_back },
};

static constexpr int zone_step = 44; // from the soft zone to the loud one
static constexpr parameter<_keyzone> keyzone_rows[] = {
	// offset             field                                   conversion       taken back
	{ { 131, zone_step }, field_of<&_keyzone::samplename>,        &as_zone_name,   taken_back },
	{ { 167, zone_step }, field_of<&_keyzone::transpose_offset>,  &as_transpose,   taken_back },
	// Each zone's own is read; what is sent is below.
	{ { 171, zone_step }, field_of<&_keyzone::s900_filter>,       &as_seven_bits },
	{ { 173, zone_step }, field_of<&_keyzone::s900_loudness>,     &as_loudness,    taken_back },
};
static constexpr parameter<_keyzone> soft_rows[] = {
	{ {  87 },            field_of<&_keyzone::high_velocity>,     &as_velocity_switch, taken_back },
	// Its filter goes out for both zones. The machine is never told of the loud zone's own.
	{ { 171 },            field_of<&_keyzone::s900_filter>,       &as_seven_bits,  taken_back | never_read },
	{ { 215 },            field_of<&_keyzone::s900_filter>,       &as_seven_bits,  taken_back | never_read },
};
static constexpr parameter<_keyzone> loud_rows[] = {
	// The soft zone's highest velocity once more.
	{ {  87 },            field_of<&_keyzone::low_velocity>,      &as_velocity_switch },
};

static constexpr parameter<_sample> sample_rows[] = {
	// offset  field                              conversion                  taken back
	// The name of the list stands; that of a new sample is written.
	{ {   7 }, field_of<&_sample::name>,          &as_header_name,            taken_back | never_read },
	{ {  39 }, field_of<&_sample::sample_length>, &as_paired_dword },
	{ {  39 }, field_of<&_sample::end_position>,  &as_paired_dword },
	{ {  39 }, field_of<&_sample::sample_bytes>,  &as_half_of_paired_dword },
	{ {  47 }, field_of<&_sample::sample_rate>,   &as_rate },
	{ {  51 }, field_of<&_sample::original_pitch>, &as_pitch,                 taken_back },
	{ {  59 }, field_of<&_sample::playback_mode>, &as_play_mode },
	{ {  71 }, field_of<&_sample::loop_start>,    &as_paired_dword },
	// The machine has the loop's length.
	{ {  79 }, field_of<&_sample::loop_end>,      &as_paired_dword },
};
// clang-format on
static_assert(table_is_sound<_program>(catalogue_program_rows, s900_entry_size));
static_assert(table_is_sound<_sample>(catalogue_sample_rows, s900_entry_size));
static_assert(table_is_sound<_program>(program_rows, s900_first_keygroup));
static_assert(table_is_sound<_keygroup>(keygroup_rows, s900_keygroup_end));
static_assert(table_is_sound<_keyzone>(keyzone_rows, s900_keygroup_end, 2));
static_assert(table_is_sound<_keyzone>(soft_rows, s900_keygroup_end));
static_assert(table_is_sound<_keyzone>(loud_rows, s900_keygroup_end));
static_assert(table_is_sound<_sample>(sample_rows, s900_header_checksum));

const parameters<_program> akai_s900_catalogue_programs = catalogue_program_rows;
const parameters<_sample> akai_s900_catalogue_samples = catalogue_sample_rows;
const parameters<_program> akai_s900_program_parameters = program_rows;
const parameters<_keygroup> akai_s900_keygroup_parameters = keygroup_rows;
const parameters<_keyzone> akai_s900_keyzone_parameters = keyzone_rows;
const parameters<_keyzone> akai_s900_soft_parameters = soft_rows;
const parameters<_keyzone> akai_s900_loud_parameters = loud_rows;
const parameters<_sample> akai_s900_sample_parameters = sample_rows;

// ---- Blocks ------------------------------------------------------------------------------

void akai_s900_keygroup_from_block(bounded_bytes block, _keygroup *keygroup)
{
	block_to_record(akai_s900_keygroup_parameters, block, *keygroup);
	_keyzone &soft = keygroup->keyzone[0], &loud = keygroup->keyzone[1];
	block_to_record(akai_s900_keyzone_parameters, block, soft, 0);
	block_to_record(akai_s900_keyzone_parameters, block, loud, 1);
	block_to_record(akai_s900_soft_parameters, block, soft);
	block_to_record(akai_s900_loud_parameters, block, loud);
	keygroup->keyzones = 2;
	soft.low_velocity = 0;
	loud.high_velocity = 127;
}

void akai_s900_keygroup_to_block(_keygroup *keygroup, std::span<u8> block)
{
	_keyzone &soft = keygroup->keyzone[0], &loud = keygroup->keyzone[1];
	record_to_block(akai_s900_keygroup_parameters, taken_back, *keygroup, block);
	record_to_block(akai_s900_keyzone_parameters, taken_back, soft, block, 0);
	record_to_block(akai_s900_keyzone_parameters, taken_back, loud, block, 1);
	record_to_block(akai_s900_soft_parameters, taken_back, soft, block);
}

void akai_s900_new_keygroup(std::span<u8> block)
{
	// What no row of the tables writes is all that the machine sees of it.
	static constexpr struct {
		u8 offset, value;
	} presets[] = {
		{ 87, 127 },
		{ 88, 1 },
		{ 97, 10 },
		{ 99, 50 },
		{ 101, 0 },
		{ 103, 0 },
		{ 105, 30 },
		{ 111, 99 },
		{ 113, 64 },
		{ 115, 42 },
		{ 119, 4 },
		{ 121, 0xFF },
		{ 127, 50 },
		{ 159, 64 },
		{ 171, 99 },
		{ 215, 99 },
	};
	std::fill(block.begin() + s900_first_keygroup, block.begin() + s900_keygroup_end, u8{ 0 });
	for (const auto &preset : presets)
		block[preset.offset] = preset.value;
}

void akai_s900_sample_from_header(bounded_bytes header, _sample *sample)
{
	block_to_record(akai_s900_sample_parameters, header, *sample);
	sample->loop_end += sample->loop_start;
	sample->start_position = 0;
	sample->absolute_start = 0;
	sample->loop_times = 9999;
	sample->channels = 1;
	sample->bitspersample = 12;
	sample->bytespersample = 2;
}

// ---- Dumps -------------------------------------------------------------------------------

static constexpr int lowest_level = -2048;

void set_s900_word(int level, u8 *bytes)
{
	const int from_lowest = level - lowest_level;
	bytes[0] = from_lowest >> 5 & 0x7F;
	bytes[1] = static_cast<u8>(from_lowest * 4 & 0x7C);
}

int get_s900_word(const u8 *bytes)
{
	return bytes[0] * 32 + (bytes[1] >> 2 & 31) + lowest_level;
}

void set_s900_number(u32 value, u8 *bytes)
{
	for (int i = 0; i < 3; i++)
		bytes[i] = value >> 7 * i & 0x7F;
}

u32 get_s900_number(bounded_bytes bytes)
{
	return (bytes[0] & 0x7Fu) | (bytes[1] & 0x7Fu) << 7 | (bytes[2] & 0x7Fu) << 14;
}

} // namespace velmor
