// velmor_queue.cpp - the same work on many things, one after the other, with one verdict
//
// Knows nothing of: models, windows, what the work is.

#include "src/velmor_queue.h"
#include "src/velmor_work.h"
#include <algorithm>
#include <cmath>
#include <utility>

namespace velmor
{

queue_run *running_queue;

int count_of(const work_queue &queue, item_state state)
{
	return static_cast<int>(std::count_if(queue.begin(), queue.end(),
		[&](const work_item &item) { return item.state == state; }));
}

// ---- The verdict ----------------------------------------------------------------------------------

static std::string reason_of(const outcome &one)
{
	if (one.how == ending::stopped)
		return tr("stopped");
	if (one.how == ending::no_answer)
		return tr("no answer");
	if (!one.told.empty())
		return one.told.back().text;
	return one.words.empty() ? tr("the sampler did not send it") : one.words;
}

// "A, B and 7 more", of the items of that state.
static std::string names_of(const work_queue &queue, item_state state)
{
	constexpr int shown = 10;
	const int count = count_of(queue, state);
	std::string text;
	int named = 0;
	for (const work_item &item : queue) {
		if (item.state != state || named == shown)
			continue;
		text += (named++ ? ", " : "") + item.name;
		if (!item.words.empty())
			text += " (" + item.words + ")";
	}
	return count > shown ? text + format_text(tr(" and %d more"), count - shown) : text;
}

// What was done and what was not, told once.
static outcome verdict_of(const queue_run &run)
{
	const work_queue &queue = *run.items;
	const queue_work &work = *run.work;
	const int done = count_of(queue, item_state::done);
	const int all = static_cast<int>(queue.size()) - count_of(queue, item_state::skipped);
	outcome verdict = { .how = run.last.how,
		.words = format_text(tr(work.verdict), done, all) };
	verdict.line = format_text(tr(work.line), done, all);
	if (done < all && run.last.how == ending::done)
		verdict.how = ending::refused;
	if (done < all && run.last.how != ending::stopped)
		verdict.caption = "WARNING";
	if (run.last.how == ending::no_answer)
		verdict.words += "\n" + silence_words(loaded_reached());
	if (!run.trouble.empty())
		verdict.words += "\n" + run.trouble;
	const std::pair<item_state, const char *> lines[] = { { item_state::failed, work.not_done },
		{ item_state::waiting, work.not_tried } };
	for (const auto &line : lines)
		if (count_of(queue, line.first))
			verdict.words +=
				std::string("\n") + tr(line.second) + names_of(queue, line.first);
	return verdict;
}

std::string why_ended(const queue_run &run)
{
	const std::string &name = (*run.items)[run.at].name;
	const int waiting = count_of(*run.items, item_state::waiting);
	if (run.last.how == ending::no_answer)
		return format_text(tr("The sampler stopped answering at %s, in the middle of "
				      "'%s'."),
			       clock_text(the_line.failed_at).c_str(), name.c_str()) +
		       "\n" + silence_words(loaded_reached());
	if (run.last.how == ending::stopped)
		return (*run.items)[run.at].state == item_state::failed
			       ? format_text(
					 tr("You stopped it in the middle of '%s'."), name.c_str())
			       : format_text(tr("You stopped it after '%s'."), name.c_str());
	return run.repeated && waiting
		       ? tr("The same trouble came twice in a row, so the rest was not tried.")
		       : run.trouble;
}

// ---- Time -----------------------------------------------------------------------------------------

static double seconds_in(const queue_run &run, const work_item &item)
{
	return item.state == item_state::running ? host.clock->counter() - run.item_began
						 : item.seconds;
}

double rate_of(const queue_run &run)
{
	constexpr double shortest = 1; // seconds that say something
	double bytes = 0, seconds = 0;
	for (const work_item &item : *run.items) {
		if (!item.bytes || item.part <= 0)
			continue;
		bytes += static_cast<double>(item.bytes) * item.part;
		seconds += seconds_in(run, item);
	}
	return seconds < shortest ? 0 : bytes / seconds;
}

double seconds_of(const queue_run &run, const work_item &item)
{
	if (const double rate = rate_of(run); rate > 0 && item.bytes)
		return static_cast<double>(item.bytes) / rate;
	// As long as the others, if nothing is known of how large it is.
	double seconds = 0;
	int counted = 0;
	for (const work_item &other : *run.items)
		if (other.state == item_state::done) {
			seconds += other.seconds;
			counted++;
		}
	return counted ? seconds / counted : -1;
}

double seconds_left(const queue_run &run)
{
	double left = 0;
	for (const work_item &item : *run.items) {
		const bool running = item.state == item_state::running;
		if (item.state != item_state::waiting && !running)
			continue;
		const double so_far = running ? seconds_in(run, item) : 0;
		const double whole =
			running && item.part > 0 ? so_far / item.part : seconds_of(run, item);
		if (whole < 0)
			return -1;
		left += std::max(0.0, whole - so_far);
	}
	return left;
}

std::string span_text(double seconds)
{
	const long whole = static_cast<long>(std::ceil(std::min(seconds, 1e6)));
	if (whole < 60)
		return format_text(tr("%ld s"), whole);
	if (whole < 3600)
		return format_text(tr("%ld min %ld s"), whole / 60, whole % 60);
	return format_text(tr("%ld h %ld min"), whole / 3600, whole / 60 % 60);
}

// ---- The work -------------------------------------------------------------------------------------

// Who shows it; also from set_progressbar, while an item runs.
static const queue_view *the_view;

static void tell_view(const queue_run &run)
{
	if (the_view && &run == running_queue)
		the_view->changed(run);
}

bool queue_keeps_window()
{
	return running_queue && the_view;
}

void queue_moved(double part)
{
	if (!running_queue)
		return;
	work_item &item = (*running_queue->items)[running_queue->at];
	if (item.state != item_state::running) // behind the last one
		return;
	item.part = part;
	tell_view(*running_queue);
}

// A queue inside an item of another is no news of its own.
struct queue_guard {
	explicit queue_guard(queue_run *run, const queue_view *view) : is_outer(!running_queue)
	{
		if (is_outer) {
			running_queue = run;
			the_view = view;
		}
	}
	~queue_guard()
	{
		if (is_outer)
			running_queue = nullptr;
	}
	queue_guard(const queue_guard &) = delete;
	const bool is_outer;
};

static void run_item(queue_run *run)
{
	work_item *item = &(*run->items)[run->at];
	item->state = item_state::running;
	item->words.clear();
	item->part = 0;
	run->item_began = host.clock->counter();
	tell_view(*run);
	run->last = run->work->run(item);
	item->seconds = host.clock->counter() - run->item_began;
	if (item->state == item_state::running) {
		item->state = run->last.done() ? item_state::done : item_state::failed;
		item->words = run->last.done() ? "" : reason_of(run->last);
	}
	if (item->state == item_state::done)
		item->part = 1;
	tell_view(*run);
}

// A line that is dead, a wish of the user, and the same trouble twice in a row end the whole.
static bool ends_queue(const queue_run &run)
{
	return run.last.how == ending::no_answer || run.last.how == ending::stopped || run.repeated;
}

static bool is_repeated(const queue_run &run, const std::string &before)
{
	const bool says_nothing = run.work->outlives_refusals && run.last.how == ending::refused;
	return !run.last.done() && !says_nothing && (*run.items)[run.at].words == before;
}

static void run_items(queue_run *run)
{
	work_queue &queue = *run->items;
	const int all = count_of(queue, item_state::waiting);
	int number = 0;
	std::string before;
	for (std::size_t i = 0; i < queue.size(); i++) {
		if (queue[i].state != item_state::waiting)
			continue;
		const bool stop = running_queue->stop || run->stop_after;
		if (stop || close_requested()) {
			run->last = { .how = ending::stopped };
			return;
		}
		run->at = i;
		log_line("[I] %s [%s] (%d/%d)\r\n", run->work->title, queue[i].name.c_str(),
			++number, all);
		run_item(run);
		run->repeated = is_repeated(*run, before);
		if (ends_queue(*run))
			return;
		before = queue[i].words;
	}
}

// A stop was of the items, so that what came of them is still looked after; another is of this.
static void finish(queue_run *run)
{
	if (!run->work->finish)
		return;
	run->stop = false;
	const outcome end = run->work->finish(run);
	if (end.done() || !run->last.done())
		return;
	run->last = end;
	if (end.how == ending::refused || end.how == ending::local_failed)
		run->trouble = reason_of(end);
}

outcome run_queue(work_queue *queue, const queue_work &work, const queue_view *view)
{
	const outcome ready = work.ready ? work.ready() : outcome{};
	if (!ready.done() || queue->empty())
		return ready;
	queue_run run = { .items = queue, .work = &work, .last = {} };
	const queue_guard guard(&run, view);
	if (view && guard.is_outer)
		view->begun(&run);
	run_items(&run);
	finish(&run);
	const outcome verdict = verdict_of(run);
	if (view && guard.is_outer)
		view->ended(run, verdict);
	return verdict;
}

} // namespace velmor
