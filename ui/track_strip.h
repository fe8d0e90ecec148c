// track_strip.h - the notes of one track over time, and where the song is in them
//
// A strip shows a span of the song. It is painted twice into a cache, once as past and once as
// to come; a step of the song lays the two together at its place and paints what sounds there.

#pragma once
#include "platform/ui.h"
#include <QPixmap>
#include <QWidget>

namespace velmor
{

// A part of the song, in ticks.
struct song_span {
	std::uint64_t from = 0, to = 1;
	bool operator==(const song_span &) const = default;
};

class track_strip : public QWidget
{
public:
	// Room for the names of the notes, at the left of the time.
	static constexpr int names_width = 40;

	explicit track_strip(QWidget *parent);
	void show_view(const strip_view &view);
	void show_span(const song_span &span, std::uint64_t step);
	// Negative: nowhere.
	void show_position(std::int64_t ticks);
	void show_muted(bool muted);

	// Where a tick stands in a strip of that width.
	static double place_of(const song_span &span, std::uint64_t tick, int width);

protected:
	void paintEvent(QPaintEvent *event) override;
	void changeEvent(QEvent *event) override;

private:
	double x_of(std::uint64_t tick) const;
	QRectF place_of(const strip_note &note) const;
	std::size_t first_from(std::uint64_t tick) const;
	void forget_pictures();
	QPixmap make_picture(const QColor &color) const;
	void paint_lines(QPainter *painter) const;
	void paint_notes(QPainter *painter, const QColor &color) const;
	void paint_sounding(QPainter *painter) const;

	std::span<const strip_note> notes;
	std::uint64_t longest = 0; // note, in ticks
	int low = 55, high = 65;   // pitches shown
	QString name;
	song_span shown;
	std::uint64_t grid = 0; // ticks between two lines; 0: none
	std::int64_t position = -1;
	bool is_muted = false;
	QPixmap past, to_come;
};

} // namespace velmor
