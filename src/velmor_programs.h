// velmor_programs.h - what can be done with programs, by their names
//
// The workflows of programs, as velmor_work.h has those of samples: each gives an outcome, and
// none needs a window. Names are without the blanks that some models fill them up with.
//
// A loaded program is addressed by its place in the list last read. Where that list is stale it
// is read again first; edits that are not sent yet outlive such a reading, on their programs.
//
// Main thread only. Knows nothing of: windows, models.

#pragma once
#include "src/velmor_work.h"

namespace velmor
{

// A program of a list; names may come twice, so the place counts where it fits.
struct program_entry {
	std::string name;
	int index = -1;
};
std::string without_end_blanks(std::string name);
// Names of the list last read.
std::vector<std::string> loaded_programs();
// The list of programs, read anew unless it is fresh.
outcome have_program_list();
// Read the list; edits that are not sent stay with their programs.
outcome read_programs_again();

// Send a loaded program as it stands in memory ("Life Update"). Sending changes the record.
outcome save_program(const program_entry &which);
// The list is read again, and decides.
outcome delete_program(const program_entry &which);
// What a failed renaming took off the sampler becomes a program of this computer.
outcome rename_program(const program_entry &which, const std::string &new_name);
// The sampler is told at once, and the keygroups behind it move down.
outcome delete_keygroup(const program_entry &which, int keygroup);
// Undo an edit, or, forward, do it again. Where a keygroup goes that the sampler holds, the
// sampler is told first, as saving would leave it there; while it does not do it, nothing changes.
outcome step_edit(const program_entry &which, bool forward);
// Keygroups behind it move down by one, in memory alone.
void remove_keygroup(_program *program, int keygroup, bool sampler_told = false);

// Send a program of this computer. Another family is asked about: false words name what it
// cannot hold. The list is read again, and decides.
outcome upload_program(const _program &program);
// Its samples that the spool holds: paths of WAV files, each once.
std::vector<std::string> required_files(const _program &program);
// Send those files, one verdict for all.
outcome upload_files(const std::vector<std::string> &paths);

// A sample that a program names and the sampler lacks: send the spool's file of that name, also
// in other letters, or one that a sampler would call so. The list of samples is read again.
outcome find_and_upload(const std::string &name);

// Bring a loaded program and the samples that it names to this computer, one verdict for all.
outcome download_program(const program_entry &which);

// "a, b, c and 12 more".
std::string first_of(const std::vector<std::string> &names);
// Names of the samples that a program names, each once.
std::vector<std::string> samples_of(const _program &program);
// True if the sampler's list has the sample.
bool is_loaded_sample(const std::string &name);

} // namespace velmor
