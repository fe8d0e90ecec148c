// history_window.cpp - what was changed on the sampler, and what is kept of it

#include "ui/parts/entry_list.h"
#include "ui/parts/parts.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include "ui/parts/words.h"
#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QPushButton>

namespace velmor
{

static QLayout *make_settings(top_window *window)
{
	auto *column = new QVBoxLayout;
	add_to(column, { make_check(window, history_on), make_check(window, history_samples) });
	auto *form = new QFormLayout;
	auto *row = new QHBoxLayout;
	row->addWidget(make_choice(window, history_limit));
	row->addStretch();
	auto *limit = new QWidget(window);
	limit->setLayout(row);
	row->setContentsMargins(0, 0, 0, 0);
	add_row(form, window_history, history_limit, limit);
	told_label *folder = make_text(window, history_folder);
	folder->set_cut();
	folder->set_role(text_role::quiet);
	add_row(form, window_history, history_folder, folder);
	column->addLayout(form);
	return column;
}

void create_history_window(QWidget *owner)
{
	auto *window = new top_window(window_history, control_cancel, owner);
	entry_list *list = make_list(window, history_list);
	list->set_columns({ qtr("What"), qtr("When"), qtr("Kept"), qtr("Size"), qtr("State") });
	QPushButton *refresh = make_button(window, history_refresh);
	refresh->setShortcut(QKeySequence::Refresh);
	window->content->addLayout(
		make_heading(window, history_list, history_size, icon::none, refresh));
	window->content->addWidget(list, 1);
	list->set_words({ 1, 2, 3 });
	list->set_wide(4);
	window->content->addLayout(make_settings(window));
	auto *buttons = new QHBoxLayout;
	QPushButton *restore = make_button(window, history_restore);
	restore->setProperty("main", true);
	add_to(buttons, { restore, make_button(window, history_delete) });
	buttons->addStretch();
	add_to(buttons, { make_button(window, control_cancel) });
	window->content->addLayout(buttons);
	window->enter_command = history_restore;
	QWidget::setTabOrder(refresh, list);
	list->setFocus();
	window->finish();
	window->open_at({ 920, 520 });
}

} // namespace velmor
