// rmidi.h - the port binding that the S900 is sent through
//
// The S900 exchange opens an output for each message and frees it afterwards,
// apart from the output that everything else shares. The binding is made first
// thing at start-up. All functions return 0, or the code of the host's MIDI
// service, which has words for it.
//
// Knows nothing of: messages and their answers.

#pragma once
#include "src/resource.h"

namespace velmor
{

// 0 when the host has a MIDI service, otherwise 1.
int init_wrt_midi();

// Ports are named by their place in the host's list. An input is only opened: nothing is
// received through this binding.
int g_MidiInPortOpenFunc(int index, int *port);
int g_MidiInPortFreeFunc(int port);
int g_MidiOutPortOpenFunc(int index, int *port);
// Freeing a port cuts off what has not left it yet.
int g_MidiOutPortFreeFunc(int port);
int g_MidiOutPortSendFunc(int port, const u8 *bytes, int count);

} // namespace velmor
