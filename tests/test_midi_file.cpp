// test_midi_file.cpp - reading Standard MIDI Files: built ones, real ones, hostile ones

#include "src/controls.h"
#include "src/velmor_midi.h"
#include "tests/support/midi_files.h"
#include "tests/support/midi_model.h"
#include <fstream>

namespace velmor
{

class midi_file : public host_test
{
protected:
	std::string path = h.config + "\\song.mid";

	int load(const std::vector<u8> &file)
	{
		h.put_content(path, file);
		return open_midi_file(window_midi_files, path.c_str());
	}
	static const _midi_track &track(int number = 0)
	{
		return current_midi_file.track[static_cast<std::size_t>(number)];
	}
	static std::string events(const _midi_track &track)
	{
		std::string text;
		for (const _midi_event &e : track.event) {
			const std::span<const u8> data = e.bytes().bytes;
			text += midi_model::text_of({ e.absolute_time, e.delta_time, e.meta_type,
				e.meta_sub_type, { data.begin(), data.end() } });
		}
		return text;
	}
	// Program and model must say the same of any file.
	void expect_as_told(const std::vector<u8> &file)
	{
		const std::optional<midi_model::song> song = midi_model::read(file);
		ASSERT_EQ(load(file), song.has_value());
		EXPECT_EQ(have_midi_file, song.has_value());
		const std::size_t tracks = song ? song->tracks.size() : 0;
		ASSERT_EQ(current_midi_file.track.size(), tracks);
		ASSERT_EQ(current_midi_file.ntrks, static_cast<int>(tracks));
		for (std::size_t i = 0; i < tracks; i++)
			expect_same(current_midi_file.track[i], song->tracks[i]);
	}
	static void expect_same(const _midi_track &t, const midi_model::track &told)
	{
		std::string text;
		for (const midi_model::event &e : told.events)
			text += midi_model::text_of(e);
		EXPECT_EQ(events(t), text);
		EXPECT_EQ(t.events, static_cast<int>(told.events.size()));
		EXPECT_EQ(t.takt_len, told.bar);
		EXPECT_EQ(t.takt_zaehler, told.numerator);
		EXPECT_EQ(t.takt_nenner, told.denominator);
	}
};

// ---- Events -------------------------------------------------------------------------------

// clang-format off
static const struct {
	const char *name;
	int division;
	const char *bytes, *events; // time+delta, meta type/length byte, data
} told[] = {
	{ "96 parts are ten ticks each", 96, "60 90 3C 40 83 60 80 3C 00",
		"960+960 [90 3C 40]\n5760+4800 [80 3C 00]\n" },
	{ "480 are two", 480, "83 60 90 3C 40 01 80 3C 00", "960+960 [90 3C 40]\n962+2 [80 3C 00]\n" },
	{ "a division that does not divide the grid is rounded down", 500, "0A C0 05", "10+10 [C0 05]\n" },
	{ "1024 collapses to nothing", 1024, "60 D0 05 60 C1 06", "0+0 [D0 05]\n0+0 [C1 06]\n" },
	{ "so does a division of none", 0, "60 C0 05", "0+0 [C0 05]\n" },
	{ "SMPTE frames are a plain number", 0xE728, "60 C0 05", "0+0 [C0 05]\n" },
	{ "every family has its length", 960,
		"00 80 01 02 00 90 03 04 00 A0 05 06 00 B0 07 08 00 C0 09 00 D0 0A 00 E0 0B 0C",
		"0+0 [80 01 02]\n0+0 [90 03 04]\n0+0 [A0 05 06]\n0+0 [B0 07 08]\n0+0 [C0 09]\n0+0 [D0 0A]\n0+0 [E0 0B 0C]\n" },
	{ "running status gets the last length, and no status", 960, "00 90 3C 40 01 3E 40 02 40 00 C1 05 03 06 07 00",
		"0+0 [90 3C 40]\n1+1 [3E 40 02]\n65+64 [00 C1 05]\n68+3 [06 07 00]\n" },
	{ "nothing came before it", 960, "05 3C 40", "5+5 []\n65+60 []\n129+64 []\n" },
	{ "an exclusive message loses its status and counts a byte more", 960, "00 F0 03 43 12 F7 00 C0 01",
		"0+0 [43 12 F7 00]\n0+0 [C0 01]\n" },
	{ "one that brings its own keeps both", 960, "00 F0 04 F0 43 12 F7", "0+0 [F0 F0 43 12 F7]\n" },
	{ "in an escape the second pushes the last byte out", 960, "00 F7 04 F0 43 12 F7 00 F7 02 F8 F9",
		"0+0 [F0 F0 43 12]\n0+0 [F8 F9]\n" },
	{ "empty system events", 960, "00 F3 00 00 F0 00 00 F1 00", "0+0 []\n0+0 [00]\n0+0 []\n" },
	{ "an end of track ends nothing", 960, "05 FF 2F 00 07 C0 01 00 FF 2F 00",
		"5+5 2F/0 []\n12+7 [C0 01]\n12+0 2F/0 []\n" },
	{ "fixed meta events keep their length byte and do not believe it", 960,
		"00 FF 20 01 03 00 FF 21 07 02 00 FF 51 03 07 A1 20 00 FF 59 02 FE 01 00 FF 2F 05",
		"0+0 20/1 [03]\n0+0 21/7 [02]\n0+0 51/3 [07 A1 20]\n0+0 59/2 [FE 01]\n0+0 2F/5 []\n" },
	{ "texts have the length that they state", 960, "00 FF 01 02 41 42 00 FF 07 00 00 FF 7F 81 00 55*128",
		nullptr },
	{ "a number of four bytes, the top bit of the last not looked at", 960, "81 80 80 81 C0 01",
		"2097153+2097153 [C0 01]\n" },
	{ "an event across the chunk's end reads what stands there", 960, "00 90 3C", "0+0 [90 3C 00]\n" },
};
// clang-format on

TEST_F(midi_file, events_are_read_as_told)
{
	for (const auto &t : told) {
		SCOPED_TRACE(t.name);
		const std::vector<u8> file = midi_song(t.division, { t.bytes });
		expect_as_told(file);
		if (t.events) {
			EXPECT_EQ(events(track()), t.events);
		}
	}
	EXPECT_TRUE(h.boxes.empty());
}

TEST_F(midi_file, a_track_begins_with_its_defaults_and_keeps_its_bar)
{
	ASSERT_TRUE(
		load(midi_song(480, { "00 FF 58 04 06 03 18 08", "", "00 FF 58 04 FF FF 00 00" })));
	EXPECT_EQ(track().takt_zaehler, 6);
	EXPECT_EQ(track().takt_nenner, 8);
	EXPECT_EQ(track().takt_len, 1440);
	const _midi_track &empty = track(1);
	EXPECT_EQ(std::vector({ empty.events, empty.takt_zaehler, empty.takt_nenner, empty.takt_len,
			  empty.volume, empty.forced_channel, empty.is_mute, empty.is_running,
			  empty.stacks }),
		std::vector({ 0, 4, 4, 1920, 127, 16, 0, 0, 0 }));
	EXPECT_EQ(track(2).takt_len, 0); // a power of two that no number holds
	EXPECT_EQ(std::string(current_midi_file.name), path);
	EXPECT_EQ(
		h.texts[std::pair(+window_midi_files, 0)], "[D] Current MIDI-File: [" + path + "]");
}

TEST_F(midi_file, every_step_is_logged)
{
	ASSERT_TRUE(load(midi_song(480, { "00 FF 03 05 50 69 61 6E 6F 00 FF 05 02 61 68 0A FF 51 "
					  "03 07 A1 20 60 90 3C 40 00 FF 2F 00" })));
	EXPECT_EQ(h.log(),
		(std::vector<std::string>{ "Chunk-Head: [MTrk] Length: 30 Bytes\r\n",
			"[D] META-DATA[0x03] --> 5 Bytes [Piano]\r\n",
			"[D] Event: 0 DELTA: 0 [50 69 61 6E 6F], META-TYPE: 3, NEW_OFFSET: 9\r\n",
			"[D] META-DATA[0x05] --> 2 Bytes [61 68]\r\n",
			"[D] Event: 1 DELTA: 0 [61 68], META-TYPE: 5, NEW_OFFSET: 15\r\n",
			"[D] TEMPO: 500000\r\n",
			"[D] Event: 2 DELTA: 20 [07 A1 20], META-TYPE: 81, NEW_OFFSET: 22\r\n",
			"[D] Event: 3 DELTA: 192 [90 3C 40], META-TYPE: -1, NEW_OFFSET: 26\r\n",
			"[D] END OF TRACK FOUND...Event: 4\r\n",
			"[D] Event: 4 DELTA: 0 [], META-TYPE: 47, NEW_OFFSET: 30\r\n",
			"[D] Current MIDI-File: [" + path +
				"], Format: 1, NTRKS: 1, DIVISION: 480 [OFFSET: 52]\r\n" }));
}

// ---- Refused ------------------------------------------------------------------------------

TEST_F(midi_file, what_is_no_midi_file_is_refused_in_words)
{
	const std::vector<u8> good = midi_song(96, { "00 C0 01" });
	const std::string invalid =
		"[D] Cannot read from MIDI-FIle: [" + path + "] Invalid header!";
	std::vector<u8> long_head = good, riff = good;
	long_head[7] = 7;
	riff[3] = 'D';
	for (const auto &file : { long_head, riff, std::vector<u8>{}, hex("4D 54 68") }) {
		ASSERT_TRUE(load(good));
		h.forget_log();
		EXPECT_FALSE(load(file));
		EXPECT_FALSE(have_midi_file); // nor is the one before it there still
		EXPECT_EQ(current_midi_file.ntrks, 0);
		expect_logged({ invalid });
	}
	std::vector<u8> other_chunk = good;
	other_chunk[17] = 'x';
	EXPECT_FALSE(load(other_chunk));
	expect_logged({ "Chunk-Head: [MTrx] Length: 3 Bytes" });
	EXPECT_FALSE(load(midi_head(2, 96) + midi_track(hex("00 C0 01"))));
	EXPECT_TRUE(h.boxes.empty());
	for (const char *bad : { "54", "00", "08", "7E" }) {
		h.boxes.clear();
		EXPECT_FALSE(load(midi_song(96, { "00 C0 01 00 FF " + std::string(bad) + " 00" })));
		EXPECT_EQ(h.boxes,
			(std::vector<shown_box>{
				{ "Bad META-Event (0x" + std::string(bad) + ")", "ERROR" } }));
	}
}

TEST_F(midi_file, what_cannot_be_had_is_logged)
{
	const std::string folder = h.config + "\\sample", none = h.config + "\\none.mid";
	EXPECT_FALSE(open_midi_file(window_midi_files, none.c_str()));
	EXPECT_FALSE(open_midi_file(window_midi_files, folder.c_str()));
	h.put_content(path, {});
	std::filesystem::resize_file(host.files->host_path(path.c_str()), max_midi_image + 1);
	EXPECT_FALSE(open_midi_file(window_midi_files, path.c_str()));
	EXPECT_EQ(
		h.log(), (std::vector<std::string>{ "[D] Cannot stat MIDI-FIle: [" + none + "]\r\n",
				 "[D] Cannot open MIDI-FIle: [" + folder + "]\r\n",
				 "[D] Cannot read from MIDI-FIle: [" + path + "]\r\n" }));
}

// ---- Hostile ------------------------------------------------------------------------------

TEST_F(midi_file, lengths_that_are_not_true_reach_no_further_than_the_file)
{
	current_run_mode.diagnostics = false;
	const std::vector<u8> events = hex("00 C0 01 00 90 3C");
	// A chunk of four thousand million bytes holds what is there.
	expect_as_told(midi_head(1, 96) + midi_track(events, 0xFFFFFFFF));
	EXPECT_EQ(track().events, 2);
	// The next one is then nowhere.
	expect_as_told(midi_head(2, 96) + midi_track(events, 0xFFFFFFF8) + midi_track(events));
	for (const char *text : { "00 FF 03 FF FF FF 7F 41", "00 F0 FF FF FF FF F0",
		     "00 F7 FF FF FF 7F", "00 FF 51", "00 F0", "00 FF", "FF FF" })
		expect_as_told(midi_song(96, { text }));
	// Texts that each claim all that follows would be a hundred million bytes.
	std::vector<u8> claims = midi_head(4000, 96);
	for (int i = 0; i < 4000; i++)
		claims = std::move(claims) + midi_track(hex("00 FF 01 FF FF FF 7F"));
	EXPECT_FALSE(load(claims));
	EXPECT_TRUE(current_midi_file.track.empty());
}

TEST_F(midi_file, files_of_nothing_are_bounded)
{
	current_run_mode.diagnostics = false;
	h.limits.calls_at_a_moment = 10000000; // each chunk is logged
	std::vector<u8> tracks = midi_head(65535, 96);
	EXPECT_FALSE(load(tracks)); // stated, and none there
	for (int i = 0; i < 65535; i++)
		tracks = std::move(tracks) + midi_track({});
	ASSERT_TRUE(load(tracks));
	EXPECT_EQ(current_midi_file.ntrks, 65535);
	EXPECT_LT(sizeof(_midi_track), 512u); // each, with nothing sounding
	// Zeros are events of no time and no data, one a byte.
	EXPECT_TRUE(load(midi_head(1, 96) + midi_track(std::vector<u8>(max_midi_events))));
	EXPECT_EQ(track().events, max_midi_events);
	EXPECT_FALSE(load(midi_head(1, 96) + midi_track(std::vector<u8>(max_midi_events + 1))));
}

// ---- Real ones ----------------------------------------------------------------------------

TEST_F(midi_file, files_of_others_are_read_as_told)
{
	const auto files = files_of_others("midi");
	if (files.empty())
		GTEST_SKIP() << "no files beside the sources";
	h.limits.disk_bytes = 1 << 30;
	current_run_mode.diagnostics = false;
	int loaded = 0;
	for (const auto &file : files) {
		SCOPED_TRACE(file.filename().string());
		std::ifstream in(file, std::ios::binary);
		const std::vector<u8> bytes(std::istreambuf_iterator<char>(in), {});
		h.boxes.clear();
		expect_as_told(bytes);
		loaded += have_midi_file;
		for (const shown_box &box : h.boxes)
			EXPECT_TRUE(box.text.starts_with("Bad META-Event (0x") &&
				    box.caption == "ERROR");
	}
	EXPECT_GT(loaded, static_cast<int>(files.size()) / 2);
}

} // namespace velmor
