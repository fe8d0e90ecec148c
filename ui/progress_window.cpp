// progress_window.cpp - how far a long operation is, and the way to stop it

#include "ui/parts.h"
#include <QBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

namespace velmor
{

void create_progress_window(QWidget *owner)
{
	auto *window = new top_window(window_progress, control_cancel, owner);
	auto *column = new QVBoxLayout(window);
	auto *bar = new QProgressBar(window);
	bar->setTextVisible(false);
	bar->setMinimumWidth(bar->fontMetrics().averageCharWidth() * 60);
	enroll(window_progress, progress_bar, bar);
	column->addWidget(bar);
	auto *line = new QHBoxLayout;
	line->addWidget(make_text(window, progress_info));
	line->addStretch();
	line->addWidget(make_text(window, progress_time_left));
	column->addLayout(line);
	column->addWidget(make_button(window, progress_stop), 0, Qt::AlignRight);
}

} // namespace velmor
