// fsmidi_operations.cpp - what a file system is asked for, and the table of folders that are open
//
// Listing is offered; everything that would change or fetch data is refused with one and the same
// status word, and asks no sampler.
//
// Knows nothing of: how names are shown, for how long a listing is served again.

#include "src/diskqx.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

namespace velmor
{

_fs_handle fs_handle[max_fs_handles];
static constexpr u64 first_handle = 100;
u64 myhandles = first_handle;
int files = 0;
int pseudo_fcount = 0;

static constexpr std::size_t longest_name = 2048;
static constexpr std::size_t descriptor_size = 40;
static constexpr int descriptor_too_small = 3;
static constexpr u64 total_factor = 1000000, free_factor = 800000;
static constexpr char16_t volume_label[] = u"velmorfs";

// ---- Handles ---------------------------------------------------------------------------------------

void clear_fs_handles()
{
	std::fill(std::begin(fs_handle), std::end(fs_handle), _fs_handle{});
}

_fs_handle *get_fs_from_handle(u64 handle)
{
	for (_fs_handle &entry : fs_handle)
		if ((entry.file_open & 1) && entry.handle == handle)
			return &entry;
	return nullptr;
}

static _fs_handle *free_entry()
{
	for (_fs_handle &entry : fs_handle)
		if (!(entry.file_open & 1))
			return &entry;
	return nullptr;
}

bool close_handle(u64 handle)
{
	_fs_handle *entry = get_fs_from_handle(handle);
	if (!entry) {
		log_line("WARNING: HANDLE %d not found!\n", static_cast<int>(handle));
		return false;
	}
	entry->file_open = 0;
	copy_text(entry->pathname, "");
	entry->handle = 0;
	log_line("INFO: Closed handle: %d\n", static_cast<int>(handle));
	return true;
}

void display_error(int code)
{
	const char *words = host.files->error_text(code);
	std::printf(
		"Error value: %d Message: %s\n", code, words ? words : "Error message not found.");
	std::fflush(stdout);
}

// ---- The volume --------------------------------------------------------------------------------------

// The sizes are for show; whatever they overflow to is of no account.
fs_status _get_volume_info(const char *source, int line, FSP_FSCTL_VOLUME_INFO *info)
{
	log_line("[%s:%d] VOLUME-INFO\n", source, line);
	*info = {};
	u64 free_bytes = 0, total_bytes = 0;
	if (!host_drive || !host_drive->host_disk(&free_bytes, &total_bytes))
		log_line("GETFREE FAILED!");
	info->TotalSize = total_bytes * total_factor;
	info->FreeSize = total_bytes * free_factor;
	info->VolumeLabelLength = sizeof volume_label - sizeof(char16_t);
	std::copy(std::begin(volume_label), std::end(volume_label), info->VolumeLabel);
	return status_success;
}

static fs_status get_volume_info(FSP_FSCTL_VOLUME_INFO *info)
{
	return _get_volume_info(__FILE_NAME__, __LINE__, info);
}

// ---- Access rights -------------------------------------------------------------------------------------

int get_security_descriptor(const char *name, void *descriptor, std::size_t *size)
{
	pseudo_fcount++;
	if (!descriptor)
		return 0; // not wanted
	if (*size < descriptor_size) {
		log_line("Descriptor too small! (%d/%d Bytes)\n", static_cast<int>(*size),
			static_cast<int>(descriptor_size));
		return descriptor_too_small;
	}
	std::memset(descriptor, 0, descriptor_size);
	log_line("New-Size: %d (Requested: %d) [%s]\n", static_cast<int>(descriptor_size),
		static_cast<int>(*size), name);
	*size = descriptor_size;
	return 0;
}

// Whatever the name: a wrong path fails when it is opened or listed.
static fs_status get_security_by_name(
	const char *name, u32 *attributes, void *descriptor, std::size_t *size)
{
	log_line("SECURITY: [%s]\n", name);
	if (std::strlen(name) + 1 >= longest_name)
		return status_object_name_invalid;
	const std::string path = std::string("C") + name;
	if (attributes) {
		FILE_ATTRIBUTE_TAG_INFO tag = {};
		get_file_attributes(path.c_str(), &tag);
		*attributes = tag.FileAttributes;
	}
	if (get_security_descriptor(path.c_str(), descriptor, size) == 0)
		return status_success;
	log_line("Failed to get File-Security for [%s]\n", path.c_str());
	return status_object_name_invalid;
}

// ---- Open and close --------------------------------------------------------------------------------------

static std::string option_names(u32 options)
{
	static constexpr struct {
		u32 bit;
		const char *name;
	} rows[] = {
		{ 0x01, "FILE_DIRECTORY_FILE" },
		{ 0x02, "FILE_WRITE_THROUGH" },
		{ 0x04, "FILE_SEQUENTIAL_ONLY" },
		{ 0x40, "FILE_NON_DIRECTORY_FILE" },
		{ 0x1000, "FILE_DELETE_ON_CLOSE" },
	};
	std::string names;
	for (const auto &row : rows)
		if (options & row.bit)
			names += std::string(names.empty() ? "" : " ") + row.name;
	return names;
}

// Enter a path into the table.
static fs_status enter_path(const char *name, const PTFS_FILE_CONTEXT &context, bool wants_info)
{
	_fs_handle *entry = free_entry();
	if (!entry) {
		log_line("Too many open files (%d/%d)!\n", max_fs_handles, max_fs_handles);
		return status_insufficient_resources;
	}
	copy_text(entry->pathname, name);
	entry->pathname_len = static_cast<int>(std::strlen(name));
	entry->file_open = 1;
	entry->handle = context.Handle;
	log_line(
		"### Requesting OPEN FOR: [%s], FILE-INFO: %d, FILE-NAME-LEN: %d Bytes --> Handle: "
		"%d\n",
		name, wants_info, entry->pathname_len, static_cast<int>(context.Handle));
	return status_success;
}

// A path that leads nowhere opens, too: what info says of it, or the listing, tells.
static fs_status open(const char *name, u32 options, FSP_FILE_SYSTEM_INTERFACE::context *opened,
	FSP_FSCTL_FILE_INFO *info)
{
	*opened = nullptr;
	std::unique_ptr<PTFS_FILE_CONTEXT> context(new (std::nothrow) PTFS_FILE_CONTEXT{});
	if (!context)
		return status_insufficient_resources;
	context->Handle = myhandles++;
	if (std::strlen(name) >= fs_text_size)
		return status_object_name_invalid;
	log_line("OPEN: [%s] [%s]\n", name, option_names(options).c_str());
	const fs_status entered = enter_path(name, *context, info != nullptr);
	if (entered != status_success)
		return entered;
	if (info)
		(void)_get_file_info(__FILE_NAME__, __LINE__, name, info);
	*opened = context.release();
	return status_success;
}

// Tried without waiting, and whether that worked is not looked at: it orders nothing.
static std::unique_ptr<int> close_semaphore;

void make_close_semaphore()
{
	close_semaphore.reset(new (std::nothrow) int(1));
	if (!close_semaphore) {
		log_line("FATAL: Cannot create 'close_semaphore'\n");
		end_program(0);
	}
}

static void set_close_semaphore(int places)
{
	if (close_semaphore)
		*close_semaphore = places;
}

// A context that is not in the table is not ours to free.
static void close(PTFS_FILE_CONTEXT *context)
{
	set_close_semaphore(0);
	if (close_handle(context->Handle))
		delete context;
	set_close_semaphore(1);
}

static fs_status get_file_info(PTFS_FILE_CONTEXT *context, FSP_FSCTL_FILE_INFO *info)
{
	const _fs_handle *entry = get_fs_from_handle(context->Handle);
	if (!entry) {
		log_line("WARNING: Handle %d not found!\n", static_cast<int>(context->Handle));
		return status_invalid_device_request;
	}
	(void)_get_file_info(__FILE_NAME__, __LINE__, entry->pathname, info);
	return status_success;
}

// ---- Listing ---------------------------------------------------------------------------------------------

static bool acquire_directory_buffer(fs_directory_buffer *buffer, bool reset)
{
	if (buffer->held)
		return false; // a listing of this folder is under way
	buffer->held = true;
	if (reset || !buffer->filled) {
		buffer->filled = false;
		buffer->records.clear();
	}
	return true;
}

static void add_record(
	fs_directory_buffer *buffer, std::string_view name, u32 attributes, u32 size = 0)
{
	const u64 now = static_cast<u64>(host.clock->time_of_day());
	buffer->records.push_back({
		.Size = static_cast<u16>(name.size() * 2 + dir_info_head),
		.FileInfo = { .FileAttributes = attributes,
			.ReparseTag = 0,
			.AllocationSize = size >> 12,
			.FileSize = size,
			.CreationTime = now,
			.LastAccessTime = now,
			.LastWriteTime = now,
			.ChangeTime = now },
		.FileName = std::string(name),
	});
}

// Records behind the marker, as many as fit.
static void read_directory_buffer(const fs_directory_buffer &from, const char *marker,
	std::vector<FSP_FSCTL_DIR_INFO> *buffer, u32 length, u32 *transferred)
{
	auto at = from.records.begin();
	if (marker) {
		at = std::find_if(at, from.records.end(),
			[marker](const auto &record) { return record.FileName == marker; });
		if (at != from.records.end())
			++at;
	}
	for (*transferred = 0; at != from.records.end(); ++at) {
		if (length - *transferred < at->Size)
			return;
		*transferred += at->Size;
		buffer->push_back(*at);
	}
}

static fs_status list_folder(fs_directory_buffer *buffer, _usbdev *device,
	const _sampler_volume &volume, const char *path)
{
	if (!_set_sampler_path(__FILE_NAME__, __LINE__, device, &volume, path))
		return status_invalid_device_request;
	sampler_files listed;
	const int count = _get_current_dirlist(__FILE_NAME__, __LINE__, device, &listed);
	log_line("Found: %d Sampler-Files\n", count);
	for (int i = 0; i < count; i++) {
		const _sampler_file &file = listed[static_cast<std::size_t>(i)];
		add_record(buffer, file.name, file.attributes, file.size);
	}
	return status_success;
}

static fs_status list_device(fs_directory_buffer *buffer, _usbdev *device, const drive_path &path)
{
	sampler_volumes volumes;
	const int count = get_sampler_volumes(device, &volumes);
	fs_status status = status_success;
	if (!*path.volume) {
		for (int i = 0; i < count; i++)
			add_record(buffer, volumes[static_cast<std::size_t>(i)].name,
				attribute_folder);
	} else if (const _sampler_volume *volume =
			   find_sampler_volume(count, volumes, path.volume)) {
		status = list_folder(buffer, device, *volume, path.file);
	} else {
		note_fault(drive_not_found);
		status = status_invalid_device_request;
	}
	free_sampler_volumes(count, &volumes);
	return status;
}

static fs_status list_sampler(fs_directory_buffer *buffer, const drive_path &path)
{
	_usbdev *device = open_sampler(path.sampler);
	if (!device)
		return status_invalid_device_request;
	const open_usbdev open(device);
	return list_device(buffer, device, path);
}

static fs_status fill_directory_buffer(fs_directory_buffer *buffer, const char *pathname)
{
	add_record(buffer, ".", attribute_folder);
	add_record(buffer, "..", attribute_folder);
	drive_path path;
	_get_path_parts(__FILE_NAME__, __LINE__, pathname, path.sampler, path.volume, path.file);
	if (*path.sampler)
		return list_sampler(buffer, path);
	for (const _usbdev &device : usbdev)
		add_record(buffer, device.usb_name, attribute_folder);
	return status_success;
}

static fs_status read_directory(PTFS_FILE_CONTEXT *context, const char *pattern, const char *marker,
	std::vector<FSP_FSCTL_DIR_INFO> *buffer, u32 length, u32 *transferred)
{
	*transferred = 0;
	const _fs_handle *entry = get_fs_from_handle(context->Handle);
	if (!entry)
		return status_invalid_device_request;
	log_line("READDIR: [%s] PATTERN: [%s] MARKER: [%s]\n", entry->pathname,
		pattern ? pattern : "", marker ? marker : "");
	fs_directory_buffer *own = &context->DirBuffer;
	if (!acquire_directory_buffer(own, !marker)) {
		log_line("FSPFILESYSTEMACQUIRE FAILED! [%d]\n",
			static_cast<int>(status_invalid_device_request));
		return status_invalid_device_request;
	}
	const fs_status status =
		own->filled ? status_success : fill_directory_buffer(own, entry->pathname);
	own->held = false;
	own->filled = true;
	read_directory_buffer(*own, marker, buffer, length, transferred);
	return status;
}

// ---- Refused ---------------------------------------------------------------------------------------------

static fs_status refuse(const char *words)
{
	log_line("%s", words);
	return status_invalid_device_request;
}

using context_ref = FSP_FILE_SYSTEM_INTERFACE::context;

const FSP_FILE_SYSTEM_INTERFACE PtfsInterface = {
	.GetVolumeInfo = get_volume_info,
	.SetVolumeLabel = nullptr, // a label is the host's own affair; none can be set here
	.GetSecurityByName = get_security_by_name,
	.Create = [](const char *, u32, context_ref *) { return refuse("Requesting CREATE!"); },
	.Open = open,
	.Overwrite = [](context_ref) { return refuse("Requesting Overwrite!"); },
	.Cleanup = [](context_ref) { log_line("Requesting Cleanup!"); },
	.Close = close,
	.Read = [](context_ref, void *, u64, u32, u32 *) { return refuse("Requesting Read!"); },
	.Write = [](context_ref, const void *, u64, u32,
			 u32 *) { return refuse("Requesting Write!"); },
	.Flush = [](context_ref) { return refuse("Requesting Flush!"); },
	.GetFileInfo = get_file_info,
	.SetBasicInfo =
		[](context_ref, u32, FSP_FSCTL_FILE_INFO *) {
			return refuse("Requesting SETBASICINFO!");
		},
	.SetFileSize = [](context_ref, u64,
			       FSP_FSCTL_FILE_INFO *) { return refuse("Requesting SetFileSize!"); },
	.Rename = [](context_ref, const char *,
			  const char *) { return refuse("Requesting Rename!"); },
	// The system keeps no rights for a handle that is a mere number.
	.GetSecurity = [](context_ref, void *, std::size_t *) -> fs_status {
		return status_invalid_device_request;
	},
	.SetSecurity = [](context_ref, const void *) { return refuse("Requesting SetSecurity!"); },
	.ReadDirectory = read_directory,
	.SetDelete = [](context_ref, const char *,
			     bool) { return refuse("Requesting SetDelete!"); },
};

} // namespace velmor
