// velmor_record.cpp - what crosses the lines, into a file
//
// Knows nothing of: what the bytes mean.

#include "src/velmor_record.h"
#include "src/controls.h"
#include "src/velmor_files.h"
#include "src/velmor_tap.h"
#include "src/velmor_work.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <utility>

namespace velmor
{

// ---- The recording ------------------------------------------------------------------------------

// What is written can be read again.
static constexpr u64 most_written = largest_transcript - (8 << 20); // bytes of text, and of traffic
static constexpr u64 most_events = most_crossings - 1000;
static constexpr u64 most_held = 64 << 20; // bytes of memory, without names
static constexpr double harvest_seconds = 0.2;

struct the_recording {
	std::string path;
	int file = -1;
	bool nameless = false;
	double began = 0, harvested = -1;
	u64 text = 0, traffic = 0, events = 0; // bytes, bytes, number
	std::string sampler;                   // and way, as last told
	bool full = false;                     // no more is taken
	transcript kept;                       // of one without names
	std::set<std::string> names;
	std::string failure;
};
static std::unique_ptr<the_recording> rec;

bool recording()
{
	return rec != nullptr && tap_is_in();
}

static std::string sampler_and_way()
{
	const reached to = loaded_reached();
	return to.model ? std::string(to.model->sampler_brand) + ", " + way_text(to) : "none";
}

template <typename records> static void add_names(const records &list, i32 count)
{
	const i32 most = static_cast<i32>(std::size(list));
	for (i32 i = 0; i < std::clamp(count, 0, most); i++)
		if (const char *name = list[i].name; *name)
			rec->names.emplace(name, strnlen(name, sizeof list[i].name));
}

static void add_sample_names(const _program &program)
{
	for (i32 k = 0; k < std::clamp(program.keygroups, 0, max_keygroups); k++)
		for (const _keyzone &zone : program.keygroup[k].keyzone)
			if (*zone.samplename)
				rec->names.emplace(zone.samplename,
					strnlen(zone.samplename, sizeof zone.samplename));
}

// The names that the program knows now. It forgets them when it reads a list again; those in the
// programs are many, and looked for now and then.
static void harvest_names(bool all)
{
	if (!rec->nameless || !current_sampler || !current_sampler->status)
		return;
	const _dev_status &s = *current_sampler->status;
	add_names(s.program, s.programs);
	add_names(s.sample, s.samples);
	add_names(s.multi, s.multis);
	const double moment = host.clock->counter();
	if (!all && moment < rec->harvested + harvest_seconds)
		return;
	rec->harvested = moment;
	for (i32 i = 0; i < std::clamp(s.programs, 0, max_programs); i++)
		add_sample_names(s.program[i]);
}

static void write_text(const std::string &text)
{
	const int code = host.files->write(rec->file, text.data(), text.size());
	if (code && rec->failure.empty())
		rec->failure = write_failure(rec->path, code);
}

// The work on the line goes on whatever becomes of the file. A recording without names has to be
// gone through, which takes seconds, so that waits until somebody ends it.
static void end_if_full()
{
	const u64 held = rec->traffic + rec->events * sizeof(crossing);
	rec->full = rec->text > most_written || rec->traffic > most_written ||
		    rec->events > most_events || (rec->nameless && held > most_held);
	if (rec->full && rec->nameless)
		log_line("[W] The recording is full. It is written when you end it.\r\n");
	if (rec->full && !rec->nameless && rec->failure.empty())
		rec->failure = tr("It has grown too long.");
	if (rec->failure.empty())
		return;
	const outcome ended = stop_recording();
	log_line("[W] %s\r\n", ended.words.c_str());
}

static void record_one(crossing c)
{
	c.time = std::max(c.time - rec->began, 0.0);
	const std::string text = crossing_text(c);
	rec->text += text.size();
	rec->traffic += c.bytes.size();
	rec->events++;
	if (rec->nameless)
		rec->kept.crossings.push_back(std::move(c));
	else
		write_text(text);
}

static void record_crossing(const crossing &c)
{
	if (!recording() || rec->full)
		return;
	if (const std::string now = sampler_and_way(); std::exchange(rec->sampler, now) != now)
		record_one({ .time = c.time, .note = "sampler: " + now });
	record_one(c);
	if (c.sent)
		harvest_names(false);
	end_if_full();
}

// ---- Begin and end ------------------------------------------------------------------------------

static std::string stamp(const char *format)
{
	const std::time_t seconds = static_cast<std::time_t>(host.clock->time_of_day());
	const std::tm *at = std::localtime(&seconds);
	char text[40] = "";
	if (at)
		std::strftime(text, sizeof text, format, at);
	return text;
}

// A file of a name that nothing has. A system code.
static int make_file(const std::string &folder)
{
	const std::string name = folder + "\\" + stamp("%Y-%m-%d %H.%M.%S");
	int code = 0;
	for (int i = 1; i < 100; i++) {
		rec->path = name + (i > 1 ? format_text(" (%d)", i) : "") + ".txt";
		code = host.files->open(rec->path.c_str(), file_exclusive, &rec->file);
		if (!code || !host.files->exists_already(code))
			break;
	}
	return code;
}

// A program without windows has not asked the settings where that is.
static std::string make_transcripts_folder()
{
	std::string folder = current_config_path;
	if (const char *root = host.settings->user_root(); folder.empty() && root)
		for (const char *below : { "\\VELMOR", "\\VELMOR\\CONFIG" }) {
			folder = std::string(root) + below;
			(void)host.files->make_folder(folder.c_str());
		}
	folder += "\\transcripts";
	(void)host.files->make_folder(folder.c_str());
	return folder;
}

// The file is open already, or code says why not.
static outcome begin(int code, bool names_left_out)
{
	if (code) {
		const outcome failed = { ending::local_failed, write_failure(rec->path, code),
			"FATAL" };
		rec.reset();
		return failed;
	}
	rec->nameless = names_left_out;
	const reached to = loaded_reached();
	rec->kept.recorded = stamp("%Y-%m-%d %H:%M:%S");
	rec->kept.sampler = to.model ? to.model->sampler_brand : "none";
	rec->kept.way = to.model ? way_text(to) : "none";
	rec->kept.names = names_left_out ? "left out" : "kept";
	rec->sampler = sampler_and_way();
	tap_begin();
	tap_record = record_crossing;
	rec->began = host.clock->counter();
	if (!names_left_out)
		write_text(head_text(rec->kept));
	if (!rec->failure.empty())
		return stop_recording();
	log_line("[I] Recording traffic: %s\r\n", host.files->host_path(rec->path.c_str()).c_str());
	return { .words = tr("Traffic is being recorded.") };
}

static outcome recorded_already()
{
	return { .words = tr("Traffic is being recorded already.") };
}

outcome start_recording(bool names_left_out)
{
	if (recording())
		return recorded_already();
	const std::string folder = make_transcripts_folder();
	rec = std::make_unique<the_recording>();
	return begin(make_file(folder), names_left_out);
}

outcome start_recording_to(const std::string &path)
{
	if (recording())
		return recorded_already();
	rec = std::make_unique<the_recording>();
	rec->path = path;
	return begin(host.files->open(path.c_str(), file_exclusive, &rec->file), false);
}

static void write_without_names()
{
	harvest_names(true);
	leave_names_out(rec->kept.crossings, rec->names);
	std::string text = head_text(rec->kept);
	for (const crossing &c : rec->kept.crossings) {
		text += crossing_text(c);
		if (text.size() < 1 << 20)
			continue;
		write_text(text);
		text.clear();
	}
	write_text(text);
}

static outcome how_it_ended; // the last recording, if any

outcome stop_recording()
{
	if (!rec && how_it_ended.words.empty())
		return { .words = tr("No traffic is being recorded.") };
	if (!rec)
		return how_it_ended;
	if (rec->failure.empty())
		tap_flush();
	if (!rec) // the last event has ended it
		return how_it_ended;
	if (rec->nameless)
		write_without_names();
	const int code = host.files->close(rec->file);
	if (code && rec->failure.empty())
		rec->failure = write_failure(rec->path, code);
	const std::string path = host.files->host_path(rec->path.c_str());
	const std::string failure = rec->failure;
	rec.reset();
	tap_record = nullptr;
	tap_leave_if_idle();
	host.ui->set_checked(window_main, menu_record, false);
	if (!failure.empty())
		return how_it_ended = { ending::local_failed,
			format_text(tr("The recording ended: %s What there is lies in %s."),
				failure.c_str(), path.c_str()),
			"FATAL" };
	log_line("[I] Recorded traffic: %s\r\n", path.c_str());
	return how_it_ended = { .words = format_text(tr("The transcript is %s."), path.c_str()) };
}

void record_as_told()
{
	const char *told = std::getenv("VELMOR_RECORD");
	if (!told || !*told || !std::strcmp(told, "0"))
		return;
	const outcome begun = start_recording(!std::strcmp(told, "nameless"));
	if (!begun.done())
		log_line("[W] %s\r\n", begun.words.c_str());
	host.ui->set_checked(window_main, menu_record, recording());
}

} // namespace velmor
