// usb_libusb.h - what the parts of the libusb back end share

#pragma once
#include "platform/usb.h"
#include <libusb.h>

namespace velmor
{

// "usb:1-2.3": bus and sockets, which stay the same when a device is plugged in again.
std::string libusb_path(libusb_device *device);
// "001/002": bus and device as lsusb shows them.
std::string libusb_address(libusb_device *device);
// Interfaces of the active configuration, each in its first setting.
std::vector<usb_interface> libusb_interfaces(libusb_device *device);
bool libusb_list(std::vector<usb_device> *devices);

} // namespace velmor
