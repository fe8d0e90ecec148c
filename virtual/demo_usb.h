// demo_usb.h - what the virtual USB samplers of the demo and the benchmarks hold
//
// The sounds are those of demo_content.h, as WAV files.
//
// Called by the demo, tests and benchmarks, before a machine is plugged in.
// Knows nothing of: the bus, the system under src/.

#pragma once
#include "virtual/s5000.h"
#include "virtual/z4.h"

namespace velmor
{

// A drum kit, strings in two layers of velocity, a bass, a choir and a split of two of them;
// two multis on the S5000; disks. They call themselves "Demo S5000" and "Demo Z8".
void fill_demo(s5000 &machine);
void fill_demo(z4 &machine);

// So many programs of so many keygroups, "PROGRAM 001" and on, over one short sample.
void fill_for_usb_benchmark(s5000 &machine, std::size_t programs, std::size_t keygroups);

} // namespace velmor
