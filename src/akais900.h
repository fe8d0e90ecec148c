// akais900.h - the S900 and S950 over MIDI System Exclusive
//
// Called through the row of sampler_type. Owns the buffer of the dump under way; what it reads
// goes into the _dev_status it is given, or into that of current_sampler.
//
// Every message but a dump is  F0 47 cc ff 40 nn 00 .. F7 : cc the exclusive channel, ff the
// function, nn the number of a program or sample.
//
//   request program          F0 47 cc 02 40 nn 00 F7
//   request catalogue        F0 47 cc 03 40 00 00 F7
//   request sample header    F0 47 cc 04 40 nn 00 F7
//   common exclusive on      F0 47 cc 05 40 00 00 F7                 before a dump
//   common exclusive off     F0 47 cc 06 40 00 00 F7                 behind it
//   catalogue                F0 47 cc .. 40 00 00 (type nn name*9 ..)* F7
//   program                  F0 47 cc .. 40 nn 00 pairs xx F7        also sent to write it
//   sample header            F0 47 cc .. 40 nn 00 pairs xx F7        also sent to write it
//
// The catalogue is in ASCII. In a program or header each byte of the machine travels as two,
// its low seven bits and its top bit; xx is the exclusive-or of the pairs.
//
// A dump has no channel, and is one message of many kilobytes:
//
//   request dump             F0 7E 00 nn 00 F7
//   go on                    F0 7E 7F F7                             one for each block
//   dump                     F0 7E 01 nn 00 0C pp pp pp ll ll ll aa aa aa bb bb bb tt
//                            (kk word*60 xx)* F7                     both ways
//
// The channel is that of the caller less 1, for lists, downloads and saving of programs. An
// upload has no caller's channel and uses the control channel as it stands, one above: a
// machine in omni mode hears both.
//
// The machine says nothing to what switches it or is written to it. Waiting for its word would
// cost seconds each time and look like a line that fails, so these messages are only sent.
//
// Not done: the parameter forms.
// Knows nothing of: how bytes reach the sampler, windows.

#pragma once
#include "src/akaimidi.h"
#include "src/parameters.h"
#include "src/waveqx_file.h"

namespace velmor
{

// ---- Codec and parameters (akais900_codec.cpp) -------------------------------------------

// Eight bits in two bytes, the low seven and the top one; count bytes, the least significant
// pair first.
u32 get_s900_paired(bounded_bytes bytes, int count);
void set_s900_paired(u32 value, u8 *bytes, int count);
// Exclusive-or from one place up to another.
u8 s900_checksum(bounded_bytes bytes, std::size_t from, std::size_t to);
// count characters, every second byte.
std::string s900_spaced_text(bounded_bytes bytes, int count);
std::string s900_trimmed(std::string text);

// The alphabet of the later machines. This one speaks ASCII, and no message needs it.
extern const char akai_900_ascii[42];
void from_akai_900_ascii(bounded_bytes in, int n, char *out);

inline constexpr int s900_entry_size = 12; // of the catalogue
inline constexpr int s900_name_size = 9;   // characters that are read and written
extern const parameters<_program> akai_s900_catalogue_programs;
extern const parameters<_sample> akai_s900_catalogue_samples;

// PROGRAM. A keygroup is looked at from 140 bytes times its number, so that the offsets of the
// first one serve all.
enum {
	s900_program_name = 7,
	s900_keygroup_count = 53,
	s900_unknown_count = 54, // 0 in what is sent
	s900_first_keygroup = 83,
	s900_keygroup_size = 140,
	s900_keygroup_end = s900_first_keygroup + s900_keygroup_size,
	s900_velocity_switch = 87,
	s900_data = 7, // where checksums begin
};
constexpr std::size_t s900_keygroup_at(int k)
{
	return std::size_t{ s900_keygroup_size } * static_cast<std::size_t>(k);
}
extern const parameters<_program> akai_s900_program_parameters;
extern const parameters<_keygroup> akai_s900_keygroup_parameters;
// Both zones, soft and loud; then what only one of them has, and what is sent of the soft one.
extern const parameters<_keyzone> akai_s900_keyzone_parameters;
extern const parameters<_keyzone> akai_s900_soft_parameters;
extern const parameters<_keyzone> akai_s900_loud_parameters;

// From bytes that begin 140 times its number into the program, and back over them.
void akai_s900_keygroup_from_block(bounded_bytes block, _keygroup *keygroup);
void akai_s900_keygroup_to_block(_keygroup *keygroup, std::span<u8> block);
// What a keygroup that the sampler does not have yet begins with, over zeros.
void akai_s900_new_keygroup(std::span<u8> block);

// SAMPLE HEADER
inline constexpr int s900_header_checksum = 127;
inline constexpr int s900_header_size = 129;
enum {
	s900_header_length = 39, // 8 bytes
	s900_header_rate = 47,   // 4
	s900_header_pitch = 51,  // 4
};
extern const parameters<_sample> akai_s900_sample_parameters;
void akai_s900_sample_from_header(bounded_bytes header, _sample *sample);

// ---- Messages (akais900_lists.cpp) -------------------------------------------------------

// REQUEST PROGRAM                            0     1     2     3     4     5     6     7
inline constexpr std::array<u8, 8> request_s900_program = //
	{ 0xF0, 0x47, 0x00, 0x02, 0x40, 0x00, 0x00, 0xF7 };
// REQUEST SAMPLE HEADER                      0     1     2     3     4     5     6     7
inline constexpr std::array<u8, 8> request_s900_header = //
	{ 0xF0, 0x47, 0x00, 0x04, 0x40, 0x00, 0x00, 0xF7 };

inline constexpr int s900_most_number = 0x7F; // in a message
inline constexpr int s900_data_room = 10000;  // of an answer to these two

// The message to a channel, about a number. The number is not masked.
template <std::size_t size>
std::array<u8, size> s900_message(std::array<u8, size> message, int channel, int number = 0)
{
	message[akai_channel] = static_cast<u8>(channel);
	message[akai_index] = static_cast<u8>(number);
	return message;
}
// A whole message of seven-bit data: what is not must never go back.
bool is_s900_message(const akai_answer &answer);
// A program as its message. One that takes longer than an exchange waits is asked for twice.
akai_answer ask_s900_program(std::span<const u8> message);
// False after the line that a list needs a status.
bool has_s900_status(const _dev_status *status);

// ---- Status and lists (akais900_lists.cpp) ----------------------------------------------

void akai_s900_getstatus(u8 channel, u8 sysex_channel, _dev_status *status);
void akai_s900_getproglist(u8 channel, u8 sysex_channel, _dev_status *status);
void akai_s900_getsamplelist(u8 channel, u8 sysex_channel, _dev_status *status);
void akai_s900_getmultilist(u8 channel, u8 sysex_channel, _dev_status *status);
void akai_s900_sample_info(u8 channel, u8 sysex_channel, const char *name);

// ---- Samples (akais900_samples.cpp, akais900_upload.cpp) ---------------------------------

// COMMON EXCLUSIVE                           0     1     2     3     4     5     6     7
inline constexpr std::array<u8, 8> enable_common_exclusive = //
	{ 0xF0, 0x47, 0x00, 0x05, 0x40, 0x00, 0x00, 0xF7 };
inline constexpr std::array<u8, 8> disable_common_exclusive = //
	{ 0xF0, 0x47, 0x00, 0x06, 0x40, 0x00, 0x00, 0xF7 };

// DUMP HEAD                                  0     1     2     3     4     5
inline constexpr std::array<u8, 19> s900_dump_head = //
	{ 0xF0, 0x7E, 0x01, 0x00, 0x00, 0x0C,
		// 6     7     8     9    10    11    12    13    14    15    16    17    18
		0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00 };
enum {
	s900_dump_number = 3,
	s900_dump_bits = 5,
	s900_dump_period = 6,
	s900_dump_words = 9,
	s900_dump_loop_start = 12,
	s900_dump_loop_end = 15,
	s900_dump_loop_type = 18,
};
// BLOCK
enum {
	s900_block_words = 1,
	s900_block_checksum = 121,
	s900_block_size = 122,
	s900_words_in_block = 60,
};
static_assert(s900_block_words + 2 * s900_words_in_block == s900_block_checksum);
inline constexpr u32 s900_longest_dump = 0x1FFFFF; // words that the head can count

// 12 bits in two bytes, counted from the lowest level.
void set_s900_word(int level, u8 *bytes);
int get_s900_word(const u8 *bytes);
// Three bytes of seven bits.
void set_s900_number(u32 value, u8 *bytes);
u32 get_s900_number(bounded_bytes bytes);

// The dump under way: one message from its F0 on, and how many bytes of it are there. Both are
// null between downloads.
extern owned_bytes the_s900_junk;
extern std::unique_ptr<int> _the_s900_junks;
// Take bytes of the input into it. What is no part of a dump is left out.
void s900_in_callback(std::span<const u8> bytes);

void akai_s900_download_sample(u8 channel, u8 sysex_channel, const char *name);
void akai_s900_upload_sample(const char *path);

// ---- Programs (akais900_programs.cpp) ----------------------------------------------------

// The record is that of the loaded list at the index; the second argument is not used.
void akai_s900_save_program(i32 program, _program *source);

} // namespace velmor
