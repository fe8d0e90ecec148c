// velmor_window.h - what each button, menu entry and list of the windows does
//
// The windows report every user action by window and id through the three
// entries below, and read their words from the table of captions. What happens
// then is one row of the table of commands (velmor_window.cpp). A control whose
// command is not in that table is not made at all, so no entry is ever dead.
//
// Main thread only. Commands may run for minutes; they keep the windows alive
// through host.ui->pump, and so are entered again from inside themselves. Then
// everything is refused quietly, except what ends or hides something.
//
// Knows nothing of: toolkits, models.

#pragma once
#include "src/controls.h"
#include "src/velmor.h"
#include <span>
#include <string>
#include <string_view>

namespace velmor
{

// The words of one control. Fields and lists have the words of their label.
struct caption_row {
	int window, control;
	const char *caption;
	const char *tooltip; // null: the caption says it all
	const char *empty;   // what an empty list or field shows, or null
};

// Every window (control 0: its title) and control that has words.
extern const std::span<const caption_row> captions;
// The row of one control, or null.
const caption_row *find_caption(int window, int control);

// True if the control does something: the windows leave out what has no command.
bool has_command(int window, int control);

// A button or menu entry was pressed, or a window's close box (control_cancel; for the main
// window menu_exit). False if there is no such command or it was refused just now.
bool velmor_command(int window, int control);
// Another entry of a list was chosen by the user, or another choice of an option.
bool velmor_selection(int window, int control);
// Files were dropped on a list: their paths, with backslashes.
bool velmor_drop(int window, int control, std::span<const std::string> paths);
// Files hover over a list; none when they left.
void velmor_hover(int window, int control, std::span<const std::string> paths);

// Keys, mouse and forms. A window that takes them has a row, and nobody else hears of them; all
// are refused while a command runs.
enum class mouse_action : int {
	down,
	up,
	wheel,
};
struct input_row {
	int window, control;
	// text is what the key types, "" for a key that types nothing; key is the toolkit's number.
	void (*key)(int key, std::string_view text, bool pressed);
	// Places are pixels of the picture, outside it too; amount is the button, from 1 for the
	// left one, or the steps of the wheel, upwards.
	void (*mouse)(int x, int y, mouse_action action, int amount);
	// value is the bar's, the number typed (0 for no number), or the place of the choice.
	void (*form)(int row, form_event event, int value);
};
// Of all windows; an empty slot takes nothing of its kind.
extern std::span<const input_row> input_rows;
// False if no row takes it, or not just now.
bool velmor_key(int window, int control, int key, std::string_view text, bool pressed);
bool velmor_mouse(int window, int control, int x, int y, mouse_action action, int amount);
bool velmor_form(int window, int form, int row, form_event event, int value);

// True while a command runs.
bool command_running();
// True when the main window was closed while a command runs: work ends as soon as it can.
bool close_requested();
// Forget a running command and a wish to close; for tests.
void forget_commands();

// Fill what the windows show from the start. Called once they exist, before the settings are
// loaded.
void set_up_windows();

void show_midi_setup();
void show_sampler_setup();

// Read the multis of the loaded sampler and show them (velmor_multis.cpp).
void show_multi_setup();

// ---- Sample manager (velmor_samples.cpp) -----------------------------------------------

// Read the sampler and the spool anew and show both.
void show_sample_setup();
// Show one sample in the sample manager; origin is "LOCAL" or "LOADED". The drivers call it
// when a sampler has told about a sample.
void display_sample_information(const _sample *sample, const char *origin);

void download_selected_sample();
void download_all_samples();
void delete_loaded_sample();
void rename_loaded_sample();
void show_loaded_information();
void upload_selected_sample();
void delete_local_sample();
void rename_local_sample();
void show_local_information();
void import_samples();
void import_files(std::span<const std::string> paths);
void export_spool();
void clear_spool();

// What the import options say; 0 keeps what a file has.
struct import_options {
	int bits, rate, channels;
	int mixing; // as import_wave takes it
};
import_options chosen_import_options();

// ---- Preview (velmor_preview.cpp) ------------------------------------------------------

// Another local sample was chosen: its picture, and what an import of it would give.
void show_local_selection();
// Say what the import options make of these files. None: of the selected local sample.
void show_import_preview(std::span<const std::string> paths);

// Seconds that an upload of so many bytes takes to a sampler of that model: over MIDI from the
// wire's 31250 baud, over USB from full speed.
double transfer_seconds(const _sampler_type &model, u64 bytes);

} // namespace velmor
