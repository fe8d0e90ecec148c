// akaimidi.h - what the drivers of MIDI samplers share: asking, answers, counts
//
// Every exclusive message of these machines begins  F0 47 cc ff : cc the exclusive channel, ff
// the function; most carry an index of a program or sample behind the family byte. Used by the
// drivers, each of which knows its own family byte, functions and blocks.
//
// Knows nothing of: what a message asks for, windows.

#pragma once
#include "src/velmor.h"
#include <array>

namespace velmor
{

enum {
	akai_channel = 2,
	akai_function = 3,
	akai_index = 5,
};

inline constexpr int akai_answer_room = 1000; // of most exchanges

// What came back from the sampler, and not a byte more.
struct akai_answer {
	std::vector<u8> bytes;
	bool port_failed; // the message never left; a box has said so

	bounded_bytes view() const { return { bytes }; }
	u8 operator[](std::size_t at) const { return view()[at]; }
	int size() const { return static_cast<int>(bytes.size()); }
	// The two bytes of an index or a count, seven bits each.
	int number() const { return (*this)[akai_index] + 128 * (*this)[akai_index + 1]; }
};

// The way a message goes: send_midi_string_ex, or that of the S900.
using akai_exchange = void (*)(
	const u8 *output, int output_len, u8 *input, int *_input_len, int msg_count);

// Send a message and take one answer of at most room bytes.
akai_answer ask_akai(std::span<const u8> message, int room = akai_answer_room,
	akai_exchange exchange = send_midi_string_ex);
// Send a message that has no answer, or a part of a longer one. False when it did not leave,
// which a box has said.
bool tell_akai(std::span<const u8> message);
// A rest that the sampler needs. The interface runs meanwhile.
void akai_pause(int milliseconds);

// A message with its holes filled: the exclusive channel, and where the message has one, the
// index of a program or sample.
template <std::size_t size>
std::array<u8, size> akai_message(std::array<u8, size> message, u8 sysex_channel, int index = -1)
{
	message[akai_channel] = sysex_channel;
	if (index >= 0) {
		message[akai_index] = static_cast<u8>(index & 0x7F);
		message[akai_index + 1] = static_cast<u8>(index >> 7 & 0x7F);
	}
	return message;
}

// A list or a transfer ends here: the port failed, or the user wants no more.
bool akai_interrupted(const akai_answer &answer);

// A count that a sampler gave, and no more than there is room for.
int akai_kept_count(int count, int room, const char *what);

// Work without a bar has no Stop to press: a sampler that was switched off is left alone after
// a few silent answers in a row.
class akai_silence
{
public:
	// Count one more answer.
	void hear(const akai_answer &answer) { silent = answer.size() ? 0 : silent + 1; }
	bool too_long() const { return silent >= most; }

private:
	static constexpr int most = 3;
	int silent = 0;
};

} // namespace velmor
