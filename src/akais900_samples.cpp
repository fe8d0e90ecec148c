// akais900_samples.cpp - a sample from an S900 into the spool
//
//   request dump             F0 7E 00 nn 00 F7
//   go on                    F0 7E 7F F7
//   dump                     F0 7E 01 nn 00 0C pp pp pp ll ll ll aa aa aa bb bb bb tt
//                            (kk word*60 xx)* F7
//
// Asked once, the machine sends the head of its dump and stops; that is how the length is
// known. Asked again it begins anew, and each "go on" brings a block. The whole is one message
// that takes minutes, so the input listens all the while beside what is sent. The blocks do not
// pace the sending: the machine gets its "go on" every 200 ms.
//
// The file has 12 bits a word and is written here: write_sample makes files of 16.
//
// Nothing of the machine changes by a download. Nothing is written before all of the dump is
// there and its checksums are right; nothing is asked for again.
//
// Knows nothing of: windows.

#include "src/akais900.h"
#include "src/velmor_outcome.h"
#include "src/waveqx.h"
#include <algorithm>
#include <cstring>
#include <new>

namespace velmor
{

// REQUEST DUMP                               0     1     2     3     4     5
static constexpr std::array<u8, 6> request_dump = //
	{ 0xF0, 0x7E, 0x00, 0x00, 0x00, 0xF7 };
enum {
	request_dump_number = 3
};
// GO ON                                      0     1     2     3
static constexpr std::array<u8, 4> go_on = //
	{ 0xF0, 0x7E, 0x7F, 0xF7 };

static constexpr int head_room = 20;     // of the answer to the first request
static constexpr int shortest_head = 18; // without the loop type
static constexpr int shortest_dump = 40;
static constexpr int switching_ms = 50, opening_ms = 100, block_ms = 200;
static constexpr double end_seconds = 10; // without a byte

owned_bytes the_s900_junk;
std::unique_ptr<int> _the_s900_junks;
static int junk_room = 0;
static bool dump_ended = false; // with its end byte

static int shown(u64 value)
{
	return static_cast<int>(static_cast<u32>(value));
}

// ---- What comes in -----------------------------------------------------------------------

// One byte of the input. A message begins with F0 and forgets what was there before; one that
// ends and is no dump is forgotten too. Real-time bytes may stand anywhere and belong to none.
static void take_byte(u8 byte)
{
	int &count = *_the_s900_junks;
	if (dump_ended || byte >= 0xF8)
		return;
	if (byte == 0xF0)
		count = 0;
	if (count < 0 || count >= junk_room)
		return;
	the_s900_junk[static_cast<std::size_t>(count++)] = byte;
	if (byte != 0xF7)
		return;
	dump_ended = count > 2 && the_s900_junk[1] == s900_dump_head[1] &&
		     the_s900_junk[2] == s900_dump_head[2];
	if (!dump_ended)
		count = -1;
}

void s900_in_callback(std::span<const u8> bytes)
{
	if (!the_s900_junk || !_the_s900_junks)
		return;
	for (const u8 byte : bytes)
		take_byte(byte);
	log_line("[D] Received %d/%d MIDI-Bytes [0x%08X]\r\n", static_cast<int>(bytes.size()),
		junk_room, 0u);
}

// An input that listens while messages go out, on the MIDI port or over the bridge.
class dump_input
{
public:
	dump_input() = default;
	~dump_input() { close(); }
	dump_input(const dump_input &) = delete;

	// The output too. 0, or the port's code.
	int open()
	{
		over_tcp = use_tcp;
		if (over_tcp)
			return 0;
		int code = open_midi_output();
		if (!code)
			code = host.midi->open_input(selected_midi_in_interface, &handle);
		if (code)
			handle = -1;
		return code;
	}
	int listen(int room)
	{
		heard = host.clock->counter();
		if (!over_tcp)
			return host.midi->listen(handle, static_cast<std::size_t>(room));
		listen_to_tcp();
		return 0;
	}
	// Hand over what has come. False when the port failed.
	bool take()
	{
		u8 bytes[1024];
		int count;
		while ((count = take_some(bytes, sizeof bytes)) > 0) {
			heard = host.clock->counter();
			s900_in_callback({ bytes, static_cast<std::size_t>(count) });
		}
		if (count < 0)
			why = why_tcp_failed();
		else if (!over_tcp && host.midi->input_error(handle))
			why = tr(host.midi->error_text(host.midi->input_error(handle)));
		return why.empty();
	}
	bool silent_for(double seconds) const { return host.clock->counter() - heard > seconds; }
	void close()
	{
		if (over_tcp)
			stop_listening_to_tcp();
		else if (handle >= 0)
			host.midi->close_input(handle);
		handle = -1;
	}
	std::string why; // of the failure

private:
	int take_some(u8 *bytes, int capacity) const
	{
		return over_tcp ? take_tcp(bytes, capacity)
				: static_cast<int>(host.midi->take(
					  handle, bytes, static_cast<std::size_t>(capacity)));
	}
	int handle = -1;
	bool over_tcp = false;
	double heard = 0; // moment of the last byte
};

// ---- The dump ----------------------------------------------------------------------------

// What the head of a dump tells.
struct dump_facts {
	u32 rate, words, blocks, loop_start, loop_end;
	int bits, loop_type;
};

static dump_facts facts_of(bounded_bytes head)
{
	dump_facts f = {};
	const u64 period = get_s900_number(head.from(s900_dump_period));
	f.rate = period ? static_cast<u32>(1000000000 / period * 10 / 25) : 0;
	f.words = get_s900_number(head.from(s900_dump_words));
	f.blocks = (f.words + s900_words_in_block - 1) / s900_words_in_block;
	f.loop_start = get_s900_number(head.from(s900_dump_loop_start));
	f.loop_end = get_s900_number(head.from(s900_dump_loop_end));
	f.bits = head[s900_dump_bits];
	f.loop_type = head[s900_dump_loop_type];
	return f;
}

// One download under way.
struct download_job {
	std::string name, path;
	u8 channel; // as it goes on the wire
	u8 number;
	u32 pitch;
	akai_answer head;
	dump_facts facts;
	owned_bytes words; // as they stand in a file
};

enum class dump_end {
	complete,
	failed,
	stopped,
};

static std::array<u8, 6> dump_request(const download_job &job)
{
	auto message = request_dump;
	message[request_dump_number] = job.number;
	return message;
}

// The head of the dump. False after a box.
static bool ask_for_head(download_job *job)
{
	const auto message = dump_request(*job);
	tell_akai(s900_message(enable_common_exclusive, job->channel));
	// A word of the machine about that would be taken for the head.
	akai_pause(switching_ms);
	log_line("[D] Requesting SYSTEM-DUMP of SAMPLE (%d Bytes) [%s]\r\n",
		static_cast<int>(message.size()), hex_text(message).c_str());
	job->head = ask_akai(message, head_room, send_midi_string_ex_s900);
	log_line("[D] REQUEST-SYSTEM-DUMP ANSWER --> (%d Bytes) [%s]\r\n", job->head.size(),
		hex_text(job->head.bytes).c_str());
	if (job->head.size() < shortest_head || job->head[1] != s900_dump_head[1]) {
		if (job->head.size())
			line_silent(tr("The head of the sample's dump broke off."));
		show_box("ERROR", "Sample not found/download failed!");
		return false;
	}
	job->facts = facts_of(job->head.view());
	return true;
}

static void end_without(const char *words)
{
	show_box("FATAL", "%s", words);
	end_program(0);
}

static void make_room(download_job *job)
{
	job->words = allocate_bytes(u64{ 2 } * job->facts.words);
	if (!job->words)
		end_without("Out of memory!");
	junk_room = shown(u64{ 200 } * job->facts.blocks + 120);
	the_s900_junk = allocate_bytes(static_cast<u64>(junk_room));
	if (!the_s900_junk)
		end_without("FAILED TO ALLOCATE BUFFER MEMORY");
	_the_s900_junks.reset(new (std::nothrow) int(-1));
	if (!_the_s900_junks)
		end_without("FAILED TO ALLOCATE INT MEMORY");
	dump_ended = false;
}

static void log_download(const download_job &job)
{
	const dump_facts &f = job.facts;
	log_line("[D] DOWNLOAD (%s) %d Hz, Sample-Words: %d, Bits: %d, Loop-start: %d, Loop-end: "
		 "%d, Loop-Mode: %d, BLOCKS: %d/%d\r\n",
		job.name.c_str(), shown(f.rate), shown(f.words), f.bits, shown(f.loop_start),
		shown(f.loop_end), f.loop_type, shown(f.blocks), shown(f.blocks));
}

// Ask again, and for block after block, whether they come or not; but a machine of which
// nothing came for ten seconds will send nothing more.
static dump_end ask_for_blocks(const download_job &job, dump_input *input)
{
	const std::string caption =
		format_text("Downloading [%s]... RESENDING REQUEST...", job.name.c_str());
	show_progressbar(0, shown(job.facts.blocks + 1), caption.c_str());
	if (!tell_akai(dump_request(job)))
		return dump_end::failed;
	for (u32 i = 0; i <= job.facts.blocks; i++) {
		if (!tell_akai(go_on))
			return dump_end::failed;
		akai_pause(block_ms);
		set_progressbar(shown(i));
		if (progress_stopped())
			return dump_end::stopped;
		if (!input->take() || input->silent_for(end_seconds))
			return dump_end::failed;
	}
	const int came = std::max(*_the_s900_junks - int{ s900_dump_head.size() }, 0);
	log_line("[D] --> All data transmitted! (%d/%d Sample words) --> Saving to [%s]\r\n",
		std::min(came / s900_block_size * s900_words_in_block, shown(job.facts.words)),
		shown(job.facts.words), job.path.c_str());
	return dump_end::complete;
}

// Wait for the end byte.
static dump_end await_end(dump_input *input)
{
	const double deadline = host.clock->counter() + end_seconds;
	int logged = -2;
	for (;;) {
		const int count = *_the_s900_junks;
		if (count != logged)
			log_line("[D] Received %d Bytes [0x%02X]\r\n", count,
				count > 0 ? the_s900_junk[static_cast<std::size_t>(count - 1)] : 0);
		logged = count;
		if (dump_ended || host.clock->counter() >= deadline)
			return dump_end::complete;
		host.ui->pump(100);
		if (progress_stopped())
			return dump_end::stopped;
		if (!input->take())
			return dump_end::failed;
	}
}

// ---- Its words ---------------------------------------------------------------------------

static bool take_block(const download_job &job, bounded_bytes block, u32 i)
{
	log_line("[D] The Block(%d): [%s]\r\n", shown(i),
		hex_text(block.bytes.first(s900_block_size)).c_str());
	const u32 from = i * s900_words_in_block;
	const u32 count = std::min<u32>(job.facts.words - from, s900_words_in_block);
	for (u32 w = 0; w < count; w++) {
		const int level = get_s900_word(&block.bytes[s900_block_words + 2 * w]);
		wave_write_16bit(&job.words[2 * (from + w)], static_cast<u32>(level));
	}
	const u8 sum = s900_checksum(block, s900_block_words, s900_block_checksum);
	if (sum == block[s900_block_checksum])
		return true;
	log_line("[F] Transmission error (XOR: 0x%02X instead of 0x%02X) IDX: %d\r\n", sum,
		block[s900_block_checksum], int{ s900_block_checksum });
	return false;
}

// What came between F0 and the end, without the end byte.
static bounded_bytes received_dump()
{
	const int count = *_the_s900_junks - (dump_ended ? 1 : 0);
	return { { the_s900_junk.get(), static_cast<std::size_t>(std::max(count, 0)) } };
}

// Both heads tell of the same sample, or one of them came damaged.
static bool heads_agree(const download_job &job, bounded_bytes dump)
{
	for (std::size_t i = s900_dump_bits; i < s900_dump_loop_type; i++)
		if (job.head[i] != dump[i]) {
			log_line("[F] The dump has another head than the one before it\r\n");
			return false;
		}
	return true;
}

// Where the blocks begin. Nothing in a head tells of its end: one that is a byte shorter or
// longer than it should be shows in the length of the whole.
static std::size_t blocks_begin(bounded_bytes dump, u32 blocks)
{
	const auto head = static_cast<int>(dump.size()) - s900_block_size * shown(blocks);
	return dump_ended && head >= shortest_head && head <= head_room
		       ? static_cast<std::size_t>(head)
		       : s900_dump_head.size();
}

static bool take_dump(const download_job &job)
{
	if (*_the_s900_junks < shortest_dump || job.facts.blocks == 0)
		return false;
	const bounded_bytes dump = received_dump();
	log_line("[D] The Header: [%s] (Complete: %d Bytes)\r\n",
		hex_text(dump.bytes.first(s900_dump_head.size())).c_str(), *_the_s900_junks);
	if (!heads_agree(job, dump))
		return false;
	const std::size_t begin = blocks_begin(dump, job.facts.blocks);
	for (u32 i = 0; i < job.facts.blocks; i++) {
		const bounded_bytes block = dump.from(begin + std::size_t{ i } * s900_block_size);
		if (block.size() < s900_block_size) {
			log_line("[F] The dump broke off, %d of %d blocks are there\r\n", shown(i),
				shown(job.facts.blocks));
			return false;
		}
		if (!take_block(job, block, i))
			return false;
	}
	return true;
}

// ---- The file ----------------------------------------------------------------------------

enum {
	wav_rate = 24,
	wav_words = 46,
	wav_smpl_length = 54,
	wav_period = 66,
	wav_pitch = 70,
	wav_loops = 86,
	wav_loop_bytes = 90,
	wav_head_size = 94,
	wav_loop_size = 24,
	shortest_loop = 6,
};

// RIFF of a length filled in later; fmt of 18 bytes: 12 bits in two bytes, no bytes a second;
// fact; smpl of the maker 47 00 00 01.
static constexpr std::array<u8, wav_head_size> wav_head = {
	'R', 'I', 'F', 'F', 0, 0, 0, 0,                                //  0
	'W', 'A', 'V', 'E', 'f', 'm', 't', ' ', 18, 0, 0, 0,           //  8
	1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 12, 0, 0, 0,         // 20
	'f', 'a', 'c', 't', 4, 0, 0, 0, 0, 0, 0, 0,                    // 38
	's', 'm', 'p', 'l', 36, 0, 0, 0, 0x47, 0, 0, 1, 0x5E, 0, 0, 0, // 50
};

// A loop of fewer words is none.
static bool has_loop(const dump_facts &f)
{
	return f.loop_end >= f.loop_start && f.loop_end - f.loop_start >= shortest_loop;
}

static std::vector<u8> loop_record(const dump_facts &f)
{
	std::vector<u8> loop(wav_loop_size);
	const auto now = static_cast<u64>(host.clock->time_of_day());
	wave_write_32bit(&loop[0], static_cast<u32>(now)); // the cue point
	wave_write_32bit(&loop[8], f.loop_start);
	wave_write_32bit(&loop[12], f.loop_end);
	return loop;
}

// Everything ahead of the words.
static std::vector<u8> wav_head_of(const download_job &job)
{
	const dump_facts &f = job.facts;
	std::vector<u8> head(wav_head.begin(), wav_head.end());
	wave_write_32bit(&head[wav_rate], f.rate);
	wave_write_32bit(&head[wav_words], f.words);
	wave_write_32bit(&head[wav_period], f.rate ? 1000000000 / f.rate : 0);
	wave_write_32bit(&head[wav_pitch], job.pitch);
	if (has_loop(f)) {
		head[wav_smpl_length] += wav_loop_size;
		head[wav_loops] = 1;
		head[wav_loop_bytes] = wav_loop_size;
		const std::vector<u8> loop = loop_record(f);
		head.insert(head.end(), loop.begin(), loop.end());
	}
	const std::size_t data = head.size();
	head.resize(data + 8);
	std::memcpy(&head[data], "data", 4);
	wave_write_32bit(&head[data + 4], 2 * f.words);
	wave_write_32bit(&head[4], static_cast<u32>(head.size()) + 2 * f.words - 8);
	return head;
}

// False after a box.
static bool write_file(const download_job &job)
{
	fresh_file file;
	const std::vector<u8> head = wav_head_of(job);
	if (file.open(job.path)) {
		show_box("ERROR", "Cannot open [%s] for writing (Sample download failed)",
			job.path.c_str());
		return false;
	}
	int code = file.write(head.data(), head.size());
	if (!code)
		code = file.write(job.words.get(), std::size_t{ 2 } * job.facts.words);
	if (!code)
		code = file.finish();
	if (code)
		show_box(
			"ERROR", "Cannot write to [%s] (Sample download failed)", job.path.c_str());
	return code == 0;
}

// ---- Download ----------------------------------------------------------------------------

static _sample *find_sample(_dev_status *status, const std::string &name)
{
	const int count = std::clamp(status->samples, 0, max_samples);
	_sample *end = status->sample + count;
	_sample *found =
		std::find_if(status->sample, end, [&](const _sample &s) { return name == s.name; });
	return found == end ? nullptr : found;
}

static void disable_common(const download_job &job)
{
	const auto message = s900_message(disable_common_exclusive, job.channel);
	log_line("[D] Requesting Disable of COMMON SYSEX (%d Bytes) [%s] DOWNLOAD FINISHED\r\n",
		static_cast<int>(message.size()), hex_text(message).c_str());
	tell_akai(message);
}

// Both ports, room, and the dump. Everything but the words is given back at the end.
static dump_end fetch_dump(download_job *job)
{
	dump_input input;
	int code = input.open();
	if (!code) {
		make_room(job);
		code = input.listen(junk_room);
	}
	if (code) {
		display_error_text(__FILE_NAME__, __LINE__, host.midi->error_text(code));
		end_program(0);
		return dump_end::failed;
	}
	log_download(*job);
	dump_end end = ask_for_blocks(*job, &input);
	if (end == dump_end::complete)
		end = await_end(&input);
	input.close();
	if (end == dump_end::complete && !take_dump(*job))
		end = dump_end::failed;
	if (end == dump_end::complete)
		line_answered();
	else if (end == dump_end::failed)
		line_silent(input.why.empty()
				    ? tr("The dump of the sample broke off or came damaged.")
				    : input.why.c_str());
	return end;
}

static void download(download_job *job)
{
	if (!ask_for_head(job))
		return;
	akai_pause(opening_ms);
	const dump_end end = fetch_dump(job);
	the_s900_junk.reset();
	_the_s900_junks.reset();
	if (end == dump_end::failed) {
		// The bar stays and shows how far the dump came.
		show_box("FATAL", "Transmission failed!");
		return;
	}
	const bool written = end == dump_end::complete && write_file(*job);
	disable_common(*job);
	hide_progressbar(0);
	if (end == dump_end::stopped)
		log_line("[I] Download of [%s] stopped, nothing was saved\r\n", job->name.c_str());
	if (written)
		show_box("INFO", "Download completed successfully!");
}

void akai_s900_download_sample(u8 channel, u8 sysex_channel, const char *name)
{
	log_line("[I] Request for downloading [%s]\r\n", name);
	_dev_status *status = current_sampler ? current_sampler->status : nullptr;
	if (!has_s900_status(status) || !status)
		return;
	forget_stop();
	download_job job = {};
	job.name = name;
	job.channel = static_cast<u8>(channel - 1);
	// The catalogue tells no pitch: the one that was read with the list is kept.
	const _sample *known = find_sample(status, job.name);
	job.pitch = known ? known->original_pitch : 0;
	akai_s900_getstatus(channel, sysex_channel, status);
	_sample *sample = find_sample(status, job.name);
	if (!sample) {
		show_box("ERROR", "Sample not found!");
		return;
	}
	sample->original_pitch = static_cast<u8>(job.pitch);
	job.number = static_cast<u8>(sample->number);
	job.path = wave_path_of(spool_filebase(job.name.c_str()));
	log_line("[D] Requested Sample has number: %d, Pitch: 0x%02X\r\n", job.number, job.pitch);
	download(&job);
}

} // namespace velmor
