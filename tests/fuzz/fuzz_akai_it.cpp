// fuzz_akai_it.cpp - any bytes as a WAV file, brought into the order of the spool
//
// The result is compared with the slow telling of the rules, and read back.

#include "src/waveqx.h"
#include "tests/fuzz/memory_host.h"
#include "tests/support/wave_model.h"

using namespace velmor;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	if (size < 1 || size > 16384)
		return 0;
	memory_host::start();
	const memory_host::bytes source(data + 1, data + size);
	memory_host::files["in.wav"] = source;
	const bool done = akai_it("in.wav", "out.wav", data[0]);
	const auto expected = wave_model::akai_it(source, data[0]);
	if (done != expected.has_value() || memory_host::files.size() != 1u + done)
		std::abort();
	if (!done)
		return 0;
	if (memory_host::files["out.wav"] != *expected)
		std::abort();
	_sample sample;
	(void)create_sample_from_file("out", &sample);
	free_sample_data(&sample);
	return 0;
}
