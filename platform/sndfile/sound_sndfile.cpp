// sound_sndfile.cpp - sound files by libsndfile
//
// Values are asked for as doubles: of files of whole numbers every bit arrives, and floating
// point is not cut off as it would be when asked for as whole numbers.

#include "platform/sound.h"
#include <map>
#include <memory>
#include <sndfile.h>

namespace velmor
{

namespace
{

struct closes {
	void operator()(SNDFILE *file) const { sf_close(file); }
};
using open_file = std::unique_ptr<SNDFILE, closes>;

struct open_sound {
	open_file file;
	std::size_t channels;
};

std::map<int, open_sound> sounds;
int next_sound = 0;

// How deep a kind of coding is; what is not listed is no more than 16 bits.
struct depth {
	int subtype;
	unsigned bits;
	bool exact;
};
constexpr depth depths[] = {
	{ SF_FORMAT_PCM_S8, 16, true },
	{ SF_FORMAT_PCM_U8, 16, true },
	{ SF_FORMAT_PCM_16, 16, true },
	{ SF_FORMAT_PCM_24, 24, true },
	{ SF_FORMAT_PCM_32, 24, false },
	{ SF_FORMAT_FLOAT, 24, false },
	{ SF_FORMAT_DOUBLE, 24, false },
	{ SF_FORMAT_ULAW, 16, true },
	{ SF_FORMAT_ALAW, 16, true },
	{ SF_FORMAT_DWVW_24, 24, true },
	{ SF_FORMAT_ALAC_16, 16, true },
	{ SF_FORMAT_ALAC_20, 24, true },
	{ SF_FORMAT_ALAC_24, 24, true },
	{ SF_FORMAT_ALAC_32, 24, false },
};

depth depth_of(int format)
{
	const int subtype = format & SF_FORMAT_SUBMASK;
	for (const depth &row : depths)
		if (row.subtype == subtype)
			return row;
	return { subtype, 16, true };
}

// "WAV (Microsoft)" becomes "WAV".
std::string words_for(int format)
{
	SF_FORMAT_INFO info = {};
	info.format = format;
	if (sf_command(nullptr, SFC_GET_FORMAT_INFO, &info, sizeof info) || !info.name)
		return "unknown";
	const std::string words = info.name;
	return words.substr(0, words.find(" ("));
}

void read_instrument(SNDFILE *file, sound_shape *shape)
{
	SF_INSTRUMENT found = {};
	if (sf_command(file, SFC_GET_INSTRUMENT, &found, sizeof found) != SF_TRUE)
		return;
	if (found.basenote >= 0)
		shape->root = found.basenote;
	if (found.loop_count < 1 || found.loops[0].end <= found.loops[0].start)
		return;
	shape->loop_start = found.loops[0].start;
	shape->loop_end = found.loops[0].end - 1; // the library counts the frame behind it
}

int open_sound_file(const char *path, sound_shape *shape)
{
	SF_INFO info = {};
	open_file file(sf_open(path, SFM_READ, &info));
	if (!file || info.channels < 1 || info.samplerate < 1)
		return -1;
	const depth deep = depth_of(info.format);
	*shape = { .kind = words_for(info.format & SF_FORMAT_TYPEMASK) + ", " +
			   words_for(info.format & SF_FORMAT_SUBMASK),
		.rate = static_cast<unsigned>(info.samplerate),
		.channels = static_cast<unsigned>(info.channels),
		.bits = deep.bits,
		.exact = deep.exact,
		.frames = info.frames > 0 ? static_cast<std::uint64_t>(info.frames) : 0 };
	read_instrument(file.get(), shape);
	sounds[next_sound] = { std::move(file), shape->channels };
	return next_sound++;
}

std::size_t read_sound(int sound, double *values, std::size_t frames)
{
	const auto it = sounds.find(sound);
	if (it == sounds.end())
		return 0;
	const sf_count_t got =
		sf_readf_double(it->second.file.get(), values, static_cast<sf_count_t>(frames));
	return got > 0 ? static_cast<std::size_t>(got) : 0;
}

void close_sound(int sound)
{
	sounds.erase(sound);
}

} // namespace

extern const sound_service sndfile_sound;
const sound_service sndfile_sound = {
	.open = open_sound_file,
	.read = read_sound,
	.close = close_sound,
};

} // namespace velmor
