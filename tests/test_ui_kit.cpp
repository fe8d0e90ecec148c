// test_ui_kit.cpp - what the windows are made of: colours, lists and their states, forms, pictures

#include "tests/ui_fixture.h"
#include "ui/parts/form_view.h"
#include "ui/parts/palette.h"
#include "ui/parts/parts.h"
#include "ui/parts/pixel_picture.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include <QBoxLayout>
#include <QComboBox>
#include <QImage>
#include <QRadioButton>
#include <QSlider>
#include <QToolButton>
#include <set>

using namespace velmor;

namespace
{

constexpr int test_window = 5000, test_form = 5001, test_picture = 5002;

std::vector<std::string> taken; // what the system was told, in order

void take_form(int row, form_event event, int value)
{
	static constexpr const char *words[] = { "drag", "end", "edit", "choice" };
	taken.push_back(format_text("%d %s %d", row, words[static_cast<int>(event)], value));
}

void take_key(int key, std::string_view text, bool pressed)
{
	taken.push_back(format_text("%d '%.*s' %s", key, static_cast<int>(text.size()), text.data(),
		pressed ? "down" : "up"));
}

void take_mouse(int x, int y, mouse_action action, int amount)
{
	static constexpr const char *words[] = { "down", "up", "wheel" };
	taken.push_back(format_text("%d,%d %s %d", x, y, words[static_cast<int>(action)], amount));
}

constexpr input_row rows_taken[] = {
	{ test_window, test_form, nullptr, nullptr, take_form },
	{ test_window, test_picture, take_key, take_mouse, nullptr },
};

// A window of the test's own, with a form and a picture.
class kit : public windows
{
protected:
	kit()
	{
		taken.clear();
		input_rows = rows_taken;
		auto *window = new top_window(test_window, control_cancel, at(window_main, 0));
		form = new form_view(window, test_form);
		picture = make_picture(window, test_picture);
		window->content->addWidget(form);
		window->content->addWidget(picture);
		window->finish(false);
		window->resize(640, 900);
		window->show();
	}
	~kit() override { input_rows = {}; }
	std::vector<std::string> told()
	{
		std::vector<std::string> all;
		all.swap(taken);
		return all;
	}
	void build(const std::vector<form_row> &rows)
	{
		host.ui->build_form(test_window, test_form, rows);
	}
	form_view *form;
	pixel_picture *picture;
};

form_row slider(int id, int field_id, const char *label, int low, int high, int value)
{
	form_row row = {};
	row.kind = row_kind::slider;
	row.id = id;
	row.field_id = field_id;
	row.label = label;
	row.low = low;
	row.high = high;
	row.value = value;
	return row;
}

form_row chosen(row_kind kind, int id, const char *label, std::vector<std::string> items, int value)
{
	form_row row = {};
	row.kind = kind;
	row.id = id;
	row.label = label;
	row.items = std::move(items);
	row.value = value;
	return row;
}

form_row words(row_kind kind, const char *label, const char *text = "")
{
	form_row row = {};
	row.kind = kind;
	row.label = label;
	row.text = text;
	return row;
}

template <class kind> std::vector<kind *> by_id(QWidget *in, int id)
{
	std::vector<kind *> found;
	for (kind *widget : in->findChildren<kind *>())
		if (widget->property("id").toInt() == id)
			found.push_back(widget);
	return found;
}

using lines = std::vector<std::string>;

} // namespace

// ---- Colours ----------------------------------------------------------------------------------

TEST(colours, text_and_marks_stand_out_in_light_and_dark)
{
	using P = QPalette;
	struct pair {
		P::ColorRole front, back;
		double least;
	};
	static constexpr pair pairs[] = {
		{ P::WindowText, P::Window, 4.5 },
		{ P::Text, P::Base, 4.5 },
		{ P::Text, P::AlternateBase, 4.5 },
		{ P::ButtonText, P::Button, 4.5 },
		{ P::PlaceholderText, P::Window, 4.5 },
		{ P::PlaceholderText, P::Base, 4.5 },
		{ P::PlaceholderText, P::AlternateBase, 4.5 },
		{ P::HighlightedText, P::Highlight, 4.5 },
		{ P::Link, P::Window, 4.5 },
		{ P::Link, P::Base, 4.5 },
		{ P::ToolTipText, P::ToolTipBase, 4.5 },
		{ P::Dark, P::Window, 3 },
		{ P::Dark, P::Base, 3 },
		{ P::Dark, P::Button, 3 },
		{ P::Highlight, P::Base, 3 },
	};
	for (const bool dark : { false, true }) {
		const QPalette palette = role_palette(dark);
		EXPECT_EQ(is_dark(palette), dark);
		for (const pair &p : pairs)
			EXPECT_GE(contrast(palette.color(p.front), palette.color(p.back)), p.least)
				<< p.front << " on " << p.back << (dark ? " dark" : " light");
		for (const text_role role : { text_role::plain, text_role::quiet, text_role::good,
			     text_role::careful, text_role::failed })
			for (const P::ColorRole back : { P::Window, P::Base })
				EXPECT_GE(contrast(role_color(palette, role), palette.color(back)),
					4.5)
					<< static_cast<int>(role) << " on " << back;
	}
	EXPECT_NEAR(contrast(Qt::black, Qt::white), 21, 0.01);
	EXPECT_NEAR(contrast(QColor(0x77, 0x77, 0x77), Qt::white), 4.48, 0.01);
}

// ---- Lists, reasons, roles, focus -------------------------------------------------------------

TEST_F(kit, a_list_shows_columns_and_takes_its_entries_away_when_it_cannot_know_them)
{
	const std::vector<std::vector<std::string>> rows = { { "KICK", "1.84 s", "44100 Hz" },
		{ "SNARE", "0.61 s", "32000 Hz" } };
	host.ui->show(window_samples, 0, true);
	host.ui->set_rows(window_samples, samples_loaded_list, rows);
	host.ui->select(window_samples, samples_loaded_list, 1);
	auto *list = at<entry_list>(window_samples, samples_loaded_list);
	EXPECT_EQ(list->topLevelItem(1)->text(2), "32000 Hz");
	EXPECT_FALSE(list->isColumnHidden(2));
	EXPECT_TRUE(list->isColumnHidden(3)) << "no entry has a pitch";

	const auto state = [&](list_state s, const char *w) {
		host.ui->set_list_state(window_samples, samples_loaded_list, s, w);
		return host.ui->selection(window_samples, samples_loaded_list);
	};
	const QImage fresh = list->grab().toImage();
	EXPECT_EQ(state(list_state::stale, "Read before the channel changed"), 1);
	EXPECT_NE(fresh, list->grab().toImage());
	for (const list_state s : { list_state::silent, list_state::unread, list_state::empty }) {
		EXPECT_EQ(state(s, "words"), -1) << "what is not shown is not chosen";
		EXPECT_TRUE(list->accessibleDescription().contains("words"));
	}
	EXPECT_EQ(state(list_state::fresh, ""), 1);
	EXPECT_EQ(fresh, list->grab().toImage());
}

TEST_F(kit, a_silent_list_has_its_words_and_its_button_in_place_of_the_entries)
{
	host.ui->show(window_multis, 0, true);
	auto *list = at<entry_list>(window_multis, multis_list);
	auto *retry = new QPushButton("Try again", list);
	list->set_retry(retry);
	EXPECT_FALSE(retry->isVisible());
	list->setFocus();
	host.ui->set_list_state(window_multis, multis_list, list_state::silent, "Is it on?");
	EXPECT_TRUE(retry->isVisible());
	bool said = false;
	for (const auto *label : list->findChildren<told_label *>())
		said = said || (label->isVisible() && label->text() == "Is it on?");
	EXPECT_TRUE(said);
	host.ui->set_list_state(window_multis, multis_list, list_state::fresh, "");
	EXPECT_FALSE(retry->isVisible());
}

TEST_F(kit, what_is_disabled_says_why_and_forgets_it)
{
	auto *button = at<QPushButton>(window_samples, samples_upload);
	const QString purpose = button->toolTip();
	host.ui->set_reason(window_samples, samples_upload, "Read the list first.");
	EXPECT_FALSE(button->isEnabled());
	EXPECT_EQ(button->toolTip(), "Read the list first.");
	host.ui->set_reason(window_samples, samples_upload, nullptr);
	EXPECT_TRUE(button->isEnabled());
	EXPECT_EQ(button->toolTip(), purpose);
}

TEST_F(kit, a_role_colours_a_text_and_marks_the_foot)
{
	auto *foot = at<told_label>(window_main, status_line);
	host.ui->set_text(window_main, status_line, "S3000 answered");
	QSet<QRgb> kinds;
	for (const text_role role : { text_role::good, text_role::careful, text_role::failed }) {
		host.ui->set_role(window_main, status_line, role);
		const QImage drawn = foot->grab().toImage();
		const QRgb color = role_color(foot->palette(), role).rgb();
		int found = 0;
		for (int y = 0; y < drawn.height(); y++)
			for (int x = 0; x < drawn.width(); x++)
				found += drawn.pixel(x, y) == color;
		EXPECT_GT(found, 8) << static_cast<int>(role);
		kinds.insert(color);
	}
	EXPECT_EQ(kinds.size(), 3);
}

TEST_F(kit, long_words_at_the_foot_are_cut_and_make_no_window_wider)
{
	host.ui->show(window_multis, 0, true);
	const int width = at(window_multis, 0)->minimumSizeHint().width();
	for (const int control : { status_line, status_outcome })
		host.ui->set_text(window_multis, control, std::string(300, 'w').c_str());
	EXPECT_EQ(at(window_multis, 0)->minimumSizeHint().width(), width);
}

TEST_F(kit, the_focus_comes_back_after_work_or_goes_where_it_was_sent_meanwhile)
{
	host.ui->show(window_samples, 0, true);
	ASSERT_TRUE(QTest::qWaitForWindowActive(at(window_samples, 0)));
	auto *search = at(window_samples, samples_local_search);
	search->setFocus();
	host.ui->progress_show("Work", 10);
	EXPECT_EQ(at(window_progress, 0)->focusWidget(), at(window_progress, progress_stop));
	host.ui->progress_hide();
	EXPECT_EQ(at(window_samples, 0)->focusWidget(), search);
	host.ui->progress_show("Work", 10);
	host.ui->focus(window_samples, samples_local_list);
	host.ui->progress_hide();
	EXPECT_EQ(at(window_samples, 0)->focusWidget(), at(window_samples, samples_local_list));
}

// ---- Timers -------------------------------------------------------------------------------------

TEST_F(kit, a_timer_ticks_again_and_again_until_it_is_stopped)
{
	static int ticks;
	ticks = 0;
	const int timer = host.ui->start_timer(1, [] { ticks++; });
	EXPECT_TRUE(QTest::qWaitFor([] { return ticks >= 3; }, 5000));
	host.ui->stop_timer(timer);
	const int at_stop = ticks;
	// Another one that runs shows that the first had its chance.
	static int others;
	others = 0;
	const int other = host.ui->start_timer(1, [] { others++; });
	EXPECT_TRUE(QTest::qWaitFor([] { return others >= 3; }, 5000));
	host.ui->stop_timer(other);
	EXPECT_EQ(ticks, at_stop);
}

// ---- Picture, keys, mouse -------------------------------------------------------------------------

TEST_F(kit, a_picture_of_one_bit_grows_by_whole_numbers_and_tells_places_in_its_own_pixels)
{
	// 10 x 2: a dark pixel at 0,0 and one at 9,1; the bits behind the tenth are none.
	const std::vector<std::uint8_t> bits = { 0x80, 0x3F, 0x00, 0x7F };
	const bitmap_view view = { bits, 10, 2 };
	host.ui->set_bitmap(test_window, test_picture, &view);
	picture->setFixedSize(10 * 3 + 8, 2 * 3 + 20); // 3 times, 4 left over at each side
	const QImage drawn = picture->grab().toImage().convertToFormat(QImage::Format_RGB32);
	int dark = 0;
	for (int y = 0; y < drawn.height(); y++)
		for (int x = 0; x < drawn.width(); x++)
			dark += drawn.pixel(x, y) == qRgb(0, 0, 0);
	EXPECT_EQ(dark, 2 * 9) << "two pixels of three by three";
	EXPECT_EQ(drawn.pixel(4, 10), qRgb(0, 0, 0));
	EXPECT_EQ(drawn.pixel(4 + 29, 10 + 5), qRgb(0, 0, 0));

	QTest::mousePress(picture, Qt::LeftButton, {}, { 4 + 29, 10 + 5 });
	QTest::mouseRelease(picture, Qt::RightButton, {}, { 2, 10 });
	EXPECT_EQ(told(), lines({ "9,1 down 1", "-1,0 up 2" }));
	QTest::keyPress(picture, Qt::Key_F4);
	QTest::keyRelease(picture, Qt::Key_A);
	EXPECT_EQ(told(), lines({ format_text("%d '' down", Qt::Key_F4),
				  format_text("%d 'a' up", Qt::Key_A) }));
	host.ui->set_bitmap(test_window, test_picture, nullptr);
	QTest::mousePress(picture, Qt::LeftButton, {}, { 10, 12 });
	EXPECT_EQ(told(), lines()) << "there is nothing to press";
	const bitmap_view short_view = { std::span(bits).first(3), 10, 2 };
	host.ui->set_bitmap(test_window, test_picture, &short_view);
	EXPECT_EQ(picture->sizeHint(), QSize(160, 120)) << "bits that are not there are not read";
}

TEST_F(kit, what_no_row_takes_is_refused)
{
	EXPECT_FALSE(velmor_key(test_window, test_form, 1, "a", true));
	EXPECT_FALSE(velmor_mouse(test_window, test_form, 1, 1, mouse_action::down, 1));
	EXPECT_FALSE(velmor_form(test_window, test_picture, 0, form_event::drag, 1));
	EXPECT_TRUE(velmor_form(test_window, test_form, 0, form_event::drag, 1));
}

// ---- Forms ----------------------------------------------------------------------------------------

TEST_F(kit, what_is_done_to_a_form_is_told_by_row_and_what_is_set_is_not)
{
	build({ words(row_kind::heading, "Filter"),
		slider(27004, 27005, "Zone Level:\n\n", -100, 100, 12),
		slider(27055, 27005, "Velocity Start:\n\n", -9999, 9999, 0),
		chosen(row_kind::choice, 27019, "Mode:", { "2-Pole", "4-Pole", "BP" }, 1),
		chosen(row_kind::check, 27037, "Mute", {}, 1),
		chosen(row_kind::radio, 0, "Playmode", { "No Loop", "One Shot" }, 0),
		words(row_kind::reading, "Model", "S5000") });
	EXPECT_EQ(host.ui->row_value(test_window, test_form, 1), 12);
	EXPECT_EQ(host.ui->row_text(test_window, test_form, 1), "12");
	// One id may come twice; the place tells them apart.
	const auto fields = by_id<QLineEdit>(form, 27005);
	ASSERT_EQ(fields.size(), 2u);
	QTest::keyClicks(fields[1], "7");
	EXPECT_EQ(told(), lines({ "2 edit 7" }));
	fields[1]->setText("");
	QTest::keyClicks(fields[1], "x");
	EXPECT_EQ(told(), lines({ "2 edit 0" }));

	auto *bar = by_id<QSlider>(form, 27004).at(0);
	QTest::keyClick(bar, Qt::Key_Right);
	EXPECT_EQ(told(), lines({ "1 end 13" }));
	EXPECT_EQ(host.ui->row_text(test_window, test_form, 1), "12") << "the system writes it";
	bar->setSliderDown(true);
	bar->setSliderPosition(40);
	bar->setSliderPosition(45);
	bar->setSliderDown(false);
	EXPECT_EQ(told(), lines({ "1 drag 40", "1 drag 45", "1 end 45" }));

	QTest::keyClick(by_id<QComboBox>(form, 27019).at(0), Qt::Key_Down);
	QTest::mouseClick(by_id<QAbstractButton>(form, 27037).at(0), Qt::LeftButton, {}, { 8, 14 });
	for (auto *button : form->findChildren<QRadioButton *>())
		if (button->text() == "One Shot")
			button->click();
	EXPECT_EQ(told(), lines({ "3 choice 2", "4 choice 0", "5 choice 1" }));
	const int now[] = { 0, 45, 0, 2, 0, 1 };
	for (int row = 1; row < 6; row++)
		EXPECT_EQ(host.ui->row_value(test_window, test_form, row), now[row]) << row;

	const int set[] = { 0, -100, 9999, 0, 1, 0 };
	for (int row = 1; row < 6; row++) {
		host.ui->set_row_value(test_window, test_form, row, set[row]);
		EXPECT_EQ(host.ui->row_value(test_window, test_form, row), set[row]) << row;
	}
	host.ui->set_row_value(test_window, test_form, 1, 140);
	EXPECT_EQ(host.ui->row_value(test_window, test_form, 1), 100) << "a bar has its ends";
	host.ui->set_row_text(test_window, test_form, 2, "-600");
	EXPECT_EQ(fields[1]->text(), "-600");
	host.ui->set_row_value(test_window, test_form, 5, 6);
	EXPECT_EQ(host.ui->row_value(test_window, test_form, 5), -1) << "a value without a button";
	host.ui->set_row_text(test_window, test_form, 6, "S6000");
	EXPECT_EQ(host.ui->row_text(test_window, test_form, 6), "S6000");
	for (const int row : { -1, 0, 7 })
		host.ui->set_row_value(test_window, test_form, row, 1);
	EXPECT_EQ(told(), lines());
}

TEST_F(kit, a_changed_row_is_bold_with_a_dot_and_a_reason_disables_one)
{
	std::vector<form_row> rows = { slider(1, 2, "Cutoff Freq:", 0, 100, 72),
		slider(3, 4, "Resonance:", 0, 15, 4) };
	rows[0].unit = "%";
	rows[1].why_not = "This model has none.";
	build(rows);
	auto *field = by_id<QLineEdit>(form, 2).at(0);
	QApplication::processEvents();
	const QImage plain = form->grab().toImage();
	host.ui->set_row_changed(test_window, test_form, 0, true);
	EXPECT_TRUE(field->font().bold());
	EXPECT_NE(plain, form->grab().toImage());
	host.ui->set_row_changed(test_window, test_form, 0, false);
	EXPECT_FALSE(field->font().bold());
	QApplication::processEvents();
	EXPECT_EQ(plain, form->grab().toImage());
	EXPECT_FALSE(by_id<QSlider>(form, 3).at(0)->isEnabled());
	EXPECT_EQ(by_id<QLineEdit>(form, 4).at(0)->toolTip(), "This model has none.");
	EXPECT_EQ(by_id<QSlider>(form, 1).at(0)->accessibleName(), "Cutoff Freq");
	// Built anew, the earlier rows are gone.
	build({ slider(9, 10, "Depth:", 0, 1, 0) });
	EXPECT_TRUE(by_id<QSlider>(form, 1).empty());
	EXPECT_EQ(host.ui->row_value(test_window, test_form, 1), 0);
}
