// akais1000_upload.cpp - samples of the S1000 family: words that go
//
//   dump header              F0 7E cc 01 ss SS 10 pp pp pp ll ll ll aa aa aa bb bb bb 00 F7
//   data packet              F0 7E cc 02 kk (word*3)*40 xx F7        127 bytes
//   acknowledgement          F0 7E cc 7F kk F7                       7C: wait
//   cancel                   F0 7E cc 7D kk F7
//   sample header            F0 47 cc 0B 48 ss SS nibbles F7
//
// The first four are those of the MIDI Sample Dump Standard. An upload sends a header and packets,
// each of which the sampler acknowledges, and then writes the name into the sampler's own header
// of the sample, because a dump carries none. Stop is asked between packets, and cancels.
//
// An exact upload announces the words that there are, writes the rest of the header behind the
// name, and reads it back, because the reply decides nothing.
//
// Knows nothing of: the layout of WAV files, windows.

#include "src/akais1000_exact.h"
#include "src/akais1000_samples.h"
#include "src/velmor_transfer.h"
#include "src/velmor_window.h"
#include "src/waveqx.h"
#include <algorithm>

namespace velmor
{

// DUMP HEADER                                0     1     2     3     4     5     6
static constexpr std::array<u8, 21> dump_header = //
	{ 0xF0, 0x7E, 0x00, 0x01, 0x00, 0x00, 0x10,
		// 7     8     9    10    11    12    13    14    15    16    17    18    19    20
		0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
		0xF7 };
enum {
	dump_number = 4,
	dump_period = 7,
	dump_length = 10,
	dump_loop_start = 13,
	dump_loop_end = 16,
};
// What three bytes of seven bits can say.
static constexpr u64 longest_dump = 0x1FFFFF;

// CANCEL                                     0     1     2     3     4     5
static constexpr std::array<u8, 6> cancel_dump = //
	{ 0xF0, 0x7E, 0x00, 0x7D, 0x00, 0xF7 };

// ACKNOWLEDGEMENT
enum {
	ack_size = 6,
	ack_kind = 3,
	ack_positive = 0x7F,
	ack_wait = 0x7C
};

// What the upload of the table and the one beside it differ in.
struct upload_form {
	bool chooses_number; // by name; otherwise sample 0
	bool shows_progress;
	const char *tag;  // of the lines that tell of packets
	bool writes_name; // into the sampler's header
};

static constexpr upload_form s2000_upload = { true, true, "[D]", true };
static constexpr upload_form s1000_upload = { false, false, "[I]", false };

// One upload under way.
struct upload_job {
	const upload_form *form;
	const _sample *sample;
	u8 sysex_channel;
	int number;
	bool replaces;                  // a sample that was there
	u64 announced;                  // words that the dump header tells of
	const akai_sample_facts *facts; // of an exact upload; null for the other
};

static void put_seven_bits_3(u64 value, u8 *p)
{
	for (int i = 0; i < 3; i++)
		p[i] = static_cast<u8>(value >> (7 * i) & 0x7F);
}

static void tell_bad_ack()
{
	show_box("ERROR", "Upload failed (received bad header ACK)");
}

static bool is_ack(const akai_answer &answer, u8 kind)
{
	return answer.size() >= ack_size && answer[ack_kind] == kind;
}

// Nanoseconds from word to word.
static u32 sample_period(const _sample &sample)
{
	return sample.sample_rate ? static_cast<u32>(1e9 / static_cast<double>(sample.sample_rate))
				  : 0;
}

static std::array<u8, 21> dump_header_of(const upload_job &job)
{
	auto message = akai_message(dump_header, job.sysex_channel);
	set_akai7_word(static_cast<u32>(job.number), &message[dump_number]);
	put_seven_bits_3(sample_period(*job.sample), &message[dump_period]);
	put_seven_bits_3(job.announced, &message[dump_length]);
	const akai_sample_facts *facts = job.facts;
	put_seven_bits_3(
		facts ? facts->loop_start : job.sample->loop_start, &message[dump_loop_start]);
	put_seven_bits_3(facts ? facts->loop_end : job.sample->loop_end, &message[dump_loop_end]);
	return message;
}

// Announce the dump. A sampler that has to make room says wait and later that it is ready;
// what it says then is not tested.
static bool announce(const upload_job &job)
{
	log_line("[D] Sample period: %d, SAM-Sample-Length: %d\r\n",
		shown(sample_period(*job.sample)), shown(job.sample->sample_length));
	log_line("[D] Sample-Bytes: %d\n", shown(job.sample->sample_bytes));
	const auto message = dump_header_of(job);
	const akai_answer answer = ask_akai(message);
	log_line("[D] Sent sample-header request[%d Bytes]...received %d Bytes\r\n",
		static_cast<int>(message.size()), answer.size());
	if (!is_ack(answer, ack_positive) && !is_ack(answer, ack_wait)) {
		tell_bad_ack();
		return false;
	}
	if (is_ack(answer, ack_wait)) {
		log_line("[D] Waiting for sampler to come ready...\r\n");
		u8 result[akai_answer_room];
		int length = sizeof result;
		wait_midi_string_ex(result, &length, 1, 2);
		log_line("[D] Received %d Midi Bytes\r\n", length);
	}
	return true;
}

// Words of the sample that are in memory: frames of other widths come without values.
static u64 words_in_memory(const _sample &sample)
{
	const bool decoded = sample.bytespersample == 2 || sample.bytespersample == 3;
	return sample.sample_data && decoded ? sample.sample_length : 0;
}

static std::array<u8, packet_size> packet_of(const upload_job &job, u64 block)
{
	constexpr u32 midpoint = 0;
	std::array<u8, packet_size> packet = { 0xF0, 0x7E, job.sysex_channel, 0x02 };
	packet[packet_number] = block & 0x7F;
	const u64 words = words_in_memory(*job.sample);
	for (u64 i = 0; i < words_in_packet; i++) {
		const u64 at = block * words_in_packet + i;
		akai_dump_word(at < words ? job.sample->sample_data[at] : midpoint,
			&packet[packet_words + 3 * i]);
	}
	packet[packet_checksum] = checksum_of({ packet });
	packet[packet_size - 1] = 0xF7;
	return packet;
}

// The sampler waits for a packet that will not come. What it had in this place is gone since
// it took the header.
static void cancel(const upload_job &job, u64 block)
{
	auto message = akai_message(cancel_dump, job.sysex_channel);
	message[packet_number] = block & 0x7F;
	tell_akai(message);
	log_line("[I] Upload of [%s] stopped\r\n", job.sample->name);
	if (job.form->shows_progress)
		hide_progressbar(0);
	if (job.replaces)
		show_box("WARNING",
			tr("The upload was stopped and the sampler told to forget it. The sample "
			   "[%s] "
			   "that the sampler had in this place is gone: upload it again, or delete "
			   "what is left of it."),
			current_sampler->status->sample[job.number].name);
	else
		show_box("INFO", tr("The upload was stopped and the sampler told to forget it."));
}

// One packet after the other, each with its acknowledgement. False when the dump ended early.
// After the last one there is nothing left to stop but the name.
static bool send_packets(const upload_job &job)
{
	const u64 blocks = packets_of(job.announced);
	for (u64 block = 0; block < blocks; block++) {
		const auto packet = packet_of(job, block);
		const akai_answer answer = ask_akai(packet);
		log_line("%s Sent sample-dump packet[%d Bytes]...received %d Bytes (BLOCK: "
			 "%d/%d)\r\n",
			job.form->tag, packet_size, answer.size(), shown(block + 1), shown(blocks));
		if (!is_ack(answer, ack_positive)) {
			tell_bad_ack();
			return false;
		}
		if (job.form->shows_progress)
			set_progressbar(shown(block));
		if (block + 1 < blocks && progress_stopped()) {
			cancel(job, block);
			return false;
		}
	}
	return true;
}

// The sampler's header of what was just dumped, under the local name. False when the sampler
// tells of another sample.
static bool name_upload(const upload_job &job)
{
	u8 name[akai_name_size + 1];
	make_akai_name(job.sample->name, name, akai_name_size);
	const akai_answer header =
		ask_akai(akai_message(request_sample_header, job.sysex_channel, job.number));
	const std::vector<u8> block = akai_renamed_block(header, name);
	if (!akai_is_header_of(header, job.number) || block.empty()) {
		log_line("BAD RESPONSE (INVALID SAMPLE NAME?) Code: %d\r\n", header[akai_function]);
		return false;
	}
	if (!job.form->writes_name) {
		log_line("Sample renamed...\r\n");
		return true;
	}
	log_line("[D] Sample renaming...Sample-Number: [%d]\r\n", job.number);
	akai_log_header_block(header, "");
	const std::vector<u8> message = akai_header_message(header, block);
	const akai_answer answer = ask_akai(message);
	log_line("[D] Sent sample-header request[%d Bytes]...received %d Bytes\r\n",
		static_cast<int>(message.size()), answer.size());
	return true;
}

static std::vector<u8> ask_header(const upload_job &job, akai_answer *answer)
{
	*answer = ask_akai(akai_message(request_sample_header, job.sysex_channel, job.number));
	return akai_is_header_of(*answer, job.number)
		       ? akai_bytes_from_nibbles(answer->view().from(akai_block))
		       : std::vector<u8>();
}

// The facts of a sample into the header that has its name now. False when the sampler does not
// have them then.
static bool write_facts(const upload_job &job)
{
	akai_answer header;
	std::vector<u8> block = ask_header(job, &header);
	if (block.size() < sample_header_size) {
		log_line("[W] No header of sample %d came back\r\n", job.number);
		return false;
	}
	akai_put_facts(*job.facts, &block);
	const std::vector<u8> message = akai_header_message(header, block);
	const akai_answer answer = ask_akai(message);
	log_line("[D] Sent the whole header of sample %d [%d Bytes]...received %d Bytes\r\n",
		job.number, static_cast<int>(message.size()), answer.size());
	return ask_header(job, &header) == block;
}

// A bar that is up stays up when the sampler refuses; it tells how far the dump came. True when
// all has arrived.
static bool send_dump(const upload_job &job)
{
	if (!announce(job))
		return false;
	const u64 blocks = packets_of(job.announced);
	log_line("%s Transmitting %d Blocks (Last block contains %d Words)\r\n", job.form->tag,
		shown(blocks), shown(job.announced % words_in_packet));
	if (job.form->shows_progress)
		show_progressbar(0, shown(blocks),
			format_text("Uploading [%s]...", job.sample->name).c_str());
	if (!send_packets(job) || !name_upload(job))
		return false;
	const bool whole = !job.facts || write_facts(job);
	if (job.form->shows_progress)
		hide_progressbar(0);
	if (whole)
		show_box("INFO", "Sample successfully uploaded!");
	else
		show_box("WARNING",
			tr("The sound of [%s] was uploaded, but the sampler did not take its "
			   "pitch, loop, play mode and tuning."),
			job.sample->name);
	return whole;
}

// The header of a dump counts bytes where words are due, so 16 bit words are announced twice
// over, and the second half of the dump is silence, but for an exact upload. What the three bytes
// of the count cannot say is left off that silence; a sample whose own words they cannot count is
// refused.
static bool upload_sample(
	const upload_form &form, const _sample &sample, const akai_sample_facts *facts)
{
	if (sample.sample_length > longest_dump) {
		log_line("[F] [%s] has %llu words, a sample dump carries %llu\r\n", sample.name,
			static_cast<unsigned long long>(sample.sample_length),
			static_cast<unsigned long long>(longest_dump));
		show_box("ERROR", tr("Sample too long for a sample dump (%llu words at most)!"),
			static_cast<unsigned long long>(longest_dump));
		return false;
	}
	upload_job job = { .form = &form,
		.sample = &sample,
		.sysex_channel = static_cast<u8>(current_sampler->sampler_sysex_channel),
		.number = 0,
		.replaces = false,
		.announced =
			facts ? sample.sample_length : std::min(sample.sample_bytes, longest_dump),
		.facts = facts };
	log_line("[D] Uploading Sample [%s] to current Sampler  Number requested: %d, "
		 "SYSEX-CHANNEL: %d\r\n",
		sample.name, sample.number, job.sysex_channel);
	if (form.chooses_number)
		job.number = akai_find_sample(sample.name, false);
	job.replaces = job.number < akai_samples_listed();
	log_line("[D] New Sample-Number: %d\r\n", job.number);
	return send_dump(job);
}

// Called with what was read of the file; its words are given back afterwards.
template <typename sending> static bool with_file(const char *path, sending send)
{
	if (!current_sampler)
		return false;
	forget_stop();
	log_line("[D] Trying to upload [%s]\r\n", path);
	_sample sample = {};
	bool sent = false;
	if (create_sample_from_file(path, &sample)) {
		display_sample_information(&sample, "LOCAL");
		sent = send(sample);
	} else {
		show_box("INFO", "Sample corrupted...cannot read information!");
	}
	free_sample_data(&sample);
	return sent;
}

void akai_s2000_sample_upload(const char *path)
{
	with_file(path, [&](const _sample &sample) {
		if (!exact_uploads() || !akai_goes_exactly(sample))
			return upload_sample(s2000_upload, sample, nullptr);
		const akai_sample_facts facts = akai_facts_of_file(wave_path_of(path), sample);
		return upload_sample(s2000_upload, sample, &facts);
	});
}

void akai_s1000_sample_upload(const char *path)
{
	with_file(path,
		[](const _sample &sample) { return upload_sample(s1000_upload, sample, nullptr); });
}

static bool refuse_exactly(const char *words)
{
	show_box("ERROR", "%s", words);
	return false;
}

bool akai_s1000_upload_exactly(const char *path, std::span<const u8> header)
{
	return with_file(path, [&](_sample &sample) {
		if (!akai_goes_exactly(sample))
			return refuse_exactly(
				tr("Only 16 bit mono files can be uploaded exactly."));
		akai_sample_facts facts = akai_facts_of_file(wave_path_of(path), sample);
		if (header.empty())
			return upload_sample(s2000_upload, sample, &facts);
		facts.kept.assign(header.begin(), header.end());
		_sample told = {};
		akai_s1000_sample_from_header({ header }, 0, &told);
		if (header.size() < sample_header_size ||
			told.sample_length != sample.sample_length)
			return refuse_exactly(
				tr("The header that was kept is not that of this sample."));
		copy_text(sample.name,
			akai_trimmed_name(bounded_bytes{ header }.from(sample_header_name)));
		return upload_sample(s2000_upload, sample, &facts);
	});
}

} // namespace velmor
