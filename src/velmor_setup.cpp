// velmor_setup.cpp - the main window, the settings and the dialog of a MIDI sampler
//
// Knows nothing of: toolkits, models.

#include "src/lcd.h"
#include "src/usbqx.h"
#include "src/velmor_midi.h"
#include "src/velmor_monitor.h"
#include "src/velmor_record.h"
#include "src/velmor_window.h"
#include <cstdlib>
#include <cstring>

namespace velmor
{

// ---- Closing ----------------------------------------------------------------------------

// A command that runs is asked to stop; when it has come back, this is entered again.
static void leave()
{
	if (command_running()) {
		request_close(true);
		return;
	}
	if (!may_lose_edits(true))
		return;
	if (song_plays())
		stop_really_all(window_midi_files);
	end_monitor();
	end_test_notes();
	log_line("[D] Closing Application!\r\n");
	end_program(0);
}

// ---- Settings ---------------------------------------------------------------------------

static std::vector<std::string> with_first(const char *first, const std::vector<std::string> &rest)
{
	std::vector<std::string> items = { first };
	items.insert(items.end(), rest.begin(), rest.end());
	return items;
}

static void fill_devices(int control, const std::vector<std::string> &devices, int chosen)
{
	host.ui->set_list(window_settings, control, with_first("Select Interface", devices));
	host.ui->select(window_settings, control, chosen + 1);
}

void show_midi_setup()
{
	reload_midi_setup(false);
	if (midi_in_interfaces == 0 && midi_out_interfaces == 0) {
		show_box("Fatal Error!", "No MIDI Interfaces found in this system!");
		return;
	}
	open_window(window_settings);
	reload_midi_setup(true);
	fill_devices(settings_midi_in, midi_in_interface, selected_midi_in_interface);
	fill_devices(settings_midi_in_mon, midi_in_interface, selected_midi_in_mon_interface);
	fill_devices(settings_midi_out, midi_out_interface, selected_midi_out_interface);
	host.ui->set_text(window_settings, settings_config_path,
		host.files->host_path(current_config_path.c_str()).c_str());
}

// Another way to the sampler: what it said on the old one is void.
static void forget_if_another(const std::string &before)
{
	if (way_key() != before)
		forget_line();
}

static void keep_settings()
{
	const std::string way = way_key(), folder = current_config_path;
	save_settings();
	close_midi_output();
	forget_if_another(way);
	load_sampler_list();
	if (folder != current_config_path)
		show_spool();
	host.ui->show(window_settings, 0, false);
}

static void choose_midi_in()
{
	const int index = host.ui->selection(window_settings, settings_midi_in);
	if (index < 0)
		return;
	const std::string way = way_key();
	selected_midi_in_interface = index - 1;
	forget_if_another(way);
}

static void choose_midi_out()
{
	const int index = host.ui->selection(window_settings, settings_midi_out);
	if (index < 0)
		return;
	// Its notes would sound on where nobody lets go of them.
	if (song_plays() && selected_midi_out_interface != index - 1)
		stop_really_all(window_midi_files);
	const std::string way = way_key();
	selected_midi_out_interface = index - 1;
	close_midi_output();
	forget_if_another(way);
}

// The bridge is the sampler dialog's; from here it is only noted that it was wanted.
static void note_tcp()
{
	log_line("Requesting TCP instead of MIDI\r\n");
}

static void note_midi()
{
	log_line("Requesting MIDI instead of TCP\r\n");
}

// ---- Sampler dialog -----------------------------------------------------------------------

template <std::size_t size>
static std::vector<std::string> up_to_null(const std::array<const char *, size> &texts)
{
	std::vector<std::string> items;
	for (const char *text : texts) {
		if (!text)
			break;
		items.emplace_back(text);
	}
	return items;
}

// Once, on the first opening.
static void fill_sampler_lists()
{
	if (was_opened(window_sampler))
		return;
	std::vector<std::string> brands;
	for (int row = 0; row < get_sampler_type_count(); row++)
		brands.emplace_back(sampler_type[row].sampler_brand);
	host.ui->set_list(window_sampler, sampler_brand_list, brands);
	host.ui->set_list(window_sampler, sampler_midi_list, up_to_null(midi_channel));
	host.ui->set_list(window_sampler, sampler_control_list, up_to_null(midi_channel));
	host.ui->set_list(window_sampler, sampler_exclusive_list, up_to_null(sysex_chan));
	fill_note_lists();
}

static void show_verdict(const std::string &words, text_role role)
{
	host.ui->set_text(window_sampler, sampler_verdict, words.c_str());
	host.ui->set_role(window_sampler, sampler_verdict, role);
}

void show_sampler_setup()
{
	forget_edited_entry();
	fill_sampler_lists();
	const _sampler none = { .sampler_description = "",
		.sampler_usbname = "",
		.sampler_type = 0,
		.sampler_sysex = 1,
		.sampler_midi = 1,
		.sampler_sysex_channel = 0,
		.status = nullptr };
	select_in_sampler_dialog(current_sampler ? *current_sampler : none);
	host.ui->set_text(
		window_sampler, control_ok, current_sampler ? "Save changes" : "Create new");
	show_verdict("", text_role::quiet);
	show_chosen_ports();
	open_window(window_sampler);
}

// Nobody is left who could end what it began.
static void hide_sampler_dialog()
{
	end_test_notes();
	monitor_off();
	host.ui->show(window_sampler, 0, false);
}

static void keep_sampler()
{
	if (entry_is_edited() ? save_edited_entry() != 0 : save_sampler() != 0)
		return;
	if (!entry_is_edited())
		empty_open_pages();
	forget_edited_entry();
	hide_sampler_dialog();
}

static void ask_device_info()
{
	log_line("[D] Requesting Sampler-Info\r\n");
	const int brand = host.ui->selection(window_sampler, sampler_brand_list);
	const int control = host.ui->selection(window_sampler, sampler_control_list);
	const int exclusive = host.ui->selection(window_sampler, sampler_exclusive_list);
	if (brand < 0 || control < 0 || exclusive < 0)
		return;
	const i32 brand_id = get_sampler_brand_id(brand);
	log_line("[D] Requesting Sampler-Info, Brand: %d, MIDI_CHANNEL: %d, SYSEXCHAN: %d\r\n",
		brand_id, control + 1, exclusive);
	char result[1024] = {};
	int limit = sizeof result;
	show_verdict(tr("Asking ..."), text_role::quiet);
	const outcome asked = get_device_info(
		static_cast<u8>(control + 1), brand_id, static_cast<u8>(exclusive), result, &limit);
	show_verdict(asked.words, asked.done() ? text_role::good : text_role::failed);
	for (const kept_box &box : asked.told)
		show_box(box.caption.c_str(), "%s", box.text.c_str());
}

static void turn_tcp_on()
{
	copy_text(tcp_address, host.ui->get_text(window_sampler, sampler_tcp_address));
	const long port = std::strtol(
		host.ui->get_text(window_sampler, sampler_tcp_port).c_str(), nullptr, 10);
	tcp_port = port > 0 && port <= 65535 ? static_cast<u16>(port) : u16{ 0 };
	log_line("TURNING ON TCP (%s:%d)\r\n", tcp_address, tcp_port);
	switch_on_tcp();
	forget_line();
}

static void turn_tcp_off()
{
	log_line("TURNING OFF TCP\r\n");
	switch_off_tcp();
	forget_line();
}

// ---- Main window ----------------------------------------------------------------------------

static void show_first_program()
{
	show_pgm_setup(0);
}

static void load_selected_sampler()
{
	const int index = host.ui->selection(window_main, main_sampler_list);
	if (index < 0 || index >= static_cast<int>(conf_sampler.size()))
		return;
	if (!may_lose_edits(false))
		return;
	log_line("[I] Loading sampler [%d]\r\n", index);
	// Loading may rebuild the list that holds the name.
	const std::string name = conf_sampler[static_cast<std::size_t>(index)];
	const outcome loaded = load_by_name(name);
	empty_open_pages();
	show_outcome(loaded);
}

static void toggle_recording()
{
	const outcome done =
		recording() ? stop_recording()
			    : start_recording(host.ui->checked(window_main, menu_record_names));
	host.ui->set_checked(window_main, menu_record, recording());
	show_outcome(done);
}

// It counts for the next recording; the entry keeps its own mark.
static void note_names_wanted() {}

// The panel's picture stands still from the start of this work on.
template <void (*work)()> static void without_panel()
{
	stop_panel();
	work();
}

void empty_open_pages()
{
	empty_panel();
	empty_sample_page();
	empty_program_page();
	empty_multi_page();
}

void set_up_windows()
{
	open_window(window_main);
	const bool bridge = current_run_mode.diagnostics;
	host.ui->show(window_sampler, sampler_tcp_group, bridge);
	if (!bridge)
		return;
	host.ui->set_text(window_sampler, sampler_tcp_address, tcp_address);
	host.ui->set_text(window_sampler, sampler_tcp_port, format_text("%d", tcp_port).c_str());
	host.ui->set_text(window_sampler, sampler_tcp_status, use_tcp ? "USING TCP" : "USING MIDI");
}

// ---- Rows -------------------------------------------------------------------------------------

// clang-format off
static constexpr caption_row main_captions[] = {
	// window          control                  caption, tooltip, empty
	{ window_main,     0,                       "VELMOR Sysex-Tools", nullptr, nullptr },
	{ window_main,     menu_midi_files,         "Manage MIDI-Files", own("Play a Standard MIDI File to the sampler"), nullptr },
	{ window_main,     menu_history,            own("History..."), own("See what was changed on the sampler, and put it back"), nullptr },
	{ window_main,     menu_exit,               "E&xit", own("Close the program"), nullptr },
	{ window_main,     menu_settings,           "Basic settings", own("Choose the MIDI ports and the folder for your samples"), nullptr },
	{ window_main,     menu_midi_samplers,      "Manage MIDI &Samplers", own("Tell the program about a sampler that is connected by MIDI"), nullptr },
	{ window_main,     menu_record,             own("Record traffic"), own("Write everything that goes over the lines to a file, for a report"), nullptr },
	{ window_main,     menu_record_names,       own("Leave names out of recordings"), own("Put other words for the names of programs and samples in the next recording"), nullptr },
	{ window_main,     menu_usb_samplers,       "Manage &USB &Samplers", own("Tell the program about a sampler that is connected by USB"), nullptr },
	{ window_main,     main_log,                own("Log"), own("What the program and the sampler have done so far"), nullptr },
	{ window_main,     main_sampler_list,       own("Samplers"), own("The samplers you have set up; choose one and load it"), own("No sampler configured yet: Settings, Manage MIDI Samplers") },
	{ window_main,     main_load,               "Load Sampler", own("Work with the chosen sampler"), nullptr },
	{ window_main,     main_samples,            "Manage Samples", own("Fetch, send, rename, delete and import samples"), nullptr },
	{ window_main,     main_programs,           "Manage Programs", own("See, edit, send, keep, rename and delete programs"), nullptr },
	{ window_main,     main_multis,             "Manage Multis", own("See the multis on the sampler"), nullptr },
	{ window_main,     main_lcd,                "View LCD-Display", own("See the sampler's screen and press its keys from here"), nullptr },
};
static constexpr command_row main_commands[] = {
	// window          control                  what it does               when
	{ window_main,     menu_midi_files,         midi_files_win_show,       alone  },
	{ window_main,     menu_history,            show_history,              alone  },
	{ window_main,     menu_exit,               without_panel<leave>, always },
	{ window_main,     menu_settings,           without_panel<show_midi_setup>, alone  },
	{ window_main,     menu_midi_samplers,      without_panel<show_sampler_setup>, alone  },
	{ window_main,     menu_record,             toggle_recording,          always },
	{ window_main,     menu_record_names,       note_names_wanted,         always },
	{ window_main,     menu_usb_samplers,       without_panel<show_usb_sampler_setup>, alone  },
	{ window_main,     main_load,               without_panel<load_selected_sampler>, alone  },
	{ window_main,     main_samples,            without_panel<show_sample_setup>, alone  },
	{ window_main,     main_programs,           show_first_program,        alone  },
	{ window_main,     main_multis,             show_multi_setup,          alone  },
};

static constexpr caption_row settings_captions[] = {
	{ window_settings, 0,                       "VELMOR General Setup", nullptr, nullptr },
	{ window_settings, settings_midi_in,        own("MIDI-In:"), own("The port on which the sampler answers"), nullptr },
	{ window_settings, settings_midi_in_mon,    own("MIDI-In (Monitor):"), own("The port whose messages the monitor shows"), nullptr },
	{ window_settings, settings_midi_out,       own("MIDI-Out:"), own("The port to which the sampler listens"), nullptr },
	{ window_settings, settings_found,          own("Interfaces:"), own("The MIDI ports of this computer"), own("No MIDI ports found") },
	{ window_settings, settings_config_path,    "Config-Path:", own("The folder of your samplers and, in its folder sample, of your samples"), nullptr },
	{ window_settings, control_ok,              "&Save settings", own("Keep these settings"), nullptr },
	{ window_settings, control_cancel,          "&Cancel", own("Close without saving"), nullptr },
};
static constexpr command_row settings_commands[] = {
	{ window_settings, control_ok,              keep_settings,             alone  },
	{ window_settings, control_cancel,          hide_window<window_settings>, always },
	{ window_settings, sampler_tcp_on,          note_tcp,                  alone  },
	{ window_settings, sampler_tcp_off,         note_midi,                 alone  },
};
static constexpr command_row settings_selections[] = {
	{ window_settings, settings_midi_in,        choose_midi_in,            alone  },
	{ window_settings, settings_midi_out,       choose_midi_out,           alone  },
};

static constexpr caption_row sampler_captions[] = {
	{ window_sampler,  0,                       "VELMOR Manage current Sampler", nullptr, nullptr },
	{ window_sampler,  sampler_name,            own("Name:"), own("Any name by which you know this sampler"), own("For example S3000 in the rack") },
	{ window_sampler,  sampler_brand_list,      own("Brand:"), own("The model of the sampler"), nullptr },
	{ window_sampler,  sampler_midi_list,       "Midi-Ch(1-16):", own("The channel on which the sampler plays notes"), nullptr },
	{ window_sampler,  sampler_control_list,    "CTRL-Ch(1-16):", own("The basic channel of the sampler"), nullptr },
	{ window_sampler,  sampler_exclusive_list,  "Sysex-Ch (1-127):", own("The exclusive channel, as the sampler's own MIDI page shows it"), nullptr },
	{ window_sampler,  sampler_device_info,     "Get Device Info", own("Ask the sampler who it is"), nullptr },
	{ window_sampler,  control_ok,              "&Save", own("Keep this sampler in the list"), nullptr },
	{ window_sampler,  control_cancel,          "&Cancel", own("Close without saving"), nullptr },
	{ window_sampler,  sampler_tcp_group,       "TCP bridge", nullptr, nullptr },
	{ window_sampler,  sampler_tcp_address,     own("Address:"), own("Address of the device that passes the messages on to the sampler"), nullptr },
	{ window_sampler,  sampler_tcp_port,        own("Port:"), own("Its port"), nullptr },
	{ window_sampler,  sampler_tcp_on,          "Use TCP instead of MIDI", own("Send the messages over the network"), nullptr },
	{ window_sampler,  sampler_tcp_off,         "Use MIDI instead of TCP", own("Send the messages to the MIDI port again"), nullptr },
	{ window_sampler,  sampler_tcp_status,      own("Status:"), own("Which way the messages go now"), "USING MIDI" },
	{ window_sampler,  sampler_verdict,         own("Answer of the sampler"), nullptr, nullptr },
	{ window_sampler,  sampler_pitch_list,      own("Note:"), own("The note that is played; 60 is middle C"), nullptr },
	{ window_sampler,  sampler_velocity_list,   own("Velocity:"), own("How hard it is played"), nullptr },
	{ window_sampler,  sampler_note_on,         "Note on", own("Play the note on the MIDI channel above"), nullptr },
	{ window_sampler,  sampler_note_off,        "Note off", own("End the note"), nullptr },
	{ window_sampler,  sampler_all_notes_off,   "All Note Off", own("End all notes of the MIDI channel above"), nullptr },
	{ window_sampler,  sampler_monitor_on,      "Mon. on", own("Pass on what comes in to the sampler, and tell it in the log"), nullptr },
	{ window_sampler,  sampler_monitor_off,     "Mon. off", own("End the monitor"), nullptr },
	{ window_sampler,  sampler_monitor_state,   own("Monitor:"), nullptr, nullptr },
	{ window_sampler,  sampler_midi_in_text,    own("MIDI-In (Monitor):"), own("Where the monitor listens; Basic settings choose it"), nullptr },
	{ window_sampler,  sampler_midi_out_text,   own("MIDI-Out:"), own("Where notes go; Basic settings choose it"), nullptr },
};
static constexpr command_row sampler_commands[] = {
	{ window_sampler,  control_ok,              keep_sampler,              alone  },
	{ window_sampler,  control_cancel,          hide_sampler_dialog,       always },
	{ window_sampler,  sampler_device_info,     ask_device_info,           alone  },
	{ window_sampler,  sampler_note_on,         test_note_on,              alone  },
	{ window_sampler,  sampler_note_off,        test_note_off,             always },
	{ window_sampler,  sampler_all_notes_off,   all_test_notes_off,        always },
	{ window_sampler,  sampler_monitor_on,      monitor_on,                alone  },
	{ window_sampler,  sampler_monitor_off,     monitor_off,               always },
	{ window_sampler,  sampler_tcp_on,          turn_tcp_on,               alone  },
	{ window_sampler,  sampler_tcp_off,         turn_tcp_off,              alone  },
};
// clang-format on

constinit const window_rows main_rows = { main_captions, main_commands };
constinit const window_rows settings_rows = { settings_captions, settings_commands,
	settings_selections };
constinit const window_rows sampler_rows = { sampler_captions, sampler_commands };

} // namespace velmor
