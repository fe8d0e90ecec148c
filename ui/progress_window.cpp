// progress_window.cpp - how far a long operation is, and the way to stop it

#include "src/velmor.h"
#include "ui/parts/parts.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include <QBoxLayout>
#include <QProgressBar>
#include <QPushButton>

namespace velmor
{

void create_progress_window(QWidget *owner)
{
	log_line("[D] ROOT-PARENT_RECT: (%d, %d)\r\n", owner->width(), owner->height());
	auto *window = new top_window(window_progress, control_cancel, owner);
	window->has_place = false; // it comes up over what it tells about
	QBoxLayout *column = window->content;
	auto *line = new QHBoxLayout;
	told_label *percent = make_title({}, 1.3, true, window);
	enroll(window_progress, progress_info, percent);
	percent->set_spoken("Done");
	told_label *left = make_text(window, progress_time_left);
	left->set_spoken("Time left");
	left->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
	line->addWidget(percent);
	line->addStretch();
	line->addWidget(left);
	column->addLayout(line);
	auto *bar = new QProgressBar(window);
	bar->setTextVisible(false);
	bar->setFixedHeight(between_controls);
	bar->setMinimumWidth(bar->fontMetrics().averageCharWidth() * 64);
	enroll(window_progress, progress_bar, bar);
	bar->setAccessibleName("Progress");
	column->addWidget(bar);
	column->addSpacing(between_controls);
	column->addWidget(make_button(window, progress_stop), 0, Qt::AlignRight);
	window->finish(false);
}

} // namespace velmor
