// net_posix.cpp - TCP connections that never block
//
// One watcher thread for all connections sleeps in the kernel until something
// happens to one of them and then calls wake. It is told of changes only (edge
// triggered), so data that nobody fetches does not keep it busy. It touches no
// record of a connection; those belong to the main thread.
//
// Codes are errno values, and one more for a far end that closed in good order.

#include "platform/net.h"
#include "platform/words.h"
#include <arpa/inet.h>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace velmor
{

static constexpr int far_end_closed = 10001;

struct connection {
	bool up = false;
	int failed = 0; // code; a socket tells its error once, so it is kept
};

// Open connections by their socket. Main thread only.
static std::map<int, connection> connections;
static std::atomic<void (*)()> wake_up = nullptr;

static void watch(int watched)
{
	for (;;) {
		epoll_event event;
		const int n = epoll_wait(watched, &event, 1, -1);
		if (n < 0 && errno != EINTR)
			return;
		void (*wake)() = wake_up;
		if (n > 0 && wake)
			wake();
	}
}

// The set of watched sockets; the first use starts the watcher, which lives as long as the
// process.
static int watched_sockets()
{
	static const int watched = [] {
		const int fresh = epoll_create1(EPOLL_CLOEXEC);
		if (fresh >= 0)
			std::thread(watch, fresh).detach();
		return fresh;
	}();
	return watched;
}

static int start_connecting(int socket, const char *address, unsigned short port)
{
	sockaddr_in to = {};
	to.sin_family = AF_INET;
	to.sin_port = htons(port);
	if (inet_pton(AF_INET, address, &to.sin_addr) != 1)
		return EINVAL;
	// A request is a few bytes that wait for their answer: never hold them back for more.
	const int at_once = 1;
	setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &at_once, sizeof at_once);
	epoll_event events = {};
	events.events = EPOLLIN | EPOLLOUT | EPOLLRDHUP | EPOLLET;
	if (epoll_ctl(watched_sockets(), EPOLL_CTL_ADD, socket, &events) != 0)
		return errno;
	const int result = ::connect(socket, reinterpret_cast<const sockaddr *>(&to), sizeof to);
	return result == 0 || errno == EINPROGRESS || errno == EINTR ? 0 : errno;
}

static int connect_to(const char *address, unsigned short port, int *handle)
{
	const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
	if (socket < 0)
		return errno;
	if (const int code = start_connecting(socket, address, port)) {
		::close(socket);
		return code;
	}
	connections[socket] = {};
	*handle = socket;
	return 0;
}

static int connected(int handle)
{
	const auto found = connections.find(handle);
	if (found == connections.end())
		return -EBADF;
	connection &c = found->second;
	if (c.failed)
		return -c.failed;
	if (c.up)
		return 1;
	pollfd ready = { .fd = handle, .events = POLLOUT, .revents = 0 };
	if (poll(&ready, 1, 0) <= 0)
		return 0;
	socklen_t size = sizeof c.failed;
	if (getsockopt(handle, SOL_SOCKET, SO_ERROR, &c.failed, &size) != 0)
		c.failed = errno;
	c.up = !c.failed;
	return c.up ? 1 : -c.failed;
}

// The outcome of a transfer that moved nothing: 0 to try again later, or minus the code.
static long nothing_moved(connection &c, int code)
{
	if (code == EAGAIN || code == EWOULDBLOCK || code == EINTR)
		return 0;
	c.failed = code;
	return -code;
}

static long send_some(int handle, const unsigned char *bytes, std::size_t count)
{
	const int state = connected(handle);
	if (state <= 0 || count == 0)
		return state < 0 ? state : 0;
	const ssize_t n = ::send(handle, bytes, count, MSG_NOSIGNAL);
	return n > 0 ? n : nothing_moved(connections[handle], n < 0 ? errno : EAGAIN);
}

static long receive_some(int handle, unsigned char *bytes, std::size_t capacity)
{
	const auto found = connections.find(handle);
	if (found == connections.end())
		return -EBADF;
	const int state = connected(handle);
	if (state == 0 || capacity == 0)
		return 0;
	// A connection that broke still hands over what came before.
	const ssize_t n = ::recv(handle, bytes, capacity, 0);
	if (n > 0)
		return n;
	if (state < 0)
		return state;
	return nothing_moved(found->second, n < 0 ? errno : far_end_closed);
}

static void close_connection(int handle)
{
	if (connections.erase(handle))
		::close(handle);
}

struct code_words {
	int code;
	const char *words;
};

static constexpr code_words words_of[] = {
	{ far_end_closed, own("The far end closed the connection.") },
	{ EINVAL, own("The address is no IPv4 address such as 192.168.0.10.") },
	{ ECONNREFUSED, own("The far end refuses the connection. Does the bridge run there, on "
			    "this port?") },
	{ ECONNRESET, own("The far end broke the connection off.") },
	{ EPIPE, own("The far end broke the connection off.") },
	{ ETIMEDOUT, own("The far end does not answer. Is it switched on, and on this network?") },
	{ EHOSTUNREACH,
		own("The far end does not answer. Is it switched on, and on this network?") },
	{ ENETUNREACH, own("There is no network that leads to this address.") },
};

static const char *error_text(int code)
{
	static char text[256];
	const char *words = nullptr;
	for (const code_words &row : words_of)
		if (row.code == code)
			words = row.words;
	if (!words)
		words = strerrordesc_np(code);
	std::snprintf(text, sizeof text, "%s", words ? words : "Unknown network error");
	return text;
}

extern const net_service posix_net;
const net_service posix_net = {
	.connect = connect_to,
	.connected = connected,
	.send = send_some,
	.receive = receive_some,
	.close = close_connection,
	.on_arrival = [](void (*wake)()) { wake_up = wake; },
	.error_text = error_text,
};

} // namespace velmor
