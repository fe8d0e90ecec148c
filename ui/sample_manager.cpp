// sample_manager.cpp - the samples of the sampler beside those of this computer

#include "src/velmor_samples_page.h"
#include "ui/parts/entry_list.h"
#include "ui/parts/parts.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include "ui/parts/words.h"
#include "ui/qt_ui.h"
#include "ui/wave_editor.h"
#include <QBoxLayout>
#include <QButtonGroup>
#include <QCheckBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>

namespace velmor
{

// One side: its list with a search field, and what can be done with the chosen sample.
struct side {
	int list, heading, search;
	int remove, information, rename, new_name;
	int transfer;       // to the other side
	int refresh, retry; // 0: none
	icon picture;
	QStringList columns;
};

static side loaded_side()
{
	return { .list = samples_loaded_list,
		.heading = samples_loaded_heading,
		.search = samples_loaded_search,
		.remove = samples_loaded_delete,
		.information = samples_loaded_info,
		.rename = samples_loaded_rename,
		.new_name = samples_loaded_new_name,
		.transfer = samples_download,
		.refresh = samples_refresh,
		.retry = samples_retry,
		.picture = icon::sampler,
		.columns = { qtr("Name"), qtr("Length"), qtr("Rate"), qtr("Pitch"), qtr("Loop") } };
}

static side local_side()
{
	return { .list = samples_local_list,
		.heading = samples_local_heading,
		.search = samples_local_search,
		.remove = samples_local_delete,
		.information = samples_local_info,
		.rename = samples_local_rename,
		.new_name = samples_local_new_name,
		.transfer = samples_upload,
		.refresh = 0,
		.retry = 0,
		.picture = icon::computer,
		.columns = { qtr("Name"), qtr("Length"), qtr("Rate"), qtr("Ch"), qtr("Bits"),
			qtr("Loop") } };
}

// ---- The two sides ----------------------------------------------------------------------------

static entry_list *make_side_list(top_window *window, const side &s)
{
	entry_list *list = make_list(window, s.list);
	list->set_columns(s.columns);
	list->setMinimumHeight(header_height + row_height * 5);
	if (s.retry)
		list->set_retry(make_button(window, s.retry));
	if (s.list == samples_local_list)
		list->take_files();
	list->take_several();
	list->set_commands({ { s.transfer, { Qt::Key_Return, Qt::Key_Enter } },
		{ s.information, {} }, { s.rename, { Qt::Key_F2 }, s.new_name },
		{ s.remove, { Qt::Key_Delete } } });
	return list;
}

static QLineEdit *make_name_field(top_window *window, const side &s)
{
	QLineEdit *field = make_field(window, s.new_name);
	QObject::connect(field, &QLineEdit::returnPressed, field, [id = window->id, s] {
		if (find_widget(id, s.rename)->isEnabled())
			velmor_command(id, s.rename);
	});
	return field;
}

// Dragging is another way to press the buttons between the lists.
static void let_entries_be_dragged()
{
	auto *loaded = static_cast<entry_list *>(find_widget(window_samples, samples_loaded_list));
	auto *local = static_cast<entry_list *>(find_widget(window_samples, samples_local_list));
	loaded->set_drag(local, { samples_download, own("Download this sample to this computer"),
					own("Download these %1 samples to this computer") });
	local->set_drag(loaded, { samples_upload, own("Upload this sample to the sampler"),
					own("Upload these %1 samples to the sampler") });
	local->set_drag_files(chosen_files);
}

static QPushButton *make_side_button(top_window *window, const side &s, int control)
{
	QPushButton *button = make_button(window, control);
	tell_apart(button, caption_of(window->id, s.list));
	return button;
}

static QBoxLayout *make_side(top_window *window, const side &s)
{
	auto *column = new QVBoxLayout;
	column->setSpacing(between_controls - 2);
	entry_list *list = make_side_list(window, s);
	QLineEdit *search = make_search(window, s.search, list);
	auto *finding = new QHBoxLayout;
	finding->addWidget(search, 1);
	finding->addStrut(button_height);
	if (s.refresh) {
		QPushButton *refresh = make_button(window, s.refresh);
		refresh->setShortcut(QKeySequence::Refresh);
		finding->addWidget(refresh);
	}
	column->addLayout(make_heading(window, s.list, s.heading, s.picture));
	column->addLayout(finding);
	column->addWidget(list, 1);
	auto *renaming = new QHBoxLayout;
	renaming->addWidget(make_name_field(window, s), 1);
	renaming->addWidget(make_side_button(window, s, s.rename));
	column->addLayout(renaming);
	auto *more = new QHBoxLayout;
	more->addWidget(make_side_button(window, s, s.information), 1);
	more->addWidget(make_side_button(window, s, s.remove), 1);
	column->addLayout(more);
	return column;
}

// The arrows stand on the side they point to.
static QBoxLayout *make_transfers(top_window *window)
{
	auto *column = new QVBoxLayout;
	column->setSpacing(between_controls);
	for (const int control : { samples_download, samples_download_all, samples_upload }) {
		QPushButton *button = make_button(window, control);
		button->setProperty("icon_right", control != samples_upload);
		button->setMinimumHeight(main_button_height);
		if (control == samples_upload)
			column->addSpacing(between_panels);
		column->addWidget(button);
	}
	column->addWidget(make_button(window, samples_fit));
	column->addWidget(make_check(window, samples_exact));
	told_label *rate = make_text(window, samples_rate);
	rate->set_role(text_role::quiet);
	rate->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
	rate->setMinimumHeight(2 * rate->fontMetrics().lineSpacing());
	column->addWidget(rate);
	column->addStretch();
	add_to(column,
		{ make_button(window, samples_compare), make_check(window, samples_verify) });
	return column;
}

// ---- The chosen sample ------------------------------------------------------------------------

static QWidget *make_details(top_window *window, QWidget *parent)
{
	auto *all = new QWidget(parent);
	auto *column = new QVBoxLayout(all);
	column->setContentsMargins(0, 0, 0, 0);
	auto *head = new QHBoxLayout;
	head->addWidget(new icon_label(icon::wave, big_icon_size - 4, QPalette::Link, all));
	told_label *name = make_title({}, 1.3, true, all);
	enroll(window->id, samples_detail_name, name);
	name->set_cut();
	head->addWidget(name, 1);
	head->addStrut(name->fontMetrics().height() + 4);
	column->addLayout(head);
	auto *form = new QFormLayout;
	form->setVerticalSpacing(4);
	form->setHorizontalSpacing(between_panels);
	for (int control : { samples_detail_origin, samples_detail_pitch, samples_detail_rate,
		     samples_detail_seconds, samples_detail_channels, samples_detail_bits,
		     samples_detail_playmode })
		add_row(form, window->id, control, make_text(window, control));
	column->addLayout(form);
	column->addStretch();
	all->setFixedWidth(260);
	return all;
}

static QWidget *make_chosen(top_window *window)
{
	auto *box = new card(window);
	auto *row = new QHBoxLayout(box);
	row->setContentsMargins(12, 12, 12, 12);
	row->setSpacing(12);
	row->addWidget(make_details(window, box));
	row->addWidget(make_wave_editor(window, box), 1);
	return box;
}

// ---- Import -----------------------------------------------------------------------------------

struct option_group {
	const char *title;
	std::initializer_list<int> controls;
	int columns;
	bool first_keeps; // the first choice leaves a file as it is
};

static const option_group groups[] = {
	{ own("Bits"), { samples_bits_keep, samples_bits_16, samples_bits_12, samples_bits_24 }, 1,
		true },
	{ own("Rate"),
		{ samples_rate_keep, samples_rate_16000, samples_rate_22000, samples_rate_32000,
			samples_rate_44100, samples_rate_48000, samples_rate_96000 },
		2, true },
	{ own("Channels"), { samples_channels_keep, samples_channels_1, samples_channels_2 }, 1,
		true },
	{ "Source (if Stereo-Source), Target (if Mono-Source)",
		{ samples_mix_left, samples_mix_right, samples_mix_both_to_one, samples_mix_files,
			samples_mix_both },
		2, false },
};

// What the folded options say: "16 bit, 44100 Hz, left channel".
static QString chosen_options()
{
	QStringList all;
	for (const option_group &group : groups)
		for (const int control : group.controls) {
			if (all.isEmpty() && !group.first_keeps)
				break; // of what is converted
			auto *option =
				static_cast<QRadioButton *>(find_widget(window_samples, control));
			const bool keeps = group.first_keeps && control == *group.controls.begin();
			if (option->isChecked() && !keeps)
				all += option->text().remove("Convert to ");
		}
	return all.isEmpty() ? qtr("kept as they are") : all.join(", ");
}

static QWidget *make_import_options(top_window *window, told_label *line)
{
	auto *options = new QWidget(window);
	auto *row = new QHBoxLayout(options);
	row->setContentsMargins(28, 0, 0, 0);
	row->setSpacing(between_panels);
	for (const option_group &group : groups)
		row->addWidget(
			make_options(window, qtr(group.title), group.controls, group.columns));
	row->addStretch();
	for (QRadioButton *option : options->findChildren<QRadioButton *>())
		QObject::connect(option, &QRadioButton::toggled, line,
			[line] { line->say(chosen_options()); });
	line->say(chosen_options());
	return options;
}

// What is being converted or copied just now, and how it went. It keeps its room.
static QBoxLayout *make_work_line(top_window *window)
{
	auto *row = new QHBoxLayout;
	row->setContentsMargins(28, 0, 0, 0);
	const std::pair<int, const char *> told[] = { { samples_work_count, own("Files") },
		{ samples_work_percent, own("Part") }, { samples_work_outcome, own("Outcome") },
		{ samples_work_file, own("File") } };
	for (const auto &[control, spoken] : told) {
		told_label *text = make_text(window, control);
		text->set_spoken(qtr(spoken));
		text->set_role(text_role::quiet);
		if (control == samples_work_file)
			text->set_cut();
		row->addWidget(text, control == samples_work_file);
	}
	row->addStrut(window->fontMetrics().height());
	return row;
}

// What a file is, becomes, loses, and how long it takes; each keeps its room.
static QLayout *make_preview(top_window *window)
{
	auto *form = new QFormLayout;
	form->setContentsMargins(28, 0, 0, 0);
	form->setVerticalSpacing(0);
	form->setHorizontalSpacing(between_panels);
	for (int control : { samples_import_preview, samples_preview_becomes, samples_preview_lost,
		     samples_preview_upload }) {
		told_label *line = make_text(window, control);
		line->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
		const int lines = control == samples_preview_upload ? 2 : 1;
		line->setMinimumHeight(line->fontMetrics().lineSpacing() * lines);
		line->set_cut();
		line->setAlignment(Qt::AlignLeft | Qt::AlignTop);
		add_row(form, window->id, control, line);
		auto *label = static_cast<told_label *>(form->labelForField(line));
		label->set_role(text_role::quiet);
		label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
	}
	return form;
}

static QWidget *make_import(top_window *window)
{
	auto *box = new card(window);
	auto *column = new QVBoxLayout(box);
	column->setContentsMargins(12, 12, 12, 8);
	auto *line = new told_label(box);
	line->set_spoken(qtr("Import options"));
	line->set_cut();
	QWidget *options = make_import_options(window, line);
	auto *head = new QHBoxLayout;
	head->addWidget(make_fold(options, qtr("the import options"), false, box));
	head->addWidget(make_title(qtr("Import options"), 1.1, true, box));
	head->addWidget(line, 1);
	for (int control : { samples_import, samples_export, samples_clear })
		add_to(head, { make_button(window, control) });
	column->addLayout(head);
	QWidget *last = find_widget(window->id, samples_clear);
	for (QRadioButton *option : options->findChildren<QRadioButton *>()) {
		set_order({ last, option });
		last = option;
	}
	column->addWidget(options);
	column->addWidget(make_line(box));
	column->addLayout(make_preview(window));
	column->addLayout(make_work_line(window));
	return box;
}

void create_sample_manager(QWidget *owner)
{
	auto *window = new top_window(window_samples, control_cancel, owner);
	QBoxLayout *column = scrolled_column(window);
	column->setSpacing(between_controls);
	auto *sides = new QHBoxLayout;
	sides->setSpacing(between_panels);
	sides->addLayout(make_side(window, loaded_side()), 1);
	sides->addLayout(make_transfers(window));
	sides->addLayout(make_side(window, local_side()), 1);
	column->addLayout(sides, 1);
	column->addWidget(make_chosen(window));
	column->addWidget(make_import(window));
	let_entries_be_dragged();
	window->finish();
	// A list was made before what stands over it.
	const auto tab = [](int from, int to) {
		QWidget::setTabOrder(
			find_widget(window_samples, from), find_widget(window_samples, to));
	};
	tab(samples_loaded_search, samples_refresh);
	tab(samples_refresh, samples_loaded_list);
	tab(samples_loaded_list, samples_loaded_new_name);
	tab(samples_local_search, samples_local_list);
	find_widget(window_samples, samples_loaded_list)->setFocus();
	window->open_at({ 1000, 719 });
}

} // namespace velmor
