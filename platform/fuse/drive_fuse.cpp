// drive_fuse.cpp - a drive on libfuse3: calls wait in one queue and are answered by one thread
//
// The low-level interface is used, since a call can then be answered whenever its answer is
// there: a reader takes calls from the kernel and puts them into the queue, and the main thread
// answers them. No thread waits for a sampler.

#include "platform/fuse/drive_fuse.h"
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace velmor
{

std::unique_ptr<mounted_drive> the_drive;

static double steady_seconds()
{
	return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
		.count();
}

// ---- The queue ------------------------------------------------------------------------------------

static void wake_main_thread(fuse_req_t, void *)
{
	if (the_drive->waiting)
		the_drive->waiting();
}

static void enqueue(fuse_call &&call)
{
	call.came = steady_seconds();
	{
		const std::lock_guard hold(the_drive->lock);
		the_drive->calls.push_back(std::move(call));
	}
	wake_main_thread(nullptr, nullptr);
}

static std::optional<fuse_call> next_call()
{
	const std::lock_guard hold(the_drive->lock);
	if (the_drive->calls.empty())
		return std::nullopt;
	fuse_call call = std::move(the_drive->calls.front());
	the_drive->calls.pop_front();
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

static std::size_t calls_waiting()
{
	const std::lock_guard hold(the_drive->lock);
	return the_drive->calls.size();
}

// Those that wait now: what comes meanwhile has its own turn, and so has the program's end.
static void answer_calls(bool may_ask)
{
	std::list<fuse_call> left;
	for (std::size_t count = calls_waiting(); count > 0; count--) {
		std::optional<fuse_call> call = next_call();
		if (!call)
			break; // answered inside of another one
		if (!answer_call(*call, may_ask))
			left.push_back(std::move(*call));
	}
	{
		const std::lock_guard hold(the_drive->lock);
		the_drive->calls.splice(the_drive->calls.begin(), left);
	}
	if (may_ask && calls_waiting())
		wake_main_thread(nullptr, nullptr);
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

static void take_one_forget(fuse_req_t request, fuse_ino_t node, std::uint64_t count)
{
	take_forget(node, count);
	fuse_reply_none(request);
}

static void take_forgets(fuse_req_t request, std::size_t count, fuse_forget_data *all)
{
	for (std::size_t i = 0; i < count; i++)
		take_forget(all[i].ino, all[i].nlookup);
	fuse_reply_none(request);
}

static void take_listing(fuse_req_t request, fuse_ino_t node, std::size_t size, off_t offset,
	fuse_file_info *info, bool with_attributes)
{
	fuse_call call = call_for(request, node, answer_listing);
	call.size = size;
	call.offset = offset;
	call.with_attributes = with_attributes;
	call.folder = reinterpret_cast<folder_in_use *>(info->fh);
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
	calls.forget = take_one_forget;
	calls.forget_multi = take_forgets;
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
		call.folder = reinterpret_cast<folder_in_use *>(info->fh);
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
	const int device = fuse_session_fd(the_drive->session);
	while (!fuse_session_exited(the_drive->session)) {
		pollfd ready[] = { { device, POLLIN, 0 }, { the_drive->ending, POLLIN, 0 } };
		if (poll(ready, 2, -1) < 0 && errno != EINTR)
			break;
		if (ready[1].revents)
			break;
		const int size = fuse_session_receive_buf(the_drive->session, &buffer);
		if (size == -EINTR || size == -EAGAIN)
			continue;
		if (size <= 0)
			break;
		fuse_session_process_buf(the_drive->session, &buffer);
	}
	std::free(buffer.mem);
	{
		const std::lock_guard hold(the_drive->lock);
		the_drive->unmounted = true;
	}
	wake_main_thread(nullptr, nullptr);
}

// ---- Mounting ------------------------------------------------------------------------------------

// What libfuse said last, for people; all of it to standard error where that is wanted. It speaks on
// the reader's thread and on the main thread.
static std::mutex words_lock;
static std::string last_words; // under the lock
static bool talkative = false;

static void hear(fuse_log_level, const char *format, va_list list)
{
	char words[1024];
	std::vsnprintf(words, sizeof words, format, list);
	if (talkative)
		std::fputs(words, stderr);
	const std::lock_guard hold(words_lock);
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
	if (the_drive->session)
		fuse_session_destroy(the_drive->session);
	if (the_drive->ending >= 0)
		close(the_drive->ending);
	the_drive.reset();
}

static int mount(const drive_parameters &parameters, const drive_operations &operations,
	const char *mount_point, std::string *why)
{
	talkative = parameters.talkative;
	fuse_set_log_func(hear);
	last_words.clear();
	errno = 0;
	the_drive = std::make_unique<mounted_drive>();
	the_drive->parameters = parameters;
	the_drive->operations = operations;
	the_drive->ending = eventfd(0, EFD_CLOEXEC);
	the_drive->session = new_session(parameters);
	if (the_drive->ending >= 0 && the_drive->session &&
		fuse_session_mount(the_drive->session, mount_point) == 0)
		return 0;
	const int code = errno ? errno : EIO;
	*why = last_words.empty() ? std::strerror(code) : last_words;
	end_session();
	return code;
}

static bool start(void (*waiting)())
{
	const int device = fuse_session_fd(the_drive->session);
	const int flags = fcntl(device, F_GETFL);
	if (flags < 0 || fcntl(device, F_SETFL, flags | O_NONBLOCK) < 0)
		return false;
	the_drive->waiting = waiting;
	the_drive->reader = std::thread(read_calls);
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
	if (!the_drive)
		return;
	if (the_drive->reader.joinable()) {
		const std::uint64_t one = 1;
		(void)!write(the_drive->ending, &one, sizeof one);
		the_drive->reader.join();
	}
	refuse_waiting();
	for (const auto &row : the_drive->open_folders)
		the_drive->operations.close_folder(row.second->folder);
	fuse_session_unmount(the_drive->session);
	end_session();
}

static bool unmounted()
{
	if (!the_drive)
		return true;
	const std::lock_guard hold(the_drive->lock);
	return the_drive->unmounted;
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
