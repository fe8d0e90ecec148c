// velmor_window.cpp - the table of commands and the words of the windows
//
// A command is a row: window, id, what it does, when it may run. One command
// runs at a time. Waits inside it run interface events, so a second press can
// arrive in the middle of a transfer: it is dropped, unless its row says that
// it may always run (Stop, Cancel, closing).
//
// Closing the main window during a transfer asks the transfer to stop, and
// closes when its command has come back, so that the sampler is not left in
// the middle of a message.

#include "src/velmor_window.h"
#include "src/usbqx.h"
#include <cstdlib>
#include <cstring>

namespace velmor
{

// ---- Words ------------------------------------------------------------------------------

// clang-format off
static constexpr caption_row caption_rows[] = {
	// window          control                  caption, tooltip, empty
	{ window_main,     0,                       "VELMOR Sysex-Tools", nullptr, nullptr },
	{ window_main,     menu_exit,               "E&xit", "Close the program", nullptr },
	{ window_main,     menu_settings,           "Basic settings", "Choose the MIDI ports and the folder for your samples", nullptr },
	{ window_main,     menu_midi_samplers,      "Manage MIDI &Samplers", "Tell the program about a sampler that is connected by MIDI", nullptr },
	{ window_main,     menu_usb_samplers,       "Manage &USB &Samplers", "Tell the program about a sampler that is connected by USB", nullptr },
	{ window_main,     main_log,                "Log", "What the program and the sampler have done so far", nullptr },
	{ window_main,     main_sampler_list,       "Samplers", "The samplers you have set up; choose one and load it", "No sampler configured yet: Settings, Manage MIDI Samplers" },
	{ window_main,     main_load,               "Load Sampler", "Work with the chosen sampler", nullptr },
	{ window_main,     main_samples,            "Manage Samples", "Fetch, send, rename, delete and import samples", nullptr },
	{ window_main,     main_multis,             "Manage Multis", "See the multis on the sampler", nullptr },

	{ window_settings, 0,                       "VELMOR General Setup", nullptr, nullptr },
	{ window_settings, settings_midi_in,        "MIDI-In:", "The port on which the sampler answers", nullptr },
	{ window_settings, settings_midi_in_mon,    "MIDI-In (Monitor):", "The port whose messages the monitor shows", nullptr },
	{ window_settings, settings_midi_out,       "MIDI-Out:", "The port to which the sampler listens", nullptr },
	{ window_settings, settings_found,          "Interfaces:", "The MIDI ports of this computer", "No MIDI ports found" },
	{ window_settings, settings_config_path,    "Config-Path:", "The folder of your samplers and, in its folder sample, of your samples", nullptr },
	{ window_settings, control_ok,              "&Save settings", "Keep these settings", nullptr },
	{ window_settings, control_cancel,          "&Cancel", "Close without saving", nullptr },

	{ window_sampler,  0,                       "VELMOR Manage current Sampler", nullptr, nullptr },
	{ window_sampler,  sampler_name,            "Name:", "Any name by which you know this sampler", "For example S3000 in the rack" },
	{ window_sampler,  sampler_brand_list,      "Brand:", "The model of the sampler", nullptr },
	{ window_sampler,  sampler_midi_list,       "Midi-Ch(1-16):", "The channel on which the sampler plays notes", nullptr },
	{ window_sampler,  sampler_control_list,    "CTRL-Ch(1-16):", "The basic channel of the sampler", nullptr },
	{ window_sampler,  sampler_exclusive_list,  "Sysex-Ch (1-127):", "The exclusive channel, as the sampler's own MIDI page shows it", nullptr },
	{ window_sampler,  sampler_device_info,     "Get Device Info", "Ask the sampler who it is; its answer appears in the log", nullptr },
	{ window_sampler,  control_ok,              "&Save", "Keep this sampler in the list", nullptr },
	{ window_sampler,  control_cancel,          "&Cancel", "Close without saving", nullptr },
	{ window_sampler,  sampler_tcp_group,       "TCP bridge", nullptr, nullptr },
	{ window_sampler,  sampler_tcp_address,     "Address:", "Address of the device that passes the messages on to the sampler", nullptr },
	{ window_sampler,  sampler_tcp_port,        "Port:", "Its port", nullptr },
	{ window_sampler,  sampler_tcp_on,          "Use TCP instead of MIDI", "Send the messages over the network", nullptr },
	{ window_sampler,  sampler_tcp_off,         "Use MIDI instead of TCP", "Send the messages to the MIDI port again", nullptr },
	{ window_sampler,  sampler_tcp_status,      "Status:", "Which way the messages go now", "USING MIDI" },

	{ window_usb,      0,                       "VELMOR Manage USB Samplers", nullptr, nullptr },
	{ window_usb,      usb_device_list,         "Device:", "The samplers found on the USB", "No sampler found on the USB" },
	{ window_usb,      usb_hardware,            "Hardware:", "What the sampler says it is", nullptr },
	{ window_usb,      usb_version,             "OS-Version:", "The version of its system", nullptr },
	{ window_usb,      usb_name,                "Sampler-Name:", "The sampler's own name; Update stores it in the sampler", nullptr },
	{ window_usb,      usb_exclusive_channel,   "Sysex-Ch:", "The exclusive channel", nullptr },
	{ window_usb,      usb_midi_channel,        "MIDI-Ch:", "The channel on which the sampler plays notes", nullptr },
	{ window_usb,      usb_control_channel,     "CTRL-Ch:", "The control channel", nullptr },
	{ window_usb,      usb_device_info,         "Get Device Info", "Ask the chosen sampler who it is", nullptr },
	{ window_usb,      usb_update,              "&Update", "Give the sampler the name in the field", nullptr },
	{ window_usb,      control_ok,              "&Save", "Keep this sampler in the list", nullptr },
	{ window_usb,      control_cancel,          "&Cancel", "Close without saving", nullptr },

	{ window_multis,   0,                       "VELMOR Manage Multis", nullptr, nullptr },
	{ window_multis,   multis_list,             "Multis", "The multis in the sampler's memory", "The sampler holds no multis" },
	{ window_multis,   multis_refresh,          "&Refresh", "Read the sampler anew", nullptr },
	{ window_multis,   control_cancel,          "&Cancel", "Close this window", nullptr },

	{ window_progress, 0,                       "Progress", nullptr, nullptr },
	{ window_progress, progress_stop,           "Stop", "End this work at the next point where the sampler stays usable", nullptr },

	{ window_samples,  0,                       "VELMOR Manage current Samples", nullptr, nullptr },
	{ window_samples,  samples_loaded_list,     "On the sampler", "The samples in the sampler's memory", "The sampler holds no samples" },
	{ window_samples,  samples_loaded_search,   "Search samples on the sampler", "Show only names that contain these letters", "Search" },
	{ window_samples,  samples_download,        "Download this Sample", "Copy the chosen sample from the sampler to this computer", nullptr },
	{ window_samples,  samples_download_all,    "Download all Samples", "Copy every sample of the sampler to this computer", nullptr },
	{ window_samples,  samples_loaded_delete,   "Delete this Sample", "Remove the chosen sample from the sampler's memory", nullptr },
	{ window_samples,  samples_loaded_rename,   "Rename this Sample", "Give the chosen sample on the sampler the name in the field", nullptr },
	{ window_samples,  samples_loaded_new_name, "New name on the sampler", "The name for Rename this Sample", "New name" },
	{ window_samples,  samples_loaded_info,     "Sample Information", "Ask the sampler about the chosen sample", nullptr },
	{ window_samples,  samples_refresh,         "Refresh", "Read the sampler and the spool anew", nullptr },
	{ window_samples,  samples_local_list,      "On this computer", "The samples in the spool; drop WAV files here to import them", "The spool is empty: download samples, or drop WAV files here" },
	{ window_samples,  samples_local_search,    "Search samples on this computer", "Show only names that contain these letters", "Search" },
	{ window_samples,  samples_upload,          "Upload this Sample", "Send the chosen sample to the sampler", nullptr },
	{ window_samples,  samples_local_delete,    "Delete this Sample", "Delete the chosen sample from this computer", nullptr },
	{ window_samples,  samples_local_rename,    "Rename this Sample", "Give the chosen sample on this computer the name in the field", nullptr },
	{ window_samples,  samples_local_new_name,  "New name on this computer", "The name for Rename this Sample", "New name" },
	{ window_samples,  samples_local_info,      "Sample Information", "Show what the file says about the chosen sample", nullptr },
	{ window_samples,  samples_waveform,        "Waveform", "The chosen sample on this computer; its loop is shaded", "No local sample chosen" },
	{ window_samples,  samples_detail_origin,   "Origin:", nullptr, nullptr },
	{ window_samples,  samples_detail_name,     "Name:", nullptr, nullptr },
	{ window_samples,  samples_detail_pitch,    "Original pitch:", nullptr, nullptr },
	{ window_samples,  samples_detail_rate,     "Rate (Hz):", nullptr, nullptr },
	{ window_samples,  samples_detail_seconds,  "Length (s):", nullptr, nullptr },
	{ window_samples,  samples_detail_channels, "Channels:", nullptr, nullptr },
	{ window_samples,  samples_detail_bits,     "Bits:", nullptr, nullptr },
	{ window_samples,  samples_detail_playmode, "Play mode:", nullptr, nullptr },
	{ window_samples,  samples_import,          "Import Sample", "Choose WAV files and convert them into the spool", nullptr },
	{ window_samples,  samples_export,          "Export Spool", "Copy every sample of the spool to a folder of your choice", nullptr },
	{ window_samples,  samples_clear,           "Clear Spool", "Delete every sample of the spool from this computer", nullptr },
	{ window_samples,  samples_bits_keep,       "Keep original", "Leave the bits of a value as they are", nullptr },
	{ window_samples,  samples_bits_16,         "Convert to 16 bit", "What most samplers take", nullptr },
	{ window_samples,  samples_bits_12,         "Convert to 12 bit", "For the S900/950", nullptr },
	{ window_samples,  samples_bits_24,         "Convert to 24 bit", nullptr, nullptr },
	{ window_samples,  samples_rate_keep,       "Keep original", "Leave the sampling rate as it is", nullptr },
	{ window_samples,  samples_rate_16000,      "16000 Hz", nullptr, nullptr },
	{ window_samples,  samples_rate_22000,      "22000 Hz", nullptr, nullptr },
	{ window_samples,  samples_rate_32000,      "32000 Hz", nullptr, nullptr },
	{ window_samples,  samples_rate_44100,      "44100 Hz", nullptr, nullptr },
	{ window_samples,  samples_rate_48000,      "48000 Hz", nullptr, nullptr },
	{ window_samples,  samples_rate_96000,      "96000 Hz", nullptr, nullptr },
	{ window_samples,  samples_channels_keep,   "Keep original", "Leave mono mono and stereo stereo", nullptr },
	{ window_samples,  samples_channels_1,      "1 Channel", "Make every sample mono", nullptr },
	{ window_samples,  samples_channels_2,      "2 Channel", "Make every sample stereo", nullptr },
	{ window_samples,  samples_mix_left,        "Left Channel", "From a stereo file take the left channel; put a mono file on the left", nullptr },
	{ window_samples,  samples_mix_right,       "Right Channel", "From a stereo file take the right channel; put a mono file on the right", nullptr },
	{ window_samples,  samples_mix_both_to_one, "Mix Channels", "From a stereo file take the average of both channels", nullptr },
	{ window_samples,  samples_mix_both,        "Both Channels", "Put a mono file on both channels", nullptr },
	{ window_samples,  samples_mix_files,       "Create L/R files", "Make two mono samples of a stereo file, with -L and -R behind their names", nullptr },
	{ window_samples,  samples_import_preview,  "Import preview", "What the options above make of a file, and how long the sampler takes to receive it", nullptr },
};
// clang-format on
const std::span<const caption_row> captions = caption_rows;

const caption_row *find_caption(int window, int control)
{
	for (const caption_row &row : captions)
		if (row.window == window && row.control == control)
			return &row;
	return nullptr;
}

// ---- Closing ----------------------------------------------------------------------------

static int commands_running;
static bool close_wanted;

static void close_application()
{
	log_line("[D] Closing Application!\r\n");
	end_program(0);
}

static void leave()
{
	if (!commands_running) {
		close_application();
		return;
	}
	close_wanted = true;
	stop_progress();
}

// ---- General setup ----------------------------------------------------------------------

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
	host.ui->show(window_settings, 0, true);
	reload_midi_setup(true);
	fill_devices(settings_midi_in, midi_in_interface, selected_midi_in_interface);
	fill_devices(settings_midi_in_mon, midi_in_interface, selected_midi_in_mon_interface);
	fill_devices(settings_midi_out, midi_out_interface, selected_midi_out_interface);
	host.ui->set_text(window_settings, settings_config_path,
		host.files->host_path(current_config_path.c_str()).c_str());
}

static void keep_settings()
{
	save_settings();
	close_midi_output();
	host.ui->show(window_settings, 0, false);
}

static void choose_midi_in()
{
	const int index = host.ui->selection(window_settings, settings_midi_in);
	if (index >= 0)
		selected_midi_in_interface = index - 1;
}

static void choose_midi_out()
{
	const int index = host.ui->selection(window_settings, settings_midi_out);
	if (index < 0)
		return;
	selected_midi_out_interface = index - 1;
	close_midi_output();
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

static bool sampler_lists_filled;

// Once, on the first opening.
static void fill_sampler_lists()
{
	if (sampler_lists_filled)
		return;
	std::vector<std::string> brands;
	for (int row = 0; row < get_sampler_type_count(); row++)
		brands.emplace_back(sampler_type[row].sampler_brand);
	host.ui->set_list(window_sampler, sampler_brand_list, brands);
	host.ui->set_list(window_sampler, sampler_midi_list, up_to_null(midi_channel));
	host.ui->set_list(window_sampler, sampler_control_list, up_to_null(midi_channel));
	host.ui->set_list(window_sampler, sampler_exclusive_list, up_to_null(sysex_chan));
	sampler_lists_filled = true;
}

void show_sampler_setup()
{
	fill_sampler_lists();
	const _sampler *s = current_sampler;
	auto select = [](int control, u32 index) {
		host.ui->select(window_sampler, control, static_cast<int>(index));
	};
	select(sampler_brand_list,
		s ? static_cast<u32>(get_sampler_brand_index(static_cast<i32>(s->sampler_type)))
		  : 0);
	select(sampler_midi_list, s ? s->sampler_midi - 1 : 0);
	select(sampler_control_list, s ? s->sampler_sysex - 1 : 0);
	select(sampler_exclusive_list, s ? s->sampler_sysex_channel : 0);
	host.ui->set_text(window_sampler, control_ok, s ? "Save changes" : "Create new");
	host.ui->show(window_sampler, 0, true);
}

static void keep_sampler()
{
	if (save_sampler() == 0)
		host.ui->show(window_sampler, 0, false);
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
	get_device_info(
		static_cast<u8>(control + 1), brand_id, static_cast<u8>(exclusive), result, &limit);
}

static void turn_tcp_on()
{
	copy_text(tcp_address, host.ui->get_text(window_sampler, sampler_tcp_address));
	const long port = std::strtol(
		host.ui->get_text(window_sampler, sampler_tcp_port).c_str(), nullptr, 10);
	tcp_port = port > 0 && port <= 65535 ? static_cast<u16>(port) : u16{ 0 };
	log_line("TURNING ON TCP (%s:%d)\r\n", tcp_address, tcp_port);
	switch_on_tcp();
}

static void turn_tcp_off()
{
	log_line("TURNING OFF TCP\r\n");
	switch_off_tcp();
}

// ---- USB dialog ---------------------------------------------------------------------------

static void keep_usb_sampler()
{
	save_usb_sampler();
	host.ui->show(window_usb, 0, false);
}

static void ask_usb_device()
{
	log_line("[D] Entering USB-Setup dialog...\r\n");
	fill_usb_info();
}

static void rename_usb_sampler()
{
	update_usb_sampler_name();
	host.ui->show(window_usb, 0, false);
}

// ---- Main window ----------------------------------------------------------------------------

static void load_selected_sampler()
{
	const int index = host.ui->selection(window_main, main_sampler_list);
	if (index < 0 || index >= static_cast<int>(conf_sampler.size()))
		return;
	log_line("[I] Loading sampler [%d]\r\n", index);
	// Loading may rebuild the list that holds the name.
	const std::string name = conf_sampler[static_cast<std::size_t>(index)];
	load_sampler(name.c_str());
}

template <int window> static void hide()
{
	host.ui->show(window, 0, false);
}

void set_up_windows()
{
	sampler_lists_filled = false;
	const bool bridge = current_run_mode.diagnostics;
	host.ui->show(window_sampler, sampler_tcp_group, bridge);
	if (!bridge)
		return;
	host.ui->set_text(window_sampler, sampler_tcp_address, tcp_address);
	host.ui->set_text(window_sampler, sampler_tcp_port, format_text("%d", tcp_port).c_str());
	host.ui->set_text(window_sampler, sampler_tcp_status, use_tcp ? "USING TCP" : "USING MIDI");
}

// ---- The table --------------------------------------------------------------------------------

enum command_time {
	alone,  // refused while another command runs
	always, // ends or hides something, so it may run inside another command
};

struct command_row {
	int window, control;
	void (*run)();
	command_time time;
};

// A transfer that failed leaves its bar on screen; then there is nothing to stop, and the
// button puts the bar away.
static void stop_work()
{
	if (commands_running)
		stop_progress();
	else
		hide_progressbar(0);
}

static void preview_options()
{
	show_import_preview({});
}

// clang-format off
// Buttons and menu entries.
static constexpr command_row commands[] = {
	// window          control                  what it does               when
	{ window_main,     menu_exit,               leave,                     always },
	{ window_main,     menu_settings,           show_midi_setup,           alone  },
	{ window_main,     menu_midi_samplers,      show_sampler_setup,        alone  },
	{ window_main,     menu_usb_samplers,       show_usb_sampler_setup,    alone  },
	{ window_main,     main_load,               load_selected_sampler,     alone  },
	{ window_main,     main_samples,            show_sample_setup,         alone  },
	{ window_main,     main_multis,             show_multi_setup,          alone  },
	{ window_settings, control_ok,              keep_settings,             alone  },
	{ window_settings, control_cancel,          hide<window_settings>,     always },
	{ window_sampler,  control_ok,              keep_sampler,              alone  },
	{ window_sampler,  control_cancel,          hide<window_sampler>,      always },
	{ window_sampler,  sampler_device_info,     ask_device_info,           alone  },
	{ window_sampler,  sampler_tcp_on,          turn_tcp_on,               alone  },
	{ window_sampler,  sampler_tcp_off,         turn_tcp_off,              alone  },
	{ window_usb,      control_ok,              keep_usb_sampler,          alone  },
	{ window_usb,      control_cancel,          hide<window_usb>,          always },
	{ window_usb,      usb_device_info,         ask_usb_device,            alone  },
	{ window_usb,      usb_update,              rename_usb_sampler,        alone  },
	{ window_multis,   multis_refresh,          show_multi_setup,          alone  },
	{ window_multis,   control_cancel,          hide<window_multis>,       always },
	{ window_progress, progress_stop,           stop_work,                 always },
	{ window_progress, control_cancel,          stop_work,                 always },
	{ window_samples,  control_cancel,          hide<window_samples>,      always },
	{ window_samples,  samples_refresh,         show_sample_setup,         alone  },
	{ window_samples,  samples_download,        download_selected_sample,  alone  },
	{ window_samples,  samples_download_all,    download_all_samples,      alone  },
	{ window_samples,  samples_loaded_delete,   delete_loaded_sample,      alone  },
	{ window_samples,  samples_loaded_rename,   rename_loaded_sample,      alone  },
	{ window_samples,  samples_loaded_info,     show_loaded_information,   alone  },
	{ window_samples,  samples_upload,          upload_selected_sample,    alone  },
	{ window_samples,  samples_local_delete,    delete_local_sample,       alone  },
	{ window_samples,  samples_local_rename,    rename_local_sample,       alone  },
	{ window_samples,  samples_local_info,      show_local_information,    alone  },
	{ window_samples,  samples_import,          import_samples,            alone  },
	{ window_samples,  samples_export,          export_spool,              alone  },
	{ window_samples,  samples_clear,           clear_spool,               alone  },
};

// Choices in lists and options.
static constexpr command_row selections[] = {
	{ window_settings, settings_midi_in,        choose_midi_in,            alone  },
	{ window_settings, settings_midi_out,       choose_midi_out,           alone  },
	{ window_samples,  samples_local_list,      show_local_selection,      alone  },
	{ window_samples,  samples_bits_keep,       preview_options,           alone  },
	{ window_samples,  samples_bits_16,         preview_options,           alone  },
	{ window_samples,  samples_bits_12,         preview_options,           alone  },
	{ window_samples,  samples_bits_24,         preview_options,           alone  },
	{ window_samples,  samples_rate_keep,       preview_options,           alone  },
	{ window_samples,  samples_rate_16000,      preview_options,           alone  },
	{ window_samples,  samples_rate_22000,      preview_options,           alone  },
	{ window_samples,  samples_rate_32000,      preview_options,           alone  },
	{ window_samples,  samples_rate_44100,      preview_options,           alone  },
	{ window_samples,  samples_rate_48000,      preview_options,           alone  },
	{ window_samples,  samples_rate_96000,      preview_options,           alone  },
	{ window_samples,  samples_channels_keep,   preview_options,           alone  },
	{ window_samples,  samples_channels_1,      preview_options,           alone  },
	{ window_samples,  samples_channels_2,      preview_options,           alone  },
	{ window_samples,  samples_mix_left,        preview_options,           alone  },
	{ window_samples,  samples_mix_right,       preview_options,           alone  },
	{ window_samples,  samples_mix_both_to_one, preview_options,           alone  },
	{ window_samples,  samples_mix_both,        preview_options,           alone  },
	{ window_samples,  samples_mix_files,       preview_options,           alone  },
};
// clang-format on

static const command_row *find_row(std::span<const command_row> rows, int window, int control)
{
	for (const command_row &row : rows)
		if (row.window == window && row.control == control)
			return &row;
	return nullptr;
}

// Counts the commands that run, also when exit_process leaves one of them.
struct running_command {
	running_command() { commands_running++; }
	~running_command() { commands_running--; }
	running_command(const running_command &) = delete;
};

static void close_if_wanted()
{
	if (commands_running || !close_wanted)
		return;
	close_wanted = false;
	close_application();
}

template <typename work> static bool run_guarded(command_time time, work run)
{
	if (time == always) {
		run();
		return true;
	}
	if (commands_running)
		return false;
	{
		running_command guard;
		run();
	}
	close_if_wanted();
	return true;
}

bool has_command(int window, int control)
{
	return find_row(commands, window, control) != nullptr;
}

bool velmor_command(int window, int control)
{
	const command_row *row = find_row(commands, window, control);
	return row && run_guarded(row->time, row->run);
}

bool velmor_selection(int window, int control)
{
	const command_row *row = find_row(selections, window, control);
	return row && run_guarded(row->time, row->run);
}

bool velmor_drop(int window, int control, std::span<const std::string> paths)
{
	if (window != window_samples || control != samples_local_list || paths.empty())
		return false;
	return run_guarded(alone, [paths] { import_files(paths); });
}

void velmor_hover(int window, int control, std::span<const std::string> paths)
{
	if (window == window_samples && control == samples_local_list)
		run_guarded(alone, [paths] { show_import_preview(paths); });
}

bool command_running()
{
	return commands_running > 0;
}

bool close_requested()
{
	return close_wanted;
}

void forget_commands()
{
	commands_running = 0;
	close_wanted = false;
	sampler_lists_filled = false;
}

} // namespace velmor
