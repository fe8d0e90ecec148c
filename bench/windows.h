// windows.h - the program's windows for a benchmark: real ones that nobody sees

#pragma once
#include "platform/backends.h"
#include "src/velmor.h"
#include "ui/qt_ui.h"

// Called once there is an application, with QT_QPA_PLATFORM=offscreen.
inline void make_bench_windows()
{
	velmor::host = { .ui = &velmor::qt_ui,
		.midi = nullptr,
		.net = &velmor::posix_net,
		.usb = nullptr,
		.settings = &velmor::posix_settings,
		.clock = &velmor::posix_clock,
		.files = &velmor::posix_files };
	velmor::current_run_mode.diagnostics = false;
	velmor::create_windows();
}
