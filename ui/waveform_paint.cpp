// waveform_paint.cpp - the picture of a sample: a ruler, the wave, and the numbers below it
//
// Seconds above, the wave, and below it the words at which the sample and its loop begin and end:
// no number ever covers the wave. Where a column of the screen holds several words it shows their
// lowest and highest, joined to the column before; where it holds less than one, the words are
// joined by lines, and dots when there is room. Colours come from the palette.

#include "ui/parts/style.h"
#include "ui/parts/words.h"
#include "ui/waveform.h"
#include "ui/waveform_places.h"
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace velmor
{

static constexpr int least_tick = 60, flag = 8;
static constexpr double smooth_from = 2, dots_from = 5; // pixels a word

double waveform_widget::height_of(double value) const
{
	const QRect wave = wave_place();
	return wave.top() + wave.height() / 2.0 - value * (wave.height() - 4) / 2.0 / 32768.0;
}

// ---- The wave -------------------------------------------------------------------------------------

void waveform_widget::paint_columns(QPainter *painter) const
{
	const QRect wave = wave_place();
	const double a_pixel = words_a_pixel();
	const auto word_of_column = [&](int x) {
		return static_cast<std::uint64_t>(
			std::clamp(first + x * a_pixel, 0.0, static_cast<double>(words.size())));
	};
	std::vector<QLineF> outside, inside;
	peak last = { 0, 0 };
	for (int x = 0; x < wave.width(); x++) {
		const std::uint64_t from = word_of_column(x);
		const std::uint64_t to = std::max(word_of_column(x + 1), from + 1);
		if (to > words.size())
			break;
		const peak here = peaks.range(from, to);
		const int low = x ? std::min(here.low, last.high) : here.low;
		const int high = x ? std::max(here.high, last.low) : here.high;
		last = here;
		const double at = wave.left() + x + 0.5;
		const bool in_loop = looped() && from >= loop_start && from < loop_end;
		(in_loop ? inside : outside)
			.emplace_back(at, height_of(low) + 0.5, at, height_of(high) - 0.5);
	}
	painter->setPen(palette().color(QPalette::Dark));
	painter->drawLines(outside.data(), static_cast<int>(outside.size()));
	painter->setPen(palette().color(QPalette::Link));
	painter->drawLines(inside.data(), static_cast<int>(inside.size()));
}

// Lines are smooth where they are few.
void waveform_widget::paint_values(QPainter *painter) const
{
	const auto begin = static_cast<std::uint64_t>(std::max(0.0, first - 1));
	const auto end = std::min<std::uint64_t>(
		static_cast<std::uint64_t>(first + count) + 2, words.size());
	const auto point = [this](std::uint64_t i) {
		return QPointF(place_of(static_cast<double>(i)), height_of(words[i]));
	};
	std::vector<QLineF> outside, inside;
	for (std::uint64_t i = begin; i < end; i++) {
		const bool in_loop = looped() && i >= loop_start && i < loop_end;
		(in_loop ? inside : outside)
			.emplace_back(point(i), point(std::min(i + 1, end - 1)));
	}
	const bool dots = words_a_pixel() * dots_from < 1;
	painter->setRenderHint(QPainter::Antialiasing, words_a_pixel() * smooth_from < 1);
	for (const bool in_loop : { false, true }) {
		const std::vector<QLineF> &lines = in_loop ? inside : outside;
		const QColor color = palette().color(in_loop ? QPalette::Link : QPalette::Dark);
		painter->setPen(color);
		painter->drawLines(lines.data(), static_cast<int>(lines.size()));
		painter->setBrush(color);
		for (std::size_t i = 0; dots && i < lines.size(); i++)
			painter->drawEllipse(lines[i].p1(), 2, 2);
	}
	painter->setRenderHint(QPainter::Antialiasing, false);
}

void waveform_widget::paint_words(QPainter *painter) const
{
	painter->save();
	painter->setClipRect(wave_place());
	words_a_pixel() >= 1 ? paint_columns(painter) : paint_values(painter);
	painter->restore();
}

// ---- Handles ----------------------------------------------------------------------------------------

void waveform_widget::paint_loop(QPainter *painter) const
{
	const QRect wave = wave_place();
	const QColor line = palette().color(QPalette::Link);
	QColor shade = palette().color(QPalette::Highlight);
	shade.setAlphaF(0.14F);
	const double from = place_of(static_cast<double>(loop_start));
	const double to = place_of(static_cast<double>(loop_end));
	const double wide = std::min<double>(flag, to - from);
	painter->save();
	painter->setClipRect(wave.adjusted(-1, 0, 1, 0));
	painter->fillRect(QRectF(from, wave.top(), to - from, wave.height()), shade);
	for (const handle which : { loop_begin, loop_finish }) {
		const double at = which == loop_begin ? from : to;
		const double thick = hasFocus() && chosen == which ? 3 : 1.5;
		painter->fillRect(QRectF(at - thick / 2, wave.top(), thick, wave.height()), line);
		// Flags that point into the loop.
		painter->fillRect(
			QRectF(which == loop_begin ? at : at - wide, wave.top(), wide, 6), line);
	}
	painter->restore();
}

// What a trim would cut.
void waveform_widget::paint_outside(QPainter *painter) const
{
	const QRect wave = wave_place();
	QColor veil = palette().color(QPalette::Window);
	veil.setAlphaF(0.75F);
	const double from = std::clamp<double>(
		place_of(static_cast<double>(range_start)), wave.left(), wave.right() + 1);
	const double to = std::clamp<double>(
		place_of(static_cast<double>(range_end)), wave.left(), wave.right() + 1);
	painter->fillRect(QRectF(wave.left(), wave.top(), from - wave.left(), wave.height()), veil);
	painter->fillRect(QRectF(to, wave.top(), wave.right() + 1 - to, wave.height()), veil);
}

// Start and end have their flags below.
void waveform_widget::paint_marks(QPainter *painter) const
{
	const QRect wave = wave_place();
	const QColor line = palette().color(QPalette::Dark);
	painter->save();
	painter->setClipRect(wave.adjusted(-flag, 0, flag, 0));
	painter->setRenderHint(QPainter::Antialiasing);
	for (const handle which : { mark_start, mark_end }) {
		const double at = place_of(static_cast<double>(word_of(which)));
		const double low = wave.bottom() + 1, into = which == mark_start ? flag : -flag;
		const double thick = hasFocus() && chosen == which ? 3 : 1.2;
		painter->fillRect(QRectF(at - thick / 2, wave.top(), thick, wave.height()), line);
		QPainterPath corner_of_mark(QPointF(at, low - flag));
		corner_of_mark.lineTo(at + into, low);
		corner_of_mark.lineTo(at, low);
		painter->fillPath(corner_of_mark, line);
	}
	painter->restore();
}

// What is heard just now.
void waveform_widget::paint_played(QPainter *painter) const
{
	const QRect wave = wave_place();
	const double at = place_of(static_cast<double>(played));
	if (played >= 0 && at >= wave.left() && at <= wave.right() + 1)
		painter->fillRect(QRectF(at - 0.75, wave.top(), 1.5, wave.height()),
			palette().color(QPalette::Text));
}

// ---- Words --------------------------------------------------------------------------------------------

// The step that leaves room for its number: 1, 2 or 5 of a power of ten.
static double step_of(double seconds, int width)
{
	double step = 0.000001;
	for (int i = 0; seconds > 0 && step / seconds * width < least_tick; i++)
		step *= i % 3 == 1 ? 2.5 : 2;
	return step;
}

void waveform_widget::paint_ruler(QPainter *painter) const
{
	const QRect wave = wave_place();
	const double all = seconds_of(count), from = seconds_of(first);
	if (all <= 0)
		return;
	const double step = step_of(all, wave.width());
	const int digits = std::max(1, static_cast<int>(std::ceil(-std::log10(step) - 0.001)));
	painter->setPen(palette().color(QPalette::PlaceholderText));
	for (double i = std::ceil(from / step - 0.001); i * step <= from + all; i++) {
		const double x = wave.left() + (i * step - from) / all * wave.width();
		painter->drawLine(QPointF(x, ruler_height - 5), QPointF(x, ruler_height - 1));
		const QString number = i > 0 ? QString::number(i * step, 'f', digits) : "0 s";
		if (x + least_tick < width())
			painter->drawText(QRectF(x + 3, 0, least_tick, ruler_height - 3),
				Qt::AlignVCenter, number);
	}
}

void waveform_widget::paint_numbers(QPainter *painter) const
{
	const QRect strip(wave_place().left(), height() - numbers_height, wave_place().width(),
		numbers_height);
	painter->setPen(palette().color(QPalette::PlaceholderText));
	const QString first_word = qtr("Start %1").arg(range_start);
	const QString last_word = qtr("End %1").arg(range_end);
	painter->drawText(strip, Qt::AlignLeft | Qt::AlignVCenter, first_word);
	painter->drawText(strip, Qt::AlignRight | Qt::AlignVCenter, last_word);
	if (!looped())
		return;
	QFont bold = painter->font();
	bold.setBold(true);
	painter->setFont(bold);
	painter->setPen(palette().color(QPalette::Link));
	const QString loop = qtr("Loop %1 to %2").arg(loop_start).arg(loop_end);
	// As near to the loop as the other numbers leave room.
	const QFontMetrics metrics(bold);
	const double wide = metrics.horizontalAdvance(loop);
	const double low = strip.left() + metrics.horizontalAdvance(first_word) + 12;
	const double high = strip.right() - metrics.horizontalAdvance(last_word) - 12 - wide;
	const double wanted = place_of(static_cast<double>(loop_start)) + 4;
	painter->drawText(QRectF(std::max(low, std::min(wanted, high)), strip.top(), wide + 2,
				  strip.height()),
		Qt::AlignVCenter, loop);
}

void waveform_widget::paintEvent(QPaintEvent *)
{
	QPainter painter(this);
	const QColor hairline = palette().color(QPalette::Midlight);
	draw_box(&painter, rect(), palette().color(QPalette::Base),
		palette().color(hasFocus() ? QPalette::Link : QPalette::Mid), hasFocus() ? 1.5 : 1);
	painter.fillRect(QRect(1, 1, width() - 2, ruler_height - 1),
		palette().color(QPalette::AlternateBase));
	painter.fillRect(QRect(1, ruler_height, width() - 2, 1), hairline);
	painter.fillRect(QRect(1, height() - numbers_height, width() - 2, 1), hairline);
	if (words.empty()) {
		painter.setPen(palette().color(QPalette::PlaceholderText));
		painter.drawText(rect(), Qt::AlignCenter, empty_text);
		return;
	}
	if (looped())
		paint_loop(&painter);
	paint_words(&painter);
	paint_outside(&painter);
	paint_marks(&painter);
	paint_played(&painter);
	QFont small = font();
	small.setPointSizeF(small.pointSizeF() * 0.85);
	painter.setFont(small);
	paint_ruler(&painter);
	paint_numbers(&painter);
}

} // namespace velmor
