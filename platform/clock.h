// clock.h - time, as the host tells it
//
// Called by the transports, the log and the progress window. Tests install a
// clock that jumps to the next event of a virtual sampler.

#pragma once

namespace velmor
{

struct clock_service {
	// Seconds since the epoch, with microseconds as the fraction.
	double (*time_of_day)();
	// Seconds on a clock that never goes back; its zero means nothing.
	double (*counter)();
	// Let this many milliseconds pass without running interface events; callers stay below 100.
	void (*sleep_ms)(int milliseconds);
};

} // namespace velmor
