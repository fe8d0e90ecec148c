// translation.h - the program's own words in the language of the desktop
//
// The words of a language stand in translations/velmor_<language>.ts and are built into the
// program. What has no translation there stays as it is.

#pragma once
#include <QStringList>

namespace velmor
{

// Take the first of these languages that there is: English, which is in the program, or a
// translation. Before the windows; without it every word stays as it is.
void load_translation(const QStringList &languages);
// For ui_service.
const char *translate_words(const char *words);

} // namespace velmor
