// velmor_samples_local.cpp - the sample manager: what is done with samples of this computer
//
// Knows nothing of: models, toolkits.

#include "src/velmor_fit.h"
#include "src/velmor_samples_page.h"
#include "src/waveqx.h"

namespace velmor
{

void show_local_information()
{
	const chosen_entry chosen = chosen_local();
	if (no_local(chosen))
		return;
	_sample sample = {};
	const std::string path = local_sample[static_cast<std::size_t>(chosen.index)].pathname;
	if (create_sample_from_file(path.c_str(), &sample)) {
		display_sample_information(&sample, "LOCAL");
	} else {
		clear_details();
		show_box("INFO", "Sample corrupted...cannot read information!");
	}
	free_sample_data(&sample);
}

// ---- To the sampler, and the files of the spool -----------------------------------------------

// What would arrive as silence is converted first, if the user wants it. False: nothing is sent,
// and the user has read why.
static bool make_audible(const std::string &path)
{
	const upload_verdict check = upload_check(
		*get_sampler(static_cast<i32>(current_sampler->sampler_type)), wave_path_of(path));
	if (check.sends || !check.helps)
		return true; // the workflow has the words
	if (!ask_box("WARNING", tr("%s\nConvert it now, and upload what it becomes?"),
		    check.words.c_str()))
		return false;
	const std::string file[] = { wave_path_of(path) };
	const outcome converted = import_files(
		file, [&] { return check.conversion; }, window_samples);
	if (!converted.done())
		show_outcome(converted);
	return converted.done();
}

// Files that would not arrive as they are. Those that a conversion does not help are left out,
// and the user has one question about the others. False: nothing is wanted.
static bool may_upload(work_queue *queue, bool *convert)
{
	const _sampler_type *model = get_sampler(static_cast<i32>(current_sampler->sampler_type));
	std::vector<work_item *> silent;
	for (work_item &item : *queue) {
		const upload_verdict check = upload_check(*model, wave_path_of(item.path));
		if (check.sends)
			continue;
		item.words = check.words;
		if (check.helps)
			silent.push_back(&item);
		else
			item.state = item_state::skipped;
	}
	const int all = static_cast<int>(queue->size()), count = static_cast<int>(silent.size());
	*convert = count && ask_box("WARNING",
				    tr("%d of %d files would not arrive as they are. The first: "
				       "%s\nConvert them now, and upload what they become?"),
				    count, all, silent.front()->words.c_str());
	if (!count || *convert)
		return true;
	for (work_item *item : silent)
		item->state = item_state::skipped;
	const int others = count_of(*queue, item_state::waiting);
	return others &&
	       ask_box("WARNING", tr("Upload the other samples? (%d of %d)"), others, all);
}

static void upload_several(const chosen_entries &all)
{
	work_queue queue;
	std::vector<std::string> names;
	for (const chosen_entry &entry : all) {
		queue.push_back({ .name = entry.name,
			.path = local_sample[static_cast<std::size_t>(entry.index)].pathname });
		names.push_back(entry.name);
	}
	bool convert = false;
	if (!may_send_names(names) || !may_upload(&queue, &convert)) {
		show_outcome({ .how = ending::stopped, .line = tr("Nothing was uploaded.") });
		return;
	}
	show_queue({ .items = std::move(queue),
		.run =
			[convert](work_queue *items, const queue_view *view) {
				return upload_samples(items, convert, view);
			},
		.after =
			[all](outcome *result, const work_queue &) {
				show_change(*result, all_chosen_loaded(), all);
				host.ui->focus(window_samples, samples_local_list);
			} });
}

void upload_selected_sample()
{
	const outcome offered = offers_upload();
	if (!offered.done()) {
		show_outcome(offered);
		return;
	}
	const chosen_entries all = all_chosen_local(), on_sampler = all_chosen_loaded();
	if (all.size() > 1)
		return upload_several(all);
	const chosen_entry chosen = chosen_local(), loaded = chosen_loaded();
	if (no_local(chosen))
		return;
	const std::string path = local_sample[static_cast<std::size_t>(chosen.index)].pathname;
	if (!may_send_names({ &chosen.name, 1 }) || !make_audible(path))
		return;
	const outcome result = upload_sample(path);
	show_change(result,
		result.done() ? chosen_entries{ { chosen.name, loaded.index } } : on_sampler,
		{ chosen });
	host.ui->focus(window_samples, samples_local_list);
}

static void show_local_change(const outcome &result, const chosen_entries &chosen)
{
	fill_local(chosen);
	if (result.done())
		host.ui->set_text(window_samples, samples_local_new_name, "");
	show_outcome(result);
	host.ui->focus(window_samples, samples_local_list);
}

static void delete_several_local(const chosen_entries &all)
{
	work_queue queue;
	for (const chosen_entry &entry : all)
		queue.push_back({ .name = entry.name });
	show_queue({ .items = std::move(queue),
		.run = [](work_queue *items,
			       const queue_view *view) { return delete_locals(items, view); },
		.after = [all](outcome *result,
				 const work_queue &) { show_local_change(*result, all); } });
}

void delete_local_sample()
{
	const chosen_entries all = all_chosen_local();
	if (all.size() > 1)
		return delete_several_local(all);
	const chosen_entry chosen = chosen_local();
	if (!no_local(chosen))
		show_local_change(delete_local(chosen.name), { chosen });
}

void rename_local_sample()
{
	const chosen_entry chosen = chosen_local();
	if (no_local(chosen))
		return;
	const std::string typed = host.ui->get_text(window_samples, samples_local_new_name);
	const outcome result = rename_local(chosen.name, typed);
	show_local_change(
		result, { { result.done() ? file_name_of(typed) : chosen.name, chosen.index } });
}

void export_spool()
{
	const std::string target = host.ui->choose_folder("Select target folder for samples");
	log_line("[D] SHBrowse returned with: [%s]\r\n", target.c_str());
	if (!target.empty())
		show_outcome(export_spool_to(target));
}

void clear_spool()
{
	const outcome result = clear_spool_folder();
	fill_local({});
	show_outcome(result);
}

void import_paths(std::span<const std::string> paths)
{
	const outcome result = import_files(paths, chosen_import_options, window_samples);
	const bool failed = result.how == ending::local_failed;
	if (failed)
		fill_local(all_chosen_local());
	show_outcome(result);
	if (!failed)
		show_sample_setup();
}

void import_samples()
{
	const std::vector<std::string> paths = host.ui->choose_files(
		"Import Sample", tr("Sound files (*.wav *.WAV *.aif *.aiff *.aifc *.flac *.ogg "
				    "*.opus *.mp3 *.au *.caf "
				    "*.w64 *.rf64);;All files (*)"));
	if (paths.empty())
		show_box("ERROR", "No file(s) selected!");
	else
		import_paths(paths);
}

} // namespace velmor
