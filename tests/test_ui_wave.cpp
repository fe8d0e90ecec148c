// test_ui_wave.cpp - the picture of a local sample: zoomed to single values, and its handles dragged

#include "src/velmor_wave_edit.h"
#include "tests/support/fake_model.h"
#include "tests/support/wave_files.h"
#include "tests/ui_fixture.h"
#include "ui/waveform.h"
#include <QToolButton>
#include <QWheelEvent>

namespace velmor
{

namespace
{

// A saw of 100 words: it comes up through zero at 50, 150 and so on.
std::vector<int> saw(int count)
{
	std::vector<int> words;
	for (int i = 0; i < count; i++)
		words.push_back(i % 100 * 300 - 15000);
	return words;
}

bytes looped_file(u32 loop_start, u32 loop_end)
{
	bytes data;
	for (const int value : saw(2000))
		data = data + word(static_cast<u32>(value), 2);
	const bytes smpl =
		bytes(28) + word(1) + bytes(12) + word(loop_start) + word(loop_end) + bytes(8);
	return riff(fmt(mono_16, word(0, 2)) + chunk("fact", word(2000)) + chunk("smpl", smpl) +
		    chunk("data", data));
}

struct wave_windows : windows {
	fake_model model{ h };
	const std::string path = h.config + "\\sample\\A.wav";
	waveform_widget *picture = nullptr;

	void open()
	{
		host.ui->show(window_main, main_samples, true);
		h.put_content(path, looped_file(500, 1500));
		press(window_main, main_samples);
		choose(window_samples, samples_local_list, "A");
		picture = at<waveform_widget>(window_samples, samples_waveform);
		at(window_samples, 0)->activateWindow();
		QApplication::processEvents();
	}
	QPoint place(double word, bool above)
	{
		return { static_cast<int>(std::lround(picture->place_of(word))),
			above ? 30 : picture->height() - 30 };
	}
	void drag(double from, double to, bool above, Qt::KeyboardModifiers keys = {})
	{
		QTest::mousePress(picture, Qt::LeftButton, keys, place(from, above));
		QMouseEvent move(QEvent::MouseMove, QPointF(place(to, above)),
			picture->mapToGlobal(QPointF(place(to, above))), Qt::NoButton,
			Qt::LeftButton, keys);
		QApplication::sendEvent(picture, &move);
		QTest::mouseRelease(picture, Qt::LeftButton, keys, place(to, above));
	}
	void turn(int notches, double about)
	{
		const QPointF at = place(about, true);
		QWheelEvent wheel(at, picture->mapToGlobal(at), {}, { 0, notches * 120 },
			Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
		QApplication::sendEvent(picture, &wheel);
	}
	bytes file() { return h.content(path).value_or(bytes{}); }
};

TEST_F(wave_windows, the_wheel_goes_down_to_single_values_at_the_mouse_and_back)
{
	open();
	const QImage whole = picture->grab().toImage();
	for (int i = 0; i < 30; i++)
		turn(1, 700);
	EXPECT_DOUBLE_EQ(picture->count_shown(), 16);
	EXPECT_NEAR(picture->middle(), 700, 12) << "the word at the mouse stays there";
	EXPECT_NE(picture->grab().toImage(), whole);
	QTest::keyClick(picture, Qt::Key_End);
	EXPECT_DOUBLE_EQ(picture->first_shown(), 1984);
	for (int i = 0; i < 30; i++)
		turn(-1, 1990);
	EXPECT_DOUBLE_EQ(picture->first_shown(), 0);
	EXPECT_DOUBLE_EQ(picture->count_shown(), 2000);
	EXPECT_EQ(picture->grab().toImage(), whole);
}

TEST_F(wave_windows, a_handle_of_the_loop_stops_at_a_zero_crossing_and_is_undone)
{
	open();
	for (int i = 0; i < 3; i++)
		turn(1, 500);
	const double shown = picture->count_shown();
	drag(500, 652, true);
	EXPECT_EQ(file(), looped_file(650, 1500));
	EXPECT_DOUBLE_EQ(picture->count_shown(), shown) << "the part in view stays";
	drag(650, 633, true, Qt::AltModifier);
	EXPECT_NEAR(static_cast<double>(picture->word_of(waveform_widget::loop_begin)), 633, 3);
	EXPECT_EQ(file(),
		looped_file(static_cast<u32>(picture->word_of(waveform_widget::loop_begin)), 1500));
	picture->setFocus();
	QTest::keyClick(picture, Qt::Key_Z, Qt::ControlModifier);
	QTest::keyClick(picture, Qt::Key_Z, Qt::ControlModifier);
	EXPECT_EQ(file(), looped_file(500, 1500));
	EXPECT_EQ(picture->word_of(waveform_widget::loop_begin), 500u);
	// No further than the other end, and not below it while other work runs.
	QTest::keyClick(picture, Qt::Key_0);
	EXPECT_TRUE(run_through_gate([&] { drag(1500, 1000, true); }));
	EXPECT_EQ(picture->word_of(waveform_widget::loop_finish), 1500u);
	EXPECT_EQ(file(), looped_file(500, 1500));
}

TEST_F(wave_windows, start_and_end_are_dragged_and_cut)
{
	open();
	drag(0, 348, false);
	EXPECT_EQ(picture->word_of(waveform_widget::mark_start), 350u);
	drag(2000, 1052, false);
	EXPECT_TRUE(picture->accessibleName().contains("start at 0.008 s, end at 0.024 s"))
		<< picture->accessibleName().toStdString();
	EXPECT_EQ(file(), looped_file(500, 1500));
	QTest::mouseClick(at<QToolButton>(window_samples, wave_trim), Qt::LeftButton);
	EXPECT_EQ(picture->length(), 700u);
	EXPECT_EQ(picture->word_of(waveform_widget::loop_finish), 700u);
	EXPECT_EQ(picture->word_of(waveform_widget::mark_start), 0u);
	press(window_samples, status_undo);
	EXPECT_EQ(file(), looped_file(500, 1500));
}

TEST_F(wave_windows, keys_choose_a_handle_and_move_it_and_the_file_follows_once)
{
	open();
	picture->setFocus();
	QTest::keyClick(picture, Qt::Key_Down);
	EXPECT_TRUE(picture->accessibleName().contains("beginning of the loop chosen"));
	for (int i = 0; i < 3; i++)
		QTest::keyClick(picture, Qt::Key_Right);
	EXPECT_EQ(picture->word_of(waveform_widget::loop_begin), 503u);
	EXPECT_EQ(file(), looped_file(500, 1500));
	QTest::keyClick(picture, Qt::Key_Down); // another handle: this movement is over
	EXPECT_EQ(file(), looped_file(503, 1500));
	press(window_samples, status_undo);
	EXPECT_EQ(file(), looped_file(500, 1500));
	EXPECT_FALSE(can_undo());
}

} // namespace

} // namespace velmor
