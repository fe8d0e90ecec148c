// style.cpp - how controls are drawn: flat, in the palette's roles

#include "ui/parts/style.h"
#include "ui/parts/icons.h"
#include "ui/parts/palette.h"
#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QGroupBox>
#include <QPainter>
#include <QScrollBar>
#include <QSlider>
#include <QStyleFactory>
#include <QStyleOption>
#include <QTabBar>
#include <cmath>

namespace velmor
{

static constexpr double focus_width = 1.5;

flat_style::flat_style() : QProxyStyle(QStyleFactory::create("Fusion")) {}

void draw_box(QPainter *painter, const QRect &rect, const QColor &fill, const QColor &frame,
	double width, double radius)
{
	const double half = width / 2;
	painter->save();
	painter->setRenderHint(QPainter::Antialiasing);
	painter->setPen(width > 0 ? QPen(frame, width) : QPen(Qt::NoPen));
	painter->setBrush(fill);
	painter->drawRoundedRect(QRectF(rect).adjusted(half, half, -half, -half), radius, radius);
	painter->restore();
}

static bool has(const QStyleOption *option, QStyle::StateFlag flag)
{
	return option->state.testFlag(flag);
}

// ---- Buttons ------------------------------------------------------------------------------------

static bool is_main(const QWidget *widget)
{
	return widget && widget->property("main").toBool();
}

static QColor button_fill(const QStyleOption *option, bool main)
{
	const QPalette &palette = option->palette;
	const bool on = has(option, QStyle::State_Enabled);
	const QColor plain = palette.color(QPalette::Button);
	if (main && on) {
		const QColor filled = palette.color(QPalette::Highlight);
		return has(option, QStyle::State_Sunken)      ? filled.darker(118)
		       : has(option, QStyle::State_MouseOver) ? filled.lighter(112)
							      : filled;
	}
	const QColor accent = palette.color(QPalette::Highlight);
	if (on && (option->state & (QStyle::State_Sunken | QStyle::State_On)))
		return mixed(plain, accent, 0.22);
	return on && has(option, QStyle::State_MouseOver) ? mixed(plain, accent, 0.08) : plain;
}

// A tool button that looks like the others.
static bool is_framed(const QWidget *widget)
{
	return widget && widget->property("framed").toBool();
}

static void draw_button_box(
	const QStyleOptionButton *option, QPainter *painter, const QWidget *widget)
{
	const bool on = has(option, QStyle::State_Enabled), main = is_main(widget) && on;
	const bool focus = has(option, QStyle::State_HasFocus);
	const bool flat = option->features & QStyleOptionButton::Flat;
	const QPalette &palette = option->palette;
	const bool quiet =
		flat && !(option->state & (QStyle::State_MouseOver | QStyle::State_Sunken));
	const QColor frame = focus  ? palette.color(QPalette::Link)
			     : main ? button_fill(option, main)
			     : on   ? palette.color(QPalette::Mid)
				    : palette.color(QPalette::Midlight);
	if (!flat || focus || (on && !quiet))
		draw_box(painter, option->rect, quiet ? Qt::transparent : button_fill(option, main),
			flat && !focus ? Qt::transparent : frame, focus ? focus_width : 1);
	if (main && focus)
		draw_box(painter, option->rect.adjusted(2, 2, -2, -2), Qt::transparent,
			palette.color(QPalette::HighlightedText), 1, corner - 2);
}

static void draw_button_label(
	const QStyleOptionButton *option, QPainter *painter, const QWidget *widget)
{
	const bool on = has(option, QStyle::State_Enabled), main = is_main(widget) && on;
	const bool pictured = !option->icon.isNull();
	const bool behind = widget && widget->property("icon_right").toBool();
	const int gap = pictured && !option->text.isEmpty() ? between_controls : 0;
	const int picture = pictured ? icon_size : 0;
	const int words = option->fontMetrics.size(Qt::TextShowMnemonic, option->text).width();
	const int width = std::min(words, option->rect.width() - picture - gap);
	int left = option->rect.left() + (option->rect.width() - width - picture - gap) / 2;
	const int middle = option->rect.center().y() + 1;
	const QRect icon_place(
		behind ? left + width + gap : left, middle - icon_size / 2, picture, icon_size);
	if (!behind)
		left += picture + gap;
	if (pictured)
		option->icon.paint(painter, icon_place, Qt::AlignCenter,
			main ? QIcon::Selected
			: on ? QIcon::Normal
			     : QIcon::Disabled);
	const QPalette::ColorRole role = main ? QPalette::HighlightedText
					 : widget && widget->property("link").toBool()
						 ? QPalette::Link
						 : QPalette::ButtonText;
	painter->setPen(option->palette.color(on ? QPalette::Active : QPalette::Disabled, role));
	painter->drawText(QRect(left, option->rect.top(), width + 1, option->rect.height()),
		Qt::AlignVCenter | Qt::AlignLeft | Qt::TextShowMnemonic | Qt::TextSingleLine,
		option->text);
}

// The ring of a radio button, the square of a check box.
static void draw_indicator(const QStyleOption *option, QPainter *painter, bool round)
{
	const QPalette &palette = option->palette;
	const bool chosen = has(option, QStyle::State_On);
	const bool on = has(option, QStyle::State_Enabled);
	const int side = std::min(option->rect.width(), option->rect.height());
	QRect place(0, 0, side, side);
	place.moveCenter(option->rect.center());
	const QColor accent = palette.color(QPalette::Highlight);
	draw_box(painter, place, chosen && !round ? accent : palette.color(QPalette::Base),
		chosen ? accent : palette.color(on ? QPalette::Dark : QPalette::Mid),
		chosen && round ? 4 : 1, round ? side / 2.0 : 3);
	if (!chosen || round)
		return;
	painter->save();
	painter->setRenderHint(QPainter::Antialiasing);
	painter->setPen(QPen(palette.color(QPalette::HighlightedText), 1.8, Qt::SolidLine,
		Qt::RoundCap, Qt::RoundJoin));
	const QPointF at = place.topLeft();
	const QPointF tick[] = { at + QPointF(3.2, side * 0.5), at + QPointF(side * 0.42, side - 4),
		at + QPointF(side - 3, 4) };
	painter->drawPolyline(tick, 3);
	painter->restore();
}

// ---- Fields, lists, headers -----------------------------------------------------------------------

static void draw_field(const QStyleOption *option, QPainter *painter, bool read_only)
{
	const bool on = has(option, QStyle::State_Enabled);
	const bool focus = has(option, QStyle::State_HasFocus);
	const QPalette &palette = option->palette;
	draw_box(painter, option->rect,
		palette.color(on && !read_only ? QPalette::Base : QPalette::Window),
		palette.color(focus ? QPalette::Link
			      : on  ? QPalette::Mid
				    : QPalette::Midlight),
		focus ? focus_width : 1);
}

static void draw_list_frame(const QStyleOption *option, QPainter *painter, const QWidget *widget)
{
	const bool focus = widget && widget->hasFocus() && widget->focusPolicy() != Qt::NoFocus;
	draw_box(painter, option->rect, option->palette.color(QPalette::Base),
		option->palette.color(focus ? QPalette::Link : QPalette::Mid),
		focus ? focus_width : 1);
}

static void draw_header(const QStyleOption *option, QPainter *painter)
{
	painter->fillRect(option->rect, option->palette.color(QPalette::AlternateBase));
	painter->setPen(option->palette.color(QPalette::Mid));
	painter->drawLine(option->rect.bottomLeft(), option->rect.bottomRight());
}

static void draw_choice(const QStyleOptionComboBox *option, QPainter *painter)
{
	QStyleOption box = *option;
	box.state &= ~QStyle::State_Raised;
	draw_field(&box, painter, false);
	const bool on = has(option, QStyle::State_Enabled);
	const QRect arrow(option->rect.right() - 20, option->rect.center().y() - 4, 10, 10);
	paint_icon(painter, icon::fold_open, arrow,
		option->palette.color(on ? QPalette::Active : QPalette::Disabled,
			on ? QPalette::Dark : QPalette::ButtonText));
}

// The chosen one has a line of the accent under it.
static void draw_tab(const QStyleOption *option, QPainter *painter)
{
	const QRect &place = option->rect;
	const bool chosen = has(option, QStyle::State_Selected);
	if (chosen || has(option, QStyle::State_MouseOver))
		painter->fillRect(QRect(place.left(), place.bottom() - 2, place.width(), 3),
			option->palette.color(chosen ? QPalette::Link : QPalette::Mid));
	if (has(option, QStyle::State_HasFocus))
		draw_box(painter, place.adjusted(1, 2, -1, -5), Qt::transparent,
			option->palette.color(QPalette::Link), focus_width);
}

// ---- Sliders and bars -----------------------------------------------------------------------------

// The accent runs from zero, or from the low end where zero is none of its values.
static void draw_slider(const QStyle *style, const QStyleOptionSlider *option, QPainter *painter,
	const QWidget *widget)
{
	const QPalette &palette = option->palette;
	const bool on = has(option, QStyle::State_Enabled);
	const bool focus = has(option, QStyle::State_HasFocus);
	const bool changed = widget && widget->property("changed").toBool();
	const QRect handle =
		style->subControlRect(QStyle::CC_Slider, option, QStyle::SC_SliderHandle, widget);
	const int middle = option->rect.center().y(), length = handle.width();
	const int zero =
		option->minimum < 0 && option->maximum > 0
			? length / 2 + QStyle::sliderPositionFromValue(option->minimum,
					       option->maximum, 0, option->rect.width() - length)
			: 0;
	const QColor accent = palette.color(on ? QPalette::Link : QPalette::Mid);
	draw_box(painter, QRect(0, middle - 1, option->rect.width(), 3),
		palette.color(QPalette::Mid), {}, 0, 1.5);
	const int here = handle.center().x();
	draw_box(painter, QRect(std::min(zero, here), middle - 1, std::abs(here - zero) + 1, 3),
		accent, {}, 0, 1.5);
	if (zero)
		painter->fillRect(zero, middle - 5, 1, 11, palette.color(QPalette::Dark));
	QRect knob(0, 0, 12, 12);
	knob.moveCenter(QPoint(here, middle));
	draw_box(painter, knob, changed ? accent : palette.color(QPalette::Base), accent,
		focus ? 2.5 : focus_width, 6);
}

static void draw_progress(
	const QStyleOptionProgressBar *option, QPainter *painter, const QColor &color, double part)
{
	QRect place = option->rect;
	place.setWidth(static_cast<int>(std::lround(place.width() * part)));
	if (place.width() > 0)
		draw_box(painter, place, color, {}, 0, std::min(4.0, place.height() / 2.0));
}

static double done_part(const QStyleOptionProgressBar *option)
{
	const double range = static_cast<double>(option->maximum) - option->minimum;
	return range > 0 ? (option->progress - option->minimum) / range : 0;
}

static QRect scroll_handle(const QStyleOptionSlider *option)
{
	const bool across = option->orientation == Qt::Horizontal;
	const int length = across ? option->rect.width() : option->rect.height();
	const qint64 range = static_cast<qint64>(option->maximum) - option->minimum;
	const int handle =
		range > 0 ? std::max(28, static_cast<int>(qint64(length) * option->pageStep /
							  (range + option->pageStep)))
			  : length;
	const int at = QStyle::sliderPositionFromValue(option->minimum, option->maximum,
		option->sliderPosition, length - handle, option->upsideDown);
	return across ? QRect(at, 0, handle, option->rect.height())
		      : QRect(0, at, option->rect.width(), handle);
}

static void draw_scroll_bar(
	const QStyleOptionSlider *option, QPainter *painter, const QWidget *widget)
{
	// With nothing to scroll it is no more than room that is kept.
	if (option->maximum <= option->minimum) {
		painter->fillRect(option->rect,
			option->palette.color(
				widget ? widget->backgroundRole() : QPalette::Window));
		return;
	}
	painter->fillRect(option->rect, option->palette.color(QPalette::Base));
	const QRect handle = scroll_handle(option).translated(option->rect.topLeft());
	const bool held = option->state & (QStyle::State_MouseOver | QStyle::State_Sunken);
	draw_box(painter, handle.adjusted(3, 3, -3, -3),
		mixed(option->palette.color(QPalette::Dark), option->palette.color(QPalette::Base),
			held ? 0.0 : 0.25),
		{}, 0, 3);
}

// A group has its name in bold above it, and no frame.
static void draw_group(const QStyle *style, const QStyleOptionGroupBox *option, QPainter *painter,
	const QWidget *widget)
{
	const QRect place = style->subControlRect(
		QStyle::CC_GroupBox, option, QStyle::SC_GroupBoxLabel, widget);
	painter->save();
	QFont bold = painter->font();
	bold.setBold(true);
	painter->setFont(bold);
	painter->setPen(option->palette.color(QPalette::WindowText));
	painter->drawText(place.adjusted(0, 0, place.width(), 0), Qt::AlignLeft | Qt::AlignVCenter,
		option->text);
	painter->restore();
}

// ---- The style ------------------------------------------------------------------------------------

void flat_style::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
	QPainter *painter, const QWidget *widget) const
{
	switch (element) {
	case PE_PanelLineEdit:
		if (auto *frame = qstyleoption_cast<const QStyleOptionFrame *>(option);
			frame && frame->lineWidth > 0)
			draw_field(option, painter, has(option, State_ReadOnly));
		return;
	case PE_FrameLineEdit:
	case PE_FrameGroupBox:
		return;
	case PE_PanelButtonTool: {
		const bool focus = has(option, State_HasFocus), framed = is_framed(widget);
		if (framed || focus || has(option, State_MouseOver))
			draw_box(painter, option->rect, option->palette.color(QPalette::Button),
				option->palette.color(focus    ? QPalette::Link
						      : framed ? QPalette::Mid
							       : QPalette::Midlight));
		return;
	}
	case PE_Frame:
		if (dynamic_cast<const QAbstractScrollArea *>(widget))
			return draw_list_frame(option, painter, widget);
		break;
	case PE_IndicatorRadioButton:
		return draw_indicator(option, painter, true);
	case PE_IndicatorCheckBox:
		return draw_indicator(option, painter, false);
	case PE_FrameFocusRect:
		return draw_box(painter, option->rect, Qt::transparent,
			option->palette.color(QPalette::Link), focus_width, 3);
	default:
		break;
	}
	QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void flat_style::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
	const QWidget *widget) const
{
	auto *button = qstyleoption_cast<const QStyleOptionButton *>(option);
	auto *bar = qstyleoption_cast<const QStyleOptionProgressBar *>(option);
	switch (element) {
	case CE_PushButton:
		draw_button_box(button, painter, widget);
		return draw_button_label(button, painter, widget);
	case CE_HeaderSection:
	case CE_HeaderEmptyArea:
		return draw_header(option, painter);
	case CE_HeaderLabel:
		if (auto *label = qstyleoption_cast<const QStyleOptionHeader *>(option)) {
			QStyleOptionHeader quiet = *label;
			quiet.palette.setColor(QPalette::ButtonText,
				option->palette.color(QPalette::PlaceholderText));
			return QProxyStyle::drawControl(element, &quiet, painter, widget);
		}
		break;
	case CE_TabBarTabShape:
		return draw_tab(option, painter);
	case CE_ProgressBarGroove:
		return draw_progress(bar, painter, option->palette.color(QPalette::Midlight), 1);
	case CE_ProgressBarContents:
		return draw_progress(
			bar, painter, option->palette.color(QPalette::Highlight), done_part(bar));
	default:
		break;
	}
	QProxyStyle::drawControl(element, option, painter, widget);
}

void flat_style::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
	QPainter *painter, const QWidget *widget) const
{
	switch (control) {
	case CC_ComboBox:
		return draw_choice(
			qstyleoption_cast<const QStyleOptionComboBox *>(option), painter);
	case CC_Slider:
		return draw_slider(this, qstyleoption_cast<const QStyleOptionSlider *>(option),
			painter, widget);
	case CC_ScrollBar:
		return draw_scroll_bar(
			qstyleoption_cast<const QStyleOptionSlider *>(option), painter, widget);
	case CC_GroupBox:
		return draw_group(this, qstyleoption_cast<const QStyleOptionGroupBox *>(option),
			painter, widget);
	default:
		QProxyStyle::drawComplexControl(control, option, painter, widget);
	}
}

QRect flat_style::subControlRect(ComplexControl control, const QStyleOptionComplex *option,
	SubControl part, const QWidget *widget) const
{
	auto *slider = qstyleoption_cast<const QStyleOptionSlider *>(option);
	if (control != CC_ScrollBar || !slider)
		return QProxyStyle::subControlRect(control, option, part, widget);
	const QRect handle = scroll_handle(slider);
	const QRect all({}, option->rect.size());
	const bool across = slider->orientation == Qt::Horizontal;
	switch (part) {
	case SC_ScrollBarSlider:
		return handle;
	case SC_ScrollBarGroove:
		return all;
	case SC_ScrollBarSubPage:
		return across ? QRect(all.topLeft(), QPoint(handle.left() - 1, all.bottom()))
			      : QRect(all.topLeft(), QPoint(all.right(), handle.top() - 1));
	case SC_ScrollBarAddPage:
		return across ? QRect(QPoint(handle.right() + 1, 0), all.bottomRight())
			      : QRect(QPoint(0, handle.bottom() + 1), all.bottomRight());
	default:
		return {};
	}
}

QSize flat_style::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
	const QWidget *widget) const
{
	QSize all = QProxyStyle::sizeFromContents(type, option, size, widget);
	const int words = option ? option->fontMetrics.height() : size.height();
	auto *button = qstyleoption_cast<const QStyleOptionButton *>(option);
	switch (type) {
	case CT_PushButton: {
		const bool pictured = button && !button->icon.isNull();
		const QString text = button ? button->text : QString();
		const int width = option->fontMetrics.size(Qt::TextShowMnemonic, text).width();
		const int gap = pictured && !text.isEmpty() ? between_controls : 0;
		return { width + (pictured ? icon_size : 0) + gap + 24,
			std::max(
				is_main(widget) ? main_button_height : button_height, words + 12) };
	}
	case CT_LineEdit:
	case CT_ComboBox:
		all.setHeight(std::max(field_height, words + 10));
		return all;
	case CT_TabBarTab:
		all.setHeight(std::max(tab_height, words + 12));
		return all;
	case CT_HeaderSection:
		all.setHeight(std::max(header_height, words + 10));
		return all;
	case CT_ItemViewItem:
		all.setHeight(std::max(row_height, words + 6));
		return all;
	default:
		return all;
	}
}

int flat_style::pixelMetric(
	PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
	switch (metric) {
	case PM_ScrollBarExtent:
		return 12;
	case PM_DefaultFrameWidth:
		return 2;
	case PM_ButtonIconSize:
	case PM_SmallIconSize:
		return icon_size;
	case PM_LayoutHorizontalSpacing:
	case PM_LayoutVerticalSpacing:
		return between_controls;
	case PM_SliderLength:
	case PM_SliderThickness:
		return icon_size;
	case PM_TabBarTabShiftVertical:
	case PM_TabBarTabShiftHorizontal:
	case PM_TabBarTabOverlap:
	case PM_ButtonShiftHorizontal:
	case PM_ButtonShiftVertical:
		return 0;
	default:
		return QProxyStyle::pixelMetric(metric, option, widget);
	}
}

int flat_style::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
	QStyleHintReturn *answer) const
{
	switch (hint) {
	case SH_EtchDisabledText:
		return 0;
	case SH_ScrollBar_LeftClickAbsolutePosition:
		return 1;
	case SH_FormLayoutLabelAlignment:
		return Qt::AlignLeft | Qt::AlignVCenter;
	default:
		return QProxyStyle::styleHint(hint, option, widget, answer);
	}
}

// What a menu bar shows when it has no room; Fusion's own picture is read when a window opens.
QIcon flat_style::standardIcon(
	StandardPixmap which, const QStyleOption *option, const QWidget *widget) const
{
	if (which == SP_ToolBarHorizontalExtensionButton)
		return make_icon(icon::all_right);
	return QProxyStyle::standardIcon(which, option, widget);
}

void flat_style::polish(QWidget *widget)
{
	if (qobject_cast<QAbstractButton *>(widget) || qobject_cast<QScrollBar *>(widget) ||
		qobject_cast<QTabBar *>(widget))
		widget->setAttribute(Qt::WA_Hover);
	QProxyStyle::polish(widget);
}

} // namespace velmor
