// fuzz_wave.cpp - any bytes as a WAV file or an AKP program: read, ordered, converted, imported
//
// The first byte chooses what is done, its highest bit whether it is logged. Results of the
// converters are compared with the slow telling of the rules.

#include "src/akais1000_exact.h"
#include "src/velmor_window.h"
#include "src/waveqx.h"
#include "tests/support/test_host.h"
#include "tests/support/wave_model.h"
#include <filesystem>

namespace velmor
{
namespace
{

using bytes = std::vector<u8>;
std::unique_ptr<test_host> h;
std::string in, out;

void require(bool holds)
{
	if (!holds)
		std::abort();
}

void forget_files()
{
	require(h->temporary_files() == 0);
	for (const std::string &path : { in, out, h->config + "\\sample\\out.wav" })
		host.files->remove(path.c_str());
	h->boxes.clear();
	h->progress = {};
	h->texts.clear();
	h->forget_log();
}

// The result of a converter: what the rules give, or no file at all.
void compare(bool done, const std::optional<bytes> &expected)
{
	require(done == expected.has_value() && h->content(out) == expected);
}

// Every word must be there to read, and the record must say how many there are.
void read_and_write(const bytes &)
{
	const std::string base = in.substr(0, in.size() - 4);
	_sample sample;
	if (create_sample_from_file(base.c_str(), &sample)) {
		volatile u32 sum = 0;
		for (u64 i = 0; i < sample.sample_length; i++)
			sum = sum + sample.sample_data[i];
		for (u64 i = 0; i < sample.sample_bytes; i++)
			sum = sum + sample.sample_byte[i];
		const akai_sample_facts facts = akai_facts_of_file(in, sample);
		require(facts.playback_mode <= 3 && facts.pitch <= 127 &&
			(!facts.looped || facts.loop_end <= sample.sample_length) &&
			(!facts.ranged || facts.end < sample.sample_length));
		sample.sample_length = sample.sample_bytes / 4;
		require(write_sample(&sample, out.substr(0, out.size() - 4).c_str()) == 0 &&
			h->content(out)->size() == 144 + 2 * sample.sample_length);
	} else {
		require(!sample.sample_data && !sample.sample_byte);
	}
	free_sample_data(&sample);
	u8 bits, channels, pitch;
	int rate;
	const bool known = get_wave_info(in.c_str(), &bits, &channels, &rate, &pitch);
	require(known || !why_not_wave(in.c_str()).empty());
	show_import_preview({ &in, 1 });
	(void)upload_check(*get_sampler(model_s3000), in);
}

void order(const bytes &source, u8 pitch)
{
	compare(akai_it(in.c_str(), out.c_str(), pitch), wave_model::akai_it(source, pitch));
}

// The slow telling holds every frame in memory.
bool small(const bytes &file, u64 rate)
{
	if (file.size() < 28 || file.size() > 8192)
		return false;
	const u64 source_rate = file[24] | file[25] << 8 | file[26] << 16 | u64{ file[27] } << 24;
	return rate <= source_rate * 16;
}

void convert(const bytes &source, std::span<const u8> how, bool into_spool)
{
	const unsigned channels = how[0] % 8, mode = how[1] % 4, bits = how[2];
	const u64 rate = 1 + (how[3] | how[4] << 8) * u64{ 3 };
	// The fields of a shorter fmt lie in what follows it.
	if (!small(source, rate) || (into_spool && source[16] < 16 && !source[17]))
		return;
	auto expected = wave_model::resample(source, channels, mode, bits, rate);
	bool done;
	if (into_spool) {
		if (expected)
			expected = wave_model::akai_it(*expected, 60);
		done = convert_for_spool(
			       { in.c_str(), out.c_str(), channels, mode, bits, rate, 60, 0 })
			       .end == conversion_end::done;
	} else {
		done = resample(0, in.c_str(), out.c_str(), channels, mode, bits, rate, 60);
	}
	compare(done, expected);
}

void read_program()
{
	static const auto program = std::make_unique<_program>();
	if (!import_akp_file(in.c_str(), program.get()))
		return;
	require(program->keygroups >= 0 && program->keygroups <= max_keygroups);
	for (const _keygroup &kg : program->keygroup)
		require(kg.keyzones >= 0 && kg.keyzones <= max_keyzones);
	import_required_samples(0, in.c_str(), program.get());
}

void run(u8 what, std::span<const u8> rest)
{
	const std::size_t head[] = { 0, 1, 5, 0, 5 };
	if (rest.size() < head[what] || rest.size() > 16384)
		return;
	const bytes source(rest.begin() + static_cast<long>(head[what]), rest.end());
	h->put_content(in, source);
	switch (what) {
	case 0:
		return read_and_write(source);
	case 1:
		return order(source, rest[0]);
	case 3:
		return read_program();
	default:
		return convert(source, rest, what == 4);
	}
}

void begin()
{
	h = std::make_unique<test_host>();
	h->use_sampler(model_s3000, 0);
	in = h->config + "\\in.wav";
	out = h->config + "\\out.wav";
}

} // namespace
} // namespace velmor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	using namespace velmor;
	if (size < 1)
		return 0;
	if (!h)
		begin();
	current_run_mode.diagnostics = data[0] & 0x80;
	run((data[0] & 0x7F) % 5, { data + 1, size - 1 });
	forget_files();
	return 0;
}
