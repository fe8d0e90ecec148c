// usbqx.cpp - finding the samplers on USB, and opening one
//
//   wake-up          S5000 03 14, 04 03      Z family 03 01
//   S5000 queries    00 01 00  confirmation, 00 03 01  then 02 03  its name
//   Z4 queries       00 01 00  confirmation, 07 01  its name, 04 04  what it is
//
// A query's answer may come in several packets; 'O' at the marker says that more is to
// come. These bytes are sent whole, since no channel is known yet.
//
// A device that does not answer the queries of the scan is no sampler that could be used,
// and is left out of the list.
//
// Knows nothing of: what the samplers hold.

#include "src/usbqx.h"
#include "src/velmor.h"
#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <set>

namespace velmor
{

std::vector<_usbdev> usbdev;
int usbdevs = 0;
int usb_init_done = 0;

// Taken when a device is opened, given back when it is closed. Nothing waits for it.
struct usb_place {
	int free_places;
};
static std::unique_ptr<usb_place> usb_semaphore;

static bool scanning = false;
// Devices whose refusal has been told. Told again only after an access that worked.
static std::set<std::string> told_denied;

static constexpr std::size_t query_answer_size = 1024;
static constexpr int default_packet_size = 64;

// clang-format off
static constexpr auto s5000_wake_1       = std::to_array<u8>({ 0x03, 0x14 });
static constexpr auto s5000_wake_2       = std::to_array<u8>({ 0x04, 0x03 });
static constexpr auto z4_wake            = std::to_array<u8>({ 0x03, 0x01 });
//                                            0     1     2     3     4     5     6     7     8     9    10    11    12    13
static constexpr auto s5000_first_query  = std::to_array<u8>(
                                          { 0x10, 0x0B, 0x00, 0xF0, 0x47, 0x5E, 0x20, 0x00, 0x00, 0x00, 0x01, 0x00, 0x01, 0xF7 });
static constexpr auto s5000_second_query = std::to_array<u8>(
                                          { 0x10, 0x0B, 0x00, 0xF0, 0x47, 0x5E, 0x20, 0x00, 0x00, 0x00, 0x03, 0x01, 0x04, 0xF7 });
static constexpr auto s5000_name_query   = std::to_array<u8>(
                                          { 0x10, 0x0A, 0x00, 0xF0, 0x47, 0x5E, 0x20, 0x00, 0x00, 0x02, 0x03, 0x05, 0xF7 });
static constexpr auto z4_first_query     = std::to_array<u8>(
                                          { 0x10, 0x08, 0x00, 0xF0, 0x47, 0x5F, 0x00, 0x00, 0x01, 0x00, 0xF7 });
static constexpr auto z4_name_query      = std::to_array<u8>(
                                          { 0x10, 0x07, 0x00, 0xF0, 0x47, 0x5F, 0x00, 0x07, 0x01, 0xF7 });
static constexpr auto z4_hardware_query  = std::to_array<u8>(
                                          { 0x10, 0x07, 0x00, 0xF0, 0x47, 0x5F, 0x00, 0x04, 0x04, 0xF7 });
enum { s5000_answer_channel = 3, s5000_answer_name = 9, z4_answer_name = 8, z4_answer_hardware = 8 };

struct usb_product { u16 product; i32 device_type; };
static constexpr usb_product products[] = {
	{ 0x5E, model_s5000 },
	{ 0x5F, model_z4 },      // the hardware query tells an MPC apart
	{ 0x61, model_mpc4000 },
};

struct z4_hardware { u8 answer; i32 device_type; const char *name; };
static constexpr z4_hardware z4_kinds[] = {
	{ 0, model_z4,      "Z4" },
	{ 1, model_z4,      "Z8" },
	{ 2, model_mpc4000, "MPC" },
};

// A query of the scan, and where its answers say that another one follows.
struct scan_query { std::span<const u8> bytes; std::size_t marker; const char *more; };
static constexpr scan_query ask_s5000_first  = { s5000_first_query,  5, "O" };
static constexpr scan_query ask_s5000_second = { s5000_second_query, 5, "O" };
static constexpr scan_query ask_s5000_name   = { s5000_name_query,   6, "DO" };
static constexpr scan_query ask_z4_first     = { z4_first_query,     4, "O" };
static constexpr scan_query ask_z4_name      = { z4_name_query,      4, "O" };
static constexpr scan_query ask_z4_hardware  = { z4_hardware_query,  4, "O" };
// clang-format on

// ---- The semaphore ---------------------------------------------------------------------

void init_usb_sem()
{
	usb_semaphore.reset(new (std::nothrow) usb_place{ 1 });
	if (!usb_semaphore) {
		show_box("ERROR", "Cannot create semaphore!");
		end_program(0);
	}
}

static void try_semaphore()
{
	if (usb_semaphore && usb_semaphore->free_places > 0)
		usb_semaphore->free_places--;
}

static void release_semaphore()
{
	if (usb_semaphore && usb_semaphore->free_places < 1)
		usb_semaphore->free_places++;
}

bool usb_in_use()
{
	return scanning || std::any_of(usbdev.begin(), usbdev.end(), [](const _usbdev &d) {
		return d.device_handle != no_usb_handle && !d.left_open;
	});
}

// ---- Bytes before a device is ready ----------------------------------------------------

static bool send_bytes(_usbdev *usb, std::span<const u8> bytes)
{
	bulk_exchange e;
	e.deadline_ms = framed_deadline_ms;
	e.may_stop = false;
	std::size_t none = 0;
	begin_exchange(&e, usb, { bytes }, 0);
	return finish_exchange(&e, nullptr, &none) == exchange_done;
}

static bool receive_bytes(_usbdev *usb, std::vector<u8> *answer)
{
	bulk_exchange e;
	e.deadline_ms = framed_deadline_ms;
	e.may_stop = false;
	std::size_t received = 0;
	answer->resize(query_answer_size);
	begin_exchange(&e, usb, {}, query_answer_size);
	const bool done = finish_exchange(&e, answer->data(), &received) == exchange_done;
	answer->resize(received);
	return done;
}

static bool has_marker(const std::vector<u8> &answer, std::size_t marker, const char *more)
{
	const u8 byte = bounded_bytes{ answer }[marker];
	return byte && std::strchr(more, byte);
}

// Read one answer, and on while it says that another one follows.
static bool receive_all(_usbdev *usb, std::size_t marker, const char *more, std::vector<u8> *answer)
{
	for (int packets = 0; packets < max_continued_packets; packets++) {
		if (!receive_bytes(usb, answer))
			return false;
		// A Z4 may leave the end byte of an earlier answer in front of this one.
		const bool stray = answer->size() == 1 && answer->front() == 0xF7;
		if (!stray && !has_marker(*answer, marker, more))
			return true;
	}
	log_line("[W] USB device does not end its answer\r\n");
	return true;
}

static bool ask_in_scan(_usbdev *usb, const scan_query &query, std::vector<u8> *answer)
{
	if (!send_bytes(usb, query.bytes)) {
		log_line("[D] USB_WRITE FAILED! (%s)\r\n",
			usb_error(__FILE_NAME__, __LINE__, usb_last_result));
		return false;
	}
	if (!receive_all(usb, query.marker, query.more, answer)) {
		log_line("[D] USB_READ FAILED! (%s)\r\n",
			usb_error(__FILE_NAME__, __LINE__, usb_last_result));
		return false;
	}
	return true;
}

// ---- The scan --------------------------------------------------------------------------

// The host's words for a device that this user may not open, once for each device.
static void tell_denied(const char *path, int code)
{
	if (code != usb_denied)
		told_denied.erase(path);
	else if (told_denied.insert(path).second)
		log_line("[W] No access to the USB sampler at [%s]: %s\r\n", path,
			host.usb->error_text(code));
}

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

static void wake_in_scan(_usbdev *usb)
{
	const bool s5000 = usb->device_type == model_s5000;
	if (!s5000 && usb->device_type != model_z4)
		return;
	const std::span<const u8> first = s5000 ? std::span<const u8>(s5000_wake_1) : z4_wake;
	const std::span<const u8> second = s5000 ? std::span<const u8>(s5000_wake_2) : z4_wake;
	for (std::span<const u8> bytes : { first, second })
		if (!send_bytes(usb, bytes))
			log_line("[D] USB_WRITE FAILED! 1. Init Sequence (%s)\r\n",
				usb_error(__FILE_NAME__, __LINE__, usb_last_result));
}

static bool identify_s5000(_usbdev *usb)
{
	std::vector<u8> answer;
	if (!ask_in_scan(usb, ask_s5000_second, &answer) ||
		!ask_in_scan(usb, ask_s5000_name, &answer))
		return false;
	copy_text(usb->usb_name, bounded_bytes{ answer }.text(s5000_answer_name));
	log_line("[D] Received S5000/6000 Sampler-Name [%s]\r\n", usb->usb_name);
	return true;
}

static bool identify_z4(_usbdev *usb)
{
	std::vector<u8> answer;
	if (!ask_in_scan(usb, ask_z4_name, &answer))
		return false;
	copy_text(usb->usb_name, bounded_bytes{ answer }.text(z4_answer_name));
	if (!ask_in_scan(usb, ask_z4_hardware, &answer))
		return false;
	for (const z4_hardware &kind : z4_kinds) {
		if (answer.size() <= z4_answer_hardware ||
			answer[z4_answer_hardware] != kind.answer)
			continue;
		usb->device_type = kind.device_type;
		log_line("[D] Sampler-Type: %s\r\n", kind.name);
	}
	return true;
}

static bool identify(_usbdev *usb)
{
	std::vector<u8> answer;
	wake_in_scan(usb);
	log_line("[D] USB SETUP DONE...querying devices...\r\n");
	const bool s5000 = usb->device_type == model_s5000;
	if (!ask_in_scan(usb, s5000 ? ask_s5000_first : ask_z4_first, &answer))
		return false;
	if (s5000)
		return identify_s5000(usb);
	return usb->device_type == 0 || identify_z4(usb);
}

// What one open device of the scan is walked with.
struct device_scan {
	const usb_device *device;
	int handle;
	int claimed_first; // outcome of claiming interface 0
	i32 *device_type;  // carried from one device to the next
	std::vector<_usbdev> *found;
};

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
	_usbdev entry = {};
	copy_text(entry.device_path, scan.device->path);
	entry.device_handle = entry.usb_handle = entry.interface_handle = scan.handle;
	entry.interface_index = static_cast<u8>(index);
	entry.interface_number = interface.number;
	entry.pipe_id = out->id & 0x7F;
	entry.packet_size = in_packet_size(interface, *out);
	entry.device_type = *scan.device_type;
	const bool answered = identify(&entry);
	*scan.device_type = entry.device_type;
	if (!answered) {
		log_line("[W] USB device [%s] did not answer\r\n", entry.device_path);
		return;
	}
	entry.device_handle = entry.usb_handle = entry.interface_handle = no_usb_handle;
	scan.found->push_back(std::move(entry));
}

static void scan_device(const usb_device &device, i32 *device_type, std::vector<_usbdev> *found)
{
	log_line("[D] USB-Device: [%s] VID_%04X PID_%04X, Interfaces: %d\r\n", device.name.c_str(),
		device.vendor, device.product, static_cast<int>(device.interfaces.size()));
	log_line("[D] Device-Path to open: [%s]\r\n", device.path.c_str());
	log_line("[D] PID of AKAI-Device: %d (0x%02X)\n", device.product, device.product);
	for (const usb_product &row : products)
		if (row.product == device.product)
			*device_type = row.device_type;

	int handle = no_usb_handle;
	const int opened = host.usb->open(device.path.c_str(), &handle);
	log_line("[D] DEVICE_HANDLE: %d, ERROR: [%s]\r\n",
		opened == usb_ok ? handle : no_usb_handle,
		usb_error(__FILE_NAME__, __LINE__, opened));
	tell_denied(device.path.c_str(), opened);
	if (opened != usb_ok)
		return;
	int claimed = usb_no_device;
	if (!device.interfaces.empty())
		claimed = host.usb->claim(handle, device.interfaces[0].number);
	log_line("[D] USB_HANDLE: [%s], ERROR: [%s]\r\n", claimed == usb_ok ? "CLAIMED" : "NONE",
		usb_error(__FILE_NAME__, __LINE__, claimed));
	const device_scan scan = { &device, handle, claimed, device_type, found };
	for (std::size_t i = 0; i < device.interfaces.size() && i < 256; i++)
		scan_interface(scan, static_cast<int>(i));
	host.usb->close(handle);
}

// Ask each found device once through the frames that the drivers use.
static void test_devices()
{
	static constexpr u8 hardware[] = { 0x04, 0x04 };
	for (std::size_t i = 0; i < usbdev.size(); i++) {
		_usbdev *usb = find_usbdev(usbdev[i].usb_name);
		if (!open_midi_usb(usb)) {
			log_line("[F] FAILED TO OPEN USBDEV! [%s]\r\n", usb->usb_name);
			continue;
		}
		const open_usbdev open(usb);
		std::array<u8, query_answer_size> answer;
		int received = 0;
		if (!_sysex_midi_usb(usb, hardware, sizeof hardware, answer.data(), answer.size(),
			    &received, __FILE_NAME__, __LINE__))
			log_line("[F] FAILED TO TEST USBDEV! [%s]\r\n", usb->usb_name);
	}
}

static void scan_bus()
{
	for (_usbdev &left : usbdev)
		close_midi_usb(&left);
	usbdev.clear();
	usbdevs = 0;
	std::vector<usb_device> devices;
	if (!host.usb->list(&devices)) {
		display_error_text(__FILE_NAME__, __LINE__, host.usb->error_text(usb_failed));
		end_program(0);
		return;
	}
	log_line("[D] DiGetClassDevs completed...\r\n");
	std::vector<_usbdev> found;
	i32 device_type = 0;
	for (const usb_device &device : devices)
		if (device.vendor == akai_vendor)
			scan_device(device, &device_type, &found);
	usbdev = std::move(found);
	usbdevs = static_cast<int>(usbdev.size());
	test_devices();
	usb_init_done = 1;
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
	// Interface events run inside the scan, and the flag must not outlive it.
	struct scan_mark {
		scan_mark() { scanning = true; }
		~scan_mark() { scanning = false; }
	} const mark;
	scan_bus();
}

_usbdev *find_usbdev(const char *name)
{
	for (_usbdev &usb : usbdev)
		if (std::strcmp(usb.usb_name, name) == 0)
			return &usb;
	return nullptr;
}

// ---- Opening and closing ---------------------------------------------------------------

void close_midi_usb(_usbdev *usb)
{
	if (!usb || usb->device_handle == no_usb_handle)
		return;
	host.usb->close(usb->device_handle);
	release_semaphore();
	usb->device_handle = usb->usb_handle = usb->interface_handle = no_usb_handle;
	usb->kept_from = usb->kept_to = 0;
	usb->left_open = false;
	log_line("[D] USB Device closed SYSEX-CHANNEL: [%d]\r\n", usb->sysex_channel);
}

void leave_midi_usb_open(_usbdev *usb)
{
	if (usb)
		usb->left_open = true;
}

static bool wake_s5000(_usbdev *usb)
{
	if (!send_bytes(usb, s5000_wake_1)) {
		log_line("[F] (S5000/6000) USB_WRITE FAILED! 1. Init Sequence (%s)\r\n",
			usb_error(__FILE_NAME__, __LINE__, usb_last_result));
		return false;
	}
	if (!send_bytes(usb, s5000_wake_2)) {
		log_line("[F] (S5000/6000) USB_WRITE FAILED! 2. Init Sequence (%s)\r\n",
			usb_error(__FILE_NAME__, __LINE__, usb_last_result));
		return false;
	}
	host.usb->reset_pipe(usb->interface_handle, usb->pipe_id);
	host.usb->reset_pipe(usb->interface_handle, usb->pipe_id | 0x80);
	if (!send_bytes(usb, s5000_first_query))
		log_line("[D] USB_WRITE FAILED! 1. Init Sequence (%s)\r\n",
			usb_error(__FILE_NAME__, __LINE__, usb_last_result));
	// The sampler tells its channel here, whatever the configuration says.
	std::vector<u8> answer;
	if (!receive_bytes(usb, &answer))
		log_line("[D] USB_READ FAILED! 1. MIDI-Sequence (%s)\r\n",
			usb_error(__FILE_NAME__, __LINE__, usb_last_result));
	usb->sysex_channel = bounded_bytes{ answer }[s5000_answer_channel] & 0x0F;
	if (has_marker(answer, 6, "O"))
		receive_all(usb, 6, "O", &answer);
	return true;
}

static bool wake_z4(_usbdev *usb)
{
	if (!send_bytes(usb, z4_wake)) {
		log_line("[F] (S5000/6000) USB_WRITE FAILED! 1. Init Sequence (%s)\r\n",
			usb_error(__FILE_NAME__, __LINE__, usb_last_result));
		return false;
	}
	usb->sysex_channel = 0;
	return true;
}

static bool refuse_open(_usbdev *usb, const char *what, int code)
{
	usb_last_result = code;
	log_line("[F] DEVICE_HANDLE: %d,%s ERROR: [%s] (File: %s)\r\n", usb->device_handle, what,
		usb_error(__FILE_NAME__, __LINE__, code), usb->device_path);
	release_semaphore();
	return false;
}

bool open_midi_usb(_usbdev *usb)
{
	if (usb->left_open)
		close_midi_usb(usb);
	if (usb->device_handle != no_usb_handle) {
		// An operation is under way on it, and this one came from inside its wait.
		usb_last_result = usb_busy;
		log_line("[F] DEVICE_HANDLE: %d, ERROR: [%s] (File: %s)\r\n", usb->device_handle,
			usb_error(__FILE_NAME__, __LINE__, usb_busy), usb->device_path);
		return false;
	}
	try_semaphore();
	int handle = no_usb_handle;
	const int opened = host.usb->open(usb->device_path, &handle);
	tell_denied(usb->device_path, opened);
	if (opened != usb_ok)
		return refuse_open(usb, "", opened);
	const int claimed = host.usb->claim(handle, usb->interface_number);
	if (claimed != usb_ok) {
		host.usb->close(handle);
		return refuse_open(
			usb, usb->interface_index ? " (GETASSOCIATEDINTERFACE)" : "", claimed);
	}
	usb->device_handle = usb->usb_handle = usb->interface_handle = handle;
	usb->kept_from = usb->kept_to = 0;
	const bool s5000 = usb->device_type == model_s5000;
	const bool z_family = usb->device_type == model_z4 || usb->device_type == model_mpc4000;
	if ((s5000 && !wake_s5000(usb)) || (z_family && !wake_z4(usb))) {
		close_midi_usb(usb);
		return false;
	}
	log_line("[D] Device Sysex-Channel: %d opened\r\n", usb->sysex_channel);
	return true;
}

} // namespace velmor
