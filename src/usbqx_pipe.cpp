// usbqx_pipe.cpp - bytes over the two bulk pipes of a sampler: frames, answers, raw blocks
//
// A read asks for whole packets, since a device may put more into one packet than was asked
// for, and a host that has no room for a packet loses it. What is left over is kept for the
// next raw read.
//
// An answer to a frame is read packet by packet. A short packet ends it, and so does an end
// byte in the last place of a full one: not every sampler sends an empty packet behind an
// answer that fills its packets. One that comes nevertheless is skipped by the next read.
//
// An exchange that did not end as it should leaves bytes behind: an answer that comes late, a
// block that was never read. They are remembered by the socket of the device, since an entry
// of the list does not live as long, and read before the next request.
//
// Knows nothing of: what a command means, how devices are found.

#include "src/usbqx_pipe.h"
#include "src/velmor_outcome.h"
#include <algorithm>
#include <array>
#include <cstring>
#include <map>

namespace velmor
{

int usb_last_result = usb_ok;

static constexpr int wait_slice_ms = 100;
static constexpr u8 in_pipe_bit = 0x80;
static constexpr std::size_t query_answer_size = 1024;

// Reading a pipe empty: it is empty when nothing came for so long. An answer that is owed
// gets its deadline once more; one that is later still is taken for lost.
static constexpr int quiet_ms = 100;
static constexpr double empty_limit = 2; // seconds beside that
static constexpr int most_reads = 16384; // each of a packet at least

// Counter until which an answer may still come, by the socket of the device.
static std::map<std::string, double> unread_devices;

const char *usb_error(const char *file, int line, int code)
{
	static std::string text;
	text = format_text("(%s:%d) [%s]", file, line, host.usb->error_text(code));
	return text.c_str();
}

const char *get_usb_pipedirection(const usb_pipe &pipe)
{
	return pipe.id & in_pipe_bit ? "IN" : "OUT";
}

const char *get_usb_pipetype(const usb_pipe &pipe)
{
	static constexpr const char *types[] = { "CONTROL", "ISOCHRONOUS", "BULK", "INTERRUPT" };
	return pipe.type < std::size(types) ? types[pipe.type] : "UNKNOWN";
}

// ---- Transfers -----------------------------------------------------------------------------

// Begin one transfer. A refusal by the host is its outcome.
static void begin_transfer(
	bulk_exchange *e, bulk_exchange::transfer *t, u8 pipe, u8 *bytes, std::size_t count)
{
	*t = {};
	int id = no_usb_handle;
	t->result =
		host.usb->submit(e->usb->interface_handle, pipe, bytes, count, e->deadline_ms, &id);
	if (t->result == usb_ok)
		t->id = id;
}

// Let interface events run until the transfer has ended. Stop breaks off the wait for an
// answer in a scan, and nothing else.
static int finish_transfer(const bulk_exchange *e, bulk_exchange::transfer *t)
{
	bool cancelled = false;
	while (t->id != no_usb_handle) {
		const int result = host.usb->finished(t->id, &t->moved);
		if (result != usb_pending) {
			t->id = no_usb_handle;
			t->result = result;
			break;
		}
		if (!cancelled && t == &e->in && usb_scanning() && progress_stopped()) {
			host.usb->cancel(t->id);
			cancelled = true;
			continue;
		}
		host.ui->pump(wait_slice_ms);
	}
	if (t->result != usb_ok)
		usb_last_result = t->result;
	return t->result;
}

static void begin_write(bulk_exchange *e, int run, std::size_t from)
{
	// The service takes one buffer type for both directions; it does not write to this one.
	u8 *bytes = const_cast<u8 *>(e->bytes[run].data()) + from;
	begin_transfer(e, &e->out[run], e->usb->pipe_id, bytes, e->bytes[run].size() - from);
}

static std::size_t packet_of(const _usbdev *usb)
{
	return static_cast<std::size_t>(std::max(usb->packet_size, 1));
}

static void begin_read(bulk_exchange *e)
{
	_usbdev *usb = e->usb;
	const std::size_t kept = usb->kept_to - usb->kept_from;
	e->in = {};
	if (kept >= e->wanted)
		return;
	const std::size_t packet = packet_of(usb);
	const std::size_t count = (e->wanted - kept + packet - 1) / packet * packet;
	if (usb->landing.size() < kept + count)
		usb->landing.resize(kept + count);
	std::memmove(usb->landing.data(), usb->landing.data() + usb->kept_from, kept);
	usb->kept_from = 0;
	usb->kept_to = kept;
	begin_transfer(e, &e->in, usb->pipe_id | in_pipe_bit, usb->landing.data() + kept, count);
}

void begin_exchange(bulk_exchange *e, _usbdev *usb, std::initializer_list<std::span<const u8>> runs,
	std::size_t wanted)
{
	e->usb = usb;
	e->wanted = wanted;
	e->runs = 0;
	for (std::span<const u8> run : runs)
		if (e->runs < bulk_exchange::max_runs && !run.empty())
			e->bytes[e->runs++] = run;
	for (int run = 0; run < e->runs; run++)
		begin_write(e, run, 0);
	if (wanted)
		begin_read(e);
}

static void cancel_transfers(bulk_exchange *e)
{
	for (bulk_exchange::transfer *t : { &e->out[0], &e->out[1], &e->in }) {
		if (t->id != no_usb_handle)
			host.usb->cancel(t->id);
	}
	const int reason = usb_last_result;
	for (bulk_exchange::transfer *t : { &e->out[0], &e->out[1], &e->in })
		finish_transfer(e, t);
	usb_last_result = reason;
	e->usb->kept_from = e->usb->kept_to = 0;
}

void abandon_exchange(bulk_exchange *e)
{
	cancel_transfers(e);
	usb_unsettled(e->usb);
}

// The last run may leave in several transfers; an earlier one is all or nothing, because
// what follows it is on its way already.
static bool finish_write(bulk_exchange *e, int run)
{
	for (std::size_t sent = 0;;) {
		if (finish_transfer(e, &e->out[run]) != usb_ok)
			return false;
		const std::size_t moved = e->out[run].moved;
		sent += moved;
		if (sent >= e->bytes[run].size())
			return true;
		if (!moved || run + 1 < e->runs) {
			usb_last_result = usb_failed;
			return false;
		}
		begin_write(e, run, sent);
	}
}

// An empty packet in front of what is waited for ended something earlier.
static bool finish_read(bulk_exchange *e)
{
	for (int empty = 0;; empty++) {
		const bool asked = e->in.id != no_usb_handle;
		if (finish_transfer(e, &e->in) != usb_ok)
			return false;
		if (!asked || e->in.moved || empty == max_continued_packets)
			return true;
		begin_read(e);
	}
}

static exchange_outcome run_exchange(bulk_exchange *e)
{
	for (int run = 0; run < e->runs; run++)
		if (!finish_write(e, run))
			return exchange_write_failed;
	return !e->wanted || finish_read(e) ? exchange_done : exchange_read_failed;
}

// What the line to the loaded sampler did; another device says nothing about it.
void tell_usb_line(const _usbdev *usb, bool answered)
{
	if (!current_sampler || std::strcmp(current_sampler->sampler_usbname, usb->usb_name) != 0)
		return;
	if (answered)
		line_answered();
	else
		line_silent(host.usb->error_text(usb_last_result));
}

// Every exchange that failed ends here.
static void exchange_failed(bulk_exchange *e, exchange_outcome outcome)
{
	cancel_transfers(e);
	const bool read = outcome == exchange_read_failed;
	const bool owed =
		read && (usb_last_result == usb_timeout || usb_last_result == usb_cancelled);
	const double now = host.clock->counter();
	double &until = unread_devices[e->usb->device_path];
	until = std::max(until, owed ? now + e->owed_ms / 1000.0 : now);
	if (usb_last_result == usb_stalled)
		host.usb->reset_pipe(e->usb->interface_handle,
			static_cast<u8>(e->usb->pipe_id | (read ? in_pipe_bit : 0)));
	tell_usb_line(e->usb, false);
}

exchange_outcome finish_exchange(bulk_exchange *e, u8 *answer, std::size_t *received)
{
	*received = 0;
	const exchange_outcome outcome = run_exchange(e);
	if (outcome != exchange_done) {
		exchange_failed(e, outcome);
		return outcome;
	}
	if (!e->wanted)
		return outcome;
	_usbdev *usb = e->usb;
	usb->kept_to = std::min(usb->kept_to + e->in.moved, usb->landing.size());
	*received = std::min(usb->kept_to - usb->kept_from, e->wanted);
	std::memcpy(answer, usb->landing.data() + usb->kept_from, *received);
	usb->kept_from += *received;
	tell_usb_line(usb, true);
	return outcome;
}

// ---- What was left behind --------------------------------------------------------------------

void usb_unsettled(_usbdev *usb)
{
	unread_devices.try_emplace(usb->device_path, host.clock->counter());
}

void forget_unread_usb()
{
	unread_devices.clear();
}

void usb_settled(_usbdev *usb)
{
	unread_devices.erase(usb->device_path);
}

// One read of an unread pipe: its outcome, and the bytes it brought.
static int read_left_over(_usbdev *usb, int deadline_ms, std::size_t *moved)
{
	std::array<u8, 4096> bytes;
	bulk_exchange e;
	e.usb = usb;
	e.deadline_ms = deadline_ms;
	begin_transfer(&e, &e.in, usb->pipe_id | in_pipe_bit, bytes.data(), bytes.size());
	const int result = finish_transfer(&e, &e.in);
	*moved = e.in.moved;
	if (result == usb_stalled)
		host.usb->reset_pipe(usb->interface_handle, usb->pipe_id | in_pipe_bit);
	return result;
}

static bool read_pipe_empty(_usbdev *usb)
{
	const double until = unread_devices[usb->device_path];
	const double limit = std::max(until, host.clock->counter()) + empty_limit;
	usb->kept_from = usb->kept_to = 0;
	std::size_t bytes = 0;
	for (int reads = 0; reads < most_reads && host.clock->counter() <= limit; reads++) {
		const double left = bytes ? 0 : until - host.clock->counter();
		std::size_t moved = 0;
		const int result = read_left_over(
			usb, std::max(static_cast<int>(left * 1000), quiet_ms), &moved);
		bytes += moved;
		if (result == usb_timeout && !moved) {
			if (bytes)
				log_line(
					"[D] USB device: %d Bytes of an earlier answer dropped\r\n",
					static_cast<int>(bytes));
			return true;
		}
		if (result != usb_ok && result != usb_timeout && result != usb_stalled)
			return false;
	}
	log_line("[W] USB device does not stop sending\r\n");
	return false;
}

void usb_drop_answers(_usbdev *usb)
{
	usb_unsettled(usb);
	if (read_pipe_empty(usb))
		usb_settled(usb);
}

// A sampler that waits for the rest of a block takes the first wake-up for its end, and hears
// the second.
bool usb_break_off(_usbdev *usb)
{
	usb_unsettled(usb);
	read_pipe_empty(usb);
	unread_devices[usb->device_path] = host.clock->counter();
	for (int times = 0; times < 2; times++)
		for (std::span<const u8> bytes : family_of(*usb).open_wake)
			if (!send_usb_bytes(usb, bytes))
				return false;
	if (!read_pipe_empty(usb))
		return false;
	usb_settled(usb);
	return true;
}

void resume_usb(_usbdev *usb)
{
	if (!unread_devices.contains(usb->device_path))
		return;
	log_line("[D] USB device: reading what an earlier exchange left\r\n");
	usb_break_off(usb);
}

// ---- Messages --------------------------------------------------------------------------------

bool write_midi_usb(_usbdev *usb, const u8 *data, int len, int deadline_ms)
{
	if (len <= 0)
		return true;
	bulk_exchange e;
	e.deadline_ms = deadline_ms;
	std::size_t none = 0;
	begin_exchange(&e, usb, { { data, static_cast<std::size_t>(len) } }, 0);
	if (finish_exchange(&e, nullptr, &none) == exchange_done)
		return true;
	log_line("[D] USB_WRITE FAILED! (%s)\r\n",
		usb_error(__FILE_NAME__, __LINE__, usb_last_result));
	return false;
}

bool read_midi_usb(_usbdev *usb, u8 *data, int maxlen, int *_received, int deadline_ms)
{
	bulk_exchange e;
	e.deadline_ms = deadline_ms;
	// Less patience now is more later.
	e.owed_ms = 2 * framed_deadline_ms - std::min(deadline_ms, framed_deadline_ms);
	std::size_t received = 0;
	begin_exchange(&e, usb, {}, static_cast<std::size_t>(std::max(maxlen, 0)));
	const bool done = finish_exchange(&e, data, &received) == exchange_done;
	*_received = static_cast<int>(received);
	if (!done)
		log_line("[D] USB_READ FAILED! (%s)\r\n",
			usb_error(__FILE_NAME__, __LINE__, usb_last_result));
	return done;
}

bool send_usb_bytes(_usbdev *usb, std::span<const u8> bytes)
{
	std::size_t none = 0;
	return ask_usb_bytes(usb, bytes, {}, &none) == exchange_done;
}

// Where the bytes of one answer go.
struct landing_place {
	std::span<u8> room;
	std::size_t received = 0, lost = 0;

	// True when these bytes of a packet end the answer.
	bool take(std::span<const u8> bytes, std::size_t packet)
	{
		const std::size_t fits = std::min(bytes.size(), room.size() - received);
		std::copy_n(
			bytes.begin(), fits, room.begin() + static_cast<std::ptrdiff_t>(received));
		received += fits;
		lost += bytes.size() - fits;
		return bytes.size() < packet || bytes.back() == usb_end_byte;
	}
};

exchange_outcome ask_usb_bytes(
	_usbdev *usb, std::span<const u8> bytes, std::span<u8> room, std::size_t *received)
{
	const std::size_t packet = packet_of(usb);
	const double until = host.clock->counter() + framed_deadline_ms / 1000.0;
	landing_place landing = { room };
	std::vector<u8> one(packet);
	bulk_exchange e;
	e.deadline_ms = framed_deadline_ms;
	usb->kept_from = usb->kept_to = 0;
	*received = 0;
	begin_exchange(&e, usb, { bytes }, room.empty() ? 0 : packet);
	for (;;) {
		std::size_t came = 0;
		const exchange_outcome outcome = finish_exchange(&e, one.data(), &came);
		if (outcome != exchange_done)
			return outcome;
		if (room.empty() || landing.take(std::span(one).first(came), packet))
			break;
		if (landing.lost > max_continued_packets * packet) {
			abandon_exchange(&e);
			break;
		}
		e.deadline_ms =
			std::max(1, static_cast<int>((until - host.clock->counter()) * 1000));
		begin_exchange(&e, usb, {}, packet);
	}
	*received = landing.received;
	if (landing.lost)
		log_line("[W] An answer is longer than %d Bytes, its end is lost\r\n",
			static_cast<int>(room.size()));
	return exchange_done;
}

static bool has_marker(const std::vector<u8> &answer, const usb_query &query)
{
	const u8 byte = bounded_bytes{ answer }[query.marker];
	return byte && std::strchr(query.more, byte);
}

exchange_outcome read_usb_answer(_usbdev *usb, std::span<const u8> bytes, std::vector<u8> *answer)
{
	std::size_t received = 0;
	answer->resize(query_answer_size);
	const exchange_outcome outcome = ask_usb_bytes(usb, bytes, *answer, &received);
	answer->resize(received);
	return outcome;
}

bool read_usb_on(_usbdev *usb, const usb_query &query, std::vector<u8> *answer)
{
	for (int packets = 1; packets < max_continued_packets; packets++) {
		// A Z4 may leave the end byte of an earlier answer in front of this one.
		const bool stray = answer->size() == 1 && answer->front() == usb_end_byte;
		if (!stray && !has_marker(*answer, query))
			return true;
		if (read_usb_answer(usb, {}, answer) != exchange_done)
			return false;
	}
	log_line("[W] USB device does not end its answer\r\n");
	usb_unsettled(usb);
	return true;
}

bool ask_usb_query(_usbdev *usb, const usb_query &query, std::vector<u8> *answer)
{
	const exchange_outcome outcome = read_usb_answer(usb, query.bytes, answer);
	if (outcome == exchange_done && read_usb_on(usb, query, answer))
		return true;
	log_line("[D] USB_%s FAILED! (%s)\r\n", outcome == exchange_write_failed ? "WRITE" : "READ",
		usb_error(__FILE_NAME__, __LINE__, usb_last_result));
	return false;
}

static bool fits_a_frame(int size)
{
	return size >= 0 && size + 8 <= 0xFFFF;
}

static bool exchange_ends(const char *file, int line, exchange_outcome outcome)
{
	if (outcome == exchange_done)
		return true;
	add_log_format(file, line, "[D] USB_%s FAILED! (%s)\r\n",
		outcome == exchange_write_failed ? "WRITE" : "READ",
		usb_error(file, line, usb_last_result));
	return false;
}

bool _sysex_midi_usb(_usbdev *usb, const u8 *command, int size, u8 *response, int maxsize,
	int *_received, const char *file, int line)
{
	*_received = 0;
	if (usb->device_handle == no_usb_handle || !fits_a_frame(size)) {
		usb_last_result = usb_no_device;
		return exchange_ends(file, line, exchange_write_failed);
	}
	// The request before this one, on the device that is still open.
	if (unread_devices.contains(usb->device_path) && read_pipe_empty(usb))
		usb_settled(usb);
	const usb_family &family = family_of(*usb);
	const std::vector<u8> frame =
		family.frame(usb->sysex_channel, { command, static_cast<std::size_t>(size) });
	const std::span<u8> room(response, static_cast<std::size_t>(std::max(maxsize, 0)));
	std::size_t received = 0;
	exchange_outcome outcome = ask_usb_bytes(usb, frame, room, &received);
	for (int strays = 0; strays < max_continued_packets; strays++) {
		if (outcome != exchange_done || !family.stray_ends || received != 1 ||
			response[0] != usb_end_byte)
			break;
		outcome = ask_usb_bytes(usb, {}, room, &received);
	}
	if (outcome == exchange_done)
		*_received = static_cast<int>(received);
	return exchange_ends(file, line, outcome);
}

} // namespace velmor
