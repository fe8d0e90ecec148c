// akais1000_parameters.cpp - every parameter of a program, a keygroup and a zone
//
// The tables are the format. An offset counts in the decoded block, which opens with
// what it is (1 program, 2 keygroup). An S1000 sends blocks of 150 bytes, the models
// from the S2000 on send 192; all rows are read on every model, and what an S1000
// never sent reads as zero.
//
// Knows nothing of: messages, lists.

#include "src/akais1000.h"

namespace velmor
{

// clang-format off
static constexpr parameter<_program> program_rows[] = {
	// offset  field                                              conversion                  taken back by
	// Untrimmed: a program's name keeps the blanks it has in its block.
	{ {   3 }, field_of<&_program::name>,                           &as_akai_name,              taken_by_all },
	{ {  15 }, field_of<&_program::midi_pgm_number>,                &as_byte_from_one,          taken_by_all },
	{ {  16 }, field_of<&_program::midi_channel>,                   &as_byte_from_one,          taken_by_all },
	{ {  17 }, field_of<&_program::polyphony>,                      &as_byte_from_one,          taken_by_all },
	{ {  18 }, field_of<&_program::s1000_priority>,                 &as_byte,                   taken_by_all },
	{ {  19 }, field_of<&_program::play_range_low>,                 &as_byte,                   taken_by_all },
	{ {  20 }, field_of<&_program::play_range_high>,                &as_byte,                   taken_by_all },
	{ {  22 }, field_of<&_program::s1000_output>,                   &as_byte_from_one_or_none,  taken_by_all },
	{ {  23 }, field_of<&_program::s1000_level>,                    &as_byte,                   taken_by_all },
	{ {  24 }, field_of<&_program::s1000_balance>,                  &as_signed_byte,            taken_by_all },
	{ {  25 }, field_of<&_program::s1000_basic_loudness>,           &as_byte,                   taken_by_all },
	{ {  26 }, field_of<&_program::s1000_velocity_loudness>,        &as_signed_byte,            taken_by_all },
	{ {  27 }, field_of<&_program::s1000_key_loudness>,             &as_signed_byte,            taken_by_all },
	{ {  28 }, field_of<&_program::s1000_aftertouch_loudness>,      &as_signed_byte,            taken_by_all },
	{ {  29 }, field_of<&_program::s1000_lfo2_speed>,               &as_byte,                   taken_by_all },
	{ {  30 }, field_of<&_program::s1000_lfo2_depth>,               &as_byte,                   taken_by_all },
	{ {  31 }, field_of<&_program::s1000_lfo2_delay>,               &as_byte,                   taken_by_all },
	{ {  32 }, field_of<&_program::s1000_key_panning>,              &as_signed_byte,            taken_by_all },
	{ {  33 }, field_of<&_program::s1000_lfo1_speed>,               &as_byte,                   taken_by_all },
	{ {  34 }, field_of<&_program::s1000_lfo1_depth>,               &as_byte,                   taken_by_all },
	{ {  35 }, field_of<&_program::s1000_lfo1_delay>,               &as_byte,                   taken_by_all },
	{ {  36 }, field_of<&_program::s1000_lfo1_modwheel>,            &as_byte,                   taken_by_all },
	{ {  37 }, field_of<&_program::s1000_lfo1_pressure>,            &as_byte,                   taken_by_all },
	{ {  39 }, field_of<&_program::s1000_bendwheel_pitch_up>,       &as_byte,                   taken_by_all },
	{ {  40 }, field_of<&_program::s1000_aftertouch_bend>,          &as_byte,                   taken_by_all },
	{ {  41 }, field_of<&_program::crossfade_enable>,               &as_byte,                   taken_by_all },
	{ {  42 }, field_of<&_program::keygroups>,                      &as_byte,                   taken_at_creation },
	{ {  56 }, field_of<&_program::s1000_effect_out>,               &as_byte,                   taken_by_all },
	{ {  57 }, field_of<&_program::s1000_mod_panning>,              &as_signed_byte,            taken_by_all },
	{ {  59 }, field_of<&_program::s1000_lfo1_sync>,                &as_byte,                   taken_by_all },
	{ {  61 }, field_of<&_program::s1000_reasignement>,             &as_byte,                   taken_by_all },
	{ {  65 }, field_of<&_program::s1000_tunning_offset>,           &as_akai_tuning,            taken_by_all },
	{ {  72 }, field_of<&_program::s2000_mono_legato>,              &as_byte,                   taken_by_s2000 },
	{ {  73 }, field_of<&_program::s2000_bendwheel_pitch_down>,     &as_byte,                   taken_by_s2000 },
	{ {  74 }, field_of<&_program::s2000_aftertouch_bend_mode>,     &as_byte,                   taken_by_s2000 },
	{ {  75 }, field_of<&_program::s2000_transpose_offset>,         &as_signed_byte,            taken_by_s2000 },
	{ {  76 }, field_of<&_program::s2000_pan_mod1_source>,          &as_byte,                   taken_by_s2000 },
	{ {  77 }, field_of<&_program::s2000_pan_mod2_source>,          &as_byte,                   taken_by_s2000 },
	{ {  78 }, field_of<&_program::s2000_pan_mod3_source>,          &as_byte,                   taken_by_s2000 },
	{ {  79 }, field_of<&_program::s2000_out_mod1_source>,          &as_byte,                   taken_by_s2000 },
	{ {  80 }, field_of<&_program::s2000_out_mod2_source>,          &as_byte,                   taken_by_s2000 },
	{ {  81 }, field_of<&_program::s2000_lfo1_rate_source>,         &as_byte,                   taken_by_s2000 },
	{ {  82 }, field_of<&_program::s2000_lfo1_depth_source>,        &as_byte,                   taken_by_s2000 },
	{ {  83 }, field_of<&_program::s2000_lfo1_delay_source>,        &as_byte,                   taken_by_s2000 },
	{ {  84 }, field_of<&_program::s2000_flt_mod1_source>,          &as_byte,                   taken_by_s2000 },
	{ {  85 }, field_of<&_program::s2000_flt_mod2_source>,          &as_byte,                   taken_by_s2000 },
	{ {  86 }, field_of<&_program::s2000_flt_mod3_source>,          &as_byte,                   taken_by_s2000 },
	{ {  88 }, field_of<&_program::s2000_amp_mod3_source>,          &as_byte,                   taken_by_s2000 },
	{ {  89 }, field_of<&_program::s2000_pan_mod1_level>,           &as_signed_byte,            taken_by_s2000 },
	{ {  90 }, field_of<&_program::s2000_pan_mod2_level>,           &as_signed_byte,            taken_by_s2000 },
	{ {  91 }, field_of<&_program::s2000_pan_mod3_level>,           &as_signed_byte,            taken_by_s2000 },
	{ {  92 }, field_of<&_program::s2000_out_mod1_level>,           &as_signed_byte,            taken_by_s2000 },
	{ {  93 }, field_of<&_program::s2000_out_mod2_level>,           &as_signed_byte,            taken_by_s2000 },
	{ {  94 }, field_of<&_program::s2000_lfo1_rate_level>,          &as_signed_byte,            taken_by_s2000 },
	{ {  95 }, field_of<&_program::s2000_lfo1_depth_level>,         &as_signed_byte,            taken_by_s2000 },
	{ {  96 }, field_of<&_program::s2000_lfo1_delay_level>,         &as_signed_byte,            taken_by_s2000 },
	{ {  97 }, field_of<&_program::s2000_lfo1_waveform>,            &as_byte,                   taken_by_s2000 },
	{ {  98 }, field_of<&_program::s2000_lfo2_waveform>,            &as_byte,                   taken_by_s2000 },
	{ { 102 }, field_of<&_program::s2000_lfo2_retrigger>,           &as_not,                    taken_by_s2000 },
	{ { 110 }, field_of<&_program::s2000_portamento_rate>,          &as_byte,                   taken_by_s2000 },
	{ { 111 }, field_of<&_program::s2000_portamento_mode>,          &as_byte,                   taken_by_s2000 },
	{ { 112 }, field_of<&_program::s2000_portamento>,               &as_byte,                   taken_by_s2000 },
};

static constexpr parameter<_keygroup> keygroup_rows[] = {
	// offset  field                                              conversion                  taken back by
	{ {   3 }, field_of<&_keygroup::low_note>,                      &as_byte,                   taken_by_all },
	{ {   4 }, field_of<&_keygroup::high_note>,                     &as_byte,                   taken_by_all },
	{ {   5 }, field_of<&_keygroup::s1000_tune_offset>,             &as_akai_tuning,            taken_by_all },
	{ {   7 }, field_of<&_keygroup::s1000_basic_filter_frequency>,  &as_byte,                   taken_by_all },
	{ {   8 }, field_of<&_keygroup::s1000_filter_keyboard>,         &as_signed_byte,            taken_by_all },
	{ {   9 }, field_of<&_keygroup::s1000_filter_velocity_freq>,    &as_signed_byte,            taken_by_all },
	{ {  10 }, field_of<&_keygroup::s1000_filter_pressure_freq>,    &as_signed_byte,            taken_by_all },
	{ {  11 }, field_of<&_keygroup::s1000_filter_env2_freq>,        &as_signed_byte,            taken_by_all },
	{ {  12 }, field_of<&_keygroup::amp_attack>,                    &as_byte,                   taken_by_all },
	{ {  13 }, field_of<&_keygroup::amp_decay>,                     &as_byte,                   taken_by_all },
	{ {  14 }, field_of<&_keygroup::amp_sustain>,                   &as_byte,                   taken_by_all },
	{ {  15 }, field_of<&_keygroup::amp_release>,                   &as_byte,                   taken_by_all },
	{ {  16 }, field_of<&_keygroup::s1000_env1_velocity_attack>,    &as_signed_byte,            taken_by_all },
	{ {  17 }, field_of<&_keygroup::s1000_env1_velocity_release>,   &as_signed_byte,            taken_by_all },
	{ {  18 }, field_of<&_keygroup::s1000_env1_off_velocity_release>, &as_signed_byte,            taken_by_all },
	{ {  19 }, field_of<&_keygroup::s1000_env1_key_scaling>,        &as_signed_byte,            taken_by_all },
	{ {  20 }, field_of<&_keygroup::s1000_env2_r1>,                 &as_signed_byte,            taken_by_all },
	{ {  21 }, field_of<&_keygroup::s1000_env2_r3>,                 &as_signed_byte,            taken_by_all },
	{ {  22 }, field_of<&_keygroup::s1000_env2_l3>,                 &as_signed_byte,            taken_by_all },
	{ {  23 }, field_of<&_keygroup::s1000_env2_r4>,                 &as_signed_byte,            taken_by_all },
	{ {  24 }, field_of<&_keygroup::s1000_env2_velocity_r1>,        &as_signed_byte,            taken_by_all },
	{ {  25 }, field_of<&_keygroup::s1000_env2_velocity_r4>,        &as_signed_byte,            taken_by_all },
	{ {  26 }, field_of<&_keygroup::s1000_env2_off_velocity_r4>,    &as_signed_byte,            taken_by_all },
	{ {  27 }, field_of<&_keygroup::s1000_env2_key_r2_r4>,          &as_signed_byte,            taken_by_all },
	{ {  28 }, field_of<&_keygroup::s1000_env2_velocity_envelope>,  &as_signed_byte,            taken_by_all },
	{ {  29 }, field_of<&_keygroup::s1000_filter_env2_pitch>,       &as_signed_byte,            taken_by_all },
	{ {  30 }, field_of<&_keygroup::crossfade>,                     &as_byte,                   taken_by_all },
	{ { 130 }, field_of<&_keygroup::kbeat>,                         &as_byte,                   taken_never },
	// One byte for two fields, of which the second goes back.
	{ { 131 }, field_of<&_keygroup::ahold>,                         &as_byte,                   taken_never },
	{ { 131 }, field_of<&_keygroup::s1000_env1_attack_hold>,        &as_byte,                   taken_by_s2000 },
	{ { 148 }, field_of<&_keygroup::s1000_filter_loudness_offset>,  &as_signed_byte,            taken_by_all },
	{ { 149 }, field_of<&_keygroup::s2000_filter_resonance>,        &as_byte,                   taken_by_s2000 },
	{ { 151 }, field_of<&_keygroup::s2000_flt_mod1_level>,          &as_signed_byte,            taken_by_s2000 },
	{ { 152 }, field_of<&_keygroup::s2000_flt_mod2_level>,          &as_signed_byte,            taken_by_s2000 },
	{ { 153 }, field_of<&_keygroup::s2000_flt_mod3_level>,          &as_signed_byte,            taken_by_s2000 },
	{ { 155 }, field_of<&_keygroup::s2000_amp_mod3_level>,          &as_signed_byte,            taken_by_s2000 },
	{ { 156 }, field_of<&_keygroup::s2000_env2_l1>,                 &as_signed_byte,            taken_by_s2000 },
	{ { 157 }, field_of<&_keygroup::s2000_env2_r2>,                 &as_signed_byte,            taken_by_s2000 },
	{ { 158 }, field_of<&_keygroup::s2000_env2_l2>,                 &as_signed_byte,            taken_by_s2000 },
	{ { 159 }, field_of<&_keygroup::s2000_env2_l4>,                 &as_signed_byte,            taken_by_s2000 },
	{ { 160 }, field_of<&_keygroup::mute_group>,                    &as_byte_from_one_or_none,  taken_by_s2000 },
};

static constexpr parameter<_keyzone> keyzone_rows[] = {
	// offset, step         field                                              conversion                  taken back by
	{ {  34, zone_step }, field_of<&_keyzone::samplename>,                     &as_trimmed_akai_name,      taken_by_all },
	{ {  46, zone_step }, field_of<&_keyzone::low_velocity>,                   &as_byte,                   taken_by_all },
	{ {  47, zone_step }, field_of<&_keyzone::high_velocity>,                  &as_byte,                   taken_by_all },
	{ {  48, zone_step }, field_of<&_keyzone::tunning>,                        &as_akai_tuning,            taken_by_all },
	{ {  50, zone_step }, field_of<&_keyzone::level>,                          &as_byte,                   taken_by_all },
	{ {  51, zone_step }, field_of<&_keyzone::filter>,                         &as_byte,                   taken_by_all },
	{ {  52, zone_step }, field_of<&_keyzone::zone_panning>,                   &as_byte,                   taken_by_all },
	{ {  53, zone_step }, field_of<&_keyzone::zone_playback>,                  &as_byte,                   taken_by_all },
	// Behind the four zones, one array for each of these.
	{ { 132, 1 },         field_of<&_keyzone::zone_keyboard_track>,            &as_byte,                   taken_by_all },
	{ { 136, 1 },         field_of<&_keyzone::s1000_vzout>,                    &as_byte,                   taken_by_all },
	{ { 140, 2 },         field_of<&_keyzone::velocity_start>,                 &as_word,                   taken_by_all },
};
// clang-format on

static_assert(table_is_sound<_program>(program_rows, s2000_program_size));
static_assert(table_is_sound<_keygroup>(keygroup_rows, s1000_keygroup_size));
static_assert(table_is_sound<_keyzone>(keyzone_rows, s1000_zones_end, akai_zones));

const parameters<_program> akai_s1000_program_parameters = program_rows;
const parameters<_keygroup> akai_s1000_keygroup_parameters = keygroup_rows;
const parameters<_keyzone> akai_s1000_keyzone_parameters = keyzone_rows;

unsigned akai_s1000_takers(i32 model)
{
	return model >= model_s2000 ? taken_by_s2000 : taken_by_s1000;
}

void akai_s1000_program_from_block(bounded_bytes block, _program *program)
{
	block_to_record(akai_s1000_program_parameters, block, *program);
}

void akai_s1000_keygroup_from_block(bounded_bytes block, _keygroup *keygroup)
{
	block_to_record(akai_s1000_keygroup_parameters, block, *keygroup);
	keygroup->keyzones = akai_zones;
	for (int z = 0; z < akai_zones; z++) {
		_keyzone &zone = keygroup->keyzone[z];
		zone = {};
		block_to_record(akai_s1000_keyzone_parameters, block, zone, z);
	}
}

} // namespace velmor
