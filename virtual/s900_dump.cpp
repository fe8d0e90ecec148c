// s900_dump.cpp - an S900 or S950: sample dumps, both ways
//
// A dump is one exclusive message, however long: nothing but its end frames its blocks.
//
//	F0 7E 01 nn 00 0C pp*3 ll*3 aa*3 bb*3 jj     period in ns, words, loop; jj 1: no loop
//	kk data*120 xx                               block k, 60 words, exclusive-or of them
//	F7
//
// A word counted from the bottom stands left-justified in two bytes: 0 is 800, 40 00.

#include "virtual/s900.h"
#include <algorithm>
#include <cstdio>

namespace velmor
{

using machine::byte_view;
using machine::bytes;

enum {
	dump_what = 2, // where a channel would be
	dump_number = 3,
	dump_zero = 4,
	dump_bits = 5,
	dump_period = 6,
	dump_length = 9,
	dump_loop_start = 12,
	dump_loop_end = 15,
	dump_loop_type = 18,
	head_size = 19,
	block_number = 0,
	block_words = 1,
	block_checksum = 121,
	block_size = 122,
	request_size = 6,
	go_on_size = 4,
};
static constexpr std::uint8_t a_request = 0x00, a_dump = 0x01, a_go_on = 0x7F;
static constexpr std::uint8_t with_loop = 0, without_loop = 1;
static constexpr std::size_t words_in_block = 60;
static constexpr std::uint32_t most_rate[] = { 40000, 48000 };

// How long it is at work on a head, a block and the end of a dump: less than a host is told
// to leave it.
static constexpr double head_time = 0.35, block_time = 0.25, end_time = 0.4;

bool s900_machine::early(double ready) const
{
	return clock && takes_time && clock() < ready;
}

void s900_machine::busy_for(dump_in &d, double seconds) const
{
	d.ready = (clock ? clock() : 0) + seconds;
}

bytes s900_machine::dump_message(byte_view message)
{
	const bool ends_mine = receiving && receiving->taken < message.size();
	dump_in d = ends_mine ? std::move(*receiving) : dump_in();
	receiving.reset();
	if (!common_exclusive || early(deaf_until))
		return {};
	switch (message[dump_what]) {
	case a_request:
		return begin_sending(message);
	case a_go_on:
		return message.size() == go_on_size ? go_on() : bytes();
	case a_dump: {
		sending.reset();
		bytes said = hear_dump(d, message.first(message.size() - 1).subspan(d.taken));
		finish_dump(d);
		return said;
	}
	default:
		return {};
	}
}

// ---- From the machine --------------------------------------------------------------

static std::size_t blocks_for(std::size_t words)
{
	return (words + words_in_block - 1) / words_in_block;
}

bytes s900_machine::begin_sending(byte_view message)
{
	if (message.size() != request_size || message[dump_zero])
		return {};
	const s900_sample *s = sample_of(message[dump_number]);
	sending.reset();
	if (!s)
		return {};
	sending = { .number = s->number, .block = 0 };
	return dump_head(*s);
}

bytes s900_machine::dump_head(const s900_sample &s) const
{
	const std::uint32_t rate = std::max(1u, machine::get_number(s.header, header_rate, 2));
	const auto length = static_cast<std::uint32_t>(s.words.size());
	const bool looped = s.header[header_mode] != one_shot;
	const std::uint32_t start = machine::get_number(s.header, header_loop_start, 4);
	const std::uint32_t size = machine::get_number(s.header, header_loop_length, 4);
	bytes head = { 0xF0, 0x7E, a_dump, s.number, 0, 12 };
	machine::append_sevens(head, 1000000000 / rate, 3);
	machine::append_sevens(head, length, 3);
	machine::append_sevens(head, looped ? start : length, 3);
	machine::append_sevens(head, looped ? start + size : length, 3);
	head.push_back(looped ? with_loop : without_loop);
	return head;
}

// The next block; behind the last one, the end.
bytes s900_machine::go_on()
{
	const s900_sample *s = sending ? sample_of(sending->number) : nullptr;
	if (!s)
		return {};
	const std::size_t k = sending->block++;
	if (k >= blocks_for(s->words.size())) {
		sending.reset();
		return { 0xF7 };
	}
	bytes block(block_size);
	block[block_number] = k & 0x7F;
	for (std::size_t i = 0; i < words_in_block; i++) {
		const std::size_t word = k * words_in_block + i;
		if (word == s->words.size())
			break;
		const unsigned level = static_cast<unsigned>(s->words[word] + 0x800);
		block[block_words + 2 * i] = level >> 5 & 0x7F;
		block[block_words + 2 * i + 1] = level << 2 & 0x7C;
	}
	for (std::size_t i = block_words; i < block_checksum; i++)
		block[block_checksum] ^= block[i];
	return block;
}

// ---- To the machine ----------------------------------------------------------------

bytes s900_machine::part(std::size_t at, byte_view fresh)
{
	if (at == 0)
		receiving = dump_in{};
	if (!receiving)
		return {};
	receiving->spoiled |= early(deaf_until);
	return hear_dump(*receiving, fresh);
}

bytes s900_machine::hear_dump(dump_in &d, byte_view fresh)
{
	bytes said;
	static constexpr std::uint8_t more[] = { 0xF0, 0x7E, a_go_on, 0xF7 };
	d.taken += fresh.size();
	if (!d.spoiled)
		d.unread.insert(d.unread.end(), fresh.begin(), fresh.end());
	while (!d.spoiled && d.unread.size() >= (d.begun ? block_size : head_size)) {
		const auto end = d.unread.begin() + (d.begun ? block_size : head_size);
		const bytes unit(d.unread.begin(), end);
		d.unread.erase(d.unread.begin(), end);
		d.spoiled = early(d.ready) || !(d.begun ? take_block(d, unit) : take_head(d, unit));
		busy_for(d, d.begun ? block_time : head_time);
		d.begun = true;
		if (!d.spoiled)
			said.insert(said.end(), std::begin(more), std::end(more));
	}
	return said;
}

bool s900_machine::take_head(dump_in &d, byte_view head) const
{
	const std::uint32_t period = machine::number_from_sevens(head, dump_period, 3);
	if (!common_exclusive || head[1] != 0x7E || head[dump_what] != a_dump || head[dump_zero] ||
		head[dump_bits] != 12 || head[dump_loop_type] > without_loop || !period)
		return false;
	d.number = head[dump_number];
	d.rate = 1000000000 / period;
	d.length = machine::number_from_sevens(head, dump_length, 3);
	d.loop_start = machine::number_from_sevens(head, dump_loop_start, 3);
	d.loop_end = machine::number_from_sevens(head, dump_loop_end, 3);
	d.looped = head[dump_loop_type] == with_loop;
	const auto old = std::find_if(samples.begin(), samples.end(),
		[&](const s900_sample &s) { return s.number == d.number; });
	const std::size_t room = words_free() + (old == samples.end() ? 0 : old->words.size());
	return d.number < number_room && d.rate <= most_rate[static_cast<std::size_t>(model)] &&
	       d.length && d.length <= room;
}

// The words behind the last one fill the block and are no part of the sample.
bool s900_machine::take_block(dump_in &d, byte_view block) const
{
	std::uint8_t sum = 0;
	for (std::size_t i = block_words; i < block_checksum; i++)
		sum ^= block[i];
	if (d.words.size() == d.length || block[block_number] != (d.block & 0x7F) ||
		block[block_checksum] != sum)
		return false;
	for (std::size_t at = block_words; at < block_checksum && d.words.size() < d.length;
		at += 2)
		d.words.push_back(
			static_cast<std::int16_t>(block[at] * 32 + (block[at + 1] >> 2) - 0x800));
	d.block++;
	return true;
}

// A sample that was there keeps its name, pitch and all that a dump does not tell.
void s900_machine::finish_dump(dump_in &d)
{
	if (d.spoiled || !d.begun || !d.unread.empty() || d.words.size() != d.length ||
		early(d.ready))
		return;
	s900_sample *s = sample_of(d.number);
	if (!s) {
		char name[11];
		std::snprintf(name, sizeof name, "DUMP %02u", d.number + 1u);
		s = &add_sample(name, d.rate, {});
		s->number = d.number;
	}
	s->words = std::move(d.words);
	describe(*s, d.rate);
	if (d.looped && d.loop_start < d.loop_end && d.loop_end <= d.length)
		set_loop(*s, d.loop_start, d.loop_end);
	busy_for(d, end_time);
	deaf_until = d.ready;
}

} // namespace velmor
