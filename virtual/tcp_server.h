// tcp_server.h - one virtual machine behind a TCP port, for the byte bridge
//
// What a client sends goes onto the machine's MIDI wire, and what comes off the wire goes
// to the client, byte for byte, in real time. One client at a time is served; the next
// waits until it has gone. Listens on the local host alone.
//
// Called by the program velmor-virtual and by tests.

#pragma once
#include "virtual/wire.h"
#include <string>

namespace velmor
{

class tcp_server
{
public:
	explicit tcp_server(midi_wire &wire);
	~tcp_server();
	tcp_server(const tcp_server &) = delete;

	// Listen; port 0 takes any free one. "" or what went wrong, in words.
	std::string listen(unsigned short port);
	unsigned short port() const { return listening_port; }

	// Serve until stop is called.
	void serve();
	// From any thread, and from a signal handler.
	void stop();

private:
	void accept_client();
	void from_client();
	void to_client();
	void close_client();
	void wake();

	midi_wire &wire;
	int listener = -1, client = -1;
	int wake_pipe[2] = { -1, -1 };
	int reader = 0;         // on the wire, while a client is there
	machine::bytes pending; // for the client, not taken by its socket yet
	unsigned short listening_port = 0;
	volatile bool stopped = false;
};

} // namespace velmor
