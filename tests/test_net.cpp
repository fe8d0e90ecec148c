// test_net.cpp - TCP on the loopback: far ends that refuse, hang, close, reset and flood

#include "platform/backends.h"
#include <arpa/inet.h>
#include <atomic>
#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{

using namespace velmor;
using namespace std::chrono_literals;
using steady = std::chrono::steady_clock;

std::atomic<int> wakes = 0;

bool within(std::chrono::milliseconds limit, const std::function<bool()> &reached)
{
	for (const auto end = steady::now() + limit; steady::now() < end;) {
		if (reached())
			return true;
		std::this_thread::sleep_for(1ms);
	}
	return reached();
}

// The other end of the cable: a socket that listens on a free port of the loopback.
class net : public testing::Test
{
protected:
	int listener = -1, far_end = -1, handle = -1;
	unsigned short port = 0;

	void SetUp() override
	{
		wakes = 0;
		posix_net.on_arrival([] { wakes++; });
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
		ASSERT_TRUE(within(1000ms, [this] { return posix_net.connected(handle) == 1; }));
	}
	// What comes until so many bytes are there, or the connection answers with a code.
	std::string receive(std::size_t count, long *code)
	{
		std::string got;
		within(2000ms, [&] {
			unsigned char block[4096];
			*code = posix_net.receive(handle, block, sizeof block);
			if (*code > 0)
				got.append(reinterpret_cast<char *>(block),
					static_cast<std::size_t>(*code));
			return *code < 0 || got.size() >= count;
		});
		return got;
	}
};

TEST_F(net, bytes_go_both_ways_and_arrival_wakes)
{
	connect_both();
	EXPECT_TRUE(within(1000ms, [] { return wakes > 0; })) << "the connection woke nobody";
	const unsigned char request[] = { 0xF0, 0x47, 0x00, 0x00, 0x48, 0xF7 };
	EXPECT_EQ(posix_net.send(handle, request, sizeof request), 6);
	unsigned char seen[6] = {};
	ASSERT_EQ(recv(far_end, seen, sizeof seen, MSG_WAITALL), 6);
	EXPECT_EQ(std::string(seen, seen + 6), std::string(request, request + 6));

	unsigned char nothing[4];
	EXPECT_EQ(posix_net.receive(handle, nothing, sizeof nothing), 0);
	const int before = wakes;
	ASSERT_EQ(::send(far_end, "\xF0\x00\xF7", 3, 0), 3);
	EXPECT_TRUE(within(1000ms, [before] { return wakes > before; }));
	long code;
	EXPECT_EQ(receive(3, &code), std::string("\xF0\x00\xF7", 3));

	const int rested = wakes;
	std::this_thread::sleep_for(20ms);
	EXPECT_EQ(wakes, rested) << "the watcher is busy with nothing";
}

TEST_F(net, a_port_where_nobody_listens_refuses)
{
	close(listener);
	listener = -1;
	ASSERT_EQ(posix_net.connect("127.0.0.1", port, &handle), 0);
	ASSERT_TRUE(within(1000ms, [this] { return posix_net.connected(handle) < 0; }));
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

// With its queue full, a listener that accepts nobody leaves an attempt without an answer.
TEST_F(net, a_far_end_that_hangs_keeps_nobody_waiting)
{
	std::vector<int> queue;
	int hanging = -1;
	for (int i = 0; i < 6 && hanging < 0; i++) {
		ASSERT_EQ(posix_net.connect("127.0.0.1", port, &handle), 0);
		queue.push_back(handle);
		if (!within(50ms, [this] { return posix_net.connected(handle) != 0; }))
			hanging = handle;
	}
	handle = -1;
	ASSERT_GE(hanging, 0) << "the queue never filled";
	const auto begin = steady::now();
	unsigned char byte = 0xF0;
	EXPECT_EQ(posix_net.connected(hanging), 0);
	EXPECT_EQ(posix_net.send(hanging, &byte, 1), 0);
	EXPECT_EQ(posix_net.receive(hanging, &byte, 1), 0);
	for (const int attempt : queue)
		posix_net.close(attempt);
	EXPECT_LT(steady::now() - begin, 500ms);
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
	EXPECT_TRUE(within(1000ms, [&] { return posix_net.send(handle, &byte, 1) < 0; }));
}

TEST_F(net, a_reset_is_a_code_and_wakes)
{
	connect_both();
	const linger at_once = { 1, 0 };
	setsockopt(far_end, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
	const int before = wakes;
	hang_up();
	EXPECT_TRUE(within(1000ms, [before] { return wakes > before; }));
	long code;
	receive(1, &code);
	EXPECT_EQ(code, -ECONNRESET);
	unsigned char byte = 0xF0;
	EXPECT_EQ(posix_net.send(handle, &byte, 1), -ECONNRESET);
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
	const int before = wakes;
	std::vector<char> taken(sent);
	EXPECT_EQ(recv(far_end, taken.data(), sent, MSG_WAITALL), static_cast<ssize_t>(sent));
	EXPECT_TRUE(within(1000ms, [before] { return wakes > before; })) << "room wakes";
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
