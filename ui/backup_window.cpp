// backup_window.cpp - a folder with all that a sampler holds

#include "src/velmor_window.h"
#include "ui/parts/entry_list.h"
#include "ui/parts/parts.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include "ui/parts/words.h"
#include <QBoxLayout>
#include <QCheckBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

namespace velmor
{

static QLayout *make_folder_row(top_window *window)
{
	auto *row = new QHBoxLayout;
	auto *form = new QFormLayout;
	form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
	QLineEdit *folder = make_field(window, backup_folder);
	folder->setReadOnly(true);
	add_row(form, window_backup, backup_folder, folder);
	row->addLayout(form, 1);
	add_to(row, { make_button(window, backup_choose) });
	return row;
}

void create_backup_window(QWidget *owner)
{
	auto *window = new top_window(window_backup, control_cancel, owner);
	QBoxLayout *column = window->content;
	column->addLayout(make_folder_row(window));
	told_label *facts = make_text(window, backup_facts);
	facts->setWordWrap(true);
	column->addWidget(facts);
	entry_list *list = make_list(window, backup_list);
	list->set_columns({ qtr("Name"), qtr("Kind"), qtr("Size"), qtr("What became of it") });
	column->addWidget(list, 1);
	list->set_words({ 1, 2 });
	list->set_wide(3);
	for (const int control : { backup_everything, backup_remove, backup_verify })
		add_to(column, { make_check(window, control) });
	auto *buttons = new QHBoxLayout;
	QPushButton *begin = make_button(window, backup_begin);
	if (begin)
		begin->setProperty("main", true);
	add_to(buttons, { begin, make_button(window, backup_restore) });
	buttons->addStretch();
	add_to(buttons, { make_button(window, control_cancel) });
	column->addLayout(buttons);
	list->setFocus();
	window->finish();
	window->open_at({ 640, 520 });
}

} // namespace velmor
