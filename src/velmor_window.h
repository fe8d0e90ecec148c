// velmor_window.h - what each button, menu entry and list of the windows says and does
//
// The windows report every user action by window and id through the entries
// below. What happens then is one row of a table of commands, and the words of a
// control are one row of a table of captions; both stand in the file of the
// window's work. A control whose command is in no table is not made at all, so no
// entry is ever dead. The engine here finds the row and keeps the gate.
//
// Main thread only. Commands may run for minutes; they keep the windows alive
// through host.ui->pump, and so are entered again from inside themselves. Then
// everything is refused quietly, except what ends or hides something.
//
// Knows nothing of: toolkits, models.

#pragma once
#include "src/controls.h"
#include "src/velmor_counts.h"
#include "src/velmor_work.h"
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velmor
{

// ---- The rows of a window --------------------------------------------------------------------

// The words of one control. Fields and lists have the words of their label.
struct caption_row {
	int window, control; // window 0: the control of that id in every window
	const char *caption;
	const char *tooltip; // null: the caption says it all
	const char *empty;   // what an empty list or field shows, or null
};

enum command_time {
	alone,  // refused while another command runs
	always, // ends or hides something, so it may run inside another command
};

struct command_row {
	int window, control;
	void (*run)();
	command_time time;
};

// Files over a list: hovering, none when they left, and dropped.
struct drop_row {
	int window, control;
	void (*hover)(std::span<const std::string> paths);
	void (*drop)(std::span<const std::string> paths);
};

// All of a window: its words (control 0: its title), its buttons and menu entries, choices in
// its lists and options, and where files may be dropped.
struct window_rows {
	std::span<const caption_row> captions;
	std::span<const command_row> commands = {}, selections = {};
	std::span<const drop_row> drops = {};
};
extern const window_rows main_rows, settings_rows, sampler_rows; // velmor_setup.cpp
extern const window_rows entry_rows;                             // velmor_entries.cpp
extern const window_rows usb_rows;                               // velmor_usb.cpp
extern const window_rows samples_rows;                           // velmor_samples_page.cpp
extern const window_rows fit_rows;                               // velmor_fit.cpp
extern const window_rows programs_rows;                          // velmor_programs_commands.cpp
extern const window_rows multis_rows;                            // velmor_multis.cpp
extern const window_rows panel_rows;                             // velmor_panel.cpp
extern const window_rows player_rows;                            // velmor_player.cpp
extern const window_rows history_rows;                           // velmor_history_page.cpp
extern const window_rows backup_rows;                            // velmor_backup_page.cpp
extern const window_rows verify_rows;                            // velmor_verify_page.cpp
extern const window_rows status_rows;                            // velmor_status.cpp
extern const window_rows progress_rows;                          // velmor_queue_page.cpp

// ---- The engine (velmor_window.cpp) ------------------------------------------------------------

// The words of all windows.
extern const std::vector<caption_row> captions;
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

// The gate that all work passes which opens a port or a device, pictures and keys of a panel
// included, so that no two pieces of work meet on a line: false, and nothing was done, while a
// command runs or a device is open.
bool run_through_gate(const std::function<void()> &work);
// While one lives, what comes to the closed gate is kept, a few pieces, and runs in its order when
// the gate opens again; then it counts as done. For work of a moment, that nobody sees go by: a
// picture of a panel, a key of it. So work that captures does so by value.
class brief_work
{
public:
	brief_work();
	~brief_work();
	brief_work(const brief_work &) = delete;
};
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
	void (*key_map)(key_map_event event, int group, int zone, int value, int amount) = nullptr;
	void (*envelope)(envelope_event event, int index, int value) = nullptr;
	void (*track)(track_event event, int track, int value) = nullptr;
};
// Of all windows; an empty slot takes nothing of its kind.
extern std::span<const input_row> input_rows;
// False if no row takes it, or not just now.
bool velmor_key(int window, int control, int key, std::string_view text, bool pressed);
bool velmor_mouse(int window, int control, int x, int y, mouse_action action, int amount);
bool velmor_form(int window, int form, int row, form_event event, int value);
bool velmor_key_map(
	int window, int control, key_map_event event, int group, int zone, int value, int amount);
bool velmor_envelope(int window, int control, envelope_event event, int index, int value);
bool velmor_track(int window, int control, track_event event, int track, int value);

// True while a command runs.
bool command_running();
// Forget a running command, a wish to close, open windows, lists and what could be undone; for
// tests.
void forget_commands();

// Show a window, and keep its status line up to date from then on.
void open_window(int window);
// True if it was shown since the start. Others need not be filled.
bool was_opened(int window);
template <int window> void hide_window()
{
	host.ui->show(window, 0, false);
}

// ---- Status (velmor_status.cpp) ------------------------------------------------------------------

// Show what a workflow has to tell: its boxes, one after the other, and its sentence at the foot
// of every window.
void show_outcome(const outcome &result);
// The same of a sentence alone, at the end of the command that runs.
void say_line(const std::string &line, text_role role);
// Say at the foot of every window how the sampler is reached, and offer what can be undone.
void update_status();
void forget_status();
// State and heading of a list of the sampler, and its retry button where it could not be read.
struct list_controls {
	int window, list, heading, retry;
	noun what; // of its entries
};
void show_list_knowledge(const list_controls &where, const known_list &known, int count);

// ---- Main window and setup dialogs (velmor_setup.cpp) ----------------------------------------------

// Fill what the windows show from the start. Called once they exist, before the settings are
// loaded.
void set_up_windows();
void show_midi_setup();
void show_sampler_setup();
// Another sampler is loaded: open pages show that nothing was read of it.
void empty_open_pages();

// ---- The entries of the list of samplers (velmor_entries.cpp) --------------------------------------

// The file of a configuration: of that name, or the same with its extension in other letters
// (velmor.cpp).
std::string sampler_file(const char *name);
// A configuration as its file has it; false if there is no whole one (velmor_card.cpp).
bool read_configuration(const std::string &name, _sampler *record);
// What the sampler dialog describes (velmor.cpp).
_sampler described_sampler(const std::string &name, const char *usb_name);
// The sampler dialog stands for an entry of the list, until it is opened for the loaded one.
bool entry_is_edited();
void forget_edited_entry();
// Store it: 0, or 1 when nothing was stored, and the user knows why.
int save_edited_entry();
// An entry was chosen, or there are others: say what can be done with it.
void update_entry_commands();
// Say which samplers on the USB are plugged in now, once it is known which they are.
void update_plugged_entries();

// ---- The player (velmor_player.cpp) ----------------------------------------------------------------

void midi_files_win_show();
void take_track(track_event event, int track, int value);
void change_speed(int row, form_event event, int value);
// As at the start; for tests.
void forget_player_page();

// ---- The history (velmor_history_page.cpp) ---------------------------------------------------------

void show_history();
// Its steps, or the loaded sampler, may have changed.
void update_history_page();
// Put the last change of the sampler back, and show what it holds then.
void undo_last_on_sampler();

// ---- Pages ---------------------------------------------------------------------------------------------

// Read the multis of the loaded sampler and show them (velmor_multis.cpp).
void show_multi_setup();
void empty_multi_page();
void update_multi_page();

// Read the sampler and the programs of the computer anew, and show the program of that place
// (velmor_programs_page.cpp). Asks first where edits would be lost.
void show_pgm_setup(int selection);
void empty_program_page();
// Its list may have become stale, or edits were made.
void update_program_page();
// Show the program with one of its keygroups, a keygroup with one of its zones, a zone.
void edit_program(_program *program, int index, int keygroup);
void edit_keygroup(_program *program, int keygroup, int keyzone);
void edit_keyzone(_program *program, int keygroup, int keyzone);
void upload_selected_local_program();
// No edits of the loaded programs are lost, or the user gives them up. All: of the computer's
// programs too.
bool may_lose_edits(bool all);

// Read the sampler and the spool anew and show both (velmor_samples_page.cpp).
void show_sample_setup();
void empty_sample_page();
// Its list may have become stale, or the spool another folder.
void update_sample_page();
void show_spool();
// The sampler's samples were read for another page.
void show_loaded_samples();
// Show one sample in the sample manager; origin is "LOCAL" or "LOADED". The drivers call it
// when a sampler has told about a sample.
void display_sample_information(const _sample *sample, const char *origin);

// What the import options of the sample manager say (velmor_preview.cpp).
import_options chosen_import_options();
// Another local sample was chosen: its picture, and what an import of it would give.
void show_local_selection();
// What a list shows of a WAV file behind its name: length, rate, channels, bits, loop; nothing of
// what is none.
std::vector<std::string> wave_columns(const std::string &path);
// Say what the import options make of these files. None: of the selected local sample.
void show_import_preview(std::span<const std::string> paths);

// Seconds that an upload of a file with so many bytes of audio takes to a sampler of that model, as
// the choice of exact uploads stands.
double transfer_seconds(const _sampler_type &model, u64 bytes);

} // namespace velmor
