// journey_drive.cpp - the drive of the demo's samplers, mounted and listed as a user would
//
// velmorfs, which lies beside this program, runs as a process of its own on a folder that is made
// for it, and ls lists what is there. Every wait has an end, and the drive is unmounted whatever
// happens. What must be seen is what the virtual disks of this process hold: both processes fill
// them alike.

#include "programs/journey_parts.h"
#include "src/velmor.h"
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <poll.h>
#include <sstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmor
{

using words = std::vector<std::string>;
using steady = std::chrono::steady_clock;

static constexpr std::chrono::seconds patience{ 20 };

// ---- Other programs ---------------------------------------------------------------------------

struct child {
	pid_t pid = -1;
	int out = -1; // what it says
};

// It ends with this process.
static child start(const words &command)
{
	int ends[2];
	if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
		return {};
	std::vector<char *> arguments;
	for (const std::string &word : command)
		arguments.push_back(const_cast<char *>(word.c_str()));
	arguments.push_back(nullptr);
	const child c = { fork(), ends[0] };
	if (c.pid == 0) {
		prctl(PR_SET_PDEATHSIG, SIGTERM);
		dup2(ends[1], STDOUT_FILENO);
		dup2(ends[1], STDERR_FILENO);
		execvp(arguments[0], arguments.data());
		_exit(127);
	}
	close(ends[1]);
	return c;
}

static std::string heard_from(const child &c)
{
	std::string text;
	char part[4096];
	for (ssize_t got = 0; (got = read(c.out, part, sizeof part)) > 0;)
		text.append(part, static_cast<std::size_t>(got));
	return text;
}

// The status of its exit; -1 when it had to be killed.
static int await_end(const child &c, std::string *said)
{
	const auto end = steady::now() + patience;
	int status = -1;
	bool killed = c.pid <= 0;
	while (c.pid > 0 && waitpid(c.pid, &status, WNOHANG) == 0) {
		*said += heard_from(c);
		poll(nullptr, 0, 5);
		if (!killed && steady::now() > end) {
			killed = true;
			kill(c.pid, SIGKILL);
		}
	}
	*said += heard_from(c);
	close(c.out);
	return !killed && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// ---- The drive ----------------------------------------------------------------------------------

class mounted_drive
{
public:
	std::string point, refusal; // why it is not there

	explicit mounted_drive(const std::string &program)
	{
		std::string pattern =
			std::filesystem::temp_directory_path() / "velmor-drive-XXXXXX";
		if (!mkdtemp(pattern.data())) {
			refusal = "no folder could be made for it";
			return;
		}
		point = pattern;
		server = start({ program, "--demo", point });
		await_mount();
	}
	~mounted_drive() { unmount(); }
	mounted_drive(const mounted_drive &) = delete;

	// Ends the program as Ctrl-C does. True: it ended well, and the folder is a folder again.
	bool unmount()
	{
		if (point.empty())
			return true;
		if (server.pid > 0)
			kill(server.pid, SIGTERM);
		std::string said;
		const bool well = await_end(server, &said) == 0;
		if (is_mounted())
			await_end(start({ "fusermount3", "-u", "-z", point }), &said);
		// Only ever the empty folder.
		const bool gone = rmdir(point.c_str()) == 0;
		point.clear();
		return well && gone;
	}

private:
	child server;

	// The system's list tells; a drive that does not answer cannot hold this up.
	bool is_mounted() const
	{
		const std::string name = point.substr(point.rfind('/')) + " ";
		std::ifstream mounts("/proc/self/mounts");
		for (std::string line; std::getline(mounts, line);)
			if (line.find(name) != line.npos)
				return true;
		return false;
	}
	void await_mount()
	{
		const auto end = steady::now() + patience;
		while (refusal.empty() && !is_mounted()) {
			if (server.pid <= 0 || waitpid(server.pid, nullptr, WNOHANG) != 0) {
				refusal = heard_from(server);
				while (refusal.ends_with('\n'))
					refusal.pop_back();
				server.pid = -1;
				if (refusal.empty())
					refusal = "velmorfs ended without a word";
			} else if (steady::now() > end) {
				refusal = "nothing was mounted in time";
			}
			poll(nullptr, 0, 5);
		}
	}
};

// ---- What is seen there ---------------------------------------------------------------------------

static constexpr long long is_folder = -1;
using listing = std::map<std::string, long long>; // sizes

// A line of it: mode, links, owner, group, size, three words of a date, name.
static listing listed(const std::string &path)
{
	std::string said;
	if (await_end(start({ "env", "LC_ALL=C", "ls", "-ln", path }), &said) != 0) {
		check(false, "ls said: " + said);
		return {};
	}
	listing found;
	std::istringstream lines(said);
	for (std::string line; std::getline(lines, line);) {
		std::istringstream fields(line);
		std::string mode, links, owner, group, month, day, time, name;
		long long size = 0;
		fields >> mode >> links >> owner >> group >> size >> month >> day >> time;
		if (!fields || fields.get() != ' ' || !std::getline(fields, name))
			continue; // the total
		found[name] = mode.starts_with("d") ? is_folder : size;
	}
	return found;
}

static listing held(const std::vector<disk_folder> &folders, const std::vector<disk_file> &files)
{
	listing all;
	for (const disk_folder &f : folders)
		all[f.name] = is_folder;
	for (const disk_file &f : files)
		all[f.name] = f.size;
	return all;
}

static void look_into_volume(const std::string &path, const disk_volume &volume)
{
	check(listed(path) == held(volume.folders, volume.files),
		format_text("\"%s\" has its %zu folders and %zu files, with their sizes",
			volume.name.c_str(), volume.folders.size(), volume.files.size()));
	constexpr std::size_t many = 200;
	for (const disk_folder &f : volume.folders)
		if (f.files.size() >= many)
			check(listed(path + "/" + f.name) == held(f.folders, f.files),
				format_text("\"%s\" has its %zu files, with their sizes",
					f.name.c_str(), f.files.size()));
}

static void look_around(const journey &trip, const std::string &point)
{
	listing samplers;
	for (const usb_stop &stop : trip.usb)
		samplers[stop.name] = is_folder;
	check(listed(point) == samplers,
		format_text("it shows the %zu samplers on the USB", samplers.size()));
	for (const usb_stop &stop : trip.usb) {
		listing volumes;
		for (const disk_volume &v : stop.sampler.disks.volumes)
			volumes[v.name] = is_folder;
		const std::string path = point + "/" + stop.name;
		check(listed(path) == volumes,
			format_text("%s has its %zu volumes", stop.name.c_str(), volumes.size()));
		for (const disk_volume &v : stop.sampler.disks.volumes)
			look_into_volume(path + "/" + v.name, v);
	}
}

static std::string why_no_drive(const std::string &program)
{
	if (access("/dev/fuse", F_OK) != 0)
		return "this system has no /dev/fuse";
	if (access("/dev/fuse", R_OK | W_OK) != 0)
		return "/dev/fuse may not be opened";
	return access(program.c_str(), X_OK) != 0 ? program + " was not built" : "";
}

// What the kernel or fusermount3 say where this user may not mount: in most containers.
static bool is_not_allowed(const std::string &said)
{
	for (const char *reason : { "Operation not permitted", "Permission denied", "fusermount3" })
		if (said.find(reason) != said.npos)
			return true;
	return false;
}

void list_drive(const journey &trip)
{
	step("Mount the drive of the samplers on the USB, and list it");
	std::error_code unknown;
	const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", unknown);
	const std::string program = self.parent_path() / "velmorfs";
	const std::string reason = why_no_drive(program);
	if (!reason.empty()) {
		std::printf("  left out: %s\n", reason.c_str());
		return;
	}
	mounted_drive drive(program);
	if (!drive.refusal.empty()) {
		if (is_not_allowed(drive.refusal))
			std::printf("  left out: %s\n", drive.refusal.c_str());
		else
			check(false, "it is mounted: " + drive.refusal);
		return;
	}
	check(true, "it is mounted");
	look_around(trip, drive.point);
	check(drive.unmount(), "it is unmounted, and its folder is gone");
}

} // namespace velmor
