// settings_posix.cpp - settings in one text file of key=value lines, below the user's home
//
//   $XDG_CONFIG_HOME/VELMOR/settings, or ~/.config/VELMOR/settings
//
// A line is a name, '=', and a value. A backslash begins an escape in either: "\\" is one
// backslash, "\x0A" the byte 0A, so that any text survives. Lines that are not of this kind
// (a comment someone wrote) are kept as they are.
//
// A save writes the whole file beside the old one, under a name that no other process uses,
// brings it to the disk, and renames it over the old one. A lock file orders the saves of
// several processes; readers need none, as a rename shows them the old file or the new one.
//
// Codes are errno values.

#include "platform/settings.h"
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace velmor
{

static constexpr std::size_t largest_file = 1 << 20;

// ---- Folders ----------------------------------------------------------------------------

// A folder from the environment. The XDG rules say that a relative path counts as unset.
static std::string folder_of(const char *variable, const char *below_home)
{
	const char *set = std::getenv(variable);
	if (set && set[0] == '/')
		return set;
	const char *home = std::getenv("HOME");
	return home && *home ? std::string(home) + below_home : "";
}

static int make_folders(const std::string &path, mode_t mode)
{
	for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
		const std::string part = path.substr(0, end);
		if (::mkdir(part.c_str(), mode) != 0 && errno != EEXIST && end == path.npos)
			return errno;
		if (end == path.npos)
			return 0;
	}
}

static std::string settings_folder()
{
	const std::string config = folder_of("XDG_CONFIG_HOME", "/.config");
	return config.empty() ? "" : config + "/VELMOR";
}

static const char *user_root()
{
	static std::string root;
	const char *set = std::getenv("LOCALAPPDATA");
	root = set && *set ? set : folder_of("XDG_DATA_HOME", "/.local/share");
	if (root.empty())
		return nullptr;
	for (char &c : root)
		if (c == '\\')
			c = '/';
	make_folders(root, 0700);
	for (char &c : root)
		if (c == '/')
			c = '\\';
	return root.c_str();
}

// ---- Lines ------------------------------------------------------------------------------

static std::string escaped(const char *text, bool is_name)
{
	std::string out;
	for (; *text; text++) {
		const unsigned char c = static_cast<unsigned char>(*text);
		char hex[8];
		if (c == '\\')
			out += "\\\\";
		else if (c < 0x20 || c == 0x7F || (is_name && (c == '=' || c == '#')))
			out.append(hex, std::snprintf(hex, sizeof hex, "\\x%02X", c));
		else
			out += *text;
	}
	return out;
}

static std::string unescaped(const std::string &text)
{
	std::string out;
	for (std::size_t i = 0; i < text.size(); i++) {
		unsigned byte;
		if (text[i] != '\\') {
			out += text[i];
		} else if (std::sscanf(text.c_str() + i, "\\x%2x", &byte) == 1 &&
			   i + 3 < text.size()) {
			out += static_cast<char>(byte);
			i += 3;
		} else if (++i < text.size()) {
			out += text[i];
		}
	}
	return out;
}

// What stands behind "name=", still escaped; null when the line is another one.
static const char *value_in(const std::string &line, const std::string &escaped_name)
{
	const bool ours = line.starts_with(escaped_name) && line[escaped_name.size()] == '=';
	return ours ? line.c_str() + escaped_name.size() + 1 : nullptr;
}

// ---- The file ---------------------------------------------------------------------------

static int read_lines(const std::string &path, std::vector<std::string> *lines)
{
	const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
	if (file < 0)
		return errno;
	std::string content;
	char block[4096];
	ssize_t n = 0;
	do {
		n = ::read(file, block, sizeof block);
		if (n > 0)
			content.append(block, static_cast<std::size_t>(n));
	} while ((n > 0 && content.size() <= largest_file) || (n < 0 && errno == EINTR));
	const int code = n < 0 ? errno : n > 0 ? EFBIG : 0;
	::close(file);
	for (std::size_t at = 0; at < content.size();) {
		std::size_t end = content.find('\n', at);
		end = end == content.npos ? content.size() : end;
		// A carriage return in a value travels escaped, so a bare one is an editor's.
		const bool carriage = end > at && content[end - 1] == '\r';
		lines->push_back(content.substr(at, end - at - carriage));
		at = end + 1;
	}
	return code;
}

static int write_synced(const std::string &path, const std::string &content)
{
	const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
	if (file < 0)
		return errno;
	int code = 0;
	for (std::size_t at = 0; at < content.size() && !code;) {
		const ssize_t n = ::write(file, content.data() + at, content.size() - at);
		if (n > 0)
			at += static_cast<std::size_t>(n);
		else if (n == 0 || errno != EINTR)
			code = n == 0 ? ENOSPC : errno;
	}
	if (!code && ::fsync(file) != 0)
		code = errno;
	if (::close(file) != 0 && !code)
		code = errno;
	return code;
}

// The name of a file is brought to the disk by its folder. Some file systems cannot be asked.
static int sync_folder(const std::string &path)
{
	const int folder = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
	if (folder < 0)
		return errno;
	const int code = ::fsync(folder) != 0 && errno != EINVAL ? errno : 0;
	::close(folder);
	return code;
}

// settings.<process>.new of processes that have ended, and of an earlier one of our number.
static void remove_left_files(const std::string &folder)
{
	DIR *open = opendir(folder.c_str());
	while (const dirent *entry = open ? readdir(open) : nullptr) {
		const std::string name = entry->d_name;
		long process = 0;
		int length = 0;
		if (std::sscanf(entry->d_name, "settings.%ld.new%n", &process, &length) != 1 ||
			static_cast<std::size_t>(length) != name.size() || process <= 0)
			continue;
		const bool runs = ::kill(static_cast<pid_t>(process), 0) == 0 || errno == EPERM;
		if (!runs || process == ::getpid())
			::unlink((folder + "/" + name).c_str());
	}
	if (open)
		closedir(open);
}

static int replace_file(const std::string &folder, const std::vector<std::string> &lines)
{
	std::string content;
	for (const std::string &line : lines)
		content += line + "\n";
	const std::string fresh = folder + "/settings." + std::to_string(::getpid()) + ".new";
	int code = write_synced(fresh, content);
	if (!code && ::rename(fresh.c_str(), (folder + "/settings").c_str()) != 0)
		code = errno;
	if (code) {
		::unlink(fresh.c_str());
		return code;
	}
	return sync_folder(folder);
}

// ---- Keys -------------------------------------------------------------------------------

static int load_key(const char *name, char *value)
{
	value[0] = '\0';
	const std::string folder = settings_folder();
	std::vector<std::string> lines;
	if (const int code = folder.empty() ? ENOENT : read_lines(folder + "/settings", &lines))
		return code;
	const std::string wanted = escaped(name, true);
	for (const std::string &line : lines) {
		const char *found = value_in(line, wanted);
		if (!found)
			continue;
		const std::string text = unescaped(found);
		if (text.size() >= setting_size)
			return EOVERFLOW;
		std::memcpy(value, text.c_str(), text.size() + 1);
		return 0;
	}
	return ENOENT;
}

static int save_locked(const std::string &folder, const char *name, const char *value)
{
	std::vector<std::string> lines;
	const int code = read_lines(folder + "/settings", &lines);
	if (code && code != ENOENT)
		return code;
	const std::string wanted = escaped(name, true);
	const std::string row = wanted + "=" + escaped(value, false);
	bool placed = false;
	std::vector<std::string> kept;
	for (std::string &line : lines) {
		const bool ours = value_in(line, wanted);
		if (!ours || !placed)
			kept.push_back(ours ? row : line);
		placed = placed || ours;
	}
	if (!placed)
		kept.push_back(row);
	return replace_file(folder, kept);
}

static int save_key(const char *name, const char *value)
{
	if (!*name)
		return EINVAL;
	if (std::strlen(value) >= setting_size)
		return EOVERFLOW;
	const std::string folder = settings_folder();
	if (folder.empty())
		return ENOENT;
	if (const int code = make_folders(folder, 0700))
		return code;
	const int lock =
		::open((folder + "/settings.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
	if (lock < 0)
		return errno;
	// A file system without locks still saves; only two processes at one moment could collide.
	while (::flock(lock, LOCK_EX) != 0 && errno == EINTR)
		;
	remove_left_files(folder);
	const int code = save_locked(folder, name, value);
	::close(lock);
	return code;
}

static const char *error_text(int code)
{
	static char text[256];
	const char *words = strerrordesc_np(code);
	if (!words)
		return nullptr;
	std::snprintf(text, sizeof text, "%s", words);
	return text;
}

extern const settings_service posix_settings;
const settings_service posix_settings = {
	.load_key = load_key,
	.save_key = save_key,
	.user_root = user_root,
	.error_text = error_text,
};

} // namespace velmor
