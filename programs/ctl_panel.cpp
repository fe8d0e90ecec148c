// ctl_panel.cpp - verbs about a sampler's front panel: panel, key
//
// On a terminal the screen is drawn with the characters of Braille, each of which has two by four
// dots.

#include "programs/ctl.h"
#include "src/lcd.h"
#include "src/velmor_files.h"
#include "src/velmor_window.h"
#include "src/waveqx_file.h"
#include <algorithm>

namespace velmor
{

// The row of the loaded sampler; null after the words for one without that.
static const _sampler_type *model_with(
	bool there(const _sampler_type &), const char *words, int *status)
{
	outcome why;
	const _sampler_type *model = loaded_model(&why);
	if (model && !there(*model))
		why = { .how = ending::refused, .words = format_text(words, model->sampler_brand) };
	if (why.done())
		return model;
	*status = ctl_tell("", why);
	return nullptr;
}

// ---- The picture --------------------------------------------------------------------------------

static bool is_dark(const bitmap_view &view, int x, int y)
{
	if (x >= view.width || y >= view.height)
		return false;
	const int row_bytes = (view.width + 7) / 8;
	const auto at = static_cast<std::size_t>(y * row_bytes + x / 8);
	return at < view.bits.size() && (view.bits[at] & (0x80 >> x % 8));
}

// U+2800 with a bit for each dot: three down the left, three down the right, then the lowest two.
static std::string braille(const bitmap_view &view, int left, int top)
{
	static constexpr int dots[2][4] = { { 0x01, 0x02, 0x04, 0x40 },
		{ 0x08, 0x10, 0x20, 0x80 } };
	int set = 0;
	for (int x = 0; x < 2; x++)
		for (int y = 0; y < 4; y++)
			set |= is_dark(view, left + x, top + y) ? dots[x][y] : 0;
	return { '\xE2', static_cast<char>(0xA0 | set >> 6),
		static_cast<char>(0x80 | (set & 0x3F)) };
}

static std::string drawing_of(const bitmap_view &view)
{
	std::string text;
	for (int y = 0; y < view.height; y += 4) {
		for (int x = 0; x < view.width; x += 2)
			text += braille(view, x, y);
		text += '\n';
	}
	text.resize(text.empty() ? 0 : text.size() - 1);
	return text;
}

static outcome fetch_outcome()
{
	switch (last_lcd_answer) {
	case lcd_answer::picture:
		return {};
	case lcd_answer::busy:
		return { .how = ending::refused, .words = "The sampler is busy." };
	case lcd_answer::absent:
		return { .how = ending::no_answer, .words = silence_words(loaded_reached()) };
	case lcd_answer::failed:
		break;
	}
	return { .how = ending::no_answer, .words = "The sampler does not send its screen." };
}

static int save_picture(const bitmap_view &view, const std::string &file)
{
	const std::string path = host.files->system_path(file.c_str());
	const std::vector<u8> png = png_of(view, lcd_light());
	if (const int code = write_whole_file(path, png.data(), png.size()))
		return ctl_tell(
			"", { .how = ending::local_failed, .words = write_failure(path, code) });
	ctl_print(ctl_object()
			  .number("width", view.width)
			  .number("height", view.height)
			  .text("path", file),
		file);
	return exit_done;
}

static int print_picture(const bitmap_view &view)
{
	std::vector<std::string> rows;
	const auto row_bytes = static_cast<std::size_t>((view.width + 7) / 8);
	for (std::size_t at = 0; at + row_bytes <= view.bits.size(); at += row_bytes) {
		std::string row = hex_text(view.bits.subspan(at, row_bytes));
		std::erase(row, ' ');
		rows.push_back(row);
	}
	ctl_print(ctl_object()
			  .number("width", view.width)
			  .number("height", view.height)
			  .texts("rows", rows),
		drawing_of(view));
	return exit_done;
}

int ctl_panel(const ctl_call &call)
{
	int status = exit_done;
	if (!model_with([](const _sampler_type &m) { return m.getpanel != nullptr; },
		    "The screen of %s cannot be seen from here.", &status))
		return status;
	std::vector<u8> bits;
	bitmap_view view = {};
	ctl_hook.picture = [&](const bitmap_view &shown) {
		bits.assign(shown.bits.begin(), shown.bits.end());
		view = { bits, shown.width, shown.height };
	};
	ctl_ends_inside(exit_no_answer);
	view_lcd_display();
	if (const outcome fetched = fetch_outcome(); !fetched.done())
		return ctl_tell("", fetched);
	return call.has("--png") ? save_picture(view, call.value("--png")) : print_picture(view);
}

// ---- Keys -----------------------------------------------------------------------------------------

static const _sampler_ctrl *find_key(const _sampler_type &model, const std::string &name)
{
	for (const _sampler_ctrl *c = model.ctrl; c && c->name; c++)
		if (equal_but_for_case(c->name, name))
			return c;
	return nullptr;
}

static int list_keys(const _sampler_type &model)
{
	for (const _sampler_ctrl *c = model.ctrl; c && c->name; c++)
		ctl_print(ctl_object()
				  .text("name", c->name)
				  .text("kind", c->ctrl_type == ctrl_wheel ? "wheel" : "key"),
			c->name);
	return exit_done;
}

static void press(const _sampler_ctrl &control, int times)
{
	if (control.ctrl_type == ctrl_wheel)
		return work_panel_control(control, times);
	for (int i = 0; i < times && !progress_stopped(); i++)
		work_panel_control(control, 1);
}

int ctl_key(const ctl_call &call)
{
	int status = exit_done;
	const _sampler_type *model =
		model_with([](const _sampler_type &m) { return m.ctrl != nullptr; },
			"The keys of %s cannot be pressed from here.", &status);
	if (!model)
		return status;
	if (call.has("--list"))
		return list_keys(*model);
	if (call.words.empty() && !call.has("--type"))
		return ctl_usage("key takes the names of keys, --type, or --list.");
	for (const std::string &name : call.words)
		if (!find_key(*model, name))
			return ctl_usage("There is no key '" + name +
					 "' on this sampler; --list names them.");
	ctl_ends_inside(exit_no_answer);
	for (const std::string &name : call.words) {
		press(*find_key(*model, name), call.number("--times", 1));
		(void)ctl_tell(name, { .line = "Pressed '" + name + "'." });
		if (progress_stopped())
			return exit_stopped;
	}
	for (const char c : call.value("--type"))
		type_panel_character(*model, static_cast<u8>(c & 0x7F));
	return exit_done;
}

} // namespace velmor
