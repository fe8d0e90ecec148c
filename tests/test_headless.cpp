// test_headless.cpp - the program without windows: what it prints, and how it waits

#include "platform/backends.h"
#include "platform/headless/headless.h"
#include "platform/signals.h"
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace
{

using namespace velmor;
using namespace std::chrono_literals;
using steady = std::chrono::steady_clock;

TEST(headless, boxes_go_to_standard_error_and_questions_follow_the_policy)
{
	testing::internal::CaptureStderr();
	headless_ui.message("Failed to connect IP (SOCKET)", "WARNING");
	headless_answers = false;
	EXPECT_FALSE(headless_ui.ask("Overwrite existing sample?", "INFO"));
	headless_answers = true;
	EXPECT_TRUE(headless_ui.ask("Overwrite existing sample?", "INFO"));
	EXPECT_EQ(testing::internal::GetCapturedStderr(),
		"WARNING: Failed to connect IP (SOCKET)\n"
		"INFO: Overwrite existing sample? [Cancel]\n"
		"INFO: Overwrite existing sample? [OK]\n");
}

TEST(headless, each_text_of_the_log_is_printed_once)
{
	testing::internal::CaptureStdout();
	headless_ui.set_text(101, 9900, "one\r\n");
	headless_ui.set_text(101, 9900, "one\r\ntwo\r\n");
	headless_ui.set_text(101, 9900, "two\r\nthree\r\n"); // the oldest line made room
	headless_ui.set_text(101, 9901, "no log");
	EXPECT_EQ(testing::internal::GetCapturedStdout(), "one\ntwo\nthree\n");
	EXPECT_EQ(headless_ui.get_text(101, 9900), "two\r\nthree\r\n");
}

TEST(headless, controls_remember_and_selections_stay_in_their_list)
{
	EXPECT_FALSE(headless_ui.exists(13001, 5));
	EXPECT_EQ(headless_ui.selection(13001, 5), -1);
	EXPECT_FALSE(headless_ui.exists(13001, 5)) << "asking made it";
	const std::vector<std::string> items = { "PIANO C3", "STRINGS" };
	headless_ui.set_list(13001, 5, items);
	headless_ui.select(13001, 5, 1);
	EXPECT_EQ(headless_ui.selection(13001, 5), 1);
	headless_ui.select(13001, 5, 2);
	EXPECT_EQ(headless_ui.selection(13001, 5), -1);
	headless_ui.set_checked(13001, 6, true);
	EXPECT_TRUE(headless_ui.checked(13001, 6));
	EXPECT_TRUE(headless_ui.choose_files("Import", "*.wav").empty());
	const std::vector<int> places = { 1, 0, 2, -1 };
	headless_ui.select_several(13001, 5, places);
	EXPECT_EQ(headless_ui.selections(13001, 5), (std::vector<int>{ 0, 1 }));
	EXPECT_EQ(headless_ui.selection(13001, 5), 0);
	headless_ui.set_list(13001, 5, items);
	EXPECT_TRUE(headless_ui.selections(13001, 5).empty());
}

TEST(headless, a_form_remembers_its_rows_by_their_place)
{
	form_row row = {};
	row.id = 27005; // twice, which is no matter
	const std::vector<form_row> rows = { row, row };
	headless_ui.build_form(13002, 7, rows);
	headless_ui.set_row_value(13002, 7, 1, -600);
	headless_ui.set_row_text(13002, 7, 0, "typed");
	EXPECT_EQ(headless_ui.row_value(13002, 7, 1), -600);
	EXPECT_EQ(headless_ui.row_value(13002, 7, 0), 0);
	EXPECT_EQ(headless_ui.row_text(13002, 7, 0), "typed");
	for (const int wrong : { -1, 2 }) {
		headless_ui.set_row_value(13002, 7, wrong, 1);
		EXPECT_EQ(headless_ui.row_value(13002, 7, wrong), 0);
	}
	headless_ui.build_form(13002, 7, {});
	EXPECT_EQ(headless_ui.row_value(13002, 7, 1), 0) << "built anew, it is another form";
}

TEST(headless, a_wake_ends_a_pump_even_when_it_came_first)
{
	headless_ui.wake();
	auto begin = steady::now();
	headless_ui.pump(2000);
	EXPECT_LT(steady::now() - begin, 1000ms);

	begin = steady::now();
	headless_ui.pump(2);
	EXPECT_GE(steady::now() - begin, 2ms) << "one wake ended two pumps";

	begin = steady::now();
	for (int i = 0; i < 100; i++) {
		std::thread other(headless_ui.wake);
		headless_ui.pump(20000);
		other.join();
	}
	EXPECT_LT(steady::now() - begin, 20000ms);
}

static std::thread::id ran_on;
static bool asked = false;

TEST(headless, what_is_posted_runs_once_in_the_next_pump)
{
	std::thread([] { headless_ui.post([] { ran_on = std::this_thread::get_id(); }); }).join();
	EXPECT_EQ(ran_on, std::thread::id());
	headless_ui.pump(20000);
	EXPECT_EQ(ran_on, std::this_thread::get_id());
	ran_on = {};
	headless_ui.pump(0);
	EXPECT_EQ(ran_on, std::thread::id());
}

static int ticks = 0, ticking = 0;

// A tick may pump itself, and stop its timer.
TEST(headless, a_timer_ticks_in_pumps_until_it_is_stopped)
{
	ticks = 0;
	ticking = headless_ui.start_timer(1, [] {
		ticks++;
		headless_ui.pump(2);
		if (ticks == 3)
			headless_ui.stop_timer(ticking);
	});
	EXPECT_EQ(ticks, 0);
	const auto begin = steady::now();
	while (ticks < 3 && steady::now() - begin < 20s)
		headless_ui.pump(5000); // ends when the timer is due
	EXPECT_LT(steady::now() - begin, 5000ms);
	headless_ui.pump(5);
	EXPECT_EQ(ticks, 3);
}

// The first signal asks, in the pump of the main thread; the second one ends.
TEST(headless, signals_that_end_a_program_ask_first)
{
	const auto program = [](int signals) {
		hold_end_signals();
		kill(getpid(), SIGTERM); // held until it is watched
		watch_end_signals([] { headless_ui.post([] { asked = true; }); });
		while (!asked)
			headless_ui.pump(100);
		if (signals > 1)
			kill(getpid(), SIGINT);
		for (int i = 0; signals > 1 && i < 100; i++)
			headless_ui.pump(100);
		std::_Exit(3);
	};
	testing::FLAGS_gtest_death_test_style = "threadsafe";
	EXPECT_EXIT(program(1), testing::ExitedWithCode(3), "");
	EXPECT_EXIT(program(2), testing::KilledBySignal(SIGINT), "");
}

TEST(headless, exit_ends_the_process_with_its_status)
{
	EXPECT_EXIT(headless_ui.exit_process(7), testing::ExitedWithCode(7), "");
}

} // namespace
