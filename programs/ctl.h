// ctl.h - velmorctl, the companion without windows: its verbs, and what they share
//
// A verb is one row of the table in ctl_table.cpp and one function in the file of its subject. It
// reads its arguments, calls the workflows that the windows call, and tells how they ended. No
// rule of the system lives here.
//
// Results go to standard output: plain lines, or one JSON object a line. Words, questions and the
// bar of a transfer go to standard error.
//
// Knows nothing of: models, wires, where the host's services come from (velmorctl.cpp).

#pragma once
#include "src/velmor_work.h"
#include <cstdio>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace velmor
{

enum ctl_exit : int {
	exit_done = 0,
	exit_refused = 1, // by the sampler, or because a question was not answered with yes
	exit_usage = 2,
	exit_no_answer = 3,
	exit_local = 4, // a file or the disk of this computer
	exit_stopped = 130,
};

// ---- Verbs (ctl_table.cpp) --------------------------------------------------------------------

struct ctl_call;

struct ctl_option {
	const char *name;
	const char *value; // null: a switch; "N": a number; "a|b": one of these; otherwise a text
	const char *help;
};

struct ctl_verb {
	const char *name;      // one word or two
	const char *arguments; // as the help shows them
	const char *help;
	int least, most;    // arguments; most -1: any number
	bool needs_sampler; // that it works with is loaded first
	int (*run)(const ctl_call &call);
	std::span<const ctl_option> options = {};
};
extern const std::vector<ctl_verb> ctl_verbs;
extern const std::vector<ctl_option> ctl_options; // of every verb

// A command line, taken apart.
struct ctl_call {
	const ctl_verb *verb = nullptr;
	std::vector<std::string> words; // the arguments
	std::map<std::string, std::string> options;

	bool has(const char *option) const { return options.contains(option); }
	std::string value(const char *option) const
	{
		const auto found = options.find(option);
		return found == options.end() ? "" : found->second;
	}
	// Of an option that is a number, or otherwise.
	int number(const char *option, int otherwise) const
	{
		return has(option) ? std::stoi(value(option)) : otherwise;
	}
};
// "" or what is wrong, a sentence. Without a verb the call is for --help, --version or
// --completion.
std::string read_ctl(std::span<const std::string> words, ctl_call *call);
std::string ctl_help();
// How bash completes a command line.
std::string ctl_completion();

// ---- A run (ctl_run.cpp) ------------------------------------------------------------------------

struct ctl_streams {
	std::FILE *results, *words;
	bool terminal = false; // words go to a terminal: a bar is shown
	// To a question, where --yes does not answer; null: no.
	bool (*answer)(const char *question) = nullptr;
};

// Start the system on the installed host, run the verb, and come back when the wire is drained.
int run_ctl(const ctl_call &call, const ctl_streams &streams);
// The exit status of a run that the system ends from inside, from now on.
void ctl_ends_inside(ctl_exit status);

// What a verb is told of beside its workflow's outcome. Each is put back when the verb has run.
struct ctl_hooks {
	std::function<void()> glance;                         // now and then during long work
	std::function<void(const bitmap_view &)> picture;     // of the sampler's screen
	std::function<void(const std::string &)> logged;      // one text of the log
	std::function<void(std::int64_t, int)> play_position; // ticks, ticks a second
};
extern ctl_hooks ctl_hook;

// ---- What is told (ctl_words.cpp) -----------------------------------------------------------------

// One line of JSON.
class ctl_object
{
public:
	ctl_object &text(const char *key, std::string_view value);
	ctl_object &number(const char *key, double value);
	ctl_object &texts(const char *key, std::span<const std::string> values);
	std::string line() const { return "{" + members + "}"; }

private:
	void begin(const char *key);
	std::string members;
};

void ctl_begin_words(const ctl_streams &streams, bool json);
// A result: the object with --json, otherwise the plain words, if there are any.
void ctl_print(const ctl_object &object, const std::string &plain);
// A sentence for a person.
void ctl_say(const std::string &words);
void ctl_show_bar(const std::string &words);
void ctl_hide_bar();
// How the work on something ended: its words, and, with --json, an object with its name and what
// is in it already. Gives the exit status.
int ctl_tell(const std::string &name, const outcome &result, ctl_object object = {});
int ctl_status(const outcome &result);
// Arguments that make no sense, in a sentence.
int ctl_usage(const std::string &words);
// Work on each name until the line is dead or the user stops it. The status of the first that
// was not done.
int ctl_each(const std::vector<std::string> &names,
	const std::function<outcome(const std::string &)> &work);

// ---- Functions of the table, by the files of their subjects -----------------------------------------

int ctl_samplers(const ctl_call &), ctl_info(const ctl_call &); // ctl_samplers.cpp
int ctl_ls(const ctl_call &), ctl_get(const ctl_call &), ctl_put(const ctl_call &),
	ctl_rm(const ctl_call &), ctl_mv(const ctl_call &),
	ctl_import(const ctl_call &); // ctl_samples.cpp
int ctl_program_ls(const ctl_call &), ctl_program_get(const ctl_call &),
	ctl_program_put(const ctl_call &), ctl_program_rm(const ctl_call &),
	ctl_program_mv(const ctl_call &);                         // ctl_programs.cpp
int ctl_panel(const ctl_call &), ctl_key(const ctl_call &);       // ctl_panel.cpp
int ctl_play(const ctl_call &), ctl_monitor(const ctl_call &);    // ctl_midi.cpp
int ctl_selftest(const ctl_call &), ctl_replay(const ctl_call &); // ctl_selftest.cpp
int ctl_backup(const ctl_call &), ctl_restore(const ctl_call &),
	ctl_undo(const ctl_call &); // ctl_machine.cpp

// A bitmap as the bytes of a PNG file; light is the colour of clear pixels, RRGGBB (ctl_png.cpp).
std::vector<u8> png_of(const bitmap_view &view, u32 light);

} // namespace velmor
