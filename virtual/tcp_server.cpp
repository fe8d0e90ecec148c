// tcp_server.cpp - one virtual machine behind a TCP port, for the byte bridge

#include "virtual/tcp_server.h"
#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace velmor
{

static constexpr std::size_t most_pending = 1 << 20;

static void set_nonblocking(int file)
{
	fcntl(file, F_SETFL, fcntl(file, F_GETFL) | O_NONBLOCK);
	fcntl(file, F_SETFD, FD_CLOEXEC);
}

static void close_file(int *file)
{
	if (*file >= 0)
		close(*file);
	*file = -1;
}

// The wire's thread, a signal and stop wake the loop by a byte in a pipe.
tcp_server::tcp_server(midi_wire &w) : wire(w)
{
	if (pipe(wake_pipe) == 0) {
		set_nonblocking(wake_pipe[0]);
		set_nonblocking(wake_pipe[1]);
	}
	wire.on_change([this] { wake(); });
}

tcp_server::~tcp_server()
{
	wire.on_change(nullptr);
	close_client();
	close_file(&listener);
	close_file(&wake_pipe[0]);
	close_file(&wake_pipe[1]);
}

void tcp_server::wake()
{
	const char byte = 0;
	// A full pipe wakes as well.
	[[maybe_unused]] const ssize_t written = write(wake_pipe[1], &byte, 1);
}

void tcp_server::stop()
{
	stopped = true;
	const int code = errno;
	wake();
	errno = code;
}

std::string tcp_server::listen(unsigned short port)
{
	if (wake_pipe[0] < 0)
		return "cannot make a pipe";
	listener = socket(AF_INET, SOCK_STREAM, 0);
	if (listener < 0)
		return std::string("no socket: ") + std::strerror(errno);
	set_nonblocking(listener);
	const int on = 1;
	setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
	sockaddr_in address = {};
	address.sin_family = AF_INET;
	address.sin_port = htons(port);
	address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
	socklen_t size = sizeof address;
	if (bind(listener, reinterpret_cast<sockaddr *>(&address), size) || ::listen(listener, 4) ||
		getsockname(listener, reinterpret_cast<sockaddr *>(&address), &size)) {
		const int code = errno;
		close_file(&listener);
		if (code == EADDRINUSE)
			return "port " + std::to_string(port) + " is in use by another program";
		return "cannot listen on port " + std::to_string(port) + ": " + std::strerror(code);
	}
	listening_port = ntohs(address.sin_port);
	return "";
}

void tcp_server::accept_client()
{
	client = accept(listener, nullptr, nullptr);
	if (client < 0)
		return;
	set_nonblocking(client);
	const int on = 1;
	setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
	reader = wire.attach();
}

void tcp_server::close_client()
{
	if (client < 0)
		return;
	close_file(&client);
	wire.detach(reader);
	pending.clear();
}

void tcp_server::from_client()
{
	std::uint8_t bytes[4096];
	const ssize_t count = recv(client, bytes, sizeof bytes, 0);
	if (count > 0)
		wire.send({ bytes, static_cast<std::size_t>(count) });
	else if (count == 0 || (errno != EAGAIN && errno != EINTR))
		close_client();
}

// A client that does not read is let go before its backlog grows without end.
void tcp_server::to_client()
{
	std::uint8_t bytes[4096];
	while (const std::size_t count = wire.take(reader, bytes, sizeof bytes))
		pending.insert(pending.end(), bytes, bytes + count);
	if (pending.empty())
		return;
	const ssize_t sent = send(client, pending.data(), pending.size(), MSG_NOSIGNAL);
	if (sent > 0)
		pending.erase(pending.begin(), pending.begin() + sent);
	else if (sent < 0 && errno != EAGAIN && errno != EINTR)
		close_client();
	if (pending.size() > most_pending)
		close_client();
}

void tcp_server::serve()
{
	while (!stopped) {
		pollfd files[3] = { { wake_pipe[0], POLLIN, 0 },
			{ client < 0 ? listener : -1, POLLIN, 0 },
			{ client, static_cast<short>(pending.empty() ? POLLIN : POLLIN | POLLOUT),
				0 } };
		if (poll(files, 3, -1) < 0 && errno != EINTR)
			return;
		char drained[64];
		while (read(wake_pipe[0], drained, sizeof drained) > 0)
			;
		if (client >= 0 && files[2].revents & (POLLIN | POLLHUP | POLLERR))
			from_client();
		if (client >= 0)
			to_client();
		if (client >= 0 && wire.unplugged())
			close_client();
		if (client < 0 && files[1].revents & POLLIN)
			accept_client();
	}
	close_client();
}

} // namespace velmor
