// velmor_midi_tracks.cpp - the tracks of a MIDI file on the player's page
//
// The engine tells which tracks have changed, a hundred times a second; a window shows a few of
// them. So a frame's words are made only for a track that is in view, and its notes over time
// when it first comes there.
//
// Knows nothing of: files, timing, toolkits.

#include "src/velmor_midi.h"
#include "src/velmor_player.h"
#include <algorithm>
#include <set>

namespace velmor
{

static constexpr int cells = 8; // of the next events

static std::set<int> in_view;
static std::vector<std::vector<strip_note>> notes_of; // each made when it is first needed
static std::vector<bool> notes_made;
static std::uint64_t length_of_song;
static int used_last;
static std::string shown_sounding, shown_clock;

std::uint64_t song_length()
{
	return have_midi_file ? length_of_song : 0;
}

int chosen_track()
{
	return used_last;
}

// The track, or null: a window may ask for one that is gone.
static _midi_track *track_of(_midif *file, int track)
{
	const bool there = file && track >= 0 && track < file->ntrks &&
			   static_cast<std::size_t>(track) < file->track.size();
	return there ? &file->track[static_cast<std::size_t>(track)] : nullptr;
}

// ---- The words of a frame -------------------------------------------------------------------------

static bool is_note_on(u8 status)
{
	return (status & 0x90) == 0x90;
}

// The next of them, from the one played last. Controllers and other channel events read as notes.
static std::vector<std::string> next_events(const _midi_track &track)
{
	std::vector<std::string> texts(cells);
	const std::size_t first = static_cast<std::size_t>(std::max(track.last_event, 0));
	for (std::size_t i = 0; i < cells && first + i < track.event.size(); i++) {
		const _midi_event &event = track.event[first + i];
		const bounded_bytes data = event.bytes();
		if (event.meta_type >= 0 || data[0] < 0x80)
			continue;
		texts[i] = format_text("%s [%s] (%d)", is_note_on(data[0]) ? "ON" : "OFF",
			midi_note[data[1] & 0x7F], data[2]);
	}
	return texts;
}

static std::string note_name(const _midi_stack &entry)
{
	return midi_note[static_cast<std::size_t>(entry.pitch & 0x7F)];
}

static int sounding_count(const _midi_track &track)
{
	return std::min(track.stacks, static_cast<int>(track.stack.size()));
}

static std::vector<std::string> sounding_names(const _midi_track &track)
{
	std::vector<std::string> names;
	for (int i = 0; i < sounding_count(track); i++)
		names.push_back(note_name(track.stack[static_cast<std::size_t>(i)]));
	return names;
}

static track_colour brush_of(const _midi_track &track)
{
	if (track.is_mute)
		return track_colour::muted;
	return track.is_running ? track_colour::running : track_colour::stopped;
}

// "none" is the entry behind the last channel.
static std::vector<std::string> channel_names()
{
	std::vector<std::string> names;
	for (const char *name : midi_channel)
		names.emplace_back(name ? name : "none");
	return names;
}

static track_view view_of(const _midi_track &track, int number)
{
	static const std::vector<std::string> channels = channel_names();
	const bool runs = track.is_running;
	const int position = runs ? static_cast<int>(player_position) : 0;
	const std::string &name = track.display.the_trackname;
	return { .title = format_text("TRACK: %d", number),
		.name = name.empty() ? "(TRACKNAME)" : name,
		.state = format_text(runs ? "%d PLAY [%d]" : "%d STOPPED [%d]", number, position),
		.info = track.display.the_info,
		.colour = brush_of(track),
		.muted = track.is_mute != 0,
		.forced_channel = track.forced_channel,
		.channels = channels,
		.volume = track.volume,
		.events = next_events(track),
		.sounding = sounding_names(track) };
}

void display_track(_midif *file, int track)
{
	_midi_track *t = track_of(file, track);
	if (!t)
		return;
	const int brush = static_cast<int>(brush_of(*t));
	if (brush != t->display.current_brush) {
		log_line("[D] Changing Color to: %d, TRACK: %d\r\n", brush, track);
		t->display.current_brush = brush;
	}
	if (!in_view.contains(track) || !host.ui->set_track)
		return;
	const track_view view = view_of(*t, track);
	host.ui->set_track(window_midi_files, player_tracks, track, &view);
}

// ---- Notes over time -------------------------------------------------------------------------------

// Which note of the list sounds on each pitch of each channel, -1: none.
struct open_notes {
	int place[16][128];
	open_notes()
	{
		for (auto &channel : place)
			std::fill(std::begin(channel), std::end(channel), -1);
	}
};

static std::vector<strip_note> notes_in(const _midi_track &track)
{
	std::vector<strip_note> notes;
	open_notes open;
	const std::uint64_t end = track.event.empty() ? 0 : track.event.back().absolute_time;
	for (const _midi_event &event : track.event) {
		const bounded_bytes data = event.bytes();
		const int kind = data[0] >> 4;
		if (event.meta_type >= 0 || (kind != 8 && kind != 9))
			continue;
		int &place = open.place[data[0] & 0x0F][data[1] & 0x7F];
		if (place >= 0)
			notes[static_cast<std::size_t>(place)].end = event.absolute_time;
		place = -1;
		if (kind == 8 || !data[2])
			continue;
		place = static_cast<int>(notes.size());
		notes.push_back({ event.absolute_time, end, static_cast<u8>(data[1] & 0x7F),
			static_cast<u8>(data[2] & 0x7F) });
	}
	return notes;
}

static std::string name_in(const _midi_track &track)
{
	for (const _midi_event &event : track.event)
		if (event.meta_type == meta_track_name)
			return event.bytes().text(0);
	return "";
}

static void show_strip(const _midi_track &track, int number)
{
	const auto place = static_cast<std::size_t>(number);
	if (!host.ui->set_strip || place >= notes_of.size())
		return;
	if (!notes_made[place])
		notes_of[place] = notes_in(track);
	notes_made[place] = true;
	const strip_view view = { notes_of[place], length_of_song, name_in(track) };
	host.ui->set_strip(window_midi_files, player_tracks, number, &view);
}

// ---- All of them -------------------------------------------------------------------------------------

static void set_track_count(int count)
{
	in_view.clear();
	if (host.ui->set_track_count)
		host.ui->set_track_count(window_midi_files, player_tracks, count);
}

void show_midi_tracks(_midif *file)
{
	set_track_count(0);
	used_last = 0;
	length_of_song = 0;
	for (const _midi_track &track : file->track)
		if (!track.event.empty())
			length_of_song = std::max(length_of_song, track.event.back().absolute_time);
	notes_of.clear();
	notes_of.resize(file->track.size());
	notes_made.assign(file->track.size(), false);
	set_track_count(file->ntrks);
	show_midi_position(-1);
}

void remove_midi_tracks(_midif *)
{
	set_track_count(0);
	notes_of.clear();
	notes_made.clear();
	length_of_song = 0;
	show_midi_position(-1);
}

// The notes alone: a frame lists what else its track keeps as if it sounded.
static std::string sounding_words()
{
	std::string words;
	for (std::size_t i = 0; have_midi_file && i < current_midi_file.track.size(); i++) {
		const _midi_track &track = current_midi_file.track[i];
		const std::string &name = track.display.the_trackname;
		for (int s = 0; s < sounding_count(track); s++) {
			const _midi_stack &entry = track.stack[static_cast<std::size_t>(s)];
			if (entry.original_event[0] >> 4 != 9)
				continue;
			words += words.empty() ? "" : " · ";
			words += name.empty() ? format_text("%d", static_cast<int>(i)) : name;
			words += " " + note_name(entry);
		}
	}
	return words;
}

static void show_if_new(int control, std::string *shown, const std::string &words)
{
	if (*shown == words)
		return;
	*shown = words;
	host.ui->set_text(window_midi_files, control, words.c_str());
}

void show_midi_position(std::int64_t ticks)
{
	if (!was_opened(window_midi_files))
		return;
	if (host.ui->set_play_position)
		host.ui->set_play_position(window_midi_files, player_tracks, ticks, speed_factor);
	show_if_new(player_clock, &shown_clock,
		ticks < 0 ? "" : song_time(static_cast<std::uint64_t>(ticks)));
	show_if_new(player_sounding, &shown_sounding, sounding_words());
}

// ---- What is done in a frame -----------------------------------------------------------------------------

static void log_stack(const _midi_track &track)
{
	for (int i = 0; i < sounding_count(track); i++)
		log_line("[I] %s\r\n", get_stack_string(&track, i).c_str());
}

static void mute(_midi_track *track, int number)
{
	track->is_mute = !track->is_mute;
	log_line("[D] MUTE_BUTTON FOR TRACK %d PRESSED!\r\n", number);
	display_track(&current_midi_file, number);
}

static void force_channel(_midi_track *track, int number, int channel)
{
	track->forced_channel = std::clamp(channel, 0, unforced_channel);
	log_line("[I] Track: %d --> CHANNEL: %d\r\n", number, track->forced_channel);
}

bool midi_class_proc(track_event event, int number, int value)
{
	if (event == track_event::scroll) {
		log_line("[D] SCROLLBAR-POSITION-NOW: %d, REQUESTED: %d, AMOUNT: %d\r\n", number,
			value, value - number);
		return true;
	}
	_midi_track *track = have_midi_file ? track_of(&current_midi_file, number) : nullptr;
	if (event == track_event::out_of_view)
		in_view.erase(number);
	if (!track || event == track_event::out_of_view)
		return track != nullptr;
	if (event == track_event::in_view) {
		in_view.insert(number);
		show_strip(*track, number);
		display_track(&current_midi_file, number);
		return true;
	}
	used_last = number;
	if (event == track_event::mute)
		mute(track, number);
	else if (event == track_event::channel)
		force_channel(track, number, value);
	else
		log_stack(*track);
	return true;
}

void forget_midi_tracks()
{
	in_view.clear();
	notes_of.clear();
	notes_made.clear();
	length_of_song = 0;
	shown_sounding.clear();
	shown_clock.clear();
	used_last = 0;
}

} // namespace velmor
