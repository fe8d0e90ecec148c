// velmor_self_test.cpp - does the interface pass on what it is given?
//
// A run that an interface loses the end of is found by halves: the longest that passes with as
// long a pause as the wire needs for it and more, then the shortest pause that passes with it.
// Both are tried on a longer message before they are believed.

#include "src/velmor_self_test.h"
#include "src/velmor_midi.h"
#include "src/velmor_record.h"
#include "src/velmor_stream.h"
#include "src/velmor_work.h"
#include <algorithm>
#include <cmath>
#include <map>

namespace velmor
{

using byte_list = std::vector<u8>;

static constexpr double byte_seconds = 10 / 31250.0;
static constexpr double quiet_seconds = 1.5; // nothing for so long: no more comes
static constexpr double late_seconds = 0.25; // beyond the wire's own time
static constexpr double longest_test = 300;
static constexpr std::size_t lengths[] = { 16, 64, 256, 1024, 4096, 16384, 65536 };
static constexpr std::size_t enough_for_search = 1024, enough_for_proof = 16384;

// ---- Words ------------------------------------------------------------------------------------

const char *result_word(self_test_result result)
{
	static constexpr const char *words[] = { own("pass"), own("loss"), own("doubled"),
		own("change"), own("delay"), own("silence") };
	return tr(words[static_cast<int>(result)]);
}

static std::string byte_word(int byte)
{
	return byte < 0 ? tr("nothing") : format_text("%02X", static_cast<unsigned>(byte));
}

std::vector<std::string> row_words(const self_test_row &row)
{
	const bool differs = row.sent_byte != row.came_byte;
	return { format_text(tr("%zu bytes"), row.sent), result_word(row.result),
		differs ? format_text(tr("byte %zu: %s, not %s"), row.at,
				  byte_word(row.came_byte).c_str(),
				  byte_word(row.sent_byte).c_str())
			: "",
		row.rate > 0 ? format_text(tr("%.0f bytes/s"), row.rate) : "",
		format_text("%.2f s", row.seconds) };
}

std::string pace_words(const std::string &port)
{
	const send_pace pace = kept_pace(port);
	return pace.run ? format_text(tr("Long messages to '%s' leave in runs of %d bytes, %d ms "
					 "apart."),
				  port.c_str(), pace.run, pace.pause_ms)
			: "";
}

// ---- One message --------------------------------------------------------------------------------

static void compare(const byte_list &sent, const byte_list &came, self_test_row *row)
{
	const auto [a, b] = std::ranges::mismatch(sent, came);
	row->sent = sent.size();
	row->came = came.size();
	row->at = static_cast<std::size_t>(a - sent.begin());
	row->sent_byte = a == sent.end() ? -1 : *a;
	row->came_byte = b == came.end() ? -1 : *b;
	using enum self_test_result;
	row->result = came == sent                ? pass
		      : came.empty()              ? silence
		      : came.size() < sent.size() ? loss
		      : came.size() > sent.size() ? doubled
						  : change;
}

// Every place has another neighbour than the one 16, 64, 256 or 1024 bytes away, so that a byte
// that is missing shows where it is missing.
static byte_list trial_message(std::size_t length)
{
	byte_list bytes = { 0xF0, 0x7D };
	u32 state = static_cast<u32>(length) * 2654435761u + 1;
	while (bytes.size() + 1 < length) {
		state = state * 1664525 + 1013904223;
		bytes.push_back(static_cast<u8>(state >> 24 & 0x7F));
	}
	bytes.push_back(0xF7);
	return bytes;
}

struct self_test {
	self_test_report *report;
	const std::function<void(const self_test_report &)> &told;
	double began = host.clock->counter();
	std::string failure = {}; // of the port

	bool over() const
	{
		return !failure.empty() || progress_stopped() ||
		       host.clock->counter() > began + longest_test;
	}
	void add(const self_test_row &row)
	{
		report->rows.push_back(row);
		if (told)
			told(*report);
	}
};

// Take what comes until it is as much as was sent and nothing follows, or until it is quiet.
static byte_list listen_for(self_test *test, byte_stream *stream, std::size_t wanted, double *last)
{
	byte_list came;
	double quiet_from = host.clock->counter();
	while (!test->over()) {
		const std::size_t before = came.size();
		test->failure = stream->take(&came);
		const double now = host.clock->counter();
		if (came.size() > before)
			quiet_from = *last = now;
		const bool whole = came.size() == wanted;
		const double end = quiet_from + (whole ? 0.02 : quiet_seconds);
		if (now >= end || came.size() > wanted * 2 + 1024)
			break;
		pump_until(end);
	}
	return came;
}

static self_test_row try_length(
	self_test *test, byte_stream *stream, std::size_t length, send_pace pace)
{
	const byte_list message = trial_message(length);
	self_test_row row;
	byte_list left_over;
	test->failure = stream->take(&left_over);
	const double began = host.clock->counter();
	if (test->failure.empty()) {
		const pace_trial slow(pace);
		test->failure = stream->send(message);
	}
	double last = host.clock->counter();
	compare(message, listen_for(test, stream, length, &last), &row);
	row.seconds = last - began;
	row.rate = row.came && row.seconds > 0 ? static_cast<double>(row.came) / row.seconds : 0;
	const std::size_t runs = pace.run ? length / static_cast<std::size_t>(pace.run) : 0;
	const double allowed = static_cast<double>(length) * byte_seconds * 1.01 + late_seconds +
			       static_cast<double>(runs) * (pace.pause_ms + 10) / 1000;
	if (row.result == self_test_result::pass && row.seconds > allowed)
		row.result = self_test_result::delay;
	test->report->trials++;
	return row;
}

// ---- The pace that passes ---------------------------------------------------------------------------

struct pace_search {
	self_test *test;
	byte_stream *stream;
	std::size_t length; // of the messages that are tried

	bool passes(std::size_t message, std::size_t run, int pause)
	{
		if (test->over())
			return false;
		const self_test_row row =
			try_length(test, stream, message, { static_cast<int>(run), pause });
		// A message may arrive late, as long as it is whole.
		return row.result == self_test_result::pass ||
		       row.result == self_test_result::delay;
	}
	static int long_pause(std::size_t run)
	{
		const double wire = static_cast<double>(run) * byte_seconds * 1000;
		return std::min(static_cast<int>(wire * 1.25) + 50, longest_pause_ms);
	}
	// The longest run that passes, 0: none does.
	std::size_t longest()
	{
		const std::size_t step = std::max<std::size_t>(16, length / 64);
		std::size_t good = 0, bad = length / step; // in steps
		while (bad - good > 1) {
			const std::size_t middle = (good + bad) / 2;
			const std::size_t run = middle * step;
			(passes(length, run, long_pause(run)) ? good : bad) = middle;
		}
		return good * step;
	}
	int shortest_pause(std::size_t run)
	{
		const std::size_t message = std::max(length, 4 * run);
		constexpr int step = 5;
		int bad = -1, good = (long_pause(run) + step - 1) / step;
		while (good - bad > 1) {
			const int middle = (good + bad) / 2;
			(passes(message, run, middle * step) ? good : bad) = middle;
		}
		return std::min(good * step, longest_pause_ms);
	}
};

static void search_pace(self_test *test, byte_stream *stream, std::size_t failed)
{
	test->report->searched = true;
	pace_search search = { test, stream, std::max(failed, enough_for_search) };
	const std::size_t run = search.longest();
	if (!run || test->over())
		return;
	// A tenth more than what just passed.
	const int shortest = search.shortest_pause(run);
	for (int pause = shortest + shortest / 10; !test->over(); pause = pause * 2 + 5) {
		if (search.passes(std::max(failed, enough_for_proof), run, pause)) {
			test->report->found = { static_cast<int>(run), pause };
			return;
		}
		if (pause > search.long_pause(run))
			return;
	}
}

// ---- The two ways -----------------------------------------------------------------------------------

static bool is_whole(const self_test_row &row)
{
	return row.result == self_test_result::pass || row.result == self_test_result::delay;
}

static void run_loop(self_test *test)
{
	byte_stream stream;
	test->failure = stream.open();
	std::size_t failed = 0;
	int silent = 0, place = 0;
	for (const std::size_t length : lengths) {
		if (test->over() || silent == 2)
			break;
		const self_test_row row = try_length(test, &stream, length, {});
		if (test->over())
			return;
		test->add(row);
		silent += row.result == self_test_result::silence;
		if (!is_whole(row) && !failed)
			failed = length;
		set_progressbar(++place * 8);
	}
	if (failed && silent < 2 && !use_tcp && !test->over())
		search_pace(test, &stream, failed);
}

// What came during one question, all answers of it. Real time belongs to none.
static byte_list answers_of(const std::vector<crossing> &all)
{
	byte_list bytes;
	for (const crossing &c : all)
		if (!c.sent && c.line != wire_line::monitor)
			std::ranges::copy_if(c.bytes, std::back_inserter(bytes),
				[&](u8 b) { return c.line == wire_line::usb || b < 0xF8; });
	return bytes;
}

// The answer that came most often.
static byte_list most_common(const std::vector<byte_list> &answers)
{
	std::map<byte_list, int> counts;
	for (const byte_list &answer : answers)
		if (!answer.empty())
			counts[answer]++;
	const auto most = std::ranges::max_element(
		counts, {}, [](const auto &entry) { return entry.second; });
	return most == counts.end() ? byte_list() : most->first;
}

static void run_sampler(self_test *test)
{
	const reached to = loaded_reached();
	const bool usb = to.model && to.model->sampler_flags & flag_usb;
	std::vector<byte_list> answers;
	std::vector<double> seconds;
	for (const std::size_t length : lengths) {
		if (progress_stopped())
			return;
		if (test->over())
			break;
		if (!usb) {
			const byte_list message = trial_message(length);
			send_midi_string(message.data(), static_cast<int>(length));
		}
		traffic_listener listener;
		const double began = host.clock->counter();
		(void)read_sample_list();
		answers.push_back(answers_of(listener.take()));
		seconds.push_back(host.clock->counter() - began);
		set_progressbar(static_cast<int>(answers.size()) * 12);
		if (answers.size() == 2 && answers[0].empty() && answers[1].empty())
			break;
	}
	const byte_list usual = most_common(answers);
	const double quickest = *std::ranges::min_element(seconds);
	for (std::size_t i = 0; i < answers.size(); i++) {
		self_test_row row;
		compare(usual, answers[i], &row);
		row.sent = usb ? usual.size() : lengths[i];
		row.seconds = seconds[i];
		row.rate = static_cast<double>(row.came) / std::max(seconds[i], 1e-3);
		if (answers[i].empty())
			row.result = self_test_result::silence;
		else if (row.result == self_test_result::pass && seconds[i] > quickest * 1.5 + 1)
			row.result = self_test_result::delay;
		test->report->trials++;
		test->add(row);
	}
}

// ---- The verdict --------------------------------------------------------------------------------------

static std::string search_words(const self_test_report &r)
{
	if (!r.searched)
		return "";
	if (!r.found.run)
		return tr(" No shorter run helps: the interface or the cable loses bytes at any "
			  "length.");
	return format_text(tr(" In runs of %d bytes, %d ms apart, everything arrives."),
		r.found.run, r.found.pause_ms);
}

static outcome verdict(const self_test &test, self_test_route way)
{
	const self_test_report &r = *test.report;
	if (!test.failure.empty())
		return { ending::no_answer, test.failure, "FATAL" };
	if (progress_stopped())
		return { ending::stopped, tr("The self-test was stopped.") };
	const auto bad = std::ranges::find_if(r.rows,
		[](const self_test_row &row) { return row.result != self_test_result::pass; });
	const auto heard = [](const self_test_row &row) { return row.came > 0; };
	if (std::ranges::none_of(r.rows, heard))
		return { ending::no_answer,
			way == self_test_route::loop_cable
				? tr("Nothing comes back. Is a cable plugged from this output to "
				     "this "
				     "input, and are both chosen in Basic settings?")
				: silence_words(loaded_reached()),
			"WARNING" };
	if (bad == r.rows.end())
		return { .words = format_text(tr("All %zu messages passed, up to %zu bytes."),
				 r.rows.size(), r.rows.back().sent) };
	const std::vector<std::string> words = row_words(*bad);
	return { r.found.run ? ending::done : ending::refused,
		words[2].empty()
			? format_text(tr("The message of %s: %s.%s"), words[0].c_str(),
				  words[1].c_str(), search_words(r).c_str())
			: format_text(tr("The message of %s: %s, %s.%s"), words[0].c_str(),
				  words[1].c_str(), words[2].c_str(), search_words(r).c_str()),
		"WARNING" };
}

static outcome may_begin(self_test_route way)
{
	if (!use_tcp)
		if (const std::string taken = why_output_is_taken(); !taken.empty())
			return { ending::refused, taken, "INFO" };
	if (way == self_test_route::sampler)
		return offers_list(&_sampler_type::getsamplelist);
	if (!use_tcp && (selected_midi_out_interface < 0 || selected_midi_in_interface < 0))
		return { ending::refused,
			tr("Choose MIDI-Out and MIDI-In in Basic settings first."), "INFO" };
	return {};
}

outcome run_self_test(self_test_route way, self_test_report *report,
	const std::function<void(const self_test_report &)> &told)
{
	*report = {};
	if (outcome may = may_begin(way); !may.done())
		return may;
	const bool cable = way == self_test_route::loop_cable;
	report->port = cable && !use_tcp ? chosen_output() : "";
	self_test test = { .report = report, .told = told };
	show_progressbar(0, 100, tr("Self-test"));
	cable ? run_loop(&test) : run_sampler(&test);
	report->seconds = host.clock->counter() - test.began;
	outcome done = verdict(test, way);
	hide_progressbar(0);
	return done;
}

outcome keep_found_pace(const self_test_report &report)
{
	if (report.port.empty() || !report.found.run)
		return { ending::refused, tr("The self-test has found nothing to keep."), "INFO" };
	if (keep_pace(report.port, report.found) != 0)
		return { ending::local_failed, tr("The settings could not be written."), "FATAL" };
	return { .words = pace_words(report.port) };
}

outcome forget_pace_of(const std::string &port)
{
	if (!kept_pace(port).run)
		return { ending::refused, tr("Nothing is kept for this interface."), "INFO" };
	if (keep_pace(port, {}) != 0)
		return { ending::local_failed, tr("The settings could not be written."), "FATAL" };
	return { .words = format_text(
			 tr("Long messages to '%s' leave at once again."), port.c_str()) };
}

} // namespace velmor
