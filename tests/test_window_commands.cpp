// test_window_commands.cpp - what the buttons, menus and dialogs do

#include "src/usbqx.h"
#include "src/velmor_window.h"
#include "tests/support/fake_model.h"
#include <cstring>
#include <set>

using namespace velmor;

namespace
{

class window_commands : public host_test
{
protected:
	window_commands() { forget_commands(); }
	~window_commands() override
	{
		forget_commands();
		midi_out_interface.clear();
		midi_in_interface.clear();
		selected_midi_out_interface = selected_midi_in_interface = -1;
	}
};

std::vector<std::string> ports_out, ports_in;

// Two lists of names; nothing can be opened.
midi_service named_ports()
{
	midi_service ports = *host.midi;
	ports.outputs = [] { return static_cast<int>(ports_out.size()); };
	ports.inputs = [] { return static_cast<int>(ports_in.size()); };
	ports.output_name = [](int i) { return ports_out[static_cast<std::size_t>(i)].c_str(); };
	ports.input_name = [](int i) { return ports_in[static_cast<std::size_t>(i)].c_str(); };
	return ports;
}

class with_ports : public window_commands
{
protected:
	with_ports() : ports(named_ports())
	{
		ports_out = { "Out A", "Out B" };
		ports_in = { "In A" };
		host.midi = &ports;
	}
	midi_service ports;
};

} // namespace

// Those that the system defines; what stands around them is the program's own.
TEST_F(window_commands, the_words_are_those_of_the_program)
{
	const std::tuple<int, int, const char *> words[] = {
		{ window_main, 9001, "E&xit" }, { window_main, 9004, "Manage &USB &Samplers" },
		{ window_main, 12003, "Manage Multis" }, { window_usb, 30000, "&Update" },
		{ window_multis, 1, "&Refresh" }, { window_settings, 1, "&Save settings" },
		{ window_sampler, 0, "VELMOR Manage current Sampler" },
		{ window_sampler, 39003, "Use TCP instead of MIDI" },
		{ window_sampler, sampler_exclusive_list, "Sysex-Ch (1-127):" },
		{ window_main, 9005, "Manage MIDI-Files" }, { window_sampler, 10100, "Note on" },
		{ window_sampler, 10101, "Note off" }, { window_sampler, 16997, "All Note Off" },
		{ window_sampler, 10103, "Mon. on" }, { window_sampler, 10104, "Mon. off" },
		{ window_multis, 23001, "Download this Multi" },
		{ window_midi_files, player_load, "Load Midi-File" },
		{ window_midi_files, player_unload, "Unload current Midi-File" },
		{ window_midi_files, player_play, "Play Midi-File" },
		{ window_midi_files, player_stop, "Stop Midi-File" },
		{ window_samples, samples_loaded_delete, "Delete this Sample" },
		{ window_samples, samples_mix_files, "Create L/R files" },
		{ window_usb, status_undo, "Undo" }, // of every window
	};
	for (const auto &[window, control, caption] : words) {
		ASSERT_TRUE(find_caption(window, control)) << caption;
		EXPECT_STREQ(find_caption(window, control)->caption, caption);
	}
}

TEST_F(window_commands, no_control_has_two_rows_of_words)
{
	std::set<std::pair<int, int>> seen;
	for (const caption_row &row : captions)
		EXPECT_TRUE(seen.insert({ row.window, row.control }).second)
			<< row.window << " " << row.control;
}

TEST_F(window_commands, what_is_in_no_table_has_no_command)
{
	constexpr int no_such_control = 4711;
	EXPECT_FALSE(has_command(window_main, no_such_control));
	EXPECT_FALSE(velmor_command(window_main, no_such_control));
}

TEST_F(window_commands, settings_without_any_port_say_so)
{
	EXPECT_TRUE(velmor_command(window_main, menu_settings));
	EXPECT_EQ(h.boxes, (std::vector<shown_box>{ { "No MIDI Interfaces found in this system!",
				   "Fatal Error!" } }));
	EXPECT_FALSE((h.visible[{ window_settings, 0 }]));
}

TEST_F(with_ports, settings_list_the_ports_behind_a_first_line)
{
	selected_midi_in_interface = -1;
	selected_midi_in_mon_interface = 0;
	selected_midi_out_interface = 1;
	velmor_command(window_main, menu_settings);
	EXPECT_TRUE((h.visible[{ window_settings, 0 }]));
	EXPECT_EQ((h.lists[{ window_settings, settings_midi_out }]),
		(std::vector<std::string>{ "Select Interface", "Out A", "Out B" }));
	EXPECT_EQ((h.lists[{ window_settings, settings_midi_in }]),
		(std::vector<std::string>{ "Select Interface", "In A" }));
	EXPECT_EQ((h.selections[{ window_settings, settings_midi_in }]), 0);
	EXPECT_EQ((h.selections[{ window_settings, settings_midi_in_mon }]), 1);
	EXPECT_EQ((h.selections[{ window_settings, settings_midi_out }]), 2);
	EXPECT_EQ((h.texts[{ window_settings, settings_config_path }]), h.root + "/VELMOR/CONFIG");
}

TEST_F(with_ports, a_choice_counts_at_once_and_is_kept_by_save)
{
	conf_sampler = { "from another folder" };
	h.put_content(h.config + "\\there.sampler", std::vector<u8>(536));
	velmor_command(window_main, menu_settings);
	host.ui->select(window_settings, settings_midi_out, 2);
	velmor_selection(window_settings, settings_midi_out);
	EXPECT_EQ(selected_midi_out_interface, 1);
	EXPECT_EQ(h.settings.count("midi_out"), 0u);
	host.ui->select(window_settings, settings_midi_in, 1);
	velmor_command(window_settings, control_ok);
	EXPECT_EQ(h.settings["midi_out"], "1");
	EXPECT_EQ(h.settings["midi_in"], "0");
	EXPECT_EQ(
		(h.lists[{ window_main, main_sampler_list }]), std::vector<std::string>{ "there" });
	EXPECT_FALSE((h.visible[{ window_settings, 0 }]));
}

TEST_F(with_ports, cancel_hides_and_stores_nothing)
{
	velmor_command(window_main, menu_settings);
	velmor_command(window_settings, control_cancel);
	EXPECT_FALSE((h.visible[{ window_settings, 0 }]));
	EXPECT_TRUE(h.settings.empty());
}

TEST_F(window_commands, sampler_dialog_offers_every_brand_and_creates_a_new_sampler)
{
	velmor_command(window_main, menu_midi_samplers);
	EXPECT_EQ((h.lists[{ window_sampler, sampler_brand_list }]),
		(std::vector<std::string>{ "Generic", "Akai S900/950", "Akai S1000, S1100",
			"Akai S2000", "Akai S2800", "Akai S3000/S3000XL", "Akai S3200",
			"Akai S5000/6000", "Akai Z4/Z8", "Akai MPC 4000" }));
	EXPECT_EQ((h.lists[{ window_sampler, sampler_midi_list }].size()), 16u);
	EXPECT_EQ((h.lists[{ window_sampler, sampler_exclusive_list }].size()), 129u);
	EXPECT_EQ((h.texts[{ window_sampler, control_ok }]), "Create new");
	EXPECT_EQ((h.selections[{ window_sampler, sampler_brand_list }]), 0);

	h.texts[{ window_sampler, sampler_name }] = "Rack";
	host.ui->select(window_sampler, sampler_brand_list, 6);
	host.ui->select(window_sampler, sampler_midi_list, 2);
	host.ui->select(window_sampler, sampler_control_list, 0);
	host.ui->select(window_sampler, sampler_exclusive_list, 5);
	velmor_command(window_sampler, control_ok);
	EXPECT_FALSE((h.visible[{ window_sampler, 0 }]));
	const auto file = h.content(h.config + "\\Rack.sampler");
	ASSERT_TRUE(file);
	ASSERT_EQ(file->size(), 536u);
	// S3200 is stored as id 1007 (03EF hex); control channel 1, MIDI channel 3, exclusive 5
	EXPECT_EQ(std::vector<u8>(file->begin() + 512, file->begin() + 528),
		hex("EF 03 00 00 01 00 00 00 03 00 00 00 05 00 00 00"));

	// The next opening shows what is loaded now: the S3200 comes back as the S3000.
	velmor_command(window_main, menu_midi_samplers);
	EXPECT_EQ((h.texts[{ window_sampler, control_ok }]), "Save changes");
	EXPECT_EQ((h.selections[{ window_sampler, sampler_brand_list }]), 5);
	EXPECT_EQ((h.selections[{ window_sampler, sampler_midi_list }]), 2);
	EXPECT_EQ((h.selections[{ window_sampler, sampler_exclusive_list }]), 5);
}

TEST_F(window_commands, a_refused_save_leaves_the_dialog_open)
{
	h.put_content(h.config + "\\Rack.sampler", std::vector<u8>(536));
	velmor_command(window_main, menu_midi_samplers);
	h.texts[{ window_sampler, sampler_name }] = "Rack";
	velmor_command(window_sampler, control_ok);
	EXPECT_EQ(h.boxes.back(),
		(shown_box{ "A Sampler configuration with this name already exists!", "Fatal" }));
	EXPECT_TRUE((h.visible[{ window_sampler, 0 }]));
}

TEST_F(window_commands, device_info_asks_the_described_sampler)
{
	fake_model model(h);
	current_sampler = nullptr;
	velmor_command(window_main, menu_midi_samplers);
	host.ui->select(window_sampler, sampler_brand_list, 5);
	host.ui->select(window_sampler, sampler_control_list, 3);
	host.ui->select(window_sampler, sampler_exclusive_list, 9);
	velmor_command(window_sampler, sampler_device_info);
	expect_logged({ "[D] Requesting Sampler-Info",
		"[D] Requesting Sampler-Info, Brand: 1007, MIDI_CHANNEL: 4, SYSEXCHAN: 9" });
	EXPECT_EQ(model.calls, std::vector<std::string>{ "getstatus 4 9" });
	const std::pair<int, int> verdict = { window_sampler, sampler_verdict };
	EXPECT_EQ(
		h.texts[verdict], "Akai S3000/S3000XL answered on exclusive channel 9 over MIDI.");
	EXPECT_EQ(h.roles[verdict], text_role::good);

	// Beside the button, in words, whatever came back.
	midi_out_interface = midi_in_interface = { "USB MIDI 1" };
	selected_midi_out_interface = selected_midi_in_interface = 0;
	model.silent = true;
	velmor_command(window_sampler, sampler_device_info);
	EXPECT_EQ(h.texts[verdict],
		"No answer on exclusive channel 9 through 'USB MIDI 1'. Is the sampler on? Its "
		"channel stands on its own MIDI page.");
	EXPECT_EQ(h.roles[verdict], text_role::failed);
	EXPECT_FALSE(the_line.failing); // nobody is loaded whose line this would be
	model.silent = false;
	model.row.getstatus = [](u8, u8, _dev_status *) { line_answered(); };
	velmor_command(window_sampler, sampler_device_info);
	EXPECT_EQ(h.texts[verdict],
		"Something answered on exclusive channel 9 through 'USB MIDI 1', but not as Akai "
		"S3000/S3000XL does. Is the right model chosen?");
	use_tcp = 1;
	copy_text(tcp_address, "192.168.0.10");
	tcp_port = 9999;
	model.row.getstatus = [](u8, u8, _dev_status *) { line_silent("No answer came."); };
	velmor_command(window_sampler, sampler_device_info);
	EXPECT_EQ(h.texts[verdict].substr(0, 81), "No answer on exclusive channel 9 through the "
						  "TCP bridge at 192.168.0.10:9999. Is ");
	use_tcp = 0;
	host.ui->select(window_sampler, sampler_brand_list, 0);
	velmor_command(window_sampler, sampler_device_info);
	EXPECT_EQ(h.texts[verdict],
		"This brand cannot be asked who it is. Choose the model of the sampler.");
	velmor_command(window_main, menu_midi_samplers);
	EXPECT_EQ(h.texts[verdict], "");
}

TEST_F(window_commands, the_usb_dialog_says_when_nobody_is_there)
{
	velmor_command(window_main, menu_usb_samplers);
	velmor_command(window_usb, usb_device_info);
	EXPECT_EQ((h.texts[{ window_usb, usb_verdict }]),
		"No sampler was found on the USB. Is it on, and its cable plugged in? Open this "
		"window again to look again.");
	h.texts[{ window_usb, usb_name }] = "of the device before";
	EXPECT_TRUE(velmor_selection(window_usb, usb_device_list));
	EXPECT_EQ((h.texts[{ window_usb, usb_name }]), "");
}

TEST_F(window_commands, no_channel_of_a_file_leaves_a_list_without_a_choice)
{
	h.use_sampler(model_s3000, 255);
	current_sampler->sampler_midi = 0;
	current_sampler->sampler_sysex = 99;
	velmor_command(window_main, menu_midi_samplers);
	EXPECT_EQ((h.selections[{ window_sampler, sampler_midi_list }]), 0);
	EXPECT_EQ((h.selections[{ window_sampler, sampler_control_list }]), 15);
	EXPECT_EQ((h.selections[{ window_sampler, sampler_exclusive_list }]), 128);
}

TEST_F(window_commands, a_panel_passes_the_gate_of_the_commands)
{
	int pictures = 0;
	auto picture = [&] { pictures++; };
	EXPECT_TRUE(run_through_gate([&] {
		picture();
		EXPECT_TRUE(command_running());
		EXPECT_FALSE(run_through_gate(picture));
		EXPECT_FALSE(velmor_command(window_main, menu_settings));
	}));
	EXPECT_FALSE(command_running());
	usbdev.resize(1);
	usbdev[0].device_handle = 7; // an operation of the drive, say, has it open
	EXPECT_FALSE(run_through_gate(picture));
	EXPECT_FALSE(velmor_command(window_main, menu_settings));
	usbdev.clear();
	EXPECT_TRUE(run_through_gate(picture));
	EXPECT_EQ(pictures, 2);
}

TEST_F(window_commands, the_bridge_is_offered_with_diagnostics_alone)
{
	set_up_windows();
	EXPECT_TRUE((h.visible[{ window_sampler, sampler_tcp_group }]));
	EXPECT_EQ((h.texts[{ window_sampler, sampler_tcp_port }]), "9999");
	current_run_mode.diagnostics = false;
	set_up_windows();
	EXPECT_FALSE((h.visible[{ window_sampler, sampler_tcp_group }]));
}

TEST_F(window_commands, a_refused_bridge_leaves_midi_in_force)
{
	h.texts[{ window_sampler, sampler_tcp_address }] = "10.0.0.9";
	h.texts[{ window_sampler, sampler_tcp_port }] = "70000";
	velmor_command(window_sampler, sampler_tcp_on);
	EXPECT_TRUE(h.logged("TURNING ON TCP (10.0.0.9:0)"));
	EXPECT_EQ(use_tcp, 0);
	EXPECT_EQ(h.boxes.back(), (shown_box{ "Failed to connect IP (SOCKET)", "WARNING" }));
	velmor_command(window_sampler, sampler_tcp_off);
	EXPECT_TRUE(h.logged("TURNING OFF TCP"));
	tcp_port = 9999;
	EXPECT_EQ((h.texts[{ window_sampler, sampler_tcp_status }]), "USING MIDI");
}

TEST_F(window_commands, load_with_an_empty_list_does_nothing)
{
	conf_sampler.clear();
	velmor_command(window_main, main_load);
	host.ui->select(window_main, main_sampler_list, 3);
	velmor_command(window_main, main_load);
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_EQ(current_sampler, nullptr);
}

TEST_F(window_commands, a_second_press_during_a_transfer_is_dropped)
{
	fake_model model(h);
	model.names = { "KICK", "SNARE" };
	velmor_command(window_main, main_samples);
	host.ui->select(window_samples, samples_loaded_list, 0);
	bool tried = false;
	model.on_step = [&](int) {
		tried = true;
		EXPECT_TRUE(command_running());
		EXPECT_FALSE(velmor_command(window_samples, samples_download));
		EXPECT_FALSE(velmor_command(window_main, main_load));
		EXPECT_FALSE(velmor_selection(window_samples, samples_local_list));
		EXPECT_TRUE(velmor_command(window_samples, control_cancel));
	};
	model.calls.clear();
	EXPECT_TRUE(velmor_command(window_samples, samples_download));
	EXPECT_TRUE(tried);
	EXPECT_FALSE(command_running());
	EXPECT_EQ(model.calls.front(), "downloadsample KICK");
	EXPECT_EQ(std::count(model.calls.begin(), model.calls.end(), "downloadsample KICK"), 1);
}

TEST_F(window_commands, closing_during_a_transfer_stops_it_and_closes_after_it)
{
	fake_model model(h);
	model.names = { "KICK", "SNARE" };
	velmor_command(window_main, main_samples);
	model.calls.clear();
	model.on_step = [&](int step) {
		if (step == 1) {
			EXPECT_TRUE(velmor_command(window_main, menu_exit));
		}
		EXPECT_FALSE(h.logged("[D] Closing Application!"));
	};
	EXPECT_THROW(velmor_command(window_samples, samples_download_all), process_ended);
	EXPECT_EQ(model.calls, std::vector<std::string>{ "downloadsample KICK" });
	EXPECT_FALSE(h.progress.visible);
	EXPECT_TRUE(h.logged("[D] Closing Application!"));
	EXPECT_FALSE(h.content(h.config + "\\sample\\KICK.wav"));
}

TEST_F(window_commands, exit_closes_at_once_when_nothing_runs)
{
	EXPECT_THROW(velmor_command(window_main, menu_exit), process_ended);
	EXPECT_FALSE(command_running());
}

TEST_F(window_commands, a_bar_left_behind_by_a_failure_can_be_put_away)
{
	show_progressbar(0, 10, "Uploading [KICK]...");
	velmor_command(window_progress, progress_stop);
	EXPECT_FALSE(h.progress.visible);
}

// ---- Entries of the list ----------------------------------------------------------------------------

namespace
{

usb_service some_usb;
std::vector<usb_device> plugged;

class sampler_entries : public window_commands
{
protected:
	sampler_entries()
	{
		put("Attic", 1000, "");
		put("Rack", 1007, "");
		put("Stage", 1003, "Z8 live");
		load_sampler_list();
		std::sort(conf_sampler.begin(), conf_sampler.end());
		show_sampler_list();
	}
	~sampler_entries() override
	{
		usbdev.clear();
		usb_init_done = 0;
	}
	// Name, USB name, and four numbers of four bytes: model, control, MIDI and exclusive channel.
	void put(const char *name, int model, const char *usb_name)
	{
		std::vector<u8> bytes(536);
		std::strcpy(reinterpret_cast<char *>(&bytes[0]), name);
		std::strcpy(reinterpret_cast<char *>(&bytes[256]), usb_name);
		bytes[512] = static_cast<u8>(model);
		bytes[513] = static_cast<u8>(model >> 8);
		bytes[516] = 3;
		bytes[520] = 4;
		bytes[524] = 5;
		h.put_content(path(name), bytes);
	}
	std::string path(const std::string &name) { return h.config + "\\" + name + ".sampler"; }
	void choose(int index) { host.ui->select(window_main, main_sampler_list, index); }
	std::vector<u8> numbers(const std::string &name)
	{
		const auto file = h.content(path(name));
		return file ? std::vector<u8>(file->begin() + 512, file->end()) : std::vector<u8>();
	}
	std::string outcome_line() { return h.texts[{ window_main, status_outcome }]; }
	std::string details(std::size_t row)
	{
		return h.rows[{ window_main, main_sampler_list }][row][1];
	}
};

} // namespace

TEST_F(sampler_entries, are_edited_without_being_loaded)
{
	choose(2);
	velmor_command(window_main, main_entry_edit);
	EXPECT_TRUE((h.visible[{ window_sampler, 0 }]));
	EXPECT_EQ((h.texts[{ window_sampler, sampler_name }]), "Stage");
	EXPECT_EQ((h.texts[{ window_sampler, control_ok }]), "Save changes");
	EXPECT_EQ((h.selections[{ window_sampler, sampler_brand_list }]), 8);
	EXPECT_EQ((h.selections[{ window_sampler, sampler_control_list }]), 2);
	EXPECT_EQ((h.selections[{ window_sampler, sampler_midi_list }]), 3);
	EXPECT_EQ((h.selections[{ window_sampler, sampler_exclusive_list }]), 5);
	choose(0); // meanwhile
	h.texts[{ window_sampler, sampler_name }] = "Rack";
	velmor_command(window_sampler, control_ok);
	EXPECT_EQ(h.boxes.back(),
		(shown_box{ "There is a sampler called 'Rack' already. Please choose another name.",
			"Info" }));
	EXPECT_TRUE((h.visible[{ window_sampler, 0 }]));
	h.texts[{ window_sampler, sampler_name }] = "Club";
	host.ui->select(window_sampler, sampler_exclusive_list, 9);
	velmor_command(window_sampler, control_ok);
	EXPECT_FALSE((h.visible[{ window_sampler, 0 }]));
	EXPECT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(current_sampler, nullptr);
	EXPECT_EQ(numbers("Club"), hex("EB 03 00 00 03 00 00 00 04 00 00 00 09 00 00 00 00*8"));
	EXPECT_EQ(h.content(path("Club"))->at(256), 'Z') << "of the USB it stays";
	EXPECT_FALSE(h.content(path("Stage")));
	EXPECT_TRUE(h.content(h.config + "\\deleted\\Stage.sampler"));
	EXPECT_EQ(outcome_line(), "Saved the changes of the sampler 'Club'.");
	EXPECT_EQ(conf_sampler[static_cast<std::size_t>(
			  h.selections[{ window_main, main_sampler_list }])],
		"Club");
	// The menu means the loaded one again, or a new one.
	velmor_command(window_main, menu_midi_samplers);
	EXPECT_EQ((h.texts[{ window_sampler, control_ok }]), "Create new");
	// A loaded one takes its changes over.
	choose(1);
	velmor_command(window_main, main_load);
	velmor_command(window_main, main_entry_edit);
	host.ui->select(window_sampler, sampler_exclusive_list, 17);
	velmor_command(window_sampler, control_ok);
	EXPECT_EQ(current_sampler->sampler_sysex_channel, 17u);
}

TEST_F(sampler_entries, are_removed_to_deleted_and_put_back)
{
	host.files->make_folder((h.config + "\\deleted").c_str());
	h.put_content(h.config + "\\deleted\\Rack.sampler", hex("01"));
	const auto before = h.content(path("Rack"));
	choose(1);
	velmor_command(window_main, main_entry_remove);
	EXPECT_FALSE(h.content(path("Rack")));
	EXPECT_EQ(h.content(h.config + "\\deleted\\Rack (2).sampler"), before);
	EXPECT_EQ(conf_sampler.size(), 2u);
	EXPECT_EQ((h.selections[{ window_main, main_sampler_list }]), 1) << "the neighbour";
	EXPECT_EQ(outcome_line(), "Removed the sampler 'Rack' from the list.");
	EXPECT_TRUE((h.visible[{ window_main, status_undo }]));
	velmor_command(window_main, status_undo);
	EXPECT_EQ(h.content(path("Rack")), before);
	EXPECT_EQ(conf_sampler.size(), 3u);
	EXPECT_EQ(outcome_line(), "Put the sampler 'Rack' back.");
	EXPECT_TRUE(h.boxes.empty());
	const std::pair<int, int> removing = { window_main, main_entry_remove };
	EXPECT_EQ(h.reasons[removing], "");
	for (int left = 3; left > 0; left--)
		velmor_command(window_main, main_entry_remove);
	EXPECT_TRUE(conf_sampler.empty());
	EXPECT_EQ(h.reasons[removing], "Choose a sampler in the list first.");
	velmor_command(window_main, main_entry_remove);
	h.put_content(path("New"), std::vector<u8>(536));
	velmor_command(window_main, main_read_again);
	EXPECT_EQ(conf_sampler, std::vector<std::string>{ "New" });
}

TEST_F(sampler_entries, say_whether_they_are_plugged_in_once_that_is_known)
{
	some_usb = *host.usb;
	int asked = 0;
	static int *count;
	count = &asked;
	some_usb.list = [](std::vector<usb_device> *devices) {
		*devices = plugged;
		++*count;
		return true;
	};
	host.usb = &some_usb;
	update_plugged_entries();
	EXPECT_EQ(asked, 0) << "nothing on the USB is touched before a load";
	EXPECT_EQ(details(2), "Akai Z4/Z8 · USB, channel 5");
	usbdev.resize(1);
	copy_text(usbdev[0].usb_name, "Z8 live");
	copy_text(usbdev[0].device_path, "1-2");
	usbdev[0].device_handle = no_usb_handle;
	usb_init_done = 1;
	plugged = {
		{ .vendor = 0x09E8, .product = 0, .path = "1-2", .address = "", .interfaces = {} }
	};
	update_plugged_entries();
	EXPECT_EQ(details(2), "Akai Z4/Z8 · USB, plugged in");
	EXPECT_EQ(details(0), "Akai S900/950 · MIDI, channel 5");
	plugged[0].path = "1-3"; // another one
	update_plugged_entries();
	EXPECT_EQ(details(2), "Akai Z4/Z8 · USB, not plugged in");
}

TEST_F(window_commands, the_log_is_saved_whole_or_the_words_say_why_not)
{
	static std::string wanted;
	ui_service ui = *host.ui;
	ui.choose_new_file = [](const char *, const char *, const char *) { return wanted; };
	host.ui = &ui;
	const std::string path = h.config + "\\log.txt";
	wanted = "";
	velmor_command(window_main, main_log_save);
	wanted = path;
	h.texts[{ window_main, main_log_whole }] = "[I] long ago\n";
	velmor_command(window_main, main_log_save);
	const auto saved = h.content(path);
	ASSERT_TRUE(saved);
	EXPECT_EQ(std::string(saved->begin(), saved->end()), "[I] long ago\n");
	h.disk.space_left = 3;
	velmor_command(window_main, main_log_save);
	EXPECT_EQ(h.content(path), saved);
	EXPECT_EQ(h.boxes.back().text,
		"The disk is full: there is no room for " + h.root + "/VELMOR/CONFIG/log.txt.");
}

// ---- Multis -------------------------------------------------------------------------------------

class multi_page : public window_commands
{
protected:
	multi_page() : model(h)
	{
		model.row.getproglist = nullptr;
		model.row.getmultilist = [](u8, u8, _dev_status *dev) {
			dev->multis = dev->status == 1 ? 2 : 0;
			copy_text(dev->multi[0].name, "ROCK");
			copy_text(dev->multi[1].name, "JAZZ");
		};
	}
	const std::pair<int, int> list = { window_multis, multis_list };
	fake_model model;
};

TEST_F(multi_page, a_silent_sampler_is_told_from_one_without_multis)
{
	model.silent = true;
	velmor_command(window_main, main_multis);
	EXPECT_EQ(h.states[list].first, list_state::silent);
	EXPECT_TRUE((h.visible[{ window_multis, multis_retry }]));
	EXPECT_TRUE(h.boxes.empty());
	model.silent = false;
	velmor_command(window_multis, multis_retry);
	EXPECT_EQ(h.states[list].first, list_state::fresh);
	EXPECT_EQ(h.lists[list], (std::vector<std::string>{ "ROCK", "JAZZ" }));
	EXPECT_FALSE((h.enabled[{ window_multis, multis_download }]));
	EXPECT_TRUE((h.texts[{ window_multis, multis_heading }]).starts_with("2 multis · read "));
	EXPECT_TRUE(h.logged("Loaded Multi[1]: [JAZZ]"));
	model.row.getmultilist = nullptr;
	velmor_command(window_multis, multis_refresh);
	EXPECT_EQ(h.boxes.back().text, "No Sampler loaded/Function not supported by Sampler");
	EXPECT_EQ(h.lists[list].size(), 2u);
}

TEST_F(multi_page, exit_in_the_first_list_operation_begins_no_second)
{
	model.row.getstatus = [](u8, u8, _dev_status *dev) {
		dev->status = 1;
		EXPECT_TRUE(velmor_command(window_main, menu_exit));
	};
	EXPECT_THROW(velmor_command(window_main, main_multis), process_ended);
	EXPECT_TRUE(model.calls.empty());
	EXPECT_TRUE(h.lists[list].empty());
}
