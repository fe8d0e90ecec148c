// waveform.h - the picture of a sample with its loop

#pragma once
#include "platform/ui.h"
#include <QWidget>

namespace velmor
{

class waveform_widget : public QWidget
{
public:
	explicit waveform_widget(const QString &empty, QWidget *parent);
	// Takes a copy; null clears the picture.
	void show_view(const waveform_view *view);
	QSize sizeHint() const override;

protected:
	void paintEvent(QPaintEvent *event) override;

private:
	QRect wave_place() const;
	bool looped() const { return loop_end > loop_start; }
	double seconds_of(std::uint64_t word) const;
	qreal place_of(std::uint64_t word) const;
	void paint_loop(QPainter *painter) const;
	void paint_words(QPainter *painter) const;
	void paint_ruler(QPainter *painter) const;
	void paint_numbers(QPainter *painter) const;

	QString empty_text;
	std::vector<std::int16_t> words;
	std::uint32_t sample_rate = 0;
	std::uint64_t loop_start = 0, loop_end = 0;
};

} // namespace velmor
