// midi_model.h - what a Standard MIDI File holds, told slowly and plainly
//
// A second telling of the rules, for comparison with the program: one position in the whole
// file, one branch a rule, and nothing shared with src/. A file that is refused gives nothing.

#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace midi_model
{

using bytes = std::vector<std::uint8_t>;

struct event {
	std::uint64_t time, delta;
	int type, sub;
	bytes data;
};
struct track {
	std::vector<event> events;
	int numerator = 4, denominator = 4, bar = 0;
};
struct song {
	int format = 0, division = 0;
	std::vector<track> tracks;
};

std::optional<song> read(const bytes &file);

// "1920+960 51/3 [07 A1 20]": time, delta, types where it is a meta event, data. One a line.
std::string text_of(const event &e);

} // namespace midi_model
