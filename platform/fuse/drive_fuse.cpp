// drive_fuse.cpp - a drive on libfuse3: calls wait in one queue and are answered by one thread
//
// The low-level interface is used, since a call can then be answered whenever its answer is
// there: a reader takes calls from the kernel and puts them into the queue, and the main thread
// answers them. No thread waits for a sampler.
//
// What the kernel knows by a number is a node: a name in a folder. It lives as long as the kernel
// counts look-ups of it. Listings tell sizes along with names, so that ls -l asks nothing more.

#define FUSE_USE_VERSION 314
#include "platform/fuse/drive_fuse.h"
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fuse3/fuse_lowlevel.h>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace velmor
{

static constexpr unsigned folder_mode = S_IFDIR | 0555, file_mode = S_IFREG | 0444;
static constexpr std::size_t longest_name = 255;
static constexpr std::size_t most_listed_bytes = 128 * 1024; // of one piece of a listing

struct open_folder {
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
	open_folder *folder;
	double came; // steady seconds
};

// A name in a folder.
struct node {
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
	std::map<fuse_ino_t, node> nodes;
	std::map<std::pair<std::string, std::string>, fuse_ino_t> numbers;
	std::map<open_folder *, std::unique_ptr<open_folder>> open_folders;
	fuse_ino_t next_number = FUSE_ROOT_ID + 1;
};
static std::unique_ptr<mounted_drive> drive;

static double steady_seconds()
{
	return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
		.count();
}

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
		return drive->parameters.root;
	const auto found = drive->nodes.find(number);
	return found == drive->nodes.end() ? "" : found->second.entry.path;
}

static fuse_ino_t count_lookup(
	const std::string &parent, const std::string &name, const drive_entry &entry)
{
	fuse_ino_t &number = drive->numbers[{ parent, name }];
	if (!number) {
		number = drive->next_number++;
		drive->nodes[number] = { parent, name, entry, 0 };
	}
	node &known = drive->nodes[number];
	known.entry = entry;
	known.lookups++;
	return number;
}

static void forget_lookups(fuse_ino_t number, std::uint64_t count)
{
	const auto found = drive->nodes.find(number);
	if (found == drive->nodes.end())
		return;
	found->second.lookups -= std::min(count, found->second.lookups);
	if (found->second.lookups)
		return;
	drive->numbers.erase({ found->second.parent, found->second.name });
	drive->nodes.erase(found);
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
	info.st_blksize = drive->parameters.block_size;
	info.st_mtim.tv_sec = static_cast<time_t>(drive->parameters.made);
	info.st_atim = info.st_ctim = info.st_mtim;
	return info;
}

static double keep_seconds()
{
	return drive->parameters.keep_ms / 1000.0;
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

static bool answer_lookup(const fuse_call &call, const drive_call &how)
{
	drive_entry entry;
	const std::string parent = path_of(call.node);
	const drive_result result = drive->operations.find(how, parent, call.name, &entry);
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

static bool answer_forget(const fuse_call &call, const drive_call &)
{
	forget_lookups(call.node, call.size);
	return true;
}

static bool answer_attributes(const fuse_call &call, const drive_call &how)
{
	drive_entry entry = { .name = "", .path = "", .folder = true, .size = 0 };
	drive_result result = drive_ok;
	if (call.node != FUSE_ROOT_ID) {
		const auto found = drive->nodes.find(call.node);
		result = found == drive->nodes.end()
				 ? drive_not_found
				 : drive->operations.find(
					   how, found->second.parent, found->second.name, &entry);
	}
	if (result != drive_ok)
		return answer_error(call, result);
	const struct stat info = attributes_of(call.node, entry.folder, entry.size);
	fuse_reply_attr(call.request, &info, keep_seconds());
	return true;
}

static bool answer_open_folder(const fuse_call &call, const drive_call &)
{
	auto opened = std::make_unique<open_folder>();
	opened->path = path_of(call.node);
	const drive_result result = drive->operations.open_folder(opened->path, &opened->folder);
	if (result != drive_ok)
		return answer_error(call, result);
	fuse_file_info info = {};
	info.fh = reinterpret_cast<std::uintptr_t>(opened.get());
	if (fuse_reply_open(call.request, &info) == 0)
		drive->open_folders[opened.get()] = std::move(opened);
	else
		drive->operations.close_folder(opened->folder);
	return true;
}

static bool answer_close_folder(const fuse_call &call, const drive_call &)
{
	drive->operations.close_folder(call.folder->folder);
	drive->open_folders.erase(call.folder);
	fuse_reply_err(call.request, 0);
	return true;
}

// Adds one entry to a piece of a listing; false when there is no room for it.
static bool add_entry(const fuse_call &call, std::vector<char> *piece, const char *name,
	const fuse_entry_param &entry, off_t next)
{
	const std::size_t left = call.size - piece->size();
	const auto put = [&](char *room, std::size_t size) {
		return call.with_attributes ? fuse_add_direntry_plus(
						      call.request, room, size, name, &entry, next)
					    : fuse_add_direntry(call.request, room, size, name,
						      &entry.attr, next);
	};
	const std::size_t size = put(nullptr, 0);
	if (size > left)
		return false;
	const std::size_t at = piece->size();
	piece->resize(at + size);
	put(piece->data() + at, size);
	return true;
}

// Place 0 is ".", 1 is "..". The kernel counts no look-ups of them.
static bool add_place(const fuse_call &call, std::vector<char> *piece, std::size_t place)
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
	if (add_entry(call, piece, entry.name.c_str(), entry_of(number, entry), next))
		return true;
	forget_lookups(number, 1);
	return false;
}

// A listing is read from its beginning once, and the pieces behind it are of the same one.
static bool answer_listing(const fuse_call &call, const drive_call &how)
{
	if (call.offset == 0) {
		const drive_result result = drive->operations.list_folder(
			how, call.folder->folder, call.folder->path, &call.folder->entries);
		// "Not found" would pass for an empty folder with ls.
		if (result != drive_ok)
			return answer_error(
				call, result == drive_not_found ? drive_failed : result);
	}
	std::vector<char> piece;
	piece.reserve(std::min(call.size, most_listed_bytes));
	for (std::size_t place = static_cast<std::size_t>(std::max<off_t>(call.offset, 0));
		place < call.folder->entries.size() + 2 && add_place(call, &piece, place);
		place++) {
	}
	fuse_reply_buf(call.request, piece.data(), piece.size());
	return true;
}

static bool answer_open_file(const fuse_call &call, const drive_call &)
{
	const drive_result result = drive->operations.read_file(path_of(call.node));
	return answer_error(call, result == drive_ok ? drive_refused : result);
}

static bool answer_sizes(const fuse_call &call, const drive_call &)
{
	drive_sizes sizes = {};
	const drive_result result = drive->operations.sizes(&sizes);
	if (result != drive_ok)
		return answer_error(call, result);
	const std::uint64_t block = static_cast<std::uint64_t>(drive->parameters.block_size);
	struct statvfs told = {};
	told.f_bsize = told.f_frsize = block;
	told.f_blocks = sizes.total / block;
	told.f_bfree = told.f_bavail = sizes.free / block;
	told.f_fsid = drive->parameters.serial;
	told.f_namemax = longest_name;
	told.f_flag = ST_RDONLY;
	fuse_reply_statfs(call.request, &told);
	return true;
}

// ---- The queue ------------------------------------------------------------------------------------

static void wake_main_thread(fuse_req_t, void *)
{
	if (drive->waiting)
		drive->waiting();
}

static void enqueue(fuse_call &&call)
{
	call.came = steady_seconds();
	{
		const std::lock_guard hold(drive->lock);
		drive->calls.push_back(std::move(call));
	}
	wake_main_thread(nullptr, nullptr);
}

static std::optional<fuse_call> next_call()
{
	const std::lock_guard hold(drive->lock);
	if (drive->calls.empty())
		return std::nullopt;
	fuse_call call = std::move(drive->calls.front());
	drive->calls.pop_front();
	return call;
}

// True when it was answered.
static bool answer_call(const fuse_call &call, bool may_ask)
{
	const bool forgets = call.answer == answer_forget;
	if (!forgets && call.answer != answer_close_folder && fuse_req_interrupted(call.request)) {
		fuse_reply_err(call.request, EINTR);
		return true;
	}
	return call.answer(call, { .may_ask = may_ask,
					 .waited = steady_seconds() - call.came,
					 .given_up = [request = call.request] {
						 return fuse_req_interrupted(request) != 0;
					 } });
}

static void answer_calls(bool may_ask)
{
	std::list<fuse_call> left;
	while (std::optional<fuse_call> call = next_call())
		if (!answer_call(*call, may_ask))
			left.push_back(std::move(*call));
	const std::lock_guard hold(drive->lock);
	drive->calls.splice(drive->calls.begin(), left);
}

// ---- What the kernel calls, on the reader's thread ---------------------------------------------------

static fuse_call call_for(
	fuse_req_t request, fuse_ino_t node, bool (*answer)(const fuse_call &, const drive_call &))
{
	return { .answer = answer,
		.request = request,
		.node = node,
		.name = "",
		.size = 0,
		.offset = 0,
		.with_attributes = false,
		.folder = nullptr,
		.came = 0 };
}

// A caller that goes away while it waits is let go at once.
static void take(fuse_call &&call)
{
	fuse_req_interrupt_func(call.request, wake_main_thread, nullptr);
	enqueue(std::move(call));
}

static void take_forget(fuse_ino_t node, std::uint64_t count)
{
	fuse_call call = call_for(nullptr, node, answer_forget);
	call.size = count;
	enqueue(std::move(call));
}

static void take_listing(fuse_req_t request, fuse_ino_t node, std::size_t size, off_t offset,
	fuse_file_info *info, bool with_attributes)
{
	fuse_call call = call_for(request, node, answer_listing);
	call.size = size;
	call.offset = offset;
	call.with_attributes = with_attributes;
	call.folder = reinterpret_cast<open_folder *>(info->fh);
	take(std::move(call));
}

static fuse_lowlevel_ops kernel_calls()
{
	fuse_lowlevel_ops calls = {};
	calls.init = [](void *, fuse_conn_info *connection) {
		// Names always come with their sizes.
		connection->want &=
			~(static_cast<unsigned>(FUSE_CAP_READDIRPLUS_AUTO) | FUSE_CAP_SPLICE_READ |
				FUSE_CAP_SPLICE_WRITE | FUSE_CAP_SPLICE_MOVE);
	};
	calls.lookup = [](fuse_req_t request, fuse_ino_t parent, const char *name) {
		fuse_call call = call_for(request, parent, answer_lookup);
		call.name = name;
		take(std::move(call));
	};
	calls.forget = [](fuse_req_t request, fuse_ino_t node, std::uint64_t count) {
		take_forget(node, count);
		fuse_reply_none(request);
	};
	calls.forget_multi = [](fuse_req_t request, std::size_t count, fuse_forget_data *all) {
		for (std::size_t i = 0; i < count; i++)
			take_forget(all[i].ino, all[i].nlookup);
		fuse_reply_none(request);
	};
	calls.getattr = [](fuse_req_t request, fuse_ino_t node, fuse_file_info *) {
		take(call_for(request, node, answer_attributes));
	};
	calls.opendir = [](fuse_req_t request, fuse_ino_t node, fuse_file_info *) {
		take(call_for(request, node, answer_open_folder));
	};
	calls.readdir = [](fuse_req_t request, fuse_ino_t node, std::size_t size, off_t offset,
				fuse_file_info *info) {
		take_listing(request, node, size, offset, info, false);
	};
	calls.readdirplus = [](fuse_req_t request, fuse_ino_t node, std::size_t size, off_t offset,
				    fuse_file_info *info) {
		take_listing(request, node, size, offset, info, true);
	};
	calls.releasedir = [](fuse_req_t request, fuse_ino_t node, fuse_file_info *info) {
		fuse_call call = call_for(request, node, answer_close_folder);
		call.folder = reinterpret_cast<open_folder *>(info->fh);
		enqueue(std::move(call));
	};
	calls.open = [](fuse_req_t request, fuse_ino_t node, fuse_file_info *) {
		take(call_for(request, node, answer_open_file));
	};
	calls.statfs = [](fuse_req_t request, fuse_ino_t node) {
		take(call_for(request, node, answer_sizes));
	};
	return calls;
}

static void read_calls()
{
	fuse_buf buffer = {};
	const int device = fuse_session_fd(drive->session);
	while (!fuse_session_exited(drive->session)) {
		pollfd ready[] = { { device, POLLIN, 0 }, { drive->ending, POLLIN, 0 } };
		if (poll(ready, 2, -1) < 0 && errno != EINTR)
			break;
		if (ready[1].revents)
			break;
		const int size = fuse_session_receive_buf(drive->session, &buffer);
		if (size == -EINTR || size == -EAGAIN)
			continue;
		if (size <= 0)
			break;
		fuse_session_process_buf(drive->session, &buffer);
	}
	std::free(buffer.mem);
	{
		const std::lock_guard hold(drive->lock);
		drive->unmounted = true;
	}
	wake_main_thread(nullptr, nullptr);
}

// ---- Mounting ------------------------------------------------------------------------------------

// What libfuse said last, for people; all of it to standard error where that is wanted.
static std::string last_words;
static bool talkative = false;

static void hear(fuse_log_level, const char *format, va_list list)
{
	char words[1024];
	std::vsnprintf(words, sizeof words, format, list);
	if (talkative)
		std::fputs(words, stderr);
	last_words = words;
	while (last_words.ends_with('\n'))
		last_words.pop_back();
}

static fuse_session *new_session(const drive_parameters &parameters)
{
	const std::string options =
		"ro,default_permissions,nodev,nosuid,noatime,fsname=" + parameters.type +
		",subtype=" + parameters.type;
	const char *words[] = { parameters.type.c_str(), "-o", options.c_str(), "-d" };
	fuse_args arguments =
		FUSE_ARGS_INIT(parameters.talkative ? 4 : 3, const_cast<char **>(words));
	const fuse_lowlevel_ops calls = kernel_calls();
	fuse_session *session = fuse_session_new(&arguments, &calls, sizeof calls, nullptr);
	fuse_opt_free_args(&arguments);
	return session;
}

static void end_session()
{
	if (drive->session)
		fuse_session_destroy(drive->session);
	if (drive->ending >= 0)
		close(drive->ending);
	drive.reset();
}

static int mount(const drive_parameters &parameters, const drive_operations &operations,
	const char *mount_point, std::string *why)
{
	talkative = parameters.talkative;
	fuse_set_log_func(hear);
	last_words.clear();
	errno = 0;
	drive = std::make_unique<mounted_drive>();
	drive->parameters = parameters;
	drive->operations = operations;
	drive->ending = eventfd(0, EFD_CLOEXEC);
	drive->session = new_session(parameters);
	if (drive->ending >= 0 && drive->session &&
		fuse_session_mount(drive->session, mount_point) == 0)
		return 0;
	const int code = errno ? errno : EIO;
	*why = last_words.empty() ? std::strerror(code) : last_words;
	end_session();
	return code;
}

static bool start(void (*waiting)())
{
	const int device = fuse_session_fd(drive->session);
	const int flags = fcntl(device, F_GETFL);
	if (flags < 0 || fcntl(device, F_SETFL, flags | O_NONBLOCK) < 0)
		return false;
	drive->waiting = waiting;
	drive->reader = std::thread(read_calls);
	return true;
}

static void refuse_waiting()
{
	while (std::optional<fuse_call> call = next_call()) {
		if (call->answer == answer_close_folder)
			answer_close_folder(*call, {});
		else if (call->answer != answer_forget)
			fuse_reply_err(call->request, ENODEV);
	}
}

// The reader ends first, so that nobody waits for an answer that will not come.
static void stop()
{
	if (!drive)
		return;
	if (drive->reader.joinable()) {
		const std::uint64_t one = 1;
		(void)!write(drive->ending, &one, sizeof one);
		drive->reader.join();
	}
	refuse_waiting();
	for (const auto &row : drive->open_folders)
		drive->operations.close_folder(row.second->folder);
	fuse_session_unmount(drive->session);
	end_session();
}

static bool unmounted()
{
	if (!drive)
		return true;
	const std::lock_guard hold(drive->lock);
	return drive->unmounted;
}

// ---- The computer's own disk -----------------------------------------------------------------------

static bool host_disk(std::uint64_t *free, std::uint64_t *total)
{
	struct statvfs disk;
	if (statvfs("/", &disk) != 0)
		return false;
	*free = static_cast<std::uint64_t>(disk.f_bavail) * disk.f_frsize;
	*total = static_cast<std::uint64_t>(disk.f_blocks) * disk.f_frsize;
	return true;
}

static bool host_made(double *time)
{
	struct stat info;
	if (stat("/", &info) != 0)
		return false;
	*time = static_cast<double>(info.st_ctim.tv_sec);
	return true;
}

const drive_service fuse_drive = {
	.host_disk = host_disk,
	.host_made = host_made,
	.usable = why_not_usable,
	.mount = mount,
	.start = start,
	.answer = answer_calls,
	.unmounted = unmounted,
	.stop = stop,
};

} // namespace velmor
