// key_map_paint.cpp - a keyboard with its keygroups: how it is painted
//
// Bands are darker the louder. Names are shown without what they all share. The chosen keygroup
// and the note that sounds are painted over a picture of all else, which is kept.

#include "src/resource.h"
#include "ui/key_map.h"
#include "ui/parts/palette.h"
#include "ui/parts/style.h"
#include "ui/parts/words.h"
#include <QPainter>
#include <algorithm>

namespace velmor
{

static constexpr double gap = 1; // around a bar and a band
static constexpr int least_for_words = 14, scale_room = 28;

QFont key_map::small_font(bool bold) const
{
	QFont small = font();
	small.setPointSizeF(small.pointSizeF() * 0.85);
	small.setBold(bold);
	return small;
}

static void fill_round(QPainter *painter, const QRectF &place, const QColor &fill,
	const QColor &frame = {}, double width = 0)
{
	painter->setRenderHint(QPainter::Antialiasing);
	painter->setPen(width > 0 ? QPen(frame, width) : QPen(Qt::NoPen));
	painter->setBrush(fill);
	const double round = std::min({ 3.0, place.width() / 3, place.height() / 3 });
	painter->drawRoundedRect(place, round, round);
}

// ---- Keys -----------------------------------------------------------------------------------------

void key_map::paint_key(QPainter *painter, int note, const QColor &tint, double part) const
{
	const bool dark = is_dark(palette()), black = is_black_key(note);
	const QColor ivory = dark ? QColor(0xD4, 0xD5, 0xD6) : QColor(Qt::white);
	const QColor fill = mixed(black ? QColor(0x2A, 0x2D, 0x31) : ivory, tint, part);
	const QRectF box =
		(black ? black_key(note) : white_key(note)).adjusted(0.5, 0.5, -0.5, -0.5);
	painter->setRenderHint(QPainter::Antialiasing);
	painter->setPen(QPen(dark ? QColor(0x5A, 0x5D, 0x61) : QColor(0xA8, 0xA8, 0xA4), 1));
	painter->setBrush(fill);
	painter->drawRoundedRect(box, 1.5, 1.5);
	if (note % 12)
		return;
	painter->setFont(small_font(false));
	painter->setPen(part > 0.6 ? QColor(Qt::white) : QColor(0x1B, 0x1E, 0x21));
	const QString name = QString::fromUtf8(midi_note[static_cast<std::size_t>(note)]);
	if (painter->fontMetrics().horizontalAdvance(name) < box.width() * 2)
		painter->drawText(box.adjusted(-box.width(), 0, box.width(), -3),
			Qt::AlignHCenter | Qt::AlignBottom, name);
}

// White keys first, as black ones stand on two of them.
void key_map::paint_keys(QPainter *painter) const
{
	for (const bool black : { false, true })
		for (int note = 0; note < 128; note++)
			if (is_black_key(note) == black)
				paint_key(painter, note, Qt::black, 0);
}

void key_map::paint_chosen_keys(QPainter *painter) const
{
	const key_group_view *group = chosen_group();
	const int low = group ? group->low_note : 128, high = group ? group->high_note : -1;
	const QColor accent = palette().color(QPalette::Highlight);
	const auto touched = [&](int note) {
		return note == view.note || (note >= low && note <= high);
	};
	for (const bool black : { false, true })
		for (int note = 0; note < 128; note++) {
			if (is_black_key(note) != black)
				continue;
			// A black key is painted again over a white one beside it.
			const bool beside = black && (touched(note - 1) || touched(note + 1));
			if (touched(note) || beside)
				paint_key(painter, note, accent,
					note == view.note ? 1
					: !touched(note)  ? 0
					: black           ? 0.45
							  : 0.22);
		}
}

// ---- Keygroups --------------------------------------------------------------------------------------

void key_map::paint_scale(QPainter *painter) const
{
	painter->setFont(small_font(false));
	painter->setPen(palette().color(QPalette::PlaceholderText));
	for (const int velocity : { 0, 64, 127 }) {
		const double y = y_of(velocity ? velocity + 0.5 : 0);
		painter->drawText(QRectF(0, y - 8, scale_room, 16),
			Qt::AlignRight | Qt::AlignVCenter, QString::number(velocity));
		painter->drawLine(QPointF(scale_room + 2, y), QPointF(scale_room + 6, y));
	}
}

void key_map::paint_band(QPainter *painter, const place &at, bool chosen) const
{
	const key_zone_view &zone = view.groups[static_cast<std::size_t>(at.group)]
					    .zones[static_cast<std::size_t>(at.zone)];
	const bool chosen_here = chosen && at.zone == view.zone;
	if (zone.name.empty() && !chosen_here)
		return;
	const QRectF box = zone_band(at.group, at.zone).adjusted(gap, gap, -gap, -gap);
	if (box.width() <= 0 || box.height() <= 0)
		return;
	const QColor base = palette().color(QPalette::Base),
		     bad = role_color(palette(), text_role::failed);
	const QColor link = palette().color(QPalette::Link);
	const double loud = (zone.low_velocity + zone.high_velocity) / 254.0;
	const QColor tint = zone.missing ? bad : chosen ? link : palette().color(QPalette::Text);
	const double part = zone.missing ? 0.1 : chosen ? 0.12 + 0.2 * loud : 0.05 + 0.14 * loud;
	const QColor frame = zone.missing ? bad : chosen ? link : QColor();
	fill_round(painter, box,
		zone.name.empty() ? QColor(Qt::transparent) : mixed(base, tint, part), frame,
		chosen_here       ? 2
		: frame.isValid() ? 1
				  : 0);
	const QRectF words = box.adjusted(4, 2, -2, -1);
	if (words.width() < least_for_words)
		return;
	painter->setFont(small_font(chosen));
	const QFontMetricsF metrics(painter->font());
	if (words.height() < metrics.height() - 2)
		return;
	painter->setPen(zone.missing ? bad : palette().color(QPalette::Text));
	painter->drawText(words, Qt::AlignLeft | Qt::AlignTop,
		metrics.elidedText(short_name(zone.name), Qt::ElideRight, words.width()));
	if ((!chosen && !zone.missing) || words.height() < 2 * metrics.height())
		return;
	painter->setFont(small_font(false));
	const QString second =
		zone.missing ? qtr("(not loaded)")
			     : qtr("%1 to %2").arg(zone.low_velocity).arg(zone.high_velocity);
	painter->drawText(words.adjusted(0, metrics.height(), 0, 0), Qt::AlignLeft | Qt::AlignTop,
		QFontMetricsF(painter->font()).elidedText(second, Qt::ElideRight, words.width()));
}

void key_map::paint_group(QPainter *painter, int group, bool chosen) const
{
	const key_group_view &shown = view.groups[static_cast<std::size_t>(group)];
	const QRectF bar = group_bar(group).adjusted(gap, gap / 2, -gap, -gap / 2);
	const QColor link = palette().color(QPalette::Link);
	for (int zone = 0; zone < static_cast<int>(shown.zones.size()); zone++)
		if (!chosen || zone != view.zone)
			paint_band(painter, { group, zone }, chosen);
	if (chosen && chosen_zone())
		paint_band(painter, { group, view.zone }, true);
	fill_round(painter, bar,
		chosen ? palette().color(QPalette::Highlight)
		       : mixed(palette().color(QPalette::Base), palette().color(QPalette::Text),
				 0.2));
	const QString number = QString::number(group + 1);
	painter->setFont(small_font(chosen));
	painter->setPen(palette().color(chosen ? QPalette::HighlightedText : QPalette::Text));
	if (QFontMetricsF(painter->font()).horizontalAdvance(number) < bar.width() - 2 &&
		bar.height() > 9)
		painter->drawText(bar, Qt::AlignCenter, number);
	if (!chosen)
		return;
	// Grips at both ends, and a frame around bar and bands.
	if (bar.width() > 30)
		for (const double x : { bar.left() + 4, bar.right() - 5.5 })
			painter->fillRect(QRectF(x, bar.top() + 4, 1.5, bar.height() - 8),
				palette().color(QPalette::HighlightedText));
	const double top = bands_area().top() - 1;
	fill_round(painter, QRectF(bar.left(), top, bar.width(), bar.bottom() - top),
		Qt::transparent, link, 1.5);
}

void key_map::paint_note(QPainter *painter) const
{
	if (view.note < 0 || view.note > 127)
		return;
	const double x = middle_of(view.note), y = y_of(view.velocity);
	const QColor link = palette().color(QPalette::Link);
	painter->setRenderHint(QPainter::Antialiasing);
	painter->setPen(QPen(link, 1.5, Qt::DotLine));
	painter->drawLine(QPointF(x, y + 5), QPointF(x, bars_area().top()));
	painter->setPen(QPen(link, 1.5));
	painter->setBrush(palette().color(QPalette::Base));
	painter->drawEllipse(QPointF(x, y), 4.5, 4.5);
}

// ---- All ------------------------------------------------------------------------------------------------

void key_map::paint_whole()
{
	const double ratio = devicePixelRatioF();
	whole = QPixmap(size() * ratio);
	whole.setDevicePixelRatio(ratio);
	whole.fill(Qt::transparent);
	QPainter painter(&whole);
	draw_box(&painter, rect(), palette().color(QPalette::Base), palette().color(QPalette::Mid),
		1, card_corner);
	paint_scale(&painter);
	paint_keys(&painter);
	for (int group = 0; group < static_cast<int>(view.groups.size()); group++)
		if (group != view.group)
			paint_group(&painter, group, false);
	stale = false;
	painted_whole++;
}

void key_map::paintEvent(QPaintEvent *)
{
	if (stale || whole.deviceIndependentSize() != QSizeF(size()) ||
		whole.devicePixelRatio() != devicePixelRatioF())
		paint_whole();
	QPainter painter(this);
	painter.drawPixmap(0, 0, whole);
	paint_chosen_keys(&painter);
	if (chosen_group())
		paint_group(&painter, view.group, true);
	paint_note(&painter);
	if (empty) {
		painter.setFont(font());
		painter.setPen(palette().color(QPalette::PlaceholderText));
		painter.drawText(bands_area(), Qt::AlignCenter, empty_text);
	}
	if (hasFocus())
		draw_box(&painter, rect(), Qt::transparent, palette().color(QPalette::Link), 1.5,
			card_corner);
}

} // namespace velmor
