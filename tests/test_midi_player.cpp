// test_midi_player.cpp - MIDI files on their way to the output: what is sent, when, and what ends it

#include "src/controls.h"
#include "src/velmor_midi.h"
#include "src/velmor_window.h"
#include "src/velmor_work.h"
#include "tests/support/midi_files.h"
#include "tests/support/midi_model.h"
#include <cmath>
#include <fstream>

namespace velmor
{
namespace
{

// An output that notes what it is given and when. Bytes need byte_time each to leave.
struct slow_port {
	struct message {
		double time;
		std::vector<u8> bytes;
	};
	double byte_time = 0, free_at = 0;
	int open_code = 0, write_code = 0, leaving_code = 0;
	bool stuck = false;
	int opened = 0, open = 0;
	std::vector<message> sent;
};
slow_port *port;

const midi_service port_service = [] {
	midi_service s = {};
	s.outputs = [] { return 2; };
	s.inputs = [] { return 0; };
	s.output_name = [](int index) { return index ? "Second" : "First"; };
	s.input_name = [](int) { return ""; };
	s.open_output = [](int, int *handle) {
		*handle = 5;
		if (!port->open_code)
			port->opened++, port->open++;
		return port->open_code;
	};
	s.write = [](int, const unsigned char *bytes, std::size_t count) {
		if (port->write_code)
			return port->write_code;
		const double now = the_test_host->time.now();
		port->sent.push_back({ now, { bytes, bytes + count } });
		port->free_at = std::max(port->free_at, now) + port->byte_time * count;
		the_test_host->time.at(port->free_at, [] {});
		return 0;
	};
	s.leaving = [](int) {
		if (port->leaving_code)
			return -1L * port->leaving_code;
		const double left = std::max(port->free_at - the_test_host->time.now(), 0.0);
		return port->stuck ? 1L : std::lround(std::ceil(left / 0.00032 - 0.001));
	};
	s.close_output = [](int) { port->open--; };
	s.error_text = [](int) { return "No such device"; };
	return s;
}();

} // namespace

class midi_player : public host_test
{
protected:
	slow_port out;
	double next_tick = 0, began = 0;

	void SetUp() override
	{
		port = &out;
		host.midi = &port_service;
		selected_midi_out_interface = 0;
		reload_midi_setup(false);
		h.on_pump = [this] { run_timers(); };
	}
	void TearDown() override
	{
		h.on_pump = nullptr; // whose locals are gone
		close_midi_output();
	}

	void load(const std::vector<u8> &file)
	{
		const std::string path = h.config + "\\song.mid";
		h.put_content(path, file);
		ASSERT_TRUE(open_midi_file(window_midi_files, path.c_str()));
	}
	void load_song(const std::vector<std::string> &tracks) { load(midi_song(960, tracks)); }
	static _midi_track &track(int number = 0)
	{
		return current_midi_file.track[static_cast<std::size_t>(number)];
	}
	void play()
	{
		out.sent.clear();
		began = h.time.now();
		next_tick = began + 0.010;
		play_really_all(window_midi_files, &current_midi_file);
	}
	// The timer is asked inside every pump too. What was missed is not made up for.
	void run_timers()
	{
		if (h.timers.empty() || h.time.now() < next_tick - 1e-9)
			return;
		next_tick = std::max(next_tick + 0.010, h.time.now());
		const auto tick = h.timers.begin()->second;
		EXPECT_EQ(tick.milliseconds, 10);
		EXPECT_EQ(h.timers.size(), 1u);
		tick.tick();
	}
	void pass(double seconds)
	{
		const double end = h.time.now() + seconds;
		while (!h.timers.empty() && h.time.now() < end - 1e-9) {
			h.time.run_until(std::min(end, std::max(next_tick, h.time.now() + 1e-6)));
			run_timers();
		}
		h.time.run_until(std::max(end, h.time.now()));
	}
	void pass_song()
	{
		for (int i = 0; i < 100000 && song_plays(); i++)
			pass(0.010);
	}
	// "10 90 3C 40, 20 80 3C 00": milliseconds since the start, and the bytes.
	std::string sent()
	{
		std::string text;
		for (const slow_port::message &m : out.sent)
			text += (text.empty() ? "" : ", ") +
				std::to_string(std::lround((m.time - began) * 1000)) + " " +
				hex_text(m.bytes);
		out.sent.clear();
		return text;
	}
	static std::string all_notes_off(long milliseconds)
	{
		std::string text;
		for (int channel = 0; channel < 15; channel++)
			text += format_text("%s%ld B%X 7B 00", channel ? ", " : "", milliseconds,
				static_cast<unsigned>(channel));
		return text;
	}
	bool enabled(int control) { return h.enabled[std::pair(+window_midi_files, control)]; }
	void expect_idle()
	{
		EXPECT_FALSE(song_plays());
		EXPECT_TRUE(h.timers.empty());
		EXPECT_EQ(timer_is_busy, 0);
		EXPECT_EQ(timer_mid, nullptr);
		EXPECT_TRUE(enabled(player_play));
		EXPECT_FALSE(enabled(player_stop));
	}
};

// ---- Times --------------------------------------------------------------------------------

TEST_F(midi_player, events_go_out_in_the_tick_in_which_they_come_due)
{
	// 15 ticks, an end of track that ends nothing, 1000; beside it a tempo that changes nothing.
	load_song({ "00 90 3C 40 0F 80 3C 00 00 FF 2F 00 87 59 91 40 41 01 43 12",
		"00 FF 51 03 01 00 00 05 C2 07 00 FF 03 01 41" });
	play();
	EXPECT_FALSE(enabled(player_play));
	EXPECT_TRUE(enabled(player_stop));
	EXPECT_TRUE(out.sent.empty()); // nothing before the first tick
	pass(0.010);
	EXPECT_EQ(sent(), "10 90 3C 40, 10 C2 07");
	EXPECT_EQ(track(1).display.the_trackname, "A");
	EXPECT_EQ(playing_position, 5u);
	EXPECT_EQ(player_position, 10u);
	expect_logged(
		{ "[D] (0) MIDI-PLAYER META-EVENT: 81, DELTA: 0", "[D] TRACK: 1 completed!" });
	pass(0.5);
	EXPECT_EQ(sent(), "20 80 3C 00");
	speed_factor = 1800; // the whole time is counted anew: 510 ms are 918 now
	pass(0.04);
	EXPECT_EQ(sent(), "");
	pass(0.010);
	EXPECT_EQ(sent(), "560 91 40 41, " + all_notes_off(560));
	EXPECT_EQ(track().detected_channel, 3); // of a data byte: there was no status
	expect_logged({ "Song Completed!" });
	expect_idle();
}

TEST_F(midi_player, muted_tracks_move_on_silently_and_forced_ones_change_their_channel)
{
	load_song({ "00 90 3C 40 14 90 3D 40 14 90 3E 40",
		"00 91 3C 40 14 91 3D 40 14 F0 02 F0 F7" });
	track(0).is_mute = 1;
	track(1).forced_channel = 9;
	play();
	EXPECT_EQ(track(0).is_running, 0);
	pass(0.020);
	EXPECT_EQ(sent(), "10 99 3C 40, 20 99 3D 40");
	EXPECT_EQ(track(1).detected_channel, 1);
	track(0).is_mute =
		0; // it starts anew in the next tick, and catches up in the one behind it
	track(1).is_mute = 1; // and this one only falls silent
	pass(0.010);
	EXPECT_EQ(sent(), "");
	pass(0.010);
	EXPECT_EQ(sent(), "40 90 3C 40, 40 90 3D 40, 40 90 3E 40, " + all_notes_off(40));
	expect_idle();

	track(0).forced_channel = 15;
	track(1).is_mute = 0;
	track(1).forced_channel = 0;
	play();
	pass_song();
	EXPECT_EQ(sent(),
		"10 9F 3C 40, 10 90 3C 40, 20 9F 3D 40, 20 90 3D 40, 40 9F 3E 40, 40 F0 F0 F7, " +
			all_notes_off(40));

	track(0).is_mute = track(1).is_mute = 1; // the first tick ends it
	play();
	pass(0.010);
	EXPECT_EQ(sent(), all_notes_off(10));
	expect_idle();
}

// What the rules give for a port that takes no time: by tick, then by track.
static std::string told_of(const midi_model::song &song, u64 until)
{
	std::map<long, std::string> ticks;
	for (const midi_model::track &t : song.tracks)
		for (const midi_model::event &e : t.events) {
			if (e.time > until || e.type >= 0 || e.data.empty() || e.data[0] < 0x80)
				continue;
			const long at = std::max(1L, static_cast<long>((e.time + 9) / 10)) * 10;
			ticks[at] += std::to_string(at) + " " + hex_text(e.data) + ", ";
		}
	std::string text;
	for (const auto &[time, messages] : ticks)
		text += messages;
	return text;
}

TEST_F(midi_player, songs_of_others_go_out_byte_by_byte_in_their_time)
{
	int played = 0;
	current_run_mode.diagnostics = false;
	for (const auto &file : files_of_others("midi")) {
		SCOPED_TRACE(file.filename().string());
		std::ifstream in(file, std::ios::binary);
		const std::vector<u8> bytes(std::istreambuf_iterator<char>(in), {});
		const auto song = midi_model::read(bytes);
		if (!song || bytes.size() > 12000)
			continue;
		load(bytes);
		play();
		pass(59.995); // what is left of running status can make a song of hours
		if (song_plays())
			stop_really_all(window_midi_files);
		const std::string text = sent(), told = told_of(*song, 59990);
		ASSERT_GE(text.size(), told.size());
		EXPECT_EQ(text.substr(0, told.size()), told);
		EXPECT_EQ(std::ranges::count(text.substr(told.size()), ','), 14); // All Notes Off
		played++;
	}
	if (!played)
		GTEST_SKIP() << "no files beside the sources";
}

// ---- A send that takes its time -------------------------------------------------------------

// 400 notes in two tracks, one every 2 ms of a wire that needs 1 ms for each: ten in a tick.
static std::vector<u8> dense_song()
{
	std::vector<u8> tracks[2];
	for (int note = 0; note < 200; note++)
		for (u8 t = 0; t < 2; t++)
			tracks[t] = tracks[t] + std::vector<u8>{ 4, static_cast<u8>(0x90 | t),
				static_cast<u8>(note % 128), 64 };
	return midi_head(2, 960) + midi_track(tracks[0]) + midi_track(tracks[1]);
}

TEST_F(midi_player, a_tick_inside_a_send_is_left_out_and_nothing_is_lost)
{
	load(dense_song());
	for (const double byte_time : { 0.00032, 0.005, 0.02 }) {
		SCOPED_TRACE(byte_time);
		out.byte_time = byte_time;
		h.forget_log();
		play();
		pass_song();
		EXPECT_EQ(h.logged("TIMER STILL BUSY!"), byte_time > 0.001);
		ASSERT_EQ(out.sent.size(), 415u);
		int next[2] = {};
		for (std::size_t i = 0; i < 400; i++) {
			const slow_port::message &m = out.sent[i];
			int &note = next[m.bytes[0] & 1];
			EXPECT_EQ(m.bytes[1], note % 128);
			const double due = began + 0.004 * ++note;
			EXPECT_GE(m.time, due - 1e-9);
			EXPECT_LE(m.time, due + 0.021 + 3 * byte_time * 400 * (byte_time > 0.001));
		}
		expect_idle();
	}
}

// Whatever the user does inside a send, nothing is touched that is gone, and nothing runs on.
TEST_F(midi_player, anything_may_be_pressed_inside_a_send)
{
	static constexpr auto stop = [] { stop_really_all(window_midi_files); };
	static constexpr auto start = [] {
		play_really_all(window_midi_files, &current_midi_file);
	};
	constexpr auto change_port = [] {
		host.ui->select(window_settings, settings_midi_out, 2);
		velmor_selection(window_settings, settings_midi_out);
	};
	// clang-format off
	static const struct {
		const char *name;
		void (*press)();
		bool plays_on;
		long sent; // then, of the song that was played
	} presses[] = {
		{ "Stop", stop, false, 3 },
		{ "unload", [] { free_midi(&current_midi_file); }, false, 3 },
		{ "another file", [] { open_midi_file(window_midi_files, current_midi_file.name); }, false, 3 },
		{ "another port", change_port, false, 3 },
		{ "Stop and Play", [] { stop(); start(); }, true, 403 },
		{ "Play again", start, true, 400 },
		{ "mute", [] { for (_midi_track &t : current_midi_file.track) t.is_mute = 1; }, true, 3 },
	};
	// clang-format on
	const std::vector<u8> song = dense_song();
	out.byte_time = 0.002;
	for (const auto &p : presses) {
		SCOPED_TRACE(p.name);
		load(song);
		bool pressed = false;
		h.on_pump = [&] {
			run_timers();
			if (!pressed && out.sent.size() == 3 && (pressed = true))
				p.press();
		};
		play();
		pass(0.3);
		EXPECT_TRUE(pressed);
		EXPECT_EQ(song_plays(), p.plays_on);
		pass_song();
		EXPECT_EQ(std::ranges::count_if(
				  out.sent, [](const auto &m) { return m.bytes[0] < 0xB0; }),
			p.sent);
		expect_idle();
	}
}

TEST_F(midi_player, stop_pressed_again_and_again_stops_once)
{
	load(dense_song());
	play();
	pass(0.05);
	out.sent.clear();
	out.byte_time = 0.001;
	int depth = 0, deepest = 0;
	h.on_pump = [&] {
		deepest = std::max(deepest, ++depth);
		stop_really_all(window_midi_files);
		depth--;
	};
	stop_really_all(window_midi_files);
	EXPECT_EQ(deepest, 1);
	EXPECT_EQ(out.sent.size(), 15u);
	expect_idle();
}

TEST_F(midi_player, a_send_held_up_by_a_box_hands_the_song_to_the_next_tick)
{
	load(dense_song());
	out.byte_time = 0.0005;
	bool held = false;
	h.on_pump = [&] {
		run_timers();
		if (out.sent.size() != 20 || held)
			return;
		held = true;
		pass(0.5); // a box is open, and its loop runs the timer
		EXPECT_GT(out.sent.size(), 150u);
	};
	play();
	pass_song();
	EXPECT_TRUE(held);
	ASSERT_EQ(out.sent.size(), 415u);
	int next[2] = {};
	for (std::size_t i = 0; i < 400; i++)
		EXPECT_EQ(out.sent[i].bytes[1], next[out.sent[i].bytes[0] & 1]++ % 128);
	expect_idle();
}

// ---- Ports that fail --------------------------------------------------------------------------

TEST_F(midi_player, a_port_that_vanishes_ends_the_song_in_words)
{
	// clang-format off
	static const struct {
		const char *name;
		void (*fail)(slow_port &);
		const char *words;
	} failures[] = {
		{ "a write fails", [](slow_port &p) { p.write_code = 19; }, "No such device" },
		{ "bytes do not leave", [](slow_port &p) { p.leaving_code = 19; }, "No such device" },
		{ "for ever", [](slow_port &p) { p.stuck = true; }, "It does not send. Is the interface still connected?" },
	};
	// clang-format on
	open_window(window_main);
	const std::pair line(+window_main, +status_outcome);
	load(dense_song());
	for (const auto &f : failures) {
		SCOPED_TRACE(f.name);
		out = {};
		h.boxes.clear();
		play();
		pass(0.1);
		EXPECT_TRUE(song_plays());
		f.fail(out);
		pass(3);
		expect_idle();
		EXPECT_EQ(h.boxes, (std::vector<shown_box>{
					   { "MIDI-PLAY midiOutLongMsg failed!", "FATAL" } }));
		EXPECT_EQ(h.texts[line],
			std::string("The song has ended. The MIDI output failed: ") + f.words);
		EXPECT_EQ(out.open, 0);
	}
	out = {}; // it is back
	play();
	pass_song();
	EXPECT_EQ(out.sent.size(), 415u);
}

TEST_F(midi_player, without_an_output_there_is_no_song)
{
	load(dense_song());
	out.open_code = 19;
	EXPECT_THROW(play(), process_ended);
	EXPECT_EQ(h.boxes, (std::vector<shown_box>{ { "Cannot open MIDI-Out Device!", "FATAL" } }));
	EXPECT_TRUE(h.timers.empty());
	EXPECT_THROW(play_track(window_midi_files, &current_midi_file, 0), process_ended);
}

// ---- The sampler on the same port ---------------------------------------------------------------

TEST_F(midi_player, a_song_and_sampler_work_do_not_meet_on_a_port)
{
	static const std::string words = "The player is using First; stop it first.";
	h.use_sampler(model_s3000, 0);
	load(dense_song());
	play();
	pass(0.05);
	out.sent.clear();
	EXPECT_EQ(read_sample_list().words, words);
	EXPECT_EQ(upload_sample("x").words, words);
	char result[100];
	int length = sizeof result;
	EXPECT_EQ(get_device_info(1, model_s900, 0, result, &length).words, words);
	u8 answer[10];
	length = sizeof answer;
	send_midi_string_ex(hex("F0 F7").data(), 2, answer, &length, 1);
	EXPECT_EQ(length, 0);
	EXPECT_EQ(the_line.why, words);
	EXPECT_EQ(sent(), "");
	h.use_sampler(model_s5000, 0, "x"); // over the USB
	EXPECT_EQ(why_way_is_taken(*get_sampler(model_s5000)), "");
	const u8 note[] = { 0x90, 60, 64 }; // one more disturbs nobody
	send_midi_string(note, sizeof note);
	EXPECT_EQ(sent(), "50 90 3C 40");
	EXPECT_THROW(velmor_command(window_main, menu_exit), process_ended);
	EXPECT_EQ(sent(), all_notes_off(50));
	expect_idle();
	EXPECT_EQ(why_way_is_taken(*get_sampler(model_s3000)), "");
}

// ---- What sounds --------------------------------------------------------------------------------

TEST_F(midi_player, a_stack_keeps_what_sounds_by_its_broad_test)
{
	// clang-format off
	static const struct { const char *event, *pitches; } steps[] = {
		{ "90 3C 40", "3C" }, { "90 3C 41", "3C 3C" }, { "91 3C 40", "3C 3C 3C" },
		{ "80 3C 00", "3C 3C" },             // the topmost of its channel, one
		{ "90 3E 40", "3C 3C 3E" }, { "90 3C 00", "3C 3E" }, // all of them
		{ "B1 07 64", "3C 3E 07" }, { "B1 07 00", "3C 3E" }, // a controller is one too
		{ "D0 3E", "3C" }, { "F1 05 06", "3C 05" }, { "C0 50", "3C 05" }, { "81 3C 40", "05" },
		{ "E1 05 00", "" }, { "40 05 06", "" },
	};
	// clang-format on
	std::string events;
	for (const auto &s : steps)
		events += (s.event[0] == 'F' ? "00 F7 03 " : "00 ") + std::string(s.event) + " ";
	load_song({ events });
	for (int i = 0; i < static_cast<int>(std::size(steps)); i++) {
		SCOPED_TRACE(steps[i].event);
		stack_midi_event(&current_midi_file, 0, i);
		std::vector<u8> pitches;
		for (int s = 0; s < track().stacks; s++)
			pitches.push_back(
				static_cast<u8>(track().stack[static_cast<std::size_t>(s)].pitch));
		EXPECT_EQ(hex_text(pitches), steps[i].pitches);
	}
	stack_midi_event(&current_midi_file, 0, 2);
	EXPECT_EQ(get_stack_string(&track(), 0), "[0] ORIG.ID: 2, CHANNEL: 2, PITCH: 60 (C3)");
	h.forget_log();
	for (int i = 0; i < 200; i++)
		stack_midi_event(&current_midi_file, 0, 0);
	stack_midi_event(&current_midi_file, 0, 5); // nor does one that lets go of them
	EXPECT_EQ(track().stacks, 128);
	EXPECT_TRUE(h.log().empty());
}

// ---- The dump, and step by step -------------------------------------------------------------------

TEST_F(midi_player, each_track_is_dumped_where_diagnostics_are_on)
{
	load_song({ "81 70 90 3C 40 00 FF 51 03 07 A1 20", "" });
	h.time.run_until(5);
	play();
	const std::string prefix = h.config + "\\midi_dumps\\song_1000000005_";
	const std::string head = "GLOBAL FOR ALL TRACKS:\nFORMAT:  1\nNTRKS:   2\nDIVISION:960 "
				 "[000003C0]\n------------------------\n";
	const auto text = [&](const char *name) {
		const auto bytes = h.content(prefix + name);
		return bytes ? std::string(bytes->begin(), bytes->end()) : "none";
	};
	EXPECT_EQ(text("0.dump"),
		head + "EVENT[    0](0xFFFFFFFF,0xFFFFFFFF) --> (  240)[       240]    3 Bytes [90 "
		       "3C 40]\n"
		       "EVENT[    1](0x0051,0x03) --> (    0)[       240]    3 Bytes [07 A1 20]\n");
	EXPECT_EQ(text("1.dump"), head);
	stop_really_all(window_midi_files);
	h.disk.open_for_writing = 28;
	h.time.run_until(6);
	play();
	pass_song(); // plays all the same
	EXPECT_EQ(h.temporary_files(), 0);
	EXPECT_EQ(out.sent.size(), 16u);
	current_run_mode.diagnostics = false;
	h.disk = {};
	h.time.run_until(20);
	play();
	EXPECT_FALSE(h.content(h.config + "\\midi_dumps\\song_1000000020_0.dump"));
	stop_really_all(window_midi_files);
}

TEST_F(midi_player, one_track_goes_step_by_step_and_pauses_into_event_16)
{
	std::string events;
	for (int i = 0; i < 20; i++)
		events += format_text("60 90 %02X 40 ", i);
	load_song({ events });
	const auto step = [&](std::size_t at, auto what) {
		out.sent.clear();
		h.on_pump = [&, at, what] {
			if (out.sent.size() == at)
				what();
		};
		play_track(window_midi_files, &current_midi_file, 0);
		return out.sent.size();
	};
	EXPECT_EQ(step(99, [] {}), 20u); // no time passes between them
	EXPECT_EQ(track().display.the_info, "Event: 19, POS: 1920");
	EXPECT_EQ(track().is_running, 0);
	EXPECT_EQ(step(3, [] { play_the_file = track_stopped; }), 3u + 15);
	EXPECT_EQ(step(3,
			  [&] {
				  play_the_file = track_paused;
				  h.on_pump = [&] {
					  play_the_file = out.sent.size() == 18 ? track_plays
										: play_the_file;
				  };
			  }),
		3u + 15 + 4);
	EXPECT_EQ(out.sent[18].bytes, hex("90 10 40"));
	// The program is closed, in the middle of it and in a pause.
	for (const int state : { track_plays, track_paused }) {
		const auto close = [&] {
			play_the_file = state;
			request_close(true);
		};
		EXPECT_LE(step(3, close), 3u + 15 + 15);
		EXPECT_EQ(track().is_running, 0);
		request_close(false);
	}
	EXPECT_EQ(step(3, [] { free_midi(&current_midi_file); }), 3u);
}

} // namespace velmor
