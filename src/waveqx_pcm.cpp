// waveqx_pcm.cpp - values of a WAV file at 24-bit scale, as they stand or between two frames
//
// 16 bits are shifted up by 8, 12 bits by 12, and of 32 bits the three low bytes count.
// The rate is converted by linear interpolation in double precision, without a filter.
//
// Compiled without joining a product and a sum into one rounding: the integers that come
// out are told to the bit.

#include "src/waveqx_pcm.h"
#include "src/velmor.h"
#include "src/waveqx.h"
#include <algorithm>
#include <bit>
#include <cstring>

namespace velmor
{

namespace
{

// ---- Values by source depth. A frame's value stands at its first byte. ---------------

// Little-endian whatever the host; four bytes may be read for three, a window has room.
u32 load(const u8 *at, std::size_t size)
{
	u32 value = 0;
	std::memcpy(&value, at, size);
	if constexpr (std::endian::native == std::endian::big)
		value = wave_read_32bit(at) & (size == 2 ? 0xFFFFu : 0xFFFFFFFFu);
	return value;
}

struct pcm_12 {
	// 2048 counts as positive.
	static i32 sign(const u8 *at)
	{
		const i32 value = static_cast<i32>(load(at, 2) & 0xFFF);
		return (value >= 2049 ? value - 4096 : value) * 4096;
	}
	static i32 raw(const u8 *at) { return sign(at); }
};

struct pcm_16 {
	static i32 sign(const u8 *at) { return static_cast<std::int16_t>(load(at, 2)) * 256; }
	static i32 raw(const u8 *at) { return static_cast<i32>(load(at, 2) << 8); }
};

struct pcm_24 {
	static i32 sign(const u8 *at) { return static_cast<i32>(load(at, 4) << 8) >> 8; }
	static i32 raw(const u8 *at) { return static_cast<i32>(load(at, 4) & 0xFFFFFF); }
};

struct pcm_32 {
	static i32 sign(const u8 *at) { return pcm_24::raw(at); }
	static i32 raw(const u8 *at) { return pcm_24::raw(at); }
};

// 8 bits and all that is not linear has no values.
struct pcm_none {
	static i32 sign(const u8 *) { return 0; }
	static i32 raw(const u8 *) { return 0; }
};

template <class pcm, bool as_raw> i32 value_at(const u8 *at)
{
	return as_raw ? pcm::raw(at) : pcm::sign(at);
}

// A distance that the compiler knows makes a loop of its own, which it can do in parallel.
template <std::size_t known, class action>
void each_frame(const source_window &w, std::size_t count, action act)
{
	const std::size_t stride = known ? known : w.stride;
	for (std::size_t k = 0; k < count; k++)
		act(k, w.bytes + k * stride);
}

template <class action> void for_frames(const source_window &w, std::size_t count, action act)
{
	switch (w.stride) {
	case 2:
		return each_frame<2>(w, count, act);
	case 3:
		return each_frame<3>(w, count, act);
	case 4:
		return each_frame<4>(w, count, act);
	default:
		return each_frame<0>(w, count, act);
	}
}

template <class pcm, bool as_raw>
void copy_frames(const source_window &w, std::int64_t, std::size_t count, i32 *out)
{
	for_frames(w, count,
		[out](std::size_t k, const u8 *at) { out[k] = value_at<pcm, as_raw>(at); });
}

template <class pcm> i32 largest_value(const source_window &w, std::size_t count)
{
	i32 peak = 0;
	for_frames(w, count,
		[&peak](std::size_t, const u8 *at) { peak = std::max(peak, pcm::sign(at)); });
	return peak;
}

// The most frequent depth, eight values at once.
template <> i32 largest_value<pcm_16>(const source_window &w, std::size_t count)
{
	std::int16_t peak = 0;
	for_frames(w, count, [&peak](std::size_t, const u8 *at) {
		peak = std::max(peak, static_cast<std::int16_t>(load(at, 2)));
	});
	return peak * 256;
}

// The last frames of the source, where there is no neighbour to the right.
template <class pcm, bool as_raw> i32 edge_value(const source_window &w, double place)
{
	const std::int64_t index = static_cast<std::int64_t>(place);
	const double part = place - static_cast<double>(index);
	std::int64_t near = part >= 0.5 ? index + 1 : index;
	if (near >= w.frames)
		near--;
	if (near >= w.frames) {
		log_line("[D] New Index is too big (%lld > %lld)\r\n", static_cast<long long>(near),
			static_cast<long long>(w.frames));
		near = w.frames - 1;
	}
	auto at = [&](std::int64_t i) {
		return w.bytes + static_cast<std::size_t>(i - w.first) * w.stride;
	};
	if (near >= w.frames - 1)
		return value_at<pcm, as_raw>(at(near));
	const double left = pcm::sign(at(index)), right = pcm::sign(at(index + 1));
	const double change = (right - left) * part;
	return static_cast<i32>(left + change);
}

// left + (right - left) * part is, rounding included, what |right - left| * part added to
// or taken from left is: the difference of two 24-bit values is exact, and rounding is
// the same on both sides of zero.
template <class pcm, bool as_raw>
void interpolate_frames(const source_window &w, std::int64_t start, std::size_t count, i32 *out)
{
	auto place = [&](std::size_t k) {
		return static_cast<double>(start + static_cast<std::int64_t>(k)) * w.factor;
	};
	std::size_t inner = count; // frames whose right neighbour is not the last one
	while (inner && static_cast<std::int64_t>(place(inner - 1)) + 2 >= w.frames)
		inner--;
	for (std::size_t k = 0; k < inner; k++) {
		const double at = place(k);
		const std::int64_t index = static_cast<std::int64_t>(at);
		const double part = at - static_cast<double>(index);
		const u8 *value = w.bytes + static_cast<std::size_t>(index - w.first) * w.stride;
		const double left = pcm::sign(value), right = pcm::sign(value + w.stride);
		const double change = (right - left) * part;
		out[k] = static_cast<i32>(left + change);
	}
	for (std::size_t k = inner; k < count; k++)
		out[k] = edge_value<pcm, as_raw>(w, place(k));
}

template <class pcm> constexpr depth_row depth(u16 bits)
{
	return { bits,
		{ { copy_frames<pcm, false>, copy_frames<pcm, true> },
			{ interpolate_frames<pcm, false>, interpolate_frames<pcm, true> } },
		largest_value<pcm> };
}

constexpr depth_row depths[] = { depth<pcm_12>(12), depth<pcm_16>(16), depth<pcm_24>(24),
	depth<pcm_32>(32), depth<pcm_none>(0) };

} // namespace

const depth_row &depth_of(u16 bits)
{
	const depth_row *row = depths;
	while (row->bits && row->bits != bits)
		row++;
	return *row;
}

} // namespace velmor
