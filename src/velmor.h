// velmor.h - the system's core: start-up, loading, log, settings, progress, MIDI exchange
//
// Called by drivers, workflows and windows. Owns every global declared here.
// State is changed on the main thread only, except where a line says otherwise.
//
// Knows nothing of: models (reached through sampler_type), toolkits.

#pragma once
#include "platform/host.h"
#include "src/resource.h"
#include "src/velmor_words.h"
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velmor
{

// ---- Log and boxes (velmor_log.cpp) ------------------------------------------------

// What is enabled. A plain setting, read once at start-up; without it everything is.
struct run_mode {
	bool diagnostics; // "[D]" lines, velmor.log, the TCP controls
	bool multis;      // "Manage Multis" can be pressed
};
extern run_mode current_run_mode;

// Seconds since the epoch at start-up; the base of every log stamp.
extern double start_time;

// Log one text, which may hold several lines. A text that begins with "[D]" is
// dropped unless the run mode enables diagnostics; other tags are part of the text.
// Goes to velmor.log in the current directory (diagnostics only, opened and closed
// for each text so that a crash loses nothing) and to the log control. May be called on any
// thread: a text of another thread waits for the next pump or text of the main thread, with the
// stamp and in the order of the call.
void _add_scroll_string(const char *file, int line, const char *text);

// Compose a text of any length and log it; the format is not even filled in for a
// dropped "[D]" text. Use log_line.
void add_log_format(const char *file, int line, const char *format, ...)
	__attribute__((format(printf, 3, 4)));
#define log_line(...) ::velmor::add_log_format(__FILE_NAME__, __LINE__, __VA_ARGS__)

// Where in the sources a call stands, for helpers that log in the name of their caller: the
// last argument of such a helper, which its callers leave out. (std::source_location is not
// there with every compiler that builds this.)
struct call_site {
	const char *file;
	int number;

	static constexpr call_site current(
		const char *in_file = __builtin_FILE(), int in_line = __builtin_LINE())
	{
		return { in_file, in_line };
	}
	constexpr const char *file_name() const { return file; }
	constexpr int line() const { return number; }
};

// Show a text in a box. printf-checked; use for every box.
void show_box(const char *caption, const char *format, ...) __attribute__((format(printf, 2, 3)));
// The same with OK and Cancel; true for OK.
bool ask_box(const char *caption, const char *format, ...) __attribute__((format(printf, 2, 3)));

// End the process, after showing boxes that were kept aside. Tests throw here.
void end_program(int status);

// Show the system's words in a box with the caption "ERROR (file:line)"; words that are
// null say that no text exists, which goes to standard output.
void display_error_text(const char *file, int line, const char *words);
// The same for a system code (files, settings). Ends nothing.
void _display_error(const char *file, int line, int code);
// "(file:line) [words]", or "(file:line) Unknown error-code [code]", in one static buffer.
const char *_get_error(const char *file, int line, int code);

// Bytes as upper-case hexadecimal with one blank between, NUL-terminated: three
// characters a byte; len below 1 gives "".
void hexdump(const u8 *data, int len, char *out);
// The same as a text of its own.
std::string hex_text(std::span<const u8> bytes);
// printf into a string.
std::string format_text(const char *format, ...) __attribute__((format(printf, 1, 2)));

// ---- Bounded reading of what comes from outside ----------------------------------------

// Bytes that came from a sampler or a file. Past the end every byte is zero, so a
// decoder cannot read what was never received.
struct bounded_bytes {
	std::span<const u8> bytes;

	std::size_t size() const { return bytes.size(); }
	u8 operator[](std::size_t at) const { return at < bytes.size() ? bytes[at] : u8{ 0 }; }
	// What stands from offset on; empty when offset lies behind the end.
	bounded_bytes from(std::size_t at) const
	{
		return { at < bytes.size() ? bytes.subspan(at) : std::span<const u8>{} };
	}
	// Text at an offset, up to a NUL or the end.
	std::string text(std::size_t at) const
	{
		std::string out;
		for (; at < bytes.size() && bytes[at]; at++)
			out += static_cast<char>(bytes[at]);
		return out;
	}
};

// Copy text into a fixed field: cut to fit, NUL-terminated, the rest zeroed.
template <std::size_t size> void copy_text(char (&field)[size], std::string_view text)
{
	const std::size_t count = text.size() < size - 1 ? text.size() : size - 1;
	for (std::size_t i = 0; i < size; i++)
		field[i] = i < count ? text[i] : '\0';
}

// ---- Settings and folders (velmor_settings.cpp) -----------------------------------------

// Folder of the configurations, with backslashes and no closing one. The spool is
// its folder "sample".
extern std::string current_config_path;

// One value, setting_size bytes of room: 0, 2 when it does not exist, or a system code that
// was shown.
int load_key(const char *name, char *value);
// 0, or a system code that was shown.
int save_key(const char *name, const char *value);

// Set current_run_mode from the key run_mode: "user" is without diagnostics, "demo" also
// without multis, everything else has all.
void load_run_mode();
// Once, after the device lists are read: device choices, configuration folder, folder tree.
void load_settings();
// "&Save settings": take the settings dialog's choices and store them.
void save_settings();

// A name that came from a sampler or a program file, made safe as one file name:
// separators, control characters and names that mean a folder become '_', so that it
// can never leave the folder it is meant for.
std::string file_name_of(std::string_view name);

// ---- Progress (velmor_progress.cpp) -----------------------------------------------------

extern int progressbar_range;

// Show the progress window and disable the others. A range of 0 counts as 100, a null
// caption as "Progress". Forgets an earlier stop.
void show_progressbar(int window, int range, const char *caption);
// Show a value, and let pending interface events run.
void set_progressbar(int val);
void hide_progressbar(int window);
// True from the press of Stop to the next show_progressbar or forget_stop, and as long as the
// program is to be closed. Long work asks at every point where it can end and leave sampler and
// files consistent.
bool progress_stopped();
// Stop was pressed.
void stop_progress();
// For long work that shows no progress window: forgets an earlier stop, as showing one does.
void forget_stop();
// The program is to be closed as soon as the work that runs has come back.
void request_close(bool wanted);
bool close_requested();

// ---- Start-up and configurations (velmor.cpp) --------------------------------------------

// Names of the stored configurations, without extension, in the folder's order.
extern std::vector<std::string> conf_sampler;
// The USB device name that the next save_sampler stores.
extern char current_usb_name[256];

// Everything from binding MIDI to the filled windows, in its fixed order (velmor_start.cpp).
// Called once by a program that has installed its host and created its windows, hidden; the
// caller then runs its message loop. A failure ends the process.
void start_velmor();

void load_sampler_list();
// Show conf_sampler, and what is loaded (velmor_card.cpp).
void show_sampler_list();
void show_loaded_card();
// Make a configuration current: 0, or 1 when nothing was named or the load was refused.
// A missing or short file ends the process.
int load_sampler(const char *sampler_name);
// Store the sampler dialog's entries: 0, or 1 when nothing was stored.
int save_sampler();
// True if a name can be the name of a configuration and may be stored now; a box tells why not.
bool may_store(const std::string &name, const std::string &path);
// Write a configuration under its description and make it the current sampler: 0, or 1 when
// nothing was stored, which a box has said. The file is the old one or the new one at any moment.
int store_sampler(const _sampler &record);
// Choose the entries of the sampler dialog that stand for a configuration; what is out of range
// chooses the nearest.
void select_in_sampler_dialog(const _sampler &s);
// The loaded sampler's _dev_status, allocated on first use; null without a sampler or memory.
_dev_status *require_dev_status();

// ---- MIDI exchange (velmor_sysex.cpp) ----------------------------------------------------

inline constexpr int max_midi_devices = 64;

// Devices, by the place in the host's list. Rebuilt by reload_midi_setup.
extern std::vector<std::string> midi_out_interface, midi_in_interface;
extern int midi_out_interfaces, midi_in_interfaces;
// Device index, -1 when none is chosen. Changed by load_settings and the settings dialog.
extern int selected_midi_in_interface, selected_midi_out_interface;
extern int selected_midi_in_mon_interface;

// Read both device lists, at most 64 each; verbose logs them and fills field 9999 of the
// settings dialog.
void reload_midi_setup(bool verbose);

// Send a complete message and wait for msg_count end bytes (0xF7), 2 to 3 seconds at most.
// In: *_input_len is the capacity of input. Out: bytes of answer, 0 for none; unchanged when
// msg_count is 0 or the port failed. input is cleared first. Diverts to the TCP bridge.
void send_midi_string_ex(
	const u8 *output, int output_len, u8 *input, int *_input_len, int msg_count);
// The same for the S900: through an output opened for this message alone (rmidi.h), and 3 to 4
// seconds. An output that cannot be opened ends the process.
void send_midi_string_ex_s900(
	const u8 *output, int output_len, u8 *input, int *_input_len, int msg_count);
// Receive without sending, for timeout seconds at most. An incomplete message counts as none.
// Takes one to two seconds even if the message comes at once.
void wait_midi_string_ex(u8 *input, int *_input_len, int msg_count, int timeout);
// Send without an answer. Allowed while an exchange waits; all others are refused then, and
// get no answer.
void send_midi_string(const u8 *midi_data, int len);
// The output, opened by whichever send comes first and kept open; -1 while it is closed.
extern int the_outHandle;
// Open the output unless it is open: 0, or the port's code, for which the caller has the words.
int open_midi_output();
// Close the output, so that the next send opens the port chosen then. A send also notices by
// itself that another output was chosen.
void close_midi_output();

// ---- TCP bridge (velmor_tcp.cpp) ---------------------------------------------------------

extern int use_tcp;           // 1 while the bridge carries the traffic
extern int tcp_socket;        // its connection
extern char tcp_address[256]; // dotted IPv4
extern u16 tcp_port;

void switch_on_tcp();
void switch_off_tcp();
// Send on the bridge: true if the far end took every byte before the deadline. What came since
// the last exchange belongs to none and is thrown away before.
bool send_tcp(std::span<const u8> bytes);
// Receive up to the first 0xF7, capacity bytes, a break of the connection, or the deadline of
// the MIDI path. Returns the bytes received.
int receive_tcp(u8 *input, int capacity);
// For an answer that goes on while more is sent: from now on, until stop_listening_to_tcp, what
// comes is kept for take_tcp. What came before is thrown away.
void listen_to_tcp();
void stop_listening_to_tcp();
// The oldest bytes that came, capacity at most: how many, or -1 when the connection is gone.
int take_tcp(u8 *bytes, int capacity);
// Why the last message was not taken or its answer broke off, a sentence; "" when neither did.
const std::string &why_tcp_failed();

} // namespace velmor
