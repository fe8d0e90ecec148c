// waveqx_pcm.h - values of a WAV file at 24-bit scale, as they stand or between two frames
//
// The arithmetic of resample, and nobody else's. A value has a raw form (the bit
// pattern, unsigned at 16 and 24 bits) and a signed one; what was interpolated is
// signed in both.
//
// Knows nothing of: files.

#pragma once
#include "src/resource.h"

namespace velmor
{

// Some frames of the source in memory, seen from one channel.
struct source_window {
	const u8 *bytes; // the channel's value in frame first
	std::int64_t first;
	std::int64_t frames; // of the whole file
	std::size_t stride;  // bytes of a frame
	double factor;       // source frames for one of the target
};

// Values of count frames. Interpolated ones stand at (start + k) * factor; the others at the
// frames of the window, one after the other.
using frame_reader = void (*)(const source_window &, std::int64_t start, std::size_t count, i32 *);

// How values of a depth are read: [interpolated][raw].
struct depth_row {
	u16 bits; // 0 ends the table and serves every other depth
	frame_reader read[2][2];
	i32 (*largest)(const source_window &, std::size_t count); // signed value, 0 at least
};

// The row of a depth; a depth without values (8 bits, for one) reads as zero.
const depth_row &depth_of(u16 bits);

} // namespace velmor
