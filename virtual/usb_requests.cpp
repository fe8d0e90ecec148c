// usb_requests.cpp - requests of the USB machines: forms of arguments, outcomes, reasons

#include "virtual/usb_requests.h"
#include "virtual/usb_sampler.h"
#include <algorithm>

namespace velmor
{

bool take_arguments(request_form form, std::size_t count, std::span<const std::uint8_t> bytes,
	request_arguments *a)
{
	if (form != request_form::any_text &&
		std::any_of(bytes.begin(), bytes.end(), [](std::uint8_t b) { return b > 0x7F; }))
		return false;
	a->bytes.assign(bytes.begin(), bytes.end());
	switch (form) {
	case request_form::bytes:
		return bytes.size() == count;
	case request_form::text:
	case request_form::any_text:
		return take_text(bytes, &a->text);
	case request_form::loose_text:
		return take_text(bytes, &a->text) || bytes.size() == a->text.size();
	case request_form::byte_text:
		return bytes.size() > 1 && take_text(bytes.subspan(1), &a->text);
	case request_form::block:
		return bytes.size() > 3 &&
		       ((bytes.size() - 3) % 4 == 0 || (bytes.size() - 3) % 4 == 3);
	}
	return false;
}

void add_text(usb_bytes *data, const std::string &text)
{
	data->insert(data->end(), text.begin(), text.end());
	data->push_back(0);
}

request_outcome reply_text(const std::string &text)
{
	usb_bytes data;
	add_text(&data, text);
	return reply(std::move(data));
}

request_outcome reply_low_first(std::uint32_t value, int groups)
{
	usb_bytes data;
	for (int i = 0; i < groups; i++)
		data.push_back(value >> 7 * i & 0x7F);
	return reply(std::move(data));
}

request_outcome reply_high_first(std::uint32_t value, int groups)
{
	request_outcome outcome = reply_low_first(value, groups);
	std::reverse(outcome.data.begin(), outcome.data.end());
	return outcome;
}

} // namespace velmor
