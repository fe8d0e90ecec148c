// test_loading.cpp - stored configurations, loading and saving a sampler, start-up

#include "src/controls.h"
#include "src/velmor_work.h"
#include "tests/support/test_host.h"
#include <cerrno>
#include <cstring>

namespace velmor
{

// A .sampler file as it lies on the disk.
static std::vector<u8> sampler_file(const char *description, u32 model, u8 control, u8 midi,
	u8 exclusive, const char *usb_name = "")
{
	std::vector<u8> bytes(536, 0);
	std::memcpy(bytes.data(), description, std::strlen(description));
	std::memcpy(bytes.data() + 256, usb_name, std::strlen(usb_name));
	for (int i = 0; i < 4; i++)
		bytes[static_cast<std::size_t>(512 + i)] = static_cast<u8>(model >> 8 * i);
	bytes[516] = control;
	bytes[520] = midi;
	bytes[524] = exclusive;
	return bytes;
}

class loading : public host_test
{
protected:
	std::string path(const char *name) { return h.config + "\\" + name + ".sampler"; }
	void put(const char *name, std::span<const u8> bytes) { h.put_content(path(name), bytes); }
	int chosen(int control) { return h.selections[{ window_sampler, control }]; }
	bool shown(int control) { return h.visible[{ window_main, control }]; }
	// The sampler dialog as the user leaves it.
	void fill_dialog(const char *name, int brand, int control, int midi, int exclusive)
	{
		h.texts[{ window_sampler, sampler_name }] = name;
		h.selections[{ window_sampler, sampler_brand_list }] = brand;
		h.selections[{ window_sampler, sampler_control_list }] = control;
		h.selections[{ window_sampler, sampler_midi_list }] = midi;
		h.selections[{ window_sampler, sampler_exclusive_list }] = exclusive;
	}
	~loading() override
	{
		// Give the record of the last load back while the host still stands.
		h.boxes.clear();
		put("last", sampler_file("last", 0xFFFF, 1, 1, 0));
		if (current_sampler)
			load_sampler("last");
	}
};

TEST_F(loading, a_configuration_fills_the_dialog_and_shows_the_buttons_of_its_model)
{
	put("rack", sampler_file("rack", 1007, 3, 5, 128));
	EXPECT_EQ(load_sampler("rack"), 0);
	ASSERT_TRUE(current_sampler);
	EXPECT_EQ(current_sampler->sampler_type, 1007u);
	EXPECT_EQ(current_sampler->status, nullptr);
	EXPECT_EQ((h.texts[{ window_sampler, sampler_name }]), "rack");
	EXPECT_EQ(chosen(sampler_control_list), 2);
	EXPECT_EQ(chosen(sampler_midi_list), 4);
	EXPECT_EQ(chosen(sampler_exclusive_list), 128);
	EXPECT_EQ(chosen(sampler_brand_list), 5); // an S3200 comes back as an S3000
	EXPECT_TRUE(shown(main_samples) && shown(main_programs) && shown(main_multis));
	EXPECT_FALSE(shown(main_lcd));
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_EQ(h.progress.caption, "Loading Sampler...");
	EXPECT_EQ(h.progress.infos, (std::vector<std::string>{ "10.00 %", "20.00 %", "100.00 %" }));
	EXPECT_FALSE(h.progress.visible);
	expect_logged({ "[D] LOADING SAMPLER-CONFIG from: [" + path("rack") + "]",
		"[I]Successfully loaded sampler configuration from [" + path("rack") +
			"] - SYSEX: 128, USB-NAME: []" });
}

TEST_F(loading, a_model_without_multis_hides_their_button)
{
	put("old", sampler_file("old", 1000, 1, 1, 0));
	h.visible[{ window_main, main_multis }] = true;
	EXPECT_EQ(load_sampler("old"), 0);
	EXPECT_FALSE(shown(main_multis));
	EXPECT_TRUE(shown(main_samples));
	EXPECT_TRUE((h.enabled[{ window_main, main_multis }]));
	current_run_mode.multis = false;
	EXPECT_EQ(load_sampler("old"), 0);
	EXPECT_FALSE((h.enabled[{ window_main, main_multis }]));
}

TEST_F(loading, a_file_one_byte_short_ends_the_process_and_a_longer_one_loads)
{
	std::vector<u8> bytes = sampler_file("rack", 1001, 1, 1, 0);
	bytes.resize(600, 0xEE);
	put("long", bytes);
	EXPECT_EQ(load_sampler("long"), 0);
	bytes.resize(535);
	put("short", bytes);
	try {
		load_sampler("short");
		FAIL() << "went on";
	} catch (const process_ended &end) {
		EXPECT_EQ(end.status, 0);
	}
	ASSERT_EQ(h.boxes.size(), 2u);
	EXPECT_EQ(h.boxes[0],
		(shown_box{ "Cannot load selected sampler, file corrupted!", "FATAL" }));
	EXPECT_EQ(h.boxes[1].caption.substr(0, 18), "ERROR (velmor.cpp:");
}

TEST_F(loading, a_missing_file_ends_the_process_with_the_systems_words)
{
	EXPECT_THROW(load_sampler("gone"), process_ended);
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0].text, "No such file or directory");
}

TEST_F(loading, nothing_named_does_nothing)
{
	EXPECT_EQ(load_sampler(""), 1);
	EXPECT_EQ(load_sampler(nullptr), 1);
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_TRUE(h.progress.caption.empty());
}

TEST_F(loading, an_unknown_model_is_refused_and_leaves_nothing_loaded)
{
	put("good", sampler_file("good", 1005, 1, 1, 0));
	put("odd", sampler_file("odd", 0xFFFFFFFF, 1, 1, 0));
	EXPECT_EQ(load_sampler("good"), 0);
	EXPECT_EQ(load_sampler("odd"), 1);
	EXPECT_EQ(h.boxes, (std::vector<shown_box>{ { "Invalid sampler type", "INFO" } }));
	EXPECT_EQ(current_sampler, nullptr);
	EXPECT_FALSE(shown(main_samples) || shown(main_programs) || shown(main_multis));
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(require_dev_status(), nullptr);
}

TEST_F(loading, texts_and_numbers_of_a_file_are_not_trusted)
{
	std::vector<u8> bytes(536, 0xFF);
	bytes[512] = 0xE9; // 1001
	bytes[513] = 0x03;
	bytes[514] = bytes[515] = 0;
	put("hostile", bytes);
	EXPECT_EQ(load_sampler("hostile"), 0);
	EXPECT_EQ(std::strlen(current_sampler->sampler_description), 255u);
	EXPECT_EQ(std::strlen(current_sampler->sampler_usbname), 255u);
	EXPECT_STREQ(current_usb_name, current_sampler->sampler_usbname)
		<< "what the next save stores";
	EXPECT_EQ(current_sampler->status, nullptr); // not the pointer in the file
	EXPECT_EQ(chosen(sampler_midi_list), 15);
	EXPECT_EQ(chosen(sampler_exclusive_list), 128);
	bytes[516] = bytes[517] = bytes[518] = bytes[519] = 0;
	put("hostile", bytes);
	EXPECT_EQ(load_sampler("hostile"), 0);
	EXPECT_EQ(chosen(sampler_control_list), 0);
}

TEST_F(loading, the_image_is_allocated_once_for_each_load)
{
	put("rack", sampler_file("rack", 1005, 1, 1, 0));
	load_sampler("rack");
	_dev_status *first = require_dev_status();
	ASSERT_TRUE(first);
	EXPECT_EQ(require_dev_status(), first);
	EXPECT_TRUE(h.logged("[D] Allocated 129358104 Bytes of memory for sampler-status"));
	first->sample[3].sample_data = static_cast<u32 *>(std::malloc(64)); // goes with it
	load_sampler("rack");
	EXPECT_EQ(current_sampler->status, nullptr);
}

TEST_F(loading, the_list_holds_what_can_be_loaded)
{
	const std::vector<u8> whole = sampler_file("x", 1005, 1, 1, 0);
	for (const char *file :
		{ ".sampler", "A.SAMPLER", "b.c.sampler", "b.c.Sampler", "d.samplers", "e" })
		h.put_content(h.config + "\\" + file, whole);
	put("short", std::span(whole).first(535));
	host.files->make_folder(path("folder").c_str());
	load_sampler_list();
	std::vector<std::string> names = h.lists[{ window_main, main_sampler_list }];
	EXPECT_EQ(names, conf_sampler);
	std::sort(names.begin(), names.end());
	EXPECT_EQ(names, (std::vector<std::string>{ "A", "b.c" }));
	EXPECT_EQ((h.selections[{ window_main, main_sampler_list }]), 0);
	EXPECT_TRUE(
		h.logged("[W] Not listed: [" + path("short") + "] is no sampler configuration"));
	for (const std::string &name : names)
		EXPECT_TRUE(load_by_name(name).done()) << name;
	EXPECT_EQ(load_by_name("short").words, "There is no sampler called 'short'.");

	current_config_path = h.config + "\\gone";
	load_sampler_list();
	EXPECT_EQ(conf_sampler.size(), 2u);
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0].text, "No such file or directory");
	EXPECT_TRUE(h.logged("CURRENT_CONFIG_PATH: [" + h.config + "\\gone]"));
	current_config_path = h.config;
}

TEST_F(loading, a_loaded_usb_sampler_keeps_its_device_when_it_is_saved)
{
	put("live", sampler_file("live", 1005, 1, 1, 0, "Z8 LIVE"));
	EXPECT_EQ(load_sampler("live"), 0);
	fill_dialog("live", 8, 0, 0, 7);
	EXPECT_EQ(save_sampler(), 0);
	EXPECT_EQ(h.content(path("live")), sampler_file("live", 1003, 1, 1, 7, "Z8 LIVE"));
	// Asking it who it is does not make it forget the device either.
	int limit = 1024;
	get_device_info(1, 1003, 7, nullptr, &limit);
	EXPECT_STREQ(current_usb_name, "Z8 LIVE");
	get_device_info(1, 1005, 7, nullptr, &limit);
	EXPECT_STREQ(current_usb_name, "");
}

TEST_F(loading, saving_writes_the_whole_record)
{
	fill_dialog("my %s 100%n", 3, 1, 15, 128); // "Akai S2000"
	EXPECT_EQ(save_sampler(), 0);
	EXPECT_EQ(h.content(path("my %s 100%n")), sampler_file("my %s 100%n", 1005, 2, 16, 128));
	EXPECT_TRUE(h.boxes.empty());
	expect_logged({ "SAMPLER-CONFIG: [" + path("my %s 100%n") + "]",
		"[D]Saving SYSEX-CHANNEL: 128" });
	EXPECT_EQ(conf_sampler, std::vector<std::string>{ "my %s 100%n" });
	ASSERT_TRUE(current_sampler);
	EXPECT_EQ(current_sampler->sampler_type, 1005u);
	EXPECT_FALSE(shown(main_samples)); // until it is loaded
}

TEST_F(loading, the_usb_name_of_a_query_goes_into_the_file)
{
	copy_text(current_usb_name, "Z8");
	fill_dialog("z", 8, 0, 0, 0);
	EXPECT_EQ(save_sampler(), 0);
	EXPECT_EQ(h.content(path("z")), sampler_file("z", 1003, 1, 1, 0, "Z8"));
	copy_text(current_usb_name, "");
}

TEST_F(loading, an_existing_name_is_refused_until_a_sampler_is_loaded)
{
	const std::vector<u8> old = sampler_file("rack", 1001, 1, 1, 0);
	put("rack", old);
	fill_dialog("rack", 2, 4, 4, 4);
	EXPECT_EQ(save_sampler(), 1);
	EXPECT_EQ(h.boxes,
		(std::vector<shown_box>{
			{ "A Sampler configuration with this name already exists!", "Fatal" } }));
	EXPECT_EQ(h.content(path("rack")), old);

	load_sampler("rack");
	h.boxes.clear();
	fill_dialog("rack", 2, 4, 4, 4);
	EXPECT_EQ(save_sampler(), 0);
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_EQ(h.content(path("rack")), sampler_file("rack", 1001, 5, 5, 4));

	fill_dialog("second", 2, 4, 4, 4);
	EXPECT_EQ(save_sampler(), 0);
	EXPECT_EQ(h.boxes, (std::vector<shown_box>{
				   { "This sampler does not exist! Creating new one!", "Info" } }));
	EXPECT_STREQ(current_sampler->sampler_description, "second");
}

TEST_F(loading, a_name_cannot_leave_the_folder)
{
	for (const char *name : { "", ".", "..", "../rack", "a/b", "a\\b", "..\\..\\x" }) {
		h.boxes.clear();
		fill_dialog(name, 2, 0, 0, 0);
		EXPECT_EQ(save_sampler(), 1) << name;
		EXPECT_EQ(h.boxes.size(), 1u) << name;
	}
	std::vector<std::string> files;
	host.files->list(h.config.c_str(), &files);
	EXPECT_EQ(files, std::vector<std::string>{ "sample" });
	EXPECT_EQ(current_sampler, nullptr);
}

TEST_F(loading, a_disk_that_fails_keeps_the_old_file)
{
	const std::vector<u8> old = sampler_file("rack", 1001, 1, 1, 0);
	put("rack", old);
	load_sampler("rack");
	const _sampler *before = current_sampler;
	fill_dialog("rack", 2, 4, 4, 4);
	struct fault {
		const char *name;
		disk_faults faults;
		const char *words;
	};
	const fault faults[] = {
		{ "full", { 300, 0, false }, "No space left on device" },
		{ "read only", { {}, EROFS, false }, "Read-only file system" },
		{ "lost at close", { {}, 0, true }, "Input/output error" },
	};
	for (const fault &f : faults) {
		h.boxes.clear();
		h.disk = f.faults;
		EXPECT_EQ(save_sampler(), 1) << f.name;
		ASSERT_EQ(h.boxes.size(), 1u) << f.name;
		EXPECT_EQ(h.boxes[0].text, f.words);
		EXPECT_EQ(h.content(path("rack")), old) << f.name;
		EXPECT_EQ(current_sampler, before) << f.name;
	}
	h.disk = {};
	std::vector<std::string> files;
	host.files->list(h.config.c_str(), &files);
	EXPECT_EQ(files.size(), 2u); // "sample" and the old file
}

// ---- Asking who is there -----------------------------------------------------------------------

static std::vector<int> asked;

TEST_F(loading, device_info_asks_the_model_of_the_dialog)
{
	int limit = 1024;
	char result[1024] = "";
	copy_text(current_usb_name, "old");
	get_device_info(4, 1234, 9, result, &limit);
	EXPECT_STREQ(current_usb_name, "");
	expect_logged({ "[D] REQUESTING MIDI-DATA AT CHANNEL: 4,MAXLEN: 1024, BRAND_ID: 1234",
		"No sampler-description found, or no status-query" });
	get_device_info(4, 0, 9, result, &limit);
	EXPECT_TRUE(h.logged("No sampler-description found for 'getstatus'"));

	const list_operation before = sampler_type[0].getstatus;
	sampler_type[0].getstatus = [](u8 control, u8 exclusive, _dev_status *dev) {
		asked = { control, exclusive, dev->status };
		dev->status = 1;
	};
	get_device_info(4, 0, 9, result, &limit);
	sampler_type[0].getstatus = before;
	EXPECT_EQ(asked, (std::vector<int>{ 4, 9, 0 }));
	EXPECT_TRUE(h.logged("*************************************************"));
	EXPECT_EQ(current_sampler, nullptr);
}

} // namespace velmor
