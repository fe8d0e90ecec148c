// pixel_picture.cpp - a picture of one bit a pixel, with square pixels, and what is done on it

#include "ui/parts/pixel_picture.h"
#include "src/velmor_window.h"
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace velmor
{

static constexpr int wheel_step = 120; // of an ordinary mouse

pixel_picture::pixel_picture(int window, int control, QWidget *parent)
	: QWidget(parent), window_id(window), control_id(control)
{
	setFocusPolicy(Qt::StrongFocus);
	setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

static void enlarge_row(QRgb *to, const std::uint8_t *bits, int width, int times, QRgb light)
{
	for (int x = 0; x < width; x++) {
		const bool dark = bits[x >> 3] & (0x80 >> (x & 7));
		to = std::fill_n(to, times, dark ? qRgb(0, 0, 0) : light);
	}
}

void enlarge(QImage *into, const bitmap_view &view, int times, QRgb light)
{
	const QSize size(view.width * times, view.height * times);
	if (into->size() != size || into->format() != QImage::Format_RGB32)
		*into = QImage(size, QImage::Format_RGB32);
	const int row = (view.width + 7) / 8;
	for (int y = 0; y < view.height; y++) {
		auto *first = reinterpret_cast<QRgb *>(into->scanLine(y * times));
		enlarge_row(first, view.bits.data() + y * row, view.width, times, light);
		for (int again = 1; again < times; again++)
			std::copy_n(first, size.width(),
				reinterpret_cast<QRgb *>(into->scanLine(y * times + again)));
	}
}

void pixel_picture::show_view(const bitmap_view *view)
{
	const QSize before = pixels();
	const std::size_t row = view ? (static_cast<std::size_t>(view->width) + 7) / 8 : 0;
	const bool whole = view && view->width > 0 && view->height > 0 &&
			   view->bits.size() >= row * static_cast<std::size_t>(view->height);
	width_shown = whole ? view->width : 0;
	height_shown = whole ? view->height : 0;
	if (whole)
		bits.assign(view->bits.begin(), view->bits.end());
	changed = true;
	if (before != pixels())
		updateGeometry();
	update();
}

void pixel_picture::set_light(QRgb color)
{
	light = color;
	changed = true;
	update();
}

void pixel_picture::set_faded(bool old)
{
	faded = old;
	update();
}

QSize pixel_picture::sizeHint() const
{
	return pixels().isEmpty() ? QSize(160, 120) : pixels();
}

// As many as fit, in pixels of the screen.
int pixel_picture::times() const
{
	const double ratio = devicePixelRatioF();
	const double fits =
		std::min(width() * ratio / width_shown, height() * ratio / height_shown);
	return std::max(1, static_cast<int>(std::floor(fits)));
}

// In the middle.
QRectF pixel_picture::picture_place() const
{
	if (pixels().isEmpty())
		return {};
	const double ratio = devicePixelRatioF();
	const QSizeF size = QSizeF(pixels()) * times() / ratio;
	const auto on_pixel = [ratio](double at) { return std::floor(at * ratio) / ratio; };
	return { QPointF(on_pixel(std::max(0.0, (width() - size.width()) / 2)),
			 on_pixel(std::max(0.0, (height() - size.height()) / 2))),
		size };
}

void pixel_picture::paintEvent(QPaintEvent *)
{
	if (pixels().isEmpty())
		return;
	const QSize size = pixels() * times();
	if (changed || enlarged.size() != size) {
		enlarge(&enlarged, { bits, width_shown, height_shown }, times(), light);
		changed = false;
	}
	enlarged.setDevicePixelRatio(devicePixelRatioF());
	QPainter painter(this);
	painter.setOpacity(faded ? 0.25 : 1);
	painter.drawImage(picture_place().topLeft(), enlarged);
}

// ---- Keys and mouse -----------------------------------------------------------------------------

bool pixel_picture::send_key(QKeyEvent *event, bool pressed)
{
	// A key that is held is pressed once.
	if (event->isAutoRepeat())
		return true;
	return velmor_key(
		window_id, control_id, event->key(), event->text().toStdString(), pressed);
}

void pixel_picture::keyPressEvent(QKeyEvent *event)
{
	event->setAccepted(send_key(event, true));
}

void pixel_picture::keyReleaseEvent(QKeyEvent *event)
{
	event->setAccepted(send_key(event, false));
}

bool pixel_picture::send_mouse(const QPointF &place, mouse_action action, int amount)
{
	const QRectF all = picture_place();
	if (all.isEmpty())
		return false;
	const QPointF at = (place - all.topLeft()) * width_shown / all.width();
	return velmor_mouse(window_id, control_id, static_cast<int>(std::floor(at.x())),
		static_cast<int>(std::floor(at.y())), action, amount);
}

static int button_number(const QMouseEvent *event)
{
	return event->button() == Qt::LeftButton ? 1 : event->button() == Qt::RightButton ? 2 : 3;
}

void pixel_picture::mousePressEvent(QMouseEvent *event)
{
	event->setAccepted(send_mouse(event->position(), mouse_action::down, button_number(event)));
}

void pixel_picture::mouseReleaseEvent(QMouseEvent *event)
{
	event->setAccepted(send_mouse(event->position(), mouse_action::up, button_number(event)));
}

// Its frame, which is painted around it, shows the focus.
bool pixel_picture::event(QEvent *event)
{
	if (parentWidget() &&
		(event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut))
		parentWidget()->update();
	return QWidget::event(event);
}

void pixel_picture::wheelEvent(QWheelEvent *event)
{
	wheel_left += event->angleDelta().y();
	const int steps = wheel_left / wheel_step;
	wheel_left -= steps * wheel_step;
	event->setAccepted(!steps || send_mouse(event->position(), mouse_action::wheel, steps));
}

} // namespace velmor
