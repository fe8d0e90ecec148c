// velmor_tap_lines.cpp - the TCP bridge and the USB, listened to

#include "src/velmor_tap.h"
#include <algorithm>
#include <map>

namespace velmor
{

// ---- TCP --------------------------------------------------------------------------------------

static wrapping<net_service> net = { &host.net };

static long see_net(long count, bool sent, const u8 *bytes)
{
	if (count > 0)
		tap_bytes(wire_line::tcp, sent, { bytes, static_cast<std::size_t>(count) });
	else if (count < 0)
		tap_state("tcp",
			"broken, " + words_or_none(net.real->error_text(static_cast<int>(-count))));
	return count;
}

static void wrap_net()
{
	net.table.connect = [](const char *address, unsigned short port, int *handle) {
		tap_note(format_text("tcp: connecting to %s:%d", address, port));
		tap_forget_state("tcp");
		return net.real->connect(address, port, handle);
	};
	net.table.send = [](int handle, const unsigned char *bytes, std::size_t count) {
		return see_net(net.real->send(handle, bytes, count), true, bytes);
	};
	net.table.receive = [](int handle, unsigned char *bytes, std::size_t capacity) {
		return see_net(net.real->receive(handle, bytes, capacity), false, bytes);
	};
	net.table.close = [](int handle) {
		tap_note("tcp: closed");
		net.real->close(handle);
	};
}

constinit const tapped_line tapped_net = { [] { net.put_in(wrap_net); }, [] { net.take_out(); },
	[] { return net.is_in(); } };

// ---- USB --------------------------------------------------------------------------------------

static wrapping<usb_service> usb = { &host.usb };

struct usb_transfer {
	bool sent;
	const u8 *buffer;
	std::size_t count;
};
static std::map<int, usb_transfer> transfers;

static const char *failure_word(int result)
{
	static constexpr const char *words[] = { "", "pending", "timeout", "denied", "gone", "busy",
		"stalled", "cancelled", "failed" };
	return result >= 0 && result < static_cast<int>(std::size(words)) ? words[result]
									  : "failed";
}

static int open_usb(const char *path, int *handle)
{
	const int result = usb.real->open(path, handle);
	std::vector<usb_device> devices;
	usb.real->list(&devices);
	for (const usb_device &device : devices)
		if (device.path == path)
			tap_note(format_text("usb: %s %04X:%04X", result ? "not opened" : "opened",
				device.vendor, device.product));
	return result;
}

static int finish_usb(int id, std::size_t *moved)
{
	const int result = usb.real->finished(id, moved);
	const auto found = transfers.find(id);
	if (result == usb_pending || found == transfers.end())
		return result;
	const usb_transfer &t = found->second;
	const std::size_t count = std::min(*moved, t.count);
	tap_event({ .sent = t.sent,
		.line = wire_line::usb,
		.bytes = { t.buffer, t.buffer + count },
		.asked = t.sent && count == t.count ? 0 : t.count,
		.failed = failure_word(result) });
	transfers.erase(found);
	return result;
}

static void wrap_usb()
{
	usb.table.open = open_usb;
	usb.table.submit = [](int handle, std::uint8_t pipe, unsigned char *buffer,
				   std::size_t count, int deadline_ms, int *transfer) {
		const int result =
			usb.real->submit(handle, pipe, buffer, count, deadline_ms, transfer);
		if (result == usb_ok)
			transfers[*transfer] = { !(pipe & 0x80), buffer, count };
		else
			tap_note(std::string("usb: refused, ") + failure_word(result));
		return result;
	};
	usb.table.finished = finish_usb;
	usb.table.close = [](int handle) {
		tap_note("usb: closed");
		usb.real->close(handle);
	};
	usb.table.reset_pipe = [](int handle, std::uint8_t pipe) {
		tap_note(format_text("usb: pipe %02X reset", pipe));
		return usb.real->reset_pipe(handle, pipe);
	};
}

constinit const tapped_line tapped_usb = { [] {
						  transfers.clear();
						  usb.put_in(wrap_usb);
					  },
	[] { usb.take_out(); }, [] { return usb.is_in(); } };

} // namespace velmor
