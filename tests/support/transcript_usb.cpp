// transcript_usb.cpp - a USB service that plays the device's side of a written transcript

#include "tests/support/transcript_usb.h"
#include "src/usbqx.h"
#include <algorithm>
#include <sstream>

namespace velmor
{

static transcript_usb *plugged = nullptr;
int transcript_usb::next_id = 1;

static constexpr double seconds_per_byte = 8 / 12e6;
static constexpr double transfer_overhead = 50e-6;

struct transcript_calls {
	static bool list(std::vector<usb_device> *devices)
	{
		*devices = plugged->devices;
		return plugged->can_list;
	}
	static int open(const char *path, int *handle)
	{
		if (plugged->unplugged || std::string(path) != plugged->devices[0].path)
			return usb_no_device;
		if (plugged->open_result == usb_ok)
			plugged->opened++;
		*handle = 7;
		return plugged->open_result;
	}
	static int claim(int, std::uint8_t number)
	{
		plugged->claimed.push_back(number);
		return plugged->unplugged ? static_cast<int>(usb_no_device) : plugged->claim_result;
	}
	static void close(int) { plugged->closed++; }
	static int submit(int handle, std::uint8_t pipe, unsigned char *buffer, std::size_t count,
		int deadline_ms, int *transfer)
	{
		EXPECT_EQ(handle, 7);
		return plugged->submit(pipe, buffer, count, deadline_ms, transfer);
	}
	static int finished(int id, std::size_t *moved) { return plugged->finished(id, moved); }
	static void cancel(int id) { plugged->cancel(id); }
	static int reset_pipe(int, std::uint8_t pipe)
	{
		plugged->reset.push_back(pipe);
		return usb_ok;
	}
	static void on_arrival(void (*wake)()) { plugged->wake = wake; }
	static const char *error_text(int code)
	{
		static constexpr const char *texts[] = { "Success", "Pending", "Timed out",
			"Access denied: install the udev rule 60-velmor.rules", "No such device",
			"Busy", "Stalled", "Cancelled", "Failed" };
		return texts[code];
	}
};

static const usb_service transcript_service = {
	.list = transcript_calls::list,
	.open = transcript_calls::open,
	.claim = transcript_calls::claim,
	.close = transcript_calls::close,
	.submit = transcript_calls::submit,
	.finished = transcript_calls::finished,
	.cancel = transcript_calls::cancel,
	.reset_pipe = transcript_calls::reset_pipe,
	.on_arrival = transcript_calls::on_arrival,
	.error_text = transcript_calls::error_text,
};

transcript_usb::transcript_usb(test_host &test, u16 product) : host_of_test(test)
{
	plugged = this;
	forget_unread_usb();
	devices.push_back({ .vendor = 0x09E8,
		.product = product,
		.path = "usb:1",
		.address = "001/002",
		.interfaces = { { .number = 0,
			.interface_class = 0xFF,
			.pipes = { { 0x82, 2, 64 }, { 0x02, 2, 64 } } } } });
	host.usb = &transcript_service;
}

transcript_usb::~transcript_usb()
{
	EXPECT_EQ(opened, closed) << "a device stayed open";
	EXPECT_TRUE(transfers.empty()) << "a transfer was never asked for";
	plugged = nullptr;
}

static std::vector<u8> bytes_of(std::istringstream &line)
{
	std::vector<u8> bytes;
	for (std::string word; line >> word;) {
		if (word.front() == '\'') {
			// Letters up to the closing quote, blanks included.
			std::string text = word.substr(1), more;
			while (!text.ends_with('\'') && std::getline(line, more, '\''))
				text += more + "'";
			bytes.insert(bytes.end(), text.begin(), text.end() - 1);
		} else {
			const std::vector<u8> some = hex(word);
			bytes.insert(bytes.end(), some.begin(), some.end());
		}
	}
	return bytes;
}

void transcript_usb::play(const char *text)
{
	std::istringstream lines(text);
	std::string comment;
	for (std::string line; std::getline(lines, line);) {
		std::istringstream rest(line);
		char kind = 0;
		if (!(rest >> kind))
			continue;
		if (kind == '#') {
			std::getline(rest, comment);
		} else if (kind == '!') {
			std::string fault;
			int number = 0;
			rest >> fault >> number;
			steps.push_back({ fault[1], comment, {}, number });
		} else {
			steps.push_back({ kind, comment, bytes_of(rest), 0 });
		}
	}
}

transcript_usb::transfer *transcript_usb::find(int id)
{
	for (transfer &t : transfers)
		if (t.id == id)
			return &t;
	return nullptr;
}

// Ends a while later. What happened to it before then stays, a deadline or a cancel.
void transcript_usb::end(transfer &t, int result, std::size_t moved, double after)
{
	t.matched = true;
	const double when = std::min(host_of_test.time.now() + after, t.deadline);
	host_of_test.time.at(when, [this, id = t.id, result, moved] {
		transfer *ended = plugged == this ? find(id) : nullptr;
		if (!ended || ended->result != usb_pending)
			return;
		ended->result = result;
		ended->moved = moved;
		longest_transfer =
			std::max(longest_transfer, host_of_test.time.now() - ended->submitted);
		go_on();
	});
}

void transcript_usb::match_write(transfer &t)
{
	const step s = steps.front();
	steps.pop_front();
	const std::vector<u8> sent(t.buffer, t.buffer + t.count);
	EXPECT_EQ(hex_text(sent), hex_text(s.bytes)) << "at:" << s.words;
	const std::size_t moved = cut_next ? std::min(cut, t.count) : t.count;
	cut_next = false;
	end(t, usb_ok, moved, transfer_overhead + static_cast<double>(moved) * seconds_per_byte);
}

// As much of an answer as there is room for. A full packet does not end a read that has room
// for more.
void transcript_usb::hand_out(transfer &t)
{
	step &s = steps.front();
	const std::size_t size = std::min(s.bytes.size() - s.taken, t.count - t.moved);
	std::copy_n(
		s.bytes.begin() + static_cast<std::ptrdiff_t>(s.taken), size, t.buffer + t.moved);
	s.taken += size;
	t.moved += size;
	const bool whole = s.taken == s.bytes.size();
	const bool short_packet = s.bytes.empty() || s.bytes.size() % 64 != 0;
	if (whole)
		steps.pop_front();
	if (t.moved == t.count || (whole && short_packet))
		end(t, usb_ok, t.moved,
			transfer_overhead + static_cast<double>(t.moved) * seconds_per_byte);
}

// One step, if it is this transfer's turn.
bool transcript_usb::take_step(transfer &t)
{
	const step s = steps.front();
	words = s.words;
	if (s.kind == '>' && !t.in) {
		match_write(t);
		return true;
	}
	if (s.kind == '<' && t.in) {
		hand_out(t);
		return true;
	}
	if (s.kind == 'i' && t.in) { // silence
		steps.pop_front();
		t.matched = true;
		return true;
	}
	if (s.kind == 't') { // stall
		steps.pop_front();
		end(t, usb_stalled, 0, transfer_overhead);
		return true;
	}
	return false;
}

void transcript_usb::go_on()
{
	for (bool again = true; again && !steps.empty() && !waiting;) {
		again = false;
		const step s = steps.front();
		if (s.kind == 'u') { // cut
			cut = static_cast<std::size_t>(s.number);
			cut_next = true;
			steps.pop_front();
			again = true;
			continue;
		}
		if (s.kind == 'n') { // unplug
			unplugged = true;
			steps.clear();
			for (transfer &t : transfers)
				if (t.result == usb_pending && !t.matched)
					end(t, usb_no_device, 0, transfer_overhead);
			return;
		}
		if (s.kind == 'a') { // wait
			steps.pop_front();
			waiting = true;
			host_of_test.time.after(s.number / 1000.0, [this] {
				waiting = false;
				go_on();
			});
			return;
		}
		for (transfer &t : transfers) {
			if (t.result != usb_pending || t.matched)
				continue;
			again = take_step(t);
			if (again)
				break;
		}
	}
}

int transcript_usb::submit(u8 pipe, u8 *buffer, std::size_t count, int deadline_ms, int *id)
{
	if (unplugged)
		return usb_no_device;
	if (++submits > 20000) { // a driver that never ends
		ADD_FAILURE() << "no end, at:" << words;
		throw process_ended{ 1 };
	}
	EXPECT_EQ(pipe & 0x7F, 2);
	const bool in = pipe & 0x80;
	EXPECT_TRUE(!in || count % 64 == 0) << "a packet would not fit";
	const double now = host_of_test.time.now();
	transfers.push_back({ next_id, in, buffer, count, now, now + deadline_ms / 1000.0 });
	*id = next_id++;
	host_of_test.time.at(now + deadline_ms / 1000.0, [this, id = *id] {
		transfer *late = plugged == this ? find(id) : nullptr;
		if (late && late->result == usb_pending)
			late->result = usb_timeout;
	});
	const int flying = static_cast<int>(std::count_if(transfers.begin(), transfers.end(),
		[](const transfer &t) { return t.result == usb_pending; }));
	most_in_flight = std::max(most_in_flight, flying);
	const std::string before = steps.empty() ? words : steps.front().words;
	go_on();
	if (!in) {
		transfer *t = find(*id);
		EXPECT_TRUE(t->matched || unplugged || waiting)
			<< "nothing was to be sent here, at:" << before << " ["
			<< hex_text({ buffer, count }) << "]";
		if (!t->matched && !waiting)
			end(*t, usb_failed, 0, transfer_overhead);
	}
	return usb_ok;
}

int transcript_usb::finished(int id, std::size_t *moved)
{
	transfer *t = find(id);
	if (!t)
		return usb_failed;
	const int result = t->result;
	if (result == usb_pending)
		return result;
	*moved = t->moved;
	transfers.remove_if([id](const transfer &other) { return other.id == id; });
	return result;
}

void transcript_usb::cancel(int id)
{
	if (transfer *t = find(id); t && t->result == usb_pending)
		t->result = usb_cancelled;
}

} // namespace velmor
