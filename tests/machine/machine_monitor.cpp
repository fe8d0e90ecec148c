// machine_monitor.cpp - the monitor with its thru on the kernel's own MIDI
//
// The program has the first of two virtual interfaces as its input and its output, the test holds
// the second: what it sends has to come back, at once. Runs inside the virtual machine only.

#include "platform/backends.h"
#include "src/velmor_monitor.h"
#include "src/velmor_window.h"
#include "tests/machine/far_end.h"
#include "tests/support/test_host.h"
#include <algorithm>
#include <chrono>
#include <cstdio>

namespace
{

using namespace velmor;
using steady = std::chrono::steady_clock;

class machine_monitor : public host_test
{
protected:
	machine_monitor()
	{
		host.midi = &alsa_midi;
		host.clock = &posix_clock;
		reload_midi_setup(false);
		selected_midi_in_mon_interface = selected_midi_out_interface = 0;
		monitor_on();
	}
	~machine_monitor() override
	{
		end_monitor();
		close_midi_output();
	}
	void tick()
	{
		for (const auto &[id, timer] : std::map(h.timers))
			timer.tick();
	}
};

TEST_F(machine_monitor, notes_come_back_at_once_and_exclusive_ones_do_not)
{
	ASSERT_TRUE(h.boxes.empty()) << h.boxes[0].text;
	raw_far_end far("hw:0,1");
	std::vector<double> delays;
	for (int i = 0; i < 1000; i++) {
		// Another channel each time: the kernel may leave out a status byte that comes again.
		const std::vector<u8> note = { static_cast<u8>(0x90 | (i & 1)),
			static_cast<u8>(i & 0x7F), 64 };
		const auto began = steady::now();
		far.write(note);
		ASSERT_EQ(far.read(3), note);
		delays.push_back(
			std::chrono::duration<double, std::milli>(steady::now() - began).count());
		if (i % 20 == 0)
			tick();
	}
	std::sort(delays.begin(), delays.end());
	std::printf("thru: median %.3f ms, p99 %.3f ms\n", delays[500], delays[990]);
	EXPECT_LT(delays[990], 200); // an emulated processor; bench_monitor measures a real one
	far.write(hex("F0 47 00 F8 01 F7 80 3C 40 81 3D 41 FE"));
	EXPECT_EQ(far.read(8), hex("F8 80 3C 40 81 3D 41 FE"));
	end_monitor();
	far.write(hex("90 3C 40"));
	EXPECT_TRUE(far.take(200).empty());
	int sent = 0;
	for (const std::string &text : h.log())
		sent += text.starts_with("[MONITOR]SENT");
	EXPECT_EQ(sent, 1004);
	EXPECT_TRUE(h.logged("RECEIVE MONITOR stopped..."));
}

// A dump that is written in parts keeps together whatever is played meanwhile.
TEST_F(machine_monitor, a_message_in_parts_stays_whole)
{
	raw_far_end far("hw:0,1");
	const u8 head[] = { 0xF0, 0x47 }, end[] = { 0x01, 0xF7 };
	ASSERT_EQ(alsa_midi.write(the_outHandle, head, 2), 0);
	far.write(hex("90 3C 40"));
	// The kernel may keep the first part until the last one comes.
	std::vector<u8> come = far.take(300);
	EXPECT_EQ(std::count(come.begin(), come.end(), 0x90), 0);
	ASSERT_EQ(alsa_midi.write(the_outHandle, end, 2), 0);
	const std::vector<u8> rest = far.read(7 - std::min<std::size_t>(come.size(), 7));
	come.insert(come.end(), rest.begin(), rest.end());
	EXPECT_EQ(come, hex("F0 47 01 F7 90 3C 40"));
}

} // namespace
