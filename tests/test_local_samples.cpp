// test_local_samples.cpp - samples on this computer: their picture, their names, what an upload sends

#include "platform/backends.h"
#include "src/controls.h"
#include "src/velmor_window.h"
#include "src/waveqx.h"
#include "tests/support/fake_model.h"
#include "tests/support/wave_files.h"
#include <filesystem>

namespace velmor
{

namespace
{

namespace fs = std::filesystem;
using strings = std::vector<std::string>;

struct local_samples_page : host_test {
	fake_model model{ h };
	std::string spool = h.config + "\\sample";

	local_samples_page() { forget_commands(); }
	~local_samples_page() override { forget_commands(); }
	void open(const strings &names, const bytes &file)
	{
		for (const std::string &name : names)
			h.put_content(spool + "\\" + name, file);
		velmor_command(window_main, main_samples);
		h.boxes.clear();
		host.ui->select(window_samples, samples_local_list, 0);
		velmor_selection(window_samples, samples_local_list);
	}
	// File, Becomes, Lost and Upload.
	strings preview()
	{
		strings lines;
		for (int control = samples_import_preview; control <= samples_preview_upload;
			control++)
			lines.push_back(h.texts[{ window_samples, control }]);
		return lines;
	}
};

// ---- What an upload sends ------------------------------------------------------------------

bytes spool_file_of(const format &f, u32 tag, std::size_t data)
{
	return riff(fmt(f, word(0, 2), tag) + chunk("fact", word(data / f.frame)) +
		    chunk("smpl", bytes(36)) + chunk("data", bytes(data)));
}

struct upload_row {
	format from;
	u32 tag;
	bool sends, helps;
	int bits, channels; // of the conversion that helps
	const char *words;
};

// Frames of two bytes are sent as words, those of three as the low half of what they hold, and
// of all others nothing is read; the sampler is told of as many words as there are bytes.
const upload_row uploads[] = {
	{ mono_16, 1, true, true, 0, 0, "arrives as 2.00 s, the second half silent" },
	{ mono_16, 0xFFFE, true, true, 0, 0, "arrives as 2.00 s, the second half silent" },
	{ stereo_16, 1, false, true, 0, 1,
		"A file of 16 bit and 2 channels would arrive as 4.00 s of silence. Import it with "
		"1 Channel and Mix Channels, or Create L/R files for both." },
	{ mono_24, 1, false, true, 16, 0,
		"A file of 24 bit and 1 channel would arrive as noise. Import it with Convert to "
		"16 "
		"bit." },
	{ mono_12, 1, false, true, 16, 0, "A file of 12 bit and 1 channel would arrive as noise." },
	{ { 2, 24, 6, 44100 }, 1, false, true, 16, 1,
		"6.00 s of silence. Import it with Convert to" },
	{ { 1, 32, 4, 44100 }, 3, false, true, 16, 0,
		"A file of 32 bit float and 1 channel would arrive as 4.00 s of silence. Import it "
		"with Convert to 16 bit." },
	{ mono_16, 3, false, false, 0, 0, "16 bit float and 1 channel would arrive as noise." },
	{ { 1, 8, 1, 44100 }, 1, false, true, 16, 0, "1.00 s of silence. Import it with" },
	{ { 2, 4, 256, 44100 }, 2, false, false, 16, 1, "4 bit compressed and 2 channels" },
	{ { 4, 16, 8, 44100 }, 1, false, false, 0, 1, "8.00 s of silence. Convert it to" },
};

TEST_F(local_samples_page, an_upload_that_would_arrive_as_silence_is_told)
{
	const std::string path = spool + "\\A.wav";
	for (const upload_row &row : uploads) {
		SCOPED_TRACE(row.words);
		h.put_content(path, spool_file_of(row.from, row.tag, 44100 * row.from.frame));
		const upload_verdict v = upload_check(*get_sampler(model_s2000), path);
		EXPECT_EQ(v.sends, row.sends);
		EXPECT_EQ(v.helps, row.helps);
		EXPECT_EQ(v.conversion.bits, row.bits);
		EXPECT_EQ(v.conversion.channels, row.channels);
		EXPECT_NE(v.words.find(row.words), v.words.npos) << v.words;
		// What helps, helps; the USB models take any file as it is.
		const import_options c = v.conversion;
		if (v.helps && !v.sends) {
			ASSERT_EQ(import_sound(path.c_str(), 0, static_cast<u32>(c.bits), c.rate,
					  static_cast<u32>(c.channels), static_cast<u32>(c.mixing),
					  60),
				1);
			EXPECT_TRUE(upload_check(*get_sampler(model_s2000), path).sends);
		}
		for (const i32 other : { model_s5000, model_z4, model_s900 })
			EXPECT_TRUE(upload_check(*get_sampler(other), path).sends);
	}
	EXPECT_TRUE(
		upload_check(*get_sampler(model_s2000), path + "x").sends); // the driver's words
}

TEST_F(local_samples_page, the_preview_of_a_sample_says_what_its_upload_sends)
{
	open({ "A.wav" }, spool_file_of(mono_16, 1, 88200));
	const std::string file = "A.wav · 44100 Hz, 16 bit, 1 channel, 1.00 s";
	const std::string rate = " at about 1.9 kB/s, not measured yet on this connection";
	// 88200 bytes: 2205 packets of 133 bytes, at 3125 bytes a second, or half of them.
	EXPECT_EQ(preview(),
		(strings{ file, "A on the sampler", "",
			"about 1 min 34 s" + rate +
				"\narrives as 2.00 s, the second half silent · with exact length "
				"about 47 s" }));
	h.checks[{ window_samples, samples_exact }] = true;
	velmor_selection(window_samples, samples_exact);
	EXPECT_EQ(h.settings["exact_uploads"], "1");
	EXPECT_EQ(preview().back(), "about 47 s" + rate +
					    "\narrives as long as it is · without exact length "
					    "about 1 min 34 s");
	h.checks[{ window_samples, samples_bits_24 }] = true;
	show_import_preview({});
	EXPECT_EQ(preview(),
		(strings{ file,
			"A · 44100 Hz, 24 bit, 1 channel, 1.00 s, 132 kB · keeps its root note C-2",
			"",
			"refused: A file of 24 bit and 1 channel would arrive as noise.\nImport it "
			"with Convert to 16 bit." }));
	EXPECT_EQ((h.roles[{ window_samples, samples_preview_upload }]), text_role::failed);
	EXPECT_EQ((h.reasons[{ window_samples, samples_exact }]), "");
	h.use_sampler(model_s5000, 0);
	show_import_preview({});
	EXPECT_TRUE(preview().back().starts_with("less than a second at about 1.0 MB/s"));
	EXPECT_EQ((h.reasons[{ window_samples, samples_exact }]),
		"Akai S5000/6000 takes samples at their own length.");
	EXPECT_FALSE((h.checks[{ window_samples, samples_exact }]));
}

TEST_F(local_samples_page, a_loop_beyond_the_data_stays_inside_the_picture)
{
	static waveform_view shown;
	static ui_service ui;
	ui = *host.ui;
	ui.set_waveform = [](int, int, const waveform_view *view) {
		shown = view ? *view : waveform_view{};
		shown.words = {};
	};
	host.ui = &ui;
	open({ "A.wav" }, wave_bytes(44100, 1, { 1, 2, 3, 4 }, 7, 4000000000));
	EXPECT_EQ(shown.sample_rate, 44100u);
	EXPECT_EQ(shown.loop_start, 4u);
	EXPECT_EQ(shown.loop_end, 4u);
}

// ---- A disk that does not tell cases apart ---------------------------------------------------

// The name in the folder that differs by case at most, as such a disk finds it.
std::string folded(const char *path)
{
	const fs::path name = posix_files.host_path(path);
	std::error_code none;
	for (const auto &entry : fs::directory_iterator(name.parent_path(), none)) {
		const std::string there = entry.path().filename(), wanted = name.filename();
		if (strcasecmp(there.c_str(), wanted.c_str()) == 0)
			return entry.path();
	}
	return name;
}

struct folding_disk {
	files_service service = *host.files;

	folding_disk()
	{
		service.stat = [](const char *path, file_info *info) {
			return posix_files.stat(folded(path).c_str(), info);
		};
		service.remove = [](const char *path) {
			return posix_files.remove(folded(path).c_str());
		};
		service.rename = [](const char *from, const char *to) {
			const std::string source = folded(from);
			if (folded(to) != source)
				posix_files.remove(folded(to).c_str());
			return posix_files.rename(source.c_str(), to);
		};
		host.files = &service;
	}
};

TEST_F(local_samples_page, a_name_changed_by_case_alone_is_kept_by_a_disk_that_folds_case)
{
	const folding_disk disk;
	open({ "kick.WAV", "kick.info" }, wave_bytes(44100, 1, { 1, 2 }));
	auto rename_to = [&](const char *name) {
		host.ui->select(window_samples, samples_local_list, 0);
		host.ui->set_text(window_samples, samples_local_new_name, name);
		velmor_command(window_samples, samples_local_rename);
	};
	rename_to("Kick");
	EXPECT_EQ(names_in(spool), (strings{ "Kick.info", "Kick.wav" }));
	EXPECT_EQ(h.content(spool + "\\Kick.wav"), wave_bytes(44100, 1, { 1, 2 }));
	EXPECT_EQ(h.boxes,
		(std::vector<shown_box>{ { "Local sample successfully renamed", "INFO" } }));
	// Another sample of that name is still asked about.
	h.put_content(spool + "\\SNARE.wav", hex("AA"));
	h.boxes.clear();
	rename_to("snare");
	EXPECT_EQ(h.boxes.front().text, "A sample with that name already exists, overwrite?");
	EXPECT_EQ(names_in(spool), (strings{ "snare.info", "snare.wav" }));
	EXPECT_EQ(h.content(spool + "\\snare.wav"), wave_bytes(44100, 1, { 1, 2 }));
}

} // namespace

} // namespace velmor
