// test_tcp.cpp - the TCP bridge, against far ends that behave and that do not

#include "src/controls.h"
#include "tests/support/transcript_midi.h"
#include <algorithm>

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
	std::vector<portion> answer;

	std::vector<u8> taken, waiting;
	double connected_at = 0;
	bool open = false;
	int pending = 0;
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
			if (far->refuses)
				return -111;
			return far->connect_seconds >= 0 &&
					       host.clock->counter() >= far->connected_at
				       ? 1
				       : 0;
		},
	.send = [](int, const unsigned char *bytes, std::size_t count) -> long {
		const long room = far->takes_in_all - static_cast<long>(far->taken.size());
		const long n = std::min({ static_cast<long>(count), far->takes, room });
		far->taken.insert(far->taken.end(), bytes, bytes + n);
		if (n == static_cast<long>(count)) {
			double when = the_test_host->time.now();
			for (const far_end::portion &p : far->answer) {
				when += p.seconds;
				far->pending++;
				the_test_host->time.at(when, [p] {
					const std::vector<u8> b = hex(p.bytes);
					far->waiting.insert(far->waiting.end(), b.begin(), b.end());
					far->pending--;
				});
			}
		}
		return n;
	},
	.receive = [](int, unsigned char *bytes, std::size_t capacity) -> long {
		if (far->flood) {
			std::fill_n(bytes, capacity, 0x7F);
			return static_cast<long>(capacity);
		}
		const std::size_t n = std::min(capacity, far->waiting.size());
		if (n == 0)
			return far->breaks && !far->pending ? -104 : 0;
		std::copy_n(far->waiting.begin(), n, bytes);
		far->waiting.erase(
			far->waiting.begin(), far->waiting.begin() + static_cast<long>(n));
		return static_cast<long>(n);
	},
	.close = [](int) { far->open = false; },
	.on_arrival = [](void (*)()) {},
	.error_text = [](int) { return "Connection refused"; },
};

class bridge : public host_test
{
protected:
	bridge()
	{
		far = &end;
		host.net = &far_net;
		copy_text(tcp_address, "192.168.0.10");
		tcp_port = 9999;
	}
	~bridge() override
	{
		if (use_tcp)
			switch_off_tcp();
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
	EXPECT_TRUE(h.logged("[D] Starting TCP (192.168.0.10:9999)"));
	EXPECT_TRUE(h.logged("[D] Starting TCP (192.168.0.10:9999) WSASTARTUP DONE..."));
	EXPECT_TRUE(h.logged("[D] Starting TCP (192.168.0.10:9999) SOCKET DONE..."));
	EXPECT_TRUE(h.logged("[D] TCP-Socket connected!"));
	h.forget_log();
	switch_on_tcp();
	EXPECT_EQ(h.log(), std::vector<std::string>{ "TCP already turned on\r\n" });
	switch_off_tcp();
	EXPECT_EQ(use_tcp, 0);
	EXPECT_EQ(status(), "USING MIDI");
	EXPECT_FALSE(end.open);
}

TEST_F(bridge, a_far_end_that_is_not_there_leaves_midi_in_force)
{
	struct absence {
		const char *name;
		int code;
		double answers;
		bool refuses;
		double seconds;
	};
	static const absence absences[] = {
		{ "no address", 22, 0, false, 0 },
		{ "refused", 0, 0, true, 0 },
		{ "never answers", 0, -1, false, 5 },
	};
	for (const absence &a : absences) {
		SCOPED_TRACE(a.name);
		end = {};
		end.connect_code = a.code;
		end.connect_seconds = a.answers;
		end.refuses = a.refuses;
		h.boxes.clear();
		const double began = h.time.now();
		switch_on_tcp();
		EXPECT_NEAR(h.time.now() - began, a.seconds, 0.1);
		EXPECT_EQ(use_tcp, 0);
		EXPECT_EQ(h.boxes,
			(std::vector<shown_box>{ { "Failed to connect IP (SOCKET)", "WARNING" } }));
		EXPECT_EQ(status(), "");
		EXPECT_FALSE(end.open);
	}
}

// ---- Traffic ------------------------------------------------------------------------------------

TEST_F(bridge, an_answer_ends_at_its_first_end_byte)
{
	end.answer = { { 0.01, "F0 47 01" }, { 1.5, "02 F7 F0 99 F7" } };
	switch_on_tcp();
	EXPECT_EQ(ask(1000, 2), hex("F0 47 01 02 F7"));
	EXPECT_EQ(end.taken, hex("F0 47 00 F7"));
	EXPECT_LT(seconds, 1.7);
	// The rest stays in the connection.
	end.answer.clear();
	EXPECT_EQ(ask(), hex("F0 99 F7"));
}

TEST_F(bridge, the_count_of_messages_does_not_matter)
{
	end.answer = { { 0.01, "F0 01 F7" } };
	switch_on_tcp();
	EXPECT_EQ(ask(100, 0), hex("F0 01 F7"));
	EXPECT_EQ(ask(0, 1), hex("")); // no room: only sent
	EXPECT_LT(seconds, 0.001);
	EXPECT_EQ(end.taken, hex("F0 47 00 F7 F0 47 00 F7"));
}

TEST_F(bridge, a_far_end_that_misbehaves_ends_the_exchange_only)
{
	struct case_row {
		const char *name;
		std::vector<far_end::portion> answer;
		bool flood, breaks;
		int capacity;
		const char *got;
		double seconds; // at most
	};
	static const case_row cases[] = {
		{ "silent", {}, false, false, 100, "", 3.1 },
		{ "silent after a part", { { 0.5, "F0 01" } }, false, false, 100, "F0 01", 3.6 },
		{ "breaks before the answer", {}, false, true, 100, "", 0.1 },
		{ "breaks within the answer", { { 0.1, "F0 01 02" } }, false, true, 100, "F0 01 02",
			0.3 },
		{ "floods", {}, true, false, 1000, "7F*1000", 0.1 },
		{ "sends 0x7F without end byte", { { 0.1, "7F*500" } }, false, false, 100, "7F*100",
			0.3 },
	};
	for (const case_row &c : cases) {
		SCOPED_TRACE(c.name);
		end = {};
		switch_on_tcp();
		end.answer = c.answer;
		end.flood = c.flood;
		end.breaks = c.breaks;
		EXPECT_EQ(ask(c.capacity), hex(c.got));
		EXPECT_LE(seconds, c.seconds);
		EXPECT_EQ(use_tcp, 1); // until the user turns it off
		switch_off_tcp();
	}
	EXPECT_TRUE(h.boxes.empty());
}

TEST_F(bridge, bytes_that_trickle_do_not_go_on_forever)
{
	for (int i = 0; i < 100; i++)
		end.answer.push_back({ 1.9, "55" });
	switch_on_tcp();
	EXPECT_LT(ask(1000).size(), 5u);
	EXPECT_LE(seconds, 6);
}

TEST_F(bridge, an_answer_that_comes_too_late_is_not_taken_for_the_next)
{
	end.answer = { { 5, "F0 01 F7" } };
	switch_on_tcp();
	EXPECT_EQ(ask(), hex(""));
	h.time.run_until(h.time.now() + 10);
	end.answer = { { 0.01, "F0 02 F7" } };
	EXPECT_EQ(ask(), hex("F0 02 F7"));
}

TEST_F(bridge, a_message_that_is_not_taken_leaves_the_length)
{
	end.takes_in_all = 2;
	switch_on_tcp();
	ask(100);
	EXPECT_EQ(length, 100);
	EXPECT_NEAR(seconds, 2, 0.11);
	EXPECT_TRUE(h.logged("[W] TCP: message not taken by 192.168.0.10:9999"));
	EXPECT_EQ(use_tcp, 1);
}

TEST_F(bridge, a_slow_far_end_gets_the_whole_message)
{
	end.takes = 1;
	end.answer = { { 0.01, "F0 01 F7" } };
	switch_on_tcp();
	EXPECT_EQ(ask(), hex("F0 01 F7"));
	EXPECT_EQ(end.taken, hex("F0 47 00 F7"));
}

TEST_F(bridge, turned_off_in_the_middle_ends_the_exchange)
{
	switch_on_tcp();
	h.on_pump = [&] {
		if (h.time.now() > 1)
			switch_off_tcp();
	};
	EXPECT_EQ(ask(), hex(""));
	EXPECT_LT(seconds, 1.3);
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
