// akaikept.cpp - which family keeps programs and samples in which way

#include "src/akaikept.h"
#include "src/akais1000.h"
#include "src/akais5000.h"
#include "src/akais900.h"
#include "src/akaiusb.h"
#include "src/akaiz4.h"
#include <algorithm>

namespace velmor
{

int listed_sample(const std::string &name)
{
	const _dev_status *dev = current_sampler ? current_sampler->status : nullptr;
	for (int i = 0; dev && i < std::clamp(dev->samples, 0, max_samples); i++)
		if (name == dev->sample[i].name)
			return i;
	return -1;
}

// A packet of 40 words with its request, and a block of 60 with its answer, at 31250 baud.
static constexpr double s1000_word = (127 + 18) / 40.0 / 3125, s900_word = (122 + 4) / 60.0 / 3125;

// A download from a device that does not open ends the program, so it is tried first.
static bool device_opens()
{
	return static_cast<bool>(open_loaded_usbdev());
}

static constexpr kept_family s1000_family = {
	.read_program = akai_s1000_read_kept_program,
	.write_program = akai_s1000_write_kept_program,
	.read_header = akai_s1000_read_kept_header,
	.write_header = nullptr,
	.send_sample = akai_s1000_send_kept_sample,
	.replaced = listed_sample,
	.reachable = nullptr,
	.endangers_next = true,
	.seconds_per_word = s1000_word,
	.creates_programs = true,
	.new_programs = nullptr,
};

static constexpr kept_family s900_family = {
	.read_program = akai_s900_read_kept_program,
	.write_program = akai_s900_write_kept_program,
	.read_header = akai_s900_read_kept_header,
	.write_header = akai_s900_write_kept_header,
	.send_sample = nullptr,
	.replaced = akai_s900_replaced,
	.reachable = nullptr,
	.endangers_next = false,
	.seconds_per_word = s900_word,
	.creates_programs = true,
	.new_programs = nullptr,
};

static constexpr kept_family s5000_family = {
	.read_program = akai_s5000_read_kept_program,
	.write_program = nullptr,
	.read_header = nullptr,
	.write_header = nullptr,
	.send_sample = nullptr,
	.replaced = listed_sample,
	.reachable = device_opens,
	.endangers_next = false,
	.seconds_per_word = 0,
	.creates_programs = true,
	.new_programs =
		own("Undo makes it anew from the parameters that this program reads; everything "
		    "else in it comes back as the sampler presets it."),
};

static constexpr kept_family z4_family = {
	.read_program = akai_z4_read_kept_program,
	.write_program = nullptr,
	.read_header = nullptr,
	.write_header = nullptr,
	.send_sample = nullptr,
	.replaced = listed_sample,
	.reachable = device_opens,
	.endangers_next = false,
	.seconds_per_word = 0,
	.creates_programs = false,
	.new_programs = nullptr,
};

const kept_family *kept_family_of(const _sampler_type &model)
{
	struct family_row {
		void (*saveprogram)(i32 program, _program *source);
		const kept_family *family;
	};
	static constexpr family_row rows[] = {
		{ akai_s1000_prog_save, &s1000_family },
		{ akai_s900_save_program, &s900_family },
		{ akai_s5000_program_save, &s5000_family },
		{ akai_z4_saveprogram, &z4_family },
	};
	for (const family_row &row : rows)
		if (row.saveprogram == model.saveprogram)
			return row.family;
	return nullptr;
}

} // namespace velmor
