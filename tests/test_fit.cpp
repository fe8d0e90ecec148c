// test_fit.cpp - what makes a sample fit the loaded sampler, its name there, and how fast it goes

#include "src/controls.h"
#include "src/velmor_fit.h"
#include "src/velmor_transfer.h"
#include "src/velmor_window.h"
#include "src/waveqx.h"
#include "tests/support/fake_model.h"
#include "tests/support/wave_files.h"

namespace velmor
{
namespace
{

using strings = std::vector<std::string>;

struct fits : host_test {
	fake_model model{ h };
	std::string spool = h.config + "\\sample\\";

	fits() { forget_commands(); }
	~fits() override { forget_commands(); }
	void open(const strings &names)
	{
		for (const std::string &name : names)
			if (!h.content(spool + name + ".wav"))
				h.put_content(
					spool + name + ".wav", wave_bytes(44100, 1, { 1, 2 }));
		velmor_command(window_main, main_samples);
		h.boxes.clear();
		choose(0);
	}
	void choose(int place)
	{
		host.ui->select(window_samples, samples_local_list, place);
		velmor_selection(window_samples, samples_local_list);
	}
	void press(int control) { EXPECT_TRUE(velmor_command(window_samples, control)); }
};

TEST_F(fits, a_name_is_what_the_sampler_makes_of_it)
{
	const struct {
		i32 model;
		const char *name, *called;
	} rows[] = { { model_s2000, "Grand Piano: C3", "GRAND PIANO." },
		{ model_s2000, "a+b-c#d_\xC3\xA9", "A+B-C#D..." },
		{ model_s2000, "TWELVE SIGN X", "TWELVE SIGN" },
		{ model_s900, "a+b-c#d.e fg", "A.B.C#D.E" },
		{ model_z4, "Grand: C3 ", "Grand: C3 " } };
	for (const auto &row : rows)
		EXPECT_EQ(name_on_sampler(*get_sampler(row.model), row.name), row.called);
	EXPECT_TRUE(may_send_names(strings{ "A", "B", "AB" }));
	h.answers = { false };
	EXPECT_FALSE(may_send_names(strings{ "a", "b", "A", "b" }));
	EXPECT_EQ(h.boxes.at(0).text, "Names that would stand more than once on the sampler: 'A', "
				      "'B'\nUpload them all the same?");
}

// Over the sample of its very name it goes as ever.
TEST_F(fits, a_second_sample_of_one_name_is_asked_about)
{
	model.names = { "KICK", "TOM" };
	open({ "KICK", "Tom" });
	press(samples_upload);
	choose(1);
	h.answers = { false };
	press(samples_upload);
	ASSERT_EQ(h.boxes.size(), 2u);
	EXPECT_EQ(h.boxes[1],
		(shown_box{ "The sampler has a sample called 'TOM' already, and would call 'Tom' "
			    "the same: it would hold two of that name.\nUpload it all the same?",
			"WARNING" }));
	EXPECT_EQ(
		std::count(model.calls.begin(), model.calls.end(), "uploadsample " + spool + "Tom"),
		0);
	press(samples_upload);
	EXPECT_EQ(
		std::count(model.calls.begin(), model.calls.end(), "uploadsample " + spool + "Tom"),
		1);
}

TEST_F(fits, a_sample_is_changed_as_far_as_the_model_needs_it)
{
	const struct {
		i32 model;
		u32 rate;
		unsigned bits, channels, frame;
		u64 frames;
		bool fits, possible;
		int to_bits, to_rate, to_channels;
		const char *words;
	} rows[] = {
		{ model_s2000, 44100, 16, 1, 2, 2097151, true, false, 0, 0, 0, "" },
		{ model_s2000, 44100, 16, 1, 2, 2097152, false, false, 0, 0, 0,
			"It is 47.55 s long, and a transfer to Akai S2000 carries 47.55 s at 44100 "
			"Hz." },
		{ model_s2000, 32000, 24, 1, 3, 9, false, true, 16, 0, 0, "16 bit, 32000 Hz" },
		{ model_s2000, 48000, 16, 2, 4, 9, false, true, 0, 44100, 1,
			"16 bit, 44100 Hz, both channels mixed to one" },
		{ model_s2000, 96000, 16, 1, 2, 4000000, false, true, 0, 44100, 0,
			"16 bit, 44100 Hz" }, // 1837500 then
		{ model_s2000, 44100, 16, 4, 8, 9, false, false, 0, 0, 1,
			"It cannot be converted here." },
		{ model_s900, 16000, 12, 1, 2, 9, true, false, 0, 0, 0, "" },
		{ model_s900, 44100, 16, 1, 2, 9, false, true, 12, 16000, 0, "12 bit, 16000 Hz" },
		{ model_z4, 96000, 24, 2, 6, 9, true, false, 0, 0, 0, "" },
		{ model_z4, 44100, 12, 1, 2, 9, false, true, 16, 0, 0, "16 bit, 44100 Hz" },
		{ model_z4, 192000, 16, 2, 4, 9, false, false, 0, 96000, 0,
			"Import it with 1 Channel and Create L/R files, as a conversion keeps only "
			"its left channel." },
	};
	for (const auto &row : rows) {
		const wave_shape file = { .tag = tag_pcm,
			.rate = row.rate,
			.bits = row.bits,
			.channels = row.channels,
			.frame_bytes = row.frame,
			.frames = row.frames };
		const fit_plan plan = plan_fit(*get_sampler(row.model), file);
		SCOPED_TRACE(testing::Message() << row.model << " " << row.words << plan.words);
		EXPECT_EQ(plan.fits, row.fits);
		EXPECT_EQ(plan.possible, row.possible);
		EXPECT_EQ(plan.conversion.bits, row.to_bits);
		EXPECT_EQ(plan.conversion.rate, row.to_rate);
		EXPECT_EQ(plan.conversion.channels, row.to_channels);
		EXPECT_EQ(plan.words, row.words);
	}
}

std::vector<int> chosen_places;

// Two are changed, one fits, one cannot be; one Undo puts both back.
TEST_F(fits, one_press_fits_all_chosen_samples_and_one_undo_puts_them_back)
{
	static ui_service ui;
	ui = *host.ui;
	ui.selections = [](int, int) { return chosen_places; };
	const auto wave = [](const format &f) {
		return riff(fmt(f) + chunk("fact", word(2)) + chunk("smpl", bytes(36)) +
			    chunk("data", bytes(2 * f.frame)));
	};
	h.put_content(spool + "B.wav", wave(stereo_16));
	h.put_content(spool + "C.wav", wave({ 4, 16, 8, 44100 }));
	h.put_content(spool + "D.wav", wave({ 1, 24, 3, 48000 }));
	open({ "A", "B", "C", "D" });
	press(samples_fit);
	EXPECT_EQ((h.texts[{ window_samples, status_outcome }]),
		"The sample fits Akai S3000/S3000XL as it is.");
	host.ui = &ui;
	chosen_places = { 0, 1, 2, 3 };
	h.on_pump = [] { stop_progress(); };
	press(samples_fit);
	h.on_pump = nullptr;
	EXPECT_EQ((h.texts[{ window_samples, status_outcome }]),
		"0 converted, 1 fitted already, of 4 samples.");
	EXPECT_FALSE(can_undo());
	choose(1);
	EXPECT_EQ((h.texts[{ window_samples, samples_preview_upload }]),
		"3 of 4 refused: A file of 16 bit and 2 channels would arrive as 0.00 s of "
		"silence.\nImport it with 1 Channel and Mix Channels, or Create L/R files for "
		"both. Or "
		"press "
		"Fit to the Sampler.");
	static std::vector<int> chosen_again;
	ui.select_several = [](int, int, std::span<const int> places) {
		chosen_again.assign(places.begin(), places.end());
	};
	const auto before = h.content(spool + "B.wav"), deep = h.content(spool + "D.wav");
	press(samples_fit);
	EXPECT_EQ(h.boxes,
		(std::vector<shown_box>{ { "'C': It cannot be converted here.", "WARNING" } }));
	EXPECT_EQ((h.texts[{ window_samples, status_outcome }]),
		"2 converted, 1 fitted already, of 4 samples.");
	EXPECT_EQ(chosen_again, chosen_places) << "the next press uploads them";
	for (const char *name : { "B", "D" }) {
		const auto file = h.content(spool + name + ".wav");
		ASSERT_TRUE(file);
		EXPECT_EQ(bytes(file->begin() + 22, file->begin() + 28), hex("01 00 44 AC 00 00"));
		EXPECT_EQ((*file)[34], 16);
	}
	EXPECT_EQ(undo_last().line, "Put 2 samples back as before.");
	EXPECT_EQ(h.content(spool + "B.wav"), before);
	EXPECT_EQ(h.content(spool + "D.wav"), deep);
	EXPECT_FALSE(can_undo());
}

// 100000 bytes of sound in 100, 111, ... seconds; an upload carries them twice.
TEST_F(fits, how_fast_a_connection_is_is_what_the_last_transfers_took)
{
	h.put_content(spool + "LONG.wav", bytes(100144));
	const auto transfer = [&](transfer_way way, int seconds) {
		const transfer_clock clock(way);
		host.clock->sleep_ms(1000 * seconds);
		clock.arrived(spool + "LONG.wav");
	};
	EXPECT_EQ(connection_text(), "Not measured yet\non this connection");
	EXPECT_FALSE(rate_of(model.row, transfer_way::up).measured);
	transfer(transfer_way::down, 125);
	EXPECT_EQ(connection_text(), "0.8 kB/s down\non this connection");
	transfer(transfer_way::up, 10000); // once slow
	for (const int seconds : { 100, 111, 125, 400, 0 })
		transfer(transfer_way::up, seconds);
	EXPECT_EQ(h.settings["rate up 1007 no MIDI port"], "20 2000 1802 1600 500");
	EXPECT_EQ(connection_text(), "1.6 kB/s up, 0.8 kB/s down\non this connection");
	transfer(transfer_way::up, 125);
	set_exact_uploads(true);
	transfer(transfer_way::up, 50);
	EXPECT_EQ(h.settings["rate up 1007 no MIDI port"], "1802 1600 500 1600 2000");
	EXPECT_EQ(rate_of(*get_sampler(model_s2000), transfer_way::up).measured, false);
	for (const char *odd : { "", "0 5", "x", "-3", "99999999999999999999" }) {
		h.settings["rate up 1007 no MIDI port"] = odd;
		EXPECT_FALSE(rate_of(model.row, transfer_way::up).measured) << odd;
	}
}

} // namespace
} // namespace velmor
