// velmor_history_page.cpp - the history: what was changed on the loaded sampler, and what was kept
//
// The newest step stands first. A step that cannot be put back, or whose text is damaged, says why
// where its state stands; what lies in its folder stays until it is deleted here or is the oldest of
// a history that has become too large.
//
// Knows nothing of: toolkits, models.

#include "src/velmor_history.h"
#include "src/velmor_programs_page.h"
#include <algorithm>
#include <iterator>

namespace velmor
{

// Of the steps that the list shows, the newest first.
static std::vector<std::string> folders_shown;

// ---- Words -----------------------------------------------------------------------------------------

static std::string size_text(u64 bytes)
{
	const double size = static_cast<double>(bytes);
	return bytes < 1000      ? format_text(tr("%d bytes"), static_cast<int>(bytes))
	       : bytes < 1000000 ? format_text("%.1f kB", size / 1e3)
				 : format_text("%.1f MB", size / 1e6);
}

static std::string kept_text(const history_step &step)
{
	std::string text;
	for (const kept_thing &thing : step.there)
		text += (text.empty() ? "" : ", ") + thing.name;
	return text;
}

static std::string state_text(const history_step &step)
{
	if (!step.damage.empty())
		return format_text(tr("Damaged: %s"), step.damage.c_str());
	if (step.state == step_state::undone)
		return tr("Put back");
	if (step.state == step_state::half)
		return tr("Put back in part; undo goes on with it");
	if (step.state == step_state::put_back)
		return tr("Replaced by an undo");
	return step.cannot.empty() ? tr("Can be put back")
				   : format_text(tr("Cannot be put back: %s"), step.cannot.c_str());
}

static std::vector<std::string> row_of(const history_step &step)
{
	const bool damaged = !step.damage.empty();
	return { damaged ? step.folder : step_words(step), damaged ? "" : step.time,
		kept_text(step), size_text(step.bytes), state_text(step) };
}

// ---- The page ----------------------------------------------------------------------------------------

struct limit_row {
	int megabytes;
	const char *words;
};
static constexpr limit_row limits[] = { { 100, "100 MB" }, { 500, "500 MB" }, { 1000, "1 GB" },
	{ 5000, "5 GB" }, { 20000, "20 GB" } };

static void show_settings()
{
	std::vector<std::string> words;
	int chosen = -1;
	for (const limit_row &row : limits) {
		if (chosen < 0 && row.megabytes >= the_history.megabytes)
			chosen = static_cast<int>(words.size());
		words.emplace_back(row.words);
	}
	host.ui->set_list(window_history, history_limit, words);
	host.ui->select(window_history, history_limit,
		chosen < 0 ? static_cast<int>(std::size(limits)) - 1 : chosen);
	host.ui->set_checked(window_history, history_on, the_history.on);
	host.ui->set_checked(window_history, history_samples, the_history.long_samples);
	host.ui->set_reason(window_history, history_samples,
		the_history.on ? nullptr : tr("Nothing is kept at all"));
}

static const history_step *step_in(const std::string &folder)
{
	for (const history_step &step : history_steps())
		if (step.folder == folder)
			return &step;
	return nullptr;
}

static std::vector<std::string> chosen_folders()
{
	std::vector<std::string> folders;
	std::vector<int> places = { host.ui->selection(window_history, history_list) };
	if (host.ui->selections)
		places = host.ui->selections(window_history, history_list);
	for (const int place : places)
		if (place >= 0 && static_cast<std::size_t>(place) < folders_shown.size())
			folders.push_back(folders_shown[static_cast<std::size_t>(place)]);
	return folders;
}

static void show_reasons()
{
	const std::vector<std::string> chosen = chosen_folders();
	const history_step *step = chosen.size() == 1 ? step_in(chosen.front()) : nullptr;
	const char *why = chosen.empty()          ? tr("Choose a step first")
			  : chosen.size() > 1     ? tr("One step at a time")
			  : !step                 ? tr("It is not there any more")
			  : !step->damage.empty() ? tr("Its text cannot be used")
						  : nullptr;
	host.ui->set_reason(window_history, history_restore, why);
	host.ui->set_reason(window_history, history_delete,
		chosen.empty() ? tr("Choose a step first") : nullptr);
}

static std::string heading()
{
	const std::size_t count = folders_shown.size();
	if (!current_sampler)
		return tr("no sampler loaded");
	return format_text(count == 1 ? tr("%zu step · %s") : tr("%zu steps · %s"), count,
		size_text(history_bytes()).c_str());
}

static void fill_history()
{
	std::vector<std::vector<std::string>> rows;
	folders_shown.clear();
	if (current_sampler)
		for (auto step = history_steps().rbegin(); step != history_steps().rend(); ++step) {
			rows.push_back(row_of(*step));
			folders_shown.push_back(step->folder);
		}
	host.ui->set_rows(window_history, history_list, rows);
	host.ui->set_text(window_history, history_size, heading().c_str());
	host.ui->set_text(window_history, history_folder,
		current_sampler ? host.files->host_path(folder_of_history().c_str()).c_str() : "");
	if (!rows.empty())
		host.ui->select(window_history, history_list, 0);
	show_reasons();
}

void update_history_page()
{
	if (!was_opened(window_history))
		return;
	std::vector<std::string> folders;
	if (current_sampler)
		for (auto step = history_steps().rbegin(); step != history_steps().rend(); ++step)
			folders.push_back(step->folder);
	if (folders != folders_shown)
		fill_history();
}

static void read_again()
{
	if (current_sampler)
		read_history();
	fill_history();
}

void show_history()
{
	open_window(window_history);
	show_settings();
	read_again();
}

// ---- Commands --------------------------------------------------------------------------------------------

// The sampler's lists were read anew.
static void show_what_it_holds()
{
	if (close_requested())
		return;
	show_loaded_samples();
	if (was_opened(window_programs))
		fill_lists(chosen_on_sampler(), chosen_on_computer());
	if (was_opened(window_history))
		fill_history();
}

void undo_last_on_sampler()
{
	const outcome result = undo_on_sampler();
	show_what_it_holds();
	show_outcome(result);
}

static void put_chosen_back()
{
	const std::vector<std::string> chosen = chosen_folders();
	const history_step *step = chosen.size() == 1 ? step_in(chosen.front()) : nullptr;
	if (!step)
		return;
	const outcome result = put_step_back(*step);
	show_what_it_holds();
	show_outcome(result);
}

static void delete_chosen()
{
	const std::vector<std::string> chosen = chosen_folders();
	const int count = static_cast<int>(chosen.size());
	if (chosen.empty() ||
		!ask_box("WARNING",
			count == 1 ? tr("Delete %d step from the history? What was kept in it is "
					"gone then.")
				   : tr("Delete %d steps from the history? What was kept in them "
					"is gone then."),
			count))
		return;
	outcome result = remove_steps(chosen);
	if (result.done())
		result.line = format_text(count == 1 ? tr("Deleted %d step from the history.")
						     : tr("Deleted %d steps from the history."),
			count);
	fill_history();
	show_outcome(result);
}

static void take_settings()
{
	const int limit = host.ui->selection(window_history, history_limit);
	if (limit >= 0 && limit < static_cast<int>(std::size(limits)))
		the_history.megabytes = limits[limit].megabytes;
	the_history.on = host.ui->checked(window_history, history_on);
	the_history.long_samples = host.ui->checked(window_history, history_samples);
	save_history_settings();
	show_settings();
}

static void change_limit()
{
	take_settings();
	if (current_sampler)
		trim_history();
	fill_history();
}

// ---- Rows ---------------------------------------------------------------------------------------------------

// clang-format off
static constexpr caption_row history_captions[] = {
	// window         control          caption, tooltip, empty
	{ window_history, 0,               own("VELMOR History"), nullptr, nullptr },
	{ window_history, history_list,    own("Changed on the sampler"), own("What was changed, the newest first"), own("Nothing was changed on this sampler yet, or nothing was kept.") },
	{ window_history, history_size,    own("Size"), own("How many steps there are, and how large they are together"), nullptr },
	{ window_history, history_folder,  own("Folder"), own("Where the steps of this sampler lie"), nullptr },
	{ window_history, history_restore, own("&Put back"), own("Make the sampler hold again what it held before this step; what it holds now is kept first"), nullptr },
	{ window_history, history_delete,  own("&Delete from the history"), own("Let go of what was kept in these steps"), nullptr },
	{ window_history, history_refresh, "&Refresh", own("Read the folder anew"), nullptr },
	{ window_history, history_on,      own("Keep what is on the sampler before it is changed"), own("Programs always; samples where that is a matter of seconds, or after a question"), nullptr },
	{ window_history, history_samples, own("Keep samples without asking, however long it takes"), own("Otherwise you are asked once where a sample takes more than five seconds"), nullptr },
	{ window_history, history_limit,   own("At most, for each sampler"), own("Beyond it, the oldest steps are let go"), nullptr },
	{ window_history, control_cancel,  own("&Close"), own("Close this window"), nullptr },
};
static constexpr command_row history_commands[] = {
	{ window_history, history_restore, put_chosen_back,             alone  },
	{ window_history, history_delete,  delete_chosen,               alone  },
	{ window_history, history_refresh, read_again,                  alone  },
	{ window_history, control_cancel,  hide_window<window_history>, always },
};
static constexpr command_row history_choices[] = {
	{ window_history, history_list,    show_reasons,  alone },
	{ window_history, history_on,      take_settings, alone },
	{ window_history, history_samples, take_settings, alone },
	{ window_history, history_limit,   change_limit,  alone },
};
// clang-format on

constinit const window_rows history_rows = { history_captions, history_commands, history_choices };

} // namespace velmor
