// test_panel.cpp - the front panel of the USB samplers: its tables, pictures, keys and gate

#include "src/controls.h"
#include "src/lcd.h"
#include "src/velmor_window.h"
#include "tests/support/usb_fixture.h"
#include <regex>
#include <sstream>

using namespace velmor;

namespace
{

// What the tables hold: name (_ is a blank), kind and code, x, y, width. K is a key, A an arrow,
// W a direction of the wheel.
const char *const z4_told = R"(
	PLAY K0A -60 40 50      CLIPBOARD K09 -160 40 70  Q-Link K08 -240 40 70
	F1 K01 0 40 25          F2 K02 45 40 25           F3 K03 90 40 25
	F4 K04 135 40 25        F5 K05 180 40 25          F6 K06 225 40 25
	Window K07 285 40 50    WHEEL>> W00 370 -50 80    <<WHEEL W01 370 0 80
	UP A03 300 -50 40       LEFT A01 270 -25 40       RIGHT A02 330 -25 40
	DOWN A04 300 0 40       Multi K17 -130 -60 60     FX K13 -65 -60 60
	Sample K16 -130 -35 60  Program K12 -65 -35 60    Record K15 -130 -10 60
	Utilities K11 -65 -10 60  Save K14 -130 15 60     Load K10 -65 15 60
)";
const char *const s5000_told = R"(
	MULTI K44 -300 0 100        FX K40 -190 0 100
	EDIT_SAMPLE K42 -300 40 100 EDIT_PROGRAM K43 -190 40 100
	RECORD K41 -300 80 100      UTILITIES K45 -190 80 100
	SAVE K46 -300 120 100       LOAD K47 -190 120 100
	MARK K58 -300 180 100       JUMP K59 -190 180 100
	F1 K48 -35 8 30     F2 K49 -35 38 30    F3 K4A -35 68 30    F4 K4B -35 98 30
	F5 K4C -35 128 30   F6 K4D -35 158 30   F7 K4E -35 188 30   F8 K4F -35 218 30
	F9 K50 330 8 30     F10 K51 330 38 30   F11 K52 330 68 30   F12 K53 330 98 30
	F13 K54 330 128 30  F14 K55 330 158 30  F15 K56 330 188 30  F16 K57 330 218 30
	< K64 410 80 30     > K65 460 80 30
	7 K5F 410 120 20    8 K60 440 120 20    9 K61 470 120 20    Window K67 510 120 80
	4 K5C 410 150 20    5 K5D 440 150 20    6 K5E 470 150 20    Exit K6A 510 180 80
	1 K59 410 180 20    2 K5A 440 180 20    3 K5B 470 180 20
	- K62 410 210 20    0 K58 440 210 20    + K63 470 210 20    Ent/Play K6B 510 210 80
	<WHEEL W01 400 30 80  WHEEL> W00 480 30 80
)";

struct told_key {
	std::string name;
	std::vector<u8> on, off;
	int x, y, width;
};

std::vector<told_key> told_keys(const char *text, u8 section)
{
	std::istringstream words(text);
	std::vector<told_key> keys;
	std::string code;
	for (told_key k; words >> k.name >> code >> k.x >> k.y >> k.width; keys.push_back(k)) {
		std::replace(k.name.begin(), k.name.end(), '_', ' ');
		const u8 number = hex(code.substr(1))[0];
		if (code[0] == 'K') {
			k.on = { section, 0x01, number };
			k.off = { section, 0x02, number };
		} else if (code[0] == 'A') {
			k.on = { section, 0x10, number, 0x02, 0x00, 0x00 };
			k.off = { section, 0x11, number, 0x02, 0x00, 0x00 };
		} else {
			k.on = { section, 0x03, number, 0x01 };
			k.off = {};
		}
	}
	return keys;
}

const char *const s5000_open = R"(
	> 03 14
	> 04 03
	> 10 0B 00 F0 47 5E 20 00 00 00 01 00 01 F7
	< F0 47 5E 23 00 00 44 00 01 F7
)";
const char *const z4_open = "> 03 01\n";
const char *const s5000_fetch = "> 01 00\n< 01 00*9598 80\n< 05*18\n";
const char *const z4_fetch = "> 01 00\n< 01 00*1858 F0\n< 05*18\n";
const char *const mpc_fetch = "> 01 00\n< 01 00*9598 F0\n< 05*18\n"
			      "> 10 07 00 F0 47 5F 00 1F 52 F7\n< F0 47 5F 00 44 1F 52 F7\n";

struct panel_model {
	i32 model;
	u16 product;
	std::string open, fetch;
	const char *keys;
	u8 section;
};
const panel_model panels[] = {
	{ model_s5000, 0x5E, s5000_open, s5000_fetch, s5000_told, 0x20 },
	{ model_z4, 0x5F, z4_open, z4_fetch, z4_told, 0x2C },
	{ model_mpc4000, 0x61, z4_open, mpc_fetch, "", 0x2C },
};
const panel_model &s5000_panel = panels[0], &z4_panel = panels[1], &mpc_panel = panels[2];

// A payload in its frame. The S5000's channel is 3, with 20 set, as its opening says.
std::string framed(const panel_model &p, const std::vector<u8> &payload)
{
	std::vector<u8> bytes = { 0x10, 0, 0, 0xF0, 0x47 };
	int sum = 0;
	if (p.model == model_s5000)
		bytes.insert(bytes.end(), { 0x5E, 0x23, 0, 0 });
	else
		bytes.insert(bytes.end(), { 0x5F, 0x00 });
	for (const u8 byte : payload) {
		bytes.push_back(byte);
		sum += byte;
	}
	if (p.model == model_s5000)
		bytes.push_back(static_cast<u8>(sum & 0x7F));
	bytes.push_back(0xF7);
	bytes[1] = static_cast<u8>(bytes.size() - 3);
	return hex_text(bytes);
}

std::string exchange(const panel_model &p, const std::vector<u8> &payload)
{
	return "> " + framed(p, payload) +
	       (p.model == model_s5000 ? "\n< F0 47 5E 23 00 00 44 F7\n"
				       : "\n< F0 47 5F 00 44 F7\n");
}

std::vector<double> sent; // when each message left
const usb_service *watched;

class panel : public usb_test
{
protected:
	panel() { init_quietly(); }
	static void init_quietly()
	{
		testing::internal::CaptureStdout();
		init_sampler_struct();
		told_at_start = testing::internal::GetCapturedStdout();
	}
	void plug(const panel_model &p)
	{
		wire.reset();
		wire = std::make_unique<transcript_usb>(h, p.product);
		load(p.model);
		watched = host.usb;
		watching = *host.usb;
		watching.submit = [](int handle, std::uint8_t pipe, unsigned char *buffer,
					  std::size_t count, int deadline_ms, int *id) {
			if (!(pipe & 0x80))
				sent.push_back(the_test_host->time.now());
			return watched->submit(handle, pipe, buffer, count, deadline_ms, id);
		};
		host.usb = &watching;
		sent.clear();
	}
	// The panel of that model, with one picture.
	void open(const panel_model &p)
	{
		plug(p);
		wire->play((p.open + p.fetch).c_str());
		ASSERT_TRUE(velmor_command(window_main, main_lcd));
		done();
	}
	void done()
	{
		EXPECT_EQ(wire->steps_left(), 0);
		EXPECT_EQ(h.boxes, std::vector<shown_box>{});
		h.boxes.clear();
	}
	const std::vector<u8> &bits() { return h.bitmaps[{ window_panel, panel_picture }]; }
	std::string words() { return h.texts[{ window_panel, panel_state }]; }
	// The lines of a fetch, without the places in the source.
	std::vector<std::string> told()
	{
		std::vector<std::string> lines;
		for (const std::string &line : h.log())
			if (std::regex_search(
				    line, std::regex("PANEL|MIDI-COMMAND|CTRL|MPC|Dummy|WARN")))
				lines.push_back(std::regex_replace(
					line, std::regex("\\([a-z_]+\\.cpp:\\d+\\)|\r\n"), ""));
		return lines;
	}
	std::unique_ptr<transcript_usb> wire;
	usb_service watching;
	static inline std::string told_at_start;
};

} // namespace

// ---- Keys and wheels ------------------------------------------------------------------------------------

TEST_F(panel, tables_are_built_at_the_start_for_the_models_with_keys)
{
	init_quietly(); // again: nothing is there twice
	std::string told;
	int row = 0;
	for (const int type : { 0, 1000, 1001, 1005, 1006, 1007, 1007, 1002, 1003, 1004 }) {
		told += format_text("INIT SAMPLER: %d (TYPE: %d)\n", row, type);
		EXPECT_EQ(!!sampler_type[row++].ctrl, type == 1002 || type == 1003);
	}
	EXPECT_EQ(told_at_start, told);
}

TEST_F(panel, every_key_and_wheel_arrives_and_a_key_is_let_go_after_a_tenth_of_a_second)
{
	for (const panel_model *p : { &s5000_panel, &z4_panel }) {
		const _sampler_ctrl *c = get_sampler(p->model)->ctrl;
		open(*p);
		int id = 18000;
		for (const told_key &k : told_keys(p->keys, p->section)) {
			SCOPED_TRACE(k.name);
			ASSERT_TRUE(c->name);
			EXPECT_EQ(c->name, k.name);
			EXPECT_EQ(std::vector({ c->x_pos, c->y_pos, c->height, c->width, c->win,
					  c->id }),
				std::vector({ k.x, k.y, 20, k.width, int{ window_panel }, id }));
			const bool button = !k.off.empty();
			EXPECT_EQ(c++->ctrl_type, button ? 1 : 2);
			wire->play((p->open + exchange(*p, k.on)).c_str());
			if (button)
				wire->play(exchange(*p, k.off).c_str());
			bool down = false;
			h.on_pump = [&] { down |= h.checks[{ window_panel, id }]; };
			h.forget_log();
			EXPECT_TRUE(velmor_command(window_panel, id));
			done();
			EXPECT_TRUE(down);
			EXPECT_FALSE((h.checks[{ window_panel, id }]));
			EXPECT_EQ(h.focus, std::pair(int{ window_panel }, int{ panel_picture }));
			const double held = sent.back() - sent[sent.size() - 2];
			EXPECT_EQ(held >= 0.1 && held < 0.105, button) << held;
			for (const char *what : { "ON", "OFF", "WHEEL" })
				EXPECT_EQ(h.logged(format_text("[D] Received RESPONSE(%s) %s", what,
						  p->model == model_z4
							  ? "(6 Bytes) [F0 47 5F 00 44 F7]"
							  : "(8 Bytes) [F0 47 5E 23 00 00 44 F7]")),
					button == (*what == 'O'))
					<< what;
			expect_logged(
				{ format_text("WM_COMMAND FOR LCDWIN RECEIVED: %d, LPARAM: %d",
					id++, window_panel) });
			h.on_pump = nullptr;
		}
		EXPECT_EQ(id - 18000, p->model == model_z4 ? 24 : 45);
		EXPECT_EQ(c->name, nullptr);
		EXPECT_FALSE(velmor_command(window_panel, 18045));
	}
}

TEST_F(panel, the_mouse_wheel_turns_the_wheel_and_the_right_button_is_logged)
{
	open(z4_panel);
	const auto wheel = [&](int steps) {
		velmor_mouse(window_panel, panel_picture, 3, 4, mouse_action::wheel, steps);
		done();
	};
	const std::string up = exchange(z4_panel, { 0x2C, 0x03, 0x00, 0x01 });
	wire->play((z4_open + up + up).c_str());
	wheel(2);
	wire->play((z4_open + exchange(z4_panel, { 0x2C, 0x03, 0x01, 0x01 })).c_str());
	wheel(-1);
	wire->play(z4_open);
	for (int i = 0; i < 8; i++)
		wire->play(up.c_str());
	wheel(1000000);
	for (const int button : { 1, 2 })
		for (const mouse_action action : { mouse_action::down, mouse_action::up })
			velmor_mouse(window_panel, panel_picture, 3, 4, action, button);
	std::vector<std::string> lines;
	for (const std::string &line : h.log())
		if (line.find("BUTTON") != line.npos)
			lines.push_back(line);
	EXPECT_EQ(lines, (std::vector<std::string>{ "Received WM_LBUTTONDOWN! for LCD [251/34]\r\n",
				 "Received WM_LBUTTONDOWN! for LCD\r\n" }));
}

TEST_F(panel, characters_are_typed_on_the_sampler)
{
	struct row {
		const panel_model *panel;
		const char *text;
		std::vector<std::vector<u8>> payloads;
		int number;
	};
	const row rows[] = {
		{ &s5000_panel, "A", { { 0x20, 0x04, 0x41 } }, 0x41 },
		{ &s5000_panel, "\xD1\x84", { { 0x20, 0x04, 0x44 } }, 0x44 },     // ef, 0444
		{ &s5000_panel, "\xE2\x82\xAC", { { 0x20, 0x04, 0x2C } }, 0xAC }, // euro, 20AC
		{ &z4_panel, "\r", { { 0x2C, 0x10, 0x0D, 0, 0, 0 }, { 0x2C, 0x11, 0x0D, 0, 0, 0 } },
			13 },
		{ &mpc_panel, "A", {}, 0x41 },
	};
	for (const row &r : rows) {
		open(*r.panel);
		if (!r.payloads.empty())
			wire->play(r.panel->open.c_str());
		for (const std::vector<u8> &payload : r.payloads)
			wire->play(exchange(*r.panel, payload).c_str());
		velmor_key(window_panel, panel_picture, 65, r.text, true);
		velmor_key(window_panel, panel_picture, 65, r.text, false);
		velmor_key(window_panel, panel_picture, 16777248, "", true); // Shift alone
		done();
		EXPECT_TRUE(h.logged(
			format_text("Received WM_KEYDOWN! for LCD (%d) KEYSTATE: 1", r.number)));
		if (r.panel == &z4_panel) {
			EXPECT_GE(sent.back() - sent[sent.size() - 2], 0.1);
		}
	}
}

TEST_F(panel, a_line_that_fails_under_a_key_ends_the_program)
{
	struct row {
		const char *steps; // behind the opening, null: no device
		int open_result;
		const char *click, *key;
	};
	const row rows[] = {
		{ nullptr, usb_ok, "USB-ERROR (100)", "USB-ERROR (K00)" },
		{ "", usb_no_device, "USB-ERROR (101)", "USB-ERROR (K01)" },
		{ "! silence", usb_ok, "USB-ERROR (102)", "USB-ERROR (K02)" },
	};
	for (const row &r : rows)
		for (const bool click : { true, false }) {
			open(z4_panel);
			wire->open_result = r.open_result;
			if (!r.steps)
				usbdev.clear();
			else if (r.open_result == usb_ok)
				wire->play((
					z4_open +
					("> " + framed(z4_panel,
							click ? std::vector<u8>{ 0x2C, 0x01, 0x0A }
							      : std::vector<u8>{ 0x2C, 0x10, 0x41,
									0, 0, 0 })) +
					"\n" + r.steps)
						   .c_str());
			EXPECT_THROW(click ? velmor_command(window_panel, 18000)
					   : velmor_key(window_panel, panel_picture, 65, "A", true),
				process_ended);
			EXPECT_EQ(h.boxes,
				(std::vector<shown_box>{ { click ? r.click : r.key, "FATAL" } }));
			h.boxes.clear();
			EXPECT_FALSE(usb_in_use());
			forget_commands();
		}
	// Another program has it for a moment.
	open(z4_panel);
	wire->open_result = usb_busy;
	h.time.after(0.5, [this] { wire->open_result = usb_ok; });
	wire->play((z4_open + exchange(z4_panel, { 0x2C, 0x01, 0x0A }) +
		    exchange(z4_panel, { 0x2C, 0x02, 0x0A }))
			   .c_str());
	velmor_command(window_panel, 18000);
	done();
	current_sampler->sampler_type = 4711;
	EXPECT_THROW(lcd_wnd_proc(lcd_message::command, 18000, 1, 0), process_ended);
	EXPECT_EQ(h.boxes, (std::vector<shown_box>{ { "ERROR", "Bad Sampler (test sampler)\n" } }));
}

// ---- Fetching ----------------------------------------------------------------------------------

TEST_F(panel, a_fetch_tells_what_came_of_it)
{
	using lines = std::vector<std::string>;
	struct row {
		const panel_model *panel;
		std::string steps;
		u32 pixels, control; // lengths that come back
		lines log;
		int open_result = usb_ok;
	};
	const std::string error = "[F]  Error reading MIDI-COMMAND ";
	const lines z4 = { "[D] GET Z4 PANEL-DATA", "[D] PANEL-DATA: 1860 Bytes[0x01, 0x00]" };
	const lines mpc = { "[D] GET MPC PANEL-DATA", "[D] SENT MPC PANEL-DATA REQUEST!" };
	const auto with = [](lines some, const lines &more) {
		some.insert(some.end(), more.begin(), more.end());
		return some;
	};
	const std::string pixels = "> 01 00\n< 01 00*9598 F0\n";
	const lines whole = { "[D] PANEL-DATA: 9600 Bytes[0x01, 0x00]",
		"[D] MPC CTRL-DATA: 22 Bytes [05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 05 "
		"05 05 05]",
		"[D] --> PANEL DUMMY-REQUEST!" };
	// clang-format off
	const row rows[] = {
		{ &s5000_panel, s5000_fetch, 9600, 18, {} },
		{ &s5000_panel, "> 01 00\n< 01*99\n< 05*3", 99, 3, {} },
		{ &s5000_panel, "", 9600, 18, { "WARNING! USB Device cannot be opened!" }, usb_denied },
		{ &s5000_panel, "! stall", 0, 0, { "[F]  Error writing MIDI-COMMAND" } },
		{ &s5000_panel, "> 01 00\n! silence", 9600, 18, { error + "(PANEL-DATA) 9600 Bytes" } },
		{ &s5000_panel, "> 01 00\n< 'AkaI'", 0, 0, { error + "(PANEL-DATA) 4 Bytes (SAMPLER IS BUSY)" } },
		{ &s5000_panel, "> 01 00\n< 'AkaJ'\n< 05*18", 4, 18, {} },
		{ &s5000_panel, "> 01 00\n< 'AkaI' 00\n< 05*18", 5, 18, {} },
		{ &s5000_panel, "> 01 00\n< 01*9600\n! silence", 9600, 18, { error + "(PANEL-DATA) 18 Bytes" } },
		{ &s5000_panel, "> 01 00\n< 01*9600\n< 'AkaI'", 0, 0, { error + "(CTRL-DATA) 4 Bytes (SAMPLER IS BUSY)" } },
		{ &z4_panel, z4_fetch, 1860, 18, with(z4, { "[D] CTRL-DATA: 18 Bytes [0x05, 0x05]" }) },
		{ &z4_panel, "> 01 00\n< 01 00*1859\n< 'AkaI'", 0, 0, with(z4,
			{ "[D] CTRL-DATA: 4 Bytes [0x41, 0x6B]", error + "(CTRL-DATA) 4 Bytes (SAMPLER IS BUSY)" }) },
		{ &mpc_panel, pixels + "< 05*22\n> 10 07 00 F0 47 5F 00 1F 52 F7\n< F0 47 5F 00 44 F7", 9600, 22,
			with(with(mpc, whole), { "[D] Dummy-Request-Response: [F0 47 5F 00 44 F7] (6 Bytes)" }) },
		{ &mpc_panel, pixels + "< 05*22\n> 10 07 00 F0 47 5F 00 1F 52 F7\n! silence", 9600, 22,
			with(with(mpc, whole), { "[F]  Error processing DUMMY-COMMAND (CTRL-DATA) 22 Bytes (SAMPLER IS BUSY)" }) },
		{ &mpc_panel, "> 01 00\n< 01*9599\n> FF\n< 00 01 02 03", 9600, 18, with(mpc,
			{ "[D] PANEL-DATA: 9599 Bytes[0x01, 0x01]", "[D] Invalid PANEL-DATA-Size received (9599 Bytes)",
			  "[D] MPC RESET SENT!", "[D] MPC RESET RESPONSE: [00 01 02 03]!" }) },
		{ &mpc_panel, "> 01 00\n< 'AkaI'\n> FF\n! silence", 9600, 18, with(mpc,
			{ "[D] PANEL-DATA: 4 Bytes[0x41, 0x6B]", "[D] Invalid PANEL-DATA-Size received (4 Bytes)",
			  "[D] MPC RESET SENT!", "[D] MPC RESET RESPONSE: []!" }) },
		{ &mpc_panel, pixels + "! silence", 9600, 18, with(mpc, { whole[0], error + "(PANEL-DATA) 18 Bytes" }) },
	};
	// clang-format on
	for (const row &r : rows) {
		SCOPED_TRACE(r.steps);
		plug(*r.panel);
		wire->open_result = r.open_result;
		if (r.open_result == usb_ok)
			wire->play((r.panel->open + r.steps).c_str());
		h.forget_log();
		const _sampler_type &model = *get_sampler(r.panel->model);
		std::vector<u8> picture(model.lcd_pixel_data_length), control(18);
		u32 length = model.lcd_pixel_data_length, control_length = 18;
		EXPECT_LE(took([&] {
			model.getpanel(picture.data(), &length, control.data(), &control_length);
		}),
			6);
		EXPECT_EQ(std::pair(length, control_length), std::pair(r.pixels, r.control));
		EXPECT_EQ(told(), r.log);
		// An MPC tells its control data to nobody, and a short picture is not taken.
		if (r.panel == &mpc_panel) {
			EXPECT_EQ(control, std::vector<u8>(18));
			EXPECT_EQ(picture[0], r.steps.starts_with(pixels) ? 1 : 0);
		}
		done();
	}
	usbdev.clear();
	u32 length = 9600, control_length = 18;
	h.forget_log();
	get_sampler(model_s5000)->getpanel(nullptr, &length, nullptr, &control_length);
	EXPECT_EQ(told(), lines{ "WARNING! USB Device not found!" });
	EXPECT_EQ(length, 9600u);
}

TEST_F(panel, each_model_shows_its_pixels)
{
	struct row {
		const panel_model *panel;
		std::string steps;
		std::vector<u8> bits; // leftmost in the highest bit, set is dark
	};
	const row rows[] = {
		// The lowest bit is leftmost and a clear bit is black.
		{ &s5000_panel, "> 01 00\n< 01 C0 00*9597 80\n< 05*18", hex("7F FC FF*9597 FE") },
		{ &s5000_panel, "> 01 00\n< FF*3\n< 05*18", hex("00*3 FF*9597") },
		{ &s5000_panel, "> 01 00\n< 'AkaI'", hex("FF*9600") },
		// The highest bit is leftmost and a set bit is black.
		{ &z4_panel, "> 01 00\n< 01 C0 00*1857 80\n< 05*18", hex("01 C0 00*1857 80") },
		{ &z4_panel, "> 01 00\n< FF*31 01\n< 05*18", hex("FF*31 01 00*1828") },
		{ &z4_panel, "> 01 00\n< FF*1860\n< 'AkaI'", hex("00*1860") },
		{ &mpc_panel, mpc_fetch, hex("01 00*9598 F0") },
		{ &mpc_panel, "> 01 00\n< FF*9599\n> FF\n< 00*4", hex("00*9600") },
	};
	for (const row &r : rows) {
		SCOPED_TRACE(r.steps);
		plug(*r.panel);
		wire->play((r.panel->open + r.steps).c_str());
		velmor_command(window_main, main_lcd);
		done();
		EXPECT_EQ(bits(), r.bits);
		EXPECT_EQ(timer_active, 1);
		forget_commands();
	}
}

TEST_F(panel, what_is_wrong_is_said_across_the_picture_until_it_comes_back)
{
	open(s5000_panel);
	EXPECT_EQ(words(), "");
	expect_logged({ "[D] Viewing LCD Display for Sampler: [test sampler] LCD: NULL",
		"[D] Initializing LCD Display Window [320 x 240]",
		"[D] Viewing LCD Display for Sampler: [test sampler] (CTRL-DATA RECEIVED: 18), "
		"(PIXEL-DATA RECEIVED: 9600) Dimensions: 320 x 240, PIXEL-DATA-LENGTH: 9600" });
	ASSERT_EQ(h.timers.size(), 1u);
	EXPECT_EQ(h.timers.begin()->second.milliseconds, 250);
	const auto tick = h.timers.begin()->second.tick;
	const std::string busy = s5000_open + std::string("> 01 00\n< 'AkaI'");
	const auto round = [&](const std::string &steps, int open_result, const char *said) {
		wire->play(steps.c_str());
		wire->open_result = open_result;
		for (int i = 0; i < 3; i++) {
			if (i && !steps.empty())
				wire->play(steps.c_str());
			tick();
			EXPECT_TRUE(words().starts_with(said)) << words();
			EXPECT_EQ((h.visible[{ window_panel, panel_state }]), *said != 0);
			EXPECT_EQ((h.enabled[{ window_panel, panel_copy }]), *said == 0);
			done();
		}
	};
	h.forget_log();
	h.visible[{ window_panel, 0 }] = false; // put away by its user: no tick fetches it back
	for (int twice = 0; twice < 2; twice++) {
		round(busy, usb_ok, "The sampler is busy.");
		EXPECT_EQ(bits(), hex("FF*9600"));
		round("", usb_no_device, "No answer from 'Studio' on the USB.");
		round(s5000_open + std::string(s5000_fetch), usb_ok, "");
	}
	EXPECT_EQ(bits(), hex("7F FF*9598 FE"));
	EXPECT_FALSE((h.visible[{ window_panel, 0 }]));
	// Each state is logged when it begins.
	const auto count = [this](const std::string &what) {
		const std::vector<std::string> all = h.log();
		return std::count_if(all.begin(), all.end(),
			[&](const std::string &line) { return line.find(what) != line.npos; });
	};
	EXPECT_EQ(count("SAMPLER IS BUSY"), 2);
	EXPECT_EQ(count("cannot be opened!"), 2);
	EXPECT_EQ(count("[F] DEVICE_HANDLE"), 2);
	EXPECT_EQ(count("[D] Viewing LCD Display"), 36);
}

// ---- Timer and gate ----------------------------------------------------------------------------

TEST_F(panel, refreshing_stops_for_the_commands_that_would_meet_it)
{
	struct row {
		int control, active;
	};
	for (const row &r : { row{ menu_settings, -1 }, { menu_midi_samplers, -1 },
		     { menu_usb_samplers, -1 }, { main_load, -1 }, { main_samples, -1 },
		     { main_programs, 1 }, { main_multis, 1 }, { menu_exit, -1 } }) {
		SCOPED_TRACE(r.control);
		open(z4_panel);
		EXPECT_EQ(timer_active, 1);
		wire->devices.clear();
		usbdev.clear();
		if (r.control == menu_exit)
			EXPECT_THROW(velmor_command(window_main, r.control), process_ended);
		else
			velmor_command(window_main, r.control);
		EXPECT_EQ(timer_active, r.active);
		h.boxes.clear();
		if (r.active == -1) {
			sent.clear();
			lcd_timer_proc();
			EXPECT_TRUE(sent.empty());
			EXPECT_TRUE(words().starts_with("The picture stands still.")) << words();
		}
		forget_commands();
	}
}

TEST_F(panel, needs_a_sampler_with_a_screen)
{
	EXPECT_EQ(timer_active, -1);
	EXPECT_TRUE(velmor_command(window_main, main_lcd));
	h.use_sampler(model_s3000, 0);
	EXPECT_TRUE(velmor_command(window_main, main_lcd));
	current_sampler->sampler_type = 4711;
	EXPECT_TRUE(velmor_command(window_main, main_lcd));
	EXPECT_EQ(h.boxes,
		(std::vector<shown_box>{ { "You must load a sampler first...", "INFO" },
			{ "The screen of Akai S3000/S3000XL cannot be seen from here.", "INFO" },
			{ "Invalid sampler type", "INFO" } }));
	EXPECT_TRUE(h.timers.empty());
}

TEST_F(panel, what_comes_during_a_fetch_waits_and_a_tick_during_a_click_passes)
{
	open(z4_panel);
	const std::string click = z4_open + exchange(z4_panel, { 0x2C, 0x01, 0x0A }) +
				  exchange(z4_panel, { 0x2C, 0x02, 0x0A });
	const std::string typed = z4_open + exchange(z4_panel, { 0x2C, 0x10, 0x41, 0, 0, 0 }) +
				  exchange(z4_panel, { 0x2C, 0x11, 0x41, 0, 0, 0 });
	wire->play((z4_open + std::string(z4_fetch) + click + typed).c_str());
	int rounds = 0;
	h.on_pump = [&] {
		if (rounds++)
			return lcd_timer_proc(); // in the fetch, and in every wait of the keys
		EXPECT_TRUE(velmor_command(window_panel, 18000));
		EXPECT_TRUE(velmor_key(window_panel, panel_picture, 65, "A", true));
		EXPECT_TRUE(velmor_command(window_main, menu_midi_samplers));
		EXPECT_FALSE((h.visible[{ window_sampler, 0 }]));
	};
	lcd_timer_proc();
	done();
	EXPECT_GT(rounds, 3);
	EXPECT_TRUE((h.visible[{ window_sampler, 0 }]));
	EXPECT_EQ(timer_active, -1);
	// No more than a few are kept, and none behind work that is not brief.
	open(z4_panel);
	wire->play((z4_open + std::string(z4_fetch)).c_str());
	int taken = 0;
	h.on_pump = [&] {
		h.on_pump = nullptr;
		for (int i = 0; i < 40; i++)
			taken += velmor_command(window_main, menu_midi_samplers);
	};
	lcd_timer_proc();
	EXPECT_EQ(taken, 16);
	run_through_gate([] { EXPECT_FALSE(velmor_command(window_panel, 18000)); });
	done();
}

TEST_F(panel, closing_under_a_key_lets_it_go_and_the_window_stays_hidden)
{
	open(z4_panel);
	wire->play((z4_open + exchange(z4_panel, { 0x2C, 0x01, 0x0A }) +
		    exchange(z4_panel, { 0x2C, 0x02, 0x0A }))
			   .c_str());
	h.on_pump = [&] { velmor_command(window_panel, control_cancel); };
	velmor_command(window_panel, 18000);
	done();
	EXPECT_EQ(timer_active, -1);
	EXPECT_FALSE((h.visible[{ window_panel, 0 }]));
	// And under a fetch; then it is opened again, as it was.
	h.on_pump = nullptr;
	for (const bool closed : { false, true, false }) {
		wire->play((z4_open + std::string(z4_fetch)).c_str());
		if (closed)
			h.on_pump = [&] { velmor_command(window_panel, control_cancel); };
		if (closed)
			lcd_timer_proc();
		else
			velmor_command(window_main, main_lcd);
		h.on_pump = nullptr;
		done();
		EXPECT_EQ((h.visible[{ window_panel, 0 }]), !closed);
		EXPECT_EQ(timer_active, closed ? -1 : 1);
	}
	EXPECT_EQ(h.timers.size(), 1u);
	EXPECT_TRUE(
		h.logged("[D] Viewing LCD Display for Sampler: [test sampler] LCD: initialized"));
}
