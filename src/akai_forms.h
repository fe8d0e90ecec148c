// akai_forms.h - the forms of all drivers, as the rows of sampler_type name them
//
// Each pair builds a form in a window and takes the events of its rows: message is the
// form_event, first the place of the row in the form, second the value. All change the program
// in memory and nothing else.
//
// Knows nothing of: toolkits, the wire.

#pragma once
#include "src/velmor_forms.h"

namespace velmor
{

// ---- S900/950 (akais900_forms.cpp) ----------------------------------------------------------

void akai_s900_voice_assign(int window, i32 pgm, i32 kg, i32 kz);
void akai_s900_voice_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second);
void akai_s900_velocity_assign(int window, i32 pgm, i32 kg, i32 kz);
void akai_s900_velocity_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second);
// Both empty: the machine takes nothing of a program but its keygroups.
void akai_s900_prog_assign(int window, i32 pgm, i32 kg, i32 kz);
void akai_s900_prog_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second);

// ---- S1000 family (akais1000_forms.cpp) -----------------------------------------------------

void akai_s1000_key_assign(int window, i32 pgm, i32 kg, i32 kz);
void akai_s1000_key_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second);
void akai_s1000_velocity_assign(int window, i32 pgm, i32 kg, i32 kz);
void akai_s1000_velocity_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second);
void akai_s1000_prog_assign(int window, i32 pgm, i32 kg, i32 kz);
void akai_s1000_prog_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second);
// Shows how a zone is played: the button at the place of its zone_playback, 0 to 4, or none.
void akai_s1000_sample_check(int program, int keygroup, int keyzone);

// ---- S5000/6000 (akais5000_forms.cpp) -------------------------------------------------------

// True while a voice form, or the zone form of any driver, is built.
extern bool keygroup_setup_busy, setup_busy;

void akai_s5000_voice_assign(int window, i32 pgm, i32 kg, i32 kz);
void akai_s5000_voice_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second);
void akai_s5000_zone_assign(int window, i32 pgm, i32 kg, i32 kz);
void akai_s5000_zone_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second);
// Both only log.
void akai_s5000_prog_assign(int window, i32 pgm, i32 kg, i32 kz);
void akai_s5000_prog_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second);
// Show the playmode and the output of a zone in their groups of buttons.
void akai_s5000_sample_setcheck(i32 pgm, i32 kg, i32 kz);
void akai_s5000_output_setcheck(i32 pgm, i32 kg, i32 kz);

// ---- Z4/Z8 and MPC 4000 (akaiz4_forms.cpp) --------------------------------------------------

void akai_z4_keyzone_assign(int window, i32 pgm, i32 kg, i32 kz);
void akai_z4_keyzone_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second);
void akai_z4_prog_assign(int window, i32 pgm, i32 kg, i32 kz); // only logs
// All empty.
void akai_z4_prog_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second);
void akai_z4_voice_assign(int window, i32 pgm, i32 kg, i32 kz);
void akai_z4_voice_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second);
void akai_mpc_pad_assign(int window, i32 pgm, i32 kg, i32 kz);
void akai_mpc_pad_assign_callback(int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second);

} // namespace velmor
