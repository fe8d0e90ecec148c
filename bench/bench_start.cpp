// bench_start.cpp - how long the program takes to its window, and what that costs the processor
// and the memory, beside an empty Qt window
//
// All are whole processes, started in turn: this program starts itself again. The empty one
// makes a QApplication, shows a main window with an empty text field and ends when it has been
// painted; the bare one has not even that, so that Qt loads no font, which any window with a
// word in it has to wait for. The program makes its own window and runs its start-up with a
// configuration folder of its own. Without a display it is offscreen. Measured is the time from
// start to end, which wants a quiet machine, the processor's time, which other work changes little,
// and what memory the process has for itself at rest. Fails above 1.3 times the empty window's time
// on a display, and 1.5 times its memory.

#include "platform/backends.h"
#include "src/velmor.h"
#include "ui/qt_ui.h"
#include <QApplication>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace velmor;

static constexpr double most_time = 1.3, most_memory = 1.5;
static constexpr int rounds = 25;
static constexpr int told_through = 9; // a file descriptor

// Kilobytes that no other process has, and its part of those that it shares.
static void tell_memory()
{
	std::ifstream map("/proc/self/smaps_rollup");
	long own = 0, with_shared = 0;
	for (std::string word; map >> word;) {
		long kilobytes = 0;
		if (word.starts_with("Private_") && map >> kilobytes)
			own += kilobytes;
		else if (word == "Pss:" && map >> kilobytes)
			with_shared = kilobytes;
	}
	dprintf(told_through, "%ld %ld", own, with_shared);
	std::_Exit(0);
}

static int show_empty_window(int argc, char **argv, bool bare)
{
	QApplication application(argc, argv);
	QMainWindow window;
	if (!bare)
		window.setCentralWidget(new QPlainTextEdit);
	window.resize(840, 500);
	window.show();
	QApplication::processEvents();
	tell_memory();
	return 0;
}

static int show_program(int argc, char **argv)
{
	QApplication application(argc, argv);
	host = { .ui = &qt_ui,
		.midi = &alsa_midi,
		.net = &posix_net,
		.usb = &libusb_usb,
		.settings = &posix_settings,
		.clock = &posix_clock,
		.files = &posix_files };
	create_windows();
	start_velmor();
	find_widget(101, 0)->show();
	QApplication::processEvents();
	tell_memory();
	return 0;
}

struct cost {
	double elapsed = 0, processor = 0; // milliseconds, of the clock and of the processor
	double own = 0, with_shared = 0;   // megabytes
};

// Of one process.
static cost run(const char *program, const char *what)
{
	int ends[2];
	if (pipe(ends) != 0)
		std::exit(2);
	const auto began = std::chrono::steady_clock::now();
	const pid_t child = fork();
	if (child == 0) {
		dup2(ends[1], told_through);
		execl(program, program, what, nullptr);
		_exit(127);
	}
	close(ends[1]);
	char told[64] = {};
	(void)!read(ends[0], told, sizeof told - 1);
	close(ends[0]);
	int status = 0;
	rusage used = {};
	wait4(child, &status, 0, &used);
	cost spent;
	spent.elapsed =
		std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - began)
			.count();
	if (status != 0 || std::sscanf(told, "%lf %lf", &spent.own, &spent.with_shared) != 2) {
		std::fprintf(stderr, "%s failed\n", what);
		std::exit(2);
	}
	const auto milliseconds = [](const timeval &time) {
		return static_cast<double>(time.tv_sec) * 1000 +
		       static_cast<double>(time.tv_usec) / 1000;
	};
	spent.processor = milliseconds(used.ru_utime) + milliseconds(used.ru_stime);
	spent.own /= 1024;
	spent.with_shared /= 1024;
	return spent;
}

static double median(const std::vector<cost> &all, double cost::*which)
{
	std::vector<double> values;
	for (const cost &each : all)
		values.push_back(each.*which);
	std::sort(values.begin(), values.end());
	return values[values.size() / 2];
}

// Gives the ratio.
static double tell(const char *what, const char *unit, double cost::*which,
	const std::vector<cost> &program, const std::vector<cost> &empty)
{
	const double ours = median(program, which), theirs = median(empty, which);
	std::printf("%s: %.1f %s, an empty Qt window %.1f %s, ratio %.3f\n", what, ours, unit,
		theirs, unit, ours / theirs);
	return ours / theirs;
}

int main(int argc, char **argv)
{
	if (argc > 1 && !std::strcmp(argv[1], "bare"))
		return show_empty_window(argc, argv, true);
	if (argc > 1 && !std::strcmp(argv[1], "empty"))
		return show_empty_window(argc, argv, false);
	if (argc > 1 && !std::strcmp(argv[1], "program"))
		return show_program(argc, argv);

	if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY"))
		setenv("QT_QPA_PLATFORM", "offscreen", 0);
	char folder[] = "velmor-bench-XXXXXX";
	const std::string root = std::filesystem::absolute(mkdtemp(folder));
	setenv("LOCALAPPDATA", root.c_str(), 1);
	setenv("XDG_CONFIG_HOME", root.c_str(), 1);
	const std::string self = std::filesystem::canonical("/proc/self/exe");
	std::filesystem::current_path(root);
	std::freopen("/dev/null", "w", stderr);
	run(self.c_str(), "empty");
	run(self.c_str(), "program");
	std::vector<cost> bare, empty, program;
	for (int i = 0; i < rounds; i++) {
		bare.push_back(run(self.c_str(), "bare"));
		empty.push_back(run(self.c_str(), "empty"));
		program.push_back(run(self.c_str(), "program"));
	}
	std::filesystem::remove_all(root);
	tell("a window without even a font", "ms", &cost::processor, bare, empty);
	const double time = tell("start to window", "ms", &cost::elapsed, program, empty);
	tell("time of the processor", "ms", &cost::processor, program, empty);
	const double memory = tell("memory of its own", "MB", &cost::own, program, empty);
	tell("memory with its part of what is shared", "MB", &cost::with_shared, program, empty);
	std::printf("at most %.1f and %.1f\n", most_time, most_memory);
	return time <= most_time && memory <= most_memory ? 0 : 1;
}
