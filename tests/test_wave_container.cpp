// test_wave_container.cpp - the WAV files of the spool, byte by byte

#include "platform/backends.h"
#include "src/waveqx.h"
#include "tests/support/wave_files.h"
#include <cerrno>
#include <filesystem>

namespace velmor
{

namespace
{

using strings = std::vector<std::string>;

struct wave_container : host_test {
	std::string spool = h.config + "\\sample\\";

	strings names() { return names_in(h.config + "\\sample"); }
	bytes content(const std::string &name) { return h.content(spool + name).value(); }
	void put(const std::string &name, const bytes &file) { h.put_content(spool + name, file); }
	bool read(const char *name, _sample *sample)
	{
		return create_sample_from_file((spool + name).c_str(), sample) == 1;
	}
};

constexpr format mono_22 = { 1, 16, 2, 22050 };
const bytes fmt_22 = fmt(mono_22), fact_9 = chunk("fact", word(9));
const bytes smpl_36 = chunk("smpl", hex("00*12 40 00 00 00 00*20"));

// Three words, root D#3, tuned, loop 1 to 2, as an S3000 gives it.
struct three_words {
	u32 data[3] = { 0x0001, 0xFFFF8000, 0x7FFF };
	_sample sample = {};
	three_words()
	{
		copy_text(sample.name, "KICK 1");
		sample.original_pitch = 0x3F;
		sample.semitone_tune = 0x11;
		sample.fine_tune = 0x22;
		sample.loop_start = 1;
		sample.loop_end = 2;
		sample.start_position = 0x0304;
		sample.end_position = 0x05060708;
		sample.sample_length = 3;
		sample.sample_data = data;
		sample.sample_rate = 22050;
		sample.playback_mode = 1;
		sample.bitspersample = 12;
		sample.channels = 2;
	}
};

TEST_F(wave_container, a_written_sample_byte_by_byte)
{
	h.use_sampler(model_s3000, 0);
	three_words s;
	ASSERT_EQ(write_sample(&s.sample, nullptr), 0);
	// clang-format off
	EXPECT_EQ(content("KICK 1.wav"), hex(
		" 52 49 46 46  8E 00 00 00  57 41 56 45 66 6D 74 20  12 00 00 00" // 6 + 136
		" 01 00 01 00  22 56 00 00  44 AC 00 00  02 00 10 00 00 00"
		" 66 61 63 74  04 00 00 00  03 00 00 00"
		" 73 6D 70 6C  4E 00 00 00"
		" 47 00 00 01  5E 00 00 00  93 58 00 00  3F 00 00 00  00*12  01 00 00 00  12 00 00 00"
		" 6C 6F 6F 70  00*4  01 00 00 00  02 00 00 00  00*10"
		" 3F 11 22 00 01 00 00 00  04 03 00 00  08 07 06 05"
		" 64 61 74 61  06 00 00 00  01 00 00 80 FF 7F"));
	// clang-format on
	EXPECT_TRUE(h.logged("[I] AKAI SAMPLE ---> WAVE. Saving Sample (3 Samples, 22050 Hz "
			     "Sampling-Rate) to [" +
			     spool + "KICK 1.wav] Wave-Header-Size: 144, Complete-File-Size: 150"));
	EXPECT_EQ(names(), strings{ "KICK 1.wav" }); // no temporary name left
}

TEST_F(wave_container, play_modes_are_counted_otherwise_by_s1000_and_s2000)
{
	EXPECT_EQ(recalculate_playmode(1), 1); // no sampler
	for (const i32 model : { model_s1000, model_s2000 }) {
		h.use_sampler(model, 0);
		const u8 expected[] = { 2, 3, 0, 1, 4, 5 };
		for (u8 mode = 0; mode < 6; mode++)
			EXPECT_EQ(recalculate_playmode(mode), expected[mode]);
		three_words s;
		ASSERT_EQ(write_sample(&s.sample, nullptr), 0);
		EXPECT_EQ(content("KICK 1.wav")[124], 3);
	}
	for (const i32 model : { model_s900, model_s2800, model_s3000, model_z4 }) {
		h.use_sampler(model, 0);
		EXPECT_EQ(recalculate_playmode(1), 1);
	}
	current_sampler->sampler_type = 4711; // no such row
	EXPECT_EQ(recalculate_playmode(1), 1);
}

TEST_F(wave_container, a_sample_without_words_is_144_bytes_and_is_there)
{
	three_words s;
	s.sample.sample_length = 0;
	s.sample.sample_data = nullptr;
	EXPECT_EQ(test_sample(&s.sample, nullptr), 0);
	ASSERT_EQ(write_sample(&s.sample, nullptr), 0);
	EXPECT_EQ(content("KICK 1.wav").size(), 144u);
	EXPECT_EQ(test_sample(&s.sample, nullptr), 1);
	put("KICK 1.wav", {});
	EXPECT_EQ(test_sample(&s.sample, nullptr), 0); // an empty file is none
}

TEST_F(wave_container, a_name_never_leaves_the_spool)
{
	three_words s;
	for (const char *name : { "..", "..\\..\\evil", "../../evil2", "", "a:b", "x\ny" }) {
		copy_text(s.sample.name, name);
		EXPECT_EQ(test_sample(&s.sample, nullptr), 0) << name;
		EXPECT_EQ(write_sample(&s.sample, nullptr), 0) << name;
		EXPECT_EQ(test_sample(&s.sample, nullptr), 1) << name;
	}
	std::memset(s.sample.name, 'N', sizeof s.sample.name); // no terminator
	EXPECT_EQ(write_sample(&s.sample, nullptr), 0);
	EXPECT_EQ(names().size(), 7u);
	EXPECT_FALSE(h.content(h.config + "\\evil.wav"));
}

TEST_F(wave_container, a_disk_that_fails_is_named_and_leaves_no_short_file)
{
	three_words s;
	auto fails = [&](const char *words, const strings &left) {
		put("KICK 1.info", hex("01"));
		EXPECT_EQ(write_sample(&s.sample, nullptr), 1);
		EXPECT_EQ(h.boxes.back(),
			(shown_box{
				"Cannot open [" + spool + "KICK 1.wav] for writing (" + words + ")",
				"FATAL" }));
		EXPECT_EQ(names(), left); // the side file went too
	};
	h.disk.open_for_writing = EACCES;
	fails("Permission denied", {});
	h.disk = { .space_left = 145 };
	put("KICK 1.wav", hex("AA BB"));
	fails("No space left on device", { "KICK 1.wav" });
	EXPECT_EQ(content("KICK 1.wav"), hex("AA BB"));
	h.disk = { .space_left = {}, .close_fails = true };
	fails("Input/output error", { "KICK 1.wav" });
	h.disk = {};
	EXPECT_EQ(write_sample(&s.sample, (spool + std::string(300, 'L')).c_str()), 1);
	EXPECT_NE(h.boxes.back().text.find("(File name too long)"), std::string::npos);
	s.sample.sample_data = nullptr; // three words said, none there
	EXPECT_EQ(write_sample(&s.sample, nullptr), 1);
	EXPECT_EQ(names(), strings{ "KICK 1.wav" });
}

TEST_F(wave_container, an_extension_in_another_case_is_the_same_sample)
{
	three_words s;
	put("KICK 1.WAV", hex("AA"));
	put("kick 1.wav", hex("BB")); // another sample
	EXPECT_EQ(test_sample(&s.sample, nullptr), 1);
	EXPECT_EQ(write_sample(&s.sample, nullptr), 0);
	EXPECT_EQ(names(), (strings{ "KICK 1.WAV", "kick 1.wav" }));
	EXPECT_EQ(content("KICK 1.WAV").size(), 150u);
	EXPECT_EQ(content("kick 1.wav"), hex("BB"));
	_sample back;
	EXPECT_TRUE(read("KICK 1", &back));
	free_sample_data(&back);
}

TEST_F(wave_container, a_read_sample_is_mode_1_and_untuned)
{
	three_words s;
	ASSERT_EQ(write_sample(&s.sample, nullptr), 0);
	_sample back;
	std::memset(&back, 0xEE, sizeof back);
	ASSERT_TRUE(read("KICK 1", &back));
	EXPECT_STREQ(back.name, "KICK 1");
	// Mode 1; no tune; from 0 to the count of fact; the loop from 0, where the file says 1.
	const u64 values[] = { back.playback_mode, back.original_pitch, back.semitone_tune,
		back.fine_tune, back.start_position, back.end_position, back.loop_start,
		back.loop_end, back.sample_rate, back.channels, back.bitspersample,
		back.bytespersample, back.sample_bytes, back.sample_length };
	const u64 expected[] = { 1, 0x3F, 0, 0, 0, 3, 0, 2, 22050, 1, 16, 2, 6, 3 };
	EXPECT_TRUE(std::equal(values, std::end(values), expected));
	EXPECT_EQ(bytes(back.sample_byte, back.sample_byte + 6), hex("01 00 00 80 FF 7F"));
	EXPECT_EQ(back.sample_data[1], 0x8000u); // not sign-extended
	EXPECT_EQ(back.sample_data[2], 0x7FFFu);
	EXPECT_TRUE(
		h.logged("[D] Converted 6 Sample Bytes (16 Bit) to 3 Sample Words...PLAYMODE: 1"));
	free_sample_data(&back);
}

TEST_F(wave_container, any_length_but_no_other_order)
{
	constexpr format mono = { 1, 24, 3, 22050 };
	const bytes head = fmt(mono), fact = chunk("fact", word(1)), list = chunk("LIST", word(0)),
		    data = chunk("data", hex("11 22 33"));
	const struct {
		const char *name;
		bytes file;
		bool taken;
	} rows[] = {
		{ "fmt of 16", riff(head + fact + smpl_36 + data), true },
		{ "fmt of 40", riff(fmt(mono, hex("16 00*23")) + fact + smpl_36 + data), true },
		{ "fact of 9", riff(head + chunk("fact", hex("01 00*8")) + smpl_36 + data), true },
		// Its name is not compared.
		{ "no fact", riff(head + chunk("FACT", word(1)) + smpl_36 + data), true },
		{ "LIST between", riff(head + fact + list + smpl_36 + data), false },
		{ "LIST behind smpl", riff(head + fact + smpl_36 + list + data), false },
		{ "block align 0", riff(fmt({ 1, 24, 0, 0 }) + fact + smpl_36 + data), false },
		{ "nothing", {}, false },
		{ "half a head", text("RIFF\x10"), false },
		{ "length of 2^32 - 1", riff(text("fmt ") + word(0xFFFFFFFF) + head), false },
	};
	for (const auto &row : rows) {
		SCOPED_TRACE(row.name);
		put("A.wav", row.file);
		h.forget_log();
		_sample back;
		ASSERT_EQ(read("A", &back), row.taken);
		EXPECT_STREQ(back.name, "A");
		EXPECT_EQ(logged_part(h, "File-Header corrupted [" + spool + "A.wav]"), !row.taken);
		EXPECT_EQ(back.sample_bytes, row.taken ? 3u : 0u);
		if (row.taken) {
			EXPECT_EQ(back.original_pitch, 0x40);
			EXPECT_EQ(back.end_position, 1u);
			ASSERT_EQ(back.sample_length, 1u);
			EXPECT_EQ(back.sample_data[0], 0x332211u);
		} else {
			EXPECT_EQ(back.sample_byte, nullptr);
		}
		free_sample_data(&back);
	}
}

TEST_F(wave_container, what_the_data_cannot_give)
{
	_sample back;
	// Frames of other sizes have a length and no words.
	for (const u8 frame : { 1, 4, 6 }) {
		put("A.wav", riff(fmt({ 1, 16, frame, 22050 }) + fact_9 + smpl_36 +
				     chunk("data", hex("11*12"))));
		ASSERT_TRUE(read("A", &back));
		ASSERT_EQ(back.sample_length, 12u / frame);
		for (u64 i = 0; i < back.sample_length; i++)
			EXPECT_EQ(back.sample_data[i], 0u);
		free_sample_data(&back);
	}
	// A length that lies is taken as far as the file goes.
	const bytes liar = riff(fmt_22 + fact_9 + smpl_36 + text("data") + word(0xFFFFFFFF));
	put("A.wav", liar + hex("01 02 03"));
	ASSERT_TRUE(read("A", &back));
	EXPECT_EQ(back.sample_bytes, 3u);
	ASSERT_EQ(back.sample_length, 1u);
	EXPECT_EQ(back.sample_data[0], 0x0201u);
	free_sample_data(&back);
	// A file larger than any sampler is refused in words.
	std::filesystem::resize_file(h.root + "/VELMOR/CONFIG/sample/A.wav", 0xFFFFFFFF);
	EXPECT_FALSE(read("A", &back));
	EXPECT_TRUE(logged_part(h, "[F] FAILED TO MALLOC FOR [" + spool + "A.wav]("));
	EXPECT_EQ(back.sample_byte, nullptr);
}

TEST_F(wave_container, a_file_that_is_cut_while_it_is_read)
{
	put("A.wav", riff(fmt_22 + fact_9 + smpl_36 + chunk("data", hex("11*9000"))));
	static files_service cutting;
	cutting = *host.files;
	cutting.open = [](const char *path, file_mode mode, int *file) {
		if (mode == file_read)
			std::filesystem::resize_file(
				the_test_host->root + "/VELMOR/CONFIG/sample/A.wav", 5000);
		return posix_files.open(path, mode, file);
	};
	host.files = &cutting;
	_sample back;
	EXPECT_FALSE(read("A", &back));
	EXPECT_EQ(back.sample_byte, nullptr);
	EXPECT_TRUE(h.logged("[F] FAILED TO READ FROM [" + spool +
			     "A.wav] (It became shorter while it was read)"));
}

TEST_F(wave_container, what_is_no_file_is_refused)
{
	_sample back;
	EXPECT_FALSE(read("A", &back));
	EXPECT_TRUE(
		h.logged("[F] FAILED TO STAT [" + spool + "A.wav] (No such file or directory)"));
	std::filesystem::create_directory(h.root + "/VELMOR/CONFIG/sample/A.wav");
	EXPECT_FALSE(read("A", &back));
	u8 bits, channels, pitch;
	int rate;
	EXPECT_FALSE(get_wave_info((spool + "A.wav").c_str(), &bits, &channels, &rate, &pitch));
	EXPECT_FALSE(akai_it((spool + "A.wav").c_str(), (spool + "B.wav").c_str(), 60));
	EXPECT_EQ(names(), strings{ "A.wav" });
}

// ---- get_wave_info ------------------------------------------------------------------------

// "bits channels rate pitch", or "pitch" alone of a file that is refused.
std::string facts_of(const std::string &path)
{
	u8 bits = 0, channels = 0, pitch = 0;
	int rate = 0;
	return get_wave_info(path.c_str(), &bits, &channels, &rate, &pitch)
		       ? format_text("%d %d %d %d", bits, channels, rate, pitch)
		       : format_text("%d", pitch);
}

TEST_F(wave_container, the_head_of_any_file)
{
	const bytes smpl = chunk("smpl", hex("00*12 C8 00*23")), data = chunk("data", word(0));
	bytes many = fmt_22;
	for (int i = 0; i < 5000; i++)
		many = std::move(many) + chunk("JUNK", {});
	const struct {
		bytes file;
		const char *facts;
	} rows[] = {
		{ riff(fmt_22 + chunk("LIST", hex("00*5")) + smpl + data),
			"16 1 22050 72" }, // & 7F
		{ riff(fmt_22 + data), "16 1 22050 255" },
		// Of channels and depth the low byte counts.
		{ riff(fmt({ 0x102, 0x320, 2, 48000 }) + data), "32 2 48000 255" },
		// An unpadded odd chunk: what a padding writer put behind it is not found.
		{ riff(fmt_22 + chunk("LIST", hex("00*5")) + hex("00") + smpl), "16 1 22050 255" },
		// The file ends inside the chunk.
		{ riff(fmt_22 + text("smpl") + word(36) + hex("00*8")), "16 1 22050 0" },
		// There is no limit to chunks but the file.
		{ riff(many + smpl), "16 1 22050 72" },
	};
	current_run_mode.diagnostics = false;
	for (const auto &row : rows) {
		put("A.wav", row.file);
		EXPECT_EQ(facts_of(spool + "A.wav"), row.facts);
	}
}

TEST_F(wave_container, what_is_no_wave_file_is_told_apart)
{
	const std::string path = spool + "A.wav";
	EXPECT_EQ(facts_of(path), "255");
	EXPECT_TRUE(h.logged("[F] Cannot stat '" + path + "'"));
	const struct {
		const char *file, *words;
	} rows[] = {
		{ "52 49 46 46 00*41", "[F] Obviously no wave-file '%s' (too small)" },
		{ "52 49 46 58 00*42", "[F] No wave-file '%s' (magic(1) missing)" }, // RIFX
		{ "52 49 46 46 00*4 57 41 56 45 4A 55 4E 4B 00*40",
			"[F] No wave-file '%s' (magic(2) missing)" },
	};
	for (const auto &row : rows) {
		put("A.wav", hex(row.file));
		EXPECT_EQ(facts_of(path), "255");
		std::string words = row.words;
		EXPECT_TRUE(h.logged(words.replace(words.find("%s"), 2, path))) << row.words;
	}
}

// ---- akai_it ------------------------------------------------------------------------------

const bytes ordered_fmt = fmt(mono_22, hex("00 00"));

struct wave_order : wave_container {
	bytes order(const bytes &source, u32 pitch = 60)
	{
		put("in.wav", source);
		EXPECT_TRUE(
			akai_it((spool + "in.wav").c_str(), (spool + "out.wav").c_str(), pitch));
		return content("out.wav");
	}
	bool refused(const bytes &source)
	{
		put("in.wav", source);
		put("out.wav", hex("AA"));
		return !akai_it((spool + "in.wav").c_str(), (spool + "out.wav").c_str(), 60) &&
		       content("out.wav") == hex("AA") && names().size() == 2;
	}
};

TEST_F(wave_order, what_is_missing_is_made)
{
	const bytes data = chunk("data", hex("01 02 03 04 05"));
	// 1000000000 / 22050 = 45351 = B127; unity note 0x53; 5 bytes of 2 are 2 frames.
	const bytes smpl = chunk("smpl", hex("47 00 00 01 5E 00 00 00 27 B1 00 00 53 00*23"));
	const bytes expected = riff(ordered_fmt + chunk("fact", word(2)) + smpl + data);
	EXPECT_EQ(order(riff(fmt_22 + chunk("LIST", hex("00*3")) + data + smpl_36), 0x1153),
		expected);
	// fmt of 40: the extension goes.
	EXPECT_EQ(order(riff(fmt(mono_22, hex("16 00 FF*22")) + data), 0x53), expected);
	EXPECT_TRUE(h.logged("[D] AKAI_IT --> HAS_FACT_HEADER: 0, HAS_SMPL_HEADER: 0 NEXT-CHUNK: "
			     "[data]"));
	// Of 96000 Hz the period is that of the low 16 bits, 30464: 32825 = 8039.
	const bytes fast = order(riff(fmt({ 1, 16, 2, 96000 }) + data));
	EXPECT_EQ(bytes(fast.begin() + 66, fast.begin() + 70), word(32825));
}

// The reader wants fact ahead of smpl, whichever of them stands or is made.
TEST_F(wave_order, fact_stands_ahead_of_smpl)
{
	const bytes fact = chunk("fact", hex("99 00 00 00 07")), data = chunk("data", hex("01 02"));
	const bytes junk = chunk("JUNK", hex("00*7"));
	EXPECT_EQ(order(riff(fmt_22 + smpl_36 + junk + fact + data + junk)),
		riff(ordered_fmt + fact + smpl_36 + data));
	EXPECT_EQ(order(riff(fmt_22 + smpl_36 + data)),
		riff(ordered_fmt + chunk("fact", word(1)) + smpl_36 + data));
	// An fmt of 18 keeps its two last bytes; of two chunks of a name the last one stays.
	EXPECT_EQ(order(riff(fmt(mono_22, hex("07 08")) + fact_9 + fact + chunk("smpl", {}) +
			     smpl_36 + data)),
		riff(fmt(mono_22, hex("07 08")) + fact + smpl_36 + data));
	_sample back;
	ASSERT_TRUE(read("out", &back));
	EXPECT_EQ(back.end_position, 0x99u);
	free_sample_data(&back);
	// A smpl made here has no loop, and its loop end is read from word 1 of the data.
	order(riff(fmt_22 + chunk("data", hex("11 12 13 14 15 16 17 18 19 1A"))));
	ASSERT_TRUE(read("out", &back));
	EXPECT_EQ(back.loop_end, 0x18171615u);
	EXPECT_EQ(back.original_pitch, 60);
	free_sample_data(&back);
}

// Which files are refused: the random ones of test_wave_resample.
TEST_F(wave_order, a_disk_that_fails_keeps_the_old_file)
{
	const bytes data = chunk("data", hex("00*8"));
	h.disk.space_left = 60;
	EXPECT_TRUE(refused(riff(fmt_22 + data)));
	EXPECT_TRUE(logged_part(h, "Cannot write 110 Bytes to [" + spool + "out.wav]"));
	h.disk = { .space_left = {}, .open_for_writing = EROFS };
	EXPECT_TRUE(refused(riff(fmt_22 + data)));
	EXPECT_TRUE(logged_part(h, "Cannot open [" + spool + "out.wav]"));
}

} // namespace

} // namespace velmor
