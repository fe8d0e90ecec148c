// settings_dialog.cpp - MIDI ports and the folder of everything stored

#include "ui/parts/parts.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include <QBoxLayout>
#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

namespace velmor
{

void create_settings_dialog(QWidget *owner)
{
	auto *window = new top_window(window_settings, control_cancel, owner);
	auto *form = new QFormLayout;
	form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
	for (int control : { settings_midi_in, settings_midi_in_mon, settings_midi_out })
		add_row(form, window_settings, control, make_choice(window, control));
	told_label *found = make_text(window, settings_found);
	found->setWordWrap(true);
	add_row(form, window_settings, settings_found, found);
	form->addRow(QString(), make_button(window, settings_self_test));
	QLineEdit *path = make_field(window, settings_config_path);
	path->setMinimumWidth(path->fontMetrics().averageCharWidth() * 50);
	add_row(form, window_settings, settings_config_path, path);
	window->content->addLayout(form);
	add_closing_buttons(window);
	window->finish();
}

} // namespace velmor
