// screen_s5000.cpp - the screen and the keys of a virtual S5000 or S6000
//
// The function keys stand in two columns beside the screen: pages on the left, what is done at
// once on the right.

#include "virtual/s5000.h"
#include "virtual/screen_keys.h"
#include "virtual/screen_pages.h"

namespace velmor
{

const screen_layout s5000_layout = {
	.width = 320,
	.height = 240,
	.bits = wire_bits::leftmost_lowest_set_is_light,
	.title = { 62, 2, 196, 11 },
	.rows = { 62, 38, 196, 90 },
	.rows_alone = { 62, 38, 196, 180 },
	.drawing = { 62, 136, 196, 84 },
	.window = { 70, 92, 180, 46 },
	.row_height = 10,
	.heading = 17,
	.footer = 229,
	.soft_keys = 16,
	.first_action = 9,
	.soft_key =
		[](int i) {
			return screen_box{ i > 8 ? 262 : 2, 8 + (i - 1) % 8 * 30, 55, 20 };
		},
};

// ---- Contents ----------------------------------------------------------------------------

class s5000_screen : public family_screen<s5000, s5000_most_keygroups>
{
public:
	using family_screen::family_screen;
	std::array<int, 2> span(int program, int keygroup) const override
	{
		s5000_keygroup &k = sampler.programs[static_cast<std::size_t>(program)]
					    .keygroups[static_cast<std::size_t>(keygroup)];
		return { k.at(0x04)[0], k.at(0x05)[0] };
	}
	std::vector<std::string> multis() const override { return sampler.multis; }
	std::string model() const override { return sampler.is_s6000 ? "S6000" : "S5000"; }
};

static s5000_keygroup *keygroup_of(screen &s)
{
	return static_cast<s5000_screen &>(s).keygroup_now();
}

// ---- Pages -------------------------------------------------------------------------------

using keygroup_number = screen_number<s5000_keygroup>;
using zone_number = screen_number<s5000_zone>;

template <std::uint8_t item>
static constexpr keygroup_number plain(
	const char *label, int low, int high, std::string (*show)(int) = show_plain)
{
	return { label, low, high, [](s5000_keygroup &k) -> int { return k.at(item)[0]; },
		[](s5000_keygroup &k, int v) { k.at(item)[0] = static_cast<std::uint8_t>(v); },
		show };
}

template <std::size_t stage> static constexpr keygroup_number amp(const char *label)
{
	return { label, 0, 100, [](s5000_keygroup &k) -> int { return k.amp[stage]; },
		[](s5000_keygroup &k, int v) { k.amp[stage] = static_cast<std::uint8_t>(v); },
		show_plain };
}

// A value of a zone: one byte, with an offset, or its sign and its size.
template <std::uint8_t item, int offset = 0>
static constexpr zone_number zone_byte(const char *label, int low, int high)
{
	return { label, low, high, [](s5000_zone &z) -> int { return z.value[item][0] - offset; },
		[](s5000_zone &z, int v) {
			z.value[item][0] = static_cast<std::uint8_t>(v + offset);
		},
		show_plain };
}

template <std::uint8_t item>
static constexpr zone_number zone_signed(
	const char *label, int low, int high, std::string (*show)(int) = show_plain)
{
	return { label, low, high,
		[](s5000_zone &z) -> int {
			return z.value[item][0] ? -z.value[item][1] : z.value[item][1];
		},
		[](s5000_zone &z, int v) {
			z.value[item] = { v < 0, static_cast<std::uint8_t>(v < 0 ? -v : v) };
		},
		show };
}

static std::string show_decibels(int value)
{
	return (value > 0 ? "+" : "") + std::to_string(value) + " dB";
}

static constexpr keygroup_number span_numbers[] = {
	plain<0x04>("LOW NOTE", 0, 127, note_name),
	plain<0x05>("HIGH NOTE", 0, 127, note_name),
	plain<0x06>("MUTE GROUP", 0, 32),
	plain<0x08>("EFFECTS SEND", 0, 100),
};
static constexpr keygroup_number filter_numbers[] = {
	plain<0x20>("MODE", 0, 25),
	plain<0x21>("CUTOFF", 0, 100),
	plain<0x22>("RESONANCE", 0, 15),
	plain<0x25>("ATTENUATION", 0, 5),
};
static constexpr keygroup_number amp_numbers[] = { amp<0>("ATTACK"), amp<1>("DECAY"),
	amp<2>("SUSTAIN"), amp<3>("RELEASE") };
static constexpr zone_number zone_numbers[] = {
	zone_signed<0x02>("LEVEL", -60, 6, show_decibels),
	zone_byte<0x03, 64>("PANNING", -50, 50),
	zone_signed<0x07>("SEMITONES", -36, 36),
	zone_signed<0x06>("FINE", -50, 50),
	zone_byte<0x0C>("LOW VELOCITY", 0, 127),
	zone_byte<0x0B>("HIGH VELOCITY", 0, 127),
};

template <const auto &table> static screen_rows keygroup_rows(screen &s)
{
	screen_rows rows = { keygroup_row(s) };
	if (s5000_keygroup *k = keygroup_of(s))
		add_rows(&rows, *k, table);
	return rows;
}

static screen_rows zone_rows(screen &s)
{
	screen_rows rows = { keygroup_row(s) };
	s5000_keygroup *k = keygroup_of(s);
	if (!k)
		return rows;
	const int zone = s.chosen.zone = within(s.chosen.zone, s5000_zones);
	s5000_zone &z = k->zones[static_cast<std::size_t>(zone)];
	rows.push_back({ .label = "ZONE",
		.value = std::to_string(zone + 1) + "/" + std::to_string(s5000_zones),
		.now = zone + 1,
		.low = 1,
		.high = s5000_zones,
		.set = [&s](int value) { s.chosen.zone = value - 1; } });
	rows.push_back(sample_row(s, &z.sample));
	add_rows(&rows, z, zone_numbers);
	return rows;
}

static void draw_filter_now(screen &s, screen_canvas &c, screen_box b)
{
	if (s5000_keygroup *k = keygroup_of(s))
		draw_filter(c, b, k->at(0x21)[0], k->at(0x22)[0]);
}

static void draw_amp_now(screen &s, screen_canvas &c, screen_box b)
{
	if (const s5000_keygroup *k = keygroup_of(s))
		draw_envelope(c, b, { k->amp[0], k->amp[1], k->amp[2], k->amp[3] });
}

static const screen_page program_pages[] = {
	{ "LIST", "PROGRAMS", program_rows, draw_keyboard, &screen_choice::program },
	{ "KEYSPAN", "PROGRAM: KEYSPAN", keygroup_rows<span_numbers>, draw_keyboard },
	{ "ZONES", "PROGRAM: ZONES", zone_rows, draw_keyboard },
	{ "FILTER", "PROGRAM: FILTER", keygroup_rows<filter_numbers>, draw_filter_now },
	{ "AMP", "PROGRAM: AMP", keygroup_rows<amp_numbers>, draw_amp_now },
};
static const screen_action program_actions[] = {
	{ "KG -", step_keygroup<-1> },
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
	{ 0x40, 0x40, screen_key::mode,   mode_number(screen_mode::fx) },
	{ 0x41, 0x41, screen_key::mode,   mode_number(screen_mode::record) },
	{ 0x42, 0x42, screen_key::mode,   mode_number(screen_mode::sample) },
	{ 0x43, 0x43, screen_key::mode,   mode_number(screen_mode::program) },
	{ 0x44, 0x44, screen_key::mode,   mode_number(screen_mode::multi) },
	{ 0x45, 0x45, screen_key::mode,   mode_number(screen_mode::utilities) },
	{ 0x46, 0x46, screen_key::mode,   mode_number(screen_mode::save) },
	{ 0x47, 0x47, screen_key::mode,   mode_number(screen_mode::load) },
	{ 0x48, 0x57, screen_key::soft,   1 },
	{ 0x58, 0x61, screen_key::digit,  0 }, // 0 is MARK too, and 1 JUMP
	{ 0x62, 0x62, screen_key::step,  -1 },
	{ 0x63, 0x63, screen_key::step,  +1 },
	{ 0x64, 0x64, screen_key::cursor, -1 },
	{ 0x65, 0x65, screen_key::cursor, +1 },
	{ 0x67, 0x67, screen_key::window_key, 0 },
	{ 0x6A, 0x6A, screen_key::exit,   0 },
	{ 0x6B, 0x6B, screen_key::enter,  0 }, // and PLAY
};
// clang-format on

std::unique_ptr<front_panel> make_panel(s5000 &machine)
{
	return std::make_unique<front_panel>(
		std::make_unique<s5000_screen>(machine, s5000_layout, modes, screen_mode::multi),
		screen_keyboard{ codes, {}, false });
}

} // namespace velmor
