// velmor_backup_page.cpp - the window of backups: a folder, what is in it, and what would be done
//
// The folder that is offered is the one last chosen where it holds a backup of the loaded sampler,
// or else the one named after it beside the configurations.
//
// Knows nothing of: models, toolkits.

#include "src/velmor_backup.h"
#include "src/velmor_verify.h"
#include "src/velmor_window.h"
#include <cstring>
#include <map>

namespace velmor
{

static std::string folder; // as the window shows it
static constexpr const char *folder_key = "backup_folder";

static std::string shown_path(const std::string &path)
{
	return host.files->host_path(path.c_str());
}

static std::string default_folder()
{
	return current_config_path + "\\backup\\" +
	       file_name_of(current_sampler->sampler_description);
}

static std::string folder_to_offer()
{
	char value[setting_size];
	backup_manifest manifest;
	if (load_key(folder_key, value) == 0 && *value) {
		const std::string kept = host.files->system_path(value);
		if (read_manifest(kept, &manifest).done() &&
			manifest.sampler == current_sampler->sampler_description)
			return kept;
	}
	return default_folder();
}

// ---- What is shown ------------------------------------------------------------------------------

static std::string size_text(u64 bytes)
{
	if (bytes < 1000)
		return format_text(tr("%d bytes"), static_cast<int>(bytes));
	const double thousands = static_cast<double>(bytes) / 1000;
	return thousands < 1000 ? format_text("%.0f kB", thousands)
				: format_text("%.1f MB", thousands / 1000);
}

static void show_rows(const std::vector<std::vector<std::string>> &rows)
{
	host.ui->set_rows(window_backup, backup_list, rows);
}

static std::string facts_text(const backup_manifest &m)
{
	int counts[3] = {};
	u64 bytes = 0;
	for (const backup_entry &e : m.entries) {
		counts[static_cast<int>(e.kind)]++;
		bytes += e.size;
	}
	return format_text(tr("Backup of '%s', an %s: programs %d, samples %d, names of multis %d, "
			      "%s. %s"),
		m.sampler.c_str(), m.model.c_str(), counts[0], counts[1], counts[2],
		size_text(bytes).c_str(),
		m.complete ? tr("Complete.") : tr("It broke off: Begin goes on from there."));
}

static const char *state_words(item_state state)
{
	static constexpr const char *words[] = { own("not tried"), own("done"), own("as before"),
		own("failed") };
	return tr(words[static_cast<std::size_t>(state)]);
}

// What the folder holds, and of each thing what became of it, where that is known.
static void show_folder(const work_queue &items = {})
{
	std::map<std::string, std::string> told;
	for (const work_item &item : items)
		told[item.name] = item.words.empty() ? state_words(item.state) : item.words;
	backup_manifest m;
	const outcome read = read_manifest(folder, &m);
	std::vector<std::vector<std::string>> rows;
	for (const backup_entry &e : m.entries)
		rows.push_back(
			{ e.name, tr(kind_name(e.kind)), e.file.empty() ? "" : size_text(e.size),
				told[std::string(kind_name(e.kind)) + " " + e.name] });
	host.ui->set_text(window_backup, backup_folder, shown_path(folder).c_str());
	host.ui->set_text(window_backup, backup_facts,
		read.done() ? facts_text(m).c_str() : read.words.c_str());
	host.ui->set_role(window_backup, backup_facts,
		!read.done() ? (read.how == ending::refused ? text_role::quiet : text_role::failed)
		: m.complete ? text_role::good
			     : text_role::careful);
	host.ui->set_reason(window_backup, backup_restore,
		read.done() ? nullptr
			    : tr("There is no backup in this folder that could be restored"));
	show_rows(rows);
}

static void show_plan(const restore_plan &plan)
{
	static constexpr const char *steps[] = { own("keep"), own("send"), own("replace"),
		own("delete on the sampler"), own("leave out") };
	std::vector<std::vector<std::string>> rows;
	for (const restore_item &item : plan.items)
		rows.push_back({ item.name, tr(kind_name(item.kind)),
			item.entry.size ? size_text(item.entry.size) : "",
			std::string(tr(steps[static_cast<std::size_t>(item.step)])) +
				(item.words.empty() ? "" : ": " + item.words) });
	host.ui->set_text(window_backup, backup_facts, plan_words(plan).c_str());
	host.ui->set_role(window_backup, backup_facts, text_role::plain);
	show_rows(rows);
}

// ---- Commands -----------------------------------------------------------------------------------

static void show_backup_window()
{
	open_window(window_backup);
	const char *why = current_sampler ? nullptr : tr("Load a sampler first");
	for (const int control : { backup_begin, backup_choose, backup_restore })
		host.ui->set_reason(window_backup, control, why);
	show_comparison_choice();
	if (!current_sampler)
		return show_outcome(
			{ .how = ending::refused, .words = "You must load a sampler first..." });
	folder = folder_to_offer();
	show_folder();
}

static void choose_folder()
{
	const std::string chosen = host.ui->choose_folder(tr("Folder of the backup"));
	if (chosen.empty())
		return;
	folder = chosen;
	if (shown_path(folder).size() < setting_size)
		(void)save_key(folder_key, shown_path(folder).c_str());
	show_folder();
}

// The lists of the sampler were read for this window: those that are open show older ones.
static void tell_other_windows()
{
	show_loaded_samples();
	the_lists.programs.failures = the_line.failures - 1;
	update_status();
}

// A sampler may have been loaded, or gone, since the window was opened.
static bool is_ready()
{
	if (current_sampler && !folder.empty())
		return may_lose_edits(false);
	show_backup_window();
	return false;
}

static void begin_backup()
{
	if (!is_ready())
		return;
	(void)host.files->make_folder((current_config_path + "\\backup").c_str());
	work_queue items;
	const backup_wish wish = { .everything =
					   host.ui->checked(window_backup, backup_everything) };
	const outcome result = backup_sampler(folder, wish, &items);
	show_folder(items);
	tell_other_windows();
	show_outcome(result);
}

static void restore_backup()
{
	if (!is_ready())
		return;
	const restore_wish wish = {
		.everything = host.ui->checked(window_backup, backup_everything),
		.remove_others = host.ui->checked(window_backup, backup_remove),
	};
	restore_plan plan;
	const outcome planned = plan_restore(folder, wish, &plan);
	tell_other_windows();
	if (!planned.done())
		return show_outcome(planned);
	show_plan(plan);
	const bool moves = plan.count(restore_step::send) || plan.count(restore_step::replace) ||
			   plan.count(restore_step::remove);
	if (!moves)
		return show_outcome({ .words = plan_words(plan),
			.line = tr("Nothing had to be brought to the sampler.") });
	if (!ask_box("INFO", "%s", (plan_words(plan) + "\n" + tr("Do it?")).c_str()))
		return show_outcome(
			{ .how = ending::stopped, .line = tr("The sampler was left as it is.") });
	work_queue items;
	const outcome result = carry_out(plan, &items);
	show_folder(items);
	tell_other_windows();
	show_outcome(result);
}

// A plan is of the boxes as they were.
static void show_again()
{
	if (current_sampler && !folder.empty())
		show_folder();
}

// ---- Rows -----------------------------------------------------------------------------------------

// clang-format off
static constexpr caption_row backup_captions[] = {
	// window        control            caption, tooltip, empty
	{ window_main,   menu_backup,       own("Backup..."), own("Bring all that the sampler holds into a folder, and back"), nullptr },
	{ window_backup, 0,                 own("VELMOR Backup"), nullptr, nullptr },
	{ window_backup, backup_folder,     own("Folder:"), own("Where the backup is; a folder for each sampler"), nullptr },
	{ window_backup, backup_choose,     own("Choose..."), own("Another folder"), nullptr },
	{ window_backup, backup_list,       own("In the backup"), own("What the folder holds, or what a restore would do"), own("Nothing yet. Begin brings all that the sampler holds into the folder.") },
	{ window_backup, backup_facts,      own("State of the backup"), nullptr, nullptr },
	{ window_backup, backup_everything, own("Move everything again"), own("Also what looks as it did before. Of samples on the USB the sampler lists the names alone"), nullptr },
	{ window_backup, backup_remove,     own("A restore deletes what the backup does not hold"), own("Otherwise nothing is deleted on the sampler"), nullptr },
	{ window_backup, backup_verify,     own("Compare each sample after its transfer"), own("It is read back, which takes as long again"), nullptr },
	{ window_backup, backup_begin,      own("Begin"), own("Bring into the folder what changed since the last backup"), nullptr },
	{ window_backup, backup_restore,    own("Restore..."), own("Show what would be sent to the sampler, and ask"), nullptr },
	{ window_backup, control_cancel,    "&Cancel", own("Close this window"), nullptr },
};
static constexpr command_row backup_commands[] = {
	{ window_main,   menu_backup,       show_backup_window,         alone  },
	{ window_backup, backup_choose,     choose_folder,              alone  },
	{ window_backup, backup_begin,      begin_backup,               alone  },
	{ window_backup, backup_restore,    restore_backup,             alone  },
	{ window_backup, control_cancel,    hide_window<window_backup>, always },
};
static constexpr command_row backup_selections[] = {
	{ window_backup, backup_everything, show_again,                 alone  },
	{ window_backup, backup_remove,     show_again,                 alone  },
};
// clang-format on

constinit const window_rows backup_rows = { backup_captions, backup_commands, backup_selections };

} // namespace velmor
