// test_net.cpp - TCP on the loopback: far ends that refuse, hang, close, reset and flood

#include "platform/backends.h"
#include <arpa/inet.h>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <gtest/gtest.h>
#include <mutex>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{

using namespace velmor;
// Wakes so far. Every wait of these tests ends with the event that it waits for; the limit is
// for a service that forgets to wake.
std::mutex lock;
std::condition_variable woken;
long wakes = 0;

void wake()
{
	const std::lock_guard hold(lock);
	wakes++;
	woken.notify_all();
}

long wakes_now()
{
	const std::lock_guard hold(lock);
	return wakes;
}

// Whether it comes to pass. What is looked at changes with a wake alone.
bool happens(const std::function<bool()> &reached)
{
	for (;;) {
		const long seen = wakes_now();
		if (reached())
			return true;
		std::unique_lock hold(lock);
		if (!woken.wait_for(hold, std::chrono::seconds(20), [=] { return wakes != seen; }))
			return false;
	}
}

// The other end of the cable: a socket that listens on a free port of the loopback.
class net : public testing::Test
{
protected:
	int listener = -1, far_end = -1, handle = -1;
	unsigned short port = 0;

	void SetUp() override
	{
		posix_net.on_arrival(wake);
		listener = socket(AF_INET, SOCK_STREAM, 0);
		sockaddr_in address = {};
		address.sin_family = AF_INET;
		address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
		ASSERT_EQ(
			bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
		ASSERT_EQ(listen(listener, 1), 0);
		socklen_t size = sizeof address;
		getsockname(listener, reinterpret_cast<sockaddr *>(&address), &size);
		port = ntohs(address.sin_port);
	}
	void TearDown() override
	{
		if (handle >= 0)
			posix_net.close(handle);
		hang_up();
		close(listener);
		posix_net.on_arrival(nullptr);
	}
	void hang_up()
	{
		if (far_end >= 0)
			close(far_end);
		far_end = -1;
	}
	void connect_both()
	{
		ASSERT_EQ(posix_net.connect("127.0.0.1", port, &handle), 0);
		far_end = accept(listener, nullptr, nullptr);
		ASSERT_TRUE(happens([this] { return posix_net.connected(handle) == 1; }));
	}
	void reset()
	{
		const linger at_once = { 1, 0 };
		setsockopt(far_end, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
		hang_up();
	}
	// What comes until so many bytes are there, or the connection answers with a code.
	std::string receive(std::size_t count, long *code)
	{
		std::string got;
		happens([&] {
			unsigned char block[4096];
			while ((*code = posix_net.receive(handle, block, sizeof block)) > 0)
				got.append(reinterpret_cast<char *>(block),
					static_cast<std::size_t>(*code));
			return *code < 0 || got.size() >= count;
		});
		return got;
	}
};

TEST_F(net, bytes_go_both_ways_and_each_arrival_wakes)
{
	connect_both();
	int at_once = 0;
	socklen_t size = sizeof at_once;
	getsockopt(handle, IPPROTO_TCP, TCP_NODELAY, &at_once, &size);
	EXPECT_TRUE(at_once) << "a request is held back for more";
	const long before = wakes_now();
	constexpr int rounds = 100;
	for (int i = 0; i < rounds; i++) {
		const std::string request = { '\xF0', '\x47', '\0', static_cast<char>(i), '\xF7' };
		unsigned char bytes[5];
		EXPECT_EQ(posix_net.receive(handle, bytes, 5), 0);
		ASSERT_EQ(posix_net.send(handle,
				  reinterpret_cast<const unsigned char *>(request.data()), 5),
			5);
		ASSERT_EQ(recv(far_end, bytes, 5, MSG_WAITALL), 5);
		EXPECT_EQ(std::string(bytes, bytes + 5), request);
		const long seen = wakes_now();
		ASSERT_EQ(::send(far_end, request.data(), 5, 0), 5);
		ASSERT_TRUE(happens([=] { return wakes_now() > seen; }));
		long code;
		EXPECT_EQ(receive(5, &code), request);
	}
	EXPECT_LT(wakes_now() - before, 10 * rounds) << "the watcher is busy with nothing";
}

TEST_F(net, a_port_where_nobody_listens_refuses)
{
	close(listener);
	listener = -1;
	ASSERT_EQ(posix_net.connect("127.0.0.1", port, &handle), 0);
	ASSERT_TRUE(happens([this] { return posix_net.connected(handle) < 0; }));
	EXPECT_EQ(posix_net.connected(handle), -ECONNREFUSED) << "it is told again";
	EXPECT_EQ(posix_net.send(handle, nullptr, 0), -ECONNREFUSED);
	EXPECT_STREQ(posix_net.error_text(ECONNREFUSED), "Connection refused");
}

TEST_F(net, what_is_no_dotted_address_is_refused_at_once)
{
	for (const char *text : { "", "sampler.local", "300.1.1.1", "127.0.0.1 ", "::1" })
		EXPECT_EQ(posix_net.connect(text, port, &handle), EINVAL) << text;
	handle = -1;
}

// A listener that accepts nobody has room for one attempt more than it was told to queue; the
// next one is left without an answer.
TEST_F(net, a_far_end_that_hangs_keeps_nobody_waiting)
{
	ASSERT_EQ(listen(listener, 0), 0);
	int queued = -1;
	ASSERT_EQ(posix_net.connect("127.0.0.1", port, &queued), 0);
	ASSERT_TRUE(happens([=] { return posix_net.connected(queued) == 1; }));
	ASSERT_EQ(posix_net.connect("127.0.0.1", port, &handle), 0);
	unsigned char byte = 0xF0;
	EXPECT_EQ(posix_net.connected(handle), 0);
	EXPECT_EQ(posix_net.send(handle, &byte, 1), 0);
	EXPECT_EQ(posix_net.receive(handle, &byte, 1), 0);
	posix_net.close(queued);
}

TEST_F(net, a_far_end_that_closes_hands_over_what_came_before)
{
	connect_both();
	ASSERT_EQ(::send(far_end, "last", 4, 0), 4);
	hang_up();
	long code;
	EXPECT_EQ(receive(100, &code), "last");
	EXPECT_LT(code, 0);
	EXPECT_STREQ(
		posix_net.error_text(static_cast<int>(-code)), "The far end closed the connection");
	// Writing to it ends no process, and is told in time.
	unsigned char byte = 0xF0;
	EXPECT_TRUE(happens([&] { return posix_net.send(handle, &byte, 1) < 0; }));
}

TEST_F(net, a_reset_is_a_code_wakes_and_leaves_what_came_before)
{
	connect_both();
	ASSERT_EQ(::send(far_end, "last", 4, 0), 4);
	reset();
	unsigned char byte = 0xF0;
	EXPECT_TRUE(happens([&] { return posix_net.send(handle, &byte, 1) == -ECONNRESET; }));
	long code;
	EXPECT_EQ(receive(100, &code), "last");
	EXPECT_EQ(code, -ECONNRESET);
}

TEST_F(net, a_far_end_that_reads_nothing_gets_what_fits)
{
	connect_both();
	const std::vector<unsigned char> block(65536, 0x55);
	std::size_t sent = 0;
	long n = 1;
	for (int i = 0; i < 2000 && n > 0; i++) {
		n = posix_net.send(handle, block.data(), block.size());
		sent += n > 0 ? static_cast<std::size_t>(n) : 0;
	}
	EXPECT_EQ(n, 0) << "it never filled";
	const long before = wakes_now();
	std::vector<char> taken(sent);
	EXPECT_EQ(recv(far_end, taken.data(), sent, MSG_WAITALL), static_cast<ssize_t>(sent));
	EXPECT_TRUE(happens([=] { return wakes_now() > before; })) << "room wakes";
	EXPECT_GT(posix_net.send(handle, block.data(), 10), 0);
}

TEST_F(net, a_flood_arrives_whole_and_in_order)
{
	connect_both();
	constexpr std::size_t count = 4 << 20;
	std::string flood(count, '\0');
	for (std::size_t i = 0; i < count; i++)
		flood[i] = static_cast<char>(i * 31 >> 3);
	std::thread sender([&] { (void)!::send(far_end, flood.data(), count, 0); });
	long code;
	EXPECT_TRUE(receive(count, &code) == flood);
	sender.join();
}

TEST_F(net, a_closed_handle_does_nothing)
{
	connect_both();
	posix_net.close(handle);
	unsigned char byte;
	EXPECT_LT(posix_net.connected(handle), 0);
	EXPECT_LT(posix_net.send(handle, &byte, 1), 0);
	EXPECT_LT(posix_net.receive(handle, &byte, 1), 0);
	posix_net.close(handle);
	handle = -1;
}

} // namespace
