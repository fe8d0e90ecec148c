// velmor_samples_loaded.cpp - the sample manager: what is done with samples on the sampler
//
// Knows nothing of: models, toolkits.

#include "src/velmor_samples_page.h"
#include <algorithm>

namespace velmor
{

void show_loaded_information()
{
	const chosen_entry chosen = chosen_loaded();
	if (no_loaded(chosen))
		return;
	const _sample *record = nullptr;
	clear_details();
	const outcome asked = ask_sample(chosen.name, &record);
	if (record)
		display_sample_information(record, "LOADED");
	else if (shown_loaded != loaded_names())
		fill_loaded({ chosen });
	show_outcome(asked);
}

// ---- From the sampler ---------------------------------------------------------------------------

static work_queue queue_of(const chosen_entries &entries)
{
	work_queue queue;
	for (const chosen_entry &entry : entries)
		queue.push_back({ .name = entry.name });
	return queue;
}

// One question for all, since a sampler holds hundreds; who keeps what is there may still want
// the others. False: nothing is wanted.
static bool may_download(work_queue *queue)
{
	const int all = static_cast<int>(queue->size());
	const int existing = static_cast<int>(std::count_if(queue->begin(), queue->end(),
		[](const work_item &item) { return in_spool(item.name); }));
	if (!existing ||
		ask_box("WARNING", tr("Overwrite existing samples? (%d of %d)"), existing, all))
		return true;
	if (existing == all || !ask_box("WARNING", tr("Download the other samples? (%d of %d)"),
				       all - existing, all))
		return false;
	for (work_item &item : *queue)
		if (in_spool(item.name)) {
			item.state = item_state::skipped;
			item.words = tr("kept the one on this computer");
		}
	return true;
}

// Told: a box says how it ended, as it always did for all of them.
static void download_several(work_queue queue, bool told)
{
	if (!may_download(&queue)) {
		show_outcome({ .how = ending::stopped, .line = tr("Nothing was downloaded.") });
		host.ui->focus(window_samples, samples_loaded_list);
		return;
	}
	show_queue({ .items = std::move(queue),
		.run = [](work_queue *items,
			       const queue_view *view) { return download_samples(items, view); },
		.after =
			[](outcome *result, const work_queue &) {
				read_anew(all_chosen_loaded(), all_chosen_local());
				show_outcome(*result);
				host.ui->focus(window_samples, samples_loaded_list);
			},
		.told = told });
}

void download_all_samples()
{
	work_queue queue;
	for (const std::string &name : shown_loaded)
		queue.push_back({ .name = name });
	download_several(std::move(queue), true);
}

void download_selected_sample()
{
	const outcome offered = offers_download();
	if (!offered.done()) {
		show_outcome(offered);
		return;
	}
	const chosen_entries all = all_chosen_loaded(), local = all_chosen_local();
	if (all.size() > 1)
		return download_several(queue_of(all), false);
	const chosen_entry chosen = chosen_loaded();
	if (no_loaded(chosen))
		return;
	if (in_spool(chosen.name) && !ask_box("WARNING", "Overwrite existing sample?")) {
		show_outcome({ .how = ending::stopped, .words = "Skipped download of sample!" });
		return;
	}
	const outcome result = download_sample(chosen.name);
	if (!close_requested())
		read_anew({ chosen }, result.done() ? chosen_entries{ { file_name_of(chosen.name),
							      chosen_local().index } }
						    : local);
	show_outcome(result);
	host.ui->focus(window_samples, samples_loaded_list);
}

void show_change(const outcome &result, const chosen_entries &loaded, const chosen_entries &local)
{
	if (!close_requested()) {
		fill_loaded(loaded);
		fill_local(local);
	}
	if (result.done())
		host.ui->set_text(window_samples, samples_loaded_new_name, "");
	show_outcome(result);
}

// One press for several is easily meant for one, and putting them all back takes long.
static void delete_several_loaded(const chosen_entries &all)
{
	if (!ask_box("WARNING", tr("Delete %d samples from the sampler's memory?"),
		    static_cast<int>(all.size()))) {
		show_outcome({ .how = ending::stopped, .line = tr("Nothing was deleted.") });
		return;
	}
	show_queue({ .items = queue_of(all),
		.run = [](work_queue *items,
			       const queue_view *view) { return delete_samples(items, view); },
		.after =
			[all](outcome *result, const work_queue &) {
				show_change(*result, all, all_chosen_local());
				host.ui->focus(window_samples, samples_loaded_list);
			} });
}

void delete_loaded_sample()
{
	const chosen_entries all = all_chosen_loaded();
	if (all.size() > 1)
		return delete_several_loaded(all);
	const chosen_entry chosen = chosen_loaded();
	if (no_loaded(chosen))
		return;
	const outcome result = delete_sample(chosen.name);
	// The neighbour, not another sample of that name.
	show_change(
		result, { { result.done() ? "" : chosen.name, chosen.index } }, all_chosen_local());
	host.ui->focus(window_samples, samples_loaded_list);
}

void rename_loaded_sample()
{
	const std::string new_name = host.ui->get_text(window_samples, samples_loaded_new_name);
	if (new_name.empty()) {
		show_outcome({ .how = ending::refused, .words = "Choose a new name!" });
		return;
	}
	const chosen_entry chosen = chosen_loaded();
	if (no_loaded(chosen))
		return;
	const outcome result = rename_sample(chosen.name, new_name);
	show_change(
		result, { { result.done() ? "" : chosen.name, chosen.index } }, all_chosen_local());
	host.ui->focus(window_samples, samples_loaded_list);
}

} // namespace velmor
