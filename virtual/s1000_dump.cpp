// s1000_dump.cpp - a sampler of the S1000 family: taking a sample dump
//
// MIDI Sample Dump Standard, with 16 bits in three bytes:
//
//	F0 7E cc 01 ss ss 10 pp*3 ll*3 aa*3 bb*3 jj F7   header: period in ns, words, loop
//	F0 7E cc 02 kk data*120 xx F7                    packet k, 40 words, checksum
//	F0 7E cc 7F kk F7                                7F ACK, 7E NAK, 7D CANCEL, 7C WAIT
//
// A dump to the number of a sample takes its memory: with the header the old words are
// gone, and only its name stands. The new words count when the last packet is there. A
// dump that breaks off ends with the next header or the host's CANCEL.

#include "virtual/s1000.h"
#include <cmath>

namespace velmor
{

using machine::byte_view;
using machine::bytes;

enum {
	dump_sample = 4,
	dump_bits = 6,
	dump_period = 7,
	dump_length = 10,
	dump_loop_start = 13,
	dump_loop_end = 16,
	dump_loop_type = 19,
	dump_header_size = 21,
	packet_number = 4,
	packet_words = 5,
	packet_checksum = 125,
	packet_size = 127,
};
static constexpr std::uint8_t ack = 0x7F, nak = 0x7E, cancel = 0x7D, every_channel = 0x7F;
static constexpr std::uint8_t no_loop = 0x7F;
static constexpr std::size_t name_at = 3;

bytes s1000_machine::handshake(std::uint8_t word, std::uint8_t packet) const
{
	return { 0xF0, 0x7E, channel, word, packet, 0xF7 };
}

bytes s1000_machine::dump_message(byte_view message)
{
	if (message[2] != channel && message[2] != every_channel)
		return {};
	if (message[3] == 0x01)
		return begin_dump(message);
	if (message[3] == 0x02)
		return take_packet(message);
	if (message[3] == cancel)
		receiving.reset();
	return {};
}

// 44100 and 22050 Hz are no whole number of nanoseconds; what is near is meant so.
static unsigned rate_of(std::uint32_t period)
{
	const double rate = 1e9 / period;
	for (const unsigned meant : { 44100u, 22050u, 48000u, 32000u })
		if (std::fabs(rate - meant) < meant * 0.001)
			return meant;
	return static_cast<unsigned>(std::min(rate, 65535.0));
}

bytes s1000_machine::begin_dump(byte_view message)
{
	receiving.reset();
	last_packet.reset();
	const std::size_t sample = machine::number_from_sevens(message, dump_sample, 2);
	const std::uint32_t period = machine::number_from_sevens(message, dump_period, 3);
	if (message.size() != dump_header_size || message[dump_bits] != 16 || !period ||
		sample > samples.size())
		return handshake(nak, 0);
	const std::size_t length = machine::number_from_sevens(message, dump_length, 3);
	const bool known = sample < samples.size();
	const std::size_t room = words_free() + (known ? samples[sample].words.size() : 0);
	if (length > room || (!known && !blocks_free()))
		return handshake(cancel, 0);
	if (known)
		put_sample(sample, rate_of(period), {});
	receiving = { .sample = sample,
		.length = length,
		.rate = rate_of(period),
		.loop_start = machine::number_from_sevens(message, dump_loop_start, 3),
		.loop_end = machine::number_from_sevens(message, dump_loop_end, 3),
		.looped = message[dump_loop_type] != no_loop,
		.packet = 0,
		.words = {} };
	if (!length)
		finish_dump();
	return handshake(ack, 0);
}

bytes s1000_machine::take_packet(byte_view message)
{
	const std::uint8_t number = message[packet_number];
	if (message.size() != packet_size)
		return handshake(nak, number & 0x7F);
	std::uint8_t sum = 0;
	for (std::size_t i = 1; i < packet_checksum; i++)
		sum ^= message[i];
	if ((sum & 0x7F) != message[packet_checksum])
		return handshake(nak, number);
	if (last_packet == number)
		return handshake(ack, number);
	if (!receiving)
		return handshake(cancel, number);
	dump &d = *receiving;
	if (number != d.packet)
		return handshake(nak, number);
	for (std::size_t at = packet_words; at < packet_checksum && d.words.size() < d.length;
		at += 3)
		d.words.push_back(machine::word_from_host(message, at));
	last_packet = number;
	d.packet = (number + 1) & 0x7F;
	if (d.words.size() == d.length)
		finish_dump();
	return handshake(ack, number);
}

// A sample that was there keeps its name; a new one is named by the machine.
stored_sample &s1000_machine::put_sample(
	std::size_t number, unsigned rate, std::vector<std::int16_t> words)
{
	if (number == samples.size())
		return add_sample(
			"MIDI DUMP " + std::to_string(number + 1), rate, std::move(words));
	add_sample(machine::get_name(samples[number].header, name_at), rate, std::move(words));
	samples[number] = std::move(samples.back());
	samples.pop_back();
	return samples[number];
}

void s1000_machine::finish_dump()
{
	dump d = std::move(*receiving);
	receiving.reset();
	stored_sample &s = put_sample(d.sample, d.rate, std::move(d.words));
	if (d.looped && d.loop_start < d.loop_end && d.loop_end <= d.length)
		set_loop(s, d.loop_start, d.loop_end);
}

} // namespace velmor
