// velmor_transcript.h - what went over the lines to a sampler, as a text that people and programs read
//
//	velmor-transcript 1
//	recorded: 2026-11-22 12:04:31
//	sampler: S3000/S3000XL
//	way: MIDI 'USB MIDI 1'
//	names: kept
//
//	0.000000 > midi 6: F0 47 00 00 48 F7
//	0.012345 < midi 21: F0 47 00 01 48 00*4 ...
//		7F 7F F7
//	1.500000 < usb 0 of 64 timeout:
//	2.000000 ! midi-out opened: USB MIDI 1
//
// An event is its time in seconds, its direction (> to the sampler, < from it, ! words about the
// line), the line, how many bytes, and the bytes; lines that begin with a tab go on with them.
// 00*4 is 00 four times. A USB read says how many bytes it asked for, and a transfer that did not
// end well how it ended.
//
// Knows nothing of: services, what the bytes mean.

#pragma once
#include "src/resource.h"
#include <set>
#include <span>
#include <string>
#include <vector>

namespace velmor
{

enum class wire_line : int {
	midi,    // the ports of the sampler
	monitor, // what the monitor listens to
	thru,    // what it passes on
	tcp,
	usb,
};

struct crossing {
	double time = 0; // seconds since the recording began
	bool sent = false;
	wire_line line = wire_line::midi;
	std::vector<u8> bytes = {};
	std::size_t asked = 0;   // by a read on the USB
	std::string failed = {}; // "timeout" and others; "": it ended well
	std::string note = {};   // words about the line, and nothing else
	int row = 0;             // of the file, from 1
};

struct transcript {
	std::string recorded, sampler, way, names;
	std::vector<crossing> crossings;
};

inline constexpr std::size_t largest_transcript = 256 << 20; // bytes of the file
inline constexpr std::size_t longest_crossing = 4 << 20;     // bytes
inline constexpr std::size_t most_crossings = 1 << 20;

std::string head_text(const transcript &t);
std::string crossing_text(const crossing &c);
// "", or a sentence that says in which line what is wrong. Nothing of a file is believed.
std::string read_transcript(std::string_view text, transcript *t);
std::string read_transcript_file(const std::string &path, transcript *t);

// Put other words of the same length where names stand, in whichever of the samplers' codes: the
// same ones for a name wherever it stands, so that what is asked still fits what was answered,
// and such that checksums hold. Names of one or two letters stay.
void leave_names_out(std::span<crossing> crossings, const std::set<std::string> &names);

} // namespace velmor
