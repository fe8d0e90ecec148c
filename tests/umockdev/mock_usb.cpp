// mock_usb.cpp - a virtual machine behind the kernel's USB device files
//
// Packet rules are the bus's: a packet that does not fit what was asked for is an
// overflow and lost, and a read ends with the end of a message of the machine.

#include "tests/umockdev/mock_usb.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

namespace velmor
{

// Behind the second socket of a hub in the first socket of bus 1.
static constexpr const char *sys_path = "/sys/devices/usb1/1-1/1-1.2";

static std::string hex_of(std::initializer_list<int> bytes)
{
	std::string text;
	char word[3];
	for (int b : bytes) {
		std::snprintf(word, sizeof word, "%02x", static_cast<unsigned>(b));
		text += word;
	}
	return text;
}

// Device, configuration, one interface of class FF, bulk OUT 02 and bulk IN 82 of 64 bytes.
static std::string descriptors(const usb_machine &m)
{
	return hex_of({ 18, 1, 0x10, 0x01, 0, 0, 0, 64, m.vendor & 0xFF, m.vendor >> 8,
		       m.product & 0xFF, m.product >> 8, 0, 1, 1, 2, 0, 1 }) +
	       hex_of({ 9, 2, 32, 0, 1, 1, 0, 0xC0, 0 }) +
	       hex_of({ 9, 4, 0, 0, 2, 0xFF, 0, 0, 0 }) + hex_of({ 7, 5, 0x02, 2, 64, 0, 0 }) +
	       hex_of({ 7, 5, 0x82, 2, 64, 0, 0 });
}

bool mock_usb::possible()
{
	const char *preloaded = std::getenv("LD_PRELOAD");
	return preloaded && std::strstr(preloaded, "libumockdev-preload");
}

static std::string record(const char *path, int address, const std::string &described)
{
	char text[512];
	std::snprintf(text, sizeof text,
		"P: %s\nN: bus/usb/001/%03d\nE: SUBSYSTEM=usb\nE: DRIVER=usb\nE: BUSNUM=001\n"
		"E: DEVNUM=%03d\nE: DEVNAME=/dev/bus/usb/001/%03d\nE: DEVTYPE=usb_device\n"
		"A: bConfigurationValue=1\\n\nA: busnum=1\\n\nA: devnum=%d\\n\n"
		"A: speed=12\\n\nH: descriptors=",
		path, address, address, address, address);
	return text + described + "\n";
}

mock_usb::mock_usb(usb_machine &m)
	: machine(m), bed(umockdev_testbed_new()), calls(umockdev_ioctl_base_new())
{
	g_signal_connect(calls, "handle-ioctl", G_CALLBACK(on_ioctl), this);
	const std::string hub =
		hex_of({ 18, 1, 0x10, 0x01, 9, 0, 0, 64, 1, 0, 1, 0, 0, 1, 0, 0, 0, 1 }) +
		hex_of({ 9, 2, 9, 0, 0, 1, 0, 0xC0, 0 });
	umockdev_testbed_add_from_string(bed, record("/devices/usb1/1-1", 1, hub).c_str(), nullptr);
	plug(2);
}

mock_usb::~mock_usb()
{
	umockdev_testbed_detach_ioctl(bed, dev_path.c_str(), nullptr);
	for (auto *list : { &waiting, &ended })
		for (UMockdevIoctlData *urb : *list)
			g_object_unref(urb);
	g_object_unref(calls);
	g_object_unref(bed);
}

void mock_usb::plug(int address)
{
	char path[32];
	std::snprintf(path, sizeof path, "/dev/bus/usb/001/%03d", address);
	dev_path = path;
	umockdev_testbed_attach_ioctl(bed, path, calls, nullptr);
	umockdev_testbed_add_from_string(
		bed, record(sys_path + 4, address, descriptors(machine)).c_str(), nullptr);
	gone = false;
	machine.plugged_in();
}

void mock_usb::unplug()
{
	{
		std::lock_guard held_now(lock);
		gone = true;
		for (UMockdevIoctlData *urb : waiting)
			end(urb, -ESHUTDOWN, 0);
		waiting.clear();
	}
	umockdev_testbed_uevent(bed, sys_path, "remove");
	umockdev_testbed_remove_device(bed, sys_path);
	umockdev_testbed_detach_ioctl(bed, dev_path.c_str(), nullptr);
}

// The file itself is closed to others; umockdev's own sockets must not be, nor the root
// folder, where a stand-in for udev makes some.
void mock_usb::deny()
{
	char *root_name = umockdev_testbed_get_root_dir(bed);
	const std::string root = root_name;
	g_free(root_name);
	for (const std::string &open_to_all :
		{ root, root + "/ioctl/_default", root + "/ioctl" + dev_path })
		chmod(open_to_all.c_str(), 0777);
	chmod((root + dev_path).c_str(), 0600);
}

// ---- Calls -----------------------------------------------------------------------------

gboolean mock_usb::on_ioctl(UMockdevIoctlBase *, UMockdevIoctlClient *client, mock_usb *m)
{
	std::lock_guard held_now(m->lock);
	m->answer_ioctl(client);
	return TRUE;
}

static unsigned first_word(UMockdevIoctlData *argument)
{
	UMockdevIoctlData *word = umockdev_ioctl_data_resolve(argument, 0, 4, nullptr);
	unsigned value;
	std::memcpy(&value, word->data, sizeof value);
	g_object_unref(word);
	return value;
}

static void write_capabilities(UMockdevIoctlData *argument)
{
	UMockdevIoctlData *word = umockdev_ioctl_data_resolve(argument, 0, 4, nullptr);
	const guint32 capabilities = USBDEVFS_CAP_NO_PACKET_SIZE_LIM |
				     USBDEVFS_CAP_REAP_AFTER_DISCONNECT | USBDEVFS_CAP_ZERO_PACKET;
	std::memcpy(word->data, &capabilities, sizeof capabilities);
	g_object_unref(word);
}

// What is handed over must live until the call has been answered.
std::pair<int, int> mock_usb::reap(UMockdevIoctlData *argument)
{
	if (ended.empty())
		return { -1, gone ? ENODEV : EAGAIN };
	UMockdevIoctlData *urb = ended.front();
	ended.pop_front();
	UMockdevIoctlData *pointer =
		umockdev_ioctl_data_resolve(argument, 0, sizeof(gpointer), nullptr);
	umockdev_ioctl_data_set_ptr(pointer, 0, urb);
	handed_over = { pointer, urb };
	return { 0, 0 };
}

void mock_usb::answer_ioctl(UMockdevIoctlClient *client)
{
	UMockdevIoctlData *argument = umockdev_ioctl_client_get_arg(client);
	const unsigned long call = umockdev_ioctl_client_get_request(client);
	std::pair<int, int> result = { 0, 0 };
	if (gone && call != USBDEVFS_REAPURBNDELAY && call != USBDEVFS_REAPURB)
		result = { -1, ENODEV };
	else
		switch (call) {
		case USBDEVFS_GET_CAPABILITIES:
			write_capabilities(argument);
			break;
		case USBDEVFS_GETDRIVER:
			result = has_driver ? std::pair(0, 0) : std::pair(-1, ENODATA);
			break;
		case USBDEVFS_CLAIMINTERFACE:
			if (held || has_driver)
				result = { -1, EBUSY };
			else
				claimed.insert(first_word(argument));
			break;
		case USBDEVFS_DISCONNECT_CLAIM:
			if (held)
				result = { -1, EBUSY };
			drivers_detached += has_driver;
			has_driver = false;
			if (!held)
				claimed.insert(first_word(argument));
			break;
		case USBDEVFS_RELEASEINTERFACE:
			claimed.erase(first_word(argument));
			break;
		case USBDEVFS_IOCTL:
			drivers_attached++;
			break; // connect, after a release
		case USBDEVFS_CLEAR_HALT:
			halts_cleared.push_back(first_word(argument));
			stalled = false;
			break;
		case USBDEVFS_SUBMITURB:
			submit(argument);
			break;
		case USBDEVFS_REAPURB:
		case USBDEVFS_REAPURBNDELAY:
			result = reap(argument);
			break;
		case USBDEVFS_DISCARDURB: {
			const void *address;
			std::memcpy(&address, argument->data, sizeof address);
			result = discard(address) ? std::pair(0, 0) : std::pair(-1, EINVAL);
			break;
		}
		default:
			break;
		}
	umockdev_ioctl_client_complete(client, result.first, result.second);
	for (UMockdevIoctlData *data : handed_over)
		g_object_unref(data);
	handed_over.clear();
}

// ---- Urbs ------------------------------------------------------------------------------

static usbdevfs_urb *fields(UMockdevIoctlData *urb)
{
	return reinterpret_cast<usbdevfs_urb *>(urb->data);
}

static UMockdevIoctlData *buffer_of(UMockdevIoctlData *urb)
{
	return umockdev_ioctl_data_resolve(urb, G_STRUCT_OFFSET(usbdevfs_urb, buffer),
		static_cast<gsize>(fields(urb)->buffer_length), nullptr);
}

void mock_usb::end(UMockdevIoctlData *urb, int status, std::size_t length)
{
	fields(urb)->status = status;
	fields(urb)->actual_length = static_cast<int>(length);
	ended.push_back(urb);
}

void mock_usb::submit(UMockdevIoctlData *argument)
{
	UMockdevIoctlData *urb =
		umockdev_ioctl_data_resolve(argument, 0, sizeof(usbdevfs_urb), nullptr);
	const usbdevfs_urb &u = *fields(urb);
	controls += u.type == USBDEVFS_URB_TYPE_CONTROL;
	if (stalled || u.type == USBDEVFS_URB_TYPE_CONTROL) {
		end(urb, -EPIPE, 0);
	} else if (u.endpoint & 0x80) {
		reads.push_back(static_cast<std::size_t>(u.buffer_length));
		waiting.push_back(urb);
	} else {
		take_out(urb);
	}
	serve_in();
}

void mock_usb::take_out(UMockdevIoctlData *urb)
{
	UMockdevIoctlData *buffer = buffer_of(urb);
	const auto length = static_cast<std::size_t>(fields(urb)->buffer_length);
	machine.take({ buffer->data, length }, length % usb_packet != 0);
	g_object_unref(buffer);
	end(urb, 0, length);
}

void mock_usb::serve_in()
{
	while (!waiting.empty() && !machine.outbox.empty() && fill(waiting.front()))
		waiting.pop_front();
}

bool mock_usb::fill(UMockdevIoctlData *urb)
{
	UMockdevIoctlData *buffer = buffer_of(urb);
	const auto room = static_cast<std::size_t>(fields(urb)->buffer_length);
	usb_message &m = machine.outbox.front();
	std::size_t filled = 0;
	int status = 0;
	while (m.taken < m.bytes.size() && filled < room) {
		const std::size_t packet = std::min(usb_packet, m.bytes.size() - m.taken);
		const std::size_t fits = std::min(packet, room - filled);
		std::copy_n(m.bytes.begin() + static_cast<std::ptrdiff_t>(m.taken), fits,
			buffer->data + filled);
		filled += fits;
		m.taken += packet;
		if (fits < packet)
			status = -EOVERFLOW;
	}
	if (m.taken >= m.bytes.size())
		machine.outbox.pop_front();
	g_object_unref(buffer);
	end(urb, status, filled);
	return true;
}

bool mock_usb::discard(const void *address)
{
	for (auto it = waiting.begin(); it != waiting.end(); ++it) {
		if ((*it)->client_addr != reinterpret_cast<gulong>(address))
			continue;
		end(*it, -ENOENT, 0);
		waiting.erase(it);
		return true;
	}
	return false;
}

} // namespace velmor
