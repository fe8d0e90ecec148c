// akais1000_kept.cpp - programs and sample headers of the S1000 family, kept whole and put back
//
//   request program          F0 47 cc 06 48 pp PP F7
//   program                  F0 47 cc 07 48 pp PP nibbles F7         writes or creates it
//   request keygroup         F0 47 cc 08 48 pp PP kk F7
//   keygroup                 F0 47 cc 09 48 pp PP kk nibbles F7      writes or adds it
//   request sample header    F0 47 cc 0A 48 ss SS F7
//
// Every byte of a block goes back but those two that say where it lies in the machine's memory,
// which are the machine's own. The number of keygroups of a program that exists is the machine's
// own too: where it has more than are kept, the program is written as a new one behind the last,
// and the old one deleted only then.
//
// Knows nothing of: files, windows.

#include "src/akaikept.h"
#include "src/akais1000_exact.h"
#include "src/akais1000_programs.h"
#include "src/akais1000_samples.h"
#include <algorithm>

namespace velmor
{

// WRITE KEYGROUP, head                       0     1     2     3     4     5     6     7
static constexpr std::array<u8, 8> keygroup_head = //
	{ 0xF0, 0x47, 0x00, 0x09, 0x48, 0x00, 0x00, 0x00 };
enum { // of a block
	block_kind = 0,
	block_address = 1, // two bytes
	smallest_block = program_unknown + 1,
};

bool akai_s1000_read_kept_program(int index, _program *program, raw_blocks *blocks)
{
	const std::optional<akai_bytes> common = program_in(ask_program(index), index);
	const int keygroups = common ? (*common)[program_keygroups] : 0;
	if (!common || keygroups > max_keygroups)
		return false;
	akai_s1000_program_from_block({ *common }, program);
	trim_akai_name(program->name);
	program->keygroups = keygroups;
	blocks->assign(1, *common);
	for (int k = 0; k < keygroups && !progress_stopped(); k++) {
		const std::optional<akai_bytes> keygroup =
			keygroup_in(ask_keygroup(index, k), index, k);
		if (!keygroup || keygroup->size() < smallest_block)
			return false;
		akai_s1000_keygroup_from_block({ *keygroup }, &program->keygroup[k]);
		blocks->push_back(*keygroup);
	}
	return !progress_stopped();
}

static akai_bytes as_sent(akai_bytes block, u8 kind)
{
	block[block_kind] = kind;
	block[block_address] = block[block_address + 1] = 0;
	return block;
}

static bool send_keygroup(int index, std::size_t k, const akai_bytes &keygroup)
{
	auto head = akai_message(keygroup_head, s1000_channel(), index);
	head[akai_keygroup] = static_cast<u8>(k);
	return is_done(ask_akai(with_block(head, as_sent(keygroup, block_is_keygroup))));
}

// The program's block first; false when the sampler did not take all of it.
static bool write_at(int index, const raw_blocks &blocks)
{
	if (!is_done(send_program(index, as_sent(blocks[0], block_is_program))))
		return false;
	for (std::size_t k = 1; k < blocks.size(); k++)
		if (!send_keygroup(index, k - 1, blocks[k]))
			return false;
	return true;
}

// Where the memory has no room for both, the old one makes room: what is written is kept.
static bool write_anew(int index, int count, const raw_blocks &blocks)
{
	if (write_at(count, blocks))
		return index < 0 || is_done(send_deletion(index));
	return index >= 0 && is_done(send_deletion(index)) && write_at(count - 1, blocks);
}

bool akai_s1000_write_kept_program(int index, const raw_blocks &blocks)
{
	const bool usable = std::ranges::all_of(
		blocks, [](const auto &block) { return block.size() >= smallest_block; });
	if (blocks.empty() || !usable || blocks.size() > std::size_t{ max_keygroups } + 1)
		return false;
	const std::optional<akai_answer> list = ask_program_list(save_box);
	if (!list)
		return false;
	if (index >= list->number())
		return false;
	const std::optional<akai_bytes> held =
		index < 0 ? std::nullopt : program_in(ask_program(index), index);
	if (index >= 0 && !held)
		return false;
	const bool fits = held && (*held)[program_keygroups] < blocks.size();
	return fits ? write_at(index, blocks) : write_anew(index, list->number(), blocks);
}

bool akai_s1000_read_kept_header(int index, raw_blocks *header)
{
	const akai_answer answer =
		ask_akai(akai_message(request_sample_header, s1000_channel(), index));
	akai_bytes block = akai_bytes_from_nibbles(answer.view().from(akai_block));
	if (!akai_is_header_of(answer, index) || block.size() < sample_header_size)
		return false;
	header->assign(1, std::move(block));
	return true;
}

bool akai_s1000_send_kept_sample(const std::string &path, const raw_blocks &header)
{
	return akai_s1000_upload_exactly(
		path.c_str(), header.empty() ? std::span<const u8>{} : header.front());
}

} // namespace velmor
