// test_wave_import.cpp - foreign files into the spool, its list, its clearing and its export

#include "src/controls.h"
#include "src/waveqx.h"
#include "tests/support/test_host.h"
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>

namespace velmor
{

namespace
{

// 22050 Hz, mono or stereo, 16 bits, four words of data.
std::vector<u8> mono()
{
	return hex("52 49 46 46 2C 00 00 00 57 41 56 45 66 6D 74 20 10 00 00 00 01 00 01 00 22 56 "
		   "00 00 "
		   "44 AC 00 00 02 00 10 00 64 61 74 61 08 00 00 00 01 00 02 00 03 00 04 00");
}

std::vector<u8> stereo()
{
	std::vector<u8> out = mono();
	out[22] = 2, out[32] = 4;
	return out;
}

struct wave_import : host_test {
	std::string spool = h.config + "\\sample", from = h.config + "\\music";

	wave_import() { host.files->make_folder(from.c_str()); }

	std::vector<std::string> names(const std::string &folder)
	{
		std::vector<std::string> out;
		host.files->list(folder.c_str(), &out);
		std::sort(out.begin(), out.end());
		return out;
	}
	std::string percent() { return h.texts[{ window_samples, samples_work_percent }]; }
	std::string outcome() { return h.texts[{ window_samples, samples_work_outcome }]; }
	int bring(const std::string &name, const std::vector<u8> &file, u32 channels = 0,
		u32 mixing = 0, u32 bits = 0, int rate = 0, u32 pitch = 83)
	{
		h.put_content(from + "\\" + name, file);
		return import_wave((from + "\\" + name).c_str(), window_samples, bits, rate,
			channels, mixing, pitch);
	}
	// The words of an imported file whose smpl chunk was made: 38 + 12 + 44 + 8 bytes of head.
	std::vector<u8> words(const std::string &name)
	{
		const auto file = h.content(spool + "\\" + name);
		if (!file)
			return hex("EE");
		return { file->begin() + 102, file->end() };
	}
};

TEST_F(wave_import, a_file_kept_as_it_is)
{
	ASSERT_EQ(bring("Kick 1.Wav", mono()), 1);
	// clang-format off
	EXPECT_EQ(h.content(spool + "\\Kick 1.Wav").value(), hex(
		"52 49 46 46 66 00 00 00 57 41 56 45 66 6D 74 20 12 00 00 00 01 00 01 00 22 56 00 00 "
		"44 AC 00 00 02 00 10 00 00 00 66 61 63 74 04 00 00 00 04 00 00 00 "
		"73 6D 70 6C 24 00 00 00 47 00 00 01 5E 00 00 00 27 B1 00 00 53 00 00 00 00*20 "
		"64 61 74 61 08 00 00 00 01 00 02 00 03 00 04 00"));
	// clang-format on
	EXPECT_EQ(outcome(), "Success!");
	EXPECT_EQ(percent(), "100 %");
	EXPECT_TRUE(names(h.config + "\\temp").empty());
	EXPECT_EQ(h.content(from + "\\Kick 1.Wav").value(), mono());
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_TRUE(h.logged("[D] Original-Sample: [" + from +
			     "\\Kick 1.Wav] Bits: 16, Channels: 1, Rate: 22050 Hz, Pitch: 255"));
}

TEST_F(wave_import, the_pitch_of_a_file_that_has_none)
{
	auto note = [&] { return h.content(spool + "\\A.wav").value()[70]; };
	bring("A.wav", mono(), 0, 0, 0, 0, 83);
	EXPECT_EQ(note(), 83);
	bring("A.wav", mono(), 0, 0, 0, 0, 0);
	EXPECT_EQ(note(), 255);
	bring("A.wav", mono(), 0, 0, 0, 0, 256 + 40); // taken as a byte
	EXPECT_EQ(note(), 40);
}

TEST_F(wave_import, what_the_choices_lead_to)
{
	struct {
		std::vector<u8> file;
		u32 channels, mixing;
		const char *data; // null: refused in silence
	} rows[] = {
		{ mono(), 0, 0, "01 00 02 00 03 00 04 00" },
		{ stereo(), 0, import_mix, "01 00 00 00 03 00 00 00" },
		{ stereo(), 1, import_left, "01 00 03 00" },
		{ stereo(), 1, import_right, "02 00 04 00" },
		{ stereo(), 1, import_mix, "01 00 03 00" },
		{ stereo(), 2, import_left, "01 00 00 00 03 00 00 00" },
		{ stereo(), 1, import_both, nullptr },
		{ stereo(), 1, 0, nullptr },
		{ stereo(), 1, import_left | import_right, nullptr },
		{ mono(), 1, import_split, "01 00 02 00 03 00 04 00" },
		{ mono(), 2, import_split, "01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00" },
		{ mono(), 2, import_left, "01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00" },
		{ mono(), 2, import_right, "00 00 01 00 00 00 02 00 00 00 03 00 00 00 04 00" },
		{ mono(), 2, import_both, "01 00 01 00 02 00 02 00 03 00 03 00 04 00 04 00" },
		{ mono(), 2, import_mix, nullptr },
		{ mono(), 1, import_left, nullptr }, // "Keep original" is its way in
		{ mono(), 4, import_left, nullptr },
	};
	for (const auto &row : rows) {
		SCOPED_TRACE(testing::Message()
			     << int(row.file[22]) << " to " << row.channels << ", " << row.mixing);
		host.files->remove((spool + "\\A.wav").c_str());
		h.texts.clear();
		EXPECT_EQ(bring("A.wav", row.file, row.channels, row.mixing), row.data != nullptr);
		if (row.data) {
			EXPECT_EQ(words("A.wav"), hex(row.data));
		} else {
			EXPECT_TRUE(names(spool).empty());
			EXPECT_EQ(outcome(), "");
		}
	}
	EXPECT_TRUE(h.boxes.empty());
}

TEST_F(wave_import, a_stereo_file_becomes_two)
{
	std::vector<std::string> seen;
	ASSERT_EQ(bring("Pad.old.wav", stereo(), 1, import_split, 12, 11025), 1);
	EXPECT_EQ(names(spool), (std::vector<std::string>{ "Pad.old-L.wav", "Pad.old-R.wav" }));
	// 1 and 3 at half the rate: 1; at 12 bits nothing of it is left. 2 * 256 >> 12 is 0 too.
	EXPECT_EQ(words("Pad.old-L.wav"), hex("00 00"));
	ASSERT_EQ(bring("Pad", stereo(), 1, import_split), 1); // no point in the name
	EXPECT_EQ(words("Pad-L.wav"), hex("01 00 03 00"));
	EXPECT_EQ(words("Pad-R.wav"), hex("02 00 04 00"));
	EXPECT_EQ(percent(), "100 %");
}

TEST_F(wave_import, the_right_file_fails_and_the_left_one_stays)
{
	// "-R.wav" cannot replace a folder.
	std::filesystem::create_directories(h.root + "/VELMOR/CONFIG/sample/Pad-R.wav/x");
	EXPECT_EQ(bring("Pad.wav", stereo(), 1, import_split), 0);
	EXPECT_EQ(outcome(), "Internal error converting file!");
	EXPECT_EQ(percent(), "50 %");
	EXPECT_EQ(words("Pad-L.wav"), hex("01 00 03 00"));
	EXPECT_EQ(names(h.config + "\\temp").size(), 1u); // left for the next import to empty
	ASSERT_EQ(bring("B.wav", mono()), 1);
	EXPECT_TRUE(names(h.config + "\\temp").empty());
}

TEST_F(wave_import, what_fails_says_so_in_its_place)
{
	EXPECT_EQ(bring("A.wav", hex("52 49 46 46")), 0);
	EXPECT_EQ(outcome(), "Cannot analyze original file");
	EXPECT_EQ(percent(), "1 %");
	std::vector<u8> bad = mono();
	bad[32] = 0; // block align
	EXPECT_EQ(bring("A.wav", bad), 0);
	EXPECT_EQ(outcome(), "Resampling failed!");
	EXPECT_EQ(percent(), "100 %");
	EXPECT_TRUE(names(h.config + "\\temp").empty());
	h.put_content(from + "\\A.wav", mono());
	h.disk.open_for_writing = EROFS; // a spool that cannot be written
	EXPECT_EQ(import_wave((from + "\\A.wav").c_str(), 0, 0, 0, 0, 0, 0), 0);
	EXPECT_TRUE(names(spool).empty());
	EXPECT_TRUE(h.boxes.empty());
}

TEST_F(wave_import, a_file_of_the_spool_over_itself)
{
	const std::string path = spool + "\\A.wav";
	h.put_content(path, mono());
	h.disk.space_left = 40;
	EXPECT_EQ(import_wave(path.c_str(), 0, 24, 0, 0, 0, 60), 0);
	EXPECT_EQ(h.content(path).value(), mono());
	h.disk.space_left.reset();
	EXPECT_EQ(import_wave(path.c_str(), 0, 24, 0, 0, 0, 60), 1);
	EXPECT_EQ(words("A.wav"), hex("00 01 00 00 02 00 00 03 00 00 04 00"));
	// And one out of the temporary folder, which the import empties.
	const std::string temp = h.config + "\\temp\\B.wav";
	h.put_content(temp, mono());
	EXPECT_EQ(import_wave(temp.c_str(), 0, 0, 0, 0, 0, 60), 1);
	EXPECT_EQ(h.content(temp).value(), mono());
	// A name without a folder is the base name; one with the other separator stays inside.
	h.put_content(h.root + "/x.wav", mono());
	EXPECT_EQ(import_wave((h.root + "/../" + h.root.substr(5) + "/x.wav").c_str(), 0, 0, 0, 0,
			  0, 0),
		1);
	EXPECT_EQ(names(spool).size(), 3u);
}

TEST_F(wave_import, stop_leaves_nothing_half_done)
{
	h.on_pump = [] { stop_progress(); };
	show_progressbar(window_samples, 1, "Converting Files...");
	EXPECT_EQ(bring("A.wav", mono()), 0);
	EXPECT_TRUE(progress_stopped());
	EXPECT_EQ(outcome(), "Stopped!");
	EXPECT_TRUE(names(spool).empty());
	EXPECT_TRUE(names(h.config + "\\temp").empty());
	h.on_pump = nullptr;
	show_progressbar(window_samples, 1, nullptr); // forgets the stop
}

// ---- The list -------------------------------------------------------------------------

TEST_F(wave_import, the_spool_listed)
{
	for (const char *name :
		{ "b.wav", "A.WAV", "C.wAv", ".wav", "a.wa", "note.txt", "x.info", "B.wav" })
		h.put_content(spool + "\\" + name, hex("00"));
	load_local_samples(nullptr);
	ASSERT_EQ(local_samples, 4);
	EXPECT_STREQ(local_sample[0].displayname, "A");
	EXPECT_STREQ(local_sample[3].displayname, "C");
	EXPECT_EQ(local_sample[0].pathname, spool + "\\A");
	EXPECT_TRUE(h.logged("[I] Fetching Sample-List from [" + spool + "]"));
	load_local_samples(from.c_str());
	EXPECT_EQ(local_samples, 0);
	EXPECT_TRUE(local_sample.empty());
	load_local_samples((h.config + "\\new").c_str()); // made when missing
	EXPECT_EQ(local_samples, 0);
	h.put_content(h.config + "\\file", hex("00"));
	EXPECT_THROW(load_local_samples((h.config + "\\file").c_str()), process_ended);
	EXPECT_EQ(h.boxes.back(),
		(shown_box{ "Cannot open directory: [" + h.config + "\\file]", "FATAL" }));
}

// ---- Clearing and export -----------------------------------------------------------------

TEST_F(wave_import, clearing_keeps_the_folder_and_what_links_lead_to)
{
	const std::string root = h.root + "/VELMOR/CONFIG/";
	std::filesystem::create_directories(root + "sample/sub/deep");
	h.put_content(spool + "\\a.wav", hex("00"));
	h.put_content(spool + "\\sub\\deep\\b.wav", hex("00"));
	h.put_content(from + "\\mine.wav", hex("AA"));
	std::filesystem::create_directory_symlink(root + "music", root + "sample/link");
	std::filesystem::create_symlink(root + "music/mine.wav", root + "sample/link.wav");
	ASSERT_EQ(mkfifo((root + "sample/pipe").c_str(), 0600), 0);
	cleanup_dir(spool.c_str());
	EXPECT_EQ(names(spool), std::vector<std::string>{ "pipe" });
	EXPECT_EQ(h.content(from + "\\mine.wav").value(), hex("AA"));
	cleanup_dir((h.config + "\\none").c_str());
	EXPECT_TRUE(h.logged("[D] Cannot open [" + h.config + "\\none]"));
}

TEST_F(wave_import, export_copies_and_counts)
{
	h.put_content(spool + "\\a.wav", hex("01 02"));
	h.put_content(spool + "\\A.wav", hex("03"));
	h.put_content(from + "\\a.wav", hex("FF FF FF"));
	ASSERT_TRUE(copy_folder(window_samples, spool.c_str(), (from + "\\").c_str()));
	EXPECT_EQ(h.content(from + "\\a.wav").value(), hex("01 02"));
	EXPECT_EQ(h.content(from + "\\A.wav").value(), hex("03"));
	EXPECT_EQ(percent(), "100 %");
	EXPECT_EQ((h.texts[{ window_samples, samples_work_count }]), "2/2");
	EXPECT_EQ(h.progress.caption, "Copying files...");
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(names(from).size(), 2u);
}

TEST_F(wave_import, export_that_fails_says_where)
{
	const std::string path = spool + "\\a.wav";
	h.put_content(path, hex("01 02 03"));
	EXPECT_FALSE(copy_folder(window_samples, spool.c_str(), (spool + "\\").c_str()));
	EXPECT_EQ(outcome(), "Export Folder is Spool-Directory!");
	EXPECT_FALSE(copy_folder(window_samples, (spool + "x").c_str(), from.c_str()));
	EXPECT_EQ(outcome(), "Cannot open [" + spool + "x]");
	h.disk.space_left = 2;
	EXPECT_FALSE(copy_folder(window_samples, spool.c_str(), from.c_str()));
	EXPECT_EQ(outcome(), "Cannot write to [" + from + "\\a.wav]");
	EXPECT_TRUE(names(from).empty());
	h.disk.space_left.reset();
	EXPECT_FALSE(copy_folder(window_samples, spool.c_str(), (from + "\\none").c_str()));
	EXPECT_EQ(outcome(), "Cannot open [" + from + "\\none\\a.wav] for writing");
	// The spool by another way of writing it: copied onto itself, and still there.
	EXPECT_TRUE(copy_folder(0, spool.c_str(), (h.config + "\\.\\sample").c_str()));
	EXPECT_EQ(h.content(path).value(), hex("01 02 03"));
	// A folder is handled as a file.
	host.files->make_folder((spool + "\\sub").c_str());
	EXPECT_FALSE(copy_folder(window_samples, spool.c_str(), from.c_str()));
	EXPECT_EQ(outcome(), "Cannot open [" + spool + "\\sub]");
	host.files->remove_folder((spool + "\\sub").c_str());
	// A link to nothing is told, and the copy goes on.
	std::filesystem::create_symlink("/nowhere", h.root + "/VELMOR/CONFIG/sample/gone.wav");
	EXPECT_TRUE(copy_folder(window_samples, spool.c_str(), from.c_str()));
	EXPECT_EQ(outcome(), "Cannot stat [" + spool + "\\gone.wav]");
	EXPECT_EQ(names(from), std::vector<std::string>{ "a.wav" });
	h.on_pump = [] { stop_progress(); };
	EXPECT_FALSE(copy_folder(window_samples, spool.c_str(), from.c_str()));
	EXPECT_EQ(outcome(), "Stopped!");
	h.on_pump = nullptr;
}

TEST_F(wave_import, the_answer_of_a_file_dialog)
{
	auto taken = [](const char *buffer) {
		char **files = nullptr;
		int count = -1;
		const bool any = extract_files(buffer, &files, &count);
		EXPECT_EQ(any, count > 0);
		std::vector<std::string> out(files, files + count);
		for (int i = 0; i < count; i++)
			std::free(files[i]);
		std::free(files);
		return out;
	};
	EXPECT_EQ(taken("C:\\x\0b.wav\0a.wav\0"),
		(std::vector<std::string>{ "C:\\x\\b.wav", "C:\\x\\a.wav" }));
	EXPECT_EQ(taken("C:\\x\\b.wav\0"), std::vector<std::string>{ "C:\\x\\b.wav" });
	EXPECT_TRUE(taken("\0").empty());
	const std::vector<char> endless(10240, 'x');
	EXPECT_EQ(taken(endless.data())[0].size(), 10240u);
}

} // namespace

} // namespace velmor
