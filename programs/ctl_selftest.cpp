// ctl_selftest.cpp - verbs about the line itself: does it pass on what it is given, and does it say
// what it said?

#include "programs/ctl.h"
#include "src/velmor_replay.h"
#include "src/velmor_self_test.h"

namespace velmor
{

// ---- The interface --------------------------------------------------------------------------------

static void print_row(const self_test_row &row)
{
	ctl_object object;
	object.number("sent", static_cast<double>(row.sent))
		.number("came", static_cast<double>(row.came))
		.text("result", result_word(row.result));
	if (row.sent_byte != row.came_byte)
		object.number("at", static_cast<double>(row.at))
			.number("was", row.sent_byte)
			.number("is", row.came_byte);
	object.number("rate", row.rate).number("seconds", row.seconds);
	std::string plain;
	for (const std::string &word : row_words(row))
		plain += (plain.empty() ? "" : "\t") + word;
	ctl_print(object, plain);
}

int ctl_selftest(const ctl_call &call)
{
	if (call.has("--forget"))
		return ctl_tell("", forget_pace_of(chosen_output()));
	if (const std::string kept = pace_words(chosen_output()); !kept.empty())
		ctl_say(kept);
	self_test_report report;
	const outcome done = run_self_test(
		call.has("--answers") ? self_test_route::sampler : self_test_route::loop_cable,
		&report, [](const self_test_report &r) { print_row(r.rows.back()); });
	const int status = ctl_tell("", done);
	if (!call.has("--keep") || !report.found.run)
		return status;
	return ctl_tell("", keep_found_pace(report));
}

// ---- A transcript ---------------------------------------------------------------------------------

static void print_difference(const replay_difference &d)
{
	ctl_object object;
	object.number("line", d.row)
		.number("time", d.time)
		.number("at", static_cast<double>(d.at))
		.number("was", d.then)
		.number("is", d.now);
	ctl_print(object, d.words);
}

int ctl_replay(const ctl_call &call)
{
	transcript then;
	const std::string path = host.files->system_path(call.words[0].c_str());
	if (const std::string wrong = read_transcript_file(path, &then); !wrong.empty())
		return ctl_tell(call.words[0], { ending::local_failed, wrong });
	if (!ask_box("WARNING", "What was sent in this transcript is sent again, and changes the "
				"sampler as it did then. Do it now?"))
		return ctl_tell(
			call.words[0], { .how = ending::refused, .words = "Nothing was sent." });
	replay_report report;
	const outcome done = replay_transcript(then, &report);
	for (const replay_difference &d : report.differences)
		print_difference(d);
	return ctl_tell(call.words[0], done);
}

} // namespace velmor
