// test_s5000_samples.cpp - sample transfer with an S5000, byte for byte

#include "src/akais5000.h"
#include "tests/support/usb_fixture.h"

using namespace velmor;

namespace
{

// The sampler tells channel 0. Checksums are the sum of the command's bytes in seven bits.
const char *const open_s5000 = R"(
	# open
	> 03 14
	> 04 03
	> 10 0B 00 F0 47 5E 20 00 00 00 01 00 01 F7
	< F0 47 5E 20 00 00 44 00 01 F7
)";
const char *const done = "\n < F0 47 5E 20 00 00 44 0E 05 F7";
// K 4B I 49 C 43 K 4B: 290; with 0E and 05 309, 35 in seven bits.
const char *const select_kick = "# select \n > 10 0F 00 F0 47 5E 20 00 00 0E 05 'KICK' 00 35 F7";

// A header as a sampler sends it: format of 18 bytes, fact, sample chunk, data.
std::string wave_header(const char *data_length)
{
	return std::string("'RIFF' 00*4 'WAVE' 'fmt' 20 12 00 00 00 01 00 01 00 44 AC 00 00 88 58 "
			   "01 00 02 00 10 00 00 00 'fact' 04 00 00 00 00 01 00 00 'smpl' 4E 00 00 "
			   "00 00*12 3C 00*31 10 00 00 00 FF 00 00 00 00*10 3C 02 03 00 01 00*3 "
			   "05 00 00 00 F0 00 00 00 'data' ") +
	       data_length;
}

class s5000_samples : public usb_test
{
protected:
	s5000_samples() : wire(h, 0x5E), dev(load(model_s5000)) {}
	void TearDown() override
	{
		EXPECT_EQ(wire.steps_left(), 0);
		usb_test::TearDown();
	}
	void play(const std::string &steps) { wire.play(steps.c_str()); }
	void ask(const std::string &frame, const std::string &data)
	{
		play("> " + frame + "\n < F0 47 5E 20 00 00 44 00 00 " + data + " F7");
	}
	transcript_usb wire;
	_dev_status *dev;
};

TEST_F(s5000_samples, information)
{
	dev->samples = 1;
	copy_text(dev->sample[0].name, "KICK");
	play(open_s5000);
	play(std::string(select_kick) + done);
	ask("10 0A 00 F0 47 5E 20 00 00 0E 31 3F F7", "02");
	ask("10 0A 00 F0 47 5E 20 00 00 0E 48 56 F7", "03");
	ask("10 0A 00 F0 47 5E 20 00 00 0E 40 4E F7", "00 00 01 02");
	ask("10 0A 00 F0 47 5E 20 00 00 0E 41 4F F7", "00 05 31 08");
	ask("10 0A 00 F0 47 5E 20 00 00 0E 33 41 F7", "00 02 58 44"); // 44100
	ask("10 0A 00 F0 47 5E 20 00 00 0E 32 40 F7", "00 05 31 08"); // 88200
	ask("10 0A 00 F0 47 5E 20 00 00 0E 42 50 F7", "3C");
	akai_s5000_sampleinfo(1, 1, "KICK");
	const _sample &s = dev->sample[0];
	EXPECT_EQ(s.bitspersample, 16u);
	EXPECT_EQ(s.channels, 2u);
	EXPECT_EQ(s.playback_mode, 3);
	EXPECT_EQ(s.start_position, 130u);
	EXPECT_EQ(s.end_position, 88200u);
	EXPECT_EQ(s.sample_rate, 44100u);
	EXPECT_EQ(s.sample_length, 2u) << "seconds, not words";
	EXPECT_EQ(s.original_pitch, 60);
	expect_logged({ "Retrieving information for sample 'KICK' (Internal INDEX: 0)",
		"[D] S5000 Current Sample rate: 44100" });
	EXPECT_TRUE(h.boxes.empty());
}

TEST_F(s5000_samples, information_that_fails)
{
	const auto information = [] { akai_s5000_sampleinfo(1, 1, "KICK"); };
	information();
	EXPECT_EQ(h.boxes, (std::vector<shown_box>{ { "Invalid sample!", "FATAL" } }));
	dev->samples = 1;
	copy_text(dev->sample[0].name, "KICK");
	const failure rows[] = {
		{ "< F0 47 5E 20 00 00 45 0E 05 F7", ") SYSEX", 0.1,
			"[F] SET CURRENT SAMPLE FAILED (akaiusb_info.cpp:" },
		{ "< F0 47 5E 20 00 00 44 0E 05 F7 \n"
		  "> 10 0A 00 F0 47 5E 20 00 00 0E 31 3F F7 \n ! silence",
			") SYSEX", 5.1 },
	};
	each_fails(0x5E, std::string(open_s5000) + select_kick,
		"[F] GET CURRENT SAMPLE RATE (akaiusb_info.cpp:", rows, information);
	transcript_usb good(h, 0x5E);
	// A rate of 0 has no length in seconds.
	std::string steps = std::string(open_s5000) + select_kick + done;
	for (const char *frame : { "0E 31 3F", "0E 48 56", "0E 40 4E", "0E 41 4F", "0E 33 41",
		     "0E 32 40", "0E 42 50" })
		steps += std::string("\n > 10 0A 00 F0 47 5E 20 00 00 ") + frame +
			 " F7 \n < 00*13 F7";
	good.play(steps.c_str());
	information();
	EXPECT_EQ(dev->sample[0].sample_length, 0u);
	good.open_result = usb_busy;
	information();
	expect_failed("[F] Cannot open USB-Device for [Studio]", "");
	usbdev.clear();
	information();
	expect_failed("[F] Cannot find USB-Device for [Studio]", "");
}

TEST_F(s5000_samples, names_of_play_modes)
{
	EXPECT_STREQ(akai_s5000_getplaymode(0), "NO LOOPING");
	EXPECT_STREQ(akai_s5000_getplaymode(5), "PLAY->RETRIG");
	EXPECT_STREQ(akai_s5000_getplaymode(6), "OTHER(6)");
	EXPECT_STREQ(akai_s5000_getplaymode(-1), "OTHER(-1)");
}

// The status of the selection is not looked at, and names go out in seven bits.
TEST_F(s5000_samples, renaming_and_deleting)
{
	play(open_s5000);
	play(std::string(select_kick) + "\n < F0 47 5E 20 00 00 45 0E 05 F7");
	ask("10 0C 00 F0 47 5E 20 00 00 0E 09 'I' 00 60 F7", "");
	akai_s5000_renamesample(1, 2, "KICK", "\xC9");
	expect_logged({ "[D] Requesting Akai S5000 SAMPLE_RENAME on Exclusive Channel: 1 "
			"[SYSEX-CHANNEL: 2] [KICK] --> [\xC9]",
		"[D] S5000 RENAMED current sample!" });
	play(open_s5000);
	play(std::string(select_kick) + done);
	ask("10 0A 00 F0 47 5E 20 00 00 0E 08 16 F7", "");
	akai_s5000_renamesample(1, 2, "KICK", nullptr);
	expect_logged({ "[D] Requesting Akai S5000 SAMPLE_DELETE on Exclusive Channel: 1 "
			"[SYSEX-CHANNEL: 2] [KICK] --> [NULL]",
		"[D] S5000 DELETED current sample!" });
	EXPECT_TRUE(h.boxes.empty());
}

// ---- Upload ----------------------------------------------------------------------------

// The end of every upload: count 130, select 129 = 01 01, rename.
const char *const name_last = R"(
	# name the last sample
	> 10 0A 00 F0 47 5E 20 00 00 0E 10 1E F7
	< F0 47 5E 20 00 00 52 0E 10 01 02 F7
	> 10 0C 00 F0 47 5E 20 00 00 0E 06 01 01 16 F7
	< F0 47 5E 20 00 00 44 0E 06 F7
	> 10 0F 00 F0 47 5E 20 00 00 0E 09 'KICK' 00 39 F7
	< F0 47 5E 20 00 00 44 0E 09 F7
)";

// 144 bytes of the file and 56 zeros; then 106 bytes of the file, and behind them what the
// first block left in the buffer: 38 bytes of 01 and 56 of 00.
TEST_F(s5000_samples, upload)
{
	std::vector<u8> content(144, 1);
	content.insert(content.end(), 106, 2);
	h.put_content(spool("KICK.wav"), content);
	play(open_s5000);
	play(std::string(select_kick) + done);
	ask("10 0A 00 F0 47 5E 20 00 00 0E 08 16 F7", ""); // one of that name is there
	// 250 bytes, blocks of 200.
	play("> 20 00 00 00 FA 'KICK' \n < 00*4 00 00 00 C8");
	play("> 01*144 00*56 \n > 00 \n < 'AkaI' \n < 'AkaI' 00 \n < 01*4 00 00 00 C8");
	play("> 02*106 01*38 00*56 \n > 00 \n < 01*4 00 00 00 00");
	play(name_last);
	akai_s5000_uploadsample(spool("KICK").c_str());
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_EQ(wire.most_in_flight, 3) << "block, acknowledge and answer together";
	EXPECT_EQ(h.progress.caption, "Uploading [KICK]...");
	EXPECT_EQ(h.progress.value, 125); // 250 * 100 / 200, over 100 %
	EXPECT_EQ(h.progress.infos.back(), "100.00 %");
	expect_logged({ "Deleting currently selected Sample, because already resident in "
			"memory",
		"[D] STEPSIZE: 125", "[D] Transferring: 106/200 Bytes of data!",
		"[D] Sampler is still busy...", "[D] Upload Block-Size: 0 [250/250]",
		"[D] Loaded Samples: 130", "[D] Upload completed (Sample renamed)[KICK]!" });
}

TEST_F(s5000_samples, upload_of_an_empty_file_still_names_the_last_sample)
{
	h.put_content(spool("KICK.wav"), {});
	play(open_s5000);
	play(std::string(select_kick) + "\n < F0 47 5E 20 00 00 45 0E 05 F7");
	play("> 20 00 00 00 00 'KICK' \n < 00*8");
	play(name_last);
	akai_s5000_uploadsample(spool("KICK").c_str());
	EXPECT_TRUE(h.logged("[D] STEPSIZE: 0"));
	EXPECT_TRUE(h.boxes.empty());
}

TEST_F(s5000_samples, a_forward_slash_stays_in_the_name)
{
	const upload_file with_slash("C:\\spool/KICK"), with_backslash("C:\\spool\\KICK"),
		bare("KICK");
	EXPECT_EQ(with_slash.basename, "/KICK");
	EXPECT_EQ(with_backslash.basename, "KICK");
	EXPECT_EQ(bare.basename, "KICK");
}

TEST_F(s5000_samples, uploads_that_fail)
{
	const std::string put = "< 00*6 45 F7 \n > 20 00 00 00 C8 'KICK' \n ";
	const std::string first = put + "< 00*4 00 00 00 90 \n ";
	const std::string both = put + "< 00*4 00 00 00 C8 \n > 07*144 00*56 \n > 00 \n "
				       "< 00*4 00 00 00 C8 \n > 07*144 00*56 \n > 00 \n < 00*8 \n "
				       "> 10 0A 00 F0 47 5E 20 00 00 0E 10 1E F7 \n ";
	const failure rows[] = {
		{ "! silence", ") SYSEX", 5.1 },
		{ "< 00*6 45 F7 \n ! stall", ") PUT_SAMPLE" },
		{ put + "! silence", ") GET_SAMPLE", 10.1 },
		{ put + "< 00*8", ") PUT_SAMPLE [Block-Size: 0]" },
		{ put + "< 00*4 00 10 00 01", ") PUT_SAMPLE [Block-Size: 1048577]" },
		{ first + "! stall \n > 00", ") PUT_SAMPLE" },
		{ first + "> 07*144 \n ! unplug", ") PUT_SAMPLE" },
		{ first + "! cut 64 \n > 07*144 \n > 00", ") PUT_SAMPLE" },
		{ first + "> 07*144 \n > 00 \n ! silence", ") GET_SAMPLE", 10.1 },
		{ first + "> 07*144 \n > 00 \n < 00*8", ") PUT_SAMPLE [Block-Size: 0]" },
		{ both + "< 00*9 00 00 F7", ") SYSEX" },
		// The last step says DOWNLOAD.
		{ both + "< 00*9 00 01 F7 \n > 10 0C 00 F0 47 5E 20 00 00 0E 06 00 00 14 F7 \n "
			 "< 00*9 F7 \n > 10 0F 00 F0 47 5E 20 00 00 0E 09 'KICK' 00 39 F7 \n "
			 "! silence",
			") SYSEX", 5.1, "[F] DOWNLOAD FAILED (" },
	};
	h.put_content(spool("KICK.wav"), std::vector<u8>(200, 7));
	each_fails(0x5E, std::string(open_s5000) + select_kick, "[F] UPLOAD FAILED (akai", rows,
		[this] { akai_s5000_uploadsample(spool("KICK").c_str()); });
	akai_s5000_uploadsample(spool("nowhere").c_str());
	expect_failed("[F] Error stating [", "(No such file or directory)");
}

// Pressed inside the first block, it is heard behind the answer: the sampler is woken twice,
// with the pipe read empty before and behind, and a box says what is left.
TEST_F(s5000_samples, stop_ends_an_upload_between_blocks)
{
	for (const char *selection :
		{ "45 F7", "44 F7 \n > 10 0A 00 F0 47 5E 20 00 00 0E 08 16 F7 \n < 00*9 F7" }) {
		h.put_content(spool("KICK.wav"), std::vector<u8>(200, 7));
		play(open_s5000);
		play(std::string(select_kick) + "\n < 00*6 " + selection);
		play("> 20 00 00 00 C8 'KICK' \n < 00*4 00 00 00 90 \n > 07*144 \n > 00 \n "
		     "! wait 3000 \n < 00*4 00 00 00 90");
		play("> 03 14 \n > 04 03 \n > 03 14 \n > 04 03");
		stop_after(1);
		EXPECT_NEAR(
			took([this] { akai_s5000_uploadsample(spool("KICK").c_str()); }), 3.2, 0.1);
		h.on_pump = nullptr;
		EXPECT_TRUE(h.logged("[I] Upload stopped"));
	}
	const std::string told = "Upload stopped. The sampler was told to drop the transfer. ";
	EXPECT_EQ(h.boxes, (std::vector<shown_box>{ { told + "The sample is not on it.", "INFO" },
				   { told + "The sample of that name that it held before is gone, "
					    "and the new one is not on it.",
					   "INFO" } }));
}

// ---- Download --------------------------------------------------------------------------

// Handle 258 is 02 02 in seven bits and 01 02 in eight.
const std::string selected = std::string(select_kick) + done + R"(
	> 10 0A 00 F0 47 5E 20 00 00 0E 13 21 F7
	< F0 47 5E 20 00 00 52 0E 13 02 02 F7
	> 21 01 02
	< 00 00 00 90
)";

TEST_F(s5000_samples, download)
{
	play(open_s5000);
	play(selected);
	play("# header \n < " + wave_header("2C 01 00 00")); // 300 bytes
	play("> 00 \n < 00 00 00 C8 \n < 11*200 \n > 00 \n < 00 00 00 64 \n < 22*100 \n"
	     "> 00 \n < 00 00 00 00");
	akai_s5000_downloadsample(1, 1, "KICK");
	EXPECT_TRUE(h.boxes.empty());
	const auto content = h.content(spool("KICK.wav"));
	ASSERT_TRUE(content);
	ASSERT_EQ(content->size(), 444u);
	EXPECT_EQ((*content)[143], 0);
	EXPECT_EQ((*content)[144], 0x11);
	EXPECT_EQ((*content)[344], 0x22);
	EXPECT_EQ(h.temporary_files(), 0);
	EXPECT_EQ(h.progress.caption, "Downloading [KICK]...");
	// Each block's share: 200 and 100 of 300.
	EXPECT_EQ(h.progress.infos, (std::vector<std::string>{ "1.00 %", "66.00 %", "33.00 %" }));
	expect_logged({ "[I] ########################## S5000 requesting Sample download for "
			"sample: KICK [Studio]",
		"[D] Header-Length: 144 Bytes", "[D] RAW_DATA_LEN: 300 Bytes",
		"[I] -------> Sample has 1 Channels, 44100 Hz Sample-Rate, 2 Bytes per "
		"sample,DATA-Length 300, Format Length: 18, FACT_LEN: 4, Size: 144",
		"[I] -------> PITCH: [C3] LOOP-START: 16, LOOP-End: 255 SAMPLE: [smpl]",
		"[I] -------> START: 5, END: 240, PLAYMODE: 1, SEMI-TONE-TUNE: 2, "
		"FINE-TUNE: 3",
		"[I] Downloaded Sample successfully...(444 Bytes, 300 Bytes Sample-Data)" });
}

TEST_F(s5000_samples, a_length_of_0_behind_the_header_gives_a_file_of_the_header_alone)
{
	play(open_s5000);
	play(selected);
	play("< " + wave_header("00 00 00 00"));
	play("> 00 \n < 00 00 00 00");
	akai_s5000_downloadsample(1, 1, "KICK");
	EXPECT_EQ(h.content(spool("KICK.wav"))->size(), 144u);
}

// What fails leaves the old file as it was.
TEST_F(s5000_samples, downloads_that_fail)
{
	const std::string header = selected + "< " + wave_header("2C 01 00 00") + "\n > 00 \n ";
	const std::string select = select_kick;
	const failure rows[] = {
		{ select + "\n ! silence", ") SYSEX", 5.1 },
		{ select + "\n < 44*5", ") BAD RESPONSE" },
		{ select + "\n < 00*6 45 F7", ") BAD RESPONSE" },
		{ selected.substr(0, selected.rfind('<')) + "! silence", ") GET_SAMPLE", 10.1 },
		{ selected + "< 00*143", ") GET_SAMPLE [SHORT READ 143/144]" },
		{ selected + "< 00*144", ") GET_SAMPLE [Header corrupted] READ 144/144]" },
		{ selected + "< 00*16 FF*128", ") GET_SAMPLE [Header corrupted] READ 144/144]" },
		{ header + "! unplug", ") GET_SAMPLE" },
		{ header + "< 00 00 00", ") GET_SAMPLE" },
		{ header + "< 00 00 80 01", ") GET_SAMPLE [Block of 32769 Bytes]" },
		{ header + "< 00 00 00 C8 \n < 11*199", ") GET_SAMPLE [SHORT READ 199/200]" },
		{ header + "< 00 00 00 C8 \n ! silence", ") GET_SAMPLE", 10.1 },
	};
	h.put_content(spool("KICK.wav"), std::vector<u8>(5, 9));
	each_fails(0x5E, open_s5000, "[F] DOWNLOAD FAILED (", rows,
		[] { akai_s5000_downloadsample(1, 1, "KICK"); });
	EXPECT_EQ(h.content(spool("KICK.wav"))->size(), 5u);
}

TEST_F(s5000_samples, a_sampler_that_sends_without_end_is_stopped)
{
	play(open_s5000);
	play(selected);
	play("< " + wave_header("00 00 00 00"));
	// 64 KiB may stand behind the data; three blocks of 32 KiB are more.
	play("> 00 \n < 00 00 80 00 \n < 11*32768 \n > 00 \n < 00 00 80 00 \n < 11*32768 \n"
	     "> 00 \n < 00 00 00 01");
	akai_s5000_downloadsample(1, 1, "KICK");
	expect_failed("[F] DOWNLOAD FAILED (",
		") GET_SAMPLE [More than the header says: block of 1 Bytes]");
	EXPECT_FALSE(h.content(spool("KICK.wav")));
}

TEST_F(s5000_samples, a_full_disk_and_a_folder_that_refuses)
{
	const auto download = [] { akai_s5000_downloadsample(1, 1, "KICK"); };
	const failure full[] = { { "< 00 00 00 C8 \n < 11*200 \n > 00 \n ! silence",
		": No space left on device]" } };
	h.disk.space_left = 200;
	each_fails(0x5E, open_s5000 + selected + "< " + wave_header("2C 01 00 00") + "\n > 00",
		"[F] DOWNLOAD FAILED (", full, download);
	h.disk.space_left.reset();
	h.disk.open_for_writing = 13;
	const failure refused[] = { { "< F0 47 5E 20 00 00 52 0E 13 02 02 F7",
		"KICK.wav] for writing [Permission denied]" } };
	each_fails(0x5E,
		std::string(open_s5000) + select_kick + done +
			"\n > 10 0A 00 F0 47 5E 20 00 00 0E 13 21 F7",
		"[F] Failed to open [", refused, download);
}

// Stop inside a block: it is read to its end, and no more is asked for.
TEST_F(s5000_samples, stop_ends_a_download_between_blocks)
{
	h.put_content(spool("KICK.wav"), std::vector<u8>(5, 9));
	play(open_s5000);
	play(selected + "< " + wave_header("2C 01 00 00"));
	play("> 00 \n < 00 00 00 C8 \n ! wait 3000 \n < 11*200");
	play("> 03 14 \n > 04 03 \n > 03 14 \n > 04 03");
	stop_after(1);
	akai_s5000_downloadsample(1, 1, "KICK");
	h.on_pump = nullptr;
	EXPECT_EQ(h.boxes.back().text,
		"Download stopped. The sampler was told to drop the transfer. What this computer "
		"held before is unchanged.");
	EXPECT_EQ(h.content(spool("KICK.wav"))->size(), 5u);
}

// The sampler is left in the middle though every exchange ended well.
TEST_F(s5000_samples, the_next_opening_breaks_off_a_transfer_that_went_wrong)
{
	h.put_content(spool("KICK.wav"), std::vector<u8>(200, 7));
	const auto opens_after = [this](const std::string &steps) {
		play(open_s5000);
		play(steps);
		steps.find("> 20") == steps.npos ? akai_s5000_downloadsample(1, 1, "KICK")
						 : akai_s5000_uploadsample(spool("KICK").c_str());
		play("> 03 14 \n > 04 03 \n > 03 14 \n > 04 03");
		play(open_s5000);
		EXPECT_TRUE(open_midi_usb(&usbdev[0]));
		close_midi_usb(&usbdev[0]);
		EXPECT_EQ(wire.steps_left(), 0);
	};
	opens_after(
		std::string(select_kick) + "\n < 00*6 45 F7 \n > 20 00 00 00 C8 'KICK' \n < 00*8");
	opens_after(selected + "< 00*144");
}

TEST_F(s5000_samples, a_download_without_its_device)
{
	wire.open_result = usb_no_device;
	EXPECT_THROW(akai_s5000_downloadsample(1, 1, "KICK"), process_ended);
	EXPECT_EQ(h.boxes.back(), (shown_box{ "Failed to open USB-Device!", "INFO" }));
	usbdev.clear();
	akai_s5000_downloadsample(1, 1, "KICK");
	EXPECT_EQ(h.boxes.back(), (shown_box{ "Cannot connect to sampler", "INFO" }));
}

// A name from a sampler cannot leave the spool.
TEST_F(s5000_samples, a_name_that_is_a_path)
{
	const spool_file file("..\\..\\evil/name");
	EXPECT_EQ(file.name, h.config + "\\sample\\.._.._evil_name.wav");
}

} // namespace
