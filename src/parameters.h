// parameters.h - one kind of table row says how bytes and a record agree
//
// A sampler keeps a program, a keygroup or a zone as a block of bytes, or as values that are
// asked for one by one; a program file keeps it in chunks; we keep it as a record. A table of
// parameters joins them: reading and writing are loops over the same rows, so nothing about a
// parameter is said twice. Where a machine's two directions differ on purpose, the row's
// conversion or the comment beside it says so.
//
// A block is written over the bytes last read from the sampler. Bytes and bits that no row
// names, and rows that this model does not take back, keep what the sampler had.
//
// Every row knows the name of its field. It is the name in the record, stays for good, and is
// what a program file and a form call the parameter.
//
// To add a parameter: one row. The checks at the end of this file refuse at compile time what
// cannot be right.
//
// Called by drivers and readers of program files. Knows nothing of: protocols, transports,
// windows.

#pragma once
#include "src/velmor.h"
#include <string_view>
#include <type_traits>
#include <variant>

namespace velmor
{

// ---- Conversions -------------------------------------------------------------------------

// How bytes become a value, and the value bytes. Both directions are in one row, so that a
// conversion cannot be added one way only. A number has get and put, a text the other two.
struct conversion {
	const char *name;
	int width; // bytes; 0 for a text that ends in a 0, wherever that stands
	i32 (*get)(bounded_bytes bytes) = nullptr;
	// Gives back what the record holds afterwards, which is the value itself except where a
	// conversion says otherwise. Null: never written.
	i32 (*put)(u8 *bytes, i32 value) = nullptr;
	bool of_text = false;
	std::string (*get_text)(bounded_bytes bytes) = nullptr;
	// Bytes that the text does not reach may stay. Null: a text of width 0, or never written.
	void (*put_text)(u8 *bytes, const char *text) = nullptr;
};
inline constexpr int max_value_size = 8; // bytes of a number
inline constexpr int max_text_size = 32; // bytes of a text in a block
inline constexpr int max_block_size = 1024;

// ---- Fields ------------------------------------------------------------------------------

// A field of a record. Records keep a number as narrow as its meaning, and texts in one size.
template <typename record> struct member {
	using text = char (record::*)[name_size];
	std::variant<u8 record::*, i32 record::*, u32 record::*, u64 record::*, text> field;

	template <typename kind> constexpr member(kind record::*of) : field(of) {}
	constexpr bool is_text() const { return std::holds_alternative<text>(field); }

	// A number; 0 for a text.
	i32 get(const record &r) const
	{
		return std::visit(
			[&](auto at) {
				if constexpr (std::is_same_v<decltype(at), text>)
					return i32{ 0 };
				else
					return static_cast<i32>(r.*at);
			},
			field);
	}
	// Cut to the width of the field; nothing for a text.
	void set(record *r, i32 value) const
	{
		std::visit(
			[&](auto at) {
				using kind = std::remove_reference_t<decltype(r->*at)>;
				if constexpr (!std::is_same_v<decltype(at), text>)
					r->*at = static_cast<kind>(static_cast<u32>(value));
			},
			field);
	}
};

// The last part of a member's full name, as the compiler spells it.
template <auto of> consteval auto spelled_name()
{
	constexpr std::string_view text = __PRETTY_FUNCTION__;
	constexpr std::size_t end = text.find_first_of(";]", text.find("of = "));
	constexpr std::size_t begin = text.rfind(':', end) + 1;
	std::array<char, end - begin + 1> name = {};
	for (std::size_t i = begin; i < end; i++)
		name[i - begin] = text[i];
	return name;
}
template <auto of> inline constexpr auto spelled_name_of = spelled_name<of>();

// A field and its name. Only field_of makes one, so that the name is true.
template <typename record> struct named_field {
	const char *name;
	member<record> at;
};
template <typename record, typename kind> record owner_of(kind record::*);
template <auto of>
inline constexpr named_field<decltype(owner_of(of))> field_of = { spelled_name_of<of>.data(), of };
static_assert(std::string_view(field_of<&_keygroup::low_note>.name) == "low_note");
static_assert(std::string_view(field_of<&_program::name>.name) == "name");

// ---- Rows --------------------------------------------------------------------------------

// Where a value stands in a block, a chunk or an answer.
struct place {
	int offset;     // of the first element
	int step = 0;   // from one element to the next, for an array kept side by side
	u8 mask = 0xFF; // bits of a byte that several rows share
};

// Where a value does not come with a block: the request that asks for it, and the one that sets
// it. In a block request the sections are those of the block.
struct request_items {
	u8 read_section, read_item, write_section, write_item;
	u8 sub = 0; // sub-index, 0 for none
};

template <typename record> struct parameter {
	place at;
	named_field<record> field;
	const conversion *as;
	unsigned taken_by = 0;    // bits of who takes it back (models, occasions); 0: read only
	request_items items = {}; // of a sampler that is asked for single values
	int turn = 0; // from 1, where the order of writing is not that of the table; else 0
};
inline constexpr unsigned taken_back = 1; // where all models of a family take it
// Beside who takes it: only written, and what comes there is not read.
inline constexpr unsigned never_read = 1u << 31;

template <typename record> using parameters = std::span<const parameter<record>>;
// A table that is no part of what decides the record's type.
template <typename record> using table_of = std::type_identity_t<parameters<record>>;

// ---- Reading -----------------------------------------------------------------------------

// One value, from its first byte on. Bytes that never came read as zero.
template <typename record>
void value_to_record(const parameter<record> &row, bounded_bytes bytes, record &r)
{
	if (const auto *text = std::get_if<typename member<record>::text>(&row.field.at.field)) {
		copy_text(r.*(*text), row.as->get_text(bytes));
		return;
	}
	const u8 shared[] = { static_cast<u8>(bytes[0] & row.at.mask) };
	row.field.at.set(&r, row.as->get(row.at.mask == 0xFF ? bytes : bounded_bytes{ shared }));
}

// What becomes of a field whose bytes lie behind the end of the block.
enum class past_the_end {
	zero,
	stays
};

// Element nth of the block.
template <typename record>
void block_to_record(table_of<record> table, bounded_bytes block, record &r, int nth = 0,
	past_the_end missing = past_the_end::zero)
{
	for (const auto &row : table) {
		const auto at = static_cast<std::size_t>(row.at.offset + nth * row.at.step);
		const bool there = at < block.size() || missing == past_the_end::zero;
		if (there && !(row.taken_by & never_read))
			value_to_record(row, block.from(at), r);
	}
}

// ---- Writing -----------------------------------------------------------------------------

// One value over the bytes last read; bytes takes the width of the row.
template <typename record> void record_to_value(const parameter<record> &row, record &r, u8 *bytes)
{
	if (const auto *text = std::get_if<typename member<record>::text>(&row.field.at.field)) {
		row.as->put_text(bytes, r.*(*text));
		return;
	}
	const u8 before = bytes[0];
	row.field.at.set(&r, row.as->put(bytes, row.field.at.get(r)));
	bytes[0] = static_cast<u8>((before & ~row.at.mask) | (bytes[0] & row.at.mask));
}

// Over the bytes last read; takers are the bits of the model (and of the occasion). A row
// behind the end of a short block is left out.
template <typename record>
void record_to_block(
	table_of<record> table, unsigned takers, record &r, std::span<u8> block, int nth = 0)
{
	for (const auto &row : table) {
		const auto at = static_cast<std::size_t>(row.at.offset + nth * row.at.step);
		const bool there = at + static_cast<std::size_t>(row.as->width) <= block.size();
		if (there && (row.taken_by & takers & ~never_read))
			record_to_value(row, r, &block[at]);
	}
}

// The rows that somebody takes back, in the order of writing; act is given each of them.
template <typename record, typename action>
void in_order_of_writing(parameters<record> table, action act)
{
	for (int turn = 0; turn <= static_cast<int>(table.size()); turn++)
		for (const auto &row : table)
			if (row.turn == turn && (row.taken_by & ~never_read))
				act(row);
}

// ---- Checks, for static_assert -------------------------------------------------------------

// Whether a pointer is null is no question that g++ answers in a constant under a sanitizer.
template <typename record> consteval bool row_is_sound(const parameter<record> &row)
{
	const bool text = row.field.at.is_text();
	const int width = row.as->width;
	return row.as->of_text == text && width >= (text ? 0 : 1) &&
	       width <= (text ? max_text_size : max_value_size) && row.at.mask != 0 &&
	       (row.at.mask == 0xFF || width == 1) && row.at.step >= 0;
}

// No two rows that are read have the same field, in all tables of one kind of record.
template <typename record>
consteval bool names_are_unique(std::initializer_list<parameters<record>> tables)
{
	for (const auto &table : tables)
		for (const auto &row : table) {
			int same = 0;
			for (const auto &other_table : tables)
				for (const auto &other : other_table)
					same += !(other.taken_by & never_read) &&
						std::string_view(other.field.name) ==
							row.field.name;
			if (same > 1)
				return false;
		}
	return true;
}

// The rows are in order of offset and end inside the block, no bit is written by two of them,
// and no field is read by two. A byte may be read into two fields.
template <typename record>
consteval bool table_is_sound(parameters<record> table, int block_size, int elements = 1)
{
	std::array<u8, max_block_size> written{};
	int last = 0;
	for (const auto &row : table) {
		if (row.at.offset < last || !row_is_sound(row) || block_size > max_block_size)
			return false;
		last = row.at.offset;
		for (int i = 0; i < elements * row.as->width; i++) {
			const int nth = i / row.as->width;
			const int at = row.at.offset + nth * row.at.step + i % row.as->width;
			if (at >= block_size || (row.taken_by && (written[at] & row.at.mask)))
				return false;
			written[at] |= row.taken_by ? row.at.mask : u8{ 0 };
		}
	}
	return names_are_unique<record>({ table });
}

// The rows of an answer follow each other without a gap, from offset on.
template <typename record> consteval bool rows_touch(parameters<record> table, int offset)
{
	for (const auto &row : table) {
		if (row.at.offset != offset)
			return false;
		offset += row.as->width;
	}
	return true;
}

// Every request stands once, and the turns of writing are either left out or complete.
template <typename record> consteval bool requests_are_sound(parameters<record> table)
{
	int turns = 0;
	const int rows = static_cast<int>(table.size());
	for (const auto &row : table) {
		int reads = 0, writes = 0, same_turn = 0;
		for (const auto &other : table) {
			const bool sub = other.items.sub == row.items.sub;
			reads += sub && other.items.read_section == row.items.read_section &&
				 other.items.read_item == row.items.read_item;
			writes += sub && other.items.write_section == row.items.write_section &&
				  other.items.write_item == row.items.write_item;
			same_turn += other.turn && other.turn == row.turn;
		}
		const bool read_once = reads == 1 || (row.taken_by & never_read);
		const bool written_once = writes == 1 || !(row.taken_by & ~never_read);
		if (!row_is_sound(row) || !read_once || !written_once || same_turn > 1 ||
			row.turn < 0 || row.turn > rows)
			return false;
		turns += row.turn > 0;
	}
	return (turns == 0 || turns == rows) && names_are_unique<record>({ table });
}

// ---- Conversions that any family may use ------------------------------------------------

constexpr void put_low_byte(u8 *bytes, i32 value)
{
	bytes[0] = static_cast<u8>(value & 0xFF);
}

inline constexpr conversion as_byte = {
	.name = "byte",
	.width = 1,
	.get = [](bounded_bytes bytes) { return i32{ bytes[0] }; },
	.put =
		[](u8 *bytes, i32 value) {
			put_low_byte(bytes, value);
			return value;
		},
};

inline constexpr conversion as_signed_byte = {
	.name = "signed byte",
	.width = 1,
	.get = [](bounded_bytes bytes) { return i32{ bytes[0] } - (bytes[0] < 128 ? 0 : 256); },
	.put = as_byte.put,
};

// Counted from 0 on the wire and from 1 for people.
inline constexpr conversion as_byte_from_one = {
	.name = "byte, counted from 1",
	.width = 1,
	.get = [](bounded_bytes bytes) { return i32{ bytes[0] } + 1; },
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
	.get = [](bounded_bytes bytes) { return bytes[0] == 0xFF ? 0 : i32{ bytes[0] } + 1; },
	.put = as_byte_from_one.put,
};

// 1 when the byte is 0. Any other byte is 0, and is written back as 1.
inline constexpr conversion as_not = {
	.name = "logical not",
	.width = 1,
	.get = [](bounded_bytes bytes) { return bytes[0] ? 0 : 1; },
	.put =
		[](u8 *bytes, i32 value) {
			bytes[0] = value ? 0 : 1;
			return value;
		},
};

inline constexpr conversion as_word = {
	.name = "word, low byte first",
	.width = 2,
	.get = [](bounded_bytes bytes) { return i32{ bytes[0] } + 256 * i32{ bytes[1] }; },
	.put =
		[](u8 *bytes, i32 value) {
			put_low_byte(bytes, value);
			put_low_byte(bytes + 1, value >> 8);
			return value;
		},
};

// In an answer or a request; the request carries the text and its 0.
inline constexpr conversion as_text = {
	.name = "text up to its 0",
	.width = 0,
	.of_text = true,
	.get_text = [](bounded_bytes bytes) { return bytes.text(0); },
};

} // namespace velmor
