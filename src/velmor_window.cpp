// velmor_window.cpp - the engine of the windows: from a control to its row, and the gate
//
// One command runs at a time. Waits inside it run interface events, so a second
// press can arrive in the middle of a transfer: it is dropped, unless its row
// says that it may always run (Stop, Cancel, closing). Only behind brief work,
// which a user cannot know of, it is kept and runs next.
//
// Closing the main window during a transfer asks the transfer to stop, and
// closes when its command has come back, so that the sampler is not left in
// the middle of a message.
//
// Knows nothing of: what the commands do.

#include "src/velmor_window.h"
#include "src/lcd.h"
#include "src/usbqx.h"
#include "src/velmor_forms.h"
#include "src/velmor_history.h"
#include "src/velmor_programs_page.h"
#include "src/velmor_self_test_page.h"
#include "src/velmor_wave_edit.h"
#include <deque>
#include <set>

namespace velmor
{

// ---- Rows -----------------------------------------------------------------------------------

static const window_rows *const all_rows[] = { &main_rows, &entry_rows, &settings_rows,
	&sampler_rows, &usb_rows, &samples_rows, &fit_rows, &programs_rows, &multis_rows,
	&panel_rows, &player_rows, &progress_rows, &status_rows, &wave_rows, &history_rows,
	&backup_rows, &verify_rows, &self_test_rows };

static std::vector<caption_row> all_captions()
{
	std::vector<caption_row> rows;
	for (const window_rows *part : all_rows)
		rows.insert(rows.end(), part->captions.begin(), part->captions.end());
	return rows;
}

const std::vector<caption_row> captions = all_captions();

template <typename row_type>
static const row_type *find_row(std::span<const row_type> rows, int window, int control)
{
	for (const row_type &row : rows)
		if (row.window == window && row.control == control)
			return &row;
	return nullptr;
}

// The row of a control, or that of the control of its id in every window.
template <typename row_type>
static const row_type *find_row(
	std::span<const row_type> window_rows::*kind, int window, int control)
{
	for (const int where : { window, 0 })
		for (const window_rows *part : all_rows)
			if (const row_type *row = find_row(part->*kind, where, control))
				return row;
	return nullptr;
}

const caption_row *find_caption(int window, int control)
{
	return find_row(&window_rows::captions, window, control);
}

bool has_command(int window, int control)
{
	return find_row(&window_rows::commands, window, control) != nullptr;
}

// ---- Open windows -----------------------------------------------------------------------------

static std::set<int> opened_windows;

void open_window(int window)
{
	opened_windows.insert(window);
	host.ui->show(window, 0, true);
	update_status();
}

bool was_opened(int window)
{
	return window == window_main || opened_windows.contains(window);
}

// ---- The gate ---------------------------------------------------------------------------------

static int commands_running;

// Counts the commands that run, also when exit_process leaves one of them.
struct running_command {
	running_command() { commands_running++; }
	~running_command() { commands_running--; }
	running_command(const running_command &) = delete;
};

static void close_if_wanted()
{
	if (!close_requested())
		return;
	request_close(false);
	velmor_command(window_main, menu_exit);
}

static int brief_works;
static constexpr std::size_t most_kept = 16;
static std::deque<std::function<void()>> kept_work; // in the order in which it came

brief_work::brief_work()
{
	brief_works++;
}

brief_work::~brief_work()
{
	brief_works--;
}

static bool keep_work(const std::function<void()> &work)
{
	if (!brief_works || kept_work.size() >= most_kept)
		return false;
	kept_work.push_back(work);
	return true;
}

static void run_one(const std::function<void()> &work)
{
	{
		const running_command guard;
		work();
	}
	if (close_requested())
		return;
	update_status();
	show_loaded_card();
}

// Who closes the program wants nothing done any more.
static void run_kept_work()
{
	while (!kept_work.empty() && !close_requested() && !usb_in_use()) {
		const std::function<void()> work = std::move(kept_work.front());
		kept_work.pop_front();
		run_one(work);
	}
	kept_work.clear();
}

bool run_through_gate(const std::function<void()> &work)
{
	if (commands_running || usb_in_use())
		return keep_work(work);
	run_one(work);
	run_kept_work();
	close_if_wanted();
	return true;
}

static bool run_row(const command_row *row)
{
	if (!row)
		return false;
	if (row->time == alone)
		return run_through_gate(row->run);
	row->run();
	return true;
}

bool velmor_command(int window, int control)
{
	constexpr int first_logged = 18000;
	if (window == window_main && control >= first_logged)
		log_line("[%s:%d] RECEIVED EVENT: [%d]\r\n", __FILE_NAME__, __LINE__, control);
	return run_row(find_row(&window_rows::commands, window, control));
}

bool velmor_selection(int window, int control)
{
	return run_row(find_row(&window_rows::selections, window, control));
}

bool velmor_drop(int window, int control, std::span<const std::string> paths)
{
	const drop_row *row = find_row(&window_rows::drops, window, control);
	if (!row || paths.empty())
		return false;
	return run_through_gate(
		[row, kept = std::vector(paths.begin(), paths.end())] { row->drop(kept); });
}

void velmor_hover(int window, int control, std::span<const std::string> paths)
{
	if (const drop_row *row = find_row(&window_rows::drops, window, control))
		run_through_gate([row, kept = std::vector(paths.begin(), paths.end())] {
			row->hover(kept);
		});
}

// ---- Keys, mouse and forms --------------------------------------------------------------------

template <int window, int control> static void change_form(int row, form_event event, int value)
{
	form_changed(window, control, row, event, value);
}

// clang-format off
static constexpr input_row input_table[] = {
	// window          control           keys     mouse    forms
	{ window_programs, form_of_program,  nullptr, nullptr, change_form<window_programs, form_of_program> },
	{ window_programs, form_of_keygroup, nullptr, nullptr, change_form<window_programs, form_of_keygroup> },
	{ window_programs, form_of_keyzone,  nullptr, nullptr, change_form<window_programs, form_of_keyzone> },
	{ window_programs, programs_adsr_form, nullptr, nullptr, change_adsr_form },
	{ window_programs, programs_key_map, nullptr, nullptr, nullptr, change_key_map },
	{ window_midi_files, player_speed_form, nullptr, nullptr, change_speed },
	{ window_midi_files, player_tracks, nullptr, nullptr, nullptr, nullptr, nullptr, take_track },
	{ window_programs, programs_amp_envelope,    nullptr, nullptr, nullptr, nullptr, change_envelope<programs_amp_envelope> },
	{ window_programs, programs_second_envelope, nullptr, nullptr, nullptr, nullptr, change_envelope<programs_second_envelope> },
	{ window_programs, programs_filter_envelope, nullptr, nullptr, nullptr, nullptr, change_envelope<programs_filter_envelope> },
	{ window_programs, programs_aux_envelope,    nullptr, nullptr, nullptr, nullptr, change_envelope<programs_aux_envelope> },
	{ window_panel,    panel_picture,            panel_key_pressed, panel_mouse_used, nullptr },
};
// clang-format on
std::span<const input_row> input_rows = input_table;

template <typename slot, typename... words>
static bool take_input(int window, int control, slot input_row::*which, words... said)
{
	for (const input_row &row : input_rows)
		if (row.window == window && row.control == control && row.*which)
			return run_through_gate([take = row.*which, said...] { take(said...); });
	return false;
}

bool velmor_key(int window, int control, int key, std::string_view text, bool pressed)
{
	return take_input(window, control, &input_row::key, key, std::string(text), pressed);
}

bool velmor_mouse(int window, int control, int x, int y, mouse_action action, int amount)
{
	return take_input(window, control, &input_row::mouse, x, y, action, amount);
}

bool velmor_form(int window, int form, int row, form_event event, int value)
{
	return take_input(window, form, &input_row::form, row, event, value);
}

bool velmor_key_map(
	int window, int control, key_map_event event, int group, int zone, int value, int amount)
{
	// A note must end whatever else is going on; sending it disturbs no exchange.
	if (event == key_map_event::note_off) {
		stop_test_note();
		return true;
	}
	return take_input(window, control, &input_row::key_map, event, group, zone, value, amount);
}

bool velmor_envelope(int window, int control, envelope_event event, int index, int value)
{
	return take_input(window, control, &input_row::envelope, event, index, value);
}

bool velmor_track(int window, int control, track_event event, int track, int value)
{
	// Its frame comes and goes while a file is being loaded, too.
	if (event == track_event::in_view || event == track_event::out_of_view) {
		take_track(event, track, value);
		return true;
	}
	return take_input(window, control, &input_row::track, event, track, value);
}

bool command_running()
{
	return commands_running > 0;
}

void forget_commands()
{
	commands_running = 0;
	kept_work.clear();
	request_close(false);
	forget_stop();
	leave_verdict();
	opened_windows.clear();
	forget_lists();
	forget_line();
	forget_undo();
	forget_history();
	forget_status();
	forget_program_page();
	forget_panel();
	forget_player_page();
	forget_playing();
}

} // namespace velmor
