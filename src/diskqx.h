// diskqx.h - the disks of the samplers on USB as a drive that can be listed
//
// Three layers. The model (fsmidi.cpp, fsmidi_paths.cpp) asks a sampler for its volumes, for the
// folders and files of one of them, and for one path. The operations (fsmidi_operations.cpp) are
// a table of what a file system is asked for, with a status word each; everything that would
// change or fetch data is refused. The drive (fsmidi_drive.cpp) keeps listings for a while, gives
// names a safe shape, and is what the host mounts.
//
// A path of the drive is \sampler\volume\folder\file in the samplers' own bytes; one backslash
// or several at each joint.
//
// Called by velmorfs. Main thread only, one request at a time: what the host's threads want comes
// over platform/drive.h. Owns the table of open folders.
//
// Knows nothing of: FUSE, samplers on MIDI or TCP.

#pragma once
#include "platform/drive.h"
#include "src/usbqx.h"
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace velmor
{

inline constexpr std::size_t fs_text_size = 1024; // of a path, a part of one, an answer
inline constexpr int max_disk_entries = 1 << 14;  // folders or files that an index reaches

// ---- The model (fsmidi.cpp) ------------------------------------------------------------------

struct _sampler_volume {
	char name[fs_text_size];
	u8 type, format, physical_id, writeable;
	u16 handle; // the sampler's own number for it
};

inline constexpr u32 attribute_folder = 16, attribute_file = 128;

struct _sampler_file {
	char name[fs_text_size];
	u32 attributes;
	u32 size; // bytes
};

// Times are seconds since 1970, as they are, though the callers of such a record usually want
// another unit.
struct FSP_FSCTL_FILE_INFO {
	u32 FileAttributes, ReparseTag;
	u64 AllocationSize, FileSize;
	u64 CreationTime, LastAccessTime, LastWriteTime, ChangeTime;
};

struct FILE_ATTRIBUTE_TAG_INFO {
	u32 FileAttributes, ReparseTag;
};

using sampler_volumes = std::unique_ptr<_sampler_volume[]>;
using sampler_files = std::unique_ptr<_sampler_file[]>;

// Around each single request to a sampler.
extern std::recursive_mutex midi_critical;

// The sampler of that name, opened; null, and a line in the log, when it is not to be had.
_usbdev *open_sampler(const char *name);
// The volumes of an open device: their count, with *volumes null at 0.
int get_sampler_volumes(_usbdev *device, sampler_volumes *volumes);
void free_sampler_volumes(int count, sampler_volumes *volumes);
// The volume of a name, whatever its case, or null.
_sampler_volume *find_sampler_volume(int count, const sampler_volumes &volumes, const char *name);
// True when the sampler stands in that folder of the volume.
bool _set_sampler_path(const char *source, int line, _usbdev *device, const _sampler_volume *volume,
	const char *path);
// What lies where the sampler stands, folders ahead of files: the count, 0 on failure.
int _get_current_dirlist(const char *source, int line, _usbdev *device, sampler_files *files);
// What a path of the drive leads to: 0, or 1 when that could not be told. info is filled either
// way.
int _get_file_info(const char *source, int line, const char *path, FSP_FSCTL_FILE_INFO *info);
void get_file_attributes(const char *name, FILE_ATTRIBUTE_TAG_INFO *info);

// What went wrong first since it was set to drive_ok. The status words of the operations do not
// tell a sampler that is gone from a name that is not there.
extern drive_result fs_fault;
void note_fault(drive_result fault);
// For whom a sampler is asked: behind the deadline, a moment of host.clock->counter(), or when
// the answer is not wanted any more, nothing is sent. Empty: no such limit.
struct fs_caller {
	double deadline = 0;
	std::function<bool()> given_up = {};
};
extern fs_caller current_fs_caller;

// ---- Paths (fsmidi_paths.cpp) ------------------------------------------------------------------

struct drive_path {
	char sampler[fs_text_size], volume[fs_text_size], file[fs_text_size];
};
// Each part is cleared first.
void _get_path_parts(const char *source, int line, const char *path, char (&sampler)[fs_text_size],
	char (&volume)[fs_text_size], char (&file_path)[fs_text_size]);

std::string lower_case(std::string_view text);
bool same_without_case(std::string_view a, std::string_view b);
// The parts between backslashes, without empty ones.
std::vector<std::string> path_tokens(std::string_view path);

// A name in the samplers' bytes as one name of the host: UTF-8, without a slash, a control
// character or a meaning of its own. Different names stay different, unless they are too long
// for the host.
inline constexpr std::size_t longest_shown_name = 240; // bytes
std::string shown_name(std::string_view name);
// True for a name by which its folder can be reached: not empty, no backslash in it.
bool is_reachable(std::string_view name);

// ---- Operations (fsmidi_operations.cpp) ---------------------------------------------------------

using fs_status = u32;
inline constexpr fs_status status_success = 0;
inline constexpr fs_status status_invalid_device_request = 0xC0000010;
inline constexpr fs_status status_object_name_invalid = 0xC0000033;
inline constexpr fs_status status_insufficient_resources = 0xC000009A;

struct FSP_FSCTL_VOLUME_INFO {
	u64 TotalSize, FreeSize; // bytes
	u16 VolumeLabelLength;   // bytes
	char16_t VolumeLabel[32];
};
static_assert(sizeof(FSP_FSCTL_VOLUME_INFO) == 88);

// One record of a directory buffer. Size is what it takes in a buffer of the caller.
struct FSP_FSCTL_DIR_INFO {
	u16 Size;
	FSP_FSCTL_FILE_INFO FileInfo;
	std::string FileName;
};
inline constexpr std::size_t dir_info_head = 104;

// Records of one listing, filled by the first call for it and read on by the next ones.
struct fs_directory_buffer {
	bool filled = false, held = false;
	std::vector<FSP_FSCTL_DIR_INFO> records;
};

struct PTFS_FILE_CONTEXT {
	u64 Handle; // a number, no handle of the system
	fs_directory_buffer DirBuffer;
};

struct _fs_handle {
	u64 handle;
	char pathname[fs_text_size];
	int pathname_len;
	u8 file_open; // bit 0
	u64 file_offset;
};

inline constexpr int max_fs_handles = 1024;
extern _fs_handle fs_handle[max_fs_handles];
extern u64 myhandles;     // the next handle; only ever grows
extern int files;         // 0 at start
extern int pseudo_fcount; // security look-ups

struct FSP_FSCTL_VOLUME_PARAMS {
	u16 SectorSize, SectorsPerAllocationUnit;
	u64 VolumeCreationTime;
	u32 VolumeSerialNumber;
	u32 FileInfoTimeout; // milliseconds
	bool CaseSensitiveSearch, CasePreservedNames, UnicodeOnDisk, PersistentAcls,
		PostCleanupWhenModifiedOnly;
	const char *FileSystemName;
};

// What a file system is asked for. An empty slot is not offered.
struct FSP_FILE_SYSTEM_INTERFACE {
	using context = PTFS_FILE_CONTEXT *;
	fs_status (*GetVolumeInfo)(FSP_FSCTL_VOLUME_INFO *info);
	fs_status (*SetVolumeLabel)(const char *label, FSP_FSCTL_VOLUME_INFO *info);
	// attributes may be null; descriptor may be null, and then size is not looked at.
	fs_status (*GetSecurityByName)(
		const char *name, u32 *attributes, void *descriptor, std::size_t *size);
	fs_status (*Create)(const char *name, u32 options, context *made);
	// info may be null, and then no sampler is asked.
	fs_status (*Open)(
		const char *name, u32 options, context *opened, FSP_FSCTL_FILE_INFO *info);
	fs_status (*Overwrite)(context file);
	void (*Cleanup)(context file);
	void (*Close)(context file);
	fs_status (*Read)(context file, void *buffer, u64 offset, u32 length, u32 *transferred);
	fs_status (*Write)(
		context file, const void *buffer, u64 offset, u32 length, u32 *transferred);
	fs_status (*Flush)(context file);
	fs_status (*GetFileInfo)(context file, FSP_FSCTL_FILE_INFO *info);
	fs_status (*SetBasicInfo)(context file, u32 attributes, FSP_FSCTL_FILE_INFO *info);
	fs_status (*SetFileSize)(context file, u64 size, FSP_FSCTL_FILE_INFO *info);
	fs_status (*Rename)(context file, const char *from, const char *to);
	fs_status (*GetSecurity)(context file, void *descriptor, std::size_t *size);
	fs_status (*SetSecurity)(context file, const void *descriptor);
	// marker: the name of the last record that the caller has, null for the first. As many
	// records as fit in length bytes are added to buffer.
	fs_status (*ReadDirectory)(context file, const char *pattern, const char *marker,
		std::vector<FSP_FSCTL_DIR_INFO> *buffer, u32 length, u32 *transferred);
	fs_status (*SetDelete)(context file, const char *name, bool remove);
};
extern const FSP_FILE_SYSTEM_INTERFACE PtfsInterface;

// The service as it runs; there is one.
struct PTFS {
	const drive_service *FileSystem;
	char16_t Path[100]; // 200 bytes, the first of them 'C'
};
extern std::unique_ptr<PTFS> Ptfs;
extern std::string MountPoint; // where it is to be mounted
extern u32 DebugFlags;         // other than 0: the host's library logs what it does
extern fs_status Result;       // of the last service

_fs_handle *get_fs_from_handle(u64 handle);
// Free the entry of a handle. False, and a line in the log, when there is none.
bool close_handle(u64 handle);
// Print a system code and its words.
void display_error(int code);
// 0, or 3 when the buffer is too small; descriptor may be null. Access rights are the mount's: what is handed out says
// nothing of them.
int get_security_descriptor(const char *name, void *descriptor, std::size_t *size);
fs_status _get_volume_info(const char *source, int line, FSP_FSCTL_VOLUME_INFO *info);

// Taken by a close without waiting; ends the process when it cannot be made.
void make_close_semaphore();
// Forget every open folder; for start_filesystem and tests.
void clear_fs_handles();
// Set up everything, mount at MountPoint, serve until the program is to end or the drive is
// unmounted, and unmount. A drive that cannot be had ends the process.
void start_filesystem();
fs_status SvcStart();
fs_status SvcStop();

// ---- The drive (fsmidi_drive.cpp) -------------------------------------------------------------

inline constexpr double listing_seconds = 1; // a listing is served again; FileInfoTimeout
inline constexpr double name_seconds = 30;   // names are looked up in a listing
inline constexpr double call_seconds = 60;   // from a call to the last request for it
inline constexpr double rescan_seconds = 10; // between two looks for samplers that were silent
inline constexpr std::size_t most_kept_listings = 512;

extern const drive_operations sampler_drive;

// Look for samplers where the bus has changed, or where one was silent a while ago. What stays
// plugged in stays listed, also while another program uses it.
void refresh_samplers();
// Forget listings and what is known of the bus; for start_filesystem and tests.
void forget_drive();

} // namespace velmor
