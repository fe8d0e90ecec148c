// usbqx.h - samplers on USB: finding them, waking them, one exchange, raw bytes
//
// Called by the drivers of the S5000/6000, Z4/Z8 and MPC 4000, by load_sampler and by
// the USB dialog. Every use is find_usbdev, open_midi_usb, exchanges, close_midi_usb: a
// device is opened and woken again for each operation. Owns the list of devices.
//
// Waits pump the interface and end at a deadline, so a silent device is a failure and
// never a hang. After an exchange that did not end as it should, the next opening or scan
// reads the IN pipe empty first: an answer that comes late answers nothing else.
//
// What differs between the families is one row each of usb_families.
//
// Knows nothing of: what a request means (the drivers), libusb.

#pragma once
#include "platform/usb.h"
#include "src/velmor.h"
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace velmor
{

inline constexpr u16 akai_vendor = 0x09E8;
inline constexpr int framed_deadline_ms = 5000; // a request, and its answer
inline constexpr int raw_deadline_ms = 10000;   // a block of sample data
inline constexpr int no_usb_handle = -1;
inline constexpr u8 usb_end_byte = 0xF7;
// Packets of one answer that say that more is to come, and stray end bytes before one.
inline constexpr int max_continued_packets = 64;

// One found device.
struct _usbdev {
	char device_path[1024]; // the socket it is plugged into, to open
	int device_handle;      // no_usb_handle when closed
	int usb_handle;         // of interface 0
	int interface_handle;   // of the interface in use; this host gives one for the device
	char usb_name[1024];    // the sampler's own name, by which a .sampler file finds it
	u8 sysex_channel;       // used in frames
	u8 interface_index;     // of the interface that has the OUT pipe
	u8 pipe_id;             // OUT; the IN pipe is the same with 0x80
	i32 device_type;        // model id: 1002, 1003 or 1004

	u16 product;         // 0 for an entry that no scan has made
	std::string address; // on the bus, when it was last opened
	u8 interface_number; // by which the host claims the interface
	int packet_size;     // bytes of one packet of the IN pipe
	bool left_open;      // by an operation that failed and is over; the next one closes it
	// Bytes that came in one packet with what was asked for, for the next raw read.
	std::vector<u8> landing;
	std::size_t kept_from, kept_to;
};

// The devices of the last scan. Replaced by init_usb, so a pointer does not survive it.
extern std::vector<_usbdev> usbdev;
extern int usbdevs;
extern int usb_init_done; // set when a scan has finished; 0 after one that was stopped
// Words of the transport for the last failure: a usb_result.
extern int usb_last_result;

// Create the semaphore that open_midi_usb takes; it orders nothing.
void init_usb_sem();
// Scan the bus. With force 0 nothing happens after a finished scan. Shows a progress window
// while there is a sampler to ask, and Stop ends the scan with what was found so far. Takes
// the deadlines of the queries for a device that stays silent.
void init_usb(int force);
// The first device of exactly that name, or null.
_usbdev *find_usbdev(const char *name);
// Open, wake and claim; the device stays open until close_midi_usb. A device that is open
// already is refused, unless it was left open. One that was plugged in again is found at its new
// address, and one that was plugged into another socket by its name.
bool open_midi_usb(_usbdev *usb);
void close_midi_usb(_usbdev *usb);
// End an operation without closing the device. It is closed when it is opened again, or when
// devices are looked for.
void leave_midi_usb_open(_usbdev *usb);
// True while a device is in use by an operation, or being looked for. Windows refuse commands
// meanwhile.
bool usb_in_use();

// One request and one answer. command is the payload without its frame; *_received gets the
// bytes of the answer. A maxsize of 0 sends only. file and line name the caller in the log.
bool _sysex_midi_usb(_usbdev *usb, const u8 *command, int size, u8 *response, int maxsize,
	int *_received, const char *file, int line);
// Raw bytes, for sample data. Nothing but their deadline breaks them off: a sampler that got
// half a block cannot be spoken to.
bool write_midi_usb(_usbdev *usb, const u8 *data, int len, int deadline_ms = raw_deadline_ms);
bool read_midi_usb(
	_usbdev *usb, u8 *data, int maxlen, int *_received, int deadline_ms = raw_deadline_ms);

const char *get_usb_pipedirection(const usb_pipe &pipe);
const char *get_usb_pipetype(const usb_pipe &pipe);

// Bytes out and an answer in, all transfers under way before the first has finished, so that
// the bus does not idle between them. begin and finish belong together; the bytes must live
// until finish. A run of bytes that the host took only in part is a failure, unless it is
// the last.
struct bulk_exchange {
	static constexpr int max_runs = 2;
	struct transfer {
		int id = no_usb_handle; // the host's; no_usb_handle when none is under way
		int result = usb_ok;
		std::size_t moved = 0;
	};
	_usbdev *usb = nullptr;
	std::span<const u8> bytes[max_runs];
	transfer out[max_runs], in;
	int runs = 0;
	std::size_t wanted = 0; // bytes to read, 0 for none
	int deadline_ms = raw_deadline_ms;
	int owed_ms = framed_deadline_ms; // how long an answer that did not come may still be late
};
enum exchange_outcome : int {
	exchange_done,
	exchange_write_failed,
	exchange_read_failed,
};
void begin_exchange(bulk_exchange *exchange, _usbdev *usb,
	std::initializer_list<std::span<const u8>> runs, std::size_t wanted);
exchange_outcome finish_exchange(bulk_exchange *exchange, u8 *answer, std::size_t *received);
// Forget an exchange that will not be finished.
void abandon_exchange(bulk_exchange *exchange);

// Sample data is under way from here on: if the device is closed before it is settled, the
// next opening brings the sampler back to where it hears requests.
void usb_unsettled(_usbdev *usb);
// The sampler has nothing under way any more.
void usb_settled(_usbdev *usb);
// Tell the sampler to drop what it has under way: its wake-up, and the IN pipe read empty
// before and behind it. False when it does not become quiet.
bool usb_break_off(_usbdev *usb);
// Read what the sampler still says to a request that it cut short, until it is quiet.
void usb_drop_answers(_usbdev *usb);
// Forget what devices have left unread; for tests, whose next device is another one.
void forget_unread_usb();

// "(file:line) [words]" of a usb_result, in one static buffer.
const char *usb_error(const char *file, int line, int code);

// Closes the device at the end of the scope, whatever happened.
struct usb_closer {
	void operator()(_usbdev *usb) const { close_midi_usb(usb); }
};
using open_usbdev = std::unique_ptr<_usbdev, usb_closer>;

// Prove the device of the loaded USB sampler and log its volumes or disks. A device that is
// not found or does not open ends the process.
void probe_usb_sampler();

// ---- Families (usbqx_families.cpp) -------------------------------------------------------

// A query that is sent whole, since no channel is known yet, and where its answers say that
// another one follows.
struct usb_query {
	std::span<const u8> bytes;
	std::size_t marker;
	const char *more; // letters at the marker that say so
};

// What the dialog asks for. A version or a name may have a zero in front of it.
enum class usb_fact {
	hardware,
	version,
	name
};
struct usb_question {
	usb_fact fact;
	u8 command[2];
	const char *failure; // words when it fails
};
// What a machine says it is.
struct usb_kind {
	u8 answer;
	i32 model;
	const char *name;
};

using usb_messages = std::span<const std::span<const u8>>;

struct usb_family {
	i32 model;   // device_type
	u16 product; // that tells it on the bus

	usb_messages scan_wake; // sent before the queries of a scan
	usb_messages open_wake; // sent when a device is opened
	bool resets_pipes;      // behind the wake-up of an opening
	usb_query opening;      // asked when it is opened and tells the channel; without bytes: 0
	std::size_t channel_offset;
	std::span<const usb_query> scan_queries; // before the name
	usb_query name_query, hardware_query;    // the second without bytes: not asked

	std::vector<u8> (*frame)(u8 channel, std::span<const u8> command);
	bool stray_ends; // a lone end byte may stand in front of an answer
	bool padded;     // a zero may stand in front of version and name
	std::size_t status_offset, data_offset;
	i32 (*number)(bounded_bytes bytes, int groups); // groups of seven bits
	u8 disk_section;                                // first byte of a request about disks

	std::span<const u8> set_name;
	std::span<const usb_question> questions;
	std::span<const usb_kind> kinds;
	const char *any_kind;               // name where the answer is none of them
	void (*log_contents)(_usbdev *usb); // disks or volumes, for the probe
};
extern const std::span<const usb_family> usb_families;

// The row of a product, or null: no sampler of ours.
const usb_family *family_of_product(u16 product);
// The row of a device; its type is that of a row.
const usb_family &family_of(const _usbdev &usb);
// A name, and where a version begins, in an answer.
std::string usb_name_in(const usb_family &family, bounded_bytes answer);
std::size_t usb_version_at(const usb_family &family, bounded_bytes answer);

// Sum of the bytes from the fifth on, seven bits; 0 for less than five bytes.
u8 akai_s5000_calc_checksum(const u8 *bytes, int length);

// ---- The USB dialog (velmor_usb.cpp) ---------------------------------------------------

// Scan, show the dialog and list the devices.
void show_usb_sampler_setup();
// Ask the selected device what it is and fill the dialog's fields.
void fill_usb_info();
// Another device was chosen in the list: the same, but a failure ends nothing.
void choose_usb_device();
// Give the selected device the name in the dialog.
void update_usb_sampler_name();
// Store the selected device as a configuration, and load it as current_sampler.
void save_usb_sampler();

} // namespace velmor
