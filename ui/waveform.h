// waveform.h - the picture of a sample with its loop, from the whole down to single values
//
// It is moved and zoomed by wheel and keys. Of a local sample start, end and the ends of the loop
// are handles: they are dragged, or chosen by Up and Down and moved by Left and Right, and stop at
// zero crossings unless Alt is held.

#pragma once
#include "platform/ui.h"
#include "src/velmor_peaks.h"
#include <QTimer>
#include <QWidget>
#include <functional>

class QPainter;

namespace velmor
{

class waveform_widget : public QWidget
{
public:
	enum handle {
		none,
		mark_start,
		loop_begin,
		loop_finish,
		mark_end,
	};

	waveform_widget(const QString &empty, QWidget *parent);
	// Takes a copy; null clears the picture. Of the file that was shown already the part in view
	// stays.
	void show_view(const waveform_view *view);
	QSize sizeHint() const override;
	// The word that is heard now; -1: none.
	void show_played(std::int64_t word);
	std::int64_t played_word() const { return played; }

	// The part in view, in words.
	double first_shown() const { return first; }
	double count_shown() const { return count; }
	std::uint64_t length() const { return words.size(); }
	// Show factor times as much, with that word staying in its place.
	void zoom(double factor, double about);
	void zoom_all();
	void scroll_to(double wanted);
	double middle() const { return first + count / 2; }
	// "1.204 s to 1.871 s of 2.412 s".
	QString words_of_part() const;
	std::function<void()> part_changed;
	// The peaks of the whole are not known yet.
	bool growing_still() const { return growing.isActive(); }

	// Where a handle is, and where a word is on the widget.
	std::uint64_t word_of(handle which) const;
	double place_of(double word) const;

protected:
	void paintEvent(QPaintEvent *event) override;
	void wheelEvent(QWheelEvent *event) override;
	void mousePressEvent(QMouseEvent *event) override;
	void mouseMoveEvent(QMouseEvent *event) override;
	void mouseReleaseEvent(QMouseEvent *event) override;
	void keyPressEvent(QKeyEvent *event) override;
	bool event(QEvent *event) override;

private:
	QRect wave_place() const;
	bool looped() const { return loop_end > loop_start; }
	double seconds_of(double word) const;
	double word_at(double x) const;
	double words_a_pixel() const;
	void show_part(double wanted_first, double wanted_count);
	bool exists(handle which) const;
	handle handle_at(const QPointF &at) const;
	std::uint64_t snapped(double word, bool free) const;
	void move_handle(handle which, std::uint64_t word);
	void let_go();
	void forget_movement();
	void choose_next(int by);
	bool key_moves_view(int key);
	bool key_moves_handle(const QKeyEvent &event);
	QString name_of(handle which) const;
	void say_state();

	void paint_loop(QPainter *painter) const;
	void paint_outside(QPainter *painter) const;
	void paint_words(QPainter *painter) const;
	void paint_columns(QPainter *painter) const;
	void paint_values(QPainter *painter) const;
	void paint_marks(QPainter *painter) const;
	void paint_played(QPainter *painter) const;
	void paint_ruler(QPainter *painter) const;
	void paint_numbers(QPainter *painter) const;
	double height_of(double value) const;

	QString empty_text, spoken;
	std::vector<std::int16_t> words;
	peak_pyramid peaks;
	QTimer growing; // while the pyramid does
	std::uint32_t sample_rate = 0;
	std::uint64_t loop_start = 0, loop_end = 0, range_start = 0, range_end = 0;
	std::uint64_t loop_start_read = 0, loop_end_read = 0; // as the file has them
	QString shown_file;
	double first = 0, count = 0;
	std::int64_t played = -1;
	handle chosen = mark_start, grabbed = none;
	double grabbed_by = 0; // pixels from the handle
	bool moved = false;    // and not yet let go
	QTimer settling;       // the last key of a movement is some time ago
};

} // namespace velmor
