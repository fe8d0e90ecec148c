// akaiusb_info.h - the parameters of a sample, and its name, on all USB samplers
//
// Called by the drivers of the S5000/6000, Z4/Z8 and MPC 4000.
// Knows nothing of: the requests of a model, which it gets as a table.

#pragma once
#include "src/akaiusb.h"
#include "src/parameters.h"

namespace velmor
{

// One value of a sample, and the request that asks for it.
struct sample_request {
	u8 section, item;
	int offset; // of the value in the answer
	const conversion *form;
	member<_sample> field;
	const char *log_word; // of "[D] %s: %d\n", or null
	const char *failure;  // of "[F] %s (%s:%d) SYSEX"
};
struct sample_info_model {
	u8 select_section, select_item;
	const char *selected_log; // or null
	std::span<const sample_request> before_length;
	sample_request length; // of the sample, in words; stored divided by the rate
	sample_request pitch;
	u32 bits; // set without asking; 0: asked
};
void read_sample_info(const sample_info_model &model, const char *samplename);

// Rename, or delete with newname null; the Z4 takes the same requests.
void rename_usb_sample(
	u8 exclusive_channel, u8 sysex_channel, const char *oldname, const char *newname);

} // namespace velmor
