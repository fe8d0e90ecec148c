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

// A block but for the two bytes that say where it lies in the machine's memory.
std::string shown(machine::bytes block)
{
	block[1] = block[2] = 0;
	return hex_text(block);
}

std::string shown(const std::vector<std::int16_t> &words)
{
	std::string text;
	for (const std::int16_t word : words)
		text += format_text("%d,", word);
	return text;
}

memory sorted(memory all)
{
	std::sort(all.begin(), all.end());
	return all;
}

memory held(const s1000_machine &m)
{
	memory all;
	for (const stored_sample &s : m.samples)
		all.push_back("sample " + shown(s.header) + shown(s.words));
	for (const stored_program &p : m.programs) {
		all.push_back("program " + shown(p.common));
		for (const auto &keygroup : p.keygroups)
			all.back() += "\n" + shown(keygroup);
	}
	return sorted(all);
}

memory held(const s900_machine &m)
{
	memory all;
	for (const s900_sample &s : m.samples)
		all.push_back(
			format_text("sample %d ", s.number) + hex_text(s.header) + shown(s.words));
	for (const s900_program &p : m.programs) {
		all.push_back(format_text("program %d ", p.number) + hex_text(p.common));
		for (const auto &keygroup : p.keygroups)
			all.back() += "\n" + hex_text(keygroup);
	}
	return sorted(all);
}

memory samples_of_usb(const usb_sampler &m)
{
	memory all;
	for (const usb_sample &s : m.samples)
		all.push_back("sample " + s.name + " " + hex_text(s.wave));
	return all;
}

std::string shown(const s5000_keygroup &k)
{
	std::string text;
	for (const auto &row : k.value)
		for (const auto &sub : row)
			text += hex_text(sub) + " ";
	text += hex_text(k.amp) + hex_text(k.aux_rate) + hex_text(k.aux_level);
	for (const s5000_zone &zone : k.zones) {
		text += "\n" + zone.sample + " ";
		for (const auto &value : zone.value)
			text += hex_text(value) + " ";
	}
	return text;
}

memory held(const s5000 &m)
{
	memory all = samples_of_usb(m);
	for (const s5000_program &p : m.programs) {
		all.push_back("program " + p.name);
		for (const s5000_keygroup &keygroup : p.keygroups)
			all.back() += "\n" + shown(keygroup);
	}
	return sorted(all);
}

memory held(const z4 &m)
{
	memory all = samples_of_usb(m);
	for (const z4_program &p : m.programs) {
		all.push_back(
			"program " + p.name + format_text(" %d %d", p.polyphony, p.reassignment));
		for (const z4_keygroup &k : p.keygroups) {
			all.back() += format_text("\n%d %d", k.low_note, k.high_note);
			for (const z4_zone &zone : k.zones)
				all.back() += " " + zone.sample + hex_text(zone.level);
		}
	}
	return sorted(all);
}

class history : public host_test
{
protected:
	~history() override
	{
		h.on_pump = nullptr;
		close_midi_output();
		unplug_all_midi();
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
		else if (getenv("TALK"))
			printf("%s | %s | %s\n", result.words.c_str(), result.line.c_str(),
				h.boxes.empty() ? "" : h.boxes.back().text.c_str());
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

TEST_F(history, an_s3000_is_as_it_was_after_fifty_changes_and_their_undoing)
{
	s1000_machine m(s1000_model::s3000, 0);
	for (const char *name : { "KICK", "SNARE", "HAT" })
		m.add_sample(name, 44100, std::vector<std::int16_t>(50, 500));
	set_loop(m.samples[1], 3, 40);
	for (const char *name : { "DRUMS", "BASS", "CHOIR" })
		m.add_program(name, 2).common[43] = 9;
	plug_midi_sampler(m, model_s3000);
	go_there_and_back(m, 1);
}

TEST_F(history, an_s1000_that_closes_gaps_too)
{
	s1000_machine m(s1000_model::s1000, 0);
	fill_for_benchmark(m, 3, 2, 3, 45);
	m.closes_gaps = true;
	plug_midi_sampler(m, model_s1000);
	go_there_and_back(m, 2);
}

TEST_F(history, an_s900_too)
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
	go_there_and_back(m, 3);
}

TEST_F(history, an_s5000_too)
{
	s5000 m;
	fill_demo(m);
	plug_usb_sampler(m, model_s5000);
	go_there_and_back(m, 4);
}

TEST_F(history, a_z8_and_an_mpc_4000_too)
{
	z4 m(z4_model::z8);
	fill_demo(m);
	plug_usb_sampler(m, model_z4);
	go_there_and_back(m, 5);
}

} // namespace velmor
