// sound.h - sound files of every kind that a library knows, read as numbers
//
// Called by the import of sounds, for what is no plain WAV file. Files are given by the host's
// own paths.

#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

namespace velmor
{

struct sound_shape {
	std::string kind;             // for a person: "FLAC, Signed 24 bit PCM"
	unsigned rate = 0;            // Hz
	unsigned channels = 0;        // at least 1
	unsigned bits = 16;           // 16 or 24, whichever holds more of it
	bool exact = true;            // nothing is lost in these bits
	std::uint64_t frames = 0;     // as the file claims
	std::uint64_t loop_start = 0; // the first and the last frame of its loop;
	std::uint64_t loop_end = 0;   // both 0: it has none
	int root = -1;                // MIDI note, -1: the file tells none
};

struct sound_service {
	// A handle from 0 on, or -1 for a file that the library cannot read.
	int (*open)(const char *path, sound_shape *shape);
	// The next frames, their channels one after the other, full scale at -1 and 1. Fewer only
	// at the end of what can be read.
	std::size_t (*read)(int sound, double *values, std::size_t frames);
	void (*close)(int sound);
};

} // namespace velmor
