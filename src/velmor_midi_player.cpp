// velmor_midi_player.cpp - playing a MIDI file to the output, on a timer of 10 ms
//
// A tick counts how far the song is from the counter at its start, so that no tick adds an
// error, and sends what has come due, track by track. A send runs the interface until its bytes
// have left the wire: windows stay alive, and the next tick may arrive inside it. That tick is
// left out; what came due meanwhile is sent by the next.
//
// Inside a send the user may press anything: Stop, another file, a button that opens a box and so
// holds the send up for minutes. Each tick has a number, and who returns from a send with another
// number running touches nothing any more. A tick that finds the one before it held up although
// its bytes are out takes the song over.
//
// Controller 123 (All Notes Off) goes to channels 1 to 15, in that order.
//
// Knows nothing of: models, what a track looks like.

#include "src/controls.h"
#include "src/velmor_files.h"
#include "src/velmor_midi.h"
#include "src/velmor_pace.h"
#include "src/velmor_window.h"
#include <algorithm>
#include <cmath>

namespace velmor
{

int speed_factor = 1000;
_midif *timer_mid = nullptr;
int timer_is_busy = 0;
u64 playing_position = 0, player_position = 0;
int play_the_file = track_stopped;

static constexpr int tick_ms = 10;
static constexpr u64 frequency = 1000000; // of the counter
static constexpr double held_up = 0.25;   // seconds: longer than any pump
static constexpr double byte_seconds = 10 / 31250.0;
static constexpr double patience = 2; // seconds beyond those that the wire needs
static constexpr u8 status_bit = 0x80, note_bits = 0x90;
static constexpr int silenced_channels = 15;
static constexpr int after_pause = 16; // the event with which a paused track goes on

static int timer = 0;
static bool playing = false;
static int player_window = 0;
static u64 start_counter = 0;
static unsigned tick_number = 0; // of the tick that may go on
static unsigned stops = 0;       // of files; who steps through one compares
static double waits_since = 0;   // when the send under way last asked its port

static u64 counter()
{
	return static_cast<u64>(std::llround(host.clock->counter() * frequency));
}

// ---- Bytes out --------------------------------------------------------------------------------

static bool port_failed(const char *told, const char *port, outcome *why)
{
	*why = { .how = ending::no_answer,
		.line = format_text(tr("The MIDI output failed: %s"), port),
		.told = { { "FATAL", told } } };
	// The next send opens whatever is there then.
	close_midi_output();
	return true;
}

// True: the port failed. A port that was closed meanwhile, for another one was chosen, has taken
// the bytes.
static bool wait_until_left(int handle, int length, outcome *why)
{
	static constexpr char failed[] = "MIDI-PLAY midiOutLongMsg failed!";
	const double end = host.clock->counter() + length * byte_seconds + patience;
	while (the_outHandle == handle) {
		const long left = host.midi->leaving(handle);
		waits_since = host.clock->counter();
		if (left == 0)
			return false;
		if (left < 0)
			return port_failed(
				failed, tr(host.midi->error_text(static_cast<int>(-left))), why);
		if (waits_since >= end)
			return port_failed(failed,
				tr("It does not send. Is the interface still connected?"), why);
		// The port wakes the interface; one that is late is asked when the wire is free.
		const double milliseconds = static_cast<double>(left) * byte_seconds * 1000;
		host.ui->pump(static_cast<int>(std::ceil(std::clamp(milliseconds, 1.0, 100.0))));
	}
	return false;
}

bool play_midi_data(const u8 *data, int length, outcome *why)
{
	int code = open_midi_output();
	if (code)
		return port_failed(
			"MIDI-PLAY midiOutPrepare failed!", tr(host.midi->error_text(code)), why);
	const int handle = the_outHandle;
	waits_since = host.clock->counter();
	code = write_output(handle, data, static_cast<std::size_t>(std::max(length, 0)));
	if (code)
		return port_failed(
			"MIDI-PLAY midiOutLongMsg failed!", tr(host.midi->error_text(code)), why);
	return wait_until_left(handle, length, why);
}

static bool letting_go = false, once_more = false;

// True: the port failed.
static bool silence_channels()
{
	outcome ignored;
	for (int channel = 0; channel < silenced_channels && the_outHandle >= 0; channel++) {
		const u8 all_notes_off[] = { static_cast<u8>(0xB0 | channel), 123, 0 };
		if (play_midi_data(all_notes_off, sizeof all_notes_off, &ignored))
			return true;
	}
	return false;
}

// On what is open: notes that no port has are none that could hang. Stop may be pressed again
// inside these sends; only a song that began and ended meanwhile has to be silenced once more.
static void let_go_of_notes(bool of_a_song = false)
{
	once_more = once_more || of_a_song;
	if (letting_go)
		return;
	letting_go = true;
	do
		once_more = false;
	while (!silence_channels() && once_more);
	letting_go = false;
}

// ---- What sounds ------------------------------------------------------------------------------

void remove_midi_event(_midi_track *track, int index)
{
	const auto first = track->stack.begin() + index;
	std::move(first + 1, track->stack.begin() + track->stacks, first);
	track->stacks--;
}

static void push(_midi_track *track, int number, const bounded_bytes &data)
{
	if (track->stack.empty())
		track->stack.resize(stack_room);
	_midi_stack &entry = track->stack[static_cast<std::size_t>(track->stacks++)];
	entry = { .event_id = number,
		.type = 1,
		.channel = data[0] & 0x0F,
		.controller = 0,
		.original_event_len = 0,
		.original_event = {},
		.pitch = data[1] };
	const auto kept = data.bytes.first(std::min(data.size(), sizeof entry.original_event));
	std::ranges::copy(kept, entry.original_event);
	entry.original_event_len = static_cast<int>(kept.size());
}

static void remove_notes(_midi_track *track, int channel, int pitch, bool all)
{
	for (int i = track->stacks - 1; i >= 0; i--) {
		const _midi_stack &entry = track->stack[static_cast<std::size_t>(i)];
		if (entry.type != 1 || entry.channel != channel || entry.pitch != pitch)
			continue;
		remove_midi_event(track, i);
		if (!all)
			return;
	}
}

static _midi_track &track_of(_midif *file, int track)
{
	return file->track[static_cast<std::size_t>(track)];
}

// The test for a note is broad: controllers and pressure come and go as notes do, so that the
// list shows them too.
void stack_midi_event(_midif *file, int track, int event)
{
	_midi_track &t = track_of(file, track);
	const bounded_bytes data = t.event[static_cast<std::size_t>(event)].bytes();
	if (!(data[0] & status_bit))
		return;
	const bool note_on = (data[0] & note_bits) == note_bits;
	if (note_on && t.stacks == stack_room)
		return;
	if (note_on && data[2])
		push(&t, event, data);
	else
		remove_notes(&t, data[0] & 0x0F, data[1], note_on);
}

std::string get_stack_string(const _midi_track *track, int index)
{
	const _midi_stack &entry = track->stack[static_cast<std::size_t>(index)];
	return format_text("[%d] ORIG.ID: %d, CHANNEL: %d, PITCH: %d (%s)", index, entry.event_id,
		entry.channel + 1, entry.pitch,
		midi_note[static_cast<std::size_t>(entry.pitch & 0x7F)]);
}

// ---- One event --------------------------------------------------------------------------------

static void take_meta(_midi_track *track, int number, const _midi_event &event)
{
	log_line("[D] (%d) MIDI-PLAYER META-EVENT: %d, DELTA: %d\r\n", number, event.meta_type,
		static_cast<int>(event.delta_time));
	if (event.meta_type == meta_track_name)
		track->display.the_trackname = event.bytes().text(0);
}

bool send_midi_event(int, _midif *file, int track, int number, outcome *why)
{
	_midi_track &t = track_of(file, track);
	const _midi_event &event = t.event[static_cast<std::size_t>(number)];
	const bounded_bytes data = event.bytes();
	playing_position = event.absolute_time;
	if (data.size() == 0)
		return false;
	if (event.meta_type >= 0) {
		take_meta(&t, number, event);
		return false;
	}
	t.detected_channel = data[0] & 0x0F;
	if (!(data[0] & status_bit))
		return false;
	// A copy: the file may be freed while it is on its way.
	std::vector<u8> bytes(data.bytes.begin(), data.bytes.end());
	if (t.forced_channel <= 15)
		bytes[0] = static_cast<u8>((bytes[0] & 0xF0) | t.forced_channel);
	return play_midi_data(bytes.data(), static_cast<int>(bytes.size()), why);
}

// ---- The dump ---------------------------------------------------------------------------------

static std::string dump_text(const _midif &file, const _midi_track &track)
{
	std::string text = format_text("GLOBAL FOR ALL TRACKS:\nFORMAT:  %d\nNTRKS:   %d\n"
				       "DIVISION:%d [%08X]\n------------------------\n",
		file.format, file.ntrks, file.division, static_cast<unsigned>(file.division));
	for (int i = 0; i < track.events; i++) {
		const _midi_event &event = track.event[static_cast<std::size_t>(i)];
		text += format_text(
			"EVENT[%5d](0x%04X,0x%02X) --> (%5lld)[%10lld] %4d Bytes [%s]\n", i,
			static_cast<unsigned>(event.meta_type),
			static_cast<unsigned>(event.meta_sub_type),
			static_cast<long long>(event.delta_time),
			static_cast<long long>(event.absolute_time), event.data_len,
			hex_text(event.bytes().bytes).c_str());
	}
	return text;
}

static int write_text(const std::string &path, const std::string &text)
{
	int handle;
	(void)host.files->remove(path.c_str());
	if (const int code = host.files->open(path.c_str(), file_create, &handle))
		return code;
	const int written = host.files->write(handle, text.data(), text.size());
	const int closed = host.files->close(handle);
	return written ? written : closed;
}

// Nothing needs the dump but a developer: a full disk stops no song.
static void write_dump(const _midif &file)
{
	const std::string folder = current_config_path + "\\midi_dumps";
	(void)host.files->make_folder(folder.c_str());
	const std::string prefix = format_text(
		"%s\\song_%d_", folder.c_str(), static_cast<int>(host.clock->time_of_day()));
	for (int i = 0; i < file.ntrks; i++) {
		const std::string path = format_text("%s%d.dump", prefix.c_str(), i);
		const int code =
			write_text(path, dump_text(file, file.track[static_cast<std::size_t>(i)]));
		if (!code)
			continue;
		log_line("[W] %s\r\n", write_failure(path, code).c_str());
		return;
	}
}

// ---- A song -----------------------------------------------------------------------------------

static void show_buttons(int window, bool plays)
{
	host.ui->set_reason(window, player_play, plays ? tr("The file plays") : nullptr);
	host.ui->set_reason(window, player_stop, plays ? nullptr : tr("Nothing plays"));
}

bool song_plays()
{
	return playing;
}

std::string why_output_is_taken()
{
	if (!playing)
		return {};
	const auto port = static_cast<std::size_t>(std::max(selected_midi_out_interface, 0));
	return format_text(tr("The player is using %s; stop it first."),
		port < midi_out_interface.size() ? midi_out_interface[port].c_str()
						 : tr("the MIDI output"));
}

static bool open_output()
{
	if (open_midi_output() == 0)
		return true;
	show_box("FATAL", "Cannot open MIDI-Out Device!");
	end_program(0);
	return false;
}

void play_really_all(int window, _midif *file)
{
	if (playing)
		return;
	playing_position = 0;
	timer_mid = file;
	player_window = window;
	show_buttons(window, true);
	if (current_run_mode.diagnostics)
		write_dump(*file);
	if (!open_output())
		return;
	for (_midi_track &track : file->track) {
		track.last_event = -1;
		track.is_running = !track.is_mute;
		track.is_finished = 0;
	}
	player_position = 0;
	start_counter = counter();
	timer_is_busy = 0;
	tick_number++;
	playing = true;
	timer = host.ui->start_timer(tick_ms, timer_playback);
}

// Nothing sounds any more, and nothing runs: that is to be seen.
static void settle_tracks(_midif *file)
{
	for (int i = 0; i < file->ntrks; i++) {
		_midi_track &track = track_of(file, i);
		const bool shown = track.is_running || track.stacks;
		track.is_running = track.stacks = track.redraw = 0;
		if (shown)
			display_track(file, i);
	}
	show_midi_position(-1);
}

void stop_really_all(int window)
{
	const bool ended = playing;
	if (playing) {
		host.ui->stop_timer(timer);
		playing = false;
		tick_number++;
		timer_is_busy = 0;
		_midif *file = timer_mid;
		timer_mid = nullptr;
		settle_tracks(file);
	}
	let_go_of_notes(ended);
	// The sends above may have let another song begin.
	show_buttons(window, playing);
}

void stop_midi_file(const _midif *file)
{
	stops++;
	if (playing && timer_mid == file)
		stop_really_all(player_window);
}

static void end_in_words(const outcome &why)
{
	log_line("[F] %s\r\n", why.line.c_str());
	outcome shown = why;
	shown.line = format_text(tr("The song has ended. %s"), why.line.c_str());
	stop_really_all(player_window);
	show_outcome(shown);
}

// ---- A tick -----------------------------------------------------------------------------------

static bool goes_on(unsigned tick)
{
	return tick == tick_number;
}

enum class walk_end {
	not_yet, // the next event is to come
	track_over,
	song_over, // or another tick has taken over: nothing may be touched
};

static walk_end play_due(unsigned tick, int number, u64 now)
{
	for (int e = track_of(timer_mid, number).last_event + 1;; e++) {
		_midi_track &track = track_of(timer_mid, number);
		if (e >= track.events)
			return walk_end::track_over;
		const _midi_event &event = track.event[static_cast<std::size_t>(e)];
		if (event.absolute_time > now)
			return walk_end::not_yet;
		if (event.meta_type == meta_end_of_track)
			continue;
		track.last_event = e;
		if (event.bytes()[0] & status_bit || event.meta_type == meta_track_name)
			track.redraw = 1;
		if (track.is_mute)
			continue;
		stack_midi_event(timer_mid, number, e);
		outcome why;
		const bool failed = send_midi_event(player_window, timer_mid, number, e, &why);
		if (!goes_on(tick))
			return walk_end::song_over;
		if (failed) {
			end_in_words(why);
			return walk_end::song_over;
		}
	}
}

// False: the tick is over.
static bool play_track_due(unsigned tick, int number, u64 now)
{
	track_of(timer_mid, number).redraw = 0;
	if (track_of(timer_mid, number).is_running) {
		const walk_end end = play_due(tick, number, now);
		if (end == walk_end::song_over)
			return false;
		if (end == walk_end::track_over) {
			_midi_track &track = track_of(timer_mid, number);
			track.is_running = 0;
			track.is_finished = track.redraw = 1;
			log_line("[D] TRACK: %d completed!\r\n", number);
		}
	}
	_midi_track &track = track_of(timer_mid, number);
	if (!track.is_finished && !track.is_mute)
		track.is_running = 1;
	return true;
}

static int running_tracks()
{
	int sum = 0;
	for (const _midi_track &track : timer_mid->track)
		sum += track.is_running;
	return sum;
}

static void show_tracks()
{
	for (int i = 0; i < timer_mid->ntrks; i++) {
		_midi_track &track = track_of(timer_mid, i);
		if (track.redraw)
			display_track(timer_mid, i);
		track.redraw = 0;
	}
}

// The tick before waits for bytes that have left: something inside its wait does not return.
static bool is_held_up()
{
	return host.clock->counter() > waits_since + held_up && the_outHandle >= 0 &&
	       host.midi->leaving(the_outHandle) == 0;
}

void timer_playback()
{
	if (!playing)
		return;
	if (timer_is_busy && !is_held_up()) {
		log_line("TIMER STILL BUSY!\r\n");
		return;
	}
	const log_round apart(nullptr);
	timer_is_busy = 1;
	const unsigned tick = ++tick_number;
	const u64 now = (counter() - start_counter) * static_cast<u64>(speed_factor) / frequency;
	for (int i = 0; i < timer_mid->ntrks; i++)
		if (!play_track_due(tick, i, now))
			return;
	const bool runs = running_tracks() != 0;
	if (runs)
		player_position = now;
	show_tracks();
	if (runs) {
		show_midi_position(static_cast<std::int64_t>(now));
		timer_is_busy = 0;
		return;
	}
	log_line("Song Completed!\r\n");
	stop_really_all(player_window);
	if (!playing)
		show_outcome({ .line = tr("The song has been played to its end.") });
}

// ---- Step by step -----------------------------------------------------------------------------

// What is wanted of the steps, once they are not to wait.
static int wait_while_paused(unsigned stop)
{
	if (play_the_file == track_paused)
		let_go_of_notes();
	while (stop == stops && play_the_file == track_paused && !close_requested())
		host.ui->pump(100);
	// Who closes the program in the middle of a track does not wait for its end.
	return close_requested() ? +track_stopped : play_the_file;
}

// One event, and what it leaves to see. False: no further one is wanted.
static bool play_step(int window, _midif *file, int track, int event, unsigned stop)
{
	outcome why;
	const bool failed = send_midi_event(window, file, track, event, &why);
	host.ui->pump(0);
	if (stop != stops)
		return false;
	if (failed) {
		show_outcome(why);
		return false;
	}
	track_of(file, track).display.the_info = format_text("Event: %d, POS: %d", event,
		static_cast<int>(track_of(file, track)
					 .event[static_cast<std::size_t>(event)]
					 .absolute_time));
	display_track(file, track);
	return true;
}

void play_track(int window, _midif *file, int track)
{
	if (!open_output())
		return;
	const unsigned stop = stops;
	play_the_file = track_plays;
	track_of(file, track).is_running = 1;
	for (int e = 0; e < track_of(file, track).events; e++) {
		if (!play_step(window, file, track, e, stop))
			break;
		const bool was_paused = play_the_file == track_paused;
		const int wanted = wait_while_paused(stop);
		if (stop != stops)
			return;
		if (wanted == track_stopped) {
			let_go_of_notes();
			break;
		}
		if (was_paused)
			e = after_pause - 1;
	}
	if (stop != stops)
		return;
	track_of(file, track).is_running = 0;
	display_track(file, track);
}

void forget_midi_player()
{
	playing = letting_go = once_more = false;
	timer_mid = nullptr;
	timer_is_busy = 0;
	tick_number++;
	stops++;
	speed_factor = 1000;
	playing_position = player_position = 0;
	play_the_file = track_stopped;
	current_midi_file = {};
	have_midi_file = 0;
}

} // namespace velmor
