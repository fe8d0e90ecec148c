// velmor_peaks.h - the lowest and the highest of any part of a long sound, at once
//
// A pyramid: the peaks of every 16 values, of every 16 of those, and so on. It grows in portions,
// so that ten minutes of sound are shown before they are looked through.
//
// Knows nothing of: files, toolkits.

#pragma once
#include "src/resource.h"
#include <span>
#include <vector>

namespace velmor
{

struct peak {
	std::int16_t low, high;
	bool operator==(const peak &) const = default;
};

class peak_pyramid
{
public:
	// The words stay where they are until others are set.
	void set_words(std::span<const std::int16_t> words);
	// Look at so many more words. True when all of them are known.
	bool build(u64 words);
	bool complete() const { return built + step > all.size(); }
	// Of the words from first to the one before end, of which there must be one. Exact where
	// the pyramid stands; of a long part behind that, what a few of its words tell.
	peak range(u64 first, u64 end) const;

private:
	static constexpr u64 step = 16, looks = 64;
	void add(std::size_t level, const peak &p);
	u64 block_at(u64 first, u64 end, peak *found) const;

	std::span<const std::int16_t> all;
	u64 built = 0; // words in whole blocks
	std::vector<std::vector<peak>> levels;
};

} // namespace velmor
