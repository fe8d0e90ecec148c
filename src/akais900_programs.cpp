// akais900_programs.cpp - saving a program of an S900
//
//   request program          F0 47 cc 02 40 pp 00 F7
//   program                  F0 47 cc .. 40 pp 00 head (keygroup*140)* xx F7   also sent to write it
//
// A program is never built from nothing: it is read from the sampler, what the record knows is
// written over it, and it goes back. pp is its place in the list and not its number.
//
// What did not come whole is never written back. Where the sampler's program is not what the
// record was read from, the user is asked before it is overwritten.
//
// Knows nothing of: lists, windows.

#include "src/akaiprograms.h"
#include "src/akais900.h"
#include <algorithm>
#include <cstring>

namespace velmor
{

// ---- Before anything is written ----------------------------------------------------------

// The record at a place of the loaded list, or null after a box.
static _program *record_to_save(i32 program)
{
	_dev_status *status = current_sampler ? current_sampler->status : nullptr;
	if (!status || program < 0 || program >= std::min(status->programs, max_programs)) {
		show_box("ERROR",
			tr("The program is not in the sampler's list. Read the list again."));
		return nullptr;
	}
	_program *record = &status->program[program];
	if (program > s900_most_number || record->keygroups < 0 ||
		record->keygroups > s900_most_number) {
		show_box("ERROR",
			tr("The program [%s] cannot be sent: a message to this sampler counts to "
			   "%d, "
			   "and it is program %d with %d keygroups."),
			record->name, s900_most_number, program, record->keygroups);
		return nullptr;
	}
	return record;
}

// Where the checksum of a program of so many keygroups stands.
static std::size_t program_end(int keygroups)
{
	return s900_first_keygroup + s900_keygroup_at(keygroups);
}

// All that the program says it has, up to the end of the message.
static bool is_whole(const akai_answer &answer)
{
	const std::size_t end = program_end(answer[s900_keygroup_count]);
	return is_s900_message(answer) && answer.bytes.size() >= end + 2;
}

static std::string name_of(const akai_answer &answer)
{
	return s900_trimmed(
		s900_spaced_text(answer.view().from(s900_program_name), s900_name_size));
}

// What speaks against overwriting this with the record; "" for nothing.
static std::string doubts(const akai_answer &answer, const _program &record)
{
	const int stored = answer[s900_keygroup_count];
	const std::size_t end = program_end(stored);
	const std::string name = name_of(answer);
	std::string words;
	if (s900_checksum(answer.view(), s900_data, end) != answer[end])
		words += tr("It came damaged from the sampler: its checksum is wrong. ");
	if (!name.empty() && record.name[0] && name != record.name)
		words += format_text(
			tr("In its place the sampler has the program [%s]. "), name.c_str());
	if (record.keygroups < stored)
		words += format_text(
			tr("The sampler has %d keygroups of it and this computer %d; the "
			   "others will be gone. "),
			stored, record.keygroups);
	return words;
}

static bool may_overwrite(const akai_answer &answer, const _program &record)
{
	const std::string words = doubts(answer, record);
	return words.empty() ||
	       ask_box("WARNING", tr("Save the program [%s]? %s"), record.name, words.c_str());
}

// ---- Saving ------------------------------------------------------------------------------

static akai_answer read_stored_program(i32 program, const _program &record, int channel)
{
	const auto message = s900_message(request_s900_program, channel, program);
	log_line("[D] Requesting Program Index for %d of COMMON SYSEX (%d Bytes) [%s], Keygroups: "
		 "%d\r\n",
		program, static_cast<int>(message.size()), hex_text(message).c_str(),
		record.keygroups);
	akai_answer answer = ask_s900_program(message);
	log_line("[D] --> (%d Bytes) [%s]\r\n", answer.size(), hex_text(answer.bytes).c_str());
	return answer;
}

// The program that came, with the record over it.
static std::vector<u8> saved_program(
	const akai_answer &answer, i32 program, int channel, _program *record)
{
	const int stored = answer[s900_keygroup_count];
	const std::size_t end = program_end(record->keygroups);
	std::vector<u8> message(end + 2);
	std::copy_n(answer.bytes.begin(), std::min(end, program_end(stored)), message.begin());
	message[akai_channel] = static_cast<u8>(channel);
	message[akai_index] = static_cast<u8>(program);
	for (int k = 0; k < record->keygroups; k++) {
		const std::span<u8> block =
			std::span(message).subspan(s900_keygroup_at(k), s900_keygroup_end);
		if (k >= stored)
			akai_s900_new_keygroup(block);
		akai_s900_keygroup_to_block(&record->keygroup[k], block);
	}
	record_to_block(akai_s900_program_parameters, taken_back, *record, message);
	log_line("[D] RESULT[53] = 0x%02X\r\n", message[s900_keygroup_count]);
	message[end] = s900_checksum({ message }, s900_data, end);
	message[end + 1] = 0xF7;
	return message;
}

void akai_s900_save_program(i32 program, _program *)
{
	begin_program_operation();
	_program *record = record_to_save(program);
	if (!record)
		return program_ended(ending::refused, "");
	const int channel = static_cast<int>(current_sampler->sampler_sysex) - 1;
	log_line("[D] S900 Request for saving program [%d] --> [%s] (%d) SYSEX: %d\r\n", program,
		record->name, record->number, static_cast<int>(current_sampler->sampler_sysex));
	const akai_answer answer = read_stored_program(program, *record, channel);
	log_line("[D] Program has stored %d Keygroups\r\n", answer[s900_keygroup_count]);
	if (answer.port_failed)
		return program_ended(ending::no_answer, "");
	if (!is_whole(answer)) {
		show_box("ERROR",
			tr("The program [%s] was not saved, and the sampler has it as it was: %s"),
			record->name,
			answer.size() ? tr("what the sampler sent of it broke off.")
				      : tr("the sampler does not answer."));
		return program_ended(ending::no_answer, "");
	}
	if (!may_overwrite(answer, *record))
		return program_ended(ending::stopped, "");
	const std::vector<u8> message = saved_program(answer, program, channel, record);
	log_line("[D] Requesting update for Program Index for %d of COMMON SYSEX (%d Bytes) "
		 "[%s]\r\n",
		program, static_cast<int>(message.size()), hex_text(message).c_str());
	tell_akai(message);
}

} // namespace velmor
