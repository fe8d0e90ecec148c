// velmor.cpp - the desktop program on the ports and devices of this computer

#include "src/velmor.h"
#include "platform/backends.h"
#include "platform/signals.h"
#include "programs/options.h"
#include "programs/windowed.h"
#include "ui/qt_ui.h"
#include "ui/translation.h"
#include <QApplication>
#include <QLocale>
#include <cerrno>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using namespace velmor;

static const char help[] =
	"Usage: velmor [--from-menu]\n"
	"Manage AKAI hardware samplers over MIDI, TCP and USB.\n"
	"\n"
	"  --from-menu   work in your data folder, usually ~/.local/share/VELMOR, so that\n"
	"                velmor.log lies there; otherwise it lies where you started the program\n"
	"  --version     show the version\n"
	"  --help        show this text\n";

static void install_services()
{
	host = { .ui = &qt_ui,
		.midi = &alsa_midi,
		.net = &posix_net,
		.usb = &libusb_usb,
		.settings = &posix_settings,
		.clock = &posix_clock,
		.files = &posix_files,
		.sound = &sndfile_sound,
		.audio = &qt_audio };
}

// A menu starts a program anywhere, and the log lies where the program works.
static void work_in_data_folder()
{
	const char *root = posix_settings.user_root();
	if (!root)
		return; // start-up says so
	const std::string folder = posix_files.host_path(root) + "/VELMOR";
	if ((::mkdir(folder.c_str(), 0777) != 0 && errno != EEXIST) || ::chdir(folder.c_str()) != 0)
		std::fprintf(stderr, "velmor: %s: %s\n", folder.c_str(), std::strerror(errno));
}

int main(int argc, char **argv)
{
	if (answered(argc, argv, "velmor", help))
		return 0;
	hold_end_signals();
	std::unique_ptr<QApplication> application;
	{
		const while_finding_a_display guard;
		application = std::make_unique<QApplication>(argc, argv);
	}
	// Qt has taken its own options out.
	const bool from_menu = argc == 2 && !std::strcmp(argv[1], "--from-menu");
	if (argc > 1 && !from_menu) {
		std::fprintf(stderr, "velmor: %s: no such option\nTry 'velmor --help'.\n", argv[1]);
		return 2;
	}
	if (from_menu)
		work_in_data_folder();
	QApplication::setApplicationName("velmor");
	install_services();
	load_translation(QLocale::system().uiLanguages());
	create_windows();
	watch_end_signals([] { host.ui->post(end_windows); });
	start_velmor();
	return run_windows();
}
