// log_view.cpp - the log as it is read: levels to show, search, copy

#include "ui/log_view.h"
#include "platform/host.h"
#include "src/velmor_window.h"
#include "ui/parts/icons.h"
#include "ui/parts/palette.h"
#include "ui/parts/parts.h"
#include "ui/parts/style.h"
#include "ui/parts/told.h"
#include "ui/parts/window.h"
#include "ui/qt_ui.h"
#include <QBoxLayout>
#include <QClipboard>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QTimer>
#include <QToolButton>

namespace velmor
{

static constexpr int refresh_ms = 30;
static constexpr std::size_t most_lines = 100000;

// ---- The text of the control --------------------------------------------------------------------

static std::string log_kept;
static QPointer<log_view> the_view;

// How much of a text stood at the end of the one before, which may have lost lines at its start.
static std::size_t known_part(std::string_view before, std::string_view now)
{
	while (!before.empty()) {
		if (now.starts_with(before))
			return before.size();
		const std::size_t feed = before.find('\n');
		before.remove_prefix(feed == before.npos ? before.size() : feed + 1);
	}
	return 0;
}

// A flood can push all of the text before out at once, but then it is as long as that was.
static bool is_new_log(std::string_view before, std::string_view now)
{
	return known_part(before, now) == 0 && now.size() < before.size() / 2 + 1;
}

void set_log_text(const char *text)
{
	const std::string_view now = text;
	if (the_view && is_new_log(log_kept, now))
		the_view->begin_anew();
	if (the_view)
		the_view->take(now.substr(known_part(log_kept, now)));
	log_kept = now;
}

std::string log_text()
{
	return log_kept;
}

std::string whole_log_text()
{
	return the_view ? the_view->whole().toStdString() : log_kept;
}

void forget_log_text()
{
	log_kept.clear();
}

// ---- Lines --------------------------------------------------------------------------------------

struct level_row {
	log_level level;
	const char *tag, *letter;
	const char *name; // of its lines
	log_look look;
};

static constexpr level_row levels[log_levels] = {
	{ log_told, "[I]", "I", own("what was done"), log_look::plain },
	{ log_careful, "[W]", "W", own("warnings"), log_look::careful },
	{ log_failed, "[F]", "F", own("failures"), log_look::failed },
	{ log_debug, "[D]", "D", own("details for finding faults"), log_look::plain },
};

// Behind "12.3456: " or "12.3456 [file.cpp:12]: ", or the line itself where it has no stamp.
static QStringView without_stamp(QStringView line)
{
	if (line.isEmpty() || !line[0].isDigit())
		return line;
	const qsizetype end = line.indexOf(u": ");
	return end < 0 ? line : line.mid(end + 2);
}

// A line with neither stamp nor tag goes on with what the line before it told.
static log_level level_of(QStringView line, log_level before)
{
	const QStringView words = without_stamp(line);
	for (const level_row &row : levels)
		if (words.startsWith(QLatin1String(row.tag)))
			return row.level;
	return words.size() < line.size() ? log_told : before;
}

static log_look look_of(const QString &line, log_level level)
{
	if (line.contains(QLatin1String("[MONITOR]RCVD")))
		return log_look::received;
	if (line.contains(QLatin1String("[MONITOR]SENT")))
		return log_look::sent;
	return levels[level].look;
}

log_view::log_view(QWidget *parent) : QPlainTextEdit(parent), later(new QTimer(this))
{
	setReadOnly(true);
	setTabChangesFocus(true);
	setFrameShape(QFrame::NoFrame);
	setUndoRedoEnabled(false);
	setMaximumBlockCount(static_cast<int>(most_lines));
	QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
	fixed.setPointSizeF(parent->font().pointSizeF() * 0.95);
	setFont(fixed);
	document()->setDocumentMargin(between_controls);
	later->setSingleShot(true);
	connect(later, &QTimer::timeout, this, [this] { refresh(); });
}

void log_view::take(std::string_view text)
{
	unread += text;
	if (!later->isActive())
		later->start(refresh_ms);
}

void log_view::begin_anew()
{
	unread.clear();
	lines.clear();
	counts = {};
	last_is_open = false;
	fill();
}

// A text may end within a line, which the next one goes on with.
void log_view::add_lines(const QString &text)
{
	for (const QString &words : text.split('\n')) {
		if (last_is_open) {
			lines.back().words += words;
		} else {
			const log_level before = lines.empty() ? log_told : lines.back().level;
			const log_level level = level_of(words, before);
			lines.push_back({ words, level, look_of(words, level) });
			counts[lines.back().level]++;
		}
		last_is_open = false;
	}
	last_is_open = true;
	if (lines.back().words.isEmpty()) {
		counts[lines.back().level]--;
		lines.pop_back();
		last_is_open = false;
	}
}

void log_view::refresh()
{
	if (unread.empty())
		return;
	// A line that goes on is rare, and shown anew with all others.
	const bool again = last_is_open;
	const std::size_t first = lines.size();
	add_lines(QString::fromStdString(unread).remove('\r'));
	unread.clear();
	if (again)
		fill();
	else
		append_shown(first);
	for (; lines.size() > most_lines; lines.pop_front())
		counts[lines.front().level]--;
	show_last();
	if (when_counted)
		when_counted();
}

QTextCharFormat log_view::format_of(log_look look) const
{
	static constexpr text_role roles[] = { text_role::plain, text_role::careful,
		text_role::failed, text_role::plain, text_role::good };
	QTextCharFormat format;
	if (look == log_look::plain)
		return format;
	const QPalette colors = palette();
	format.setForeground(look == log_look::received
				     ? colors.color(QPalette::Link)
				     : role_color(colors, roles[static_cast<int>(look)]));
	if (look == log_look::careful || look == log_look::failed)
		format.setFontWeight(QFont::Bold);
	return format;
}

// Lines of one look go in together.
void log_view::append_shown(std::size_t first)
{
	QTextCursor end(document());
	end.beginEditBlock();
	for (std::size_t i = first; i < lines.size();) {
		const log_look look = lines[i].look;
		QString words;
		for (; i < lines.size() && lines[i].look == look; i++) {
			if (!shown[lines[i].level])
				continue;
			words += anything_shown ? "\n" : "";
			words += lines[i].words;
			anything_shown = true;
		}
		end.movePosition(QTextCursor::End);
		end.insertText(words, format_of(look));
	}
	end.endEditBlock();
}

void log_view::fill()
{
	clear();
	anything_shown = false;
	append_shown(0);
	show_last();
	if (when_counted)
		when_counted();
}

// Who searches keeps the place.
void log_view::show_last()
{
	if (letters_sought.isEmpty())
		verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}

void log_view::show_level(log_level level, bool wanted)
{
	if (shown[level] == wanted)
		return;
	shown[level] = wanted;
	fill();
	if (when_looked_at)
		when_looked_at();
	if (!letters_sought.isEmpty())
		search(letters_sought);
}

QString log_view::whole() const
{
	QString all;
	for (const line &it : lines)
		all += it.words + '\n';
	if (last_is_open)
		all.chop(1);
	return all + QString::fromStdString(unread).remove('\r');
}

// ---- Search -------------------------------------------------------------------------------------

bool log_view::search(const QString &letters)
{
	letters_sought = letters;
	QTextCursor end(document());
	end.movePosition(QTextCursor::End);
	setTextCursor(end);
	if (letters.isEmpty())
		show_last();
	return letters.isEmpty() || search_on(true);
}

// Around the end where there is none on this side.
bool log_view::search_on(bool earlier)
{
	if (letters_sought.isEmpty())
		return true;
	const auto way = earlier ? QTextDocument::FindBackward : QTextDocument::FindFlags();
	if (find(letters_sought, way))
		return true;
	const QTextCursor here = textCursor();
	moveCursor(earlier ? QTextCursor::End : QTextCursor::Start);
	if (find(letters_sought, way))
		return true;
	setTextCursor(here);
	return false;
}

// The colours of warnings and failures are the desktop's.
bool log_view::event(QEvent *event)
{
	if (when_focused && (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut))
		when_focused(event->type() == QEvent::FocusIn);
	return QPlainTextEdit::event(event);
}

void log_view::changeEvent(QEvent *event)
{
	QPlainTextEdit::changeEvent(event);
	if (event->type() == QEvent::PaletteChange && anything_shown)
		fill();
}

// ---- The head -----------------------------------------------------------------------------------

// A setting "log" holds "open" or "folded", and the letters of the levels that are shown.
static std::string setting_of(const log_view *log, bool open)
{
	std::string look = open ? "open " : "folded ";
	for (const level_row &row : levels)
		look += log->shows(row.level) ? row.letter : "";
	return look;
}

// False if it was left folded.
static bool restore_setting(log_view *log)
{
	char value[setting_size];
	if (host.settings->load_key("log", value) != 0)
		return true;
	const std::string_view look = value;
	const std::size_t space = look.find(' ');
	for (const level_row &row : levels)
		if (space != look.npos)
			log->show_level(row.level, look.find(row.letter[0], space) != look.npos);
	return !look.starts_with("folded");
}

// Long numbers are rounded: the switches keep their places.
static QString short_count(int count)
{
	return count < 10000 ? QString::number(count) : QString("%1k").arg(count / 1000);
}

// Its letter is no key: a letter with Alt is for what does something.
class level_switch : public QToolButton
{
public:
	using QToolButton::QToolButton;

protected:
	void paintEvent(QPaintEvent *) override
	{
		const QPalette colors = palette();
		const QColor base = colors.color(QPalette::Base);
		const QColor accent = colors.color(QPalette::Link);
		QPainter painter(this);
		draw_box(&painter, rect(),
			isChecked() ? mixed(base, colors.color(QPalette::Highlight), 0.2) : base,
			isChecked() || hasFocus() ? accent : colors.color(QPalette::Mid),
			hasFocus() ? 1.5 : 1);
		painter.setPen(colors.color(QPalette::Text));
		painter.drawText(rect(), Qt::AlignCenter, text());
	}
};

static void say_count(QToolButton *button, const level_row &row, int count)
{
	button->setText(QString("%1 %2").arg(row.letter, short_count(count)));
	button->setAccessibleName(qtr("Show %1, %2 lines").arg(qtr(row.name)).arg(count));
}

static void add_levels(QBoxLayout *head, log_view *log, QWidget *parent)
{
	QList<QToolButton *> buttons;
	for (const level_row &row : levels) {
		auto *button = new level_switch(parent);
		button->setCheckable(true);
		button->setFocusPolicy(Qt::TabFocus);
		button->setChecked(log->shows(row.level));
		button->setToolTip(qtr("Show %1").arg(qtr(row.name)));
		button->setFixedSize(
			button->fontMetrics().horizontalAdvance(QString(row.letter) + " 9999") +
				between_controls,
			button_height);
		QObject::connect(button, &QToolButton::toggled, log,
			[log, level = row.level](bool wanted) { log->show_level(level, wanted); });
		head->addWidget(button);
		buttons += button;
	}
	log->when_counted = [log, buttons] {
		for (const level_row &row : levels)
			say_count(buttons[row.level], row, log->count(row.level));
	};
	log->when_counted();
}

static QToolButton *make_step(log_view *log, const char *words, bool earlier, QWidget *parent)
{
	auto *step = new QToolButton(parent);
	step->setAutoRaise(true);
	step->setFocusPolicy(Qt::TabFocus);
	step->setIcon(make_icon(earlier ? icon::fold_up : icon::fold_open));
	step->setToolTip(qtr(words));
	step->setAccessibleName(qtr(words));
	QObject::connect(
		step, &QToolButton::clicked, log, [log, earlier] { log->search_on(earlier); });
	return step;
}

static void add_key(QWidget *at, const QKeySequence &key, std::function<void()> work)
{
	auto *shortcut = new QShortcut(key, at);
	shortcut->setContext(Qt::WidgetShortcut);
	QObject::connect(shortcut, &QShortcut::activated, at, std::move(work));
}

// Enter goes up to what was earlier, with Shift down again; Escape ends the search.
static void add_search(QBoxLayout *head, log_view *log, QToolButton *fold, top_window *window)
{
	QLineEdit *field = make_search_field(window);
	auto *none = new told_label(field);
	none->set_spoken(qtr("Outcome of the search"));
	none->set_role(text_role::careful);
	field->layout()->addWidget(none);
	field->setPlaceholderText(qtr("Search"));
	field->setAccessibleName(qtr("Search in the log"));
	field->setMinimumWidth(96);
	field->setMaximumWidth(180);
	const auto tell = [none](bool found) { none->say(found ? QString() : qtr("none")); };
	QObject::connect(field, &QLineEdit::textChanged, log,
		[=](const QString &letters) { tell(log->search(letters)); });
	for (const int enter : { Qt::Key_Return, Qt::Key_Enter }) {
		add_key(field, QKeySequence(enter), [=] { tell(log->search_on(true)); });
		add_key(field, QKeySequence(Qt::SHIFT | enter),
			[=] { tell(log->search_on(false)); });
	}
	add_key(field, Qt::Key_Escape, [=] {
		field->clear();
		log->setFocus();
	});
	auto *find = new QShortcut(QKeySequence::Find, window);
	QObject::connect(find, &QShortcut::activated, field, [=] {
		fold->setChecked(true);
		field->setFocus();
		field->selectAll();
	});
	head->addWidget(field, 1);
	head->addWidget(make_step(log, own("Earlier place in the log"), true, window));
	head->addWidget(make_step(log, own("Later place in the log"), false, window));
}

// What is chosen in the log, or all that it shows.
static QPushButton *make_copy(log_view *log, QWidget *parent)
{
	auto *copy = new QPushButton(qtr("Copy"), parent);
	copy->setAutoDefault(false);
	copy->setFlat(true);
	copy->setIcon(make_icon(icon::copy));
	copy->setToolTip(
		qtr("Put what is chosen in the log on the clipboard, or all that it shows"));
	copy->setAccessibleDescription(copy->toolTip());
	QObject::connect(copy, &QPushButton::clicked, log, [log] {
		const QString chosen = log->textCursor().selectedText();
		QGuiApplication::clipboard()->setText(
			chosen.isEmpty()
				? log->toPlainText()
				: QString(chosen).replace(QChar::ParagraphSeparator, '\n'));
	});
	return copy;
}

static QLayout *make_head(top_window *window, log_view *log, QWidget *part, QWidget *box)
{
	auto *head = new QHBoxLayout;
	head->setContentsMargins(8, 0, 8, 0);
	head->setSpacing(4);
	QToolButton *fold = make_fold(part, qtr("the log"), restore_setting(log), box);
	log->when_looked_at = [log, fold] {
		(void)host.settings->save_key("log", setting_of(log, fold->isChecked()).c_str());
	};
	const auto give_room = [box](bool open) {
		box->setSizePolicy(
			QSizePolicy::Preferred, open ? QSizePolicy::Preferred : QSizePolicy::Fixed);
	};
	give_room(fold->isChecked());
	QObject::connect(fold, &QToolButton::toggled, box, give_room);
	QObject::connect(fold, &QToolButton::toggled, log, log->when_looked_at);
	head->addWidget(fold);
	told_label *title = make_title(caption_of(window_main, main_log), 1.1, true, box);
	title->setBuddy(log);
	head->addWidget(title);
	head->addSpacing(between_controls);
	add_levels(head, log, box);
	head->addStretch();
	add_search(head, log, fold, window);
	head->addWidget(make_copy(log, box));
	if (QPushButton *save = make_button(window, main_log_save)) {
		save->setFlat(true);
		save->setAutoDefault(false);
		head->addWidget(save);
	}
	head->addStrut(button_height);
	return head;
}

QWidget *make_log_card(top_window *window)
{
	auto *box = new card(window);
	auto *column = new QVBoxLayout(box);
	column->setContentsMargins(1, 4, 1, 4);
	column->setSpacing(4);
	auto *log = new log_view(window);
	enroll(window->id, main_log, log);
	the_view = log;
	auto *part = new QWidget(box);
	auto *inside = new QVBoxLayout(part);
	inside->setContentsMargins(0, 0, 0, 0);
	inside->setSpacing(0);
	add_to(inside, { make_line(part), log });
	column->addLayout(make_head(window, log, part, box));
	column->addWidget(part, 1);
	log->when_focused = [box](bool focus) { box->set_lit(focus); };
	set_order({ find_widget(window->id, main_log_save), log });
	return box;
}

} // namespace velmor
