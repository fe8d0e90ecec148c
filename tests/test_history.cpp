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
#include <tuple>

#include "tests/support/wave_files.h" // behind what declares bytes of its own

namespace velmor
{
namespace
{

using lines = std::vector<std::string>;

template <class... kinds> struct overloaded : kinds... {
	using kinds::operator()...;
};
template <class... kinds> overloaded(kinds...) -> overloaded<kinds...>;

// Two bytes of a block of the S1000 family say where it lies in the machine's memory.
machine::bytes placeless(machine::bytes block)
{
	block[1] = block[2] = 0;
	return block;
}
std::vector<machine::bytes> placeless(std::vector<machine::bytes> blocks)
{
	for (machine::bytes &block : blocks)
		block = placeless(block);
	return blocks;
}

// What a machine holds, the place in a list left aside.
constexpr overloaded content{
	[](const stored_sample &s) { return std::tuple(placeless(s.header), s.words); },
	[](const stored_program &p) {
		return std::tuple(placeless(p.common), placeless(p.keygroups));
	},
	[](const s900_sample &s) { return std::tuple(s.number, s.header, s.words); },
	[](const s900_program &p) { return std::tuple(p.number, p.common, p.keygroups); },
	[](const usb_sample &s) { return std::tuple(s.name, s.wave); },
	[](const s5000_program &p) { return std::tuple(p.name, p.keygroups); },
	[](const z4_program &p) {
		return std::tuple(p.name, p.keygroups, p.polyphony, p.reassignment);
	},
};
template <class things> auto contents(const things &list)
{
	std::vector<decltype(content(list[0]))> all;
	for (const auto &thing : list)
		all.push_back(content(thing));
	std::sort(all.begin(), all.end(),
		[](const auto &a, const auto &b) { return std::get<0>(a) < std::get<0>(b); });
	return all;
}
template <class sampler_machine> auto held(const sampler_machine &m)
{
	return std::pair(contents(m.samples), contents(m.programs));
}

class history : public host_test
{
protected:
	~history() override { unplug(); }
	void unplug()
	{
		h.on_pump = nullptr;
		close_midi_output();
		unplug_all_midi();
		unplug_all_usb();
		usbdev.clear();
		usbdevs = usb_init_done = 0;
	}
	template <class sampler_machine> void plug_on_midi(sampler_machine &&on_wire, i32 model)
	{
		host.midi = &virtual_midi;
		plug_midi(h.time, on_wire, "virtual");
		reload_midi_setup(false);
		selected_midi_in_interface = selected_midi_out_interface = 0;
		begin(model, "");
	}
	void plug_on_usb(usb_sampler &m, i32 model)
	{
		m.name = "Studio";
		host.usb = &virtual_usb;
		plug_usb(h.time, m);
		init_usb(1);
		begin(model, "Studio");
	}
	void begin(i32 model, const char *usb_name)
	{
		h.use_sampler(model, 0, usb_name);
		copy_text(current_sampler->sampler_description, "Rack");
		the_history.on = the_history.long_samples = true;
		h.limits.seconds = 1e6;
		h.limits.disk_bytes = 1u << 30;
	}
	std::string any(const lines &names)
	{
		return names.empty() ? "" : names[random() % names.size()];
	}
	std::string fresh_name() { return format_text("NEW %d", ++made); }
	// A file of the spool that the loaded model takes, without its extension.
	std::string spool(const std::string &name)
	{
		std::vector<std::int16_t> words(
			40 + random() % 50, static_cast<std::int16_t>(random() % 2047));
		bytes sound;
		for (const std::int16_t value : words)
			sound = sound + word(static_cast<u16>(value), 2);
		const std::string folder = h.config + "\\sample", path = folder + "\\" + name;
		h.put_content(path + ".wav",
			current_sampler->sampler_type == model_s900
				? riff(fmt({ 1, 12, 2, 12000 }) + chunk("data", sound))
				: make_wave(words, {}));
		load_local_samples(folder.c_str());
		return path;
	}
	outcome do_something();
	template <class sampler_machine> void go_there_and_back(sampler_machine &m, unsigned seed);

	std::mt19937 random;
	int made = 0;
};

// One of the things that a user does; done, or refused where the model lacks it.
outcome history::do_something()
{
	const _sampler_type &model = *get_sampler(static_cast<i32>(current_sampler->sampler_type));
	h.answers.clear();
	(void)have_program_list();
	(void)have_sample_list();
	const std::string sample = any(loaded_names()), name = any(loaded_programs());
	if (name.empty() || sample.empty())
		return upload_sample(spool(fresh_name()));
	const lines names = loaded_programs();
	_program *program =
		&current_sampler->status
			 ->program[std::find(names.begin(), names.end(), name) - names.begin()];
	const auto copy = std::make_unique<_program>(*program);
	copy->keygroup[0].high_note = static_cast<u8>(60 + random() % 40);
	const auto change = [&] {
		program->keygroup[0].low_note = static_cast<u8>(24 + random() % 30);
		program->polyphony = 1 + static_cast<i32>(random() % 30);
	};
	const bool updates_only = model.saveprogram == get_sampler(model_z4)->saveprogram;
	// What no undo takes back is asked about; the answer is no.
	const std::function<outcome()> things[] = {
		[&] { return rename_sample(sample, fresh_name()); },
		[&] { return delete_sample(sample); },
		[&] {
			return h.answers = { model.renamesample != nullptr },
			       upload_sample(spool(fresh_name()));
		},
		[&] { return upload_sample(spool(sample)); },
		[&] { return rename_program({ name }, fresh_name()); },
		[&] { return h.answers = { !updates_only }, delete_program({ name }); },
		[&] { return change(), save_program({ name }); },
		[&] { return delete_keygroup({ name }, 0); },
		[&] { return upload_program(*copy); },
		[&] { return copy_text(copy->name, fresh_name()), upload_program(*copy); },
	};
	return things[random() % std::size(things)]();
}

template <class sampler_machine> void history::go_there_and_back(sampler_machine &m, unsigned seed)
{
	random.seed(seed);
	std::vector states = { held(m) };
	for (int i = 0; i < 500 && states.size() <= 50; i++) {
		const std::size_t steps = history_steps().size();
		const outcome result = do_something();
		if (history_steps().size() > steps)
			states.push_back(held(m));
		ASSERT_TRUE(held(m) == states.back()) << result.words << result.line;
	}
	EXPECT_EQ(states.size(), 51u);
	while (states.size() > 1) {
		ASSERT_NE(undoable_step(), nullptr) << states.size();
		const std::string what = step_words(*undoable_step());
		ASSERT_TRUE(undo_on_sampler().done()) << what;
		states.pop_back();
		ASSERT_TRUE(held(m) == states.back()) << what;
	}
	EXPECT_EQ(undoable_step(), nullptr);
}

} // namespace

// The place in a list may be another one; names, blocks, headers and words are the same.
TEST_F(history, fifty_changes_and_fifty_undos_leave_an_s3000_and_an_s1000_as_they_were)
{
	for (const s1000_model which : { s1000_model::s3000, s1000_model::s1000 }) {
		s1000_machine m(which, 0);
		m.closes_gaps = which == s1000_model::s1000;
		for (const char *name : { "KICK", "SNARE", "HAT" })
			m.add_sample(name, 44100, std::vector<std::int16_t>(50, 500));
		set_loop(m.samples[1], 3, 40);
		for (const char *name : { "DRUMS", "BASS", "CHOIR" })
			m.add_program(name, 2).common[43] = 9; // nobody knows what it is
		plug_on_midi(m, m.closes_gaps ? model_s1000 : model_s3000);
		for (const unsigned seed : { 1u, 2u, 3u })
			go_there_and_back(m, seed);
		unplug();
	}
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
	plug_on_midi(m.on_wire(h.time), model_s900);
	current_sampler->sampler_sysex = 1;
	for (const unsigned seed : { 4u, 5u })
		go_there_and_back(m, seed);
	// The machine says nothing to a message that is damaged.
	(void)read_program_list();
	current_sampler->status->program[0].keygroup[0].low_note ^= 1;
	ASSERT_TRUE(save_program({ loaded_programs()[0] }).done());
	const auto changed = held(m);
	const std::string path = step_folder(history_steps().back()) + "\\1.blocks";
	bytes kept = h.content(path).value_or(bytes());
	ASSERT_GT(kept.size(), 100u);
	kept[60] = kept[60] == '0' ? '1' : '0';
	h.put_content(path, kept);
	EXPECT_EQ(undo_on_sampler().how, ending::refused);
	EXPECT_TRUE(held(m) == changed);
}

TEST_F(history, and_an_s5000_a_z8_and_an_mpc_4000)
{
	s5000 five;
	fill_demo(five);
	plug_on_usb(five, model_s5000);
	for (const unsigned seed : { 6u, 7u })
		go_there_and_back(five, seed);
	for (const z4_model which : { z4_model::z8, z4_model::mpc4000 }) {
		unplug();
		z4 m(which);
		fill_demo(m);
		plug_on_usb(m, which == z4_model::z8 ? model_z4 : model_mpc4000);
		go_there_and_back(m, 8);
	}
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
		plug_on_midi(m, model_s3000);
		the_history.long_samples = false;
		(void)read_program_list();
		(void)read_sample_list();
	}
	lines steps_on_disk() { return names_in(h.config + "\\history\\Rack"); }
	s1000_machine m{ s1000_model::s3000, 0 };
};

} // namespace

TEST_F(s3000_history, what_takes_long_is_asked_about_once_and_cancel_leaves_everything)
{
	const auto before = held(m);
	h.answers = { false, false };
	EXPECT_EQ(delete_sample("KICK").line, "'KICK' was left as it is on the sampler.");
	EXPECT_EQ(h.boxes,
		(std::vector<shown_box>{
			{ "'KICK' goes from the sampler. Keep a copy first? about 10 s\n"
			  "The answer holds until VELMOR is closed.",
				"INFO" },
			{ "Go on without a copy? 'KICK' cannot be put back then.", "WARNING" } }));
	EXPECT_TRUE(held(m) == before);
	h.boxes.clear();
	EXPECT_TRUE(delete_sample("KICK").done());
	EXPECT_TRUE(delete_sample("SNARE").done());
	EXPECT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(history_steps().size(), 2u);
	EXPECT_TRUE(undo_on_sampler().done() && undo_on_sampler().done());
	EXPECT_TRUE(held(m) == before);
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
	EXPECT_EQ(kept[0], hex("F0 47 00 06 48 00 00 F7"));
	EXPECT_EQ(kept[1], hex("F0 47 00 08 48 00 00 00 F7"));
	EXPECT_EQ((std::vector(kept.begin() + 2, kept.end())), plain);
}

TEST_F(s3000_history, a_step_is_a_folder_that_a_person_can_read)
{
	EXPECT_TRUE(delete_program({ "DRUMS" }).done());
	ASSERT_EQ(steps_on_disk().size(), 1u);
	const std::string folder = h.config + "\\history\\Rack\\" + steps_on_disk()[0];
	EXPECT_EQ(names_in(folder), (lines{ "1.blocks", "1.program", "step.txt" }));
	const bytes file = h.content(folder + "\\step.txt").value_or(bytes());
	const std::string whole(file.begin(), file.end());
	EXPECT_TRUE(
		whole.ends_with("\"\nsampler = \"Rack\"\nmodel = \"Akai S3000/S3000XL\"\n"
				"work = \"delete program\"\nstate = \"done\"\nname = \"DRUMS\"\n\n"
				"[there 1]\nwhat = \"program\"\nname = \"DRUMS\"\n"
				"file = \"1.program\"\nbytes = \"1.blocks\"\n\n# the end\n"));
	const std::pair<std::string, std::string> harm[] = { { "# the end", "" },
		{ "\"1.program\"", "\"..\\x5Cx\"" }, { "\"1.program\"", "\"a/b\"" },
		{ "delete program", "burn" }, { "number = 1", "number = x" },
		{ "[there 1]", "[there 2]" }, { "version = 1", "version = 2" } };
	for (const auto &[word, other] : harm) {
		std::string text = whole;
		text.replace(text.find(word), word.size(), other);
		EXPECT_NE(read_step_text(text).damage, "") << other;
	}
	const std::string path = folder + "\\1.blocks";
	h.put_content(path, bytes{ 'F', '0', ' ', 'G' });
	EXPECT_EQ(undo_on_sampler().words, host.files->host_path(path.c_str()) + " is damaged.");
	EXPECT_TRUE(m.programs.empty());
}

TEST_F(s3000_history, stop_a_full_disk_and_silence_end_the_whole_unless_the_user_goes_on)
{
	const auto before = held(m);
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
	EXPECT_TRUE(held(m) == before);
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
	const std::size_t steps = steps_on_disk().size();
	velmor_command(window_history, history_delete);
	EXPECT_EQ(steps_on_disk().size(), steps - 1);
	for (const std::string &step : steps_on_disk())
		h.put_content(h.config + "\\history\\Rack\\" + step + "\\x", bytes(400000));
	read_history();
	const std::string second = history_steps()[1].folder;
	the_history.megabytes = 1; // of 1.2 the oldest goes
	trim_history();
	EXPECT_EQ(steps_on_disk().size(), 2u);
	EXPECT_EQ(history_steps()[0].folder, second);
	the_history.megabytes = 0; // the newest stays
	trim_history();
	EXPECT_EQ(steps_on_disk().size(), 1u);
}

} // namespace velmor
