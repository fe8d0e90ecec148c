// answers.cpp - what the kernel calls a drive for, and what it is told
//
// What the kernel knows by a number is a node: a name in a folder. It lives as long as the kernel
// counts look-ups of it. Listings tell sizes along with names, so that ls -l asks nothing more.
//
// Main thread only.

#include "platform/fuse/drive_fuse.h"
#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace velmor
{

static constexpr unsigned folder_mode = S_IFDIR | 0555, file_mode = S_IFREG | 0444;
static constexpr std::size_t longest_name = 255;
static constexpr std::size_t most_listed_bytes = 128 * 1024; // of one piece of a listing

static int error_of(drive_result result)
{
	static constexpr struct {
		drive_result result;
		int error;
	} rows[] = {
		{ drive_not_found, ENOENT },
		{ drive_no_folder, ENOTDIR },
		{ drive_refused, EOPNOTSUPP },
		{ drive_too_many, ENFILE },
		{ drive_no_device, ENODEV },
		{ drive_busy, EBUSY },
		{ drive_denied, EACCES },
		{ drive_timed_out, ETIMEDOUT },
		{ drive_ended, EINTR },
	};
	for (const auto &row : rows)
		if (row.result == result)
			return row.error;
	return EIO;
}

// ---- Nodes ------------------------------------------------------------------------------------

static std::string path_of(fuse_ino_t number)
{
	if (number == FUSE_ROOT_ID)
		return the_drive->parameters.root;
	const auto found = the_drive->nodes.find(number);
	return found == the_drive->nodes.end() ? "" : found->second.entry.path;
}

static fuse_ino_t count_lookup(
	const std::string &parent, const std::string &name, const drive_entry &entry)
{
	fuse_ino_t &number = the_drive->numbers[{ parent, name }];
	if (!number) {
		number = the_drive->next_number++;
		the_drive->nodes[number] = { parent, name, entry, 0 };
	}
	drive_node &known = the_drive->nodes[number];
	known.entry = entry;
	known.lookups++;
	return number;
}

static void forget_lookups(fuse_ino_t number, std::uint64_t count)
{
	const auto found = the_drive->nodes.find(number);
	if (found == the_drive->nodes.end())
		return;
	found->second.lookups -= std::min(count, found->second.lookups);
	if (found->second.lookups)
		return;
	the_drive->numbers.erase({ found->second.parent, found->second.name });
	the_drive->nodes.erase(found);
}

static struct stat attributes_of(fuse_ino_t number, bool folder, std::uint64_t size)
{
	struct stat info = {};
	info.st_ino = number;
	info.st_mode = folder ? folder_mode : file_mode;
	info.st_nlink = folder ? 2 : 1;
	info.st_uid = geteuid();
	info.st_gid = getegid();
	info.st_size = static_cast<off_t>(size);
	info.st_blocks = static_cast<blkcnt_t>((size + 511) / 512);
	info.st_blksize = the_drive->parameters.block_size;
	info.st_mtim.tv_sec = static_cast<time_t>(the_drive->parameters.made);
	info.st_atim = info.st_ctim = info.st_mtim;
	return info;
}

static double keep_seconds()
{
	return the_drive->parameters.keep_ms / 1000.0;
}

static fuse_entry_param entry_of(fuse_ino_t number, const drive_entry &entry)
{
	fuse_entry_param told = {};
	told.ino = number;
	told.attr = attributes_of(number, entry.folder, entry.size);
	told.attr_timeout = told.entry_timeout = keep_seconds();
	return told;
}

// ---- Answers ------------------------------------------------------------------------------------

// Answer an error; false for a call that has to wait.
static bool answer_error(const fuse_call &call, drive_result result)
{
	if (result == drive_later)
		return false;
	fuse_reply_err(call.request, error_of(result));
	return true;
}

bool answer_lookup(const fuse_call &call, const drive_call &how)
{
	drive_entry entry;
	const std::string parent = path_of(call.node);
	const drive_result result = the_drive->operations.find(how, parent, call.name, &entry);
	if (result == drive_not_found) {
		fuse_entry_param nothing = {};
		nothing.entry_timeout = keep_seconds();
		fuse_reply_entry(call.request, &nothing);
		return true;
	}
	if (result != drive_ok)
		return answer_error(call, result);
	const fuse_ino_t number = count_lookup(parent, call.name, entry);
	const fuse_entry_param told = entry_of(number, entry);
	if (fuse_reply_entry(call.request, &told) != 0)
		forget_lookups(number, 1); // nobody waited for it any more
	return true;
}

bool answer_forget(const fuse_call &call, const drive_call &)
{
	forget_lookups(call.node, call.size);
	return true;
}

bool answer_attributes(const fuse_call &call, const drive_call &how)
{
	drive_entry entry = { .name = "", .path = "", .folder = true, .size = 0 };
	drive_result result = drive_ok;
	if (call.node != FUSE_ROOT_ID) {
		const auto found = the_drive->nodes.find(call.node);
		// A copy: while a sampler is asked, the kernel may let the node go.
		const drive_node node =
			found == the_drive->nodes.end() ? drive_node{} : found->second;
		result = node.name.empty()
				 ? drive_not_found
				 : the_drive->operations.find(how, node.parent, node.name, &entry);
	}
	if (result != drive_ok)
		return answer_error(call, result);
	const struct stat info = attributes_of(call.node, entry.folder, entry.size);
	fuse_reply_attr(call.request, &info, keep_seconds());
	return true;
}

bool answer_open_folder(const fuse_call &call, const drive_call &)
{
	auto opened = std::make_unique<folder_in_use>();
	opened->path = path_of(call.node);
	const drive_result result =
		the_drive->operations.open_folder(opened->path, &opened->folder);
	if (result != drive_ok)
		return answer_error(call, result);
	fuse_file_info info = {};
	info.fh = reinterpret_cast<std::uintptr_t>(opened.get());
	if (fuse_reply_open(call.request, &info) == 0)
		the_drive->open_folders[opened.get()] = std::move(opened);
	else
		the_drive->operations.close_folder(opened->folder);
	return true;
}

bool answer_close_folder(const fuse_call &call, const drive_call &)
{
	the_drive->operations.close_folder(call.folder->folder);
	the_drive->open_folders.erase(call.folder);
	fuse_reply_err(call.request, 0);
	return true;
}

struct listing_piece {
	std::vector<char> bytes;
	std::vector<fuse_ino_t> counted; // nodes whose look-ups it counts
};

// Adds one entry; false when there is no room for it.
static bool add_entry(const fuse_call &call, listing_piece *piece, const char *name,
	const fuse_entry_param &entry, off_t next)
{
	const std::size_t left = call.size - piece->bytes.size();
	const auto put = [&](char *room, std::size_t size) {
		return call.with_attributes ? fuse_add_direntry_plus(
						      call.request, room, size, name, &entry, next)
					    : fuse_add_direntry(call.request, room, size, name,
						      &entry.attr, next);
	};
	const std::size_t size = put(nullptr, 0);
	if (size > left)
		return false;
	const std::size_t at = piece->bytes.size();
	piece->bytes.resize(at + size);
	put(piece->bytes.data() + at, size);
	return true;
}

// Place 0 is ".", 1 is "..". The kernel counts no look-ups of them.
static bool add_place(const fuse_call &call, listing_piece *piece, std::size_t place)
{
	static constexpr std::size_t dots = 2;
	const off_t next = static_cast<off_t>(place + 1);
	if (place < dots) {
		fuse_entry_param self = {};
		self.attr = attributes_of(call.node, true, 0);
		return add_entry(call, piece, place ? ".." : ".", self, next);
	}
	const drive_entry &entry = call.folder->entries[place - dots];
	if (!call.with_attributes) {
		fuse_entry_param named = {};
		named.attr = attributes_of(FUSE_ROOT_ID, entry.folder, entry.size);
		return add_entry(call, piece, entry.name.c_str(), named, next);
	}
	const fuse_ino_t number = count_lookup(call.folder->path, entry.name, entry);
	piece->counted.push_back(number);
	if (add_entry(call, piece, entry.name.c_str(), entry_of(number, entry), next))
		return true;
	forget_lookups(number, 1);
	piece->counted.pop_back();
	return false;
}

// A listing is read from its beginning once, and the pieces behind it are of the same one.
bool answer_listing(const fuse_call &call, const drive_call &how)
{
	if (call.offset == 0) {
		const drive_result result = the_drive->operations.list_folder(
			how, call.folder->folder, call.folder->path, &call.folder->entries);
		// "Not found" would pass for an empty folder with ls.
		if (result != drive_ok)
			return answer_error(
				call, result == drive_not_found ? drive_failed : result);
	}
	listing_piece piece;
	piece.bytes.reserve(std::min(call.size, most_listed_bytes));
	for (std::size_t place = static_cast<std::size_t>(std::max<off_t>(call.offset, 0));
		place < call.folder->entries.size() + 2 && add_place(call, &piece, place);
		place++) {
	}
	if (fuse_reply_buf(call.request, piece.bytes.data(), piece.bytes.size()) != 0)
		for (const fuse_ino_t number : piece.counted)
			forget_lookups(number, 1); // nobody waited for them any more
	return true;
}

bool answer_open_file(const fuse_call &call, const drive_call &)
{
	const drive_result result = the_drive->operations.read_file(path_of(call.node));
	return answer_error(call, result == drive_ok ? drive_refused : result);
}

bool answer_sizes(const fuse_call &call, const drive_call &)
{
	drive_sizes sizes = {};
	const drive_result result = the_drive->operations.sizes(&sizes);
	if (result != drive_ok)
		return answer_error(call, result);
	const std::uint64_t block = static_cast<std::uint64_t>(the_drive->parameters.block_size);
	struct statvfs told = {};
	told.f_bsize = told.f_frsize = block;
	told.f_blocks = sizes.total / block;
	told.f_bfree = told.f_bavail = sizes.free / block;
	told.f_fsid = the_drive->parameters.serial;
	told.f_namemax = longest_name;
	told.f_flag = ST_RDONLY;
	fuse_reply_statfs(call.request, &told);
	return true;
}

} // namespace velmor
