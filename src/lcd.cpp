// lcd.cpp - the bits of a sampler's screen, and what is sent to its panel
//
//   S5000, S6000    lowest bit leftmost, a clear bit is dark       320 x 240
//   Z4, Z8          highest bit leftmost, a set bit is dark        248 x 60
//   MPC 4000        the same                                       320 x 240
//
//   a character     S5000 20 04 key; Z4 2C 10 key 00 00 00, let go 2C 11 key 00 00 00;
//                   the MPC 4000 takes none
//
// A key is let go 100 ms after it was pressed, and the windows live meanwhile. Once it is down it
// is let go, whatever becomes of the window.
//
// Knows nothing of: pictures on the desktop, frames.

#include "src/lcd.h"
#include "src/akaiusb.h"
#include "src/controls.h"
#include <algorithm>

namespace velmor
{

static constexpr int key_down_ms = 100;

lcd_answer last_lcd_answer = lcd_answer::picture;

// ---- The picture -----------------------------------------------------------------------------

// clang-format off
static constexpr lcd_kind kinds[] = {
	// model          low first  clear dark  light     height /
	{ model_z4,       false,     false,      0xF0F0F0, 2 },
	{ model_mpc4000,  false,     false,      0xF0F0F0, 2 },
	{ model_s5000,    true,      true,       0xFFFFFF, 1 },
};
// clang-format on

const lcd_kind &lcd_kind_of(i32 model)
{
	for (const lcd_kind &kind : kinds)
		if (kind.model == model)
			return kind;
	return kinds[0];
}

u32 lcd_light()
{
	return lcd_kind_of(current_sampler ? static_cast<i32>(current_sampler->sampler_type) : 0)
		.light;
}

static constexpr u8 reversed(u8 byte)
{
	u8 turned = 0;
	for (int bit = 0; bit < 8; bit++)
		turned = static_cast<u8>(turned << 1 | (byte >> bit & 1));
	return turned;
}
static_assert(reversed(0x01) == 0x80 && reversed(0xB0) == 0x0D);

std::vector<u8> lcd_picture(const _sampler_type &model, std::span<const u8> received)
{
	const lcd_kind &kind = lcd_kind_of(model.sampler_type);
	std::vector<u8> bits(model.lcd_pixel_data_length);
	for (std::size_t i = 0; i < bits.size(); i++) {
		const u8 byte = i < received.size() ? received[i] : u8{ 0 };
		const u8 in_order = kind.low_bit_first ? reversed(byte) : byte;
		bits[i] = kind.clear_is_dark ? static_cast<u8>(~in_order) : in_order;
	}
	return bits;
}

// ---- Sending ---------------------------------------------------------------------------------

// What a box says when the device is not there, does not open, or does not take what is sent.
struct line_words {
	const char *absent, *closed, *silent;
};
static constexpr line_words click_words = { "USB-ERROR (100)", "USB-ERROR (101)",
	"USB-ERROR (102)" };
static constexpr line_words key_words = { "USB-ERROR (K00)", "USB-ERROR (K01)", "USB-ERROR (K02)" };

static void end_with(open_usbdev usb, const char *words)
{
	usb.reset();
	show_box("FATAL", "%s", words);
	end_program(0);
}

// Another program may have the device for a moment; that is no failure of the line.
static bool open_patiently(_usbdev *usb)
{
	const double until = host.clock->counter() + 1;
	while (!open_midi_usb(usb)) {
		if (usb_last_result != usb_busy || host.clock->counter() >= until)
			return false;
		host.ui->pump(key_down_ms);
	}
	return true;
}

static open_usbdev open_panel(const line_words &words)
{
	_usbdev *usb = current_sampler ? find_usbdev(current_sampler->sampler_usbname) : nullptr;
	if (!usb)
		end_with(nullptr, words.absent);
	else if (open_patiently(usb))
		return open_usbdev(usb);
	else
		end_with(nullptr, words.closed);
	return nullptr;
}

static void hold_key()
{
	const double until = host.clock->counter() + key_down_ms / 1000.0;
	for (double left = until - host.clock->counter(); left > 0;
		left = until - host.clock->counter())
		host.ui->pump(std::clamp(static_cast<int>(left * 1000 + 0.999), 1, key_down_ms));
}

// What a control sends, one after the other, with the time of a key between them.
struct panel_message {
	std::span<const u8> payload;
	const char *told; // its name in the log, or null
};

// A sampler may say that it has heard before it says what came of it. What was told is the first;
// the rest is read all the same, or it would pass for the answer to what comes next.
static constexpr char status_heard = 'O';
static constexpr std::string_view last_statuses = "DER"; // done, refused, a reply
static constexpr int rest_deadline_ms = 1000;

// True when the last of it has come.
static bool read_rest(_usbdev *usb, usb_answer *answer)
{
	const auto status = [&] { return static_cast<char>(usb_status(usb, *answer)); };
	for (int i = 0; status() == status_heard && i < max_continued_packets; i++)
		if (!read_midi_usb(usb, answer->buffer.data(),
			    static_cast<int>(answer->buffer.size()), &answer->length,
			    rest_deadline_ms))
			return true; // the next opening waits for it
	return last_statuses.find(status()) != last_statuses.npos;
}

static bool send_messages(_usbdev *usb, std::span<const panel_message> messages, int capacity)
{
	bool whole = true;
	for (std::size_t i = 0; i < messages.size(); i++) {
		if (i)
			hold_key();
		usb_answer answer(capacity);
		if (!ask_usb(usb, messages[i].payload, &answer))
			return false;
		if (messages[i].told)
			log_line("[D] Received RESPONSE(%s) (%d Bytes) [%s]\r\n", messages[i].told,
				answer.length, hex_text(answer.bytes().bytes).c_str());
		whole &= read_rest(usb, &answer);
	}
	if (!whole)
		usb_drop_answers(usb);
	return true;
}

static std::span<const u8> bytes_of(const u8 *bytes, i32 length)
{
	return { bytes, static_cast<std::size_t>(length) };
}

void work_panel_control(const _sampler_ctrl &control, int steps)
{
	open_usbdev usb = open_panel(click_words);
	if (!usb)
		return;
	host.ui->set_checked(window_panel, control.id, true);
	const auto &button = control.ctl.button;
	const auto &wheel = control.ctl.wheel;
	bool sent = true;
	if (control.ctrl_type == ctrl_button)
		sent = send_messages(usb.get(),
			std::array{ panel_message{
					    bytes_of(button.sysex_on, button.sysex_on_len), "ON" },
				panel_message{
					bytes_of(button.sysex_off, button.sysex_off_len), "OFF" } },
			scalar_capacity);
	for (int i = 0; sent && control.ctrl_type == ctrl_wheel && i < steps; i++)
		sent = send_messages(usb.get(),
			std::array{ panel_message{
				bytes_of(wheel.sysex_change, wheel.sysex_change_len), "WHEEL" } },
			scalar_capacity);
	host.ui->set_checked(window_panel, control.id, false);
	if (!sent)
		end_with(std::move(usb), click_words.silent);
}

// ---- Typing ----------------------------------------------------------------------------------

static constexpr int character_capacity = 256;

// Around the key; without bytes: nothing is sent.
struct typing_row {
	i32 model;
	std::span<const u8> down, up; // section and item, in front of the key
	std::span<const u8> behind;
};

// clang-format off
static constexpr u8 s5000_type[] = { 0x20, 0x04 };
static constexpr u8 z4_down[]    = { 0x2C, 0x10 };
static constexpr u8 z4_up[]      = { 0x2C, 0x11 };
static constexpr u8 z4_behind[]  = { 0x00, 0x00, 0x00 };
static constexpr typing_row typing[] = {
	{ model_s5000, s5000_type, {},    {} },
	{ model_z4,    z4_down,    z4_up, z4_behind },
};
// clang-format on

static std::vector<u8> around(std::span<const u8> front, u8 key, std::span<const u8> behind)
{
	std::vector<u8> bytes(front.begin(), front.end());
	bytes.push_back(key);
	bytes.insert(bytes.end(), behind.begin(), behind.end());
	return bytes;
}

void type_panel_character(const _sampler_type &model, u8 key)
{
	const typing_row *row = std::find_if(std::begin(typing), std::end(typing),
		[&model](const typing_row &r) { return r.model == model.sampler_type; });
	if (row == std::end(typing))
		return;
	open_usbdev usb = open_panel(key_words);
	if (!usb)
		return;
	const std::vector<u8> down = around(row->down, key, row->behind);
	const std::vector<u8> up = around(row->up, key, row->behind);
	const panel_message both[] = { { down, nullptr }, { up, nullptr } };
	if (!send_messages(
		    usb.get(), std::span(both).first(row->up.empty() ? 1 : 2), character_capacity))
		end_with(std::move(usb), key_words.silent);
}

} // namespace velmor
