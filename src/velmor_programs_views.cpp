// velmor_programs_views.cpp - the key map, the envelopes and the test notes of the program manager
//
// Other views of the fields that the forms show: what is dragged here is edited as a form's bar
// edits it, and is one step however long it is dragged.
//
// Knows nothing of: toolkits, models.

#include "src/velmor_programs.h"
#include "src/velmor_programs_page.h"
#include <algorithm>
#include <utility>

namespace velmor
{

// ---- Test notes -----------------------------------------------------------------------------------

static int sounding_note = -1, sounding_velocity;
static u8 sounding_channel;

static bool can_sound()
{
	return current_sampler && !shown_is_local() &&
	       (use_tcp || selected_midi_out_interface >= 0);
}

static void send_note(u8 kind, int note, int velocity)
{
	const u8 message[] = { static_cast<u8>(kind | sounding_channel),
		static_cast<u8>(std::clamp(note, 0, 127)),
		static_cast<u8>(std::clamp(velocity, 0, 127)) };
	send_midi_string(message, sizeof message);
}

void stop_test_note()
{
	if (sounding_note < 0)
		return;
	constexpr u8 note_off = 0x80;
	send_note(note_off, std::exchange(sounding_note, -1), 64);
	show_key_map();
}

static void start_test_note(int note, int velocity)
{
	stop_test_note();
	if (!can_sound())
		return;
	constexpr u8 note_on = 0x90;
	sounding_channel = static_cast<u8>(
		std::clamp(static_cast<int>(current_sampler->sampler_midi), 1, 16) - 1);
	sounding_note = std::clamp(note, 0, 127);
	sounding_velocity = std::clamp(velocity, 1, 127); // 0 would end it
	send_note(note_on, sounding_note, sounding_velocity);
	show_key_map();
}

// ---- The key map ----------------------------------------------------------------------------------

// Some models do not tell the velocities of a zone; then each sounds at all of them.
static bool tells_velocities(const _program &program)
{
	for (int k = 0; k < std::clamp(program.keygroups, 0, max_keygroups); k++)
		for (const _keyzone &zone : program.keygroup[k].keyzone)
			if (zone.high_velocity)
				return true;
	return false;
}

static key_group_view group_view(const _keygroup &keygroup, bool velocities)
{
	key_group_view view = { keygroup.low_note, keygroup.high_note, {} };
	for (int z = 0; z < std::clamp(keygroup.keyzones, 0, max_keyzones); z++) {
		const _keyzone &zone = keygroup.keyzone[z];
		const std::string name = without_end_blanks(zone.samplename);
		const int high = velocities ? zone.high_velocity : 127;
		view.zones.push_back(
			{ zone.low_velocity, high, name, !name.empty() && sample_missing(name) });
	}
	return view;
}

void show_key_map()
{
	if (!was_opened(window_programs))
		return;
	const _program *program = shown_program();
	if (!program) {
		host.ui->set_key_map(window_programs, programs_key_map, nullptr);
		return;
	}
	key_map_view view = { {}, current_keygroup_index, current_keyzone_index, sounding_note,
		sounding_velocity, can_sound() };
	const bool velocities = tells_velocities(*program);
	for (int k = 0; k < std::clamp(program->keygroups, 0, max_keygroups); k++)
		view.groups.push_back(group_view(program->keygroup[k], velocities));
	host.ui->set_key_map(window_programs, programs_key_map, &view);
}

// An edge of a keygroup or of a zone, and the other edge, which it does not pass.
struct map_edge {
	key_map_event event;
	any_field field, other;
	bool low, of_zone;
	const char *what;
};
static const map_edge edges[] = {
	{ key_map_event::low_note, field_of<&_keygroup::low_note>, field_of<&_keygroup::high_note>,
		true, false, "Low note" },
	{ key_map_event::high_note, field_of<&_keygroup::high_note>, field_of<&_keygroup::low_note>,
		false, false, "High note" },
	{ key_map_event::low_velocity, field_of<&_keyzone::low_velocity>,
		field_of<&_keyzone::high_velocity>, true, true, "Velocity low" },
	{ key_map_event::high_velocity, field_of<&_keyzone::high_velocity>,
		field_of<&_keyzone::low_velocity>, false, true, "Velocity high" },
};

static void drag_edge(const map_edge &edge, int group, int zone, int value)
{
	_program &program = *shown_program();
	const field_place at = { edge.field, group, zone }, other = { edge.other, group, zone };
	if (!place_exists(program, at))
		return;
	const i32 limit = std::clamp(number_at(program, other), 0, 127);
	const i32 to = edge.low ? std::clamp(value, 0, limit) : std::clamp(value, limit, 127);
	if (to == number_at(program, at))
		return;
	log_line("[D] New %s-Value: %d\r\n", edge.low ? "Low" : "High", to);
	const std::string where =
		edge.of_zone ? format_text(" of keyzone %d", zone + 1) : std::string();
	const edit_words words = { edge.what + where + format_text(" of keygroup %d", group + 1),
		format_text("%d", number_at(program, at)), format_text("%d", to) };
	const field_change change = { at, to };
	const gesture movement = { window_programs, programs_key_map, static_cast<int>(edge.event),
		group + 1, zone + 1, 1 };
	(void)edit_fields(program, words, { &change, 1 }, movement);
	refresh_forms(window_programs);
}

void change_key_map(key_map_event event, int group, int zone, int value, int amount)
{
	_program *program = shown_program();
	if (!program)
		return;
	if (event == key_map_event::choose)
		choose_place(group, zone);
	else if (event == key_map_event::drag_end)
		end_gesture(*program);
	else if (event == key_map_event::note_on)
		start_test_note(value, amount);
	for (const map_edge &edge : edges)
		if (edge.event == event)
			drag_edge(edge, group, zone, value);
}

// ---- Envelopes ------------------------------------------------------------------------------------

static const form_unit plain_unit = { "" };

static form_table_row bar(const char *label, named_field<_keygroup> field)
{
	return { .kind = row_kind::slider,
		.label = label,
		.field = field,
		.bar = { 0, 100 },
		.edit = { 0, 100 },
		.unit = &plain_unit,
		.log_word = field.name };
}

static form_table_row heading(const char *words)
{
	return { .kind = row_kind::heading, .label = words };
}

static const form_table_row adsr_rows[] = {
	heading("Amplifier"),
	bar("Attack", field_of<&_keygroup::amp_attack>),
	bar("Decay", field_of<&_keygroup::amp_decay>),
	bar("Sustain", field_of<&_keygroup::amp_sustain>),
	bar("Release", field_of<&_keygroup::amp_release>),
	heading("Filter"),
	bar("Attack", field_of<&_keygroup::filter_attack>),
	bar("Decay", field_of<&_keygroup::filter_decay>),
	bar("Sustain", field_of<&_keygroup::filter_sustain>),
	bar("Release", field_of<&_keygroup::filter_release>),
	heading("Auxiliary"),
	bar("Rate 1", field_of<&_keygroup::aux_rate1>),
	bar("Rate 2", field_of<&_keygroup::aux_rate2>),
	bar("Rate 3", field_of<&_keygroup::aux_rate3>),
	bar("Rate 4", field_of<&_keygroup::aux_rate4>),
	bar("Level 1", field_of<&_keygroup::aux_rate1_level>),
	bar("Level 2", field_of<&_keygroup::aux_rate2_level>),
	bar("Level 3", field_of<&_keygroup::aux_rate3_level>),
	bar("Level 4", field_of<&_keygroup::aux_rate4_level>),
};

static bool adsr_busy;
static void adsr_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second);
static const form_table adsr_table = { .control = programs_adsr_form,
	.rows = adsr_rows,
	.shown_for = nullptr,
	.callback = adsr_callback,
	.busy = &adsr_busy,
	.first_id = 17500 };

static void adsr_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second)
{
	if (!adsr_busy)
		take_form_event(adsr_table, window, pgm, kg, kz, message, first, second);
}

void open_adsr_form()
{
	open_form(adsr_table, window_programs, current_pgm_index, current_keygroup_index,
		current_keyzone_index);
}

void change_adsr_form(int row, form_event event, int value)
{
	adsr_callback(window_programs, current_pgm_index, current_keygroup_index,
		current_keyzone_index, static_cast<unsigned>(event),
		static_cast<std::uintptr_t>(row), value);
}

// A curve: consecutive rows of the table.
struct envelope_row {
	int control;
	envelope_shape shape;
	std::size_t first, count;
};
static constexpr envelope_row envelopes[] = {
	{ programs_amp_envelope, envelope_shape::adsr, 1, 4 },
	{ programs_filter_envelope, envelope_shape::adsr, 6, 4 },
	{ programs_aux_envelope, envelope_shape::rates_and_levels, 11, 8 },
};

static field_place envelope_place(const envelope_row &row, std::size_t index)
{
	return { adsr_rows[row.first + index].field, current_keygroup_index, -1 };
}

static void show_envelope(const envelope_row &row, const _program &program)
{
	envelope_view view = { row.shape, {}, {}, 0, 100, {} };
	for (std::size_t i = 0; i < row.count; i++) {
		const field_place at = envelope_place(row, i);
		const auto read = value_as_read(program, at);
		view.values.push_back(number_at(program, at));
		view.as_read.push_back(read ? std::get<i32>(*read) : view.values.back());
		const std::string label = adsr_rows[row.first + i].label;
		view.letters.push_back(
			row.shape == envelope_shape::adsr
				? label.substr(0, 1)
				: label.substr(0, 1) + label.substr(label.size() - 1));
	}
	host.ui->set_envelope(window_programs, row.control, &view);
}

void show_envelopes()
{
	const _program *program = shown_program();
	for (const envelope_row &row : envelopes)
		if (program && place_exists(*program, envelope_place(row, 0)))
			show_envelope(row, *program);
		else
			host.ui->set_envelope(window_programs, row.control, nullptr);
}

// The same event that the bar of that value would send.
void drag_envelope(int control, envelope_event event, int index, int value)
{
	_program *program = shown_program();
	for (const envelope_row &row : envelopes) {
		if (row.control != control || !program || index < 0 ||
			static_cast<std::size_t>(index) >= row.count)
			continue;
		if (event == envelope_event::drag_end) {
			end_gesture(*program);
			continue;
		}
		const int place = static_cast<int>(row.first) + index;
		change_adsr_form(place, form_event::drag, value);
		refresh_forms(window_programs);
	}
}

} // namespace velmor
