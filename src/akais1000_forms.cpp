// akais1000_forms.cpp - the program, keygroup and keyzone forms of the S1000 family
//
// One table for all models; bits say who has a row. From the S2000 on assignable modulation
// does the work of fixed amounts, whose bytes are kept for programs of an S1000: there they
// stand in a group of their own, at the end. Labels and order follow the machines' pages.
//
// Some signed bytes and words stand in the record without a sign; their unit says so.
//
// Knows nothing of: toolkits, the wire.

#include "src/akai_forms.h"
#include "src/akais1000.h"

namespace velmor
{

static constexpr unsigned s1000 = taken_by_s1000, s2000 = taken_by_s2000, all = taken_by_all;

static unsigned shown_for(i32 model, i32)
{
	return akai_s1000_takers(model);
}

// ---- Lists ----------------------------------------------------------------------------------

static constexpr const char *off_on[] = { "OFF", "ON" };
static constexpr const char *priorities[] = { "LOW", "NORM", "HIGH", "HOLD" };
static constexpr const char *reassignments[] = { "OLDEST", "QUIETEST" };
static constexpr const char *bend_modes[] = { "NORMAL", "HELD" };
static constexpr const char *portamento_modes[] = { "TIME", "RATE" };
static constexpr const char *waveforms[] = { "TRIANGLE", "SAWTOOTH", "SQUARE", "RANDOM" };
// "!" takes the controller's value at note-on. Only machines with a second filter have ENV3.
static constexpr const char *sources[] = { "NO SOURCE", "MODWHEEL", "BEND", "PRESSURE", "EXTERNAL",
	"VELOCITY", "KEY", "LFO1", "LFO2", "ENV1", "ENV2", "!MODWHEEL", "!BEND", "!EXTERNAL",
	"ENV3" };
static constexpr const char *trackings[] = { "TRACK", "CONST" };
static constexpr const char *playbacks[] = { "AS SAMPLE", "LOOP IN REL", "LOOP UNTIL REL",
	"NO LOOPS", "PLAY TO END" };

static std::vector<form_item> channels()
{
	return numbers_after("OMNI", 16);
}

static std::vector<form_item> outputs()
{
	return numbers_after("OFF", 8);
}

static std::vector<form_item> mute_groups()
{
	return numbers_after("OFF", 32);
}

static constexpr form_unit unit_voices = { "voices" };
static constexpr form_unit unit_per_octave = { "semitones an octave" };

// ---- Rows -----------------------------------------------------------------------------------

static constexpr form_table_row heading(const char *words, unsigned who = all)
{
	return { .kind = row_kind::heading, .label = words, .shown_for = who };
}

static constexpr form_table_row bar(const char *label, any_field field, const char *log_word,
	unsigned who, int low, int high, const form_unit *unit)
{
	return { .kind = row_kind::slider,
		.label = label,
		.field = field,
		.shown_for = who,
		.bar = { low, high },
		.edit = { low, high },
		.unit = unit,
		.log_word = log_word };
}

// The field's own name is the word in the log.
template <typename record>
static constexpr form_table_row bar(const char *label, named_field<record> field, unsigned who,
	int low, int high, const form_unit *unit = nullptr)
{
	return bar(label, any_field(field), field.name, who, low, high, unit);
}

// 0 to 99, and -50 to +50.
template <typename record>
static constexpr form_table_row level(
	const char *label, named_field<record> field, unsigned who = all)
{
	return bar(label, field, who, 0, 99);
}

template <typename record>
static constexpr form_table_row amount(const char *label, named_field<record> field,
	unsigned who = all, const form_unit *unit = nullptr)
{
	return bar(label, field, who, -50, 50, unit);
}

template <typename record>
static constexpr form_table_row list(
	const char *label, named_field<record> field, form_items items, unsigned who = all)
{
	return { .kind = row_kind::choice,
		.label = label,
		.field = field,
		.shown_for = who,
		.items = items,
		.apply_word = field.name };
}

static constexpr form_table_row source(const char *label, named_field<_program> field)
{
	return list(label, field, word_items<sources>, s2000);
}

// It belongs to the program and stands beside the amounts of each keygroup.
static constexpr form_unit unit_all_keygroups = { "for all keygroups" };
static constexpr form_table_row shared_source(const char *label, named_field<_program> field)
{
	form_table_row row = source(label, field);
	row.unit = &unit_all_keygroups;
	row.apply = applying::alone;
	return row;
}

static constexpr form_table_row key(const char *label, named_field<_keygroup> field,
	form_items items, unsigned who, bool (*allowed)(const _keygroup &, i32), const char *stored)
{
	form_table_row row = list(label, field, items, who);
	row.allowed = allowed;
	row.stored_line = stored;
	return row;
}

static constexpr form_table_row reading(const char *label, named_field<_keygroup> field,
	unsigned who, form_items items, const char *why_not)
{
	return { .kind = row_kind::reading,
		.label = label,
		.field = field,
		.shown_for = who,
		.items = items,
		.why_not = why_not };
}

static constexpr char new_low[] = "[D] New Low-Value: %d\r\n";
static constexpr char new_high[] = "[D] New High-Value: %d\r\n";
static constexpr char never_taken[] =
	"The sampler tells this value but does not take it back: change it on the sampler.";

// clang-format off
// ---- Program --------------------------------------------------------------------------------

static constexpr form_table_row program_rows[] = {
	heading("MIDI"),
	bar("Program number",          field_of<&_program::midi_pgm_number>,            all,     1, 128),
	list("MIDI channel",           field_of<&_program::midi_channel>,               channels),
	bar("Polyphony",               field_of<&_program::polyphony>,                  s1000,   1, 16, &unit_voices),
	bar("Polyphony",               field_of<&_program::polyphony>,                  s2000,   1, 32, &unit_voices),
	list("Priority",               field_of<&_program::s1000_priority>,             word_items<priorities>),
	list("Reassignment",           field_of<&_program::s1000_reasignement>,         word_items<reassignments>),
	list("Play range low",         field_of<&_program::play_range_low>,             note_items<24, 127>, s1000),
	list("Play range low",         field_of<&_program::play_range_low>,             note_items<21, 127>, s2000),
	list("Play range high",        field_of<&_program::play_range_high>,            note_items<24, 127>, s1000),
	list("Play range high",        field_of<&_program::play_range_high>,            note_items<21, 127>, s2000),
	amount("Transpose",            field_of<&_program::s2000_transpose_offset>,     s2000,   &unit_semitones),
	list("Mono legato",            field_of<&_program::s2000_mono_legato>,          word_items<off_on>, s2000),
	list("Keygroup crossfade",     field_of<&_program::crossfade_enable>,           word_items<off_on>),
	heading("Output levels"),
	level("Stereo level",          field_of<&_program::s1000_level>),
	amount("Pan",                  field_of<&_program::s1000_balance>,              all,     &unit_signed_pan),
	list("Individual output",      field_of<&_program::s1000_output>,               outputs),
	list("Effects send",           field_of<&_program::s1000_effect_out>,           word_items<off_on>, s1000),
	heading("Loudness"),
	level("Loudness",              field_of<&_program::s1000_basic_loudness>),
	amount("Velocity > loudness",  field_of<&_program::s1000_velocity_loudness>),
	amount("Key > loudness",       field_of<&_program::s1000_key_loudness>,         s1000),
	amount("Pressure > loudness",  field_of<&_program::s1000_aftertouch_loudness>,  s1000),
	source("Loudness mod 1 source", field_of<&_program::s2000_out_mod1_source>),
	amount("Loudness mod 1 amount", field_of<&_program::s2000_out_mod1_level>,      s2000),
	source("Loudness mod 2 source", field_of<&_program::s2000_out_mod2_source>),
	amount("Loudness mod 2 amount", field_of<&_program::s2000_out_mod2_level>,      s2000),
	heading("Pan"),
	amount("Key > pan",            field_of<&_program::s1000_key_panning>,          s1000),
	amount("Modwheel > pan",       field_of<&_program::s1000_mod_panning>,          s1000),
	level("Pan speed",             field_of<&_program::s1000_lfo2_speed>,           s1000),
	level("Pan depth",             field_of<&_program::s1000_lfo2_depth>,           s1000),
	level("Pan delay",             field_of<&_program::s1000_lfo2_delay>,           s1000),
	source("Pan mod 1 source",     field_of<&_program::s2000_pan_mod1_source>),
	amount("Pan mod 1 amount",     field_of<&_program::s2000_pan_mod1_level>,       s2000),
	source("Pan mod 2 source",     field_of<&_program::s2000_pan_mod2_source>),
	amount("Pan mod 2 amount",     field_of<&_program::s2000_pan_mod2_level>,       s2000),
	source("Pan mod 3 source",     field_of<&_program::s2000_pan_mod3_source>),
	amount("Pan mod 3 amount",     field_of<&_program::s2000_pan_mod3_level>,       s2000),
	heading("LFO1"),
	list("LFO1 waveform",          field_of<&_program::s2000_lfo1_waveform>,        word_items<waveforms>, s2000),
	level("LFO1 speed",            field_of<&_program::s1000_lfo1_speed>),
	level("LFO1 depth",            field_of<&_program::s1000_lfo1_depth>),
	level("LFO1 delay",            field_of<&_program::s1000_lfo1_delay>),
	level("Modwheel > LFO1 depth", field_of<&_program::s1000_lfo1_modwheel>),
	level("Pressure > LFO1 depth", field_of<&_program::s1000_lfo1_pressure>),
	list("LFO1 desync",            field_of<&_program::s1000_lfo1_sync>,            word_items<off_on>), // 1: each voice by itself
	source("LFO1 speed mod source", field_of<&_program::s2000_lfo1_rate_source>),
	amount("LFO1 speed mod amount", field_of<&_program::s2000_lfo1_rate_level>,     s2000),
	source("LFO1 depth mod source", field_of<&_program::s2000_lfo1_depth_source>),
	amount("LFO1 depth mod amount", field_of<&_program::s2000_lfo1_depth_level>,    s2000),
	source("LFO1 delay mod source", field_of<&_program::s2000_lfo1_delay_source>),
	amount("LFO1 delay mod amount", field_of<&_program::s2000_lfo1_delay_level>,    s2000),
	heading("LFO2", s2000),
	list("LFO2 waveform",          field_of<&_program::s2000_lfo2_waveform>,        word_items<waveforms>, s2000),
	level("LFO2 speed",            field_of<&_program::s1000_lfo2_speed>,           s2000),
	level("LFO2 depth",            field_of<&_program::s1000_lfo2_depth>,           s2000),
	level("LFO2 delay",            field_of<&_program::s1000_lfo2_delay>,           s2000),
	list("LFO2 retrigger",         field_of<&_program::s2000_lfo2_retrigger>,       word_items<off_on>, s2000),
	heading("Tune"),
	bar("Tune offset",             field_of<&_program::s1000_tunning_offset>,       all,     -5000, 5000, &unit_cents),
	heading("Bend"),
	bar("Bend range",              field_of<&_program::s1000_bendwheel_pitch_up>,   s1000,   0, 12, &unit_semitones),
	bar("Bend up",                 field_of<&_program::s1000_bendwheel_pitch_up>,   s2000,   0, 24, &unit_semitones),
	bar("Bend down",               field_of<&_program::s2000_bendwheel_pitch_down>, s2000,   0, 24, &unit_semitones),
	list("Bend mode",              field_of<&_program::s2000_aftertouch_bend_mode>, word_items<bend_modes>, s2000),
	bar("Pressure > pitch",        field_of<&_program::s1000_aftertouch_bend>,      all,     -12, 12, &unit_signed_semitones),
	heading("Portamento", s2000),
	list("Portamento",             field_of<&_program::s2000_portamento>,           word_items<off_on>, s2000),
	level("Portamento rate",       field_of<&_program::s2000_portamento_rate>,      s2000),
	list("Portamento mode",        field_of<&_program::s2000_portamento_mode>,      word_items<portamento_modes>, s2000),
	heading("S1000 modulation", s2000),
	list("Effects send",           field_of<&_program::s1000_effect_out>,           word_items<off_on>, s2000),
	amount("Key > loudness",       field_of<&_program::s1000_key_loudness>,         s2000),
	amount("Pressure > loudness",  field_of<&_program::s1000_aftertouch_loudness>,  s2000),
	amount("Key > pan",            field_of<&_program::s1000_key_panning>,          s2000),
	amount("Modwheel > pan",       field_of<&_program::s1000_mod_panning>,          s2000),
};

// ---- Keygroup -------------------------------------------------------------------------------

static constexpr form_table_row keygroup_rows[] = {
	heading("Span"),
	key("Key low",  field_of<&_keygroup::low_note>,  note_items<24, 127>, s1000, low_note_allowed,  new_low),
	key("Key low",  field_of<&_keygroup::low_note>,  note_items<21, 127>, s2000, low_note_allowed,  new_low),
	key("Key high", field_of<&_keygroup::high_note>, note_items<24, 127>, s1000, high_note_allowed, new_high),
	key("Key high", field_of<&_keygroup::high_note>, note_items<21, 127>, s2000, high_note_allowed, new_high),
	list("Velocity zone crossfade", field_of<&_keygroup::crossfade>,                word_items<off_on>),
	list("Mute group",             field_of<&_keygroup::mute_group>,                mute_groups, s2000),
	bar("Keygroup tune",           field_of<&_keygroup::s1000_tune_offset>,         all,     -5000, 5000, &unit_cents),
	reading("Beat",                field_of<&_keygroup::kbeat>,                     all,     nullptr, never_taken),
	heading("Filter"),
	level("Filter frequency",      field_of<&_keygroup::s1000_basic_filter_frequency>),
	bar("Resonance",               field_of<&_keygroup::s2000_filter_resonance>,    s2000,   0, 15),
	bar("Key follow",              field_of<&_keygroup::s1000_filter_keyboard>,     all,     -24, 24, &unit_per_octave),
	amount("Velocity > filter",    field_of<&_keygroup::s1000_filter_velocity_freq>, s1000),
	amount("Pressure > filter",    field_of<&_keygroup::s1000_filter_pressure_freq>, s1000),
	amount("Env2 > filter",        field_of<&_keygroup::s1000_filter_env2_freq>,    s1000),
	heading("Filter mod", s2000),
	shared_source("Filter mod 1 source", field_of<&_program::s2000_flt_mod1_source>),
	amount("Filter mod 1 amount",  field_of<&_keygroup::s2000_flt_mod1_level>,      s2000),
	shared_source("Filter mod 2 source", field_of<&_program::s2000_flt_mod2_source>),
	amount("Filter mod 2 amount",  field_of<&_keygroup::s2000_flt_mod2_level>,      s2000),
	shared_source("Filter mod 3 source", field_of<&_program::s2000_flt_mod3_source>),
	amount("Filter mod 3 amount",  field_of<&_keygroup::s2000_flt_mod3_level>,      s2000),
	heading("Amp mod"),
	shared_source("Amp mod 3 source", field_of<&_program::s2000_amp_mod3_source>),
	amount("Amp mod 3 amount",     field_of<&_keygroup::s2000_amp_mod3_level>,      s2000),
	amount("Velocity > loudness offset", field_of<&_keygroup::s1000_filter_loudness_offset>),
	heading("ENV1"),
	level("Attack",                field_of<&_keygroup::amp_attack>),
	level("Decay",                 field_of<&_keygroup::amp_decay>),
	level("Sustain",               field_of<&_keygroup::amp_sustain>),
	level("Release",               field_of<&_keygroup::amp_release>),
	amount("Velocity > attack",    field_of<&_keygroup::s1000_env1_velocity_attack>),
	amount("On velocity > release", field_of<&_keygroup::s1000_env1_velocity_release>),
	amount("Off velocity > release", field_of<&_keygroup::s1000_env1_off_velocity_release>),
	amount("Key > decay & release", field_of<&_keygroup::s1000_env1_key_scaling>),
	reading("Attack hold",         field_of<&_keygroup::s1000_env1_attack_hold>,    s1000,   word_items<off_on>, never_taken),
	list("Attack hold",            field_of<&_keygroup::s1000_env1_attack_hold>,    word_items<off_on>, s2000),
	heading("ENV2"),
	level("Attack",                field_of<&_keygroup::s1000_env2_r1>,             s1000),
	level("Decay",                 field_of<&_keygroup::s1000_env2_r3>,             s1000),
	level("Sustain",               field_of<&_keygroup::s1000_env2_l3>,             s1000),
	level("Release",               field_of<&_keygroup::s1000_env2_r4>,             s1000),
	level("Rate 1",                field_of<&_keygroup::s1000_env2_r1>,             s2000),
	level("Level 1",               field_of<&_keygroup::s2000_env2_l1>,             s2000),
	level("Rate 2",                field_of<&_keygroup::s2000_env2_r2>,             s2000),
	level("Level 2",               field_of<&_keygroup::s2000_env2_l2>,             s2000),
	level("Rate 3",                field_of<&_keygroup::s1000_env2_r3>,             s2000),
	level("Level 3",               field_of<&_keygroup::s1000_env2_l3>,             s2000),
	level("Rate 4",                field_of<&_keygroup::s1000_env2_r4>,             s2000),
	level("Level 4",               field_of<&_keygroup::s2000_env2_l4>,             s2000),
	amount("Velocity > attack",    field_of<&_keygroup::s1000_env2_velocity_r1>,    s1000),
	amount("Velocity > rate 1",    field_of<&_keygroup::s1000_env2_velocity_r1>,    s2000),
	amount("On velocity > release", field_of<&_keygroup::s1000_env2_velocity_r4>,   s1000),
	amount("On velocity > rate 4", field_of<&_keygroup::s1000_env2_velocity_r4>,    s2000),
	amount("Off velocity > release", field_of<&_keygroup::s1000_env2_off_velocity_r4>, s1000),
	amount("Off velocity > rate 4", field_of<&_keygroup::s1000_env2_off_velocity_r4>, s2000),
	amount("Key > decay & release", field_of<&_keygroup::s1000_env2_key_r2_r4>,     s1000),
	amount("Key > rate 2 & 4",     field_of<&_keygroup::s1000_env2_key_r2_r4>,      s2000),
	amount("Velocity > env2 output", field_of<&_keygroup::s1000_env2_velocity_envelope>),
	amount("Env2 > pitch",         field_of<&_keygroup::s1000_filter_env2_pitch>,   s1000),
	heading("S1000 modulation", s2000),
	amount("Velocity > filter",    field_of<&_keygroup::s1000_filter_velocity_freq>, s2000),
	amount("Pressure > filter",    field_of<&_keygroup::s1000_filter_pressure_freq>, s2000),
	amount("Env2 > filter",        field_of<&_keygroup::s1000_filter_env2_freq>,    s2000),
	amount("Env2 > pitch",         field_of<&_keygroup::s1000_filter_env2_pitch>,   s2000),
};

// ---- Keyzone --------------------------------------------------------------------------------

static constexpr form_table_row zone_rows[] = {
	heading("Zone"),
	{ .kind = row_kind::choice, .label = "Sample", .field = field_of<&_keyzone::samplename>, .apply = applying::alone },
	bar("Velocity low",            field_of<&_keyzone::low_velocity>,               all,     0, 127),
	bar("Velocity high",           field_of<&_keyzone::high_velocity>,              all,     0, 127),
	bar("Tune",                    field_of<&_keyzone::tunning>,                    all,     -5000, 5000, &unit_cents),
	list("Pitch",                  field_of<&_keyzone::zone_keyboard_track>,        word_items<trackings>),
	{ .kind = row_kind::radio, .label = "Playback", .field = field_of<&_keyzone::zone_playback>, .items = word_items<playbacks>,
	  .refresh = [](i32 pgm, i32 kg, i32 kz) { akai_s1000_sample_check(pgm, kg, kz); } },
	heading("Zone level"),
	amount("Loudness offset",      field_of<&_keyzone::level>,                      all,     &unit_signed_byte),
	amount("Filter offset",        field_of<&_keyzone::filter>,                     all,     &unit_signed_byte),
	amount("Pan offset",           field_of<&_keyzone::zone_panning>,               all,     &unit_signed_byte),
	bar("Output offset",           field_of<&_keyzone::s1000_vzout>,                all,     0, 7),
	bar("Velocity > sample start", field_of<&_keyzone::velocity_start>,             all,     -9999, 9999, &unit_signed_word),
};

static bool program_setup_busy;
static constexpr form_table program_form = {
	.control   = form_of_program,
	.rows      = program_rows,
	.shown_for = shown_for,
	.callback  = akai_s1000_prog_assign_callback,
	.busy      = &program_setup_busy,
	.first_id  = 28000,
};
static constexpr form_table keygroup_form = {
	.control   = form_of_keygroup,
	.rows      = keygroup_rows,
	.shown_for = shown_for,
	.callback  = akai_s1000_key_assign_callback,
	.busy      = &keygroup_setup_busy,
	.first_id  = 28200,
};
static constexpr form_table zone_form = {
	.control   = form_of_keyzone,
	.rows      = zone_rows,
	.shown_for = shown_for,
	.callback  = akai_s1000_velocity_assign_callback,
	.busy      = &setup_busy,
	.keyzones  = akai_zones,
	.first_id  = 28400,
};
// clang-format on

// ---- Slots ----------------------------------------------------------------------------------

void akai_s1000_prog_assign(int window, i32 pgm, i32 kg, i32 kz)
{
	log_line("[D] Requesting Program form for Akai S1000 (PGM: %d, KG: %d, KZ: %d)\r\n", pgm,
		kg, kz);
	open_form(program_form, window, pgm, kg, kz);
}

void akai_s1000_prog_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second)
{
	if (!program_setup_busy)
		take_form_event(program_form, window, pgm, kg, kz, message, first, second);
}

void akai_s1000_key_assign(int window, i32 pgm, i32 kg, i32 kz)
{
	log_line("[D] Requesting Keygroup form for Akai S1000 (PGM: %d, KG: %d, KZ: %d)\r\n", pgm,
		kg, kz);
	open_form(keygroup_form, window, pgm, kg, kz);
}

void akai_s1000_key_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second)
{
	if (!keygroup_setup_busy)
		take_form_event(keygroup_form, window, pgm, kg, kz, message, first, second);
}

void akai_s1000_velocity_assign(int window, i32 pgm, i32 kg, i32 kz)
{
	log_line("[D] Requesting Keyzone form for Akai S1000 (PGM: %d, KG: %d, KZ: %d)\r\n", pgm,
		kg, kz);
	open_form(zone_form, window, pgm, kg, kz);
}

void akai_s1000_velocity_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second)
{
	if (!setup_busy)
		take_form_event(zone_form, window, pgm, kg, kz, message, first, second);
}

void akai_s1000_sample_check(int program, int keygroup, int keyzone)
{
	show_form_field(zone_form, field_of<&_keyzone::zone_playback>, program, keygroup, keyzone);
}

} // namespace velmor
