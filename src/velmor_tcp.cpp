// velmor_tcp.cpp - a TCP connection in place of the MIDI ports
//
// The far end forwards bytes to a sampler and back. There is no framing: the
// bytes are those of the wire, and an answer ends at its first 0xF7. A cable forgets
// what nobody listens to, a connection keeps it: what came since the last exchange is
// thrown away before the next message, or one stray message would shift all later answers.
//
// A far end that hangs, breaks off or floods ends the exchange, never the program:
// every wait runs the interface and has an end. The bridge stays on until the user
// turns it off.
//
// Knows nothing of: the messages.

#include "src/controls.h"
#include "src/velmor_outcome.h"
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

static bool connecting = false, sending = false, receiving = false;
static std::string failure; // of the last message and its answer

const std::string &why_tcp_failed()
{
	return failure;
}

// ---- On and off -------------------------------------------------------------------------

// "" when connected, otherwise why not.
static std::string wait_until_connected(int handle)
{
	const double deadline = host.clock->counter() + connect_seconds;
	int state = host.net->connected(handle);
	while (state == 0 && host.clock->counter() < deadline) {
		host.ui->pump(100);
		state = host.net->connected(handle);
	}
	if (state == 0)
		return format_text(
			tr("There was no answer within %d seconds. Is the far end switched "
			   "on, and on this network?"),
			static_cast<int>(connect_seconds));
	return state > 0 ? "" : tr(host.net->error_text(-state));
}

static bool connect_tcp(int *handle)
{
	std::string wrong;
	if (const int code = host.net->connect(tcp_address, tcp_port, handle)) {
		wrong = tr(host.net->error_text(code));
	} else {
		log_line("[D] Starting TCP (%s:%d) SOCKET DONE...\r\n", tcp_address, tcp_port);
		wrong = wait_until_connected(*handle);
		if (!wrong.empty())
			host.net->close(*handle);
	}
	if (!wrong.empty())
		log_line("[W] TCP (%s:%d): %s\r\n", tcp_address, tcp_port, wrong.c_str());
	return wrong.empty();
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
	use_tcp = 1;
	forget_line();
}

void switch_off_tcp()
{
	if (use_tcp) {
		host.net->close(tcp_socket);
		tcp_socket = -1;
		use_tcp = 0;
		forget_line();
	}
	host.ui->set_text(window_sampler, sampler_tcp_status, "USING MIDI");
}

// ---- Traffic ------------------------------------------------------------------------------

// A far end that never stops sending is not waited for.
static void discard_leftovers()
{
	constexpr long most = 1 << 16;
	std::array<u8, 1024> bytes;
	long all = 0, got = 0;
	do
		all += got =
			std::max(host.net->receive(tcp_socket, bytes.data(), bytes.size()), 0L);
	while (got > 0 && all < most);
	if (all)
		log_line("[D] TCP: %ld bytes that belong to no exchange were discarded\r\n", all);
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
	if (!receiving)
		failure.clear();
	sending = true;
	if (!receiving)
		discard_leftovers();
	const double wire = static_cast<double>(bytes.size()) * byte_seconds;
	const bool sent = send_before(bytes, host.clock->counter() + wire + slack_seconds);
	sending = false;
	if (!sent) {
		log_line("[W] TCP: message not taken by %s:%d\r\n", tcp_address, tcp_port);
		failure = tr("The far end of the TCP bridge does not take the message.");
	}
	return sent;
}

static int receive_before_deadline(u8 *input, int capacity)
{
	const double began = host.clock->counter();
	// Whole seconds, as on the MIDI ports: two to three without a byte end the answer.
	double quiet = std::floor(began) + slack_seconds + 1;
	const double end = quiet + capacity * byte_seconds + slack_seconds;
	int count = 0;
	while (use_tcp && count < capacity) {
		const long got = host.net->receive(tcp_socket, input + count, 1);
		if (got < 0) {
			failure = tr(host.net->error_text(static_cast<int>(-got)));
			log_line("[W] TCP (%s:%d): %s\r\n", tcp_address, tcp_port, failure.c_str());
			return count;
		}
		const double now = host.clock->counter();
		if (got > 0) {
			quiet = std::floor(now) + slack_seconds + 1;
			if (input[count++] == 0xF7)
				return count;
			continue;
		}
		const double rest = std::min(quiet, end) - now;
		if (rest <= 0)
			return count;
		host.ui->pump(static_cast<int>(std::ceil(std::min(rest * 1000, 100.0))));
	}
	return count;
}

int receive_tcp(u8 *input, int capacity)
{
	receiving = true;
	const int count = receive_before_deadline(input, capacity);
	receiving = false;
	return count;
}

void listen_to_tcp()
{
	failure.clear();
	discard_leftovers();
	receiving = true;
}

void stop_listening_to_tcp()
{
	receiving = false;
}

int take_tcp(u8 *bytes, int capacity)
{
	const long got = use_tcp ? host.net->receive(tcp_socket, bytes,
					   static_cast<std::size_t>(std::max(capacity, 0)))
				 : -1;
	if (got >= 0)
		return static_cast<int>(got);
	failure = use_tcp ? tr(host.net->error_text(static_cast<int>(-got)))
			  : tr("The TCP bridge was switched off.");
	return -1;
}

} // namespace velmor
