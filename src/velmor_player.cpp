// velmor_player.cpp - the page of the MIDI file player: load, unload, play, stop, speed
//
// One file at a time. The engine keeps Play and Stop apart while a song runs; what else may be
// pressed is decided here.
//
// Knows nothing of: the events of a file, toolkits.

#include "src/velmor_player.h"
#include "src/velmor_counts.h"
#include "src/velmor_midi.h"
#include "src/waveqx.h"
#include <algorithm>
#include <cmath>

namespace velmor
{

// ---- Words ------------------------------------------------------------------------------------

std::string song_time(std::uint64_t ticks)
{
	const std::uint64_t tenths =
		ticks * 10 / static_cast<std::uint64_t>(std::max(speed_factor, 1));
	return format_text("%llu:%02d.%d", static_cast<unsigned long long>(tenths / 600),
		static_cast<int>(tenths / 10 % 60), static_cast<int>(tenths % 10));
}

static std::string last_part(const std::string &path)
{
	const std::size_t at = path.find_last_of("\\/");
	return at == path.npos ? path : path.substr(at + 1);
}

static std::string song_name()
{
	return last_part(current_midi_file.name);
}

static std::string where_to()
{
	const auto place = static_cast<std::size_t>(std::max(selected_midi_out_interface, 0));
	return place < midi_out_interface.size()
		       ? format_text(tr(" · to '%s'"), midi_out_interface[place].c_str())
		       : tr(" · no MIDI port to play it to");
}

static std::string file_words()
{
	if (!have_midi_file)
		return tr("No file is loaded");
	const int count = current_midi_file.ntrks;
	return format_text(tr("%s · %s · %s at this speed%s"), song_name().c_str(),
		counted(count, noun::track).c_str(), song_time(song_length()).c_str(),
		where_to().c_str());
}

void show_player()
{
	const bool loaded = have_midi_file, plays = song_plays();
	const char *const none = tr("No file is loaded");
	const auto reason = [](int control, const char *why_not) {
		host.ui->set_reason(window_midi_files, control, why_not);
	};
	reason(player_unload, loaded ? nullptr : none);
	reason(player_play, !loaded ? none : plays ? tr("The file plays") : nullptr);
	reason(player_stop, plays ? nullptr : tr("Nothing plays"));
	host.ui->set_text(window_midi_files, player_file, file_words().c_str());
	host.ui->set_role(
		window_midi_files, player_file, loaded ? text_role::plain : text_role::quiet);
}

// ---- Speed ------------------------------------------------------------------------------------

static void build_speed_form()
{
	const form_row bar = { .kind = row_kind::slider,
		.id = player_speed,
		.field_id = player_speed_field,
		.label = "Playback Speed",
		.unit = "ticks/s",
		.low = slowest_speed,
		.high = fastest_speed,
		.items = {},
		.item_ids = {},
		.value = speed_factor,
		.text = {},
		.changed = false,
		.why_not = {} };
	host.ui->build_form(window_midi_files, player_speed_form, { &bar, 1 });
}

static void set_speed(int ticks_per_second)
{
	speed_factor = ticks_per_second;
	show_player();
	show_midi_position(song_plays() ? static_cast<std::int64_t>(player_position) : -1);
}

// A number outside the range is left standing in its field, and moves nothing.
void change_speed(int row, form_event event, int value)
{
	if (event != form_event::drag && event != form_event::drag_end && event != form_event::edit)
		return;
	if (value < slowest_speed || value > fastest_speed)
		return;
	if (event == form_event::edit)
		host.ui->set_row_value(window_midi_files, player_speed_form, row, value);
	else
		host.ui->set_row_text(window_midi_files, player_speed_form, row,
			format_text("%d", value).c_str());
	set_speed(value);
}

// ---- The file ---------------------------------------------------------------------------------

static void load_midi_file(const std::string &path)
{
	const bool loaded = open_midi_file(window_midi_files, path.c_str());
	show_player();
	if (loaded)
		show_outcome({ .line = format_text(tr("Loaded '%s'."), song_name().c_str()) });
	else
		show_outcome({ .how = ending::local_failed,
			.words = "File cannot be opened (invalid midi-file?)",
			.caption = "ERROR",
			.line = format_text(tr("'%s' was not loaded."), last_part(path).c_str()) });
}

// Of several, the first.
static void choose_midi_file()
{
	const std::vector<std::string> paths = host.ui->choose_files("Load Midi-File",
		tr("Standard MIDI Files (*.mid *.MID *.midi *.kar);;All files (*)"));
	if (paths.empty())
		show_box("ERROR", "No file(s) selected!");
	else
		load_midi_file(paths.front());
}

static void drop_midi_file(std::span<const std::string> paths)
{
	load_midi_file(paths.front());
}

static void hover_midi_file(std::span<const std::string>) {}

// Whatever plays has a second to notice before its file goes.
static void unload_midi_file()
{
	if (!have_midi_file)
		return;
	const std::string name = song_name();
	if (song_plays())
		stop_really_all(window_midi_files);
	play_the_file = track_stopped;
	const double end = host.clock->counter() + 1;
	for (double rest = 1; rest > 0; rest = end - host.clock->counter())
		host.ui->pump(static_cast<int>(std::ceil(std::min(rest * 1000, 100.0))));
	free_midi(&current_midi_file);
	have_midi_file = 0;
	host.ui->set_text(window_midi_files, 0, "Midi-Files");
	show_player();
	show_outcome({ .line = format_text(tr("Unloaded '%s'."), name.c_str()) });
}

static void play_midi_file()
{
	if (!have_midi_file || song_plays())
		return;
	play_really_all(window_midi_files, &current_midi_file);
	show_player();
	if (song_plays())
		show_outcome({ .line = format_text(tr("Playing '%s'."), song_name().c_str()) });
}

static void end_song()
{
	const bool played = song_plays();
	play_the_file = track_stopped;
	stop_really_all(window_midi_files);
	if (played && !song_plays())
		show_outcome({ .line = format_text(tr("Stopped '%s'."), song_name().c_str()) });
}

static void stop_playing()
{
	end_song();
	show_player();
}

static void pause_or_continue()
{
	if (play_the_file == track_stopped)
		return;
	const bool pause = play_the_file == track_plays;
	play_the_file = pause ? track_paused : track_plays;
	if (pause)
		log_line("[D] PAUSING THE FILE...\r\n");
	else
		log_line("[D] CONTINUING THE FILE...\r\n");
}

static void play_chosen_track()
{
	if (have_midi_file && chosen_track() < current_midi_file.ntrks && !song_plays())
		play_track(window_midi_files, &current_midi_file, chosen_track());
}

static void stop_track()
{
	play_the_file = track_stopped;
}

// Nobody looks at a song whose window is gone; it would have no Stop.
static void hide_player()
{
	play_the_file = track_stopped;
	if (song_plays())
		end_song();
	host.ui->show(window_midi_files, 0, false);
}

void midi_files_win_show()
{
	if (!was_opened(window_midi_files))
		build_speed_form();
	open_window(window_midi_files);
	show_player();
}

void take_track(track_event event, int track, int value)
{
	midi_class_proc(event, track, value);
}

void forget_player_page()
{
	forget_midi_tracks();
}

// ---- Rows ---------------------------------------------------------------------------------------

// clang-format off
static constexpr caption_row player_captions[] = {
	// window            control          caption, tooltip, empty
	{ window_midi_files, 0,               "Midi-Files", nullptr, nullptr },
	{ window_midi_files, player_load,     "Load Midi-File", own("Open a Standard MIDI File"), nullptr },
	{ window_midi_files, player_unload,   "Unload current Midi-File", own("Stop, and put the file away"), nullptr },
	{ window_midi_files, player_play,     "Play Midi-File", own("Play it to the sampler from its beginning"), nullptr },
	{ window_midi_files, player_stop,     "Stop Midi-File", own("Stop, and end all notes"), nullptr },
	{ window_midi_files, player_tracks,   own("Tracks"), nullptr, own("No file is loaded. Load a Standard MIDI File, or drop one here.") },
	{ window_midi_files, player_file,     own("File"), nullptr, nullptr },
	{ window_midi_files, player_clock,    own("Time"), nullptr, nullptr },
	{ window_midi_files, player_sounding, own("Sounding now:"), nullptr, nullptr },
	{ window_midi_files, control_cancel,  "&Cancel", own("Stop, and close this window"), nullptr },
};
// The commands of midifileDialog.
static constexpr command_row player_commands[] = {
	{ window_midi_files, player_load,     choose_midi_file, alone  },
	{ window_midi_files, player_unload,   unload_midi_file, alone  },
	{ window_midi_files, player_play,     play_midi_file,   alone  },
	{ window_midi_files, player_stop,     stop_playing,     always },
	{ window_midi_files, player_pause,    pause_or_continue, always },
	{ window_midi_files, player_play_track, play_chosen_track, alone },
	{ window_midi_files, player_stop_track, stop_track,      always },
	{ window_midi_files, control_cancel,  hide_player,      always },
};
static constexpr drop_row player_drops[] = {
	{ window_midi_files, player_tracks,   hover_midi_file, drop_midi_file },
};
// clang-format on

constinit const window_rows player_rows = {
	.captions = player_captions, .commands = player_commands, .drops = player_drops
};

} // namespace velmor
