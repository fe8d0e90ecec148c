// test_history.cpp - what was on a sampler before it was changed, and putting it back

#include "src/akais900.h"
#include "src/usbqx.h"
#include "src/velmor_history.h"
#include "src/velmor_programs_page.h"
#include "src/velmor_window.h"
#include "src/waveqx.h"
#include "tests/support/test_host.h"
#include "virtual/demo_content.h"
#include "virtual/demo_usb.h"
#include "virtual/midi_ports.h"
#include "virtual/usb_bus.h"
#include <random>

#include "tests/support/wave_files.h" // behind what declares bytes of its own

namespace velmor
{
namespace
{

using memory = std::vector<std::string>; // everything a machine holds, sorted
using lines = std::vector<std::string>;

std::string number_of(const auto &thing)
{
	if constexpr (requires { thing.number; })
		return format_text("%d ", thing.number);
	else
		return "";
}

// Of an S1000, a block but for the two bytes that say where it lies in the machine's memory.
std::string shown(machine::bytes block, bool numbered)
{
	if (!numbered)
		block[1] = block[2] = 0;
	return hex_text(block) + "\n";
}

template <class midi_machine> memory held(const midi_machine &m)
{
	memory all;
	for (const auto &s : m.samples) {
		all.push_back("sample " + number_of(s) + shown(s.header, !number_of(s).empty()));
		for (const std::int16_t word : s.words)
			all.back() += format_text("%d,", word);
	}
	for (const auto &p : m.programs) {
		all.push_back("program " + number_of(p) + shown(p.common, !number_of(p).empty()));
		for (const auto &keygroup : p.keygroups)
			all.back() += shown(keygroup, !number_of(p).empty());
	}
	std::sort(all.begin(), all.end());
	return all;
}

std::string shown(const s5000_keygroup &k)
{
	std::string text = hex_text(k.amp) + hex_text(k.aux_rate) + hex_text(k.aux_level);
	for (const auto &row : k.value)
		for (const auto &sub : row)
			text += hex_text(sub) + " ";
	for (const s5000_zone &zone : k.zones) {
		text += "\n" + zone.sample + " ";
		for (const auto &value : zone.value)
			text += hex_text(value) + " ";
	}
	return text;
}

std::string shown(const z4_keygroup &k)
{
	std::string text = format_text("%d %d", k.low_note, k.high_note);
	for (const z4_zone &zone : k.zones)
		text += " " + zone.sample + hex_text(zone.level);
	return text;
}

template <class usb_machine> memory held_on_usb(const usb_machine &m)
{
	memory all;
	for (const usb_sample &s : m.samples)
		all.push_back("sample " + s.name + " " + hex_text(s.wave));
	for (const auto &p : m.programs) {
		all.push_back("program " + p.name);
		if constexpr (requires { p.polyphony; })
			all.back() += format_text(" %d %d", p.polyphony, p.reassignment);
		for (const auto &keygroup : p.keygroups)
			all.back() += "\n" + shown(keygroup);
	}
	std::sort(all.begin(), all.end());
	return all;
}
memory held(const s5000 &m)
{
	return held_on_usb(m);
}
memory held(const z4 &m)
{
	return held_on_usb(m);
}

class history : public host_test
{
protected:
	~history() override
	{
		h.on_pump = nullptr;
		close_midi_output();
		unplug_all_midi();
	}
	static void unplug()
	{
		unplug_all_usb();
		usbdev.clear();
		usbdevs = usb_init_done = 0;
	}
	template <class sampler_machine>
	void plug_midi_sampler(sampler_machine &&on_wire, i32 model)
	{
		h.use_sampler(model, 0);
		host.midi = &virtual_midi;
		port = plug_midi(h.time, on_wire, "virtual");
		reload_midi_setup(false);
		selected_midi_in_interface = selected_midi_out_interface = 0;
		begin();
	}
	void plug_usb_sampler(usb_sampler &m, i32 model)
	{
		m.name = "Studio";
		host.usb = &virtual_usb;
		plug_usb(h.time, m);
		init_usb(1);
		h.use_sampler(model, 0, "Studio");
		begin();
	}
	void begin()
	{
		copy_text(current_sampler->sampler_description, "Rack");
		the_history.on = the_history.long_samples = true;
		h.limits.seconds = 1e6;
		h.limits.disk_bytes = 1u << 30;
	}
	// Of the list, one of them; "" for none.
	std::string any(const std::vector<std::string> &names)
	{
		return names.empty() ? "" : names[random() % names.size()];
	}
	std::string fresh_name() { return format_text("NEW %d", ++made); }
	std::string spool(const std::string &name)
	{
		const bool twelve = current_sampler->sampler_type == model_s900;
		std::vector<std::int16_t> words;
		bytes sound;
		for (u32 i = 0, size = 40 + random() % 50; i < size; i++) {
			words.push_back(static_cast<std::int16_t>(random() % 2047));
			sound = sound + word(static_cast<u16>(words.back()), 2);
		}
		const std::string path = h.config + "\\sample\\" + name;
		h.put_content(path + ".wav",
			twelve ? riff(fmt({ 1, 12, 2, 12000 }) + chunk("data", sound))
			       : make_wave(words, {}));
		load_local_samples((h.config + "\\sample").c_str());
		return path;
	}
	outcome do_something();
	template <class sampler_machine> void go_there_and_back(sampler_machine &m, unsigned seed);

	std::mt19937 random;
	int made = 0, port = 0;
};

// One of the things that a user does; done, or refused where the model lacks it.
outcome history::do_something()
{
	const _sampler_type &model = *get_sampler(static_cast<i32>(current_sampler->sampler_type));
	h.answers.clear();
	(void)have_program_list();
	(void)have_sample_list();
	const std::string sample = any(loaded_names()), name = any(loaded_programs());
	_program *program = nullptr;
	for (int i = 0; i < current_sampler->status->programs; i++)
		if (without_end_blanks(current_sampler->status->program[i].name) == name)
			program = &current_sampler->status->program[i];
	if (!program || sample.empty())
		return upload_sample(spool(fresh_name()));
	switch (random() % 9) {
	case 0:
		return rename_sample(sample, fresh_name());
	case 1:
		return delete_sample(sample);
	case 2: // what no undo takes back is asked about; the answer is no
		h.answers = { model.renamesample != nullptr };
		return upload_sample(spool(fresh_name()));
	case 3:
		return upload_sample(spool(sample));
	case 4:
		return rename_program({ name }, fresh_name());
	case 5:
		h.answers = { model.saveprogram != get_sampler(model_z4)->saveprogram };
		return delete_program({ name });
	case 6:
		program->keygroup[0].low_note = static_cast<u8>(24 + random() % 30);
		program->keygroup[0].amp_attack = random() % 99;
		program->polyphony = 1 + static_cast<i32>(random() % 30);
		return save_program({ name });
	case 7:
		return delete_keygroup({ name }, 0);
	default: {
		auto copy = std::make_unique<_program>(*program);
		if (random() % 2)
			copy_text(copy->name, fresh_name());
		copy->keygroup[0].high_note = static_cast<u8>(60 + random() % 40);
		return upload_program(*copy);
	}
	}
}

// What one of them has and the other has not, from where it begins to differ.
std::string difference(const memory &now, const memory &before)
{
	std::string text;
	for (std::size_t i = 0; i < std::max(now.size(), before.size()); i++) {
		const std::string a = i < now.size() ? now[i] : "",
				  b = i < before.size() ? before[i] : "";
		const auto at = static_cast<std::size_t>(
			std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first - a.begin());
		const std::size_t from = at < 40 ? 0 : at - 40;
		if (a != b)
			text += format_text("\n%zu at %zu: ", i, at) + a.substr(from, 80) + " <> " +
				b.substr(from, 80);
	}
	return text;
}

template <class sampler_machine> void history::go_there_and_back(sampler_machine &m, unsigned seed)
{
	random.seed(seed);
	std::vector<memory> states = { held(m) };
	for (int i = 0; i < 500 && states.size() <= 50; i++) {
		const std::size_t steps = history_steps().size();
		const outcome result = do_something();
		const bool kept = history_steps().size() > steps;
		ASSERT_TRUE(kept || held(m) == states.back()) << result.words << result.line;
		if (kept)
			states.push_back(held(m));
	}
	EXPECT_EQ(states.size(), 51u);
	while (states.size() > 1) {
		ASSERT_NE(undoable_step(), nullptr) << states.size();
		const std::string what = step_words(*undoable_step());
		const outcome result = undo_on_sampler();
		states.pop_back();
		ASSERT_TRUE(result.done()) << what << result.words;
		ASSERT_EQ(difference(held(m), states.back()), "") << what;
	}
	EXPECT_EQ(undoable_step(), nullptr);
}

} // namespace

// The place in a list may be another one; names, blocks, headers and words are the same.
TEST_F(history, fifty_changes_and_fifty_undos_leave_an_s3000_as_it_was)
{
	s1000_machine m(s1000_model::s3000, 0);
	for (const char *name : { "KICK", "SNARE", "HAT" })
		m.add_sample(name, 44100, std::vector<std::int16_t>(50, 500));
	set_loop(m.samples[1], 3, 40);
	for (const char *name : { "DRUMS", "BASS", "CHOIR" })
		m.add_program(name, 2).common[43] = 9; // nobody knows what it is
	plug_midi_sampler(m, model_s3000);
	for (const unsigned seed : { 1u, 2u })
		go_there_and_back(m, seed);
}

TEST_F(history, and_an_s1000_that_closes_gaps)
{
	s1000_machine m(s1000_model::s1000, 0);
	fill_for_benchmark(m, 3, 2, 3, 45);
	m.closes_gaps = true;
	plug_midi_sampler(m, model_s1000);
	go_there_and_back(m, 3);
}

TEST_F(history, and_an_s900)
{
	s900_machine m(s900_model::s950);
	m.omni = true;
	for (const char *name : { "KICK", "SNARE", "HAT" })
		m.add_sample(name, 12000, std::vector<std::int16_t>(70, 500));
	s900_machine::set_loop(m.samples[1], 3, 40);
	for (const char *name : { "DRUMS", "BASS" })
		m.add_program(name, 2);
	plug_midi_sampler(m.on_wire(h.time), model_s900);
	current_sampler->sampler_sysex = 1;
	go_there_and_back(m, 4);
}

TEST_F(history, and_an_s5000_a_z8_and_an_mpc_4000)
{
	s5000 five;
	fill_demo(five);
	plug_usb_sampler(five, model_s5000);
	go_there_and_back(five, 5);
	for (const z4_model which : { z4_model::z8, z4_model::mpc4000 }) {
		unplug();
		z4 m(which);
		fill_demo(m);
		plug_usb_sampler(m, which == z4_model::z8 ? model_z4 : model_mpc4000);
		go_there_and_back(m, 6);
	}
	unplug();
}

namespace
{

class s3000_history : public history
{
protected:
	s3000_history()
	{
		for (const char *name : { "KICK", "SNARE" })
			m.add_sample(name, 44100, std::vector<std::int16_t>(8000, 500));
		m.add_program("DRUMS", 1);
		plug_midi_sampler(m, model_s3000);
		the_history.long_samples = false;
		(void)read_program_list();
		(void)read_sample_list();
	}
	lines steps_on_disk() { return names_in(h.config + "\\history\\Rack"); }
	std::string manifest(const std::string &step)
	{
		const auto text = h.content(h.config + "\\history\\Rack\\" + step + "\\step.txt");
		return text ? std::string(text->begin(), text->end()) : "";
	}
	s1000_machine m{ s1000_model::s3000, 0 };
};

} // namespace

TEST_F(s3000_history, what_takes_long_is_asked_about_once_and_cancel_leaves_everything)
{
	const memory before = held(m);
	h.answers = { false, false };
	EXPECT_EQ(delete_sample("KICK").line, "'KICK' was left as it is on the sampler.");
	EXPECT_EQ(h.boxes,
		(std::vector<shown_box>{
			{ "'KICK' goes from the sampler. Keep a copy first? about 10 s\n"
			  "The answer holds until VELMOR is closed.",
				"INFO" },
			{ "Go on without a copy? 'KICK' cannot be put back then.", "WARNING" } }));
	EXPECT_EQ(held(m), before);
	h.boxes.clear();
	EXPECT_TRUE(delete_sample("KICK").done());
	EXPECT_TRUE(delete_sample("SNARE").done());
	EXPECT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(history_steps().size(), 2u);
	EXPECT_TRUE(undo_on_sampler().done() && undo_on_sampler().done());
	EXPECT_EQ(held(m), before);
	forget_history_answers();
	h.answers = { false, true };
	EXPECT_TRUE(delete_sample("KICK").done());
	EXPECT_TRUE(delete_sample("SNARE").done());
	EXPECT_EQ(h.boxes.size(), 3u);
	EXPECT_EQ(undoable_step(), nullptr);
}

TEST_F(s3000_history, what_it_adds_to_the_wire_comes_before_the_work)
{
	const auto heard_of_deletion = [&](bool on) {
		the_history.on = on;
		m.heard.clear();
		EXPECT_TRUE(delete_program({ "DRUMS" }).done());
		const std::vector<machine::bytes> heard(m.heard.begin(), m.heard.end());
		m.add_program("DRUMS", 1);
		(void)read_program_list();
		return heard;
	};
	const auto plain = heard_of_deletion(false), kept = heard_of_deletion(true);
	ASSERT_EQ(kept.size(), plain.size() + 2); // its block and its keygroup
	EXPECT_EQ((std::vector(kept.begin(), kept.begin() + 2)),
		(std::vector<machine::bytes>{
			hex("F0 47 00 06 48 00 00 F7"), hex("F0 47 00 08 48 00 00 00 F7") }));
	EXPECT_EQ((std::vector(kept.begin() + 2, kept.end())), plain);
}

TEST_F(s3000_history, a_step_is_a_folder_that_a_person_can_read)
{
	EXPECT_TRUE(delete_program({ "DRUMS" }).done());
	ASSERT_EQ(steps_on_disk().size(), 1u);
	const std::string folder = steps_on_disk()[0];
	EXPECT_EQ(names_in(h.config + "\\history\\Rack\\" + folder),
		(lines{ "1.blocks", "1.program", "step.txt" }));
	std::string time = folder;
	std::replace(time.begin(), time.end(), '.', ':');
	EXPECT_EQ(manifest(folder),
		"# What a sampler held before it was changed.\nversion = 1\nnumber = 1\ntime = \"" +
			time +
			"\"\nsampler = \"Rack\"\nmodel = \"Akai S3000/S3000XL\"\n"
			"work = \"delete program\"\nstate = \"done\"\nname = \"DRUMS\"\n\n"
			"[there 1]\nwhat = \"program\"\nname = \"DRUMS\"\n"
			"file = \"1.program\"\nbytes = \"1.blocks\"\n\n# the end\n");
	const std::pair<std::string, std::string> harm[] = { { "# the end", "" },
		{ "\"1.program\"", "\"..\\x5Cx\"" }, { "\"1.program\"", "\"a/b\"" },
		{ "delete program", "burn" }, { "number = 1", "number = x" },
		{ "[there 1]", "[there 2]" }, { "version = 1", "version = 2" } };
	for (const auto &[word, other] : harm) {
		std::string text = manifest(folder);
		text.replace(text.find(word), word.size(), other);
		EXPECT_NE(read_step_text(text).damage, "") << other;
	}
	const std::string path = h.config + "\\history\\Rack\\" + folder + "\\1.blocks";
	h.put_content(path, bytes{ 'F', '0', ' ', 'G' });
	EXPECT_EQ(undo_on_sampler().words, host.files->host_path(path.c_str()) + " is damaged.");
	EXPECT_TRUE(m.programs.empty());
}

TEST_F(s3000_history, stop_a_full_disk_and_silence_end_the_whole_unless_the_user_goes_on)
{
	const memory before = held(m);
	the_history.long_samples = true;
	h.on_pump = [this] {
		if (h.progress.visible)
			stop_progress();
	};
	EXPECT_EQ(delete_sample("KICK").how, ending::stopped);
	EXPECT_TRUE(h.boxes.empty());
	h.on_pump = nullptr;
	h.disk.space_left = 0;
	h.answers = { false };
	EXPECT_EQ(delete_program({ "DRUMS" }).how, ending::stopped);
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_TRUE(h.boxes[0].text.starts_with(
		"What the sampler holds could not be kept first: The disk is full"));
	EXPECT_EQ(held(m), before);
	EXPECT_EQ(steps_on_disk(), lines{});
	EXPECT_TRUE(delete_program({ "DRUMS" }).done()); // yes
	EXPECT_EQ(undoable_step(), nullptr);
}

TEST_F(s3000_history, a_step_that_does_not_fit_any_more_makes_way_for_the_one_before)
{
	EXPECT_TRUE(rename_sample("KICK", "DRUM").done());
	EXPECT_TRUE(rename_sample("SNARE", "NOISE").done());
	m.samples.pop_back();
	(void)read_sample_list();
	EXPECT_EQ(undo_on_sampler().words,
		"'NOISE' is not on the sampler any more. Nothing was put back.");
	EXPECT_EQ(undo_on_sampler().line,
		"Put back on the sampler: renamed the sample 'KICK' to 'DRUM'.");
	EXPECT_EQ(loaded_names(), lines{ "KICK" });
	EXPECT_EQ(undo_on_sampler().words, "There is nothing to put back on the sampler.");
	h.answers = { false };
	EXPECT_EQ(rename_sample("KICK", "KICK").how, ending::stopped);
}

TEST_F(s3000_history, the_window_lists_puts_back_and_lets_go)
{
	velmor_command(window_main, menu_history);
	EXPECT_TRUE(rename_sample("KICK", "DRUM").done());
	EXPECT_TRUE(delete_program({ "DRUMS" }).done());
	velmor_command(window_history, history_refresh);
	const std::pair<int, int> list = { window_history, history_list };
	ASSERT_EQ(h.rows[list].size(), 2u);
	EXPECT_EQ(h.rows[list][0][0], "Deleted the program 'DRUMS'");
	EXPECT_EQ(h.rows[list][0][4], "Can be put back");
	EXPECT_TRUE((h.visible[{ window_main, status_undo_sampler }]));
	velmor_command(window_history, history_restore);
	EXPECT_EQ(m.programs.size(), 1u);
	velmor_command(window_main, status_undo_sampler);
	EXPECT_EQ(loaded_names(), (lines{ "KICK", "SNARE" }));
	EXPECT_FALSE((h.visible[{ window_main, status_undo_sampler }]));
	EXPECT_EQ((h.texts[{ window_main, status_outcome }]),
		"Put back on the sampler: renamed the sample 'KICK' to 'DRUM'.");
	const std::size_t steps = steps_on_disk().size();
	velmor_command(window_history, history_delete);
	EXPECT_EQ(steps_on_disk().size(), steps - 1);
	the_history.megabytes = 0; // the newest stays
	trim_history();
	EXPECT_EQ(steps_on_disk().size(), 1u);
}

} // namespace velmor
