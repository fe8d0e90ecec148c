// bench_ctl.cpp - velmorctl get --all of 200 samples: time against the wires, and memory
//
// The command runs as the shell runs it, on virtual machines in virtual time: an S3000 on a MIDI
// cable and an S5000 on the USB, with 200 samples each. The least that any program could take is
// what the bytes need, with the answers of the machine and the driver's stated pauses:
//
//	MIDI    320 us a byte, 3 ms before each answer, 50 ms of rest behind each packet
//	USB     the packets of each transfer at full speed, 1.216 MB/s
//
// What memory the second hundred takes beyond the first must be nothing: samples are written as
// they come, not kept.
//
// Ends with 1 when a measure misses its mark.

#include "bench/usb_measure.h"
#include "tests/support/ctl_fixture.h"
#include "virtual/demo_content.h"
#include "virtual/wave_image.h"
#include <cstdio>
#include <filesystem>
#include <unistd.h>

namespace velmor
{
namespace
{

constexpr double largest_growth = 0.5; // MB, over a hundred samples of 0.1 MB
constexpr std::size_t sample_count = 200, midi_words = 4000, usb_words = 50000;

double resident_mb()
{
	long pages = 0, resident = 0;
	if (std::FILE *file = std::fopen("/proc/self/statm", "r")) {
		if (std::fscanf(file, "%ld %ld", &pages, &resident) != 2)
			resident = 0;
		std::fclose(file);
	}
	return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

std::size_t files_in(const std::string &folder)
{
	std::size_t count = 0;
	for (const auto &entry : std::filesystem::directory_iterator(folder))
		count += entry.path().extension() == ".wav";
	return count;
}

// A studio whose machines hold 200 samples. What crosses the wires is counted, not kept.
struct counted_studio : studio {
	double least = 0;               // seconds
	double at_half = 0, at_end = 0; // memory
	unsigned long pumps = 0;

	counted_studio() : studio(midi_words)
	{
		h.limits = { .seconds = 1e9,
			.calls_at_a_moment = 1L << 40,
			.disk_bytes = std::uint64_t{ 1 } << 32 };
		s3000.samples.clear();
		fill_for_benchmark(s3000, 1, 1, sample_count, midi_words);
		usb.samples.clear();
		const usb_bytes wave = make_wave(std::vector<std::int16_t>(usb_words, 1000), {});
		for (std::size_t i = 1; i <= sample_count; i++)
			usb.add_sample(format_text("SAMPLE %03zu", i), wave);
		h.on_pump = [this] { look(); };
	}
	void look()
	{
		const traffic crossed_now = take();
		for (const std::string &line : crossed_now.midi)
			least += of_cable(line);
		for (const std::string &line : crossed_now.usb)
			least += of_bus(line);
		if (++pumps % 64)
			return;
		const std::size_t files = files_in(h.root + "/VELMOR/CONFIG/sample");
		if (files >= sample_count / 2 && at_half == 0)
			at_half = resident_mb();
		if (files < sample_count)
			at_end = resident_mb();
	}
	// Bytes of a line "> F0 .. F7".
	static std::size_t bytes_of(const std::string &line) { return (line.size() - 1) / 3; }
	static double of_cable(const std::string &line)
	{
		const wire_settings cable;
		const std::size_t bytes = bytes_of(line);
		const bool answered = line.starts_with("<") && bytes;
		const bool packet = answered && line.starts_with("< F0 7E 00 02");
		return static_cast<double>(bytes) * cable.byte_time +
		       (answered ? cable.latency : 0) + (packet ? 0.050 : 0);
	}
	double of_bus(const std::string &line) const
	{
		const std::size_t bytes = bytes_of(line);
		const double rest = bytes > 1000 ? usb.block_latency : usb.latency;
		return on_bus(bytes) + (line.starts_with("<") ? rest : 0);
	}
};

void measure(const char *sampler)
{
	counted_studio s;
	const double began = s.h.time.now();
	const ran r = ctl({ "--sampler", sampler, "get", "--all" });
	const double took = s.h.time.now() - began;
	s.look();
	report(format_text("get --all of 200 samples, %s", sampler).c_str(),
		format_text("%9.3f s   least %9.3f s   ratio %.4f", took, s.least, took / s.least)
			.c_str(),
		r.status == 0 && took / s.least <= most_above_least);
	const double growth = s.at_end - s.at_half;
	report("  memory of the second hundred", format_text("%9.3f MB", growth).c_str(),
		s.at_half > 0 && growth < largest_growth);
	report("  all were fetched", "",
		files_in(s.h.root + "/VELMOR/CONFIG/sample") == sample_count);
}

} // namespace
} // namespace velmor

int main()
{
	velmor::measure("Rack");
	velmor::measure("Studio");
	return velmor::missed;
}
