// velmor_files.cpp - files that appear under their names whole or not at all
//
// A temporary name lies in the folder of its file, because only there a rename happens
// at once:
//
//   ~velmor<process>-<count>.tmp
//
// It never ends in ".wav" or ".sampler". Its process has ended when no process of that
// number runs, or when the number is ours and we have only just started.

#include "src/velmor_files.h"
#include "src/velmor.h"
#include <charconv>
#include <vector>

namespace velmor
{

static constexpr std::string_view prefix = "~velmor", suffix = ".tmp";
static constexpr int attempts = 1000;

static std::string folder_of(const std::string &path)
{
	const std::size_t end = path.rfind('\\');
	return end == path.npos ? "" : path.substr(0, end + 1);
}

fresh_file::~fresh_file()
{
	discard();
}

void fresh_file::discard()
{
	if (file >= 0)
		(void)host.files->close(file);
	file = -1;
	if (!temporary.empty())
		(void)host.files->remove(temporary.c_str());
	temporary.clear();
}

int fresh_file::open(const std::string &name)
{
	static unsigned count = 0;
	discard();
	path = name;
	int code = 0;
	for (int i = 0; i < attempts; i++) {
		const std::string wanted = format_text("%s~velmor%ld-%u.tmp",
			folder_of(path).c_str(), host.files->process(), count++);
		code = host.files->open(wanted.c_str(), file_exclusive, &file);
		if (!code)
			temporary = wanted;
		else
			file = -1;
		if (!code || !host.files->exists_already(code))
			break;
	}
	return code;
}

int fresh_file::write(const void *bytes, std::size_t count)
{
	return host.files->write(file, bytes, count);
}

int fresh_file::end(bool synced)
{
	int code = synced ? host.files->sync(file) : 0;
	const int closed = host.files->close(file);
	file = -1;
	if (!code)
		code = closed;
	if (!code)
		code = host.files->rename(temporary.c_str(), path.c_str());
	if (!code)
		temporary.clear();
	discard();
	if (code || !synced)
		return code;
	const std::string folder = folder_of(path);
	return host.files->sync_folder(folder.empty() ? "." : folder.c_str());
}

int fresh_file::finish()
{
	return end(true);
}

int fresh_file::finish_unsynced()
{
	return end(false);
}

int write_whole_file(const std::string &path, const void *bytes, std::size_t count)
{
	fresh_file file;
	int code = file.open(path);
	if (!code)
		code = file.write(bytes, count);
	return code ? code : file.finish();
}

// ---- What is left behind ---------------------------------------------------------------------

// The process in a temporary name; 0 where there is none, as in the names of earlier versions.
static bool read_temporary_name(std::string_view name, long *process)
{
	if (!name.starts_with(prefix) || !name.ends_with(suffix) ||
		name.size() <= prefix.size() + suffix.size())
		return false;
	const std::string_view middle =
		name.substr(prefix.size(), name.size() - prefix.size() - suffix.size());
	*process = 0;
	if (middle.find_first_not_of("0123456789-") != middle.npos)
		return false;
	if (const std::size_t dash = middle.find('-'); dash != middle.npos)
		std::from_chars(middle.data(), middle.data() + dash, *process);
	return true;
}

bool is_temporary_name(std::string_view name)
{
	long process;
	return read_temporary_name(name, &process);
}

void remove_left_files(const std::string &folder)
{
	std::vector<std::string> names;
	if (host.files->list(folder.c_str(), &names) != 0)
		return;
	for (const std::string &name : names) {
		long process = 0;
		if (!read_temporary_name(name, &process))
			continue;
		const bool ended = process <= 0 || process == host.files->process() ||
				   !host.files->process_runs(process);
		const std::string path = folder + "\\" + name;
		if (ended && host.files->remove(path.c_str()) == 0)
			log_line("[I] Removed what an earlier run left: [%s]\r\n", path.c_str());
	}
}

std::string write_failure(const std::string &path, int code)
{
	const std::string name = host.files->host_path(path.c_str());
	if (host.files->disk_full(code))
		return format_text(tr("The disk is full: there is no room for %s."), name.c_str());
	const char *words = host.files->error_text(code);
	return words ? format_text(tr("%s cannot be written: %s."), name.c_str(), words)
		     : format_text(tr("%s cannot be written (code %d)."), name.c_str(), code);
}

} // namespace velmor
