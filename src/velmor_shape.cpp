// velmor_shape.cpp - what a WAV file of the user holds, what an import makes of it, what an upload sends
//
// Reads files of the user as they are, which may be anything. What cannot be imported is
// named by the words of why_not_wave, so that preview and import say the same.
//
// An upload over MIDI sends the words of 16-bit mono files; of all others it would send
// silence or noise, of another length. An upload over USB sends the file as it is.
//
// Knows nothing of: models (but what their rows say), windows, toolkits.

#include "src/velmor_shape.h"
#include "src/velmor_transfer.h"
#include "src/waveqx.h"
#include <algorithm>

namespace velmor
{

// ---- Reading a WAV file ---------------------------------------------------------------------

static void read_smpl(input_file &wave, const wave_chunk &smpl, wave_shape *shape)
{
	u8 chunk[smpl_loop_end + 4];
	constexpr int loops = 36, whole_loop = 36 + 24, unity_note_end = 16;
	if (smpl.size < unity_note_end || wave.read(smpl.at, chunk, sizeof chunk))
		return;
	shape->root = chunk[smpl_unity_note] & 0x7F;
	if (smpl.size < whole_loop || wave_read_32bit(chunk + loops) == 0)
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
std::string read_shape(const std::string &path, input_file &wave, wave_shape *shape)
{
	const std::string why = why_not_wave(path.c_str());
	wave_head head;
	if (!why.empty() || wave.measure(path.c_str()) || wave.open(path.c_str()) ||
		read_wave_head(wave, &head))
		return why.empty() ? tr("It cannot be read.") : why;
	*shape = { .tag = read_tag(wave, head),
		.rate = head.sample_rate,
		.bits = head.bitspersample,
		.channels = head.channels,
		.frame_bytes = head.bytespersample };
	auto look = [&](const wave_chunk &chunk, u64) {
		if (chunk.is("smpl"))
			read_smpl(wave, chunk, shape);
		if (!chunk.is("data"))
			return true;
		shape->data_at = chunk.at + 8;
		shape->data_bytes = wave_bytes_held(wave, chunk);
		shape->frames = shape->data_bytes / shape->frame_bytes;
		return false;
	};
	return walk_chunks(wave, head, look) ? tr("It cannot be read.") : "";
}

// What an import reads of a file: itself, or the plain WAV file that is made of it.
std::string read_import_shape(const std::string &path, wave_shape *shape)
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

// ---- What an import gives -----------------------------------------------------------------------

// The same choice of cases as import_wave makes.
conversion conversion_of(const wave_shape &file, const import_options &options)
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

u64 frames_after(const wave_shape &file, u32 rate)
{
	if (rate == file.rate)
		return file.frames;
	const double factor = static_cast<double>(file.rate) / rate;
	return static_cast<u64>(static_cast<double>(file.frames) / factor);
}

// ---- What an upload sends ------------------------------------------------------------------------

bool linear(const wave_shape &file)
{
	return file.tag == tag_pcm || file.tag == tag_extensible;
}

// A conversion of this program makes 16 bit mono of it.
bool convertible(const wave_shape &file)
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
		return tr("Convert it to 16 bit mono with another program first.");
	const char *depth = file.bits == 16 && file.kind.empty() ? "" : "Convert to 16 bit";
	if (file.channels == 1)
		return format_text(tr("Import it with %s."), depth);
	return format_text(
		tr("Import it with %s%s1 Channel and Mix Channels, or Create L/R files for "
		   "both."),
		depth, *depth ? ", " : "");
}

const char *kind_of_words(const wave_shape &file)
{
	return file.tag == tag_float ? tr(" float") : linear(file) ? "" : tr(" compressed");
}

// The reader takes words out of frames of two or three bytes, and nothing out of others; the
// sampler is told of as many words as the file has bytes.
upload_verdict verdict_of(const _sampler_type &model, const wave_shape &file)
{
	upload_verdict out = {
		.sends = true, .helps = convertible(file), .conversion = {}, .words = {}
	};
	if (!has_exact_uploads(model))
		return out;
	const double seconds = static_cast<double>(file.data_bytes) / file.rate;
	if (linear(file) && file.bits == 16 && file.channels == 1 && file.frame_bytes == 2) {
		out.words = exact_uploads()
				    ? tr("arrives as long as it is")
				    : format_text(tr("arrives as %.02f s, the second half silent"),
					      seconds);
		return out;
	}
	out.sends = false;
	out.conversion = { .bits = file.bits == 16 && file.kind.empty() ? 0 : 16,
		.rate = 0,
		.channels = file.channels == 1 ? 0 : 1,
		.mixing = file.channels == 1 ? 0 : import_mix };
	const bool words = file.frame_bytes == 2 || file.frame_bytes == 3;
	const std::string arrival =
		words ? tr("noise") : format_text(tr("%.02f s of silence"), seconds);
	out.words = format_text(
		file.channels == 1
			? tr("A file of %u bit%s and %u channel would arrive as %s. %s")
			: tr("A file of %u bit%s and %u channels would arrive as %s. %s"),
		file.bits, kind_of_words(file), file.channels, arrival.c_str(),
		advice_for(file).c_str());
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

} // namespace velmor
