// velmor_peaks.cpp - the lowest and the highest of any part of a long sound, at once

#include "src/velmor_peaks.h"
#include <algorithm>

namespace velmor
{

static constexpr peak nothing = { 32767, -32768 };

static peak both(const peak &a, const peak &b)
{
	return { std::min(a.low, b.low), std::max(a.high, b.high) };
}

void peak_pyramid::set_words(std::span<const std::int16_t> words)
{
	all = words;
	built = 0;
	levels.clear();
}

void peak_pyramid::add(std::size_t level, const peak &p)
{
	if (level == levels.size())
		levels.emplace_back();
	std::vector<peak> &row = levels[level];
	row.push_back(p);
	if (row.size() % step)
		return;
	peak above = nothing;
	for (auto it = row.end() - step; it != row.end(); ++it)
		above = both(above, *it);
	add(level + 1, above);
}

bool peak_pyramid::build(u64 words)
{
	const u64 target = std::min<u64>(built + std::max(words, step), all.size());
	for (; built + step <= target; built += step) {
		const auto first = all.begin() + static_cast<std::ptrdiff_t>(built);
		const auto [low, high] = std::minmax_element(first, first + step);
		add(0, { *low, *high });
	}
	return complete();
}

// The largest block that begins there and ends in time: its words, 0 for none.
u64 peak_pyramid::block_at(u64 first, u64 end, peak *found) const
{
	u64 words = 0, block = step;
	for (const std::vector<peak> &row : levels) {
		if (first % block || end - first < block || first / block >= row.size())
			break;
		words = block;
		*found = row[first / block];
		block *= step;
	}
	return words;
}

peak peak_pyramid::range(u64 first, u64 end) const
{
	end = std::min<u64>(end, all.size());
	peak p = nothing;
	const u64 unknown = std::max(first, built);
	const u64 stride = end > unknown + step * looks ? (end - unknown) / looks : 1;
	while (first < end) {
		peak block;
		if (const u64 words = block_at(first, end, &block)) {
			p = both(p, block);
			first += words;
			continue;
		}
		p = both(p, { all[first], all[first] });
		// Behind what is known, a few looks must do.
		first += first >= built ? stride : 1;
	}
	return p;
}

} // namespace velmor
