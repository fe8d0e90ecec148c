// velmor_sysex.cpp - a message to the sampler and its answer, over MIDI
//
// MIDI 1.0: 31250 baud, ten bits a byte, so a byte takes 320 microseconds; a
// System Exclusive message runs from 0xF0 to 0xF7. Nothing else of a message
// is looked at here.
//
// For each exchange the input is opened, one block armed, the message sent, and
// the block watched until enough end bytes are in it. No input is open between
// exchanges, so that the monitor can have the port and no traffic piles up. The
// output stays open.
//
// Deadlines count whole seconds: "two seconds" is between two and three. Nothing
// is ever repeated here; retries belong to the drivers.
//
// Knows nothing of: models, the content of messages.

#include "src/controls.h"
#include "src/rmidi.h"
#include "src/velmor_midi.h"
#include "src/velmor_pace.h"
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace velmor
{

std::vector<std::string> midi_out_interface, midi_in_interface;
int midi_out_interfaces = 0, midi_in_interfaces = 0;
int selected_midi_in_interface = -1, selected_midi_out_interface = -1;
int selected_midi_in_mon_interface = -1;
int the_outHandle = -1;

static constexpr double byte_seconds = 10 / 31250.0;
static constexpr int pump_ms = 100; // longest wait for the interface
static constexpr u8 start_byte = 0xF0;
static constexpr u8 end_byte = 0xF7;
static constexpr u8 first_real_time = 0xF8;

// ---- The output -----------------------------------------------------------------------

static int opened_interface = -1; // the choice that the_outHandle was opened for
static bool exchange_running = false;

static std::string failure; // what the port said of the exchange under way

// One exchange at a time: waiting runs interface events, and a command among them must not
// start a second exchange inside the first.
struct exchange_guard {
	exchange_guard()
	{
		exchange_running = true;
		failure.clear();
	}
	~exchange_guard() { exchange_running = false; }
	exchange_guard(const exchange_guard &) = delete;
};

// Show what the port says, and keep it for the end of the exchange.
static void port_failed(const char *words, call_site at = call_site::current())
{
	failure = words;
	display_error_text(__FILE_NAME__, at.line(), failure.c_str());
}

static void port_failed(int code, call_site at = call_site::current())
{
	port_failed(tr(host.midi->error_text(code)), at);
}

// Every exchange that wanted an answer ends here, over MIDI as over the bridge. Whether the S900
// answered enough is for its driver to say: the head of its dump has no end byte.
static void report_exchange(const u8 *answer, int length, bool ends = true)
{
	if (!failure.empty())
		line_silent(failure.c_str());
	else if (length < 1)
		line_silent(tr("No answer came."));
	else if (ends && answer[length - 1] != end_byte)
		line_silent(tr("The answer broke off."));
	else
		line_answered();
}

static void forget_output()
{
	if (the_outHandle >= 0)
		host.midi->close_output(the_outHandle);
	the_outHandle = -1;
}

void close_midi_output()
{
	// A message on its way is not cut off; a new choice is noticed by the next send.
	if (!exchange_running)
		forget_output();
}

int open_midi_output()
{
	if (the_outHandle >= 0 && opened_interface != selected_midi_out_interface)
		forget_output();
	if (the_outHandle >= 0)
		return 0;
	const int code = host.midi->open_output(selected_midi_out_interface, &the_outHandle);
	if (code)
		the_outHandle = -1;
	else
		opened_interface = selected_midi_out_interface;
	return code;
}

static bool open_output()
{
	const int code = open_midi_output();
	if (code)
		port_failed(code);
	return code == 0;
}

// Run the interface until the bytes have left, a tenth of a second at most. The port wakes it;
// a port that forgets to is asked when the bytes should be out, and every 10 ms from then on.
static void let_bytes_leave(int handle, long count)
{
	const double end = host.clock->counter() + pump_ms / 1000.0;
	double rest = end - host.clock->counter();
	while (count > 0 && rest > 0) {
		const double seconds = std::min(std::max(count * byte_seconds, 0.01), rest);
		host.ui->pump(static_cast<int>(std::ceil(seconds * 1000)));
		count = host.midi->leaving(handle);
		rest = end - host.clock->counter();
	}
}

// Wait until all bytes have left. A port that does not move them in the time that the wire
// needs and two seconds more has failed.
static bool wait_until_left(int handle, int count)
{
	const double bytes = std::max<double>(count, host.midi->leaving(handle));
	const double deadline = host.clock->counter() + bytes * byte_seconds + 2;
	for (;;) {
		const long left = host.midi->leaving(handle);
		if (left == 0)
			return true;
		if (left < 0) {
			port_failed(static_cast<int>(-left));
			return false;
		}
		if (host.clock->counter() >= deadline) {
			port_failed(tr("The MIDI output does not send. Is the interface still "
				       "connected?"));
			return false;
		}
		log_line("[D] Still waiting for sending of midi-buffer\r\n");
		let_bytes_leave(handle, left);
	}
}

// Send on the shared output. A port that failed is closed, so that the next send opens
// whatever is there then.
static bool send_whole(const u8 *bytes, int count)
{
	const int code =
		write_output(the_outHandle, bytes, static_cast<std::size_t>(std::max(count, 0)));
	if (code)
		port_failed(code);
	if (code || !wait_until_left(the_outHandle, count)) {
		forget_output();
		return false;
	}
	return true;
}

static void log_message(const u8 *output, int output_len)
{
	if (output_len < 32)
		log_line("[D] MIDI-OUT: %d Bytes (%s)\r\n", output_len,
			hex_text({ output, static_cast<std::size_t>(output_len) }).c_str());
}

// ---- The input ------------------------------------------------------------------------

struct give_back {
	void operator()(void *memory) const { std::free(memory); }
};

// Room beyond the answer for what else comes on the cable.
static constexpr int spare_room = 1024;

// An open input with the block that it fills. Closed at the end of its scope, whichever way
// an exchange ends.
//
// The port hands over every byte. An answer is made of System Exclusive alone: MIDI 1.0 lets
// real-time bytes (0xF8 up, such as active sensing) stand anywhere, also inside a message, and
// a keyboard that is merged in may play meanwhile; none of that belongs to the answer.
struct armed_input {
	std::unique_ptr<u8, give_back> block;
	std::vector<u8> answer; // the exclusive bytes of the block, at most capacity
	int capacity = 0;
	int handle = -1;

	armed_input() = default;
	armed_input(const armed_input &) = delete;
	~armed_input()
	{
		disarm();
		if (handle >= 0)
			host.midi->close_input(handle);
	}
	void disarm()
	{
		if (armed)
			host.midi->disarm(handle);
		armed = false;
	}
	// Sort what has come since the last call.
	void sort()
	{
		const int count = std::min(
			static_cast<int>(host.midi->received(handle)), capacity + spare_room);
		for (; sorted < count; sorted++) {
			const u8 byte = block.get()[sorted];
			if (byte >= first_real_time)
				continue;
			inside = inside || byte == start_byte;
			if (inside && static_cast<int>(answer.size()) < capacity)
				answer.push_back(byte);
			inside = inside && byte != end_byte;
		}
	}
	// Nothing more can come.
	bool full() const
	{
		return static_cast<int>(answer.size()) == capacity ||
		       sorted == capacity + spare_room;
	}

	bool armed = false;

private:
	int sorted = 0;      // bytes of the block that were looked at
	bool inside = false; // the last of them belongs to a message
};

static void allocate_block(armed_input *in, int capacity)
{
	in->capacity = capacity;
	in->block.reset(
		static_cast<u8 *>(std::calloc(1, static_cast<std::size_t>(capacity) + spare_room)));
	if (in->block)
		return;
	show_box("FATAL", "Out of memory at %s:%d", __FILE_NAME__, __LINE__);
	end_program(0);
}

// Open the chosen input and receive from now on.
static bool open_input(armed_input *in)
{
	int code = host.midi->open_input(selected_midi_in_interface, &in->handle);
	if (code)
		in->handle = -1;
	else
		code = host.midi->arm(in->handle, in->block.get(),
			static_cast<std::size_t>(in->capacity) + spare_room);
	if (code)
		port_failed(code);
	else
		in->armed = true;
	return code == 0;
}

// What the ways to wait for an answer differ in.
struct answer_rules {
	int seconds;         // counted in whole ones
	bool log_incomplete; // say what is there of an answer that is not complete
	bool ends_when_full; // a full block ends the wait
	bool partial_counts; // what came before the deadline is an answer
};

static constexpr answer_rules general_rules = { 2, true, true, true };
static constexpr answer_rules s900_rules = { 3, false, true, true };

static double whole_seconds()
{
	return std::floor(host.clock->counter());
}

// Run the interface once, not beyond the moment when the seconds counted pass deadline.
static void pump_before(double deadline)
{
	const double rest = std::max(deadline + 1 - host.clock->counter(), 0.0);
	host.ui->pump(static_cast<int>(std::ceil(std::min(rest * 1000, 1.0 * pump_ms))));
}

static void log_incomplete(const armed_input &in)
{
	const std::size_t count = in.answer.size();
	log_line("[D] Exclusive Data so far received!(%d/%d Bytes) NO F7 FLAGS: 0x%08X[%s%s]\r\n",
		static_cast<int>(count), in.capacity, 0u,
		hex_text(std::span(in.answer).first(std::min<std::size_t>(count, 32))).c_str(),
		count > 32 ? "..." : "");
}

// Wait for msg_count end bytes. Gives the length up to the last of them or of a full block,
// 0 when the deadline passed, -1 when the port failed.
//
// The count goes on from pass to pass although each pass scans from the start: an end byte
// that a pass has counted counts again in the next. A wait for two messages can therefore end
// at the first, when it arrived alone.
static int await_end_bytes(armed_input &in, int msg_count, const answer_rules &rules)
{
	const double deadline = whole_seconds() + rules.seconds;
	double next_log = host.clock->counter();
	for (;;) {
		pump_before(deadline);
		if (whole_seconds() > deadline)
			return 0;
		const int code = host.midi->input_error(in.handle);
		if (code) {
			port_failed(code);
			return -1;
		}
		in.sort();
		const int count = static_cast<int>(in.answer.size());
		for (int i = 0; i < count; i++)
			if (in.answer[i] == end_byte && --msg_count == 0)
				return i + 1;
		// Bytes wake the wait one by one; ten lines a second tell enough.
		if (rules.log_incomplete && count && host.clock->counter() >= next_log) {
			log_incomplete(in);
			next_log = host.clock->counter() + pump_ms / 1000.0;
		}
		if (rules.ends_when_full && in.full())
			return count;
	}
}

// Wait for the answer and hand it over. A failed port leaves the length as it was, and the
// answer clear.
static void receive_answer(
	armed_input *in, u8 *input, int *_input_len, int msg_count, const answer_rules &rules)
{
	const int capacity = *_input_len;
	*_input_len = 0;
	const int length = await_end_bytes(*in, msg_count, rules);
	if (length < 0) {
		*_input_len = capacity;
		return;
	}
	in->sort();
	in->disarm();
	std::ranges::copy(in->answer, input);
	const int count = static_cast<int>(in->answer.size());
	*_input_len = length == 0 && rules.partial_counts ? count : length;
}

// ---- Exchanges ------------------------------------------------------------------------

// Clear the answer. false when the line is in use: the new exchange gets no answer.
static bool begin_exchange(u8 *input, int *_input_len, int msg_count)
{
	*_input_len = std::max(*_input_len, 0);
	if (*_input_len)
		std::memset(input, 0, static_cast<std::size_t>(*_input_len));
	const std::string taken = use_tcp ? "" : why_output_is_taken();
	if (!exchange_running && taken.empty())
		return true;
	log_line("[W] MIDI exchange refused: %s\r\n",
		exchange_running ? "another one is under way" : taken.c_str());
	if (!taken.empty())
		line_silent(taken.c_str());
	if (msg_count > 0)
		*_input_len = 0;
	return false;
}

// The bridge knows no count of messages: an answer ends at its first end byte.
static void exchange_over_tcp(const u8 *output, int output_len, u8 *input, int *_input_len)
{
	const int capacity = *_input_len;
	const bool sent = send_tcp({ output, static_cast<std::size_t>(std::max(output_len, 0)) });
	if (sent && capacity) {
		*_input_len = 0;
		*_input_len = receive_tcp(input, capacity);
	}
	failure = why_tcp_failed();
	if (!sent && failure.empty())
		failure = tr("The TCP bridge is busy with another message.");
}

static void exchange_over_midi(
	const u8 *output, int output_len, u8 *input, int *_input_len, int msg_count)
{
	armed_input in;
	allocate_block(&in, *_input_len);
	if (!open_output() || (msg_count > 0 && !open_input(&in)))
		return;
	log_message(output, output_len);
	if (!send_whole(output, output_len))
		return;
	log_line("[D] Midi-Data sent successfully\r\n");
	if (msg_count > 0)
		receive_answer(&in, input, _input_len, msg_count, general_rules);
}

// The S900's output is opened for the one message and freed before the answer is complete.
struct freed_port {
	int port = -1;
	freed_port() = default;
	freed_port(const freed_port &) = delete;
	~freed_port()
	{
		if (port >= 0)
			g_MidiOutPortFreeFunc(port);
	}
};

static bool send_through_port(const freed_port &out, const u8 *output, int output_len)
{
	const int code = g_MidiOutPortSendFunc(out.port, output, output_len);
	if (code) {
		port_failed(code);
		return false;
	}
	if (!wait_until_left(out.port, output_len))
		return false;
	log_line("[D] Midi-Data sent successfully [%s] %d Bytes...\r\n",
		hex_text({ output, static_cast<std::size_t>(output_len) }).c_str(), output_len);
	return true;
}

static void exchange_over_own_port(
	const u8 *output, int output_len, u8 *input, int *_input_len, int msg_count)
{
	armed_input in;
	allocate_block(&in, *_input_len);
	forget_output(); // a port can be open once only
	freed_port out;
	if (g_MidiOutPortOpenFunc(selected_midi_out_interface, &out.port) != 0) {
		out.port = -1;
		show_box("FATAL", "Failed to open Midi-Out Device");
		end_program(0);
		return;
	}
	if (msg_count > 0 && !open_input(&in))
		return;
	log_message(output, output_len);
	if (send_through_port(out, output, output_len) && msg_count > 0)
		receive_answer(&in, input, _input_len, msg_count, s900_rules);
}

using exchange_form = void (*)(
	const u8 *output, int output_len, u8 *input, int *_input_len, int msg_count);

static void exchange(exchange_form over_midi, const u8 *output, int output_len, u8 *input,
	int *_input_len, int msg_count)
{
	if (!begin_exchange(input, _input_len, msg_count))
		return;
	const exchange_guard running;
	const bool answered = use_tcp ? *_input_len > 0 : msg_count > 0;
	if (use_tcp)
		exchange_over_tcp(output, output_len, input, _input_len);
	else
		over_midi(output, output_len, input, _input_len, msg_count);
	if (answered)
		report_exchange(input, *_input_len, over_midi == exchange_over_midi);
}

void send_midi_string_ex(
	const u8 *output, int output_len, u8 *input, int *_input_len, int msg_count)
{
	exchange(exchange_over_midi, output, output_len, input, _input_len, msg_count);
}

void send_midi_string_ex_s900(
	const u8 *output, int output_len, u8 *input, int *_input_len, int msg_count)
{
	exchange(exchange_over_own_port, output, output_len, input, _input_len, msg_count);
}

// A wait lasts at least until the second after the next has begun, even if the message came
// at once: a sampler that has said it is ready gets that time before more is sent.
static void rest_after_wait(double began)
{
	while (whole_seconds() <= began + 1)
		pump_before(began + 1);
}

void wait_midi_string_ex(u8 *input, int *_input_len, int msg_count, int timeout)
{
	if (!begin_exchange(input, _input_len, 1))
		return;
	const exchange_guard running;
	armed_input in;
	allocate_block(&in, *_input_len);
	const double began = whole_seconds();
	const bool open = open_input(&in);
	if (open)
		receive_answer(&in, input, _input_len, msg_count,
			{ .seconds = timeout,
				.log_incomplete = false,
				.ends_when_full = false,
				.partial_counts = false });
	report_exchange(input, *_input_len);
	if (open)
		rest_after_wait(began);
}

void send_midi_string(const u8 *midi_data, int len)
{
	const std::size_t shown = static_cast<std::size_t>(std::clamp(len, 0, 16));
	log_line("[D] Sending %d Bytes of Midi-Data() [%s%s] using Device: %d\r\n", len,
		hex_text({ midi_data, shown }).c_str(), len > 16 ? "..." : "",
		selected_midi_out_interface);
	if (use_tcp)
		send_tcp({ midi_data, static_cast<std::size_t>(std::max(len, 0)) });
	else if (open_output())
		send_whole(midi_data, len);
}

// ---- Device lists -----------------------------------------------------------------------

static void read_devices(int count, const char *(*name)(int), std::vector<std::string> *list)
{
	list->clear();
	for (int i = 0; i < std::min(count, max_midi_devices); i++)
		list->push_back(name(i));
}

void reload_midi_setup(bool verbose)
{
	read_devices(host.midi->outputs(), host.midi->output_name, &midi_out_interface);
	midi_out_interfaces = static_cast<int>(midi_out_interface.size());
	read_devices(host.midi->inputs(), host.midi->input_name, &midi_in_interface);
	midi_in_interfaces = static_cast<int>(midi_in_interface.size());
	if (!verbose)
		return;
	// Maker, product and version are numbers that this host's ports do not have.
	for (int i = 0; i < midi_out_interfaces; i++)
		log_line("[D] MIDI-OUT[%d] --> NAME: [%s](%d,%d) Version: %d\r\n", i,
			midi_out_interface[i].c_str(), 0, 0, 0);
	for (int i = 0; i < midi_in_interfaces; i++)
		log_line("[D] MIDI-IN[%d] --> NAME: [%s](%d,%d) Version: %d\r\n", i,
			midi_in_interface[i].c_str(), 0, 0, 0);
	if (!host.ui->exists(window_settings, settings_found)) {
		log_line("SetDLGItemText failed");
		return;
	}
	host.ui->set_text(window_settings, settings_found,
		format_text("MIDI-OUT found: %d, MIDI-IN found: %d", midi_out_interfaces,
			midi_in_interfaces)
			.c_str());
}

} // namespace velmor
