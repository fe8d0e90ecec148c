// s5000.h - a virtual S5000 or S6000 on USB
//
//   to the machine    10 len*2 F0 47 5E 2c 00 00 section item arguments sum F7
//   from it           F0 47 5E 0c 00 00 status section item data F7
//
// len counts, low byte first, what follows it; c is the exclusive channel, 0 for any;
// sum adds everything from the section on, in seven bits. status is "D" done, "R" reply
// with data (from offset 9), "O" heard and working on it, "E" refused, with a reason.
//
// What is wrong in form (length, header, channel) is not answered at all. A wrong sum is
// refused until sums are switched off (00 04 00); the byte is always there. A request of
// wrong length or with a value the machine does not have is refused and changes nothing.
// A block request for a keygroup that does not exist is refused as a whole.
//
// Section 20 is the front panel's (screen_keys.h), 10 the disks' (disks.h).
//
// Wake-up: 03 14, then 04 03. It also breaks off a transfer.
//
// The contents are the machine's own bytes: a signed value is its sign (1 minus) and its
// size, a long one has its size in two bytes of seven bits, high first.

#pragma once
#include "virtual/usb_sampler.h"
#include <array>

namespace velmor
{

inline constexpr int s5000_zones = 4;
inline constexpr int s5000_most_keygroups = 99;
inline constexpr int s5000_block_rows = 26;

struct s5000_zone {
	std::string sample;
	// By the item that writes it, 02 to 0E; item 01 is the name.
	std::array<std::array<std::uint8_t, 3>, 15> value = {};
	s5000_zone();
	bool operator==(const s5000_zone &) const = default;
};

struct s5000_keygroup {
	// By its row in the table of block items, and by sub-index.
	std::array<std::array<std::array<std::uint8_t, 2>, 3>, s5000_block_rows> value = {};
	std::array<std::uint8_t, 4> amp = { 0, 50, 100, 20 }; // attack, decay, sustain, release
	std::array<std::uint8_t, 4> aux_rate = {}, aux_level = {};
	std::array<s5000_zone, s5000_zones> zones;
	s5000_keygroup();
	// The value that block requests write with that item; sub-index from 1.
	std::array<std::uint8_t, 2> &at(std::uint8_t write_item, int sub = 1);
	bool operator==(const s5000_keygroup &) const = default;
};

struct s5000_program {
	std::string name;
	std::vector<s5000_keygroup> keygroups;
	bool operator==(const s5000_program &) const = default;
};

class s5000 : public usb_sampler
{
public:
	s5000();
	~s5000() override;

	bool is_s6000 = false;
	std::vector<s5000_program> programs;
	std::vector<std::string> multis;
	int current_program = 0, current_keygroup = 0;
	bool sums_checked = true;
	// Byte of the "O" message that holds the O: 6 as in every answer, or 5, then both.
	int confirm_at = 6;

	void plugged_in() override;

protected:
	bool heard_wake_up(std::span<const std::uint8_t> message) override;
	void heard_frame(std::span<const std::uint8_t> frame) override;
	void heard_raw(std::span<const std::uint8_t> message) override;
	int find_handle(std::span<const std::uint8_t> handle) const override;
	std::size_t handle_size() const override { return 2; }
	std::size_t length_answer_size() const override { return 4; }
	std::string name_of_upload(std::string told) const override { return told; }
	void store_upload(usb_sample sample) override;
	std::size_t first_block_bytes() const override { return 144; }
	void upload_is_over() override {}

private:
	friend struct s5000_requests;
	std::array<std::uint8_t, 2> asked = {}; // section and item of the request at hand
	void answer_with(char status, std::span<const std::uint8_t> data, double longer = 0);
	void run(std::span<const std::uint8_t> payload);
};

} // namespace velmor
