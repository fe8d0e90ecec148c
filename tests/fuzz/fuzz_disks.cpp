// fuzz_disks.cpp - what samplers say of their disks: names and counts that lie, records cut short
//
// The first byte chooses the model and what is asked. The rest are the answers. Every listing
// that comes of it has names that are each one name of a folder of the host, and no two alike.

#include "src/diskqx.h"
#include "tests/fuzz/fuzzed_usb.h"
#include <cstdlib>
#include <set>

using namespace velmor;

static void require(bool holds)
{
	if (!holds)
		std::abort();
}

static bool is_one_name(const std::string &name)
{
	const auto control = [](char c) {
		return static_cast<u8>(c) < 0x20 || c == 0x7F || c == '/';
	};
	return !name.empty() && name != "." && name != ".." &&
	       std::none_of(name.begin(), name.end(), control);
}

static void list(const std::string &path)
{
	std::vector<drive_entry> entries;
	drive_folder folder = nullptr;
	require(sampler_drive.open_folder(path, &folder) == drive_ok);
	const drive_result result =
		sampler_drive.list_folder({ .may_ask = true, .waited = 0 }, folder, path, &entries);
	sampler_drive.close_folder(folder);
	require(result == drive_ok || entries.empty());
	std::set<std::string> names;
	for (const drive_entry &entry : entries)
		require(is_one_name(entry.name) && names.insert(entry.name).second);
}

static void ask_model()
{
	_usbdev *device = find_usbdev("Fuzz");
	sampler_volumes volumes;
	sampler_files found;
	if (!device || !open_midi_usb(device))
		return;
	const int count = get_sampler_volumes(device, &volumes);
	require(count >= 0 && count < 256 && (count > 0) == (volumes != nullptr));
	if (count > 0 && _set_sampler_path("fuzz", 1, device, &volumes[0], "A\\b"))
		require(_get_current_dirlist("fuzz", 1, device, &found) <= 2 * max_disk_entries);
	free_sampler_volumes(count, &volumes);
	close_midi_usb(device);
}

static void look_up()
{
	drive_entry entry = {};
	const drive_result result = sampler_drive.find(
		{ .may_ask = true, .waited = 0 }, "\\Fuzz\\A", "desktop.ini", &entry);
	require(result != drive_ok || is_one_name(entry.name));
}

static void tell_path()
{
	FSP_FSCTL_FILE_INFO info;
	const int result = _get_file_info("fuzz", 1, "\\Fuzz\\A\\b\\c", &info);
	require(result == 0 || result == 1);
}

extern "C" int LLVMFuzzerTestOneInput(const u8 *data, std::size_t size)
{
	if (!size)
		return 0;
	static test_host h;
	const i32 models[] = { model_s5000, model_z4, model_mpc4000 };
	host.usb = &fuzzed_usb;
	current_run_mode.diagnostics = false;
	answers = { data + 1, size - 1 };
	list_device(models[data[0] / 8 % 3]);
	renew_limits(h);
	forget_drive();
	fs_fault = drive_ok;
	current_fs_caller = {};
	h.boxes.clear();
	h.texts.clear();
	switch (data[0] % 8) {
	case 0:
		ask_model();
		break;
	case 1:
		look_up();
		break;
	case 2:
		tell_path();
		break;
	case 3:
		list("\\Fuzz");
		break;
	case 4:
		list("\\"); // a look at the bus comes first
		break;
	default:
		list("\\Fuzz\\A\\b");
	}
	require(!usb_in_use());
	return 0;
}
