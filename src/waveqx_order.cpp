// waveqx_order.cpp - bringing the chunks of a WAV file into the order of the spool
//
// Whatever order a file has and whatever else it carries, its result is
//
//   RIFF WAVE, fmt 18, fact, smpl, data
//
// which is the only one that the reader takes. Of two chunks of a name the last one counts,
// as it does in a conversion. A fact that came from the source keeps its count, even where
// a conversion changed the frames, and a smpl that came from the source keeps its unity
// note. A made smpl takes its period from the low 16 bits of the rate, as every file of
// this format does: 32825 ns at 96000 Hz.
//
// Knows nothing of: audio data, which it copies.

#include "src/velmor.h"
#include "src/waveqx.h"
#include "src/waveqx_chunks.h"

namespace velmor
{

// ---- The head ------------------------------------------------------------------------------

static void append(std::vector<u8> *out, std::span<const u8> bytes)
{
	out->insert(out->end(), bytes.begin(), bytes.end());
}

static void append_made_fact(std::vector<u8> *out, u32 frames)
{
	u8 fact[12] = { 'f', 'a', 'c', 't', 4 };
	wave_write_32bit(fact + 8, frames);
	append(out, fact);
}

static void append_made_smpl(std::vector<u8> *out, u32 rate, u32 pitch)
{
	u8 smpl[44] = { 's', 'm', 'p', 'l', 36 };
	std::memcpy(smpl + smpl_manufacturer, akai_defs, 8);
	wave_write_32bit(smpl + smpl_period, 1000000000 / rate);
	wave_write_32bit(smpl + smpl_unity_note, pitch & 0xFF);
	append(out, smpl);
}

const char *make_spool_head(std::span<const u8> head, const kept_chunks &kept, u32 data_size,
	u32 pitch, std::vector<u8> *out)
{
	const u32 frame = wave_read_16bit(&head[at_bytespersample]);
	const u32 rate = wave_read_16bit(&head[at_sample_rate]);
	if (kept.fact.empty() && frame == 0)
		return "block align is 0";
	if (kept.smpl.empty() && rate == 0)
		return "no sampling rate";
	out->assign(head.begin(), head.begin() + at_fact);
	if (wave_read_32bit(&head[at_fmt_length]) != at_fact - at_version) {
		wave_write_32bit(out->data() + at_fmt_length, at_fact - at_version);
		wave_write_16bit(out->data() + at_extension, 0);
	}
	if (kept.fact.empty())
		append_made_fact(out, data_size / frame);
	append(out, kept.fact);
	append(out, kept.smpl);
	if (kept.smpl.empty())
		append_made_smpl(out, rate, pitch);
	u8 data[8] = { 'd', 'a', 't', 'a' };
	wave_write_32bit(data + 4, data_size);
	append(out, data);
	wave_write_32bit(
		out->data() + at_file_length, static_cast<u32>(out->size() + data_size - 8));
	log_line("[D] AKAI_IT --> CHUNK [data] (%u Bytes) after LOOP DATA-SIZE: %llu\r\n",
		data_size, static_cast<unsigned long long>(out->size() + data_size));
	return nullptr;
}

// ---- A file that stands somewhere ------------------------------------------------------------

namespace
{

struct found_chunks {
	wave_chunk fact, smpl, data;
	bool has_fact, has_smpl, has_data;
};

} // namespace

static int find_chunks(input_file &file, const wave_head &head, found_chunks *found)
{
	*found = {};
	auto look = [found](const wave_chunk &chunk, u64 number) {
		if (number < logged_chunks)
			log_line("[D] AKAI_IT --> CHUNK [%.4s] (%u Bytes)\r\n", chunk.name,
				chunk.size);
		if (chunk.is("fact")) {
			found->fact = chunk;
			found->has_fact = true;
		} else if (chunk.is("smpl")) {
			found->smpl = chunk;
			found->has_smpl = true;
		} else if (chunk.is("data")) {
			found->data = chunk;
			found->has_data = true;
		}
		return !found->has_data;
	};
	const int code = walk_chunks(file, head, look);
	found->data.size = static_cast<u32>(wave_bytes_held(file, found->data));
	log_line("[D] AKAI_IT --> HAS_FACT_HEADER: %d, HAS_SMPL_HEADER: %d NEXT-CHUNK: [%.4s]\r\n",
		found->has_fact, found->has_smpl, found->data.name);
	return code;
}

// A chunk in memory, with its name and length; nothing for one that is not there. False
// without memory.
static bool load_chunk(
	input_file &file, const wave_chunk &chunk, bool there, owned_bytes *block, int *code)
{
	if (!there || *code)
		return true;
	const u64 size = 8 + u64{ chunk.size };
	*block = allocate_bytes(size);
	if (*block)
		*code = file.read(chunk.at, block->get(), static_cast<std::size_t>(size));
	return block->get();
}

static bool refused(const char *words, const char *name, int line)
{
	log_line("[F] (%s:%d) %s [%s]\r\n", __FILE_NAME__, line, words, name);
	return false;
}

static bool cannot_read(const input_file &file, const char *source)
{
	log_line("[F] (%s:%d) Cannot read %llu Bytes from [%s]\r\n", __FILE_NAME__, __LINE__,
		static_cast<unsigned long long>(file.size), source);
	return false;
}

static bool corrupted(const char *source, const char *fault)
{
	log_line("[F] (%s:%d) File-Header corrupted [%s] (%s)\r\n", __FILE_NAME__, __LINE__, source,
		fault);
	return false;
}

static bool write_result(input_file &file, const char *source, const char *target,
	const std::vector<u8> &head, const wave_chunk &data)
{
	fresh_file result;
	if (result.open(target))
		return refused("Cannot open", target, __LINE__);
	int source_code = 0;
	int code = result.write(head.data(), head.size());
	if (!code)
		code = copy_bytes(file, data.at + 8, data.size, result, &source_code);
	if (source_code)
		return cannot_read(file, source);
	if (!code)
		code = result.finish();
	if (code)
		log_line("[F] (%s:%d) Cannot write %llu Bytes to [%s]\r\n", __FILE_NAME__, __LINE__,
			static_cast<unsigned long long>(head.size() + data.size), target);
	return !code;
}

bool akai_it(const char *source, const char *target, u32 pitch)
{
	input_file file;
	if (file.measure(source))
		return refused("Cannot stat", source, __LINE__);
	if (file.size < smallest_file)
		return refused("Too small file", source, __LINE__);
	if (file.open(source))
		return refused("Cannot open", source, __LINE__);
	wave_head head;
	found_chunks found;
	u8 first[at_fact];
	if (read_wave_head(file, &head) || find_chunks(file, head, &found) ||
		file.read(0, first, sizeof first))
		return cannot_read(file, source);
	if (!found.has_data)
		return corrupted(source, "no data chunk");
	owned_bytes fact, smpl;
	int code = 0;
	if (!load_chunk(file, found.fact, found.has_fact, &fact, &code) ||
		!load_chunk(file, found.smpl, found.has_smpl, &smpl, &code))
		return refused("Out of memory", source, __LINE__);
	if (code)
		return cannot_read(file, source);
	auto whole = [](const owned_bytes &block, const wave_chunk &chunk) {
		return std::span<const u8>(block.get(), block ? 8 + std::size_t{ chunk.size } : 0);
	};
	std::vector<u8> made;
	const char *fault =
		make_spool_head(first, { whole(fact, found.fact), whole(smpl, found.smpl) },
			found.data.size, pitch, &made);
	if (fault)
		return corrupted(source, fault);
	return write_result(file, source, target, made, found.data);
}

} // namespace velmor
