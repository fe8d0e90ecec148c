// screen_z4.cpp - the screen and the keys of a virtual Z4 or Z8, and the screen of an MPC 4000
//
// Six function keys stand below the screen: the pages, then what is done at once. The MPC 4000
// has the room of an S5000 and none of its keys here, so it shows what it holds.

#include "virtual/screen_keys.h"
#include "virtual/screen_pages.h"
#include "virtual/z4.h"

namespace velmor
{

const screen_layout z4_layout = {
	.width = 248,
	.height = 60,
	.bits = wire_bits::leftmost_highest_set_is_dark,
	.title = { 0, 0, 248, 10 },
	.rows = { 0, 11, 150, 36 },
	.rows_alone = { 0, 11, 248, 36 },
	.drawing = { 153, 12, 94, 35 },
	.window = { 16, 5, 212, 38 },
	.row_height = 9,
	.heading = -1,
	.footer = -1,
	.soft_keys = 6,
	.first_action = 0,
	.soft_key =
		[](int i) {
			return screen_box{ (i - 1) * 124 / 3, 48, 40, 12 };
		},
};

const screen_layout mpc_layout = {
	.width = 320,
	.height = 240,
	.bits = wire_bits::leftmost_highest_set_is_dark,
	.title = { 4, 2, 312, 11 },
	.rows = { 4, 38, 312, 90 },
	.rows_alone = { 4, 38, 312, 162 },
	.drawing = { 4, 132, 312, 68 },
	.window = { 70, 92, 180, 46 },
	.row_height = 10,
	.heading = 17,
	.footer = 208,
	.soft_keys = 6,
	.first_action = 0,
	.soft_key =
		[](int i) {
			return screen_box{ 4 + (i - 1) * 53, 221, 47, 16 };
		},
};

// ---- Contents ----------------------------------------------------------------------------

class z4_screen : public family_screen<z4, z4_most_keygroups>
{
public:
	using family_screen::family_screen;
	std::array<int, 2> span(int program, int keygroup) const override
	{
		const z4_keygroup &k = sampler.programs[static_cast<std::size_t>(program)]
					       .keygroups[static_cast<std::size_t>(keygroup)];
		return { k.low_note, k.high_note };
	}
	std::vector<std::string> multis() const override { return {}; }
	std::string model() const override
	{
		return sampler.product == 0x61 ? "MPC 4000" : "Z4/Z8";
	}
};

// ---- Pages -------------------------------------------------------------------------------

using program_number = screen_number<z4_program>;
using keygroup_number = screen_number<z4_keygroup>;
using zone_number = screen_number<z4_zone>;

template <std::uint8_t z4_keygroup::*note>
static constexpr keygroup_number note_number(const char *label)
{
	return { label, 0, 127, [](z4_keygroup &k) -> int { return k.*note; },
		[](z4_keygroup &k, int v) { k.*note = static_cast<std::uint8_t>(v); }, note_name };
}

template <std::uint8_t z4_program::*field>
static constexpr program_number voice_number(const char *label, int low, int high)
{
	return { label, low, high, [](z4_program &p) -> int { return p.*field; },
		[](z4_program &p, int v) { p.*field = static_cast<std::uint8_t>(v); }, show_plain };
}

// Tenths of a decibel: a sign, then the size in two groups of seven bits.
static int level_of(z4_zone &z)
{
	const int size = z.level[1] | z.level[2] << 7;
	return z.level[0] ? -size : size;
}

static void set_level(z4_zone &z, int tenths)
{
	const int size = tenths < 0 ? -tenths : tenths;
	z.level = { tenths < 0, static_cast<std::uint8_t>(size & 0x7F),
		static_cast<std::uint8_t>(size >> 7) };
}

static std::string show_tenths(int tenths)
{
	const int size = tenths < 0 ? -tenths : tenths;
	return (tenths < 0          ? "-"
		       : tenths > 0 ? "+"
				    : "") +
	       std::to_string(size / 10) + "." + std::to_string(size % 10) + " dB";
}

static constexpr program_number voice_numbers[] = {
	voice_number<&z4_program::polyphony>("POLYPHONY", 1, 64),
	voice_number<&z4_program::reassignment>("REASSIGNMENT", 0, 1),
};
static constexpr keygroup_number span_numbers[] = {
	note_number<&z4_keygroup::low_note>("LOW NOTE"),
	note_number<&z4_keygroup::high_note>("HIGH NOTE"),
};
static constexpr zone_number zone_numbers[] = {
	{ "LEVEL", -600, 60, level_of, set_level, show_tenths },
};

static screen_rows span_rows(screen &s)
{
	screen_rows rows = { keygroup_row(s) };
	z4_screen &z = static_cast<z4_screen &>(s);
	if (z.keygroup_now())
		add_rows(&rows, *z.keygroup_now(), span_numbers);
	if (z.program_now())
		add_rows(&rows, *z.program_now(), voice_numbers);
	return rows;
}

static screen_rows zone_rows(screen &s)
{
	screen_rows rows = { keygroup_row(s) };
	z4_keygroup *k = static_cast<z4_screen &>(s).keygroup_now();
	if (!k || k->zones.empty())
		return rows;
	const int count = static_cast<int>(k->zones.size());
	const int zone = s.chosen.zone = within(s.chosen.zone, k->zones.size());
	rows.push_back({ .label = "ZONE",
		.value = std::to_string(zone + 1) + "/" + std::to_string(count),
		.now = zone + 1,
		.low = 1,
		.high = count,
		.set = [&s](int value) { s.chosen.zone = value - 1; } });
	rows.push_back(sample_row(s, &k->zones[static_cast<std::size_t>(zone)].sample));
	add_rows(&rows, k->zones[static_cast<std::size_t>(zone)], zone_numbers);
	return rows;
}

static const screen_page program_pages[] = {
	{ "LIST", "PROGRAMS", program_rows, draw_keyboard, &screen_choice::program },
	{ "SPAN", "KEYSPAN", span_rows, draw_keyboard },
	{ "ZONES", "ZONES", zone_rows },
};
static const screen_action program_actions[] = {
	{ "KG +", step_keygroup<+1> },
	{ "ADD KG", add_keygroup },
	{ "NAME", name_program },
};

static const screen::mode_table modes = with_program_pages({ program_pages, program_actions });

// ---- Keys --------------------------------------------------------------------------------

static constexpr int mode_number(screen_mode mode)
{
	return static_cast<int>(mode);
}

// clang-format off
static constexpr screen_key_code codes[] = {
	{ 0x01, 0x06, screen_key::soft,       1 },
	{ 0x07, 0x07, screen_key::window_key,     0 },
	{ 0x08, 0x08, screen_key::not_fitted, 0 }, // Q-Link
	{ 0x09, 0x09, screen_key::not_fitted, 0 }, // CLIPBOARD
	{ 0x0A, 0x0A, screen_key::play,       0 },
	{ 0x10, 0x10, screen_key::mode,       mode_number(screen_mode::load) },
	{ 0x11, 0x11, screen_key::mode,       mode_number(screen_mode::utilities) },
	{ 0x12, 0x12, screen_key::mode,       mode_number(screen_mode::program) },
	{ 0x13, 0x13, screen_key::mode,       mode_number(screen_mode::fx) },
	{ 0x14, 0x14, screen_key::mode,       mode_number(screen_mode::save) },
	{ 0x15, 0x15, screen_key::mode,       mode_number(screen_mode::record) },
	{ 0x16, 0x16, screen_key::mode,       mode_number(screen_mode::sample) },
	{ 0x17, 0x17, screen_key::mode,       mode_number(screen_mode::multi) },
};
static constexpr screen_key_code cursor_codes[] = {
	{ 1, 1, screen_key::page,   -1 },
	{ 2, 2, screen_key::page,   +1 },
	{ 3, 3, screen_key::cursor, -1 },
	{ 4, 4, screen_key::cursor, +1 },
};
// clang-format on

std::unique_ptr<front_panel> make_panel(z4 &machine, bool is_mpc)
{
	if (is_mpc)
		return std::make_unique<front_panel>(
			std::make_unique<z4_screen>(
				machine, mpc_layout, modes, screen_mode::program),
			screen_keyboard{ {}, {}, true });
	return std::make_unique<front_panel>(
		std::make_unique<z4_screen>(machine, z4_layout, modes, screen_mode::multi),
		screen_keyboard{ codes, cursor_codes, true });
}

} // namespace velmor
