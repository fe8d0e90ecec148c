// velmor_lists.cpp - what is known of the loaded sampler's lists, and reading them
//
// A list is fresh from a reading without a gap until an exchange fails or the way to the
// sampler changes: port, bridge, channel, model, or another sampler. What is read shows in
// the record (_dev_status) alone, since the operations report nothing: the status is taken back
// and the count set to what no sampler tells, so that what stands there afterwards was read now.
//
// Knows nothing of: windows, models.

#include "src/velmor_edits.h"
#include "src/velmor_midi.h"
#include "src/velmor_work.h"
#include <algorithm>
#include <utility>

namespace velmor
{

sampler_lists the_lists;

freshness known_list::state() const
{
	if (!was_read)
		return freshness::never;
	const bool same = way == way_key() && failures == the_line.failures;
	return same && !silent ? freshness::read : freshness::stale;
}

void forget_lists()
{
	the_lists = {};
}

u8 control_channel()
{
	return static_cast<u8>(current_sampler->sampler_sysex);
}

u8 exclusive_channel()
{
	return static_cast<u8>(current_sampler->sampler_sysex_channel);
}

std::string why_way_is_taken(const _sampler_type &model)
{
	const bool over_midi = !(model.sampler_flags & flag_usb) && !use_tcp;
	return over_midi ? why_output_is_taken() : "";
}

const _sampler_type *loaded_model(outcome *why)
{
	const _sampler_type *model =
		current_sampler ? get_sampler(static_cast<i32>(current_sampler->sampler_type))
				: nullptr;
	if (!model)
		*why = { .how = ending::refused, .words = "Invalid sampler type" };
	const std::string taken = model ? why_way_is_taken(*model) : "";
	if (taken.empty())
		return model;
	*why = { .how = ending::refused, .words = taken };
	return nullptr;
}

std::vector<std::string> loaded_names()
{
	std::vector<std::string> names;
	const _dev_status *dev = current_sampler ? current_sampler->status : nullptr;
	for (int i = 0; dev && i < std::clamp(dev->samples, 0, max_samples); i++)
		names.emplace_back(dev->sample[i].name);
	return names;
}

// ---- Reading ------------------------------------------------------------------------------------

// A list, its count in the record, and the operations that read it, in the order in which they
// build on each other. A slot that the model lacks is left out.
struct list_reading {
	known_list *list;
	i32 _dev_status::*count;
	std::initializer_list<list_operation> operations;
};

// How a reading ended. A line that failed and recovered has left a gap.
static outcome judge(const known_list &list, const line_watch &watch)
{
	if (close_requested())
		return { .how = ending::stopped };
	if (list.silent && watch.heard() && !watch.dead())
		return { .how = ending::refused, .words = stranger_words(loaded_reached()) };
	if (list.silent)
		return { .how = ending::no_answer, .words = silence_words(loaded_reached()) };
	if (watch.failed())
		return { .how = ending::no_answer,
			.words = tr("An answer was lost while the list was read. Refresh reads it "
				    "again.") };
	return {};
}

static outcome read_list(const list_reading &reading)
{
	_dev_status *dev = require_dev_status();
	if (!dev)
		return { .how = ending::local_failed,
			.words = tr("There is no memory for what the sampler holds.") };
	box_keeper keeper;
	const line_watch watch;
	known_list *list = reading.list;
	list->way = way_key();
	dev->status = 0;
	dev->*reading.count = -1;
	for (_sample &sample : dev->sample)
		sample.sample_rate = 0; // another sample may come to stand there
	for (list_operation read : reading.operations)
		if (read && !close_requested())
			read(control_channel(), exclusive_channel(), dev);
	list->silent = dev->status != 1 || dev->*reading.count < 0 || watch.dead();
	list->was_read = list->was_read || !list->silent;
	list->asked_at = host.clock->time_of_day();
	list->failures = the_line.failures;
	if (list->silent)
		dev->*reading.count = 0;
	// After a gap, what the record holds of any list may be old.
	if (list->silent || watch.failed())
		the_lists.samples.failures = the_lists.programs.failures =
			the_lists.multis.failures = the_line.failures - 1;
	outcome result = judge(*list, watch);
	list->words = result.words;
	result.told = keeper.take();
	return result;
}

outcome offers_list(list_operation _sampler_type::*slot)
{
	outcome why;
	const _sampler_type *model = loaded_model(&why);
	if (model && !(model->*slot))
		return { .how = ending::refused,
			.words = "No Sampler loaded/Function not supported by Sampler",
			.caption = "FATAL" };
	return why;
}

// The loaded programs are read anew.
static void forget_program_edits()
{
	if (const _dev_status *dev = current_sampler->status)
		forget_edits(dev->program, dev->program + max_programs);
}

outcome read_sample_list()
{
	outcome offered = offers_list(&_sampler_type::getsamplelist);
	if (!offered.done())
		return offered;
	const _sampler_type *model = loaded_model(&offered);
	return read_list({ &the_lists.samples, &_dev_status::samples,
		{ model->getstatus, model->getsamplelist } });
}

outcome read_multi_list()
{
	outcome offered = offers_list(&_sampler_type::getmultilist);
	if (!offered.done())
		return offered;
	const _sampler_type *model = loaded_model(&offered);
	forget_program_edits();
	outcome read = read_list({ &the_lists.multis, &_dev_status::multis,
		{ model->getstatus, model->getsamplelist, model->getproglist,
			model->getmultilist } });
	// The programs came along, but whether all of them did, nobody looked.
	the_lists.programs.failures = the_line.failures - 1;
	return read;
}

outcome read_program_list()
{
	outcome offered = offers_list(&_sampler_type::getproglist);
	if (!offered.done())
		return offered;
	const _sampler_type *model = loaded_model(&offered);
	forget_program_edits();
	return read_list({ &the_lists.programs, &_dev_status::programs,
		{ model->getstatus, model->getsamplelist, model->getproglist } });
}

outcome nothing_sent(outcome read)
{
	read.words = format_text(
		tr("Nothing was sent, because the sampler's list could not be read.\n%s"),
		read.words.c_str());
	// One trouble, one box.
	if (!read.told.empty())
		read.words += "\n" + read.told.front().text;
	read.told.clear();
	read.line = tr("Nothing was sent: the sampler's list could not be read.");
	return read;
}

outcome have_sample_list()
{
	if (the_lists.samples.state() == freshness::read)
		return {};
	outcome read = read_sample_list();
	if (read.done() || read.how == ending::stopped || !the_lists.samples.asked_at)
		return read;
	return nothing_sent(std::move(read));
}

} // namespace velmor
