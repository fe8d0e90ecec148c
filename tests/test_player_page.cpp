// test_player_page.cpp - the player's page: loading, frames, strips, mute, channels, speed, unload

#include "src/velmor_midi.h"
#include "src/velmor_player.h"
#include "src/velmor_window.h"
#include "tests/support/midi_files.h"
#include "virtual/midi_ports.h"

using namespace velmor;

namespace
{

class player_page : public host_test
{
protected:
	player_page()
	{
		const auto deaf = [](machine::byte_view) { return machine::bytes(); };
		plug_midi(h.time,
			{ .answer = deaf,
				.refuse = deaf,
				.wait = deaf,
				.played =
					[this](machine::byte_view bytes) {
						heard.insert(
							heard.end(), bytes.begin(), bytes.end());
					} },
			"Synth", no_wire_delay);
		host.midi = &virtual_midi;
		selected_midi_out_interface = 0;
		reload_midi_setup(false);
		velmor_command(window_main, menu_midi_files);
	}
	~player_page() override
	{
		forget_midi_player();
		close_midi_output();
		unplug_all_midi();
	}

	// Two tracks on a grid of one tick a unit: notes 60 and 64 with a controller, and a bass
	// whose last note does not end.
	void load()
	{
		const std::string first =
			"00 FF 03 05 50 69 61 6E 6F  00 90 3C 40  81 48 90 40 50  00 B0 07 64 "
			"81 48 80 3C 20  00 90 40 00  81 48 80 01 00  00 C0 05  00 F0 02 41 F7";
		h.put_content(h.root + "/waltz.mid", midi_song(960, { first, "64 91 24 7F" }));
		h.chosen_files = { h.root + "\\waltz.mid" };
		EXPECT_TRUE(velmor_command(window_midi_files, player_load));
		for (const int track : { 0, 1 })
			bring_in(track);
	}
	void bring_in(int track, bool in = true)
	{
		velmor_track(window_midi_files, player_tracks,
			in ? track_event::in_view : track_event::out_of_view, track, 0);
	}
	bool in_frame(int track, track_event event, int value = 0)
	{
		return velmor_track(window_midi_files, player_tracks, event, track, value);
	}
	void ticks(double seconds)
	{
		const double end = h.time.now() + seconds;
		while (h.time.now() < end - 1e-9) {
			h.time.run_until(h.time.now() + 0.01);
			for (const auto &[id, timer] : std::map(h.timers))
				timer.tick();
		}
	}
	std::string text(int control) { return h.texts[{ window_midi_files, control }]; }
	bool works(int control) { return h.enabled[{ window_midi_files, control }]; }

	std::vector<u8> heard;
};

using texts = std::vector<std::string>;

} // namespace

TEST_F(player_page, only_what_can_be_done_can_be_pressed)
{
	EXPECT_TRUE((h.visible[{ window_midi_files, 0 }]));
	EXPECT_FALSE(works(player_play) || works(player_stop) || works(player_unload));
	EXPECT_EQ(text(player_file), "No file is loaded");
	velmor_command(window_midi_files, player_load);
	EXPECT_EQ(h.boxes.back(), (shown_box{ "No file(s) selected!", "ERROR" }));
	h.put_content(h.root + "/no.mid", hex("4D 54 68 64 00"));
	const texts dropped = { h.root + "\\no.mid" };
	EXPECT_TRUE(velmor_drop(window_midi_files, player_tracks, dropped));
	EXPECT_EQ(h.boxes.back(),
		(shown_box{ "File cannot be opened (invalid midi-file?)", "ERROR" }));
	EXPECT_EQ(text(status_outcome), "'no.mid' was not loaded.");
	load();
	EXPECT_EQ(text(status_outcome), "Loaded 'waltz.mid'.");
	EXPECT_TRUE(works(player_play) && works(player_unload));
	EXPECT_EQ(text(player_file), "waltz.mid · 2 tracks · 0:00.6 at this speed · to 'Synth'");
	velmor_command(window_midi_files, player_play);
	EXPECT_TRUE(works(player_stop));
	EXPECT_FALSE(works(player_play));
	EXPECT_EQ(text(status_outcome), "Playing 'waltz.mid'.");
	const std::size_t boxes = h.boxes.size();
	velmor_command(window_midi_files, player_play); // a second press
	ticks(0.05);
	EXPECT_EQ(heard, hex("90 3C 40"));
	velmor_drop(window_midi_files, player_tracks, dropped); // another file stops the song
	EXPECT_FALSE(song_plays());
	EXPECT_EQ(h.boxes.size(), boxes + 1);
	EXPECT_EQ(h.track_count, 0);
	EXPECT_FALSE(works(player_play) || works(player_stop));
	load();
	velmor_command(window_midi_files, player_play);
	velmor_command(window_midi_files, player_stop);
	EXPECT_EQ(text(status_outcome), "Stopped 'waltz.mid'.");
	velmor_command(window_midi_files, player_play);
	ticks(0.7);
	EXPECT_EQ(text(status_outcome), "The song has been played to its end.");
	EXPECT_TRUE(works(player_play));
	EXPECT_EQ((h.reasons[{ window_midi_files, player_stop }]), "Nothing plays");
}

TEST_F(player_page, a_frame_says_what_its_track_does)
{
	load();
	EXPECT_EQ(h.track_count, 2);
	const track_view &frame = h.tracks[0];
	EXPECT_EQ(frame.title, "TRACK: 0");
	EXPECT_EQ(frame.name, "(TRACKNAME)");
	EXPECT_EQ(frame.state, "0 STOPPED [0]");
	EXPECT_EQ(frame.colour, track_colour::stopped);
	EXPECT_EQ(frame.forced_channel, 16);
	EXPECT_EQ(frame.channels.size(), 17u);
	EXPECT_EQ(frame.channels[15] + frame.channels[16], "16none");
	EXPECT_EQ(frame.volume, 127);
	// The name is a meta event; controllers and Note Off with 0x9n read as notes.
	EXPECT_EQ(frame.events,
		(texts{ "", "ON [C3] (64)", "ON [E3] (80)", "ON [G-2] (100)", "OFF [C3] (32)",
			"ON [E3] (0)", "OFF [C#-2] (0)", "OFF [F-2] (0)" }));
	velmor_command(window_midi_files, player_play);
	ticks(0.25);
	EXPECT_EQ(frame.name, "Piano");
	EXPECT_EQ(frame.state, "0 PLAY [200]");
	EXPECT_EQ(frame.colour, track_colour::running);
	EXPECT_EQ(frame.events[0], "ON [G-2] (100)");
	EXPECT_EQ(frame.sounding, (texts{ "C3", "E3", "G-2" }));
	EXPECT_EQ(text(player_sounding), "Piano C3 · Piano E3 · 1 C1");
	EXPECT_EQ(text(player_clock), "0:00.2");
	EXPECT_EQ(h.play_position, (std::pair<std::int64_t, int>{ 250, 1000 }));
	EXPECT_TRUE(h.logged("[D] Changing Color to: 1, TRACK: 0"));
	EXPECT_EQ(h.tracks[1].state, "1 STOPPED [0]");
	in_frame(0, track_event::sounding);
	EXPECT_TRUE(h.logged("[I] [1] ORIG.ID: 2, CHANNEL: 1, PITCH: 64 (E3)"));
	ticks(0.6);
	EXPECT_EQ(frame.state, "0 STOPPED [0]");
	EXPECT_EQ(h.play_position.first, -1);
	EXPECT_EQ(text(player_clock) + text(player_sounding), "");
}

TEST_F(player_page, mute_and_channel_are_told_and_heard)
{
	load();
	EXPECT_TRUE(in_frame(1, track_event::channel, 9));
	EXPECT_TRUE(h.logged("[I] Track: 1 --> CHANNEL: 9"));
	EXPECT_TRUE(in_frame(0, track_event::mute));
	EXPECT_TRUE(h.logged("[D] MUTE_BUTTON FOR TRACK 0 PRESSED!"));
	EXPECT_TRUE(h.logged("[D] Changing Color to: 2, TRACK: 0"));
	EXPECT_TRUE(h.tracks[0].muted);
	EXPECT_EQ(h.tracks[0].colour, track_colour::muted);
	velmor_command(window_midi_files, player_play);
	ticks(0.15);
	ASSERT_GE(heard.size(), 6u);
	EXPECT_EQ(std::vector<u8>(heard.begin(), heard.begin() + 6), hex("99 24 7F B0 7B 00"))
		<< "its end is the end of the song";
	in_frame(1, track_event::channel, 16);
	EXPECT_EQ(current_midi_file.track[1].forced_channel, 16);
	in_frame(1, track_event::channel, 40);
	EXPECT_EQ(current_midi_file.track[1].forced_channel, 16);
	in_frame(0, track_event::mute);
	EXPECT_FALSE(h.tracks[0].muted);
	EXPECT_FALSE(in_frame(2, track_event::mute) && current_midi_file.track.size() > 2);
	EXPECT_TRUE(in_frame(30, track_event::scroll, 65));
	EXPECT_TRUE(h.logged("[D] SCROLLBAR-POSITION-NOW: 30, REQUESTED: 65, AMOUNT: 35"));
}

TEST_F(player_page, strips_hold_the_notes_and_frames_out_of_view_are_left_alone)
{
	load();
	const auto &notes = h.strips[0];
	ASSERT_EQ(notes.size(), 2u);
	EXPECT_EQ(notes[0].start, 0u);
	EXPECT_EQ(notes[0].end, 400u);
	EXPECT_EQ(notes[0].pitch, 60);
	EXPECT_EQ(notes[1].start, 200u);
	EXPECT_EQ(notes[1].end, 400u) << "velocity 0 ends it";
	ASSERT_EQ(h.strips[1].size(), 1u);
	EXPECT_EQ(h.strips[1][0].end, 100u) << "ends with its track";
	bring_in(0, false);
	const std::string before = h.tracks[0].state;
	velmor_command(window_midi_files, player_play);
	ticks(0.05);
	EXPECT_EQ(h.tracks[0].state, before);
	bring_in(0);
	EXPECT_EQ(h.tracks[0].state, "0 PLAY [50]");
	bring_in(77);
	EXPECT_FALSE(h.tracks.contains(77));
}

TEST_F(player_page, the_speed_is_what_bar_and_field_say)
{
	load();
	const auto &bar = h.forms.at({ window_midi_files, player_speed_form }).at(0);
	EXPECT_EQ(bar.label, "Playback Speed");
	EXPECT_EQ(bar.low, 300);
	EXPECT_EQ(bar.high, 1800);
	const auto change = [](form_event event, int value) {
		velmor_form(window_midi_files, player_speed_form, 0, event, value);
	};
	change(form_event::drag, 500);
	EXPECT_EQ(speed_factor, 500);
	EXPECT_EQ(bar.text, "500");
	EXPECT_TRUE(text(player_file).find("0:01.2 at this speed") != std::string::npos);
	EXPECT_EQ(song_time(500'000'000'000'000'000), "16666666666666:40.0") << "a file may say so";
	for (const int typed : { 299, 1801, 0 }) {
		change(form_event::edit, typed);
		EXPECT_EQ(speed_factor, 500);
		EXPECT_EQ(bar.value, 1000) << "nothing moves";
	}
	for (const int typed : { 300, 1800 }) {
		change(form_event::edit, typed);
		EXPECT_EQ(speed_factor, typed);
		EXPECT_EQ(bar.value, typed);
	}
}

// Nothing but commands: no button is made for it.
TEST_F(player_page, the_step_mode_is_ready)
{
	load();
	in_frame(1, track_event::sounding); // uses track 1
	velmor_command(window_midi_files, 9113);
	EXPECT_EQ(heard, hex("91 24 7F"));
	velmor_command(window_midi_files, 9112);
	EXPECT_EQ(play_the_file, track_paused);
	velmor_command(window_midi_files, 9112);
	EXPECT_EQ(play_the_file, track_plays);
	velmor_command(window_midi_files, 9114);
	EXPECT_EQ(play_the_file, track_stopped);
	expect_logged({ "[D] PAUSING THE FILE...", "[D] CONTINUING THE FILE..." });
}

TEST_F(player_page, unloading_and_closing_end_the_song)
{
	load();
	velmor_command(window_midi_files, player_play);
	ticks(0.05);
	const double began = h.time.now();
	h.on_pump = [this] { EXPECT_FALSE(velmor_command(window_midi_files, player_load)); };
	EXPECT_TRUE(velmor_command(window_midi_files, player_unload));
	h.on_pump = nullptr;
	EXPECT_NEAR(h.time.now() - began, 1, 0.05);
	EXPECT_EQ(std::vector<u8>(heard.begin() + 3, heard.begin() + 6), hex("B0 7B 00"));
	EXPECT_TRUE(h.timers.empty());
	EXPECT_EQ(h.track_count, 0);
	EXPECT_EQ(have_midi_file, 0);
	EXPECT_EQ(text(0), "Midi-Files");
	EXPECT_FALSE(in_frame(0, track_event::mute) && have_midi_file);
	load();
	velmor_command(window_midi_files, player_play);
	velmor_command(window_midi_files, control_cancel);
	EXPECT_FALSE(song_plays());
	EXPECT_FALSE((h.visible[{ window_midi_files, 0 }]));
	velmor_command(window_midi_files, player_play);
	ASSERT_TRUE(song_plays());
	EXPECT_THROW(velmor_command(window_main, menu_exit), process_ended);
	EXPECT_FALSE(song_plays());
}
