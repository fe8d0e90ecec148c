// pixel_picture.h - a picture of one bit a pixel, with square pixels, and what is done on it
//
// It grows by whole numbers only. Keys and mouse over it go to the system with places counted
// in the picture's own pixels. A new picture of the same size takes no new memory.

#pragma once
#include "platform/ui.h"
#include <QImage>
#include <QWidget>
#include <vector>

namespace velmor
{

enum class mouse_action : int;

// A picture so many times its size, into an image that is kept where it has that size.
void enlarge(QImage *into, const bitmap_view &view, int times, QRgb light);

class pixel_picture : public QWidget
{
public:
	pixel_picture(int window, int control, QWidget *parent);
	// Takes a copy; null clears the picture.
	void show_view(const bitmap_view *view);
	// The colour of a clear bit.
	void set_light(QRgb color);
	// It is not what the machine shows now.
	void set_faded(bool old);
	QSize sizeHint() const override;

protected:
	void paintEvent(QPaintEvent *event) override;
	void keyPressEvent(QKeyEvent *event) override;
	void keyReleaseEvent(QKeyEvent *event) override;
	void mousePressEvent(QMouseEvent *event) override;
	void mouseReleaseEvent(QMouseEvent *event) override;
	void wheelEvent(QWheelEvent *event) override;
	bool event(QEvent *event) override;

private:
	bool send_key(QKeyEvent *event, bool pressed);
	bool send_mouse(const QPointF &place, mouse_action action, int amount);
	QRectF picture_place() const;
	int times() const;
	QSize pixels() const { return { width_shown, height_shown }; }

	const int window_id, control_id;
	std::vector<std::uint8_t> bits;
	int width_shown = 0, height_shown = 0;
	QRgb light = qRgb(255, 255, 255);
	QImage enlarged;
	bool changed = true; // since it was enlarged
	bool faded = false;
	int wheel_left = 0; // of a step not yet told
};

} // namespace velmor
