// test_virtual_disks.cpp - what virtual USB samplers tell of their disks, and what they refuse
//
// The bytes are worked out by hand. An answer of the S5000 is F0 47 5E 00 00 00 status, section
// and item of the request, data, F7; one of the Z8 is F0 47 5F 00 status, section, item, 00,
// data, F7, but for the name of a file, which has one 00 more, and the size of a file, which has
// two 00 in front of its status and none behind.

#include "tests/support/test_host.h"
#include "virtual/demo_disks.h"
#include "virtual/demo_usb.h"
#include <sstream>

namespace velmor
{

// Bytes in hexadecimal, and 'text'.
static usb_bytes bytes_of(const std::string &text)
{
	usb_bytes bytes;
	std::istringstream parts(text);
	bool quoted = false;
	for (std::string part; std::getline(parts, part, '\''); quoted = !quoted) {
		const usb_bytes more = quoted ? usb_bytes(part.begin(), part.end()) : hex(part);
		bytes.insert(bytes.end(), more.begin(), more.end());
	}
	return bytes;
}

struct asked {
	const char *request, *answer;
};

// One machine and its frames, without a bus between it and the host.
struct line {
	usb_machine &machine;
	const char *to, *from; // what stands before a request and before the status
	bool has_sum;

	usb_bytes say(const usb_bytes &message) const
	{
		machine.outbox.clear();
		machine.take(message, true);
		return machine.outbox.empty() ? usb_bytes() : machine.outbox.back().bytes;
	}
	usb_bytes ask(const std::string &request) const
	{
		usb_bytes frame = hex(to);
		unsigned sum = 0;
		for (std::uint8_t b : bytes_of(request))
			frame.push_back(b), sum += b;
		if (has_sum)
			frame.push_back(sum & 0x7F);
		frame.push_back(0xF7);
		frame[1] = static_cast<std::uint8_t>(frame.size() - 3);
		return say(frame);
	}
	void talk(std::initializer_list<asked> rows) const
	{
		for (const asked &row : rows)
			EXPECT_EQ(
				ask(row.request), bytes_of(std::string(from) + row.answer + " F7"))
				<< row.request;
	}
};

class virtual_disks : public ::testing::Test
{
protected:
	s5000 big;
	z4 small{ z4_model::z8 };
	const line to_big = { big, "10 00 00 F0 47 5E 20 00 00", "F0 47 5E 00 00 00 ", true };
	const line to_small = { small, "10 00 00 F0 47 5F 00", "F0 47 5F 00 ", false };

	void switch_on()
	{
		big.plugged_in(), small.plugged_in();
		to_big.say(hex("03 14")), to_big.say(hex("04 03")), to_small.say(hex("03 01"));
	}
	virtual_disks()
	{
		disk_folder many = { "Many", {}, {} };
		for (unsigned i = 0; i < 200; i++)
			many.files.push_back({ "File " + std::to_string(i), i });
		const disk_folder drums = { "DRUMS",
			{ { "Kit 1", {}, {} }, { "b/\\\xC4", {}, {} } },
			{ { "", 0x0FFFFFFF }, { "kick\x07.wav", 0x81 } } };
		for (disk_rack *d : { &big.disks, &small.disks })
			d->volumes = { { 130, 1, 2, 3, 1, "WORK", { drums, many } },
				{ 5, 2, 3, 6, 0, "CD", { { "A", {}, {} } }, { { "a.akp", 1 } } } };
		switch_on();
	}
};

// clang-format off
TEST_F(virtual_disks, of_an_s5000)
{
	to_big.talk({
		{ "10 10", "45 10 10 03" }, { "10 13 00", "45 10 13 03" }, // no volume is chosen
		{ "10 04", "52 10 04 02" },
		{ "10 05", "52 10 05 01 02 01 02 03 01 'WORK' 00 00 05 02 03 06 00 'CD' 00" },
		{ "10 02 02 01", "45 10 02 03" }, { "10 02 01 02", "44 10 02" },
		{ "10 10", "52 10 10 00 02" }, { "10 20", "52 10 20 00 00" },
		{ "10 11 00 01", "52 10 11 'Many' 00" }, { "10 11 00 02", "45 10 11 03" },
		{ "10 13 'kit 1' 00", "45 10 13 03" }, // it is not here
		{ "10 13 'many' 00", "44 10 13" }, { "10 20", "52 10 20 01 48" },
		{ "10 21 01 47", "52 10 21 'File 199' 00" }, { "10 23 01 47", "52 10 23 00 00 01 47" },
		{ "10 21 01 48", "45 10 21 03" }, { "10 23 01 48", "45 10 23 03" },
		{ "10 21 47 01", "45 10 21 03" },
		{ "10 13 'drums' 00", "45 10 13 03" }, // nor here
		{ "10 13 00", "44 10 13" }, { "10 13 'drums' 00", "44 10 13" },
		{ "10 21 00 00", "52 10 21 00" }, { "10 23 00 00", "52 10 23 7F 7F 7F 7F" },
		{ "10 23 00 01", "52 10 23 00 00 01 01" }, { "10 21 00 01", "52 10 21 'kick' 07 '.wav' 00" },
		{ "10 11 00 01", "52 10 11 'b/\\' C4 00" }, { "10 13 'b/\\' C4 00", "44 10 13" },
		{ "10 10", "52 10 10 00 00" },
		{ "10 02 01 02", "44 10 02" }, { "10 10", "52 10 10 00 00" }, // stands where it stood
		{ "10 02 00 05", "44 10 02" }, { "10 20", "52 10 20 00 01" }, // and here at the root
	});
}

TEST_F(virtual_disks, of_a_z8)
{
	to_small.talk({
		{ "20 04", "52 20 04 00 02" },
		{ "20 05", "52 20 05 00 02 01 01 02 03 01 'WORK' 00 05 00 02 03 06 00 'CD' 00" },
		{ "20 02 01 02", "45 20 02 00 03" }, { "20 02 02 01", "44 20 02" },
		{ "20 10", "52 20 10 00 00 02" }, { "20 11 01 00", "52 20 11 00 'Many' 00" },
		{ "20 13 'many' 00", "44 20 13" }, { "20 20", "52 20 20 00 01 48" },
		{ "20 21 47 01", "52 20 21 00 00 'File 199' 00" }, { "20 21 01 47", "45 20 21 00 00 03" },
		{ "10 23 01 47", "00 00 52 10 23 00 00 01 47" }, { "10 23 47 01", "00 00 45 10 23 03" },
		{ "20 23 01 47", "45 20 23 00 00" }, { "10 04", "45 10 04 00 00" },
		{ "20 13 'x' 00", "45 20 13 00 03" }, { "20 20", "52 20 20 00 01 48" },
		{ "20 13 00", "44 20 13" }, { "20 20", "52 20 20 00 00 00" },
	});
}

// Form: counts of bytes, the NUL and what is behind it, bytes of eight bits where a number is.
TEST_F(virtual_disks, what_has_not_its_form_is_refused_and_changes_nothing)
{
	to_big.ask("10 02 01 02");
	to_big.ask("10 13 'drums' 00");
	to_big.talk({
		{ "10 02 01", "45 10 02 01" }, { "10 02 01 02 00", "45 10 02 01" },
		{ "10 02 81 02", "45 10 02 01" }, { "10 04 00", "45 10 04 01" },
		{ "10 05 00", "45 10 05 01" }, { "10 13", "45 10 13 01" },
		{ "10 13 'kit 1'", "45 10 13 01" }, { "10 13 'kit 1' 00 00", "45 10 13 01" },
		{ "10 10 00", "45 10 10 01" }, { "10 21 00", "45 10 21 01" },
		{ "10 23 00 00 00", "45 10 23 01" }, { "10 14", "45 10 14 00" },
		{ "10 20", "52 10 20 00 02" },
	});
}

// clang-format on
TEST_F(virtual_disks, of_machines_that_are_slow_or_lie)
{
	to_big.ask("10 02 00 05");
	big.disks.volumes_told = 127, big.disks.folders_told = 16383, big.disks.files_told = 0;
	big.disks.list_ends = 15, big.disks.bare_names = true, big.disks.latency = 2;
	to_big.talk({
		{ "10 04", "52 10 04 7F" },
		{ "10 05", "52 10 05 01 02 01 02 03 01 'WORK' 00 00 05 02 03" },
		{ "10 10", "52 10 10 7F 7F" },
		{ "10 11 00 00", "52 10 11 'A'" },
		{ "10 11 00 01", "45 10 11 03" },
		{ "10 20", "52 10 20 00 00" },
		{ "10 23 00 00", "52 10 23 00 00 00 01" },
	});
	EXPECT_NEAR(big.outbox.back().delay, 2 + big.latency, 1e-9);
	to_big.ask("02 03");
	EXPECT_NEAR(big.outbox.back().delay, big.latency, 1e-9) << "no disk is asked for its name";
	// The disc is taken out while the machine stands on it; then the machine is switched off.
	big.disks.volumes[1].ejected = true;
	to_big.talk({ { "10 10", "45 10 10 03" }, { "10 13 00", "45 10 13 03" },
		{ "10 02 00 05", "45 10 02 03" }, { "10 02 01 02", "44 10 02" } });
	switch_on();
	to_big.talk({ { "10 10", "45 10 10 03" } });
}

TEST_F(virtual_disks, of_the_demo)
{
	fill_demo(big);
	to_big.ask("10 02 01 02");
	to_big.ask("10 13 'grand piano' 00");
	to_big.talk({ { "10 20", "52 10 20 01 48" },
		{ "10 21 01 47", "52 10 21 'Grand C7 v8.wav' 00" } });
}

} // namespace velmor
