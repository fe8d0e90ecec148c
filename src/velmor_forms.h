// velmor_forms.h - parameter forms: a table of rows, and the engine that shows and edits by it
//
// A driver says what a form holds: label, ids, field, ranges, unit, items, words. The engine
// turns the rows that a model has into rows of the window, and every event of a row into an edit
// of the program in memory (velmor_edits.h), for one keygroup or zone or for all. A change
// reaches the sampler when the program is saved.
//
// A value outside its range, or one without a word, is shown as it is and stays until its own
// row is edited. What is entered lies within the range.
//
// To add a parameter to a form: one row in the driver's table.
//
// Knows nothing of: models, toolkits, the wire.

#pragma once
#include "src/controls.h"
#include "src/velmor_edits.h"

namespace velmor
{

// ---- Tables -------------------------------------------------------------------------------------

struct form_range {
	i32 low, high;
};

// One choice of a list, or one button of a group. A text is a name of the sampler's sample list,
// and needs no items.
struct form_item {
	i32 value; // that the record holds
	std::string word;
	int id = 0; // of a button
};
using form_items = std::vector<form_item> (*)();

// How people see a number. The bar moves in shown numbers, and so do the ranges.
struct form_unit {
	const char *word; // behind the field, or ""
	// Between what the record holds and what is shown; null: the same.
	i32 (*shown)(i32 held) = nullptr;
	i32 (*held)(i32 shown) = nullptr;
	// In the field; null: a decimal number. Nothing is entered by a text without a number.
	std::string (*text)(i32 shown) = nullptr;
	std::optional<i32> (*number)(const std::string &typed) = nullptr;
};

// Whether a value goes to all keygroups or zones while the box of the form's kind is ticked.
enum class applying {
	alone,
	to_all,
};

struct form_table_row {
	row_kind kind;
	const char *label;
	int id = 0, field_id = 0; // 0: numbered by the place in the table
	any_field field = {};
	unsigned shown_for = ~0u; // bits of who has the row; they are the table's own
	form_range bar = {};
	form_range edit = {}; // of the field, where a number may be typed
	const form_unit *unit = nullptr;
	form_items items = nullptr;
	const char *log_word = ""; // of the lines about its bar and its field
	applying apply = applying::to_all;
	const char *apply_word = nullptr;  // of the line about applying, or none
	const char *stored_line = nullptr; // with one %d, when an item is stored
	int only_keyzone = -1;             // the zone it belongs to, whichever is shown
	any_field also = {};               // is given the same value, in the zone behind that one
	bool (*allowed)(const _keygroup &keygroup, i32 value) = nullptr; // says itself why not
	void (*refresh)(i32 pgm, i32 kg, i32 kz) = nullptr; // shows a group; null: the engine does
	const char *why_not = nullptr;                      // of a reading
	int text_filled = 0; // a shorter text is stored with blanks up to there
};

struct form_table {
	int control; // of its window
	std::span<const form_table_row> rows;
	unsigned (*shown_for)(i32 model, i32 keyzone); // bits; null: all
	form_callback callback;
	bool *busy; // true while the form is built: what its making tells stores nothing
	bool typing_stores = true;      // else a number that is typed only moves the bar
	bool field_follows_drag = true; // else the field is filled when the bar is let go
	const char *bar_suffix = "_tb", *field_suffix = "_inp"; // of log words
	int keyzones = 0; // that a value goes to, when it goes to all
	int first_id = 0; // of rows without ids
};

// ---- What several drivers need ------------------------------------------------------------------

extern const form_unit unit_semitones;
extern const form_unit unit_cents;                             // shown as semitones, 1.50
extern const form_unit unit_signed_byte;                       // held as 0 to 255
extern const form_unit unit_signed_word;                       // held as 0 to 65535
extern const form_unit unit_signed_semitones, unit_signed_pan; // a signed byte of them

// Hundredths with two decimals, and the number that a text begins with, so many times.
std::string hundredths(i32 value);
std::optional<i32> typed_number(std::string typed, double times);

// "C3 [60]".
std::string note_item(int note);
template <int low, int high> std::vector<form_item> note_items()
{
	std::vector<form_item> items;
	for (int note = low; note <= high; note++)
		items.push_back({ note, note_item(note) });
	return items;
}
// The words of a list, in the order of their values from 0 on.
template <const auto &words> std::vector<form_item> word_items()
{
	std::vector<form_item> items;
	for (const char *word : words)
		items.push_back({ static_cast<i32>(items.size()), word });
	return items;
}
// A word for 0, and the numbers from 1 on.
std::vector<form_item> numbers_after(const char *word, int last);
// Names of samples, but for the blanks that may fill one up.
bool same_sample(std::string_view one, std::string_view other);
// Boxes and false where a key range would be turned round. Equal notes are allowed.
bool low_note_allowed(const _keygroup &keygroup, i32 note);
bool high_note_allowed(const _keygroup &keygroup, i32 note);

// ---- The engine -----------------------------------------------------------------------------------

// Build a form in its control of a window. A program, keygroup or zone that is not there gives
// an empty form.
void open_form(const form_table &table, int window, i32 pgm, i32 kg, i32 kz);
// What a callback does: message is the form_event, first the row, second the value.
void take_form_event(const form_table &table, int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second);
// Set a list or group to the item of a place in the program, in every window that has the form.
void show_form_field(const form_table &table, const any_field &field, i32 pgm, i32 kg, i32 kz);

// ---- For the windows --------------------------------------------------------------------------------

// True while the box "Apply to all Keygroups" or "Apply to all Keyzones" is ticked.
bool apply_all_keygroups();
bool apply_all_keyzones();

// What forms edit: programs of the loaded sampler by their index, or, until this is called with
// null, this program of the computer as that model has it, whatever the index.
void edit_local_program(_program *program, i32 model = model_generic);
// The program that a form of that index edits, or null.
_program *edited_program(i32 pgm);
// The model whose forms are shown; 0 for none.
i32 edited_model();

// An event of a row: goes to the callback of the edited model, with the current indexes.
void form_changed(int window, int control, int row, form_event event, int value);
// Show the values as they are now, after undo or after another view has edited: the forms are
// built anew where a list has to grow. Not from inside an event of a row.
void refresh_forms(int window);
// Forget what is built in a window, which then holds no form.
void close_forms(int window);
// "Put back 85, as read", or "" for a row that is as it was read. form_event::put_back does it.
std::string put_back_words(int window, int control, int row);

} // namespace velmor
