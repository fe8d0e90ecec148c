// demo_disks.h - what the disks of the demo's USB samplers hold
//
// Called by demo_usb.cpp, tests and benchmarks, before a machine is plugged in.
// Knows nothing of: the system under src/.

#pragma once
#include "virtual/disks.h"

namespace velmor
{

// A hard disk in two parts, one of them with a piano of 200 samples, a CD of strings, a CD of
// drums and a floppy.
void fill_demo_disks_s5000(disk_rack *disks);
// A hard disk and a CD of pads.
void fill_demo_disks_z8(disk_rack *disks);

// A volume "BENCH" of so many folders of so many files: "FOLDER 001", "SAMPLE 001.WAV".
void fill_disk_for_benchmark(disk_rack *disks, std::size_t folders, std::size_t files);

} // namespace velmor
