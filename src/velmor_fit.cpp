// velmor_fit.cpp - whether a sample fits the loaded sampler, what makes it fit, and its name there
//
// A sample is changed as far as the model needs it and no further: other bits, fewer channels, a
// lower rate. What it was stays in the folder "deleted\undo". A stereo sample of a model that takes
// stereo is never converted here, since a conversion keeps only its left channel.
//
// Knows nothing of: drivers, toolkits.

#include "src/velmor_fit.h"
#include "src/velmor_samples_page.h"
#include "src/velmor_transfer.h"
#include "src/waveqx.h"
#include <algorithm>
#include <set>

namespace velmor
{

static constexpr const char *s1000_characters = "0123456789 ABCDEFGHIJKLMNOPQRSTUVWXYZ#+-.";
static constexpr const char *s900_characters = "0123456789 ABCDEFGHIJKLMNOPQRSTUVWXYZ#.";

// What the uploads to a family take.
struct family_needs {
	unsigned bits; // 0: 16 or 24
	unsigned channels, rate;
	u64 words;              // that a transfer can count
	std::size_t name;       // longest; 0: the name of the file as it stands
	const char *characters; // others become full stops, small letters capitals
};
static constexpr family_needs s1000_needs = { 16, 1, 44100, 0x1FFFFF, 12, s1000_characters };
static constexpr family_needs s900_needs = { 12, 1, 16000, 0x1FFFFF, 10, s900_characters };
static constexpr family_needs usb_needs = { 0, 2, 96000, 0x7FFFFFFF, 0, nullptr };

static const family_needs &needs_of(const _sampler_type &model)
{
	if (model.sampler_flags & flag_usb)
		return usb_needs;
	return model.sampler_type == model_s900 ? s900_needs : s1000_needs;
}

static const _sampler_type *loaded()
{
	return current_sampler ? get_sampler(static_cast<i32>(current_sampler->sampler_type))
			       : nullptr;
}

// ---- Names --------------------------------------------------------------------------------------

std::string name_on_sampler(const _sampler_type &model, const std::string &name)
{
	const family_needs &needs = needs_of(model);
	if (!needs.name)
		return name;
	std::string out = name.substr(0, needs.name);
	for (char &c : out) {
		if (c >= 'a' && c <= 'z')
			c = static_cast<char>(c - 'a' + 'A');
		if (std::string_view(needs.characters).find(c) == std::string_view::npos)
			c = '.';
	}
	out.resize(out.find_last_not_of(' ') + 1);
	return out;
}

std::string same_names(std::span<const std::string> on_sampler)
{
	std::set<std::string> seen, twice;
	for (const std::string &name : on_sampler)
		if (!seen.insert(name).second)
			twice.insert(name);
	std::string text;
	for (const std::string &name : twice)
		text += (text.empty() ? "'" : ", '") + name + "'";
	return text.empty()
		       ? ""
		       : format_text(tr("Names that would stand more than once on the sampler: %s"),
				 text.c_str());
}

// The first of these that would be called like another sample of the sampler; "" for none.
static std::string second_of_its_name(
	const _sampler_type &model, std::span<const std::string> names)
{
	const std::vector<std::string> all = loaded_names();
	const std::set<std::string> listed(all.begin(), all.end());
	for (const std::string &name : names)
		if (!listed.contains(name) && listed.contains(name_on_sampler(model, name)))
			return name;
	return "";
}

bool may_send_names(std::span<const std::string> names)
{
	const _sampler_type *model = loaded();
	if (!model)
		return true;
	std::vector<std::string> called;
	for (const std::string &name : names)
		called.push_back(name_on_sampler(*model, name));
	const std::string same = same_names(called);
	if (!same.empty() && !ask_box("WARNING", tr("%s\nUpload them all the same?"), same.c_str()))
		return false;
	const std::string second = second_of_its_name(*model, names);
	return second.empty() ||
	       ask_box("WARNING",
		       tr("The sampler has a sample called '%s' already, and would "
			  "call '%s' the same: "
			  "it would hold two of that name.\nUpload it all the same?"),
		       name_on_sampler(*model, second).c_str(), second.c_str());
}

// ---- Shapes -------------------------------------------------------------------------------------

std::string length_trouble(const _sampler_type &model, const wave_shape &file)
{
	const family_needs &needs = needs_of(model);
	if (file.frames <= needs.words || !file.rate)
		return "";
	return format_text(tr("It is %.02f s long, and a transfer to %s carries %.02f s at %u Hz."),
		file.seconds(), model.sampler_brand, static_cast<double>(needs.words) / file.rate,
		file.rate);
}

static import_options needed_options(const family_needs &needs, const wave_shape &file)
{
	const bool plain = file.kind.empty() && linear(file);
	const bool bits_fit = plain && (needs.bits ? file.bits == needs.bits
						   : file.bits == 16 || file.bits == 24);
	import_options to = {};
	if (!bits_fit)
		to.bits = needs.bits ? static_cast<int>(needs.bits) : 16;
	if (file.rate > needs.rate)
		to.rate = static_cast<int>(needs.rate);
	if (file.channels > needs.channels) {
		to.channels = 1;
		to.mixing = import_mix;
	}
	return to;
}

fit_plan plan_fit(const _sampler_type &model, const wave_shape &file)
{
	const family_needs &needs = needs_of(model);
	fit_plan plan = { .fits = false, .possible = false, .conversion = {}, .words = {} };
	plan.conversion = needed_options(needs, file);
	const import_options &to = plan.conversion;
	plan.fits = !to.bits && !to.rate && !to.channels;
	wave_shape result = file;
	result.rate = to.rate ? static_cast<u32>(to.rate) : file.rate;
	result.frames = frames_after(file, result.rate);
	plan.words = length_trouble(model, result);
	if (!plan.words.empty()) {
		plan.fits = false;
		return plan;
	}
	if (plan.fits)
		return plan;
	if (!convertible(file) || (file.channels > 1 && !to.channels)) {
		plan.words = convertible(file)
				     ? tr("Import it with 1 Channel and Create L/R files, as a "
					  "conversion keeps only its left channel.")
				     : tr("It cannot be converted here.");
		return plan;
	}
	plan.possible = true;
	plan.words = format_text(
		to.channels ? tr("%d bit, %u Hz, both channels mixed to one") : tr("%d bit, %u Hz"),
		to.bits ? to.bits : static_cast<int>(file.bits), result.rate);
	return plan;
}

// ---- The command --------------------------------------------------------------------------------

static std::vector<std::string> chosen_names()
{
	std::vector<std::string> names;
	std::vector<int> places;
	if (host.ui->selections)
		places = host.ui->selections(window_samples, samples_local_list);
	if (places.empty())
		places = { host.ui->selection(window_samples, samples_local_list) };
	for (const int place : places)
		if (place >= 0 && place < local_samples)
			names.emplace_back(
				local_sample[static_cast<std::size_t>(place)].displayname);
	return names;
}

// What came of all.
struct fit_work {
	const _sampler_type &model;
	undo_step undo = {};
	int fitted = 0, fitting = 0; // made fit now; that did before
	std::vector<std::string> failures = {};
	std::string last = {}; // what the last one became
};

static void fit_one(fit_work *work, const std::string &name)
{
	const std::string path = wave_path_of(spool_folder() + "\\" + name);
	wave_shape file;
	std::string why = read_import_shape(path, &file);
	if (why.empty()) {
		const fit_plan plan = plan_fit(work->model, file);
		why = plan.fits || plan.possible ? "" : plan.words;
		work->fitting += plan.fits;
		if (plan.possible) {
			const outcome done = convert_local(name, plan.conversion, &work->undo);
			why = done.words;
			work->fitted += done.done();
			work->last = format_text(
				tr("'%s' has %s now."), name.c_str(), plan.words.c_str());
		}
	}
	if (!why.empty())
		work->failures.push_back("'" + name + "': " + why);
}

static outcome outcome_of(const fit_work &work, bool stopped, int all)
{
	outcome result;
	if (all == 1 && work.fitted)
		result.line = work.last;
	else
		result.line = format_text(tr("%d converted, %d fitted already, of %s."),
			work.fitted, work.fitting, counted(all, noun::sample).c_str());
	if (all == 1 && !work.failures.empty())
		result.line = tr("The sample stays as it is.");
	if (all == 1 && work.fitting)
		result.line =
			format_text(tr("The sample fits %s as it is."), work.model.sampler_brand);
	if (stopped)
		result.how = ending::stopped;
	if (work.failures.empty())
		return result;
	result.how = stopped ? ending::stopped : ending::refused;
	result.caption = "WARNING";
	for (const std::string &failure : work.failures)
		result.words += (result.words.empty() ? "" : "\n") + failure;
	return result;
}

static void fit_chosen_samples()
{
	const std::vector<std::string> names = chosen_names();
	const chosen_entries all = all_chosen_local();
	if (no_local(chosen_local()))
		return;
	outcome why;
	const _sampler_type *model = loaded_model(&why);
	if (!model) {
		show_outcome(why);
		return;
	}
	fit_work work = { .model = *model };
	show_progressbar(window_samples, static_cast<int>(names.size()), tr("Fitting samples..."));
	for (std::size_t i = 0; i < names.size() && !progress_stopped(); i++) {
		fit_one(&work, names[i]);
		set_progressbar(static_cast<int>(i + 1));
	}
	const bool stopped = progress_stopped();
	hide_progressbar(window_samples);
	if (!work.undo.moves.empty()) {
		work.undo.line = format_text(
			tr("Put %s back as before."), counted(work.fitted, noun::sample).c_str());
		remember_undo(work.undo);
	}
	fill_local(all);
	show_outcome(outcome_of(work, stopped, static_cast<int>(names.size())));
}

// ---- Choices ------------------------------------------------------------------------------------

static void change_exactness()
{
	set_exact_uploads(host.ui->checked(window_samples, samples_exact));
	show_import_preview({});
}

void show_transfer_choices()
{
	const _sampler_type *model = loaded();
	const bool offered = model && has_exact_uploads(*model);
	const std::string other = model ? format_text(tr("%s takes samples at their own length."),
						  model->sampler_brand)
					: tr("Load a sampler first.");
	host.ui->set_checked(window_samples, samples_exact, offered && exact_uploads());
	host.ui->set_reason(window_samples, samples_exact, offered ? nullptr : other.c_str());
	host.ui->set_text(window_samples, samples_rate, connection_text().c_str());
	host.ui->set_reason(window_samples, samples_fit,
		!model                   ? tr("Load a sampler first.")
		: chosen_names().empty() ? tr("Choose a sample on this computer first.")
					 : nullptr);
}

// clang-format off
static constexpr caption_row fit_captions[] = {
	{ window_samples, samples_exact,           own("Exact length"), own("Send each word once, and pitch, loop, play mode and tuning with them; otherwise the second half of a sample is silence"), nullptr },
	{ window_samples, samples_fit,             own("Fit to the Sampler"), own("Make of the chosen samples what the loaded sampler takes: bits, channels and rate, no more than it needs"), nullptr },
	{ window_samples, samples_rate,            own("Connection"), own("How many bytes of sound a second go over this connection, as measured"), nullptr },
	{ window_samples, samples_preview_becomes, own("Becomes"), nullptr, nullptr },
	{ window_samples, samples_preview_lost,    own("Lost"), nullptr, nullptr },
	{ window_samples, samples_preview_upload,  own("Upload"), nullptr, nullptr },
};
static constexpr command_row fit_commands[] = {
	{ window_samples, samples_fit,   fit_chosen_samples, alone },
};
static constexpr command_row fit_selections[] = {
	{ window_samples, samples_exact, change_exactness,   alone },
};
// clang-format on

constinit const window_rows fit_rows = { fit_captions, fit_commands, fit_selections, {} };

} // namespace velmor
