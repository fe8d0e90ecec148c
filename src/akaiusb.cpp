// akaiusb.cpp - what the drivers of all USB samplers have in common: asking, names, counts
//
// Knows nothing of: the requests of a model, frames.

#include "src/akaiusb.h"
#include <algorithm>
#include <cstring>

namespace velmor
{

// The tag of a source file in the log is its name without folders.
const char *file_tag(const call_site &where)
{
	const char *slash = std::strrchr(where.file_name(), '/');
	return slash ? slash + 1 : where.file_name();
}

bool ask_usb(_usbdev *usb, std::span<const u8> payload, usb_answer *answer, call_site where)
{
	answer->length = 0;
	return _sysex_midi_usb(usb, payload.data(), static_cast<int>(payload.size()),
		answer->buffer.data(), static_cast<int>(answer->buffer.size()), &answer->length,
		file_tag(where), static_cast<int>(where.line()));
}

bool ask_or_log(_usbdev *usb, std::span<const u8> payload, usb_answer *answer, call_site where)
{
	if (ask_usb(usb, payload, answer, where))
		return true;
	const int line = static_cast<int>(where.line());
	add_log_format(file_tag(where), line, "[I] (%s:%d) WARNING! SYSEX-MIDI_USB FAILED!\r\n",
		file_tag(where), line);
	return false;
}

u8 usb_status(const _usbdev *usb, const usb_answer &answer)
{
	return answer.bytes()[family_of(*usb).status_offset];
}

std::vector<u8> text_request(u8 section, u8 item, std::string_view text)
{
	std::vector<u8> request(2 + text.size() + 1);
	request[0] = section;
	request[1] = item;
	std::copy(text.begin(), text.end(), request.begin() + 2);
	return request;
}

std::optional<std::string> name_walk::next()
{
	if (at >= bytes.size() || bytes[at] == usb_end_byte)
		return std::nullopt;
	std::string name = bytes.text(at);
	at += name.size() + 1;
	return name;
}

int bounded_count(i32 announced, int limit, const char *what)
{
	if (announced > limit)
		log_line("[W] The sampler announced %d %s, only %d can be held\r\n", announced,
			what, limit);
	return std::clamp(announced, 0, limit);
}

_usbdev *loaded_usbdev()
{
	_usbdev *usb = current_sampler ? find_usbdev(current_sampler->sampler_usbname) : nullptr;
	if (!usb)
		log_line("WARNING! USB Device not found!\r\n");
	return usb;
}

open_usbdev open_loaded_usbdev()
{
	_usbdev *usb = loaded_usbdev();
	if (!usb)
		return nullptr;
	if (!open_midi_usb(usb)) {
		log_line("WARNING! USB Device cannot be opened!\r\n");
		return nullptr;
	}
	return open_usbdev(usb);
}

} // namespace velmor
