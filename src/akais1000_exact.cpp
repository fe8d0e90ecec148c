// akais1000_exact.cpp - what a file and a kept header tell the machine about a sample
//
//   sample header            F0 47 cc 0B 48 ss SS nibbles F7         also sent to write it
//
// The first of up to eight loops of twelve bytes stands at 38; the others, which a file cannot
// tell, go back with a kept header alone. What is not known of a header is never written: it may
// be the machine's own, as the places of a block in its memory are.
//
// Knows nothing of: windows, settings.

#include "src/akais1000_exact.h"
#include "src/akais1000_samples.h"
#include "src/waveqx.h"
#include "src/waveqx_chunks.h"
#include <algorithm>

namespace velmor
{

// ---- The file -----------------------------------------------------------------------------

// Offsets in a smpl chunk, and in the samplers' own bytes behind its loops.
enum : std::size_t {
	loops_told = 36,
	own_size_told = 40,
	first_loop = 44,
	loop_size = 24,
	loop_first = 8,
	loop_last = 12,
	own_size = 18,
	own_semitone = 3,
	own_fine = 4,
	own_playmode = 6,
	own_start = 10,
	own_end = 14,
};
static constexpr u32 largest_smpl = 4096;

struct file_facts {
	std::vector<u8> smpl = {}; // the whole chunk; empty for none
	u64 frames_told = 0;       // by fact

	bounded_bytes bytes() const { return { smpl }; }
	u32 at(std::size_t offset) const
	{
		u8 four[4];
		for (std::size_t i = 0; i < sizeof four; i++)
			four[i] = bytes()[offset + i];
		return wave_read_32bit(four);
	}
	// Loops that the chunk holds whole.
	std::size_t loops() const
	{
		const std::size_t room =
			smpl.size() < first_loop ? 0 : (smpl.size() - first_loop) / loop_size;
		return std::min<std::size_t>(at(loops_told), room);
	}
	// Where the samplers' own bytes begin, or 0.
	std::size_t own() const
	{
		const std::size_t place = first_loop + loops() * loop_size;
		const bool ours = at(smpl_manufacturer) == 0x01000047 &&
				  at(own_size_told) == own_size && place + own_size <= smpl.size();
		return ours ? place : 0;
	}
};

static file_facts read_file_facts(const std::string &path)
{
	file_facts facts;
	input_file wave;
	wave_head head;
	if (wave.measure(path.c_str()) || wave.open(path.c_str()) || read_wave_head(wave, &head))
		return facts;
	const auto look = [&](const wave_chunk &chunk, u64) {
		u8 count[4] = {};
		if (chunk.is("fact") && !wave.read(chunk.at + 8, count, sizeof count))
			facts.frames_told = wave_read_32bit(count);
		if (chunk.is("smpl")) {
			facts.smpl.resize(8 + std::min(chunk.size, largest_smpl));
			if (wave.read(chunk.at, facts.smpl.data(), facts.smpl.size()))
				facts.smpl.clear();
		}
		return !chunk.is("data");
	};
	(void)walk_chunks(wave, head, look);
	return facts;
}

static void take_loop(const file_facts &file, u64 frames, akai_sample_facts *facts)
{
	const u32 start = file.at(first_loop + loop_first), end = file.at(first_loop + loop_last);
	facts->looped = file.loops() && start < end && end <= frames;
	if (facts->looped) {
		facts->loop_start = start;
		facts->loop_end = end;
	}
}

// A conversion to another rate leaves the samplers' start and end behind, and the number of
// frames that fact tells: where that is not the file's own, neither holds.
static void take_own(const file_facts &file, std::size_t own, u64 frames, akai_sample_facts *facts)
{
	facts->semitone_tune = file.bytes()[own + own_semitone];
	facts->fine_tune = file.bytes()[own + own_fine];
	const u8 mode = recalculate_playmode(file.bytes()[own + own_playmode]);
	if (mode <= akai_most_playback)
		facts->playback_mode = mode;
	const u32 start = file.at(own + own_start), end = file.at(own + own_end);
	facts->ranged = file.frames_told == frames && start < end && end <= frames;
	if (facts->ranged) {
		facts->start = start;
		facts->end = static_cast<u32>(std::min<u64>(end, frames - 1));
	}
}

akai_sample_facts akai_facts_of_file(const std::string &path, const _sample &sample)
{
	const file_facts file = read_file_facts(path);
	akai_sample_facts facts;
	facts.pitch = sample.original_pitch & 0x7F;
	take_loop(file, sample.sample_length, &facts);
	facts.playback_mode = facts.looped ? akai_plays_loop : akai_plays_no_loop;
	if (const std::size_t own = file.own())
		take_own(file, own, sample.sample_length, &facts);
	if (!facts.looped && facts.playback_mode <= akai_plays_loop_until_release)
		facts.playback_mode = akai_plays_no_loop;
	return facts;
}

bool akai_goes_exactly(const _sample &sample)
{
	return sample.bytespersample == 2 && sample.bitspersample == 16 && sample.channels == 1;
}

// ---- The header ---------------------------------------------------------------------------

// Bytes of a kept header that go back: [first, end).
static constexpr struct {
	std::size_t first, end;
} kept_bytes[] = {
	{ header_rate_flag, header_pitch + 1 },
	{ sample_header_name, sample_header_name + akai_name_size },
	{ header_loops, header_loops + 1 },
	{ header_playback_mode, header_semitone_tune + 1 },
	{ header_start, header_unknown }, // with all eight loops
	{ header_rate, header_rate + 2 },
};

static void put_kept(const std::vector<u8> &kept, std::vector<u8> *block)
{
	const std::size_t common = std::min(kept.size(), block->size());
	for (const auto &part : kept_bytes)
		for (std::size_t i = part.first; i < std::min(part.end, common); i++)
			(*block)[i] = kept[i];
}

static void put_loop(const akai_sample_facts &facts, u8 *block)
{
	block[header_loops] = std::max<u8>(block[header_loops], 1);
	set_akai8_dword(facts.loop_end, block + header_loop);
	set_akai8_word(0, block + header_loop_fine);
	set_akai8_dword(facts.loop_end - facts.loop_start, block + header_loop_coarse);
}

void akai_put_facts(const akai_sample_facts &facts, std::vector<u8> *block)
{
	if (block->size() < sample_header_size)
		return;
	if (!facts.kept.empty())
		return put_kept(facts.kept, block);
	u8 *bytes = block->data();
	bytes[header_pitch] = facts.pitch;
	bytes[header_playback_mode] = facts.playback_mode;
	bytes[header_fine_tune] = facts.fine_tune;
	bytes[header_semitone_tune] = facts.semitone_tune;
	if (facts.ranged) {
		set_akai8_dword(facts.start, bytes + header_start);
		set_akai8_dword(facts.end, bytes + header_end);
	}
	if (facts.looped)
		put_loop(facts, bytes);
}

std::vector<u8> akai_s1000_sample_header(u8 sysex_channel, const char *name)
{
	const int index = akai_find_sample(name, false);
	if (index >= akai_samples_listed())
		return {};
	const akai_answer answer =
		ask_akai(akai_message(request_sample_header, sysex_channel, index));
	if (!akai_is_header_of(answer, index))
		return {};
	std::vector<u8> block = akai_bytes_from_nibbles(answer.view().from(akai_block));
	if (block.size() < sample_header_size)
		block.clear();
	return block;
}

} // namespace velmor
