// akais900_kept.cpp - programs and sample headers of an S900, kept whole and put back
//
//   request program          F0 47 cc 02 40 nn 00 F7
//   program                  F0 47 cc .. 40 nn 00 head (keygroup*140)* xx F7   also sent to write it
//   request sample header    F0 47 cc 04 40 nn 00 F7
//   sample header            F0 47 cc .. 40 nn 00 pairs xx F7                  also sent to write it
//
// What comes is the message that writes it, so it is kept as it came. The machine says nothing to
// what is written: whoever writes reads the list again.
//
// Saving asks for the program whose number is its place in the list, and writes that one; so that
// one is kept.
//
// Knows nothing of: files, windows.

#include "src/akaikept.h"
#include "src/akais900.h"
#include <algorithm>

namespace velmor
{

enum {
	least_message = s900_data + 2
};

static int wire_channel()
{
	return static_cast<int>(current_sampler->sampler_sysex) - 1;
}

// Whole, and its checksum is that of its bytes.
static bool is_undamaged(const akai_answer &answer)
{
	const std::size_t size = answer.bytes.size();
	return size > least_message && is_s900_message(answer) &&
	       s900_checksum(answer.view(), s900_data, size - 2) == answer[size - 2];
}

bool akai_s900_read_kept_program(int index, _program *program, raw_blocks *blocks)
{
	if (index < 0 || index > s900_most_number)
		return false;
	const akai_answer answer =
		ask_s900_program(s900_message(request_s900_program, wire_channel(), index));
	const int keygroups = answer[s900_keygroup_count];
	const std::size_t whole = s900_first_keygroup + s900_keygroup_at(keygroups) + 2;
	if (!is_undamaged(answer) || answer.bytes.size() < whole || keygroups > max_keygroups)
		return false;
	block_to_record(akai_s900_program_parameters, answer.view(), *program);
	copy_text(program->name, s900_trimmed(s900_spaced_text(
					 answer.view().from(s900_program_name), s900_name_size)));
	program->number = index;
	program->keygroups = keygroups;
	for (int k = 0; k < keygroups; k++)
		akai_s900_keygroup_from_block(
			answer.view().from(s900_keygroup_at(k)), &program->keygroup[k]);
	blocks->assign(1, answer.bytes);
	return true;
}

static bool send_back(const raw_blocks &blocks, int number)
{
	if (blocks.size() != 1 || blocks[0].size() <= least_message || number < 0 ||
		number > s900_most_number)
		return false;
	std::vector<u8> message = blocks[0];
	message[akai_channel] = static_cast<u8>(wire_channel());
	message[akai_index] = static_cast<u8>(number);
	return is_s900_message({ message, false }) && tell_akai(message);
}

// Under the number that it had, whatever the place in the list is now.
bool akai_s900_write_kept_program(int, const raw_blocks &blocks)
{
	return !blocks.empty() && blocks[0].size() > akai_index &&
	       send_back(blocks, blocks[0][akai_index]);
}

static const _sample *listed(int index)
{
	const _dev_status *dev = current_sampler->status;
	return dev && index >= 0 && index < std::clamp(dev->samples, 0, max_samples)
		       ? &dev->sample[index]
		       : nullptr;
}

bool akai_s900_read_kept_header(int index, raw_blocks *header)
{
	const _sample *sample = listed(index);
	if (!sample)
		return false;
	const akai_answer answer =
		ask_akai(s900_message(request_s900_header, wire_channel(), sample->number));
	if (!is_undamaged(answer) || answer.size() < s900_header_size)
		return false;
	header->assign(1, answer.bytes);
	return true;
}

bool akai_s900_write_kept_header(int index, const raw_blocks &header)
{
	const _sample *sample = listed(index);
	return sample && send_back(header, sample->number);
}

// The sample of that name, or the one that has the number to which a new one goes.
int akai_s900_replaced(const std::string &name)
{
	const int same = listed_sample(name);
	const _dev_status *dev = current_sampler->status;
	const int count = dev ? std::clamp(dev->samples, 0, max_samples) : 0;
	for (int i = 0; same < 0 && i < count; i++)
		if (dev->sample[i].number == count)
			return i;
	return same;
}

} // namespace velmor
