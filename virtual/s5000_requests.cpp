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
using args = const s5000_arguments &;

bool s5000_take_arguments(const s5000_request &r, bytes_in bytes, s5000_arguments *a)
{
	if (std::any_of(bytes.begin(), bytes.end(), [](std::uint8_t b) { return b > 0x7F; }))
		return false;
	a->bytes.assign(bytes.begin(), bytes.end());
	switch (r.form) {
	case s5000_form::bytes:
		return bytes.size() == r.count;
	case s5000_form::text:
		return take_text(bytes, &a->text);
	case s5000_form::loose_text:
		return take_text(bytes, &a->text) || bytes.size() == a->text.size();
	case s5000_form::zone_text:
		return bytes.size() > 1 && take_text(bytes.subspan(1), &a->text);
	case s5000_form::block:
		return bytes.size() > 3 &&
		       ((bytes.size() - 3) % 4 == 0 || (bytes.size() - 3) % 4 == 3);
	}
	return false;
}

s5000_outcome s5000_refuse(std::uint8_t reason)
{
	return { 'E', { reason } };
}

static s5000_outcome done()
{
	return { 'D', {} };
}

static s5000_outcome reply(usb_bytes data)
{
	return { 'R', std::move(data) };
}

static s5000_outcome reply_number(std::uint32_t value, int groups)
{
	usb_bytes data;
	for (int i = groups; i-- > 0;)
		data.push_back(value >> 7 * i & 0x7F);
	return reply(std::move(data));
}

static void add_text(usb_bytes *data, const std::string &text)
{
	data->insert(data->end(), text.begin(), text.end());
	data->push_back(0);
}

static s5000_outcome reply_text(const std::string &text)
{
	usb_bytes data;
	add_text(&data, text);
	return reply(std::move(data));
}

template <class list, class member> static s5000_outcome reply_names(const list &all, member name)
{
	usb_bytes data;
	for (const auto &one : all)
		add_text(&data, one.*name);
	return reply(std::move(data));
}

template <class list, class member>
static int find_name(const list &all, member name, const std::string &wanted)
{
	for (std::size_t i = 0; i < all.size(); i++)
		if (all[i].*name == wanted)
			return static_cast<int>(i);
	return -1;
}

static s5000_program *program_now(s5000 &m)
{
	const auto i = static_cast<std::size_t>(m.current_program);
	return i < m.programs.size() ? &m.programs[i] : nullptr;
}

static s5000_keygroup *keygroup_now(s5000 &m)
{
	s5000_program *p = program_now(m);
	const auto i = static_cast<std::size_t>(m.current_keygroup);
	return p && i < p->keygroups.size() ? &p->keygroups[i] : nullptr;
}

// The zone that a request names in its first argument.
static s5000_zone *zone_of(s5000 &m, args a)
{
	s5000_keygroup *k = keygroup_now(m);
	return k && a.bytes[0] >= 1 && a.bytes[0] <= s5000_zones ? &k->zones[a.bytes[0] - 1u]
								 : nullptr;
}

// ---- Programs and multis -----------------------------------------------------------------

static s5000_outcome create_program(s5000 &m, args a)
{
	if (a.text.empty() || find_name(m.programs, &s5000_program::name, a.text) >= 0)
		return s5000_refuse(s5000_bad_value);
	m.programs.push_back({ a.text, std::vector<s5000_keygroup>(1) });
	m.current_program = static_cast<int>(m.programs.size()) - 1;
	m.current_keygroup = 0;
	return done();
}

static s5000_outcome select_program(s5000 &m, args a)
{
	const int found = find_name(m.programs, &s5000_program::name, a.text);
	if (found < 0)
		return s5000_refuse(s5000_not_found);
	m.current_program = found;
	m.current_keygroup = 0;
	return done();
}

static s5000_outcome delete_program(s5000 &m, args)
{
	if (!program_now(m))
		return s5000_refuse(s5000_not_found);
	m.programs.erase(m.programs.begin() + m.current_program);
	const int last = static_cast<int>(m.programs.size()) - 1;
	m.current_program = std::max(0, std::min(m.current_program, last));
	m.current_keygroup = 0;
	return done();
}

static s5000_outcome rename_program(s5000 &m, args a)
{
	if (!program_now(m))
		return s5000_refuse(s5000_not_found);
	program_now(m)->name = a.text;
	return done();
}

static s5000_outcome add_keygroups(s5000 &m, args a)
{
	s5000_program *p = program_now(m);
	if (!p)
		return s5000_refuse(s5000_not_found);
	if (a.bytes[0] < 1 || p->keygroups.size() + a.bytes[0] > s5000_most_keygroups)
		return s5000_refuse(s5000_full);
	p->keygroups.resize(p->keygroups.size() + a.bytes[0]);
	return done();
}

static s5000_outcome count_keygroups(s5000 &m, args)
{
	return program_now(m)
		       ? reply_number(
				 static_cast<std::uint32_t>(program_now(m)->keygroups.size()), 1)
		       : s5000_refuse(s5000_not_found);
}

// ---- Keygroups ---------------------------------------------------------------------------

static s5000_outcome select_keygroup(s5000 &m, args a)
{
	s5000_program *p = program_now(m);
	if (!p || a.bytes[0] < 1 || a.bytes[0] > p->keygroups.size())
		return s5000_refuse(s5000_not_found);
	m.current_keygroup = a.bytes[0] - 1;
	return done();
}

template <std::uint8_t item> static s5000_outcome write_note(s5000 &m, args a)
{
	if (!keygroup_now(m))
		return s5000_refuse(s5000_not_found);
	keygroup_now(m)->at(item) = { a.bytes[0] };
	return done();
}

template <int stage> static s5000_outcome write_amp(s5000 &m, args a)
{
	if (!keygroup_now(m))
		return s5000_refuse(s5000_not_found);
	keygroup_now(m)->amp[stage] = a.bytes[0];
	return done();
}

template <int stage> static s5000_outcome read_amp(s5000 &m, args)
{
	return keygroup_now(m) ? reply({ keygroup_now(m)->amp[stage] })
			       : s5000_refuse(s5000_not_found);
}

using four_bytes = std::array<std::uint8_t, 4>;

template <four_bytes s5000_keygroup::*field> static s5000_outcome write_aux(s5000 &m, args a)
{
	s5000_keygroup *k = keygroup_now(m);
	if (!k || a.bytes[0] < 1 || a.bytes[0] > 4)
		return s5000_refuse(s5000_not_found);
	(k->*field)[a.bytes[0] - 1u] = a.bytes[1];
	return done();
}

template <four_bytes s5000_keygroup::*field> static s5000_outcome read_aux(s5000 &m, args a)
{
	s5000_keygroup *k = keygroup_now(m);
	if (!k || a.bytes[0] < 1 || a.bytes[0] > 4)
		return s5000_refuse(s5000_not_found);
	return reply({ (k->*field)[a.bytes[0] - 1u] });
}

// ---- Zones -------------------------------------------------------------------------------

static s5000_outcome write_zone_sample(s5000 &m, args a)
{
	s5000_zone *z = zone_of(m, a);
	if (!z)
		return s5000_refuse(s5000_not_found);
	z->sample = a.text;
	return done();
}

static s5000_outcome read_zone_sample(s5000 &m, args a)
{
	const s5000_zone *z = zone_of(m, a);
	return z ? reply_text(z->sample) : s5000_refuse(s5000_not_found);
}

// A value of two bytes or three begins with its sign.
template <std::uint8_t item, int width> static s5000_outcome write_zone(s5000 &m, args a)
{
	s5000_zone *z = zone_of(m, a);
	if (!z)
		return s5000_refuse(s5000_not_found);
	if (width > 1 && a.bytes[1] > 1)
		return s5000_refuse(s5000_bad_value);
	std::copy_n(a.bytes.begin() + 1, width, z->value[item].begin());
	return done();
}

template <std::uint8_t item, int width> static s5000_outcome read_zone(s5000 &m, args a)
{
	const s5000_zone *z = zone_of(m, a);
	if (!z)
		return s5000_refuse(s5000_not_found);
	return reply({ z->value[item].begin(), z->value[item].begin() + width });
}

// ---- Samples -----------------------------------------------------------------------------

struct s5000_requests {
	static s5000_outcome select_by_name(s5000 &m, args a)
	{
		const int found = find_name(m.samples, &usb_sample::name, a.text);
		if (found < 0)
			return s5000_refuse(s5000_not_found);
		m.current_sample = found;
		return done();
	}

	static s5000_outcome select_by_index(s5000 &m, args a)
	{
		const int index = a.bytes[0] * 128 + a.bytes[1];
		if (static_cast<std::size_t>(index) >= m.samples.size())
			return s5000_refuse(s5000_not_found);
		m.current_sample = index;
		return done();
	}

	static s5000_outcome erase(s5000 &m, args)
	{
		if (!m.sample_now())
			return s5000_refuse(s5000_not_found);
		m.samples.erase(m.samples.begin() + m.current_sample);
		const int last = static_cast<int>(m.samples.size()) - 1;
		m.current_sample = std::max(0, std::min(m.current_sample, last));
		return done();
	}

	static s5000_outcome rename(s5000 &m, args a)
	{
		if (!m.sample_now())
			return s5000_refuse(s5000_not_found);
		m.samples[static_cast<std::size_t>(m.current_sample)].name = a.text;
		return done();
	}

	static s5000_outcome handle(s5000 &m, args)
	{
		return m.sample_now() ? reply_number(m.sample_now()->handle, 2)
				      : s5000_refuse(s5000_not_found);
	}

	template <auto field, int groups> static s5000_outcome fact(s5000 &m, args)
	{
		if (!m.sample_now())
			return s5000_refuse(s5000_not_found);
		return reply_number(m.facts_now().*field, groups);
	}

	static s5000_outcome confirmations(s5000 &m, args a)
	{
		m.confirms = a.bytes[0] != 0;
		return done();
	}
};

using samples = s5000_requests;

static s5000_outcome list_disks(s5000 &m, args)
{
	usb_bytes data;
	for (const s5000_disk &d : m.disks) {
		data.insert(data.end(), { static_cast<std::uint8_t>(d.id >> 7 & 0x7F),
						static_cast<std::uint8_t>(d.id & 0x7F), d.type,
						d.format, d.scsi_id, d.writable });
		add_text(&data, d.name);
	}
	return reply(std::move(data));
}

template <class list> static std::uint32_t count(const list &all)
{
	return static_cast<std::uint32_t>(all.size());
}

// clang-format off
static const s5000_request rows[] = {
	// section item form             bytes
	{ 0x00, 0x01, s5000_form::bytes,      1, samples::confirmations },
	{ 0x00, 0x03, s5000_form::bytes,      1, [](s5000 &, args) { return done(); } }, // synchronise
	{ 0x00, 0x04, s5000_form::bytes,      1, [](s5000 &m, args a) { m.sums_checked = a.bytes[0] != 0; return done(); } },
	{ 0x02, 0x00, s5000_form::bytes,      0, [](s5000 &m, args) { return reply({ m.version_major, m.version_minor }); } },
	{ 0x02, 0x02, s5000_form::text,       0, [](s5000 &m, args a) { m.name = a.text; return done(); } },
	{ 0x02, 0x03, s5000_form::bytes,      0, [](s5000 &m, args) { return reply_text(m.name); } },
	{ 0x02, 0x04, s5000_form::bytes,      0, [](s5000 &m, args) { return reply_number(m.is_s6000, 1); } },

	{ 0x06, 0x01, s5000_form::zone_text,  0, write_zone_sample },
	{ 0x06, 0x02, s5000_form::bytes,      3, write_zone<0x02, 2> }, // level
	{ 0x06, 0x03, s5000_form::bytes,      2, write_zone<0x03, 1> }, // panning
	{ 0x06, 0x04, s5000_form::bytes,      2, write_zone<0x04, 1> }, // output
	{ 0x06, 0x05, s5000_form::bytes,      3, write_zone<0x05, 2> }, // filter
	{ 0x06, 0x06, s5000_form::bytes,      3, write_zone<0x06, 2> }, // fine
	{ 0x06, 0x07, s5000_form::bytes,      3, write_zone<0x07, 2> }, // semitones
	{ 0x06, 0x08, s5000_form::bytes,      2, write_zone<0x08, 1> }, // keyboard track
	{ 0x06, 0x09, s5000_form::bytes,      2, write_zone<0x09, 1> }, // playback
	{ 0x06, 0x0A, s5000_form::bytes,      4, write_zone<0x0A, 3> }, // velocity to start
	{ 0x06, 0x0B, s5000_form::bytes,      2, write_zone<0x0B, 1> }, // high velocity
	{ 0x06, 0x0C, s5000_form::bytes,      2, write_zone<0x0C, 1> }, // low velocity
	{ 0x06, 0x0D, s5000_form::bytes,      2, write_zone<0x0D, 1> }, // mute
	{ 0x06, 0x0E, s5000_form::bytes,      2, write_zone<0x0E, 1> }, // solo
	{ 0x06, 0x21, s5000_form::bytes,      1, read_zone_sample },
	{ 0x06, 0x22, s5000_form::bytes,      1, read_zone<0x02, 2> },
	{ 0x06, 0x23, s5000_form::bytes,      1, read_zone<0x03, 1> },
	{ 0x06, 0x24, s5000_form::bytes,      1, read_zone<0x04, 1> },
	{ 0x06, 0x25, s5000_form::bytes,      1, read_zone<0x05, 2> },
	{ 0x06, 0x26, s5000_form::bytes,      1, read_zone<0x06, 2> },
	{ 0x06, 0x27, s5000_form::bytes,      1, read_zone<0x07, 2> },
	{ 0x06, 0x28, s5000_form::bytes,      1, read_zone<0x08, 1> },
	{ 0x06, 0x29, s5000_form::bytes,      1, read_zone<0x09, 1> },
	{ 0x06, 0x2A, s5000_form::bytes,      1, read_zone<0x0A, 3> },
	{ 0x06, 0x2B, s5000_form::bytes,      1, read_zone<0x0B, 1> },
	{ 0x06, 0x2C, s5000_form::bytes,      1, read_zone<0x0C, 1> },
	{ 0x06, 0x2D, s5000_form::bytes,      1, read_zone<0x0D, 1> },
	{ 0x06, 0x2E, s5000_form::bytes,      1, read_zone<0x0E, 1> },

	{ 0x08, 0x01, s5000_form::bytes,      1, select_keygroup },
	{ 0x08, 0x02, s5000_form::bytes,      0, [](s5000 &m, args) { return reply_number(static_cast<std::uint32_t>(m.current_keygroup + 1), 1); } },
	{ 0x08, 0x04, s5000_form::bytes,      1, write_note<0x04> },
	{ 0x08, 0x05, s5000_form::bytes,      1, write_note<0x05> },
	{ 0x08, 0x50, s5000_form::bytes,      1, write_amp<0> },
	{ 0x08, 0x52, s5000_form::bytes,      1, write_amp<1> },
	{ 0x08, 0x53, s5000_form::bytes,      1, write_amp<2> },
	{ 0x08, 0x54, s5000_form::bytes,      1, write_amp<3> },
	{ 0x08, 0x58, s5000_form::bytes,      0, read_amp<0> },
	{ 0x08, 0x5A, s5000_form::bytes,      0, read_amp<1> },
	{ 0x08, 0x5B, s5000_form::bytes,      0, read_amp<2> },
	{ 0x08, 0x5C, s5000_form::bytes,      0, read_amp<3> },
	{ 0x08, 0x60, s5000_form::bytes,      2, write_aux<&s5000_keygroup::aux_rate> },
	{ 0x08, 0x63, s5000_form::bytes,      2, write_aux<&s5000_keygroup::aux_level> },
	{ 0x08, 0x68, s5000_form::bytes,      1, read_aux<&s5000_keygroup::aux_rate> },
	{ 0x08, 0x6B, s5000_form::bytes,      1, read_aux<&s5000_keygroup::aux_level> },

	{ 0x0A, 0x02, s5000_form::text,       0, create_program },
	{ 0x0A, 0x05, s5000_form::loose_text, 0, select_program },
	{ 0x0A, 0x08, s5000_form::bytes,      0, delete_program },
	{ 0x0A, 0x09, s5000_form::text,       0, rename_program },
	{ 0x0A, 0x0B, s5000_form::bytes,      1, add_keygroups },
	{ 0x0A, 0x10, s5000_form::bytes,      0, [](s5000 &m, args) { return reply_number(count(m.programs), 2); } },
	{ 0x0A, 0x12, s5000_form::bytes,      0, [](s5000 &m, args) { return program_now(m) ? reply_number(static_cast<std::uint32_t>(m.current_program), 2) : s5000_refuse(s5000_not_found); } },
	{ 0x0A, 0x13, s5000_form::bytes,      0, [](s5000 &m, args) { return reply_text(program_now(m) ? program_now(m)->name : ""); } },
	{ 0x0A, 0x14, s5000_form::bytes,      0, count_keygroups },
	{ 0x0A, 0x19, s5000_form::bytes,      0, [](s5000 &m, args) { return reply_names(m.programs, &s5000_program::name); } },

	{ 0x0C, 0x40, s5000_form::bytes,      0, [](s5000 &m, args) { return reply_number(count(m.multis), 2); } },
	{ 0x0C, 0x51, s5000_form::bytes,      0, [](s5000 &m, args) { usb_bytes data; for (const std::string &t : m.multis) add_text(&data, t); return reply(data); } },

	{ 0x0E, 0x05, s5000_form::text,       0, samples::select_by_name },
	{ 0x0E, 0x06, s5000_form::bytes,      2, samples::select_by_index },
	{ 0x0E, 0x08, s5000_form::bytes,      0, samples::erase },
	{ 0x0E, 0x09, s5000_form::text,       0, samples::rename },
	{ 0x0E, 0x10, s5000_form::bytes,      0, [](s5000 &m, args) { return reply_number(count(m.samples), 2); } },
	{ 0x0E, 0x12, s5000_form::bytes,      0, [](s5000 &m, args) { return reply_names(m.samples, &usb_sample::name); } },
	{ 0x0E, 0x13, s5000_form::bytes,      0, samples::handle },
	{ 0x0E, 0x31, s5000_form::bytes,      0, samples::fact<&wave_facts::channels, 1> },
	{ 0x0E, 0x32, s5000_form::bytes,      0, samples::fact<&wave_facts::frames, 4> },
	{ 0x0E, 0x33, s5000_form::bytes,      0, samples::fact<&wave_facts::rate, 4> },
	{ 0x0E, 0x40, s5000_form::bytes,      0, samples::fact<&wave_facts::start, 4> },
	{ 0x0E, 0x41, s5000_form::bytes,      0, samples::fact<&wave_facts::end, 4> },
	{ 0x0E, 0x42, s5000_form::bytes,      0, samples::fact<&wave_facts::note, 1> },
	{ 0x0E, 0x48, s5000_form::bytes,      0, samples::fact<&wave_facts::playback, 1> },

	{ 0x10, 0x05, s5000_form::bytes,      0, list_disks },


	{ 0x3A, 0x00, s5000_form::block,      0, s5000_block_request },
};
// clang-format on

const std::span<const s5000_request> s5000_request_rows = rows;

} // namespace velmor
