// usb.h - bulk devices on the host's USB
//
// Called by the USB transport. A transfer is submitted, then asked for until it
// has finished, while the caller pumps the interface; several may be in flight.

#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace velmor
{

struct usb_pipe {
	std::uint8_t id;   // endpoint address; the top bit is set for IN
	std::uint8_t type; // 0 control, 1 isochronous, 2 bulk, 3 interrupt
	int packet_size;   // bytes
};

struct usb_interface {
	std::uint8_t number;
	std::uint8_t interface_class;
	std::vector<usb_pipe> pipes;
};

struct usb_device {
	std::uint16_t vendor;
	std::uint16_t product;
	// The socket it is plugged into, by which it is opened: the same after it was plugged in
	// again. Unique on this host.
	std::string path;
	// Its number on the bus, as the host's own tools show it: another one each time that it is
	// plugged in.
	std::string address;
	std::vector<usb_interface> interfaces;
};

enum usb_result : int {
	usb_ok = 0,
	usb_pending,   // the transfer is still under way
	usb_timeout,   // its deadline passed; nothing more will be moved
	usb_denied,    // the user may not open the device
	usb_no_device, // unplugged, or never there
	usb_busy,      // another program holds the interface
	usb_stalled,   // the pipe refused; reset_pipe clears it
	usb_cancelled,
	usb_failed,
};

struct usb_service {
	// Devices present now. None is opened or spoken to for it. false when the host cannot list devices at all.
	bool (*list)(std::vector<usb_device> *devices);
	// Open the device that sits at a path now, and claim interface number.
	int (*open)(const char *path, int *handle);
	int (*claim)(int handle, std::uint8_t interface_number);
	void (*close)(int handle);

	// Begin a transfer on pipe (its top bit gives the direction). The buffer stays the
	// caller's and must live until finished answers something else than usb_pending.
	// A deadline of 0 is none. Transfers of one pipe finish in the order in which they were
	// submitted. A read ends with its count or with a short packet; what a packet brings
	// beyond the count is kept for the next read of the pipe, until reset_pipe.
	int (*submit)(int handle, std::uint8_t pipe, unsigned char *buffer, std::size_t count,
		int deadline_ms, int *transfer);
	// usb_pending, or the outcome, with the bytes moved; the transfer is then forgotten.
	int (*finished)(int transfer, std::size_t *moved);
	// Ask a transfer to end; it still must be asked for by finished.
	void (*cancel)(int transfer);
	int (*reset_pipe)(int handle, std::uint8_t pipe);

	// wake is called, from any thread, when a transfer has finished.
	void (*on_arrival)(void (*wake)());
	// Words for a result, in a static buffer that the next call overwrites. Words for
	// usb_denied name the udev rule that grants access.
	const char *(*error_text)(int code);
};

} // namespace velmor
