// clock_posix.cpp - time from the POSIX clocks

#include "platform/clock.h"
#include <ctime>

namespace velmor
{

static double seconds_of(clockid_t which)
{
	timespec now;
	clock_gettime(which, &now);
	return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

extern const clock_service posix_clock;
const clock_service posix_clock = {
	.time_of_day = [] { return seconds_of(CLOCK_REALTIME); },
	.counter = [] { return seconds_of(CLOCK_MONOTONIC); },
	.sleep_ms =
		[](int milliseconds) {
			timespec rest = { milliseconds / 1000, milliseconds % 1000 * 1000000L };
			while (nanosleep(&rest, &rest) != 0)
				;
		},
};

} // namespace velmor
