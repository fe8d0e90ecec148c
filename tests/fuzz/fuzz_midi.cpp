// fuzz_midi.cpp - any bytes as a MIDI file: read, compared with the slow telling, and played
//
// The first byte chooses what the port and the user do meanwhile, its highest bit whether all of
// it is logged.

#include "src/controls.h"
#include "src/velmor_midi.h"
#include "src/velmor_window.h"
#include "tests/fuzz/limits.h"
#include "tests/support/midi_model.h"
#include <filesystem>

namespace velmor
{
namespace
{

std::unique_ptr<test_host> h;
std::string path;
int doing, sends, presses;
bool slow;

void require(bool holds)
{
	if (!holds)
		std::abort();
}

bool same(const _midi_event &e, const midi_model::event &told)
{
	const std::span<const u8> data = e.bytes().bytes;
	return e.absolute_time == told.time && e.delta_time == told.delta &&
	       e.meta_type == told.type && e.meta_sub_type == told.sub &&
	       std::equal(data.begin(), data.end(), told.data.begin(), told.data.end());
}

bool same(const _midi_track &t, const midi_model::track &told)
{
	return t.takt_len == told.bar && t.takt_nenner == told.denominator &&
	       t.takt_zaehler == told.numerator &&
	       std::equal(t.event.begin(), t.event.end(), told.events.begin(), told.events.end(),
		       [](const auto &a, const auto &b) { return same(a, b); });
}

void compare(const std::vector<u8> &file)
{
	const auto song = midi_model::read(file);
	require(have_midi_file == song.has_value());
	require(!song || std::equal(current_midi_file.track.begin(), current_midi_file.track.end(),
				 song->tracks.begin(), song->tracks.end(),
				 [](const auto &a, const auto &b) { return same(a, b); }));
}

// What a user does inside a send.
void press()
{
	switch (doing) {
	case 1:
		return stop_really_all(window_midi_files);
	case 2:
		return free_midi(&current_midi_file);
	case 3:
		stop_really_all(window_midi_files);
		return play_really_all(window_midi_files, &current_midi_file);
	case 4:
		open_midi_file(window_midi_files, path.c_str());
		return;
	case 5:
		for (_midi_track &t : current_midi_file.track)
			t.is_mute = !t.is_mute;
		return;
	default:
		return timer_playback();
	}
}

midi_service port()
{
	midi_service s = *host.midi;
	s.open_output = [](int, int *handle) { return *handle = 0; };
	s.write = [](int, const unsigned char *, std::size_t count) {
		require(count > 0);
		return ++sends == 50 && doing == 6 ? 19 : 0;
	};
	s.leaving = [](int) { return (slow = !slow) ? 3L : 0L; };
	return s;
}

void play()
{
	if (!have_midi_file || current_midi_file.ntrks > 100)
		return;
	play_really_all(window_midi_files, &current_midi_file);
	for (int tick = 0; tick < 100 && song_plays(); tick++) {
		h->time.run_until(h->time.now() + 0.010 * (1 << std::min(tick / 8, 10)));
		timer_playback();
		for (const _midi_track &t : current_midi_file.track)
			require(t.stacks >= 0 && t.stacks <= stack_room);
	}
	if (have_midi_file && current_midi_file.ntrks && doing == 7)
		play_track(window_midi_files, &current_midi_file, 0);
	do // Play may be pressed inside it
		stop_really_all(window_midi_files);
	while (song_plays());
	require(h->timers.empty() && !timer_mid);
}

void begin()
{
	h = std::make_unique<test_host>();
	static const midi_service with_port = port();
	host.midi = &with_port;
	path = h->config + "\\song.mid";
	h->on_pump = [] {
		if (sends % 7 == 3 && presses++ < 50) // a user tires
			press();
	};
}

} // namespace
} // namespace velmor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	using namespace velmor;
	if (size < 1 || size > 16384)
		return 0;
	if (!h)
		begin();
	renew_limits(*h);
	current_run_mode.diagnostics = data[0] & 0x80;
	doing = data[0] & 7;
	sends = presses = 0;
	const std::vector<u8> file(data + 1, data + size);
	h->put_content(path, file);
	open_midi_file(window_midi_files, path.c_str());
	compare(file);
	play();
	free_midi(&current_midi_file);
	close_midi_output();
	h->boxes.clear();
	h->texts.clear();
	h->forget_log();
	std::filesystem::remove_all(h->root + "/VELMOR/CONFIG/midi_dumps");
	return 0;
}
