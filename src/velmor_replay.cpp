// velmor_replay.cpp - the program's side of a transcript once more, and where the answers part
//
// Pauses are kept, long ones in part: a sampler that was given time then gets it now.

#include "src/velmor_replay.h"
#include "src/velmor_stream.h"
#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace velmor
{

static constexpr double byte_seconds = 10 / 31250.0, patience = 3, longest_pause = 2;
static constexpr double longest_wait = 60; // for what came late then
static constexpr double usb_quiet = 0.3;   // silence that is the same as then
static constexpr std::size_t most_differences = 100;
static constexpr int most_silent = 3;

using byte_list = std::vector<u8>;

// ---- The lines ----------------------------------------------------------------------------------

class replay_line
{
public:
	virtual ~replay_line() = default;
	virtual std::string open() = 0; // "", or why not
	virtual std::string send(const byte_list &bytes) = 0;
	// What answers an event of the transcript, until as much came as then or the time is over.
	virtual std::string receive(const crossing &then, double seconds, byte_list *now) = 0;
	// What came besides.
	virtual byte_list rest() { return {}; }
};

// MIDI or the bridge.
class stream_line : public replay_line
{
public:
	std::string open() override { return stream.open(); }
	std::string send(const byte_list &bytes) override { return stream.send(bytes); }
	std::string receive(const crossing &then, double seconds, byte_list *now) override
	{
		const std::size_t wanted = then.bytes.size();
		const double end = host.clock->counter() + seconds;
		std::string wrong = stream.take(&come);
		while (wrong.empty() && come.size() < wanted && host.clock->counter() < end &&
			!progress_stopped()) {
			pump_until(end);
			wrong = stream.take(&come);
		}
		const auto cut =
			come.begin() + static_cast<std::ptrdiff_t>(std::min(wanted, come.size()));
		now->assign(come.begin(), cut);
		come.erase(come.begin(), cut);
		return wrong;
	}
	byte_list rest() override
	{
		(void)stream.take(&come);
		return std::exchange(come, {});
	}

private:
	byte_stream stream;
	byte_list come;
};

class usb_line : public replay_line
{
public:
	usb_line(u16 v, u16 p) : vendor(v), product(p) {}
	~usb_line() override
	{
		if (handle >= 0)
			host.usb->close(handle);
	}
	std::string open() override
	{
		std::vector<usb_device> devices;
		host.usb->list(&devices);
		for (const usb_device &d : devices)
			if (d.vendor == vendor && d.product == product)
				return open_pipes(d);
		return format_text(tr("No USB device %04X:%04X is plugged in."), vendor, product);
	}
	std::string send(const byte_list &bytes) override
	{
		byte_list copy = bytes;
		return words_of(move(out, &copy, patience));
	}
	std::string receive(const crossing &then, double seconds, byte_list *now) override
	{
		const bool silent = then.failed == "timeout" && then.bytes.empty();
		now->assign(
			std::max<std::size_t>(then.asked ? then.asked : then.bytes.size(), 1), 0);
		const int result = move(out | 0x80, now, silent ? usb_quiet : seconds);
		return result == usb_timeout ? "" : words_of(result);
	}

private:
	std::string open_pipes(const usb_device &d)
	{
		int result = host.usb->open(d.path.c_str(), &handle);
		handle = result ? -1 : handle;
		for (const usb_interface &i : d.interfaces)
			for (const usb_pipe &p : i.pipes)
				if (!result && !out && p.type == 2 && !(p.id & 0x80)) {
					out = p.id;
					result = host.usb->claim(handle, i.number);
				}
		return words_of(!result && !out ? int{ usb_failed } : result);
	}
	// One transfer; what did not move is cut off.
	int move(u8 pipe, byte_list *bytes, double seconds)
	{
		int id = -1;
		std::size_t moved = 0;
		int result = host.usb->submit(handle, pipe, bytes->data(), bytes->size(),
			static_cast<int>(seconds * 1000), &id);
		bool cancelled = false;
		while (result == usb_ok &&
			(result = host.usb->finished(id, &moved)) == usb_pending) {
			if (progress_stopped() && !std::exchange(cancelled, true))
				host.usb->cancel(id);
			host.ui->pump(100);
			result = usb_ok;
		}
		bytes->resize(std::min(moved, bytes->size()));
		return result;
	}
	static std::string words_of(int result)
	{
		return result == usb_ok ? "" : host.usb->error_text(result);
	}
	const u16 vendor, product;
	u8 out = 0;
	int handle = -1;
};

// ---- Event by event -----------------------------------------------------------------------------

struct replay_run {
	replay_line *line;
	replay_report *report;
	double last = 0; // moment then of what happened before
	int silent = 0;  // answers that did not come, one after the other

	void differ(const crossing &then, const byte_list &is, const byte_list &now);
	std::string send(const crossing &c);
	std::string compare(crossing c);
	void more(const crossing &before);
};

static std::string byte_words(int byte)
{
	return byte < 0 ? tr("nothing") : format_text("%02X", static_cast<unsigned>(byte));
}

void replay_run::differ(const crossing &then, const byte_list &was, const byte_list &now)
{
	std::size_t at = 0;
	while (at < was.size() && at < now.size() && was[at] == now[at])
		at++;
	replay_difference d = { then.row, then.time, at, at < was.size() ? was[at] : -1,
		at < now.size() ? now[at] : -1, "" };
	d.words = format_text(
		tr("Line %d, after %.6f seconds: byte %zu of the answer was %s and is %s."), d.row,
		d.time, d.at, byte_words(d.then).c_str(), byte_words(d.now).c_str());
	if (report->differences.size() < most_differences)
		report->differences.push_back(d);
}

// Bytes that came behind an answer and did not then. What comes behind a message that had no
// answer says nothing: perhaps nobody listened then.
void replay_run::more(const crossing &before)
{
	if (const byte_list rest = line->rest(); !rest.empty() && !before.sent)
		differ(before, {}, rest);
}

std::string replay_run::send(const crossing &c)
{
	const double until = host.clock->counter() + std::clamp(c.time - last, 0.0, longest_pause);
	while (host.clock->counter() < until && !progress_stopped())
		pump_until(until);
	report->messages++;
	return line->send(c.bytes);
}

std::string replay_run::compare(crossing c)
{
	std::erase_if(c.bytes, [&](u8 b) { return c.line != wire_line::usb && b >= 0xF8; });
	byte_list now;
	const double seconds = patience + std::clamp(c.time - last, 0.0, longest_wait) +
			       static_cast<double>(c.bytes.size()) * byte_seconds;
	const std::string wrong = line->receive(c, seconds, &now);
	report->answers++;
	report->bytes += now.size();
	silent = now.empty() && !c.bytes.empty() ? silent + 1 : 0;
	if (now != c.bytes && wrong.empty() && !progress_stopped())
		differ(c, c.bytes, now);
	return wrong;
}

static outcome verdict(const replay_report &r, int silent)
{
	if (progress_stopped())
		return { ending::stopped, tr("Stopped.") };
	if (silent >= most_silent)
		return { ending::no_answer, tr("No answer came to what was sent."), "WARNING" };
	if (r.differences.empty())
		return { .words = format_text(
				 tr("%d messages were sent, and all %d answers are what "
				    "they were."),
				 r.messages, r.answers) };
	return { ending::refused,
		format_text(tr("%zu of %d answers are not what they were. %s"),
			r.differences.size(), r.answers, r.differences.front().words.c_str()),
		"WARNING" };
}

// Which line it is about. A program that starts looks for samplers on the USB, whatever it is used
// for then, so the sampler that was loaded last tells; without one, what was sent first.
static bool is_about_usb(const transcript &t, const crossing &first)
{
	bool usb = first.line == wire_line::usb;
	for (const crossing &c : t.crossings)
		if (c.note.starts_with("sampler: ") && c.note != "sampler: none")
			usb = c.note.find(", USB '") != c.note.npos;
	return usb;
}

// Which events that line carries.
static bool belongs(const crossing &c, bool usb)
{
	const bool here = c.line == wire_line::usb;
	const bool stream = c.line == wire_line::midi || c.line == wire_line::tcp;
	return c.note.empty() && (usb ? here : stream);
}

static outcome replay_on(replay_line *line, const transcript &t, bool usb, replay_report *report)
{
	std::string wrong = line->open();
	replay_run run = { .line = line, .report = report };
	const crossing *before = nullptr;
	int place = 0;
	for (const crossing &c : t.crossings) {
		set_progressbar(place++);
		if (!wrong.empty() || progress_stopped() || run.silent >= most_silent)
			break;
		if (!belongs(c, usb) || (c.sent && (c.bytes.empty() || !c.failed.empty())))
			continue;
		if (c.sent && before)
			run.more(*before);
		wrong = c.sent ? run.send(c) : report->messages ? run.compare(c) : "";
		run.last = c.time;
		before = &c;
	}
	if (wrong.empty() && before)
		run.more(*before);
	if (!wrong.empty())
		return { ending::no_answer, wrong, "FATAL" };
	return verdict(*report, run.silent);
}

outcome replay_transcript(const transcript &t, replay_report *report)
{
	*report = {};
	const auto first = std::ranges::find_if(
		t.crossings, [](const crossing &c) { return c.sent && !c.bytes.empty(); });
	if (first == t.crossings.end())
		return { ending::local_failed, tr("Nothing was sent in this transcript."),
			"FATAL" };
	const bool usb = is_about_usb(t, *first);
	unsigned vendor = 0, product = 0;
	for (const crossing &c : t.crossings)
		if (const std::size_t at = c.note.find("usb: opened ");
			at != c.note.npos && !product)
			std::sscanf(c.note.c_str() + at, "usb: opened %x:%x", &vendor, &product);
	std::unique_ptr<replay_line> line;
	if (usb)
		line = std::make_unique<usb_line>(
			static_cast<u16>(vendor), static_cast<u16>(product));
	else
		line = std::make_unique<stream_line>();
	show_progressbar(0, static_cast<int>(t.crossings.size()), tr("Replaying a transcript"));
	const double began = host.clock->counter();
	const outcome done = replay_on(line.get(), t, usb, report);
	report->seconds = host.clock->counter() - began;
	hide_progressbar(0);
	return done;
}

outcome replay_transcript_file(const std::string &path, replay_report *report)
{
	transcript t;
	*report = {};
	const std::string wrong = read_transcript_file(path, &t);
	return wrong.empty() ? replay_transcript(t, report)
			     : outcome{ ending::local_failed, wrong, "FATAL" };
}

} // namespace velmor
