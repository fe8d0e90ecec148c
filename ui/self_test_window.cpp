// self_test_window.cpp - does the interface pass on what it is given?

#include "ui/parts/entry_list.h"
#include "ui/parts/parts.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include "ui/parts/words.h"
#include <QBoxLayout>
#include <QComboBox>
#include <QFormLayout>
#include <QPushButton>

namespace velmor
{

void create_self_test_window(QWidget *owner)
{
	auto *window = new top_window(window_self_test, control_cancel, owner);
	auto *form = new QFormLayout;
	form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
	QComboBox *way = make_choice(window, self_test_way);
	add_row(form, window_self_test, self_test_way, way);
	window->content->addLayout(form);
	entry_list *list = make_list(window, self_test_list);
	list->set_columns({ qtr("Message"), qtr("Result"), qtr("First difference"), qtr("Rate"),
		qtr("Time") });
	window->content->addWidget(list, 1);
	list->set_words({ 1 });
	list->set_wide(2);
	window->content->addWidget(make_verdict(window, self_test_verdict));
	auto *buttons = new QHBoxLayout;
	add_to(buttons,
		{ make_button(window, self_test_keep), make_button(window, self_test_forget) });
	buttons->addStretch();
	QPushButton *close = make_button(window, control_cancel);
	QPushButton *begin = make_button(window, self_test_begin);
	begin->setProperty("main", true);
	add_to(buttons, { close, begin });
	window->content->addLayout(buttons);
	window->enter_command = self_test_begin;
	window->finish();
	window->open_at({ 640, 460 });
}

} // namespace velmor
