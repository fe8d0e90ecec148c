// rmidi.cpp - the port binding that the S900 is sent through

#include "src/rmidi.h"
#include "platform/host.h"
#include "src/velmor_pace.h"

namespace velmor
{

static const midi_service *bound = nullptr;

int init_wrt_midi()
{
	bound = host.midi;
	return bound ? 0 : 1;
}

// Tests and the demo change the service of the host after it was bound.
static const midi_service *service()
{
	if (bound != host.midi)
		bound = host.midi;
	return bound;
}

int g_MidiInPortOpenFunc(int index, int *port)
{
	return service()->open_input(index, port);
}

int g_MidiInPortFreeFunc(int port)
{
	service()->close_input(port);
	return 0;
}

int g_MidiOutPortOpenFunc(int index, int *port)
{
	return service()->open_output(index, port);
}

int g_MidiOutPortFreeFunc(int port)
{
	service()->close_output(port);
	return 0;
}

int g_MidiOutPortSendFunc(int port, const u8 *bytes, int count)
{
	if (service() && count >= 0)
		return write_output(port, bytes, static_cast<std::size_t>(count));
	return 1;
}

} // namespace velmor
