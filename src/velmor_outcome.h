// velmor_outcome.h - how a piece of work ended, and whether the line answered meanwhile
//
// A workflow takes names and gives an outcome; the window that called it, or the command line,
// shows the words. Drivers report through the log and through boxes, as before: a workflow
// keeps their boxes aside while it runs one, and watches what the line did.
//
// Main thread only. Knows nothing of: models, windows.

#pragma once
#include "src/velmor.h"
#include <set>
#include <string>
#include <vector>

namespace velmor
{

enum class ending {
	done,
	refused,      // the sampler answered and did not do it, or it may not be done
	no_answer,    // nothing came, or the line failed
	stopped,      // the user ended it
	local_failed, // a file or the disk of this computer
};

struct kept_box {
	std::string caption, text;
};

struct outcome {
	ending how = ending::done;
	std::string words = {};          // for a person, complete sentences; "" says nothing
	std::string caption = "INFO";    // of the box that shows them
	std::string line = {};           // one sentence for the status line; "": the words
	std::vector<kept_box> told = {}; // boxes of the drivers that hold true, shown first
	bool done() const { return how == ending::done; }
};

// ---- The line (velmor_line.cpp) -----------------------------------------------------------

// What the exchanges with the loaded sampler did since it was loaded.
struct line_state {
	unsigned answers = 0, failures = 0;
	unsigned changes = 0;   // of sampler, port or connection
	double answered_at = 0; // time of day of the last answer; 0: never
	double failed_at = 0;   // the same of the last failure
	bool failing = false;   // the last exchange failed
	std::string why;        // of the last failure, a sentence
};
extern line_state the_line;

// Every transport calls one of these at the end of each exchange that wanted an answer.
void line_answered();
// why is a sentence for a person: "No answer came", the port's own words.
void line_silent(const char *why);
// Another sampler, port or channel: what was known of the line is void.
void forget_line();

// What the line did since this was made.
class line_watch
{
public:
	line_watch() : answers(the_line.answers), failures(the_line.failures) {}
	bool heard() const { return the_line.answers != answers; }
	bool failed() const { return the_line.failures != failures; }
	// It failed, and nothing came since.
	bool dead() const { return failed() && the_line.failing; }

private:
	unsigned answers, failures;
};

// ---- Work that repeats itself (velmor_log.cpp) --------------------------------------------

// What one round of it logged, and the round before: a line that both have is logged once.
struct log_rounds {
	std::set<std::string> before, now;
};
// One round, while it lives; null for a timer inside another's. "[D]" is logged in every round.
class log_round
{
public:
	explicit log_round(log_rounds *rounds);
	~log_round();
	log_round(const log_round &) = delete;

private:
	log_rounds *outer;
};

// ---- Boxes kept aside (velmor_log.cpp) ----------------------------------------------------

// While one lives, show_box and the error boxes are kept here instead of shown; questions are
// still asked. Keepers may stand inside each other; the innermost keeps. What is left at the end
// of the scope is shown.
class box_keeper
{
public:
	box_keeper();
	~box_keeper();
	box_keeper(const box_keeper &) = delete;

	std::vector<kept_box> boxes;
	// Show what was kept, in order, and forget it.
	void show();
	// Give what was kept, each text once, and forget it.
	std::vector<kept_box> take();
	box_keeper *enclosing() const { return outer; }

private:
	box_keeper *outer;
};

} // namespace velmor
