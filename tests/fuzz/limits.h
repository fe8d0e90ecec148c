// limits.h - the test host's limits, for one input of a fuzz target and not for all of them

#pragma once
#include "tests/support/test_host.h"
#include <sys/time.h>

namespace velmor
{

inline void renew_limits(test_host &h)
{
	h.limits.seconds += 1000;
	h.limits.calls_at_a_moment = 100000000; // a fuzzed machine answers in no time
	h.limits.disk_bytes += 1 << 23;
	const itimerval computing = { .it_interval = {}, .it_value = { 10, 0 } };
	setitimer(ITIMER_PROF, &computing, nullptr);
}

} // namespace velmor
