// test_wave_import.cpp - foreign files into the spool, its list, its clearing and its export

#include "src/controls.h"
#include "src/waveqx.h"
#include "tests/support/wave_files.h"
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>

namespace velmor
{

namespace
{

using strings = std::vector<std::string>;

// 22050 Hz, 16 bits, four words of data.
const bytes four_words = chunk("data", hex("01 00 02 00 03 00 04 00"));
const bytes mono = riff(fmt({ 1, 16, 2, 22050 }) + four_words);
const bytes stereo = riff(fmt({ 2, 16, 4, 22050 }) + four_words);

struct wave_import : host_test {
	std::string spool = h.config + "\\sample", from = h.config + "\\music",
		    temp = h.config + "\\temp";

	wave_import() { host.files->make_folder(from.c_str()); }

	std::string percent() { return h.texts[{ window_samples, samples_work_percent }]; }
	std::string outcome() { return h.texts[{ window_samples, samples_work_outcome }]; }
	int bring(const std::string &name, const bytes &file, u32 channels = 0, u32 mixing = 0,
		u32 bits = 0, int rate = 0, u32 pitch = 83)
	{
		h.put_content(from + "\\" + name, file);
		return import_wave((from + "\\" + name).c_str(), window_samples, bits, rate,
			channels, mixing, pitch);
	}
	// The words of an imported file whose smpl chunk was made: 38 + 12 + 44 + 8 bytes of head.
	bytes words(const std::string &name)
	{
		const auto file = h.content(spool + "\\" + name);
		return file ? bytes(file->begin() + 102, file->end()) : hex("EE");
	}
};

TEST_F(wave_import, a_file_kept_as_it_is)
{
	ASSERT_EQ(bring("Kick 1.Wav", mono), 1);
	// 1000000000 / 22050 = 45351 = B127; the note is that of the import, 0x53.
	EXPECT_EQ(h.content(spool + "\\Kick 1.Wav").value(),
		riff(fmt({ 1, 16, 2, 22050 }, word(0, 2)) + chunk("fact", word(4)) +
			chunk("smpl", hex("47 00 00 01 5E 00 00 00 27 B1 00 00 53 00*23")) +
			four_words));
	EXPECT_EQ(outcome(), "Success!");
	EXPECT_EQ(percent(), "100 %");
	EXPECT_TRUE(names_in(temp).empty());
	EXPECT_EQ(h.content(from + "\\Kick 1.Wav").value(), mono);
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_TRUE(h.logged("[D] Original-Sample: [" + from +
			     "\\Kick 1.Wav] Bits: 16, Channels: 1, Rate: 22050 Hz, Pitch: 255"));
}

TEST_F(wave_import, the_pitch_of_a_file_that_has_none)
{
	auto note = [&] { return h.content(spool + "\\A.wav").value()[70]; };
	bring("A.wav", mono, 0, 0, 0, 0, 83);
	EXPECT_EQ(note(), 83);
	bring("A.wav", mono, 0, 0, 0, 0, 0);
	EXPECT_EQ(note(), 255);
	bring("A.wav", mono, 0, 0, 0, 0, 256 + 40); // taken as a byte
	EXPECT_EQ(note(), 40);
}

TEST_F(wave_import, what_the_choices_lead_to)
{
	struct {
		bytes file;
		u32 channels, mixing;
		const char *data; // null: refused in silence
	} rows[] = {
		{ mono, 0, 0, "01 00 02 00 03 00 04 00" },
		{ stereo, 0, import_mix, "01 00 00 00 03 00 00 00" },
		{ stereo, 1, import_left, "01 00 03 00" },
		{ stereo, 1, import_right, "02 00 04 00" },
		{ stereo, 1, import_mix, "01 00 03 00" },
		{ stereo, 2, import_left, "01 00 00 00 03 00 00 00" },
		{ stereo, 1, import_both, nullptr },
		{ stereo, 1, 0, nullptr },
		{ stereo, 1, import_left | import_right, nullptr },
		{ mono, 1, import_split, "01 00 02 00 03 00 04 00" },
		{ mono, 2, import_split, "01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00" },
		{ mono, 2, import_left, "01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00" },
		{ mono, 2, import_right, "00 00 01 00 00 00 02 00 00 00 03 00 00 00 04 00" },
		{ mono, 2, import_both, "01 00 01 00 02 00 02 00 03 00 03 00 04 00 04 00" },
		{ mono, 2, import_mix, nullptr },
		{ mono, 1, import_left, nullptr }, // "Keep original" is its way in
		{ mono, 4, import_left, nullptr },
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
			EXPECT_TRUE(names_in(spool).empty());
			EXPECT_EQ(outcome(), "");
			EXPECT_NE(import_failure.find("Choose Keep original"), import_failure.npos);
		}
	}
	EXPECT_TRUE(h.boxes.empty());
}

TEST_F(wave_import, a_stereo_file_becomes_two)
{
	ASSERT_EQ(bring("Pad.old.wav", stereo, 1, import_split, 12, 11025), 1);
	EXPECT_EQ(names_in(spool), (strings{ "Pad.old-L.wav", "Pad.old-R.wav" }));
	// 1 and 3 at half the rate: 1; at 12 bits nothing of it is left. 2 * 256 >> 12 is 0 too.
	EXPECT_EQ(words("Pad.old-L.wav"), hex("00 00"));
	ASSERT_EQ(bring("Pad", stereo, 1, import_split), 1); // no point in the name
	EXPECT_EQ(words("Pad-L.wav"), hex("01 00 03 00"));
	EXPECT_EQ(words("Pad-R.wav"), hex("02 00 04 00"));
	EXPECT_EQ(percent(), "100 %");
}

TEST_F(wave_import, the_right_file_fails_and_the_left_one_stays)
{
	// "-R.wav" cannot replace a folder.
	std::filesystem::create_directories(h.root + "/VELMOR/CONFIG/sample/Pad-R.wav/x");
	EXPECT_EQ(bring("Pad.wav", stereo, 1, import_split), 0);
	EXPECT_EQ(outcome(), "Internal error converting file!");
	EXPECT_EQ(percent(), "50 %");
	EXPECT_EQ(import_failure, h.root + "/VELMOR/CONFIG/sample/Pad-R.wav cannot be written: Is "
					   "a directory.");
	EXPECT_EQ(words("Pad-L.wav"), hex("01 00 03 00"));
	EXPECT_EQ(h.temporary_files(), 0);
}

TEST_F(wave_import, what_fails_says_so_in_its_place)
{
	EXPECT_EQ(bring("A.wav", hex("52 49 46 46")), 0);
	EXPECT_EQ(outcome(), "Cannot analyze original file");
	EXPECT_EQ(percent(), "1 %");
	EXPECT_EQ(bring("A.wav", riff(fmt({ 1, 16, 0, 22050 }) + four_words)), 0);
	EXPECT_EQ(outcome(), "Resampling failed!");
	EXPECT_EQ(percent(), "100 %");
	EXPECT_EQ(bring("A.wav", mono, 0, 0, 0, 65536), 0);
	EXPECT_EQ(outcome(), "Internal error converting file!");
	EXPECT_EQ(import_failure, "Its new rate or depth cannot be told in a file of the spool. "
				  "Choose another one.");
	h.disk.space_left = 60;
	EXPECT_EQ(bring("A.wav", mono), 0);
	EXPECT_EQ(import_failure, "The disk is full: there is no room for " + h.root +
					  "/VELMOR/CONFIG/sample/A.wav.");
	h.disk = { .space_left = {}, .open_for_writing = EROFS };
	EXPECT_EQ(import_wave((from + "\\A.wav").c_str(), 0, 0, 0, 0, 0, 0), 0);
	EXPECT_NE(import_failure.find("Read-only file system."), import_failure.npos);
	EXPECT_TRUE(names_in(spool).empty());
	EXPECT_TRUE(h.boxes.empty());
	h.disk = {};
	EXPECT_EQ(bring("A.wav", mono), 1);
	EXPECT_EQ(import_failure, "");
}

TEST_F(wave_import, what_a_file_is_that_is_no_wave_file)
{
	const struct {
		bytes file;
		const char *words;
	} rows[] = {
		{ {}, "This file is empty." },
		{ hex("66 4C 61 43 00*60"), "This is a FLAC file. Save it as a WAV file first." },
		{ text("FORM") + word(4) + text("AIFFCOMM"), "This is an AIFF file. Save it" },
		{ riff(chunk("prg ", word(0)), "APRG"), "This is an AKAI program file (AKP)." },
		{ hex("00*4") + text("ftypM4A ") + hex("00*40"), "This is an MP4 or M4A file." },
		{ text("RF64") + hex("FF*60"), "This is an RF64 file" },
		{ hex("FF FB 90*60"), "This is an MP3 file." },
		{ hex("00*60"), "This is no WAV file: it does not begin with" },
		{ riff(chunk("bext", hex("00*40")) + fmt(mono_16) + four_words),
			"This WAV file begins with a chunk \"bext\", and only one that begins" },
		{ riff(fmt(mono_16)), "This WAV file ends in its header: it has 36 bytes." },
		{ riff(fmt(mono_16) + chunk("LIST", word(0)) + chunk("LIST", {})),
			"This WAV file has no sound in it: its chunk \"data\" is missing." },
		{ riff(fmt({ 1, 16, 0, 44100 }) + four_words),
			"This WAV file is damaged: its header gives" },
		{ riff(fmt({ 0, 16, 2, 44100 }) + four_words), "header tells no channels." },
		{ mono, "" },
	};
	for (const auto &row : rows) {
		h.put_content(from + "\\A.wav", row.file);
		const std::string why = why_not_wave((from + "\\A.wav").c_str());
		EXPECT_NE(why.find(row.words), why.npos) << why;
		EXPECT_EQ(why.empty(), !*row.words);
	}
	EXPECT_NE(why_not_wave(from.c_str()).find("Not a regular file."), std::string::npos);
}

TEST_F(wave_import, a_file_of_the_spool_over_itself)
{
	const std::string path = spool + "\\A.wav";
	h.put_content(path, mono);
	h.disk.space_left = 40;
	EXPECT_EQ(import_wave(path.c_str(), 0, 24, 0, 0, 0, 60), 0);
	EXPECT_EQ(h.content(path).value(), mono);
	h.disk.space_left.reset();
	EXPECT_EQ(import_wave(path.c_str(), 0, 24, 0, 0, 0, 60), 1);
	EXPECT_EQ(words("A.wav"), hex("00 01 00 00 02 00 00 03 00 00 04 00"));
	// And one out of the temporary folder, which the import empties.
	const std::string other = temp + "\\B.wav";
	h.put_content(other, mono);
	EXPECT_EQ(import_wave(other.c_str(), 0, 0, 0, 0, 0, 60), 1);
	EXPECT_EQ(h.content(other).value(), mono);
	// A name without a folder is the base name; one with the other separator stays inside.
	h.put_content(h.root + "/x.wav", mono);
	const std::string again = h.root + "/.." + h.root.substr(h.root.rfind('/'));
	EXPECT_EQ(import_wave((again + "/x.wav").c_str(), 0, 0, 0, 0, 0, 0), 1);
	EXPECT_EQ(names_in(spool).size(), 3u);
}

TEST_F(wave_import, stop_leaves_nothing_half_done)
{
	h.on_pump = [] { stop_progress(); };
	show_progressbar(window_samples, 1, "Converting Files...");
	EXPECT_EQ(bring("A.wav", mono), 0);
	EXPECT_TRUE(progress_stopped());
	EXPECT_EQ(outcome(), "Stopped!");
	EXPECT_TRUE(names_in(spool).empty());
	EXPECT_TRUE(names_in(temp).empty());
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
	EXPECT_EQ(names_in(spool), strings{ "pipe" });
	EXPECT_EQ(h.content(from + "\\mine.wav").value(), hex("AA"));
	cleanup_dir((h.config + "\\none").c_str());
	EXPECT_TRUE(h.logged("[D] Cannot open [" + h.config + "\\none]"));
}

TEST_F(wave_import, export_copies_and_counts)
{
	h.put_content(spool + "\\a.wav", hex("01 02"));
	h.put_content(spool + "\\A.wav", hex("03"));
	// What another program is writing stays, and what a dead one left in the target goes.
	h.put_content(spool + "\\~velmor1-7.tmp", hex("04"));
	h.put_content(from + "\\~velmor0-7.tmp", hex("05"));
	h.put_content(from + "\\a.wav", hex("FF FF FF"));
	ASSERT_TRUE(copy_folder(window_samples, spool.c_str(), (from + "\\").c_str()));
	EXPECT_EQ(h.content(from + "\\a.wav").value(), hex("01 02"));
	EXPECT_EQ(h.content(from + "\\A.wav").value(), hex("03"));
	EXPECT_EQ(percent(), "100 %");
	EXPECT_EQ((h.texts[{ window_samples, samples_work_count }]), "2/2");
	EXPECT_EQ(h.progress.caption, "Copying files...");
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(names_in(from).size(), 2u);
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
	EXPECT_TRUE(names_in(from).empty());
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
	EXPECT_EQ(names_in(from), strings{ "a.wav" });
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
		strings out(files, files + count);
		for (int i = 0; i < count; i++)
			std::free(files[i]);
		std::free(files);
		return out;
	};
	EXPECT_EQ(taken("C:\\x\0b.wav\0a.wav\0"), (strings{ "C:\\x\\b.wav", "C:\\x\\a.wav" }));
	EXPECT_EQ(taken("C:\\x\\b.wav\0"), strings{ "C:\\x\\b.wav" });
	EXPECT_TRUE(taken("\0").empty());
	const std::vector<char> endless(10240, 'x');
	EXPECT_EQ(taken(endless.data())[0].size(), 10240u);
}

} // namespace

} // namespace velmor
