// waveqx_chunks.h - the head and the chunks of a WAV file, as the routines of waveqx see them
//
// Shared by the readers and converters of this module, and by nobody else.

#pragma once
#include "src/waveqx_file.h"
#include <cstring>
#include <span>
#include <vector>

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
// From the chunk behind fmt to the end of the file, as long as visit(chunk, number) wants
// more: there is no limit but the file. A system code.
template <class visitor> int walk_chunks(input_file &file, const wave_head &head, visitor visit)
{
	u64 at = u64{ head.fmt_length } + 20;
	for (u64 number = 0; at < file.size; number++) {
		wave_chunk chunk = {};
		if (const int code = read_wave_chunk(file, at, &chunk))
			return code;
		if (!visit(chunk, number))
			break;
		at = chunk.next();
	}
	return 0;
}
// A walk logs no more than the first chunks of a file.
inline constexpr u64 logged_chunks = 1000;

// Bytes of a chunk that the file really holds: one that claims more is taken as far as
// it goes.
u64 wave_bytes_held(const input_file &file, const wave_chunk &chunk);

// The chunks that go into the spool beside the audio, each whole with its name and length;
// empty where there is none, and then one is made.
struct kept_chunks {
	std::span<const u8> fact, smpl;
};

// All that stands ahead of the audio in a file of the spool: fmt of 18 bytes, fact, smpl, and
// the name and length of data. head is the first 38 bytes of the source. Null, or what is
// wrong with the head.
const char *make_spool_head(std::span<const u8> head, const kept_chunks &kept, u32 data_size,
	u32 pitch, std::vector<u8> *out);

} // namespace velmor
