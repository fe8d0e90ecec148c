// velmor_panel.cpp - the window with a sampler's screen and keys, and the timer behind it
//
// Four times a second a picture is fetched and shown. The timer runs on from the first opening;
// timer_active says whether it does anything. A tick that finds other work under way passes, and
// what a user does during a fetch or a key waits for its end.
//
// Words across the picture say why there is none; it comes back by itself. A fetch that fails
// again and again is logged once, apart from diagnostics.
//
// Knows nothing of: toolkits, how a picture is fetched.

#include "src/controls.h"
#include "src/lcd.h"
#include "src/velmor_outcome.h"
#include "src/velmor_window.h"
#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace velmor
{

static constexpr int refresh_ms = 250;
static constexpr int panel_margin = 12; // around screen and keys, in pixels of the screen
static constexpr int most_steps = 8;    // of a wheel, at one turn
static constexpr std::size_t most_characters = 16; // of one key

int lcd = 0, lcd_timer = 0, lcd_registered = 0, timer_active = -1;

// What the window shows.
struct shown_panel {
	const _sampler_type *model = nullptr; // whose keys
	bool open = false;
	std::vector<u8> bits;
	std::optional<lcd_answer> answer; // of the last fetch, none when something else is said
	log_rounds rounds;
};
static shown_panel panel;

void forget_panel()
{
	panel = {};
	lcd = lcd_timer = lcd_registered = 0;
	timer_active = -1;
}

// ---- Words across the picture ----------------------------------------------------------------

static void say(const std::string &words)
{
	host.ui->set_text(window_panel, panel_state, words.c_str());
	host.ui->show(window_panel, panel_state, !words.empty());
	const char *why_not =
		words.empty() ? nullptr : tr("There is no picture of the screen now.");
	for (const int control : { panel_copy, panel_save })
		host.ui->set_reason(window_panel, control, why_not);
}

static std::string words_of(lcd_answer answer)
{
	switch (answer) {
	case lcd_answer::picture:
		return "";
	case lcd_answer::busy:
		return tr("The sampler is busy. Its screen comes back by itself.");
	case lcd_answer::absent:
		return format_text(tr("%s Its screen comes back by itself."),
			silence_words(loaded_reached()).c_str());
	case lcd_answer::failed:
		break;
	}
	return tr("The sampler does not send its screen. It is asked again and again.");
}

static void tell_answer(lcd_answer answer)
{
	if (panel.answer == answer)
		return;
	panel.answer = answer;
	say(words_of(answer));
}

static void say_instead(const char *words)
{
	panel.answer.reset();
	if (panel.open)
		say(words);
}

void stop_panel()
{
	timer_active = -1;
	say_instead(
		tr("The picture stands still. \"View LCD-Display\" in the main window goes on."));
}

void empty_panel()
{
	panel.model = nullptr;
	panel.bits.clear();
	if (!lcd)
		return;
	host.ui->set_bitmap(window_panel, panel_picture, nullptr);
	host.ui->build_panel(window_panel, nullptr);
	say_instead(tr("A sampler was loaded. \"View LCD-Display\" in the main window shows its "
		       "screen."));
}

// ---- Places ----------------------------------------------------------------------------------

struct corners {
	int left, top, right, bottom;
	void take(int x, int y, int width, int height)
	{
		left = std::min(left, x);
		top = std::min(top, y);
		right = std::max(right, x + width);
		bottom = std::max(bottom, y + height);
	}
};

// Of the screen, in a window three screens wide and high. The keys count from where it would
// stand in the middle; a low one stands half its height above that.
static std::pair<int, int> screen_place(const _sampler_type &model)
{
	const u32 divisor = lcd_kind_of(model.sampler_type).height_divisor;
	return { static_cast<int>(model.lcd_width), static_cast<int>(model.lcd_height / divisor) };
}

// Without what of those three screens is empty.
static panel_view view_of(const _sampler_type &model)
{
	const int width = static_cast<int>(model.lcd_width);
	const int height = static_cast<int>(model.lcd_height);
	const auto [x, y] = screen_place(model);
	corners all = { x, y, x + width, y + height };
	for (const _sampler_ctrl *c = model.ctrl; c && c->name; c++)
		all.take(c->x_pos + width, c->y_pos + height, c->width, c->height);
	const int left = all.left - panel_margin, top = all.top - panel_margin;
	panel_view view = { all.right + panel_margin - left, all.bottom + panel_margin - top,
		x - left, y - top, width, height, {} };
	for (const _sampler_ctrl *c = model.ctrl; c && c->name; c++)
		view.keys.push_back({ c->id, c->name, c->ctrl_type == ctrl_wheel,
			c->x_pos + width - left, c->y_pos + height - top, c->width, c->height });
	return view;
}

static void build_keys(const _sampler_type &model)
{
	if (panel.model == &model)
		return;
	panel.model = &model;
	panel.answer.reset();
	const panel_view view = view_of(model);
	host.ui->build_panel(window_panel, &view);
	for (_sampler_ctrl *c = model.ctrl; c && c->name; c++)
		c->win = window_panel;
}

void init_lcd(_sampler_type *model)
{
	log_line("[D] Initializing LCD Display Window [%d x %d]\r\n",
		static_cast<int>(model->lcd_width), static_cast<int>(model->lcd_height));
	lcd_registered = 1;
	lcd = window_panel;
	build_keys(*model);
	if (!lcd_timer)
		lcd_timer = host.ui->start_timer(refresh_ms, lcd_timer_proc);
}

// ---- One picture -----------------------------------------------------------------------------

// The loaded model; null after a box.
static _sampler_type *model_to_view()
{
	_sampler_type *model =
		current_sampler ? get_sampler(static_cast<i32>(current_sampler->sampler_type))
				: nullptr;
	if (model && model->getpanel)
		return model;
	timer_active = -1;
	if (!current_sampler)
		show_box("INFO", "You must load a sampler first...");
	else if (!model)
		show_box("INFO", "Invalid sampler type");
	else
		show_box("INFO", tr("The screen of %s cannot be seen from here."),
			model->sampler_brand);
	return nullptr;
}

static bitmap_view shown_bits()
{
	return { panel.bits, static_cast<int>(panel.model->lcd_width),
		static_cast<int>(panel.model->lcd_height) };
}

static void fetch_picture(const _sampler_type &model)
{
	const brief_work others_wait;
	const log_round round(&panel.rounds);
	std::vector<u8> pixels(model.lcd_pixel_data_length);
	std::vector<u8> control(model.lcd_control_data_length);
	u32 pixel_length = model.lcd_pixel_data_length;
	u32 control_length = model.lcd_control_data_length;
	last_lcd_answer = lcd_answer::picture;
	model.getpanel(pixels.data(), &pixel_length, control.data(), &control_length);
	log_line("[D] Viewing LCD Display for Sampler: [%s] (CTRL-DATA RECEIVED: %d), (PIXEL-DATA "
		 "RECEIVED: %d) Dimensions: %d x %d, PIXEL-DATA-LENGTH: %d\r\n",
		current_sampler->sampler_description, static_cast<int>(control_length),
		static_cast<int>(pixel_length), static_cast<int>(model.lcd_width),
		static_cast<int>(model.lcd_height), static_cast<int>(model.lcd_pixel_data_length));
	const std::size_t received = std::min<std::size_t>(pixel_length, pixels.size());
	panel.bits = lcd_picture(model, std::span(pixels).first(received));
}

static void open_panel_window()
{
	panel.open = true;
	open_window(window_panel);
}

// The window is there before its picture, which may take a while to come.
void view_lcd_display()
{
	_sampler_type *model = model_to_view();
	if (!model)
		return;
	log_line("[D] Viewing LCD Display for Sampler: [%s] LCD: %s\r\n",
		current_sampler->sampler_description, lcd ? "initialized" : "NULL");
	if (!lcd)
		init_lcd(model);
	build_keys(*model);
	if (timer_active == 0 || !panel.open) {
		open_panel_window();
		say_instead(tr("Asking the sampler for its screen ..."));
	}
	fetch_picture(*model);
	const bitmap_view view = shown_bits();
	host.ui->set_bitmap(window_panel, panel_picture, &view);
	tell_answer(last_lcd_answer);
	if (timer_active == 0)
		timer_active = 1;
}

// A tick does not wait: the next one is near.
void lcd_timer_proc()
{
	if (timer_active == 1 && !command_running())
		run_through_gate(view_lcd_display);
}

static bool has_picture()
{
	return panel.model && !panel.bits.empty() && panel.answer == lcd_answer::picture;
}

static void view_panel()
{
	timer_active = 0;
	panel.rounds = {};
	view_lcd_display();
	if (panel.open && has_picture())
		show_outcome(
			{ .line = panel.model->ctrl
					  ? tr("Keys typed on this computer go to the sampler.")
					  : tr("This sampler shows its screen and takes no "
					       "keys.") });
}

// ---- Messages --------------------------------------------------------------------------------

static void close_panel()
{
	timer_active = -1;
	panel.open = false;
	host.ui->show(window_panel, 0, false);
}

static void command_came(const _sampler_type &model, int id, int steps, int)
{
	host.ui->focus(window_panel, panel_picture);
	int handle = 0;
	for (const _sampler_ctrl *c = model.ctrl; c && c->name; c++) {
		if (c->id != id)
			continue;
		handle = c->win;
		work_panel_control(*c, steps);
		show_outcome({ .line = c->ctrl_type == ctrl_wheel
					       ? tr("The wheel was turned.")
					       : format_text(tr("%s was pressed."),
							 std::string(c->name).c_str()) });
	}
	log_line("WM_COMMAND FOR LCDWIN RECEIVED: %d, LPARAM: %d\r\n", id, handle);
}

static void character_came(const _sampler_type &model, int character, int, int)
{
	const u8 key = static_cast<u8>(character & 0x7F);
	log_line("Received WM_KEYDOWN! for LCD (%d) KEYSTATE: %d\r\n", character, 1);
	type_panel_character(model, key);
}

static void right_went_down(const _sampler_type &model, int, int x, int y)
{
	const auto [left, top] = screen_place(model);
	log_line("Received WM_LBUTTONDOWN! for LCD [%d/%d]\r\n", left + x, top + y);
}

static void right_went_up(const _sampler_type &, int, int, int)
{
	log_line("Received WM_LBUTTONDOWN! for LCD\r\n");
}

struct message_row {
	lcd_message message;
	void (*take)(const _sampler_type &model, int value, int x, int y);
};
static constexpr message_row messages[] = {
	{ lcd_message::command, command_came },
	{ lcd_message::character, character_came },
	{ lcd_message::right_down, right_went_down },
	{ lcd_message::right_up, right_went_up },
};

void lcd_wnd_proc(lcd_message message, int value, int x, int y)
{
	if (message == lcd_message::close)
		return close_panel();
	if (!current_sampler)
		return;
	const brief_work others_wait;
	const _sampler_type *model = get_sampler(static_cast<i32>(current_sampler->sampler_type));
	if (!model) {
		const std::string title =
			format_text("Bad Sampler (%s)\n", current_sampler->sampler_description);
		show_box(title.c_str(), "ERROR");
		return end_program(0);
	}
	for (const message_row &row : messages)
		if (row.message == message)
			row.take(*model, value, x, y);
}

// ---- Keys and mouse --------------------------------------------------------------------------

// The number of the character at the front of a text, which loses it.
static int next_character(std::string_view *text)
{
	const auto byte = [text](std::size_t at) {
		return at < text->size() ? static_cast<u8>((*text)[at]) : u8{ 0 };
	};
	const u8 first = byte(0);
	const std::size_t more = first < 0xC0 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
	int number = more ? first & (0x3F >> more) : first;
	for (std::size_t i = 1; i <= more; i++)
		number = number << 6 | (byte(i) & 0x3F);
	text->remove_prefix(std::min(more + 1, text->size()));
	return number;
}

// The panel shows the loaded sampler, so what is done on it is meant for that one.
static bool panel_is_of_the_loaded()
{
	return panel.model && current_sampler &&
	       panel.model == get_sampler(static_cast<i32>(current_sampler->sampler_type));
}

void panel_key_pressed(int, std::string_view text, bool pressed)
{
	if (!pressed || !panel_is_of_the_loaded())
		return;
	for (std::size_t i = 0; i < most_characters && !text.empty(); i++)
		lcd_wnd_proc(lcd_message::character, next_character(&text) & 0xFF, 0, 0);
}

static const _sampler_ctrl *find_wheel(bool forwards)
{
	for (const _sampler_ctrl *c = panel.model->ctrl; c && c->name; c++)
		if (c->ctrl_type == ctrl_wheel && (c->ctl.wheel.sysex_change[2] == 0) == forwards)
			return c;
	return nullptr;
}

void panel_mouse_used(int x, int y, mouse_action action, int amount)
{
	if (!panel_is_of_the_loaded())
		return;
	if (action == mouse_action::wheel) {
		const _sampler_ctrl *wheel = find_wheel(amount > 0);
		if (wheel && amount)
			lcd_wnd_proc(lcd_message::command, wheel->id,
				std::min(std::abs(amount), most_steps), 0);
	} else if (amount == 2) {
		lcd_wnd_proc(action == mouse_action::down ? lcd_message::right_down
							  : lcd_message::right_up,
			0, x, y);
	}
}

// ---- The picture for other programs ----------------------------------------------------------

static constexpr int scales[] = { panel_scale_1, panel_scale_2, panel_scale_3 };

static int chosen_scale()
{
	for (int i = 0; i < 3; i++)
		if (host.ui->checked(window_panel, scales[i]))
			return i + 1;
	return 1;
}

template <int scale> static void choose_scale()
{
	for (int i = 0; i < 3; i++)
		host.ui->set_checked(window_panel, scales[i], i + 1 == scale);
}

static void copy_picture()
{
	if (!has_picture())
		return;
	const bitmap_view view = shown_bits();
	host.ui->copy_bitmap(&view, chosen_scale());
	show_outcome({ .line = tr("The picture is on the clipboard.") });
}

// What is shown when the button is pressed, whatever the sampler shows when the name is chosen.
static void save_picture()
{
	if (!has_picture())
		return;
	const std::vector<u8> kept = panel.bits;
	bitmap_view view = shown_bits();
	view.bits = kept;
	const std::string name = file_name_of(current_sampler->sampler_description) + ".png";
	std::string path =
		host.ui->choose_new_file(tr("Save picture"), tr("Pictures (*.png)"), name.c_str());
	if (path.empty())
		return;
	if (path.find('.', path.find_last_of('\\') + 1) == path.npos)
		path += ".png";
	const std::string told = host.files->host_path(path.c_str());
	if (host.ui->save_bitmap(path.c_str(), &view, chosen_scale()))
		show_outcome(
			{ .line = format_text(tr("The picture was saved as %s."), told.c_str()) });
	else
		show_outcome({ .how = ending::local_failed,
			.words = format_text(tr("The picture could not be saved as %s. Is there "
						"room, and may files be made there?"),
				told.c_str()),
			.caption = "ERROR" });
}

// ---- Rows ------------------------------------------------------------------------------------

// clang-format off
static constexpr caption_row panel_captions[] = {
	// window         control          caption, tooltip, empty
	{ window_panel,   0,               "Sampler Panel", nullptr, nullptr },
	{ window_panel,   panel_picture,   own("Screen of the sampler"), nullptr, nullptr },
	{ window_panel,   panel_state,     own("State of the screen"), nullptr, nullptr },
	{ window_panel,   panel_copy,      own("&Copy picture"), own("Put the picture on the clipboard, as large as it is shown"), nullptr },
	{ window_panel,   panel_save,      own("&Save picture..."), own("Keep the picture as a file, as large as it is shown"), nullptr },
	{ window_panel,   panel_scale_1,   "1", own("Show the screen as large as it is"), nullptr },
	{ window_panel,   panel_scale_2,   "2", own("Show the screen twice as large"), nullptr },
	{ window_panel,   panel_scale_3,   "3", own("Show the screen three times as large"), nullptr },
};
static constexpr command_row window_commands[] = {
	{ window_panel,   control_cancel,  close_panel,     always },
	{ window_panel,   panel_copy,      copy_picture,    alone  },
	{ window_panel,   panel_save,      save_picture,    alone  },
	{ window_panel,   panel_scale_1,   choose_scale<1>, always },
	{ window_panel,   panel_scale_2,   choose_scale<2>, always },
	{ window_panel,   panel_scale_3,   choose_scale<3>, always },
	{ window_main,    main_lcd,        view_panel,      alone  },
};
// clang-format on

// As many keys as the largest table has.
static constexpr std::size_t most_keys = 45;

template <std::size_t key> static void press_key()
{
	if (panel_is_of_the_loaded())
		lcd_wnd_proc(lcd_message::command, panel_first_key + static_cast<int>(key), 1, 0);
}

template <std::size_t... key>
static consteval std::array<command_row, std::size(window_commands) + sizeof...(key)> all_commands(
	std::index_sequence<key...>)
{
	std::array<command_row, std::size(window_commands) + sizeof...(key)> rows = { command_row{
		window_panel, panel_first_key + static_cast<int>(key), press_key<key>, alone }... };
	std::copy(std::begin(window_commands), std::end(window_commands),
		rows.begin() + sizeof...(key));
	return rows;
}
static constexpr auto panel_commands = all_commands(std::make_index_sequence<most_keys>());

constinit const window_rows panel_rows = { panel_captions, panel_commands };

} // namespace velmor
