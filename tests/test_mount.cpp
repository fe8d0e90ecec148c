// test_mount.cpp - the drive as other programs see it: mounted by the kernel, walked by ls and find
//
// The drive is served by a child process with virtual samplers of the test's own; the test gives
// it commands over a pipe, and walks the mount with the system's programs. Every wait has a
// deadline, at which the server is killed, and that ends whatever waits for it.
//
// In the child a second is as long as the test wants: its clock stands still but for the command
// "age", so that what is kept for a second is kept however busy this computer is.

#include "platform/backends.h"
#include "platform/drive.h"
#include "platform/fuse/drive_fuse.h"
#include "platform/signals.h"
#include "src/diskqx.h"
#include "virtual/demo_usb.h"
#include "virtual/usb_bus.h"
#include <atomic>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <future>
#include <gtest/gtest.h>
#include <map>
#include <poll.h>
#include <regex>
#include <set>
#include <sstream>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

namespace velmor
{

using words = std::vector<std::string>;
using steady = std::chrono::steady_clock;
static constexpr auto patience = std::chrono::seconds(60);

// ---- The server --------------------------------------------------------------------------------

static std::atomic<double> age = 0;
static const clock_service standing_clock = {
	.time_of_day = [] { return 1700000000.0 + age; },
	.counter = [] { return 1000.0 + age; },
	.sleep_ms = [](int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); },
};

struct rack {
	timeline time;
	s5000 big;
	z4 small{ z4_model::z8 };
};

// What the host asked a machine about its disks, a letter each: volumes counted (n), listed (l),
// selected (s); root (r), folder (c); folders counted (D), named (d); files counted (F), named
// (f), sized (z). A dot stands for a wake-up, everything else is left out.
static char letter_of(const usb_bytes &message, std::size_t payload)
{
	static const std::map<int, char> letters = { { 0x04, 'n' }, { 0x05, 'l' }, { 0x02, 's' },
		{ 0x10, 'D' }, { 0x11, 'd' }, { 0x20, 'F' }, { 0x21, 'f' }, { 0x23, 'z' } };
	if (message.size() < payload + 2)
		return message.size() == 2 && message[0] == 0x03 ? '.' : 0;
	const int section = message[payload], item = message[payload + 1];
	if (section != 0x10 && section != 0x20)
		return 0;
	if (item == 0x13)
		return message[payload + 2] ? 'c' : 'r';
	const auto found = letters.find(item);
	return found == letters.end() ? 0 : found->second;
}

static std::string traffic_of(usb_machine &machine, std::size_t payload)
{
	std::string text;
	for (const usb_crossing &c : machine.recorded)
		if (const char letter = c.from_host ? letter_of(c.bytes, payload) : 0)
			text += letter;
	return text;
}

// The machines live on the timeline's thread.
template <typename work> static auto on_timeline(timeline &time, work what)
{
	std::packaged_task<decltype(what())()> task(what);
	auto result = task.get_future();
	time.after(0, [&task] { task(); });
	return result.get();
}

// A line for each command, and one back.
static std::string obey(rack &r, const std::string &command)
{
	if (command == "age")
		age = age + 100;
	else if (command == "unplug")
		unplug_usb(r.big);
	else if (command == "plug")
		plug_usb(r.time, r.big);
	else if (command == "slow" || command == "fast")
		on_timeline(
			r.time, [&] { return r.big.disks.latency = command == "slow" ? 0.05 : 0; });
	else if (command == "traffic")
		return on_timeline(r.time,
			[&] { return traffic_of(r.big, 9) + "|" + traffic_of(r.small, 7); });
	else if (command == "forget")
		on_timeline(r.time, [&] {
			r.big.recorded.clear(), r.small.recorded.clear();
			return 0;
		});
	return "done";
}

static void take_commands(rack &r, int in, int out)
{
	std::string line;
	for (char c; read(in, &c, 1) == 1;) {
		if (c != '\n') {
			line += c;
			continue;
		}
		const std::string answer = obey(r, line) + "\n";
		line.clear();
		if (write(out, answer.data(), answer.size()) < 0)
			return;
	}
}

[[noreturn]] static void serve(const std::string &point, void (*fill)(rack &), int in, int out)
{
	prctl(PR_SET_PDEATHSIG, SIGKILL);
	hold_end_signals();
	rack r;
	fill(r);
	for (usb_sampler *m :
		{ static_cast<usb_sampler *>(&r.big), static_cast<usb_sampler *>(&r.small) }) {
		m->record = true;
		m->latency = 0.0001;
		plug_usb(r.time, *m);
	}
	r.time.run_in_real_time();
	std::thread([&r, in, out] { take_commands(r, in, out); }).detach();
	host.ui = &headless_ui;
	host.usb = &virtual_usb;
	host.files = &posix_files;
	host.settings = &posix_settings;
	host.clock = &standing_clock;
	host_drive = &fuse_drive;
	current_run_mode.diagnostics = false;
	host.usb->on_arrival(host.ui->wake);
	watch_end_signals([] { host.ui->post([] { request_close(true); }); });
	MountPoint = point;
	if (!fuse_drive.usable(point.c_str(), "velmorfs").empty())
		_exit(3);
	start_filesystem();
	std::fflush(stdout);
	_exit(Result == status_success ? 0 : 1);
}

// ---- Programs that walk ------------------------------------------------------------------------

struct walker {
	pid_t pid = 0;
	int out = -1;
};
struct ending {
	int status = -1; // of its exit; -1 when it had to be killed
	std::string said;
};

static walker run(const words &command)
{
	int ends[2];
	if (pipe2(ends, O_CLOEXEC) != 0)
		return {};
	const walker w = { fork(), ends[0] };
	if (w.pid == 0) {
		std::vector<char *> arguments;
		for (const std::string &word : command)
			arguments.push_back(const_cast<char *>(word.c_str()));
		arguments.push_back(nullptr);
		dup2(ends[1], STDOUT_FILENO);
		dup2(ends[1], STDERR_FILENO);
		setenv("LC_ALL", "C", 1);
		execvp(arguments[0], arguments.data());
		_exit(127);
	}
	close(ends[1]);
	return w;
}

class mount_test : public ::testing::Test
{
protected:
	std::string folder, point;
	pid_t server = 0;
	int to = -1, from = -1;

	void SetUp() override
	{
		if (access("/dev/fuse", R_OK | W_OK) != 0)
			GTEST_SKIP()
				<< "There is no /dev/fuse that may be used: nothing is mounted.";
		char name[] = "/tmp/velmor-mount-XXXXXX";
		folder = mkdtemp(name);
		point = folder + "/drive";
		std::filesystem::create_directory(point);
	}
	void TearDown() override
	{
		if (folder.empty())
			return;
		kill_server();
		umount2(point.c_str(), MNT_DETACH);
		std::filesystem::remove_all(folder);
	}

	// ---- The server
	bool is_mounted() const
	{
		struct statfs facts = {};
		return statfs(point.c_str(), &facts) == 0 && facts.f_type == 0x65735546;
	}
	void await_mount()
	{
		const auto end = steady::now() + patience;
		while (!is_mounted()) {
			ASSERT_EQ(waitpid(server, nullptr, WNOHANG), 0) << "the server has ended";
			ASSERT_LT(steady::now(), end) << "nothing was mounted";
			poll(nullptr, 0, 5);
		}
	}
	void start(void (*fill)(rack &))
	{
		int commands[2], answers[2];
		ASSERT_EQ(pipe2(commands, O_CLOEXEC) | pipe2(answers, O_CLOEXEC), 0);
		server = fork();
		if (server == 0) {
			const int log = open(
				(folder + "/log").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
			dup2(log, STDOUT_FILENO);
			dup2(log, STDERR_FILENO);
			chdir(folder.c_str());
			close(commands[1]);
			close(answers[0]);
			serve(point, fill, commands[0], answers[1]);
		}
		close(commands[0]);
		close(answers[1]);
		to = commands[1], from = answers[0];
		await_mount();
	}
	void kill_server()
	{
		if (server > 0) {
			kill(server, SIGKILL);
			waitpid(server, nullptr, 0);
		}
		server = 0;
		close(to);
		close(from);
		to = from = -1;
	}
	// Its exit status; 128 and more for a signal, -1 when it goes on.
	int end_of_server()
	{
		const auto end = steady::now() + patience;
		for (int status; steady::now() < end; poll(nullptr, 0, 5))
			if (waitpid(server, &status, WNOHANG) == server) {
				server = 0;
				return WIFEXITED(status) ? WEXITSTATUS(status)
							 : 128 + WTERMSIG(status);
			}
		return -1;
	}
	std::string tell(std::string command)
	{
		command += '\n';
		if (write(to, command.data(), command.size()) < 0)
			return "gone";
		std::string answer;
		for (pollfd ready = { from, POLLIN, 0 }; poll(&ready, 1, 60000) == 1;) {
			char c;
			if (read(from, &c, 1) != 1)
				return "gone";
			if (c == '\n')
				return answer;
			answer += c;
		}
		return "silent";
	}

	// ---- What programs see
	ending finish(walker w)
	{
		ending e;
		const auto end = steady::now() + patience;
		for (pollfd ready = { w.out, POLLIN, 0 };;) {
			char some[65536];
			const bool late = steady::now() >= end;
			if (late)
				kill(w.pid, SIGKILL), kill_server();
			const bool comes = poll(&ready, 1, 100) == 1;
			const ssize_t count = comes ? read(w.out, some, sizeof some) : 0;
			if (late || (comes && count <= 0))
				break;
			e.said.append(some, static_cast<std::size_t>(count));
		}
		close(w.out);
		int status;
		waitpid(w.pid, &status, 0);
		e.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
		return e;
	}
	ending done(const words &command) { return finish(run(command)); }
	std::string lines_of(const words &command)
	{
		const ending e = done(command);
		EXPECT_EQ(e.status, 0) << command[0] << ": " << e.said;
		std::vector<std::string> lines;
		std::istringstream text(e.said);
		for (std::string line; std::getline(text, line);)
			lines.push_back(line);
		std::sort(lines.begin(), lines.end());
		std::string sorted;
		for (const std::string &line : lines)
			sorted += line + "\n";
		return sorted;
	}
	std::string in(const std::string &path) const { return point + "/" + path; }
};

// ---- Listing -----------------------------------------------------------------------------------

static constexpr std::size_t all_files = 205; // of the two machines below

static void fill_studio(rack &r)
{
	disk_folder many = { "MANY", {}, {} };
	for (unsigned i = 0; i < 200; i++)
		many.files.push_back({ "File " + std::to_string(1000 + i), i << 16 });
	r.big.name = "Big One";
	r.big.disks.volumes = {
		{ 130, 1, 2, 0, 1, "WORK",
			{ { "DRUMS",
				  { { "Kit 1", {},
					  { { "kick.wav", 1000 }, { "snare.wav", 70000 } } } },
				  { { "loop.wav", 0x0FFFFFFF } } },
				many },
			{ { "root.akp", 7 } } },
		{ 5, 2, 2, 4, 0, "CD ROM", { { "EMPTY", {}, {} } } },
	};
	r.small.name = "Small";
	r.small.disks.volumes = { { 257, 1, 2, 0, 1, "DISK", {}, { { "a.wav", 5 } } } };
}

TEST_F(mount_test, everything_is_listed_with_its_size_and_nothing_may_be_written)
{
	ASSERT_NO_FATAL_FAILURE(start(fill_studio));
	EXPECT_EQ(lines_of({ "find", point, "-type", "d", "-printf", "%m %P\n" }),
		"555 \n555 Big One\n555 Big One/CD ROM\n555 Big One/CD ROM/EMPTY\n"
		"555 Big One/WORK\n555 Big One/WORK/DRUMS\n555 Big One/WORK/DRUMS/Kit 1\n"
		"555 Big One/WORK/MANY\n555 Small\n555 Small/DISK\n");
	std::string expected = "444 1000 Big One/WORK/DRUMS/Kit 1/kick.wav\n"
			       "444 70000 Big One/WORK/DRUMS/Kit 1/snare.wav\n"
			       "444 268435455 Big One/WORK/DRUMS/loop.wav\n"
			       "444 7 Big One/WORK/root.akp\n444 5 Small/DISK/a.wav\n";
	EXPECT_EQ(lines_of({ "sh", "-c",
			  "find '" + point + "' -type f -printf '%m %s %P\\n' | grep -v MANY" }),
		lines_of({ "printf", "%s", expected }));
	const std::string many =
		lines_of({ "find", in("Big One/WORK/MANY"), "-type", "f", "-printf", "%s %f\n" });
	EXPECT_EQ(std::count(many.begin(), many.end(), '\n'), 200);
	EXPECT_NE(many.find("13041664 File 1199\n"), many.npos) << many;
	EXPECT_NE(many.find("65536 File 1001\n"), many.npos);

	struct stat facts;
	ASSERT_EQ(stat(in("Big One/WORK/root.akp").c_str(), &facts), 0);
	EXPECT_EQ(facts.st_uid, getuid());
	EXPECT_EQ(facts.st_gid, getgid());
	const ending whole = done({ "ls", "-lR", point });
	EXPECT_EQ(whole.status, 0) << whole.said;
	EXPECT_NE(whole.said.find("-r--r--r--"), whole.said.npos);
	EXPECT_EQ(lines_of({ "findmnt", "-no", "FSTYPE,OPTIONS", point }).substr(0, 17),
		"fuse.velmorfs ro,");

	const std::string file = in("Big One/WORK/root.akp"), local = folder + "/local";
	std::filesystem::create_directory(folder + "/out");
	ASSERT_EQ(done({ "touch", local }).status, 0);
	tell("forget");
	for (const words &refused : { words{ "cp", local, in("Small/DISK/b") },
		     words{ "mkdir", in("new") }, words{ "rm", "-f", file },
		     words{ "rmdir", in("Small") }, words{ "touch", file },
		     words{ "chmod", "600", file }, words{ "ln", "-s", local, in("link") },
		     words{ "mv", file, in("Big One/WORK/other") } }) {
		const ending e = done(refused);
		EXPECT_EQ(e.status, 1) << refused[0];
		EXPECT_NE(e.said.find("Read-only file system"), e.said.npos)
			<< refused[0] << ": " << e.said;
	}
	EXPECT_EQ(done({ "cp", file, folder + "/out/" }).status, 1);
	EXPECT_TRUE(std::filesystem::is_empty(folder + "/out"));
	EXPECT_NE(done({ "head", "-c1", file }).status, 0);
	EXPECT_EQ(tell("traffic"), "|") << "neither a refusal nor contents cost an exchange";
}

// ---- What listing costs ------------------------------------------------------------------------

// Whole listings one after the other, each in an opening of its own: volumes, and then perhaps
// the way to a folder and all that is in it.
static bool is_whole_listings(const std::string &traffic)
{
	static const std::regex rule("(\\.+(nl(src*DFd*(fz)*)?)?)*");
	return std::regex_match(traffic, rule);
}

static std::size_t count(const std::string &traffic, char letter)
{
	return static_cast<std::size_t>(std::count(traffic.begin(), traffic.end(), letter));
}

// List each folder and do what file managers do: look for files of their own beside the others.
static void walk_like_a_file_manager(const std::string &path)
{
	std::error_code ignored;
	std::vector<std::string> folders;
	for (const auto &entry : std::filesystem::directory_iterator(path, ignored)) {
		struct stat facts;
		if (stat(entry.path().c_str(), &facts) == 0 && S_ISDIR(facts.st_mode))
			folders.push_back(entry.path());
		for (const char *list : { "user.icon", "security.capability" })
			(void)getxattr(entry.path().c_str(), list, nullptr, 0);
	}
	for (const char *name : { ".Trash", ".Trash-0", "autorun.inf", "Autorun.inf", ".hidden",
		     "desktop.ini", ".directory", ".DS_Store", ".xdg-volume-info" })
		EXPECT_NE(access((path + "/" + name).c_str(), F_OK), 0) << name;
	for (const std::string &folder : folders)
		walk_like_a_file_manager(folder);
}

TEST_F(mount_test, a_walk_costs_one_listing_a_folder_whoever_walks)
{
	ASSERT_NO_FATAL_FAILURE(start(fill_studio));
	const std::function<void()> walks[] = {
		[&] {
			lines_of({ "ls", "-lR", point });
		},
		[&] {
			lines_of({ "find", point, "-ls" });
		},
		[&] { walk_like_a_file_manager(point); },
		[&] { // two at once, and whatever they ask for in between
			const walker first = run({ "ls", "-lR", point }),
				     second = run({ "find", point, "-ls" });
			const walker third = run({ "ls", "-l", in("Big One/WORK/MANY") });
			EXPECT_EQ(
				finish(first).status | finish(second).status | finish(third).status,
				0);
		},
	};
	for (const auto &walk : walks) {
		tell("age");
		tell("forget");
		walk();
		const std::string traffic = tell("traffic");
		const std::size_t bar = traffic.find('|');
		for (const std::string &one : { traffic.substr(0, bar), traffic.substr(bar + 1) })
			EXPECT_TRUE(is_whole_listings(one)) << one;
		EXPECT_EQ(count(traffic, 'f'), all_files);
		EXPECT_EQ(count(traffic, 'z'), all_files);
		EXPECT_EQ(count(traffic, 'd'), 4u); // DRUMS, Kit 1, MANY, EMPTY
		EXPECT_EQ(count(traffic, 'D'), 7u); // and of the three volumes
		EXPECT_EQ(count(traffic, 'l'), 9u); // and of the two samplers
		tell("forget");
		walk(); // again, within the second
		EXPECT_EQ(tell("traffic"), "|");
	}
}

// ---- Names -------------------------------------------------------------------------------------

static void fill_names(rack &r)
{
	std::vector<disk_file> all;
	for (unsigned byte = 1; byte < 256; byte++) {
		char name[8];
		std::snprintf(name, sizeof name, "%02X_%c_", byte, static_cast<char>(byte));
		all.push_back({ name, byte });
	}
	const std::vector<disk_file> inside = { { "inside", 4711 } };
	std::vector<disk_folder> folders;
	for (const char *name : { ".", "..", "../../etc", "a/b", "a\x01\n\xE4", " ", "-rf" })
		folders.push_back({ name, {}, inside });
	folders.push_back({ std::string(255, 'x'), {}, inside });
	folders.push_back({ std::string(255, '\xE4'), {}, inside });
	r.big.name = "Big/..";
	r.big.disks.volumes = { { 1, 1, 2, 0, 1, "..", folders, all } };
	r.small.name = "Small";
	// The first two can be shown, and not asked for.
	r.small.disks.volumes = { { 1, 1, 2, 0, 1, "" }, { 2, 1, 2, 0, 1, "a\\b" },
		{ 3, 1, 2, 0, 1, "c", {}, { { "d", 1 } } } };
}

TEST_F(mount_test, every_name_stays_in_its_folder_and_is_another_one)
{
	ASSERT_NO_FATAL_FAILURE(start(fill_names));
	const auto found = done({ "find", in("Big\u2215.."), "-name", "*_", "-size", "-10k",
		"-printf", "%s %f\\0" });
	EXPECT_EQ(found.status, 0) << found.said;
	std::set<std::string> names;
	std::istringstream text(found.said);
	for (std::string entry; std::getline(text, entry, '\0');) {
		char start[16];
		const int size = std::stoi(entry);
		std::snprintf(start, sizeof start, "%d %02X_", size, static_cast<unsigned>(size));
		EXPECT_TRUE(entry.starts_with(start)) << entry;
		names.insert(entry);
	}
	EXPECT_EQ(names.size(), 255u);
	for (const char *name :
		{ "65 41_A_", "7 07_\u2407_", "47 2F_\u2215_", "228 E4_\u00E4_", "247 F7_\u00F7_" })
		EXPECT_TRUE(names.contains(name)) << name;
	EXPECT_EQ(done({ "find", in("Big\u2215.."), "-name", "inside", "-size", "4711c", "-printf",
			       "x" })
			  .said,
		std::string(9, 'x'));
	EXPECT_EQ(lines_of({ "ls", in("Small"), in("Small/c") }),
		lines_of({ "printf", "%s",
			"\n" + in("Small") + ":\na\u2216b\nc\n\u2205\n" + in("Small/c") +
				":\nd\n" }));
	for (const char *name : { "Small/\u2205", "Small/a\u2216b" })
		EXPECT_NE(done({ "ls", in(name) }).said.find("Operation not supported"),
			std::string::npos);
	EXPECT_EQ(done({ "sh", "-c", "find '" + point + "' | iconv -f UTF-8 -t UTF-8 >/dev/null" })
			  .status,
		0);
	EXPECT_EQ(lines_of({ "ls", point }), "Big\u2215..\nSmall\n");
}

// ---- Endings -----------------------------------------------------------------------------------

TEST_F(mount_test, a_sampler_that_is_unplugged_ends_what_waits_for_it_and_the_others_stay)
{
	ASSERT_NO_FATAL_FAILURE(start(fill_studio));
	lines_of({ "ls", in("Big One/WORK") });
	tell("age");
	tell("slow");
	const walker first = run({ "ls", "-l", in("Big One/WORK/MANY") });
	while (count(tell("traffic"), 'f') < 3)
		poll(nullptr, 0, 5);
	const walker second = run({ "ls", "-l", in("Big One/CD ROM/EMPTY") });
	poll(nullptr, 0, 50);
	const auto pulled = steady::now();
	tell("unplug");
	EXPECT_NE(finish(first).status, 0);
	EXPECT_NE(finish(second).status, 0);
	EXPECT_LT(steady::now() - pulled, std::chrono::seconds(10)) << "a listing took 20 s";
	EXPECT_EQ(lines_of({ "ls", point }), "Small\n");
	EXPECT_EQ(lines_of({ "ls", in("Small/DISK") }), "a.wav\n");
	tell("fast");
	tell("plug");
	tell("age");
	EXPECT_EQ(lines_of({ "ls", point }), "Big One\nSmall\n");
	EXPECT_EQ(lines_of({ "ls", in("Big One/WORK/DRUMS") }), "Kit 1\nloop.wav\n");
}

TEST_F(mount_test, a_killed_drive_is_mounted_over_and_signals_unmount)
{
	ASSERT_NO_FATAL_FAILURE(start(fill_studio));
	kill_server();
	EXPECT_NE(done({ "ls", point }).said.find("Transport endpoint is not connected"),
		std::string::npos);
	for (const int signal : { SIGTERM, SIGINT, 0 }) {
		SCOPED_TRACE(signal);
		ASSERT_NO_FATAL_FAILURE(start(fill_studio));
		EXPECT_EQ(lines_of({ "ls", point }), "Big One\nSmall\n");
		tell("slow");
		const walker busy = run({ "ls", "-lR", point });
		while (count(tell("traffic"), 'f') < 1)
			poll(nullptr, 0, 5);
		if (signal)
			kill(server, signal);
		else // from outside
			umount2(point.c_str(), MNT_DETACH);
		finish(busy);
		EXPECT_EQ(end_of_server(), 0);
		EXPECT_FALSE(is_mounted());
		EXPECT_TRUE(std::filesystem::is_empty(point));
	}
}

// ---- The program -------------------------------------------------------------------------------

TEST_F(mount_test, the_program_mounts_its_demo_and_says_why_it_does_not)
{
	const char *const program = getenv("VELMORFS");
	ASSERT_TRUE(program) << "VELMORFS names the program";
	const walker running = run({ program, "--demo", point });
	server = running.pid;
	ASSERT_NO_FATAL_FAILURE(await_mount());
	EXPECT_EQ(lines_of({ "ls", point }), "Demo S5000\nDemo Z8\n");
	EXPECT_EQ(lines_of({ "ls", in("Demo S5000") }),
		"DRUM LOOPS\nFLOPPY\nHARD DISK\nMULTISAMPLES\nSTRINGS CD\n");
	EXPECT_EQ(lines_of({ "find", in("Demo Z8/PADS CD"), "-type", "f", "-printf", "%P\n" }),
		"Contents.txt\nGLASS/Glass C4.wav\nGLASS/Glass Pad.akp\nWARM/Warm C2.wav\n"
		"WARM/Warm C4.wav\nWARM/Warm Pad.akp\n");
	EXPECT_NE(done({ program, "--demo", point }).status, 0) << "it is mounted there already";
	kill(server, SIGTERM);
	EXPECT_EQ(end_of_server(), 0);
	EXPECT_FALSE(is_mounted());
	close(running.out);

	std::filesystem::create_directory(folder + "/full");
	std::filesystem::create_directory(folder + "/full/of");
	for (const words &wrong : { words{ program }, words{ program, "--what" },
		     words{ program, "--demo" }, words{ program, "--demo", folder + "/missing" },
		     words{ program, "--demo", folder + "/log" } }) {
		const ending e = done(wrong);
		EXPECT_NE(e.status, 0) << wrong.back();
		EXPECT_NE(e.said.find("velmorfs"), e.said.npos) << e.said;
	}
}

} // namespace velmor
