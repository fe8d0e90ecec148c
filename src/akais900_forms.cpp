// akais900_forms.cpp - the keygroup and keyzone forms of the S900 and S950
//
// A keygroup has two zones, the soft and the loud sample, and one velocity switch between them,
// which fills a field of each. The flags hold their own bit, as the machine sends it.
//
// Knows nothing of: toolkits, the wire.

#include "src/akai_forms.h"

namespace velmor
{

// Which of the two zones has a row.
enum : unsigned {
	soft = 1,
	loud = 2,
	both = soft | loud,
};

static unsigned shown_for(i32, i32 keyzone)
{
	return keyzone == 0 ? soft : loud;
}

// ---- Units and lists ------------------------------------------------------------------------

static constexpr i32 switch_off = 128; // the soft sample at every velocity
static constexpr int sample_name = 9;  // characters

static std::string switch_text(i32 shown)
{
	return shown == switch_off ? "OFF" : std::to_string(shown);
}

static std::optional<i32> typed_switch(const std::string &typed)
{
	return typed == "OFF" || typed == "off" ? switch_off : typed_number(typed, 1);
}

// Sixteenths of a semitone, as semitones with two decimals.
static std::string sixteenths(i32 shown)
{
	const i32 size = shown < 0 ? -shown : shown;
	return (shown < 0 ? "-" : "") + hundredths(size / 16 * 100 + (size % 16 * 100 + 8) / 16);
}

static std::optional<i32> typed_sixteenths(const std::string &typed)
{
	return typed_number(typed, 16);
}

// clang-format off
static constexpr form_unit unit_switch     = { "",           nullptr, nullptr, switch_text, typed_switch };
static constexpr form_unit unit_sixteenths = { "semitones",  nullptr, nullptr, sixteenths,  typed_sixteenths };
static constexpr form_unit unit_s950       = { "S950 only" };
// clang-format on

// ANY, LEFT and RIGHT, then the outputs 1 to 8.
static std::vector<form_item> outputs()
{
	std::vector<form_item> items = { { 255, "ANY" }, { 8, "LEFT" }, { 9, "RIGHT" } };
	for (int output = 1; output <= 8; output++)
		items.push_back({ output - 1, std::to_string(output) });
	return items;
}

template <int bit> static std::vector<form_item> flag()
{
	return { { 0, "OFF" }, { bit, "ON" } };
}

// The crossfade of a whole program; whatever is not 0 is on.
static std::vector<form_item> crossfades()
{
	return { { 0, "OFF" }, { 1, "ON" }, { 127, "ON" } };
}

// ---- Rows -----------------------------------------------------------------------------------

static constexpr form_table_row heading(const char *words, unsigned who = both)
{
	return { .kind = row_kind::heading, .label = words, .shown_for = who };
}

template <typename record>
static constexpr form_table_row bar(const char *label, named_field<record> field, int low, int high,
	const form_unit *unit = nullptr, unsigned who = both)
{
	return { .kind = row_kind::slider,
		.label = label,
		.field = field,
		.shown_for = who,
		.bar = { low, high },
		.edit = { low, high },
		.unit = unit,
		.log_word = field.name };
}

static constexpr form_table_row list(
	const char *label, named_field<_keygroup> field, form_items items)
{
	return { .kind = row_kind::choice,
		.label = label,
		.field = field,
		.items = items,
		.apply_word = field.name };
}

static constexpr form_table_row key(const char *label, named_field<_keygroup> field,
	bool (*allowed)(const _keygroup &, i32), const char *stored)
{
	form_table_row row = list(label, field, note_items<24, 127>);
	row.allowed = allowed;
	row.stored_line = stored;
	return row;
}

static constexpr form_table_row sample(const char *label, unsigned who)
{
	return { .kind = row_kind::choice,
		.label = label,
		.field = field_of<&_keyzone::samplename>,
		.shown_for = who,
		.apply = applying::alone,
		// The machine keeps the tail of a longer name where blanks do not cover it.
		.text_filled = sample_name };
}

// What belongs to the soft sample alone is no value for both.
static constexpr form_table_row for_soft_alone(form_table_row row)
{
	row.only_keyzone = 0;
	row.apply = applying::alone;
	return row;
}

// Written out: no constant may assign to a field of another kind with every compiler.
static constexpr form_table_row velocity_switch()
{
	const form_table_row row = bar(
		"Velocity switch", field_of<&_keyzone::high_velocity>, 0, switch_off, &unit_switch);
	return { .kind = row.kind,
		.label = row.label,
		.field = row.field,
		.shown_for = row.shown_for,
		.bar = row.bar,
		.edit = row.edit,
		.unit = row.unit,
		.log_word = row.log_word,
		.apply = applying::alone,
		.only_keyzone = 0,
		.also = field_of<&_keyzone::low_velocity> };
}

// clang-format off
static constexpr form_table_row keygroup_rows[] = {
	heading("Keygroup"),
	key("Lower key",             field_of<&_keygroup::low_note>,               low_note_allowed,  "[D] New Low-Value: %d\r\n"),
	key("Upper key",             field_of<&_keygroup::high_note>,              high_note_allowed, "[D] New High-Value: %d\r\n"),
	list("Constant pitch",       field_of<&_keygroup::s900_transpose_disable>, flag<1>),
	list("LFO desync",           field_of<&_keygroup::s900_lfo_desync>,        flag<4>),
	list("One shot trigger",     field_of<&_keygroup::s900_one_shot_trigger>,  flag<8>),
	{ .kind = row_kind::reading, .label = "Positional crossfade of the program", .field = field_of<&_program::crossfade_enable>,
	  .items = crossfades, .why_not = "The sampler tells this value but does not take it back: change it on the sampler." },
	heading("Envelope"),
	bar("Attack",                field_of<&_keygroup::amp_attack>,             0, 99),
	bar("Decay",                 field_of<&_keygroup::amp_decay>,              0, 99),
	bar("Sustain",               field_of<&_keygroup::amp_sustain>,            0, 99),
	bar("Release",               field_of<&_keygroup::amp_release>,            0, 99),
	list("Release velocity from note-on", field_of<&_keygroup::s900_velocity_release_from_note_on>, flag<16>),
	heading("Filter envelope"),
	bar("Filter attack",         field_of<&_keygroup::filter_attack>,          0, 99, &unit_s950),
	bar("Filter decay",          field_of<&_keygroup::filter_decay>,           0, 99, &unit_s950),
	bar("Filter sustain",        field_of<&_keygroup::filter_sustain>,         0, 99, &unit_s950),
	bar("Filter release",        field_of<&_keygroup::filter_release>,         0, 99, &unit_s950),
	heading("Output"),
	list("Audio output",         field_of<&_keygroup::s900_output>,            outputs),
	bar("MIDI channel offset",   field_of<&_keygroup::s900_midi_offset>,       0, 15),
	heading("Velocity switch"),
	list("Velocity crossfade",   field_of<&_keygroup::s900_velocity_crossfade>, flag<2>),
	list("Velocity crossfade curve modified", field_of<&_keygroup::s900_velocity_crossfade_curve_modification>, flag<32>),
};

static constexpr form_table_row zone_rows[] = {
	heading("Velocity switch"),
	velocity_switch(),
	heading("Soft", soft),
	heading("Loud", loud),
	sample("Soft sample", soft),
	sample("Loud sample", loud),
	bar("Transpose",             field_of<&_keyzone::transpose_offset>,        -512, 511, &unit_sixteenths),
	for_soft_alone(bar("Filter", field_of<&_keyzone::s900_filter>,             0, 99, nullptr, soft)),
	{ .kind = row_kind::reading, .label = "Filter", .field = field_of<&_keyzone::s900_filter>, .shown_for = loud,
	  .why_not = "The sampler takes one filter for both samples: that of the soft one." },
	bar("Loudness",              field_of<&_keyzone::s900_loudness>,           -50, 50),
};

static constexpr form_table keygroup_form = {
	.control   = form_of_keygroup,
	.rows      = keygroup_rows,
	.shown_for = nullptr,
	.callback  = akai_s900_voice_assign_callback,
	.busy      = &keygroup_setup_busy,
	.first_id  = 28600,
};
static constexpr form_table zone_form = {
	.control   = form_of_keyzone,
	.rows      = zone_rows,
	.shown_for = shown_for,
	.callback  = akai_s900_velocity_assign_callback,
	.busy      = &setup_busy,
	.keyzones  = 2,
	.first_id  = 28700,
};
// clang-format on

// ---- Slots ----------------------------------------------------------------------------------

void akai_s900_voice_assign(int window, i32 pgm, i32 kg, i32 kz)
{
	log_line("[D] Requesting Keygroup form for Akai S900 (PGM: %d, KG: %d, KZ: %d)\r\n", pgm,
		kg, kz);
	open_form(keygroup_form, window, pgm, kg, kz);
}

void akai_s900_voice_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second)
{
	if (!keygroup_setup_busy)
		take_form_event(keygroup_form, window, pgm, kg, kz, message, first, second);
}

void akai_s900_velocity_assign(int window, i32 pgm, i32 kg, i32 kz)
{
	log_line("[D] Requesting Keyzone form for Akai S900 (PGM: %d, KG: %d, KZ: %d)\r\n", pgm, kg,
		kz);
	open_form(zone_form, window, pgm, kg, kz);
}

void akai_s900_velocity_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second)
{
	if (!setup_busy)
		take_form_event(zone_form, window, pgm, kg, kz, message, first, second);
}

void akai_s900_prog_assign(int, i32, i32, i32) {}
void akai_s900_prog_assign_callback(int, i32, i32, i32, unsigned, std::uintptr_t, std::intptr_t) {}

} // namespace velmor
