// velmor_line.cpp - whether the sampler answers
//
// Knows nothing of: transports (they report here), what was asked.

#include "src/velmor_outcome.h"

namespace velmor
{

line_state the_line;

void line_answered()
{
	the_line.answers++;
	the_line.failing = false;
	the_line.answered_at = host.clock->time_of_day();
}

void line_silent(const char *why)
{
	the_line.failures++;
	the_line.failing = true;
	the_line.why = why ? why : "";
}

void forget_line()
{
	the_line.answered_at = 0;
	the_line.failing = false;
	the_line.why.clear();
}

} // namespace velmor
