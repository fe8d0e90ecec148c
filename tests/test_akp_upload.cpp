// test_akp_upload.cpp - AKP files on their way to an S5000, through the program page
//
// Where a byte of a file arrives on the machine stands in a table of its own, read from both
// formats once more: chunk and byte of the file, item and sub-index of the machine, field.

#include "src/parameters.h"
#include "src/velmor_akp.h"
#include "src/velmor_window.h"
#include "src/waveqx.h"
#include "tests/support/fake_model.h"
#include "tests/support/usb_fixture.h"
#include "virtual/s5000.h"

#include "tests/support/wave_files.h" // behind what declares bytes of its own

namespace velmor
{
namespace
{

using K = _keygroup;
using Z = _keyzone;

// The chunks of a keygroup, in their order; env stands three times.
constexpr std::size_t kloc = 0, amp = 1, filter = 2, aux = 3, filt = 4, chunks_of_keygroup = 5;
constexpr const char *names[] = { "kloc", "env ", "env ", "env ", "filt" };
constexpr std::size_t sizes[] = { 16, 18, 18, 18, 10 };

// Beside the items of block requests: places of the envelopes that are set one by one.
constexpr std::uint8_t in_amp = 0xA0, in_rate = 0xA1, in_level = 0xA2;

struct arrival {
	std::size_t chunk, byte;
	bool has_sign;
	std::uint8_t item;
	std::size_t sub;
	member<K> field;
};
// clang-format off
const arrival values[] = {
	{ kloc,   4, false, 0x04, 1, &K::low_note },                 { kloc,   5, false, 0x05, 1, &K::high_note },
	{ kloc,   6, true,  0x10, 1, &K::s5000_semitone_tune },      { kloc,   7, true,  0x11, 1, &K::s5000_fine_tune },
	{ kloc,   8, false, 0x07, 1, &K::fx_override },              { kloc,   9, false, 0x08, 1, &K::fx_sendlevel },
	{ kloc,  10, true,  0x13, 1, &K::s5000_pitch_mod1_val },     { kloc,  11, true,  0x13, 2, &K::s5000_pitch_mod2_val },
	{ kloc,  12, true,  0x14, 1, &K::s5000_amp_mod1_val },       { kloc,  13, false, 0x09, 1, &K::crossfade },
	{ kloc,  14, false, 0x06, 1, &K::mute_group },
	{ amp,    1, false, in_amp, 1, &K::amp_attack },             { amp,    3, false, in_amp, 2, &K::amp_decay },
	{ amp,    7, false, in_amp, 3, &K::amp_sustain },            { amp,    4, false, in_amp, 4, &K::amp_release },
	{ aux,    1, false, in_rate, 1, &K::aux_rate1 },             { aux,    2, false, in_rate, 2, &K::aux_rate2 },
	{ aux,    3, false, in_rate, 3, &K::aux_rate3 },             { aux,    4, false, in_rate, 4, &K::aux_rate4 },
	{ aux,    5, false, in_level, 1, &K::aux_rate1_level },      { aux,    6, false, in_level, 2, &K::aux_rate2_level },
	{ aux,    7, false, in_level, 3, &K::aux_rate3_level },      { aux,    8, false, in_level, 4, &K::aux_rate4_level },
	{ filter, 1, false, 0x30, 1, &K::filter_attack },            { filter, 3, false, 0x32, 1, &K::filter_decay },
	{ filter, 7, false, 0x33, 1, &K::filter_sustain },           { filter, 4, false, 0x34, 1, &K::filter_release },
	{ filt,   1, false, 0x20, 1, &K::s5000_filter_mode },        { filt,   2, false, 0x21, 1, &K::s5000_filter_cutoff },
	{ filt,   3, false, 0x22, 1, &K::s5000_filter_resonance },   { filt,   4, true,  0x23, 1, &K::s5000_filter_keyboard_track },
	{ filt,   5, true,  0x24, 1, &K::s5000_filter_mod1_input },  { filt,   6, true,  0x24, 2, &K::s5000_filter_mod2_input },
	{ filt,   7, true,  0x24, 3, &K::s5000_filter_mod3_input },  { filt,   8, false, 0x25, 1, &K::s5000_filter_attenuation },
};
struct zone_arrival {
	std::size_t byte;
	bool has_sign;
	std::uint8_t item;
	member<Z> field;
};
const zone_arrival zone_values[] = {
	{ 34, false, 0x0C, &Z::low_velocity }, { 35, false, 0x0B, &Z::high_velocity }, { 38, true, 0x05, &Z::zone_filter },
	{ 42, true,  0x02, &Z::zone_level },   { 43, false, 0x08, &Z::zone_keyboard_track },
};
// clang-format on

// Seven bits that no neighbour has.
u8 value_at(int seed, std::size_t i)
{
	return static_cast<u8>(1 + (static_cast<std::size_t>(seed) * 41 + i * 13) % 99);
}

u8 negative(u8 value)
{
	return static_cast<u8>(256 - value);
}

struct built_keygroup {
	bytes chunk[chunks_of_keygroup];
	bytes zone[4];
};

// Every byte another value, those of no meaning too; signed ones are negative on odd seeds.
built_keygroup build(int seed)
{
	built_keygroup k;
	for (std::size_t c = 0; c < chunks_of_keygroup; c++)
		for (std::size_t i = 0; i < sizes[c]; i++)
			k.chunk[c].push_back(value_at(seed + static_cast<int>(c) * 7, i));
	for (const arrival &a : values) {
		u8 &value = k.chunk[a.chunk][a.byte];
		value = a.has_sign && seed % 2 ? negative(value) : value;
	}
	for (int z = 0; z < 4; z++) {
		const std::string name = z < 3 ? format_text("AKP %d-%d", seed, z) : "";
		bytes &zone = k.zone[z];
		zone = hex("01") + word(name.size(), 1) + text(name.c_str());
		while (zone.size() < 46)
			zone.push_back(value_at(seed + 50 + z, zone.size()));
		for (const zone_arrival &a : zone_values)
			if (a.has_sign && (seed + z) % 2)
				zone[a.byte] = negative(zone[a.byte]);
	}
	return k;
}

bytes keygroup_chunk(const built_keygroup &k)
{
	bytes all;
	for (std::size_t c = 0; c < chunks_of_keygroup; c++)
		all = all + chunk(names[c], k.chunk[c]);
	for (const bytes &zone : k.zone)
		all = all + chunk("zone", zone);
	return chunk("kgrp", all);
}

std::array<std::uint8_t, 2> sign_and_size(u8 value, bool has_sign)
{
	if (!has_sign)
		return { value };
	return { value > 127, value > 127 ? negative(value) : value };
}

void put(s5000_keygroup *k, const arrival &a, u8 value)
{
	if (a.item == in_amp)
		k->amp[a.sub - 1] = value;
	else if (a.item == in_rate)
		k->aux_rate[a.sub - 1] = value;
	else if (a.item == in_level)
		k->aux_level[a.sub - 1] = value;
	else
		k->at(a.item, static_cast<int>(a.sub)) = sign_and_size(value, a.has_sign);
}

// What the machine must hold; a value of which a file says nothing is 0, panning is its middle.
s5000_keygroup expected(const built_keygroup &k)
{
	s5000_keygroup out;
	out.value = {};
	for (const arrival &a : values)
		put(&out, a, k.chunk[a.chunk][a.byte]);
	for (std::size_t z = 0; z < 4; z++) {
		s5000_zone &zone = out.zones[z];
		const bytes &from = k.zone[z];
		zone.sample = { from.begin() + 2, from.begin() + 2 + from[1] };
		zone.value = {};
		zone.value[0x03] = { 64 };
		for (const zone_arrival &a : zone_values) {
			const auto [sign, size] = sign_and_size(from[a.byte], a.has_sign);
			zone.value[a.item] = { sign, size };
		}
	}
	return out;
}

i32 number(u8 value, bool has_sign)
{
	return has_sign && value > 127 ? value - 256 : value;
}

void expect_read(const built_keygroup &from, const K &read)
{
	for (const arrival &a : values)
		EXPECT_EQ(a.field.get(read), number(from.chunk[a.chunk][a.byte], a.has_sign))
			<< names[a.chunk] << a.byte;
	for (std::size_t z = 0; z < 4; z++)
		for (const zone_arrival &a : zone_values)
			EXPECT_EQ(a.field.get(read.keyzone[z]),
				number(from.zone[z][a.byte], a.has_sign))
				<< z << ": " << a.byte;
}

bytes count_up(std::size_t size)
{
	bytes out;
	for (std::size_t i = 0; i < size; i++)
		out.push_back(static_cast<u8>(i + 1));
	return out;
}

// Every chunk of a program, with no byte of 0.
bytes program_file(const std::vector<built_keygroup> &keygroups)
{
	bytes all = chunk("prg ", { 1, 5, static_cast<u8>(keygroups.size()), 0, 2, 0 }) +
		    chunk("out ", count_up(8)) + chunk("tune", count_up(22)) +
		    chunk("lfo ", count_up(12)) + chunk("lfo ", count_up(12)) +
		    chunk("mods", count_up(38));
	for (const built_keygroup &k : keygroups)
		all = all + keygroup_chunk(k);
	return riff(all, "APRG");
}

class akp_upload : public usb_test
{
protected:
	s5000 machine;
	std::string folder = h.config + "\\disk";

	akp_upload()
	{
		machine.name = "Studio";
		machine.programs.push_back({ "OTHER", std::vector<s5000_keygroup>(2) });
		host.usb = &virtual_usb;
		plug_usb(h.time, machine);
		init_usb(1);
		h.use_sampler(model_s5000, 0, "Studio");
		host.files->make_folder(folder.c_str());
		velmor_command(window_main, main_programs);
		h.boxes.clear();
	}
	void put(const std::string &name, const bytes &content)
	{
		h.put_content(folder + "\\" + name, content);
	}
	void import(std::vector<std::string> files)
	{
		for (std::string &file : files)
			file = folder + "\\" + file;
		h.chosen_files = files;
		h.boxes.clear();
		velmor_command(window_programs, programs_import_akp);
	}
	void upload(int index)
	{
		host.ui->select(window_programs, programs_local_list, index);
		velmor_selection(window_programs, programs_local_list);
		h.boxes.clear();
		velmor_command(window_programs, programs_upload);
	}
};

} // namespace

TEST_F(akp_upload, every_byte_that_the_machine_takes_arrives_and_is_read_again)
{
	const std::vector<built_keygroup> built = { build(1), build(2), build(3) };
	put("Grand.akp", program_file(built));
	h.answers = { false };
	import({ "Grand.akp" });
	ASSERT_EQ(h.boxes.size(), 2u);
	EXPECT_EQ(h.boxes[0], (shown_box{ "Also import 9 Samples?", "INFO" }));
	// Of a program 1 + 7 + 15 + 17 + 14 parameters, and of a keygroup what steers its third
	// envelope.
	EXPECT_EQ(h.boxes[1].text,
		"'Grand': 3 keygroups, 12 keyzones, 9 samples (not on this computer: AKP 1-0, AKP "
		"1-1, AKP 1-2, AKP 2-0, AKP 2-1, AKP 2-2, AKP 3-0, AKP 3-1 and 1 more); 59 "
		"parameters cannot reach an Akai S5000/6000.\nThe log "
		"names the parameters that cannot go, and those that no AKP file tells and that "
		"are sent as 0.");
	EXPECT_TRUE(h.logged("[I] 'Grand' does not tell what an Akai S5000/6000 is sent as 0: "
			     "fine_tune, s1000_env1_key_scaling, s1000_env1_off_velocity_release, "
			     "s1000_env1_velocity_attack, s5000_env1_depth, "
			     "s5000_env1_on_velocity_release, s5000_keygroup_level, semitone_tune, "
			     "velocity_start, zone_mute, zone_output, zone_panning, "
			     "zone_playback, zone_solo"));
	EXPECT_TRUE(logged_part(h, "s1000_env2_velocity_r1, s1000_env2_velocity_r4, "
				   "s1000_env2_off_velocity_r4, s1000_env2_key_r2_r4, "
				   "s1000_env2_velocity_envelope"));
	const s5000_program other = machine.programs[0];
	upload(0);
	EXPECT_EQ(h.boxes[0], (shown_box{ "Also upload required samples (0 Samples)?", "INFO" }));
	EXPECT_EQ(h.boxes.size(), 1u);
	ASSERT_EQ(machine.programs.size(), 2u);
	EXPECT_EQ(machine.programs[0], other);
	EXPECT_EQ(machine.programs[1].name, "Grand");
	ASSERT_EQ(machine.programs[1].keygroups.size(), 3u);
	const _program &read = current_sampler->status->program[1];
	ASSERT_EQ(read.keygroups, 3);
	for (std::size_t k = 0; k < 3; k++) {
		SCOPED_TRACE(k);
		EXPECT_TRUE(machine.programs[1].keygroups[k] == expected(built[k]));
		expect_read(built[k], read.keygroup[k]);
	}
}

TEST_F(akp_upload, samples_of_other_cases_come_along_and_stop_ends_the_queue)
{
	built_keygroup k = build(2);
	put("One.akp", program_file({ k }));
	put("Two.akp", program_file({ build(4) }));
	for (const char *name : { "akp 2-0.WAV", "AKP 2-1.wav", "Akp 4-2.wav" })
		put(name, wave_bytes(44100, 1, { 1, 2, 3, 4 }));
	import({ "One.akp", "Two.akp" });
	ASSERT_EQ(h.boxes.size(), 6u);
	EXPECT_EQ(h.boxes[0].text, "Also import 3 Samples?");
	EXPECT_EQ(h.boxes[5].text.substr(0, h.boxes[5].text.find("; 59 ")),
		"'One': 1 keygroup, 4 keyzones, 3 samples (not on this computer: AKP 2-2)");
	EXPECT_NE(h.boxes[5].text.find("\n'Two': 1 keygroup, 4 keyzones, 3 samples (not on this "
				       "computer: AKP 4-0, AKP 4-1)"),
		std::string::npos);
	upload(0);
	EXPECT_EQ(h.boxes[0].text, "Also upload required samples (2 Samples)?");
	ASSERT_EQ(machine.samples.size(), 2u);
	EXPECT_EQ(machine.samples[0].name, machine.programs[1].keygroups[0].zones[0].sample);
	EXPECT_EQ(machine.samples[1].name, "AKP 2-1");
	// Stop at the first sample of the second program.
	put("AKP 4-0.wav", wave_bytes(44100, 1, std::vector<int>(30000, 7)));
	import({ "Two.akp" });
	h.on_pump = [&] {
		if (h.progress.visible && machine.programs.size() == 3 &&
			h.progress.caption.find("AKP 4-0") != std::string::npos)
			velmor_command(window_progress, progress_stop);
	};
	upload(2);
	h.on_pump = nullptr;
	EXPECT_EQ(machine.samples.size(), 2u);
	EXPECT_FALSE(h.progress.visible);
	EXPECT_NE((h.texts[{ window_programs, status_outcome }].find("0 of 2 samples were "
								     "uploaded.")),
		std::string::npos)
		<< h.texts[{ window_programs, status_outcome }];
}

TEST_F(akp_upload, stop_ends_an_import_behind_the_sample_that_is_on_its_way)
{
	put("One.akp", program_file({ build(2) }));
	put("Two.akp", program_file({ build(4) }));
	for (const char *name : { "AKP 2-0.wav", "AKP 2-1.wav", "AKP 2-2.wav", "AKP 4-0.wav" })
		put(name, wave_bytes(44100, 1, { 1, 2, 3, 4 }));
	h.on_pump = [&] {
		if (h.progress.caption == "Importing 3 samples..." && h.progress.value == 2)
			velmor_command(window_progress, progress_stop);
	};
	import({ "One.akp", "Two.akp" });
	h.on_pump = nullptr;
	EXPECT_EQ(names_in(h.config + "\\sample"),
		(std::vector<std::string>{ "AKP 2-0.wav", "AKP 2-1.wav" }));
	EXPECT_EQ(local_pgms, 1);
	EXPECT_FALSE(h.progress.visible);
	EXPECT_EQ(
		(h.texts[{ window_programs, status_outcome }]), "1 of 2 AKP files were imported.");
}

TEST_F(akp_upload, a_box_of_many_programs_stays_a_box)
{
	std::vector<std::string> files;
	for (const char *name : { "1", "2", "3", "4", "5", "6", "7", "8", "9", "10" }) {
		files.push_back(std::string(name) + ".akp");
		put(files.back(), program_file({}));
	}
	import(files);
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_NE(h.boxes[0].text.find("\n'8': 0 keygroups, 0 keyzones, 0 samples; 54 parameters "
				       "cannot reach an Akai S5000/6000.\nAnd 2 more, which the "
				       "log names.\nThe log names"),
		std::string::npos);
	EXPECT_TRUE(h.logged("[I] Imported '10': 0 keygroups, 0 keyzones, 0 samples; 54 parameters "
			     "cannot reach an Akai S5000/6000."));
}

TEST(akp_gap, a_byte_arrives_where_one_of_its_fields_does)
{
	const auto p = std::make_unique<_program>();
	p->keygroups = p->keygroup[0].keyzones = 1;
	_keyzone &zone = p->keygroup[0].keyzone[0];
	zone.filter = zone.zone_filter = zone.level = zone.zone_level = 5;
	const akp_gap gap = gap_of_akp(*p, *get_sampler(model_z4));
	EXPECT_EQ(gap.left_behind, (std::vector<std::string>{ "filter", "zone_filter" }));
	EXPECT_EQ(gap.untold, (std::vector<std::string>{ "polyphony", "s1000_reasignement" }));
}

} // namespace velmor
