// velmor.cpp - the desktop program on the ports and devices of this computer

#include "src/velmor.h"
#include "platform/backends.h"
#include "platform/signals.h"
#include "ui/qt_ui.h"
#include <QApplication>

using namespace velmor;

static void install_services()
{
	host = { .ui = &qt_ui,
		.midi = &alsa_midi,
		.net = &posix_net,
		.usb = &libusb_usb,
		.settings = &posix_settings,
		.clock = &posix_clock,
		.files = &posix_files };
}

int main(int argc, char **argv)
{
	hold_end_signals();
	QApplication application(argc, argv);
	QApplication::setApplicationName("velmor");
	install_services();
	create_windows();
	watch_end_signals([] { host.ui->post(end_windows); });
	start_velmor();
	return run_windows();
}
