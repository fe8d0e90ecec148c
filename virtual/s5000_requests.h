// s5000_requests.h - what a virtual S5000 does when it is asked

#pragma once
#include "virtual/s5000.h"
#include "virtual/usb_requests.h"

namespace velmor
{

using s5000_request = machine_request<s5000>;
extern const std::span<const s5000_request> s5000_request_rows;

// One parameter of a keygroup in block requests.
struct s5000_block_item {
	std::uint8_t read, write;
	std::uint8_t subs; // 0: it has no sub-index
	bool has_sign;
};
extern const std::array<s5000_block_item, s5000_block_rows> s5000_block_items;

request_outcome s5000_block_request(s5000 &machine, const request_arguments &a);

} // namespace velmor
