// test_sysex.cpp - messages and answers over a MIDI port

#include "src/controls.h"
#include "tests/support/transcript_midi.h"

namespace velmor
{

static constexpr u8 question[] = { 0xF0, 0x47, 0x00, 0x00, 0x48, 0xF7 };

struct outcome {
	std::vector<u8> answer; // length bytes of the buffer
	int length;
	double seconds; // from the call to its return
	std::vector<u8> buffer;
};

class sysex : public host_test
{
protected:
	outcome ask(int capacity = 1000, int msg_count = 1, bool s900 = false)
	{
		outcome o = { {}, capacity, 0,
			std::vector<u8>(static_cast<std::size_t>(capacity), 0xEE) };
		const double began = h.time.now();
		auto *exchange = s900 ? send_midi_string_ex_s900 : send_midi_string_ex;
		exchange(question, sizeof question, o.buffer.data(), &o.length, msg_count);
		return finish(o, began);
	}
	outcome wait(int capacity = 1000, int timeout = 2)
	{
		outcome o = { {}, capacity, 0,
			std::vector<u8>(static_cast<std::size_t>(capacity), 0xEE) };
		const double began = h.time.now();
		wait_midi_string_ex(o.buffer.data(), &o.length, 1, timeout);
		return finish(o, began);
	}
	outcome finish(outcome o, double began)
	{
		o.seconds = h.time.now() - began;
		o.answer.assign(o.buffer.begin(), o.buffer.begin() + o.length);
		return o;
	}
	bool silent_buffer(const outcome &o)
	{
		return o.buffer == std::vector<u8>(o.buffer.size(), 0);
	}
};

// ---- An exchange --------------------------------------------------------------------------

TEST_F(sysex, an_answer_is_handed_over_as_soon_as_it_ends)
{
	transcript_midi t(h, R"(
		> F0 47 00 00 48 F7
		< F0 47 00 01 48 F7
	)");
	const outcome o = ask();
	EXPECT_EQ(o.answer, hex("F0 47 00 01 48 F7"));
	EXPECT_EQ(o.buffer[6], 0); // cleared before
	// Six bytes at 31250 baud, and a millisecond.
	EXPECT_NEAR(o.seconds, 6 * 0.00032 + 0.001, 1e-9);
	EXPECT_TRUE(h.logged("[D] MIDI-OUT: 6 Bytes (F0 47 00 00 48 F7)"));
	EXPECT_TRUE(h.logged("[D] Still waiting for sending of midi-buffer"));
	EXPECT_TRUE(h.logged("[D] Midi-Data sent successfully"));
	EXPECT_TRUE(t.finished());
	EXPECT_EQ(t.inputs_open, 0);
	EXPECT_EQ(t.outputs_open, 1); // kept for the next
}

TEST_F(sysex, without_an_answer_the_length_stays_and_no_input_is_opened)
{
	transcript_midi t(h, "> F0 47 00 00 48 F7");
	const outcome o = ask(10, 0);
	EXPECT_EQ(o.length, 10);
	EXPECT_TRUE(silent_buffer(o));
	EXPECT_EQ(t.inputs_opened, 0);
}

struct arrival {
	const char *name;
	const char *script;
	int capacity, msg_count;
	const char *answer;
	double seconds; // as told by the deadline, from second 0.00192 on
};

TEST_F(sysex, what_comes_decides_how_the_wait_ends)
{
	static const arrival arrivals[] = {
		{ "silence", "< nothing", 100, 1, "", 3 },
		{ "the first of two messages", "< F0 01 F7 F0 02 F7", 100, 1, "F0 01 F7", 0.00292 },
		{ "two of two messages at once", "< F0 01 F7 F0 02 F7", 100, 2, "F0 01 F7 F0 02 F7",
			0.00292 },
		// The end byte that the first pass counted counts again in the second.
		{ "two messages apart end at the first", "< F0 01 F7\n< @0.5 F0 02 F7", 100, 2,
			"F0 01 F7", 0.10292 },
		{ "a message in two parts", "< F0 01\n< @0.5 02 F7", 100, 1, "F0 01 02 F7",
			0.50292 },
		{ "a part, then silence", "< F0 01 02", 100, 1, "F0 01 02", 3 },
		{ "a full block without an end", "< F0 01*9", 10, 1, "F0 01*9", 0.00292 },
		{ "a full block with its end", "< F0 01*8 F7", 10, 1, "F0 01*8 F7", 0.00292 },
		{ "more than the block holds", "< F0 01*5000 F7", 10, 1, "F0 01*9", 0.00292 },
		{ "a flood of one byte", "< 7F*100000", 1000, 1, "", 0.00292 },
		{ "a flood inside a message", "< F0 7F*100000", 1000, 1, "F0 7F*999", 0.00292 },
		{ "active sensing, a note and a clock around and in the message",
			"< FE 90 3C 40 F8 F0 01 FE 02 F8 F7 FE", 100, 1, "F0 01 02 F7", 0.00292 },
		{ "an end byte alone", "< F7\n< @0.5 F0 01 F7", 100, 1, "F0 01 F7", 0.50292 },
		{ "no room at all", "< F0 01 F7", 0, 1, "", 0.00292 },
		{ "an answer after the deadline", "< @4 F0 01 F7", 100, 1, "", 3 },
	};
	for (const arrival &a : arrivals) {
		SCOPED_TRACE(a.name);
		test_host fresh;
		transcript_midi t(fresh, std::string("> F0 47 00 00 48 F7\n") + a.script);
		const double began = fresh.time.now();
		std::vector<u8> buffer(static_cast<std::size_t>(a.capacity), 0xEE);
		int length = a.capacity;
		send_midi_string_ex(question, sizeof question, buffer.data(), &length, a.msg_count);
		buffer.resize(static_cast<std::size_t>(length));
		EXPECT_EQ(buffer, hex(a.answer));
		EXPECT_LE(fresh.time.now() - began, a.seconds + 0.0011);
		EXPECT_EQ(t.inputs_open, 0);
	}
}

TEST_F(sysex, deadlines_count_whole_seconds)
{
	transcript_midi t(h, "> F0 47 00 00 48 F7\n< nothing\n> F0 47 00 00 48 F7\n< nothing");
	h.time.run_until(0.9);
	EXPECT_NEAR(ask().seconds, 2.1, 0.001); // at the beginning of second 3
	h.time.run_until(10.1);
	EXPECT_NEAR(ask().seconds, 2.9, 0.001);
}

TEST_F(sysex, an_incomplete_answer_is_told_in_the_log)
{
	transcript_midi t(h, "> F0 47 00 00 48 F7\n< F0 47*40\n< @0.2 F7");
	ask(100);
	EXPECT_TRUE(h.logged("[D] Exclusive Data so far received!(41/100 Bytes) NO F7 FLAGS: "
			     "0x00000000[F0" +
			     [] {
				     std::string bytes;
				     for (int i = 0; i < 31; i++)
					     bytes += " 47";
				     return bytes;
			     }() +
			     "...]"));
}

TEST_F(sysex, the_windows_live_while_it_waits)
{
	transcript_midi t(h, "> F0 47 00 00 48 F7\n< nothing");
	double last = 0, longest = 0;
	int pumps = 0;
	h.on_pump = [&] {
		longest = std::max(longest, h.time.now() - last);
		last = h.time.now();
		pumps++;
	};
	ask();
	EXPECT_GE(pumps, 29);
	EXPECT_LE(longest, 0.1001);
}

TEST_F(sysex, an_exchange_inside_an_exchange_is_refused)
{
	transcript_midi t(h, "> F0 47 00 00 48 F7\n> 90 3C 40\n< F0 01 F7");
	u8 inner[10] = { 1 };
	int inner_length = 10;
	bool once = false;
	h.on_pump = [&] {
		if (once)
			return;
		once = true;
		send_midi_string_ex(question, sizeof question, inner, &inner_length, 1);
		const u8 note[] = { 0x90, 0x3C, 0x40 };
		send_midi_string(note, sizeof note);
	};
	EXPECT_EQ(ask().answer, hex("F0 01 F7"));
	EXPECT_EQ(inner_length, 0);
	EXPECT_TRUE(h.logged("[W] MIDI exchange refused: another one is under way"));
	EXPECT_TRUE(t.finished());
}

// ---- Ports that fail ------------------------------------------------------------------------

TEST_F(sysex, a_failing_port_is_shown_and_leaves_the_length)
{
	struct failure {
		const char *name;
		int port_faults::*where;
		bool sends; // the message still goes out
	};
	static const failure failures[] = {
		{ "output does not open", &port_faults::open_output, false },
		{ "input does not open", &port_faults::open_input, false },
		{ "input does not arm", &port_faults::arm, false },
		{ "write fails", &port_faults::write, false },
		{ "port fails while sending", &port_faults::leaving, true },
		{ "overrun while receiving", &port_faults::input, true },
	};
	for (const failure &f : failures) {
		SCOPED_TRACE(f.name);
		test_host fresh;
		transcript_midi t(fresh,
			f.sends ? "> F0 47 00 00 48 F7\n< F0 01 F7\n> F0 47 00 00 48 F7\n< F0 01 F7"
				: "> F0 47 00 00 48 F7\n< F0 01 F7");
		t.faults.*f.where = 19;
		std::vector<u8> buffer(50, 0xEE);
		int length = 50;
		send_midi_string_ex(question, sizeof question, buffer.data(), &length, 1);
		EXPECT_EQ(length, 50);
		EXPECT_EQ(buffer, std::vector<u8>(50, 0));
		ASSERT_EQ(fresh.boxes.size(), 1u);
		EXPECT_EQ(fresh.boxes[0].text, "MIDI port code 19");
		EXPECT_EQ(fresh.boxes[0].caption.substr(0, 24), "ERROR (velmor_sysex.cpp:");
		EXPECT_EQ(t.inputs_open, 0);
		// The cable is back: the next exchange works without a restart.
		t.faults = {};
		fresh.time.run_until(fresh.time.now() + 1);
		length = 50;
		send_midi_string_ex(question, sizeof question, buffer.data(), &length, 1);
		EXPECT_EQ(length, 3);
		EXPECT_EQ(t.outputs_open, 1);
		EXPECT_TRUE(t.finished());
	}
}

TEST_F(sysex, a_port_that_does_not_send_is_given_up)
{
	transcript_midi t(h, "> F0 47 00 00 48 F7");
	t.faults.stuck = true;
	const outcome o = ask();
	EXPECT_EQ(o.length, 1000);
	EXPECT_NEAR(o.seconds, 2, 0.11);
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0].text,
		"The MIDI output does not send. Is the interface still connected?");
	EXPECT_EQ(t.outputs_open, 0);
	EXPECT_LE(h.log().size(), 25u); // ten lines a second
}

TEST_F(sysex, no_input_chosen_is_shown)
{
	transcript_midi t(h, "");
	selected_midi_in_interface = -1;
	EXPECT_EQ(ask().length, 1000);
	EXPECT_EQ(h.boxes.size(), 1u);
}

TEST_F(sysex, another_output_takes_effect_with_the_next_message)
{
	transcript_midi t(h, "> 90 3C 40\n> 90 3C 00");
	send_midi_string(hex("90 3C 40").data(), 3);
	selected_midi_out_interface = -1; // the first one listed
	send_midi_string(hex("90 3C 00").data(), 3);
	EXPECT_EQ(t.outputs_opened, 2);
	EXPECT_EQ(t.outputs_open, 1);
	close_midi_output();
	EXPECT_EQ(t.outputs_open, 0);
	EXPECT_EQ(the_outHandle, -1);
}

// ---- The S900's way ---------------------------------------------------------------------------

TEST_F(sysex, the_s900_is_sent_through_a_port_of_its_own)
{
	transcript_midi t(h, R"(
		> 90 3C 40
		> F0 47 00 00 48 F7
		< F0 47 F7
		> F0 47 00 00 48 F7
		< nothing
	)");
	send_midi_string(hex("90 3C 40").data(), 3); // leaves the shared output open
	const outcome o = ask(100, 1, true);
	EXPECT_EQ(o.answer, hex("F0 47 F7"));
	EXPECT_TRUE(h.logged("[D] MIDI-OUT: 6 Bytes (F0 47 00 00 48 F7)"));
	EXPECT_TRUE(h.logged("[D] Midi-Data sent successfully [F0 47 00 00 48 F7] 6 Bytes..."));
	EXPECT_EQ(t.outputs_open, 0);
	h.time.run_until(10.25);
	EXPECT_NEAR(ask(100, 1, true).seconds, 3.75, 0.001);
	EXPECT_TRUE(t.finished());
}

TEST_F(sysex, an_s900_output_that_does_not_open_ends_the_process)
{
	transcript_midi t(h, "> F0 47 00 00 48 F7");
	t.faults.open_output = 16;
	EXPECT_THROW(ask(100, 1, true), process_ended);
	EXPECT_EQ(
		h.boxes, (std::vector<shown_box>{ { "Failed to open Midi-Out Device", "FATAL" } }));
	t.faults = {};
	EXPECT_EQ(ask(100, 0, true).length, 100); // and nothing was left half done
}

// ---- Waiting, and sending alone -----------------------------------------------------------------

TEST_F(sysex, a_message_is_waited_for)
{
	transcript_midi t(h, "< @0.5 F0 7E 01 7F F7 F0 01");
	const outcome o = wait();
	EXPECT_EQ(o.answer, hex("F0 7E 01 7F F7"));
	EXPECT_NEAR(o.seconds, 2, 0.001); // rests until one second more has passed
	EXPECT_EQ(t.outputs_opened, 0);
	EXPECT_EQ(t.inputs_open, 0);
}

TEST_F(sysex, part_of_a_message_is_no_message_when_waiting)
{
	transcript_midi t(h, "< F0 7E 01");
	const outcome o = wait();
	EXPECT_EQ(o.length, 0);
	EXPECT_NEAR(o.seconds, 3, 0.001);
}

TEST_F(sysex, a_full_block_does_not_end_a_wait)
{
	transcript_midi t(h, "< F0 7F*99");
	const outcome o = wait(10);
	EXPECT_EQ(o.length, 0);
	EXPECT_NEAR(o.seconds, 3, 0.001);
}

TEST_F(sysex, a_message_is_sent_without_an_answer)
{
	transcript_midi t(h, "> F0 00*17 F7");
	const std::vector<u8> message = hex("F0 00*17 F7");
	const double began = h.time.now();
	send_midi_string(message.data(), 19);
	EXPECT_NEAR(h.time.now() - began, 19 * 0.00032, 0.001);
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
	EXPECT_TRUE(h.logged("[D] MIDI-OUT[0] --> NAME: [transcript out](0,0) Version: 0"));
	EXPECT_TRUE(h.logged("[D] MIDI-IN[0] --> NAME: [transcript in](0,0) Version: 0"));
	EXPECT_EQ((h.texts[{ window_settings, settings_found }]),
		"MIDI-OUT found: 1, MIDI-IN found: 1");
}

} // namespace velmor
