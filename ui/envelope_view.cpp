// envelope_view.cpp - an envelope as a curve with points that can be dragged
//
// A point that stands for two values moves the one whose way the mouse goes first, so that a
// movement is an edit of one value. What was read is a dashed line.

#include "ui/envelope_view.h"
#include "src/velmor_window.h"
#include "ui/parts/palette.h"
#include "ui/parts/style.h"
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <utility>

namespace velmor
{

static constexpr int steps = 100; // of a time or rate
static constexpr double reach = 9, way_known = 3, letters_height = 20;
static constexpr std::size_t of_adsr = 4, of_rates = 8;

envelope_curve::envelope_curve(int window, int control, const QString &said, QWidget *parent)
	: QWidget(parent), window_id(window), control_id(control), empty_text(said)
{
	setMouseTracking(true);
	setFocusPolicy(Qt::StrongFocus);
	setMinimumSize(160, 96);
	show_view(nullptr);
}

void envelope_curve::show_view(const envelope_view *shown)
{
	const std::size_t wanted = !shown                                 ? 0
				   : shown->shape == envelope_shape::adsr ? of_adsr
									  : of_rates;
	empty = !shown || shown->values.size() != wanted;
	view = empty ? envelope_view{} : *shown;
	if (view.as_read.size() != view.values.size())
		view.as_read.clear();
	chosen = std::clamp(chosen, 0, std::max(0, static_cast<int>(view.values.size()) - 1));
	QStringList all;
	for (int i = 0; i < static_cast<int>(view.values.size()); i++)
		all += words_of(i);
	const QString before = accessibleName().section(": ", 0, 0);
	setAccessibleName(before + ": " + (empty ? empty_text : all.join(", ")));
	update();
}

void envelope_curve::setVisible(bool visible)
{
	QWidget::setVisible(visible);
	if (title)
		title->setVisible(visible);
}

QString envelope_curve::words_of(int index) const
{
	const auto i = static_cast<std::size_t>(index);
	const QString name = i < view.letters.size() ? QString::fromUtf8(view.letters[i].c_str())
						     : QString::number(index + 1);
	return name + ' ' + QString::number(view.values[i]);
}

// ---- Places ---------------------------------------------------------------------------------------

QRectF envelope_curve::curve_area() const
{
	return QRectF(rect()).adjusted(14, 12, -14, -letters_height - 4);
}

int envelope_curve::low_of(int index) const
{
	return view.shape == envelope_shape::adsr || index < 4 ? 0 : view.low_level;
}

int envelope_curve::high_of(int index) const
{
	return view.shape == envelope_shape::adsr || index < 4
		       ? steps
		       : std::max(view.low_level + 1, view.high_level);
}

double envelope_curve::y_of(int level) const
{
	const QRectF area = curve_area();
	const bool rates = view.shape == envelope_shape::rates_and_levels;
	const double low = rates ? view.low_level : 0;
	const double high = rates ? std::max(view.low_level + 1, view.high_level) : steps;
	return area.bottom() -
	       (std::clamp<double>(level, low, high) - low) / (high - low) * area.height();
}

// Each of the four parts has a quarter of the room at most.
std::vector<envelope_curve::point> envelope_curve::points_of(const std::vector<int> &values) const
{
	const QRectF area = curve_area();
	const double quarter = area.width() / 4;
	const auto wide = [&](int index) {
		return std::clamp(values[static_cast<std::size_t>(index)], 0, steps) * quarter /
		       steps;
	};
	std::vector<point> points;
	if (view.shape == envelope_shape::adsr) {
		const double top = area.left() + wide(0), low = top + wide(1),
			     held = area.left() + 3 * quarter, y = y_of(values[2]);
		points = { { { top, area.top() }, 0, -1 }, { { low, y }, 1, 2 },
			{ { held, y }, -1, 2 }, { { held + wide(3), area.bottom() }, 3, -1 } };
		return points;
	}
	double x = area.left();
	for (int i = 0; i < 4; i++) {
		x += wide(i);
		points.push_back(
			{ { x, y_of(values[static_cast<std::size_t>(i + 4)]) }, i, i + 4 });
	}
	return points;
}

QPointF envelope_curve::start_of_curve() const
{
	return { curve_area().left(),
		view.shape == envelope_shape::adsr ? curve_area().bottom() : y_of(0) };
}

QPointF envelope_curve::point_at(int which) const
{
	return points_of(view.values)[static_cast<std::size_t>(which)].at;
}

// The later of two that lie at one place: it can be drawn away.
int envelope_curve::nearest_point(const QPointF &at) const
{
	if (empty)
		return -1;
	int found = -1;
	double least = reach;
	const std::vector<point> points = points_of(view.values);
	for (int i = 0; i < static_cast<int>(points.size()); i++) {
		const QPointF away = points[static_cast<std::size_t>(i)].at - at;
		if (const double to = std::hypot(away.x(), away.y()); to <= least) {
			least = to;
			found = i;
		}
	}
	return found;
}

// ---- Changing ---------------------------------------------------------------------------------------

int envelope_curve::value_at(int index, const QPointF &moved) const
{
	const QRectF area = curve_area();
	const bool level = view.shape == envelope_shape::adsr ? index == 2 : index >= 4;
	const double by = level ? -moved.y() * (high_of(index) - low_of(index)) / area.height()
				: moved.x() * steps * 4 / area.width();
	return static_cast<int>(std::lround(value_before + by));
}

void envelope_curve::drag_to(int index, int value)
{
	value = std::clamp(value, low_of(index), high_of(index));
	if (value != view.values[static_cast<std::size_t>(index)])
		velmor_envelope(window_id, control_id, envelope_event::drag, index, value);
}

void envelope_curve::end_movement()
{
	const int index = std::exchange(moved_index, -1);
	grabbed = -1;
	if (index >= 0 && !empty)
		velmor_envelope(window_id, control_id, envelope_event::drag_end, index,
			view.values[static_cast<std::size_t>(index)]);
}

void envelope_curve::mousePressEvent(QMouseEvent *event)
{
	if (event->button() != Qt::LeftButton)
		return QWidget::mousePressEvent(event);
	grabbed = nearest_point(event->position());
	grabbed_at = event->position();
	moved_index = -1;
	if (grabbed < 0)
		return;
	const point p = points_of(view.values)[static_cast<std::size_t>(grabbed)];
	chosen = p.across >= 0 ? p.across : p.up;
	update();
}

void envelope_curve::mouseMoveEvent(QMouseEvent *event)
{
	if (const int under = nearest_point(event->position()); grabbed < 0 && under != hovered) {
		hovered = under;
		setCursor(hovered < 0 ? Qt::ArrowCursor : Qt::PointingHandCursor);
		update();
	}
	if (grabbed < 0 || empty)
		return;
	const QPointF moved = event->position() - grabbed_at;
	if (moved_index < 0) {
		if (std::max(std::abs(moved.x()), std::abs(moved.y())) < way_known)
			return;
		const point p = points_of(view.values)[static_cast<std::size_t>(grabbed)];
		const bool across = std::abs(moved.x()) >= std::abs(moved.y());
		moved_index = p.up < 0 || (across && p.across >= 0) ? p.across : p.up;
		value_before = view.values[static_cast<std::size_t>(moved_index)];
		chosen = moved_index;
	}
	drag_to(moved_index, value_at(moved_index, moved));
}

void envelope_curve::mouseReleaseEvent(QMouseEvent *event)
{
	if (event->button() == Qt::LeftButton)
		end_movement();
}

// Across from value to value, up and down along it.
void envelope_curve::keyPressEvent(QKeyEvent *event)
{
	const int key = event->key();
	const int by = key == Qt::Key_Up || key == Qt::Key_Right ? 1 : -1;
	const bool across = key == Qt::Key_Left || key == Qt::Key_Right;
	if (empty || (!across && key != Qt::Key_Up && key != Qt::Key_Down))
		return QWidget::keyPressEvent(event);
	if (across) {
		chosen = std::clamp(chosen + by, 0, static_cast<int>(view.values.size()) - 1);
		return update();
	}
	const int before = view.values[static_cast<std::size_t>(chosen)];
	drag_to(chosen, before + by * (event->modifiers() & Qt::ShiftModifier ? 10 : 1));
	moved_index = chosen;
	end_movement();
}

void envelope_curve::focusInEvent(QFocusEvent *)
{
	update();
}

void envelope_curve::focusOutEvent(QFocusEvent *)
{
	update();
}

bool envelope_curve::event(QEvent *event)
{
	if (event->type() == QEvent::Leave && grabbed < 0) {
		hovered = -1;
		update();
	}
	if (event->type() == QEvent::Hide || event->type() == QEvent::UngrabMouse ||
		event->type() == QEvent::WindowDeactivate)
		end_movement();
	return QWidget::event(event);
}

// ---- Painting -----------------------------------------------------------------------------------------

void envelope_curve::paint_curve(
	QPainter *painter, const std::vector<int> &values, bool as_read) const
{
	const QColor link = palette().color(QPalette::Link);
	QPainterPath path(start_of_curve());
	for (const point &p : points_of(values))
		path.lineTo(p.at);
	if (as_read) {
		painter->setPen(QPen(palette().color(QPalette::Dark), 1, Qt::DashLine));
		painter->setBrush(Qt::NoBrush);
		painter->drawPath(path);
		return;
	}
	QPainterPath under = path;
	under.lineTo(path.currentPosition().x(), start_of_curve().y());
	under.closeSubpath();
	painter->fillPath(under, mixed(palette().color(QPalette::Base), link, 0.12));
	painter->setPen(QPen(link, 1.5));
	painter->setBrush(Qt::NoBrush);
	painter->drawPath(path);
}

// One letter of a word, the number of a numbered one.
static QString letter_of(const std::string &words)
{
	const QString all = QString::fromUtf8(words.c_str());
	return all.isEmpty() || !all.back().isDigit() ? all.left(1) : all.right(1);
}

// In the middle of each part, under it.
void envelope_curve::paint_letters(QPainter *painter) const
{
	const bool adsr = view.shape == envelope_shape::adsr;
	const QColor quiet = palette().color(QPalette::PlaceholderText);
	QFont bold = painter->font();
	bold.setBold(true);
	painter->setFont(bold);
	double from = curve_area().left(), last = -letters_height;
	const std::vector<point> points = points_of(view.values);
	for (std::size_t i = 0; i < points.size() && i < view.letters.size(); i++) {
		const double to = points[i].at.x();
		const double x = std::max((from + to) / 2, last + 12);
		const bool lit = chosen == static_cast<int>(i) ||
				 (!adsr && chosen == static_cast<int>(i) + 4);
		painter->setPen(lit && (hasFocus() || grabbed >= 0 || hovered >= 0)
					? palette().color(QPalette::Link)
					: quiet);
		painter->drawText(QRectF(x - 10, height() - letters_height - 2, 20, letters_height),
			Qt::AlignCenter, letter_of(view.letters[i]));
		painter->setPen(QPen(palette().color(QPalette::Mid), 1, Qt::DotLine));
		painter->drawLine(points[i].at, QPointF(to, curve_area().bottom()));
		from = to;
		last = x;
	}
}

void envelope_curve::paint_points(QPainter *painter) const
{
	const QColor link = palette().color(QPalette::Link);
	const std::vector<point> points = points_of(view.values);
	const int lit = grabbed >= 0 ? grabbed : hovered;
	for (int i = 0; i < static_cast<int>(points.size()); i++) {
		const point &p = points[static_cast<std::size_t>(i)];
		const bool keyed = hasFocus() && (p.across == chosen || p.up == chosen);
		painter->setPen(QPen(link, keyed ? 2.5 : 1.5));
		painter->setBrush(i == lit ? link : palette().color(QPalette::Base));
		painter->drawEllipse(p.at, 4.5, 4.5);
	}
}

// What the point under the mouse stands for, in a box beside it.
void envelope_curve::paint_words(QPainter *painter) const
{
	const int lit = grabbed >= 0 ? grabbed : hovered;
	if (lit < 0 && !hasFocus())
		return;
	const std::vector<point> points = points_of(view.values);
	const point *p = nullptr;
	for (const point &each : points)
		if (!p && (each.across == chosen || each.up == chosen))
			p = &each;
	if (lit >= 0)
		p = &points[static_cast<std::size_t>(lit)];
	QStringList words;
	for (const int index : { p->across, p->up })
		if (index >= 0 && (moved_index < 0 || index == moved_index) &&
			(lit >= 0 || index == chosen))
			words += words_of(index);
	painter->setFont(font());
	const QFontMetricsF metrics(font());
	QRectF box(0, 0, metrics.horizontalAdvance(words.join(", ")) + 16, metrics.height() + 6);
	box.moveBottomLeft(p->at + QPointF(12, -6));
	if (box.right() > width() - 4)
		box.moveRight(p->at.x() - 12);
	box.moveTop(std::max(box.top(), 3.0));
	draw_box(painter, box.toRect(), palette().color(QPalette::ToolTipBase), {}, 0);
	painter->setPen(palette().color(QPalette::ToolTipText));
	painter->drawText(box, Qt::AlignCenter, words.join(", "));
}

void envelope_curve::paint_level(QPainter *painter, int level) const
{
	painter->setPen(palette().color(QPalette::Midlight));
	const QRectF area = curve_area();
	painter->drawLine(QPointF(area.left(), y_of(level)), QPointF(area.right(), y_of(level)));
}

void envelope_curve::paintEvent(QPaintEvent *)
{
	QPainter painter(this);
	draw_box(&painter, rect(), palette().color(QPalette::Base),
		palette().color(hasFocus() ? QPalette::Link : QPalette::Mid), hasFocus() ? 1.5 : 1);
	if (empty) {
		painter.setPen(palette().color(QPalette::PlaceholderText));
		painter.drawText(rect(), Qt::AlignCenter, empty_text);
		return;
	}
	painter.setRenderHint(QPainter::Antialiasing);
	const int levels = view.shape == envelope_shape::adsr ? 2 : 7;
	for (const int level :
		{ low_of(levels), (low_of(levels) + high_of(levels)) / 2, high_of(levels) })
		paint_level(&painter, level);
	paint_curve(&painter, view.values, false);
	if (!view.as_read.empty() && view.as_read != view.values)
		paint_curve(&painter, view.as_read, true);
	QFont small = font();
	small.setPointSizeF(small.pointSizeF() * 0.85);
	painter.setFont(small);
	paint_letters(&painter);
	paint_points(&painter);
	paint_words(&painter);
}

} // namespace velmor
