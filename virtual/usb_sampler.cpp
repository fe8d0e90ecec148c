// usb_sampler.cpp - what the S5000 and Z families share on USB

#include "virtual/usb_sampler.h"
#include "virtual/screen_keys.h"
#include <algorithm>

namespace velmor
{

using bytes_in = std::span<const std::uint8_t>;

enum : std::uint8_t {
	frame_start = 0x10,
	raw_display = 0x01,
	raw_put = 0x20,
	raw_get = 0x21,
	raw_go_on = 0x00,
};

static constexpr std::size_t put_name = 5;          // offset of the name in 20 size*4 name
static constexpr std::size_t block_answer_size = 8; // count of answers, then the next block size
static constexpr std::size_t display_extra = 18;

static void put_big_endian(usb_bytes *b, std::size_t value)
{
	for (int shift = 24; shift >= 0; shift -= 8)
		b->push_back(static_cast<std::uint8_t>(value >> shift));
}

bool take_text(bytes_in bytes, std::string *text)
{
	const auto end = std::find(bytes.begin(), bytes.end(), 0);
	text->assign(bytes.begin(), end);
	return end != bytes.end() && end + 1 == bytes.end();
}

usb_sampler::usb_sampler() = default;
usb_sampler::~usb_sampler() = default;

void usb_sampler::add_sample(std::string sample_name, usb_bytes wave)
{
	samples.push_back({ std::move(sample_name), std::move(wave), next_handle++ });
}

void usb_sampler::plugged_in()
{
	usb_machine::plugged_in();
	awake = asleep_at_power_on ? awake_state::asleep : awake_state::awake;
	confirms = confirms_at_power_on;
	current_sample = 0;
	disks.forget_place();
	panel->power_on();
	forget_transfer();
	outbox.clear();
}

// It is not busy any more, whatever waits to be read.
void usb_sampler::forget_transfer()
{
	panel->let_go();
	doing = phase::framed;
	arriving = {};
	leaving.clear();
	if (!keeps_unread)
		outbox.clear();
	for (usb_message &m : outbox)
		m.repeats = 0;
}

const usb_sample *usb_sampler::sample_now() const
{
	const auto index = static_cast<std::size_t>(current_sample);
	return current_sample >= 0 && index < samples.size() ? &samples[index] : nullptr;
}

wave_facts usb_sampler::facts_now() const
{
	wave_facts facts;
	if (const usb_sample *s = sample_now())
		read_wave(s->wave, &facts);
	return facts;
}

// ---- Messages --------------------------------------------------------------------------

std::size_t usb_sampler::message_size(bytes_in come, bool ended) const
{
	const std::size_t so_far = ended ? come.size() : 0;
	if (doing == phase::upload_block && block > 0)
		return come.size() >= block ? block : so_far;
	if (doing != phase::framed || come[0] != frame_start)
		return so_far;
	if (come.size() < 3)
		return so_far;
	const std::size_t size = 3 + (come[1] | static_cast<std::size_t>(come[2]) << 8);
	return come.size() >= size ? size : so_far;
}

void usb_sampler::handle(bytes_in message)
{
	// A short packet of the wake-up's form breaks off whatever is going on.
	const bool inside = inside_block();
	if (message.size() <= 2 && (doing != phase::upload_block || message.size() < block) &&
		heard_wake_up(message)) {
		interrupted += inside;
		return;
	}
	if (awake != awake_state::awake)
		return;
	switch (doing) {
	case phase::upload_block:
		take_block(message);
		return;
	case phase::upload_go_on:
		end_block(message);
		return;
	case phase::download:
		send_block(message);
		return;
	case phase::framed:
		break;
	}
	if (message[0] == frame_start)
		heard_frame(message);
	else if (message[0] == raw_put)
		begin_upload(message);
	else if (message[0] == raw_get)
		begin_download(message);
	else if (message[0] == raw_display && message.size() == 2 && message[1] == 0)
		send_display();
	else
		heard_raw(message);
}

bool usb_sampler::inside_block() const
{
	return doing == phase::upload_go_on || (doing != phase::framed && !outbox.empty());
}

void usb_sampler::say_busy()
{
	if (busy != 0)
		answer({ .bytes = { 'A', 'k', 'a', 'I' },
			.delay = block_latency,
			.repeats = busy < 0 ? -1 : busy - 1,
			.interval = busy_interval });
}

void usb_sampler::send_display()
{
	if (display_busy) {
		say({ 'A', 'k', 'a', 'I' }, latency);
		return;
	}
	if (shows_pages)
		picture = panel->display->draw().on_wire(panel->display->bits());
	say(picture, latency);
	say(usb_bytes(display_extra), latency);
}

const screen_canvas &usb_sampler::canvas() const
{
	return panel->shown();
}

request_outcome usb_sampler::heard_panel(bytes_in payload)
{
	request_outcome outcome = panel->heard(payload);
	if (outcome.status == 'D')
		key_presses.emplace_back(payload.begin(), payload.end());
	return outcome;
}

std::uint32_t usb_sampler::state_block_size()
{
	if (block_sizes.empty())
		return 0;
	const std::size_t i = std::min(next_block_size++, block_sizes.size() - 1);
	return block_sizes[i];
}

// ---- A sample comes --------------------------------------------------------------------

void usb_sampler::begin_upload(bytes_in message)
{
	if (message.size() <= put_name)
		return;
	arriving = {};
	arriving.name = name_of_upload(std::string(message.begin() + put_name, message.end()));
	upload_size = 0;
	for (std::size_t i = 1; i < put_name; i++)
		upload_size = upload_size << 8 | message[i];
	answers = blocks_taken = next_block_size = 0;
	if (upload_size > 0)
		answer_block();
	else
		refuse_transfer();
}

// Each answer: its number, so that it is never four zeros, then the size of the next block.
void usb_sampler::answer_block()
{
	say_busy();
	const bool whole = arriving.wave.size() >= upload_size;
	block = whole ? 0 : state_block_size();
	usb_bytes bytes;
	put_big_endian(&bytes, ++answers);
	put_big_endian(&bytes, block);
	say(bytes, block_latency);
	block_was_short = false;
	doing = whole ? phase::framed : block > 0 ? phase::upload_block : phase::upload_go_on;
}

void usb_sampler::refuse_transfer()
{
	say(usb_bytes(block_answer_size), block_latency);
	doing = phase::framed;
	arriving = {};
}

// The last block has its full size too; what exceeds the file is nobody's.
void usb_sampler::take_block(bytes_in message)
{
	block_was_short = message.size() < block;
	interrupted += block_was_short;
	std::size_t bytes = message.size();
	if (blocks_taken == 0 && first_block_bytes() > 0)
		bytes = std::min(bytes, first_block_bytes());
	bytes = std::min(bytes, upload_size - arriving.wave.size());
	arriving.wave.insert(arriving.wave.end(), message.begin(),
		message.begin() + static_cast<std::ptrdiff_t>(bytes));
	blocks_taken++;
	doing = phase::upload_go_on;
}

void usb_sampler::end_block(bytes_in message)
{
	const bool go_on = message.size() == 1 && message[0] == raw_go_on;
	const bool tired =
		refuse_after >= 0 && blocks_taken >= static_cast<std::size_t>(refuse_after);
	wave_facts facts;
	const bool whole = arriving.wave.size() >= upload_size;
	if (!go_on || block_was_short || tired || (whole && !read_wave(arriving.wave, &facts))) {
		say_busy();
		refuse_transfer();
		upload_is_over();
		return;
	}
	answer_block();
	if (!whole)
		return;
	arriving.handle = next_handle++;
	store_upload(std::move(arriving));
	arriving = {};
	upload_is_over();
}

// ---- A sample goes ---------------------------------------------------------------------

void usb_sampler::say_length(std::size_t length)
{
	usb_bytes bytes(length_answer_size() - 4);
	put_big_endian(&bytes, length);
	say(bytes, block_latency);
}

void usb_sampler::begin_download(bytes_in message)
{
	const int index =
		message.size() == 1 + handle_size() ? find_handle(message.subspan(1)) : -1;
	wave_facts facts;
	if (index < 0 || !read_wave(samples[static_cast<std::size_t>(index)].wave, &facts)) {
		say_length(0);
		return;
	}
	leaving = samples[static_cast<std::size_t>(index)].wave;
	left_at = facts.header;
	next_block_size = 0;
	say_length(facts.header);
	say({ leaving.begin(), leaving.begin() + static_cast<std::ptrdiff_t>(facts.header) },
		block_latency);
	leaving.resize(facts.header + facts.data);
	doing = phase::download;
}

void usb_sampler::send_block(bytes_in message)
{
	const bool go_on = message.size() == 1 && message[0] == raw_go_on;
	const std::size_t length =
		go_on ? std::min<std::size_t>(state_block_size(), leaving.size() - left_at) : 0;
	say_busy();
	say_length(length);
	if (length == 0) {
		doing = phase::framed;
		leaving.clear();
		return;
	}
	const auto from = leaving.begin() + static_cast<std::ptrdiff_t>(left_at);
	say({ from, from + static_cast<std::ptrdiff_t>(length) }, block_latency);
	left_at += length;
}

} // namespace velmor
