// ctl_table.cpp - the verbs of velmorctl, and reading a command line
//
// To add a verb: a row here, its function in ctl_<subject>.cpp, a line in ctl.h, and a paragraph
// in packaging/velmorctl.1, which a test compares with the table.

#include "programs/ctl.h"
#include <algorithm>
#include <charconv>

namespace velmor
{

// ---- The table --------------------------------------------------------------------------------

// clang-format off
const std::vector<ctl_option> ctl_options = {
	{ "--sampler",    "NAME",         "the sampler to work with, by the name of its configuration" },
	{ "--demo",       nullptr,        "virtual samplers, with nothing plugged in" },
	{ "--tcp",        "ADDRESS:PORT", "reach the sampler over a TCP bridge in place of the MIDI ports" },
	{ "--record",     "FILE",         "write everything that goes over the lines to a file, for a report" },
	{ "--json",       nullptr,        "one JSON object a line on standard output" },
	{ "--yes",        nullptr,        "answer every question with yes" },
	{ "--verbose",    nullptr,        "show every line of the log, and add it to velmor.log in the current folder" },
	{ "--completion", nullptr,        "print the completion of bash for this program" },
	{ "--version",    nullptr,        "show the version" },
	{ "--help",       nullptr,        "show this text" },
};

static constexpr ctl_option local_options[] = {
	{ "--local",    nullptr, "what this computer holds, instead of the sampler" },
};
static constexpr ctl_option get_options[] = {
	{ "--all",      nullptr, "every sample of the sampler" },
};
static constexpr ctl_option import_options_[] = {
	{ "--bits",     "12|16|24", "convert to so many bits" },
	{ "--rate",     "16000|22000|32000|44100|48000|96000", "convert to that rate, in Hz" },
	{ "--channels", "1|2",   "make it mono or stereo" },
	{ "--mix",      "left|right|both|average|files", "which channel of a stereo file a mono one gets, and where a mono file goes" },
};
static constexpr ctl_option backup_options[] = {
	{ "--everything", nullptr, "also what looks as it was" },
};
static constexpr ctl_option restore_options[] = {
	{ "--everything", nullptr, "also what looks as it was" },
	{ "--remove-others", nullptr, "delete on the sampler what the folder does not hold" },
	{ "--plan",     nullptr, "say what would be done, and do nothing" },
};
static constexpr ctl_option panel_options[] = {
	{ "--png",      "FILE",  "write the picture to a file" },
};
static constexpr ctl_option key_options[] = {
	{ "--times",    "N",     "press each key so often, turn the wheel by so many steps" },
	{ "--type",     "TEXT",  "type these characters behind the keys" },
	{ "--list",     nullptr, "print the names of the keys" },
};
static constexpr ctl_option play_options[] = {
	{ "--speed",    "N",     "ticks a second, 300 to 1800; a quarter note has 960" },
};
static constexpr ctl_option monitor_options[] = {
	{ "--seconds",  "N",     "end after so many seconds" },
};
static constexpr ctl_option selftest_options[] = {
	{ "--answers",  nullptr, "compare the sampler's answers; no cable is needed" },
	{ "--keep",     nullptr, "use the pace that is found for this interface from now on" },
	{ "--forget",   nullptr, "test nothing; send long messages to this interface at once again" },
};

const std::vector<ctl_verb> ctl_verbs = {
	// name         arguments     help                                                  least, most, needs a sampler
	{ "samplers",    "",           "List the samplers that are configured.",                     0, 0, false, ctl_samplers },
	{ "info",        "[SAMPLE...]", "Ask the sampler who it is, or about its samples.",          0, -1, true, ctl_info },
	{ "ls",          "",           "List the samples on the sampler.",                           0, 0, true, ctl_ls, local_options },
	{ "get",         "[SAMPLE...]", "Copy samples from the sampler into the spool of this computer.", 0, -1, true, ctl_get, get_options },
	{ "put",         "FILE...",    "Send WAV files, or samples of the spool, to the sampler.",   1, -1, true, ctl_put },
	{ "rm",          "SAMPLE...",  "Delete samples on the sampler.",                             1, -1, true, ctl_rm, local_options },
	{ "mv",          "SAMPLE NAME", "Rename a sample on the sampler.",                           2, 2, true, ctl_mv, local_options },
	{ "import",      "FILE...",    "Convert sound files into the spool of this computer.",       1, -1, false, ctl_import, import_options_ },
	{ "program ls",  "",           "List the programs on the sampler.",                          0, 0, true, ctl_program_ls, local_options },
	{ "program get", "PROGRAM...", "Copy programs and the samples they name to this computer.",  1, -1, true, ctl_program_get },
	{ "program put", "PROGRAM...", "Send programs of this computer to the sampler.",             1, -1, true, ctl_program_put },
	{ "program rm",  "PROGRAM...", "Delete programs on the sampler.",                            1, -1, true, ctl_program_rm, local_options },
	{ "program mv",  "PROGRAM NAME", "Rename a program on the sampler.",                         2, 2, true, ctl_program_mv, local_options },
	{ "backup",      "FOLDER",     "Copy all that the sampler holds into a folder.",             1, 1, true, ctl_backup, backup_options },
	{ "restore",     "FOLDER",     "Bring what a folder holds back to the sampler.",             1, 1, true, ctl_restore, restore_options },
	{ "undo",        "",           "Put back what was last changed on the sampler.",             0, 0, true, ctl_undo },
	{ "panel",       "",           "Show the screen of the sampler.",                            0, 0, true, ctl_panel, panel_options },
	{ "key",         "[KEY...]",   "Press keys of the sampler's panel.",                         0, -1, true, ctl_key, key_options },
	{ "play",        "FILE",       "Play a Standard MIDI File to the MIDI output.",              1, 1, false, ctl_play, play_options },
	{ "monitor",     "",           "Tell what arrives on the monitor's MIDI input, and pass it on.", 0, 0, false, ctl_monitor, monitor_options },
	{ "selftest",    "",           "Test whether the MIDI interface passes on long messages.",   0, 0, false, ctl_selftest, selftest_options },
	{ "replay",      "FILE",       "Send again what a recording sent, and compare the answers.", 1, 1, false, ctl_replay },
};
// clang-format on

// ---- Reading ------------------------------------------------------------------------------------

static std::vector<std::string> split(std::string_view text, char at)
{
	std::vector<std::string> parts = { "" };
	for (const char c : text)
		if (c == at)
			parts.emplace_back();
		else
			parts.back() += c;
	return parts;
}

// "" or what is wrong with the value of an option.
static std::string judge_value(const ctl_option &option, const std::string &value)
{
	const std::string due = option.value;
	if (due == "N") {
		int number = 0;
		const char *end = value.data() + value.size();
		const auto [stopped, code] = std::from_chars(value.data(), end, number);
		const bool good = code == std::errc() && stopped == end && number > 0;
		return good ? "" : std::string(option.name) + " takes a number above 0.";
	}
	const std::vector<std::string> choices = split(due, '|');
	if (choices.size() == 1)
		return value.empty() ? std::string(option.name) + " takes " + due + "." : "";
	return std::find(choices.begin(), choices.end(), value) != choices.end()
		       ? ""
		       : std::string(option.name) + " takes one of these: " + due + ".";
}

static const ctl_option *find_option(const ctl_verb *verb, const std::string &name)
{
	std::vector<std::span<const ctl_option>> lists = { ctl_options };
	if (verb)
		lists.push_back(verb->options);
	for (const std::span<const ctl_option> list : lists)
		for (const ctl_option &option : list)
			if (option.name == name)
				return &option;
	return nullptr;
}

// The words of the command line that are no options, in their order.
static std::vector<std::string> plain_words(std::span<const std::string> words)
{
	std::vector<std::string> plain;
	bool options_ended = false;
	for (std::size_t i = 0; i < words.size(); i++) {
		if (!options_ended && words[i] == "--")
			options_ended = true;
		else if (options_ended || !words[i].starts_with("--"))
			plain.push_back(words[i]);
		else if (const ctl_option *option = find_option(nullptr, words[i]))
			i += option->value != nullptr;
	}
	return plain;
}

// A verb stands in front, but for options of all verbs.
static const ctl_verb *find_verb(std::span<const std::string> words, std::string *asked)
{
	const std::vector<std::string> plain = plain_words(words);
	for (const std::size_t count : { 2u, 1u }) {
		if (plain.size() < count)
			continue;
		*asked = count == 2 ? plain[0] + " " + plain[1] : plain[0];
		for (const ctl_verb &verb : ctl_verbs)
			if (verb.name == *asked)
				return &verb;
	}
	return nullptr;
}

// The option at place *at with its value; *at goes to its last word.
static std::string read_option(std::span<const std::string> words, std::size_t *at, ctl_call *call)
{
	const std::size_t equals = words[*at].find('=');
	const std::string name = words[*at].substr(0, equals);
	const ctl_option *option = find_option(call->verb, name);
	if (!option)
		return name + ": there is no such option" +
		       (call->verb ? " of '" + std::string(call->verb->name) + "'." : ".");
	std::string value;
	if (!option->value && equals != name.npos)
		return name + " takes no value.";
	if (option->value && equals != name.npos)
		value = words[*at].substr(equals + 1);
	else if (option->value && *at + 1 == words.size())
		return name + " takes " + option->value + ".";
	else if (option->value)
		value = words[++*at];
	call->options[name] = value;
	return option->value ? judge_value(*option, value) : "";
}

static std::string judge_count(const ctl_call &call)
{
	const ctl_verb &verb = *call.verb;
	const int count = static_cast<int>(call.words.size());
	const std::string usage = std::string("velmorctl ") + verb.name +
				  (*verb.arguments ? " " : "") + verb.arguments;
	if (count < verb.least)
		return "An argument is missing: " + usage + ".";
	if (verb.most >= 0 && count > verb.most)
		return "There is an argument too many: " + usage + ".";
	return "";
}

std::string read_ctl(std::span<const std::string> words, ctl_call *call)
{
	std::string asked;
	call->verb = find_verb(words, &asked);
	bool options_ended = false;
	for (std::size_t i = 0; i < words.size(); i++) {
		if (options_ended || !words[i].starts_with("--")) {
			call->words.push_back(words[i]);
		} else if (words[i] == "--") {
			options_ended = true;
		} else if (std::string wrong = read_option(words, &i, call); !wrong.empty()) {
			return wrong;
		}
	}
	for (const char *alone : { "--help", "--version", "--completion" })
		if (call->has(alone)) {
			call->verb = nullptr;
			return "";
		}
	if (!call->verb)
		return asked.empty() ? "The verb is missing."
				     : "There is no verb '" + call->words.front() + "'.";
	const auto of_verb = std::count(call->verb->name, call->verb->name + asked.size(), ' ') + 1;
	call->words.erase(call->words.begin(), call->words.begin() + of_verb);
	return judge_count(*call);
}

// ---- Help ---------------------------------------------------------------------------------------

static std::string in_column(std::string text, std::size_t width)
{
	text.resize(std::max(text.size() + 1, width), ' ');
	return text;
}

static std::string help_line(const ctl_option &option, const char *indent, std::size_t width)
{
	const std::string value = option.value ? std::string(" ") + option.value : "";
	return indent + in_column(option.name + value, width) + option.help + "\n";
}

std::string ctl_help()
{
	std::string text = "Usage: velmorctl [OPTION...] VERB [ARGUMENT...]\n"
			   "Do on the command line what the windows of velmor do with an AKAI "
			   "sampler.\n\n";
	for (const ctl_verb &verb : ctl_verbs) {
		text += "  " + in_column(std::string(verb.name) + " " + verb.arguments, 26) +
			verb.help + "\n";
		for (const ctl_option &option : verb.options)
			text += help_line(option, "    ", 24);
	}
	text += "\n";
	for (const ctl_option &option : ctl_options)
		text += help_line(option, "  ", 26);
	return text +
	       "\nEnds with 0 when all was done, 1 when the sampler refused, 2 for a command "
	       "line that makes\nno sense, 3 without an answer, 4 when a file of this "
	       "computer was in the way, and 130\nwhen Ctrl-C stopped it.\n";
}

// ---- Completion -----------------------------------------------------------------------------------

static std::string names_of(std::span<const ctl_option> options)
{
	std::string names;
	for (const ctl_option &option : options)
		names += std::string(" ") + option.name;
	return names;
}

// First words of the verbs, each once, or second words of those with that first word.
static std::string verb_words(const std::string &first)
{
	std::string words;
	std::string last;
	for (const ctl_verb &verb : ctl_verbs) {
		const std::vector<std::string> parts = split(verb.name, ' ');
		const bool fits = first.empty() || (parts.size() == 2 && parts[0] == first);
		const std::string word = first.empty() ? parts[0] : parts.back();
		if (fits && word != last)
			words += " " + word;
		last = fits ? word : last;
	}
	return words.substr(words.empty() ? 0 : 1);
}

// Options whose value is one of several, and those whose value is a file.
static std::string value_cases()
{
	std::string text;
	for (const ctl_verb &verb : ctl_verbs)
		for (const ctl_option &option : verb.options) {
			std::string choices = option.value ? option.value : "";
			if (choices.find('|') == choices.npos)
				continue;
			std::replace(choices.begin(), choices.end(), '|', ' ');
			text += std::string("\t") + option.name + ") COMPREPLY=($(compgen -W '" +
				choices + "' -- \"$word\")); return ;;\n";
		}
	return text;
}

std::string ctl_completion()
{
	std::string text =
		"# Completion of velmorctl for bash; made by velmorctl --completion\n"
		"_velmorctl()\n{\n"
		"\tlocal word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} verb= "
		"i\n"
		"\tlocal IFS=$' \\t\\n'\n"
		"\tCOMPREPLY=()\n"
		"\tfor ((i = 1; i < COMP_CWORD; i++)); do\n"
		"\t\tcase ${COMP_WORDS[i]} in\n"
		"\t\t--sampler|--tcp) ((i++)) ;;\n"
		"\t\t-*) ;;\n"
		"\t\t*) verb+=${verb:+ }${COMP_WORDS[i]}; [[ $verb == program ]] || break ;;\n"
		"\t\tesac\n\tdone\n"
		"\tcase $before in\n"
		"\t--sampler)\n"
		"\t\tlocal demo=; [[ \" ${COMP_WORDS[*]} \" == *' --demo '* ]] && demo=--demo\n"
		"\t\tlocal name; while IFS= read -r name; do\n"
		"\t\t\t[[ $name == \"$word\"* ]] && COMPREPLY+=(\"${name// /\\\\ }\")\n"
		"\t\tdone < <(velmorctl $demo samplers 2>/dev/null | cut -f1)\n"
		"\t\treturn ;;\n" +
		value_cases() +
		"\tesac\n"
		"\tlocal options='" +
		names_of(ctl_options).substr(1) +
		"'\n"
		"\tcase $verb in\n"
		"\t'') COMPREPLY=($(compgen -W \"" +
		verb_words("") +
		" $options\" -- \"$word\")); return ;;\n"
		"\tprogram) COMPREPLY=($(compgen -W '" +
		verb_words("program") + "' -- \"$word\")); return ;;\n";
	for (const ctl_verb &verb : ctl_verbs)
		if (!verb.options.empty())
			text += std::string("\t'") + verb.name + "') options+='" +
				names_of(verb.options) + "' ;;\n";
	return text +
	       "\tesac\n"
	       "\tif [[ $word == -* ]]; then\n"
	       "\t\tCOMPREPLY=($(compgen -W \"$options\" -- \"$word\"))\n"
	       "\telse\n"
	       "\t\tcompopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -f -- \"$word\"))\n"
	       "\tfi\n}\n"
	       "complete -F _velmorctl velmorctl\n";
}

} // namespace velmor
