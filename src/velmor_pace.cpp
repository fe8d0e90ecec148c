// velmor_pace.cpp - how fast an interface takes long messages

#include "src/velmor_pace.h"
#include "src/velmor.h"
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <utility>
#include <vector>

namespace velmor
{

static constexpr double byte_seconds = 10 / 31250.0, patience = 2;
static constexpr std::size_t most_held = 1 << 16;

// ---- What is kept -----------------------------------------------------------------------

static std::map<std::string, send_pace> paces; // as far as they were looked up
static const send_pace *trial = nullptr;

std::string chosen_output()
{
	const int chosen = std::max(selected_midi_out_interface, 0);
	return chosen < static_cast<int>(midi_out_interface.size())
		       ? midi_out_interface[static_cast<std::size_t>(chosen)]
		       : "";
}

static std::string key_of(const std::string &port)
{
	return "midi_run " + port;
}

send_pace kept_pace(const std::string &port)
{
	if (const auto found = paces.find(port); found != paces.end())
		return found->second;
	char value[setting_size] = "";
	send_pace pace;
	if (port.empty() || host.settings->load_key(key_of(port).c_str(), value) != 0 ||
		std::sscanf(value, "%d %d", &pace.run, &pace.pause_ms) != 2 || pace.run < 1 ||
		pace.run > longest_run || pace.pause_ms < 0 || pace.pause_ms > longest_pause_ms)
		pace = {};
	return paces[port] = pace;
}

int keep_pace(const std::string &port, send_pace pace)
{
	paces[port] = pace;
	return save_key(
		key_of(port).c_str(), format_text("%d %d", pace.run, pace.pause_ms).c_str());
}

void forget_kept_paces()
{
	paces.clear();
}

pace_trial::pace_trial(send_pace tried) : pace(tried), before(std::exchange(trial, &pace)) {}

pace_trial::~pace_trial()
{
	trial = before;
}

// ---- Sending ----------------------------------------------------------------------------

static bool in_parts = false;
static std::vector<u8> held; // what came while a message leaves in parts

static void pump_for(double seconds)
{
	const double end = host.clock->counter() + seconds;
	for (double rest = seconds; rest > 0; rest = end - host.clock->counter())
		host.ui->pump(static_cast<int>(std::ceil(std::min(rest * 1000, 100.0))));
}

// 0, or the port's code. A port that does not move the run is left to whoever waits behind.
static int wait_for_run(int handle, std::size_t count, bool *stuck)
{
	const double end =
		host.clock->counter() + static_cast<double>(count) * byte_seconds + patience;
	long left;
	while ((left = host.midi->leaving(handle)) > 0 && !*stuck) {
		pump_for(std::clamp(static_cast<double>(left) * byte_seconds, 0.001, 0.1));
		*stuck = host.clock->counter() >= end;
	}
	return left < 0 ? static_cast<int>(-left) : 0;
}

static int write_in_parts(int handle, const u8 *bytes, std::size_t count, send_pace pace)
{
	const auto run = static_cast<std::size_t>(pace.run);
	bool stuck = false;
	for (std::size_t from = 0; from < count && !stuck; from += run) {
		if (from)
			pump_for(pace.pause_ms / 1000.0);
		const std::size_t part = std::min(run, count - from);
		int code = host.midi->write(handle, bytes + from, part);
		if (!code && from + part < count)
			code = wait_for_run(handle, part, &stuck);
		if (code)
			return code;
	}
	return 0;
}

// Also when the process ends in a pump.
struct parts_guard {
	parts_guard() { in_parts = true; }
	~parts_guard() { in_parts = false; }
	parts_guard(const parts_guard &) = delete;
};

int write_output(int handle, const u8 *bytes, std::size_t count)
{
	if (in_parts) {
		if (held.size() + count <= most_held)
			held.insert(held.end(), bytes, bytes + count);
		return 0;
	}
	const send_pace pace = trial ? *trial : kept_pace(chosen_output());
	if (!pace.run || count <= static_cast<std::size_t>(pace.run))
		return host.midi->write(handle, bytes, count);
	int code;
	{
		const parts_guard guard;
		held.clear();
		code = write_in_parts(handle, bytes, count, pace);
	}
	const std::vector<u8> later = std::exchange(held, {});
	if (!code && !later.empty()) {
		pump_for(pace.pause_ms / 1000.0);
		code = write_output(handle, later.data(), later.size());
	}
	return code;
}

} // namespace velmor
