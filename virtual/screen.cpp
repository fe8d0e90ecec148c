// screen.cpp - the screen and the keys of a virtual USB sampler

#include "virtual/screen.h"
#include "virtual/usb_requests.h"
#include "virtual/usb_sampler.h"
#include <algorithm>

namespace velmor
{

static constexpr char not_here[] = "NOT HERE";
static constexpr int longest_name = 20, most_digits = 5, voices = 64;
static constexpr char backspace = 8, enter_character = 13, escape = 27;

int within(int number, std::size_t count)
{
	const int last = static_cast<int>(count) - 1;
	return std::max(std::min(number, last), last < 0 ? -1 : 0);
}

std::string note_name(int note)
{
	static const char *const names[] = { "C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A",
		"A#", "B" };
	return names[note % 12] + std::to_string(note / 12 - 2);
}

// ---- Where one is ------------------------------------------------------------------------

screen::screen(
	usb_sampler &m, const screen_layout &l, const mode_table &pages, screen_mode at_power_on)
	: machine(m), layout(l), modes(pages), home(at_power_on), canvas(l.width, l.height)
{
	power_on();
	for (std::size_t i = 0; i < parts.size(); i++)
		parts[i].program = i < 4 ? static_cast<int>(i) : -1;
	for (std::size_t i = 0; i < effects.size(); i++)
		effects[i].kind = static_cast<int>(i);
}

screen::~screen() = default;

void screen::power_on()
{
	here = { .mode = home };
	has_mark = false;
	open = window::none;
	message.clear();
	number.clear();
	recording = sounding = 0;
}

const screen_page &screen::page()
{
	return pages().pages[static_cast<std::size_t>(page_number())];
}

int &screen::cursor()
{
	if (const auto choice = page().choice)
		return chosen.*choice;
	return cursors[static_cast<std::size_t>(here.mode)]
		      [static_cast<std::size_t>(page_number())];
}

// The rows as they are now, with the cursor on one of them.
screen_rows screen::rows_now()
{
	screen_rows rows = page().rows(*this);
	cursor() = std::max(0, within(cursor(), rows.size()));
	return rows;
}

screen_row screen::row_now()
{
	const screen_rows rows = rows_now();
	return rows.empty() ? screen_row{} : rows[static_cast<std::size_t>(cursor())];
}

void screen::move_cursor(int steps)
{
	const screen_rows rows = rows_now();
	const int before = cursor();
	cursor() = std::max(0, within(before + steps, rows.size()));
	if (cursor() == before)
		message = rows.empty() ? not_here
			  : steps < 0  ? "THIS IS THE FIRST"
				       : "THIS IS THE LAST";
	else if (page().choice == &screen_choice::program)
		chosen.keygroup = chosen.zone = 0;
}

void screen::move_page(int steps)
{
	const int count = static_cast<int>(pages().pages.size());
	show_page((page_number() + steps + count) % count);
}

std::string screen::subject()
{
	const auto nth = [](const std::vector<std::string> &names, int n, const char *none) {
		return names.empty() ? none
				     : names[static_cast<std::size_t>(within(n, names.size()))];
	};
	const disk_volume *disk =
		entry(machine.disks.volumes, within(chosen.disk, machine.disks.volumes.size()));
	switch (here.mode) {
	case screen_mode::multi:
		return nth(multis(), chosen.multi, "Multi at hand");
	case screen_mode::program:
		return nth(program_names(), chosen.program, "No program");
	case screen_mode::sample:
		return machine.samples.empty()
			       ? "No sample"
			       : machine.samples[static_cast<std::size_t>(within(
							 chosen.sample, machine.samples.size()))]
					 .name;
	case screen_mode::save:
	case screen_mode::load:
		return !chosen.folders.empty() ? chosen.folders.back()
		       : disk                  ? disk->name
					       : "No disk";
	default:
		return machine.name;
	}
}

std::size_t screen::memory_used() const
{
	std::size_t used = 0;
	for (const usb_sample &s : machine.samples)
		used += s.wave.size();
	return std::min(used, screen_memory);
}

// ---- Keys --------------------------------------------------------------------------------

// In the order of screen_key.
const screen::act screen::acts[] = {
	[](screen &s, int n) { s.here.mode = static_cast<screen_mode>(n); },
	[](screen &s, int n) { s.press_soft(n); },
	[](screen &s, int n) { s.press_digit(n); },
	[](screen &s, int n) { s.turn_wheel(n); },
	[](screen &s, int n) { s.move_cursor(n); },
	[](screen &s, int n) { s.move_page(n); },
	[](screen &s, int) { s.open = window::facts; },
	[](screen &, int) {}, // drops what is being typed, as below
	[](screen &s, int) { s.press_enter(); },
	[](screen &s, int) { s.play(); },
	[](screen &s, int) { s.message = not_here; },
};

void screen::press(screen_key key, int n)
{
	using enum screen_key;
	static_assert(std::size(acts) == static_cast<std::size_t>(not_fitted) + 1);
	message.clear();
	const bool closes = open == window::facts && (key == window_key || key == exit);
	const bool types = key == soft || key == digit || key == step || key == enter;
	if (open == window::facts || !types)
		press_exit();
	if (!closes)
		acts[static_cast<std::size_t>(key)](*this, n);
}

void screen::press_digit(int digit)
{
	if (open == window::name || row_now().set) {
		type(static_cast<char>('0' + digit));
	} else if (digit > 1) {
		message = not_here;
	} else if (digit == 0) {
		marked = here;
		has_mark = true;
		message = "THIS PAGE IS MARKED";
	} else {
		message = has_mark ? "" : "NO PAGE IS MARKED";
		here = has_mark ? marked : here;
	}
}

void screen::press_soft(int key)
{
	const int tabs = static_cast<int>(pages().pages.size());
	const int action = layout.first_action ? key - layout.first_action : key - tabs - 1;
	if (open == window::name) {
		message = key > 2 ? not_here : "";
		if (key == 1)
			take_name();
		else if (key == 2)
			press_exit();
	} else if (key <= tabs) {
		press_exit();
		show_page(key - 1);
	} else if (action >= 0 && action < static_cast<int>(pages().actions.size())) {
		number.clear();
		message = pages().actions[static_cast<std::size_t>(action)].run(*this);
	} else {
		message = not_here;
	}
}

void screen::press_enter()
{
	if (open == window::name)
		take_name();
	else if (!number.empty())
		take_number();
	else if (page().enter)
		message = page().enter(*this);
	else
		play();
}

void screen::press_exit()
{
	open = window::none;
	number.clear();
}

void screen::play()
{
	const bool samples = here.mode == screen_mode::sample || here.mode == screen_mode::record;
	const std::vector<std::string> programs = program_names();
	if (samples ? machine.samples.empty() : programs.empty()) {
		message = "NOTHING TO PLAY";
		return;
	}
	const int played = samples ? within(chosen.sample, machine.samples.size())
				   : within(chosen.program, programs.size());
	sounding = 8;
	message = "PLAYS " + (samples ? machine.samples[static_cast<std::size_t>(played)].name
				      : programs[static_cast<std::size_t>(played)]);
}

void screen::turn_wheel(int steps)
{
	message.clear();
	number.clear();
	if (open == window::name) {
		const int last = typed_name.empty() ? ' ' : typed_name.back();
		if (!typed_name.empty())
			typed_name.pop_back();
		typed_name.push_back(static_cast<char>(std::clamp(last + steps, +' ', +'~')));
		return;
	}
	open = window::none;
	const screen_row row = row_now();
	if (!row.set)
		move_cursor(steps);
	else
		row.set(std::clamp(row.now + steps, row.low, row.high));
}

// ---- Characters --------------------------------------------------------------------------

void screen::type(char character)
{
	message.clear();
	if (open == window::facts)
		open = window::none;
	if (character == enter_character) {
		press_enter();
	} else if (character == escape) {
		press_exit();
	} else if (open == window::name) {
		type_name(character);
	} else if (character == backspace && !number.empty()) {
		number.pop_back();
	} else if (character >= '0' && character <= '9' && row_now().set) {
		type_digit(character);
	} else if (character >= ' ' && character <= '~' && row_now().rename) {
		begin_name(page_number());
		typed_name.clear();
		type_name(character);
	} else {
		message = not_here;
	}
}

void screen::type_digit(char digit)
{
	if (number.size() == most_digits)
		message = "NO MORE DIGITS";
	else
		number.push_back(digit);
}

void screen::take_number()
{
	const screen_row row = row_now();
	const int typed = std::stoi(number);
	number.clear();
	if (!row.set)
		message = not_here;
	else if (typed < row.low || typed > row.high)
		message = "FROM " + std::to_string(row.low) + " TO " + std::to_string(row.high);
	else
		row.set(typed);
}

std::string screen::begin_name(int on_page)
{
	show_page(on_page);
	const screen_row row = row_now();
	if (!row.rename)
		return not_here;
	open = window::name;
	typed_name = old_name = row.name;
	return "";
}

void screen::type_name(char character)
{
	if (character == backspace) {
		if (!typed_name.empty())
			typed_name.pop_back();
	} else if (character < ' ' || character > '~') {
		message = not_here;
	} else if (typed_name.size() >= longest_name) {
		message = "NO MORE LETTERS";
	} else {
		typed_name.push_back(character);
	}
}

// The host may have taken away meanwhile what was to be renamed.
void screen::take_name()
{
	open = window::none;
	const screen_row row = row_now();
	message = !row.rename || row.name != old_name ? "IT IS GONE"
		  : typed_name.empty()                ? "A NAME NEEDS A LETTER"
		  : typed_name == old_name            ? ""
						      : row.rename(typed_name);
}

// ---- Drawing -----------------------------------------------------------------------------

const screen_canvas &screen::draw()
{
	pictures++;
	sounding -= sounding > 0;
	recording += recording > 0;
	canvas.clear();
	const screen_rows rows = rows_now();
	draw_title(rows.size());
	draw_rows(rows);
	if (page().drawing)
		page().drawing(*this, canvas, layout.drawing);
	draw_footer();
	draw_soft_keys();
	draw_window();
	return canvas;
}

// Without a footer, the title has room for what would stand there.
void screen::draw_title(std::size_t rows)
{
	const screen_box b = layout.title;
	const bool small = layout.heading < 0;
	std::string right = std::to_string(rows ? cursor() + 1 : 0) + "/" + std::to_string(rows);
	if (small)
		right = message.empty() ? subject() : message;
	canvas.words(b.x + 3, b.y + 1, page().title);
	canvas.words_right(b.right() - 3, b.y + 1, right);
	canvas.turn_over(b);
	if (!small)
		canvas.large_words(b.x + 1, layout.heading, words_cut(subject(), b.width / 2));
}

void screen::draw_rows(const screen_rows &rows)
{
	const screen_box b = page().drawing ? layout.rows : layout.rows_alone;
	const int count = static_cast<int>(rows.size()), shown = b.height / layout.row_height;
	const int first = std::clamp(cursor() - shown / 2, 0, std::max(0, count - shown));
	const bool bar = count > shown;
	if (rows.empty())
		canvas.words_centred({ b.x, b.y, b.width, layout.row_height * 3 }, "EMPTY");
	for (int i = 0; i < shown && first + i < count; i++)
		draw_row(rows[static_cast<std::size_t>(first + i)],
			{ b.x, b.y + i * layout.row_height, b.width - (bar ? 5 : 0),
				layout.row_height },
			first + i == cursor());
	if (!bar)
		return;
	const int height = shown * layout.row_height, knob = std::max(5, height * shown / count);
	canvas.frame({ b.right() - 4, b.y, 4, height });
	canvas.fill({ b.right() - 4, b.y + (height - knob) * first / (count - shown), 4, knob });
}

// A number is marked alone: that is what the wheel turns.
void screen::draw_row(const screen_row &row, screen_box b, bool at_cursor)
{
	const std::string value = at_cursor && !number.empty() ? number + "_" : row.value;
	const int room = b.width - 6 - (value.empty() ? 0 : words_width(value) + letter_width);
	const bool number_only = at_cursor && row.set;
	const int y = b.y + (b.height - letter_height + 1) / 2;
	canvas.words(b.x + 2, y, words_cut(row.label, room));
	canvas.words_right(b.right() - 3, y, words_cut(value, b.width - 6));
	if (number_only)
		b = { b.right() - words_width(value) - 5, b.y, words_width(value) + 5, b.height };
	if (at_cursor)
		canvas.turn_over(b);
}

std::string screen::soft_label(int key) const
{
	const screen_mode_pages &p = pages();
	const std::size_t nth = static_cast<std::size_t>(key - 1);
	const std::size_t action = layout.first_action
					   ? static_cast<std::size_t>(key - layout.first_action)
					   : nth - p.pages.size();
	if (open == window::name)
		return key == 1 ? "OK" : key == 2 ? "CANCEL" : "";
	if (nth < p.pages.size())
		return p.pages[nth].tab;
	return action < p.actions.size() ? p.actions[action].label : "";
}

// A page is a tab, and dark while it is shown; what is done at once throws a shadow.
void screen::draw_soft_keys()
{
	const int tabs = static_cast<int>(pages().pages.size());
	for (int key = 1; key <= layout.soft_keys; key++) {
		const std::string label = soft_label(key);
		const screen_box b = layout.soft_key(key);
		if (label.empty())
			continue;
		canvas.frame(b);
		canvas.words_centred({ b.x + 1, b.y, b.width - 2, b.height }, label);
		if (open != window::name && key == page_number() + 1)
			canvas.turn_over({ b.x + 1, b.y + 1, b.width - 2, b.height - 2 });
		else if (key > tabs && layout.heading >= 0) {
			canvas.line(b.x + 1, b.bottom(), b.right(), b.bottom());
			canvas.line(b.right(), b.y + 1, b.right(), b.bottom());
		}
	}
}

static std::string count_of(std::size_t count, const std::string &what)
{
	return std::to_string(count) + " " + what + (count == 1 ? "" : "S");
}

void screen::draw_window()
{
	const screen_box b = layout.window;
	if (open == window::none)
		return;
	canvas.fill({ b.x - 1, b.y - 1, b.width + 4, b.height + 4 }, false);
	canvas.fill({ b.x + 2, b.y + 2, b.width, b.height });
	canvas.fill(b, false);
	canvas.frame(b);
	const auto version =
		std::to_string(machine.version_major) + "." + std::to_string(machine.version_minor);
	const std::string lines[2][3] = {
		{ "NAME", typed_name + "_", "ENT TAKES IT, EXIT DROPS IT" },
		{ model() + ", VERSION " + version,
			count_of(program_names().size(), "PROGRAM") + ", " +
				count_of(machine.samples.size(), "SAMPLE"),
			"EXCLUSIVE CHANNEL " + std::to_string(machine.channel) },
	};
	const int step = (b.height - 4) / 3;
	for (int i = 0; i < 3; i++)
		canvas.words(b.x + 6, b.y + 4 + i * step, lines[open == window::facts][i]);
	if (open == window::name)
		canvas.turn_over({ b.x + 4, b.y + 3 + step, words_width(typed_name + "_") + 4,
			letter_height + 2 });
}

void screen::draw_footer()
{
	if (layout.footer < 0)
		return;
	const std::size_t free = screen_memory - memory_used();
	const screen_box b = layout.title;
	canvas.fill({ b.x, layout.footer - 3, b.width, 1 });
	if (!message.empty()) {
		canvas.words(b.x + 2, layout.footer, message);
		return;
	}
	canvas.words(b.x + 2, layout.footer,
		"VOICES " + std::to_string(sounding ? 2 : 0) + "/" + std::to_string(voices));
	canvas.words_right(b.right() - 2, layout.footer,
		std::to_string(free * 100 / screen_memory) + "% FREE");
}

} // namespace velmor
