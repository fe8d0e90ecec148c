// ui.h - the windows of the program, as the system sees them
//
// A control is named by its window and its id. The system fills controls,
// reads them and shows boxes through this table; user actions come back through
// the one command entry of the system. Everything is called on the main thread
// but wake.

#pragma once
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace velmor
{

// What the waveform view shows of one sample.
struct waveform_view {
	std::span<const std::int16_t> words;
	std::uint32_t sample_rate; // Hz
	std::uint64_t loop_start;  // in words; no loop is drawn where loop_end is not above it
	std::uint64_t loop_end;
};

struct ui_service {
	// Controls. control 0 is the window itself: show raises it, text is its title.
	// get_text gives back the same bytes, "\r\n" included, until the user edits them. The log
	// control shows its last line after each set_text.
	void (*set_text)(int window, int control, const char *text);
	std::string (*get_text)(int window, int control);
	void (*set_list)(int window, int control, std::span<const std::string> items);
	void (*select)(int window, int control, int index);
	int (*selection)(int window, int control); // -1: none
	void (*set_checked)(int window, int control, bool checked);
	bool (*checked)(int window, int control);
	void (*show)(int window, int control, bool visible);
	void (*enable)(int window, int control, bool enabled);
	bool (*exists)(int window, int control);
	// A null view clears the picture.
	void (*set_waveform)(int window, int control, const waveform_view *view);

	// Modal boxes. ask has the buttons OK and Cancel and is true for OK.
	void (*message)(const char *text, const char *caption);
	bool (*ask)(const char *text, const char *caption);
	// Both give back paths written with backslashes, and none when the user cancelled.
	std::vector<std::string> (*choose_files)(const char *title, const char *filter);
	std::string (*choose_folder)(const char *title);

	// The progress window: a bar from 0 to range. show disables the other windows.
	void (*progress_show)(const char *caption, int range);
	void (*progress_set)(int value, const char *info, const char *time_left);
	void (*progress_hide)();

	// Run pending interface events, and return as soon as one came, a byte arrived, or
	// max_ms milliseconds (0 to 100) have passed.
	void (*pump)(int max_ms);
	// From any thread: let a running pump return.
	void (*wake)();
	// Ends the process. Tests throw here, so nothing may be left half done before the call.
	void (*exit_process)(int status);
};

} // namespace velmor
