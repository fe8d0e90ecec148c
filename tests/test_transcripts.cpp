// test_transcripts.cpp - traffic recorded, read, answered and repeated
//
// The files of tests/transcripts are what the program once said to a sampler of each family and
// was answered. It must say the same today. VELMOR_MAKE_TRANSCRIPTS=1 writes them anew.

#include "src/usbqx.h"
#include "src/velmor_programs.h"
#include "src/velmor_record.h"
#include "src/velmor_replay.h"
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
	s5000 usb_s5000;
	z4 z8{ z4_model::z8 }, mpc{ z4_model::mpc4000 };

	rack()
	{
		add("KICK");
		add("SNARE");
		s3000.add_program("DRUMS", 1);
		s900.add_program("DRUMS", 1);
		usb_s5000.programs.push_back({ "DRUMS", std::vector<s5000_keygroup>(1) });
		for (z4 *machine : { &z8, &mpc })
			machine->add_program("DRUMS", std::vector<z4_keygroup>(1));
		s900.omni = true;
		usb_s5000.name = z8.name = mpc.name = "Studio";
	}
	void add(const char *name)
	{
		s3000.add_sample(name, 44100, sound);
		s900.add_sample(name, 20000, sound);
		usb_s5000.add_sample(name, make_wave(sound, {}));
		z8.add_sample(name, make_wave(sound, {}));
		mpc.add_sample(name, make_wave(sound, {}));
	}
};

struct family {
	const char *name;
	i32 model;
	u8 channel;
	usb_machine *(*usb)(rack &); // null: on MIDI
	midi_machine (*midi)(rack &, timeline &);
	const char *endings; // of the work
};

// clang-format off
const family families[] = {
	{ "s3000", model_s3000, 5, nullptr, [](rack &r, timeline &) { return r.s3000.on_wire(); }, "dddddd" },
	{ "s900", model_s900, 3, nullptr, [](rack &r, timeline &t) { return r.s900.on_wire(t); }, "dddd" },
	{ "s5000", model_s5000, 0, [](rack &r) -> usb_machine * { return &r.usb_s5000; }, nullptr, "dddddd" },
	{ "z8", model_z4, 0, [](rack &r) -> usb_machine * { return &r.z8; }, nullptr, "dddddd" },
	{ "mpc4000", model_mpc4000, 0, [](rack &r) -> usb_machine * { return &r.mpc; }, nullptr, "dddddd" },
};
// clang-format on

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
	void connect(const family &f)
	{
		h.use_sampler(f.model, f.channel, f.usb ? "Studio" : "");
		current_sampler->sampler_sysex = f.model == model_s900 ? f.channel + 1u : 1u;
		if (f.usb) {
			init_usb(1);
			return;
		}
		reload_midi_setup(false);
		selected_midi_in_interface = selected_midi_out_interface = 0;
	}
	void plug(const family &f, rack &r)
	{
		host.midi = &virtual_midi;
		host.usb = &virtual_usb;
		if (f.usb)
			plug_usb(h.time, *f.usb(r));
		else
			plug_midi(h.time, f.midi(r, h.time), "Cable");
	}
	// What a person does, and how each of it ended, by its first letter.
	std::string work(const std::string &name = "KICK")
	{
		std::string how;
		const auto note = [&](const outcome &o) {
			how += "drnsl"[static_cast<int>(o.how)];
			if (!o.done())
				ADD_FAILURE() << o.words << (o.told.empty() ? "" : o.told[0].text);
		};
		note(read_program_list());
		note(download_sample(name));
		h.put_content(h.config + "\\sample\\TOM.wav",
			h.content(h.config + "\\sample\\" + name + ".wav")
				.value_or(std::vector<u8>()));
		load_local_samples(nullptr);
		note(upload_sample(h.config + "\\sample\\TOM"));
		if (current_sampler->sampler_type != model_s900) {
			note(rename_sample("TOM", "TIMPANI"));
			note(delete_sample("TIMPANI"));
		}
		note(read_sample_list());
		return how;
	}
	std::string record(const family &f, bool nameless)
	{
		rack r;
		plug(f, r);
		EXPECT_TRUE(start_recording(nameless).done());
		connect(f);
		EXPECT_EQ(work(), f.endings);
		const std::string words = stop_recording().words;
		unplug();
		std::ifstream file(words.substr(18, words.size() - 19));
		return (std::stringstream() << file.rdbuf()).str();
	}
	// Work with who answers as then.
	void with_replay(const family &f, const std::string &text, bool strict,
		const std::function<void(const replay_script &)> &what)
	{
		replay_sampler midi(f.usb ? "" : text, strict);
		replay_usb usb(f.usb ? text : "", strict);
		const replay_script &script = f.usb ? static_cast<replay_script &>(usb) : midi;
		ASSERT_EQ(script.wrong(), "");
		host.midi = &virtual_midi;
		host.usb = &virtual_usb;
		static int port;
		const auto later = [](machine::bytes late) { port_wire(port).play(late); };
		if (f.usb)
			plug_usb(h.time, usb);
		else
			port = plug_midi(h.time, midi.on_wire(h.time, later), "Cable");
		connect(f);
		what(script);
		unplug();
	}
};

std::string file_of(const family &f)
{
	return std::string(std::getenv("VELMOR_SOURCE")) + "/tests/transcripts/" + f.name + ".txt";
}

TEST_P(transcripts, the_program_says_what_it_said_then)
{
	const family &f = GetParam();
	if (std::getenv("VELMOR_MAKE_TRANSCRIPTS"))
		std::ofstream(file_of(f)) << record(f, false);
	std::ifstream file(file_of(f));
	const std::string text = (std::stringstream() << file.rdbuf()).str();
	EXPECT_LT(text.size(), 40000u);
	with_replay(f, text, true, [&](const replay_script &script) {
		EXPECT_EQ(work(), f.endings);
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
		EXPECT_EQ(script.unknown(), 0);
	});
	transcript t;
	ASSERT_EQ(read_transcript(text, &t), "");
	std::string letters;
	for (const crossing &c : t.crossings)
		for (const u8 byte : c.bytes)
			letters += byte ? static_cast<char>(byte) : ' ';
	EXPECT_EQ(letters.find("KICK"), letters.npos);
	EXPECT_EQ(letters.find("K I C K"), letters.npos);
	EXPECT_EQ(letters.find("\x15\x13\x0D\x15"), letters.npos) << "in the S1000's own letters";
	EXPECT_EQ(letters.find("TIMPANI"), letters.npos);
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

class recordings : public host_test
{
};

TEST_F(recordings, hold_every_byte_with_its_time)
{
	transcript_midi wire(h, R"(
		> F0 47 00 00 48 F7
		< @0.5 F0 00*40 01 02
		< @0.01 03 F7
		> F0 7D F7
		< nothing
	)");
	ASSERT_TRUE(start_recording(false).done());
	EXPECT_FALSE(start_recording(false).words.empty());
	u8 answer[64];
	int length = sizeof answer;
	send_midi_string_ex(hex("F0 47 00 00 48 F7").data(), 6, answer, &length, 1);
	length = sizeof answer;
	send_midi_string_ex(hex("F0 7D F7").data(), 3, answer, &length, 1);
	const std::string words = stop_recording().words;
	EXPECT_FALSE(recording());
	std::ifstream file(words.substr(18, words.size() - 19));
	std::string text = (std::stringstream() << file.rdbuf()).str();
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

TEST_F(recordings, that_cannot_be_believed_say_where)
{
	const std::string head = "velmor-transcript 1\nnames: kept\n\n";
	const std::pair<std::string, const char *> rows[] = {
		{ "", "This file is no transcript." },
		{ "MThd", "This file is no transcript." },
		{ "velmor-transcript 2\n\n",
			"Line 1 of the transcript: this program does not know its version." },
		{ head + "0.1 > midi 3: F0 7D", "Line 5 of the transcript: the event before it "
						"lacks 1 bytes. Was the file cut?" },
		{ head + "0.1 > midi 3: F0 7D\n0.2 < midi 0:",
			"Line 5 of the transcript: the event before it lacks 1 bytes. Was the file "
			"cut?" },
		{ head + "0.1 > midi 2: F0 7D F7",
			"Line 4 of the transcript: there are more bytes than it says." },
		{ head + "0.1 > midi 2: 00*99999999999999999999",
			"Line 4 of the transcript: '00*99999999999999999' is no byte." },
		{ head + "0.1 > midi 4: 00*3\n\t1FF",
			"Line 5 of the transcript: '1FF' is no byte." },
		{ head + "0.1 > midi 99999999: ", "Line 4 of the transcript: this is no event." },
		{ head + "nan > midi 1: F8",
			"Line 4 of the transcript: it does not begin with a time." },
		{ head + "0.1 > modem 1: F8", "Line 4 of the transcript: this is no event." },
		{ head + "\tF8", "Line 4 of the transcript: no bytes are due." },
	};
	transcript t;
	for (const auto &[text, words] : rows) {
		EXPECT_EQ(read_transcript(text, &t), words);
		EXPECT_NE(replay_script(text).wrong(), "") << text;
	}
}

} // namespace
} // namespace velmor
