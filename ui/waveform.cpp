// waveform.cpp - the picture of a sample with its loop
//
// One column of the screen shows the lowest and highest of its words. Colours
// come from the palette, so light and dark themes both work.

#include "ui/waveform.h"
#include <QPainter>
#include <algorithm>

namespace velmor
{

waveform_widget::waveform_widget(const QString &empty, QWidget *parent)
	: QWidget(parent), empty_text(empty)
{
	setMinimumHeight(fontMetrics().height() * 5);
	setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

QSize waveform_widget::sizeHint() const
{
	return QSize(fontMetrics().averageCharWidth() * 60, fontMetrics().height() * 8);
}

void waveform_widget::show_view(const waveform_view *view)
{
	words.clear();
	loop_start = loop_end = 0;
	if (view) {
		words.assign(view->words.begin(), view->words.end());
		sample_rate = view->sample_rate;
		if (view->loop_start < view->loop_end && view->loop_end <= words.size()) {
			loop_start = view->loop_start;
			loop_end = view->loop_end;
		}
	}
	update();
}

qreal waveform_widget::place_of(std::uint64_t word) const
{
	return static_cast<qreal>(word) / static_cast<qreal>(words.size()) * width();
}

void waveform_widget::paint_loop(QPainter *painter) const
{
	if (loop_end <= loop_start)
		return;
	QColor shade = palette().color(QPalette::Highlight);
	const QRectF area(QPointF(place_of(loop_start), 0), QPointF(place_of(loop_end), height()));
	painter->setPen(shade);
	painter->drawLine(area.topLeft(), area.bottomLeft());
	painter->drawLine(area.topRight(), area.bottomRight());
	shade.setAlphaF(0.25F);
	painter->fillRect(area, shade);
	painter->setPen(palette().color(QPalette::Text));
	painter->drawText(
		area.adjusted(4, 2, 0, 0), Qt::AlignLeft | Qt::AlignTop, QStringLiteral("Loop"));
}

void waveform_widget::paint_words(QPainter *painter) const
{
	const auto column = [this](int x) {
		return words.size() * static_cast<std::size_t>(x) /
		       static_cast<std::size_t>(width());
	};
	const qreal middle = height() / 2.0, scale = height() / 2.0 / 32768.0;
	painter->setPen(palette().color(QPalette::Mid));
	painter->drawLine(QPointF(0, middle), QPointF(width(), middle));
	painter->setPen(palette().color(QPalette::Text));
	for (int x = 0; x < width(); x++) {
		const std::size_t from = column(x), to = std::max(column(x + 1), from + 1);
		if (to > words.size())
			break;
		const auto [low, high] =
			std::minmax_element(words.begin() + static_cast<std::ptrdiff_t>(from),
				words.begin() + static_cast<std::ptrdiff_t>(to));
		painter->drawLine(QPointF(x + 0.5, middle - *low * scale + 0.5),
			QPointF(x + 0.5, middle - *high * scale - 0.5));
	}
}

void waveform_widget::paint_scale(QPainter *painter) const
{
	if (!sample_rate)
		return;
	const double seconds = static_cast<double>(words.size()) / sample_rate;
	painter->setPen(palette().color(QPalette::PlaceholderText));
	painter->drawText(rect().adjusted(4, 2, -4, -2), Qt::AlignRight | Qt::AlignBottom,
		QString("%1 s").arg(seconds, 0, 'f', 2));
}

void waveform_widget::paintEvent(QPaintEvent *)
{
	QPainter painter(this);
	painter.fillRect(rect(), palette().color(QPalette::Base));
	if (words.empty()) {
		painter.setPen(palette().color(QPalette::PlaceholderText));
		painter.drawText(rect(), Qt::AlignCenter, empty_text);
	} else {
		paint_loop(&painter);
		paint_words(&painter);
		paint_scale(&painter);
	}
	painter.setPen(palette().color(QPalette::Mid));
	painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace velmor
