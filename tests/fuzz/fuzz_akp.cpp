// fuzz_akp.cpp - any bytes as an AKP program file

#include "src/waveqx.h"
#include "tests/fuzz/memory_host.h"
#include <cstring>
#include <memory>

using namespace velmor;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	static const auto program = std::make_unique<_program>();
	memory_host::start();
	memory_host::files["C\\p.akp"].assign(data, data + size);
	if (!import_akp_file("C\\p.akp", program.get()))
		return 0;
	if (program->keygroups < 0 || program->keygroups > max_keygroups)
		std::abort();
	for (const _keygroup &kg : program->keygroup)
		if (kg.keyzones < 0 || kg.keyzones > max_keyzones)
			std::abort();
	import_required_samples(0, "C\\p.akp", program.get());
	return 0;
}
