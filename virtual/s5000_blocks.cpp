// s5000_blocks.cpp - block requests of a virtual S5000: many parameters of one keygroup
//
//   3A program*2 keygroup, then groups of four bytes
//   to read     item sub 00 00
//   to write    item value 00 00 | item sign size 00 | item sub sign size
//
// program is the index in two bytes of seven bits, keygroup counts from 1. The values
// come back in the order of the groups. The last group of a request may lack its fourth
// byte when that is 0. Reading and writing may be mixed.

#include "virtual/s5000_requests.h"

namespace velmor
{

using bytes_in = std::span<const std::uint8_t>;

// clang-format off
const std::array<s5000_block_item, s5000_block_rows> s5000_block_items = { {
	// read write subs sign
	{ 0x0A, 0x04, 0, false }, // low note
	{ 0x0B, 0x05, 0, false }, // high note
	{ 0x0C, 0x06, 0, false }, // mute group
	{ 0x0D, 0x07, 0, false }, // effects override
	{ 0x0E, 0x08, 0, false }, // effects send
	{ 0x0F, 0x09, 0, false }, // crossfade
	{ 0x18, 0x10, 0, true },  // semitones
	{ 0x19, 0x11, 0, true },  // fine
	{ 0x1A, 0x12, 0, false }, // level
	{ 0x1B, 0x13, 2, true },  // pitch modulation
	{ 0x1C, 0x14, 1, true },  // amplitude modulation
	{ 0x28, 0x20, 0, false }, // filter mode
	{ 0x29, 0x21, 0, false }, // cutoff
	{ 0x2A, 0x22, 0, false }, // resonance
	{ 0x2B, 0x23, 0, true },  // keyboard track
	{ 0x2C, 0x24, 3, true },  // filter modulation
	{ 0x2D, 0x25, 0, false }, // attenuation
	{ 0x40, 0x30, 0, false }, // filter envelope: attack
	{ 0x41, 0x31, 0, true },  // velocity to attack
	{ 0x42, 0x32, 0, false }, // decay
	{ 0x43, 0x33, 0, false }, // sustain
	{ 0x44, 0x34, 0, false }, // release
	{ 0x45, 0x35, 0, true },  // on velocity to release
	{ 0x46, 0x36, 0, true },  // key scaling
	{ 0x47, 0x37, 0, true },  // depth
	{ 0x48, 0x38, 0, true },  // off velocity to release
} };
// clang-format on

using block_values = decltype(s5000_keygroup::value);

// Sub-index of a group, from 0, or -1 when this item has no such one.
static int sub_of(const s5000_block_item &item, std::uint8_t sub)
{
	if (item.subs == 0)
		return 0;
	return sub >= 1 && sub <= item.subs ? sub - 1 : -1;
}

static bool read_group(const block_values &values, std::size_t row, bytes_in g, usb_bytes *data)
{
	const s5000_block_item &item = s5000_block_items[row];
	const int sub = sub_of(item, g[1]);
	if (sub < 0 || (item.subs == 0 && g[1] != 0) || g[2] != 0 || g[3] != 0)
		return false;
	const auto &value = values[row][static_cast<std::size_t>(sub)];
	data->insert(data->end(), value.begin(), value.begin() + (item.has_sign ? 2 : 1));
	return true;
}

static bool write_group(block_values *values, std::size_t row, bytes_in g)
{
	const s5000_block_item &item = s5000_block_items[row];
	const int sub = sub_of(item, g[1]);
	if (sub < 0)
		return false;
	auto &value = (*values)[row][static_cast<std::size_t>(sub)];
	if (!item.has_sign) {
		value = { g[1] };
		return g[2] == 0 && g[3] == 0;
	}
	const std::size_t sign = item.subs ? 2 : 1;
	value = { g[sign], g[sign + 1] };
	return g[sign] <= 1 && (item.subs || g[3] == 0);
}

static bool do_group(block_values *values, bytes_in g, usb_bytes *data)
{
	for (std::size_t row = 0; row < s5000_block_items.size(); row++) {
		if (s5000_block_items[row].read == g[0])
			return read_group(*values, row, g, data);
		if (s5000_block_items[row].write == g[0])
			return write_group(values, row, g);
	}
	return false;
}

request_outcome s5000_block_request(s5000 &machine, const request_arguments &a)
{
	const auto program = static_cast<std::size_t>(a.bytes[0] * 128 + a.bytes[1]);
	const std::size_t keygroup = a.bytes[2];
	if (program >= machine.programs.size() || keygroup < 1 ||
		keygroup > machine.programs[program].keygroups.size())
		return refuse(refused_missing);
	s5000_keygroup &k = machine.programs[program].keygroups[keygroup - 1];
	block_values values = k.value;
	request_outcome outcome = { 'D', {} };
	for (std::size_t at = 3; at < a.bytes.size(); at += 4) {
		std::uint8_t g[4] = {};
		for (std::size_t i = 0; i < 4 && at + i < a.bytes.size(); i++)
			g[i] = a.bytes[at + i];
		if (!do_group(&values, g, &outcome.data))
			return refuse(refused_value);
	}
	k.value = values;
	if (!outcome.data.empty())
		outcome.status = 'R';
	return outcome;
}

} // namespace velmor
