// test_forms.cpp - the parameter forms, row by row: what they show, what they store, what they say

#include "src/akai_forms.h"
#include "src/velmor_window.h"
#include "tests/support/test_host.h"
#include <cstring>

namespace velmor
{
namespace
{

enum : unsigned {
	s1000 = 1,
	s2000 = 2,
	all = s1000 | s2000,
};
constexpr int of_program = form_of_program, of_keygroup = form_of_keygroup,
	      of_keyzone = form_of_keyzone;
constexpr form_event drag = form_event::drag, drag_end = form_event::drag_end,
		     edit = form_event::edit, choice = form_event::choice;

// A program of three keygroups with four zones each, of which keygroup 1 and zone 2 are shown.
class forms : public host_test
{
protected:
	forms() { use(model_s3000); }
	~forms() override
	{
		edit_local_program(nullptr);
		close_forms(window_programs);
		forget_edits();
	}

	void use(i32 model, i32 kz = 2)
	{
		h.use_sampler(model, 0);
		current_pgm_index = 0;
		current_keygroup_index = 1;
		current_keyzone_index = kz;
		forget_edits();
		std::memset(static_cast<void *>(&pgm()), 0, sizeof(_program));
		current_sampler->status->programs = 1;
		pgm().keygroups = 3;
		pgm().play_range_low = pgm().play_range_high = 60;
		for (_keygroup &keygroup : pgm().keygroup) {
			keygroup.keyzones = 4;
			keygroup.low_note = 24;
			keygroup.high_note = 127;
		}
	}
	void open()
	{
		const _sampler_type &row = *get_sampler(edited_model());
		h.forms.clear();
		close_forms(window_programs);
		for (form_operation build : { row.assignprog, row.assignvoice, row.assignvelocity })
			if (build)
				build(window_programs, current_pgm_index, current_keygroup_index,
					current_keyzone_index);
	}
	_program &pgm() { return current_sampler->status->program[0]; }
	_keygroup &kg() { return pgm().keygroup[1]; }
	_keyzone &kz() { return kg().keyzone[current_keyzone_index]; }
	std::vector<form_row> &rows(int form) { return h.forms[{ window_programs, form }]; }
	// The nth row with a label.
	int row_of(int form, std::string_view label, int nth = 0)
	{
		for (std::size_t i = 0; i < rows(form).size(); i++)
			if (rows(form)[i].kind != row_kind::heading &&
				rows(form)[i].label == label && nth-- == 0)
				return static_cast<int>(i);
		ADD_FAILURE() << "no row " << label;
		return 0;
	}
	form_row &row(int form, std::string_view label)
	{
		return rows(form)[static_cast<std::size_t>(row_of(form, label))];
	}
	void tell(int form, std::string_view label, form_event event, int value)
	{
		EXPECT_TRUE(velmor_form(window_programs, form, row_of(form, label), event, value));
	}
	void type(int form, std::string_view label, const char *text)
	{
		row(form, label).text = text;
		tell(form, label, edit, 0);
	}
	void apply(int box, bool ticked) { h.checks[{ window_programs, box }] = ticked; }
	std::string headings(int form)
	{
		std::string words;
		for (const form_row &r : rows(form))
			if (r.kind == row_kind::heading)
				words += (words.empty() ? "" : ",") + r.label;
		return words;
	}
	int count(int form)
	{
		int shown = 0;
		for (const form_row &r : rows(form))
			shown += r.kind != row_kind::heading;
		return shown;
	}
};

std::string joined(const std::vector<std::string> &items)
{
	std::string words;
	for (const std::string &item : items)
		words += (words.empty() ? "" : ",") + item;
	return words;
}

// ---- S1000 family and S900: every row -----------------------------------------------------------

constexpr char SRC[] = "NO SOURCE,MODWHEEL,BEND,PRESSURE,EXTERNAL,VELOCITY,KEY,LFO1,LFO2,ENV1,ENV2,"
		       "!MODWHEEL,!BEND,!EXTERNAL,ENV3";
constexpr char WAVE[] = "TRIANGLE,SAWTOOTH,SQUARE,RANDOM";

// Rows of one kind. low and high as shown; a negative one stands in the record higher by wrap.
struct told_rows {
	int form;
	unsigned models;
	int low, high, wrap;
	std::string_view items; // as told; "notes", or "OFF+" for a word and numbers
	std::vector<std::pair<const char *, any_field>> rows;
};
template <auto member> const any_field of = field_of<member>;

// clang-format off
const told_rows s1000_rows[] = {
	{ of_program, all, 1, 128, 0, "", { { "Program number", of<&_program::midi_pgm_number> } } },
	{ of_program, all, 0, 16, 0, "OMNI+", { { "MIDI channel", of<&_program::midi_channel> } } },
	{ of_program, s1000, 1, 16, 0, "", { { "Polyphony", of<&_program::polyphony> } } },
	{ of_program, s2000, 1, 32, 0, "", { { "Polyphony", of<&_program::polyphony> } } },
	{ of_program, all, 0, 3, 0, "LOW,NORM,HIGH,HOLD", { { "Priority", of<&_program::s1000_priority> } } },
	{ of_program, all, 0, 1, 0, "OLDEST,QUIETEST", { { "Reassignment", of<&_program::s1000_reasignement> } } },
	{ of_program, s1000, 24, 127, 0, "notes", { { "Play range low", of<&_program::play_range_low> }, { "Play range high", of<&_program::play_range_high> } } },
	{ of_program, s2000, 21, 127, 0, "notes", { { "Play range low", of<&_program::play_range_low> }, { "Play range high", of<&_program::play_range_high> } } },
	{ of_program, s2000, -50, 50, 0, "", {
		{ "Transpose", of<&_program::s2000_transpose_offset> }, { "Loudness mod 1 amount", of<&_program::s2000_out_mod1_level> },
		{ "Loudness mod 2 amount", of<&_program::s2000_out_mod2_level> }, { "Pan mod 1 amount", of<&_program::s2000_pan_mod1_level> },
		{ "Pan mod 2 amount", of<&_program::s2000_pan_mod2_level> }, { "Pan mod 3 amount", of<&_program::s2000_pan_mod3_level> },
		{ "LFO1 speed mod amount", of<&_program::s2000_lfo1_rate_level> }, { "LFO1 depth mod amount", of<&_program::s2000_lfo1_depth_level> },
		{ "LFO1 delay mod amount", of<&_program::s2000_lfo1_delay_level> } } },
	{ of_program, s2000, 0, 1, 0, "OFF,ON", {
		{ "Mono legato", of<&_program::s2000_mono_legato> }, { "LFO2 retrigger", of<&_program::s2000_lfo2_retrigger> }, { "Portamento", of<&_program::s2000_portamento> } } },
	{ of_program, all, 0, 1, 0, "OFF,ON", {
		{ "Keygroup crossfade", of<&_program::crossfade_enable> }, { "Effects send", of<&_program::s1000_effect_out> }, { "LFO1 desync", of<&_program::s1000_lfo1_sync> } } },
	{ of_program, all, 0, 99, 0, "", {
		{ "Stereo level", of<&_program::s1000_level> }, { "Loudness", of<&_program::s1000_basic_loudness> }, { "LFO1 speed", of<&_program::s1000_lfo1_speed> },
		{ "LFO1 depth", of<&_program::s1000_lfo1_depth> }, { "LFO1 delay", of<&_program::s1000_lfo1_delay> }, { "Modwheel > LFO1 depth", of<&_program::s1000_lfo1_modwheel> },
		{ "Pressure > LFO1 depth", of<&_program::s1000_lfo1_pressure> } } },
	{ of_program, all, -50, 50, 256, "", { { "Pan", of<&_program::s1000_balance> } } },
	{ of_program, all, 0, 8, 0, "OFF+", { { "Individual output", of<&_program::s1000_output> } } },
	{ of_program, all, -50, 50, 0, "", {
		{ "Velocity > loudness", of<&_program::s1000_velocity_loudness> }, { "Key > loudness", of<&_program::s1000_key_loudness> },
		{ "Pressure > loudness", of<&_program::s1000_aftertouch_loudness> }, { "Key > pan", of<&_program::s1000_key_panning> }, { "Modwheel > pan", of<&_program::s1000_mod_panning> } } },
	{ of_program, s2000, 0, 14, 0, "SRC", {
		{ "Loudness mod 1 source", of<&_program::s2000_out_mod1_source> }, { "Loudness mod 2 source", of<&_program::s2000_out_mod2_source> },
		{ "Pan mod 1 source", of<&_program::s2000_pan_mod1_source> }, { "Pan mod 2 source", of<&_program::s2000_pan_mod2_source> },
		{ "Pan mod 3 source", of<&_program::s2000_pan_mod3_source> }, { "LFO1 speed mod source", of<&_program::s2000_lfo1_rate_source> },
		{ "LFO1 depth mod source", of<&_program::s2000_lfo1_depth_source> }, { "LFO1 delay mod source", of<&_program::s2000_lfo1_delay_source> } } },
	{ of_program, s2000, 0, 3, 0, "WAVE", { { "LFO1 waveform", of<&_program::s2000_lfo1_waveform> }, { "LFO2 waveform", of<&_program::s2000_lfo2_waveform> } } },
	{ of_program, all, -5000, 5000, 0, "", { { "Tune offset", of<&_program::s1000_tunning_offset> } } },
	{ of_program, s1000, 0, 12, 0, "", { { "Bend range", of<&_program::s1000_bendwheel_pitch_up> } } },
	{ of_program, s2000, 0, 24, 0, "", { { "Bend up", of<&_program::s1000_bendwheel_pitch_up> }, { "Bend down", of<&_program::s2000_bendwheel_pitch_down> } } },
	{ of_program, s2000, 0, 1, 0, "NORMAL,HELD", { { "Bend mode", of<&_program::s2000_aftertouch_bend_mode> } } },
	{ of_program, all, -12, 12, 256, "", { { "Pressure > pitch", of<&_program::s1000_aftertouch_bend> } } },
	{ of_program, s2000, 0, 99, 0, "", {
		{ "LFO2 speed", of<&_program::s1000_lfo2_speed> }, { "LFO2 depth", of<&_program::s1000_lfo2_depth> }, { "LFO2 delay", of<&_program::s1000_lfo2_delay> },
		{ "Portamento rate", of<&_program::s2000_portamento_rate> } } },
	{ of_program, s1000, 0, 99, 0, "", {
		{ "Pan speed", of<&_program::s1000_lfo2_speed> }, { "Pan depth", of<&_program::s1000_lfo2_depth> }, { "Pan delay", of<&_program::s1000_lfo2_delay> } } },
	{ of_program, s2000, 0, 1, 0, "TIME,RATE", { { "Portamento mode", of<&_program::s2000_portamento_mode> } } },
	{ of_keygroup, s2000, 0, 14, 0, "SRC", {
		{ "Filter mod 1 source", of<&_program::s2000_flt_mod1_source> }, { "Filter mod 2 source", of<&_program::s2000_flt_mod2_source> },
		{ "Filter mod 3 source", of<&_program::s2000_flt_mod3_source> }, { "Amp mod 3 source", of<&_program::s2000_amp_mod3_source> } } },
	{ of_keygroup, s1000, 24, 127, 0, "notes", { { "Key low", of<&_keygroup::low_note> }, { "Key high", of<&_keygroup::high_note> } } },
	{ of_keygroup, s2000, 21, 127, 0, "notes", { { "Key low", of<&_keygroup::low_note> }, { "Key high", of<&_keygroup::high_note> } } },
	{ of_keygroup, all, 0, 1, 0, "OFF,ON", { { "Velocity zone crossfade", of<&_keygroup::crossfade> } } },
	{ of_keygroup, s2000, 0, 32, 0, "OFF+", { { "Mute group", of<&_keygroup::mute_group> } } },
	{ of_keygroup, all, -5000, 5000, 0, "", { { "Keygroup tune", of<&_keygroup::s1000_tune_offset> } } },
	{ of_keygroup, all, 0, 99, 0, "", {
		{ "Filter frequency", of<&_keygroup::s1000_basic_filter_frequency> }, { "Attack", of<&_keygroup::amp_attack> }, { "Decay", of<&_keygroup::amp_decay> },
		{ "Sustain", of<&_keygroup::amp_sustain> }, { "Release", of<&_keygroup::amp_release> } } },
	{ of_keygroup, s2000, 0, 15, 0, "", { { "Resonance", of<&_keygroup::s2000_filter_resonance> } } },
	{ of_keygroup, all, -24, 24, 0, "", { { "Key follow", of<&_keygroup::s1000_filter_keyboard> } } },
	{ of_keygroup, all, -50, 50, 0, "", {
		{ "Velocity > filter", of<&_keygroup::s1000_filter_velocity_freq> }, { "Pressure > filter", of<&_keygroup::s1000_filter_pressure_freq> },
		{ "Env2 > filter", of<&_keygroup::s1000_filter_env2_freq> }, { "Velocity > loudness offset", of<&_keygroup::s1000_filter_loudness_offset> },
		{ "Velocity > attack", of<&_keygroup::s1000_env1_velocity_attack> }, { "On velocity > release", of<&_keygroup::s1000_env1_velocity_release> },
		{ "Off velocity > release", of<&_keygroup::s1000_env1_off_velocity_release> }, { "Key > decay & release", of<&_keygroup::s1000_env1_key_scaling> },
		{ "Velocity > env2 output", of<&_keygroup::s1000_env2_velocity_envelope> }, { "Env2 > pitch", of<&_keygroup::s1000_filter_env2_pitch> } } },
	{ of_keygroup, s2000, -50, 50, 0, "", {
		{ "Filter mod 1 amount", of<&_keygroup::s2000_flt_mod1_level> }, { "Filter mod 2 amount", of<&_keygroup::s2000_flt_mod2_level> },
		{ "Filter mod 3 amount", of<&_keygroup::s2000_flt_mod3_level> }, { "Amp mod 3 amount", of<&_keygroup::s2000_amp_mod3_level> },
		{ "Velocity > rate 1", of<&_keygroup::s1000_env2_velocity_r1> }, { "On velocity > rate 4", of<&_keygroup::s1000_env2_velocity_r4> },
		{ "Off velocity > rate 4", of<&_keygroup::s1000_env2_off_velocity_r4> }, { "Key > rate 2 & 4", of<&_keygroup::s1000_env2_key_r2_r4> } } },
	{ of_keygroup, s2000, 0, 1, 0, "OFF,ON", { { "Attack hold", of<&_keygroup::s1000_env1_attack_hold> } } },
	{ of_keygroup, s1000, 0, 99, 0, "", {
		{ "Attack", of<&_keygroup::s1000_env2_r1> }, { "Decay", of<&_keygroup::s1000_env2_r3> }, { "Sustain", of<&_keygroup::s1000_env2_l3> },
		{ "Release", of<&_keygroup::s1000_env2_r4> } } },
	{ of_keygroup, s2000, 0, 99, 0, "", {
		{ "Rate 1", of<&_keygroup::s1000_env2_r1> }, { "Level 1", of<&_keygroup::s2000_env2_l1> }, { "Rate 2", of<&_keygroup::s2000_env2_r2> },
		{ "Level 2", of<&_keygroup::s2000_env2_l2> }, { "Rate 3", of<&_keygroup::s1000_env2_r3> }, { "Level 3", of<&_keygroup::s1000_env2_l3> },
		{ "Rate 4", of<&_keygroup::s1000_env2_r4> }, { "Level 4", of<&_keygroup::s2000_env2_l4> } } },
	{ of_keygroup, s1000, -50, 50, 0, "", {
		{ "Velocity > attack", of<&_keygroup::s1000_env2_velocity_r1> }, { "On velocity > release", of<&_keygroup::s1000_env2_velocity_r4> },
		{ "Off velocity > release", of<&_keygroup::s1000_env2_off_velocity_r4> }, { "Key > decay & release", of<&_keygroup::s1000_env2_key_r2_r4> } } },
	{ of_keyzone, all, 0, 127, 0, "", { { "Velocity low", of<&_keyzone::low_velocity> }, { "Velocity high", of<&_keyzone::high_velocity> } } },
	{ of_keyzone, all, -5000, 5000, 0, "", { { "Tune", of<&_keyzone::tunning> } } },
	{ of_keyzone, all, 0, 1, 0, "TRACK,CONST", { { "Pitch", of<&_keyzone::zone_keyboard_track> } } },
	{ of_keyzone, all, 0, 4, 0, "AS SAMPLE,LOOP IN REL,LOOP UNTIL REL,NO LOOPS,PLAY TO END", { { "Playback", of<&_keyzone::zone_playback> } } },
	{ of_keyzone, all, -50, 50, 256, "", {
		{ "Loudness offset", of<&_keyzone::level> }, { "Filter offset", of<&_keyzone::filter> }, { "Pan offset", of<&_keyzone::zone_panning> } } },
	{ of_keyzone, all, 0, 7, 0, "", { { "Output offset", of<&_keyzone::s1000_vzout> } } },
	{ of_keyzone, all, -9999, 9999, 65536, "", { { "Velocity > sample start", of<&_keyzone::velocity_start> } } },
};
const told_rows s900_rows[] = {
	{ of_keygroup, all, 24, 127, 0, "notes", { { "Lower key", of<&_keygroup::low_note> }, { "Upper key", of<&_keygroup::high_note> } } },
	{ of_keygroup, all, 0, 99, 0, "", {
		{ "Attack", of<&_keygroup::amp_attack> }, { "Decay", of<&_keygroup::amp_decay> }, { "Sustain", of<&_keygroup::amp_sustain> }, { "Release", of<&_keygroup::amp_release> },
		{ "Filter attack", of<&_keygroup::filter_attack> }, { "Filter decay", of<&_keygroup::filter_decay> }, { "Filter sustain", of<&_keygroup::filter_sustain> },
		{ "Filter release", of<&_keygroup::filter_release> } } },
	{ of_keygroup, all, 255, 7, 0, "ANY,LEFT,RIGHT,1,2,3,4,5,6,7,8", { { "Audio output", of<&_keygroup::s900_output> } } },
	{ of_keygroup, all, 0, 15, 0, "", { { "MIDI channel offset", of<&_keygroup::s900_midi_offset> } } },
	{ of_keygroup, all, 0, 1, 0, "OFF,ON", { { "Constant pitch", of<&_keygroup::s900_transpose_disable> } } },
	{ of_keygroup, all, 0, 2, 0, "OFF,ON", { { "Velocity crossfade", of<&_keygroup::s900_velocity_crossfade> } } },
	{ of_keygroup, all, 0, 4, 0, "OFF,ON", { { "LFO desync", of<&_keygroup::s900_lfo_desync> } } },
	{ of_keygroup, all, 0, 8, 0, "OFF,ON", { { "One shot trigger", of<&_keygroup::s900_one_shot_trigger> } } },
	{ of_keygroup, all, 0, 16, 0, "OFF,ON", { { "Release velocity from note-on", of<&_keygroup::s900_velocity_release_from_note_on> } } },
	{ of_keygroup, all, 0, 32, 0, "OFF,ON", { { "Velocity crossfade curve modified", of<&_keygroup::s900_velocity_crossfade_curve_modification> } } },
	{ of_keyzone, all, -512, 511, 0, "", { { "Transpose", of<&_keyzone::transpose_offset> } } },
	{ of_keyzone, all, 0, 99, 0, "", { { "Filter", of<&_keyzone::s900_filter> } } },
	{ of_keyzone, all, -50, 50, 0, "", { { "Loudness", of<&_keyzone::s900_loudness> } } },
};
// clang-format on

std::string items_told(const told_rows &told)
{
	std::string words;
	const auto add = [&](const std::string &word) {
		words += (words.empty() ? "" : ",") + word;
	};
	if (told.items == "notes")
		for (int note = told.low; note <= told.high; note++)
			add(format_text(
				"%s [%d]", midi_note[static_cast<std::size_t>(note)], note));
	if (told.items.ends_with('+'))
		for (int i = 0; i <= told.high; i++)
			add(i ? std::to_string(i)
			      : std::string(told.items, 0, told.items.size() - 1));
	return !words.empty()         ? words
	       : told.items == "SRC"  ? SRC
	       : told.items == "WAVE" ? WAVE
				      : std::string(told.items);
}

class each_row : public forms
{
protected:
	// The row shows its range, and its ends change its field and not a byte beside it.
	void check(const told_rows &told, const any_field &field, int place)
	{
		const form_row &shown = rows(told.form)[static_cast<std::size_t>(place)];
		EXPECT_EQ(joined(shown.items), items_told(told));
		const bool list = !told.items.empty();
		EXPECT_EQ((std::pair{ shown.low, shown.high }),
			(list ? std::pair{ 0, 0 } : std::pair{ told.low, told.high }));
		const int last = static_cast<int>(shown.items.size()) - 1;
		for (const int end : { told.high, told.low }) {
			auto expected = std::make_unique<_program>(pgm());
			EXPECT_TRUE(velmor_form(window_programs, told.form, place,
				list ? choice : drag_end,
				!list              ? end
				: end == told.high ? last
						   : 0));
			const int held = end < 0 ? end + told.wrap : end;
			EXPECT_EQ(number_at(pgm(), { field, 1, current_keyzone_index }), held);
			if (const auto *p = std::get_if<named_field<_program>>(&field))
				p->at.set(expected.get(), held);
			if (const auto *k = std::get_if<named_field<_keygroup>>(&field))
				k->at.set(&expected->keygroup[1], held);
			if (const auto *z = std::get_if<named_field<_keyzone>>(&field))
				z->at.set(&expected->keygroup[1].keyzone[current_keyzone_index],
					held);
			EXPECT_EQ(std::memcmp(expected.get(), &pgm(), sizeof(_program)), 0);
		}
	}
	void check_all(std::span<const told_rows> told, unsigned model)
	{
		open();
		// Where a label comes twice, the fields of ENV1 stand in front of those of ENV2.
		for (const told_rows &kind : told)
			for (const auto &[label, field] : kind.rows) {
				SCOPED_TRACE(label);
				const bool second =
					std::string_view(field_name(field)).find("env2") !=
						std::string_view::npos &&
					model == s1000 &&
					std::string_view(label).find("nv2") ==
						std::string_view::npos;
				if (kind.models & model)
					check(kind, field, row_of(kind.form, label, second));
			}
	}
};

TEST_F(each_row, of_an_s1000)
{
	use(model_s1000);
	check_all(s1000_rows, s1000);
	EXPECT_EQ(count(of_program), 30);
	EXPECT_EQ(count(of_keygroup), 28 + 2) << "the beat and the attack hold are read only";
	EXPECT_EQ(count(of_keyzone), 11);
	EXPECT_EQ(headings(of_program), "MIDI,Output levels,Loudness,Pan,LFO1,Tune,Bend");
	EXPECT_EQ(row(of_keygroup, "Attack hold").kind, row_kind::reading);
	EXPECT_EQ(row(of_keygroup, "Attack hold").why_not,
		"The sampler tells this value but does not take it back: change it on the "
		"sampler.");
}

TEST_F(each_row, of_the_models_from_the_s2000_on)
{
	for (i32 model : { model_s2000, model_s2800, model_s3000 }) {
		use(model);
		check_all(s1000_rows, s2000);
		EXPECT_EQ(count(of_program), 56);
		EXPECT_EQ(count(of_keygroup), 39 + 4 + 1) << "four sources, and the beat";
		EXPECT_EQ(count(of_keyzone), 11);
	}
	EXPECT_EQ(headings(of_program), "MIDI,Output levels,Loudness,Pan,LFO1,LFO2,Tune,Bend,"
					"Portamento,S1000 modulation");
	EXPECT_EQ(
		headings(of_keygroup), "Span,Filter,Filter mod,Amp mod,ENV1,ENV2,S1000 modulation");
	EXPECT_EQ(row(of_keygroup, "Filter mod 1 source").unit, "for all keygroups");
}

TEST_F(each_row, of_an_s900)
{
	use(model_s900, 0);
	check_all(s900_rows, all);
	EXPECT_EQ(count(of_keygroup), 18 + 1) << "and the crossfade, read only";
	EXPECT_EQ(count(of_keyzone), 5);
	EXPECT_EQ(
		headings(of_keygroup), "Keygroup,Envelope,Filter envelope,Output,Velocity switch");
	EXPECT_TRUE(rows(of_program).empty());
}

TEST_F(forms, the_velocity_switch_fills_two_fields_and_only_the_soft_filter_is_edited)
{
	for (const i32 zone : { 0, 1 }) {
		use(model_s900, zone);
		pgm().crossfade_enable = 127;
		kg().keyzone[1].s900_filter = 42;
		open();
		tell(of_keyzone, "Velocity switch", drag_end, 128);
		EXPECT_EQ(row(of_keyzone, "Velocity switch").text, "OFF");
		type(of_keyzone, "Velocity switch", "77");
		EXPECT_EQ(kg().keyzone[0].high_velocity, 77);
		EXPECT_EQ(kg().keyzone[1].low_velocity, 77);
		EXPECT_EQ(kg().keyzone[1].high_velocity, 0);
		EXPECT_EQ(kg().keyzone[0].low_velocity, 0);
		EXPECT_EQ(row(of_keygroup, "Positional crossfade of the program").text, "ON");
		EXPECT_EQ(row(of_keyzone, "Filter").kind,
			zone ? row_kind::reading : row_kind::slider);
		EXPECT_EQ(row(of_keyzone, "Filter").text, zone ? "42" : "0");
		EXPECT_EQ(row(of_keyzone, zone ? "Loud sample" : "Soft sample").value, 0);
	}
}

// ---- Units and values outside the range -----------------------------------------------------------

TEST_F(forms, units_are_shown_and_understood)
{
	// clang-format off
	struct {
		i32 model;
		int form;
		const char *label;
		any_field field;
		int held;
		const char *shown, *typed;
		int stored;
	} table[] = {
		{ model_s3000, of_program, "Tune offset", of<&_program::s1000_tunning_offset>, -50, "-0.50", "12,5", 1250 },
		{ model_s3000, of_program, "Tune offset", of<&_program::s1000_tunning_offset>, 1205, "12.05", "-50.00", -5000 },
		{ model_s3000, of_program, "Tune offset", of<&_program::s1000_tunning_offset>, -5100, "-51.00", "50.01", -5100 },
		{ model_s3000, of_program, "Pan", of<&_program::s1000_balance>, 206, "L50", "R7", 7 },
		{ model_s3000, of_program, "Pan", of<&_program::s1000_balance>, 0, "MID", "L3", 253 },
		{ model_s3000, of_program, "Pressure > pitch", of<&_program::s1000_aftertouch_bend>, 244, "-12", "+3", 3 },
		{ model_s3000, of_keyzone, "Loudness offset", of<&_keyzone::level>, 128, "-128", "-51", 128 },
		{ model_s3000, of_keyzone, "Velocity > sample start", of<&_keyzone::velocity_start>, 65535, "-1", "-9999", 55537 },
		{ model_s3000, of_keyzone, "Velocity > sample start", of<&_keyzone::velocity_start>, 32767, "32767", "x", 32767 },
		{ model_s3000, of_keygroup, "Filter frequency", of<&_keygroup::s1000_basic_filter_frequency>, 200, "200", "100", 200 },
		{ model_s900, of_keyzone, "Transpose", of<&_keyzone::transpose_offset>, 511, "31.94", "-0.06", -1 },
		{ model_s900, of_keyzone, "Transpose", of<&_keyzone::transpose_offset>, -8, "-0.50", "32", -8 },
	};
	// clang-format on
	for (const auto &it : table) {
		SCOPED_TRACE(std::string(it.label) + " " + it.typed);
		use(it.model);
		const field_place at = { it.field, 1, 2 };
		const field_change change = { at, it.held };
		ASSERT_TRUE(edit_fields(pgm(), {}, { &change, 1 }));
		open();
		EXPECT_EQ(row(it.form, it.label).text, it.shown);
		type(it.form, it.label, it.typed);
		EXPECT_EQ(number_at(pgm(), at), it.stored);
		EXPECT_EQ(row(it.form, it.label).text, it.typed) << "what is typed stays";
	}
}

TEST_F(forms, a_value_without_a_word_is_shown_and_stays_until_its_row_is_edited)
{
	pgm().s1000_priority = 9;
	kz().zone_playback = 7;
	open();
	EXPECT_EQ(joined(row(of_program, "Priority").items), "LOW,NORM,HIGH,HOLD,9 (unknown)");
	EXPECT_EQ(row(of_program, "Priority").value, 4);
	EXPECT_EQ(row(of_keyzone, "Playback").kind, row_kind::choice);
	tell(of_program, "Loudness", drag_end, 50);
	refresh_forms(window_programs);
	EXPECT_EQ(pgm().s1000_priority, 9);
	tell(of_program, "Priority", choice, 2);
	EXPECT_EQ(pgm().s1000_priority, 2);
	tell(of_program, "Priority", choice, 4);
	EXPECT_EQ(pgm().s1000_priority, 2) << "what lies outside is no entry";
	EXPECT_EQ(row(of_program, "Priority").value, 2);
	EXPECT_TRUE(undo_edit(pgm()));
	refresh_forms(window_programs);
	EXPECT_EQ(row(of_program, "Priority").value, 4);
	tell(of_keyzone, "Playback", choice, 3);
	refresh_forms(window_programs);
	EXPECT_EQ(row(of_keyzone, "Playback").kind, row_kind::radio);
	EXPECT_EQ(row(of_keyzone, "Playback").value, 3);
	kz().zone_playback = 5;
	akai_s1000_sample_check(0, 1, 2);
	EXPECT_EQ(row(of_keyzone, "Playback").value, -1) << "all clear";
}

TEST_F(forms, samples_are_chosen_by_name)
{
	copy_text(current_sampler->status->sample[0].name, "STRINGS");
	copy_text(current_sampler->status->sample[1].name, "BASS");
	current_sampler->status->samples = 2;
	copy_text(kz().samplename, "GONE");
	open();
	EXPECT_EQ(joined(row(of_keyzone, "Sample").items),
		"no sample,STRINGS,BASS,GONE (not loaded)");
	EXPECT_EQ(row(of_keyzone, "Sample").value, 3);
	apply(apply_to_keyzones, true);
	tell(of_keyzone, "Sample", choice, 2);
	EXPECT_STREQ(kz().samplename, "BASS");
	EXPECT_STREQ(kg().keyzone[0].samplename, "") << "zones keep their own samples";
	EXPECT_TRUE(h.logged("[D] New Sample-Name: [BASS]"));
	tell(of_keyzone, "Sample", choice, 0);
	EXPECT_STREQ(kz().samplename, "");
	use(model_s900, 1);
	copy_text(kz().samplename, "BASS");
	open();
	EXPECT_EQ(row(of_keyzone, "Loud sample").value, 2);
	tell(of_keyzone, "Loud sample", choice, 1);
	EXPECT_STREQ(kz().samplename, "STRINGS  ") << "nine, so that no tail of the old name stays";
	refresh_forms(window_programs);
	EXPECT_EQ(row(of_keyzone, "Loud sample").value, 1);
}

TEST_F(forms, a_key_range_is_not_turned_round)
{
	kg().low_note = 60;
	kg().high_note = 72;
	open();
	tell(of_keygroup, "Key low", choice, 73 - 21);
	EXPECT_EQ(kg().low_note, 60);
	tell(of_keygroup, "Key high", choice, 59 - 21);
	EXPECT_EQ(kg().high_note, 72);
	EXPECT_EQ(h.boxes, (std::vector<shown_box>{ { "New Low Note must be lower!", "ERROR" },
				   { "New High Note must be higher!", "ERROR" } }));
	EXPECT_EQ(row(of_keygroup, "Key low").value, 60 - 21) << "the list shows what is so";
	tell(of_keygroup, "Key low", choice, 72 - 21);
	EXPECT_EQ(kg().low_note, 72) << "one key is a range";
	EXPECT_TRUE(h.logged("[D] New Low-Value: 72"));
}

// ---- S5000 ------------------------------------------------------------------------------------------

struct told_bar {
	const char *label;
	int id, edit_id;
	any_field field;
	std::pair<int, int> bar, typed;
};
// clang-format off
const told_bar s5000_bars[] = {
	{ "FX-Sendlevel:", 27005, 27006, of<&_keygroup::fx_sendlevel>, { 0, 100 }, { 0, 100 } },
	{ "Semitone-Tune:", 27009, 27010, of<&_keygroup::s5000_semitone_tune>, { -36, 36 }, { -36, 36 } },
	{ "Fine-Tune:", 27011, 27012, of<&_keygroup::s5000_fine_tune>, { -36, 36 }, { -50, 50 } },
	{ "Pitch-Mod1 Lvl:", 27013, 27014, of<&_keygroup::s5000_pitch_mod1_val>, { -100, 100 }, { -100, 100 } },
	{ "Pitch-Mod2 Lvl:", 27015, 27016, of<&_keygroup::s5000_pitch_mod2_val>, { -100, 100 }, { -100, 100 } },
	{ "Amp-Mod Lvl:", 27017, 27018, of<&_keygroup::s5000_amp_mod1_val>, { -100, 100 }, { -100, 100 } },
	{ "Cutoff Freq:", 27020, 27021, of<&_keygroup::s5000_filter_cutoff>, { 0, 100 }, { 0, 100 } },
	{ "Resonance:", 27022, 27023, of<&_keygroup::s5000_filter_resonance>, { 0, 15 }, { 0, 15 } },
	{ "Keyboard Track:", 27024, 27025, of<&_keygroup::s5000_filter_keyboard_track>, { -36, 36 }, { -36, 36 } },
	{ "Mod1 Input Lvl:", 27026, 27027, of<&_keygroup::s5000_filter_mod1_input>, { -100, 100 }, { -100, 100 } },
	{ "Mod2 Input Lvl:", 27028, 27029, of<&_keygroup::s5000_filter_mod2_input>, { -100, 100 }, { -100, 100 } },
	{ "Mod3 Input Lvl:", 27030, 27031, of<&_keygroup::s5000_filter_mod3_input>, { -100, 100 }, { -100, 100 } },
	{ "Attack:", 27033, 27034, of<&_keygroup::filter_attack>, { 0, 100 }, { 0, 100 } },
	{ "Velocity-Attack:", 27035, 27036, of<&_keygroup::s1000_env1_velocity_attack>, { -100, 100 }, { -100, 100 } },
	{ "Decay:", 27037, 27038, of<&_keygroup::filter_decay>, { 0, 100 }, { 0, 100 } },
	{ "Sustain:", 27039, 27040, of<&_keygroup::filter_sustain>, { 0, 100 }, { 0, 100 } },
	{ "Release:", 27041, 27042, of<&_keygroup::filter_release>, { 0, 100 }, { 0, 100 } },
	{ "ON Vel-Rel:", 27043, 27044, of<&_keygroup::s5000_env1_on_velocity_release>, { -100, 100 }, { -100, 100 } },
	{ "OFF Vel-Rel:", 27045, 27046, of<&_keygroup::s1000_env1_off_velocity_release>, { -100, 100 }, { -100, 100 } },
	{ "Key-Scale:", 27047, 27048, of<&_keygroup::s1000_env1_key_scaling>, { -100, 100 }, { -100, 100 } },
	{ "Depth:", 27049, 27050, of<&_keygroup::s5000_env1_depth>, { -100, 100 }, { -100, 100 } },
	{ "Zone Level:\n\n", 27004, 27005, of<&_keyzone::zone_level>, { -100, 100 }, { -600, 60 } },
	{ "Zone Panning(L/R):\n\n", 27007, 27008, of<&_keyzone::zone_panning>, { -50, 50 }, { -50, 50 } },
	{ "Fine Tune:\n\n", 27049, 27050, of<&_keyzone::fine_tune>, { -50, 50 }, { -50, 50 } },
	{ "Semitone Tune:\n\n", 27052, 27053, of<&_keyzone::semitone_tune>, { -36, 36 }, { -36, 36 } },
	{ "Velocity Start:\n\n", 27055, 27005, of<&_keyzone::velocity_start>, { -9999, 9999 }, { 0, -1 } },
};
struct told_list {
	const char *label;
	int id;
	any_field field;
	std::string_view items;
	int count;
	const char *applied;
};
const told_list s5000_lists[] = {
	{ "Note-Low:",       27001, field_of<&_keygroup::low_note>, "C-2 [0],C#-2 [1],", 128, "NOTE_LOW" },
	{ "Note-High:",      27002, field_of<&_keygroup::high_note>, "C-2 [0],C#-2 [1],", 128, "NOTE_HIGH" },
	{ "Mute-Group:",     27003, field_of<&_keygroup::mute_group>, "OFF,1,2,3,", 33, "MUTE_GROUP" },
	{ "FX-Override:",    27004, field_of<&_keygroup::fx_override>, "OFF,FX 1,FX 2,RV 3,RV 4", 5, "NOTE_LOW" },
	{ "Zone-Crossfade:", 27007, field_of<&_keygroup::crossfade>, "OFF,ON", 2, "MUTE_GROUP" },
	{ "Keygroup-Level:", 27008, field_of<&_keygroup::s5000_keygroup_level>, "-30 dB,-24 dB,-18 dB,-12 dB,-6 dB,0 dB,+6 dB,+12 dB,+18 dB,+24 dB,+30 dB", 11, "NOTE_LOW" },
	{ "Filter-Mode:",    27019, field_of<&_keygroup::s5000_filter_mode>, "2-Pole,4-Pole,2-Pole LP+,2-Pole BP,4-Pole BP,2-Pole BP+,1-Pole HP,2-Pole HP,1-Pole HP+,LO<>HI,LO<>BAND,BAND<>HI,NOTCH 1,NOTCH 2,NOTCH 3,WIDE NOTCH,HI-NOTCH,PEAK 1,PEAK 2,PEAK 3,WIDE PEAK,HI PEAK,PHASER 1,PHASER 2,BI-PHASE,VOWELISER", 26, "NOTE_LOW" },
	{ "Attenuation:",    27032, field_of<&_keygroup::s5000_filter_attenuation>, "0 dB,6 dB,12 dB,18 dB,24 dB,30 dB", 6, "NOTE_LOW" },
};
// clang-format on

class s5000 : public forms
{
protected:
	s5000()
	{
		use(model_s5000);
		open();
	}
};

TEST_F(s5000, bars_store_when_they_move_and_fill_their_field_when_let_go)
{
	for (const told_bar &told : s5000_bars) {
		SCOPED_TRACE(told.label);
		const bool zone = std::holds_alternative<named_field<_keyzone>>(told.field);
		const int form = zone ? of_keyzone : of_keygroup;
		const form_row &shown = row(form, told.label);
		EXPECT_EQ((std::pair{ shown.id, shown.field_id }),
			(std::pair{ told.id, told.edit_id }));
		EXPECT_EQ((std::pair{ shown.low, shown.high }), told.bar);
		const field_place at = { told.field, 1, 2 };
		tell(form, told.label, drag, told.bar.second);
		EXPECT_EQ(number_at(pgm(), at), told.bar.second);
		EXPECT_EQ(shown.text, "0") << "not yet let go";
		tell(form, told.label, drag_end, told.bar.first);
		EXPECT_EQ(number_at(pgm(), at), told.bar.first);
		EXPECT_EQ(shown.text, std::to_string(told.bar.first));
		if (told.typed.first > told.typed.second)
			continue;
		for (const int outside : { told.typed.first - 1, told.typed.second + 1 }) {
			type(form, told.label, std::to_string(outside).c_str());
			EXPECT_EQ(shown.text, std::to_string(outside)) << "stays as typed";
			EXPECT_EQ(number_at(pgm(), at), told.bar.first);
			EXPECT_EQ(shown.value, 0) << "the bar stays too";
		}
		type(form, told.label, std::to_string(told.typed.second).c_str());
		EXPECT_EQ(shown.value + (zone ? 0 : number_at(pgm(), at)),
			std::min(told.typed.second, told.bar.second) * (zone ? 1 : 2))
			<< "the bar moves; in the voice form it stores";
		EXPECT_TRUE(!zone || number_at(pgm(), at) == told.bar.first);
	}
}

TEST_F(s5000, forty_typed_into_fine_tune_stores_36_in_the_words_of_the_log)
{
	h.forget_log();
	type(of_keygroup, "Fine-Tune:", "40");
	EXPECT_EQ(kg().s5000_fine_tune, 36);
	EXPECT_EQ(row(of_keygroup, "Fine-Tune:").text, "40");
	const std::string opening = "[D] Requesting Voice-Output CALLBACK Window for Akai S5000 "
				    "(PGM: 0, KG: 1, KZ: 2)\r\n";
	EXPECT_EQ(
		h.log(), (std::vector<std::string>{ opening, "[D] -->fine_tune_inp<-- POS: 40\r\n",
				 opening, "[D] -->fine_tune_tb<-- POS: 36\r\n" }));
	type(of_keygroup, "Cutoff Freq:", "12");
	EXPECT_TRUE(h.logged("[D] -->filter_cutoff_inp<-- POS: 12"));
	EXPECT_TRUE(h.logged("[D] -->filter_cutoff_tb<-- POS: 12"));
	EXPECT_EQ(kg().s5000_filter_cutoff, 12);
}

TEST_F(s5000, lists_store_their_place_and_apply_it_to_all_keygroups)
{
	for (_keygroup &keygroup : pgm().keygroup)
		keygroup.high_note = 100;
	for (const told_list &told : s5000_lists) {
		SCOPED_TRACE(told.label);
		const form_row &shown = row(of_keygroup, told.label);
		EXPECT_EQ(shown.id, told.id);
		EXPECT_EQ(joined(shown.items).substr(0, told.items.size()), told.items);
		EXPECT_EQ(shown.items.size(), static_cast<std::size_t>(told.count));
		for (const bool ticked : { false, true }) {
			apply(apply_to_keygroups, ticked);
			h.forget_log();
			const int place = told.count - 1 - ticked;
			tell(of_keygroup, told.label, choice, place);
			for (const int keygroup : { 0, 1, 2 })
				EXPECT_EQ(number_at(pgm(), { told.field, keygroup }) == place,
					ticked || keygroup == 1);
			EXPECT_EQ(h.logged(std::string("[D] Applying ") + told.applied +
					   " to 3 Keygroups!"),
				ticked);
		}
	}
	EXPECT_EQ(row(of_keygroup, "Note-High:").items.back(), "G8 [127]");
	EXPECT_EQ(row(of_keygroup, "Mute-Group:").items.back(), "32");
	EXPECT_EQ(count(of_keygroup), 8 + 21);
	EXPECT_EQ(headings(of_keygroup), "General,Pitch/Amp,Filter,Amp Envelope,Filter Envelope");
	tell(of_keygroup, "Depth:", drag, -7);
	EXPECT_EQ(pgm().keygroup[2].s5000_env1_depth, -7) << "a bar is applied too";
}

TEST_F(s5000, the_second_field_27005_is_taken_for_the_first)
{
	row(of_keyzone, "Zone Level:\n\n").text = "33";
	h.forget_log();
	type(of_keyzone, "Velocity Start:\n\n", "500");
	EXPECT_EQ(row(of_keyzone, "Zone Level:\n\n").value, 33);
	EXPECT_EQ(row(of_keyzone, "Velocity Start:\n\n").value, 0);
	EXPECT_EQ(kz().zone_level + kz().velocity_start, 0);
	EXPECT_EQ(h.log().back(), "[D] -->zone_level_inp<-- POS: 33\r\n");
}

TEST_F(s5000, buttons_of_the_zone_go_to_four_zones_but_for_solo)
{
	kg().keyzones = 1;
	apply(apply_to_keyzones, true);
	for (const char *label : { "Mute", "Solo", "Keyboard Track" })
		tell(of_keyzone, label, choice, 1);
	EXPECT_TRUE(h.logged("[D] Requesting ZONEVoice-Output CALLBACK Window for Akai S5000 (PGM: "
			     "0, KG: 1, KZ: 2) APPLY_ALL: 1"));
	for (int z = 0; z < 5; z++) {
		const _keyzone &zone = kg().keyzone[z];
		EXPECT_EQ(zone.zone_mute, z < 4) << z;
		EXPECT_EQ(zone.zone_solo, z == 2) << z;
		EXPECT_EQ(zone.zone_keyboard_track, z < 4) << z;
	}
	EXPECT_EQ((std::array{ row(of_keyzone, "Mute").id, row(of_keyzone, "Solo").id,
			  row(of_keyzone, "Keyboard Track").id }),
		(std::array{ 27037, 27038, 27039 }));
	tell(of_keyzone, "Solo", choice, 1);
	EXPECT_EQ(kz().zone_solo, 0) << "each click turns it over";
	tell(of_keyzone, "Zone Panning(L/R):\n\n", drag, -20);
	EXPECT_EQ(kg().keyzone[3].zone_panning, -20);
	EXPECT_EQ(kg().keyzone[4].zone_panning + pgm().keygroup[0].keyzone[0].zone_panning, 0);
}

TEST_F(s5000, groups_of_buttons_have_their_ids_and_show_the_value)
{
	const form_row &mode = row(of_keyzone, "Sample Playmode");
	const form_row &output = row(of_keyzone, "Output Management");
	EXPECT_EQ(joined(mode.items), "No Loop,One Shot,Loop in Release,Loop until Release,"
				      "LIR->Retrigger,Play Retrigger,As Sample");
	EXPECT_EQ(mode.item_ids,
		(std::vector<int>{ 27045, 27041, 27042, 27043, 27044, 27065, 27040 }));
	EXPECT_EQ(joined(output.items),
		"Multi,1/2,3/4,5/6,7/8,9/10,11/12,13/14,15/16,1,2,3,4,5,6,7,"
		"8,9,10,11,12,13,14,15,16");
	for (int value = 0; value <= 24; value++)
		EXPECT_EQ(output.item_ids[static_cast<std::size_t>(value)],
			27011 + value + (value > 8));
	tell(of_keyzone, "Sample Playmode", choice, 6);
	EXPECT_EQ(kz().zone_playback, 6);
	EXPECT_EQ(mode.value, 6);
	kz().zone_output = 24;
	akai_s5000_output_setcheck(0, 1, 2);
	EXPECT_EQ(output.items[static_cast<std::size_t>(output.value)], "16");
	kz().zone_playback = 9;
	akai_s5000_sample_setcheck(0, 1, 2);
	EXPECT_EQ(mode.value, -1) << "none has the value";
}

TEST_F(s5000, opening_is_logged_and_making_a_form_stores_nothing)
{
	EXPECT_TRUE(h.logged(
		"[D] Requesting Voice-Output Window for Akai S5000 (PGM: 0, KG: 1, KZ: 2)"));
	EXPECT_TRUE(h.logged(
		"[D] Requesting ZONE-Output Window for Akai S5000 (PGM: 0, KG: 1, KZ: 2)"));
	EXPECT_TRUE(
		h.logged("[D] Requesting KEYGROUPRAM ZONE-Output Window for Akai S5000 (PGM: 0, "
			 "KG: 1, KZ: 2)"));
	velmor_form(window_programs, of_program, 0, choice, 1);
	EXPECT_TRUE(h.logged("[D] Requesting KEYGROUPRAM ZONEVoice-Output CALLBACK Window for Akai "
			     "S5000 (PGM: 0, KG: 1, KZ: 2)"));
	// A toolkit that tells of its own making, in the midst of it.
	static ui_service telling;
	telling = *host.ui;
	static const ui_service *before;
	before = host.ui;
	telling.build_form = [](int window, int form, std::span<const form_row> rows) {
		before->build_form(window, form, rows);
		velmor_form(window, form, 5, drag_end, 9);
		velmor_form(window, form, 3, drag_end, 9);
	};
	host.ui = &telling;
	const auto as_was = std::make_unique<_program>(pgm());
	akai_s5000_voice_assign(window_programs, 0, 1, 2);
	akai_s5000_zone_assign(window_programs, 0, 1, 2);
	host.ui = before;
	EXPECT_EQ(std::memcmp(as_was.get(), &pgm(), sizeof(_program)), 0);
	EXPECT_FALSE(keygroup_setup_busy || setup_busy);
	velmor_form(window_programs, of_keygroup, 5, drag_end, 9);
	EXPECT_EQ(kg().fx_sendlevel, 9);
}

// ---- Z4, and what has no form --------------------------------------------------------------------

TEST_F(forms, the_z4_stores_a_level_when_its_bar_moves)
{
	use(model_z4);
	open();
	EXPECT_TRUE(h.logged("[D] Z4 Keyzone assignement started 0,1,2"));
	EXPECT_TRUE(h.logged("[D] PROG_ASSIGN PROG: 0"));
	ASSERT_EQ(rows(of_keyzone).size(), 1u);
	const form_row &level = rows(of_keyzone)[0];
	EXPECT_EQ(level.label, "Zone Level (x 0.1 dB):\n\n");
	EXPECT_EQ((std::array{ level.id, level.field_id, level.low, level.high }),
		(std::array{ 27004, 27005, -600, 60 }));
	for (const auto &[typed, bar] : { std::pair{ "-200", -200 }, { "100", -200 } }) {
		type(of_keyzone, level.label, typed);
		EXPECT_EQ(level.value, bar) << typed;
		EXPECT_EQ(kz().zone_level, 0) << typed;
		EXPECT_TRUE(h.logged(std::string("[D] -->ZONE_LEVEL_INP<-- POS: ") + typed));
	}
	tell(of_keyzone, level.label, drag, -600);
	EXPECT_EQ(level.text, "100");
	tell(of_keyzone, level.label, drag_end, 60);
	EXPECT_EQ(level.text, "60");
	EXPECT_EQ(kz().zone_level, 60);
	EXPECT_TRUE(h.logged("[D] -->ZONE_LEVEL<-- POS: -600"));
	h.forget_log();
	akai_z4_keyzone_assign(window_programs, 0, -1, 0);
	EXPECT_TRUE(h.log().empty());
	EXPECT_TRUE(rows(of_keygroup).empty());
}

// The slots of the other rows are gone through above.
TEST_F(forms, the_mpc_has_pads_in_its_row_and_no_form)
{
	const _sampler_type &mpc = sampler_type[9], &s3000 = sampler_type[5],
			    &s3200 = sampler_type[6];
	EXPECT_TRUE(
		mpc.assignpad == akai_mpc_pad_assign && mpc.assignvoice == akai_z4_voice_assign);
	EXPECT_TRUE(mpc.assignpad_callback == akai_mpc_pad_assign_callback);
	EXPECT_TRUE(mpc.assignvoice_callback == akai_z4_voice_assign_callback);
	EXPECT_FALSE(mpc.assignvelocity || mpc.assignvelocity_callback || mpc.assignprog);
	EXPECT_TRUE(s3200.assignvoice == s3000.assignvoice && s3200.assignprog == s3000.assignprog);
	EXPECT_TRUE(sampler_type[1].assignprog == akai_s900_prog_assign && !s3000.assignpad);
}

TEST_F(forms, indexes_that_are_not_there_give_an_empty_form)
{
	for (const auto &[p, k, z] : { std::array{ -1, 1, 2 }, { 512, 1, 2 }, { 0, 3, 2 },
		     { 0, -1, 2 }, { 0, 1, 8 }, { 0, 1, -1 } }) {
		akai_s5000_zone_assign(window_programs, p, k, z);
		EXPECT_TRUE(rows(of_keyzone).empty());
	}
	open();
	const auto as_was = std::make_unique<_program>(pgm());
	current_keygroup_index = 3;
	for (const int place : { -1, 0, 1, 1000 })
		for (const form_event event :
			{ drag, drag_end, edit, choice, form_event::put_back })
			velmor_form(window_programs, of_keygroup, place, event, 1);
	EXPECT_EQ(std::memcmp(as_was.get(), &pgm(), sizeof(_program)), 0);
}

// ---- Marks, putting back, other programs -----------------------------------------------------------

TEST_F(forms, what_was_changed_is_marked_and_put_back)
{
	kg().amp_decay = 85;
	open();
	EXPECT_EQ(put_back_words(window_programs, of_keygroup, row_of(of_keygroup, "Decay")), "");
	tell(of_keygroup, "Decay", drag, 70);
	tell(of_keygroup, "Decay", drag, 65);
	tell(of_keygroup, "Decay", drag_end, 60);
	EXPECT_TRUE(row(of_keygroup, "Decay").changed);
	EXPECT_EQ(put_back_words(window_programs, of_keygroup, row_of(of_keygroup, "Decay")),
		"Put back 85, as read");
	EXPECT_EQ(unsent_changes(pgm()), (unsent_counts{ 0, 1, 0 }));
	ASSERT_TRUE(undo_words(pgm()));
	EXPECT_EQ(undo_words(pgm())->what, "Decay of keygroup 2");
	EXPECT_EQ(undo_words(pgm())->from + " to " + undo_words(pgm())->to, "85 to 60");
	tell(of_keygroup, "Decay", form_event::put_back, 0);
	EXPECT_EQ(kg().amp_decay, 85u);
	EXPECT_FALSE(row(of_keygroup, "Decay").changed);
	EXPECT_EQ(row(of_keygroup, "Decay").text, "85");
	EXPECT_TRUE(undo_edit(pgm()));
	EXPECT_EQ(kg().amp_decay, 60u);
	EXPECT_TRUE(undo_edit(pgm())) << "one drag is one step";
	EXPECT_FALSE(undo_edit(pgm()));
	type(of_keygroup, "Decay", "4");
	type(of_keygroup, "Decay", "47");
	EXPECT_EQ(kg().amp_decay, 47u);
	EXPECT_TRUE(undo_edit(pgm()));
	EXPECT_EQ(kg().amp_decay, 85u) << "and so is typing";
}

TEST_F(forms, a_value_for_all_is_one_step)
{
	apply(apply_to_keyzones, true);
	open();
	tell(of_keyzone, "Velocity low", drag_end, 20);
	for (int z = 0; z < 8; z++)
		EXPECT_EQ(kg().keyzone[z].low_velocity, z < 4 ? 20 : 0) << z;
	EXPECT_EQ(undo_words(pgm())->what, "Velocity low of all keyzones of keygroup 2");
	EXPECT_EQ(unsent_changes(pgm()).keyzones, 4);
	EXPECT_TRUE(undo_edit(pgm()));
	EXPECT_EQ(kg().keyzone[3].low_velocity, 0);
	apply(apply_to_keygroups, true);
	tell(of_keygroup, "Filter mod 1 source", choice, 5);
	EXPECT_EQ(undo_words(pgm())->what, "Filter mod 1 source");
	EXPECT_EQ(undo_words(pgm())->to, "VELOCITY");
	EXPECT_EQ(unsent_changes(pgm()), (unsent_counts{ 1, 0, 0 }));
}

TEST_F(forms, a_local_program_has_the_forms_of_its_model)
{
	auto local = std::make_unique<_program>();
	local->keygroups = 2;
	edit_local_program(local.get(), model_s5000);
	open();
	tell(of_keygroup, "Resonance:", drag_end, 15);
	EXPECT_EQ(local->keygroup[1].s5000_filter_resonance, 15);
	EXPECT_EQ(kg().s5000_filter_resonance, 0);
	forget_edits(*local);
	edit_local_program(local.get(), 4711);
	velmor_form(window_programs, of_keygroup, 1, choice, 1);
	EXPECT_EQ(h.boxes.back(), (shown_box{ "Invalid sampler type", "INFO" }));
}

} // namespace
} // namespace velmor
