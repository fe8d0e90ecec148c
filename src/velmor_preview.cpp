// velmor_preview.cpp - what an import will give and how long its upload will take, and the waveform
//
// Reads files of the user as they are, which may be anything: every length is
// compared with the file's size before it is used, and the walk over the chunks
// ends after a fixed number.
//
// Knows nothing of: models (but what their rows say), toolkits.

#include "src/velmor_window.h"
#include "src/waveqx.h"
#include <algorithm>
#include <cstring>

namespace velmor
{

// ---- Reading a WAV file ---------------------------------------------------------------------

struct wave_shape {
	u32 rate = 0;
	unsigned bits = 0, channels = 0, frame_bytes = 0;
	u64 frames = 0;
	u64 data_at = 0, data_bytes = 0;
	u64 loop_start = 0, loop_end = 0; // no loop where both are 0
};

struct open_file {
	int file = -1;
	u64 size = 0;

	explicit open_file(const std::string &path)
	{
		file_info info;
		if (host.files->stat(path.c_str(), &info) == 0 && info.regular &&
			host.files->open(path.c_str(), file_read, &file) == 0)
			size = info.size;
		else
			file = -1;
	}
	~open_file()
	{
		if (file >= 0)
			host.files->close(file);
	}
	open_file(const open_file &) = delete;

	// False unless every byte was there.
	bool read_at(u64 at, void *bytes, std::size_t count) const
	{
		std::size_t moved = 0;
		return at <= size && count <= size - at && host.files->seek(file, at) == 0 &&
		       host.files->read(file, bytes, count, &moved) == 0 && moved == count;
	}
};

static void read_loop(const open_file &wave, u64 at, u32 size, wave_shape *shape)
{
	u8 body[36 + 24];
	if (size < sizeof body || !wave.read_at(at, body, sizeof body))
		return;
	if (wave_read_32bit(body + 28) == 0)
		return;
	shape->loop_start = wave_read_32bit(body + 36 + 8);
	shape->loop_end = wave_read_32bit(body + 36 + 12);
}

static bool read_format(const open_file &wave, u64 at, u32 size, wave_shape *shape)
{
	u8 body[16];
	if (size < sizeof body || !wave.read_at(at, body, sizeof body))
		return false;
	shape->channels = wave_read_16bit(body + 2);
	shape->rate = wave_read_32bit(body + 4);
	shape->frame_bytes = wave_read_16bit(body + 12);
	shape->bits = wave_read_16bit(body + 14);
	return shape->channels && shape->rate && shape->frame_bytes;
}

// As far as the data chunk, which need not be complete.
static bool read_shape(const open_file &wave, wave_shape *shape)
{
	u8 head[12];
	if (wave.file < 0 || !wave.read_at(0, head, sizeof head) || std::memcmp(head, "RIFF", 4) ||
		std::memcmp(head + 8, "WAVE", 4))
		return false;
	u64 at = sizeof head;
	for (int chunk = 0; chunk < 1000; chunk++) {
		u8 name_and_size[8];
		if (!wave.read_at(at, name_and_size, sizeof name_and_size))
			return false;
		const u32 size = wave_read_32bit(name_and_size + 4);
		at += sizeof name_and_size;
		if (!std::memcmp(name_and_size, "fmt ", 4) && !read_format(wave, at, size, shape))
			return false;
		if (!std::memcmp(name_and_size, "smpl", 4))
			read_loop(wave, at, size, shape);
		if (!std::memcmp(name_and_size, "data", 4)) {
			if (!shape->frame_bytes)
				return false;
			shape->data_at = at;
			shape->data_bytes = std::min<u64>(size, wave.size - at);
			shape->frames = shape->data_bytes / shape->frame_bytes;
			return true;
		}
		at += size;
	}
	return false;
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

static std::vector<std::int16_t> read_words(const open_file &wave, const wave_shape &shape)
{
	std::vector<std::int16_t> words;
	const unsigned width = shape.bits == 24 ? 3 : 2;
	std::vector<u8> data(shape.data_bytes);
	if (shape.frame_bytes < width || !wave.read_at(shape.data_at, data.data(), data.size()))
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
	const open_file wave(path);
	wave_shape shape;
	if (path.empty() || !read_shape(wave, &shape)) {
		host.ui->set_waveform(window_samples, samples_waveform, nullptr);
		return;
	}
	const std::vector<std::int16_t> words = read_words(wave, shape);
	const waveform_view view = { .words = words,
		.sample_rate = shape.rate,
		.loop_start = shape.loop_start,
		.loop_end = std::min(shape.loop_end, shape.frames) };
	host.ui->set_waveform(window_samples, samples_waveform, &view);
}

void show_local_selection()
{
	show_waveform(path_of_local());
	show_import_preview({});
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

static std::string transfer_text(u64 bytes)
{
	const _sampler_type *model =
		current_sampler ? get_sampler(static_cast<i32>(current_sampler->sampler_type))
				: nullptr;
	if (!model || !model->uploadsample)
		return "";
	return format_text("\nUpload to %s: %s.", model->sampler_brand,
		duration(transfer_seconds(*model, bytes)).c_str());
}

static std::string name_of(const std::string &path)
{
	return path.substr(path.rfind('\\') + 1);
}

static const char *plural(unsigned long count)
{
	return count == 1 ? "" : "s";
}

// Words about one file. Adds the bytes of the result, and is empty for a file like any other
// of a long list.
static std::string preview_of(const std::string &path, const import_options &options, u64 *bytes)
{
	wave_shape file;
	const std::string name = name_of(path);
	if (!read_shape(open_file(path), &file))
		return name + ": not a WAV file";
	const conversion to = conversion_of(file, options);
	std::string text = format_text("%s: %u Hz, %u bit, %u channel%s", name.c_str(), file.rate,
		file.bits, file.channels, plural(file.channels));
	if (!to.files)
		return text +
		       "\nThese options do not convert it. Choose Keep original for the channels.";
	const u32 rate = options.rate ? static_cast<u32>(options.rate) : file.rate;
	const unsigned bits = options.bits ? static_cast<unsigned>(options.bits) : file.bits;
	const u64 frames = frames_after(file, rate);
	const u64 size = frames * ((bits + 7) / 8) * to.channels;
	*bytes += size * static_cast<u64>(to.files);
	text += format_text("\nbecomes %s%u Hz, %u bit, %u channel%s, %.02f s, %llu bytes",
		to.files == 2 ? "two files: " : "", rate, bits, to.channels, plural(to.channels),
		static_cast<double>(frames) / rate, static_cast<unsigned long long>(size));
	if (file.bits == 8)
		text += "\n8 bit files come out silent: convert them to 16 bit elsewhere first.";
	else if (file.channels == to.channels && file.channels > 1)
		text += "\nOnly its left channel is kept. Choose 1 Channel and Create L/R files "
			"for both.";
	return text;
}

// A drop of many files: what the first ones become, and the sum.
static constexpr std::size_t shown_files = 2;

void show_import_preview(std::span<const std::string> paths)
{
	const std::string local = paths.empty() ? path_of_local() : "";
	if (!local.empty())
		paths = { &local, 1 };
	const import_options options = chosen_import_options();
	std::string text;
	u64 bytes = 0;
	for (std::size_t i = 0; i < paths.size(); i++) {
		const std::string words = preview_of(paths[i], options, &bytes);
		if (i < shown_files)
			text += (i ? "\n" : "") + words;
	}
	if (paths.size() > shown_files)
		text += format_text("\nand %zu more", paths.size() - shown_files);
	if (bytes)
		text += transfer_text(bytes);
	host.ui->set_text(window_samples, samples_import_preview, text.c_str());
}

} // namespace velmor
