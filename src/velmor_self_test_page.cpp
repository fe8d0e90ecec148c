// velmor_self_test_page.cpp - the window of the self-test
//
// Knows nothing of: how an interface is tested, toolkits.

#include "src/velmor_self_test_page.h"
#include "src/controls.h"
#include "src/velmor_self_test.h"

namespace velmor
{

static self_test_report last_report;

static void say_verdict(const std::string &words, text_role role)
{
	host.ui->set_text(window_self_test, self_test_verdict, words.c_str());
	host.ui->set_role(window_self_test, self_test_verdict, role);
}

// What can be kept and what is.
static void update_keeping()
{
	const std::string port = chosen_output();
	host.ui->set_reason(window_self_test, self_test_keep,
		last_report.found.run && last_report.port == port
			? nullptr
			: tr("A test over a loop cable finds what is kept here, where it is "
			     "needed"));
	host.ui->set_reason(window_self_test, self_test_forget,
		kept_pace(port).run ? nullptr : tr("Nothing is kept for this interface"));
}

static void show_rows(const self_test_report &report)
{
	std::vector<std::vector<std::string>> rows;
	for (const self_test_row &row : report.rows)
		rows.push_back(row_words(row));
	host.ui->set_rows(window_self_test, self_test_list, rows);
	host.ui->set_list_state(window_self_test, self_test_list,
		rows.empty() ? list_state::unread : list_state::fresh, "");
}

void show_self_test()
{
	static constexpr const char *ways[] = { own("Loop cable from MIDI-Out to MIDI-In"),
		own("The loaded sampler's answers") };
	reload_midi_setup(false);
	open_window(window_self_test);
	last_report = {};
	host.ui->set_list(window_self_test, self_test_way,
		std::vector<std::string>{ tr(ways[0]), tr(ways[1]) });
	host.ui->select(window_self_test, self_test_way, 0);
	show_rows(last_report);
	say_verdict(pace_words(chosen_output()), text_role::quiet);
	update_keeping();
}

static void begin_self_test()
{
	const bool sampler = host.ui->selection(window_self_test, self_test_way) == 1;
	say_verdict(tr("Testing ..."), text_role::quiet);
	show_rows({});
	const outcome done =
		run_self_test(sampler ? self_test_route::sampler : self_test_route::loop_cable,
			&last_report, show_rows);
	say_verdict(done.words, done.done()                   ? text_role::good
				: done.how == ending::stopped ? text_role::careful
							      : text_role::failed);
	update_keeping();
	say_line(done.done() ? tr("The self-test is through.")
			     : tr("The self-test has found trouble."),
		done.done() ? text_role::good : text_role::careful);
}

static void keep_what_was_found()
{
	const outcome done = keep_found_pace(last_report);
	show_outcome(done);
	say_verdict(done.words, done.done() ? text_role::good : text_role::failed);
	update_keeping();
}

static void forget_what_is_kept()
{
	const outcome done = forget_pace_of(chosen_output());
	show_outcome(done);
	say_verdict(done.words, done.done() ? text_role::good : text_role::failed);
	update_keeping();
}

// ---- Rows --------------------------------------------------------------------------------------

// clang-format off
static constexpr caption_row self_test_captions[] = {
	// window           control              caption, tooltip, empty
	{ window_self_test, 0,                   own("VELMOR Interface self-test"), nullptr, nullptr },
	{ window_self_test, self_test_way,  own("Way:"), own("What sends back what is sent"), nullptr },
	{ window_self_test, self_test_begin,     own("Begin test"), own("Send messages of 16 bytes to 64 KiB and compare what comes back"), nullptr },
	{ window_self_test, self_test_list,      own("Messages"), own("What became of each message"), own("Not tested yet. Plug a cable from MIDI-Out to MIDI-In of your interface, or load a sampler.") },
	{ window_self_test, self_test_verdict,   own("Result"), nullptr, nullptr },
	{ window_self_test, self_test_keep,      own("Use from now on"), own("Send long messages to this interface in the runs that arrived"), nullptr },
	{ window_self_test, self_test_forget,    own("Forget"), own("Send long messages to this interface at once again"), nullptr },
	{ window_self_test, control_cancel,      "&Cancel", own("Close this window"), nullptr },
	{ window_settings,  settings_self_test,  own("Test this interface ..."), own("See whether the chosen ports pass on long messages"), nullptr },
};
static constexpr command_row self_test_commands[] = {
	{ window_self_test, self_test_begin,     begin_self_test,               alone  },
	{ window_self_test, self_test_keep,      keep_what_was_found,           alone  },
	{ window_self_test, self_test_forget,    forget_what_is_kept,           alone  },
	{ window_self_test, control_cancel,      hide_window<window_self_test>, always },
	{ window_settings,  settings_self_test,  show_self_test,                alone  },
};
// clang-format on

constinit const window_rows self_test_rows = { self_test_captions, self_test_commands };

} // namespace velmor
