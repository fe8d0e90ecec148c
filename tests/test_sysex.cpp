// test_sysex.cpp - messages and answers over a MIDI port

#include "src/velmor.h"
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

TEST_F(sysex, an_answer_is_handed_over_as_soon_as_it_ends)
{
	transcript_midi t(h, R"(
		> F0 47 00 00 48 F7
		< F0 47 00 01 48 F7
	)");
	const outcome o = ask();
	EXPECT_EQ(o.answer, hex("F0 47 00 01 48 F7"));
	// Six bytes at 31250 baud and a millisecond.
	EXPECT_NEAR(o.seconds, 6 * 0.00032 + 0.001, 1e-9);
	EXPECT_TRUE(h.logged("[D] MIDI-OUT: 6 Bytes (F0 47 00 00 48 F7)"));
	EXPECT_TRUE(h.logged("[D] Still waiting for sending of midi-buffer"));
	EXPECT_TRUE(h.logged("[D] Midi-Data sent successfully"));
	EXPECT_TRUE(t.finished());
	EXPECT_EQ(t.inputs_open, 0);
	EXPECT_EQ(t.outputs_open, 1);
}

} // namespace velmor
