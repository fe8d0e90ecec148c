// velmor_self_test.h - does the interface pass on what it is given?
//
// Over a loop cable, from the output to the input of the same interface, messages of 16 bytes to
// 64 KiB are sent and must come back as they were. They carry the number that MIDI reserves for
// trials (7D), which no machine listens to.
//
// No sampler sends back what it is sent. So over the sampler's own answers the same question is
// asked again and again, in front of it on MIDI a message of that length which it ignores: every
// answer must come, and be the same.
//
// Main thread only. Knows nothing of: windows, models.

#pragma once
#include "src/velmor_outcome.h"
#include "src/velmor_pace.h"
#include <functional>

namespace velmor
{

enum class self_test_route {
	loop_cable,
	sampler,
};

enum class self_test_result {
	pass,
	loss,    // fewer bytes came
	doubled, // more came
	change,  // as many, and others
	delay,   // all, but late
	silence, // nothing came
};

struct self_test_row {
	std::size_t sent = 0, came = 0; // bytes
	self_test_result result = self_test_result::silence;
	std::size_t at = 0;                 // the first byte that differs, from 0
	int sent_byte = -1, came_byte = -1; // -1: there is none
	double seconds = 0, rate = 0;       // bytes a second
};

struct self_test_report {
	std::vector<self_test_row> rows;
	std::string port;      // of the output, "" where no pace can be kept for it
	bool searched = false; // for a run that passes, because long ones did not
	send_pace found;       // run 0: there is none, or none is needed
	int trials = 0;
	double seconds = 0;
};

// "pass", "loss".
const char *result_word(self_test_result result);
// What a row says, as the columns of a list: length, result, difference, rate, time.
std::vector<std::string> row_words(const self_test_row &row);

// Ends by itself within five minutes, and soon after Stop. told is called after each row. Done:
// all passed, or they pass at the pace found. Refused: something was lost, changed or late.
outcome run_self_test(self_test_route way, self_test_report *report,
	const std::function<void(const self_test_report &)> &told = {});

// Use what was found for that port from now on, or no longer.
outcome keep_found_pace(const self_test_report &report);
outcome forget_pace_of(const std::string &port);
// "Long messages to 'X' leave in runs of 1024 bytes, 330 ms apart."; "" where they do not.
std::string pace_words(const std::string &port);

} // namespace velmor
