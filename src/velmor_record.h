// velmor_record.h - "Record traffic": every byte of every line into a transcript
//
// The recorder stands in the host's tables, in front of the services: nobody who sends or receives
// knows of it. Recordings lie in the folder "transcripts" of the configurations.
//
// Main thread only.

#pragma once
#include "src/velmor_outcome.h"
#include "src/velmor_transcript.h"

namespace velmor
{

// Begin. Without names, nothing reaches the disk before the end, since the names are known only
// then.
outcome start_recording(bool names_left_out);
// Into that file, which must not be there yet.
outcome start_recording_to(const std::string &path);
// End, and say where the transcript lies; with none running, how the last one ended.
outcome stop_recording();
bool recording();
// VELMOR_RECORD=1 records from the start, VELMOR_RECORD=nameless without names.
void record_as_told();

// The same into memory alone, for work that looks at what went over the wire; a recording that
// runs goes on.
class traffic_listener
{
public:
	traffic_listener();
	~traffic_listener();
	traffic_listener(const traffic_listener &) = delete;
	// What crossed so far; the times are those of the clock's counter.
	const std::vector<crossing> &take();
	std::vector<crossing> crossings;
};

} // namespace velmor
