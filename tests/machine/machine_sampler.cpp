// machine_sampler.cpp - the driver of the S1000 family over the kernel's own MIDI
//
// An S3000 is served on the second of two virtual interfaces with a cable each way; the
// system has the first one, through the real back end and the real clock. Runs inside
// the virtual machine only.

#include "platform/backends.h"
#include "src/akais1000.h"
#include "src/waveqx.h"
#include "tests/machine/far_end.h"
#include "tests/support/test_host.h"
#include "virtual/s1000.h"
#include <algorithm>
#include <atomic>
#include <thread>

namespace
{

using namespace velmor;

constexpr u8 exclusive_channel = 5;

// A sampler at the other end of the cable, on a thread of its own.
class served_sampler
{
public:
	explicit served_sampler(s1000_machine *sampler) : machine(sampler), far("hw:0,1")
	{
		worker = std::thread([this] {
			while (!ending)
				serve();
		});
	}
	~served_sampler() { stop(); }

	// Until here the sampler is the worker's; after it, the test's.
	void stop()
	{
		ending = true;
		if (worker.joinable())
			worker.join();
	}

	std::atomic<int> answers_left = 1 << 30; // then it falls silent

private:
	s1000_machine *machine;
	raw_far_end far;
	std::atomic<bool> ending = false;
	std::thread worker;
	std::vector<u8> message;

	void serve()
	{
		for (const u8 byte : far.take(10)) {
			if (byte == 0xF0)
				message.clear();
			message.push_back(byte);
			if (byte != 0xF7)
				continue;
			const auto answer = machine->answer(message);
			if (!answer.empty() && answers_left-- > 0)
				far.write(answer);
		}
	}
};

// The sampler after whose last answer the user presses Stop.
static served_sampler *watched = nullptr;

// Waits pass in real time, ended by bytes that arrive.
static ui_service ui_in_real_time()
{
	ui_service ui = *host.ui;
	ui.pump = [](int max_ms) {
		headless_ui.pump(max_ms);
		if (watched && watched->answers_left <= 0)
			stop_progress();
	};
	ui.wake = headless_ui.wake;
	return ui;
}

class sampler : public host_test
{
protected:
	s1000_machine s3000{ s1000_model::s3000, exclusive_channel };
	ui_service ui;
	std::vector<std::int16_t> words;

	void SetUp() override
	{
		ui = ui_in_real_time();
		host.ui = &ui;
		host.clock = &posix_clock;
		host.midi = &alsa_midi;
		start_time = posix_clock.time_of_day();
		alsa_midi.on_arrival(ui.wake);
		reload_midi_setup(false);
		selected_midi_out_interface = 0;
		selected_midi_in_interface = 0;
		h.use_sampler(model_s3000, exclusive_channel);
		for (int i = 0; i < 800; i++)
			words.push_back(static_cast<std::int16_t>(i * 2654435761u >> 16));
		s3000.add_sample("GRAND C3", 44100, words);
		s3000.add_sample("STRINGS A2", 22050, { 1, 2, 3, 4 });
		s3000.add_program("GRAND", 2);
	}
	void TearDown() override { close_midi_output(); }

	// What a test that went well never shows.
	void expect_no_boxes()
	{
		for (const shown_box &box : h.boxes)
			ADD_FAILURE() << box.caption << ": " << box.text;
	}
};

TEST_F(sampler, status_and_lists_are_read)
{
	served_sampler served(&s3000);
	_dev_status *status = current_sampler->status;
	akai_s2000_getstatus(0, exclusive_channel, status);
	EXPECT_EQ(status->status, 1);
	akai_s1000_getsamplelist(0, exclusive_channel, status);
	ASSERT_EQ(status->samples, 2);
	EXPECT_STREQ(status->sample[0].name, "GRAND C3");
	EXPECT_STREQ(status->sample[1].name, "STRINGS A2");
	akai_s1000_getproglist(0, exclusive_channel, status);
	ASSERT_EQ(status->programs, 1);
	// The name in the block of a program keeps its blanks.
	EXPECT_STREQ(status->program[0].name, "GRAND       ");
	expect_no_boxes();
}

// An answer ends its wait when it arrives, and not when its time is up.
TEST_F(sampler, an_exchange_ends_with_its_answer)
{
	served_sampler served(&s3000);
	const u8 question[] = { 0xF0, 0x47, exclusive_channel, 0x00, 0x48, 0xF7 };
	double quickest = 100;
	for (int i = 0; i < 20; i++) {
		const double begin = posix_clock.counter();
		u8 answer[1000];
		int length = sizeof answer;
		send_midi_string_ex(question, sizeof question, answer, &length, 1);
		ASSERT_EQ(length, 21);
		EXPECT_EQ(answer[3], 0x01);
		EXPECT_EQ(answer[20], 0xF7);
		quickest = std::min(quickest, posix_clock.counter() - begin);
	}
	std::printf("the quickest of 20 exchanges took %.1f ms\n", quickest * 1000);
	EXPECT_LT(quickest, 1);
}

TEST_F(sampler, a_sample_goes_to_the_spool_and_back_under_another_name)
{
	served_sampler served(&s3000);
	akai_s2000_getstatus(0, exclusive_channel, current_sampler->status);
	akai_s1000_getsamplelist(0, exclusive_channel, current_sampler->status);
	akai_s2000_sample_download(0, exclusive_channel, "GRAND C3");
	const auto wave = h.content(h.config + "\\sample\\GRAND C3.wav");
	ASSERT_TRUE(wave);
	constexpr std::size_t data = wave_header_size;
	ASSERT_EQ(wave->size(), data + words.size() * 2);
	for (std::size_t i = 0; i < words.size(); i++) {
		const unsigned low = (*wave)[data + 2 * i], high = (*wave)[data + 2 * i + 1];
		ASSERT_EQ(static_cast<std::int16_t>(low | high << 8), words[i]) << i;
	}

	h.put_content(h.config + "\\sample\\COPY.wav", *wave);
	akai_s2000_sample_upload((h.config + "\\sample\\COPY").c_str());
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0], (shown_box{ "Sample successfully uploaded!", "INFO" }));
	served.stop();
	ASSERT_EQ(s3000.samples.size(), 3u);
	// The sampler is told of twice the length, and the second half is silence.
	std::vector<std::int16_t> expected = words;
	expected.resize(2 * words.size(), 0);
	EXPECT_TRUE(s3000.samples[2].words == expected);
	EXPECT_EQ(machine::get_name(s3000.samples[2].header, 3), "COPY");
}

TEST_F(sampler, stop_ends_a_download_from_a_sampler_that_fell_silent)
{
	served_sampler served(&s3000);
	akai_s2000_getstatus(0, exclusive_channel, current_sampler->status);
	akai_s1000_getsamplelist(0, exclusive_channel, current_sampler->status);
	served.answers_left = 10;
	watched = &served;
	akai_s2000_sample_download(0, exclusive_channel, "GRAND C3");
	watched = nullptr;
	EXPECT_TRUE(h.logged("[I] Download of [GRAND C3] stopped, nothing was saved"));
	EXPECT_FALSE(h.content(h.config + "\\sample\\GRAND C3.wav")) << "half a sample is kept";

	// And the port is as good as before.
	served.answers_left = 1000;
	current_sampler->status->status = 0;
	akai_s2000_getstatus(0, exclusive_channel, current_sampler->status);
	EXPECT_EQ(current_sampler->status->status, 1);
}

} // namespace
