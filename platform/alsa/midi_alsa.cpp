// midi_alsa.cpp - MIDI ports of ALSA: raw MIDI first, sequencer ports behind
//
// A sampler's System Exclusive goes through raw ports: the sequencer moves events
// through pools and drops what does not fit. Sequencer ports are listed for soft
// synths and for the kernel's own loop.
//
// Codes are errno values and those of ports.h.

#include "platform/alsa/ports.h"
#include "platform/midi.h"
#include "platform/words.h"
#include <algorithm>
#include <alsa/asoundlib.h>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <sys/eventfd.h>
#include <unistd.h>

namespace velmor
{

static std::atomic<void (*)()> wake = nullptr;
// As last listed. Main thread only, like the open ports.
static std::vector<alsa_port> output_list, input_list;
static std::map<int, std::shared_ptr<output_port>> open_outputs;
// A port can be opened once only, so those who receive from it share it.
struct open_input {
	std::string name; // device or address of the port
	std::shared_ptr<input_port> port;
	std::unique_ptr<receiver> to;
};
static std::map<int, open_input> open_inputs;
static int last_handle = 0;

// ---- Common to the ports ----------------------------------------------------------------

void wake_the_system()
{
	if (void (*call)() = wake)
		call();
}

bell::bell() : fd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

bell::~bell()
{
	close(fd);
}

void bell::ring()
{
	(void)eventfd_write(fd, 1);
}

void bell::silence()
{
	eventfd_t count;
	(void)eventfd_read(fd, &count);
}

static constexpr unsigned char start_of_exclusive = 0xF0, first_real_time = 0xF8;

void outgoing::add(const unsigned char *bytes, std::size_t count)
{
	waiting.insert(waiting.end(), bytes, bytes + count);
	for (std::size_t i = 0; i < count; i++)
		if (bytes[i] >= 0x80 && bytes[i] < first_real_time)
			in_exclusive = bytes[i] == start_of_exclusive;
	if (in_exclusive || held.empty())
		return;
	waiting.insert(waiting.end(), held.begin(), held.end());
	held.clear();
}

// More than a few hundred notes in one message are no music any more, nor is a minute of them that
// an output has not sent.
void outgoing::pass_on(const unsigned char *message, std::size_t count)
{
	static constexpr std::size_t most_held = 4096, most_behind = 1 << 18;
	const bool must_wait = in_exclusive && message[0] < first_real_time;
	std::vector<unsigned char> &queue = must_wait ? held : waiting;
	if (queue.size() + count <= (must_wait ? most_held : most_behind))
		queue.insert(queue.end(), message, message + count);
}

void passing_on::take(const unsigned char *bytes, std::size_t count)
{
	if (!to)
		return;
	bool any = false;
	{
		const std::lock_guard hold(to->out.lock);
		for (std::size_t i = 0; i < count; i++) {
			unsigned char message[3];
			const int length = judge(&sorter, bytes[i], message);
			if (length > 0 && !to->out.failed) {
				to->out.pass_on(message, static_cast<std::size_t>(length));
				any = true;
			}
		}
	}
	if (any)
		to->changed.ring();
}

void receiver::take(const unsigned char *bytes, std::size_t count)
{
	if (!active())
		return;
	thru.take(bytes, count);
	const std::size_t room = capacity - (listening ? kept.size() : filled);
	const std::size_t fits = count < room ? count : room;
	if (listening) {
		kept.insert(kept.end(), bytes, bytes + fits);
		if (fits < count && !error)
			error = input_overrun;
	} else {
		std::memcpy(buffer + filled, bytes, fits);
		filled += fits;
	}
}

void incoming::take(const unsigned char *bytes, std::size_t count)
{
	for (receiver *r : receivers)
		r->take(bytes, count);
}

// A port that has vanished stays so; an overrun concerns those who receive now.
void incoming::fail(int code)
{
	if (code != input_overrun && !gone)
		gone = code;
	for (receiver *r : receivers)
		if (!r->error)
			r->error = code;
}

// ---- Lists ------------------------------------------------------------------------------

// Two interfaces of one kind have one name; the second gets a number.
static void number_equal_names(std::vector<alsa_port> *ports)
{
	std::map<std::string, int> seen;
	for (alsa_port &port : *ports)
		if (const int times = ++seen[port.name]; times > 1)
			port.name += " (" + std::to_string(times) + ")";
}

static void say_nothing(const char *, int, const char *, int, const char *, ...) {}

static std::vector<alsa_port> list_ports(bool outputs)
{
	// A machine without sound is no error, so the library is not to complain about it.
	static const int silent = snd_lib_error_set_handler(say_nothing);
	(void)silent;
	std::vector<alsa_port> raw, soft;
	list_raw_ports(outputs, &raw);
	list_sequencer_ports(outputs, raw, &soft);
	raw.insert(raw.end(), soft.begin(), soft.end());
	number_equal_names(&raw);
	return raw;
}

static const char *name_in(const std::vector<alsa_port> &ports, int index)
{
	static char name[256];
	const bool there = index >= 0 && static_cast<std::size_t>(index) < ports.size();
	std::snprintf(name, sizeof name, "%s", there ? ports[index].name.c_str() : "");
	return name;
}

static int count_outputs()
{
	output_list = list_ports(true);
	return static_cast<int>(output_list.size());
}

static int count_inputs()
{
	input_list = list_ports(false);
	return static_cast<int>(input_list.size());
}

// ---- Outputs ----------------------------------------------------------------------------

static int open_output(int index, int *handle)
{
	if (output_list.empty())
		count_outputs();
	const std::size_t place = index == -1 ? 0 : static_cast<std::size_t>(index);
	if (index < -1 || place >= output_list.size())
		return port_not_listed;
	const alsa_port &port = output_list[place];
	std::unique_ptr<output_port> opened;
	const int code = port.device.empty() ? open_sequencer_output(port, &opened)
					     : open_raw_output(port, &opened);
	if (code)
		return code;
	*handle = ++last_handle;
	open_outputs[*handle] = std::shared_ptr<output_port>(std::move(opened));
	return 0;
}

static int write_output(int handle, const unsigned char *bytes, std::size_t count)
{
	const auto found = open_outputs.find(handle);
	if (found == open_outputs.end())
		return EBADF;
	output_port &port = *found->second;
	{
		const std::lock_guard hold(port.out.lock);
		if (port.out.failed)
			return port.out.failed;
		port.out.add(bytes, count);
	}
	port.changed.ring();
	return 0;
}

static long leaving(int handle)
{
	const auto found = open_outputs.find(handle);
	if (found == open_outputs.end())
		return -EBADF;
	output_port &port = *found->second;
	const std::lock_guard hold(port.out.lock);
	const long on_the_way = port.out.failed ? 0 : port.on_the_way(&port);
	if (port.out.failed)
		return -port.out.failed;
	return static_cast<long>(port.out.waiting.size()) + on_the_way;
}

// The last one who holds a port ends its thread, which is not for another port's thread to wait
// for.
static void end_passing_on_to(const output_port *port)
{
	for (const auto &[handle, in] : open_inputs) {
		const std::lock_guard hold(in.port->in.lock);
		if (in.to->thru.to.get() == port)
			in.to->thru = {};
	}
}

// What was written may still be going out. A short while is left for it, then the rest is
// dropped: a device that takes nothing must not hold up the program.
static void close_output(int handle)
{
	for (int waited = 0; waited < 100 && leaving(handle) > 0; waited++)
		std::this_thread::sleep_for(std::chrono::milliseconds(1));
	const auto found = open_outputs.find(handle);
	if (found == open_outputs.end())
		return;
	end_passing_on_to(found->second.get());
	open_outputs.erase(found);
}

// ---- Inputs -----------------------------------------------------------------------------

// The port as it is open already, unless it has failed since.
static std::shared_ptr<input_port> shared_port(const std::string &name)
{
	for (const auto &[handle, in] : open_inputs) {
		const std::lock_guard hold(in.port->in.lock);
		if (in.name == name && !in.port->in.gone)
			return in.port;
	}
	return nullptr;
}

static int open_input_port(int index, int *handle)
{
	if (input_list.empty())
		count_inputs();
	if (index < 0 || static_cast<std::size_t>(index) >= input_list.size())
		return port_not_listed;
	const alsa_port &port = input_list[index];
	const std::string name =
		port.device.empty() ? std::to_string(port.client) + ":" + std::to_string(port.port)
				    : port.device;
	std::shared_ptr<input_port> shared = shared_port(name);
	if (!shared) {
		std::unique_ptr<input_port> opened;
		const int code = port.device.empty() ? open_sequencer_input(port, &opened)
						     : open_raw_input(port, &opened);
		if (code)
			return code;
		shared = std::move(opened);
	}
	*handle = ++last_handle;
	open_input &in = open_inputs[*handle];
	in = { .name = name, .port = shared, .to = std::make_unique<receiver>() };
	const std::lock_guard hold(shared->in.lock);
	shared->in.receivers.push_back(in.to.get());
	return 0;
}

static open_input *input_of(int handle)
{
	const auto found = open_inputs.find(handle);
	return found == open_inputs.end() ? nullptr : &found->second;
}

// Receive from now on, in the way that the new receiver says. What came before is handed to
// the others first.
static int begin_receiving(int handle, receiver &&fresh)
{
	open_input *in = input_of(handle);
	if (!in)
		return EBADF;
	input_port *port = in->port.get();
	const std::lock_guard hold(port->in.lock);
	*in->to = {};
	port->catch_up(port);
	*in->to = std::move(fresh);
	in->to->error = port->in.gone;
	return in->to->error;
}

static int arm(int handle, unsigned char *buffer, std::size_t capacity)
{
	receiver fresh;
	fresh.buffer = buffer;
	fresh.capacity = capacity;
	return begin_receiving(handle, std::move(fresh));
}

static int listen(int handle, std::size_t room)
{
	receiver fresh;
	fresh.listening = true;
	fresh.capacity = room;
	return begin_receiving(handle, std::move(fresh));
}

static int pass_on(int handle, int output, midi_judge judge)
{
	open_input *in = input_of(handle);
	const auto to = open_outputs.find(output);
	if (!in || (output >= 0 && to == open_outputs.end()))
		return EBADF;
	const std::lock_guard hold(in->port->in.lock);
	in->to->thru = {};
	if (output >= 0)
		in->to->thru = { .to = to->second, .judge = judge };
	return 0;
}

static std::size_t received(int handle)
{
	open_input *in = input_of(handle);
	if (!in)
		return 0;
	const std::lock_guard hold(in->port->in.lock);
	return in->to->filled;
}

static std::size_t take(int handle, unsigned char *bytes, std::size_t capacity)
{
	open_input *in = input_of(handle);
	if (!in)
		return 0;
	const std::lock_guard hold(in->port->in.lock);
	std::vector<unsigned char> &kept = in->to->kept;
	const std::size_t count = std::min(capacity, kept.size());
	std::copy_n(kept.begin(), count, bytes);
	kept.erase(kept.begin(), kept.begin() + static_cast<std::ptrdiff_t>(count));
	return count;
}

static int input_error(int handle)
{
	open_input *in = input_of(handle);
	if (!in)
		return EBADF;
	const std::lock_guard hold(in->port->in.lock);
	if (!in->to->error)
		in->port->look(in->port.get());
	return in->to->error;
}

static void disarm(int handle)
{
	open_input *in = input_of(handle);
	if (!in)
		return;
	const std::lock_guard hold(in->port->in.lock);
	*in->to = {};
}

static void close_input(int handle)
{
	open_input *in = input_of(handle);
	if (!in)
		return;
	{
		const std::lock_guard hold(in->port->in.lock);
		std::erase(in->port->in.receivers, in->to.get());
	}
	open_inputs.erase(handle);
}

// ---- Words ------------------------------------------------------------------------------

struct code_words {
	int code;
	const char *words;
};

static constexpr code_words words_of[] = {
	{ input_overrun, own("MIDI bytes came faster than they could be read; some are lost") },
	{ port_not_listed, own("There is no such MIDI port. Choose one in the settings") },
	{ receiver_too_slow, own("The program at the other end does not take its MIDI data") },
	{ EBUSY, own("The MIDI port is in use by another program. Close that program and try "
		     "again") },
	{ EAGAIN, own("The MIDI port is in use by another program. Close that program and try "
		      "again") },
	{ EACCES, own("You may not open the MIDI port. Add yourself to the group \"audio\", "
		      "log out and in again") },
	{ EPERM, own("The program at the other end does not let others connect") },
	{ ENODEV, own("The MIDI port is gone. Plug the interface in again, then choose it again") },
	{ ENOENT, own("The MIDI port is gone. Plug the interface in again, then choose it again") },
	{ ENXIO, own("The MIDI port is gone. Plug the interface in again, then choose it again") },
	{ EBADF, own("The MIDI port is not open") },
};

static const char *error_text(int code)
{
	static char text[256];
	const char *words = nullptr;
	for (const code_words &row : words_of)
		if (row.code == code)
			words = row.words;
	if (!words)
		words = strerrordesc_np(code);
	std::snprintf(text, sizeof text, "%s", words ? words : "Unknown MIDI error");
	return text;
}

extern const midi_service alsa_midi;
const midi_service alsa_midi = {
	.outputs = count_outputs,
	.inputs = count_inputs,
	.output_name = [](int index) { return name_in(output_list, index); },
	.input_name = [](int index) { return name_in(input_list, index); },
	.open_output = open_output,
	.write = write_output,
	.leaving = leaving,
	.close_output = close_output,
	.open_input = open_input_port,
	.arm = arm,
	.received = received,
	.listen = listen,
	.take = take,
	.input_error = input_error,
	.pass_on = pass_on,
	.disarm = disarm,
	.close_input = close_input,
	.on_arrival = [](void (*call)()) { wake = call; },
	.error_text = error_text,
};

} // namespace velmor
