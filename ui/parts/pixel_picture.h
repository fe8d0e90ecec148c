// pixel_picture.h - a picture of one bit a pixel, with square pixels, and what is done on it
//
// It grows by whole numbers only. Keys and mouse over it go to the system with places counted
// in the picture's own pixels.

#pragma once
#include "platform/ui.h"
#include <QImage>
#include <QWidget>

namespace velmor
{

enum class mouse_action : int;

class pixel_picture : public QWidget
{
public:
	pixel_picture(int window, int control, QWidget *parent);
	// Takes a copy; null clears the picture.
	void show_view(const bitmap_view *view);
	QSize sizeHint() const override;

protected:
	void paintEvent(QPaintEvent *event) override;
	void keyPressEvent(QKeyEvent *event) override;
	void keyReleaseEvent(QKeyEvent *event) override;
	void mousePressEvent(QMouseEvent *event) override;
	void mouseReleaseEvent(QMouseEvent *event) override;
	void wheelEvent(QWheelEvent *event) override;

private:
	bool send_key(QKeyEvent *event, bool pressed);
	bool send_mouse(const QPointF &place, mouse_action action, int amount);
	QRectF picture_place() const;

	const int window_id, control_id;
	QImage picture;
	int wheel_left = 0; // of a step not yet told
};

} // namespace velmor
