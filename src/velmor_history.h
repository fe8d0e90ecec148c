// velmor_history.h - what was on a sampler before it was changed, and putting it back
//
//   <configuration folder>\history\<sampler>\<time>\step.txt          what was done, was there, came
//                                                  \1.program         a program, as text
//                                                  \1.blocks          the same in the machine's bytes
//                                                  \2.header          a sample's header
//                                                  \sample\KICK.wav   a sample
//
// A workflow that changes the sampler makes a machine_change first: what the work goes over, takes
// away or renames is read from the sampler and kept, and only then the work begins. A step without
// a whole step.txt has kept nothing and counts for nothing. Undo takes the newest step that can be
// put back, changes the sampler through the same workflows, which keep what they replace in steps
// of their own, and looks at the list afterwards.
//
// A program that starts calls load_history_settings; before that, nothing is kept.
//
// Main thread only. Knows nothing of: windows, models but through akaikept.h.

#pragma once
#include "src/akaikept.h"
#include "src/velmor_outcome.h"
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velmor
{

// ---- A step (velmor_history.cpp) ---------------------------------------------------------------

enum class step_kind {
	rename_sample,
	delete_sample,
	upload_sample,
	rename_program,
	delete_program,
	change_program, // sent to the sampler, whole or in part
};
enum class step_state {
	begun,    // how the work ended was not written down
	done,     // and can be put back
	half,     // putting it back began and did not end
	undone,   // was put back
	put_back, // what an undo replaced
};
struct kept_thing {
	bool program = false;
	std::string name;
	std::string file;  // in the step's folder; a sample's lies in its folder "sample"
	std::string bytes; // the file of the machine's own bytes, "" for none
};
struct history_step {
	std::string folder; // its name, the time of the step
	int number = 0;     // steps of a sampler count up
	std::string time, sampler, model;
	step_kind kind = step_kind::delete_sample;
	step_state state = step_state::begun;
	std::string name, new_name;    // as the workflow was given them
	std::vector<kept_thing> there; // what the work goes over or takes away
	std::vector<std::string> came; // names that the list has since
	std::string cannot; // why undo does not bring it back, a sentence; "" where it does
	std::string damage; // why the manifest cannot be used; "" where it can
	u64 bytes = 0;      // of all its files
};

std::string step_text(const history_step &step);
// What the text says. A text that is not whole or not right says why in damage.
history_step read_step_text(std::string_view text);
// "Deleted the sample 'KICK'", as the history lists it, or as it stands inside a sentence.
std::string step_words(const history_step &step, bool inside = false);

// The folder of the loaded sampler's history, and of a step in it.
std::string folder_of_history();
std::string step_folder(const history_step &step);
// The steps of the loaded sampler, the oldest first; damaged ones in front.
const std::vector<history_step> &history_steps();
// Read the folder anew.
void read_history();
// As at the start; for tests.
void forget_history();

// A folder with nothing in it yet, for a step of now; "" or why there is none.
std::string begin_step(history_step *step);
// Write its manifest, whole or not at all; "" or why not.
std::string write_step(history_step *step);
// Remove steps from the history and the disk. What cannot be removed is told.
outcome remove_steps(std::span<const std::string> folders);

// ---- Settings (velmor_history.cpp) ---------------------------------------------------------------

struct history_settings {
	bool on = false;           // keep first
	bool long_samples = false; // also what takes long, without asking
	int megabytes = 500;       // of one sampler
};
extern history_settings the_history;
void load_history_settings();
void save_history_settings();
u64 history_bytes();
// Remove the oldest steps beyond the limit; the newest stays, and one that is being put back.
void trim_history();

// ---- Keeping (velmor_history_keep.cpp) --------------------------------------------------------------

// What a workflow is about to do.
struct planned_work {
	step_kind kind;
	std::string name;
	std::string new_name = {}; // of a renaming
	int place = -1;            // of a program in the list, where names may come twice
	int keygroups = 0;         // that go to the sampler with a program; -1: those in memory
};

// One piece of work that changes the sampler: made in front of it, told its end behind it.
class machine_change
{
public:
	explicit machine_change(const planned_work &work);
	machine_change(const machine_change &) = delete;
	// False: nothing may be changed, and why() says why.
	bool may_go_on() const { return refusal.done(); }
	const outcome &why() const { return refusal; }
	// Of the programs that it goes over, the most that one had when it was kept.
	int held_keygroups() const { return most_held; }
	// The lists are as the work left them. Gives its outcome back.
	outcome ended(outcome result);

private:
	bool about_programs() const { return step.kind >= step_kind::rename_program; }
	std::vector<std::string> listed() const;
	bool find_what_is_there(const planned_work &work);
	bool tell_limits(const planned_work &work);
	bool may_keep_samples();
	std::string keep_program(int place, kept_thing *thing);
	std::string keep_sample(int place, kept_thing *thing);
	std::string keep_all();
	bool goes_without(const std::string &why);
	void drop();
	void stop();

	const kept_family *family = nullptr;
	const _sampler_type *model = nullptr;
	bool active = false;
	int most_held = 0; // keygroups of the programs that are there
	history_step step;
	std::vector<int> places; // of what is there, in the list
	std::vector<std::string> before;
	outcome refusal;
};
// Nothing was asked yet in this session; for tests.
void forget_history_answers();
// While one lives, steps are those of an undo, and the one that it puts back stays.
class putting_back
{
public:
	explicit putting_back(const std::string &folder);
	~putting_back();
	putting_back(const putting_back &) = delete;
};
// The folder of the step that is being put back, or "".
const std::string &step_in_work();

// ---- Putting back (velmor_history_undo.cpp) -----------------------------------------------------------

// The step that undo_on_sampler would put back, or null.
const history_step *undoable_step();
// Put the newest step back.
outcome undo_on_sampler();
// Put a step back, whichever it is. What the sampler holds instead is kept in a step of its own.
outcome put_step_back(const history_step &step);

} // namespace velmor
