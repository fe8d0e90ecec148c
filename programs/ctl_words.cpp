// ctl_words.cpp - what velmorctl tells: results, words, and a bar
//
// Names come from samplers and files and may hold any byte. On a terminal none of them may move
// the cursor, and a line of JSON is UTF-8 whatever they hold.

#include "programs/ctl.h"
#include <cstring>

namespace velmor
{

static struct {
	ctl_streams streams = { stdout, stderr };
	bool json = false;
	bool bar_shown = false;
} words_state;

void ctl_begin_words(const ctl_streams &streams, bool json)
{
	words_state = { streams, json, false };
}

// ---- JSON -------------------------------------------------------------------------------------

// Bytes of the character at a place: 1 to 4, or 0 where they are not UTF-8.
static std::size_t character_at(std::string_view text, std::size_t at)
{
	const u8 first = static_cast<u8>(text[at]);
	const std::size_t size = first < 0x80   ? 1
				 : first < 0xC2 ? 0
				 : first < 0xE0 ? 2
				 : first < 0xF0 ? 3
				 : first < 0xF5 ? 4
						: 0;
	if (!size || at + size > text.size())
		return 0;
	for (std::size_t i = 1; i < size; i++)
		if ((static_cast<u8>(text[at + i]) & 0xC0) != 0x80)
			return 0;
	const u8 second = size > 1 ? static_cast<u8>(text[at + 1]) : u8{ 0 };
	const bool too_long = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
	const bool no_letter = (first == 0xED && second > 0x9F) || (first == 0xF4 && second > 0x8F);
	return too_long || no_letter ? 0 : size;
}

// In quotation marks. A byte that is no text stands for the character of its number.
static std::string json_text(std::string_view text)
{
	std::string out = "\"";
	for (std::size_t at = 0; at < text.size();) {
		const u8 byte = static_cast<u8>(text[at]);
		const std::size_t size = character_at(text, at);
		if (byte == '\n')
			out += "\\n";
		else if (!size || byte < 0x20 || byte == 0x7F)
			out += format_text("\\u%04x", byte);
		else if (byte == '"' || byte == '\\')
			out += std::string("\\") + text[at];
		else
			out += text.substr(at, size);
		at += size ? size : 1;
	}
	return out + "\"";
}

void ctl_object::begin(const char *key)
{
	members += (members.empty() ? "" : ",") + json_text(key) + ":";
}

ctl_object &ctl_object::text(const char *key, std::string_view value)
{
	begin(key);
	members += json_text(value);
	return *this;
}

ctl_object &ctl_object::number(const char *key, double value)
{
	begin(key);
	members += format_text("%.10g", value);
	return *this;
}

ctl_object &ctl_object::texts(const char *key, std::span<const std::string> values)
{
	begin(key);
	std::string list;
	for (const std::string &value : values)
		list += (list.empty() ? "" : ",") + json_text(value);
	members += "[" + list + "]";
	return *this;
}

// ---- Lines --------------------------------------------------------------------------------------

static std::string without_controls(std::string text)
{
	for (char &c : text)
		if ((static_cast<u8>(c) < 0x20 && c != '\n' && c != '\t') || c == 0x7F)
			c = '?';
	return text;
}

static void put_line(std::FILE *stream, const std::string &line)
{
	std::fprintf(stream, "%s\n", line.c_str());
	std::fflush(stream);
}

void ctl_print(const ctl_object &object, const std::string &plain)
{
	if (!words_state.json && plain.empty())
		return;
	ctl_hide_bar();
	put_line(words_state.streams.results,
		words_state.json ? object.line() : without_controls(plain));
}

void ctl_say(const std::string &words)
{
	ctl_hide_bar();
	std::string text = words;
	std::erase(text, '\r');
	while (text.ends_with('\n'))
		text.pop_back();
	if (!text.empty())
		put_line(words_state.streams.words, without_controls(text));
}

void ctl_show_bar(const std::string &words)
{
	if (!words_state.streams.terminal)
		return;
	std::fprintf(words_state.streams.words, "\r%s\033[K", without_controls(words).c_str());
	std::fflush(words_state.streams.words);
	words_state.bar_shown = true;
}

void ctl_hide_bar()
{
	if (words_state.bar_shown)
		std::fputs("\r\033[K", words_state.streams.words);
	words_state.bar_shown = false;
}

// ---- Outcomes -----------------------------------------------------------------------------------

struct ending_row {
	ending how;
	const char *name; // in JSON
	ctl_exit status;
};
static constexpr ending_row endings[] = {
	{ ending::done, "done", exit_done },
	{ ending::refused, "refused", exit_refused },
	{ ending::no_answer, "no answer", exit_no_answer },
	{ ending::stopped, "stopped", exit_stopped },
	{ ending::local_failed, "local failure", exit_local },
};

static const ending_row &row_of(const outcome &result)
{
	for (const ending_row &row : endings)
		if (row.how == result.how)
			return row;
	return endings[1];
}

// Work that nobody interrupted was stopped by a no to its question.
int ctl_status(const outcome &result)
{
	const bool said_no = result.how == ending::stopped && !progress_stopped();
	return said_no ? exit_refused : row_of(result).status;
}

// All words of an outcome, without a name for boxes that say the same.
static std::string words_of(const outcome &result)
{
	std::string all;
	const auto add = [&all](const std::string &text) {
		if (!text.empty() && all.find(text) == all.npos)
			all += (all.empty() ? "" : "\n") + text;
	};
	for (const kept_box &box : result.told)
		add(box.text);
	add(result.words);
	if (all.empty() || (!result.done() && result.words.empty()))
		add(result.line);
	if (all.empty() && result.how == ending::stopped)
		all = "Stopped.";
	return all;
}

int ctl_tell(const std::string &name, const outcome &result, ctl_object object)
{
	const std::string words = words_of(result);
	if (words_state.json) {
		if (!name.empty())
			object.text("name", name);
		object.text("ended", row_of(result).name);
		if (!words.empty())
			object.text("words", words);
		ctl_print(object, "");
	}
	ctl_say(words);
	return ctl_status(result);
}

int ctl_usage(const std::string &words)
{
	ctl_say("velmorctl: " + words + "\nTry 'velmorctl --help'.");
	return exit_usage;
}

int ctl_each(const std::vector<std::string> &names,
	const std::function<outcome(const std::string &)> &work)
{
	int status = exit_done;
	for (const std::string &name : names) {
		const outcome result = work(name);
		const int one = ctl_tell(name, result);
		status = status ? status : one;
		if (one == exit_no_answer || one == exit_stopped)
			return one;
	}
	return status;
}

} // namespace velmor
