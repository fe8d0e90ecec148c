// test_host.cpp - a host for tests: virtual time, a scratch folder, recorded windows

#include "tests/support/test_host.h"
#include "platform/backends.h"
#include "src/usbqx.h"
#include "src/velmor_edits.h"
#include "src/velmor_library.h"
#include "src/velmor_midi.h"
#include "src/velmor_monitor.h"
#include "src/velmor_outcome.h"
#include "src/velmor_pace.h"
#include "src/velmor_window.h"
#include "src/waveqx.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/mman.h>
#include <sys/time.h>
#include <unistd.h>

namespace velmor
{

test_host *the_test_host = nullptr;

// ---- Limits -------------------------------------------------------------------------------

// AddressSanitizer asks for this by name. Short histories of blocks, and not too many
// of those that were freed, save a third of the time.
extern "C" const char *__asan_default_options();
extern "C" const char *__asan_default_options()
{
	return "hard_rss_limit_mb=2500:max_allocation_size_mb=1000:malloc_context_size=6:"
	       "quarantine_size_mb=16";
}

struct host_meter {
	static void call()
	{
		test_host &h = *the_test_host;
		const double now = h.time.now();
		h.calls = now > h.moment ? 0 : h.calls + 1;
		h.moment = now;
		if (h.calls > h.limits.calls_at_a_moment)
			throw limit_reached("the system asks for the time without end");
	}
	static void wait(double seconds)
	{
		test_host &h = *the_test_host;
		h.waited += seconds;
		if (h.waited > h.limits.seconds)
			throw limit_reached("the system waits without end");
	}
	static void write(std::size_t bytes)
	{
		test_host &h = *the_test_host;
		h.written += bytes;
		if (h.written > h.limits.disk_bytes)
			throw limit_reached("the system writes without end");
	}
};

static void end_computing(int)
{
	static const char words[] = "a test computes without end\n";
	(void)!::write(STDERR_FILENO, words, sizeof words - 1);
	std::abort();
}

// A test that takes half a minute of the processor is in a loop; none takes three seconds.
static void limit_processor(long seconds)
{
	std::signal(SIGPROF, seconds ? end_computing : SIG_DFL);
	const itimerval limit = { .it_interval = {}, .it_value = { seconds, 0 } };
	setitimer(ITIMER_PROF, &limit, nullptr);
}

// ---- Time and windows ---------------------------------------------------------------------

static void pass_time(double seconds)
{
	timeline &t = the_test_host->time;
	const double began = t.now();
	t.run_until(std::min(t.next(), began + seconds));
	host_meter::wait(t.now() - began);
}

static void run_posted()
{
	std::vector<void (*)()> works;
	{
		const std::lock_guard hold(the_test_host->posted_lock);
		works.swap(the_test_host->posted);
	}
	for (void (*work)() : works)
		work();
}

static const clock_service test_clock = {
	.time_of_day =
		[] {
			host_meter::call();
			return 1000000000.0 + the_test_host->time.now();
		},
	.counter =
		[] {
			host_meter::call();
			return the_test_host->time.now();
		},
	.sleep_ms =
		[](int milliseconds) {
			timeline &t = the_test_host->time;
			t.run_until(t.now() + milliseconds / 1000.0);
			host_meter::wait(milliseconds / 1000.0);
		},
};

using spot = std::pair<int, int>;

static void select_in(int window, int control, int index)
{
	the_test_host->selections[spot(window, control)] = index;
	the_test_host->several.erase(spot(window, control));
}

static std::vector<int> selections_in(int window, int control)
{
	if (const auto found = the_test_host->several.find(spot(window, control));
		found != the_test_host->several.end())
		return found->second;
	const auto one = the_test_host->selections.find(spot(window, control));
	return one == the_test_host->selections.end() || one->second < 0
		       ? std::vector<int>{}
		       : std::vector<int>{ one->second };
}

// The row of a form; a test that names one that is not there is wrong.
static form_row &form_row_of(int window, int form, int row)
{
	return the_test_host->forms.at(spot(window, form)).at(static_cast<std::size_t>(row));
}

static const ui_service test_ui = {
	.set_text = [](int w, int c, const char *text) { the_test_host->texts[spot(w, c)] = text; },
	.get_text = [](int w, int c) { return the_test_host->texts[spot(w, c)]; },
	.set_list =
		[](int w, int c, std::span<const std::string> items) {
			the_test_host->lists[spot(w, c)].assign(items.begin(), items.end());
			select_in(w, c, -1);
		},
	.select = select_in,
	.selection =
		[](int w, int c) {
			auto found = the_test_host->selections.find(spot(w, c));
			return found == the_test_host->selections.end() ? -1 : found->second;
		},
	.set_checked = [](int w, int c, bool on) { the_test_host->checks[spot(w, c)] = on; },
	.checked = [](int w, int c) { return the_test_host->checks[spot(w, c)]; },
	.show = [](int w, int c, bool on) { the_test_host->visible[spot(w, c)] = on; },
	.enable = [](int w, int c, bool on) { the_test_host->enabled[spot(w, c)] = on; },
	.exists = [](int, int) { return true; },
	.set_rows =
		[](int w, int c, std::span<const std::vector<std::string>> rows) {
			std::vector<std::string> &names = the_test_host->lists[spot(w, c)];
			names.clear();
			for (const std::vector<std::string> &row : rows)
				names.push_back(row.empty() ? "" : row.front());
			the_test_host->rows[spot(w, c)].assign(rows.begin(), rows.end());
			select_in(w, c, -1);
		},
	.set_list_state =
		[](int w, int c, list_state state, const char *words) {
			the_test_host->states[spot(w, c)] = { state, words };
		},
	.selections = selections_in,
	.select_several =
		[](int w, int c, std::span<const int> places) {
			select_in(w, c, places.empty() ? -1 : places.front());
			the_test_host->several[spot(w, c)].assign(places.begin(), places.end());
		},
	.set_marks =
		[](int w, int c, std::span<const entry_mark> marks) {
			the_test_host->marks[spot(w, c)].assign(marks.begin(), marks.end());
		},
	.set_bar =
		[](int w, int c, int value, int range) {
			the_test_host->bars[spot(w, c)] = { value, range };
		},
	.set_role = [](int w, int c, text_role role) { the_test_host->roles[spot(w, c)] = role; },
	.set_reason =
		[](int w, int c, const char *why_not) {
			the_test_host->enabled[spot(w, c)] = !why_not;
			the_test_host->reasons[spot(w, c)] = why_not ? why_not : "";
		},
	.focus = [](int w, int c) { the_test_host->focus = spot(w, c); },
	.set_bitmap =
		[](int w, int c, const bitmap_view *view) {
			auto &bits = the_test_host->bitmaps[spot(w, c)];
			bits.clear();
			if (view)
				bits.assign(view->bits.begin(), view->bits.end());
		},
	.set_waveform = [](int, int, const waveform_view *) {},
	.set_key_map =
		[](int w, int c, const key_map_view *view) {
			the_test_host->key_maps[spot(w, c)] = view ? *view : key_map_view();
		},
	.set_envelope =
		[](int w, int c, const envelope_view *view) {
			the_test_host->envelopes[spot(w, c)] = view ? *view : envelope_view();
		},
	.build_form =
		[](int w, int c, std::span<const form_row> rows) {
			the_test_host->forms[spot(w, c)].assign(rows.begin(), rows.end());
		},
	.set_row_value = [](int w, int c, int row,
				 int value) { form_row_of(w, c, row).value = value; },
	.row_value = [](int w, int c, int row) { return form_row_of(w, c, row).value; },
	.set_row_text = [](int w, int c, int row,
				const char *text) { form_row_of(w, c, row).text = text; },
	.row_text = [](int w, int c, int row) { return form_row_of(w, c, row).text; },
	.set_row_changed = [](int w, int c, int row,
				   bool changed) { form_row_of(w, c, row).changed = changed; },
	.build_panel = [](int, const panel_view *) {},
	.copy_bitmap = [](const bitmap_view *, int) {},
	.save_bitmap = [](const char *, const bitmap_view *, int) { return false; },
	.set_track_count =
		[](int, int, int count) {
			the_test_host->track_count = count;
			the_test_host->tracks.clear();
			the_test_host->strips.clear();
		},
	.set_track = [](int, int, int track,
			     const track_view *view) { the_test_host->tracks[track] = *view; },
	.set_strip =
		[](int, int, int track, const strip_view *view) {
			the_test_host->strips[track].assign(view->notes.begin(), view->notes.end());
		},
	.set_play_position =
		[](int, int, std::int64_t ticks, int speed) {
			the_test_host->play_position = { ticks, speed };
		},
	.message =
		[](const char *text, const char *caption) {
			the_test_host->boxes.push_back({ text, caption });
		},
	.ask =
		[](const char *text, const char *caption) {
			the_test_host->boxes.push_back({ text, caption });
			if (the_test_host->answers.empty())
				return true;
			const bool answer = the_test_host->answers.front();
			the_test_host->answers.pop_front();
			return answer;
		},
	.choose_files = [](const char *, const char *) { return the_test_host->chosen_files; },
	.choose_folder = [](const char *) { return the_test_host->chosen_folder; },
	.choose_new_file = [](const char *, const char *, const char *) { return std::string(); },
	.progress_show =
		[](const char *caption, int range) {
			the_test_host->progress.visible = true;
			the_test_host->progress.caption = caption;
			the_test_host->progress.range = range;
		},
	.progress_set =
		[](int value, const char *info, const char *) {
			the_test_host->progress.value = value;
			the_test_host->progress.infos.push_back(info);
		},
	.progress_hide = [] { the_test_host->progress.visible = false; },
	.start_timer =
		[](int milliseconds, void (*tick)()) {
			const int timer = ++the_test_host->last_timer;
			the_test_host->timers[timer] = { milliseconds, tick };
			return timer;
		},
	.stop_timer = [](int timer) { the_test_host->timers.erase(timer); },
	.pump =
		[](int max_ms) {
			host_meter::call();
			run_posted();
			if (the_test_host->on_pump)
				the_test_host->on_pump();
			pass_time(max_ms / 1000.0);
		},
	.wake = [] {},
	.post =
		[](void (*work)()) {
			const std::lock_guard hold(the_test_host->posted_lock);
			the_test_host->posted.push_back(work);
		},
	.exit_process = [](int status) { throw process_ended{ status }; },
};

static const midi_service no_midi = {
	.outputs = [] { return 0; },
	.inputs = [] { return 0; },
	.output_name = [](int) { return ""; },
	.input_name = [](int) { return ""; },
	.open_output = [](int, int *) { return 19; },
	.write = [](int, const unsigned char *, std::size_t) { return 19; },
	.leaving = [](int) { return -19L; },
	.close_output = [](int) {},
	.open_input = [](int, int *) { return 19; },
	.arm = [](int, unsigned char *, std::size_t) { return 19; },
	.received = [](int) { return std::size_t{ 0 }; },
	.listen = [](int, std::size_t) { return 19; },
	.take = [](int, unsigned char *, std::size_t) { return std::size_t{ 0 }; },
	.input_error = [](int) { return 19; },
	.disarm = [](int) {},
	.close_input = [](int) {},
	.on_arrival = [](void (*)()) {},
	.error_text = [](int) { return "No such device"; },
};

static const net_service no_net = {
	.connect = [](const char *, unsigned short, int *) { return 111; },
	.connected = [](int) { return -111; },
	.send = [](int, const unsigned char *, std::size_t) { return -111L; },
	.receive = [](int, unsigned char *, std::size_t) { return -111L; },
	.close = [](int) {},
	.on_arrival = [](void (*)()) {},
	.error_text = [](int) { return "Connection refused"; },
};

static const usb_service no_usb = {
	.list =
		[](std::vector<usb_device> *devices) {
			devices->clear();
			return true;
		},
	.open = [](const char *, int *) { return static_cast<int>(usb_no_device); },
	.claim = [](int, std::uint8_t) { return static_cast<int>(usb_no_device); },
	.close = [](int) {},
	.submit = [](int, std::uint8_t, unsigned char *, std::size_t, int,
			  int *) { return static_cast<int>(usb_no_device); },
	.finished = [](int, std::size_t *) { return static_cast<int>(usb_no_device); },
	.cancel = [](int) {},
	.reset_pipe = [](int, std::uint8_t) { return static_cast<int>(usb_no_device); },
	.on_arrival = [](void (*)()) {},
	.error_text = [](int) { return "No such device"; },
};

static const settings_service test_settings = {
	.load_key =
		[](const char *name, char *value) {
			auto found = the_test_host->settings.find(name);
			if (found == the_test_host->settings.end())
				return 2;
			std::snprintf(value, setting_size, "%s", found->second.c_str());
			return 0;
		},
	.save_key =
		[](const char *name, const char *value) {
			the_test_host->settings[name] = value;
			return 0;
		},
	.user_root =
		[] {
			static std::string root;
			root = posix_files.system_path(the_test_host->root.c_str());
			return root.c_str();
		},
	.error_text = [](int code) { return posix_files.error_text(code); },
};

// The log is written whatever the disk does to the files under test.
static int log_file = -1;

static int open_with_faults(const char *path, file_mode mode, int *file)
{
	const bool log = std::string_view(path).ends_with("velmor.log");
	const bool makes = mode == file_create || mode == file_exclusive;
	if (makes && the_test_host->disk.open_for_writing && !log)
		return the_test_host->disk.open_for_writing;
	const int code = posix_files.open(path, mode, file);
	if (log && !code)
		log_file = *file;
	return code;
}

static int write_with_faults(int file, const void *bytes, std::size_t count)
{
	host_meter::write(count);
	auto &left = the_test_host->disk.space_left;
	if (!left || file == log_file)
		return posix_files.write(file, bytes, count);
	const std::size_t fits = static_cast<std::size_t>(std::min<std::uint64_t>(*left, count));
	*left -= fits;
	const int code = posix_files.write(file, bytes, fits);
	return code ? code : fits < count ? ENOSPC : 0;
}

// What the system keeps in globals, as it is when a program starts.
static void forget_everything()
{
	current_run_mode = { .diagnostics = true, .multis = true };
	current_sampler = nullptr;
	current_pgm_index = current_keygroup_index = current_keyzone_index = 0;
	conf_sampler.clear();
	copy_text(current_usb_name, "");
	forget_commands();
	forget_monitor();
	forget_stop();
	forget_kept_paces();
	the_line = {};
	local_sample.clear();
	edits_changed = nullptr;
	forget_edits();
	forget_midi_player();
	forget_local_programs();
	local_samples = 0;
	usbdev.clear();
	usbdevs = usb_init_done = 0;
	midi_out_interface.clear();
	midi_in_interface.clear();
	midi_out_interfaces = midi_in_interfaces = 0;
	selected_midi_in_interface = selected_midi_out_interface = -1;
	selected_midi_in_mon_interface = the_outHandle = -1;
	use_tcp = 0;
	tcp_socket = -1;
	copy_text(tcp_address, "192.168.0.10");
	tcp_port = 9999;
}

std::string new_scratch_folder()
{
	std::error_code none;
	const bool room = std::filesystem::space("/dev/shm", none).available > 500u << 20;
	std::string path = !none && room ? "/dev/shm" : "/tmp";
	path += "/velmor-test-XXXXXX";
	return mkdtemp(path.data()) ? path : "";
}

// The record is large, and a test touches little of it: pages of its own cost nothing until then.
// It ends where they end, so that a step behind it is noticed.
static std::size_t pages_of_status()
{
	const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
	return (sizeof(_dev_status) + page - 1) / page * page;
}

static _dev_status *new_status()
{
	const std::size_t size = pages_of_status();
	const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
	void *all = mmap(nullptr, size + page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
	if (all == MAP_FAILED || mprotect(all, size, PROT_READ | PROT_WRITE) != 0)
		std::abort();
	u8 *end = static_cast<u8 *>(all) + size;
	return reinterpret_cast<_dev_status *>(end - sizeof(_dev_status));
}

static void give_back(_dev_status *status)
{
	const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
	const std::size_t size = pages_of_status();
	munmap(reinterpret_cast<u8 *>(status + 1) - size, size + page);
}

test_host::test_host() : before(host), sampler{}, outer(the_test_host)
{
	the_test_host = this;
	if (!outer)
		limit_processor(30);
	root = new_scratch_folder();
	working_folder = std::filesystem::current_path();
	std::filesystem::current_path(root);
	std::filesystem::create_directories(root + "/VELMOR/CONFIG/sample");
	config = posix_files.system_path((root + "/VELMOR/CONFIG").c_str());

	static files_service files;
	files = posix_files;
	files.open = open_with_faults;
	files.write = write_with_faults;
	// A scratch folder needs no wait for the disk.
	files.sync = [](int) { return 0; };
	files.sync_folder = [](const char *) { return 0; };
	files.close = [](int file) {
		const int code = posix_files.close(file);
		const bool log = file == log_file;
		if (log)
			log_file = -1;
		return the_test_host->disk.close_fails && !log ? EIO : code;
	};
	host = { .ui = &test_ui,
		.midi = &no_midi,
		.net = &no_net,
		.usb = &no_usb,
		.settings = &test_settings,
		.clock = &test_clock,
		.files = &files,
		.sound = &sndfile_sound };
	forget_everything();
	current_config_path = config;
	start_time = test_clock.time_of_day();
}

test_host::~test_host()
{
	if (status) {
		for (_sample &s : status->sample)
			if (s.sample_data || s.sample_byte)
				free_sample_data(&s);
		give_back(status);
	}
	current_sampler = nullptr;
	std::filesystem::current_path(working_folder);
	std::filesystem::remove_all(root);
	host = before;
	the_test_host = outer;
	if (!outer)
		limit_processor(0);
}

std::vector<std::string> test_host::log()
{
	std::ifstream file(root + "/velmor.log", std::ios::binary);
	std::stringstream all;
	all << file.rdbuf();
	// A text starts with "%.04f [%s:%d]: " and runs to the start of the next.
	std::vector<std::string> texts_found;
	std::string line;
	while (std::getline(all, line)) {
		const std::size_t bracket = line.find(" [");
		const std::size_t colon = line.find("]: ");
		const bool stamped = bracket != line.npos && colon != line.npos &&
				     bracket < colon &&
				     line.find_first_not_of("0123456789.-") == bracket &&
				     line.find(".cpp:") < colon;
		if (stamped)
			texts_found.push_back(line.substr(colon + 3) + "\n");
		else if (!texts_found.empty())
			texts_found.back() += line + "\n";
	}
	return texts_found;
}

void test_host::forget_log()
{
	std::filesystem::remove(root + "/velmor.log");
}

bool test_host::logged(std::string_view line)
{
	for (std::string text : log()) {
		if (text == line)
			return true;
		while (text.ends_with("\n") || text.ends_with("\r"))
			text.pop_back();
		if (text == line)
			return true;
	}
	return false;
}

std::optional<std::vector<u8>> test_host::content(const std::string &path)
{
	std::ifstream file(posix_files.host_path(path.c_str()), std::ios::binary);
	if (!file)
		return std::nullopt;
	return std::vector<u8>(std::istreambuf_iterator<char>(file), {});
}

void test_host::put_content(const std::string &path, std::span<const u8> bytes)
{
	std::ofstream file(posix_files.host_path(path.c_str()), std::ios::binary);
	file.write(reinterpret_cast<const char *>(bytes.data()),
		static_cast<std::streamsize>(bytes.size()));
}

int test_host::temporary_files()
{
	int count = 0;
	for (const auto &entry : std::filesystem::recursive_directory_iterator(root))
		count += entry.path().filename().string().starts_with("~velmor");
	return count;
}

void test_host::use_sampler(i32 model, u8 exclusive_channel, const char *usb_name)
{
	sampler = {};
	copy_text(sampler.sampler_description, "test sampler");
	copy_text(sampler.sampler_usbname, usb_name);
	sampler.sampler_type = static_cast<u32>(model);
	sampler.sampler_sysex = 1;
	sampler.sampler_midi = 1;
	sampler.sampler_sysex_channel = exclusive_channel;
	if (!status)
		status = new_status();
	sampler.status = status;
	current_sampler = &sampler;
}

std::vector<u8> hex(std::string_view text)
{
	std::vector<u8> bytes;
	std::istringstream words{ std::string(text) };
	for (std::string word; words >> word;) {
		const std::size_t star = word.find('*');
		const std::size_t times = star == word.npos ? 1 : std::stoul(word.substr(star + 1));
		bytes.insert(bytes.end(), times, static_cast<u8>(std::stoul(word, nullptr, 16)));
	}
	return bytes;
}

} // namespace velmor
