// akais5000.h - the S5000/6000 driver: values on the wire, requests, lists, samples
//
// Its functions fill the S5000 row of sampler_type. The Z4 driver uses the same rows; what
// both have in common beside them is akaiusb.h. A request is section, item, arguments; the frame around it
// belongs to the transport.
//
// Each operation opens the device, runs its requests and closes it. Nothing is kept but the
// sampler's own "current" program, keygroup and sample.
//
// Knows nothing of: windows, other than the boxes it shows.

#pragma once
#include "src/akaiusb.h"
#include <array>
#include <vector>

namespace velmor
{

// ---- Values on the wire (akais5000_codec.cpp) -------------------------------------------

// How a value stands in an answer and in a request. get reads it from the first byte on;
// put returns the bytes it wrote, at most max_value_size.
struct value_form {
	const char *name;
	int width; // in an answer
	i32 (*get)(bounded_bytes bytes);
	int (*put)(u8 *bytes, i32 value); // null: never written
};
inline constexpr int max_value_size = 4;

extern const value_form as_plain;          // one byte
extern const value_form as_word14;         // high 7 bits, low 7 bits
extern const value_form as_word28;         // four groups of 7 bits, highest first
extern const value_form as_signed;         // sign (not zero: negative), magnitude
extern const value_form as_signed_one;     // sign (one: negative), magnitude
extern const value_form as_panning;        // value plus 64
extern const value_form as_velocity_start; // read and written differently, see its row
extern const value_form as_z4_word28;      // four groups of 7 bits, lowest first
extern const value_form as_z4_rate;        // three groups of 7 bits, lowest first
extern const value_form as_z4_signed14;    // sign, low 7 bits, high 7 bits

// A field of a record, whatever its width.
template <typename record> struct member {
	u8 record::*byte = nullptr;
	u32 record::*word = nullptr;
	i32 record::*number = nullptr;
	u64 record::*wide = nullptr;

	constexpr member(u8 record::*field) : byte(field) {}
	constexpr member(u32 record::*field) : word(field) {}
	constexpr member(i32 record::*field) : number(field) {}
	constexpr member(u64 record::*field) : wide(field) {}

	void set(record *r, i32 value) const
	{
		if (byte)
			r->*byte = static_cast<u8>(value);
		else if (word)
			r->*word = static_cast<u32>(value);
		else if (number)
			r->*number = value;
		else
			r->*wide = static_cast<u64>(static_cast<u32>(value));
	}
	i32 get(const record &r) const
	{
		if (byte)
			return r.*byte;
		if (word)
			return static_cast<i32>(r.*word);
		return number ? r.*number : static_cast<i32>(r.*wide);
	}
};

// One value of a keygroup block. sub is a sub-index, 0 for none.
struct block_row {
	u8 read_item, write_item, sub;
	int offset; // in the answer
	const value_form *form;
	member<_keygroup> field;
};
inline constexpr int block_answer_start = 9;
inline constexpr u8 section_block = 0x3A;
inline constexpr std::size_t block_group_size = 4;

extern const std::array<block_row, 12> keygroup_block_1;
extern const std::array<block_row, 8> keygroup_block_2;
extern const std::array<block_row, 9> keygroup_block_3;

// The request that reads the block, and its answer into the record.
std::vector<u8> block_read_request(
	std::span<const block_row> block, u8 index_high, u8 index_low, u8 keygroup);
void block_to_keygroup(std::span<const block_row> block, bounded_bytes answer, _keygroup *kg);

// A value of the current keygroup, or of one of its zones, that travels alone. sub is the
// index in the request, 0 for none; a zone's request carries the zone instead.
struct keygroup_row {
	u8 read_item, write_item, sub;
	const value_form *form;
	member<_keygroup> field;
};
struct zone_row {
	u8 read_item, write_item;
	const value_form *form;
	member<_keyzone> field;
};
inline constexpr int s5000_answer_status = 6;
inline constexpr int s5000_answer_data = 9;
inline constexpr u8 section_zone = 0x06;
inline constexpr u8 section_keygroup = 0x08;
inline constexpr int usb_zones = 4; // read of each keygroup

extern const std::array<keygroup_row, 12> keygroup_values;
extern const std::array<zone_row, 2> zone_velocities; // read before the rest, and logged
extern const std::array<zone_row, 11> zone_values;

// ---- The operations of the row ------------------------------------------------------------

void akai_s5000_getstatus(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev);
void akai_s5000_getproglist(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev);
void akai_s5000_getsamplelist(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev);
void akai_s5000_getmultilist(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev);
void akai_s5000_sampleinfo(u8 exclusive_channel, u8 sysex_channel, const char *samplename);
void akai_s5000_uploadsample(const char *path);
void akai_s5000_downloadsample(u8 exclusive_channel, u8 sysex_channel, const char *samplename);
void akai_s5000_renamesample(
	u8 exclusive_channel, u8 sysex_channel, const char *oldname, const char *newname);
const char *akai_s5000_getplaymode(i32 playmode);

} // namespace velmor
