// velmor_programs_envelopes.cpp - the envelopes of a keygroup, as bars and as curves
//
// Sixteen values stand in every record, though few models have all of them: what a model lacks
// says so over its bars, and has no curve. The S1000 family has a second envelope instead, which
// is shown as its own: attack, decay, sustain and release on an S1000, four rates and four levels
// from the S2000 on. A point of a curve that is dragged is its bar.
//
// Knows nothing of: toolkits.

#include "src/akais1000.h"
#include "src/akais5000.h"
#include "src/akais900.h"
#include "src/velmor_programs.h"
#include "src/velmor_programs_page.h"
#include <algorithm>
#include <array>

namespace velmor
{

// ---- What a model has ---------------------------------------------------------------------------

// Bits of who has a row.
enum : unsigned {
	has_amplifier = 1,
	has_filter = 2,
	has_auxiliary = 4,
	second_of_four = 8,
	second_of_rates = 16,
};
static constexpr unsigned lacks = 8; // times a bit of the first three: it has none
static constexpr unsigned any = ~0u;

struct family_row {
	void (*saveprogram)(i32 program, _program *source);
	unsigned bits;
	bool to_99; // where its times and levels end; the others', at 100
};
static constexpr family_row families[] = {
	{ akai_s900_save_program, has_amplifier | has_filter, true },
	{ akai_s1000_prog_save, has_amplifier | second_of_four | second_of_rates, true },
	{ akai_s5000_program_save, has_amplifier | has_filter | has_auxiliary, false },
};

static const family_row *family_of(i32 model)
{
	const _sampler_type *row = get_sampler(model);
	for (const family_row &family : families)
		if (row && row->saveprogram == family.saveprogram)
			return &family;
	return nullptr;
}

static unsigned envelopes_of(i32 model, i32)
{
	const family_row *family = family_of(model);
	const bool rates = akai_s1000_takers(model) & taken_by_s2000;
	const unsigned other_kind = rates ? second_of_four : second_of_rates;
	const unsigned bits = family ? family->bits & ~other_kind : 0;
	constexpr unsigned told = has_amplifier | has_filter | has_auxiliary;
	return bits | (told & ~bits) << lacks;
}

// ---- Bars -------------------------------------------------------------------------------------

static constexpr form_unit plain_unit = { "" };

static constexpr form_table_row heading(const char *words, unsigned who)
{
	return { .kind = row_kind::heading, .label = words, .shown_for = who };
}

static constexpr form_table_row bar(
	const char *label, named_field<_keygroup> field, i32 high, unsigned who = any)
{
	return { .kind = row_kind::slider,
		.label = label,
		.field = field,
		.shown_for = who,
		.bar = { 0, high },
		.edit = { 0, high },
		.unit = &plain_unit,
		.log_word = field.name };
}

enum : std::size_t { // places of the first bar of each
	amplifier_row = 2,
	second_row_of_four = 7,
	second_row_of_rates = 11,
	filter_row = 21,
	auxiliary_row = 27,
};

// clang-format off
template <i32 high> static constexpr auto rows_up_to = std::to_array<form_table_row>({
	heading(own("Amplifier"),                          has_amplifier),
	heading(own("Amplifier (not with this model)"),    has_amplifier << lacks),
	bar(own("Attack"),    field_of<&_keygroup::amp_attack>,      high),
	bar(own("Decay"),     field_of<&_keygroup::amp_decay>,       high),
	bar(own("Sustain"),   field_of<&_keygroup::amp_sustain>,     high),
	bar(own("Release"),   field_of<&_keygroup::amp_release>,     high),
	heading(own("Envelope 2"),                         second_of_four | second_of_rates),
	bar(own("Attack"),    field_of<&_keygroup::s1000_env2_r1>,   high, second_of_four),
	bar(own("Decay"),     field_of<&_keygroup::s1000_env2_r3>,   high, second_of_four),
	bar(own("Sustain"),   field_of<&_keygroup::s1000_env2_l3>,   high, second_of_four),
	bar(own("Release"),   field_of<&_keygroup::s1000_env2_r4>,   high, second_of_four),
	bar(own("Rate 1"),    field_of<&_keygroup::s1000_env2_r1>,   high, second_of_rates),
	bar(own("Rate 2"),    field_of<&_keygroup::s2000_env2_r2>,   high, second_of_rates),
	bar(own("Rate 3"),    field_of<&_keygroup::s1000_env2_r3>,   high, second_of_rates),
	bar(own("Rate 4"),    field_of<&_keygroup::s1000_env2_r4>,   high, second_of_rates),
	bar(own("Level 1"),   field_of<&_keygroup::s2000_env2_l1>,   high, second_of_rates),
	bar(own("Level 2"),   field_of<&_keygroup::s2000_env2_l2>,   high, second_of_rates),
	bar(own("Level 3"),   field_of<&_keygroup::s1000_env2_l3>,   high, second_of_rates),
	bar(own("Level 4"),   field_of<&_keygroup::s2000_env2_l4>,   high, second_of_rates),
	heading("Filter",                             has_filter),
	heading(own("Filter (not with this model)"),       has_filter << lacks),
	bar(own("Attack"),    field_of<&_keygroup::filter_attack>,   high),
	bar(own("Decay"),     field_of<&_keygroup::filter_decay>,    high),
	bar(own("Sustain"),   field_of<&_keygroup::filter_sustain>,  high),
	bar(own("Release"),   field_of<&_keygroup::filter_release>,  high),
	heading(own("Auxiliary"),                          has_auxiliary),
	heading(own("Auxiliary (not with this model)"),    has_auxiliary << lacks),
	bar(own("Rate 1"),    field_of<&_keygroup::aux_rate1>,       high),
	bar(own("Rate 2"),    field_of<&_keygroup::aux_rate2>,       high),
	bar(own("Rate 3"),    field_of<&_keygroup::aux_rate3>,       high),
	bar(own("Rate 4"),    field_of<&_keygroup::aux_rate4>,       high),
	bar(own("Level 1"),   field_of<&_keygroup::aux_rate1_level>, high),
	bar(own("Level 2"),   field_of<&_keygroup::aux_rate2_level>, high),
	bar(own("Level 3"),   field_of<&_keygroup::aux_rate3_level>, high),
	bar(own("Level 4"),   field_of<&_keygroup::aux_rate4_level>, high),
});
// clang-format on
static_assert(rows_up_to<99>[second_row_of_rates].shown_for == second_of_rates &&
	      rows_up_to<99>[second_row_of_four].shown_for == second_of_four &&
	      rows_up_to<99>[amplifier_row - 1].kind == row_kind::heading &&
	      rows_up_to<99>[filter_row - 1].kind == row_kind::heading &&
	      rows_up_to<99>[auxiliary_row - 1].kind == row_kind::heading);

static bool adsr_busy;
static void adsr_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second);

template <i32 high>
static constexpr form_table table_up_to = { .control = programs_adsr_form,
	.rows = rows_up_to<high>,
	.shown_for = envelopes_of,
	.callback = adsr_callback,
	.busy = &adsr_busy,
	.first_id = 17500 };

static const form_table &adsr_table()
{
	const family_row *family = family_of(edited_model());
	return family && family->to_99 ? table_up_to<99> : table_up_to<100>;
}

static void adsr_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second)
{
	if (!adsr_busy)
		take_form_event(adsr_table(), window, pgm, kg, kz, message, first, second);
}

void open_adsr_form()
{
	open_form(adsr_table(), window_programs, current_pgm_index, current_keygroup_index,
		current_keyzone_index);
}

void change_adsr_form(int row, form_event event, int value)
{
	adsr_callback(window_programs, current_pgm_index, current_keygroup_index,
		current_keyzone_index, static_cast<unsigned>(event),
		static_cast<std::uintptr_t>(row), value);
}

// ---- Curves -------------------------------------------------------------------------------------

// Consecutive bars of the table.
struct envelope_row {
	int control;
	unsigned shown_for;
	envelope_shape shape;
	std::size_t first, count;
};
static constexpr envelope_row envelopes[] = {
	{ programs_amp_envelope, has_amplifier, envelope_shape::adsr, amplifier_row, 4 },
	{ programs_second_envelope, second_of_four, envelope_shape::adsr, second_row_of_four, 4 },
	{ programs_second_envelope, second_of_rates, envelope_shape::rates_and_levels,
		second_row_of_rates, 8 },
	{ programs_filter_envelope, has_filter, envelope_shape::adsr, filter_row, 4 },
	{ programs_aux_envelope, has_auxiliary, envelope_shape::rates_and_levels, auxiliary_row,
		8 },
};

static field_place envelope_place(const envelope_row &row, std::size_t index)
{
	return { adsr_table().rows[row.first + index].field, current_keygroup_index, -1 };
}

// A letter, or a letter and its number.
static std::string letters_of(const envelope_row &row, const std::string &label)
{
	const std::string letter = label.substr(0, 1);
	return row.shape == envelope_shape::adsr ? letter : letter + label.back();
}

static void show_envelope(const envelope_row &row, const _program &program)
{
	const auto bars = adsr_table().rows.subspan(row.first, row.count);
	envelope_view view = { row.shape, {}, {}, 0, bars.front().bar.high, {} };
	for (std::size_t i = 0; i < row.count; i++) {
		const field_place at = envelope_place(row, i);
		const auto read = value_as_read(program, at);
		view.values.push_back(number_at(program, at));
		view.as_read.push_back(read ? std::get<i32>(*read) : view.values.back());
		view.letters.push_back(letters_of(row, bars[i].label));
	}
	host.ui->set_envelope(window_programs, row.control, &view);
}

void show_envelopes()
{
	const _program *program = shown_program();
	// What needs room is known before a program is there.
	const unsigned bits = envelopes_of(edited_model(), 0);
	for (const int control : { programs_amp_envelope, programs_second_envelope,
		     programs_filter_envelope, programs_aux_envelope }) {
		const auto row = std::find_if(
			std::begin(envelopes), std::end(envelopes), [&](const envelope_row &r) {
				return r.control == control && (r.shown_for & bits);
			});
		const bool has = row != std::end(envelopes);
		host.ui->show(window_programs, control, has);
		if (has && program && place_exists(*program, envelope_place(*row, 0)))
			show_envelope(*row, *program);
		else
			host.ui->set_envelope(window_programs, control, nullptr);
	}
}

static int place_in_form(std::size_t row)
{
	const unsigned bits = envelopes_of(edited_model(), 0);
	const auto before = adsr_table().rows.first(row);
	return static_cast<int>(std::count_if(before.begin(), before.end(),
		[bits](const form_table_row &other) { return other.shown_for & bits; }));
}

// The same event that the bar of that value would send.
void drag_envelope(int control, envelope_event event, int index, int value)
{
	_program *program = shown_program();
	const unsigned bits = envelopes_of(edited_model(), 0);
	for (const envelope_row &row : envelopes) {
		if (row.control != control || !(row.shown_for & bits) || !program || index < 0 ||
			static_cast<std::size_t>(index) >= row.count)
			continue;
		if (event == envelope_event::drag_end) {
			end_gesture(*program);
			continue;
		}
		change_adsr_form(place_in_form(row.first) + index, form_event::drag, value);
		refresh_forms(window_programs);
	}
}

} // namespace velmor
