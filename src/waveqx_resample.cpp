// waveqx_resample.cpp - a WAV file in another rate, depth and number of channels
//
// What is kept unchanged on purpose: the byte rate of the head, a fact chunk, and that a
// file kept at its number of channels carries its left channel only.
//
// The file goes through in blocks, so a long one needs no more memory than a short one.
// A place in the source is i * factor for every i: a running sum would drift.
//
// Knows nothing of: the spool, which chunks the rest of the system wants, how a value is read.

#include "src/velmor.h"
#include "src/waveqx.h"
#include "src/waveqx_chunks.h"
#include "src/waveqx_pcm.h"
#include <algorithm>
#include <bit>
#include <vector>

namespace velmor
{

// Offsets in a smpl chunk, from its name on.
enum : int {
	smpl_loops = 36,
	smpl_first_loop = 44,
	smpl_loop_size = 24,
	loop_start = 8, // in a loop record
	loop_end = 12,
};

static constexpr u64 window_bytes = 512 * 1024; // of the source; two frames of any size fit
static constexpr u64 output_bytes = 256 * 1024;
static constexpr u64 block_frames = 8 * 1024; // values in memory
static constexpr u64 overshoot = 8;           // a value may be wider than the frame that holds it
static constexpr double most_frames = 0x1p40; // far past what a length field can tell
static constexpr u32 logged_loops = 64;       // a chunk may claim millions
static constexpr int shown_blocks = 64;       // between two looks at the interface

u32 power2(u32 n)
{
	u32 power = 1;
	for (u32 i = 0; i < n && power; i++)
		power *= 2;
	return power;
}

namespace
{

// ---- What is written into a frame ----------------------------------------------------

enum lane_kind {
	lane_left,
	lane_right,
	lane_mix, // of the signed values of both
};

// One value, at up to two places of a frame; the rest of the frame is silence.
struct frame_layout {
	lane_kind lane;
	int slots;
	std::size_t slot[2]; // bytes from the start of the frame
	int width;           // bytes that are written
};

// A slot of less than two bytes (a target of 8 bits) takes the low byte: what the second
// one would overwrite is written anew with the next slot or frame.
frame_layout layout_of(u32 source_channels, u32 channels, u32 mode, u32 bits, std::size_t frame)
{
	const int width = bits < 24 ? 2 : bits == 24 ? 3 : bits > 31 ? 4 : 0;
	auto fitting = [](int wanted, std::size_t room) {
		return static_cast<int>(
			std::min<std::size_t>(static_cast<std::size_t>(wanted), room));
	};
	if (source_channels == channels)
		return { lane_left, 1, { 0, 0 }, fitting(bits < 24 ? 2 : 3, frame) };
	if (channels == 2) {
		const std::size_t second = frame / 2;
		const int fits = fitting(width, second);
		if (mode & mix_mode_split)
			return { lane_left, 2, { 0, second }, fits };
		return { lane_left, 1, { mode & mix_mode_right ? second : 0, 0 }, fits };
	}
	if (channels == 1) {
		const lane_kind lane = mode & mix_mode_right   ? lane_right
				       : mode & mix_mode_split ? lane_mix
							       : lane_left;
		return { lane, 1, { 0, 0 }, fitting(width, frame) };
	}
	return { lane_left, 0, { 0, 0 }, 0 };
}

template <int width>
void put_values(const u32 *values, std::size_t count, u8 *at, std::size_t frame)
{
	for (std::size_t k = 0; k < count; k++, at += frame)
		for (int byte = 0; byte < width; byte++)
			at[byte] = static_cast<u8>(values[k] >> (8 * byte));
}

void put_slot(const u32 *values, std::size_t count, u8 *at, std::size_t frame, int width)
{
	if (width == 2 && frame == 2) {
		for (std::size_t k = 0; k < count; k++) {
			u16 word = static_cast<u16>(values[k]);
			if constexpr (std::endian::native == std::endian::big)
				word = static_cast<u16>(word << 8 | word >> 8);
			std::memcpy(at + 2 * k, &word, 2);
		}
		return;
	}
	static constexpr decltype(&put_values<1>) by_width[] = { put_values<0>, put_values<1>,
		put_values<2>, put_values<3>, put_values<4> };
	by_width[width](values, count, at, frame);
}

// ---- One conversion ------------------------------------------------------------------

struct conversion {
	const char *source, *target;
	u32 channels, mode, bits;
	u32 rate;
	int window; // whose events run, 0 for none

	input_file file;
	wave_head head;
	wave_chunk data, smpl;
	bool has_smpl;
	owned_bytes prefix; // the file up to the first byte of data
	std::size_t prefix_size;

	std::int64_t frames, new_frames;
	double factor;
	std::size_t right; // bytes from the left value to the right one
	std::size_t frame; // bytes of a new frame
	int shifter;
	frame_layout layout;

	std::vector<u8> in, out;
	std::vector<i32> first, second;

	bool resampled() const { return head.sample_rate != rate; }
};

bool failed(const char *words, const char *name)
{
	log_line("[F] %s [%s]\r\n", words, name);
	return false;
}

bool corrupted(const conversion &c, const char *why)
{
	log_line("[F] (%s:%d) File-Header corrupted [%s] (%s)\r\n", __FILE_NAME__, __LINE__,
		c.source, why);
	return false;
}

bool invalid(const conversion &c, const char *why)
{
	log_line("[F] Invalid wave-file [%s](%s)\r\n", c.source, why);
	return false;
}

bool no_memory(u64 bytes)
{
	log_line("[F] (%s:%d) Failed to allocate %llu Bytes of data!\r\n", __FILE_NAME__, __LINE__,
		static_cast<unsigned long long>(bytes));
	return false;
}

// ---- Reading the head ------------------------------------------------------------------

bool find_data(conversion &c)
{
	u64 at = u64{ c.head.fmt_length } + 20;
	for (int i = 0; i < max_wave_chunks && at < c.file.size; i++) {
		wave_chunk chunk = {};
		if (read_wave_chunk(c.file, at, &chunk))
			return failed("Cannot read", c.source);
		log_line("[D] Found Chunk: [%.4s] (%u Bytes)\r\n", chunk.name, chunk.size);
		if (chunk.is("data")) {
			c.data = chunk;
			return true;
		}
		if (chunk.is("smpl")) {
			c.smpl = chunk;
			c.has_smpl = true;
			log_line("[D] Sample Header found at: %llu!\r\n",
				static_cast<unsigned long long>(at));
		}
		at = chunk.next();
	}
	return invalid(c, "No data-section");
}

bool read_head(conversion &c)
{
	if (c.file.measure(c.source))
		return failed("Cannot stat", c.source);
	if (c.file.open(c.source))
		return failed("Cannot open", c.source);
	if (read_wave_head(c.file, &c.head))
		return failed("Cannot read", c.source);
	if (!c.head.riff)
		return invalid(c, "RIFF-Header missing");
	if (!c.head.wave)
		return invalid(c, "WAVEfmt-Header missing");
	log_line("[D] FMT_LENGTH: %u Bytes, %d Bytes per Sample [%s], Version: %d, Bits: %d, "
		 "CHANNELS: %d\r\n",
		c.head.fmt_length, c.head.bytespersample, c.source, c.head.version,
		c.head.bitspersample, c.head.channels);
	if (c.head.bytespersample == 0)
		return corrupted(c, "block align is 0");
	if (c.head.channels == 0)
		return corrupted(c, "no channels");
	if (c.resampled() && (c.head.sample_rate == 0 || c.rate == 0))
		return corrupted(c, "no sampling rate");
	return find_data(c);
}

// Everything ahead of the data survives; a head shorter than its own fields is padded
// so that they can be set.
bool read_prefix(conversion &c)
{
	const u64 size = c.data.at + 8;
	c.prefix = allocate_bytes(std::max<u64>(size, smallest_file));
	if (!c.prefix)
		return no_memory(size);
	c.prefix_size = static_cast<std::size_t>(size);
	if (c.file.read(0, c.prefix.get(), c.prefix_size))
		return failed("Cannot read", c.source);
	return true;
}

// ---- Changing the head -------------------------------------------------------------------

void rewrite_position(const conversion &c, u8 *at, u32 loop, const char *name)
{
	const u32 old = wave_read_32bit(at);
	const u32 moved = static_cast<u32>(static_cast<u64>(old / c.factor));
	wave_write_32bit(at, moved);
	if (loop < logged_loops)
		log_line("[D] LOOP REWRITE[%u] %s %u --> %u\r\n", loop, name, old, moved);
}

// As many loops as the chunk has room for, whatever it claims.
void rewrite_loops(conversion &c)
{
	if (!c.has_smpl)
		return;
	u8 *smpl = c.prefix.get() + c.smpl.at;
	const u64 size = u64{ c.smpl.size } + 8;
	if (size >= smpl_period + 4)
		wave_write_32bit(smpl + smpl_period, 1000000000 / c.rate);
	const u32 loops = size >= smpl_loops + 4 ? wave_read_32bit(smpl + smpl_loops) : 0;
	u64 at = smpl_first_loop;
	for (u32 i = 0; i < loops && at + loop_end + 4 <= size; i++, at += smpl_loop_size) {
		rewrite_position(c, smpl + at + loop_start, i, "START");
		rewrite_position(c, smpl + at + loop_end, i, "END");
	}
}

void patch_head(conversion &c, u64 data_size)
{
	u8 *head = c.prefix.get();
	wave_write_16bit(head + at_bytespersample, static_cast<u32>(c.frame));
	wave_write_16bit(head + at_bitspersample, c.bits);
	wave_write_16bit(head + at_channels, c.channels);
	wave_write_32bit(head + at_file_length, static_cast<u32>(c.prefix_size + data_size - 8));
	wave_write_32bit(head + at_sample_rate, c.rate);
	wave_write_32bit(head + c.data.at + 4, static_cast<u32>(data_size));
}

// ---- The frames ----------------------------------------------------------------------------

bool read_window(conversion &c, std::int64_t first, std::int64_t count)
{
	const std::size_t bytes =
		static_cast<std::size_t>(count) * c.head.bytespersample + overshoot;
	const u64 at = c.data.at + 8 + static_cast<u64>(first) * c.head.bytespersample;
	if (c.file.read(at, c.in.data(), bytes))
		return failed("Cannot read", c.source);
	return true;
}

source_window window_of(const conversion &c, std::int64_t first, std::size_t channel)
{
	return { c.in.data() + channel, first, c.frames, c.head.bytespersample, c.factor };
}

std::int64_t frames_in_window(const conversion &c)
{
	return static_cast<std::int64_t>((window_bytes - overshoot) / c.head.bytespersample);
}

// The largest signed values, for the log alone: nothing is normalised.
bool find_peaks(conversion &c, i32 *left, i32 *right)
{
	*left = *right = 0;
	const depth_row &depth = depth_of(c.head.bitspersample);
	const std::int64_t most = frames_in_window(c);
	for (std::int64_t done = 0; done < c.frames; done += most) {
		const std::int64_t count = std::min(most, c.frames - done);
		if (!read_window(c, done, count))
			return false;
		auto largest = [&](std::size_t channel, i32 peak) {
			return std::max(peak, depth.largest(window_of(c, done, channel),
						      static_cast<std::size_t>(count)));
		};
		*left = largest(0, *left);
		*right = c.right ? largest(c.right, *right) : *left;
	}
	return true;
}

void scale_raw(const conversion &c, std::size_t count, const i32 *values, u32 *scaled)
{
	const int down = c.shifter;
	const u32 up = power2(static_cast<u32>(-c.shifter));
	if (down > 0)
		for (std::size_t k = 0; k < count; k++)
			scaled[k] = static_cast<u32>(values[k] >> down);
	else
		for (std::size_t k = 0; k < count; k++)
			scaled[k] = static_cast<u32>(values[k]) * up;
}

void scale_mix(
	const conversion &c, std::size_t count, const i32 *left, const i32 *right, u32 *scaled)
{
	const i32 divisor =
		c.shifter > 0 ? static_cast<i32>(power2(static_cast<u32>(c.shifter))) : 1;
	const std::int64_t up = power2(static_cast<u32>(c.shifter < 0 ? -c.shifter : 0));
	for (std::size_t k = 0; k < count; k++) {
		const std::int64_t sum = left[k] / divisor * up + right[k] / divisor * up;
		scaled[k] = static_cast<u32>(sum / 2);
	}
}

void put_block(
	conversion &c, std::int64_t start, std::int64_t first, std::size_t count, u32 *scaled)
{
	const bool mix = c.layout.lane == lane_mix;
	const frame_reader read = depth_of(c.head.bitspersample).read[c.resampled()][!mix];
	const std::size_t channel = c.layout.lane == lane_right ? c.right : 0;
	read(window_of(c, first, channel), start, count, c.first.data());
	if (mix) {
		read(window_of(c, first, c.right), start, count, c.second.data());
		scale_mix(c, count, c.first.data(), c.second.data(), scaled);
	} else {
		scale_raw(c, count, c.first.data(), scaled);
	}
	if (static_cast<std::size_t>(c.layout.slots * c.layout.width) < c.frame)
		std::fill_n(c.out.begin(), count * c.frame, u8{ 0 });
	for (int i = 0; i < c.layout.slots; i++)
		put_slot(scaled, count, c.out.data() + c.layout.slot[i], c.frame, c.layout.width);
}

// Frames of the source that a run of new ones needs.
struct source_run {
	std::int64_t first, count;
};

source_run run_for(const conversion &c, std::int64_t start, std::int64_t count)
{
	if (!c.resampled())
		return { start, count };
	auto index = [&](std::int64_t i) {
		return std::min(
			static_cast<std::int64_t>(static_cast<double>(i) * c.factor), c.frames - 1);
	};
	const std::int64_t first = index(start);
	const std::int64_t last = std::min(index(start + count - 1) + 1, c.frames - 1);
	return { first, last - first + 1 };
}

std::int64_t frames_in_block(const conversion &c)
{
	const double by_source =
		(static_cast<double>(frames_in_window(c)) - 3) / (c.resampled() ? c.factor : 1);
	const std::int64_t most = std::min<std::int64_t>(block_frames, output_bytes / c.frame);
	if (by_source >= static_cast<double>(most))
		return most;
	return std::max<std::int64_t>(1, static_cast<std::int64_t>(by_source));
}

bool stopped(const conversion &c, int block)
{
	if (!c.window)
		return false;
	if (block % shown_blocks == 0)
		host.ui->pump(0);
	return progress_stopped();
}

bool write_frames(conversion &c, new_file &result, int *code)
{
	std::vector<u32> scaled(block_frames);
	const std::int64_t most = frames_in_block(c);
	int block = 0;
	for (std::int64_t done = 0; done < c.new_frames; done += most) {
		const std::int64_t count = std::min(most, c.new_frames - done);
		const source_run run = run_for(c, done, count);
		if (stopped(c, block++)) {
			log_line("[I] Stopped converting [%s]\r\n", c.source);
			return false;
		}
		if (!read_window(c, run.first, run.count))
			return false;
		put_block(c, done, run.first, static_cast<std::size_t>(count), scaled.data());
		*code = result.write(c.out.data(), static_cast<std::size_t>(count) * c.frame);
		if (*code)
			return false;
	}
	return true;
}

// ---- The whole ---------------------------------------------------------------------------

void plan(conversion &c)
{
	c.frames =
		static_cast<std::int64_t>(wave_bytes_held(c.file, c.data) / c.head.bytespersample);
	c.right = (c.head.channels - 1u) * c.head.bytespersample / c.head.channels;
	c.factor = static_cast<double>(c.head.sample_rate) / static_cast<double>(c.rate);
	c.new_frames = c.frames;
	c.frame = (c.bits / 8 + (c.bits % 8 ? 1 : 0)) * c.channels;
	c.shifter = 24 - static_cast<int>(c.bits);
	c.layout = layout_of(c.head.channels, c.channels, c.mode, c.bits, c.frame);
	// Short samples are many, and need no large blocks.
	const u64 source_bytes = static_cast<u64>(c.frames) * c.head.bytespersample;
	c.in.resize(std::min(window_bytes, source_bytes + overshoot));
	c.out.resize(output_bytes + overshoot);
	c.first.resize(block_frames);
	c.second.resize(block_frames);
}

void change_rate(conversion &c)
{
	log_line("[D] We have to resample from %u to %u Samples/Second (Factor: %.02f)\r\n",
		c.head.sample_rate, c.rate, c.factor);
	rewrite_loops(c);
	const double count = static_cast<double>(c.frames) / c.factor;
	c.new_frames = static_cast<std::int64_t>(std::min(count, most_frames));
	log_line("[D] New Sample count: %lld (%.02f)\r\n", static_cast<long long>(c.new_frames),
		count);
}

bool write_target(conversion &c, u64 data_size)
{
	new_file result;
	if (result.open(c.target))
		return failed("Cannot create", c.target);
	int code = result.write(c.prefix.get(), c.prefix_size);
	if (!code && data_size && !write_frames(c, result, &code) && !code)
		return false; // the source failed or the user stopped, and the log says which
	if (!code)
		code = result.finish();
	if (code)
		return failed("Cannot write to", c.target);
	log_line("[I] Successfully written %llu Bytes to [%s]\r\n",
		static_cast<unsigned long long>(c.prefix_size + data_size), c.target);
	return true;
}

bool convert(conversion &c)
{
	if (!read_head(c) || !read_prefix(c))
		return false;
	plan(c);
	i32 left_peak = 0, right_peak = 0;
	if (current_run_mode.diagnostics && !find_peaks(c, &left_peak, &right_peak))
		return false;
	if (c.resampled())
		change_rate(c);
	log_line("[D] ******************** NEW_BYTESPERSAMPLE: %zu *****************\r\n", c.frame);
	log_line("[D] Sample Peak-Value: %d (Right) %d (Left), SHIFTER: %d (%s) [%zu Bytes per "
		 "Sample]\r\n",
		right_peak, left_peak, c.shifter,
		c.shifter > 0   ? ">>"
		: c.shifter < 0 ? "<<"
				: "",
		c.frame);
	const u64 data_size = c.frame * static_cast<u64>(c.new_frames);
	// The length fields have 32 bits.
	if (c.prefix_size + data_size > 0xFFFFFFFF) {
		log_line("[F] (%s:%d) Failed to allocate %llu Bytes of data\r\n", __FILE_NAME__,
			__LINE__, static_cast<unsigned long long>(c.prefix_size + data_size));
		return false;
	}
	log_line("[D] WRITE_OFFSET: %llu (DATA_SIZE_FIELD), NEW_FILE_SIZE: %llu, NEW_DATA_SIZE: "
		 "%llu\r\n",
		static_cast<unsigned long long>(c.data.at + 4),
		static_cast<unsigned long long>(c.prefix_size + data_size),
		static_cast<unsigned long long>(data_size));
	patch_head(c, data_size);
	return write_target(c, data_size);
}

} // namespace

bool resample(int progress_dialog, const char *source, const char *target, unsigned channels,
	unsigned mode, unsigned bits, u64 rate, unsigned)
{
	conversion c = {};
	c.source = source;
	c.target = target;
	c.channels = channels & 0xFF;
	c.mode = mode & 0xFF;
	c.bits = bits & 0xFF;
	c.window = progress_dialog;
	log_line("[D] Resampling [%s] to [%s], Bits: %u, New Channels: %u, Mode: 0x%02X\r\n",
		source, target, c.bits, c.channels, c.mode);
	if (rate > 0xFFFFFFFF)
		return corrupted(c, "no such sampling rate");
	c.rate = static_cast<u32>(rate);
	return convert(c);
}

} // namespace velmor
