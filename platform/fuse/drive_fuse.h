// drive_fuse.h - what the sources of the libfuse3 back end share

#pragma once
#define FUSE_USE_VERSION 314
#include "platform/drive.h"
#include <fuse3/fuse_lowlevel.h>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace velmor
{

struct folder_in_use {
	drive_folder folder;
	std::string path;
	std::vector<drive_entry> entries;
};

struct fuse_call {
	// What the kernel wants, and the function that answers it: false when it has to wait.
	bool (*answer)(const fuse_call &call, const drive_call &how);
	fuse_req_t request;
	fuse_ino_t node;
	std::string name;
	std::size_t size;     // of an answer in pieces, or look-ups to forget
	off_t offset;         // in a listing
	bool with_attributes; // a listing that tells sizes
	folder_in_use *folder;
	double came; // steady seconds
};

// A name in a folder.
struct drive_node {
	std::string parent, name; // path of the folder, and the name that was looked up
	drive_entry entry;
	std::uint64_t lookups;
};

// The one drive that is mounted.
struct mounted_drive {
	drive_parameters parameters;
	drive_operations operations;
	fuse_session *session = nullptr;
	int ending = -1; // an eventfd that ends the reader
	std::thread reader;
	void (*waiting)() = nullptr;

	std::mutex lock;
	std::list<fuse_call> calls; // under the lock
	bool unmounted = false;     // under the lock

	// The main thread's.
	std::map<fuse_ino_t, drive_node> nodes;
	std::map<std::pair<std::string, std::string>, fuse_ino_t> numbers;
	std::map<folder_in_use *, std::unique_ptr<folder_in_use>> open_folders;
	fuse_ino_t next_number = FUSE_ROOT_ID + 1;
};
extern std::unique_ptr<mounted_drive> the_drive;

extern const drive_service fuse_drive;

// Answers to the calls of the kernel (answers.cpp): false for one that has to wait.
bool answer_lookup(const fuse_call &call, const drive_call &how);
bool answer_forget(const fuse_call &call, const drive_call &how);
bool answer_attributes(const fuse_call &call, const drive_call &how);
bool answer_open_folder(const fuse_call &call, const drive_call &how);
bool answer_close_folder(const fuse_call &call, const drive_call &how);
bool answer_listing(const fuse_call &call, const drive_call &how);
bool answer_open_file(const fuse_call &call, const drive_call &how);
bool answer_sizes(const fuse_call &call, const drive_call &how);

// The folder to mount on, looked at before anything is mounted (mount_point.cpp): a sentence when
// nothing can be mounted there. A mount of that type whose process is gone is cleaned away.
std::string why_not_usable(const char *mount_point, const char *type);

} // namespace velmor
