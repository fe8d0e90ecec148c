// bench_ctl.cpp - velmorctl get --all of 200 samples: time against the wire, and memory
//
// The command runs as the shell runs it, on a virtual S3000 on a MIDI cable in virtual time. The
// least that any program could take is what the bytes need, with the answers of the machine and
// the driver's stated pauses: 320 us a byte, 3 ms before each answer, 50 ms of rest behind each
// packet.
//
// What memory the second hundred takes beyond the first must be nothing: samples are written as
// they come, not kept.
//
// Ends with 1 when a measure misses its mark.

#include "bench/usb_measure.h"
#include "tests/support/ctl_fixture.h"
#include "virtual/demo_content.h"
#include <cstdio>
#include <filesystem>
#include <malloc.h>

namespace velmor
{
namespace
{

constexpr double largest_growth = 0.1; // MB, over a hundred samples of 16000 bytes each
constexpr std::size_t sample_count = 200, words = 4000;

// What is allocated now.
double heap_mb()
{
	return static_cast<double>(mallinfo2().uordblks) / 1e6;
}

std::size_t files_in(const std::string &folder)
{
	std::size_t count = 0;
	for (const auto &entry : std::filesystem::directory_iterator(folder))
		count += entry.path().extension() == ".wav";
	return count;
}

// A studio whose S3000 holds 200 samples. What crosses the wires is counted, not kept.
struct counted_studio : studio {
	double least = 0;               // seconds
	double at_half = 0, at_end = 0; // memory
	unsigned long pumps = 0;

	counted_studio() : studio(words)
	{
		h.limits = { .seconds = 1e9,
			.calls_at_a_moment = 1L << 40,
			.disk_bytes = std::uint64_t{ 1 } << 32 };
		s3000.samples.clear();
		fill_for_benchmark(s3000, 1, 1, sample_count, words);
		h.on_pump = [this] { look(); };
	}
	void look()
	{
		s3000.heard.clear();
		for (const std::string &line : take().midi)
			least += of_cable(line);
		if (++pumps % 64)
			return;
		const std::size_t files = files_in(h.root + "/VELMOR/CONFIG/sample");
		if (files >= sample_count / 2 && at_half == 0)
			at_half = heap_mb();
		if (files < sample_count)
			at_end = heap_mb();
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
};

void measure()
{
	counted_studio s;
	const double began = s.h.time.now();
	const ran r = ctl({ "--sampler", "Rack", "get", "--all" });
	const double took = s.h.time.now() - began;
	s.look();
	if (r.status)
		std::fputs(r.words.c_str(), stderr);
	report("get --all of 200 samples",
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
	velmor::measure();
	return velmor::missed;
}
