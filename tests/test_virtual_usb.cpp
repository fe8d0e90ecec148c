// test_virtual_usb.cpp - what virtual USB machines say, and how long the bus takes
//
// The bytes are worked out by hand: a frame to an S5000 is 10, the count of what
// follows low byte first, F0 47 5E 20 00 00, the request, the sum of the request in
// seven bits, F7; an answer is F0 47 5E channel 00 00 status, the request's first two
// bytes, data, F7. The Z4's frames lack the two zeros and the sum, and the answers have the
// status two bytes earlier and a zero before the data.

#include "virtual/demo_usb.h"
#include "virtual/usb_bus.h"
#include <gtest/gtest.h>
#include <sstream>

namespace velmor
{

static usb_bytes bytes(const std::string &text)
{
	usb_bytes all;
	std::istringstream words(text);
	for (std::string word; words >> word;) {
		const std::size_t star = word.find('*');
		const std::size_t times = star == word.npos ? 1 : std::stoul(word.substr(star + 1));
		all.insert(
			all.end(), times, static_cast<std::uint8_t>(std::stoul(word, nullptr, 16)));
	}
	return all;
}

class usb_test : public ::testing::Test
{
protected:
	timeline time;
	int handle = 0;
	usb_bytes buffer = usb_bytes(65536);

	~usb_test() override { unplug_all_usb(); }

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
	int write(const std::string &text) { return write(bytes(text)); }
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
};

class s5000_test : public usb_test
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
	// A request without its frame.
	usb_bytes request(const std::string &text)
	{
		const usb_bytes payload = bytes(text);
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
	EXPECT_EQ(devices[0].interfaces[0].pipes[0].id, 0x02);
	EXPECT_EQ(devices[0].interfaces[0].pipes[1].id, 0x82);

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
		bytes("F0 47 5E 00 00 00 52 02 03 53 74 75 64 69 6F 00 F7"));
}

TEST_F(s5000_test, answers_status_requests_byte_by_byte)
{
	machine.channel = 3;
	wake();
	// sums off, confirmations off, version, hardware
	EXPECT_EQ(ask("10 0B 00 F0 47 5E 20 00 00 00 04 00 04 F7"),
		bytes("F0 47 5E 03 00 00 44 00 04 F7"));
	EXPECT_EQ(ask("10 0B 00 F0 47 5E 23 00 00 00 01 00 01 F7"),
		bytes("F0 47 5E 03 00 00 44 00 01 F7"));
	EXPECT_EQ(ask("10 0A 00 F0 47 5E 23 00 00 02 00 02 F7"),
		bytes("F0 47 5E 03 00 00 52 02 00 02 0A F7"));
	EXPECT_EQ(ask("10 0A 00 F0 47 5E 23 00 00 02 04 06 F7"),
		bytes("F0 47 5E 03 00 00 52 02 04 00 F7"));
	// rename to "A", and read it back
	EXPECT_EQ(ask("10 0C 00 F0 47 5E 23 00 00 02 02 41 00 45 F7"),
		bytes("F0 47 5E 03 00 00 44 02 02 F7"));
	EXPECT_EQ(machine.name, "A");
}

TEST_F(s5000_test, refuses_a_wrong_sum_until_sums_are_off_and_never_hears_a_wrong_frame)
{
	wake();
	EXPECT_EQ(ask("10 0A 00 F0 47 5E 20 00 00 02 03 06 F7"),
		bytes("F0 47 5E 00 00 00 45 02 03 04 F7"));
	request("00 04 00");
	EXPECT_EQ(ask("10 0A 00 F0 47 5E 20 00 00 02 00 7F F7"),
		bytes("F0 47 5E 00 00 00 52 02 00 02 0A F7"));
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

TEST_F(s5000_test, lists_its_contents)
{
	wake();
	EXPECT_EQ(request("0A 10"), bytes("F0 47 5E 00 00 00 52 0A 10 00 02 F7"));
	EXPECT_EQ(request("0A 19"),
		bytes("F0 47 5E 00 00 00 52 0A 19 50 49 41 4E 4F 00 42 41 53 53 00 F7"));
	EXPECT_EQ(request("0C 40"), bytes("F0 47 5E 00 00 00 52 0C 40 00 02 F7"));
	EXPECT_EQ(request("0E 10"), bytes("F0 47 5E 00 00 00 52 0E 10 00 02 F7"));
	EXPECT_EQ(request("0E 12"),
		bytes("F0 47 5E 00 00 00 52 0E 12 4B 49 43 4B 00 53 4E 41 52 45 00 F7"));
	// 130 samples: 1 * 128 + 2
	for (int i = 0; i < 128; i++)
		machine.add_sample("X", {});
	EXPECT_EQ(request("0E 10"), bytes("F0 47 5E 00 00 00 52 0E 10 01 02 F7"));
	machine.disks = { { 0x0105, 1, 2, 6, 1, "DISK" } };
	EXPECT_EQ(request("10 05"),
		bytes("F0 47 5E 00 00 00 52 10 05 02 05 01 02 06 01 44 49 53 4B 00 F7"));
}

TEST_F(s5000_test, works_on_what_was_selected_and_keeps_it_when_there_is_none)
{
	wake();
	EXPECT_EQ(request("0A 05 42 41 53 53 00"), bytes("F0 47 5E 00 00 00 44 0A 05 F7"));
	EXPECT_EQ(request("0A 12"), bytes("F0 47 5E 00 00 00 52 0A 12 00 01 F7"));
	EXPECT_EQ(request("0A 05 58 00"), bytes("F0 47 5E 00 00 00 45 0A 05 03 F7"));
	EXPECT_EQ(request("0A 13"), bytes("F0 47 5E 00 00 00 52 0A 13 42 41 53 53 00 F7"));
	EXPECT_EQ(
		request("0A 05 50 49 41 4E 4F"), bytes("F0 47 5E 00 00 00 44 0A 05 F7")); // no NUL
	EXPECT_EQ(request("0A 14"), bytes("F0 47 5E 00 00 00 52 0A 14 02 F7"));
	EXPECT_EQ(request("08 01 02"), bytes("F0 47 5E 00 00 00 44 08 01 F7"));
	EXPECT_EQ(request("08 01 03"), bytes("F0 47 5E 00 00 00 45 08 01 03 F7"));
	EXPECT_EQ(request("08 02"), bytes("F0 47 5E 00 00 00 52 08 02 02 F7"));
	// a keygroup more, a program more, one less
	EXPECT_EQ(request("0A 0B 01"), bytes("F0 47 5E 00 00 00 44 0A 0B F7"));
	EXPECT_EQ(machine.programs[0].keygroups.size(), 3u);
	EXPECT_EQ(request("0A 02 4E 45 57 00"), bytes("F0 47 5E 00 00 00 44 0A 02 F7"));
	EXPECT_EQ(machine.programs[2].name, "NEW");
	EXPECT_EQ(request("0A 09 4F 4C 44 00"), bytes("F0 47 5E 00 00 00 44 0A 09 F7"));
	EXPECT_EQ(machine.programs[2].name, "OLD");
	EXPECT_EQ(request("0A 08"), bytes("F0 47 5E 00 00 00 44 0A 08 F7"));
	EXPECT_EQ(machine.programs.size(), 2u);
}

TEST_F(s5000_test, writes_and_reads_zones_and_envelopes)
{
	wake();
	request("08 01 02");
	EXPECT_EQ(request("06 01 03 4B 49 43 4B 00"), bytes("F0 47 5E 00 00 00 44 06 01 F7"));
	EXPECT_EQ(request("06 21 03"), bytes("F0 47 5E 00 00 00 52 06 21 4B 49 43 4B 00 F7"));
	EXPECT_EQ(request("06 02 03 01 05"), bytes("F0 47 5E 00 00 00 44 06 02 F7"));
	EXPECT_EQ(request("06 22 03"), bytes("F0 47 5E 00 00 00 52 06 22 01 05 F7"));
	EXPECT_EQ(request("06 0A 03 01 01 48"), bytes("F0 47 5E 00 00 00 44 06 0A F7"));
	EXPECT_EQ(request("06 2A 03"), bytes("F0 47 5E 00 00 00 52 06 2A 01 01 48 F7"));
	EXPECT_EQ(request("08 63 04 0C"), bytes("F0 47 5E 00 00 00 44 08 63 F7"));
	EXPECT_EQ(request("08 6B 04"), bytes("F0 47 5E 00 00 00 52 08 6B 0C F7"));
	EXPECT_EQ(machine.programs[0].keygroups[1].aux_level[3], 12);
	EXPECT_EQ(machine.programs[0].keygroups[0].aux_level[3], 0);
	// no fifth zone, no sign of 2, an argument too few, a request that is not known
	EXPECT_EQ(request("06 22 05"), bytes("F0 47 5E 00 00 00 45 06 22 03 F7"));
	EXPECT_EQ(request("06 02 03 02 05"), bytes("F0 47 5E 00 00 00 45 06 02 02 F7"));
	EXPECT_EQ(request("06 02 03 01"), bytes("F0 47 5E 00 00 00 45 06 02 01 F7"));
	EXPECT_EQ(request("06 7E"), bytes("F0 47 5E 00 00 00 45 06 7E 00 F7"));
}

TEST_F(s5000_test, reads_and_writes_blocks_of_a_keygroup)
{
	wake();
	// low note 24, cutoff 40, pitch modulation 2 minus 7; the last group without its fourth byte
	EXPECT_EQ(request("3A 00 01 01 04 18 00 00 21 28 00 00 13 02 01 07"),
		bytes("F0 47 5E 00 00 00 44 3A 00 F7"));
	EXPECT_EQ(request("3A 00 01 01 38 01 09"), bytes("F0 47 5E 00 00 00 44 3A 00 F7"));
	EXPECT_EQ(request("3A 00 01 01 0A 00 00 00 29 00 00 00 1B 02 00 00 48 00 00 00"),
		bytes("F0 47 5E 00 00 00 52 3A 00 18 28 01 07 01 09 F7"));
	// nothing of a block is written when one of its groups is wrong
	EXPECT_EQ(request("3A 00 01 01 04 30 00 00 13 03 01 07"),
		bytes("F0 47 5E 00 00 00 45 3A 00 02 F7"));
	EXPECT_EQ(machine.programs[1].keygroups[0].at(0x04)[0], 0x18);
	EXPECT_EQ(request("3A 00 01 02 0A 00 00 00"), bytes("F0 47 5E 00 00 00 45 3A 00 03 F7"));
}

TEST_F(s5000_test, tells_the_facts_of_a_sample)
{
	wake();
	EXPECT_EQ(request("0E 05 53 4E 41 52 45 00")[6], 'D');
	EXPECT_EQ(request("0E 33"), bytes("F0 47 5E 00 00 00 52 0E 33 00 01 2C 22 F7")); // 22050
	EXPECT_EQ(request("0E 32"), bytes("F0 47 5E 00 00 00 52 0E 32 00 00 00 04 F7"));
	EXPECT_EQ(request("0E 42"), bytes("F0 47 5E 00 00 00 52 0E 42 26 F7"));
	EXPECT_EQ(request("0E 31"), bytes("F0 47 5E 00 00 00 52 0E 31 01 F7"));
	EXPECT_EQ(request("0E 13"), bytes("F0 47 5E 00 00 00 52 0E 13 03 02 F7")); // 0182
	EXPECT_EQ(request("0E 05 58 00")[6], 'E');
	request("0E 08");
	ASSERT_EQ(machine.samples.size(), 1u);
	EXPECT_EQ(machine.samples[0].name, "KICK");
}

TEST_F(s5000_test, sends_a_sample_in_blocks_of_its_own_choice)
{
	machine.block_sizes = { 6, 100 };
	wake();
	write("21 01 81"); // eight bits to a byte
	EXPECT_EQ(read(4), bytes("00 00 00 90"));
	const usb_bytes header = read(144);
	ASSERT_EQ(header.size(), 144u);
	EXPECT_EQ(usb_bytes(header.begin() + 136, header.end()), bytes("64 61 74 61 08 00 00 00"));
	write("00");
	EXPECT_EQ(read(4), bytes("00 00 00 06"));
	EXPECT_EQ(read(6), bytes("00 00 00 01 00 02"));
	write("00");
	EXPECT_EQ(read(4), bytes("00 00 00 02"));
	EXPECT_EQ(read(2), bytes("FF FF"));
	write("00");
	EXPECT_EQ(read(4), bytes("00 00 00 00"));
	EXPECT_EQ(request("0E 10"), bytes("F0 47 5E 00 00 00 52 0E 10 00 02 F7"));
	write("21 7F 7F"); // there is none
	EXPECT_EQ(read(4), bytes("00 00 00 00"));
}

TEST_F(s5000_test, takes_a_sample_whose_first_block_holds_the_header_alone)
{
	machine.block_sizes = { 192, 128, 64 };
	machine.busy = 2;
	wake();
	const std::int16_t sound[] = { 1, 2, 3 };
	const usb_bytes file = make_wave(sound, { .note = 40 });
	ASSERT_EQ(file.size(), 150u);
	write("20 00 00 00 96 54 4F 4D");
	EXPECT_EQ(read(64), bytes("41 6B 61 49"));
	EXPECT_EQ(read(64), bytes("41 6B 61 49"));
	EXPECT_EQ(read(64), bytes("00 00 00 01 00 00 00 C0"));

	usb_bytes block(file.begin(), file.begin() + 144);
	block.resize(192, 0xEE); // what the host had lying about
	write(block);
	write("00");
	read(64), read(64);
	EXPECT_EQ(read(64), bytes("00 00 00 02 00 00 00 80"));
	block.assign(file.begin() + 144, file.end());
	block.resize(128, 0xEE);
	write(block);
	write("00");
	read(64), read(64);
	EXPECT_EQ(read(64), bytes("00 00 00 03 00 00 00 00"));
	ASSERT_EQ(machine.samples.size(), 3u);
	EXPECT_EQ(machine.samples[2].name, "TOM");
	EXPECT_EQ(machine.samples[2].wave, file);
}

TEST_F(s5000_test, ends_an_upload_with_zeros_when_it_does_not_like_it)
{
	machine.block_sizes = { 64 };
	wake();
	write("20 00 00 01 00 58");
	read(64);
	write("AA*63"); // a byte short
	write("00");
	EXPECT_EQ(read(64), bytes("00*8"));
	EXPECT_EQ(request("0E 10")[6], 'R'); // and speaks frames again

	machine.refuse_after = 1;
	write("20 00 00 01 00 58");
	read(64);
	write("AA*64");
	write("00");
	EXPECT_EQ(read(64), bytes("00*8"));
	// the wake-up breaks off a transfer, and what was waiting is forgotten
	machine.refuse_after = -1;
	write("20 00 00 01 00 58");
	write("03 14");
	write("04 03");
	EXPECT_EQ(request("0E 10")[6], 'R');
	EXPECT_EQ(machine.samples.size(), 2u);
}

TEST_F(s5000_test, confirms_each_request_until_it_is_told_not_to)
{
	machine.confirms_at_power_on = true;
	wake();
	EXPECT_EQ(request("02 00"), bytes("F0 47 5E 00 00 00 4F 02 00 F7"));
	EXPECT_EQ(read(), bytes("F0 47 5E 00 00 00 52 02 00 02 0A F7"));
	machine.confirm_at = 5;
	EXPECT_EQ(request("00 01 00"), bytes("F0 47 5E 00 00 4F 4F 00 01 F7"));
	EXPECT_EQ(read(), bytes("F0 47 5E 00 00 00 44 00 01 F7"));
	EXPECT_EQ(request("02 00")[6], 'R');
}

// ---- Z4, Z8, MPC 4000 --------------------------------------------------------------------

class z4_test : public usb_test
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
	usb_bytes request(const std::string &text)
	{
		const usb_bytes payload = bytes(text);
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
	EXPECT_EQ(ask("10 07 00 F0 47 5F 00 04 04 F7"), bytes("F0 47 5F 00 52 04 04 00 01 F7"));
	EXPECT_TRUE(ask("10 08 00 F0 47 5F 00 04 04 F7").empty()); // a wrong count
	EXPECT_TRUE(ask("10 07 00 F0 47 5E 00 04 04 F7").empty()); // another model
	EXPECT_EQ(ask("10 07 00 F0 47 5F 00 7E 04 F7"), bytes("F0 47 5F 00 45 7E 04 00 00 F7"));
}

TEST_F(z4_test, tells_name_and_version_where_each_kind_of_session_looks_for_them)
{
	// looking for machines: two wake-ups, confirmations off, name
	wake();
	write("03 01");
	EXPECT_EQ(ask("10 08 00 F0 47 5F 00 00 01 00 F7"), bytes("F0 47 5F 00 44 00 01 F7"));
	EXPECT_EQ(ask("10 07 00 F0 47 5F 00 07 01 F7"),
		bytes("F0 47 5F 00 52 07 01 00 42 69 67 00 F7"));
	// asking for its status: one wake-up, confirmations off
	write("03 01");
	request("00 01 00");
	EXPECT_EQ(request("04 00"), bytes("F0 47 5F 00 52 04 00 00 00 02 0A F7"));
	EXPECT_EQ(request("07 01"), bytes("F0 47 5F 00 52 07 01 00 00 42 69 67 00 F7"));
	// showing it: one wake-up alone
	write("03 01");
	EXPECT_EQ(request("04 00"), bytes("F0 47 5F 00 52 04 00 00 02 0A F7"));
	EXPECT_EQ(request("00 06 01 5A 00"), bytes("F0 47 5F 00 44 00 06 F7"));
	EXPECT_EQ(machine.name, "Z");
}

TEST_F(z4_test, lists_programs_by_handle_and_works_on_the_selected_one)
{
	wake();
	EXPECT_EQ(request("14 01"), bytes("F0 47 5F 00 52 14 01 00 02 00 00 00 F7"));
	EXPECT_EQ(request("14 02 02"),
		bytes("F0 47 5F 00 52 14 02 00 04 01 01 01 01 08 53 54 52 49 4E 47 53 00 "
		      "04 02 01 01 01 08 4B 49 54 00 F7"));
	EXPECT_EQ(request("14 03 02 01 01 01"), bytes("F0 47 5F 00 44 14 03 F7"));
	EXPECT_EQ(request("14 06"), bytes("F0 47 5F 00 52 14 06 00 4B 49 54 00 F7"));
	EXPECT_EQ(request("14 03 03 01 01 01")[4], 'E');
	EXPECT_EQ(request("16 10 20")[4], 'D');
	EXPECT_EQ(request("17 10"), bytes("F0 47 5F 00 52 17 10 00 20 F7"));
	// one keygroup; a second one is added
	EXPECT_EQ(request("10 01 01"), bytes("F0 47 5F 00 45 10 01 00 03 F7"));
	EXPECT_EQ(request("14 41 01")[4], 'D');
	EXPECT_EQ(request("10 01 01"), bytes("F0 47 5F 00 44 10 01 F7"));
	EXPECT_EQ(request("10 02"), bytes("F0 47 5F 00 52 10 02 00 01 F7"));
	EXPECT_EQ(request("12 04 30")[4], 'D');
	EXPECT_EQ(request("13 04"), bytes("F0 47 5F 00 52 13 04 00 30 F7"));
	EXPECT_EQ(machine.programs[1].keygroups[1].low_note, 48);
	EXPECT_EQ(request("14 04 53 54 52 49 4E 47 53 00")[4], 'D');
	EXPECT_EQ(request("14 0C 56 58 00")[4], 'D');
	EXPECT_EQ(machine.programs[0].name, "VX");
	EXPECT_EQ(request("14 0A")[4], 'D');
	EXPECT_EQ(machine.programs[0].name, "KIT");
}

TEST_F(z4_test, has_as_many_zones_as_a_keygroup_has)
{
	machine.programs[0].keygroups[0].zones.resize(2);
	wake();
	EXPECT_EQ(request("0E 01 02 4B 49 43 4B 00")[4], 'D');
	EXPECT_EQ(request("0F 01 02"), bytes("F0 47 5F 00 52 0F 01 00 4B 49 43 4B 00 F7"));
	EXPECT_EQ(request("0E 02 02 01 48 01")[4], 'D'); // minus 200
	EXPECT_EQ(request("0F 02 02"), bytes("F0 47 5F 00 52 0F 02 00 01 48 01 F7"));
	EXPECT_EQ(request("0F 01 03"), bytes("F0 47 5F 00 45 0F 01 00 03 F7"));
}

TEST_F(z4_test, tells_the_facts_of_a_sample_and_deletes_it_in_the_older_words)
{
	wake();
	EXPECT_EQ(request("1C 02 01"), bytes("F0 47 5F 00 52 1C 02 00 04 4B 49 43 4B 00 F7"));
	EXPECT_EQ(request("1C 04 4B 49 43 4B 00")[4], 'D');
	EXPECT_EQ(request("1C 05"), bytes("F0 47 5F 00 52 1C 05 00 01 03 00 00 F7")); // 181
	EXPECT_EQ(request("1F 51"), bytes("F0 47 5F 00 52 1F 51 00 44 58 02 F7"));    // 44100
	EXPECT_EQ(request("1F 21"), bytes("F0 47 5F 00 52 1F 21 00 00 00 00 00 04 F7"));
	EXPECT_EQ(request("1F 50"), bytes("F0 47 5F 00 52 1F 50 00 00 00 00 04 F7"));
	EXPECT_EQ(request("1F 52"), bytes("F0 47 5F 00 52 1F 52 00 10 F7"));
	EXPECT_EQ(request("0E 05 4B 49 43 4B 00")[4], 'D');
	EXPECT_EQ(request("0E 08")[4], 'D');
	EXPECT_TRUE(machine.samples.empty());
	EXPECT_EQ(request("1F 52")[4], 'E');
}

TEST_F(z4_test, sends_and_takes_samples_with_lengths_of_eight_bytes)
{
	machine.block_sizes = { 128 };
	wake();
	write("21 00 00 01 81");
	EXPECT_EQ(read(8), bytes("00 00 00 00 00 00 00 90"));
	const usb_bytes header = read(144);
	machine.busy = 1;
	write("00");
	EXPECT_EQ(read(8), bytes("41 6B 61 49"));
	EXPECT_EQ(read(8), bytes("00 00 00 00 00 00 00 08"));
	usb_bytes file = header;
	const usb_bytes sound = read(8);
	file.insert(file.end(), sound.begin(), sound.end());
	EXPECT_EQ(file, machine.samples[0].wave);
	write("00");
	read(8);
	EXPECT_EQ(read(8), bytes("00*8"));

	// the same file back under another name: 152 bytes in two blocks of 128
	machine.busy = 0;
	machine.end_phase = { bytes("01 02 03"), bytes("00 00 00 00 01") };
	machine.end_busy = 1;
	file.resize(256, 0xEE);
	write("20 00 00 00 98 42 2E 77 61 76");
	EXPECT_EQ(read(64), bytes("00 00 00 01 00 00 00 80"));
	write(usb_bytes(file.begin(), file.begin() + 128));
	write("00");
	EXPECT_EQ(read(64), bytes("00 00 00 02 00 00 00 80"));
	write(usb_bytes(file.begin() + 128, file.end()));
	write("00");
	EXPECT_EQ(read(64), bytes("00 00 00 03 00 00 00 00"));
	EXPECT_EQ(read(64), bytes("41 6B 61 49"));
	EXPECT_EQ(read(64), bytes("01 02 03"));
	EXPECT_EQ(read(64), bytes("00 00 00 00 01"));
	ASSERT_EQ(machine.samples.size(), 2u);
	EXPECT_EQ(machine.samples[1].name, "B");
	EXPECT_EQ(machine.samples[1].wave, machine.samples[0].wave);
}

TEST_F(z4_test, can_be_busy_for_ever_and_send_lone_ends)
{
	machine.stray_end = true;
	wake();
	EXPECT_EQ(request("04 04"), bytes("F7"));
	EXPECT_EQ(read(), bytes("F0 47 5F 00 52 04 04 00 01 F7"));
	machine.busy = -1;
	write("20 00 00 00 98 42 2E 77 61 76");
	for (int i = 0; i < 100; i++)
		ASSERT_EQ(read(64), bytes("41 6B 61 49"));
	machine.busy = 0;
	write("03 01");
	request("04 04");
	EXPECT_EQ(read()[4], 'R');
}

TEST_F(usb_test, an_mpc_is_awake_and_forgets_its_answers_when_told)
{
	z4 machine(z4_model::mpc4000);
	plug(machine);
	EXPECT_EQ(ask("10 07 00 F0 47 5F 00 04 04 F7"), bytes("F0 47 5F 00 52 04 04 00 02 F7"));
	write("01 00");
	write("FF");
	EXPECT_EQ(read(), bytes("00 00 00 00"));
	write("01 00");
	EXPECT_EQ(read(16384).size(), 9600u);
	EXPECT_EQ(read().size(), 18u);
	unplug_all_usb();
}

TEST_F(usb_test, the_demo_holds_samples_for_every_zone)
{
	s5000 big;
	fill_demo(big);
	EXPECT_EQ(big.programs.size(), 5u);
	const auto present = [&big](const std::string &wanted) {
		for (const usb_sample &s : big.samples)
			if (s.name == wanted)
				return true;
		return false;
	};
	for (s5000_program &p : big.programs)
		for (s5000_keygroup &k : p.keygroups) {
			EXPECT_LE(k.at(0x04)[0], k.at(0x05)[0]) << p.name;
			for (const s5000_zone &z : k.zones)
				EXPECT_TRUE(z.sample.empty() || present(z.sample)) << z.sample;
		}
	for (const usb_sample &s : big.samples) {
		wave_facts facts;
		ASSERT_TRUE(read_wave(s.wave, &facts)) << s.name;
		EXPECT_EQ(facts.rate, 44100u);
		EXPECT_GT(facts.frames, 4000u) << s.name;
	}
	z4 small(z4_model::z8);
	fill_demo(small);
	EXPECT_EQ(small.programs.size(), 5u);
	EXPECT_EQ(small.programs[4].keygroups[1].zones[1].level,
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
	EXPECT_EQ(read(9), bytes("F0 47 5E 00 00 00 52 0A 19"));
	EXPECT_EQ(read(3), bytes("50 49 41"));
	ASSERT_EQ(virtual_usb.reset_pipe(handle, 0x82), usb_ok); // the rest of the packet is lost
	EXPECT_TRUE(read().empty());
	EXPECT_EQ(last_read, usb_timeout);
}

TEST_F(s5000_test, plays_up_when_it_is_told_to)
{
	wake();
	const usb_bytes right = bytes("F0 47 5E 00 00 00 52 02 00 02 0A F7");
	const std::string question = "10 0A 00 F0 47 5E 20 00 00 02 00 02 F7";

	machine.strike(usb_fault::answer_missing, 2);
	EXPECT_EQ(ask(question), right);
	EXPECT_TRUE(ask(question).empty());
	EXPECT_EQ(last_read, usb_timeout);
	machine.strike(usb_fault::answer_short).bytes = 5;
	EXPECT_EQ(ask(question), bytes("F0 47 5E 00 00"));
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
	wake();
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
