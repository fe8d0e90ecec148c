// usb_libusb.cpp - bulk transfers through libusb, with deadlines, while the caller pumps
//
// An open device has a libusb context and a thread of its own. The thread runs
// libusb's events and calls wake; everything else happens on the caller's thread.
//
// Reads of one pipe are handed to the kernel one at a time and always ask for
// whole packets, because a packet larger than what was asked for is an overflow
// and lost. What a packet brings beyond the count is kept for the next read.
//
// Must not know: samplers, vendors, product ids.

#include "platform/libusb/usb_libusb.h"
#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

namespace velmor
{

using steady = std::chrono::steady_clock;

namespace
{

struct open_device;

struct transfer {
	open_device *device;
	std::uint8_t pipe;
	unsigned char *buffer;
	std::size_t count;
	bool limited; // has a deadline
	steady::time_point deadline;

	libusb_transfer *raw = nullptr;     // null until it is handed to libusb
	bool under_way = false;             // libusb owes us a call
	std::vector<unsigned char> packets; // where a read of no whole packets lands first
	std::size_t moved = 0;
	int result = usb_pending;

	~transfer() { libusb_free_transfer(raw); }
};

struct pipe_state {
	std::deque<transfer *> reads; // in order; the first one is under way
	std::vector<unsigned char> kept;
	bool kept_ends = false; // the device's message ends with the kept bytes
};

struct open_device {
	libusb_context *context = nullptr;
	libusb_device_handle *handle = nullptr;
	std::map<std::uint8_t, std::size_t> packet_sizes;
	std::map<std::uint8_t, pipe_state> pipes;
	std::vector<std::uint8_t> claimed;
	int under_way = 0; // transfers that libusb owes us
	std::atomic<bool> ended = false;
	std::thread events;
};

struct all_devices {
	std::mutex lock; // guards everything below and in it
	std::condition_variable changed;
	int next_name = 1;
	std::map<int, std::unique_ptr<transfer>> transfers;
	std::map<int, std::unique_ptr<open_device>> devices;
	~all_devices();
};

} // namespace

static all_devices all;
static std::atomic<void (*)()> wake_caller = nullptr;

static void wake()
{
	if (auto call = wake_caller.load())
		call();
}

static int result_of_error(int error)
{
	switch (error) {
	case LIBUSB_SUCCESS:
		return usb_ok;
	case LIBUSB_ERROR_ACCESS:
		return usb_denied;
	case LIBUSB_ERROR_NO_DEVICE:
		return usb_no_device;
	case LIBUSB_ERROR_BUSY:
		return usb_busy;
	case LIBUSB_ERROR_TIMEOUT:
		return usb_timeout;
	case LIBUSB_ERROR_PIPE:
		return usb_stalled;
	default:
		return usb_failed;
	}
}

static int result_of_status(libusb_transfer_status status)
{
	switch (status) {
	case LIBUSB_TRANSFER_COMPLETED:
		return usb_ok;
	case LIBUSB_TRANSFER_TIMED_OUT:
		return usb_timeout;
	case LIBUSB_TRANSFER_CANCELLED:
		return usb_cancelled;
	case LIBUSB_TRANSFER_STALL:
		return usb_stalled;
	case LIBUSB_TRANSFER_NO_DEVICE:
		return usb_no_device;
	default:
		return usb_failed;
	}
}

static bool is_read(const transfer &t)
{
	return t.pipe & LIBUSB_ENDPOINT_IN;
}

static std::size_t packet_size(const open_device &d, std::uint8_t pipe)
{
	auto found = d.packet_sizes.find(pipe);
	return found == d.packet_sizes.end() || found->second == 0 ? 64 : found->second;
}

// Milliseconds left until the deadline: 0 is libusb's word for "no deadline".
static unsigned time_left(const transfer &t)
{
	if (!t.limited)
		return 0;
	const auto left =
		std::chrono::duration_cast<std::chrono::milliseconds>(t.deadline - steady::now());
	return static_cast<unsigned>(std::max<long long>(1, left.count()));
}

static void LIBUSB_CALL transfer_ended(libusb_transfer *raw);

// Hand a transfer to libusb; its result is set if that fails.
static void hand_over(transfer *t, unsigned char *bytes, std::size_t count)
{
	t->raw = libusb_alloc_transfer(0);
	if (!t->raw) {
		t->result = usb_failed;
		return;
	}
	libusb_fill_bulk_transfer(t->raw, t->device->handle, t->pipe, bytes,
		static_cast<int>(count), transfer_ended, t, time_left(*t));
	const int error = libusb_submit_transfer(t->raw);
	if (error) {
		t->result = result_of_error(error);
		return;
	}
	t->under_way = true;
	t->device->under_way++;
}

// Take what an earlier read left over. True when that ends this read.
static bool take_kept(pipe_state *p, transfer *t)
{
	if (p->kept.empty())
		return false;
	const std::size_t taken = std::min(p->kept.size(), t->count);
	std::copy_n(p->kept.begin(), taken, t->buffer);
	p->kept.erase(p->kept.begin(), p->kept.begin() + static_cast<std::ptrdiff_t>(taken));
	t->moved = taken;
	return taken == t->count || (p->kept.empty() && p->kept_ends);
}

static void start_read(pipe_state *p, transfer *t)
{
	if (t->limited && t->deadline < steady::now()) {
		t->result = usb_timeout;
		return;
	}
	if (take_kept(p, t)) {
		t->result = usb_ok;
		return;
	}
	const std::size_t packet = packet_size(*t->device, t->pipe);
	const std::size_t want = t->count - t->moved;
	const std::size_t whole = (want + packet - 1) / packet * packet;
	if (whole == want && t->moved == 0) {
		hand_over(t, t->buffer, want);
		return;
	}
	t->packets.resize(whole);
	hand_over(t, t->packets.data(), whole);
}

// Start reads until one is under way.
static void start_next_read(pipe_state *p)
{
	while (!p->reads.empty() && !p->reads.front()->under_way) {
		transfer *t = p->reads.front();
		start_read(p, t);
		if (t->result != usb_pending)
			p->reads.pop_front();
	}
}

static void unpack_read(pipe_state *p, transfer *t, std::size_t arrived)
{
	if (t->packets.empty()) {
		t->moved = arrived;
		return;
	}
	const std::size_t taken = std::min(arrived, t->count - t->moved);
	std::copy_n(t->packets.begin(), taken, t->buffer + t->moved);
	t->moved += taken;
	p->kept.assign(t->packets.begin() + static_cast<std::ptrdiff_t>(taken),
		t->packets.begin() + static_cast<std::ptrdiff_t>(arrived));
	p->kept_ends = arrived < t->packets.size();
}

static void LIBUSB_CALL transfer_ended(libusb_transfer *raw)
{
	{
		std::lock_guard held(all.lock);
		transfer *t = static_cast<transfer *>(raw->user_data);
		t->under_way = false;
		t->device->under_way--;
		t->result = result_of_status(raw->status);
		const std::size_t arrived =
			static_cast<std::size_t>(std::max(0, raw->actual_length));
		if (is_read(*t)) {
			pipe_state &p = t->device->pipes[t->pipe];
			unpack_read(&p, t, arrived);
			p.reads.pop_front();
			start_next_read(&p);
		} else {
			t->moved = arrived;
		}
		all.changed.notify_all();
	}
	wake();
}

// ---- Devices -------------------------------------------------------------------------

static void run_events(open_device *d)
{
	while (!d->ended)
		if (libusb_handle_events(d->context) != 0)
			std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

static libusb_device_handle *open_path(libusb_context *context, const char *path, int *result)
{
	libusb_device_handle *handle = nullptr;
	libusb_device **present = nullptr;
	*result = usb_no_device;
	const ssize_t count = libusb_get_device_list(context, &present);
	for (ssize_t i = 0; i < count; i++) {
		if (libusb_path(present[i]) != path)
			continue;
		*result = result_of_error(libusb_open(present[i], &handle));
		break;
	}
	if (count >= 0)
		libusb_free_device_list(present, 1);
	return *result == usb_ok ? handle : nullptr;
}

static int open(const char *path, int *handle)
{
	auto d = std::make_unique<open_device>();
	if (libusb_init(&d->context) != 0)
		return usb_failed;
	int result;
	d->handle = open_path(d->context, path, &result);
	if (!d->handle) {
		libusb_exit(d->context);
		return result;
	}
	libusb_set_auto_detach_kernel_driver(d->handle, 1);
	for (const usb_interface &i : libusb_interfaces(libusb_get_device(d->handle)))
		for (const usb_pipe &p : i.pipes)
			d->packet_sizes[p.id] = static_cast<std::size_t>(p.packet_size);
	d->events = std::thread(run_events, d.get());

	std::lock_guard held(all.lock);
	*handle = all.next_name++;
	all.devices[*handle] = std::move(d);
	return usb_ok;
}

static open_device *device_of(int handle)
{
	auto found = all.devices.find(handle);
	return found == all.devices.end() ? nullptr : found->second.get();
}

static int claim(int handle, std::uint8_t interface_number)
{
	std::lock_guard held(all.lock);
	open_device *d = device_of(handle);
	if (!d)
		return usb_no_device;
	const int error = libusb_claim_interface(d->handle, interface_number);
	if (!error)
		d->claimed.push_back(interface_number);
	return result_of_error(error);
}

// End every transfer of a device and wait until libusb has given all of them back. True
// unless the kernel keeps one, after far more time than it needs.
static bool end_transfers(std::unique_lock<std::mutex> *held, open_device *d)
{
	for (auto &[pipe, p] : d->pipes)
		while (p.reads.size() > 1)
			p.reads.pop_back();
	for (auto &[name, t] : all.transfers)
		if (t->device == d && t->under_way)
			libusb_cancel_transfer(t->raw);
	return all.changed.wait_for(
		*held, std::chrono::seconds(5), [d] { return d->under_way == 0; });
}

static void close(int handle)
{
	std::unique_lock held(all.lock);
	auto found = all.devices.find(handle);
	if (found == all.devices.end())
		return;
	std::unique_ptr<open_device> d = std::move(found->second);
	all.devices.erase(found);
	const bool idle = end_transfers(&held, d.get());
	if (!idle) {
		// The kernel still holds memory of ours: better to lose it than to share it.
		for (auto &[name, t] : all.transfers)
			if (t->device == d.get() && t->under_way)
				static_cast<void>(t.release());
		std::erase_if(all.transfers, [](const auto &row) { return !row.second; });
	}
	std::erase_if(
		all.transfers, [&d](const auto &row) { return row.second->device == d.get(); });
	held.unlock();

	if (!idle) {
		d->events.detach();
		static_cast<void>(d.release());
		return;
	}
	d->ended = true;
	libusb_interrupt_event_handler(d->context);
	d->events.join();
	for (std::uint8_t claimed : d->claimed)
		libusb_release_interface(d->handle, claimed); // the kernel's driver comes back
	libusb_close(d->handle);
	libusb_exit(d->context);
}

all_devices::~all_devices()
{
	wake_caller = nullptr;
	while (!devices.empty())
		close(devices.begin()->first);
}

// ---- Transfers -----------------------------------------------------------------------

static int submit(int handle, std::uint8_t pipe, unsigned char *buffer, std::size_t count,
	int deadline_ms, int *name)
{
	std::lock_guard held(all.lock);
	open_device *d = device_of(handle);
	if (!d)
		return usb_no_device;
	if (count > std::numeric_limits<int>::max() - packet_size(*d, pipe))
		return usb_failed;
	auto t = std::make_unique<transfer>();
	t->device = d;
	t->pipe = pipe;
	t->buffer = buffer;
	t->count = count;
	t->limited = deadline_ms > 0;
	t->deadline = steady::now() + std::chrono::milliseconds(deadline_ms);
	if (is_read(*t)) {
		pipe_state &p = d->pipes[pipe];
		p.reads.push_back(t.get());
		start_next_read(&p);
	} else {
		hand_over(t.get(), buffer, count);
		// A write that could not be begun never was a transfer.
		if (t->result != usb_pending)
			return t->result;
	}
	*name = all.next_name++;
	all.transfers[*name] = std::move(t);
	return usb_ok;
}

// A transfer that waits behind another one has ended without libusb's help.
static void end_waiting(transfer *t, int result)
{
	std::deque<transfer *> &reads = t->device->pipes[t->pipe].reads;
	std::erase(reads, t);
	t->result = result;
}

static int finished(int name, std::size_t *moved)
{
	std::lock_guard held(all.lock);
	*moved = 0;
	auto found = all.transfers.find(name);
	if (found == all.transfers.end())
		return usb_cancelled; // its device was closed
	transfer *t = found->second.get();
	if (t->result == usb_pending && !t->under_way && t->limited && t->deadline < steady::now())
		end_waiting(t, usb_timeout);
	const int result = t->result;
	if (result == usb_pending)
		return usb_pending;
	*moved = t->moved;
	all.transfers.erase(found);
	return result;
}

static void cancel(int name)
{
	std::lock_guard held(all.lock);
	auto found = all.transfers.find(name);
	if (found == all.transfers.end())
		return;
	transfer *t = found->second.get();
	if (t->under_way)
		libusb_cancel_transfer(t->raw);
	else if (t->result == usb_pending)
		end_waiting(t, usb_cancelled);
}

static int reset_pipe(int handle, std::uint8_t pipe)
{
	std::lock_guard held(all.lock);
	open_device *d = device_of(handle);
	if (!d)
		return usb_no_device;
	d->pipes[pipe].kept.clear();
	return result_of_error(libusb_clear_halt(d->handle, pipe));
}

static const char *error_text(int code)
{
	switch (code) {
	case usb_ok:
		return "Success";
	case usb_pending:
		return "The transfer is still under way";
	case usb_timeout:
		return "The device did not answer in time";
	case usb_denied:
		return "Access denied. Copy 60-velmor.rules to /etc/udev/rules.d, run "
		       "\"sudo udevadm control --reload\" and plug the sampler in again";
	case usb_no_device:
		return "No such device (unplugged or switched off)";
	case usb_busy:
		return "Another program is using the device";
	case usb_stalled:
		return "The device refused the transfer";
	case usb_cancelled:
		return "The transfer was cancelled";
	default:
		return "Input/output error";
	}
}

extern const usb_service libusb_usb;
const usb_service libusb_usb = {
	.list = libusb_list,
	.open = open,
	.claim = claim,
	.close = close,
	.submit = submit,
	.finished = finished,
	.cancel = cancel,
	.reset_pipe = reset_pipe,
	.on_arrival = [](void (*call)()) { wake_caller = call; },
	.error_text = error_text,
};

} // namespace velmor
