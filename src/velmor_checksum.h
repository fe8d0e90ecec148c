// velmor_checksum.h - SHA-256 of files, as the programs of every system tell it
//
// Knows nothing of: what is in the files.

#pragma once
#include "src/resource.h"
#include <span>
#include <string>

namespace velmor
{

// FIPS 180-4. Bytes are added in any pieces; text ends it, once.
class checksum
{
public:
	void add(std::span<const u8> bytes);
	// 64 digits, in small letters.
	std::string text();

private:
	void take_block(const u8 *block);
	u32 state[8] = { 0x6A09E667, 0xBB67AE85, 0x3C6EF372, 0xA54FF53A, 0x510E527F, 0x9B05688C,
		0x1F83D9AB, 0x5BE0CD19 };
	u8 waiting[64] = {};
	u64 count = 0;
};

std::string checksum_of_text(std::string_view text);
// "" of a file that cannot be read; size is that of the file then.
std::string checksum_of_file(const std::string &path, u64 *size);

} // namespace velmor
