// velmor_tcp.cpp - a TCP connection in place of the MIDI ports
//
// The far end forwards bytes to a sampler and back. There is no framing: the
// bytes are those of the wire, and an answer ends at its first 0xF7. What
// follows that byte stays in the connection for the next exchange.
//
// A far end that hangs, breaks off or floods ends the exchange, never the program:
// every wait runs the interface and has an end. The bridge stays on until the user
// turns it off.
//
// Knows nothing of: the messages.

#include "src/controls.h"
#include "src/velmor.h"
#include <algorithm>
#include <array>
#include <cmath>

namespace velmor
{

int use_tcp = 0;
int tcp_socket = -1;
char tcp_address[256] = "192.168.0.10";
u16 tcp_port = 9999;

static constexpr double connect_seconds = 5;
static constexpr double byte_seconds = 10 / 31250.0; // the wire behind the far end
static constexpr double slack_seconds = 2;           // for the network and the far end

static bool connecting = false, sending = false;
// The last answer did not come in time, so what comes now may still be that one.
static bool late_answer = false;

// ---- On and off -------------------------------------------------------------------------

static bool wait_until_connected(int handle)
{
	const double deadline = host.clock->counter() + connect_seconds;
	int state = host.net->connected(handle);
	while (state == 0 && host.clock->counter() < deadline) {
		host.ui->pump(100);
		state = host.net->connected(handle);
	}
	return state > 0;
}

static bool connect_tcp(int *handle)
{
	if (host.net->connect(tcp_address, tcp_port, handle) != 0)
		return false;
	log_line("[D] Starting TCP (%s:%d) SOCKET DONE...\r\n", tcp_address, tcp_port);
	if (wait_until_connected(*handle))
		return true;
	host.net->close(*handle);
	return false;
}

void switch_on_tcp()
{
	if (use_tcp || connecting) {
		log_line("TCP already turned on\r\n");
		return;
	}
	log_line("[D] Starting TCP (%s:%d)\r\n", tcp_address, tcp_port);
	log_line("[D] Starting TCP (%s:%d) WSASTARTUP DONE...\r\n", tcp_address, tcp_port);
	int handle = -1;
	connecting = true;
	const bool made = connect_tcp(&handle);
	connecting = false;
	if (!made) {
		show_box("WARNING", "Failed to connect IP (SOCKET)");
		return;
	}
	log_line("[D] TCP-Socket connected!\r\n");
	host.ui->set_text(window_sampler, sampler_tcp_status, "USING TCP");
	tcp_socket = handle;
	late_answer = false;
	use_tcp = 1;
}

void switch_off_tcp()
{
	if (use_tcp) {
		host.net->close(tcp_socket);
		tcp_socket = -1;
		use_tcp = 0;
	}
	host.ui->set_text(window_sampler, sampler_tcp_status, "USING MIDI");
}

// ---- Traffic ------------------------------------------------------------------------------

// Throw away an answer that came too late, so that it is not taken for the next one.
static void drop_late_answer()
{
	std::array<u8, 256> bytes;
	for (int i = 0; late_answer && i < 256; i++)
		if (host.net->receive(tcp_socket, bytes.data(), bytes.size()) <= 0)
			break;
	late_answer = false;
}

static bool send_before(std::span<const u8> bytes, double deadline)
{
	while (use_tcp && !bytes.empty()) {
		const long taken = host.net->send(tcp_socket, bytes.data(), bytes.size());
		if (taken < 0)
			return false;
		bytes = bytes.subspan(std::min(static_cast<std::size_t>(taken), bytes.size()));
		if (bytes.empty() || host.clock->counter() >= deadline)
			break;
		if (taken == 0)
			host.ui->pump(100);
	}
	return bytes.empty();
}

bool send_tcp(std::span<const u8> bytes)
{
	// Waiting runs interface events; a message among them must not land inside this one.
	if (!use_tcp || sending)
		return false;
	sending = true;
	drop_late_answer();
	const double wire = static_cast<double>(bytes.size()) * byte_seconds;
	const bool sent = send_before(bytes, host.clock->counter() + wire + slack_seconds);
	sending = false;
	if (!sent)
		log_line("[W] TCP: message not taken by %s:%d\r\n", tcp_address, tcp_port);
	return sent;
}

int receive_tcp(u8 *input, int capacity)
{
	const double began = host.clock->counter();
	// Whole seconds, as on the MIDI ports: two to three without a byte end the answer.
	double quiet = std::floor(began) + slack_seconds + 1;
	const double end = quiet + capacity * byte_seconds + slack_seconds;
	late_answer = true;
	int count = 0;
	while (use_tcp && count < capacity) {
		const long got = host.net->receive(tcp_socket, input + count, 1);
		if (got < 0)
			return count;
		const double now = host.clock->counter();
		if (got > 0) {
			quiet = std::floor(now) + slack_seconds + 1;
			if (input[count++] != 0xF7)
				continue;
			late_answer = false;
			return count;
		}
		const double rest = std::min(quiet, end) - now;
		if (rest <= 0)
			return count;
		host.ui->pump(static_cast<int>(std::ceil(std::min(rest * 1000, 100.0))));
	}
	return count;
}

} // namespace velmor
