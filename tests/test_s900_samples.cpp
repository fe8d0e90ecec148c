// test_s900_samples.cpp - the dump of an S900, both ways, byte by byte and with a virtual machine
//
// 61 words are two blocks. FF 07 in a file, 2047, is 7F 7C on the wire; 00 F8, -2048, is 00 00;
// 0 is 40 00. 62500 ns are 24 68 03 and 16000 words a second, which a file calls 6400 (1900).

#include "src/waveqx.h"
#include "tests/support/s900_talk.h"

namespace velmor
{
namespace
{

std::string times(int count, const std::string &text)
{
	return count > 0 ? text + " " + times(count - 1, text) : "";
}

const std::string head_begin = "F0 7E 01 04 00 0C 24 68 03 3D 00 00 ",
		  no_loop = head_begin + "3D 00 00 3D 00 00 01",
		  loop = head_begin + "0A 00 00 32 00 00 00";
// 2047, -2048, 1 and 57 times 0; and -1 (3F 7C).
const std::string block_0 = "00 7F 7C 00 00 40 04 " + times(57, "40 00") + "07",
		  block_1 = "01 3F 7C 00*118 43", go_on = "> F0 7E 7F F7\n";

// A WAV file of 6400 Hz, 156250 ns (0002625A), pitch 60: its length, that of smpl, and the loop.
std::vector<u8> wav(const std::string &length, const std::string &smpl, const std::string &loops)
{
	return hex(
		"52 49 46 46 " + length +
		" 00 00 00 57 41 56 45 66 6D 74 20 12 00 00 00 01 00 "
		"01 00 00 19 00 00 00 00 00 00 02 00 0C 00 00 00 66 61 63 74 04 00 00 00 3D 00 00 "
		"00 73 6D 70 6C " +
		smpl +
		" 00 00 00 47 00 00 01 5E 00 00 00 5A 62 02 00 3C 00 00 "
		"00 00*12 " +
		loops + " 64 61 74 61 7A 00 00 00 FF 07 00 F8 01 00 00*114 FF FF");
}
const std::vector<u8> wav_without_loop = wav("D8", "24", "00*8"), old_file = hex("4F 4C 44");

// The catalogue has KICK with number 4 and no sample 0.
const std::string request = "> F0 7E 00 04 00 F7\n",
		  catalogue = "> F0 47 00 03 40 00 00 F7\n< F0 47 00 0B 40 00 00 53 04 4B 49 43 4B "
			      "20*6 F7\n> F0 47 00 04 40 00 00 F7\n",
		  first_request = catalogue + "> F0 47 00 05 40 00 00 F7\n" + request + "< ",
		  disable = "> F0 47 00 06 40 00 00 F7\n";

std::string dump(const std::string &first, const std::string &second,
	const std::vector<std::string> &answers)
{
	std::string script = first_request + first + "\n" + request + "< " + second + "\n";
	for (const std::string &answer : answers)
		script += go_on + (answer.empty() ? "" : "< " + answer + "\n");
	return script;
}

// What both kinds of tests do with files.
template <typename base> class with_files : public base
{
protected:
	using base::h;
	std::string spool(const std::string &name) { return h.config + "\\sample\\" + name; }
	auto kick() { return h.content(spool("KICK.wav")); }
	void no_kick() { host.files->remove(spool("KICK.wav").c_str()); }
	void download() { akai_s900_download_sample(1, 0, "KICK"); }
	void local(const std::string &name, const std::vector<u8> &file)
	{
		h.put_content(spool(name + ".wav"), file);
		load_local_samples(nullptr);
	}
	void upload(const std::string &name) { akai_s900_upload_sample(spool(name).c_str()); }
};

class s900_samples : public with_files<s900_talk>
{
protected:
	s900_samples()
	{
		dev().samples = 2;
		copy_text(dev().sample[0].name, "SNARE");
		copy_text(dev().sample[1].name, "KICK");
		dev().sample[1].number = 4;
		dev().sample[1].original_pitch = 60;
	}
	// Seconds of a download.
	double play_download(const std::string &script)
	{
		const double began = h.time.now();
		play(script, [&] { download(); });
		return h.time.now() - began;
	}
};

// ---- Download ----------------------------------------------------------------------------

TEST_F(s900_samples, a_dump_becomes_a_file_of_12_bits)
{
	// The head has no end, so three seconds and a part are waited; then 3 * 200 ms.
	EXPECT_NEAR(play_download(dump(no_loop, no_loop, { block_0, block_1, "F7" }) + disable),
		4.3, 0.6);
	EXPECT_EQ(kick(), wav_without_loop);
	expect_box("Download completed successfully!", "INFO");
	EXPECT_FALSE(h.progress.visible || the_line.failing);
	EXPECT_EQ(h.progress.caption, "Downloading [KICK]... RESENDING REQUEST...");
	EXPECT_EQ(h.progress.range, 3);
	expect_logged(R"([I] Request for downloading [KICK]
[D] Requested Sample has number: 4, Pitch: 0x3C
[D] Requesting SYSTEM-DUMP of SAMPLE (6 Bytes) [F0 7E 00 04 00 F7]
[D] REQUEST-SYSTEM-DUMP ANSWER --> (19 Bytes) [F0 7E 01 04 00 0C 24 68 03 3D 00 00 3D 00 00 3D 00 00 01]
[D] DOWNLOAD (KICK) 6400 Hz, Sample-Words: 61, Bits: 12, Loop-start: 61, Loop-end: 61, Loop-Mode: 1, BLOCKS: 2/2
[D] Received 122/520 MIDI-Bytes [0x00000000]
[D] --> All data transmitted! (61/61 Sample words) --> Saving to [..
[D] Received 264 Bytes [0xF7]
[D] The Header: [F0 7E 01 04 00 0C 24 68 03 3D 00 00 3D 00 00 3D 00 00 01] (Complete: 264 Bytes)
[D] The Block(1): [01 3F 7C 00 ..
[D] Requesting Disable of COMMON SYSEX (8 Bytes) [F0 47 00 06 40 00 00 F7] DOWNLOAD FINISHED
)");
	// A loop of six words is one; the cue point is the time of the day.
	for (const auto &[end, size] :
		{ std::pair{ "0F", 224u }, { "09", 224u }, { "10", 248u } }) {
		std::string head = loop;
		head.replace(head.find("32 "), 2, end);
		play_download(dump(head, head, { block_0, block_1, "F7" }) + disable);
		EXPECT_EQ(kick()->size(), size) << end;
	}
	std::vector<u8> file = kick().value();
	const double now = host.clock->time_of_day();
	EXPECT_NEAR(wave_read_32bit(&file[94]), now, 3);
	wave_write_32bit(&file[94], 0);
	EXPECT_EQ(
		file, wav("F0", "3C", "01 00 00 00 18 00 00 00 00*8 0A 00 00 00 10 00 00 00 00*8"));
}

TEST_F(s900_samples, heads_of_18_to_20_bytes_other_traffic_and_a_late_end_are_borne)
{
	const std::string sensing = "FE F0 7E 7F F7 90 3C " + no_loop + " FE FE";
	const struct {
		std::string first, second, end;
		double seconds;
	} rows[] = {
		{ no_loop + " 00", no_loop + " 00", "F7 F0 00 F7", -3.4 }, // nothing more fits
		{ no_loop.substr(0, 53), no_loop.substr(0, 53), "F7", 0 },
		{ no_loop, sensing, "F7", 0 }, { no_loop, no_loop, "@9 F7", 9 },
		{ no_loop, no_loop, "", 10 }, // every block is there and right
	};
	for (const auto &it : rows) {
		EXPECT_NEAR(play_download(dump(it.first, it.second,
						  { block_0 + " F8", block_1, it.end }) +
					  disable),
			it.seconds + 4.3, 0.8);
		EXPECT_EQ(kick(), wav_without_loop) << it.second << it.end;
		no_kick();
	}
}

TEST_F(s900_samples, a_dump_that_is_not_right_is_no_file)
{
	h.put_content(spool("KICK.wav"), old_file);
	const std::string empty = "F0 7E 01 04 00 0C 24 68 03 00*9 01", other = head_begin + "00*7",
			  endless = "F0 7E 01 04 00 0C 24 68 03 7F*3 00*6 01";
	std::vector<std::string> dying(51);
	dying[0] = block_0;
	const struct {
		std::string script, words, caption;
		double seconds;
	} rows[] = {
		{ first_request + "nothing", "Sample not found/download failed!", "ERROR", 4 },
		{ first_request + no_loop.substr(0, 50), "Sample not found/download failed!",
			"ERROR", 4 },
		{ first_request + "F0 47 00 0C 40 00 00 00*121 F7",
			"Sample not found/download failed!", "ERROR", 0.2 },
		{ dump(no_loop, no_loop, { block_0, "", "F7" }), "", "", 4.3 },
		{ dump(no_loop, no_loop, { block_0, "01 3F 7C 00*118", "F7" }), "", "", 4.3 },
		{ dump(no_loop, no_loop, { block_0, "01 00*50", "F7" }), "", "", 4.3 },
		{ dump(no_loop, other, { block_0, block_1, "F7" }), "", "", 4.3 },
		{ dump(no_loop, no_loop, { block_0, "F0 " + block_1, "F7" }), "", "", 14.3 },
		{ dump(no_loop, "00", { "", "", "" }), "", "", 14.3 },
		{ dump(empty, empty, { "F7" }), "", "", 4 },
		{ dump(endless, endless, dying), "", "", 14.3 }, // 34953 blocks were promised
		{ dump(no_loop, no_loop, { block_0, "01 3F 7C 00*118 42", "F7" }), "", "", 4.3 },
	};
	for (const auto &it : rows) {
		EXPECT_NEAR(play_download(it.script), it.seconds, 0.9) << it.script;
		expect_box(it.words.empty() ? "Transmission failed!" : it.words,
			it.words.empty() ? "FATAL" : it.caption.c_str());
		EXPECT_EQ(kick(), old_file) << it.script;
		EXPECT_TRUE(the_line.failing && h.progress.visible == it.words.empty())
			<< it.script;
	}
	expect_logged("[F] Transmission error (XOR: 0x43 instead of 0x42) IDX: 121\n");
	play(catalogue, [&] { akai_s900_download_sample(1, 0, "kick"); });
	expect_box("Sample not found!", "ERROR");
	// Without an input to listen to, the program ends.
	transcript_midi closed(h, first_request + no_loop);
	h.on_pump = [&] { closed.faults.open_input = closed.inputs_opened == 2 ? 5 : 0; };
	EXPECT_THROW(download(), process_ended);
	EXPECT_TRUE(h.boxes.back().caption.starts_with("ERROR (akais900_samples.cpp:"));
}

TEST_F(s900_samples, a_disk_that_fails_keeps_the_old_file)
{
	h.put_content(spool("KICK.wav"), old_file);
	for (const bool opens : { false, true }) {
		play(dump(no_loop, no_loop, { block_0, block_1, "F7" }) + disable, [&] {
			h.disk.open_for_writing = opens ? 0 : 13;
			h.disk.space_left = 110;
			current_run_mode.diagnostics = false; // the log is on that disk
			download();
			h.disk = {};
		});
		expect_box((opens ? "Cannot write to [" : "Cannot open [") + spool("KICK.wav") +
				   (opens ? "]" : "] for writing") + " (Sample download failed)",
			"ERROR");
		EXPECT_EQ(kick(), old_file);
	}
}

// ---- Upload ------------------------------------------------------------------------------

// On the channel above, to the number behind the list.
const std::string up_begin =
			  "> F0 47 01 05 40 00 00 F7\n> F0 7E 01 02 00 0C 24 68 03 3D 00 00 3D 00 "
			  "00 3D 00 00 01\n> " +
			  block_0 + "\n> ",
		  up_end = "\n> F7\n> F0 47 01 06 40 00 00 F7\n> F0 47 01 04 40 02 00 F7\n< ",
		  header_begin = "F0 47 00 0C 40 02 00 ";

// A header of 61 words (3D 00) and pitch 60 (3C0: 40 01 03 00), which come to 7F.
std::string header(const std::string &name, const std::string &sum)
{
	return header_begin + name + " 00*12 3D 00*11 40 01 03 00 00*72 " + sum + " F7";
}

TEST_F(s900_samples, a_file_goes_up_as_one_message_and_its_name_behind_it)
{
	// The word behind the last one, 7F 7C, goes up with it: 3F^7C^7F^7C is 40.
	std::vector<u8> file = wav_without_loop;
	file.insert(file.end(), { 0xFF, 0x07 });
	local("ki+ck-2#.xyz", file);
	const double began = h.time.now();
	// 44 makes 3B; KI.CK.2#.X comes to 6D and makes 12.
	play(up_begin + "01 3F 7C 7F 7C 00*116 40" + up_end + header("44 00*19", "3B") + "\n> " +
			header("4B 00 49 00 2E 00 43 00 4B 00 2E 00 32 00 23 00 2E 00 58 00", "12"),
		[&] { upload("ki+ck-2#.xyz"); });
	// 400 + 2 * 300 + 300 + 500 + 1000 ms, and 417 bytes of wire.
	EXPECT_NEAR(h.time.now() - began, 2.934, 0.01);
	EXPECT_TRUE(h.boxes.empty()) << last_box();
	EXPECT_EQ(h.progress.caption, "Uploading [ki+ck-2#.xyz]...");
	EXPECT_EQ(h.progress.range, 2);
	EXPECT_FALSE(h.progress.visible || the_line.failing);
	expect_logged(R"([I] Request for uploading [..
[D] Request for uploading [ki+ck-2#.xyz] --> Index on Sampler: 2, File: [..
[D] Chunk-Header: [smpl] (36 Bytes)
[D] Data-Offset found (102) (122 Bytes), PITCH: 60, Sample-Words: 61
[D] Requesting Enable of COMMON SYSEX (8 Bytes) [F0 47 01 05 40 00 00 F7]
[D] --> (0 Bytes) []
[D] Requesting Sample-Upload (19 Bytes) [F0 7E 01 02 00 0C 24 68 03 3D 00 00 3D 00 00 3D 00 00 01] 2 Blocks
[D] Requesting Sample-Block (122 Bytes) [01 3F 7C 7F 7C 00 ..
[D] Requesting Sample-End (1 Bytes) [F7] after 2 Blocks
[D] Requesting Disable of COMMON SYSEX (8 Bytes) [F0 47 01 06 40 00 00 F7] DOWNLOAD FINISHED
[D] Rewritten Basename: [KI.CK.2#.XYZ]
[D] Requesting Sample-Information for Sample: 2 SYSEX (8 Bytes) [F0 47 01 04 40 02 00 F7] DOWNLOAD FINISHED [KI.CK.2#.XYZ]
[D] --> [F0 47 00 0C 40 02 00 44 ..
[D] Requesting Sample-Information update Sample: 2 SYSEX (129 Bytes) [F0 47 00 0C 40 02 00 4B ..
)");
	// A header that is not whole, or damaged and declined, does not go back.
	local("X", wav_without_loop);
	h.answers = { false };
	const std::string good = header("58 00*19", "27");
	for (const std::string &answer : { std::string("nothing"), good.substr(0, good.size() - 3),
		     header_begin + "00*40 F7", header("58 00*19", "26") }) {
		play(up_begin + "01 3F 7C 40 00 00*116 03" + up_end + answer, [&] { upload("X"); });
		ASSERT_EQ(h.boxes.size(), 1u) << answer;
		EXPECT_EQ(h.boxes[0].caption, "WARNING");
		EXPECT_FALSE(h.progress.visible);
	}
	EXPECT_EQ(last_box(),
		"The sampler's header of [X] came damaged: its checksum is wrong. Write the "
		"name into it nevertheless?");
}

TEST_F(s900_samples, files_that_cannot_go_up_are_refused_before_anything_is_sent)
{
	const auto with = [](std::size_t at, const std::string &text) {
		std::vector<u8> file = wav_without_loop, bytes = hex(text);
		std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<long>(at));
		return file;
	};
	const auto format = [](int bits, int channels, int rate) {
		return format_text(
			"Invalid Sample-Format (%d Bits/Sample) %d Channels, %d Hz "
			"Sampling-Rate. Must be 12 Bits, Rate <= 16000 Hz and Channels = 1",
			bits, channels, rate);
	};
	const auto count = [&](const char *words) {
		return "The file [" + spool("X.wav") + "] has " + words +
		       " sample words. An upload takes 1 "
		       "to 2097151 of them, and the sampler as many as it has memory for.";
	};
	std::vector<u8> huge = with(98, "00 00 40 00");
	huge.resize(102 + (1 << 22));
	const std::pair<std::vector<u8>, std::string> rows[] = {
		{ with(34, "10"), format(16, 1, 6400) },
		{ with(22, "02"), format(12, 2, 6400) },
		{ with(24, "81 3E"), format(12, 1, 16001) },
		{ with(24, "00 00"), format(12, 1, 0) },
		{ with(24, "BE 00"), format(12, 1, 190) },
		{ with(98, "00"), count("0") },
		{ huge, count("2097152") },
		{ with(50, "73 6D 70 78"), "Invalid Sample: [X] GETTING SAMPLE-INFO FAILED!" },
	};
	for (const auto &[file, words] : rows) {
		local("X", file);
		play("", [&] { upload("X"); });
		expect_box(words, "ERROR");
	}
	play("", [&] { upload("Y"); });
	expect_box("Invalid Sample: [Y]", "ERROR");
	dev().sample[0].number = 2; // the place of the next sample, by the count of the list
	local("X", wav_without_loop);
	h.answers = { false };
	play("", [&] { upload("X"); });
	expect_box("The sampler has the sample [SNARE] in the place that [X] would go to. "
		   "Overwrite it?",
		"WARNING");
}

// ---- With a machine ----------------------------------------------------------------------

class s900_dumps : public with_files<s900_plugged>
{
protected:
	s900_dumps()
	{
		for (int i = 0; i < 130; i++)
			words.push_back(static_cast<std::int16_t>(i * 31 % 4096 - 2048));
		machine.add_sample("KICK", 16000, words);
		s900_machine::set_loop(machine.samples[0], 20, 120);
		read_lists();
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
	bool machine_has(std::size_t place)
	{
		return machine.samples.size() > place && machine.samples[place].words == words;
	}
	std::vector<std::int16_t> words;
};

TEST_F(s900_dumps, go_down_and_up_again_and_are_the_same)
{
	const machine::bytes before = machine.samples[0].header;
	download();
	expect_box("Download completed successfully!", "INFO");
	EXPECT_FALSE(machine.common_exclusive);
	local("KICK 2", kick().value());
	upload("KICK 2");
	ASSERT_TRUE(machine_has(1));
	s900_machine::put_name(machine.samples[1].header, 0, "KICK");
	EXPECT_EQ(machine.samples[1].header, before) << "rate, pitch, loop and mode";
	// A loop that ends behind the words would be refused with them: it is left out.
	std::vector<u8> file = kick().value();
	file[107] = 0xFF;
	local("KICK 3", file);
	read_lists();
	upload("KICK 3");
	ASSERT_TRUE(machine_has(2));
	EXPECT_EQ(machine.samples[2].header[26], 'O');
	machine.samples[0].words[5] = 0;
	read_lists();
	h.boxes.clear();
	local("KICK", kick().value());
	upload("KICK");
	EXPECT_TRUE(machine_has(0)) << "over the one of its name";
	// It is left as it was by a dump that it does not hear, and of which it has other words.
	machine.omni = false;
	upload("KICK");
	ASSERT_EQ(h.boxes.size(), 1u) << "uploads go to the channel above";
	EXPECT_NE(last_box().find("the sampler does not answer"), std::string::npos);
	machine.omni = true;
	machine.word_room = 100;
	machine.samples[0].words.resize(60), machine.samples[0].header[16] = 60;
	upload("KICK");
	EXPECT_EQ(last_box(),
		"The sampler holds 60 words of [KICK], and 130 were sent. It did not take the "
		"whole dump: upload the sample again.");
}

TEST_F(s900_dumps, come_down_whole_or_not_at_all_whatever_is_lost)
{
	download();
	std::vector<u8> good = kick().value();
	wave_write_32bit(&good[94], 0); // the time of the day
	for (int kind = 0; kind <= static_cast<int>(wire_fault_kind::overrun); kind++)
		for (int exchange = 1; exchange <= 9; exchange++) {
			no_kick();
			read_lists();
			with_fault({ .kind = static_cast<wire_fault_kind>(kind),
					   .exchange = exchange },
				[&] { download(); });
			auto file = kick();
			if (file)
				wave_write_32bit(&(*file)[94], 0);
			EXPECT_TRUE(!file || file == good) << kind << " " << exchange;
			EXPECT_EQ(!h.boxes.empty() && h.boxes.back().caption == "INFO",
				file.has_value())
				<< kind << " " << exchange;
		}
	read_lists();
	port_wire(port).set_fault({ .kind = wire_fault_kind::unplugged, .exchange = 5 });
	download();
	EXPECT_EQ(last_box(), "Transmission failed!");
}

TEST_F(s900_dumps, are_stopped_at_every_moment_with_the_machine_left_whole)
{
	for (double at = 0; at < 6; at += 0.1) {
		h.boxes.clear();
		no_kick();
		stop_in(at);
		download();
		EXPECT_EQ(kick().has_value(), !h.boxes.empty()) << at;
		EXPECT_FALSE(kick() && at < 4) << "Stop was pressed";
		EXPECT_TRUE(!machine.common_exclusive && !h.progress.visible) << at;
	}
	expect_logged("[I] Download of [KICK] stopped, nothing was saved\n");
	local("KICK", kick().value());
	const std::vector<std::int16_t> other(130, 7);
	for (const bool replaces : { true, false })
		for (double at = 0; at < 4; at += 0.1) {
			machine.samples.resize(1);
			machine.samples[0].words = other;
			s900_machine::put_name(
				machine.samples[0].header, 0, replaces ? "KICK" : "TOM");
			read_lists();
			h.boxes.clear();
			stop_in(at);
			upload("KICK");
			const bool done = machine_has(replaces ? 0 : 1);
			EXPECT_EQ(done, h.boxes.empty()) << at;
			EXPECT_FALSE(done && at < 0.95) << "Stop was pressed before the last block";
			EXPECT_TRUE(done || machine.samples[0].words == other);
			EXPECT_TRUE(!machine.common_exclusive && !h.progress.visible) << at;
			EXPECT_TRUE(
				done || h.boxes.back().caption == (replaces ? "WARNING" : "INFO"));
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
			h.answers = { false };
			with_fault({ .kind = kind, .exchange = exchange }, [&] { upload("NEW"); });
			EXPECT_TRUE(machine_has(1) || !h.boxes.empty()) << exchange;
			const bool named =
				machine_has(1) &&
				s900_machine::get_name(machine.samples[1].header, 0) == "NEW";
			// Nobody can know that the very last message was lost.
			EXPECT_TRUE(named || !h.boxes.empty() || exchange > 8) << exchange;
		}
	port_wire(port).set_fault({ .kind = wire_fault_kind::unplugged, .exchange = 3 });
	h.boxes.clear();
	upload("NEW");
	EXPECT_TRUE(last_box().starts_with("The upload broke off.")) << last_box();
	EXPECT_LE(h.boxes.size(), 3u);
}

// A bridge to the wire of the machine.
midi_wire *far_wire;
int far_reader;
bool far_breaks; // while a bar is up
const net_service far_net = {
	.connect = [](const char *, unsigned short, int *handle) { return *handle = 0; },
	.connected = [](int) { return 1; },
	.send = [](int, const unsigned char *bytes, std::size_t count) -> long {
		far_wire->send({ bytes, count });
		return static_cast<long>(count);
	},
	.receive = [](int, unsigned char *bytes, std::size_t capacity) -> long {
		return far_breaks && the_test_host->progress.visible
			       ? -32
			       : static_cast<long>(far_wire->take(far_reader, bytes, capacity));
	},
	.close = [](int) {},
	.on_arrival = [](void (*)()) {},
	.error_text = [](int) { return "The far end is gone."; },
};

TEST_F(s900_dumps, cross_the_bridge_as_well)
{
	far_wire = &port_wire(port);
	far_reader = far_wire->attach();
	far_breaks = false;
	host.net = &far_net;
	switch_on_tcp();
	download();
	expect_box("Download completed successfully!", "INFO");
	h.boxes.clear();
	local("NEW", kick().value());
	upload("NEW");
	EXPECT_TRUE(h.boxes.empty()) << last_box();
	EXPECT_TRUE(machine_has(1));
	// What comes while more is sent is not thrown away.
	listen_to_tcp();
	send_tcp(hex("F0 47 00 03 40 00 00 F7"));
	h.time.run_until(h.time.now() + 1);
	send_tcp(hex("F0 7E 7F F7"));
	u8 came[100];
	EXPECT_EQ(take_tcp(came, sizeof came), 32) << "a catalogue of two";
	stop_listening_to_tcp();
	far_breaks = true;
	download();
	expect_box("Transmission failed!", "FATAL");
	EXPECT_EQ(the_line.why, "The far end is gone.");
	switch_off_tcp();
}

} // namespace
} // namespace velmor
