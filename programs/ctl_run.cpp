// ctl_run.cpp - one run of velmorctl: start, the verb, and the way back to a quiet wire
//
// The system runs as it does behind windows. What it shows goes to the words, the log only with
// --verbose. Ctrl-C asks it to end as closing the main window does, at the next point where
// sampler and files are whole.

#include "programs/ctl.h"
#include "src/controls.h"
#include "src/lcd.h"
#include "src/rmidi.h"
#include "src/usbqx.h"
#include "src/velmor_history.h"
#include "src/velmor_record.h"
#include "src/velmor_window.h"
#include <algorithm>
#include <charconv>
#include <cstring>
#include <utility>

namespace velmor
{

ctl_hooks ctl_hook;

static struct {
	const ctl_call *call = nullptr;
	ctl_streams streams = { stdout, stderr };
	const ui_service *behind = nullptr; // the host's own
	ctl_exit ended = exit_local;
	std::string bar = {}; // caption of the progress window
	int range = 100;
	bool records = false;
} run_state;

// The system ended from inside.
struct ctl_ended {
};

void ctl_ends_inside(ctl_exit status)
{
	run_state.ended = status;
}

// ---- What the system shows ----------------------------------------------------------------------

static void glance()
{
	if (ctl_hook.glance)
		ctl_hook.glance();
}

static bool is_log(int window, int control)
{
	return window == window_main && control == main_log;
}

static void set_text(int window, int control, const char *text)
{
	if (!is_log(window, control))
		return run_state.behind->set_text(window, control, text);
	if (run_state.call->has("--verbose"))
		ctl_say(text);
	if (ctl_hook.logged)
		ctl_hook.logged(text);
}

static bool answer_question(const char *text, const char *)
{
	const bool yes = run_state.call->has("--yes");
	const bool asks = !yes && run_state.streams.answer;
	ctl_say(std::string(text) + (yes ? " [yes]" : asks ? " [y/N]" : " [no; --yes says yes]"));
	return yes || (asks && run_state.streams.answer(text));
}

static void show_progress(int value, const char *info, const char *time_left)
{
	constexpr int cells = 24;
	const int done = std::clamp(value, 0, run_state.range) * cells / run_state.range;
	std::string bar(cells, '.');
	std::fill_n(bar.begin(), done, '#');
	ctl_show_bar(run_state.bar + " [" + bar + "] " + info + " " + time_left);
	glance();
}

static ui_service ui_of_the_run()
{
	ui_service ui = *run_state.behind;
	ui.set_text = set_text;
	// The log is never as long as its control, so each text comes by itself.
	ui.get_text = [](int window, int control) {
		return is_log(window, control) ? "" : run_state.behind->get_text(window, control);
	};
	ui.message = [](const char *text, const char *) { ctl_say(text); };
	ui.ask = answer_question;
	ui.progress_show = [](const char *caption, int range) {
		run_state.bar = caption;
		run_state.range = std::max(range, 1);
		glance();
	};
	ui.progress_set = show_progress;
	ui.progress_hide = ctl_hide_bar;
	ui.set_bitmap = [](int window, int control, const bitmap_view *view) {
		if (view && window == window_panel && control == panel_picture && ctl_hook.picture)
			ctl_hook.picture(*view);
	};
	ui.set_play_position = [](int, int, std::int64_t ticks, int ticks_per_second) {
		if (ctl_hook.play_position)
			ctl_hook.play_position(ticks, ticks_per_second);
	};
	ui.exit_process = [](int) { throw ctl_ended(); };
	return ui;
}

// ---- Start and end --------------------------------------------------------------------------------

// As start_velmor, without its windows; the log of a program that runs meanwhile stays.
static void start()
{
	host.midi->on_arrival(host.ui->wake);
	host.net->on_arrival(host.ui->wake);
	host.usb->on_arrival(host.ui->wake);
	start_time = host.clock->time_of_day();
	current_run_mode = { .diagnostics = run_state.call->has("--verbose"), .multis = true };
	if (init_wrt_midi() != 0) {
		show_box("FATAL", "Cannot init WRT!");
		end_program(0);
	}
	init_sampler_struct();
	init_usb_sem();
	reload_midi_setup(false);
	load_settings();
	load_history_settings();
	load_sampler_list();
}

// What was written has left, or the port says that it cannot.
static void drain()
{
	constexpr double slack = 2; // seconds that nothing may leave
	constexpr long bytes_a_second = 3125;
	if (the_outHandle < 0)
		return;
	const long most = std::max(host.midi->leaving(the_outHandle), 0L);
	const double until =
		host.clock->counter() + static_cast<double>(most) / bytes_a_second + slack;
	while (host.midi->leaving(the_outHandle) > 0 && host.clock->counter() < until)
		host.ui->pump(10);
	close_midi_output();
}

// ---- The way to the sampler -----------------------------------------------------------------------

static int connect_bridge(const std::string &where)
{
	const std::size_t colon = where.rfind(':');
	int port = 0;
	const char *end = where.data() + where.size();
	if (colon == where.npos || colon >= sizeof tcp_address)
		return ctl_usage("--tcp takes ADDRESS:PORT.");
	const auto [stopped, code] = std::from_chars(where.data() + colon + 1, end, port);
	if (code != std::errc() || stopped != end || port < 1 || port > 65535)
		return ctl_usage("--tcp takes ADDRESS:PORT.");
	copy_text(tcp_address, where.substr(0, colon));
	tcp_port = static_cast<u16>(port);
	ctl_ends_inside(exit_no_answer);
	switch_on_tcp();
	if (use_tcp)
		return exit_done;
	ctl_say("Nothing answers at " + where + ".");
	return exit_no_answer;
}

static int load_sampler_of(const ctl_call &call)
{
	std::string name = call.value("--sampler");
	if (name.empty() && conf_sampler.size() == 1)
		name = conf_sampler.front();
	if (std::find(conf_sampler.begin(), conf_sampler.end(), name) != conf_sampler.end()) {
		_sampler record = {};
		ctl_ends_inside(read_configuration(name, &record) ? exit_no_answer : exit_local);
		const outcome loaded = load_by_name(name);
		return loaded.done() ? exit_done : ctl_tell("", loaded);
	}
	if (conf_sampler.empty())
		return ctl_usage("No sampler is configured. The windows of velmor do that: "
				 "Settings, Manage MIDI Samplers.");
	std::string words = name.empty() ? "Which sampler? Name one with --sampler:"
					 : "There is no sampler called '" + name + "', but these:";
	for (const std::string &one : conf_sampler)
		words += "\n  " + one;
	return ctl_usage(words);
}

// What stands in a folder of this computer needs none.
static bool needs_sampler(const ctl_call &call)
{
	return (call.verb->needs_sampler || call.has("--answers")) && !call.has("--local");
}

static int begin_recording(const ctl_call &call)
{
	outcome begun;
	if (call.has("--record"))
		begun = start_recording_to(host.files->system_path(call.value("--record").c_str()));
	else
		record_as_told();
	run_state.records = recording();
	return begun.done() ? exit_done : ctl_tell("", begun);
}

static int end_recording(int status)
{
	if (!std::exchange(run_state.records, false))
		return status;
	const outcome ended = stop_recording();
	ctl_say(ended.words);
	return status ? status : ctl_status(ended);
}

static int run_verb(const ctl_call &call)
{
	start();
	int status = begin_recording(call);
	if (!status && call.has("--tcp"))
		status = connect_bridge(call.value("--tcp"));
	if (!status && needs_sampler(call))
		status = load_sampler_of(call);
	run_state.ended = exit_local;
	if (!status)
		status = call.verb->run(call);
	ctl_hook = {};
	drain();
	return close_requested() ? exit_stopped : status;
}

int run_ctl(const ctl_call &call, const ctl_streams &streams)
{
	run_state = { .call = &call, .streams = streams, .behind = host.ui };
	static ui_service ui;
	ui = ui_of_the_run();
	host.ui = &ui;
	ctl_begin_words(streams, call.has("--json"));
	int status = exit_local;
	try {
		status = run_verb(call);
	} catch (const ctl_ended &) {
		ctl_hook = {};
		status = run_state.ended;
		drain();
	}
	if (use_tcp)
		switch_off_tcp();
	status = end_recording(status);
	ctl_hide_bar();
	host.ui = run_state.behind;
	return status;
}

} // namespace velmor
