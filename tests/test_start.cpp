// test_start.cpp - what a start does, and in which order

#include "src/controls.h"
#include "tests/support/transcript_midi.h"

namespace velmor
{

static int woken_by;

class start : public host_test
{
protected:
	std::string screen() { return h.texts[{ window_main, main_log }]; }
};

TEST_F(start, reads_the_settings_and_fills_the_windows)
{
	transcript_midi t(h, "");
	net_service net = *host.net;
	usb_service usb = *host.usb;
	woken_by = 0;
	net.on_arrival = [](void (*wake)()) { woken_by += wake == host.ui->wake; };
	usb.on_arrival = net.on_arrival;
	host.net = &net;
	host.usb = &usb;
	h.put_content(h.root + "/velmor.log", hex("41 42"));
	h.put_content(h.config + "\\rack.sampler", std::vector<u8>(536));
	h.settings = { { "midi_in", "0" }, { "midi_out", "1" } };
	h.time.run_until(5);
	get_sampler(model_z4)->ctrl = nullptr;
	start_velmor();
	EXPECT_TRUE(get_sampler(model_z4)->ctrl) << "the panels are built";
	EXPECT_EQ(start_time, host.clock->time_of_day());
	// The device lists were known before the settings, which found one output only.
	EXPECT_EQ(selected_midi_in_interface, 0);
	EXPECT_EQ(selected_midi_out_interface, -1);
	EXPECT_EQ(h.boxes,
		(std::vector<shown_box>{ { "Stored MIDI-OUT Interface not connected any longer! "
					   "Returning to defaults.",
			"WARNING" } }));
	EXPECT_EQ(conf_sampler, std::vector<std::string>{ "rack" });
	EXPECT_EQ((h.lists[{ window_main, main_sampler_list }]), conf_sampler);
	EXPECT_TRUE((h.visible[{ window_main, 0 }]));
	EXPECT_EQ(current_sampler, nullptr);
	EXPECT_TRUE(t.wake == host.ui->wake);
	EXPECT_EQ(woken_by, 2) << "network and USB wake the windows too";
	// The log of the run before is gone; devices were told before the screen log began.
	const std::vector<std::string> log = h.log();
	ASSERT_EQ(log.size(), 3u);
	EXPECT_EQ(log[0], "[D] MIDI-OUT[0] --> NAME: [transcript out](0,0) Version: 0\r\n");
	EXPECT_EQ(log[2], "[I] WINFSP started...\r\n");
	EXPECT_EQ(screen().substr(0, 21), "[I] VELMOR started\r\n0");
	EXPECT_EQ(screen().find("MIDI-OUT"), std::string::npos);
}

TEST_F(start, in_user_mode_writes_no_log_file)
{
	h.put_content(h.root + "/velmor.log", hex("41 42"));
	h.settings = { { "run_mode", "user" } };
	start_velmor();
	EXPECT_FALSE(h.content(h.root + "/velmor.log"));
	EXPECT_EQ(screen(), "[I] VELMOR started\r\n0.0000: [I] WINFSP started...\r\n");
}

TEST_F(start, without_a_midi_service_ends)
{
	const midi_service *before = host.midi;
	host.midi = nullptr;
	EXPECT_THROW(start_velmor(), process_ended);
	EXPECT_EQ(h.boxes, (std::vector<shown_box>{ { "Cannot init WRT!", "FATAL" } }));
	host.midi = before;
}

} // namespace velmor
