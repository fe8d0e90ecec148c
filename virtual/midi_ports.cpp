// midi_ports.cpp - MIDI ports of a host with virtual machines at the far end

#include "virtual/midi_ports.h"
#include "virtual/s1000.h"
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <map>
#include <memory>
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

static void wake_host()
{
	if (auto wake = wake_function.load())
		wake();
}

int plug_midi(timeline &time, midi_machine machine, const char *port_name, wire_settings settings)
{
	port plugged = { .name = port_name,
		.wire = std::make_unique<midi_wire>(time, std::move(machine), settings) };
	plugged.wire->on_change(wake_host);
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
	.close_output = [](int handle) { outputs_open.erase(handle); },
	.open_input = [](int index,
			      int *handle) { return open_listed(inputs_open, index, handle); },
	.arm = arm_input,
	.received = received_so_far,
	.listen = listen_to_input,
	.take = take_kept,
	.input_error = error_of_input,
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
