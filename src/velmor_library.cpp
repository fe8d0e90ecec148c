// velmor_library.cpp - a program as text, exact in both directions
//
// Knows nothing of: windows, the wire, files (velmor_library_files.cpp).

#include "src/velmor_library.h"
#include "src/parameters.h"
#include <algorithm>
#include <charconv>

namespace velmor
{

// ---- Fields ---------------------------------------------------------------------------------

template <auto first, auto... rest>
static constexpr std::array<named_field<decltype(owner_of(first))>, 1 + sizeof...(rest)> fields = {
	field_of<first>, field_of<rest>...
};

using P = _program;
using K = _keygroup;
using Z = _keyzone;

// Everything that a record holds but its counts, which are those of the sections, its model,
// which heads the file, and what nobody fills.
static constexpr auto program_fields = fields<&P::name, &P::number, &P::index, &P::midi_pgm_number,
	&P::midi_channel, &P::polyphony, &P::c_detune, &P::c_cross_detune, &P::d_detune,
	&P::eb_detune, &P::e_detune, &P::f_detune, &P::f_cross_detune, &P::g_detune,
	&P::g_cross_detune, &P::a_detune, &P::bb_detune, &P::b_detune, &P::play_range_low,
	&P::play_range_high, &P::crossfade_enable, &P::s1000_output, &P::s1000_level,
	&P::s1000_balance, &P::s1000_basic_loudness, &P::s1000_velocity_loudness,
	&P::s1000_priority, &P::s2000_mono_legato, &P::s1000_tunning_offset,
	&P::s2000_transpose_offset, &P::s2000_out_mod1_level, &P::s2000_out_mod1_source,
	&P::s2000_out_mod2_level, &P::s2000_out_mod2_source, &P::s2000_pan_mod1_level,
	&P::s2000_pan_mod1_source, &P::s2000_pan_mod2_level, &P::s2000_pan_mod2_source,
	&P::s2000_pan_mod3_level, &P::s2000_pan_mod3_source, &P::s2000_amp_mod3_source,
	&P::s2000_flt_mod1_source, &P::s2000_flt_mod2_source, &P::s2000_flt_mod3_source,
	&P::s1000_reasignement, &P::s2000_lfo1_waveform, &P::s1000_lfo1_speed, &P::s1000_lfo1_depth,
	&P::s1000_lfo1_delay, &P::s1000_lfo1_sync, &P::s1000_lfo1_modwheel, &P::s1000_lfo1_pressure,
	&P::s2000_lfo1_rate_source, &P::s2000_lfo1_depth_source, &P::s2000_lfo1_delay_source,
	&P::s2000_lfo1_rate_level, &P::s2000_lfo1_depth_level, &P::s2000_lfo1_delay_level,
	&P::s2000_lfo2_waveform, &P::s1000_lfo2_speed, &P::s1000_lfo2_depth, &P::s1000_lfo2_delay,
	&P::s2000_lfo2_retrigger, &P::s5000_lfo2_rate_source, &P::s5000_lfo2_depth_source,
	&P::s5000_lfo2_delay_source, &P::s1000_bendwheel_pitch_up, &P::s2000_bendwheel_pitch_down,
	&P::s1000_aftertouch_bend, &P::s2000_aftertouch_bend_mode, &P::s1000_effect_out,
	&P::s1000_key_loudness, &P::s1000_aftertouch_loudness, &P::s1000_key_panning,
	&P::s1000_mod_panning, &P::s2000_portamento, &P::s2000_portamento_rate,
	&P::s2000_portamento_mode, &P::s5000_kg_pitch_mod1_source, &P::s5000_kg_pitch_mod2_source,
	&P::s5000_kg_amp_mod_source>;

static constexpr auto keygroup_fields = fields<&K::low_note, &K::high_note, &K::s900_output,
	&K::s900_midi_offset, &K::mute_group, &K::fx_override, &K::fx_sendlevel, &K::crossfade,
	&K::crossfade_type, &K::fx_level, &K::amp_attack, &K::amp_decay, &K::amp_sustain,
	&K::amp_release, &K::filter_attack, &K::filter_decay, &K::filter_sustain,
	&K::filter_release, &K::aux_rate1, &K::aux_rate2, &K::aux_rate3, &K::aux_rate4,
	&K::aux_rate1_level, &K::aux_rate2_level, &K::aux_rate3_level, &K::aux_rate4_level,
	&K::s5000_semitone_tune, &K::s5000_fine_tune, &K::s5000_keygroup_level,
	&K::s5000_pitch_mod1_val, &K::s5000_pitch_mod2_val, &K::s5000_amp_mod1_val,
	&K::s5000_filter_mode, &K::s5000_filter_cutoff, &K::s5000_filter_resonance,
	&K::s5000_filter_keyboard_track, &K::s5000_filter_mod1_input, &K::s5000_filter_mod2_input,
	&K::s5000_filter_mod3_input, &K::s5000_filter_attenuation, &K::s900_transpose_disable,
	&K::s900_velocity_crossfade, &K::s900_lfo_desync, &K::s900_one_shot_trigger,
	&K::s900_velocity_release_from_note_on, &K::s900_velocity_crossfade_curve_modification,
	&K::ahold, &K::kbeat, &K::s1000_tune_offset, &K::s1000_basic_filter_frequency,
	&K::s1000_env1_key_scaling, &K::s1000_env1_velocity_attack, &K::s1000_env1_velocity_release,
	&K::s1000_env1_off_velocity_release, &K::s5000_env1_on_velocity_release,
	&K::s5000_env1_depth, &K::s1000_env1_attack_hold, &K::s2000_amp_mod3_level,
	&K::s2000_filter_resonance, &K::s1000_filter_keyboard, &K::s2000_flt_mod1_level,
	&K::s2000_flt_mod2_level, &K::s2000_flt_mod3_level, &K::s1000_filter_velocity_freq,
	&K::s1000_filter_pressure_freq, &K::s1000_filter_env2_freq, &K::s1000_filter_env2_pitch,
	&K::s1000_filter_loudness_offset, &K::s1000_env2_r1, &K::s1000_env2_r3, &K::s1000_env2_r4,
	&K::s1000_env2_l3, &K::s2000_env2_l1, &K::s2000_env2_r2, &K::s2000_env2_l2,
	&K::s2000_env2_l4, &K::s1000_env2_velocity_r1, &K::s1000_env2_velocity_r4,
	&K::s1000_env2_off_velocity_r4, &K::s1000_env2_key_r2_r4, &K::s1000_env2_velocity_envelope>;

static constexpr auto keyzone_fields = fields<&Z::samplename, &Z::low_velocity, &Z::high_velocity,
	&Z::pan, &Z::output, &Z::tunning, &Z::level, &Z::filter, &Z::fine_tune, &Z::semitone_tune,
	&Z::velocity_start, &Z::solo, &Z::transpose_offset, &Z::s900_filter, &Z::s900_loudness,
	&Z::zone_level, &Z::zone_panning, &Z::zone_output, &Z::zone_filter, &Z::zone_keyboard_track,
	&Z::zone_playback, &Z::zone_mute, &Z::zone_solo, &Z::zone_mute_group,
	&Z::s1000_loudness_offset, &Z::s1000_vzout>;

// ---- Writing --------------------------------------------------------------------------------

std::string quoted_text(std::string_view text)
{
	std::string out = "\"";
	for (const char c : text) {
		const auto byte = static_cast<u8>(c);
		const bool plain = byte >= ' ' && byte <= '~' && c != '"' && c != '\\';
		out += plain ? std::string(1, c) : format_text("\\x%02X", byte);
	}
	return out + "\"";
}

// A u32 is written as what it is, though fields give it as i32.
template <typename record> static std::string value_text(const record &r, const member<record> &at)
{
	if (const auto *text = std::get_if<typename member<record>::text>(&at.field))
		return (r.*(*text))[0]
			       ? quoted_text(bounded_bytes{
					 { reinterpret_cast<const u8 *>(r.*(*text)), name_size } }
						     .text(0))
			       : "";
	if (std::holds_alternative<u32 record::*>(at.field))
		return at.get(r) ? format_text("%u", static_cast<u32>(at.get(r))) : "";
	return at.get(r) ? format_text("%d", at.get(r)) : "";
}

static void add_kept(std::string *out, const kept_lines &kept, const std::string &section)
{
	for (const kept_line &line : kept)
		if (line.section == section)
			*out += line.text + "\n";
}

template <typename record, std::size_t count>
static void add_fields(
	std::string *out, const record &r, const std::array<named_field<record>, count> &table)
{
	for (const auto &field : table) {
		const std::string value = value_text(r, field.at);
		if (!value.empty())
			*out += std::string(field.name) + " = " + value + "\n";
	}
}

static void add_keygroup(std::string *out, const _keygroup &keygroup, const std::string &section,
	const kept_lines &kept)
{
	*out += "\n[" + section + "]\n";
	add_fields(out, keygroup, keygroup_fields);
	add_kept(out, kept, section);
	for (int z = 0; z < std::clamp(keygroup.keyzones, 0, max_keyzones); z++) {
		const std::string zone = format_text("zone %d", z + 1);
		*out += "\n[" + zone + "]\n";
		add_fields(out, keygroup.keyzone[z], keyzone_fields);
		add_kept(out, kept, section + " " + zone);
	}
}

std::string program_text(const _program &program, const kept_lines &kept)
{
	const _sampler_type *model = get_sampler(program.sampler_type);
	std::string out = std::string("model = ") +
			  (model ? model->sampler_brand : sampler_type[0].sampler_brand) + "\n";
	add_kept(&out, kept, "");
	out += "\n[program]\n";
	add_fields(&out, program, program_fields);
	add_kept(&out, kept, "program");
	for (int k = 0; k < std::clamp(program.keygroups, 0, max_keygroups); k++)
		add_keygroup(&out, program.keygroup[k], format_text("keygroup %d", k + 1), kept);
	return out;
}

// ---- Reading --------------------------------------------------------------------------------

static std::string_view trimmed(std::string_view text)
{
	const auto begin = text.find_first_not_of(" \t\r");
	const auto end = text.find_last_not_of(" \t\r");
	return begin == text.npos ? std::string_view{} : text.substr(begin, end - begin + 1);
}

// Where the reader stands, and what it refused.
struct program_reader {
	std::unique_ptr<_program> program;
	kept_lines *kept;
	bool has_model = false;
	int keygroup = -1, zone = -1;
	std::string section = {};
	std::string reason = {}; // of a refusal

	bool refuse(const std::string &why)
	{
		reason = why;
		return false;
	}
};

static bool open_program(program_reader *r)
{
	if (!r->section.empty())
		return r->refuse(tr("The section [program] comes a second time."));
	r->section = "program";
	return true;
}

static bool open_keygroup(program_reader *r, int number)
{
	if (r->section.empty())
		return r->refuse(tr("A keygroup stands in front of the section [program]."));
	if (number > max_keygroups)
		return r->refuse(
			format_text(tr("A program has at most %d keygroups."), max_keygroups));
	if (number != r->program->keygroups + 1)
		return r->refuse(format_text(tr("The next keygroup is number %d, and this is %d."),
			r->program->keygroups + 1, number));
	r->program->keygroups = number;
	r->keygroup = number - 1;
	r->zone = -1;
	r->section = format_text("keygroup %d", number);
	return true;
}

static bool open_zone(program_reader *r, int number)
{
	if (r->keygroup < 0)
		return r->refuse(tr("A zone stands in front of the first keygroup."));
	_keygroup &keygroup = r->program->keygroup[r->keygroup];
	if (number > max_keyzones)
		return r->refuse(format_text(tr("A keygroup has at most %d zones."), max_keyzones));
	if (number != keygroup.keyzones + 1)
		return r->refuse(format_text(tr("The next zone is number %d, and this is %d."),
			keygroup.keyzones + 1, number));
	keygroup.keyzones = number;
	r->zone = number - 1;
	r->section = format_text("keygroup %d zone %d", r->keygroup + 1, number);
	return true;
}

// A whole number of the text, and nothing else.
static bool whole_number(std::string_view text, long long *value)
{
	const auto result = std::from_chars(text.data(), text.data() + text.size(), *value);
	return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

static bool open_section(program_reader *r, std::string_view line)
{
	const std::string_view inside = line.substr(1, line.size() - 2);
	long long number = 0;
	if (line.back() == ']' && inside == "program")
		return open_program(r);
	const std::size_t blank = inside.find(' ');
	if (line.back() == ']' && blank != inside.npos &&
		whole_number(inside.substr(blank + 1), &number)) {
		const int n = static_cast<int>(std::clamp(number, -1LL, 100000LL));
		if (inside.substr(0, blank) == "keygroup")
			return open_keygroup(r, n);
		if (inside.substr(0, blank) == "zone")
			return open_zone(r, n);
	}
	return r->refuse(
		format_text(tr("%s is no section of a program."), std::string(line).c_str()));
}

static int hex_digit(char c)
{
	return c >= '0' && c <= '9'   ? c - '0'
	       : c >= 'A' && c <= 'F' ? c - 'A' + 10
	       : c >= 'a' && c <= 'f' ? c - 'a' + 10
				      : -1;
}

bool unquoted(std::string_view text, std::string *out)
{
	if (text.size() < 2 || text.front() != '"' || text.back() != '"')
		return false;
	text = text.substr(1, text.size() - 2);
	for (std::size_t i = 0; i < text.size(); i++) {
		if (text[i] == '"')
			return false;
		if (text[i] != '\\') {
			*out += text[i];
			continue;
		}
		const bool whole = i + 3 < text.size() && text[i + 1] == 'x';
		const int high = whole ? hex_digit(text[i + 2]) : -1;
		const int low = whole ? hex_digit(text[i + 3]) : -1;
		if (high < 0 || low < 0 || high + low == 0)
			return false;
		*out += static_cast<char>(high * 16 + low);
		i += 3;
	}
	return true;
}

struct number_range {
	long long low, high;
};

// What a field can hold.
template <typename record> static number_range range_of(const member<record> &at)
{
	if (std::holds_alternative<u8 record::*>(at.field))
		return { 0, 255 };
	if (std::holds_alternative<u32 record::*>(at.field))
		return { 0, 4294967295LL };
	return { -2147483648LL, 2147483647LL };
}

template <typename record>
static bool take_value(
	program_reader *r, record *to, const named_field<record> &field, std::string_view value)
{
	const std::string name = field.name;
	if (const auto *text = std::get_if<typename member<record>::text>(&field.at.field)) {
		std::string words;
		if (!unquoted(value, &words))
			return r->refuse(
				format_text(tr("%s is no text in quotation marks."), name.c_str()));
		if (words.size() >= name_size)
			return r->refuse(format_text(tr("%s is longer than %d characters."),
				name.c_str(), name_size - 1));
		copy_text(to->*(*text), words);
		return true;
	}
	long long number = 0;
	if (!whole_number(value, &number))
		return r->refuse(format_text(tr("%s is no whole number."), name.c_str()));
	const number_range range = range_of(field.at);
	if (number < range.low || number > range.high)
		return r->refuse(format_text(tr("%s is %lld, and goes from %lld to %lld."),
			name.c_str(), number, range.low, range.high));
	field.at.set(to, static_cast<i32>(static_cast<u32>(number)));
	return true;
}

template <typename record, std::size_t count>
static bool take_field(program_reader *r, record *to,
	const std::array<named_field<record>, count> &table, std::string_view name,
	std::string_view value, std::string_view line)
{
	for (const auto &field : table)
		if (name == field.name)
			return take_value(r, to, field, value);
	r->kept->push_back({ r->section, std::string(line) });
	return true;
}

static bool take_model(program_reader *r, std::string_view value)
{
	for (int i = 0; i < get_sampler_type_count(); i++)
		if (value == sampler_type[i].sampler_brand) {
			r->program->sampler_type = sampler_type[i].sampler_type;
			r->has_model = true;
			return true;
		}
	return r->refuse(format_text(tr("No model is called '%s'."), std::string(value).c_str()));
}

static bool take_parameter(program_reader *r, std::string_view line)
{
	const std::size_t sign = line.find('=');
	if (sign == line.npos)
		return r->refuse(tr("This is neither a section nor a parameter with its value."));
	const std::string_view name = trimmed(line.substr(0, sign)),
			       value = trimmed(line.substr(sign + 1));
	_program &p = *r->program;
	if (r->section.empty() && name == "model")
		return take_model(r, value);
	if (r->zone >= 0)
		return take_field(r, &p.keygroup[r->keygroup].keyzone[r->zone], keyzone_fields,
			name, value, line);
	if (r->keygroup >= 0)
		return take_field(r, &p.keygroup[r->keygroup], keygroup_fields, name, value, line);
	if (!r->section.empty())
		return take_field(r, &p, program_fields, name, value, line);
	r->kept->push_back({ "", std::string(line) });
	return true;
}

static bool take_line(program_reader *r, std::string_view line)
{
	if (line.empty())
		return true;
	if (line.front() == '#') {
		r->kept->push_back({ r->section, std::string(line) });
		return true;
	}
	return line.front() == '[' ? open_section(r, line) : take_parameter(r, line);
}

std::unique_ptr<_program> read_program_text(
	std::string_view text, kept_lines *kept, program_refusal *why)
{
	kept->clear();
	program_reader r = { .program = std::make_unique<_program>(), .kept = kept };
	*why = {};
	while (!text.empty()) {
		const std::size_t end = std::min(text.find('\n'), text.size());
		why->line++;
		if (!take_line(&r, trimmed(text.substr(0, end)))) {
			why->reason = r.reason;
			return nullptr;
		}
		text.remove_prefix(std::min(end + 1, text.size()));
	}
	if (!r.has_model)
		why->reason = tr("The model of the program is missing.");
	else if (r.section.empty())
		why->reason = tr("The section [program] is missing.");
	return why->reason.empty() ? std::move(r.program) : nullptr;
}

} // namespace velmor
