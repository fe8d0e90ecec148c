// velmor_programs_several.cpp - the buttons of the program manager, on several programs
//
// One queue each, with the window of the queues. Each program is looked for by its name again when
// its turn comes, since those before it may have changed the places.
//
// Knows nothing of: models, toolkits.

#include "src/velmor_library.h"
#include "src/velmor_programs_page.h"
#include "src/waveqx.h"
#include <algorithm>

namespace velmor
{

using entries = std::vector<program_entry>;

static work_queue queue_of(const entries &programs)
{
	work_queue queue;
	for (const program_entry &entry : programs)
		queue.push_back({ .name = entry.name });
	return queue;
}

static void show_several(
	work_queue queue, const queue_work &work, std::function<void(const outcome &)> after)
{
	show_queue({ .items = std::move(queue),
		.run = [work](work_queue *items,
			       const queue_view *view) { return run_queue(items, work, view); },
		.after = [after = std::move(after)](
				 outcome *result, const work_queue &) { after(*result); } });
}

static constexpr const char *one_of_them = own("%d of %d programs done");

// ---- On the sampler -----------------------------------------------------------------------------

// The same programs, or what stands in the place of the first.
static void show_loaded_after(const outcome &result, const entries &before)
{
	const std::vector<std::string> names = loaded_programs();
	program_entry chosen = { "", before.front().index };
	for (const program_entry &entry : before)
		if (chosen.name.empty() &&
			std::find(names.begin(), names.end(), entry.name) != names.end())
			chosen = entry;
	fill_lists(chosen, chosen_on_computer());
	show_spool();
	show_outcome(result);
	host.ui->focus(window_programs, programs_loaded_list);
}

bool download_several_programs()
{
	const entries all = all_chosen_on_sampler();
	if (all.size() < 2)
		return false;
	const queue_work work = {
		.title = own("Downloading"),
		.verdict = own("%d/%d programs downloaded!"),
		.line = own("%d of %d programs were downloaded."),
		.count = one_of_them,
		.not_done = own("Not downloaded: "),
		.not_tried = own("Not asked for: "),
		.kept = own("What is done stays. Nothing half read is kept."),
		.ready = have_program_list,
		.run =
			[](work_item *item) {
				return download_program({ item->name, -1 });
			},
	};
	show_several(queue_of(all), work,
		[all](const outcome &result) { show_loaded_after(result, all); });
	return true;
}

// One press for several is easily meant for one, and putting them all back takes long.
bool delete_several_programs()
{
	const entries all = all_chosen_on_sampler();
	if (all.size() < 2)
		return false;
	if (!ask_box("WARNING", tr("Delete %d programs from the sampler's memory?"),
		    static_cast<int>(all.size()))) {
		show_outcome({ .how = ending::stopped, .line = tr("Nothing was deleted.") });
		return true;
	}
	const queue_work work = {
		.title = own("Deleting"),
		.verdict = own("%d/%d programs deleted!"),
		.line = own("%d of %d programs were deleted."),
		.count = one_of_them,
		.not_done = own("Not deleted: "),
		.not_tried = own("Not touched: "),
		.kept = own("What is deleted stays deleted."),
		.ready = have_program_list,
		.run =
			[](work_item *item) {
				return delete_program({ item->name, -1 });
			},
	};
	show_several(queue_of(all), work,
		[all](const outcome &result) { show_loaded_after(result, all); });
	return true;
}

// ---- On this computer ---------------------------------------------------------------------------

// Where a program of this computer stands now, -1: nowhere.
static int local_place(const std::string &name)
{
	for (int i = 0; i < local_pgms; i++)
		if (without_end_blanks(local_pgm[static_cast<std::size_t>(i)]->name) == name)
			return i;
	return -1;
}

static outcome local_gone(const std::string &name)
{
	return { .how = ending::local_failed,
		.words = format_text(tr("'%s' is not on this computer any more."), name.c_str()) };
}

bool delete_several_local_programs()
{
	const entries all = all_chosen_on_computer();
	if (all.size() < 2)
		return false;
	edit_local_program(nullptr);
	const queue_work work = {
		.title = own("Deleting"),
		.verdict = own("%d/%d programs deleted!"),
		.line = own("%d of %d programs were deleted."),
		.count = one_of_them,
		.not_done = own("Not deleted: "),
		.not_tried = own("Not touched: "),
		.kept = own("The files of what is deleted lie in the folder \"deleted\"."),
		.ready = nullptr,
		.run =
			[](work_item *item) {
				const int place = local_place(item->name);
				return place < 0 ? local_gone(item->name)
						 : delete_local_program(place);
			},
	};
	show_several(queue_of(all), work, [all](const outcome &result) {
		fill_lists(chosen_on_sampler(), { "", all.front().index });
		show_outcome(result);
		host.ui->focus(window_programs, programs_local_list);
	});
	return true;
}

static outcome upload_item(work_item *item)
{
	if (!item->path.empty())
		return upload_sample(item->path);
	const int place = local_place(item->name);
	return place < 0 ? local_gone(item->name)
			 : upload_program(*local_pgm[static_cast<std::size_t>(place)]);
}

// The samples that the programs need come behind them, each once, if they are wanted.
static void add_required(work_queue *queue, const entries &programs)
{
	std::vector<std::string> paths;
	for (const program_entry &entry : programs)
		for (const std::string &path :
			required_files(*local_pgm[static_cast<std::size_t>(entry.index)]))
			if (std::find(paths.begin(), paths.end(), path) == paths.end())
				paths.push_back(path);
	if (!ask_box("INFO", "Also upload required samples (%d Samples)?",
		    static_cast<int>(paths.size())))
		return;
	for (const std::string &path : paths) {
		const std::string base = path.substr(0, path.size() - 4);
		queue->push_back({ .name = base.substr(base.rfind('\\') + 1), .path = base });
	}
}

bool upload_several_local_programs()
{
	const entries all = all_chosen_on_computer();
	if (all.size() < 2)
		return false;
	work_queue queue = queue_of(all);
	add_required(&queue, all);
	const queue_work work = {
		.title = own("Uploading"),
		.verdict = own("%d/%d programs and samples uploaded!"),
		.line = own("%d of %d programs and samples were uploaded."),
		.count = own("%d of %d programs and samples done"),
		.not_done = own("Not uploaded: "),
		.not_tried = own("Not sent: "),
		.kept = own("What has arrived stays. Nothing half sent is kept."),
		.ready = have_program_list,
		.run = upload_item,
	};
	show_several(std::move(queue), work, [](const outcome &result) {
		fill_lists(chosen_on_sampler(), chosen_on_computer());
		show_loaded_samples();
		show_outcome(result);
		host.ui->focus(window_programs, programs_local_list);
	});
	return true;
}

} // namespace velmor
