// test_virtual_usb.cpp - what virtual USB machines refuse and keep, and how the bus behaves
//
// The bytes are worked out by hand: a frame to an S5000 is 10, the count of what
// follows low byte first, F0 47 5E 20 00 00, the request, the sum of the request in
// seven bits, F7; an answer is F0 47 5E channel 00 00 status, the request's first two
// bytes, data, F7. The Z4's frames lack the two zeros and the sum, and the answers have the
// status two bytes earlier and a zero before the data.
//
// What the machines say when all is well is compared by the conversations of the drivers.

#include "tests/support/test_host.h"
#include "virtual/demo_usb.h"
#include "virtual/usb_bus.h"
#include <set>

namespace velmor
{

class bus_test : public ::testing::Test
{
protected:
	timeline time;
	int handle = 0;
	usb_bytes buffer = usb_bytes(65536);

	~bus_test() override { unplug_all_usb(); }

	void plug(usb_machine &machine)
	{
		plug_usb(time, machine);
		std::vector<usb_device> devices;
		ASSERT_TRUE(virtual_usb.list(&devices));
		ASSERT_EQ(virtual_usb.open(devices.back().path.c_str(), &handle), usb_ok);
		ASSERT_EQ(virtual_usb.claim(handle, 0), usb_ok);
	}
	int end(int transfer, std::size_t *moved)
	{
		for (;;) {
			const int result = virtual_usb.finished(transfer, moved);
			if (result != usb_pending || time.next() > 1e6)
				return result;
			time.run_until(time.next());
		}
	}
	int write(usb_bytes message, std::size_t *moved = nullptr)
	{
		std::size_t count = 0;
		int transfer = 0;
		const int result = virtual_usb.submit(
			handle, 0x02, message.data(), message.size(), 1000, &transfer);
		const int ended = result ? result : end(transfer, &count);
		if (moved)
			*moved = count;
		return ended;
	}
	int write(const std::string &text) { return write(hex(text)); }
	int last_read = usb_ok;
	usb_bytes read(std::size_t count = 1024)
	{
		std::size_t moved = 0;
		int transfer = 0;
		last_read = virtual_usb.submit(handle, 0x82, buffer.data(), count, 1000, &transfer);
		if (last_read == usb_ok)
			last_read = end(transfer, &moved);
		return usb_bytes(
			buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(moved));
	}
	usb_bytes ask(const std::string &text)
	{
		EXPECT_EQ(write(text), usb_ok) << text;
		return read();
	}
	// A request without its frame.
	virtual usb_bytes request(const std::string &) { return {}; }
	// Requests, and from the status on what is answered before the end byte.
	struct asked {
		const char *request, *answer;
	};
	void all(std::size_t status, std::initializer_list<asked> rows)
	{
		for (const asked &row : rows) {
			const usb_bytes answer = request(row.request);
			ASSERT_GT(answer.size(), status + 1) << row.request;
			EXPECT_EQ(usb_bytes(answer.begin() + static_cast<std::ptrdiff_t>(status),
					  answer.end() - 1),
				hex(row.answer))
				<< row.request;
		}
	}
};

class s5000_test : public bus_test
{
protected:
	s5000 machine;

	s5000_test()
	{
		machine.name = "Studio";
		machine.programs = { { "PIANO", std::vector<s5000_keygroup>(2) },
			{ "BASS", std::vector<s5000_keygroup>(1) } };
		machine.multis = { "SET 1", "SET 2" };
		const std::int16_t sound[] = { 0, 256, 512, -1 };
		machine.add_sample("KICK", make_wave(sound, { .rate = 44100, .note = 36 }));
		machine.add_sample("SNARE", make_wave(sound, { .rate = 22050, .note = 38 }));
	}
	void wake()
	{
		plug(machine);
		write("03 14");
		write("04 03");
	}
	usb_bytes request(const std::string &text) override
	{
		const usb_bytes payload = hex(text);
		usb_bytes frame = { 0x10, static_cast<std::uint8_t>((payload.size() + 8) & 0xFF),
			static_cast<std::uint8_t>((payload.size() + 8) >> 8), 0xF0, 0x47, 0x5E,
			0x20, 0, 0 };
		unsigned sum = 0;
		for (std::uint8_t b : payload)
			sum += b;
		frame.insert(frame.end(), payload.begin(), payload.end());
		frame.push_back(sum & 0x7F);
		frame.push_back(0xF7);
		EXPECT_EQ(write(frame), usb_ok) << text;
		return read();
	}
};

TEST_F(s5000_test, is_found_under_its_numbers_and_opened_once_by_each_program)
{
	plug(machine);
	std::vector<usb_device> devices;
	ASSERT_TRUE(virtual_usb.list(&devices));
	ASSERT_EQ(devices.size(), 1u);
	EXPECT_EQ(devices[0].vendor, 0x09E8);
	EXPECT_EQ(devices[0].product, 0x5E);
	int second;
	ASSERT_EQ(virtual_usb.open(devices[0].path.c_str(), &second), usb_ok);
	EXPECT_EQ(virtual_usb.claim(second, 0), usb_busy);
	virtual_usb.close(handle);
	EXPECT_EQ(virtual_usb.claim(second, 0), usb_ok);
	EXPECT_EQ(virtual_usb.claim(second, 7), usb_failed);

	machine.denied = true;
	EXPECT_EQ(virtual_usb.open(devices[0].path.c_str(), &second), usb_denied);
	EXPECT_EQ(virtual_usb.open("/virtual/usb/99", &second), usb_no_device);
	forbid_usb_list(true);
	EXPECT_FALSE(virtual_usb.list(&devices));
}

TEST_F(s5000_test, says_nothing_until_it_is_woken)
{
	plug(machine);
	EXPECT_EQ(write("10 0A 00 F0 47 5E 20 00 00 02 03 05 F7"), usb_ok);
	EXPECT_TRUE(read().empty());
	EXPECT_EQ(last_read, usb_timeout);
	write("04 03"); // the second half alone does not wake it
	write("10 0A 00 F0 47 5E 20 00 00 02 03 05 F7");
	EXPECT_TRUE(read().empty());
	write("03 14");
	write("04 03");
	EXPECT_EQ(ask("10 0A 00 F0 47 5E 20 00 00 02 03 05 F7"),
		hex("F0 47 5E 00 00 00 52 02 03 53 74 75 64 69 6F 00 F7"));
}

TEST_F(s5000_test, refuses_a_wrong_sum_until_sums_are_off_and_never_hears_a_wrong_frame)
{
	wake();
	EXPECT_EQ(ask("10 0A 00 F0 47 5E 20 00 00 02 03 06 F7"),
		hex("F0 47 5E 00 00 00 45 02 03 04 F7"));
	request("00 04 00");
	EXPECT_EQ(ask("10 0A 00 F0 47 5E 20 00 00 02 00 7F F7"),
		hex("F0 47 5E 00 00 00 52 02 00 02 0A F7"));
	for (const char *wrong : {
		     "10 0B 00 F0 47 5E 20 00 00 02 03 05 F7", // a count too large
		     "10 09 00 F0 47 5E 20 00 00 02 03 05 F7", // too small
		     "10 0A 00 F0 47 5F 20 00 00 02 03 05 F7", // another model
		     "10 0A 00 F0 47 5E 21 00 00 02 03 05 F7", // another channel
		     "10 0A 00 F0 47 5E 20 00 00 02 03 05 F0", // no end
		     "F0 47 5E 20 00 00 02 03 05 F7",          // no envelope
	     }) {
		EXPECT_TRUE(ask(wrong).empty()) << wrong;
		EXPECT_EQ(last_read, usb_timeout) << wrong;
	}
}

TEST_F(s5000_test, works_on_what_was_selected_and_keeps_it_when_there_is_none)
{
	wake();
	// clang-format off
	all(6, {
		{ "0A 05 42 41 53 53 00", "44 0A 05" },  // BASS
		{ "0A 12", "52 0A 12 00 01" },               { "0A 05 58 00", "45 0A 05 03" },  // there is none
		{ "0A 13", "52 0A 13 42 41 53 53 00" },      { "0A 05 50 49 41 4E 4F", "44 0A 05" },  // PIANO, no NUL
		{ "0A 14", "52 0A 14 02" },                  { "08 01 02", "44 08 01" },
		{ "08 01 03", "45 08 01 03" },               { "08 02", "52 08 02 02" },
		{ "06 01 03 4B 49 43 4B 00", "44 06 01" },  // zone 3: KICK
		{ "06 21 03", "52 06 21 4B 49 43 4B 00" },   { "06 0A 03 01 01 48", "44 06 0A" },
		{ "06 2A 03", "52 06 2A 01 01 48" },         { "06 22 05", "45 06 22 03" },  // no fifth zone
		{ "06 02 03 02 05", "45 06 02 02" },  // no sign of 2
		{ "06 02 03 01", "45 06 02 01" },  // an argument too few
		{ "06 7E", "45 06 7E 00" },  // not known
		{ "08 63 04 0C", "44 08 63" },               { "08 6B 04", "52 08 6B 0C" },
		{ "0A 0B 01", "44 0A 0B" },  // a keygroup more
		{ "0A 02 4E 45 57 00", "44 0A 02" },  // NEW
		{ "0A 09 4F 4C 44 00", "44 0A 09" },  // OLD
		{ "0A 08", "44 0A 08" },                     { "0E 05 53 4E 41 52 45 00", "44 0E 05" },  // SNARE
		{ "0E 33", "52 0E 33 00 01 2C 22" },  // 22050
		{ "0E 13", "52 0E 13 03 02" },  // 0182
		{ "0E 05 58 00", "45 0E 05 03" },            { "0E 08", "44 0E 08" },
		{ "02 02 41 00", "44 02 02" },
	});
	// clang-format on
	EXPECT_EQ(machine.programs[0].keygroups.size(), 3u);
	EXPECT_EQ(machine.programs[0].keygroups[1].aux_level[3], 12);
	EXPECT_EQ(machine.programs[0].keygroups[0].aux_level[3], 0);
	EXPECT_EQ(machine.programs.size(), 2u);
	ASSERT_EQ(machine.samples.size(), 1u);
	EXPECT_EQ(machine.samples[0].name, "KICK");
	EXPECT_EQ(machine.name, "A");
}

TEST_F(s5000_test, reads_and_writes_blocks_of_a_keygroup)
{
	wake();
	// low note 24, cutoff 40, pitch modulation 2 minus 7; the last group without its fourth byte
	EXPECT_EQ(request("3A 00 01 01 04 18 00 00 21 28 00 00 13 02 01 07"),
		hex("F0 47 5E 00 00 00 44 3A 00 F7"));
	EXPECT_EQ(request("3A 00 01 01 38 01 09"), hex("F0 47 5E 00 00 00 44 3A 00 F7"));
	EXPECT_EQ(request("3A 00 01 01 0A 00 00 00 29 00 00 00 1B 02 00 00 48 00 00 00"),
		hex("F0 47 5E 00 00 00 52 3A 00 18 28 01 07 01 09 F7"));
	// nothing of a block is written when one of its groups is wrong
	EXPECT_EQ(request("3A 00 01 01 04 30 00 00 13 03 01 07"),
		hex("F0 47 5E 00 00 00 45 3A 00 02 F7"));
	EXPECT_EQ(machine.programs[1].keygroups[0].at(0x04)[0], 0x18);
	EXPECT_EQ(request("3A 00 01 02 0A 00 00 00"), hex("F0 47 5E 00 00 00 45 3A 00 03 F7"));
}

TEST_F(s5000_test, ends_an_upload_with_zeros_when_it_does_not_like_it)
{
	machine.block_sizes = { 64 };
	wake();
	write("20 00 00 01 00 58");
	read(64);
	write("AA*63"); // a byte short
	write("00");
	EXPECT_EQ(read(64), hex("00*8"));
	EXPECT_EQ(request("0E 10")[6], 'R'); // and speaks frames again

	machine.refuse_after = 1;
	write("20 00 00 01 00 58");
	read(64);
	write("AA*64");
	write("00");
	EXPECT_EQ(read(64), hex("00*8"));
	// the wake-up breaks off a transfer, and what was waiting is forgotten
	machine.refuse_after = -1;
	write("20 00 00 01 00 58");
	write("03 14");
	write("04 03");
	EXPECT_EQ(request("0E 10")[6], 'R');
	EXPECT_EQ(machine.samples.size(), 2u);
	EXPECT_EQ(machine.interrupted, 2) << "the short block, and the answer that nobody read";
}

// A wake-up drops what nobody has read, or keeps it; and is counted when it comes inside a block.
TEST_F(s5000_test, keeps_unread_answers_when_it_is_told_to)
{
	const usb_bytes one = hex("F0 47 5E 00 00 00 52 02 04 00 F7");
	const char *const question = "10 0A 00 F0 47 5E 20 00 00 02 04 06 F7";
	for (const bool keeps : { false, true }) {
		machine.keeps_unread = keeps;
		wake();
		write(question);
		write("03 14");
		write("04 03");
		write(question);
		EXPECT_EQ(read(), one);
		EXPECT_EQ(read(), keeps ? one : usb_bytes());
		unplug_all_usb();
	}
	wake();
	machine.block_sizes = { 64 };
	write("20 00 00 01 00 58");
	read();
	write("AA*64");
	EXPECT_EQ(machine.interrupted, 0);
	write("03 14");
	EXPECT_EQ(machine.interrupted, 1) << "in front of the go-on";
}

TEST_F(s5000_test, confirms_each_request_until_it_is_told_not_to)
{
	machine.confirms_at_power_on = true;
	wake();
	EXPECT_EQ(request("02 00"), hex("F0 47 5E 00 00 00 4F 02 00 F7"));
	EXPECT_EQ(read(), hex("F0 47 5E 00 00 00 52 02 00 02 0A F7"));
	machine.confirm_at = 5;
	EXPECT_EQ(request("00 01 00"), hex("F0 47 5E 00 00 4F 4F 00 01 F7"));
	EXPECT_EQ(read(), hex("F0 47 5E 00 00 00 44 00 01 F7"));
	EXPECT_EQ(request("02 00")[6], 'R');
}

// ---- Z4, Z8, MPC 4000 --------------------------------------------------------------------

class z4_test : public bus_test
{
protected:
	z4 machine{ z4_model::z8 };

	z4_test()
	{
		machine.name = "Big";
		machine.add_program("STRINGS", std::vector<z4_keygroup>(2));
		machine.add_program("KIT", std::vector<z4_keygroup>(1));
		const std::int16_t sound[] = { 0, 256, 512, -1 };
		machine.add_sample("KICK", make_wave(sound, { .rate = 44100, .note = 36 }));
	}
	void wake()
	{
		plug(machine);
		write("03 01");
	}
	usb_bytes request(const std::string &text) override
	{
		const usb_bytes payload = hex(text);
		usb_bytes frame = { 0x10, static_cast<std::uint8_t>(payload.size() + 5), 0, 0xF0,
			0x47, 0x5F, 0 };
		frame.insert(frame.end(), payload.begin(), payload.end());
		frame.push_back(0xF7);
		EXPECT_EQ(write(frame), usb_ok) << text;
		return read();
	}
};

TEST_F(z4_test, hears_frames_without_sum_once_it_is_woken)
{
	plug(machine);
	EXPECT_TRUE(ask("10 07 00 F0 47 5F 00 07 01 F7").empty());
	write("03 01");
	EXPECT_EQ(ask("10 07 00 F0 47 5F 00 04 04 F7"), hex("F0 47 5F 00 52 04 04 00 01 F7"));
	EXPECT_TRUE(ask("10 08 00 F0 47 5F 00 04 04 F7").empty()); // a wrong count
	EXPECT_TRUE(ask("10 07 00 F0 47 5E 00 04 04 F7").empty()); // another model
	EXPECT_EQ(ask("10 07 00 F0 47 5F 00 7E 04 F7"), hex("F0 47 5F 00 45 7E 04 00 00 F7"));
}

TEST_F(z4_test, works_on_what_was_selected_and_keeps_it_when_there_is_none)
{
	machine.programs[0].keygroups[0].zones.resize(2);
	wake();
	// clang-format off
	all(4, {
		{ "14 02 02", "52 14 02 00 04 01 01 01 01 08 53 54 52 49 4E 47 53 00 04 02 01 01 01 08 4B 49 54 00" },
		{ "0E 01 02 4B 49 43 4B 00", "44 0E 01" },  // zone 2: KICK
		{ "0F 01 02", "52 0F 01 00 4B 49 43 4B 00" },
		{ "0E 02 02 01 48 01", "44 0E 02" },  // minus 200
		{ "0F 02 02", "52 0F 02 00 01 48 01" },      { "0F 01 03", "45 0F 01 00 03" },  // no third zone here
		{ "14 03 02 01 01 01", "44 14 03" },  // KIT
		{ "14 06", "52 14 06 00 4B 49 54 00" },      { "14 03 03 01 01 01", "45 14 03 00 03" },
		{ "16 10 20", "44 16 10" },                  { "17 10", "52 17 10 00 20" },
		{ "10 01 01", "45 10 01 00 03" },  // one keygroup; a second one is added
		{ "14 41 01", "44 14 41" },                  { "10 01 01", "44 10 01" },
		{ "10 02", "52 10 02 00 01" },               { "12 04 30", "44 12 04" },
		{ "13 04", "52 13 04 00 30" },               { "14 04 53 54 52 49 4E 47 53 00", "44 14 04" },
		{ "14 0C 56 58 00", "44 14 0C" },  // VX
		{ "14 0A", "44 14 0A" },                     { "1C 02 01", "52 1C 02 00 04 4B 49 43 4B 00" },
		{ "1C 04 4B 49 43 4B 00", "44 1C 04" },      { "1C 05", "52 1C 05 00 01 03 00 00" },  // 181
		{ "1F 51", "52 1F 51 00 44 58 02" },  // 44100
		{ "1F 21", "52 1F 21 00 00 00 00 00 04" },   { "04 00", "52 04 00 00 00 02 0A" },
		{ "07 01", "52 07 01 00 00 42 69 67 00" },   { "00 06 01 5A 00", "44 00 06" },
		{ "0E 05 4B 49 43 4B 00", "44 0E 05" },  // in the older words
		{ "0E 08", "44 0E 08" },                     { "1F 52", "45 1F 52 00 03" },
	});
	// clang-format on
	machine.told_at = 8;
	all(4, { { "04 00", "52 04 00 00 02 0A" }, { "07 01", "52 07 01 00 5A 00" } });
	EXPECT_EQ(machine.programs[0].name, "KIT");
	EXPECT_EQ(machine.programs[0].keygroups[1].low_note, 48);
	EXPECT_TRUE(machine.samples.empty());
}

TEST_F(bus_test, an_mpc_is_awake_and_forgets_its_answers_when_told)
{
	z4 machine(z4_model::mpc4000);
	plug(machine);
	EXPECT_EQ(ask("10 07 00 F0 47 5F 00 04 04 F7"), hex("F0 47 5F 00 52 04 04 00 02 F7"));
	write("01 00");
	write("FF");
	EXPECT_EQ(read(), hex("00 00 00 00"));
	write("01 00");
	EXPECT_EQ(read(9600).size(), 9600u);
	EXPECT_EQ(read().size(), 18u);
}

TEST_F(bus_test, the_demo_holds_samples_for_every_zone)
{
	s5000 big;
	fill_demo(big);
	std::set<std::string> present = { "" };
	for (const usb_sample &one : big.samples) {
		wave_facts facts;
		EXPECT_TRUE(read_wave(one.wave, &facts) && facts.frames > 4000) << one.name;
		present.insert(one.name);
	}
	for (const s5000_program &p : big.programs)
		for (const s5000_keygroup &k : p.keygroups)
			for (const s5000_zone &z : k.zones)
				EXPECT_TRUE(present.contains(z.sample)) << z.sample;
	z4 small(z4_model::z8);
	fill_demo(small);
	EXPECT_EQ(small.programs.at(4).keygroups[1].zones[1].level,
		(std::array<std::uint8_t, 3>{ 1, 0x5A, 0 })); // -9.0 dB
}

// ---- The bus -----------------------------------------------------------------------------

TEST_F(s5000_test, takes_the_time_of_a_full_speed_bus)
{
	EXPECT_DOUBLE_EQ(usb_transfer_time(19 * 64), 0.001);
	EXPECT_DOUBLE_EQ(usb_transfer_time(19 * 64 + 1), 0.001 + 14.0 / 77 / 19000);
	machine.latency = 0.004;
	wake();
	const double before = time.now();
	request("02 00"); // 13 bytes there, 12 back
	EXPECT_NEAR(time.now() - before, 0.004 + (13 + 13 + 12 + 13) / 77.0 / 19000, 1e-9);
}

TEST_F(s5000_test, hands_a_long_message_out_in_several_reads)
{
	wake();
	write("10 0A 00 F0 47 5E 20 00 00 0A 19 23 F7");
	EXPECT_EQ(read(9), hex("F0 47 5E 00 00 00 52 0A 19"));
	EXPECT_EQ(read(3), hex("50 49 41"));
	ASSERT_EQ(virtual_usb.reset_pipe(handle, 0x82), usb_ok); // the rest of the packet is lost
	EXPECT_TRUE(read().empty());
	EXPECT_EQ(last_read, usb_timeout);
}

// A full packet ends no read that asked for more; an empty packet behind it does.
TEST_F(s5000_test, ends_an_answer_of_full_packets_with_an_empty_one_or_not_at_all)
{
	machine.samples[0].name = std::string(53 - 6, 'K'); // and SNARE: 54 bytes, the frame 10
	wake();
	for (const bool empty : { true, false }) {
		machine.empty_packets = empty;
		EXPECT_EQ(request("0E 12").size(), 64u);
		EXPECT_EQ(last_read, empty ? usb_ok : usb_timeout);
	}
	machine.empty_packets = true;
	write("10 0A 00 F0 47 5E 20 00 00 0E 12 20 F7");
	EXPECT_EQ(read(64).size(), 64u);
	EXPECT_TRUE(read().empty()) << "the empty packet";
	EXPECT_EQ(last_read, usb_ok);
}

static int wakes;

TEST_F(s5000_test, plays_up_when_it_is_told_to)
{
	wake();
	const usb_bytes right = hex("F0 47 5E 00 00 00 52 02 00 02 0A F7");
	const std::string question = "10 0A 00 F0 47 5E 20 00 00 02 00 02 F7";

	machine.strike(usb_fault::answer_missing, 2);
	EXPECT_EQ(ask(question), right);
	EXPECT_TRUE(ask(question).empty());
	EXPECT_EQ(last_read, usb_timeout);
	machine.strike(usb_fault::answer_short).bytes = 5;
	EXPECT_EQ(ask(question), hex("F0 47 5E 00 00"));
	machine.strike(usb_fault::answer_garbled);
	EXPECT_NE(ask(question), right);
	machine.strike(usb_fault::answer_late).seconds = 3;
	EXPECT_TRUE(ask(question).empty());
	time.run_until(time.now() + 3);
	EXPECT_EQ(read(), right);
	machine.strike(usb_fault::answer_fails);
	ask(question);
	EXPECT_EQ(last_read, usb_failed);
	machine.strike(usb_fault::answer_stalls);
	ask(question);
	EXPECT_EQ(last_read, usb_stalled);
	read();
	EXPECT_EQ(last_read, usb_stalled);
	virtual_usb.reset_pipe(handle, 0x82);
	EXPECT_EQ(ask(question), right);

	machine.strike(usb_fault::write_fails);
	EXPECT_EQ(write(question), usb_failed);
	machine.strike(usb_fault::write_hangs);
	EXPECT_EQ(write(question), usb_timeout);
	machine.strike(usb_fault::write_stalls);
	EXPECT_EQ(write(question), usb_stalled);
	EXPECT_EQ(write(question), usb_stalled);
	virtual_usb.reset_pipe(handle, 0x02);
	std::size_t moved;
	machine.strike(usb_fault::write_short);
	EXPECT_EQ(write(usb_bytes(256), &moved), usb_ok);
	EXPECT_EQ(moved, 128u);
	machine.strike(usb_fault::unplugged);
	EXPECT_EQ(write(question), usb_no_device);
	EXPECT_EQ(write(question), usb_no_device);
	std::vector<usb_device> devices;
	virtual_usb.list(&devices);
	EXPECT_TRUE(devices.empty());
}

TEST_F(s5000_test, loses_its_transfers_when_it_is_unplugged_or_they_are_cancelled)
{
	wakes = 0;
	virtual_usb.on_arrival([] { wakes++; });
	wake();
	EXPECT_EQ(wakes, 2) << "who waits is woken when a transfer ends";
	int transfer;
	std::size_t moved;
	ASSERT_EQ(virtual_usb.submit(handle, 0x82, buffer.data(), 64, 0, &transfer), usb_ok);
	EXPECT_EQ(virtual_usb.finished(transfer, &moved), usb_pending);
	virtual_usb.cancel(transfer);
	EXPECT_EQ(virtual_usb.finished(transfer, &moved), usb_cancelled);
	ASSERT_EQ(virtual_usb.submit(handle, 0x82, buffer.data(), 64, 0, &transfer), usb_ok);
	unplug_usb(machine);
	EXPECT_EQ(virtual_usb.finished(transfer, &moved), usb_no_device);
	virtual_usb.close(handle);
	EXPECT_EQ(virtual_usb.submit(handle, 0x82, buffer.data(), 64, 0, &transfer), usb_no_device);
}

} // namespace velmor
