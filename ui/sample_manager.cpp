// sample_manager.cpp - the samples of the sampler beside those of this computer

#include "ui/parts.h"
#include "ui/qt_ui.h"
#include "ui/waveform.h"
#include <QBoxLayout>
#include <QFormLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>

namespace velmor
{

// One side: its list with a search field, and what can be done with the chosen sample.
struct side {
	int list, search;
	int move, more; // the transfers; more may have no command
	int remove, information, rename, new_name;
};

static constexpr side loaded_side = {
	.list = samples_loaded_list,
	.search = samples_loaded_search,
	.move = samples_download,
	.more = samples_download_all,
	.remove = samples_loaded_delete,
	.information = samples_loaded_info,
	.rename = samples_loaded_rename,
	.new_name = samples_loaded_new_name,
};

static constexpr side local_side = {
	.list = samples_local_list,
	.search = samples_local_search,
	.move = samples_upload,
	.more = 0,
	.remove = samples_local_delete,
	.information = samples_local_info,
	.rename = samples_local_rename,
	.new_name = samples_local_new_name,
};

static QWidget *make_side(top_window *window, const side &s)
{
	auto *box = new QGroupBox(caption_of(window->id, s.list), window);
	auto *column = new QVBoxLayout(box);
	named_list *list = make_list(window, s.list);
	list->setMinimumHeight(list->fontMetrics().height() * 6);
	QLineEdit *search = make_search(window, s.search, list);
	add_to(column, { search, list });
	QWidget::setTabOrder(search, list);
	if (s.list == samples_local_list)
		list->take_files();

	auto *grid = new QGridLayout;
	QPushButton *move = make_button(window, s.move);
	QPushButton *more = s.more ? make_button(window, s.more) : nullptr;
	grid->addWidget(move, 0, 0, 1, more ? 1 : 2);
	if (more)
		grid->addWidget(more, 0, 1);
	grid->addWidget(make_button(window, s.information), 1, 0);
	grid->addWidget(make_button(window, s.remove), 1, 1);
	QLineEdit *name = make_field(window, s.new_name);
	grid->addWidget(name, 2, 0);
	grid->addWidget(make_button(window, s.rename), 2, 1);
	grid->setColumnStretch(0, 1);
	grid->setColumnStretch(1, 1);
	column->addLayout(grid);
	return box;
}

static QWidget *make_details(top_window *window)
{
	auto *box = new QGroupBox("Sample Information", window);
	auto *form = new QFormLayout(box);
	form->setVerticalSpacing(form->verticalSpacing() / 2);
	for (int control : { samples_detail_origin, samples_detail_name, samples_detail_pitch,
		     samples_detail_rate, samples_detail_seconds, samples_detail_channels,
		     samples_detail_bits, samples_detail_playmode })
		add_row(form, window->id, control, make_text(window, control));
	return box;
}

static QWidget *make_picture(top_window *window)
{
	auto *box = new QGroupBox(caption_of(window->id, samples_waveform), window);
	auto *column = new QVBoxLayout(box);
	auto *picture = new waveform_widget("No local sample chosen", window);
	enroll(window->id, samples_waveform, picture);
	column->addWidget(picture);
	return box;
}

static QBoxLayout *make_import_options(top_window *window)
{
	auto *row = new QHBoxLayout;
	row->addWidget(make_options(window, "Bits",
		{ samples_bits_keep, samples_bits_16, samples_bits_12, samples_bits_24 }, 1));
	row->addWidget(make_options(window, "Rate",
		{ samples_rate_keep, samples_rate_16000, samples_rate_22000, samples_rate_32000,
			samples_rate_44100, samples_rate_48000, samples_rate_96000 },
		2));
	row->addWidget(make_options(window, "Channels",
		{ samples_channels_keep, samples_channels_1, samples_channels_2 }, 1));
	row->addWidget(make_options(window, "Source (if Stereo-Source), Target (if Mono-Source)",
		{ samples_mix_left, samples_mix_right, samples_mix_both_to_one, samples_mix_files,
			samples_mix_both },
		2));
	return row;
}

// What is being converted or copied just now, and how it went.
static QBoxLayout *make_work_line(top_window *window)
{
	auto *row = new QHBoxLayout;
	for (int control : { samples_import, samples_export, samples_clear })
		add_to(row, { make_button(window, control) });
	// A long path must not make the window wider.
	QLabel *file = make_text(window, samples_work_file);
	file->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
	file->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
	row->addWidget(file, 1);
	for (int control : { samples_work_count, samples_work_percent, samples_work_outcome })
		row->addWidget(make_text(window, control));
	QPushButton *refresh = make_button(window, samples_refresh);
	refresh->setShortcut(QKeySequence::Refresh);
	row->addWidget(refresh);
	return row;
}

static QWidget *make_import(top_window *window)
{
	auto *box = new QGroupBox("Import and spool", window);
	auto *column = new QVBoxLayout(box);
	column->addLayout(make_import_options(window));
	QLabel *preview = make_text(window, samples_import_preview);
	preview->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
	preview->setMinimumHeight(preview->fontMetrics().lineSpacing() * 3);
	preview->setAlignment(Qt::AlignLeft | Qt::AlignTop);
	column->addWidget(preview);
	column->addLayout(make_work_line(window));
	return box;
}

// A small screen scrolls the window's content instead of losing its lower half.
static QBoxLayout *scrolled_column(top_window *window)
{
	auto *all = new QVBoxLayout(window);
	all->setContentsMargins(0, 0, 0, 0);
	auto *area = new QScrollArea(window);
	area->setFrameShape(QFrame::NoFrame);
	area->setWidgetResizable(true);
	auto *content = new QWidget(area);
	area->setWidget(content);
	all->addWidget(area);
	return new QVBoxLayout(content);
}

void create_sample_manager(QWidget *owner)
{
	auto *window = new top_window(window_samples, control_cancel, owner);
	QBoxLayout *column = scrolled_column(window);
	auto *sides = new QHBoxLayout;
	add_to(sides, { make_side(window, loaded_side), make_side(window, local_side) });
	column->addLayout(sides, 3);
	find_widget(window_samples, samples_loaded_list)->setFocus();
	auto *picture = new QHBoxLayout;
	picture->addWidget(make_details(window), 1);
	picture->addWidget(make_picture(window), 2);
	column->addLayout(picture, 1);
	column->addWidget(make_import(window));
	const QSize screen = QGuiApplication::primaryScreen()->availableSize();
	window->resize(column->sizeHint().grownBy({ 0, 0, 40, 40 }).boundedTo(screen));
}

} // namespace velmor
