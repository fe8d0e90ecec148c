// velmor_tap.cpp - what crossed the lines, as events, and who is told of them
//
// Bytes that come one by one make one event, until 20 ms pass without any or something else
// happens on any line. What is sent over MIDI or USB is an event for each run handed over. The
// event under way is told when the next one begins.

#include "src/velmor_tap.h"
#include "src/velmor_monitor.h"
#include "src/velmor_record.h"
#include <algorithm>
#include <map>
#include <utility>

namespace velmor
{

static constexpr double pause_seconds = 0.02, byte_seconds = 10 / 31250.0;
static constexpr std::size_t longest_event = 1 << 16;

static std::vector<traffic_listener *> listeners;
void (*tap_record)(const crossing &c) = nullptr;

// ---- Events -----------------------------------------------------------------------------------

static struct {
	bool installed = false;
	crossing now;     // under way
	bool any = false; // now is one
	double last = 0;  // moment of its last byte
} tap;

static void end_event()
{
	if (!tap.any)
		return;
	tap.any = false;
	const crossing done = std::move(tap.now);
	for (traffic_listener *listener : listeners)
		listener->crossings.push_back(done);
	if (tap_record)
		tap_record(done);
}

static void begin_event(crossing c)
{
	end_event();
	tap.now = std::move(c);
	tap.any = true;
}

static void add_run(wire_line line, bool sent, std::span<const u8> bytes, double moment)
{
	const bool whole = line == wire_line::usb || (sent && line == wire_line::midi);
	// What a program looks for ten times a second has come all the while.
	const double busy = static_cast<double>(bytes.size()) * byte_seconds;
	const bool goes_on = tap.any && !whole && tap.now.line == line && tap.now.sent == sent &&
			     moment - tap.last < pause_seconds + busy &&
			     tap.now.bytes.size() + bytes.size() <= longest_event;
	if (!goes_on)
		begin_event({ .time = moment, .sent = sent, .line = line });
	tap.now.bytes.insert(tap.now.bytes.end(), bytes.begin(), bytes.end());
	tap.last = moment;
	if (whole)
		end_event();
}

// A run that is longer than an event may be is several.
void tap_bytes(wire_line line, bool sent, std::span<const u8> bytes, double moment)
{
	while (!bytes.empty()) {
		const std::size_t part = std::min(bytes.size(), longest_event);
		add_run(line, sent, bytes.first(part), moment);
		bytes = bytes.subspan(part);
	}
}

void tap_bytes(wire_line line, bool sent, std::span<const u8> bytes)
{
	tap_bytes(line, sent, bytes, host.clock->counter());
}

void tap_event(crossing c)
{
	c.time = host.clock->counter();
	begin_event(std::move(c));
	end_event();
}

void tap_note(const std::string &words)
{
	tap_event({ .note = words });
}

static std::map<std::string, std::string> noted;

void tap_state(const char *kind, const std::string &words)
{
	if (std::exchange(noted[kind], words) != words)
		tap_note(std::string(kind) + ": " + words);
}

void tap_forget_state(const char *kind)
{
	noted.erase(kind);
}

std::string words_or_none(const char *words)
{
	return words ? words : "";
}

void tap_flush()
{
	tap_passed();
	end_event();
}

// ---- In front of the services, or not -----------------------------------------------------------

static constexpr const tapped_line *lines[] = { &tapped_midi, &tapped_net, &tapped_usb };

bool tap_is_in()
{
	return tap.installed &&
	       std::ranges::any_of(lines, [](const tapped_line *line) { return line->is_in(); });
}

static void put_in()
{
	if (tap_is_in())
		return;
	tap = {};
	tap.installed = true;
	noted.clear();
	for (const tapped_line *line : lines)
		line->put_in();
	renew_monitor();
}

void tap_begin()
{
	put_in();
	noted.clear();
	tap_flush();
}

void tap_leave_if_idle()
{
	if (tap_record || !listeners.empty())
		return;
	for (const tapped_line *line : lines)
		line->take_out();
	tap.installed = false;
}

traffic_listener::traffic_listener()
{
	put_in();
	tap_flush();
	listeners.push_back(this);
}

traffic_listener::~traffic_listener()
{
	std::erase(listeners, this);
	tap_leave_if_idle();
}

const std::vector<crossing> &traffic_listener::take()
{
	tap_flush();
	return crossings;
}

} // namespace velmor
