// test_net.cpp - TCP on the loopback: far ends that refuse, hang, close, reset and flood

#include "platform/backends.h"
#include <arpa/inet.h>
#include <condition_variable>
#include <functional>
#include <gtest/gtest.h>
#include <mutex>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace
{

using namespace velmor;
using bytes = std::basic_string<unsigned char>;

// Every wait of these tests ends with the event that it waits for; the limit is for a service
// that forgets to wake.
std::mutex lock;
std::condition_variable woken;
long wakes = 0;

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
		posix_net.on_arrival([] {
			const std::lock_guard hold(lock);
			wakes++;
			woken.notify_all();
		});
		listener = socket(AF_INET, SOCK_STREAM, 0);
		sockaddr_in address = {};
		address.sin_family = AF_INET;
		address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
		socklen_t size = sizeof address;
		auto *general = reinterpret_cast<sockaddr *>(&address);
		ASSERT_EQ(bind(listener, general, size) | listen(listener, 1), 0);
		getsockname(listener, general, &size);
		port = ntohs(address.sin_port);
	}
	void TearDown() override
	{
		posix_net.close(handle);
		close(far_end);
		close(listener);
		posix_net.on_arrival(nullptr);
	}
	void connect_both()
	{
		ASSERT_EQ(posix_net.connect("127.0.0.1", port, &handle), 0);
		far_end = accept(listener, nullptr, nullptr);
		ASSERT_TRUE(happens([this] { return posix_net.connected(handle) == 1; }));
	}
	long send(const bytes &b) { return posix_net.send(handle, b.data(), b.size()); }
	// What comes until so many bytes are there, or the connection answers with a code.
	bytes receive(std::size_t count, long *code)
	{
		bytes got;
		happens([&] {
			unsigned char block[4096];
			while ((*code = posix_net.receive(handle, block, sizeof block)) > 0)
				got.append(block, static_cast<std::size_t>(*code));
			return *code < 0 || got.size() >= count;
		});
		return got;
	}
	std::string words(long code) { return posix_net.error_text(static_cast<int>(-code)); }
};

TEST_F(net, bytes_go_both_ways_at_once_and_each_arrival_wakes)
{
	connect_both();
	int at_once = 0;
	socklen_t size = sizeof at_once;
	getsockopt(handle, IPPROTO_TCP, TCP_NODELAY, &at_once, &size);
	EXPECT_TRUE(at_once) << "a request is held back for more";
	const long before = wakes_now();
	for (unsigned char i = 0; i < 100; i++) {
		const bytes request = { 0xF0, 0x47, 0, i, 0xF7 };
		unsigned char seen[5];
		EXPECT_EQ(posix_net.receive(handle, seen, 5), 0);
		ASSERT_EQ(send(request), 5);
		ASSERT_EQ(recv(far_end, seen, 5, MSG_WAITALL), 5);
		EXPECT_EQ(bytes(seen, 5), request);
		const long quiet = wakes_now();
		ASSERT_EQ(::send(far_end, request.data(), 5, 0), 5);
		ASSERT_TRUE(happens([=] { return wakes_now() > quiet; }));
		long code;
		EXPECT_EQ(receive(5, &code), request);
	}
	EXPECT_LT(wakes_now() - before, 1000) << "the watcher is busy with nothing";
}

TEST_F(net, a_port_where_nobody_listens_and_what_is_no_address_have_their_own_words)
{
	close(listener);
	ASSERT_EQ(posix_net.connect("127.0.0.1", port, &handle), 0);
	ASSERT_TRUE(happens([this] { return posix_net.connected(handle) < 0; }));
	EXPECT_EQ(posix_net.connected(handle), -ECONNREFUSED) << "it is told again";
	EXPECT_EQ(send({ 1 }), -ECONNREFUSED);
	EXPECT_EQ(words(-ECONNREFUSED), "The far end refuses the connection. Does the bridge run "
					"there, on this port?");
	int none = -1;
	for (const char *text : { "", "sampler.local", "300.1.1.1", "127.0.0.1 ", "::1" })
		EXPECT_EQ(posix_net.connect(text, port, &none), EINVAL) << text;
	EXPECT_EQ(words(-EINVAL), "The address is no IPv4 address such as 192.168.0.10.");
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
	unsigned char byte;
	EXPECT_EQ(posix_net.connected(handle), 0);
	EXPECT_EQ(send({ 1 }), 0);
	EXPECT_EQ(posix_net.receive(handle, &byte, 1), 0);
	posix_net.close(queued);
}

// Closed in good order, or by a reset: it wakes, is told, and leaves what came before.
TEST_F(net, a_far_end_that_goes_hands_over_what_came_before)
{
	for (const bool reset : { false, true }) {
		connect_both();
		ASSERT_EQ(::send(far_end, "last", 4, 0), 4);
		const linger at_once = { reset, 0 };
		setsockopt(far_end, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
		close(far_end);
		EXPECT_TRUE(!reset || happens([this] { return send({ 1 }) < 0; }));
		long code;
		EXPECT_EQ(receive(100, &code), bytes({ 'l', 'a', 's', 't' }));
		EXPECT_EQ(words(code), reset ? "The far end broke the connection off."
					     : "The far end closed the connection.");
		// Writing to it ends no process, and is told in time.
		EXPECT_TRUE(happens([this] { return send({ 1 }) < 0; }));
		posix_net.close(handle);
		EXPECT_LT(posix_net.connected(handle), 0) << "a closed handle does nothing";
		EXPECT_LT(send({ 1 }), 0);
		EXPECT_EQ(receive(1, &code), bytes());
	}
}

TEST_F(net, a_far_end_that_reads_nothing_gets_what_fits)
{
	connect_both();
	const bytes block(65536, 0x55);
	long sent = 0, n;
	while ((n = send(block)) > 0 && sent < 100000000)
		sent += n;
	EXPECT_EQ(n, 0) << "it never filled";
	const long before = wakes_now();
	std::vector<char> taken(static_cast<std::size_t>(sent));
	EXPECT_EQ(recv(far_end, taken.data(), taken.size(), MSG_WAITALL), sent);
	EXPECT_TRUE(happens([=] { return wakes_now() > before; })) << "room wakes";
	EXPECT_GT(send(block), 0);
}

TEST_F(net, a_flood_arrives_whole_and_in_order)
{
	connect_both();
	bytes flood(4 << 20, 0);
	for (std::size_t i = 0; i < flood.size(); i++)
		flood[i] = static_cast<unsigned char>(i * 31 >> 3);
	std::thread sender([&] { (void)!::send(far_end, flood.data(), flood.size(), 0); });
	long code;
	EXPECT_TRUE(receive(flood.size(), &code) == flood);
	sender.join();
}

} // namespace
