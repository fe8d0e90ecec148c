// test_s900_samples.cpp - the dump of an S900, both ways, byte by byte and with a virtual machine
//
// 61 words are two blocks. FF 07 in a file, 2047, is 7F 7C on the wire; 00 F8, -2048, is 00 00;
// 0 is 40 00. 62500 ns are 24 68 03 and 16000 words a second, which a file calls 6400 (1900).

#include "src/akais900.h"
#include "src/velmor_outcome.h"
#include "src/waveqx.h"
#include "tests/support/transcript_midi.h"
#include "virtual/midi_ports.h"
#include "virtual/s900.h"

namespace velmor
{
namespace
{

std::string times(int count, const std::string &text)
{
	return count > 0 ? text + " " + times(count - 1, text) : "";
}

std::vector<u8> operator+(std::vector<u8> a, const std::vector<u8> &b)
{
	a.insert(a.end(), b.begin(), b.end());
	return a;
}

const std::string head_begin = "F0 7E 01 04 00 0C 24 68 03 3D 00 00 ";
const std::string no_loop = head_begin + "3D 00 00 3D 00 00 01",
		  loop = head_begin + "0A 00 00 32 00 00 00";
// 2047, -2048, 1 and 57 times 0; and -1 (3F 7C).
const std::string block_0 = "00 7F 7C 00 00 40 04 " + times(57, "40 00") + "07",
		  block_1 = "01 3F 7C 00*118 43", go_on = "> F0 7E 7F F7\n";
const std::vector<u8> words_61 = hex("FF 07 00 F8 01 00 00*114 FF FF");

// A WAV file with holes: length, rate, period in ns, pitch; the loop's part of smpl.
std::vector<u8> wav(const std::string &length, const std::string &smpl)
{
	return hex("52 49 46 46 " + length +
		       " 57 41 56 45 66 6D 74 20 12 00 00 00 01 00 01 00 00 19 00 00 00 00 00 00 "
		       "02 00 "
		       "0C 00 00 00 66 61 63 74 04 00 00 00 3D 00 00 00 73 6D 70 6C " +
		       smpl + " 64 61 74 61 7A 00 00 00") +
	       words_61;
}
// 156250 ns are 0002625A.
const std::string smpl_begin = "00 00 00 47 00 00 01 5E 00 00 00 5A 62 02 00 3C 00 00 00 00*12 ";
const std::vector<u8> wav_without_loop = wav("D8 00 00 00", "24 " + smpl_begin + "00*8");

class s900_samples : public host_test
{
protected:
	s900_samples()
	{
		h.use_sampler(model_s900, 0);
		dev().status = 1;
		dev().samples = 2;
		copy_text(dev().sample[0].name, "SNARE");
		copy_text(dev().sample[1].name, "KICK");
		dev().sample[1].number = 4;
		dev().sample[1].original_pitch = 60;
	}
	_dev_status &dev() { return *current_sampler->status; }
	std::string spool(const std::string &name) { return h.config + "\\sample\\" + name; }
	auto kick() { return h.content(spool("KICK.wav")); }
	void download() { akai_s900_download_sample(1, 0, "KICK"); }
	void play(const std::string &script, const std::function<void()> &work)
	{
		h.boxes.clear();
		h.forget_log();
		transcript_midi port(h, script);
		work();
		EXPECT_TRUE(port.finished());
	}
	shown_box last_box() const { return h.boxes.empty() ? shown_box() : h.boxes.back(); }
	void local(const std::string &name, const std::vector<u8> &file)
	{
		h.put_content(spool(name + ".wav"), file);
		load_local_samples(nullptr);
	}
	void upload(const std::string &name) { akai_s900_upload_sample(spool(name).c_str()); }
};

// The catalogue has KICK with number 4 and no sample 0.
const std::string catalogue = "> F0 47 00 03 40 00 00 F7\n< F0 47 00 0B 40 00 00 53 04 4B 49 43 4B "
			      "20*6 F7\n> F0 47 00 04 40 00 00 F7\n";
const std::string enable = "> F0 47 00 05 40 00 00 F7\n", request = "> F0 7E 00 04 00 F7\n",
		  disable = "> F0 47 00 06 40 00 00 F7\n";

std::string dump(const std::string &first, const std::string &second,
	const std::vector<std::string> &answers)
{
	std::string script =
		catalogue + enable + request + "< " + first + "\n" + request + "< " + second + "\n";
	for (const std::string &answer : answers)
		script += go_on + (answer.empty() ? "" : "< " + answer + "\n");
	return script;
}

// ---- Download ----------------------------------------------------------------------------

TEST_F(s900_samples, a_dump_becomes_a_file_of_12_bits)
{
	const double began = h.time.now();
	play(dump(no_loop, no_loop, { block_0, block_1, "F7" }) + disable, [&] { download(); });
	EXPECT_EQ(kick(), wav_without_loop);
	EXPECT_EQ(last_box(), (shown_box{ "Download completed successfully!", "INFO" }));
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(h.progress.caption, "Downloading [KICK]... RESENDING REQUEST...");
	EXPECT_EQ(h.progress.range, 3);
	EXPECT_FALSE(the_line.failing);
	// The head has no end, so three seconds and a part are waited; then 3 * 200 ms.
	EXPECT_GT(h.time.now() - began, 3.7);
	EXPECT_LT(h.time.now() - began, 5);
	for (const char *line : { "[I] Request for downloading [KICK]",
		     "[D] Requested Sample has number: 4, Pitch: 0x3C",
		     "[D] Requesting SYSTEM-DUMP of SAMPLE (6 Bytes) [F0 7E 00 04 00 F7]",
		     "[D] REQUEST-SYSTEM-DUMP ANSWER --> (19 Bytes) [F0 7E 01 04 00 0C 24 68 03 3D "
		     "00 00 3D 00 00 3D 00 00 01]",
		     "[D] DOWNLOAD (KICK) 6400 Hz, Sample-Words: 61, Bits: 12, Loop-start: 61, "
		     "Loop-end: 61, Loop-Mode: 1, BLOCKS: 2/2",
		     "[D] Received 122/520 MIDI-Bytes [0x00000000]",
		     "[D] Received 264 Bytes [0xF7]",
		     "[D] The Header: [F0 7E 01 04 00 0C 24 68 03 3D 00 00 3D 00 00 3D 00 00 01] "
		     "(Complete: 264 Bytes)",
		     "[D] Requesting Disable of COMMON SYSEX (8 Bytes) [F0 47 00 06 40 00 00 F7] "
		     "DOWNLOAD FINISHED" })
		EXPECT_TRUE(h.logged(line)) << line;
}

TEST_F(s900_samples, a_loop_of_six_words_is_one)
{
	const u32 before = static_cast<u32>(host.clock->time_of_day());
	play(dump(loop, loop, { block_0, block_1, "F7" }) + disable, [&] { download(); });
	std::vector<u8> file = kick().value();
	ASSERT_EQ(file.size(), 248u);
	const u32 cue = wave_read_32bit(&file[94]);
	EXPECT_TRUE(cue >= before && cue <= before + 10) << cue;
	wave_write_32bit(&file[94], 0x11223344);
	EXPECT_EQ(file, wav("F0 00 00 00", "3C " + smpl_begin +
						   "01 00 00 00 18 00 00 00 44 33 22 11 00*4 0A 00 "
						   "00 00 32 00 00 00 00*8"));
	for (const auto &[end, size] :
		{ std::pair{ "0F", 224u }, { "10", 248u }, { "09", 224u } }) {
		std::string head = loop;
		head.replace(head.find("32 "), 2, end);
		play(dump(head, head, { block_0, block_1, "F7" }) + disable, [&] { download(); });
		EXPECT_EQ(kick()->size(), size) << end;
	}
}

TEST_F(s900_samples, heads_of_18_to_20_bytes_and_other_traffic_are_borne)
{
	const std::string sensing = "FE F0 7E 7F F7 90 3C " + no_loop + " FE FE";
	for (const auto &[first, second] : { std::pair{ no_loop + " 00", no_loop + " 00" },
		     { no_loop.substr(0, 53), no_loop.substr(0, 53) }, { no_loop, sensing } }) {
		play(dump(first, second, { block_0 + " F8", block_1, "F7 F0 00 F7" }) + disable,
			[&] { download(); });
		EXPECT_EQ(kick(), wav_without_loop) << second;
		host.files->remove(spool("KICK.wav").c_str());
	}
}

TEST_F(s900_samples, a_head_that_does_not_come_ends_the_download)
{
	for (const char *answer : { "nothing", "F0 7E 01 04 00 0C 24 68 03 3D 00 00 3D 00 00 3D 00",
		     "F0 47 00 0C 40 00 00 00*121 F7" }) {
		play(catalogue + enable + request + "< " + answer, [&] { download(); });
		EXPECT_EQ(last_box(), (shown_box{ "Sample not found/download failed!", "ERROR" }));
		EXPECT_TRUE(the_line.failing || answer[0] == 'F');
	}
	play(catalogue, [&] { akai_s900_download_sample(1, 0, "kick"); });
	EXPECT_EQ(last_box(), (shown_box{ "Sample not found!", "ERROR" }));
}

TEST_F(s900_samples, a_dump_that_is_not_right_is_no_file)
{
	const std::string empty = "F0 7E 01 04 00 0C 24 68 03 00*9 01", other = head_begin + "00*7";
	const struct {
		const char *what;
		std::string head;
		std::vector<std::string> answers;
		double seconds; // at the end
	} rows[] = {
		{ "checksum", no_loop, { block_0, "01 3F 7C 00*118 42", "F7" }, 0 },
		{ "a block is missing", no_loop, { block_0, "", "F7" }, 0 },
		{ "the last byte of a block is missing", no_loop,
			{ block_0, "01 3F 7C 00*118", "F7" }, 0 },
		{ "another head", other, { block_0, block_1, "F7" }, 0 },
		{ "a new message", no_loop, { block_0, "F0 " + block_1, "F7" }, 10 },
		{ "nothing", "", { "", "", "" }, 10 },
	};
	h.put_content(spool("KICK.wav"), hex("4F 4C 44"));
	for (const auto &it : rows) {
		const double began = h.time.now();
		play(dump(no_loop, it.head.empty() ? "00" : it.head, it.answers),
			[&] { download(); });
		EXPECT_EQ(last_box(), (shown_box{ "Transmission failed!", "FATAL" })) << it.what;
		EXPECT_EQ(kick(), hex("4F 4C 44")) << it.what;
		EXPECT_TRUE(h.progress.visible && the_line.failing) << it.what;
		EXPECT_GE(h.time.now() - began, it.seconds + 3.7) << it.what;
		EXPECT_LT(h.time.now() - began, it.seconds + 5.5) << it.what;
		EXPECT_EQ(h.logged("[F] Transmission error (XOR: 0x43 instead of 0x42) IDX: 121"),
			it.what == std::string("checksum"));
	}
	play(dump(empty, empty, { "F7" }), [&] { download(); });
	EXPECT_EQ(last_box().text, "Transmission failed!") << "no words";
}

TEST_F(s900_samples, the_end_is_waited_for_ten_seconds)
{
	for (const auto &[end, seconds] : { std::pair{ "@9 F7", 9 }, { "", 10 } }) {
		const double began = h.time.now();
		play(dump(no_loop, no_loop, { block_0, block_1, end }) + disable,
			[&] { download(); });
		EXPECT_EQ(kick(), wav_without_loop) << "every block is there and right";
		EXPECT_NEAR(h.time.now() - began, seconds + 4.3, 0.8);
		host.files->remove(spool("KICK.wav").c_str());
	}
}

TEST_F(s900_samples, a_machine_that_dies_is_not_asked_for_an_hour)
{
	const std::string head = "F0 7E 01 04 00 0C 24 68 03 7F*3 00*6 01";
	std::vector<std::string> answers(51);
	answers[0] = block_0;
	const double began = h.time.now();
	play(dump(head, head, answers), [&] { download(); });
	EXPECT_EQ(last_box().text, "Transmission failed!");
	EXPECT_LT(h.time.now() - began, 16) << "34953 blocks were promised";
}

TEST_F(s900_samples, a_port_that_fails_ends_the_download)
{
	transcript_midi port(h, dump(no_loop, no_loop, { block_0 }));
	h.on_pump = [&] { port.faults.input = port.inputs_opened == 3 ? 5 : 0; };
	download();
	EXPECT_EQ(last_box().text, "Transmission failed!");
	h.on_pump = nullptr;
	h.boxes.clear();

	transcript_midi closed(h, catalogue + enable + request + "< " + no_loop);
	h.on_pump = [&] { closed.faults.open_input = closed.inputs_opened == 2 ? 5 : 0; };
	EXPECT_THROW(download(), process_ended);
	EXPECT_TRUE(last_box().caption.starts_with("ERROR (akais900_samples.cpp:"))
		<< last_box().caption;
}

TEST_F(s900_samples, a_disk_that_fails_keeps_the_old_file)
{
	h.put_content(spool("KICK.wav"), hex("4F 4C 44"));
	for (const bool open : { true, false }) {
		transcript_midi port(
			h, dump(no_loop, no_loop, { block_0, block_1, "F7" }) + disable);
		h.boxes.clear();
		h.disk.open_for_writing = open ? 13 : 0;
		current_run_mode.diagnostics = false; // the log is on that disk
		if (!open)
			h.disk.space_left = 110;
		download();
		h.disk = {};
		ASSERT_EQ(h.boxes.size(), 1u);
		EXPECT_EQ(h.boxes[0],
			(shown_box{ format_text(open ? "Cannot open [%s] for writing (Sample "
						       "download failed)"
						     : "Cannot write to [%s] (Sample download "
						       "failed)",
					    spool("KICK.wav").c_str()),
				"ERROR" }));
		EXPECT_EQ(kick(), hex("4F 4C 44"));
		EXPECT_TRUE(port.finished());
	}
}

// ---- Upload ------------------------------------------------------------------------------

const std::string up_enable = "> F0 47 01 05 40 00 00 F7\n",
		  up_disable = "> F0 47 01 06 40 00 00 F7\n",
		  up_ask = "> F0 47 01 04 40 02 00 F7\n";
// Of 61 words (3D, in pairs 3D 00); the name's checksum is 6F^..., so 22 here.
const std::string header_begin = "F0 47 00 0C 40 02 00 ", header_rest = " 00*12 3D 00*11 ";

std::string header(const std::string &name, const std::string &pitch, const std::string &sum)
{
	return header_begin + name + header_rest + pitch + " 00*72 " + sum + " F7";
}

TEST_F(s900_samples, a_file_goes_up_as_one_message_and_its_name_behind_it)
{
	// The word behind the last one, 7F 7C, goes up with it: 3F^7C^7F^7C is 40.
	local("ki+ck-2#.xyz", wav_without_loop + hex("FF 07"));
	const std::string up_head = "F0 7E 01 02 00 0C 24 68 03 3D 00 00 ";
	const double began = h.time.now();
	play(up_enable + "> " + up_head + "3D 00 00 3D 00 00 01\n> " + block_0 +
			"\n> 01 3F 7C 7F 7C 00*116 40\n> F7\n" + up_disable + up_ask +
			// 44 3D and 60 (3C0: 40 01 03 00) come to 44^3D^42 = 3B
			"< " + header("44 00*19", "40 01 03 00", "3B") + "\n> " +
			// K I . C K . 2 # . X: 4B^49^2E^43^4B^2E^32^23^2E^58 is 6D, 3D and 42 make 12
			header("4B 00 49 00 2E 00 43 00 4B 00 2E 00 32 00 23 00 2E 00 58 00",
				"40 01 03 00", "12"),
		[&] { upload("ki+ck-2#.xyz"); });
	EXPECT_TRUE(h.boxes.empty()) << last_box().text;
	EXPECT_EQ(h.progress.caption, "Uploading [ki+ck-2#.xyz]...");
	EXPECT_EQ(h.progress.range, 2);
	EXPECT_FALSE(h.progress.visible);
	EXPECT_FALSE(the_line.failing);
	// 400 + 2 * 300 + 300 + 500 + 1000 ms, and 417 bytes of wire.
	EXPECT_NEAR(h.time.now() - began, 2.934, 0.01);
	for (const char *line :
		{ "[D] Requesting Enable of COMMON SYSEX (8 Bytes) [F0 47 01 05 40 00 00 "
		  "F7]",
			"[D] Chunk-Header: [smpl] (36 Bytes)",
			"[D] Data-Offset found (102) (122 Bytes), PITCH: 60, Sample-Words: 61",
			"[D] Requesting Sample-Upload (19 Bytes) [F0 7E 01 02 00 0C 24 68 03 3D 00 "
			"00 3D "
			"00 00 3D 00 00 01] 2 Blocks",
			"[D] Requesting Sample-End (1 Bytes) [F7] after 2 Blocks",
			"[D] Rewritten Basename: [KI.CK.2#.XYZ]",
			"[D] Requesting Sample-Information for Sample: 2 SYSEX (8 Bytes) [F0 47 01 "
			"04 40 "
			"02 00 F7] DOWNLOAD FINISHED [KI.CK.2#.XYZ]" })
		EXPECT_TRUE(h.logged(line)) << line;
}

TEST_F(s900_samples, files_that_cannot_go_up_are_refused_before_anything_is_sent)
{
	const auto with = [](std::size_t at, const std::string &bytes) {
		std::vector<u8> file = wav_without_loop;
		const std::vector<u8> b = hex(bytes);
		std::copy(b.begin(), b.end(), file.begin() + at);
		return file;
	};
	std::vector<u8> huge = with(98, "00 00 40 00");
	huge.resize(102 + (1 << 22));
	const std::string format =
		"Invalid Sample-Format (%d Bits/Sample) %d Channels, %d Hz "
		"Sampling-Rate. Must be 12 Bits, Rate <= 16000 Hz and Channels = 1";
	const struct {
		std::vector<u8> file;
		std::string words;
	} rows[] = {
		{ with(34, "10"), format_text(format.c_str(), 16, 1, 6400) },
		{ with(22, "02"), format_text(format.c_str(), 12, 2, 6400) },
		{ with(24, "81 3E"), format_text(format.c_str(), 12, 1, 16001) },
		{ with(24, "00 00"), format_text(format.c_str(), 12, 1, 0) },
		{ with(24, "BE 00"), format_text(format.c_str(), 12, 1, 190) },
		{ with(98, "00"), "The file [" + spool("X.wav") +
					  "] has 0 sample words. An upload takes 1 "
					  "to 2097151 of them, and the sampler as many as it has "
					  "memory for." },
		{ huge, "The file [" + spool("X.wav") +
				"] has 2097152 sample words. An upload takes 1 to "
				"2097151 of them, and the sampler as many as it has memory for." },
		{ with(50, "73 6D 70 78"), "Invalid Sample: [X] GETTING SAMPLE-INFO FAILED!" },
	};
	for (const auto &it : rows) {
		local("X", it.file);
		play("", [&] { upload("X"); });
		EXPECT_EQ(last_box(), (shown_box{ it.words, "ERROR" }));
	}
	play("", [&] { upload("Y"); });
	EXPECT_EQ(last_box(), (shown_box{ "Invalid Sample: [Y]", "ERROR" }));
	dev().sample[0].number = 2; // the place of the next sample, by the count of the list
	local("X", wav_without_loop);
	h.answers = { false };
	play("", [&] { upload("X"); });
	EXPECT_EQ(
		last_box(), (shown_box{ "The sampler has the sample [SNARE] in the place that [X] "
					"would go to. Overwrite it?",
				    "WARNING" }));
}

TEST_F(s900_samples, a_header_that_does_not_come_whole_is_not_written_back)
{
	local("X", wav_without_loop);
	const std::string sent =
		up_enable + "> F0 7E 01 02 00 0C 24 68 03 3D 00 00 3D 00 00 3D 00 00 01\n> " +
		block_0 + "\n> 01 3F 7C 40 00 00*116 03\n> F7\n" + up_disable + up_ask;
	const std::string good = header("58 00*19", "40 01 03 00", "27");
	h.answers = { false };
	for (const std::string &answer : { std::string("nothing"), good.substr(0, good.size() - 3),
		     header_begin + "00*40 F7", header("58 00*19", "40 01 03 00", "26") }) {
		play(sent + "< " + answer, [&] { upload("X"); });
		ASSERT_EQ(h.boxes.size(), 1u) << answer;
		EXPECT_EQ(h.boxes[0].caption, "WARNING");
		EXPECT_FALSE(h.progress.visible);
	}
	EXPECT_EQ(last_box().text,
		"The sampler's header of [X] came damaged: its checksum is wrong. "
		"Write the name into it nevertheless?");
}

// ---- With a machine ----------------------------------------------------------------------

class s900_dumps : public s900_samples
{
protected:
	s900_dumps()
	{
		std::vector<std::int16_t> words(130);
		for (std::size_t i = 0; i < words.size(); i++)
			words[i] = static_cast<std::int16_t>(i * 31 % 4096 - 2048);
		machine.add_sample("KICK", 16000, words);
		s900_machine::set_loop(machine.samples[0], 20, 120);
		machine.omni = true;
		host.midi = &virtual_midi;
		port = plug_midi(h.time, machine.on_wire(h.time), "virtual");
		selected_midi_in_interface = selected_midi_out_interface = 0;
		read();
	}
	~s900_dumps()
	{
		h.on_pump = nullptr;
		close_midi_output();
		unplug_all_midi();
	}
	void read()
	{
		akai_s900_getstatus(1, 0, &dev());
		akai_s900_getsamplelist(1, 0, &dev());
	}
	// Stop is pressed so many seconds after now.
	void stop_in(double seconds)
	{
		const double when = h.time.now() + seconds;
		h.on_pump = [this, when] {
			if (h.time.now() >= when && h.progress.visible)
				stop_progress();
		};
	}
	s900_machine machine{ s900_model::s900 };
	int port;
};

TEST_F(s900_dumps, go_down_and_up_again_and_are_the_same)
{
	const s900_sample before = machine.samples[0];
	download();
	EXPECT_EQ(last_box().text, "Download completed successfully!");
	EXPECT_FALSE(machine.common_exclusive);
	local("KICK 2", kick().value());
	upload("KICK 2");
	ASSERT_EQ(machine.samples.size(), 2u);
	EXPECT_EQ(machine.samples[1].words, before.words);
	s900_machine::put_name(machine.samples[1].header, 0, "KICK");
	EXPECT_EQ(machine.samples[1].header, before.header) << "rate, pitch, loop and mode";
	// Over the one of its name, when it is told apart by nothing but a word.
	machine.samples[0].words[5] = 0;
	read();
	h.boxes.clear();
	local("KICK", kick().value());
	upload("KICK");
	EXPECT_EQ(machine.samples[0].words, before.words);
	machine.omni = false;
	upload("KICK");
	ASSERT_EQ(h.boxes.size(), 1u) << "uploads go to the channel above";
	EXPECT_NE(last_box().text.find("the sampler does not answer"), std::string::npos);
	EXPECT_TRUE(the_line.failing);
}

TEST_F(s900_dumps, come_down_whole_or_not_at_all_whatever_is_lost)
{
	download();
	std::vector<u8> good = kick().value();
	wave_write_32bit(&good[94], 0); // the time of the day
	for (int kind = 0; kind <= static_cast<int>(wire_fault_kind::overrun); kind++)
		for (int exchange = 1; exchange <= 9; exchange++) {
			host.files->remove(spool("KICK.wav").c_str());
			read();
			h.boxes.clear();
			port_wire(port).set_fault({ .kind = static_cast<wire_fault_kind>(kind),
				.exchange = exchange });
			download();
			port_wire(port).clear_faults();
			h.time.run_until(h.time.now() + 2);
			auto file = kick();
			if (file)
				wave_write_32bit(&(*file)[94], 0);
			EXPECT_TRUE(!file || file == good) << kind << " " << exchange;
			EXPECT_EQ(last_box().caption == "INFO", file.has_value())
				<< kind << " " << exchange;
		}
	download();
	EXPECT_EQ(last_box().text, "Download completed successfully!");
	port_wire(port).set_fault({ .kind = wire_fault_kind::unplugged, .exchange = 5 });
	download();
	EXPECT_EQ(last_box().text, "Transmission failed!");
}

TEST_F(s900_dumps, are_stopped_at_every_moment_with_the_machine_left_whole)
{
	const std::vector<std::int16_t> before = machine.samples[0].words;
	for (double at = 0; at < 6; at += 0.1) {
		h.boxes.clear();
		host.files->remove(spool("KICK.wav").c_str());
		stop_in(at);
		download();
		EXPECT_EQ(kick().has_value(), last_box().caption == "INFO") << at;
		EXPECT_TRUE(!machine.common_exclusive && !h.progress.visible) << at;
	}
	EXPECT_TRUE(h.logged("[I] Download of [KICK] stopped, nothing was saved"));
	local("KICK", kick().value());
	std::vector<std::int16_t> other(130, 7);
	for (const bool replaces : { true, false })
		for (double at = 0; at < 4; at += 0.1) {
			machine.samples.resize(1);
			machine.samples[0].words = other;
			s900_machine::put_name(
				machine.samples[0].header, 0, replaces ? "KICK" : "TOM");
			read();
			h.boxes.clear();
			stop_in(at);
			upload("KICK");
			const std::size_t place = replaces ? 0 : 1;
			const bool done = machine.samples.size() > place &&
					  machine.samples[place].words == before;
			EXPECT_EQ(done, h.boxes.empty()) << at;
			EXPECT_TRUE(done || !replaces || machine.samples[0].words == other);
			EXPECT_TRUE(!machine.common_exclusive && !h.progress.visible) << at;
			EXPECT_TRUE(done || last_box().caption == (replaces ? "WARNING" : "INFO"));
		}
}

TEST_F(s900_dumps, go_up_whole_or_the_user_is_told)
{
	download();
	local("NEW", kick().value());
	for (const auto kind : { wire_fault_kind::silent, wire_fault_kind::garbled,
		     wire_fault_kind::refused, wire_fault_kind::truncated })
		for (int exchange = 1; exchange <= 12; exchange++) {
			machine.samples.resize(1);
			h.boxes.clear();
			h.answers = { false };
			port_wire(port).set_fault({ .kind = kind, .exchange = exchange });
			upload("NEW");
			port_wire(port).clear_faults();
			h.time.run_until(h.time.now() + 2);
			const bool whole = machine.samples.size() == 2 &&
					   machine.samples[1].words == machine.samples[0].words;
			const bool named = whole && s900_machine::get_name(
							    machine.samples[1].header, 0) == "NEW";
			EXPECT_TRUE(whole || !h.boxes.empty())
				<< static_cast<int>(kind) << " " << exchange;
			EXPECT_TRUE(named || !h.boxes.empty() || exchange > 8)
				<< static_cast<int>(kind) << " " << exchange;
			ask_box("WARNING", " "); // uses up the answer
		}
	port_wire(port).set_fault({ .kind = wire_fault_kind::unplugged, .exchange = 3 });
	h.boxes.clear();
	upload("NEW");
	EXPECT_TRUE(last_box().text.starts_with("The upload broke off.")) << last_box().text;
	EXPECT_LE(h.boxes.size(), 3u);
}

// A bridge to the wire of the machine.
midi_wire *far_wire;
int far_reader;
const net_service far_net = {
	.connect = [](const char *, unsigned short, int *handle) { return *handle = 0; },
	.connected = [](int) { return 1; },
	.send = [](int, const unsigned char *bytes, std::size_t count) -> long {
		far_wire->send({ bytes, count });
		return static_cast<long>(count);
	},
	.receive = [](int, unsigned char *bytes, std::size_t capacity) -> long {
		return static_cast<long>(far_wire->take(far_reader, bytes, capacity));
	},
	.close = [](int) {},
	.on_arrival = [](void (*)()) {},
	.error_text = [](int) { return "The far end is gone."; },
};

TEST_F(s900_dumps, cross_the_bridge_as_well)
{
	far_wire = &port_wire(port);
	far_reader = far_wire->attach();
	host.net = &far_net;
	switch_on_tcp();
	download();
	EXPECT_EQ(last_box().text, "Download completed successfully!");
	h.boxes.clear();
	local("NEW", kick().value());
	upload("NEW");
	EXPECT_TRUE(h.boxes.empty()) << last_box().text;
	ASSERT_EQ(machine.samples.size(), 2u);
	EXPECT_EQ(machine.samples[1].words, machine.samples[0].words);
	static net_service broken = far_net;
	broken.receive = [](int, unsigned char *bytes, std::size_t capacity) -> long {
		return the_test_host->progress.visible ? -32 : far_net.receive(0, bytes, capacity);
	};
	host.net = &broken;
	download();
	EXPECT_EQ(last_box().text, "Transmission failed!");
	EXPECT_EQ(the_line.why, "The far end is gone.");
	switch_off_tcp();
}

} // namespace
} // namespace velmor
