// test_virtual_demo.cpp - demo contents that a musician could use, and the TCP server
//
// The server runs in real time without wire delay; the test only ever waits for bytes.

#include "tests/support/test_host.h"
#include "virtual/demo_content.h"
#include "virtual/tcp_server.h"
#include <arpa/inet.h>
#include <netinet/in.h>
#include <set>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace velmor
{

using machine::bytes;

static void check_contents(const s1000_machine &m)
{
	std::set<std::string> names;
	for (const stored_sample &s : m.samples) {
		const std::string name = machine::get_name(s.header, 3);
		EXPECT_TRUE(names.insert(name).second) << name << " twice";
		EXPECT_EQ(name.find_first_of("?."), name.npos) << name;
		const double seconds = s.words.size() / (s.header[1] ? 44100.0 : 22050.0);
		EXPECT_GE(seconds, 0.099) << name;
		EXPECT_LE(seconds, 0.301) << name;
		const auto [low, high] = std::minmax_element(s.words.begin(), s.words.end());
		EXPECT_GT(std::max<int>(-*low, *high), 25000) << name << " is loud enough";
		if (s.header[19] != 0)
			continue;
		// Where the loop jumps back, the wave goes on as it would have.
		const u32 last = machine::get_number(s.header, 38, 4);
		const u32 first = last - machine::get_number(s.header, 44, 4);
		ASSERT_LT(last, s.words.size()) << name;
		EXPECT_LT(std::abs(s.words[first] - s.words[last]), 3000) << name;
	}
	for (const stored_program &p : m.programs) {
		EXPECT_EQ(p.common[42], p.keygroups.size());
		for (const bytes &k : p.keygroups) {
			EXPECT_LE(k[3], k[4]);
			EXPECT_TRUE(names.count(machine::get_name(k, 34)))
				<< machine::get_name(p.common, 3) << " plays an unknown sample";
		}
	}
}

TEST(virtual_demo, holds_sounds_that_its_programs_play)
{
	s1000_machine modern(s1000_model::s3000, 0), old(s1000_model::s1000, 0);
	fill_demo(modern);
	fill_demo(old);
	EXPECT_EQ(modern.programs.size(), 4u);
	EXPECT_EQ(modern.samples.size(), 8u);
	EXPECT_EQ(old.programs.size(), 2u);
	EXPECT_EQ(old.samples.size(), 4u);
	check_contents(modern);
	check_contents(old);
}

TEST(virtual_demo, holds_sounds_of_12_bits_on_an_s900)
{
	s900_machine m(s900_model::s900), big(s900_model::s950);
	fill_demo(m);
	fill_demo(big);
	EXPECT_EQ(m.programs.size(), 3u);
	EXPECT_EQ(big.programs.size(), 4u);
	std::set<std::string> names = { "" };
	for (const s900_sample &s : big.samples) {
		const std::string name = s900_machine::get_name(s.header, 0);
		EXPECT_TRUE(names.insert(name).second) << name << " twice";
		EXPECT_LT(name.size(), 10u);
		const auto [low, high] = std::minmax_element(s.words.begin(), s.words.end());
		EXPECT_GE(*low, -2048) << name;
		EXPECT_GT(std::max<int>(-*low, *high), 1500) << name << " is loud enough";
		const u32 first = machine::get_number(s.header, 32, 4);
		const u32 last = first + machine::get_number(s.header, 36, 4);
		ASSERT_LT(last, s.words.size()) << name;
		EXPECT_LT(std::abs(s.words[first] - s.words[last]), 200) << name;
	}
	for (const s900_program &p : big.programs)
		for (const bytes &k : p.keygroups) {
			EXPECT_LE(k[1], k[0]);
			EXPECT_TRUE(names.count(s900_machine::get_name(k, 24)));
			EXPECT_TRUE(names.count(s900_machine::get_name(k, 46)));
		}
	// STRINGS: keys 59 to 36, velocity switch 84, 45 70 90 62, names at 131 and 175.
	const bytes strings = big.answer(hex("F0 47 0A 02 40 02 00 F7"));
	ASSERT_EQ(strings.size(), 85u + 280);
	EXPECT_EQ(strings[53], 2);
	EXPECT_EQ(bytes(strings.begin() + 83, strings.begin() + 97),
		hex("3B 00 24 00 54 00 2D 00 46 00 5A 00 3E 00"));
	EXPECT_EQ(strings[119], 4);
	EXPECT_EQ(strings[145], 'P');
	EXPECT_EQ(bytes({ strings[171], strings[189], strings[215], strings[223] }),
		hex("50 46 50 60"));
}

TEST(virtual_demo, can_be_as_full_as_a_benchmark_wants)
{
	s1000_machine m(s1000_model::s3000, 0);
	fill_for_benchmark(m, 100, 8, 200, 400);
	EXPECT_EQ(m.programs.size(), 100u);
	EXPECT_EQ(m.samples.size(), 200u);
	EXPECT_EQ(machine::get_name(m.programs[99].common, 3), "PROGRAM 100");
	EXPECT_EQ(machine::get_name(m.programs[99].keygroups[7], 34 + 72), "SAMPLE 200");
	EXPECT_GT(m.blocks_free(), 0u);
	EXPECT_GT(m.words_free(), 0u);
}

// ---- The TCP server ----------------------------------------------------------------

struct served : ::testing::Test {
	timeline time;
	s1000_machine m{ s1000_model::s3000, 5 };
	midi_wire wire{ time, m.on_wire(), no_wire_delay };
	tcp_server server{ wire };
	std::thread thread;

	served()
	{
		EXPECT_EQ(server.listen(0), "");
		time.run_in_real_time();
		thread = std::thread([this] { server.serve(); });
	}
	~served() override
	{
		server.stop();
		thread.join();
		time.stop();
	}

	int connect_client()
	{
		const int file = socket(AF_INET, SOCK_STREAM, 0);
		sockaddr_in address = {};
		address.sin_family = AF_INET;
		address.sin_port = htons(server.port());
		address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
		EXPECT_EQ(connect(file, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
		const timeval limit = { .tv_sec = 10, .tv_usec = 0 };
		setsockopt(file, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
		return file;
	}
	static bytes ask(int file, const bytes &message)
	{
		EXPECT_EQ(::send(file, message.data(), message.size(), MSG_NOSIGNAL),
			static_cast<ssize_t>(message.size()));
		bytes answer;
		for (u8 b = 0; b != 0xF7 && recv(file, &b, 1, 0) == 1;)
			answer.push_back(b);
		return answer;
	}
};

TEST_F(served, one_client_after_the_other)
{
	const bytes request = hex("F0 47 05 00 48 F7");
	const bytes answer = hex("F0 47 05 01 48 00 02 7E 0F 7E 0F 00 00 00 02 00 00 00 02 05 F7");
	for (int i = 0; i < 3; i++) {
		const int file = connect_client();
		EXPECT_EQ(ask(file, request), answer);
		EXPECT_EQ(ask(file, request), answer);
		close(file);
	}
	const int first = connect_client(), second = connect_client();
	EXPECT_EQ(ask(first, request), answer);
	close(first);
	EXPECT_EQ(ask(second, request), answer) << "the next one is served when the first has gone";
	close(second);
}

TEST_F(served, and_a_pulled_cable_ends_the_connection)
{
	wire.set_fault({ .kind = wire_fault_kind::unplugged });
	const int file = connect_client();
	EXPECT_EQ(ask(file, hex("F0 47 05 00 48 F7")), hex("F0 47 05 01 48 00 02 7E 0F 7E"));
	close(file);
}

TEST_F(served, and_says_that_a_port_is_in_use)
{
	tcp_server other(wire);
	EXPECT_EQ(other.listen(server.port()),
		"port " + std::to_string(server.port()) + " is in use by another program");
}

} // namespace velmor
