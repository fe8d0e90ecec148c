// akais5000.h - the S5000/6000 driver: values on the wire, requests, lists, samples
//
// Its functions fill the S5000 row of sampler_type. What the driver of the Z4 has in common
// with it is akaiusb.h.
//
// Each operation opens the device, runs its requests and closes it. Nothing is kept but the
// sampler's own "current" program, keygroup and sample.
//
// Knows nothing of: windows, other than the boxes it shows.

#pragma once
#include "src/akaiusb.h"
#include "src/parameters.h"
#include <array>
#include <vector>

namespace velmor
{

// ---- Values on the wire (akais5000_parameters.cpp) --------------------------------------

extern const conversion as_word14;         // high 7 bits, low 7 bits
extern const conversion as_word28;         // four groups of 7 bits, highest first
extern const conversion as_signed;         // sign (not zero: negative), magnitude
extern const conversion as_signed_one;     // sign (one: negative), magnitude
extern const conversion as_panning;        // value plus 64
extern const conversion as_zone_signed;    // as_signed; writing leaves the magnitude in the record
extern const conversion as_zone_level;     // the same, with seven bits of magnitude on the wire
extern const conversion as_velocity_start; // the same, and reading is no inverse of writing

inline constexpr int s5000_answer_data = 9;
inline constexpr u8 status_refused = 0x45; // 'E'
inline constexpr u8 section_zone = 0x06;
inline constexpr u8 section_keygroup = 0x08;
inline constexpr u8 section_block = 0x3A;
inline constexpr std::size_t block_group_size = 4;
inline constexpr int usb_zones = 4; // read of each keygroup

// What stands in the blocks of a keygroup, with its place in the answer to the block request.
extern const std::array<parameters<_keygroup>, 3> akai_s5000_keygroup_blocks;
// What travels alone: of the current keygroup, and of one of its zones.
extern const parameters<_keygroup> akai_s5000_keygroup_notes; // only written
extern const parameters<_keygroup> akai_s5000_keygroup_values;
extern const parameters<_keyzone> akai_s5000_zone_values; // the name first, then the velocities

// The request that asks for the value of a row: section, item, and sub-index or zone.
struct request_bytes {
	std::array<u8, 4> bytes;
	std::size_t count;
	operator std::span<const u8>() const { return std::span(bytes).first(count); }
};
request_bytes read_request(const request_items &items, u8 zone_number = 0);
// The request that sets it, for both drivers. The record keeps what its conversion says.
std::vector<u8> write_request(const parameter<_program> &row, _program &r);
std::vector<u8> write_request(const parameter<_keygroup> &row, _keygroup &r);
std::vector<u8> write_request(const parameter<_keyzone> &row, _keyzone &r, u8 zone_number);

// The requests that read and write block 1, 2 or 3 of the keygroup of that number, from 1.
std::vector<u8> block_read_request(int block, u8 index_high, u8 index_low, u8 number);
std::vector<u8> block_write_request(
	int block, u8 index_high, u8 index_low, u8 number, _keygroup &keygroup);

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
// Both lengths are room in the buffers, then bytes that came, 0 of a sampler that is busy
// (akaiusb_panel.cpp).
void akai_s5000_getpanel(
	u8 *panel_data, u32 *_panel_data_length, u8 *ctrl_data, u32 *_ctrl_data_length);
// Entry program of source, or of the loaded tree where source is null. A save changes the record:
// level, filter, tunings and velocity start of its zones keep their magnitude. A failed one
// leaves the bar showing; a failed deletion or renaming leaves the device open, for the next
// operation to close.
void akai_s5000_program_save(i32 program, _program *source);
void akai_s5000_program_delete(i32 program);
void akai_s5000_program_rename(i32 program, const char *newname);

} // namespace velmor
