// velmor_start.cpp - the order in which the system starts
//
// Calls set-up functions of every module once. A program installs its host and
// creates its windows before, and runs its message loop after.

#include "src/controls.h"
#include "src/lcd.h"
#include "src/rmidi.h"
#include "src/usbqx.h"
#include "src/velmor.h"
#include "src/velmor_history.h"
#include "src/velmor_record.h"
#include "src/velmor_window.h"

namespace velmor
{

// Whatever arrives, on whichever thread, ends the wait of a running pump.
static void wake_on_arrival()
{
	host.midi->on_arrival(host.ui->wake);
	host.net->on_arrival(host.ui->wake);
	host.usb->on_arrival(host.ui->wake);
}

static void start_windows()
{
	reload_midi_setup(true);
	host.ui->set_text(window_main, main_log, "[I] VELMOR started\r\n");
	set_up_windows();
}

void start_velmor()
{
	if (init_wrt_midi() != 0) {
		show_box("FATAL", "Cannot init WRT!");
		end_program(0);
		return;
	}
	wake_on_arrival();
	start_time = host.clock->time_of_day();
	(void)host.files->remove("velmor.log");
	load_run_mode();
	current_sampler = nullptr;
	conf_sampler.clear();
	init_sampler_struct();
	lcd = 0;
	init_usb_sem();
	start_windows();
	reload_midi_setup(false);
	load_settings();
	load_history_settings();
	load_sampler_list();
	record_as_told();
	// Only words: the drive is a program of its own.
	log_line("[I] WINFSP started...\r\n");
}

} // namespace velmor
