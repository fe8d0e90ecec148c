// test_wave_edit.cpp - edits of a sample on this computer: the bytes of its file, and the way back
//
// Files are laid out by hand, as docs/wave-files.md has them.

#include "src/velmor_peaks.h"
#include "src/velmor_wave_edit.h"
#include "tests/support/fake_model.h"
#include "tests/support/wave_files.h"
#include <algorithm>
#include <random>

namespace velmor
{

namespace
{

bytes words_of(const std::vector<int> &values)
{
	bytes out;
	for (const int value : values)
		out = out + word(static_cast<u32>(value), 2);
	return out;
}

// What a sampler's sample is on this computer: 144 bytes, then its words.
bytes downloaded(const std::vector<int> &values, u32 loop_start, u32 loop_end, u32 start, u32 end)
{
	const bytes own = hex("00 00 3C 01 02 00 01 00 00 00") + word(start) + word(end);
	const bytes smpl = hex("47 00 00 01 5E 00 00 00 93 58 00 00 3C 00 00 00 00*12") + word(1) +
			   word(18) + text("loop") + word(0) + word(loop_start) + word(loop_end) +
			   bytes(8) + own;
	return riff(fmt(mono_16, word(0, 2)) + chunk("fact", word(values.size())) +
		    chunk("smpl", smpl) + chunk("data", words_of(values)));
}

// An imported one without a loop, and with a chunk behind its sound.
bytes imported(const format &f, const bytes &data, const bytes &loop = {})
{
	const bytes smpl = hex("47 00 00 01 5E 00 00 00 93 58 00 00 3C 00*15") +
			   word(loop.size() / 24) + word(0) + loop;
	return riff(fmt(f, word(0, 2)) + chunk("fact", word(data.size() / f.frame)) +
		    chunk("smpl", smpl) + chunk("data", data) + chunk("odd ", hex("01 02 03")));
}

struct wave_edits : host_test {
	fake_model model{ h };
	const std::string path = h.config + "\\sample\\A.wav";
	wave_sound sound;

	wave_edits() { forget_commands(); }
	~wave_edits() override { forget_commands(); }
	void read(const bytes &file)
	{
		h.put_content(path, file);
		ASSERT_EQ(read_wave_sound(path, &sound), "");
	}
	void open(const bytes &file)
	{
		h.put_content(path, file);
		velmor_command(window_main, main_samples);
		host.ui->select(window_samples, samples_local_list, 0);
		velmor_selection(window_samples, samples_local_list);
		h.boxes.clear();
	}
	std::string press(int control)
	{
		h.boxes.clear();
		velmor_command(window_samples, control);
		return h.boxes.empty() ? h.texts[{ window_samples, status_outcome }]
				       : h.boxes.back().text;
	}
	bytes file() { return h.content(path).value_or(bytes{}); }
};

const std::vector<int> ten = { 0, 10, -20, 30, -40, 50, -60, 70, -80, 90 };

TEST_F(wave_edits, a_trim_moves_the_loop_and_the_samplers_positions)
{
	struct {
		wave_part kept;
		u32 loop_start, loop_end, start, end; // afterwards; 3, 7, 1 and 10 before
	} const rows[] = {
		{ { 2, 8 }, 1, 5, 0, 6 }, { { 5, 10 }, 0, 2, 0, 5 }, { { 0, 6 }, 3, 6, 1, 6 },
		{ { 7, 9 }, 0, 0, 0, 2 }, // the loop is gone
	};
	for (const auto &row : rows) {
		read(downloaded(ten, 3, 7, 1, 10));
		ASSERT_EQ(sound.file.size(), 164u);
		EXPECT_EQ(trim_wave(&sound, row.kept), "");
		const auto first = ten.begin();
		EXPECT_EQ(sound.file, downloaded({ first + static_cast<int>(row.kept.first),
							 first + static_cast<int>(row.kept.end) },
					      row.loop_start, row.loop_end, row.start, row.end));
	}
}

TEST_F(wave_edits, a_loop_goes_into_the_record_that_is_there_or_into_a_new_one)
{
	read(downloaded(ten, 3, 7, 0, 10));
	EXPECT_EQ(set_wave_loop(&sound, { 1, 10 }), "");
	EXPECT_EQ(sound.file, downloaded(ten, 1, 10, 0, 10));
	EXPECT_EQ(set_wave_loop(&sound, { 1, 11 }), "The loop would end behind the sample.");
	EXPECT_EQ(set_wave_loop(&sound, {}), "");
	EXPECT_EQ(sound.file, downloaded(ten, 0, 0, 0, 10));

	read(imported(mono_16, words_of(ten)));
	EXPECT_EQ(set_wave_loop(&sound, { 2, 9 }), "");
	const bytes loop = bytes(8) + word(2) + word(9) + bytes(8);
	EXPECT_EQ(sound.file, imported(mono_16, words_of(ten), loop));
	EXPECT_EQ(trim_wave(&sound, { 1, 10 }), "");
	EXPECT_EQ(sound.file, imported(mono_16, words_of({ ten.begin() + 1, ten.end() }),
				      bytes(8) + word(1) + word(8) + bytes(8)));
}

TEST_F(wave_edits, values_of_every_depth_grow_and_stop_at_full_scale)
{
	struct {
		format kind;
		const char *before, *after;
		u64 cut;
	} const rows[] = {
		// Ten times as loud.
		{ mono_16, "64 00 9C FF 00 70 00 90", "E8 03 18 FC FF 7F 00 80", 2 },
		{ mono_24, "64 00 00 9C FF FF 00 00 70", "E8 03 00 18 FC FF FF FF 7F", 1 },
		{ mono_12, "14 00 EC 0F 00 07 00 09", "C8 00 38 0F FF 07 00 08", 2 },
	};
	for (const auto &row : rows) {
		read(imported(row.kind, hex(row.before)));
		u64 cut = 0;
		EXPECT_EQ(change_wave_volume(&sound, 20, &cut), "");
		EXPECT_EQ(sound.file, imported(row.kind, hex(row.after))) << row.before;
		EXPECT_EQ(cut, row.cut) << row.before;
	}
	// The right channel counts: 16384 becomes 32767, and -8192 -16383.5, away from zero.
	read(imported(stereo_16, words_of({ -8192, 16384, 0, 1 })));
	EXPECT_EQ(normalise_wave(&sound), "");
	EXPECT_EQ(sound.file, imported(stereo_16, words_of({ -16384, 32767, 0, 2 })));
	EXPECT_EQ(normalise_wave(&sound), "The sample is as loud as it can be already.");
	read(imported(mono_16, bytes(8)));
	EXPECT_EQ(normalise_wave(&sound),
		"The sample is silent, so there is nothing to make louder.");
}

TEST_F(wave_edits, the_end_of_a_loop_fades_into_what_is_in_front_of_it)
{
	const std::vector<int> before = { 7, 100, 200, 300, 5, 5, 1000, 2000, 3000, 9 };
	struct {
		u64 wanted, got;
		std::vector<int> after; // of the words 6, 7 and 8; the loop is 4 to 9
	} const rows[] = {
		{ 2, 2, { 1000, 1100, 300 } }, // half 2000 and half 200, then all of 300
		{ 1, 1, { 1000, 2000, 300 } },
		{ 99, 4, { 550, 650, 300 } }, // no more than there is in front
	};
	for (const auto &row : rows) {
		read(downloaded(before, 4, 9, 0, 10));
		u64 frames = row.wanted;
		EXPECT_EQ(fade_wave_seam(&sound, &frames), "");
		EXPECT_EQ(frames, row.got);
		std::vector<int> after = before;
		std::copy(row.after.begin(), row.after.end(), after.begin() + 6);
		if (row.got == 4)
			after[5] = 6; // three quarters of 5 and one of 7, 5.5 rounded
		EXPECT_EQ(sound.file, downloaded(after, 4, 9, 0, 10));
	}
	u64 frames = 5;
	read(downloaded(before, 0, 9, 0, 10));
	EXPECT_NE(
		fade_wave_seam(&sound, &frames).find("begins with the sample"), std::string::npos);
	read(downloaded(before, 0, 0, 0, 10));
	EXPECT_NE(fade_wave_seam(&sound, &frames).find("has no loop"), std::string::npos);
}

TEST_F(wave_edits, what_is_no_sample_is_refused_and_hostile_lengths_do_no_harm)
{
	const format mono_8 = { 1, 8, 1, 44100 };
	for (const bytes &file : { bytes(10), imported(mono_8, bytes(8)),
		     imported({ 2, 16, 3, 44100 }, bytes(9)), imported(mono_16, {}) }) {
		h.put_content(path, file);
		EXPECT_NE(read_wave_sound(path, &sound), "");
	}
	EXPECT_NE(read_wave_sound(path + "x", &sound).find("cannot be read"), std::string::npos);
	// A billion loops are told, and there is room for one.
	const auto lying = [](bytes file) {
		std::copy_n(word(1000000000).begin(), 4, file.begin() + 86);
		return file;
	};
	read(lying(downloaded(ten, 3, 7, 0, 10)));
	EXPECT_EQ(trim_wave(&sound, { 1, 9 }), "");
	EXPECT_EQ(sound.file, lying(downloaded({ ten.begin() + 1, ten.begin() + 9 }, 2, 6, 0, 8)));
	EXPECT_NE(trim_wave(&sound, { 1, 9 }), "");
	EXPECT_NE(trim_wave(&sound, { 8, 8 }), "");
}

TEST_F(wave_edits, nothing_chosen_is_a_reason)
{
	const auto reason = [&] { return h.reasons[{ window_samples, wave_trim }]; };
	wave_shown("", 0);
	EXPECT_EQ(reason(), "Choose a sample on this computer first");
	wave_shown(path, 4);
	EXPECT_EQ(reason(), "");
}

TEST_F(wave_edits, an_edit_is_undone_and_the_earlier_file_kept)
{
	const bytes before = downloaded(ten, 3, 7, 0, 10);
	open(before);
	EXPECT_EQ(press(wave_trim).find("Start and end are those of the sample."), 0u);
	set_wave_marks({ 2, 8 });
	EXPECT_EQ(press(wave_trim), "'A': what was outside start and end was cut.");
	const bytes trimmed = file();
	EXPECT_EQ(trimmed.size(), 156u);
	EXPECT_EQ(h.content(h.config + "\\deleted\\undo\\A.wav"), before);
	EXPECT_EQ(wave_marks(), (wave_part{ 0, 6 }));
	h.texts[{ window_samples, wave_gain_decibels }] = " +6,0206 ";
	EXPECT_EQ(press(wave_gain), "'A': 6.0206 dB louder.");
	EXPECT_EQ(file()[144], 0xD8) << "-20 became -40";
	EXPECT_EQ(press(status_undo), "'A' is as it was before.");
	EXPECT_EQ(file(), trimmed);
	press(status_undo);
	EXPECT_EQ(file(), before);
	EXPECT_FALSE(can_undo());
	for (const char *typed : { "", "0", "61", "nan", "6 dB", "1e9" }) {
		h.texts[{ window_samples, wave_gain_decibels }] = typed;
		EXPECT_EQ(press(wave_gain).find("Type how many decibels"), 0u) << typed;
	}
	EXPECT_EQ(file(), before);
	h.texts[{ window_samples, wave_fade_milliseconds }] = "0.1";
	const std::pair<int, const char *> said[] = {
		{ wave_fade, "the last 0.1 ms of its loop lead into its beginning." },
		{ wave_normalise, "its loudest value is full scale." },
		{ wave_no_loop, "it does not loop any more." },
		{ wave_loop_here, "it loops from start to end." },
	};
	for (const auto &[control, words] : said)
		EXPECT_EQ(press(control), std::string("'A': ") + words);
	EXPECT_EQ(press(wave_loop_here), "The loop stands there already.");
	EXPECT_EQ(read_wave_sound(path, &sound), "");
	EXPECT_EQ(sound.loop(), (wave_part{ 0, 10 }));
	EXPECT_EQ(sound.value(9, 0), 32767);
}

TEST_F(wave_edits, a_full_disk_leaves_the_sample_as_it_was)
{
	const bytes before = downloaded(ten, 3, 7, 0, 10);
	open(before);
	for (const u64 space : { u64{ 100 }, u64{ 164 + 100 } }) {
		h.disk.space_left = space;
		EXPECT_NE(press(wave_no_loop).find("full"), std::string::npos) << space;
		h.disk = {};
		EXPECT_EQ(file(), before);
		EXPECT_EQ(h.temporary_files(), 0);
		EXPECT_FALSE(can_undo());
	}
	EXPECT_EQ(names_in(h.config + "\\deleted\\undo"), std::vector<std::string>{});
	// Of many edits the last 30 can be undone, and no more copies are kept.
	for (u64 i = 0; i < 31; i++)
		EXPECT_TRUE(move_wave_loop({ 4 + i % 2, 8 }));
	EXPECT_EQ(names_in(h.config + "\\deleted\\undo").size(), 30u);
	for (int i = 0; i < 31; i++)
		press(status_undo);
	EXPECT_EQ(file(), downloaded(ten, 4, 8, 0, 10));
}

TEST(wave_crossings, the_nearest_one_that_comes_up_within_reach)
{
	const std::vector<std::int16_t> words = { 5, -1, -2, 0, 3, -4, -5, 6, 7, 8, 9 };
	const u64 wanted[] = { 3, 3, 3, 3, 3, 3, 7, 7, 7, 7, 7, 7, 12 };
	for (u64 at = 0; at < std::size(wanted); at++)
		EXPECT_EQ(nearest_crossing(words, at, 4), wanted[at]) << at;
	EXPECT_EQ(nearest_crossing(words, 0, 2), 0u);
}

TEST(wave_peaks, are_those_of_the_words_while_the_pyramid_grows)
{
	std::mt19937 random(7);
	std::vector<std::int16_t> words(10007);
	for (std::int16_t &w : words)
		w = static_cast<std::int16_t>(random());
	peak_pyramid peaks;
	peaks.set_words(words);
	u64 known = 0;
	do {
		for (int i = 0; i < 300; i++) {
			const u64 end =
				1 + random() % (peaks.complete() ? words.size() : known + 1);
			const u64 first = random() % end;
			const auto [low, high] = std::minmax_element(
				words.begin() + static_cast<std::ptrdiff_t>(first),
				words.begin() + static_cast<std::ptrdiff_t>(end));
			ASSERT_EQ(peaks.range(first, end), (peak{ *low, *high }));
		}
		known += 1600;
	} while (!peaks.build(1600) || known < 14000);
	EXPECT_EQ(peaks.range(10006, 20000), (peak{ words[10006], words[10006] }));
}

} // namespace

} // namespace velmor
