// velmorfs.cpp - the disks of the samplers on USB as a drive of this computer
//
//	velmorfs FOLDER            what is plugged in
//	velmorfs --demo FOLDER     virtual samplers
//
// What people should know goes to standard error: warnings, and what the program does. It runs
// until it is told to end, or until somebody unmounts the drive.

#include "platform/backends.h"
#include "platform/signals.h"
#include "programs/options.h"
#include "src/controls.h"
#include "src/diskqx.h"
#include "src/velmor_record.h"
#include "virtual/demo_usb.h"
#include "virtual/usb_bus.h"
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

using namespace velmor;

static const char help[] =
	"Usage: velmorfs [--demo] [--background] [--verbose] FOLDER\n"
	"Show the disks of the AKAI samplers on USB (S5000, S6000, Z4, Z8, MPC 4000) in an empty\n"
	"folder, like a drive: names and sizes can be listed, contents cannot be read or changed.\n"
	"It runs until Ctrl-C, or until the folder is unmounted: fusermount3 -u FOLDER\n"
	"\n"
	"  --demo         show virtual samplers, with nothing plugged in\n"
	"  --background   come back when the drive is there, and go on serving it\n"
	"  --verbose      show every line of the log, and add it to velmor.log in the current "
	"folder\n"
	"  --version      show the version\n"
	"  --help         show this text\n"
	"\n"
	"The samplers are free between two listings, so velmor can use them meanwhile.\n";

struct options {
	bool demo = false, background = false, verbose = false;
	std::string folder;
};
static options chosen;

// "" or what is wrong.
static std::string read_options(int argc, char **argv, options *o)
{
	static constexpr struct {
		const char *word;
		bool options::*member;
	} rows[] = {
		{ "--demo", &options::demo },
		{ "--background", &options::background },
		{ "--verbose", &options::verbose },
	};
	for (int i = 1; i < argc; i++) {
		const std::string word = argv[i];
		bool known = false;
		for (const auto &row : rows)
			if (word == row.word)
				o->*row.member = known = true;
		if (!known && word.starts_with("-"))
			return word + ": no such option";
		if (!known && !o->folder.empty())
			return word + ": there is a folder already, " + o->folder;
		if (!known)
			o->folder = word;
	}
	return o->folder.empty() ? "the folder for the drive is missing" : "";
}

// ---- Words ------------------------------------------------------------------------------------

// One text of the log, with its stamp. A state that lasts is told once.
static void tell(const char *stamped)
{
	static std::string last;
	const char *text = std::strstr(stamped, ": ");
	text = text ? text + 2 : stamped;
	const bool for_people = !std::strncmp(text, "[W]", 3) || !std::strncmp(text, "[F]", 3) ||
				!std::strncmp(text, "[I]", 3);
	if (!chosen.verbose && (!for_people || last == text))
		return;
	last = text;
	std::string line = chosen.verbose ? stamped : std::string("velmorfs: ") + text;
	while (line.ends_with('\n') || line.ends_with('\r'))
		line.pop_back();
	std::fprintf(stderr, "%s\n", line.c_str());
}

static bool is_log(int window, int control)
{
	return window == window_main && control == main_log;
}

// The log is never as long as its control, so each text comes by itself.
static ui_service talking_ui()
{
	ui_service ui = headless_ui;
	ui.get_text = [](int window, int control) {
		return is_log(window, control) ? "" : headless_ui.get_text(window, control);
	};
	ui.set_text = [](int window, int control, const char *text) {
		if (is_log(window, control))
			tell(text);
		else
			headless_ui.set_text(window, control, text);
	};
	// Only a failure ends it from inside.
	ui.exit_process = [](int status) {
		std::fflush(nullptr);
		std::_Exit(status ? status : 1);
	};
	return ui;
}

// ---- The background ----------------------------------------------------------------------------

static int parent = -1; // a pipe to the process that waits for the drive

// In the first process: 0 once the drive is there, 1 when it will not come. -1 in the second one.
static int go_to_background()
{
	int ends[2];
	if (pipe2(ends, O_CLOEXEC) != 0)
		return 1;
	const pid_t child = fork();
	if (child == 0) {
		close(ends[0]);
		parent = ends[1];
		setsid();
		return -1;
	}
	close(ends[1]);
	char there = 0;
	return child > 0 && read(ends[0], &there, 1) == 1 ? 0 : 1;
}

static void drive_is_there()
{
	if (parent < 0) {
		std::fprintf(stderr,
			"velmorfs: the samplers are in %s. Ctrl-C or fusermount3 -u %s ends it.\n",
			MountPoint.c_str(), MountPoint.c_str());
		return;
	}
	(void)!write(parent, "", 1);
	close(parent);
	const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
	for (int stream = 0; stream < 3 && nowhere >= 0; stream++)
		dup2(nowhere, stream);
}

static drive_service telling_drive()
{
	drive_service drive = fuse_drive;
	drive.start = [](void (*waiting)()) {
		const bool started = fuse_drive.start(waiting);
		if (started)
			drive_is_there();
		return started;
	};
	return drive;
}

// ---- Samplers ------------------------------------------------------------------------------------

struct demo_samplers {
	timeline time;
	s5000 usb_s5000;
	z4 usb_z8{ z4_model::z8 };

	demo_samplers()
	{
		fill_demo(usb_s5000);
		plug_usb(time, usb_s5000);
		fill_demo(usb_z8);
		plug_usb(time, usb_z8);
		time.run_in_real_time();
	}
	~demo_samplers()
	{
		time.stop();
		unplug_all_usb();
	}
};

static void serve()
{
	static const ui_service ui = talking_ui();
	host = { .ui = &ui,
		.midi = nullptr,
		.net = nullptr,
		.usb = chosen.demo ? &virtual_usb : &libusb_usb,
		.settings = &posix_settings,
		.clock = &posix_clock,
		.files = &posix_files };
	static const drive_service drive = telling_drive();
	host_drive = &drive;
	std::unique_ptr<demo_samplers> demo;
	if (chosen.demo)
		demo = std::make_unique<demo_samplers>();
	start_time = host.clock->time_of_day();
	current_run_mode.diagnostics = chosen.verbose;
	host.usb->on_arrival(host.ui->wake);
	watch_end_signals([] { host.ui->post([] { request_close(true); }); });
	record_as_told();
	start_filesystem();
	if (recording())
		(void)stop_recording();
}

int main(int argc, char **argv)
{
	if (answered(argc, argv, "velmorfs", help))
		return 0;
	std::string wrong = read_options(argc, argv, &chosen);
	if (!wrong.empty()) {
		std::fprintf(stderr, "velmorfs: %s\nTry 'velmorfs --help'.\n", wrong.c_str());
		return 2;
	}
	wrong = fuse_drive.usable(chosen.folder.c_str(), "velmorfs");
	if (!wrong.empty()) {
		std::fprintf(stderr, "velmorfs: %s\n", wrong.c_str());
		return 1;
	}
	MountPoint = std::filesystem::absolute(chosen.folder);
	hold_end_signals();
	const int status = chosen.background ? go_to_background() : -1;
	if (status >= 0)
		return status;
	serve();
	return 0;
}
