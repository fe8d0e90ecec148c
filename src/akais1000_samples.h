// akais1000_samples.h - what the transfers of samples share within the S1000 family
//
// Included by akais1000_samples.cpp, akais1000_upload.cpp and akais1000_exact.cpp alone.

#pragma once
#include "src/akais1000.h"

namespace velmor
{

// SAMPLE HEADER, decoded block
enum {
	header_rate_flag = 1,
	header_pitch = 2,
	header_loops = 16,
	header_playback_mode = 19,
	header_fine_tune = 20,
	header_semitone_tune = 21,
	header_length = 26,
	header_start = 30,
	header_end = 34,
	header_loop = 38,
	header_loop_fine = 42,
	header_loop_coarse = 44,
	header_loop_time = 48,
	header_unknown = 134,
	header_rate = 138,
};
// Its playback modes, by their names in akai_s1000_getplaymode.
enum : u8 {
	akai_plays_loop = 0,
	akai_plays_loop_until_release = 1,
	akai_plays_no_loop = 2,
	akai_most_playback = 3,
};

// DATA PACKET of the MIDI Sample Dump Standard, both ways
enum {
	packet_kind = 3,
	packet_number = 4,
	packet_words = 5,
	packet_checksum = 125,
	packet_size = 127,
	words_in_packet = 40,
};
static_assert(packet_words + 3 * words_in_packet == packet_checksum);

// Bytes 1 to 124 of a packet.
inline u8 checksum_of(bounded_bytes packet)
{
	u8 sum = 0;
	for (std::size_t i = 1; i < packet_checksum; i++)
		sum ^= packet[i];
	return sum & 0x7F;
}

inline u64 packets_of(u64 words)
{
	return words / words_in_packet + (words % words_in_packet ? 1 : 0);
}

// As the log shows it.
inline int shown(u64 value)
{
	return static_cast<int>(static_cast<u32>(value));
}

// Samples in the loaded list.
int akai_samples_listed();
// Index of a sample in the loaded list by its exact name. Without one: the list's count, one
// past the last, which is 0 for an empty list.
int akai_find_sample(const char *name, bool log_compares);

bool akai_is_header_of(const akai_answer &answer, int index);
// What the block of a header tells, but for the name.
void akai_s1000_sample_from_header(bounded_bytes block, int index, _sample *sample);
// The header that came, under another name: 12 bytes of the alphabet over its own. Empty when
// it is too short to hold one, because half a header must not go back.
std::vector<u8> akai_renamed_block(const akai_answer &header, const u8 *name);
// A header as a message: the head of the answer it came in, and the block.
std::vector<u8> akai_header_message(const akai_answer &header, std::span<const u8> block);
void akai_log_header_block(const akai_answer &header, const char *what);

} // namespace velmor
