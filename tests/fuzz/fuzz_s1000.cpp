// fuzz_s1000.cpp - a sampler of the S1000 family that answers anything
//
// The first byte chooses the operation and the model; the rest are the answers, one after
// the other: a length in two bytes (the low one first), then as many bytes. When they are
// used up the sampler is silent, and after a few silent answers somebody presses Stop.

#include "src/akais1000.h"
#include "tests/fuzz/limits.h"
#include <algorithm>
#include <cstring>

namespace velmor
{
namespace
{

std::span<const u8> answers;
std::span<u8> armed;
std::size_t arrived = 0;
int silent_answers = 0;

std::span<const u8> next_answer()
{
	if (answers.size() < 2)
		return {};
	const std::size_t length = answers[0] + 256u * answers[1];
	const auto answer = answers.subspan(2, std::min(length, answers.size() - 2));
	answers = answers.subspan(2 + answer.size());
	return answer;
}

int send(int, const unsigned char *, std::size_t)
{
	const auto answer = next_answer();
	arrived = std::min(answer.size(), armed.size());
	std::copy_n(answer.begin(), arrived, armed.begin());
	if (answer.empty() && ++silent_answers > 3)
		stop_progress();
	return 0;
}

const midi_service fuzzed_midi = {
	.outputs = [] { return 1; },
	.inputs = [] { return 1; },
	.output_name = [](int) { return "fuzz"; },
	.input_name = [](int) { return "fuzz"; },
	.open_output =
		[](int, int *handle) {
			*handle = 0;
			return 0;
		},
	.write = send,
	.leaving = [](int) { return 0L; },
	.close_output = [](int) {},
	.open_input =
		[](int, int *handle) {
			*handle = 0;
			return 0;
		},
	.arm =
		[](int, unsigned char *buffer, std::size_t capacity) {
			armed = { buffer, capacity };
			arrived = 0;
			return 0;
		},
	.received = [](int) { return arrived; },
	.listen = [](int, std::size_t) { return 19; },
	.take = [](int, unsigned char *, std::size_t) { return std::size_t{ 0 }; },
	.input_error = [](int) { return 0; },
	.disarm = [](int) { armed = {}; },
	.close_input = [](int) {},
	.on_arrival = [](void (*)()) {},
	.error_text = [](int) { return ""; },
};

void list(list_operation operation)
{
	_dev_status &status = *current_sampler->status;
	status.status = 1;
	operation(1, 5, &status);
	if (status.programs < 0 || status.programs > max_programs || status.samples < 0 ||
		status.samples > max_samples)
		std::abort();
	for (int i = 0; i < status.programs; i++)
		if (status.program[i].keygroups < 0 || status.program[i].keygroups > max_keygroups)
			std::abort();
}

void run(u8 operation)
{
	const _sampler_type &row = *get_sampler(operation & 8 ? model_s2000 : model_s1000);
	current_sampler->sampler_type = static_cast<u32>(row.sampler_type);
	switch (operation & 7) {
	case 0:
		return list(row.getstatus);
	case 1:
		return list(row.getproglist);
	case 2:
		return list(row.getsamplelist);
	case 3:
		return row.infosample(1, 5, "KICK");
	case 4:
		return row.downloadsample(1, 5, "KICK");
	case 5:
		return row.uploadsample((current_config_path + "\\sample\\LOCAL").c_str());
	default:
		return row.renamesample(1, 5, "KICK", operation & 16 ? nullptr : "HAT");
	}
}

// Forty words of a WAV file, in the order that the reader asks for.
void write_local(test_host &h)
{
	h.put_content(h.config + "\\sample\\LOCAL.wav",
		hex("52 49 46 46 98 00 00 00 57 41 56 45 66 6D 74 20 12 00 00 00 01 00 01 00 "
		    "44 AC 00 00 88 58 01 00 02 00 10 00 00 00 66 61 63 74 04 00 00 00 28 00 00 00 "
		    "73 6D 70 6C 24 00 00 00 00*36 64 61 74 61 50 00 00 00 11*80"));
}

void begin(test_host &h)
{
	h.use_sampler(model_s2000, 5);
	renew_limits(h);
	h.boxes.clear();
	h.progress = {};
	_dev_status &status = *current_sampler->status;
	status.programs = 0;
	status.samples = 1;
	free_sample_data(&status.sample[0]);
	copy_text(status.sample[0].name, "KICK");
	host.midi = &fuzzed_midi;
	selected_midi_in_interface = selected_midi_out_interface = 0;
	silent_answers = 0;
	forget_stop();
}

} // namespace
} // namespace velmor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	using namespace velmor;
	static test_host h;
	static bool local = (write_local(h), current_run_mode.diagnostics = false, true);
	if (!local || size < 1)
		return 0;
	begin(h);
	answers = { data + 1, size - 1 };
	try {
		run(data[0]);
	} catch (const process_ended &) {
		// A sample that is not in the list ends the process.
	}
	return 0;
}
