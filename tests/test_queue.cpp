// test_queue.cpp - the same work on several samples: what is asked, sent, kept and told

#include "src/velmor_window.h"
#include "src/waveqx.h"
#include "src/waveqx_file.h"
#include "tests/support/fake_model.h"
#include "virtual/midi_ports.h"
#include "virtual/s1000.h"
#include "virtual/wire.h"

using namespace velmor;

namespace
{

using lines = std::vector<std::string>;
using boxes = std::vector<shown_box>;
using rows = std::vector<lines>;
using marks = std::vector<entry_mark>;

class queues : public host_test
{
protected:
	queues() : model(h)
	{
		forget_commands();
		model.names = { "A", "B", "C", "D" };
	}
	~queues() override { forget_commands(); }

	std::string spooled(const std::string &name) { return h.config + "\\sample\\" + name; }
	void spool(const std::string &name, const std::vector<int> &words = { 1, 2, 3, 4 })
	{
		h.put_content(spooled(name), wave_bytes(44100, 1, words));
	}
	void open()
	{
		velmor_command(window_main, main_samples);
		model.calls.clear();
		h.boxes.clear();
	}
	void choose(int list, const std::vector<int> &places)
	{
		host.ui->select_several(window_samples, list, places);
		velmor_selection(window_samples, list);
	}
	void press(int control, int window = window_samples)
	{
		EXPECT_TRUE(velmor_command(window, control));
	}
	std::string told(int control) { return h.texts[{ window_progress, control }]; }
	bool seen(int control) { return h.visible[{ window_progress, control }]; }
	rows items() { return h.rows[{ window_progress, progress_list }]; }
	marks item_marks() { return h.marks[{ window_progress, progress_list }]; }
	lines sent(const char *what)
	{
		lines found;
		for (const std::string &call : model.calls)
			if (call.starts_with(what))
				found.push_back(call.substr(std::string(what).size() + 1));
		return found;
	}

	fake_model model;
};

constexpr entry_mark done = entry_mark::done, failed = entry_mark::failed,
		     skipped = entry_mark::skipped, waiting = entry_mark::waiting,
		     running = entry_mark::running;

} // namespace

TEST_F(queues, several_downloads_end_in_one_verdict)
{
	spool("B.wav", { 9 });
	open();
	choose(samples_loaded_list, { 0, 1, 3 });
	h.answers = { false, true };
	press(samples_download);
	EXPECT_EQ(h.boxes, (boxes{ { "Overwrite existing samples? (1 of 3)", "WARNING" },
				   { "Download the other samples? (2 of 3)", "WARNING" } }));
	EXPECT_EQ(sent("downloadsample"), (lines{ "A", "D" }));
	EXPECT_EQ(items(), (rows{ { "A", "done, 134 bytes", "" },
				   { "B", "skipped: kept the one on this computer", "" },
				   { "D", "done, 134 bytes", "" } }));
	EXPECT_EQ(item_marks(), (marks{ done, skipped, done }));
	EXPECT_EQ(told(progress_counts), "2 done · 1 skipped");
	EXPECT_FALSE(h.progress.visible) << "the other windows work";
	EXPECT_TRUE(seen(progress_close) && seen(progress_copy) && seen(progress_list));
	EXPECT_FALSE(seen(progress_again) || seen(progress_stop) || seen(progress_bar));
	EXPECT_EQ((h.texts[{ window_samples, status_outcome }]), "2 of 2 samples were downloaded.");
	EXPECT_EQ((h.several[{ window_samples, samples_loaded_list }]),
		(std::vector<int>{ 0, 1, 3 }));
	// The next piece of work has the window for itself.
	choose(samples_loaded_list, { 2 });
	press(samples_download);
	EXPECT_TRUE(seen(progress_bar) && seen(progress_stop));
	EXPECT_FALSE(seen(progress_list) || seen(progress_title) || seen(progress_stop_after));
}

TEST_F(queues, a_dead_line_is_told_once_and_the_rest_is_tried_again)
{
	open();
	choose(samples_loaded_list, { 0, 1, 2, 3 });
	model.on_step = [&](int step) {
		model.silent = step == 3 && model.calls.back() == "downloadsample A";
	};
	press(samples_download);
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_EQ(sent("downloadsample"), (lines{ "A", "B" }));
	EXPECT_EQ(item_marks(), (marks{ done, failed, waiting, waiting }));
	EXPECT_EQ(told(progress_again), "Try the other 3 again");
	const std::string why =
		"The sampler stopped answering at " + clock_text(1000000000) +
		", in the middle of 'B'.\nNo MIDI port is chosen for the way to the sampler or "
		"back. Choose MIDI-Out and MIDI-In in Basic settings.";
	EXPECT_EQ(verdict_text(), "1 of 4 samples were downloaded\n" + why +
					  "\n1 done · 1 failed · 2 not tried\n\n"
					  "A\tdone, 134 bytes\nB\tno answer\nC\tnot tried\n"
					  "D\tnot tried\n");

	// Still off: nothing is begun, the verdict stays.
	press(progress_again, window_progress);
	EXPECT_EQ(sent("downloadsample").size(), 2u);
	EXPECT_EQ(h.boxes.size(), 1u);
	model.silent = false;
	model.on_step = nullptr;
	spool("A.wav", { 7 }); // what is done is not fetched again
	press(progress_again, window_progress);
	EXPECT_EQ(sent("downloadsample"), (lines{ "A", "B", "B", "C", "D" }));
	EXPECT_EQ(item_marks(), marks(4, done));
	EXPECT_EQ(h.content(spooled("A.wav")), wave_bytes(44100, 1, { 7 }));
	press(progress_close, window_progress);
	EXPECT_FALSE(h.progress.visible);
}

TEST_F(queues, stop_and_stop_after_this_one)
{
	const struct {
		int control;
		entry_mark second;
		const char *why, *again;
	} ways[] = {
		{ progress_stop, failed, "You stopped it in the middle of 'B'.",
			"Try the other 3 again" },
		{ progress_stop_after, done, "You stopped it after 'B'.", "Try the other 2 again" },
	};
	for (const auto &way : ways) {
		open();
		choose(samples_loaded_list, { 0, 1, 2, 3 });
		model.on_step = [&](int step) {
			if (step || model.calls.back() != "downloadsample B")
				return;
			EXPECT_EQ(item_marks(), (marks{ done, running, waiting, waiting }));
			press(way.control, window_progress);
		};
		press(samples_download);
		EXPECT_EQ(item_marks(), (marks{ done, way.second, waiting, waiting })) << way.why;
		EXPECT_EQ(told(progress_reason), way.why);
		EXPECT_EQ(told(progress_again), way.again);
		EXPECT_EQ(sent("downloadsample"), (lines{ "A", "B" }));
	}
}

TEST_F(queues, a_stop_while_a_list_is_read_is_not_forgotten)
{
	spool("x.wav");
	spool("y.wav");
	open();
	choose(samples_local_list, { 0, 1 });
	static list_operation whole;
	static int lists, stop_at;
	whole = model.row.getsamplelist;
	model.row.getsamplelist = [](u8 control, u8 exclusive, _dev_status *dev) {
		if (++lists == stop_at)
			velmor_command(window_progress, progress_stop);
		forget_stop(); // a driver that begins takes back a stop of earlier work
		whole(control, exclusive, dev);
	};
	for (const auto &[at, uploads] : { std::pair(1, lines{}), std::pair(2, lines{ "x" }) }) {
		line_silent("No answer came."); // so the list is read in front, too
		lists = 0;
		stop_at = at;
		model.calls.clear();
		press(samples_upload);
		lines paths;
		for (const std::string &name : uploads)
			paths.push_back(spooled(name));
		EXPECT_EQ(sent("uploadsample"), paths);
	}
}

TEST_F(queues, uploads_ask_once_about_what_would_be_silent)
{
	spool("a.wav");
	h.put_content(spooled("b.wav"), wave_bytes(44100, 2, { 1000, 1000, 2000, 2000 }));
	spool("c.wav");
	h.put_content(spooled("d.wav"), wave_bytes(44100, 3, { 1, 1, 1 }));
	open();
	choose(samples_local_list, { 0, 1, 2, 3 });
	h.answers = { true, false, true };
	press(samples_upload);
	ASSERT_EQ(h.boxes.size(), 3u);
	EXPECT_TRUE(h.boxes[0].text.starts_with("The sampler has a sample called 'A' already"));
	EXPECT_TRUE(h.boxes[1].text.starts_with("1 of 4 files would not arrive as they are. The "
						"first: A file of 16 bit and 2 channels"));
	EXPECT_EQ(h.boxes[2].text, "Upload the other samples? (2 of 4)");
	EXPECT_EQ(sent("uploadsample"), (lines{ spooled("a"), spooled("c") }));
	EXPECT_EQ(item_marks(), (marks{ done, skipped, done, skipped }));

	model.calls.clear();
	choose(samples_local_list, { 0, 1 });
	press(samples_upload);
	EXPECT_EQ(sent("uploadsample"), (lines{ spooled("a"), spooled("b") }));
	_sample sample = {};
	ASSERT_TRUE(create_sample_from_file(spooled("b").c_str(), &sample));
	EXPECT_EQ(sample.channels, 1u);
	free_sample_data(&sample);
}

TEST_F(queues, several_are_deleted_on_the_sampler_after_one_question)
{
	open();
	choose(samples_loaded_list, { 1, 2 });
	h.answers = { false };
	press(samples_loaded_delete);
	EXPECT_EQ(h.boxes, (boxes{ { "Delete 2 samples from the sampler's memory?", "WARNING" } }));
	EXPECT_EQ(model.names.size(), 4u);
	press(samples_loaded_delete);
	EXPECT_EQ(model.names, (lines{ "A", "D" }));
	EXPECT_EQ(told(progress_title), "2 of 2 samples were deleted");
	EXPECT_EQ((h.selections[{ window_samples, samples_loaded_list }]), 1) << "the neighbour";

	model.refuses = true;
	choose(samples_loaded_list, { 0, 1 });
	press(samples_loaded_delete);
	EXPECT_EQ(items()[0][1], "The sampler did not do it: 'A' is still in its list.");
	EXPECT_EQ(told(progress_again), "Try the failed again");
	EXPECT_EQ((h.several[{ window_samples, samples_loaded_list }]), (std::vector<int>{ 0, 1 }));
}

TEST_F(queues, one_undo_puts_all_deleted_files_back)
{
	for (const char *name : { "x", "y", "z" })
		spool(std::string(name) + ".wav");
	h.put_content(spooled("x.info"), hex("01"));
	open();
	choose(samples_local_list, { 0, 2 });
	press(samples_local_delete);
	EXPECT_EQ((h.lists[{ window_samples, samples_local_list }]), lines{ "y" });
	press(status_undo);
	EXPECT_EQ((h.texts[{ window_samples, status_outcome }]), "Put 2 samples back.");
	EXPECT_EQ((h.lists[{ window_samples, samples_local_list }]), (lines{ "x", "y", "z" }));
	EXPECT_EQ(h.content(spooled("x.info")), hex("01"));
	EXPECT_FALSE((h.visible[{ window_samples, status_undo }]));
}

TEST_F(queues, how_long_it_takes_is_said_from_what_it_took)
{
	model.download_steps = 400; // of 10 ms
	open();
	choose(samples_loaded_list, { 0, 1, 2 });
	lines waits, whole, bars;
	model.on_step = [&](int step) {
		if (step != 200)
			return;
		waits.push_back(items()[2][1]);
		whole.push_back(told(progress_whole_left));
		const auto bar = h.bars[{ window_progress, progress_whole }];
		bars.push_back(format_text("%d/%d", bar.first / 100, bar.second / 100));
	};
	press(samples_download);
	EXPECT_EQ(waits, (lines{ "waits", "waits, about 4 s", "49 %" }));
	EXPECT_EQ(whole[1], "about 7 s left for all");
	EXPECT_EQ(bars, (lines{ "4/30", "14/30", "24/30" }));
	EXPECT_EQ(items()[0][2], "0:04");
	EXPECT_EQ(span_text(59.2), "1 min 0 s");
	EXPECT_EQ(span_text(7500), "2 h 5 min");
}

TEST_F(queues, without_a_view_there_is_the_outcome_alone)
{
	open();
	work_queue queue = { { .name = "A" }, { .name = "GONE" }, { .name = "B" } };
	const outcome result = download_samples(&queue);
	EXPECT_EQ(result.words, "2/3 samples downloaded!\n"
				"Not downloaded: GONE ('GONE' is not on the sampler any more.)");
	EXPECT_FALSE(h.progress.visible || seen(progress_list));
}

// ---- With a machine ---------------------------------------------------------------------------

TEST_F(host_test, a_cable_pulled_in_a_queue_leaves_whole_samples_and_the_rest_follows)
{
	forget_commands();
	s1000_machine machine(s1000_model::s3000, 5);
	host.midi = &virtual_midi;
	const int port = plug_midi(h.time, machine, "USB MIDI 1");
	reload_midi_setup(false);
	selected_midi_in_interface = selected_midi_out_interface = 0;
	h.use_sampler(model_s3000, 5);
	for (const char *name : { "A", "B", "C" })
		h.put_content(h.config + "\\sample\\" + name + ".wav",
			wave_bytes(44100, 1, std::vector<int>(200, name[0])));
	velmor_command(window_main, main_samples);
	host.ui->select_several(window_samples, samples_local_list, std::vector{ 0, 1, 2 });
	h.on_pump = [&] {
		if (machine.samples.size() == 2) // the header of the second has arrived
			port_wire(port).set_fault(
				{ .kind = wire_fault_kind::silent, .from_then_on = true });
	};
	velmor_command(window_samples, samples_upload);
	h.on_pump = nullptr;
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_EQ((h.marks[{ window_progress, progress_list }]), (marks{ done, failed, waiting }));
	port_wire(port).clear_faults();
	velmor_command(window_progress, progress_again);
	EXPECT_EQ((h.marks[{ window_progress, progress_list }]), marks(3, done));
	ASSERT_GE(machine.samples.size(), 3u);
	// Each is found by its place, which the one before has changed.
	const std::vector<std::int16_t> kept = machine.samples[1].words;
	const std::size_t before = machine.samples.size();
	host.ui->select_several(window_samples, samples_loaded_list, std::vector{ 0, 2 });
	velmor_command(window_samples, samples_loaded_delete);
	ASSERT_EQ(machine.samples.size(), before - 2);
	EXPECT_EQ(machine.samples[0].words, kept);
	close_midi_output();
	unplug_all_midi();
	reload_midi_setup(false);
	selected_midi_in_interface = selected_midi_out_interface = -1;
	forget_commands();
}
