// test_velmorctl.cpp - the command line beside the windows: what both send, and what it tells
//
// A verb and the button that it stands for work on two machines alike, each under a host of its
// own, and what crossed the wires is compared. The button's window reads its list when it opens,
// and some buttons read it again behind their work; nothing else may differ.

#include "programs/ctl.h"
#include "src/lcd.h"
#include "src/usbqx.h"
#include "src/velmor_library.h"
#include "src/velmor_midi.h"
#include "src/velmor_window.h"
#include "src/waveqx.h"
#include "tests/support/fake_model.h"
#include "tests/support/midi_files.h"
#include "virtual/demo_content.h"
#include "virtual/demo_usb.h"
#include "virtual/midi_ports.h"
#include "virtual/usb_bus.h"
#include <cstring>
#include <fstream>
#include <regex>
#include <sstream>

using namespace velmor;

namespace
{

using lines = std::vector<std::string>;

lines operator+(lines a, const lines &b)
{
	a.insert(a.end(), b.begin(), b.end());
	return a;
}

// What crossed each wire, both ways.
struct traffic {
	lines midi, usb;
	bool operator==(const traffic &) const = default;
	traffic operator+(const traffic &b) const { return { midi + b.midi, usb + b.usb }; }
};

// Take what stands at the end off it.
void take_end(lines *all, const lines &end)
{
	ASSERT_TRUE(
		all->size() >= end.size() && std::equal(end.rbegin(), end.rend(), all->rbegin()));
	all->resize(all->size() - end.size());
}

// A host with an S3000 on its MIDI cable and an S5000 on its USB, both configured.
struct studio {
	test_host h;
	s1000_machine s3000{ s1000_model::s3000, 0 };
	s5000 usb;
	lines crossed; // MIDI, both ways
	bool ticking = false;
	int port;

	explicit studio(std::size_t words = 300)
	{
		for (const char *name : { "KICK", "SNARE" })
			s3000.add_sample(name, 44100, std::vector<std::int16_t>(words, 1000));
		for (const char *name : { "DRUMS", "BASS" })
			s3000.add_program(name, 2);
		fill_demo(usb);
		usb.record = true;
		midi_machine wire = s3000.on_wire();
		wire.answer = [this](machine::byte_view message) {
			const machine::bytes answer = s3000.answer(message);
			crossed.push_back("> " + hex_text(message));
			crossed.push_back("< " + hex_text(answer));
			return answer;
		};
		wire.played = [this](machine::byte_view notes) {
			crossed.push_back("played " + hex_text(notes));
		};
		host.midi = &virtual_midi;
		host.usb = &virtual_usb;
		port = plug_midi(h.time, std::move(wire), "Cable");
		plug_usb(h.time, usb);
		h.settings = { { "midi_in", "0" }, { "midi_out", "0" }, { "midi_in_mon", "0" } };
		configure("Rack", model_s3000, "");
		configure("Studio", model_s5000, "Demo S5000");
		h.time.run_until(1); // whatever a plug brings
	}
	~studio()
	{
		close_midi_output();
		unplug_all_midi();
		unplug_all_usb();
		forget_unread_usb();
	}
	void configure(const char *name, i32 model, const char *usb_name)
	{
		_sampler s = {};
		copy_text(s.sampler_description, name);
		copy_text(s.sampler_usbname, usb_name);
		s.sampler_type = static_cast<u32>(model);
		s.sampler_sysex = s.sampler_midi = 1;
		h.put_content(h.config + "\\" + name + ".sampler",
			{ reinterpret_cast<const u8 *>(&s), sizeof s });
	}
	// What crossed the wires since the last call.
	traffic take()
	{
		traffic all = { std::exchange(crossed, {}), {} };
		for (const usb_crossing &c : std::exchange(usb.recorded, {}))
			all.usb.push_back((c.from_host ? "> " : "< ") + hex_text(c.bytes));
		return all;
	}
	// Timers tick with every pump.
	void tick()
	{
		h.on_pump = [this] {
			if (std::exchange(ticking, true))
				return;
			for (const auto timers = h.timers; const auto &[id, timer] : timers)
				if (h.timers.contains(id))
					timer.tick();
			ticking = false;
		};
	}
};

struct ran {
	int status;
	std::string results, words;
};

ran ctl(const lines &words)
{
	ctl_call call;
	ran r = { exit_usage, "", read_ctl(words, &call) };
	if (!r.words.empty())
		return r;
	char *text[2];
	std::size_t sizes[2];
	std::FILE *streams[2];
	for (int i = 0; i < 2; i++)
		streams[i] = open_memstream(&text[i], &sizes[i]);
	r.status = run_ctl(call, { .results = streams[0], .words = streams[1] });
	for (int i = 0; i < 2; i++) {
		std::fclose(streams[i]);
		(i ? r.words : r.results) = text[i];
		std::free(text[i]);
	}
	return r;
}

void press(int window, int control)
{
	EXPECT_TRUE(velmor_command(window, control));
}

void choose(int window, int list, int place)
{
	host.ui->select(window, list, place);
	velmor_selection(window, list);
}

void choose_name(int window, int list, const char *name)
{
	const lines &names = the_test_host->lists[{ window, list }];
	choose(window, list, static_cast<int>(std::ranges::find(names, name) - names.begin()));
}

// A button of the sample or program window, over the entry of that name.
template <int window, int list, int button> void press_over(const char *name)
{
	choose_name(window, list, name);
	press(window, button);
}
constexpr auto on_sample = press_over<window_samples, samples_loaded_list, samples_download>;

void type(int window, int control, const char *text)
{
	host.ui->set_text(window, control, text);
}

void open_samples()
{
	press(window_main, main_samples);
}

void open_programs()
{
	press(window_main, main_programs);
}

void nothing() {}

void spool(studio &s, const std::string &name)
{
	s.h.put_content(s.h.config + "\\sample\\" + name + ".wav",
		wave_bytes(44100, 1, { 1, 2, 3, 4, 5, 6, 7, 8 }));
}

void spool_tick(studio &s)
{
	spool(s, "Tick");
}

void spool_kick(studio &s)
{
	spool(s, "KICK");
}

// A program of this computer, as the sampler had it.
void keep_bass(studio &s)
{
	auto program = std::make_unique<_program>();
	copy_text(program->name, "LEAD");
	program->sampler_type = model_s3000;
	program->keygroups = 1;
	program->keygroup[0].keyzones = 4;
	copy_text(program->keygroup[0].keyzone[0].samplename, "Tick");
	EXPECT_TRUE(keep_program(*program).done());
	forget_local_programs();
	spool_tick(s);
}

void save_song(studio &s)
{
	s.h.put_content(s.h.config + "\\song.mid",
		midi_song(96, { "00 90 3C 40 60 80 3C 40 00 FF 2F 00" }));
	s.h.chosen_files = { s.h.config + "\\song.mid" };
	s.tick();
}

struct pair_of_ways {
	const char *sampler;
	lines verb;
	void (*open)();         // the window, which reads its list
	void (*press)();        // what the verb stands for
	bool opens = true;      // the verb reads that list too
	bool refreshes = false; // the button reads it again
	void (*prepare)(studio &) = [](studio &) {};
};

// clang-format off
const pair_of_ways ways[] = {
	{ "Rack",   { "ls" }, open_samples, nothing },
	{ "Rack",   { "info" }, [] { press(window_main, menu_midi_samplers); },
		[] { press(window_sampler, sampler_device_info); } },
	{ "Rack",   { "info", "SNARE" }, open_samples, [] { press_over<window_samples, samples_loaded_list, samples_loaded_info>("SNARE"); } },
	{ "Rack",   { "get", "SNARE" }, open_samples, [] { on_sample("SNARE"); }, true, true },
	{ "Rack",   { "get", "--all" }, open_samples, [] { press(window_samples, samples_download_all); }, true, true },
	{ "Rack",   { "put", "Tick" }, open_samples, [] { press_over<window_samples, samples_local_list, samples_upload>("Tick"); }, true, false, spool_tick },
	{ "Rack",   { "rm", "KICK" }, open_samples, [] { press_over<window_samples, samples_loaded_list, samples_loaded_delete>("KICK"); } },
	{ "Rack",   { "mv", "KICK", "BOOM" }, open_samples, [] { type(window_samples, samples_loaded_new_name, "BOOM"); press_over<window_samples, samples_loaded_list, samples_loaded_rename>("KICK"); } },
	{ "Rack",   { "program", "ls" }, open_programs, nothing },
	{ "Rack",   { "program", "get", "BASS" }, open_programs, [] { press_over<window_programs, programs_loaded_list, programs_download>("BASS"); } },
	{ "Rack",   { "program", "put", "LEAD", "--yes" }, open_programs, [] { press_over<window_programs, programs_local_list, programs_upload>("LEAD"); }, true, false, keep_bass },
	{ "Rack",   { "program", "rm", "DRUMS" }, open_programs, [] { press_over<window_programs, programs_loaded_list, programs_loaded_delete>("DRUMS"); } },
	{ "Rack",   { "program", "mv", "BASS", "SUB" }, open_programs, [] { type(window_programs, programs_loaded_new_name, "SUB"); press_over<window_programs, programs_loaded_list, programs_loaded_rename>("BASS"); } },
	{ nullptr,  { "play", "VELMOR/CONFIG/song.mid" }, nothing, [] { press(window_midi_files, player_load); press(window_midi_files, player_play); while (song_plays()) host.ui->pump(50); }, false, false, save_song },
	{ "Studio", { "get", "Kick 22in" }, open_samples, [] { on_sample("Kick 22in"); }, true, true },
	{ "Studio", { "rm", "Hat Open" }, open_samples, [] { press_over<window_samples, samples_loaded_list, samples_loaded_delete>("Hat Open"); } },
	{ "Studio", { "program", "ls" }, open_programs, nothing },
	{ "Studio", { "panel" }, nothing, [] { press(window_main, main_lcd); } },
	{ "Studio", { "key", "wheel>", "--times", "2" }, [] { press(window_main, main_lcd); }, [] { velmor_mouse(window_panel, panel_picture, 0, 0, mouse_action::wheel, 2); }, false },
	{ "Studio", { "key", "F3", "--type", "Go" }, [] { press(window_main, main_lcd); }, [] {
		for (const _sampler_ctrl *c = get_sampler(model_s5000)->ctrl; c->name; c++)
			if (!std::strcmp(c->name, "F3"))
				press(window_panel, c->id);
		velmor_key(window_panel, panel_picture, 0, "Go", true); }, false },
};
// clang-format on

// What the button sends, as the verb should.
traffic sent_by_window(const pair_of_ways &way)
{
	studio s;
	way.prepare(s);
	start_velmor();
	if (way.sampler) {
		choose_name(window_main, main_sampler_list, way.sampler);
		press(window_main, main_load);
	}
	const traffic loading = s.take();
	way.open();
	const traffic list = s.take();
	way.press();
	s.h.time.run_until(s.h.time.now() + 1);
	traffic work = s.take();
	if (way.refreshes) {
		take_end(&work.midi, list.midi);
		take_end(&work.usb, list.usb);
	}
	return loading + (way.opens ? list : traffic()) + work;
}

TEST(velmorctl, a_verb_sends_what_the_window_sends)
{
	for (const pair_of_ways &way : ways) {
		SCOPED_TRACE(testing::PrintToString(way.verb));
		const traffic expected = sent_by_window(way);
		studio s;
		way.prepare(s);
		const ran r =
			ctl((way.sampler ? lines{ "--sampler", way.sampler } : lines()) + way.verb);
		EXPECT_EQ(r.status, 0) << r.words;
		const traffic sent = s.take();
		EXPECT_EQ(sent.midi, expected.midi);
		EXPECT_EQ(sent.usb, expected.usb);
		EXPECT_FALSE(sent.midi.empty() && sent.usb.empty());
	}
}

// ---- What is told -------------------------------------------------------------------------------

struct telling {
	lines words;
	int status;
	std::string results, said; // the end of the results; what is somewhere in the words
	void (*before)(studio &) = [](studio &) {};
};

void fall_silent(studio &s)
{
	port_wire(s.port).set_fault({ .kind = wire_fault_kind::silent, .from_then_on = true });
}

void pull_plug(studio &s)
{
	unplug_usb(s.usb);
}

void leave_one(studio &s)
{
	std::remove((s.h.root + "/VELMOR/CONFIG/Studio.sampler").c_str());
}

void cut_configuration(studio &s)
{
	s.h.put_content(s.h.config + "\\Rack.sampler", std::vector<u8>(536));
}

void press_a_key(studio &s)
{
	s.tick();
	s.h.time.after(1.5, [&s] { port_wire(s.port).play({ 0x90, 60, 64 }); });
}

void choose_no_input(studio &s)
{
	s.h.settings["midi_in_mon"] = "-1";
}

// clang-format off
const telling tellings[] = {
	{ { "samplers" }, 0, "Rack\tAkai S3000/S3000XL\tMIDI 'Cable'\n", "", leave_one },
	{ { "ls" }, 0, "KICK\nSNARE\n", "", leave_one },
	{ { "ls" }, 2, "", "Which sampler? Name one with --sampler:\n" },
	{ { "ls", "--sampler", "Rock" }, 2, "", "There is no sampler called 'Rock', but these:\n" },
	{ { "ls", "--sampler=Rack" }, 1, "", "No Sampler loaded/Function not supported by Sampler", cut_configuration },
	{ { "--sampler", "Rack", "get", "KICK" }, 0, "/VELMOR/CONFIG/sample/KICK.wav\n", "Downloaded 'KICK'.\n" },
	{ { "--sampler", "Rack", "get", "KICK", "--json" }, 1, "{\"name\":\"KICK\",\"ended\":\"refused\",\"words\":\"Skipped download of sample!\"}\n", "Overwrite existing sample? [no; --yes says yes]\n", spool_kick },
	{ { "--sampler", "Rack", "get", "KICK", "--yes" }, 0, "KICK.wav\n", "Overwrite existing sample? [yes]\n", spool_kick },
	{ { "--sampler", "Rack", "rm", "TOM", "KICK " }, 1, "", "'TOM' is not on the sampler.\nDeleted 'KICK' on the sampler.\n" },
	{ { "--sampler", "Rack", "--json", "rm", "KICK" }, 3, "its own MIDI page.\"}\n", "Nothing was sent, because the sampler's list could not be read.\n", fall_silent },
	{ { "--sampler", "Rack", "put", "nothing.wav" }, 4, "", "[nothing.wav] is no WAV file" },
	{ { "--sampler", "Rack", "panel" }, 1, "", "The screen of Akai S3000/S3000XL cannot be seen from here." },
	{ { "--sampler", "Rack", "mv", "KICK", "BOOM", "--local" }, 0, "", "'KICK' on this computer is now 'BOOM'.", spool_kick },
	{ { "--sampler", "Studio", "key", "F99" }, 2, "", "There is no key 'F99' on this sampler" },
	{ { "--sampler", "Studio", "ls" }, 3, "", "Could not find USB-Interface for [Demo S5000]", pull_plug },
	{ { "play", "song.mid", "--speed", "299" }, 2, "", "--speed takes a number from 300 to 1800." },
	{ { "play", "no.mid" }, 4, "", "File cannot be opened" },
	{ { "--tcp", "here", "ls" }, 2, "", "--tcp takes ADDRESS:PORT." },
	{ { "--tcp", "127.0.0.1:9", "ls" }, 3, "", "Nothing answers at 127.0.0.1:9." },
	{ { "monitor", "--seconds", "2" }, 0, "Channel: 1 NOTE ON (60 (C3)) Velocity: 64\n", "", press_a_key },
	{ { "monitor" }, 3, "", "o", choose_no_input },
	{ { "ls", "--all" }, 2, "", "--all: there is no such option of 'ls'." },
	{ { "program", "rm" }, 2, "", "An argument is missing: velmorctl program rm PROGRAM...." },
	{ { "import", "--bits", "13", "a.wav" }, 2, "", "--bits takes one of these: 12|16|24." },
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
	spool_kick(s);
	const auto kept = s.h.content(s.h.config + "\\sample\\KICK.wav");
	const ran r = ctl({ "--json", "get", "--all", "--sampler", "Rack" });
	EXPECT_EQ(r.status, 0) << r.words;
	EXPECT_EQ(r.results, "{\"name\":\"KICK\",\"ended\":\"skipped\"}\n"
			     "{\"name\":\"SNARE\",\"ended\":\"done\",\"path\":\"" +
				     s.h.root + "/VELMOR/CONFIG/sample/SNARE.wav\"}\n");
	EXPECT_EQ(s.h.content(s.h.config + "\\sample\\KICK.wav"), kept);
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

TEST(velmorctl, names_of_any_bytes_make_no_broken_line)
{
	studio s;
	s.usb.samples[0].name = "a\"\\\x1B[2J\xFFz";
	s.usb.samples[1].name = "\xC3\xA9t\xC3\xA9";
	const lines ls = { "--sampler", "Studio", "ls" };
	EXPECT_TRUE(ctl(ls + lines{ "--json" })
			    .results.starts_with("{\"name\":\"a\\\"\\\\\\u001b[2J\\u00ffz\"}\n{"
						 "\"name\":\"\xC3\xA9t\xC3\xA9\"}\n"));
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
}

// ---- The table ----------------------------------------------------------------------------------

std::string source_file(const char *path)
{
	const char *top = std::getenv("VELMOR_SOURCE");
	std::ifstream file((top ? std::string(top) : ".") + "/" + path);
	std::stringstream all;
	all << file.rdbuf();
	return all.str();
}

// Tags of the man page, each with the text behind it, without fonts.
lines tags_of(std::string page)
{
	page = page.substr(0, page.find(".SH EXIT STATUS"));
	page = std::regex_replace(page, std::regex("\\\\f[BIR]"), "");
	page = std::regex_replace(page, std::regex("\\\\-"), "-");
	lines tags;
	for (std::size_t at = page.find(".TP\n"); at != page.npos; at = page.find(".TP\n", at + 1))
		tags.push_back(page.substr(at + 4, page.find("\n.", at + 4) - at - 4));
	return tags;
}

TEST(velmorctl, man_page_help_and_completion_say_what_the_table_says)
{
	lines due;
	std::vector<ctl_option> options;
	for (const ctl_verb &verb : ctl_verbs) {
		due.push_back(std::string(verb.name) + (*verb.arguments ? " " : "") +
			      verb.arguments + "\n" + verb.help);
		for (const ctl_option &option : verb.options)
			if (std::ranges::none_of(options, [&](const auto &o) {
				    return !std::strcmp(o.name, option.name);
			    }))
				options.push_back(option);
	}
	options.insert(options.end(), ctl_options.begin(), ctl_options.end());
	for (const ctl_option &option : options)
		due.push_back(std::string(option.name) + (option.value ? " " : "") +
			      (option.value ? option.value : "") + "\n");
	const lines tags = tags_of(source_file("packaging/velmorctl.1"));
	ASSERT_EQ(tags.size(), due.size());
	for (std::size_t i = 0; i < due.size(); i++)
		EXPECT_TRUE(tags[i].starts_with(due[i])) << tags[i];
	EXPECT_EQ(source_file("packaging/velmorctl.bash"), ctl_completion())
		<< "made by velmorctl --completion";
	for (const ctl_verb &verb : ctl_verbs)
		EXPECT_NE(ctl_help().find(std::string("  ") + verb.name + " "), std::string::npos);
	EXPECT_EQ(ctl_help().find('\t'), std::string::npos);
}

} // namespace
