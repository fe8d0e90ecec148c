// journey_akp.cpp - AKP programs on their way from a folder to an S5000, done by hand
//
// The programs are written here, byte by byte, beside the WAV files that they name; what arrived
// is looked up in the memory of the virtual sampler.

#include "programs/journey_parts.h"
#include "src/velmor_window.h"
#include "virtual/demo_content.h"
#include "virtual/wave_image.h"
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace velmor
{

using bytes = std::vector<std::uint8_t>;

// ---- What is brought -----------------------------------------------------------------------

struct akp_keygroup {
	std::uint8_t low, high, cutoff, attack;
	std::int8_t semitones;
	std::vector<std::string> samples; // one zone each, in layers of velocity
};

struct akp_program {
	std::string name;
	std::vector<akp_keygroup> keygroups;
};

static void add_chunk(bytes *to, const char *name, const bytes &data)
{
	to->insert(to->end(), name, name + 4);
	for (unsigned shift : { 0, 8, 16, 24 })
		to->push_back(static_cast<std::uint8_t>(data.size() >> shift));
	to->insert(to->end(), data.begin(), data.end());
}

static std::uint8_t layer_end(std::size_t place, std::size_t layers)
{
	return static_cast<std::uint8_t>(127 * place / layers);
}

static bytes zone_chunk(const akp_keygroup &k, std::size_t place)
{
	bytes zone(46);
	const bool used = place < k.samples.size();
	const std::string name = used ? k.samples[place] : "";
	zone[1] = static_cast<std::uint8_t>(name.size());
	std::memcpy(zone.data() + 2, name.data(), name.size());
	zone[34] = used && place ? static_cast<std::uint8_t>(layer_end(place, k.samples.size()) + 1)
				 : 0;
	zone[35] = used ? layer_end(place + 1, k.samples.size()) : 127;
	zone[43] = 1; // follows the keys
	return zone;
}

static bytes keygroup_chunk(const akp_keygroup &k)
{
	bytes inner, kloc(16), envelope(18), filter(10);
	kloc[4] = k.low;
	kloc[5] = k.high;
	kloc[6] = static_cast<std::uint8_t>(k.semitones);
	envelope[1] = k.attack;
	envelope[3] = 50;
	envelope[4] = 20; // release
	envelope[7] = 90; // sustain
	filter[2] = k.cutoff;
	add_chunk(&inner, "kloc", kloc);
	for (int i = 0; i < 3; i++)
		add_chunk(&inner, "env ", envelope);
	add_chunk(&inner, "filt", filter);
	for (std::size_t place = 0; place < 4; place++)
		add_chunk(&inner, "zone", zone_chunk(k, place));
	return inner;
}

static void write_file(const std::string &path, const bytes &content)
{
	std::ofstream file(path, std::ios::binary);
	file.write(reinterpret_cast<const char *>(content.data()),
		static_cast<std::streamsize>(content.size()));
}

static void write_program(const std::string &folder, const akp_program &program)
{
	bytes chunks = { 'A', 'P', 'R', 'G' }, file;
	add_chunk(&chunks, "prg ",
		{ 1, 0, static_cast<std::uint8_t>(program.keygroups.size()), 0, 2, 0 });
	add_chunk(&chunks, "out ", { 0, 85, 0, 0, 0, 0, 0, 25 });
	for (const akp_keygroup &k : program.keygroups)
		add_chunk(&chunks, "kgrp", keygroup_chunk(k));
	add_chunk(&file, "RIFF", chunks);
	write_file(folder + "/" + program.name + ".AKP", file);
}

// The user's first three, or as many sounds as are missing, made here. Their names.
static std::vector<std::string> put_samples(
	const std::string &folder, const std::vector<std::string> &files)
{
	constexpr std::size_t wanted = 3, longest_name = 20;
	std::vector<std::string> names;
	for (const std::string &file : files) {
		const std::string name = base_name(file).substr(0, longest_name);
		if (names.size() == wanted || std::ranges::count(names, name))
			continue;
		std::filesystem::copy_file(file, folder + "/" + name + ".wav",
			std::filesystem::copy_options::overwrite_existing);
		names.push_back(name);
	}
	const struct {
		const char *name;
		demo_sound sound;
	} made[] = { { "AKP Bass", bass_note(44100, 65.41) }, { "AKP Snare", snare_drum(44100) },
		{ "AKP Strings", string_note(44100, 261.63, 0.5) } };
	for (std::size_t i = names.size(); i < wanted; i++) {
		const demo_sound &sound = made[i].sound;
		write_file(folder + "/" + made[i].name + ".wav",
			make_wave(sound.words, { .rate = sound.rate }));
		names.push_back(made[i].name);
	}
	return names;
}

// ---- The way ---------------------------------------------------------------------------------

static bool holds(const s5000_keygroup &on_machine, const akp_keygroup &k)
{
	s5000_keygroup held = on_machine;
	const std::uint8_t size = static_cast<std::uint8_t>(std::abs(k.semitones));
	const std::array<std::uint8_t, 2> semitones = { k.semitones < 0, size };
	for (std::size_t z = 0; z < held.zones.size(); z++)
		if (held.zones[z].sample != (z < k.samples.size() ? k.samples[z] : ""))
			return false;
	return held.at(0x04)[0] == k.low && held.at(0x05)[0] == k.high &&
	       held.at(0x10) == semitones && held.at(0x21)[0] == k.cutoff &&
	       held.amp == std::array<std::uint8_t, 4>{ k.attack, 50, 90, 20 };
}

static void look_on_machine(const s5000 &machine, const akp_program &program)
{
	const auto found = std::ranges::find(machine.programs, program.name, &s5000_program::name);
	const bool there = found != machine.programs.end() &&
			   found->keygroups.size() == program.keygroups.size();
	check(there, "the sampler holds " + program.name);
	if (there)
		check(std::ranges::equal(found->keygroups, program.keygroups, holds),
			"each of its keygroups is what the file says");
}

static void send(
	const s5000 &machine, const akp_program &program, const std::vector<std::string> &samples)
{
	choose(window_programs, programs_local_list, program.name);
	forget_boxes();
	press(window_programs, programs_upload);
	check(box_began(format_text("Also upload required samples (%zu Samples)?", samples.size())),
		format_text("%zu samples were offered", samples.size()));
	look_on_machine(machine, program);
	for (const std::string &name : samples) {
		const auto found = std::ranges::find(machine.samples, name, &usb_sample::name);
		check(found != machine.samples.end() && found->wave == bytes_of(spool_path(name)),
			"the sampler holds its sample " + name);
	}
}

static void read_again(const akp_program &program)
{
	press(window_programs, programs_refresh);
	choose(window_programs, programs_loaded_list, program.name);
	press(window_programs, programs_information);
	const _dev_status &dev = *current_sampler->status;
	const _program &shown = dev.program[std::clamp(current_pgm_index, 0, max_programs - 1)];
	const akp_keygroup &last = program.keygroups.back();
	const auto end = program.keygroups.size() - 1;
	check(shown.name == program.name && shown.keygroups == static_cast<int>(end) + 1 &&
			shown.keygroup[end].high_note == last.high &&
			shown.keygroup[end].s5000_semitone_tune == last.semitones &&
			shown.keygroup[end].keyzone[0].samplename == last.samples.front(),
		"read again, " + program.name + " is the same");
}

void bring_akp_programs(const journey &trip)
{
	step("Import two AKP programs with their samples, and send them to the S5000");
	const std::string folder = trip.pictures + "/akp";
	std::filesystem::create_directories(folder);
	const std::vector<std::string> names = put_samples(folder, trip.files);
	const akp_program kit = { "Journey Kit",
		{ { 36, 47, 100, 0, 0, { names[0] } }, { 48, 59, 80, 10, -5, { names[1] } },
			{ 60, 84, 60, 30, 12, { names[2] } } } };
	const akp_program layers = { "Journey Layers",
		{ { 36, 96, 90, 5, 0, { names[0], names[2], "Not There" } } } };
	write_program(folder, kit);
	write_program(folder, layers);
	press(window_main, main_programs);
	files_to_choose(folder, { kit.name + ".AKP", layers.name + ".AKP" });
	picture_box("'Journey Kit'", "programs-akp-box");
	forget_boxes();
	press(window_programs, programs_import_akp);
	check(box_began("Also import 3 Samples?"), "three samples each were offered");
	check(box_began("Sample [Not There] File: "), "one of them is missing, and was named");
	check(box_began("'Journey Kit': 3 keygroups, 12 keyzones, 3 samples; 2 parameters cannot "
			"reach an Akai S5000/6000.\n'Journey Layers': 1 keygroup, 4 keyzones, 3 "
			"samples (not on this computer: Not There); 2 parameters cannot reach an "
			"Akai S5000/6000.\nThe log names the parameters that cannot go"),
		"a sentence says of each what was taken");
	check(names_in(window_programs, programs_local_list) ==
			std::vector{ kit.name, layers.name },
		"both are programs of this computer");
	send(*trip.akp_sampler, kit, names);
	send(*trip.akp_sampler, layers, { names[0], names[2] });
	picture(window_programs, "programs-akp");
	read_again(kit);
	read_again(layers);
}

} // namespace velmor
