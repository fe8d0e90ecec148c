// track_strip_list.h - the tracks of a song under each other: a frame of words and a strip of notes
//
// A file may say that it has thousands of tracks. Rows are made for those in view and no others;
// the system is told which come and go, and fills them.
//
// All strips show the same span of the song. When the song leaves it, they turn to the next.

#pragma once
#include "ui/track_strip.h"
#include <QAbstractScrollArea>
#include <map>

class QCheckBox;
class QComboBox;
class QSlider;
class QToolButton;

namespace velmor
{

class top_window;

// The frame of a track: what it is, what it does, its next events.
class track_frame : public QWidget
{
public:
	track_frame(int window, int control, int track, QWidget *parent);
	void show_view(const track_view &view);

	static constexpr int width_wanted = 408;

protected:
	void paintEvent(QPaintEvent *event) override;

private:
	void make_controls(int window, int control, int track);
	void paint_cells(QPainter *painter) const;

	track_view shown = {};
	QComboBox *channel = nullptr;
	QSlider *volume = nullptr;
	QCheckBox *mute = nullptr;
	QToolButton *stack = nullptr;
};

// Both, on one card.
class track_row : public QWidget
{
public:
	track_row(int window, int control, int track, QWidget *parent);
	track_frame *frame;
	track_strip *strip;

protected:
	void resizeEvent(QResizeEvent *event) override;
	void paintEvent(QPaintEvent *event) override;
};

class track_list : public QAbstractScrollArea
{
public:
	track_list(top_window *window, int control);
	~track_list() override;
	void set_count(int count);
	void set_track(int track, const track_view &view);
	void set_strip(int track, const strip_view &view);
	void set_position(std::int64_t ticks, int ticks_per_second);

	// The row of a track, or null where it is not in view.
	track_row *row_of(int track) const;
	int rows_made() const { return static_cast<int>(rows.size()); }

protected:
	bool event(QEvent *event) override;
	bool eventFilter(QObject *watched, QEvent *event) override;
	void paintEvent(QPaintEvent *event) override;
	void resizeEvent(QResizeEvent *event) override;
	void scrollContentsBy(int dx, int dy) override;
	void dragEnterEvent(QDragEnterEvent *event) override;
	void dragMoveEvent(QDragMoveEvent *event) override;
	void dropEvent(QDropEvent *event) override;

private:
	void arrange();
	void turn_to_position();
	void paint_ruler(QPainter *painter) const;
	void tell_step(int action);
	int row_width() const;

	const int window_id, control_id;
	const QString empty_text;
	std::map<int, track_row *> rows;
	int tracks = 0, speed = 1000;
	std::uint64_t length = 0;
	std::int64_t position = -1;
	song_span span;
	QWidget *ruler;
	bool arranging = false;
};

} // namespace velmor
