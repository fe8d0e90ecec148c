// velmor_replay.h - the program's side of a transcript once more, and where the answers part
//
// What was sent then is sent again, to whoever is reached now, and what comes back is compared
// byte by byte. It changes the sampler as it was changed then: whoever calls this has asked.
//
// Main thread only. Knows nothing of: what the bytes mean, drivers.

#pragma once
#include "src/velmor_outcome.h"
#include "src/velmor_transcript.h"

namespace velmor
{

// An answer that is not what it was.
struct replay_difference {
	int row;        // of the transcript
	double time;    // of that answer then, in seconds
	std::size_t at; // its first byte that differs
	int then, now;  // that byte, -1: there is none
	std::string words;
};

struct replay_report {
	int messages = 0, answers = 0; // sent, and compared
	u64 bytes = 0;                 // compared
	double seconds = 0;
	std::vector<replay_difference> differences; // at most a hundred
};

// Over the way of the loaded sampler: MIDI or the TCP bridge for what was recorded on either, the
// USB device of the same product for the rest. Done: every answer is the same. Refused: some are
// not, and the report says which.
outcome replay_transcript(const transcript &t, replay_report *report);
outcome replay_transcript_file(const std::string &path, replay_report *report);

} // namespace velmor
