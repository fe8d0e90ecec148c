// multi_window.cpp - the multis of the loaded sampler

#include "src/velmor_multis.h"
#include "ui/parts/entry_list.h"
#include "ui/parts/parts.h"
#include "ui/parts/window.h"
#include "ui/qt_ui.h"
#include <QBoxLayout>
#include <QLineEdit>
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
	QLineEdit *search = make_search(window, multis_search, list);
	window->content->addWidget(search);
	window->content->addWidget(list, 1);
	auto *buttons = new QHBoxLayout;
	add_to(buttons, { make_button(window, multis_download) });
	buttons->addStretch();
	add_to(buttons, { make_button(window, control_cancel) });
	window->content->addLayout(buttons);
	window->finish();
	// The list was made before what stands over it.
	QWidget::setTabOrder(refresh, search);
	QWidget::setTabOrder(search, list);
	QWidget::setTabOrder(list, find_widget(window_multis, multis_download));
	list->setFocus();
	window->open_at({ 500, 440 });
}

} // namespace velmor
