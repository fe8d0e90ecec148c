// test_ui_closing.cpp - a program that is told from outside to end, whatever its windows do

#include "src/velmor_window.h"
#include "tests/support/test_host.h"
#include "ui/qt_ui.h"
#include <QApplication>
#include <thread>

extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions()
{
	return "leak:libfontconfig";
}

namespace velmor
{
namespace
{

int ended; // times that the process was to end

class closing : public host_test
{
protected:
	ui_service ui = qt_ui;

	closing()
	{
		static int count = 1;
		static char name[] = "test_ui_closing", *words[] = { name, nullptr };
		static QApplication *application = new QApplication(count, words);
		(void)application;
		ended = 0;
		ui.exit_process = [](int) { ended++; };
		host.ui = &ui;
		create_windows();
		host.ui->show(window_main, 0, true);
	}
	~closing() override { destroy_windows(); }
	static void told_to_end()
	{
		std::thread([] { host.ui->post(end_windows); }).join();
	}
};

// The command waits for an answer that nobody may give: it is Cancel, and no box opens later.
TEST_F(closing, ends_behind_the_command_that_shows_a_box_or_at_once)
{
	h.put_content(h.config + "\\sample\\KEPT.wav", hex("01"));
	told_to_end();
	EXPECT_TRUE(velmor_command(window_samples, samples_clear));
	EXPECT_EQ(ended, 1);
	EXPECT_TRUE(h.content(h.config + "\\sample\\KEPT.wav"));
	testing::internal::CaptureStderr();
	EXPECT_FALSE(host.ui->ask("Really?", "WARNING"));
	EXPECT_EQ(testing::internal::GetCapturedStderr(), "WARNING: Really?\n");
	told_to_end();
	EXPECT_EQ(ended, 1) << "not on that thread";
	host.ui->pump(0);
	EXPECT_EQ(ended, 2);
}

} // namespace
} // namespace velmor
