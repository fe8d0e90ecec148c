// velmor_sample_queues.cpp - many samples between the sampler and the spool, or out of them
//
// Knows nothing of: models, windows.

#include "src/velmor_work.h"
#include "src/waveqx.h"
#include <algorithm>

namespace velmor
{

// Of the file that a sample has in the spool, 0 where there is none.
static u64 size_of_file(const std::string &path)
{
	file_info info;
	return host.files->stat(wave_path_of(path).c_str(), &info) ? 0 : info.size;
}

// ---- From the sampler -------------------------------------------------------------------------

static outcome ready_to_download()
{
	const outcome offered = offers_download();
	return offered.done() ? have_sample_list() : offered;
}

static outcome download_item(work_item *item)
{
	outcome result = fetch_sample(item->name);
	if (result.done())
		item->bytes = size_of_file(spool_folder() + "\\" + file_name_of(item->name));
	return result;
}

static const queue_work downloads = {
	.title = own("Downloading"),
	.verdict = own("%d/%d samples downloaded!"),
	.line = own("%d of %d samples were downloaded."),
	.count = own("%d of %d samples done"),
	.not_done = own("Not downloaded: "),
	.not_tried = own("Not asked for: "),
	.kept = own("What is done stays. Nothing half read is kept."),
	.ready = ready_to_download,
	.run = download_item,
};

// Where the sampler's list told how long its samples are.
static u64 size_on_sampler(const std::string &name)
{
	constexpr u64 bytes_of_a_word = 2;
	const std::vector<std::string> names = loaded_names();
	const auto found = std::find(names.begin(), names.end(), name);
	if (found == names.end())
		return 0;
	const _sample &sample = current_sampler->status->sample[found - names.begin()];
	const bool told = sample.sample_rate && sample.end_position > sample.start_position;
	return told ? (sample.end_position - sample.start_position) * bytes_of_a_word : 0;
}

outcome download_samples(work_queue *queue, const queue_view *view)
{
	for (work_item &item : *queue)
		item.bytes = size_on_sampler(item.name);
	return run_queue(queue, downloads, view);
}

// ---- To the sampler ---------------------------------------------------------------------------

// What would arrive as silence, and is wanted otherwise.
static outcome make_audible(const std::string &path)
{
	const _sampler_type *model = get_sampler(static_cast<i32>(current_sampler->sampler_type));
	const std::string file[] = { wave_path_of(path) };
	const upload_verdict check = upload_check(*model, file[0]);
	if (check.sends || !check.helps)
		return {}; // the upload has the words
	return import_files(
		file, [&] { return check.conversion; }, 0);
}

static outcome upload_item(work_item *item, bool convert)
{
	const outcome audible = convert ? make_audible(item->path) : outcome{};
	if (!audible.done())
		return audible;
	item->bytes = size_of_file(item->path);
	return upload_sample(item->path);
}

static const queue_work uploads = {
	.title = own("Uploading"),
	.verdict = own("%d/%d samples uploaded!"),
	.line = own("%d of %d samples were uploaded."),
	.count = own("%d of %d samples done"),
	.not_done = own("Not uploaded: "),
	.not_tried = own("Not sent: "),
	.kept = own("What has arrived stays. Nothing half sent is kept."),
	.ready = offers_upload,
	.run = {},
};

outcome upload_samples(work_queue *queue, bool convert, const queue_view *view)
{
	queue_work work = uploads;
	work.run = [convert](work_item *item) { return upload_item(item, convert); };
	for (work_item &item : *queue)
		item.bytes = size_of_file(item.path);
	return run_queue(queue, work, view);
}

// ---- Away -------------------------------------------------------------------------------------

static const queue_work deletions = {
	.title = own("Deleting"),
	.verdict = own("%d/%d samples deleted!"),
	.line = own("%d of %d samples were deleted."),
	.count = own("%d of %d samples done"),
	.not_done = own("Not deleted: "),
	.not_tried = own("Not touched: "),
	.kept = own("What is deleted stays deleted."),
	.ready = nullptr,
	.run = {},
};

outcome delete_samples(work_queue *queue, const queue_view *view)
{
	queue_work work = deletions;
	work.ready = have_sample_list;
	work.run = [](work_item *item) { return delete_sample(item->name); };
	return run_queue(queue, work, view);
}

outcome delete_locals(work_queue *queue, const queue_view *view)
{
	queue_work work = deletions;
	work.kept = own("What is deleted can be put back with Undo.");
	work.run = [](work_item *item) { return delete_local(item->name); };
	const std::size_t steps = undo_steps_kept();
	const outcome result = run_queue(queue, work, view);
	join_undo(steps, format_text(tr("Put %d samples back."),
				 static_cast<int>(undo_steps_kept() - steps)));
	return result;
}

} // namespace velmor
