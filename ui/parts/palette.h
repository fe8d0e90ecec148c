// palette.h - the colours of the windows by their roles, light and dark
//
// Whether the windows are light or dark is the desktop's choice; the colours are ours, so that
// text stands at least 4.5 to 1 against what it stands on, and a mark that means something 3
// to 1. Widgets take them from their palette when they paint and keep none.
//
// Roles: cards and lists Base on Window; frames Mid, hairlines Midlight, marks and handles Dark;
// quiet text PlaceholderText; one accent: Highlight for filled areas, Link for lines, marks and
// text.

#pragma once
#include "platform/ui.h"
#include <QPalette>

namespace velmor
{

QPalette role_palette(bool dark);
bool is_dark(const QPalette &palette);
// Give the program light or dark windows, as the desktop has them or as told.
void follow_desktop();
void use_palette(bool dark);

// The colour of a text or mark of that meaning.
QColor role_color(const QPalette &palette, text_role role);
// Between two colours, so many parts of the second.
QColor mixed(const QColor &one, const QColor &other, double part);
// As the Web Content Accessibility Guidelines count it: 1 to 21.
double contrast(const QColor &one, const QColor &other);

} // namespace velmor
