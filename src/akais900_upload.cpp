// akais900_upload.cpp - a WAV file of the spool into an S900
//
//   common exclusive on      F0 47 cc 05 40 00 00 F7
//   dump                     F0 7E 01 nn 00 0C pp pp pp ll ll ll aa aa aa bb bb bb tt
//                            (kk word*60 xx)* F7
//   common exclusive off     F0 47 cc 06 40 00 00 F7
//   request sample header    F0 47 cc 04 40 nn 00 F7
//   sample header            F0 47 cc .. 40 nn 00 pairs xx F7        back with name and pitch
//
// The dump is one message, sent in pieces at the machine's pace: it needs its time after the
// head, after each block and at the end. What it says meanwhile is not listened to. A dump
// carries no name, so the header of the new sample is read, and goes back with the name and the
// pitch of the file; what is in that header is also the first word of the machine about the
// dump.
//
// Only files of 12 bits go up, as the download writes them.
//
// Knows nothing of: windows.

#include "src/akais900.h"
#include "src/waveqx.h"
#include "src/waveqx_chunks.h"
#include <algorithm>
#include <cstring>

namespace velmor
{

static constexpr int head_ms = 400, block_ms = 300, last_block_ms = 300, end_ms = 500,
		     header_ms = 1000;
static constexpr u32 highest_rate = 16000;
static constexpr double byte_ms = 0.32; // on the wire
enum {
	smpl_loops = 36
};

// One upload under way.
struct upload_job {
	std::string name, path; // base name; file
	u8 channel;             // as it goes on the wire
	int number;
	bool replaces; // a sample that was there
	owned_bytes file;
	u64 size;
	// What the file says.
	int bits, channels;
	u32 rate, period;
	u64 data, words;
	u32 loop_start, loop_end;
	bool loops;
	u8 unity_note;

	bounded_bytes image() const { return { { file.get(), static_cast<std::size_t>(size) } }; }
	u32 blocks() const
	{
		return static_cast<u32>((words + s900_words_in_block - 1) / s900_words_in_block);
	}
};

static int shown(u64 value)
{
	return static_cast<int>(static_cast<u32>(value));
}

static std::string base_name(const std::string &path)
{
	return path.substr(path.rfind('\\') + 1);
}

// ---- The file ----------------------------------------------------------------------------

static u32 word_at(const upload_job &job, u64 at, int bytes)
{
	u32 value = 0;
	for (int i = bytes; i-- > 0;)
		value = value << 8 |
			job.image()[static_cast<std::size_t>(at + static_cast<u64>(i))];
	return value;
}

static bool is_listed(const std::string &name)
{
	return std::any_of(local_sample.begin(), local_sample.end(),
		[&](const _local_sample &local) { return name == local.displayname; });
}

// False after a box.
static bool is_sample(const upload_job &job, const char *path)
{
	if (!is_listed(job.name)) {
		show_box("ERROR", "Invalid Sample: [%s]", job.name.c_str());
		return false;
	}
	_sample sample = {};
	const bool good = create_sample_from_file(path, &sample) != 0;
	free_sample_data(&sample);
	if (!good)
		show_box("ERROR", "Invalid Sample: [%s] GETTING SAMPLE-INFO FAILED!",
			job.name.c_str());
	return good;
}

// The whole of it into memory. False after a box.
static bool read_file(upload_job *job)
{
	const char *path = job->path.c_str();
	input_file file;
	if (file.measure(path)) {
		show_box("ERROR", "Cannot stat [%s]\r\n", path);
		return false;
	}
	job->size = file.size;
	job->file = allocate_bytes(file.size);
	if (!job->file) {
		show_box("ERROR", "Cannot allocate %d Bytes of memory for [%s]\r\n",
			shown(file.size), path);
		return false;
	}
	if (file.open(path)) {
		show_box("ERROR", "Cannot open [%s]\r\n", path);
		return false;
	}
	if (file.read(0, job->file.get(), static_cast<std::size_t>(file.size))) {
		show_box("ERROR", "Cannot read from [%s]\r\n", path);
		return false;
	}
	return true;
}

// False after a box.
static bool has_right_format(upload_job *job)
{
	job->channels = shown(word_at(*job, at_channels, 2));
	job->rate = word_at(*job, at_sample_rate, 4);
	job->bits = shown(word_at(*job, at_bitspersample, 2));
	const u64 counted = u64{ job->rate } * 25 / 10; // as the machine counts it
	job->period = counted ? static_cast<u32>(1000000000 / counted) : 0;
	log_line("[D] Request for uploading [%s] --> Index on Sampler: %d, File: [%s], Channels: "
		 "%d, Bitspersample: %d, Sample-Rate: %d, Period: %d, (%d)\r\n",
		job->name.c_str(), job->number, job->path.c_str(), job->channels, job->bits,
		shown(job->rate), shown(job->period), shown(job->size));
	// A rate so low that its period does not fit into the head is none either.
	if (job->bits == 12 && job->channels <= 1 && job->rate <= highest_rate && counted &&
		job->period <= s900_longest_dump)
		return true;
	show_box("ERROR",
		"Invalid Sample-Format (%d Bits/Sample) %d Channels, %d Hz Sampling-Rate. Must be "
		"12 Bits, Rate <= 16000 Hz and Channels = 1",
		job->bits, job->channels, shown(job->rate));
	return false;
}

static void take_smpl(upload_job *job, u64 at)
{
	job->unity_note = static_cast<u8>(word_at(*job, at + smpl_unity_note, 1));
	if (word_at(*job, at + smpl_loops, 4) == 0)
		return;
	job->loops = true;
	job->loop_start = word_at(*job, at + smpl_loop_start, 4);
	job->loop_end = word_at(*job, at + smpl_loop_end, 4);
}

// Pitch, loop and words. A file that ends early has the words that it holds.
static void look_at_chunks(upload_job *job)
{
	u64 at = u64{ 20 } + word_at(*job, at_fmt_length, 4), bytes = 0;
	job->data = job->size;
	for (u64 number = 0; at < job->size; number++) {
		const u32 length = word_at(*job, at + 4, 4);
		char name[5] = {};
		for (std::size_t c = 0; c < 4; c++)
			name[c] = static_cast<char>(job->image()[static_cast<std::size_t>(at) + c]);
		if (number < logged_chunks)
			log_line("[D] Chunk-Header: [%.4s] (%d Bytes)\r\n", name, shown(length));
		if (std::strcmp(name, "smpl") == 0)
			take_smpl(job, at);
		if (std::strcmp(name, "data") == 0) {
			job->data = std::min(at + 8, job->size);
			bytes = std::min<u64>(length, job->size - job->data);
			break;
		}
		at += u64{ 8 } + length;
	}
	job->words = bytes / 2;
	if (!job->loops)
		job->loop_start = job->loop_end = static_cast<u32>(job->words);
	log_line("[D] Data-Offset found (%d) (%d Bytes), PITCH: %d, Sample-Words: %d\r\n",
		shown(job->data), shown(bytes), job->unity_note, shown(job->words));
}

// A loop outside of the words would cost the whole dump: the machine refuses it. False after a
// box.
static bool can_be_sent(upload_job *job)
{
	if (job->loops && (job->loop_start > job->loop_end || job->loop_end > job->words)) {
		log_line("[W] The loop of [%s] lies outside of its words and is left out\r\n",
			job->name.c_str());
		job->loops = false;
		job->loop_start = job->loop_end = static_cast<u32>(job->words);
	}
	if (job->words && job->words <= s900_longest_dump)
		return true;
	show_box("ERROR",
		tr("The file [%s] has %llu sample words. An upload takes 1 to %u of them, and the "
		   "sampler as many as it has memory for."),
		job->path.c_str(), static_cast<unsigned long long>(job->words), s900_longest_dump);
	return false;
}

// ---- The dump ----------------------------------------------------------------------------

// The bridge takes a message at once and leaves the wire to the far end.
static void rest(std::size_t bytes, int milliseconds)
{
	const double wire = use_tcp ? static_cast<double>(bytes) * byte_ms : 0;
	akai_pause(milliseconds + static_cast<int>(wire));
}

static std::array<u8, 19> head_of(const upload_job &job)
{
	auto head = s900_dump_head;
	head[s900_dump_number] = static_cast<u8>(job.number);
	set_s900_number(job.period, &head[s900_dump_period]);
	set_s900_number(static_cast<u32>(job.words), &head[s900_dump_words]);
	set_s900_number(job.loop_start, &head[s900_dump_loop_start]);
	set_s900_number(job.loop_end, &head[s900_dump_loop_end]);
	head[s900_dump_loop_type] = job.loops ? 0 : 1;
	return head;
}

// The word behind the last one goes up too: it is what the file has there. What follows is 0.
static std::array<u8, s900_block_size> block_of(const upload_job &job, u32 block)
{
	std::array<u8, s900_block_size> bytes = { static_cast<u8>(block & 0x7F) };
	for (u32 i = 0; i < s900_words_in_block; i++) {
		const u64 index = u64{ block } * s900_words_in_block + i;
		if (index > job.words)
			break;
		const u32 word = word_at(job, job.data + 2 * index, 2);
		set_s900_word(static_cast<std::int16_t>(word), &bytes[s900_block_words + 2 * i]);
	}
	bytes[s900_block_checksum] =
		s900_checksum({ bytes }, s900_block_words, s900_block_checksum);
	return bytes;
}

static bool enable_common(const upload_job &job)
{
	const auto message = s900_message(enable_common_exclusive, job.channel);
	log_line("[D] Requesting Enable of COMMON SYSEX (%d Bytes) [%s]\r\n",
		static_cast<int>(message.size()), hex_text(message).c_str());
	const bool sent = tell_akai(message);
	log_line("[D] --> (%d Bytes) [%s]\r\n", 0, "");
	return sent;
}

static void disable_common(const upload_job &job)
{
	const auto message = s900_message(disable_common_exclusive, job.channel);
	log_line("[D] Requesting Disable of COMMON SYSEX (%d Bytes) [%s] DOWNLOAD FINISHED\r\n",
		static_cast<int>(message.size()), hex_text(message).c_str());
	tell_akai(message);
}

static bool send_head(const upload_job &job)
{
	const auto head = head_of(job);
	log_line("[D] Requesting Sample-Upload (%d Bytes) [%s] %d Blocks\r\n",
		static_cast<int>(head.size()), hex_text(head).c_str(), shown(job.blocks()));
	if (!tell_akai(head))
		return false;
	show_progressbar(
		0, shown(job.blocks()), format_text("Uploading [%s]...", job.name.c_str()).c_str());
	rest(head.size(), head_ms);
	return true;
}

// All blocks. False when the dump ended before the last of them: the port failed, or it was
// stopped.
static bool send_blocks(const upload_job &job)
{
	const u32 blocks = job.blocks();
	for (u32 i = 0; i < blocks; i++) {
		if (progress_stopped())
			return false;
		const auto block = block_of(job, i);
		set_progressbar(shown(i));
		log_line("[D] Requesting Sample-Block (%d Bytes) [%s] %d/%d Blocks\r\n",
			static_cast<int>(block.size()), hex_text(block).c_str(), shown(i),
			shown(blocks));
		if (!tell_akai(block))
			return false;
		rest(block.size(), block_ms);
	}
	return true;
}

static void send_end(const upload_job &job)
{
	static constexpr u8 end[] = { 0xF7 };
	log_line("[D] Requesting Sample-End (%d Bytes) [%s] after %d Blocks\r\n", 1,
		hex_text(end).c_str(), shown(job.blocks()));
	tell_akai(end);
}

// The message is ended, so that the machine hears others again; it takes no dump that ends
// early.
static void break_off(const upload_job &job)
{
	const bool stopped = progress_stopped();
	static constexpr u8 end[] = { 0xF7 };
	if (tell_akai(end)) {
		rest(1, end_ms);
		disable_common(job);
	}
	hide_progressbar(0);
	log_line("[I] Upload of [%s] ended early\r\n", job.name.c_str());
	const char *what = stopped ? tr("The upload was stopped") : tr("The upload broke off");
	if (job.replaces)
		show_box("WARNING",
			tr("%s. The sampler has a sample [%s] in this place: what is left of it is "
			   "not known. Listen to it, and upload it again if it is damaged."),
			what, job.name.c_str());
	else
		show_box(stopped ? "INFO" : "WARNING",
			tr("%s. If the sampler shows a new sample without a proper name, that is "
			   "what "
			   "came of it: delete it on the sampler."),
			what);
}

// ---- The name ----------------------------------------------------------------------------

// Not the alphabet of names: "+" and "-" are in that and become a full stop all the same.
static std::string cleaned(std::string name)
{
	for (char &c : name) {
		if (c >= 'a' && c <= 'z')
			c = static_cast<char>(c - 'a' + 'A');
		const bool kept = (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' ' ||
				  c == '.' || c == '#';
		c = kept ? c : '.';
	}
	log_line("[D] Rewritten Basename: [%s]\r\n", name.c_str());
	return name;
}

static akai_answer read_new_header(const upload_job &job, const std::string &name)
{
	const auto message = s900_message(request_s900_header, job.channel, job.number);
	log_line("[D] Requesting Sample-Information for Sample: %d SYSEX (%d Bytes) [%s] DOWNLOAD "
		 "FINISHED [%s]\r\n",
		job.number, static_cast<int>(message.size()), hex_text(message).c_str(),
		name.c_str());
	akai_answer answer = ask_akai(message);
	log_line("[D] --> [%s] (%d Bytes) XOR: 0x%02X\r\n", hex_text(answer.bytes).c_str(),
		answer.size(), s900_checksum(answer.view(), s900_data, s900_header_checksum));
	return answer;
}

// Whether the header may go back: all of it came, and undamaged. Otherwise a box has told, or
// the user was asked.
static bool may_write(const upload_job &job, const akai_answer &header)
{
	if (header.size() < s900_header_size || !is_s900_message(header)) {
		show_box("WARNING",
			tr("The words of [%s] are sent, but the sampler %s about its sample %d, so "
			   "the name and the pitch were not written. If the sample is not in its "
			   "list, "
			   "its memory is full, blocks were lost on the way, or it does not "
			   "listen: "
			   "uploads go to exclusive channel %d, and in omni mode it hears them "
			   "all."),
			job.name.c_str(),
			header.size() ? tr("broke off telling") : tr("does not answer"),
			job.number + 1, job.channel + 1);
		return false;
	}
	if (s900_checksum(header.view(), s900_data, s900_header_checksum) ==
		header[s900_header_checksum])
		return true;
	return ask_box("WARNING",
		tr("The sampler's header of [%s] came damaged: its checksum is wrong. Write the "
		   "name "
		   "into it nevertheless?"),
		job.name.c_str());
}

static void tell_difference(const upload_job &job, const akai_answer &header)
{
	const u32 held = get_s900_paired(header.view().from(s900_header_length), 8);
	if (held != job.words)
		show_box("WARNING",
			tr("The sampler holds %u words of [%s], and %u were sent. It did not take "
			   "the "
			   "whole dump: upload the sample again."),
			held, job.name.c_str(), static_cast<u32>(job.words));
}

// The sampler's header of what was just dumped, with the local name and pitch.
static void name_upload(const upload_job &job)
{
	_sample local = {};
	const std::string name = cleaned(job.name);
	copy_text(local.name, name);
	local.original_pitch = job.unity_note;
	rest(0, header_ms);
	const akai_answer header = read_new_header(job, name);
	if (header.port_failed || !may_write(job, header))
		return;
	std::vector<u8> message = header.bytes;
	message[akai_index] = static_cast<u8>(job.number);
	record_to_block(akai_s900_sample_parameters, taken_back, local, message);
	message[s900_header_checksum] = s900_checksum({ message }, s900_data, s900_header_checksum);
	log_line("[D] Requesting Sample-Information update Sample: %d SYSEX (%d Bytes) [%s] "
		 "DOWNLOAD FINISHED [%s]\r\n",
		job.number, static_cast<int>(message.size()), hex_text(message).c_str(),
		name.c_str());
	if (tell_akai(message))
		tell_difference(job, header);
}

// ---- Upload ------------------------------------------------------------------------------

// The number of the sample of that name, or the count of the list.
static void choose_number(upload_job *job, const _dev_status &status)
{
	const int samples = std::clamp(status.samples, 0, max_samples);
	job->number = samples;
	for (int i = 0; i < samples && !job->replaces; i++) {
		job->replaces = job->name == status.sample[i].name;
		if (job->replaces)
			job->number = status.sample[i].number;
	}
}

// False when the number fits into no message, or when another sample has it and is to stay: the
// numbers of a list can have gaps.
static bool is_free(const upload_job &job, const _dev_status &status)
{
	if (job.number > s900_most_number) {
		show_box("ERROR", tr("The sampler's list is full: no sample has the number %d."),
			job.number);
		return false;
	}
	const int samples = std::clamp(status.samples, 0, max_samples);
	for (int i = 0; i < samples && !job.replaces; i++)
		if (status.sample[i].number == job.number)
			return ask_box("WARNING",
				tr("The sampler has the sample [%s] in the place that [%s] would "
				   "go "
				   "to. Overwrite it?"),
				status.sample[i].name, job.name.c_str());
	return true;
}

static void send_dump(const upload_job &job)
{
	if (!enable_common(job))
		return;
	if (!send_head(job))
		return;
	if (!send_blocks(job)) {
		break_off(job);
		return;
	}
	rest(0, last_block_ms);
	send_end(job);
	rest(1, end_ms);
	disable_common(job);
	name_upload(job);
	hide_progressbar(0);
}

void akai_s900_upload_sample(const char *path)
{
	upload_job job = {};
	job.name = base_name(path);
	log_line("[I] Request for uploading [%s] [%s]\r\n", path, job.name.c_str());
	const _dev_status *status = current_sampler ? current_sampler->status : nullptr;
	if (!has_s900_status(status) || !status)
		return;
	forget_stop();
	job.path = wave_path_of(path);
	job.channel = static_cast<u8>(current_sampler->sampler_sysex);
	choose_number(&job, *status);
	if (!is_sample(job, path) || !read_file(&job) || !has_right_format(&job))
		return;
	look_at_chunks(&job);
	if (can_be_sent(&job) && is_free(job, *status))
		send_dump(job);
}

} // namespace velmor
