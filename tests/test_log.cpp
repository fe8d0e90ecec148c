// test_log.cpp - the running log, boxes, bytes as text, and progress

#include "src/controls.h"
#include "src/velmor_log.h"
#include "src/velmor_outcome.h"
#include "tests/support/test_host.h"
#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <thread>

namespace velmor
{

class running_log : public host_test
{
protected:
	std::string &screen() { return h.texts[{ window_main, main_log }]; }
	std::string file()
	{
		const auto bytes = h.content(h.root + "/velmor.log");
		return bytes ? std::string(bytes->begin(), bytes->end()) : "(absent)";
	}
};

TEST_F(running_log, with_diagnostics_everything_goes_to_file_and_screen)
{
	h.time.run_until(12.34567);
	_add_scroll_string("lcd.cpp", 77, "[D] one\r\n");
	_add_scroll_string("lcd.cpp", 78, "[I] two\r\nthree\r\n");
	const std::string due = "12.3457 [lcd.cpp:77]: [D] one\r\n"
				"12.3457 [lcd.cpp:78]: [I] two\r\nthree\r\n";
	EXPECT_EQ(file(), due);
	EXPECT_EQ(screen(), due);
}

TEST_F(running_log, without_diagnostics_debug_lines_and_the_file_are_absent)
{
	current_run_mode.diagnostics = false;
	h.time.run_until(1);
	_add_scroll_string("lcd.cpp", 1, "[D] one\r\n");
	for (const char *text : { "[I] a\r\n", "[W] b\r\n", "[F] c\r\n", "plain\r\n", "x [D]\r\n" })
		_add_scroll_string("lcd.cpp", 2, text);
	EXPECT_EQ(screen(), "1.0000: [I] a\r\n1.0000: [W] b\r\n1.0000: [F] c\r\n"
			    "1.0000: plain\r\n1.0000: x [D]\r\n");
	EXPECT_EQ(file(), "(absent)");
	// A tag that only the arguments bring is dropped too.
	screen().clear();
	log_line("%s one", "[D]");
	EXPECT_EQ(screen(), "");
}

TEST_F(running_log, a_text_of_any_length_is_composed)
{
	const std::string name(5000, 'x');
	log_line("[I] %s %d\r\n", name.c_str(), 42);
	EXPECT_TRUE(h.logged("[I] " + name + " 42"));
}

TEST_F(running_log, many_texts_at_once_leave_what_they_leave_one_by_one)
{
	const auto say = [](bool at_once) {
		const auto batch = at_once ? std::make_unique<log_batch>() : nullptr;
		for (int i = 0; i < 400; i++)
			_add_scroll_string("lcd.cpp", i, "[I] a text of some length\r\n");
	};
	say(false);
	const std::string singly = screen(), written = file();
	screen().clear();
	h.forget_log();
	say(true);
	EXPECT_EQ(screen(), singly);
	EXPECT_EQ(file(), written);
	{
		const log_batch batch;
		_add_scroll_string("lcd.cpp", 1, "[I] before a crash\r\n");
		EXPECT_NE(file(), written); // in the file at once, on the screen later
		EXPECT_EQ(screen(), singly);
	}
	EXPECT_TRUE(screen().ends_with("before a crash\r\n"));
}

TEST_F(running_log, a_file_that_cannot_be_opened_is_skipped)
{
	host.files->make_folder("velmor.log");
	log_line("[I] on screen\r\n");
	EXPECT_NE(screen().find("[I] on screen"), std::string::npos);
}

// What other threads say comes in its order and with its time, ahead of what the main thread
// says after it, or with the next pump.
TEST_F(running_log, other_threads_wait_for_the_main_one)
{
	for (int i = 0; i < 2; i++) {
		h.time.run_until(i + 1);
		std::thread([=] { log_line("[I] other %d\r\n", i); }).join();
	}
	EXPECT_EQ(screen(), "");
	h.time.run_until(3);
	log_line("[I] main\r\n");
	EXPECT_EQ(h.log(),
		(std::vector<std::string>{ "[I] other 0\r\n", "[I] other 1\r\n", "[I] main\r\n" }));
	EXPECT_EQ(screen().substr(0, 8), "1.0000 [");
	std::thread([] { log_line("[I] last\r\n"); }).join();
	EXPECT_FALSE(h.logged("[I] last"));
	host.ui->pump(0);
	EXPECT_TRUE(h.logged("[I] last"));
	current_run_mode.diagnostics = false;
	std::thread([] { log_line("[D] dropped\r\n"); }).join();
	EXPECT_TRUE(h.posted.empty());
}

struct full_screen {
	const char *name;
	std::string present, text, kept;
};

TEST_F(running_log, a_full_screen_loses_its_five_oldest_lines)
{
	const std::string five = "1\n2\n3\n4\n5\n";
	const std::string long_line(9970, 'x');
	const full_screen screens[] = {
		{ "room for exactly 10000", std::string(9990, 'x'), "ninebytes",
			std::string(9990, 'x') },
		{ "one more, no line feed at all", std::string(9990, 'x'), "ten bytes!",
			std::string(9990, 'x') },
		{ "9990 and a line of 20", five + std::string(9969, 'x') + "6\n7\n",
			"twenty characters.\r\n", std::string(9969, 'x') + "6\n7\n" },
		{ "five lines, not six", five + "6\n" + long_line, "a line that is too much\r\n",
			"6\n" + long_line },
		{ "fewer than five line feeds", "1\n2\n" + long_line + "end",
			"a line that is too much\r\n", long_line + "end" },
		{ "nothing after the last one", std::string(9990, 'x') + "\n", "ten bytes!", "" },
	};
	current_run_mode.diagnostics = false;
	for (const full_screen &s : screens) {
		screen() = s.present;
		_add_scroll_string("x.cpp", 1, s.text.c_str());
		EXPECT_EQ(screen(), s.kept + "0.0000: " + s.text) << s.name;
	}
}

TEST_F(running_log, errors_are_shown_in_the_systems_words)
{
	_display_error("velmor.cpp", 12, ENOSPC);
	EXPECT_EQ(h.boxes,
		(std::vector<shown_box>{ { "No space left on device", "ERROR (velmor.cpp:12)" } }));
	h.boxes.clear();
	testing::internal::CaptureStdout();
	_display_error("velmor.cpp", 13, 99999);
	EXPECT_EQ(testing::internal::GetCapturedStdout(),
		"[ERROR (velmor.cpp:13)] FATAL: Could not create ERROR-Text-Message\n");
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_STREQ(_get_error("a.cpp", 1, ENOENT), "(a.cpp:1) [No such file or directory]");
	EXPECT_STREQ(_get_error("a.cpp", 2, 99999), "(a.cpp:2) Unknown error-code [99999]");
}

TEST_F(running_log, boxes_are_filled_in)
{
	h.answers = { false, true };
	show_box("INFO", "%d of %d", 3, 4);
	EXPECT_FALSE(ask_box("WARNING", "Really %s?", "100%n"));
	EXPECT_TRUE(ask_box("WARNING", "Really?"));
	EXPECT_EQ(h.boxes[0], (shown_box{ "3 of 4", "INFO" }));
	EXPECT_EQ(h.boxes[1], (shown_box{ "Really 100%n?", "WARNING" }));
}

TEST_F(running_log, boxes_kept_aside_are_shown_at_the_latest_when_the_program_ends)
{
	{
		box_keeper outer;
		show_box("INFO", "first");
		{
			box_keeper inner;
			show_box("ERROR", "second");
			show_box("ERROR", "second");
			EXPECT_EQ(inner.take().size(), 1u);
			show_box("ERROR", "third");
		}
		EXPECT_EQ(h.boxes, (std::vector<shown_box>{ { "third", "ERROR" } }));
		EXPECT_THROW(end_program(0), process_ended);
	}
	EXPECT_EQ(h.boxes, (std::vector<shown_box>{ { "third", "ERROR" }, { "first", "INFO" } }));
}

// Numbers of a locale that writes a comma, as the system keeps them.
static constexpr char comma_locale[] = "14 11 03 20 06 00*3 20 00*3 22 00*3 23 00*3 24 00*3 28 "
				       "00*3 2C 00*3 2C 00 00 00 2C 00*7 41 "
				       "4E 53 49 5F 58 33 2E 34 2D 31 39 36 38 00";

TEST_F(running_log, numbers_do_not_follow_the_locale)
{
	std::vector<u8> bytes = hex(comma_locale);
	host.files->make_folder("locales");
	host.files->make_folder("locales\\xx_XX");
	h.put_content(h.root + "/locales/xx_XX/LC_NUMERIC", bytes);
	setenv("LOCPATH", (h.root + "/locales").c_str(), 1);
	ASSERT_TRUE(std::setlocale(LC_NUMERIC, "xx_XX"));
	char number[16];
	std::snprintf(number, sizeof number, "%.1f", 0.5);
	EXPECT_STREQ(number, "0,5"); // as other code of the process goes on writing
	h.time.run_until(1.5);
	log_line("[I] %.2f\r\n", 12.5);
	show_progressbar(0, 8, "x");
	set_progressbar(1);
	std::snprintf(number, sizeof number, "%.1f", 0.5);
	std::setlocale(LC_NUMERIC, "C");
	unsetenv("LOCPATH");
	EXPECT_STREQ(number, "0,5");
	EXPECT_TRUE(screen().starts_with("1.5000 [")) << screen();
	EXPECT_TRUE(h.logged("[I] 12.50"));
	EXPECT_EQ(h.progress.infos.back(), "12.50 %");
}

TEST(hexadecimal, has_one_blank_between_bytes_and_none_at_the_end)
{
	const u8 bytes[] = { 0xF0, 0x0A, 0xF7 };
	char out[9];
	hexdump(bytes + 2, 1, out);
	EXPECT_STREQ(out, "F7");
	hexdump(bytes, 3, out);
	EXPECT_STREQ(out, "F0 0A F7");
	hexdump(bytes, 0, out);
	EXPECT_STREQ(out, "");
	hexdump(bytes, -5, out);
	EXPECT_STREQ(out, "");
	EXPECT_EQ(hex_text({}), "");
	EXPECT_EQ(hex_text(bytes), "F0 0A F7");
}

TEST(bounded, past_the_end_every_byte_is_zero)
{
	const u8 bytes[] = { 'a', 'b', 0, 'c' };
	const bounded_bytes view = { bytes };
	EXPECT_EQ(view[3], 'c');
	EXPECT_EQ(view[4], 0);
	EXPECT_EQ(view[~std::size_t{ 0 }], 0);
	EXPECT_EQ(view.text(0), "ab");
	EXPECT_EQ(view.text(3), "c");
	EXPECT_EQ(view.from(5).size(), 0u);
	char field[3];
	copy_text(field, "long");
	EXPECT_STREQ(field, "lo");
}

// ---- Progress -----------------------------------------------------------------------------------

struct progress : host_test {
	std::string percent(int value)
	{
		set_progressbar(value);
		return h.progress.infos.back();
	}
};

TEST_F(progress, is_told_in_percent_of_its_range)
{
	show_progressbar(0, 300, "Loading...");
	EXPECT_TRUE(h.progress.visible);
	EXPECT_EQ(h.progress.caption, "Loading...");
	EXPECT_EQ(h.progress.range, 300);
	EXPECT_EQ(percent(0), "0.00 %");
	EXPECT_EQ(percent(100), "33.33 %");
	EXPECT_EQ(h.progress.value, 100);
	EXPECT_EQ(percent(301), "100.00 %");
	EXPECT_EQ(percent(0x7FFFFFFF), "100.00 %");
	EXPECT_EQ(percent(-5), "0.00 %");
	hide_progressbar(0);
	EXPECT_FALSE(h.progress.visible);
	show_progressbar(0, 0, nullptr);
	EXPECT_EQ(h.progress.caption, "Progress");
	EXPECT_EQ(h.progress.range, 100);
	EXPECT_EQ(percent(50), "50.00 %");
}

static std::string last_time_left;

TEST_F(progress, tells_the_time_left_from_what_is_done)
{
	static ui_service ui;
	ui = *host.ui;
	ui.progress_set = [](int, const char *, const char *left) { last_time_left = left; };
	host.ui = &ui;
	struct moment {
		double now;
		int value;
		const char *left;
	};
	static const moment moments[] = {
		{ 1, 1, "" },            // too early to tell
		{ 10, 0, "" },           // nothing to go by
		{ 10, 10, "1:30 left" }, // a tenth in ten seconds
		{ 20, 50, "0:20 left" },
		{ 36, 1, "59:24 left" },
		{ 72, 1, "1:58:48 left" },
		{ 72, 100, "" },
	};
	show_progressbar(0, 100, "x");
	for (const moment &m : moments) {
		h.time.run_until(m.now);
		set_progressbar(m.value);
		EXPECT_EQ(last_time_left, m.left) << m.now;
	}
}

TEST_F(progress, stop_is_seen_through_the_events_that_it_lets_run)
{
	show_progressbar(0, 10, "x");
	EXPECT_FALSE(progress_stopped());
	h.on_pump = [] { stop_progress(); };
	set_progressbar(1);
	EXPECT_TRUE(progress_stopped());
	show_progressbar(0, 10, "x");
	EXPECT_FALSE(progress_stopped());
	request_close(true);
	show_progressbar(0, 10, "x");
	forget_stop();
	EXPECT_TRUE(progress_stopped());
	request_close(false);
	EXPECT_FALSE(progress_stopped());
}

} // namespace velmor
