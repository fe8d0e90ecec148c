// waveqx_order.cpp - bringing the chunks of a WAV file into the order of the spool
//
// Whatever order a file has and whatever else it carries, its result is
//
//   RIFF WAVE, fmt 18, fact and smpl as they stood or made here, data
//
// A fact that came from the source keeps its count, even where a conversion changed
// the frames, and a smpl that came from the source keeps its unity note. A made smpl
// takes its period from the low 16 bits of the rate, as every file of this format
// does: 32825 ns at 96000 Hz.
//
// Knows nothing of: audio data, which it copies.

#include "src/velmor.h"
#include "src/waveqx.h"
#include "src/waveqx_chunks.h"
#include <vector>

namespace velmor
{

namespace
{

struct ordered_chunks {
	std::vector<wave_chunk> kept; // fact and smpl, in the order in which they stood
	wave_chunk data;
	bool has_fact, has_smpl, has_data;
};

} // namespace

static int find_chunks(input_file &file, const wave_head &head, ordered_chunks *found)
{
	*found = {};
	u64 at = u64{ head.fmt_length } + 20;
	for (int i = 0; i < max_wave_chunks && at < file.size; i++) {
		wave_chunk chunk = {};
		if (const int code = read_wave_chunk(file, at, &chunk))
			return code;
		log_line("[D] AKAI_IT --> CHUNK [%.4s] (%u Bytes)\r\n", chunk.name, chunk.size);
		if (chunk.is("data")) {
			found->data = chunk;
			found->data.size = static_cast<u32>(wave_bytes_held(file, chunk));
			found->has_data = true;
			break;
		}
		const bool fact = chunk.is("fact"), smpl = chunk.is("smpl");
		found->has_fact |= fact;
		found->has_smpl |= smpl;
		if (fact || smpl)
			found->kept.push_back(chunk);
		at = chunk.next();
	}
	log_line("[D] AKAI_IT --> HAS_FACT_HEADER: %d, HAS_SMPL_HEADER: %d NEXT-CHUNK: [%.4s]\r\n",
		found->has_fact, found->has_smpl, found->data.name);
	return 0;
}

// What is made here stands between the kept chunks and the data.
static std::vector<u8> made_chunks(const wave_head &head, const ordered_chunks &chunks, u32 pitch)
{
	std::vector<u8> out;
	if (!chunks.has_fact) {
		out.resize(12);
		std::memcpy(out.data(), "fact", 4);
		wave_write_32bit(out.data() + 4, 4);
		wave_write_32bit(out.data() + 8, chunks.data.size / head.bytespersample);
	}
	if (!chunks.has_smpl) {
		out.resize(out.size() + 44);
		u8 *smpl = out.data() + out.size() - 44;
		std::memcpy(smpl, "smpl", 4);
		wave_write_32bit(smpl + 4, 36);
		std::memcpy(smpl + smpl_manufacturer, akai_defs, 8);
		wave_write_32bit(smpl + smpl_period, 1000000000 / (head.sample_rate & 0xFFFF));
		wave_write_32bit(smpl + smpl_unity_note, pitch & 0xFF);
	}
	return out;
}

static const char *fault_of(const wave_head &head, const ordered_chunks &chunks)
{
	if (!chunks.has_data)
		return "no data chunk";
	if (!chunks.has_fact && head.bytespersample == 0)
		return "block align is 0";
	if (!chunks.has_smpl && (head.sample_rate & 0xFFFF) == 0)
		return "no sampling rate";
	return nullptr;
}

namespace
{

// Where a result failed, so that the right words are said.
struct write_outcome {
	bool opened = false;
	int source_code = 0, code = 0;
};

} // namespace

static write_outcome write_result(input_file &file, const char *target,
	const ordered_chunks &chunks, const std::vector<u8> &made, u64 size)
{
	write_outcome out;
	u8 head[at_fact];
	if ((out.source_code = file.read(0, head, sizeof head)))
		return out;
	wave_write_32bit(head + at_file_length, static_cast<u32>(size - 8));
	if (wave_read_32bit(head + at_fmt_length) != at_fact - at_version) {
		wave_write_32bit(head + at_fmt_length, at_fact - at_version);
		wave_write_16bit(head + at_extension, 0);
	}
	new_file result;
	out.code = result.open(target);
	out.opened = out.code == 0;
	auto going = [&] { return !out.code && !out.source_code; };
	if (going())
		out.code = result.write(head, sizeof head);
	for (const wave_chunk &chunk : chunks.kept)
		if (going())
			out.code = result.copy(
				file, chunk.at, 8 + u64{ chunk.size }, &out.source_code);
	if (going())
		out.code = result.write(made.data(), made.size());
	u8 data_head[8] = { 'd', 'a', 't', 'a' };
	wave_write_32bit(data_head + 4, chunks.data.size);
	if (going())
		out.code = result.write(data_head, sizeof data_head);
	if (going())
		out.code =
			result.copy(file, chunks.data.at + 8, chunks.data.size, &out.source_code);
	if (going())
		out.code = result.finish();
	return out;
}

static bool cannot_read(const input_file &file, const char *source)
{
	log_line("[F] (%s:%d) Cannot read %llu Bytes from [%s]\r\n", __FILE_NAME__, __LINE__,
		static_cast<unsigned long long>(file.size), source);
	return false;
}

static bool open_source(input_file &file, const char *source)
{
	const char *fault = file.measure(source)        ? "Cannot stat"
			    : file.size < smallest_file ? "Too small file"
			    : file.open(source)         ? "Cannot open"
							: nullptr;
	if (fault)
		log_line("[F] (%s:%d) %s [%s]\r\n", __FILE_NAME__, __LINE__, fault, source);
	return !fault;
}

bool akai_it(const char *source, const char *target, u32 pitch)
{
	input_file file;
	if (!open_source(file, source))
		return false;
	wave_head head;
	ordered_chunks chunks;
	if (read_wave_head(file, &head) || find_chunks(file, head, &chunks))
		return cannot_read(file, source);
	if (const char *fault = fault_of(head, chunks)) {
		log_line("[F] (%s:%d) File-Header corrupted [%s] (%s)\r\n", __FILE_NAME__, __LINE__,
			source, fault);
		return false;
	}
	const std::vector<u8> made = made_chunks(head, chunks, pitch);
	u64 size = at_fact + made.size() + 8 + chunks.data.size;
	for (const wave_chunk &chunk : chunks.kept)
		size += 8 + u64{ chunk.size };
	log_line("[D] AKAI_IT --> CHUNK [%.4s] (%u Bytes) after LOOP DATA-SIZE: %llu\r\n",
		chunks.data.name, chunks.data.size, static_cast<unsigned long long>(size));
	const write_outcome out = write_result(file, target, chunks, made, size);
	if (out.source_code)
		return cannot_read(file, source);
	if (out.code && !out.opened)
		log_line("[F] (%s:%d) Cannot open [%s]\r\n", __FILE_NAME__, __LINE__, target);
	else if (out.code)
		log_line("[F] (%s:%d) Cannot write %llu Bytes to [%s]\r\n", __FILE_NAME__, __LINE__,
			static_cast<unsigned long long>(size), target);
	return !out.code;
}

} // namespace velmor
