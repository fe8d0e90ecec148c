// waveqx_kinds.cpp - what a file is that cannot be imported, and what it lacks
//
// For a person who dropped a hundred files and has to find out about one of them. Looks at
// the first bytes, as import does, and at no more than import needs.
//
// Knows nothing of: windows, conversions.

#include "src/velmor.h"
#include "src/waveqx.h"
#include "src/waveqx_chunks.h"

namespace velmor
{

// Magic bytes of the files that musicians keep beside their WAV files.
struct known_kind {
	std::size_t at;
	std::string_view magic;
	const char *name;
};

static constexpr known_kind kinds[] = {
	{ 8, "APRG", own("an AKAI program file (AKP)") },
	{ 8, "sfbk", own("a SoundFont") },
	{ 8, "AVI ", own("a video (AVI)") },
	{ 8, "RMID", own("a MIDI file") },
	{ 8, "AIFF", own("an AIFF file") },
	{ 8, "AIFC", own("an AIFF file") },
	{ 4, "ftyp", own("an MP4 or M4A file") },
	{ 0, "RF64", own("an RF64 file (a WAV file for more than 4 GB)") },
	{ 0, "BW64", own("a BW64 file (a WAV file for more than 4 GB)") },
	{ 0, "RIFX", own("a WAV file in the byte order of other computers (RIFX)") },
	{ 0, "riff", own("a Wave64 file") },
	{ 0, "fLaC", own("a FLAC file") },
	{ 0, "OggS", own("an Ogg file") },
	{ 0, "ID3", own("an MP3 file") },
	{ 0, "\xFF\xFB", own("an MP3 file") },
	{ 0, "wvpk", own("a WavPack file") },
	{ 0, "caff", own("a Core Audio file (CAF)") },
	{ 0, ".snd", own("a Sun or NeXT sound file (AU)") },
	{ 0, "MThd", own("a MIDI file") },
	{ 0, "PK\x03\x04", own("a ZIP archive") },
	{ 0, "Rar!", own("a RAR archive") },
};

static const char *kind_of(const u8 (&first)[12])
{
	const std::string_view bytes(reinterpret_cast<const char *>(first), sizeof first);
	for (const known_kind &kind : kinds)
		if (bytes.substr(kind.at).starts_with(kind.magic))
			return kind.name;
	return nullptr;
}

static std::string printable(const u8 *name)
{
	std::string out;
	for (int i = 0; i < 4; i++)
		out += name[i] >= 0x20 && name[i] < 0x7F ? static_cast<char>(name[i]) : '.';
	return out;
}

// A RIFF file of form WAVE whose first chunk is another one.
static std::string why_not_format(const u8 *name)
{
	return format_text(tr("This WAV file begins with a chunk \"%s\", and only one that begins "
			      "with \"fmt \" can be read. Save it anew as a plain WAV file."),
		printable(name).c_str());
}

static std::string why_no_head(const u8 (&first)[16])
{
	static constexpr const char *advice = own("Save it as a WAV file first.");
	u8 start[12];
	std::memcpy(start, first, sizeof start);
	if (const char *kind = kind_of(start))
		return format_text(tr("This is %s. %s"), tr(kind), tr(advice));
	if (std::memcmp(first, "RIFF", 4) == 0 && std::memcmp(first + 8, "WAVE", 4) == 0)
		return why_not_format(first + 12);
	return format_text(
		tr("This is no WAV file: it does not begin with \"RIFF\" and \"WAVE\". %s"),
		tr(advice));
}

static std::string why_no_audio(input_file &file, const wave_head &head)
{
	bool data = false;
	auto look = [&data](const wave_chunk &chunk, u64) {
		data = chunk.is("data");
		return !data;
	};
	const int code = walk_chunks(file, head, look);
	if (!code && !data)
		return tr("This WAV file has no sound in it: its chunk \"data\" is missing. It may "
			  "have been cut short.");
	const char *missing = head.bytespersample == 0 ? tr("its header gives a frame no bytes")
			      : head.channels == 0     ? tr("its header tells no channels")
			      : head.sample_rate == 0  ? tr("its header tells no sampling rate")
						       : nullptr;
	if (code || !missing)
		return "";
	return format_text(tr("This WAV file is damaged: %s."), missing);
}

std::string why_not_wave(const char *path)
{
	input_file file;
	int code = file.measure(path);
	if (!code)
		code = file.open(path);
	u8 first[16] = {};
	if (!code)
		code = file.read(0, first, sizeof first);
	if (code)
		return read_failure(path, code);
	if (file.size == 0)
		return tr("This file is empty.");
	wave_head head;
	if ((code = read_wave_head(file, &head)))
		return read_failure(path, code);
	if (!head.riff || !head.wave)
		return why_no_head(first);
	if (file.size < smallest_file)
		return format_text(tr("This WAV file ends in its header: it has %llu bytes."),
			static_cast<unsigned long long>(file.size));
	return why_no_audio(file, head);
}

} // namespace velmor
