// signals.h - the wish of the system or a terminal that the program end
//
// SIGTERM (a session that ends, kill) and SIGINT (Ctrl-C) become one call, so that work can end
// where sampler and files are whole. A second one ends the process at once: nobody is kept from
// ending a program that hangs.
//
// Called by the main functions of programs.

#pragma once

namespace velmor
{

// First thing in main, before any thread is made: signals wait until they are watched.
void hold_end_signals();
// From now on: call ended at the first signal, on a thread of its own.
void watch_end_signals(void (*ended)());

} // namespace velmor
