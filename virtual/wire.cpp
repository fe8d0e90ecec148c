// wire.cpp - a MIDI cable pair between a host and one machine, with its faults
//
// The timeline runs its events under a lock of its own, and they take the lock of the
// wire. So nothing here calls the timeline, the machine or the listener while it
// holds that lock.

#include "virtual/wire.h"
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <deque>
#include <map>
#include <mutex>

namespace velmor
{

using machine::byte_view;
using machine::bytes;

static constexpr std::size_t longest_message = 4 << 20;
static constexpr std::size_t loop_piece = 16; // bytes that come back together

// Bytes that follow one another without a gap.
struct run {
	double begins; // moment at which its first byte begins to arrive
	double byte_time;
	bytes content;

	double ends() const { return begins + byte_time * static_cast<double>(content.size()); }
	std::size_t over_by(double now) const
	{
		if (now >= ends() || byte_time <= 0)
			return now >= begins ? content.size() : 0;
		// The half nanosecond takes what rounding took from the end of a byte.
		const double whole = std::floor((now - begins + 0.5e-9) / byte_time);
		return whole <= 0 ? 0 : std::min(content.size(), static_cast<std::size_t>(whole));
	}
};

struct midi_wire::line : std::enable_shared_from_this<midi_wire::line> {
	line(timeline &t, midi_machine m, wire_settings s)
		: time(t), machine(std::move(m)), settings(s)
	{
	}

	timeline &time;
	const midi_machine machine;
	mutable std::mutex lock;
	// All below is under the lock.
	wire_settings settings;
	std::function<void()> changed;
	bool pulled = false;
	int lost = 0;

	struct pending_fault {
		wire_fault fault;
		int seen; // messages since it was set
	};
	std::vector<pending_fault> faults;
	interface_faults interface;
	unsigned long passed = 0; // bytes through the interface

	std::deque<run> outgoing;
	bytes message;       // what the machine has of the message under way
	double out_free = 0; // moment at which the last byte sent will have left
	double in_free = 0;
	std::deque<run> incoming;
	std::uint64_t first = 0; // place in the stream of incoming.front()'s first byte
	std::map<int, std::uint64_t> readers; // place of the next byte each will take
	int next_reader = 1;

	void notify();
	void send(byte_view sent);
	bytes through_interface(byte_view sent, double now);
	void loop_back(byte_view came);
	void left(double now);
	void reached(const bytes &whole);
	void reached_in_part(std::size_t at, const bytes &fresh);
	void speak_spoiled(const wire_fault &fault, bytes answer);
	void speak(bytes said, double late, bool pull, bool gap);
	void pull();
	const wire_fault *fault_now(wire_fault *found);
	std::uint64_t arrived(double now) const;
	void forget_taken(double now);
	void schedule(double when, void (line::*what)(double));
};

void midi_wire::line::schedule(double when, void (line::*what)(double))
{
	time.at(when, [weak = weak_from_this(), what, when] {
		if (auto self = weak.lock())
			((*self).*what)(when);
	});
}

void midi_wire::line::notify()
{
	std::function<void()> call;
	{
		std::lock_guard held(lock);
		call = changed;
	}
	if (call)
		call();
}

void midi_wire::line::pull()
{
	const double now = time.now();
	{
		std::lock_guard held(lock);
		pulled = true;
		outgoing.clear();
		for (run &r : incoming)
			r.content.resize(r.over_by(now));
	}
	notify();
}

// ---- Towards the machine -----------------------------------------------------------

// What the interface makes of a run. Under the lock.
bytes midi_wire::line::through_interface(byte_view sent, double now)
{
	const interface_faults &f = interface;
	if (f.room && settings.byte_time > 0) {
		const double waits = std::max(out_free - now, 0.0) / settings.byte_time;
		const auto held = static_cast<std::size_t>(std::ceil(waits - 1e-6));
		sent = sent.first(std::min(sent.size(), f.room - std::min(f.room, held)));
	}
	bytes out;
	const auto due = [this](unsigned every) { return every && passed % every == 0; };
	for (const std::uint8_t b : sent) {
		passed++;
		if (due(f.lose_every))
			continue;
		out.push_back(due(f.turn_every) ? static_cast<std::uint8_t>(b ^ 0x10) : b);
		if (due(f.double_every))
			out.push_back(b);
	}
	return out;
}

// One event for each end of an exclusive message in the run, so that the machine hears
// it when it is complete, and one for the end of the run.
void midi_wire::line::send(byte_view run)
{
	const double now = time.now();
	std::vector<double> moments;
	{
		std::lock_guard held(lock);
		if (pulled || run.empty())
			return;
		const bytes sent = through_interface(run, now);
		std::size_t from = 0;
		for (std::size_t i = 0; i < sent.size(); i++) {
			const bool piece = machine.loop && i + 1 - from == loop_piece;
			if (sent[i] != 0xF7 && i + 1 < sent.size() && !piece)
				continue;
			const byte_view part = byte_view(sent).subspan(from, i + 1 - from);
			outgoing.push_back({ .begins = std::max(now, out_free),
				.byte_time = settings.byte_time,
				.content = bytes(part.begin(), part.end()) });
			out_free = outgoing.back().ends();
			moments.push_back(out_free);
			from = i + 1;
		}
	}
	for (const double moment : moments)
		schedule(moment, &line::left);
}

// The first run has left. A real-time byte may stand inside a message; any other status
// byte ends it. A run holds one F7 at most, its last byte.
void midi_wire::line::left(double)
{
	bytes whole, fresh, played;
	std::size_t at;
	bool broken_off = false;
	{
		std::unique_lock held(lock);
		if (pulled || outgoing.empty())
			return;
		const bytes came = std::move(outgoing.front().content);
		outgoing.pop_front();
		if (machine.loop) {
			held.unlock();
			return loop_back(came);
		}
		at = message.size();
		for (const std::uint8_t b : came) {
			if (b >= 0xF8) {
				played.push_back(b);
				continue;
			}
			if (b & 0x80 && b != 0xF7) {
				broken_off |= !message.empty();
				message.clear();
				at = 0;
			}
			if (b == 0xF0 || (!message.empty() && message.size() < longest_message))
				message.push_back(b);
			else if (message.empty() && b != 0xF7)
				played.push_back(b);
			if (b == 0xF7) {
				if (!message.empty() && message.back() == 0xF7)
					whole = std::move(message);
				message.clear();
			}
		}
		if (at < message.size())
			fresh.assign(
				message.begin() + static_cast<std::ptrdiff_t>(at), message.end());
	}
	if (!played.empty() && machine.played)
		machine.played(played);
	if (broken_off && machine.part)
		machine.part(0, {});
	if (!whole.empty())
		reached(whole);
	if (!fresh.empty() && machine.part)
		reached_in_part(at, fresh);
	notify();
}

void midi_wire::line::loop_back(byte_view came)
{
	interface_faults f;
	{
		std::lock_guard held(lock);
		f = interface;
	}
	if (!f.dead)
		speak(machine.loop(came), f.late, false, false);
	notify();
}

// ---- The machine and its faults ----------------------------------------------------

const wire_fault *midi_wire::line::fault_now(wire_fault *found)
{
	std::lock_guard held(lock);
	bool any = false;
	for (pending_fault &p : faults) {
		p.seen++;
		const bool due = p.fault.from_then_on ? p.seen >= p.fault.exchange
						      : p.seen == p.fault.exchange;
		if (due && !any) {
			*found = p.fault;
			any = true;
		}
	}
	return any ? found : nullptr;
}

// What a fault makes of an answer; the rest of them concerns its time.
static bytes spoiled(wire_fault_kind kind, bytes answer)
{
	switch (kind) {
	case wire_fault_kind::truncated:
	case wire_fault_kind::unplugged:
		answer.resize(answer.size() / 2);
		break;
	case wire_fault_kind::garbled:
		for (std::size_t i = 3; i < answer.size(); i++)
			if (answer[i] != 0xF7)
				answer[i] ^= 0x2A;
		break;
	case wire_fault_kind::wrong_function:
		if (answer.size() > 3)
			answer[3] = 0x3F;
		break;
	case wire_fault_kind::stray_bytes:
		answer.insert(answer.begin(), { 0x12, 0x34 });
		break;
	case wire_fault_kind::active_sensing:
		answer.insert(answer.begin(), 0xFE);
		break;
	case wire_fault_kind::overrun:
		answer.erase(answer.begin() + static_cast<std::ptrdiff_t>(answer.size() / 3),
			answer.begin() + static_cast<std::ptrdiff_t>(answer.size() * 2 / 3));
		break;
	default:
		break;
	}
	return answer;
}

void midi_wire::line::reached(const bytes &whole)
{
	wire_fault found = {};
	const wire_fault *fault = fault_now(&found);
	if (!fault) {
		speak(machine.answer(whole), 0, false, false);
		return;
	}
	if (fault->kind == wire_fault_kind::silent)
		return;
	if (fault->kind == wire_fault_kind::refused) {
		speak(machine.refuse(whole), 0, false, false);
		return;
	}
	if (fault->kind == wire_fault_kind::wait_first)
		speak(machine.wait(whole), 0, false, false);
	speak_spoiled(*fault, machine.answer(whole));
}

void midi_wire::line::reached_in_part(std::size_t at, const bytes &fresh)
{
	wire_fault found = {};
	const wire_fault *fault = fault_now(&found);
	if (fault && (fault->kind == wire_fault_kind::silent ||
			     fault->kind == wire_fault_kind::refused)) {
		std::lock_guard held(lock);
		message.resize(at);
		return;
	}
	bytes answer = machine.part(at, fresh);
	if (fault)
		speak_spoiled(*fault, std::move(answer));
	else
		speak(std::move(answer), 0, false, false);
}

void midi_wire::line::speak_spoiled(const wire_fault &fault, bytes answer)
{
	if (answer.empty())
		return;
	const wire_fault_kind kind = fault.kind;
	const bool late = kind == wire_fault_kind::slow || kind == wire_fault_kind::wait_first;
	speak(spoiled(kind, std::move(answer)), late ? fault.seconds : 0,
		kind == wire_fault_kind::unplugged, kind == wire_fault_kind::overrun);
}

// ---- From the machine --------------------------------------------------------------

void midi_wire::line::speak(bytes said, double late, bool pull_then, bool gap)
{
	if (said.empty() && !pull_then)
		return;
	const double now = time.now();
	double end;
	{
		std::lock_guard held(lock);
		if (pulled)
			return;
		const double begins = std::max(now + settings.latency + late, in_free);
		incoming.push_back({ .begins = begins,
			.byte_time = settings.byte_time,
			.content = std::move(said) });
		end = in_free = incoming.back().ends();
	}
	time.at(end, [weak = weak_from_this(), pull_then, gap] {
		auto self = weak.lock();
		if (!self)
			return;
		if (gap) {
			std::lock_guard held(self->lock);
			self->lost++;
		}
		if (pull_then)
			self->pull();
		else
			self->notify();
	});
}

// Bytes that have arrived since the beginning.
std::uint64_t midi_wire::line::arrived(double now) const
{
	std::uint64_t place = first;
	for (const run &r : incoming) {
		const std::size_t over = r.over_by(now);
		place += over;
		if (over < r.content.size())
			break;
	}
	return place;
}

void midi_wire::line::forget_taken(double now)
{
	std::uint64_t needed = arrived(now);
	for (const auto &[reader, place] : readers)
		needed = std::min(needed, place);
	while (!incoming.empty() && first + incoming.front().content.size() <= needed) {
		first += incoming.front().content.size();
		incoming.pop_front();
	}
}

// ---- What a host calls -------------------------------------------------------------

midi_wire::midi_wire(timeline &time, midi_machine machine, wire_settings settings)
	: state(std::make_shared<line>(time, std::move(machine), settings))
{
}

void midi_wire::set_settings(wire_settings settings)
{
	std::lock_guard held(state->lock);
	state->settings = settings;
}

void midi_wire::set_fault(wire_fault fault)
{
	std::lock_guard held(state->lock);
	state->faults.push_back({ .fault = fault, .seen = 0 });
}

void midi_wire::clear_faults()
{
	std::lock_guard held(state->lock);
	state->faults.clear();
}

void midi_wire::set_interface(interface_faults faults)
{
	std::lock_guard held(state->lock);
	state->interface = faults;
}

void midi_wire::send(byte_view sent)
{
	state->send(sent);
}

void midi_wire::play(bytes run)
{
	state->speak(std::move(run), 0, false, false);
}

std::size_t midi_wire::leaving() const
{
	const double now = state->time.now();
	std::lock_guard held(state->lock);
	std::size_t count = 0;
	for (const run &r : state->outgoing)
		count += state->interface.room ? 0 : r.content.size() - r.over_by(now);
	return count;
}

int midi_wire::attach()
{
	const double now = state->time.now();
	std::lock_guard held(state->lock);
	const std::uint64_t place = state->arrived(now);
	state->forget_taken(now);
	state->readers[state->next_reader] = place;
	return state->next_reader++;
}

void midi_wire::detach(int reader)
{
	const double now = state->time.now();
	std::lock_guard held(state->lock);
	state->readers.erase(reader);
	state->forget_taken(now);
}

std::size_t midi_wire::take(int reader, std::uint8_t *out, std::size_t room)
{
	const double now = state->time.now();
	std::lock_guard held(state->lock);
	const auto found = state->readers.find(reader);
	if (found == state->readers.end())
		return 0;
	std::size_t count = 0;
	std::uint64_t place = state->first;
	for (const run &r : state->incoming) {
		const std::size_t over = r.over_by(now);
		const std::uint64_t behind = found->second - place;
		if (behind < over) {
			const std::size_t from = static_cast<std::size_t>(behind);
			const std::size_t moved = std::min(over - from, room - count);
			std::memcpy(out + count, r.content.data() + from, moved);
			count += moved;
			found->second += moved;
		}
		if (over < r.content.size() || count == room)
			break;
		place += r.content.size();
	}
	state->forget_taken(now);
	return count;
}

int midi_wire::overruns() const
{
	std::lock_guard held(state->lock);
	return state->lost;
}

void midi_wire::unplug()
{
	state->pull();
}

bool midi_wire::unplugged() const
{
	std::lock_guard held(state->lock);
	return state->pulled;
}

void midi_wire::on_change(std::function<void()> what)
{
	std::lock_guard held(state->lock);
	state->changed = std::move(what);
}

midi_machine loop_cable()
{
	const auto silent = [](byte_view) { return bytes(); };
	return { .answer = silent, .refuse = silent, .wait = silent, .loop = [](byte_view came) {
			return bytes(came.begin(), came.end());
		} };
}

// ---- Machines on one cable ---------------------------------------------------------

midi_machine on_one_cable(std::vector<midi_machine> machines)
{
	using hear = std::function<bytes(byte_view)>;
	const auto all = std::make_shared<const std::vector<midi_machine>>(std::move(machines));
	const auto in_turn = [all](hear midi_machine::*how) -> hear {
		return [all, how](byte_view message) {
			for (const midi_machine &m : *all)
				if (bytes said = (m.*how)(message); !said.empty())
					return said;
			return bytes();
		};
	};
	return { .answer = in_turn(&midi_machine::answer),
		.refuse = in_turn(&midi_machine::refuse),
		.wait = in_turn(&midi_machine::wait),
		.part =
			[all](std::size_t at, byte_view fresh) {
				bytes said;
				for (const midi_machine &m : *all)
					if (m.part)
						for (const std::uint8_t b : m.part(at, fresh))
							said.push_back(b);
				return said;
			},
		.played =
			[all](byte_view notes) {
				for (const midi_machine &m : *all)
					if (m.played)
						m.played(notes);
			} };
}

// ---- Faults by name ----------------------------------------------------------------

// clang-format off
static constexpr struct { const char *name; wire_fault_kind kind; } fault_rows[] = {
	{ "silent",         wire_fault_kind::silent },
	{ "slow",           wire_fault_kind::slow },
	{ "truncated",      wire_fault_kind::truncated },
	{ "garbled",        wire_fault_kind::garbled },
	{ "wrong-function", wire_fault_kind::wrong_function },
	{ "wait-first",     wire_fault_kind::wait_first },
	{ "refused",        wire_fault_kind::refused },
	{ "stray-bytes",    wire_fault_kind::stray_bytes },
	{ "active-sensing", wire_fault_kind::active_sensing },
	{ "overrun",        wire_fault_kind::overrun },
	{ "unplugged",      wire_fault_kind::unplugged },
};
// clang-format on

std::string wire_fault_names()
{
	std::string names;
	for (const auto &row : fault_rows)
		names += std::string(names.empty() ? "" : " ") + row.name;
	return names;
}

// The text up to the next colon, taken off the front.
static std::string_view next_word(std::string_view *text)
{
	const std::size_t colon = text->find(':');
	const std::string_view word = text->substr(0, colon);
	text->remove_prefix(colon == text->npos ? text->size() : colon + 1);
	return word;
}

template <typename number> static bool whole_number(std::string_view word, number *value)
{
	const auto [end, code] = std::from_chars(word.data(), word.data() + word.size(), *value);
	return code == std::errc() && end == word.data() + word.size();
}

bool read_wire_fault(std::string_view text, wire_fault *fault)
{
	if (text.ends_with(':'))
		return false;
	const std::string_view kind = next_word(&text);
	const auto row = std::find_if(std::begin(fault_rows), std::end(fault_rows),
		[&](const auto &r) { return r.name == kind; });
	if (row == std::end(fault_rows))
		return false;
	*fault = { .kind = row->kind };
	if (text.empty())
		return true;
	std::string_view exchange = next_word(&text);
	if (exchange.ends_with('+')) {
		fault->from_then_on = true;
		exchange.remove_suffix(1);
	}
	if (!whole_number(exchange, &fault->exchange) || fault->exchange < 1)
		return false;
	return text.empty() || (whole_number(text, &fault->seconds) && fault->seconds >= 0);
}

} // namespace velmor
