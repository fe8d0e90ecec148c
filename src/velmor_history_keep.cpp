// velmor_history_keep.cpp - what is on the sampler is kept before it is changed
//
// Programs are read anew, since the loaded ones may hold edits. Samples come by the download of
// the model, into the step's folder in place of the spool. Where that takes long the user is asked
// once, and the answer holds as long as the program runs.
//
// Whoever presses Stop while something is kept wants the whole to end: nothing is changed then.
//
// Knows nothing of: windows, models but through their rows.

#include "src/velmor_history.h"
#include "src/velmor_library.h"
#include "src/velmor_programs.h"
#include "src/waveqx_file.h"
#include <algorithm>
#include <cmath>
#include <set>

namespace velmor
{

// Seconds that nobody is asked about.
static constexpr double short_time = 5;

enum class answer {
	none,
	keep,
	go_without,
};
static answer about_long_samples = answer::none;
static std::set<std::string> limits_told;
static int undos_running;
static std::string folder_in_work;

void forget_history_answers()
{
	about_long_samples = answer::none;
	limits_told.clear();
}

putting_back::putting_back(const std::string &folder)
{
	undos_running++;
	folder_in_work = folder;
}

putting_back::~putting_back()
{
	undos_running--;
	folder_in_work.clear();
}

const std::string &step_in_work()
{
	return folder_in_work;
}

static std::string quoted(const std::string &name)
{
	return "'" + name + "'";
}

// ---- What there is ---------------------------------------------------------------------------------

std::vector<std::string> machine_change::listed() const
{
	return about_programs() ? loaded_programs() : loaded_names();
}

static int place_of(const std::vector<std::string> &names, const std::string &name, int near)
{
	const auto at = static_cast<std::size_t>(near);
	if (near >= 0 && at < names.size() && names[at] == name)
		return near;
	const auto found = std::find(names.begin(), names.end(), name);
	return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

static int place_but_for_case(const std::vector<std::string> &names, const std::string &name)
{
	const auto found = std::find_if(names.begin(), names.end(),
		[&](const std::string &other) { return equal_but_for_case(other, name); });
	return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

// False where there is nothing that the work could change: it says so itself.
bool machine_change::find_what_is_there(const planned_work &work)
{
	int place = step.kind == step_kind::upload_sample ? family->replaced(work.name)
							  : place_of(before, work.name, work.place);
	const bool sends = step.kind == step_kind::change_program;
	if (place < 0 && sends)
		place = place_but_for_case(before, work.name);
	if (place >= 0)
		places.push_back(place);
	const bool next = place >= 0 && static_cast<std::size_t>(place) + 1 < before.size();
	if (step.kind == step_kind::rename_program && family->endangers_next && next)
		places.push_back(place + 1);
	return place >= 0 || sends || step.kind == step_kind::upload_sample;
}

static bool offered(const _sampler_type &model, step_kind kind)
{
	switch (kind) {
	case step_kind::rename_sample:
	case step_kind::delete_sample:
		return model.renamesample;
	case step_kind::upload_sample:
		return model.uploadsample;
	case step_kind::rename_program:
		return model.renameprogram;
	case step_kind::delete_program:
		return model.deleteprogram;
	case step_kind::change_program:
		return model.saveprogram;
	}
	return false;
}

// ---- What undo cannot do ---------------------------------------------------------------------------

struct limit_of_undo {
	std::string words;
	bool no_way = true; // otherwise it comes back but for something
	bool loses = false; // what is on the sampler now
};

static limit_of_undo find_limit(const _sampler_type &model, const kept_family &family,
	const history_step &step, const std::vector<std::string> &before, bool replaces)
{
	const auto many = [&](const std::string &name) {
		return std::count(before.begin(), before.end(), name);
	};
	const bool renames =
		step.kind == step_kind::rename_sample || step.kind == step_kind::rename_program;
	const bool deletes =
		step.kind == step_kind::delete_sample || step.kind == step_kind::delete_program;
	if (many(step.name) > 1)
		return { .words = format_text(
				 tr("The list has %s more than once, and undo could not "
				    "tell which of them it was."),
				 quoted(step.name).c_str()),
			.loses = deletes };
	if (renames && step.new_name != step.name && many(step.new_name))
		return { .words = format_text(
				 tr("The list has %s already, and undo could not tell the "
				    "two apart."),
				 quoted(step.new_name).c_str()) };
	if (step.kind == step_kind::delete_program && !family.creates_programs)
		return { .words = format_text(
				 tr("An %s takes no program that it does not hold, so undo "
				    "cannot bring %s back. Its parameters are kept as a "
				    "text."),
				 model.sampler_brand, quoted(step.name).c_str()),
			.loses = true };
	if (step.kind == step_kind::delete_program && family.new_programs)
		return { .words = format_text(
				 tr("A program that is deleted: %s"), tr(family.new_programs)),
			.no_way = false };
	if (step.kind == step_kind::upload_sample && !replaces && !model.renamesample)
		return { .words = format_text(
				 tr("An %s takes no request that deletes a sample, so undo "
				    "cannot take a new one off it."),
				 model.sampler_brand) };
	if (step.kind == step_kind::change_program && !replaces && !model.deleteprogram)
		return { .words = format_text(
				 tr("An %s takes no request that deletes a program, so undo "
				    "cannot take a new one off it."),
				 model.sampler_brand) };
	return {};
}

// What is lost is asked about each time, the rest once.
static bool may_go_on_with(const limit_of_undo &limit)
{
	if (limit.words.empty() || (!limit.loses && limits_told.contains(limit.words)))
		return true;
	if (!ask_box("WARNING", tr("%s\nGo on all the same?"), limit.words.c_str()))
		return false;
	limits_told.insert(limit.words);
	return true;
}

bool machine_change::tell_limits(const planned_work &work)
{
	const int sent = work.keygroups < 0 && !places.empty()
				 ? current_sampler->status->program[places[0]].keygroups
				 : work.keygroups;
	limit_of_undo limit = find_limit(*model, *family, step, before, !places.empty());
	const bool grows =
		step.kind == step_kind::change_program && !places.empty() && sent > most_held;
	if (grows && limit.words.empty() && !family->creates_programs)
		limit = { .words = format_text(
				  tr("An %s takes no request that deletes a keygroup, so undo "
				     "cannot take the new ones off it."),
				  model->sampler_brand),
			.no_way = false };
	if (limit.no_way)
		step.cannot = limit.words;
	return undos_running || may_go_on_with(limit);
}

// ---- Keeping -----------------------------------------------------------------------------------------

// Downloads go to the folder "sample" of this one while it lives.
class downloads_elsewhere
{
public:
	explicit downloads_elsewhere(const std::string &folder) : before(current_config_path)
	{
		current_config_path = folder;
	}
	~downloads_elsewhere() { current_config_path = before; }
	downloads_elsewhere(const downloads_elsewhere &) = delete;

private:
	const std::string before;
};

// A line each.
static std::string write_blocks(const std::string &path, const raw_blocks &blocks)
{
	std::string text;
	for (const std::vector<u8> &block : blocks)
		text += hex_text(block) + "\n";
	const int code = write_whole_file(path, text.data(), text.size());
	return code ? write_failure(path, code) : "";
}

static std::string file_of(std::size_t number, const char *extension)
{
	return format_text("%zu%s", number, extension);
}

// Why what was asked for did not come.
static std::string reason_of(box_keeper *keeper)
{
	const std::vector<kept_box> told = troubles(keeper->take());
	if (progress_stopped())
		return tr("It was stopped.");
	return told.empty() ? tr("The sampler did not send all of it.") : told.back().text;
}

std::string machine_change::keep_program(int place, kept_thing *thing)
{
	const auto program = std::make_unique<_program>();
	raw_blocks blocks;
	box_keeper keeper;
	const bool came = family->read_program(place, program.get(), &blocks);
	const std::string why = came ? "" : reason_of(&keeper);
	(void)keeper.take();
	if (!came)
		return why;
	program->sampler_type = model->sampler_type;
	most_held = std::max(most_held, program->keygroups);
	const std::size_t number = step.there.size() + 1;
	thing->file = file_of(number, ".program");
	const std::string text = program_text(*program), folder = step_folder(step) + "\\",
			  path = folder + thing->file;
	if (const int code = write_whole_file(path, text.data(), text.size()))
		return write_failure(path, code);
	if (blocks.empty())
		return "";
	thing->bytes = file_of(number, ".blocks");
	return write_blocks(folder + thing->bytes, blocks);
}

std::string machine_change::keep_sample(int place, kept_thing *thing)
{
	const std::string folder = step_folder(step);
	thing->file = file_name_of(thing->name) + ".wav";
	const std::string path = folder + "\\sample\\" + thing->file;
	raw_blocks header;
	box_keeper keeper;
	if (family->reachable && !family->reachable())
		return silence_words(loaded_reached());
	bool came = !family->read_header || family->read_header(place, &header);
	(void)host.files->make_folder((folder + "\\sample").c_str()); // shows at the download
	if (came) {
		const downloads_elsewhere here(folder);
		model->downloadsample(control_channel(), exclusive_channel(), thing->name.c_str());
	}
	file_info info = {};
	came = came && !progress_stopped() && host.files->stat(path.c_str(), &info) == 0;
	const std::string why = came ? "" : reason_of(&keeper);
	(void)keeper.take();
	if (!came || header.empty())
		return why;
	thing->bytes = file_of(step.there.size() + 1, ".header");
	return write_blocks(folder + "\\" + thing->bytes, header);
}

// "" or why not everything is kept.
std::string machine_change::keep_all()
{
	forget_stop(); // of earlier work
	std::string why = begin_step(&step);
	const bool only_a_name = step.kind == step_kind::rename_sample;
	for (std::size_t i = 0; i < places.size() && !only_a_name && why.empty(); i++) {
		const int place = places[i];
		kept_thing thing;
		thing.program = about_programs();
		thing.name = before[static_cast<std::size_t>(place)];
		log_line("[I] Keeping [%s] before it is changed\r\n", thing.name.c_str());
		why = thing.program ? keep_program(place, &thing) : keep_sample(place, &thing);
		if (why.empty())
			step.there.push_back(thing);
	}
	if (why.empty() && progress_stopped())
		why = tr("It was stopped.");
	return why.empty() ? write_step(&step) : why;
}

static std::string about_seconds(double seconds)
{
	const int whole = static_cast<int>(std::ceil(seconds));
	return whole < 120 ? format_text(tr("about %d s"), whole)
			   : format_text(tr("about %d min"), (whole + 59) / 60);
}

// False: the user wants to go on without a copy, or, with a refusal, not at all.
bool machine_change::may_keep_samples()
{
	double seconds = 0;
	for (const int place : places)
		seconds +=
			family->seconds_per_word *
			static_cast<double>(current_sampler->status->sample[place].sample_length);
	if (step.kind == step_kind::rename_sample || about_programs() || seconds <= short_time ||
		the_history.long_samples || about_long_samples == answer::keep)
		return true;
	if (about_long_samples == answer::go_without)
		return false;
	const std::string name = quoted(before[static_cast<std::size_t>(places.front())]);
	if (ask_box("INFO",
		    tr("%s goes from the sampler. Keep a copy first? %s\n"
		       "The answer holds until VELMOR is closed."),
		    name.c_str(), about_seconds(seconds).c_str())) {
		about_long_samples = answer::keep;
		return true;
	}
	if (ask_box("WARNING", tr("Go on without a copy? %s cannot be put back then."),
		    name.c_str()))
		about_long_samples = answer::go_without;
	else
		stop();
	return false;
}

// ---- One piece of work -----------------------------------------------------------------------------------

void machine_change::stop()
{
	refusal = { .how = ending::stopped,
		.line = format_text(
			tr("%s was left as it is on the sampler."), quoted(step.name).c_str()) };
}

void machine_change::drop()
{
	active = false;
	if (!step.folder.empty())
		(void)remove_steps({ &step.folder, 1 });
}

bool machine_change::goes_without(const std::string &why)
{
	log_line("[W] [%s] was not kept: %s\r\n", step.name.c_str(), why.c_str());
	return ask_box("WARNING",
		tr("What the sampler holds could not be kept first: %s\n"
		   "Go on without a copy? It cannot be put back then."),
		why.c_str());
}

machine_change::machine_change(const planned_work &work)
{
	outcome none;
	model = the_history.on ? loaded_model(&none) : nullptr;
	family = model ? kept_family_of(*model) : nullptr;
	if (!family || !offered(*model, work.kind))
		return; // the work has the words
	step.kind = work.kind;
	step.name = work.name;
	step.new_name = work.new_name;
	step.model = model->sampler_brand;
	refusal = about_programs() ? have_program_list() : have_sample_list();
	if (!refusal.done())
		return;
	before = listed();
	if (!find_what_is_there(work) || !may_keep_samples())
		return;
	active = true;
	const std::string why = keep_all();
	if (!why.empty()) {
		drop();
		if (progress_stopped() || !goes_without(why))
			stop();
	} else if (!tell_limits(work)) {
		drop();
		stop();
	} else if (!step.cannot.empty()) {
		(void)write_step(&step); // with the limit in it, or without
	}
}

// Names of one list that another does not have, as often as it does not.
static std::vector<std::string> names_beyond(
	std::vector<std::string> names, const std::vector<std::string> &others)
{
	for (const std::string &other : others) {
		const auto found = std::find(names.begin(), names.end(), other);
		if (found != names.end())
			names.erase(found);
	}
	return names;
}

outcome machine_change::ended(outcome result)
{
	if (!active)
		return result;
	const std::vector<std::string> now = listed();
	const known_list &list = about_programs() ? the_lists.programs : the_lists.samples;
	const bool known = list.state() == freshness::read;
	step.came = known ? names_beyond(now, before) : std::vector<std::string>{};
	const bool same = known && step.came.empty() && names_beyond(before, now).empty();
	const bool goes_over =
		!step.there.empty() &&
		(step.kind == step_kind::upload_sample || step.kind == step_kind::change_program);
	if (same && !(goes_over && (result.done() || result.how != ending::refused))) {
		drop();
		return result;
	}
	if (result.done() || known)
		step.state = step_state::done;
	if (undos_running)
		step.state = step_state::put_back;
	const std::string why = write_step(&step);
	if (!why.empty())
		log_line("[W] The history could not be written: %s\r\n", why.c_str());
	trim_history();
	return result;
}

} // namespace velmor
