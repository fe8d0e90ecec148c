// test_ui_wave.cpp - the picture of a local sample: zoomed to single values, and its handles moved

#include "platform/backends.h"
#include "src/velmor_wave_edit.h"
#include "tests/support/fake_model.h"
#include "tests/ui_fixture.h"
#include "ui/waveform.h"
#include <QToolButton>
#include <QWheelEvent>

namespace velmor
{

namespace
{

// A saw of 100 words: it comes up through zero at 50, 150 and so on.
std::vector<u8> looped(u64 start, u64 end = 1500)
{
	std::vector<int> words;
	for (int i = 0; i < 2000; i++)
		words.push_back(i % 100 * 300 - 15000);
	return wave_bytes(44100, 1, words, static_cast<u32>(start), static_cast<u32>(end));
}

struct wave_windows : windows {
	fake_model model{ h };
	const std::string path = h.config + "\\sample\\A.wav";
	waveform_widget *picture = nullptr;

	void open()
	{
		host.ui->show(window_main, main_samples, true);
		h.put_content(path, looped(500));
		press(window_main, main_samples);
		choose(window_samples, samples_local_list, "A");
		picture = at<waveform_widget>(window_samples, samples_waveform);
		EXPECT_TRUE(QTest::qWaitFor([this] {
			at(window_samples, 0)->activateWindow();
			picture->setFocus();
			return picture->hasFocus();
		}));
	}
	QPoint place(double word, bool above)
	{
		return { static_cast<int>(std::lround(picture->place_of(word))),
			above ? 30 : picture->height() - 30 };
	}
	void drag(double from, double to, bool above, Qt::KeyboardModifiers keys = {})
	{
		const QPointF there = place(to, above);
		QTest::mousePress(picture, Qt::LeftButton, keys, place(from, above));
		QMouseEvent move(QEvent::MouseMove, there, picture->mapToGlobal(there),
			Qt::NoButton, Qt::LeftButton, keys);
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
	u64 word_of(waveform_widget::handle which) { return picture->word_of(which); }
	std::vector<u8> file() { return h.content(path).value_or(std::vector<u8>{}); }
};

using handle = waveform_widget;

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
	EXPECT_EQ(file(), looped(650));
	EXPECT_DOUBLE_EQ(picture->count_shown(), shown) << "the part in view stays";
	drag(650, 658, true, Qt::AltModifier);
	EXPECT_NEAR(static_cast<double>(word_of(handle::loop_begin)), 658, 3);
	EXPECT_EQ(file(), looped(word_of(handle::loop_begin)));
	QTest::keyClick(picture, Qt::Key_Z, Qt::ControlModifier);
	QTest::keyClick(picture, Qt::Key_Z, Qt::ControlModifier);
	EXPECT_EQ(file(), looped(500));
	EXPECT_EQ(word_of(handle::loop_begin), 500u);
	// While other work runs it goes back.
	QTest::keyClick(picture, Qt::Key_0);
	EXPECT_TRUE(run_through_gate([&] { drag(1500, 1000, true); }));
	EXPECT_EQ(word_of(handle::loop_finish), 1500u);
	EXPECT_EQ(file(), looped(500));
	// By keys the file follows when another handle is chosen.
	QTest::keyClick(picture, Qt::Key_Up);
	EXPECT_TRUE(picture->accessibleName().contains("beginning of the loop chosen"));
	for (int i = 0; i < 3; i++)
		QTest::keyClick(picture, Qt::Key_Right);
	EXPECT_EQ(word_of(handle::loop_begin), 503u);
	EXPECT_EQ(file(), looped(500));
	QTest::keyClick(picture, Qt::Key_Down);
	EXPECT_EQ(file(), looped(503));
	press(window_samples, status_undo);
	EXPECT_EQ(file(), looped(500));
	EXPECT_FALSE(can_undo());
}

TEST_F(wave_windows, start_and_end_are_dragged_and_cut)
{
	open();
	drag(0, 348, false);
	EXPECT_EQ(word_of(handle::mark_start), 350u);
	drag(2000, 1052, false);
	EXPECT_TRUE(picture->accessibleName().contains("start at 0.008 s, end at 0.024 s"));
	EXPECT_EQ(file(), looped(500));
	QTest::mouseClick(at<QToolButton>(window_samples, wave_trim), Qt::LeftButton);
	EXPECT_EQ(picture->length(), 700u);
	EXPECT_EQ(word_of(handle::loop_finish), 700u);
	EXPECT_EQ(word_of(handle::mark_start), 0u);
	press(window_samples, status_undo);
	EXPECT_EQ(file(), looped(500));
}

std::int64_t heard_now;
constexpr audio_service quiet_loudspeaker = {
	.play = [](const played_sound &) { return std::string(); },
	.stop = [] {},
	.position = [] { return heard_now; },
};

TEST_F(wave_windows, space_plays_and_a_line_moves_through_the_picture)
{
	open();
	host.audio = &quiet_loudspeaker;
	auto *play = at<QToolButton>(window_samples, samples_play);
	const auto line_at = [this](std::int64_t word) {
		heard_now = word;
		EXPECT_TRUE(QTest::qWaitFor([&] { return picture->played_word() == word; }));
		return picture->grab().toImage();
	};
	const QImage before = picture->grab().toImage();
	QTest::keyClick(picture, Qt::Key_Space);
	EXPECT_TRUE(play->isChecked() && is_playing());
	const QImage early = line_at(100), late = line_at(1900);
	EXPECT_NE(early, before);
	EXPECT_NE(early, late);
	EXPECT_EQ(line_at(100), early) << "it leaves nothing behind";
	QTest::keyClick(at(window_samples, samples_local_list), Qt::Key_Space);
	EXPECT_FALSE(play->isChecked() || is_playing());
	EXPECT_EQ(picture->grab().toImage(), before);
	// A part in view that the line leaves follows it.
	for (int i = 0; i < 5; i++)
		turn(1, 100);
	QTest::mouseClick(play, Qt::LeftButton);
	line_at(static_cast<std::int64_t>(picture->first_shown()) + 1);
	line_at(1200);
	EXPECT_DOUBLE_EQ(picture->first_shown(), 1200);
	host.ui->show(window_samples, 0, false);
	EXPECT_FALSE(is_playing());
}

#ifdef VELMOR_AUDIO
// The real thing, with no sound server to be found.
TEST_F(wave_windows, a_computer_without_sound_says_so_once)
{
	setenv("PULSE_SERVER", "unix:/nonexistent/pulse", 1);
	open();
	host.audio = &qt_audio;
	h.boxes.clear();
	auto *play = at<QToolButton>(window_samples, samples_play);
	for (int i = 0; i < 2; i++)
		QTest::keyClick(picture, Qt::Key_Space);
	const std::string sentence = "This computer has no sound output that is switched on.";
	EXPECT_EQ(h.boxes, (std::vector<shown_box>{ { sentence, "INFO" } }));
	EXPECT_FALSE(play->isEnabled() || play->isChecked());
	EXPECT_EQ(play->toolTip().toStdString(), sentence);
	EXPECT_EQ(qt_audio.position(), -1);
	qt_audio.stop();
}
#endif

} // namespace

} // namespace velmor
