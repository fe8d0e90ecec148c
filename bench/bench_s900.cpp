// bench_s900.cpp - lists, dumps and saving of an S900 against what the wire and its pauses need
//
// The driver talks to a virtual S900 in virtual time. The least that any program could take is
//
//	least = 320 us * bytes one after the other + 3 ms * answers + the pauses of the protocol
//
// In a dump the sampler's bytes come during the pauses: the driver's own count, and the pauses.
// The head of a dump has no end, so it is waited for three seconds, counted in whole ones.
//
// Ends with 1 when a measure misses its mark.

#include "src/velmor_window.h"
#include "src/waveqx.h"
#include "tests/support/test_host.h"
#include "virtual/midi_ports.h"
#include "virtual/s900.h"
#include <cstdio>

namespace velmor
{
namespace
{

constexpr double most_above_least = 1.02;
bool missed = false;

// A machine on a cable that counts what has to wait for each other.
struct counted_machine {
	s900_machine machine{ s900_model::s950 };
	std::size_t bytes = 0, answers = 0;

	midi_machine on_wire(timeline &time)
	{
		midi_machine m = machine.on_wire(time);
		m.answer = [this, answer = m.answer](machine::byte_view message) {
			machine::bytes said = answer(message);
			const bool dump = message[1] != 0x47;
			bytes += message.size() + (dump ? 0 : said.size());
			answers += !dump && !said.empty();
			return said;
		};
		return m;
	}
	double least() const
	{
		const wire_settings cable;
		return cable.byte_time * static_cast<double>(bytes) +
		       cable.latency * static_cast<double>(answers);
	}
};

template <typename work>
void compare(const char *what, test_host &h, counted_machine &m, double pauses, work run)
{
	m.bytes = m.answers = 0;
	h.boxes.clear();
	const double began = h.time.now();
	run();
	const double took = h.time.now() - began, least = m.least() + pauses;
	const bool good = took / least <= most_above_least && m.bytes > 0;
	std::printf("%-40s %9.3f s   least %9.3f s   ratio %.4f%s\n", what, took, least,
		took / least, good ? "" : "   MISSED");
	missed |= !good;
}

void check(const char *what, bool good)
{
	std::printf("  %-38s %s\n", what, good ? "" : "MISSED");
	missed |= !good;
}

void measure()
{
	test_host h;
	counted_machine m;
	constexpr std::size_t words = 22050, blocks = 368;
	m.machine.add_sample("KICK", 16000, std::vector<std::int16_t>(words, 100));
	m.machine.omni = true;
	for (int i = 0; i < 16; i++)
		m.machine.add_program(format_text("PROGRAM %d", i), 4);
	plug_midi(h.time, m.on_wire(h.time), "S900");
	host.midi = &virtual_midi;
	current_run_mode.diagnostics = false;
	selected_midi_in_interface = selected_midi_out_interface = 0;
	h.use_sampler(model_s900, 0);
	_dev_status *status = current_sampler->status;
	const _sampler_type &row = *get_sampler(model_s900);
	const std::string file = h.config + "\\sample\\KICK";

	row.getstatus(1, 0, status);
	compare("program list, 16 of 4 keygroups", h, m, 0, [&] { row.getproglist(1, 0, status); });
	compare("sample list", h, m, 0, [&] { row.getsamplelist(1, 0, status); });
	compare("saving a program of 4 keygroups", h, m, 0, [&] { row.saveprogram(3, nullptr); });
	compare("download of 22050 words", h, m, 3 + 0.1 + 0.2 * (blocks + 1),
		[&] { row.downloadsample(1, 0, "KICK"); });
	check("its file is there",
		h.content(file + ".wav").value_or(std::vector<u8>()).size() == 102 + 2 * words);
	load_local_samples(nullptr);
	m.machine.samples[0].words.assign(words, 0);
	compare("upload of 22050 words", h, m, 0.4 + 0.3 * blocks + 0.3 + 0.5 + 1.0,
		[&] { row.uploadsample(file.c_str()); });
	check("the sampler has its words",
		h.boxes.empty() &&
			m.machine.samples[0].words == std::vector<std::int16_t>(words, 100));
	close_midi_output();
	unplug_all_midi();
}

} // namespace
} // namespace velmor

int main()
{
	velmor::measure();
	return velmor::missed;
}
