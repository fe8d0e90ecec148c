// akais1000_lists.cpp - what an S1000 says it is and holds
//
//   request status           F0 47 cc 00 48 F7
//   status                   F0 47 cc 01 48 vv VV .. cc .. F7     21 bytes: version VV.vv
//   request program list     F0 47 cc 02 48 F7
//   request sample list      F0 47 cc 04 48 F7
//   program, sample list     F0 47 cc 03/05 48 nn NN (name*12) .. F7
//   request program          F0 47 cc 06 48 pp PP F7
//   request keygroup         F0 47 cc 08 48 pp PP kk F7
//
// A list is one message for each program, keygroup or sample, each waited for in turn.
// The name in a program's or sample's own block counts, not the one in the list.
//
// A sampler may say anything: counts are cut to what a _dev_status holds, and what did
// not come is not read.
//
// Knows nothing of: sample data, windows.

#include "src/akais1000.h"
#include "src/akais1000_samples.h"
#include <algorithm>

namespace velmor
{

// REQUEST STATUS                             0     1     2     3     4     5
static constexpr std::array<u8, 6> request_status = //
	{ 0xF0, 0x47, 0x00, 0x00, 0x48, 0xF7 };
enum {
	status_function = 0x01,
	status_minor = 5,
	status_major = 6,
	status_channel = 19
};
enum {
	status_size = 21
};

// REQUEST SAMPLE LIST                        0     1     2     3     4     5
static constexpr std::array<u8, 6> request_sample_list = //
	{ 0xF0, 0x47, 0x00, 0x04, 0x48, 0xF7 };
enum {
	program_list_function = 0x03,
	sample_list_function = 0x05,
};

enum {
	program_longest_refusal = 30
}; // what is not longer holds no program

// ---- Status ------------------------------------------------------------------------------

// Length or function byte, either will do.
static void take_status(const akai_answer &answer, _dev_status *status)
{
	if (answer.size() != status_size && answer[akai_function] != status_function)
		return;
	status->status = 1;
	status->exclusive_channel = static_cast<u8>(answer[status_channel] + 1);
	copy_text(
		status->version, format_text("%d.%d", answer[status_major], answer[status_minor]));
}

void akai_s1000_getstatus(u8 channel, u8 sysex_channel, _dev_status *status)
{
	log_line(
		"[D] Requesting Akai S1000 Status on Exclusive Channel: %d [SYSEX-CHANNEL: %d]\r\n",
		channel, sysex_channel);
	take_status(ask_akai(akai_message(request_status, sysex_channel)), status);
}

void akai_s2000_getstatus(u8 channel, u8 sysex_channel, _dev_status *status)
{
	const auto message = akai_message(request_status, sysex_channel);
	log_line("[D] Requesting Akai S2000 Status on Exclusive Channel: %d [SYSEX-CHANNEL: %d] "
		 "[%s]\r\n",
		channel, sysex_channel, hex_text(message).c_str());
	const akai_answer answer = ask_akai(message);
	log_line("Requested Akai S2000 Status on Exclusive Channel: %d [SYSEX-CHANNEL: %d] --> %d "
		 "Bytes [%s]\r\n",
		channel, sysex_channel, answer.size(), hex_text(answer.bytes).c_str());
	take_status(answer, status);
}

const char *akai_s1000_getplaymode(i32 mode)
{
	switch (mode) {
	case 0:
		return "NORMAL LOOPING";
	case 1:
		return "LOOP UNTIL RELEASE";
	case 2:
		return "NO LOOPING";
	case 3:
		return "PLAY TO SAMPLE END";
	}
	return "UNKNOWN";
}

// ---- What both lists share ----------------------------------------------------------------

// Name i of a list, trimmed, as far as it came. The end byte is no part of a name.
std::string akai_list_name(const akai_answer &list, int i)
{
	std::span<const u8> names = list.bytes;
	if (!names.empty() && names.back() == 0xF7)
		names = names.first(names.size() - 1);
	const std::size_t at = akai_list_names + static_cast<std::size_t>(i) * akai_name_size;
	const bounded_bytes name = bounded_bytes{ names }.from(at);
	const int count = std::min(static_cast<int>(name.size()), akai_name_size);
	char text[akai_name_size + 1];
	from_akai_ascii(name, count, text);
	trim_akai_name(text);
	return text;
}

// ---- Programs ------------------------------------------------------------------------------

// Programs whose keygroups were not read show none, so that what is left of an earlier list
// is never taken for theirs.
static void forget_keygroups(_dev_status *status, int from)
{
	for (int i = from; i < status->programs; i++)
		status->program[i].keygroups = 0;
	log_line("[W] Reading of programs ended early, %d of %d are complete\r\n", from,
		status->programs);
}

// Common data of one program, false when the list ends here.
static bool read_program(u8 sysex_channel, int index, _program *program)
{
	const akai_answer answer = ask_akai(akai_message(request_program, sysex_channel, index));
	if (akai_interrupted(answer))
		return false;
	if (answer.size() <= program_longest_refusal)
		return true;
	akai_s1000_program_from_block(
		{ akai_bytes_from_nibbles(answer.view().from(akai_block)) }, program);
	program->keygroups = akai_kept_count(program->keygroups, max_keygroups, "keygroups");
	return true;
}

// All keygroups of one program, false when the list ends here. Neither length nor function of
// an answer is tested: what did not come is zero.
static bool read_keygroups(u8 sysex_channel, int index, _program *program)
{
	const int keygroups = std::min(program->keygroups, max_keygroups);
	for (int k = 0; k < keygroups; k++) {
		auto message = akai_message(request_keygroup, sysex_channel, index);
		message[akai_keygroup] = static_cast<u8>(k & 0x7F);
		const akai_answer answer = ask_akai(message);
		if (akai_interrupted(answer))
			return false;
		akai_s1000_keygroup_from_block(
			{ akai_bytes_from_nibbles(answer.view().from(akai_keygroup_block)) },
			&program->keygroup[k]);
	}
	return true;
}

// First the common data of all, which the bar counts, then all keygroups.
static void read_programs(u8 sysex_channel, _dev_status *status)
{
	for (int i = 0; i < status->programs; i++) {
		set_progressbar(i + 1);
		if (!read_program(sysex_channel, i, &status->program[i]))
			return forget_keygroups(status, 0);
	}
	for (int i = 0; i < status->programs; i++)
		if (!read_keygroups(sysex_channel, i, &status->program[i]))
			return forget_keygroups(status, i);
}

void akai_s1000_getproglist(u8, u8 sysex_channel, _dev_status *status)
{
	if (status->status != 1) {
		log_line("[D] WARNING! Must do a 'getstatus' before\r\n");
		return;
	}
	const akai_answer list =
		ask_akai(akai_message(request_program_list, sysex_channel), akai_list_room);
	if (list[akai_function] != program_list_function)
		return;
	status->programs = akai_kept_count(list.number(), max_programs, "programs");
	show_progressbar(0, status->programs + 1, "Getting program information...");
	for (int i = 0; i < status->programs; i++)
		copy_text(status->program[i].name, akai_list_name(list, i));
	read_programs(sysex_channel, status);
	hide_progressbar(0);
}

// ---- Samples -------------------------------------------------------------------------------

// The header decides the name; a sample whose header did not come that far keeps the list's. What
// else it tells is shown beside the name.
static void read_sample_name(const akai_answer &answer, int index, _sample *sample)
{
	const std::vector<u8> block = akai_bytes_from_nibbles(answer.view().from(akai_block));
	if (block.size() >= sample_header_size && akai_is_header_of(answer, index))
		akai_s1000_sample_from_header({ block }, index, sample);
	if (block.size() >= sample_header_name + akai_name_size)
		copy_text(sample->name,
			akai_trimmed_name(bounded_bytes{ block }.from(sample_header_name)));
}

// No bar is shown meanwhile, so only closing the program asks for a Stop.
static void read_sample_names(u8 sysex_channel, _dev_status *status)
{
	akai_silence silence;
	forget_stop();
	for (int i = 0; i < status->samples && !silence.too_long(); i++) {
		const akai_answer answer =
			ask_akai(akai_message(request_sample_header, sysex_channel, i));
		if (akai_interrupted(answer))
			return;
		silence.hear(answer);
		read_sample_name(answer, i, &status->sample[i]);
	}
	if (silence.too_long())
		log_line("[W] The sampler no longer answers, the names of the list are kept\r\n");
}

void akai_s1000_getsamplelist(u8, u8 sysex_channel, _dev_status *status)
{
	if (status->status != 1) {
		log_line("WARNING! Must do a 'getstatus' before\r\n");
		return;
	}
	const akai_answer list =
		ask_akai(akai_message(request_sample_list, sysex_channel), akai_list_room);
	if (list[akai_function] != sample_list_function)
		return;
	status->samples = akai_kept_count(list.number(), max_samples, "samples");
	for (int i = 0; i < status->samples; i++) {
		copy_text(status->sample[i].name, akai_list_name(list, i));
		status->sample[i].number = i;
	}
	read_sample_names(sysex_channel, status);
}

// ---- Multis --------------------------------------------------------------------------------

// The family shows no multis, and is not asked for any.
void akai_s1000_getmultilist(u8 channel, u8 sysex_channel, _dev_status *status)
{
	if (status->status != 1) {
		log_line("WARNING! Must do a 'getstatus' before\r\n");
		return;
	}
	log_line("[D] Requesting Akai S1000 MULTILIST on Exclusive Channel: %d [SYSEX-CHANNEL: "
		 "%d]\r\n",
		channel, sysex_channel);
	status->multis = 0;
}

} // namespace velmor
