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

// What became of an entry of a queue, as the mark in front of it.
enum class entry_mark {
	none,
	waiting,
	running,
	done,
	skipped,
	failed,
};

// A picture of one bit a pixel, rows from the top, each padded to a byte, the leftmost pixel in
// the highest bit. A set bit is dark.
struct bitmap_view {
	std::span<const std::uint8_t> bits;
	int width, height; // pixels
};

// A keyboard with what sounds where: keygroups over their keys, zones as bands of velocity.
struct key_zone_view {
	int low_velocity, high_velocity;
	std::string name; // of its sample; "": none
	bool missing;     // the sampler does not hold it
};
struct key_group_view {
	int low_note, high_note;
	std::vector<key_zone_view> zones;
};
struct key_map_view {
	std::vector<key_group_view> groups;
	int group, zone;    // the chosen ones, -1: none
	int note, velocity; // of the test note that sounds, note -1: none
	bool takes_notes;   // its keys play
};
enum class key_map_event {
	choose,   // a group, and a zone or -1
	low_note, // an edge of a group or zone is being dragged: value is where it stands
	high_note,
	low_velocity,
	high_velocity,
	drag_end,
	note_on,  // value is the note, amount its velocity
	note_off, // also when the window loses the mouse
};

// An envelope as a curve with points that can be dragged.
enum class envelope_shape {
	adsr,             // attack, decay, sustain, release: 0 to 100
	rates_and_levels, // four rates (0 to 100), then four levels
};
struct envelope_view {
	envelope_shape shape;
	std::vector<int> values, as_read; // in that order
	int low_level, high_level;        // of the levels
	std::vector<std::string> letters; // under the points, and in words at the mouse
};
enum class envelope_event {
	drag, // value index has a new value
	drag_end,
};

// A sampler's front panel: its screen and its keys. Places are pixels of the screen, from the
// corner of the whole; the window shows all of it at one scale, by whole numbers.
struct panel_key_view {
	int id;
	std::string name;
	bool wheel; // a step of the wheel, which has no release
	int x, y, width, height;
};
struct panel_view {
	int width, height;
	int picture_x, picture_y, picture_width, picture_height;
	std::vector<panel_key_view> keys;
};

// One track of a MIDI file, as its frame shows it.
enum class track_colour {
	stopped,
	running,
	muted,
};
struct track_view {
	std::string title, name, state, info;
	track_colour colour;
	bool muted;
	int forced_channel; // a place in the list of channels, 16: as in the file
	std::vector<std::string> channels;
	int volume;                      // 0 to 127
	std::vector<std::string> events; // the next ones, "" for a blank cell
	std::vector<std::string> sounding;
};
// Its notes over time, in ticks, by their start.
struct strip_note {
	std::uint64_t start, end;
	std::uint8_t pitch, velocity;
};
struct strip_view {
	std::span<const strip_note> notes; // must live until the next set_track_count
	std::uint64_t length;              // of the whole file
	std::string name;                  // that the file gives the track, or ""
};
enum class track_event {
	in_view, // its frame is made: it has to be filled
	out_of_view,
	mute,
	channel,  // value is the place in the list
	sounding, // its list of sounding notes was pressed
	scroll,   // a step of the bar, from the place track to the place value
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
	put_back, // what was read is wanted back
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
	// All chosen entries of a list that takes several, in the order of the list.
	std::vector<int> (*selections)(int window, int control) = nullptr;
	void (*select_several)(int window, int control, std::span<const int> places) = nullptr;
	// One mark for each entry of a list, from the first on.
	void (*set_marks)(int window, int control, std::span<const entry_mark> marks) = nullptr;
	// A bar from 0 to range.
	void (*set_bar)(int window, int control, int value, int range) = nullptr;
	void (*set_role)(int window, int control, text_role role);
	// Disable a control and say why in its tooltip; a null reason enables it again.
	void (*set_reason)(int window, int control, const char *why_not);
	void (*focus)(int window, int control);
	// A null view clears the picture.
	void (*set_bitmap)(int window, int control, const bitmap_view *view);
	void (*set_waveform)(int window, int control, const waveform_view *view);

	// A null view clears the picture.
	void (*set_key_map)(int window, int control, const key_map_view *view);
	void (*set_envelope)(int window, int control, const envelope_view *view);

	// Forms: form is a control. Building one puts its earlier rows away. A row that is set
	// tells nobody. The bar and the field of a slider are set apart, as the system wants it.
	void (*build_form)(int window, int form, std::span<const form_row> rows);
	void (*set_row_value)(int window, int form, int row, int value);
	int (*row_value)(int window, int form, int row);
	void (*set_row_text)(int window, int form, int row, const char *text);
	std::string (*row_text)(int window, int form, int row);
	void (*set_row_changed)(int window, int form, int row, bool changed);

	// The front panel with its keys, which are controls then; set_checked of one shows it
	// pressed. A null view takes them away.
	void (*build_panel)(int window, const panel_view *view) = nullptr;
	// A picture for other programs, by whole-number scale: on the clipboard, or as a PNG file.
	void (*copy_bitmap)(const bitmap_view *view, int scale) = nullptr;
	bool (*save_bitmap)(const char *path, const bitmap_view *view, int scale) = nullptr;

	// The tracks of a MIDI file. Frames are made when they come into view, which is told
	// through velmor_track; one that is not made ignores what it is given.
	void (*set_track_count)(int window, int control, int count) = nullptr;
	void (*set_track)(int window, int control, int track, const track_view *view) = nullptr;
	void (*set_strip)(int window, int control, int track, const strip_view *view) = nullptr;
	// Where the song is, in ticks, in all strips (negative: nowhere), and how fast it goes, for
	// the times above them.
	void (*set_play_position)(
		int window, int control, std::int64_t ticks, int ticks_per_second) = nullptr;

	// The same words in the language of the user; it lives as long as the program. Null: every
	// word stays as it is.
	const char *(*translate)(const char *words) = nullptr;

	// Modal boxes. ask has the buttons OK and Cancel and is true for OK.
	void (*message)(const char *text, const char *caption);
	bool (*ask)(const char *text, const char *caption);
	// Both give back paths written with backslashes, and none when the user cancelled.
	std::vector<std::string> (*choose_files)(const char *title, const char *filter);
	std::string (*choose_folder)(const char *title);
	// Where a new file goes, "" when the user cancelled.
	std::string (*choose_new_file)(
		const char *title, const char *filter, const char *name) = nullptr;

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
