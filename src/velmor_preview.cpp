// velmor_preview.cpp - what an import gives, what an upload sends, and the waveform
//
// Reads files of the user as they are, which may be anything. What cannot be imported is
// named by the words of why_not_wave, so that preview and import say the same.
//
// An upload over MIDI sends the words of 16-bit mono files; of all others it would send
// silence or noise, of another length. An upload over USB sends the file as it is.
//
// Knows nothing of: models (but what their rows say), toolkits.

#include "src/velmor_wave_edit.h"
#include "src/velmor_window.h"
#include "src/waveqx.h"
#include "src/waveqx_chunks.h"
#include <algorithm>
#include <cstring>

namespace velmor
{

// ---- Reading a WAV file ---------------------------------------------------------------------

// Kinds of audio in the head of a WAV file.
enum : u16 {
	tag_pcm = 1,
	tag_float = 3,
	tag_extensible = 0xFFFE, // the real one stands in the extension of fmt
};

struct wave_shape {
	u16 tag = 0;
	u32 rate = 0;
	unsigned bits = 0, channels = 0, frame_bytes = 0;
	u64 frames = 0;
	u64 data_at = 0, data_bytes = 0;
	u64 loop_start = 0, loop_end = 0; // no loop where both are 0
	std::string kind = {};            // of a file that is made a plain WAV file first
	bool exact = true;                // and loses nothing by it
};

static void read_loop(input_file &wave, const wave_chunk &smpl, wave_shape *shape)
{
	u8 chunk[smpl_loop_end + 4];
	constexpr int loops = 36, whole_loop = 36 + 24;
	if (smpl.size < whole_loop || wave.read(smpl.at, chunk, sizeof chunk) ||
		wave_read_32bit(chunk + loops) == 0)
		return;
	shape->loop_start = wave_read_32bit(chunk + smpl_loop_start);
	shape->loop_end = wave_read_32bit(chunk + smpl_loop_end);
}

static u16 read_tag(input_file &wave, const wave_head &head)
{
	constexpr u64 at_subformat = 44;
	u8 bytes[2];
	const bool extension = head.version == tag_extensible && head.fmt_length >= 40;
	return extension && !wave.read(at_subformat, bytes, sizeof bytes) ? wave_read_16bit(bytes)
									  : head.version;
}

// "" or why the file has no shape.
static std::string read_shape(const std::string &path, input_file &wave, wave_shape *shape)
{
	const std::string why = why_not_wave(path.c_str());
	wave_head head;
	if (!why.empty() || wave.measure(path.c_str()) || wave.open(path.c_str()) ||
		read_wave_head(wave, &head))
		return why.empty() ? "It cannot be read." : why;
	*shape = { .tag = read_tag(wave, head),
		.rate = head.sample_rate,
		.bits = head.bitspersample,
		.channels = head.channels,
		.frame_bytes = head.bytespersample };
	auto look = [&](const wave_chunk &chunk, u64) {
		if (chunk.is("smpl"))
			read_loop(wave, chunk, shape);
		if (!chunk.is("data"))
			return true;
		shape->data_at = chunk.at + 8;
		shape->data_bytes = wave_bytes_held(wave, chunk);
		shape->frames = shape->data_bytes / shape->frame_bytes;
		return false;
	};
	return walk_chunks(wave, head, look) ? "It cannot be read." : "";
}

// What an import reads of a file: itself, or the plain WAV file that is made of it.
static std::string read_import_shape(const std::string &path, wave_shape *shape)
{
	input_file wave;
	sound_shape sound;
	if (!foreign_sound(path.c_str(), &sound)) {
		const std::string why = why_not_sound(path.c_str());
		return why.empty() ? read_shape(path, wave, shape) : why;
	}
	const unsigned frame = sound.bits / 8 * sound.channels;
	*shape = { .tag = tag_pcm,
		.rate = sound.rate,
		.bits = sound.bits,
		.channels = sound.channels,
		.frame_bytes = frame,
		.frames = sound.frames,
		.data_bytes = sound.frames * frame,
		.kind = sound.kind,
		.exact = sound.exact };
	return "";
}

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
		shape.loop_end > shape.loop_start ? "yes" : "no" };
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

// ---- What an import gives -----------------------------------------------------------------------

struct conversion {
	int files = 0; // 0: these options do not convert this file
	unsigned channels = 0;
};

// The same choice of cases as import_wave makes.
static conversion conversion_of(const wave_shape &file, const import_options &options)
{
	const unsigned channels = static_cast<unsigned>(options.channels);
	const int mixing = options.mixing;
	if (!channels)
		return { 1, file.channels };
	if (mixing & import_split) {
		if (file.channels == 1)
			return { 1, channels };
		if (file.channels == 2)
			return { 2, 1 };
	} else if (file.channels == 2) {
		const bool one =
			mixing == import_left || mixing == import_right || mixing == import_mix;
		return { one ? 1 : 0, channels };
	}
	const bool two = mixing == import_left || mixing == import_right || mixing == import_both;
	return { channels == 2 && two ? 1 : 0, channels };
}

static u64 frames_after(const wave_shape &file, u32 rate)
{
	if (rate == file.rate)
		return file.frames;
	const double factor = static_cast<double>(file.rate) / rate;
	return static_cast<u64>(static_cast<double>(file.frames) / factor);
}

// ---- What an upload sends ------------------------------------------------------------------------

// An upload sends the Sample Dump Standard's packets: 127 bytes, each answered by 6, and one
// for every 40 bytes of the file's data. MIDI carries ten bits a byte.
double transfer_seconds(const _sampler_type &model, u64 bytes)
{
	constexpr double usb_bytes_per_second = 1000000;
	constexpr double midi_bytes_per_second = 3125;
	constexpr u64 packet = 127, answer = 6, packet_words = 40;
	if (model.sampler_flags & flag_usb)
		return static_cast<double>(bytes) / usb_bytes_per_second;
	const u64 packets = (bytes + packet_words - 1) / packet_words;
	return static_cast<double>(packets * (packet + answer)) / midi_bytes_per_second;
}

// The S900 takes files of another kind, and its driver refuses all others itself.
static bool sends_words(const _sampler_type &model)
{
	return !(model.sampler_flags & flag_usb) && model.sampler_type != model_s900;
}

static bool linear(const wave_shape &file)
{
	return file.tag == tag_pcm || file.tag == tag_extensible;
}

// A conversion of this program makes 16 bit mono of it.
static bool convertible(const wave_shape &file)
{
	if (!file.kind.empty())
		return file.channels <= 2;
	const unsigned width = file.bits == 24 ? 3 : 2;
	return linear(file) && (file.bits == 12 || file.bits == 16 || file.bits == 24) &&
	       (file.channels == 1 || file.channels == 2) &&
	       file.frame_bytes == width * file.channels;
}

static std::string advice_for(const wave_shape &file)
{
	if (!convertible(file))
		return "Convert it to 16 bit mono with another program first.";
	const char *depth = file.bits == 16 && file.kind.empty() ? "" : "Convert to 16 bit";
	if (file.channels == 1)
		return format_text("Import it with %s.", depth);
	return format_text("Import it with %s%s1 Channel and Mix Channels, or Create L/R files for "
			   "both.",
		depth, *depth ? ", " : "");
}

static const char *kind_of_words(const wave_shape &file)
{
	return file.tag == tag_float ? " float" : linear(file) ? "" : " compressed";
}

// The reader takes words out of frames of two or three bytes, and nothing out of others; the
// sampler is told of as many words as the file has bytes.
static upload_verdict verdict_of(const _sampler_type &model, const wave_shape &file)
{
	upload_verdict out = {
		.sends = true, .helps = convertible(file), .conversion = {}, .words = {}
	};
	if (!sends_words(model))
		return out;
	const double seconds = static_cast<double>(file.data_bytes) / file.rate;
	if (linear(file) && file.bits == 16 && file.channels == 1 && file.frame_bytes == 2) {
		out.words = format_text("arrives as %.02f s, the second half silent", seconds);
		return out;
	}
	out.sends = false;
	out.conversion = { .bits = file.bits == 16 && file.kind.empty() ? 0 : 16,
		.rate = 0,
		.channels = file.channels == 1 ? 0 : 1,
		.mixing = file.channels == 1 ? 0 : import_mix };
	const bool words = file.frame_bytes == 2 || file.frame_bytes == 3;
	const std::string arrival = words ? "noise" : format_text("%.02f s of silence", seconds);
	out.words = format_text("A file of %u bit%s and %u channel%s would arrive as %s. %s",
		file.bits, kind_of_words(file), file.channels, file.channels == 1 ? "" : "s",
		arrival.c_str(), advice_for(file).c_str());
	return out;
}

upload_verdict upload_check(const _sampler_type &model, const std::string &path)
{
	input_file wave;
	wave_shape file;
	// What is no WAV file at all has words of its own in the driver.
	if (!read_shape(path, wave, &file).empty())
		return { .sends = true, .helps = false, .conversion = {}, .words = {} };
	sound_shape sound;
	if (foreign_sound(path.c_str(), &sound))
		file.kind = sound.kind;
	return verdict_of(model, file);
}

static std::string duration(double seconds)
{
	const long whole = static_cast<long>(seconds + 0.5);
	if (whole < 1)
		return "less than a second";
	if (whole < 60)
		return format_text("about %ld s", whole);
	if (whole < 3600)
		return format_text("about %ld min %ld s", whole / 60, whole % 60);
	return format_text("about %ld h %ld min", whole / 3600, whole / 60 % 60);
}

static const _sampler_type *uploading_model()
{
	const _sampler_type *model =
		current_sampler ? get_sampler(static_cast<i32>(current_sampler->sampler_type))
				: nullptr;
	return model && model->uploadsample ? model : nullptr;
}

// ---- The preview ---------------------------------------------------------------------------------

static std::string name_of(const std::string &path)
{
	return path.substr(path.rfind('\\') + 1);
}

static const char *plural(unsigned long count)
{
	return count == 1 ? "" : "s";
}

// What all files together mean for the upload.
struct upload_sum {
	const _sampler_type *model;
	u64 bytes = 0; // of those that arrive
	int files = 0, refused = 0;
	std::string words; // of the first that arrives
	std::string first_refusal;
};

static void add_upload(upload_sum *sum, const wave_shape &file, int files)
{
	if (!sum->model)
		return;
	const upload_verdict verdict = verdict_of(*sum->model, file);
	sum->files += files;
	if (verdict.sends) {
		sum->bytes += file.data_bytes * static_cast<u64>(files);
		sum->words = verdict.words;
	} else {
		sum->refused += files;
		if (sum->first_refusal.empty())
			sum->first_refusal = verdict.words;
	}
}

static std::string upload_text(const upload_sum &sum)
{
	std::string text;
	if (sum.model && sum.bytes)
		text = format_text("\nUpload to %s: %s%s%s.", sum.model->sampler_brand,
			sum.files == 1 ? sum.words.c_str() : "",
			sum.files == 1 && !sum.words.empty() ? ", in " : "",
			duration(transfer_seconds(*sum.model, sum.bytes)).c_str());
	if (sum.refused)
		text += format_text("\nUpload to %s refused: %s", sum.model->sampler_brand,
			sum.first_refusal.c_str());
	return text;
}

// What import loses, or "".
static const char *loss_of(const wave_shape &file, unsigned channels)
{
	if (!file.exact)
		return "\nIt is deeper than 24 bits: the rest is rounded off.";
	if (file.channels == channels && channels > 1)
		return "\nOnly its left channel is kept. Choose 1 Channel and Create L/R files for "
		       "both.";
	return "";
}

// The words about what the options make of a file, which goes into the sum.
static std::string import_text(
	const wave_shape &file, const import_options &options, upload_sum *sum)
{
	const conversion to = conversion_of(file, options);
	if (!to.files)
		return "\nThese options do not convert it. Choose Keep original for the channels.";
	wave_shape result = file;
	result.rate = options.rate ? static_cast<u32>(options.rate) : file.rate;
	result.bits = options.bits ? static_cast<unsigned>(options.bits) : file.bits;
	result.channels = to.channels;
	result.frames = frames_after(file, result.rate);
	result.frame_bytes = (result.bits + 7) / 8 * to.channels;
	result.data_bytes = result.frames * result.frame_bytes;
	add_upload(sum, result, to.files);
	return format_text("\nbecomes %s%u Hz, %u bit, %u channel%s, %.02f s, %llu bytes%s",
		to.files == 2 ? "two files: " : "", result.rate, result.bits, to.channels,
		plural(to.channels), static_cast<double>(result.frames) / result.rate,
		static_cast<unsigned long long>(result.data_bytes), loss_of(file, to.channels));
}

// A file that is in the spool already is uploaded as it stands, unless the options are to
// change it first.
static std::string preview_of(
	const std::string &path, bool in_spool, const import_options &options, upload_sum *sum)
{
	input_file wave;
	wave_shape file;
	const bool as_it_is = in_spool && !options.bits && !options.rate && !options.channels;
	const std::string name = name_of(path);
	const std::string why =
		as_it_is ? read_shape(path, wave, &file) : read_import_shape(path, &file);
	if (!why.empty())
		return name + ": " + why;
	const std::string text = format_text("%s: %s%u Hz, %u bit%s, %u channel%s", name.c_str(),
		file.kind.empty() ? "" : (file.kind + ", ").c_str(), file.rate, file.bits,
		kind_of_words(file), file.channels, plural(file.channels));
	if (as_it_is) {
		add_upload(sum, file, 1);
		return text;
	}
	return text + import_text(file, options, sum);
}

// A drop of many files: what the first ones become, and the sum.
static constexpr std::size_t shown_files = 2;

void show_import_preview(std::span<const std::string> paths)
{
	const std::string local = paths.empty() ? path_of_local() : "";
	if (!local.empty())
		paths = { &local, 1 };
	const import_options options = chosen_import_options();
	upload_sum sum = { .model = uploading_model(), .words = {}, .first_refusal = {} };
	std::string text;
	for (std::size_t i = 0; i < paths.size(); i++) {
		const std::string words = preview_of(paths[i], !local.empty(), options, &sum);
		if (i < shown_files)
			text += (i ? "\n" : "") + words;
	}
	if (paths.size() > shown_files)
		text += format_text("\nand %zu more", paths.size() - shown_files);
	text += upload_text(sum);
	host.ui->set_text(window_samples, samples_import_preview, text.c_str());
}

} // namespace velmor
