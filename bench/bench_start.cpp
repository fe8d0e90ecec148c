// bench_start.cpp - from the start of the process to its window, beside an empty Qt window
//
// All are whole processes, started in turn: this program starts itself again. The empty one
// makes a QApplication, shows a main window with an empty text field and ends when it has been
// painted; the bare one has not even that, so that Qt loads no font, which any window with a
// word in it has to wait for. The program makes its own window and runs its start-up with a
// configuration folder of its own. Needs a display (xvfb-run serves). Fails above 1.3 times
// the empty window.

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
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace velmor;

static constexpr double most = 1.3;
static constexpr int rounds = 15;

static int show_empty_window(int argc, char **argv, bool bare)
{
	QApplication application(argc, argv);
	QMainWindow window;
	if (!bare)
		window.setCentralWidget(new QPlainTextEdit);
	window.resize(840, 500);
	window.show();
	QApplication::processEvents();
	std::_Exit(0);
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
	std::_Exit(0);
}

// Milliseconds of one process.
static double run(const char *program, const char *what)
{
	const auto began = std::chrono::steady_clock::now();
	const pid_t child = fork();
	if (child == 0) {
		execl(program, program, what, nullptr);
		_exit(127);
	}
	int status = 0;
	waitpid(child, &status, 0);
	if (status != 0) {
		std::fprintf(stderr, "%s failed\n", what);
		std::exit(2);
	}
	const std::chrono::duration<double, std::milli> taken =
		std::chrono::steady_clock::now() - began;
	return taken.count();
}

static double median(std::vector<double> values)
{
	std::sort(values.begin(), values.end());
	return values[values.size() / 2];
}

int main(int argc, char **argv)
{
	if (argc > 1 && !std::strcmp(argv[1], "bare"))
		return show_empty_window(argc, argv, true);
	if (argc > 1 && !std::strcmp(argv[1], "empty"))
		return show_empty_window(argc, argv, false);
	if (argc > 1 && !std::strcmp(argv[1], "program"))
		return show_program(argc, argv);

	if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY")) {
		std::fprintf(stderr, "A window needs a display; xvfb-run lends one.\n");
		return 2;
	}
	char folder[] = "velmor-bench-XXXXXX";
	const std::string root = std::filesystem::absolute(mkdtemp(folder));
	setenv("LOCALAPPDATA", root.c_str(), 1);
	setenv("XDG_CONFIG_HOME", root.c_str(), 1);
	const std::string self = std::filesystem::canonical("/proc/self/exe");
	std::filesystem::current_path(root);
	std::freopen("/dev/null", "w", stderr);
	run(self.c_str(), "empty");
	run(self.c_str(), "program");
	std::vector<double> bare, empty, program;
	for (int i = 0; i < rounds; i++) {
		bare.push_back(run(self.c_str(), "bare"));
		empty.push_back(run(self.c_str(), "empty"));
		program.push_back(run(self.c_str(), "program"));
	}
	std::filesystem::remove_all(root);
	const double ratio = median(program) / median(empty);
	std::printf(
		"start to window: %.1f ms, an empty Qt window %.1f ms (bare %.1f ms), ratio %.3f "
		"(at most %.1f)\n",
		median(program), median(empty), median(bare), ratio, most);
	return ratio <= most ? 0 : 1;
}
