// drive_fixture.h - what the tests of the samplers' disks have in common: two conversations, and
// what a listing looks like

#pragma once
#include "src/diskqx.h"
#include "tests/support/usb_fixture.h"
#include <cstring>

namespace velmor
{

inline const char *const s5000_open = R"(
	> 03 14
	> 04 03
	> 10 0B 00 F0 47 5E 20 00 00 00 01 00 01 F7
	< F0 47 5E 23 00 00 44 00 01 F7
)";
inline const char *const s5000_volumes = R"(
	> 10 0A 00 F0 47 5E 23 00 00 10 04 14 F7
	< F0 47 5E 23 00 00 52 10 04 02 F7
	> 10 0A 00 F0 47 5E 23 00 00 10 05 15 F7
	< F0 47 5E 23 00 00 52 10 05 01 02 03 04 05 00 'DISK 1' 00 00 07 01 02 06 01 'CD' 00 F7
)";
// Handle 130, the root, and one folder.
inline const char *const s5000_drums = R"(
	> 10 0C 00 F0 47 5E 23 00 00 10 02 01 02 15 F7
	< F0 47 5E 23 00 00 44 10 02 F7
	> 10 0B 00 F0 47 5E 23 00 00 10 13 00 23 F7
	< F0 47 5E 23 00 00 44 10 13 F7
	> 10 10 00 F0 47 5E 23 00 00 10 13 'drums' 00 4E F7
	< F0 47 5E 23 00 00 44 10 13 F7
)";
inline const char *const s5000_list = R"(
	> 10 0A 00 F0 47 5E 23 00 00 10 10 20 F7
	< F0 47 5E 23 00 00 52 10 10 00 01 F7
	> 10 0A 00 F0 47 5E 23 00 00 10 20 30 F7
	< F0 47 5E 23 00 00 52 10 20 00 01 F7
	> 10 0C 00 F0 47 5E 23 00 00 10 11 00 00 21 F7
	< F0 47 5E 23 00 00 52 10 11 'Kits' 00 F7
	> 10 0C 00 F0 47 5E 23 00 00 10 21 00 00 31 F7
	< F0 47 5E 23 00 00 52 10 21 'Kick.wav' 00 F7
	> 10 0C 00 F0 47 5E 23 00 00 10 23 00 00 33 F7
	< F0 47 5E 23 00 00 52 10 23 00 01 02 03 F7
)";
inline const char *const z4_open = "> 03 01\n";
inline const char *const z4_volumes = R"(
	> 10 07 00 F0 47 5F 00 20 04 F7
	< F0 47 5F 00 52 20 04 00 02 F7
	> 10 07 00 F0 47 5F 00 20 05 F7
	< F0 47 5F 00 52 20 05 00 02 01 03 04 05 00 'DISK 1' 00 07 00 01 02 06 01 'CD' 00 F7
)";
inline const char *const z4_drums = R"(
	> 10 09 00 F0 47 5F 00 20 02 02 01 F7
	< F0 47 5F 00 44 20 02 F7
	> 10 08 00 F0 47 5F 00 20 13 00 F7
	< F0 47 5F 00 44 20 13 F7
	> 10 0D 00 F0 47 5F 00 20 13 'drums' 00 F7
	< F0 47 5F 00 44 20 13 F7
)";
// The name of a file stands one byte later than that of a folder; its size is asked for and
// answered as by an S5000.
inline const char *const z4_list = R"(
	> 10 07 00 F0 47 5F 00 20 10 F7
	< F0 47 5F 00 52 20 10 00 00 01 F7
	> 10 07 00 F0 47 5F 00 20 20 F7
	< F0 47 5F 00 52 20 20 00 00 01 F7
	> 10 09 00 F0 47 5F 00 20 11 00 00 F7
	< F0 47 5F 00 52 20 11 00 'Kits' 00 F7
	> 10 09 00 F0 47 5F 00 20 21 00 00 F7
	< F0 47 5F 00 52 20 21 00 00 'Kick.wav' 00 F7
	> 10 09 00 F0 47 5F 00 10 23 00 00 F7
	< F0 47 5F 00 00 00 52 10 23 00 01 02 03 F7
)";

struct family {
	u16 product;
	i32 model;
	const char *open, *volumes, *drums, *list;
	std::size_t letter_at;
};
inline const family s5000_rows = { 0x5E, model_s5000, s5000_open, s5000_volumes, s5000_drums,
	s5000_list, 6 };
inline const family z4_rows = { 0x5F, model_z4, z4_open, z4_volumes, z4_drums, z4_list, 4 };

// Requests of a conversation with their answers, one text each.
inline std::vector<std::string> exchanges_of(const std::string &text)
{
	std::vector<std::string> all;
	for (std::size_t at = text.find('>'); at != text.npos;) {
		const std::size_t next = text.find('>', at + 1);
		all.push_back(text.substr(at, next == text.npos ? next : next - at));
		at = next;
	}
	return all;
}

class drive_test : public usb_test
{
protected:
	drive_test()
	{
		forget_drive();
		clear_fs_handles();
		fs_fault = drive_ok;
		current_fs_caller = {};
		forget_stop();
	}
	~drive_test() override
	{
		request_close(false);
		host_drive = nullptr;
	}
	// True if the log holds these words. Some of its texts do not end their line.
	bool told(const std::string &words)
	{
		const std::vector<u8> log = h.content("velmor.log").value_or(std::vector<u8>());
		const std::string all(log.begin(), log.end());
		return all.find(words) != all.npos;
	}
	// A sampler as a look for samplers left it.
	_usbdev *sampler(i32 model)
	{
		_usbdev *device = listed(model);
		device->address = "001/002";
		usb_init_done = 1;
		return device;
	}
	PTFS_FILE_CONTEXT *opened(const char *path)
	{
		PTFS_FILE_CONTEXT *context = nullptr;
		EXPECT_EQ(PtfsInterface.Open(path, 1, &context, nullptr), 0u);
		return context;
	}
	// Names, attributes and sizes of a folder that is opened, listed and closed.
	std::string listing(const char *path, fs_status expected = 0, u32 length = 100000)
	{
		PTFS_FILE_CONTEXT *context = opened(path);
		std::vector<FSP_FSCTL_DIR_INFO> records;
		u32 transferred = 0;
		EXPECT_EQ(PtfsInterface.ReadDirectory(
				  context, "*.wav", nullptr, &records, length, &transferred),
			expected);
		std::string text;
		u32 bytes = 0;
		for (const FSP_FSCTL_DIR_INFO &r : records) {
			text += format_text("%s %u %d %d;", r.FileName.c_str(),
				r.FileInfo.FileAttributes, static_cast<int>(r.FileInfo.FileSize),
				static_cast<int>(r.FileInfo.AllocationSize));
			EXPECT_EQ(r.Size, r.FileName.size() * 2 + 104);
			EXPECT_EQ(
				r.FileInfo.ChangeTime, static_cast<u64>(host.clock->time_of_day()));
			bytes += r.Size;
		}
		EXPECT_EQ(transferred, bytes);
		PtfsInterface.Close(context);
		return text;
	}
	// The same as the host's drive sees it, or what it is told instead.
	drive_result drive_listing(const std::string &path, bool may_ask = true, double waited = 0,
		std::function<bool()> given_up = {})
	{
		entries.clear();
		drive_folder folder = nullptr;
		EXPECT_EQ(sampler_drive.open_folder(path, &folder), drive_ok);
		const drive_result result = sampler_drive.list_folder(
			{ may_ask, waited, std::move(given_up) }, folder, path, &entries);
		sampler_drive.close_folder(folder);
		return result;
	}
	drive_result found(const std::string &folder, const std::string &name, bool may_ask = true)
	{
		return sampler_drive.find({ may_ask, 0, {} }, folder, name, &entry);
	}
	std::vector<drive_entry> entries;
	drive_entry entry;
};
inline constexpr char drums_path[] = "\\Studio\\disk 1\\\\DRUMS";

} // namespace velmor
