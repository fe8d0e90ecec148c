// fuzzed_usb.h - a USB device whose answers are the input of a fuzz target
//
// The input is cut into answers: a length byte, then so many bytes; 0 is silence, FF takes 1024,
// and FE is as much as the host wants of the byte behind it. Writes are swallowed. When the bytes
// run out every read fails.

#pragma once
#include "src/akaiusb.h"
#include "tests/fuzz/limits.h"
#include <algorithm>

namespace velmor
{

inline std::span<const u8> answers;
inline std::size_t last_moved;

inline int next_answer(u8 *buffer, std::size_t count)
{
	last_moved = 0;
	if (answers.empty())
		return usb_no_device;
	std::size_t size = answers[0] == 0xFF ? 1024 : answers[0];
	answers = answers.subspan(1);
	if (!size)
		return usb_timeout;
	if (size == 0xFE && !answers.empty()) {
		std::fill_n(buffer, count, answers[0]);
		answers = answers.subspan(1);
		last_moved = count;
		return usb_ok;
	}
	size = std::min({ size, answers.size(), count });
	std::copy_n(answers.begin(), size, buffer);
	answers = answers.subspan(size);
	last_moved = size;
	return usb_ok;
}

// A transfer's number is its outcome.
inline const usb_service fuzzed_usb = {
	.list =
		[](std::vector<usb_device> *devices) {
			const usb_interface pipes = { 0, 255, { { 2, 2, 64 }, { 0x82, 2, 64 } } };
			devices->assign(1, { 0x09E8, 0x5F, "usb:1", "", { pipes } });
			return true;
		},
	.open =
		[](const char *, int *handle) {
			*handle = 1;
			return static_cast<int>(usb_ok);
		},
	.claim = [](int, std::uint8_t) { return static_cast<int>(usb_ok); },
	.close = [](int) {},
	.submit =
		[](int, std::uint8_t pipe, unsigned char *buffer, std::size_t count, int,
			int *transfer) {
			if (pipe & 0x80) {
				*transfer = 100 + next_answer(buffer, count);
				return static_cast<int>(usb_ok);
			}
			*transfer = static_cast<int>(1000 + count);
			return static_cast<int>(usb_ok);
		},
	.finished =
		[](int transfer, std::size_t *moved) {
			*moved = transfer >= 1000 ? static_cast<std::size_t>(transfer - 1000)
						  : last_moved;
			return transfer >= 1000 ? static_cast<int>(usb_ok) : transfer - 100;
		},
	.cancel = [](int) {},
	.reset_pipe = [](int, std::uint8_t) { return static_cast<int>(usb_ok); },
	.on_arrival = [](void (*)()) {},
	.error_text = [](int) { return "no words"; },
};

// The one device, as a scan would leave it.
inline void list_device(i32 model)
{
	forget_unread_usb();
	_usbdev entry = {};
	copy_text(entry.device_path, "usb:1");
	copy_text(entry.usb_name, "Fuzz");
	entry.device_handle = no_usb_handle;
	entry.pipe_id = 2;
	entry.packet_size = 64;
	entry.device_type = model;
	usbdev.assign(1, entry);
	usbdevs = 1;
}

} // namespace velmor
