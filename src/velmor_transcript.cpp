// velmor_transcript.cpp - transcripts as text: written, and read again

#include "src/velmor_transcript.h"
#include "src/velmor.h"
#include <charconv>
#include <cmath>

namespace velmor
{

static constexpr char first_line[] = "velmor-transcript 1";
static constexpr std::size_t words_in_line = 32;
static constexpr std::size_t worth_folding = 4; // equal bytes
static constexpr const char *line_names[] = { "midi", "monitor", "thru", "tcp", "usb" };

// ---- Writing ----------------------------------------------------------------------------

// A value is one line, whatever it holds.
static std::string one_line(std::string words)
{
	for (char &c : words)
		if (static_cast<u8>(c) < 0x20)
			c = ' ';
	return words;
}

std::string head_text(const transcript &t)
{
	std::string text = std::string(first_line) + "\n";
	const std::pair<const char *, const std::string *> values[] = { { "recorded", &t.recorded },
		{ "sampler", &t.sampler }, { "way", &t.way }, { "names", &t.names } };
	for (const auto &[key, value] : values)
		text += std::string(key) + ": " + one_line(*value) + "\n";
	return text + "\n";
}

static void add_bytes(std::string *text, std::span<const u8> bytes)
{
	static constexpr char digits[] = "0123456789ABCDEF";
	std::size_t words = 0;
	for (std::size_t i = 0, run; i < bytes.size(); i += run) {
		run = 1;
		while (i + run < bytes.size() && bytes[i + run] == bytes[i])
			run++;
		run = run < worth_folding ? 1 : run;
		*text += words && words % words_in_line == 0 ? "\n\t" : words ? " " : "";
		*text += { digits[bytes[i] >> 4], digits[bytes[i] & 15] };
		if (run > 1)
			*text += "*" + std::to_string(run);
		words++;
	}
}

std::string crossing_text(const crossing &c)
{
	if (!c.note.empty())
		return format_text("%.6f ! ", c.time) + one_line(c.note) + "\n";
	std::string text = format_text("%.6f %c %s %zu", c.time, c.sent ? '>' : '<',
		line_names[static_cast<int>(c.line)], c.bytes.size());
	if (c.asked)
		text += format_text(" of %zu", c.asked);
	text += c.failed.empty() ? ":" : " " + c.failed + ":";
	text += c.bytes.size() > words_in_line ? "\n\t" : c.bytes.empty() ? "" : " ";
	add_bytes(&text, c.bytes);
	return text + "\n";
}

// ---- Reading ----------------------------------------------------------------------------

template <typename number> static bool read_whole(std::string_view word, number *value, int base)
{
	const char *end = word.data() + word.size();
	const auto [stopped, code] = std::from_chars(word.data(), end, *value, base);
	return code == std::errc() && stopped == end && !word.empty();
}

static std::string_view take_word(std::string_view *line)
{
	const std::size_t begin = std::min(line->find_first_not_of(" \t"), line->size());
	const std::size_t end = std::min(line->find_first_of(" \t", begin), line->size());
	const std::string_view word = line->substr(begin, end - begin);
	line->remove_prefix(end);
	return word;
}

struct transcript_reader {
	transcript *t;
	int row = 0;
	std::size_t due = 0;      // bytes of the event under way that have not been read
	std::size_t received = 0; // in all
	std::string wrong = {};

	void fail(const std::string &what)
	{
		if (wrong.empty())
			wrong = format_text("Line %d of the transcript: %s", row, what.c_str());
	}
	void read_bytes(std::string_view line);
	bool read_place(crossing *c, std::string_view line);
	void read_event(std::string_view line);
	void read_head(std::string_view line);
	void end_event();
};

void transcript_reader::read_bytes(std::string_view line)
{
	std::vector<u8> &bytes = t->crossings.back().bytes;
	for (std::string_view word; !(word = take_word(&line)).empty();) {
		std::size_t times = 1;
		const std::size_t star = word.find('*');
		unsigned value = 256;
		const bool known =
			(star == word.npos || read_whole(word.substr(star + 1), &times, 10)) &&
			read_whole(word.substr(0, star), &value, 16) && value < 256;
		if (!known || times > due)
			return fail(
				known ? "there are more bytes than it says."
				      : "'" + std::string(word.substr(0, 20)) + "' is no byte.");
		bytes.insert(bytes.end(), times, static_cast<u8>(value));
		due -= times;
	}
}

// Between the direction and the colon: line, count, and what a transfer says besides.
bool transcript_reader::read_place(crossing *c, std::string_view line)
{
	const std::string_view name = take_word(&line);
	int place = 0;
	while (place < static_cast<int>(std::size(line_names)) && name != line_names[place])
		place++;
	c->line = static_cast<wire_line>(place);
	if (place == static_cast<int>(std::size(line_names)) ||
		!read_whole(take_word(&line), &due, 10) || due > longest_crossing)
		return false;
	std::string_view word = take_word(&line);
	if (word == "of") {
		if (!read_whole(take_word(&line), &c->asked, 10) || c->asked > longest_crossing)
			return false;
		word = take_word(&line);
	}
	c->failed = word;
	return take_word(&line).empty();
}

void transcript_reader::read_event(std::string_view line)
{
	crossing c;
	c.row = row;
	const std::string time(take_word(&line));
	char *stopped = nullptr;
	c.time = std::strtod(time.c_str(), &stopped);
	const std::string_view direction = take_word(&line);
	if (time.empty() || *stopped || !std::isfinite(c.time) || c.time < 0)
		return fail("it does not begin with a time.");
	if (t->crossings.size() == most_crossings)
		return fail("there are more events than can be read.");
	if (direction == "!") {
		c.note = line.substr(std::min<std::size_t>(1, line.size()));
		t->crossings.push_back(c);
		return;
	}
	c.sent = direction == ">";
	const std::size_t colon = line.find(':');
	if ((!c.sent && direction != "<") || colon == line.npos ||
		!read_place(&c, line.substr(0, colon)))
		return fail("this is no event.");
	if ((received += due) > largest_transcript)
		return fail("there is more in it than can be read.");
	t->crossings.push_back(c);
	read_bytes(line.substr(colon + 1));
}

void transcript_reader::read_head(std::string_view line)
{
	const std::pair<std::string_view, std::string *> values[] = { { "recorded: ",
									      &t->recorded },
		{ "sampler: ", &t->sampler }, { "way: ", &t->way }, { "names: ", &t->names } };
	for (const auto &[key, value] : values)
		if (line.starts_with(key))
			*value = line.substr(key.size());
}

void transcript_reader::end_event()
{
	if (due)
		fail(format_text("the event before it lacks %zu bytes. Was the file cut?", due));
}

std::string read_transcript(std::string_view text, transcript *t)
{
	*t = {};
	if (text.size() > largest_transcript)
		return "The transcript is too large to be read.";
	if (!text.starts_with("velmor-transcript "))
		return "This file is no transcript.";
	transcript_reader reader = { .t = t };
	bool head = true;
	while (!text.empty() && reader.wrong.empty()) {
		const std::size_t end = std::min(text.find('\n'), text.size());
		std::string_view line = text.substr(0, end);
		text.remove_prefix(std::min(end + 1, text.size()));
		if (line.ends_with('\r'))
			line.remove_suffix(1);
		if (++reader.row == 1 && line != first_line)
			reader.fail("this program does not know its version.");
		else if (!head && line.starts_with('\t'))
			reader.due ? reader.read_bytes(line) : reader.fail("no bytes are due.");
		else if (line.starts_with('#'))
			continue;
		else if (head)
			reader.read_head(line);
		else if (reader.end_event(); reader.wrong.empty() && !line.empty())
			reader.read_event(line);
		head = head && !line.empty();
	}
	reader.row++;
	reader.end_event();
	return reader.wrong;
}

std::string read_transcript_file(const std::string &path, transcript *t)
{
	file_info info;
	int file = -1;
	int code = host.files->stat(path.c_str(), &info);
	if (!code && info.size > largest_transcript)
		return "The transcript is too large to be read.";
	if (!code)
		code = host.files->open(path.c_str(), file_read, &file);
	std::string text;
	std::size_t moved = 0;
	if (!code) {
		text.resize(static_cast<std::size_t>(info.size));
		code = host.files->read(file, text.data(), text.size(), &moved);
		(void)host.files->close(file);
	}
	if (code) {
		const char *words = host.files->error_text(code);
		return "The transcript cannot be read: " + host.files->host_path(path.c_str()) +
		       ": " + (words ? words : "unknown error") + ".";
	}
	text.resize(moved);
	return read_transcript(text, t);
}

} // namespace velmor
