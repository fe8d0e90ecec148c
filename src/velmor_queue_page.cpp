// velmor_queue_page.cpp - the progress window: one piece of work, a queue, and its verdict
//
// The window has three faces. A single piece of work has its bar and Stop. A queue has the item
// that runs, the whole, and a list of all items with marks. When it has ended, the same list
// stays with what became of each, why the whole ended, and a button that tries the rest again;
// the other windows work meanwhile, and the next piece of work takes the window over.
//
// Knows nothing of: toolkits, models, what the work is.

#include "src/velmor_queue.h"
#include "src/velmor_window.h"
#include <algorithm>
#include <cmath>

namespace velmor
{

// ---- Faces ----------------------------------------------------------------------------------------

enum face : unsigned {
	of_one = 1,
	of_queue = 2,
	of_verdict = 4,
};

struct part_row {
	int control;
	unsigned faces;
};
static constexpr part_row parts[] = {
	{ progress_item, of_queue },
	{ progress_info, of_one | of_queue },
	{ progress_bar, of_one | of_queue },
	{ progress_time_left, of_one | of_queue },
	{ progress_rate, of_queue },
	{ progress_count, of_queue },
	{ progress_whole, of_queue },
	{ progress_whole_left, of_queue },
	{ progress_title, of_verdict },
	{ progress_reason, of_verdict },
	{ progress_counts, of_verdict },
	{ progress_list, of_queue | of_verdict },
	{ progress_note, of_queue },
	{ progress_copy, of_verdict },
	{ progress_stop_after, of_queue },
	{ progress_stop, of_one | of_queue },
	{ progress_again, of_verdict },
	{ progress_close, of_verdict },
};

static face shown_face = of_one;

// What goes is hidden first, so that the window never needs room for two faces.
static void show_face(face wanted)
{
	if (wanted == shown_face)
		return;
	shown_face = wanted;
	for (const bool visible : { false, true })
		for (const part_row &row : parts)
			if (((row.faces & wanted) != 0) == visible)
				host.ui->show(window_progress, row.control, visible);
}

void leave_verdict()
{
	show_face(of_one);
}

static void set(int control, const std::string &text)
{
	host.ui->set_text(window_progress, control, text.c_str());
}

// ---- The list of items ----------------------------------------------------------------------------

static std::string size_text(u64 bytes)
{
	if (bytes < 1000)
		return format_text(tr("%d bytes"), static_cast<int>(bytes));
	if (bytes < 1000000)
		return format_text("%.0f kB", static_cast<double>(bytes) / 1000);
	return format_text("%.1f MB", static_cast<double>(bytes) / 1000000);
}

// "1:29", "" for what took no time.
static std::string time_text(double seconds)
{
	const long whole = std::lround(seconds);
	return whole ? format_text("%ld:%02ld", whole / 60, whole % 60) : "";
}

static int percent_of(const work_item &item)
{
	return static_cast<int>(item.part * 100);
}

static std::string waits(const queue_run &run, const work_item &item)
{
	const double seconds = seconds_of(run, item);
	return seconds < 0 ? tr("waits")
			   : format_text(tr("waits, about %s"), span_text(seconds).c_str());
}

static std::string what_happened(const queue_run &run, const work_item &item, bool ended)
{
	switch (item.state) {
	case item_state::waiting:
		return ended ? tr("not tried") : waits(run, item);
	case item_state::running:
		return format_text("%d %%", percent_of(item));
	case item_state::done:
		return item.bytes ? format_text(tr("done, %s"), size_text(item.bytes).c_str())
				  : tr("done");
	case item_state::skipped:
		return item.words.empty() ? tr("skipped")
					  : format_text(tr("skipped: %s"), item.words.c_str());
	case item_state::failed:
		break;
	}
	return item.part > 0 && item.part < 1
		       ? format_text(tr("%s, at %d %%"), item.words.c_str(), percent_of(item))
		       : item.words;
}

static entry_mark mark_of(item_state state)
{
	static constexpr std::pair<item_state, entry_mark> marks[] = {
		{ item_state::waiting, entry_mark::waiting },
		{ item_state::running, entry_mark::running },
		{ item_state::done, entry_mark::done },
		{ item_state::skipped, entry_mark::skipped },
		{ item_state::failed, entry_mark::failed },
	};
	for (const auto &[which, mark] : marks)
		if (which == state)
			return mark;
	return entry_mark::none;
}

// A line break would hide what stands behind it.
static std::string one_line(std::string text)
{
	std::replace(text.begin(), text.end(), '\n', ' ');
	return text;
}

static void show_items(const queue_run &run, bool ended)
{
	std::vector<std::vector<std::string>> rows;
	std::vector<entry_mark> marks;
	for (const work_item &item : *run.items) {
		const bool running = item.state == item_state::running;
		rows.push_back({ item.name, one_line(what_happened(run, item, ended)),
			time_text(
				running ? host.clock->counter() - run.item_began : item.seconds) });
		marks.push_back(mark_of(item.state));
	}
	host.ui->set_rows(window_progress, progress_list, rows);
	host.ui->set_marks(window_progress, progress_list, marks);
}

// ---- While it runs --------------------------------------------------------------------------------

static double shown_at; // counter: when the list was filled

static void begin_view(queue_run *run)
{
	shown_at = -1;
	show_face(of_queue);
	host.ui->set_reason(window_progress, progress_stop_after, nullptr);
	set(progress_item, (*run->items)[run->at].name);
	set(progress_note, tr(run->work->kept));
	host.ui->progress_show(format_text("%s...", tr(run->work->title)).c_str(), 100);
}

static void show_whole(const queue_run &run)
{
	const work_queue &items = *run.items;
	const int all = static_cast<int>(items.size()) - count_of(items, item_state::skipped);
	const int done = count_of(items, item_state::done);
	const double rate = rate_of(run), left = seconds_left(run);
	double parts_done = 0;
	for (const work_item &item : items)
		if (item.state != item_state::skipped)
			parts_done += item.state == item_state::failed ? 1 : item.part;
	set(progress_item, items[run.at].name);
	set(progress_count, format_text(tr(run.work->count), done, all));
	constexpr double least_shown = 50; // bytes a second
	set(progress_rate, rate > least_shown ? format_text(tr("%.1f kB/s"), rate / 1000) : "");
	set(progress_whole_left,
		left < 0 ? "" : format_text(tr("about %s left for all"), span_text(left).c_str()));
	host.ui->set_bar(window_progress, progress_whole, static_cast<int>(parts_done * 1000),
		std::max(1, all) * 1000);
}

// A list that is filled at every block would cost more than the transfer.
static void change_view(const queue_run &run)
{
	constexpr double often_enough = 0.1; // seconds
	static std::size_t at;
	static item_state state;
	const item_state now = (*run.items)[run.at].state;
	const double counter = host.clock->counter();
	if (at == run.at && state == now && shown_at >= 0 && counter - shown_at < often_enough)
		return;
	at = run.at;
	state = now;
	shown_at = counter;
	show_whole(run);
	show_items(run, false);
}

// ---- The verdict ----------------------------------------------------------------------------------

static shown_queue last_queue;
static std::string last_verdict; // as text
static bool begun;               // since it was last asked

// What is done is not tried again, nor what the user wanted to keep.
static bool is_open(const work_item &item)
{
	return item.state == item_state::failed || item.state == item_state::waiting;
}

static int count_open(const work_queue &items)
{
	return static_cast<int>(std::count_if(items.begin(), items.end(), is_open));
}

// "4 done · 1 skipped · 1 failed · 2 not tried"
static std::string counts_text(const work_queue &items)
{
	const std::pair<item_state, const char *> counted[] = {
		{ item_state::done, tr("%d done") },
		{ item_state::skipped, tr("%d skipped") },
		{ item_state::failed, tr("%d failed") },
		{ item_state::waiting, tr("%d not tried") },
	};
	std::string text;
	for (const auto &[state, words] : counted)
		if (const int count = count_of(items, state))
			text += (text.empty() ? "" : " · ") + format_text(words, count);
	return text;
}

static std::string text_of(const queue_run &run, const std::string &title, const std::string &why)
{
	std::string text = title + "\n" + (why.empty() ? "" : why + "\n");
	text += counts_text(*run.items) + "\n\n";
	for (const work_item &item : *run.items)
		text += item.name + "\t" + one_line(what_happened(run, item, true)) +
			(time_text(item.seconds).empty() ? "" : "\t" + time_text(item.seconds)) +
			"\n";
	return text;
}

static std::string without_stop(std::string sentence)
{
	if (sentence.ends_with('.'))
		sentence.pop_back();
	return sentence;
}

static std::string again_caption(const work_queue &items)
{
	return count_of(items, item_state::waiting)
		       ? format_text(tr("Try the other %d again"), count_open(items))
		       : tr("Try the failed again");
}

static void end_view(const queue_run &run, const outcome &result)
{
	begun = true;
	const std::string title = without_stop(result.line), why = why_ended(run);
	last_verdict = text_of(run, title, why);
	const bool all_done = !count_open(*run.items);
	set(0, tr(run.work->title));
	set(progress_title, title);
	host.ui->set_role(window_progress, progress_title,
		all_done && result.done() ? text_role::good : text_role::careful);
	set(progress_reason, why);
	set(progress_counts, counts_text(*run.items));
	set(progress_again, again_caption(*run.items));
	show_items(run, true);
}

std::string verdict_text()
{
	return last_verdict;
}

static constexpr queue_view window_view = { begin_view, change_view, end_view };

static void run_last_queue()
{
	begun = false;
	outcome result = last_queue.run(&last_queue.items, &window_view);
	const bool all_done = !count_open(last_queue.items);
	if (begun)
		hide_progressbar(0);
	if (close_requested())
		return;
	if (!last_queue.told && begun) {
		result.words.clear();
		result.told.clear();
	}
	if (!begun) {
		show_outcome(result);
		return;
	}
	last_queue.after(&result, last_queue.items);
	if (close_requested() || (last_queue.told && all_done))
		return;
	show_face(of_verdict);
	host.ui->show(window_progress, progress_again, !all_done);
	host.ui->show(window_progress, 0, true);
	host.ui->focus(window_progress, all_done ? progress_close : progress_again);
}

void show_queue(const shown_queue &queue)
{
	last_queue = queue;
	run_last_queue();
}

// ---- Commands -------------------------------------------------------------------------------------

// A transfer that failed leaves its bar on screen, and a queue its verdict; then there is nothing
// to stop, and the button puts the window away.
static void stop_work()
{
	if (command_running() && shown_face != of_verdict)
		stop_progress();
	else
		hide_progressbar(0);
}

static void stop_after_this_one()
{
	if (!running_queue)
		return;
	running_queue->stop_after = true;
	host.ui->set_reason(
		window_progress, progress_stop_after, tr("The work ends after this one."));
}

static void try_again()
{
	for (work_item &item : last_queue.items)
		if (is_open(item))
			item = { .name = item.name, .path = item.path, .bytes = item.bytes };
	run_last_queue();
}

// The window has put it on the clipboard.
static void tell_copied()
{
	say_line(tr("The list was copied as text."), text_role::good);
}

// clang-format off
static constexpr caption_row progress_captions[] = {
	{ window_progress, 0,                   "Progress", nullptr, nullptr },
	{ window_progress, progress_item,       own("Item"), nullptr, nullptr },
	{ window_progress, progress_count,      own("Items"), nullptr, nullptr },
	{ window_progress, progress_rate,       own("Rate"), nullptr, nullptr },
	{ window_progress, progress_whole,      own("The whole"), nullptr, nullptr },
	{ window_progress, progress_whole_left, own("Time left for all"), nullptr, nullptr },
	{ window_progress, progress_title,      own("Verdict"), nullptr, nullptr },
	{ window_progress, progress_reason,     own("Reason"), nullptr, nullptr },
	{ window_progress, progress_counts,     own("Counts"), nullptr, nullptr },
	{ window_progress, progress_note,       own("What Stop leaves"), nullptr, nullptr },
	{ window_progress, progress_list,       own("Items of the work"), own("What became of each"), nullptr },
	{ window_progress, progress_stop,       "Stop", own("End this work at the next point where the sampler stays usable"), nullptr },
	{ window_progress, progress_stop_after, own("Stop after this one"), own("Let this one come to its end, and begin no other"), nullptr },
	{ window_progress, progress_copy,       own("Copy as text"), own("Put the verdict and its list on the clipboard"), nullptr },
	{ window_progress, progress_again,      own("Try the failed again"), own("The same work once more, on those that were not done"), nullptr },
	{ window_progress, progress_close,      own("Close"), nullptr, nullptr },
};
static constexpr command_row progress_commands[] = {
	{ window_progress, progress_stop,       stop_work,           always },
	{ window_progress, progress_stop_after, stop_after_this_one, always },
	{ window_progress, progress_copy,       tell_copied,         alone  },
	{ window_progress, progress_again,      try_again,           alone  },
	{ window_progress, progress_close,      stop_work,           always },
	{ window_progress, control_cancel,      stop_work,           always },
};
// clang-format on

constinit const window_rows progress_rows = { progress_captions, progress_commands };

} // namespace velmor
