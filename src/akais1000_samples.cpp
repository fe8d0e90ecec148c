// akais1000_samples.cpp - samples of the S1000 family: headers, words that come, names
//
//   request sample header    F0 47 cc 0A 48 ss SS F7
//   sample header            F0 47 cc 0B 48 ss SS nibbles F7         also sent to write it
//   request sample data      F0 47 cc 0C 48 ss SS oo oo oo oo nn 00 00 00 01 01 F7
//   delete sample            F0 47 cc 14 48 ss SS F7
//   data packet              F0 7E cc 02 kk (word*3)*40 xx F7        127 bytes
//
// The last one is that of the MIDI Sample Dump Standard. A download asks for each packet with a
// request of its own and acknowledges none; one that came damaged is taken as it is, and counted,
// so that the user can be told. There is no rename message: a name changes by sending the header
// back.
//
// What a sampler says is not trusted: a length above what the machines hold is refused.
//
// Knows nothing of: the layout of WAV files, windows.

#include "src/akais1000_samples.h"
#include "src/velmor_window.h"
#include "src/waveqx.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace velmor
{

// REQUEST SAMPLE DATA                        0     1     2     3     4     5     6
static constexpr std::array<u8, 18> request_sample_data = //
	{ 0xF0, 0x47, 0x00, 0x0C, 0x48, 0x00, 0x00,
		// 7     8     9    10    11    12    13    14    15    16    17
		0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x01, 0xF7 };
enum {
	sample_data_offset = 7,
	sample_data_words = 11
};

// DELETE SAMPLE                              0     1     2     3     4     5     6     7
static constexpr std::array<u8, 8> request_delete = //
	{ 0xF0, 0x47, 0x00, 0x14, 0x48, 0x00, 0x00, 0xF7 };

// 32 MB is the most that any of the machines takes.
static constexpr u64 most_words = 16 * 1024 * 1024;

// ---- Finding a sample ---------------------------------------------------------------------

int akai_samples_listed()
{
	const _dev_status *status = current_sampler ? current_sampler->status : nullptr;
	return status ? std::clamp(status->samples, 0, max_samples) : 0;
}

int akai_find_sample(const char *name, bool log_compares)
{
	const _dev_status *status = current_sampler ? current_sampler->status : nullptr;
	const int samples = akai_samples_listed();
	for (int i = 0; i < samples; i++) {
		if (log_compares)
			log_line("[D] ##################### S1000 NAME COMPARE: [%%] <> [%s]\r\n",
				status->sample[i].name);
		if (std::strcmp(status->sample[i].name, name) == 0)
			return i;
	}
	return samples;
}

// The sample itself, or null after the box that ends the program.
static _sample *require_sample(const char *name, bool log_compares)
{
	const int index = akai_find_sample(name, log_compares);
	if (index < akai_samples_listed())
		return &current_sampler->status->sample[index];
	show_box("FATAL", "Internal error (akai_s1000 Module) aborting! (Sample index not found)");
	end_program(0);
	return nullptr;
}

static int index_of(const _sample *sample)
{
	return static_cast<int>(sample - current_sampler->status->sample);
}

// ---- Headers ------------------------------------------------------------------------------

bool akai_is_header_of(const akai_answer &answer, int index)
{
	return answer[akai_function] == sample_header_function && answer.number() == index;
}

static void log_header(const _sample &sample, bounded_bytes block, u32 loop_fine, u32 coarse)
{
	u8 unknown[4];
	for (std::size_t i = 0; i < sizeof unknown; i++)
		unknown[i] = block[header_unknown + i];
	log_line("[D]*** Original Pitch: [%s], Loops: %d, Playback-Mode: %d, Sample-Start: %d, "
		 "Length (in samples): %d START: %d, END: %d, Loop-Start: %d, DUMMY2: [%s] "
		 "STATUS-RATE: %d\r\n",
		midi_note[sample.original_pitch & 0x7F], block[header_loops], sample.playback_mode,
		shown(sample.absolute_start), shown(sample.sample_length),
		shown(sample.start_position), shown(sample.end_position), shown(sample.loop_start),
		hex_text(unknown).c_str(), block[header_rate_flag]);
	log_line("[D]*** LOOP-START: %d,END: %d, LOOP_FINE_LENGTH: %d, COARSE: %d, TIME: %d, "
		 "SEMI-TUNE: %d, FINE-TUNE: %d, SAMPLE-RATE: %d\r\n",
		shown(sample.loop_start), shown(sample.loop_end), shown(loop_fine), shown(coarse),
		shown(sample.loop_times), sample.semitone_tune, sample.fine_tune,
		shown(sample.sample_rate));
}

void akai_s1000_sample_from_header(bounded_bytes block, int index, _sample *sample)
{
	sample->number = index;
	sample->device_index = static_cast<u64>(index);
	sample->absolute_start = 0;
	sample->channels = 1;
	sample->bitspersample = 16;
	sample->original_pitch = block[header_pitch];
	sample->playback_mode = block[header_playback_mode];
	sample->fine_tune = block[header_fine_tune];
	sample->semitone_tune = block[header_semitone_tune];
	sample->sample_length = get_akai8_dword(block.from(header_length));
	sample->start_position = get_akai8_dword(block.from(header_start));
	sample->end_position = get_akai8_dword(block.from(header_end));
	sample->loop_end = get_akai8_dword(block.from(header_loop));
	const u32 coarse = get_akai8_dword(block.from(header_loop_coarse));
	// A loop that is longer than what lies ahead of its end starts at the beginning.
	sample->loop_start = sample->loop_end - std::min<u64>(coarse, sample->loop_end);
	sample->loop_times = get_akai8_word(block.from(header_loop_time));
	// The header has a rate word too, but it is the flag that counts.
	sample->sample_rate = get_akai8_word(block.from(header_rate));
	sample->sample_rate = block[header_rate_flag] ? 44100 : 22050;
}

static void log_s1000_bad_header(const akai_answer &answer)
{
	log_line("[F] BAD RESPONSE (INVALID SAMPLE NAME?) Code: %d, LEN: %d Bytes [%s]\r\n",
		answer[akai_function], answer.size(), hex_text(answer.bytes).c_str());
}

static void log_s2000_bad_header(const akai_answer &answer)
{
	log_line("[D] BAD RESPONSE (INVALID SAMPLE NAME?) Code: %d\r\n", answer[akai_function]);
}

using bad_header_log = void (*)(const akai_answer &answer);

// Read the header of a sample of the loaded list. Null when it was not read, and the record
// is then as it was.
static _sample *read_header(u8 sysex_channel, const char *name, bad_header_log log_bad_header)
{
	_sample *sample = require_sample(name, true);
	if (!sample)
		return nullptr;
	const int index = index_of(sample);
	log_line(
		"[D] FOUND INDEX: %d for sample: [%s]...requesting Sample-Header\r\n", index, name);
	const akai_answer answer =
		ask_akai(akai_message(request_sample_header, sysex_channel, index));
	if (!akai_is_header_of(answer, index)) {
		log_bad_header(answer);
		return nullptr;
	}
	const std::vector<u8> bytes = akai_bytes_from_nibbles(answer.view().from(akai_block));
	const bounded_bytes block = { bytes };
	akai_s1000_sample_from_header(block, index, sample);
	log_header(*sample, block, get_akai8_word(block.from(header_loop_fine)),
		get_akai8_dword(block.from(header_loop_coarse)));
	return sample;
}

void akai_s1000_sample_info(u8, u8 sysex_channel, const char *name)
{
	read_header(sysex_channel, name, log_s1000_bad_header);
}

void akai_s2000_sample_info(u8, u8 sysex_channel, const char *name)
{
	read_header(sysex_channel, name, log_s2000_bad_header);
}

// ---- Download ------------------------------------------------------------------------------

// What the two generations differ in.
struct download_form {
	bad_header_log log_bad_header;
	bool shows_progress;
	// Ask for a packet again until one of 127 bytes comes; otherwise what came is taken.
	bool repeats;
	int pause_ms; // the machine needs it between packets
};

static constexpr download_form s1000_download = { log_s1000_bad_header, false, false, 80 };
static constexpr download_form s2000_download = { log_s2000_bad_header, true, true, 50 };

// The packet with words from offset on. False when the work ends here.
static bool fetch_packet(const download_form &form, u8 sysex_channel, const _sample &sample,
	u64 block, akai_answer *answer)
{
	const u64 offset = block * words_in_packet;
	const u64 words = std::min<u64>(sample.sample_length - offset, words_in_packet);
	auto message = akai_message(
		request_sample_data, sysex_channel, static_cast<int>(sample.device_index));
	set_akai7_dword(
		static_cast<u32>(sample.absolute_start + offset), &message[sample_data_offset]);
	message[sample_data_words] = static_cast<u8>(words);
	do {
		if (form.shows_progress)
			set_progressbar(static_cast<int>(block));
		*answer = ask_akai(message);
		if (answer->port_failed || progress_stopped())
			return false;
	} while (form.repeats && answer->size() != packet_size);
	return true;
}

// Counts the packets that did not come as they were sent.
class packet_tally
{
public:
	int damaged = 0;

	void take(const akai_answer &packet, u64 block)
	{
		if (!is_whole(packet) || !is_due(packet[packet_number], block))
			damaged++;
	}

private:
	static bool is_whole(const akai_answer &packet)
	{
		return packet.size() == packet_size && packet[1] == 0x7E &&
		       packet[packet_kind] == 0x02 &&
		       packet[packet_checksum] == checksum_of(packet.view());
	}
	// Some machines begin a dump with each request, so that every packet has one number;
	// others count on. A packet that is late has the number of an earlier one.
	bool is_due(int number, u64 block)
	{
		if (first < 0) {
			first = number;
			first_block = block;
		}
		const int counted_on = (first + static_cast<int>(block - first_block)) & 0x7F;
		return number == first || number == counted_on;
	}
	int first = -1;      // number of the first whole packet
	u64 first_block = 0; // and its place
};

// What did not come is zero on the wire, which is the lowest value of a word.
static void take_words(bounded_bytes packet, u32 *words, u64 count)
{
	for (u64 i = 0; i < count; i++) {
		const std::size_t at = packet_words + 3 * i;
		const u8 bytes[3] = { packet[at], packet[at + 1], packet[at + 2] };
		words[i] = akai_unpack3(bytes);
	}
}

static void log_packet(
	const download_form &form, const akai_answer &answer, u64 block, u64 blocks, u64 words)
{
	const int number = answer[packet_number], done = shown(block + 1), all = shown(blocks);
	const int bytes = shown(2 * words), offset = shown(block * words_in_packet);
	if (form.repeats)
		log_line(
			"[I] ### Received KK: %d (%d/%d) Blocks [%d Bytes] OFFSET: %d, RESULT-LEN: "
			"%d\r\n",
			number, done, all, bytes, offset, answer.size());
	else
		log_line("[I] ### Received KK: %d (%d/%d) Blocks [%d Bytes] OFFSET: %d\r\n", number,
			done, all, bytes, offset);
}

// All words of a sample. False when the work ended before they were there.
static bool fetch_words(
	const download_form &form, u8 sysex_channel, _sample *sample, packet_tally *tally)
{
	akai_silence silence;
	const u64 blocks = packets_of(sample->sample_length);
	for (u64 block = 0; block < blocks; block++) {
		akai_answer answer;
		if (!fetch_packet(form, sysex_channel, *sample, block, &answer))
			return false;
		tally->take(answer, block);
		silence.hear(answer);
		if (silence.too_long()) {
			log_line("[W] The sampler no longer answers\r\n");
			return false;
		}
		const u64 from = block * words_in_packet;
		const u64 words = std::min<u64>(sample->sample_length - from, words_in_packet);
		take_words(answer.view(), sample->sample_data + from, words);
		log_packet(form, answer, block, blocks, words);
		host.clock->sleep_ms(form.pause_ms);
	}
	return true;
}

// Room for all words. False for a length that no machine can mean.
static bool make_room(_sample *sample)
{
	free_sample_data(sample);
	if (sample->sample_length > most_words) {
		log_line("[F] [%s] cannot have %llu words, no sampler holds more than %llu\r\n",
			sample->name, static_cast<unsigned long long>(sample->sample_length),
			static_cast<unsigned long long>(most_words));
		return false;
	}
	const std::size_t words = std::max<std::size_t>(sample->sample_length, 1);
	sample->sample_data = static_cast<u32 *>(std::calloc(words, sizeof(u32)));
	if (!sample->sample_data)
		log_line("[F] Out of memory for the words of [%s]\r\n", sample->name);
	return sample->sample_data != nullptr;
}

static void log_download(const download_form &form, const _sample &sample)
{
	const int words = shown(sample.sample_length), start = shown(sample.absolute_start);
	if (form.repeats)
		log_line("[D] **** 2000 *************** Requesting %d Words of sample-data "
			 "[Internal "
			 "index: %d] Start: %d, PLAYBACK_MODE: %d\r\n",
			words, shown(sample.device_index), start, sample.playback_mode);
	else
		log_line("[D] ******************* Requesting %d Words of sample-data [Internal "
			 "index: %d] Start: %d, PLAYBACK_MODE: %d\r\n",
			words, shown(sample.device_index), start, sample.playback_mode);
	log_line("[D] ######## REQUESTING %d Bytes from OFFSET: %d (Awaiting %d sample blocks)\r\n",
		shown(2 * sample.sample_length), start, shown(packets_of(sample.sample_length)));
}

static void begin_download_progress(const _sample &sample)
{
	const int blocks = shown(packets_of(sample.sample_length));
	show_progressbar(0, blocks, format_text("Downloading [%s]...", sample.name).c_str());
	log_line("[D] Range for progressbar set to: [%d]\r\n", blocks);
}

static void tell_failed_download()
{
	show_box("ERROR", "Failed to save sample!");
}

// The words of one sample, or a word about why there are none. Nothing is written before all
// of them are there, so no half file is ever left.
static void download_words(const download_form &form, u8 sysex_channel, _sample *sample)
{
	if (!make_room(sample)) {
		tell_failed_download();
		return;
	}
	log_download(form, *sample);
	if (form.shows_progress)
		begin_download_progress(*sample);
	packet_tally tally;
	const bool complete = fetch_words(form, sysex_channel, sample, &tally);
	if (form.shows_progress)
		hide_progressbar(0);
	if (!complete)
		free_sample_data(sample);
	if (!complete && progress_stopped())
		log_line("[I] Download of [%s] stopped, nothing was saved\r\n", sample->name);
	else if (!complete || write_sample(sample, nullptr) != 0)
		tell_failed_download();
	else if (tally.damaged)
		show_box("WARNING",
			tr("%d of %d packets of [%s] came damaged, late or not at all. The file is "
			   "saved, but it clicks or falls silent in these places. Another download "
			   "may help."),
			tally.damaged, shown(packets_of(sample->sample_length)), sample->name);
}

static void download(const download_form &form, u8 sysex_channel, const char *name)
{
	forget_stop();
	log_line("[D] Creating Sample-File: [%s\\sample\\%s.wav]\r\n", current_config_path.c_str(),
		name);
	_sample *sample = read_header(sysex_channel, name, form.log_bad_header);
	// Without its header there is no telling what to ask for, and an empty file in place of a
	// good one would help nobody.
	if (sample)
		download_words(form, sysex_channel, sample);
	else
		tell_failed_download();
}

void akai_s1000_sample_download(u8, u8 sysex_channel, const char *name)
{
	download(s1000_download, sysex_channel, name);
}

void akai_s2000_sample_download(u8, u8 sysex_channel, const char *name)
{
	download(s2000_download, sysex_channel, name);
}

// ---- Names ---------------------------------------------------------------------------------

std::vector<u8> akai_renamed_block(const akai_answer &header, const u8 *name)
{
	std::vector<u8> block = akai_bytes_from_nibbles(header.view().from(akai_block));
	if (block.size() < sample_header_name + akai_name_size)
		return {};
	std::copy_n(name, akai_name_size, &block[sample_header_name]);
	return block;
}

std::vector<u8> akai_header_message(const akai_answer &header, std::span<const u8> block)
{
	std::vector<u8> message(header.bytes.begin(), header.bytes.begin() + akai_block);
	message.resize(akai_block + 2 * block.size() + 1);
	int length = 0;
	create_akai_nibblebuf(
		block.data(), static_cast<unsigned>(block.size()), &message[akai_block], &length);
	return message;
}

void akai_log_header_block(const akai_answer &header, const char *what)
{
	const std::vector<u8> block = akai_bytes_from_nibbles(header.view().from(akai_block));
	log_line("[D] Header-Length: %d Bytes [%s]%s\r\n", static_cast<int>(block.size()),
		hex_text(block).c_str(), what);
}

static void delete_at(u8 sysex_channel, int index)
{
	ask_akai(akai_message(request_delete, sysex_channel, index));
	log_line("[D] Sample successfully deleted!\r\n");
}

static void rename_at(u8 sysex_channel, int index, const char *new_name)
{
	u8 name[akai_name_size + 1];
	make_akai_name(new_name, name, akai_name_size);
	const akai_answer header =
		ask_akai(akai_message(request_sample_header, sysex_channel, index));
	const std::vector<u8> block = akai_renamed_block(header, name);
	if (!akai_is_header_of(header, index) || block.empty()) {
		log_line("[I] BAD RESPONSE (INVALID SAMPLE NAME?) Code: %d\r\n",
			header[akai_function]);
		return;
	}
	akai_log_header_block(header, "");
	log_line("[D] Header-Length: %d Bytes [%s] (NEW NAME)\r\n", static_cast<int>(block.size()),
		hex_text(block).c_str());
	const std::vector<u8> message = akai_header_message(header, block);
	const std::span<const u8> nibbles = std::span(message).subspan(akai_block);
	log_line("[D] Header as nibble: %d Bytes [%s]\r\n", static_cast<int>(nibbles.size()),
		hex_text(nibbles).c_str());
	log_line("[D] RESENDING SAMPLE PARAMETERS TO S1000 (%d Bytes)\r\n",
		static_cast<int>(message.size()));
	ask_akai(message);
}

void akai_s1000_sample_rename(u8, u8 sysex_channel, const char *name, const char *new_name)
{
	log_line("[D] S1000 %s SAMPLE [%s] TO [%s]\r\n", new_name ? "RENAMING" : "DELETING", name,
		new_name ? new_name : "NULL");
	const int index = akai_find_sample(name, false);
	if (new_name)
		rename_at(sysex_channel, index, new_name);
	else
		delete_at(sysex_channel, index);
}

} // namespace velmor
