// s5000.cpp - a virtual S5000 or S6000 on USB: frames, answers, contents

#include "virtual/s5000.h"
#include "virtual/s5000_requests.h"
#include "virtual/screen_keys.h"
#include <algorithm>

namespace velmor
{

using bytes_in = std::span<const std::uint8_t>;

// ---- Contents ----------------------------------------------------------------------------

s5000_zone::s5000_zone()
{
	value[0x03] = { 64 };  // panning, in the middle
	value[0x08] = { 1 };   // keyboard track
	value[0x0B] = { 127 }; // high velocity
}

s5000_keygroup::s5000_keygroup()
{
	at(0x04) = { 21 };  // low note
	at(0x05) = { 127 }; // high note
	at(0x12) = { 100 }; // level
	at(0x21) = { 100 }; // filter cutoff
	at(0x33) = { 100 }; // filter sustain
}

std::array<std::uint8_t, 2> &s5000_keygroup::at(std::uint8_t write_item, int sub)
{
	for (std::size_t row = 0; row < value.size(); row++)
		if (s5000_block_items[row].write == write_item)
			return value[row][static_cast<std::size_t>(sub - 1)];
	return value[0][0];
}

s5000::s5000()
{
	vendor = 0x09E8;
	product = 0x5E;
	product_name = "AKAI S5000/S6000";
	name = "S5000";
	picture.resize(320 * 240 / 8);
	panel = make_panel(*this);
}

s5000::~s5000() = default;

void s5000::plugged_in()
{
	usb_sampler::plugged_in();
	current_program = current_keygroup = 0;
	sums_checked = true;
}

int s5000::find_handle(bytes_in handle) const
{
	const std::uint32_t wanted = static_cast<std::uint32_t>(handle[0]) << 8 | handle[1];
	for (std::size_t i = 0; i < samples.size(); i++)
		if (samples[i].handle == wanted)
			return static_cast<int>(i);
	return -1;
}

void s5000::store_upload(usb_sample sample)
{
	samples.push_back(std::move(sample));
}

// ---- Frames ------------------------------------------------------------------------------

bool s5000::heard_wake_up(bytes_in message)
{
	if (message.size() != 2)
		return false;
	if (message[0] == 0x03 && message[1] == 0x14) {
		forget_transfer();
		if (awake == awake_state::asleep)
			awake = awake_state::half;
		return true;
	}
	if (message[0] == 0x04 && message[1] == 0x03 && awake != awake_state::asleep) {
		forget_transfer();
		awake = awake_state::awake;
		return true;
	}
	return false;
}

void s5000::heard_raw(bytes_in) {} // noise

//                                   0     1     2     3     4     5     6     7..8
// 10 len len F0 47 5E 2c 00 00  payload  sum F7
static constexpr std::size_t frame_payload = 9;
static constexpr std::size_t shortest_frame = frame_payload + 2 + 2;

static bool well_formed(bytes_in f, int channel)
{
	if (f.size() < shortest_frame || f.back() != 0xF7)
		return false;
	if (static_cast<std::size_t>(f[1] | f[2] << 8) != f.size() - 3)
		return false;
	if (f[3] != 0xF0 || f[4] != 0x47 || f[5] != 0x5E || f[7] != 0 || f[8] != 0)
		return false;
	return f[6] == 0x20 || f[6] == (0x20 | channel);
}

void s5000::heard_frame(bytes_in frame)
{
	if (!well_formed(frame, channel))
		return;
	const bytes_in payload = frame.subspan(frame_payload, frame.size() - frame_payload - 2);
	unsigned sum = 0;
	for (std::uint8_t b : payload)
		sum += b;
	asked = { payload[0], payload[1] };
	if (confirms)
		answer_with('O', {});
	if (sums_checked && frame[frame.size() - 2] != (sum & 0x7F)) {
		const std::uint8_t reason[] = { refused_sum };
		answer_with('E', reason);
		return;
	}
	run(payload);
}

void s5000::answer_with(char status, bytes_in data, double longer)
{
	usb_bytes bytes = { 0xF0, 0x47, 0x5E, static_cast<std::uint8_t>(channel), 0x00, 0x00,
		static_cast<std::uint8_t>(status), asked[0], asked[1] };
	if (status == 'O' && confirm_at == 5)
		bytes[5] = 'O';
	bytes.insert(bytes.end(), data.begin(), data.end());
	bytes.push_back(0xF7);
	say_framed(std::move(bytes), longer);
}

// Section of the front panel: keys, wheel, keyboard.
static constexpr std::uint8_t panel_section = 0x20;
static constexpr std::uint8_t disk_section = 0x10;

void s5000::run(bytes_in payload)
{
	if (asked[0] == panel_section) {
		const request_outcome told = heard_panel(payload);
		answer_with(told.status, told.data);
		return;
	}
	if (asked[0] == disk_section) {
		const request_outcome told = disk_request(disks, asked[1], payload.subspan(2));
		answer_with(told.status, told.data, disks.latency);
		return;
	}
	for (const s5000_request &r : s5000_request_rows) {
		const bool is_block = r.form == request_form::block; // has no item
		if (r.section != asked[0] || (!is_block && r.item != asked[1]))
			continue;
		request_arguments a = {};
		const bool fits =
			take_arguments(r.form, r.count, payload.subspan(is_block ? 1 : 2), &a);
		const request_outcome done = fits ? r.run(*this, a) : refuse(refused_length);
		answer_with(done.status, done.data);
		return;
	}
	const std::uint8_t reason[] = { refused_unknown };
	answer_with('E', reason);
}

} // namespace velmor
