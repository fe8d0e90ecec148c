// test_ui_accessible.cpp - every window by keys, by a screen reader, and on the smallest screen
//
// Windows are those that have a title in the table of captions, so a new one is here by itself.

#include "src/velmor_wave_edit.h"
#include "tests/support/fake_model.h"
#include "tests/ui_fixture.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include <QAccessible>
#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QImage>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QSlider>
#include <QToolButton>
#include <set>

using namespace velmor;

namespace
{

constexpr QSize smallest_screen(1024 - 16, 768 - 48); // without the frame of a window

class accessible : public windows
{
protected:
	accessible() : model(h)
	{
		model.names = { "KICK", "SNARE" };
		h.use_sampler(model_s3000, 0);
		for (const caption_row &row : captions)
			if (row.window && !row.control && find_widget(row.window, 0))
				all.insert(row.window);
		for (const int button : { main_samples, main_programs, main_multis, main_lcd })
			host.ui->show(window_main, button, true);
		host.ui->set_rows(window_main, main_sampler_list, { { { "Rack", "S3000" } } });
		fill();
	}
	// With rows of every kind, tracks, and keys around a screen.
	void fill()
	{
		form_row slider = {};
		slider.kind = row_kind::slider;
		slider.label = "Attack:";
		slider.high = 99;
		slider.value = 42;
		form_row choice = slider, ticked = slider, other = slider;
		choice.kind = row_kind::choice;
		choice.label = "Mute group:";
		choice.items = { "OFF", "1" };
		ticked.kind = row_kind::check;
		ticked.label = "Mute";
		other.label = "Velocity zone crossfade:";
		other.unit = "semitones an octave";
		form_row span = {}, filter = {};
		span.label = "Span";
		filter.label = "Filter";
		for (const int form : { form_of_program, form_of_keygroup, form_of_keyzone })
			host.ui->build_form(window_programs, form,
				{ { span, slider, choice, filter, ticked, other } });
		host.ui->build_form(window_midi_files, player_speed_form, { { slider } });
		host.ui->set_track_count(window_midi_files, player_tracks, 1);
		const panel_view panel = { .width = 400,
			.height = 120,
			.picture_x = 10,
			.picture_y = 10,
			.picture_width = 248,
			.picture_height = 60,
			.keys = { { 18000, "PLAY", false, 10, 80, 50, 20 },
				{ 18001, "EXIT", false, 70, 80, 50, 20 } } };
		host.ui->build_panel(window_panel, &panel);
	}
	top_window *show(int window)
	{
		auto *shown = dynamic_cast<top_window *>(at(window, 0));
		host.ui->show(window, 0, true);
		for (auto *fold : shown->findChildren<QToolButton *>())
			if (fold->accessibleName().contains("options"))
				fold->setChecked(true);
		if (window == window_sampler)
			host.ui->show(window, sampler_tcp_group, true);
		QApplication::processEvents();
		return shown;
	}
	fake_model model;
	std::set<int> all;
};

// What a person can work with or read the value of.
bool is_control(const QWidget *widget)
{
	return widget->focusPolicy() & Qt::TabFocus || qobject_cast<const QProgressBar *>(widget) ||
	       qobject_cast<const QAbstractButton *>(widget) ||
	       qobject_cast<const QGroupBox *>(widget);
}

template <typename visitor> void each_control(QAccessibleInterface *from, visitor visit)
{
	for (int i = 0; i < from->childCount(); i++)
		if (QAccessibleInterface *child = from->child(i); child && child->object()) {
			auto *widget = qobject_cast<QWidget *>(child->object());
			if (widget && is_control(widget))
				visit(child, widget);
			each_control(child, visit);
		}
}

// Where a window of the keys' order goes.
QList<QWidget *> tab_order(const QWidget *window)
{
	QList<QWidget *> order;
	for (QWidget *w = window->nextInFocusChain(); w && w != window; w = w->nextInFocusChain())
		if (w->window() == window && w->isVisible() && w->isEnabled() &&
			w->focusPolicy() & Qt::TabFocus && !w->focusProxy())
			order += w;
	return order;
}

QRect place_of(const QWidget *widget)
{
	return { widget->mapTo(widget->window(), QPoint()), widget->size() };
}

std::string told(const QWidget *widget)
{
	return (widget->accessibleName() + " (" + widget->metaObject()->className() + ")")
		.toStdString();
}

// Words that a control draws and that no tooltip would show whole.
bool is_cut(const QWidget *widget)
{
	const auto *label = qobject_cast<const QLabel *>(widget);
	if (label && (label->wordWrap() || label->text().isEmpty() ||
			     label->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored))
		return false;
	if (!label && !qobject_cast<const QAbstractButton *>(widget))
		return false;
	if (label)
		return label->width() < label->minimumSizeHint().width() ||
		       label->height() < label->fontMetrics().height();
	const auto *button = qobject_cast<const QAbstractButton *>(widget);
	const int icon = button->icon().isNull() ? 0 : button->iconSize().width();
	return button->width() <
	       icon + button->fontMetrics().horizontalAdvance(QString(button->text()).remove('&'));
}

} // namespace

TEST_F(accessible, every_control_has_a_name_and_no_two_of_a_window_are_alike)
{
	std::size_t counted = 0;
	for (const int window : all) {
		std::set<std::pair<int, QString>> seen;
		each_control(QAccessible::queryAccessibleInterface(show(window)),
			[&](QAccessibleInterface *control, QWidget *widget) {
				if (!widget->isVisible() || widget->window() != at(window, 0))
					return; // on another page, or of another window
				const QString name = control->text(QAccessible::Name);
				EXPECT_FALSE(name.isEmpty()) << window << " " << told(widget);
				EXPECT_FALSE(name.contains('&')) << name.toStdString();
				EXPECT_TRUE(seen.emplace(control->role(), name).second)
					<< window << " twice: " << name.toStdString();
				counted++;
			});
	}
	EXPECT_GE(all.size(), 10u);
	EXPECT_GT(counted, 150u);
	EXPECT_FALSE(at<QAction>(window_main, menu_usb_samplers)->text().mid(8).contains('&'));
}

TEST_F(accessible, values_are_read_not_only_their_names)
{
	const auto text = [this](int window, int control, QAccessible::Text kind) {
		return QAccessible::queryAccessibleInterface(at(window, control))->text(kind);
	};
	host.ui->set_text(window_samples, samples_detail_origin, "LOCAL");
	EXPECT_EQ(text(window_samples, samples_detail_origin, QAccessible::Name), "Origin: LOCAL");
	host.ui->set_text(window_main, status_outcome, "Deleted 'KICK'.");
	EXPECT_TRUE(text(window_main, status_outcome, QAccessible::Name)
			    .endsWith("outcome: Deleted 'KICK'."));
	host.ui->set_text(window_sampler, sampler_name, "Rack");
	EXPECT_EQ(text(window_sampler, sampler_name, QAccessible::Value), "Rack");
	EXPECT_EQ(text(window_sampler, sampler_name, QAccessible::Name), "Name");
	host.ui->progress_show("Downloading [KICK]...", 200);
	host.ui->progress_set(50, "25.00 %", "0:30 left");
	EXPECT_EQ(text(window_progress, progress_bar, QAccessible::Name), "Progress");
	EXPECT_EQ(text(window_progress, progress_bar, QAccessible::Description),
		"Downloading [KICK]...");
	EXPECT_EQ(text(window_progress, progress_bar, QAccessible::Value), "50");
	EXPECT_EQ(text(window_progress, progress_info, QAccessible::Name), "Done: 25.00 %");
	host.ui->progress_hide();
	host.ui->set_list_state(
		window_multis, multis_list, list_state::silent, "No answer on channel 3.");
	EXPECT_TRUE(text(window_multis, multis_list, QAccessible::Description)
			    .contains("did not answer. No answer on channel 3."));
	int sliders = 0;
	for (QSlider *slider : at(window_programs, form_of_program)->findChildren<QSlider *>()) {
		QAccessibleInterface *read = QAccessible::queryAccessibleInterface(slider);
		ASSERT_TRUE(read->valueInterface());
		EXPECT_EQ(read->valueInterface()->currentValue().toInt(), 42);
		EXPECT_EQ(read->valueInterface()->maximumValue().toInt(), 99);
		sliders++;
	}
	EXPECT_EQ(sliders, 2);
}

TEST_F(accessible, no_two_buttons_of_a_window_have_the_same_letter)
{
	for (const int window : all) {
		std::set<QString> letters;
		for (const auto *button : at(window, 0)->findChildren<QPushButton *>()) {
			const qsizetype mark = button->text().indexOf('&');
			if (button->window() != at(window, 0) || window == window_panel || mark < 0)
				continue; // a dialog is the main window's; a machine's keys have none
			EXPECT_TRUE(
				letters.insert(button->text().mid(mark + 1, 1).toLower()).second)
				<< window << " " << button->text().toStdString();
		}
	}
	// A button that says something else keeps a letter of its own.
	host.ui->set_text(window_sampler, control_ok, "Create new");
	EXPECT_TRUE(at<QPushButton>(window_sampler, control_ok)->text().contains('&'));
	EXPECT_EQ(host.ui->get_text(window_sampler, control_ok), "Create new");
}

// Not back to the left in a row, and not up but in the next column.
TEST_F(accessible, the_keys_go_from_left_to_right_and_from_top_to_bottom)
{
	for (const int window : all) {
		const QList<QWidget *> order = tab_order(show(window));
		EXPECT_FALSE(order.isEmpty()) << window;
		for (int i = 1; i < order.size(); i++) {
			if (order[i - 1]->isAncestorOf(order[i]))
				continue;
			const QRect a = place_of(order[i - 1]), b = place_of(order[i]);
			const bool back = b.right() < a.left() && b.bottom() > a.top() &&
					  b.center().y() < a.bottom();
			const bool up = b.bottom() < a.center().y() && b.left() < a.right();
			EXPECT_FALSE(back || up) << window << ": from " << told(order[i - 1])
						 << " to " << told(order[i]);
		}
	}
}

TEST_F(accessible, the_focus_is_seen_on_every_control)
{
	for (const int window : all) {
		top_window *shown = show(window);
		shown->activateWindow();
		ASSERT_TRUE(QTest::qWaitForWindowActive(shown)) << window;
		const QList<QWidget *> order = tab_order(shown);
		for (QWidget *widget : order) {
			widget->setFocus(Qt::TabFocusReason);
			ASSERT_TRUE(widget->hasFocus()) << told(widget);
			const QRect place = place_of(widget).adjusted(-4, -4, 4, 4);
			const QImage with = shown->grab(place).toImage();
			widget->clearFocus();
			EXPECT_TRUE(with != shown->grab(place).toImage() ||
				    widget->visibleRegion().isEmpty())
				<< window << ": " << told(widget);
		}
	}
}

TEST_F(accessible, a_small_screen_holds_every_window_and_cuts_no_word)
{
	for (const int window : all) {
		top_window *shown = show(window);
		const QSize least = shown->minimumSizeHint();
		EXPECT_LE(least.width(), smallest_screen.width()) << window;
		EXPECT_LE(least.height(), smallest_screen.height()) << window;
		EXPECT_LE(shown->width(), smallest_screen.width()) << window;
		EXPECT_LE(shown->height(), smallest_screen.height()) << window;
		for (const QSize &size : { smallest_screen, QSize(1264, 672) }) {
			shown->resize(size);
			for (int round = 0; round < 4; round++)
				QApplication::processEvents();
			// The keys of a machine write their names smaller.
			for (const QWidget *widget : shown->findChildren<QWidget *>())
				EXPECT_FALSE(window != window_panel && widget->isVisible() &&
					     widget->window() == shown && is_cut(widget))
					<< window << ": " << told(widget);
		}
	}
}
