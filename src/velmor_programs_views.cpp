// velmor_programs_views.cpp - the key map and the test notes of the program manager
//
// Another view of the fields that the forms show: what is dragged here is edited as a form's bar
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
	host.ui->set_reason(window_programs, programs_find_sample, why_not_find());
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
		true, false, own("Low note") },
	{ key_map_event::high_note, field_of<&_keygroup::high_note>, field_of<&_keygroup::low_note>,
		false, false, own("High note") },
	{ key_map_event::low_velocity, field_of<&_keyzone::low_velocity>,
		field_of<&_keyzone::high_velocity>, true, true, own("Velocity low") },
	{ key_map_event::high_velocity, field_of<&_keyzone::high_velocity>,
		field_of<&_keyzone::low_velocity>, false, true, own("Velocity high") },
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
		edge.of_zone ? format_text(tr("%s of keyzone %d of keygroup %d"), tr(edge.what),
				       zone + 1, group + 1)
			     : format_text(tr("%s of keygroup %d"), tr(edge.what), group + 1);
	const edit_words words = { where, format_text("%d", number_at(program, at)),
		format_text("%d", to) };
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

} // namespace velmor
