// fuzz_s900.cpp - an S900 that answers anything
//
// The first byte chooses the operation; the rest are the answers, one after the other: a length
// in two bytes (the low one first), then as many bytes. When they are used up the sampler is
// silent, and after a few silent answers somebody presses Stop.
//
// Whatever it answers, no message may hold a byte that would end it early.

#include "src/akais900.h"
#include "src/waveqx.h"
#include "tests/fuzz/limits.h"
#include <algorithm>
#include <cstdlib>

namespace velmor
{
namespace
{

std::span<const u8> answers;
std::span<u8> armed;
std::vector<u8> heard; // by the listener
bool listening = false;
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

// The number of a program or sample is the catalogue's own.
void check(std::span<const u8> message)
{
	for (std::size_t i = 1; i + 1 < message.size(); i++)
		if (message[i] >= 0x80 && i != akai_index && i != 3)
			std::abort();
}

int send(int, const unsigned char *bytes, std::size_t count)
{
	check({ bytes, count });
	const auto answer = next_answer();
	if (listening)
		heard.insert(heard.end(), answer.begin(), answer.end());
	arrived = std::min(answer.size(), armed.size());
	std::copy_n(answer.begin(), arrived, armed.begin());
	if (answer.empty() && ++silent_answers > 8)
		stop_progress();
	return 0;
}

std::size_t take(int, unsigned char *bytes, std::size_t capacity)
{
	const std::size_t count = std::min(capacity, heard.size());
	std::copy_n(heard.begin(), count, bytes);
	heard.erase(heard.begin(), heard.begin() + static_cast<std::ptrdiff_t>(count));
	return count;
}

int opened(int, int *handle)
{
	*handle = 0;
	return 0;
}

void closed(int)
{
	armed = {};
	listening = false;
}

const midi_service fuzzed_midi = {
	.outputs = [] { return 1; },
	.inputs = [] { return 1; },
	.output_name = [](int) { return "fuzz"; },
	.input_name = [](int) { return "fuzz"; },
	.open_output = opened,
	.write = send,
	.leaving = [](int) { return 0L; },
	.close_output = [](int) {},
	.open_input = opened,
	.arm =
		[](int, unsigned char *buffer, std::size_t capacity) {
			armed = { buffer, capacity };
			arrived = 0;
			return 0;
		},
	.received = [](int) { return arrived; },
	.listen =
		[](int, std::size_t) {
			listening = true;
			return 0;
		},
	.take = take,
	.input_error = [](int) { return 0; },
	.disarm = closed,
	.close_input = closed,
	.on_arrival = [](void (*)()) {},
	.error_text = [](int) { return ""; },
};

void list(list_operation operation)
{
	_dev_status &status = *current_sampler->status;
	operation(1, 0, &status);
	if (status.programs < 0 || status.programs > max_programs || status.samples < 0 ||
		status.samples > max_samples)
		std::abort();
	for (int i = 0; i < status.programs; i++)
		if (status.program[i].keygroups < 0 || status.program[i].keygroups > max_keygroups)
			std::abort();
}

void run(u8 operation)
{
	const _sampler_type &row = *get_sampler(model_s900);
	switch (operation & 7) {
	case 0:
		return list(row.getstatus);
	case 1:
		return list(row.getproglist);
	case 2:
		return list(row.getsamplelist);
	case 3:
		return row.downloadsample(1, 0, "KICK");
	case 4:
		return row.uploadsample((current_config_path + "\\sample\\LOCAL").c_str());
	default:
		return row.saveprogram(0, nullptr);
	}
}

// Forty words of 12 bits, in the order that the reader asks for.
void write_local(test_host &h)
{
	h.put_content(h.config + "\\sample\\LOCAL.wav",
		hex("52 49 46 46 98 00 00 00 57 41 56 45 66 6D 74 20 12 00 00 00 01 00 01 00 "
		    "00 19 00 00 00 00 00 00 02 00 0C 00 00 00 66 61 63 74 04 00 00 00 28 00 00 00 "
		    "73 6D 70 6C 24 00 00 00 00*36 64 61 74 61 50 00 00 00 11*80"));
	load_local_samples(nullptr);
}

void begin(test_host &h)
{
	h.use_sampler(model_s900, 0);
	renew_limits(h);
	h.boxes.clear();
	h.progress = {};
	_dev_status &status = *current_sampler->status;
	status.status = status.programs = status.samples = 1;
	copy_text(status.sample[0].name, "KICK");
	copy_text(status.program[0].name, "BASS");
	status.sample[0].number = status.program[0].number = 0;
	status.program[0].keygroups = 2;
	status.program[0].keygroup[0].low_note = status.program[0].keygroup[1].amp_attack = 200;
	host.midi = &fuzzed_midi;
	selected_midi_in_interface = selected_midi_out_interface = 0;
	silent_answers = 0;
	heard.clear();
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
	run(data[0]);
	return 0;
}
