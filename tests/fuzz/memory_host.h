// memory_host.h - a host for fuzz targets: files in memory, nobody at the windows
//
// A file is what put wrote or the system made; it grows to 1 MB, then the disk is
// full. Boxes and progress go nowhere, questions are answered with OK, and a process
// that ends is a fault.

#pragma once
#include "src/velmor.h"
#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace velmor::memory_host
{

using bytes = std::vector<u8>;

struct open_file {
	std::string path;
	std::size_t at;
};

inline std::map<std::string, bytes> files;
inline std::map<int, open_file> opened;
inline int next_file = 1;
inline constexpr std::size_t disk = 1024 * 1024;
inline constexpr int not_there = 2, full = 28;

inline int open(const char *path, file_mode mode, int *file)
{
	if (mode == file_append) // the log
		return full;
	if (mode == file_create)
		files[path].clear();
	if (!files.count(path))
		return not_there;
	opened[ *file = next_file++] = { path, 0 };
	return 0;
}

inline int read(int file, void *to, std::size_t count, std::size_t *moved)
{
	open_file &f = opened.at(file);
	const bytes &content = files.at(f.path);
	*moved = f.at < content.size() ? std::min(count, content.size() - f.at) : 0;
	std::copy_n(content.begin() + static_cast<long>(std::min(f.at, content.size())), *moved,
		static_cast<u8 *>(to));
	f.at += *moved;
	return 0;
}

inline int write(int file, const void *from, std::size_t count)
{
	bytes &content = files.at(opened.at(file).path);
	if (content.size() + count > disk)
		return full;
	const u8 *at = static_cast<const u8 *>(from);
	content.insert(content.end(), at, at + count);
	return 0;
}

inline int stat(const char *path, file_info *info)
{
	const auto found = files.find(path);
	if (found == files.end())
		return not_there;
	*info = { .size = found->second.size(), .folder = false, .regular = true, .link = false };
	return 0;
}

inline const files_service memory_files = {
	.open = open,
	.read = read,
	.write = write,
	.seek =
		[](int file, std::uint64_t offset) {
			opened.at(file).at = static_cast<std::size_t>(offset);
			return 0;
		},
	.sync = [](int) { return 0; },
	.close = [](int file) { return opened.erase(file) ? 0 : 9; },
	.stat = stat,
	.rename =
		[](const char *from, const char *to) {
			files[to] = std::move(files.at(from));
			files.erase(from);
			return 0;
		},
	.remove = [](const char *path) { return files.erase(path) ? 0 : not_there; },
	.make_folder = [](const char *) { return 0; },
	.remove_folder = [](const char *) { return 0; },
	.list =
		[](const char *, std::vector<std::string> *names) {
			names->clear();
			return 0;
		},
	.host_path = [](const char *path) { return std::string(path); },
	.system_path = [](const char *path) { return std::string(path); },
	.exists_already = [](int) { return false; },
	.not_found = [](int code) { return code == not_there; },
	.error_text = [](int) { return "words"; },
};

inline ui_service quiet_ui()
{
	ui_service ui = {};
	ui.set_text = [](int, int, const char *) {};
	ui.exists = [](int, int) { return false; };
	ui.message = [](const char *, const char *) {};
	ui.ask = [](const char *, const char *) { return true; };
	ui.progress_show = [](const char *, int) {};
	ui.progress_set = [](int, const char *, const char *) {};
	ui.progress_hide = [] {};
	ui.set_rows = [](int, int, std::span<const std::vector<std::string>>) {};
	ui.set_list_state = [](int, int, list_state, const char *) {};
	ui.pump = [](int) {};
	ui.exit_process = [](int) { std::abort(); };
	return ui;
}

inline const clock_service still_clock = {
	.time_of_day = [] { return 0.0; },
	.counter = [] { return 0.0; },
	.sleep_ms = [](int) {},
};

// Before each input. The log is composed in full, and kept nowhere.
inline void start()
{
	static const ui_service ui = quiet_ui();
	files.clear();
	if (!opened.empty())
		std::abort(); // the input before left a file open
	host.ui = &ui;
	host.clock = &still_clock;
	host.files = &memory_files;
	current_run_mode.diagnostics = true;
	current_config_path = "C";
}

} // namespace velmor::memory_host
