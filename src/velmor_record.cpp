// velmor_record.cpp - the recorder in front of the host's services, and the files it writes
//
// Bytes that come one by one make one event, until 20 ms pass without any or something else
// happens on any line. What is sent over MIDI or USB is an event for each run handed over. The event under way
// is written when the next one begins, so a crash loses no more than that.
//
// Knows nothing of: what the bytes mean.

#include "src/velmor_record.h"
#include "src/controls.h"
#include "src/velmor_files.h"
#include "src/velmor_work.h"
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace velmor
{

static constexpr double pause_seconds = 0.02, byte_seconds = 10 / 31250.0;
static constexpr std::size_t longest_event = 1 << 16;

// ---- Who wants the events ---------------------------------------------------------------------

static std::vector<traffic_listener *> listeners;

static void record_crossing(const crossing &c); // into the file

static struct {
	bool installed = false;
	crossing now;     // under way
	bool any = false; // now is one
	double last = 0;  // moment of its last byte
} tap;

static void flush_event()
{
	if (!tap.any)
		return;
	tap.any = false;
	const crossing done = std::move(tap.now);
	for (traffic_listener *listener : listeners)
		listener->crossings.push_back(done);
	record_crossing(done);
}

static void add_bytes(
	wire_line line, bool sent, std::span<const u8> bytes, double now = host.clock->counter())
{
	if (bytes.empty())
		return;
	const bool whole = line == wire_line::usb || (sent && line == wire_line::midi);
	// What a program looks for ten times a second has come all the while.
	const double busy = static_cast<double>(bytes.size()) * byte_seconds;
	const bool goes_on = tap.any && !whole && tap.now.line == line && tap.now.sent == sent &&
			     now - tap.last < pause_seconds + busy &&
			     tap.now.bytes.size() + bytes.size() <= longest_event;
	if (!goes_on) {
		flush_event();
		tap.now = { .time = now, .sent = sent, .line = line };
		tap.any = true;
	}
	tap.now.bytes.insert(tap.now.bytes.end(), bytes.begin(), bytes.end());
	tap.last = now;
	if (whole)
		flush_event();
}

static void add_note(const std::string &words)
{
	flush_event();
	tap.now = { .time = host.clock->counter(), .note = words };
	tap.any = true;
	flush_event();
}

// A note that is true until another one of its kind comes.
static std::map<std::string, std::string> noted;
static void add_state(const char *kind, const std::string &words)
{
	if (std::exchange(noted[kind], words) != words)
		add_note(std::string(kind) + ": " + words);
}

static std::string words_or_none(const char *words)
{
	return words ? words : "";
}

// ---- What the thread of a port passes on -----------------------------------------------------

struct passed_run {
	double time;
	std::vector<u8> bytes;
};
static std::mutex passed_lock;
static std::vector<passed_run> passed;
static std::atomic<midi_judge> judging = nullptr;
static constexpr std::size_t most_passed = 1 << 16; // messages that wait for the main thread

static int judge_and_keep(midi_sorter *sorter, unsigned char byte, unsigned char *message)
{
	const midi_judge judge = judging;
	const int length = judge ? judge(sorter, byte, message) : 0;
	const std::lock_guard hold(passed_lock);
	if (length > 0 && passed.size() < most_passed)
		passed.push_back({ host.clock->counter(), { message, message + length } });
	return length;
}

static void add_passed()
{
	std::vector<passed_run> runs;
	{
		const std::lock_guard hold(passed_lock);
		runs.swap(passed);
	}
	for (const passed_run &run : runs)
		add_bytes(wire_line::thru, true, run.bytes, run.time);
}

// ---- MIDI -------------------------------------------------------------------------------------

static const midi_service *real_midi = nullptr;
static midi_service midi_table;

struct open_input_state {
	const u8 *buffer = nullptr; // while it is armed
	std::size_t seen = 0;
	bool monitors = false, failed = false;
};
static std::map<int, open_input_state> inputs;

static std::string port_failure(int code)
{
	return "failed, " + words_or_none(real_midi->error_text(code));
}

static void note_port(const char *kind, int code, const char *name)
{
	add_state(kind, code ? port_failure(code) : "opened, " + words_or_none(name));
}

static std::size_t see_received(int handle)
{
	const std::size_t count = real_midi->received(handle);
	const auto found = inputs.find(handle);
	if (found == inputs.end() || !found->second.buffer || count <= found->second.seen)
		return count;
	open_input_state &in = found->second;
	add_bytes(wire_line::midi, false, { in.buffer + in.seen, count - in.seen });
	in.seen = count;
	return count;
}

static void end_armed(int handle)
{
	if (inputs[handle].buffer)
		see_received(handle);
	inputs[handle].buffer = nullptr;
}

static int write_midi(int handle, const unsigned char *bytes, std::size_t count)
{
	add_passed();
	const int code = real_midi->write(handle, bytes, count);
	if (code)
		add_note("midi-out: " + port_failure(code));
	else
		add_bytes(wire_line::midi, true, { bytes, count });
	return code;
}

static std::size_t take_midi(int handle, unsigned char *bytes, std::size_t capacity)
{
	add_passed();
	const std::size_t count = real_midi->take(handle, bytes, capacity);
	add_bytes(inputs[handle].monitors ? wire_line::monitor : wire_line::midi, false,
		{ bytes, std::min(count, capacity) });
	return count;
}

static int see_input_error(int handle)
{
	const int code = real_midi->input_error(handle);
	if (code && !std::exchange(inputs[handle].failed, true))
		add_note("midi-in: " + port_failure(code));
	return code;
}

static int pass_on_midi(int handle, int output, midi_judge judge)
{
	inputs[handle].monitors = true;
	judging = judge;
	return real_midi->pass_on(handle, output, judge_and_keep);
}

static void wrap_midi()
{
	midi_table = *real_midi;
	midi_table.open_output = [](int index, int *handle) {
		const int code = real_midi->open_output(index, handle);
		note_port("midi-out", code, real_midi->output_name(std::max(index, 0)));
		return code;
	};
	midi_table.write = write_midi;
	midi_table.open_input = [](int index, int *handle) {
		const int code = real_midi->open_input(index, handle);
		note_port("midi-in", code, real_midi->input_name(index));
		if (!code)
			inputs[*handle] = {};
		return code;
	};
	midi_table.arm = [](int handle, unsigned char *buffer, std::size_t capacity) {
		end_armed(handle);
		const int code = real_midi->arm(handle, buffer, capacity);
		if (!code)
			inputs[handle] = { .buffer = buffer };
		return code;
	};
	midi_table.received = see_received;
	midi_table.take = take_midi;
	midi_table.input_error = see_input_error;
	if (real_midi->pass_on)
		midi_table.pass_on = pass_on_midi;
	midi_table.disarm = [](int handle) {
		end_armed(handle);
		real_midi->disarm(handle);
	};
	midi_table.close_input = [](int handle) {
		end_armed(handle);
		inputs.erase(handle);
		real_midi->close_input(handle);
	};
}

// ---- TCP --------------------------------------------------------------------------------------

static const net_service *real_net = nullptr;
static net_service net_table;

static long see_net(long count, bool sent, const u8 *bytes)
{
	if (count > 0)
		add_bytes(wire_line::tcp, sent, { bytes, static_cast<std::size_t>(count) });
	else if (count < 0)
		add_state("tcp",
			"broken, " + words_or_none(real_net->error_text(static_cast<int>(-count))));
	return count;
}

static void wrap_net()
{
	net_table = *real_net;
	net_table.connect = [](const char *address, unsigned short port, int *handle) {
		add_note(format_text("tcp: connecting to %s:%d", address, port));
		noted.erase("tcp");
		return real_net->connect(address, port, handle);
	};
	net_table.send = [](int handle, const unsigned char *bytes, std::size_t count) {
		return see_net(real_net->send(handle, bytes, count), true, bytes);
	};
	net_table.receive = [](int handle, unsigned char *bytes, std::size_t capacity) {
		return see_net(real_net->receive(handle, bytes, capacity), false, bytes);
	};
	net_table.close = [](int handle) {
		add_note("tcp: closed");
		real_net->close(handle);
	};
}

// ---- USB --------------------------------------------------------------------------------------

static const usb_service *real_usb = nullptr;
static usb_service usb_table;

struct usb_transfer {
	bool sent;
	const u8 *buffer;
	std::size_t count;
};
static std::map<int, usb_transfer> transfers;

static const char *failure_word(int result)
{
	static constexpr const char *words[] = { "", "pending", "timeout", "denied", "gone", "busy",
		"stalled", "cancelled", "failed" };
	return result >= 0 && result < static_cast<int>(std::size(words)) ? words[result]
									  : "failed";
}

static int open_usb(const char *path, int *handle)
{
	const int result = real_usb->open(path, handle);
	std::vector<usb_device> devices;
	real_usb->list(&devices);
	for (const usb_device &device : devices)
		if (device.path == path)
			add_note(format_text("usb: %s %04X:%04X", result ? "not opened" : "opened",
				device.vendor, device.product));
	return result;
}

static int finish_usb(int id, std::size_t *moved)
{
	const int result = real_usb->finished(id, moved);
	const auto found = transfers.find(id);
	if (result == usb_pending || found == transfers.end())
		return result;
	const usb_transfer &t = found->second;
	const std::size_t count = std::min(*moved, t.count);
	flush_event();
	tap.now = { .time = host.clock->counter(),
		.sent = t.sent,
		.line = wire_line::usb,
		.bytes = { t.buffer, t.buffer + count },
		.asked = t.sent && count == t.count ? 0 : t.count,
		.failed = failure_word(result) };
	tap.any = true;
	flush_event();
	transfers.erase(found);
	return result;
}

static void wrap_usb()
{
	usb_table = *real_usb;
	usb_table.open = open_usb;
	usb_table.submit = [](int handle, std::uint8_t pipe, unsigned char *buffer,
				   std::size_t count, int deadline_ms, int *transfer) {
		const int result =
			real_usb->submit(handle, pipe, buffer, count, deadline_ms, transfer);
		if (result == usb_ok)
			transfers[*transfer] = { !(pipe & 0x80), buffer, count };
		else
			add_note(std::string("usb: refused, ") + failure_word(result));
		return result;
	};
	usb_table.finished = finish_usb;
	usb_table.close = [](int handle) {
		add_note("usb: closed");
		real_usb->close(handle);
	};
	usb_table.reset_pipe = [](int handle, std::uint8_t pipe) {
		add_note(format_text("usb: pipe %02X reset", pipe));
		return real_usb->reset_pipe(handle, pipe);
	};
}

// ---- In front of the services, or not -----------------------------------------------------------

template <typename service>
static void install(
	const service **slot, const service **real, const service *table, void (*wrap)())
{
	if (!*slot)
		return;
	*real = *slot;
	wrap();
	*slot = table;
}

template <typename service>
static void remove(const service **slot, const service *real, const service *table)
{
	if (*slot == table)
		*slot = real;
}

static bool is_installed()
{
	return tap.installed &&
	       (host.midi == &midi_table || host.net == &net_table || host.usb == &usb_table);
}

static void install_tap()
{
	if (is_installed())
		return;
	tap = {};
	tap.installed = true;
	inputs.clear();
	transfers.clear();
	noted.clear();
	install(&host.midi, &real_midi, &midi_table, wrap_midi);
	install(&host.net, &real_net, &net_table, wrap_net);
	install(&host.usb, &real_usb, &usb_table, wrap_usb);
}

static void remove_tap_if_idle()
{
	if (recording() || !listeners.empty())
		return;
	remove(&host.midi, real_midi, &midi_table);
	remove(&host.net, real_net, &net_table);
	remove(&host.usb, real_usb, &usb_table);
	tap.installed = false;
}

traffic_listener::traffic_listener()
{
	install_tap();
	flush_event();
	listeners.push_back(this);
}

traffic_listener::~traffic_listener()
{
	std::erase(listeners, this);
	remove_tap_if_idle();
}

const std::vector<crossing> &traffic_listener::take()
{
	flush_event();
	return crossings;
}

// ---- The recording ------------------------------------------------------------------------------

static constexpr u64 most_written = largest_transcript - (1 << 20); // bytes of text
static constexpr double harvest_seconds = 0.2;

struct the_recording {
	std::string path;
	int file = -1;
	bool nameless = false;
	double began = 0, harvested = -1;
	u64 bytes = 0;
	std::string sampler; // and way, as last told
	transcript kept;     // of one without names
	std::set<std::string> names;
	std::string failure;
};
static std::unique_ptr<the_recording> rec;

bool recording()
{
	return rec != nullptr && is_installed();
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

static void end_if_full()
{
	if (rec->bytes > most_written)
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
	rec->bytes += text.size();
	if (rec->nameless)
		rec->kept.crossings.push_back(std::move(c));
	else
		write_text(text);
}

static void record_crossing(const crossing &c)
{
	if (!recording())
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

outcome start_recording(bool names_left_out)
{
	if (recording())
		return { .words = tr("Traffic is being recorded already.") };
	const std::string folder = make_transcripts_folder();
	rec = std::make_unique<the_recording>();
	rec->nameless = names_left_out;
	if (const int code = make_file(folder)) {
		const outcome failed = { ending::local_failed, write_failure(rec->path, code),
			"FATAL" };
		rec.reset();
		return failed;
	}
	const reached to = loaded_reached();
	rec->kept.recorded = stamp("%Y-%m-%d %H:%M:%S");
	rec->kept.sampler = to.model ? to.model->sampler_brand : "none";
	rec->kept.way = to.model ? way_text(to) : "none";
	rec->kept.names = names_left_out ? "left out" : "kept";
	rec->sampler = sampler_and_way();
	install_tap();
	noted.clear();
	flush_event();
	rec->began = host.clock->counter();
	if (!names_left_out)
		write_text(head_text(rec->kept));
	log_line("[I] Recording traffic: %s\r\n", host.files->host_path(rec->path.c_str()).c_str());
	return { .words = tr("Traffic is being recorded.") };
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

outcome stop_recording()
{
	if (!rec)
		return { .words = tr("No traffic is being recorded.") };
	add_passed();
	if (rec->failure.empty())
		flush_event();
	if (!rec) // the last event has ended it
		return { ending::local_failed, tr("The recording could not be written."), "FATAL" };
	if (rec->nameless)
		write_without_names();
	const int code = host.files->close(rec->file);
	if (code && rec->failure.empty())
		rec->failure = write_failure(rec->path, code);
	const std::string path = host.files->host_path(rec->path.c_str());
	const std::string failure = rec->failure;
	rec.reset();
	remove_tap_if_idle();
	host.ui->set_checked(window_main, menu_record, false);
	if (!failure.empty())
		return { ending::local_failed,
			format_text(tr("The recording ended: %s What there is lies in %s."),
				failure.c_str(), path.c_str()),
			"FATAL" };
	log_line("[I] Recorded traffic: %s\r\n", path.c_str());
	return { .words = format_text(tr("The transcript is %s."), path.c_str()) };
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
