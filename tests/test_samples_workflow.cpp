// test_samples_workflow.cpp - samples between the sampler, the spool and files of the user

#include "platform/backends.h"
#include "src/velmor_window.h"
#include "src/waveqx.h"
#include "src/waveqx_file.h"
#include "tests/support/fake_model.h"
#include "virtual/midi_ports.h"
#include "virtual/s1000.h"

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
	void choose_loaded(int index)
	{
		host.ui->select(window_samples, samples_loaded_list, index);
		velmor_selection(window_samples, samples_loaded_list);
	}
	void press(int control) { EXPECT_TRUE(velmor_command(window_samples, control)); }
	int chosen(int control) { return h.selections[{ window_samples, control }]; }
	list_state state() { return h.states[{ window_samples, samples_loaded_list }].first; }
	bool asked_for(const std::string &call)
	{
		return std::find(model.calls.begin(), model.calls.end(), call) != model.calls.end();
	}
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
	current_sampler->status->sample[0].sample_rate = 44100; // of what stood there before
	velmor_command(window_main, main_samples);
	EXPECT_EQ((h.rows[{ window_samples, samples_loaded_list }][0]), lines{ "KICK" });
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
	h.answers = { false, true };
	press(samples_download_all);
	EXPECT_EQ(h.boxes, (boxes{ { "Overwrite existing samples? (1 of 3)", "WARNING" },
				   { "Download the other samples? (2 of 3)", "WARNING" },
				   { "2/2 samples downloaded!", "INFO" } }));
	EXPECT_EQ(model.calls[0], "downloadsample SNARE");
	EXPECT_EQ(model.calls[1], "downloadsample HAT");
	EXPECT_EQ(h.content(spooled("KICK.wav")), wave_bytes(44100, 1, { 9 }));

	// The way out of the whole.
	model.calls.clear();
	spool("SNARE.wav", { 9 });
	host.files->remove(spooled("HAT.wav").c_str());
	h.answers = { false, false };
	press(samples_download_all);
	EXPECT_TRUE(model.calls.empty());
	EXPECT_EQ(h.content(spooled("SNARE.wav")), wave_bytes(44100, 1, { 9 }));
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
	EXPECT_EQ(h.boxes, (boxes{ { "1/3 samples downloaded!\nNot downloaded: SNARE (stopped)\n"
				     "Not asked for: HAT",
				   "INFO" } }));
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

TEST_F(samples, an_upload_that_would_be_silent_is_refused_and_its_conversion_offered)
{
	h.put_content(spooled("pad.wav"), wave_bytes(44100, 2, { 1000, 1000, 2000, 2000 }));
	open();
	choose_local(0);
	h.answers = { false };
	press(samples_upload);
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0].caption, "WARNING");
	EXPECT_TRUE(h.boxes[0].text.starts_with("A file of 16 bit and 2 channels would arrive as"));
	EXPECT_TRUE(h.boxes[0].text.ends_with("\nConvert it now, and upload what it becomes?"));
	EXPECT_FALSE(upload_sample(spooled("pad")).done());
	EXPECT_TRUE(model.calls.empty());

	press(samples_upload);
	EXPECT_EQ(model.calls.front(), "uploadsample " + spooled("pad"));
	_sample sample = {};
	ASSERT_TRUE(create_sample_from_file(spooled("pad").c_str(), &sample));
	EXPECT_EQ(sample.channels, 1u);
	free_sample_data(&sample);
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
	EXPECT_EQ(shown(status_outcome), "Deleted 'bell' from this computer.");
	EXPECT_TRUE((h.visible[{ window_main, status_undo }]));

	// A second one of that name does not replace the first among the deleted.
	spool("bell.wav", { 7 });
	press(samples_refresh);
	press(samples_local_delete);
	EXPECT_EQ(
		h.content(h.config + "\\deleted\\bell.wav"), wave_bytes(44100, 1, { 1, 2, 3, 4 }));
	press(status_undo);
	EXPECT_EQ(h.content(spooled("bell.wav")), wave_bytes(44100, 1, { 7 }));
	h.boxes.clear();
	press(status_undo); // the name is in use again
	EXPECT_EQ(h.boxes,
		(boxes{ { "There is a file called [" + h.root +
				  "/VELMOR/CONFIG/sample/bell.wav] again, so nothing was put back.",
			"INFO" } }));
	EXPECT_EQ(h.content(spooled("bell.wav")), wave_bytes(44100, 1, { 7 }));
	EXPECT_FALSE((h.visible[{ window_samples, status_undo }]));
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
	EXPECT_EQ(shown(samples_local_new_name), "gong"); // for another try
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
	EXPECT_EQ(h.content(h.config + "\\deleted\\gong.wav"), wave_bytes(44100, 1, { 2, 2 }));

	press(status_undo);
	EXPECT_EQ(h.content(spooled("gong.wav")), wave_bytes(44100, 1, { 2, 2 }));
	EXPECT_EQ(h.content(spooled("gong.info")), hex("00"));
	EXPECT_EQ(h.content(spooled("bell.wav")), wave_bytes(44100, 1, { 1 }));
}

TEST_F(samples, a_new_name_cannot_leave_the_spool_or_delete_its_own_file)
{
	spool("bell.wav");
	open();
	choose_local(0);
	h.texts[{ window_samples, samples_local_new_name }] = "bell";
	press(samples_local_rename);
	EXPECT_TRUE(h.content(spooled("bell.wav")));
	EXPECT_EQ(h.boxes, (boxes{ { "The sample is called 'bell' already.", "INFO" } }));
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
		"Are you sure, you want to clear spooldir (" + h.root + "/VELMOR/CONFIG/sample)?";
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
	EXPECT_EQ(h.boxes,
		(boxes{ { "No file(s) selected!", "ERROR" },
			{ "Conversion failed! [" + h.root +
					"/bad.wav] (2/3)\nThis is no WAV file: it does not begin "
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
	const auto lines_are = [&](const char *becomes, const char *lost, const char *upload) {
		EXPECT_EQ(shown(samples_import_preview),
			"pad.wav · 44100 Hz, 16 bit, 2 channels, 1.00 s");
		EXPECT_EQ(shown(samples_preview_becomes), becomes);
		EXPECT_EQ(shown(samples_preview_lost), lost);
		EXPECT_TRUE(shown(samples_preview_upload).starts_with(upload))
			<< shown(samples_preview_upload);
	};
	// Stereo frames have four bytes, of which no words are made: 176400 words of silence.
	lines_are("PAD · 44100 Hz, 16 bit, 2 channels, 1.00 s, 176 kB · keeps its root note C3",
		"all but the left channel (choose 1 Channel and Create L/R files for both)",
		"refused: A file of 16 bit and 2 channels would arrive as 4.00 s of silence.");
	h.checks[{ window_samples, samples_channels_1 }] = true;
	h.checks[{ window_samples, samples_rate_22000 }] = true;
	velmor_hover(window_samples, samples_local_list, stereo);
	lines_are(
		"These options do not convert it. Choose Keep original for the channels.", "", "");
	h.checks[{ window_samples, samples_mix_left }] = true;
	velmor_hover(window_samples, samples_local_list, stereo);
	lines_are("PAD · 22000 Hz, 16 bit, 1 channel, 1.00 s, 44 kB · keeps its root note C3",
		"the right channel (Left Channel is chosen) and what is above 11000 Hz (22000 Hz "
		"is chosen)",
		"about 47 s at about 1.9 kB/s");
	h.checks[{ window_samples, samples_mix_files }] = true;
	velmor_hover(window_samples, samples_local_list, stereo);
	lines_are("two files: PAD-L and PAD-R · 22000 Hz, 16 bit, 1 channel, 1.00 s, 44 kB · keeps "
		  "its root note C3",
		"what is above 11000 Hz (22000 Hz is chosen)", "about 1 min 34 s at about");
	velmor_hover(window_samples, samples_local_list, {});
	EXPECT_EQ(shown(samples_import_preview), "");
	EXPECT_EQ(shown(samples_preview_upload), "");
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

// ---- Truth ------------------------------------------------------------------------------------

TEST_F(samples, a_silent_sampler_is_not_shown_as_an_empty_one)
{
	model.silent = true;
	spool("bell.wav");
	open();
	EXPECT_EQ(state(), list_state::silent);
	EXPECT_EQ((h.states[{ window_samples, samples_loaded_list }].second),
		"No MIDI port is chosen for the way to the sampler or back. Choose MIDI-Out and "
		"MIDI-In in Basic settings. What it holds is not known, so nothing is sent to it.");
	EXPECT_EQ(shown(samples_loaded_heading), "not read · asked " + clock_text(1000000000));
	EXPECT_EQ(shown(samples_local_heading), "1 sample");
	EXPECT_TRUE((h.visible[{ window_samples, samples_retry }]));
	EXPECT_FALSE((h.enabled[{ window_samples, samples_upload }]));
	EXPECT_EQ((h.reasons[{ window_samples, samples_upload }]),
		"Not now: the sampler's list could not be read. Try again first.");
	EXPECT_TRUE((h.lists[{ window_samples, samples_loaded_list }].empty()));
	EXPECT_EQ((h.roles[{ window_main, status_line }]), text_role::careful);

	model.silent = false;
	press(samples_retry);
	EXPECT_EQ(state(), list_state::fresh);
	EXPECT_FALSE((h.visible[{ window_samples, samples_retry }]));
	EXPECT_TRUE((h.enabled[{ window_samples, samples_upload }]));
	EXPECT_EQ(shown(samples_loaded_heading), "2 samples · read " + clock_text(1000000000));
	EXPECT_EQ((h.texts[{ window_main, status_line }]),
		"test sampler · no MIDI port · channel 7 · answered " + clock_text(1000000000));
	model.names.clear();
	press(samples_refresh);
	EXPECT_EQ(state(), list_state::empty);

	// Once it was read, silence is still silence, and costs one question.
	model.silent = true;
	model.calls.clear();
	press(samples_refresh);
	EXPECT_EQ(state(), list_state::silent);
	EXPECT_EQ(model.calls, lines{ "getstatus 1 7" });
	// It is no news of another channel.
	current_sampler->sampler_sysex_channel = 3;
	press(samples_local_info);
	EXPECT_EQ(state(), list_state::unread);
	EXPECT_TRUE((h.enabled[{ window_samples, samples_upload }]));
}

TEST_F(samples, nothing_is_sent_from_a_list_that_could_not_be_read)
{
	model.silent = true;
	spool("bell.wav");
	spool("KICK.wav");
	open();
	press(samples_upload);
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0].text.substr(0, 66),
		"Nothing was sent, because the sampler's list could not be read.\nNo");
	EXPECT_EQ(model.calls, lines{ "getstatus 1 7" });
	EXPECT_EQ(upload_sample(spooled("bell")).how, ending::no_answer);
	for (const outcome &result :
		{ download_sample("KICK"), delete_sample("KICK"), rename_sample("KICK", "X") })
		EXPECT_EQ(result.how, ending::no_answer);
	EXPECT_EQ(model.calls, lines(5, "getstatus 1 7"));

	// A name that another view's reading no longer finds is not looked for on the machine.
	model.silent = false;
	EXPECT_EQ(delete_sample("GONE").how, ending::refused);
	EXPECT_FALSE(asked_for("renamesample GONE (delete)"));
}

TEST_F(samples, a_stale_list_is_read_before_anything_is_sent)
{
	spool("bell.wav");
	const struct {
		const char *what;
		void (*happens)();
		const char *first;
	} changes[] = {
		{ "nothing", [] {}, "uploadsample" },
		{ "a lost answer", [] { line_silent("No answer came."); }, "getstatus 1 7" },
		{ "the channel", [] { current_sampler->sampler_sysex_channel = 3; },
			"getstatus 1 3" },
		{ "the bridge", [] { use_tcp = 1; }, "getstatus 1 3" },
		{ "back to MIDI", [] { use_tcp = 0; }, "getstatus 1 3" },
		{ "the port",
			[] {
				midi_out_interface = { "Cable" };
				selected_midi_out_interface = 0;
			},
			"getstatus 1 3" },
		{ "another cable in its place", [] { midi_out_interface = { "Other" }; },
			"getstatus 1 3" },
		{ "another connection", [] { forget_line(); }, "getstatus 1 3" },
	};
	open();
	for (const auto &change : changes) {
		change.happens();
		model.calls.clear();
		choose_local(0);
		press(samples_upload);
		EXPECT_TRUE(model.calls.front().starts_with(change.first)) << change.what;
		EXPECT_TRUE(asked_for("uploadsample " + spooled("bell"))) << change.what;
	}
	midi_out_interface.clear();
	selected_midi_out_interface = -1;

	// One answer lost in the middle of a reading leaves a gap.
	line_silent("No answer came.");
	press(samples_refresh);
	EXPECT_EQ(state(), list_state::fresh);
	line_silent("No answer came.");
	velmor_command(window_samples, samples_local_info);
	EXPECT_EQ(state(), list_state::stale);
	EXPECT_TRUE(shown(samples_loaded_heading).ends_with(", may have changed"));
}

TEST_F(samples, success_is_told_when_the_list_agrees)
{
	spool("bell.wav");
	open();
	const struct {
		const char *what;
		bool refuses, dies;
		int control;
		const char *words; // of the one box, as it begins
	} ends[] = {
		{ "refused", true, false, samples_loaded_delete,
			"The sampler did not do it: 'KICK' is still in its list." },
		{ "refused", true, false, samples_loaded_rename,
			"The sampler did not do it: 'KICK' is still in its list." },
		{ "not kept", true, false, samples_upload,
			"The sampler does not list 'bell', so it did not keep it." },
		{ "off", false, true, samples_loaded_delete,
			"It is not known whether 'KICK' was deleted: the list could not be read "
			"again.\n" },
		{ "off", false, true, samples_loaded_rename,
			"It is not known whether 'KICK' was renamed: the list could not be read "
			"again.\n" },
		{ "off", false, true, samples_upload, "Upload failed (received bad header ACK)" },
		{ "done", false, false, samples_upload, "Sample successfully uploaded!" },
		{ "done", false, false, samples_loaded_rename,
			"Local sample successfully renamed" },
	};
	for (const auto &end : ends) {
		model.silent = model.refuses = false;
		press(samples_refresh);
		choose_loaded(0);
		h.boxes.clear();
		h.texts[{ window_samples, samples_loaded_new_name }] = "KICK 2";
		model.refuses = end.refuses;
		model.silent = end.dies;
		stop_progress(); // an old one means nothing
		press(end.control);
		ASSERT_EQ(h.boxes.size(), 1u) << end.what << end.words;
		EXPECT_TRUE(h.boxes[0].text.starts_with(end.words)) << h.boxes[0].text;
	}
	EXPECT_EQ(model.names, (lines{ "KICK 2", "SNARE", "bell" }));
	// A machine may write a name in its own letters.
	EXPECT_TRUE(rename_sample("KICK 2", "kick 2").done());
	// A list with a gap can still be looked at; what is sent next waits for a better one.
	static list_operation whole;
	whole = model.row.getsamplelist;
	model.row.getsamplelist = [](u8 control, u8 exclusive, _dev_status *dev) {
		line_silent("No answer came.");
		whole(control, exclusive, dev);
	};
	model.refuses = false;
	EXPECT_TRUE(delete_sample("SNARE").done());
	EXPECT_EQ(the_lists.samples.state(), freshness::stale);
	EXPECT_EQ(delete_sample("bell").how, ending::no_answer);
	EXPECT_EQ(model.names, (lines{ "kick 2", "bell" }));
}

TEST_F(samples, a_second_press_hits_the_neighbour_and_nothing_else)
{
	model.names = { "A", "B", "C" };
	spool("x.wav");
	spool("y.wav");
	spool("z.wav");
	open();
	const std::pair<int, int> loaded = { window_samples, samples_loaded_list };
	const std::pair<int, int> local = { window_samples, samples_local_list };
	choose_loaded(1);
	h.texts[{ window_samples, samples_loaded_new_name }] = "NEW";
	press(samples_loaded_rename);
	EXPECT_EQ(chosen(samples_loaded_list), 1);
	EXPECT_EQ(shown(samples_loaded_new_name), "");
	EXPECT_EQ(h.focus, loaded);
	choose_loaded(2);
	h.focus = {};
	press(samples_loaded_delete);
	EXPECT_EQ(chosen(samples_loaded_list), 1);
	EXPECT_EQ(h.focus, loaded);
	choose_loaded(0);
	choose_local(1);
	press(samples_upload);
	EXPECT_EQ((h.lists[loaded]), (lines{ "A", "NEW", "y" }));
	EXPECT_EQ(chosen(samples_loaded_list), 2);
	EXPECT_EQ(chosen(samples_local_list), 1);
	EXPECT_EQ(h.focus, local);
	press(samples_local_delete);
	EXPECT_EQ((h.lists[local]), (lines{ "x", "z" }));
	EXPECT_EQ(chosen(samples_local_list), 1);
	h.texts[{ window_samples, samples_local_new_name }] = "a";
	press(samples_local_rename);
	EXPECT_EQ((h.lists[local]), (lines{ "a", "x" }));
	EXPECT_EQ(chosen(samples_local_list), 0);
	EXPECT_EQ(shown(samples_local_new_name), "");

	// Nothing of another sample stays in the fields.
	press(samples_loaded_info);
	EXPECT_EQ(shown(samples_detail_name), "y");
	choose_loaded(0);
	EXPECT_EQ(shown(samples_detail_name), "");
}

TEST_F(samples, a_dead_line_ends_a_queue_with_one_verdict)
{
	model.names = { "A", "B", "C", "D" };
	spool("C.wav", { 9 });
	open();
	model.on_step = [&](int step) {
		model.silent = step == 3 && model.calls.back() == "downloadsample A";
	};
	press(samples_download_all);
	EXPECT_TRUE(asked_for("downloadsample B"));
	EXPECT_FALSE(asked_for("downloadsample C"));
	const std::string silence = "No MIDI port is chosen for the way to the sampler or back. "
				    "Choose MIDI-Out and MIDI-In in Basic settings.";
	EXPECT_EQ(h.boxes,
		(boxes{ { "Overwrite existing samples? (1 of 4)", "WARNING" },
			{ "1/4 samples downloaded!\n" + silence +
					"\nNot downloaded: B (no answer)\nNot asked for: C, D",
				"WARNING" } }));
	EXPECT_EQ(h.content(spooled("C.wav")), wave_bytes(44100, 1, { 9 }));

	// The same trouble twice in a row is one trouble; what was there before does not count.
	model.silent = false;
	model.on_step = nullptr;
	model.download_fails = true;
	press(samples_refresh);
	h.boxes.clear();
	press(samples_download_all);
	EXPECT_EQ(h.boxes.back(),
		(shown_box{
			"0/4 samples downloaded!\nNot downloaded: A (Failed to save sample!), B "
			"(Failed to save sample!)\nNot asked for: C, D",
			"WARNING" }));
}

TEST_F(samples, closing_is_not_forgotten_before_a_bar_appears)
{
	open();
	model.row.getstatus = [](u8, u8, _dev_status *) {
		EXPECT_TRUE(velmor_command(window_main, menu_exit));
		show_progressbar(0, 10, "Downloading");
		EXPECT_TRUE(progress_stopped());
		hide_progressbar(0);
	};
	EXPECT_THROW(press(samples_refresh), process_ended);
	EXPECT_TRUE(model.calls.empty()); // the second list operation was not begun
	EXPECT_TRUE(h.logged("[D] Closing Application!"));
	EXPECT_FALSE(progress_stopped());
}

TEST_F(samples, another_sampler_empties_the_open_page)
{
	open();
	h.put_content(h.config + "\\other.sampler", std::vector<u8>(536));
	load_sampler_list();
	h.selections[{ window_main, main_sampler_list }] = 0;
	velmor_command(window_main, main_load);
	EXPECT_TRUE((h.lists[{ window_samples, samples_loaded_list }].empty()));
	EXPECT_EQ(state(), list_state::unread);
	EXPECT_EQ(shown(samples_loaded_heading), "not read yet");
	EXPECT_EQ(shown(status_outcome), "Loaded 'other'.");
	press(samples_loaded_info);
	EXPECT_EQ(h.boxes.back().text, "Choose a sample on the sampler first!");
}

TEST_F(samples, where_cases_are_told_apart_another_sample_may_have_the_name)
{
	spool("bell.wav");
	spool("BELL.wav", { 5 });
	h.answers = { false };
	EXPECT_EQ(rename_local("bell", "BELL").how, ending::stopped);
	EXPECT_EQ(h.content(spooled("BELL.wav")), wave_bytes(44100, 1, { 5 }));
	EXPECT_EQ(rename_local("gone", "new").words,
		"[" + h.root +
			"/VELMOR/CONFIG/sample/gone.wav] is not there any more. Refresh reads "
			"the spool again.");
}

// ---- With a machine ----------------------------------------------------------------------------

TEST_F(host_test, a_wrong_channel_corrected_late_overwrites_nothing)
{
	forget_commands();
	s1000_machine machine(s1000_model::s3000, 5);
	machine.add_sample("KICK", 44100, std::vector<std::int16_t>(50, 1000));
	const std::vector<std::int16_t> words = machine.samples[0].words;
	host.midi = &virtual_midi;
	plug_midi(h.time, machine, "USB MIDI 1");
	reload_midi_setup(false);
	selected_midi_in_interface = selected_midi_out_interface = 0;
	h.use_sampler(model_s3000, 6);
	h.put_content(h.config + "\\sample\\bell.wav", wave_bytes(44100, 1, { 1, 2, 3 }));
	velmor_command(window_main, main_samples);
	EXPECT_EQ((h.states[{ window_samples, samples_loaded_list }].second),
		"No answer on exclusive channel 6 through 'USB MIDI 1'. Is the sampler on? Its "
		"channel stands on its own MIDI page. What it holds is not known, so nothing is "
		"sent "
		"to it.");
	velmor_command(window_samples, samples_upload);
	EXPECT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(machine.samples.size(), 1u);

	current_sampler->sampler_sysex_channel = 5;
	h.boxes.clear();
	velmor_command(window_samples, samples_upload);
	EXPECT_EQ(h.boxes, (boxes{ { "Sample successfully uploaded!", "INFO" } }));
	EXPECT_TRUE(h.logged("[D] New Sample-Number: 1"));
	ASSERT_EQ(machine.samples.size(), 2u);
	EXPECT_EQ(machine.samples[0].words, words);
	EXPECT_EQ((h.lists[{ window_samples, samples_loaded_list }]), (lines{ "KICK", "BELL" }));
	EXPECT_TRUE(
		(h.texts[{ window_samples, status_line }])
			.starts_with("test sampler · MIDI 'USB MIDI 1' · channel 5 · answered "));
	close_midi_output();
	unplug_all_midi();
	reload_midi_setup(false);
	selected_midi_in_interface = selected_midi_out_interface = -1;
	forget_commands();
}
