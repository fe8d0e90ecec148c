// velmor_shape.h - what a WAV file of the user holds, and what an import or an upload makes of it
//
// Knows nothing of: windows, toolkits.

#pragma once
#include "src/velmor_work.h"
#include "src/waveqx_chunks.h"
#include <string>

namespace velmor
{

// Kinds of audio in the head of a WAV file.
enum : u16 {
	tag_pcm = 1,
	tag_float = 3,
	tag_extensible = 0xFFFE, // the real one stands in the extension of fmt
};

struct wave_shape {
	u16 tag = 0;
	u32 rate = 0;
	unsigned bits = 0, channels = 0, frame_bytes = 0;
	u64 frames = 0;
	u64 data_at = 0, data_bytes = 0;
	u64 loop_start = 0, loop_end = 0; // no loop where both are 0
	int root = -1;                    // unity note, where a smpl chunk tells it
	std::string kind = {};            // of a file that is made a plain WAV file first
	bool exact = true;                // and loses nothing by it

	double seconds() const { return rate ? static_cast<double>(frames) / rate : 0; }
};

// "" or why the file has no shape.
std::string read_shape(const std::string &path, input_file &wave, wave_shape *shape);
// What an import reads of a file: itself, or the plain WAV file that is made of it.
std::string read_import_shape(const std::string &path, wave_shape *shape);

bool linear(const wave_shape &file);
// " float", " compressed" or "", behind the number of bits.
const char *kind_of_words(const wave_shape &file);
// A conversion of this program makes 16 bit mono of it.
bool convertible(const wave_shape &file);

struct conversion {
	int files = 0; // 0: these options do not convert this file
	unsigned channels = 0;
};
conversion conversion_of(const wave_shape &file, const import_options &options);
u64 frames_after(const wave_shape &file, u32 rate);

upload_verdict verdict_of(const _sampler_type &model, const wave_shape &file);

} // namespace velmor
