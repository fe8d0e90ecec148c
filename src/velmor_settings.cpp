// velmor_settings.cpp - the user's settings, and the folder tree for all that is stored
//
// Four text values per user, and a run mode. Devices are stored by their place in
// the host's list, not by name, so a change of hardware shifts what a stored index
// means; only an index past the end is noticed.
//
//   <user root>\VELMOR\CONFIG      the .sampler files; the user may choose another folder
//                     \sample      the spool: .wav and .info files
//                     \pgm \multi \setup
//                     \temp \midi_dumps   made by those who use them
//
// Knows nothing of: where the host keeps settings.

#include "src/controls.h"
#include "src/velmor.h"
#include "src/velmor_files.h"
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace velmor
{

std::string current_config_path;

std::string file_name_of(std::string_view name)
{
	std::string out;
	for (const char c : name) {
		const u8 byte = static_cast<u8>(c);
		const bool unsafe = byte < 0x20 || byte == 0x7F || c == '/' || c == '\\';
		out += unsafe ? '_' : c;
	}
	if (out.empty() || out == "." || out == "..")
		out.assign(out.empty() ? 1 : out.size(), '_');
	return out;
}

// ---- Single values ------------------------------------------------------------------------

// A value that does not exist is the usual case of a first run and is not worth a box.
static constexpr int no_such_value = 2;

int load_key(const char *name, char *value)
{
	const int code = host.settings->load_key(name, value);
	if (code == 0)
		std::printf("Loaded [%s], Length: %d Bytes, Value: [%s]\r\n", name,
			static_cast<int>(std::strlen(value)) + 1, value);
	else if (code != no_such_value)
		display_error_text(__FILE_NAME__, __LINE__, host.settings->error_text(code));
	return code;
}

int save_key(const char *name, const char *value)
{
	const int code = host.settings->save_key(name, value);
	if (code)
		display_error_text(__FILE_NAME__, __LINE__, host.settings->error_text(code));
	return code;
}

void load_run_mode()
{
	current_run_mode = { .diagnostics = true, .multis = true };
	char value[setting_size];
	if (load_key("run_mode", value) != 0)
		return;
	const bool demo = std::strcmp(value, "demo") == 0;
	if (demo || std::strcmp(value, "user") == 0)
		current_run_mode = { .diagnostics = false, .multis = !demo };
}

// ---- Devices --------------------------------------------------------------------------------

struct device_setting {
	const char *key;
	const char *word;      // in the warning
	const char *direction; // on standard output
	int control;           // list of the settings dialog
	int *selected;
	const int *devices;
};

static const device_setting device_settings[] = {
	{ "midi_in", "MIDI-IN", "IN", settings_midi_in, &selected_midi_in_interface,
		&midi_in_interfaces },
	{ "midi_in_mon", "MIDI-IN-MON", "IN", settings_midi_in_mon, &selected_midi_in_mon_interface,
		&midi_in_interfaces },
	{ "midi_out", "MIDI-OUT", "OUT", settings_midi_out, &selected_midi_out_interface,
		&midi_out_interfaces },
};

static void load_device(const device_setting &row)
{
	char value[setting_size];
	*row.selected = -1;
	if (load_key(row.key, value) != 0)
		return;
	const long index = std::strtol(value, nullptr, 10); // 0 for what is not a number
	if (index >= -1 && index < *row.devices)
		*row.selected = static_cast<int>(index);
	else
		show_box("WARNING",
			"Stored %s Interface not connected any longer! Returning to defaults.",
			row.word);
}

// Entry 0 of a list is the line "Select Interface".
static void save_device(const device_setting &row)
{
	const int entry = host.ui->selection(window_settings, row.control);
	const int index = (entry < 0 ? 0 : entry & 0xFFFF) - 1;
	std::printf("Current selection (%s): %d\n", row.direction, index);
	*row.selected = index;
	if (save_key(row.key, format_text("%d", index).c_str()) != 0)
		end_program(0);
}

// ---- The folder of the configurations ---------------------------------------------------------

// As it is written inside the system, without a closing backslash.
static std::string folder_name(const std::string &path)
{
	std::string folder = host.files->system_path(path.c_str());
	while (folder.size() > 1 && folder.ends_with('\\'))
		folder.pop_back();
	return folder;
}

static void store_config_path()
{
	save_key("sampler_config_path", host.files->host_path(current_config_path.c_str()).c_str());
}

static void choose_first_config_path()
{
	const char *root = host.settings->user_root();
	if (!root) {
		display_error_text(__FILE_NAME__, __LINE__,
			tr("The system names no folder for this user's data. Is HOME set?"));
		end_program(0);
		return;
	}
	const std::string folder = std::string(root) + "\\VELMOR";
	(void)host.files->make_folder(folder.c_str());
	current_config_path = folder + "\\CONFIG";
	std::printf("CURRENT_CONFIG_PATH: [%s]\n",
		host.files->host_path(current_config_path.c_str()).c_str());
	store_config_path();
}

void load_settings()
{
	for (const device_setting &row : device_settings)
		load_device(row);
	char value[setting_size];
	if (load_key("sampler_config_path", value) == 0 && *value)
		current_config_path = folder_name(value);
	else
		choose_first_config_path();
	// A folder that exists is no error; one that cannot be made shows at its first use.
	(void)host.files->make_folder(current_config_path.c_str());
	for (const char *folder : { "sample", "pgm", "multi", "setup" })
		(void)host.files->make_folder((current_config_path + "\\" + folder).c_str());
	for (const char *folder : { "", "\\sample", "\\pgm", "\\multi", "\\setup" })
		remove_left_files(current_config_path + folder);
}

// True if path is a folder now. A setting holds one byte less than its room.
static bool make_config_folder(const std::string &path)
{
	if (path.empty() || path.size() >= setting_size)
		return false;
	const int code = host.files->make_folder(path.c_str());
	if (code && !host.files->exists_already(code))
		return false;
	file_info info;
	return host.files->stat(path.c_str(), &info) == 0 && info.folder;
}

void save_settings()
{
	for (const device_setting &row : device_settings)
		save_device(row);
	const std::string path = host.ui->get_text(window_settings, settings_config_path);
	const std::string folder = folder_name(path);
	if (!make_config_folder(folder)) {
		show_box("FATAL ERROR", "Config-Path: [%s] cannot be created!", path.c_str());
		return;
	}
	current_config_path = folder;
	store_config_path();
}

} // namespace velmor
