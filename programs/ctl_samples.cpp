// ctl_samples.cpp - verbs about samples: ls, get, put, rm, mv, import
//
// Names are those of the list; blanks that a model fills them up with may be left out.

#include "programs/ctl.h"
#include "src/controls.h"
#include "src/velmor_fit.h"
#include "src/velmor_programs.h"
#include "src/velmor_window.h"
#include "src/waveqx.h"
#include "src/waveqx_file.h"
#include <algorithm>

namespace velmor
{

// The name as the list has it, or as it was typed.
static std::string listed_name(const std::string &typed)
{
	const std::vector<std::string> names = loaded_names();
	if (std::find(names.begin(), names.end(), typed) != names.end())
		return typed;
	const auto found = std::find_if(names.begin(), names.end(), [&](const std::string &name) {
		return without_end_blanks(name) == without_end_blanks(typed);
	});
	return found == names.end() ? typed : *found;
}

static bool is_listed(const std::string &typed)
{
	const std::vector<std::string> names = loaded_names();
	return std::find(names.begin(), names.end(), listed_name(typed)) != names.end();
}

static outcome not_listed(const std::string &typed)
{
	return { .how = ending::refused, .words = "'" + typed + "' is not on the sampler." };
}

static std::string spool_path(const std::string &name)
{
	return spool_folder() + "\\" + file_name_of(name);
}

static std::string shown_path(const std::string &path)
{
	return host.files->host_path(path.c_str());
}

// ---- Listing ------------------------------------------------------------------------------------

static int list_spool()
{
	load_local_samples(nullptr);
	for (const _local_sample &local : local_sample)
		ctl_print(ctl_object()
				  .text("name", local.displayname)
				  .text("path", shown_path(wave_path_of(local.pathname))),
			local.displayname);
	return exit_done;
}

int ctl_ls(const ctl_call &call)
{
	if (call.has("--local"))
		return list_spool();
	const outcome read = read_sample_list();
	const std::vector<std::string> names = loaded_names();
	for (std::size_t i = 0; i < names.size(); i++) {
		const _sample &sample = current_sampler->status->sample[i];
		ctl_object object;
		object.text("name", names[i]);
		if (sample.sample_rate)
			object.number("rate", static_cast<double>(sample.sample_rate));
		ctl_print(object, names[i]);
	}
	return read.done() && read.told.empty() ? exit_done : ctl_tell("", read);
}

// ---- From the sampler -----------------------------------------------------------------------------

// In the order of item_state.
static const char *const state_names[] = { "waiting", "done", "skipped", "failed", "running" };

// What became of the items from *told on, as far as the work has come.
static void tell_items(const work_queue &queue, std::size_t *told, bool all)
{
	for (; *told < queue.size(); ++*told) {
		const work_item &item = queue[*told];
		const bool ended =
			item.state != item_state::waiting && item.state != item_state::running;
		if (!ended && !all)
			return;
		const std::string path = shown_path(wave_path_of(spool_path(item.name)));
		ctl_object object;
		object.text("name", item.name);
		object.text("ended", state_names[static_cast<int>(item.state)]);
		if (item.state == item_state::done)
			object.text("path", path);
		else if (!item.words.empty())
			object.text("words", item.words);
		ctl_print(object, item.state == item_state::done ? path : "");
	}
}

static int fetch_one(const std::string &name)
{
	if (in_spool(name) && !ask_box("WARNING", "Overwrite existing sample?"))
		return ctl_tell(
			name, { .how = ending::refused, .words = "Skipped download of sample!" });
	const outcome result = download_sample(name);
	const std::string path = shown_path(wave_path_of(spool_path(name)));
	if (!result.done())
		return ctl_tell(name, result);
	ctl_print(ctl_object().text("name", name).text("ended", "done").text("path", path), path);
	ctl_say(result.line);
	return exit_done;
}

// One question for all; a no leaves what is there, and fetches the others.
static void ask_about_existing(work_queue *queue)
{
	const auto there = [](const work_item &item) { return in_spool(item.name); };
	const auto existing = std::count_if(queue->begin(), queue->end(), there);
	if (!existing || ask_box("WARNING", "Overwrite existing samples? (%d of %d)",
				 static_cast<int>(existing), static_cast<int>(queue->size())))
		return;
	for (work_item &item : *queue)
		if (there(item))
			item.state = item_state::skipped;
}

static int fetch_many(const std::vector<std::string> &names)
{
	work_queue queue;
	for (const std::string &name : names)
		queue.push_back({ .name = name });
	ask_about_existing(&queue);
	std::size_t told = 0;
	ctl_hook.glance = [&] { tell_items(queue, &told, false); };
	const outcome result = download_samples(&queue);
	tell_items(queue, &told, true);
	ctl_say(result.words);
	return ctl_status(result);
}

int ctl_get(const ctl_call &call)
{
	if (call.has("--all") == !call.words.empty())
		return ctl_usage("get takes the names of samples, or --all.");
	const outcome offered = offers_download();
	const outcome ready = offered.done() ? have_sample_list() : offered;
	if (!ready.done())
		return ctl_tell("", ready);
	std::vector<std::string> names = loaded_names();
	if (!call.has("--all")) {
		names = call.words;
		for (std::string &name : names) {
			if (!is_listed(name))
				return ctl_tell(name, not_listed(name));
			name = listed_name(name);
		}
	}
	return names.size() == 1 ? fetch_one(names.front()) : fetch_many(names);
}

// ---- To the sampler -----------------------------------------------------------------------------------

static bool file_exists(const std::string &path)
{
	file_info info;
	return host.files->stat(path.c_str(), &info) == 0 && info.regular;
}

// A file of the user, or a sample of the spool: its path without extension, "" for neither.
static std::string path_to_send(const std::string &word)
{
	const std::string path = host.files->system_path(word.c_str());
	if (equal_but_for_case(
		    path.substr(path.size() - std::min<std::size_t>(path.size(), 4)), ".wav") &&
		file_exists(path))
		return path.substr(0, path.size() - 4);
	for (const std::string &stem : { spool_path(word), path })
		if (file_exists(wave_path_of(stem)))
			return stem;
	return "";
}

// What would arrive as silence is converted into the spool first, if the user wants it.
static outcome make_audible(std::string *path)
{
	const _sampler_type *model = loaded_reached().model;
	const upload_verdict check = upload_check(*model, wave_path_of(*path));
	if (check.sends || !check.helps)
		return {}; // the workflow has the words
	if (!ask_box("WARNING", "%s\nConvert it now, and upload what it becomes?",
		    check.words.c_str()))
		return { .how = ending::refused, .line = "Nothing was sent." };
	const std::string file[] = { wave_path_of(*path) };
	const std::string name = path->substr(path->find_last_of('\\') + 1);
	const std::string becomes = spool_folder() + "\\" + name;
	if (becomes != *path && file_exists(wave_path_of(becomes)) &&
		!ask_box("WARNING", "Overwrite existing sample?"))
		return { .how = ending::refused, .line = "Nothing was sent." };
	*path = becomes;
	return import_files(
		file, [&] { return check.conversion; }, window_samples);
}

static outcome put_one(const std::string &word)
{
	std::string path = path_to_send(word);
	if (path.empty())
		return { .how = ending::local_failed,
			.words = "[" + word +
				 "] is no WAV file and no sample of the spool. import brings sound "
				 "files of other kinds there." };
	const outcome audible = make_audible(&path);
	return audible.done() ? upload_sample(path) : audible;
}

int ctl_put(const ctl_call &call)
{
	const outcome offered = offers_upload();
	const outcome ready = offered.done() ? have_sample_list() : offered;
	if (!ready.done())
		return ctl_tell("", ready);
	std::vector<std::string> names;
	for (const std::string &word : call.words)
		if (const std::string path = path_to_send(word); !path.empty())
			names.push_back(path.substr(path.find_last_of('\\') + 1));
	if (!may_send_names(names))
		return ctl_tell("", { .how = ending::refused, .line = "Nothing was sent." });
	return ctl_each(call.words, put_one);
}

// What was done, with its names, instead of a word of success.
static outcome in_one_line(outcome result)
{
	if (result.done() && !result.line.empty())
		result.words.clear();
	return result;
}

// ---- Names ------------------------------------------------------------------------------------------------

// Work on one name, as the sampler's list has it.
static outcome on_sampler(
	const std::string &typed, const std::function<outcome(const std::string &)> &work)
{
	const outcome ready = have_sample_list();
	if (!ready.done())
		return ready;
	return is_listed(typed) ? in_one_line(work(listed_name(typed))) : not_listed(typed);
}

int ctl_rm(const ctl_call &call)
{
	const bool local = call.has("--local");
	return ctl_each(call.words, [&](const std::string &name) {
		return local ? in_one_line(delete_local(name)) : on_sampler(name, delete_sample);
	});
}

int ctl_mv(const ctl_call &call)
{
	const std::string &name = call.words[0], &new_name = call.words[1];
	if (call.has("--local"))
		return ctl_tell(name, in_one_line(rename_local(name, new_name)));
	return ctl_tell(name, on_sampler(name, [&](const std::string &listed) {
		return rename_sample(listed, new_name);
	}));
}

// ---- Import -------------------------------------------------------------------------------------------------

static int mixing_of(const std::string &word)
{
	static constexpr struct {
		const char *word;
		int mixing;
	} rows[] = {
		{ "left", import_left },
		{ "right", import_right },
		{ "average", import_mix },
		{ "both", import_both },
		{ "files", import_split },
	};
	for (const auto &row : rows)
		if (word == row.word)
			return row.mixing;
	return import_left;
}

int ctl_import(const ctl_call &call)
{
	const import_options options = { .bits = call.number("--bits", 0),
		.rate = call.number("--rate", 0),
		.channels = call.number("--channels", 0),
		.mixing = mixing_of(call.value("--mix")) };
	std::vector<std::string> paths;
	for (const std::string &word : call.words)
		paths.push_back(host.files->system_path(word.c_str()));
	// In the name of a window, events run inside a file, and Ctrl-C ends its conversion.
	return ctl_tell("", import_files(
				    paths, [&] { return options; }, window_samples));
}

} // namespace velmor
