// akaiusb_panel.cpp - a picture of the screen of a USB sampler
//
//   01 00           raw, no frame: send the screen
//   pixels          as many as the screen has, or "AkaI" of a sampler that is busy
//   18 bytes        beside the picture; nobody knows what they mean
//
// The MPC 4000 wants more: a picture that comes short is reset with FF, which it answers with
// four bytes, and behind a whole one it is asked 1F 52 in a frame. It says more beside the picture
// than the others, so that goes to a buffer of its own.
//
// A picture has a second to come, since another is asked for soon. One that comes short may be the
// late answer to something else: then the line is read empty before the device is closed, as it
// is behind a busy one, so that the next picture is none of the past.
//
// Knows nothing of: what the picture shows.

#include "src/akais5000.h"
#include "src/akaiusb.h"
#include "src/akaiz4.h"
#include "src/lcd.h"
#include <algorithm>
#include <climits>
#include <cstring>

namespace velmor
{

static constexpr int panel_deadline_ms = 1000;
static constexpr u8 send_screen[] = { 0x01, 0x00 };
static constexpr u8 reset_screen[] = { 0xFF };
static constexpr u8 dummy_request[] = { 0x1F, 0x52 };
static constexpr int reset_answer_size = 4;
static constexpr std::size_t mpc_control_size = 102400;
static constexpr std::size_t mpc_control_told = 20; // bytes of it in the log
static constexpr char busy_words[] = "AkaI";
static constexpr int busy_size = 4;

// What the caller gives and gets.
struct panel_buffers {
	u8 *pixels;
	u32 *pixel_length;
	u8 *control;
	u32 *control_length;
};

static bool ask_for_screen(_usbdev *usb, const panel_buffers &to)
{
	if (write_midi_usb(usb, send_screen, sizeof send_screen, panel_deadline_ms))
		return true;
	log_line("[F] (%s:%d) Error writing MIDI-COMMAND\r\n", __FILE_NAME__, __LINE__);
	*to.pixel_length = *to.control_length = 0;
	return false;
}

// Both reads fail in the words of the first.
static bool read_part(_usbdev *usb, u8 *bytes, u32 capacity, int *received)
{
	const int most = static_cast<int>(std::min<u32>(capacity, INT_MAX));
	if (read_midi_usb(usb, bytes, most, received, panel_deadline_ms))
		return true;
	log_line("[F] (%s:%d) Error reading MIDI-COMMAND (PANEL-DATA) %d Bytes\r\n", __FILE_NAME__,
		__LINE__, most);
	return false;
}

// True for a sampler that is busy; part names what it was asked for.
static bool says_busy(
	_usbdev *usb, const panel_buffers &to, const u8 *bytes, int received, const char *part)
{
	if (received != busy_size || std::memcmp(bytes, busy_words, busy_size) != 0)
		return false;
	log_line("[F] (%s:%d) Error reading MIDI-COMMAND (%s) %d Bytes (SAMPLER IS BUSY)\r\n",
		__FILE_NAME__, __LINE__, part, received);
	*to.pixel_length = *to.control_length = 0;
	last_lcd_answer = lcd_answer::busy;
	usb_drop_answers(usb);
	return true;
}

static open_usbdev open_for_picture()
{
	last_lcd_answer = lcd_answer::absent;
	open_usbdev usb = open_loaded_usbdev();
	if (usb)
		last_lcd_answer = lcd_answer::failed; // until it has come
	return usb;
}

// ---- S5000 and Z4 ----------------------------------------------------------------------------

// Of one part, in the log of the models that tell it.
using part_told = void (*)(bounded_bytes bytes);

static bool fetch_part(_usbdev *usb, const panel_buffers &to, u8 *bytes, u32 *length,
	const char *part, part_told told)
{
	int received = 0;
	if (!read_part(usb, bytes, *length, &received))
		return false; // behind a picture that came it does not matter
	if (told)
		told({ { bytes, static_cast<std::size_t>(received) } });
	if (says_busy(usb, to, bytes, received, part))
		return false;
	*length = static_cast<u32>(received);
	return true;
}

static void fetch_panel(const panel_buffers &to, part_told pixels_told, part_told control_told)
{
	const u32 capacity = *to.pixel_length;
	const open_usbdev usb = open_for_picture();
	if (!usb || !ask_for_screen(usb.get(), to))
		return;
	if (!fetch_part(usb.get(), to, to.pixels, to.pixel_length, "PANEL-DATA", pixels_told))
		return;
	last_lcd_answer = lcd_answer::picture;
	const bool whole = *to.pixel_length == capacity;
	if (fetch_part(usb.get(), to, to.control, to.control_length, "CTRL-DATA", control_told) &&
		!whole)
		usb_drop_answers(usb.get());
}

void akai_s5000_getpanel(
	u8 *panel_data, u32 *_panel_data_length, u8 *ctrl_data, u32 *_ctrl_data_length)
{
	fetch_panel(
		{ panel_data, _panel_data_length, ctrl_data, _ctrl_data_length }, nullptr, nullptr);
}

static void tell_pixels(bounded_bytes bytes)
{
	log_line("[D] PANEL-DATA: %d Bytes[0x%02X, 0x%02X]\r\n", static_cast<int>(bytes.size()),
		bytes[0], bytes[1]);
}

static void tell_control(bounded_bytes bytes)
{
	log_line("[D] CTRL-DATA: %d Bytes [0x%02X, 0x%02X]\r\n", static_cast<int>(bytes.size()),
		bytes[0], bytes[1]);
}

void akai_z4_getpanel(
	u8 *panel_data, u32 *_panel_data_length, u8 *ctrl_data, u32 *_ctrl_data_length)
{
	log_line("[D] GET Z4 PANEL-DATA\r\n");
	fetch_panel({ panel_data, _panel_data_length, ctrl_data, _ctrl_data_length }, tell_pixels,
		tell_control);
}

// ---- MPC 4000 --------------------------------------------------------------------------------

// A picture that came short is not taken, and the machine is told to begin anew.
static void reset_mpc(_usbdev *usb, bounded_bytes came)
{
	log_line("[D] Invalid PANEL-DATA-Size received (%d Bytes)\r\n",
		static_cast<int>(came.size()));
	const bool busy = came.size() == busy_size && came.text(0).starts_with(busy_words);
	if (busy)
		last_lcd_answer = lcd_answer::busy;
	if (!write_midi_usb(usb, reset_screen, sizeof reset_screen, panel_deadline_ms))
		return;
	log_line("[D] MPC RESET SENT!\r\n");
	u8 answer[reset_answer_size] = {};
	int received = 0;
	const bool answered =
		read_midi_usb(usb, answer, sizeof answer, &received, panel_deadline_ms);
	log_line("[D] MPC RESET RESPONSE: [%s]!\r\n",
		hex_text(std::span(answer).first(static_cast<std::size_t>(received))).c_str());
	if (answered)
		usb_drop_answers(usb);
}

static bool fetch_mpc_pixels(_usbdev *usb, const panel_buffers &to)
{
	std::vector<u8> pixels(*to.pixel_length);
	int received = 0;
	if (!read_part(usb, pixels.data(), *to.pixel_length, &received))
		return false;
	const bounded_bytes came = { std::span(pixels).first(static_cast<std::size_t>(received)) };
	tell_pixels(came);
	if (came.size() < pixels.size()) {
		reset_mpc(usb, came);
		return false;
	}
	std::copy(pixels.begin(), pixels.end(), to.pixels);
	last_lcd_answer = lcd_answer::picture;
	return !says_busy(usb, to, to.pixels, received, "PANEL-DATA");
}

// What comes is not given to the caller; his buffer is looked at for a busy answer all the same.
static bool fetch_mpc_control(_usbdev *usb, const panel_buffers &to)
{
	static std::vector<u8> control(mpc_control_size);
	const u32 capacity = *to.control_length;
	int received = 0;
	if (!read_midi_usb(usb, control.data(), static_cast<int>(control.size()), &received,
		    panel_deadline_ms)) {
		log_line("[F] (%s:%d) Error reading MIDI-COMMAND (PANEL-DATA) %d Bytes\r\n",
			__FILE_NAME__, __LINE__, static_cast<int>(capacity));
		return false;
	}
	const auto all = std::span(control).first(static_cast<std::size_t>(received));
	log_line("[D] MPC CTRL-DATA: %d Bytes [%s]\r\n", received,
		hex_text(all.first(std::min(all.size(), mpc_control_told))).c_str());
	*to.control_length = static_cast<u32>(received);
	return capacity < busy_size || !says_busy(usb, to, to.control, received, "CTRL-DATA");
}

void akai_mpc_getpanel(
	u8 *panel_data, u32 *_panel_data_length, u8 *ctrl_data, u32 *_ctrl_data_length)
{
	const panel_buffers to = { panel_data, _panel_data_length, ctrl_data, _ctrl_data_length };
	log_line("[D] GET MPC PANEL-DATA\r\n");
	const open_usbdev usb = open_for_picture();
	if (!usb || !ask_for_screen(usb.get(), to))
		return;
	log_line("[D] SENT MPC PANEL-DATA REQUEST!\r\n");
	if (!fetch_mpc_pixels(usb.get(), to) || !fetch_mpc_control(usb.get(), to))
		return;
	log_line("[D] --> PANEL DUMMY-REQUEST!\r\n");
	usb_answer answer(list_capacity);
	if (!ask_usb(usb.get(), dummy_request, &answer)) {
		log_line("[F] (%s:%d) Error processing DUMMY-COMMAND (CTRL-DATA) %d Bytes (SAMPLER "
			 "IS BUSY)\r\n",
			__FILE_NAME__, __LINE__, static_cast<int>(*to.control_length));
		return;
	}
	log_line("[D] Dummy-Request-Response: [%s] (%d Bytes)\r\n",
		hex_text(answer.bytes().bytes).c_str(), answer.length);
}

} // namespace velmor
