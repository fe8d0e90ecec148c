// test_monitor.cpp - the monitor with its thru, and the test notes, at the buttons of their dialog

#include "src/velmor_monitor.h"
#include "src/velmor_outcome.h"
#include "src/velmor_window.h"
#include "tests/support/test_host.h"
#include "virtual/midi_ports.h"

using namespace velmor;

namespace
{

// What one byte after the other gives: messages, "!964" for what is told beside them.
std::string sorted(std::string_view bytes)
{
	midi_sorter sorter;
	std::string all;
	for (const u8 byte : hex(bytes)) {
		u8 message[3];
		int told;
		const int length = sort_midi_byte(&sorter, byte, message, &told);
		all += told ? format_text("!%d ", told) : "";
		if (length)
			all += "[" + hex_text({ message, static_cast<std::size_t>(length) }) + "] ";
	}
	return all;
}

// A keyboard at input 0, a synthesizer that hears at output 1.
class monitor_test : public host_test
{
protected:
	monitor_test()
	{
		const auto deaf = [](machine::byte_view) { return machine::bytes(); };
		keyboard = plug_midi(h.time, { deaf, deaf, deaf }, "Keys", no_wire_delay);
		synth = plug_midi(h.time,
			{ .answer = deaf,
				.refuse = deaf,
				.wait = deaf,
				.played =
					[this](machine::byte_view bytes) {
						heard.insert(
							heard.end(), bytes.begin(), bytes.end());
					} },
			"Synth", no_wire_delay);
		host.midi = &virtual_midi;
		reload_midi_setup(false);
		selected_midi_in_mon_interface = 0;
		selected_midi_out_interface = 1;
		velmor_command(window_main, menu_midi_samplers);
		h.forget_log();
	}
	~monitor_test() override
	{
		forget_monitor();
		close_midi_output();
		unplug_all_midi();
	}
	void play(std::string_view bytes)
	{
		port_wire(keyboard).play(hex(bytes));
		h.time.run_until(h.time.now() + 0.01);
	}
	// As often as a fifth of a second has ticks of 20 ms.
	void ticks(int times = 10)
	{
		for (; times > 0; times--) {
			h.time.run_until(h.time.now() + 0.02);
			for (const auto &[id, timer] : std::map(h.timers))
				timer.tick();
		}
	}
	std::string all_log()
	{
		std::string all;
		for (const std::string &text : h.log())
			if (!text.starts_with("[D]"))
				all += text;
		return all;
	}
	std::string state() { return h.texts[{ window_sampler, sampler_monitor_state }]; }

	int keyboard, synth;
	std::vector<u8> heard;
};

} // namespace

TEST(monitor_words, say_what_a_message_is)
{
	const std::pair<const char *, const char *> rows[] = {
		{ "80 3C 40", "Channel: 1 NOTE OFF (60 (C3)) Velocity: 64" },
		{ "9F 00 7F", "Channel: 16 NOTE ON (0 (C-2)) Velocity: 127" },
		{ "A1 45 01", "Channel: 2 POLY PRESSURE (69 (A3)) Velocity: 1" },
		{ "B2 07 64", "Channel: 3 CONTROL CHANGE (CONTROLLER: 7), VALUE: 100" },
		{ "C3 05 00", "Channel: 4 PROGRAM CHANGE (PROGRAM: 5)" },
		{ "D4 21 00", "Channel: 5 CHANNEL PRESSURE Velocity: 33" },
		{ "E5 7F 40", "Channel: 6 PITCH-BEND Value: 64" },
		{ "F8 00 00", "Channel: 9 UNKNOWN-COMMAND: 248,0,0" },
	};
	for (const auto &[bytes, words] : rows)
		EXPECT_STREQ(display_midi_command(hex(bytes).data()), words);
}

// MIDI 1.0, "running status", "real time", "system common".
TEST(monitor_words, come_from_whole_messages)
{
	const std::pair<const char *, const char *> rows[] = {
		{ "90 3C 40 3E 41 C0 05 06", "[90 3C 40] [90 3E 41] [C0 05] [C0 06] " },
		{ "90 F8 3C FE 40", "[F8] [FE] [90 3C 40] " },
		{ "F0 47 F8 01 F7 3C 40", "[F8] !964 !965 " }, // no status is left
		{ "F0 47 00 90 3C 40", "!966 [90 3C 40] " },
		{ "F0 47 F0 01 F7", "!966 !964 " },
		{ "90 3C 80 3C 00", "!965 [80 3C 00] " },
		{ "90 01 02 F6 03", "[90 01 02] [F6] !965 " }, // system common ends running status
		{ "F1 10 F2 01 02 F3 09", "[F1 10] [F2 01 02] [F3 09] " },
		{ "F7 3C 3D 3E 90 01 02", "!965 !965 [90 01 02] " },
	};
	for (const auto &[bytes, messages] : rows)
		EXPECT_EQ(sorted(bytes), messages) << bytes;
}

TEST(monitor_words, every_kind_of_news_has_its_line)
{
	test_host h;
	for (const int msg : { 965, 966, 967, 968, 969, 972, 970 })
		midiCallback(0, msg, 0, 7, 8);
	std::string all;
	for (const std::string &text : h.log())
		all += text;
	EXPECT_EQ(all,
		"\r\n[MONITOR]MIM_ERROR received!\r\n\r\n[MONITOR]MIM_LONGERROR received!\r\n"
		"\r\n[MONITOR]MOM_OPEN received!\r\n\r\n[MONITOR]MOM_CLOSE received!\r\n"
		"\r\n[MONITOR]MOM_DONE received!\r\n\r\n[MONITOR]MIM_MOREDATA received!\r\n"
		"[MONITOR]MIDI_CALLBACK MSG: 970 dwParam1: 7 dwParam2: 8\r\n");
}

TEST_F(monitor_test, what_comes_goes_on_at_once_and_is_told_twice)
{
	EXPECT_TRUE(velmor_command(window_sampler, sampler_monitor_on));
	EXPECT_FALSE(command_running());
	velmor_command(window_sampler, sampler_monitor_on); // there is one already
	play("90 3C 40 F0 47 00 F7 FE");
	EXPECT_EQ(heard, hex("90 3C 40 FE")) << "before anything is told";
	EXPECT_TRUE(velmor_command(window_main, menu_settings)) << "the program stays usable";
	ticks();
	EXPECT_EQ(state(), "Listening to 'Keys': 2 received, 2 passed on.");
	play("80 3C 40");
	velmor_command(window_sampler, sampler_monitor_off);
	play("90 3D 40");
	ticks();
	EXPECT_EQ(heard, hex("90 3C 40 FE 80 3C 40"));
	EXPECT_EQ(all_log(), "\r\n[MONITOR]MIM_OPEN received!\r\nRECEIVE MONITOR started...\r\n"
			     "[MONITOR]RCVD: [Channel: 1 NOTE ON (60 (C3)) Velocity: 64]\r\n"
			     "[MONITOR]SENT: [Channel: 1 NOTE ON (60 (C3)) Velocity: 64]\r\n"
			     "\r\n[MONITOR]MIM_LONGDATA received!\r\n"
			     "[MONITOR]RCVD: [Channel: 15 UNKNOWN-COMMAND: 254,0,0]\r\n"
			     "[MONITOR]SENT: [Channel: 15 UNKNOWN-COMMAND: 254,0,0]\r\n"
			     "[MONITOR]RCVD: [Channel: 1 NOTE OFF (60 (C3)) Velocity: 64]\r\n"
			     "[MONITOR]SENT: [Channel: 1 NOTE OFF (60 (C3)) Velocity: 64]\r\n"
			     "\r\n[MONITOR]MIM_CLOSE received!\r\nRECEIVE MONITOR stopped...\r\n");
	EXPECT_EQ(state(), "The monitor is off.");
	EXPECT_TRUE(h.timers.empty());
}

TEST_F(monitor_test, a_flood_is_told_in_portions_whole_and_in_order)
{
	velmor_command(window_sampler, sampler_monitor_on);
	h.forget_log();
	current_run_mode.diagnostics = true;
	std::string flood;
	for (int i = 0; i < 1500; i++)
		flood += format_text("%s %02X %02X F8 FE ", i % 100 ? "" : "B0", i / 100, i % 100);
	play(flood);
	EXPECT_EQ(heard.size(), 1500u * 5);
	ticks(1);
	const std::size_t first = h.log().size();
	EXPECT_GT(first, 0u);
	EXPECT_LT(first, 1000u) << "the windows wait for so many";
	velmor_command(window_sampler, sampler_monitor_off); // the rest is not lost
	ticks(60);
	int at = 0;
	for (const std::string &text : h.log()) {
		if (!text.starts_with("[MONITOR]SENT: [Channel: 1 CONTROL"))
			continue;
		EXPECT_EQ(text, format_text("[MONITOR]SENT: [Channel: 1 CONTROL CHANGE "
					    "(CONTROLLER: %d), VALUE: %d]\r\n",
					at / 100, at % 100));
		at++;
	}
	EXPECT_EQ(at, 1500);
	EXPECT_TRUE(h.logged("RECEIVE MONITOR stopped..."));
}

TEST_F(monitor_test, is_told_whole_inside_of_work_that_repeats_itself)
{
	velmor_command(window_sampler, sampler_monitor_on);
	h.forget_log();
	log_rounds rounds;
	for (int i = 0; i < 3; i++) {
		const log_round round(&rounds);
		log_line("the same\r\n");
		play("FE");
		ticks(1);
	}
	std::string told;
	for (const std::string &text : h.log())
		told += text.substr(0, 15) + ".";
	const std::string message = "[MONITOR]RCVD: .[MONITOR]SENT: .";
	EXPECT_EQ(told, "the same\r\n." + message + message + message);
}

TEST_F(monitor_test, a_port_that_is_not_there_or_vanishes_is_said_in_words)
{
	selected_midi_in_mon_interface = -1;
	velmor_command(window_sampler, sampler_monitor_on);
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_TRUE(h.boxes[0].caption.starts_with("ERROR (velmor_monitor.cpp:"));
	EXPECT_EQ(all_log(), "");
	selected_midi_in_mon_interface = 0;
	selected_midi_out_interface = 7;
	velmor_command(window_sampler, sampler_monitor_on);
	EXPECT_EQ(h.boxes.size(), 2u);
	EXPECT_TRUE(h.timers.empty());
	selected_midi_out_interface = 1;
	velmor_command(window_sampler, sampler_monitor_on);
	unplug_midi(synth);
	ticks();
	EXPECT_EQ(h.boxes.size(), 3u) << "once";
	play("C0 05");
	ticks();
	EXPECT_TRUE(h.logged("[MONITOR]RCVD: [Channel: 1 PROGRAM CHANGE (PROGRAM: 5)]"));
	EXPECT_EQ(state(), "Listening to 'Keys': 1 received, 0 passed on.");
	unplug_midi(keyboard);
	ticks();
	EXPECT_EQ(h.boxes.size(), 4u);
	EXPECT_EQ(h.boxes.back().text, "No such device");
	EXPECT_EQ(state(), "The monitor is off.");
	EXPECT_EQ(receive_monitor_active, 0);
}

TEST_F(monitor_test, an_output_that_others_close_is_passed_on_to_again)
{
	velmor_command(window_sampler, sampler_monitor_on);
	close_midi_output();
	run_through_gate([this] { // its work has the port for itself
		ticks(1);
		EXPECT_EQ(the_outHandle, -1);
	});
	play("90 01 01");
	ticks(1);
	play("90 02 02");
	EXPECT_EQ(heard, hex("90 02 02"));
}

TEST_F(monitor_test, closing_the_dialog_or_the_program_ends_it)
{
	velmor_command(window_sampler, sampler_monitor_on);
	play("FE");
	velmor_command(window_sampler, control_cancel);
	EXPECT_TRUE(h.logged("RECEIVE MONITOR stopped..."));
	velmor_command(window_sampler, sampler_monitor_on);
	h.forget_log();
	play("FE");
	EXPECT_THROW(velmor_command(window_main, menu_exit), process_ended);
	const std::vector<std::string> log = h.log();
	ASSERT_GE(log.size(), 4u);
	EXPECT_EQ(log[0], "[MONITOR]RCVD: [Channel: 15 UNKNOWN-COMMAND: 254,0,0]\r\n");
	EXPECT_EQ(log[log.size() - 2], "RECEIVE MONITOR stopped...\r\n");
}

TEST_F(monitor_test, notes_are_chosen_played_and_never_left_hanging)
{
	const auto &pitches = h.lists[{ window_sampler, sampler_pitch_list }];
	const auto &velocities = h.lists[{ window_sampler, sampler_velocity_list }];
	ASSERT_EQ(pitches.size(), 127u);
	EXPECT_EQ(pitches[60], "60 (C3)");
	EXPECT_EQ(pitches[126], "126 (F#8)");
	ASSERT_EQ(velocities.size(), 127u);
	EXPECT_EQ(velocities[0], "1");
	EXPECT_EQ((h.selections[{ window_sampler, sampler_pitch_list }]), 60);
	EXPECT_EQ((h.selections[{ window_sampler, sampler_velocity_list }]), 64);
	EXPECT_EQ((h.texts[{ window_sampler, sampler_midi_out_text }]), "Synth");

	host.ui->select(window_sampler, sampler_midi_list, 4);
	velmor_command(window_sampler, sampler_note_on);
	EXPECT_TRUE(h.logged("[D] RECEIVED NOTE_ON (MIDI-CHANNEL: 5)\n"));
	velmor_command(window_sampler, sampler_note_off);
	EXPECT_TRUE(h.logged("[D] RECEIVED NOTE_OFF (MIDI-CHANNEL: 5)\n"));
	velmor_command(window_sampler, sampler_all_notes_off);
	EXPECT_TRUE(h.logged("[D] RECEIVED ALL NOTE_OFF (MIDI-CHANNEL: 5)\r\n"));
	ticks(1);
	EXPECT_EQ(heard, hex("94 3C 41 84 3C 41 B4 7B 00"));
	heard.clear();
	velmor_command(window_sampler, sampler_note_on);
	host.ui->select(window_sampler, sampler_midi_list, 0);
	host.ui->select(window_sampler, sampler_pitch_list, 126);
	host.ui->select(window_sampler, sampler_velocity_list, 126);
	velmor_command(window_sampler, sampler_note_on);
	velmor_command(window_sampler, control_cancel);
	velmor_command(window_sampler, control_cancel);
	ticks(1);
	EXPECT_EQ(heard, hex("94 3C 41 90 7E 7F 84 3C 40 80 7E 40"));
	send_note(2, 0x90, 60, 100);
	EXPECT_TRUE(h.logged("PLAYING NOTE on CHANNEL: 2, [ON](60) 0x64"));
	update_midi_out(0);
	EXPECT_EQ((h.texts[{ window_sampler, sampler_midi_out_text }]), "No interface");
}
