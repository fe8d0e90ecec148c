// test_s1000_programs.cpp - programs saved, deleted and renamed on virtual samplers of the family
//
// What is expected of a block stands in tables of its own, read from the format once more: the
// index of each field, how it is counted, and whether only the later models take it back.

#include "src/akaiprograms.h"
#include "src/akais1000.h"
#include "tests/support/test_host.h"
#include "tests/support/told_format.h"
#include "virtual/midi_ports.h"
#include "virtual/s1000.h"

namespace velmor
{
namespace
{

using machine::bytes;
using P = _program;
using K = _keygroup;
using Z = _keyzone;

// ---- The format, read once more -------------------------------------------------------------

// Runs that are special are not on an S1000.
// clang-format off
const told_runs<P> of_program = {
	{ 3, 'a', { &P::name } }, { 15, 'm', { &P::midi_pgm_number, &P::midi_channel, &P::polyphony } },
	{ 18, 'b', { &P::s1000_priority, &P::play_range_low, &P::play_range_high } },
	{ 22, 'm', { &P::s1000_output } }, { 23, 'b', { &P::s1000_level } }, { 24, 's', { &P::s1000_balance } },
	{ 25, 'b', { &P::s1000_basic_loudness } },
	{ 26, 's', { &P::s1000_velocity_loudness, &P::s1000_key_loudness, &P::s1000_aftertouch_loudness } },
	{ 29, 'b', { &P::s1000_lfo2_speed, &P::s1000_lfo2_depth, &P::s1000_lfo2_delay } }, { 32, 's', { &P::s1000_key_panning } },
	{ 33, 'b', { &P::s1000_lfo1_speed, &P::s1000_lfo1_depth, &P::s1000_lfo1_delay, &P::s1000_lfo1_modwheel, &P::s1000_lfo1_pressure } },
	{ 39, 'b', { &P::s1000_bendwheel_pitch_up, &P::s1000_aftertouch_bend, &P::crossfade_enable } },
	{ 56, 'b', { &P::s1000_effect_out } }, { 57, 's', { &P::s1000_mod_panning } }, { 59, 'b', { &P::s1000_lfo1_sync } },
	{ 61, 'b', { &P::s1000_reasignement } }, { 65, 't', { &P::s1000_tunning_offset } },
	{ 72, 'b', { &P::s2000_mono_legato, &P::s2000_bendwheel_pitch_down, &P::s2000_aftertouch_bend_mode }, true },
	{ 75, 's', { &P::s2000_transpose_offset }, true },
	{ 76, 'b', { &P::s2000_pan_mod1_source, &P::s2000_pan_mod2_source, &P::s2000_pan_mod3_source, &P::s2000_out_mod1_source,
	             &P::s2000_out_mod2_source, &P::s2000_lfo1_rate_source, &P::s2000_lfo1_depth_source, &P::s2000_lfo1_delay_source,
	             &P::s2000_flt_mod1_source, &P::s2000_flt_mod2_source, &P::s2000_flt_mod3_source }, true },
	{ 88, 'b', { &P::s2000_amp_mod3_source }, true },
	{ 89, 's', { &P::s2000_pan_mod1_level, &P::s2000_pan_mod2_level, &P::s2000_pan_mod3_level, &P::s2000_out_mod1_level,
	             &P::s2000_out_mod2_level, &P::s2000_lfo1_rate_level, &P::s2000_lfo1_depth_level, &P::s2000_lfo1_delay_level }, true },
	{ 97, 'b', { &P::s2000_lfo1_waveform, &P::s2000_lfo2_waveform }, true }, { 102, 'n', { &P::s2000_lfo2_retrigger }, true },
	{ 110, 'b', { &P::s2000_portamento_rate, &P::s2000_portamento_mode, &P::s2000_portamento }, true },
};
const told_runs<K> of_keygroup = {
	{ 3, 'b', { &K::low_note, &K::high_note } }, { 5, 't', { &K::s1000_tune_offset } }, { 7, 'b', { &K::s1000_basic_filter_frequency } },
	{ 8, 's', { &K::s1000_filter_keyboard, &K::s1000_filter_velocity_freq, &K::s1000_filter_pressure_freq, &K::s1000_filter_env2_freq } },
	{ 12, 'b', { &K::amp_attack, &K::amp_decay, &K::amp_sustain, &K::amp_release } },
	{ 16, 's', { &K::s1000_env1_velocity_attack, &K::s1000_env1_velocity_release, &K::s1000_env1_off_velocity_release,
	             &K::s1000_env1_key_scaling, &K::s1000_env2_r1, &K::s1000_env2_r3, &K::s1000_env2_l3, &K::s1000_env2_r4,
	             &K::s1000_env2_velocity_r1, &K::s1000_env2_velocity_r4, &K::s1000_env2_off_velocity_r4, &K::s1000_env2_key_r2_r4,
	             &K::s1000_env2_velocity_envelope, &K::s1000_filter_env2_pitch } },
	{ 30, 'b', { &K::crossfade } }, { 131, 'b', { &K::s1000_env1_attack_hold }, true },
	{ 148, 's', { &K::s1000_filter_loudness_offset } }, { 149, 'b', { &K::s2000_filter_resonance }, true },
	{ 151, 's', { &K::s2000_flt_mod1_level, &K::s2000_flt_mod2_level, &K::s2000_flt_mod3_level }, true },
	{ 155, 's', { &K::s2000_amp_mod3_level, &K::s2000_env2_l1, &K::s2000_env2_r2, &K::s2000_env2_l2, &K::s2000_env2_l4 }, true },
	{ 160, 'z', { &K::mute_group }, true },
};
const told_runs<Z> of_zone = {
	{ 34, 'a', { &Z::samplename }, false, 24 }, { 46, 'b', { &Z::low_velocity, &Z::high_velocity }, false, 24 },
	{ 48, 't', { &Z::tunning }, false, 24 }, { 50, 'b', { &Z::level, &Z::filter, &Z::zone_panning, &Z::zone_playback }, false, 24 },
	{ 132, 'b', { &Z::zone_keyboard_track }, false, 1 }, { 136, 'b', { &Z::s1000_vzout }, false, 1 },
	{ 140, 'w', { &Z::velocity_start }, false, 2 },
};
// clang-format on

template <typename record>
void told_over(
	const told_runs<record> &runs, const record &r, bool later, bytes &block, int nth = 0)
{
	int at = 0;
	each_told<record>(runs, r, [&](const told_run<record> &run, u8 i, const bytes &value) {
		at = i ? at : run.at + nth * run.step;
		if (later || !run.special)
			std::copy(value.begin(), value.end(), block.begin() + at);
		at += static_cast<int>(value.size());
	});
}

bytes told_keygroup(const K &k, bool later, bytes block)
{
	told_over(of_keygroup, k, later, block);
	for (int z = 0; z < std::min(k.keyzones, 4); z++)
		told_over(of_zone, k.keyzone[z], later, block, z);
	return block;
}

void fill_program(P &p, const char *name, int keygroups, int pass)
{
	int seed = 0;
	fill_told(of_program, p, pass, &seed);
	copy_text(p.name, name);
	p.keygroups = keygroups;
	for (int k = 0; k < keygroups; k++) {
		fill_told(of_keygroup, p.keygroup[k], pass, &seed);
		p.keygroup[k].keyzones = pass == 3 ? 8 : pass == 4 ? 1 : 4;
		for (Z &zone : p.keygroup[k].keyzone)
			fill_told(of_zone, zone, pass, &seed);
	}
}

// ---- A sampler that is heard ------------------------------------------------------------------

struct heard_sampler {
	test_host &h;
	s1000_machine machine;
	_sampler_type *row;
	bool later;
	int port = 0;

	heard_sampler(test_host &owner, s1000_model model, i32 id, u8 channel = 5)
		: h(owner), machine(model, channel), row(get_sampler(id)), later(id >= model_s2000)
	{
		machine.add_program("FIRST", 1);
		machine.add_program("TARGET", 2);
		machine.add_program("LAST", 1);
		// Bytes that no field has must stay, so each is one of its own.
		for (stored_program &p : machine.programs)
			for (std::size_t k = 0; k <= p.keygroups.size(); k++) {
				bytes &block = k ? p.keygroups[k - 1] : p.common;
				for (std::size_t i = 43; i < block.size(); i++)
					block[i] = static_cast<u8>(i * 5 + k);
			}
		h.use_sampler(id, channel);
		host.midi = &virtual_midi;
		port = plug_midi(h.time, machine, "virtual");
		selected_midi_in_interface = selected_midi_out_interface = 0;
		dev().programs = 1;
		take_rescued_program();
	}
	~heard_sampler()
	{
		h.on_pump = nullptr;
		close_midi_output();
		unplug_all_midi();
	}
	_dev_status &dev() { return *current_sampler->status; }
	P &record() { return dev().program[0]; }
	// Programs by name, and their blocks without what the machine keeps for itself.
	std::vector<bytes> contents() const
	{
		std::vector<bytes> all;
		for (const stored_program &p : machine.programs)
			for (std::size_t k = 0; k <= p.keygroups.size(); k++) {
				all.push_back(k ? p.keygroups[k - 1] : p.common);
				all.back()[1] = all.back()[2] = 0;
			}
		return all;
	}
	std::string names() const
	{
		std::string all;
		for (const stored_program &p : machine.programs)
			all += machine::get_name(p.common, 3) + ",";
		return all;
	}
	void expect_asked(const std::vector<bytes> &expected) const
	{
		EXPECT_EQ(machine.heard.size(), expected.size());
		for (std::size_t i = 0; i < std::min(machine.heard.size(), expected.size()); i++)
			EXPECT_EQ(hex_text(machine.heard[i]), hex_text(expected[i])) << i;
	}
	void expect_logged(std::initializer_list<const char *> lines) const
	{
		for (const char *line : lines)
			EXPECT_TRUE(h.logged(line)) << line;
	}
};

bytes frame(u8 function, bytes arguments, const bytes &block = {})
{
	bytes message = { 0xF0, 0x47, 0x05, function, 0x48 };
	message.insert(message.end(), arguments.begin(), arguments.end());
	machine::append_nibbles(message, block);
	message.push_back(0xF7);
	return message;
}

// The whole conversation of a save, each message over the block that the machine had, with
// bytes 1 and 2 that it keeps for itself.
void expect_save(
	const heard_sampler &s, const stored_program *held, const P &before, u8 place, u8 asked)
{
	const stored_program &now = s.machine.programs[place];
	std::vector<bytes> all = { frame(0x02, {}) };
	for (u8 i = 0; i < asked; i++)
		all.push_back(frame(0x06, { i, 0 }));
	bytes block = held ? held->common
			   : hex("01 0C 90  1E 0F 1D 1E 0A 1A 1C 19 11 1C 0B 17 "
				 "00 00 1F 01 18 7F 00 FF 63 00 50 14 00 00 01 63 "
				 "00 00 32 00 00 1E 00 00 02 00 00 01 01 00*3  00*15 "
				 "0A 0A 0A 00 00 00 00 00 32 00 00 02 00 00 08 06 "
				 "0C 06 03 06 06 06 05 08 0A 0A 05 00*103");
	block.resize(s.later ? 192 : 150);
	if (!held) {
		machine::put_name(block, 3, before.name);
		block[42] = static_cast<u8>(before.keygroups);
		all.push_back(frame(0x07, { place, 0 }, block));
	}
	all.push_back(frame(0x06, { place, 0 }));
	std::copy_n(&now.common[1], 2, &block[1]);
	told_over(of_program, before, s.later, block);
	all.push_back(frame(0x07, { place, 0 }, block));
	for (u8 k = 0; k < before.keygroups; k++) {
		const bool added = held && k >= held->keygroups.size();
		if (!added) {
			block = held ? held->keygroups[k] : s.machine.new_keygroup();
			std::copy_n(&now.keygroups[k][1], 2, &block[1]);
		}
		block = told_keygroup(before.keygroup[k], s.later, block);
		all.push_back(frame(0x08, { place, 0, k }));
		all.push_back(frame(0x09, { place, 0, k }, block));
	}
	s.expect_asked(all);
}

class s1000_programs : public host_test
{
};

constexpr std::pair<s1000_model, i32> models[] = { { s1000_model::s1000, model_s1000 },
	{ s1000_model::s2000, model_s2000 }, { s1000_model::s2800, model_s2800 },
	{ s1000_model::s3000, model_s3000 } };

// ---- Saving -----------------------------------------------------------------------------------

TEST_F(s1000_programs, every_field_at_its_extremes_goes_to_its_byte)
{
	const auto before = std::make_unique<P>();
	for (const auto &[model, id] : models)
		for (int pass = 0; pass < 5; pass++)
			for (const bool create : { false, true }) {
				SCOPED_TRACE(format_text("model %d, pass %d", id, pass));
				heard_sampler s(h, model, id);
				fill_program(s.record(), create ? "Made new" : "Target", 3, pass);
				*before = s.record();
				const stored_program held = s.machine.programs[1];
				s.row->saveprogram(0, pass == 2 ? &s.record() : nullptr);
				expect_save(s, create ? nullptr : &held, *before, create ? 3 : 1,
					create ? 3 : 2);
				EXPECT_TRUE(h.boxes.empty());
				EXPECT_TRUE(program_outcome.done());
				EXPECT_FALSE(h.progress.visible);
				EXPECT_EQ(h.progress.value, 30);
				// What is there is what was sent.
				const stored_program &p = s.machine.programs[create ? 3 : 1];
				ASSERT_EQ(p.keygroups.size(), 3u);
				const bytes again =
					told_keygroup(before->keygroup[2], s.later, p.keygroups[2]);
				EXPECT_EQ(p.keygroups[2], again);
				EXPECT_EQ(s.names(), create ? "FIRST,TARGET,LAST,MADE NEW,"
							    : "FIRST,TARGET,LAST,");
			}
}

TEST_F(s1000_programs, words_of_a_save_and_what_it_leaves_in_the_record)
{
	heard_sampler s(h, s1000_model::s3000, model_s3000);
	fill_program(s.record(), "Target  ", 2, 2);
	copy_text(s.record().keygroup[0].keyzone[3].samplename, "Kick 1");
	s.record().s1000_tunning_offset = -50;
	s.record().keygroup[0].keyzone[3].tunning = -100;
	s.record().keygroup[0].s1000_tune_offset = 150;
	s.row->saveprogram(0, nullptr);
	EXPECT_STREQ(s.record().name, "Target ") << "one blank is cut";
	EXPECT_EQ(s.record().s1000_tunning_offset, -150);
	EXPECT_EQ(s.record().keygroup[0].keyzone[3].tunning, -200);
	EXPECT_EQ(s.record().keygroup[0].s1000_tune_offset, 150);
	EXPECT_EQ(h.progress.caption, "Saving [Target ] to sampler...");
	EXPECT_EQ(h.progress.range, 20);
	EXPECT_EQ(h.progress.infos,
		(std::vector<std::string>{ "25.00 %", "0.00 %", "45.00 %", "100.00 %" }));
	s.record().keygroups = 1;
	s.expect_logged({ "[D] Saving Program 0 (Target ), SYSEX_CHANNEL: 5 [LOADED]",
		"[D] Comparing: [TARGET] (Sampler) <> [Target ] (Memory)",
		"[D] CREATING Program [Target ] PGM_IDX: 3",
		"[D] KEYGROUP 0 not found...creating now!",
		"[D] KG: 0, KEYZONE: 3, Sample: [Kick 1]",
		"[D] Keygroup update-Response: [F0 47 05 16 48 00 F7] (7 Bytes)",
		"[D] Received 7 Bytes of P-Data  [F0 47 05 16 48 00 F7] FROM UPDATE-REQUEST! "
		"NIBBLE_LEN: 384, REQUEST_LEN: 392 --> KEYGROUPS: 2",
		"[D] Received 7 Bytes of P-Data  [F0 47 05 16 48 00 F7] FROM UPDATE-REQUEST! "
		"NIBBLE_LEN: 384, REQUEST_LEN: 392" });
	copy_text(s.record().name, "target");
	s.row->saveprogram(0, &s.record());
	EXPECT_EQ(s.record().s1000_tunning_offset, -250) << "lower with every save";
	s.expect_logged({ "[D] UPDATING Program [target] PGM_IDX: 1",
		"[D] Saving Program 0 (target), SYSEX_CHANNEL: 5 [LOCAL]" });
	EXPECT_EQ(program_outcome.words,
		"The program on the sampler keeps 1 keygroup that this one does not have.");
}

TEST_F(s1000_programs, memory_that_is_full_is_told)
{
	heard_sampler s(h, s1000_model::s2000, model_s2000);
	s.machine.block_room = 8; // 7 are in use
	fill_program(s.record(), "NEW", 3, 2);
	s.row->saveprogram(0, nullptr);
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0], (shown_box{ "Saving/Updating failed!!!", "FATAL" }));
	EXPECT_EQ(program_outcome.how, ending::refused);
	EXPECT_FALSE(h.progress.visible);
	copy_text(s.record().name, "TARGET");
	s.record().keygroups = 5;
	s.row->saveprogram(0, nullptr);
	EXPECT_EQ(s.machine.programs[1].keygroups.size(), 3u);
	EXPECT_EQ(program_outcome.words,
		"The sampler did not take 2 of 5 keygroups. Its memory may be full.");
}

// An answer that says no more than that it is empty; and a program without any keygroup.
TEST_F(s1000_programs, keygroups_without_data)
{
	heard_sampler s(h, s1000_model::s3000, model_s3000);
	s.machine.programs[1].keygroups.clear();
	s.machine.programs[1].common[42] = 0;
	fill_program(s.record(), "TARGET", 1, 2);
	const K before = s.record().keygroup[0];
	s.row->saveprogram(0, nullptr);
	ASSERT_EQ(s.machine.heard.size(), 9u);
	EXPECT_EQ(hex_text(s.machine.heard[6]), "F0 47 05 09 48 01 00 00 F7") << "make one";
	EXPECT_EQ(hex_text(s.machine.heard[7]), "F0 47 05 08 48 01 00 00 F7") << "and read it";
	const bytes held = s.machine.programs[1].keygroups[0];
	EXPECT_EQ(held, told_keygroup(before, true, held));
}

// ---- Deleting, renaming -------------------------------------------------------------------------

TEST_F(s1000_programs, deleting_wants_the_exact_name)
{
	for (const auto &[model, id] : models) {
		heard_sampler s(h, model, id);
		h.boxes.clear();
		for (const char *wrong : { "Target", "TARGET ", "" }) {
			copy_text(s.record().name, wrong);
			s.row->deleteprogram(0);
			EXPECT_EQ(h.boxes.back(),
				(shown_box{ "Cannot delete program (not found)!", "WARNING" }));
		}
		s.machine.heard.clear();
		copy_text(s.record().name, "TARGET");
		s.row->deleteprogram(0);
		EXPECT_EQ(h.boxes.size(), 3u);
		s.expect_asked({ hex("F0 47 05 02 48 F7"), hex("F0 47 05 12 48 01 00 F7") });
		EXPECT_EQ(s.names(), "FIRST,LAST,");
		s.expect_logged({ "[D] DELETING Program 0 (TARGET), SYSEX_CHANNEL: 5",
			"[D] Comparing: [FIRST] <> [TARGET]",
			"[D] DELETE REQUEST RETURNED: [F0 47 05 16 48 00 F7] (7 Bytes)" });
	}
}

// Always on channel 0, with the numbers as they are, for the S5000 as well.
TEST_F(s1000_programs, a_keygroup_is_deleted_on_channel_0)
{
	for (const i32 id : { model_s1000, model_s3000, model_s5000 }) {
		heard_sampler s(h, s1000_model::s3000, model_s3000, 0);
		current_sampler->sampler_type = static_cast<u32>(id);
		current_sampler->sampler_sysex_channel = 9;
		h.boxes.clear();
		s.dev().programs = 200;
		copy_text(s.dev().program[1].name, "TARGET");
		get_sampler(id)->del_keygroup(1, 1);
		EXPECT_EQ(s.machine.programs[1].keygroups.size(), 1u);
		EXPECT_TRUE(h.boxes.empty());
		s.expect_logged({ "[D] Request to delete Keygroup 1 for Program: 1 (TARGET)",
			"[D] DELETE KG-REQUEST RETURNED: [F0 47 00 16 48 00 F7] (7 Bytes)" });
		get_sampler(id)->del_keygroup(130, 99);
		s.expect_asked(
			{ hex("F0 47 00 13 48 01 00 01 F7"), hex("F0 47 00 13 48 02 01 63 F7") });
		EXPECT_EQ(h.boxes.back(), (shown_box{ "DELETE failed!!!", "FATAL" }));
	}
}

TEST_F(s1000_programs, renaming_takes_the_program_off_and_puts_it_back)
{
	for (const auto &[model, id] : models)
		for (const u8 at : { 0, 1, 2 }) {
			heard_sampler s(h, model, id);
			const stored_program held = s.machine.programs[at];
			copy_text(s.record().name, machine::get_name(held.common, 3));
			s.row->renameprogram(0, "new name:");
			EXPECT_TRUE(h.boxes.empty());
			const char *const names[] = { "NEW NAME.,TARGET,LAST,",
				"FIRST,NEW NAME.,LAST,", "FIRST,TARGET,NEW NAME.," };
			EXPECT_EQ(s.names(), names[at]);
			std::vector<bytes> all = { frame(0x02, {}), frame(0x06, { at, 0 }) };
			for (u8 k = 0; k < held.keygroups.size(); k++)
				all.push_back(frame(0x08, { at, 0, k }));
			bytes block = held.common;
			block[1] = block[2] = block[43] = 0;
			machine::put_name(block, 3, "NEW NAME.");
			all.insert(all.end(),
				{ frame(0x12, { at, 0 }), frame(0x07, { at, 0 }, block) });
			for (u8 k = 0; k < held.keygroups.size(); k++) {
				block = held.keygroups[k];
				block[1] = block[2] = 0;
				all.push_back(frame(0x09, { at, 0, k }, block));
			}
			s.expect_asked(all);
			EXPECT_FALSE(take_rescued_program());
			s.expect_logged({ "[D] NAME [new name:] --> AKAIED: [18 0F 21 0A 18 0B 17 "
					  "0F 28 0A 0A 0A]",
				s.later ? "[D] Stored 393 Bytes of Keygroup-Data for Keygroup: 0"
					: "[D] Stored 309 Bytes of Keygroup-Data for Keygroup: 0",
				s.later ? "[D] Restored 393 Bytes of Keygroup-Data for Keygroup: 0 "
					  "[F0 47 05 16 48 00 F7]"
					: "[D] Restored 309 Bytes of Keygroup-Data for Keygroup: 0 "
					  "[F0 47 05 16 48 00 F7]" });
			copy_text(s.record().name, "target");
			s.row->renameprogram(0, "X");
			EXPECT_EQ(
				h.boxes.back(), (shown_box{ "Cannot delete program!", "WARNING" }));
			h.boxes.clear();
		}
}

// Such a machine has the renamed program over the one behind it. Its copy is at hand.
TEST_F(s1000_programs, what_a_machine_that_closes_gaps_overwrites_is_kept)
{
	heard_sampler s(h, s1000_model::s3000, model_s3000);
	s.machine.closes_gaps = true;
	s.dev().programs = 3;
	copy_text(s.record().name, "TARGET");
	copy_text(s.dev().program[2].name, "LAST        ");
	s.dev().program[2].polyphony = 17;
	s.row->renameprogram(0, "NEW");
	EXPECT_EQ(s.names(), "FIRST,NEW,");
	const auto endangered = take_endangered_program();
	ASSERT_TRUE(endangered);
	EXPECT_EQ(endangered->polyphony, 17);
}

TEST_F(s1000_programs, a_program_that_cannot_be_put_back_is_kept_here)
{
	heard_sampler s(h, s1000_model::s3000, model_s3000);
	copy_text(s.record().name, "TARGET");
	s.machine.programs[1].keygroups[1][3] = 77; // low note
	port_wire(s.port).set_fault({ .kind = wire_fault_kind::refused, .exchange = 6 });
	s.row->renameprogram(0, "NEW");
	EXPECT_EQ(s.names(), "FIRST,LAST,");
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0], (shown_box{ "Saving/Updating failed!!!", "FATAL" }));
	EXPECT_EQ(program_outcome.words,
		"The sampler refused. The program is gone from the sampler. It is kept in this "
		"computer as [TARGET].");
	const auto kept = take_rescued_program();
	ASSERT_TRUE(kept);
	EXPECT_STREQ(kept->name, "TARGET");
	ASSERT_EQ(kept->keygroups, 2);
	EXPECT_EQ(kept->keygroup[1].low_note, 77);
	s.row->saveprogram(0, kept.get());
	EXPECT_EQ(s.names(), "FIRST,LAST,TARGET,");
}

// A block that answers for another program or keygroup is neither compared, nor written back, nor
// kept while its program is taken off.
TEST_F(s1000_programs, an_answer_of_another_place_ends_the_work)
{
	struct wrong_answer {
		bool renames;
		u8 function; // of the answer
		int nth;
		std::size_t at; // of its byte
	};
	for (const wrong_answer &wrong : std::initializer_list<wrong_answer>{ { false, 0x07, 1, 5 },
		     { false, 0x07, 2, 5 }, { false, 0x07, 3, 5 }, { false, 0x07, 3, 6 },
		     { false, 0x09, 1, 5 }, { false, 0x09, 2, 7 }, { true, 0x07, 1, 5 },
		     { true, 0x09, 1, 5 }, { true, 0x09, 2, 7 } }) {
		SCOPED_TRACE(format_text(
			"answer %d of %02X at %zu", wrong.nth, wrong.function, wrong.at));
		heard_sampler s(h, s1000_model::s3000, model_s3000);
		midi_machine cable = s.machine.on_wire();
		int seen = 0;
		cable.answer = [&, whole = cable.answer](machine::byte_view message) {
			bytes answer = whole(message);
			if (answer.size() > 9 && answer[3] == wrong.function && ++seen == wrong.nth)
				answer[wrong.at] ^= 1;
			return answer;
		};
		unplug_all_midi();
		plug_midi(h.time, cable, "virtual");
		fill_program(s.record(), "TARGET", 2, 1);
		const auto before = s.contents();
		const std::string names = s.names();
		if (wrong.renames)
			s.row->renameprogram(0, "NEW");
		else
			s.row->saveprogram(0, nullptr);
		EXPECT_GE(seen, wrong.nth);
		EXPECT_EQ(program_outcome.how, ending::no_answer);
		EXPECT_EQ(s.names(), names);
		const auto after = s.contents(); // FIRST and its keygroup, TARGET and two, ...
		const std::size_t untouched = wrong.function == 0x09 && !wrong.renames
						      ? 3 + static_cast<std::size_t>(wrong.nth) - 1
						      : 2;
		EXPECT_TRUE(std::equal(before.begin() + static_cast<std::ptrdiff_t>(untouched),
			before.end(), after.begin() + static_cast<std::ptrdiff_t>(untouched)));
	}
}

// ---- Faults and Stop -----------------------------------------------------------------------------

const struct {
	const char *name;
	void (*run)(heard_sampler &s);
} operations[] = {
	{ "update", [](heard_sampler &s) { s.row->saveprogram(0, nullptr); } },
	{ "create",
		[](heard_sampler &s) {
			copy_text(s.record().name, "NEW");
			s.row->saveprogram(0, nullptr);
		} },
	{ "delete", [](heard_sampler &s) { s.row->deleteprogram(0); } },
	{ "rename", [](heard_sampler &s) { s.row->renameprogram(0, "NEW"); } },
	{ "delete_keygroup", [](heard_sampler &s) { s.row->del_keygroup(0, 1); } },
};

class s1000_program_faults : public host_test, public ::testing::WithParamInterface<std::size_t>
{
protected:
	struct result {
		std::size_t exchanges;
		std::vector<bytes> contents;
	};
	// One operation with something done to it, and everything that must hold afterwards.
	result run(const std::function<void(heard_sampler &)> &spoil, const result *healthy)
	{
		const bool deletes_keygroup = GetParam() == 4;
		heard_sampler s(h, s1000_model::s3000, model_s3000, deletes_keygroup ? 0 : 5);
		fill_program(s.record(), "TARGET", 3, 2);
		const auto before = s.contents();
		h.boxes.clear();
		spoil(s);
		const double began = h.time.now();
		operations[GetParam()].run(s);
		EXPECT_LT(h.time.now(), began + 60);
		EXPECT_FALSE(h.progress.visible);
		const result now = { s.machine.heard.size(), s.contents() };
		const bool told_done =
			program_outcome.done() && program_outcome.words.empty() && h.boxes.empty();
		EXPECT_TRUE(!healthy || !told_done || now.contents == healthy->contents);
		// Nothing else was touched, and nothing is lost.
		const auto kept = take_rescued_program();
		const std::string names = s.names();
		const auto has = [&](const char *name) { return names.find(name) != names.npos; };
		EXPECT_TRUE(has("TARGET") || has("NEW") || kept || GetParam() == 2) << names;
		EXPECT_TRUE(deletes_keygroup || (has("LAST") && now.contents[0] == before[0] &&
							now.contents[1] == before[1]));
		// The next operation works.
		h.on_pump = nullptr;
		port_wire(s.port).clear_faults();
		h.time.run_until(h.time.now() + 5);
		h.boxes.clear();
		copy_text(s.record().name, "LAST");
		if (!port_wire(s.port).unplugged()) {
			s.row->saveprogram(0, nullptr);
			EXPECT_TRUE(h.boxes.empty() && program_outcome.done());
		}
		return now;
	}
};

TEST_P(s1000_program_faults, and_stop_at_every_exchange)
{
	current_run_mode.diagnostics = false;
	const result healthy = run([](heard_sampler &) {}, nullptr);
	constexpr int kinds = static_cast<int>(wire_fault_kind::unplugged) + 1;
	for (int kind = 0; kind < 2 * kinds; kind++)
		for (std::size_t at = 1; at <= healthy.exchanges; at++) {
			SCOPED_TRACE(format_text("fault %d at %zu", kind, at));
			const wire_fault fault = { .kind = static_cast<wire_fault_kind>(
							   kind % kinds),
				.exchange = static_cast<int>(at),
				.from_then_on = kind >= kinds,
				.seconds = 4 };
			run([&](heard_sampler &s) { port_wire(s.port).set_fault(fault); },
				&healthy);
		}
	for (std::size_t at = 1; at <= healthy.exchanges; at++) {
		SCOPED_TRACE(format_text("stop at %zu", at));
		const auto stop = [&](heard_sampler &s) {
			h.on_pump = [&s, at] {
				s.machine.heard.size() >= at ? stop_progress() : void();
			};
		};
		const result stopped = run(stop, &healthy);
		EXPECT_LE(stopped.exchanges, GetParam() < 2 ? at + 4 : healthy.exchanges);
	}
}

INSTANTIATE_TEST_SUITE_P(s1000, s1000_program_faults,
	::testing::Range(std::size_t{ 0 }, std::size(operations)),
	[](const auto &it) { return operations[it.param].name; });

} // namespace
} // namespace velmor
