// velmor_wave_edit.cpp - the file of a sample in memory, and what can be done with it

#include "src/velmor_wave_edit.h"
#include "src/waveqx.h"
#include "src/waveqx_chunks.h"
#include <algorithm>
#include <cmath>

namespace velmor
{

// Offsets in a smpl chunk beside those of waveqx_chunks.h; a loop record is one of many.
enum : std::size_t {
	smpl_loop_count = 36,
	smpl_own_size = 40,
	smpl_first_loop = 44,
	loop_size = 24,
	loop_start = 8, // in a loop record
	loop_end = 12,
	// In the samplers' own bytes, which follow the loops.
	own_start = smpl_start - smpl_first_loop - loop_size,
	own_end = smpl_end - smpl_first_loop - loop_size,
	own_bytes = 18,
};
static constexpr u64 largest_file = u64{ 512 } << 20; // more than any sampler holds

static constexpr const char *no_place_for_loop = own(
	"This file tells nothing to samplers, so there is no place for a loop. Import it first.");

// ---- Reading ------------------------------------------------------------------------------------

static unsigned width_of(unsigned bits)
{
	return bits == 24 ? 3 : 2;
}

static u64 chunk_end(const wave_sound &sound, std::size_t at)
{
	return at + 8 + u64{ wave_read_32bit(&sound.file[at + 4]) };
}

// The chunks ahead of the audio must be whole to be changed.
static std::string find_sound_chunks(input_file &file, const wave_head &head, wave_sound *sound)
{
	const auto look = [&](const wave_chunk &chunk, u64) {
		if (chunk.is("data")) {
			sound->data_at = chunk.at;
			sound->data_bytes = wave_bytes_held(file, chunk);
		} else if (chunk.is("fact") && chunk.size >= 4) {
			sound->fact_at = chunk.at;
		} else if (chunk.is("smpl") && chunk.size >= smpl_first_loop - 8) {
			sound->smpl_at = chunk.at;
		}
		return !sound->data_at;
	};
	if (walk_chunks(file, head, look))
		return tr("The file cannot be read.");
	sound->frame_bytes = head.bytespersample;
	sound->bits = head.bitspersample;
	sound->channels = head.channels;
	sound->rate = head.sample_rate;
	const bool sound_frames =
		sound->channels && sound->frame_bytes == width_of(sound->bits) * sound->channels;
	if (!sound->data_at || !sound_frames || sound->data_bytes < sound->frame_bytes)
		return tr("The file holds no sound.");
	sound->data_bytes -= sound->data_bytes % sound->frame_bytes;
	return "";
}

std::string read_wave_sound(const std::string &path, wave_sound *sound)
{
	*sound = {};
	input_file file;
	wave_head head;
	int code = file.measure(path.c_str());
	if (!code)
		code = file.open(path.c_str());
	if (code)
		return read_failure(path, code);
	if (!plain_wave(path.c_str()) || file.size > largest_file || read_wave_head(file, &head))
		return tr("Only WAV files of 12, 16 or 24 bits that a sampler can hold are changed "
			  "here. Import the file first.");
	if (const std::string why = find_sound_chunks(file, head, sound); !why.empty())
		return why;
	sound->file.resize(file.size);
	code = file.read(0, sound->file.data(), sound->file.size());
	return code ? read_failure(path, code) : "";
}

// ---- Values -------------------------------------------------------------------------------------

i32 wave_sound::value(u64 frame, unsigned channel) const
{
	const u8 *at = &file[data_at + 8 + frame * frame_bytes + channel * width_of(bits)];
	const u32 word = bits == 24 ? wave_read_24bit(at) : wave_read_16bit(at);
	const unsigned unused = 32 - bits; // 12 bits lie low in their word
	return static_cast<i32>(word << unused) >> unused;
}

void wave_sound::set_value(u64 frame, unsigned channel, double wanted)
{
	const double most = full_scale();
	const auto word = static_cast<u32>(std::lround(std::clamp(wanted, -most - 1, most)));
	u8 *at = &file[data_at + 8 + frame * frame_bytes + channel * width_of(bits)];
	if (bits == 24)
		wave_write_24bit(at, word);
	else
		wave_write_16bit(at, bits == 12 ? word & 0xFFF : word);
}

template <typename visitor> static void each_value(const wave_sound &sound, visitor visit)
{
	for (u64 frame = 0; frame < sound.frame_count(); frame++)
		for (unsigned channel = 0; channel < sound.channels; channel++)
			visit(frame, channel);
}

static double loudest(const wave_sound &sound)
{
	double peak = 0;
	each_value(sound, [&](u64 frame, unsigned channel) {
		peak = std::max(peak, std::abs(static_cast<double>(sound.value(frame, channel))));
	});
	return peak;
}

static void multiply(wave_sound *sound, double factor)
{
	each_value(*sound, [&](u64 frame, unsigned channel) {
		sound->set_value(frame, channel, factor * sound->value(frame, channel));
	});
}

std::string change_wave_volume(wave_sound *sound, double decibels, u64 *cut)
{
	const double factor = std::pow(10, decibels / 20), most = sound->full_scale() + 0.5;
	*cut = 0;
	each_value(*sound, [&](u64 frame, unsigned channel) {
		const double louder = factor * sound->value(frame, channel);
		*cut += louder >= most || louder < -most - 1;
	});
	multiply(sound, factor);
	return "";
}

std::string normalise_wave(wave_sound *sound)
{
	const double peak = loudest(*sound);
	if (peak == 0)
		return tr("The sample is silent, so there is nothing to make louder.");
	if (peak >= sound->full_scale())
		return tr("The sample is as loud as it can be already.");
	multiply(sound, sound->full_scale() / peak);
	return "";
}

// ---- Loops --------------------------------------------------------------------------------------

// Loop records that the chunk holds whole, whatever it says.
static std::size_t loops_of(const wave_sound &sound)
{
	if (!sound.smpl_at)
		return 0;
	const u64 room = chunk_end(sound, sound.smpl_at) - sound.smpl_at - smpl_first_loop;
	const u64 told = wave_read_32bit(&sound.file[sound.smpl_at + smpl_loop_count]);
	return static_cast<std::size_t>(std::min(told, room / loop_size));
}

static u8 *loop_record(wave_sound *sound, std::size_t index)
{
	return &sound->file[sound->smpl_at + smpl_first_loop + index * loop_size];
}

wave_part wave_sound::loop() const
{
	if (!loops_of(*this))
		return {};
	const u8 *record = &file[smpl_at + smpl_first_loop];
	const wave_part told = { wave_read_32bit(record + loop_start),
		wave_read_32bit(record + loop_end) };
	return told.empty() || told.end > frame_count() ? wave_part{} : told;
}

// Lengths of the file and of its audio, as they are now.
static void write_lengths(wave_sound *sound)
{
	wave_write_32bit(&sound->file[at_file_length], static_cast<u32>(sound->file.size() - 8));
	wave_write_32bit(&sound->file[sound->data_at + 4], static_cast<u32>(sound->data_bytes));
}

static void add_loop_record(wave_sound *sound)
{
	const std::size_t at = sound->smpl_at + smpl_first_loop;
	sound->file.insert(
		sound->file.begin() + static_cast<std::ptrdiff_t>(at), loop_size, u8{ 0 });
	sound->data_at += loop_size;
	if (sound->fact_at > at)
		sound->fact_at += loop_size;
	u8 *smpl = &sound->file[sound->smpl_at];
	wave_write_32bit(smpl + 4, wave_read_32bit(smpl + 4) + loop_size);
	wave_write_32bit(smpl + smpl_loop_count, 1);
	write_lengths(sound);
}

std::string set_wave_loop(wave_sound *sound, const wave_part &loop)
{
	const wave_part wanted = loop.empty() ? wave_part{} : loop;
	if (!sound->smpl_at)
		return tr(no_place_for_loop);
	if (wanted.end > sound->frame_count())
		return tr("The loop would end behind the sample.");
	if (wanted == sound->loop())
		return loop.empty() ? tr("The sample has no loop.")
				    : tr("The loop stands there already.");
	if (!loops_of(*sound))
		add_loop_record(sound);
	u8 *record = loop_record(sound, 0);
	wave_write_32bit(record + loop_start, static_cast<u32>(wanted.first));
	wave_write_32bit(record + loop_end, static_cast<u32>(wanted.end));
	return "";
}

std::string fade_wave_seam(wave_sound *sound, u64 *frames)
{
	const wave_part loop = sound->loop();
	if (loop.empty())
		return tr("The sample has no loop, so there is no seam to fade.");
	if (!loop.first)
		return tr("The loop begins with the sample, so there is nothing in front of it to "
			  "fade into.");
	*frames = std::min({ *frames, loop.first, loop.count() });
	const u64 into = loop.first - *frames, out = loop.end - *frames;
	for (u64 i = 0; i < *frames; i++)
		for (unsigned c = 0; c < sound->channels; c++) {
			const double part =
				static_cast<double>(i + 1) / static_cast<double>(*frames);
			sound->set_value(out + i, c,
				sound->value(out + i, c) * (1 - part) +
					sound->value(into + i, c) * part);
		}
	return "";
}

// ---- Trim ---------------------------------------------------------------------------------------

static void move_part(u8 *first, u8 *end, const wave_part &kept, bool or_nothing)
{
	const u64 low = std::clamp<u64>(wave_read_32bit(first), kept.first, kept.end) - kept.first;
	const u64 high = std::clamp<u64>(wave_read_32bit(end), kept.first, kept.end) - kept.first;
	const bool gone = or_nothing && high <= low;
	wave_write_32bit(first, gone ? 0 : static_cast<u32>(low));
	wave_write_32bit(end, gone ? 0 : static_cast<u32>(high));
}

// The samplers' own bytes, or null where the chunk has none.
static u8 *own_bytes_of(wave_sound *sound)
{
	const std::size_t at =
		sound->smpl_at + smpl_first_loop + loops_of(*sound) * std::size_t{ loop_size };
	const u8 *smpl = &sound->file[sound->smpl_at];
	const bool ours = std::equal(akai_defs, akai_defs + 4, smpl + smpl_manufacturer) &&
			  wave_read_32bit(smpl + smpl_own_size) == own_bytes &&
			  at + own_bytes <= chunk_end(*sound, sound->smpl_at);
	return ours ? &sound->file[at] : nullptr;
}

static void move_positions(wave_sound *sound, const wave_part &kept)
{
	if (sound->fact_at)
		wave_write_32bit(&sound->file[sound->fact_at + 8], static_cast<u32>(kept.count()));
	for (std::size_t i = 0; i < loops_of(*sound); i++) {
		u8 *record = loop_record(sound, i);
		move_part(record + loop_start, record + loop_end, kept, true);
	}
	if (u8 *own = sound->smpl_at ? own_bytes_of(sound) : nullptr)
		move_part(own + own_start, own + own_end, kept, false);
}

std::string trim_wave(wave_sound *sound, const wave_part &kept)
{
	if (kept.empty() || kept.end > sound->frame_count())
		return tr("Nothing would be left of the sample.");
	if (kept.count() == sound->frame_count())
		return tr(
			"Start and end are those of the sample. Drag them in the picture to where "
			"it is to be cut.");
	const auto at = sound->file.begin() + static_cast<std::ptrdiff_t>(sound->data_at + 8);
	const auto place = [&](u64 frame) {
		return at + static_cast<std::ptrdiff_t>(frame * sound->frame_bytes);
	};
	move_positions(sound, kept);
	sound->file.erase(place(kept.end), place(sound->frame_count()));
	sound->file.erase(at, place(kept.first));
	sound->data_bytes = kept.count() * sound->frame_bytes;
	write_lengths(sound);
	return "";
}

// ---- Zero crossings -----------------------------------------------------------------------------

u64 nearest_crossing(std::span<const std::int16_t> words, u64 at, u64 reach)
{
	const auto comes_up = [&](u64 i) {
		return i > 0 && i < words.size() && words[i - 1] < 0 && words[i] >= 0;
	};
	for (u64 away = 0; away <= reach; away++) {
		if (away <= at && comes_up(at - away))
			return at - away;
		if (comes_up(at + away))
			return at + away;
	}
	return at;
}

} // namespace velmor
