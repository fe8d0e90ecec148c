// velmor_backup.h - all that a sampler holds in a folder, and back
//
//   <folder>\manifest.txt        what the folder holds, with checksums; readable by people
//           \samples\<name>.wav  as a download writes them
//           \programs\<name>.program
//           \earlier             what the sampler held when an earlier backup was made
//
// A second backup moves what changed alone. Programs come with their list, so their content is
// compared. Of samples some lists tell length, rate, pitch and loop, and then these decide; others
// tell the names alone. Where that is too little, everything can be moved again.
//
// The manifest is written whole after each thing that came, so a backup that broke off goes on
// where it stood.
//
// Main thread only. Knows nothing of: windows, models.

#pragma once
#include "src/velmor_work.h"

namespace velmor
{

enum class backup_kind {
	program,
	sample,
	multi, // by its name alone: no sampler hands one out
};
// "program", "sample", "multi".
const char *kind_name(backup_kind kind);

// ---- What a folder holds (velmor_backup_manifest.cpp) ----------------------------------------

struct backup_entry {
	backup_kind kind;
	std::string name = {};  // on the sampler
	std::string file = {};  // in the folder of its kind; "" of a multi
	std::string facts = {}; // what the sampler's list told of a sample; "": its name alone
	u64 size = 0;           // of the file
	std::string sum = {};   // and its checksum
	bool operator==(const backup_entry &) const = default;
};
struct backup_manifest {
	std::string sampler = {}; // by its name on this computer
	std::string model = {};
	bool complete = false; // false: a backup is under way or broke off
	std::vector<backup_entry> entries = {};
};
std::string manifest_path(const std::string &folder);
// "" or where a file of the folder is.
std::string path_of_entry(const std::string &folder, const backup_entry &entry);
std::string manifest_text(const backup_manifest &manifest);
// "", or line and reason of what is refused.
std::string read_manifest_text(std::string_view text, backup_manifest *manifest);
// Done; refused where the folder holds none; local_failed, with words, where it is damaged.
outcome read_manifest(const std::string &folder, backup_manifest *manifest);
outcome write_manifest(const std::string &folder, const backup_manifest &manifest);

// ---- Into the folder (velmor_backup.cpp) -------------------------------------------------------

struct backup_wish {
	bool everything = false; // also what looks as it did
};
// What became of everything that the sampler lists, in the order of the work. skipped: as it was.
outcome backup_sampler(
	const std::string &folder, const backup_wish &wish, work_queue *items = nullptr);

// ---- And back (velmor_backup_restore.cpp) ------------------------------------------------------

enum class restore_step {
	keep,    // the sampler holds it as it is in the folder
	send,    // it lacks it
	replace, // it holds another of that name
	remove,  // the folder does not hold it; only where that is asked for
	cannot,  // the words say why
};
struct restore_item {
	backup_kind kind;
	std::string name;
	restore_step step;
	std::string words = {};
	backup_entry entry = {}; // of the folder; none of what is removed
	int index = -1;          // in the sampler's list of programs, of what is removed
};
struct restore_plan {
	std::string folder;
	bool complete = true; // false: the backup broke off
	std::vector<restore_item> items;
	int count(restore_step step) const;
};
struct restore_wish {
	bool everything = false;    // also what looks as it is in the folder
	bool remove_others = false; // what the folder does not hold is deleted on the sampler
};
// Reads the sampler and sends nothing. What carry_out would do, in its order.
outcome plan_restore(const std::string &folder, const restore_wish &wish, restore_plan *plan);
// "Keep 8, send 3, replace 1." of a plan; a sentence for each thing worth to be known.
std::string plan_words(const restore_plan &plan);
// Do it, one after the other. Ends at a dead line and at Stop; the list is read again behind
// the programs, and what arrived otherwise than it was sent counts as failed.
outcome carry_out(const restore_plan &plan, work_queue *items = nullptr);

} // namespace velmor
