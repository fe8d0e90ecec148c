// usb_libusb_list.cpp - the devices on the bus, as libusb sees them
//
// Every list is read in a context of its own: a context that lives on learns of
// new devices only through udev, and not every host runs it.

#include "platform/libusb/usb_libusb.h"
#include <cstdio>

namespace velmor
{

// A hung device delays the list by this much for each of the two descriptors it is asked for.
static constexpr unsigned string_deadline_ms = 100;

std::string libusb_path(libusb_device *device)
{
	char path[32];
	std::snprintf(path, sizeof path, "/dev/bus/usb/%03d/%03d", libusb_get_bus_number(device),
		libusb_get_device_address(device));
	return path;
}

static usb_interface interface_of(const libusb_interface_descriptor &d)
{
	usb_interface found = { d.bInterfaceNumber, d.bInterfaceClass, {} };
	for (int i = 0; i < d.bNumEndpoints; i++) {
		const libusb_endpoint_descriptor &e = d.endpoint[i];
		found.pipes.push_back({ e.bEndpointAddress,
			static_cast<std::uint8_t>(e.bmAttributes & 3), e.wMaxPacketSize & 0x7FF });
	}
	return found;
}

std::vector<usb_interface> libusb_interfaces(libusb_device *device)
{
	std::vector<usb_interface> interfaces;
	libusb_config_descriptor *config;
	if (libusb_get_active_config_descriptor(device, &config) != 0)
		return interfaces;
	for (int i = 0; i < config->bNumInterfaces; i++)
		if (config->interface[i].num_altsetting > 0)
			interfaces.push_back(interface_of(config->interface[i].altsetting[0]));
	libusb_free_config_descriptor(config);
	return interfaces;
}

static void add_utf8(std::string *text, unsigned unit)
{
	if (unit < 0x80) {
		*text += static_cast<char>(unit);
	} else if (unit < 0x800) {
		*text += static_cast<char>(0xC0 | unit >> 6);
		*text += static_cast<char>(0x80 | (unit & 0x3F));
	} else if (unit < 0xD800 || unit > 0xDFFF) {
		*text += static_cast<char>(0xE0 | unit >> 12);
		*text += static_cast<char>(0x80 | (unit >> 6 & 0x3F));
		*text += static_cast<char>(0x80 | (unit & 0x3F));
	} else {
		*text += '?'; // half of a pair; no product name needs one
	}
}

// A string descriptor: length, 03, then UTF-16 units, low byte first. Index 0 holds the
// languages. Returns the bytes that are really there.
static int read_string(
	libusb_device_handle *handle, int index, int language, unsigned char (&bytes)[255])
{
	const int got = libusb_control_transfer(handle, LIBUSB_ENDPOINT_IN,
		LIBUSB_REQUEST_GET_DESCRIPTOR,
		static_cast<std::uint16_t>(LIBUSB_DT_STRING << 8 | index),
		static_cast<std::uint16_t>(language), bytes, sizeof bytes, string_deadline_ms);
	if (got < 4 || bytes[1] != LIBUSB_DT_STRING)
		return 0;
	return got < bytes[0] ? got : bytes[0];
}

static std::string product_name(libusb_device *device, int index)
{
	std::string text;
	libusb_device_handle *handle;
	if (index == 0 || libusb_open(device, &handle) != 0)
		return text;
	unsigned char bytes[255];
	if (read_string(handle, 0, 0, bytes) >= 4) {
		const int language = bytes[2] | bytes[3] << 8;
		const int count = read_string(handle, index, language, bytes);
		for (int i = 2; i + 1 < count; i += 2)
			add_utf8(&text, bytes[i] | static_cast<unsigned>(bytes[i + 1]) << 8);
	}
	libusb_close(handle);
	return text;
}

// Asking for a name wakes a sleeping device, so only those are asked that could be spoken to:
// the ones with a bulk pipe from the host.
static bool has_bulk_out(const usb_device &device)
{
	for (const usb_interface &i : device.interfaces)
		for (const usb_pipe &p : i.pipes)
			if (p.type == LIBUSB_TRANSFER_TYPE_BULK && !(p.id & LIBUSB_ENDPOINT_IN))
				return true;
	return false;
}

static usb_device describe(libusb_device *device, const libusb_device_descriptor &d)
{
	usb_device found = { d.idVendor, d.idProduct, libusb_path(device), "",
		libusb_interfaces(device) };
	if (has_bulk_out(found))
		found.name = product_name(device, d.iProduct);
	return found;
}

bool libusb_list(std::vector<usb_device> *devices)
{
	devices->clear();
	libusb_context *context;
	if (libusb_init(&context) != 0)
		return false;
	libusb_device **present = nullptr;
	const ssize_t count = libusb_get_device_list(context, &present);
	for (ssize_t i = 0; i < count; i++) {
		libusb_device_descriptor d;
		if (libusb_get_device_descriptor(present[i], &d) == 0)
			devices->push_back(describe(present[i], d));
	}
	if (count >= 0)
		libusb_free_device_list(present, 1);
	libusb_exit(context);
	return count >= 0;
}

} // namespace velmor
