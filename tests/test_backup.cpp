// test_backup.cpp - a whole sampler into a folder and back, on machines of every family

#include "src/velmor_backup_parts.h"
#include "src/velmor_checksum.h"
#include "src/velmor_files.h"
#include "src/velmor_history.h"
#include "src/velmor_window.h"
#include "tests/support/racks.h"
#include <algorithm>
#include <cstring>

namespace velmor
{
namespace
{

class backup : public host_test
{
protected:
	std::string folder() { return h.config + "\\backup " + place; }
	std::string place; // one for each machine
	outcome save(const backup_wish &wish = {})
	{
		items.clear();
		return backup_sampler(folder(), wish, &items);
	}
	backup_manifest manifest()
	{
		backup_manifest m;
		EXPECT_EQ(read_manifest(folder(), &m).words, "");
		return m;
	}
	outcome restore(const restore_wish &wish = {})
	{
		restore_plan plan;
		const outcome planned = plan_restore(folder(), wish, &plan);
		EXPECT_TRUE(planned.done()) << planned.words;
		words = plan_words(plan);
		return carry_out(plan, &(items = items_of(plan)));
	}
	// What became of the items, a letter each in their order.
	std::string states() const
	{
		std::string text;
		for (const work_item &item : items)
			text += ".dsf"[static_cast<int>(item.state)];
		return text;
	}
	bool has(const std::string &path) { return h.content(folder() + "\\" + path).has_value(); }
	work_queue items;
	std::string words; // of the last plan
};

} // namespace

// Of samples the USB machines list the names alone. A line dies in the second sample; an S3000 is
// asked for its packet until somebody presses Stop.
TEST_F(backup, every_family_is_kept_piece_by_piece_and_comes_back)
{
	for (const auto &[name, make] : families) {
		SCOPED_TRACE(place = name);
		const auto machine = make(h);
		const _sampler_type &row = *get_sampler(machine->model);
		const bool names_alone = row.sampler_flags & flag_usb;
		const auto lists = [&] {
			machine->forget_heard();
			for (const auto list : { row.getstatus, row.getsamplelist, row.getproglist,
				     row.getmultilist })
				list(control_channel(), exclusive_channel(), require_dev_status());
			return machine->heard();
		};
		const std::size_t begin = lists().size();
		ASSERT_TRUE(read_sample_list().done());
		machine->forget_heard();
		ASSERT_TRUE(download_sample(current_sampler->status->sample[0].name).done());
		machine->fall_silent(static_cast<int>(begin + machine->heard().size()) + 4);
		h.on_pump = [&, end = h.time.now() + 60] {
			if (h.time.now() > end)
				stop_progress();
		};
		const outcome broken = save();
		h.on_pump = nullptr;
		EXPECT_EQ(broken.how,
			machine->model == model_s3000 ? ending::stopped : ending::no_answer);
		EXPECT_EQ(states().substr(0, 3), "ddd") << broken.words;
		const std::string ended = states();
		EXPECT_EQ(std::ranges::count(ended, 'f'), 1) << "nothing more was tried";
		EXPECT_FALSE(manifest().complete);
		EXPECT_TRUE(has("samples\\" + manifest().entries.back().file));
		machine->recover();
		EXPECT_TRUE(save().done());
		EXPECT_EQ(states().substr(0, 3) + states()[4], "sssd");
		EXPECT_TRUE(manifest().complete);

		const auto before = h.content(manifest_path(folder()));
		const auto due_lists = lists();
		machine->forget_heard();
		const outcome again = save();
		EXPECT_TRUE(machine->heard() == due_lists) << "an unchanged one costs its lists";
		EXPECT_EQ(h.content(manifest_path(folder())), before);
		EXPECT_NE(again.line.find(": 0 came now, "), again.line.npos) << again.line;

		const std::string due = machine->memory();
		machine->wipe();
		ASSERT_NE(machine->memory(), due);
		EXPECT_EQ(restore().words.find(": "), std::string::npos);
		EXPECT_EQ(words, machine->first_plan);
		EXPECT_EQ(machine->memory(), due);
		(void)restore();
		EXPECT_EQ(words, machine->second_plan);

		machine->change_sample();
		machine->change_program();
		ASSERT_TRUE(save().done());
		EXPECT_EQ(states().substr(0, 5), names_alone ? "dssss" : "dssds");
		ASSERT_TRUE(save({ .everything = true }).done());
		EXPECT_EQ(states().substr(0, 5), "ssddd");
		EXPECT_TRUE(has(names_alone ? "earlier\\Grand.program" : "earlier\\PIANO.program"));
		EXPECT_EQ(h.temporary_files(), 0);
		EXPECT_TRUE(h.boxes.empty()) << h.boxes[0].text;
	}
}

TEST_F(backup, names_of_a_sampler_stay_in_the_folder_and_apart)
{
	usb_rack<s5000> rack(h, model_s5000);
	const char *const names[] = { "..", "../../up", "C:\\x", "kick", "manifest.txt", "Kick" };
	for (const char *name : names)
		rack.machine.add_sample(name, rack.machine.samples[0].wave);
	rack.machine.programs.push_back({ "..", std::vector<s5000_keygroup>(1) });
	rack.machine.programs.push_back({ "bass", std::vector<s5000_keygroup>(2) });
	const outcome saved = save();
	EXPECT_TRUE(saved.done()) << saved.words;
	EXPECT_NE(saved.words.find("The sampler holds several samples called 'Kick'"),
		saved.words.npos);
	std::string files;
	for (const backup_entry &e : manifest().entries)
		files += e.file + "|";
	EXPECT_EQ(files, "Grand.program|Bass.program|__.program|bass (2).program|"
			 "Kick.wav|KICK (2).wav|Snare L_R.wav|__.wav|.._.._up.wav|C:_x.wav|"
			 "kick (3).wav|manifest.txt.wav||");
	rack.machine.samples.clear();
	EXPECT_TRUE(restore().done());
	std::string back;
	for (const usb_sample &s : rack.machine.samples)
		back += s.name + "|";
	EXPECT_EQ(back, "Kick|KICK|Snare L/R|..|../../up|C:\\x|kick|manifest.txt|");

	// The name on the way there is no other sample's.
	rack.machine.add_sample("Snare L_R", rack.machine.samples[0].wave);
	const auto other = rack.machine.samples.back().wave;
	EXPECT_TRUE(restore({ .everything = true }).done());
	back.clear();
	for (const usb_sample &s : rack.machine.samples)
		back += s.name + "|";
	EXPECT_EQ(back, "Snare L_R|Kick|KICK|Snare L/R|..|../../up|C:\\x|kick|manifest.txt|");
	EXPECT_EQ(rack.machine.samples[0].wave, other);
}

// What a manifest looks like, and that nothing of one is taken that does not fit.
TEST_F(backup, a_manifest_is_taken_whole_or_its_line_is_named)
{
	EXPECT_EQ(checksum_of_text("abc"), // FIPS 180-4, and of two blocks
		"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
	EXPECT_EQ(checksum_of_text("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
		"248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
	const std::string sum(64, 'a');
	const std::string body = "VELMOR backup 1\nsampler = \"Rack \\xC3\\xA9\"\nmodel = \"X\"\n"
				 "complete = no\n\n[sample]\nname = \"K\\x5C\"\nfile = \"K_.wav\"\n"
				 "size = 12\nsha256 = " +
				 sum + "\nlist = \"3 words\"\n\n[multi]\nname = \"Live\"\n";
	const auto ended = [](const std::string &text) {
		return text + "\nend = " + checksum_of_text(text) + "\n";
	};
	backup_manifest m = { .sampler = "Rack \xC3\xA9", .model = "X" };
	m.entries = { { backup_kind::sample, "K\\", "K_.wav", "3 words", 12, sum },
		{ backup_kind::multi, "Live" } };
	EXPECT_EQ(manifest_text(m), ended(body));
	backup_manifest read;
	EXPECT_EQ(read_manifest_text(ended(body), &read), "");
	EXPECT_EQ(read.entries, m.entries);
	const std::pair<const char *, const char *> damages[] = {
		{ "VELMOR backup 1", "Line 1: This is no manifest" },
		{ "complete = no", "Line 4: This line says nothing." },
		{ "[sample]", "Line 6: This line says nothing." },
		{ "\"K_.wav\"", "Line 8: This is no file of the backup" },
		{ "= 12", "Line 9: This " },
		{ "[multi]\nname", "Line 13: Nobody knows" },
	};
	for (const auto &[what, why] : damages) {
		std::string text = body;
		const char *bad = what[1] == 'K' ? "\"..\\x5C..\\x5CK.wav\"" : "x";
		text.replace(text.find(what), std::strlen(what), bad);
		EXPECT_EQ(read_manifest_text(ended(text), &read).substr(0, std::strlen(why)), why);
	}
	for (std::size_t at = 0; at < ended(body).size(); at += 3)
		EXPECT_NE(read_manifest_text(ended(body).substr(0, at), &read), "") << at;
}

TEST_F(backup, damage_costs_what_is_damaged_and_another_folder_nothing)
{
	s1000_rack rack(h, s1000_model::s3000, model_s3000);
	ASSERT_TRUE(save().done());
	const std::string kick = folder() + "\\samples\\KICK.wav";
	h.put_content(kick, hex("00 01"));
	restore_plan plan;
	ASSERT_TRUE(plan_restore(folder(), { .everything = true }, &plan).done());
	EXPECT_EQ(plan_words(plan), "Replace 4, leave out 1, which cannot be sent.");
	ASSERT_TRUE(save().done());
	EXPECT_EQ(states(), "ssdss");
	EXPECT_EQ(h.content(folder() + "\\earlier\\KICK.wav"), hex("00 01"));

	h.put_content(manifest_path(folder()), hex("00"));
	const outcome refused = plan_restore(folder(), {}, &plan);
	EXPECT_EQ(refused.how, ending::local_failed);
	const outcome anew = save();
	EXPECT_TRUE(anew.done());
	EXPECT_NE(anew.words.find("is damaged. Line 1: This is no manifest of a backup."),
		anew.words.npos);
	EXPECT_TRUE(has("earlier\\manifest.txt"));
	EXPECT_FALSE(has("samples\\KICK (2).wav")) << "what is there is known by its content";

	h.disk.space_left = 2000;
	rack.machine.add_sample("LONG", 44100, ramp(4000, 3));
	const outcome full = save();
	h.disk.space_left.reset();
	EXPECT_NE(full.words.find("(No space left on device)"), full.words.npos) << full.words;
	EXPECT_EQ(manifest().entries.size(), 5u);
	EXPECT_EQ(h.temporary_files(), 0);

	// What was to be replaced stays where it was.
	const auto piano = h.content(folder() + "\\programs\\PIANO.program");
	rack.change_program();
	h.disk.space_left = h.content(manifest_path(folder())).value_or(hex("")).size() + 200;
	EXPECT_FALSE(save().done());
	h.disk.space_left.reset();
	EXPECT_EQ(h.content(folder() + "\\programs\\PIANO.program"), piano);

	copy_text(current_sampler->sampler_description, "Other");
	EXPECT_EQ(save().how, ending::refused);
}

TEST_F(backup, a_plan_is_told_and_done_and_deletes_nothing_unasked)
{
	s1000_rack rack(h, s1000_model::s3000, model_s3000);
	ASSERT_TRUE(save().done());
	rack.machine.samples.erase(rack.machine.samples.begin());
	rack.machine.add_sample("NEW", 44100, ramp(9, 9));
	rack.machine.add_program("EXTRA", 1);
	rack.change_program();
	restore_plan plan;
	rack.forget_heard();
	ASSERT_TRUE(plan_restore(folder(), { .remove_others = true }, &plan).done());
	for (const auto &message : rack.heard())
		EXPECT_LE(message[3], 0x0A) << "a plan sends nothing";
	EXPECT_EQ(plan_words(plan),
		"Send 1, replace 1, delete 2 on the sampler, keep 3 as they are.");
	std::string told;
	for (const restore_item &item : plan.items)
		told += format_text("%d%s ", static_cast<int>(item.step), item.name.c_str());
	EXPECT_EQ(told, "3EXTRA 3NEW 1KICK 0SNARE 0HAT 2PIANO 0BASS ");
	EXPECT_TRUE(restore().done());
	EXPECT_EQ(rack.machine.samples.size(), 4u);
	EXPECT_EQ(rack.machine.programs.size(), 3u);
	EXPECT_TRUE(restore({ .remove_others = true }).done());
	EXPECT_EQ(rack.machine.samples.size(), 3u);
	EXPECT_EQ(rack.machine.programs.size(), 2u);

	// What it replaces is kept in the history, which keeps to its size.
	the_history = { .on = true, .long_samples = true, .megabytes = 0 };
	EXPECT_TRUE(restore({ .everything = true }).done());
	EXPECT_EQ(history_steps().size(), 1u);
	the_history = {};

	// Of two of a name a request deletes the first one.
	rack.machine.add_sample("KICK", 44100, ramp(7, 7));
	rack.machine.add_program("PIANO", 1), rack.machine.add_program("EXTRA", 1);
	EXPECT_TRUE(restore({ .remove_others = true }).done());
	EXPECT_EQ(words, "Delete 1 on the sampler, keep 5 as they are, leave out 2, which "
			 "cannot be sent.");
	EXPECT_EQ(rack.machine.programs.size(), 3u);
	EXPECT_EQ(rack.machine.programs[0].keygroups.size(), 2u);
	EXPECT_EQ(rack.machine.samples[3].words.size(), 7u);
	rack.machine.samples.pop_back(), rack.machine.programs.pop_back();

	// A line that dies ends it with a verdict, and a second one goes on.
	rack.wipe();
	ASSERT_TRUE(plan_restore(folder(), {}, &plan).done());
	rack.fall_silent(12);
	const outcome broken = carry_out(plan, &(items = items_of(plan)));
	EXPECT_EQ(broken.how, ending::no_answer);
	EXPECT_EQ(states().back(), '.');
	EXPECT_NE(broken.words.find("\nNot tried: "), broken.words.npos) << broken.words;
	rack.recover();
	EXPECT_TRUE(restore().done());
	EXPECT_EQ(rack.machine.samples.size(), 3u);

	h.use_sampler(model_s5000, 0);
	EXPECT_EQ(plan_restore(folder(), {}, &plan).words,
		"This is the backup of 'test sampler', an Akai S3000/S3000XL. An Akai S5000/6000 "
		"cannot take it.");
}

// One window tells of all; what failed is tried again there, and what came stays done.
TEST_F(backup, a_dead_line_leaves_a_verdict_in_the_window_and_the_rest_follows)
{
	forget_commands();
	s1000_rack rack(h, s1000_model::s3000, model_s3000);
	const auto told = [&](int control) { return h.texts[{ window_progress, control }]; };
	const auto marks = [&] {
		std::string text;
		for (const entry_mark mark : h.marks[{ window_progress, progress_list }])
			text += mark == entry_mark::done      ? 'd'
				: mark == entry_mark::failed  ? 'f'
				: mark == entry_mark::skipped ? 's'
							      : '.';
		return text;
	};
	velmor_command(window_main, menu_backup);
	for (const int button : { backup_begin, backup_restore }) {
		SCOPED_TRACE(button);
		h.on_pump = [&] { // in the second sample
			if (marks().find('d') != std::string::npos &&
				told(progress_item) == "sample SNARE")
				stop_progress();
		};
		velmor_command(window_backup, button);
		h.on_pump = nullptr;
		EXPECT_EQ(marks(), button == backup_begin ? "dddf." : "df...");
		EXPECT_EQ(told(progress_reason), "You stopped it in the middle of 'sample SNARE'.");
		velmor_command(window_progress, progress_again);
		EXPECT_EQ(marks(), "ddddd");
		EXPECT_EQ(told(progress_title), button == backup_begin
							? "5 of 5 came into the backup"
							: "5 of 5 were brought to the sampler");
		rack.wipe();
	}
	forget_commands();
}

} // namespace velmor
