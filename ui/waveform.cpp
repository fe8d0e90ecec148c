// waveform.cpp - the picture of a sample with its loop, from the whole down to single values
//
// How it is moved and what its handles do; how it is painted: waveform_paint.cpp. A movement of
// the loop is told when it ends, since the file is written then; a movement of start and end at
// once.

#include "ui/waveform.h"
#include "src/velmor_wave_edit.h"
#include "ui/parts/style.h"
#include "ui/parts/words.h"
#include "ui/waveform_places.h"
#include <QMouseEvent>
#include <algorithm>
#include <cmath>
#include <utility>

namespace velmor
{

static constexpr double least_shown = 16; // words
static constexpr double one_notch = 1.3;  // of the wheel
static constexpr int reach = 7;           // of a handle, in pixels
static constexpr std::uint64_t furthest_crossing = 100000;
static constexpr std::uint64_t words_a_tick = 1 << 20;

waveform_widget::waveform_widget(const QString &empty, QWidget *parent)
	: QWidget(parent), empty_text(empty)
{
	setMinimumHeight(ruler_height + numbers_height + 52);
	setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
	setFocusPolicy(Qt::StrongFocus);
	setMouseTracking(true);
	growing.setInterval(1);
	connect(&growing, &QTimer::timeout, this, [this] {
		if (peaks.build(words_a_tick))
			growing.stop();
		update();
	});
	settling.setSingleShot(true);
	settling.setInterval(600);
	connect(&settling, &QTimer::timeout, this, [this] { let_go(); });
}

QSize waveform_widget::sizeHint() const
{
	return QSize(fontMetrics().averageCharWidth() * 60, ruler_height + numbers_height + 100);
}

void waveform_widget::show_view(const waveform_view *view)
{
	forget_movement();
	const QString file = QString::fromStdString(shown_wave());
	const bool again = view && !words.empty() && file == shown_file;
	const bool whole = count >= static_cast<double>(words.size());
	shown_file = file;
	words.clear();
	loop_start = loop_end = range_start = range_end = 0;
	if (view) {
		words.assign(view->words.begin(), view->words.end());
		sample_rate = view->sample_rate;
		range_end = words.size();
		// A loop that the sample does not hold is none.
		if (view->loop_start < view->loop_end && view->loop_end <= words.size()) {
			loop_start = view->loop_start;
			loop_end = view->loop_end;
		}
		const wave_part marks = wave_marks();
		if (!marks.empty() && marks.end <= words.size()) {
			range_start = marks.first;
			range_end = marks.end;
		}
	}
	loop_start_read = loop_start;
	loop_end_read = loop_end;
	peaks.set_words(words);
	peaks.build(words_a_tick);
	peaks.complete() ? growing.stop() : growing.start();
	if (!exists(chosen))
		chosen = mark_start;
	again && !whole ? show_part(first, count) : zoom_all();
	say_state();
}

// Only the line moves; a part in view that it runs out of follows it.
void waveform_widget::show_played(std::int64_t word)
{
	const auto strip = [this] {
		const auto x = static_cast<int>(place_of(static_cast<double>(played)));
		return QRect(x - 2, 0, 5, height());
	};
	if (played >= 0)
		update(strip());
	const auto at = static_cast<double>(word);
	const bool left = played >= 0 && word >= 0 && static_cast<double>(played) < first + count &&
			  at >= first + count;
	played = word;
	if (left && grabbed == none)
		scroll_to(at);
	if (played >= 0)
		update(strip());
}

void waveform_widget::say_state()
{
	QString said =
		words.empty()
			? empty_text
			: QString::number(seconds_of(static_cast<double>(words.size())), 'f', 3) +
				  " s";
	const auto seconds = [this](std::uint64_t word) {
		return QString::number(seconds_of(static_cast<double>(word)), 'f', 3);
	};
	if (looped())
		said += qtr(", loop from %1 s to %2 s").arg(seconds(loop_start), seconds(loop_end));
	if (range_end - range_start < words.size())
		said += qtr(", start at %1 s, end at %2 s")
				.arg(seconds(range_start), seconds(range_end));
	if (hasFocus() && !words.empty())
		said += qtr(", %1 chosen").arg(name_of(chosen));
	setAccessibleName(qtr("Waveform: %1").arg(said));
	update();
}

// ---- The part in view -----------------------------------------------------------------------------

double waveform_widget::seconds_of(double word) const
{
	return sample_rate ? word / sample_rate : 0;
}

QRect waveform_widget::wave_place() const
{
	return rect().adjusted(wave_side, ruler_height, -wave_side, -numbers_height);
}

double waveform_widget::words_a_pixel() const
{
	return count / std::max(1, wave_place().width());
}

double waveform_widget::place_of(double word) const
{
	return wave_place().left() + (word - first) / std::max(words_a_pixel(), 1e-9);
}

double waveform_widget::word_at(double x) const
{
	return first + (x - wave_place().left()) * words_a_pixel();
}

void waveform_widget::show_part(double wanted_first, double wanted_count)
{
	const auto all = static_cast<double>(words.size());
	count = std::clamp(wanted_count, std::min(least_shown, all), all);
	first = std::clamp(wanted_first, 0.0, all - count);
	update();
	if (part_changed)
		part_changed();
}

void waveform_widget::zoom(double factor, double about)
{
	const auto all = static_cast<double>(words.size());
	const double wanted = std::clamp(count * factor, std::min(least_shown, all), all);
	show_part(count > 0 ? about - (about - first) * wanted / count : 0, wanted);
}

void waveform_widget::zoom_all()
{
	show_part(0, static_cast<double>(words.size()));
}

void waveform_widget::scroll_to(double wanted)
{
	show_part(wanted, count);
}

QString waveform_widget::words_of_part() const
{
	if (words.empty())
		return {};
	const int digits = seconds_of(count) < 0.1 ? 5 : 3;
	const auto seconds = [&](double word) {
		return QString::number(seconds_of(word), 'f', digits) + " s";
	};
	const auto all = static_cast<double>(words.size());
	return count >= all ? qtr("%1 shown").arg(seconds(all))
			    : qtr("%1 to %2 of %3")
				      .arg(seconds(first), seconds(first + count), seconds(all));
}

void waveform_widget::wheelEvent(QWheelEvent *event)
{
	const QPoint turned = event->angleDelta();
	if (words.empty() || (!turned.x() && !turned.y()))
		return event->ignore();
	const bool across = turned.x() || event->modifiers() & Qt::ShiftModifier;
	const double notches = (turned.y() ? turned.y() : turned.x()) / 120.0;
	if (across)
		scroll_to(first - notches * count / 10);
	else
		zoom(std::pow(one_notch, -notches), word_at(event->position().x()));
	event->accept();
}

// ---- Handles ----------------------------------------------------------------------------------------

std::uint64_t waveform_widget::word_of(handle which) const
{
	switch (which) {
	case mark_start:
		return range_start;
	case loop_begin:
		return loop_start;
	case loop_finish:
		return loop_end;
	default:
		return range_end;
	}
}

QString waveform_widget::name_of(handle which) const
{
	static constexpr const char *names[] = { "", own("start"), own("beginning of the loop"),
		own("end of the loop"), own("end") };
	return qtr(names[which]);
}

bool waveform_widget::exists(handle which) const
{
	return !words.empty() && (looped() || (which != loop_begin && which != loop_finish));
}

// The flags of the loop are above, those of start and end below.
waveform_widget::handle waveform_widget::handle_at(const QPointF &at) const
{
	const bool above = at.y() < wave_place().center().y();
	const handle order[] = { above ? loop_begin : mark_start, above ? loop_finish : mark_end,
		above ? mark_start : loop_begin, above ? mark_end : loop_finish };
	handle found = none;
	double least = reach;
	for (const handle which : order) {
		const double away =
			std::abs(place_of(static_cast<double>(word_of(which))) - at.x());
		if (exists(which) && away < least) {
			least = away;
			found = which;
		}
	}
	return found;
}

// The ends of the sample draw a handle like a zero crossing does.
std::uint64_t waveform_widget::snapped(double word, bool free) const
{
	const auto all = static_cast<double>(words.size());
	const auto at = static_cast<std::uint64_t>(std::lround(std::clamp(word, 0.0, all)));
	const double near = words_a_pixel() * reach;
	if (free)
		return at;
	if (word < near)
		return 0;
	if (word > all - near)
		return words.size();
	return nearest_crossing(
		words, at, std::min(static_cast<std::uint64_t>(near) + 1, furthest_crossing));
}

void waveform_widget::move_handle(handle which, std::uint64_t word)
{
	const std::uint64_t before = word_of(which);
	if (which == mark_start)
		range_start = std::min(word, range_end - 1);
	if (which == mark_end)
		range_end = std::clamp<std::uint64_t>(word, range_start + 1, words.size());
	if (which == loop_begin)
		loop_start = std::min(word, loop_end - 1);
	if (which == loop_finish)
		loop_end = std::clamp<std::uint64_t>(word, loop_start + 1, words.size());
	moved |= word_of(which) != before;
	if (which == mark_start || which == mark_end)
		set_wave_marks({ range_start, range_end });
	say_state();
}

void waveform_widget::forget_movement()
{
	settling.stop();
	grabbed = none;
	moved = false;
}

// The loop goes into the file; where that may not be now, the handle goes back.
void waveform_widget::let_go()
{
	const bool written = std::exchange(moved, false) &&
			     (loop_start != loop_start_read || loop_end != loop_end_read);
	forget_movement();
	if (!written || move_wave_loop({ loop_start, loop_end }))
		return;
	loop_start = loop_start_read;
	loop_end = loop_end_read;
	say_state();
}

void waveform_widget::mousePressEvent(QMouseEvent *event)
{
	if (event->button() != Qt::LeftButton || words.empty())
		return QWidget::mousePressEvent(event);
	let_go();
	grabbed = handle_at(event->position());
	if (grabbed == none)
		return;
	chosen = grabbed;
	grabbed_by = event->position().x() - place_of(static_cast<double>(word_of(grabbed)));
	say_state();
}

void waveform_widget::mouseMoveEvent(QMouseEvent *event)
{
	if (grabbed == none) {
		setCursor(
			handle_at(event->position()) == none ? Qt::ArrowCursor : Qt::SizeHorCursor);
		return;
	}
	const double word = word_at(event->position().x() - grabbed_by);
	move_handle(grabbed, snapped(word, event->modifiers() & Qt::AltModifier));
}

void waveform_widget::mouseReleaseEvent(QMouseEvent *event)
{
	if (event->button() == Qt::LeftButton && grabbed != none)
		let_go();
}

// ---- Keys -------------------------------------------------------------------------------------------

void waveform_widget::choose_next(int by)
{
	let_go();
	int next = chosen;
	do
		next = std::clamp<int>(next + by, none, mark_end + 1);
	while (next > none && next <= mark_end && !exists(static_cast<handle>(next)));
	if (next > none && next <= mark_end)
		chosen = static_cast<handle>(next);
	const auto at = static_cast<double>(word_of(chosen));
	if (at < first || at > first + count)
		scroll_to(at - count / 2);
	say_state();
}

bool waveform_widget::key_moves_view(int key)
{
	const auto handle_word = static_cast<double>(word_of(chosen));
	const bool in_view = handle_word >= first && handle_word <= first + count;
	const double about = in_view ? handle_word : middle();
	switch (key) {
	case Qt::Key_Plus:
	case Qt::Key_Equal:
		zoom(1 / (one_notch * one_notch), about);
		return true;
	case Qt::Key_Minus:
		zoom(one_notch * one_notch, about);
		return true;
	case Qt::Key_0:
		zoom_all();
		return true;
	case Qt::Key_Home:
		scroll_to(0);
		return true;
	case Qt::Key_End:
		scroll_to(static_cast<double>(words.size()));
		return true;
	case Qt::Key_PageUp:
	case Qt::Key_PageDown:
		scroll_to(first + (key == Qt::Key_PageUp ? -count : count) * 0.9);
		return true;
	default:
		return false;
	}
}

// By one word, or with Shift from zero crossing to zero crossing.
bool waveform_widget::key_moves_handle(const QKeyEvent &event)
{
	const int key = event.key();
	if (key == Qt::Key_Up || key == Qt::Key_Down) {
		choose_next(key == Qt::Key_Down ? 1 : -1);
		return true;
	}
	if (key != Qt::Key_Left && key != Qt::Key_Right)
		return false;
	const std::uint64_t at = word_of(chosen);
	const std::uint64_t all = words.size();
	const auto far = static_cast<std::uint64_t>(words_a_pixel() * 20) + 1;
	const std::uint64_t by = event.modifiers() & Qt::ShiftModifier ? far : 1;
	const std::uint64_t to =
		key == Qt::Key_Left ? at - std::min(at, by) : std::min(all, at + by);
	move_handle(chosen, by == 1 ? to : nearest_crossing(words, to, by / 2));
	settling.start();
	return true;
}

void waveform_widget::keyPressEvent(QKeyEvent *event)
{
	if (words.empty() || event->modifiers() & (Qt::ControlModifier | Qt::MetaModifier) ||
		(!key_moves_view(event->key()) && !key_moves_handle(*event)))
		QWidget::keyPressEvent(event);
}

bool waveform_widget::event(QEvent *event)
{
	switch (event->type()) {
	case QEvent::FocusIn:
	case QEvent::FocusOut:
		say_state();
		break;
	case QEvent::Hide:
		stop_playing();
		[[fallthrough]];
	case QEvent::UngrabMouse:
	case QEvent::WindowDeactivate:
		let_go();
		break;
	default:
		break;
	}
	return QWidget::event(event);
}

} // namespace velmor
