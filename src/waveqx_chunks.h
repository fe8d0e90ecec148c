// waveqx_chunks.h - the head and the chunks of a WAV file, as the routines of waveqx see them
//
// Shared by the readers and converters of this module, and by nobody else.

#pragma once
#include "src/waveqx_file.h"
#include <cstring>

namespace velmor
{

// Offsets of a file of write_sample, and of the head of every WAV file.
enum : int {
	at_riff = 0,
	at_file_length = 4,
	at_form = 8, // "WAVEfmt ", form type and chunk name as one
	at_fmt_length = 16,
	at_version = 20,
	at_channels = 22,
	at_sample_rate = 24,
	at_bytespersecond = 28,
	at_bytespersample = 32, // bytes of one frame over all channels
	at_bitspersample = 34,
	at_extension = 36,
	at_fact = 38,
	at_fact_length = 42,
	at_fact_count = 46,
	at_smpl = 50,
	at_data = 136,
	smallest_file = 46,
};

// Offsets in a smpl chunk, from its name on; the last seven are the samplers' own.
enum : int {
	smpl_manufacturer = 8,
	smpl_product = 12,
	smpl_period = 16, // nanoseconds
	smpl_unity_note = 20,
	smpl_loop_start = 52,
	smpl_loop_end = 56,
	smpl_original_pitch = 70,
	smpl_semitone_tune = 71,
	smpl_fine_tune = 72,
	smpl_playmode = 74,
	smpl_start = 78,
	smpl_end = 82,
	smpl_akai_size = 86,
};
static_assert(int{ at_smpl } + smpl_akai_size == at_data);

// A walk goes no further: a file of more chunks is no audio, and would only be a way to
// keep the program busy.
inline constexpr int max_wave_chunks = 4096;

// The fields that stand at fixed places in every file whose first chunk is fmt.
struct wave_head {
	bool riff, wave; // "RIFF" and "WAVEfmt " stand where they should
	u32 fmt_length;
	u16 version, channels;
	u32 sample_rate;
	u16 bytespersample; // one frame over all channels
	u16 bitspersample;
};

struct wave_chunk {
	u64 at; // of its name
	u32 size;
	char name[4];

	bool is(const char *wanted) const { return std::memcmp(name, wanted, 4) == 0; }
	u64 next() const { return at + 8 + size; }
};

// Both answer a system code; what the file does not hold is zero.
int read_wave_head(input_file &file, wave_head *head);
int read_wave_chunk(input_file &file, u64 at, wave_chunk *chunk);
// Bytes of a chunk that the file really holds: one that claims more is taken as far as
// it goes.
u64 wave_bytes_held(const input_file &file, const wave_chunk &chunk);

} // namespace velmor
