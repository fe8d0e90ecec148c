// usb_dialog.cpp - the samplers that are connected by USB

#include "src/velmor_window.h"
#include "ui/parts/parts.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include <QBoxLayout>
#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>

namespace velmor
{

// Only the name can be changed on the sampler itself; the channels are stored with it.
static void add_fields(top_window *window, QFormLayout *form)
{
	for (int control : { usb_hardware, usb_version, usb_name, usb_exclusive_channel,
		     usb_midi_channel, usb_control_channel }) {
		QLineEdit *field = make_field(window, control);
		field->setReadOnly(control == usb_hardware || control == usb_version);
		add_row(form, window->id, control, field);
	}
}

void create_usb_dialog(QWidget *owner)
{
	auto *window = new top_window(window_usb, control_cancel, owner);
	QBoxLayout *column = window->content;
	auto *form = new QFormLayout;
	QComboBox *devices = make_choice(window, usb_device_list);
	devices->setMinimumContentsLength(42);
	add_row(form, window_usb, usb_device_list, devices);
	add_fields(window, form);
	column->addLayout(form);
	auto *asking = new QHBoxLayout;
	asking->addWidget(make_button(window, usb_device_info), 0, Qt::AlignTop);
	asking->addWidget(make_button(window, usb_update), 0, Qt::AlignTop);
	asking->addWidget(make_verdict(window, usb_verdict), 1);
	column->addLayout(asking);
	add_closing_buttons(window);
	auto *again = new QShortcut(QKeySequence::Refresh, window);
	QObject::connect(again, &QShortcut::activated, window,
		[] { velmor_command(window_main, menu_usb_samplers); });
	window->finish();
}

} // namespace velmor
