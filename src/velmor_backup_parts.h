// velmor_backup_parts.h - what backup, restore and comparison share
//
// Knows nothing of: windows, models.

#pragma once
#include "src/velmor_backup.h"

namespace velmor
{

// What the sampler lists.
struct listed_thing {
	backup_kind kind;
	std::string name;
	std::string facts; // of a sample; "": the list tells its name alone
	std::string text;  // of a program, as its file has it
	int index, number; // in its list; among those of its name, from 1
};
// All lists, read anew once, and fresh from then on. Programs first, then samples, then multis.
outcome read_machine(std::vector<listed_thing> *things);
// Null for none.
const listed_thing *find_thing(
	const std::vector<listed_thing> &things, const backup_entry &entry, int number);
// Which of its name an entry is.
int number_of(const std::vector<backup_entry> &entries, std::size_t index);

// A program as text, without its place on the sampler.
std::string backup_text(const _program &program);
// The file is there, as it was written.
bool is_intact(const std::string &folder, const backup_entry &entry);
std::string titled(backup_kind kind, const std::string &name); // "sample KICK"

// While it lives, downloads go to a folder of their own, which is made and goes with it.
class spool_elsewhere
{
public:
	explicit spool_elsewhere(const std::string &folder);
	~spool_elsewhere();
	spool_elsewhere(const spool_elsewhere &) = delete;

private:
	std::string before, folder;
};

// The boxes of a trouble, or its words, as one line.
std::string trouble_of(const outcome &result);
// Nothing more is to be tried: a dead line, Stop, or the same trouble twice in a row.
bool ends_all(const outcome &last, const std::string &trouble, const std::string &before);

} // namespace velmor
