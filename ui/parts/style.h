// style.h - how controls are drawn: flat, in the palette's roles
//
// Buttons, fields, lists, headers, sliders, bars and scroll bars only; all else is Fusion's.
// A button with the property "main" is the filled one, what one most likely does next; there
// is at most one in a window. The property "icon_right" puts its icon behind the words.

#pragma once
#include <QProxyStyle>

namespace velmor
{

// In pixels at 100 %.
inline constexpr int margin_side = 16, margin_above = 12, between_panels = 16, between_controls = 8,
		     row_height = 24, header_height = 26, two_line_height = 48,
		     form_row_height = 28, field_height = 26, button_height = 28,
		     main_button_height = 32, tab_height = 34, status_height = 32, icon_size = 16,
		     big_icon_size = 24, corner = 4, card_corner = 6;

class flat_style : public QProxyStyle
{
public:
	flat_style();
	void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
		const QWidget *widget) const override;
	void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
		const QWidget *widget) const override;
	void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
		QPainter *painter, const QWidget *widget) const override;
	QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option,
		SubControl part, const QWidget *widget) const override;
	QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
		const QWidget *widget) const override;
	int pixelMetric(PixelMetric metric, const QStyleOption *option,
		const QWidget *widget) const override;
	int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
		QStyleHintReturn *answer) const override;
	QIcon standardIcon(StandardPixmap which, const QStyleOption *option,
		const QWidget *widget) const override;
	void polish(QWidget *widget) override;
	using QProxyStyle::polish;
};

// A box with round corners and a frame of that width.
void draw_box(QPainter *painter, const QRect &rect, const QColor &fill, const QColor &frame,
	double width = 1, double radius = corner);

} // namespace velmor
