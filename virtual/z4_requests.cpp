// z4_requests.cpp - what a virtual Z4 does when it is asked
//
// Section 0E holds two things: the zones of the current keygroup (01, 02), and the
// sample requests that it has in common with the S5000 (05, 08, 09).

#include "virtual/z4_requests.h"

namespace velmor
{

using args = const request_arguments &;

static z4_program *program_now(z4 &m)
{
	return entry(m.programs, m.current_program);
}

static z4_keygroup *keygroup_now(z4 &m)
{
	z4_program *p = program_now(m);
	return p ? entry(p->keygroups, m.current_keygroup) : nullptr;
}

static z4_zone *zone_of(z4 &m, args a)
{
	z4_keygroup *k = keygroup_now(m);
	return k ? entry(k->zones, a.bytes[0] - 1) : nullptr;
}

static void add_handle(usb_bytes *data, std::uint32_t handle)
{
	for (int i = 0; i < 4; i++)
		data->push_back(handle >> 7 * i & 0x7F);
}

// ---- Programs ----------------------------------------------------------------------------

// Each program: 04 handle*4 08 name 00.
static request_outcome list_programs(z4 &m, args)
{
	usb_bytes data;
	for (const z4_program &p : m.programs) {
		data.push_back(0x04);
		add_handle(&data, p.handle);
		data.push_back(0x08);
		add_text(&data, p.name);
	}
	return reply(std::move(data));
}

static request_outcome select_program(z4 &m, int place)
{
	if (!entry(m.programs, place))
		return refuse(refused_missing);
	m.current_program = place;
	m.current_keygroup = 0;
	return done();
}

static request_outcome select_program_handle(z4 &m, args a)
{
	std::uint32_t wanted = 0;
	for (std::size_t i = 4; i-- > 0;)
		wanted = wanted << 7 | a.bytes[i];
	for (std::size_t i = 0; i < m.programs.size(); i++)
		if (m.programs[i].handle == wanted)
			return select_program(m, static_cast<int>(i));
	return refuse(refused_missing);
}

static request_outcome delete_program(z4 &m, args)
{
	if (!program_now(m))
		return refuse(refused_missing);
	erase_entry(&m.programs, &m.current_program);
	m.current_keygroup = 0;
	return done();
}

static request_outcome rename_program(z4 &m, args a)
{
	if (!program_now(m))
		return refuse(refused_missing);
	program_now(m)->name = a.text;
	return done();
}

static request_outcome add_keygroups(z4 &m, args a)
{
	z4_program *p = program_now(m);
	if (!p)
		return refuse(refused_missing);
	if (a.bytes[0] < 1 || p->keygroups.size() + a.bytes[0] > z4_most_keygroups)
		return refuse(refused_full);
	p->keygroups.resize(p->keygroups.size() + a.bytes[0]);
	return done();
}

template <std::uint8_t z4_program::*field> static request_outcome read_program(z4 &m, args)
{
	return program_now(m) ? reply({ program_now(m)->*field }) : refuse(refused_missing);
}

template <std::uint8_t z4_program::*field> static request_outcome write_program(z4 &m, args a)
{
	if (!program_now(m))
		return refuse(refused_missing);
	program_now(m)->*field = a.bytes[0];
	return done();
}

// ---- Keygroups and zones -----------------------------------------------------------------

static request_outcome select_keygroup(z4 &m, args a)
{
	z4_program *p = program_now(m);
	if (!p || !entry(p->keygroups, a.bytes[0]))
		return refuse(refused_missing);
	m.current_keygroup = a.bytes[0];
	return done();
}

template <std::uint8_t z4_keygroup::*field> static request_outcome read_note(z4 &m, args)
{
	return keygroup_now(m) ? reply({ keygroup_now(m)->*field }) : refuse(refused_missing);
}

template <std::uint8_t z4_keygroup::*field> static request_outcome write_note(z4 &m, args a)
{
	if (!keygroup_now(m))
		return refuse(refused_missing);
	keygroup_now(m)->*field = a.bytes[0];
	return done();
}

static request_outcome read_zone_sample(z4 &m, args a)
{
	return zone_of(m, a) ? reply_text(zone_of(m, a)->sample) : refuse(refused_missing);
}

static request_outcome write_zone_sample(z4 &m, args a)
{
	if (!zone_of(m, a))
		return refuse(refused_missing);
	zone_of(m, a)->sample = a.text;
	return done();
}

static request_outcome read_zone_level(z4 &m, args a)
{
	const z4_zone *z = zone_of(m, a);
	return z ? reply({ z->level.begin(), z->level.end() }) : refuse(refused_missing);
}

static request_outcome write_zone_level(z4 &m, args a)
{
	if (!zone_of(m, a))
		return refuse(refused_missing);
	if (a.bytes[1] > 1)
		return refuse(refused_value);
	zone_of(m, a)->level = { a.bytes[1], a.bytes[2], a.bytes[3] };
	return done();
}

// ---- Samples -----------------------------------------------------------------------------

struct z4_requests {
	static request_outcome select(z4 &m, args a)
	{
		const int found = find_name(m.samples, a.text);
		if (found < 0)
			return refuse(refused_missing);
		m.current_sample = found;
		return done();
	}

	static request_outcome erase(z4 &m, args)
	{
		if (!m.sample_now())
			return refuse(refused_missing);
		erase_entry(&m.samples, &m.current_sample);
		return done();
	}

	static request_outcome rename(z4 &m, args a)
	{
		if (!m.sample_now())
			return refuse(refused_missing);
		entry(m.samples, m.current_sample)->name = a.text;
		return done();
	}

	static request_outcome handle(z4 &m, args)
	{
		return m.sample_now() ? reply_low_first(m.sample_now()->handle, 4)
				      : refuse(refused_missing);
	}

	// By form: 1 is each name behind its length, 3 is each handle behind a 04.
	static request_outcome list(z4 &m, args a)
	{
		usb_bytes data;
		for (const usb_sample &s : m.samples) {
			if (a.bytes[0] == 1) {
				data.push_back(static_cast<std::uint8_t>(s.name.size() & 0x7F));
				add_text(&data, s.name);
			} else {
				data.push_back(0x04);
				add_handle(&data, s.handle);
			}
		}
		if (a.bytes[0] != 1 && a.bytes[0] != 3)
			return refuse(refused_value);
		return reply(std::move(data));
	}

	template <auto field, int groups> static request_outcome high_first(z4 &m, args)
	{
		return m.sample_now() ? reply_high_first(m.facts_now().*field, groups)
				      : refuse(refused_missing);
	}

	template <auto field, int groups> static request_outcome low_first(z4 &m, args)
	{
		return m.sample_now() ? reply_low_first(m.facts_now().*field, groups)
				      : refuse(refused_missing);
	}

	static request_outcome confirmations(z4 &m, args a)
	{
		m.confirms = a.bytes[0] != 0;
		return done();
	}

	static request_outcome rename_machine(z4 &m, args a)
	{
		if (a.bytes[0] != 1)
			return refuse(refused_value);
		m.name = a.text;
		return done();
	}

	static request_outcome hardware(z4 &m, args)
	{
		return reply({ static_cast<std::uint8_t>(m.model) });
	}
};

using rest = z4_requests;

// clang-format off
static const z4_request rows[] = {
	// section item form              bytes
	{ 0x00, 0x01, request_form::bytes,      1, rest::confirmations },
	{ 0x00, 0x06, request_form::byte_text,  0, rest::rename_machine },
	{ 0x04, 0x00, request_form::bytes,      0, [](z4 &m, args) { return reply({ m.version_major, m.version_minor }); } },
	{ 0x04, 0x04, request_form::bytes,      0, rest::hardware },
	{ 0x07, 0x01, request_form::bytes,      0, [](z4 &m, args) { return reply_text(m.name); } },

	{ 0x0E, 0x01, request_form::byte_text,  0, write_zone_sample },
	{ 0x0E, 0x02, request_form::bytes,      4, write_zone_level },
	{ 0x0E, 0x05, request_form::text,       0, rest::select },
	{ 0x0E, 0x08, request_form::bytes,      0, rest::erase },
	{ 0x0E, 0x09, request_form::text,       0, rest::rename },
	{ 0x0F, 0x01, request_form::bytes,      1, read_zone_sample },
	{ 0x0F, 0x02, request_form::bytes,      1, read_zone_level },

	{ 0x10, 0x01, request_form::bytes,      1, select_keygroup },
	{ 0x10, 0x02, request_form::bytes,      0, [](z4 &m, args) { return reply_low_first(static_cast<std::uint32_t>(m.current_keygroup), 1); } },
	{ 0x12, 0x04, request_form::bytes,      1, write_note<&z4_keygroup::low_note> },
	{ 0x12, 0x05, request_form::bytes,      1, write_note<&z4_keygroup::high_note> },
	{ 0x13, 0x04, request_form::bytes,      0, read_note<&z4_keygroup::low_note> },
	{ 0x13, 0x05, request_form::bytes,      0, read_note<&z4_keygroup::high_note> },

	{ 0x14, 0x01, request_form::bytes,      0, [](z4 &m, args) { return reply_low_first(count_of(m.programs), 4); } },
	{ 0x14, 0x02, request_form::bytes,      1, [](z4 &m, args a) { return a.bytes[0] == 2 ? list_programs(m, a) : refuse(refused_value); } },
	{ 0x14, 0x03, request_form::bytes,      4, select_program_handle },
	{ 0x14, 0x04, request_form::text,       0, [](z4 &m, args a) { return select_program(m, find_name(m.programs, a.text)); } },
	{ 0x14, 0x06, request_form::bytes,      0, [](z4 &m, args) { return reply_text(program_now(m) ? program_now(m)->name : ""); } },
	{ 0x14, 0x0A, request_form::bytes,      0, delete_program },
	{ 0x14, 0x0C, request_form::text,       0, rename_program },
	{ 0x14, 0x41, request_form::bytes,      1, add_keygroups },
	{ 0x16, 0x10, request_form::bytes,      1, write_program<&z4_program::polyphony> },
	{ 0x16, 0x11, request_form::bytes,      1, write_program<&z4_program::reassignment> },
	{ 0x17, 0x10, request_form::bytes,      0, read_program<&z4_program::polyphony> },
	{ 0x17, 0x11, request_form::bytes,      0, read_program<&z4_program::reassignment> },

	{ 0x1C, 0x01, request_form::bytes,      0, [](z4 &m, args) { return reply_low_first(count_of(m.samples), 4); } },
	{ 0x1C, 0x02, request_form::bytes,      1, rest::list },
	{ 0x1C, 0x04, request_form::text,       0, rest::select },
	{ 0x1C, 0x05, request_form::bytes,      0, rest::handle },
	{ 0x1F, 0x20, request_form::bytes,      0, rest::high_first<&wave_facts::start, 4> },
	{ 0x1F, 0x21, request_form::bytes,      0, rest::high_first<&wave_facts::end, 4> },
	{ 0x1F, 0x24, request_form::bytes,      0, rest::low_first<&wave_facts::note, 1> },
	{ 0x1F, 0x26, request_form::bytes,      0, rest::low_first<&wave_facts::playback, 1> },
	{ 0x1F, 0x50, request_form::bytes,      0, rest::high_first<&wave_facts::frames, 4> },
	{ 0x1F, 0x51, request_form::bytes,      0, rest::low_first<&wave_facts::rate, 3> },
	{ 0x1F, 0x52, request_form::bytes,      0, rest::low_first<&wave_facts::bits, 1> },
	{ 0x1F, 0x55, request_form::bytes,      0, rest::low_first<&wave_facts::channels, 1> },
};
// clang-format on

const std::span<const z4_request> z4_request_rows = rows;

} // namespace velmor
