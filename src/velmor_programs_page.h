// velmor_programs_page.h - what the files of the program manager share
//
// Knows nothing of: toolkits, models.

#pragma once
#include "src/velmor_forms.h"
#include "src/velmor_programs.h"
#include "src/velmor_window.h"

namespace velmor
{

// ---- The page (velmor_programs_page.cpp) --------------------------------------------------------

// The program that is shown, of the sampler or of this computer; null for none.
_program *shown_program();
bool shown_is_local();
// A sample that a shown program names is not where the program is.
bool sample_missing(const std::string &name);
// Choose a keygroup and a zone of the shown program.
void choose_place(int keygroup, int keyzone);
void forget_program_page();

// What is chosen in the lists; index -1 for nothing.
program_entry chosen_on_sampler();
program_entry chosen_on_computer();
std::vector<program_entry> all_chosen_on_sampler();
std::vector<program_entry> all_chosen_on_computer();
// Show an entry of a list.
void choose_program(bool local, int index);
// The shown program once more, with another number of keygroups.
void show_program_again();
// The next filling shows the computer's program that is chosen.
void show_local_side();
// Fill both lists from what is known, choose these, or what stands in their places now, and show
// the program that is chosen then.
void fill_lists(const program_entry &loaded, const program_entry &local);
// Of what the tab in front shows.
void show_title();
void show_zone_sample(const _program &program, int keygroup, int keyzone);
std::string facts_of(const _program &program, int keygroup);
// Why the sample of the chosen zone cannot be looked for in the spool; null: it can.
const char *why_not_find();
// "Cutoff of keygroup 7 from 20 to 38", and the same at the foot, with what is left to do.
std::string sentence_of(const edit_words &edit);
void say_edit(const std::string &sentence);

// ---- Pictures and notes (velmor_programs_views.cpp) ------------------------------------------------

void show_key_map();
void stop_test_note();
void change_key_map(key_map_event event, int group, int zone, int value, int amount);

// ---- Envelopes (velmor_programs_envelopes.cpp) -------------------------------------------------------

void show_envelopes();
void open_adsr_form();
void change_adsr_form(int row, form_event event, int value);
void drag_envelope(int control, envelope_event event, int index, int value);
template <int control> void change_envelope(envelope_event event, int index, int value)
{
	drag_envelope(control, event, index, value);
}

// ---- On several programs (velmor_programs_several.cpp) ------------------------------------------

// False, and nothing was done, where no more than one is chosen.
bool download_several_programs();
bool delete_several_programs();
bool delete_several_local_programs();
bool upload_several_local_programs();

} // namespace velmor
