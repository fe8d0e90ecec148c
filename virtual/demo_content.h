// demo_content.h - what the virtual samplers of the demo and the benchmarks hold
//
// Sounds are worked out here, none is recorded: drums, a looped string, a bass and a
// sung vowel, each a tenth to a third of a second, so that a transfer at the speed of a
// real MIDI cable stays bearable.
//
// Called by the demo, the TCP server, tests and benchmarks, before a machine is plugged in.
// Knows nothing of: wires, the system under src/.

#pragma once
#include "virtual/s1000.h"
#include "virtual/s900.h"

namespace velmor
{

// A drum kit, strings in two layers of velocity, a bass, a choir: four programs over
// eight samples.
void fill_s3000(s1000_machine &machine);
// An older, smaller set: a drum kit and a bass over four samples at 22050 Hz.
void fill_s1000(s1000_machine &machine);
// The set that suits the model.
void fill_demo(s1000_machine &machine);

// A drum kit, a bass and strings, soft and loud, of 12 bits: three programs over six
// samples, and a choir on the S950. Its panel is set to hear every exclusive channel.
void fill_demo(s900_machine &machine);

// programs of keygroups keygroups each, and samples of words words each, by number:
// "PROGRAM 001", "SAMPLE 001". Zones name the samples in turn.
void fill_for_benchmark(s1000_machine &machine, std::size_t programs, std::size_t keygroups,
	std::size_t samples, std::size_t words);

// Signed words of a sound at a rate; the loop is a whole number of its periods.
struct demo_sound {
	unsigned rate;
	std::vector<std::int16_t> words;
	std::uint32_t loop_first = 0, loop_last = 0; // no loop where they are equal
};
demo_sound kick_drum(unsigned rate);
demo_sound snare_drum(unsigned rate);
demo_sound hi_hat(unsigned rate, double seconds);
demo_sound string_note(unsigned rate, double frequency, double brightness);
demo_sound bass_note(unsigned rate, double frequency);
demo_sound sung_vowel(unsigned rate, double frequency);

} // namespace velmor
