// velmor_edits.h - every change of a program in memory, undone and done again
//
// Forms, envelopes and the key map change a program through this file alone. A change is a step:
// some fields that change together (a value that goes to all keygroups is one), a keygroup more
// or a keygroup less. Steps are undone and done again without limit. What a user does in one
// movement (a bar being dragged, a number being typed) is one step.
//
// The program as the sampler holds it is kept from the first edit on. Changed marks and counts
// come from comparing with it, and only fields that a user edited are compared: what a driver
// leaves in the record while it sends (lowered tunings, magnitudes) is no edit.
//
// A history belongs to the record's place in memory. Whoever reads programs anew into it, or
// moves it, forgets the history. Main thread only.
//
// Knows nothing of: windows, models, the wire.

#pragma once
#include "src/parameters.h"
#include <optional>

namespace velmor
{

// A field of a program, of one of its keygroups or of one of their zones; none for a heading.
using any_field = std::variant<std::monostate, named_field<_program>, named_field<_keygroup>,
	named_field<_keyzone>>;
const char *field_name(const any_field &field); // "" for none
struct field_place {
	any_field field;
	int keygroup = -1, keyzone = -1; // where the field has them
};

// A text is the whole field, with what stands behind its end.
using field_value = std::variant<i32, std::string>;
field_value text_value(std::string_view text);

// False where the program has no such keygroup, or a keygroup no such zone.
bool place_exists(const _program &program, const field_place &at);
// Of a place that exists.
field_value value_at(const _program &program, const field_place &at);
i32 number_at(const _program &program, const field_place &at);       // 0 for a text
std::string text_at(const _program &program, const field_place &at); // up to its end

// ---- Editing ----------------------------------------------------------------------------------

// What a person reads about a step: "Cutoff Freq of keygroup 7", "60", "72".
struct edit_words {
	std::string what, from, to;
};
struct field_change {
	field_place at;
	field_value value;
};
// Which movement an edit belongs to: whatever tells one from another. All zero: to none.
using gesture = std::array<int, 6>;

// One step, all of it or, if a place does not exist, nothing: false. An edit of the movement
// that the last step came from goes into that step. Nothing changes: there is no step.
bool edit_fields(_program &program, const edit_words &words, std::span<const field_change> changes,
	const gesture &movement = {});
// The movement is over: the next edit is a step of its own.
void end_gesture(const _program &program);

// A keygroup behind the others, cleared but for its high note and its number of zones. Gives
// back its index; -1 when the program is full.
int edit_add_keygroup(_program &program, int keyzones);
// Those behind it move down. sampler_told: the sampler has removed it already, so that this is
// nothing unsent, and taking it back is.
bool edit_remove_keygroup(_program &program, int keygroup, bool sampler_told);

// False when there is nothing to undo or to do again. sampler_told: the sampler has removed the
// keygroup that goes already.
bool undo_edit(_program &program, bool sampler_told = false);
bool redo_edit(_program &program, bool sampler_told = false);
// The keygroup that undoing, or, forward, doing again takes out of the program; -1 for none.
int keygroup_that_goes(const _program &program, bool forward);
// Of the step that would be undone or done again; null when there is none.
const edit_words *undo_words(const _program &program);
const edit_words *redo_words(const _program &program);

// ---- What is not sent yet -----------------------------------------------------------------------

// What the sampler (or the file of a local program) holds there; nothing for a keygroup that it
// does not have.
std::optional<field_value> value_as_read(const _program &program, const field_place &at);
// A user's edit is not sent yet.
bool field_changed(const _program &program, const field_place &at);
// Give a field back what was read, as a step. False if there is nothing to put back.
bool put_back(_program &program, const field_place &at, const edit_words &words);

struct unsent_counts {
	int program = 0, keygroups = 0, keyzones = 0; // a keygroup more or less is one
	int all() const { return program + keygroups + keyzones; }
	bool operator==(const unsent_counts &) const = default;
};
// Of a program.
unsent_counts unsent_changes(const _program &program);
// Of what three pages show: the program's own fields, one keygroup's and one zone's.
unsent_counts unsent_changes(const _program &program, int keygroup, int keyzone);
// Of all programs.
int unsent_changes();

// The sampler has taken the program (or its file was written): nothing is unsent. Undo goes on
// behind it. surplus_stays: but for keygroups that only the sampler has, which stay behind those
// of the program; how many there are.
int edits_sent(const _program &program, bool surplus_stays = false);
// The record was read anew, or is no more: of this program, or of all.
void forget_edits(const _program &program);
void forget_edits();
// Of the records from first to the one before end.
void forget_edits(const _program *first, const _program *end);
// A record was moved, unchanged, and its history goes with it.
void move_edits(const _program &from, const _program &to);
// The place of a keygroup on the sampler, or -1 when the sampler does not have it.
int keygroup_as_read(const _program &program, int keygroup);

// Called after every change of a program or of its counts, also from inside an event of a form;
// null for all programs at once.
extern void (*edits_changed)(const _program *program);

} // namespace velmor
