// files_posix.cpp - files and folders of a POSIX host
//
// Codes are errno values.

#include "platform/files.h"
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmor
{

static std::string host_path(const char *path)
{
	std::string out = path;
	for (char &c : out)
		if (c == '\\')
			c = '/';
	return out;
}

static std::string system_path(const char *path)
{
	std::string out = path;
	for (char &c : out)
		if (c == '/')
			c = '\\';
	return out;
}

static int open_file(const char *path, file_mode mode, int *file)
{
	static constexpr int flags[] = { O_RDONLY, O_WRONLY | O_CREAT | O_TRUNC,
		O_WRONLY | O_CREAT | O_APPEND, O_WRONLY | O_CREAT | O_EXCL };
	*file = ::open(host_path(path).c_str(), flags[mode] | O_CLOEXEC, 0666);
	return *file < 0 ? errno : 0;
}

static int read_file(int file, void *bytes, std::size_t count, std::size_t *moved)
{
	*moved = 0;
	while (*moved < count) {
		const ssize_t n = ::read(file, static_cast<char *>(bytes) + *moved, count - *moved);
		if (n < 0 && errno == EINTR)
			continue;
		if (n < 0)
			return errno;
		if (n == 0)
			break;
		*moved += static_cast<std::size_t>(n);
	}
	return 0;
}

static int write_file(int file, const void *bytes, std::size_t count)
{
	const char *at = static_cast<const char *>(bytes);
	while (count) {
		const ssize_t n = ::write(file, at, count);
		if (n < 0 && errno == EINTR)
			continue;
		if (n <= 0)
			return n < 0 ? errno : ENOSPC;
		at += n;
		count -= static_cast<std::size_t>(n);
	}
	return 0;
}

static int code_of(int result)
{
	return result == 0 ? 0 : errno;
}

// Some file systems cannot be asked, and then there is nothing to wait for.
static int sync_file(int file)
{
	const bool refused = ::fsync(file) != 0 && errno != EINVAL && errno != ENOTSUP;
	return refused ? errno : 0;
}

// A folder that may be written into but not read cannot be opened, nor can its disk be asked.
static int sync_folder(const char *path)
{
	const int folder = ::open(host_path(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
	if (folder < 0)
		return errno == EACCES ? 0 : errno;
	const int code = sync_file(folder);
	::close(folder);
	return code;
}

static int stat_path(const char *path, file_info *info)
{
	const std::string name = host_path(path);
	struct ::stat found, itself;
	if (::stat(name.c_str(), &found) != 0 || ::lstat(name.c_str(), &itself) != 0)
		return errno;
	*info = { .size = static_cast<std::uint64_t>(found.st_size),
		.folder = S_ISDIR(found.st_mode),
		.regular = S_ISREG(found.st_mode),
		.link = S_ISLNK(itself.st_mode) };
	return 0;
}

static int list_folder(const char *path, std::vector<std::string> *names)
{
	names->clear();
	DIR *folder = opendir(host_path(path).c_str());
	if (!folder)
		return errno;
	errno = 0;
	while (const dirent *entry = readdir(folder)) {
		const std::string name = entry->d_name;
		if (name != "." && name != ".." && name.find('\\') == name.npos)
			names->push_back(name);
	}
	const int code = errno;
	closedir(folder);
	return code;
}

static const char *error_text(int code)
{
	static char text[256];
	// The GNU strerror_r names unknown codes too; those are not words.
	const char *words = strerrordesc_np(code);
	if (!words)
		return nullptr;
	std::snprintf(text, sizeof text, "%s", words);
	return text;
}

extern const files_service posix_files;
const files_service posix_files = {
	.open = open_file,
	.read = read_file,
	.write = write_file,
	.seek =
		[](int file, std::uint64_t offset) {
			return ::lseek(file, static_cast<off_t>(offset), SEEK_SET) < 0 ? errno : 0;
		},
	.sync = sync_file,
	.sync_folder = sync_folder,
	.close = [](int file) { return code_of(::close(file)); },
	.stat = stat_path,
	.rename =
		[](const char *from, const char *to) {
			return code_of(::rename(host_path(from).c_str(), host_path(to).c_str()));
		},
	.remove = [](const char *path) { return code_of(::unlink(host_path(path).c_str())); },
	.make_folder =
		[](const char *path) { return code_of(::mkdir(host_path(path).c_str(), 0777)); },
	.remove_folder = [](const char *path) { return code_of(::rmdir(host_path(path).c_str())); },
	.list = list_folder,
	.host_path = host_path,
	.system_path = system_path,
	.exists_already = [](int code) { return code == EEXIST; },
	.not_found = [](int code) { return code == ENOENT; },
	.disk_full = [](int code) { return code == ENOSPC || code == EDQUOT; },
	.process = [] { return static_cast<long>(::getpid()); },
	.process_runs =
		[](long number) {
			return ::kill(static_cast<pid_t>(number), 0) == 0 || errno == EPERM;
		},
	.error_text = error_text,
};

} // namespace velmor
