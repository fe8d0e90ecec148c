// track_strip.cpp - the notes of one track over time, and where the song is in them

#include "ui/track_strip.h"
#include "ui/parts/palette.h"
#include "ui/parts/words.h"
#include <QEvent>
#include <QPainter>
#include <algorithm>
#include <array>

namespace velmor
{

static constexpr int octave = 12, least_pitches = 10, edge = 8;
static constexpr double thickest = 4, thinnest = 1.5, least_width = 2;

track_strip::track_strip(QWidget *parent) : QWidget(parent)
{
	setMinimumWidth(names_width + 120);
	setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
	setAttribute(Qt::WA_OpaquePaintEvent);
}

// ---- What it shows ------------------------------------------------------------------------------

void track_strip::show_view(const strip_view &view)
{
	notes = view.notes;
	name = QString::fromUtf8(view.name.c_str());
	longest = 0;
	low = 127;
	high = 0;
	for (const strip_note &note : notes) {
		longest = std::max(longest, note.end - std::min(note.start, note.end));
		low = std::min<int>(low, note.pitch);
		high = std::max<int>(high, note.pitch);
	}
	if (notes.empty())
		low = high = 60;
	const int missing = std::max(least_pitches - (high - low), 0);
	low -= missing / 2;
	high += missing - missing / 2;
	setAccessibleName(qtr("Notes over time, %1 of them").arg(notes.size()));
	forget_pictures();
}

void track_strip::show_span(const song_span &span, std::uint64_t step)
{
	if (span == shown && step == grid)
		return;
	shown = span;
	grid = step;
	forget_pictures();
}

void track_strip::show_position(std::int64_t ticks)
{
	const auto column = [this](std::int64_t at) {
		return at < 0 ? -1 : static_cast<int>(x_of(static_cast<std::uint64_t>(at)));
	};
	const bool moved = column(ticks) != column(position);
	position = ticks;
	if (moved)
		update();
}

void track_strip::show_muted(bool muted)
{
	if (muted == is_muted)
		return;
	is_muted = muted;
	forget_pictures();
}

void track_strip::changeEvent(QEvent *event)
{
	if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
		forget_pictures();
	QWidget::changeEvent(event);
}

void track_strip::forget_pictures()
{
	past = to_come = QPixmap();
	update();
}

// ---- Places ---------------------------------------------------------------------------------------

double track_strip::place_of(const song_span &span, std::uint64_t tick, int width)
{
	const double all = static_cast<double>(std::max<std::uint64_t>(span.to - span.from, 1));
	const double behind = static_cast<double>(tick) - static_cast<double>(span.from);
	return names_width + behind / all * (width - names_width);
}

double track_strip::x_of(std::uint64_t tick) const
{
	return place_of(shown, tick, width());
}

QRectF track_strip::place_of(const strip_note &note) const
{
	const double step = static_cast<double>(height() - 2 * edge) / (high - low + 1);
	const double thick = std::clamp(step * 0.7, thinnest, thickest);
	const double left = std::max<double>(x_of(note.start), names_width);
	const double right = std::min<double>(x_of(note.end), width());
	return { left, edge + (high - note.pitch + 0.5) * step - thick / 2,
		std::max(right - left - 1, least_width), thick };
}

// The first note that can reach that tick: notes stand by their start.
std::size_t track_strip::first_from(std::uint64_t tick) const
{
	const std::uint64_t start = tick - std::min(tick, longest);
	const auto at = std::lower_bound(notes.begin(), notes.end(), start,
		[](const strip_note &note, std::uint64_t when) { return note.start < when; });
	return static_cast<std::size_t>(at - notes.begin());
}

// ---- Painting -------------------------------------------------------------------------------------

// Lines of time, and one for each C with its name.
void track_strip::paint_lines(QPainter *painter) const
{
	painter->setPen(palette().color(QPalette::Midlight));
	for (std::uint64_t at = grid ? (shown.from + grid - 1) / grid * grid : shown.to;
		at < shown.to; at += grid)
		painter->drawLine(QPointF(x_of(at), 0), QPointF(x_of(at), height()));
	QFont small = font();
	small.setPointSizeF(font().pointSizeF() * 0.85);
	painter->setFont(small);
	for (int pitch = (low + octave - 1) / octave * octave; pitch <= high; pitch += octave) {
		const QRectF line =
			place_of({ shown.from, shown.to, static_cast<std::uint8_t>(pitch), 0 });
		const double y = line.center().y();
		painter->setPen(palette().color(QPalette::Midlight));
		painter->drawLine(QPointF(names_width, y), QPointF(width(), y));
		painter->setPen(palette().color(QPalette::PlaceholderText));
		painter->drawText(QRectF(0, y - 10, names_width - 6, 20),
			Qt::AlignRight | Qt::AlignVCenter, QString("C%1").arg(pitch / octave - 2));
	}
	painter->setPen(palette().color(QPalette::PlaceholderText));
	painter->drawText(QRectF(names_width + 6, 2, width() - names_width - 12, 16),
		Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine, name);
}

// A note that would lie on what was painted for its pitch already is left out, so that a strip
// costs no more than its pixels.
void track_strip::paint_notes(QPainter *painter, const QColor &color) const
{
	std::array<double, 128> painted;
	painted.fill(-1);
	for (std::size_t i = first_from(shown.from); i < notes.size(); i++) {
		const strip_note &note = notes[i];
		if (note.start >= shown.to)
			break;
		if (note.end < shown.from || note.pitch > 127)
			continue;
		const QRectF place = place_of(note);
		double &last = painted[note.pitch];
		if (place.right() < last + 0.5)
			continue;
		last = place.right();
		painter->fillRect(place, color);
	}
}

QPixmap track_strip::make_picture(const QColor &color) const
{
	QPixmap picture(size() * devicePixelRatioF());
	picture.setDevicePixelRatio(devicePixelRatioF());
	picture.fill(palette().color(is_muted ? QPalette::AlternateBase : QPalette::Base));
	QPainter painter(&picture);
	paint_lines(&painter);
	paint_notes(&painter, color);
	return picture;
}

void track_strip::paint_sounding(QPainter *painter) const
{
	const auto now = static_cast<std::uint64_t>(position);
	const QColor color = palette().color(QPalette::Link);
	for (std::size_t i = first_from(now); i < notes.size() && notes[i].start <= now; i++)
		if (now < notes[i].end)
			painter->fillRect(place_of(notes[i]), color);
}

void track_strip::paintEvent(QPaintEvent *)
{
	const QColor back = palette().color(QPalette::Base), ink = palette().color(QPalette::Text);
	if (past.isNull() || past.size() != size() * devicePixelRatioF()) {
		past = make_picture(mixed(back, ink, is_muted ? 0.2 : 0.42));
		to_come = make_picture(mixed(back, ink, is_muted ? 0.2 : 0.75));
	}
	QPainter painter(this);
	if (position < 0) {
		painter.drawPixmap(0, 0, to_come);
		return;
	}
	const double x = x_of(static_cast<std::uint64_t>(position));
	const int split = std::clamp(static_cast<int>(x), 0, width());
	painter.setClipRect(0, 0, split, height());
	painter.drawPixmap(0, 0, past);
	painter.setClipRect(split, 0, width() - split, height());
	painter.drawPixmap(0, 0, to_come);
	painter.setClipping(false);
	if (!is_muted)
		paint_sounding(&painter);
	if (x >= names_width && x <= width())
		painter.fillRect(QRectF(x - 1, 0, 2, height()), palette().color(QPalette::Link));
}

} // namespace velmor
