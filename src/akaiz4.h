// akaiz4.h - the driver of the Z4/Z8 and the MPC 4000
//
// Its functions fill two rows of sampler_type; the MPC has its own getstatus alone. It is
// told as what differs from the S5000: no checksum, other sections, low bytes first, the
// status at offset 4 of an answer and the data at offset 8.
//
// Knows nothing of: windows, other than the boxes it shows.

#pragma once
#include "src/parameters.h"

namespace velmor
{

inline constexpr int z4_answer_status = 4;
inline constexpr int z4_answer_data = 8;
inline constexpr u8 status_reply = 0x52; // 'R'
inline constexpr int z4_keygroups = 16;  // read of a program, whatever it holds

// ---- Values on the wire (akaiz4_parameters.cpp) -------------------------------------------

extern const conversion as_z4_word28;   // four groups of 7 bits, lowest first
extern const conversion as_z4_rate;     // three groups of 7 bits, lowest first; never written
extern const conversion as_z4_signed14; // sign, low 7 bits, high 7 bits

extern const parameters<_program> akai_z4_program_values;   // polyphony, reassignment
extern const parameters<_keygroup> akai_z4_keygroup_values; // low note, high note
extern const parameters<_keyzone> akai_z4_zone_values;      // sample name, level

// ---- The operations of the rows ----------------------------------------------------------

void akai_z4_getstatus(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev);
void akai_mpc_getstatus(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev);
void akai_z4_getproglist(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev);
void akai_z4_getsamplelist(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev);
void akai_z4_getmultilist(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev);
void akai_z4_sampleinfo(u8 exclusive_channel, u8 sysex_channel, const char *samplename);
void akai_z4_uploadsample(const char *path);
void akai_z4_downloadsample(u8 exclusive_channel, u8 sysex_channel, const char *samplename);
void akai_z4_renamesample(
	u8 exclusive_channel, u8 sysex_channel, const char *oldname, const char *newname);
const char *akai_z4_getplaymode(i32 playmode);
// Both lengths are room in the buffers, then bytes that came, 0 of a sampler that is busy
// (akaiusb_panel.cpp). The control data of an MPC 4000 does not come with them, only its length.
void akai_z4_getpanel(
	u8 *panel_data, u32 *_panel_data_length, u8 *ctrl_data, u32 *_ctrl_data_length);
void akai_mpc_getpanel(
	u8 *panel_data, u32 *_panel_data_length, u8 *ctrl_data, u32 *_ctrl_data_length);
// Entry program of source, or of the loaded tree where source is null. A program that the sampler
// does not hold is not created.
void akai_z4_saveprogram(i32 program, _program *source);
void akai_z4_deleteprogram(i32 program);
void akai_z4_renameprogram(i32 program, const char *newname);

} // namespace velmor
