// test_ui_windows.cpp - the windows, driven offscreen by mouse and keys

#include "src/waveqx.h"
#include "tests/support/fake_model.h"
#include "tests/ui_fixture.h"
#include "ui/parts/palette.h"
#include "ui/parts/place.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include <QAction>
#include <QBoxLayout>
#include <QClipboard>
#include <QComboBox>
#include <QDropEvent>
#include <QHeaderView>
#include <QImage>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QRadioButton>
#include <QScreen>
#include <QScrollBar>
#include <QSplitter>
#include <QTextBlock>
#include <QTimer>
#include <QToolButton>
#include <QUrl>
#include <chrono>
#include <clocale>
#include <cstring>
#include <memory>
#include <thread>

using namespace velmor;

namespace
{

class sample_windows : public windows
{
protected:
	sample_windows() : model(h)
	{
		model.names = { "KICK", "SNARE", "HAT" };
		host.ui->show(window_main, main_samples, true);
	}
	void open() { press(window_main, main_samples); }
	QStringList names(int control)
	{
		QStringList all;
		auto *list = at<entry_list>(window_samples, control);
		for (int i = 0; i < list->count(); i++)
			if (!list->hidden(i))
				all += list->name_of(i);
		return all;
	}
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
		if (qobject_cast<QPushButton *>(object)) {
			EXPECT_EQ(host.ui->get_text(row.window, row.control), row.caption);
		}
	}
	EXPECT_EQ(at(window_samples, 0)->windowTitle(), "VELMOR Manage current Samples");
}

TEST_F(windows, what_is_in_no_table_has_no_control)
{
	constexpr int no_such_control = 4711;
	EXPECT_FALSE(host.ui->exists(window_main, no_such_control));
	// Nobody minds what is done to it.
	host.ui->show(window_main, no_such_control, true);
	host.ui->set_text(window_main, no_such_control, "");
	EXPECT_EQ(host.ui->selection(window_main, no_such_control), -1);
}

TEST_F(windows, the_empty_list_says_how_to_begin)
{
	auto *list = at<entry_list>(window_main, main_sampler_list);
	const QImage empty = list->grab().toImage();
	list->fill({ { "" } });
	EXPECT_NE(empty, list->grab().toImage());
	EXPECT_FALSE(at(window_main, main_samples)->isVisible());
}

TEST_F(windows, a_sampler_is_created_by_its_dialog_and_stands_in_the_list)
{
	at<QAction>(window_main, menu_midi_samplers)->trigger();
	ASSERT_TRUE(shown(window_sampler));
	EXPECT_EQ(host.ui->get_text(window_sampler, control_ok), "Create new");
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
	EXPECT_EQ(host.ui->get_text(window_sampler, control_ok), "Save changes");
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

namespace
{

class log_window : public windows
{
protected:
	log_window() { host.ui->set_text(window_main, main_log, ""); }
	QPlainTextEdit *view() { return at<QPlainTextEdit>(window_main, main_log); }
	QString seen(const char *last)
	{
		EXPECT_TRUE(
			QTest::qWaitFor([&] { return view()->toPlainText().contains(last); }, 2000))
			<< last;
		return view()->toPlainText();
	}
	template <class kind> kind *named(const char *words)
	{
		for (kind *widget : at(window_main, 0)->findChildren<kind *>())
			if (widget->accessibleName().contains(words))
				return widget;
		throw std::runtime_error(words);
	}
	void click(const char *name)
	{
		QTest::mouseClick(named<QAbstractButton>(name), Qt::LeftButton);
	}
};

} // namespace

TEST_F(log_window, is_kept_at_once_and_painted_soon_with_what_the_text_let_go_of)
{
	for (int i = 0; i < 2000; i++)
		log_line("[I] line %d\r\n", i);
	const std::string text = host.ui->get_text(window_main, main_log);
	EXPECT_TRUE(text.ends_with("line 1999\r\n"));
	EXPECT_LE(text.size(), 10100u);
	EXPECT_EQ(seen("line 1999").count("[I] line "), 2000);
	EXPECT_EQ(named<QToolButton>("what was done")->text(), "I 2000");
	EXPECT_TRUE(view()->verticalScrollBar()->value() == view()->verticalScrollBar()->maximum());
	int refilled = 0;
	QObject::connect(view()->document(), &QTextDocument::contentsChange, view(),
		[&](int at, int removed, int) { refilled += removed > 1 || at < 10000; });
	log_line("[I] one more\r\n");
	EXPECT_EQ(seen("one more").count('\n'), 2000);
	EXPECT_EQ(refilled, 0) << "what stands there is not touched";
	host.ui->set_text(window_main, main_log, "[I] VELMOR started\r\n");
	EXPECT_EQ(seen("VELMOR started"), "[I] VELMOR started") << "a new log";
}

TEST_F(log_window, shows_levels_as_they_are_wanted_and_stays_whole)
{
	const char *text = "0.1: [I] one\r\n0.2 [a.cpp:7]: [D] dump\r\n00 01\r\n0.3: [W] care\r\n"
			   "0.4: [F] broke\r\n0.5: [MONITOR]RCVD: on\r\n0.6: [IN] open";
	host.ui->set_text(window_main, main_log, text);
	EXPECT_EQ(seen("RCVD"), "0.1: [I] one\n0.3: [W] care\n0.4: [F] broke\n0.5: [MONITOR]RCVD: "
				"on\n0.6: [IN] open");
	EXPECT_EQ(host.ui->get_text(window_main, main_log), text);
	const auto color = [this](const char *line) {
		return view()->document()->find(line).charFormat().foreground().color();
	};
	EXPECT_EQ(color("care"), role_color(view()->palette(), text_role::careful));
	EXPECT_EQ(color("broke"), role_color(view()->palette(), text_role::failed));
	EXPECT_EQ(color("RCVD"), view()->palette().color(QPalette::Link));
	click("details for finding faults, 2 lines");
	EXPECT_TRUE(view()->toPlainText().contains("[D] dump\n00 01\n0.3")) << "a dump goes on";
	click("warnings, 1");
	click("what was done, 3");
	EXPECT_EQ(view()->toPlainText(), "0.2 [a.cpp:7]: [D] dump\n00 01\n0.4: [F] broke");
	// A line that had not ended goes on.
	host.ui->set_text(window_main, main_log, (std::string(text) + " end\r\n").c_str());
	click("what was done, 3");
	EXPECT_TRUE(seen("[IN] open end").endsWith("[IN] open end"));
	EXPECT_EQ(host.ui->get_text(window_main, main_log_whole),
		"0.1: [I] one\n0.2 [a.cpp:7]: [D] dump\n00 01\n0.3: [W] care\n0.4: [F] broke\n"
		"0.5: [MONITOR]RCVD: on\n0.6: [IN] open end\n");
}

TEST_F(log_window, is_searched_from_its_end_and_copied)
{
	host.ui->set_text(
		window_main, main_log, "[I] red 1\n[I] blue\n[D] red 2\n[I] red 3\n[I] last\n");
	seen("last");
	const auto line = [this] { return view()->textCursor().block().text(); };
	QTest::keyClick(at(window_main, main_sampler_list), Qt::Key_F, Qt::ControlModifier);
	auto *field = qobject_cast<QLineEdit *>(QApplication::focusWidget());
	ASSERT_TRUE(field);
	QTest::keyClicks(field, "RED");
	EXPECT_EQ(line(), "[I] red 3");
	QTest::keyClick(field, Qt::Key_Return);
	EXPECT_EQ(line(), "[I] red 1") << "the hidden one is passed over";
	QTest::keyClick(field, Qt::Key_Return);
	EXPECT_EQ(line(), "[I] red 3") << "around the end";
	QTest::keyClick(field, Qt::Key_Return, Qt::ShiftModifier);
	EXPECT_EQ(line(), "[I] red 1");
	click("Copy");
	EXPECT_EQ(QGuiApplication::clipboard()->text(), "red");
	QTest::keyClicks(field, "x");
	EXPECT_EQ(named<QLabel>("Outcome of the search")->text(), "none");
	field->setFocus();
	QTest::keyClick(field, Qt::Key_Escape);
	EXPECT_EQ(field->text(), "");
	EXPECT_TRUE(view()->hasFocus());
	click("Copy");
	EXPECT_EQ(QGuiApplication::clipboard()->text(), "[I] red 1\n[I] blue\n[I] red 3\n[I] last");
}

// The limits are far beyond what a busy machine needs, and a wake that is lost waits them out.
TEST_F(windows, pump_returns_for_a_wake_from_another_thread_and_at_its_limit)
{
	using clock = std::chrono::steady_clock;
	QApplication::processEvents();
	qt_ui.pump(0);
	const auto before = clock::now();
	qt_ui.wake();
	qt_ui.pump(5000);
	EXPECT_LT(clock::now() - before, std::chrono::seconds(4)) << "it came first";
	QApplication::processEvents();
	std::thread other([] { qt_ui.wake(); });
	qt_ui.pump(5000);
	EXPECT_LT(clock::now() - before, std::chrono::seconds(4)) << "it came meanwhile";
	other.join();
	qt_ui.pump(0);
	const auto start = clock::now();
	qt_ui.pump(20);
	EXPECT_LT(clock::now() - start, std::chrono::seconds(4)) << "nothing came";
}

TEST_F(windows, a_box_is_modal_plain_and_answered_by_its_buttons)
{
	QString seen;
	QMessageBox::Icon icon = QMessageBox::NoIcon;
	Qt::TextFormat format = Qt::AutoText;
	const auto answer = [&](QMessageBox::StandardButton button) {
		QTimer::singleShot(0, [&, button] {
			auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
			ASSERT_TRUE(box);
			seen = box->windowTitle() + ": " + box->text();
			icon = box->icon();
			format = box->textFormat();
			QTest::mouseClick(box->button(button), Qt::LeftButton);
		});
	};
	answer(QMessageBox::Ok);
	EXPECT_TRUE(qt_ui.ask("Overwrite <b>it</b>?", "WARNING"));
	EXPECT_EQ(seen, "WARNING: Overwrite <b>it</b>?");
	EXPECT_EQ(format, Qt::PlainText) << "a name of a sample is no markup";
	EXPECT_EQ(icon, QMessageBox::Warning);
	answer(QMessageBox::Cancel);
	EXPECT_FALSE(qt_ui.ask("Overwrite?", "INFO"));
	EXPECT_EQ(icon, QMessageBox::Information);
	for (const char *caption : { "FATAL", "ERROR", "Fatal Error!" }) {
		answer(QMessageBox::Ok);
		qt_ui.message("It broke", caption);
		EXPECT_EQ(icon, QMessageBox::Critical) << caption;
	}
}

TEST_F(windows, numbers_follow_no_locale)
{
	const std::string before = std::setlocale(LC_NUMERIC, nullptr);
	destroy_windows();
	ASSERT_TRUE(std::setlocale(LC_NUMERIC, "C.UTF-8"));
	create_windows();
	EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
}

TEST_F(windows, setting_a_list_is_no_choice_of_the_user)
{
	at<QAction>(window_main, menu_settings)->trigger();
	const std::vector<std::string> items = { "Select Interface", "Cable A", "Cable B" };
	host.ui->set_list(window_settings, settings_midi_out, items);
	host.ui->select(window_settings, settings_midi_out, 2);
	EXPECT_EQ(selected_midi_out_interface, -1);
	EXPECT_EQ(host.ui->selection(window_settings, settings_midi_out), 2);
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
	bool disabled = false, progress = false, main = true;
	model.on_step = [&](int) {
		main = main && shown(window_main);
		disabled = !at(window_main, 0)->isEnabled() && !at(window_samples, 0)->isEnabled();
		progress =
			shown(window_progress) && at(window_progress, progress_stop)->isEnabled();
	};
	press(window_samples, samples_download);
	EXPECT_TRUE(disabled);
	EXPECT_TRUE(progress);
	EXPECT_TRUE(main && shown(window_main)) << "the main window stays";
	EXPECT_TRUE(at(window_samples, 0)->isEnabled());
	EXPECT_EQ(names(samples_local_list), QStringList("SNARE"));
	EXPECT_EQ(at<entry_list>(window_samples, samples_loaded_list)->chosen(), 1);
}

TEST_F(sample_windows, columns_tell_of_files_and_sorting_brings_no_other_sample_to_a_command)
{
	const auto put = [&](const char *name, u32 rate, unsigned channels, std::size_t frames,
				 u32 loop_end) {
		h.put_content(spooled(name),
			wave_bytes(rate, channels, std::vector<int>(frames * channels, 9), 0,
				loop_end));
	};
	put("A.wav", 44100, 1, 5000, 0);
	put("B.wav", 8000, 2, 800, 700);
	put("C.wav", 22050, 1, 220500, 0);
	h.put_content(spooled("D.wav"), hex("00"));
	open();
	auto *list = at<entry_list>(window_samples, samples_local_list);
	const auto texts = [&](int index) {
		QStringList all;
		for (int column = 0; column < 6; column++)
			all += list->entry(index)->text(column);
		return all.join("|").toStdString();
	};
	EXPECT_EQ(texts(0), "A|0.11 s|44100 Hz|1|16|no");
	EXPECT_EQ(texts(1), "B|0.10 s|8000 Hz|2|16|yes");
	EXPECT_EQ(texts(2), "C|10.00 s|22050 Hz|1|16|no");
	EXPECT_EQ(texts(3), "D|||||");
	const auto order = [&] {
		QString all;
		for (int i = 0; i < list->topLevelItemCount(); i++)
			all += list->topLevelItem(i)->text(0);
		return all.toStdString();
	};
	const auto click_title = [&](int column) {
		QHeaderView *titles = list->header();
		QTest::mouseClick(titles->viewport(), Qt::LeftButton, {},
			{ titles->sectionViewportPosition(column) + 8, titles->height() / 2 });
		return order();
	};
	choose(window_samples, samples_local_list, "A");
	EXPECT_EQ(click_title(2), "DBCA") << "by the number, not by its first letter";
	EXPECT_EQ(click_title(2), "ACBD");
	EXPECT_EQ(click_title(1), "DBAC");
	EXPECT_EQ(host.ui->selection(window_samples, samples_local_list), 0);
	choose(window_samples, samples_local_list, "B");
	EXPECT_EQ(host.ui->selection(window_samples, samples_local_list), 1);
	press(window_samples, samples_local_delete);
	EXPECT_FALSE(h.content(spooled("B.wav")));
	EXPECT_EQ(order(), "DAC") << "a list that is filled anew stays sorted";
	EXPECT_EQ(list->chosen(), list->place_of("C")) << "the neighbour";
	type(window_samples, samples_local_search, "c");
	EXPECT_EQ(host.ui->selection(window_samples, samples_local_list), list->place_of("C"));
	click_title(1);
	EXPECT_EQ(click_title(1), "ACD") << "as they came";
}

TEST_F(sample_windows, tab_leads_from_the_list_to_its_buttons)
{
	h.put_content(spooled("bell.wav"), wave_bytes(44100, 1, { 1 }));
	open();
	auto *list = at(window_samples, samples_loaded_list);
	ASSERT_TRUE(QTest::qWaitForWindowActive(at(window_samples, 0)));
	EXPECT_TRUE(list->hasFocus());
	for (int control : { samples_loaded_new_name, samples_loaded_rename, samples_loaded_info,
		     samples_loaded_delete, samples_download, samples_download_all,
		     samples_upload }) {
		QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
		EXPECT_EQ(QApplication::focusWidget(), at(window_samples, control)) << control;
	}
	for (const auto &[of, search] : { std::pair(samples_local_list, samples_local_search),
		     std::pair(samples_loaded_list, samples_loaded_search) }) {
		at(window_samples, of)->setFocus();
		QTest::keyClick(at(window_samples, of), Qt::Key_F, Qt::ControlModifier);
		EXPECT_EQ(QApplication::focusWidget(), at(window_samples, search));
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
	press(window_progress, progress_close); // of the verdict
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
	EXPECT_EQ(at<entry_list>(window_multis, multis_list)->count(), 2);
	EXPECT_FALSE(at(window_multis, multis_download)->isEnabled());
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
	EXPECT_FALSE(at(window_samples, samples_loaded_delete)->isEnabled());
	EXPECT_EQ(at(window_samples, samples_loaded_delete)->toolTip(),
		"Choose a sample on the sampler first.");
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
	EXPECT_NE(at<told_label>(window_samples, samples_import_preview)
			  ->text()
			  .indexOf("looped.wav"),
		-1);
}

TEST_F(sample_windows, a_loop_that_the_sample_does_not_hold_is_not_drawn)
{
	open();
	const std::vector<std::int16_t> words(1000, 8000);
	const auto picture = [&](std::uint64_t start, std::uint64_t end) {
		const waveform_view view = { words, 44100, start, end };
		host.ui->set_waveform(window_samples, samples_waveform, &view);
		return at(window_samples, samples_waveform)->grab().toImage();
	};
	const QImage plain = picture(0, 0);
	EXPECT_NE(plain, picture(500, 1000));
	EXPECT_TRUE(at(window_samples, samples_waveform)
			    ->accessibleName()
			    .contains("loop from 0.011 s to 0.023 s"));
	EXPECT_EQ(plain, picture(500, 1001)) << "behind the end";
	EXPECT_EQ(plain, picture(600, 500)) << "backwards";
}

TEST_F(sample_windows, dropped_files_are_imported_with_the_chosen_options)
{
	open();
	// The options are folded away until they are wanted.
	EXPECT_FALSE(at(window_samples, samples_rate_22000)->isVisible());
	for (auto *fold : at(window_samples, 0)->findChildren<QToolButton *>())
		QTest::mouseClick(fold, Qt::LeftButton);
	QTest::mouseClick(at<QRadioButton>(window_samples, samples_rate_22000), Qt::LeftButton, {},
		QPoint(8, at(window_samples, samples_rate_22000)->height() / 2));
	EXPECT_TRUE(host.ui->checked(window_samples, samples_rate_22000));
	EXPECT_FALSE(host.ui->checked(window_samples, samples_rate_keep));
	EXPECT_TRUE(host.ui->checked(window_samples, samples_bits_keep));

	h.put_content(h.root + "/bell.wav", wave_bytes(44100, 1, std::vector<int>(200, 5)));
	QMimeData data;
	data.setUrls({ QUrl::fromLocalFile(QString::fromStdString(h.root + "/bell.wav")) });
	auto *list = at<entry_list>(window_samples, samples_local_list);
	const QPoint middle = list->viewport()->rect().center();
	QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
	QApplication::sendEvent(list->viewport(), &enter);
	EXPECT_TRUE(enter.isAccepted());
	EXPECT_NE(host.ui->get_text(window_samples, samples_preview_becomes).find("22000 Hz"),
		std::string::npos);
	QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
	QApplication::sendEvent(list->viewport(), &drop);
	QApplication::processEvents();
	EXPECT_EQ(h.boxes.back(), (shown_box{ "1/1 files converted!", "INFO" }));
	EXPECT_EQ(names(samples_local_list), QStringList("bell"));
}

// ---- Entries and places -----------------------------------------------------------------------------

TEST_F(windows, an_entry_is_loaded_edited_and_removed_by_keys)
{
	for (const char *name : { "Attic", "Rack" }) {
		std::vector<u8> bytes(536);
		std::copy_n(name, std::strlen(name), bytes.begin());
		bytes[512] = 1007 & 0xFF;
		bytes[513] = 1007 >> 8;
		h.put_content(h.config + "\\" + name + ".sampler", bytes);
	}
	auto *list = at<entry_list>(window_main, main_sampler_list);
	ASSERT_TRUE(QTest::qWaitForWindowActive(at(window_main, 0)));
	QTest::keyClick(list, Qt::Key_F5);
	ASSERT_EQ(list->count(), 2);
	choose(window_main, main_sampler_list, "Rack");
	QTest::keyClick(list, Qt::Key_Delete);
	EXPECT_EQ(list->count(), 1);
	EXPECT_EQ(list->chosen(), 0);
	EXPECT_EQ(list->place_of("Rack"), -1);
	QTest::keyClick(list, Qt::Key_Z, Qt::ControlModifier);
	ASSERT_EQ(list->count(), 2);
	choose(window_main, main_sampler_list, "Rack");
	QTest::keyClick(list, Qt::Key_F2);
	EXPECT_TRUE(shown(window_sampler));
	EXPECT_EQ(host.ui->get_text(window_sampler, sampler_name), "Rack");
	press(window_sampler, control_cancel);
	QTest::keyClick(list, Qt::Key_Return);
	ASSERT_TRUE(current_sampler);
	EXPECT_STREQ(current_sampler->sampler_description, "Rack");
}

TEST_F(windows, stand_where_they_stood_last_and_never_off_the_screens)
{
	const auto show = [this] {
		auto window =
			std::make_unique<top_window>(5000, control_cancel, at(window_main, 0));
		auto *sides = new QSplitter(window.get());
		sides->addWidget(new QWidget(sides));
		sides->addWidget(new QWidget(sides));
		window->content->addWidget(sides);
		window->open_at({ 200, 200 });
		window->show();
		QApplication::processEvents();
		return window;
	};
	auto window = show();
	window->move(30, 40);
	window->resize(501, 303);
	window->findChild<QSplitter *>()->setSizes({ 100, 365 });
	window->hide();
	EXPECT_EQ(h.settings["window_5000"], "30 40 501 303 0 100 365");
	window = show();
	EXPECT_EQ(QRect(window->pos(), window->size()), QRect(30, 40, 501, 303));
	EXPECT_EQ(window->findChild<QSplitter *>()->sizes(), QList<int>({ 100, 365 }));
	const QRect screen = QGuiApplication::primaryScreen()->geometry();
	for (const char *bad : { "9000 40 501 303 0 100 365", "30 -900 501 303 0", "30", "x", "",
		     "30 40 90000 90000 0 7" }) {
		h.settings["window_5000"] = bad;
		window = show();
		EXPECT_TRUE(screen.contains(window->pos() + QPoint(60, 20))) << bad;
		EXPECT_LE(window->height(), screen.height()) << bad;
	}
	// Room on a small screen.
	for (const int id : { window_main, window_samples, window_programs }) {
		EXPECT_LE(at(id, 0)->minimumSizeHint().width(), 1024 - 16) << id;
		EXPECT_LE(at(id, 0)->minimumSizeHint().height(), 768 - 48) << id;
	}
}

TEST_F(windows, open_beside_the_main_window_where_there_is_room)
{
	const QRect screen(0, 0, 2560, 1440), small(0, 0, 1024, 768);
	EXPECT_EQ(beside({ 100, 80, 992, 620 }, { 900, 700 }, screen), QRect(1092, 80, 900, 700));
	EXPECT_EQ(beside({ 1400, 80, 992, 620 }, { 900, 700 }, screen), QRect(500, 80, 900, 700));
	EXPECT_EQ(beside({ 10, 900, 992, 500 }, { 900, 700 }, screen), QRect(1002, 740, 900, 700));
	EXPECT_EQ(beside({ 10, 10, 992, 620 }, { 500, 600 }, small), QRect(524, 58, 500, 600));
	EXPECT_EQ(beside({ 10, 10, 992, 620 }, { 2000, 2000 }, small).topLeft(), QPoint(0, 0));
}

// The process has ended in a child, where the setting is told to the standard error.
TEST_F(windows, the_end_of_the_program_remembers_them)
{
	settings_service telling = *host.settings;
	telling.save_key = [](const char *key, const char *value) {
		std::fprintf(stderr, "%s = %s\n", key, value);
		return 0;
	};
	host.settings = &telling;
	EXPECT_EXIT(qt_ui.exit_process(0), testing::ExitedWithCode(0), "window_101 = [0-9]+ ");
}
