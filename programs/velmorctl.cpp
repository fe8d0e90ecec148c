// velmorctl.cpp - what the windows do, on the command line
//
//	velmorctl --sampler "My S3000" get --all
//	velmorctl --demo panel --png screen.png
//
// The verbs stand in ctl_table.cpp. This file gives them the ports and devices of this computer,
// or virtual samplers.

#include "platform/backends.h"
#include "platform/headless/headless.h"
#include "platform/signals.h"
#include "programs/ctl.h"
#include "programs/demo_rack.h"
#include "virtual/midi_ports.h"
#include "virtual/usb_bus.h"
#include <cstdlib>
#include <memory>
#include <poll.h>
#include <unistd.h>

using namespace velmor;

// What the system says on its standard output is of no use here, and would stand between results.
static std::FILE *results_alone()
{
	const int kept = dup(STDOUT_FILENO);
	std::FILE *results = kept < 0 ? nullptr : fdopen(kept, "w");
	if (!results || !std::freopen("/dev/null", "w", stdout))
		return nullptr;
	return results;
}

// Ctrl-C is heard while nobody answers.
static bool answer_on_terminal(const char *)
{
	pollfd terminal = { STDIN_FILENO, POLLIN, 0 };
	while (!progress_stopped()) {
		host.ui->pump(0);
		if (poll(&terminal, 1, 100) > 0) {
			char line[256];
			return std::fgets(line, sizeof line, stdin) &&
			       (line[0] == 'y' || line[0] == 'Y');
		}
	}
	return false;
}

static void install_services(bool demo)
{
	host = { .ui = &headless_ui,
		.midi = demo ? &virtual_midi : &alsa_midi,
		.net = &posix_net,
		.usb = demo ? &virtual_usb : &libusb_usb,
		.settings = &posix_settings,
		.clock = &posix_clock,
		.files = &posix_files,
		.sound = &sndfile_sound };
}

// In real time, from before the run to behind it.
class plugged_rack
{
public:
	plugged_rack()
	{
		plug_in(&rack);
		rack.time.run_in_real_time();
	}
	~plugged_rack()
	{
		rack.time.stop();
		unplug_all_midi();
		unplug_all_usb();
	}
	plugged_rack(const plugged_rack &) = delete;

private:
	demo_rack rack;
};

static std::unique_ptr<plugged_rack> plug_in_demo(ctl_call *call)
{
	const std::string folder = demo_folder();
	if (folder.empty())
		return nullptr;
	use_demo_folder(folder);
	write_demo_configurations(folder);
	if (!call->has("--sampler"))
		call->options["--sampler"] = "Demo S3000";
	return std::make_unique<plugged_rack>();
}

static int run(ctl_call *call)
{
	const bool demo = call->has("--demo");
	install_services(demo);
	std::FILE *results = results_alone();
	if (!results) {
		std::fprintf(stderr, "velmorctl: there is no standard output\n");
		return exit_local;
	}
	std::unique_ptr<plugged_rack> rack;
	if (demo && !(rack = plug_in_demo(call))) {
		std::fprintf(stderr, "velmorctl: there is no home folder for the demo's files\n");
		return exit_local;
	}
	watch_end_signals([] { host.ui->post([] { request_close(true); }); });
	const int status = run_ctl(*call,
		{ .results = results,
			.words = stderr,
			.terminal = isatty(STDERR_FILENO) == 1,
			.answer = isatty(STDIN_FILENO) == 1 ? answer_on_terminal : nullptr });
	if (std::fflush(results) != 0 || std::ferror(results)) {
		std::fprintf(stderr, "velmorctl: standard output cannot be written\n");
		return status ? status : exit_local;
	}
	return status;
}

// "" or what is answered at once, without a sampler.
static std::string answered_at_once(const ctl_call &call)
{
	if (call.has("--help"))
		return ctl_help();
	if (call.has("--version"))
		return "velmorctl " VELMOR_VERSION "\n";
	return call.has("--completion") ? ctl_completion() : "";
}

int main(int argc, char **argv)
{
	hold_end_signals();
	ctl_call call;
	const std::vector<std::string> words(argv + 1, argv + argc);
	if (const std::string wrong = read_ctl(words, &call); !wrong.empty()) {
		std::fprintf(stderr, "velmorctl: %s\nTry 'velmorctl --help'.\n", wrong.c_str());
		return exit_usage;
	}
	if (const std::string text = answered_at_once(call); !text.empty()) {
		std::fputs(text.c_str(), stdout);
		return std::fflush(stdout) == 0 ? exit_done : exit_local;
	}
	const int status = run(&call);
	std::fflush(nullptr);
	std::_Exit(status);
}
