// envelope_view.h - an envelope as a curve with points that can be dragged

#pragma once
#include "platform/ui.h"
#include <QWidget>

namespace velmor
{

class envelope_curve : public QWidget
{
public:
	envelope_curve(int window, int control, const QString &empty, QWidget *parent);
	// Takes a copy; null clears the picture.
	void show_view(const envelope_view *view);
	// Is shown and hidden with the curve.
	void set_title(QWidget *above) { title = above; }
	void setVisible(bool visible) override;
	QSize sizeHint() const override { return { 300, 112 }; }
	// Where a point stands on the widget.
	QPointF point_at(int point) const;

protected:
	void paintEvent(QPaintEvent *event) override;
	void mousePressEvent(QMouseEvent *event) override;
	void mouseMoveEvent(QMouseEvent *event) override;
	void mouseReleaseEvent(QMouseEvent *event) override;
	void keyPressEvent(QKeyEvent *event) override;
	void focusInEvent(QFocusEvent *event) override;
	void focusOutEvent(QFocusEvent *event) override;
	bool event(QEvent *event) override;

private:
	// Which values a point shows by its place; -1: none.
	struct point {
		QPointF at;
		int across, up;
	};
	QRectF curve_area() const;
	double y_of(int level) const;
	std::vector<point> points_of(const std::vector<int> &values) const;
	QPointF start_of_curve() const;
	int nearest_point(const QPointF &at) const;
	int low_of(int index) const;
	int high_of(int index) const;
	int value_at(int index, const QPointF &moved) const;
	void drag_to(int index, int value);
	void end_movement();
	QString words_of(int index) const;
	void paint_curve(QPainter *painter, const std::vector<int> &values, bool as_read) const;
	void paint_letters(QPainter *painter) const;
	void paint_points(QPainter *painter) const;
	void paint_words(QPainter *painter) const;
	void paint_level(QPainter *painter, int level) const;

	const int window_id, control_id;
	const QString empty_text;
	envelope_view view;
	QWidget *title = nullptr;
	bool empty = true;
	int chosen = 0;   // value that keys change
	int hovered = -1; // point under the mouse
	int grabbed = -1,
	    moved_index = -1; // point that is dragged, and its value, once that is known
	QPointF grabbed_at;
	int value_before = 0; // of the dragged value
};

} // namespace velmor
