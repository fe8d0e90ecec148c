// usbqx.cpp - opening a sampler on USB and closing it
//
//   wake-up          S5000 03 14, 04 03      Z family 03 01
//
// A device is known by the socket it is plugged into, and by its address as long as it stays
// there. One that was plugged in again has another address, and another sampler may sit in its
// socket: then its name decides. The same where the socket is empty and a sampler of that
// product sits in another one.
//
// Knows nothing of: what the samplers hold.

#include "src/usbqx_pipe.h"
#include <algorithm>
#include <cstring>
#include <new>

namespace velmor
{

// Taken when a device is opened, given back when it is closed. Nothing waits for it.
struct usb_place {
	int free_places;
};
static std::unique_ptr<usb_place> usb_semaphore;

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
	return usb_scanning() || std::any_of(usbdev.begin(), usbdev.end(), [](const _usbdev &d) {
		return d.device_handle != no_usb_handle && !d.left_open;
	});
}

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

// ---- Opening ---------------------------------------------------------------------------

// Which device a wake-up of two parts failed at is told; the words are those of the S5000 for
// every family.
static bool wake(_usbdev *usb, const usb_family &family)
{
	for (std::size_t i = 0; i < family.open_wake.size(); i++) {
		if (send_usb_bytes(usb, family.open_wake[i]))
			continue;
		log_line("[F] (S5000/6000) USB_WRITE FAILED! %d. Init Sequence (%s)\r\n",
			static_cast<int>(i) + 1,
			usb_error(__FILE_NAME__, __LINE__, usb_last_result));
		return false;
	}
	return true;
}

// The sampler tells its channel here, whatever the configuration says. Its silence does not
// keep the device closed.
static void ask_channel(_usbdev *usb, const usb_family &family)
{
	usb->sysex_channel = 0;
	const usb_query &query = family.opening;
	if (query.bytes.empty())
		return;
	std::vector<u8> answer;
	const exchange_outcome outcome = read_usb_answer(usb, query.bytes, &answer);
	if (outcome == exchange_write_failed)
		log_line("[D] USB_WRITE FAILED! 1. Init Sequence (%s)\r\n",
			usb_error(__FILE_NAME__, __LINE__, usb_last_result));
	if (outcome == exchange_read_failed)
		log_line("[D] USB_READ FAILED! 1. MIDI-Sequence (%s)\r\n",
			usb_error(__FILE_NAME__, __LINE__, usb_last_result));
	usb->sysex_channel = bounded_bytes{ answer }[family.channel_offset] & 0x0F;
	if (outcome == exchange_done)
		read_usb_on(usb, query, &answer);
}

static bool refuse_open(_usbdev *usb, const char *what, int code)
{
	usb_last_result = code;
	log_line("[F] DEVICE_HANDLE: %d,%s ERROR: [%s] (File: %s)\r\n", usb->device_handle, what,
		usb_error(__FILE_NAME__, __LINE__, code), usb->device_path);
	return false;
}

// Open and claim what sits in the device's socket.
static bool open_socket(_usbdev *usb)
{
	int handle = no_usb_handle;
	const int opened = host.usb->open(usb->device_path, &handle);
	tell_usb_denied(usb->device_path, opened);
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
	return true;
}

// Open, wake and ask. known is false where another sampler may have taken the place.
static bool open_here(_usbdev *usb, bool known)
{
	try_semaphore();
	if (!open_socket(usb)) {
		release_semaphore();
		return false;
	}
	const usb_family &family = family_of(*usb);
	resume_usb(usb);
	if (!wake(usb, family)) {
		close_midi_usb(usb);
		return false;
	}
	if (family.resets_pipes) {
		host.usb->reset_pipe(usb->interface_handle, usb->pipe_id);
		host.usb->reset_pipe(usb->interface_handle, usb->pipe_id | 0x80);
	}
	ask_channel(usb, family);
	std::vector<u8> answer;
	if (known || (ask_usb_query(usb, family.name_query, &answer) &&
			     usb_name_in(family, { answer }) == usb->usb_name))
		return true;
	log_line("[W] Another sampler than [%s] is at [%s]\r\n", usb->usb_name, usb->device_path);
	close_midi_usb(usb);
	usb_last_result = usb_no_device;
	return false;
}

// ---- Where it is now -------------------------------------------------------------------

struct bus_place {
	std::string path, address;
};

// The places at which the device may be: where it was, or the sockets with a sampler of its
// product that no entry of the list has.
static std::vector<bus_place> places_of(const _usbdev &usb)
{
	const bus_place before = { usb.device_path, usb.address };
	std::vector<usb_device> present;
	if (!usb.product || !host.usb->list(&present))
		return { before };
	std::vector<bus_place> others;
	for (const usb_device &d : present) {
		if (d.vendor != akai_vendor || d.product != usb.product)
			continue;
		if (d.path == before.path)
			return { { d.path, d.address } };
		if (std::none_of(usbdev.begin(), usbdev.end(),
			    [&d](const _usbdev &listed) { return d.path == listed.device_path; }))
			others.push_back({ d.path, d.address });
	}
	return others.empty() ? std::vector{ before } : others;
}

bool open_midi_usb(_usbdev *usb)
{
	if (usb->left_open)
		close_midi_usb(usb);
	if (usb->device_handle != no_usb_handle) {
		// An operation is under way on it, and this one came from inside its wait.
		return refuse_open(usb, "", usb_busy);
	}
	const bus_place before = { usb->device_path, usb->address };
	for (const bus_place &place : places_of(*usb)) {
		copy_text(usb->device_path, place.path);
		usb->address = place.address;
		if (!open_here(usb, place.path == before.path && place.address == before.address))
			continue;
		log_line("[D] Device Sysex-Channel: %d opened\r\n", usb->sysex_channel);
		return true;
	}
	copy_text(usb->device_path, before.path);
	usb->address = before.address;
	tell_usb_line(usb, false);
	return false;
}

} // namespace velmor
