// usbqx_scan.cpp - finding the samplers on USB: what is plugged in, and what it says it is
//
//   S5000 queries    00 01 00  confirmation, 00 03 01  then 02 03  its name
//   Z4 queries       00 01 00  confirmation, 07 01  its name, 04 04  what it is
//
// Only our own samplers are opened and spoken to; everything else on the bus may be in use.
// A device that does not answer the queries is no sampler that could be used, and is left out
// of the list.
//
// Knows nothing of: what the samplers hold.

#include "src/controls.h"
#include "src/usbqx_pipe.h"
#include <algorithm>
#include <array>
#include <cstring>
#include <set>

namespace velmor
{

std::vector<_usbdev> usbdev;
int usbdevs = 0;
int usb_init_done = 0;

static bool scanning = false;
// Devices whose refusal has been told. Told again only after an access that worked.
static std::set<std::string> told_denied;

static constexpr int default_packet_size = 64;

bool usb_scanning()
{
	return scanning;
}

// The host's words for a device that this user may not open, once for each device.
void tell_usb_denied(const char *path, int code)
{
	if (code != usb_denied)
		told_denied.erase(path);
	else if (told_denied.insert(path).second)
		log_line("[W] No access to the USB sampler at [%s]: %s\r\n", path,
			host.usb->error_text(code));
}

// ---- One interface -----------------------------------------------------------------------

static const usb_pipe *first_out_pipe(const usb_interface &interface)
{
	const usb_pipe *out = nullptr;
	for (std::size_t i = 0; i < interface.pipes.size(); i++) {
		const usb_pipe &pipe = interface.pipes[i];
		log_line("[D] PIPE-INDEX: %d, PIPE-ID: 0x%02X [%s][%s], Packet-Size: %d\r\n",
			static_cast<int>(i), pipe.id, get_usb_pipedirection(pipe),
			get_usb_pipetype(pipe), pipe.packet_size);
		if (!out && !(pipe.id & 0x80))
			out = &pipe;
	}
	return out;
}

static int in_packet_size(const usb_interface &interface, const usb_pipe &out)
{
	for (const usb_pipe &pipe : interface.pipes)
		if (pipe.id == (out.id | 0x80) && pipe.packet_size > 0)
			return pipe.packet_size;
	return out.packet_size > 0 ? out.packet_size : default_packet_size;
}

static bool identify(_usbdev *usb)
{
	const usb_family &family = family_of(*usb);
	std::vector<u8> answer;
	resume_usb(usb);
	for (std::span<const u8> bytes : family.scan_wake)
		if (!send_usb_bytes(usb, bytes))
			log_line("[D] USB_WRITE FAILED! 1. Init Sequence (%s)\r\n",
				usb_error(__FILE_NAME__, __LINE__, usb_last_result));
	log_line("[D] USB SETUP DONE...querying devices...\r\n");
	for (const usb_query &query : family.scan_queries)
		if (!ask_usb_query(usb, query, &answer))
			return false;
	if (!ask_usb_query(usb, family.name_query, &answer))
		return false;
	copy_text(usb->usb_name, usb_name_in(family, { answer }));
	if (family.hardware_query.bytes.empty()) {
		log_line("[D] Received S5000/6000 Sampler-Name [%s]\r\n", usb->usb_name);
		return true;
	}
	if (!ask_usb_query(usb, family.hardware_query, &answer))
		return false;
	for (const usb_kind &kind : family.kinds) {
		if (answer.size() <= family.data_offset ||
			answer[family.data_offset] != kind.answer)
			continue;
		usb->device_type = kind.model;
		log_line("[D] Sampler-Type: %s\r\n", kind.name);
	}
	return true;
}

// What one open device of the scan is walked with.
struct device_scan {
	const usb_device *device;
	const usb_family *family;
	int handle;
	int claimed_first; // outcome of claiming interface 0
	std::vector<_usbdev> *found;
};

static _usbdev entry_of(const device_scan &scan, int index, const usb_pipe &out)
{
	const usb_interface &interface = scan.device->interfaces[static_cast<std::size_t>(index)];
	_usbdev entry = {};
	copy_text(entry.device_path, scan.device->path);
	entry.address = scan.device->address;
	entry.product = scan.device->product;
	entry.device_handle = entry.usb_handle = entry.interface_handle = scan.handle;
	entry.interface_index = static_cast<u8>(index);
	entry.interface_number = interface.number;
	entry.pipe_id = out.id & 0x7F;
	entry.packet_size = in_packet_size(interface, out);
	entry.device_type = scan.family->model;
	return entry;
}

static void scan_interface(const device_scan &scan, int index)
{
	const usb_interface &interface = scan.device->interfaces[static_cast<std::size_t>(index)];
	log_line("[D] QUERIED INTERFACE-ID: %d --> bLength: %d, bInterfaceClass: %d, Endpoints: "
		 "%d\r\n",
		index, 9, interface.interface_class, static_cast<int>(interface.pipes.size()));
	const usb_pipe *out = first_out_pipe(interface);
	if (!out) {
		log_line("[D] Interface-Index: %d, No [OUT] Interface found for this index!\r\n",
			index);
		return;
	}
	const int claimed =
		index == 0 ? scan.claimed_first : host.usb->claim(scan.handle, interface.number);
	if (claimed != usb_ok) {
		log_line("[D] Interface-Index: %d, [OUT] Interface found for this index but open "
			 "failed "
			 "(%s)!\r\n",
			index, usb_error(__FILE_NAME__, __LINE__, claimed));
		return;
	}
	log_line("[D] Interface-Index: %d, [OUT] Interface found for this index and opened "
		 "successfully!\r\n",
		index);
	_usbdev entry = entry_of(scan, index, *out);
	if (!identify(&entry)) {
		log_line("[W] USB device [%s] did not answer\r\n", entry.device_path);
		return;
	}
	entry.device_handle = entry.usb_handle = entry.interface_handle = no_usb_handle;
	scan.found->push_back(std::move(entry));
}

static void scan_device(
	const usb_device &device, const usb_family &family, std::vector<_usbdev> *found)
{
	log_line("[D] USB-Device: [%s] VID_%04X PID_%04X, Interfaces: %d\r\n",
		device.address.c_str(), device.vendor, device.product,
		static_cast<int>(device.interfaces.size()));
	log_line("[D] Device-Path to open: [%s]\r\n", device.path.c_str());
	log_line("[D] PID of AKAI-Device: %d (0x%02X)\n", device.product, device.product);
	int handle = no_usb_handle;
	const int opened = host.usb->open(device.path.c_str(), &handle);
	log_line("[D] DEVICE_HANDLE: %d, ERROR: [%s]\r\n",
		opened == usb_ok ? handle : no_usb_handle,
		usb_error(__FILE_NAME__, __LINE__, opened));
	tell_usb_denied(device.path.c_str(), opened);
	if (opened != usb_ok)
		return;
	int claimed = usb_no_device;
	if (!device.interfaces.empty())
		claimed = host.usb->claim(handle, device.interfaces[0].number);
	log_line("[D] USB_HANDLE: [%s], ERROR: [%s]\r\n", claimed == usb_ok ? "CLAIMED" : "NONE",
		usb_error(__FILE_NAME__, __LINE__, claimed));
	const device_scan scan = { &device, &family, handle, claimed, found };
	for (std::size_t i = 0; i < device.interfaces.size() && i < 256; i++)
		scan_interface(scan, static_cast<int>(i));
	host.usb->close(handle);
}

// ---- The scan --------------------------------------------------------------------------

// Ask each found device once through the frames that the drivers use.
static void test_devices()
{
	static constexpr u8 hardware[] = { 0x04, 0x04 };
	for (std::size_t i = 0; i < usbdev.size() && !progress_stopped(); i++) {
		_usbdev *usb = find_usbdev(usbdev[i].usb_name);
		if (!open_midi_usb(usb)) {
			log_line("[F] FAILED TO OPEN USBDEV! [%s]\r\n", usb->usb_name);
			continue;
		}
		const open_usbdev open(usb);
		std::array<u8, 1024> answer;
		int received = 0;
		if (!_sysex_midi_usb(usb, hardware, sizeof hardware, answer.data(), answer.size(),
			    &received, __FILE_NAME__, __LINE__))
			log_line("[F] FAILED TO TEST USBDEV! [%s]\r\n", usb->usb_name);
	}
}

// A scan asks, so it may take as long as its samplers are silent. Interface events run inside
// it, and its marks must not outlive it.
struct running_scan {
	int done = 0;
	explicit running_scan(int samplers)
	{
		show_progressbar(
			window_usb, samplers + 1, tr("Looking for samplers on the USB..."));
		scanning = true;
	}
	~running_scan()
	{
		scanning = false;
		hide_progressbar(window_usb);
	}
	void step() { set_progressbar(++done); }
};

// Ask every sampler of ours; the scan is finished unless it was stopped.
static void scan_samplers(std::span<const usb_device> samplers)
{
	running_scan scan(static_cast<int>(samplers.size()));
	std::vector<_usbdev> found;
	for (const usb_device &device : samplers) {
		if (progress_stopped())
			break;
		scan_device(device, *family_of_product(device.product), &found);
		scan.step();
	}
	usbdev = std::move(found);
	usbdevs = static_cast<int>(usbdev.size());
	test_devices();
	usb_init_done = !progress_stopped();
	if (!usb_init_done)
		log_line("[I] Looking for samplers on the USB was stopped\r\n");
}

static void scan_bus()
{
	for (_usbdev &left : usbdev)
		close_midi_usb(&left);
	usbdev.clear();
	usbdevs = 0;
	usb_init_done = 0;
	std::vector<usb_device> devices;
	if (!host.usb->list(&devices)) {
		display_error_text(__FILE_NAME__, __LINE__, host.usb->error_text(usb_failed));
		end_program(0);
		return;
	}
	log_line("[D] DiGetClassDevs completed...\r\n");
	std::erase_if(devices, [](const usb_device &d) {
		return d.vendor != akai_vendor || !family_of_product(d.product);
	});
	if (devices.empty())
		usb_init_done = 1;
	else
		scan_samplers(devices);
}

void init_usb(int force)
{
	log_line("[D] Initializing USB-Subsystem...[%s]\r\n", force ? "FORCED" : "NOT FORCED");
	if (!force && usb_init_done) {
		log_line("Not initializing USB-Subsystem...(already done)\r\n");
		return;
	}
	if (usb_in_use()) {
		log_line("[W] Not initializing USB-Subsystem while a device is in use\r\n");
		return;
	}
	scan_bus();
}

_usbdev *find_usbdev(const char *name)
{
	for (_usbdev &usb : usbdev)
		if (std::strcmp(usb.usb_name, name) == 0)
			return &usb;
	return nullptr;
}

} // namespace velmor
