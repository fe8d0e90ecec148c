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
	std::span<const std::int16_t> words; // one channel; must live until stop
	std::uint32_t sample_rate;           // Hz
	std::uint64_t loop_start, loop_end;  // in words; no loop where loop_end is not above it
};

struct audio_service {
	// Ends what plays and begins this one. "", or a sentence that says why nothing is heard.
	std::string (*play)(const played_sound &sound);
	void (*stop)();
	// The word that is heard now; -1: nothing plays.
	std::int64_t (*position)();
};

} // namespace velmor
