// test_host.h - a host for tests: virtual time, a scratch folder, recorded windows
//
// Construct one at the start of a test (the fixture host_test does). It installs
// its services, points the system at a scratch folder, forgets what an earlier test left
// in the system, and puts everything back at the end. Time jumps: pump and sleep_ms run the
// timeline, and nothing ever sleeps.
//
// A system that waits without end, writes without end or computes without end fails its
// test soon, and does not hang it: time, disk, memory and processor have limits.
//
// Ports and devices are absent until a test plugs its own service tables into
// host.midi, host.net or host.usb.

#pragma once
#include "src/velmor.h"
#include "virtual/timeline.h"
#include <atomic>
#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace velmor
{

// Thrown by exit_process.
struct process_ended {
	int status;
};

struct shown_box {
	std::string text, caption;
	bool operator==(const shown_box &) const = default;
};

// A disk that fails on purpose. Counts are of bytes written since the test set them.
struct disk_faults {
	std::optional<std::uint64_t> space_left; // ENOSPC when it is used up
	int open_for_writing = 0;                // code that every creation answers
	bool close_fails = false;
};

// What one host gives before the test has failed.
struct host_limits {
	double seconds = 20000;               // of virtual time that the system waits
	long calls_at_a_moment = 50000;       // of pump and clock, while no time passes
	std::uint64_t disk_bytes = 64u << 20; // written, the log too
};

// Thrown when a limit is reached.
struct limit_reached : std::runtime_error {
	using std::runtime_error::runtime_error;
};

struct shown_progress {
	bool visible = false;
	std::string caption;
	int range = 0, value = 0;
	std::vector<std::string> infos; // every text of the info line, in order
};

class test_host
{
public:
	test_host();
	~test_host();
	test_host(const test_host &) = delete;

	timeline time;    // shared with virtual samplers
	std::string root; // the scratch folder, host path
	disk_faults disk;
	host_limits limits;
	std::map<std::string, std::string> settings;

	std::vector<shown_box> boxes;          // in order, questions too
	std::deque<bool> answers;              // to questions, in order; OK when it is empty
	std::vector<std::string> chosen_files; // what choose_files answers
	std::string chosen_folder;
	std::vector<void (*)()> posted; // for the next pump; posts come from any thread
	std::mutex posted_lock;
	std::function<void()> on_pump; // what the "user" does while the system waits
	shown_progress progress;
	std::map<std::pair<int, int>, std::string> texts;
	std::map<std::pair<int, int>, std::vector<std::string>> lists;
	std::map<std::pair<int, int>, int> selections;           // the current one of each list
	std::map<std::pair<int, int>, std::vector<int>> several; // where more than one is chosen
	std::map<std::pair<int, int>, std::vector<entry_mark>> marks;
	std::map<std::pair<int, int>, std::pair<int, int>> bars; // value and range
	std::map<std::pair<int, int>, bool> visible, enabled, checks;
	std::map<std::pair<int, int>, std::vector<std::vector<std::string>>> rows;
	std::map<std::pair<int, int>, std::pair<list_state, std::string>> states;
	std::map<std::pair<int, int>, text_role> roles;
	std::map<std::pair<int, int>, std::string> reasons;
	std::map<std::pair<int, int>, std::vector<u8>> bitmaps;
	std::map<std::pair<int, int>, key_map_view> key_maps;
	std::map<std::pair<int, int>, envelope_view> envelopes;
	std::map<std::pair<int, int>, std::vector<form_row>> forms; // as built, then as set
	std::pair<int, int> focus;
	int track_count = 0; // of the player; a test brings tracks into view itself
	std::map<int, track_view> tracks;
	std::map<int, std::vector<strip_note>> strips;
	std::pair<std::int64_t, int> play_position = { -1, 0 }; // and the speed
	// Running timers. Nothing ticks by itself: a test calls tick when it is time.
	struct running_timer {
		int milliseconds;
		void (*tick)();
	};
	std::map<int, running_timer> timers;
	int last_timer = 0;

	// Everything logged since the start or the last forget_log, without stamps and tags of
	// source lines, one text an entry ("\r\n" ends kept). Reads velmor.log.
	std::vector<std::string> log();
	void forget_log();
	// True if one logged text equals line (its "\r\n" may be left out).
	bool logged(std::string_view line);

	// Spool and configuration folder, with backslashes, made and set as current_config_path.
	std::string config;
	// Whole content of a file (path with backslashes or slashes), or nothing.
	std::optional<std::vector<u8>> content(const std::string &path);
	void put_content(const std::string &path, std::span<const u8> bytes);
	// Temporary files in the scratch folder and below it: none, once work has ended.
	int temporary_files();

	// A loaded sampler of that model, exclusive channel, with an empty _dev_status.
	void use_sampler(i32 model, u8 exclusive_channel, const char *usb_name = "");

private:
	host_services before;
	_sampler sampler;
	_dev_status *status = nullptr;
	std::string working_folder;
	test_host *outer; // the host that this one stands in for

	friend struct host_meter;
	double waited = 0;
	std::atomic<double> moment = 0;
	std::atomic<long> calls = 0;
	std::uint64_t written = 0;
};

// The running test's host.
extern test_host *the_test_host;

class host_test : public ::testing::Test
{
protected:
	test_host h;

	void expect_logged(std::initializer_list<std::string> lines)
	{
		for (const std::string &line : lines)
			EXPECT_TRUE(h.logged(line)) << line;
	}
};

// A new empty folder, in memory where there is room: a disk makes each file that is replaced wait
// for the one before it.
std::string new_scratch_folder();

// Bytes written as hexadecimal words: "F0 47 00*3 F7" is F0 47 00 00 00 F7.
std::vector<u8> hex(std::string_view text);

} // namespace velmor
