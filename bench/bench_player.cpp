// bench_player.cpp - a dense MIDI file for ten minutes: how late its events are, and what it costs
//
// The program's own player on Qt's timers and the machine's clock, with a virtual port that notes
// when it is given each event. Sixteen tracks with a thousand events a second, which a port takes
// at once as one on the USB does; then a tenth of the time with 300 a second on a wire of 31250
// baud, which needs a millisecond for each, printed without a mark. Last, loading: the largest
// file beside the sources, and the dense one, next to libsmf on the same bytes.
//
//	bench_player [SECONDS]    600 unless told
//
// Ends with 1 when an event is lost, or the 99th percentile is above 10.5 ms. Needs a machine that
// does nothing else.

#include "platform/backends.h"
#include "src/controls.h"
#include "src/velmor_midi.h"
#include "tests/support/midi_files.h"
#include "ui/qt_ui.h"
#include "virtual/midi_ports.h"
#include <QApplication>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <smf.h>
#include <sys/resource.h>

namespace velmor
{
namespace
{

using bytes = std::vector<u8>;

constexpr double most_late = 0.0105; // seconds, of 99 events in a hundred
constexpr int tracks = 16;

// ---- A dense file -----------------------------------------------------------------------------

void put_delta(bytes *out, unsigned delta)
{
	if (delta > 127)
		out->push_back(static_cast<u8>(0x80 | delta >> 7));
	out->push_back(delta & 0x7F);
}

// Notes on every channel, at uneven times: due[n] are the ticks of channel n.
bytes dense_file(double seconds, int per_second, std::vector<u64> (&due)[tracks])
{
	bytes file = midi_head(tracks, midi_grid);
	u32 random = 1;
	const u32 mean = static_cast<u32>(1000 * tracks / per_second);
	for (int t = 0; t < tracks; t++) {
		bytes events;
		for (u64 time = 0;;) {
			random = random * 1664525 + 1013904223;
			const unsigned delta = 1 + (random >> 16) % (2 * mean - 1);
			time += delta;
			if (static_cast<double>(time) >= seconds * 1000)
				break;
			put_delta(&events, delta);
			const std::size_t number = due[t].size();
			events = std::move(events) + bytes{ static_cast<u8>(0x90 | t),
				static_cast<u8>(number / 2 % 128),
				static_cast<u8>(number % 2 ? 0 : 64) };
			due[t].push_back(time);
		}
		file = std::move(file) + midi_track(events + hex("00 FF 2F 00"));
	}
	return file;
}

bool load(const bytes &file)
{
	static const std::string path =
		(std::filesystem::temp_directory_path() / "velmor-bench.mid").string();
	std::ofstream(path, std::ios::binary)
		.write(reinterpret_cast<const char *>(file.data()),
			static_cast<std::streamsize>(file.size()));
	return open_midi_file(window_midi_files, host.files->system_path(path.c_str()).c_str());
}

// ---- Lateness -----------------------------------------------------------------------------------

std::vector<double> given[tracks]; // when each note went to the port
bool at_once;

int note_write(int handle, const unsigned char *data, std::size_t count)
{
	if (count == 3 && (data[0] & 0xF0) == 0x90)
		given[data[0] & 0x0F].push_back(host.clock->counter());
	return at_once ? 0 : virtual_midi.write(handle, data, count);
}

double processor_seconds()
{
	rusage use;
	getrusage(RUSAGE_THREAD, &use);
	return static_cast<double>(use.ru_utime.tv_sec + use.ru_stime.tv_sec) +
	       static_cast<double>(use.ru_utime.tv_usec + use.ru_stime.tv_usec) / 1e6;
}

struct run_result {
	std::vector<double> late; // sorted, seconds
	std::size_t lost;
	double processor; // of one, while it played
};

run_result run(double seconds, int per_second)
{
	std::vector<u64> due[tracks];
	for (std::vector<double> &times : given)
		times.clear();
	if (!load(dense_file(seconds, per_second, due)))
		std::abort();
	const double used = processor_seconds(), began = host.clock->counter();
	play_really_all(window_midi_files, &current_midi_file);
	while (song_plays())
		host.ui->pump(100);
	run_result r = { {}, 0, (processor_seconds() - used) / (host.clock->counter() - began) };
	for (int t = 0; t < tracks; t++) {
		r.lost += due[t].size() - std::min(due[t].size(), given[t].size());
		for (std::size_t i = 0; i < std::min(due[t].size(), given[t].size()); i++)
			r.late.push_back(given[t][i] - began -
					 static_cast<double>(due[t][i]) / speed_factor);
	}
	std::ranges::sort(r.late);
	return r;
}

double part(const run_result &r, double of_all)
{
	return r.late[static_cast<std::size_t>(static_cast<double>(r.late.size() - 1) * of_all)];
}

void print(const char *what, const run_result &r)
{
	std::printf("%-34s %7zu events, %zu lost; late: median %.2f, p99 %.2f, most %.2f ms; "
		    "processor %.2f %%\n",
		what, r.late.size(), r.lost, 1000 * part(r, 0.5), 1000 * part(r, 0.99),
		1000 * r.late.back(), 100 * r.processor);
}

// ---- Loading --------------------------------------------------------------------------------------

double best_milliseconds(const std::function<void()> &work)
{
	double best = 1e9;
	for (int i = 0; i < 9; i++) {
		const auto began = std::chrono::steady_clock::now();
		work();
		best = std::min(best, std::chrono::duration<double, std::milli>(
					      std::chrono::steady_clock::now() - began)
					      .count());
	}
	return best;
}

void compare_loading(const char *what, bytes file)
{
	current_run_mode.diagnostics = false;
	const double ours = best_milliseconds([&] { load(file); });
	int events = 0;
	for (const _midi_track &t : current_midi_file.track)
		events += t.events;
	current_run_mode.diagnostics = true;
	const double logged = best_milliseconds([&] { load(file); });
	current_run_mode.diagnostics = false;
	std::filesystem::remove("velmor.log");
	const double theirs = best_milliseconds([&] {
		smf_t *smf = smf_load_from_memory(file.data(), static_cast<int>(file.size()));
		if (smf)
			smf_delete(smf);
	});
	std::printf("%-34s %7d events: %.2f ms from the disk, %.2f ms with every event logged; "
		    "libsmf %.2f ms\n",
		what, events, ours, logged, theirs);
}

void compare_all_loading()
{
	std::filesystem::path largest;
	for (const auto &path : files_of_others("midi"))
		if (largest.empty() || file_size(path) > file_size(largest))
			largest = path;
	if (!largest.empty()) {
		std::ifstream in(largest, std::ios::binary);
		compare_loading("load the largest real file",
			bytes(std::istreambuf_iterator<char>(in), {}));
	}
	std::vector<u64> due[tracks];
	compare_loading("load a dense file", dense_file(200, 1000, due));
}

} // namespace
} // namespace velmor

int main(int argc, char **argv)
{
	using namespace velmor;
	setvbuf(stdout, nullptr, _IOLBF, 0);
	setenv("QT_QPA_PLATFORM", "offscreen", 0);
	QApplication application(argc, argv);
	static midi_service midi = virtual_midi;
	midi.write = note_write;
	midi.leaving = [](int handle) { return at_once ? 0L : virtual_midi.leaving(handle); };
	host = { .ui = &qt_ui,
		.midi = &midi,
		.net = &posix_net,
		.usb = nullptr,
		.settings = &posix_settings,
		.clock = &posix_clock,
		.files = &posix_files };
	create_windows();
	midi.on_arrival(host.ui->wake);
	current_run_mode.diagnostics = false;
	const double seconds = argc > 1 ? std::atof(argv[1]) : 600;
	timeline time;
	time.run_in_real_time();
	plug_midi(time, midi_machine{ [](auto) { return machine::bytes(); }, {}, {} }, "Bench");
	selected_midi_out_interface = 0;
	reload_midi_setup(false);
	at_once = true;
	const run_result dense = run(seconds, 1000);
	print("1000 a second, taken at once", dense);
	at_once = false;
	print("300 a second, 31250 baud", run(seconds / 10, 300));
	compare_all_loading();
	unplug_all_midi();
	time.stop();
	const bool good = !dense.lost && part(dense, 0.99) <= most_late;
	std::printf("%s\n", good ? "good" : "MISSED");
	std::fflush(stdout);
	std::_Exit(good ? 0 : 1);
}
