// test_ui_translation.cpp - every word of ours has a translation, and the system's words stay

#include "tests/ui_fixture.h"
#include "ui/parts/entry_list.h"
#include "ui/translation.h"
#include <QAbstractButton>
#include <QFile>
#include <QPushButton>
#include <QXmlStreamReader>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

using namespace velmor;

namespace
{

std::string source_root()
{
	const char *root = std::getenv("VELMOR_SOURCE");
	return root ? root : ".";
}

// The value of one or more literals that stand side by side.
std::string value_of(const std::string &literals)
{
	std::string out;
	bool inside = false;
	for (std::size_t i = 0; i < literals.size(); i++) {
		if (literals[i] == '"')
			inside = !inside;
		else if (inside && literals[i] == '\\')
			out += literals[++i] == 'n' ? '\n' : literals[i];
		else if (inside)
			out += literals[i];
	}
	return out;
}

std::set<std::string> words_of_sources()
{
	static const std::regex marked(R"re(\b(?:tr|own|qtr)\(\s*((?:"(?:[^"\\]|\\.)*"\s*)+)\))re");
	std::set<std::string> words;
	for (const char *room : { "/src", "/ui", "/platform" })
		for (const auto &entry :
			std::filesystem::recursive_directory_iterator(source_root() + room)) {
			std::ifstream file(entry.path());
			std::stringstream text;
			text << file.rdbuf();
			const std::string all = text.str();
			for (std::sregex_iterator at(all.begin(), all.end(), marked), end;
				at != end; ++at)
				words.insert(value_of((*at)[1]));
		}
	return words;
}

// Source and translation; "" where it is not finished.
std::map<std::string, std::string> german_words()
{
	QFile file(QString::fromStdString(source_root() + "/translations/velmor_de.ts"));
	EXPECT_TRUE(file.open(QIODevice::ReadOnly));
	QXmlStreamReader xml(&file);
	std::map<std::string, std::string> words;
	std::string source;
	while (!xml.atEnd()) {
		xml.readNext();
		if (!xml.isStartElement())
			continue;
		if (xml.name() == QLatin1String("source"))
			source = xml.readElementText().toStdString();
		else if (xml.name() == QLatin1String("translation")) {
			const bool finished = !xml.attributes().hasAttribute("type");
			const std::string text = xml.readElementText().toStdString();
			words[source] = finished ? text : "";
		}
	}
	return words;
}

// What a format takes, in its order: "%d%s", and the places "%1" of a text in the windows.
std::string conversions(const std::string &text)
{
	static const std::regex one(
		"%(?:%|[-+ #0]*[0-9]*(?:\\.[0-9]+)?(?:hh|h|ll|l|z)?[a-zA-Z]|[0-9])");
	std::string all;
	for (std::sregex_iterator at(text.begin(), text.end(), one), end; at != end; ++at)
		all += at->str();
	return all;
}

struct german {
	german() { load_translation({ "de-DE", "en" }); }
	~german() { load_translation({}); }
};
class in_german : german, public windows
{
};

} // namespace

TEST(translations, are_complete_and_take_what_the_words_take)
{
	const std::set<std::string> words = words_of_sources();
	ASSERT_GT(words.size(), 500u);
	const std::map<std::string, std::string> german = german_words();
	for (const std::string &word : words) {
		const auto found = german.find(word);
		ASSERT_NE(found, german.end()) << "not in the file; make words: " << word;
		EXPECT_NE(found->second, "") << word;
		EXPECT_EQ(conversions(found->second), conversions(word)) << word;
		EXPECT_EQ(std::ranges::count(found->second, '\n'), std::ranges::count(word, '\n'))
			<< word;
	}
	for (const auto &[word, translated] : german)
		EXPECT_TRUE(words.contains(word)) << "no longer said: " << word;
}

TEST_F(in_german, windows_say_their_own_words_in_german_and_the_systems_words_as_ever)
{
	auto *load = at<QPushButton>(window_main, main_load);
	EXPECT_EQ(load->text().remove('&'), "Load Sampler");
	EXPECT_EQ(load->toolTip(), "Mit dem gewählten Sampler arbeiten");
	auto *list = at<entry_list>(window_multis, multis_list);
	EXPECT_EQ(list->accessibleName(), "Multis");
	list->set_state(list_state::empty, {});
	EXPECT_EQ(list->accessibleDescription(),
		"Keine Multis. Nur ein S5000 oder S6000 sagt, welche Multis er enthält.");
	EXPECT_STREQ(tr("Try again"), "Noch einmal");
	EXPECT_STREQ(tr("nobody translates this"), "nobody translates this");
	EXPECT_EQ(counted(1, noun::change) + ", " + counted(2, noun::change),
		"1 Änderung, 2 Änderungen");
}

// Labels of forms wrap, and lines of told words end in dots; what is pressed shows all it says.
TEST_F(in_german, what_is_pressed_shows_all_its_words_and_no_letter_opens_two_things)
{
	int seen = 0;
	for (const int id : { window_main, window_midi_files, window_settings, window_sampler,
		     window_samples, window_programs, window_multis, window_progress, window_panel,
		     window_usb, window_history, window_backup, window_self_test }) {
		host.ui->show(id, 0, true);
		const auto *window = at(id, 0);
		const std::string title = window->windowTitle().toStdString();
		std::map<QChar, QString> letters;
		QApplication::processEvents();
		for (const QAbstractButton *button : window->findChildren<QAbstractButton *>()) {
			const QString words = button->text();
			if (button->window() != window || !button->isVisible() || words.isEmpty())
				continue;
			seen++;
			EXPECT_GE(button->width(), button->minimumSizeHint().width())
				<< title << ": " << words.toStdString();
			const qsizetype mark = words.indexOf('&');
			if (mark < 0)
				continue;
			const QChar letter = words[mark + 1].toLower();
			EXPECT_FALSE(letters.contains(letter))
				<< title << ": " << letters[letter].toStdString() << ", "
				<< words.toStdString();
			letters[letter] = words;
		}
		host.ui->show(id, 0, false);
	}
	EXPECT_GT(seen, 90);
}

TEST(translations, keep_to_the_order_of_the_languages)
{
	host.ui = &qt_ui;
	load_translation({ "en-GB", "de-DE" });
	EXPECT_STREQ(tr("Try again"), "Try again");
	load_translation({ "xx", "de-AT", "en" });
	EXPECT_STREQ(tr("Try again"), "Noch einmal");
	load_translation({});
	EXPECT_STREQ(tr("Try again"), "Try again");
}
