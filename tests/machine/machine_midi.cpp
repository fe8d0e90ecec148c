// machine_midi.cpp - the ALSA back end against the kernel's own raw MIDI and sequencer
//
// Two virtual interfaces with a cable each way: the program has the first one, the test
// holds the second one through ALSA itself. Runs inside the virtual machine only.

#include "platform/backends.h"
#include "tests/machine/far_end.h"
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

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

std::vector<u8> exclusive(std::size_t size)
{
	std::vector<u8> bytes(size);
	for (std::size_t i = 0; i < size; i++)
		bytes[i] = static_cast<u8>(i * 7 & 0x7F);
	bytes[0] = 0xF0;
	bytes[1] = 0x47;
	bytes[size - 1] = 0xF7;
	return bytes;
}

int place_of(const std::string &name, bool output)
{
	const int count = output ? alsa_midi.outputs() : alsa_midi.inputs();
	for (int i = 0; i < count; i++)
		if (name == (output ? alsa_midi.output_name(i) : alsa_midi.input_name(i)))
			return i;
	return -1;
}

class midi : public testing::Test
{
protected:
	int out = 0, in = 0;
	std::vector<u8> buffer = std::vector<u8>(1 << 20);

	void SetUp() override
	{
		alsa_midi.on_arrival([] { wakes++; });
		alsa_midi.outputs();
		alsa_midi.inputs();
	}
	void TearDown() override
	{
		alsa_midi.close_output(out);
		alsa_midi.close_input(in);
	}
	void open_first()
	{
		ASSERT_EQ(alsa_midi.open_output(0, &out), 0);
		ASSERT_EQ(alsa_midi.open_input(0, &in), 0);
	}
	void send(const std::vector<u8> &bytes)
	{
		ASSERT_EQ(alsa_midi.write(out, bytes.data(), bytes.size()), 0);
	}
	// What came, once it is so much or nothing more comes.
	std::vector<u8> arrived(std::size_t count)
	{
		within(10s, [&] { return alsa_midi.received(in) >= count; });
		return { buffer.begin(), buffer.begin() + alsa_midi.received(in) };
	}
};

TEST_F(midi, raw_ports_come_first_and_are_listed_once)
{
	std::vector<std::string> names;
	for (int i = 0, count = alsa_midi.outputs(); i < count; i++)
		names.push_back(alsa_midi.output_name(i));
	for (const std::string &name : names)
		std::printf("output %s\n", name.c_str());
	ASSERT_GE(names.size(), 2u);
	EXPECT_NE(names[0].find("VirMIDI"), std::string::npos);
	EXPECT_NE(names[1].find("VirMIDI"), std::string::npos);
	for (std::size_t i = 2; i < names.size(); i++)
		EXPECT_EQ(names[i].find("VirMIDI"), std::string::npos) << "a mirror is listed";
	for (const std::string &name : names)
		EXPECT_EQ(name.find("System"), std::string::npos);
	EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
	EXPECT_STREQ(alsa_midi.output_name(1000), "");
}

TEST_F(midi, thirty_thousand_bytes_each_way)
{
	raw_far_end far("hw:0,1");
	open_first();
	const std::vector<u8> message = exclusive(30000);
	wakes = 0;
	send(message);
	EXPECT_EQ(far.read(message.size()), message);
	EXPECT_TRUE(within(2s, [this] { return alsa_midi.leaving(out) == 0; }));
	EXPECT_GT(wakes, 0);

	ASSERT_EQ(alsa_midi.arm(in, buffer.data(), buffer.size()), 0);
	wakes = 0;
	far.write(message);
	EXPECT_EQ(arrived(message.size()), message);
	EXPECT_GT(wakes, 0);
	EXPECT_EQ(alsa_midi.input_error(in), 0);
}

TEST_F(midi, parts_of_a_message_and_other_traffic_pass_as_they_are)
{
	raw_far_end far("hw:0,1");
	open_first();
	std::vector<u8> all;
	for (std::size_t size = 2; size < 600; size += 37) {
		const std::vector<u8> message = exclusive(size + 1);
		for (std::size_t at = 0; at < message.size(); at += size / 3 + 1) {
			const std::size_t count = std::min(size / 3 + 1, message.size() - at);
			ASSERT_EQ(alsa_midi.write(out, message.data() + at, count), 0);
		}
		all.insert(all.end(), message.begin(), message.end());
		const u8 note[] = { 0x90, 60, 100, 0xF8, 0x80, 60, 0, 0xFE };
		send({ note, note + 8 });
		all.insert(all.end(), note, note + 8);
	}
	EXPECT_EQ(far.read(all.size()), all);
}

TEST_F(midi, an_input_takes_what_comes_after_arm_and_fits)
{
	raw_far_end far("hw:0,1");
	open_first();
	far.write(exclusive(500));
	std::this_thread::sleep_for(200ms);
	ASSERT_EQ(alsa_midi.arm(in, buffer.data(), 100), 0);
	EXPECT_EQ(alsa_midi.received(in), 0u) << "it came before arm";
	buffer[100] = 0xAA;
	const std::vector<u8> message = exclusive(300);
	far.write(message);
	EXPECT_EQ(arrived(100), std::vector<u8>(message.begin(), message.begin() + 100));
	std::this_thread::sleep_for(50ms);
	EXPECT_EQ(alsa_midi.received(in), 100u);
	EXPECT_EQ(buffer[100], 0xAA);
	alsa_midi.disarm(in);
	far.write(message);
	std::this_thread::sleep_for(50ms);
	EXPECT_EQ(buffer[0], 0xF0);
	EXPECT_EQ(alsa_midi.received(in), 0u);
}

// A listener runs on while exchanges come and go on the same port.
TEST_F(midi, a_listener_gets_all_of_it_beside_an_armed_buffer)
{
	raw_far_end far("hw:0,1");
	open_first();
	int ear = 0;
	far.write(exclusive(50)); // before anybody listens
	std::this_thread::sleep_for(200ms);
	ASSERT_EQ(alsa_midi.open_input(0, &ear), 0) << "the port is open already";
	ASSERT_EQ(alsa_midi.listen(ear, 1000), 0);
	const std::vector<u8> first = exclusive(300), second = exclusive(200);
	ASSERT_EQ(alsa_midi.arm(in, buffer.data(), buffer.size()), 0);
	far.write(first);
	EXPECT_EQ(arrived(300), first);
	alsa_midi.disarm(in);
	far.write(second);
	std::vector<u8> heard(2000);
	std::size_t count = 0;
	within(5s, [&] {
		count += alsa_midi.take(ear, heard.data() + count, 70);
		return count >= 500;
	});
	heard.resize(count);
	std::vector<u8> both = first;
	both.insert(both.end(), second.begin(), second.end());
	EXPECT_EQ(heard, both);
	EXPECT_EQ(alsa_midi.received(in), 0u);
	EXPECT_EQ(alsa_midi.input_error(ear), 0);
	// One that is not asked in time has lost something and says so; the other has not.
	ASSERT_EQ(alsa_midi.arm(in, buffer.data(), buffer.size()), 0);
	far.write(exclusive(1100));
	EXPECT_EQ(arrived(1100).size(), 1100u);
	EXPECT_NE(alsa_midi.input_error(ear), 0);
	EXPECT_EQ(alsa_midi.input_error(in), 0);
	alsa_midi.close_input(ear);
	ASSERT_EQ(alsa_midi.arm(in, buffer.data(), buffer.size()), 0) << "the port stays open";
	far.write(second);
	EXPECT_EQ(arrived(200), second);
}

TEST_F(midi, a_port_in_use_says_so)
{
	std::vector<int> handles;
	int code = 0;
	while (!code && handles.size() < 100) {
		int handle = 0;
		code = alsa_midi.open_output(0, &handle);
		if (!code)
			handles.push_back(handle);
	}
	for (const int handle : handles)
		alsa_midi.close_output(handle);
	ASSERT_NE(code, 0) << "the interface never ran out of ports";
	EXPECT_NE(
		std::string(alsa_midi.error_text(code)).find("another program"), std::string::npos)
		<< alsa_midi.error_text(code);
	EXPECT_EQ(alsa_midi.open_output(0, &out), 0) << "closing gave nothing back";
}

// A receiver in a process of its own, which can be stopped. It answers, when asked for it,
// with its error and its count.
class stopped_receiver
{
public:
	struct result {
		int error;
		std::size_t count;
	};

	explicit stopped_receiver(int input)
	{
		EXPECT_EQ(pipe(ask), 0);
		EXPECT_EQ(pipe(tell), 0);
		child = fork();
		if (child == 0)
			receive(input);
		char ready;
		EXPECT_EQ(::read(tell[0], &ready, 1), 1);
		kill(child, SIGSTOP);
		int status;
		waitpid(child, &status, WUNTRACED);
	}
	// Let it run again and see what it has got in the end.
	result go_on()
	{
		kill(child, SIGCONT);
		EXPECT_EQ(::write(ask[1], "?", 1), 1);
		result seen = { -1, 0 };
		EXPECT_EQ(::read(tell[0], &seen, sizeof seen), static_cast<ssize_t>(sizeof seen));
		int status;
		waitpid(child, &status, 0);
		return seen;
	}

private:
	pid_t child = -1;
	int ask[2], tell[2];

	[[noreturn]] void receive(int input) const
	{
		static std::vector<u8> bytes(1 << 20);
		int handle = 0;
		char word = 'r';
		if (alsa_midi.inputs() <= input || alsa_midi.open_input(input, &handle) ||
			alsa_midi.arm(handle, bytes.data(), bytes.size()) ||
			::write(tell[1], &word, 1) != 1 || ::read(ask[0], &word, 1) != 1)
			_exit(1);
		std::this_thread::sleep_for(500ms);
		const result seen = { alsa_midi.input_error(handle), alsa_midi.received(handle) };
		if (::write(tell[1], &seen, sizeof seen) != static_cast<ssize_t>(sizeof seen))
			_exit(1);
		_exit(0);
	}
};

TEST_F(midi, a_reader_that_is_late_loses_nothing_that_the_kernel_holds)
{
	stopped_receiver receiver(0);
	raw_far_end far("hw:0,1");
	for (int i = 0; i < 5; i++)
		far.write(exclusive(10000));
	const auto seen = receiver.go_on();
	EXPECT_EQ(seen.error, 0);
	EXPECT_EQ(seen.count, 50000u);
}

TEST_F(midi, an_overrun_is_reported)
{
	stopped_receiver receiver(0);
	raw_far_end far("hw:0,1");
	for (int i = 0; i < 20; i++)
		far.write(exclusive(10000));
	const auto seen = receiver.go_on();
	EXPECT_LT(seen.count, 200000u);
	ASSERT_NE(seen.error, 0);
	EXPECT_NE(std::string(alsa_midi.error_text(seen.error)).find("lost"), std::string::npos);
}

// ---- The sequencer ---------------------------------------------------------------------

TEST_F(midi, a_soft_synth_gets_a_long_message_whole)
{
	soft_synth synth("Soft Synth");
	const int place = place_of("Soft Synth: synth", true);
	ASSERT_GE(place, 2) << "listed behind the raw ports";
	ASSERT_EQ(alsa_midi.open_output(place, &out), 0);
	std::vector<u8> all = exclusive(30000);
	const u8 more[] = { 0xF8, 0x90, 60, 100, 62, 101, 0xC0, 5, 0xF0, 0x7E, 0xFE, 0x01, 0xF7,
		0xE0, 1, 2 };
	all.insert(all.end(), more, more + sizeof more);
	// In parts, so that the message begins in one and ends in another.
	for (std::size_t at = 0; at < all.size(); at += 7001)
		ASSERT_EQ(alsa_midi.write(out, all.data() + at,
				  std::min<std::size_t>(7001, all.size() - at)),
			0);
	// The second note has its status byte again, and what is real time stands for itself.
	std::vector<u8> expected = exclusive(30000);
	const u8 seen[] = { 0xF8, 0x90, 60, 100, 0x90, 62, 101, 0xC0, 5, 0xF0, 0x7E, 0xFE, 0x01,
		0xF7, 0xE0, 1, 2 };
	expected.insert(expected.end(), seen, seen + sizeof seen);
	EXPECT_EQ(synth.read(expected.size()), expected);
	EXPECT_EQ(synth.overruns(), 0);
	EXPECT_TRUE(within(5s, [this] { return alsa_midi.leaving(out) == 0; }));
}

TEST_F(midi, a_long_message_from_a_soft_synth_arrives_whole)
{
	soft_synth synth("Soft Synth");
	ASSERT_EQ(alsa_midi.open_input(place_of("Soft Synth: synth", false), &in), 0);
	ASSERT_EQ(alsa_midi.arm(in, buffer.data(), buffer.size()), 0);
	const std::vector<u8> message = exclusive(30000);
	synth.write(message);
	EXPECT_EQ(arrived(message.size()), message);
	EXPECT_EQ(alsa_midi.input_error(in), 0);
}

TEST_F(midi, an_overrun_of_the_sequencer_is_reported)
{
	soft_synth synth("Soft Synth");
	stopped_receiver receiver(place_of("Soft Synth: synth", false));
	for (int i = 0; i < 30; i++)
		synth.write(exclusive(10000));
	const auto seen = receiver.go_on();
	EXPECT_NE(seen.error, 0);
	EXPECT_NE(std::string(alsa_midi.error_text(seen.error)).find("lost"), std::string::npos);
}

TEST_F(midi, a_soft_synth_that_ends_is_an_error)
{
	{
		soft_synth synth("Soft Synth");
		ASSERT_EQ(alsa_midi.open_input(place_of("Soft Synth: synth", false), &in), 0);
		ASSERT_EQ(alsa_midi.open_output(place_of("Soft Synth: synth", true), &out), 0);
		ASSERT_EQ(alsa_midi.arm(in, buffer.data(), buffer.size()), 0);
		EXPECT_EQ(alsa_midi.input_error(in), 0);
	}
	EXPECT_TRUE(within(2s, [this] { return alsa_midi.input_error(in) != 0; }));
	const u8 note[] = { 0x90, 60, 100 };
	(void)alsa_midi.write(out, note, 3);
	EXPECT_TRUE(within(2s, [this] { return alsa_midi.leaving(out) < 0; }));
	EXPECT_NE(alsa_midi.write(out, note, 3), 0);
	EXPECT_EQ(place_of("Soft Synth: synth", true), -1);
}

// ---- Unplugging ------------------------------------------------------------------------

// Runs alone, as it takes both interfaces away.
TEST_F(midi, DISABLED_an_interface_that_is_pulled_is_an_error_with_words)
{
	open_first();
	ASSERT_EQ(alsa_midi.arm(in, buffer.data(), buffer.size()), 0);
	wakes = 0;
	ASSERT_EQ(
		std::system("{ echo snd_virmidi.0 >/sys/bus/platform/drivers/snd_virmidi/unbind; }"
			    " >/dev/null 2>&1 &"),
		0);
	EXPECT_TRUE(within(5s, [this] { return alsa_midi.input_error(in) != 0; }));
	EXPECT_TRUE(within(5s, [this] { return alsa_midi.leaving(out) < 0; }));
	EXPECT_GT(wakes, 0);
	const u8 byte = 0xFE;
	const int code = alsa_midi.write(out, &byte, 1);
	EXPECT_NE(std::string(alsa_midi.error_text(code)).find("Plug the interface in again"),
		std::string::npos)
		<< alsa_midi.error_text(code);
	EXPECT_NE(alsa_midi.arm(in, buffer.data(), buffer.size()), 0);
	alsa_midi.close_output(out);
	alsa_midi.close_input(in);
	EXPECT_EQ(place_of("VirMIDI: Virtual Raw MIDI", true), -1);
	EXPECT_NE(alsa_midi.open_output(50, &out), 0);
}

} // namespace
