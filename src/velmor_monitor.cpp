// velmor_monitor.cpp - what arrives on a MIDI input: told in words and passed on; test notes
//
// MIDI 1.0: a status byte has its top bit set and tells the length of its message; data bytes
// without one belong to the last channel message ("running status"); real time, 0xF8 up, may
// stand anywhere, also inside another message.
//
// The same sorting runs twice on the same bytes: on the port's thread, for what is passed on, and
// here, for the words. So neither waits for the other, and both come to the same.
//
// Knows nothing of: models, toolkits.

#include "src/velmor_monitor.h"
#include "src/velmor_log.h"
#include "src/velmor_outcome.h"
#include "src/velmor_window.h"
#include <algorithm>
#include <cstdio>
#include <deque>
#include <utility>

namespace velmor
{

int receive_monitor_active = 0;
int midi_in_text = sampler_midi_in_text, midi_out_text = sampler_midi_out_text;

// ---- Sorting --------------------------------------------------------------------------------

static constexpr u8 start_of_exclusive = 0xF0, end_of_exclusive = 0xF7, first_real_time = 0xF8;

static unsigned message_length(u8 status)
{
	static constexpr u8 of_channel[] = { 3, 3, 3, 3, 2, 2, 3 };
	static constexpr u8 of_system[] = { 0, 2, 3, 2, 1, 1, 1, 0 };
	return status < 0xF0 ? of_channel[(status >> 4) - 8] : of_system[status & 7];
}

static int complete(midi_sorter *sorter, u8 *message)
{
	const unsigned length = message_length(sorter->message[0]);
	if (sorter->count < length)
		return 0;
	std::copy_n(sorter->message, length, message);
	sorter->count = 0;
	return static_cast<int>(length);
}

static int sort_status(midi_sorter *sorter, u8 byte, u8 *message, int *told)
{
	const bool ends = byte == end_of_exclusive;
	if (sorter->exclusive)
		*told = ends ? MIM_LONGDATA : MIM_LONGERROR;
	else if (ends || sorter->count)
		*told = MIM_ERROR;
	*sorter = { .message = { byte },
		.status = byte < 0xF0 ? byte : u8{ 0 },
		.exclusive = byte == start_of_exclusive };
	if (ends || sorter->exclusive)
		return 0;
	sorter->count = 1;
	return complete(sorter, message);
}

int sort_midi_byte(midi_sorter *sorter, u8 byte, u8 *message, int *told)
{
	*told = 0;
	if (byte >= first_real_time) {
		message[0] = byte;
		return 1;
	}
	if (byte >= 0x80)
		return sort_status(sorter, byte, message, told);
	if (sorter->exclusive)
		return 0;
	if (!sorter->count) {
		if (!sorter->status) {
			*told = sorter->lost ? 0 : MIM_ERROR; // once for all that follow
			sorter->lost = true;
			return 0;
		}
		sorter->message[sorter->count++] = sorter->status;
	}
	sorter->message[sorter->count++] = byte;
	return complete(sorter, message);
}

// On the thread of the port: whatever is a message goes on, exclusive ones do not.
static int goes_on(midi_sorter *sorter, unsigned char byte, unsigned char *message)
{
	int told;
	return sort_midi_byte(sorter, byte, message, &told);
}

// ---- Words ----------------------------------------------------------------------------------

const char *display_midi_command(const u8 *cmd)
{
	static char text[128];
	const std::string note = display_midi_note(cmd[1]);
	std::string words;
	switch (cmd[0] >> 4) {
	case 8:
		words = format_text("NOTE OFF (%s) Velocity: %d", note.c_str(), cmd[2]);
		break;
	case 9:
		words = format_text("NOTE ON (%s) Velocity: %d", note.c_str(), cmd[2]);
		break;
	case 10:
		words = format_text("POLY PRESSURE (%s) Velocity: %d", note.c_str(), cmd[2]);
		break;
	case 11:
		words = format_text("CONTROL CHANGE (CONTROLLER: %d), VALUE: %d", cmd[1], cmd[2]);
		break;
	case 12:
		words = format_text("PROGRAM CHANGE (PROGRAM: %d)", cmd[1]);
		break;
	case 13:
		words = format_text("CHANNEL PRESSURE Velocity: %d", cmd[1]);
		break;
	case 14: // its fine part is not told
		words = format_text("PITCH-BEND Value: %d", cmd[2]);
		break;
	default:
		words = format_text("UNKNOWN-COMMAND: %d,%d,%d", cmd[0], cmd[1], cmd[2]);
	}
	std::snprintf(text, sizeof text, "Channel: %d %s", (cmd[0] & 0x0F) + 1, words.c_str());
	return text;
}

// clang-format off
static constexpr struct { int msg; const char *line; } told_lines[] = {
	{ MIM_OPEN,      "\r\n[MONITOR]MIM_OPEN received!\r\n" },
	{ MIM_CLOSE,     "\r\n[MONITOR]MIM_CLOSE received!\r\n" },
	{ MIM_LONGDATA,  "\r\n[MONITOR]MIM_LONGDATA received!\r\n" },
	{ MIM_ERROR,     "\r\n[MONITOR]MIM_ERROR received!\r\n" },
	{ MIM_LONGERROR, "\r\n[MONITOR]MIM_LONGERROR received!\r\n" },
	{ MOM_OPEN,      "\r\n[MONITOR]MOM_OPEN received!\r\n" },
	{ MOM_CLOSE,     "\r\n[MONITOR]MOM_CLOSE received!\r\n" },
	{ MOM_DONE,      "\r\n[MONITOR]MOM_DONE received!\r\n" },
	{ MIM_MOREDATA,  "\r\n[MONITOR]MIM_MOREDATA received!\r\n" },
};
// clang-format on

void midiCallback(int, int msg, u32, u32 dwParam1, u32 dwParam2)
{
	if (msg == MIM_DATA) {
		const u8 bytes[] = { static_cast<u8>(dwParam1), static_cast<u8>(dwParam1 >> 8),
			static_cast<u8>(dwParam1 >> 16) };
		const std::string words = display_midi_command(bytes);
		log_line("[MONITOR]RCVD: [%s]\r\n", words.c_str());
		log_line("[MONITOR]SENT: [%s]\r\n", words.c_str());
		return;
	}
	for (const auto &row : told_lines)
		if (row.msg == msg) {
			log_line("%s", row.line);
			return;
		}
	log_line("[MONITOR]MIDI_CALLBACK MSG: %d dwParam1: %d dwParam2: %d\r\n", msg,
		static_cast<int>(dwParam1), static_cast<int>(dwParam2));
}

// ---- The monitor ------------------------------------------------------------------------------

static constexpr int tick_ms = 20;
static constexpr double longest_portion = 0.008; // seconds of words in a tick
static constexpr int most_in_portion = 400;      // messages
static constexpr std::size_t port_room = 1 << 18, most_waiting = 1 << 20; // bytes

static struct {
	int input = -1;
	int output = -1; // what is passed on goes there
	int timer = 0;
	std::string port;
	std::deque<u8> waiting; // not told yet
	midi_sorter sorter;
	unsigned long received, sent;
	unsigned long lost; // bytes for which there was no room
	bool output_failed; // which was said
	bool inside;        // a tick waits in a box
	double count_due;   // moment of the next look at the counter
} monitor;

// Input, or what of it is left to tell.
static bool monitor_runs()
{
	return monitor.timer != 0;
}

static void port_failed(int code, call_site at = call_site::current())
{
	display_error_text(__FILE_NAME__, at.line(), host.midi->error_text(code));
}

static void show_monitor_state()
{
	std::string words = tr("The monitor is off.");
	if (monitor_runs())
		words = format_text(tr("Listening to '%s': %lu received, %lu passed on."),
			monitor.port.c_str(), monitor.received, monitor.sent);
	host.ui->set_text(window_sampler, sampler_monitor_state, words.c_str());
	host.ui->set_role(window_sampler, sampler_monitor_state,
		monitor_runs() ? text_role::good : text_role::quiet);
	host.ui->set_reason(window_sampler, sampler_monitor_on,
		monitor_runs() ? tr("The monitor is running") : nullptr);
	host.ui->set_reason(window_sampler, sampler_monitor_off,
		monitor_runs() ? nullptr : tr("The monitor is off"));
}

static void close_monitor_input()
{
	if (monitor.input >= 0)
		host.midi->close_input(monitor.input);
	monitor.input = monitor.output = -1;
}

// An output that others have closed is opened again when they are through; one that failed is
// left to them.
static void keep_output_open()
{
	int code = 0;
	if (the_outHandle >= 0) {
		const long left = host.midi->leaving(the_outHandle);
		code = left < 0 ? static_cast<int>(-left) : 0;
		if (code)
			close_midi_output();
	} else if (!monitor.output_failed && !command_running()) {
		code = open_midi_output();
	}
	if (code && !std::exchange(monitor.output_failed, true))
		port_failed(code);
}

static void follow_output()
{
	if (monitor.input < 0)
		return;
	keep_output_open();
	if (the_outHandle == monitor.output)
		return;
	monitor.output = the_outHandle;
	if (host.midi->pass_on && host.midi->pass_on(monitor.input, monitor.output, goes_on) != 0)
		monitor.output = -1;
}

void renew_monitor()
{
	if (monitor.input < 0)
		return;
	monitor.output = -1;
	follow_output();
}

// Whatever came meanwhile. A port that only was too fast is listened to again.
static void fetch()
{
	if (monitor.input < 0)
		return;
	u8 bytes[1024];
	while (const std::size_t count = host.midi->take(monitor.input, bytes, sizeof bytes)) {
		const std::size_t fits = std::min(count, most_waiting - monitor.waiting.size());
		monitor.waiting.insert(monitor.waiting.end(), bytes, bytes + fits);
		monitor.lost += count - fits;
	}
	const int code = host.midi->input_error(monitor.input);
	if (!code)
		return;
	if (host.midi->listen(monitor.input, port_room) == 0) {
		monitor.output = -1;
		log_line("[W] MONITOR: %s\r\n", host.midi->error_text(code));
		return;
	}
	receive_monitor_active = 0;
	close_monitor_input();
	port_failed(code);
}

static void tell_next_byte()
{
	u8 message[3] = {};
	int told = 0;
	const u8 byte = monitor.waiting.front();
	monitor.waiting.pop_front();
	const int length = sort_midi_byte(&monitor.sorter, byte, message, &told);
	if (told)
		midiCallback(monitor.input, told, 0, 0, 0);
	if (!length)
		return;
	monitor.received++;
	monitor.sent += monitor.output >= 0;
	midiCallback(monitor.input, MIM_DATA, 0,
		message[0] | u32{ message[1] } << 8 | u32{ message[2] } << 16, 0);
}

static void tell_portion()
{
	const log_batch batch;
	const double end = host.clock->counter() + longest_portion;
	const unsigned long last = monitor.received + most_in_portion;
	while (!monitor.waiting.empty() && monitor.received < last && host.clock->counter() < end)
		for (int i = 0; i < 64 && !monitor.waiting.empty(); i++)
			tell_next_byte();
	if (!monitor.waiting.empty() || !monitor.lost)
		return;
	log_line("[W] MONITOR: more came than could be told: %lu bytes\r\n", monitor.lost);
	monitor.lost = 0;
}

static void finish_monitor()
{
	host.ui->stop_timer(monitor.timer);
	monitor.timer = 0;
	midiCallback(-1, MIM_CLOSE, 0, 0, 0);
	log_line("RECEIVE MONITOR stopped...\r\n");
	show_monitor_state();
}

// A box runs the interface, and with it this timer.
static void monitor_tick()
{
	if (monitor.inside || !monitor_runs())
		return;
	const log_round apart(nullptr);
	monitor.inside = true;
	fetch();
	if (!receive_monitor_active)
		close_monitor_input();
	follow_output();
	tell_portion();
	if (monitor.input < 0 && monitor.waiting.empty())
		finish_monitor();
	else if (host.clock->counter() >= monitor.count_due) {
		monitor.count_due = host.clock->counter() + 0.1;
		show_monitor_state();
	}
	monitor.inside = false;
}

void receive_monitor()
{
	if (monitor_runs())
		return;
	int input = -1;
	int code = host.midi->open_input(selected_midi_in_mon_interface, &input);
	if (code) {
		port_failed(code);
		return;
	}
	midiCallback(input, MIM_OPEN, 0, 0, 0);
	code = open_midi_output();
	if (!code)
		code = host.midi->listen(input, port_room);
	if (code) {
		host.midi->close_input(input);
		midiCallback(-1, MIM_CLOSE, 0, 0, 0);
		port_failed(code);
		return;
	}
	monitor = {};
	monitor.input = input;
	monitor.port = host.midi->input_name(selected_midi_in_mon_interface);
	log_line("RECEIVE MONITOR started...\r\n");
	follow_output();
	monitor.timer = host.ui->start_timer(tick_ms, monitor_tick);
	show_monitor_state();
}

void end_monitor()
{
	receive_monitor_active = 0;
	for (int i = 0; i < 10000 && monitor_runs(); i++)
		monitor_tick();
}

void monitor_on()
{
	receive_monitor_active = 1;
	receive_monitor();
}

void monitor_off()
{
	receive_monitor_active = 0;
	monitor_tick();
}

void forget_monitor()
{
	receive_monitor_active = 0;
	monitor = {};
}

// ---- The chosen ports ---------------------------------------------------------------------------

static void show_port(int field, const std::vector<std::string> &ports, int index)
{
	if (!field || !host.ui->exists(window_sampler, field))
		return;
	const bool there = index > 0 && index <= static_cast<int>(ports.size());
	host.ui->set_text(window_sampler, field,
		there ? ports[static_cast<std::size_t>(index) - 1].c_str() : "No interface");
}

void update_midi_in(int index)
{
	show_port(midi_in_text, midi_in_interface, index);
}

void update_midi_out(int index)
{
	show_port(midi_out_text, midi_out_interface, index);
}

void show_chosen_ports()
{
	update_midi_in(selected_midi_in_mon_interface + 1);
	update_midi_out(selected_midi_out_interface + 1);
	show_monitor_state();
}

// ---- Test notes -----------------------------------------------------------------------------------

static constexpr u8 note_off = 0x80, note_on = 0x90, control_change = 0xB0, all_notes_off = 0x7B;

struct test_note {
	u8 channel, note; // from 0
	bool operator==(const test_note &) const = default;
};
static std::vector<test_note> sounding;

void send_note(int channel, u8 status, int note, int velocity)
{
	log_line("PLAYING NOTE on CHANNEL: %d, [%s](%d) 0x%02X\r\n", channel,
		status == note_on ? "ON" : "OFF", note, static_cast<unsigned>(velocity));
	const u8 message[] = { static_cast<u8>(status | ((channel - 1) & 0x0F)),
		static_cast<u8>(note & 0x7F), static_cast<u8>(velocity & 0x7F) };
	send_midi_string(message, sizeof message);
}

// The pitch list ends below the highest note; velocity 0 would end a note.
void fill_note_lists()
{
	std::vector<std::string> pitches, velocities;
	for (int note = 0; note <= 126; note++)
		pitches.emplace_back(display_midi_note(note));
	for (int velocity = 1; velocity <= 127; velocity++)
		velocities.push_back(format_text("%d", velocity));
	host.ui->set_list(window_sampler, sampler_pitch_list, pitches);
	host.ui->select(window_sampler, sampler_pitch_list, 60);
	host.ui->set_list(window_sampler, sampler_velocity_list, velocities);
	host.ui->select(window_sampler, sampler_velocity_list, 64);
}

struct chosen_note {
	int channel, note, velocity; // -1 where nothing is chosen; the channel counts from 0
};

static chosen_note note_of_dialog()
{
	const int velocity = host.ui->selection(window_sampler, sampler_velocity_list);
	return { host.ui->selection(window_sampler, sampler_midi_list),
		host.ui->selection(window_sampler, sampler_pitch_list),
		velocity < 0 ? -1 : velocity + 1 };
}

static void send_channel_message(u8 status, int channel, int first, int second)
{
	const u8 message[] = { static_cast<u8>(status | (channel & 0x0F)), static_cast<u8>(first),
		static_cast<u8>(second) };
	send_midi_string(message, sizeof message);
}

void test_note_on()
{
	const chosen_note it = note_of_dialog();
	if (it.channel < 0 || it.note < 0 || it.velocity < 0)
		return;
	log_line("[D] RECEIVED NOTE_ON (MIDI-CHANNEL: %d)\n", it.channel + 1);
	const test_note note = { static_cast<u8>(it.channel), static_cast<u8>(it.note) };
	std::erase(sounding, note);
	sounding.push_back(note);
	send_channel_message(note_on, it.channel, it.note, it.velocity);
}

void test_note_off()
{
	const chosen_note it = note_of_dialog();
	if (it.channel < 0 || it.note < 0 || it.velocity < 0)
		return;
	log_line("[D] RECEIVED NOTE_OFF (MIDI-CHANNEL: %d)\n", it.channel + 1);
	std::erase(sounding, test_note{ static_cast<u8>(it.channel), static_cast<u8>(it.note) });
	send_channel_message(note_off, it.channel, it.note, it.velocity);
}

void all_test_notes_off()
{
	const int channel = host.ui->selection(window_sampler, sampler_midi_list);
	if (channel < 0)
		return;
	log_line("[D] RECEIVED ALL NOTE_OFF (MIDI-CHANNEL: %d)\r\n", channel + 1);
	std::erase_if(sounding, [channel](const test_note &it) { return it.channel == channel; });
	send_channel_message(control_change, channel, all_notes_off, 0);
}

void end_test_notes()
{
	const std::vector<test_note> left = std::exchange(sounding, {});
	for (const test_note &it : left)
		send_channel_message(note_off, it.channel, it.note, 64);
}

} // namespace velmor
