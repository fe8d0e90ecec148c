// resource.h - the records of a sampler's contents, their limits, and the table of models
//
// Everything the program knows about a sampler sits in one tree of plain
// records. Drivers fill it from the wire, windows edit it in place, drivers
// write it back. One layout serves every model: a field that begins with s900_,
// s1000_, s2000_ or s5000_ belongs to that family (s2000_ fields serve the
// S2000, S2800, S3000 and S3200), a field without such a prefix is shared, and
// fields of other families are left at zero.
//
// To add a model: one row in sampler_type (resource.cpp), and, if no driver
// speaks its protocol yet, one module akai<model>.
//
// Knows nothing of: transports, windows, the host.

#pragma once
#include <array>
#include <cstddef>
#include <cstdint>

namespace velmor
{

using u8 = std::uint8_t;
using i32 = std::int32_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;
using u64 = std::uint64_t;

inline constexpr int max_programs = 512;
inline constexpr int max_samples = 512;
inline constexpr int max_multis = 512;
inline constexpr int max_keygroups = 128;
inline constexpr int max_keyzones = 8;
inline constexpr int name_size = 128; // bytes of a name, with its terminator

// Model ids, as they stand in a .sampler file.
enum model_id : i32 {
	model_generic = 0,
	model_s900 = 1000,
	model_s1000 = 1001,
	model_s5000 = 1002,
	model_z4 = 1003,
	model_mpc4000 = 1004,
	model_s2000 = 1005,
	model_s2800 = 1006,
	model_s3000 = 1007, // S3000, S3000XL and S3200 alike
};

// A velocity zone of a keygroup. The link to its sample is by name, and nothing
// guarantees that the sampler holds a sample of that name.
struct _keyzone {
	char samplename[name_size];
	u8 pan, output;
	i32 tunning; // cents
	i32 level, filter, fine_tune, semitone_tune;
	i32 velocity_start;
	u8 high_velocity, low_velocity;
	u8 solo;
	i32 transpose_offset;
	u8 s900_filter;
	i32 s900_loudness;
	i32 zone_level, zone_panning, zone_output, zone_filter;
	u8 zone_keyboard_track;
	i32 zone_playback;
	u8 zone_mute, zone_solo;
	i32 zone_mute_group;
	i32 s1000_loudness_offset;
	u8 s1000_vzout;
};
static_assert(sizeof(_keyzone) == 212);

// A key range of a program with its zones, envelopes and filter.
struct _keygroup {
	i32 keyzones; // valid entries of keyzone
	_keyzone keyzone[max_keyzones];
	u8 s900_output, s900_midi_offset;
	u8 low_note, high_note; // MIDI notes
	u8 mute_group;
	u8 fx_override, fx_sendlevel;
	u8 crossfade, crossfade_type;
	u32 fx_level;
	u32 amp_attack, amp_decay, amp_sustain, amp_release;
	u32 filter_attack, filter_decay, filter_sustain, filter_release;
	u32 aux_rate1, aux_rate2, aux_rate3, aux_rate4;
	u32 aux_rate1_level, aux_rate2_level, aux_rate3_level, aux_rate4_level;
	i32 s5000_semitone_tune, s5000_fine_tune, s5000_keygroup_level;
	i32 s5000_pitch_mod1_val, s5000_pitch_mod2_val, s5000_amp_mod1_val;
	u8 s5000_filter_mode, s5000_filter_cutoff, s5000_filter_resonance;
	i32 s5000_filter_keyboard_track;
	i32 s5000_filter_mod1_input, s5000_filter_mod2_input, s5000_filter_mod3_input;
	u8 s5000_filter_attenuation;
	u8 s900_transpose_disable, s900_velocity_crossfade, s900_lfo_desync;
	u8 s900_one_shot_trigger, s900_velocity_release_from_note_on;
	u8 s900_velocity_crossfade_curve_modification;
	u8 ahold, kbeat;
	i32 s1000_tune_offset; // cents
	u8 s1000_basic_filter_frequency;
	i32 s1000_env1_key_scaling, s1000_env1_velocity_attack, s1000_env1_velocity_release;
	i32 s1000_env1_off_velocity_release, s5000_env1_on_velocity_release, s5000_env1_depth;
	u8 s1000_env1_attack_hold;
	i32 s2000_amp_mod3_level, s2000_filter_resonance;
	i32 s1000_filter_keyboard;
	i32 s2000_flt_mod1_level, s2000_flt_mod2_level, s2000_flt_mod3_level;
	i32 s1000_filter_velocity_freq, s1000_filter_pressure_freq, s1000_filter_env2_freq;
	i32 s1000_filter_env2_pitch, s1000_filter_loudness_offset;
	i32 s1000_env2_r1, s1000_env2_r3, s1000_env2_r4, s1000_env2_l3;
	i32 s2000_env2_l1, s2000_env2_r2, s2000_env2_l2, s2000_env2_l4;
	i32 s1000_env2_velocity_r1, s1000_env2_velocity_r4, s1000_env2_off_velocity_r4;
	i32 s1000_env2_key_r2_r4, s1000_env2_velocity_envelope;
};
static_assert(sizeof(_keygroup) == 1968);

struct _program {
	i32 sampler_type; // model id of the sampler that the program belongs to
	char name[name_size];
	i32 number;    // S900: program number on the device; Z4: its 28-bit handle
	i32 index;     // place in _dev_status.program; S5000: the sampler's own index
	i32 keygroups; // valid entries of keygroup
	_keygroup keygroup[max_keygroups];
	u8 loaded; // declared only; nothing sets or reads it
	i32 midi_pgm_number;
	u8 midi_channel;
	i32 polyphony;
	// The scale, C to B; the names keep the sampler's grouping.
	i32 c_detune, c_cross_detune, d_detune, eb_detune, e_detune, f_detune;
	i32 f_cross_detune, g_detune, g_cross_detune, a_detune, bb_detune, b_detune;
	u8 play_range_low, play_range_high; // MIDI notes
	u8 crossfade_enable;
	u8 s1000_output, s1000_level, s1000_balance, s1000_basic_loudness;
	i32 s1000_velocity_loudness;
	u8 s1000_priority;
	u8 s2000_mono_legato;
	i32 s1000_tunning_offset; // cents
	i32 s2000_transpose_offset;
	i32 s2000_out_mod1_level, s2000_out_mod1_source, s2000_out_mod2_level,
		s2000_out_mod2_source;
	i32 s2000_pan_mod1_level, s2000_pan_mod1_source, s2000_pan_mod2_level,
		s2000_pan_mod2_source;
	i32 s2000_pan_mod3_level, s2000_pan_mod3_source;
	i32 s2000_amp_mod3_source, s2000_flt_mod1_source, s2000_flt_mod2_source,
		s2000_flt_mod3_source;
	u8 s1000_reasignement;
	u8 s2000_lfo1_waveform;
	u8 s1000_lfo1_speed, s1000_lfo1_depth, s1000_lfo1_delay, s1000_lfo1_sync;
	u8 s1000_lfo1_modwheel, s1000_lfo1_pressure;
	u8 s2000_lfo1_rate_source, s2000_lfo1_depth_source, s2000_lfo1_delay_source;
	i32 s2000_lfo1_rate_level, s2000_lfo1_depth_level, s2000_lfo1_delay_level;
	u8 s2000_lfo2_waveform, s1000_lfo2_speed, s1000_lfo2_depth, s1000_lfo2_delay,
		s2000_lfo2_retrigger;
	u8 s5000_lfo2_rate_source, s5000_lfo2_depth_source, s5000_lfo2_delay_source;
	u8 s1000_bendwheel_pitch_up, s2000_bendwheel_pitch_down;
	i32 s1000_aftertouch_bend;
	u8 s2000_aftertouch_bend_mode;
	u8 s1000_effect_out;
	i32 s1000_key_loudness, s1000_aftertouch_loudness, s1000_key_panning, s1000_mod_panning;
	u8 s2000_portamento, s2000_portamento_rate, s2000_portamento_mode;
	u8 s5000_kg_pitch_mod1_source, s5000_kg_pitch_mod2_source, s5000_kg_amp_mod_source;
};
static_assert(sizeof(_program) == 252260);

// The header of a sample and, once transferred, its data. Both data blocks come
// from std::malloc and belong to the record: free_sample_data gives them back.
struct _sample {
	char name[name_size];
	i32 number;       // on the wire
	u64 device_index; // in the sampler's own list; selects the sample in a transfer request
	u8 loaded;        // declared only; nothing sets or reads it
	u8 original_pitch;
	u8 semitone_tune, fine_tune; // raw wire bytes
	u64 absolute_start;          // first word in the sampler's memory, added to block offsets
	u64 start_position, end_position; // words
	u64 loop_start, loop_end;         // words
	u64 loop_times;
	u64 sample_length; // words of one channel
	u32 *sample_data;  // decoded audio, one word a value, low bits, not sign-extended
	u64 sample_rate;   // Hz
	u32 channels;
	u8 playback_mode; // the model's own; its row's getplaymode names it
	u8 *sample_byte;  // raw bytes of a WAV data chunk, for a sample that came from a file
	u64 sample_bytes; // bytes at sample_byte
	u32 bitspersample;
	u32 bytespersample; // as in the WAV header: one frame over all channels
};
static_assert(sizeof(_sample) == 256);

struct _multi {
	char name[name_size];
	i32 number;
	u8 loaded; // declared only; nothing sets or reads it
};
static_assert(sizeof(_multi) == 136);

// Everything read from one sampler: 129 MB of address space, of which only the
// touched pages cost memory. allocate_dev_status gives a zeroed one.
struct _dev_status {
	i32 status;              // 0 until a getstatus has succeeded, then 1
	char version[name_size]; // "%d.%d"
	char sampler_name[name_size];
	u8 exclusive_channel;
	_program program[max_programs];
	i32 programs;
	_sample sample[max_samples];
	i32 samples;
	_multi multi[max_multis];
	i32 multis;
};
static_assert(sizeof(_dev_status) == 129358104);

// One configured sampler. Its fields are, in this order, the .sampler file.
struct _sampler {
	char sampler_description[256]; // the user's name for it; also the file's base name
	char sampler_usbname[256];     // the USB device to match; empty for a MIDI sampler
	u32 sampler_type;              // model id
	u32 sampler_sysex;             // control channel, 1 to 16: first argument of the operations
	u32 sampler_midi;              // MIDI channel, 1 to 16, for test notes
	u32 sampler_sysex_channel;     // exclusive channel, 0 to 128: second argument
	_dev_status *status;           // null until the first list is read
};
static_assert(sizeof(_sampler) == 536);

// One entry of the local spool listing.
struct _local_sample {
	char pathname[1024];   // full path without extension
	char displayname[256]; // file name without extension
};

struct _sampler_ctrl; // a control of the front panel (lcd.h)

// Bits of sampler_flags.
enum : u8 {
	flag_multis = 0x01, // "Manage Multis" is shown
	flag_usb = 0x02,    // reached over USB
	flag_unused = 0x04, // set on the USB models; nothing tests it
	flag_lcd = 0x08,    // "View LCD-Display" is shown
};

using list_operation = void (*)(u8 midi_channel, u8 sysex_channel, _dev_status *dev);
using sample_operation = void (*)(u8 midi_channel, u8 sysex_channel, const char *samplename);
using form_operation = void (*)(int window, i32 pgm_index, i32 kg_index, i32 kz_index);
using form_callback = void (*)(int window, i32 pgm_index, i32 kg_index, i32 kz_index,
	unsigned message, std::uintptr_t first, std::intptr_t second);

// What a model is and can do. A row mentions every slot; an empty one says
// nullptr and why. Operations run on the caller's thread, report through the
// log and boxes, and leave the tree as far as they got.
struct _sampler_type {
	i32 userlevel;             // gate on offering the row in the brand list
	const char *sampler_brand; // null ends the table
	u8 sampler_flags;
	u32 lcd_pixel_data_length;   // bytes of a full LCD bitmap, one bit a pixel
	u32 lcd_control_data_length; // bytes of control data beside it
	u32 lcd_width, lcd_height;   // pixels
	i32 default_keyzones;        // keyzones of a new keygroup
	i32 sampler_type;            // model id; -1 in the terminator
	_sampler_ctrl *ctrl;         // front-panel controls, built at start-up
	// Each slot is optional; midi_channel is the control channel of the configuration.
	list_operation getstatus;
	list_operation getproglist;
	list_operation getsamplelist;
	list_operation getmultilist;
	// newname null deletes the sample.
	void (*renamesample)(
		u8 midi_channel, u8 sysex_channel, const char *oldname, const char *newname);
	sample_operation downloadsample; // into the spool; takes minutes over MIDI
	sample_operation infosample;
	void (*uploadsample)(const char *path); // of a WAV file, without its extension
	const char *(*getplaymode)(i32 playmode);
	void (*getpanel)(
		u8 *panel_data, u32 *_panel_data_length, u8 *ctrl_data, u32 *_ctrl_data_length);
	// new_prog null: entry pgm_index of the loaded tree; otherwise of that array.
	void (*saveprogram)(i32 pgm_index, _program *new_prog);
	void (*deleteprogram)(i32 pgm_index);
	void (*renameprogram)(i32 pgm_index, const char *newname);
	form_operation assignvoice;
	form_callback assignvoice_callback;
	form_operation assignpad;
	form_callback assignpad_callback;
	form_operation assignqlink;
	form_callback assignqlink_callback;
	form_operation assignvelocity;
	form_callback assignvelocity_callback;
	form_operation assignprog;
	form_callback assignprog_callback;
	void (*del_keygroup)(i32 pg_index, i32 kg_index);
};

// The models, in the order of the brand list; a null brand ends the table. Its
// row number is the list index. Only ctrl ever changes.
extern _sampler_type sampler_type[11];

// First row of that model id, or null.
_sampler_type *get_sampler(i32 id);
// Rows before the terminator.
int get_sampler_type_count();
// Model id of a row, 0 past the last.
i32 get_sampler_brand_id(i32 index);
// Row of a model id, 0 for an unknown one, which therefore reads as "Generic".
i32 get_sampler_brand_index(i32 id);

// Names of the notes, entry 60 is "C3"; entry 128 is null.
extern const std::array<const char *, 129> midi_note;
// "1" to "16", then null.
extern const std::array<const char *, 17> midi_channel;
// "0" to "128", then null.
extern const std::array<const char *, 130> sysex_chan;

// "%d (%s)" of the note and the name of its low seven bits, in one static buffer.
const char *display_midi_note(int note);

// The loaded sampler, or null. Changed by load_sampler and the two save functions.
extern _sampler *current_sampler;
// What is being edited, as indexes into the loaded tree. Changed by the program windows.
extern i32 current_pgm_index, current_keygroup_index, current_keyzone_index;

// A zeroed record straight from the system, or null; std::free gives it back.
_dev_status *allocate_dev_status();
// Give both data blocks back and forget them.
void free_sample_data(_sample *sample);

} // namespace velmor
