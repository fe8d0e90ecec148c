// ui.h - the windows of the program, as the system sees them
//
// A control is named by its window and its id. The system fills controls,
// reads them and shows boxes through this table; user actions come back through
// the one command entry of the system. Everything is called on the main thread
// but wake and post.

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

// What a list of things on the sampler shows.
enum class list_state {
	fresh,  // its entries, as last read
	unread, // nothing was asked yet
	silent, // asked, and no answer came: the words stand in its place
	empty,  // read, and there is nothing
	stale,  // its entries, which may no longer be true
};

// What a text means, for its colour and mark.
enum class text_role {
	plain,
	quiet,
	good,    // answered, done
	careful, // something is lost or missing
	failed,
};

// A picture of one bit a pixel, rows from the top, each padded to a byte, the leftmost pixel in
// the highest bit. A set bit is dark.
struct bitmap_view {
	std::span<const std::uint8_t> bits;
	int width, height; // pixels
};

// A form is a list of rows, built when it is known what they are. Everything about a row is said
// by its place in that list: ids are only for people who look for a control, and may come twice.
enum class row_kind {
	heading, // words over the rows below
	slider,  // a bar, and a field for its number beside it
	number,  // the field alone
	choice,  // one of items, from a list
	check,
	radio,   // one of items, all to be seen
	reading, // a text that cannot be changed; why_not says why
};

struct form_row {
	row_kind kind;
	int id;                         // of the bar, list, box or text
	int field_id;                   // of the field for the number
	std::string label;              // or the words of a heading
	std::string unit;               // behind the field, or ""
	int low, high;                  // of the bar
	std::vector<std::string> items; // of a choice or radio group; a value is a place in it
	std::vector<int> item_ids;      // of each radio button, or none
	int value;
	std::string text;    // of a reading row; of a field, where it is not the value
	bool changed;        // marked as not yet sent
	std::string why_not; // the row is disabled; "": it is not
};

// What a user did to a row.
enum class form_event {
	drag,     // the bar is being moved
	drag_end, // and was let go, or moved by a key
	edit,     // the text of its field changed
	choice,   // an item was chosen, a box ticked or cleared
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
	// A list with columns: one entry a row, its name first.
	void (*set_rows)(int window, int control, std::span<const std::vector<std::string>> rows);
	// Words stand in place of the entries where the state has none; "" keeps the caption's.
	void (*set_list_state)(int window, int control, list_state state, const char *words);
	void (*set_role)(int window, int control, text_role role);
	// Disable a control and say why in its tooltip; a null reason enables it again.
	void (*set_reason)(int window, int control, const char *why_not);
	void (*focus)(int window, int control);
	// A null view clears the picture.
	void (*set_bitmap)(int window, int control, const bitmap_view *view);
	void (*set_waveform)(int window, int control, const waveform_view *view);

	// Forms: form is a control. Building one puts its earlier rows away. A row that is set
	// tells nobody. The bar and the field of a slider are set apart, as the system wants it.
	void (*build_form)(int window, int form, std::span<const form_row> rows);
	void (*set_row_value)(int window, int form, int row, int value);
	int (*row_value)(int window, int form, int row);
	void (*set_row_text)(int window, int form, int row, const char *text);
	std::string (*row_text)(int window, int form, int row);
	void (*set_row_changed)(int window, int form, int row, bool changed);

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

	// Call tick every so many milliseconds, on the main thread, until the timer is stopped.
	int (*start_timer)(int milliseconds, void (*tick)());
	void (*stop_timer)(int timer);

	// Run pending interface events, and return as soon as one came, a byte arrived, or
	// max_ms milliseconds (0 to 100) have passed.
	void (*pump)(int max_ms);
	// From any thread: let a running pump return.
	void (*wake)();
	// From any thread: run work on the main thread, in a pump or between commands, once for each
	// call and in the order of the calls.
	void (*post)(void (*work)());
	// Ends the process. Tests throw here, so nothing may be left half done before the call.
	void (*exit_process)(int status);
};

} // namespace velmor
