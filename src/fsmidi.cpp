// fsmidi.cpp - the disks of a sampler: volumes, folders, files, over its own requests
//
// The S5000 and S6000 begin a request with 10 and answer with the status at offset 6; the Z
// family begins with 20 and answers at 4. 'D' is done, 'R' is data. Numbers are groups of seven
// bits, in an order of their own each; see the rows below.
//
//   F 04                volumes: count
//   F 05                volumes: handle (2), type, format, physical id, writeable, name 00, each
//   F 02 handle         select a volume
//   F 13 00             change to its root
//   F 13 name 00        change into a folder; the name in lower case
//   F 10, F 20          folders, files here: count, high group first
//   F 11 n, F 21 n      name of the nth folder, file
//   10 23 n             size of the nth file, high groups first, whatever the family
//
// The sampler remembers where it stands, and this end remembers nothing: each question selects
// the volume and walks from its root.
//
// Knows nothing of: operations, the host's file systems.

#include "src/diskqx.h"
#include <algorithm>
#include <array>
#include <cstring>

namespace velmor
{

std::recursive_mutex midi_critical;
drive_result fs_fault = drive_ok;
fs_caller current_fs_caller;

// ---- Requests ------------------------------------------------------------------------------------

static constexpr u8 status_any = 0, letter_done = 'D', letter_data = 'R';
static constexpr std::size_t shortest_answer = 7;

enum class order {
	none,
	of_family, // S5000 high group first, Z family low group first
	high_first,
};
// A pair is of the S5000, then of the others.
struct disk_request {
	u8 section[2], item;
	order argument;
	u8 letter;         // of an answer that counts
	u8 letter_at[2];   // and its offset
	std::size_t at[2]; // offset of what is asked for
};
// clang-format off
//                                          section       item  argument           letter       at      data
static constexpr disk_request count_volumes  = { { 0x10, 0x20 }, 0x04, order::none,       status_any,  { 6, 4 }, { 9, 8 } };
static constexpr disk_request list_volumes   = { { 0x10, 0x20 }, 0x05, order::none,       status_any,  { 6, 4 }, { 9, 8 } };
static constexpr disk_request select_volume  = { { 0x10, 0x20 }, 0x02, order::of_family,  letter_done, { 6, 4 }, { 0, 0 } };
static constexpr disk_request change_folder  = { { 0x10, 0x20 }, 0x13, order::none,       letter_done, { 6, 4 }, { 0, 0 } };
static constexpr disk_request count_folders  = { { 0x10, 0x20 }, 0x10, order::none,       letter_data, { 6, 4 }, { 9, 8 } };
static constexpr disk_request count_files    = { { 0x10, 0x20 }, 0x20, order::none,       letter_data, { 6, 4 }, { 9, 8 } };
static constexpr disk_request name_of_folder = { { 0x10, 0x20 }, 0x11, order::of_family,  letter_data, { 6, 4 }, { 9, 8 } };
// All families agree on where a file's name stands, and on all of its size.
static constexpr disk_request name_of_file   = { { 0x10, 0x20 }, 0x21, order::of_family,  letter_data, { 6, 4 }, { 9, 9 } };
static constexpr disk_request size_of_file   = { { 0x10, 0x10 }, 0x23, order::high_first, letter_data, { 6, 6 }, { 9, 9 } };
// clang-format on

// Offsets in a record of the volume list.
enum : std::size_t {
	volume_handle = 0,
	volume_type = 2,
	volume_format = 3,
	volume_physical_id = 4,
	volume_writeable = 5,
	volume_name = 6,
};

static std::size_t family_column(const _usbdev *device)
{
	return device->device_type == model_s5000 ? 0 : 1;
}

struct disk_answer {
	std::array<u8, fs_text_size> buffer = {};
	int length = 0;
	std::size_t at = 0; // of what was asked for

	bounded_bytes bytes() const
	{
		return { std::span(buffer).first(
			static_cast<std::size_t>(std::clamp<int>(length, 0, fs_text_size))) };
	}
	u8 operator[](std::size_t offset) const { return bytes()[at + offset]; }
	// The text there. The end byte of the answer closes one that has no zero; anywhere else
	// that byte is a letter.
	std::string text() const
	{
		std::string name = bytes().text(at);
		if (at + name.size() >= bytes().size() &&
			name.ends_with(static_cast<char>(usb_end_byte)))
			name.pop_back();
		return name;
	}
};

void note_fault(drive_result fault)
{
	if (fs_fault == drive_ok)
		fs_fault = fault;
}

static drive_result fault_of_usb()
{
	static constexpr struct {
		int usb;
		drive_result fault;
	} rows[] = {
		{ usb_no_device, drive_no_device },
		{ usb_busy, drive_busy },
		{ usb_denied, drive_denied },
		{ usb_timeout, drive_timed_out },
	};
	for (const auto &row : rows)
		if (row.usb == usb_last_result)
			return row.fault;
	return drive_failed;
}

// False when no sampler may be asked any more: the program ends, or the caller went away, or its
// time is over.
static bool may_go_on()
{
	const fs_caller &caller = current_fs_caller;
	if (progress_stopped() || (caller.given_up && caller.given_up()))
		note_fault(drive_ended);
	else if (caller.deadline > 0 && host.clock->counter() > caller.deadline)
		note_fault(drive_timed_out);
	else
		return true;
	return false;
}

static bool send_request(_usbdev *device, std::span<const u8> request, disk_answer *answer)
{
	const std::lock_guard hold(midi_critical);
	*answer = {};
	if (!may_go_on())
		return false;
	if (_sysex_midi_usb(device, request.data(), static_cast<int>(request.size()),
		    answer->buffer.data(), static_cast<int>(answer->buffer.size()), &answer->length,
		    __FILE_NAME__, __LINE__))
		return true;
	note_fault(fault_of_usb());
	return false;
}

static std::vector<u8> request_bytes(const disk_request &row, std::size_t column, int argument)
{
	std::vector<u8> bytes = { row.section[column], row.item };
	const u8 high = static_cast<u8>(argument >> 7 & 0x7F), low = argument & 0x7F;
	if (row.argument == order::high_first || (row.argument == order::of_family && column == 0))
		bytes.insert(bytes.end(), { high, low });
	else if (row.argument == order::of_family)
		bytes.insert(bytes.end(), { low, high });
	return bytes;
}

// True for an answer of the right letter. tail follows the fixed bytes.
static bool ask(_usbdev *device, const disk_request &row, disk_answer *answer, int argument = 0,
	std::span<const u8> tail = {})
{
	const std::size_t column = family_column(device);
	std::vector<u8> bytes = request_bytes(row, column, argument);
	bytes.insert(bytes.end(), tail.begin(), tail.end());
	const bool sent = send_request(device, bytes, answer);
	answer->at = row.at[column];
	if (!sent || row.letter == status_any)
		return sent;
	if (answer->bytes().size() >= shortest_answer &&
		answer->bytes()[row.letter_at[column]] == row.letter)
		return true;
	// A folder or volume that is not there is refused; an answer without its data is none.
	note_fault(row.letter == letter_done ? drive_not_found : drive_failed);
	return false;
}

// Other programs hold a sampler for moments, and one that waits a little does not fail.
static bool open_patiently(_usbdev *device)
{
	static constexpr int wait_ms = 100, waits = 5, tries = 4;
	for (int tried = 1;; tried++) {
		if (open_midi_usb(device))
			return true;
		if (usb_last_result != usb_busy || tried == tries)
			return false;
		for (int waited = 0; waited < waits && may_go_on(); waited++)
			host.ui->pump(wait_ms);
		if (!may_go_on())
			return false;
	}
}

_usbdev *open_sampler(const char *name)
{
	_usbdev *device = find_usbdev(name);
	if (!device)
		note_fault(drive_not_found);
	else if (may_go_on()) {
		if (open_patiently(device))
			return device;
		note_fault(fault_of_usb());
	}
	log_line("Sampler not found!");
	return nullptr;
}

// ---- Volumes -------------------------------------------------------------------------------------

// The record at an offset, and the offset of the next one; 0 when the answer ends within it.
static std::size_t read_volume(
	_sampler_volume *volume, bounded_bytes answer, std::size_t p, std::size_t column)
{
	const std::string name = answer.text(p + volume_name);
	const std::size_t end = p + volume_name + name.size();
	if (end >= answer.size())
		return 0;
	const int first = answer[p + volume_handle], second = answer[p + volume_handle + 1];
	volume->handle =
		static_cast<u16>(column == 0 ? (first << 7) + second : (second << 7) + first);
	volume->type = answer[p + volume_type];
	volume->format = answer[p + volume_format];
	volume->physical_id = answer[p + volume_physical_id];
	volume->writeable = answer[p + volume_writeable];
	copy_text(volume->name, name);
	return end + 1;
}

int get_sampler_volumes(_usbdev *device, sampler_volumes *volumes)
{
	disk_answer answer;
	volumes->reset();
	if (!ask(device, count_volumes, &answer)) {
		close_midi_usb(device);
		log_line("Sampler cannot be midid!");
	}
	const int count = answer[0];
	if (count == 0)
		return 0;
	*volumes = std::make_unique<_sampler_volume[]>(static_cast<std::size_t>(count));
	log_line("--- SAMPLER has %d Volumes\n", count);
	(void)ask(device, list_volumes, &answer);
	int read = 0;
	for (std::size_t p = answer.at; p && read < count;) {
		p = read_volume(&(*volumes)[static_cast<std::size_t>(read)], answer.bytes(), p,
			family_column(device));
		read += p != 0;
	}
	if (read < count)
		log_line("[W] The sampler announced %d volumes and listed %d\n", count, read);
	if (read == 0)
		volumes->reset();
	return read;
}

void free_sampler_volumes(int count, sampler_volumes *volumes)
{
	if (count && *volumes)
		volumes->reset();
}

_sampler_volume *find_sampler_volume(int count, const sampler_volumes &volumes, const char *name)
{
	for (int i = 0; i < count; i++)
		if (same_without_case(volumes[static_cast<std::size_t>(i)].name, name))
			return &volumes[static_cast<std::size_t>(i)];
	return nullptr;
}

// ---- Folders -------------------------------------------------------------------------------------

static bool change_to(_usbdev *device, std::string_view folder)
{
	disk_answer answer;
	std::vector<u8> name(folder.begin(), folder.end());
	name.push_back(0);
	return ask(device, change_folder, &answer, 0, name);
}

bool _set_sampler_path(const char *source, int line, _usbdev *device, const _sampler_volume *volume,
	const char *path)
{
	log_line("+++ [%s: %d] REQUESTING SAMPLER-PATH: [%s] FOR VOLUME: [%s] "
		 "(VOLUME-AKAI-HANDLE: %d)\n",
		source, line, path, volume->name, volume->handle);
	disk_answer answer;
	if (!ask(device, select_volume, &answer, volume->handle) || !change_to(device, ""))
		return false;
	for (const std::string &token : path_tokens(path)) {
		const std::string folder = lower_case(token);
		log_line("+++ [%s: %d] Changing path to: [%s]\n", source, line, folder.c_str());
		if (!change_to(device, folder))
			return false;
	}
	return true;
}

// How many there are, of those that an index reaches; -1 when the sampler does not say.
static int ask_count(_usbdev *device, const disk_request &row)
{
	disk_answer answer;
	if (!ask(device, row, &answer))
		return -1;
	return std::min((answer[0] << 7) + answer[1], max_disk_entries);
}

static bool read_entry(
	_usbdev *device, const disk_request &row, int index, u32 attributes, _sampler_file *entry)
{
	disk_answer answer;
	if (!ask(device, row, &answer, index))
		return false;
	copy_text(entry->name, answer.text());
	entry->attributes = attributes;
	entry->size = 0;
	return true;
}

static bool read_size(_usbdev *device, int index, _sampler_file *entry)
{
	disk_answer answer;
	if (!ask(device, size_of_file, &answer, index))
		return false;
	for (std::size_t group = 0; group < 4; group++)
		entry->size = entry->size << 7 | (answer[group] & 0x7Fu);
	return true;
}

int _get_current_dirlist(const char *source, int line, _usbdev *device, sampler_files *listed)
{
	listed->reset();
	const int folders = ask_count(device, count_folders);
	if (folders < 0)
		return 0;
	log_line("+++++ [%s: %d] Found %d Directories\n", source, line, folders);
	const int file_count = ask_count(device, count_files);
	if (file_count < 0)
		return 0;
	log_line("+++++ [%s: %d] Found %d Files\n", source, line, file_count);
	*listed = std::make_unique<_sampler_file[]>(static_cast<std::size_t>(folders + file_count));
	_sampler_file *entry = listed->get();
	for (int i = 0; i < folders; i++)
		if (!read_entry(device, name_of_folder, i, attribute_folder, entry++))
			return 0;
	for (int i = 0; i < file_count; i++, entry++)
		if (!read_entry(device, name_of_file, i, attribute_file, entry) ||
			!read_size(device, i, entry))
			return 0;
	return folders + file_count;
}

// ---- One path --------------------------------------------------------------------------------------

static constexpr int info_found = 0, info_failed = 1;

static int tell_folder(FSP_FSCTL_FILE_INFO *info, int status)
{
	info->FileAttributes = attribute_folder;
	info->FileSize = 0;
	return status;
}

// A file is looked for in the listing of its folder.
static int find_file(const char *source, int line, _usbdev *device, const _sampler_volume *volume,
	std::string folder, FSP_FSCTL_FILE_INFO *info)
{
	std::string name;
	// A file at the volume's root has no folder to cut off, and is taken for a folder that
	// is not there.
	if (const std::size_t cut = folder.rfind('\\'); cut != folder.npos) {
		name = folder.substr(cut + 1);
		folder.resize(cut);
	}
	log_line("The-PATH: [%s]...The-FILE: [%s]\n", folder.c_str(), name.c_str());
	if (!_set_sampler_path(source, line, device, volume, folder.c_str()))
		return tell_folder(info, info_failed);
	sampler_files listed;
	const int count = _get_current_dirlist(source, line, device, &listed);
	for (int i = 0; i < count; i++) {
		const _sampler_file &file = listed[static_cast<std::size_t>(i)];
		if (!same_without_case(file.name, name))
			continue;
		info->FileAttributes = 0;
		info->FileSize = file.size;
		info->AllocationSize = file.size >> 12;
		return info_found;
	}
	log_line("GET_FILE_INFO: Bad file name '%s'\n", name.c_str());
	return info_failed;
}

static int find_path(const char *source, int line, _usbdev *device, const drive_path &path,
	FSP_FSCTL_FILE_INFO *info)
{
	sampler_volumes volumes;
	const int count = get_sampler_volumes(device, &volumes);
	const _sampler_volume *volume = find_sampler_volume(count, volumes, path.volume);
	int found = info_failed;
	if (!volume)
		log_line("Sampler-Volume not found!");
	else if (_set_sampler_path(source, line, device, volume, path.file))
		found = tell_folder(info, info_found);
	else
		found = find_file(source, line, device, volume, path.file, info);
	free_sampler_volumes(count, &volumes);
	return found;
}

int _get_file_info(const char *source, int line, const char *path, FSP_FSCTL_FILE_INFO *info)
{
	log_line("[%s:%d] FILE-INFO: [%s]\n", source, line, path);
	*info = {};
	const u64 now = static_cast<u64>(host.clock->time_of_day());
	info->CreationTime = info->LastAccessTime = info->LastWriteTime = info->ChangeTime = now;
	drive_path parts;
	_get_path_parts(source, line, path, parts.sampler, parts.volume, parts.file);
	if (!*parts.sampler || !*parts.volume || !*parts.file)
		return tell_folder(info, info_found);
	_usbdev *device = open_sampler(parts.sampler);
	if (!device)
		return info_failed;
	const open_usbdev open(device);
	return find_path(source, line, device, parts, info);
}

void get_file_attributes(const char *name, FILE_ATTRIBUTE_TAG_INFO *info)
{
	info->FileAttributes = attribute_folder;
	log_line("[%s] ATTRIBUTES: %u\n", name, info->FileAttributes);
}

} // namespace velmor
