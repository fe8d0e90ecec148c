// velmor_preview.cpp - the waveform of a sample, and what an import gives and an upload sends
//
// Knows nothing of: models (but what their rows say), toolkits.

#include "src/velmor_fit.h"
#include "src/velmor_samples_page.h"
#include "src/velmor_shape.h"
#include "src/velmor_transfer.h"
#include "src/velmor_wave_edit.h"
#include "src/velmor_window.h"
#include "src/waveqx.h"
#include <algorithm>
#include <set>

namespace velmor
{

// ---- Waveform -------------------------------------------------------------------------------

// First channel of one frame as a 16-bit word.
static std::int16_t word_of(const u8 *frame, unsigned bits)
{
	switch (bits) {
	case 12:
		return static_cast<std::int16_t>(wave_read_16bit(frame) << 4);
	case 16:
		return static_cast<std::int16_t>(wave_read_16bit(frame));
	case 24:
		return static_cast<std::int16_t>(wave_read_16bit(frame + 1));
	default:
		return 0;
	}
}

static std::vector<std::int16_t> read_words(input_file &wave, const wave_shape &shape)
{
	std::vector<std::int16_t> words;
	const unsigned width = shape.bits == 24 ? 3 : 2;
	std::vector<u8> data(shape.data_bytes);
	if (shape.frame_bytes < width || wave.read(shape.data_at, data.data(), data.size()))
		return words;
	words.reserve(shape.frames);
	for (u64 i = 0; i < shape.frames; i++)
		words.push_back(word_of(&data[i * shape.frame_bytes], shape.bits));
	return words;
}

static std::string path_of_local()
{
	const int index = host.ui->selection(window_samples, samples_local_list);
	return index >= 0 && index < local_samples
		       ? wave_path_of(local_sample[static_cast<std::size_t>(index)].pathname)
		       : std::string();
}

static void show_waveform(const std::string &path)
{
	input_file wave;
	wave_shape shape;
	if (path.empty() || !read_shape(path, wave, &shape).empty()) {
		wave_shown("", 0);
		host.ui->set_waveform(window_samples, samples_waveform, nullptr);
		return;
	}
	const std::vector<std::int16_t> words = read_words(wave, shape);
	wave_shown(path, words.size());
	const waveform_view view = { .words = words,
		.sample_rate = shape.rate,
		.loop_start = std::min(shape.loop_start, shape.frames),
		.loop_end = std::min(shape.loop_end, shape.frames) };
	host.ui->set_waveform(window_samples, samples_waveform, &view);
}

void show_local_selection()
{
	show_waveform(path_of_local());
	show_import_preview({});
}

// ---- Beside a name ------------------------------------------------------------------------------

std::vector<std::string> wave_columns(const std::string &path)
{
	input_file wave;
	wave_shape shape;
	if (!read_shape(path, wave, &shape).empty() || !shape.rate)
		return {};
	const double seconds = static_cast<double>(shape.frames) / shape.rate;
	return { format_text("%.2f s", seconds), format_text("%u Hz", shape.rate),
		format_text("%u", shape.channels), format_text("%u", shape.bits),
		shape.loop_end > shape.loop_start ? tr("yes") : tr("no") };
}

// ---- Options ----------------------------------------------------------------------------------

struct import_choice {
	int control;
	int value;
};

static constexpr import_choice bit_choices[] = {
	{ samples_bits_16, 16 },
	{ samples_bits_12, 12 },
	{ samples_bits_24, 24 },
};
static constexpr import_choice rate_choices[] = {
	{ samples_rate_16000, 16000 },
	{ samples_rate_22000, 22000 },
	{ samples_rate_32000, 32000 },
	{ samples_rate_44100, 44100 },
	{ samples_rate_48000, 48000 },
	{ samples_rate_96000, 96000 },
};
static constexpr import_choice channel_choices[] = {
	{ samples_channels_1, 1 },
	{ samples_channels_2, 2 },
};
// In the order in which they are asked for.
static constexpr import_choice mixing_choices[] = {
	{ samples_mix_both, import_both },
	{ samples_mix_files, import_split },
	{ samples_mix_both_to_one, import_mix },
	{ samples_mix_right, import_right },
	{ samples_mix_left, import_left },
};

// 0 keeps what the file has.
static int chosen_value(std::span<const import_choice> choices)
{
	for (const import_choice &choice : choices)
		if (host.ui->checked(window_samples, choice.control))
			return choice.value;
	return 0;
}

import_options chosen_import_options()
{
	return { .bits = chosen_value(bit_choices),
		.rate = chosen_value(rate_choices),
		.channels = chosen_value(channel_choices),
		.mixing = chosen_value(mixing_choices) };
}

// ---- Words --------------------------------------------------------------------------------------

static std::string duration(double seconds)
{
	const long whole = static_cast<long>(seconds + 0.5);
	if (whole < 1)
		return tr("less than a second");
	if (whole < 60)
		return format_text(tr("about %ld s"), whole);
	if (whole < 3600)
		return format_text(tr("about %ld min %ld s"), whole / 60, whole % 60);
	return format_text(tr("about %ld h %ld min"), whole / 3600, whole / 60 % 60);
}

static std::string size_text(u64 bytes)
{
	if (bytes < 1000)
		return format_text(tr("%d bytes"), static_cast<int>(bytes));
	return bytes < 1000000 ? format_text("%.0f kB", static_cast<double>(bytes) / 1000)
			       : format_text("%.1f MB", static_cast<double>(bytes) / 1000000);
}

static std::string shape_text(const wave_shape &file)
{
	return format_text(file.channels == 1 ? tr("%u Hz, %u bit%s, %u channel, %.02f s")
					      : tr("%u Hz, %u bit%s, %u channels, %.02f s"),
		file.rate, file.bits, kind_of_words(file), file.channels, file.seconds());
}

// Without its folder, and without its extension.
static std::string name_of(const std::string &path)
{
	const std::string name = path.substr(path.rfind('\\') + 1);
	return name.substr(0, name.rfind('.'));
}

static std::string listed(const std::vector<std::string> &words)
{
	if (words.empty())
		return "";
	std::string text = words.front();
	for (std::size_t i = 1; i + 1 < words.size(); i++)
		text += ", " + words[i];
	return words.size() == 1 ? text
				 : format_text(tr("%s and %s"), text.c_str(), words.back().c_str());
}

// ---- The preview ---------------------------------------------------------------------------------

double transfer_seconds(const _sampler_type &model, u64 bytes)
{
	return static_cast<double>(carried_up(model, bytes, exact_uploads())) /
	       rate_of(model, transfer_way::up).bytes_per_second;
}

static const _sampler_type *uploading_model()
{
	const _sampler_type *model =
		current_sampler ? get_sampler(static_cast<i32>(current_sampler->sampler_type))
				: nullptr;
	return model && model->uploadsample ? model : nullptr;
}

// What all files together mean.
struct preview_sum {
	const _sampler_type *model; // null: none that takes samples
	import_options options;
	bool in_spool;
	int results = 0, refused = 0;
	u64 bytes = 0;                            // of audio, of those that arrive
	std::string words = {}, refusal = {};     // of the first that arrives, and does not
	std::string file = {}, becomes = {};      // of the first
	std::vector<std::string> lost = {};       // of the first that loses anything
	std::vector<std::string> on_sampler = {}; // names
	bool unreadable = false;
};

static std::string name_for(const preview_sum &sum, const std::string &name)
{
	return sum.model ? name_on_sampler(*sum.model, name) : name;
}

static void add_upload(preview_sum *sum, const wave_shape &file, int files)
{
	sum->results += files;
	if (!sum->model)
		return;
	const upload_verdict verdict = verdict_of(*sum->model, file);
	const std::string too_long = length_trouble(*sum->model, file);
	if (verdict.sends && too_long.empty()) {
		sum->bytes += file.data_bytes * static_cast<u64>(files);
		sum->words = sum->words.empty() ? verdict.words : sum->words;
		return;
	}
	sum->refused += files;
	if (sum->refusal.empty())
		sum->refusal = too_long.empty() ? verdict.words : too_long;
}

// The part of two channels that one does not hold, and what chose so.
static const char *lost_channel(int mixing)
{
	if (mixing == import_left)
		return tr("the right channel (Left Channel is chosen)");
	if (mixing == import_right)
		return tr("the left channel (Right Channel is chosen)");
	return tr("what differs between the channels (Mix Channels is chosen)");
}

static std::vector<std::string> losses_of(
	const wave_shape &from, const wave_shape &to, const import_options &options, int files)
{
	std::vector<std::string> lost;
	if (from.channels > 1 && to.channels == from.channels)
		lost.push_back(tr("all but the left channel (choose 1 Channel and Create L/R files "
				  "for both)"));
	else if (from.channels > to.channels && files == 1)
		lost.push_back(lost_channel(options.mixing));
	if (!from.exact)
		lost.push_back(tr("what is finer than 24 bits"));
	if (to.bits < from.bits)
		lost.push_back(format_text(tr("the lower %u bits (Convert to %u bit is chosen)"),
			from.bits - to.bits, to.bits));
	if (to.rate < from.rate)
		lost.push_back(format_text(
			tr("what is above %u Hz (%u Hz is chosen)"), to.rate / 2, to.rate));
	return lost;
}

static std::string kept_text(const wave_shape &file)
{
	const bool looped = file.loop_end > file.loop_start;
	if (!looped && file.root < 0)
		return "";
	if (file.root < 0)
		return tr(" · keeps its loop");
	return format_text(looped ? tr(" · keeps its loop and its root note %s")
				  : tr(" · keeps its root note %s"),
		midi_note[static_cast<std::size_t>(file.root)]);
}

static wave_shape result_of(
	const wave_shape &file, const import_options &options, const conversion &to)
{
	wave_shape result = file;
	result.tag = tag_pcm;
	result.kind.clear();
	result.rate = options.rate ? static_cast<u32>(options.rate) : file.rate;
	result.bits = options.bits ? static_cast<unsigned>(options.bits) : file.bits;
	result.channels = to.channels;
	result.frames = frames_after(file, result.rate);
	result.frame_bytes = (result.bits + 7) / 8 * to.channels;
	result.data_bytes = result.frames * result.frame_bytes;
	return result;
}

// What the options make of a file. "" where they do not convert it.
static std::string add_import(preview_sum *sum, const std::string &name, const wave_shape &file)
{
	const conversion to = conversion_of(file, sum->options);
	if (!to.files)
		return "";
	const wave_shape result = result_of(file, sum->options, to);
	add_upload(sum, result, to.files);
	if (sum->lost.empty())
		sum->lost = losses_of(file, result, sum->options, to.files);
	std::vector<std::string> names = { name };
	if (to.files == 2)
		names = { name + "-L", name + "-R" };
	for (std::string &each : names)
		sum->on_sampler.push_back(each = name_for(*sum, each));
	const std::string files = to.files == 2
					  ? format_text(tr("two files: %s"), listed(names).c_str())
					  : listed(names);
	return files + " · " + shape_text(result) + ", " + size_text(result.data_bytes) +
	       kept_text(result);
}

// A file that is in the spool already is uploaded as it stands, unless the options are to
// change it first.
static void add_file(preview_sum *sum, const std::string &path)
{
	input_file wave;
	wave_shape file;
	const import_options &options = sum->options;
	const bool as_it_is = sum->in_spool && !options.bits && !options.rate && !options.channels;
	const std::string why =
		as_it_is ? read_shape(path, wave, &file) : read_import_shape(path, &file);
	const std::string name = name_of(path), shown = path.substr(path.rfind('\\') + 1);
	const bool first = sum->file.empty();
	if (!why.empty()) {
		sum->unreadable = sum->unreadable || first;
		sum->file = first ? shown + ": " + why : sum->file;
		return;
	}
	std::string becomes;
	if (as_it_is) {
		const int before = sum->refused;
		add_upload(sum, file, 1);
		if (sum->refused > before && !before && plan_fit(*sum->model, file).possible)
			sum->refusal += tr(" Or press Fit to the Sampler.");
		sum->on_sampler.push_back(name_for(*sum, name));
		becomes = sum->model ? format_text(tr("%s on the sampler"),
					       sum->on_sampler.back().c_str())
				     : "";
	} else {
		becomes = add_import(sum, name, file);
		if (becomes.empty())
			becomes =
				tr("These options do not convert it. Choose Keep original for the "
				   "channels.");
	}
	if (!first)
		return;
	sum->file = shown + " · " + (file.kind.empty() ? "" : file.kind + ", ") + shape_text(file);
	sum->becomes = becomes;
}

// ---- Its lines ------------------------------------------------------------------------------------

static void say(int control, const std::string &text, text_role role)
{
	host.ui->set_text(window_samples, control, text.c_str());
	host.ui->set_role(window_samples, control, role);
}

// Seconds and what they were reckoned with; below, what arrives, and the other way.
static std::string arrival_text(const preview_sum &sum)
{
	const transfer_rate rate = rate_of(*sum.model, transfer_way::up);
	const bool exact = exact_uploads();
	const auto lasts = [&](bool exactly) {
		return duration(static_cast<double>(carried_up(*sum.model, sum.bytes, exactly)) /
				rate.bytes_per_second);
	};
	const std::string text = format_text(
		rate.measured ? tr("%s at the %s measured on this connection")
			      : tr("%s at about %s, not measured yet on this connection"),
		lasts(exact).c_str(), rate_text(rate.bytes_per_second).c_str());
	std::string arrival = sum.results == 1 ? sum.words : "";
	if (has_exact_uploads(*sum.model))
		arrival += (arrival.empty() ? "" : " · ") +
			   format_text(exact ? tr("without exact length %s")
					     : tr("with exact length %s"),
				   lasts(!exact).c_str());
	return text + (arrival.empty() ? "" : "\n") + arrival;
}

static void show_upload(const preview_sum &sum)
{
	std::string text = sum.model && sum.bytes && !sum.refused ? arrival_text(sum) : "";
	if (sum.refused) {
		text = sum.results > 1 ? format_text(tr("%d of %d refused: %s"), sum.refused,
						 sum.results, sum.refusal.c_str())
				       : format_text(tr("refused: %s"), sum.refusal.c_str());
		// The reason, and below it what helps.
		if (const std::size_t end = text.find(". "); end != text.npos)
			text.replace(end, 2, ".\n");
	}
	const bool all = sum.refused && sum.refused == sum.results;
	say(samples_preview_upload, text,
		all           ? text_role::failed
		: sum.refused ? text_role::careful
			      : text_role::plain);
}

static void show_lines(const preview_sum &sum, std::size_t files)
{
	const std::string more = files > 1 ? format_text(tr(" · and %zu more"), files - 1) : "";
	const bool converts = sum.unreadable || sum.results;
	std::string lost = listed(sum.lost);
	const std::string clash = same_names(sum.on_sampler);
	if (!clash.empty())
		lost += (lost.empty() ? "" : " · ") + clash;
	say(samples_import_preview, sum.file.empty() ? "" : sum.file + more,
		sum.unreadable ? text_role::failed : text_role::plain);
	say(samples_preview_becomes, sum.becomes.empty() ? "" : sum.becomes + more,
		converts ? text_role::plain : text_role::failed);
	say(samples_preview_lost, lost, text_role::careful);
	show_upload(sum);
}

void show_import_preview(std::span<const std::string> paths)
{
	const std::vector<std::string> chosen =
		paths.empty() ? chosen_files() : std::vector<std::string>();
	if (!chosen.empty())
		paths = chosen;
	preview_sum sum = { .model = uploading_model(),
		.options = chosen_import_options(),
		.in_spool = !chosen.empty() };
	for (const std::string &path : paths)
		add_file(&sum, path);
	show_lines(sum, paths.size());
	show_transfer_choices();
}

} // namespace velmor
