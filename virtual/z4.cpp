// z4.cpp - a virtual Z4, Z8 or MPC 4000 on USB: frames, answers, contents

#include "virtual/z4.h"
#include "virtual/screen_keys.h"
#include "virtual/z4_requests.h"

namespace velmor
{

using bytes_in = std::span<const std::uint8_t>;

z4::z4(z4_model which) : model(which)
{
	const bool mpc = model == z4_model::mpc4000;
	vendor = 0x09E8;
	product = mpc ? 0x61 : 0x5F;
	product_name = mpc ? "AKAI MPC4000" : "AKAI Z4/Z8";
	name = mpc ? "MPC4000" : model == z4_model::z8 ? "Z8" : "Z4";
	asleep_at_power_on = !mpc;
	disks.low_first = true;
	picture.resize(mpc ? 320 * 240 / 8 : 248 * 60 / 8);
	panel = make_panel(*this, mpc);
}

z4::~z4() = default;

void z4::add_program(std::string program_name, std::vector<z4_keygroup> keygroups)
{
	programs.push_back({ std::move(program_name), std::move(keygroups) });
	programs.back().handle = next_program_handle++;
}

void z4::plugged_in()
{
	usb_sampler::plugged_in();
	current_program = current_keygroup = 0;
}

int z4::find_handle(bytes_in handle) const
{
	std::uint32_t wanted = 0;
	for (std::uint8_t b : handle)
		wanted = wanted << 8 | b;
	for (std::size_t i = 0; i < samples.size(); i++)
		if (samples[i].handle == wanted)
			return static_cast<int>(i);
	return -1;
}

// The name of an upload is that of a file.
std::string z4::name_of_upload(std::string told) const
{
	const std::size_t size = told.size();
	if (size > 4 && told.ends_with(".wav"))
		told.resize(size - 4);
	return told;
}

// There is one sample of a name.
void z4::store_upload(usb_sample sample)
{
	const int old = find_name(samples, sample.name);
	if (usb_sample *s = entry(samples, old))
		*s = std::move(sample);
	else
		samples.push_back(std::move(sample));
}

void z4::upload_is_over()
{
	if (end_busy != 0)
		answer({ .bytes = { 'A', 'k', 'a', 'I' },
			.delay = block_latency,
			.repeats = end_busy < 0 ? -1 : end_busy - 1,
			.interval = busy_interval });
	for (const usb_bytes &status : end_phase)
		say(status, block_latency);
}

// ---- Frames ------------------------------------------------------------------------------

bool z4::heard_wake_up(bytes_in message)
{
	if (message.size() != 2 || message[0] != 0x03 || message[1] != 0x01)
		return false;
	forget_transfer();
	awake = awake_state::awake;
	return true;
}

void z4::heard_raw(bytes_in message)
{
	// The MPC forgets what it was about to say.
	if (model != z4_model::mpc4000 || message.size() != 1 || message[0] != 0xFF)
		return;
	forget_transfer();
	say(usb_bytes(4), latency);
}

// 10 len len F0 47 5F channel payload F7
static constexpr std::size_t frame_payload = 7;

static bool well_formed(bytes_in f, int channel)
{
	return f.size() >= frame_payload + 3 && f.back() == 0xF7 &&
	       static_cast<std::size_t>(f[1] | f[2] << 8) == f.size() - 3 && f[3] == 0xF0 &&
	       f[4] == 0x47 && f[5] == 0x5F && (f[6] == 0 || f[6] == channel);
}

void z4::heard_frame(bytes_in frame)
{
	if (!well_formed(frame, channel))
		return;
	const bytes_in payload = frame.subspan(frame_payload, frame.size() - frame_payload - 1);
	asked = { payload[0], payload[1] };
	if (confirms)
		answer_with('O', {});
	run(payload);
}

using request = std::array<std::uint8_t, 2>;
static constexpr request version_request = { 0x04, 0x00 }, name_request = { 0x07, 0x01 },
			 start_request = { 0x1F, 0x20 }, end_request = { 0x1F, 0x21 },
			 file_name_request = { 0x20, 0x21 },
			 file_size_request = { 0x10, disk_size_item };

// The size of a file is told as an S5000 does, with two zeros before the status.
std::size_t z4::data_offset() const
{
	for (const request &late :
		{ start_request, end_request, file_name_request, file_size_request })
		if (asked == late)
			return 9;
	return asked == version_request || asked == name_request ? told_at : 8;
}

void z4::answer_with(char status, bytes_in data, double longer)
{
	if (stray_end)
		say({ 0xF7 }, latency);
	usb_bytes bytes = { 0xF0, 0x47, 0x5F, static_cast<std::uint8_t>(channel) };
	if (asked == file_size_request)
		bytes.resize(6);
	bytes.insert(bytes.end(), { static_cast<std::uint8_t>(status), asked[0], asked[1] });
	if (!data.empty())
		bytes.resize(data_offset());
	bytes.insert(bytes.end(), data.begin(), data.end());
	bytes.push_back(0xF7);
	say_framed(std::move(bytes), longer);
}

// Section of the front panel: keys, wheel, keyboard.
static constexpr std::uint8_t panel_section = 0x2C;
static constexpr std::uint8_t disk_section = 0x20;

void z4::run(bytes_in payload)
{
	if (asked[0] == panel_section) {
		const request_outcome told = heard_panel(payload);
		answer_with(told.status, told.data);
		return;
	}
	const bool size_asked = asked == file_size_request;
	if (size_asked || (asked[0] == disk_section && asked[1] != disk_size_item)) {
		const request_outcome told = disk_request(disks, asked[1], payload.subspan(2));
		answer_with(told.status, told.data, disks.latency);
		return;
	}
	for (const z4_request &r : z4_request_rows) {
		if (r.section != asked[0] || r.item != asked[1])
			continue;
		request_arguments a = {};
		const bool fits = take_arguments(r.form, r.count, payload.subspan(2), &a);
		const request_outcome outcome = fits ? r.run(*this, a) : refuse(refused_length);
		answer_with(outcome.status, outcome.data);
		return;
	}
	const std::uint8_t reason[] = { refused_unknown };
	answer_with('E', reason);
}

} // namespace velmor
