// test_wave_resample.cpp - conversions: worked out by hand, and against a slow telling of the rules

#include "src/waveqx.h"
#include "tests/support/test_host.h"
#include "tests/support/wave_model.h"
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <random>

namespace velmor
{

namespace
{

std::vector<u8> operator+(std::vector<u8> a, const std::vector<u8> &b)
{
	a.insert(a.end(), b.begin(), b.end());
	return a;
}

std::vector<u8> word(u64 value, int count = 4)
{
	std::vector<u8> out;
	for (int i = 0; i < count; i++)
		out.push_back(static_cast<u8>(value >> (8 * i)));
	return out;
}

std::vector<u8> chunk(const char *name, const std::vector<u8> &content)
{
	return std::vector<u8>(name, name + 4) + word(content.size()) + content;
}

struct format {
	u32 channels, bits, frame, rate;
};

std::vector<u8> fmt(const format &f, std::vector<u8> extension = {})
{
	return chunk("fmt ", word(1, 2) + word(f.channels, 2) + word(f.rate) +
				     word(f.rate * f.frame) + word(f.frame, 2) + word(f.bits, 2) +
				     extension);
}

std::vector<u8> riff(const std::vector<u8> &chunks)
{
	return std::vector<u8>{ 'R', 'I', 'F', 'F' } + word(chunks.size() + 4) +
	       std::vector<u8>{ 'W', 'A', 'V', 'E' } + chunks;
}

struct wave_resample : host_test {
	std::string in = h.config + "\\in.wav", out = h.config + "\\out.wav";

	bool convert(const std::vector<u8> &source, u32 channels, u32 mode, u32 bits, u64 rate)
	{
		h.put_content(in, source);
		return resample(0, in.c_str(), out.c_str(), channels, mode, bits, rate, 60);
	}
	// The bytes of data of a file whose head is 44 bytes.
	std::vector<u8> data_of(const format &f, const std::vector<u8> &data, u32 channels,
		u32 mode, u32 bits, u64 rate)
	{
		EXPECT_TRUE(
			convert(riff(fmt(f) + chunk("data", data)), channels, mode, bits, rate));
		const std::vector<u8> file = h.content(out).value();
		return { file.begin() + 44, file.end() };
	}
};

constexpr format mono_16 = { 1, 16, 2, 44100 }, stereo_16 = { 2, 16, 4, 44100 };
constexpr format mono_24 = { 1, 24, 3, 44100 }, mono_12 = { 1, 12, 2, 44100 };

TEST_F(wave_resample, the_head_is_kept_but_for_its_own_fields)
{
	const std::vector<u8> list = chunk("LIST", hex("AA*5")), fact = chunk("fact", word(77));
	ASSERT_TRUE(
		convert(riff(fmt(stereo_16, hex("16 00 CC*22")) + list + fact +
				chunk("data", hex("01 02 03 04 05 06 07 08")) + chunk("LIST", {})),
			1, mix_mode_left, 24, 48000));
	// 2 frames at 44100 are trunc(2.17) at 48000. The byte rate stays that of the source.
	format now = { 1, 24, 3, 48000 };
	std::vector<u8> expected = riff(fmt(now, hex("16 00 CC*22")) + list + fact +
					chunk("data", hex("00 01 02 00 05 06")));
	for (int i = 0; i < 4; i++)
		expected[static_cast<std::size_t>(28 + i)] =
			word(44100 * 4)[static_cast<std::size_t>(i)];
	// Frame 1 stands at 0.91875, nearest to the last one: a copy of it.
	EXPECT_EQ(h.content(out).value(), expected);
}

TEST_F(wave_resample, depths_at_the_same_rate)
{
	const std::vector<u8> words = hex("01 00 FF 7F 00 80 FF FF");
	EXPECT_EQ(data_of(mono_16, words, 1, 0, 16, 44100), words);
	// 16 to 12: shifted right by 12 without the sign.
	EXPECT_EQ(data_of(mono_16, words, 1, 0, 12, 44100), hex("00 00 FF 07 00 08 FF 0F"));
	EXPECT_EQ(data_of(mono_16, words, 1, 0, 24, 44100),
		hex("00 01 00 00 FF 7F 00 00 80 00 FF FF"));
	EXPECT_EQ(data_of(mono_24, hex("56 34 12 FF FF FF"), 1, 0, 16, 44100), hex("34 12 FF FF"));
	EXPECT_EQ(data_of(mono_24, hex("56 34 12 FF FF FF"), 1, 0, 24, 44100),
		hex("56 34 12 FF FF FF"));
	// 12: 2048 is the largest value, 2049 the smallest; 16 bits of value * 16.
	EXPECT_EQ(data_of(mono_12, hex("00 08 01 08 FF 0F 01 F0"), 1, 0, 16, 44100),
		hex("00 80 10 80 F0 FF 10 00"));
	// Of 32 bits the three low bytes count; a target of 32 bits is never written in four.
	EXPECT_EQ(
		data_of({ 1, 32, 4, 44100 }, hex("11 22 33 44"), 1, 0, 24, 44100), hex("11 22 33"));
	EXPECT_EQ(data_of({ 1, 32, 4, 44100 }, hex("11 22 33 44"), 1, 0, 32, 44100),
		hex("00 11 22 00"));
	// Nothing is read out of 8 bits.
	EXPECT_EQ(data_of({ 1, 8, 1, 44100 }, hex("11 22 33"), 1, 0, 16, 44100), hex("00*6"));
	// An odd size: the half frame is no frame.
	EXPECT_EQ(data_of(mono_16, hex("01 02 03"), 1, 0, 16, 44100), hex("01 02"));
}

TEST_F(wave_resample, channels)
{
	const std::vector<u8> frames = hex("01 00 04 00  FF FF FC FF  00 80 02 00");
	EXPECT_EQ(data_of(stereo_16, frames, 1, 0, 16, 44100), hex("01 00 FF FF 00 80"));
	EXPECT_EQ(data_of(stereo_16, frames, 1, 1, 16, 44100), hex("04 00 FC FF 02 00"));
	// (1 + 4) / 2 is 2, (-1 - 4) / 2 is -2, (-32768 + 2) / 2 is -16383
	EXPECT_EQ(data_of(stereo_16, frames, 1, 2, 16, 44100), hex("02 00 FE FF 01 C0"));
	// Right before average.
	EXPECT_EQ(data_of(stereo_16, frames, 1, 3, 16, 44100), hex("04 00 FC FF 02 00"));
	// Stereo kept stereo carries its left channel only.
	EXPECT_EQ(data_of(stereo_16, frames, 2, 2, 16, 44100),
		hex("01 00 00 00 FF FF 00 00 00 80 00 00"));
	const std::vector<u8> mono = hex("34 12 FF FF");
	EXPECT_EQ(data_of(mono_16, mono, 2, 0, 16, 44100), hex("34 12 00 00 FF FF 00 00"));
	EXPECT_EQ(data_of(mono_16, mono, 2, 1, 16, 44100), hex("00 00 34 12 00 00 FF FF"));
	EXPECT_EQ(data_of(mono_16, mono, 2, 2, 16, 44100), hex("34 12 34 12 FF FF FF FF"));
	EXPECT_EQ(data_of(mono_16, mono, 2, 3, 24, 44100),
		hex("00 34 12 00 34 12 00 FF FF 00 FF FF"));
	EXPECT_EQ(data_of(mono_16, mono, 2, 2, 32, 44100), hex("00 00 34 12*1 00 00 34 12 "
							       "00 00 FF FF 00 00 FF FF"));
	// Of three channels the last is the right one; three stay three with the first alone.
	const format three = { 3, 16, 6, 44100 };
	EXPECT_EQ(data_of(three, hex("01 00 02 00 03 00"), 1, 1, 16, 44100), hex("03 00"));
	EXPECT_EQ(data_of(three, hex("01 00 02 00 03 00"), 3, 0, 16, 44100), hex("01 00 00*4"));
	// Another number of channels: frames of silence.
	EXPECT_EQ(data_of(mono_16, mono, 4, 0, 16, 44100), hex("00*16"));
}

TEST_F(wave_resample, values_between_two_frames)
{
	// 44100 to 88200, factor 0.5: 0, 0.5, 1, 1.5, 2 and the last frame twice.
	// 0 -> 100: 50. 100 -> -101 (half of 201 is 100.5 at 16 bits, exact at 24): -0.5,
	// which is -128 at 24 bits, FFFF80 >> 8 is FFFF. Then the raw last frame.
	EXPECT_EQ(data_of(mono_16, hex("00 00 64 00 9B FF"), 1, 0, 16, 88200),
		hex("00 00 32 00 64 00 9B FF 9B FF 9B FF"));
	// 24 bits, 44100 to 132300: thirds are cut towards zero. 0, -33.3, -66.6, then -100.
	EXPECT_EQ(data_of(mono_24, hex("00 00 00 9C FF FF"), 1, 0, 24, 132300),
		hex("00 00 00 DF FF FF 9C FF FF 9C FF FF 9C FF FF 9C FF FF"));
	// Halved: every second frame.
	EXPECT_EQ(data_of(mono_16, hex("01 00 02 00 03 00 04 00 05 00"), 1, 0, 16, 22050),
		hex("01 00 03 00"));
}

TEST_F(wave_resample, loops_move_with_the_rate)
{
	// Two loops, 18 sampler bytes behind them. 44100 to 22050: halved, cut.
	const std::vector<u8> loops = word(1) + word(0) + word(1001) + word(44100) + word(7) +
				      word(8) + word(2) + word(0) + word(0) + word(0xFFFFFFFF) +
				      word(9) + word(10);
	const std::vector<u8> head =
		hex("47 00 00 01 5E 00 00 00 93 58 00 00 3C 00*15") + word(2) + word(18);
	const std::vector<u8> smpl = chunk("smpl", head + loops + hex("00 00 EE*16"));
	const std::vector<u8> data = chunk("data", hex("01 00 02 00"));
	ASSERT_TRUE(convert(riff(fmt(mono_16) + smpl + data), 1, 0, 16, 22050));
	const std::vector<u8> moved = word(1) + word(0) + word(500) + word(22050) + word(7) +
				      word(8) + word(2) + word(0) + word(0) + word(0x7FFFFFFF) +
				      word(9) + word(10);
	// 1000000000 / 22050 = 45351 = B127
	const std::vector<u8> new_head =
		hex("47 00 00 01 5E 00 00 00 27 B1 00 00 3C 00*15") + word(2) + word(18);
	const std::vector<u8> file = h.content(out).value();
	EXPECT_EQ(std::vector<u8>(file.begin() + 36, file.end()),
		chunk("smpl", new_head + moved + hex("00 00 EE*16")) + chunk("data", hex("01 00")));
	EXPECT_TRUE(h.logged("[D] LOOP REWRITE[0] END 44100 --> 22050"));
	// At the same rate nothing of it moves.
	ASSERT_TRUE(convert(riff(fmt(mono_16) + smpl + data), 1, 0, 16, 44100));
	EXPECT_EQ(h.content(out).value(), riff(fmt(mono_16) + smpl + data));
	// 44100 to 22000: a loop end of 44100 becomes trunc(44100 / 2.00454..), 22000 or one less.
	ASSERT_TRUE(convert(riff(fmt(mono_16) + smpl + data), 1, 0, 16, 22000));
	const double exact = 44100 / (44100.0 / 22000.0);
	EXPECT_TRUE(h.logged(
		format_text("[D] LOOP REWRITE[0] END 44100 --> %d", static_cast<int>(exact))));
	// More loops claimed than the chunk has room for.
	const std::vector<u8> lie = chunk(
		"smpl", hex("00*28 FF FF FF 7F 00*4") + word(0) + word(0) + word(10) + word(20));
	ASSERT_TRUE(convert(riff(fmt(mono_16) + lie + data), 1, 0, 16, 22050));
	const std::vector<u8> cut = h.content(out).value();
	EXPECT_EQ(std::vector<u8>(cut.begin() + 88, cut.end()),
		word(5) + word(10) + chunk("data", hex("01 00")));
}

TEST_F(wave_resample, what_cannot_be_converted_is_refused)
{
	const std::vector<u8> data = chunk("data", hex("00*8"));
	h.put_content(out, hex("AA"));
	struct {
		const char *words;
		std::vector<u8> file;
		u64 rate;
	} rows[] = {
		{ "[F] Invalid wave-file [%s](RIFF-Header missing)", {}, 44100 },
		{ "[F] Invalid wave-file [%s](RIFF-Header missing)",
			hex("52 49 46 58") + word(40) + hex("57 41 56 45") + fmt(mono_16) + data,
			44100 },
		{ "[F] Invalid wave-file [%s](WAVEfmt-Header missing)", riff(data + data), 44100 },
		{ "[F] Invalid wave-file [%s](No data-section)", riff(fmt(mono_16)), 44100 },
		{ "[F] Invalid wave-file [%s](No data-section)",
			riff(fmt(mono_16) + hex("4C 49 53 54 FF FF FF FF") + data), 44100 },
		{ "block align is 0", riff(fmt({ 1, 16, 0, 44100 }) + data), 44100 },
		{ "no channels", riff(fmt({ 0, 16, 2, 44100 }) + data), 44100 },
		{ "no sampling rate", riff(fmt({ 1, 16, 2, 0 }) + data), 44100 },
		{ "no sampling rate", riff(fmt(mono_16) + data), 0 },
		// 4 frames at 1 Hz would be 17 GB at the highest rate.
		{ "Failed to allocate", riff(fmt({ 1, 16, 2, 1 }) + data), 0xFFFFFFFF },
		{ "no such sampling rate", riff(fmt({ 1, 16, 2, 1 }) + data), 0x100000000 },
	};
	for (const auto &row : rows) {
		SCOPED_TRACE(row.words);
		h.forget_log();
		EXPECT_FALSE(convert(row.file, 1, 0, 16, row.rate));
		std::string wanted = row.words;
		if (const std::size_t at = wanted.find("%s"); at != wanted.npos)
			wanted.replace(at, 2, in);
		bool said = false;
		for (const std::string &line : h.log())
			said |= line.find(wanted) != line.npos;
		EXPECT_TRUE(said);
		EXPECT_EQ(h.content(out).value(), hex("AA"));
	}
	EXPECT_FALSE(resample(0, (in + "x").c_str(), out.c_str(), 1, 0, 16, 44100, 0));
	EXPECT_TRUE(h.logged("[F] Cannot stat [" + in + "x]"));
}

TEST_F(wave_resample, a_disk_that_fails_leaves_both_files_as_they_were)
{
	const std::vector<u8> source = riff(fmt(mono_16) + chunk("data", hex("00*800")));
	h.put_content(out, hex("AA"));
	h.disk.space_left = 300;
	EXPECT_FALSE(convert(source, 1, 0, 16, 22050));
	EXPECT_TRUE(h.logged("[F] Cannot write to [" + out + "]"));
	h.disk.space_left.reset();
	h.disk.open_for_writing = EACCES;
	EXPECT_FALSE(resample(0, in.c_str(), out.c_str(), 1, 0, 16, 22050, 0));
	EXPECT_TRUE(h.logged("[F] Cannot create [" + out + "]"));
	h.disk.open_for_writing = 0;
	EXPECT_EQ(h.content(out).value(), hex("AA"));
	EXPECT_FALSE(resample(
		0, in.c_str(), (h.config + "\\none\\out.wav").c_str(), 1, 0, 16, 22050, 0));
	// A file converted onto itself: whole or not at all.
	h.disk.space_left = 300;
	EXPECT_FALSE(resample(0, in.c_str(), in.c_str(), 1, 0, 16, 22050, 0));
	EXPECT_EQ(h.content(in).value(), source);
	h.disk.space_left.reset();
	EXPECT_TRUE(resample(0, in.c_str(), in.c_str(), 1, 0, 16, 22050, 0));
	EXPECT_EQ(h.content(in).value().size(), 444u);
	std::vector<std::string> names;
	host.files->list(h.config.c_str(), &names);
	EXPECT_EQ(names.size(), 3u); // in, out and the spool: nothing temporary
}

TEST_F(wave_resample, powers)
{
	EXPECT_EQ(power2(0), 1u);
	EXPECT_EQ(power2(12), 4096u);
	EXPECT_EQ(power2(31), 0x80000000u);
	EXPECT_EQ(power2(200), 0u);
}

// ---- Against the slow telling ------------------------------------------------------------

struct random_files {
	std::mt19937 dice;

	u32 roll(u32 count) { return std::uniform_int_distribution<u32>(0, count - 1)(dice); }
	template <class type, std::size_t count> type pick(const type (&from)[count])
	{
		return from[roll(count)];
	}
	std::vector<u8> noise(u32 count)
	{
		std::vector<u8> out(count);
		for (u8 &b : out)
			b = static_cast<u8>(dice());
		return out;
	}
	u32 rate()
	{
		static constexpr u32 usual[] = { 8000, 11025, 16000, 22000, 22050, 32000, 44100,
			48000, 96000, 192000 };
		return roll(4) ? pick(usual) : 1000 + roll(200000);
	}
	std::vector<u8> smpl()
	{
		const u32 loops = roll(4), claimed = roll(8) ? loops : roll(100);
		std::vector<u8> out = noise(28) + word(claimed) + word(18);
		for (u32 i = 0; i < loops; i++)
			out = out + noise(8) + word(roll(100000)) + word(dice()) + noise(8);
		out = out + noise(roll(3) * 9);
		if (roll(8) == 0)
			out.resize(roll(40));
		return chunk("smpl", out);
	}
	std::vector<u8> file()
	{
		static constexpr u32 depth[] = { 8, 12, 16, 16, 24, 24, 32, 20, 0 };
		static constexpr u32 count[] = { 1, 1, 1, 2, 2, 2, 3, 4, 6 };
		format f = { pick(count), pick(depth), 0, rate() };
		f.frame = (f.bits + 7) / 8 * f.channels;
		if (roll(10) == 0)
			f.frame = roll(12); // a frame that does not fit its values
		std::vector<u8> extension = noise(roll(2) ? 0 : roll(2) ? 2 : 24);
		std::vector<u8> chunks = fmt(f, extension);
		for (u32 i = roll(4); i > 0; i--) {
			switch (roll(4)) {
			case 0:
				chunks = chunks + chunk("LIST", noise(roll(30)));
				break;
			case 1:
				chunks = chunks + chunk("fact", noise(4 + roll(3)));
				break;
			default:
				chunks = chunks + smpl();
				break;
			}
		}
		std::vector<u8> data = chunk("data", noise(roll(roll(40) ? 600 : 70000)));
		if (roll(10) == 0)
			data[4] = static_cast<u8>(data[4] + 1 + roll(200)); // a length that lies
		chunks = chunks + data;
		if (roll(3) == 0)
			chunks = chunks + smpl();
		std::vector<u8> out = riff(chunks);
		if (roll(15) == 0)
			out.resize(roll(static_cast<u32>(out.size()) + 1));
		return out;
	}
};

TEST_F(wave_resample, random_files_convert_as_told)
{
	current_run_mode.diagnostics = false;
	random_files files{ std::mt19937(20240611) };
	static constexpr u32 depth[] = { 16, 16, 12, 24, 32, 8, 20, 0, 28 };
	static constexpr u32 count[] = { 1, 1, 2, 2, 3, 4, 0 };
	int taken = 0;
	for (int i = 0; i < 600; i++) {
		const std::vector<u8> source = files.file();
		const u32 channels = files.pick(count), mode = files.roll(4),
			  bits = files.pick(depth);
		const u32 rate = source.size() > 28 && files.roll(4) == 0
					 ? source[24] | source[25] << 8 | u32{ source[26] } << 16
					 : files.rate();
		const auto expected = wave_model::resample(source, channels, mode, bits, rate);
		ASSERT_EQ(convert(source, channels, mode, bits, rate), expected.has_value()) << i;
		if (!expected)
			continue;
		taken++;
		ASSERT_EQ(h.content(out).value(), *expected)
			<< "file " << i << ": " << channels << " channels, mode " << mode << ", "
			<< bits << " bits, " << rate << " Hz";
	}
	EXPECT_GT(taken, 400);
}

// Longer than any block, at factors that put the places of the blocks everywhere.
TEST_F(wave_resample, long_files_convert_as_told)
{
	current_run_mode.diagnostics = false;
	random_files files{ std::mt19937(7) };
	struct {
		format f;
		u32 bytes, channels, mode, bits, rate;
	} rows[] = {
		{ { 1, 16, 2, 44100 }, 500000, 1, 0, 16, 22050 },
		{ { 2, 24, 6, 48000 }, 700000, 1, 2, 16, 44100 },
		{ { 1, 16, 2, 44100 }, 150000, 2, 2, 24, 96000 },
		{ { 2, 16, 4, 44100 }, 500000, 1, 1, 12, 44100 },
		{ { 6, 32, 24, 192000 }, 2000000, 1, 1, 24, 7 },
		{ { 200, 16, 400, 44100 }, 2000000, 1, 1, 16, 44101 },
		{ { 1, 24, 60000, 44100 }, 3000000, 1, 0, 16, 16000 },
		{ { 1, 16, 2, 3 }, 20, 1, 0, 16, 96000 },
	};
	for (const auto &row : rows) {
		const std::vector<u8> source =
			riff(fmt(row.f) + chunk("data", files.noise(row.bytes)));
		const auto expected =
			wave_model::resample(source, row.channels, row.mode, row.bits, row.rate);
		ASSERT_TRUE(expected);
		ASSERT_TRUE(convert(source, row.channels, row.mode, row.bits, row.rate));
		ASSERT_TRUE(h.content(out).value() == *expected) << row.rate;
	}
}

TEST_F(wave_resample, random_files_are_put_in_order_as_told)
{
	current_run_mode.diagnostics = false;
	random_files files{ std::mt19937(99) };
	int taken = 0;
	for (int i = 0; i < 600; i++) {
		const std::vector<u8> source = files.file();
		const u32 pitch = files.dice();
		const auto expected = wave_model::akai_it(source, pitch);
		h.put_content(in, source);
		ASSERT_EQ(akai_it(in.c_str(), out.c_str(), pitch), expected.has_value()) << i;
		taken += expected.has_value();
		if (expected) {
			ASSERT_EQ(h.content(out).value(), *expected) << i;
		}
	}
	EXPECT_GT(taken, 400);
}

} // namespace

} // namespace velmor
