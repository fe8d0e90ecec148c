// velmor_words.h - the program's own words in the language of the user
//
// What is shown to a person goes through tr(). The words that the system has always had - titles,
// buttons, boxes, log lines - stay as they are in every language: they are what owners of these
// machines search for and quote. A sentence of ours that is logged as well is logged as shown.
//
// A translator finds the words in translations/velmor_de.ts, which lupdate keeps (make words).

#pragma once
#include "platform/host.h"
#include "platform/words.h"

namespace velmor
{

// The same in the language of the user. Formats keep their conversions, in their order.
inline const char *tr(const char *words) __attribute__((format_arg(1)));
inline const char *tr(const char *words)
{
	return host.ui->translate ? host.ui->translate(words) : words;
}

// In a table whose reader passes its words through tr(), own() marks them (platform/words.h).

} // namespace velmor
