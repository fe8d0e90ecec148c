// akai_codec.h - how a sampler of the S1000 family packs blocks, names and sample words
//
// The machine's side of the wire. A byte of a block travels as two nibbles, the low
// one first; a number of a frame in groups of seven bits, the low group first; a
// number inside a block in whole bytes, the low byte first. A name is twelve indices
// into the machine's own alphabet.
//
// Called by the virtual machines and by their demo contents.
// Knows nothing of: the system under src/, which has codecs of its own. A misreading
// in one of the two must not hide in the other.

#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velmor::machine
{

using bytes = std::vector<std::uint8_t>;
using byte_view = std::span<const std::uint8_t>;

// ---- Blocks ------------------------------------------------------------------------

// A5 is appended as 05 0A.
void append_nibbles(bytes &message, byte_view block);
// The block in a run of nibbles; nothing when a byte is no nibble or one is left over.
std::optional<bytes> block_from_nibbles(byte_view nibbles);

// ---- Numbers -----------------------------------------------------------------------

// Groups of seven bits in a frame; count is 2, 3 or 4.
void append_sevens(bytes &message, std::uint32_t value, int count);
std::uint32_t number_from_sevens(byte_view message, std::size_t at, int count);

// Bytes in a block. Nothing is written and 0 is read where the block ends before.
void put_number(bytes &block, std::size_t at, std::uint32_t value, int width);
std::uint32_t get_number(byte_view block, std::size_t at, int width);

// ---- Names -------------------------------------------------------------------------

inline constexpr std::size_t name_size = 12;

// Put text as a name: small letters count as capitals, what the alphabet lacks becomes
// a full stop, and blanks fill the rest.
void put_name(bytes &block, std::size_t at, std::string_view text);
// The name without its trailing blanks. An index outside the alphabet reads as '?'.
std::string get_name(byte_view block, std::size_t at);

// ---- Sample words ------------------------------------------------------------------

// A word is signed in the machine and counted from the bottom on the wire, 16 bits in
// three bytes. The machine sends its two lowest bits left-justified, as the MIDI Sample
// Dump Standard has it: word 1 travels as 40 00 20.
void append_word(bytes &packet, std::int16_t word);
// A dump towards the machine has the two lowest bits in the lowest places instead:
// word 1 comes as 40 00 01.
std::int16_t word_from_host(byte_view packet, std::size_t at);

} // namespace velmor::machine
