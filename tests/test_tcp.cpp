// test_tcp.cpp - the TCP bridge, against far ends that behave and that do not

#include "src/controls.h"
#include "src/velmor_outcome.h"
#include "tests/support/transcript_midi.h"
#include <algorithm>
#include <cmath>
#include <utility>

namespace velmor
{

// A far end. Bytes come in portions, each at its time after the last byte was taken.
struct far_end {
	int connect_code = 0;
	double connect_seconds = 0.02; // negative: never
	bool refuses = false;
	long takes = 1 << 20; // bytes of one send; 0 takes nothing
	long takes_in_all = 1 << 20;
	bool flood = false;  // 0x7F without end
	bool breaks = false; // closes after the portions
	struct portion {
		double seconds;
		std::string bytes; // hexadecimal
	};
	std::vector<portion> answer = {};

	std::vector<u8> taken = {}, waiting = {};
	double connected_at = 0;
	bool open = false;
	int pending = 0;

	void say(const std::string &text)
	{
		const std::vector<u8> b = hex(text);
		waiting.insert(waiting.end(), b.begin(), b.end());
	}
	long take(const u8 *bytes, long count)
	{
		const long room = takes_in_all - static_cast<long>(taken.size());
		const long n = std::min({ count, takes, room });
		taken.insert(taken.end(), bytes, bytes + n);
		double when = the_test_host->time.now();
		for (std::size_t i = 0; n == count && i < answer.size(); i++, pending++)
			the_test_host->time.at(when += answer[i].seconds, [this, p = answer[i]] {
				say(p.bytes);
				pending--;
			});
		return n;
	}
	long give(u8 *bytes, std::size_t capacity)
	{
		if (flood)
			waiting.assign(capacity, 0x7F);
		const std::size_t n = std::min(capacity, waiting.size());
		if (n == 0)
			return breaks && !pending ? -104 : 0;
		std::copy_n(waiting.begin(), n, bytes);
		waiting.erase(waiting.begin(), waiting.begin() + static_cast<long>(n));
		return static_cast<long>(n);
	}
};
static far_end *far;

static const net_service far_net = {
	.connect =
		[](const char *, unsigned short, int *handle) {
			*handle = 7;
			far->open = far->connect_code == 0;
			far->connected_at = host.clock->counter() + far->connect_seconds;
			return far->connect_code;
		},
	.connected =
		[](int) {
			const bool there = far->connect_seconds >= 0 &&
					   host.clock->counter() >= far->connected_at;
			return far->refuses ? -111 : there ? 1 : 0;
		},
	.send = [](int, const u8 *bytes, std::size_t count) -> long {
		return far->take(bytes, static_cast<long>(count));
	},
	.receive = [](int, u8 *bytes, std::size_t count) { return far->give(bytes, count); },
	.close = [](int) { far->open = false; },
	.on_arrival = [](void (*)()) {},
	.error_text =
		[](int code) {
			static std::string words;
			words = "words of " + std::to_string(code);
			return words.c_str();
		},
};

class bridge : public host_test
{
protected:
	bridge()
	{
		far = &end;
		host.net = &far_net;
	}
	// Answer to a question, with the seconds that it took.
	std::vector<u8> ask(int capacity = 1000, int msg_count = 1)
	{
		static constexpr u8 question[] = { 0xF0, 0x47, 0x00, 0xF7 };
		std::vector<u8> buffer(static_cast<std::size_t>(capacity), 0xEE);
		length = capacity;
		const double began = h.time.now();
		send_midi_string_ex(question, sizeof question, buffer.data(), &length, msg_count);
		seconds = h.time.now() - began;
		buffer.resize(static_cast<std::size_t>(length));
		return buffer;
	}
	std::string status() { return h.texts[{ window_sampler, sampler_tcp_status }]; }

	far_end end;
	int length = 0;
	double seconds = 0;
};

// ---- On and off -------------------------------------------------------------------------------

TEST_F(bridge, is_turned_on_once_and_off)
{
	switch_on_tcp();
	EXPECT_EQ(use_tcp, 1);
	EXPECT_EQ(tcp_socket, 7);
	EXPECT_EQ(status(), "USING TCP");
	EXPECT_EQ(h.log(), (std::vector<std::string>{ "[D] Starting TCP (192.168.0.10:9999)\r\n",
				   "[D] Starting TCP (192.168.0.10:9999) WSASTARTUP DONE...\r\n",
				   "[D] Starting TCP (192.168.0.10:9999) SOCKET DONE...\r\n",
				   "[D] TCP-Socket connected!\r\n" }));
	h.forget_log();
	switch_on_tcp();
	EXPECT_EQ(h.log(), std::vector<std::string>{ "TCP already turned on\r\n" });
	switch_off_tcp();
	EXPECT_EQ(use_tcp, 0);
	EXPECT_EQ(status(), "USING MIDI");
	EXPECT_FALSE(end.open);
}

TEST_F(bridge, a_far_end_that_is_not_there_leaves_midi_in_force_and_says_why)
{
	struct {
		far_end how;
		double seconds;
		const char *why;
	} absences[] = {
		{ { .connect_code = 22 }, 0, "words of 22" },
		{ { .refuses = true }, 0, "words of 111" },
		{ { .connect_seconds = -1 }, 5,
			"There was no answer within 5 seconds. Is the far end switched on, and on "
			"this network?" },
	};
	for (const auto &a : absences) {
		SCOPED_TRACE(a.why);
		end = a.how;
		h.boxes.clear();
		const double began = h.time.now();
		switch_on_tcp();
		EXPECT_NEAR(h.time.now() - began, a.seconds, 0.1);
		EXPECT_EQ(use_tcp, 0);
		EXPECT_EQ(h.boxes,
			(std::vector<shown_box>{ { "Failed to connect IP (SOCKET)", "WARNING" } }));
		EXPECT_TRUE(h.logged("[W] TCP (192.168.0.10:9999): " + std::string(a.why)));
		EXPECT_EQ(status(), "");
		EXPECT_FALSE(end.open);
	}
}

// ---- Traffic ------------------------------------------------------------------------------------

// What an exchange asks, what comes and when, what it gets, and what the line is told.
TEST_F(bridge, an_answer_ends_at_its_first_end_byte_or_its_deadline)
{
	struct {
		far_end how;
		int capacity;
		const char *got;
		double least, most; // seconds
		const char *why;    // "": answered
	} rows[] = {
		{ { .answer = { { 0.01, "F0 47 01" }, { 1.5, "02 F7 F0 99 F7" } } }, 100,
			"F0 47 01 02 F7", 1.5, 1.6, "" },
		{ { .takes = 1, .answer = { { 0.01, "F0 01 F7" } } }, 100, "F0 01 F7", 0, 0.5, "" },
		// Each byte gives two to three seconds more, and all of them have an end.
		{ { .answer = { { 1.5, "F0" }, { 2, "01" }, { 1.4, "F7" } } }, 1000, "F0 01 F7",
			4.9, 5, "" },
		{ { .answer = { { 1.9, "55" }, { 1.9, "55" }, { 1.9, "55" }, { 1.9, "55" } } }, 100,
			"55 55", 4.9, 5, "The answer broke off." },
		{ {}, 100, "", 2, 3.1, "No answer came." },
		{ { .answer = { { 0.5, "F0 01" } } }, 100, "F0 01", 2.5, 3.6,
			"The answer broke off." },
		{ { .breaks = true }, 100, "", 0, 0.1, "words of 104" },
		{ { .breaks = true, .answer = { { 0.1, "F0 01 02" } } }, 100, "F0 01 02", 0.1, 0.3,
			"words of 104" },
		{ { .flood = true }, 1000, "7F*1000", 0, 0.1, "The answer broke off." },
		{ { .answer = { { 0.1, "7F*500" } } }, 100, "7F*100", 0.1, 0.3,
			"The answer broke off." },
	};
	for (const auto &row : rows) {
		SCOPED_TRACE(&row - rows);
		h.time.run_until(std::ceil(h.time.now()) + 10);
		end = row.how;
		switch_on_tcp();
		EXPECT_EQ(ask(row.capacity, 2), hex(row.got)) << "one message, whatever is asked";
		EXPECT_GE(seconds, row.least - 1e-6);
		EXPECT_LE(seconds, row.most);
		EXPECT_EQ(end.taken, hex("F0 47 00 F7"));
		EXPECT_EQ(the_line.failing, *row.why != 0);
		EXPECT_EQ(the_line.why, row.why);
		EXPECT_EQ(use_tcp, 1) << "until the user turns it off";
		switch_off_tcp();
	}
	EXPECT_TRUE(h.boxes.empty());
}

// One stray message, the rest of an answer, an answer after its deadline: nothing of it is taken
// for the answer to a later message.
TEST_F(bridge, what_came_since_the_last_exchange_is_thrown_away)
{
	end.answer = { { 0.01, "F0 01 F7 F0 02 F7" } };
	switch_on_tcp();
	EXPECT_EQ(ask(), hex("F0 01 F7"));
	end.say("F0*3000 F7");
	end.answer = { { 5, "F0 03 F7" } };
	EXPECT_EQ(ask(), hex(""));
	EXPECT_TRUE(h.logged("[D] TCP: 3004 bytes that belong to no exchange were discarded"));
	h.time.run_until(h.time.now() + 10);
	end.answer = { { 0.01, "F0 04 F7" } };
	EXPECT_EQ(ask(), hex("F0 04 F7"));
	// A note that is played while an answer arrives throws nothing of it away.
	end.answer.clear();
	h.on_pump = [&, done = false]() mutable {
		if (std::exchange(done, true))
			return;
		end.say("F0 05 F7");
		const u8 note[] = { 0x90, 0x3C, 0x40 };
		send_midi_string(note, sizeof note);
	};
	EXPECT_EQ(ask(), hex("F0 05 F7"));
}

TEST_F(bridge, a_message_that_is_not_taken_leaves_the_length)
{
	end.takes_in_all = 2;
	switch_on_tcp();
	EXPECT_EQ(ask(100).size(), 100u);
	EXPECT_NEAR(seconds, 2, 0.11);
	EXPECT_TRUE(h.logged("[W] TCP: message not taken by 192.168.0.10:9999"));
	EXPECT_EQ(the_line.why, "The far end of the TCP bridge does not take the message.");
	// Without room a message is only sent; turned off in the middle, an exchange ends.
	end = {};
	EXPECT_EQ(ask(0, 1), hex(""));
	EXPECT_LT(seconds, 0.001);
	EXPECT_EQ(end.taken, hex("F0 47 00 F7"));
	EXPECT_EQ(the_line.failures, 1u);
	h.on_pump = switch_off_tcp;
	EXPECT_EQ(ask(), hex(""));
	EXPECT_LT(seconds, 0.3);
}

TEST_F(bridge, short_messages_go_over_it_and_waiting_does_not)
{
	switch_on_tcp();
	transcript_midi t(h, "< F0 7E F7");
	const u8 note[] = { 0x90, 0x3C, 0x40 };
	send_midi_string(note, sizeof note);
	EXPECT_EQ(end.taken, hex("90 3C 40"));
	u8 buffer[10];
	int count = 10;
	wait_midi_string_ex(buffer, &count, 1, 2);
	EXPECT_EQ(count, 3);
	EXPECT_EQ(t.outputs_opened, 0);
}

} // namespace velmor
