// test_programs_workflow.cpp - programs between the sampler, the page and this computer

#include "src/akaiprograms.h"
#include "src/usbqx.h"
#include "src/velmor_library.h"
#include "src/velmor_programs_page.h"
#include "src/waveqx.h"
#include "tests/support/fake_model.h"
#include "virtual/demo_content.h"
#include "virtual/midi_ports.h"
#include "virtual/s1000.h"
#include "virtual/s5000.h"
#include "virtual/usb_bus.h"

#include "tests/support/wave_files.h" // behind what declares bytes of its own

namespace velmor
{
namespace
{

using boxes = std::vector<shown_box>;
using lines = std::vector<std::string>;
constexpr int low_note = 3; // in the machine's block of a keygroup

class programs : public host_test
{
protected:
	~programs() override { h.on_pump = nullptr; }
	bool press(int control) { return velmor_command(window_programs, control); }
	void choose(int list, int index)
	{
		host.ui->select(window_programs, list, index);
		EXPECT_TRUE(velmor_selection(window_programs, list));
	}
	std::string text(int control) { return h.texts[{ window_programs, control }]; }
	lines list(int control) { return h.lists[{ window_programs, control }]; }
	lines row(int control, std::size_t index)
	{
		return h.rows[{ window_programs, control }][index];
	}
	int chosen(int control) { return h.selections[{ window_programs, control }]; }
	key_map_view &map() { return h.key_maps[{ window_programs, programs_key_map }]; }
	bool drag(key_map_event event, int group, int zone, int value)
	{
		return velmor_key_map(
			window_programs, programs_key_map, event, group, zone, value, 0);
	}
	void type(int control, const char *words)
	{
		host.ui->set_text(window_programs, control, words);
	}
	void spool(const std::string &name)
	{
		h.put_content(h.config + "\\sample\\" + name + ".wav",
			wave_bytes(44100, 1, std::vector<int>(64, 1000)));
	}
};

class s3000_programs : public programs
{
protected:
	s1000_machine machine{ s1000_model::s3000, 5 };
	int port;

	s3000_programs()
	{
		machine.add_program("FIRST", 1);
		machine.add_program("TARGET", 3);
		machine.add_program("LAST", 1);
		machine.add_sample("KICK", 44100, std::vector<std::int16_t>(64, 500));
		for (std::size_t k = 0; k < 3; k++)
			machine::put_name(
				machine.programs[1].keygroups[k], 34, k ? "LOST" : "KICK");
		h.use_sampler(model_s3000, 5);
		copy_text(current_sampler->sampler_description, "Rack");
		host.midi = &virtual_midi;
		port = plug_midi(h.time, machine, "virtual");
		reload_midi_setup(false);
		selected_midi_in_interface = selected_midi_out_interface = 0;
		take_rescued_program();
		take_endangered_program();
	}
	~s3000_programs() override
	{
		h.on_pump = nullptr;
		close_midi_output();
		unplug_all_midi();
	}
	// The page, with the second program in front.
	void open()
	{
		velmor_command(window_main, main_programs);
		choose(programs_loaded_list, 1);
		h.boxes.clear();
	}
	std::string names() const
	{
		std::string all;
		for (const stored_program &p : machine.programs)
			all += machine::get_name(p.common, 3) + ",";
		return all;
	}
	int functions(u8 function) const
	{
		return static_cast<int>(std::count_if(machine.heard.begin(), machine.heard.end(),
			[&](const auto &m) { return m.size() > 3 && m[3] == function; }));
	}
};

} // namespace

TEST_F(s3000_programs, the_page_shows_what_the_sampler_holds)
{
	open();
	EXPECT_EQ(list(programs_loaded_list), (lines{ "FIRST", "TARGET", "LAST" }));
	EXPECT_EQ(
		list(programs_keygroup_list), (lines{ "Keygroup 1", "Keygroup 2", "Keygroup 3" }));
	EXPECT_EQ(list(programs_keyzone_list).size(), 4u);
	EXPECT_EQ(text(programs_title),
		"Program Settings for 'TARGET' [Sampler: 'Rack', Make: 'Akai S3000/S3000XL']");
	ASSERT_EQ(map().groups.size(), 3u);
	EXPECT_FALSE(map().groups[0].zones[0].missing);
	EXPECT_TRUE(map().groups[1].zones[0].missing);
	EXPECT_EQ(map().groups[1].zones[0].name, "LOST");
	EXPECT_TRUE(map().takes_notes);
	choose(programs_keygroup_list, 1);
	EXPECT_EQ(list(programs_zone_sample), (lines{ "no sample", "KICK", "LOST (not loaded)" }));
	EXPECT_EQ(chosen(programs_zone_sample), 2);
	EXPECT_EQ(map().group, 1);
	choose(programs_tabs, 1);
	EXPECT_EQ(text(programs_title),
		"Keygroup: 2 (TARGET), Sampler: Rack, Make: Akai S3000/S3000XL");
	EXPECT_TRUE(press(programs_zone_form));
	EXPECT_EQ(text(programs_title), "Keyzone: 1, Keygroup: 2, Prog: [TARGET], Sampler: [Rack], "
					"Make: [Akai S3000/S3000XL]");
	choose(programs_zone_sample, 1);
	EXPECT_TRUE(h.logged("[D] New Sample-Name: [KICK]"));
	EXPECT_FALSE(map().groups[1].zones[0].missing);
	choose(programs_keyzone_list, 2);
	EXPECT_EQ(map().zone, 2);
	choose(programs_loaded_list, 0);
	EXPECT_EQ(map().group + map().zone, 0) << "another program is shown from its beginning";
	EXPECT_TRUE(h.boxes.empty());
}

TEST_F(s3000_programs, an_edit_is_counted_undone_sent_and_then_nothing_is_unsent)
{
	open();
	const u8 before = machine.programs[1].keygroups[0][low_note];
	EXPECT_TRUE(drag(key_map_event::low_note, 0, -1, 30));
	EXPECT_TRUE(drag(key_map_event::low_note, 0, -1, 36));
	EXPECT_TRUE(drag(key_map_event::drag_end, 0, -1, 0));
	EXPECT_EQ(text(programs_unsent), "1 change unsent");
	EXPECT_EQ(text(0), "VELMOR Manage Programs - 1 change unsent");
	EXPECT_EQ(row(programs_loaded_list, 1), (lines{ "TARGET", "3", "1" }));
	EXPECT_TRUE(h.logged("[D] New Low-Value: 36"));
	drag(key_map_event::low_note, 0, -1, 40);
	press(programs_undo);
	EXPECT_EQ(map().groups[0].low_note, 36) << "another movement is another step";
	EXPECT_TRUE(press(programs_undo)); // one movement, one step
	EXPECT_EQ(map().groups[0].low_note, before);
	EXPECT_EQ(text(programs_unsent), "");
	EXPECT_TRUE(press(programs_redo));
	// An edge does not pass the other one.
	EXPECT_TRUE(drag(key_map_event::low_note, 0, -1, 500));
	EXPECT_EQ(map().groups[0].low_note, map().groups[0].high_note);
	EXPECT_TRUE(press(programs_undo));
	EXPECT_TRUE(drag(key_map_event::high_note, 0, -1, 0));
	EXPECT_EQ(map().groups[0].low_note, map().groups[0].high_note);
	EXPECT_TRUE(press(programs_undo));
	EXPECT_EQ(machine.programs[1].keygroups[0][low_note], before);

	choose(programs_tabs, 0);
	shown_program()->s1000_tunning_offset = -50;
	EXPECT_TRUE(press(programs_life_update));
	EXPECT_EQ(machine.programs[1].keygroups[0][low_note], 36);
	// Sending has changed the record, and the form shows what it holds now.
	const auto &form = h.forms[{ window_programs, form_of_program }];
	const auto tune = std::find_if(form.begin(), form.end(),
		[](const form_row &r) { return r.label == "Tune offset"; });
	ASSERT_NE(tune, form.end());
	EXPECT_EQ(tune->text, "-1.50");
	EXPECT_TRUE(h.logged("[D] LIVE UPDATE PRESSED! NEW KEYGROUPS: 3 (PROG)"));
	EXPECT_EQ(text(programs_unsent), "");
	EXPECT_EQ(row(programs_loaded_list, 1), (lines{ "TARGET", "3" }));
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_EQ(text(status_outcome), "Sent 'TARGET' to the sampler.");
}

// The S2000 and later have a second envelope of four rates and four levels, an S1000 one of four
// values in the same bytes, and neither a filter envelope nor an auxiliary one.
TEST_F(s3000_programs, an_envelope_point_is_its_bar)
{
	bytes &block = machine.programs[1].keygroups[0];
	const std::pair<std::size_t, u8> second[] = { { 20, 11 }, { 157, 12 }, { 21, 13 },
		{ 23, 14 }, { 156, 21 }, { 158, 22 }, { 22, 23 }, { 159, 24 } };
	for (const auto &[place, value] : second)
		block[place] = value;
	const auto curve = [this](int control) -> const envelope_view & {
		return h.envelopes[{ window_programs, control }];
	};
	open();
	EXPECT_TRUE(velmor_envelope(
		window_programs, programs_amp_envelope, envelope_event::drag, 2, 33));
	EXPECT_EQ(curve(programs_amp_envelope).values[2], 33);
	EXPECT_EQ(curve(programs_amp_envelope).letters, (lines{ "A", "D", "S", "R" }));
	EXPECT_EQ(shown_program()->keygroup[0].amp_sustain, 33u);
	const std::vector<form_row> &rows = h.forms[{ window_programs, programs_adsr_form }];
	EXPECT_EQ(rows[3].value, 33);
	EXPECT_EQ(curve(programs_second_envelope).values,
		(std::vector<int>{ 11, 12, 13, 14, 21, 22, 23, 24 }));
	EXPECT_EQ(curve(programs_second_envelope).letters,
		(lines{ "R1", "R2", "R3", "R4", "L1", "L2", "L3", "L4" }));
	for (const int control : { programs_filter_envelope, programs_aux_envelope })
		EXPECT_FALSE((h.visible[{ window_programs, control }])) << control;
	const auto drag_level = [](envelope_event event, int value) {
		EXPECT_TRUE(velmor_envelope(
			window_programs, programs_second_envelope, event, 5, value));
	};
	drag_level(envelope_event::drag, 60);
	drag_level(envelope_event::drag, 120);
	drag_level(envelope_event::drag_end, 120);
	drag_level(envelope_event::drag, 50);
	press(programs_undo);
	EXPECT_EQ(rows[11].value, 99) << "another movement is another step";
	EXPECT_EQ(rows[11].label, "Level 2");
	EXPECT_EQ(
		text(status_outcome), "Undone: Level 2 of keygroup 1 from 99 to 50; not sent yet");
	press(programs_undo);
	EXPECT_EQ(curve(programs_second_envelope).values[5], 22);
	EXPECT_EQ(
		text(status_outcome), "Undone: Level 2 of keygroup 1 from 22 to 99; not sent yet");
	press(programs_redo);
	// The sixteen values stay, whatever the model has.
	ASSERT_EQ(rows.size(), 28u);
	EXPECT_TRUE(velmor_form(window_programs, programs_adsr_form, 27, form_event::drag_end, 44));
	EXPECT_EQ(shown_program()->keygroup[0].aux_rate4_level, 44u);
	EXPECT_EQ(text(programs_unsent), "3 changes unsent");
	host.ui->set_checked(window_programs, apply_to_keygroups, true);
	EXPECT_TRUE(velmor_form(window_programs, programs_adsr_form, 6, form_event::drag_end, 70));
	press(programs_life_update);
	EXPECT_EQ(block[158], 99);
	for (const auto &keygroup : machine.programs[1].keygroups)
		EXPECT_EQ(keygroup[20], 70);

	current_sampler->sampler_type = model_s1000;
	choose(programs_loaded_list, 1);
	EXPECT_EQ(curve(programs_second_envelope).values, (std::vector<int>{ 70, 13, 23, 14 }));
	EXPECT_EQ(rows[8].label, "Sustain");
	EXPECT_TRUE(velmor_envelope(
		window_programs, programs_second_envelope, envelope_event::drag, 2, 40));
	EXPECT_EQ(shown_program()->keygroup[0].s1000_env2_l3, 40);
}

TEST_F(s3000_programs, a_missing_sample_is_found_in_the_spool_and_sent)
{
	machine::put_name(machine.programs[1].keygroups[2], 34, "LONG.NAME AB");
	velmor_command(window_main, main_samples);
	const auto &samples = h.rows[{ window_samples, samples_loaded_list }];
	EXPECT_EQ(
		samples, (std::vector<lines>{ { "KICK", "0.00 s", "44100 Hz", "60 (C3)", "no" } }));
	open();
	EXPECT_NE((h.reasons[{ window_programs, programs_find_sample }]), "");
	choose(programs_keygroup_list, 1);
	EXPECT_EQ((h.reasons[{ window_programs, programs_find_sample }]), "");
	spool("LOST AGAIN");
	spool("LONG_NAME ABLE");
	press(programs_find_sample);
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0].text.rfind("The spool holds no file called 'LOST'.", 0), 0u);
	EXPECT_EQ(text(status_outcome), "'LOST' is not in the spool.");
	h.boxes.clear();
	spool("lost");
	drag(key_map_event::low_note, 1, -1, 30);
	press(programs_find_sample);
	ASSERT_EQ(machine.samples.size(), 2u);
	EXPECT_EQ(machine::get_name(machine.samples[1].header, 3), "LOST");
	EXPECT_FALSE(map().groups[1].zones[0].missing);
	EXPECT_EQ(list(programs_zone_sample), (lines{ "no sample", "KICK", "LOST" }));
	EXPECT_EQ(map().group, 1);
	EXPECT_EQ(text(programs_unsent), "1 change unsent");
	EXPECT_EQ(text(status_outcome), "Uploaded 'lost'.");
	EXPECT_NE((h.reasons[{ window_programs, programs_find_sample }]), "");
	// A name that the machine cut, with a full stop for what it has no letter for.
	choose(programs_keygroup_list, 2);
	press(programs_find_sample);
	ASSERT_EQ(machine.samples.size(), 3u);
	EXPECT_EQ(machine::get_name(machine.samples[2].header, 3), "LONG.NAME AB");
	EXPECT_FALSE(map().groups[2].zones[0].missing);
	ASSERT_EQ(samples.size(), 3u) << "the page of samples shows it too";
	EXPECT_EQ(samples[2][0], "LONG.NAME AB");
	choose(programs_zone_sample, 2);
	EXPECT_EQ(map().groups[2].zones[0].name, "LOST");
	EXPECT_EQ(functions(0x06), static_cast<int>(machine.programs.size()))
		<< "programs are not read anew for a sample";
}

TEST_F(s3000_programs, deleting_and_renaming_are_seen_in_the_list_and_edits_of_others_stay)
{
	open();
	drag(key_map_event::low_note, 0, -1, 30);
	choose(programs_loaded_list, 0);
	EXPECT_TRUE(press(programs_loaded_delete));
	EXPECT_EQ(names(), "TARGET,LAST,");
	EXPECT_EQ(list(programs_loaded_list), (lines{ "TARGET", "LAST" }));
	EXPECT_TRUE(h.logged("[D] Deleting Program-Info for [FIRST] (INDEX: 0)"));
	EXPECT_EQ(chosen(programs_loaded_list), 0);
	type(programs_loaded_new_name, "NEW NAME");
	EXPECT_TRUE(press(programs_loaded_rename));
	EXPECT_EQ(names(), "NEW NAME,LAST,");
	EXPECT_TRUE(h.logged("[D] Renaming Program-Info for [TARGET] (INDEX: 0) --> [NEW NAME]"));
	EXPECT_EQ(row(programs_loaded_list, 0), (lines{ "NEW NAME", "3", "1" }));
	EXPECT_EQ(map().groups[0].low_note, 30);
	EXPECT_EQ(text(programs_loaded_new_name), "");
	EXPECT_TRUE(press(programs_life_update));
	EXPECT_EQ(machine.programs[0].keygroups[0][low_note], 30);
	EXPECT_TRUE(h.boxes.empty()) << h.boxes[0].text;
	// Without a name.
	EXPECT_TRUE(press(programs_loaded_rename));
	EXPECT_EQ(h.boxes, (boxes{ { "Choose a new name!", "INFO" } }));
}

TEST_F(s3000_programs, a_renaming_that_fails_anywhere_loses_no_program)
{
	int kept = 0;
	for (int exchange = 1; exchange <= 9; exchange++)
		for (const auto kind : { wire_fault_kind::refused, wire_fault_kind::silent }) {
			SCOPED_TRACE(exchange);
			machine.programs.clear();
			machine.add_program("FIRST", 1);
			machine.add_program("TARGET", 3);
			machine.add_program("LAST", 1);
			velmor_command(window_main, main_programs);
			choose(programs_loaded_list, 1);
			h.boxes.clear();
			const int before = local_pgms;
			port_wire(port).set_fault({ .kind = kind, .exchange = exchange });
			type(programs_loaded_new_name, "OTHER");
			EXPECT_TRUE(press(programs_loaded_rename));
			port_wire(port).clear_faults();
			const bool there = names().find("TARGET,") != std::string::npos ||
					   (names().find("OTHER,") != std::string::npos &&
						   machine.programs[1].keygroups.size() == 3);
			EXPECT_TRUE(there || local_pgms > before) << names();
			EXPECT_NE(names().find("FIRST,"), std::string::npos);
			EXPECT_NE(names().find("LAST,"), std::string::npos);
			EXPECT_LE(h.boxes.size(), 2u);
			if (local_pgms > before) {
				kept++;
				const std::string file = file_of_program(*local_pgm.back());
				EXPECT_TRUE(h.content(file));
				ASSERT_FALSE(h.boxes.empty());
				EXPECT_NE(h.boxes.back().text.find(
						  host.files->host_path(file.c_str())),
					std::string::npos);
			}
		}
	EXPECT_GT(kept, 0);
}

TEST_F(s3000_programs, a_sampler_that_does_not_answer_gets_nothing)
{
	open();
	drag(key_map_event::low_note, 0, -1, 30);
	current_sampler->sampler_sysex_channel = 9; // another channel than the machine's
	const std::size_t heard = machine.heard.size();
	EXPECT_TRUE(press(programs_life_update));
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0].text.rfind("Nothing was sent, because the sampler's list could not be "
					"read.\nNo answer",
			  0),
		0u)
		<< h.boxes[0].text;
	for (const int control :
		{ programs_loaded_delete, programs_delete_keygroup, programs_download }) {
		h.boxes.clear();
		EXPECT_TRUE(press(control));
		EXPECT_EQ(h.boxes.size(), 1u);
	}
	for (std::size_t i = heard; i < machine.heard.size(); i++)
		EXPECT_EQ(machine.heard[i][3] & ~6, 0) << "only questions for lists";
	EXPECT_EQ((h.states[{ window_programs, programs_loaded_list }].first), list_state::silent);
	EXPECT_NE((h.reasons[{ window_programs, programs_life_update }]), "");
	EXPECT_EQ(names(), "FIRST,TARGET,LAST,");
	// The channel is right again, and the edit is still there.
	current_sampler->sampler_sysex_channel = 5;
	h.boxes.clear();
	EXPECT_TRUE(press(programs_retry));
	EXPECT_TRUE(h.boxes.empty());
	choose(programs_loaded_list, 1);
	EXPECT_EQ(text(programs_unsent), "1 change unsent");
	EXPECT_EQ(map().groups[0].low_note, 30);
}

TEST_F(s3000_programs, reading_anew_closing_and_loading_ask_once_where_edits_would_be_lost)
{
	open();
	drag(key_map_event::low_note, 0, -1, 30);
	const std::size_t heard = machine.heard.size();
	h.answers = { false, false, false };
	press(programs_refresh);
	velmor_command(window_main, main_multis);
	velmor_command(window_main, menu_exit);
	EXPECT_EQ(h.boxes.size(), 3u);
	EXPECT_EQ(machine.heard.size(), heard);
	EXPECT_EQ(map().groups[0].low_note, 30);
	h.boxes.clear();
	std::swap(machine.programs[0], machine.programs[1]);
	press(programs_refresh);
	EXPECT_EQ(chosen(programs_loaded_list), 0) << "the program is followed by its name";
	EXPECT_EQ(h.boxes.size(), 1u);
	EXPECT_GT(machine.heard.size(), heard);
	EXPECT_NE(map().groups[0].low_note, 30);
	EXPECT_EQ(text(programs_unsent), "");
}

TEST_F(s3000_programs, keygroups_come_in_memory_and_go_on_the_sampler_too)
{
	machine.channel = 0; // the one that a keygroup's deletion goes to
	current_sampler->sampler_sysex_channel = 0;
	open();
	press(programs_add_keygroup);
	EXPECT_TRUE(h.logged("[D] Adding new keygroup with 4 Keyzones"));
	EXPECT_TRUE(h.logged("[D] New count of Keygroups: 4"));
	EXPECT_EQ(shown_program()->keygroup[3].high_note, 99);
	EXPECT_EQ(chosen(programs_keygroup_list), 3);
	// One that the sampler has not is no matter for it.
	press(programs_delete_keygroup);
	EXPECT_EQ(functions(0x13), 0);
	EXPECT_EQ(shown_program()->keygroups, 3);
	EXPECT_EQ(text(programs_unsent), "");
	// Neither the one in memory alone that stands in front, nor another, is hit.
	choose(programs_keygroup_list, 1);
	press(programs_delete_keygroup);
	EXPECT_TRUE(h.logged("[D] Deleting from PROG: 1 Keygroup: 1 !"));
	EXPECT_TRUE(h.logged("[D] LOGICAL REMOVE OF KEYGROUP: 1 FROM: [TARGET]"));
	EXPECT_EQ(shown_program()->keygroups, 2);
	EXPECT_TRUE(h.boxes.empty());
}

// The machine and the page agree at each step: what goes goes there too, also when it goes once
// more after it was taken back and sent, and nothing goes that the machine does not let go.
TEST_F(s3000_programs, a_deletion_that_is_done_again_reaches_the_sampler_again)
{
	machine.channel = 0; // the one that a keygroup's deletion goes to
	current_sampler->sampler_sysex_channel = 0;
	const auto &held = machine.programs[1].keygroups;
	open();
	choose(programs_keygroup_list, 1);
	press(programs_delete_keygroup);
	press(programs_undo);
	EXPECT_EQ(text(programs_unsent), "1 change unsent");
	press(programs_redo); // the machine has none to delete
	EXPECT_EQ(functions(0x13), 1);
	press(programs_undo);
	EXPECT_EQ(held.size(), 2u);
	press(programs_life_update);
	ASSERT_EQ(held.size(), 3u);
	EXPECT_EQ(machine::get_name(held[1], 34), "LOST");
	port_wire(port).set_fault({ .kind = wire_fault_kind::refused, .exchange = 1 });
	h.boxes.clear();
	press(programs_redo);
	EXPECT_EQ(h.boxes, (boxes{ { "DELETE failed!!!", "FATAL" } }));
	EXPECT_EQ(text(status_outcome), "Keygroup 2 was not deleted.");
	EXPECT_EQ(shown_program()->keygroups, 3);
	port_wire(port).clear_faults();
	press(programs_redo);
	EXPECT_EQ(held.size(), 2u);
	EXPECT_EQ(shown_program()->keygroups, 2);
	EXPECT_EQ(text(programs_unsent), "");
	EXPECT_EQ(text(status_outcome), "Done again: Keygroup 2 deleted");
	// An addition that was sent is taken back there too.
	press(programs_add_keygroup);
	EXPECT_EQ(text(status_outcome), "Keygroup 3 added; not sent yet");
	press(programs_life_update);
	EXPECT_EQ(held.size(), 3u);
	h.boxes.clear();
	press(programs_undo);
	EXPECT_EQ(held.size(), 2u);
	EXPECT_EQ(shown_program()->keygroups, 2);
	EXPECT_TRUE(h.boxes.empty());
	// A model that cannot delete one keeps it, and the page says so.
	press(programs_redo);
	press(programs_life_update);
	const auto slot = std::exchange(get_sampler(model_s3000)->del_keygroup, nullptr);
	press(programs_undo);
	press(programs_life_update);
	get_sampler(model_s3000)->del_keygroup = slot;
	EXPECT_EQ(held.size(), 3u);
	EXPECT_EQ(h.boxes, (boxes{ { "The program on the sampler keeps 1 keygroup that this one "
				     "does not have.",
				   "INFO" } }));
	EXPECT_EQ(text(programs_unsent), "1 change unsent");
}

TEST_F(s3000_programs, a_local_program_goes_with_the_samples_that_are_here)
{
	open();
	spool("SNARE");
	auto p = std::make_unique<_program>(*shown_program());
	copy_text(p->name, "MINE");
	p->keygroups = 2;
	for (int k = 0; k < 2; k++)
		copy_text(p->keygroup[k].keyzone[0].samplename, "SNARE");
	copy_text(p->keygroup[1].keyzone[1].samplename, "NOWHERE");
	keep_program(*p);
	velmor_command(window_main, main_programs);
	choose(programs_local_list, 0);
	h.boxes.clear();
	press(programs_upload);
	ASSERT_GE(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0], (shown_box{ "Also upload required samples (1 Samples)?", "INFO" }));
	EXPECT_EQ(names(), "FIRST,TARGET,LAST,MINE,");
	EXPECT_EQ(machine.samples.size(), 2u);
	EXPECT_TRUE(h.logged("[D] REQUEST FOR UPLOADING [MINE]"));
	EXPECT_EQ(h.boxes.size(), 1u);
	EXPECT_STREQ(local_pgm[0]->name, "MINE");
	// No wish for samples; and a machine without room says so once.
	machine.block_room = 0;
	copy_text(local_pgm[0]->name, "SECOND");
	h.answers = { false };
	h.boxes.clear();
	press(programs_upload);
	EXPECT_EQ(names(), "FIRST,TARGET,LAST,MINE,");
	EXPECT_EQ(h.boxes.size(), 1u);
}

TEST_F(s3000_programs, several_programs_are_one_queue)
{
	machine.add_sample("SNARE", 44100, std::vector<std::int16_t>(64, 500));
	machine::put_name(machine.programs[1].keygroups[1], 34, "SNARE");
	machine::put_name(machine.programs[2].keygroups[0], 34, "KICK");
	open();
	const auto choose_two = [](int of, int one, int other) {
		host.ui->select_several(window_programs, of, std::vector{ one, other });
		velmor_selection(window_programs, of);
	};
	const auto told = [&] { return h.texts[{ window_progress, progress_title }]; };
	choose_two(programs_loaded_list, 1, 2);
	EXPECT_EQ((h.reasons[{ window_programs, programs_loaded_rename }]),
		"This is for one program, and several are chosen.");
	h.on_pump = [] { velmor_command(window_progress, progress_stop_after); };
	press(programs_download);
	h.on_pump = nullptr;
	EXPECT_EQ(list(programs_local_list), lines{ "TARGET" });
	EXPECT_TRUE(in_spool("KICK") && in_spool("SNARE")) << "they are part of this one";
	velmor_command(window_progress, progress_again);
	EXPECT_EQ(list(programs_local_list), (lines{ "TARGET", "LAST" }));
	EXPECT_EQ(told(), "2 of 2 programs were downloaded");
	EXPECT_TRUE(h.boxes.empty());
	choose_two(programs_loaded_list, 0, 2);
	h.answers = { false };
	press(programs_loaded_delete);
	EXPECT_EQ(names(), "FIRST,TARGET,LAST,");
	press(programs_loaded_delete);
	EXPECT_EQ(names(), "TARGET,");
	EXPECT_EQ(told(), "2 of 2 programs were deleted");
	// The samples of both stand behind them in the same queue.
	choose_two(programs_local_list, 0, 1);
	h.boxes.clear();
	press(programs_upload);
	EXPECT_EQ(h.boxes, (boxes{ { "Also upload required samples (2 Samples)?", "INFO" } }));
	EXPECT_EQ(names(), "TARGET,LAST,");
	EXPECT_EQ(told(), "4 of 4 programs and samples were uploaded");
	choose_two(programs_local_list, 0, 1);
	press(programs_local_delete);
	EXPECT_TRUE(list(programs_local_list).empty());
	EXPECT_TRUE(h.content(h.config + "\\deleted\\LAST.program"));
}

TEST_F(s3000_programs, a_download_brings_the_program_and_its_samples_and_edits_go_to_the_file)
{
	open();
	press(programs_download);
	ASSERT_EQ(local_pgms, 1);
	EXPECT_TRUE(h.content(h.config + "\\pgm\\TARGET.program"));
	EXPECT_TRUE(in_spool("KICK"));
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_NE(h.boxes[0].text.find("1/1 samples downloaded!\nNot on the sampler: LOST"),
		std::string::npos);
	choose(programs_local_list, 0);
	EXPECT_FALSE(map().takes_notes);
	drag(key_map_event::high_note, 1, -1, 99);
	EXPECT_EQ(row(programs_local_list, 0), (lines{ "TARGET", "3", "1" }));
	EXPECT_EQ(text(status_outcome).substr(text(status_outcome).find(';')), "; not saved yet");
	press(programs_save_changes);
	EXPECT_EQ(unsent_changes(), 0);
	const auto written = h.content(h.config + "\\pgm\\TARGET.program");
	EXPECT_NE(std::string(written->begin(), written->end()).find("high_note = 99"),
		std::string::npos);
	press(programs_local_delete);
	EXPECT_EQ(local_pgms, 0);
}

TEST_F(s3000_programs, stop_gives_the_edits_back_and_a_second_press_does_nothing)
{
	open();
	drag(key_map_event::low_note, 0, -1, 30);
	bool pressed = false;
	h.on_pump = [&] {
		if (machine.heard.size() < 6 || pressed)
			return;
		pressed = true;
		EXPECT_FALSE(press(programs_life_update));
		EXPECT_FALSE(press(programs_loaded_delete));
		EXPECT_FALSE(drag(key_map_event::low_note, 0, -1, 50));
		velmor_command(window_progress, progress_stop);
	};
	machine.heard.clear();
	shown_program()->s1000_tunning_offset = -50; // which a driver changes as it sends
	press(programs_life_update);
	h.on_pump = nullptr;
	EXPECT_TRUE(pressed);
	EXPECT_EQ(shown_program()->s1000_tunning_offset, -50);
	EXPECT_EQ(names(), "FIRST,TARGET,LAST,");
	EXPECT_EQ(map().groups[0].low_note, 30);
	EXPECT_EQ(text(programs_unsent), "1 change unsent");
	EXPECT_FALSE(h.progress.visible);
}

TEST_F(s3000_programs, a_key_sounds_on_the_samplers_channel_until_it_is_let_go)
{
	open();
	current_sampler->sampler_midi = 3;
	EXPECT_TRUE(velmor_key_map(
		window_programs, programs_key_map, key_map_event::note_on, 0, 0, 60, 100));
	EXPECT_EQ(map().note, 60);
	EXPECT_TRUE(h.logged("[D] Sending 3 Bytes of Midi-Data() [92 3C 64 ] using Device: 0") ||
		    h.logged("[D] Sending 3 Bytes of Midi-Data() [92 3C 64] using Device: 0"));
	// Also while other work runs.
	run_through_gate([&] {
		EXPECT_TRUE(velmor_key_map(
			window_programs, programs_key_map, key_map_event::note_off, 0, 0, 60, 0));
	});
	EXPECT_EQ(map().note, -1);
	EXPECT_TRUE(h.logged("[D] Sending 3 Bytes of Midi-Data() [82 3C 40 ] using Device: 0") ||
		    h.logged("[D] Sending 3 Bytes of Midi-Data() [82 3C 40] using Device: 0"));
}

TEST_F(s3000_programs, akp_files_come_with_their_samples_and_a_summary)
{
	open();
	const std::string folder = h.config + "\\disk";
	host.files->make_folder(folder.c_str());
	auto zone = [](const char *name) {
		bytes out = hex("01") + word(std::strlen(name), 1) + velmor::text(name);
		out.resize(46);
		return chunk("zone", out);
	};
	h.put_content(folder + "\\GRAND.AKP",
		riff(chunk("prg ", hex("00 01 01 00*3")) +
				chunk("kgrp", zone("THERE") + zone("GONE") + zone("THERE")),
			"APRG"));
	h.put_content(folder + "\\THERE.wav", wave_bytes(44100, 1, { 1, 2, 3, 4 }));
	h.put_content(folder + "\\BAD.AKP", hex("00 01 02"));
	h.chosen_files = { folder + "\\GRAND.AKP", folder + "\\BAD.AKP", folder + "\\NONE.AKP" };
	press(programs_import_akp);
	ASSERT_EQ(h.boxes.size(), 5u);
	EXPECT_EQ(h.boxes[0], (shown_box{ "Also import 2 Samples?", "INFO" }));
	EXPECT_EQ(h.boxes[1],
		(shown_box{ "Sample [GONE] File: " + folder + "\\GONE.wav (not found!)", "INFO" }));
	EXPECT_EQ(h.boxes[2].caption, "ERROR");
	EXPECT_EQ(h.boxes[3].text, "Cannot stat [" + folder + "\\NONE.AKP]");
	EXPECT_EQ(h.boxes[4].text,
		"'GRAND': 1 keygroup, 3 keyzones, 2 samples (not on this computer: GONE).\nThe log "
		"names the parameters that cannot go, and those that no AKP file tells and that "
		"are sent as 0.");
	EXPECT_FALSE(h.progress.visible);
	EXPECT_TRUE(h.content(h.config + "\\pgm\\GRAND.program"));
	EXPECT_EQ(list(programs_local_list), lines{ "GRAND" });
	EXPECT_STREQ(shown_program()->name, "GRAND");
	EXPECT_EQ(map().groups[0].zones[0].high_velocity, 127) << "none is told, so any sounds";
	// Once more: asked, and then both are there, each with its file.
	h.chosen_files = { folder + "\\GRAND.AKP" };
	h.boxes.clear();
	press(programs_import_akp);
	EXPECT_EQ(h.boxes[0], (shown_box{ "Program [GRAND] already exists! Overwrite?", "INFO" }));
	EXPECT_EQ(local_pgms, 2);
	press(programs_refresh);
	EXPECT_EQ(local_pgms, 2);
}

// It has no request that creates a program.
TEST_F(programs, an_s900_takes_a_program_over_the_one_of_its_name)
{
	s900_machine machine{ s900_model::s900, 3 };
	fill_demo(machine);
	h.use_sampler(model_s900, 3);
	current_sampler->sampler_sysex = 4;
	host.midi = &virtual_midi;
	const int port = plug_midi(h.time, machine.on_wire(h.time), "virtual");
	reload_midi_setup(false);
	selected_midi_in_interface = selected_midi_out_interface = 0;
	velmor_command(window_main, main_programs);
	const _dev_status &dev = *current_sampler->status;
	ASSERT_GT(dev.programs, 1);
	const auto program = std::make_unique<_program>(dev.program[0]);
	program->keygroup[0].amp_attack = 77;
	copy_text(program->name, "NOWHERE");
	EXPECT_EQ(upload_program(*program).how, ending::refused);
	copy_text(program->name, dev.program[0].name);
	EXPECT_TRUE(upload_program(*program).done());
	EXPECT_TRUE(read_program_list().done());
	EXPECT_EQ(dev.program[0].keygroup[0].amp_attack, 77u);
	// What is not sent is not in the list either.
	program->keygroup[0].amp_attack = 5;
	port_wire(port).set_fault({ wire_fault_kind::silent, 1, true });
	EXPECT_EQ(upload_program(*program).how, ending::no_answer);
	EXPECT_EQ(dev.program[0].keygroup[0].amp_attack, 77u);
	close_midi_output();
	unplug_all_midi();
}

TEST_F(programs, a_model_without_an_operation_says_so)
{
	h.use_sampler(model_generic, 0);
	velmor_command(window_main, main_programs);
	EXPECT_EQ(h.boxes,
		(boxes{ { "No Sampler loaded/Function not supported by Sampler", "FATAL" } }));
	current_sampler = nullptr;
	velmor_command(window_main, main_programs);
	EXPECT_EQ(h.boxes.back(), (shown_box{ "You must load a sampler first...", "INFO" }));
	EXPECT_FALSE((h.visible[{ window_programs, 0 }]));
}

TEST_F(programs, an_s5000_is_read_edited_sent_renamed_and_emptied)
{
	s5000 machine;
	for (const char *name : { "ONE", "TWO" })
		machine.programs.push_back({ name, std::vector<s5000_keygroup>(2) });
	machine.name = "Studio";
	host.usb = &virtual_usb;
	plug_usb(h.time, machine);
	init_usb(1);
	h.use_sampler(model_s5000, 0, "Studio");
	velmor_command(window_main, main_programs);
	EXPECT_EQ(list(programs_loaded_list), (lines{ "ONE", "TWO" }));
	choose(programs_loaded_list, 1);
	const s5000_program one = machine.programs[0];
	drag(key_map_event::low_note, 1, -1, 40);
	press(programs_life_update);
	EXPECT_EQ(machine.programs[1].keygroups[1].at(0x04)[0], 40);
	EXPECT_EQ(machine.programs[0], one);
	type(programs_loaded_new_name, "THREE");
	press(programs_loaded_rename);
	EXPECT_EQ(machine.programs[1].name, "THREE");
	EXPECT_EQ(list(programs_loaded_list), (lines{ "ONE", "THREE" }));
	choose(programs_loaded_list, 0);
	press(programs_loaded_delete);
	EXPECT_EQ(list(programs_loaded_list), (lines{ "THREE" }));
	EXPECT_TRUE(h.boxes.empty()) << h.boxes[0].text;
	unplug_all_usb();
	usbdev.clear();
	usbdevs = usb_init_done = 0;
}

} // namespace velmor
