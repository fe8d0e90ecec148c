// test_ui_player.cpp - the player's window offscreen: few rows for many tracks, strips, drop, bar

#include "src/velmor_midi.h"
#include "tests/support/midi_files.h"
#include "tests/ui_fixture.h"
#include "ui/track_strip_list.h"
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDropEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QSlider>
#include <QUrl>

using namespace velmor;

namespace
{

class player_window : public windows
{
protected:
	// So many tracks, each a note of 8 s on pitch 61 at 1 s, at one tick a unit.
	void load(int tracks)
	{
		const std::vector<u8> track = midi_track(hex("87 68 90 3D 40 BE 40 80 3D 00"));
		std::vector<u8> file = midi_head(tracks, 960);
		for (int i = 0; i < tracks; i++)
			file.insert(file.end(), track.begin(), track.end());
		h.put_content(h.root + "/song.mid", file);
		at<QAction>(window_main, menu_midi_files)->trigger();
		QMimeData data;
		data.setUrls({ QUrl::fromLocalFile(QString::fromStdString(h.root + "/song.mid")) });
		QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
		QApplication::sendEvent(list()->viewport(), &enter);
		QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
		QApplication::sendEvent(list()->viewport(), &drop);
		QApplication::processEvents();
	}
	track_list *list() { return at<track_list>(window_midi_files, player_tracks); }
	template <class kind> kind *in_row(int track, int id)
	{
		for (auto *found : list()->row_of(track)->findChildren<kind *>())
			if (found->property("id").toInt() == id)
				return found;
		throw std::runtime_error("no such control in the row");
	}
	QColor at_place(int track, std::uint64_t tick, int dy = 0)
	{
		track_strip *strip = list()->row_of(track)->strip;
		const double x = track_strip::place_of({ 0, 24000 }, tick, strip->width());
		const QImage image = strip->grab().toImage();
		return image.pixelColor(static_cast<int>(x), image.height() / 2 + dy);
	}
};

} // namespace

TEST_F(player_window, has_rows_for_what_is_in_view_alone)
{
	load(3000);
	ASSERT_EQ(current_midi_file.ntrks, 3000);
	EXPECT_LE(list()->rows_made(), 8);
	EXPECT_EQ(in_row<QCheckBox>(0, 9300)->text(), "Mute");
	QTest::mouseClick(in_row<QCheckBox>(2, 9302), Qt::LeftButton, {}, QPoint(8, 13));
	EXPECT_EQ(current_midi_file.track[2].is_mute, 1);
	auto *channels = in_row<QComboBox>(1, 9351);
	EXPECT_EQ(channels->currentText(), "none");
	QTest::keyClick(channels, Qt::Key_Home);
	EXPECT_EQ(current_midi_file.track[1].forced_channel, 0);
	QScrollBar *bar = list()->verticalScrollBar();
	bar->triggerAction(QAbstractSlider::SliderSingleStepAdd);
	EXPECT_TRUE(h.logged(format_text("[D] SCROLLBAR-POSITION-NOW: 0, REQUESTED: %d, AMOUNT: %d",
		bar->singleStep(), bar->singleStep())));
	bar->setValue(bar->maximum());
	EXPECT_LE(list()->rows_made(), 8);
	ASSERT_TRUE(list()->row_of(2999));
	EXPECT_EQ(list()->row_of(0), nullptr);
	bar->setValue(0);
	EXPECT_TRUE(in_row<QCheckBox>(2, 9302)->isChecked()) << "filled again when it comes back";
	press(window_midi_files, player_unload);
	EXPECT_EQ(list()->rows_made(), 0);
}

TEST_F(player_window, a_strip_shows_past_now_and_to_come)
{
	load(2);
	const QPalette colors = list()->palette();
	const QColor to_come = at_place(0, 3200), empty = at_place(0, 13000);
	EXPECT_EQ(empty, colors.color(QPalette::Base));
	EXPECT_NE(to_come, empty);
	EXPECT_EQ(at_place(0, 500), empty) << "before the note";
	list()->set_position(3200, 1000);
	EXPECT_EQ(at_place(0, 2000), colors.color(QPalette::Link)) << "it sounds";
	EXPECT_EQ(at_place(0, 3200, 40), colors.color(QPalette::Link)) << "the line";
	list()->set_position(12000, 1000);
	EXPECT_NE(at_place(0, 3200), to_come);
	EXPECT_NE(at_place(0, 3200), colors.color(QPalette::Link));
	list()->set_position(32000, 1000); // another span, without the note
	EXPECT_EQ(at_place(0, 3200), empty);
	list()->set_position(-1, 1000);
	EXPECT_EQ(at_place(0, 3200), to_come);
}

TEST_F(player_window, the_number_beside_the_bar_goes_with_it)
{
	load(1);
	auto *form = at(window_midi_files, player_speed_form);
	auto *bar = form->findChild<QSlider *>();
	auto *field = form->findChild<QLineEdit *>();
	ASSERT_TRUE(bar && field);
	bar->setValue(400);
	EXPECT_EQ(field->text(), "400");
	field->setFocus();
	field->selectAll();
	QTest::keyClicks(field, "1801");
	EXPECT_EQ(bar->value(), 400);
	QTest::keyClick(field, Qt::Key_Backspace);
	QTest::keyClicks(field, "0");
	EXPECT_EQ(bar->value(), 1800);
	EXPECT_EQ(speed_factor, 1800);
}
