// screen_pages.h - the pages that all USB samplers have, and what families make theirs from

#pragma once
#include "virtual/screen.h"
#include "virtual/usb_requests.h"
#include "virtual/usb_sampler.h"
#include <algorithm>

namespace velmor
{

// ---- Programs ----------------------------------------------------------------------------

screen_rows program_rows(screen &s);
screen_row keygroup_row(screen &s); // chooses the keygroup
void draw_keyboard(screen &s, screen_canvas &c, screen_box b);
std::string name_program(screen &s);
std::string add_keygroup(screen &s);
template <int steps> std::string step_keygroup(screen &s)
{
	const int before = s.chosen.keygroup;
	const screen_row row = keygroup_row(s);
	if (row.set)
		row.set(std::max(row.low, std::min(row.now + steps, row.high)));
	return s.chosen.keygroup == before ? "NO OTHER KEYGROUP" : "";
}

// The contents that the families have alike.
template <class machine_type, std::size_t most_keygroups> class family_screen : public screen
{
public:
	family_screen(machine_type &m, const screen_layout &l, const mode_table &pages,
		screen_mode at_power_on)
		: screen(m, l, pages, at_power_on), sampler(m)
	{
	}
	std::vector<std::string> program_names() const override
	{
		std::vector<std::string> names;
		for (const auto &p : sampler.programs)
			names.push_back(p.name);
		return names;
	}
	std::string rename_program(int program, const std::string &wanted) override
	{
		auto *p = entry(sampler.programs, program);
		if (find_name(sampler.programs, wanted) >= 0)
			return "THIS NAME IS TAKEN";
		if (p)
			p->name = wanted;
		return p ? "" : "IT IS GONE";
	}
	int keygroups(int program) const override
	{
		const auto *p = entry(sampler.programs, program);
		return p ? static_cast<int>(p->keygroups.size()) : 0;
	}
	bool add_keygroup(int program) override
	{
		auto *p = entry(sampler.programs, program);
		if (!p || p->keygroups.size() >= most_keygroups)
			return false;
		p->keygroups.emplace_back();
		return true;
	}

	auto *program_now() { return entry(sampler.programs, chosen.program); }
	auto *keygroup_now()
	{
		return program_now() ? entry(program_now()->keygroups, chosen.keygroup) : nullptr;
	}

protected:
	machine_type &sampler;
};

// The pages that all have, with the family's own ones of programs.
screen::mode_table with_program_pages(const screen_mode_pages &own);

// ---- Rows made from tables ---------------------------------------------------------------

// A number of a record: how it is read, written and shown.
template <class record> struct screen_number {
	const char *label;
	int low, high;
	int (*get)(record &r);
	void (*set)(record &r, int value);
	std::string (*show)(int value);
};

inline std::string show_plain(int value)
{
	return std::to_string(value);
}

template <class record, std::size_t count>
void add_rows(screen_rows *rows, record &r, const screen_number<record> (&table)[count])
{
	for (const screen_number<record> &n : table) {
		const int now = n.get(r);
		rows->push_back({ .label = n.label,
			.value = n.show(now),
			.now = now,
			.low = n.low,
			.high = n.high,
			.set = [&r, set = n.set](int value) { set(r, value); } });
	}
}

// The sample of a zone, by its place among all; 0: none.
screen_row sample_row(screen &s, std::string *sample);

// ---- Curves ------------------------------------------------------------------------------

// Each of 0 to 100.
struct screen_envelope {
	int attack, decay, sustain, release;
};
void draw_envelope(screen_canvas &c, screen_box b, const screen_envelope &e);
void draw_filter(screen_canvas &c, screen_box b, int cutoff, int resonance); // to 100, to 15

} // namespace velmor
