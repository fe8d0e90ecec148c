// multi_window.cpp - the multis of the loaded sampler

#include "ui/parts/entry_list.h"
#include "ui/parts/parts.h"
#include "ui/parts/window.h"
#include <QBoxLayout>
#include <QPushButton>

namespace velmor
{

void create_multi_window(QWidget *owner)
{
	auto *window = new top_window(window_multis, control_cancel, owner);
	entry_list *list = make_list(window, multis_list);
	list->set_retry(make_button(window, multis_retry));
	QPushButton *refresh = make_button(window, multis_refresh);
	refresh->setShortcut(QKeySequence::Refresh);
	window->content->addLayout(
		make_heading(window, multis_list, multis_heading, icon::sampler, refresh));
	window->content->addWidget(list, 1);
	auto *buttons = new QHBoxLayout;
	add_to(buttons, { make_button(window, multis_download) });
	buttons->addStretch();
	add_to(buttons, { make_button(window, control_cancel) });
	window->content->addLayout(buttons);
	list->setFocus();
	window->finish();
	window->open_at({ 500, 440 });
}

} // namespace velmor
