// demo_usb.cpp - what the virtual USB samplers of the demo and the benchmarks hold

#include "virtual/demo_usb.h"
#include "virtual/demo_content.h"
#include "virtual/demo_disks.h"
#include <cstdio>

namespace velmor
{

namespace
{

struct zone_plan {
	const char *sample;
	std::uint8_t low_velocity = 0, high_velocity = 127;
	int level = 0;   // tenths of a decibel on the Z8, decibels on the S5000
	int panning = 0; // -50 to 50
};

struct keygroup_plan {
	std::uint8_t low, high;
	std::array<std::uint8_t, 4> amp; // attack, decay, sustain, release
	std::uint8_t cutoff;
	std::vector<zone_plan> zones;
};

struct program_plan {
	const char *name;
	std::vector<keygroup_plan> keygroups;
};

struct sound_plan {
	const char *name;
	std::uint8_t note;
	demo_sound (*make)();
};

} // namespace

// clang-format off
static const sound_plan sounds[] = {
	{ "Kick 22in",    36, [] { return kick_drum(44100); } },
	{ "Snare Maple",  38, [] { return snare_drum(44100); } },
	{ "Hat Closed",   42, [] { return hi_hat(44100, 0.1); } },
	{ "Hat Open",     46, [] { return hi_hat(44100, 0.3); } },
	{ "Strings Soft", 60, [] { return string_note(44100, 261.63, 0.2); } },
	{ "Strings Loud", 60, [] { return string_note(44100, 261.63, 0.9); } },
	{ "Finger Bass",  36, [] { return bass_note(44100, 65.41); } },
	{ "Choir Aah",    57, [] { return sung_vowel(44100, 220); } },
};

static const program_plan plans[] = {
	//  low high  att dec sus rel  cut    zones: sample, velocities, level, panning
	{ "Studio Kit", {
		{  35,  36, {  0, 60, 99, 20 }, 100, { { "Kick 22in" } } },
		{  37,  40, {  0, 60, 99, 25 }, 100, { { "Snare Maple", 0, 127, 0, 5 } } },
		{  42,  44, {  0, 60, 99, 10 }, 100, { { "Hat Closed", 0, 127, -6, -15 } } },
		{  46,  46, {  0, 60, 99, 40 }, 100, { { "Hat Open", 0, 127, -6, -15 } } },
	} },
	{ "String Section", {
		{  36,  59, { 45, 70, 90, 62 },  80, { { "Strings Soft", 0, 84 }, { "Strings Loud", 85, 127 } } },
		{  60,  96, { 38, 70, 90, 58 },  90, { { "Strings Soft", 0, 84 }, { "Strings Loud", 85, 127 } } },
	} },
	{ "Finger Bass", {
		{  24,  60, {  0, 72, 60, 30 },  75, { { "Finger Bass" } } },
	} },
	{ "Choir Aah", {
		{  43,  57, { 40, 60, 99, 55 },  85, { { "Choir Aah", 0, 127, 0, -25 } } },
		{  58,  79, { 35, 60, 99, 55 },  95, { { "Choir Aah", 0, 127, 0, 25 } } },
	} },
	{ "Bass+Strings", {
		{  24,  47, {  0, 72, 60, 30 },  75, { { "Finger Bass", 0, 127, 2 } } },
		{  48,  96, { 38, 70, 90, 58 },  90, { { "Strings Soft", 0, 127, -3 }, { "Choir Aah", 64, 127, -9 } } },
	} },
};
// clang-format on

// How each family numbers its playback modes.
struct playback_modes {
	std::uint8_t one_shot, looping;
};
static constexpr playback_modes s5000_modes = { 1, 2 }, z4_modes = { 2, 1 };

static void add_sounds(usb_sampler &machine, playback_modes modes)
{
	for (const sound_plan &s : sounds) {
		const demo_sound sound = s.make();
		const bool loops = sound.loop_last > sound.loop_first;
		machine.add_sample(
			s.name, make_wave(sound.words,
					{ .rate = sound.rate,
						.note = s.note,
						.playback = loops ? modes.looping : modes.one_shot,
						.loop_start = sound.loop_first,
						.loop_end = sound.loop_last }));
	}
}

static std::uint8_t size_of(int value)
{
	return static_cast<std::uint8_t>((value < 0 ? -value : value) & 0x7F);
}

static s5000_keygroup s5000_keygroup_of(const keygroup_plan &plan)
{
	s5000_keygroup k;
	k.at(0x04) = { plan.low };
	k.at(0x05) = { plan.high };
	k.at(0x21) = { plan.cutoff };
	k.amp = plan.amp;
	for (std::size_t i = 0; i < plan.zones.size(); i++) {
		const zone_plan &from = plan.zones[i];
		s5000_zone &z = k.zones[i];
		z.sample = from.sample;
		z.value[0x02] = { from.level < 0, size_of(from.level) };
		z.value[0x03] = { static_cast<std::uint8_t>(from.panning + 64) };
		z.value[0x0B] = { from.high_velocity };
		z.value[0x0C] = { from.low_velocity };
	}
	return k;
}

void fill_demo(s5000 &machine)
{
	machine.name = "Demo S5000";
	machine.shows_pages = true;
	add_sounds(machine, s5000_modes);
	for (const program_plan &plan : plans) {
		machine.programs.push_back({ plan.name, {} });
		for (const keygroup_plan &k : plan.keygroups)
			machine.programs.back().keygroups.push_back(s5000_keygroup_of(k));
	}
	machine.multis = { "Ballad", "Drums+Bass" };
	fill_demo_disks_s5000(&machine.disks);
}

static z4_keygroup z4_keygroup_of(const keygroup_plan &plan)
{
	z4_keygroup k;
	k.low_note = plan.low;
	k.high_note = plan.high;
	for (std::size_t i = 0; i < plan.zones.size(); i++) {
		const int level = plan.zones[i].level * 10;
		const int size = level < 0 ? -level : level;
		k.zones[i].sample = plan.zones[i].sample;
		k.zones[i].level = { level < 0, size_of(size),
			static_cast<std::uint8_t>(size >> 7) };
	}
	return k;
}

void fill_demo(z4 &machine)
{
	machine.name = "Demo Z8";
	machine.shows_pages = true;
	add_sounds(machine, z4_modes);
	for (const program_plan &plan : plans) {
		std::vector<z4_keygroup> keygroups;
		for (const keygroup_plan &k : plan.keygroups)
			keygroups.push_back(z4_keygroup_of(k));
		machine.add_program(plan.name, std::move(keygroups));
	}
	fill_demo_disks_z8(&machine.disks);
}

void fill_for_usb_benchmark(s5000 &machine, std::size_t programs, std::size_t keygroups)
{
	machine.add_sample("SAMPLE 001", make_wave(std::vector<std::int16_t>(1000), {}));
	s5000_keygroup k;
	for (s5000_zone &z : k.zones)
		z.sample = "SAMPLE 001";
	for (std::size_t p = 0; p < programs; p++) {
		char text[32];
		std::snprintf(text, sizeof text, "PROGRAM %03zu", p + 1);
		machine.programs.push_back({ text, std::vector<s5000_keygroup>(keygroups, k) });
	}
}

} // namespace velmor
