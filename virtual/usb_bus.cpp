// usb_bus.cpp - a full-speed USB with virtual machines on it
//
// Events of the timeline run with the timeline's lock held and take the bus lock;
// so nothing may ask the timeline while it holds the bus lock. What is to happen
// later is collected in a session and handed to the timeline when it ends.

#include "virtual/usb_bus.h"
#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <utility>

namespace velmor
{

namespace
{

struct plugged {
	usb_machine *machine; // null once the plug is pulled
	timeline *time;
	std::string path, address;
	std::deque<int> writes, reads; // transfers in order; the first may be under way
	bool out_stalled = false, in_stalled = false;
	std::set<std::uint8_t> claimed; // interfaces
};

using device_ref = std::shared_ptr<plugged>;

struct moving {
	device_ref device;
	bool read;
	unsigned char *buffer;
	std::size_t count;
	std::size_t moved = 0;
	int result = usb_pending;
	bool begun = false;
	double start = 0;       // on the bus
	std::size_t length = 0; // bytes that will have moved at its end
	usb_fault fault = usb_fault::none;
};

struct open_handle {
	device_ref device;
	std::set<std::uint8_t> claimed;
};

struct whole_bus {
	std::mutex lock;
	std::vector<device_ref> devices;
	std::map<int, open_handle> handles;
	std::map<int, moving> transfers;
	std::map<const usb_machine *, int> sockets; // of each that was ever plugged in
	int next_name = 1, next_socket = 1, next_address = 1;
	double free_at = 0; // end of the last packet that has its place on the bus
	bool list_forbidden = false;
	void (*wake)() = nullptr;
};

whole_bus bus;

class session
{
public:
	explicit session(double moment) : now(moment), held(bus.lock) {}
	~session()
	{
		void (*wake)() = ended ? bus.wake : nullptr;
		held.unlock();
		for (auto &[time, when, what] : later)
			time->at(when, std::move(what));
		if (wake)
			wake();
	}
	session(const session &) = delete;
	void at(timeline *time, double when, timeline::action what)
	{
		later.emplace_back(time, when, std::move(what));
	}
	const double now;
	bool ended = false; // a transfer has ended

private:
	std::unique_lock<std::mutex> held;
	std::vector<std::tuple<timeline *, double, timeline::action>> later;
};

} // namespace

// ---- Time on the bus -------------------------------------------------------------------

static constexpr double packet_overhead = 13; // byte times
static constexpr double packets_a_second = 19000;

static double packet_time(std::size_t bytes)
{
	return (static_cast<double>(bytes) + packet_overhead) / (usb_packet + packet_overhead) /
	       packets_a_second;
}

double usb_transfer_time(std::size_t bytes)
{
	const std::size_t last = bytes % usb_packet;
	double seconds = static_cast<double>(bytes / usb_packet) * packet_time(usb_packet);
	if (last || bytes == 0)
		seconds += packet_time(last);
	return seconds;
}

// Bytes of a transfer that have crossed the bus when it is broken off.
static std::size_t crossed(const moving &t, double now)
{
	if (!t.begun || now <= t.start)
		return 0;
	const auto packets = static_cast<std::size_t>((now - t.start) / packet_time(usb_packet));
	return std::min(packets * usb_packet, t.length);
}

static void end_on_bus(int name, timeline *time);

// Give a transfer its place on the bus, and end it there.
static void put_on_bus(session &s, int name, moving &t, std::size_t length)
{
	t.begun = true;
	t.start = std::max(s.now, bus.free_at);
	t.length = length;
	bus.free_at = t.start + usb_transfer_time(length);
	timeline *time = t.device->time;
	s.at(time, bus.free_at, [name, time] { end_on_bus(name, time); });
}

// ---- Messages of the machine -----------------------------------------------------------

static usb_trouble trouble_now(const usb_machine &machine)
{
	for (const usb_trouble &t : machine.troubles)
		if (machine.writes >= t.first && machine.writes <= t.last)
			return t;
	return { usb_fault::none, 0, 0 };
}

static void spoil(usb_message *m, const usb_trouble &trouble)
{
	m->fault = trouble.what;
	if (trouble.what == usb_fault::answer_late)
		m->delay += trouble.seconds;
	if (trouble.what == usb_fault::answer_short)
		m->bytes.resize(std::min(m->bytes.size(), trouble.bytes));
	if (trouble.what == usb_fault::answer_garbled)
		for (std::uint8_t &b : m->bytes)
			b ^= 0x55;
}

// Let the machine hear what came, and post what it answers.
static void deliver(session &s, plugged &d, std::span<const std::uint8_t> bytes, bool ended)
{
	std::deque<usb_message> &outbox = d.machine->outbox;
	d.machine->take(bytes, ended);
	const usb_trouble trouble = trouble_now(*d.machine);
	if (trouble.what == usb_fault::answer_missing)
		std::erase_if(outbox, [](const usb_message &m) { return !m.posted; });
	for (usb_message &m : outbox) {
		if (m.posted)
			continue;
		spoil(&m, trouble);
		m.posted = true;
		m.ready = s.now + m.delay;
	}
}

static void drop_or_repeat(usb_machine &machine, double now)
{
	usb_message &m = machine.outbox.front();
	if (machine.record)
		machine.recorded.push_back({ false, m.bytes });
	if (m.repeats == 0) {
		machine.outbox.pop_front();
		return;
	}
	if (m.repeats > 0)
		m.repeats--;
	m.taken = 0;
	m.ready = now + m.interval;
	m.awaited = false;
}

// True when the message ends the read: with a short packet, which may be an empty one.
static bool read_from_message(moving &t, std::size_t length, double now)
{
	usb_machine &machine = *t.device->machine;
	if (machine.outbox.empty())
		return true; // the machine has dropped it meanwhile
	usb_message &m = machine.outbox.front();
	length = std::min(length, m.bytes.size() - m.taken);
	std::copy_n(
		m.bytes.begin() + static_cast<std::ptrdiff_t>(m.taken), length, t.buffer + t.moved);
	m.taken += length;
	t.moved += length;
	if (m.taken < m.bytes.size())
		return false;
	const bool full = m.bytes.size() % usb_packet == 0;
	const bool closes = full && m.closed;
	if (closes && t.moved == t.count && !m.read) {
		m.read = true; // its empty packet is for the next read
		return true;
	}
	drop_or_repeat(machine, now);
	return !full || closes;
}

// ---- Transfers -------------------------------------------------------------------------

static void advance(session &s, const device_ref &d);

static void finish(session &s, int name, moving &t, int result)
{
	t.result = result;
	std::erase(t.read ? t.device->reads : t.device->writes, name);
	s.ended = true;
	advance(s, device_ref(t.device));
}

static void pull_plug(session &s, const device_ref &d)
{
	d->machine = nullptr;
	std::erase(bus.devices, d);
	for (std::deque<int> *queue : { &d->reads, &d->writes }) {
		for (int name : *queue)
			bus.transfers[name].result = usb_no_device;
		queue->clear();
	}
	s.ended = true;
}

static void end_write(session &s, int name, moving &t)
{
	t.moved = t.length;
	if (t.fault == usb_fault::unplugged) {
		pull_plug(s, device_ref(t.device));
		return;
	}
	const bool whole = t.length == t.count;
	deliver(s, *t.device, { t.buffer, t.length }, whole && t.length % usb_packet != 0);
	finish(s, name, t, usb_ok);
}

static void end_read(session &s, int name, moving &t)
{
	const bool ended = read_from_message(t, t.length, s.now);
	if (t.fault == usb_fault::unplugged_answering) {
		pull_plug(s, device_ref(t.device));
		return;
	}
	if (ended || t.moved == t.count) {
		finish(s, name, t, usb_ok);
		return;
	}
	t.begun = false; // more is to come
	advance(s, device_ref(t.device));
}

static void end_on_bus(int name, timeline *time)
{
	session s(time->now());
	auto found = bus.transfers.find(name);
	if (found == bus.transfers.end() || found->second.result != usb_pending)
		return;
	moving &t = found->second;
	t.read ? end_read(s, name, t) : end_write(s, name, t);
}

// Break a transfer off, with what has crossed the bus so far.
static void break_off(session &s, int name, int result)
{
	auto found = bus.transfers.find(name);
	if (found == bus.transfers.end() || found->second.result != usb_pending)
		return;
	moving &t = found->second;
	const std::size_t bytes = crossed(t, s.now);
	if (t.begun && t.read) {
		(void)read_from_message(t, bytes, s.now);
	} else if (t.begun && bytes > 0) {
		t.moved = bytes;
		deliver(s, *t.device, { t.buffer, bytes }, false);
	}
	finish(s, name, t, result);
}

static void begin_write(session &s, int name, moving &t)
{
	plugged &d = *t.device;
	if (d.out_stalled) {
		finish(s, name, t, usb_stalled);
		return;
	}
	d.machine->writes++;
	t.fault = trouble_now(*d.machine).what;
	const std::size_t half = t.count / usb_packet / 2 * usb_packet;
	switch (t.fault) {
	case usb_fault::write_fails:
		finish(s, name, t, usb_failed);
		break;
	case usb_fault::write_stalls:
		d.out_stalled = true;
		finish(s, name, t, usb_stalled);
		break;
	case usb_fault::write_hangs:
		t.begun = true;
		break;
	case usb_fault::write_short:
	case usb_fault::unplugged:
		put_on_bus(s, name, t, half);
		break;
	default:
		put_on_bus(s, name, t, t.count);
		break;
	}
}

static void begin_read(session &s, int name, moving &t)
{
	const device_ref d = t.device;
	if (d->in_stalled) {
		finish(s, name, t, usb_stalled);
		return;
	}
	if (d->machine->outbox.empty())
		return;
	usb_message &m = d->machine->outbox.front();
	if (m.ready > s.now) {
		if (!m.awaited)
			s.at(d->time, m.ready, [d] {
				session then(d->time->now());
				advance(then, d);
			});
		m.awaited = true;
		return;
	}
	t.fault = m.fault;
	std::size_t length = std::min(t.count - t.moved, m.bytes.size() - m.taken);
	if (t.fault == usb_fault::answer_fails || t.fault == usb_fault::answer_stalls) {
		d->in_stalled = t.fault == usb_fault::answer_stalls;
		d->machine->outbox.pop_front();
		finish(s, name, t, d->in_stalled ? usb_stalled : usb_failed);
		return;
	}
	if (t.fault == usb_fault::unplugged_answering)
		length /= 2;
	put_on_bus(s, name, t, length);
}

// Begin what can begin now on both pipes.
static void advance(session &s, const device_ref &d)
{
	if (!d->machine)
		return;
	if (!d->writes.empty()) {
		moving &t = bus.transfers[d->writes.front()];
		if (!t.begun)
			begin_write(s, d->writes.front(), t);
	}
	if (d->machine && !d->reads.empty()) {
		moving &t = bus.transfers[d->reads.front()];
		if (!t.begun)
			begin_read(s, d->reads.front(), t);
	}
}

// ---- The service -----------------------------------------------------------------------

static bool list(std::vector<usb_device> *devices)
{
	std::lock_guard held(bus.lock);
	devices->clear();
	for (const device_ref &d : bus.devices)
		devices->push_back({ d->machine->vendor, d->machine->product, d->path, d->address,
			d->machine->interfaces });
	return !bus.list_forbidden;
}

static int open(const char *path, int *handle)
{
	std::lock_guard held(bus.lock);
	for (const device_ref &d : bus.devices) {
		if (d->path != path)
			continue;
		if (d->machine->denied)
			return usb_denied;
		*handle = bus.next_name++;
		bus.handles[*handle].device = d;
		return usb_ok;
	}
	return usb_no_device;
}

static int claim(int handle, std::uint8_t number)
{
	std::lock_guard held(bus.lock);
	auto found = bus.handles.find(handle);
	if (found == bus.handles.end() || !found->second.device->machine)
		return usb_no_device;
	plugged &d = *found->second.device;
	const auto &interfaces = d.machine->interfaces;
	if (std::none_of(interfaces.begin(), interfaces.end(),
		    [number](const usb_interface &i) { return i.number == number; }))
		return usb_failed;
	if (found->second.claimed.contains(number))
		return usb_ok;
	if (d.machine->held || d.claimed.contains(number))
		return usb_busy;
	found->second.claimed.insert(number);
	d.claimed.insert(number);
	return usb_ok;
}

static device_ref device_of(int handle)
{
	std::lock_guard held(bus.lock);
	auto found = bus.handles.find(handle);
	return found == bus.handles.end() ? nullptr : found->second.device;
}

// Only the first bulk pipe to the machine, and its fellow of the same number, carry anything,
// and only for the one who claimed their interface.
static bool carries(const open_handle &h, std::uint8_t pipe)
{
	for (const usb_interface &i : h.device->machine->interfaces)
		for (const usb_pipe &p : i.pipes)
			if (p.type == 2 && !(p.id & 0x80))
				return (pipe & 0x7F) == p.id && h.claimed.contains(i.number);
	return false;
}

static int submit(int handle, std::uint8_t pipe, unsigned char *buffer, std::size_t count,
	int deadline_ms, int *transfer)
{
	const device_ref d = device_of(handle);
	if (!d)
		return usb_no_device;
	session s(d->time->now());
	if (!d->machine)
		return usb_no_device;
	if (!carries(bus.handles[handle], pipe))
		return usb_failed;
	const int name = *transfer = bus.next_name++;
	const bool read = pipe & 0x80;
	bus.transfers[name] = { .device = d, .read = read, .buffer = buffer, .count = count };
	(read ? d->reads : d->writes).push_back(name);
	if (deadline_ms > 0)
		s.at(d->time, s.now + deadline_ms / 1000.0, [name, time = d->time] {
			session then(time->now());
			break_off(then, name, usb_timeout);
		});
	advance(s, d);
	return usb_ok;
}

static int finished(int transfer, std::size_t *moved)
{
	std::lock_guard held(bus.lock);
	*moved = 0;
	auto found = bus.transfers.find(transfer);
	if (found == bus.transfers.end())
		return usb_cancelled; // its device was closed
	const int result = found->second.result;
	if (result == usb_pending)
		return usb_pending;
	*moved = found->second.moved;
	bus.transfers.erase(found);
	return result;
}

static timeline *time_of(int transfer)
{
	std::lock_guard held(bus.lock);
	auto found = bus.transfers.find(transfer);
	return found == bus.transfers.end() ? nullptr : found->second.device->time;
}

static void cancel(int transfer)
{
	timeline *time = time_of(transfer);
	if (!time)
		return;
	session s(time->now());
	break_off(s, transfer, usb_cancelled);
}

static void close(int handle)
{
	const device_ref d = device_of(handle);
	if (!d)
		return;
	session s(d->time->now());
	for (std::deque<int> queue : { d->reads, d->writes })
		for (int name : queue)
			break_off(s, name, usb_cancelled);
	std::erase_if(bus.transfers, [&d](const auto &row) { return row.second.device == d; });
	for (std::uint8_t number : bus.handles[handle].claimed)
		d->claimed.erase(number);
	bus.handles.erase(handle);
}

// The packet that was read in part is lost with the reset.
static int reset_pipe(int handle, std::uint8_t pipe)
{
	const device_ref d = device_of(handle);
	if (!d)
		return usb_no_device;
	session s(d->time->now());
	if (!d->machine)
		return usb_no_device;
	if (!carries(bus.handles[handle], pipe))
		return usb_failed;
	if (!(pipe & 0x80)) {
		d->out_stalled = false;
		return usb_ok;
	}
	d->in_stalled = false;
	std::deque<usb_message> &outbox = d->machine->outbox;
	if (outbox.empty() || outbox.front().taken == 0 || !d->reads.empty())
		return usb_ok;
	usb_message &m = outbox.front();
	m.taken = (m.taken + usb_packet - 1) / usb_packet * usb_packet;
	if (m.taken >= m.bytes.size())
		outbox.pop_front();
	return usb_ok;
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
		return "Access denied. The udev rule 60-velmor.rules grants it";
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

const usb_service virtual_usb = {
	.list = list,
	.open = open,
	.claim = claim,
	.close = close,
	.submit = submit,
	.finished = finished,
	.cancel = cancel,
	.reset_pipe = reset_pipe,
	.on_arrival =
		[](void (*wake)()) {
			std::lock_guard held(bus.lock);
			bus.wake = wake;
		},
	.error_text = error_text,
};

static void plug_into(int socket, timeline &time, usb_machine &machine)
{
	if (bus.devices.empty())
		bus.free_at = 0;
	bus.sockets[&machine] = socket;
	machine.plugged_in();
	bus.devices.push_back(std::make_shared<plugged>(plugged{ .machine = &machine,
		.time = &time,
		.path = "/virtual/usb/" + std::to_string(socket),
		.address = "001/" + std::to_string(bus.next_address++),
		.writes = {},
		.reads = {},
		.claimed = {} }));
}

void plug_usb(timeline &time, usb_machine &machine)
{
	std::lock_guard held(bus.lock);
	const auto known = bus.sockets.find(&machine);
	plug_into(known == bus.sockets.end() ? bus.next_socket++ : known->second, time, machine);
}

void plug_usb_elsewhere(timeline &time, usb_machine &machine)
{
	std::lock_guard held(bus.lock);
	plug_into(bus.next_socket++, time, machine);
}

void unplug_usb(usb_machine &machine)
{
	session s(0);
	for (const device_ref &d : std::vector(bus.devices))
		if (d->machine == &machine)
			pull_plug(s, d);
}

void unplug_all_usb()
{
	session s(0);
	for (const device_ref &d : std::vector(bus.devices))
		pull_plug(s, d);
	bus.handles.clear();
	bus.transfers.clear();
	bus.sockets.clear();
	bus.next_socket = bus.next_address = 1;
	bus.free_at = 0;
	bus.list_forbidden = false;
	bus.wake = nullptr;
}

void forbid_usb_list(bool forbidden)
{
	std::lock_guard held(bus.lock);
	bus.list_forbidden = forbidden;
}

} // namespace velmor
