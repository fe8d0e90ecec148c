// test_settings.cpp - what is kept per user, and the folder tree

#include "src/controls.h"
#include "tests/support/test_host.h"
#include <algorithm>
#include <cerrno>

namespace velmor
{

class settings : public host_test
{
protected:
	settings()
	{
		midi_in_interfaces = 3;
		midi_out_interfaces = 2;
		selected_midi_in_interface = selected_midi_in_mon_interface = 7;
		selected_midi_out_interface = 7;
	}
	bool folder(const std::string &path)
	{
		file_info info;
		return host.files->stat(path.c_str(), &info) == 0 && info.folder;
	}
	std::vector<int> selected()
	{
		return { selected_midi_in_interface, selected_midi_in_mon_interface,
			selected_midi_out_interface };
	}
	// The settings dialog as the user leaves it.
	void fill_dialog(int in, int mon, int out, const std::string &path)
	{
		h.selections[{ window_settings, settings_midi_in }] = in;
		h.selections[{ window_settings, settings_midi_in_mon }] = mon;
		h.selections[{ window_settings, settings_midi_out }] = out;
		h.texts[{ window_settings, settings_config_path }] = path;
	}
};

TEST_F(settings, a_first_run_makes_the_folders_and_says_nothing)
{
	const std::string scratch = h.root;
	h.root += "/home"; // where nothing is yet
	host.files->make_folder(h.root.c_str());
	testing::internal::CaptureStdout();
	load_settings();
	EXPECT_EQ(testing::internal::GetCapturedStdout(),
		"CURRENT_CONFIG_PATH: [" + h.root + "/VELMOR/CONFIG]\n");
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_EQ(selected(), (std::vector<int>{ -1, -1, -1 }));
	EXPECT_EQ(host.files->host_path(current_config_path.c_str()), h.root + "/VELMOR/CONFIG");
	EXPECT_EQ(current_config_path.find('/'), std::string::npos);
	EXPECT_EQ(h.settings["sampler_config_path"], h.root + "/VELMOR/CONFIG");
	for (const char *name : { "sample", "pgm", "multi", "setup" })
		EXPECT_TRUE(folder(current_config_path + "\\" + name)) << name;
	h.root = scratch;
}

TEST_F(settings, without_a_place_for_the_user_a_first_run_ends)
{
	static settings_service nowhere;
	nowhere = *host.settings;
	nowhere.user_root = []() -> const char * { return nullptr; };
	host.settings = &nowhere;
	EXPECT_THROW(load_settings(), process_ended);
	EXPECT_EQ(h.boxes.size(), 1u);
}

struct stored_device {
	const char *key, *value;
	int index; // in, monitor, out
	int selected;
	const char *box; // or null
};

TEST_F(settings, a_stored_device_past_the_end_goes_back_to_none)
{
	static constexpr const char *in =
		"Stored MIDI-IN Interface not connected any longer! Returning to defaults.";
	static constexpr const char *mon =
		"Stored MIDI-IN-MON Interface not connected any longer! Returning to defaults.";
	static constexpr const char *out =
		"Stored MIDI-OUT Interface not connected any longer! Returning to defaults.";
	static const stored_device devices[] = {
		{ "midi_in", "2", 0, 2, nullptr },
		{ "midi_in", "3", 0, -1, in },
		{ "midi_in", "-1", 0, -1, nullptr },
		{ "midi_in", "-2", 0, -1, in },
		{ "midi_in", "99999999999999999999", 0, -1, in },
		{ "midi_in", "4294967296", 0, -1, in },
		{ "midi_in", "no number", 0, 0, nullptr },
		{ "midi_in", "", 0, 0, nullptr },
		{ "midi_in_mon", "3", 1, -1, mon },
		{ "midi_in_mon", "1", 1, 1, nullptr },
		{ "midi_out", "2", 2, -1, out },
		{ "midi_out", "1", 2, 1, nullptr },
	};
	for (const stored_device &d : devices) {
		h.boxes.clear();
		h.settings = { { d.key, d.value } };
		load_settings();
		EXPECT_EQ(selected()[static_cast<std::size_t>(d.index)], d.selected)
			<< d.key << " " << d.value;
		std::vector<shown_box> due;
		if (d.box)
			due.push_back({ d.box, "WARNING" });
		EXPECT_EQ(h.boxes, due) << d.key << " " << d.value;
	}
}

TEST_F(settings, a_stored_path_is_taken_with_either_separator)
{
	for (const std::string &path : { h.root + "/mine/", h.root + "\\mine" }) {
		h.settings = { { "sampler_config_path", path } };
		load_settings();
		EXPECT_EQ(host.files->host_path(current_config_path.c_str()), h.root + "/mine");
		EXPECT_TRUE(folder(current_config_path + "\\sample"));
	}
	// An empty one would put the spool at the root of the disk.
	h.settings = { { "sampler_config_path", "" } };
	load_settings();
	EXPECT_EQ(current_config_path, h.config);
}

TEST_F(settings, a_folder_that_cannot_be_made_is_no_error_at_start)
{
	h.put_content(h.root + "/file", {});
	h.settings = { { "sampler_config_path", h.root + "/file/below" } };
	load_settings();
	EXPECT_TRUE(h.boxes.empty());
	load_sampler_list();
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0].text, "Not a directory");
}

TEST_F(settings, saving_stores_one_less_than_the_place_in_the_list)
{
	fill_dialog(0, 3, 2, h.root + "/new/");
	testing::internal::CaptureStdout();
	save_settings();
	EXPECT_EQ(testing::internal::GetCapturedStdout(),
		"Current selection (IN): -1\nCurrent selection (IN): 2\n"
		"Current selection (OUT): 1\n");
	EXPECT_EQ(selected(), (std::vector<int>{ -1, 2, 1 }));
	EXPECT_EQ(h.settings,
		(std::map<std::string, std::string>{ { "midi_in", "-1" }, { "midi_in_mon", "2" },
			{ "midi_out", "1" }, { "sampler_config_path", h.root + "/new" } }));
	EXPECT_TRUE(folder(h.root + "\\new"));
	EXPECT_FALSE(folder(h.root + "\\new\\sample")); // made by the next start
	EXPECT_TRUE(h.boxes.empty());
}

TEST_F(settings, a_path_that_cannot_be_a_folder_keeps_the_old_one)
{
	h.put_content(h.root + "/file", {});
	for (const std::string &path : { std::string(), h.root + "/file", h.root + "/file/x",
		     h.root + "/no/parent", h.root + "/%s%n/x" }) {
		h.boxes.clear();
		fill_dialog(0, 0, 0, path);
		save_settings();
		EXPECT_EQ(h.boxes,
			(std::vector<shown_box>{ { "Config-Path: [" + path + "] cannot be created!",
				"FATAL ERROR" } }));
		EXPECT_EQ(current_config_path, h.config);
		EXPECT_EQ(h.settings.count("sampler_config_path"), 0u);
	}
}

// 1024 bytes are the most that a setting holds, and they do.
TEST_F(settings, a_path_as_long_as_a_setting_fits_and_a_longer_one_does_not)
{
	std::string path = h.root;
	for (; path.size() < 1024; host.files->make_folder(path.c_str()))
		path += "/" + std::string(std::min<std::size_t>(100, 1023 - path.size()), 'd');
	ASSERT_EQ(path.size(), 1024u);
	const std::string longer = path.substr(0, 1023) + "ee";
	ASSERT_EQ(host.files->make_folder(longer.c_str()), 0);
	for (const std::string &typed : { path, longer }) {
		fill_dialog(0, 0, 0, typed);
		save_settings();
		EXPECT_EQ(host.files->host_path(current_config_path.c_str()), path);
		EXPECT_EQ(h.settings["sampler_config_path"], path);
	}
	EXPECT_EQ(h.boxes.size(), 1u);
}

TEST_F(settings, a_setting_that_cannot_be_written_ends_the_process)
{
	static settings_service full;
	full = *host.settings;
	full.save_key = [](const char *, const char *) { return ENOSPC; };
	host.settings = &full;
	fill_dialog(1, 1, 1, h.root);
	EXPECT_THROW(save_settings(), process_ended);
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0].text, "No space left on device");
}

TEST_F(settings, a_setting_that_cannot_be_read_is_shown_and_goes_to_none)
{
	static settings_service broken;
	broken = *host.settings;
	broken.load_key = [](const char *name, char *value) {
		value[0] = '\0';
		return std::string_view(name) == "midi_in" ? EIO : 2;
	};
	host.settings = &broken;
	load_settings();
	EXPECT_EQ(selected()[0], -1);
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0].text, "Input/output error");
}

TEST_F(settings, a_value_is_told_on_standard_output)
{
	h.settings = { { "midi_out", "1" } };
	char value[setting_size];
	testing::internal::CaptureStdout();
	EXPECT_EQ(load_key("midi_out", value), 0);
	EXPECT_EQ(load_key("midi_in", value), 2);
	EXPECT_EQ(testing::internal::GetCapturedStdout(),
		"Loaded [midi_out], Length: 2 Bytes, Value: [1]\r\n");
}

TEST_F(settings, the_run_mode_says_what_is_enabled)
{
	struct mode {
		const char *value; // null: absent
		bool diagnostics, multis;
	};
	for (const mode &m : { mode{ nullptr, true, true }, mode{ "user", false, true },
		     mode{ "demo", false, false }, mode{ "", true, true } }) {
		h.settings.clear();
		if (m.value)
			h.settings["run_mode"] = m.value;
		load_run_mode();
		EXPECT_EQ(current_run_mode.diagnostics, m.diagnostics);
		EXPECT_EQ(current_run_mode.multis, m.multis);
	}
}

TEST(file_names, cannot_leave_their_folder)
{
	EXPECT_EQ(file_name_of("GRAND PIANO -L"), "GRAND PIANO -L");
	EXPECT_EQ(file_name_of("../../etc"), ".._.._etc");
	EXPECT_EQ(file_name_of("a\\b"), "a_b");
	EXPECT_EQ(file_name_of(std::string_view("a\0b\n\x7F", 5)), "a_b__");
	EXPECT_EQ(file_name_of(""), "_");
	EXPECT_EQ(file_name_of("."), "_");
	EXPECT_EQ(file_name_of(".."), "__");
	EXPECT_EQ(file_name_of("..."), "...");
}

} // namespace velmor
