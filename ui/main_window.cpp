// main_window.cpp - the samplers, what can be done with them, and the log

#include "src/velmor_window.h"
#include "ui/parts.h"
#include <QBoxLayout>
#include <QFontDatabase>
#include <QLabel>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>

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

static QPlainTextEdit *make_log(top_window *window)
{
	auto *log = new QPlainTextEdit(window);
	log->setReadOnly(true);
	log->setTabChangesFocus(true);
	log->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
	enroll(window->id, main_log, log);
	log_view = log;
	log_timer = new QTimer(log);
	log_timer->setSingleShot(true);
	QObject::connect(log_timer, &QTimer::timeout, log, refresh_log);
	return log;
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

// Shown by a load, according to what the model can do.
static QPushButton *make_view_button(top_window *window, int control)
{
	QPushButton *button = make_button(window, control);
	if (button)
		button->hide();
	return button;
}

static QBoxLayout *make_left_side(top_window *window)
{
	auto *column = new QVBoxLayout;
	named_list *list = make_list(window, main_sampler_list);
	QObject::connect(list, &QListWidget::itemActivated, list,
		[] { velmor_command(window_main, main_load); });
	auto *label = new QLabel(caption_of(window_main, main_sampler_list), window);
	label->setBuddy(list);
	QPushButton *load = make_button(window, main_load);
	load->setDefault(true);
	add_to(column, { label, list, load, make_view_button(window, main_samples),
			       make_view_button(window, main_programs),
			       make_view_button(window, main_multis),
			       make_view_button(window, main_lcd) });
	return column;
}

static QBoxLayout *make_right_side(top_window *window)
{
	auto *column = new QVBoxLayout;
	QPlainTextEdit *log = make_log(window);
	auto *label = new QLabel(caption_of(window_main, main_log), window);
	label->setBuddy(log);
	add_to(column, { label, log });
	return column;
}

void create_main_window()
{
	auto *window = new top_window(window_main, menu_exit, nullptr);
	auto *sides = new QHBoxLayout(window);
	sides->setMenuBar(make_menu(window));
	sides->addLayout(make_left_side(window), 1);
	sides->addLayout(make_right_side(window), 3);
	window->resize(840, 500);
}

} // namespace velmor
