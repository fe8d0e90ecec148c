// test_ui_windows.cpp - the windows, driven offscreen by mouse and keys

#include "src/velmor_window.h"
#include "src/waveqx.h"
#include "tests/support/fake_model.h"
#include "ui/parts.h"
#include "ui/qt_ui.h"
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QDropEvent>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <thread>

// Fonts are kept by fontconfig until the process ends.
extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions()
{
	return "leak:libfontconfig";
}

using namespace velmor;

namespace
{

QApplication &application()
{
	static int count = 1;
	static char name[] = "test_ui_windows", *words[] = { name, nullptr };
	static QApplication *the_application = new QApplication(count, words);
	return *the_application;
}

int ended; // times that the process was to end

// The windows of Qt on the test's time: boxes are recorded, the process does not end.
ui_service windows_on_test_time(const ui_service &recorded)
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

std::vector<std::string> port_names;

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
		auto *list = at<named_list>(window, control);
		const auto found = list->findItems(name, Qt::MatchExactly);
		ASSERT_EQ(found.size(), 1) << name;
		list->scrollToItem(found.first());
		QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
			list->visualItemRect(found.first()).center());
	}
	void type(int window, int control, const char *text)
	{
		auto *field = at<QLineEdit>(window, control);
		field->setFocus();
		field->selectAll();
		QTest::keyClicks(field, text);
	}
	QStringList names(int control)
	{
		QStringList all;
		auto *list = at<named_list>(window_samples, control);
		for (int i = 0; i < list->count(); i++)
			if (!list->item(i)->isHidden())
				all += list->item(i)->text();
		return all;
	}
	bool shown(int window) { return at(window, 0)->isVisible(); }

	ui_service ui;
	midi_service ports;
};

class sample_windows : public windows
{
protected:
	sample_windows() : model(h)
	{
		model.names = { "KICK", "SNARE", "HAT" };
		host.ui->show(window_main, main_samples, true);
	}
	void open() { press(window_main, main_samples); }
	std::string spooled(const std::string &name) { return h.config + "\\sample\\" + name; }
	fake_model model;
};

} // namespace

TEST_F(windows, every_command_with_a_control_has_words_and_a_name_for_screen_readers)
{
	for (const caption_row &row : captions) {
		QObject *object = find_control(row.window, row.control);
		if (!object)
			continue;
		EXPECT_EQ(object->property("id").toInt(), row.control ? row.control : row.window);
		if (auto *widget = qobject_cast<QWidget *>(object)) {
			EXPECT_FALSE(widget->accessibleName().isEmpty()) << row.caption;
		}
		if (auto *button = qobject_cast<QAbstractButton *>(object)) {
			EXPECT_EQ(button->text().toStdString(), row.caption);
		}
	}
	EXPECT_EQ(at(window_samples, 0)->windowTitle(), "VELMOR Manage current Samples");
}

TEST_F(windows, work_that_is_not_built_has_no_control)
{
	for (int control : { menu_midi_files, main_programs, main_lcd })
		EXPECT_FALSE(host.ui->exists(window_main, control)) << control;
	// Nobody minds what is done to it.
	host.ui->show(window_main, main_programs, true);
	host.ui->set_text(window_main, main_lcd, "");
	EXPECT_EQ(host.ui->selection(window_main, main_programs), -1);
}

TEST_F(windows, the_empty_list_says_how_to_begin)
{
	auto *list = at<named_list>(window_main, main_sampler_list);
	const QImage empty = list->grab().toImage();
	list->fill({ "" });
	EXPECT_NE(empty, list->grab().toImage());
	EXPECT_FALSE(at(window_main, main_samples)->isVisible());
}

TEST_F(windows, a_sampler_is_created_by_its_dialog_and_stands_in_the_list)
{
	at<QAction>(window_main, menu_midi_samplers)->trigger();
	ASSERT_TRUE(shown(window_sampler));
	EXPECT_EQ(at<QPushButton>(window_sampler, control_ok)->text(), "Create new");
	type(window_sampler, sampler_name, "Studio");
	at<QComboBox>(window_sampler, sampler_brand_list)->setCurrentText("Akai S3000/S3000XL");
	at<QComboBox>(window_sampler, sampler_exclusive_list)->setCurrentIndex(3);
	press(window_sampler, control_ok);
	EXPECT_FALSE(shown(window_sampler));
	EXPECT_EQ(h.content(h.config + "\\Studio.sampler")->size(), 536u);

	choose(window_main, main_sampler_list, "Studio");
	press(window_main, main_load);
	ASSERT_TRUE(current_sampler);
	EXPECT_EQ(current_sampler->sampler_type, 1007u);
	EXPECT_EQ(current_sampler->sampler_sysex_channel, 3u);
	EXPECT_TRUE(at(window_main, main_samples)->isVisible());
	EXPECT_FALSE(shown(window_progress));
	EXPECT_TRUE(at(window_main, 0)->isEnabled());

	at<QAction>(window_main, menu_midi_samplers)->trigger();
	EXPECT_EQ(at<QPushButton>(window_sampler, control_ok)->text(), "Save changes");
	EXPECT_EQ(at<QComboBox>(window_sampler, sampler_brand_list)->currentText(),
		"Akai S3000/S3000XL");
	QTest::keyClick(at(window_sampler, sampler_name), Qt::Key_Escape);
	EXPECT_FALSE(shown(window_sampler));
}

TEST_F(windows, settings_are_chosen_with_keys_and_kept_by_enter)
{
	at<QAction>(window_main, menu_settings)->trigger();
	auto *out = at<QComboBox>(window_settings, settings_midi_out);
	EXPECT_EQ(out->count(), 3);
	EXPECT_EQ(out->currentText(), "Select Interface");
	QTest::keyClick(out, Qt::Key_Down);
	QTest::keyClick(out, Qt::Key_Down);
	EXPECT_EQ(selected_midi_out_interface, 1);
	at(window_settings, settings_config_path)->setFocus();
	QTest::keyClick(at(window_settings, settings_config_path), Qt::Key_Return);
	EXPECT_FALSE(shown(window_settings));
	EXPECT_EQ(h.settings["midi_out"], "1");
	EXPECT_EQ(h.settings["midi_in"], "-1");
}

TEST_F(windows, the_log_is_kept_at_once_and_painted_soon)
{
	log_line("[I] first\r\n");
	for (int i = 0; i < 2000; i++)
		log_line("[I] line %d\r\n", i);
	EXPECT_NE(
		host.ui->get_text(window_main, main_log).find("line 1999\r\n"), std::string::npos);
	auto *view = at<QPlainTextEdit>(window_main, main_log);
	EXPECT_TRUE(
		QTest::qWaitFor([&] { return view->toPlainText().contains("line 1999"); }, 1000));
	EXPECT_LE(view->toPlainText().size(), 10100);
}

TEST_F(windows, pump_returns_for_a_wake_from_another_thread_and_at_its_limit)
{
	using clock = std::chrono::steady_clock;
	QApplication::processEvents();
	qt_ui.pump(0);
	const auto before = clock::now();
	qt_ui.wake();
	qt_ui.pump(100);
	std::thread other([] { qt_ui.wake(); });
	qt_ui.pump(100);
	other.join();
	EXPECT_LT(clock::now() - before, std::chrono::milliseconds(190));
	for (int round = 0; round < 3; round++) {
		const auto start = clock::now();
		qt_ui.pump(20);
		EXPECT_LT(clock::now() - start, std::chrono::milliseconds(90));
	}
}

TEST_F(windows, a_box_is_modal_and_answered_by_its_buttons)
{
	QString seen;
	const auto answer = [&seen](QMessageBox::StandardButton button) {
		QTimer::singleShot(0, [&seen, button] {
			auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
			ASSERT_TRUE(box);
			seen = box->windowTitle() + ": " + box->text();
			QTest::mouseClick(box->button(button), Qt::LeftButton);
		});
	};
	answer(QMessageBox::Ok);
	EXPECT_TRUE(qt_ui.ask("Overwrite <b>it</b>?", "WARNING"));
	EXPECT_EQ(seen, "WARNING: Overwrite <b>it</b>?");
	answer(QMessageBox::Cancel);
	EXPECT_FALSE(qt_ui.ask("Overwrite?", "INFO"));
}

TEST_F(windows, the_main_window_closes_the_program)
{
	at(window_main, 0)->close();
	EXPECT_EQ(ended, 1);
}

TEST_F(sample_windows, both_lists_and_a_download)
{
	open();
	ASSERT_TRUE(shown(window_samples));
	EXPECT_EQ(names(samples_loaded_list), QStringList({ "KICK", "SNARE", "HAT" }));
	choose(window_samples, samples_loaded_list, "SNARE");
	bool disabled = false, progress = false;
	model.on_step = [&](int) {
		disabled = !at(window_main, 0)->isEnabled() && !at(window_samples, 0)->isEnabled();
		progress =
			shown(window_progress) && at(window_progress, progress_stop)->isEnabled();
	};
	press(window_samples, samples_download);
	EXPECT_TRUE(disabled);
	EXPECT_TRUE(progress);
	EXPECT_TRUE(at(window_samples, 0)->isEnabled());
	EXPECT_EQ(names(samples_local_list), QStringList("SNARE"));
	EXPECT_EQ(at<named_list>(window_samples, samples_loaded_list)->chosen(), 1);
}

TEST_F(sample_windows, tab_leads_from_the_list_to_its_buttons)
{
	open();
	auto *list = at(window_samples, samples_loaded_list);
	ASSERT_TRUE(QTest::qWaitForWindowActive(at(window_samples, 0)));
	EXPECT_TRUE(list->hasFocus());
	for (int control : { samples_download, samples_download_all, samples_loaded_info }) {
		QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
		EXPECT_EQ(QApplication::focusWidget(), at(window_samples, control)) << control;
	}
}

TEST_F(sample_windows, stop_is_pressed_in_the_middle)
{
	open();
	model.on_step = [&](int step) {
		if (step == 1 && model.calls.back() == "downloadsample SNARE")
			QTest::mouseClick(at(window_progress, progress_stop), Qt::LeftButton);
	};
	press(window_samples, samples_download_all);
	EXPECT_TRUE(h.boxes.back().text.starts_with("1/3 samples downloaded!\n"));
	EXPECT_EQ(names(samples_local_list), QStringList("KICK"));
	EXPECT_FALSE(shown(window_progress));
}

TEST_F(sample_windows, the_main_window_is_closed_in_the_middle)
{
	open();
	model.on_step = [&](int step) {
		if (step == 0)
			at(window_main, 0)->close();
		EXPECT_EQ(ended, 0);
	};
	press(window_samples, samples_download_all);
	EXPECT_EQ(ended, 1);
	EXPECT_TRUE(names(samples_local_list).isEmpty());
}

TEST_F(sample_windows, rename_and_delete_with_real_keys)
{
	open();
	choose(window_samples, samples_loaded_list, "KICK");
	type(window_samples, samples_loaded_new_name, "BASS DRUM");
	press(window_samples, samples_loaded_rename);
	EXPECT_EQ(names(samples_loaded_list), QStringList({ "BASS DRUM", "SNARE", "HAT" }));
	choose(window_samples, samples_loaded_list, "HAT");
	press(window_samples, samples_loaded_delete);
	EXPECT_EQ(model.names, (std::vector<std::string>{ "BASS DRUM", "SNARE" }));
}

TEST_F(sample_windows, the_multi_view_lists_the_multis)
{
	model.row.getproglist = nullptr;
	model.row.getmultilist = [](u8, u8, _dev_status *dev) {
		dev->multis = 2;
		copy_text(dev->multi[0].name, "LIVE SET");
		copy_text(dev->multi[1].name, "STUDIO");
	};
	host.ui->show(window_main, main_multis, true);
	press(window_main, main_multis);
	ASSERT_TRUE(shown(window_multis));
	EXPECT_EQ(at<named_list>(window_multis, multis_list)->count(), 2);
	EXPECT_FALSE(host.ui->exists(window_multis, multis_download));
	QTest::keyClick(at(window_multis, multis_list), Qt::Key_Escape);
	EXPECT_FALSE(shown(window_multis));
}

TEST_F(windows, the_usb_dialog_without_a_device_is_empty_and_harmless)
{
	at<QAction>(window_main, menu_usb_samplers)->trigger();
	ASSERT_TRUE(shown(window_usb));
	EXPECT_EQ(at<QComboBox>(window_usb, usb_device_list)->count(), 0);
	press(window_usb, usb_device_info);
	EXPECT_EQ(ended, 0);
	press(window_usb, control_cancel);
	EXPECT_FALSE(shown(window_usb));
}

TEST_F(sample_windows, a_long_list_is_searched_and_hidden_entries_are_never_meant)
{
	model.names.clear();
	for (int i = 0; i < 400; i++)
		model.names.push_back(format_text("PIANO %03d", i));
	model.names[250] = "Cello";
	open();
	choose(window_samples, samples_loaded_list, "PIANO 007");
	type(window_samples, samples_loaded_search, "cel");
	EXPECT_EQ(names(samples_loaded_list), QStringList("Cello"));
	press(window_samples, samples_download);
	EXPECT_NE(std::find(model.calls.begin(), model.calls.end(), "downloadsample Cello"),
		model.calls.end());
	EXPECT_EQ(names(samples_loaded_list), QStringList("Cello"));
	type(window_samples, samples_loaded_search, "zzz");
	model.calls.clear();
	press(window_samples, samples_loaded_delete);
	EXPECT_TRUE(model.calls.empty());
}

TEST_F(sample_windows, a_local_sample_shows_its_waveform_and_loop)
{
	std::vector<int> words;
	for (int i = 0; i < 2000; i++)
		words.push_back(i % 100 * 300 - 15000);
	h.put_content(spooled("plain.wav"), wave_bytes(44100, 1, words));
	h.put_content(spooled("looped.wav"), wave_bytes(44100, 1, words, 500, 1500));
	open();
	auto *picture = at(window_samples, samples_waveform);
	choose(window_samples, samples_local_list, "plain");
	const QImage plain = picture->grab().toImage();
	choose(window_samples, samples_local_list, "looped");
	EXPECT_NE(plain, picture->grab().toImage());
	EXPECT_NE(at<QLabel>(window_samples, samples_import_preview)->text().indexOf("looped.wav"),
		-1);
}

TEST_F(sample_windows, dropped_files_are_imported_with_the_chosen_options)
{
	open();
	QTest::mouseClick(at<QRadioButton>(window_samples, samples_rate_22000), Qt::LeftButton, {},
		QPoint(8, at(window_samples, samples_rate_22000)->height() / 2));
	EXPECT_TRUE(host.ui->checked(window_samples, samples_rate_22000));
	EXPECT_FALSE(host.ui->checked(window_samples, samples_rate_keep));
	EXPECT_TRUE(host.ui->checked(window_samples, samples_bits_keep));

	h.put_content(h.root + "/bell.wav", wave_bytes(44100, 1, std::vector<int>(200, 5)));
	QMimeData data;
	data.setUrls({ QUrl::fromLocalFile(QString::fromStdString(h.root + "/bell.wav")) });
	auto *list = at<named_list>(window_samples, samples_local_list);
	const QPoint middle = list->viewport()->rect().center();
	QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
	QApplication::sendEvent(list->viewport(), &enter);
	EXPECT_TRUE(enter.isAccepted());
	EXPECT_NE(host.ui->get_text(window_samples, samples_import_preview).find("22000 Hz"),
		std::string::npos);
	QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
	QApplication::sendEvent(list->viewport(), &drop);
	QApplication::processEvents();
	EXPECT_EQ(h.boxes.back(), (shown_box{ "1/1 files converted!", "INFO" }));
	EXPECT_EQ(names(samples_local_list), QStringList("bell"));
}
