// wave_image.h - a sample as the USB machines keep and send it: a WAV file
//
// RIFF/WAVE, little-endian, chunks in the order fmt (18), fact (4), smpl (78),
// data, 144 bytes before the sound. The smpl chunk carries one loop and 18 bytes
// of the sampler's own:
//
//   offset in chunk   0 "smpl", 4 size, 8 manufacturer 47 00 00 01, 12 product 5E,
//                     16 nanoseconds a word, 20 unity note, 36 loops, 40 18,
//                     44 "loop", 48 type, 52 loop start, 56 loop end
//                     70 note, 71 semitones, 72 fine, 74 playback mode,
//                     78 start, 82 end
//
// Knows nothing of: the system under src/.

#pragma once
#include <cstdint>
#include <span>
#include <vector>

namespace velmor
{

struct wave_facts {
	std::uint16_t channels = 1, bits = 16;
	std::uint32_t rate = 44100;
	std::uint32_t frames = 0;
	std::uint8_t note = 60, semitones = 0, fine = 0, playback = 1;
	std::uint32_t loop_start = 0, loop_end = 0, start = 0, end = 0;
	std::size_t header = 0, data = 0; // bytes before the sound, and of it
};

// True if bytes hold a whole WAV file with a format and sound.
bool read_wave(std::span<const std::uint8_t> bytes, wave_facts *facts);

// A WAV file of 16-bit words, interleaved when there is more than one channel. Where facts
// has no end, the whole sound is played.
std::vector<std::uint8_t> make_wave(std::span<const std::int16_t> words, wave_facts facts);

} // namespace velmor
