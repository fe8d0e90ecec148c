// key_map.h - a keyboard, and over its keys the keygroups of a program with their samples
//
// What a user does goes to the system through velmor_key_map; the picture changes when the
// system sets another view. Only the chosen keygroup is painted anew while it is dragged.

#pragma once
#include "platform/ui.h"
#include <QPixmap>
#include <QWidget>

class QMenu;

namespace velmor
{

class key_map : public QWidget
{
public:
	key_map(int window, int control, const QString &empty, QWidget *parent);
	// Takes a copy; null clears the picture.
	void show_view(const key_map_view *view);
	QSize sizeHint() const override;
	// Opens at a place of the screen, once what was pointed at is chosen.
	void set_menu(QMenu *shown) { menu = shown; }

	// Places on the widget.
	QRectF group_bar(int group) const;
	QRectF zone_band(int group, int zone) const;
	QPointF on_key(int note, int velocity) const;
	int sounding() const { return sounding_note; } // -1: none
	// How often the picture was painted whole: dragging an edge leaves most of it as it is.
	int times_painted_whole() const { return painted_whole; }

protected:
	void paintEvent(QPaintEvent *event) override;
	void mousePressEvent(QMouseEvent *event) override;
	void mouseMoveEvent(QMouseEvent *event) override;
	void mouseReleaseEvent(QMouseEvent *event) override;
	void keyPressEvent(QKeyEvent *event) override;
	void keyReleaseEvent(QKeyEvent *event) override;
	void contextMenuEvent(QContextMenuEvent *event) override;
	void focusInEvent(QFocusEvent *event) override;
	void focusOutEvent(QFocusEvent *event) override;
	void changeEvent(QEvent *event) override;
	bool event(QEvent *event) override;

private:
	// A row of bars, or a column of bands, for those that would lie over each other.
	struct lane {
		int at = 0, of = 1;
	};
	struct place {
		int group = -1, zone = -1;
		bool operator==(const place &) const = default;
	};
	struct edge {
		key_map_event event; // which is dragged; choose: none
		int value;
	};

	QRectF bands_area() const;
	QRectF bars_area() const;
	QRectF keys_area() const;
	double x_of(double whites) const;
	double y_of(double velocity) const;
	double middle_of(int note) const;
	static bool is_black_key(int note);
	int note_at(double x) const;
	int key_at(const QPointF &at) const;
	int velocity_at(double y) const;
	int velocity_on_key(int note, double y) const;

	const key_group_view *chosen_group() const;
	const key_zone_view *chosen_zone() const;
	std::vector<place> places_at(const QPointF &at) const;
	edge edge_at(const QPointF &at) const;
	int edge_value(key_map_event which) const;
	void drag_to(key_map_event which, int value);
	void end_movement();
	void choose(const place &wanted);
	void step(int key, bool low, int by);
	void press_key(int note, int velocity);
	void release_key();
	void tell(key_map_event event, int group, int zone, int value = 0, int amount = 0) const;

	void arrange();
	QString short_name(const std::string &name) const;
	QString words_of(const place &at) const;
	void say_chosen();
	void paint_whole();
	void paint_scale(QPainter *painter) const;
	void paint_keys(QPainter *painter) const;
	void paint_chosen_keys(QPainter *painter) const;
	QRectF white_key(int note) const;
	QRectF black_key(int note) const;
	void paint_key(QPainter *painter, int note, const QColor &tint, double part) const;
	void paint_group(QPainter *painter, int group, bool chosen) const;
	void paint_band(QPainter *painter, const place &at, bool chosen) const;
	void paint_note(QPainter *painter) const;
	QFont small_font(bool bold) const;

	const int window_id, control_id;
	const QString empty_text;
	QMenu *menu = nullptr;
	key_map_view view;
	bool empty = true, stale = true;
	std::vector<lane> bar_lanes;
	std::vector<std::vector<lane>> band_lanes;
	qsizetype shared_front = 0, shared_end = 0; // letters that all names begin and end with
	QPixmap whole;
	int painted_whole = 0;
	edge dragged = { key_map_event::choose, 0 };
	int sounding_note = -1; // that was begun here
};

} // namespace velmor
