// test_s1000_samples.cpp - headers, sample words both ways and names, byte by byte on the wire

#include "src/akais1000.h"
#include "src/waveqx.h"
#include "tests/support/transcript_midi.h"

namespace velmor
{
namespace
{

std::string nibbles(std::string_view block)
{
	std::string text;
	for (u8 byte : hex(block))
		text += format_text("%02X %02X ", byte & 0x0F, byte >> 4);
	return text;
}

// A header of 150 bytes: KICK, 44100 Hz, pitch 60, NO LOOPING, fine 3, semitone FE, the given
// length, play from 0 to 80, loop at 70 with a coarse length of 30, time 9999.
std::string header(std::string_view length, std::string_view name = "15 13 0D 15 0A*8")
{
	return nibbles("03 01 3C " + std::string(name) + " 00 01 00 00 02 03 FE 00*4 " +
		       std::string(length) +
		       " 00*4 50 00 00 00 46 00 00 00 34 12 1E 00 00 00 0F 27 00*84 "
		       "01 02 03 04 22 56 00*10");
}

class samples : public host_test
{
protected:
	samples()
	{
		h.use_sampler(model_s3000, 5);
		dev().status = 1;
		dev().samples = 2;
		copy_text(dev().sample[0].name, "SNARE");
		copy_text(dev().sample[1].name, "KICK");
	}

	_dev_status &dev() { return *current_sampler->status; }
	std::string spool(const char *name) { return h.config + "\\sample\\" + name + ".wav"; }
	void play(const std::string &script, sample_operation operation, const char *name = "KICK")
	{
		transcript_midi port(h, script);
		operation(1, 5, name);
		EXPECT_TRUE(port.finished());
	}
	void expect_box(const char *text, const char *caption)
	{
		ASSERT_EQ(h.boxes.size(), 1u);
		EXPECT_EQ(h.boxes[0], (shown_box{ text, caption }));
	}
	// A local WAV file of 16 bit mono words at 44100 Hz, without its extension in the result.
	std::string local(const char *name, const std::vector<u32> &words)
	{
		std::vector<u32> data = words;
		_sample sample = {};
		sample.sample_rate = 44100;
		sample.sample_length = data.size();
		sample.sample_data = data.data();
		sample.loop_start = 1;
		sample.loop_end = 130;
		const std::string base = h.config + "\\sample\\" + name;
		EXPECT_EQ(write_sample(&sample, base.c_str()), 0);
		h.forget_log();
		return base;
	}
};

const std::string ask_header = "# header of KICK\n> F0 47 05 0A 48 01 00 F7\n";
const std::string good_header =
	ask_header + "< F0 47 05 0B 48 01 00 " + header("51 00 00 00") + "F7\n";

// ---- Headers -----------------------------------------------------------------------------

TEST_F(samples, a_header_fills_the_record)
{
	for (sample_operation operation : { akai_s1000_sample_info, akai_s2000_sample_info }) {
		dev().sample[1].sample_length = 0;
		play(good_header, operation);
		const _sample &kick = dev().sample[1];
		EXPECT_STREQ(kick.name, "KICK");
		EXPECT_EQ(kick.number, 1);
		EXPECT_EQ(kick.device_index, 1u);
		EXPECT_EQ(kick.original_pitch, 60);
		EXPECT_EQ(kick.playback_mode, 2);
		EXPECT_EQ(kick.fine_tune, 3);
		EXPECT_EQ(kick.semitone_tune, 0xFE);
		EXPECT_EQ(kick.sample_length, 81u);
		EXPECT_EQ(kick.start_position, 0u);
		EXPECT_EQ(kick.end_position, 80u);
		EXPECT_EQ(kick.loop_end, 70u);
		EXPECT_EQ(kick.loop_start, 40u);
		EXPECT_EQ(kick.loop_times, 9999u);
		EXPECT_EQ(kick.sample_rate, 44100u) << "the flag counts, not the word of 22050";
		EXPECT_EQ(kick.channels, 1u);
		EXPECT_EQ(kick.bitspersample, 16u);
	}
	EXPECT_TRUE(h.logged("[D] ##################### S1000 NAME COMPARE: [%] <> [SNARE]"));
	EXPECT_TRUE(h.logged("[D] FOUND INDEX: 1 for sample: [KICK]...requesting Sample-Header"));
	EXPECT_TRUE(h.logged("[D]*** Original Pitch: [C3], Loops: 1, Playback-Mode: 2, "
			     "Sample-Start: 0, Length (in samples): 81 START: 0, END: 80, "
			     "Loop-Start: 40, DUMMY2: [01 02 03 04] STATUS-RATE: 1"));
	EXPECT_TRUE(h.logged("[D]*** LOOP-START: 40,END: 70, LOOP_FINE_LENGTH: 4660, COARSE: 30, "
			     "TIME: 9999, SEMI-TUNE: 254, FINE-TUNE: 3, SAMPLE-RATE: 44100"));
}

TEST_F(samples, a_rate_flag_of_0_is_22050_and_a_loop_never_starts_before_the_sample)
{
	play(ask_header + "< F0 47 05 0B 48 01 00 " +
			nibbles("03 00 3C 00*35 10 00 00 00 00 00 11 00 00 00 00 00 00*88 44 AC "
				"00*10") +
			"F7\n",
		akai_s2000_sample_info);
	EXPECT_EQ(dev().sample[1].sample_rate, 22050u);
	EXPECT_EQ(dev().sample[1].loop_end, 16u);
	EXPECT_EQ(dev().sample[1].loop_start, 0u);
}

TEST_F(samples, a_bad_header_is_logged_and_changes_nothing)
{
	struct {
		const char *what, *answer;
		int code;
	} rows[] = {
		{ "silent", "< nothing", 0 },
		{ "refused", "< F0 47 05 16 48 01 F7", 0x16 },
		{ "of another sample", "< F0 47 05 0B 48 02 00 01 00 F7", 0x0B },
		{ "of sample 129", "< F0 47 05 0B 48 01 01 01 00 F7", 0x0B },
		{ "cut before its index", "< F0 47 05 0B 48 F7", 0x0B },
		{ "garbage", "< F0 7F*60 F7", 0x7F },
	};
	for (const auto &it : rows) {
		h.forget_log();
		dev().sample[1].sample_length = 77;
		play(ask_header + it.answer, akai_s1000_sample_info);
		play(ask_header + it.answer, akai_s2000_sample_info);
		EXPECT_EQ(dev().sample[1].sample_length, 77u) << it.what;
		EXPECT_TRUE(h.logged(
			format_text("[D] BAD RESPONSE (INVALID SAMPLE NAME?) Code: %d", it.code)))
			<< it.what;
	}
	EXPECT_TRUE(h.boxes.empty());
	h.forget_log();
	play(ask_header + "< F0 47 05 16 48 01 F7", akai_s1000_sample_info);
	EXPECT_TRUE(
		h.logged("[F] BAD RESPONSE (INVALID SAMPLE NAME?) Code: 22, LEN: 7 Bytes [F0 47 "
			 "05 16 48 01 F7]"));
}

TEST_F(samples, a_sample_that_is_not_in_the_list_ends_the_process)
{
	for (const char *name : { "kick", "KIC", "" })
		for (sample_operation operation : { akai_s1000_sample_info, akai_s2000_sample_info,
			     akai_s1000_sample_download, akai_s2000_sample_download }) {
			h.boxes.clear();
			try {
				operation(1, 5, name);
				ADD_FAILURE() << "went on without " << name;
			} catch (const process_ended &end) {
				EXPECT_EQ(end.status, 0);
			}
			expect_box("Internal error (akai_s1000 Module) aborting! (Sample index not "
				   "found)",
				"FATAL");
		}
	dev().samples = 0;
	EXPECT_THROW(akai_s2000_sample_info(1, 5, "KICK"), process_ended);
}

// ---- Download ----------------------------------------------------------------------------

// A packet of 40 words: the first ones, then the midpoint. Nobody looks at its checksum.
std::string packet(int number, const std::string &first_words, int blanks)
{
	std::string text = format_text("< F0 7E 05 02 %02X %s ", number, first_words.c_str());
	for (int i = 0; i < blanks; i++)
		text += "40 00 00 ";
	return text + "00 F7\n";
}

// 81 words: two packets of 40 and one word more.
std::string three_blocks()
{
	return "# words 0 to 39\n"
	       "> F0 47 05 0C 48 01 00 00 00 00 00 28 00 00 00 01 01 F7\n" +
	       packet(0, "40 00 20 7F 7F 60", 38) +
	       "# words 40 to 79\n"
	       "> F0 47 05 0C 48 01 00 28 00 00 00 28 00 00 00 01 01 F7\n" +
	       packet(1, "00 00 00", 39) +
	       "# word 80\n"
	       "> F0 47 05 0C 48 01 00 50 00 00 00 01 00 00 00 01 01 F7\n" +
	       packet(2, "49 0D 00", 39);
}

void expect_81_words(const std::optional<std::vector<u8>> &file)
{
	ASSERT_TRUE(file);
	ASSERT_EQ(file->size(), 144u + 162u);
	std::vector<u8> words(162, 0);
	words[0] = 0x01;
	words[2] = 0xFF;
	words[3] = 0x7F;
	words[81] = 0x80;
	words[160] = 0x34; // 49 0D 00 is 9234 hex, and 8000 more wraps to 1234
	words[161] = 0x12;
	EXPECT_EQ(std::vector<u8>(file->begin() + 144, file->end()), words);
}

TEST_F(samples, an_s2000_download_becomes_a_file)
{
	play(good_header + three_blocks(), akai_s2000_sample_download);
	expect_81_words(h.content(spool("KICK")));
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(h.progress.caption, "Downloading [KICK]...");
	EXPECT_EQ(h.progress.range, 3);
	EXPECT_EQ(h.progress.value, 2);
	for (const char *line : {
		     "[D] **** 2000 *************** Requesting 81 Words of sample-data [Internal "
		     "index: 1] Start: 0, PLAYBACK_MODE: 2",
		     "[D] ######## REQUESTING 162 Bytes from OFFSET: 0 (Awaiting 3 sample blocks)",
		     "[D] Range for progressbar set to: [3]",
		     "[I] ### Received KK: 1 (2/3) Blocks [80 Bytes] OFFSET: 40, RESULT-LEN: 127",
		     "[I] ### Received KK: 2 (3/3) Blocks [2 Bytes] OFFSET: 80, RESULT-LEN: 127",
	     })
		EXPECT_TRUE(h.logged(line)) << line;
	EXPECT_TRUE(h.logged("[D] Creating Sample-File: [" + spool("KICK") + "]"));
}

TEST_F(samples, an_s1000_download_becomes_the_same_words)
{
	stop_progress(); // of something earlier; without a bar nothing else would take it back
	play(good_header + three_blocks(), akai_s1000_sample_download);
	expect_81_words(h.content(spool("KICK")));
	EXPECT_TRUE(h.progress.infos.empty());
	EXPECT_TRUE(h.logged("[D] ******************* Requesting 81 Words of sample-data [Internal "
			     "index: 1] Start: 0, PLAYBACK_MODE: 2"));
	EXPECT_TRUE(h.logged("[I] ### Received KK: 2 (3/3) Blocks [2 Bytes] OFFSET: 80"));
}

TEST_F(samples, eighty_words_are_two_blocks_and_none_are_an_empty_file)
{
	play(ask_header + "< F0 47 05 0B 48 01 00 " + header("50 00 00 00") + "F7\n" +
			"> F0 47 05 0C 48 01 00 00 00 00 00 28 00 00 00 01 01 F7\n" +
			packet(0, "", 40) +
			"> F0 47 05 0C 48 01 00 28 00 00 00 28 00 00 00 01 01 F7\n" +
			packet(1, "", 40),
		akai_s2000_sample_download);
	EXPECT_EQ(h.content(spool("KICK"))->size(), 144u + 160u);
	play(ask_header + "< F0 47 05 0B 48 01 00 " + header("00 00 00 00") + "F7\n",
		akai_s2000_sample_download);
	EXPECT_EQ(h.content(spool("KICK"))->size(), 144u);
}

TEST_F(samples, an_s2000_is_asked_until_127_bytes_come)
{
	const std::string ask = "> F0 47 05 0C 48 01 00 00 00 00 00 01 00 00 00 01 01 F7\n";
	play(ask_header + "< F0 47 05 0B 48 01 00 " + header("01 00 00 00") + "F7\n" + ask +
			"< nothing\n" + ask + "< F0 47 05 16 48 01 F7\n" + ask +
			"< F0 7E 05 02 00 40*119 00 F7\n" + ask +
			"< F0 7E 05 02 00 40*121 00 F7\n" + ask + packet(0, "7F 7F 60", 39),
		akai_s2000_sample_download);
	const auto file = h.content(spool("KICK"));
	ASSERT_TRUE(file);
	EXPECT_EQ(std::vector<u8>(file->begin() + 144, file->end()), hex("FF 7F"));
}

TEST_F(samples, stop_is_the_way_out_of_a_silent_download)
{
	h.put_content(spool("KICK"), hex("01 02 03"));
	const std::string ask = "> F0 47 05 0C 48 01 00 00 00 00 00 28 00 00 00 01 01 F7\n";
	int asked = 0;
	h.on_pump = [&] {
		if (h.progress.visible && h.time.now() > 10 && !asked++)
			stop_progress();
	};
	transcript_midi port(h, good_header + ask + ask + ask + ask);
	akai_s2000_sample_download(1, 5, "KICK");
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(*h.content(spool("KICK")), hex("01 02 03")) << "the old file stands";
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_TRUE(h.logged("[I] Download of [KICK] stopped, nothing was saved"));
	EXPECT_EQ(dev().sample[1].sample_data, nullptr);
}

TEST_F(samples, an_s1000_takes_what_comes_and_gives_up_on_silence)
{
	// One answer is refused, the other cut short: what did not come is the lowest value.
	play(ask_header + "< F0 47 05 0B 48 01 00 " + header("29 00 00 00") + "F7\n" +
			"> F0 47 05 0C 48 01 00 00 00 00 00 28 00 00 00 01 01 F7\n"
			"< F0 7E 05 02 00 7F 7F 60 F7\n"
			"> F0 47 05 0C 48 01 00 28 00 00 00 01 00 00 00 01 01 F7\n"
			"< nothing\n",
		akai_s1000_sample_download);
	const auto file = h.content(spool("KICK"));
	ASSERT_TRUE(file);
	ASSERT_EQ(file->size(), 144u + 82u);
	EXPECT_EQ(
		std::vector<u8>(file->begin() + 144, file->begin() + 150), hex("FF 7F 00 6E 00 80"))
		<< "F7 00 00 is EE00 hex, and 8000 more wraps";
	EXPECT_EQ(file->back(), 0x80);
	EXPECT_TRUE(h.boxes.empty());

	h.put_content(spool("KICK"), hex("01 02 03"));
	play(ask_header + "< F0 47 05 0B 48 01 00 " + header("00 00 10 00") + "F7\n" +
			"> F0 47 05 0C 48 01 00 00 00 00 00 28 00 00 00 01 01 F7\n"
			"> F0 47 05 0C 48 01 00 28 00 00 00 28 00 00 00 01 01 F7\n"
			"> F0 47 05 0C 48 01 00 50 00 00 00 28 00 00 00 01 01 F7\n",
		akai_s1000_sample_download);
	expect_box("Failed to save sample!", "ERROR");
	EXPECT_EQ(h.content(spool("KICK"))->size(), 3u);
}

TEST_F(samples, nothing_is_saved_without_a_believable_header)
{
	const char *answers[] = { "< nothing", "< F0 47 05 16 48 01 F7" };
	for (sample_operation operation :
		{ akai_s1000_sample_download, akai_s2000_sample_download }) {
		for (const char *answer : answers) {
			h.boxes.clear();
			play(ask_header + answer, operation);
			expect_box("Failed to save sample!", "ERROR");
		}
		// 16777217 words, one more than 32 MB hold; and all bits set.
		for (const char *length : { "01 00 00 01", "FF FF FF FF" }) {
			h.boxes.clear();
			play(ask_header + "< F0 47 05 0B 48 01 00 " + header(length) + "F7\n",
				operation);
			expect_box("Failed to save sample!", "ERROR");
		}
	}
	EXPECT_FALSE(h.content(spool("KICK")));
	EXPECT_TRUE(h.progress.infos.empty());
	EXPECT_TRUE(h.logged("[F] [KICK] cannot have 4294967295 words, no sampler holds more than "
			     "16777216"));
}

TEST_F(samples, a_port_that_fails_ends_a_download)
{
	// The port goes with the first event after the header: for an S2000 that is the bar, for
	// an S1000 the wait for the first packet.
	const std::string first = three_blocks().substr(0, three_blocks().find("# words 40"));
	struct {
		sample_operation operation;
		std::string script;
	} rows[] = {
		{ akai_s1000_sample_download, good_header + first },
		{ akai_s2000_sample_download, good_header },
	};
	for (const auto &it : rows) {
		h.boxes.clear();
		transcript_midi port(h, it.script);
		h.on_pump = [&] {
			if (dev().sample[1].sample_data)
				port.faults.write = 19;
		};
		it.operation(1, 5, "KICK");
		ASSERT_EQ(h.boxes.size(), 2u) << "the port's and this";
		EXPECT_EQ(h.boxes[1], (shown_box{ "Failed to save sample!", "ERROR" }));
		EXPECT_FALSE(h.progress.visible);
		EXPECT_FALSE(h.content(spool("KICK")));
	}
}

TEST_F(samples, a_full_disk_is_told)
{
	h.disk.open_for_writing = 28;
	play(good_header + three_blocks(), akai_s2000_sample_download);
	ASSERT_EQ(h.boxes.size(), 2u);
	EXPECT_EQ(h.boxes[1], (shown_box{ "Failed to save sample!", "ERROR" }));
	EXPECT_NE(dev().sample[1].sample_data, nullptr) << "the words stay";
	EXPECT_FALSE(h.content(spool("KICK")));
}

// ---- Upload ------------------------------------------------------------------------------

// 1e9 / 44100 is 22675.7: 22675 is 13 31 01 in sevens. Three words are 6 bytes, announced as
// 6 words. The loop ends at 130: 02 01 00; its start in the file is not read.
const std::string announce = "# dump header\n"
			     "> F0 7E 05 01 02 00 10 13 31 01 06 00 00 00 00 00 02 01 00 00 F7\n";
// Words 0, 1 and FFFF: 40 00 00, 40 00 01, 3F 7F 03. The rest of the packet is the midpoint.
std::string first_packet()
{
	std::string words = "40 00 00 40 00 01 3F 7F 03 ";
	for (int i = 3; i < 40; i++)
		words += "40 00 00 ";
	// 39 times 40 leaves 40; 7E ^ 05 ^ 02 is 79; 01 ^ 3F ^ 7F ^ 03 is 42: 40 ^ 79 ^ 42 is 7B.
	return "# packet 0\n> F0 7E 05 02 00 " + words + "7B F7\n";
}
constexpr char ack_0[] = "< F0 7E 05 7F 00 F7\n";

std::string name_new_sample(int index)
{
	return format_text("# header of the new sample\n> F0 47 05 0A 48 %02X 00 F7\n"
			   "< F0 47 05 0B 48 %02X 00 ",
		       index, index) +
	       header("03 00 00 00", "0A*12") + "F7\n" +
	       format_text("# the same but for its name\n> F0 47 05 0B 48 %02X 00 ", index) +
	       header("03 00 00 00", "18 0F 21 28 1D 18 0B 1C 0F 0A*3") + "F7\n" +
	       "< F0 47 05 16 48 00 F7\n";
}

TEST_F(samples, an_upload_goes_behind_the_last_sample_and_gets_its_name)
{
	const std::string path = local("New.snare", { 0, 1, 0xFFFF });
	transcript_midi port(h, announce + ack_0 + first_packet() + ack_0 + name_new_sample(2));
	akai_s2000_sample_upload(path.c_str());
	EXPECT_TRUE(port.finished());
	expect_box("Sample successfully uploaded!", "INFO");
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(h.progress.caption, "Uploading [New.snare]...");
	EXPECT_EQ(h.progress.range, 1);
	for (const char *line : {
		     "[D] Uploading Sample [New.snare] to current Sampler  Number requested: 0, "
		     "SYSEX-CHANNEL: 5",
		     "[D] New Sample-Number: 2",
		     "[D] Sample period: 22675, SAM-Sample-Length: 3",
		     "[D] Sample-Bytes: 6",
		     "[D] Sent sample-header request[21 Bytes]...received 6 Bytes",
		     "[D] Transmitting 1 Blocks (Last block contains 6 Words)",
		     "[D] Sent sample-dump packet[127 Bytes]...received 6 Bytes (BLOCK: 1/1)",
		     "[D] Sample renaming...Sample-Number: [2]",
		     "[D] Sent sample-header request[308 Bytes]...received 7 Bytes",
	     })
		EXPECT_TRUE(h.logged(line)) << line;
	EXPECT_TRUE(h.logged("[D] Trying to upload [" + path + "]"));
}

TEST_F(samples, an_upload_of_a_known_name_overwrites_it)
{
	const std::string path = local("KICK", {});
	transcript_midi port(
		h, "> F0 7E 05 01 01 00 10 13 31 01 00 00 00 00 00 00 02 01 00 00 F7\n" +
			   std::string(ack_0) + "# no blocks, straight to the name\n" +
			   good_header + "> F0 47 05 0B 48 01 00 " + header("51 00 00 00") +
			   "F7\n"
			   "< F0 47 05 16 48 00 F7\n");
	akai_s2000_sample_upload(path.c_str());
	EXPECT_TRUE(port.finished());
	expect_box("Sample successfully uploaded!", "INFO");
}

// 2583 words announce 5166, which is 130 packets: the number wraps at 128, and from word 2583
// on, in packet 64, there is only the midpoint.
TEST_F(samples, packet_numbers_wrap_and_the_second_half_is_silence)
{
	const std::string path = local("LONG", std::vector<u32>(2583, 0x8000));
	std::string script = "> F0 7E 05 01 02 00 10 13 31 01 2E 28 00 00 00 00 02 01 00 00 F7\n" +
			     std::string(ack_0);
	for (int b = 0; b < 130; b++) {
		script += format_text("# packet %d\n> F0 7E 05 02 %02X ", b, b & 0x7F);
		if (b < 64)
			script += "00*120 ";
		else if (b == 64)
			script += "00*69 40 00 00 40 00 00 40 00 00 40 00 00 40 00 00 40 00 00 40 "
				  "00 00 "
				  "40 00 00 40 00 00 40 00 00 40 00 00 40 00 00 40 00 00 40 00 00 "
				  "40 00 00 40 00 00 40 00 00 ";
		else
			for (int i = 0; i < 40; i++)
				script += "40 00 00 ";
		// 7E ^ 05 ^ 02 is 79; seventeen times 40 leaves 40, forty times nothing.
		script +=
			format_text("%02X F7\n", (0x79 ^ (b & 0x7F) ^ (b == 64 ? 0x40 : 0)) & 0x7F);
		script += ack_0;
	}
	script += "> F0 47 05 0A 48 02 00 F7\n< nothing\n";
	transcript_midi port(h, script);
	akai_s2000_sample_upload(path.c_str());
	EXPECT_TRUE(port.finished());
	EXPECT_TRUE(h.logged("[D] Transmitting 130 Blocks (Last block contains 6 Words)"));
	EXPECT_TRUE(h.logged("BAD RESPONSE (INVALID SAMPLE NAME?) Code: 0"));
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_TRUE(h.progress.visible) << "the bar stays after a failure";
}

TEST_F(samples, a_sampler_that_says_wait_is_waited_for)
{
	const std::string path = local("New.snare", { 0, 1, 0xFFFF });
	transcript_midi port(h, announce + "< F0 7E 05 7C 00 F7\n< @0.8 F0 7E 05 7F 00 F7\n" +
					first_packet() + ack_0 + name_new_sample(2));
	akai_s2000_sample_upload(path.c_str());
	EXPECT_TRUE(port.finished());
	expect_box("Sample successfully uploaded!", "INFO");
	EXPECT_TRUE(h.logged("[D] Waiting for sampler to come ready..."));
	EXPECT_TRUE(h.logged("[D] Received 6 Midi Bytes"));
}

TEST_F(samples, a_refused_header_ends_an_upload)
{
	const std::string path = local("New.snare", { 0, 1, 0xFFFF });
	for (const char *answer : { "< nothing", "< F0 7E 05 7E 00 F7", "< F0 7E 05 7D 00 F7",
		     "< F0 7E 05 7F F7", "< 7F F7", "< F0 47 05 16 48 01 F7" }) {
		h.boxes.clear();
		transcript_midi port(h, announce + answer);
		akai_s2000_sample_upload(path.c_str());
		EXPECT_TRUE(port.finished()) << answer;
		expect_box("Upload failed (received bad header ACK)", "ERROR");
		EXPECT_FALSE(h.progress.visible);
	}
}

TEST_F(samples, a_refused_packet_ends_an_upload_and_the_bar_stays)
{
	const std::string path = local("New.snare", { 0, 1, 0xFFFF });
	for (const char *answer :
		{ "< nothing", "< F0 7E 05 7E 00 F7", "< F0 7E 05 7C 00 F7", "< F0 7E 05 7F F7" }) {
		h.boxes.clear();
		transcript_midi port(h, announce + ack_0 + first_packet() + answer);
		akai_s2000_sample_upload(path.c_str());
		EXPECT_TRUE(port.finished()) << answer;
		expect_box("Upload failed (received bad header ACK)", "ERROR");
		EXPECT_TRUE(h.progress.visible);
	}
	// The next operation takes the bar over, and puts it away.
	transcript_midi port(h, announce + ack_0 + first_packet() + ack_0 + name_new_sample(2));
	akai_s2000_sample_upload(path.c_str());
	EXPECT_TRUE(port.finished());
	EXPECT_FALSE(h.progress.visible);
}

TEST_F(samples, stop_ends_an_upload_after_the_packet_under_way)
{
	const std::string path = local("LONG", std::vector<u32>(200, 0));
	std::string script = "> F0 7E 05 01 02 00 10 13 31 01 10 03 00 00 00 00 02 01 00 00 F7\n" +
			     std::string(ack_0) + "> F0 7E 05 02 00 ";
	for (int i = 0; i < 40; i++)
		script += "40 00 00 ";
	script += "79 F7\n" + std::string(ack_0);
	transcript_midi port(h, script);
	h.on_pump = [&] {
		if (h.progress.visible)
			stop_progress();
	};
	akai_s2000_sample_upload(path.c_str());
	EXPECT_TRUE(port.finished());
	EXPECT_FALSE(h.progress.visible);
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_TRUE(h.logged("[I] Upload of [LONG] stopped"));
}

TEST_F(samples, a_header_without_a_whole_name_is_not_sent_back)
{
	const std::string path = local("New.snare", { 0, 1, 0xFFFF });
	transcript_midi port(h, announce + ack_0 + first_packet() + ack_0 +
					"> F0 47 05 0A 48 02 00 F7\n"
					"< F0 47 05 0B 48 02 00 03 00 01 00 00*20 F7\n");
	akai_s2000_sample_upload(path.c_str());
	EXPECT_TRUE(port.finished());
	EXPECT_TRUE(h.logged("BAD RESPONSE (INVALID SAMPLE NAME?) Code: 11"));
}

TEST_F(samples, a_local_file_that_cannot_be_read_is_not_sent)
{
	transcript_midi port(h, "");
	akai_s2000_sample_upload((h.config + "\\sample\\MISSING").c_str());
	expect_box("Sample corrupted...cannot read information!", "INFO");
	h.put_content(spool("BROKEN"), hex("52 49 46 46 00*200"));
	h.boxes.clear();
	akai_s2000_sample_upload((h.config + "\\sample\\BROKEN").c_str());
	expect_box("Sample corrupted...cannot read information!", "INFO");
	current_sampler = nullptr;
	h.boxes.clear();
	akai_s2000_sample_upload((h.config + "\\sample\\MISSING").c_str());
	EXPECT_TRUE(h.boxes.empty());
}

// 2097151 words are the most that a dump can count. A sample of 1100000 announces that many
// instead of its 2200000 bytes; one of 2097152 words is not sent at all.
TEST_F(samples, what_a_dump_cannot_count_is_left_off_or_refused)
{
	const std::string path = local("LONG", std::vector<u32>(1100000, 0));
	{
		transcript_midi port(h,
			"> F0 7E 05 01 02 00 10 13 31 01 7F 7F 7F 00 00 00 02 01 00 00 F7\n"
			"< F0 7E 05 7D 00 F7\n");
		akai_s2000_sample_upload(path.c_str());
		EXPECT_TRUE(port.finished());
	}
	h.boxes.clear();
	const std::string longer = local("LONGER", std::vector<u32>(2097152, 0));
	transcript_midi port(h, "");
	akai_s2000_sample_upload(longer.c_str());
	expect_box("Sample too long for a sample dump (2097151 words at most)!", "ERROR");
}

TEST_F(samples, the_upload_beside_the_table_sends_number_0_and_no_name)
{
	const std::string path = local("New.snare", { 0, 1, 0xFFFF });
	transcript_midi port(
		h, "> F0 7E 05 01 00 00 10 13 31 01 06 00 00 00 00 00 02 01 00 00 F7\n" +
			   std::string(ack_0) + first_packet() + ack_0 +
			   "> F0 47 05 0A 48 00 00 F7\n< F0 47 05 0B 48 00 00 " +
			   header("03 00 00 00") + "F7\n");
	akai_s1000_sample_upload(path.c_str());
	EXPECT_TRUE(port.finished());
	EXPECT_TRUE(h.logged("[I] Transmitting 1 Blocks (Last block contains 6 Words)"));
	EXPECT_TRUE(
		h.logged("[I] Sent sample-dump packet[127 Bytes]...received 6 Bytes (BLOCK: 1/1)"));
	EXPECT_TRUE(h.logged("Sample renamed..."));
	EXPECT_TRUE(h.progress.infos.empty());
}

// ---- Rename and delete -------------------------------------------------------------------

TEST_F(samples, a_rename_sends_the_header_back_under_another_name)
{
	transcript_midi port(h, good_header + "# HAT, the rest as it was\n> F0 47 05 0B 48 01 00 " +
					header("51 00 00 00", "12 0B 1E 0A*9") +
					"F7\n< F0 47 05 16 48 00 F7\n");
	akai_s1000_sample_rename(1, 5, "KICK", "hat");
	EXPECT_TRUE(port.finished());
	EXPECT_TRUE(h.logged("[D] S1000 RENAMING SAMPLE [KICK] TO [hat]"));
	EXPECT_TRUE(h.logged("[D] RESENDING SAMPLE PARAMETERS TO S1000 (308 Bytes)"));
	EXPECT_STREQ(dev().sample[1].name, "KICK") << "the list is read anew by the caller";
	EXPECT_TRUE(h.boxes.empty());
}

TEST_F(samples, a_rename_that_is_answered_badly_sends_nothing_back)
{
	struct {
		const char *answer;
		int code;
	} rows[] = {
		{ "< nothing", 0 },
		{ "< F0 47 05 16 48 01 F7", 0x16 },
		{ "< F0 47 05 0B 48 00 00 00*300 F7", 0x0B },
		{ "< F0 47 05 0B 48 01 00 00*28 F7", 0x0B },
	};
	for (const auto &it : rows) {
		h.forget_log();
		transcript_midi port(h, ask_header + it.answer);
		akai_s1000_sample_rename(1, 5, "KICK", "HAT");
		EXPECT_TRUE(port.finished()) << it.answer;
		EXPECT_TRUE(h.logged(
			format_text("[I] BAD RESPONSE (INVALID SAMPLE NAME?) Code: %d", it.code)));
	}
}

TEST_F(samples, a_delete_goes_to_the_index_of_the_name)
{
	struct {
		const char *name;
		int samples;
		const char *sent;
	} rows[] = {
		{ "SNARE", 2, "> F0 47 05 14 48 00 00 F7" },
		{ "KICK", 2, "> F0 47 05 14 48 01 00 F7" },
		{ "kick", 2, "> F0 47 05 14 48 02 00 F7" }, // one past the last
		{ "KICK", 200, "> F0 47 05 14 48 01 00 F7" },
		{ "HAT", 200, "> F0 47 05 14 48 48 01 F7" },
		{ "KICK", 0, "> F0 47 05 14 48 00 00 F7" },
	};
	for (const auto &it : rows)
		for (const char *answer :
			{ "< F0 47 05 16 48 00 F7", "< F0 47 05 16 48 01 F7", "" }) {
			h.forget_log();
			dev().samples = it.samples;
			transcript_midi port(h, std::string(it.sent) + "\n" + answer);
			akai_s1000_sample_rename(1, 5, it.name, nullptr);
			EXPECT_TRUE(port.finished());
			EXPECT_TRUE(h.logged(
				format_text("[D] S1000 DELETING SAMPLE [%s] TO [NULL]", it.name)));
			EXPECT_TRUE(h.logged("[D] Sample successfully deleted!"));
		}
	EXPECT_TRUE(h.boxes.empty());
}

} // namespace
} // namespace velmor
