// test_drive_operations.cpp - the drive as a file system asks for it: operations, listings that
// are kept, samplers that come and go, the service

#include "tests/support/drive_fixture.h"
#include <filesystem>

using namespace velmor;

namespace
{

const std::string s5000_whole = std::string(s5000_open) + s5000_volumes + s5000_drums + s5000_list;

class operations_test : public drive_test
{
protected:
	operations_test() : wire(h, 0x5E), device(sampler(model_s5000)) {}
	void pass(double seconds) { h.time.run_until(h.time.now() + seconds); }
	std::string names()
	{
		std::string all;
		for (const drive_entry &e : entries)
			all += e.name + (e.folder ? "/" : "") +
			       format_text(" %d;", static_cast<int>(e.size));
		return all;
	}
	transcript_usb wire;
	_usbdev *device;
};

// ---- Operations ----------------------------------------------------------------------------------

TEST_F(operations_test, everything_but_listing_is_refused)
{
	const FSP_FILE_SYSTEM_INTERFACE &t = PtfsInterface;
	PTFS_FILE_CONTEXT *f = opened("\\Studio\\DISK 1\\A.wav"), *made = nullptr;
	FSP_FSCTL_FILE_INFO info = {};
	u32 moved = 0;
	std::size_t size = 100;
	char bytes[100];
	struct {
		fs_status status;
		const char *log;
	} rows[] = {
		{ t.Create("\\A", 0, &made), "CREATE" },
		{ t.Overwrite(f), "Overwrite" },
		{ t.Read(f, bytes, 0, 1, &moved), "Read" },
		{ t.Write(f, bytes, 0, 1, &moved), "Write" },
		{ t.Flush(f), "Flush" },
		{ t.SetBasicInfo(f, 0, &info), "SETBASICINFO" },
		{ t.SetFileSize(f, 0, &info), "SetFileSize" },
		{ t.Rename(f, "\\A", "\\B"), "Rename" },
		{ t.SetSecurity(f, bytes), "SetSecurity" },
		{ t.SetDelete(f, "\\A", true), "SetDelete" },
	};
	for (const auto &row : rows) {
		EXPECT_EQ(row.status, 0xC0000010) << row.log;
		EXPECT_TRUE(told(format_text(": Requesting %s!", row.log))) << row.log;
	}
	EXPECT_EQ(t.GetSecurity(f, bytes, &size), 0xC0000010);
	EXPECT_EQ(t.SetVolumeLabel, nullptr);
	t.Cleanup(f);
	EXPECT_TRUE(told(": Requesting Cleanup!"));
	t.Close(f);
	EXPECT_EQ(sampler_drive.read_file("\\A"), drive_refused);
}

TEST_F(operations_test, a_thousand_and_twenty_four_folders_can_be_open)
{
	const u64 first = myhandles;
	std::vector<PTFS_FILE_CONTEXT *> all;
	for (int i = 0; i < 1024; i++)
		all.push_back(opened("\\Studio"));
	EXPECT_EQ(all.back()->Handle, first + 1023);
	PTFS_FILE_CONTEXT *more = all[0];
	EXPECT_EQ(PtfsInterface.Open("\\", 1, &more, nullptr), 0xC000009A);
	EXPECT_EQ(more, nullptr);
	EXPECT_TRUE(told(": Too many open files (1024/1024)!\n"));
	drive_folder folder = nullptr;
	EXPECT_EQ(sampler_drive.open_folder("\\", &folder), drive_too_many);
	PtfsInterface.Close(all[7]);
	EXPECT_TRUE(told(format_text(": INFO: Closed handle: %d\n", static_cast<int>(first) + 7)));
	all[7] = opened("\\Studio\\CD");
	EXPECT_EQ(all[7]->Handle, first + 1026) << "no number comes twice";
	EXPECT_STREQ(get_fs_from_handle(first + 1026)->pathname, "\\Studio\\CD");
	EXPECT_TRUE(told(format_text(": ### Requesting OPEN FOR: [\\Studio\\CD], FILE-INFO: 0, "
				     "FILE-NAME-LEN: 10 Bytes --> Handle: %d\n",
		static_cast<int>(first) + 1026)));
	const drive_call call = { true, 0, [] { return true; } };
	EXPECT_EQ(sampler_drive.find(call, "\\Studio", "CD", &entry), drive_too_many);
	EXPECT_FALSE(current_fs_caller.given_up) << "nobody is asked after a call that has ended";
	for (PTFS_FILE_CONTEXT *context : all)
		PtfsInterface.Close(context);
	EXPECT_EQ(
		PtfsInterface.Open(std::string(1024, 'x').c_str(), 1, &more, nullptr), 0xC0000033);

	PTFS_FILE_CONTEXT stray = { .Handle = 7, .DirBuffer = {} };
	FSP_FSCTL_FILE_INFO info;
	std::vector<FSP_FSCTL_DIR_INFO> records;
	u32 moved = 0;
	PtfsInterface.Close(&stray);
	EXPECT_EQ(PtfsInterface.GetFileInfo(&stray, &info), 0xC0000010);
	EXPECT_EQ(PtfsInterface.ReadDirectory(&stray, nullptr, nullptr, &records, 99, &moved),
		0xC0000010);
	EXPECT_TRUE(told(": WARNING: HANDLE 7 not found!\n"));
	EXPECT_TRUE(told(": WARNING: Handle 7 not found!\n"));
}

TEST_F(operations_test, a_path_that_leads_nowhere_opens)
{
	PTFS_FILE_CONTEXT *context = nullptr;
	FSP_FSCTL_FILE_INFO info = {};
	EXPECT_EQ(PtfsInterface.Open("\\Nowhere\\A\\B", 0x41, &context, &info), 0u);
	EXPECT_EQ(info.ChangeTime, static_cast<u64>(host.clock->time_of_day()));
	EXPECT_EQ(PtfsInterface.GetFileInfo(context, &info), 0u);
	EXPECT_TRUE(told("FILE-INFO: 1, "));
	PtfsInterface.Close(context);
	EXPECT_EQ(listing("\\Nowhere\\A\\B", 0xC0000010), ". 16 0 0;.. 16 0 0;");
	EXPECT_EQ(listing("\\"), ". 16 0 0;.. 16 0 0;Studio 16 0 0;");
	wire.play(s5000_open);
	wire.play(s5000_volumes);
	EXPECT_EQ(listing("\\Studio\\NO DISK", 0xC0000010), ". 16 0 0;.. 16 0 0;");
}

TEST_F(operations_test, a_listing_goes_on_behind_its_marker)
{
	wire.play(s5000_open);
	wire.play(s5000_volumes);
	PTFS_FILE_CONTEXT *context = opened("\\Studio");
	std::vector<FSP_FSCTL_DIR_INFO> records;
	u32 moved = 0;
	const auto read = [&](const char *marker, u32 length) {
		records.clear();
		EXPECT_EQ(PtfsInterface.ReadDirectory(
				  context, nullptr, marker, &records, length, &moved),
			0u);
		return records.empty() ? ""
				       : records.front().FileName + "-" + records.back().FileName;
	};
	EXPECT_EQ(read(nullptr, 106 + 108), ".-..");
	EXPECT_EQ(moved, 214u);
	EXPECT_EQ(read("..", 1000), "DISK 1-CD");
	EXPECT_EQ(read("DISK 1", 107), "");
	EXPECT_EQ(read("CD", 1000), "");
	context->DirBuffer.held = true;
	EXPECT_EQ(PtfsInterface.ReadDirectory(context, nullptr, "..", &records, 1000, &moved),
		0xC0000010);
	EXPECT_TRUE(told(": FSPFILESYSTEMACQUIRE FAILED! ["));
	PtfsInterface.Close(context);
}

TEST_F(operations_test, a_security_look_up_says_folder_and_leaves_no_file)
{
	char descriptor[64];
	std::size_t size = 64;
	u32 attributes = 0;
	const int before = pseudo_fcount;
	EXPECT_EQ(
		PtfsInterface.GetSecurityByName("\\No\\where", &attributes, descriptor, &size), 0u);
	EXPECT_EQ(attributes, 16u);
	EXPECT_EQ(size, 40u);
	EXPECT_EQ(pseudo_fcount, before + 1);
	EXPECT_EQ(PtfsInterface.GetSecurityByName("\\A", nullptr, nullptr, nullptr), 0u);
	EXPECT_EQ(pseudo_fcount, before + 2);
	EXPECT_FALSE(std::filesystem::exists("temp"));
	size = 39;
	EXPECT_EQ(PtfsInterface.GetSecurityByName("\\A", nullptr, descriptor, &size), 0xC0000033);
	EXPECT_TRUE(told(": Descriptor too small! (39/40 Bytes)\n"));
	EXPECT_TRUE(told(": Failed to get File-Security for [C\\A]\n"));
	EXPECT_EQ(PtfsInterface.GetSecurityByName(
			  std::string(2047, 'x').c_str(), &attributes, nullptr, nullptr),
		0xC0000033);
}

// ---- Listings that are kept ------------------------------------------------------------------------

TEST_F(operations_test, what_was_listed_is_not_asked_for_again)
{
	wire.play(s5000_whole.c_str());
	EXPECT_EQ(drive_listing(drums_path), drive_ok);
	EXPECT_EQ(names(), "Kits/ 0;Kick.wav 16643;");
	EXPECT_EQ(entries[1].path, std::string(drums_path) + "\\Kick.wav");
	pass(0.9);
	EXPECT_EQ(drive_listing(drums_path), drive_ok);
	pass(28);
	EXPECT_EQ(found(drums_path, "Kick.wav"), drive_ok);
	EXPECT_EQ(entry.size, 16643u);
	EXPECT_EQ(found(drums_path, "kits"), drive_ok);
	EXPECT_EQ(entry.name, "Kits");
	for (const char *habit : { ".Trash", "autorun.inf", ".hidden", "desktop.ini" })
		EXPECT_EQ(found(drums_path, habit), drive_not_found);
	EXPECT_EQ(drive_listing(drums_path, false), drive_later);
	EXPECT_EQ(wire.steps_left(), 0);
	wire.play(s5000_whole.c_str());
	EXPECT_EQ(drive_listing(drums_path), drive_ok) << "asked anew after a second";
	EXPECT_EQ(wire.steps_left(), 0);
	pass(31);
	EXPECT_EQ(found(drums_path, "Kick.wav", false), drive_later);
	wire.play(s5000_whole.c_str());
	EXPECT_EQ(found(drums_path, "Kick.wav"), drive_ok);
	EXPECT_EQ(wire.steps_left(), 0);
}

TEST_F(operations_test, names_stay_apart_and_inside_their_folder)
{
	const char *const shown[] = { "\u2024.", "A\u2215B", "A\u2216B", "\u2205", "X",
		"X\u20392\u203A" };
	const char *const names_here[] = { "'..'", "'A/B'", "'A\\B'", "", "'X'", "'X'" };
	wire.play(s5000_open);
	wire.play(s5000_volumes);
	wire.play(s5000_drums);
	wire.play(
		"> 10 0A 00 F0 47 5E 23 00 00 10 10 20 F7\n< F0 47 5E 23 00 00 52 10 10 00 06 F7\n"
		"> 10 0A 00 F0 47 5E 23 00 00 10 20 30 F7\n< F0 47 5E 23 00 00 52 10 20 00 00 F7");
	for (int i = 0; i < 6; i++)
		wire.play(format_text("> 10 0C 00 F0 47 5E 23 00 00 10 11 00 %02X %02X F7\n"
				      "< F0 47 5E 23 00 00 52 10 11 %s 00 F7",
			i, 0x21 + i, names_here[i])
				  .c_str());
	ASSERT_EQ(drive_listing(drums_path), drive_ok);
	ASSERT_EQ(entries.size(), 6u);
	drive_folder folder = nullptr;
	for (std::size_t i = 0; i < 6; i++) {
		EXPECT_EQ(entries[i].name, shown[i]);
		EXPECT_EQ(entries[i].path.empty(), i == 2 || i == 3) << shown[i];
	}
	EXPECT_EQ(sampler_drive.open_folder(entries[2].path, &folder), drive_refused);
}

TEST_F(operations_test, a_failure_is_everybodys_for_a_second)
{
	wire.play(s5000_open);
	wire.play("> 10 0A 00 F0 47 5E 23 00 00 10 04 14 F7\n! silence");
	EXPECT_EQ(drive_listing(drums_path), drive_timed_out);
	EXPECT_EQ(took([&] {
		EXPECT_EQ(drive_listing("\\Studio\\CD"), drive_timed_out);
		EXPECT_EQ(found("\\Studio", "CD", false), drive_timed_out);
	}),
		0);
	EXPECT_TRUE(told(format_text(": [W] [%s] cannot be listed: the sampler did not answer in "
				     "time.\r\n",
		drums_path)));
	pass(1.1);
	EXPECT_EQ(drive_listing(drums_path, false), drive_later);
	forget_unread_usb();
	// A program that holds the sampler for a second is waited for.
	pass(10);
	wire.open_result = usb_busy;
	h.time.after(1.2, [this] { wire.open_result = usb_ok; });
	wire.play(s5000_open);
	wire.play(s5000_volumes);
	EXPECT_EQ(drive_listing("\\Studio"), drive_ok);
	struct {
		int open_result;
		drive_result result;
		const char *words;
	} rows[] = {
		{ usb_busy, drive_busy, "another program is using the sampler." },
		{ usb_denied, drive_denied, "this user may not open the sampler." },
		{ usb_no_device, drive_no_device, "the sampler was unplugged or switched off." },
	};
	for (const auto &row : rows) {
		pass(1.1);
		wire.open_result = row.open_result;
		EXPECT_EQ(drive_listing("\\Studio"), row.result);
		EXPECT_TRUE(
			told(format_text(": [W] [\\Studio] cannot be listed: %s\r\n", row.words)));
	}
}

TEST_F(operations_test, a_call_ends_when_its_time_is_over_or_nobody_wants_it)
{
	const std::string first = exchanges_of(s5000_volumes)[0];
	EXPECT_EQ(drive_listing(drums_path, true, 60.5), drive_timed_out);
	wire.play((s5000_open + first.substr(0, first.find('<')) + "! wait 100\n" +
		   first.substr(first.find('<')))
			  .c_str());
	EXPECT_EQ(drive_listing(drums_path, true, 59.95), drive_timed_out);
	EXPECT_EQ(wire.steps_left(), 0);
	pass(1.1);
	wire.play((s5000_open + first).c_str());
	int times = 0;
	EXPECT_EQ(
		drive_listing(drums_path, true, 0, [&times] { return ++times > 2; }), drive_ended);
	EXPECT_EQ(wire.steps_left(), 0);
	request_close(true);
	EXPECT_EQ(drive_listing(drums_path), drive_ended);
}

// ---- What is plugged in --------------------------------------------------------------------------

TEST_F(operations_test, the_root_shows_what_is_plugged_in)
{
	EXPECT_EQ(drive_listing("\\"), drive_ok);
	EXPECT_EQ(names(), "Studio/ 0;");
	// A second sampler comes while other programs use both: the known one stays.
	wire.devices.push_back(wire.devices[0]);
	wire.devices[1].path = "usb:2";
	wire.open_result = usb_busy;
	EXPECT_EQ(found("\\", "Studio"), drive_ok);
	EXPECT_FALSE(told("Initializing USB")) << "within a second nobody looks";
	pass(1.1);
	EXPECT_EQ(drive_listing("\\"), drive_ok);
	EXPECT_EQ(names(), "Studio/ 0;");
	EXPECT_TRUE(told(
		": [W] The USB sampler at [usb:2] is not shown: it does not answer, or another "
		"program is using it.\r\n"));
	h.forget_log();
	pass(1.1);
	drive_listing("\\");
	EXPECT_FALSE(told("Initializing USB")) << "a silent one is asked every ten seconds";
	pass(10);
	drive_listing("\\");
	EXPECT_TRUE(told("Initializing USB"));
	wire.devices.clear();
	pass(1.1);
	EXPECT_EQ(found("\\", "Studio"), drive_not_found);
	EXPECT_EQ(usbdevs, 0);
	EXPECT_EQ(listing("\\"), ". 16 0 0;.. 16 0 0;");
}

TEST_F(operations_test, an_unplugged_sampler_is_forgotten)
{
	wire.play(s5000_whole.c_str());
	drive_listing(drums_path);
	pass(1.1);
	wire.play((std::string(s5000_open) + "! unplug").c_str());
	EXPECT_EQ(drive_listing(drums_path), drive_no_device);
	EXPECT_EQ(found(drums_path, "Kick.wav", false), drive_no_device);
	wire.devices.clear();
	EXPECT_EQ(drive_listing("\\"), drive_ok);
	EXPECT_EQ(names(), "");
}

// ---- The service -----------------------------------------------------------------------------------

// A host's drive that does as it is told.
struct fake_drive {
	bool made = true, starts = true;
	int code = 0, looks = 0, stops = 0;
	u64 total = 1000;
	drive_parameters parameters;
	std::string mount_point;
	std::vector<bool> answers; // whether a sampler could be asked, call by call
	void (*waiting)() = nullptr;
} fake;

const drive_service fake_service = {
	.host_disk =
		[](u64 *, u64 *total) {
			*total = fake.total;
			return fake.total > 0;
		},
	.host_made =
		[](double *time) {
			*time = 86400 * 365;
			return fake.made;
		},
	.usable = nullptr,
	.mount =
		[](const drive_parameters &parameters, const drive_operations &, const char *at,
			std::string *why) {
			fake.parameters = parameters;
			fake.mount_point = at;
			*why = "It cannot be.";
			return fake.code;
		},
	.start =
		[](void (*waiting)()) {
			(fake.waiting = waiting)();
			return fake.starts;
		},
	.answer =
		[](bool may_ask) {
			fake.answers.push_back(may_ask);
			if (!may_ask)
				return;
			fake.waiting(); // another call comes while this one asks
			host.ui->pump(10);
		},
	.unmounted = [] { return ++fake.looks > 3; },
	.stop = [] { fake.stops++; },
};

TEST_F(operations_test, the_service_mounts_serves_and_unmounts)
{
	wire.devices.clear();
	fake = {};
	host_drive = &fake_service;
	MountPoint = "/somewhere";
	start_filesystem();
	EXPECT_EQ(fake.mount_point, "/somewhere");
	EXPECT_EQ(fake.parameters.type, "velmorfs");
	EXPECT_EQ(fake.parameters.root, "\\");
	EXPECT_EQ(fake.parameters.block_size, 4096);
	EXPECT_EQ(fake.parameters.keep_ms, 1000);
	EXPECT_EQ(fake.parameters.serial, 123u);
	EXPECT_EQ(fake.answers, (std::vector<bool>{ true, false })) << "two never ask at a time";
	EXPECT_EQ(fake.stops, 1);
	EXPECT_EQ(Result, 0u);
	for (const char *words : { ": [D] SVCSTART...\r", ": Creation time for [\\]: ", " 1971\n",
		     ": [D] SVCEND...\r", ": [D] FSPSERVICERUN STATUS: 0\r\n",
		     ": [D] FSPLOAD COMPLETED: 0\r\n" })
		EXPECT_TRUE(told(words)) << words;
	FSP_FSCTL_VOLUME_INFO info;
	EXPECT_EQ(PtfsInterface.GetVolumeInfo(&info), 0u);
	EXPECT_EQ(info.TotalSize, 1000000000u);
	EXPECT_EQ(info.FreeSize, 800000000u);
	EXPECT_EQ(info.VolumeLabelLength, 16);
	EXPECT_EQ(std::u16string(info.VolumeLabel), u"velmorfs");
	drive_sizes sizes;
	fake.total = ~u64{ 0 } / 1000;
	EXPECT_EQ(sampler_drive.sizes(&sizes), drive_ok);
	EXPECT_EQ(sizes.label, "velmorfs");
	EXPECT_LE(sizes.free, sizes.total);
	EXPECT_LE(sizes.total, u64{ 1 } << 60);
	fake.total = 0;
	EXPECT_EQ(PtfsInterface.GetVolumeInfo(&info), 0u);
	EXPECT_TRUE(told(": GETFREE FAILED!"));
}

TEST_F(operations_test, a_drive_that_cannot_be_had_ends_the_process)
{
	wire.devices.clear();
	EXPECT_THROW(start_filesystem(), process_ended);
	EXPECT_EQ(h.boxes, (std::vector<shown_box>{ { "FAILED TO START WINFSP", "FATAL" } }));
	host_drive = &fake_service;
	fake = {};
	fake.made = false;
	EXPECT_THROW(start_filesystem(), process_ended);
	EXPECT_TRUE(told(": STAT FAILED!!!"));
	fake = {};
	fake.code = EACCES;
	testing::internal::CaptureStdout();
	EXPECT_THROW(start_filesystem(), process_ended);
	display_error(99999);
	EXPECT_EQ(testing::internal::GetCapturedStdout(),
		"Error value: 13 Message: Permission denied\n"
		"Error value: 99999 Message: Error message not found.\n");
	EXPECT_TRUE(told(": RESULT FSPFILESYSTEMCREATE: 13\n"));
	EXPECT_TRUE(told(": cannot create file system"));
	EXPECT_EQ(fake.stops, 0);
	fake = {};
	fake.starts = false;
	EXPECT_THROW(start_filesystem(), process_ended);
	EXPECT_TRUE(told(": cannot start file system"));
	EXPECT_EQ(fake.stops, 1);
}

} // namespace
