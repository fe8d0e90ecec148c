// akais1000_exact.h - samples of the S1000 family that arrive as they are: length and header
//
// An upload announces 16 bit words twice over and tells the machine nothing but the name. The
// exact one, beside it, announces as many words as there are and then writes into the machine's
// own header what the file says: pitch, loop, play mode, tuning, start and end.
//
// Knows nothing of: windows, settings.

#pragma once
#include "src/akais1000.h"
#include <span>
#include <string>
#include <vector>

namespace velmor
{

// What a header is told beside the name.
struct akai_sample_facts {
	u8 pitch = 60, playback_mode = 0, fine_tune = 0, semitone_tune = 0;
	bool looped = false, ranged = false; // whether these hold:
	u32 loop_start = 0, loop_end = 0;    // in words
	u32 start = 0, end = 0;
	std::vector<u8> kept = {}; // a whole header of the machine, which then counts instead
};

// What the WAV file of a sample says about it. The play mode is that of the loaded model; without
// the samplers' own bytes a loop makes it.
akai_sample_facts akai_facts_of_file(const std::string &path, const _sample &sample);
// Write them into a decoded header. Bytes that are not known stay the machine's.
void akai_put_facts(const akai_sample_facts &facts, std::vector<u8> *block);

// True if the words of a file can go exactly: 16 bit mono.
bool akai_goes_exactly(const _sample &sample);

// ---- Keeping a sample and putting it back ----------------------------------------------------

// The header of a sample of the loaded list, decoded; empty when none came.
std::vector<u8> akai_s1000_sample_header(u8 sysex_channel, const char *name);
// Upload a WAV file (path without its extension) exactly, whatever the setting says. With a header
// of that machine the sample gets its name and all that is known of it; it must tell as many
// words as the file has. True when words and header have arrived, and the header was read back.
// Boxes are those of an upload.
[[nodiscard]] bool akai_s1000_upload_exactly(const char *path, std::span<const u8> header = {});

} // namespace velmor
