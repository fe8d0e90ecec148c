// waveqx_file.cpp - reading a file by offset

#include "src/waveqx_file.h"
#include "src/velmor.h"
#include <algorithm>
#include <cstring>

namespace velmor
{

// No system codes.
static constexpr int not_a_file = -1; // a folder, a pipe, a device
static constexpr int cut_short = -2;  // by somebody, while it was read
static constexpr std::size_t copy_block = 64 * 1024;

owned_bytes allocate_bytes(u64 count)
{
	return owned_bytes(static_cast<u8 *>(std::calloc(count ? count : 1, 1)));
}

char lower(char c)
{
	return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 'a' - 'A') : c;
}

bool equal_but_for_case(std::string_view a, std::string_view b)
{
	return std::equal(a.begin(), a.end(), b.begin(), b.end(),
		[](char x, char y) { return lower(x) == lower(y); });
}

std::string error_words(const char *file, int line, int code)
{
	if (code == not_a_file)
		return "Not a regular file";
	if (code == cut_short)
		return "It became shorter while it was read";
	const char *words = host.files->error_text(code);
	return words ? std::string(words)
		     : format_text("(%s:%d) Unknown error-code [%d]", file, line, code);
}

std::string read_failure(const std::string &path, int code)
{
	return format_text(tr("%s cannot be read: %s."),
		host.files->host_path(path.c_str()).c_str(),
		error_words(__FILE_NAME__, __LINE__, code).c_str());
}

input_file::~input_file()
{
	if (file >= 0)
		host.files->close(file);
}

int input_file::measure(const char *path)
{
	file_info info = {};
	const int code = host.files->stat(path, &info);
	if (!code && !info.regular)
		return not_a_file;
	size = info.size;
	return code;
}

int input_file::open(const char *path)
{
	return host.files->open(path, file_read, &file);
}

int input_file::read_file(u64 offset, u8 *bytes, std::size_t count)
{
	const std::size_t held =
		offset < size ? static_cast<std::size_t>(std::min<u64>(count, size - offset)) : 0;
	std::memset(bytes + held, 0, count - held);
	if (held == 0)
		return 0;
	if (offset != position) {
		if (const int code = host.files->seek(file, offset))
			return code;
		position = offset;
	}
	std::size_t moved = 0;
	const int code = host.files->read(file, bytes, held, &moved);
	position += moved;
	return code ? code : moved < held ? cut_short : 0;
}

int input_file::read(u64 offset, void *bytes, std::size_t count)
{
	if (count > near_size)
		return read_file(offset, static_cast<u8 *>(bytes), count);
	if (offset < near_offset || offset - near_offset + count > near_count) {
		near_count = 0;
		if (const int code = read_file(offset, near, near_size))
			return code;
		near_offset = offset;
		near_count = near_size;
	}
	std::memcpy(bytes, near + (offset - near_offset), count);
	return 0;
}

int copy_bytes(input_file &source, u64 offset, u64 count, fresh_file &target, int *source_code)
{
	u8 block[copy_block];
	*source_code = 0;
	while (count) {
		const std::size_t part = static_cast<std::size_t>(std::min<u64>(count, copy_block));
		if ((*source_code = source.read(offset, block, part)))
			return 0;
		if (const int code = target.write(block, part))
			return code;
		offset += part;
		count -= part;
	}
	return 0;
}

} // namespace velmor
