// test_virtual_wire.cpp - virtual MIDI ports: time on the wire, armed buffers, faults
//
// A status request has 6 bytes and its answer 21. At 320 us a byte and 3 ms of latency
// the request is out after 1.92 ms, the answer begins at 4.92 ms and is complete at
// 11.64 ms.

#include "tests/support/test_host.h"
#include "virtual/midi_ports.h"
#include "virtual/s1000.h"
#include <atomic>

namespace velmor
{

using machine::bytes;

static const bytes status_request = hex("F0 47 05 00 48 F7");
static const bytes status_answer =
	hex("F0 47 05 01 48 00 02 7E 0F 7E 0F 00 00 00 02 00 00 00 02 05 F7");
static constexpr double answer_complete = 0.01164;

struct virtual_wire : host_test {
	s1000_machine m{ s1000_model::s3000, 5 };
	int port = plug_midi(h.time, m, "Demo S3000");
	int out = 0, in = 0;
	unsigned char buffer[1000] = {};

	virtual_wire()
	{
		EXPECT_EQ(virtual_midi.open_output(0, &out), 0);
		EXPECT_EQ(virtual_midi.open_input(0, &in), 0);
	}
	~virtual_wire() override { unplug_all_midi(); }

	void arm(std::size_t capacity = 1000)
	{
		EXPECT_EQ(virtual_midi.arm(in, buffer, capacity), 0);
	}
	void send(const bytes &b) { EXPECT_EQ(virtual_midi.write(out, b.data(), b.size()), 0); }
	void until(double when) { h.time.run_until(when); }
	std::size_t received() { return virtual_midi.received(in); }
	bytes taken()
	{
		const std::size_t count = received();
		return bytes(buffer, buffer + count);
	}
	// What a message brings in the next so many seconds.
	bytes ask(double seconds = 1, const bytes &message = status_request)
	{
		arm();
		send(message);
		until(h.time.now() + seconds);
		return taken();
	}
};

TEST_F(virtual_wire, takes_320_microseconds_a_byte_and_no_event_for_it)
{
	arm();
	send(status_request);
	const struct {
		double when;
		long leaving;
		std::size_t received;
	} moments[] = { { 0, 6, 0 }, { 0.00031, 6, 0 }, { 0.00032, 5, 0 }, { 0.00191, 1, 0 },
		{ 0.00192, 0, 0 }, { 0.00523, 0, 0 }, { 0.00524, 0, 1 }, { 0.00812, 0, 10 },
		{ answer_complete - 0.00001, 0, 20 }, { answer_complete, 0, 21 } };
	int events = 0;
	for (const auto &now : moments) {
		for (; h.time.next() <= now.when + 1e-9; events++)
			until(h.time.next());
		until(now.when);
		EXPECT_EQ(virtual_midi.leaving(out), now.leaving) << now.when;
		EXPECT_EQ(received(), now.received) << now.when;
	}
	EXPECT_EQ(taken(), status_answer);
	EXPECT_EQ(events, 2) << "the end of each run";
}

TEST_F(virtual_wire, sends_runs_one_behind_the_other)
{
	arm();
	send(hex("F0 47 05"));
	send(hex("00 48 F7"));
	EXPECT_EQ(virtual_midi.leaving(out), 6);
	until(answer_complete);
	EXPECT_EQ(taken(), status_answer) << "a message in two parts is one message";
	arm();
	bytes two = status_request;
	two.insert(two.end(), status_request.begin(), status_request.end());
	send(two);
	until(answer_complete * 2 + 0.00002);
	EXPECT_EQ(received(), 21u);
	until(1);
	EXPECT_EQ(received(), 42u) << "two messages in one run are two";
	EXPECT_EQ(m.heard.size(), 3u);
}

TEST_F(virtual_wire, lets_clock_bytes_stand_inside_a_message)
{
	EXPECT_EQ(ask(1, hex("F8 F0 47 FE 05 00 F8 48 F7")), status_answer);
	EXPECT_EQ(ask(1, hex("F0 47 05 90 3C 40 00 48 F7")), bytes()) << "a note ends it";
}

TEST_F(virtual_wire, receives_only_what_comes_while_it_is_armed)
{
	send(status_request);
	until(0.00492 + 4.5 * 0.00032);
	EXPECT_EQ(received(), 0u);
	arm();
	until(1);
	EXPECT_EQ(taken(), bytes(status_answer.begin() + 4, status_answer.end()));
	send(status_request);
	virtual_midi.disarm(in);
	until(2);
	EXPECT_EQ(received(), 17u) << "nothing after disarm";
	arm(7);
	send(status_request);
	until(3);
	EXPECT_EQ(taken(), bytes(status_answer.begin(), status_answer.begin() + 7));
	EXPECT_EQ(virtual_midi.input_error(in), 0);
	EXPECT_EQ(buffer[7], status_answer[11]) << "not a byte beyond the capacity";
}

// A listener and an exchange on one port have all of it each.
TEST_F(virtual_wire, is_listened_to_beside_an_exchange)
{
	int ear = 0;
	unsigned char heard[100];
	ASSERT_EQ(virtual_midi.open_input(0, &ear), 0);
	EXPECT_EQ(virtual_midi.take(ear, heard, 100), 0u) << "it does not listen yet";
	ASSERT_EQ(virtual_midi.listen(ear, 50), 0);
	EXPECT_EQ(ask(), status_answer);
	ASSERT_EQ(virtual_midi.take(ear, heard, 4), 4u);
	EXPECT_EQ(ask(), status_answer);
	ASSERT_EQ(virtual_midi.take(ear, heard + 4, 96), 38u);
	EXPECT_EQ(bytes(heard, heard + 21), status_answer);
	EXPECT_EQ(bytes(heard + 21, heard + 42), status_answer);
	EXPECT_EQ(virtual_midi.input_error(ear), 0);
	for (int i = 0; i < 3; i++)
		ask();
	EXPECT_EQ(virtual_midi.input_error(ear), 32) << "13 bytes were too many";
	EXPECT_EQ(virtual_midi.take(ear, heard, 100), 50u);
	virtual_midi.disarm(ear);
	EXPECT_EQ(ask(), status_answer);
	EXPECT_EQ(virtual_midi.take(ear, heard, 100), 0u);
	virtual_midi.close_input(ear);
	EXPECT_NE(virtual_midi.listen(ear, 10), 0);
}

TEST_F(virtual_wire, names_ports_by_their_place_and_fails_when_a_cable_is_pulled)
{
	s1000_machine other(s1000_model::s1000, 0);
	plug_midi(h.time, other, "Old S1000");
	EXPECT_EQ(virtual_midi.outputs(), 2);
	EXPECT_STREQ(virtual_midi.output_name(0), "Demo S3000");
	EXPECT_STREQ(virtual_midi.input_name(1), "Old S1000");
	EXPECT_STREQ(virtual_midi.input_name(2), "");
	EXPECT_STREQ(virtual_midi.input_name(-1), "");
	int handle;
	EXPECT_EQ(virtual_midi.open_output(-1, &handle), 0) << "the first one listed";
	EXPECT_NE(virtual_midi.open_input(-1, &handle), 0);
	EXPECT_NE(virtual_midi.open_input(2, &handle), 0);

	arm();
	send(status_request);
	until(0.00492 + 5 * 0.00032);
	unplug_midi(port);
	until(1);
	EXPECT_EQ(received(), 5u) << "what had come stays";
	EXPECT_EQ(virtual_midi.input_error(in), 19);
	EXPECT_EQ(virtual_midi.leaving(out), -19);
	EXPECT_EQ(virtual_midi.write(out, buffer, 1), 19);
	EXPECT_EQ(virtual_midi.arm(in, buffer, 1), 19);
	EXPECT_STREQ(virtual_midi.error_text(19), "No such device");
	EXPECT_EQ(virtual_midi.inputs(), 1);
	EXPECT_STREQ(virtual_midi.output_name(0), "Old S1000");
}

// ---- Faults ------------------------------------------------------------------------

TEST_F(virtual_wire, can_fail_at_one_exchange_or_from_one_on)
{
	midi_wire &wire = port_wire(port);
	wire.set_fault({ .kind = wire_fault_kind::silent, .exchange = 2 });
	EXPECT_EQ(ask(), status_answer);
	EXPECT_EQ(ask(), bytes());
	EXPECT_EQ(ask(), status_answer);
	EXPECT_EQ(m.heard.size(), 2u) << "the machine never heard the second";
	wire.set_fault({ .kind = wire_fault_kind::silent, .exchange = 2, .from_then_on = true });
	EXPECT_EQ(ask(), status_answer);
	EXPECT_EQ(ask(), bytes());
	EXPECT_EQ(ask(), bytes());
	wire.clear_faults();
	wire.set_fault({ .kind = wire_fault_kind::slow, .seconds = 2.5 });
	EXPECT_EQ(ask(2.5 + answer_complete - 0.00001).size(), 20u);
	until(h.time.now() + 0.00002);
	EXPECT_EQ(taken(), status_answer);
}

TEST_F(virtual_wire, can_spoil_an_answer)
{
	const struct {
		wire_fault_kind kind;
		const char *due;
		int error;
	} rows[] = {
		{ wire_fault_kind::truncated, "F0 47 05 01 48 00 02 7E 0F 7E", 0 },
		{ wire_fault_kind::garbled,
			"F0 47 05 2B 62 2A 28 54 25 54 25 2A 2A 2A 28 2A 2A 2A 28 2F F7", 0 },
		{ wire_fault_kind::wrong_function,
			"F0 47 05 3F 48 00 02 7E 0F 7E 0F 00 00 00 02 00 00 00 02 05 F7", 0 },
		{ wire_fault_kind::stray_bytes,
			"12 34 F0 47 05 01 48 00 02 7E 0F 7E 0F 00 00 00 02 00 00 00 02 05 F7", 0 },
		{ wire_fault_kind::active_sensing,
			"FE F0 47 05 01 48 00 02 7E 0F 7E 0F 00 00 00 02 00 00 00 02 05 F7", 0 },
		{ wire_fault_kind::refused, "F0 47 05 16 48 01 F7", 0 },
		// Of 21 bytes the middle seven are gone, and the port says so.
		{ wire_fault_kind::overrun, "F0 47 05 01 48 00 02 02 00 00 00 02 05 F7", 32 },
		{ wire_fault_kind::unplugged, "F0 47 05 01 48 00 02 7E 0F 7E", 19 },
	};
	for (const auto &row : rows) {
		EXPECT_EQ(ask(), status_answer);
		EXPECT_EQ(virtual_midi.input_error(in), 0) << "since it was armed";
		port_wire(port).set_fault({ .kind = row.kind });
		EXPECT_EQ(ask(), hex(row.due)) << static_cast<int>(row.kind);
		EXPECT_EQ(virtual_midi.input_error(in), row.error);
	}
	EXPECT_EQ(virtual_midi.outputs(), 0);
}

TEST_F(virtual_wire, can_ask_to_wait_and_refuse_in_a_dump)
{
	port_wire(port).set_fault({ .kind = wire_fault_kind::wait_first, .seconds = 1.5 });
	port_wire(port).set_fault({ .kind = wire_fault_kind::refused, .exchange = 2 });
	EXPECT_EQ(ask(1, hex("F0 7E 05 01 00 00 10 27 62 02 2D 00 00 00*6 7F F7")),
		hex("F0 7E 05 7C 00 F7"));
	until(2);
	EXPECT_EQ(taken(), hex("F0 7E 05 7C 00 F7 F0 7E 05 7F 00 F7"));
	const bytes packet = hex("F0 7E 05 02 00 00*120 79 F7");
	EXPECT_EQ(ask(1, packet), hex("F0 7E 05 7E 00 F7"));
	EXPECT_EQ(ask(1, packet), hex("F0 7E 05 7F 00 F7")) << "the same packet again is taken";
}

TEST(wire_faults, are_read_from_the_command_line)
{
	wire_fault f = {};
	EXPECT_TRUE(read_wire_fault("silent", &f));
	EXPECT_EQ(f.kind, wire_fault_kind::silent);
	EXPECT_EQ(f.exchange, 1);
	EXPECT_FALSE(f.from_then_on);
	EXPECT_TRUE(read_wire_fault("slow:3+:2.5", &f));
	EXPECT_EQ(f.kind, wire_fault_kind::slow);
	EXPECT_EQ(f.exchange, 3);
	EXPECT_TRUE(f.from_then_on);
	EXPECT_EQ(f.seconds, 2.5);
	for (const char *bad : { "", "loud", "slow:", "slow:x", "slow:0", "slow:1:x", "slow:1:-1" })
		EXPECT_FALSE(read_wire_fault(bad, &f)) << bad;
}

// ---- In real time ------------------------------------------------------------------

static std::atomic<int> wakes = 0;

TEST(virtual_wire_in_real_time, wakes_the_host_when_the_answer_is_there)
{
	timeline time;
	s1000_machine m(s1000_model::s3000, 5);
	plug_midi(time, m, "Demo S3000", no_wire_delay);
	time.run_in_real_time();
	wakes = 0;
	virtual_midi.on_arrival([] {
		wakes++;
		wakes.notify_one();
	});
	int out = 0, in = 0;
	ASSERT_EQ(virtual_midi.open_output(-1, &out), 0);
	ASSERT_EQ(virtual_midi.open_input(0, &in), 0);
	for (int i = 0; i < 100; i++) {
		unsigned char buffer[100];
		ASSERT_EQ(virtual_midi.arm(in, buffer, sizeof buffer), 0);
		int seen = wakes;
		ASSERT_EQ(virtual_midi.write(out, status_request.data(), status_request.size()), 0);
		while (virtual_midi.received(in) < status_answer.size()) {
			wakes.wait(seen);
			seen = wakes;
		}
		EXPECT_EQ(bytes(buffer, buffer + status_answer.size()), status_answer);
		EXPECT_EQ(virtual_midi.leaving(out), 0);
		virtual_midi.disarm(in);
	}
	time.stop();
	unplug_all_midi();
}

} // namespace velmor
