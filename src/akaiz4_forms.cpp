// akaiz4_forms.cpp - the keyzone form of the Z4 and Z8
//
// A level that is typed only moves the bar: what is stored is the bar's own movement.
//
// Knows nothing of: toolkits, the wire.

#include "src/akai_forms.h"

namespace velmor
{

// clang-format off
static constexpr form_table_row zone_rows[] = {
	{ .kind = row_kind::slider, .label = "Zone Level (x 0.1 dB):\n\n", .id = 27004, .field_id = 27005,
	  .field = field_of<&_keyzone::zone_level>, .bar = { -600, 60 }, .edit = { -600, 60 },
	  .log_word = "ZONE_LEVEL", .apply = applying::alone },
};
static constexpr form_table zone_form = {
	.control           = form_of_keyzone,
	.rows              = zone_rows,
	.shown_for         = nullptr,
	.callback          = akai_z4_keyzone_assign_callback,
	.busy              = &setup_busy,
	.typing_stores     = false,
	.field_follows_drag = false,
	.bar_suffix        = "",
	.field_suffix      = "_INP",
};
// clang-format on

void akai_z4_keyzone_assign(int window, i32 pgm, i32 kg, i32 kz)
{
	if (pgm < 0 || kg < 0 || kz < 0)
		return;
	log_line("[D] Z4 Keyzone assignement started %d,%d,%d\r\n", pgm, kg, kz);
	open_form(zone_form, window, pgm, kg, kz);
}

void akai_z4_keyzone_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second)
{
	if (!setup_busy)
		take_form_event(zone_form, window, pgm, kg, kz, message, first, second);
}

void akai_z4_prog_assign(int, i32 pgm, i32, i32)
{
	log_line("[D] PROG_ASSIGN PROG: %d\r\n", pgm);
}

void akai_z4_prog_assign_callback(int, i32, i32, i32, unsigned, std::uintptr_t, std::intptr_t) {}
void akai_z4_voice_assign(int, i32, i32, i32) {}
void akai_z4_voice_assign_callback(int, i32, i32, i32, unsigned, std::uintptr_t, std::intptr_t) {}
void akai_mpc_pad_assign(int, i32, i32, i32) {}
void akai_mpc_pad_assign_callback(int, i32, i32, i32, unsigned, std::uintptr_t, std::intptr_t) {}

} // namespace velmor
