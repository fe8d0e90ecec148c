// waveqx.cpp - the WAV files of the spool: written, read, looked at, put in order
//
// RIFF/WAVE with one habit of these samplers: a smpl chunk that carries the AKAI
// manufacturer code and 18 bytes of their own. A chunk follows another at once;
// odd sizes are not padded, here as on the samplers' own disks.
//
//   write_sample     fmt 18, fact 4, smpl 78, data    144 bytes and the words
//   akai_it          fmt 18, fact, smpl, data         kept from the source or made here
//
// create_sample_from_file computes where each chunk stands from the lengths of those
// ahead of it, and so takes any length but no other order; get_wave_info and akai_it
// walk. The three are kept apart: import exists to bring any file into the order that
// the reader insists on.
//
// Knows nothing of: windows, transports.

#include "src/waveqx.h"
#include "src/velmor.h"
#include "src/waveqx_chunks.h"
#include <algorithm>
#include <cstring>

namespace velmor
{

// Manufacturer 0x47 in one byte, product 0x5E, the period of 44100 Hz whatever the rate,
// unity note 0x48, one loop, 18 sampler bytes; the loop's id "loop" and its type 0.
const u8 akai_defs[akai_defs_size] = {
	0x47,
	0x00,
	0x00,
	0x01,
	0x5E,
	0x00,
	0x00,
	0x00,
	0x93,
	0x58,
	0x00,
	0x00,
	0x48,
	0x00,
	0x00,
	0x00,
	0x00,
	0x00,
	0x00,
	0x00,
	0x00,
	0x00,
	0x00,
	0x00,
	0x00,
	0x00,
	0x00,
	0x00,
	0x01,
	0x00,
	0x00,
	0x00,
	0x12,
	0x00,
	0x00,
	0x00,
	0x6C,
	0x6F,
	0x6F,
	0x70,
	0x00,
	0x00,
	0x00,
	0x00,
};
static constexpr int akai_defs_unity_note = 12;
static_assert(at_data + 8 == wave_header_size);

// More than any of the samplers can hold: a longer file is not read into memory.
static constexpr u64 largest_sample = u64{ 512 } << 20;

u16 wave_read_16bit(const u8 *at)
{
	return static_cast<u16>(at[0] | at[1] << 8);
}

u32 wave_read_24bit(const u8 *at)
{
	return at[0] | u32{ at[1] } << 8 | u32{ at[2] } << 16;
}

u32 wave_read_32bit(const u8 *at)
{
	return wave_read_24bit(at) | u32{ at[3] } << 24;
}

void wave_write_16bit(u8 *at, u32 value)
{
	at[0] = static_cast<u8>(value);
	at[1] = static_cast<u8>(value >> 8);
}

void wave_write_24bit(u8 *at, u32 value)
{
	wave_write_16bit(at, value);
	at[2] = static_cast<u8>(value >> 16);
}

void wave_write_32bit(u8 *at, u32 value)
{
	wave_write_24bit(at, value);
	at[3] = static_cast<u8>(value >> 24);
}

u8 recalculate_playmode(u8 mode)
{
	log_line("[D] Recalculating PLAY-MODE...[%d]\r\n", mode);
	if (!current_sampler)
		return mode;
	const _sampler_type *row = get_sampler(static_cast<i32>(current_sampler->sampler_type));
	if (!row || (row->sampler_type & ~4) != model_s1000)
		return mode;
	static constexpr u8 counterpart[] = { 2, 3, 0, 1 };
	return mode < sizeof counterpart ? counterpart[mode] : mode;
}

// ---- Names ----------------------------------------------------------------------------

std::string wave_path_of(const std::string &filebase)
{
	const std::string path = filebase + ".wav";
	file_info info;
	if (host.files->stat(path.c_str(), &info) == 0)
		return path;
	const std::size_t end = filebase.rfind('\\');
	const std::string folder = end == filebase.npos ? "." : filebase.substr(0, end);
	const std::string_view base =
		std::string_view(filebase).substr(end == filebase.npos ? 0 : end + 1);
	std::vector<std::string> names;
	if (host.files->list(folder.c_str(), &names) != 0)
		return path;
	for (const std::string &name : names)
		if (name.size() == base.size() + 4 && name.starts_with(base) &&
			equal_but_for_case(std::string_view(name).substr(base.size()), ".wav"))
			return filebase + name.substr(base.size());
	return path;
}

std::string spool_filebase(const char *samplename)
{
	return current_config_path + "\\sample\\" + file_name_of(samplename);
}

static std::string filebase_of(const _sample *sample, const char *_filebase)
{
	if (_filebase)
		return _filebase;
	const char *end = static_cast<const char *>(std::memchr(sample->name, 0, name_size));
	const std::size_t length = end ? static_cast<std::size_t>(end - sample->name) : name_size;
	return spool_filebase(std::string(sample->name, length).c_str());
}

// ---- Writing --------------------------------------------------------------------------

static void fill_smpl(u8 *chunk, const _sample *sample, u8 playmode)
{
	std::memcpy(chunk, "smpl", 4);
	wave_write_32bit(chunk + 4, smpl_akai_size - 8);
	std::memcpy(chunk + smpl_manufacturer, akai_defs, akai_defs_size);
	chunk[smpl_manufacturer + akai_defs_unity_note] = sample->original_pitch;
	wave_write_32bit(chunk + smpl_loop_start, static_cast<u32>(sample->loop_start));
	wave_write_32bit(chunk + smpl_loop_end, static_cast<u32>(sample->loop_end));
	chunk[smpl_original_pitch] = sample->original_pitch;
	chunk[smpl_semitone_tune] = sample->semitone_tune;
	chunk[smpl_fine_tune] = sample->fine_tune;
	chunk[smpl_playmode] = playmode;
	wave_write_32bit(chunk + smpl_start, static_cast<u32>(sample->start_position));
	wave_write_32bit(chunk + smpl_end, static_cast<u32>(sample->end_position));
}

static void fill_header(u8 (&header)[wave_header_size], const _sample *sample, u8 playmode)
{
	const u32 rate = static_cast<u32>(sample->sample_rate);
	const u32 data_bytes = static_cast<u32>(sample->sample_length * 2);
	std::memset(header, 0, sizeof header);
	std::memcpy(header + at_riff, "RIFF", 4);
	wave_write_32bit(header + at_file_length, data_bytes + wave_header_size - 8);
	std::memcpy(header + at_form, "WAVEfmt ", 8);
	wave_write_32bit(header + at_fmt_length, at_fact - at_version);
	wave_write_16bit(header + at_version, 1);
	wave_write_16bit(header + at_channels, 1);
	wave_write_32bit(header + at_sample_rate, rate);
	wave_write_32bit(header + at_bytespersecond, rate * 2);
	wave_write_16bit(header + at_bytespersample, 2);
	wave_write_16bit(header + at_bitspersample, 16);
	std::memcpy(header + at_fact, "fact", 4);
	wave_write_32bit(header + at_fact_length, 4);
	wave_write_32bit(header + at_fact_count, static_cast<u32>(sample->sample_length));
	fill_smpl(header + at_smpl, sample, playmode);
	std::memcpy(header + at_data, "data", 4);
	wave_write_32bit(header + at_data + 4, data_bytes);
}

static int write_words(fresh_file &file, const u32 *words, u64 count)
{
	static constexpr u64 block_words = 16 * 1024;
	u8 block[block_words * 2];
	for (u64 done = 0; done < count;) {
		const u64 part = std::min(count - done, block_words);
		for (u64 i = 0; i < part; i++)
			wave_write_16bit(block + 2 * i, words[done + i]);
		if (const int code = file.write(block, static_cast<std::size_t>(part * 2)))
			return code;
		done += part;
	}
	return 0;
}

static int write_file(
	const std::string &path, const u8 (&header)[wave_header_size], const _sample *sample)
{
	fresh_file file;
	int code = file.open(path);
	if (!code)
		code = file.write(header, sizeof header);
	if (!code)
		code = write_words(file, sample->sample_data, sample->sample_length);
	return code ? code : file.finish();
}

int write_sample(const _sample *sample, const char *_filebase)
{
	const std::string base = filebase_of(sample, _filebase);
	const std::string path = wave_path_of(base);
	const unsigned long long words = sample->sample_length;
	if (words > (0xFFFFFFFFu - wave_header_size) / 2 || (words && !sample->sample_data)) {
		log_line("[F] No data of [%s] to write (%llu Samples)\r\n", path.c_str(), words);
		return 1;
	}
	log_line(
		"[I] AKAI SAMPLE ---> WAVE. Saving Sample (%llu Samples, %llu Hz Sampling-Rate) to "
		"[%s] Wave-Header-Size: %d, Complete-File-Size: %llu\r\n",
		words, static_cast<unsigned long long>(sample->sample_rate), path.c_str(),
		wave_header_size, words * 2 + wave_header_size);
	const u8 playmode = recalculate_playmode(sample->playback_mode);
	u8 header[wave_header_size];
	fill_header(header, sample, playmode);
	log_line("[D] Sample original PITCH: %d, PLAYBACK-MODE(translated): %d\n",
		sample->original_pitch, playmode);
	log_line("[D] %s\r\n", hex_text(header).c_str());
	const int code = write_file(path, header, sample);
	if (!code)
		return 0;
	show_box("FATAL", "Cannot open [%s] for writing (%s)", path.c_str(),
		error_words(__FILE_NAME__, __LINE__, code).c_str());
	host.files->remove((base + ".info").c_str());
	return 1;
}

int test_sample(const _sample *sample, const char *_filebase)
{
	file_info info = {};
	const std::string path = wave_path_of(filebase_of(sample, _filebase));
	return host.files->stat(path.c_str(), &info) == 0 && info.size != 0;
}

// ---- Walking ----------------------------------------------------------------------------

int read_wave_head(input_file &file, wave_head *head)
{
	u8 bytes[smallest_file];
	if (const int code = file.read(0, bytes, sizeof bytes))
		return code;
	*head = {
		.riff = std::memcmp(bytes + at_riff, "RIFF", 4) == 0,
		.wave = std::memcmp(bytes + at_form, "WAVEfmt ", 8) == 0,
		.fmt_length = wave_read_32bit(bytes + at_fmt_length),
		.version = wave_read_16bit(bytes + at_version),
		.channels = wave_read_16bit(bytes + at_channels),
		.sample_rate = wave_read_32bit(bytes + at_sample_rate),
		.bytespersample = wave_read_16bit(bytes + at_bytespersample),
		.bitspersample = wave_read_16bit(bytes + at_bitspersample),
	};
	return 0;
}

int read_wave_chunk(input_file &file, u64 at, wave_chunk *chunk)
{
	u8 bytes[8];
	const int code = file.read(at, bytes, sizeof bytes);
	*chunk = { .at = at, .size = wave_read_32bit(bytes + 4), .name = {} };
	std::memcpy(chunk->name, bytes, 4);
	return code;
}

u64 wave_bytes_held(const input_file &file, const wave_chunk &data)
{
	const u64 start = data.at + 8;
	return start < file.size ? std::min<u64>(data.size, file.size - start) : 0;
}

// The head of a file that may be one. False after the log line that says why it is none; a file
// that cannot be read is told by *code.
static bool open_wave(const char *filename, input_file *file, wave_head *head, int *code)
{
	const char *fault = nullptr, *detail = "";
	if (file->measure(filename))
		fault = "Cannot stat";
	else if (file->size < smallest_file)
		fault = "Obviously no wave-file", detail = " (too small)";
	else if (file->open(filename))
		fault = "Cannot open";
	else if ((*code = read_wave_head(*file, head)))
		return true;
	else if (!head->riff)
		fault = "No wave-file", detail = " (magic(1) missing)";
	else if (!head->wave)
		fault = "No wave-file", detail = " (magic(2) missing)";
	if (fault)
		log_line("[F] %s '%s'%s\r\n", fault, filename, detail);
	return !fault;
}

bool get_wave_info(const char *filename, u8 *bits, u8 *channels, int *sample_rate, u8 *pitch)
{
	*pitch = 255;
	input_file file;
	wave_head head;
	int code = 0;
	if (!open_wave(filename, &file, &head, &code))
		return false;
	u64 smpl = 0;
	auto look = [&](const wave_chunk &chunk, u64 number) {
		if (number < logged_chunks)
			log_line("[D] %s Chunk: [%.4s] (%u Bytes)\r\n", filename, chunk.name,
				chunk.size);
		smpl = chunk.is("smpl") ? chunk.at : 0;
		return !smpl;
	};
	if (!code)
		code = walk_chunks(file, head, look);
	u8 note = 0;
	if (!code && smpl && !(code = file.read(smpl + smpl_unity_note, &note, 1)))
		*pitch = note & 0x7F;
	if (code) {
		log_line("[F] Cannot read %llu Bytes from '%s'\r\n",
			static_cast<unsigned long long>(file.size), filename);
		return false;
	}
	*channels = static_cast<u8>(head.channels);
	*bits = static_cast<u8>(head.bitspersample);
	*sample_rate = static_cast<int>(head.sample_rate);
	return true;
}

// ---- Reading ------------------------------------------------------------------------------

// Why a file is refused beyond the system's own reasons.
static constexpr const char *no_smpl = "no smpl chunk behind fact";
static constexpr const char *no_data = "no data chunk behind smpl";
static constexpr const char *no_frame = "block align is 0";

// Places of the three chunks that the reader wants; null, or what is wrong.
struct sample_places {
	wave_chunk fact, smpl, data;
};

static const char *find_places(
	input_file &file, const wave_head &head, sample_places *places, int *code)
{
	*code = read_wave_chunk(file, u64{ head.fmt_length } + 20, &places->fact);
	if (!*code)
		*code = read_wave_chunk(file, places->fact.next(), &places->smpl);
	if (!*code)
		*code = read_wave_chunk(file, places->smpl.next(), &places->data);
	if (*code)
		return nullptr;
	if (!places->smpl.is("smpl"))
		return no_smpl;
	if (!places->data.is("data"))
		return no_data;
	return head.bytespersample == 0 ? no_frame : nullptr;
}

static void decode_words(_sample *sample)
{
	const u32 frame = sample->bytespersample;
	if (frame != 2 && frame != 3)
		return;
	for (u64 i = 0; i < sample->sample_length; i++) {
		const u8 *at = sample->sample_byte + i * frame;
		sample->sample_data[i] = frame == 2 ? wave_read_16bit(at) : wave_read_24bit(at);
	}
}

// What a sampler gets is a mode 1 sample, untuned, from its first word: the file's tune,
// play mode, loop start and positions are not read back.
static int fill_record(
	input_file &file, const wave_head &head, const sample_places &places, _sample *sample)
{
	u8 smpl[smpl_loop_end + 4], count[4];
	int code = file.read(places.smpl.at, smpl, sizeof smpl);
	if (!code)
		code = file.read(places.fact.at + 8, count, sizeof count);
	if (code)
		return code;
	sample->bytespersample = head.bytespersample;
	sample->bitspersample = head.bitspersample;
	sample->channels = head.channels;
	sample->sample_rate = head.sample_rate;
	sample->end_position = wave_read_32bit(count);
	sample->loop_end = wave_read_32bit(smpl + smpl_loop_end);
	sample->original_pitch = smpl[smpl_unity_note];
	sample->playback_mode = 1;
	sample->sample_length = sample->sample_bytes / sample->bytespersample;
	return file.read(places.data.at + 8, sample->sample_byte,
		static_cast<std::size_t>(sample->sample_bytes));
}

static bool allocate_sample(_sample *sample, u64 bytes, u32 frame)
{
	if (bytes > largest_sample)
		return false;
	const u64 words = std::max(bytes / 2 + 1, bytes / frame);
	sample->sample_byte = static_cast<u8 *>(std::malloc(bytes ? bytes : 1));
	sample->sample_data = static_cast<u32 *>(std::calloc(words, sizeof(u32)));
	sample->sample_bytes = bytes;
	return sample->sample_byte && sample->sample_data;
}

static void only_name(_sample *sample, std::string_view name)
{
	*sample = {};
	copy_text(sample->name, name);
}

// The words of a failed step; nothing is left in the record but its name.
static int give_up(_sample *sample, const char *step, const std::string &path, int line, int code)
{
	const std::string name = sample->name;
	free_sample_data(sample);
	only_name(sample, name);
	log_line("[F] FAILED TO %s [%s] (%s)\r\n", step, path.c_str(),
		error_words(__FILE_NAME__, line, code).c_str());
	return 0;
}

static int no_room(_sample *sample, const std::string &path, u64 bytes)
{
	const std::string name = sample->name;
	free_sample_data(sample);
	only_name(sample, name);
	log_line("[F] FAILED TO MALLOC FOR [%s](%llu Bytes) (%s)\r\n", path.c_str(),
		static_cast<unsigned long long>(bytes),
		bytes > largest_sample ? "more than any sampler holds" : "out of memory");
	return 0;
}

int create_sample_from_file(const char *filebase, _sample *sample)
{
	const std::string base = filebase, path = wave_path_of(base);
	only_name(sample, base.substr(base.rfind('\\') + 1));

	input_file file;
	if (const int code = file.measure(path.c_str()))
		return give_up(sample, "STAT", path, __LINE__, code);
	if (const int code = file.open(path.c_str()))
		return give_up(sample, "OPEN", path, __LINE__, code);
	wave_head head;
	sample_places places;
	const char *fault = nullptr;
	int code = read_wave_head(file, &head);
	if (!code)
		fault = find_places(file, head, &places, &code);
	if (code)
		return give_up(sample, "READ FROM", path, __LINE__, code);
	if (fault) {
		log_line("[F] (%s:%d) File-Header corrupted [%s] (%s)\r\n", __FILE_NAME__, __LINE__,
			path.c_str(), fault);
		return 0;
	}
	const u64 bytes = wave_bytes_held(file, places.data);
	if (!allocate_sample(sample, bytes, head.bytespersample))
		return no_room(sample, path, bytes);
	if ((code = fill_record(file, head, places, sample)))
		return give_up(sample, "READ FROM", path, __LINE__, code);
	decode_words(sample);
	log_line("[D] Converted %llu Sample Bytes (%u Bit) to %llu Sample Words...PLAYMODE: %d\r\n",
		static_cast<unsigned long long>(sample->sample_bytes), sample->bitspersample,
		static_cast<unsigned long long>(sample->sample_length), sample->playback_mode);
	return 1;
}

} // namespace velmor
