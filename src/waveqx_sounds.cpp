// waveqx_sounds.cpp - sound files of other kinds, made into plain WAV files
//
// import_wave reads WAV files of 12, 16 and 24 bits that begin with their format. Of all others
// it would make silence, noise or nothing. What a library can read of those becomes a WAV file
// of the same rate and channels first, with its loop and root note, and goes the same way.
//
// Knows nothing of: the library, windows beyond the number that shows an import.

#include "src/controls.h"
#include "src/velmor.h"
#include "src/waveqx.h"
#include "src/waveqx_chunks.h"
#include <algorithm>
#include <cmath>

namespace velmor
{

namespace
{

constexpr std::size_t block_values = 65536;

struct closes_sound {
	int sound = -1;
	~closes_sound()
	{
		if (sound >= 0)
			host.sound->close(sound);
	}
};

int open_sound(const char *path, sound_shape *shape)
{
	const int sound = host.sound->open(host.files->host_path(path).c_str(), shape);
	if (sound >= 0 && (shape->channels == 0 || shape->rate == 0)) {
		host.sound->close(sound);
		return -1;
	}
	return sound;
}

bool plain_head(const wave_head &head)
{
	constexpr u16 pcm = 1;
	const unsigned width = head.bitspersample == 24 ? 3 : 2;
	return head.riff && head.wave && head.version == pcm && head.channels != 0 &&
	       (head.bitspersample == 12 || head.bitspersample == 16 || head.bitspersample == 24) &&
	       head.bytespersample == width * head.channels;
}

// Its format says PCM in the first bytes of a GUID. An import that changes nothing leaves the GUID
// out and the number of the format as it was, and brings PCM alone.
bool extensible_pcm(input_file &file, wave_head *head)
{
	constexpr u16 extensible = 0xFFFE;
	constexpr u64 at_subformat = 44;
	u8 tag[2] = {};
	if (head->version != extensible)
		return true;
	if (head->fmt_length >= 40 && file.read(at_subformat, tag, sizeof tag))
		return false;
	head->version = head->fmt_length >= 40 ? wave_read_16bit(tag) : u16{ 1 };
	return true;
}

} // namespace

bool plain_wave(const char *path)
{
	input_file file;
	wave_head head;
	return why_not_wave(path).empty() && !file.measure(path) && !file.open(path) &&
	       !read_wave_head(file, &head) && extensible_pcm(file, &head) && plain_head(head);
}

bool foreign_sound(const char *path, sound_shape *shape)
{
	if (plain_wave(path))
		return false;
	const closes_sound closer = { open_sound(path, shape) };
	return closer.sound >= 0;
}

// ---- The plain file ----------------------------------------------------------------------

namespace
{

void append(std::vector<u8> *out, std::span<const u8> bytes)
{
	out->insert(out->end(), bytes.begin(), bytes.end());
}

// Root note and loop, as other programs write them.
std::vector<u8> smpl_chunk(const sound_shape &shape)
{
	const bool loops = shape.loop_end > shape.loop_start && shape.loop_end <= 0xFFFFFFFF;
	if (shape.root < 0 && !loops)
		return {};
	constexpr u32 middle_c = 60;
	constexpr int size = 36, loop_size = 24, at_loops = 36;
	std::vector<u8> out(8 + size + (loops ? loop_size : 0));
	std::memcpy(out.data(), "smpl", 4);
	wave_write_32bit(&out[4], static_cast<u32>(out.size() - 8));
	wave_write_32bit(&out[smpl_period], 1000000000 / shape.rate);
	wave_write_32bit(&out[smpl_unity_note],
		shape.root < 0 ? middle_c : static_cast<u32>(shape.root) & 0x7F);
	wave_write_32bit(&out[at_loops], loops);
	if (loops) {
		wave_write_32bit(&out[smpl_loop_start], static_cast<u32>(shape.loop_start));
		wave_write_32bit(&out[smpl_loop_end], static_cast<u32>(shape.loop_end));
	}
	return out;
}

std::vector<u8> plain_head_of(const sound_shape &shape, u64 data_size)
{
	const u32 frame = shape.bits / 8 * shape.channels;
	const std::vector<u8> smpl = smpl_chunk(shape);
	std::vector<u8> out(at_version + 16);
	std::memcpy(out.data(), "RIFF\0\0\0\0WAVEfmt \x10", 17);
	wave_write_32bit(
		&out[at_file_length], static_cast<u32>(out.size() + smpl.size() + data_size));
	wave_write_16bit(&out[at_version], 1);
	wave_write_16bit(&out[at_channels], shape.channels);
	wave_write_32bit(&out[at_sample_rate], shape.rate);
	wave_write_32bit(&out[at_bytespersecond], shape.rate * frame);
	wave_write_16bit(&out[at_bytespersample], frame);
	wave_write_16bit(&out[at_bitspersample], shape.bits);
	append(&out, smpl);
	u8 data[8] = { 'd', 'a', 't', 'a' };
	wave_write_32bit(data + 4, static_cast<u32>(data_size));
	append(&out, data);
	return out;
}

// Rounded to the nearest step; what is louder than full scale stays at it.
u32 step_of(double value, unsigned bits)
{
	const double full = std::ldexp(1.0, static_cast<int>(bits) - 1);
	if (std::isnan(value))
		return 0;
	const double step = std::clamp(std::nearbyint(value * full), -full, full - 1);
	return static_cast<u32>(static_cast<std::int32_t>(step));
}

// What a file really holds is known when it was read, so the length is counted first.
struct plain_copy {
	int sound;
	const sound_shape &shape;
	std::vector<double> values;
	std::vector<u8> bytes;
	u64 frames = 0;

	std::size_t read()
	{
		return host.sound->read(sound, values.data(), values.size() / shape.channels);
	}
	std::span<const u8> pack(std::size_t count)
	{
		const std::size_t width = shape.bits / 8;
		bytes.resize(count * width);
		for (std::size_t i = 0; i < count; i++) {
			const u32 step = step_of(values[i], shape.bits);
			if (width == 2)
				wave_write_16bit(&bytes[i * 2], step & 0xFFFF);
			else
				wave_write_24bit(&bytes[i * 3], step & 0xFFFFFF);
		}
		return bytes;
	}
};

bool go_on(bool shown)
{
	if (shown)
		host.ui->pump(0);
	return !shown || !progress_stopped();
}

// The frames that can be read, or a length that no WAV file tells.
bool count_frames(plain_copy *copy, bool shown)
{
	constexpr u64 most = 0xFFFFFFFFu - 1024;
	const u64 frame = u64{ copy->shape.bits / 8 } * copy->shape.channels;
	while (const std::size_t got = copy->read()) {
		copy->frames += got;
		if (copy->frames * frame > most) {
			import_failure = tr("It is longer than a WAV file can be.");
			return false;
		}
		if (!go_on(shown))
			return false;
	}
	if (!copy->frames)
		import_failure = tr("It holds no sound that can be read.");
	return copy->frames != 0;
}

int write_frames(plain_copy *copy, fresh_file &target, bool shown)
{
	for (u64 left = copy->frames; left;) {
		// Not a frame more than its head tells, should the file grow meanwhile.
		const std::size_t got = std::min<u64>(copy->read(), left);
		if (!got || !go_on(shown))
			return 0;
		const std::span<const u8> bytes = copy->pack(got * copy->shape.channels);
		if (const int code = target.write(bytes.data(), bytes.size()))
			return code;
		left -= got;
	}
	return target.finish_unsynced();
}

} // namespace

static bool make_plain_wave(const char *path, const char *target, int window)
{
	sound_shape shape;
	import_failure.clear();
	plain_copy copy = {
		.sound = open_sound(path, &shape), .shape = shape, .values = {}, .bytes = {}
	};
	const closes_sound first = { copy.sound };
	if (copy.sound < 0) {
		import_failure = why_not_sound(path);
		return false;
	}
	copy.values.resize(std::max<std::size_t>(block_values, shape.channels));
	log_line("[I] Reading [%s]: %s, %u Hz, %u channels\r\n", path, shape.kind.c_str(),
		shape.rate, shape.channels);
	if (!count_frames(&copy, window != 0))
		return false;
	sound_shape again;
	const closes_sound second = { copy.sound = open_sound(path, &again) };
	if (copy.sound < 0 || again.channels != shape.channels) {
		import_failure = tr("It changed while it was read.");
		return false;
	}
	fresh_file file;
	int code = file.open(target);
	const u64 data_size = copy.frames * (shape.bits / 8) * shape.channels;
	const std::vector<u8> head = plain_head_of(shape, data_size);
	if (!code)
		code = file.write(head.data(), head.size());
	if (!code)
		code = write_frames(&copy, file, window != 0);
	if (code)
		import_failure = write_failure(target, code);
	return !code && !file.is_open();
}

// ---- Import ----------------------------------------------------------------------------------

std::string why_not_sound(const char *path)
{
	sound_shape shape;
	if (plain_wave(path) || foreign_sound(path, &shape))
		return "";
	const std::string why = why_not_wave(path);
	return why.empty()
		       ? tr("This WAV file holds sound of a kind that this program cannot read. "
			    "Save it as a plain WAV file first.")
		       : why;
}

// Where a plain copy of that file lies for a moment, away from what somebody keeps in the folder
// temp. The spool takes its name from it.
static std::string place_for_plain(const std::string &path)
{
	const std::string name = path.substr(path.rfind('\\') + 1);
	std::string folder = current_config_path + "\\temp";
	for (const char *below : { "", "\\plain" }) {
		folder += below;
		(void)host.files->make_folder(folder.c_str()); // shows when it is written to
	}
	return folder + "\\" + file_name_of(name.substr(0, name.rfind('.'))) + ".wav";
}

int import_sound(const char *filename, int dialog, unsigned bits, int rate, unsigned channels,
	unsigned mixing_mode, unsigned original_pitch)
{
	sound_shape shape;
	if (!foreign_sound(filename, &shape) && why_not_sound(filename).empty())
		return import_wave(
			filename, dialog, bits, rate, channels, mixing_mode, original_pitch);
	const std::string plain = place_for_plain(filename);
	if (!make_plain_wave(filename, plain.c_str(), dialog)) {
		if (dialog)
			host.ui->set_text(dialog, samples_work_outcome,
				progress_stopped() ? "Stopped!" : "Cannot analyze original file");
		return 0;
	}
	const int done = import_wave(
		plain.c_str(), dialog, bits, rate, channels, mixing_mode, original_pitch);
	(void)host.files->remove(plain.c_str()); // the next import empties the folder
	return done;
}

} // namespace velmor
