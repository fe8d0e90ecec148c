// velmor_programs_samples.cpp - the samples that a program names: which, where, and from the spool
//
// The sampler's names and the spool's differ: a machine may know capitals alone, cut a name, and
// put a full stop for what its alphabet lacks. The file that fits best is sent as every upload.
//
// Knows nothing of: models, windows.

#include "src/velmor_programs.h"
#include "src/waveqx.h"
#include "src/waveqx_file.h"
#include <algorithm>

namespace velmor
{

std::vector<std::string> samples_of(const _program &program)
{
	std::vector<std::string> names;
	for (int k = 0; k < std::clamp(program.keygroups, 0, max_keygroups); k++)
		for (int z = 0; z < std::clamp(program.keygroup[k].keyzones, 0, max_keyzones);
			z++) {
			const std::string name =
				without_end_blanks(program.keygroup[k].keyzone[z].samplename);
			if (!name.empty() &&
				std::find(names.begin(), names.end(), name) == names.end())
				names.push_back(name);
		}
	return names;
}

bool is_loaded_sample(const std::string &name)
{
	for (const std::string &loaded : loaded_names())
		if (without_end_blanks(loaded) == without_end_blanks(name))
			return true;
	return false;
}

std::vector<std::string> required_files(const _program &program)
{
	std::vector<std::string> paths;
	for (const std::string &name : samples_of(program)) {
		const std::string path = wave_path_of(spool_folder() + "\\" + file_name_of(name));
		file_info info;
		if (host.files->stat(path.c_str(), &info) == 0 && info.regular) {
			log_line("Found valid sample: [%s]\r\n", path.c_str());
			paths.push_back(path);
		}
	}
	return paths;
}

// ---- One that the sampler lacks -------------------------------------------------------------------

static bool is_letter_or_digit(char c)
{
	return (c >= '0' && c <= '9') || (lower(c) >= 'a' && lower(c) <= 'z');
}

// A machine that takes a file of that name may call its sample so.
static bool may_become(const std::string &file, const std::string &name)
{
	constexpr std::size_t shortest_cut = 10;
	if (file.size() < name.size() || (file.size() > name.size() && name.size() < shortest_cut))
		return false;
	for (std::size_t i = 0; i < name.size(); i++)
		if (lower(file[i]) != lower(name[i]) &&
			(name[i] != '.' || is_letter_or_digit(file[i])))
			return false;
	return true;
}

// The better, the smaller; as many as there are ways: it does not fit.
static std::size_t misfit(const std::string &file, const std::string &name)
{
	const std::string told = file_name_of(name);
	const bool ways[] = { file == told, equal_but_for_case(file, told),
		may_become(file, name) };
	return static_cast<std::size_t>(std::find(std::begin(ways), std::end(ways), true) - ways);
}

// Its path without extension, "" for none; the first by its name of those that fit alike.
static std::string find_in_spool(const std::string &name)
{
	std::vector<std::string> files;
	host.files->list(spool_folder().c_str(), &files);
	std::sort(files.begin(), files.end());
	std::string found;
	std::size_t least = 3;
	for (const std::string &file : files) {
		const std::size_t dot = file.size() < 4 ? 0 : file.size() - 4;
		const std::string base = file.substr(0, dot);
		if (!equal_but_for_case(file.substr(dot), ".wav") || misfit(base, name) >= least)
			continue;
		least = misfit(base, name);
		found = spool_folder() + "\\" + base;
	}
	return found;
}

outcome find_and_upload(const std::string &named)
{
	const std::string name = without_end_blanks(named);
	if (name.empty())
		return { .how = ending::refused, .words = tr("This keyzone names no sample.") };
	const std::string path = find_in_spool(name);
	if (path.empty())
		return { .how = ending::refused,
			.words = format_text(
				tr("The spool holds no file called '%s'. Import it in the sample "
				   "manager, or choose another sample for the keyzone."),
				name.c_str()),
			.line = format_text(tr("'%s' is not in the spool."), name.c_str()) };
	log_line("[I] Found [%s] for the missing sample [%s]\r\n", path.c_str(), name.c_str());
	outcome result = upload_sample(path);
	if (result.done() && !is_loaded_sample(name))
		result.words = format_text(tr("%s The sampler does not call it '%s', so choose it "
					      "in the sample list of the keyzone."),
			result.line.c_str(), name.c_str());
	return result;
}

} // namespace velmor
