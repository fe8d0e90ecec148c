// test_transcripts.cpp - traffic recorded, read, answered and repeated
//
// The files of tests/transcripts are what the program once said to a sampler of each family and
// was answered. It must say the same today. VELMOR_MAKE_TRANSCRIPTS=1 writes them anew.

#include "src/usbqx.h"
#include "src/velmor_monitor.h"
#include "src/velmor_programs.h"
#include "src/velmor_record.h"
#include "src/velmor_replay.h"
#include "src/velmor_window.h"
#include "src/waveqx.h"
#include "tests/support/test_host.h"
#include "tests/support/transcript_midi.h"
#include "virtual/midi_ports.h"
#include "virtual/replay.h"
#include "virtual/s1000.h"
#include "virtual/s5000.h"
#include "virtual/s900.h"
#include "virtual/usb_bus.h"
#include "virtual/wave_image.h"
#include "virtual/z4.h"
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace velmor
{
namespace
{

const std::vector<std::int16_t> sound(100, 1234);

// One of each family, with two samples and a program.
struct rack {
	s1000_machine s3000{ s1000_model::s3000, 5 };
	s900_machine s900{ s900_model::s900, 3 };
	s5000 s5k;
	z4 z8{ z4_model::z8 }, mpc{ z4_model::mpc4000 };

	rack()
	{
		add("KICK");
		add("SNARE");
		s3000.add_program("DRUMS", 1);
		s900.add_program("DRUMS", 1);
		s5k.programs.push_back({ "DRUMS", std::vector<s5000_keygroup>(1) });
		z8.add_program("DRUMS", std::vector<z4_keygroup>(1));
		mpc.add_program("DRUMS", std::vector<z4_keygroup>(1));
		s900.omni = true;
		s5k.name = z8.name = mpc.name = "Studio";
	}
	void add(const char *name)
	{
		s3000.add_sample(name, 44100, sound);
		s900.add_sample(name, 20000, sound);
		for (usb_sampler *machine : std::initializer_list<usb_sampler *>{ &s5k, &z8, &mpc })
			machine->add_sample(name, make_wave(sound, {}));
	}
};
struct family {
	const char *name;
	i32 model;
	u8 channel;
	usb_machine *(*usb)(rack &); // null: on MIDI
	midi_machine (*midi)(rack &, timeline &);
};

// clang-format off
const family families[] = {
	{ "s3000", model_s3000, 5, nullptr, [](rack &r, timeline &) { return r.s3000.on_wire(); } },
	{ "s900", model_s900, 3, nullptr, [](rack &r, timeline &t) { return r.s900.on_wire(t); } },
	{ "s5000", model_s5000, 0, [](rack &r) -> usb_machine * { return &r.s5k; }, nullptr },
	{ "z8", model_z4, 0, [](rack &r) -> usb_machine * { return &r.z8; }, nullptr },
	{ "mpc4000", model_mpc4000, 0, [](rack &r) -> usb_machine * { return &r.mpc; }, nullptr },
};
// clang-format on

std::string content_of(const std::string &path)
{
	std::ifstream file(path);
	return (std::stringstream() << file.rdbuf()).str();
}
// Ends the recording. "The transcript is ... ."
std::string recorded_text()
{
	const std::string words = stop_recording().words;
	return content_of(words.substr(18, words.size() - 19));
}

class transcripts : public host_test, public ::testing::WithParamInterface<family>
{
protected:
	~transcripts() override { unplug(); }
	void unplug()
	{
		close_midi_output();
		unplug_all_midi();
		unplug_all_usb();
		forget_unread_usb();
		forget_lists();
		usbdev.clear();
		usbdevs = usb_init_done = 0;
	}
	void plug(usb_machine *usb, midi_machine midi)
	{
		host.midi = &virtual_midi;
		host.usb = &virtual_usb;
		if (usb)
			plug_usb(h.time, *usb);
		else
			port = plug_midi(h.time, std::move(midi), "Cable");
	}
	void plug(const family &f, rack &r)
	{
		plug(f.usb ? f.usb(r) : nullptr, f.usb ? midi_machine() : f.midi(r, h.time));
	}
	void connect(const family &f)
	{
		h.use_sampler(f.model, f.channel, f.usb ? "Studio" : "");
		current_sampler->sampler_sysex = f.model == model_s900 ? f.channel + 1u : 1u;
		if (f.usb)
			init_usb(1);
		else
			reload_midi_setup(false);
		selected_midi_in_interface = selected_midi_out_interface = f.usb ? -1 : 0;
	}
	// What a person does; an S900 neither renames nor deletes.
	void work()
	{
		const auto done = [](const outcome &o) { EXPECT_TRUE(o.done()) << o.words; };
		const std::string spool = h.config + "\\sample\\";
		done(read_program_list());
		done(download_sample("KICK"));
		h.put_content(spool + "TOM.wav", h.content(spool + "KICK.wav").value());
		load_local_samples(nullptr);
		done(upload_sample(spool + "TOM"));
		if (current_sampler->sampler_type != model_s900) {
			done(rename_sample("TOM", "TIMPANI"));
			done(delete_sample("TIMPANI"));
		}
		done(read_sample_list());
	}
	std::string record(const family &f, bool nameless)
	{
		rack r;
		plug(f, r);
		EXPECT_TRUE(start_recording(nameless).done());
		connect(f);
		work();
		const std::string text = recorded_text();
		unplug();
		return text;
	}
	// Work with who answers as then.
	void with_replay(const family &f, const std::string &text, bool strict,
		const std::function<void(const replay_script &)> &what)
	{
		replay_sampler midi(f.usb ? "" : text, strict);
		replay_usb usb(f.usb ? text : "", strict);
		const replay_script &script = f.usb ? static_cast<replay_script &>(usb) : midi;
		ASSERT_EQ(script.wrong(), "");
		const auto later = [this](machine::bytes late) { port_wire(port).play(late); };
		plug(f.usb ? &usb : nullptr, midi.on_wire(h.time, later));
		connect(f);
		what(script);
		unplug();
	}
	int port = 0;
};

TEST_P(transcripts, the_program_says_what_it_said_then)
{
	const family &f = GetParam();
	const std::string path =
		std::string(std::getenv("VELMOR_SOURCE")) + "/tests/transcripts/" + f.name + ".txt";
	if (std::getenv("VELMOR_MAKE_TRANSCRIPTS"))
		std::ofstream(path) << record(f, false);
	const std::string text = content_of(path);
	EXPECT_LT(text.size(), 40000u);
	with_replay(f, text, true, [&](const replay_script &script) {
		work();
		EXPECT_FALSE(script.parted()) << script.parted()->words();
		EXPECT_EQ(script.left(), 0u);
	});
}

// A program reads the lists under other names, and asks by them: checksums and places hold.
TEST_P(transcripts, without_names_the_sampler_answers_under_others)
{
	const family &f = GetParam();
	const std::string text = record(f, true);
	EXPECT_NE(text.find("names: left out"), text.npos);
	with_replay(f, text, false, [&](const replay_script &script) {
		EXPECT_TRUE(read_program_list().done());
		const _dev_status &dev = *current_sampler->status;
		ASSERT_EQ(dev.samples, 2);
		EXPECT_NE(std::string(dev.sample[0].name).substr(0, 4), "KICK");
		EXPECT_NE(std::string(dev.program[0].name).substr(0, 5), "DRUMS");
		EXPECT_TRUE(download_sample(dev.sample[0].name).done());
		EXPECT_TRUE(read_program_list().done())
			<< "further on, or from the beginning again";
		EXPECT_EQ(script.unknown(), 0);
	});
	transcript t;
	ASSERT_EQ(read_transcript(text, &t), "");
	std::string letters;
	for (const crossing &c : t.crossings)
		for (const u8 byte : c.bytes)
			letters += byte ? static_cast<char>(byte) : ' ';
	for (const char *name : { "KICK", "K I C K", "\x15\x13\x0D\x15", "TIMPANI" })
		EXPECT_EQ(letters.find(name), letters.npos) << name;
}

TEST_P(transcripts, what_was_sent_is_sent_again_and_answers_are_compared)
{
	const family &f = GetParam();
	transcript t;
	ASSERT_EQ(read_transcript(record(f, false), &t), "");
	replay_report report;
	for (const bool same : { true, false }) {
		rack r;
		if (!same)
			r.add("EXTRA");
		plug(f, r);
		connect(f);
		const outcome done = replay_transcript(t, &report);
		EXPECT_EQ(done.how, same ? ending::done : ending::refused) << done.words;
		EXPECT_GT(report.answers, 10);
		unplug();
	}
	ASSERT_FALSE(report.differences.empty());
	const replay_difference &first = report.differences[0];
	for (const crossing &c : t.crossings)
		if (c.row == first.row) {
			EXPECT_EQ(c.time, first.time);
			EXPECT_EQ(c.bytes.at(first.at), first.then);
		}
	// The count of the list: F0 47 05 05 48 02.
	const auto count = [](const replay_difference &d) {
		return d.words.ends_with("byte 5 of the answer was 02 and is 03.");
	};
	EXPECT_EQ(std::ranges::any_of(report.differences, count), f.model == model_s3000);
}

INSTANTIATE_TEST_SUITE_P(of_each_family, transcripts, ::testing::ValuesIn(families),
	[](const auto &row) { return std::string(row.param.name); });

// ---- The text ---------------------------------------------------------------------------------

using recordings = host_test;

TEST_F(recordings, hold_every_byte_with_its_time)
{
	transcript_midi wire(h, R"(
		> F0 47 00 00 48 F7
		< @0.5 F0 00*40 01 02
		< @0.01 03 F7
		> F0 7D F7
		< nothing
	)");
	h.time.run_until(7); // times count from the beginning of the recording
	ASSERT_TRUE(start_recording(false).done());
	EXPECT_FALSE(start_recording(false).words.empty());
	u8 answer[64];
	int length = sizeof answer;
	send_midi_string_ex(hex("F0 47 00 00 48 F7").data(), 6, answer, &length, 1);
	length = sizeof answer;
	send_midi_string_ex(hex("F0 7D F7").data(), 3, answer, &length, 1);
	std::string text = recorded_text();
	EXPECT_FALSE(recording());
	ASSERT_TRUE(text.starts_with("velmor-transcript 1\nrecorded: 20")) << text;
	text.erase(0, text.find("\nsampler: "));
	EXPECT_EQ(text, R"(
sampler: none
way: none
names: kept

0.000000 ! midi-out: opened, transcript out
0.000000 ! midi-in: opened, transcript in
0.000000 > midi 6: F0 47 00 00 48 F7
0.501920 < midi 45:
	F0 00*40 01 02 03 F7
0.511920 > midi 3: F0 7D F7
)");
}

TEST_F(recordings, begin_and_end_from_the_menu_and_with_the_program)
{
	h.checks[{ window_main, menu_record_names }] = true;
	EXPECT_TRUE(velmor_command(window_main, menu_record));
	EXPECT_TRUE((h.checks[{ window_main, menu_record }]));
	EXPECT_THROW(velmor_command(window_main, menu_exit), process_ended);
	EXPECT_FALSE(recording());
	std::vector<std::string> names;
	host.files->list((h.config + "\\transcripts").c_str(), &names);
	ASSERT_EQ(names.size(), 1u);
	EXPECT_NE(content_of(h.root + "/VELMOR/CONFIG/transcripts/" + names[0]).find("left out"),
		std::string::npos);
	h.disk.open_for_writing = ENOSPC;
	EXPECT_EQ(start_recording(false).how, ending::local_failed);
	EXPECT_FALSE(recording());
}

// A bridge with a sampler behind it.
s1000_machine *behind_bridge;
machine::bytes from_bridge;
const net_service bridge = {
	.connect = [](const char *, unsigned short, int *handle) { return *handle = 0; },
	.connected = [](int) { return 1; },
	.send = [](int, const u8 *bytes, std::size_t count) -> long {
		const machine::bytes answer = behind_bridge->answer({ bytes, count });
		from_bridge.insert(from_bridge.end(), answer.begin(), answer.end());
		return static_cast<long>(count);
	},
	.receive = [](int, u8 *bytes, std::size_t count) -> long {
		count = std::min(count, from_bridge.size());
		std::copy_n(from_bridge.begin(), count, bytes);
		from_bridge.erase(from_bridge.begin(),
			from_bridge.begin() + static_cast<std::ptrdiff_t>(count));
		return static_cast<long>(count);
	},
	.close = [](int) {},
	.on_arrival = [](void (*)()) {},
	.error_text = [](int) { return "broken"; },
};

class bridged : public recordings
{
protected:
	bridged()
	{
		machine.add_sample("KICK", 44100, sound);
		behind_bridge = &machine;
		from_bridge.clear();
		host.net = &bridge;
		h.use_sampler(model_s3000, 5);
	}
	~bridged() override { switch_off_tcp(); }
	s1000_machine machine{ s1000_model::s3000, 5 };
};

TEST_F(bridged, are_recorded_and_sent_again)
{
	ASSERT_TRUE(start_recording(false).done());
	switch_on_tcp();
	EXPECT_TRUE(read_sample_list().done());
	const std::string text = recorded_text();
	EXPECT_NE(text.find(" ! tcp: connecting to 192.168.0.10:9999\n"), text.npos) << text;
	EXPECT_NE(text.find(" > tcp 6: F0 47 05 04 48 F7\n"), text.npos) << text;
	EXPECT_NE(text.find(" < tcp 20: F0 47 05 05 48 01 00 "), text.npos) << text;
	transcript t;
	ASSERT_EQ(read_transcript(text, &t), "");
	replay_report report;
	EXPECT_TRUE(replay_transcript(t, &report).done());
	EXPECT_GE(report.answers, 3);
	machine.add_sample("SNARE", 44100, sound);
	EXPECT_EQ(replay_transcript(t, &report).how, ending::refused);
	EXPECT_TRUE(replay_script(text).wrong().empty());
}

TEST_F(bridged, a_disk_that_fills_ends_the_recording_and_not_the_work)
{
	switch_on_tcp();
	ASSERT_TRUE(start_recording(false).done());
	h.disk.space_left = 60;
	EXPECT_TRUE(read_sample_list().done());
	EXPECT_EQ(current_sampler->status->samples, 1);
	EXPECT_FALSE(recording());
	EXPECT_EQ(host.net, &bridge) << "nobody listens";
	EXPECT_EQ(stop_recording().how, ending::local_failed);
	EXPECT_TRUE(stop_recording().words.starts_with("The recording ended: The disk is full"));
	// It has no room for its head.
	EXPECT_EQ(start_recording(false).how, ending::local_failed);
	EXPECT_FALSE(recording());
}

TEST_F(bridged, without_names_what_is_held_in_memory_has_a_bound)
{
	ASSERT_TRUE(start_recording(true).done());
	const std::vector<u8> run(8 << 20, 0);
	for (int i = 0; i < 10; i++)
		host.net->send(0, run.data(), run.size());
	EXPECT_TRUE(recording()) << "it is written when a person ends it";
	const std::string full = "[W] The recording is full. It is written when you end it.\r\n";
	EXPECT_EQ(std::ranges::count(h.log(), full), 1);
	transcript t;
	EXPECT_EQ(read_transcript(recorded_text(), &t), "");
	EXPECT_NEAR(static_cast<double>(t.crossings.size()), 1020, 10) << "of 64 KiB each";
}

TEST_F(recordings, of_the_monitor_tell_what_came_and_what_it_passed_on)
{
	const auto deaf = [](machine::byte_view) { return machine::bytes(); };
	const int port = plug_midi(h.time, { deaf, deaf, deaf }, "Keys");
	host.midi = &virtual_midi;
	reload_midi_setup(false);
	selected_midi_in_mon_interface = selected_midi_out_interface = 0;
	receive_monitor();
	ASSERT_TRUE(start_recording(false).done());
	port_wire(port).play({ 0x90, 0x3C, 0x40 });
	h.time.run_until(h.time.now() + 0.1);
	for (const auto timers = h.timers; const auto &[id, timer] : timers)
		timer.tick();
	const std::string text = recorded_text();
	EXPECT_NE(text.find(" < monitor 3: 90 3C 40\n"), text.npos) << text;
	EXPECT_NE(text.find(" > thru 3: 90 3C 40\n"), text.npos) << text;
	forget_monitor();
	close_midi_output();
	unplug_all_midi();
}

// Each name has a word of its own, as long and of the same sum.
TEST(names_left_out, have_the_sums_of_names)
{
	std::set<std::string> names = { "Grand Piano", "abc", "a name" };
	for (int i = 0; i < 60; i++)
		names.insert(format_text("B%02d", i));
	for (const bool usb : { false, true }) {
		std::vector<crossing> all;
		for (const std::string &name : names) {
			crossing c = { .sent = true,
				.line = usb ? wire_line::usb : wire_line::midi };
			c.bytes.assign(name.begin(), name.end());
			c.bytes.resize(
				usb ? name.size() + 1 : std::max<std::size_t>(9, name.size()),
				usb ? 0 : ' ');
			all.push_back(c);
			all.push_back({}); // another direction
		}
		std::vector<crossing> now = all;
		leave_names_out(now, names);
		std::set<std::vector<u8>> words;
		for (std::size_t i = 0; i < all.size(); i += 2) {
			int sum = 0, was = 0;
			for (std::size_t at = 0; at < now[i].bytes.size(); at++) {
				sum = usb ? sum + now[i].bytes[at] : sum ^ now[i].bytes[at];
				was = usb ? was + all[i].bytes[at] : was ^ all[i].bytes[at];
			}
			const bool field = usb || all[i].bytes.size() == 9;
			EXPECT_EQ(now[i].bytes != all[i].bytes, field);
			EXPECT_EQ((sum ^ was) & 0x7F, 0) << i;
			EXPECT_EQ(now[i].bytes.size(), all[i].bytes.size());
			words.insert(now[i].bytes);
		}
		EXPECT_EQ(words.size(), names.size());
	}
}

TEST_F(recordings, that_cannot_be_believed_say_where)
{
	const std::string head = "velmor-transcript 1\nnames: kept\n\n",
			  event = head + "0.1 > midi ";
	// clang-format off
	const std::tuple<std::string, int, const char *> rows[] = {
		{ "", 0, "This file is no transcript." },
		{ "velmor-transcript 2\n\n", 1, "this program does not know its version." },
		{ event + "3: F0 7D", 5, "the event before it lacks 1 bytes. Was the file cut?" },
		{ event + "3: F0 7D\n0.2 < midi 0:", 5, "the event before it lacks 1 bytes. Was the file cut?" },
		{ event + "2: F0 7D F7", 4, "there are more bytes than it says." },
		{ event + "2: 00*99999999999999999999", 4, "'00*99999999999999999' is no byte." },
		{ event + "4: 00*3\n\t1FF", 5, "'1FF' is no byte." },
		{ event + "99999999: ", 4, "this is no event." },
		{ head + "0.1 > modem 1: F8", 4, "this is no event." },
		{ head + "nan > midi 1: F8", 4, "it does not begin with a time." },
		{ head + "\tF8", 4, "no bytes are due." },
	};
	// clang-format on
	transcript t;
	for (const auto &[text, row, words] : rows) {
		const std::string where =
			row ? format_text("Line %d of the transcript: ", row) : "";
		EXPECT_EQ(read_transcript(text, &t), where + words);
		EXPECT_NE(replay_script(text).wrong(), "") << text;
	}
}

} // namespace
} // namespace velmor
