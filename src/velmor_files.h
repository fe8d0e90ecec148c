// velmor_files.h - files that appear under their names whole or not at all
//
// Whatever the program keeps - samples, configurations, exports - is written under a
// temporary name beside its own, brought to the disk, and renamed. The temporary name is
// made exclusively and holds the number of the process, so two running programs never
// write into one file, and what a killed one left behind can be told from work that goes on.
//
// Knows nothing of: what is in the files.

#pragma once
#include "src/resource.h"
#include <cstddef>
#include <string>
#include <string_view>

namespace velmor
{

// A file being written. finish puts it in the place of an old one at once; without
// finish, or when it fails, nothing of it is left and an old file stands as it was.
class fresh_file
{
public:
	fresh_file() = default;
	~fresh_file();
	fresh_file(const fresh_file &) = delete;
	fresh_file &operator=(const fresh_file &) = delete;

	// Each answers a system code, 0 for success.
	int open(const std::string &path);
	int write(const void *bytes, std::size_t count);
	// To the disk, and under its name; the folder follows to the disk.
	int finish();
	// The same for a file that lives no longer than the work it is a part of: not worth a
	// wait for the disk.
	int finish_unsynced();

	bool is_open() const { return file >= 0; }

private:
	int end(bool synced);
	void discard();

	int file = -1;
	std::string path, temporary;
};

// The whole of a small file. A system code.
int write_whole_file(const std::string &path, const void *bytes, std::size_t count);

// True for the names that fresh_file writes under: no list shows them and no export takes
// them along.
bool is_temporary_name(std::string_view name);
// Remove the temporary files of a folder whose processes have ended.
void remove_left_files(const std::string &folder);

// Why a file could not be written, as a sentence: a full disk is called so.
std::string write_failure(const std::string &path, int code);

} // namespace velmor
