// velmor_tap_midi.cpp - the MIDI ports, listened to

#include "src/velmor_tap.h"
#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <utility>

namespace velmor
{

// ---- What the thread of a port passes on -----------------------------------------------------

struct passed_run {
	double time;
	std::vector<u8> bytes;
};
static std::mutex passed_lock;
static std::vector<passed_run> passed;
static std::atomic<midi_judge> judging = nullptr;
static std::atomic<bool> keeping = false;           // somebody wants them
static constexpr std::size_t most_passed = 1 << 16; // messages that wait for the main thread

static int judge_and_keep(midi_sorter *sorter, unsigned char byte, unsigned char *message)
{
	const midi_judge judge = judging;
	const int length = judge ? judge(sorter, byte, message) : 0;
	if (length <= 0 || !keeping)
		return length;
	const std::lock_guard hold(passed_lock);
	if (passed.size() < most_passed)
		passed.push_back({ host.clock->counter(), { message, message + length } });
	return length;
}

void tap_passed()
{
	std::vector<passed_run> runs;
	{
		const std::lock_guard hold(passed_lock);
		runs.swap(passed);
	}
	for (const passed_run &run : runs)
		tap_bytes(wire_line::thru, true, run.bytes, run.time);
}

// ---- MIDI -------------------------------------------------------------------------------------

static wrapping<midi_service> midi = { &host.midi };

struct open_input_state {
	const u8 *buffer = nullptr; // while it is armed
	std::size_t seen = 0;
	bool monitors = false, failed = false;
};
static std::map<int, open_input_state> inputs;

static std::string port_failure(int code)
{
	return "failed, " + words_or_none(midi.real->error_text(code));
}

static void note_port(const char *kind, int code, const char *name)
{
	tap_state(kind, code ? port_failure(code) : "opened, " + words_or_none(name));
}

static std::size_t see_received(int handle)
{
	const std::size_t count = midi.real->received(handle);
	const auto found = inputs.find(handle);
	if (found == inputs.end() || !found->second.buffer || count <= found->second.seen)
		return count;
	open_input_state &in = found->second;
	tap_bytes(wire_line::midi, false, { in.buffer + in.seen, count - in.seen });
	in.seen = count;
	return count;
}

static void end_armed(int handle)
{
	if (inputs[handle].buffer)
		see_received(handle);
	inputs[handle].buffer = nullptr;
}

static int write_midi(int handle, const unsigned char *bytes, std::size_t count)
{
	tap_passed();
	const int code = midi.real->write(handle, bytes, count);
	if (code)
		tap_note("midi-out: " + port_failure(code));
	else
		tap_bytes(wire_line::midi, true, { bytes, count });
	return code;
}

static std::size_t take_midi(int handle, unsigned char *bytes, std::size_t capacity)
{
	tap_passed();
	const std::size_t count = midi.real->take(handle, bytes, capacity);
	tap_bytes(inputs[handle].monitors ? wire_line::monitor : wire_line::midi, false,
		{ bytes, std::min(count, capacity) });
	return count;
}

static int see_input_error(int handle)
{
	const int code = midi.real->input_error(handle);
	if (code && !std::exchange(inputs[handle].failed, true))
		tap_note("midi-in: " + port_failure(code));
	return code;
}

static int pass_on_midi(int handle, int output, midi_judge judge)
{
	inputs[handle].monitors = true;
	judging = judge;
	return midi.real->pass_on(handle, output, judge_and_keep);
}

static void wrap_midi()
{
	midi.table.open_output = [](int index, int *handle) {
		const int code = midi.real->open_output(index, handle);
		note_port("midi-out", code, midi.real->output_name(std::max(index, 0)));
		return code;
	};
	midi.table.write = write_midi;
	midi.table.open_input = [](int index, int *handle) {
		const int code = midi.real->open_input(index, handle);
		note_port("midi-in", code, midi.real->input_name(index));
		if (!code)
			inputs[*handle] = {};
		return code;
	};
	midi.table.arm = [](int handle, unsigned char *buffer, std::size_t capacity) {
		end_armed(handle);
		const int code = midi.real->arm(handle, buffer, capacity);
		if (!code)
			inputs[handle] = { .buffer = buffer };
		return code;
	};
	midi.table.received = see_received;
	midi.table.take = take_midi;
	midi.table.input_error = see_input_error;
	if (midi.real->pass_on)
		midi.table.pass_on = pass_on_midi;
	midi.table.disarm = [](int handle) {
		end_armed(handle);
		midi.real->disarm(handle);
	};
	midi.table.close_input = [](int handle) {
		end_armed(handle);
		inputs.erase(handle);
		midi.real->close_input(handle);
	};
}

// What was kept for a recording before this one is not part of it.
static void put_in()
{
	inputs.clear();
	const std::lock_guard hold(passed_lock);
	passed.clear();
	midi.put_in(wrap_midi);
	keeping = midi.is_in();
}

static void take_out()
{
	keeping = false;
	midi.take_out();
}

constinit const tapped_line tapped_midi = { put_in, take_out, [] { return midi.is_in(); } };

} // namespace velmor
