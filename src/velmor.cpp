// velmor.cpp - stored configurations, and the one loaded sampler
//
// A configuration is a file of 536 bytes, little-endian, in the configuration
// folder, named after the description that it holds:
//
//   OFFSET  SIZE  MEANING
//      0    256   description, NUL-terminated, rest zero; the file's base name
//    256    256   USB device name, the same; empty for a MIDI sampler
//    512      4   model id
//    516      4   control channel, 1 to 16
//    520      4   MIDI channel, 1 to 16
//    524      4   exclusive channel, 0 to 128
//    528      8   zero
//
// There is no magic number and no checksum, so only the length is tested, and no
// text is trusted to end.
//
// Knows nothing of: what models do.

#include "src/velmor.h"
#include "src/controls.h"
#include "src/usbqx.h"
#include "src/velmor_edits.h"
#include "src/velmor_files.h"
#include "src/velmor_window.h"
#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace velmor
{

std::vector<std::string> conf_sampler;
char current_usb_name[256] = "";

static constexpr std::size_t record_size = 536;
static_assert(sizeof(_sampler) == record_size && std::endian::native == std::endian::little,
	"the file is the record as it lies in memory");

static std::string sampler_path(const char *name)
{
	return current_config_path + "\\" + name + ".sampler";
}

// ---- The loaded sampler ---------------------------------------------------------------------

// What current_sampler points to, and the image that require_dev_status gave it. A sampler that
// somebody else made current, as tests do, is not ours to give back.
static std::unique_ptr<_sampler> owned_sampler;
static _dev_status *owned_status = nullptr;

static void forget_sampler()
{
	current_sampler = nullptr;
	owned_sampler.reset();
	if (!owned_status)
		return;
	for (_sample &sample : owned_status->sample)
		if (sample.sample_data || sample.sample_byte)
			free_sample_data(&sample);
	forget_edits(owned_status->program, owned_status->program + max_programs);
	std::free(owned_status);
	owned_status = nullptr;
}

static void make_current(const _sampler &record)
{
	forget_sampler();
	forget_line();
	forget_lists();
	owned_sampler = std::make_unique<_sampler>(record);
	owned_sampler->status = nullptr;
	current_sampler = owned_sampler.get();
	copy_text(current_usb_name, record.sampler_usbname); // for the next save
}

_dev_status *require_dev_status()
{
	if (!current_sampler)
		return nullptr;
	if (current_sampler->status)
		return current_sampler->status;
	const int size = static_cast<int>(sizeof(_dev_status));
	_dev_status *status = allocate_dev_status();
	if (!status) {
		log_line("[F] Failed to allocate %d Bytes of memory!\r\n", size);
		return nullptr;
	}
	log_line("[D] Allocated %d Bytes of memory for sampler-status\r\n", size);
	current_sampler->status = status;
	if (current_sampler == owned_sampler.get())
		owned_status = status;
	return status;
}

// ---- The list ---------------------------------------------------------------------------------

static constexpr std::string_view extension = ".sampler";

// In whatever letters the extension is written.
static bool names_sampler(const std::string &file)
{
	return file.size() > extension.size() &&
	       std::equal(extension.begin(), extension.end(), file.end() - extension.size(),
		       [](char due, char c) {
			       return due == (c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
		       });
}

std::string sampler_file(const char *name)
{
	const std::string path = sampler_path(name);
	file_info info;
	std::vector<std::string> files;
	if (host.files->stat(path.c_str(), &info) == 0 ||
		host.files->list(current_config_path.c_str(), &files) != 0)
		return path;
	for (const std::string &file : files)
		if (names_sampler(file) && file.substr(0, file.rfind('.')) == name)
			return current_config_path + "\\" + file;
	return path;
}

// What cannot be loaded is not offered. Of two files of one name the other is never found.
static bool can_be_loaded(const std::string &file)
{
	const std::string path = current_config_path + "\\" + file;
	const std::string name = file.substr(0, file.rfind('.'));
	file_info info;
	const bool whole = host.files->stat(path.c_str(), &info) == 0 && info.regular &&
			   info.size >= record_size;
	const bool found = whole && sampler_file(name.c_str()) == path;
	if (!found)
		log_line("[W] Not listed: [%s] %s\r\n", path.c_str(),
			whole ? "has the name of another" : "is no sampler configuration");
	return found;
}

void load_sampler_list()
{
	std::vector<std::string> files;
	const int code = host.files->list(current_config_path.c_str(), &files);
	if (code) {
		_display_error(__FILE_NAME__, __LINE__, code);
		log_line("CURRENT_CONFIG_PATH: [%s]\r\n", current_config_path.c_str());
		return;
	}
	conf_sampler.clear();
	for (const std::string &file : files)
		if (names_sampler(file) && can_be_loaded(file))
			conf_sampler.push_back(file.substr(0, file.rfind('.')));
	show_sampler_list();
	for (std::size_t i = 0; i < conf_sampler.size(); i++)
		std::printf("SAMPLER[%d]: '%s'\r\n", static_cast<int>(i), conf_sampler[i].c_str());
	if (!conf_sampler.empty())
		host.ui->select(window_main, main_sampler_list, 0);
	update_entry_commands();
}

// ---- Loading -----------------------------------------------------------------------------------

// Read a record, or end the process.
static void read_record(const std::string &path, _sampler *record)
{
	int file;
	int code = host.files->open(path.c_str(), file_read, &file);
	if (code) {
		_display_error(__FILE_NAME__, __LINE__, code);
		end_program(0);
		return;
	}
	std::size_t count = 0;
	code = host.files->read(file, record, record_size, &count);
	(void)host.files->close(file);
	if (code || count < record_size) {
		show_box("FATAL", "Cannot load selected sampler, file corrupted!");
		display_error_text(__FILE_NAME__, __LINE__,
			code ? host.files->error_text(code)
			     : tr("The file is shorter than 536 bytes."));
		end_program(0);
		return;
	}
	record->sampler_description[sizeof record->sampler_description - 1] = '\0';
	record->sampler_usbname[sizeof record->sampler_usbname - 1] = '\0';
}

// Entry of a list of that many, for a value from a file.
static void select_value(int control, u32 value, u32 first, u32 entries)
{
	const u32 index = value < first ? 0 : std::min(value - first, entries - 1);
	host.ui->select(window_sampler, control, static_cast<int>(index));
}

void select_in_sampler_dialog(const _sampler &s)
{
	select_value(sampler_midi_list, s.sampler_midi, 1, 16);
	select_value(sampler_control_list, s.sampler_sysex, 1, 16);
	select_value(sampler_exclusive_list, s.sampler_sysex_channel, 0, 129);
	host.ui->select(window_sampler, sampler_brand_list,
		get_sampler_brand_index(static_cast<i32>(s.sampler_type)));
}

static void show_sampler_buttons(bool loaded, u8 flags)
{
	host.ui->show(window_main, main_lcd, loaded && (flags & flag_lcd));
	host.ui->show(window_main, main_multis, loaded && (flags & flag_multis));
	host.ui->show(window_main, main_programs, loaded);
	host.ui->show(window_main, main_samples, loaded);
	host.ui->enable(window_main, main_multis, current_run_mode.multis);
	show_loaded_card();
	show_sampler_list();
}

// A model that the table does not know, perhaps from a later version of this program.
static int refuse_model()
{
	show_box("INFO", "Invalid sampler type");
	forget_sampler();
	show_sampler_buttons(false, 0);
	hide_progressbar(window_main);
	return 1;
}

int load_sampler(const char *name)
{
	if (!name || !*name)
		return 1;
	init_usb(1);
	if (!usb_init_done)
		return 1; // stopped
	const std::string path = sampler_file(name);
	log_line("[D] LOADING SAMPLER-CONFIG from: [%s]\r\n", path.c_str());
	show_progressbar(window_main, 100, "Loading Sampler...");
	set_progressbar(10);
	_sampler record = {};
	read_record(path, &record);
	make_current(record);
	set_progressbar(20);
	host.ui->set_text(window_sampler, sampler_name, name);
	select_in_sampler_dialog(*current_sampler);
	log_line("[I]Successfully loaded sampler configuration from [%s] - SYSEX: %d, "
		 "USB-NAME: [%s]\r\n",
		path.c_str(), static_cast<int>(current_sampler->sampler_sysex_channel),
		current_sampler->sampler_usbname);
	const _sampler_type *row = get_sampler(static_cast<i32>(current_sampler->sampler_type));
	if (!row)
		return refuse_model();
	if (row->sampler_flags & flag_usb)
		probe_usb_sampler();
	show_sampler_buttons(true, row->sampler_flags);
	set_progressbar(100);
	hide_progressbar(window_main);
	return 0;
}

outcome load_by_name(const std::string &name)
{
	if (std::find(conf_sampler.begin(), conf_sampler.end(), name) == conf_sampler.end())
		return { .how = ending::local_failed,
			.words =
				format_text(tr("There is no sampler called '%s'."), name.c_str()) };
	if (load_sampler(name.c_str()) != 0)
		return { .how = ending::refused,
			.line = format_text(tr("'%s' was not loaded."), name.c_str()) };
	return { .line = format_text(tr("Loaded '%s'."), name.c_str()) };
}

// ---- Storing -----------------------------------------------------------------------------------

int store_sampler(const _sampler &record)
{
	_sampler fresh = record;
	fresh.status = nullptr;
	const int code =
		write_whole_file(sampler_path(fresh.sampler_description), &fresh, record_size);
	if (code) {
		_display_error(__FILE_NAME__, __LINE__, code);
		return 1;
	}
	make_current(fresh);
	log_line("[D]Saving SYSEX-CHANNEL: %d\r\n", static_cast<int>(fresh.sampler_sysex_channel));
	load_sampler_list();
	return 0;
}

// True if the dialog's name can be the name of a file in this folder, and may be written now.
bool may_store(const std::string &name, const std::string &path)
{
	if (name.empty() || file_name_of(name) != name) {
		show_box("Info", tr("Please choose a name for the sampler, without / and \\."));
		return false;
	}
	file_info info;
	const bool exists = host.files->stat(path.c_str(), &info) == 0;
	if (exists && !current_sampler) {
		show_box("Fatal", "A Sampler configuration with this name already exists!");
		return false;
	}
	if (!exists && current_sampler)
		show_box("Info", "This sampler does not exist! Creating new one!");
	return true;
}

// Only the low 16 bits of a list's index count. Nothing chosen is entry 0.
static u32 list_index(int control)
{
	const int index = host.ui->selection(window_sampler, control);
	return index < 0 ? 0 : static_cast<u32>(index) & 0xFFFF;
}

_sampler described_sampler(const std::string &name, const char *usb_name)
{
	_sampler record = {};
	copy_text(record.sampler_description, name);
	copy_text(record.sampler_usbname, usb_name);
	record.sampler_midi = list_index(sampler_midi_list) + 1;
	record.sampler_type = static_cast<u32>(
		get_sampler_brand_id(static_cast<i32>(list_index(sampler_brand_list))));
	record.sampler_sysex = list_index(sampler_control_list) + 1;
	record.sampler_sysex_channel = list_index(sampler_exclusive_list);
	return record;
}

int save_sampler()
{
	const std::string name = host.ui->get_text(window_sampler, sampler_name);
	const std::string path = sampler_path(name.c_str());
	log_line("SAMPLER-CONFIG: [%s]\r\n", path.c_str());
	if (!may_store(name, path))
		return 1;
	return store_sampler(described_sampler(name, current_usb_name));
}

// ---- Asking who is there -----------------------------------------------------------------------

// Who answered, or that nobody did.
static outcome verdict_of(const reached &to, const _dev_status &answer, const line_watch &watch)
{
	if (answer.status == 1)
		return { .words = answer_words(to, answer.version) };
	if (watch.heard() && !watch.dead())
		return { .how = ending::refused, .words = stranger_words(to) };
	return { .how = ending::no_answer, .words = silence_words(to) };
}

// Only what the driver logs and whether it heard anything is of interest; the record is scratch.
// What another sampler does is no news of the loaded one.
static outcome query(const _sampler_type &row, u8 control_channel, u8 sysex_channel)
{
	_dev_status *scratch = allocate_dev_status();
	if (!scratch) {
		log_line("[F] Failed to allocate %d Bytes of memory!\r\n",
			static_cast<int>(sizeof(_dev_status)));
		return { .how = ending::local_failed, .words = tr("There is no memory to ask.") };
	}
	const line_state before = the_line;
	const reached loaded = loaded_reached();
	const reached to = { &row, sysex_channel, loaded.usb_name };
	box_keeper keeper;
	const line_watch watch;
	row.getstatus(control_channel, sysex_channel, scratch);
	outcome verdict = verdict_of(to, *scratch, watch);
	verdict.told = keeper.take();
	std::free(scratch);
	if (loaded.model != &row || loaded.exclusive_channel != sysex_channel)
		the_line = before;
	return verdict;
}

outcome get_device_info(u8 control_channel, i32 brand_id, u8 sysex_channel, char *, int *_maxlen)
{
	log_line("[D] REQUESTING MIDI-DATA AT CHANNEL: %d,MAXLEN: %d, BRAND_ID: %d\r\n",
		control_channel, *_maxlen, brand_id);
	copy_text(current_usb_name, "");
	const _sampler_type *row = get_sampler(brand_id);
	log_line("[I] REQUESTING SYSTEM-EXCLUSIVE ON CHANNEL %d, BRAND-ID: %d, [SYSEX-Channel: "
		 "%d]\r\n(MAXIMUM RESULTLEN: %d) SAMPLER_STRUCT: %d\r\n",
		control_channel, brand_id, sysex_channel, *_maxlen, row ? 1 : 0);
	if (!row)
		log_line("No sampler-description found, or no status-query\r\n");
	else if (!row->getstatus)
		log_line("No sampler-description found for 'getstatus'\r\n");
	if (!row || !row->getstatus)
		return { .how = ending::refused,
			.words = tr("This brand cannot be asked who it is. Choose the model of the "
				    "sampler.") };
	if (const std::string taken = why_way_is_taken(*row); !taken.empty())
		return { .how = ending::refused, .words = taken };
	log_line("%s\r\n", std::string(49, '*').c_str());
	const outcome verdict = query(*row, control_channel, sysex_channel);
	// The sampler that is loaded keeps the device it was loaded from.
	if ((row->sampler_flags & flag_usb) && loaded_reached().model == row)
		copy_text(current_usb_name, current_sampler->sampler_usbname);
	return verdict;
}

} // namespace velmor
