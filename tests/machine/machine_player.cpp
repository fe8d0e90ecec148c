// machine_player.cpp - a MIDI file over the kernel's own MIDI
//
// The player has the first of two virtual interfaces with a cable each way, on the real clock;
// the test reads the second one through ALSA itself. A soft synth is the port that vanishes.
// Runs inside the virtual machine only.

#include "platform/backends.h"
#include "src/controls.h"
#include "src/velmor_midi.h"
#include "tests/machine/far_end.h"
#include "tests/support/midi_files.h"
#include <cmath>
#include <optional>

namespace
{

using namespace velmor;

// The player's timer, run by waits as an event loop would.
struct running_timer {
	double period, next;
	void (*tick)();
};
std::optional<running_timer> timer;
std::function<void()> in_waits;

void run_for(int milliseconds)
{
	const double now = host.clock->counter();
	const double rest = timer ? std::clamp(timer->next - now, 0.0, 0.1) : 0.1;
	headless_ui.pump(std::min(milliseconds, static_cast<int>(std::ceil(rest * 1000))));
	if (in_waits)
		in_waits();
	if (!timer || host.clock->counter() < timer->next)
		return;
	timer->next = std::max(timer->next + timer->period, host.clock->counter());
	timer->tick();
}

class player : public host_test
{
protected:
	ui_service ui;

	void SetUp() override
	{
		ui = *host.ui;
		ui.pump = run_for;
		ui.wake = headless_ui.wake;
		ui.start_timer = [](int milliseconds, void (*tick)()) {
			const double period = milliseconds / 1000.0;
			timer = { period, host.clock->counter() + period, tick };
			return 1;
		};
		ui.stop_timer = [](int) { timer.reset(); };
		host.ui = &ui;
		host.clock = &posix_clock;
		host.midi = &alsa_midi;
		start_time = posix_clock.time_of_day();
		alsa_midi.on_arrival(ui.wake);
		reload_midi_setup(false);
	}
	void TearDown() override
	{
		in_waits = nullptr;
		free_midi(&current_midi_file);
		close_midi_output();
	}

	// Two tracks of notes, one each every 8 ticks; what goes out in all. No status comes twice in
	// a row, as the kernel would leave out the second.
	std::vector<u8> load(int notes)
	{
		std::vector<u8> both[2], out;
		for (int i = 0; i < notes; i++)
			for (int t = 0; t < 2; t++) {
				const std::vector<u8> note = { static_cast<u8>(
								       (i % 2 ? 0x80 : 0x90) | t),
					static_cast<u8>(i % 128), 64 };
				both[t] = both[t] + std::vector<u8>{ 8 } + note;
				out = out + note;
			}
		const std::string path = h.config + "\\song.mid";
		h.put_content(path, midi_head(2, 960) + midi_track(both[0]) + midi_track(both[1]));
		EXPECT_TRUE(open_midi_file(window_midi_files, path.c_str()));
		return out;
	}
	void play()
	{
		play_really_all(window_midi_files, &current_midi_file);
		const double end = host.clock->counter() + 60;
		while (song_plays() && host.clock->counter() < end)
			host.ui->pump(100);
		EXPECT_FALSE(song_plays());
	}
};

// By channel, as two events of one tick go out track by track.
std::vector<u8> of_channel(const std::vector<u8> &bytes, int channel)
{
	std::vector<u8> out;
	for (std::size_t i = 0; i + 2 < bytes.size(); i += 3)
		if ((bytes[i] & 0xEF) == (0x80 | channel))
			out.insert(out.end(), { bytes[i], bytes[i + 1], bytes[i + 2] });
	return out;
}

TEST_F(player, a_song_arrives_byte_by_byte_and_in_its_time)
{
	raw_far_end far("hw:0,1");
	selected_midi_out_interface = 0;
	const std::vector<u8> expected = load(250);
	const double began = host.clock->counter();
	play();
	EXPECT_GE(host.clock->counter() - began, 2.0);
	const std::vector<u8> came = far.read(expected.size() + 45);
	ASSERT_EQ(came.size(), expected.size() + 45);
	const std::vector<u8> song(came.begin(), came.end() - 45);
	for (int channel = 0; channel < 2; channel++)
		EXPECT_EQ(of_channel(song, channel), of_channel(expected, channel));
	for (std::size_t channel = 0; channel < 15; channel++)
		EXPECT_EQ(std::vector<u8>(came.end() - 45 + 3 * static_cast<long>(channel),
				  came.end() - 42 + 3 * static_cast<long>(channel)),
			(std::vector<u8>{ static_cast<u8>(0xB0 | channel), 123, 0 }));
	EXPECT_TRUE(h.boxes.empty());
}

TEST_F(player, a_port_that_vanishes_ends_the_song_in_words)
{
	auto synth = std::make_unique<soft_synth>("Soft Synth");
	reload_midi_setup(false);
	for (int i = 0; i < midi_out_interfaces; i++)
		if (midi_out_interface[static_cast<std::size_t>(i)] == "Soft Synth: synth")
			selected_midi_out_interface = i;
	ASSERT_GE(selected_midi_out_interface, 0);
	load(2000);
	const double began = host.clock->counter();
	in_waits = [&] {
		if (host.clock->counter() > began + 1)
			synth.reset();
	};
	play();
	EXPECT_LT(host.clock->counter() - began, 10); // of 16
	EXPECT_EQ(h.boxes,
		(std::vector<shown_box>{ { "MIDI-PLAY midiOutLongMsg failed!", "FATAL" } }));
	EXPECT_FALSE(timer);
	EXPECT_TRUE(h.enabled[std::pair(+window_midi_files, +player_play)]);
	EXPECT_EQ(the_outHandle, -1);
}

} // namespace
