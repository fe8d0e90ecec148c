// main_window.cpp - the samplers, what can be done with them, and the log

#include "src/velmor_window.h"
#include "ui/first_start.h"
#include "ui/parts/entry_list.h"
#include "ui/parts/palette.h"
#include "ui/parts/parts.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include <QApplication>
#include <QBoxLayout>
#include <QFontDatabase>
#include <QGridLayout>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QSyntaxHighlighter>
#include <QTimer>
#include <QToolButton>

namespace velmor
{

// ---- Log ------------------------------------------------------------------------------------

static std::string log_kept;
static QPointer<QPlainTextEdit> log_view;
static QPointer<QTimer> log_timer;

static constexpr int log_refresh_ms = 30;

// A text that only grew is appended, which keeps what the user has selected in it.
static void refresh_log()
{
	if (!log_view)
		return;
	const QString text = QString::fromUtf8(log_kept.c_str()).remove('\r');
	const QString shown = log_view->toPlainText();
	if (!shown.isEmpty() && text.startsWith(shown)) {
		QTextCursor end(log_view->document());
		end.movePosition(QTextCursor::End);
		end.insertText(text.mid(shown.size()));
	} else {
		log_view->setPlainText(text);
	}
	log_view->verticalScrollBar()->setValue(log_view->verticalScrollBar()->maximum());
}

void set_log_text(const char *text)
{
	log_kept = text;
	if (log_timer && !log_timer->isActive())
		log_timer->start(log_refresh_ms);
}

std::string log_text()
{
	return log_kept;
}

void forget_log_text()
{
	log_kept.clear();
}

// What the monitor received and what it sent, apart from each other and from the rest.
class traffic_colors : public QSyntaxHighlighter
{
public:
	using QSyntaxHighlighter::QSyntaxHighlighter;

protected:
	void highlightBlock(const QString &line) override
	{
		const QPalette colors = QApplication::palette();
		if (line.contains("[MONITOR]RCVD"))
			setFormat(0, static_cast<int>(line.size()), colors.color(QPalette::Link));
		else if (line.contains("[MONITOR]SENT"))
			setFormat(0, static_cast<int>(line.size()),
				role_color(colors, text_role::good));
	}
};

static QPlainTextEdit *make_log(top_window *window)
{
	auto *log = new QPlainTextEdit(window);
	log->setReadOnly(true);
	log->setTabChangesFocus(true);
	log->setFrameShape(QFrame::NoFrame);
	QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
	fixed.setPointSizeF(window->font().pointSizeF() * 0.95);
	log->setFont(fixed);
	log->document()->setDocumentMargin(between_controls);
	enroll(window->id, main_log, log);
	log_view = log;
	new traffic_colors(log->document());
	log_timer = new QTimer(log);
	log_timer->setSingleShot(true);
	QObject::connect(log_timer, &QTimer::timeout, log, refresh_log);
	return log;
}

// Folded, only its head stays, at the foot of the side.
static QWidget *make_log_card(top_window *window)
{
	auto *box = new card(window);
	auto *column = new QVBoxLayout(box);
	column->setContentsMargins(1, 4, 1, 4);
	column->setSpacing(4);
	QPlainTextEdit *log = make_log(window);
	auto *head = new QHBoxLayout;
	head->setContentsMargins(8, 0, 8, 0);
	auto *part = new QWidget(box);
	auto *inside = new QVBoxLayout(part);
	inside->setContentsMargins(0, 0, 0, 0);
	inside->setSpacing(0);
	add_to(inside, { make_line(part), log });
	head->addWidget(make_fold(part, "the log", true, box));
	told_label *title = make_title(caption_of(window_main, main_log), 1.1, true, box);
	title->setBuddy(log);
	head->addWidget(title);
	head->addStretch();
	head->addStrut(button_height);
	column->addLayout(head);
	column->addWidget(part, 1);
	return box;
}

// ---- Window -----------------------------------------------------------------------------------

static QMenuBar *make_menu(top_window *window)
{
	auto *bar = new QMenuBar(window);
	QMenu *file = bar->addMenu("&File");
	make_entry(window, file, menu_midi_files);
	make_entry(window, file, menu_exit);
	QMenu *settings = bar->addMenu("&Settings");
	make_entry(window, settings, menu_settings);
	make_entry(window, settings, menu_midi_samplers);
	make_entry(window, settings, menu_usb_samplers);
	return bar;
}

static QWidget *make_left_side(top_window *window)
{
	auto *side = new QWidget(window);
	side->setFixedWidth(300);
	auto *column = new QVBoxLayout(side);
	column->setContentsMargins(0, 0, 0, 0);
	entry_list *list = make_list(window, main_sampler_list);
	list->set_two_lines();
	QObject::connect(list, &QTreeWidget::itemActivated, list,
		[] { velmor_command(window_main, main_load); });
	QPushButton *load = make_button(window, main_load);
	load->setProperty("main", true);
	column->addLayout(make_heading(window, main_sampler_list, 0, icon::none));
	add_to(column, { list, load });
	return side;
}

struct view_row {
	int button, count;
	const char *spoken; // of the count
};

static constexpr view_row views[] = {
	{ main_samples, main_card_samples, "Samples" },
	{ main_programs, main_card_programs, "Programs" },
	{ main_multis, main_card_multis, "Multis" },
	{ main_lcd, 0, nullptr },
};

// What can be done with the sampler, and over each how much of it there is. Shown by a load,
// according to what the model can do.
static QLayout *make_views(top_window *window)
{
	auto *grid = new QGridLayout;
	grid->setHorizontalSpacing(12);
	int place = 0;
	for (const view_row &row : views) {
		QPushButton *button = make_button(window, row.button);
		if (!button)
			continue;
		button->setMinimumHeight(36);
		button->hide();
		if (row.count) {
			told_label *count = make_text(window, row.count);
			count->set_spoken(row.spoken);
			count->set_role(text_role::quiet);
			grid->addWidget(count, 0, place);
		}
		grid->addWidget(button, 1, place++);
	}
	grid->setColumnStretch(place, 1);
	return grid;
}

static QWidget *make_loaded_card(top_window *window)
{
	auto *box = new card(window);
	auto *column = new QVBoxLayout(box);
	column->setContentsMargins(16, 12, 16, 16);
	auto *head = new QHBoxLayout;
	head->setSpacing(between_panels);
	head->addWidget(new icon_label(icon::sampler, 48, QPalette::Link, box));
	auto *words = new QVBoxLayout;
	words->setSpacing(2);
	told_label *name = make_title({}, 1.55, true, box);
	enroll(window_main, main_card_name, name);
	name->set_spoken("Loaded sampler");
	name->set_cut();
	told_label *way = make_text(window, main_card_way);
	way->set_spoken("Way to it");
	way->set_role(text_role::quiet);
	way->set_cut();
	add_to(words, { name, way });
	head->addLayout(words, 1);
	column->addLayout(head);
	column->addWidget(make_line(box));
	column->addLayout(make_views(window));
	enroll(window_main, main_card, box);
	box->hide();
	return box;
}

static QPointer<QBoxLayout> right_side;

void show_samplers_wanted(bool wanted)
{
	if (right_side)
		show_first_start(right_side, wanted);
}

void create_main_window()
{
	auto *window = new top_window(window_main, menu_exit, nullptr);
	window->layout()->setMenuBar(make_menu(window));
	auto *sides = new QHBoxLayout;
	sides->setSpacing(between_panels);
	sides->addWidget(make_left_side(window));
	auto *right = new QVBoxLayout;
	right_side = right;
	right->setSpacing(between_panels);
	right->addWidget(make_loaded_card(window));
	right->addWidget(make_log_card(window), 1);
	sides->addLayout(right, 1);
	window->content->addLayout(sides);
	window->finish();
	window->open_at({ 992, 620 });
}

} // namespace velmor
