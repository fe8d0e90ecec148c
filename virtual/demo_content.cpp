// demo_content.cpp - what the virtual samplers of the demo and the benchmarks hold

#include "virtual/demo_content.h"
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace velmor
{

// ---- Sounds ------------------------------------------------------------------------

static constexpr double turn = 2 * std::numbers::pi;

// A plain generator with a fixed seed: the same noise in every run.
struct noise {
	std::uint32_t state = 0x2545F491;
	double operator()()
	{
		state ^= state << 13;
		state ^= state >> 17;
		state ^= state << 5;
		return static_cast<std::int32_t>(state) / 2147483648.0;
	}
};

// Words from levels of any size: the highest becomes nine tenths of full scale.
static std::vector<std::int16_t> as_words(const std::vector<double> &levels)
{
	double peak = 1e-9;
	for (const double level : levels)
		peak = std::max(peak, std::fabs(level));
	std::vector<std::int16_t> words;
	for (const double level : levels)
		words.push_back(static_cast<std::int16_t>(std::lround(level / peak * 29490)));
	return words;
}

// The levels that shape gives for each moment, in seconds.
template <typename shape_of>
static std::vector<double> levels_of(unsigned rate, double seconds, shape_of shape)
{
	std::vector<double> levels(static_cast<std::size_t>(rate * seconds));
	for (std::size_t i = 0; i < levels.size(); i++)
		levels[i] = shape(static_cast<double>(i) / rate);
	return levels;
}

// A skin that falls from 160 to 45 Hz, with a click of the beater.
demo_sound kick_drum(unsigned rate)
{
	noise hiss;
	double phase = 0;
	const auto levels = levels_of(rate, 0.22, [&](double t) {
		phase += turn * (45 + 115 * std::exp(-t * 35)) / rate;
		return std::sin(phase) * std::exp(-t * 14) + 0.25 * hiss() * std::exp(-t * 500);
	});
	return { .rate = rate, .words = as_words(levels) };
}

// Two modes of the head under the rattle of the wires.
demo_sound snare_drum(unsigned rate)
{
	noise hiss;
	double last = 0;
	const auto levels = levels_of(rate, 0.2, [&](double t) {
		const double now = hiss();
		const double rattle = now - 0.6 * last;
		last = now;
		const double head = std::sin(turn * 185 * t) + 0.6 * std::sin(turn * 331 * t);
		return 0.7 * head * std::exp(-t * 32) + 0.5 * rattle * std::exp(-t * 20);
	});
	return { .rate = rate, .words = as_words(levels) };
}

// Six square waves in no harmony, their lows taken away twice.
demo_sound hi_hat(unsigned rate, double seconds)
{
	static constexpr double partials[] = { 2050, 3060, 3950, 4530, 5450, 6170 };
	noise hiss;
	double in1 = 0, out1 = 0, in2 = 0, out2 = 0;
	const auto levels = levels_of(rate, seconds, [&](double t) {
		double metal = 0.8 * hiss();
		for (const double f : partials)
			metal += std::sin(turn * f * t) > 0 ? 0.3 : -0.3;
		out1 = 0.6 * (out1 + metal - in1);
		in1 = metal;
		out2 = 0.6 * (out2 + out1 - in2);
		in2 = out1;
		return out2 * std::exp(-t * 5 / seconds);
	});
	return { .rate = rate, .words = as_words(levels) };
}

// The nearest frequency of which a period is a whole number of words, so that a loop of
// whole periods does not click.
static double loopable(unsigned rate, double frequency)
{
	return rate / std::round(rate / frequency);
}

// Loop the last periods of a note that holds its level at the end.
static demo_sound looped(
	unsigned rate, double frequency, int periods, const std::vector<double> &levels)
{
	const auto period = static_cast<std::uint32_t>(std::lround(rate / frequency));
	const auto last = static_cast<std::uint32_t>(levels.size()) - 1;
	return { .rate = rate,
		.words = as_words(levels),
		.loop_first = last - period * static_cast<std::uint32_t>(periods),
		.loop_last = last };
}

// A bowed string: all harmonics, the high ones weaker, swelling in.
demo_sound string_note(unsigned rate, double frequency, double brightness)
{
	const double f = loopable(rate, frequency);
	const auto levels = levels_of(rate, 0.3, [&](double t) {
		double sum = 0;
		for (int n = 1; n * f < rate * 0.45; n++)
			sum += std::sin(turn * n * f * t + 0.7 * n * n) /
			       std::pow(n, 2.2 - brightness);
		return sum * (1 - std::exp(-t * 30));
	});
	return looped(rate, f, 8, levels);
}

// A plucked bass: odd and even harmonics that die one after another.
demo_sound bass_note(unsigned rate, double frequency)
{
	const double f = loopable(rate, frequency);
	const auto levels = levels_of(rate, 0.3, [&](double t) {
		double sum = std::sin(turn * f * t);
		for (int n = 2; n <= 12; n++)
			sum += std::sin(turn * n * f * t) / n * std::exp(-t * 14 * n);
		return sum * (1 - std::exp(-t * 900));
	});
	return looped(rate, f, 1, levels);
}

// A voice on "ah": harmonics under the hills of the mouth at 700, 1220 and 2600 Hz.
demo_sound sung_vowel(unsigned rate, double frequency)
{
	static constexpr struct {
		double at, width, level;
	} hills[] = { { 700, 130, 1.0 }, { 1220, 160, 0.5 }, { 2600, 240, 0.15 } };
	const double f = loopable(rate, frequency);
	const auto levels = levels_of(rate, 0.3, [&](double t) {
		double sum = 0;
		for (int n = 1; n * f < std::min(4000.0, rate * 0.45); n++) {
			double weight = 0.05 / n;
			for (const auto &h : hills) {
				const double away = (n * f - h.at) / h.width;
				weight += h.level / (1 + away * away);
			}
			sum += weight * std::sin(turn * n * f * t + 1.3 * n);
		}
		return sum * (1 - std::exp(-t * 60));
	});
	return looped(rate, f, 6, levels);
}

// ---- Samples and programs ----------------------------------------------------------

static void add_sound(
	s1000_machine &machine, const char *name, std::uint8_t pitch, const demo_sound &sound)
{
	stored_sample &s = machine.add_sample(name, sound.rate, sound.words);
	s.header[2] = pitch;
	if (sound.loop_last > sound.loop_first)
		set_loop(s, sound.loop_first, sound.loop_last);
}

// A velocity zone of a keygroup: which sample, for which velocities.
struct zone {
	const char *sample;
	std::uint8_t low, high;
	std::uint8_t level = 0, pan = 0;
};

// Key range, envelope (attack, decay, sustain, release) and filter of a keygroup. A mute
// group of 255 is none; 0 is the first.
struct keygroup_plan {
	std::uint8_t low, high;
	std::uint8_t attack, decay, sustain, release;
	std::uint8_t filter;
	std::uint8_t mute_group;
	std::vector<zone> zones;
};

struct program_plan {
	const char *name;
	std::uint8_t channel; // from 0
	std::vector<keygroup_plan> keygroups;
};

static void put_zone(machine::bytes &block, std::size_t at, const zone &z)
{
	machine::put_name(block, at, z.sample);
	block[at + 12] = z.low;
	block[at + 13] = z.high;
	block[at + 16] = z.level;
	block[at + 18] = z.pan;
}

static void fill_keygroup(machine::bytes &block, const keygroup_plan &plan)
{
	block[3] = plan.low;
	block[4] = plan.high;
	block[7] = plan.filter;
	block[12] = plan.attack;
	block[13] = plan.decay;
	block[14] = plan.sustain;
	block[15] = plan.release;
	if (block.size() > 160)
		block[160] = plan.mute_group;
	for (std::size_t z = 0; z < plan.zones.size() && z < 4; z++)
		put_zone(block, 34 + 24 * z, plan.zones[z]);
}

static void add_plan(s1000_machine &machine, const program_plan &plan)
{
	const auto number = static_cast<std::uint8_t>(machine.programs.size());
	stored_program &p = machine.add_program(plan.name, plan.keygroups.size());
	p.common[15] = number;
	p.common[16] = plan.channel;
	for (std::size_t k = 0; k < plan.keygroups.size(); k++)
		fill_keygroup(p.keygroups[k], plan.keygroups[k]);
}

static constexpr std::uint8_t no_mute = 255;

// clang-format off
void fill_s3000(s1000_machine &machine)
{
	add_sound(machine, "KICK",        36, kick_drum(44100));
	add_sound(machine, "SNARE",       38, snare_drum(44100));
	add_sound(machine, "HAT CLOSED",  42, hi_hat(44100, 0.1));
	add_sound(machine, "HAT OPEN",    46, hi_hat(44100, 0.3));
	add_sound(machine, "STRING SOFT", 60, string_note(22050, 261.63, 0.2));
	add_sound(machine, "STRING LOUD", 60, string_note(22050, 261.63, 0.9));
	add_sound(machine, "PICK BASS",   36, bass_note(22050, 65.41));
	add_sound(machine, "CHOIR AH",    57, sung_vowel(22050, 220));

	//             low high  att dec sus rel  flt mute     zones: sample, velocities, level, pan
	add_plan(machine, { "STUDIO KIT", 9, {
		{  35,  36,   0, 60, 99, 20,  99, no_mute, { { "KICK", 0, 127 } } },
		{  37,  40,   0, 60, 99, 25,  99, no_mute, { { "SNARE", 0, 127, 0, 5 } } },
		{  42,  44,   0, 60, 99, 10,  99, 0,       { { "HAT CLOSED", 0, 127, 0, 15 } } },
		{  46,  46,   0, 60, 99, 40,  99, 0,       { { "HAT OPEN", 0, 127, 0, 15 } } },
	} });
	add_plan(machine, { "STRING LAYER", 0, {
		{  36,  59,  45, 70, 90, 62,  80, no_mute, { { "STRING SOFT", 0, 84 }, { "STRING LOUD", 85, 127 } } },
		{  60,  96,  38, 70, 90, 58,  90, no_mute, { { "STRING SOFT", 0, 84 }, { "STRING LOUD", 85, 127 } } },
	} });
	add_plan(machine, { "PICKED BASS", 1, {
		{  24,  60,   0, 72, 60, 30,  75, no_mute, { { "PICK BASS", 0, 127 } } },
	} });
	add_plan(machine, { "CHOIR AH", 2, {
		{  43,  57,  40, 60, 99, 55,  85, no_mute, { { "CHOIR AH", 0, 127 } } },
		{  58,  79,  35, 60, 99, 55,  95, no_mute, { { "CHOIR AH", 0, 127, 0, 25 } } },
	} });
}

void fill_s1000(s1000_machine &machine)
{
	add_sound(machine, "BD 1",   36, kick_drum(22050));
	add_sound(machine, "SD 1",   38, snare_drum(22050));
	add_sound(machine, "HH 1",   42, hi_hat(22050, 0.1));
	add_sound(machine, "BASS 1", 36, bass_note(22050, 65.41));

	add_plan(machine, { "DRUMS", 9, {
		{  35,  36,   0, 60, 99, 20,  99, no_mute, { { "BD 1", 0, 127 } } },
		{  37,  40,   0, 60, 99, 25,  99, no_mute, { { "SD 1", 0, 127 } } },
		{  42,  46,   0, 60, 99, 10,  99, no_mute, { { "HH 1", 0, 127 } } },
	} });
	add_plan(machine, { "BASS", 0, {
		{  24,  72,   0, 72, 60, 30,  70, no_mute, { { "BASS 1", 0, 127 } } },
	} });
}
// clang-format on

void fill_demo(s1000_machine &machine)
{
	if (machine.block_size() == 150)
		fill_s1000(machine);
	else
		fill_s3000(machine);
}

// ---- The S900 and S950 -------------------------------------------------------------

static void add_sound(s900_machine &machine, const char *name, std::uint8_t pitch, demo_sound sound)
{
	for (std::int16_t &w : sound.words)
		w = static_cast<std::int16_t>(w / 16);
	s900_sample &s = machine.add_sample(name, sound.rate, std::move(sound.words));
	machine::put_number(s.header, 22, pitch * 16u, 2);
	if (sound.loop_last > sound.loop_first)
		s900_machine::set_loop(s, sound.loop_first, sound.loop_last);
}

// Keys, envelope and filter of a keygroup; velocities from velocity_switch on play the loud
// sample, 128 is none. Drums play to their end however short the key.
struct s900_plan {
	std::uint8_t low, high;
	std::uint8_t attack, decay, sustain, release;
	std::uint8_t filter;
	std::uint8_t velocity_switch;
	bool drum;
	const char *soft, *loud;
};

static void add_plan(
	s900_machine &machine, const char *name, std::initializer_list<s900_plan> plans)
{
	s900_program &p = machine.add_program(name, plans.size());
	std::size_t k = 0;
	for (const s900_plan &plan : plans) {
		machine::bytes &block = p.keygroups[k++];
		const std::uint8_t head[] = { plan.high, plan.low, plan.velocity_switch,
			plan.attack, plan.decay, plan.sustain, plan.release };
		std::copy(std::begin(head), std::end(head), block.begin());
		block[18] = plan.drum ? 4 + 8 : 4;
		block[44] = block[66] = plan.filter;
		s900_machine::put_name(block, 24, plan.soft);
		s900_machine::put_name(block, 46, plan.loud);
	}
}

// clang-format off
void fill_demo(s900_machine &machine)
{
	const bool choir = machine.number_room > 32;
	machine.omni = true;
	add_sound(machine, "KICK",     36, kick_drum(20000));
	add_sound(machine, "SNARE",    38, snare_drum(20000));
	add_sound(machine, "HAT",      42, hi_hat(20000, 0.1));
	add_sound(machine, "PICKBASS", 36, bass_note(16000, 65.41));
	add_sound(machine, "STRING P", 60, string_note(16000, 261.63, 0.2));
	add_sound(machine, "STRING F", 60, string_note(16000, 261.63, 0.9));
	if (choir)
		add_sound(machine, "CHOIR AH", 57, sung_vowel(16000, 220));

	//  low high  att dec sus rel  flt switch drum   soft, loud
	add_plan(machine, "DRUM KIT", {
		{ 35,  36,   0, 60, 99, 20, 99,  128, true,  "KICK", "" },
		{ 37,  40,   0, 60, 99, 25, 99,  128, true,  "SNARE", "" },
		{ 42,  46,   0, 60, 99, 10, 99,  128, true,  "HAT", "" },
	});
	add_plan(machine, "BASS", {
		{ 24,  60,   0, 72, 60, 30, 75,  128, false, "PICKBASS", "" },
	});
	add_plan(machine, "STRINGS", {
		{ 36,  59,  45, 70, 90, 62, 80,   84, false, "STRING P", "STRING F" },
		{ 60,  96,  38, 70, 90, 58, 90,   84, false, "STRING P", "STRING F" },
	});
	if (choir)
		add_plan(machine, "CHOIR", {
			{ 43, 79,  40, 60, 99, 55, 90, 128, false, "CHOIR AH", "" },
		});
}
// clang-format on

// ---- For benchmarks ----------------------------------------------------------------

static std::string numbered(const char *word, std::size_t number)
{
	char name[32];
	std::snprintf(name, sizeof name, "%s %03zu", word, number);
	return name;
}

void fill_for_benchmark(s1000_machine &machine, std::size_t programs, std::size_t keygroups,
	std::size_t samples, std::size_t words)
{
	std::vector<std::int16_t> ramp(words);
	for (std::size_t i = 0; i < words; i++)
		ramp[i] = static_cast<std::int16_t>(i * 257);
	for (std::size_t s = 0; s < samples; s++)
		machine.add_sample(numbered("SAMPLE", s + 1), 44100, ramp);
	std::size_t next = 0;
	for (std::size_t p = 0; p < programs; p++) {
		stored_program &made = machine.add_program(numbered("PROGRAM", p + 1), keygroups);
		made.common[15] = static_cast<std::uint8_t>(p & 0x7F);
		for (machine::bytes &block : made.keygroups)
			for (std::size_t z = 0; z < 4 && samples; z++)
				machine::put_name(block, 34 + 24 * z,
					numbered("SAMPLE", next++ % samples + 1));
	}
}

} // namespace velmor
