// ui_headless.cpp - a program without windows
//
// Boxes and questions go to standard error, the log to standard output. Controls
// are places that remember what was put there, so that the system reads back what
// it wrote. Only places that hold something exist, and the main log.

#include "platform/headless/headless.h"
#include "platform/ui.h"
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace velmor
{

bool headless_answers = true;
headless_place headless_log = { 101, 9900 };

struct headless_control {
	std::string text;
	std::vector<std::string> items;
	int selected = -1;
	std::vector<int> chosen; // of a list that takes several
	bool checked = false;
	std::vector<form_row> rows;
};
static std::map<std::pair<int, int>, headless_control> controls;

static std::mutex wake_lock;
static std::condition_variable woken;
static bool wake_pending = false;
static std::vector<void (*)()> posted;

// What text has more than the present one, which may have lost its oldest lines in it.
static std::string_view appended(std::string_view present, std::string_view text)
{
	while (!text.starts_with(present)) {
		const std::size_t feed = present.find('\n');
		if (feed == present.npos)
			return text;
		present.remove_prefix(feed + 1);
	}
	return text.substr(present.size());
}

static void set_text(int window, int control, const char *text)
{
	headless_control &place = controls[{ window, control }];
	if (window == headless_log.window && control == headless_log.control) {
		for (const char c : appended(place.text, text))
			if (c != '\r')
				std::putchar(c);
		std::fflush(stdout);
	}
	place.text = text;
}

static void set_list(int window, int control, std::span<const std::string> items)
{
	headless_control &place = controls[{ window, control }];
	place.items.assign(items.begin(), items.end());
	place.selected = -1;
	place.chosen.clear();
}

static bool in_list(const headless_control &place, int index)
{
	return index >= 0 && static_cast<std::size_t>(index) < place.items.size();
}

static void select_several(int window, int control, std::span<const int> places)
{
	headless_control &place = controls[{ window, control }];
	place.chosen.assign(places.begin(), places.end());
	std::erase_if(place.chosen, [&](int index) { return !in_list(place, index); });
	std::sort(place.chosen.begin(), place.chosen.end());
	place.selected = place.chosen.empty() ? -1 : place.chosen.front();
}

static void select_item(int window, int control, int index)
{
	select_several(window, control, { &index, 1 });
}

static bool exists(int window, int control)
{
	const bool log =
		window == headless_log.window && (control == 0 || control == headless_log.control);
	return log || controls.contains({ window, control });
}

static void set_rows(int window, int control, std::span<const std::vector<std::string>> rows)
{
	std::vector<std::string> names;
	for (const std::vector<std::string> &row : rows)
		names.push_back(row.empty() ? "" : row.front());
	set_list(window, control, names);
}

// The row of a form, or null.
static form_row *find_row(int window, int form, int row)
{
	if (!exists(window, form))
		return nullptr;
	std::vector<form_row> &rows = controls[{ window, form }].rows;
	return row >= 0 && static_cast<std::size_t>(row) < rows.size()
		       ? &rows[static_cast<std::size_t>(row)]
		       : nullptr;
}

static void message(const char *text, const char *caption)
{
	std::fprintf(stderr, "%s: %s\n", caption ? caption : "", text ? text : "");
}

static bool ask(const char *text, const char *caption)
{
	std::fprintf(stderr, "%s: %s [%s]\n", caption ? caption : "", text ? text : "",
		headless_answers ? "OK" : "Cancel");
	return headless_answers;
}

static void progress_set(int, const char *info, const char *time_left)
{
	if (isatty(STDERR_FILENO))
		std::fprintf(stderr, "\r%s %s\033[K", info ? info : "", time_left ? time_left : "");
}

// ---- Timers -----------------------------------------------------------------------------------

// They tick inside a pump. One whose tick pumps itself is not entered again.
using steady = std::chrono::steady_clock;
struct running_timer {
	std::chrono::milliseconds every;
	void (*tick)();
	steady::time_point due;
	bool inside = false;
};
static std::map<int, running_timer> timers;
static int last_timer = 0;

static int start_timer(int milliseconds, void (*tick)())
{
	const std::chrono::milliseconds every(std::max(milliseconds, 1));
	timers[++last_timer] = { every, tick, steady::now() + every };
	return last_timer;
}

static steady::time_point first_due(steady::time_point latest)
{
	for (const auto &[id, timer] : timers)
		if (!timer.inside)
			latest = std::min(latest, timer.due);
	return latest;
}

// A tick may stop any timer, its own too. What was missed is not made up for.
static void tick_due_timers()
{
	std::vector<int> due;
	for (const auto &[id, timer] : timers)
		if (!timer.inside && timer.due <= steady::now())
			due.push_back(id);
	for (const int id : due) {
		const auto found = timers.find(id);
		if (found == timers.end())
			continue;
		running_timer &timer = found->second;
		timer.due = std::max(timer.due + timer.every, steady::now());
		timer.inside = true;
		timer.tick();
		if (const auto left = timers.find(id); left != timers.end())
			left->second.inside = false;
	}
}

static void pump(int max_ms)
{
	std::vector<void (*)()> works;
	{
		std::unique_lock hold(wake_lock);
		woken.wait_until(hold, first_due(steady::now() + std::chrono::milliseconds(max_ms)),
			[] { return wake_pending; });
		wake_pending = false;
		works.swap(posted);
	}
	for (void (*work)() : works)
		work();
	tick_due_timers();
}

static void wake()
{
	const std::lock_guard hold(wake_lock);
	wake_pending = true;
	woken.notify_all();
}

static void post(void (*work)())
{
	const std::lock_guard hold(wake_lock);
	posted.push_back(work);
	wake_pending = true;
	woken.notify_all();
}

extern const ui_service headless_ui;
const ui_service headless_ui = {
	.set_text = set_text,
	.get_text =
		[](int w, int c) {
			return exists(w, c) ? controls[{ w, c }].text : "";
		},
	.set_list = set_list,
	.select = select_item,
	.selection =
		[](int w, int c) {
			return exists(w, c) ? controls[{ w, c }].selected : -1;
		},
	.set_checked =
		[](int w, int c, bool on) {
			controls[{ w, c }].checked = on;
		},
	.checked =
		[](int w, int c) {
			return exists(w, c) && controls[{ w, c }].checked;
		},
	.show = [](int, int, bool) {},
	.enable = [](int, int, bool) {},
	.exists = exists,
	.set_rows = set_rows,
	.set_list_state = [](int, int, list_state, const char *) {},
	.selections =
		[](int w, int c) {
			return exists(w, c) ? controls[{ w, c }].chosen : std::vector<int>();
		},
	.select_several = select_several,
	.set_marks = [](int, int, std::span<const entry_mark>) {},
	.set_bar = [](int, int, int, int) {},
	.set_role = [](int, int, text_role) {},
	.set_reason = [](int, int, const char *) {},
	.focus = [](int, int) {},
	.set_bitmap = [](int, int, const bitmap_view *) {},
	.set_waveform = [](int, int, const waveform_view *) {},
	.set_key_map = [](int, int, const key_map_view *) {},
	.set_envelope = [](int, int, const envelope_view *) {},
	.build_form =
		[](int w, int c, std::span<const form_row> rows) {
			controls[{ w, c }].rows.assign(rows.begin(), rows.end());
		},
	.set_row_value =
		[](int w, int c, int row, int value) {
			if (form_row *found = find_row(w, c, row))
				found->value = value;
		},
	.row_value =
		[](int w, int c, int row) {
			const form_row *found = find_row(w, c, row);
			return found ? found->value : 0;
		},
	.set_row_text =
		[](int w, int c, int row, const char *text) {
			if (form_row *found = find_row(w, c, row))
				found->text = text;
		},
	.row_text =
		[](int w, int c, int row) {
			const form_row *found = find_row(w, c, row);
			return found ? found->text : std::string();
		},
	.set_row_changed =
		[](int w, int c, int row, bool changed) {
			if (form_row *found = find_row(w, c, row))
				found->changed = changed;
		},
	.build_panel = [](int, const panel_view *) {},
	.copy_bitmap = [](const bitmap_view *, int) {},
	.save_bitmap = [](const char *, const bitmap_view *, int) { return false; },
	.set_track_count = [](int, int, int) {},
	.set_track = [](int, int, int, const track_view *) {},
	.set_strip = [](int, int, int, const strip_view *) {},
	.set_play_position = [](int, int, std::int64_t, int) {},
	.message = message,
	.ask = ask,
	// Nobody is there to choose.
	.choose_files = [](const char *, const char *) { return std::vector<std::string>(); },
	.choose_folder = [](const char *) { return std::string(); },
	.choose_new_file = [](const char *, const char *, const char *) { return std::string(); },
	.progress_show = [](const char *, int) {},
	.progress_set = progress_set,
	.progress_hide =
		[] {
			if (isatty(STDERR_FILENO))
				std::fputs("\r\033[K", stderr);
		},
	.start_timer = start_timer,
	.stop_timer = [](int timer) { timers.erase(timer); },
	.pump = pump,
	.wake = wake,
	.post = post,
	.exit_process =
		[](int status) {
			std::fflush(nullptr);
			std::exit(status);
		},
};

} // namespace velmor
