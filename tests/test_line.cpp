// test_line.cpp - what the transports report of the line, and how it is told

#include "src/usbqx.h"
#include "src/velmor_work.h"
#include "tests/support/transcript_midi.h"
#include "tests/support/transcript_usb.h"
#include <cstdlib>
#include <ctime>

namespace velmor
{

class line : public host_test
{
protected:
	line()
	{
		forget_line();
		the_line.answers = the_line.failures = 0;
	}
	~line() override
	{
		forget_line();
		usbdev.clear();
	}
	// Answers and failures since the start.
	std::pair<unsigned, unsigned> counts() { return { the_line.answers, the_line.failures }; }
};

using seen = std::pair<unsigned, unsigned>;
static const u8 message[] = { 0xF0, 0x47, 0x00, 0x00, 0x48, 0xF7 };

static void exchange(int wanted = 1)
{
	u8 input[100];
	int length = sizeof input;
	send_midi_string_ex(message, sizeof message, input, &length, wanted);
}

TEST_F(line, midi_tells_of_every_exchange_that_wanted_an_answer)
{
	transcript_midi t(h, R"(
		> F0 47 00 00 48 F7
		< F0 47 00 01 48 F7
		# silence
		> F0 47 00 00 48 F7
		< nothing
		# an answer that breaks off
		> F0 47 00 00 48 F7
		< F0 47 00
		# no answer is wanted
		> F0 47 00 00 48 F7
	)");
	exchange();
	EXPECT_EQ(counts(), (seen{ 1, 0 }));
	EXPECT_EQ(the_line.answered_at, host.clock->time_of_day());
	exchange();
	EXPECT_EQ(counts(), (seen{ 1, 1 }));
	EXPECT_TRUE(the_line.failing);
	EXPECT_EQ(the_line.why, "No answer came.");
	exchange();
	EXPECT_EQ(counts(), (seen{ 1, 2 }));
	exchange(0);
	EXPECT_EQ(counts(), (seen{ 1, 2 }));
	close_midi_output();
	for (int *fault : { &t.faults.open_output, &t.faults.open_input }) {
		*fault = 16;
		exchange();
		*fault = 0;
	}
	EXPECT_EQ(counts(), (seen{ 1, 4 }));
	EXPECT_FALSE(the_line.why.empty());
}

TEST_F(line, a_bridge_that_takes_nothing_is_a_line_that_failed)
{
	use_tcp = 1;
	exchange();
	use_tcp = 0;
	EXPECT_EQ(counts(), (seen{ 0, 1 }));
}

TEST_F(line, the_usb_tells_of_the_loaded_sampler_alone)
{
	transcript_usb usb(h, 0x5F);
	usbdev.resize(1);
	_usbdev &device = usbdev[0];
	copy_text(device.device_path, "usb:1");
	copy_text(device.usb_name, "Rack");
	device.device_type = model_z4;
	device.pipe_id = 2;
	device.packet_size = 64;
	device.device_handle = no_usb_handle;
	auto ask = [&](const char *played, const char *loaded) {
		forget_unread_usb();
		h.use_sampler(model_z4, 0, loaded);
		usb.play(played);
		const u8 command[] = { 0x04, 0x04 };
		u8 answer[64];
		int received = 0;
		if (open_midi_usb(&device))
			_sysex_midi_usb(&device, command, sizeof command, answer, sizeof answer,
				&received, "x.cpp", 1);
		close_midi_usb(&device);
	};
	const char *answered =
		"> 03 01\n > 10 07 00 F0 47 5F 00 04 04 F7\n < F0 47 5F 00 52 04 04 00 01 F7\n";
	const char *silent = "> 03 01\n > 10 07 00 F0 47 5F 00 04 04 F7\n ! silence\n";
	ask(answered, "Rack");
	EXPECT_EQ(counts(), (seen{ 1, 0 }));
	ask(silent, "Rack");
	EXPECT_EQ(counts(), (seen{ 1, 1 }));
	EXPECT_FALSE(the_line.why.empty());
	ask(answered, "another");
	ask(silent, "another");
	EXPECT_EQ(counts(), (seen{ 1, 1 }));
	usb.open_result = usb_denied;
	ask("", "another");
	EXPECT_EQ(counts(), (seen{ 1, 1 }));
	ask("", "Rack");
	EXPECT_EQ(counts(), (seen{ 1, 2 }));
}

TEST_F(line, is_told_in_words_for_each_way)
{
	setenv("TZ", "UTC", 1);
	tzset();
	EXPECT_EQ(report_line().text, "No sampler loaded");
	h.use_sampler(model_s3000, 3);
	midi_out_interface = { "Out A" };
	midi_in_interface = { "In B" };
	selected_midi_out_interface = selected_midi_in_interface = 0;
	EXPECT_EQ(report_line().text, "test sampler · MIDI 'Out A' · channel 3 · not asked yet");
	EXPECT_EQ(silence_words(loaded_reached()), "No answer on exclusive channel 3 through 'Out "
						   "A' and 'In B'. Is the sampler on? Its "
						   "channel stands on its own MIDI page.");
	line_answered();
	EXPECT_EQ(
		report_line().text, "test sampler · MIDI 'Out A' · channel 3 · answered 01:46:40");
	EXPECT_EQ(report_line().role, text_role::good);
	h.time.run_until(61);
	line_silent("x");
	EXPECT_EQ(
		report_line().text, "test sampler · MIDI 'Out A' · channel 3 · no answer 01:47:41");
	EXPECT_EQ(report_line().role, text_role::careful);
	use_tcp = 1;
	EXPECT_EQ(way_text(loaded_reached()), "TCP 192.168.0.10:9999");
	use_tcp = 0;
	h.use_sampler(model_z4, 3, "Z8 LIVE");
	EXPECT_EQ(way_text(loaded_reached()), "USB 'Z8 LIVE'");
	EXPECT_EQ(silence_words(loaded_reached()), "No answer from 'Z8 LIVE' on the USB. Is the "
						   "sampler on, and its cable plugged in?");
	midi_out_interface.clear();
	midi_in_interface.clear();
	selected_midi_out_interface = selected_midi_in_interface = -1;
	unsetenv("TZ");
	tzset();
}

} // namespace velmor
