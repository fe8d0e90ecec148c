// test_velmorctl.cpp - the command line beside the windows: what both send, and what it tells
//
// A verb and the button that it stands for work on two machines alike, each under a host of its
// own, and what crossed the wires is compared. The button's window reads its list when it opens,
// and some buttons read it again behind their work; nothing else may differ.

#include "src/lcd.h"
#include "src/velmor_history.h"
#include "src/velmor_library.h"
#include "src/velmor_midi.h"
#include "src/velmor_window.h"
#include "tests/support/ctl_fixture.h"
#include "tests/support/fake_model.h"
#include "tests/support/midi_files.h"
#include <cstring>

using namespace velmor;

namespace
{

// What is on this computer.
void spool(studio &s, const char *name)
{
	s.h.put_content(s.h.config + "\\sample\\" + name + ".wav",
		wave_bytes(44100, 1, { 1, 2, 3, 4, 5, 6, 7, 8 }));
}

void keep_program_over_tick(studio &s)
{
	auto program = std::make_unique<_program>();
	copy_text(program->name, "LEAD");
	program->sampler_type = model_s3000;
	program->keygroups = 1;
	program->keygroup[0].keyzones = 4;
	copy_text(program->keygroup[0].keyzone[0].samplename, "Tick");
	EXPECT_TRUE(keep_program(*program).done());
	forget_local_programs();
	spool(s, "Tick");
}

void keep_song(studio &s)
{
	s.h.put_content(s.h.config + "\\song.mid",
		midi_song(96, { "00 90 3C 40 60 80 3C 40 00 FF 2F 00" }));
	s.h.chosen_files = { s.h.config + "\\song.mid" };
	s.tick();
}

// The sampler lacks what a backup of it has.
void back_up_and_lose(studio &s)
{
	(void)host.files->make_folder((s.h.config + "\\backup").c_str());
	EXPECT_EQ(ctl({ "backup", "--sampler", "Rack", "VELMOR/CONFIG/backup/Rack" }).status, 0);
	s.s3000.samples.pop_back();
	s.take();
}

void delete_with_history(studio &s)
{
	the_history = { .on = true, .long_samples = true };
	save_history_settings();
	EXPECT_EQ(ctl({ "rm", "--sampler", "Rack", "KICK", "--yes" }).status, 0);
	s.take();
}

void press_panel(const char *key)
{
	for (const _sampler_ctrl *c = get_sampler(model_s5000)->ctrl; c->name; c++)
		if (!std::strcmp(c->name, key))
			velmor_command(window_panel, c->id);
}

enum : int {
	list_too = 1,    // the verb reads the list, which the window reads when it opens
	read_behind = 2, // the button reads it again behind its work
	loads = 4,       // what both begin with
};
struct two_ways {
	int flags;
	const char *sampler;
	lines verb;
	int open;           // command of the main window
	int window, button; // 0: opening it was all
	int list = 0;       // over the entry of that name
	const char *chosen = "";
	int field = 0; // with that typed
	const char *typed = "";
	void (*prepare)(studio &) = nullptr;
	void (*instead)() = nullptr; // of the button
};
constexpr int loaded = list_too | loads, refreshing = loaded | read_behind;

// clang-format off
const two_ways ways[] = {
	{ loaded, "Rack", { "ls" }, main_samples, 0, 0 },
	{ loaded, "Rack", { "info" }, menu_midi_samplers, window_sampler, sampler_device_info },
	{ loaded, "Rack", { "info", "SNARE" }, main_samples, window_samples, samples_loaded_info, samples_loaded_list, "SNARE" },
	{ refreshing, "Rack", { "get", "SNARE" }, main_samples, window_samples, samples_download, samples_loaded_list, "SNARE" },
	{ refreshing, "Rack", { "get", "--all" }, main_samples, window_samples, samples_download_all },
	{ loaded, "Rack", { "put", "Tick" }, main_samples, window_samples, samples_upload, samples_local_list, "Tick", 0, "", [](studio &s) { spool(s, "Tick"); } },
	{ loaded, "Rack", { "rm", "KICK" }, main_samples, window_samples, samples_loaded_delete, samples_loaded_list, "KICK" },
	{ loaded, "Rack", { "mv", "KICK", "BOOM" }, main_samples, window_samples, samples_loaded_rename, samples_loaded_list, "KICK", samples_loaded_new_name, "BOOM" },
	{ loaded, "Rack", { "program", "ls" }, main_programs, 0, 0 },
	{ loaded, "Rack", { "program", "get", "BASS" }, main_programs, window_programs, programs_download, programs_loaded_list, "BASS" },
	{ loaded, "Rack", { "program", "put", "LEAD", "--yes" }, main_programs, window_programs, programs_upload, programs_local_list, "LEAD", 0, "", keep_program_over_tick },
	{ loaded, "Rack", { "program", "rm", "DRUMS" }, main_programs, window_programs, programs_loaded_delete, programs_loaded_list, "DRUMS" },
	{ loaded, "Rack", { "program", "mv", "BASS", "SUB" }, main_programs, window_programs, programs_loaded_rename, programs_loaded_list, "BASS", programs_loaded_new_name, "SUB" },
	{ 0,      "Rack", { "play", "VELMOR/CONFIG/song.mid" }, menu_midi_files, window_midi_files, player_load, 0, "", 0, "", keep_song,
		[] { velmor_command(window_midi_files, player_load), velmor_command(window_midi_files, player_play); while (song_plays()) host.ui->pump(50); } },
	{ loads,  "Rack", { "backup", "VELMOR/CONFIG/backup/Rack" }, menu_backup, window_backup, backup_begin, 0, "", 0, "", [](studio &s) { (void)host.files->make_folder((s.h.config + "\\backup").c_str()); } },
	{ loads,  "Rack", { "restore", "VELMOR/CONFIG/backup/Rack", "--yes" }, menu_backup, window_backup, backup_restore, 0, "", 0, "", back_up_and_lose },
	{ loads,  "Rack", { "undo", "--yes" }, menu_backup, window_main, status_undo_sampler, 0, "", 0, "", delete_with_history },
	{ refreshing, "Studio", { "get", "Kick 22in" }, main_samples, window_samples, samples_download, samples_loaded_list, "Kick 22in" },
	{ loaded, "Studio", { "rm", "Hat Open" }, main_samples, window_samples, samples_loaded_delete, samples_loaded_list, "Hat Open" },
	{ loaded, "Studio", { "program", "ls" }, main_programs, 0, 0 },
	{ loaded, "Studio", { "panel" }, main_lcd, 0, 0 },
	{ loads,  "Studio", { "key", "wheel>", "--times", "2" }, main_lcd, 0, 0, 0, "", 0, "", nullptr, [] { velmor_mouse(window_panel, panel_picture, 0, 0, mouse_action::wheel, 2); } },
	{ loads,  "Studio", { "key", "F3", "--type", "Go" }, main_lcd, 0, 0, 0, "", 0, "", nullptr, [] { press_panel("F3"), velmor_key(window_panel, panel_picture, 0, "Go", true); } },
};
// clang-format on

void choose(studio &s, int window, int list, const char *name)
{
	const lines &names = s.h.lists[{ window, list }];
	const auto place = std::ranges::find(names, name) - names.begin();
	host.ui->select(window, list, static_cast<int>(place));
	velmor_selection(window, list);
}

// What the button sends, as the verb should.
traffic sent_by_window(studio &s, const two_ways &way)
{
	start_velmor();
	choose(s, window_main, main_sampler_list, way.sampler);
	EXPECT_TRUE(velmor_command(window_main, main_load));
	const traffic loading = s.take();
	EXPECT_TRUE(velmor_command(window_main, way.open));
	const traffic list = s.take();
	choose(s, way.window, way.list, way.chosen);
	host.ui->set_text(way.window, way.field, way.typed);
	if (way.instead)
		way.instead();
	EXPECT_TRUE(way.instead || !way.button || velmor_command(way.window, way.button));
	s.h.time.run_until(s.h.time.now() + 1);
	traffic work = s.take();
	if (way.flags & read_behind) {
		take_end(&work.midi, list.midi);
		take_end(&work.usb, list.usb);
	}
	return (way.flags & loads ? loading : traffic()) +
	       (way.flags & list_too ? list : traffic()) + work;
}

TEST(velmorctl, a_verb_sends_what_the_window_sends)
{
	for (const two_ways &way : ways) {
		SCOPED_TRACE(testing::PrintToString(way.verb));
		traffic sent[2];
		for (const bool windows : { true, false }) {
			studio s;
			if (way.prepare)
				way.prepare(s);
			if (windows) {
				sent[1] = sent_by_window(s, way);
				continue;
			}
			const ran r = ctl(
				(way.flags & loads ? lines{ "--sampler", way.sampler } : lines()) +
				way.verb);
			EXPECT_EQ(r.status, 0) << r.words;
			sent[0] = s.take();
		}
		EXPECT_EQ(sent[0].midi, sent[1].midi);
		EXPECT_EQ(sent[0].usb, sent[1].usb);
		EXPECT_FALSE(sent[0] == traffic());
	}
}

// ---- What is told -------------------------------------------------------------------------------

struct telling {
	lines words;
	int status;
	std::string results, said; // the end of the results; what is somewhere in the words
	void (*before)(studio &) = [](studio &) {};
};

// clang-format off
const telling tellings[] = {
	{ { "samplers" }, 0, "Rack\tAkai S3000/S3000XL\tMIDI 'Cable'\n", "", [](studio &s) { std::remove((s.h.root + "/VELMOR/CONFIG/Studio.sampler").c_str()); } },
	{ { "ls" }, 0, "KICK\nSNARE\n", "", [](studio &s) { std::remove((s.h.root + "/VELMOR/CONFIG/Studio.sampler").c_str()); } },
	{ { "ls" }, 2, "", "Which sampler? Name one with --sampler:\n" },
	{ { "ls", "--sampler", "Rock" }, 2, "", "There is no sampler called 'Rock', but these:\n" },
	{ { "ls", "--sampler=Rack" }, 1, "", "No Sampler loaded/Function not supported by Sampler", [](studio &s) { s.h.put_content(s.h.config + "\\Rack.sampler", std::vector<u8>(536)); } },
	{ { "--sampler", "Rack", "get", "KICK" }, 0, "/VELMOR/CONFIG/sample/KICK.wav\n", "Downloaded 'KICK'.\n" },
	{ { "--sampler", "Rack", "get", "KICK", "--json" }, 1, "{\"name\":\"KICK\",\"ended\":\"refused\",\"words\":\"Skipped download of sample!\"}\n", "Overwrite existing sample? [no; --yes says yes]\n", [](studio &s) { spool(s, "KICK"); } },
	{ { "--sampler", "Rack", "get", "KICK", "--yes" }, 0, "KICK.wav\n", "Overwrite existing sample? [yes]\n", [](studio &s) { spool(s, "KICK"); } },
	{ { "--sampler", "Rack", "rm", "TOM", "KICK " }, 1, "", "'TOM' is not on the sampler.\nDeleted 'KICK' on the sampler.\n" },
	{ { "--sampler", "Rack", "--json", "rm", "KICK" }, 3, "its own MIDI page.\"}\n", "Nothing was sent, because the sampler's list could not be read.\n", [](studio &s) { port_wire(s.port).set_fault({ .kind = wire_fault_kind::silent, .from_then_on = true }); } },
	{ { "--sampler", "Rack", "put", "nothing.wav" }, 4, "", "[nothing.wav] is no WAV file" },
	{ { "--sampler", "Rack", "panel" }, 1, "", "The screen of Akai S3000/S3000XL cannot be seen from here." },
	{ { "--sampler", "Rack", "mv", "KICK", "BOOM", "--local" }, 0, "", "'KICK' on this computer is now 'BOOM'.", [](studio &s) { spool(s, "KICK"); } },
	{ { "--sampler", "Studio", "key", "F99" }, 2, "", "There is no key 'F99' on this sampler" },
	{ { "--sampler", "Studio", "ls" }, 3, "", "Could not find USB-Interface for [Demo S5000]", [](studio &s) { unplug_usb(s.usb); } },
	{ { "play", "song.mid", "--speed", "299" }, 2, "", "--speed takes a number from 300 to 1800." },
	{ { "play", "no.mid" }, 4, "", "File cannot be opened" },
	{ { "--tcp", "here", "ls" }, 2, "", "--tcp takes ADDRESS:PORT." },
	{ { "--tcp", "127.0.0.1:9", "ls" }, 3, "", "Nothing answers at 127.0.0.1:9." },
	{ { "monitor", "--seconds", "2" }, 0, "Channel: 1 NOTE ON (60 (C3)) Velocity: 64\n", "", [](studio &s) { s.tick(), s.h.time.after(1.5, [&s] { port_wire(s.port).play({ 0x90, 60, 64 }); }); } },
	{ { "monitor" }, 130, "", "", [](studio &s) { s.tick(), s.h.time.after(2, [] { request_close(true); }); } },
	{ { "monitor" }, 3, "", "o", [](studio &s) { s.h.settings["midi_in_mon"] = "-1"; } },
	{ { "ls", "--all" }, 2, "", "--all: there is no such option of 'ls'." },
	{ { "program", "rm" }, 2, "", "An argument is missing: velmorctl program rm PROGRAM...." },
	{ { "import", "--bits", "13", "a.wav" }, 2, "", "--bits takes one of these: 12|16|24." },
	{ { "selftest" }, 3, "16 bytes\tsilence\tbyte 0: nothing, not F0\t\t0.01 s\n64 bytes\tsilence\tbyte 0: nothing, not F0\t\t0.02 s\n", "Nothing comes back." },
	{ { "selftest", "--answers", "--sampler", "Rack" }, 0, "", "All 7 messages passed, up to 65536 bytes." },
	{ { "selftest", "--answers" }, 2, "", "Which sampler?" },
	{ { "selftest", "--forget" }, 1, "", "Nothing is kept for this interface." },
	{ { "replay", "no.txt" }, 4, "", "The transcript cannot be read: " },
	{ { "import", "a.wav" }, 4, "", "Conversion failed! [a.wav] (1/1)" },
};
// clang-format on

TEST(velmorctl, results_words_and_statuses_say_how_it_ended)
{
	for (const telling &t : tellings) {
		SCOPED_TRACE(testing::PrintToString(t.words));
		studio s;
		t.before(s);
		const ran r = ctl(t.words);
		EXPECT_EQ(r.status, t.status) << r.words;
		EXPECT_TRUE(r.results.ends_with(t.results)) << r.results;
		EXPECT_NE(r.words.find(t.said), r.words.npos) << r.words;
	}
}

TEST(velmorctl, what_is_there_stays_and_the_others_are_fetched)
{
	studio s;
	spool(s, "KICK");
	const auto kept = s.h.content(s.h.config + "\\sample\\KICK.wav");
	const ran r = ctl({ "--json", "get", "--all", "--sampler", "Rack" });
	EXPECT_EQ(r.status, 0) << r.words;
	EXPECT_EQ(r.results, "{\"name\":\"KICK\",\"ended\":\"skipped\"}\n"
			     "{\"name\":\"SNARE\",\"ended\":\"done\",\"path\":\"" +
				     s.h.root + "/VELMOR/CONFIG/sample/SNARE.wav\"}\n");
	EXPECT_EQ(s.h.content(s.h.config + "\\sample\\KICK.wav"), kept);
	EXPECT_EQ(current_sampler->status->sample[1].sample_data, nullptr) << "it is in the file";
}

TEST(velmorctl, ctrl_c_ends_at_the_next_safe_point_and_the_wire_is_drained)
{
	studio s(20000);
	s.h.on_pump = [&] {
		if (s.h.time.now() > 4)
			request_close(true);
	};
	const ran r = ctl({ "get", "--all", "--sampler", "Rack" });
	EXPECT_EQ(r.status, exit_stopped) << r.words;
	EXPECT_LT(s.h.time.now(), 7);
	EXPECT_EQ(s.h.temporary_files(), 0);
	EXPECT_EQ(the_outHandle, -1);
	EXPECT_EQ(port_wire(s.port).leaving(), 0u);
}

TEST(velmorctl, a_recording_is_sent_again_and_the_first_other_byte_told)
{
	studio s;
	const lines record = { "--sampler", "Rack", "ls", "--record", "VELMOR/fault.txt" };
	const ran r = ctl(record);
	EXPECT_EQ(r.status, 0);
	EXPECT_EQ(r.results, "KICK\nSNARE\n");
	EXPECT_NE(r.words.find("The transcript is "), r.words.npos) << r.words;
	const ran again = ctl(record);
	EXPECT_EQ(again.status, 4) << "it is there already";
	EXPECT_EQ(again.results, "");
	s.take();
	lines replay = { "replay", "VELMOR/fault.txt" };
	EXPECT_EQ(ctl(replay).status, 1) << "nobody said yes";
	EXPECT_EQ(s.take(), traffic());
	replay.push_back("--yes");
	const ran same = ctl(replay);
	EXPECT_EQ(same.status, 0) << same.words;
	EXPECT_NE(same.words.find("answers are what they were."), same.words.npos);
	s.s3000.add_sample("TOM", 44100, { 1, 2, 3 });
	const ran other = ctl(replay);
	EXPECT_EQ(other.status, 1) << other.words << other.results;
	EXPECT_NE(other.results.find("was 02 and is 03.\n"), other.results.npos) << other.results;
	replay.push_back("--json");
	EXPECT_NE(ctl(replay).results.find(",\"at\":5,\"was\":2,\"is\":3}\n"), std::string::npos);
}

TEST(velmorctl, the_pace_of_an_interface_is_kept_when_it_is_told_to)
{
	studio s;
	unplug_all_midi();
	port_wire(plug_midi(s.h.time, loop_cable(), "Loop")).set_interface({ .room = 1024 });
	const ran r = ctl({ "selftest", "--json" });
	EXPECT_EQ(r.status, 0) << r.words;
	EXPECT_NE(r.results.find("{\"sent\":4096,\"came\":1024,\"result\":\"loss\",\"at\":1024,"),
		r.results.npos)
		<< r.results;
	EXPECT_FALSE(s.h.settings.contains("midi_run Loop"));
	EXPECT_EQ(ctl({ "selftest", "--keep" }).status, 0);
	EXPECT_TRUE(s.h.settings["midi_run Loop"].starts_with("1024 "));
	EXPECT_EQ(ctl({ "selftest", "--forget" }).status, 0);
	EXPECT_EQ(s.h.settings["midi_run Loop"], "0 0");
}

TEST(velmorctl, names_of_any_bytes_make_no_broken_line)
{
	studio s;
	s.usb.samples[0].name = "a\"\\\x1B[2J\xFFz";
	s.usb.samples[1].name = "\xC3\xA9t\xC3\xA9";
	s.usb.samples[2].name = "cut\xC3";
	const lines ls = { "--sampler", "Studio", "ls" };
	EXPECT_TRUE(ctl(ls + lines{ "--json" })
			    .results.starts_with(
				    "{\"name\":\"a\\\"\\\\\\u001b[2J\\u00ffz\"}\n{"
				    "\"name\":\"\xC3\xA9t\xC3\xA9\"}\n{\"name\":\"cut\\u00c3\"}"));
	EXPECT_TRUE(ctl(ls).results.starts_with("a\"\\?[2J\xFFz\n\xC3\xA9t\xC3\xA9\n"));
}

TEST(velmorctl, a_picture_is_a_png_file_bit_by_bit)
{
	const std::vector<u8> bits = { 0x80, 0x40, 0xFF, 0xC0 };
	EXPECT_EQ(png_of({ bits, 10, 2 }, 0xF0E1D2),
		hex("89 50 4E 47 0D 0A 1A 0A 00 00 00 0D 49 48 44 52 00 00 00 0A 00 00 00 02 01 03 "
		    "00 00 00 5B AF DF 93 00 00 00 06 50 4C 54 45 F0 E1 D2 00 00 00 29 1C 3F AB 00 "
		    "00 00 11 49 44 41 54 78 01 01 06 00 F9 FF 00 80 40 00 FF C0 06 44 02 80 10 31 "
		    "03 09 00 00 00 00 49 45 4E 44 AE 42 60 82 "));
	studio s;
	const ran r = ctl({ "panel", "--sampler", "Studio", "--png", "screen.png", "--json" });
	EXPECT_EQ(r.results, "{\"width\":320,\"height\":240,\"path\":\"screen.png\"}\n") << r.words;
	const ran shown = ctl({ "panel", "--sampler", "Studio", "--json" });
	std::string rows;
	for (std::size_t at = shown.results.find("\"rows\":[") + 8, i = 0; i < 240; i++, at += 83)
		rows += "00" + shown.results.substr(at + 1, 80);
	std::string file = hex_text(s.h.content("screen.png").value_or(std::vector<u8>()));
	std::erase(file, ' ');
	EXPECT_NE(file.find(rows), file.npos) << "pixels of the file";
	EXPECT_NE(rows.find("FFFF"), rows.npos) << "nothing is drawn";
	// Dots 1, 2, 3 and 7 of Braille stand on the left, 4, 5, 6 and 8 on the right.
	const std::string drawn = ctl({ "panel", "--sampler", "Studio" }).results;
	for (std::size_t y = 0; y < 240; y++)
		for (std::size_t x = 0; x < 320; x++) {
			const std::size_t at = y / 4 * (160 * 3 + 1) + x / 2 * 3;
			const int set = (drawn[at + 1] & 3) << 6 | (drawn[at + 2] & 0x3F);
			const int dot = y % 4 == 3 ? 6 + x % 2 : y % 4 + x % 2 * 3;
			const int digit =
				std::stoi(rows.substr(y * 82 + 2 + x / 4, 1), nullptr, 16);
			ASSERT_EQ(set >> dot & 1, digit >> (3 - x % 4) & 1) << x << " " << y;
		}
}

} // namespace
