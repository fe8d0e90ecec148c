// bench_programs.cpp - the program page with a program of 99 keygroups: opening it, dragging in it
//
// The windows of Qt, offscreen, and a virtual S3000 that holds the program. Measured is what a
// hand waits for: from the choice of the program, or from a step of the mouse, until the window
// is painted; and a list of 512 samples being filled, sorted and filtered. Fails above 200 ms for the
// opening and above 16 ms for a step.

#include "src/velmor_programs_page.h"
#include "tests/ui_fixture.h"
#include "virtual/midi_ports.h"
#include "virtual/s1000.h"
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

using namespace velmor;

static constexpr int keygroups = 99, rounds = 21;
static constexpr double most_ms_to_open = 200, most_ms_a_step = 16;

struct measured {
	const char *what;
	double most_ms;
	std::function<void(int round)> work;
	std::function<void()> before = [] {};
};

class page : public windows
{
public:
	page()
	{
		machine.add_program("SMALL", 1);
		machine.add_program("KIT", keygroups);
		for (std::size_t k = 0; k < keygroups; k++)
			fill(&machine.programs[1].keygroups[k], static_cast<u8>(k));
		h.use_sampler(model_s3000, 5);
		host.midi = &virtual_midi;
		plug_midi(h.time, machine, "virtual");
		reload_midi_setup(false);
		selected_midi_in_interface = selected_midi_out_interface = 0;
		velmor_command(window_main, main_programs);
		at(window_programs, 0)->resize(1280, 860);
		settle();
	}
	~page() override
	{
		close_midi_output();
		unplug_all_midi();
	}
	void TestBody() override {}
	entry_list *list_of_samples()
	{
		return at<entry_list>(window_samples, samples_loaded_list);
	}

	void choose_entry(int index)
	{
		host.ui->select(window_programs, programs_loaded_list, index);
		velmor_selection(window_programs, programs_loaded_list);
		settle();
	}
	void settle()
	{
		for (int i = 0; i < 3; i++)
			QApplication::processEvents();
	}
	void drag_edge(int value)
	{
		velmor_key_map(window_programs, programs_key_map, key_map_event::high_note, 50, -1,
			value, 0);
		settle();
	}
	void drag_bar(int tab, int form, int row, int value)
	{
		host.ui->select(window_programs, programs_tabs, tab);
		velmor_form(window_programs, form, row, form_event::drag, value);
		settle();
	}
	void drag_point(int value)
	{
		host.ui->select(window_programs, programs_tabs, 3);
		velmor_envelope(
			window_programs, programs_second_envelope, envelope_event::drag, 4, value);
		settle();
	}

private:
	// A key each, four velocities.
	static void fill(machine::bytes *block, u8 k)
	{
		(*block)[3] = static_cast<u8>(24 + k);
		(*block)[4] = static_cast<u8>(24 + k);
		for (std::size_t z = 0; z < 4; z++) {
			machine::put_name(*block, 34 + 24 * z, format_text("KIT %d.%zu", k, z));
			(*block)[46 + 24 * z] = static_cast<u8>(32 * z);
			(*block)[47 + 24 * z] = static_cast<u8>(32 * z + 31);
		}
	}
	s1000_machine machine{ s1000_model::s3000, 5 };
};

static double median_ms(const measured &m)
{
	std::vector<double> taken;
	for (int i = 0; i < rounds; i++) {
		m.before();
		const auto began = std::chrono::steady_clock::now();
		m.work(i);
		const std::chrono::duration<double, std::milli> passed =
			std::chrono::steady_clock::now() - began;
		taken.push_back(passed.count());
	}
	std::sort(taken.begin(), taken.end());
	return taken[taken.size() / 2];
}

int main()
{
	setenv("QT_QPA_PLATFORM", "offscreen", 0);
	page p;
	const measured all[] = {
		{ "open a program of 99 keygroups", most_ms_to_open,
			[&](int) { p.choose_entry(1); }, [&] { p.choose_entry(0); } },
		{ "choose another keygroup of it", most_ms_to_open,
			[&](int i) {
				choose_place(50 + i % 2, 0);
				p.settle();
			} },
		{ "drag an edge of the key map", most_ms_a_step,
			[&](int i) { p.drag_edge(80 + i % 2); }, [] {} },
		{ "drag a bar of the keygroup form", most_ms_a_step,
			[&](int i) { p.drag_bar(1, form_of_keygroup, 8, 20 + i); } },
		{ "drag a point of an envelope", most_ms_a_step,
			[&](int i) { p.drag_point(20 + i); } },
	};
	host.ui->show(window_samples, 0, true);
	std::vector<std::vector<std::string>> samples;
	for (int i = 0; i < 512; i++)
		samples.push_back({ format_text("SAMPLE %d", i * 7 % 512),
			format_text("%d.%02d s", i % 9, i % 100), "44100 Hz", "60 (C3)", "no" });
	auto *list = p.list_of_samples();
	const measured lists[] = {
		{ "fill a list of 512 samples", most_ms_a_step,
			[&](int) {
				host.ui->set_rows(window_samples, samples_loaded_list, samples);
				p.settle();
			} },
		{ "sort it by a column", most_ms_a_step,
			[&](int i) {
				list->sort_by(i % 4, Qt::AscendingOrder);
				p.settle();
			} },
		{ "filter it", most_ms_a_step,
			[&](int i) {
				list->search(i % 2 ? "" : "7");
				p.settle();
			} },
	};
	bool good = true;
	const auto tell = [&good](const measured &m) {
		const double taken = median_ms(m);
		std::printf("%-34s %6.1f ms (at most %.0f)\n", m.what, taken, m.most_ms);
		good = good && taken <= m.most_ms;
	};
	std::for_each(std::begin(all), std::end(all), tell);
	std::for_each(std::begin(lists), std::end(lists), tell);
	std::fflush(nullptr);
	std::_Exit(good ? 0 : 1);
}
