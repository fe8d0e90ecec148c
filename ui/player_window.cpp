// player_window.cpp - a Standard MIDI File, its tracks, and playing it

#include "ui/player_window.h"
#include "ui/parts/form_view.h"
#include "ui/parts/parts.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include "ui/track_strip_list.h"
#include <QBoxLayout>
#include <QPushButton>

namespace velmor
{

static QLayout *make_buttons(top_window *window)
{
	auto *row = new QHBoxLayout;
	add_to(row, { make_button(window, player_load), make_button(window, player_unload) });
	row->addSpacing(between_panels);
	QPushButton *play = make_button(window, player_play);
	play->setProperty("main", true);
	add_to(row, { play, make_button(window, player_stop) });
	row->addStretch(1);
	auto *speed = new form_view(window, player_speed_form);
	speed->setFixedWidth(340);
	row->addWidget(speed);
	return row;
}

static QLayout *make_file_line(top_window *window)
{
	auto *row = new QHBoxLayout;
	row->addWidget(new icon_label(icon::notes, icon_size, QPalette::Link, window));
	told_label *file = make_text(window, player_file);
	file->set_cut();
	row->addWidget(file, 1);
	told_label *clock = make_text(window, player_clock);
	QFont big = clock->font();
	big.setPointSizeF(big.pointSizeF() * 1.55);
	big.setBold(true);
	clock->setFont(big);
	clock->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
	// The same room for every time, so that nothing jumps.
	clock->setMinimumWidth(QFontMetrics(big).horizontalAdvance("00:00.0") + 8);
	clock->setMinimumHeight(QFontMetrics(big).height());
	row->addWidget(clock);
	return row;
}

static QLayout *make_sounding_line(top_window *window)
{
	auto *row = new QHBoxLayout;
	auto *label = new told_label(window);
	label->say(caption_of(window_midi_files, player_sounding));
	label->set_role(text_role::quiet);
	row->addWidget(label);
	told_label *notes = make_text(window, player_sounding);
	notes->set_cut();
	row->addWidget(notes, 1);
	row->addStrut(row_height);
	return row;
}

void create_player_window(QWidget *owner)
{
	auto *window = new top_window(window_midi_files, control_cancel, owner);
	window->enter_command = player_play;
	window->content->addLayout(make_buttons(window));
	window->content->addLayout(make_file_line(window));
	window->content->addWidget(new track_list(window, player_tracks), 1);
	window->content->addLayout(make_sounding_line(window));
	window->finish();
	window->open_at({ 1000, 680 });
}

} // namespace velmor
