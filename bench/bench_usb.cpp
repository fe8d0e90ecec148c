// bench_usb.cpp - transfers, lists and saves of USB samplers against what bus and machine need
//
// The driver talks to a virtual S5000 on a virtual full-speed bus, in virtual time. The
// least that any program could take is what crosses the bus in its packets, one after the
// other, and the rest of the machine before each answer (usb_measure.h).
//
// Of a transfer, only the blocks count, their acknowledgements and the answers to them.
//
// Ends with 1 when a measure misses its mark.

#include "bench/usb_measure.h"
#include "src/usbqx.h"
#include "virtual/demo_usb.h"
#include <chrono>

namespace velmor
{
namespace
{

constexpr double least_of_speed = 0.90;     // of a transfer
constexpr double most_of_computer = 0.0002; // seconds an answer
constexpr std::size_t header = 144, sound = 16 << 20;

struct bench {
	test_host h;
	s5000 machine;
	_dev_status *status = nullptr;

	bench()
	{
		machine.name = "Bench";
		host.usb = &virtual_usb;
		plug_usb(h.time, machine);
		current_run_mode.diagnostics = false;
	}
	~bench() { unplug_all_usb(); }
	const _sampler_type &load()
	{
		init_usb(1);
		h.use_sampler(model_s5000, 0, "Bench");
		status = current_sampler->status;
		const _sampler_type &row = *get_sampler(model_s5000);
		row.getstatus(1, 0, status);
		row.getsamplelist(1, 0, status);
		return row;
	}
	std::string in_spool(const char *name) { return h.config + "\\sample\\" + name; }
};

// What crosses the bus with each block: the block, the acknowledgement, the answer to it.
double least_of_blocks(std::size_t bytes, std::size_t block, std::size_t answer, double rest)
{
	const std::size_t whole = bytes / block, last = bytes % block;
	const double each = on_bus(1) + on_bus(answer) + rest;
	return static_cast<double>(whole) * (on_bus(block) + each) +
	       (last ? on_bus(last) + each : 0);
}

void report_transfer(const char *what, double took, double least, bool whole)
{
	char measure[160];
	std::snprintf(measure, sizeof measure, "%9.3f s   least %9.3f s   %.4f of it   (%.3f MB/s)",
		took, least, least / took, static_cast<double>(sound) / 1e6 / took);
	report(what, measure, whole && least / took >= least_of_speed);
}

void measure_transfers()
{
	bench b;
	std::vector<std::int16_t> words(sound / 2);
	for (std::size_t i = 0; i < words.size(); i++)
		words[i] = static_cast<std::int16_t>(i * 31);
	const usb_bytes file = make_wave(words, {});
	b.machine.add_sample("LONG", file);
	const _sampler_type &row = b.load();
	const std::size_t block = b.machine.block_sizes[0];
	const double rest = b.machine.block_latency;

	double began = b.h.time.now();
	row.downloadsample(1, 0, "LONG");
	report_transfer("download of 16 MiB", b.h.time.now() - began,
		least_of_blocks(sound, block, 4, rest),
		b.h.content(b.in_spool("LONG.wav")) == file);

	// The first block holds the header alone, and every block has its full size.
	b.h.put_content(b.in_spool("BACK.wav"), file);
	const std::size_t blocks = 1 + (sound + block - 1) / block;
	began = b.h.time.now();
	row.uploadsample(b.in_spool("BACK").c_str());
	report_transfer("upload of 16 MiB", b.h.time.now() - began,
		least_of_blocks(blocks * block, block, 8, rest),
		b.machine.samples.size() == 2 && b.machine.samples[1].wave == file);
}

void measure_walk_and_save()
{
	bench b;
	fill_for_usb_benchmark(b.machine, 50, 16);
	const _sampler_type &row = b.load();
	const auto real = std::chrono::steady_clock::now();
	const auto walk = [&] {
		row.getproglist(1, 0, b.status);
		return b.status->programs == 50 && b.status->program[49].keygroups == 16 &&
		       std::string_view("SAMPLE 001") ==
			       b.status->program[49].keygroup[15].keyzone[3].samplename;
	};
	const std::size_t answers =
		compare("walk of 50 programs of 16 keygroups", b.h, b.machine, walk);
	const std::chrono::duration<double> cost = std::chrono::steady_clock::now() - real;
	char measure[160];
	std::snprintf(measure, sizeof measure, "%9.1f us of this computer for each answer",
		cost.count() / static_cast<double>(answers) * 1e6);
	report("  the program and the virtual machine", measure,
		answers && cost.count() / static_cast<double>(answers) <= most_of_computer);
	compare("save of a program of 16 keygroups, S5000", b.h, b.machine, [&] {
		b.status->program[49].keygroup[15].amp_attack = 61;
		row.saveprogram(49, nullptr);
		return b.machine.programs[49].keygroups[15].amp[0] == 61;
	});
}

void measure_z4_save()
{
	test_host h;
	z4 machine(z4_model::z8);
	machine.name = "Bench";
	machine.add_program("PROGRAM 001", std::vector<z4_keygroup>(16));
	host.usb = &virtual_usb;
	plug_usb(h.time, machine);
	current_run_mode.diagnostics = false;
	init_usb(1);
	h.use_sampler(model_z4, 0, "Bench");
	const _sampler_type &row = *get_sampler(model_z4);
	_dev_status *status = current_sampler->status;
	row.getstatus(1, 0, status);
	row.getproglist(1, 0, status);
	compare("save of a program of 16 keygroups, Z8", h, machine, [&] {
		status->program[0].keygroup[15].low_note = 61;
		row.saveprogram(0, nullptr);
		return machine.programs[0].keygroups[15].low_note == 61;
	});
	unplug_all_usb();
}

} // namespace
} // namespace velmor

int main()
{
	velmor::measure_transfers();
	velmor::measure_walk_and_save();
	velmor::measure_z4_save();
	return velmor::missed;
}
