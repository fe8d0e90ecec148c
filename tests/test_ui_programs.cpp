// test_ui_programs.cpp - the key map, the envelope curves, the forms' steps and the program page,
// driven by mouse and keys

#include "tests/ui_fixture.h"
#include "ui/envelope_view.h"
#include "ui/key_map.h"
#include "ui/parts/form_view.h"
#include "ui/parts/parts.h"
#include "ui/parts/window.h"
#include "virtual/midi_ports.h"
#include "virtual/s1000.h"
#include <QAccessible>
#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QSlider>
#include <QTabBar>
#include <QWheelEvent>
#include <set>

using namespace velmor;

namespace
{

constexpr int test_window = 5000, test_map = 5001, test_curve = 5002, test_form = 5003;

using lines = std::vector<std::string>;
using bytes = machine::bytes;
lines taken;           // what the system was told, in order
key_map_view map_view; // as the system holds it
envelope_view curved;  // likewise

// The system takes an edge where the mouse has it, and shows it there.
void take_map(key_map_event event, int group, int zone, int value, int amount)
{
	static constexpr const char *words[] = { "choose", "low note", "high note", "low velocity",
		"high velocity", "end", "on", "off" };
	taken.push_back(format_text(
		"%s %d %d %d %d", words[static_cast<int>(event)], group, zone, value, amount));
	if (event == key_map_event::choose) {
		map_view.group = group;
		map_view.zone = zone;
	} else if (event == key_map_event::high_note) {
		map_view.groups[static_cast<std::size_t>(group)].high_note = value;
	}
	host.ui->set_key_map(test_window, test_map, &map_view);
}

void take_curve(envelope_event event, int index, int value)
{
	taken.push_back(format_text(
		"%s %d %d", event == envelope_event::drag ? "drag" : "end", index, value));
	curved.values[static_cast<std::size_t>(index)] = value;
	host.ui->set_envelope(test_window, test_curve, &curved);
}

void take_form(int row, form_event event, int value)
{
	static constexpr const char *words[] = { "drag", "end", "edit", "choice", "back" };
	taken.push_back(format_text("%d %s %d", row, words[static_cast<int>(event)], value));
}

constexpr input_row rows_taken[] = {
	{ test_window, test_map, nullptr, nullptr, nullptr, take_map, nullptr },
	{ test_window, test_curve, nullptr, nullptr, nullptr, nullptr, take_curve },
	{ test_window, test_form, nullptr, nullptr, take_form },
};

// Four keygroups of an octave from C1 on, each with three velocities; the chosen one lacks a
// sample.
key_map_view four_groups()
{
	key_map_view view = { {}, 1, 1, -1, 0, true };
	for (int i = 0; i < 4; i++) {
		const std::string name = format_text("GRAND C%d ", i + 1);
		view.groups.push_back({ 36 + 12 * i, 47 + 12 * i,
			{ { 0, 39, name + "P", false }, { 40, 87, name + "M", false },
				{ 88, 127, name + "F", i == 1 } } });
	}
	return view;
}

class pictures : public windows
{
protected:
	pictures() : rows_before(input_rows)
	{
		taken.clear();
		input_rows = rows_taken;
		window = new top_window(test_window, control_cancel, at(window_main, 0));
		map = new key_map(test_window, test_map, "No program chosen", window);
		enroll(test_window, test_map, map);
		curve = new envelope_curve(test_window, test_curve, "Nothing", window);
		enroll(test_window, test_curve, curve);
		form = new form_view(window, test_form);
		for (QWidget *widget : std::initializer_list<QWidget *>{ map, curve, form })
			window->content->addWidget(widget);
		window->finish(false);
		window->resize(960, 800);
		window->show();
		map_view = four_groups();
		host.ui->set_key_map(test_window, test_map, &map_view);
		curved = { envelope_shape::adsr, { 50, 50, 50, 50 }, { 50, 60, 50, 50 }, 0, 100,
			{ "Attack", "Decay", "Sustain", "Release" } };
		host.ui->set_envelope(test_window, test_curve, &curved);
		map->grab();
	}
	~pictures() override { input_rows = rows_before; }
	lines told() { return std::exchange(taken, {}); }
	void drag(QWidget *widget, const QPointF &from, const QPointF &to)
	{
		QTest::mousePress(widget, Qt::LeftButton, {}, from.toPoint());
		move(widget, to);
		QTest::mouseRelease(widget, Qt::LeftButton, {}, to.toPoint());
	}
	void move(QWidget *widget, const QPointF &to)
	{
		QMouseEvent event(QEvent::MouseMove, to, widget->mapToGlobal(to), Qt::NoButton,
			Qt::LeftButton, {});
		QApplication::sendEvent(widget, &event);
	}
	void press_at(const QPointF &at)
	{
		QTest::mouseClick(map, Qt::LeftButton, {}, at.toPoint());
	}

	std::span<const input_row> rows_before;
	top_window *window;
	key_map *map;
	envelope_curve *curve;
	form_view *form;
};

} // namespace

// ---- Key map ----------------------------------------------------------------------------------

TEST_F(pictures, a_click_chooses_and_edges_of_what_is_chosen_are_dragged)
{
	press_at(map->zone_band(2, 0).center());
	press_at(map->group_bar(3).center());
	EXPECT_EQ(told(), (lines{ "choose 2 0 0 0", "choose 3 -1 0 0" }));
	map_view.group = map_view.zone = 1;
	map->show_view(&map_view);
	const QRectF bar = map->group_bar(1), band = map->zone_band(1, 1);
	const double key = bar.width() / 12;
	drag(map, { bar.right() - 1, bar.center().y() },
		{ bar.right() - 2.5 * key, bar.center().y() });
	EXPECT_EQ(told(), (lines{ "high note 1 -1 57 0", "end 1 1 57 0" }));
	drag(map, { bar.left() + 1, bar.center().y() },
		{ bar.left() - 1.5 * key, bar.center().y() });
	EXPECT_EQ(told(), (lines{ "low note 1 -1 46 0", "end 1 1 46 0" }));
	// No edge goes past the other one, nor off the keyboard.
	drag(map, { bar.left() + 1, bar.center().y() }, { map->width() - 1.0, bar.center().y() });
	EXPECT_EQ(told(), (lines{ "low note 1 -1 57 0", "end 1 1 57 0" }));
	const double step = band.height() / 48;
	drag(map, { band.center().x() - key * 2, band.top() + 1 },
		{ band.center().x() - key * 2, band.top() + 10.5 * step });
	EXPECT_EQ(told(), (lines{ "high velocity 1 1 77 0", "end 1 1 77 0" }));
}

TEST_F(pictures, a_key_sounds_by_its_height_until_whatever_ends_it)
{
	const auto press_key = [this](int note, int velocity) {
		QTest::mousePress(map, Qt::LeftButton, {}, map->on_key(note, velocity).toPoint());
	};
	press_key(60, 120);
	move(map, map->on_key(61, 30)); // a black key
	ASSERT_EQ(taken.size(), 2u);
	EXPECT_NEAR(std::stoi(taken[0].substr(10)), 120, 3) << taken[0];
	EXPECT_NEAR(std::stoi(taken[1].substr(10)), 30, 3) << taken[1];
	EXPECT_EQ(taken[0].substr(0, 9), "on 1 1 60");
	EXPECT_EQ(taken[1].substr(0, 9), "on 1 1 61");
	EXPECT_EQ(map->sounding(), 61);
	move(map, { -20, -20 });
	EXPECT_EQ(map->sounding(), -1);
	press_key(60, 60);
	QTest::mouseRelease(map, Qt::LeftButton, {}, { 1, 1 });
	EXPECT_EQ(map->sounding(), -1);
	press_key(127, 60);
	EXPECT_EQ(map->sounding(), 127);
	map->hide();
	EXPECT_EQ(map->sounding(), -1);
	map->show();
	press_key(0, 60);
	QEvent gone(QEvent::WindowDeactivate);
	QApplication::sendEvent(map, &gone);
	EXPECT_EQ(map->sounding(), -1);
	press_key(60, 60);
	map->setEnabled(false); // work began
	EXPECT_EQ(map->sounding(), -1);
	map->setEnabled(true);
	told();
	run_through_gate([&] { press_key(60, 60); });
	EXPECT_EQ(map->sounding(), -1); // refused, so there is nothing to end
	map_view.takes_notes = false;
	map->show_view(&map_view);
	press_key(60, 60);
	EXPECT_EQ(told(), lines{});
}

TEST_F(pictures, computer_keys_choose_move_edges_and_play)
{
	map->setFocus();
	QTest::keyClick(map, Qt::Key_Right);
	QTest::keyClick(map, Qt::Key_Up);
	QTest::keyClick(map, Qt::Key_Right, Qt::ShiftModifier);
	QTest::keyClick(map, Qt::Key_Left, Qt::ControlModifier);
	QTest::keyClick(map, Qt::Key_Space);
	EXPECT_EQ(told(),
		(lines{ "choose 2 -1 0 0", "choose 2 0 0 0", "high note 2 -1 72 0", "end 2 0 72 0",
			"low note 2 -1 59 0", "end 2 0 60 0", "on 2 0 66 100" }));
	EXPECT_EQ(map->sounding(), -1);
	EXPECT_EQ(map->accessibleName().toStdString(),
		"Key map: Keygroup 3, C3 to C4, Keyzone 1: GRAND C3 P, velocity 0 to 39");
}

// Ninety-nine keygroups are painted once, however far the edge of one is dragged.
TEST_F(pictures, dragging_an_edge_leaves_the_picture_of_the_others)
{
	map_view.groups.clear();
	for (int i = 0; i < 99; i++)
		map_view.groups.push_back(
			{ i, i, { { 0, 127, format_text("KIT %d", i), false } } });
	map_view.group = 98;
	map->show_view(&map_view);
	const QImage first = map->grab().toImage();
	const int before = map->times_painted_whole();
	for (int i = 0; i < 20; i++) {
		map_view.groups[98].high_note = 99 + i;
		map->show_view(&map_view);
		EXPECT_NE(map->grab().toImage(), first);
	}
	EXPECT_EQ(map->times_painted_whole(), before);
	map_view.group = 41;
	map->show_view(&map_view);
	map->grab();
	EXPECT_EQ(map->times_painted_whole(), before + 1);
	// Numbers that no keyboard has do no harm.
	map_view.groups[41] = { -5, 900, { { -1, 400, "X", true } } };
	map->show_view(&map_view);
	map->grab();
	map->show_view(nullptr);
	map->grab();
	EXPECT_EQ(map->accessibleName(), "Key map: No program chosen");
}

// ---- Envelopes --------------------------------------------------------------------------------

TEST_F(pictures, a_point_of_a_curve_moves_the_value_whose_way_the_mouse_goes)
{
	const double quarter = (curve->width() - 28) / 4.0;
	drag(curve, curve->point_at(0), curve->point_at(0) + QPointF(quarter / 5, 2));
	EXPECT_EQ(told(), (lines{ "drag 0 70", "end 0 70" }));
	drag(curve, curve->point_at(1), curve->point_at(1) + QPointF(1, 400));
	EXPECT_EQ(told(), (lines{ "drag 2 0", "end 2 0" })); // not below the lowest
	drag(curve, curve->point_at(3), curve->point_at(3) + QPointF(-quarter / 4, 0));
	EXPECT_EQ(told(), (lines{ "drag 3 25", "end 3 25" }));
	curve->setFocus();
	QTest::keyClick(curve, Qt::Key_Up, Qt::ShiftModifier);
	QTest::keyClick(curve, Qt::Key_Left);
	QTest::keyClick(curve, Qt::Key_Up);
	EXPECT_EQ(told(), (lines{ "drag 3 35", "end 3 35", "drag 2 1", "end 2 1" }));
	curve->grab();
	EXPECT_EQ(curve->accessibleName().toStdString(),
		": Attack 70, Decay 50, Sustain 1, Release 35");
}

// ---- Forms and the page -----------------------------------------------------------------------

TEST_F(pictures, rows_of_a_form_step_by_keys_and_wheel_and_are_put_back)
{
	form_row row = {};
	row.kind = row_kind::slider;
	row.label = "Cutoff";
	row.high = 100;
	row.value = 50;
	host.ui->build_form(test_window, test_form, { &row, 1 });
	auto *bar = form->findChild<QSlider *>();
	auto *field = form->findChild<QLineEdit *>();
	QTest::keyClick(bar, Qt::Key_Right);
	QTest::keyClick(bar, Qt::Key_Left, Qt::ShiftModifier);
	QTest::keyClick(field, Qt::Key_Up);
	EXPECT_EQ(told(), (lines{ "0 end 51", "0 end 41", "0 end 42" }));
	const auto turn = [bar](Qt::KeyboardModifiers keys) {
		QWheelEvent event({ 5, 5 }, bar->mapToGlobal(QPointF(5, 5)), {}, { 0, 120 }, {},
			keys, Qt::NoScrollPhase, false);
		QApplication::sendEvent(bar, &event);
	};
	ASSERT_TRUE(QTest::qWaitForWindowActive(window));
	map->setFocus();
	turn({});
	EXPECT_EQ(told(), lines{}); // the form is being scrolled
	bar->setFocus();
	turn({});
	turn(Qt::ShiftModifier);
	EXPECT_EQ(told(), (lines{ "0 end 43", "0 end 53" }));
	for (QLabel *label : form->findChildren<QLabel *>())
		if (label->text() == "Cutoff")
			QTest::mouseDClick(label, Qt::LeftButton);
	EXPECT_EQ(told(), (lines{ "0 back 0" }));
}

// The page with an S3000 behind it: three programs, the second of them with a sample that the
// machine lacks.
class program_page : public windows
{
protected:
	program_page()
	{
		for (const char *name : { "FIRST", "SECOND", "THIRD" })
			machine.add_program(name, 2);
		for (std::size_t k = 0; k < 2; k++) {
			bytes &block = machine.programs[1].keygroups[k];
			block[3] = static_cast<u8>(30 + 30 * k);
			block[4] = static_cast<u8>(50 + 30 * k);
			machine::put_name(block, 34, k ? "LOST" : "KICK");
		}
		machine.add_sample("KICK", 44100, std::vector<std::int16_t>(64, 500));
		h.use_sampler(model_s3000, 5);
		host.midi = &virtual_midi;
		plug_midi(h.time, machine, "virtual");
		reload_midi_setup(false);
		selected_midi_in_interface = selected_midi_out_interface = 0;
		velmor_command(window_main, main_programs);
		loaded = at(window_programs, programs_loaded_list);
		choose(window_programs, programs_loaded_list, "SECOND");
		in_the_list();
	}
	~program_page() override
	{
		close_midi_output();
		unplug_all_midi();
	}
	// The progress of some work was in front, and other windows may still be told so.
	void in_the_list()
	{
		EXPECT_TRUE(QTest::qWaitFor([this] {
			at(window_programs, 0)->activateWindow();
			loaded->setFocus();
			return focused() == loaded;
		}));
	}
	int low_note() const { return current_sampler->status->program[1].keygroup[0].low_note; }
	static QWidget *focused() { return QApplication::focusWidget(); }

	s1000_machine machine{ s1000_model::s3000, 5 };
	QWidget *loaded;
};

TEST_F(program_page, keys_do_their_work_and_none_of_it_while_a_name_is_typed)
{
	const int before = low_note();
	velmor_key_map(window_programs, programs_key_map, key_map_event::low_note, 0, -1, 5, 0);
	QTest::keyClick(loaded, Qt::Key_F2);
	auto *name = at<QLineEdit>(window_programs, programs_loaded_new_name);
	ASSERT_EQ(focused(), name);
	EXPECT_EQ(name->text(), "SECOND") << "without what the list says beside it";
	QTest::keyClicks(name, "NEW X");
	QTest::keyClick(name, Qt::Key_Left);
	QTest::keyClick(name, Qt::Key_Delete);
	QTest::keyClick(name, Qt::Key_F2);
	EXPECT_EQ(name->text(), "NEW ");
	EXPECT_EQ(machine.programs.size(), 3u);
	QTest::keyClick(name, Qt::Key_Z, Qt::ControlModifier);
	EXPECT_EQ(low_note(), 5) << "the typing is taken back, not the edit";
	name->setText("NEW");
	QTest::keyClick(name, Qt::Key_Return);
	EXPECT_EQ(machine::get_name(machine.programs[1].common, 3), "NEW");
	EXPECT_EQ(low_note(), 5);

	in_the_list();
	QTest::keyClick(loaded, Qt::Key_Z, Qt::ControlModifier);
	EXPECT_EQ(low_note(), before);
	QTest::keyClick(loaded, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
	EXPECT_EQ(low_note(), 5);
	QTest::keyClick(loaded, Qt::Key_Z, Qt::ControlModifier);
	machine::put_name(machine.programs[2].common, 3, "OTHER");
	QTest::keyClick(at(window_programs, programs_tabs), Qt::Key_F5);
	EXPECT_GE(at<entry_list>(window_programs, programs_loaded_list)->place_of("OTHER"), 0);
	in_the_list();
	QTest::keyClick(loaded, Qt::Key_F, Qt::ControlModifier);
	EXPECT_EQ(focused(), at(window_programs, programs_loaded_search));
	QTest::keyClick(focused(), Qt::Key_Delete);
	at(window_programs, programs_local_list)->setFocus();
	QTest::keyClick(focused(), Qt::Key_F, Qt::ControlModifier);
	EXPECT_EQ(focused(), at(window_programs, programs_local_search));
	EXPECT_EQ(machine.programs.size(), 3u);

	choose(window_programs, programs_loaded_list, "FIRST");
	in_the_list();
	QTest::keyClick(loaded, Qt::Key_Delete);
	EXPECT_EQ(machine.programs.size(), 2u);
	EXPECT_EQ(machine::get_name(machine.programs[0].common, 3), "NEW");
	in_the_list();
	at<QTabBar>(window_programs, programs_tabs)->setCurrentIndex(0);
	QTest::keyClick(loaded, Qt::Key_Down);
	velmor_key_map(window_programs, programs_key_map, key_map_event::choose, 1, 0, 0, 0);
	EXPECT_EQ(current_keygroup_index, 1);
	QTest::keyClick(loaded, Qt::Key_Return);
	EXPECT_EQ(current_keygroup_index, 0) << "the program is shown from its beginning";
	EXPECT_EQ(host.ui->get_text(window_programs, programs_title),
		"Program Settings for 'OTHER' [Sampler: 'test sampler', Make: 'Akai "
		"S3000/S3000XL']");
	EXPECT_TRUE(h.boxes.empty()) << h.boxes[0].text;
}

TEST_F(program_page, the_menu_of_a_missing_sample_offers_to_find_it)
{
	auto *map = static_cast<key_map *>(at(window_programs, programs_key_map));
	auto *find = at<QAction>(window_programs, programs_find_sample);
	const auto menu_at = [&](QWidget *widget, const QPoint &place) {
		QContextMenuEvent event(
			QContextMenuEvent::Mouse, place, widget->mapToGlobal(place));
		QApplication::sendEvent(widget, &event);
		auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
		if (menu)
			menu->hide();
		return menu && menu->actions().contains(find) && find->isEnabled();
	};
	const auto band = [&](int group) { return map->zone_band(group, 0).center().toPoint(); };
	EXPECT_FALSE(menu_at(map, band(0)));
	EXPECT_TRUE(menu_at(map, band(1)));
	EXPECT_EQ(current_keygroup_index, 1);
	at<QTabBar>(window_programs, programs_tabs)->setCurrentIndex(2);
	auto *sample = at<QComboBox>(window_programs, programs_zone_sample);
	EXPECT_EQ(sample->currentText(), "LOST (not loaded)");
	EXPECT_TRUE(menu_at(sample, { 4, 4 }));
	find->trigger();
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0].text.rfind("The spool holds no file called 'LOST'.", 0), 0u);
}
