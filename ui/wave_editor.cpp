// wave_editor.cpp - the picture of a local sample, with what moves it and what changes the sample

#include "ui/wave_editor.h"
#include "src/velmor_wave_edit.h"
#include "ui/parts/parts.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include "ui/parts/words.h"
#include "ui/qt_ui.h"
#include "ui/waveform.h"
#include <QBoxLayout>
#include <QLineEdit>
#include <QScrollBar>
#include <QShortcut>
#include <QSignalBlocker>
#include <QToolButton>
#include <cmath>

namespace velmor
{

static constexpr double one_press = 2;      // of a zoom button
static constexpr int scroll_steps = 100000; // the bar counts parts of the whole

static QToolButton *make_zoom(icon shown, const char *caption, const char *tooltip,
	waveform_widget *picture, double factor)
{
	auto *button = new QToolButton(picture->parentWidget());
	button->setIcon(make_icon(shown));
	button->setAccessibleName(qtr(caption));
	button->setToolTip(qtr(tooltip));
	button->setAccessibleDescription(qtr(tooltip));
	button->setFocusPolicy(Qt::StrongFocus);
	QObject::connect(button, &QToolButton::clicked, picture, [picture, factor] {
		factor > 0 ? picture->zoom(factor, picture->middle()) : picture->zoom_all();
	});
	return button;
}

static void show_part_in(QScrollBar *bar, const waveform_widget *picture)
{
	const QSignalBlocker quiet(bar);
	const auto all = static_cast<double>(picture->length());
	const double page = all > 0 ? picture->count_shown() / all * scroll_steps : scroll_steps;
	const auto step = std::max(1, static_cast<int>(page));
	bar->setRange(0, std::max(0, scroll_steps - step));
	bar->setPageStep(step);
	bar->setSingleStep(std::max(1, step / 10));
	bar->setValue(static_cast<int>(
		std::lround(all > 0 ? picture->first_shown() / all * scroll_steps : 0)));
}

static QScrollBar *make_scroll_bar(waveform_widget *picture)
{
	auto *bar = new QScrollBar(Qt::Horizontal, picture->parentWidget());
	bar->setAccessibleName(qtr("Part of the sample in view"));
	QObject::connect(bar, &QScrollBar::valueChanged, picture, [picture](int value) {
		picture->scroll_to(static_cast<double>(picture->length()) * value / scroll_steps);
	});
	return bar;
}

static QLineEdit *make_number(top_window *window, int control, const char *begins)
{
	QLineEdit *field = make_field(window, control);
	field->setText(begins);
	field->setFixedWidth(field->fontMetrics().averageCharWidth() * 6);
	return field;
}

static told_label *make_unit(const char *unit, QWidget *parent)
{
	auto *label = new told_label(parent);
	label->say(unit);
	label->set_role(text_role::quiet);
	return label;
}

// No push buttons: the window has no letters left for them.
static QToolButton *make_edit(top_window *window, int control)
{
	auto *button = new QToolButton(window);
	button->setText(caption_of(window->id, control));
	button->setProperty("framed", true);
	button->setFocusPolicy(Qt::StrongFocus);
	button->setMinimumSize(button->sizeHint().width() + between_controls, button_height);
	enroll(window->id, control, button);
	QObject::connect(button, &QToolButton::clicked, button,
		[id = window->id, control] { velmor_command(id, control); });
	return button;
}

// Space plays where it has no other meaning: in the list of samples, and in their picture.
static QToolButton *make_play(top_window *window, QWidget *picture)
{
	QToolButton *button = make_edit(window, samples_play);
	button->setCheckable(true);
	button->setIcon(make_icon(icon::play));
	button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
	button->setMinimumWidth(button->sizeHint().width() + between_controls);
	for (QWidget *where : { picture, find_widget(window->id, samples_local_list) }) {
		auto *space = new QShortcut(Qt::Key_Space, where);
		space->setContext(Qt::WidgetShortcut);
		QObject::connect(space, &QShortcut::activated, button, [button] {
			if (button->isEnabled())
				button->click();
		});
	}
	return button;
}

static QBoxLayout *make_edits(top_window *window)
{
	auto *row = new QHBoxLayout;
	row->setSpacing(between_controls / 2);
	for (const int control : { wave_trim, wave_loop_here, wave_no_loop })
		row->addWidget(make_edit(window, control));
	row->addStretch();
	add_to(row, { make_number(window, wave_fade_milliseconds, "20"), make_unit("ms", window),
			    make_edit(window, wave_fade) });
	row->addStretch();
	add_to(row, { make_number(window, wave_gain_decibels, "-6"), make_unit("dB", window),
			    make_edit(window, wave_gain), make_edit(window, wave_normalise) });
	return row;
}

QWidget *make_wave_editor(top_window *window, QWidget *parent)
{
	auto *all = new QWidget(parent);
	auto *column = new QVBoxLayout(all);
	column->setContentsMargins(0, 0, 0, 0);
	column->setSpacing(4);
	auto *picture = new waveform_widget(qtr("No local sample chosen"), all);
	enroll(window->id, samples_waveform, picture);
	auto *part = new told_label(all);
	part->set_spoken(qtr("In view"));
	part->set_role(text_role::quiet);
	part->set_cut();
	QScrollBar *bar = make_scroll_bar(picture);
	auto *head = new QHBoxLayout;
	QToolButton *play = make_play(window, picture);
	QToolButton *const zooms[] = { make_zoom(icon::zoom_out, own("Zoom out"),
					       own("Show twice as much of the sample (-)"), picture,
					       one_press),
		make_zoom(icon::zoom_in, own("Zoom in"), own("Show half as much of the sample (+)"),
			picture, 1 / one_press),
		make_zoom(icon::zoom_all, own("Show all"), own("Show the whole sample (0)"),
			picture, 0) };
	head->addWidget(play);
	head->addWidget(part, 1);
	add_to(head, { zooms[0], zooms[1], zooms[2] });
	set_order({ play, zooms[0], zooms[1], zooms[2], picture, bar });
	column->addLayout(head);
	column->addWidget(picture, 1);
	column->addWidget(bar);
	column->addLayout(make_edits(window));
	picture->part_changed = [picture, part, bar] {
		part->say(picture->words_of_part());
		show_part_in(bar, picture);
	};
	show_part_in(bar, picture);
	auto *undo = new QShortcut(QKeySequence::Undo, all);
	undo->setContext(Qt::WidgetWithChildrenShortcut);
	QObject::connect(undo, &QShortcut::activated, all, [id = window->id] {
		if (can_undo())
			velmor_command(id, status_undo);
	});
	return all;
}

} // namespace velmor
