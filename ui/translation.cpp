// translation.cpp - the program's own words in the language of the desktop

#include "ui/translation.h"
#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <memory>
#include <string>
#include <unordered_map>

namespace velmor
{

static std::unique_ptr<QTranslator> ours;

// What Qt itself says, in its boxes for files, if the desktop has it.
static void load_words_of_qt(const QLocale &language)
{
	if (!QCoreApplication::instance())
		return;
	auto *theirs = new QTranslator(QCoreApplication::instance());
	if (theirs->load(
		    language, "qtbase", "_", QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
		QCoreApplication::installTranslator(theirs);
}

void load_translation(const QStringList &languages)
{
	ours.reset();
	for (const QString &wanted : languages) {
		const QLocale language(wanted);
		if (language.language() == QLocale::English)
			return;
		auto found = std::make_unique<QTranslator>();
		if (!found->load(":/words/velmor_" +
				 QString(wanted).replace('_', '-').section('-', 0, 0)))
			continue;
		ours = std::move(found);
		load_words_of_qt(language);
		return;
	}
}

const char *translate_words(const char *words)
{
	// What was given out lives as long as the program.
	static std::unordered_map<std::string, std::string> known;
	if (!ours || !words || !*words)
		return words;
	const auto [place, is_new] = known.try_emplace(words);
	if (is_new) {
		const QString found = ours->translate("velmor", words);
		place->second = found.isEmpty() ? words : found.toStdString();
	}
	return place->second.c_str();
}

} // namespace velmor
