// drive.h - a drive of this computer, served by the program
//
// Called by the file system of the samplers (src/fsmidi*). A back end mounts a folder, takes
// calls on a thread of its own, and has every one of them answered on the main thread by the
// operations that it was given. Nothing can be changed on such a drive.
//
// Names are texts of the operations' own: the back end hands a path back as it got it, and shows
// a name as it is, UTF-8 without a slash.

#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace velmor
{

enum drive_result : int {
	drive_ok = 0,
	drive_later,     // only a sampler knows, and none may be asked now
	drive_not_found, // no such folder or file
	drive_no_folder, // a file where a folder is needed
	drive_refused,   // the drive does not offer this
	drive_too_many,  // folders are open
	drive_no_device, // the sampler is gone
	drive_busy,      // another program uses the sampler
	drive_denied,    // the user may not open the sampler
	drive_timed_out, // no answer in time
	drive_failed,    // the sampler answered nonsense, or the line failed
	drive_ended,     // the program is ending
};

struct drive_entry {
	std::string name; // as shown
	std::string path; // as the operations take it
	bool folder;
	std::uint64_t size; // bytes
};

struct drive_sizes {
	std::string label;
	std::uint64_t total, free; // bytes
};

// One call of a program, as far as the operations want to know it.
struct drive_call {
	bool may_ask;  // false: answer from what is known, or with drive_later
	double waited; // seconds since the program called
	std::function<bool()> given_up = {}; // true when nobody wants the answer any more
};

// What a folder that is open is known by.
using drive_folder = void *;

// All of them are called on the main thread only. A call that asks a sampler runs interface
// events, and so may be called inside itself, with may_ask false.
struct drive_operations {
	drive_result (*find)(const drive_call &call, const std::string &folder,
		const std::string &name, drive_entry *entry);
	drive_result (*open_folder)(const std::string &path, drive_folder *folder);
	drive_result (*list_folder)(const drive_call &call, drive_folder folder,
		const std::string &path, std::vector<drive_entry> *entries);
	void (*close_folder)(drive_folder folder);
	// Contents are not delivered: asked before a file is opened, so that nobody opens one.
	drive_result (*read_file)(const std::string &path);
	drive_result (*sizes)(drive_sizes *sizes);
};

struct drive_parameters {
	std::string type;     // of the file system, in lists of mounts
	std::string root;     // path of the mounted folder itself
	int block_size;       // bytes
	int keep_ms;          // how long the system may use an answer again
	std::uint64_t serial; // of the volume
	double made;          // time of day that everything on it bears
	bool talkative;       // log what the library does, to standard error
};

struct drive_service {
	// Sizes of the disk that this computer works on, and when its root was made. False when
	// the system does not say.
	bool (*host_disk)(std::uint64_t *free, std::uint64_t *total);
	bool (*host_made)(double *time);

	// Why nothing can be mounted there, a sentence; "" when it can. Cleans away what a killed
	// process of this type has left there.
	std::string (*usable)(const char *mount_point, const char *type);
	// Mount: 0, or a system code and a sentence.
	int (*mount)(const drive_parameters &parameters, const drive_operations &operations,
		const char *mount_point, std::string *why);
	// Take calls. waiting is called on another thread whenever one came, and when the drive
	// was unmounted by somebody else.
	bool (*start)(void (*waiting)());
	// Answer the calls that wait, all of them or those that need no sampler.
	void (*answer)(bool may_ask);
	bool (*unmounted)();
	// Unmount, and end the calls that still wait.
	void (*stop)();
};

// In use; set by the main function of a program that has a drive.
extern const drive_service *host_drive;

} // namespace velmor
