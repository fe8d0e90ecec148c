// velmor_checksum.cpp - SHA-256 of files, as the programs of every system tell it
//
// Knows nothing of: what is in the files.

#include "src/velmor_checksum.h"
#include "src/velmor.h"
#include "src/waveqx_file.h"
#include <algorithm>
#include <bit>

namespace velmor
{

// The first 32 bits of the fractions of the cube roots of the first 64 primes.
static constexpr u32 roots[64] = { 0x428A2F98, 0x71374491, 0xB5C0FBCF, 0xE9B5DBA5, 0x3956C25B,
	0x59F111F1, 0x923F82A4, 0xAB1C5ED5, 0xD807AA98, 0x12835B01, 0x243185BE, 0x550C7DC3,
	0x72BE5D74, 0x80DEB1FE, 0x9BDC06A7, 0xC19BF174, 0xE49B69C1, 0xEFBE4786, 0x0FC19DC6,
	0x240CA1CC, 0x2DE92C6F, 0x4A7484AA, 0x5CB0A9DC, 0x76F988DA, 0x983E5152, 0xA831C66D,
	0xB00327C8, 0xBF597FC7, 0xC6E00BF3, 0xD5A79147, 0x06CA6351, 0x14292967, 0x27B70A85,
	0x2E1B2138, 0x4D2C6DFC, 0x53380D13, 0x650A7354, 0x766A0ABB, 0x81C2C92E, 0x92722C85,
	0xA2BFE8A1, 0xA81A664B, 0xC24B8B70, 0xC76C51A3, 0xD192E819, 0xD6990624, 0xF40E3585,
	0x106AA070, 0x19A4C116, 0x1E376C08, 0x2748774C, 0x34B0BCB5, 0x391C0CB3, 0x4ED8AA4A,
	0x5B9CCA4F, 0x682E6FF3, 0x748F82EE, 0x78A5636F, 0x84C87814, 0x8CC70208, 0x90BEFFFA,
	0xA4506CEB, 0xBEF9A3F7, 0xC67178F2 };

void checksum::take_block(const u8 *block)
{
	u32 w[64];
	for (int i = 0; i < 16; i++)
		w[i] = u32{ block[4 * i] } << 24 | u32{ block[4 * i + 1] } << 16 |
		       u32{ block[4 * i + 2] } << 8 | block[4 * i + 3];
	for (int i = 16; i < 64; i++) {
		const u32 a = w[i - 15], b = w[i - 2];
		w[i] = w[i - 16] + (std::rotr(a, 7) ^ std::rotr(a, 18) ^ (a >> 3)) + w[i - 7] +
		       (std::rotr(b, 17) ^ std::rotr(b, 19) ^ (b >> 10));
	}
	u32 s[8];
	std::copy_n(state, 8, s);
	for (int i = 0; i < 64; i++) {
		const u32 e = s[4], a = s[0];
		const u32 one = s[7] + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) +
				((e & s[5]) ^ (~e & s[6])) + roots[i] + w[i];
		const u32 two = (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) +
				((a & s[1]) ^ (a & s[2]) ^ (s[1] & s[2]));
		std::copy_backward(s, s + 7, s + 8);
		s[4] += one;
		s[0] = one + two;
	}
	for (int i = 0; i < 8; i++)
		state[i] += s[i];
}

void checksum::add(std::span<const u8> bytes)
{
	while (!bytes.empty()) {
		const std::size_t held = count % sizeof waiting;
		const std::size_t some = std::min(bytes.size(), sizeof waiting - held);
		std::copy_n(bytes.begin(), some, waiting + held);
		count += some;
		bytes = bytes.subspan(some);
		if (held + some == sizeof waiting)
			take_block(waiting);
	}
}

// A bit, zeros, and the length in bits fill the last block.
std::string checksum::text()
{
	const u64 bits = count * 8;
	constexpr u8 one = 0x80, zero = 0;
	add({ &one, 1 });
	while (count % sizeof waiting != sizeof waiting - 8)
		add({ &zero, 1 });
	for (int shift = 56; shift >= 0; shift -= 8) {
		const u8 byte = static_cast<u8>(bits >> shift);
		add({ &byte, 1 });
	}
	std::string digits;
	for (const u32 word : state)
		digits += format_text("%08x", word);
	return digits;
}

std::string checksum_of_text(std::string_view text)
{
	checksum sum;
	sum.add({ reinterpret_cast<const u8 *>(text.data()), text.size() });
	return sum.text();
}

std::string checksum_of_file(const std::string &path, u64 *size)
{
	constexpr std::size_t piece = 65536;
	input_file file;
	*size = 0;
	if (file.measure(path.c_str()) || file.open(path.c_str()))
		return "";
	*size = file.size;
	checksum sum;
	std::vector<u8> bytes(piece);
	for (u64 at = 0; at < file.size; at += piece) {
		const auto count = static_cast<std::size_t>(std::min<u64>(piece, file.size - at));
		if (file.read(at, bytes.data(), count))
			return "";
		sum.add({ bytes.data(), count });
	}
	return sum.text();
}

} // namespace velmor
