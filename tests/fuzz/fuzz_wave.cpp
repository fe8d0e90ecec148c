// fuzz_wave.cpp - any bytes as a WAV file of the spool: read and looked at

#include "src/waveqx.h"
#include "tests/fuzz/memory_host.h"

using namespace velmor;

// Every word must be there to read, and the record must say how many there are.
static void use(const _sample &sample)
{
	volatile u32 sum = 0;
	for (u64 i = 0; i < sample.sample_length; i++)
		sum = sum + sample.sample_data[i];
	for (u64 i = 0; i < sample.sample_bytes; i++)
		sum = sum + sample.sample_byte[i];
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	memory_host::start();
	memory_host::files["C\\in.wav"].assign(data, data + size);
	_sample sample;
	if (create_sample_from_file("C\\in", &sample)) {
		use(sample);
		sample.sample_length = sample.sample_bytes / 4;
		if (write_sample(&sample, "C\\out") == 0 &&
			memory_host::files["C\\out.wav"].size() != 144 + 2 * sample.sample_length)
			std::abort();
	} else if (sample.sample_data || sample.sample_byte) {
		std::abort();
	}
	free_sample_data(&sample);
	u8 bits, channels, pitch;
	int rate;
	(void)get_wave_info("C\\in.wav", &bits, &channels, &rate, &pitch);
	return 0;
}
