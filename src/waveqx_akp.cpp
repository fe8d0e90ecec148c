// waveqx_akp.cpp - program files of the S5000 and Z4 generation, read without a sampler
//
// A RIFF file of form APRG. A chunk is a name, a little-endian length and its data,
// and the next one stands behind it at once:
//
//   prg    number of the program, count of its keygroups
//   out, lfo (twice), tune, mods    the program
//   kgrp   one keygroup: kloc, env (three times), filt, zone (four times), a chain of
//          chunks of its own
//
// Names at the top are taken in any case, those inside kgrp exactly. The order of the
// chunks decides: a mods behind lfo overrides its sources.
//
// Observed: lengths differ between writers (tune 22 or 24, lfo 12 or 14, zone 46 or 48,
// kgrp 336 or 344), so a byte is read only where its chunk is long enough, and an unused
// zone may hold anything in its name field beside a name length of 0.
//
// Knows nothing of: how a program gets to a sampler.

#include "src/parameters.h"
#include "src/waveqx.h"
#include "src/waveqx_file.h"
#include <algorithm>
#include <cstring>
#include <new>

namespace velmor
{

std::vector<std::unique_ptr<_program>> local_pgm;
int local_pgms = 0;

// No program file comes near: 128 keygroups are 44 KB.
static constexpr u64 largest_akp = 16 * 1024 * 1024;
static constexpr int no_riff = 2034, no_aprg = 2042; // told in the box

u16 get16val(const u8 *input)
{
	return static_cast<u16>(input[0] | input[1] << 8);
}

namespace
{

// ---- The tables ------------------------------------------------------------------------

// Semitones and the byte behind them, cents, in one field.
constexpr conversion as_semitones_and_cents = {
	.name = "semitones, cents",
	.width = 2,
	.get =
		[](bounded_bytes bytes) {
			return as_signed_byte.get(bytes) * 100 + as_signed_byte.get(bytes.from(1));
		},
};

using program_row = parameter<_program>;
using keygroup_row = parameter<_keygroup>;
using keyzone_row = parameter<_keyzone>;

// All rows are only read: nothing writes these files.
// clang-format off
constexpr program_row prg_rows[] = {
	{ {  1 }, field_of<&_program::midi_pgm_number>,                     &as_byte },
	{ {  2 }, field_of<&_program::keygroups>,                           &as_byte },
};

constexpr program_row out_rows[] = {
	{ {  1 }, field_of<&_program::s1000_basic_loudness>,                &as_byte },
	{ {  2 }, field_of<&_program::s2000_out_mod1_level>,                &as_byte },
	{ {  3 }, field_of<&_program::s2000_out_mod2_level>,                &as_byte },
	{ {  4 }, field_of<&_program::s2000_pan_mod1_level>,                &as_byte },
	{ {  5 }, field_of<&_program::s2000_pan_mod2_level>,                &as_byte },
	{ {  6 }, field_of<&_program::s2000_pan_mod3_level>,                &as_byte },
	{ {  7 }, field_of<&_program::s1000_velocity_loudness>,             &as_signed_byte },
};

constexpr program_row lfo1_rows[] = {
	{ {  1 }, field_of<&_program::s2000_lfo1_waveform>,                 &as_byte },
	{ {  2 }, field_of<&_program::s1000_lfo1_speed>,                    &as_byte },
	{ {  3 }, field_of<&_program::s1000_lfo1_delay>,                    &as_byte },
	{ {  4 }, field_of<&_program::s1000_lfo1_depth>,                    &as_byte },
	{ {  5 }, field_of<&_program::s1000_lfo1_sync>,                     &as_byte },
	{ {  7 }, field_of<&_program::s1000_lfo1_modwheel>,                 &as_byte },
	{ {  8 }, field_of<&_program::s1000_lfo1_pressure>,                 &as_byte },
	{ {  9 }, field_of<&_program::s2000_lfo1_rate_source>,              &as_byte },
	{ { 10 }, field_of<&_program::s2000_lfo1_delay_source>,             &as_byte },
	{ { 11 }, field_of<&_program::s2000_lfo1_depth_source>,             &as_byte },
};

constexpr program_row lfo2_rows[] = {
	{ {  1 }, field_of<&_program::s2000_lfo2_waveform>,                 &as_byte },
	{ {  2 }, field_of<&_program::s1000_lfo2_speed>,                    &as_byte },
	{ {  3 }, field_of<&_program::s1000_lfo2_delay>,                    &as_byte },
	{ {  4 }, field_of<&_program::s1000_lfo2_depth>,                    &as_byte },
	{ {  5 }, field_of<&_program::s2000_lfo2_retrigger>,                &as_byte },
};

constexpr program_row tune_rows[] = {
	{ {  1 }, field_of<&_program::s1000_tunning_offset>,                &as_semitones_and_cents },
	{ {  3 }, field_of<&_program::c_detune>,                            &as_signed_byte },
	{ {  4 }, field_of<&_program::c_cross_detune>,                      &as_signed_byte },
	{ {  5 }, field_of<&_program::d_detune>,                            &as_signed_byte },
	{ {  6 }, field_of<&_program::eb_detune>,                           &as_signed_byte },
	{ {  7 }, field_of<&_program::e_detune>,                            &as_signed_byte },
	{ {  8 }, field_of<&_program::f_detune>,                            &as_signed_byte },
	{ {  9 }, field_of<&_program::f_cross_detune>,                      &as_signed_byte },
	{ { 10 }, field_of<&_program::g_detune>,                            &as_signed_byte },
	{ { 11 }, field_of<&_program::g_cross_detune>,                      &as_signed_byte },
	{ { 12 }, field_of<&_program::a_detune>,                            &as_signed_byte },
	{ { 13 }, field_of<&_program::bb_detune>,                           &as_signed_byte },
	{ { 14 }, field_of<&_program::b_detune>,                            &as_signed_byte },
	{ { 15 }, field_of<&_program::s1000_bendwheel_pitch_up>,            &as_byte },
	{ { 16 }, field_of<&_program::s2000_bendwheel_pitch_down>,          &as_byte },
	{ { 17 }, field_of<&_program::s2000_aftertouch_bend_mode>,          &as_byte },
	{ { 18 }, field_of<&_program::s1000_aftertouch_bend>,               &as_signed_byte },
};

constexpr program_row mods_rows[] = {
	{ {  5 }, field_of<&_program::s2000_out_mod1_source>,               &as_byte },
	{ {  7 }, field_of<&_program::s2000_out_mod2_source>,               &as_byte },
	{ {  9 }, field_of<&_program::s2000_pan_mod1_source>,               &as_byte },
	{ { 11 }, field_of<&_program::s2000_pan_mod2_source>,               &as_byte },
	{ { 13 }, field_of<&_program::s2000_pan_mod3_source>,               &as_byte },
	{ { 15 }, field_of<&_program::s2000_lfo1_rate_source>,              &as_byte },
	{ { 17 }, field_of<&_program::s2000_lfo1_delay_source>,             &as_byte },
	{ { 19 }, field_of<&_program::s2000_lfo1_depth_source>,             &as_byte },
	{ { 21 }, field_of<&_program::s5000_lfo2_rate_source>,              &as_byte },
	{ { 23 }, field_of<&_program::s5000_lfo2_delay_source>,             &as_byte },
	{ { 25 }, field_of<&_program::s5000_lfo2_depth_source>,             &as_byte },
	{ { 27 }, field_of<&_program::s5000_kg_pitch_mod1_source>,          &as_byte },
	{ { 29 }, field_of<&_program::s5000_kg_pitch_mod2_source>,          &as_byte },
	{ { 31 }, field_of<&_program::s5000_kg_amp_mod_source>,             &as_byte },
	{ { 33 }, field_of<&_program::s2000_flt_mod1_source>,               &as_byte },
	{ { 35 }, field_of<&_program::s2000_flt_mod2_source>,               &as_byte },
	{ { 37 }, field_of<&_program::s2000_flt_mod3_source>,               &as_byte },
};

constexpr keygroup_row kloc_rows[] = {
	{ {  4 }, field_of<&_keygroup::low_note>,                           &as_byte },
	{ {  5 }, field_of<&_keygroup::high_note>,                          &as_byte },
	{ {  6 }, field_of<&_keygroup::s1000_tune_offset>,                  &as_semitones_and_cents },
	{ {  6 }, field_of<&_keygroup::s5000_semitone_tune>,                &as_signed_byte },
	{ {  7 }, field_of<&_keygroup::s5000_fine_tune>,                    &as_signed_byte },
	{ {  8 }, field_of<&_keygroup::fx_override>,                        &as_byte },
	{ {  9 }, field_of<&_keygroup::fx_sendlevel>,                       &as_byte },
	{ { 10 }, field_of<&_keygroup::s5000_pitch_mod1_val>,               &as_signed_byte },
	{ { 11 }, field_of<&_keygroup::s5000_pitch_mod2_val>,               &as_signed_byte },
	{ { 12 }, field_of<&_keygroup::s5000_amp_mod1_val>,                 &as_signed_byte },
	{ { 13 }, field_of<&_keygroup::crossfade>,                          &as_byte },
	{ { 14 }, field_of<&_keygroup::mute_group>,                         &as_byte },
};

// Byte 7 is the sustain: it stands behind the release.
constexpr keygroup_row amp_env_rows[] = {
	{ {  1 }, field_of<&_keygroup::amp_attack>,                         &as_byte },
	{ {  3 }, field_of<&_keygroup::amp_decay>,                          &as_byte },
	{ {  4 }, field_of<&_keygroup::amp_release>,                        &as_byte },
	{ {  7 }, field_of<&_keygroup::amp_sustain>,                        &as_byte },
};

constexpr keygroup_row filter_env_rows[] = {
	{ {  1 }, field_of<&_keygroup::filter_attack>,                      &as_byte },
	{ {  3 }, field_of<&_keygroup::filter_decay>,                       &as_byte },
	{ {  4 }, field_of<&_keygroup::filter_release>,                     &as_byte },
	{ {  7 }, field_of<&_keygroup::filter_sustain>,                     &as_byte },
};

// Most bytes go to two fields, one of each family.
constexpr keygroup_row aux_env_rows[] = {
	{ {  1 }, field_of<&_keygroup::aux_rate1>,                          &as_byte },
	{ {  1 }, field_of<&_keygroup::s1000_env2_r1>,                      &as_byte },
	{ {  2 }, field_of<&_keygroup::aux_rate2>,                          &as_byte },
	{ {  2 }, field_of<&_keygroup::s2000_env2_r2>,                      &as_byte },
	{ {  3 }, field_of<&_keygroup::aux_rate3>,                          &as_byte },
	{ {  3 }, field_of<&_keygroup::s1000_env2_r3>,                      &as_byte },
	{ {  4 }, field_of<&_keygroup::aux_rate4>,                          &as_byte },
	{ {  4 }, field_of<&_keygroup::s1000_env2_r4>,                      &as_byte },
	{ {  5 }, field_of<&_keygroup::aux_rate1_level>,                    &as_byte },
	{ {  5 }, field_of<&_keygroup::s2000_env2_l1>,                      &as_byte },
	{ {  6 }, field_of<&_keygroup::aux_rate2_level>,                    &as_byte },
	{ {  6 }, field_of<&_keygroup::s2000_env2_l2>,                      &as_byte },
	{ {  7 }, field_of<&_keygroup::aux_rate3_level>,                    &as_byte },
	{ {  7 }, field_of<&_keygroup::s1000_env2_l3>,                      &as_byte },
	{ {  8 }, field_of<&_keygroup::aux_rate4_level>,                    &as_byte },
	{ {  8 }, field_of<&_keygroup::s2000_env2_l4>,                      &as_byte },
	{ { 10 }, field_of<&_keygroup::s1000_env2_velocity_r1>,             &as_byte },
	{ { 12 }, field_of<&_keygroup::s1000_env2_key_r2_r4>,               &as_byte },
	{ { 14 }, field_of<&_keygroup::s1000_env2_velocity_r4>,             &as_byte },
	{ { 15 }, field_of<&_keygroup::s1000_env2_off_velocity_r4>,         &as_byte },
	{ { 16 }, field_of<&_keygroup::s1000_env2_velocity_envelope>,       &as_byte },
};

constexpr keygroup_row filt_rows[] = {
	{ {  1 }, field_of<&_keygroup::s5000_filter_mode>,                  &as_byte },
	{ {  2 }, field_of<&_keygroup::s5000_filter_cutoff>,                &as_byte },
	{ {  2 }, field_of<&_keygroup::s1000_basic_filter_frequency>,       &as_byte },
	{ {  3 }, field_of<&_keygroup::s5000_filter_resonance>,             &as_byte },
	{ {  3 }, field_of<&_keygroup::s2000_filter_resonance>,             &as_signed_byte },
	{ {  4 }, field_of<&_keygroup::s5000_filter_keyboard_track>,        &as_signed_byte },
	{ {  4 }, field_of<&_keygroup::s1000_filter_keyboard>,              &as_signed_byte },
	{ {  5 }, field_of<&_keygroup::s5000_filter_mod1_input>,            &as_signed_byte },
	{ {  5 }, field_of<&_keygroup::s2000_flt_mod1_level>,               &as_signed_byte },
	{ {  6 }, field_of<&_keygroup::s5000_filter_mod2_input>,            &as_signed_byte },
	{ {  6 }, field_of<&_keygroup::s2000_flt_mod2_level>,               &as_signed_byte },
	{ {  7 }, field_of<&_keygroup::s5000_filter_mod3_input>,            &as_signed_byte },
	{ {  7 }, field_of<&_keygroup::s2000_flt_mod3_level>,               &as_signed_byte },
	{ {  8 }, field_of<&_keygroup::s5000_filter_attenuation>,           &as_byte },
};

constexpr keyzone_row zone_rows[] = {
	{ { 34 }, field_of<&_keyzone::low_velocity>,                        &as_byte },
	{ { 35 }, field_of<&_keyzone::high_velocity>,                       &as_byte },
	{ { 38 }, field_of<&_keyzone::filter>,                              &as_signed_byte },
	{ { 38 }, field_of<&_keyzone::zone_filter>,                         &as_signed_byte },
	{ { 42 }, field_of<&_keyzone::level>,                               &as_signed_byte },
	{ { 42 }, field_of<&_keyzone::zone_level>,                          &as_signed_byte },
	{ { 43 }, field_of<&_keyzone::zone_keyboard_track>,                 &as_byte },
};
// clang-format on

// The shortest chunk seen of each kind holds all its rows.
static_assert(table_is_sound<_program>(prg_rows, 6));
static_assert(table_is_sound<_program>(out_rows, 8));
static_assert(table_is_sound<_program>(lfo1_rows, 12) && table_is_sound<_program>(lfo2_rows, 12));
static_assert(table_is_sound<_program>(tune_rows, 22) && table_is_sound<_program>(mods_rows, 38));
static_assert(table_is_sound<_keygroup>(kloc_rows, 16));
static_assert(table_is_sound<_keygroup>(amp_env_rows, 18));
static_assert(table_is_sound<_keygroup>(filter_env_rows, 18));
static_assert(table_is_sound<_keygroup>(aux_env_rows, 18));
static_assert(table_is_sound<_keygroup>(filt_rows, 10));
static_assert(table_is_sound<_keyzone>(zone_rows, 46));
constexpr std::size_t zone_name_length = 1, zone_name = 2;

// ---- Chunks ----------------------------------------------------------------------------

// A byte that the chunk does not have leaves its field alone.
template <class record, std::size_t count>
void read_rows(const parameter<record> (&rows)[count], bounded_bytes data, record *to)
{
	block_to_record(rows, data, *to, 0, past_the_end::stays);
}

struct akp_chunk {
	std::string name;   // four bytes
	u32 size;           // as it claims
	bounded_bytes data; // as far as it goes
};

// Take the chunk at *at and go on to the next; false at the end.
bool next_chunk(bounded_bytes file, std::size_t *at, akp_chunk *chunk)
{
	if (*at >= file.size())
		return false;
	const bounded_bytes head = file.from(*at);
	chunk->name.clear();
	for (std::size_t i = 0; i < 4; i++)
		chunk->name += static_cast<char>(head[i]);
	chunk->size =
		u32{ head[4] } | u32{ head[5] } << 8 | u32{ head[6] } << 16 | u32{ head[7] } << 24;
	const bounded_bytes rest = head.from(8);
	chunk->data = { rest.bytes.first(std::min<std::size_t>(chunk->size, rest.size())) };
	*at += 8 + std::size_t{ chunk->size };
	return true;
}

// What was met on the way through a file or a keygroup.
struct akp_state {
	_program *program;
	int lfos, keygroups;
	bool prg;
};

void read_zone(bounded_bytes data, _keygroup *to)
{
	if (to->keyzones >= max_keyzones)
		return;
	_keyzone &zone = to->keyzone[to->keyzones++];
	// All the characters that it tells, whatever they are; the record ends them with a zero.
	const std::size_t length =
		std::min<std::size_t>(data[zone_name_length], sizeof zone.samplename - 1);
	for (std::size_t i = 0; i < length; i++)
		zone.samplename[i] = static_cast<char>(data[zone_name + i]);
	read_rows(zone_rows, data, &zone);
}

void read_envelope(bounded_bytes data, int which, _keygroup *to)
{
	if (which == 0)
		read_rows(amp_env_rows, data, to);
	else if (which == 1)
		read_rows(filter_env_rows, data, to);
	else if (which == 2)
		read_rows(aux_env_rows, data, to);
}

void read_keygroup(bounded_bytes data, _keygroup *to)
{
	int envelopes = 0;
	akp_chunk chunk;
	for (std::size_t at = 0; next_chunk(data, &at, &chunk);) {
		log_line("[D] KEYGROUP-HDR-NAME: [%.4s], Size: %u\r\n", chunk.name.c_str(),
			chunk.size);
		if (chunk.name == "kloc") {
			read_rows(kloc_rows, chunk.data, to);
		} else if (chunk.name == "env ") {
			read_envelope(chunk.data, envelopes++, to);
		} else if (chunk.name == "filt") {
			read_rows(filt_rows, chunk.data, to);
		} else if (chunk.name == "zone") {
			read_zone(chunk.data, to);
		}
	}
}

void read_prg(akp_state &state, bounded_bytes data)
{
	read_rows(prg_rows, data, state.program);
	state.program->keygroups = std::min(state.program->keygroups, max_keygroups);
	state.prg = true;
}

void read_lfo(akp_state &state, bounded_bytes data)
{
	if (state.lfos == 0)
		read_rows(lfo1_rows, data, state.program);
	else if (state.lfos == 1)
		read_rows(lfo2_rows, data, state.program);
	state.lfos++;
}

void read_kgrp(akp_state &state, bounded_bytes data)
{
	if (state.keygroups < max_keygroups)
		read_keygroup(data, &state.program->keygroup[state.keygroups++]);
}

struct chunk_reader {
	const char *name;
	void (*read)(akp_state &, bounded_bytes);
};

constexpr chunk_reader readers[] = {
	{ "prg ", read_prg },
	{ "out ", [](akp_state &s, bounded_bytes d) { read_rows(out_rows, d, s.program); } },
	{ "lfo ", read_lfo },
	{ "tune", [](akp_state &s, bounded_bytes d) { read_rows(tune_rows, d, s.program); } },
	{ "mods", [](akp_state &s, bounded_bytes d) { read_rows(mods_rows, d, s.program); } },
	{ "kgrp", read_kgrp },
};

void read_chunks(akp_state &state, bounded_bytes file)
{
	akp_chunk chunk;
	for (std::size_t at = 12; next_chunk(file, &at, &chunk);) {
		log_line("[D] HDR-NAME: [%.4s], Size: %u\r\n", chunk.name.c_str(), chunk.size);
		for (const chunk_reader &reader : readers)
			if (equal_but_for_case(chunk.name, reader.name))
				reader.read(state, chunk.data);
	}
}

// ---- What a file tells ---------------------------------------------------------------------

struct told_field {
	int table, offset;
	std::string_view name;
};

template <class... tables> std::vector<told_field> fields_of_tables(const tables &...all)
{
	std::vector<told_field> fields;
	int table = 0;
	const auto add = [&](const auto &rows) {
		for (const auto &row : rows)
			fields.push_back({ table, row.at.offset, row.field.name });
		table++;
	};
	(add(all), ...);
	return fields;
}

const std::vector<told_field> &told_fields()
{
	static const std::vector<told_field> fields = fields_of_tables(prg_rows, out_rows,
		lfo1_rows, lfo2_rows, tune_rows, mods_rows, kloc_rows, amp_env_rows,
		filter_env_rows, aux_env_rows, filt_rows, zone_rows);
	return fields;
}

// ---- The file ----------------------------------------------------------------------------

void log_summary(const char *filename, std::size_t size, const akp_state &state)
{
	const _program &p = *state.program;
	log_line("[D] Importing [%s] (%zu Bytes) HAS PRG: %d, HAS KEYGROUP: %d PG-NAME: [%s]\r\n",
		filename, size, state.prg, state.keygroups > 0, p.name);
	log_line("[D] --------> KEYGROUPS: %d, PGM_NUMBER: %d\r\n", p.keygroups, p.midi_pgm_number);
	log_line("[D] --------> BASIC_LOUDNESS: %d, VELOCITY_LOUDNESS: %d, HAS_LFO: %d\r\n",
		p.s1000_basic_loudness, p.s1000_velocity_loudness, state.lfos);
	for (int k = 0; k < p.keygroups; k++) {
		const _keygroup &kg = p.keygroup[k];
		log_line("[D] --------> KG_%d LOW: %d, HIGH: %d\r\n", k, kg.low_note, kg.high_note);
		for (int z = 0; z < kg.keyzones; z++)
			log_line(
				"[D] --------> KEYZONE[%d] Sample: [%s] VEL-LOW: %d, VEL-HIGH: %d, "
				"KB-TRACK: %d, LEVEL: %d\r\n",
				z, kg.keyzone[z].samplename, kg.keyzone[z].low_velocity,
				kg.keyzone[z].high_velocity, kg.keyzone[z].zone_keyboard_track,
				kg.keyzone[z].level);
	}
}

// Behind the last separator of either kind, cut at the last point.
std::string program_name(const std::string &path)
{
	const std::string name = path.substr(path.find_last_of("\\/") + 1);
	return name.substr(0, name.rfind('.'));
}

bool refuse(const char *words, const char *filename)
{
	show_box("ERROR", "%s [%s]", words, filename);
	return false;
}

bool read_whole(const char *filename, owned_bytes *bytes, std::size_t *size)
{
	input_file file;
	if (file.measure(filename))
		return refuse("Cannot stat", filename);
	if (file.open(filename))
		return refuse("Cannot open", filename);
	if (file.size > largest_akp)
		return refuse("Cannot read", filename);
	*bytes = allocate_bytes(file.size);
	if (!*bytes) {
		show_box("FATAL", "Out of memory!");
		end_program(0);
		return false;
	}
	*size = static_cast<std::size_t>(file.size);
	return !file.read(0, bytes->get(), *size) || refuse("Cannot read", filename);
}

} // namespace

bool akp_tells(std::string_view field)
{
	return field == "name" || field == "samplename" ||
	       std::ranges::any_of(
		       told_fields(), [&](const told_field &told) { return told.name == field; });
}

bool akp_has_in_one_byte(std::string_view field, std::string_view other)
{
	for (const told_field &one : told_fields()) {
		if (one.name != field)
			continue;
		for (const told_field &two : told_fields())
			if (two.name == other && two.table == one.table && two.offset == one.offset)
				return true;
	}
	return false;
}

bool import_akp_file(const char *filename, _program *program)
{
	const std::string name = program_name(filename);
	show_progressbar(0, 100, format_text("Importing AKP [%s]...", name.c_str()).c_str());
	owned_bytes bytes;
	std::size_t size = 0;
	if (!read_whole(filename, &bytes, &size))
		return false;
	set_progressbar(10);
	const bounded_bytes file = { { bytes.get(), size } };
	auto is = [&](std::size_t at, const char *magic) {
		return at + 4 <= size && std::memcmp(bytes.get() + at, magic, 4) == 0;
	};
	const int code = !is(0, "RIFF") ? no_riff : !is(8, "APRG") ? no_aprg : 0;
	if (code) {
		show_box("ERROR", "Cannot analyze [%s] (Code: %d)", filename, code);
		hide_progressbar(0);
		return false;
	}
	std::memset(static_cast<void *>(program), 0, sizeof *program);
	copy_text(program->name, name);
	program->sampler_type =
		current_sampler ? static_cast<i32>(current_sampler->sampler_type) : model_generic;
	akp_state state = { .program = program, .lfos = 0, .keygroups = 0, .prg = false };
	set_progressbar(50);
	read_chunks(state, file);
	set_progressbar(70);
	log_summary(filename, size, state);
	hide_progressbar(0);
	return true;
}

// A name that is there is asked about once for each program of that name; the new one is
// filed behind them all the same.
bool add_local_pgm(const _program *program)
{
	for (const auto &known : local_pgm)
		if (std::strcmp(known->name, program->name) == 0 &&
			!ask_box("INFO", "Program [%s] already exists! Overwrite?", program->name))
			return false;
	std::unique_ptr<_program> copy(new (std::nothrow) _program(*program));
	if (!copy) {
		show_box("ERROR", "Out of memory");
		return false;
	}
	local_pgm.push_back(std::move(copy));
	local_pgms = static_cast<int>(local_pgm.size());
	return true;
}

// ---- Required samples ----------------------------------------------------------------------

static std::vector<std::string> required_samples(const _program *program)
{
	std::vector<std::string> names;
	const int keygroups = std::clamp(program->keygroups, 0, max_keygroups);
	for (int k = 0; k < keygroups; k++) {
		const _keygroup &kg = program->keygroup[k];
		for (int z = 0; z < std::clamp(kg.keyzones, 0, max_keyzones); z++) {
			const std::string name = kg.keyzone[z].samplename;
			if (!name.empty() &&
				std::find(names.begin(), names.end(), name) == names.end())
				names.push_back(name);
		}
	}
	return names;
}

// Disks of these samplers do not tell cases apart, and programs name their samples so.
static std::string sample_file(const std::string &folder, const std::string &name)
{
	const std::string base = folder + "\\" + file_name_of(name), path = wave_path_of(base);
	file_info info;
	std::vector<std::string> names;
	if (host.files->stat(path.c_str(), &info) == 0 ||
		host.files->list(folder.c_str(), &names) != 0)
		return path;
	for (const std::string &candidate : names)
		if (equal_but_for_case(folder + "\\" + candidate, path))
			return folder + "\\" + candidate;
	return path;
}

// A file of other cases comes under the name that the program calls it by: that is the one that
// is looked for, and that the sampler is to know. A sample of the file's own name stays.
static void import_as(const std::string &path, const std::string &name)
{
	const std::string spool = current_config_path + "\\sample\\";
	const std::string file = path.substr(path.rfind('\\') + 1);
	const std::string base = spool + file.substr(0, file.rfind('.'));
	file_info info;
	const bool there = host.files->stat(wave_path_of(base).c_str(), &info) == 0;
	if (!import_sound(path.c_str(), 0, 0, 0, 0, 0, 0)) {
		log_line("[W] [%s] was not imported: %s\r\n", path.c_str(), import_failure.c_str());
		return;
	}
	const std::string own = wave_path_of(base);
	const std::string wanted = spool + file_name_of(name) + own.substr(base.size());
	if (own == wanted || own == path)
		return;
	if (const int code = host.files->rename(own.c_str(), wanted.c_str()))
		show_box("ERROR", "%s", write_failure(wanted, code).c_str());
	else if (there)
		import_sound(path.c_str(), 0, 0, 0, 0, 0, 0);
}

static void import_required_sample(const std::string &folder, const std::string &name, int number)
{
	const std::string path = sample_file(folder, name);
	file_info info = {};
	const bool loadable = host.files->stat(path.c_str(), &info) == 0 && info.regular;
	log_line("[D] REQUIRED SAMPLE[%d]: [%s] --> FILE: [%s], Loadable: %d (%llu Bytes)\r\n",
		number, name.c_str(), path.c_str(), loadable,
		static_cast<unsigned long long>(info.size));
	if (!loadable) {
		show_box("INFO", "Sample [%s] File: %s (not found!)", name.c_str(), path.c_str());
		return;
	}
	log_line("Importing Sample [%s]\r\n", path.c_str());
	import_as(path, name);
}

void import_required_samples(int window, const char *filename, const _program *program)
{
	const std::string path = filename;
	const std::size_t end = path.rfind('\\');
	const std::string folder = end == path.npos ? "." : path.substr(0, end);
	const std::vector<std::string> names = required_samples(program);
	const int count = static_cast<int>(names.size());
	if (count == 0 || !ask_box("INFO", "Also import %d Samples?", count))
		return;
	show_progressbar(window, count, format_text("Importing %d samples...", count).c_str());
	for (int i = 0; i < count && !progress_stopped(); i++) {
		import_required_sample(folder, names[static_cast<std::size_t>(i)], i);
		set_progressbar(i + 1);
	}
	hide_progressbar(window);
}

} // namespace velmor
