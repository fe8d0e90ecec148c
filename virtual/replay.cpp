// replay.cpp - a sampler that answers as one did in a transcript

#include "virtual/replay.h"
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>

namespace velmor
{

using machine::byte_view;
using machine::bytes;

struct replay_event {
	double time = 0;
	char direction = ' '; // > < !
	std::string line, failed;
	std::size_t count = 0, asked = 0;
	bytes content;
	std::string words; // of '!'
	int row = 0;
};

static constexpr std::size_t most_bytes = 256 << 20, most_in_event = 4 << 20, most_events = 1 << 20;
static constexpr double longest_delay = 3600; // seconds, of an answer
static constexpr double byte_time = 320e-6;

// ---- Reading ---------------------------------------------------------------------------

static bool read_number(const std::string &word, std::size_t most, std::size_t *value)
{
	if (word.empty() || word.size() > 9 || word.find_first_not_of("0123456789") != word.npos)
		return false;
	*value = std::stoul(word);
	return *value <= most;
}

// "F7" or "00*384".
static bool read_byte_word(const std::string &word, replay_event *e)
{
	const std::size_t star = word.find('*');
	const std::string digits = word.substr(0, star);
	std::size_t times = 1;
	if (digits.empty() || digits.size() > 2 ||
		digits.find_first_not_of("0123456789ABCDEFabcdef") != digits.npos ||
		(star != word.npos && !read_number(word.substr(star + 1), most_in_event, &times)) ||
		times > e->count - e->content.size())
		return false;
	e->content.insert(e->content.end(), times,
		static_cast<std::uint8_t>(std::stoul(digits, nullptr, 16)));
	return true;
}

static std::string read_bytes(const std::string &words, replay_event *e)
{
	std::istringstream stream(words);
	for (std::string word; stream >> word;)
		if (!read_byte_word(word, e))
			return "'" + word.substr(0, 20) + "' is no byte of this event";
	return "";
}

static std::string read_event(const std::string &line, replay_event *e)
{
	const std::size_t colon = line.find(':');
	std::istringstream head(line.substr(0, colon));
	std::string time, direction, word;
	head >> time >> direction;
	char *end = nullptr;
	e->time = std::strtod(time.c_str(), &end);
	if (time.empty() || *end || !(e->time >= 0) || std::isinf(e->time) || direction.size() != 1)
		return "this is no event";
	e->direction = direction[0];
	if (e->direction == '!') {
		e->words = line.substr(line.find('!') + 1);
		return "";
	}
	head >> e->line >> word;
	if ((e->direction != '>' && e->direction != '<') || colon == line.npos ||
		!read_number(word, most_in_event, &e->count))
		return "this is no event";
	while (head >> word) {
		if (word != "of")
			e->failed = word;
		else if (!(head >> word) || !read_number(word, most_in_event, &e->asked))
			return "it does not say how much was asked for";
	}
	return read_bytes(line.substr(colon + 1), e);
}

// The lines of a file, up to its end or to what is wrong.
class replay_reader
{
public:
	std::vector<replay_event> events;
	std::string wrong;

	explicit replay_reader(std::string_view text)
	{
		if (!text.starts_with("velmor-transcript 1\n") &&
			!text.starts_with("velmor-transcript 1\r\n"))
			wrong = "This file is no transcript of a version that is known.";
		std::istringstream lines{ std::string(text.substr(0, most_bytes)) };
		if (text.size() > most_bytes)
			wrong = "The transcript is too large.";
		for (std::string line; wrong.empty() && std::getline(lines, line);) {
			row++;
			if (line.ends_with('\r'))
				line.pop_back();
			read_line(line);
		}
		if (wrong.empty())
			check_whole();
	}

private:
	void read_line(const std::string &line)
	{
		if (head || line.empty() || line[0] == '#') {
			head = head && !line.empty();
			return;
		}
		std::string what;
		if (line[0] == '\t') {
			what = events.empty() ? "bytes without an event"
					      : read_bytes(line, &events.back());
		} else if (check_whole(); wrong.empty()) {
			events.emplace_back().row = row;
			what = read_event(line, &events.back());
			whole += events.back().count;
		}
		if (whole > most_bytes || events.size() > most_events)
			what = "there is more in it than can be played";
		if (!what.empty())
			wrong = "Line " + std::to_string(row) + ": " + what + ".";
	}
	void check_whole()
	{
		if (!events.empty() && events.back().content.size() != events.back().count)
			wrong = "Line " + std::to_string(events.back().row) +
				": the event lacks bytes.";
	}

	int row = 0;
	bool head = true;
	std::size_t whole = 0;
};

// ---- Steps -----------------------------------------------------------------------------

// What is no System Exclusive message is not answered by any machine.
static bytes exclusive_of(const bytes &all, bool *inside)
{
	bytes kept;
	for (const std::uint8_t b : all) {
		*inside = (*inside && !(b & 0x80)) || b == 0xF0 || b >= 0xF7;
		if ((*inside && b < 0xF8) || b == 0xF7)
			kept.push_back(b);
		*inside = *inside && b != 0xF7;
	}
	return kept;
}

replay_script::replay_script(std::string_view text, bool only_strict) : strict(only_strict)
{
	replay_reader reader(text);
	failure = reader.wrong;
	if (failure.empty())
		make_steps(reader.events);
	if (failure.empty() && steps.empty())
		failure = "Nothing was sent to a sampler in this transcript.";
}

void replay_script::make_steps(const std::vector<replay_event> &events)
{
	bool exclusive = false;
	for (replay_event e : events) {
		const bool here = e.line == "usb";
		if (const std::size_t ids = e.words.find("usb: opened "); ids != e.words.npos) {
			unsigned v = 0, p = 0;
			if (std::sscanf(e.words.c_str() + ids, "usb: opened %x:%x", &v, &p) == 2)
				vendor = static_cast<std::uint16_t>(v),
				product = static_cast<std::uint16_t>(p);
		}
		if (e.direction == '!' || (!here && e.line != "midi" && e.line != "tcp"))
			continue;
		if (steps.empty())
			usb = here;
		if (usb != here)
			continue; // another sampler
		if (e.direction == '>' && !usb)
			e.content = exclusive_of(e.content, &exclusive);
		if (e.direction == '>' && !e.content.empty())
			add_heard(e);
		else if (e.direction == '<' && !steps.empty())
			add_answer(e);
	}
}

// A step is one message, or a part of one that is answered before its end.
void replay_script::add_heard(const replay_event &e)
{
	goes_on = false;
	double begins = e.time;
	for (std::size_t from = 0, end; from < e.content.size(); from = end) {
		end = e.content.size();
		if (!usb)
			end = std::min(
				end, static_cast<std::size_t>(
					     std::find(e.content.begin() +
							       static_cast<std::ptrdiff_t>(from),
						     e.content.end(), 0xF7) -
					     e.content.begin()) +
					     1);
		const bool part = !usb && !steps.empty() && steps.back().answers.empty() &&
				  steps.back().heard.back() != 0xF7;
		if (!part)
			steps.push_back({ .heard = {},
				.answers = {},
				.begins = begins,
				.ends = 0,
				.row = e.row });
		replay_step &step = steps.back();
		step.heard.insert(step.heard.end(),
			e.content.begin() + static_cast<std::ptrdiff_t>(from),
			e.content.begin() + static_cast<std::ptrdiff_t>(end));
		begins += usb ? 0 : static_cast<double>(end - from) * byte_time;
		step.ends = begins;
	}
}

// A read on the USB that got less than it asked for has come to the end of a message. What a
// full one got may be the beginning of one.
void replay_script::add_answer(const replay_event &e)
{
	if (usb && !e.failed.empty() && e.content.empty())
		return;
	replay_step &step = steps.back();
	if (!goes_on)
		step.answers.push_back(
			{ .delay = std::clamp(e.time - step.ends, 0.0, longest_delay),
				.message = {} });
	usb_message &m = step.answers.back().message;
	m.bytes.insert(m.bytes.end(), e.content.begin(), e.content.end());
	const bool ended = e.content.size() < e.asked;
	m.closed = ended && e.failed.empty();
	goes_on = usb && !ended;
}

// ---- Hearing ---------------------------------------------------------------------------

std::string replay_parting::words() const
{
	char text[200];
	if (row == 0)
		std::snprintf(text, sizeof text,
			"Byte %02X is sent behind the end of the transcript", unsigned(now));
	else if (now < 0)
		std::snprintf(text, sizeof text,
			"A message ends before byte %zu of line %d (%.6f s), which is %02X", at,
			row, time, unsigned(then));
	else
		std::snprintf(text, sizeof text,
			"Byte %zu of line %d (%.6f s) was %02X then and is %02X now", at, row, time,
			unsigned(then), unsigned(now));
	return text;
}

void replay_script::part_at(int now)
{
	if (next == steps.size())
		parting = replay_parting{ 0, 0, 0, -1, now };
	else
		parting = replay_parting{ steps[next].row, steps[next].begins, fed,
			steps[next].heard[fed], now };
}

// The message that was heard, further on or from the beginning again.
bool replay_script::find_message()
{
	for (std::size_t i = 0; i < steps.size(); i++) {
		const std::size_t place = (next + i) % steps.size();
		if (steps[place].heard == message) {
			next = place;
			return true;
		}
	}
	strangers++;
	return false;
}

std::vector<const replay_answer *> replay_script::hear(byte_view all, bool ended)
{
	std::vector<const replay_answer *> answers;
	const auto heard_all = [&] {
		for (const replay_answer &answer : steps[next].answers)
			answers.push_back(&answer);
		next++;
		fed = 0;
	};
	for (const std::uint8_t b : all) {
		if (strict && parting)
			return answers;
		message.push_back(b);
		lost = lost || next == steps.size() || steps[next].heard[fed] != b;
		if (lost && strict)
			part_at(b);
		if (!lost && ++fed == steps[next].heard.size())
			heard_all();
	}
	if (!ended)
		return answers;
	if (strict && !parting && fed && usb)
		part_at(-1);
	// On the USB a transfer that ends early is another one.
	if (!strict && (lost || (usb && fed))) {
		fed = 0;
		if (find_message())
			heard_all();
	}
	lost = false;
	message.clear();
	return answers;
}

// ---- On a MIDI wire ----------------------------------------------------------------------

static constexpr double at_once = 0.02;

bytes replay_sampler::hear_now(
	timeline &time, byte_view run, bool ended, const std::function<void(bytes)> &later)
{
	bytes now;
	for (const replay_answer *answer : hear(run, ended)) {
		const bytes &said = answer->message.bytes;
		if (answer->delay < at_once)
			now.insert(now.end(), said.begin(), said.end());
		else
			time.after(answer->delay, [later, said] { later(said); });
	}
	return now;
}

midi_machine replay_sampler::on_wire(timeline &time, std::function<void(bytes)> later)
{
	const auto silent = [](byte_view) { return bytes(); };
	return { .answer =
			 [this, &time, later](byte_view whole) {
				 const std::size_t from = std::min(taken, whole.size());
				 taken = 0;
				 return hear_now(time, whole.subspan(from), true, later);
			 },
		.refuse = silent,
		.wait = silent,
		.part =
			[this, &time, later](std::size_t at, byte_view fresh) {
				if (fresh.empty()) {
					taken = 0;
					return bytes();
				}
				taken = at + fresh.size();
				return hear_now(time, fresh, false, later);
			} };
}

// ---- On the USB ----------------------------------------------------------------------------

replay_usb::replay_usb(std::string_view text, bool only_strict) : replay_script(text, only_strict)
{
	usb_machine::vendor = replay_script::vendor;
	usb_machine::product = replay_script::product;
}

// Transfers come one by one, each as it was written.
std::size_t replay_usb::message_size(std::span<const std::uint8_t> come, bool) const
{
	return come.size();
}

void replay_usb::handle(std::span<const std::uint8_t> transfer)
{
	for (const replay_answer *said : hear(transfer, true)) {
		usb_message copy = said->message;
		copy.delay = said->delay < at_once ? 0 : said->delay;
		answer(std::move(copy));
	}
}

} // namespace velmor
