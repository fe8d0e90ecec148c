// words.h - the program's own words as the windows show them
//
// Classes of Qt have a tr of their own, which knows nothing of our translation.

#pragma once
#include "src/velmor_words.h"
#include <QString>

namespace velmor
{

inline QString qtr(const char *words)
{
	return QString::fromUtf8(tr(words));
}

} // namespace velmor
