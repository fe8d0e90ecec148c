// usbqx_pipe.cpp - bytes over the two bulk pipes of a sampler: frames, answers, raw blocks
//
//   S5000 request   10 ll ll F0 47 5E cc 00 00 command ss F7   ll: bytes from F0 on, low first
//                                                              cc: channel with 0x20 set
//                                                              ss: sum of the command, 7 bits
//   Z4 request      10 ll ll F0 47 5F cc command F7
//   answer          as it comes; the drivers know where their data stands
//
// A read asks for whole packets, since a device may put more into one packet than was asked
// for, and a host that has no room for a packet loses it. What is left over is kept for the
// next raw read.
//
// Knows nothing of: what a command means, how devices are found.

#include "src/akais5000.h"
#include "src/usbqx.h"
#include "src/velmor_outcome.h"
#include <algorithm>
#include <cstring>

namespace velmor
{

int usb_last_result = usb_ok;

static constexpr int wait_slice_ms = 100;
static constexpr u8 in_pipe_bit = 0x80;
static constexpr u8 end_byte = 0xF7;

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

// Let interface events run until the transfer has ended.
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
		if (!cancelled && e->may_stop && progress_stopped()) {
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

static void begin_read(bulk_exchange *e)
{
	_usbdev *usb = e->usb;
	const std::size_t kept = usb->kept_to - usb->kept_from;
	e->in = {};
	if (kept >= e->wanted)
		return;
	const std::size_t packet = static_cast<std::size_t>(std::max(usb->packet_size, 1));
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

void abandon_exchange(bulk_exchange *e)
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

// The line is that of the loaded sampler; other devices on the bus are no part of it.
static bool is_loaded(const _usbdev *usb)
{
	return current_sampler && *current_sampler->sampler_usbname &&
	       !std::strcmp(usb->usb_name, current_sampler->sampler_usbname);
}

static exchange_outcome failed_exchange(bulk_exchange *e, exchange_outcome outcome)
{
	abandon_exchange(e);
	if (e->may_stop && progress_stopped())
		return exchange_stopped;
	if (is_loaded(e->usb))
		line_silent(host.usb->error_text(usb_last_result));
	return outcome;
}

exchange_outcome finish_exchange(bulk_exchange *e, u8 *answer, std::size_t *received)
{
	*received = 0;
	for (int run = 0; run < e->runs; run++)
		if (!finish_write(e, run))
			return failed_exchange(e, exchange_write_failed);
	if (!e->wanted)
		return exchange_done;
	_usbdev *usb = e->usb;
	if (finish_transfer(e, &e->in) != usb_ok)
		return failed_exchange(e, exchange_read_failed);
	usb->kept_to = std::min(usb->kept_to + e->in.moved, usb->landing.size());
	*received = std::min(usb->kept_to - usb->kept_from, e->wanted);
	std::memcpy(answer, usb->landing.data() + usb->kept_from, *received);
	usb->kept_from += *received;
	if (is_loaded(usb))
		line_answered();
	return exchange_done;
}

bool write_midi_usb(_usbdev *usb, const u8 *data, int len)
{
	if (len <= 0)
		return true;
	bulk_exchange e;
	std::size_t none = 0;
	begin_exchange(&e, usb, { { data, static_cast<std::size_t>(len) } }, 0);
	if (finish_exchange(&e, nullptr, &none) == exchange_done)
		return true;
	log_line("[D] USB_WRITE FAILED! (%s)\r\n",
		usb_error(__FILE_NAME__, __LINE__, usb_last_result));
	return false;
}

bool read_midi_usb(_usbdev *usb, u8 *data, int maxlen, int *_received)
{
	bulk_exchange e;
	std::size_t received = 0;
	begin_exchange(&e, usb, {}, static_cast<std::size_t>(std::max(maxlen, 0)));
	const bool done = finish_exchange(&e, data, &received) == exchange_done;
	*_received = static_cast<int>(received);
	if (!done)
		log_line("[D] USB_READ FAILED! (%s)\r\n",
			usb_error(__FILE_NAME__, __LINE__, usb_last_result));
	return done;
}

static bool is_z_family(const _usbdev *usb)
{
	return usb->device_type == model_z4 || usb->device_type == model_mpc4000;
}

static void put_length(std::vector<u8> *frame)
{
	const std::size_t length = frame->size() - 3;
	(*frame)[1] = static_cast<u8>(length);
	(*frame)[2] = static_cast<u8>(length >> 8);
}

static std::vector<u8> z4_frame(const _usbdev *usb, std::span<const u8> command)
{
	std::vector<u8> frame = { 0x10, 0x00, 0x00, 0xF0, 0x47, 0x5F, usb->sysex_channel };
	frame.insert(frame.end(), command.begin(), command.end());
	frame.push_back(end_byte);
	put_length(&frame);
	return frame;
}

static std::vector<u8> s5000_frame(const _usbdev *usb, std::span<const u8> command)
{
	const u8 channel = usb->sysex_channel | 0x20;
	std::vector<u8> frame = { 0x10, 0x00, 0x00, 0xF0, 0x47, 0x5E, channel, 0x00, 0x00 };
	frame.insert(frame.end(), command.begin(), command.end());
	frame.push_back(
		akai_s5000_calc_checksum(frame.data() + 3, static_cast<int>(frame.size()) - 3));
	frame.push_back(end_byte);
	put_length(&frame);
	return frame;
}

// An answer that filled its buffer without an end byte goes on. The rest is read and
// dropped, or the next request would take it for its answer.
static void drop_rest_of_answer(_usbdev *usb, std::span<const u8> answer, int maxsize)
{
	std::array<u8, 4096> rest;
	std::span<const u8> last = answer;
	std::size_t capacity = static_cast<std::size_t>(maxsize);
	for (int packets = 0; packets < max_continued_packets; packets++) {
		if (last.size() < capacity || last.empty() || last.back() == end_byte)
			return;
		if (packets == 0)
			log_line("[W] An answer is longer than %d Bytes, its end is lost\r\n",
				maxsize);
		bulk_exchange e;
		e.deadline_ms = framed_deadline_ms;
		e.may_stop = false;
		std::size_t received = 0;
		capacity = rest.size();
		begin_exchange(&e, usb, {}, capacity);
		if (finish_exchange(&e, rest.data(), &received) != exchange_done)
			return;
		last = { rest.data(), received };
	}
}

static bool fits_a_frame(int size)
{
	return size >= 0 && size + 8 <= 0xFFFF;
}

bool _sysex_midi_usb(_usbdev *usb, const u8 *command, int size, u8 *response, int maxsize,
	int *_received, const char *file, int line)
{
	*_received = 0;
	if (usb->device_handle == no_usb_handle || !fits_a_frame(size)) {
		usb_last_result = usb_no_device;
		add_log_format(file, line, "[D] USB_WRITE FAILED! (%s)\r\n",
			usb_error(file, line, usb_last_result));
		return false;
	}
	const std::span<const u8> payload(command, static_cast<std::size_t>(size));
	const std::vector<u8> frame =
		is_z_family(usb) ? z4_frame(usb, payload) : s5000_frame(usb, payload);
	usb->kept_from = usb->kept_to = 0;
	const std::size_t wanted = static_cast<std::size_t>(std::max(maxsize, 0));
	bulk_exchange e;
	e.deadline_ms = framed_deadline_ms;
	e.may_stop = false;
	begin_exchange(&e, usb, { frame }, wanted);
	exchange_outcome outcome;
	std::size_t received = 0;
	for (int strays = 0;; strays++) {
		outcome = finish_exchange(&e, response, &received);
		// A Z4 may leave the end byte of an earlier answer in front of this one.
		const bool stray = is_z_family(usb) && received == 1 && response[0] == end_byte;
		if (outcome != exchange_done || !stray || strays == max_continued_packets)
			break;
		begin_exchange(&e, usb, {}, wanted);
	}
	if (outcome != exchange_done) {
		const char *what = outcome == exchange_write_failed ? "WRITE" : "READ";
		add_log_format(file, line, "[D] USB_%s FAILED! (%s)\r\n", what,
			usb_error(file, line, usb_last_result));
		return false;
	}
	*_received = static_cast<int>(received);
	if (wanted)
		drop_rest_of_answer(usb, { response, received }, maxsize);
	return true;
}

} // namespace velmor
