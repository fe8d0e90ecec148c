// screen_pages.cpp - the pages that all USB samplers have

#include "virtual/screen_pages.h"
#include "virtual/screen_drawings.h"
#include <cmath>
#include <cstdio>

namespace velmor
{

static screen_row fact(std::string label, std::string value)
{
	return { .label = std::move(label), .value = std::move(value) };
}

static std::string megabytes(std::size_t bytes)
{
	char text[32];
	const int tenths = static_cast<int>(bytes * 10 >> 20);
	std::snprintf(text, sizeof text, "%d.%d MB", tenths / 10, tenths % 10);
	return text;
}

// ---- Multi -------------------------------------------------------------------------------

static std::string program_name(const std::vector<std::string> &programs, int program)
{
	const bool there = program >= 0 && program < static_cast<int>(programs.size());
	return there ? programs[static_cast<std::size_t>(program)] : "--";
}

static screen_rows part_rows(screen &s)
{
	screen_rows rows;
	const std::vector<std::string> programs = s.program_names();
	for (screen_part &part : s.parts)
		rows.push_back({ .label = "PART " + std::to_string(rows.size() + 1),
			.value = program_name(programs, part.program),
			.now = part.program + 1,
			.low = 0,
			.high = static_cast<int>(programs.size()),
			.set = [&part](int value) { part.program = value - 1; } });
	return rows;
}

static screen_rows mix_rows(screen &s)
{
	screen_rows rows;
	const std::vector<std::string> programs = s.program_names();
	for (screen_part &part : s.parts)
		rows.push_back({ .label = std::to_string(rows.size() + 1) + " " +
					  program_name(programs, part.program),
			.value = std::to_string(part.level),
			.now = part.level,
			.low = 0,
			.high = 100,
			.set = [&part](int value) { part.level = value; } });
	return rows;
}

static screen_rows multi_rows(screen &s)
{
	screen_rows rows;
	for (const std::string &name : s.multis())
		rows.push_back(fact(name, ""));
	return rows;
}

// ---- Effects -----------------------------------------------------------------------------

static const char *const effect_kinds[] = { "CHORUS", "DELAY", "ROOM", "HALL", "FLANGER", "PLATE" };

static screen_rows effect_rows(screen &s)
{
	screen_rows rows;
	for (std::size_t i = 0; i < s.effects.size(); i++) {
		screen_effect &e = s.effects[i];
		const std::string name = "FX " + std::to_string(i + 1);
		rows.push_back({ name, effect_kinds[e.kind], e.kind, 0,
			static_cast<int>(std::size(effect_kinds)) - 1,
			[&e](int value) { e.kind = value; } });
		rows.push_back({ name + " LEVEL", std::to_string(e.level), e.level, 0, 100,
			[&e](int value) { e.level = value; } });
		rows.push_back({ name + " STATE", e.on ? "ON" : "OFF", e.on, 0, 1,
			[&e](int value) { e.on = value; } });
	}
	return rows;
}

static std::string bypass_effects(screen &s)
{
	const bool all_off = std::none_of(
		s.effects.begin(), s.effects.end(), [](const screen_effect &e) { return e.on; });
	for (screen_effect &e : s.effects)
		e.on = all_off;
	return all_off ? "EFFECTS ARE ON" : "EFFECTS ARE OFF";
}

// ---- Samples -----------------------------------------------------------------------------

static std::string rename_sample(screen &s, std::size_t place, const std::string &name)
{
	if (find_name(s.machine.samples, name) >= 0)
		return "THIS NAME IS TAKEN";
	s.machine.samples[place].name = name;
	return "";
}

static screen_rows sample_rows(screen &s)
{
	screen_rows rows;
	for (std::size_t i = 0; i < s.machine.samples.size(); i++) {
		const usb_sample &sample = s.machine.samples[i];
		wave_facts f;
		read_wave(sample.wave, &f);
		char length[32];
		const std::uint64_t ms = f.rate ? f.frames * 1000ull / f.rate : 0;
		std::snprintf(length, sizeof length, "%u.%02u s", static_cast<unsigned>(ms / 1000),
			static_cast<unsigned>(ms % 1000 / 10));
		rows.push_back({ .label = sample.name,
			.value = length,
			.name = sample.name,
			.rename = [&s, i](const std::string &n) {
				return rename_sample(s, i, n);
			} });
	}
	return rows;
}

static screen_rows sample_facts(screen &s)
{
	const int place = within(s.chosen.sample, s.machine.samples.size());
	if (place < 0)
		return {};
	wave_facts f;
	read_wave(s.machine.samples[static_cast<std::size_t>(place)].wave, &f);
	return {
		{ .label = "SAMPLE",
			.value = std::to_string(place + 1),
			.now = place + 1,
			.low = 1,
			.high = static_cast<int>(s.machine.samples.size()),
			.set = [&s](int value) { s.chosen.sample = value - 1; } },
		fact("LENGTH", std::to_string(f.frames)),
		fact("RATE", std::to_string(f.rate)),
		fact("FORMAT",
			std::to_string(f.bits) + " BIT " + (f.channels == 1 ? "MONO" : "STEREO")),
		fact("NOTE", note_name(f.note)),
		fact("START", std::to_string(f.start)),
		fact("END", std::to_string(f.end)),
		fact("LOOP FROM", std::to_string(f.loop_start)),
		fact("LOOP TO", std::to_string(f.loop_end)),
	};
}

static std::string name_sample(screen &s)
{
	return s.begin_name(0);
}

// ---- Recording ---------------------------------------------------------------------------

static constexpr int most_recorded = 8; // quarters of a second

static int quarters_recorded(const screen &s)
{
	return std::clamp(s.recording - 1, 0, most_recorded);
}

static screen_rows input_rows(screen &s)
{
	const int quarters = quarters_recorded(s);
	return {
		{ "GAIN", std::to_string(s.input_gain), s.input_gain, 0, 100,
			[&s](int value) { s.input_gain = value; } },
		fact("INPUT", "ANALOGUE"),
		fact("RATE", "44100"),
		fact("RECORDED", std::to_string(quarters / 4) + "." +
					 std::to_string(quarters % 4 * 25 / 10) + " s"),
	};
}

// What is at the input is a tone that swells and fades, as the meter shows it.
static std::vector<std::int16_t> tone_at_input(int quarters, int gain)
{
	constexpr int rate = 44100;
	std::vector<std::int16_t> words(static_cast<std::size_t>(quarters * rate / 4));
	for (std::size_t i = 0; i < words.size(); i++) {
		const double t = static_cast<double>(i) / rate;
		const double level = 320.0 * gain * std::fabs(std::sin(3 * t));
		words[i] = static_cast<std::int16_t>(level * std::sin(6.2831853 * 220 * t));
	}
	return words;
}

static std::string record(screen &s)
{
	if (s.recording == 0) {
		s.recording = 1;
		return "RECORDING";
	}
	std::string name = "Recording 1";
	for (int n = 2; find_name(s.machine.samples, name) >= 0; n++)
		name = "Recording " + std::to_string(n);
	s.machine.add_sample(name,
		make_wave(tone_at_input(std::max(1, quarters_recorded(s)), s.input_gain), {}));
	s.recording = 0;
	return name + " IS MADE";
}

// ---- Utilities ---------------------------------------------------------------------------

static screen_rows system_rows(screen &s)
{
	const auto rename = [&s](const std::string &name) {
		s.machine.name = name;
		return std::string();
	};
	return {
		{ .label = "NAME",
			.value = s.machine.name,
			.name = s.machine.name,
			.rename = rename },
		fact("MODEL", s.model()),
		fact("VERSION", std::to_string(s.machine.version_major) + "." +
					std::to_string(s.machine.version_minor)),
		fact("EXCLUSIVE CHANNEL", std::to_string(s.machine.channel)),
	};
}

static screen_rows memory_rows(screen &s)
{
	return {
		fact("PROGRAMS", std::to_string(s.program_names().size())),
		fact("SAMPLES", std::to_string(s.machine.samples.size())),
		fact("USED", megabytes(s.memory_used())),
		fact("FREE", megabytes(screen_memory - s.memory_used())),
	};
}

static screen_rows key_rows(screen &s)
{
	return { fact("LAST KEY", s.last_key.empty() ? "--" : s.last_key),
		fact("KEYS AND TURNS", std::to_string(s.machine.key_presses.size())) };
}

static std::string name_machine(screen &s)
{
	return s.begin_name(0);
}

// ---- Disks -------------------------------------------------------------------------------

static const disk_volume *volume_now(screen &s)
{
	return entry(
		s.machine.disks.volumes, within(s.chosen.disk, s.machine.disks.volumes.size()));
}

static screen_rows disk_rows(screen &s)
{
	static const char *const types[] = { "FLOPPY", "DISK", "CD" };
	screen_rows rows;
	for (const disk_volume &v : s.machine.disks.volumes)
		rows.push_back(fact(v.name, (v.type < std::size(types) ? types[v.type] : "?") +
						    std::string(v.writable ? "" : " LOCKED")));
	return rows;
}

struct folder_view {
	const std::vector<disk_folder> *folders;
	const std::vector<disk_file> *files;
};

// The folder that is open. What is not there any more is left for the one above.
static bool folder_now(screen &s, folder_view *view)
{
	const disk_volume *volume = volume_now(s);
	if (!volume || volume->ejected)
		return false;
	*view = { &volume->folders, &volume->files };
	for (std::size_t i = 0; i < s.chosen.folders.size(); i++) {
		const disk_folder *next =
			entry(*view->folders, find_name(*view->folders, s.chosen.folders[i]));
		if (!next) {
			s.chosen.folders.resize(i);
			break;
		}
		*view = { &next->folders, &next->files };
	}
	return true;
}

static screen_rows folder_rows(screen &s)
{
	screen_rows rows;
	folder_view view;
	if (!folder_now(s, &view))
		return rows;
	for (const disk_folder &f : *view.folders)
		rows.push_back(fact("\\" + f.name, "FOLDER"));
	for (const disk_file &f : *view.files)
		rows.push_back(fact(f.name, std::to_string((f.size + 1023) / 1024) + " K"));
	return rows;
}

static std::string open_disk(screen &s)
{
	s.chosen.folders.clear();
	s.chosen.entry = 0;
	folder_view view;
	if (!folder_now(s, &view))
		return "NO DISK IS IN IT";
	s.show_page(1);
	return "";
}

static std::string open_folder(screen &s)
{
	folder_view view;
	if (!folder_now(s, &view))
		return "NO DISK IS IN IT";
	const disk_folder *f = entry(*view.folders, s.chosen.entry);
	if (!f)
		return view.files->empty() ? "NOTHING TO OPEN" : "THIS IS A FILE";
	s.chosen.folders.push_back(f->name);
	s.chosen.entry = 0;
	return "";
}

static std::string open_entry(screen &s)
{
	return s.page_number() == 0 ? open_disk(s) : open_folder(s);
}

static std::string go_up(screen &s)
{
	if (s.chosen.folders.empty()) {
		s.show_page(0);
		return "";
	}
	s.chosen.folders.pop_back();
	s.chosen.entry = 0;
	return "";
}

static std::string load_entry(screen &)
{
	return "THIS DISK HOLDS NAMES ONLY";
}

static screen_rows save_rows(screen &s)
{
	return {
		fact("PROGRAMS", std::to_string(s.program_names().size())),
		fact("SAMPLES", std::to_string(s.machine.samples.size())),
		fact("MULTIS", std::to_string(s.multis().size())),
		fact("SIZE", megabytes(s.memory_used())),
	};
}

static std::string save_all(screen &s)
{
	const disk_volume *v = volume_now(s);
	return !v            ? "THERE IS NO DISK"
	       : v->ejected  ? "NO DISK IS IN IT"
	       : v->writable ? "THIS DISK HOLDS NAMES ONLY"
			     : "THIS DISK IS LOCKED";
}

// ---- Programs ----------------------------------------------------------------------------

screen_rows program_rows(screen &s)
{
	screen_rows rows;
	for (const std::string &name : s.program_names()) {
		const int place = static_cast<int>(rows.size());
		rows.push_back({ .label = name,
			.value = std::to_string(s.keygroups(place)) + " KG",
			.name = name,
			.rename = [&s, place](const std::string &n) {
				return s.rename_program(place, n);
			} });
	}
	return rows;
}

screen_row keygroup_row(screen &s)
{
	s.chosen.program = std::max(0, within(s.chosen.program, s.program_names().size()));
	const int count = s.keygroups(s.chosen.program);
	if (count < 1)
		return fact("KEYGROUP", "NONE");
	s.chosen.keygroup = within(s.chosen.keygroup, static_cast<std::size_t>(count));
	return { .label = "KEYGROUP",
		.value = std::to_string(s.chosen.keygroup + 1) + "/" + std::to_string(count),
		.now = s.chosen.keygroup + 1,
		.low = 1,
		.high = count,
		.set = [&s](int value) { s.chosen.keygroup = value - 1; } };
}

std::string name_program(screen &s)
{
	return s.begin_name(0);
}

std::string add_keygroup(screen &s)
{
	if (!s.add_keygroup(s.chosen.program))
		return "NO ROOM FOR MORE";
	s.chosen.keygroup = s.keygroups(s.chosen.program) - 1;
	return "KEYGROUP " + std::to_string(s.chosen.keygroup + 1) + " IS NEW";
}

screen_row sample_row(screen &s, std::string *sample)
{
	const int place = find_name(s.machine.samples, *sample);
	return { .label = "SAMPLE",
		.value = sample->empty() ? "--"
			 : place < 0     ? "? " + *sample
					 : *sample,
		.now = place + 1,
		.low = 0,
		.high = static_cast<int>(s.machine.samples.size()),
		.set = [&s, sample](int value) {
			*sample =
				value ? s.machine.samples[static_cast<std::size_t>(value - 1)].name
				      : "";
		} };
}

// ---- By mode -----------------------------------------------------------------------------

static const screen_page multi_pages[] = {
	{ "PARTS", "MULTI", part_rows },
	{ "MIX", "MULTI: MIX", mix_rows, draw_mix },
	{ "MULTIS", "MULTIS", multi_rows, nullptr, &screen_choice::multi },
};
static const screen_page effect_pages[] = { { "UNITS", "EFFECTS", effect_rows, draw_effects } };
static const screen_action effect_actions[] = { { "BYPASS", bypass_effects } };

static const screen_page sample_pages[] = {
	{ "LIST", "SAMPLES", sample_rows, draw_wave, &screen_choice::sample },
	{ "WAVE", "SAMPLE", sample_facts, draw_wave },
};
static const screen_action sample_actions[] = { { "NAME", name_sample } };

static const screen_page record_pages[] = { { "INPUT", "RECORD", input_rows, draw_meter } };
static const screen_action record_actions[] = { { "RECORD", record } };

static const screen_page utility_pages[] = {
	{ "SYSTEM", "UTILITIES", system_rows },
	{ "MEMORY", "MEMORY", memory_rows, draw_memory },
	{ "KEYS", "TRY THE KEYS", key_rows },
};
static const screen_action utility_actions[] = { { "NAME", name_machine } };

static const screen_page save_pages[] = {
	{ "ALL", "SAVE", save_rows },
	{ "DISK", "SAVE ON", disk_rows, nullptr, &screen_choice::disk },
};
static const screen_action save_actions[] = { { "SAVE", save_all } };

static const screen_page load_pages[] = {
	{ "DISKS", "LOAD", disk_rows, nullptr, &screen_choice::disk, open_disk },
	{ "FOLDER", "LOAD FROM", folder_rows, nullptr, &screen_choice::entry, open_folder },
};
static const screen_action load_actions[] = {
	{ "OPEN", open_entry },
	{ "UP", go_up },
	{ "LOAD", load_entry },
};

screen::mode_table with_program_pages(const screen_mode_pages &own)
{
	return { {
		{ multi_pages, {} },
		{ effect_pages, effect_actions },
		{ sample_pages, sample_actions },
		own,
		{ record_pages, record_actions },
		{ utility_pages, utility_actions },
		{ save_pages, save_actions },
		{ load_pages, load_actions },
	} };
}

} // namespace velmor
