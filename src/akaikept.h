// akaikept.h - what the drivers offer for keeping programs and samples as a machine holds them
//
// Records and WAV files hold what this program knows of a program or a sample. A machine holds
// more: so where its protocol gives and takes whole blocks, they are kept beside and go back as
// they came. A family is found by its row of sampler_type. Whatever is read here is read now, and
// not taken from the loaded list, which a user may have edited.
//
// What fails is told by boxes and the log, as every operation of a driver does.
//
// Main thread only. Knows nothing of: files, windows.

#pragma once
#include "src/resource.h"
#include <span>
#include <string>
#include <vector>

namespace velmor
{

// The machine's own bytes, one run a block or message; none where the family has no such thing.
using raw_blocks = std::vector<std::vector<u8>>;

struct kept_family {
	// A program of the loaded list as the sampler holds it now. False: it did not come whole.
	bool (*read_program)(int index, _program *program, raw_blocks *blocks);
	// Write such blocks over the program of that place, or, with -1, as a new one. Null: the
	// record is saved, as every program is.
	bool (*write_program)(int index, const raw_blocks &blocks);
	// The same of a sample's header. Null: its file tells everything.
	bool (*read_header)(int index, raw_blocks *header);
	// Behind an upload of the words; null where send_sample does both.
	bool (*write_header)(int index, const raw_blocks &header);
	// Words of a file and the header that was kept with it, over the sample of its name or as a
	// new one. Null: the file is uploaded, as every file is.
	bool (*send_sample)(const std::string &path, const raw_blocks &header);
	// The sample of the loaded list that an upload of that name goes over, -1 for none.
	int (*replaced)(const std::string &name);
	// The device is there and opens. Null: a line is asked, and tells.
	bool (*reachable)();
	bool endangers_next;      // a renaming may go over the program behind it
	double seconds_per_word;  // of a download; 0 where it is short
	bool creates_programs;    // one that the sampler does not hold can be sent
	const char *new_programs; // what is lost when it is, a sentence; null for nothing
};

// Of a row that has programs; null where there is none.
const kept_family *kept_family_of(const _sampler_type &model);
// The place of a sample in the loaded list by its exact name, -1 for none.
int listed_sample(const std::string &name);

// ---- The families ----------------------------------------------------------------------------

// akais1000_kept.cpp
bool akai_s1000_read_kept_program(int index, _program *program, raw_blocks *blocks);
bool akai_s1000_write_kept_program(int index, const raw_blocks &blocks);
bool akai_s1000_read_kept_header(int index, raw_blocks *header);
bool akai_s1000_send_kept_sample(const std::string &path, const raw_blocks &header);
// akais900_kept.cpp
bool akai_s900_read_kept_program(int index, _program *program, raw_blocks *blocks);
bool akai_s900_write_kept_program(int index, const raw_blocks &blocks);
bool akai_s900_read_kept_header(int index, raw_blocks *header);
bool akai_s900_write_kept_header(int index, const raw_blocks &header);
int akai_s900_replaced(const std::string &name);
// akais5000_lists.cpp, akaiz4_lists.cpp
bool akai_s5000_read_kept_program(int index, _program *program, raw_blocks *blocks);
bool akai_z4_read_kept_program(int index, _program *program, raw_blocks *blocks);

} // namespace velmor
