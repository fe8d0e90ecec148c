// test_samples_workflow.cpp - samples between the sampler, the spool and files of the user

#include "src/velmor_window.h"
#include "src/waveqx.h"
#include "tests/support/fake_model.h"

using namespace velmor;

namespace
{

class samples : public host_test
{
protected:
	samples() : model(h)
	{
		forget_commands();
		model.names = { "KICK", "SNARE" };
	}
	~samples() override { forget_commands(); }

	std::string spooled(const std::string &name) { return h.config + "\\sample\\" + name; }
	void spool(const std::string &name, const std::vector<int> &words = { 1, 2, 3, 4 })
	{
		h.put_content(spooled(name), wave_bytes(44100, 1, words));
	}
	void open()
	{
		velmor_command(window_main, main_samples);
		model.calls.clear();
		h.boxes.clear();
	}
	void choose_local(int index)
	{
		host.ui->select(window_samples, samples_local_list, index);
		velmor_selection(window_samples, samples_local_list);
	}
	void press(int control) { EXPECT_TRUE(velmor_command(window_samples, control)); }
	std::string shown(int control) { return h.texts[{ window_samples, control }]; }
	// A file of the user, outside the spool.
	std::string user_file(
		const std::string &name, unsigned channels, std::size_t words, u32 rate = 44100)
	{
		const std::string path = host.files->system_path((h.root + "/" + name).c_str());
		h.put_content(path, wave_bytes(rate, channels, std::vector<int>(words, 1000)));
		return path;
	}

	fake_model model;
};

using boxes = std::vector<shown_box>;
using lines = std::vector<std::string>;

} // namespace

TEST_F(samples, the_view_reads_sampler_and_spool_anew)
{
	spool("b.wav");
	spool("A.WAV");
	velmor_command(window_main, main_samples);
	EXPECT_EQ(model.calls, (lines{ "getstatus 1 7", "getsamplelist 1 7" }));
	EXPECT_TRUE((h.visible[{ window_samples, 0 }]));
	EXPECT_EQ((h.lists[{ window_samples, samples_loaded_list }]), (lines{ "KICK", "SNARE" }));
	EXPECT_EQ((h.lists[{ window_samples, samples_local_list }]), (lines{ "A", "b" }));
}

TEST_F(samples, the_view_needs_a_sampler_that_lists_samples)
{
	model.row.getsamplelist = nullptr;
	velmor_command(window_main, main_samples);
	current_sampler->sampler_type = 4711;
	velmor_command(window_main, main_samples);
	current_sampler = nullptr;
	velmor_command(window_main, main_samples);
	EXPECT_EQ(
		h.boxes, (boxes{ { "No Sampler loaded/Function not supported by Sampler", "FATAL" },
				 { "Invalid sampler type", "INFO" },
				 { "You must load a sampler first...", "INFO" } }));
	EXPECT_FALSE((h.visible[{ window_samples, 0 }]));
}

TEST_F(samples, download_asks_before_it_overwrites)
{
	open();
	host.ui->select(window_samples, samples_loaded_list, 1);
	press(samples_download);
	EXPECT_EQ(model.calls.front(), "downloadsample SNARE");
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_EQ((h.lists[{ window_samples, samples_local_list }]), lines{ "SNARE" });

	model.calls.clear();
	h.answers = { false };
	press(samples_download);
	EXPECT_EQ(h.boxes, (boxes{ { "Overwrite existing sample?", "WARNING" },
				   { "Skipped download of sample!", "INFO" } }));
	EXPECT_TRUE(model.calls.empty());
	h.answers = { true };
	press(samples_download);
	EXPECT_EQ(model.calls.front(), "downloadsample SNARE");
}

TEST_F(samples, a_model_without_an_operation_says_so)
{
	open();
	model.row.downloadsample = nullptr;
	model.row.uploadsample = nullptr;
	press(samples_download);
	press(samples_download_all);
	press(samples_upload);
	EXPECT_EQ(
		h.boxes, (boxes{ { "DOWNLOADING OF SAMPLES NOT SUPPORTED!", "INFO" },
				 { "DOWNLOADING OF SAMPLES NOT SUPPORTED!", "INFO" },
				 { "Upload for this sampler is not supported (yet)!", "FATAL" } }));
}

TEST_F(samples, download_all_asks_once_and_keeps_what_the_user_keeps)
{
	spool("KICK.wav", { 9 });
	model.names = { "KICK", "SNARE", "HAT" };
	open();
	h.answers = { false };
	press(samples_download_all);
	EXPECT_EQ(h.boxes, (boxes{ { "Overwrite existing samples? (1 of 3)", "WARNING" },
				   { "2/2 samples downloaded!", "INFO" } }));
	EXPECT_EQ(model.calls[0], "downloadsample SNARE");
	EXPECT_EQ(model.calls[1], "downloadsample HAT");
	// 126 bytes of head up to the data chunk, its 8, and one word
	EXPECT_EQ(h.content(spooled("KICK.wav"))->size(), wave_bytes(44100, 1, { 9 }).size());
}

TEST_F(samples, stop_ends_download_all_after_the_sample_that_runs)
{
	model.names = { "KICK", "SNARE", "HAT" };
	open();
	model.on_step = [&](int) {
		if (model.calls.size() == 2)
			velmor_command(window_progress, progress_stop);
	};
	press(samples_download_all);
	EXPECT_EQ(h.boxes.back(), (shown_box{ "1/3 samples downloaded!", "INFO" }));
	EXPECT_TRUE(h.content(spooled("KICK.wav")));
	EXPECT_FALSE(h.content(spooled("SNARE.wav")));
}

TEST_F(samples, delete_and_rename_on_the_sampler_are_one_operation)
{
	open();
	host.ui->select(window_samples, samples_loaded_list, 0);
	press(samples_loaded_rename);
	h.texts[{ window_samples, samples_loaded_new_name }] = "BASS DRUM";
	press(samples_loaded_rename);
	press(samples_loaded_delete);
	EXPECT_EQ(h.boxes, (boxes{ { "Choose a new name!", "INFO" },
				   { "Local sample successfully renamed", "INFO" },
				   { "Loaded sample successfully deleted", "INFO" } }));
	EXPECT_EQ(model.calls[0], "renamesample KICK BASS DRUM");
	EXPECT_EQ(model.names, lines{ "SNARE" });
	EXPECT_EQ((h.lists[{ window_samples, samples_loaded_list }]), lines{ "SNARE" });
}

TEST_F(samples, nothing_chosen_is_said_and_nothing_is_done)
{
	model.names.clear();
	open();
	press(samples_loaded_delete);
	press(samples_download);
	press(samples_local_delete);
	press(samples_upload);
	EXPECT_EQ(h.boxes.size(), 4u);
	EXPECT_TRUE(model.calls.empty());
}

TEST_F(samples, information_of_the_sampler_and_of_a_file)
{
	spool("loop.wav", { 1, 2, 3, 4 });
	open();
	host.ui->select(window_samples, samples_loaded_list, 0);
	press(samples_loaded_info);
	EXPECT_EQ(model.calls, lines{ "infosample KICK" });
	EXPECT_EQ(shown(samples_detail_origin), "LOADED");
	EXPECT_EQ(shown(samples_detail_name), "KICK");
	EXPECT_EQ(shown(samples_detail_pitch), "60 (C3)");
	EXPECT_EQ(shown(samples_detail_rate), "44100");
	EXPECT_EQ(shown(samples_detail_seconds), "2.00");
	EXPECT_EQ(shown(samples_detail_channels), "1");
	EXPECT_EQ(shown(samples_detail_bits), "16");
	EXPECT_EQ(shown(samples_detail_playmode), "1 (LOOP)");

	choose_local(0);
	press(samples_local_info);
	EXPECT_EQ(shown(samples_detail_origin), "LOCAL");
	EXPECT_EQ(shown(samples_detail_name), "loop");
	// A file's play mode is named by the S5000's row, which stands seventh.
	EXPECT_TRUE(h.logged("[D] Sampler found: 7"));
}

TEST_F(samples, play_modes_without_a_name)
{
	_sample sample = {};
	sample.playback_mode = 9;
	display_sample_information(&sample, "LOADED");
	EXPECT_EQ(shown(samples_detail_playmode), "9 (OTHER)");
	EXPECT_EQ(shown(samples_detail_seconds), "0.00");
	model.row.getplaymode = nullptr;
	display_sample_information(&sample, "LOADED");
	EXPECT_EQ(shown(samples_detail_playmode), "9");
	current_sampler = nullptr;
	display_sample_information(&sample, "LOADED");
	EXPECT_EQ(h.boxes, (boxes{ { "Current Sampler not found!", "FATAL" } }));
}

TEST_F(samples, information_of_a_broken_file)
{
	h.put_content(spooled("broken.wav"), hex("52 49 46 46 00*60"));
	open();
	choose_local(0);
	press(samples_local_info);
	EXPECT_EQ(h.boxes, (boxes{ { "Sample corrupted...cannot read information!", "INFO" } }));
}

TEST_F(samples, upload_gives_the_path_without_extension)
{
	spool("bell.wav");
	open();
	choose_local(0);
	press(samples_upload);
	EXPECT_EQ(model.calls,
		(lines{ "uploadsample " + spooled("bell"), "getstatus 1 7", "getsamplelist 1 7" }));
	EXPECT_EQ((h.lists[{ window_samples, samples_loaded_list }]),
		(lines{ "KICK", "SNARE", "bell" }));
}

TEST_F(samples, delete_of_a_local_sample_takes_both_files)
{
	spool("bell.wav");
	h.put_content(spooled("bell.info"), hex("00"));
	open();
	choose_local(0);
	press(samples_local_delete);
	EXPECT_TRUE(h.logged("[I] Deleting [bell]  PATH: [" + h.config + "\\sample]"));
	EXPECT_EQ(h.boxes, (boxes{ { "Local sample successfully deleted", "INFO" } }));
	EXPECT_FALSE(h.content(spooled("bell.wav")));
	EXPECT_FALSE(h.content(spooled("bell.info")));
}

TEST_F(samples, rename_of_a_local_sample_asks_for_each_file_it_would_replace)
{
	spool("bell.wav", { 1 });
	spool("gong.wav", { 2, 2 });
	h.put_content(spooled("gong.info"), hex("00"));
	open();
	choose_local(0);
	press(samples_local_rename);
	h.texts[{ window_samples, samples_local_new_name }] = "gong";
	h.answers = { false };
	press(samples_local_rename);
	EXPECT_TRUE(h.logged("Not renaming [bell] --> [gong]"));
	h.answers = { true, false };
	press(samples_local_rename);
	EXPECT_TRUE(h.logged("Not renaming sample [bell] --> [gong]"));
	EXPECT_EQ(h.content(spooled("gong.wav")), wave_bytes(44100, 1, { 2, 2 }));
	h.answers = { true, true };
	press(samples_local_rename);
	const char *capital = "A Sample with that name already exists, overwrite?";
	const char *small = "A sample with that name already exists, overwrite?";
	EXPECT_EQ(h.boxes,
		(boxes{ { "Choose a new name!", "INFO" }, { small, "INFO" }, { small, "INFO" },
			{ capital, "INFO" }, { small, "INFO" }, { capital, "INFO" },
			{ "Local sample successfully renamed", "INFO" } }));
	EXPECT_EQ(h.content(spooled("gong.wav")), wave_bytes(44100, 1, { 1 }));
	EXPECT_FALSE(h.content(spooled("gong.info")));
	EXPECT_FALSE(h.content(spooled("bell.wav")));
}

TEST_F(samples, a_new_name_cannot_leave_the_spool_or_delete_its_own_file)
{
	spool("bell.wav");
	open();
	choose_local(0);
	h.texts[{ window_samples, samples_local_new_name }] = "bell";
	press(samples_local_rename);
	EXPECT_TRUE(h.content(spooled("bell.wav")));
	h.texts[{ window_samples, samples_local_new_name }] = "..\\..\\bell";
	press(samples_local_rename);
	EXPECT_FALSE(h.content(h.config + "\\..\\bell.wav"));
	EXPECT_EQ((h.lists[{ window_samples, samples_local_list }].size()), 1u);
}

TEST_F(samples, export_copies_the_spool)
{
	spool("bell.wav");
	open();
	press(samples_export); // cancelled
	EXPECT_TRUE(h.boxes.empty());
	host.files->make_folder(host.files->system_path((h.root + "/out").c_str()).c_str());
	h.chosen_folder = host.files->system_path((h.root + "/out").c_str());
	press(samples_export);
	h.chosen_folder = h.config + "\\sample";
	press(samples_export);
	EXPECT_EQ(h.boxes, (boxes{ { "Export completed", "INFO" },
				   { "Export failed\nThe export folder is the spool itself. Choose "
				     "another one.",
					   "FATAL" } }));
	EXPECT_TRUE(h.logged("[D] SHBrowse returned with: [" + h.config + "\\sample]"));
	EXPECT_EQ(h.content(h.root + "/out/bell.wav"), wave_bytes(44100, 1, { 1, 2, 3, 4 }));
}

TEST_F(samples, clear_asks_every_time)
{
	spool("bell.wav");
	open();
	h.answers = { false };
	press(samples_clear);
	EXPECT_TRUE(h.content(spooled("bell.wav")));
	press(samples_clear);
	EXPECT_FALSE(h.content(spooled("bell.wav")));
	const std::string question =
		"Are you sure, you want to clear spooldir (" + h.config + "\\sample)?";
	EXPECT_EQ(h.boxes, (boxes{ { question, "INFO" }, { question, "INFO" } }));
	EXPECT_TRUE((h.lists[{ window_samples, samples_local_list }].empty()));
}

TEST_F(samples, import_converts_every_file_with_the_options_of_the_moment)
{
	h.chosen_files = { user_file("one.wav", 1, 200), user_file("two.wav", 1, 100) };
	open();
	h.checks[{ window_samples, samples_rate_22000 }] = true;
	press(samples_import);
	EXPECT_EQ(h.boxes, (boxes{ { "2/2 files converted!", "INFO" } }));
	EXPECT_EQ(h.progress.caption, "Converting Files...");
	EXPECT_EQ(shown(samples_work_count), "2/2");
	EXPECT_TRUE(h.logged("[D] Finished Import-Dialog for 2 Sample(s)"));
	EXPECT_EQ((h.lists[{ window_samples, samples_local_list }]), (lines{ "one", "two" }));
	// 200 frames at 44100 Hz are 99 at 22000 Hz (factor 2.0045)
	_sample sample = {};
	ASSERT_TRUE(create_sample_from_file(spooled("one").c_str(), &sample));
	EXPECT_EQ(sample.sample_rate, 22000u);
	EXPECT_EQ(sample.sample_length, 99u);
	free_sample_data(&sample);
}

TEST_F(samples, import_stops_at_the_first_file_that_fails)
{
	h.put_content(h.root + "/bad.wav", hex("00*100"));
	const std::string bad = host.files->system_path((h.root + "/bad.wav").c_str());
	open();
	press(samples_import);
	const lines dropped = { user_file("one.wav", 1, 50), bad, user_file("two.wav", 1, 50) };
	EXPECT_TRUE(velmor_drop(window_samples, samples_local_list, dropped));
	EXPECT_EQ(
		h.boxes, (boxes{ { "No file(s) selected!", "ERROR" },
				 { "Conversion failed! [" + bad +
						 "] (2/3)\nThis is no WAV file: it does not begin "
						 "with \"RIFF\" and \"WAVE\". Save it as a WAV "
						 "file first.",
					 "ERROR" } }));
	EXPECT_FALSE(h.progress.visible);
	EXPECT_TRUE(h.content(spooled("one.wav")));
	EXPECT_FALSE(h.content(spooled("two.wav")));
}

TEST_F(samples, the_preview_tells_what_an_import_gives)
{
	open();
	const lines stereo = { user_file("pad.wav", 2, 2 * 44100) };
	velmor_hover(window_samples, samples_local_list, stereo);
	// Stereo frames have four bytes, of which no words are made: 176400 words of silence.
	EXPECT_EQ(shown(samples_import_preview),
		"pad.wav: 44100 Hz, 16 bit, 2 channels\n"
		"becomes 44100 Hz, 16 bit, 2 channels, 1.00 s, 176400 bytes\n"
		"Only its left channel is kept. Choose 1 Channel and Create L/R files for both.\n"
		"Upload to Akai S3000/S3000XL refused: A file of 16 bit and 2 channels would "
		"arrive "
		"as 4.00 s of silence. Import it with 1 Channel and Mix Channels, or Create L/R "
		"files for both.");
	h.checks[{ window_samples, samples_channels_1 }] = true;
	h.checks[{ window_samples, samples_rate_22000 }] = true;
	velmor_hover(window_samples, samples_local_list, stereo);
	EXPECT_EQ(shown(samples_import_preview),
		"pad.wav: 44100 Hz, 16 bit, 2 channels\n"
		"These options do not convert it. Choose Keep original for the channels.");
	h.checks[{ window_samples, samples_mix_files }] = true;
	velmor_hover(window_samples, samples_local_list, stereo);
	EXPECT_EQ(shown(samples_import_preview),
		"pad.wav: 44100 Hz, 16 bit, 2 channels\n"
		"becomes two files: 22000 Hz, 16 bit, 1 channel, 1.00 s, 44000 bytes\n"
		"Upload to Akai S3000/S3000XL: about 1 min 34 s.");
	velmor_hover(window_samples, samples_local_list, {});
	EXPECT_EQ(shown(samples_import_preview), "");
}

TEST_F(samples, the_preview_bears_any_file)
{
	open();
	const struct {
		const char *bytes, *words;
	} files[] = { { "", "This file is empty." }, { "52 49 46 46", "This is no WAV file" },
		{ "52 49 46 46 00*4 57 41 56 45", "This WAV file begins with a chunk \"....\"" },
		// a fmt chunk that ends behind the file
		{ "52 49 46 46 00*4 57 41 56 45 66 6D 74 20 FF FF FF FF", "This WAV file ends in" },
		// data before fmt
		{ "52 49 46 46 00*4 57 41 56 45 64 61 74 61 04 00 00 00 00*4",
			"This WAV file begins with a chunk \"data\"" } };
	for (const auto &file : files) {
		h.put_content(h.root + "/odd.wav", hex(file.bytes));
		const lines path = { host.files->system_path((h.root + "/odd.wav").c_str()) };
		velmor_hover(window_samples, samples_local_list, path);
		EXPECT_TRUE(shown(samples_import_preview)
				    .starts_with("odd.wav: " + std::string(file.words)));
	}
}
