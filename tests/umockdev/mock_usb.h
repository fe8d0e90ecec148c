// mock_usb.h - a virtual machine behind the kernel's USB device files
//
// The test process runs under umockdev, which stands between it and the kernel: the
// unmodified libusb finds the machine in /sys and talks to its file in /dev with the
// usbfs calls, which are answered here. One device at a time.

#pragma once
#include "virtual/usb_machine.h"
#include <list>
#include <mutex>
#include <set>
#include <string>
#include <umockdev.h>

namespace velmor
{

class mock_usb
{
public:
	explicit mock_usb(usb_machine &machine);
	~mock_usb();
	mock_usb(const mock_usb &) = delete;

	// False when the process does not run under umockdev.
	static bool possible();

	void unplug();
	void plug(int address); // into the socket that it had
	void deny();            // its file is root's from now on

	// What the device has seen.
	std::set<unsigned> claimed;
	int controls = 0; // questions beside its pipes
	int drivers_detached = 0, drivers_attached = 0;
	std::vector<unsigned> halts_cleared; // endpoints
	std::vector<std::size_t> reads;      // bytes asked for
	// How it behaves.
	bool has_driver = false; // the kernel's own holds the interface
	bool held = false;       // another program does
	bool stalled = false;    // both pipes refuse until they are reset

	std::recursive_mutex lock; // guards all of the above, and the machine

private:
	usb_machine &machine;
	UMockdevTestbed *bed;
	UMockdevIoctlBase *calls;
	bool gone = false;
	std::string dev_path;
	std::list<UMockdevIoctlData *> waiting, ended; // urbs
	std::vector<UMockdevIoctlData *> handed_over;

	static gboolean on_ioctl(UMockdevIoctlBase *, UMockdevIoctlClient *client, mock_usb *m);
	void answer_ioctl(UMockdevIoctlClient *client);
	std::pair<int, int> reap(UMockdevIoctlData *argument);
	void submit(UMockdevIoctlData *argument);
	void take_out(UMockdevIoctlData *urb);
	void serve_in();
	bool fill(UMockdevIoctlData *urb);
	void end(UMockdevIoctlData *urb, int status, std::size_t length);
	bool discard(const void *address);
};

} // namespace velmor
