// test_wave_resample.cpp - conversions: some worked out by hand, and many against a slow telling of the rules

#include "platform/backends.h"
#include "src/waveqx.h"
#include "tests/support/wave_files.h"
#include "tests/support/wave_model.h"
#include <cerrno>
#include <random>

namespace velmor
{

namespace
{

struct wave_resample : host_test {
	std::string in = h.config + "\\in.wav", out = h.config + "\\out.wav";

	bool convert(const bytes &source, u32 channels, u32 mode, u32 bits, u64 rate)
	{
		h.put_content(in, source);
		return resample(0, in.c_str(), out.c_str(), channels, mode, bits, rate, 60);
	}
	bytes result() { return h.content(out).value(); }
};

// What the slow telling below could have misread in the same way, and what noise does not meet.
TEST_F(wave_resample, worked_out_by_hand)
{
	const struct {
		format from;
		const char *data;
		u32 channels, mode, bits, rate;
		const char *result;
	} rows[] = {
		// 16 to 12: shifted right by 12 without the sign.
		{ mono_16, "01 00 FF 7F 00 80 FF FF", 1, 0, 12, 44100, "00 00 FF 07 00 08 FF 0F" },
		{ mono_24, "56 34 12 FF FF FF", 1, 0, 16, 44100, "34 12 FF FF" },
		// 12: 2048 is the largest value, 2049 the smallest; 16 bits of value * 16.
		{ mono_12, "00 08 01 08 FF 0F 01 F0", 1, 0, 16, 44100, "00 80 10 80 F0 FF 10 00" },
		// Its sign shows in an average: 2048 and 0 give 4000, 2049 and 0 give C008.
		{ { 2, 12, 4, 44100 }, "00 08 00 00 01 08 00 00", 1, 2, 16, 44100, "00 40 08 C0" },
		// Of 32 bits the three low bytes count; a target of 32 bits is written in three.
		{ { 1, 32, 4, 44100 }, "11 22 33 44", 1, 0, 32, 44100, "00 11 22 00" },
		// Nothing is read out of 8 bits.
		{ { 1, 8, 1, 44100 }, "11 22 33", 1, 0, 16, 44100, "00*6" },
		// (1 + 4) / 2 is 2, (-1 - 4) / 2 is -2, (-32768 + 2) / 2 is -16383
		{ stereo_16, "01 00 04 00 FF FF FC FF 00 80 02 00", 1, 2, 16, 44100,
			"02 00 FE FF 01 C0" },
		// Right before average; stereo kept stereo carries its left channel only.
		{ stereo_16, "01 00 04 00", 1, 3, 16, 44100, "04 00" },
		{ stereo_16, "01 00 04 00", 2, 2, 16, 44100, "01 00 00 00" },
		{ mono_16, "34 12 FF FF", 2, 1, 16, 44100, "00 00 34 12 00 00 FF FF" },
		{ mono_16, "34 12", 2, 2, 32, 44100, "00 00 34 12 00 00 34 12" },
		// Of three channels the last is the right one; another number is silence.
		{ { 3, 16, 6, 44100 }, "01 00 02 00 03 00", 1, 1, 16, 44100, "03 00" },
		{ mono_16, "34 12", 4, 0, 16, 44100, "00*8" },
		// Factor 0.5: 0, 50, 100, -0.5 (FFFF80 at 24 bits), and the last frame as it is.
		{ mono_16, "00 00 64 00 9B FF", 1, 0, 16, 88200,
			"00 00 32 00 64 00 9B FF 9B FF 9B FF" },
		// Thirds are cut towards zero: 0, -33.3, then the nearest is the last one.
		{ mono_24, "00 00 00 9C FF FF", 1, 0, 24, 132300,
			"00 00 00 DF FF FF 9C FF FF 9C FF FF 9C FF FF 9C FF FF" },
		{ mono_16, "01 00 02 00 03 00 04 00 05 00", 1, 0, 16, 22050, "01 00 03 00" },
	};
	for (const auto &row : rows) {
		SCOPED_TRACE(row.result);
		ASSERT_TRUE(convert(riff(fmt(row.from) + chunk("data", hex(row.data))),
			row.channels, row.mode, row.bits, row.rate));
		const bytes file = result();
		EXPECT_EQ(bytes(file.begin() + 44, file.end()), hex(row.result));
	}
}

TEST(wave_powers, of_two)
{
	EXPECT_EQ(power2(0), 1u);
	EXPECT_EQ(power2(31), 0x80000000u);
	EXPECT_EQ(power2(200), 0u);
}

TEST_F(wave_resample, loops_move_with_the_rate)
{
	const bytes data = chunk("data", hex("01 00 02 00"));
	// 1000000000 / 22050 = 45351; the loop of 24 bytes, then what the samplers put behind it.
	auto smpl = [](u32 period, u32 start, u32 end, const char *behind) {
		return chunk("smpl", word(7) + word(8) + word(period) + word(60) + hex("00*12") +
					     word(1) + word(18) + word(1) + word(0) + word(start) +
					     word(end) + hex(behind));
	};
	const bytes whole = smpl(22675, 1001, 0xFFFFFFFF, "00*8 EE*18");
	ASSERT_TRUE(convert(riff(fmt(mono_16) + whole + data), 1, 0, 16, 22050));
	const bytes file = result();
	EXPECT_EQ(bytes(file.begin() + 36, file.end()),
		smpl(45351, 500, 0x7FFFFFFF, "00*8 EE*18") + chunk("data", hex("01 00")));
	EXPECT_TRUE(h.logged("[D] LOOP REWRITE[0] START 1001 --> 500"));
	// A chunk that ends inside its loop's end: what is behind it is no loop.
	bytes cut = smpl(22675, 1001, 5000, "");
	cut.resize(cut.size() - 2);
	cut[4] = static_cast<u8>(cut[4] - 2);
	ASSERT_TRUE(convert(riff(fmt(mono_16) + cut + data), 1, 0, 16, 22050));
	const bytes kept = result();
	EXPECT_TRUE(std::equal(cut.begin() + 28, cut.end(), kept.begin() + 36 + 28));
}

TEST_F(wave_resample, what_cannot_be_converted_is_refused)
{
	const bytes data = chunk("data", hex("00*8"));
	h.put_content(out, hex("AA"));
	const struct {
		const char *words;
		bytes file;
		u64 rate;
	} rows[] = {
		{ "(RIFF-Header missing)", {}, 44100 },
		{ "(RIFF-Header missing)",
			text("RIFX") + word(40) + text("WAVE") + fmt(mono_16) + data, 44100 },
		{ "(WAVEfmt-Header missing)", riff(data + data), 44100 },
		{ "(No data-section)", riff(fmt(mono_16)), 44100 },
		{ "(No data-section)", riff(fmt(mono_16) + text("LIST") + word(0xFFFFFFFF) + data),
			44100 },
		// The walk to the data comes first.
		{ "(No data-section)", riff(fmt({ 0, 16, 0, 0 })), 44100 },
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
		EXPECT_TRUE(logged_part(h, row.words));
		EXPECT_EQ(result(), hex("AA"));
	}
	EXPECT_FALSE(resample(0, (in + "x").c_str(), out.c_str(), 1, 0, 16, 44100, 0));
	EXPECT_TRUE(h.logged("[F] Cannot stat [" + in + "x]"));
}

TEST_F(wave_resample, a_disk_that_fails_is_told_and_nothing_is_lost)
{
	const bytes source = riff(fmt(mono_16) + chunk("data", hex("00*800")));
	h.disk.open_for_writing = EACCES;
	EXPECT_FALSE(convert(source, 1, 0, 16, 22050));
	EXPECT_TRUE(h.logged("[F] Cannot create [" + out + "]"));
	// A file converted onto itself: whole or not at all.
	h.disk = { .space_left = 300 };
	EXPECT_FALSE(resample(0, in.c_str(), in.c_str(), 1, 0, 16, 22050, 0));
	EXPECT_TRUE(h.logged("[F] Cannot write to [" + in + "]"));
	EXPECT_EQ(h.content(in).value(), source);
	EXPECT_EQ(h.temporary_files(), 0);
}

// The largest values are for the log alone, and cost no second pass.
TEST_F(wave_resample, the_source_is_read_once)
{
	static std::size_t read_bytes;
	static files_service counting;
	counting = *host.files;
	counting.read = [](int file, void *to, std::size_t count, std::size_t *moved) {
		const int code = posix_files.read(file, to, count, moved);
		read_bytes += *moved;
		return code;
	};
	host.files = &counting;
	bytes data(2000000);
	data[1999996] = 0x34, data[1999997] = 0x12,
	data[1999998] = 0x01; // left and right of the last
	for (const u32 rate : { 44100u, 96000u, 22050u, 3u }) {
		read_bytes = 0;
		ASSERT_TRUE(convert(riff(fmt(stereo_16) + chunk("data", data)), 1, 0, 16, rate));
		EXPECT_TRUE(h.logged("[D] Sample Peak-Value: 256 (Right) 1192960 (Left), SHIFTER: "
				     "8 (>>) [2 Bytes per Sample]"))
			<< rate;
		EXPECT_LT(read_bytes, 2000000u + 20000) << rate;
		h.forget_log();
	}
}

// ---- Against the slow telling ------------------------------------------------------------

struct random_files {
	std::mt19937 dice;

	u32 roll(u32 count) { return std::uniform_int_distribution<u32>(0, count - 1)(dice); }
	template <class type, std::size_t count> type pick(const type (&from)[count])
	{
		return from[roll(count)];
	}
	bytes noise(u32 count)
	{
		bytes out(count);
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
	bytes smpl()
	{
		const u32 loops = roll(4), claimed = roll(8) ? loops : roll(100);
		bytes out = noise(28) + word(claimed) + word(18);
		for (u32 i = 0; i < loops; i++)
			out = out + noise(8) + word(roll(100000)) + word(dice()) + noise(8);
		out = out + noise(roll(3) * 9);
		if (roll(8) == 0)
			out.resize(roll(40));
		return chunk("smpl", out);
	}
	bytes file()
	{
		static constexpr u32 depth[] = { 8, 12, 16, 16, 24, 24, 32, 20, 0 };
		static constexpr u32 count[] = { 1, 1, 1, 2, 2, 2, 3, 4, 6 };
		format f = { pick(count), pick(depth), 0, rate() };
		f.frame = (f.bits + 7) / 8 * f.channels;
		if (roll(10) == 0)
			f.frame = roll(12); // a frame that does not fit its values
		bytes extension = noise(roll(2) ? 0 : roll(2) ? 2 : 24);
		bytes chunks = fmt(f, extension);
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
		bytes data = chunk("data", noise(roll(roll(40) ? 600 : 70000)));
		if (roll(10) == 0)
			data[4] = static_cast<u8>(data[4] + 1 + roll(200)); // a length that lies
		chunks = chunks + data;
		if (roll(3) == 0)
			chunks = chunks + smpl();
		bytes out = riff(chunks);
		if (roll(15) == 0)
			out.resize(roll(static_cast<u32>(out.size()) + 1));
		return out;
	}
};

// How a random file is converted.
struct random_wish {
	u32 channels, mode, bits, rate;

	random_wish(random_files &files, const bytes &source)
	{
		static constexpr u32 depth[] = { 16, 16, 12, 24, 32, 8, 20, 0, 28 };
		static constexpr u32 count[] = { 1, 1, 2, 2, 3, 4, 0 };
		channels = files.pick(count);
		mode = files.roll(4);
		bits = files.pick(depth);
		rate = source.size() > 28 && files.roll(4) == 0
			       ? source[24] | source[25] << 8 | u32{ source[26] } << 16
			       : files.rate();
	}
};

// Into a file as it stands, and into one in the order of the spool.
TEST_F(wave_resample, random_files_convert_as_told)
{
	current_run_mode.diagnostics = false;
	random_files files{ std::mt19937(20240611) };
	int taken = 0;
	for (int i = 0; i < 600; i++) {
		const bytes source = files.file();
		const random_wish w(files, source);
		const auto expected =
			wave_model::resample(source, w.channels, w.mode, w.bits, w.rate);
		ASSERT_EQ(convert(source, w.channels, w.mode, w.bits, w.rate), expected.has_value())
			<< i;
		if (!expected)
			continue;
		taken++;
		ASSERT_EQ(result(), *expected)
			<< "file " << i << ": " << w.channels << " channels, mode " << w.mode
			<< ", " << w.bits << " bits, " << w.rate << " Hz";
		const auto ordered = wave_model::akai_it(*expected, 60);
		const conversion_result end = convert_for_spool(
			{ in.c_str(), out.c_str(), w.channels, w.mode, w.bits, w.rate, 60, 0 });
		ASSERT_EQ(end.end == conversion_end::done, ordered.has_value()) << i;
		ASSERT_EQ(result(), ordered.value_or(*expected)) << i;
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
		const bytes source = riff(fmt(row.f) + chunk("data", files.noise(row.bytes)));
		const auto expected =
			wave_model::resample(source, row.channels, row.mode, row.bits, row.rate);
		ASSERT_TRUE(expected);
		ASSERT_TRUE(convert(source, row.channels, row.mode, row.bits, row.rate));
		ASSERT_TRUE(result() == *expected) << row.rate;
	}
}

TEST_F(wave_resample, random_files_are_put_in_order_as_told)
{
	current_run_mode.diagnostics = false;
	random_files files{ std::mt19937(99) };
	int taken = 0;
	for (int i = 0; i < 600; i++) {
		const bytes source = files.file();
		const u32 pitch = files.dice();
		const auto expected = wave_model::akai_it(source, pitch);
		h.put_content(in, source);
		ASSERT_EQ(akai_it(in.c_str(), out.c_str(), pitch), expected.has_value()) << i;
		taken += expected.has_value();
		if (expected) {
			ASSERT_EQ(result(), *expected) << i;
		}
	}
	EXPECT_GT(taken, 400);
}

} // namespace

} // namespace velmor
