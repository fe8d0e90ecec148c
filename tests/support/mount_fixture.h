// mount_fixture.h - a drive that is really mounted, with virtual samplers behind it
//
// The drive is served by a child process with samplers of the test's own; the test gives it
// commands over a pipe, and walks the mount with the system's programs. Every wait has a deadline,
// at which the server is killed, and that ends whatever waits for it.
//
// In the child a second is as long as the test wants: its clock stands still but for the command
// "age", so that what is kept for a second is kept however busy this computer is.

#pragma once
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
#include <sstream>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace velmor
{

using words = std::vector<std::string>;
using steady = std::chrono::steady_clock;
inline constexpr auto patience = std::chrono::seconds(60);

// ---- The server --------------------------------------------------------------------------------

inline std::atomic<double> age = 0;
inline const clock_service standing_clock = {
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
inline char letter_of(const usb_bytes &message, std::size_t payload)
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

inline std::string traffic_of(usb_machine &machine, std::size_t payload)
{
	std::string text;
	for (const usb_crossing &c : machine.recorded)
		if (const char letter = c.from_host ? letter_of(c.bytes, payload) : 0)
			text += letter;
	return text;
}

// The machines live on the timeline's thread.
template <typename work> auto on_timeline(timeline &time, work what)
{
	std::packaged_task<decltype(what())()> task(what);
	auto result = task.get_future();
	time.after(0, [&task] { task(); });
	return result.get();
}

// A line for each command, and one back.
inline std::string obey(rack &r, const std::string &command)
{
	if (command == "age")
		age = age + 2; // what is kept for a second is old, what is kept for ten is not
	else if (command == "unplug")
		unplug_usb(r.big);
	else if (command == "plug")
		plug_usb(r.time, r.big);
	else if (command == "hold" || command == "release")
		on_timeline(r.time, [&] { return r.big.held = command == "hold"; });
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

inline void take_commands(rack &r, int in, int out)
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

[[noreturn]] inline void serve(const std::string &point, void (*fill)(rack &), int in, int out)
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

inline walker run(const words &command)
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
		std::signal(SIGPIPE, SIG_DFL);
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
		std::signal(SIGPIPE, SIG_IGN); // a server that is gone is a failure, and no end
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
		unmount();
		std::filesystem::remove_all(folder);
	}

	// ---- The server
	bool is_mounted() const
	{
		struct statfs facts = {};
		return statfs(point.c_str(), &facts) == 0 && facts.f_type == 0x65735546;
	}
	// From outside.
	void unmount()
	{
		if (umount2(point.c_str(), MNT_DETACH) != 0 && errno == EPERM)
			done({ "fusermount3", "-u", "-z", point });
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

} // namespace velmor
