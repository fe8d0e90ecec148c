// lcd_controls.cpp - the keys and wheels of the samplers' front panels
//
//   Z4, Z8          press 2C 01 code, let go 2C 02 code; arrows 2C 10 and 2C 11
//                   with code 02 00 00; wheel 2C 03 direction 01
//   S5000, S6000    press 20 01 code, let go 20 02 code; wheel 20 03 direction 01
//
// The MPC 4000 shows its screen and takes no keys. Places are pixels of the screen, counted from
// its corner; all controls are 20 high.
//
// To add a panel: its rows, and a row of panels.
//
// Knows nothing of: windows, frames.

#include "src/controls.h"
#include "src/lcd.h"
#include "src/velmor.h"
#include <cstdio>
#include <deque>

namespace velmor
{

static constexpr i32 control_height = 20;

// ---- Rows ------------------------------------------------------------------------------------

// How controls of one kind speak: section, item, the control's own code, and what stands behind.
struct speech {
	u8 type, section;
	u8 on, off; // items; a wheel has the first only
	std::span<const u8> behind;
};

enum place {
	picture, // x counts from the left edge of the screen
	right,   // from its right edge
	beside,  // from half a screen right of that
};

struct control_row {
	const char *name;
	const speech *speaks;
	u8 code;
	place from;
	i32 x, y, width;
};

// clang-format off
static constexpr u8 arrow_tail[] = { 0x02, 0x00, 0x00 };
static constexpr u8 one_step[]   = { 0x01 };

static constexpr speech z4_key      = { ctrl_button, 0x2C, 0x01, 0x02, {} };
static constexpr speech z4_arrow    = { ctrl_button, 0x2C, 0x10, 0x11, arrow_tail };
static constexpr speech z4_wheel    = { ctrl_wheel,  0x2C, 0x03, 0x00, one_step };
static constexpr speech s5000_key   = { ctrl_button, 0x20, 0x01, 0x02, {} };
static constexpr speech s5000_wheel = { ctrl_wheel,  0x20, 0x03, 0x00, one_step };

static constexpr control_row z4_rows[] = {
	// name         speaks        code  from      x     y  width
	{ "PLAY",      &z4_key,       0x0A, picture,  -60,  40, 50 },
	{ "CLIPBOARD", &z4_key,       0x09, picture, -160,  40, 70 },
	{ "Q-Link",    &z4_key,       0x08, picture, -240,  40, 70 },
	{ "F1",        &z4_key,       0x01, picture,    0,  40, 25 },
	{ "F2",        &z4_key,       0x02, picture,   45,  40, 25 },
	{ "F3",        &z4_key,       0x03, picture,   90,  40, 25 },
	{ "F4",        &z4_key,       0x04, picture,  135,  40, 25 },
	{ "F5",        &z4_key,       0x05, picture,  180,  40, 25 },
	{ "F6",        &z4_key,       0x06, picture,  225,  40, 25 },
	{ "Window",    &z4_key,       0x07, picture,  285,  40, 50 },
	{ "WHEEL>>",   &z4_wheel,     0x00, picture,  370, -50, 80 },
	{ "<<WHEEL",   &z4_wheel,     0x01, picture,  370,   0, 80 },
	{ "UP",        &z4_arrow,     0x03, picture,  300, -50, 40 },
	{ "LEFT",      &z4_arrow,     0x01, picture,  270, -25, 40 },
	{ "RIGHT",     &z4_arrow,     0x02, picture,  330, -25, 40 },
	{ "DOWN",      &z4_arrow,     0x04, picture,  300,   0, 40 },
	{ "Multi",     &z4_key,       0x17, picture, -130, -60, 60 },
	{ "FX",        &z4_key,       0x13, picture,  -65, -60, 60 },
	{ "Sample",    &z4_key,       0x16, picture, -130, -35, 60 },
	{ "Program",   &z4_key,       0x12, picture,  -65, -35, 60 },
	{ "Record",    &z4_key,       0x15, picture, -130, -10, 60 },
	{ "Utilities", &z4_key,       0x11, picture,  -65, -10, 60 },
	{ "Save",      &z4_key,       0x14, picture, -130,  15, 60 },
	{ "Load",      &z4_key,       0x10, picture,  -65,  15, 60 },
};

// In front of the function keys, and behind them.
static constexpr control_row s5000_first_rows[] = {
	// name            speaks        code  from      x     y  width
	{ "MULTI",        &s5000_key,    0x44, picture, -300,   0, 100 },
	{ "FX",           &s5000_key,    0x40, picture, -190,   0, 100 },
	{ "EDIT SAMPLE",  &s5000_key,    0x42, picture, -300,  40, 100 },
	{ "EDIT PROGRAM", &s5000_key,    0x43, picture, -190,  40, 100 },
	{ "RECORD",       &s5000_key,    0x41, picture, -300,  80, 100 },
	{ "UTILITIES",    &s5000_key,    0x45, picture, -190,  80, 100 },
	{ "SAVE",         &s5000_key,    0x46, picture, -300, 120, 100 },
	{ "LOAD",         &s5000_key,    0x47, picture, -190, 120, 100 },
	{ "MARK",         &s5000_key,    0x58, picture, -300, 180, 100 },
	{ "JUMP",         &s5000_key,    0x59, picture, -190, 180, 100 },
};
static constexpr control_row s5000_last_rows[] = {
	// name        speaks        code from     x    y  width
	{ "<",        &s5000_key,     100, beside, -70,  80, 30 },
	{ ">",        &s5000_key,     101, beside, -20,  80, 30 },
	{ "7",        &s5000_key,      95, beside, -70, 120, 20 },
	{ "8",        &s5000_key,      96, beside, -40, 120, 20 },
	{ "9",        &s5000_key,      97, beside, -10, 120, 20 },
	{ "Window",   &s5000_key,     103, beside,  30, 120, 80 },
	{ "4",        &s5000_key,      92, beside, -70, 150, 20 },
	{ "5",        &s5000_key,      93, beside, -40, 150, 20 },
	{ "6",        &s5000_key,      94, beside, -10, 150, 20 },
	{ "Exit",     &s5000_key,     106, beside,  30, 180, 80 },
	{ "1",        &s5000_key,      89, beside, -70, 180, 20 },
	{ "2",        &s5000_key,      90, beside, -40, 180, 20 },
	{ "3",        &s5000_key,      91, beside, -10, 180, 20 },
	{ "-",        &s5000_key,      98, beside, -70, 210, 20 },
	{ "0",        &s5000_key,      88, beside, -40, 210, 20 },
	{ "+",        &s5000_key,      99, beside, -10, 210, 20 },
	{ "Ent/Play", &s5000_key,     107, beside,  30, 210, 80 },
	{ "<WHEEL",   &s5000_wheel,     1, beside, -80,  30, 80 },
	{ "WHEEL>",   &s5000_wheel,     0, beside,   0,  30, 80 },
};
// clang-format on

// ---- Building --------------------------------------------------------------------------------

// A table, and the texts and payloads that it points to.
struct panel_table {
	std::vector<_sampler_ctrl> rows;
	std::deque<std::string> names;
	std::deque<std::vector<u8>> payloads;
};

static i32 left_of(const _sampler_type &model, place from)
{
	const i32 width = static_cast<i32>(model.lcd_width);
	return from == picture ? 0 : from == right ? width : width + width / 2;
}

static std::span<const u8> payload(panel_table *table, const control_row &row, u8 item)
{
	std::vector<u8> bytes = { row.speaks->section, item, row.code };
	bytes.insert(bytes.end(), row.speaks->behind.begin(), row.speaks->behind.end());
	return table->payloads.emplace_back(std::move(bytes));
}

static void add_row(panel_table *table, const _sampler_type &model, const control_row &row)
{
	_sampler_ctrl c = {};
	c.name = table->names.emplace_back(row.name).c_str();
	c.ctrl_type = row.speaks->type;
	const std::span<const u8> on = payload(table, row, row.speaks->on);
	if (c.ctrl_type == ctrl_wheel) {
		c.ctl.wheel = { on.data(), static_cast<i32>(on.size()) };
	} else {
		const std::span<const u8> off = payload(table, row, row.speaks->off);
		c.ctl.button = { on.data(), static_cast<i32>(on.size()), off.data(),
			static_cast<i32>(off.size()) };
	}
	c.x_pos = left_of(model, row.from) + row.x;
	c.y_pos = row.y;
	c.height = control_height;
	c.width = row.width;
	c.id = panel_first_key + static_cast<i32>(table->rows.size());
	table->rows.push_back(c);
}

static void add_rows(
	panel_table *table, const _sampler_type &model, std::span<const control_row> rows)
{
	for (const control_row &row : rows)
		add_row(table, model, row);
}

// Two columns of eight, left and right of the screen, each key at its line of the menu.
static void add_function_keys(panel_table *table, const _sampler_type &model)
{
	for (int k = 1; k <= 16; k++) {
		const bool left = k <= 8;
		const std::string name = format_text("F%d", k);
		add_row(table, model,
			{ name.c_str(), &s5000_key, static_cast<u8>(71 + k), left ? picture : right,
				left ? -35 : 10, 8 + 30 * ((k - 1) % 8), 30 });
	}
}

static void add_z4(panel_table *table, const _sampler_type &model)
{
	add_rows(table, model, z4_rows);
}

static void add_s5000(panel_table *table, const _sampler_type &model)
{
	add_rows(table, model, s5000_first_rows);
	add_function_keys(table, model);
	add_rows(table, model, s5000_last_rows);
}

struct panel_row {
	i32 model;
	void (*add)(panel_table *table, const _sampler_type &model);
	panel_table table;
};

static void build_table(panel_row *panel, _sampler_type *model)
{
	panel->table = {};
	panel->add(&panel->table, *model);
	panel->table.rows.push_back({}); // the end
	model->ctrl = panel->table.rows.data();
}

void init_sampler_struct()
{
	static panel_row panels[] = { { model_z4, add_z4, {} }, { model_s5000, add_s5000, {} } };
	for (int i = 0; sampler_type[i].sampler_type != -1; i++) {
		_sampler_type *model = &sampler_type[i];
		std::printf("INIT SAMPLER: %d (TYPE: %d)\n", i, model->sampler_type);
		for (panel_row &panel : panels)
			if (panel.model == model->sampler_type)
				build_table(&panel, model);
	}
}

} // namespace velmor
