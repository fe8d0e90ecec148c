// log_view.h - the log as it is read: levels to show, search, copy
//
// The text of the log control is the system's, short by its own rule, and kept here byte for byte.
// The view takes each new text as a continuation of the one before, and keeps the lines that the
// text has let go of meanwhile, so that what happened an hour ago is still found. Levels and search
// are a matter of the view alone.
//
// Appending costs what is appended: it is painted a little later, and a level that is switched
// is the only thing that fills the view anew.

#pragma once
#include <QPlainTextEdit>
#include <array>
#include <deque>
#include <functional>

class QTimer;

namespace velmor
{

class top_window;

enum log_level : int {
	log_told,
	log_careful,
	log_failed,
	log_debug,
	log_levels,
};

// Lines of one look are painted alike.
enum class log_look {
	plain,
	careful,
	failed,
	received, // what the monitor saw come in, and go out
	sent,
};

class log_view : public QPlainTextEdit
{
public:
	explicit log_view(QWidget *parent);

	// What follows the text so far, and what begins a new log.
	void take(std::string_view text);
	void begin_anew();
	void show_level(log_level level, bool shown);
	bool shows(log_level level) const { return shown[level]; }
	int count(log_level level) const { return counts[level]; }
	// All lines, the hidden ones too.
	QString whole() const;
	// Choose the last place that holds these letters; "" goes back to the end of the log. False
	// if there is none in what is shown.
	bool search(const QString &letters);
	bool search_on(bool earlier);
	// Called when there are other counts.
	std::function<void()> when_counted;
	// Called when it gets the focus or loses it.
	std::function<void(bool)> when_focused;
	// Called when other levels are shown.
	std::function<void()> when_looked_at;

protected:
	void changeEvent(QEvent *event) override;
	bool event(QEvent *event) override;

private:
	struct line {
		QString words;
		log_level level;
		log_look look;
	};
	void refresh();
	void add_lines(const QString &text);
	void append_shown(std::size_t first);
	QTextCharFormat format_of(log_look look) const;
	void fill();
	void show_last();

	std::deque<line> lines;
	std::array<int, log_levels> counts = {};
	std::array<bool, log_levels> shown = { true, true, true, false };
	std::string unread; // not painted yet
	bool last_is_open = false, anything_shown = false;
	QString letters_sought;
	QTimer *later;
};

// The log with its head: folded, only the head stays.
QWidget *make_log_card(top_window *window);

} // namespace velmor
