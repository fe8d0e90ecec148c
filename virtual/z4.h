// z4.h - a virtual Z4, Z8 or MPC 4000 on USB
//
//   to the machine    10 len*2 F0 47 5F channel section item arguments F7
//   from it           F0 47 5F channel status section item 00 data F7
//
// len counts, low byte first, what follows it; there is no sum. status is "D" done, "R"
// reply with data (from offset 8), "O" heard and working on it, "E" refused, with a reason.
// Start and end of a sample stand one byte further, and so do names of files. So do the version
// and the name, or not: a setting, since a host has to find them in both places. The size of a
// file is asked and told as an S5000 does, with two zeros before the status.
//
// What is wrong in form is not answered at all. A request of wrong length or with a value
// the machine does not have is refused and changes nothing.
//
// Section 2C is the front panel's (screen_keys.h), 20 the disks' (disks.h).
//
// Wake-up: 03 01, as often as one likes. It also breaks off a transfer. The MPC 4000 is
// awake from the start.
//
// Programs have handles of 28 bits. Numbers travel low group first, but those of a
// sample's start, end and length high group first. Keygroups count from 0, zones from 1.

#pragma once
#include "virtual/usb_sampler.h"
#include <array>

namespace velmor
{

inline constexpr std::size_t z4_most_zones = 4, z4_most_keygroups = 128;

struct z4_zone {
	std::string sample;
	std::array<std::uint8_t, 3> level = {}; // sign, low, high: tenths of a decibel
	bool operator==(const z4_zone &) const = default;
};

struct z4_keygroup {
	std::uint8_t low_note = 0, high_note = 127;
	std::vector<z4_zone> zones = std::vector<z4_zone>(z4_most_zones);
	bool operator==(const z4_keygroup &) const = default;
};

struct z4_program {
	std::string name;
	std::vector<z4_keygroup> keygroups;
	std::uint8_t polyphony = 64, reassignment = 0;
	std::uint32_t handle = 0; // given by the machine
	bool operator==(const z4_program &) const = default;
};

enum class z4_model : std::uint8_t {
	z4 = 0,
	z8 = 1,
	mpc4000 = 2
};

class z4 : public usb_sampler
{
public:
	explicit z4(z4_model which = z4_model::z4);
	~z4() override;

	void add_program(std::string program_name, std::vector<z4_keygroup> keygroups);
	std::vector<z4_program> programs;
	int current_program = 0, current_keygroup = 0;
	bool stray_end = false;  // a lone F7 before each answer
	std::size_t told_at = 9; // offset of version and name, 8 or 9
	// What comes after the last block of an upload. Five bytes end it.
	std::vector<usb_bytes> end_phase = { { 0, 0, 0, 0, 1 } };
	int end_busy = 0; // so many "AkaI" before them; endlessly if negative

	void plugged_in() override;

protected:
	bool heard_wake_up(std::span<const std::uint8_t> message) override;
	void heard_frame(std::span<const std::uint8_t> frame) override;
	void heard_raw(std::span<const std::uint8_t> message) override;
	int find_handle(std::span<const std::uint8_t> handle) const override;
	std::size_t handle_size() const override { return 4; }
	std::size_t length_answer_size() const override { return 8; }
	std::string name_of_upload(std::string told) const override;
	void store_upload(usb_sample sample) override;
	std::size_t first_block_bytes() const override { return 0; }
	void upload_is_over() override;

private:
	friend struct z4_requests;
	const z4_model model;
	std::uint32_t next_program_handle = 0x0204081; // a bit in each group of seven
	std::array<std::uint8_t, 2> asked = {};
	std::size_t data_offset() const;
	void answer_with(char status, std::span<const std::uint8_t> data, double longer = 0);
	void run(std::span<const std::uint8_t> payload);
};

} // namespace velmor
