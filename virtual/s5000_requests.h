// s5000_requests.h - what a virtual S5000 does when it is asked

#pragma once
#include "virtual/s5000.h"

namespace velmor
{

// The reasons of an "E" answer.
enum : std::uint8_t {
	s5000_unknown = 0,
	s5000_bad_length = 1,
	s5000_bad_value = 2,
	s5000_not_found = 3,
	s5000_bad_sum = 4,
	s5000_full = 5,
};

enum class s5000_form {
	bytes,      // `count` of them, each below 80
	text,       // a text with its NUL
	loose_text, // the NUL may be missing
	zone_text,  // a zone, then a text
	block,      // groups of four, the last may lack its fourth
};

struct s5000_arguments {
	usb_bytes bytes;
	std::string text;
};

struct s5000_outcome {
	char status;
	usb_bytes data;
};

struct s5000_request {
	std::uint8_t section, item;
	s5000_form form;
	std::size_t count;
	s5000_outcome (*run)(s5000 &machine, const s5000_arguments &arguments);
};

extern const std::span<const s5000_request> s5000_request_rows;

bool s5000_take_arguments(
	const s5000_request &r, std::span<const std::uint8_t> bytes, s5000_arguments *a);
s5000_outcome s5000_refuse(std::uint8_t reason);

// One parameter of a keygroup in block requests.
struct s5000_block_item {
	std::uint8_t read, write;
	std::uint8_t subs; // 0: it has no sub-index
	bool has_sign;
};
extern const std::array<s5000_block_item, s5000_block_rows> s5000_block_items;

s5000_outcome s5000_block_request(s5000 &machine, const s5000_arguments &a);

} // namespace velmor
