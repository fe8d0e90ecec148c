// waveqx_file.h - reading a file by offset
//
// For the modules that take apart audio files of any size: nothing is held but what is
// asked for. Every answer is a system code, 0 for success.
//
// Knows nothing of: what is in the files.

#pragma once
#include "src/resource.h"
#include "src/velmor_files.h"
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace velmor
{

// A regular file being read. What lies behind its end reads as zero, so an offset out of
// a lying header does no harm.
class input_file
{
public:
	input_file() = default;
	~input_file();
	input_file(const input_file &) = delete;
	input_file &operator=(const input_file &) = delete;

	// measure gives size; a folder, a pipe or a device is no file. open follows it.
	int measure(const char *path);
	int open(const char *path);
	// count bytes from offset on, whatever of them the file holds.
	int read(u64 offset, void *bytes, std::size_t count);

	u64 size = 0;

private:
	static constexpr std::size_t near_size = 4096;
	int read_file(u64 offset, u8 *bytes, std::size_t count);

	int file = -1;
	u64 position = 0;    // of the host's file
	u64 near_offset = 0; // small reads are served from here
	std::size_t near_count = 0;
	u8 near[near_size];
};

// Bytes of one file into another, in blocks: the code of the target, and in *source_code that
// of the source.
int copy_bytes(input_file &source, u64 offset, u64 count, fresh_file &target, int *source_code);

// A block that gives itself back. Null when the system has no memory.
struct free_block {
	void operator()(u8 *block) const { std::free(block); }
};
using owned_bytes = std::unique_ptr<u8[], free_block>;
owned_bytes allocate_bytes(u64 count);

// Names as a disk sees them that does not tell cases apart (ASCII letters).
char lower(char c);
bool equal_but_for_case(std::string_view a, std::string_view b);

// Why a file could not be read, as a sentence.
std::string read_failure(const std::string &path, int code);
// The system's words for a code, or "(file:line) Unknown error-code [code]".
std::string error_words(const char *file, int line, int code);

} // namespace velmor
