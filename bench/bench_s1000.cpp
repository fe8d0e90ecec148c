// bench_s1000.cpp - lists, saves and transfers of the S1000 family against what physics needs
//
// The driver talks to a virtual S3000 over a virtual MIDI cable. In virtual time the
// seconds are those of the cable (320 us a byte), of the machine (3 ms before each answer)
// and of our own waits; without the last they are the least that any program could take:
//
//	least = 320 us * bytes both ways + 3 ms * answers + the driver's stated pauses
//
// In real time, without wire delay, an exchange shows what the program itself costs.
//
// Ends with 1 when a measure misses its mark.

#include "platform/backends.h"
#include "src/velmor_window.h"
#include "tests/support/test_host.h"
#include "virtual/demo_content.h"
#include "virtual/midi_ports.h"
#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <unistd.h>

namespace velmor
{
namespace
{

constexpr u8 exclusive_channel = 5;
constexpr double most_above_least = 1.02;
constexpr double longest_exchange = 0.0002; // seconds
constexpr double largest_growth = 16;       // MB; the record as a whole takes 129

bool missed = false;

void report(const char *what, const char *measure, bool good)
{
	std::printf("%-44s %s%s\n", what, measure, good ? "" : "   MISSED");
	missed |= !good;
}

// A machine on a cable that counts what crosses it.
struct counted_machine {
	s1000_machine machine{ s1000_model::s3000, exclusive_channel };
	std::size_t bytes = 0, answers = 0;

	midi_machine on_wire()
	{
		midi_machine m = machine.on_wire();
		m.answer = [this](machine::byte_view message) {
			machine::bytes answer = machine.answer(message);
			bytes += message.size() + answer.size();
			answers += !answer.empty();
			return answer;
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

// The system with a machine plugged in and chosen, its log off.
void choose_port()
{
	host.midi = &virtual_midi;
	current_run_mode.diagnostics = false;
	selected_midi_in_interface = selected_midi_out_interface = 0;
}

void unplug()
{
	close_midi_output();
	unplug_all_midi();
}

const _sampler_type &row_of_s3000()
{
	return *get_sampler(model_s3000);
}

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

// ---- In virtual time ------------------------------------------------------------------

template <typename work>
void compare(const char *what, test_host &h, counted_machine &m, double pauses, work run)
{
	m.bytes = m.answers = 0;
	const double began = h.time.now();
	run();
	const double took = h.time.now() - began, least = m.least() + pauses;
	char measure[160];
	std::snprintf(measure, sizeof measure,
		"%9.3f s   least %9.3f s   ratio %.4f   (%zu answers)", took, least, took / least,
		m.answers);
	report(what, measure, m.answers > 0 && took / least <= most_above_least);
}

void measure_lists_and_download()
{
	test_host h;
	counted_machine m;
	constexpr std::size_t words = 22050;
	fill_for_benchmark(m.machine, 100, 8, 200, words);
	plug_midi(h.time, m.on_wire(), "S3000");
	choose_port();
	const double before = resident_mb();
	h.use_sampler(model_s3000, exclusive_channel);
	_dev_status *status = current_sampler->status;
	const _sampler_type &row = row_of_s3000();

	row.getstatus(1, exclusive_channel, status);
	compare("program list, 100 of 8 keygroups", h, m, 0,
		[&] { row.getproglist(1, exclusive_channel, status); });
	char measure[160];
	const double growth = resident_mb() - before;
	std::snprintf(measure, sizeof measure, "%9.3f MB", growth);
	report("memory of an open program view", measure, growth <= largest_growth);
	compare("sample list, 200 samples", h, m, 0,
		[&] { row.getsamplelist(1, exclusive_channel, status); });
	report("  all were read", "",
		status->programs == 100 && status->program[99].keygroups == 8 &&
			!std::strcmp(status->program[99].keygroup[7].keyzone[3].samplename,
				"SAMPLE 200") &&
			status->samples == 200 &&
			!std::strcmp(status->sample[199].name, "SAMPLE 200"));

	// The last program is found by asking for the name of each.
	status->program[99].keygroup[7].low_note = 61;
	compare("save of a program of 8 keygroups", h, m, 0, [&] { row.saveprogram(99, nullptr); });
	report("  it was taken", "", m.machine.programs[99].keygroups[7][3] == 61);

	// 22050 words are 552 packets, with 50 ms of rest for the machine after each.
	compare("download of half a second, 22050 words", h, m, 552 * 0.050,
		[&] { row.downloadsample(1, exclusive_channel, "SAMPLE 007"); });
	report("  its file is there", "",
		h.content(h.config + "\\sample\\SAMPLE 007.wav")
				.value_or(std::vector<u8>())
				.size() > 2 * words);
	unplug();
}

// ---- In real time ---------------------------------------------------------------------

std::mutex waking;
std::condition_variable woken;
bool awake = false;

void wake()
{
	std::lock_guard held(waking);
	awake = true;
	woken.notify_one();
}

void pump(int max_ms)
{
	std::unique_lock held(waking);
	woken.wait_for(held, std::chrono::milliseconds(max_ms), [] { return awake; });
	awake = false;
}

void measure_exchange()
{
	test_host h;
	timeline time;
	s1000_machine machine(s1000_model::s3000, exclusive_channel);
	fill_demo(machine);
	plug_midi(time, machine, "S3000", no_wire_delay);
	choose_port();
	static ui_service ui;
	ui = *host.ui;
	ui.pump = pump;
	ui.wake = wake;
	host.ui = &ui;
	host.clock = &posix_clock;
	host.midi->on_arrival(wake);
	time.run_in_real_time();

	const std::vector<u8> request = hex("F0 47 05 06 48 00 00 F7");
	std::vector<double> seconds;
	for (int i = 0; i < 2000; i++) {
		u8 answer[1000];
		int length = sizeof answer;
		const double began = posix_clock.counter();
		send_midi_string_ex(
			request.data(), static_cast<int>(request.size()), answer, &length, 1);
		if (length == 392)
			seconds.push_back(posix_clock.counter() - began);
	}
	time.stop();
	unplug();
	std::sort(seconds.begin(), seconds.end());
	const bool all = seconds.size() == 2000;
	const double median = all ? seconds[1000] : 0, late = all ? seconds[1980] : 0;
	char measure[160];
	std::snprintf(measure, sizeof measure, "%9.1f us median, %.1f us at 99 of 100",
		median * 1e6, late * 1e6);
	report("one exchange without wire delay", measure, all && median <= longest_exchange);
}

} // namespace
} // namespace velmor

int main()
{
	velmor::measure_lists_and_download();
	velmor::measure_exchange();
	return velmor::missed;
}
