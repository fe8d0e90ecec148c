// test_velmorctl_table.cpp - man page, help and completion beside the table of verbs

#include "programs/ctl.h"
#include <algorithm>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>

using namespace velmor;

namespace
{

using lines = std::vector<std::string>;

std::string source_file(const char *path)
{
	const char *top = std::getenv("VELMOR_SOURCE");
	std::ifstream file((top ? std::string(top) : ".") + "/" + path);
	std::stringstream all;
	all << file.rdbuf();
	return all.str();
}

// Tags of the man page, each with the text behind it, without fonts.
lines tags_of(std::string page)
{
	page = page.substr(0, page.find(".SH EXIT STATUS"));
	page = std::regex_replace(page, std::regex("\\\\f[BIR]"), "");
	page = std::regex_replace(page, std::regex("\\\\-"), "-");
	lines tags;
	for (std::size_t at = page.find(".TP\n"); at != page.npos; at = page.find(".TP\n", at + 1))
		tags.push_back(page.substr(at + 4, page.find("\n.", at + 4) - at - 4));
	return tags;
}

TEST(velmorctl, man_page_help_and_completion_say_what_the_table_says)
{
	lines due;
	std::vector<ctl_option> options;
	for (const ctl_verb &verb : ctl_verbs) {
		due.push_back(std::string(verb.name) + (*verb.arguments ? " " : "") +
			      verb.arguments + "\n" + verb.help);
		for (const ctl_option &option : verb.options)
			if (std::ranges::none_of(options, [&](const auto &o) {
				    return !std::strcmp(o.name, option.name);
			    }))
				options.push_back(option);
	}
	options.insert(options.end(), ctl_options.begin(), ctl_options.end());
	for (const ctl_option &option : options)
		due.push_back(std::string(option.name) + (option.value ? " " : "") +
			      (option.value ? option.value : "") + "\n");
	const lines tags = tags_of(source_file("packaging/velmorctl.1"));
	ASSERT_EQ(tags.size(), due.size());
	for (std::size_t i = 0; i < due.size(); i++)
		EXPECT_TRUE(tags[i].starts_with(due[i])) << tags[i];
	EXPECT_EQ(source_file("packaging/velmorctl.bash"), ctl_completion())
		<< "made by velmorctl --completion";
	for (const ctl_verb &verb : ctl_verbs)
		EXPECT_NE(ctl_help().find(std::string("  ") + verb.name + " "), std::string::npos);
	EXPECT_EQ(ctl_help().find('\t'), std::string::npos);
}

} // namespace
