// test_sounds.cpp - sound files of other kinds on their way into the spool
//
// Built of their bytes, and the values that arrive worked out by hand.

#include "src/controls.h"
#include "src/waveqx.h"
#include "tests/support/wave_files.h"
#include <algorithm>

namespace velmor
{

namespace
{

bytes big(u64 value, int count)
{
	bytes out = word(value, count);
	std::reverse(out.begin(), out.end());
	return out;
}

bytes aiff_chunk(const char *name, const bytes &content)
{
	return text(name) + big(content.size(), 4) + content + bytes(content.size() % 2);
}

// Four frames of 16 bits, mono, 44100 Hz (an 80-bit floating point number), root note 57, and a
// loop between markers 1 and 2, which stand in front of frames 1 and 3.
bytes aiff_file()
{
	const bytes rate = hex("40 0E AC 44 00 00 00 00 00 00");
	const bytes common = big(1, 2) + big(4, 4) + big(16, 2) + rate;
	const bytes marks = big(2, 2) + big(1, 2) + big(1, 4) + hex("01 61") + big(2, 2) +
			    big(3, 4) + hex("01 62");
	const bytes loop = big(1, 2) + big(1, 2) + big(2, 2);
	const bytes instrument = hex("39 00 00 7F 01 7F 00 00") + loop + bytes(6);
	const bytes sound = bytes(8) + hex("00 01 7F FF 80 00 FF FE");
	const bytes chunks = text("AIFF") + aiff_chunk("COMM", common) + aiff_chunk("MARK", marks) +
			     aiff_chunk("INST", instrument) + aiff_chunk("SSND", sound);
	return text("FORM") + big(chunks.size(), 4) + chunks;
}

struct sound_row {
	const char *name;
	bytes file;
	const char *made; // in the spool
	u8 bits;
	bytes words; // of the data there
};

const format floats = { 1, 32, 4, 44100 }, mono_8 = { 1, 8, 1, 44100 },
	     mono_32 = { 1, 32, 4, 44100 }, wide_24 = { 1, 24, 4, 44100 };

// What import_wave makes silence, noise or nothing of.
const sound_row sounds[] = {
	{ "a.aiff", aiff_file(), "a.wav", 16, hex("01 00 FF 7F 00 80 FE FF") },
	// 8 bits lie around 128.
	{ "b.wav", riff(fmt(mono_8) + chunk("data", hex("80 FF 00 7F"))), "b.wav", 16,
		hex("00 00 00 7F 00 80 00 FF") },
	// 0.5, -1, 1 and 2: full scale is the most there is.
	{ "c.WAV",
		riff(fmt(floats, {}, 3) +
			chunk("data", hex("00 00 00 3F 00 00 80 BF 00 00 80 3F 00 00 00 40"))),
		"c.wav", 24, hex("00 00 40 00 00 80 FF FF 7F FF FF 7F") },
	// 32 bits are rounded to the nearest of 24.
	{ "d.wav", riff(fmt(mono_32) + chunk("data", hex("7F 00 01 00 80 01 02 00"))), "d.wav", 24,
		hex("00 01 00 02 02 00") },
	{ "e.wav", riff(chunk("JUNK", bytes(8)) + fmt(mono_16) + chunk("data", hex("34 12"))),
		"e.wav", 16, hex("34 12") },
	// A-law: D5 is the smallest step up, 8 of 16 bits.
	{ "f.wav",
		riff(fmt(mono_8, word(0, 2), 6) + chunk("fact", word(2)) +
			chunk("data", hex("D5 55"))),
		"f.wav", 16, hex("08 00 F8 FF") },
};

struct sound_files : host_test {
	std::string from = h.config + "\\music", spool = h.config + "\\sample";

	sound_files() { host.files->make_folder(from.c_str()); }

	std::string outcome() { return h.texts[{ window_samples, samples_work_outcome }]; }
	int bring(const std::string &name, const bytes &file, u32 bits = 0)
	{
		h.put_content(from + "\\" + name, file);
		return import_sound(
			(from + "\\" + name).c_str(), window_samples, bits, 0, 0, 0, 83);
	}
	// The last bytes of a file of the spool.
	bytes data(const std::string &name, std::size_t count)
	{
		const bytes file = h.content(spool + "\\" + name).value_or(bytes(count));
		return { file.end() - static_cast<std::ptrdiff_t>(std::min(count, file.size())),
			file.end() };
	}
};

TEST_F(sound_files, arrive_with_their_sound)
{
	for (const sound_row &row : sounds) {
		SCOPED_TRACE(row.name);
		ASSERT_EQ(bring(row.name, row.file), 1) << import_failure;
		EXPECT_EQ(data(row.made, row.words.size()), row.words);
		u8 bits = 0, channels = 0, pitch = 0;
		int rate = 0;
		ASSERT_TRUE(get_wave_info(
			(spool + "\\" + row.made).c_str(), &bits, &channels, &rate, &pitch));
		EXPECT_EQ(bits, row.bits);
		EXPECT_EQ(rate, 44100);
		EXPECT_EQ(outcome(), "Success!");
	}
	EXPECT_TRUE(names_in(h.config + "\\temp\\plain").empty()) << "no copy stays";
}

TEST_F(sound_files, keep_their_loop_and_their_root_note)
{
	ASSERT_EQ(bring("a.aiff", aiff_file()), 1);
	u8 bits = 0, channels = 0, pitch = 0;
	int rate = 0;
	const std::string made = spool + "\\a.wav";
	ASSERT_TRUE(get_wave_info(made.c_str(), &bits, &channels, &rate, &pitch));
	EXPECT_EQ(pitch, 57);
	// One loop, from frame 1 to frame 2, which is the last one in it.
	const bytes file = *h.content(made);
	const bytes loop = word(1) + word(0) + bytes(8) + word(1) + word(2);
	EXPECT_NE(std::search(file.begin(), file.end(), loop.begin(), loop.end()), file.end());
}

TEST_F(sound_files, a_plain_one_goes_as_it_stands)
{
	const bytes plain = riff(fmt(mono_24) + chunk("data", hex("01 02 03 04 05 06")));
	ASSERT_EQ(bring("p.wav", plain), 1);
	EXPECT_EQ(data("p.wav", 6), hex("01 02 03 04 05 06"));
	EXPECT_FALSE(h.logged("[I] Reading"));
}

// As it lies in the spool then, its format has a number whose explanation was left out.
TEST_F(sound_files, an_extensible_one_is_kept_and_converted_later)
{
	const bytes extension = word(22, 2) + word(24, 2) + word(0) +
				hex("01 00 00 00 00 00 10 00 80 00 00 AA 00 38 9B 71");
	ASSERT_EQ(bring("q.wav", riff(fmt(mono_24, extension, 0xFFFE) +
					 chunk("data", hex("00 34 12 00 00 80")))),
		1);
	EXPECT_EQ(data("q.wav", 6), hex("00 34 12 00 00 80"));
	EXPECT_EQ(import_sound((spool + "\\q.wav").c_str(), window_samples, 16, 0, 0, 0, 83), 1)
		<< import_failure;
	EXPECT_EQ(data("q.wav", 4), hex("34 12 00 80"));
}

// What neither way can read is refused by name, and Stop, a full disk and a file that ends
// inside its head leave nothing behind.
TEST_F(sound_files, what_cannot_be_read_is_refused_in_words)
{
	EXPECT_EQ(bring("x.wav", riff(fmt({ 1, 4, 1, 8000 }, {}, 0x45) + chunk("data", bytes(64)))),
		0);
	EXPECT_EQ(import_failure, "This WAV file holds sound of a kind that this program cannot "
				  "read. Save it as a plain WAV file first.");
	EXPECT_EQ(outcome(), "Cannot analyze original file");
	EXPECT_EQ(bring("y.akp", text("RIFF") + word(4) + text("APRG")), 0);
	EXPECT_EQ(import_failure, "This is an AKAI program file (AKP). Save it as a WAV file "
				  "first.");
	EXPECT_EQ(bring("z.wav", riff(fmt(floats, {}, 3) + chunk("data", {}))), 0);
	EXPECT_EQ(import_failure, "It holds no sound that can be read.");
	h.disk.space_left = 60;
	EXPECT_EQ(bring("c.wav", sounds[2].file), 0);
	EXPECT_NE(import_failure, "");
	EXPECT_TRUE(names_in(spool).empty());
	EXPECT_TRUE(names_in(h.config + "\\temp\\plain").empty());
}

} // namespace

} // namespace velmor
