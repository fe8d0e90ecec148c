// wave_model.h - what a conversion of a WAV file has to give, told slowly and plainly
//
// A second telling of the rules, for comparison with the program: the whole file in
// memory, one 64-bit word a value, one loop a rule, and nothing shared with src/.
// A file that is refused gives nothing.

#pragma once
#include <cstdint>
#include <optional>
#include <vector>

namespace wave_model
{

using bytes = std::vector<std::uint8_t>;

std::optional<bytes> resample(
	const bytes &source, unsigned channels, unsigned mode, unsigned bits, std::uint64_t rate);
std::optional<bytes> akai_it(const bytes &source, unsigned pitch);

} // namespace wave_model
