// velmor_history.cpp - the steps of a sampler's history, on the disk and in memory
//
//   version = 1
//   number = 12
//   time = "2026-11-22 01:40:03"
//   sampler = "Rack"
//   model = "Akai S3000/S3000XL"
//   work = "delete sample"
//   state = "done"
//   name = "KICK"
//   came = "SNARE"              a line for each name
//   [there 1]
//   what = "sample"
//   name = "KICK"
//   file = "KICK.wav"
//   bytes = "1.header"
//
// Names of files are plain names: a text that says otherwise is damaged, since it could lead out of
// the folder. A line that nobody knows is left alone.
//
// Knows nothing of: samplers, windows.

#include "src/velmor_history.h"
#include "src/velmor_files.h"
#include "src/velmor_library.h"
#include "src/waveqx_file.h"
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <ctime>

namespace velmor
{

history_settings the_history;

static constexpr const char *manifest = "step.txt";
static constexpr u64 largest_manifest = 1u << 20;
static constexpr int most_things = 999, largest_number = 1000000000;

// ---- Words ---------------------------------------------------------------------------------------

struct kind_row {
	step_kind kind;
	const char *word;   // of the manifest
	const char *words;  // of a list, with the name
	const char *inside; // the same inside a sentence
};
static constexpr kind_row kinds[] = {
	{ step_kind::rename_sample, "rename sample", own("Renamed the sample %s"),
		own("renamed the sample %s") },
	{ step_kind::delete_sample, "delete sample", own("Deleted the sample %s"),
		own("deleted the sample %s") },
	{ step_kind::upload_sample, "upload sample", own("Uploaded the sample %s"),
		own("uploaded the sample %s") },
	{ step_kind::rename_program, "rename program", own("Renamed the program %s"),
		own("renamed the program %s") },
	{ step_kind::delete_program, "delete program", own("Deleted the program %s"),
		own("deleted the program %s") },
	{ step_kind::change_program, "change program", own("Changed the program %s"),
		own("changed the program %s") },
};
struct state_row {
	step_state state;
	const char *word;
};
static constexpr state_row states[] = {
	{ step_state::begun, "begun" },
	{ step_state::done, "done" },
	{ step_state::half, "half put back" },
	{ step_state::undone, "undone" },
	{ step_state::put_back, "put back" },
};

static std::string quoted(const std::string &name)
{
	return "'" + name + "'";
}

std::string step_words(const history_step &step, bool inside)
{
	const std::string name = step.new_name.empty()
					 ? quoted(step.name)
					 : format_text(tr("%s to %s"), quoted(step.name).c_str(),
						   quoted(step.new_name).c_str());
	for (const kind_row &row : kinds)
		if (row.kind == step.kind)
			return format_text(tr(inside ? row.inside : row.words), name.c_str());
	return name;
}

// ---- The text --------------------------------------------------------------------------------------

static std::string text_line(const char *key, const std::string &value)
{
	return value.empty() ? "" : std::string(key) + " = " + quoted_text(value) + "\n";
}

std::string step_text(const history_step &step)
{
	std::string out = "# What a sampler held before it was changed.\nversion = 1\n" +
			  format_text("number = %d\n", step.number);
	out += text_line("time", step.time) + text_line("sampler", step.sampler) +
	       text_line("model", step.model);
	for (const kind_row &row : kinds)
		out += row.kind == step.kind ? text_line("work", row.word) : "";
	for (const state_row &row : states)
		out += row.state == step.state ? text_line("state", row.word) : "";
	out += text_line("name", step.name) + text_line("new name", step.new_name) +
	       text_line("no way back", step.cannot);
	for (const std::string &name : step.came)
		out += text_line("came", name);
	for (std::size_t i = 0; i < step.there.size(); i++) {
		const kept_thing &thing = step.there[i];
		out += format_text("\n[there %zu]\n", i + 1) +
		       text_line("what", thing.program ? "program" : "sample") +
		       text_line("name", thing.name) + text_line("file", thing.file) +
		       text_line("bytes", thing.bytes);
	}
	return out + "\n# the end\n";
}

// A reader of the text: the step so far, and what is still missing.
struct step_reader {
	history_step step;
	bool has_version = false, has_work = false, has_state = false, ended = false;
};

static std::string_view trimmed(std::string_view text)
{
	const auto begin = text.find_first_not_of(" \t\r");
	const auto end = text.find_last_not_of(" \t\r");
	return begin == text.npos ? std::string_view{} : text.substr(begin, end - begin + 1);
}

static int number_in(std::string_view text)
{
	int value = 0;
	const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
	return read.ec == std::errc() && read.ptr == text.data() + text.size() ? value : -1;
}

static bool is_plain_name(const std::string &name)
{
	return !name.empty() && file_name_of(name) == name;
}

static bool take_number(step_reader *r, std::string_view key, std::string_view value)
{
	const int number = number_in(value);
	if (key == "version")
		r->has_version = number == 1;
	else
		r->step.number = number;
	return number > 0 && number <= largest_number;
}

static bool take_work(step_reader *r, const std::string &value)
{
	for (const kind_row &row : kinds)
		if (value == row.word) {
			r->step.kind = row.kind;
			return r->has_work = true;
		}
	return false;
}

static bool take_state(step_reader *r, const std::string &value)
{
	for (const state_row &row : states)
		if (value == row.word) {
			r->step.state = row.state;
			return r->has_state = true;
		}
	return false;
}

static bool take_of_thing(kept_thing *thing, std::string_view key, const std::string &value)
{
	if (key == "what")
		thing->program = value == "program";
	else if (key == "name")
		thing->name = value;
	else if (key == "file")
		thing->file = value;
	else if (key == "bytes")
		thing->bytes = value;
	const bool is_file = key == "file" || key == "bytes";
	return !is_file || is_plain_name(value);
}

static bool take_of_step(step_reader *r, std::string_view key, const std::string &value)
{
	struct text_row {
		std::string_view key;
		std::string history_step::*text;
	};
	static constexpr text_row texts[] = {
		{ "time", &history_step::time },
		{ "sampler", &history_step::sampler },
		{ "model", &history_step::model },
		{ "name", &history_step::name },
		{ "new name", &history_step::new_name },
		{ "no way back", &history_step::cannot },
	};
	for (const text_row &row : texts)
		if (key == row.key)
			r->step.*row.text = value;
	if (key == "came")
		r->step.came.push_back(value);
	if (key == "work")
		return take_work(r, value);
	return key != "state" || take_state(r, value);
}

// "" or why the line cannot be taken.
static std::string take_line(step_reader *r, std::string_view line)
{
	r->ended = r->ended || line == "# the end";
	if (line.empty() || line.front() == '#')
		return "";
	std::vector<kept_thing> &there = r->step.there;
	if (line.front() == '[') {
		there.emplace_back();
		const bool next = line == format_text("[there %zu]", there.size());
		return next && there.size() <= most_things ? ""
							   : tr("A section is not the next one.");
	}
	const std::size_t sign = line.find('=');
	const std::string_view key = trimmed(line.substr(0, std::min(sign, line.size())));
	if (sign == line.npos)
		return tr("A line is no section and has no value.");
	const std::string_view value = trimmed(line.substr(sign + 1));
	if (there.empty() && (key == "version" || key == "number"))
		return take_number(r, key, value)
			       ? ""
			       : format_text(tr("%s is no number."), std::string(key).c_str());
	std::string text;
	if (!unquoted(value, &text))
		return format_text(
			tr("%s is no text in quotation marks."), std::string(key).c_str());
	const bool good = there.empty() ? take_of_step(r, key, text)
					: take_of_thing(&there.back(), key, text);
	return good ? "" : format_text(tr("%s is not what it can be."), std::string(key).c_str());
}

history_step read_step_text(std::string_view text)
{
	step_reader r;
	int line = 0;
	while (!text.empty() && r.step.damage.empty()) {
		const std::size_t end = std::min(text.find('\n'), text.size());
		line++;
		const std::string why = take_line(&r, trimmed(text.substr(0, end)));
		if (!why.empty())
			r.step.damage = format_text(tr("Line %d: %s"), line, why.c_str());
		text.remove_prefix(std::min(end + 1, text.size()));
	}
	const bool whole = r.has_version && r.has_work && r.has_state && r.ended;
	if (r.step.damage.empty() && !whole)
		r.step.damage = tr("It is not whole.");
	return std::move(r.step);
}

// ---- The folder --------------------------------------------------------------------------------------

static std::vector<history_step> steps;
static std::string steps_of; // the folder that they were read from

static std::string base_folder()
{
	return current_config_path + "\\history";
}

std::string folder_of_history()
{
	const std::string name = current_sampler ? current_sampler->sampler_description : "";
	return base_folder() + "\\" + file_name_of(name.empty() ? "sampler" : name);
}

std::string step_folder(const history_step &step)
{
	return folder_of_history() + "\\" + step.folder;
}

static bool find_file(const std::string &path, file_info *info)
{
	return host.files->stat(path.c_str(), info) == 0;
}

static u64 bytes_in(const std::string &folder)
{
	std::vector<std::string> names;
	u64 bytes = 0;
	host.files->list(folder.c_str(), &names);
	for (const std::string &name : names) {
		file_info info = {};
		if (!find_file(folder + "\\" + name, &info))
			continue;
		bytes += info.folder && !info.link ? bytes_in(folder + "\\" + name) : info.size;
	}
	return bytes;
}

static history_step read_step(const std::string &folder)
{
	const std::string path = folder_of_history() + "\\" + folder + "\\" + manifest;
	input_file file;
	file_info info = {};
	history_step step;
	std::string text;
	int code = 0;
	if (!find_file(path, &info)) {
		step.damage = tr("It was broken off before the sampler was changed.");
	} else if (info.size > largest_manifest || !info.regular ||
		   (code = file.measure(path.c_str())) || (code = file.open(path.c_str()))) {
		step.damage = code ? read_failure(path, code) : tr("Its text is too large.");
	} else {
		text.resize(static_cast<std::size_t>(file.size));
		code = file.read(0, text.data(), text.size());
		step = read_step_text(text);
		step.damage = code ? read_failure(path, code) : step.damage;
	}
	step.folder = folder;
	step.bytes = bytes_in(folder_of_history() + "\\" + folder);
	return step;
}

void read_history()
{
	steps.clear();
	steps_of = folder_of_history();
	std::vector<std::string> names;
	host.files->list(steps_of.c_str(), &names);
	std::sort(names.begin(), names.end());
	for (const std::string &name : names) {
		file_info info = {};
		if (find_file(steps_of + "\\" + name, &info) && info.folder && !info.link)
			steps.push_back(read_step(name));
	}
	std::stable_sort(steps.begin(), steps.end(), [](const auto &a, const auto &b) {
		const auto place = [](const history_step &step) {
			return step.damage.empty() ? step.number : 0;
		};
		return place(a) < place(b);
	});
}

const std::vector<history_step> &history_steps()
{
	if (steps_of != folder_of_history())
		read_history();
	return steps;
}

void forget_history()
{
	steps.clear();
	steps_of.clear();
	the_history = {};
	forget_history_answers();
}

static std::string time_text()
{
	const std::time_t seconds = static_cast<std::time_t>(host.clock->time_of_day());
	const std::tm *at = std::localtime(&seconds);
	return at ? format_text("%04d-%02d-%02d %02d:%02d:%02d", at->tm_year + 1900, at->tm_mon + 1,
			    at->tm_mday, at->tm_hour, at->tm_min, at->tm_sec)
		  : "";
}

std::string begin_step(history_step *step)
{
	(void)history_steps();
	step->number = 1;
	for (const history_step &other : steps)
		step->number = std::max(step->number, other.number + 1);
	step->time = time_text();
	step->sampler = current_sampler->sampler_description;
	std::string name = step->time.empty() ? "step" : step->time;
	std::replace(name.begin(), name.end(), ':', '.'); // some disks take none in a name
	for (const std::string &folder : { base_folder(), folder_of_history() })
		(void)host.files->make_folder(folder.c_str()); // shows at the next one
	step->folder = name;
	int code = host.files->make_folder(step_folder(*step).c_str());
	for (int i = 2; code && host.files->exists_already(code) && i <= most_things; i++) {
		step->folder = name + format_text(" (%d)", i);
		code = host.files->make_folder(step_folder(*step).c_str());
	}
	const std::string failed = step_folder(*step);
	if (code)
		step->folder.clear();
	return code ? write_failure(failed, code) : "";
}

std::string write_step(history_step *step)
{
	const std::string text = step_text(*step), path = step_folder(*step) + "\\" + manifest;
	if (const int code = write_whole_file(path, text.data(), text.size()))
		return write_failure(path, code);
	step->bytes = bytes_in(step_folder(*step));
	const auto same = [&](const history_step &other) { return other.folder == step->folder; };
	const auto found = std::find_if(steps.begin(), steps.end(), same);
	if (found == steps.end())
		steps.push_back(*step);
	else
		*found = *step;
	return "";
}

// The manifest goes first: a step that is half gone has kept nothing.
static int remove_folder(const std::string &folder)
{
	std::vector<std::string> names;
	int code = host.files->remove((folder + "\\" + manifest).c_str());
	code = host.files->not_found(code) ? 0 : code;
	host.files->list(folder.c_str(), &names);
	for (const std::string &name : names) {
		const std::string path = folder + "\\" + name;
		file_info info = {};
		if (code || !find_file(path, &info))
			continue;
		code = info.folder && !info.link ? remove_folder(path)
						 : host.files->remove(path.c_str());
	}
	return code ? code : host.files->remove_folder(folder.c_str());
}

outcome remove_steps(std::span<const std::string> folders)
{
	outcome result;
	for (const std::string &folder : folders) {
		const std::string path = folder_of_history() + "\\" + folder;
		if (const int code = remove_folder(path))
			result = { .how = ending::local_failed,
				.words = write_failure(path, code),
				.line = tr("Not everything could be removed from the history.") };
		std::erase_if(steps, [&](const history_step &step) {
			file_info info = {};
			return step.folder == folder && !find_file(path, &info);
		});
	}
	return result;
}

// ---- Settings and size ---------------------------------------------------------------------------------

static std::string setting(const char *key, const char *otherwise)
{
	char value[setting_size];
	return load_key(key, value) == 0 ? value : otherwise;
}

void load_history_settings()
{
	the_history.on = setting("history", "on") != "off";
	the_history.long_samples = setting("history_samples", "") == "all";
	const int limit = number_in(setting("history_limit", "500"));
	the_history.megabytes = limit > 0 ? limit : 500;
}

void save_history_settings()
{
	(void)save_key("history", the_history.on ? "on" : "off");
	(void)save_key("history_samples", the_history.long_samples ? "all" : "ask");
	(void)save_key("history_limit", format_text("%d", the_history.megabytes).c_str());
}

u64 history_bytes()
{
	u64 bytes = 0;
	for (const history_step &step : history_steps())
		bytes += step.bytes;
	return bytes;
}

void trim_history()
{
	const u64 limit = static_cast<u64>(the_history.megabytes) * 1000000;
	u64 bytes = history_bytes();
	std::vector<std::string> oldest;
	for (std::size_t i = 0; i + 1 < steps.size() && bytes > limit; i++) {
		if (steps[i].folder == step_in_work())
			continue;
		oldest.push_back(steps[i].folder);
		bytes -= steps[i].bytes;
	}
	if (!oldest.empty())
		log_line("[I] The history let go of its oldest %d steps\r\n",
			static_cast<int>(oldest.size()));
	const outcome removed = remove_steps(oldest);
	if (!removed.done())
		log_line("[W] %s\r\n", removed.words.c_str());
}

} // namespace velmor
