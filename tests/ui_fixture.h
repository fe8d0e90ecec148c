// ui_fixture.h - the windows on the test's time, driven offscreen
//
// For tests of windows alone, one include a program: it holds the QApplication.

#pragma once
#include "src/velmor_window.h"
#include "tests/support/test_host.h"
#include "ui/parts/entry_list.h"
#include "ui/qt_ui.h"
#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <stdexcept>

// Fonts are kept by fontconfig until the process ends.
extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions()
{
	return "leak:libfontconfig";
}

namespace velmor
{

inline QApplication &application()
{
	static int count = 1;
	static char name[] = "test_ui_windows", *words[] = { name, nullptr };
	static QApplication *the_application = new QApplication(count, words);
	return *the_application;
}

inline int ended; // times that the process was to end

// The windows of Qt on the test's time: boxes are recorded, the process does not end.
inline ui_service windows_on_test_time(const ui_service &recorded)
{
	ui_service ui = qt_ui;
	ui.message = recorded.message;
	ui.ask = recorded.ask;
	ui.choose_files = recorded.choose_files;
	ui.choose_folder = recorded.choose_folder;
	ui.pump = [](int max_ms) {
		qt_ui.pump(0);
		if (the_test_host->on_pump)
			the_test_host->on_pump();
		timeline &time = the_test_host->time;
		time.run_until(std::min(time.next(), time.now() + max_ms / 1000.0));
	};
	ui.exit_process = [](int) { ended++; };
	return ui;
}

inline std::vector<std::string> port_names;

class windows : public host_test
{
protected:
	windows() : ui(windows_on_test_time(*host.ui)), ports(*host.midi)
	{
		application();
		ended = 0;
		forget_commands();
		port_names = { "Cable A", "Cable B" };
		ports.outputs = ports.inputs = [] { return static_cast<int>(port_names.size()); };
		ports.output_name = ports.input_name = [](int i) {
			return port_names[static_cast<std::size_t>(i)].c_str();
		};
		host.midi = &ports;
		host.ui = &ui;
		create_windows();
		selected_midi_in_interface = selected_midi_out_interface = -1;
		selected_midi_in_mon_interface = -1;
		set_up_windows();
		host.ui->show(window_main, 0, true);
	}
	~windows() override
	{
		destroy_windows();
		forget_commands();
		conf_sampler.clear();
	}

	template <class kind = QWidget> kind *at(int window, int control)
	{
		auto *found = dynamic_cast<kind *>(find_control(window, control));
		if (!found)
			throw std::runtime_error(
				format_text("no control %d in window %d", control, window));
		return found;
	}
	void press(int window, int control)
	{
		auto *button = at<QPushButton>(window, control);
		ASSERT_TRUE(button->isVisible() && button->isEnabled()) << control;
		QTest::mouseClick(button, Qt::LeftButton);
	}
	void choose(int window, int control, const char *name)
	{
		auto *list = at<entry_list>(window, control);
		const int found = list->place_of(name);
		ASSERT_GE(found, 0) << name;
		list->scrollToItem(list->entry(found));
		QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
			list->place_on_screen(found).center());
	}
	void type(int window, int control, const char *text)
	{
		auto *field = at<QLineEdit>(window, control);
		field->setFocus();
		field->selectAll();
		QTest::keyClicks(field, text);
	}
	bool shown(int window) { return at(window, 0)->isVisible(); }

	ui_service ui;
	midi_service ports;
};

} // namespace velmor
