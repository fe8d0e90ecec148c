// usb_machine.cpp - a device with one bulk pipe each way, as the bus sees it

#include "virtual/usb_bus.h"

namespace velmor
{

usb_machine::~usb_machine()
{
	unplug_usb(*this);
}

usb_trouble &usb_machine::strike(usb_fault what, int at, int times)
{
	return troubles.emplace_back(
		usb_trouble{ .what = what, .first = writes + at, .last = writes + at + times - 1 });
}

void usb_machine::take(std::span<const std::uint8_t> bytes, bool ended)
{
	pending.insert(pending.end(), bytes.begin(), bytes.end());
	while (!pending.empty()) {
		const std::size_t size = message_size(pending, ended);
		if (size == 0 || size > pending.size())
			break;
		const usb_bytes message(
			pending.begin(), pending.begin() + static_cast<std::ptrdiff_t>(size));
		pending.erase(pending.begin(), pending.begin() + static_cast<std::ptrdiff_t>(size));
		if (record)
			recorded.push_back({ true, message });
		handle(message);
	}
	if (ended)
		pending.clear();
}

void usb_machine::answer(usb_message message)
{
	outbox.push_back(std::move(message));
}

} // namespace velmor
