// signals_posix.cpp - the wish of the system or a terminal that the program end
//
// The signals are blocked in every thread and taken by one that does nothing else, so
// nothing is bound by what a signal handler may do.

#include "platform/signals.h"
#include <csignal>
#include <pthread.h>
#include <thread>
#include <unistd.h>

namespace velmor
{

static sigset_t end_signals()
{
	sigset_t set;
	sigemptyset(&set);
	sigaddset(&set, SIGTERM);
	sigaddset(&set, SIGINT);
	return set;
}

void hold_end_signals()
{
	const sigset_t set = end_signals();
	pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

static void watch(void (*ended)())
{
	const sigset_t set = end_signals();
	int which;
	if (sigwait(&set, &which) != 0)
		return;
	// From here on this thread takes the next one, the system's way.
	pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
	ended();
	for (;;)
		pause();
}

void watch_end_signals(void (*ended)())
{
	std::thread(watch, ended).detach();
}

} // namespace velmor
