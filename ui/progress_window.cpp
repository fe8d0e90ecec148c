// progress_window.cpp - how far a long operation is, and the way to stop it; a queue and its verdict
//
// The system shows and hides what belongs to a single piece of work, a queue, or a verdict. The
// window is as large as what it shows.

#include "src/velmor_queue.h"
#include "src/velmor_window.h"
#include "ui/parts/entry_list.h"
#include "ui/parts/parts.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include "ui/qt_ui.h"
#include <QBoxLayout>
#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

namespace velmor
{

// Fits the window to what is to be seen, once all of it was shown or hidden.
class fitter : public QObject
{
public:
	explicit fitter(top_window *of) : QObject(of), window(of) {}
	bool eventFilter(QObject *, QEvent *event) override
	{
		const bool turned = event->type() == QEvent::ShowToParent ||
				    event->type() == QEvent::HideToParent;
		if (turned && !waiting) {
			waiting = true;
			QTimer::singleShot(0, this, [this] {
				waiting = false;
				window->layout()->activate();
				window->adjustSize();
			});
		}
		return false;
	}

private:
	top_window *const window;
	bool waiting = false;
};

static QProgressBar *make_bar(top_window *window, int control, int height)
{
	auto *bar = new QProgressBar(window);
	bar->setTextVisible(false);
	bar->setFixedHeight(height);
	bar->setMinimumWidth(bar->fontMetrics().averageCharWidth() * 64);
	enroll(window->id, control, bar);
	return bar;
}

static told_label *make_right(top_window *window, int control)
{
	told_label *text = make_text(window, control);
	text->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
	return text;
}

static QBoxLayout *make_row(QWidget *left, QWidget *right)
{
	auto *row = new QHBoxLayout;
	row->addWidget(left, 1);
	row->addWidget(right);
	return row;
}

static void add_item(top_window *window)
{
	told_label *item = make_title({}, 1.3, true, window);
	enroll(window->id, progress_item, item);
	item->set_cut();
	told_label *percent = make_title({}, 1.3, true, window);
	enroll(window->id, progress_info, percent);
	percent->set_spoken(qtr("Done"));
	window->content->addLayout(make_row(item, percent));
	make_bar(window, progress_bar, between_controls)->setAccessibleName("Progress");
	window->content->addWidget(find_widget(window->id, progress_bar));
	told_label *left = make_right(window, progress_time_left);
	left->set_spoken(qtr("Time left"));
	window->content->addLayout(make_row(make_text(window, progress_rate), left));
}

static void add_whole(top_window *window)
{
	told_label *count = make_text(window, progress_count);
	QFont bold = count->font();
	bold.setBold(true);
	count->setFont(bold);
	window->content->addLayout(make_row(count, make_right(window, progress_whole_left)));
	window->content->addWidget(make_bar(window, progress_whole, between_controls / 2));
}

static void add_verdict(top_window *window)
{
	told_label *title = make_title({}, 1.3, true, window);
	enroll(window->id, progress_title, title);
	title->set_marked();
	window->content->addWidget(title);
	told_label *reason = make_text(window, progress_reason);
	reason->setWordWrap(true);
	window->content->addWidget(reason);
	told_label *counts = make_text(window, progress_counts);
	QFont bold = counts->font();
	bold.setBold(true);
	counts->setFont(bold);
	window->content->addWidget(counts);
}

static void add_items(top_window *window)
{
	entry_list *list = make_list(window, progress_list);
	list->set_columns({ QString::fromUtf8(tr("Name")), QString::fromUtf8(tr("What happened")),
		QString::fromUtf8(tr("Time")) });
	list->set_wide(1);
	list->keep_places();
	list->setSelectionMode(QAbstractItemView::NoSelection);
	list->setMinimumSize(list->fontMetrics().averageCharWidth() * 112,
		header_height + row_height * 8 + between_controls);
	window->content->addWidget(list, 1);
}

static void add_buttons(top_window *window)
{
	auto *row = new QHBoxLayout;
	told_label *note = make_text(window, progress_note);
	note->set_role(text_role::quiet);
	QPushButton *copy = make_button(window, progress_copy);
	QObject::connect(copy, &QPushButton::clicked, copy, [] {
		QGuiApplication::clipboard()->setText(QString::fromUtf8(verdict_text().c_str()));
	});
	QPushButton *again = make_button(window, progress_again);
	again->setProperty("main", true);
	add_to(row, { note, copy });
	row->addStretch();
	add_to(row, { make_button(window, progress_stop_after), make_button(window, progress_stop),
			    again, make_button(window, progress_close) });
	window->content->addLayout(row);
}

void create_progress_window(QWidget *owner)
{
	log_line("[D] ROOT-PARENT_RECT: (%d, %d)\r\n", owner->width(), owner->height());
	auto *window = new top_window(window_progress, control_cancel, owner);
	window->has_place = false; // it comes up over what it tells about
	add_verdict(window);
	add_item(window);
	add_whole(window);
	add_items(window);
	add_buttons(window);
	window->finish(false);
	for (const int control : { progress_item, progress_rate, progress_count, progress_whole,
		     progress_whole_left, progress_title, progress_reason, progress_counts,
		     progress_list, progress_note, progress_copy, progress_stop_after,
		     progress_again, progress_close })
		find_widget(window_progress, control)->hide();
	find_widget(window_progress, progress_list)->installEventFilter(new fitter(window));
}

} // namespace velmor
