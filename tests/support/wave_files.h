// wave_files.h - WAV and AKP files for tests, built of their chunks
//
// Written from the formats, with nothing of the program.

#pragma once
#include "tests/support/test_host.h"
#include <cstring>

namespace velmor
{

using bytes = std::vector<u8>;

inline bytes operator+(bytes a, const bytes &b)
{
	a.insert(a.end(), b.begin(), b.end());
	return a;
}

inline bytes word(u64 value, int count = 4)
{
	bytes out;
	for (int i = 0; i < count; i++)
		out.push_back(static_cast<u8>(value >> (8 * i)));
	return out;
}

inline bytes text(const char *characters)
{
	return { characters, characters + std::strlen(characters) };
}

inline bytes chunk(const char *name, const bytes &content)
{
	return text(name) + word(content.size()) + content;
}

struct format {
	u32 channels, bits, frame, rate;
};
inline constexpr format mono_16 = { 1, 16, 2, 44100 }, stereo_16 = { 2, 16, 4, 44100 };
inline constexpr format mono_24 = { 1, 24, 3, 44100 }, mono_12 = { 1, 12, 2, 44100 };

inline bytes fmt(const format &f, const bytes &extension = {}, u32 tag = 1)
{
	return chunk("fmt ", word(tag, 2) + word(f.channels, 2) + word(f.rate) +
				     word(f.rate * f.frame) + word(f.frame, 2) + word(f.bits, 2) +
				     extension);
}

inline bytes riff(const bytes &chunks, const char *form = "WAVE")
{
	return text("RIFF") + word(chunks.size() + 4) + text(form) + chunks;
}

// Every name in a folder, sorted.
inline std::vector<std::string> names_in(const std::string &folder)
{
	std::vector<std::string> out;
	host.files->list(folder.c_str(), &out);
	std::sort(out.begin(), out.end());
	return out;
}

inline bool logged_part(test_host &h, std::string_view part)
{
	for (const std::string &line : h.log())
		if (line.find(part) != line.npos)
			return true;
	return false;
}

} // namespace velmor
