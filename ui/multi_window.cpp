// multi_window.cpp - the multis of the loaded sampler

#include "ui/parts.h"
#include <QBoxLayout>
#include <QPushButton>

namespace velmor
{

void create_multi_window(QWidget *owner)
{
	auto *window = new top_window(window_multis, control_cancel, owner);
	auto *column = new QVBoxLayout(window);
	column->addWidget(make_list(window, multis_list));
	QPushButton *refresh = make_button(window, multis_refresh);
	refresh->setShortcut(QKeySequence::Refresh);
	auto *buttons = new QHBoxLayout;
	add_to(buttons, { make_button(window, multis_download) });
	buttons->addStretch();
	add_to(buttons, { refresh, make_button(window, control_cancel) });
	column->addLayout(buttons);
}

} // namespace velmor
