// velmor_log.cpp - the running log, boxes, and bytes as text
//
// Talks to the log control of the main window and to velmor.log in the current
// directory. The file is opened and closed for each text, so that a crash loses
// nothing; the control holds about 10000 characters and lets go of five lines at
// a time. There is no wall-clock time in either: stamps are seconds since start-up.
//
// Knows nothing of: what the texts are about.

#include "src/velmor_log.h"
#include "src/controls.h"
#include "src/velmor_record.h"
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <locale.h>
#include <mutex>
#include <thread>

namespace velmor
{

run_mode current_run_mode = { .diagnostics = true, .multis = true };
double start_time = 0;

static constexpr std::size_t screen_log_size = 10000; // characters
static constexpr int lines_dropped = 5;

// Numbers of the program's words have a full stop, whatever the desktop writes: while one lives,
// this thread formats as in C.
class plain_numbers
{
public:
	plain_numbers() : before(uselocale(plain())) {}
	~plain_numbers() { uselocale(before); }
	plain_numbers(const plain_numbers &) = delete;

private:
	static locale_t plain()
	{
		static const locale_t c = newlocale(LC_ALL_MASK, "C", nullptr);
		return c;
	}
	locale_t before;
};

static std::string format_list(const char *format, va_list list)
{
	const plain_numbers plain;
	char most[512]; // holds nearly every text
	va_list again;
	va_copy(again, list);
	const int length = std::vsnprintf(most, sizeof most, format, again);
	va_end(again);
	if (length <= 0)
		return {};
	if (static_cast<std::size_t>(length) < sizeof most)
		return std::string(most, static_cast<std::size_t>(length));
	std::string text(static_cast<std::size_t>(length), '\0');
	std::vsnprintf(text.data(), text.size() + 1, format, list);
	return text;
}

std::string format_text(const char *format, ...)
{
	va_list list;
	va_start(list, format);
	std::string text = format_list(format, list);
	va_end(list);
	return text;
}

static bool dropped(const char *text)
{
	return !current_run_mode.diagnostics && std::strncmp(text, "[D]", 3) == 0;
}

static int kept_file = -1;         // open while texts come in numbers
static log_batch *batch = nullptr; // the outermost

static void append_to_file(const std::string &line)
{
	int file = kept_file;
	if (file < 0 && host.files->open("velmor.log", file_append, &file) != 0)
		return;
	// A log that cannot be written must not stop what it tells about.
	(void)host.files->write(file, line.data(), line.size());
	if (batch)
		kept_file = file;
	else
		(void)host.files->close(file);
}

// Let go of the oldest lines of a full screen log, as far as it has any.
static void drop_oldest_lines(std::string *present)
{
	std::size_t start = 0;
	for (int i = 0; i < lines_dropped; i++) {
		const std::size_t feed = present->find('\n', start);
		if (feed == present->npos)
			break;
		start = feed + 1;
	}
	present->erase(0, start);
}

static void append_to_present(std::string *present, const std::string &line, std::size_t length)
{
	if (present->size() + length + 1 > screen_log_size)
		drop_oldest_lines(present);
	*present += line;
}

static void append_to_screen(const std::string &stamp, const char *text)
{
	if (!host.ui->exists(window_main, 0) || !host.ui->exists(window_main, main_log))
		return;
	const std::size_t length = std::strlen(text);
	if (batch) {
		append_to_present(&batch->screen, stamp + text, length);
		return;
	}
	std::string present = host.ui->get_text(window_main, main_log);
	append_to_present(&present, stamp + text, length);
	host.ui->set_text(window_main, main_log, present.c_str());
}

log_batch::log_batch()
{
	if (batch)
		return;
	batch = this;
	if (host.ui->exists(window_main, 0) && host.ui->exists(window_main, main_log))
		screen = before = host.ui->get_text(window_main, main_log);
}

log_batch::~log_batch()
{
	if (batch != this)
		return;
	batch = nullptr;
	if (kept_file >= 0)
		(void)host.files->close(kept_file);
	kept_file = -1;
	if (screen != before)
		host.ui->set_text(window_main, main_log, screen.c_str());
}

static void write_text(const char *file, int line, double elapsed, const char *text)
{
	if (!current_run_mode.diagnostics) {
		append_to_screen(format_text("%.04f: ", elapsed), text);
		return;
	}
	const std::string stamp = format_text("%.04f [%s:%d]: ", elapsed, file, line);
	append_to_file(stamp + text);
	append_to_screen(stamp, text);
}

// ---- Other threads ----------------------------------------------------------------------

struct waiting_text {
	const char *file;
	int line;
	double elapsed;
	std::string text;
};

static const std::thread::id main_thread = std::this_thread::get_id();
static std::mutex waiting_lock;
static std::vector<waiting_text> waiting; // texts of other threads, in their order

static void log_waiting()
{
	std::vector<waiting_text> texts;
	{
		const std::lock_guard hold(waiting_lock);
		texts.swap(waiting);
	}
	for (const waiting_text &it : texts)
		write_text(it.file, it.line, it.elapsed, it.text.c_str());
}

static void leave_for_main_thread(waiting_text &&text)
{
	bool first;
	{
		const std::lock_guard hold(waiting_lock);
		first = waiting.empty();
		waiting.push_back(std::move(text));
	}
	if (first)
		host.ui->post(log_waiting);
}

// ---- Work that repeats itself -----------------------------------------------------------

static log_rounds *this_round = nullptr;

log_round::log_round(log_rounds *rounds) : outer(this_round)
{
	this_round = rounds;
}

log_round::~log_round()
{
	if (this_round) {
		this_round->before.swap(this_round->now);
		this_round->now.clear();
	}
	this_round = outer;
}

// Remember it, and tell whether the round before had it.
static bool said_before(const char *text)
{
	if (!this_round || std::strncmp(text, "[D]", 3) == 0)
		return false;
	this_round->now.insert(text);
	return this_round->before.contains(text);
}

// ---- One text ---------------------------------------------------------------------------

void _add_scroll_string(const char *file, int line, const char *text)
{
	if (dropped(text))
		return;
	const double elapsed = host.clock->time_of_day() - start_time;
	if (std::this_thread::get_id() != main_thread) {
		leave_for_main_thread({ file, line, elapsed, text });
		return;
	}
	log_waiting();
	if (said_before(text))
		return;
	write_text(file, line, elapsed, text);
}

void add_log_format(const char *file, int line, const char *format, ...)
{
	if (dropped(format))
		return;
	va_list list;
	va_start(list, format);
	const std::string text = format_list(format, list);
	va_end(list);
	_add_scroll_string(file, line, text.c_str());
}

// ---- Boxes ------------------------------------------------------------------------------

static box_keeper *innermost_keeper = nullptr;

box_keeper::box_keeper() : outer(innermost_keeper)
{
	innermost_keeper = this;
}

// What nobody took is shown after all, also when the process is about to end.
box_keeper::~box_keeper()
{
	innermost_keeper = outer;
	show();
}

void box_keeper::show()
{
	for (const kept_box &box : boxes)
		host.ui->message(box.text.c_str(), box.caption.c_str());
	boxes.clear();
}

std::vector<kept_box> box_keeper::take()
{
	std::vector<kept_box> taken;
	for (const kept_box &box : boxes)
		if (std::none_of(taken.begin(), taken.end(),
			    [&](const kept_box &earlier) { return earlier.text == box.text; }))
			taken.push_back(box);
	boxes.clear();
	return taken;
}

void end_program(int status)
{
	for (box_keeper *keeper = innermost_keeper; keeper; keeper = keeper->enclosing())
		keeper->show();
	log_waiting();
	if (recording())
		(void)stop_recording();
	host.ui->exit_process(status);
}

static void show_message(const std::string &text, const char *caption)
{
	if (innermost_keeper)
		innermost_keeper->boxes.push_back({ caption, text });
	else
		host.ui->message(text.c_str(), caption);
}

void show_box(const char *caption, const char *format, ...)
{
	va_list list;
	va_start(list, format);
	const std::string text = format_list(format, list);
	va_end(list);
	show_message(text, caption);
}

bool ask_box(const char *caption, const char *format, ...)
{
	va_list list;
	va_start(list, format);
	const std::string text = format_list(format, list);
	va_end(list);
	return host.ui->ask(text.c_str(), caption);
}

void display_error_text(const char *file, int line, const char *words)
{
	const std::string caption = format_text("ERROR (%s:%d)", file, line);
	if (!words) {
		std::printf("[%s] FATAL: Could not create ERROR-Text-Message\n", caption.c_str());
		return;
	}
	show_message(words, caption.c_str());
}

void _display_error(const char *file, int line, int code)
{
	display_error_text(file, line, host.files->error_text(code));
}

const char *_get_error(const char *file, int line, int code)
{
	static char text[512];
	const char *words = host.files->error_text(code);
	if (words)
		std::snprintf(text, sizeof text, "(%s:%d) [%s]", file, line, words);
	else
		std::snprintf(
			text, sizeof text, "(%s:%d) Unknown error-code [%d]", file, line, code);
	return text;
}

void hexdump(const u8 *data, int len, char *out)
{
	static constexpr char digits[] = "0123456789ABCDEF";
	for (int i = 0; i < len; i++) {
		if (i)
			*out++ = ' ';
		*out++ = digits[data[i] >> 4];
		*out++ = digits[data[i] & 0x0F];
	}
	*out = '\0';
}

std::string hex_text(std::span<const u8> bytes)
{
	std::string text(bytes.size() * 3 + 1, '\0');
	hexdump(bytes.data(), static_cast<int>(bytes.size()), text.data());
	text.resize(bytes.empty() ? 0 : bytes.size() * 3 - 1);
	return text;
}

} // namespace velmor
