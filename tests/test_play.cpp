// test_play.cpp - a sample through the computer: what is heard of it, for which sampler, and how
// the sound is handed on
//
// Files are laid out by hand, as docs/wave-files.md has them.

#include "platform/qtaudio/feed.h"
#include "src/velmor_wave_edit.h"
#include "tests/support/fake_model.h"
#include "tests/support/wave_files.h"

namespace velmor
{

namespace
{

using words = std::vector<std::int16_t>;

struct loudspeaker {
	words heard;
	played_sound last;
	int plays = 0;
	std::int64_t position = -1;
	std::string refusal;
};
loudspeaker box;

constexpr audio_service test_audio = {
	.play =
		[](const played_sound &sound) {
			box.heard.assign(sound.words.begin(), sound.words.end());
			box.last = sound;
			box.plays++;
			box.position = box.refusal.empty() ? 0 : -1;
			return box.refusal;
		},
	.stop = [] { box.position = -1; },
	.position = [] { return box.position; },
};

struct playing_samples : host_test {
	const std::string path = h.config + "\\sample\\A.wav";

	playing_samples()
	{
		box = {};
		host.audio = &test_audio;
		forget_commands();
		h.use_sampler(model_s3000, 0);
		open_window(window_samples);
	}
	~playing_samples() override { forget_commands(); }
	void show(const format &f, const bytes &data, const bytes &loop = {})
	{
		h.put_content(path,
			riff(fmt(f, word(0, 2)) +
				chunk("smpl", bytes(28) + word(loop.size() / 24) + word(0) + loop) +
				chunk("data", data)));
		wave_shown("", 0);
		wave_shown(path, data.size() / f.frame);
	}
	std::string press()
	{
		h.boxes.clear();
		velmor_command(window_samples, samples_play);
		return h.boxes.empty() ? h.texts[{ window_samples, status_outcome }]
				       : h.boxes.back().text;
	}
	bool pressed() { return h.checks[{ window_samples, samples_play }]; }
	std::string reason() { return h.reasons[{ window_samples, samples_play }]; }
};

TEST_F(playing_samples, are_heard_as_the_loaded_sampler_will_hold_them)
{
	const format slow_12 = { 1, 12, 2, 16000 }, fast_12 = { 1, 12, 2, 16001 },
		     stereo_16 = { 2, 16, 4, 44100 }, mono_24 = { 1, 24, 3, 44100 },
		     stereo_24 = { 2, 24, 6, 96000 };
	const struct {
		i32 model;
		format f;
		const char *data;
		words heard;
		u32 rate, channels;
		const char *line;
	} rows[] = {
		{ model_s3000, mono_16, "37 12 00 80", { 0x1237, -0x8000 }, 44100, 1,
			"as Akai S3000/S3000XL will hold it: 16 bit, 44100 Hz, mono." },
		{ model_s1000, stereo_16, "64 00 CA 00 FD FF FC FF", { 151, -4 }, 44100, 1,
			"as a conversion for Akai S1000, S1100 would make it: 16 bit, 44100 Hz, "
			"mono." },
		{ model_s3000, mono_24, "56 34 12 00 00 80", { 0x1234, -0x8000 }, 44100, 1,
			"as a conversion for Akai S3000/S3000XL would make it: 16 bit, 44100 Hz, "
			"mono." },
		{ model_s900, slow_12, "FF 07 00 F8", { 0x7FF0, -0x8000 }, 40000, 1,
			"as Akai S900/950 will hold it: 12 bit, 40000 Hz, mono." },
		{ model_s900, mono_16, "37 12 FF FF", { 0x1230, -16 }, 44100, 1,
			"as a conversion for Akai S900/950 would make it: 12 bit, 44100 Hz, "
			"mono." },
		{ model_s900, fast_12, "01 00", { 16 }, 16001, 1,
			"as a conversion for Akai S900/950 would make it: 12 bit, 16001 Hz, "
			"mono." },
		{ model_s5000, stereo_16, "64 00 CA 00", { 100, 202 }, 44100, 2,
			"as Akai S5000/6000 will hold it: 16 bit, 44100 Hz, stereo." },
		{ model_z4, stereo_24, "56 34 12 FF FF FF", { 0x1234, -1 }, 96000, 2,
			"as Akai Z4/Z8 will hold it: 24 bit, 96000 Hz, stereo." },
	};
	for (const auto &row : rows) {
		h.use_sampler(row.model, 0);
		show(row.f, hex(row.data));
		EXPECT_EQ(press(), std::string("Playing 'A' ") + row.line);
		EXPECT_EQ(box.heard, row.heard) << row.line;
		EXPECT_EQ(box.last.sample_rate, row.rate) << row.line;
		EXPECT_EQ(box.last.channels, row.channels) << row.line;
		EXPECT_EQ(box.last.loop_end, 0u) << row.line;
	}
}

TEST_F(playing_samples, stop_by_the_button_at_their_end_with_another_sample_and_at_an_edit)
{
	const bytes data = hex("00 00 01 00 02 00 03 00");
	const bytes loop = bytes(8) + word(1) + word(3) + bytes(8);
	show(mono_16, data, loop);
	EXPECT_EQ(reason(), "");
	EXPECT_EQ(press(), "Playing 'A' as Akai S3000/S3000XL will hold it: 16 bit, 44100 Hz, "
			   "mono, looped.");
	EXPECT_EQ(box.last.loop_start, 1u);
	EXPECT_EQ(box.last.loop_end, 3u);
	EXPECT_TRUE(pressed());
	ASSERT_EQ(h.timers.size(), 1u);
	const auto tick = h.timers.begin()->second.tick;
	box.position = 2;
	tick();
	EXPECT_EQ(h.play_position, (std::pair<std::int64_t, int>(2, 44100)));
	wave_shown(path, 4);
	EXPECT_TRUE(is_playing()) << "it is shown again, and is the same";

	const std::pair<const char *, std::function<void()>> ends[] = {
		{ "button", [&] { press(); } },
		{ "end", [&] { box.position = -1, tick(); } },
		{ "another", [&] { wave_shown(path + "x", 4); } },
		{ "edit", [&] { velmor_command(window_samples, wave_no_loop); } },
	};
	for (const auto &[what, end] : ends) {
		show(mono_16, data, loop);
		if (!is_playing())
			press();
		ASSERT_TRUE(is_playing()) << what;
		end();
		EXPECT_FALSE(is_playing() || pressed()) << what;
		EXPECT_EQ(box.position, -1) << what;
		EXPECT_EQ(h.play_position.first, -1) << what;
		EXPECT_TRUE(h.timers.empty()) << what;
	}
}

TEST_F(playing_samples, say_once_that_the_computer_has_no_sound)
{
	box.refusal = "There is none.";
	show(mono_16, hex("00 00"));
	EXPECT_EQ(press(), "There is none.");
	EXPECT_EQ(h.boxes.size(), 1u);
	EXPECT_FALSE(is_playing() || pressed());
	EXPECT_EQ(reason(), "There is none.");
	show(mono_16, hex("00 00 01 00"));
	EXPECT_EQ(reason(), "There is none.") << "also of another sample";
	press();
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_EQ(box.plays, 1);
	// What cannot be read is no matter of the computer's sound.
	forget_playing();
	show({ 1, 8, 1, 44100 }, hex("80"));
	EXPECT_NE(press().find("12, 16 or 24 bits"), std::string::npos);
	EXPECT_EQ(reason(), "");
	wave_shown("", 0);
	EXPECT_EQ(reason(), "Choose a sample on this computer first");
}

TEST(sound_feeds, go_round_a_loop_without_a_gap_and_end_without_one)
{
	const words stereo = { 0, 100, 1, 101, 2, 102, 3, 103, 4, 104 };
	const struct {
		u64 loop_start, loop_end;
		std::vector<int> frames; // as they are heard
		bool ends;
	} rows[] = {
		{ 2, 4, { 0, 1, 2, 3, 2, 3, 2, 3, 2, 3, 2, 3, 2 }, false },
		{ 0, 5, { 0, 1, 2, 3, 4, 0, 1, 2, 3, 4, 0, 1 }, false },
		{ 4, 5, { 0, 1, 2, 3, 4, 4, 4, 4, 4, 4, 4 }, false },
		{ 0, 0, { 0, 1, 2, 3, 4 }, true },
		{ 2, 6, { 0, 1, 2, 3, 4 }, true }, // behind the sound
		{ 3, 3, { 0, 1, 2, 3, 4 }, true },
	};
	for (const auto &row : rows)
		for (const std::size_t portion : { 1u, 3u, 7u, 64u }) {
			sound_feed feed({ stereo, 44100, 2, row.loop_start, row.loop_end });
			words all;
			std::size_t given = portion;
			while (given == portion && all.size() < row.frames.size() * 2) {
				words part(portion * 2, 77);
				given = feed.read(part.data(), portion);
				all.insert(all.end(), part.begin(),
					part.begin() + static_cast<std::ptrdiff_t>(given * 2));
			}
			ASSERT_GE(all.size(), row.frames.size() * 2) << portion;
			EXPECT_EQ(all.size() == row.frames.size() * 2 && given < portion,
				row.ends && given < portion);
			for (std::size_t i = 0; i < row.frames.size(); i++) {
				EXPECT_EQ(all[2 * i], row.frames[i]) << i << " of " << portion;
				EXPECT_EQ(all[2 * i + 1], row.frames[i] + 100);
				EXPECT_EQ(feed.heard(i), row.frames[i]);
			}
			EXPECT_EQ(feed.heard(row.frames.size()) < 0, row.ends);
			words rest(2);
			EXPECT_EQ(feed.read(rest.data(), 1), row.ends ? 0u : 1u);
		}
}

} // namespace

} // namespace velmor
