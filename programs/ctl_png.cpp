// ctl_png.cpp - a picture of one bit a pixel as a PNG file
//
// Portable Network Graphics, second edition: a signature, then chunks of length, name, content
// and CRC-32, all numbers with the highest byte first. The picture has a palette of two colours;
// its rows, each behind a filter byte of 0, stand in a zlib stream of stored blocks.

#include "programs/ctl.h"
#include <algorithm>

namespace velmor
{

using bytes = std::vector<u8>;

static void put_number(bytes *out, u32 value)
{
	for (const int shift : { 24, 16, 8, 0 })
		out->push_back(static_cast<u8>(value >> shift));
}

static u32 crc_of(std::span<const u8> data)
{
	u32 crc = 0xFFFFFFFF;
	for (const u8 byte : data) {
		crc ^= byte;
		for (int bit = 0; bit < 8; bit++)
			crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
	}
	return ~crc;
}

static void put_chunk(bytes *out, std::string_view name, std::span<const u8> content)
{
	put_number(out, static_cast<u32>(content.size()));
	const std::size_t begin = out->size();
	out->insert(out->end(), name.begin(), name.end());
	out->insert(out->end(), content.begin(), content.end());
	put_number(out, crc_of(std::span(*out).subspan(begin)));
}

static u32 adler_of(std::span<const u8> data)
{
	u32 a = 1, b = 0;
	for (const u8 byte : data) {
		a = (a + byte) % 65521;
		b = (b + a) % 65521;
	}
	return b << 16 | a;
}

// Blocks of at most 65535 bytes, each behind its length and the complement of it, lowest byte
// first.
static bytes stored(std::span<const u8> data)
{
	bytes out = { 0x78, 0x01 };
	for (std::size_t at = 0; at < data.size();) {
		const std::size_t size = std::min<std::size_t>(data.size() - at, 65535);
		const bool last = at + size == data.size();
		const u8 low = static_cast<u8>(size), high = static_cast<u8>(size >> 8);
		out.insert(out.end(), { static_cast<u8>(last), low, high, static_cast<u8>(~low),
					      static_cast<u8>(~high) });
		out.insert(out.end(), data.begin() + static_cast<std::ptrdiff_t>(at),
			data.begin() + static_cast<std::ptrdiff_t>(at + size));
		at += size;
	}
	put_number(&out, adler_of(data));
	return out;
}

std::vector<u8> png_of(const bitmap_view &view, u32 light)
{
	const auto row_bytes = static_cast<std::size_t>((view.width + 7) / 8);
	bytes rows, head;
	for (int y = 0; y < view.height; y++) {
		rows.push_back(0);
		for (std::size_t x = 0; x < row_bytes; x++) {
			const std::size_t at = static_cast<std::size_t>(y) * row_bytes + x;
			rows.push_back(at < view.bits.size() ? view.bits[at] : u8{ 0 });
		}
	}
	put_number(&head, static_cast<u32>(view.width));
	put_number(&head, static_cast<u32>(view.height));
	head.insert(head.end(), { 1, 3, 0, 0, 0 }); // one bit, a palette
	const u8 palette[] = { static_cast<u8>(light >> 16), static_cast<u8>(light >> 8),
		static_cast<u8>(light), 0, 0, 0 };
	bytes png = { 0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n' };
	put_chunk(&png, "IHDR", head);
	put_chunk(&png, "PLTE", palette);
	put_chunk(&png, "IDAT", stored(rows));
	put_chunk(&png, "IEND", {});
	return png;
}

} // namespace velmor
