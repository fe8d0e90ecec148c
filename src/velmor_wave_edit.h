// velmor_wave_edit.h - changing a sample of the spool: trim, volume, loop, and the seam of the loop
//
// An edit reads the file whole, changes it in memory, and writes it whole (replace_local): what
// it was lies in the folder "deleted\undo" then, and undo_last puts it back. All that an edit does
// not change stays as it was, to the byte: other chunks, the samplers' own bytes, what stands
// behind the audio.
//
//   velmor_wave_edit.cpp   the file in memory, and what can be done with it
//   velmor_wave_page.cpp   the buttons, and what the handles in the picture do
//   velmor_play.cpp        what is heard of it
//   velmor_spool.cpp       replace_local
//
// Knows nothing of: toolkits, samplers.

#pragma once
#include "src/velmor_window.h"
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace velmor
{

// ---- The file in memory (velmor_wave_edit.cpp) ------------------------------------------------

// Positions are counted in frames; frame_count is the last one.
struct wave_part {
	u64 first = 0, end = 0;
	bool empty() const { return end <= first; }
	u64 count() const { return empty() ? 0 : end - first; }
	bool operator==(const wave_part &) const = default;
};

// A WAV file of 12, 16 or 24 bits. Offsets are those of chunk names.
struct wave_sound {
	std::vector<u8> file;
	std::size_t fact_at = 0, smpl_at = 0; // 0: it has none
	std::size_t data_at = 0, data_bytes = 0;
	unsigned bits = 0, channels = 0, frame_bytes = 0;
	u32 rate = 0;

	u64 frame_count() const { return data_bytes / frame_bytes; }
	wave_part loop() const; // empty for none
	i32 value(u64 frame, unsigned channel) const;
	// What is louder than full scale is cut there.
	void set_value(u64 frame, unsigned channel, double value);
	i32 full_scale() const { return (1 << (bits - 1)) - 1; }
};

// "" or why the file cannot be changed, as a sentence.
std::string read_wave_sound(const std::string &path, wave_sound *sound);

// Each gives "" or why it cannot be done, as a sentence; then nothing has changed.
// Cut what is outside, and move loops, and the sampler's start and end, along.
std::string trim_wave(wave_sound *sound, const wave_part &kept);
// Empty: the sample does not loop.
std::string set_wave_loop(wave_sound *sound, const wave_part &loop);
// cut: how many values became louder than full scale.
std::string change_wave_volume(wave_sound *sound, double decibels, u64 *cut);
// The loudest value becomes full scale.
std::string normalise_wave(wave_sound *sound);
// The last frames of the loop turn into those in front of it, so that its end leads into its
// beginning. frames: of the fade, as many as there is room for at most; gives how many.
std::string fade_wave_seam(wave_sound *sound, u64 *frames);

// The place nearest to at, no further than reach, where the wave comes up through zero: the
// first value that is not below it. at itself where there is none.
u64 nearest_crossing(std::span<const std::int16_t> words, u64 at, u64 reach);

// ---- The editor (velmor_wave_page.cpp) --------------------------------------------------------

// Controls of the sample manager.
enum wave_control : int {
	wave_trim = 16600,
	wave_loop_here = 16601,
	wave_no_loop = 16602,
	wave_gain = 16603,
	wave_gain_decibels = 16604,
	wave_normalise = 16605,
	wave_fade = 16606,
	wave_fade_milliseconds = 16607,
};
extern const window_rows wave_rows;

// The picture shows this file now ("" for none). A file that it showed before with as many frames
// keeps its start and end.
void wave_shown(const std::string &path, u64 frames);
// Which file it is.
const std::string &shown_wave();
// Start and end, which "Trim" and "Loop here" take. Set by the handles of the picture.
wave_part wave_marks();
void set_wave_marks(const wave_part &marks);
// A handle of the loop was let go. False, and nothing was done, while other work runs.
bool move_wave_loop(const wave_part &loop);

// ---- Hearing it (velmor_play.cpp) -----------------------------------------------------------------

// The shown sample as the loaded sampler will hold it; while one is heard, the end of it.
void play_or_stop();
bool is_playing();
void stop_playing();
// Say why it cannot be played, where that is so.
void offer_playing(bool shown);
void forget_playing();

// ---- The spool (velmor_spool.cpp) ---------------------------------------------------------------

// Put other bytes in the place of a sample's file; what it was is kept for undo_last, which then
// says undone. The file is the old one or the new one at any moment.
outcome replace_local(const std::string &name, std::span<const u8> file, const std::string &undone);

} // namespace velmor
