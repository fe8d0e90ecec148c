// waveform.cpp - the picture of a sample with its loop
//
// A ruler of seconds above, the wave, and below it the numbers of words at which the sample
// and its loop begin and end: no number ever covers the wave. One column of the screen shows
// the lowest and highest of its words, joined to the column before. Colours come from the
// palette, so light and dark themes both work.

#include "ui/waveform.h"
#include "ui/parts/style.h"
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace velmor
{

static constexpr int ruler_height = 20, numbers_height = 22, least_tick = 60;

waveform_widget::waveform_widget(const QString &empty, QWidget *parent)
	: QWidget(parent), empty_text(empty)
{
	setMinimumHeight(ruler_height + numbers_height + 80);
	setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

QSize waveform_widget::sizeHint() const
{
	return QSize(fontMetrics().averageCharWidth() * 60, ruler_height + numbers_height + 100);
}

void waveform_widget::show_view(const waveform_view *view)
{
	words.clear();
	loop_start = loop_end = 0;
	if (view) {
		words.assign(view->words.begin(), view->words.end());
		sample_rate = view->sample_rate;
		// A loop that the sample does not hold is none.
		if (view->loop_start < view->loop_end && view->loop_end <= words.size()) {
			loop_start = view->loop_start;
			loop_end = view->loop_end;
		}
	}
	QString said = words.empty() ? empty_text
				     : QString::number(seconds_of(words.size()), 'f', 3) + " s";
	if (looped())
		said += QString(", loop from %1 s to %2 s")
				.arg(QString::number(seconds_of(loop_start), 'f', 3),
					QString::number(seconds_of(loop_end), 'f', 3));
	setAccessibleName("Waveform: " + said);
	update();
}

double waveform_widget::seconds_of(std::uint64_t word) const
{
	return sample_rate ? static_cast<double>(word) / sample_rate : 0;
}

QRect waveform_widget::wave_place() const
{
	return rect().adjusted(12, ruler_height, -12, -numbers_height);
}

qreal waveform_widget::place_of(std::uint64_t word) const
{
	const QRect place = wave_place();
	return place.left() +
	       static_cast<qreal>(word) / static_cast<qreal>(words.size()) * place.width();
}

void waveform_widget::paint_loop(QPainter *painter) const
{
	const QRect wave = wave_place();
	const QColor line = palette().color(QPalette::Link);
	QColor shade = palette().color(QPalette::Highlight);
	shade.setAlphaF(0.14F);
	const QRectF area(QPointF(place_of(loop_start), wave.top()),
		QPointF(place_of(loop_end), wave.bottom() + 1));
	painter->fillRect(area, shade);
	painter->fillRect(QRectF(area.left() - 0.75, area.top(), 1.5, area.height()), line);
	painter->fillRect(QRectF(area.right() - 0.75, area.top(), 1.5, area.height()), line);
	// Flags that point into the loop.
	painter->fillRect(QRectF(area.left(), area.top(), std::min(8.0, area.width()), 6), line);
	const double flag = std::min(8.0, area.width());
	painter->fillRect(QRectF(area.right() - flag, area.top(), flag, 6), line);
}

void waveform_widget::paint_words(QPainter *painter) const
{
	const QRect wave = wave_place();
	const auto column = [&](int x) {
		return words.size() * static_cast<std::size_t>(x) /
		       static_cast<std::size_t>(wave.width());
	};
	const qreal middle = wave.top() + wave.height() / 2.0,
		    scale = (wave.height() - 4) / 2.0 / 32768.0;
	std::int16_t last_low = words.front(), last_high = words.front();
	for (int x = 0; x < wave.width(); x++) {
		const std::size_t from = column(x), to = std::max(column(x + 1), from + 1);
		if (to > words.size())
			break;
		const auto [low, high] =
			std::minmax_element(words.begin() + static_cast<std::ptrdiff_t>(from),
				words.begin() + static_cast<std::ptrdiff_t>(to));
		const int bottom = std::min<int>(*low, last_high),
			  top = std::max<int>(*high, last_low);
		last_low = *low;
		last_high = *high;
		const bool in_loop = looped() && from >= loop_start && from < loop_end;
		painter->setPen(palette().color(in_loop ? QPalette::Link : QPalette::Dark));
		const qreal at = wave.left() + x + 0.5;
		painter->drawLine(QPointF(at, middle - bottom * scale + 0.5),
			QPointF(at, middle - top * scale - 0.5));
	}
}

// The step that leaves room for its number: 1, 2 or 5 of a power of ten.
static double step_of(double seconds, int width)
{
	double step = 0.00001;
	for (int i = 0; seconds > 0 && step / seconds * width < least_tick; i++)
		step *= i % 3 == 1 ? 2.5 : 2;
	return step;
}

void waveform_widget::paint_ruler(QPainter *painter) const
{
	const QRect wave = wave_place();
	const double all = seconds_of(words.size());
	const double step = step_of(all, wave.width());
	const int digits = std::max(1, static_cast<int>(std::ceil(-std::log10(step) - 0.001)));
	painter->setPen(palette().color(QPalette::PlaceholderText));
	for (int i = 0; all > 0 && i * step <= all; i++) {
		const double x = wave.left() + i * step / all * wave.width();
		painter->drawLine(QPointF(x, ruler_height - 5), QPointF(x, ruler_height - 1));
		const QString number = i ? QString::number(i * step, 'f', digits) : "0 s";
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
	const QString first = QStringLiteral("Start 0"), last = QString("End %1").arg(words.size());
	painter->drawText(strip, Qt::AlignLeft | Qt::AlignVCenter, first);
	painter->drawText(strip, Qt::AlignRight | Qt::AlignVCenter, last);
	if (!looped())
		return;
	QFont bold = painter->font();
	bold.setBold(true);
	painter->setFont(bold);
	painter->setPen(palette().color(QPalette::Link));
	const QString loop = QString("Loop %1 to %2").arg(loop_start).arg(loop_end);
	// As near to the loop as the other numbers leave room.
	const QFontMetrics metrics(bold);
	const double wide = metrics.horizontalAdvance(loop);
	const double low = strip.left() + metrics.horizontalAdvance(first) + 12;
	const double high = strip.right() - metrics.horizontalAdvance(last) - 12 - wide;
	painter->drawText(QRectF(std::max(low, std::min(place_of(loop_start) + 4, high)),
				  strip.top(), wide + 2, strip.height()),
		Qt::AlignVCenter, loop);
}

void waveform_widget::paintEvent(QPaintEvent *)
{
	QPainter painter(this);
	const QColor hairline = palette().color(QPalette::Midlight);
	draw_box(&painter, rect(), palette().color(QPalette::Base), palette().color(QPalette::Mid));
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
	QFont small = font();
	small.setPointSizeF(small.pointSizeF() * 0.85);
	painter.setFont(small);
	paint_ruler(&painter);
	paint_numbers(&painter);
}

} // namespace velmor
