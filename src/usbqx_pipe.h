// usbqx_pipe.h - what the files of the USB transport share
//
// Called by usbqx*.cpp alone.

#pragma once
#include "src/usbqx.h"

namespace velmor
{

// Devices whose refusal has been told, and those that are being looked for (usbqx_scan.cpp).
void tell_usb_denied(const char *path, int code);
bool usb_scanning();

// ---- usbqx_pipe.cpp --------------------------------------------------------------------

// Tell the rest of the program whether the device of the loaded sampler answers.
void tell_usb_line(const _usbdev *usb, bool answered);
// Bytes to a device that is not yet spoken to in frames.
bool send_usb_bytes(_usbdev *usb, std::span<const u8> bytes);
// One packet after the other up to the end of an answer: a short packet, or an end byte in
// the last place of a full one. What finds no room is dropped.
exchange_outcome ask_usb_bytes(
	_usbdev *usb, std::span<const u8> bytes, std::span<u8> room, std::size_t *received);
// The same, in room for the answer to a query.
exchange_outcome read_usb_answer(_usbdev *usb, std::span<const u8> bytes, std::vector<u8> *answer);
// Send a query, and read while its answers say that another one follows. Failures are logged.
bool ask_usb_query(_usbdev *usb, const usb_query &query, std::vector<u8> *answer);
// Read on, where the answer says that another one follows.
bool read_usb_on(_usbdev *usb, const usb_query &query, std::vector<u8> *answer);
// Bring a device that was left in the middle of something to where it hears a wake-up.
void resume_usb(_usbdev *usb);

// ---- usbqx_probe.cpp -------------------------------------------------------------------

void log_disks_of(_usbdev *usb);
void log_volumes_of(_usbdev *usb);

} // namespace velmor
