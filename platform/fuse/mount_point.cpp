// mount_point.cpp - whether a drive can be mounted on a folder, in words
//
// A process that was killed leaves its mount behind: every access answers "Transport endpoint is
// not connected" until it is unmounted.

#include "platform/fuse/drive_fuse.h"
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <fstream>
#include <memory>
#include <spawn.h>
#include <sstream>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmor
{

// The name of a folder that may be a dead mount, of which nothing can be asked.
static std::string absolute_name(std::string path)
{
	while (path.size() > 1 && path.ends_with('/'))
		path.pop_back();
	const std::size_t slash = path.rfind('/');
	const std::string folder = slash == path.npos ? "." : path.substr(0, slash + 1);
	char real[PATH_MAX];
	if (!realpath(folder.c_str(), real))
		return path;
	const std::string name = slash == path.npos ? path : path.substr(slash + 1);
	return std::string(real) + (std::strcmp(real, "/") ? "/" : "") + name;
}

// The list of mounts writes blanks and the like as \040.
static std::string without_octals(const std::string &text)
{
	std::string out;
	for (std::size_t i = 0; i < text.size(); i++) {
		if (text[i] == '\\' && i + 3 < text.size()) {
			out += static_cast<char>(std::stoi(text.substr(i + 1, 3), nullptr, 8));
			i += 3;
		} else {
			out += text[i];
		}
	}
	return out;
}

// What is mounted on a folder last, "fuse.velmorfs" or another type; "" for nothing.
static std::string mounted_type(const std::string &folder)
{
	std::ifstream mounts("/proc/self/mounts");
	std::string type;
	for (std::string line; std::getline(mounts, line);) {
		std::istringstream words(line);
		std::string source, where, of_type;
		words >> source >> where >> of_type;
		if (without_octals(where) == folder)
			type = of_type;
	}
	return type;
}

static bool run(const char *program, const char *const *arguments)
{
	pid_t child;
	if (posix_spawnp(&child, program, nullptr, nullptr, const_cast<char *const *>(arguments),
		    environ) != 0)
		return false;
	int status = 1;
	while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
	}
	return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

static bool detach(const char *mount_point)
{
	if (geteuid() == 0)
		return umount2(mount_point, MNT_DETACH) == 0;
	const char *const words[] = { "fusermount3", "-u", "-z", "-q", "--", mount_point, nullptr };
	return run(words[0], words);
}

static bool is_empty(const char *folder)
{
	const std::unique_ptr<DIR, int (*)(DIR *)> opened(opendir(folder), closedir);
	if (!opened)
		return false;
	while (const dirent *entry = readdir(opened.get()))
		if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
			return false;
	return true;
}

static std::string why_no_folder(const std::string &name)
{
	struct stat info;
	if (stat(name.c_str(), &info) != 0) {
		if (errno == ENOENT)
			return "There is no folder " + name + ". Make it first: mkdir -p " + name;
		return name + " cannot be used: " + std::strerror(errno) + ".";
	}
	if (!S_ISDIR(info.st_mode))
		return name + " is not a folder. The drive needs an empty folder to appear in.";
	if (access(name.c_str(), R_OK | W_OK | X_OK) != 0)
		return "You may not write in " + name + ". Choose a folder of your own.";
	if (!is_empty(name.c_str()))
		return name + " is not empty. The drive needs an empty folder to appear in.";
	return "";
}

static std::string why_no_fuse()
{
	const int device = open("/dev/fuse", O_RDWR | O_CLOEXEC);
	if (device >= 0) {
		close(device);
		return "";
	}
	if (errno == ENOENT || errno == ENODEV || errno == ENXIO)
		return "There is no /dev/fuse on this computer. Load the kernel's module for it: "
		       "modprobe fuse";
	return std::string("You may not use /dev/fuse (") + std::strerror(errno) +
	       "). The package fuse3 grants it to every user of a desktop.";
}

std::string why_not_usable(const char *mount_point, const char *type)
{
	const std::string name = absolute_name(mount_point);
	const std::string present = mounted_type(name);
	// The sizes are asked of the process; what else is known of a folder may be remembered.
	struct statvfs sizes;
	if (present == std::string("fuse.") + type) {
		if (statvfs(name.c_str(), &sizes) == 0)
			return "The drive is mounted at " + name + " already.";
		if (errno != ENOTCONN)
			return name + " cannot be used: " + std::strerror(errno) + ".";
		if (!detach(name.c_str()))
			return "A drive that was not unmounted is left at " + name +
			       ". Unmount it first: fusermount3 -u -z " + name;
	}
	const std::string wrong = why_no_folder(name);
	return wrong.empty() ? why_no_fuse() : wrong;
}

} // namespace velmor
