// test_sysex.cpp - messages and answers over a MIDI port

#include "src/controls.h"
#include "src/velmor_outcome.h"
#include "src/velmor_window.h"
#include "tests/support/transcript_midi.h"
#include <cmath>

namespace velmor
{

static constexpr u8 question[] = { 0xF0, 0x47, 0x00, 0x00, 0x48, 0xF7 };
static const std::string asked = "> F0 47 00 00 48 F7\n";

class sysex : public host_test
{
protected:
	std::vector<u8> buffer;
	int length = 0;
	double seconds = 0; // from the call to its return

	// Length bytes of the buffer.
	std::vector<u8> after(double began)
	{
		seconds = h.time.now() - began;
		return { buffer.begin(), buffer.begin() + length };
	}
	std::vector<u8> ask(int capacity = 1000, int msg_count = 1,
		decltype(&send_midi_string_ex) exchange = send_midi_string_ex)
	{
		buffer.assign(static_cast<std::size_t>(length = capacity), 0xEE);
		const double began = h.time.now();
		exchange(question, sizeof question, buffer.data(), &length, msg_count);
		return after(began);
	}
	std::vector<u8> wait(int capacity = 1000)
	{
		buffer.assign(static_cast<std::size_t>(length = capacity), 0xEE);
		const double began = h.time.now();
		wait_midi_string_ex(buffer.data(), &length, 1, 2);
		return after(began);
	}
	void send(const char *bytes)
	{
		const std::vector<u8> b = hex(bytes);
		send_midi_string(b.data(), static_cast<int>(b.size()));
	}
};

// ---- An exchange --------------------------------------------------------------------------

TEST_F(sysex, an_answer_is_handed_over_as_soon_as_it_ends)
{
	transcript_midi t(h, asked + "< F0 47 00 01 48 F7");
	h.time.run_until(7);
	EXPECT_EQ(ask(), hex("F0 47 00 01 48 F7"));
	EXPECT_EQ(buffer[6], 0); // cleared before
	// Six bytes at 31250 baud, and a millisecond.
	EXPECT_NEAR(seconds, 6 * 0.00032 + 0.001, 1e-9);
	expect_logged({ "[D] MIDI-OUT: 6 Bytes (F0 47 00 00 48 F7)",
		"[D] Still waiting for sending of midi-buffer",
		"[D] Midi-Data sent successfully" });
	EXPECT_TRUE(t.finished());
	EXPECT_EQ(t.inputs_open, 0);
	EXPECT_EQ(t.outputs_open, 1); // kept for the next
	EXPECT_NEAR(the_line.answered_at, host.clock->time_of_day(), 1e-6);
}

TEST_F(sysex, without_an_answer_the_length_stays_and_no_input_is_opened)
{
	transcript_midi t(h, asked);
	EXPECT_EQ(ask(10, 0), std::vector<u8>(10, 0));
	EXPECT_EQ(t.inputs_opened, 0);
	EXPECT_EQ(the_line.answers + the_line.failures, 0u);
}

TEST_F(sysex, what_comes_decides_how_the_wait_ends)
{
	static const struct {
		const char *name, *script;
		int capacity, msg_count;
		const char *answer;
		double seconds; // at most; the question has left after 0.00192
	} arrivals[] = {
		{ "silence", "< nothing", 100, 1, "", 3 },
		{ "the first of two messages", "< F0 01 F7 F0 02 F7", 100, 1, "F0 01 F7", 0.00292 },
		{ "two messages and bytes of none between them", "< F0 01 F7 55 66 F0 02 F7", 100,
			2, "F0 01 F7 F0 02 F7", 0.00292 },
		// The end byte that the first pass counted counts again in the second.
		{ "two messages apart end at the first", "< F0 01 F7\n< @0.5 F0 02 F7", 100, 2,
			"F0 01 F7", 0.10292 },
		{ "a message in two parts", "< F0 01\n< @0.5 02 F7", 100, 1, "F0 01 02 F7",
			0.50292 },
		{ "a part, then silence", "< F0 01 02", 100, 1, "F0 01 02", 3 },
		{ "a full block without an end", "< F0 01*9", 10, 1, "F0 01*9", 0.00292 },
		{ "more than the block holds", "< F0 01*5000 F7", 10, 1, "F0 01*9", 0.00292 },
		{ "a flood inside a message", "< F0 7F*100000", 1000, 1, "F0 7F*999", 0.00292 },
		{ "active sensing, a note and a clock around and in the message",
			"< FE 90 3C 40 F8 F0 01 FE 02 F8 F7 FE", 100, 1, "F0 01 02 F7", 0.00292 },
		{ "an end byte alone", "< F7\n< @0.5 F0 01 F7", 100, 1, "F0 01 F7", 0.50292 },
		{ "no room at all", "< F0 01 F7", 0, 1, "", 0.00292 },
	};
	for (const auto &a : arrivals) {
		SCOPED_TRACE(a.name);
		h.time.run_until(std::ceil(h.time.now()) + 5);
		transcript_midi t(h, asked + a.script);
		EXPECT_EQ(ask(a.capacity, a.msg_count), hex(a.answer));
		EXPECT_LE(seconds, a.seconds + 0.0011);
		EXPECT_EQ(t.inputs_open, 0);
		const bool whole = std::string(a.answer).ends_with("F7");
		EXPECT_EQ(the_line.failing, !whole);
		EXPECT_EQ(the_line.why, whole       ? the_line.why
					: *a.answer ? "The answer broke off."
						    : "No answer came.");
	}
}

TEST_F(sysex, deadlines_count_whole_seconds_and_windows_live_meanwhile)
{
	transcript_midi t(h, asked + "< nothing\n" + asked + "< nothing");
	double last = 0.9, longest = 0;
	h.on_pump = [&] {
		longest = std::max(longest, h.time.now() - last);
		last = h.time.now();
	};
	h.time.run_until(0.9);
	ask();
	EXPECT_NEAR(seconds, 2.1, 0.001); // at the beginning of second 3
	EXPECT_LE(longest, 0.1001);
	h.time.run_until(10.1);
	ask();
	EXPECT_NEAR(seconds, 2.9, 0.001);
}

TEST_F(sysex, an_incomplete_answer_is_told_in_the_log)
{
	transcript_midi t(h, asked + "< F0 47*40\n< @0.2 F7");
	ask(100);
	std::string bytes = "F0";
	for (int i = 0; i < 31; i++)
		bytes += " 47";
	EXPECT_TRUE(h.logged("[D] Exclusive Data so far received!(41/100 Bytes) NO F7 FLAGS: "
			     "0x00000000[" +
			     bytes + "...]"));
}

TEST_F(sysex, an_exchange_inside_an_exchange_is_refused)
{
	transcript_midi t(h, asked + "> 90 3C 40\n< F0 01 F7");
	u8 inner[10] = { 1 };
	int inner_length = 10;
	h.on_pump = [&] {
		if (!inner_length)
			return;
		send_midi_string_ex(question, sizeof question, inner, &inner_length, 1);
		send("90 3C 40");
	};
	EXPECT_EQ(ask(), hex("F0 01 F7"));
	EXPECT_EQ(inner_length, 0);
	EXPECT_TRUE(h.logged("[W] MIDI exchange refused: another one is under way"));
	EXPECT_TRUE(t.finished());
}

// ---- Ports that fail ------------------------------------------------------------------------

TEST_F(sysex, a_failing_port_is_shown_and_leaves_the_length)
{
	static const struct {
		const char *name;
		int port_faults::*where;
		bool sends; // the message still goes out
	} failures[] = {
		{ "output does not open", &port_faults::open_output, false },
		{ "input does not open", &port_faults::open_input, false },
		{ "input does not arm", &port_faults::arm, false },
		{ "write fails", &port_faults::write, false },
		{ "port fails while sending", &port_faults::leaving, true },
		{ "overrun while receiving", &port_faults::input, true },
	};
	for (const auto &f : failures) {
		SCOPED_TRACE(f.name);
		const std::string once = asked + "< F0 01 F7\n";
		transcript_midi t(h, f.sends ? once + once : once);
		t.faults.*f.where = 19;
		EXPECT_EQ(ask(50), std::vector<u8>(50, 0));
		ASSERT_EQ(h.boxes.size(), 1u);
		EXPECT_EQ(h.boxes[0].text, "MIDI port code 19");
		EXPECT_EQ(h.boxes[0].caption.substr(0, 24), "ERROR (velmor_sysex.cpp:");
		EXPECT_EQ(the_line.why, "MIDI port code 19");
		EXPECT_EQ(t.inputs_open, 0);
		// The cable is back: the next exchange works without a restart.
		t.faults = {};
		h.boxes.clear();
		h.time.run_until(h.time.now() + 1);
		EXPECT_EQ(ask(50), hex("F0 01 F7"));
		EXPECT_FALSE(the_line.failing);
		EXPECT_EQ(t.outputs_open, 1);
		EXPECT_TRUE(t.finished());
	}
}

TEST_F(sysex, a_port_that_does_not_send_is_given_up)
{
	transcript_midi t(h, asked);
	t.faults.stuck = true;
	ask();
	EXPECT_EQ(length, 1000);
	EXPECT_NEAR(seconds, 2, 0.11);
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0].text,
		"The MIDI output does not send. Is the interface still connected?");
	EXPECT_EQ(t.outputs_open, 0);
	EXPECT_LE(h.log().size(), 25u); // ten lines a second
}

TEST_F(sysex, another_choice_takes_effect_with_the_next_message)
{
	transcript_midi t(h, "> 90 3C 40\n> 90 3C 00\n> 90 3D 40");
	send("90 3C 40");
	selected_midi_out_interface = -1; // the first one listed
	send("90 3C 00");
	EXPECT_EQ(t.outputs_opened, 2);
	EXPECT_EQ(t.outputs_open, 1);
	// Chosen by the user, the old one is let go at once.
	host.ui->select(window_settings, settings_midi_out, 1);
	velmor_selection(window_settings, settings_midi_out);
	EXPECT_EQ(t.outputs_open, 0);
	EXPECT_EQ(the_outHandle, -1);
	send("90 3D 40");
	velmor_command(window_settings, control_ok);
	EXPECT_EQ(t.outputs_open, 0) << "kept settings take effect as well";
	h.boxes.clear();
	selected_midi_in_interface = -1;
	EXPECT_EQ(ask(10, 1).size(), 10u);
	EXPECT_EQ(h.boxes.size(), 1u) << "no input is chosen";
}

// ---- The S900's way ---------------------------------------------------------------------------

TEST_F(sysex, the_s900_is_sent_through_a_port_of_its_own)
{
	transcript_midi t(h, "> 90 3C 40\n" + asked + "< F0 47 F7\n" + asked + "< nothing");
	send("90 3C 40"); // leaves the shared output open
	EXPECT_EQ(ask(100, 1, send_midi_string_ex_s900), hex("F0 47 F7"));
	expect_logged({ "[D] MIDI-OUT: 6 Bytes (F0 47 00 00 48 F7)",
		"[D] Midi-Data sent successfully [F0 47 00 00 48 F7] 6 Bytes..." });
	EXPECT_EQ(t.outputs_open, 0);
	h.time.run_until(10.25);
	ask(100, 1, send_midi_string_ex_s900);
	EXPECT_NEAR(seconds, 3.75, 0.001);
	EXPECT_TRUE(t.finished());
}

TEST_F(sysex, an_s900_output_that_does_not_open_ends_the_process)
{
	transcript_midi t(h, asked);
	t.faults.open_output = 16;
	EXPECT_THROW(ask(100, 1, send_midi_string_ex_s900), process_ended);
	EXPECT_EQ(
		h.boxes, (std::vector<shown_box>{ { "Failed to open Midi-Out Device", "FATAL" } }));
	t.faults = {};
	EXPECT_EQ(ask(100, 0, send_midi_string_ex_s900).size(), 100u); // nothing is left half done
}

// ---- Waiting, and sending alone -----------------------------------------------------------------

TEST_F(sysex, a_message_is_waited_for)
{
	static const struct {
		const char *comes;
		int capacity;
		const char *got;
		double seconds;
	} rows[] = {
		{ "< @0.5 F0 7E 01 7F F7 F0 01", 100, "F0 7E 01 7F F7", 2 }, // rests one more
		{ "< F0 7E 01", 100, "", 3 },                                // part is none
		{ "< F0 7F*99", 10, "", 3 }, // nor does a full block end it
	};
	for (const auto &row : rows) {
		h.time.run_until(std::ceil(h.time.now()) + 1);
		transcript_midi t(h, row.comes);
		EXPECT_EQ(wait(row.capacity), hex(row.got));
		EXPECT_NEAR(seconds, row.seconds, 0.001);
		EXPECT_EQ(the_line.failing, !*row.got);
		EXPECT_EQ(t.outputs_opened, 0);
		EXPECT_EQ(t.inputs_open, 0);
	}
}

TEST_F(sysex, a_message_is_sent_without_an_answer)
{
	transcript_midi t(h, "> F0 00*17 F7");
	send("F0 00*17 F7");
	EXPECT_NEAR(h.time.now(), 19 * 0.00032, 0.001);
	EXPECT_TRUE(
		h.logged("[D] Sending 19 Bytes of Midi-Data() [F0 00 00 00 00 00 00 00 00 00 00 "
			 "00 00 00 00 00...] using Device: 0"));
	EXPECT_TRUE(t.finished());
}

TEST_F(sysex, the_devices_are_listed)
{
	transcript_midi t(h, "");
	reload_midi_setup(true);
	EXPECT_EQ(midi_out_interface, std::vector<std::string>{ "transcript out" });
	EXPECT_EQ(midi_in_interface, std::vector<std::string>{ "transcript in" });
	EXPECT_EQ(
		h.log(), (std::vector<std::string>{
				 "[D] MIDI-OUT[0] --> NAME: [transcript out](0,0) Version: 0\r\n",
				 "[D] MIDI-IN[0] --> NAME: [transcript in](0,0) Version: 0\r\n" }));
	EXPECT_EQ((h.texts[{ window_settings, settings_found }]),
		"MIDI-OUT found: 1, MIDI-IN found: 1");
}

} // namespace velmor
