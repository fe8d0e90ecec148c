// test_model_table.cpp - the table of models, its look-ups, and the names of notes

#include "src/resource.h"
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace velmor
{

struct model_row {
	const char *brand;
	i32 id;
	u8 flags;
	i32 keyzones;
	u32 pixels, control, width, height;
	i32 userlevel;
};

TEST(model_table, holds_what_each_model_is)
{
	static const model_row rows[] = {
		{ "Generic", 0, 0x00, 0, 0, 0, 0, 0, 0 },
		{ "Akai S900/950", 1000, 0x00, 2, 0, 0, 0, 0, 0 },
		{ "Akai S1000, S1100", 1001, 0x00, 4, 0, 0, 0, 0, 0 },
		{ "Akai S2000", 1005, 0x01, 4, 0, 0, 0, 0, 0 },
		{ "Akai S2800", 1006, 0x01, 4, 0, 0, 0, 0, 0 },
		{ "Akai S3000/S3000XL", 1007, 0x01, 4, 0, 0, 0, 0, 0 },
		{ "Akai S3200", 1007, 0x01, 4, 0, 0, 0, 0, 0 },
		{ "Akai S5000/6000", 1002, 0x0F, 4, 9600, 18, 320, 240, 0 },
		{ "Akai Z4/Z8", 1003, 0x0F, 4, 1860, 18, 248, 60, 0 },
		{ "Akai MPC 4000", 1004, 0x0F, 4, 9600, 18, 320, 240, 0 },
		{ nullptr, -1, 0xFF, 0, 0, 0, 0, 0, 2 },
	};
	ASSERT_EQ(std::size(rows), std::size(sampler_type));
	for (std::size_t i = 0; i < std::size(rows); i++) {
		const _sampler_type &row = sampler_type[i];
		EXPECT_STREQ(row.sampler_brand, rows[i].brand);
		EXPECT_EQ(row.sampler_type, rows[i].id) << i;
		EXPECT_EQ(row.sampler_flags, rows[i].flags) << i;
		EXPECT_EQ(row.default_keyzones, rows[i].keyzones) << i;
		EXPECT_EQ(row.lcd_pixel_data_length, rows[i].pixels) << i;
		EXPECT_EQ(row.lcd_control_data_length, rows[i].control) << i;
		EXPECT_EQ(row.lcd_width, rows[i].width) << i;
		EXPECT_EQ(row.lcd_height, rows[i].height) << i;
		EXPECT_EQ(row.userlevel, rows[i].userlevel) << i;
		// One bit a pixel.
		EXPECT_EQ(row.lcd_pixel_data_length * 8, row.lcd_width * row.lcd_height) << i;
	}
}

TEST(model_table, look_ups_stop_at_the_terminator)
{
	EXPECT_EQ(get_sampler_type_count(), 10);
	EXPECT_EQ(get_sampler(1005), &sampler_type[3]);
	EXPECT_EQ(get_sampler(1007), &sampler_type[5]);
	EXPECT_EQ(get_sampler(-1), nullptr);
	EXPECT_EQ(get_sampler(999), nullptr);
	EXPECT_EQ(get_sampler_brand_id(2), 1001);
	for (const i32 index : { 10, 11, 0x7FFFFFFF, -1 })
		EXPECT_EQ(get_sampler_brand_id(index), 0) << index;
	EXPECT_EQ(get_sampler_brand_index(1007), 5);
	EXPECT_EQ(get_sampler_brand_index(1234), 0);
	EXPECT_EQ(get_sampler_brand_index(get_sampler_brand_id(2)), 2);
	EXPECT_EQ(get_sampler_brand_index(get_sampler_brand_id(6)), 5);
}

TEST(model_table, the_twins_hold_the_same_operations)
{
	for (int i : { 4, 5, 6 }) {
		_sampler_type twin = sampler_type[3], row = sampler_type[i];
		EXPECT_EQ(twin.getstatus, row.getstatus);
		EXPECT_EQ(twin.getproglist, row.getproglist);
		EXPECT_EQ(twin.getsamplelist, row.getsamplelist);
		EXPECT_EQ(twin.getmultilist, row.getmultilist);
		EXPECT_EQ(twin.renamesample, row.renamesample);
		EXPECT_EQ(twin.downloadsample, row.downloadsample);
		EXPECT_EQ(twin.infosample, row.infosample);
		EXPECT_EQ(twin.uploadsample, row.uploadsample);
		EXPECT_EQ(twin.getplaymode, row.getplaymode);
		EXPECT_EQ(twin.saveprogram, row.saveprogram);
		EXPECT_EQ(twin.deleteprogram, row.deleteprogram);
		EXPECT_EQ(twin.renameprogram, row.renameprogram);
		EXPECT_EQ(twin.del_keygroup, row.del_keygroup);
	}
}

TEST(model_table, slots_that_no_model_has_are_empty_everywhere)
{
	for (const _sampler_type &row : sampler_type) {
		EXPECT_FALSE(row.assignqlink || row.assignqlink_callback);
		const bool panel = row.sampler_flags != 0xFF && (row.sampler_flags & flag_lcd);
		EXPECT_TRUE(panel || !row.getpanel);
	}
	// The S900 has no renaming and no deleting over MIDI.
	const _sampler_type &s900 = sampler_type[1];
	EXPECT_FALSE(s900.renamesample || s900.getplaymode || s900.deleteprogram ||
		     s900.renameprogram || s900.del_keygroup);
}

// A slot that a row leaves out is an empty one that nobody decided on.
TEST(model_table, every_row_mentions_every_slot_and_says_why_one_is_empty)
{
	const char *source = std::getenv("VELMOR_SOURCE");
	ASSERT_TRUE(source) << "set by ctest";
	std::ifstream file(std::string(source) + "/src/resource.cpp");
	ASSERT_TRUE(file);
	static const std::vector<std::string> slots = { "userlevel", "sampler_brand",
		"sampler_flags", "lcd_pixel_data_length", "lcd_control_data_length", "lcd_width",
		"lcd_height", "default_keyzones", "sampler_type", "ctrl", "getstatus",
		"getproglist", "getsamplelist", "getmultilist", "renamesample", "downloadsample",
		"infosample", "uploadsample", "getplaymode", "getpanel", "saveprogram",
		"deleteprogram", "renameprogram", "assignvoice", "assignvoice_callback",
		"assignpad", "assignpad_callback", "assignqlink", "assignqlink_callback",
		"assignvelocity", "assignvelocity_callback", "assignprog", "assignprog_callback",
		"del_keygroup" };
	std::vector<std::string> mentioned;
	bool no_operations = false; // "Generic" and the terminator, which need no reasons
	for (std::string line; std::getline(file, line);) {
		if (!line.starts_with("\t\t."))
			continue;
		const std::string slot = line.substr(3, line.find_first_of(" =", 3) - 3);
		mentioned.push_back(slot);
		const bool empty = line.find("nullptr") != line.npos;
		if (slot == "sampler_brand")
			no_operations = empty || line.find("Generic") != line.npos;
		EXPECT_TRUE(!empty || no_operations || line.find("//") != line.npos) << line;
	}
	std::vector<std::string> due;
	for (std::size_t i = 0; i < std::size(sampler_type); i++)
		due.insert(due.end(), slots.begin(), slots.end());
	EXPECT_EQ(mentioned, due);
}

// ---- Names ----------------------------------------------------------------------------------------

TEST(names, middle_c_is_c3)
{
	EXPECT_STREQ(midi_note[0], "C-2");
	EXPECT_STREQ(midi_note[1], "C#-2");
	EXPECT_STREQ(midi_note[12], "C-1");
	EXPECT_STREQ(midi_note[24], "C0");
	EXPECT_STREQ(midi_note[60], "C3");
	EXPECT_STREQ(midi_note[69], "A3");
	EXPECT_STREQ(midi_note[127], "G8");
	EXPECT_EQ(midi_note[128], nullptr);
}

TEST(names, a_note_above_127_is_named_by_its_low_seven_bits)
{
	EXPECT_STREQ(display_midi_note(60), "60 (C3)");
	EXPECT_STREQ(display_midi_note(128), "128 (C-2)");
	EXPECT_STREQ(display_midi_note(255), "255 (G8)");
}

TEST(names, the_channel_lists_end_in_null)
{
	EXPECT_STREQ(midi_channel[0], "1");
	EXPECT_STREQ(midi_channel[15], "16");
	EXPECT_EQ(midi_channel[16], nullptr);
	EXPECT_STREQ(sysex_chan[0], "0");
	EXPECT_STREQ(sysex_chan[128], "128");
	EXPECT_EQ(sysex_chan[129], nullptr);
}

} // namespace velmor
