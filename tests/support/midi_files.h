// midi_files.h - Standard MIDI Files for tests, built of their chunks, and those beside the sources
//
// Written from the format, with nothing of the program.

#pragma once
#include "tests/support/test_host.h"
#include <algorithm>
#include <filesystem>

namespace velmor
{

inline std::vector<u8> operator+(std::vector<u8> a, const std::vector<u8> &b)
{
	a.insert(a.end(), b.begin(), b.end());
	return a;
}

inline std::vector<u8> big(u64 value, int count)
{
	std::vector<u8> out;
	for (int i = count - 1; i >= 0; i--)
		out.push_back(static_cast<u8>(value >> (8 * i)));
	return out;
}

inline std::vector<u8> midi_head(int tracks, int division, int format = 1)
{
	return hex("4D 54 68 64 00 00 00 06") + big(format, 2) + big(tracks, 2) + big(division, 2);
}

inline std::vector<u8> midi_track(const std::vector<u8> &events, std::int64_t length = -1)
{
	return hex("4D 54 72 6B") + big(length < 0 ? events.size() : static_cast<u64>(length), 4) +
	       events;
}

inline std::vector<u8> midi_song(int division, const std::vector<std::string> &tracks)
{
	std::vector<u8> file = midi_head(static_cast<int>(tracks.size()), division);
	for (const std::string &events : tracks)
		file = file + midi_track(hex(events));
	return file;
}

// Files of others that lie beside the checked-out sources, and are no part of them; none where
// there is no such folder.
inline std::vector<std::filesystem::path> files_of_others(const char *folder)
{
	std::vector<std::filesystem::path> paths;
	const char *source = std::getenv("VELMOR_SOURCE");
	std::filesystem::path at = source ? source : std::filesystem::current_path().string();
	for (int up = 0; up < 4 && paths.empty(); up++, at = at.parent_path()) {
		std::error_code none;
		for (const auto &entry :
			std::filesystem::directory_iterator(at / "shared" / "data" / folder, none))
			paths.push_back(entry.path());
	}
	std::ranges::sort(paths);
	return paths;
}

} // namespace velmor
