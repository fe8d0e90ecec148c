// usb_libusb_list.cpp - the devices on the bus, as libusb sees them
//
// Every list is read in a context of its own: a context that lives on learns of
// new devices only through udev, and not every host runs it.

#include "platform/libusb/usb_libusb.h"
#include <cstdio>

namespace velmor
{

// Bus and sockets from the host to the device. A device that tells none, as in some containers,
// goes by its address.
std::string libusb_path(libusb_device *device)
{
	std::uint8_t ports[8];
	const int count = libusb_get_port_numbers(device, ports, sizeof ports);
	std::string path = "usb:" + std::to_string(libusb_get_bus_number(device));
	if (count <= 0)
		return path + "@" + libusb_address(device);
	for (int i = 0; i < count; i++)
		path += (i ? "." : "-") + std::to_string(ports[i]);
	return path;
}

std::string libusb_address(libusb_device *device)
{
	char address[16];
	std::snprintf(address, sizeof address, "%03d/%03d", libusb_get_bus_number(device),
		libusb_get_device_address(device));
	return address;
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
			devices->push_back({ d.idVendor, d.idProduct, libusb_path(present[i]),
				libusb_address(present[i]), libusb_interfaces(present[i]) });
	}
	if (count >= 0)
		libusb_free_device_list(present, 1);
	libusb_exit(context);
	return count >= 0;
}

} // namespace velmor
