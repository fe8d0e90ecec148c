// sampler_dialog.cpp - one sampler that is connected by MIDI

#include "ui/parts.h"
#include <QBoxLayout>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace velmor
{

// Hidden until the system shows it.
static QWidget *make_bridge(top_window *window)
{
	auto *box = new QGroupBox(caption_of(window_sampler, sampler_tcp_group), window);
	enroll(window_sampler, sampler_tcp_group, box);
	auto *form = new QFormLayout(box);
	for (int control : { sampler_tcp_address, sampler_tcp_port, sampler_tcp_status }) {
		QLineEdit *field = make_field(window, control);
		field->setMaxLength(32);
		field->setReadOnly(control == sampler_tcp_status);
		add_row(form, window_sampler, control, field);
	}
	auto *buttons = new QHBoxLayout;
	add_to(buttons,
		{ make_button(window, sampler_tcp_on), make_button(window, sampler_tcp_off) });
	form->addRow(buttons);
	box->hide();
	return box;
}

void create_sampler_dialog(QWidget *owner)
{
	auto *window = new top_window(window_sampler, control_cancel, owner);
	auto *column = new QVBoxLayout(window);
	auto *form = new QFormLayout;
	QLineEdit *name = make_field(window, sampler_name);
	name->setMaxLength(255);
	name->setMinimumWidth(name->fontMetrics().averageCharWidth() * 30);
	add_row(form, window_sampler, sampler_name, name);
	for (int control : { sampler_brand_list, sampler_midi_list, sampler_control_list,
		     sampler_exclusive_list })
		add_row(form, window_sampler, control, make_choice(window, control));
	column->addLayout(form);
	column->addWidget(make_button(window, sampler_device_info), 0, Qt::AlignLeft);
	column->addWidget(make_bridge(window));
	column->addStretch();

	auto *buttons = new QDialogButtonBox(window);
	QPushButton *save = make_button(window, control_ok);
	buttons->addButton(save, QDialogButtonBox::AcceptRole);
	buttons->addButton(make_button(window, control_cancel), QDialogButtonBox::RejectRole);
	save->setDefault(true);
	column->addWidget(buttons);
}

} // namespace velmor
