// screen.h - the screen and the keys of a virtual USB sampler
//
// A mode key calls up its pages, and a function key a page or something that is done at once.
// A page is a list of rows, drawn from what the machine holds at the moment it is asked for its
// picture; so nothing is kept that the host may have taken away since, and a screen that nobody
// looks at costs nothing. In a row stands something to choose, a number or a fact.
//
//   cursor keys        the next row, or the next page
//   wheel, + and -     the number of the row; on a row without one the next row
//   digits             a number, which Ent takes and Exit drops
//   characters         a name, likewise, where the row has one
//   MARK, JUMP         keep this page, and go back to it
//   Window             a window with the facts of the machine
//
// What a key cannot do on a page is said on the screen, never done by halves.
//
// Choices are the screen's own: what the host selects in the middle of its work is left alone.
//
// Knows nothing of: frames and key codes (screen_keys.h), the system under src/.

#pragma once
#include "virtual/screen_canvas.h"
#include <array>
#include <functional>
#include <span>

namespace velmor
{

class usb_sampler;
class screen;

enum class screen_mode {
	multi,
	fx,
	sample,
	program,
	record,
	utilities,
	save,
	load,
};
inline constexpr std::size_t screen_modes = 8;

enum class screen_key {
	mode,   // number: a screen_mode
	soft,   // number: along the screen, from 1
	digit,  // number; where none can be typed, 0 is MARK and 1 is JUMP
	step,   // number: of the value, +1 or -1
	cursor, // number: rows on
	page,   // number: pages on
	window_key,
	exit,
	enter,
	play,
	not_fitted,
};

struct screen_row {
	std::string label, value;
	// A number that can be changed, between two bounds; without `set` there is none.
	int now = 0, low = 0, high = 0;
	std::function<void(int number)> set = {};
	// The name that typed characters write over, and what takes the new one: it says why it
	// does not, or nothing.
	std::string name = {};
	std::function<std::string(const std::string &name)> rename = {};
};
using screen_rows = std::vector<screen_row>;

// What is chosen on the pages, counted from 0.
struct screen_choice {
	int program = 0, keygroup = 0, zone = 0, sample = 0, multi = 0;
	int disk = 0, entry = 0;          // of the folder that is open
	std::vector<std::string> folders; // the way to it
};

struct screen_page {
	const char *tab, *title;
	screen_rows (*rows)(screen &s);
	// Beside the rows; nullptr: they have the whole page.
	void (*drawing)(screen &s, screen_canvas &c, screen_box b) = nullptr;
	// The choice that the cursor makes; nullptr: none.
	int screen_choice::*choice = nullptr;
	// What Enter does; nullptr: it plays.
	std::string (*enter)(screen &s) = nullptr;
};

struct screen_action {
	const char *label;
	std::string (*run)(screen &s); // what is said about it
};

// What stands on the function keys of one mode.
struct screen_mode_pages {
	std::span<const screen_page> pages;
	std::span<const screen_action> actions;
};

struct screen_layout {
	int width, height;
	wire_bits bits;
	screen_box title, rows, rows_alone, drawing, window;
	int row_height;
	int heading, footer; // their y, -1: none
	int soft_keys;       // along the screen
	int first_action;    // the key of the first action, 0: behind the last page
	screen_box (*soft_key)(int i);
};
extern const screen_layout s5000_layout, z4_layout, mpc_layout;

// The multi at hand, and the effects behind it.
struct screen_part {
	int program = -1, level = 100; // -1: off
};
struct screen_effect {
	int kind = 0, level = 50, on = 1;
};
inline constexpr std::size_t screen_memory = 64 << 20;
inline constexpr std::size_t screen_parts = 16, screen_effects = 4;

// What the pages read of a machine, and change in it.
class screen
{
public:
	using mode_table = std::array<screen_mode_pages, screen_modes>;

	usb_sampler &machine;
	screen_choice chosen;
	std::array<screen_part, screen_parts> parts = {};
	std::array<screen_effect, screen_effects> effects = {};
	int input_gain = 50, recording = 0; // pictures since it began, 0: none
	int sounding = 0;                   // pictures until what was played has died away
	int pictures = 0;
	std::string last_key; // in words, for the page that tries the keys

	screen(usb_sampler &m, const screen_layout &l, const mode_table &pages,
		screen_mode at_power_on = screen_mode::multi);
	virtual ~screen();

	void power_on();
	void press(screen_key key, int number);
	void turn_wheel(int steps);
	void type(char character);
	const screen_canvas &draw();
	const screen_canvas &shown() const { return canvas; } // as it was last drawn
	wire_bits bits() const { return layout.bits; }

	// For pages and actions.
	int page_number() const { return here.page[static_cast<std::size_t>(here.mode)]; }
	void show_page(int page) { here.page[static_cast<std::size_t>(here.mode)] = page; }
	std::string begin_name(int page); // over the name at the cursor of that page
	std::size_t memory_used() const;

	// The family's own contents.
	virtual std::vector<std::string> program_names() const = 0;
	virtual std::string rename_program(int program, const std::string &name) = 0;
	virtual int keygroups(int program) const = 0;
	virtual std::array<int, 2> span(
		int program, int keygroup) const = 0; // lowest, highest note
	virtual bool add_keygroup(int program) = 0;
	virtual std::vector<std::string> multis() const = 0;
	virtual std::string model() const = 0;

private:
	enum class window {
		none,
		name,
		facts
	};
	struct position {
		screen_mode mode = screen_mode::multi;
		std::array<int, screen_modes> page = {};
	};
	const screen_layout &layout;
	const mode_table &modes;
	const screen_mode home;
	screen_canvas canvas;
	position here, marked;
	bool has_mark = false;
	std::array<std::array<int, 8>, screen_modes> cursors = {};
	std::string message, number, typed_name, old_name;
	window open = window::none;

	const screen_mode_pages &pages() const
	{
		return modes[static_cast<std::size_t>(here.mode)];
	}
	const screen_page &page();
	int &cursor();
	screen_rows rows_now();
	screen_row row_now(); // an empty one, if there are none
	void move_cursor(int steps);
	void move_page(int steps);
	void change(int steps);
	using act = void (*)(screen &s, int n);
	static const act acts[];
	void press_digit(int digit);
	void press_soft(int key);
	void press_enter();
	void press_exit();
	void take_number();
	void play();
	void take_name();
	void type_name(char character);
	void type_digit(char digit);
	std::string subject(); // what the page is about

	void draw_title(std::size_t rows);
	void draw_rows(const screen_rows &rows);
	void draw_row(const screen_row &row, screen_box b, bool at_cursor);
	void draw_soft_keys();
	void draw_window();
	void draw_footer();
	std::string soft_label(int key) const;
};

// A program, a sample and so on by its number, brought within what is there; -1: there is none.
int within(int number, std::size_t count);
std::string note_name(int note);

} // namespace velmor
