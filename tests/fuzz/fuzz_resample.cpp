// fuzz_resample.cpp - any bytes as a WAV file, converted in any way
//
// Five bytes choose the conversion, the rest is the file. Small results are compared
// with the slow telling of the rules.

#include "src/waveqx.h"
#include "tests/fuzz/memory_host.h"
#include "tests/support/wave_model.h"

using namespace velmor;

// The slow telling holds every frame in memory.
static bool small(const memory_host::bytes &file, u64 rate)
{
	if (file.size() < 28 || file.size() > 8192)
		return false;
	const u64 source_rate = file[24] | file[25] << 8 | file[26] << 16 | u64{ file[27] } << 24;
	return rate <= source_rate * 16;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	if (size < 5)
		return 0;
	memory_host::start();
	const unsigned channels = data[0] % 8, mode = data[1] % 4, bits = data[2];
	const u64 rate = 1 + (data[3] | data[4] << 8) * u64{ 3 };
	const memory_host::bytes source(data + 5, data + size);
	memory_host::files["in"] = source;
	const bool done = resample(0, "in", "out", channels, mode, bits, rate, 60);
	if (done != (memory_host::files.count("out") == 1) ||
		memory_host::files.size() != 1u + done)
		std::abort(); // half a file, or one left over
	if (!small(source, rate))
		return 0;
	const auto expected = wave_model::resample(source, channels, mode, bits, rate);
	if (expected && expected->size() > memory_host::disk)
		return 0;
	if (done != expected.has_value() || (done && memory_host::files["out"] != *expected))
		std::abort();
	return 0;
}
