// velmor_queue.h - the same work on many things, one after the other, with one verdict
//
// A queue is a list of items and one operation. It goes on behind an item that fails. A dead line,
// a wish of the user, and the same trouble twice in a row end the whole. Items change as the work
// goes, and say afterwards what became of each; the outcome tells the whole once.
//
// It needs no window: who wants to show it gives a view, which hears of every change.
//
// Main thread only. Knows nothing of: models, windows.

#pragma once
#include "src/velmor_outcome.h"
#include <functional>
#include <string>
#include <vector>

namespace velmor
{

enum class item_state {
	waiting, // not tried
	done,
	skipped,
	failed,
	running,
};
struct work_item {
	std::string name;
	item_state state = item_state::waiting;
	std::string words = {}; // why it failed or was skipped
	std::string path = {};  // of its file, without extension, where the work needs one
	u64 bytes = 0;          // of its sound; 0: not known
	double seconds = 0;     // that it took
	double part = 0;        // that was done of it, 0 to 1
};
using work_queue = std::vector<work_item>;

struct queue_run;

// What is done to each item, and its words. The formats take two numbers: done, and all.
struct queue_work {
	const char *title;     // "Downloading"
	const char *verdict;   // "%d/%d samples downloaded!"
	const char *line;      // "%d of %d samples were downloaded."
	const char *count;     // "%d of %d samples done"
	const char *not_done;  // in front of the names of what failed
	const char *not_tried; // and of what was not begun
	const char *kept;      // what becomes of it all when it is stopped
	outcome (*ready)();    // in front of the first item; null: nothing to look at
	// One item. What it leaves in another state than running stays so.
	std::function<outcome(work_item *)> run;
	// Behind the last item that was tried; may change what became of them. Null: nothing to do.
	std::function<outcome(queue_run *)> finish = {};
	// What the sampler refuses says nothing of the next item, however often.
	bool outlives_refusals = false;
};

// A queue that runs, or has ended.
struct queue_run {
	work_queue *items;
	const queue_work *work;
	std::size_t at = 0;                    // the item that runs, or was the last
	double item_began = 0;                 // counter
	bool stop = false, stop_after = false; // what the user wants
	outcome last;                          // of one item
	bool repeated = false;                 // the same trouble came twice
	std::string trouble = {};              // of what stands behind the items
};
// Hears of it; called from within the work.
struct queue_view {
	void (*begun)(queue_run *run);
	void (*changed)(const queue_run &run); // an item begins, goes on, or has ended
	void (*ended)(const queue_run &run, const outcome &verdict);
};

// The outcome of ready where nothing was begun; otherwise one verdict for all.
outcome run_queue(work_queue *queue, const queue_work &work, const queue_view *view = nullptr);
int count_of(const work_queue &queue, item_state state);
// Why the whole ended before its end, a sentence or two; "" where it did not.
std::string why_ended(const queue_run &run);

// Bytes a second up to now, 0: not known. Seconds that an item takes, and that all take that are
// not done yet, as far as can be said; negative: not known.
double rate_of(const queue_run &run);
double seconds_of(const queue_run &run, const work_item &item);
double seconds_left(const queue_run &run);
// "46 s", "1 min 44 s", "2 h 5 min".
std::string span_text(double seconds);

// ---- For the progress of single work (velmor_progress.cpp) --------------------------------------

// The queue that runs, or null. A stop of it is not taken back by the next item.
extern queue_run *running_queue;
// One with a view keeps the window between its items.
bool queue_keeps_window();
void queue_moved(double part);

// ---- With the progress window (velmor_queue_page.cpp) --------------------------------------------

struct shown_queue {
	work_queue items;
	std::function<outcome(work_queue *, const queue_view *)> run;
	// Shows what the work has changed and how it ended, once it has begun.
	std::function<void(outcome *, const work_queue &)> after;
	bool told = false; // the box comes, too, and alone where all is done
};
// Run it in the window and leave its verdict there, with a way to try the rest again.
void show_queue(const shown_queue &queue);
// Other work has the window.
void leave_verdict();
// The verdict as lines of text.
std::string verdict_text();

} // namespace velmor
