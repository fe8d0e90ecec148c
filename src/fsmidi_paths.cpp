// fsmidi_paths.cpp - paths of the drive, and names of samplers as names of the host
//
//   byte            shown as
//   20-7E           itself, but for / (U+2215), \ (U+2216)
//   01-1F, 7F       U+2401-U+241F, U+2421: the pictures of control characters
//   80-9F           U+F780-U+F79F, of nobody's use
//   A0-FF           U+00A0-U+00FF
//
// "." and ".." get U+2024 for their first dot, an empty name is U+2205. No byte is shown as any
// of these, so no two names are shown alike.
//
// Knows nothing of: requests, the host's own paths.

#include "src/diskqx.h"
#include <algorithm>

namespace velmor
{

// ---- Parts -----------------------------------------------------------------------------------

static const char *skip_joint(const char *path)
{
	while (*path == '\\')
		path++;
	return path;
}

static const char *end_of_part(const char *path)
{
	while (*path && *path != '\\')
		path++;
	return path;
}

void _get_path_parts(const char *source, int line, const char *path, char (&sampler)[fs_text_size],
	char (&volume)[fs_text_size], char (&file_path)[fs_text_size])
{
	copy_text(sampler, "");
	copy_text(volume, "");
	copy_text(file_path, "");
	if (*path != '\\')
		return;
	path = skip_joint(path);
	const char *end = end_of_part(path);
	copy_text(sampler, { path, end });
	log_line("[%s:%d] ___ANALYZING --> SAMPLER:   [%s]\n", source, line, sampler);
	path = skip_joint(end);
	end = end_of_part(path);
	copy_text(volume, { path, end });
	log_line("[%s:%d] ___ANALYZING --> VOLUME:    [%s]\n", source, line, volume);
	copy_text(file_path, skip_joint(end));
	log_line("[%s:%d] ___ANALYZING --> FILE-PATH: [%s]\n", source, line, file_path);
}

std::vector<std::string> path_tokens(std::string_view path)
{
	std::vector<std::string> tokens;
	while (!path.empty()) {
		const std::size_t end = std::min(path.find('\\'), path.size());
		if (end)
			tokens.emplace_back(path.substr(0, end));
		path.remove_prefix(std::min(end + 1, path.size()));
	}
	return tokens;
}

// ---- Letters -----------------------------------------------------------------------------------

static char lower(char c)
{
	return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string lower_case(std::string_view text)
{
	std::string out(text);
	std::transform(out.begin(), out.end(), out.begin(), lower);
	return out;
}

bool same_without_case(std::string_view a, std::string_view b)
{
	return std::equal(a.begin(), a.end(), b.begin(), b.end(),
		[](char x, char y) { return lower(x) == lower(y); });
}

// ---- Names of the host ---------------------------------------------------------------------------

static constexpr char32_t shown_empty = 0x2205, shown_dot = 0x2024;

static char32_t shown_byte(u8 byte)
{
	if (byte == '/')
		return 0x2215;
	if (byte == '\\')
		return 0x2216;
	if (byte < 0x20)
		return 0x2400u + byte;
	if (byte == 0x7F)
		return 0x2421;
	if (byte >= 0x80 && byte < 0xA0)
		return 0xF700u + byte;
	return byte;
}

static void add_utf8(std::string *text, char32_t letter)
{
	const auto add = [text](char32_t byte) { *text += static_cast<char>(byte); };
	if (letter < 0x80) {
		add(letter);
	} else if (letter < 0x800) {
		add(0xC0 | letter >> 6);
		add(0x80 | (letter & 0x3F));
	} else {
		add(0xE0 | letter >> 12);
		add(0x80 | (letter >> 6 & 0x3F));
		add(0x80 | (letter & 0x3F));
	}
}

std::string shown_name(std::string_view name)
{
	std::string shown;
	if (name.empty())
		add_utf8(&shown, shown_empty);
	const bool folder_word = name == "." || name == "..";
	if (folder_word) {
		add_utf8(&shown, shown_dot);
		name.remove_prefix(1);
	}
	for (const char c : name) {
		std::string letter;
		add_utf8(&letter, shown_byte(static_cast<u8>(c)));
		if (shown.size() + letter.size() > longest_shown_name)
			break;
		shown += letter;
	}
	return shown;
}

bool is_reachable(std::string_view name)
{
	return !name.empty() && name.find('\\') == name.npos;
}

} // namespace velmor
