// sampler_dialog.cpp - one sampler that is connected by MIDI

#include "ui/parts/parts.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include <QBoxLayout>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
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

// A group of what is tried out: what stands in it goes by its captions.
static QFormLayout *make_group(const QString &title, QWidget **box, top_window *window)
{
	auto *group = new QGroupBox(title, window);
	*box = group;
	return new QFormLayout(group);
}

static QWidget *make_test_notes(top_window *window)
{
	QWidget *box;
	QFormLayout *form = make_group(qtr("Test note"), &box, window);
	auto *choices = new QHBoxLayout;
	QComboBox *pitch = make_choice(window, sampler_pitch_list);
	QComboBox *velocity = make_choice(window, sampler_velocity_list);
	auto *label = new told_label(box);
	label->say(caption_of(window_sampler, sampler_velocity_list));
	label->setBuddy(velocity);
	add_to(choices, { pitch, label, velocity });
	choices->addStretch();
	form->addRow(caption_of(window_sampler, sampler_pitch_list), choices);
	told_label *port = make_text(window, sampler_midi_out_text);
	port->set_cut();
	add_row(form, window_sampler, sampler_midi_out_text, port);
	auto *buttons = new QHBoxLayout;
	add_to(buttons,
		{ make_button(window, sampler_note_on), make_button(window, sampler_note_off),
			make_button(window, sampler_all_notes_off) });
	buttons->addStretch();
	form->addRow(buttons);
	return box;
}

static QWidget *make_monitor(top_window *window)
{
	QWidget *box;
	QFormLayout *form = make_group(qtr("Monitor and thru"), &box, window);
	told_label *port = make_text(window, sampler_midi_in_text);
	port->set_cut();
	add_row(form, window_sampler, sampler_midi_in_text, port);
	auto *line = new QHBoxLayout;
	add_to(line, { make_button(window, sampler_monitor_on),
			     make_button(window, sampler_monitor_off) });
	line->addStretch();
	form->addRow(line);
	// Numbers grow in it, and nothing jumps.
	told_label *state = make_text(window, sampler_monitor_state);
	state->setWordWrap(true);
	state->setAlignment(Qt::AlignLeft | Qt::AlignTop);
	state->setMinimumSize(state->fontMetrics().averageCharWidth() * 40,
		state->fontMetrics().lineSpacing() * 2 + 4);
	form->addRow(state);
	return box;
}

static QBoxLayout *make_description(top_window *window)
{
	auto *column = new QVBoxLayout;
	auto *form = new QFormLayout;
	QLineEdit *name = make_field(window, sampler_name);
	name->setMaxLength(255);
	name->setMinimumWidth(name->fontMetrics().averageCharWidth() * 34);
	add_row(form, window_sampler, sampler_name, name);
	for (int control : { sampler_brand_list, sampler_midi_list, sampler_control_list,
		     sampler_exclusive_list })
		add_row(form, window_sampler, control, make_choice(window, control));
	column->addLayout(form);
	auto *asking = new QHBoxLayout;
	asking->addWidget(make_button(window, sampler_device_info), 0, Qt::AlignTop);
	asking->addWidget(make_verdict(window, sampler_verdict), 1);
	column->addLayout(asking);
	return column;
}

// What describes the sampler, and beside it what tries it out.
void create_sampler_dialog(QWidget *owner)
{
	auto *window = new top_window(window_sampler, control_cancel, owner);
	auto *sides = new QHBoxLayout;
	sides->setSpacing(between_panels);
	QBoxLayout *description = make_description(window);
	sides->addLayout(description, 1);
	auto *trials = new QVBoxLayout;
	add_to(trials, { make_test_notes(window), make_monitor(window) });
	trials->addStretch();
	sides->addLayout(trials);
	description->addWidget(make_bridge(window));
	description->addStretch();
	window->content->addLayout(sides);
	add_closing_buttons(window);
	window->finish();
}

} // namespace velmor
