// midi_ports.cpp - MIDI ports of a host with virtual machines at the far end

#include "virtual/midi_ports.h"
#include "virtual/s1000.h"
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace velmor
{

struct port {
	std::string name;
	std::unique_ptr<midi_wire> wire;
};

// An open side of a port. An input listens to the wire while it is armed.
struct opened {
	int port;
	int reader = 0; // 0: not armed
	unsigned char *buffer = nullptr;
	std::size_t capacity = 0;
	std::size_t count = 0;
	int overruns = 0; // of the wire when it was armed
	bool listening = false;
	std::vector<unsigned char> kept = {}; // of a listener, at most capacity
	bool lost = false;                    // it was not asked in time
};

// All of these belong to the main thread, but for the wake function.
static std::map<int, port> ports;
static std::map<int, opened> outputs_open, inputs_open;
static int next_port = 1, next_handle = 1;
static std::atomic<void (*)()> wake_function = nullptr;

// Messages that go on from one wire to another, on the thread on which they arrive. Nobody writes
// exclusive messages in parts meanwhile, so none is held back. The timeline's lock comes before
// this one.
struct passed {
	int input, output; // handles
	int reader;
	midi_wire *from, *to;
	midi_judge judge;
	midi_sorter sorter = {};
};
static std::mutex passed_lock;
static std::list<passed> all_passed;

static void pass_on_what_came()
{
	const std::lock_guard hold(passed_lock);
	for (passed &p : all_passed) {
		unsigned char bytes[64], message[3];
		while (const std::size_t came = p.from->take(p.reader, bytes, sizeof bytes))
			for (std::size_t i = 0; i < came; i++)
				if (const int length = p.judge(&p.sorter, bytes[i], message))
					p.to->send({ message, static_cast<std::size_t>(length) });
	}
}

static void end_passing_on(int passed::*which, int handle)
{
	std::list<passed> ended;
	{
		const std::lock_guard hold(passed_lock);
		for (auto p = all_passed.begin(); p != all_passed.end();) {
			const auto next = std::next(p);
			if ((*p).*which == handle)
				ended.splice(ended.end(), all_passed, p);
			p = next;
		}
	}
	for (passed &p : ended)
		p.from->detach(p.reader);
}

static void wake_host()
{
	if (auto wake = wake_function.load())
		wake();
}

int plug_midi(timeline &time, midi_machine machine, const char *port_name, wire_settings settings)
{
	port plugged = { .name = port_name,
		.wire = std::make_unique<midi_wire>(time, std::move(machine), settings) };
	plugged.wire->on_change([] {
		pass_on_what_came();
		wake_host();
	});
	ports.emplace(next_port, std::move(plugged));
	return next_port++;
}

int plug_midi(timeline &time, s1000_machine &machine, const char *port_name, wire_settings settings)
{
	return plug_midi(time, machine.on_wire(), port_name, settings);
}

midi_wire &port_wire(int number)
{
	return *ports.at(number).wire;
}

void unplug_midi(int number)
{
	const auto found = ports.find(number);
	if (found != ports.end())
		found->second.wire->unplug();
}

void unplug_all_midi()
{
	{
		const std::lock_guard hold(passed_lock);
		all_passed.clear();
	}
	wake_function = nullptr;
	outputs_open.clear();
	inputs_open.clear();
	ports.clear();
}

// ---- The lists ---------------------------------------------------------------------

// A port whose cable was pulled stays known to its handles, and is listed no more.
static int listed_port(int index)
{
	for (const auto &[number, p] : ports)
		if (!p.wire->unplugged() && index-- == 0)
			return number;
	return 0;
}

static int listed_ports()
{
	int count = 0;
	for (const auto &[number, p] : ports)
		count += !p.wire->unplugged();
	return count;
}

static const char *listed_name(int index)
{
	static std::string name;
	const int number = index < 0 ? 0 : listed_port(index);
	name = number ? ports.at(number).name : "";
	return name.c_str();
}

static int open_listed(std::map<int, opened> &handles, int index, int *handle)
{
	const int number = index < 0 ? 0 : listed_port(index);
	if (!number)
		return ENODEV;
	*handle = next_handle++;
	handles[*handle] = { .port = number };
	return 0;
}

// The open side behind a handle, with its wire; null for a handle that is not open.
static midi_wire *wire_of(std::map<int, opened> &handles, int handle, opened **side)
{
	const auto found = handles.find(handle);
	if (found == handles.end())
		return nullptr;
	*side = &found->second;
	return ports.at(found->second.port).wire.get();
}

// ---- Output ------------------------------------------------------------------------

static int write_run(int handle, const unsigned char *run, std::size_t count)
{
	opened *side;
	midi_wire *wire = wire_of(outputs_open, handle, &side);
	if (!wire)
		return EBADF;
	if (wire->unplugged())
		return ENODEV;
	wire->send({ run, count });
	return 0;
}

static long still_leaving(int handle)
{
	opened *side;
	const midi_wire *wire = wire_of(outputs_open, handle, &side);
	if (!wire)
		return -EBADF;
	return wire->unplugged() ? -ENODEV : static_cast<long>(wire->leaving());
}

// ---- Input -------------------------------------------------------------------------

static void keep(midi_wire *wire, opened *side)
{
	unsigned char bytes[256];
	while (const std::size_t came = wire->take(side->reader, bytes, sizeof bytes)) {
		const std::size_t fits = std::min(came, side->capacity - side->kept.size());
		side->kept.insert(side->kept.end(), bytes, bytes + fits);
		side->lost = side->lost || fits < came;
	}
}

// Fetch what has arrived. Only here, on the main thread, is the armed buffer touched.
static void fetch(midi_wire *wire, opened *side)
{
	if (!side->reader)
		return;
	if (side->listening) {
		keep(wire, side);
		return;
	}
	side->count +=
		wire->take(side->reader, side->buffer + side->count, side->capacity - side->count);
	unsigned char dropped[256];
	while (side->count == side->capacity && wire->take(side->reader, dropped, sizeof dropped))
		;
}

static void disarm_input(int handle)
{
	end_passing_on(&passed::input, handle);
	opened *side;
	midi_wire *wire = wire_of(inputs_open, handle, &side);
	if (!wire || !side->reader)
		return;
	fetch(wire, side);
	wire->detach(side->reader);
	side->reader = 0;
}

static int receive_from_now(int handle, unsigned char *buffer, std::size_t capacity, bool listening)
{
	disarm_input(handle);
	opened *side;
	midi_wire *wire = wire_of(inputs_open, handle, &side);
	if (!wire)
		return EBADF;
	if (wire->unplugged())
		return ENODEV;
	*side = { .port = side->port,
		.reader = wire->attach(),
		.buffer = buffer,
		.capacity = capacity,
		.count = 0,
		.overruns = wire->overruns(),
		.listening = listening };
	return 0;
}

static int arm_input(int handle, unsigned char *buffer, std::size_t capacity)
{
	return receive_from_now(handle, buffer, capacity, false);
}

static int listen_to_input(int handle, std::size_t room)
{
	return receive_from_now(handle, nullptr, room, true);
}

static std::size_t take_kept(int handle, unsigned char *bytes, std::size_t capacity)
{
	opened *side;
	midi_wire *wire = wire_of(inputs_open, handle, &side);
	if (!wire || !side->listening)
		return 0;
	fetch(wire, side);
	const std::size_t count = std::min(capacity, side->kept.size());
	std::copy_n(side->kept.begin(), count, bytes);
	side->kept.erase(
		side->kept.begin(), side->kept.begin() + static_cast<std::ptrdiff_t>(count));
	return count;
}

static std::size_t received_so_far(int handle)
{
	opened *side;
	midi_wire *wire = wire_of(inputs_open, handle, &side);
	if (!wire)
		return 0;
	fetch(wire, side);
	return side->count;
}

static int error_of_input(int handle)
{
	opened *side;
	midi_wire *wire = wire_of(inputs_open, handle, &side);
	if (!wire)
		return EBADF;
	if (wire->unplugged())
		return ENODEV;
	if (side->listening)
		fetch(wire, side);
	if (side->lost)
		return EPIPE;
	return side->reader && wire->overruns() != side->overruns ? EPIPE : 0;
}

static int pass_on_input(int handle, int output, midi_judge judge)
{
	opened *in, *out;
	midi_wire *from = wire_of(inputs_open, handle, &in);
	midi_wire *to = output < 0 ? nullptr : wire_of(outputs_open, output, &out);
	if (!from || (output >= 0 && !to))
		return EBADF;
	end_passing_on(&passed::input, handle);
	if (!to)
		return 0;
	const int reader = from->attach();
	const std::lock_guard hold(passed_lock);
	all_passed.push_back({ handle, output, reader, from, to, judge });
	return 0;
}

// ---- The table ---------------------------------------------------------------------

static const char *words_of(int code)
{
	if (code == EPIPE)
		return "The MIDI input lost bytes";
	return std::strerror(code);
}

const midi_service virtual_midi = {
	.outputs = listed_ports,
	.inputs = listed_ports,
	.output_name = listed_name,
	.input_name = listed_name,
	.open_output =
		[](int index, int *handle) {
			return open_listed(outputs_open, index == -1 ? 0 : index, handle);
		},
	.write = write_run,
	.leaving = still_leaving,
	.close_output =
		[](int handle) {
			end_passing_on(&passed::output, handle);
			outputs_open.erase(handle);
		},
	.open_input = [](int index,
			      int *handle) { return open_listed(inputs_open, index, handle); },
	.arm = arm_input,
	.received = received_so_far,
	.listen = listen_to_input,
	.take = take_kept,
	.input_error = error_of_input,
	.pass_on = pass_on_input,
	.disarm = disarm_input,
	.close_input =
		[](int handle) {
			disarm_input(handle);
			inputs_open.erase(handle);
		},
	.on_arrival = [](void (*wake)()) { wake_function = wake; },
	.error_text = words_of,
};

} // namespace velmor
