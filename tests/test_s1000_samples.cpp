// test_s1000_samples.cpp - headers, sample words both ways and names, byte by byte on the wire

#include "src/akais1000.h"
#include "src/waveqx.h"
#include "tests/support/transcript_midi.h"

namespace velmor
{
namespace
{

// A header of 150 bytes: KICK, 44100 Hz, pitch 60, NO LOOPING, fine 3, semitone FE, the given
// length, play from 0 to 80, loop at 70 with a coarse length of 30, time 9999.
std::string header(std::string_view length, std::string_view name = "15 13 0D 15 0A*8")
{
	return nibbles("03 01 3C " + std::string(name) + " 00 01 00 00 02 03 FE 00*4 " +
		       std::string(length) +
		       " 00*4 50 00 00 00 46 00 00 00 34 12 1E 00 00 00 0F 27 00*84 "
		       "01 02 03 04 22 56 00*10") +
	       "F7\n";
}

const std::string ask_header = "# header of KICK\n> F0 47 05 0A 48 01 00 F7\n";
std::string header_of_kick(std::string_view length)
{
	return ask_header + "< F0 47 05 0B 48 01 00 " + header(length);
}
const std::string good_header = header_of_kick("51 00 00 00");
const sample_operation infos[] = { akai_s1000_sample_info, akai_s2000_sample_info };
const sample_operation downloads[] = { akai_s1000_sample_download, akai_s2000_sample_download };

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
	std::string spool(const char *name) { return h.config + "\\sample\\" + name; }
	std::vector<u8> words_of_kick()
	{
		const auto file = h.content(spool("KICK.wav"));
		return file && file->size() >= 144
			       ? std::vector<u8>(file->begin() + 144, file->end())
			       : hex("EE");
	}
	void play(const std::string &script, sample_operation operation)
	{
		transcript_midi port(h, script);
		operation(1, 5, "KICK");
		EXPECT_TRUE(port.finished());
	}
	// The local file of that name goes up, in this conversation.
	void upload(const char *name, const std::string &script,
		void (*operation)(const char *) = akai_s2000_sample_upload)
	{
		h.boxes.clear();
		transcript_midi port(h, script);
		operation(spool(name).c_str());
		EXPECT_TRUE(port.finished());
	}
	void expect_box(const char *text, const char *caption)
	{
		EXPECT_EQ(h.boxes, (std::vector<shown_box>{ { text, caption } }));
		h.boxes.clear();
	}
	// A local WAV file of 16 bit mono words at 44100 Hz.
	void local(const char *name, std::vector<u32> words)
	{
		_sample sample = {};
		sample.sample_rate = 44100;
		sample.sample_length = words.size();
		sample.sample_data = words.data();
		sample.loop_start = 1;
		sample.loop_end = 130;
		ASSERT_EQ(write_sample(&sample, spool(name).c_str()), 0);
		h.forget_log();
	}
};

// ---- Headers -----------------------------------------------------------------------------

TEST_F(samples, a_header_fills_the_record)
{
	for (sample_operation operation : infos) {
		_sample &kick = dev().sample[1];
		kick = {};
		copy_text(kick.name, "KICK");
		play(good_header, operation);
		const u64 seen[] = { kick.device_index, kick.sample_length, kick.start_position,
			kick.end_position, kick.loop_start, kick.loop_end, kick.loop_times,
			kick.sample_rate, kick.channels, kick.bitspersample };
		// The rate flag counts, not the word of 22050.
		const u64 due[] = { 1, 81, 0, 80, 40, 70, 9999, 44100, 1, 16 };
		EXPECT_TRUE(std::ranges::equal(seen, due));
		const int bytes[] = { kick.number, kick.original_pitch, kick.playback_mode,
			kick.fine_tune, kick.semitone_tune };
		EXPECT_TRUE(std::ranges::equal(bytes, std::array{ 1, 60, 2, 3, 0xFE }));
	}
	expect_logged({ "[D] ##################### S1000 NAME COMPARE: [%] <> [SNARE]",
		"[D] FOUND INDEX: 1 for sample: [KICK]...requesting Sample-Header",
		"[D]*** Original Pitch: [C3], Loops: 1, Playback-Mode: 2, Sample-Start: 0, Length "
		"(in samples): 81 START: 0, END: 80, Loop-Start: 40, DUMMY2: [01 02 03 04] "
		"STATUS-RATE: 1",
		"[D]*** LOOP-START: 40,END: 70, LOOP_FINE_LENGTH: 4660, COARSE: 30, TIME: 9999, "
		"SEMI-TUNE: 254, FINE-TUNE: 3, SAMPLE-RATE: 44100" });
}

TEST_F(samples, a_rate_flag_of_0_is_22050_and_a_loop_never_starts_before_the_sample)
{
	play(ask_header + "< F0 47 05 0B 48 01 00 " +
			nibbles("03 00 3C 00*35 10 00 00 00 00 00 11 00*92 44 AC 00*10") + "F7\n",
		akai_s2000_sample_info);
	EXPECT_EQ(dev().sample[1].sample_rate, 22050u);
	EXPECT_EQ(dev().sample[1].loop_end, 16u);
	EXPECT_EQ(dev().sample[1].loop_start, 0u);
}

// Silent, refused, of another sample, of sample 129, cut before its index, garbage.
TEST_F(samples, a_bad_header_is_logged_and_changes_nothing)
{
	const struct {
		const char *answer;
		int code;
	} rows[] = { { "", 0 }, { "< F0 47 05 16 48 01 F7", 0x16 },
		{ "< F0 47 05 0B 48 02 00 01 00 F7", 0x0B },
		{ "< F0 47 05 0B 48 01 01 01 00 F7", 0x0B }, { "< F0 47 05 0B 48 F7", 0x0B },
		{ "< F0 7F*60 F7", 0x7F } };
	for (const auto &it : rows) {
		h.forget_log();
		dev().sample[1].sample_length = 77;
		for (sample_operation operation : infos)
			play(ask_header + it.answer, operation);
		EXPECT_EQ(dev().sample[1].sample_length, 77u) << it.answer;
		expect_logged({ format_text(
			"[D] BAD RESPONSE (INVALID SAMPLE NAME?) Code: %d", it.code) });
		if (it.code == 0x16)
			expect_logged({ "[F] BAD RESPONSE (INVALID SAMPLE NAME?) Code: 22, LEN: 7 "
					"Bytes [F0 47 05 16 48 01 F7]" });
		EXPECT_TRUE(h.boxes.empty());
		// A download has nothing to ask for then, and saves nothing.
		for (sample_operation operation : downloads) {
			play(ask_header + it.answer, operation);
			expect_box("Failed to save sample!", "ERROR");
		}
	}
	EXPECT_FALSE(h.content(spool("KICK.wav")));
}

TEST_F(samples, a_sample_that_is_not_in_the_list_ends_the_process)
{
	for (const char *name : { "kick", "KIC", "" })
		for (sample_operation operation :
			{ infos[0], infos[1], downloads[0], downloads[1] }) {
			EXPECT_THROW(operation(1, 5, name), process_ended);
			expect_box("Internal error (akai_s1000 Module) aborting! (Sample index not "
				   "found)",
				"FATAL");
		}
	dev().samples = 0;
	EXPECT_THROW(akai_s2000_sample_info(1, 5, "KICK"), process_ended);
}

// ---- Download ----------------------------------------------------------------------------

// A packet of 40 words: the first ones, then nothing, which is the lowest word.
std::string packet(int number, const std::string &words, int checksum, int rest)
{
	return format_text(
		"< F0 7E 05 02 %02X %s 00*%d %02X F7\n", number, words.c_str(), rest, checksum);
}
// A request for words from an offset of at most 127 on.
std::string ask_words(int offset, int words)
{
	return format_text(
		"> F0 47 05 0C 48 01 00 %02X 00 00 00 %02X 00 00 00 01 01 F7\n", offset, words);
}

// 81 words: two packets of 40 and one word more. 7E ^ 05 ^ 02 is 79; the words of the first
// make 40 ^ 20 ^ 7F ^ 7F ^ 60 of it: 79. Then 79 ^ 01 and 79 ^ 02 ^ 49 ^ 0D.
const std::string three_packets = ask_words(0, 40) + packet(0, "40 00 20 7F 7F 60", 0x79, 114) +
				  ask_words(40, 40) + packet(1, "", 0x78, 120) + ask_words(80, 1) +
				  packet(2, "49 0D 00", 0x3F, 117);
// 49 0D 00 is 9234 hex, and 8000 more wraps to 1234; 00 00 00 is 8000 hex.
const std::vector<u8> words_of_three = [] {
	std::vector<u8> words = hex("01 00 FF 7F");
	for (int i = 2; i < 80; i++)
		words.insert(words.end(), { 0x00, 0x80 });
	words.insert(words.end(), { 0x34, 0x12 });
	return words;
}();

TEST_F(samples, an_s2000_download_becomes_a_file)
{
	play(good_header + three_packets, akai_s2000_sample_download);
	EXPECT_EQ(words_of_kick(), words_of_three);
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(h.progress.caption, "Downloading [KICK]...");
	EXPECT_EQ(h.progress.range, 3);
	EXPECT_EQ(h.progress.value, 2);
	expect_logged({ "[D] **** 2000 *************** Requesting 81 Words of sample-data "
			"[Internal "
			"index: 1] Start: 0, PLAYBACK_MODE: 2",
		"[D] ######## REQUESTING 162 Bytes from OFFSET: 0 (Awaiting 3 sample blocks)",
		"[I] ### Received KK: 1 (2/3) Blocks [80 Bytes] OFFSET: 40, RESULT-LEN: 127",
		"[D] Creating Sample-File: [" + spool("KICK.wav") + "]" });
}

// Without a bar, and with a longer rest after each packet: 8 and three times 18 bytes at 31250
// baud, four answers after a millisecond each.
TEST_F(samples, an_s1000_download_becomes_the_same_words)
{
	const double wire = 62 * 0.00032 + 4 * 0.001;
	stop_progress(); // of something earlier; without a bar nothing else would take it back
	play(good_header + three_packets, akai_s1000_sample_download);
	EXPECT_NEAR(h.time.now(), wire + 3 * 0.08, 1e-6);
	EXPECT_EQ(words_of_kick(), words_of_three);
	EXPECT_TRUE(h.progress.infos.empty());
	expect_logged(
		{ "[D] ******************* Requesting 81 Words of sample-data [Internal index: "
		  "1] Start: 0, PLAYBACK_MODE: 2",
			"[I] ### Received KK: 2 (3/3) Blocks [2 Bytes] OFFSET: 80" });
	const double began = h.time.now();
	play(good_header + three_packets, akai_s2000_sample_download);
	EXPECT_NEAR(h.time.now() - began, wire + 3 * 0.05, 1e-6);
}

TEST_F(samples, eighty_words_are_two_packets_and_none_are_an_empty_file)
{
	const std::string lowest = packet(0, "", 0x79, 120);
	play(header_of_kick("50 00 00 00") + ask_words(0, 40) + lowest + ask_words(40, 40) + lowest,
		akai_s2000_sample_download);
	EXPECT_EQ(words_of_kick().size(), 160u);
	play(header_of_kick("00 00 00 00"), akai_s2000_sample_download);
	EXPECT_EQ(words_of_kick().size(), 0u);
}

TEST_F(samples, an_s2000_is_asked_until_127_bytes_come)
{
	const std::string ask = ask_words(0, 1);
	play(header_of_kick("01 00 00 00") + ask + "< nothing\n" + ask +
			"< F0 47 05 16 48 01 F7\n" + ask + packet(0, "", 0x79, 119) + ask +
			packet(0, "", 0x79, 121) + ask + packet(0, "7F 7F 60", 0x19, 117),
		akai_s2000_sample_download);
	EXPECT_EQ(words_of_kick(), hex("FF 7F"));
	EXPECT_TRUE(h.boxes.empty());
}

// What is asked, what comes, and how many of three packets are told as damaged.
TEST_F(samples, what_came_damaged_late_or_not_at_all_is_told_at_the_end)
{
	const std::string zero = packet(0, "", 0x79, 120), one = packet(1, "", 0x78, 120),
			  two = packet(2, "", 0x7B, 120);
	const struct {
		std::vector<std::string> packets;
		int damaged;
		bool s2000_too; // whole, so it is not asked for again
	} rows[] = {
		{ { zero, zero, zero }, 0, true },                      // a dump for each request
		{ { zero, one, two }, 0, true },                        // one dump
		{ { packet(127, "", 0x06, 120), zero, one }, 0, true }, // from anywhere on
		{ { zero, packet(1, "", 0x79, 120), two }, 1, true },   // checksum
		{ { zero, packet(1, "01", 0x78, 119), two }, 1, true }, // or a word
		{ { one, two, zero }, 1, true },                        // another number
		{ { zero, "", one }, 2, false },                        // late: the second one
		{ { zero, "< F0 47 05 16 48 01 F7\n", zero }, 1, false },
		{ { zero, "", packet(2, "", 0x7B, 119) }, 2, false },
	};
	for (const auto &row : rows)
		for (int s2000 = 0; s2000 <= row.s2000_too; s2000++) {
			SCOPED_TRACE(format_text("row %d", static_cast<int>(&row - rows)));
			h.boxes.clear();
			play(header_of_kick("78 00 00 00") + ask_words(0, 40) + row.packets[0] +
					ask_words(40, 40) + row.packets[1] + ask_words(80, 40) +
					row.packets[2],
				downloads[s2000]);
			EXPECT_EQ(words_of_kick().size(), 240u) << "the file is there anyway";
			if (row.damaged)
				expect_box(
					format_text("%d of 3 packets of [KICK] came damaged, late "
						    "or not at all. The file is saved, but it "
						    "clicks or falls silent in these places. "
						    "Another download may help.",
						row.damaged)
						.c_str(),
					"WARNING");
			EXPECT_TRUE(h.boxes.empty());
		}
}

TEST_F(samples, stop_is_the_way_out_of_a_silent_download)
{
	h.put_content(spool("KICK.wav"), hex("01 02 03"));
	int asked = 0;
	h.on_pump = [&] {
		if (h.progress.visible && h.time.now() > 10 && !asked++)
			stop_progress();
	};
	const std::string ask = ask_words(0, 40);
	play(good_header + ask + ask + ask + ask, akai_s2000_sample_download);
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(*h.content(spool("KICK.wav")), hex("01 02 03")) << "the old file stands";
	EXPECT_TRUE(h.boxes.empty());
	expect_logged({ "[I] Download of [KICK] stopped, nothing was saved" });
	EXPECT_EQ(dev().sample[1].sample_data, nullptr);
}

TEST_F(samples, an_s1000_takes_what_comes_and_gives_up_on_silence)
{
	play(header_of_kick("29 00 00 00") + ask_words(0, 40) + "< F0 7E 05 02 00 7F 7F 60 F7\n" +
			ask_words(40, 1),
		akai_s1000_sample_download);
	std::vector<u8> words = words_of_kick();
	ASSERT_EQ(words.size(), 82u);
	EXPECT_EQ(words.back(), 0x80);
	words.resize(6);
	EXPECT_EQ(words, hex("FF 7F 00 6E 00 80")) << "F7 00 00 is EE00 hex, and 8000 more wraps";

	h.boxes.clear();
	play(header_of_kick("00 00 10 00") + ask_words(0, 40) + ask_words(40, 40) +
			ask_words(80, 40),
		akai_s1000_sample_download);
	expect_box("Failed to save sample!", "ERROR");
	EXPECT_EQ(words_of_kick().size(), 82u);
}

TEST_F(samples, what_cannot_be_kept_is_told_and_leaves_no_file)
{
	// 16777217 words, one more than 32 MB hold; and all bits set.
	for (sample_operation operation : downloads)
		for (const char *length : { "01 00 00 01", "FF FF FF FF" }) {
			play(header_of_kick(length), operation);
			expect_box("Failed to save sample!", "ERROR");
		}
	EXPECT_TRUE(h.progress.infos.empty());
	expect_logged({ "[F] [KICK] cannot have 4294967295 words, no sampler holds more than "
			"16777216" });
	h.disk.open_for_writing = 28;
	play(good_header + three_packets, akai_s2000_sample_download);
	ASSERT_EQ(h.boxes.size(), 2u);
	EXPECT_EQ(h.boxes[1], (shown_box{ "Failed to save sample!", "ERROR" }));
	EXPECT_NE(dev().sample[1].sample_data, nullptr) << "the words stay";
	EXPECT_FALSE(h.content(spool("KICK.wav")));
}

// The port goes with the first event after the header: for an S2000 that is the bar, for an S1000
// the wait for the first packet.
TEST_F(samples, a_port_that_fails_ends_a_download)
{
	for (int s2000 : { 0, 1 }) {
		h.boxes.clear();
		transcript_midi port(h,
			good_header + (s2000 ? "" : ask_words(0, 40) + packet(0, "", 0x79, 120)));
		h.on_pump = [&] {
			if (dev().sample[1].sample_data)
				port.faults.write = 19;
		};
		downloads[s2000](1, 5, "KICK");
		ASSERT_EQ(h.boxes.size(), 2u) << "the port's and this";
		EXPECT_EQ(h.boxes[1], (shown_box{ "Failed to save sample!", "ERROR" }));
		EXPECT_FALSE(h.progress.visible);
		EXPECT_FALSE(h.content(spool("KICK.wav")));
	}
}

// ---- Upload ------------------------------------------------------------------------------

// 1e9 / 44100 is 22675.7: 22675 is 13 31 01 in sevens. The loop ends at 130: 02 01 00; its start
// in the file is not read.
std::string announce(const char *number, const char *words)
{
	return format_text("# dump header\n> F0 7E 05 01 %s 00 10 13 31 01 %s 00 00 00 02 01 00 00 "
			   "F7\n",
		number, words);
}
std::string answer(int word, int number = 0)
{
	return format_text("< F0 7E 05 %02X %02X F7\n", word, number & 0x7F);
}
// A packet with so many words of the sample (40 00 00 is the midpoint, 0), then the midpoint.
std::string dump(int number, const std::string &words, int midpoints, int checksum)
{
	std::string text = format_text("# packet %d\n> F0 7E 05 02 %02X ", number, number & 0x7F);
	text += words;
	for (int i = 0; i < midpoints; i++)
		text += " 40 00 00";
	return text + format_text(" %02X F7\n", checksum);
}
constexpr int ack = 0x7F, nak = 0x7E, no_more = 0x7D, wait = 0x7C;

// New.snare: three words are 6 bytes, announced as 6 words. Words 0, 1 and FFFF: 40 00 00,
// 40 00 01, 3F 7F 03; with 37 midpoints that is 40 ^ 01 ^ 3F ^ 7F ^ 03 ^ 79, or 7B.
const std::string announced = announce("02", "06 00 00");
const std::string sent =
	announced + answer(ack) + dump(0, "40 00 00 40 00 01 3F 7F 03", 37, 0x7B) + answer(ack);
const std::string named =
	"# header of the new sample\n> F0 47 05 0A 48 02 00 F7\n"
	"< F0 47 05 0B 48 02 00 " +
	header("03 00 00 00", "0A*12") + "# the same but for its name\n> F0 47 05 0B 48 02 00 " +
	header("03 00 00 00", "18 0F 21 28 1D 18 0B 1C 0F 0A*3") + "< F0 47 05 16 48 00 F7\n";
constexpr char uploaded[] = "Sample successfully uploaded!";
constexpr char bad_ack[] = "Upload failed (received bad header ACK)";

TEST_F(samples, an_upload_goes_behind_the_last_sample_and_gets_its_name)
{
	local("New.snare", { 0, 1, 0xFFFF });
	upload("New.snare", sent + named);
	expect_box(uploaded, "INFO");
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(h.progress.caption, "Uploading [New.snare]...");
	EXPECT_EQ(h.progress.range, 1);
	expect_logged({ "[D] Trying to upload [" + spool("New.snare") + "]",
		"[D] Uploading Sample [New.snare] to current Sampler  Number requested: 0, "
		"SYSEX-CHANNEL: 5",
		"[D] New Sample-Number: 2", "[D] Sample period: 22675, SAM-Sample-Length: 3",
		"[D] Sample-Bytes: 6",
		"[D] Sent sample-header request[21 Bytes]...received 6 Bytes",
		"[D] Transmitting 1 Blocks (Last block contains 6 Words)",
		"[D] Sent sample-dump packet[127 Bytes]...received 6 Bytes (BLOCK: 1/1)",
		"[D] Sample renaming...Sample-Number: [2]",
		"[D] Sent sample-header request[308 Bytes]...received 7 Bytes" });

	// A sampler that says wait is waited for.
	upload("New.snare", announced + answer(wait) + "< @0.8 F0 7E 05 7F 00 F7\n" +
				    sent.substr(announced.size() + answer(ack).size()) + named);
	expect_box(uploaded, "INFO");
	expect_logged({ "[D] Waiting for sampler to come ready...", "[D] Received 6 Midi Bytes" });
}

TEST_F(samples, an_upload_of_a_known_name_overwrites_it)
{
	local("KICK", {}); // no packets, straight to the name
	upload("KICK", announce("01", "00 00 00") + answer(ack) + good_header +
			       "> F0 47 05 0B 48 01 00 " + header("51 00 00 00") +
			       "< F0 47 05 16 48 00 F7\n");
	expect_box(uploaded, "INFO");
}

// 2583 words announce 5166, which is 130 packets: the number wraps at 128, and from word 2583
// on, in packet 64, there is only the midpoint. 7E ^ 05 ^ 02 is 79; seventeen times 40 leaves 40.
TEST_F(samples, packet_numbers_wrap_and_the_second_half_is_silence)
{
	local("LONG", std::vector<u32>(2583, 0x8000));
	std::string script = announce("02", "2E 28 00") + answer(ack);
	for (int b = 0; b < 130; b++) {
		const int number = b & 0x7F;
		script += b < 64    ? dump(b, "00*120", 0, 0x79 ^ number)
			  : b == 64 ? dump(b, "00*69", 17, 0x39 ^ number)
				    : dump(b, "", 40, 0x79 ^ number);
		script += answer(ack, b);
	}
	upload("LONG", script + "> F0 47 05 0A 48 02 00 F7\n< nothing\n");
	expect_logged({ "[D] Transmitting 130 Blocks (Last block contains 6 Words)",
		"BAD RESPONSE (INVALID SAMPLE NAME?) Code: 0" });
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_TRUE(h.progress.visible) << "the bar stays after a failure";
}

TEST_F(samples, a_refusal_ends_an_upload_and_a_bar_that_is_up_stays)
{
	local("New.snare", { 0, 1, 0xFFFF });
	const std::string odd[] = { "< nothing", answer(nak), "< F0 7E 05 7F F7", "< 7F F7",
		"< F0 47 05 16 48 01 F7" };
	for (const std::string &said : odd) {
		SCOPED_TRACE(said);
		hide_progressbar(0);
		upload("New.snare", announced + said);
		expect_box(bad_ack, "ERROR");
		EXPECT_FALSE(h.progress.visible);
		upload("New.snare", sent.substr(0, sent.size() - answer(ack).size()) + said);
		expect_box(bad_ack, "ERROR");
		EXPECT_TRUE(h.progress.visible);
	}
	upload("New.snare", announced + answer(no_more));
	expect_box(bad_ack, "ERROR");
	upload("New.snare", sent.substr(0, sent.size() - answer(ack).size()) + answer(wait));
	expect_box(bad_ack, "ERROR");
	// The next operation takes the bar over, and puts it away.
	upload("New.snare", sent + named);
	EXPECT_FALSE(h.progress.visible);
}

// After a packet that was taken, never within one; the sampler is told with its number. KICK was
// there and is gone, LONG is new. After the last packet only the name is left, and is sent.
TEST_F(samples, stop_cancels_an_upload_after_the_packet_under_way)
{
	h.on_pump = [&] {
		if (h.progress.visible && h.progress.infos.size() > 1)
			stop_progress();
	};
	const std::string two = answer(ack) + dump(0, "", 40, 0x79) + answer(ack) +
				dump(1, "", 40, 0x78) + answer(ack, 1) + "> F0 7E 05 7D 01 F7\n";
	local("LONG", std::vector<u32>(200, 0));
	local("KICK", std::vector<u32>(200, 0));
	upload("LONG", announce("02", "10 03 00") + two);
	EXPECT_FALSE(h.progress.visible);
	expect_box("The upload was stopped and the sampler told to forget it.", "INFO");
	expect_logged({ "[I] Upload of [LONG] stopped" });
	h.progress.infos.clear();
	upload("KICK", announce("01", "10 03 00") + two);
	expect_box("The upload was stopped and the sampler told to forget it. The sample [KICK] "
		   "that the sampler had in this place is gone: upload it again, or delete what is "
		   "left of it.",
		"WARNING");
	local("New.snare", { 0, 1, 0xFFFF });
	h.on_pump = [] { stop_progress(); };
	upload("New.snare", sent + named);
	expect_box(uploaded, "INFO");
}

TEST_F(samples, a_local_file_that_cannot_be_read_is_not_sent)
{
	h.put_content(spool("BROKEN.wav"), hex("52 49 46 46 00*200"));
	for (const char *name : { "MISSING", "BROKEN" }) {
		upload(name, "");
		expect_box("Sample corrupted...cannot read information!", "INFO");
	}
	current_sampler = nullptr;
	upload("MISSING", "");
	EXPECT_TRUE(h.boxes.empty());
}

// 2097151 words are the most that a dump can count. A sample of 1100000 announces that many
// instead of its 2200000 bytes; one of 2097152 words is not sent at all.
TEST_F(samples, what_a_dump_cannot_count_is_left_off_or_refused)
{
	local("LONG", std::vector<u32>(1100000, 0));
	upload("LONG", announce("02", "7F 7F 7F") + answer(no_more));
	local("LONGER", std::vector<u32>(2097152, 0));
	upload("LONGER", "");
	expect_box("Sample too long for a sample dump (2097151 words at most)!", "ERROR");
}

TEST_F(samples, the_upload_beside_the_table_sends_number_0_and_no_name)
{
	local("New.snare", { 0, 1, 0xFFFF });
	stop_progress(); // of something earlier; it shows no bar that would take it back
	upload("New.snare",
		announce("00", "06 00 00") + sent.substr(announced.size()) +
			"> F0 47 05 0A 48 00 00 F7\n< F0 47 05 0B 48 00 00 " +
			header("03 00 00 00"),
		akai_s1000_sample_upload);
	expect_box(uploaded, "INFO");
	expect_logged({ "[I] Transmitting 1 Blocks (Last block contains 6 Words)",
		"[I] Sent sample-dump packet[127 Bytes]...received 6 Bytes (BLOCK: 1/1)",
		"Sample renamed..." });
	EXPECT_TRUE(h.progress.infos.empty());
}

// ---- Rename and delete -------------------------------------------------------------------

TEST_F(samples, a_rename_sends_the_header_back_under_another_name)
{
	transcript_midi port(h, good_header + "# HAT, the rest as it was\n> F0 47 05 0B 48 01 00 " +
					header("51 00 00 00", "12 0B 1E 0A*9") +
					"< F0 47 05 16 48 00 F7\n");
	akai_s1000_sample_rename(1, 5, "KICK", "hat");
	EXPECT_TRUE(port.finished());
	expect_logged({ "[D] S1000 RENAMING SAMPLE [KICK] TO [hat]",
		"[D] RESENDING SAMPLE PARAMETERS TO S1000 (308 Bytes)" });
	EXPECT_STREQ(dev().sample[1].name, "KICK") << "the list is read anew by the caller";
	EXPECT_TRUE(h.boxes.empty());
}

TEST_F(samples, a_rename_that_is_answered_badly_sends_nothing_back)
{
	const struct {
		const char *answer;
		int code;
	} rows[] = { { "< nothing", 0 }, { "< F0 47 05 16 48 01 F7", 0x16 },
		{ "< F0 47 05 0B 48 00 00 00*300 F7", 0x0B },
		{ "< F0 47 05 0B 48 01 00 00*28 F7", 0x0B } };
	for (const auto &it : rows) {
		h.forget_log();
		transcript_midi port(h, ask_header + it.answer);
		akai_s1000_sample_rename(1, 5, "KICK", "HAT");
		EXPECT_TRUE(port.finished()) << it.answer;
		expect_logged({ format_text(
			"[I] BAD RESPONSE (INVALID SAMPLE NAME?) Code: %d", it.code) });
	}
}

TEST_F(samples, a_delete_goes_to_the_index_of_the_name_and_takes_any_answer)
{
	const struct {
		const char *name;
		int samples;
		const char *index, *answer;
	} rows[] = {
		{ "SNARE", 2, "00 00", "< F0 47 05 16 48 00 F7" },
		{ "KICK", 2, "01 00", "< F0 47 05 16 48 01 F7" },
		{ "kick", 2, "02 00", "" }, // one past the last
		{ "HAT", 200, "48 01", "< F0 47 05 16 48 00 F7" },
		{ "KICK", 0, "00 00", "" },
	};
	for (const auto &it : rows) {
		h.forget_log();
		dev().samples = it.samples;
		transcript_midi port(
			h, format_text("> F0 47 05 14 48 %s F7\n%s", it.index, it.answer));
		akai_s1000_sample_rename(1, 5, it.name, nullptr);
		EXPECT_TRUE(port.finished());
		expect_logged({ format_text("[D] S1000 DELETING SAMPLE [%s] TO [NULL]", it.name),
			"[D] Sample successfully deleted!" });
	}
	EXPECT_TRUE(h.boxes.empty());
}

} // namespace
} // namespace velmor
