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

void pixel_picture::show_view(const bitmap_view *view)
{
	picture = {};
	const std::size_t row = view ? (static_cast<std::size_t>(view->width) + 7) / 8 : 0;
	if (view && view->width > 0 && view->height > 0 &&
		view->bits.size() >= row * static_cast<std::size_t>(view->height)) {
		picture = QImage(view->width, view->height, QImage::Format_Mono);
		picture.setColorTable({ qRgb(255, 255, 255), qRgb(0, 0, 0) });
		for (int y = 0; y < view->height; y++)
			std::copy_n(view->bits.begin() + static_cast<std::ptrdiff_t>(
								 row * static_cast<std::size_t>(y)),
				row, picture.scanLine(y));
	}
	updateGeometry();
	update();
}

QSize pixel_picture::sizeHint() const
{
	return picture.isNull() ? QSize(160, 120) : picture.size();
}

// In the middle, as many times its size as fit, in pixels of the screen.
QRectF pixel_picture::picture_place() const
{
	if (picture.isNull())
		return {};
	const double ratio = devicePixelRatioF();
	const double times = std::max(1.0, std::floor(std::min(width() * ratio / picture.width(),
						   height() * ratio / picture.height())));
	const QSizeF size = QSizeF(picture.size()) * times / ratio;
	const auto on_pixel = [ratio](double at) { return std::floor(at * ratio) / ratio; };
	return { QPointF(on_pixel(std::max(0.0, (width() - size.width()) / 2)),
			 on_pixel(std::max(0.0, (height() - size.height()) / 2))),
		size };
}

void pixel_picture::paintEvent(QPaintEvent *)
{
	QPainter painter(this);
	painter.drawImage(picture_place(), picture);
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
	const double times = all.width() / picture.width();
	const QPointF at = (place - all.topLeft()) / times;
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

void pixel_picture::wheelEvent(QWheelEvent *event)
{
	wheel_left += event->angleDelta().y();
	const int steps = wheel_left / wheel_step;
	wheel_left -= steps * wheel_step;
	event->setAccepted(!steps || send_mouse(event->position(), mouse_action::wheel, steps));
}

} // namespace velmor
