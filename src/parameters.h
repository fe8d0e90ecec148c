// parameters.h - one table says how a block of bytes and a record agree
//
// A sampler keeps a program, a keygroup or a zone as a block of bytes; we keep it
// as a record. A table of parameters joins the two: reading a block and writing
// it back are loops over the same rows, so nothing about a parameter is said twice.
//
// A block is written over the bytes last read from the sampler. Bytes that no row
// names, and rows that this model does not take back, keep what the sampler had.
//
// Called by drivers. Knows nothing of: protocols, transports, windows.

#pragma once
#include "src/velmor.h"
#include <variant>

namespace velmor
{

// How bytes become a value, and the value bytes. Both directions are in one row,
// so that a conversion cannot be added one way only.
struct conversion {
	const char *name;
	int width; // bytes in the block, at most 4
	i32 (*get)(const u8 *bytes);
	// Gives back what the record holds afterwards, which is the value itself except
	// where a conversion says otherwise.
	i32 (*put)(u8 *bytes, i32 value);
};

// Records keep a number as narrow as its meaning, so a field is one of three kinds.
template <typename record>
using number_field = std::variant<u8 record::*, i32 record::*, u32 record::*>;

template <typename record> struct parameter {
	int offset; // in the block
	number_field<record> field;
	const conversion *as;
	unsigned taken_by; // bits of who takes it back; 0: read only
	int step = 0;      // from one element to the next, for an array kept side by side
};

template <typename record> i32 number_of(const record &r, const number_field<record> &field)
{
	return std::visit([&](auto member) { return static_cast<i32>(r.*member); }, field);
}

// Cut to the width of the field.
template <typename record> void set_number(record &r, const number_field<record> &field, i32 value)
{
	std::visit(
		[&](auto member) {
			r.*member = static_cast<std::decay_t<decltype(r.*member)>>(value);
		},
		field);
}

// Element nth of the block. Bytes that never came read as zero.
template <typename record>
void block_to_record(
	std::span<const parameter<record>> table, bounded_bytes block, record &r, int nth = 0)
{
	for (const auto &row : table) {
		const std::size_t at = static_cast<std::size_t>(row.offset + nth * row.step);
		const u8 bytes[4] = { block[at], block[at + 1], block[at + 2], block[at + 3] };
		set_number(r, row.field, row.as->get(bytes));
	}
}

// Over the bytes last read; takers are the bits of the model (and of the occasion). A row
// behind the end of a short block is left out.
template <typename record>
void record_to_block(std::span<const parameter<record>> table, unsigned takers, record &r,
	std::span<u8> block, int nth = 0)
{
	for (const auto &row : table) {
		const std::size_t at = static_cast<std::size_t>(row.offset + nth * row.step);
		if (!(row.taken_by & takers) || at + row.as->width > block.size())
			continue;
		set_number(r, row.field, row.as->put(&block[at], number_of(r, row.field)));
	}
}

// True when the rows are in order of offset, end inside the block, and no byte is written
// by two of them; a byte may be read into two fields. For static_assert.
template <typename record>
consteval bool table_is_sound(
	std::span<const parameter<record>> table, int block_size, int elements = 1)
{
	std::array<int, 1024> written{};
	int last = 0;
	for (const auto &row : table) {
		if (row.offset < last || row.as->width < 1 || row.as->width > 4)
			return false;
		last = row.offset;
		for (int n = 0; n < elements; n++)
			for (int i = 0; i < row.as->width; i++) {
				const int at = row.offset + n * row.step + i;
				if (at >= block_size || at >= 1024)
					return false;
				written[at] += row.taken_by ? 1 : 0;
			}
	}
	for (int count : written)
		if (count > 1)
			return false;
	return true;
}

// ---- Conversions that any family may use ------------------------------------------------

constexpr void put_low_byte(u8 *bytes, i32 value)
{
	bytes[0] = static_cast<u8>(value & 0xFF);
}

inline constexpr conversion as_byte = {
	.name = "byte",
	.width = 1,
	.get = [](const u8 *bytes) { return i32{ bytes[0] }; },
	.put =
		[](u8 *bytes, i32 value) {
			put_low_byte(bytes, value);
			return value;
		},
};

inline constexpr conversion as_signed_byte = {
	.name = "signed byte",
	.width = 1,
	.get = [](const u8 *bytes) { return i32{ bytes[0] } - (bytes[0] < 128 ? 0 : 256); },
	.put =
		[](u8 *bytes, i32 value) {
			put_low_byte(bytes, value);
			return value;
		},
};

// Counted from 0 on the wire and from 1 for people.
inline constexpr conversion as_byte_from_one = {
	.name = "byte, counted from 1",
	.width = 1,
	.get = [](const u8 *bytes) { return i32{ bytes[0] } + 1; },
	.put =
		[](u8 *bytes, i32 value) {
			put_low_byte(bytes, value - 1);
			return value;
		},
};

// The same, where 255 on the wire means none and 0 says so in the record.
inline constexpr conversion as_byte_from_one_or_none = {
	.name = "byte, counted from 1, 0 for none",
	.width = 1,
	.get = [](const u8 *bytes) { return bytes[0] == 0xFF ? 0 : i32{ bytes[0] } + 1; },
	.put =
		[](u8 *bytes, i32 value) {
			put_low_byte(bytes, value - 1);
			return value;
		},
};

// 1 when the byte is 0. Any other byte is 0, and is written back as 1.
inline constexpr conversion as_not = {
	.name = "logical not",
	.width = 1,
	.get = [](const u8 *bytes) { return bytes[0] ? 0 : 1; },
	.put =
		[](u8 *bytes, i32 value) {
			bytes[0] = value ? 0 : 1;
			return value;
		},
};

inline constexpr conversion as_word = {
	.name = "word, low byte first",
	.width = 2,
	.get = [](const u8 *bytes) { return i32{ bytes[0] } + 256 * i32{ bytes[1] }; },
	.put =
		[](u8 *bytes, i32 value) {
			put_low_byte(bytes, value);
			put_low_byte(bytes + 1, value >> 8);
			return value;
		},
};

} // namespace velmor
