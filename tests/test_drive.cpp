// test_drive.cpp - the disks of USB samplers: paths, names, requests, answers

#include "tests/support/drive_fixture.h"
#include <set>

using namespace velmor;

namespace
{

const family families[] = { s5000_rows, z4_rows };

// ---- Paths and names -------------------------------------------------------------------------

TEST_F(drive_test, a_path_has_three_parts)
{
	struct {
		const char *path, *sampler, *volume, *file;
	} rows[] = {
		{ "\\", "", "", "" },
		{ "Studio\\DISK", "", "", "" },
		{ "\\\\Studio\\\\", "Studio", "", "" },
		{ "\\Studio\\\\DISK 1", "Studio", "DISK 1", "" },
		{ "\\Studio\\DISK 1\\\\A\\\\B\\C", "Studio", "DISK 1", "A\\\\B\\C" },
	};
	for (const auto &row : rows) {
		drive_path p;
		_get_path_parts("here.cpp", 7, row.path, p.sampler, p.volume, p.file);
		EXPECT_STREQ(p.sampler, row.sampler) << row.path;
		EXPECT_STREQ(p.volume, row.volume) << row.path;
		EXPECT_STREQ(p.file, row.file) << row.path;
	}
	for (const char *line :
		{ "SAMPLER:   [Studio]", "VOLUME:    [DISK 1]", "FILE-PATH: [A\\\\B\\C]" })
		EXPECT_TRUE(told(format_text(": [here.cpp:7] ___ANALYZING --> %s\n", line)))
			<< line;
	drive_path p;
	const std::string endless = "\\" + std::string(3000, 'x');
	_get_path_parts("here.cpp", 7, endless.c_str(), p.sampler, p.volume, p.file);
	EXPECT_EQ(std::strlen(p.sampler), 1023u);
}

TEST_F(drive_test, a_name_of_a_sampler_is_one_name_of_the_host)
{
	struct {
		std::string name, shown;
	} rows[] = {
		{ "Kick 100%", "Kick 100%" },
		{ "A/B\\C", "A\u2215B\u2216C" },
		{ "\x01\x1F\x7F", "\u2401\u241F\u2421" },
		{ "\x80\xE9", "\uF780\u00E9" },
		{ "", "\u2205" },
		{ ".", "\u2024" },
		{ "..", "\u2024." },
		{ "...", "..." },
		{ std::string(300, 'x'), std::string(240, 'x') },
		{ std::string(121, '\xE9'), shown_name(std::string(120, '\xE9')) },
	};
	for (const auto &row : rows)
		EXPECT_EQ(shown_name(row.name), row.shown) << row.name;
	std::set<std::string> all = { shown_name(""), shown_name(".."), "\u2039", "\u203A" };
	for (int byte = 1; byte < 256; byte++)
		all.insert(shown_name(std::string(1, static_cast<char>(byte))));
	EXPECT_EQ(all.size(), 255u + 4);
}

// ---- Requests ------------------------------------------------------------------------------------

TEST_F(drive_test, a_folder_is_listed_byte_for_byte)
{
	for (const family &f : families) {
		transcript_usb wire(h, f.product);
		_usbdev *device = sampler(f.model);
		for (const char *steps : { f.open, f.volumes, f.drums, f.list })
			wire.play(steps);
		EXPECT_EQ(listing(drums_path),
			". 16 0 0;.. 16 0 0;Kits 16 0 0;Kick.wav 128 16643 4;");
		EXPECT_EQ(wire.steps_left(), 0);
		wire.play(f.open);
		wire.play(f.volumes);
		EXPECT_EQ(listing("\\Studio\\"), ". 16 0 0;.. 16 0 0;DISK 1 16 0 0;CD 16 0 0;");
		wire.play(f.open);
		wire.play(f.volumes);
		ASSERT_TRUE(open_midi_usb(device));
		sampler_volumes volumes;
		EXPECT_EQ(get_sampler_volumes(device, &volumes), 2);
		const _sampler_volume &v = volumes[0];
		EXPECT_EQ(std::vector<int>(
				  { v.handle, v.type, v.format, v.physical_id, v.writeable }),
			(std::vector<int>{ 130, 3, 4, 5, 0 }));
		EXPECT_EQ(volumes[1].handle, 7);
		EXPECT_EQ(find_sampler_volume(2, volumes, "cd"), &volumes[1]);
		free_sampler_volumes(0, &volumes);
		EXPECT_TRUE(volumes);
		free_sampler_volumes(2, &volumes);
		EXPECT_FALSE(volumes);
		close_midi_usb(device);
	}
	for (const char *line : { ": --- SAMPLER has 2 Volumes\n", ": Found: 2 Sampler-Files\n",
		     "] REQUESTING SAMPLER-PATH: [DRUMS] FOR VOLUME: [DISK 1] "
		     "(VOLUME-AKAI-HANDLE: 130)\n",
		     "] Changing path to: [drums]\n", ": +++++ [fsmidi_operations.cpp: ",
		     "] Found 1 Directories\n", "] Found 1 Files\n" })
		EXPECT_TRUE(told(line)) << line;
}

// A count has its high group first; an index as the family has it, but in the request for a size.
TEST_F(drive_test, an_index_over_127_takes_both_bytes)
{
	for (const family &f : families) {
		const bool s5000 = f.model == model_s5000;
		transcript_usb wire(h, f.product);
		_usbdev *device = sampler(f.model);
		const auto ask = [&](int item, const std::string &index, const std::string &says) {
			const std::string command = format_text("%s %02X %s",
				s5000 || item == 0x23 ? "10" : "20", item, index.c_str());
			const std::vector<u8> bytes = hex(command);
			int sum = 0;
			for (const u8 byte : bytes)
				sum += byte;
			const int size = static_cast<int>(bytes.size());
			wire.play(
				(s5000 ? format_text("> 10 %02X 00 F0 47 5E 23 00 00 %s %02X F7\n",
						 size + 8, command.c_str(), sum & 0x7F)
				       : format_text("> 10 %02X 00 F0 47 5F 00 %s F7\n", size + 5,
						 command.c_str()))
					.c_str());
			const char *const before = s5000          ? "< F0 47 5E 23 00 00 52 00 00"
						   : item == 0x23 ? "< F0 47 5F 00 00 00 52 00 00"
						   : item == 0x21 ? "< F0 47 5F 00 52 00 00 00 00"
								  : "< F0 47 5F 00 52 00 00 00";
			wire.play((before + (" " + says) + " F7").c_str());
		};
		const auto index = [](int i, bool high_first) {
			return format_text(
				high_first ? "%02X %02X" : "%2$02X %1$02X", i >> 7, i & 0x7F);
		};
		wire.play(f.open);
		ASSERT_TRUE(open_midi_usb(device));
		ask(0x10, "", "01 03");
		ask(0x20, "", "01 04");
		for (int i = 0; i < 131; i++)
			ask(0x11, index(i, s5000), format_text("'D%d' 00", i));
		for (int i = 0; i < 132; i++) {
			ask(0x21, index(i, s5000), format_text("'F%d' 00", i));
			ask(0x23, index(i, true), "7F 7F 7F " + format_text("%02X", i & 0x7F));
		}
		sampler_files all;
		ASSERT_EQ(_get_current_dirlist("here.cpp", 7, device, &all), 263);
		EXPECT_STREQ(all[130].name, "D130");
		EXPECT_STREQ(all[262].name, "F131");
		EXPECT_EQ(all[262].size, (1u << 28) - 128 + 3);
		EXPECT_EQ(wire.steps_left(), 0);
		close_midi_usb(device);
	}
}

// Everything a sampler may do wrong, at each of its answers.
TEST_F(drive_test, a_fault_at_any_exchange_ends_the_listing)
{
	for (const family &f : families) {
		const std::vector<std::string> all =
			exchanges_of(std::string(f.volumes) + f.drums + f.list);
		ASSERT_EQ(all.size(), 10u);
		for (std::size_t at = 0; at < all.size(); at++) {
			const std::string sent = all[at].substr(0, all[at].find('<'));
			const bool by_letter = at >= 2, path = at >= 2 && at < 5;
			struct {
				std::string steps;
				drive_result fault;
				bool applies;
			} rows[] = {
				{ sent + "! silence", drive_timed_out, true },
				{ sent + "! stall", drive_failed, true },
				{ "! unplug", drive_no_device, true },
				{ sent + "< F0*12 F7", path ? drive_not_found : drive_failed,
					by_letter },
				{ sent + format_text("< %02X*6", f.letter_at == 6 ? 0x52
								 : path           ? 0x44
										  : 0x52),
					path ? drive_not_found : drive_failed, by_letter },
			};
			for (const auto &row : rows) {
				if (!row.applies)
					continue;
				SCOPED_TRACE(row.steps);
				transcript_usb wire(h, f.product);
				sampler(f.model);
				forget_drive();
				wire.play(f.open);
				for (std::size_t i = 0; i < at; i++)
					wire.play(all[i].c_str());
				wire.play(row.steps.c_str());
				EXPECT_LE(took([&] {
					EXPECT_EQ(drive_listing(drums_path), row.fault);
				}),
					5.1);
				EXPECT_EQ(wire.steps_left(), 0);
				EXPECT_FALSE(usb_in_use());
			}
		}
	}
}

TEST_F(drive_test, volumes_that_are_not_there_are_none)
{
	struct {
		const char *count, *records;
		int volumes;
	} rows[] = {
		{ "00", nullptr, 0 },
		{ "FF", "00 07 01 02 06 01 'CD' 00", 1 },
		{ "03", "00 07 01 02 06 01 'CD' 00 00 08 01 02 06", 1 },
		{ "02", "00 07 01 02 06 01 'CD' 00 00 08 01 02 06 01 'NO END'", 1 },
		{ "01", "00 07 01 02 06 01 00", 1 },
		{ "02", "00 07 01 02 06 01 41*2000", 0 },
		{ "02", "", 0 },
	};
	for (const auto &row : rows) {
		SCOPED_TRACE(row.count);
		transcript_usb wire(h, 0x5E);
		_usbdev *device = sampler(model_s5000);
		wire.play(s5000_open);
		ASSERT_TRUE(open_midi_usb(device));
		wire.play(format_text("> 10 0A 00 F0 47 5E 23 00 00 10 04 14 F7\n"
				      "< F0 47 5E 23 00 00 52 10 04 %s F7",
			row.count)
				  .c_str());
		if (row.records)
			wire.play(format_text("> 10 0A 00 F0 47 5E 23 00 00 10 05 15 F7\n"
					      "< F0 47 5E 23 00 00 52 10 05 %s",
				row.records)
					  .c_str());
		sampler_volumes volumes;
		EXPECT_EQ(get_sampler_volumes(device, &volumes), row.volumes);
		EXPECT_EQ(volumes != nullptr, row.volumes > 0);
		close_midi_usb(device);
	}
	transcript_usb wire(h, 0x5E);
	_usbdev *device = sampler(model_s5000);
	wire.play(s5000_open);
	ASSERT_TRUE(open_midi_usb(device));
	wire.play("> 10 0A 00 F0 47 5E 23 00 00 10 04 14 F7\n! silence");
	sampler_volumes volumes;
	EXPECT_EQ(get_sampler_volumes(device, &volumes), 0);
	EXPECT_FALSE(usb_in_use());
	EXPECT_TRUE(told(": Sampler cannot be midid!"));
}

TEST_F(drive_test, what_a_path_leads_to)
{
	// Select, root and the first answer for folder "kits", then the way to "drums".
	const std::string to_root = exchanges_of(s5000_drums)[0] + exchanges_of(s5000_drums)[1];
	const auto change = [](const char *name, int sum, const char *letter) {
		return format_text("> 10 %02X 00 F0 47 5E 23 00 00 10 13 '%s' 00 %02X F7\n"
				   "< F0 47 5E 23 00 00 %s 10 13 F7\n",
			static_cast<unsigned>(std::strlen(name) + 3 + 8), name, sum, letter);
	};
	const std::string in_drums = to_root + change("drums", 0x4E, "44");
	const std::string refused = change("kick.wav", 0x41, "45");
	struct {
		std::string path, steps;
		int result;
		u32 attributes;
		u64 size, allocated;
		const char *log;
	} rows[] = {
		{ "\\", "", 0, 16, 0, 0, nullptr },
		{ "\\Studio\\DISK 1", "", 0, 16, 0, 0, nullptr },
		{ "\\Nowhere\\DISK 1\\A", "", 1, 0, 0, 0, "Sampler not found!" },
		{ "\\Studio\\DISK 9\\A", std::string(s5000_open) + s5000_volumes, 1, 0, 0, 0,
			"Sampler-Volume not found!" },
		{ "\\Studio\\DISK 1\\Drums", s5000_open + (s5000_volumes + in_drums), 0, 16, 0, 0,
			nullptr },
		{ "\\Studio\\disk 1\\Drums\\KICK.wav",
			s5000_open + (s5000_volumes + in_drums) + refused + in_drums + s5000_list,
			0, 0, 16643, 4, "The-PATH: [Drums]...The-FILE: [KICK.wav]\n" },
		{ "\\Studio\\DISK 1\\Drums\\Snare",
			s5000_open + (s5000_volumes + in_drums) + change("snare", 0x3C, "45") +
				in_drums + s5000_list,
			1, 0, 0, 0, "GET_FILE_INFO: Bad file name 'Snare'\n" },
		// A file at the volume's root passes for a folder.
		{ "\\Studio\\DISK 1\\Kick.wav",
			s5000_open + (s5000_volumes + to_root) + refused + to_root + refused, 1, 16,
			0, 0, nullptr },
	};
	for (const auto &row : rows) {
		SCOPED_TRACE(row.path);
		transcript_usb wire(h, 0x5E);
		sampler(model_s5000);
		wire.play(row.steps.c_str());
		FSP_FSCTL_FILE_INFO info;
		std::memset(&info, 0xFF, sizeof info);
		EXPECT_EQ(_get_file_info("here.cpp", 7, row.path.c_str(), &info), row.result);
		EXPECT_EQ(wire.steps_left(), 0);
		EXPECT_EQ(info.FileAttributes, row.attributes);
		EXPECT_EQ(info.FileSize, row.size);
		EXPECT_EQ(info.AllocationSize, row.allocated);
		EXPECT_EQ(info.ReparseTag, 0u);
		for (u64 time : { info.CreationTime, info.LastAccessTime, info.LastWriteTime,
			     info.ChangeTime })
			EXPECT_EQ(time, static_cast<u64>(host.clock->time_of_day()));
		EXPECT_TRUE(!row.log || told(row.log));
	}
}

} // namespace
