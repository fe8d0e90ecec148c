// akais1000.h - the S1000 family over MIDI System Exclusive
//
// Drives the S1000/S1100, S2000, S2800, S3000/S3000XL and S3200. Called through the
// rows of sampler_type. Owns nothing: what it reads goes into the _dev_status it is
// given, or into that of current_sampler.
//
// Every message is  F0 47 cc ff 48 ... F7 : cc the exclusive channel, ff the function.
// Indexes and counts travel as two bytes of seven bits, the low one first. Blocks of
// data travel as nibbles, the low one first, and there is no checksum.
//
//   request status           F0 47 cc 00 48 F7
//   status                   F0 47 cc 01 48 vv VV .. cc .. F7        21 bytes
//   request program list     F0 47 cc 02 48 F7
//   program list             F0 47 cc 03 48 nn NN (name*12) .. F7
//   request sample list      F0 47 cc 04 48 F7
//   sample list              F0 47 cc 05 48 nn NN (name*12) .. F7
//   request program          F0 47 cc 06 48 pp PP F7
//   program                  F0 47 cc 07 48 pp PP nibbles F7         also sent to write it
//   request keygroup         F0 47 cc 08 48 pp PP kk F7
//   keygroup                 F0 47 cc 09 48 pp PP kk nibbles F7      also sent to write it
//   request sample header    F0 47 cc 0A 48 ss SS F7
//   sample header            F0 47 cc 0B 48 ss SS nibbles F7         also sent to write it
//   request sample data      F0 47 cc 0C 48 ss SS oo oo oo oo nn 00 00 00 01 01 F7
//   delete program           F0 47 cc 12 48 pp PP F7
//   delete keygroup          F0 47 cc 13 48 pp PP kk F7
//   delete sample            F0 47 cc 14 48 ss SS F7
//
// Sample words travel in packets of the MIDI Sample Dump Standard (F0 7E cc 02 ..).
//
// Not done: the parameter forms.
// Knows nothing of: how bytes reach the sampler, windows.

#pragma once
#include "src/akaimidi.h"
#include "src/parameters.h"

namespace velmor
{

// ---- Codec (akais1000_codec.cpp) ---------------------------------------------------------

inline constexpr int akai_name_size = 12; // bytes of a name on the wire
// A list of as many names as a _dev_status holds.
inline constexpr int akai_list_room = 7 + akai_name_size * max_programs + 1;
static_assert(max_samples == max_programs);

enum {
	akai_keygroup = 7,
	akai_block = 7,
	akai_keygroup_block = 8,
	akai_list_names = 7
};

// Two bytes a byte, the low four bits first.
void create_akai_nibblebuf_raw(const u8 *in, u8 *out, int n);
// The same with a closing 0xF7; out takes 2n + 1 bytes.
void create_akai_nibblebuf(const u8 *in, unsigned n, u8 *out, int *out_length);
// The reverse, up to a 0xF7 where a low nibble is due, or the end of in or of out. The high
// nibble is neither masked nor taken for an end.
void create_akai_charbuf(bounded_bytes in, std::span<u8> out, int *out_length);
std::vector<u8> akai_bytes_from_nibbles(bounded_bytes in);

// Least significant byte first; reading logs what was decoded.
u32 get_akai8_word(bounded_bytes p);
u32 get_akai8_dword(bounded_bytes p);
void set_akai8_word(u32 v, u8 *p);
void set_akai8_dword(u32 v, u8 *p);
// Seven bits a byte, least significant first: two and four bytes.
void set_akai7_word(u32 v, u8 *p);
void set_akai7_dword(u32 v, u8 *p);

// A word of a sample as it comes from a sampler, in three bytes. Not the reverse of
// akai_dump_word: here the two low bits lie in bits 6 and 5 of the third byte.
u16 akai_unpack3(const u8 *p);
// Packs nothing: the machines expect akai_dump_word, which is not the reverse of unpacking.
void akai_pack3(u32 v, u8 *p);
// A word of a sample as it goes to a sampler, the two low bits in the low bits of the third byte.
void akai_dump_word(u32 word, u8 *p);

extern const char akai_ascii[42];
// Decode n bytes into out, which takes n + 1. Index 41 ends the text, what lies above is '?'.
void from_akai_ascii(bounded_bytes in, int n, char *out);
// Encode at most n characters, the rest blanks; out takes n + 1 bytes, the last one 0. Lower
// case folds to upper, what is not in the alphabet becomes a full stop.
void make_akai_name(const char *in, u8 *out, int n);
// Cut the blanks at the end.
void trim_akai_name(char *name);
// A name of 12 bytes as text, untrimmed or trimmed.
std::string akai_name(bounded_bytes in);
std::string akai_trimmed_name(bounded_bytes in);

// Cents as a fraction byte (256ths of a semitone) and a semitone byte. A negative value is
// first lowered by 100, and it is the lowered one that the record then holds.
i32 akai_cents_from_bytes(bounded_bytes bytes);
i32 akai_cents_to_bytes(u8 *bytes, i32 cents);
inline constexpr conversion as_akai_tuning = {
	.name = "cents",
	.width = 2,
	.get = akai_cents_from_bytes,
	.put = akai_cents_to_bytes,
};
// Names of 12 bytes, with and without the blanks at their end. Both fill up with blanks.
void put_akai_name(u8 *bytes, const char *text);
inline constexpr conversion as_akai_name = {
	.name = "name",
	.width = akai_name_size,
	.of_text = true,
	.get_text = akai_name,
	.put_text = put_akai_name,
};
inline constexpr conversion as_trimmed_akai_name = {
	.name = "name without blanks at its end",
	.width = akai_name_size,
	.of_text = true,
	.get_text = akai_trimmed_name,
	.put_text = put_akai_name,
};

// Bytes of program common data on this model.
inline constexpr int s1000_program_size = 150, s2000_program_size = 192;
extern const u8 akai_s1000_dummy_program[s2000_program_size];
// The block of a new program for the loaded sampler; block takes 192 bytes.
void akai_s1000_init_progblock(u8 *block, int *length, const _program *program);

// ---- Sample headers, for samples and their list --------------------------------------------

// REQUEST PROGRAM LIST                       0     1     2     3     4     5
inline constexpr std::array<u8, 6> request_program_list = //
	{ 0xF0, 0x47, 0x00, 0x02, 0x48, 0xF7 };
// REQUEST PROGRAM COMMON DATA                0     1     2     3     4     5     6     7
inline constexpr std::array<u8, 8> request_program = //
	{ 0xF0, 0x47, 0x00, 0x06, 0x48, 0x00, 0x00, 0xF7 };
// REQUEST KEYGROUP DATA                      0     1     2     3     4     5     6     7     8
inline constexpr std::array<u8, 9> request_keygroup = //
	{ 0xF0, 0x47, 0x00, 0x08, 0x48, 0x00, 0x00, 0x00, 0xF7 };

// REQUEST SAMPLE HEADER                      0     1     2     3     4     5     6     7
inline constexpr std::array<u8, 8> request_sample_header = //
	{ 0xF0, 0x47, 0x00, 0x0A, 0x48, 0x00, 0x00, 0xF7 };
enum {
	sample_header_function = 0x0B,
	sample_header_name = 3,
	sample_header_size = 50, // with all that is looked at
};

// ---- Parameters (akais1000_parameters.cpp) ------------------------------------------------

// Who takes a parameter back.
enum : unsigned {
	taken_never = 0,
	taken_by_s1000 = 1,
	taken_by_s2000 = 2, // model ids from 1005 upward
	taken_by_all = taken_by_s1000 | taken_by_s2000,
	taken_at_creation = 4,
};
// The bit of a model.
unsigned akai_s1000_takers(i32 model);

// Blocks name themselves in their first byte.
enum {
	block_is_program = 1,
	block_is_keygroup = 2
};
inline constexpr int program_name = 3; // 12 bytes
inline constexpr int akai_zones = 4;   // of a keygroup on the wire, always
inline constexpr int zone_step = 24;
inline constexpr int s1000_zones_end = 148;
inline constexpr int s1000_keygroup_size = 192; // room for every row of the tables

extern const parameters<_program> akai_s1000_program_parameters;
extern const parameters<_keygroup> akai_s1000_keygroup_parameters;
extern const parameters<_keyzone> akai_s1000_keyzone_parameters;

// Fill a record from a decoded block. A program keeps its keygroups; a keygroup has four zones
// afterwards, and the other four stay as they were.
void akai_s1000_program_from_block(bounded_bytes block, _program *program);
void akai_s1000_keygroup_from_block(bounded_bytes block, _keygroup *keygroup);

// ---- Status and lists (akais1000_lists.cpp) ----------------------------------------------

// Name i of a list, trimmed, as far as it came. The end byte is no part of a name.
std::string akai_list_name(const akai_answer &list, int i);

void akai_s1000_getstatus(u8 channel, u8 sysex_channel, _dev_status *status);
void akai_s2000_getstatus(u8 channel, u8 sysex_channel, _dev_status *status);
void akai_s1000_getproglist(u8 channel, u8 sysex_channel, _dev_status *status);
void akai_s1000_getsamplelist(u8 channel, u8 sysex_channel, _dev_status *status);
void akai_s1000_getmultilist(u8 channel, u8 sysex_channel, _dev_status *status);
const char *akai_s1000_getplaymode(i32 mode);

// ---- Samples (akais1000_samples.cpp) -----------------------------------------------------

void akai_s1000_sample_info(u8 channel, u8 sysex_channel, const char *name);
void akai_s2000_sample_info(u8 channel, u8 sysex_channel, const char *name);
// Into the spool.
void akai_s1000_sample_download(u8 channel, u8 sysex_channel, const char *name);
void akai_s2000_sample_download(u8 channel, u8 sysex_channel, const char *name);
// new_name null deletes the sample.
void akai_s1000_sample_rename(u8 channel, u8 sysex_channel, const char *name, const char *new_name);

// ---- Upload (akais1000_upload.cpp) -------------------------------------------------------

// path is that of a WAV file, without its extension.
void akai_s2000_sample_upload(const char *path);
// Always as sample 0, without a name of its own; no row selects it.
void akai_s1000_sample_upload(const char *path);

// ---- Writing programs (akais1000_programs.cpp) --------------------------------------------

// Entry program of source, or of the loaded tree where source is null. A save changes the record:
// one blank at the end of its name goes, and negative tunings are lowered.
void akai_s1000_prog_save(i32 program, _program *source);
void akai_s1000_prog_delete(i32 program);
void akai_s1000_prog_rename(i32 program, const char *new_name);
// Both as the sampler counts. Always on exclusive channel 0, and over MIDI for every model.
void akai_s1000_del_keygroup(i32 program, i32 keygroup);

} // namespace velmor
