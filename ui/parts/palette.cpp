// palette.cpp - the colours of the windows by their roles, light and dark

#include "ui/parts/palette.h"
#include <QApplication>
#include <QToolTip>
#include <algorithm>
#include <cmath>

namespace velmor
{

struct role_row {
	QPalette::ColorRole role;
	QRgb light, dark;
};

// clang-format off
static constexpr role_row rows[] = {
	{ QPalette::Window,          0xFFF1F1EF, 0xFF26282B },
	{ QPalette::WindowText,      0xFF1B1E21, 0xFFE9EAEB },
	{ QPalette::Base,            0xFFFFFFFF, 0xFF1B1D1F },
	{ QPalette::AlternateBase,   0xFFF7F7F5, 0xFF212326 },
	{ QPalette::Text,            0xFF1B1E21, 0xFFE9EAEB },
	{ QPalette::Button,          0xFFFCFCFB, 0xFF313437 },
	{ QPalette::ButtonText,      0xFF1B1E21, 0xFFE9EAEB },
	{ QPalette::BrightText,      0xFFFFFFFF, 0xFFFFFFFF },
	{ QPalette::Light,           0xFFFFFFFF, 0xFF3A3D41 },
	{ QPalette::Midlight,        0xFFDFDFDC, 0xFF393C3F },
	{ QPalette::Mid,             0xFFC3C3BF, 0xFF4C5054 },
	{ QPalette::Dark,            0xFF5F6368, 0xFF9A9DA2 },
	{ QPalette::Shadow,          0xFF8A8D91, 0xFF000000 },
	{ QPalette::PlaceholderText, 0xFF5E6267, 0xFFA6A9AD },
	{ QPalette::Highlight,       0xFF1B69A8, 0xFF2A6CAC },
	{ QPalette::HighlightedText, 0xFFFFFFFF, 0xFFFFFFFF },
	{ QPalette::Link,            0xFF1B69A8, 0xFF79B8F2 },
	{ QPalette::LinkVisited,     0xFF1B69A8, 0xFF79B8F2 },
	{ QPalette::ToolTipBase,     0xFF2A2D31, 0xFFE4E5E6 },
	{ QPalette::ToolTipText,     0xFFFFFFFF, 0xFF1B1E21 },
};

// What is off need not be read from afar.
static constexpr role_row rows_when_off[] = {
	{ QPalette::WindowText,      0xFF96999D, 0xFF74777B },
	{ QPalette::Text,            0xFF96999D, 0xFF74777B },
	{ QPalette::ButtonText,      0xFF96999D, 0xFF74777B },
	{ QPalette::Button,          0xFFF1F1EF, 0xFF2A2C2F },
	{ QPalette::Highlight,       0xFFC3C3BF, 0xFF4C5054 },
	{ QPalette::HighlightedText, 0xFF3A3D41, 0xFFE9EAEB },
};

struct meaning_row {
	text_role role;
	QRgb light, dark;
};

static constexpr meaning_row meanings[] = {
	{ text_role::good,    0xFF1D7440, 0xFF7FD39A },
	{ text_role::careful, 0xFF8A5600, 0xFFF0BB58 },
	{ text_role::failed,  0xFFB3261E, 0xFFFF968C },
};
// clang-format on

QPalette role_palette(bool dark)
{
	QPalette palette;
	for (const role_row &row : rows)
		palette.setColor(row.role, QColor::fromRgba(dark ? row.dark : row.light));
	for (const role_row &row : rows_when_off)
		palette.setColor(QPalette::Disabled, row.role,
			QColor::fromRgba(dark ? row.dark : row.light));
	return palette;
}

bool is_dark(const QPalette &palette)
{
	return palette.color(QPalette::Window).lightness() <
	       palette.color(QPalette::WindowText).lightness();
}

void use_palette(bool dark)
{
	QApplication::setPalette(role_palette(dark));
	QToolTip::setPalette(role_palette(dark));
}

// An empty palette is the desktop's own.
void follow_desktop()
{
	QApplication::setPalette(QPalette());
	use_palette(is_dark(QApplication::palette()));
}

QColor role_color(const QPalette &palette, text_role role)
{
	for (const meaning_row &row : meanings)
		if (row.role == role)
			return QColor::fromRgba(is_dark(palette) ? row.dark : row.light);
	return palette.color(role == text_role::quiet ? QPalette::PlaceholderText : QPalette::Text);
}

QColor mixed(const QColor &one, const QColor &other, double part)
{
	const auto between = [part](int a, int b) {
		return static_cast<int>(std::lround(a + (b - a) * part));
	};
	return QColor(between(one.red(), other.red()), between(one.green(), other.green()),
		between(one.blue(), other.blue()));
}

static double luminance(const QColor &color)
{
	const auto linear = [](double value) {
		return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
	};
	return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
	       0.0722 * linear(color.blueF());
}

double contrast(const QColor &one, const QColor &other)
{
	const auto [less, more] = std::minmax({ luminance(one), luminance(other) });
	return (more + 0.05) / (less + 0.05);
}

} // namespace velmor
