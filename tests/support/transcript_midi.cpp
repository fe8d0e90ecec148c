// transcript_midi.cpp - a MIDI port that plays what was written down

#include "tests/support/transcript_midi.h"
#include <algorithm>
#include <cmath>
#include <sstream>

namespace velmor
{

static transcript_midi *playing = nullptr;

static int opened(int code, int *handle, int *total, int *open)
{
	if (code)
		return code;
	*handle = (*total)++;
	++*open;
	return 0;
}

static const midi_service transcript_service = {
	.outputs = [] { return 1; },
	.inputs = [] { return 1; },
	.output_name = [](int index) { return index == 0 ? "transcript out" : ""; },
	.input_name = [](int index) { return index == 0 ? "transcript in" : ""; },
	.open_output =
		[](int index, int *handle) {
			const int code = index > 0 ? 19 : playing->faults.open_output;
			return opened(
				code, handle, &playing->outputs_opened, &playing->outputs_open);
		},
	.write =
		[](int, const unsigned char *bytes, std::size_t count) {
			return playing->write({ bytes, count });
		},
	.leaving = [](int) { return playing->leaving(); },
	.close_output = [](int) { playing->outputs_open--; },
	.open_input =
		[](int index, int *handle) {
			const int code = index != 0 ? 19 : playing->faults.open_input;
			return opened(code, handle, &playing->inputs_opened, &playing->inputs_open);
		},
	.arm =
		[](int, unsigned char *buffer, std::size_t capacity) {
			if (!playing->faults.arm)
				playing->arm(buffer, capacity);
			return playing->faults.arm;
		},
	.received = [](int) { return playing->received; },
	.listen =
		[](int handle, std::size_t) {
			if (!playing->faults.arm)
				playing->listen(handle);
			return playing->faults.arm;
		},
	.take = [](int handle, unsigned char *bytes,
			std::size_t capacity) { return playing->take(handle, bytes, capacity); },
	.input_error = [](int) { return playing->faults.input; },
	.disarm = [](int) { playing->disarm(); },
	.close_input = [](int handle) { playing->close_input(handle); },
	.on_arrival = [](void (*wake)()) { playing->wake = wake; },
	.error_text =
		[](int code) {
			static char text[40];
			std::snprintf(text, sizeof text, "MIDI port code %d", code);
			return static_cast<const char *>(text);
		},
};

// ---- Reading the script -------------------------------------------------------------------

static std::vector<int> read_bytes(std::istringstream &words)
{
	std::vector<int> bytes;
	for (std::string word; words >> word;) {
		const std::size_t star = word.find('*');
		const std::size_t times = star == word.npos ? 1 : std::stoul(word.substr(star + 1));
		const std::string digits = word.substr(0, star);
		bytes.insert(
			bytes.end(), times, digits == ".." ? -1 : std::stoi(digits, nullptr, 16));
	}
	return bytes;
}

void transcript_midi::read_line(std::string line, std::string *name)
{
	line.erase(0, std::min(line.find_first_not_of(" \t"), line.size()));
	if (line.empty())
		return;
	if (line[0] == '#') {
		*name = line.substr(std::min(line.find_first_not_of("# "), line.size()));
		return;
	}
	if (line == "< nothing")
		return;
	if (line[0] != '>' && line[0] != '<') {
		fail("this is no step: " + line);
		return;
	}
	double delay = 0.001;
	if (const std::size_t mark = line.find('@'); mark != line.npos) {
		std::size_t digits;
		delay = std::stod(line.substr(mark + 1), &digits);
		line.erase(mark, digits + 1);
	}
	std::istringstream words(line.substr(1));
	steps.push_back({ .sent = line[0] == '>',
		.bytes = read_bytes(words),
		.delay = delay,
		.name = *name });
}

transcript_midi::transcript_midi(test_host &h, std::string_view script)
	: owner(h), before(host.midi), self(std::make_shared<transcript_midi *>(this))
{
	std::istringstream lines{ std::string(script) };
	std::string name;
	for (std::string line; std::getline(lines, line);)
		read_line(line, &name);
	close_midi_output();
	playing = this;
	host.midi = &transcript_service;
	selected_midi_in_interface = selected_midi_out_interface = 0;
	reload_midi_setup(false);
}

transcript_midi::~transcript_midi()
{
	for (std::size_t i = at; i < steps.size() && !broken; i++)
		if (steps[i].sent)
			fail(steps[i].name + (i == at && sent ? ": cut short" : ": never sent"));
	close_midi_output();
	*self = nullptr;
	playing = nullptr;
	host.midi = before;
}

void transcript_midi::fail(const std::string &what)
{
	broken = true;
	ADD_FAILURE() << "transcript: " << what;
}

// ---- Playing it ---------------------------------------------------------------------------

bool transcript_midi::finished() const
{
	return !broken && at == steps.size() && coming == 0;
}

static constexpr double byte_seconds = 10 / 31250.0;

int transcript_midi::write(std::span<const u8> bytes)
{
	if (faults.write)
		return faults.write;
	wire_free = std::max(wire_free, owner.time.now()) +
		    static_cast<double>(bytes.size()) * byte_seconds;
	// An event at the moment when the last byte has left lets a waiting pump return.
	owner.time.at(wire_free, [self = self] {
		if (*self && (*self)->wake)
			(*self)->wake();
	});
	for (const u8 byte : bytes)
		send_byte(byte);
	return 0;
}

void transcript_midi::send_byte(u8 byte)
{
	if (broken)
		return;
	if (at == steps.size() || !steps[at].sent) {
		fail(format_text("byte %02X is sent, nothing more is written down", byte));
		return;
	}
	const step &now = steps[at];
	const int due = now.bytes[sent];
	if (due >= 0 && due != byte) {
		fail(format_text("%s: byte %zu is %02X, %02X written down", now.name.c_str(), sent,
			byte, static_cast<unsigned>(due)));
		return;
	}
	if (++sent < now.bytes.size())
		return;
	at++;
	sent = 0;
	schedule_answers(wire_free);
}

void transcript_midi::schedule_answers(double from)
{
	for (; at < steps.size() && !steps[at].sent; at++) {
		from += steps[at].delay;
		coming++;
		owner.time.at(from, [self = self, bytes = steps[at].bytes] {
			if (*self)
				(*self)->deliver(bytes);
		});
	}
}

void transcript_midi::deliver(const std::vector<int> &bytes)
{
	coming--;
	for (const int byte : bytes)
		if (received < armed.size())
			armed[received++] = static_cast<u8>(byte);
	for (auto &[handle, kept] : heard)
		kept.insert(kept.end(), bytes.begin(), bytes.end());
	if (wake)
		wake();
}

void transcript_midi::arm(u8 *buffer, std::size_t capacity)
{
	armed = { buffer, capacity };
	received = 0;
	if (at < steps.size() && !steps[at].sent)
		schedule_answers(owner.time.now());
}

void transcript_midi::listen(int handle)
{
	heard[handle].clear();
	if (at < steps.size() && !steps[at].sent)
		schedule_answers(owner.time.now());
}

void transcript_midi::close_input(int handle)
{
	if (!heard.erase(handle))
		disarm();
	inputs_open--;
}

std::size_t transcript_midi::take(int handle, u8 *bytes, std::size_t capacity)
{
	std::vector<u8> &kept = heard[handle];
	const std::size_t count = std::min(capacity, kept.size());
	std::copy_n(kept.begin(), count, bytes);
	kept.erase(kept.begin(), kept.begin() + static_cast<std::ptrdiff_t>(count));
	return count;
}

long transcript_midi::leaving() const
{
	if (faults.leaving)
		return -faults.leaving;
	if (faults.stuck)
		return 1;
	const double rest = wire_free - owner.time.now();
	return rest <= 0 ? 0 : static_cast<long>(std::ceil(rest / byte_seconds));
}

std::string nibbles(std::string_view block)
{
	std::string text = " ";
	for (u8 byte : hex(block))
		text += format_text("%02X %02X ", byte & 0x0F, byte >> 4);
	return text;
}

} // namespace velmor
