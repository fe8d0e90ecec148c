// test_self_test.cpp - interfaces with faults, and what the self-test says of them

#include "src/controls.h"
#include "src/velmor_self_test.h"
#include "src/velmor_window.h"
#include "tests/support/test_host.h"
#include "virtual/midi_ports.h"
#include "virtual/s1000.h"

namespace velmor
{
namespace
{

using results = std::vector<std::string>;

class self_tests : public host_test
{
protected:
	self_tests()
	{
		host.midi = &virtual_midi;
		port = plug_midi(h.time, loop_cable(), "Loop");
		choose();
	}
	~self_tests() override
	{
		close_midi_output();
		unplug_all_midi();
	}
	void choose()
	{
		reload_midi_setup(false);
		selected_midi_in_interface = selected_midi_out_interface = 0;
	}
	results words()
	{
		results all;
		for (const self_test_row &row : report.rows)
			all.push_back(result_word(row.result));
		return all;
	}
	outcome loop(interface_faults faults)
	{
		port_wire(port).set_interface(faults);
		return run_self_test(self_test_route::loop_cable, &report);
	}
	int port;
	self_test_report report;
};

TEST_F(self_tests, an_interface_that_passes_everything)
{
	int told = 0;
	const outcome done = run_self_test(self_test_route::loop_cable, &report,
		[&](const self_test_report &r) { told += static_cast<int>(r.rows.size()); });
	EXPECT_EQ(done.words, "All 7 messages passed, up to 65536 bytes.");
	EXPECT_EQ(told, 28) << "after each row";
	EXPECT_EQ(words(), results(7, "pass"));
	EXPECT_NEAR(report.rows[6].rate, 3125, 5);
	EXPECT_NEAR(report.rows[6].seconds, 65536 * 320e-6, 0.05);
	EXPECT_FALSE(report.searched);
	EXPECT_LT(report.seconds, 40);
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(keep_found_pace(report).how, ending::refused);
}

// Byte 256 of all is number 175 of the third message, behind 16 and 64.
TEST_F(self_tests, bytes_that_are_lost_doubled_or_turned_at_any_length)
{
	const struct {
		interface_faults faults;
		const char *word;
		std::size_t came;
	} rows[] = {
		{ { .turn_every = 256 }, "change", 256 },
		{ { .lose_every = 256 }, "loss", 255 },
		{ { .double_every = 256 }, "doubled", 257 },
	};
	for (const auto &row : rows) {
		close_midi_output();
		unplug_all_midi();
		port = plug_midi(h.time, loop_cable(), "Loop");
		const outcome done = loop(row.faults);
		EXPECT_EQ(done.how, ending::refused) << row.word;
		EXPECT_EQ(words()[1], "pass");
		EXPECT_EQ(words()[2], row.word);
		const self_test_row &third = report.rows.at(2);
		EXPECT_EQ(third.came, row.came);
		EXPECT_EQ(third.at, row.came == 257 ? 176u : 175u);
		EXPECT_EQ(report.found, send_pace());
		EXPECT_NE(done.words.find("No shorter run helps"), std::string::npos) << done.words;
		EXPECT_LT(report.seconds, 301);
		EXPECT_EQ(row_words(third)[2], format_text("byte %zu: %02X, not %02X", third.at,
						       static_cast<unsigned>(third.came_byte),
						       static_cast<unsigned>(third.sent_byte)));
	}
}

TEST_F(self_tests, an_interface_with_a_small_memory_gets_runs_that_it_holds)
{
	const outcome done = loop({ .room = 1024 });
	EXPECT_EQ(done.how, ending::done) << done.words;
	EXPECT_EQ(words(), (results{ "pass", "pass", "pass", "pass", "loss", "loss", "loss" }));
	EXPECT_EQ(report.rows[4].at, 1024u);
	EXPECT_EQ(report.found.run, 1024);
	// 1024 bytes need 327.68 ms to leave.
	EXPECT_GE(report.found.pause_ms, 328);
	EXPECT_LE(report.found.pause_ms, 380);
	EXPECT_LT(report.seconds, 301);
	ASSERT_TRUE(keep_found_pace(report).done());
	EXPECT_EQ(h.settings["midi_run Loop"], format_text("1024 %d", report.found.pause_ms));

	// From then on whatever is sent arrives, and a note that comes meanwhile waits.
	forget_kept_paces();
	const std::vector<u8> message = hex("F0 11*2998 F7");
	std::vector<u8> answer(4000);
	int length = 4000;
	bool played = false;
	h.on_pump = [&] {
		if (!std::exchange(played, true))
			send_midi_string(hex("90 3C 40").data(), 3);
	};
	send_midi_string_ex(message.data(), 3000, answer.data(), &length, 1);
	h.on_pump = nullptr;
	EXPECT_TRUE(played);
	answer.resize(static_cast<std::size_t>(length));
	EXPECT_EQ(answer, message);

	EXPECT_NE(pace_words("Loop"), "");
	EXPECT_TRUE(forget_pace_of("Loop").done());
	EXPECT_EQ(pace_words("Loop"), "");
	length = 4000;
	answer.assign(4000, 0);
	send_midi_string_ex(message.data(), 3000, answer.data(), &length, 1);
	EXPECT_LT(length, 3000);
}

TEST_F(self_tests, what_comes_late_or_never)
{
	EXPECT_EQ(loop({ .late = 0.5 }).how, ending::refused);
	EXPECT_EQ(words(), results(7, "delay"));
	const outcome dead = loop({ .dead = true });
	EXPECT_EQ(dead.how, ending::no_answer);
	EXPECT_EQ(words(), results(2, "silence"));
	EXPECT_LT(report.seconds, 10);
	unplug_midi(port);
	EXPECT_EQ(loop({}).how, ending::no_answer);
}

TEST_F(self_tests, the_window_tells_and_keeps)
{
	forget_commands();
	EXPECT_TRUE(velmor_command(window_settings, settings_self_test));
	EXPECT_FALSE((h.enabled[{ window_self_test, self_test_keep }]));
	port_wire(port).set_interface({ .room = 1024 });
	EXPECT_TRUE(velmor_command(window_self_test, self_test_begin));
	const auto &rows = h.rows[{ window_self_test, self_test_list }];
	ASSERT_EQ(rows.size(), 7u);
	EXPECT_EQ(rows[4][0] + " " + rows[4][1], "4096 bytes loss");
	EXPECT_TRUE(rows[4][2].starts_with("byte 1024: nothing, not ")) << rows[4][2];
	EXPECT_TRUE((h.enabled[{ window_self_test, self_test_keep }]));
	EXPECT_TRUE(velmor_command(window_self_test, self_test_keep));
	EXPECT_EQ(kept_pace("Loop").run, 1024);
	EXPECT_TRUE(velmor_command(window_self_test, self_test_forget));
	EXPECT_EQ(kept_pace("Loop").run, 0);
	selected_midi_in_interface = -1;
	velmor_command(window_self_test, self_test_begin);
	EXPECT_EQ((h.texts[{ window_self_test, self_test_verdict }]),
		"Choose MIDI-Out and MIDI-In in Basic settings first.");
}

TEST_F(self_tests, stop_ends_it)
{
	const double end = h.time.now() + 5;
	h.on_pump = [&] {
		if (h.time.now() >= end)
			stop_progress();
	};
	EXPECT_EQ(loop({ .room = 1024 }).how, ending::stopped);
	EXPECT_LT(h.time.now(), end + 1);
	EXPECT_FALSE(h.progress.visible);
}

TEST_F(self_tests, a_sampler_is_asked_again_and_again)
{
	unplug_all_midi();
	s1000_machine machine(s1000_model::s3000, 5);
	machine.add_sample("KICK", 44100, std::vector<std::int16_t>(100, 1));
	port = plug_midi(h.time, machine, "Cable");
	choose();
	h.use_sampler(model_s3000, 5);
	const outcome done = run_self_test(self_test_route::sampler, &report);
	EXPECT_TRUE(done.done()) << done.words;
	EXPECT_EQ(words(), results(7, "pass"));
	EXPECT_GT(report.rows[0].came, 400u) << "status, list and header";
	// Messages 7 to 9 belong to the third question: each asks thrice, behind a foreign message.
	port_wire(port).set_fault({ .kind = wire_fault_kind::garbled, .exchange = 12 });
	EXPECT_EQ(run_self_test(self_test_route::sampler, &report).how, ending::refused);
	EXPECT_EQ(words()[2], "change");
	EXPECT_EQ(words()[3], "pass");
	port_wire(port).set_fault({ .kind = wire_fault_kind::silent, .from_then_on = true });
	EXPECT_EQ(run_self_test(self_test_route::sampler, &report).how, ending::no_answer);
	EXPECT_EQ(report.rows.size(), 2u);
}

} // namespace
} // namespace velmor
