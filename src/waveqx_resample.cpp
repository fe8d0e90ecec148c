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
	bool for_spool;
	u32 pitch; // of a smpl chunk that the spool needs and the source lacks

	input_file file;
	wave_head head;
	wave_chunk data, smpl, fact;
	bool has_smpl, has_fact;
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
	// The largest signed values of the frames up to seen, for the log alone.
	i32 left_peak, right_peak;
	std::int64_t seen;

	conversion_result result; // why it ended, as soon as it is known

	bool resampled() const { return head.sample_rate != rate; }
};

bool failed(conversion &c, conversion_end end, int code, const char *words)
{
	c.result = { end, code };
	log_line("[F] %s [%s]\r\n", words, end == conversion_end::unreadable ? c.source : c.target);
	return false;
}

bool cannot_read(conversion &c, int code)
{
	return failed(c, conversion_end::unreadable, code, "Cannot read");
}

bool corrupted(conversion &c, const char *why)
{
	c.result = { conversion_end::no_wave, 0 };
	log_line("[F] (%s:%d) File-Header corrupted [%s] (%s)\r\n", __FILE_NAME__, __LINE__,
		c.source, why);
	return false;
}

bool invalid(conversion &c, const char *why)
{
	c.result = { conversion_end::no_wave, 0 };
	log_line("[F] Invalid wave-file [%s](%s)\r\n", c.source, why);
	return false;
}

bool no_memory(conversion &c, u64 bytes)
{
	c.result = { conversion_end::too_large, 0 };
	log_line("[F] (%s:%d) Failed to allocate %llu Bytes of data!\r\n", __FILE_NAME__, __LINE__,
		static_cast<unsigned long long>(bytes));
	return false;
}

// ---- Reading the head ------------------------------------------------------------------

bool find_data(conversion &c)
{
	bool found = false;
	auto look = [&](const wave_chunk &chunk, u64 number) {
		if (number < logged_chunks)
			log_line("[D] Found Chunk: [%.4s] (%u Bytes)\r\n", chunk.name, chunk.size);
		if (chunk.is("data")) {
			c.data = chunk;
			found = true;
		} else if (chunk.is("smpl")) {
			c.smpl = chunk;
			c.has_smpl = true;
			log_line("[D] Sample Header found at: %llu!\r\n",
				static_cast<unsigned long long>(chunk.at));
		} else if (chunk.is("fact")) {
			c.fact = chunk;
			c.has_fact = true;
		}
		return !found;
	};
	if (const int code = walk_chunks(c.file, c.head, look))
		return cannot_read(c, code);
	return found || invalid(c, "No data-section");
}

bool open_source(conversion &c)
{
	if (const int code = c.file.measure(c.source))
		return failed(c, conversion_end::unreadable, code, "Cannot stat");
	if (const int code = c.file.open(c.source))
		return failed(c, conversion_end::unreadable, code, "Cannot open");
	const int code = read_wave_head(c.file, &c.head);
	return !code || cannot_read(c, code);
}

bool read_head(conversion &c)
{
	if (!open_source(c))
		return false;
	if (!c.head.riff)
		return invalid(c, "RIFF-Header missing");
	if (!c.head.wave)
		return invalid(c, "WAVEfmt-Header missing");
	log_line("[D] FMT_LENGTH: %u Bytes, %d Bytes per Sample [%s], Version: %d, Bits: %d, "
		 "CHANNELS: %d\r\n",
		c.head.fmt_length, c.head.bytespersample, c.source, c.head.version,
		c.head.bitspersample, c.head.channels);
	if (!find_data(c))
		return false;
	if (c.head.bytespersample == 0)
		return corrupted(c, "block align is 0");
	if (c.head.channels == 0)
		return corrupted(c, "no channels");
	if (c.resampled() && (c.head.sample_rate == 0 || c.rate == 0))
		return corrupted(c, "no sampling rate");
	return true;
}

// Everything ahead of the data survives; a head shorter than its own fields is padded
// so that they can be set.
bool read_prefix(conversion &c)
{
	const u64 size = c.data.at + 8;
	c.prefix = allocate_bytes(std::max<u64>(size, smallest_file));
	if (!c.prefix)
		return no_memory(c, size);
	c.prefix_size = static_cast<std::size_t>(size);
	const int code = c.file.read(0, c.prefix.get(), c.prefix_size);
	return !code || cannot_read(c, code);
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
	const int code = c.file.read(at, c.in.data(), bytes);
	return !code || cannot_read(c, code);
}

source_window window_of(const conversion &c, std::int64_t first, std::size_t channel)
{
	return { c.in.data() + channel, first, c.frames, c.head.bytespersample, c.factor };
}

std::int64_t frames_in_window(const conversion &c)
{
	return static_cast<std::int64_t>((window_bytes - overshoot) / c.head.bytespersample);
}

// Take the values of a window into the peaks, as far as they were not seen before.
void note_peaks(conversion &c, std::int64_t first, std::int64_t count)
{
	const std::int64_t from = std::max(first, c.seen), end = first + count;
	if (from >= end)
		return;
	const depth_row &depth = depth_of(c.head.bitspersample);
	auto largest = [&](std::size_t channel) {
		source_window w = window_of(c, from, channel);
		w.bytes += static_cast<std::size_t>(from - first) * w.stride;
		return depth.largest(w, static_cast<std::size_t>(end - from));
	};
	c.left_peak = std::max(c.left_peak, largest(0));
	c.right_peak = c.right ? std::max(c.right_peak, largest(c.right)) : c.left_peak;
	c.seen = end;
}

// Frames that no block of the result needs, up to end.
bool note_skipped(conversion &c, std::int64_t end)
{
	const std::int64_t most = frames_in_window(c);
	while (c.seen < end) {
		const std::int64_t first = c.seen, count = std::min(most, end - first);
		if (!read_window(c, first, count))
			return false;
		note_peaks(c, first, count);
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

bool write_block(
	conversion &c, fresh_file &result, std::int64_t start, std::int64_t count, u32 *scaled)
{
	const source_run run = run_for(c, start, count);
	const bool peaks = current_run_mode.diagnostics;
	if ((peaks && !note_skipped(c, run.first)) || !read_window(c, run.first, run.count))
		return false;
	if (peaks)
		note_peaks(c, run.first, run.count);
	put_block(c, start, run.first, static_cast<std::size_t>(count), scaled);
	const int code = result.write(c.out.data(), static_cast<std::size_t>(count) * c.frame);
	return !code || failed(c, conversion_end::unwritable, code, "Cannot write to");
}

bool write_blocks(conversion &c, fresh_file &result)
{
	std::vector<u32> scaled(block_frames);
	const std::int64_t most = frames_in_block(c);
	int block = 0;
	for (std::int64_t done = 0; done < c.new_frames; done += most) {
		if (stopped(c, block++)) {
			c.result = { conversion_end::stopped, 0 };
			log_line("[I] Stopped converting [%s]\r\n", c.source);
			return false;
		}
		if (!write_block(
			    c, result, done, std::min(most, c.new_frames - done), scaled.data()))
			return false;
	}
	return true;
}

// A frame of no channels or no bits has no bytes to write.
bool write_frames(conversion &c, fresh_file &result)
{
	if (c.frame && c.new_frames && !write_blocks(c, result))
		return false;
	return !current_run_mode.diagnostics || note_skipped(c, c.frames);
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

void log_peaks(const conversion &c)
{
	log_line("[D] Sample Peak-Value: %d (Right) %d (Left), SHIFTER: %d (%s) [%zu Bytes per "
		 "Sample]\r\n",
		c.right_peak, c.left_peak, c.shifter,
		c.shifter > 0   ? ">>"
		: c.shifter < 0 ? "<<"
				: "",
		c.frame);
}

bool write_target(conversion &c, std::span<const u8> head, u64 data_size)
{
	fresh_file result;
	if (const int code = result.open(c.target))
		return failed(c, conversion_end::unwritable, code, "Cannot create");
	int code = result.write(head.data(), head.size());
	if (code)
		return failed(c, conversion_end::unwritable, code, "Cannot write to");
	if (!write_frames(c, result))
		return false;
	log_peaks(c);
	if ((code = result.finish()))
		return failed(c, conversion_end::unfinished, code, "Cannot write to");
	log_line("[I] Successfully written %llu Bytes to [%s]\r\n",
		static_cast<unsigned long long>(head.size() + data_size), c.target);
	return true;
}

// The spool has an order of its own; otherwise the source's head goes as it is.
bool write_ordered(conversion &c, u64 data_size)
{
	const std::span<const u8> prefix = { c.prefix.get(), c.prefix_size };
	if (!c.for_spool)
		return write_target(c, prefix, data_size);
	auto whole = [&](const wave_chunk &chunk, bool there) {
		return there ? prefix.subspan(static_cast<std::size_t>(chunk.at),
				       8 + std::size_t{ chunk.size })
			     : std::span<const u8>{};
	};
	std::vector<u8> head;
	const kept_chunks kept = { whole(c.fact, c.has_fact), whole(c.smpl, c.has_smpl) };
	const char *fault = c.prefix_size + data_size < smallest_file
				    ? "too small"
				    : make_spool_head({ c.prefix.get(), at_fact }, kept,
					      static_cast<u32>(data_size), c.pitch, &head);
	if (!fault)
		return write_target(c, head, data_size);
	corrupted(c, fault);
	c.result.end = conversion_end::no_order;
	return false;
}

bool convert(conversion &c)
{
	if (!read_head(c) || !read_prefix(c))
		return false;
	plan(c);
	if (c.resampled())
		change_rate(c);
	log_line("[D] ******************** NEW_BYTESPERSAMPLE: %zu *****************\r\n", c.frame);
	const u64 data_size = c.frame * static_cast<u64>(c.new_frames);
	// The length fields have 32 bits.
	if (c.prefix_size + data_size > 0xFFFFFFFF) {
		c.result = { conversion_end::too_large, 0 };
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
	return write_ordered(c, data_size);
}

conversion_result run(const conversion_wish &wish, bool for_spool)
{
	conversion c = {};
	c.source = wish.source;
	c.target = wish.target;
	c.channels = wish.channels & 0xFF;
	c.mode = wish.mode & 0xFF;
	c.bits = wish.bits & 0xFF;
	c.window = wish.window;
	c.for_spool = for_spool;
	c.pitch = wish.pitch;
	log_line("[D] Resampling [%s] to [%s], Bits: %u, New Channels: %u, Mode: 0x%02X\r\n",
		c.source, c.target, c.bits, c.channels, c.mode);
	if (wish.rate > 0xFFFFFFFF) {
		corrupted(c, "no such sampling rate");
		return c.result;
	}
	c.rate = static_cast<u32>(wish.rate);
	convert(c);
	return c.result;
}

} // namespace

bool resample(int progress_dialog, const char *source, const char *target, unsigned channels,
	unsigned mode, unsigned bits, u64 rate, unsigned pitch)
{
	const conversion_wish wish = { source, target, channels, mode, bits, rate, pitch,
		progress_dialog };
	return run(wish, false).end == conversion_end::done;
}

conversion_result convert_for_spool(const conversion_wish &wish)
{
	return run(wish, true);
}

} // namespace velmor
