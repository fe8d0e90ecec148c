// audio.h - a sound through the loudspeaker of the computer
//
// One sound at a time. Everything is called on the main thread; a sound that plays on does so
// by itself, and stops by itself at its end unless it has a loop.

#pragma once
#include <cstdint>
#include <span>
#include <string>

namespace velmor
{

struct played_sound {
	std::span<const std::int16_t> words; // the channels of a frame in turn; lives until stop
	std::uint32_t sample_rate = 0;       // frames a second
	std::uint32_t channels = 1;
	// In frames; no loop where loop_end is not above it, or behind the sound.
	std::uint64_t loop_start = 0, loop_end = 0;
};

struct audio_service {
	// Ends what plays and begins this one. "", or a sentence that says why nothing is heard.
	std::string (*play)(const played_sound &sound);
	void (*stop)();
	// The frame that is heard now; -1: nothing plays.
	std::int64_t (*position)();
};

} // namespace velmor
