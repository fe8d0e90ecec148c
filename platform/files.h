// files.h - files and folders: the only place that knows the host's path separator
//
// Inside the system a path is written with backslashes. This door turns them
// into the host's separator, and host_path and system_path turn names for
// people and for other programs. Results are a system code, 0 for success.

#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace velmor
{

enum file_mode : int {
	file_read,
	file_create, // write, replacing what is there
	file_append,
	file_exclusive, // write a file that is made now; one that is there is a failure
};

struct file_info {
	std::uint64_t size; // bytes
	bool folder;
	bool regular;
	bool link; // the name is a link; the other fields tell what it leads to
};

struct files_service {
	int (*open)(const char *path, file_mode mode, int *file);
	// At most count bytes; fewer only at the end of the file.
	int (*read)(int file, void *bytes, std::size_t count, std::size_t *moved);
	// All bytes or a code: a full disk is a failure.
	int (*write)(int file, const void *bytes, std::size_t count);
	int (*seek)(int file, std::uint64_t offset);
	// Hand everything written to the disk.
	int (*sync)(int file);
	// Hand the names in a folder to the disk: a rename outlives a power cut only then.
	int (*sync_folder)(const char *path);
	// Close; a failure means that bytes written before may be lost.
	int (*close)(int file);

	int (*stat)(const char *path, file_info *info);
	int (*rename)(const char *from, const char *to); // replaces to, at once
	int (*remove)(const char *path);                 // a file
	int (*make_folder)(const char *path);            // fails when it exists
	int (*remove_folder)(const char *path);          // an empty one
	// Names in a folder, in the folder's own order, without "." and "..". A name that holds
	// a backslash cannot be written inside the system and is left out.
	int (*list)(const char *path, std::vector<std::string> *names);

	std::string (*host_path)(const char *path);
	std::string (*system_path)(const char *path);
	// True for the codes "it exists already", "there is no such file" and "the disk is full".
	bool (*exists_already)(int code);
	bool (*not_found)(int code);
	bool (*disk_full)(int code);
	// The number of this process, and whether the process of a number runs.
	long (*process)();
	bool (*process_runs)(long number);
	// Words for a code, in a static buffer that the next call overwrites; null for an unknown
	// code.
	const char *(*error_text)(int code);
};

} // namespace velmor
