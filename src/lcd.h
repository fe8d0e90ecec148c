// lcd.h - the front panel of a sampler: its screen, its keys and wheels, and typing on it
//
// A sampler with a screen sends it on request, a bit a pixel, and takes presses of its keys
// through the same line. The keys and their places are tables (lcd_controls.cpp), the picture's
// bits and the requests of a key are in lcd.cpp, the window with its timer in velmor_panel.cpp.
// The drivers fetch a picture through the slot getpanel of their row (akaiusb_panel.cpp).
//
// Everything here opens the device for itself and closes it again, on the main thread, behind the
// gate of the commands.
//
// Knows nothing of: toolkits, frames.

#pragma once
#include "src/resource.h"
#include <span>
#include <string_view>
#include <vector>

namespace velmor
{

// ---- Keys and wheels (lcd_controls.cpp) ------------------------------------------------------

enum ctrl_type : u8 {
	ctrl_button = 1, // is pressed and let go
	ctrl_wheel = 2,  // one step in one direction
};

// One control of a panel. Payloads are section, item and arguments, without a frame.
struct _sampler_ctrl {
	const char *name; // null ends a table
	u8 ctrl_type;
	union {
		struct {
			const u8 *sysex_on;
			i32 sysex_on_len;
			const u8 *sysex_off;
			i32 sysex_off_len;
		} button;
		struct {
			const u8 *sysex_change;
			i32 sysex_change_len;
		} wheel;
	} ctl;
	i32 x_pos, y_pos; // from the corner of the screen
	i32 height, width;
	int win; // the window that shows it, 0 for none
	i32 id;  // from panel_first_key on, in the order of the table
};

// Build the tables of the models that have one, and tell so on the standard output. Again: anew.
void init_sampler_struct();

// ---- The picture (lcd.cpp) -------------------------------------------------------------------

// How a model sends and shows its screen.
struct lcd_kind {
	i32 model;
	bool low_bit_first; // the leftmost of eight pixels is the lowest bit of its byte
	bool clear_is_dark;
	u32 light;          // colour of the other pixels, RRGGBB; dark is black
	u32 height_divisor; // the screen stands its height, divided by this, below the top
};
// The row of a model, that of the first for one without a screen.
const lcd_kind &lcd_kind_of(i32 model);
// Of the loaded model, for who draws its pixels.
u32 lcd_light();
// The bits of a whole picture as a bitmap_view has them. What was not received counts as clear.
std::vector<u8> lcd_picture(const _sampler_type &model, std::span<const u8> received);

// How the last fetch ended; written by getpanel where it did not bring a picture.
enum class lcd_answer {
	picture,
	busy,   // the sampler says so
	absent, // not on the bus, or it does not open
	failed, // it did not answer, or not with a picture
};
extern lcd_answer last_lcd_answer;

// ---- What is sent to it (lcd.cpp) ------------------------------------------------------------

// Work a control of the loaded sampler: press and let go, or turn by so many steps. A failure of
// the line ends the process.
void work_panel_control(const _sampler_ctrl &control, int steps);
// A character typed: the low seven bits of its number are the key.
void type_panel_character(const _sampler_type &model, u8 key);

// ---- The window (velmor_panel.cpp) -----------------------------------------------------------

extern int lcd;            // window_panel once it was made
extern int lcd_timer;      // 0 until started
extern int lcd_registered; // something of it was shown to the toolkit
// -1 stopped, 0 about to start, 1 the picture is fetched again and again.
extern int timer_active;

// The timer stops, the window stays as it is; for work that would meet the pictures.
void stop_panel();
// Make the window for that model.
void init_lcd(_sampler_type *model);
// Fetch one picture and show it.
void view_lcd_display();
void lcd_timer_proc();
// Another sampler is loaded: nothing is known of its screen.
void empty_panel();
// Forget the window; for tests.
void forget_panel();

// What happens in the panel's window.
enum class lcd_message : int {
	close = 16,
	character = 258,
	command = 273,    // value is the id of a control, x the steps of a wheel
	right_down = 516, // x and y
	right_up = 517,
};
void lcd_wnd_proc(lcd_message message, int value, int x, int y);
// The picture's keys and mouse, as rows of input take them.
enum class mouse_action : int;
void panel_key_pressed(int key, std::string_view text, bool pressed);
void panel_mouse_used(int x, int y, mouse_action action, int amount);

} // namespace velmor
