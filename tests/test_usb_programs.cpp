// test_usb_programs.cpp - programs saved, deleted and renamed on a virtual S5000, Z4 and MPC 4000
//
// What is expected of each request stands in tables of its own, read from the format once more:
// item, how the value is counted, and the field, in the order of writing.

#include "src/akaiprograms.h"
#include "src/akais5000.h"
#include "src/akaiz4.h"
#include "tests/support/test_host.h"
#include "tests/support/told.h"
#include "tests/support/told_format.h"
#include "virtual/s5000.h"
#include "virtual/usb_bus.h"
#include "virtual/z4.h"

namespace velmor
{
namespace
{

using K = _keygroup;
using Z = _keyzone;
using payloads = std::vector<usb_bytes>;

// ---- The format of the S5000, read once more --------------------------------------------------

// Items follow each other; those of a special run are the sub-indexes of one item, from 1.
// clang-format off
const told_runs<K> blocks[3] = {
	{ { 0x04, '7', { &K::low_note, &K::high_note, &K::mute_group, &K::fx_override, &K::fx_sendlevel, &K::crossfade } },
	  { 0x12, '7', { &K::s5000_keygroup_level } }, { 0x10, 'g', { &K::s5000_semitone_tune, &K::s5000_fine_tune } },
	  { 0x13, 'g', { &K::s5000_pitch_mod1_val, &K::s5000_pitch_mod2_val }, true }, { 0x14, 'g', { &K::s5000_amp_mod1_val }, true } },
	{ { 0x20, '7', { &K::s5000_filter_mode, &K::s5000_filter_cutoff, &K::s5000_filter_resonance } },
	  { 0x23, 'g', { &K::s5000_filter_keyboard_track } },
	  { 0x24, 'g', { &K::s5000_filter_mod1_input, &K::s5000_filter_mod2_input, &K::s5000_filter_mod3_input }, true },
	  { 0x25, '7', { &K::s5000_filter_attenuation } } },
	{ { 0x30, '7', { &K::filter_attack } }, { 0x31, 'g', { &K::s1000_env1_velocity_attack } },
	  { 0x32, '7', { &K::filter_decay, &K::filter_sustain, &K::filter_release } },
	  { 0x35, 'g', { &K::s5000_env1_on_velocity_release, &K::s1000_env1_key_scaling, &K::s5000_env1_depth,
	                        &K::s1000_env1_off_velocity_release } } },
};
const told_runs<K> singles = {
	{ 0x04, '7', { &K::low_note, &K::high_note } }, { 0x50, '7', { &K::amp_attack } },
	{ 0x52, '7', { &K::amp_decay, &K::amp_sustain, &K::amp_release } },
	{ 0x60, '7', { &K::aux_rate1, &K::aux_rate2, &K::aux_rate3, &K::aux_rate4 }, true },
	{ 0x63, '7', { &K::aux_rate1_level, &K::aux_rate2_level, &K::aux_rate3_level, &K::aux_rate4_level }, true },
};
const told_runs<Z> of_zone = {
	{ 0x01, 'x', { &Z::samplename } }, { 0x0B, '7', { &Z::high_velocity, &Z::low_velocity } },
	{ 0x02, 'l', { &Z::zone_level } }, { 0x03, 'p', { &Z::zone_panning } }, { 0x04, '7', { &Z::zone_output } },
	{ 0x05, 'g', { &Z::zone_filter, &Z::fine_tune, &Z::semitone_tune } }, { 0x0A, 'v', { &Z::velocity_start } },
	{ 0x08, '7', { &Z::zone_keyboard_track, &Z::zone_playback } }, { 0x0D, '7', { &Z::zone_mute, &Z::zone_solo } },
};
// clang-format on

usb_bytes join(usb_bytes a, const usb_bytes &b)
{
	a.insert(a.end(), b.begin(), b.end());
	return a;
}

usb_bytes with_text(usb_bytes head, std::string_view text, bool zero = true)
{
	head.insert(head.end(), text.begin(), text.end());
	if (zero)
		head.push_back(0);
	return head;
}

// The item of a field, with its sub-index.
template <typename record> usb_bytes item_of(const told_run<record> &run, u8 i)
{
	const auto at = static_cast<u8>(run.at);
	return run.special ? usb_bytes{ at, ++i } : usb_bytes{ static_cast<u8>(at + i) };
}

usb_bytes told_block(int which, const K &k, usb_bytes head)
{
	each_told<K>(blocks[which], k, [&](const auto &run, u8 i, const usb_bytes &value) {
		usb_bytes group = join(item_of(run, i), value);
		group.resize(4);
		head = join(head, group);
	});
	if (which == 2)
		head.pop_back();
	return head;
}

// Everything that one keygroup is sent, of a program at that index; added says that the sampler
// lacks it.
void told_keygroup(const K &k, u8 high, u8 low, u8 kg, bool added, payloads *all)
{
	for (int which = 0; which < 3; which++)
		all->push_back(told_block(which, k, { 0x3A, high, low, kg }));
	all->insert(all->end(), { { 0x08, 0x01, kg }, { 0x08, 0x02 } });
	if (added)
		all->insert(
			all->end(), { { 0x0A, 0x0B, 0x01 }, { 0x08, 0x01, kg }, { 0x08, 0x02 } });
	each_told<K>(singles, k, [&](const auto &run, u8 i, const usb_bytes &value) {
		all->push_back(join(join({ 0x08 }, item_of(run, i)), value));
	});
	for (u8 z = 1; z <= std::min(k.keyzones, 4); z++)
		each_told<Z>(of_zone, k.keyzone[z - 1],
			[&](const auto &run, u8 i, const usb_bytes &value) {
				all->push_back(join({ 0x06, item_of(run, i)[0], z }, value));
			});
}

void fill_program(_program &p, const char *name, int keygroups, int zones, int pass)
{
	int seed = 0;
	copy_text(p.name, name);
	p.keygroups = keygroups;
	p.polyphony = pass == 0 ? 0 : 64;
	p.s1000_reasignement = pass == 1;
	for (int kg = 0; kg < keygroups; kg++) {
		K &k = p.keygroup[kg];
		k.keyzones = zones;
		for (const auto &block : blocks)
			fill_told(block, k, pass, &seed);
		fill_told(singles, k, pass, &seed);
		for (Z &zone : k.keyzone)
			fill_told(of_zone, zone, pass, &seed);
	}
}

// ---- A machine that is heard ----------------------------------------------------------------

void add_programs(s5000 &m, std::size_t keygroups = 2)
{
	for (const char *name : { "FIRST", "Target", "LAST" })
		m.programs.push_back({ name, std::vector<s5000_keygroup>(keygroups) });
}

void add_programs(z4 &m, std::size_t keygroups = 2)
{
	for (const char *name : { "FIRST", "Target", "LAST" })
		m.add_program(name, std::vector<z4_keygroup>(keygroups));
}

class usb_programs : public host_test
{
protected:
	void plug(usb_sampler &m, i32 model)
	{
		machine = &m;
		m.name = "Studio";
		host.usb = &virtual_usb;
		plug_usb(h.time, m);
		init_usb(1);
		h.use_sampler(model, 0, "Studio");
		row = get_sampler(model);
		current_sampler->status->programs = 1;
	}
	void unplug()
	{
		unplug_all_usb();
		usbdev.clear();
		usbdevs = usb_init_done = 0;
	}
	void TearDown() override
	{
		EXPECT_FALSE(usb_in_use());
		unplug();
	}
	_program &record() { return current_sampler->status->program[0]; }
	// The payloads of the frames that one operation sends, behind those of the opening.
	payloads sent(const std::function<void()> &operation)
	{
		const bool is_s5000 = row->sampler_type == model_s5000;
		const std::size_t head = is_s5000 ? 9 : 7, tail = is_s5000 ? 2 : 1;
		machine->recorded.clear();
		machine->record = true;
		operation();
		machine->record = false;
		payloads all;
		for (const usb_crossing &c : machine->recorded)
			if (c.from_host && c.bytes.size() > head && c.bytes[0] == 0x10)
				all.emplace_back(c.bytes.begin() + static_cast<long>(head),
					c.bytes.end() - static_cast<long>(tail));
		if (is_s5000 && !all.empty())
			all.erase(all.begin()); // the query of the opening
		return all;
	}
	static std::string lines(const payloads &all)
	{
		std::string text;
		for (const usb_bytes &one : all)
			text += hex_text(one) + "\n";
		return text;
	}
	void expect_sent(const std::function<void()> &operation, const payloads &expected)
	{
		EXPECT_EQ(lines(sent(operation)), lines(expected));
	}
	template <class sampler> void strike_everywhere(i32 model, int operation);

	usb_sampler *machine = nullptr;
	_sampler_type *row = nullptr;
};

// ---- The S5000 --------------------------------------------------------------------------------

payloads selected(u8 section, u8 select, u8 name, const char *text)
{
	return { with_text({ section, select }, text), { section, name } };
}

// Read back, it is the record, but for the blocks of an added keygroup and the velocity start,
// which is not read as it is written.
void expect_same(const K &sent, K read, bool added)
{
	for (const auto &block : akai_s5000_keygroup_blocks)
		EXPECT_NE(told(block, read) == told(block, sent), added);
	EXPECT_EQ(read.low_note, sent.low_note);
	EXPECT_EQ(told(akai_s5000_keygroup_values, read), told(akai_s5000_keygroup_values, sent));
	for (int z = 0; z < std::min(sent.keyzones, 4); z++) {
		read.keyzone[z].velocity_start = sent.keyzone[z].velocity_start;
		EXPECT_EQ(told(akai_s5000_zone_values, read.keyzone[z]),
			told(akai_s5000_zone_values, sent.keyzone[z]));
	}
}

// Five fields of a zone keep their magnitude, those of a block their sign.
void expect_left(const K &left, const K &was)
{
	const Z &zone = left.keyzone[0], &before = was.keyzone[0];
	for (const auto of : { &Z::zone_level, &Z::zone_filter, &Z::fine_tune, &Z::semitone_tune,
		     &Z::velocity_start })
		EXPECT_EQ(zone.*of, std::abs(before.*of));
	EXPECT_EQ(zone.zone_panning, before.zone_panning);
	EXPECT_EQ(left.s5000_fine_tune, was.s5000_fine_tune);
}

TEST_F(usb_programs, an_s5000_is_sent_every_field_at_its_extremes)
{
	const auto before = std::make_unique<_program>();
	for (int pass = 0; pass < 8; pass++) {
		SCOPED_TRACE(pass);
		const bool create = pass >= 4;
		const u8 place = create ? 130 : 1, there = create ? 1 : 2;
		s5000 m;
		add_programs(m);
		m.programs.resize(create ? 130 : 3, { "OTHER", {} });
		plug(m, model_s5000);
		fill_program(record(), create ? "New" : "Target", 3, pass % 4 + 2, pass % 4);
		*before = record();
		payloads expected = selected(0x0A, 0x05, 0x13, before->name);
		if (create)
			expected.insert(
				expected.end(), { with_text({ 0x0A, 0x02 }, "New"),
							with_text({ 0x0A, 0x05 }, "New", false) });
		expected.push_back({ 0x0A, 0x12 });
		for (u8 kg = 1; kg <= 3; kg++)
			told_keygroup(before->keygroup[kg - 1], place >> 7, place & 0x7F, kg,
				kg > there, &expected);
		expect_sent([&] { row->saveprogram(0, pass ? nullptr : &record()); }, expected);
		EXPECT_TRUE(h.boxes.empty());
		EXPECT_FALSE(h.progress.visible);
		EXPECT_EQ(h.progress.range, 4);
		EXPECT_EQ(h.progress.value, 2);
		EXPECT_EQ(program_outcome.words,
			format_text("The sampler added %s without their tuning, filter and filter "
				    "envelope, which take saving once more.",
				create ? "2 keygroups" : "1 keygroup"));
		EXPECT_TRUE(save_once_more);
		expect_left(record().keygroup[0], before->keygroup[0]);
		current_sampler->status->status = 1;
		row->getproglist(1, 0, current_sampler->status);
		const _program &held = current_sampler->status->program[place];
		ASSERT_EQ(held.keygroups, 3);
		for (int kg = 0; kg < 3; kg++)
			expect_same(before->keygroup[kg], held.keygroup[kg], kg >= there);
		unplug();
	}
}

TEST_F(usb_programs, words_of_an_s5000)
{
	s5000 m;
	add_programs(m);
	plug(m, model_s5000);
	fill_program(record(), "Target", 3, 0, 2);
	record().keygroup[0].keyzones = 1;
	record().keygroup[0].keyzone[0].velocity_start = -200;
	record().keygroup[0].keyzone[0].zone_level = -200;
	record().keygroup[0].keyzone[0].fine_tune = 200; // eight bits, and refused
	const payloads all = sent([&] { row->saveprogram(0, nullptr); });
	const auto has = [&](const char *text) {
		return std::find(all.begin(), all.end(), hex(text)) != all.end();
	};
	EXPECT_TRUE(has("06 0A 01 01 01 48") && has("06 02 01 01 48") && has("06 06 01 00 C8"));
	EXPECT_EQ(h.progress.caption, "Uploading Program [Target]...");
	expect_logged({ "[D] Saving Program [Target], Keygroups: 3",
		"[D] S5000 verified current-name --> UPDATE, Keygroups: 3",
		"[D] DADIDADA Selected Keygroup: 3/3 <> 2",
		"[D] Selected Keygroup: 3 <> 2 --> Creating a new one!",
		"[D] Selected Keygroup: 3 <> 3\n", "[D] WE-ARE-RIGHT!!! Selected Keygroup: 3 <> 3",
		"[D] ------> BLOCKSETTINGANSWER: [11 Bytes] [F0 47 5E 00 00 00 45 3A 00 03 "
		"F7]" });
	EXPECT_TRUE(h.logged("[D] ------> SETTING KEYGROUP(1) BLOCK-DATA (39 Bytes) [" +
			     hex_text(told_block(2, record().keygroup[0], { 0x3A, 0, 1, 1 })) +
			     "][3]"));
	EXPECT_TRUE(program_outcome.words.ends_with("The sampler refused 1 value."));
	expect_sent([&] { row->renameprogram(0, "New"); },
		{ with_text({ 0x0A, 0x05 }, "Target"), { 0x0A, 0x13 },
			with_text({ 0x0A, 0x09 }, "New") });
	EXPECT_TRUE(h.logged("[D] Renaming Program [Target] --> [New]"));
	EXPECT_STREQ(record().name, "Target");
	copy_text(record().name, "New");
	expect_sent([&] { row->deleteprogram(0); },
		{ with_text({ 0x0A, 0x05 }, "New"), { 0x0A, 0x13 }, { 0x0A, 0x08 } });
	expect_logged({ "[D] Deleting Program [New]", "[D] S5000 verified current-name!" });
	EXPECT_EQ(m.programs.size(), 2u);
	EXPECT_TRUE(h.boxes.empty());
}

TEST_F(usb_programs, an_s5000_deletes_and_renames_nothing_but_what_is_named)
{
	s5000 m;
	add_programs(m);
	plug(m, model_s5000);
	for (const char *word : { "DELETE", "RENAME" }) {
		copy_text(record().name, "target");
		const auto before = m.programs;
		h.forget_log();
		expect_sent(
			[&] {
				if (word[0] == 'D')
					row->deleteprogram(0);
				else
					row->renameprogram(0, "X");
			},
			selected(0x0A, 0x05, 0x13, "target"));
		EXPECT_TRUE(m.programs == before);
		const shown_box box = h.boxes.back();
		EXPECT_EQ(box.caption, "FATAL");
		EXPECT_TRUE(box.text.starts_with(
			format_text("[F] %s FAILED (akais5000_programs.cpp:", word)));
		EXPECT_TRUE(box.text.ends_with(") SYSEX"));
		EXPECT_TRUE(h.logged(box.text));
		EXPECT_FALSE(h.logged("[D] USB Device closed SYSEX-CHANNEL: [0]")) << "left open";
		EXPECT_FALSE(usb_in_use());
		current_sampler->status->status = 1;
		row->getproglist(1, 0, current_sampler->status);
		EXPECT_EQ(current_sampler->status->programs, 3) << "the next operation works";
		EXPECT_TRUE(h.logged("[D] USB Device closed SYSEX-CHANNEL: [0]"));
	}
	usbdev.clear();
	row->saveprogram(0, nullptr);
	EXPECT_EQ(h.boxes.back(), (shown_box{ "Cannot connect to sampler", "INFO" }));
	EXPECT_FALSE(h.progress.visible);
	init_usb(1);
	m.held = true;
	EXPECT_THROW(row->deleteprogram(0), process_ended);
	EXPECT_EQ(h.boxes.back(), (shown_box{ "Failed to open USB-Device!", "INFO" }));
}

TEST_F(usb_programs, an_s5000_that_refuses_is_told)
{
	s5000 m;
	add_programs(m);
	m.programs[1].keygroups.resize(99);
	const auto before = m.programs;
	plug(m, model_s5000);
	fill_program(record(), "", 1, 1, 2); // no name for a program
	row->saveprogram(0, nullptr);
	EXPECT_TRUE(m.programs == before) << "another one is current, and stays as it is";
	EXPECT_EQ(program_outcome.how, ending::refused);
	fill_program(record(), "Target", 100, 1, 2);
	row->saveprogram(0, nullptr);
	EXPECT_TRUE(h.boxes.back().text.starts_with("[F] SAVE FAILED (akais5000_programs.cpp:"));
	EXPECT_TRUE(h.progress.visible) << "as it is told";
	EXPECT_EQ(program_outcome.words,
		"The sampler did not do what was asked. The program on the sampler may hold only a "
		"part of the changes.");
}

// ---- The Z4 and the MPC 4000 ----------------------------------------------------------------------

payloads told_z4_save(const _program &p, int held)
{
	payloads all = selected(0x14, 0x04, 0x06, p.name);
	all.push_back({ 0x16, 0x10, static_cast<u8>(p.polyphony) });
	all.push_back({ 0x16, 0x11, p.s1000_reasignement });
	for (u8 kg = 0; kg < p.keygroups; kg++) {
		const K &k = p.keygroup[kg];
		all.insert(all.end(), { { 0x10, 0x01, kg }, { 0x10, 0x02 } });
		if (kg >= held)
			all.insert(all.end(),
				{ { 0x14, 0x41, 0x01 }, { 0x10, 0x01, kg }, { 0x10, 0x02 } });
		all.insert(all.end(), { { 0x12, 0x04, k.low_note }, { 0x12, 0x05, k.high_note } });
		for (u8 z = 1; z <= std::min(k.keyzones, 4); z++) {
			const i32 level = k.keyzone[z - 1].zone_level, size = std::abs(level);
			all.push_back(with_text({ 0x0E, 0x01, z }, k.keyzone[z - 1].samplename));
			all.push_back({ 0x0E, 0x02, z, u8{ level < 0 },
				static_cast<u8>(size & 0x7F), static_cast<u8>(size >> 7 & 0x7F) });
		}
	}
	return all;
}

TEST_F(usb_programs, a_z4_is_sent_what_it_is_asked_for)
{
	for (const i32 model : { model_z4, model_mpc4000 })
		for (int pass = 0; pass < 3; pass++)
			for (const std::size_t held : { 0u, 2u }) {
				SCOPED_TRACE(pass);
				z4 m(model == model_z4 ? z4_model::z8 : z4_model::mpc4000);
				add_programs(m);
				m.programs[1].keygroups.resize(held);
				plug(m, model);
				fill_program(
					record(), "Target", 18, pass == 2 ? 8 : 2 + pass, pass);
				record().keygroup[0].keyzone[0].zone_level = -200;
				record().keygroup[0].keyzone[1].zone_level = -16383;
				const payloads expected =
					told_z4_save(record(), static_cast<int>(held));
				expect_sent([&] { row->saveprogram(0, nullptr); }, expected);
				EXPECT_EQ(record().keygroup[0].keyzone[0].zone_level, -200);
				const z4_program &p = m.programs[1];
				ASSERT_EQ(p.keygroups.size(), 18u);
				EXPECT_EQ(p.polyphony, record().polyphony);
				EXPECT_EQ(p.reassignment, record().s1000_reasignement);
				for (std::size_t kg = 0; kg < 18; kg++) {
					EXPECT_EQ(p.keygroups[kg].high_note,
						record().keygroup[kg].high_note);
					EXPECT_EQ(p.keygroups[kg].zones[1].sample,
						record().keygroup[kg].keyzone[1].samplename);
				}
				EXPECT_EQ(hex_text(p.keygroups[0].zones[0].level), "01 48 01");
				EXPECT_TRUE(h.boxes.empty());
				EXPECT_TRUE(
					program_outcome.done() && program_outcome.words.empty());
				unplug();
			}
}

TEST_F(usb_programs, words_of_a_z4)
{
	z4 m;
	add_programs(m);
	plug(m, model_z4);
	fill_program(record(), "Target", 3, 1, 2);
	record().keygroup[0].keyzone[0].zone_level = -200;
	row->saveprogram(0, &record());
	expect_logged({ "[D] Saving/updating Z4 Program 0 (Target)",
		"[D] LOADED PROGRAM: [Target].We are UPDATING",
		"[D] SELECTING KEYGROUP VERIFICATION: 2 <> 1", "[D] CREATED NEW KEYGROUP : 2",
		"[D] CREATED KEYGROUP VERIFICATION: 2 <> 2",
		"[D] Update for ZONE_LEVEL-REQUEST: 6 [0E 02 01 01 48 01] (200)",
		"[D] Update for ZONE_LEVEL-RESPONSE: 8 [F0 47 5F 00 44 0E 02 F7]" });
	expect_sent([&] { row->renameprogram(0, "New"); },
		{ with_text({ 0x14, 0x04 }, "Target"), with_text({ 0x14, 0x0C }, "New") });
	EXPECT_TRUE(h.logged("[D] Renaming Z4 Program 0 (Target) to (New)"));
	// The old name is unknown now: nothing is created, deleted or renamed.
	expect_sent([&] { row->saveprogram(0, nullptr); }, selected(0x14, 0x04, 0x06, "Target"));
	EXPECT_TRUE(h.logged("[D] LOADED PROGRAM: [New].We are CREATING"));
	expect_sent([&] { row->deleteprogram(0); }, { with_text({ 0x14, 0x04 }, "Target") });
	EXPECT_EQ(program_outcome.how, ending::refused);
	expect_sent([&] { row->renameprogram(0, "X"); }, { with_text({ 0x14, 0x04 }, "Target") });
	EXPECT_EQ(m.programs.size(), 3u);
	copy_text(record().name, "New");
	expect_sent([&] { row->deleteprogram(0); },
		{ with_text({ 0x14, 0x04 }, "New"), { 0x14, 0x0A } });
	EXPECT_TRUE(h.logged("[D] Deleting Z4 Program 0 (New)"));
	EXPECT_EQ(m.programs.size(), 2u);
	EXPECT_TRUE(h.boxes.empty());
	copy_text(record().name, "LAST");
	m.programs[1].keygroups.resize(127);
	fill_program(record(), "LAST", 128, 0, 2);
	row->saveprogram(0, nullptr);
	EXPECT_EQ(m.programs[1].keygroups.size(), 128u);
	usbdev.clear();
	row->saveprogram(0, nullptr);
	EXPECT_TRUE(h.logged("WARNING! USB Device not found!"));
}

// ---- Faults and Stop ------------------------------------------------------------------------------

// Whatever happens, the operation ends, touches no other program, is told as done only when it
// is, and the next one works.
template <class sampler> void usb_programs::strike_everywhere(i32 model, int operation)
{
	current_run_mode.diagnostics = false;
	decltype(sampler::programs) healthy;
	int writes = 0;
	const auto run = [&](const std::function<void(sampler &)> &spoil, bool stops = false) {
		sampler m;
		add_programs(m, 1);
		plug(m, model);
		fill_program(record(), "Target", 2, 1, 2);
		const auto before = m.programs;
		h.boxes.clear();
		const int written = m.writes;
		spoil(m);
		const double began = h.time.now();
		try {
			if (operation == 0)
				row->saveprogram(0, nullptr);
			if (operation == 1)
				row->deleteprogram(0);
			if (operation == 2)
				row->renameprogram(0, "New");
		} catch (const process_ended &) {
		}
		EXPECT_LT(h.time.now() - began, 40);
		EXPECT_FALSE(usb_in_use());
		const auto after = m.programs;
		const bool told_done = program_outcome.done() && h.boxes.empty();
		if (healthy.empty())
			healthy = after, writes = m.writes - written;
		EXPECT_TRUE(!told_done || after == healthy);
		EXPECT_TRUE(!stops || program_outcome.how == ending::stopped);
		EXPECT_FALSE(stops && h.progress.visible);
		EXPECT_TRUE(after.front() == before.front() && after.back() == before.back());
		EXPECT_TRUE(after.size() == 3 || (operation == 1 && after.size() == 2));
		h.on_pump = nullptr;
		hide_progressbar(0);
		m.troubles.clear();
		unplug();
		plug(m, model);
		fill_program(record(), "LAST", 1, 1, 2);
		h.boxes.clear();
		row->saveprogram(0, nullptr);
		EXPECT_TRUE(h.boxes.empty() && program_outcome.done());
		unplug();
	};
	run([](sampler &) {});
	for (int fault = 1; fault <= static_cast<int>(usb_fault::unplugged_answering); fault++)
		for (int at = 1; at <= writes; at++) {
			SCOPED_TRACE(format_text("fault %d at write %d", fault, at));
			run([&](sampler &m) {
				usb_trouble &trouble = m.strike(static_cast<usb_fault>(fault), at);
				trouble.seconds = 7;
				trouble.bytes = 3;
			});
		}
	for (int at = 1; at <= writes; at++) {
		SCOPED_TRACE(format_text("stop at write %d", at));
		run(
			[&](sampler &m) {
				h.on_pump = [&m, this, end = m.writes + at] {
					if (m.writes >= end)
						stop_progress();
				};
			},
			operation == 0 && at <= writes / 3);
	}
}

TEST_F(usb_programs, faults_at_every_exchange_of_an_s5000)
{
	for (const int operation : { 0, 1, 2 })
		strike_everywhere<s5000>(model_s5000, operation);
}

TEST_F(usb_programs, faults_at_every_exchange_of_a_z4)
{
	for (const int operation : { 0, 1, 2 })
		strike_everywhere<z4>(model_z4, operation);
}

} // namespace
} // namespace velmor
