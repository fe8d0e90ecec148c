// akais900_lists.cpp - what an S900 holds
//
//   request catalogue        F0 47 cc 03 40 00 00 F7
//   request program          F0 47 cc 02 40 nn 00 F7
//   request sample header    F0 47 cc 04 40 nn 00 F7
//   catalogue                F0 47 cc .. 40 00 00 (type nn name*9 ..)* F7
//
// The catalogue decides what both lists hold, each time that the status is asked for. A
// program comes with all its keygroups in one message.
//
// A sampler may say anything: counts are cut to what came and to what a _dev_status holds.
//
// Knows nothing of: sample data, windows.

#include "src/akais900.h"
#include <algorithm>
#include <cstring>

namespace velmor
{

// REQUEST CATALOGUE                          0     1     2     3     4     5     6     7
static constexpr std::array<u8, 8> request_catalogue = //
	{ 0xF0, 0x47, 0x00, 0x03, 0x40, 0x00, 0x00, 0xF7 };
enum {
	catalogue_entries = 7,
	entry_name = 2,
};
static constexpr u8 end_byte = 0xF7;
// As many entries as a _dev_status holds.
static constexpr int catalogue_room =
	catalogue_entries + s900_entry_size * (max_programs + max_samples) + 1;

static int shown(u64 value)
{
	return static_cast<int>(static_cast<u32>(value));
}

// Bytes of an answer as the log shows them.
static std::string hex_of(const akai_answer &answer, std::size_t from, std::size_t count)
{
	const auto bytes = answer.view().from(from).bytes;
	return hex_text(bytes.first(std::min(count, bytes.size())));
}

bool has_s900_status(const _dev_status *status)
{
	if (status && status->status == 1)
		return true;
	log_line("WARNING! Must do a 'getstatus' before\r\n");
	return false;
}

bool is_s900_message(const akai_answer &answer)
{
	const auto &bytes = answer.bytes;
	return bytes.size() > 1 && bytes.back() == end_byte &&
	       std::all_of(bytes.begin() + 1, bytes.end() - 1, [](u8 byte) { return byte < 0x80; });
}

// ---- Status and catalogue ----------------------------------------------------------------

// What was known of the entry that stood in this place stays if it is the same one, so that a
// list that was read needs no second reading.
static void take_entry(bounded_bytes entry, int index, _program *program)
{
	const i32 number = program->number;
	const std::string name = program->name;
	block_to_record(akai_s900_catalogue_programs, entry, *program);
	program->index = index;
	if (program->number != number || program->name != name)
		program->keygroups = 0;
}

static void take_entry(bounded_bytes entry, int index, _sample *sample)
{
	_sample fresh = {};
	block_to_record(akai_s900_catalogue_samples, entry, fresh);
	fresh.device_index = static_cast<u64>(index);
	if (fresh.number == sample->number && std::strcmp(fresh.name, sample->name) == 0)
		return;
	free_sample_data(sample);
	*sample = fresh;
}

// One more entry of a kind, while there is room.
template <typename record>
static void add_entry(bounded_bytes entry, record *records, int room, int *count)
{
	if (*count < room)
		take_entry(entry, *count, &records[*count]);
	else
		log_line("[W] The sampler's catalogue is longer than a list\r\n");
	*count = std::min(*count + 1, room);
}

static bool is_complete(const akai_answer &answer)
{
	return answer.size() && answer.bytes.back() == end_byte;
}

static void read_catalogue(const akai_answer &catalogue, _dev_status *status)
{
	status->programs = status->samples = status->multis = 0;
	for (std::size_t at = catalogue_entries;; at += s900_entry_size) {
		const bounded_bytes entry = catalogue.view().from(at);
		const u8 type = entry[0];
		if (entry.size() < s900_entry_size || entry[entry_name] == end_byte ||
			(type != 'S' && type != 'P'))
			break;
		_sample shown_entry = {};
		block_to_record(akai_s900_catalogue_samples, entry, shown_entry);
		log_line("[D] S900 (Type: %c), NR: %d {%s}\r\n", type, shown_entry.number,
			shown_entry.name);
		if (type == 'P')
			add_entry(entry, status->program, max_programs, &status->programs);
		else
			add_entry(entry, status->sample, max_samples, &status->samples);
	}
	if (catalogue.size() && !is_complete(catalogue))
		log_line("[W] The catalogue broke off, %d programs and %d samples of it are "
			 "there\r\n",
			status->programs, status->samples);
}

static bool has_sample_0(const _dev_status *status)
{
	return std::any_of(status->sample, status->sample + status->samples,
		[](const _sample &sample) { return sample.number == 0; });
}

// The header of sample 0 is asked for, and not used. Where the catalogue has none the machine
// has nothing to say, and is not waited for longer than a header takes on the wire: should one
// come all the same, it is not taken for the next answer.
static void request_overall(
	u8 channel, u8 sysex_channel, const akai_answer &catalogue, const _dev_status *status)
{
	const auto message = s900_message(request_s900_header, channel - 1);
	log_line("[D] OVERALL Requesting Akai s900 Status on Exclusive Channel: %d "
		 "[SYSEX-CHANNEL: %d], REQUEST_LEN: %d\r\n",
		channel, sysex_channel, static_cast<int>(message.size()));
	int length = 0;
	if (!is_complete(catalogue) || has_sample_0(status))
		length = ask_akai(message, s900_data_room).size();
	else if (tell_akai(message))
		akai_pause(100);
	log_line("[D] OVERALL Requested Akai s900 Status on Exclusive Channel: %d "
		 "[SYSEX-CHANNEL: %d] --> %d Bytes\r\n",
		channel, sysex_channel, length);
}

void akai_s900_getstatus(u8 channel, u8 sysex_channel, _dev_status *status)
{
	const auto message = s900_message(request_catalogue, channel - 1);
	log_line("[D] Requesting Akai s900 Status on Exclusive Channel: %d [SYSEX-CHANNEL: %d], "
		 "REQUEST_LEN: %d\r\n",
		channel, sysex_channel, static_cast<int>(message.size()));
	const akai_answer catalogue = ask_akai(message, catalogue_room);
	log_line("[D] Requested Akai s900 Status on Exclusive Channel: %d [SYSEX-CHANNEL: %d] --> "
		 "%d Bytes\r\n",
		channel, sysex_channel, catalogue.size());
	read_catalogue(catalogue, status);
	// A port that failed has said so; once is enough.
	if (!catalogue.port_failed)
		request_overall(channel, sysex_channel, catalogue, status);
	status->status = 1;
	copy_text(status->version, format_text("%d.%d", 1, 1));
}

// ---- Programs ----------------------------------------------------------------------------

akai_answer ask_s900_program(std::span<const u8> message)
{
	// What the wire carries in two seconds, the least that an exchange waits.
	constexpr int carried = 6000;
	akai_answer answer = ask_akai(message, s900_data_room);
	if (answer.size() < carried || answer.bytes.back() == end_byte)
		return answer;
	log_line("[I] The program is longer than an exchange waits and is asked for again\r\n");
	akai_pause(1000); // until the rest of it has gone by
	return ask_akai(message, s900_data_room, send_midi_string_ex_s900);
}

static void log_zone(const char *which, const akai_answer &answer, std::size_t at,
	const _keyzone &zone, const std::string &behind)
{
	log_line("[D] %s-Sample-Name: [%s] (%s)%s\r\n", which, zone.samplename,
		hex_of(answer, at, 2 * s900_name_size).c_str(), behind.c_str());
}

static void log_keygroup(const akai_answer &answer, int k, const _keygroup &keygroup)
{
	enum {
		soft_name = 131,
		soft_sign = 174,
		loud_name = 175
	};
	const auto base = s900_keygroup_at(k);
	const bounded_bytes block = answer.view().from(base);
	const _keyzone &soft = keygroup.keyzone[0], &loud = keygroup.keyzone[1];
	log_line("[D] KEYGROUP[%d], TRANSPOSE_OFFSET(0): %d[0x%08X] TRANSPOSE_OFFSET(1): "
		 "%d[0x%08X]\r\n",
		k, soft.transpose_offset, static_cast<u32>(soft.transpose_offset),
		loud.transpose_offset, static_cast<u32>(loud.transpose_offset));
	log_line("[D] KEYGROUP[%d], FILTER(0): %d, LOUDNESS(0): %d (%d), FILTER(1): %d, "
		 "LOUDNESS(1): %d\r\n",
		k, soft.s900_filter, soft.s900_loudness, block[soft_sign], loud.s900_filter,
		loud.s900_loudness);
	log_zone("SOFT", answer, base + soft_name, soft, "");
	log_zone("LOUD", answer, base + loud_name, loud,
		format_text(" VEL-SWITCH: 0x%02X, 0x%02X", block[s900_velocity_switch],
			block[s900_velocity_switch + 1]));
}

// Keygroups of which every byte came.
static int whole_keygroups(const akai_answer &answer)
{
	return std::max(answer.size() - s900_first_keygroup, 0) / s900_keygroup_size;
}

static void read_program(const akai_answer &answer, _program *program)
{
	block_to_record(akai_s900_program_parameters, answer.view(), *program);
	log_line("[D] --> NAME: {%s} <> [%s], 53: %d, 54: %d\r\n",
		s900_trimmed(
			s900_spaced_text(answer.view().from(s900_program_name), s900_name_size))
			.c_str(),
		program->name, answer[s900_keygroup_count], answer[s900_unknown_count]);
	const int room = std::min(whole_keygroups(answer), max_keygroups);
	program->keygroups = akai_kept_count(program->keygroups, room, "keygroups");
	for (int k = 0; k < program->keygroups; k++) {
		const auto at = s900_keygroup_at(k);
		akai_s900_keygroup_from_block(answer.view().from(at), &program->keygroup[k]);
		log_keygroup(answer, k, program->keygroup[k]);
	}
}

void akai_s900_getproglist(u8 channel, u8 sysex_channel, _dev_status *status)
{
	if (!has_s900_status(status))
		return;
	forget_stop();
	akai_s900_getstatus(channel, sysex_channel, status);
	akai_silence silence;
	bool interrupted = false;
	for (int i = 0; i < status->programs; i++) {
		_program &program = status->program[i];
		program.keygroups = 0;
		if (interrupted || silence.too_long())
			continue;
		log_line("[D] Requesting PRG-Info (%d)\r\n", program.number);
		const akai_answer answer = ask_s900_program(
			s900_message(request_s900_program, channel - 1, program.number));
		interrupted = akai_interrupted(answer);
		silence.hear(answer);
		if (!interrupted)
			read_program(answer, &program);
	}
	if (interrupted || silence.too_long())
		log_line("[W] Reading of programs ended early\r\n");
}

// ---- Samples -----------------------------------------------------------------------------

static void read_sample(const akai_answer &answer, _sample *sample)
{
	akai_s900_sample_from_header(answer.view(), sample);
	log_line("[D] --> NAME: {%s} <> [%s], Rate: %d Hz (%s), Pitch: %d (%s) --> %d, LEN: [%s] "
		 "(%d) (TOTAL_DATA: %d Bytes)\r\n",
		s900_trimmed(s900_spaced_text(answer.view().from(s900_data), 10)).c_str(),
		sample->name, shown(sample->sample_rate),
		hex_of(answer, s900_header_rate, 4).c_str(),
		shown(get_s900_paired(answer.view().from(s900_header_pitch), 4)),
		hex_of(answer, s900_header_pitch, 4).c_str(), sample->original_pitch,
		hex_of(answer, s900_header_length, 8).c_str(), shown(sample->sample_length),
		answer.size());
}

// No bar is shown meanwhile, so only closing the program asks for a Stop.
void akai_s900_getsamplelist(u8 channel, u8, _dev_status *status)
{
	if (!has_s900_status(status))
		return;
	forget_stop();
	akai_silence silence;
	for (int i = 0; i < status->samples && !silence.too_long(); i++) {
		_sample &sample = status->sample[i];
		log_line("[D] Requesting SAMP-Info (%d) [%s]\r\n", sample.number, sample.name);
		const akai_answer answer =
			ask_akai(s900_message(request_s900_header, channel - 1, sample.number),
				s900_data_room);
		if (akai_interrupted(answer))
			return;
		silence.hear(answer);
		if (answer.size())
			read_sample(answer, &sample);
	}
	if (silence.too_long())
		log_line("[W] The sampler no longer answers, the names of the list are kept\r\n");
}

void akai_s900_sample_info(u8 channel, u8 sysex_channel, const char *)
{
	_dev_status *status = require_dev_status();
	if (!status)
		return;
	if (status->status != 1)
		akai_s900_getstatus(channel, sysex_channel, status);
	akai_s900_getsamplelist(channel, sysex_channel, status);
}

// ---- Multis ------------------------------------------------------------------------------

// The machine has none.
void akai_s900_getmultilist(u8, u8, _dev_status *status)
{
	has_s900_status(status);
}

} // namespace velmor
