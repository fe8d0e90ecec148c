// test_wave_container.cpp - the WAV files of the spool, byte by byte

#include "src/waveqx.h"
#include "tests/support/test_host.h"
#include <cerrno>
#include <cstring>
#include <filesystem>

namespace velmor
{

namespace
{

struct wave_container : host_test {
	std::string spool = h.config + "\\sample\\";

	std::vector<std::string> names()
	{
		std::vector<std::string> out;
		host.files->list((h.config + "\\sample").c_str(), &out);
		std::sort(out.begin(), out.end());
		return out;
	}
	std::vector<u8> bytes(const std::string &name) { return h.content(spool + name).value(); }
	void put(const std::string &name, const std::vector<u8> &content)
	{
		h.put_content(spool + name, content);
	}
	bool logged_part(std::string_view part)
	{
		for (const std::string &line : h.log())
			if (line.find(part) != line.npos)
				return true;
		return false;
	}
};

std::vector<u8> operator+(std::vector<u8> a, const std::vector<u8> &b)
{
	a.insert(a.end(), b.begin(), b.end());
	return a;
}

std::vector<u8> word(u32 value)
{
	return { u8(value), u8(value >> 8), u8(value >> 16), u8(value >> 24) };
}

std::vector<u8> text(const char *characters)
{
	return { characters, characters + std::strlen(characters) };
}

std::vector<u8> chunk(const char *name, const std::vector<u8> &content)
{
	return text(name) + word(static_cast<u32>(content.size())) + content;
}

// 22050 Hz (22 56), mono, 16 bits: the 16 bytes that every fmt chunk has.
const std::vector<u8> fmt_mono = hex("01 00 01 00 22 56 00 00 44 AC 00 00 02 00 10 00");

std::vector<u8> riff(const std::vector<u8> &chunks)
{
	return text("RIFF") + word(static_cast<u32>(chunks.size() + 4)) + text("WAVE") + chunks;
}

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
	EXPECT_EQ(bytes("KICK 1.wav"), hex(
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
	EXPECT_EQ(names(), std::vector<std::string>{ "KICK 1.wav" }); // no temporary name left
}

TEST_F(wave_container, play_modes_are_counted_otherwise_by_s1000_and_s2000)
{
	EXPECT_EQ(recalculate_playmode(1), 1); // no sampler
	for (const i32 model : { model_s1000, model_s2000 }) {
		h.use_sampler(model, 0);
		const u8 expected[] = { 2, 3, 0, 1, 4, 5 };
		for (u8 mode = 0; mode < 6; mode++)
			EXPECT_EQ(recalculate_playmode(mode), expected[mode]);
	}
	for (const i32 model : { model_s900, model_s2800, model_s3000, model_z4 }) {
		h.use_sampler(model, 0);
		EXPECT_EQ(recalculate_playmode(1), 1);
	}
	current_sampler->sampler_type = 4711; // no such row
	EXPECT_EQ(recalculate_playmode(1), 1);

	h.use_sampler(model_s1000, 0);
	three_words s;
	ASSERT_EQ(write_sample(&s.sample, nullptr), 0);
	EXPECT_EQ(bytes("KICK 1.wav")[124], 3);
}

TEST_F(wave_container, a_sample_without_words_is_144_bytes_and_is_there)
{
	three_words s;
	s.sample.sample_length = 0;
	s.sample.sample_data = nullptr;
	EXPECT_EQ(test_sample(&s.sample, nullptr), 0);
	ASSERT_EQ(write_sample(&s.sample, nullptr), 0);
	EXPECT_EQ(bytes("KICK 1.wav").size(), 144u);
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

TEST_F(wave_container, a_full_disk_leaves_no_short_file)
{
	three_words s;
	put("KICK 1.wav", hex("AA BB"));
	put("KICK 1.info", hex("01"));
	h.disk.space_left = 145;
	EXPECT_EQ(write_sample(&s.sample, nullptr), 1);
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(
		h.boxes[0], (shown_box{ "Cannot open [" + spool +
						"KICK 1.wav] for writing (No space left on device)",
				    "FATAL" }));
	EXPECT_EQ(names(), std::vector<std::string>{ "KICK 1.wav" });
	EXPECT_EQ(bytes("KICK 1.wav"), hex("AA BB"));
}

TEST_F(wave_container, what_cannot_be_opened_or_closed_says_so)
{
	three_words s;
	put("KICK 1.info", hex("01"));
	h.disk.open_for_writing = EACCES;
	EXPECT_EQ(write_sample(&s.sample, nullptr), 1);
	EXPECT_EQ(h.boxes.back().text,
		"Cannot open [" + spool + "KICK 1.wav] for writing (Permission denied)");
	EXPECT_TRUE(names().empty()); // the side file went too
	h.disk.open_for_writing = 0;
	h.disk.close_fails = true;
	EXPECT_EQ(write_sample(&s.sample, nullptr), 1);
	EXPECT_EQ(h.boxes.back().text,
		"Cannot open [" + spool + "KICK 1.wav] for writing (Input/output error)");
	EXPECT_TRUE(names().empty());
	h.disk.close_fails = false;
	s.sample.sample_data = nullptr; // three words said, none there
	EXPECT_EQ(write_sample(&s.sample, nullptr), 1);
	EXPECT_TRUE(names().empty());
	const std::string long_name(300, 'L');
	s.sample.sample_data = s.data;
	EXPECT_EQ(write_sample(&s.sample, (spool + long_name).c_str()), 1);
	EXPECT_NE(h.boxes.back().text.find("(File name too long)"), std::string::npos);
	EXPECT_TRUE(names().empty());
}

TEST_F(wave_container, an_extension_in_another_case_is_the_same_sample)
{
	three_words s;
	put("KICK 1.WAV", hex("AA"));
	put("kick 1.wav", hex("BB")); // another sample
	EXPECT_EQ(test_sample(&s.sample, nullptr), 1);
	EXPECT_EQ(write_sample(&s.sample, nullptr), 0);
	EXPECT_EQ(names(), (std::vector<std::string>{ "KICK 1.WAV", "kick 1.wav" }));
	EXPECT_EQ(bytes("KICK 1.WAV").size(), 150u);
	EXPECT_EQ(bytes("kick 1.wav"), hex("BB"));
	_sample back;
	EXPECT_EQ(create_sample_from_file((spool + "KICK 1").c_str(), &back), 1);
	free_sample_data(&back);
}

TEST_F(wave_container, a_read_sample_is_mode_1_and_untuned)
{
	three_words s;
	ASSERT_EQ(write_sample(&s.sample, nullptr), 0);
	_sample back;
	std::memset(&back, 0xEE, sizeof back);
	ASSERT_EQ(create_sample_from_file((spool + "KICK 1").c_str(), &back), 1);
	EXPECT_STREQ(back.name, "KICK 1");
	EXPECT_EQ(back.playback_mode, 1);
	EXPECT_EQ(back.original_pitch, 0x3F);
	EXPECT_EQ(back.semitone_tune, 0);
	EXPECT_EQ(back.fine_tune, 0);
	EXPECT_EQ(back.start_position, 0u);
	EXPECT_EQ(back.end_position, 3u); // the count of fact
	EXPECT_EQ(back.loop_start, 0u);   // the file says 1
	EXPECT_EQ(back.loop_end, 2u);
	EXPECT_EQ(back.sample_rate, 22050u);
	EXPECT_EQ(back.channels, 1u);
	EXPECT_EQ(back.bitspersample, 16u);
	EXPECT_EQ(back.bytespersample, 2u);
	ASSERT_EQ(back.sample_bytes, 6u);
	EXPECT_EQ(
		std::vector<u8>(back.sample_byte, back.sample_byte + 6), hex("01 00 00 80 FF 7F"));
	ASSERT_EQ(back.sample_length, 3u);
	EXPECT_EQ(back.sample_data[1], 0x8000u); // not sign-extended
	EXPECT_EQ(back.sample_data[2], 0x7FFFu);
	EXPECT_TRUE(
		h.logged("[D] Converted 6 Sample Bytes (16 Bit) to 3 Sample Words...PLAYMODE: 1"));
	free_sample_data(&back);
}

const std::vector<u8> smpl_36 = chunk("smpl", hex("00*12 40 00 00 00 00*20"));

TEST_F(wave_container, any_length_but_no_other_order)
{
	const std::vector<u8> data = chunk("data", hex("11 22 33"));
	const std::vector<u8> fmt_24 = hex("01 00 01 00 22 56 00 00 66 02 01 00 03 00 18 00");
	struct {
		const char *name;
		std::vector<u8> file;
		int taken;
	} rows[] = {
		{ "fmt of 16",
			riff(chunk("fmt ", fmt_24) + chunk("fact", word(1)) + smpl_36 + data), 1 },
		{ "fmt of 40",
			riff(chunk("fmt ", fmt_24 + hex("16 00 00*22")) + chunk("fact", word(1)) +
				smpl_36 + data),
			1 },
		{ "fact of 9",
			riff(chunk("fmt ", fmt_24) + chunk("fact", hex("01 00*8")) + smpl_36 +
				data),
			1 },
		// Its name is not compared.
		{ "no fact", riff(chunk("fmt ", fmt_24) + chunk("FACT", word(1)) + smpl_36 + data),
			1 },
		{ "LIST between",
			riff(chunk("fmt ", fmt_24) + chunk("fact", word(1)) +
				chunk("LIST", hex("00*4")) + smpl_36 + data),
			0 },
		{ "LIST behind smpl",
			riff(chunk("fmt ", fmt_24) + chunk("fact", word(1)) + smpl_36 +
				chunk("LIST", hex("00*4")) + data),
			0 },
		{ "block align 0",
			riff(chunk("fmt ", hex("01 00 01 00 00*10 18 00")) +
				chunk("fact", word(1)) + smpl_36 + data),
			0 },
		{ "nothing", {}, 0 },
		{ "half a head", text("RIFF\x10"), 0 },
		{ "length of 2^32 - 1", riff(text("fmt ") + word(0xFFFFFFFF) + fmt_24), 0 },
	};
	for (const auto &row : rows) {
		SCOPED_TRACE(row.name);
		put("A.wav", row.file);
		h.forget_log();
		_sample back;
		ASSERT_EQ(create_sample_from_file((spool + "A").c_str(), &back), row.taken);
		EXPECT_STREQ(back.name, "A");
		if (row.taken) {
			EXPECT_EQ(back.original_pitch, 0x40);
			EXPECT_EQ(back.end_position, 1u);
			ASSERT_EQ(back.sample_length, 1u);
			EXPECT_EQ(back.sample_data[0], 0x332211u);
		} else {
			EXPECT_TRUE(logged_part("File-Header corrupted [" + spool + "A.wav]"));
			EXPECT_EQ(back.sample_byte, nullptr);
			EXPECT_EQ(back.sample_bytes, 0u);
		}
		free_sample_data(&back);
	}
}

TEST_F(wave_container, frames_of_other_sizes_have_a_length_and_no_words)
{
	for (const u8 frame : { 1, 4, 6 }) {
		std::vector<u8> fmt = fmt_mono;
		fmt[12] = frame;
		put("A.wav", riff(chunk("fmt ", fmt) + chunk("fact", word(9)) + smpl_36 +
				     chunk("data", hex("11*12"))));
		_sample back;
		ASSERT_EQ(create_sample_from_file((spool + "A").c_str(), &back), 1);
		ASSERT_EQ(back.sample_length, 12u / frame);
		for (u64 i = 0; i < back.sample_length; i++)
			EXPECT_EQ(back.sample_data[i], 0u);
		free_sample_data(&back);
	}
}

TEST_F(wave_container, a_length_that_lies_is_taken_as_far_as_the_file_goes)
{
	put("A.wav", riff(chunk("fmt ", fmt_mono) + chunk("fact", word(9)) + smpl_36 +
			     text("data") + word(0xFFFFFFFF) + hex("01 02 03")));
	_sample back;
	ASSERT_EQ(create_sample_from_file((spool + "A").c_str(), &back), 1);
	EXPECT_EQ(back.sample_bytes, 3u);
	ASSERT_EQ(back.sample_length, 1u);
	EXPECT_EQ(back.sample_data[0], 0x0201u);
	free_sample_data(&back);
}

TEST_F(wave_container, a_file_larger_than_any_sampler_is_refused_in_words)
{
	put("A.wav", riff(chunk("fmt ", fmt_mono) + chunk("fact", word(9)) + smpl_36 +
			     text("data") + word(0xFFFFFFF0)));
	std::filesystem::resize_file(h.root + "/VELMOR/CONFIG/sample/A.wav", 0xFFFFFFFF);
	_sample back;
	EXPECT_EQ(create_sample_from_file((spool + "A").c_str(), &back), 0);
	EXPECT_TRUE(logged_part("[F] FAILED TO MALLOC FOR [" + spool + "A.wav]("));
	EXPECT_EQ(back.sample_byte, nullptr);
}

TEST_F(wave_container, what_is_no_file_is_refused)
{
	_sample back;
	EXPECT_EQ(create_sample_from_file((spool + "A").c_str(), &back), 0);
	EXPECT_TRUE(
		h.logged("[F] FAILED TO STAT [" + spool + "A.wav] (No such file or directory)"));
	std::filesystem::create_directory(h.root + "/VELMOR/CONFIG/sample/A.wav");
	EXPECT_EQ(create_sample_from_file((spool + "A").c_str(), &back), 0);
	u8 bits, channels, pitch;
	int rate;
	EXPECT_FALSE(get_wave_info((spool + "A.wav").c_str(), &bits, &channels, &rate, &pitch));
	EXPECT_FALSE(akai_it((spool + "A.wav").c_str(), (spool + "B.wav").c_str(), 60));
	EXPECT_EQ(names(), std::vector<std::string>{ "A.wav" });
}

// ---- get_wave_info ------------------------------------------------------------------------

struct wave_facts {
	bool known;
	int bits, channels, rate, pitch;
	bool operator==(const wave_facts &) const = default;
};

wave_facts facts_of(const std::string &path)
{
	u8 bits = 0, channels = 0, pitch = 0;
	int rate = 0;
	const bool known = get_wave_info(path.c_str(), &bits, &channels, &rate, &pitch);
	return { known, bits, channels, rate, pitch };
}

TEST_F(wave_container, the_head_of_any_file)
{
	put("A.wav", riff(chunk("fmt ", fmt_mono) + chunk("LIST", hex("00*5")) +
			     chunk("smpl", hex("00*12 C8 00*23")) + chunk("data", {})));
	EXPECT_EQ(facts_of(spool + "A.wav"), (wave_facts{ true, 16, 1, 22050, 72 })); // 200 & 7F
	put("A.wav", riff(chunk("fmt ", fmt_mono) + chunk("data", hex("00*4"))));
	EXPECT_EQ(facts_of(spool + "A.wav"), (wave_facts{ true, 16, 1, 22050, 255 }));
	// Of channels and depth the low byte counts.
	put("A.wav", riff(chunk("fmt ", hex("03 00 02 01 80 BB 00 00 00*6 20 03")) +
			     chunk("data", hex("00*4"))));
	EXPECT_EQ(facts_of(spool + "A.wav"), (wave_facts{ true, 32, 2, 48000, 255 }));
	// An unpadded odd chunk: what a padding writer put behind it is not found.
	put("A.wav", riff(chunk("fmt ", fmt_mono) + chunk("LIST", hex("00*5")) + hex("00") +
			     chunk("smpl", hex("00*12 40 00*23"))));
	EXPECT_EQ(facts_of(spool + "A.wav").pitch, 255);
	// The file ends inside the chunk.
	put("A.wav", riff(chunk("fmt ", fmt_mono) + text("smpl") + word(36) + hex("00*8")));
	EXPECT_EQ(facts_of(spool + "A.wav").pitch, 0);
}

TEST_F(wave_container, what_is_no_wave_file_is_told_apart)
{
	const std::string path = spool + "A.wav";
	EXPECT_FALSE(facts_of(path).known);
	EXPECT_TRUE(h.logged("[F] Cannot stat '" + path + "'"));
	put("A.wav", hex("52 49 46 46 00*41"));
	EXPECT_FALSE(facts_of(path).known);
	EXPECT_TRUE(h.logged("[F] Obviously no wave-file '" + path + "' (too small)"));
	put("A.wav", hex("52 49 46 58 00*42")); // RIFX
	EXPECT_FALSE(facts_of(path).known);
	EXPECT_TRUE(h.logged("[F] No wave-file '" + path + "' (magic(1) missing)"));
	put("A.wav", hex("52 49 46 46 00*4 57 41 56 45 4A 55 4E 4B 00*40"));
	EXPECT_FALSE(facts_of(path).known);
	EXPECT_TRUE(h.logged("[F] No wave-file '" + path + "' (magic(2) missing)"));
	EXPECT_EQ(facts_of(path).pitch, 255);
}

TEST_F(wave_container, a_file_of_nothing_but_chunks_ends)
{
	std::vector<u8> file = riff(chunk("fmt ", fmt_mono));
	for (int i = 0; i < 5000; i++)
		file = std::move(file) + chunk("JUNK", {});
	put("A.wav", file);
	current_run_mode.diagnostics = false;
	EXPECT_TRUE(facts_of(spool + "A.wav").known);
	EXPECT_FALSE(akai_it((spool + "A.wav").c_str(), (spool + "B.wav").c_str(), 60));
}

// ---- akai_it ------------------------------------------------------------------------------

const std::vector<u8> ordered_fmt = text("fmt ") + word(18) + fmt_mono + hex("00 00");

struct wave_order : wave_container {
	std::vector<u8> order(const std::vector<u8> &source, u32 pitch = 60)
	{
		put("in.wav", source);
		EXPECT_TRUE(
			akai_it((spool + "in.wav").c_str(), (spool + "out.wav").c_str(), pitch));
		return bytes("out.wav");
	}
	bool refused(const std::vector<u8> &source)
	{
		put("in.wav", source);
		put("out.wav", hex("AA"));
		return !akai_it((spool + "in.wav").c_str(), (spool + "out.wav").c_str(), 60) &&
		       bytes("out.wav") == hex("AA") && names().size() == 2;
	}
};

TEST_F(wave_order, what_is_missing_is_made)
{
	// 1000000000 / 22050 = 45351 = B127; unity note 0x53; 5 bytes of 2 are 2 frames.
	const std::vector<u8> expected = riff(
		ordered_fmt + chunk("fact", word(2)) +
		chunk("smpl", hex("47 00 00 01 5E 00 00 00 27 B1 00 00 53 00 00 00 00*20")) +
		chunk("data", hex("01 02 03 04 05")));
	EXPECT_EQ(order(riff(chunk("fmt ", fmt_mono) + chunk("LIST", hex("00*3")) +
				chunk("data", hex("01 02 03 04 05")) + chunk("smpl", hex("00*36"))),
			  0x1153),
		expected);
	// fmt of 40: the extension goes.
	EXPECT_EQ(order(riff(chunk("fmt ", fmt_mono + hex("16 00 FF*22")) +
				chunk("data", hex("01 02 03 04 05"))),
			  0x53),
		expected);
	EXPECT_TRUE(h.logged("[D] AKAI_IT --> HAS_FACT_HEADER: 0, HAS_SMPL_HEADER: 0 NEXT-CHUNK: "
			     "[data]"));
}

TEST_F(wave_order, a_rate_of_96000_has_the_period_of_30464)
{
	std::vector<u8> fmt = fmt_mono;
	fmt[4] = 0x00, fmt[5] = 0x77, fmt[6] = 0x01;
	const std::vector<u8> out = order(riff(chunk("fmt ", fmt) + chunk("data", hex("00*8"))));
	// smpl stands at 50, its period 16 further: 32825 = 8039
	EXPECT_EQ(std::vector<u8>(out.begin() + 66, out.begin() + 70), hex("39 80 00 00"));
}

TEST_F(wave_order, what_stands_is_kept_in_its_order)
{
	const std::vector<u8> smpl = chunk("smpl", hex("00*12 30 00*23")),
			      fact = chunk("fact", hex("99 00 00 00 07"));
	const std::vector<u8> data = chunk("data", hex("01 02"));
	EXPECT_EQ(order(riff(chunk("fmt ", fmt_mono) + smpl + chunk("JUNK", hex("00*7")) + fact +
			     data + chunk("LIST", hex("00*4")))),
		riff(ordered_fmt + smpl + fact + data));
	// An fmt of 18 keeps its two last bytes.
	EXPECT_EQ(order(riff(chunk("fmt ", fmt_mono + hex("07 08")) + fact + smpl + data)),
		riff(chunk("fmt ", fmt_mono + hex("07 08")) + fact + smpl + data));
}

TEST_F(wave_order, the_result_of_a_file_without_smpl_reads_its_loop_end_from_the_data)
{
	order(riff(chunk("fmt ", fmt_mono) +
		   chunk("data", hex("11 12 13 14 15 16 17 18 19 1A 1B 1C 1D 1E 1F 20"))));
	_sample back;
	ASSERT_EQ(create_sample_from_file((spool + "out").c_str(), &back), 1);
	EXPECT_EQ(
		back.loop_end, 0x18171615u); // 12 bytes behind the 44 of the chunk: word 1 of data
	EXPECT_EQ(back.original_pitch, 60);
	free_sample_data(&back);
}

TEST_F(wave_order, what_cannot_be_put_in_order_is_refused)
{
	const std::vector<u8> fmt = chunk("fmt ", fmt_mono), data = chunk("data", hex("00*8"));
	EXPECT_TRUE(refused(riff(fmt)));                               // too small
	EXPECT_TRUE(refused(riff(fmt + chunk("LIST", hex("00*20"))))); // no data
	std::vector<u8> bad = fmt_mono;
	bad[12] = 0;
	EXPECT_TRUE(refused(riff(chunk("fmt ", bad) + data))); // block align 0
	bad = fmt_mono;
	bad[4] = bad[5] = 0, bad[6] = 1; // 65536 Hz: no period in 16 bits
	EXPECT_TRUE(refused(riff(chunk("fmt ", bad) + data)));
	EXPECT_TRUE(refused(riff(fmt + text("smpl") + word(0xFFFFFFF0) + data)));
	h.disk.space_left = 60;
	EXPECT_TRUE(refused(riff(fmt + data)));
	EXPECT_TRUE(logged_part("Cannot write 110 Bytes to [" + spool + "out.wav]"));
	h.disk.space_left.reset();
	h.disk.open_for_writing = EROFS;
	EXPECT_TRUE(refused(riff(fmt + data)));
	EXPECT_TRUE(logged_part("Cannot open [" + spool + "out.wav]"));
}

TEST_F(wave_order, a_file_may_be_put_in_order_in_its_place)
{
	const std::vector<u8> source = riff(chunk("fmt ", fmt_mono) + chunk("data", hex("01 02")));
	put("in.wav", source);
	h.disk.space_left = 50;
	const std::string path = spool + "in.wav";
	EXPECT_FALSE(akai_it(path.c_str(), path.c_str(), 60));
	EXPECT_EQ(bytes("in.wav"), source);
	h.disk.space_left.reset();
	EXPECT_TRUE(akai_it(path.c_str(), path.c_str(), 60));
	EXPECT_EQ(bytes("in.wav").size(), 38u + 12 + 44 + 10);
	EXPECT_EQ(names(), std::vector<std::string>{ "in.wav" });
}

} // namespace

} // namespace velmor
