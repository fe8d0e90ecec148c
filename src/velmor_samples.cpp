// velmor_samples.cpp - samples between the sampler and the spool, by their names
//
// What a model can do is in its row of sampler_type; an empty slot has its words here. An
// operation reports nothing back, and the replies to some of its messages decide nothing. So
// after each the list is read again, and what it says counts: a driver's word of success is
// shown when the list agrees, and one of ours stands in its place when it does not.
//
// Knows nothing of: models, windows.

#include "src/velmor_history.h"
#include "src/velmor_transfer.h"
#include "src/velmor_verify.h"
#include "src/velmor_work.h"
#include "src/waveqx.h"
#include <algorithm>
#include <cstring>

namespace velmor
{

static const char *const not_supported = "No Sampler loaded/Function not supported by Sampler";

static std::string quoted(const std::string &name)
{
	return "'" + name + "'";
}

static bool claims_success(const kept_box &box)
{
	return box.text.find("successfully") != box.text.npos;
}

std::vector<kept_box> troubles(std::vector<kept_box> told)
{
	std::erase_if(told, claims_success);
	return told;
}

static bool is_listed(const std::string &name)
{
	const std::vector<std::string> names = loaded_names();
	return std::find(names.begin(), names.end(), name) != names.end();
}

static int times_listed(const std::string &name)
{
	const std::vector<std::string> names = loaded_names();
	return static_cast<int>(std::count(names.begin(), names.end(), name));
}

static outcome gone(const std::string &name)
{
	return { .how = ending::refused,
		.words = format_text(
			tr("%s is not on the sampler any more."), quoted(name).c_str()) };
}

// A fresh list that holds the name, so that its place is the machine's.
static outcome have_sample(const std::string &name)
{
	outcome ready = have_sample_list();
	if (ready.done() && !is_listed(name))
		return gone(name);
	return ready;
}

// The list was read after the work, if perhaps with a gap, and can be looked at.
static bool can_look(const outcome &read)
{
	return read.done() || (read.how == ending::no_answer && !the_lists.samples.silent);
}

outcome unknown_end(const outcome &read, const std::string &what)
{
	return { .how = read.how,
		.words = format_text(
			tr("It is not known whether %s: the list could not be read again.\n%s"),
			what.c_str(), read.words.c_str()),
		.line = format_text(tr("It is not known whether %s."), what.c_str()) };
}

// ---- From the sampler ---------------------------------------------------------------------------

bool in_spool(const std::string &name)
{
	_sample sample = {};
	copy_text(sample.name, name);
	return test_sample(&sample, nullptr) != 0;
}

outcome offers_download()
{
	outcome why;
	const _sampler_type *model = loaded_model(&why);
	if (model && !model->downloadsample)
		return { .how = ending::refused, .words = "DOWNLOADING OF SAMPLES NOT SUPPORTED!" };
	return why;
}

static const _sampler_type &row_of_loaded()
{
	return *get_sampler(static_cast<i32>(current_sampler->sampler_type));
}

// The file has its words now, and those of hundreds of samples need not stay in memory.
static void give_words_back(const std::string &name)
{
	for (_sample &sample : current_sampler->status->sample)
		if (sample.sample_data && name == sample.name)
			free_sample_data(&sample);
}

// What the driver told comes with it.
outcome fetch_sample(const std::string &name)
{
	if (!is_listed(name))
		return gone(name);
	box_keeper keeper;
	const line_watch watch;
	forget_stop(); // of earlier work
	const transfer_clock measured(transfer_way::down);
	row_of_loaded().downloadsample(control_channel(), exclusive_channel(), name.c_str());
	outcome result = { .line = format_text(tr("Downloaded %s."), quoted(name).c_str()) };
	result.told = keeper.take();
	if (progress_stopped())
		result.how = ending::stopped;
	else if (watch.dead())
		result.how = ending::no_answer;
	else if (!in_spool(name))
		result.how = ending::refused;
	else if (!troubles(result.told).empty())
		result.how = ending::local_failed;
	else
		measured.arrived(wave_path_of(spool_filebase(name.c_str())));
	if (result.done()) {
		outcome compared = verified_download(result, name);
		give_words_back(name);
		return compared;
	}
	result.told = troubles(result.told);
	result.line =
		format_text(result.how == ending::stopped ? tr("%s was not downloaded: stopped.")
							  : tr("%s was not downloaded."),
			quoted(name).c_str());
	return result;
}

outcome download_sample(const std::string &name)
{
	const outcome offered = offers_download();
	const outcome ready = offered.done() ? have_sample(name) : offered;
	if (!ready.done())
		return ready;
	outcome result = fetch_sample(name);
	if (!result.done() && result.how != ending::stopped && result.told.empty())
		result.words = result.line;
	return result;
}

// ---- Information ----------------------------------------------------------------------------------

outcome ask_sample(const std::string &name, const _sample **record)
{
	outcome why;
	const _sampler_type *model = loaded_model(&why);
	if (!model)
		return why;
	if (!model->infosample)
		return { .how = ending::refused, .words = not_supported, .caption = "FATAL" };
	const outcome ready = have_sample(name);
	if (!ready.done())
		return ready;
	box_keeper keeper;
	const line_watch watch;
	model->infosample(control_channel(), exclusive_channel(), name.c_str());
	outcome result = { .told = keeper.take() };
	if (watch.dead())
		return { .how = ending::no_answer,
			.words = silence_words(loaded_reached()),
			.told = result.told };
	for (int i = 0; i < static_cast<int>(loaded_names().size()); i++)
		if (name == current_sampler->status->sample[i].name) {
			*record = &current_sampler->status->sample[i];
			return result;
		}
	return gone(name);
}

// ---- Names on the sampler ---------------------------------------------------------------------------

// True if a machine that was given new_name may well call it name: in other letters, and cut.
static bool may_be_called(const std::string &new_name, const std::string &name)
{
	constexpr std::size_t shortest_cut = 12;
	auto small = [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; };
	const bool fits = new_name.size() == name.size() ||
			  (name.size() >= shortest_cut && new_name.size() > name.size());
	return fits && std::equal(name.begin(), name.end(), new_name.begin(),
			       [&](char a, char b) { return small(a) == small(b); });
}

// Rename, or delete where new_name is null: one operation of the model. The replies decide
// nothing, so the list that is read behind it does.
static outcome change(const std::string &name, const char *new_name, const std::string &done,
	const std::string &what)
{
	outcome why;
	const _sampler_type *model = loaded_model(&why);
	if (!model)
		return why;
	if (!model->renamesample)
		return { .how = ending::refused, .words = not_supported, .caption = "FATAL" };
	machine_change kept({ new_name ? step_kind::rename_sample : step_kind::delete_sample, name,
		new_name ? new_name : "" });
	const outcome ready = kept.may_go_on() ? have_sample(name) : kept.why();
	if (!ready.done())
		return ready;
	const int before = times_listed(name);
	box_keeper keeper;
	model->renamesample(control_channel(), exclusive_channel(), name.c_str(), new_name);
	const outcome read = read_sample_list();
	outcome result = { .words = done };
	if (!can_look(read))
		result = unknown_end(read, what);
	else if (times_listed(name) >= before && !(new_name && may_be_called(new_name, name)))
		result = { .how = ending::refused,
			.words = format_text(
				tr("The sampler did not do it: %s is still in its list."),
				quoted(name).c_str()) };
	result.told = troubles(keeper.take());
	return kept.ended(result);
}

outcome rename_sample(const std::string &name, const std::string &new_name)
{
	// The word stands for the sampler's side too.
	outcome result = change(name, new_name.c_str(), "Local sample successfully renamed",
		format_text(tr("%s was renamed"), quoted(name).c_str()));
	if (result.done())
		result.line = format_text(tr("%s on the sampler is now %s."), quoted(name).c_str(),
			quoted(new_name).c_str());
	return result;
}

outcome delete_sample(const std::string &name)
{
	outcome result = change(name, nullptr, "Loaded sample successfully deleted",
		format_text(tr("%s was deleted"), quoted(name).c_str()));
	if (result.done())
		result.line = format_text(tr("Deleted %s on the sampler."), quoted(name).c_str());
	return result;
}

// ---- To the sampler -----------------------------------------------------------------------------------

// How an upload ended: by what the driver told, and by the list behind it. A new sample makes
// the list longer; one that replaces another has its exact name.
static outcome judge_upload(const std::string &name, int before, const outcome &read,
	const std::vector<kept_box> &told, bool stopped)
{
	if (stopped)
		return { .how = ending::stopped,
			.line = format_text(tr("Upload of %s stopped."), quoted(name).c_str()) };
	if (!troubles(told).empty())
		return { .how = read.how == ending::no_answer ? ending::no_answer : ending::refused,
			.line = format_text(tr("%s was not sent."), quoted(name).c_str()),
			.told = troubles(told) };
	if (!can_look(read))
		return unknown_end(read, format_text(tr("%s has arrived"), quoted(name).c_str()));
	if (static_cast<int>(loaded_names().size()) <= before && !is_listed(name))
		return { .how = ending::refused,
			.words = format_text(
				tr("The sampler does not list %s, so it did not keep it."),
				quoted(name).c_str()) };
	return { .line = format_text(tr("Uploaded %s."), quoted(name).c_str()), .told = told };
}

outcome offers_upload()
{
	outcome why;
	const _sampler_type *model = loaded_model(&why);
	if (model && !model->uploadsample)
		return { .how = ending::refused,
			.words = "Upload for this sampler is not supported (yet)!",
			.caption = "FATAL" };
	return why;
}

outcome upload_sample(const std::string &path)
{
	const outcome offered = offers_upload();
	if (!offered.done())
		return offered;
	const upload_verdict check = upload_check(row_of_loaded(), wave_path_of(path));
	if (!check.sends)
		return { .how = ending::refused, .words = check.words, .caption = "WARNING" };
	const std::string name = path.substr(path.rfind('\\') + 1);
	forget_stop(); // of earlier work
	machine_change kept({ .kind = step_kind::upload_sample, .name = name });
	const outcome ready = kept.may_go_on() ? have_sample_list() : kept.why();
	if (!ready.done())
		return ready;
	if (progress_stopped())
		return { .how = ending::stopped,
			.line = format_text(
				tr("%s was not sent: stopped."), quoted(name).c_str()) };
	const int before = static_cast<int>(loaded_names().size());
	box_keeper keeper;
	const transfer_clock measured(transfer_way::up);
	row_of_loaded().uploadsample(path.c_str());
	const bool stopped = progress_stopped();
	const std::vector<kept_box> told = keeper.take();
	if (!stopped && troubles(told).empty())
		measured.arrived(wave_path_of(path));
	const outcome read = read_sample_list();
	return verified_upload(kept.ended(judge_upload(name, before, read, told, stopped)), path);
}

} // namespace velmor
