// settings_dialog.cpp - MIDI ports and the folder of everything stored

#include "ui/parts.h"
#include <QBoxLayout>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace velmor
{

void create_settings_dialog(QWidget *owner)
{
	auto *window = new top_window(window_settings, control_cancel, owner);
	auto *column = new QVBoxLayout(window);
	auto *form = new QFormLayout;
	form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
	for (int control : { settings_midi_in, settings_midi_in_mon, settings_midi_out })
		add_row(form, window_settings, control, make_choice(window, control));
	QLabel *found = make_text(window, settings_found);
	found->setWordWrap(true);
	add_row(form, window_settings, settings_found, found);
	QLineEdit *path = make_field(window, settings_config_path);
	path->setMinimumWidth(path->fontMetrics().averageCharWidth() * 50);
	add_row(form, window_settings, settings_config_path, path);
	column->addLayout(form);
	column->addStretch();

	auto *buttons = new QDialogButtonBox(window);
	QPushButton *save = make_button(window, control_ok);
	buttons->addButton(save, QDialogButtonBox::AcceptRole);
	buttons->addButton(make_button(window, control_cancel), QDialogButtonBox::RejectRole);
	save->setDefault(true);
	column->addWidget(buttons);
}

} // namespace velmor
