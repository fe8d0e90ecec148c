// akai_codec.cpp - how a sampler of the S1000 family packs blocks, names and sample words

#include "virtual/akai_codec.h"
#include <cctype>

namespace velmor::machine
{

static constexpr std::string_view alphabet = "0123456789 ABCDEFGHIJKLMNOPQRSTUVWXYZ#+-.";
static constexpr std::uint8_t blank = 10, full_stop = 40;

void append_nibbles(bytes &message, byte_view block)
{
	for (const std::uint8_t b : block) {
		message.push_back(b & 0x0F);
		message.push_back(b >> 4);
	}
}

std::optional<bytes> block_from_nibbles(byte_view nibbles)
{
	if (nibbles.size() % 2)
		return std::nullopt;
	bytes block;
	for (std::size_t i = 0; i < nibbles.size(); i += 2) {
		if (nibbles[i] > 0x0F || nibbles[i + 1] > 0x0F)
			return std::nullopt;
		block.push_back(static_cast<std::uint8_t>(nibbles[i] | nibbles[i + 1] << 4));
	}
	return block;
}

void append_sevens(bytes &message, std::uint32_t value, int count)
{
	for (int i = 0; i < count; i++)
		message.push_back(value >> (7 * i) & 0x7F);
}

std::uint32_t number_from_sevens(byte_view message, std::size_t at, int count)
{
	std::uint32_t value = 0;
	for (int i = 0; i < count && at + static_cast<std::size_t>(i) < message.size(); i++)
		value |=
			static_cast<std::uint32_t>(message[at + static_cast<std::size_t>(i)] & 0x7F)
			<< (7 * i);
	return value;
}

void put_number(bytes &block, std::size_t at, std::uint32_t value, int width)
{
	for (int i = 0; i < width && at < block.size(); i++, at++)
		block[at] = value >> (8 * i) & 0xFF;
}

std::uint32_t get_number(byte_view block, std::size_t at, int width)
{
	std::uint32_t value = 0;
	for (int i = 0; i < width && at < block.size(); i++, at++)
		value |= static_cast<std::uint32_t>(block[at]) << (8 * i);
	return value;
}

static std::uint8_t index_of(char c)
{
	const auto found =
		alphabet.find(static_cast<char>(std::toupper(static_cast<unsigned char>(c))));
	return found == alphabet.npos ? full_stop : static_cast<std::uint8_t>(found);
}

void put_name(bytes &block, std::size_t at, std::string_view text)
{
	for (std::size_t i = 0; i < name_size && at + i < block.size(); i++)
		block[at + i] = i < text.size() ? index_of(text[i]) : blank;
}

std::string get_name(byte_view block, std::size_t at)
{
	std::string text;
	for (std::size_t i = at; i < at + name_size && i < block.size(); i++)
		text += block[i] < alphabet.size() ? alphabet[block[i]] : '?';
	while (text.ends_with(' '))
		text.pop_back();
	return text;
}

void append_word(bytes &packet, std::int16_t word)
{
	const unsigned level = static_cast<unsigned>(word + 0x8000);
	packet.push_back(level >> 9 & 0x7F);
	packet.push_back(level >> 2 & 0x7F);
	packet.push_back((level & 3) << 5);
}

std::int16_t word_from_host(byte_view packet, std::size_t at)
{
	if (at + 3 > packet.size())
		return 0;
	const int level = packet[at] << 9 | packet[at + 1] << 2 | (packet[at + 2] & 3);
	return static_cast<std::int16_t>(level - 0x8000);
}

} // namespace velmor::machine
