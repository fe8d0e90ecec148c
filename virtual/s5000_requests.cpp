// s5000_requests.cpp - what a virtual S5000 does when it is asked
//
// Programs, samples and keygroups are worked on through the one that is current; a
// request that names another one makes it current, and leaves things as they are when
// there is none. Programs and samples count from 0 here, keygroups and zones from 1.

#include "virtual/s5000_requests.h"
#include <algorithm>

namespace velmor
{

using bytes_in = std::span<const std::uint8_t>;
using args = const request_arguments &;

template <class list> static request_outcome reply_names(const list &all)
{
	usb_bytes data;
	for (const auto &one : all)
		add_text(&data, one.name);
	return reply(std::move(data));
}

static s5000_program *program_now(s5000 &m)
{
	return entry(m.programs, m.current_program);
}

static s5000_keygroup *keygroup_now(s5000 &m)
{
	s5000_program *p = program_now(m);
	return p ? entry(p->keygroups, m.current_keygroup) : nullptr;
}

// The zone that a request names in its first argument.
static s5000_zone *zone_of(s5000 &m, args a)
{
	s5000_keygroup *k = keygroup_now(m);
	return k && a.bytes[0] >= 1 && a.bytes[0] <= s5000_zones ? &k->zones[a.bytes[0] - 1u]
								 : nullptr;
}

// ---- Programs and multis -----------------------------------------------------------------

static request_outcome create_program(s5000 &m, args a)
{
	if (a.text.empty() || find_name(m.programs, a.text) >= 0)
		return refuse(refused_value);
	m.programs.push_back({ a.text, std::vector<s5000_keygroup>(1) });
	m.current_program = static_cast<int>(m.programs.size()) - 1;
	m.current_keygroup = 0;
	return done();
}

static request_outcome select_program(s5000 &m, args a)
{
	const int found = find_name(m.programs, a.text);
	if (found < 0)
		return refuse(refused_missing);
	m.current_program = found;
	m.current_keygroup = 0;
	return done();
}

static request_outcome delete_program(s5000 &m, args)
{
	if (!program_now(m))
		return refuse(refused_missing);
	erase_entry(&m.programs, &m.current_program);
	m.current_keygroup = 0;
	return done();
}

static request_outcome rename_program(s5000 &m, args a)
{
	if (!program_now(m))
		return refuse(refused_missing);
	program_now(m)->name = a.text;
	return done();
}

static request_outcome add_keygroups(s5000 &m, args a)
{
	s5000_program *p = program_now(m);
	if (!p)
		return refuse(refused_missing);
	if (a.bytes[0] < 1 || p->keygroups.size() + a.bytes[0] > s5000_most_keygroups)
		return refuse(refused_full);
	p->keygroups.resize(p->keygroups.size() + a.bytes[0]);
	return done();
}

static request_outcome count_keygroups(s5000 &m, args)
{
	return program_now(m)
		       ? reply_high_first(
				 static_cast<std::uint32_t>(program_now(m)->keygroups.size()), 1)
		       : refuse(refused_missing);
}

// ---- Keygroups ---------------------------------------------------------------------------

static request_outcome select_keygroup(s5000 &m, args a)
{
	s5000_program *p = program_now(m);
	if (!p || a.bytes[0] < 1 || a.bytes[0] > p->keygroups.size())
		return refuse(refused_missing);
	m.current_keygroup = a.bytes[0] - 1;
	return done();
}

template <std::uint8_t item> static request_outcome write_note(s5000 &m, args a)
{
	if (!keygroup_now(m))
		return refuse(refused_missing);
	keygroup_now(m)->at(item) = { a.bytes[0] };
	return done();
}

template <int stage> static request_outcome write_amp(s5000 &m, args a)
{
	if (!keygroup_now(m))
		return refuse(refused_missing);
	keygroup_now(m)->amp[stage] = a.bytes[0];
	return done();
}

template <int stage> static request_outcome read_amp(s5000 &m, args)
{
	return keygroup_now(m) ? reply({ keygroup_now(m)->amp[stage] }) : refuse(refused_missing);
}

using four_bytes = std::array<std::uint8_t, 4>;

template <four_bytes s5000_keygroup::*field> static request_outcome write_aux(s5000 &m, args a)
{
	s5000_keygroup *k = keygroup_now(m);
	if (!k || a.bytes[0] < 1 || a.bytes[0] > 4)
		return refuse(refused_missing);
	(k->*field)[a.bytes[0] - 1u] = a.bytes[1];
	return done();
}

template <four_bytes s5000_keygroup::*field> static request_outcome read_aux(s5000 &m, args a)
{
	s5000_keygroup *k = keygroup_now(m);
	if (!k || a.bytes[0] < 1 || a.bytes[0] > 4)
		return refuse(refused_missing);
	return reply({ (k->*field)[a.bytes[0] - 1u] });
}

// ---- Zones -------------------------------------------------------------------------------

static request_outcome write_zone_sample(s5000 &m, args a)
{
	s5000_zone *z = zone_of(m, a);
	if (!z)
		return refuse(refused_missing);
	z->sample = a.text;
	return done();
}

static request_outcome read_zone_sample(s5000 &m, args a)
{
	const s5000_zone *z = zone_of(m, a);
	return z ? reply_text(z->sample) : refuse(refused_missing);
}

// A value of two bytes or three begins with its sign.
template <std::uint8_t item, int width> static request_outcome write_zone(s5000 &m, args a)
{
	s5000_zone *z = zone_of(m, a);
	if (!z)
		return refuse(refused_missing);
	if (width > 1 && a.bytes[1] > 1)
		return refuse(refused_value);
	std::copy_n(a.bytes.begin() + 1, width, z->value[item].begin());
	return done();
}

template <std::uint8_t item, int width> static request_outcome read_zone(s5000 &m, args a)
{
	const s5000_zone *z = zone_of(m, a);
	if (!z)
		return refuse(refused_missing);
	return reply({ z->value[item].begin(), z->value[item].begin() + width });
}

// ---- Samples -----------------------------------------------------------------------------

struct s5000_requests {
	static request_outcome select_by_name(s5000 &m, args a)
	{
		const int found = find_name(m.samples, a.text);
		if (found < 0)
			return refuse(refused_missing);
		m.current_sample = found;
		return done();
	}

	static request_outcome select_by_index(s5000 &m, args a)
	{
		const int index = a.bytes[0] * 128 + a.bytes[1];
		if (static_cast<std::size_t>(index) >= m.samples.size())
			return refuse(refused_missing);
		m.current_sample = index;
		return done();
	}

	static request_outcome erase(s5000 &m, args)
	{
		if (!m.sample_now())
			return refuse(refused_missing);
		erase_entry(&m.samples, &m.current_sample);
		return done();
	}

	static request_outcome rename(s5000 &m, args a)
	{
		if (!m.sample_now())
			return refuse(refused_missing);
		m.samples[static_cast<std::size_t>(m.current_sample)].name = a.text;
		return done();
	}

	static request_outcome handle(s5000 &m, args)
	{
		return m.sample_now() ? reply_high_first(m.sample_now()->handle, 2)
				      : refuse(refused_missing);
	}

	template <auto field, int groups> static request_outcome fact(s5000 &m, args)
	{
		if (!m.sample_now())
			return refuse(refused_missing);
		return reply_high_first(m.facts_now().*field, groups);
	}

	static request_outcome confirmations(s5000 &m, args a)
	{
		m.confirms = a.bytes[0] != 0;
		return done();
	}
};

using samples = s5000_requests;

// clang-format off
static const s5000_request rows[] = {
	// section item form             bytes
	{ 0x00, 0x01, request_form::bytes,      1, samples::confirmations },
	{ 0x00, 0x03, request_form::bytes,      1, [](s5000 &, args) { return done(); } }, // synchronise
	{ 0x00, 0x04, request_form::bytes,      1, [](s5000 &m, args a) { m.sums_checked = a.bytes[0] != 0; return done(); } },
	{ 0x02, 0x00, request_form::bytes,      0, [](s5000 &m, args) { return reply({ m.version_major, m.version_minor }); } },
	{ 0x02, 0x02, request_form::text,       0, [](s5000 &m, args a) { m.name = a.text; return done(); } },
	{ 0x02, 0x03, request_form::bytes,      0, [](s5000 &m, args) { return reply_text(m.name); } },
	{ 0x02, 0x04, request_form::bytes,      0, [](s5000 &m, args) { return reply_high_first(m.is_s6000, 1); } },

	{ 0x06, 0x01, request_form::byte_text,  0, write_zone_sample },
	{ 0x06, 0x02, request_form::bytes,      3, write_zone<0x02, 2> }, // level
	{ 0x06, 0x03, request_form::bytes,      2, write_zone<0x03, 1> }, // panning
	{ 0x06, 0x04, request_form::bytes,      2, write_zone<0x04, 1> }, // output
	{ 0x06, 0x05, request_form::bytes,      3, write_zone<0x05, 2> }, // filter
	{ 0x06, 0x06, request_form::bytes,      3, write_zone<0x06, 2> }, // fine
	{ 0x06, 0x07, request_form::bytes,      3, write_zone<0x07, 2> }, // semitones
	{ 0x06, 0x08, request_form::bytes,      2, write_zone<0x08, 1> }, // keyboard track
	{ 0x06, 0x09, request_form::bytes,      2, write_zone<0x09, 1> }, // playback
	{ 0x06, 0x0A, request_form::bytes,      4, write_zone<0x0A, 3> }, // velocity to start
	{ 0x06, 0x0B, request_form::bytes,      2, write_zone<0x0B, 1> }, // high velocity
	{ 0x06, 0x0C, request_form::bytes,      2, write_zone<0x0C, 1> }, // low velocity
	{ 0x06, 0x0D, request_form::bytes,      2, write_zone<0x0D, 1> }, // mute
	{ 0x06, 0x0E, request_form::bytes,      2, write_zone<0x0E, 1> }, // solo
	{ 0x06, 0x21, request_form::bytes,      1, read_zone_sample },
	{ 0x06, 0x22, request_form::bytes,      1, read_zone<0x02, 2> },
	{ 0x06, 0x23, request_form::bytes,      1, read_zone<0x03, 1> },
	{ 0x06, 0x24, request_form::bytes,      1, read_zone<0x04, 1> },
	{ 0x06, 0x25, request_form::bytes,      1, read_zone<0x05, 2> },
	{ 0x06, 0x26, request_form::bytes,      1, read_zone<0x06, 2> },
	{ 0x06, 0x27, request_form::bytes,      1, read_zone<0x07, 2> },
	{ 0x06, 0x28, request_form::bytes,      1, read_zone<0x08, 1> },
	{ 0x06, 0x29, request_form::bytes,      1, read_zone<0x09, 1> },
	{ 0x06, 0x2A, request_form::bytes,      1, read_zone<0x0A, 3> },
	{ 0x06, 0x2B, request_form::bytes,      1, read_zone<0x0B, 1> },
	{ 0x06, 0x2C, request_form::bytes,      1, read_zone<0x0C, 1> },
	{ 0x06, 0x2D, request_form::bytes,      1, read_zone<0x0D, 1> },
	{ 0x06, 0x2E, request_form::bytes,      1, read_zone<0x0E, 1> },

	{ 0x08, 0x01, request_form::bytes,      1, select_keygroup },
	{ 0x08, 0x02, request_form::bytes,      0, [](s5000 &m, args) { return reply_high_first(static_cast<std::uint32_t>(m.current_keygroup + 1), 1); } },
	{ 0x08, 0x04, request_form::bytes,      1, write_note<0x04> },
	{ 0x08, 0x05, request_form::bytes,      1, write_note<0x05> },
	{ 0x08, 0x50, request_form::bytes,      1, write_amp<0> },
	{ 0x08, 0x52, request_form::bytes,      1, write_amp<1> },
	{ 0x08, 0x53, request_form::bytes,      1, write_amp<2> },
	{ 0x08, 0x54, request_form::bytes,      1, write_amp<3> },
	{ 0x08, 0x58, request_form::bytes,      0, read_amp<0> },
	{ 0x08, 0x5A, request_form::bytes,      0, read_amp<1> },
	{ 0x08, 0x5B, request_form::bytes,      0, read_amp<2> },
	{ 0x08, 0x5C, request_form::bytes,      0, read_amp<3> },
	{ 0x08, 0x60, request_form::bytes,      2, write_aux<&s5000_keygroup::aux_rate> },
	{ 0x08, 0x63, request_form::bytes,      2, write_aux<&s5000_keygroup::aux_level> },
	{ 0x08, 0x68, request_form::bytes,      1, read_aux<&s5000_keygroup::aux_rate> },
	{ 0x08, 0x6B, request_form::bytes,      1, read_aux<&s5000_keygroup::aux_level> },

	{ 0x0A, 0x02, request_form::text,       0, create_program },
	{ 0x0A, 0x05, request_form::loose_text, 0, select_program },
	{ 0x0A, 0x08, request_form::bytes,      0, delete_program },
	{ 0x0A, 0x09, request_form::text,       0, rename_program },
	{ 0x0A, 0x0B, request_form::bytes,      1, add_keygroups },
	{ 0x0A, 0x10, request_form::bytes,      0, [](s5000 &m, args) { return reply_high_first(count_of(m.programs), 2); } },
	{ 0x0A, 0x12, request_form::bytes,      0, [](s5000 &m, args) { return program_now(m) ? reply_high_first(static_cast<std::uint32_t>(m.current_program), 2) : refuse(refused_missing); } },
	{ 0x0A, 0x13, request_form::bytes,      0, [](s5000 &m, args) { return reply_text(program_now(m) ? program_now(m)->name : ""); } },
	{ 0x0A, 0x14, request_form::bytes,      0, count_keygroups },
	{ 0x0A, 0x19, request_form::bytes,      0, [](s5000 &m, args) { return reply_names(m.programs); } },

	{ 0x0C, 0x40, request_form::bytes,      0, [](s5000 &m, args) { return reply_high_first(count_of(m.multis), 2); } },
	{ 0x0C, 0x51, request_form::bytes,      0, [](s5000 &m, args) { usb_bytes data; for (const std::string &t : m.multis) add_text(&data, t); return reply(data); } },

	{ 0x0E, 0x05, request_form::text,       0, samples::select_by_name },
	{ 0x0E, 0x06, request_form::bytes,      2, samples::select_by_index },
	{ 0x0E, 0x08, request_form::bytes,      0, samples::erase },
	{ 0x0E, 0x09, request_form::text,       0, samples::rename },
	{ 0x0E, 0x10, request_form::bytes,      0, [](s5000 &m, args) { return reply_high_first(count_of(m.samples), 2); } },
	{ 0x0E, 0x12, request_form::bytes,      0, [](s5000 &m, args) { return reply_names(m.samples); } },
	{ 0x0E, 0x13, request_form::bytes,      0, samples::handle },
	{ 0x0E, 0x31, request_form::bytes,      0, samples::fact<&wave_facts::channels, 1> },
	{ 0x0E, 0x32, request_form::bytes,      0, samples::fact<&wave_facts::frames, 4> },
	{ 0x0E, 0x33, request_form::bytes,      0, samples::fact<&wave_facts::rate, 4> },
	{ 0x0E, 0x40, request_form::bytes,      0, samples::fact<&wave_facts::start, 4> },
	{ 0x0E, 0x41, request_form::bytes,      0, samples::fact<&wave_facts::end, 4> },
	{ 0x0E, 0x42, request_form::bytes,      0, samples::fact<&wave_facts::note, 1> },
	{ 0x0E, 0x48, request_form::bytes,      0, samples::fact<&wave_facts::playback, 1> },

	{ 0x3A, 0x00, request_form::block,      0, s5000_block_request },
};
// clang-format on

const std::span<const s5000_request> s5000_request_rows = rows;

} // namespace velmor
