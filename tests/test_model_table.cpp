// test_model_table.cpp - the table of models, its look-ups, and the names of notes

#include "src/akai_forms.h"
#include "src/akais1000.h"
#include "src/akais5000.h"
#include "src/akais900.h"
#include "src/akaiz4.h"
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

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

// Every slot of the lists and samples, by row; rows 4 to 6 are as row 3.
TEST(model_table, holds_what_each_model_can)
{
	const auto expect = [](int index, list_operation status, list_operation programs,
				    list_operation samples, list_operation multis,
				    decltype(_sampler_type::renamesample) rename,
				    sample_operation download, sample_operation info,
				    decltype(_sampler_type::uploadsample) upload,
				    decltype(_sampler_type::getplaymode) playmode) {
		const _sampler_type &row = sampler_type[index];
		EXPECT_TRUE(row.getstatus == status && row.getproglist == programs) << index;
		EXPECT_TRUE(row.getsamplelist == samples && row.getmultilist == multis) << index;
		EXPECT_TRUE(row.renamesample == rename && row.downloadsample == download) << index;
		EXPECT_TRUE(row.infosample == info && row.uploadsample == upload) << index;
		EXPECT_TRUE(row.getplaymode == playmode) << index;
	};
	expect(1, akai_s900_getstatus, akai_s900_getproglist, akai_s900_getsamplelist,
		akai_s900_getmultilist, nullptr, akai_s900_download_sample, akai_s900_sample_info,
		akai_s900_upload_sample, nullptr);
	expect(2, akai_s1000_getstatus, akai_s1000_getproglist, akai_s1000_getsamplelist,
		akai_s1000_getmultilist, akai_s1000_sample_rename, akai_s1000_sample_download,
		akai_s1000_sample_info, akai_s2000_sample_upload, akai_s1000_getplaymode);
	for (int index : { 3, 4, 5, 6 })
		expect(index, akai_s2000_getstatus, akai_s1000_getproglist,
			akai_s1000_getsamplelist, akai_s1000_getmultilist, akai_s1000_sample_rename,
			akai_s2000_sample_download, akai_s2000_sample_info,
			akai_s2000_sample_upload, akai_s1000_getplaymode);
	expect(7, akai_s5000_getstatus, akai_s5000_getproglist, akai_s5000_getsamplelist,
		akai_s5000_getmultilist, akai_s5000_renamesample, akai_s5000_downloadsample,
		akai_s5000_sampleinfo, akai_s5000_uploadsample, akai_s5000_getplaymode);
	for (int index : { 8, 9 })
		expect(index, index == 8 ? akai_z4_getstatus : akai_mpc_getstatus,
			akai_z4_getproglist, akai_z4_getsamplelist, akai_z4_getmultilist,
			akai_z4_renamesample, akai_z4_downloadsample, akai_z4_sampleinfo,
			akai_z4_uploadsample, akai_z4_getplaymode);
	for (const _sampler_type &row : sampler_type) {
		EXPECT_FALSE(row.assignqlink || row.assignqlink_callback);
		EXPECT_TRUE(!row.getpanel || (row.sampler_brand && row.sampler_flags & flag_lcd));
	}
	// The S900 has no renaming and no deleting over MIDI.
	const _sampler_type &s900 = sampler_type[1];
	EXPECT_EQ(s900.saveprogram, akai_s900_save_program);
	EXPECT_TRUE(s900.assignprog == akai_s900_prog_assign &&
		    s900.assignprog_callback == akai_s900_prog_assign_callback);
	EXPECT_FALSE(s900.renamesample || s900.getplaymode || s900.deleteprogram ||
		     s900.renameprogram || s900.del_keygroup);
}

// That none is left out is the compiler's to see.
TEST(model_table, every_empty_slot_says_why)
{
	const char *source = std::getenv("VELMOR_SOURCE");
	ASSERT_TRUE(source) << "set by ctest";
	std::ifstream file(std::string(source) + "/src/resource.cpp");
	bool no_operations = false; // rows that no sampler is behind need no reasons
	int slots = 0;
	for (std::string line; std::getline(file, line);) {
		if (line.find(".userlevel") != line.npos)
			no_operations = line.find("own.userlevel") != line.npos;
		if (!line.starts_with("\t\t.") || line.find("nullptr,") == line.npos)
			continue;
		EXPECT_TRUE(no_operations || line.find("  // ") != line.npos) << line;
		slots++;
	}
	EXPECT_GT(slots, 34);
}

// ---- Names ----------------------------------------------------------------------------------------

TEST(names, middle_c_is_c3)
{
	const std::pair<int, const char *> notes[] = { { 0, "C-2" }, { 1, "C#-2" }, { 12, "C-1" },
		{ 24, "C0" }, { 60, "C3" }, { 69, "A3" }, { 127, "G8" } };
	for (const auto &[note, name] : notes)
		EXPECT_STREQ(midi_note[static_cast<std::size_t>(note)], name);
	EXPECT_EQ(midi_note[128], nullptr);
	EXPECT_STREQ(display_midi_note(60), "60 (C3)");
	EXPECT_STREQ(display_midi_note(128), "128 (C-2)") << "by its low seven bits";
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
