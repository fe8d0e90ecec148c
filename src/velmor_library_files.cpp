// velmor_library_files.cpp - the folder of the programs of this computer, and what models share
//
// A listed program keeps its place in memory as long as it is listed: its edits hang on it.
//
// Knows nothing of: windows, the wire.

#include "src/akais1000.h"
#include "src/akais5000.h"
#include "src/akais900.h"
#include "src/akaiz4.h"
#include "src/velmor_edits.h"
#include "src/velmor_files.h"
#include "src/velmor_library.h"
#include "src/waveqx.h"
#include "src/waveqx_file.h"
#include <algorithm>
#include <map>
#include <set>

namespace velmor
{

static constexpr const char *extension = ".program";
static constexpr u64 largest_file = 8u << 20; // 128 keygroups of 8 zones take less than 2 MB

struct program_file {
	std::string path;
	kept_lines kept;
};
static std::map<const _program *, program_file> program_files;

static std::string quoted(const std::string &name)
{
	return "'" + name + "'";
}

static bool file_exists(const std::string &path)
{
	file_info info;
	return host.files->stat(path.c_str(), &info) == 0;
}

static std::string shown_path(const std::string &path)
{
	return host.files->host_path(path.c_str());
}

std::string program_folder()
{
	return current_config_path + "\\pgm";
}

std::string file_of_program(const _program &program)
{
	const auto found = program_files.find(&program);
	return found == program_files.end() ? "" : found->second.path;
}

static std::string plain_name(std::string name)
{
	name.resize(name.find_last_not_of(' ') + 1);
	return file_name_of(name.empty() ? "program" : name);
}

// Where no file is yet.
static std::string free_path(const std::string &folder, const std::string &name)
{
	std::string path = folder + "\\" + name + extension;
	for (int i = 2; file_exists(path); i++)
		path = folder + "\\" + name + format_text(" (%d)", i) + extension;
	return path;
}

// ---- Reading ----------------------------------------------------------------------------------

struct read_program {
	std::unique_ptr<_program> program;
	kept_lines kept;
	std::string refused; // a sentence
};

static read_program read_file(const std::string &path)
{
	input_file file;
	int code = file.measure(path.c_str());
	code = code ? code : file.open(path.c_str());
	if (code)
		return { nullptr, {}, read_failure(path, code) };
	if (file.size > largest_file)
		return { nullptr, {},
			format_text(
				tr("[%s] is too large for a program."), shown_path(path).c_str()) };
	std::string text(static_cast<std::size_t>(file.size), '\0');
	if ((code = file.read(0, text.data(), text.size())))
		return { nullptr, {}, read_failure(path, code) };
	read_program result;
	program_refusal why;
	result.program = read_program_text(text, &result.kept, &why);
	if (!result.program)
		result.refused = format_text(tr("[%s], line %d: %s It was not loaded."),
			shown_path(path).c_str(), why.line, why.reason.c_str());
	return result;
}

static std::vector<std::string> files_of_folder()
{
	std::vector<std::string> names, paths;
	host.files->list(program_folder().c_str(), &names);
	std::sort(names.begin(), names.end());
	for (const std::string &name : names)
		if (!is_temporary_name(name) && name.size() > 8 &&
			equal_but_for_case(name.substr(name.size() - 8), extension))
			paths.push_back(program_folder() + "\\" + name);
	return paths;
}

using program_pointer = std::unique_ptr<_program>;

// The listed program of that file, taken off the list; null when there is none.
static program_pointer take_listed(const std::string &path)
{
	for (auto it = local_pgm.begin(); it != local_pgm.end(); ++it)
		if (file_of_program(**it) == path) {
			program_pointer taken = std::move(*it);
			local_pgm.erase(it);
			return taken;
		}
	return nullptr;
}

static void forget_program(const _program &program)
{
	forget_edits(program);
	program_files.erase(&program);
}

void forget_local_programs()
{
	for (const program_pointer &program : local_pgm)
		forget_edits(*program);
	program_files.clear();
	local_pgm.clear();
	local_pgms = 0;
}

// As the file has it, unless edits wait for it to be written.
static program_pointer load_one(const std::string &path, std::string *refused)
{
	program_pointer listed = take_listed(path);
	if (listed && unsent_changes(*listed).all())
		return listed;
	read_program read = read_file(path);
	if (!read.refused.empty())
		*refused += (refused->empty() ? "" : "\n") + read.refused;
	if (!listed)
		listed = std::move(read.program);
	else if (read.program)
		*listed = *read.program;
	if (!read.program && listed && !read.refused.empty()) {
		forget_program(*listed);
		return nullptr;
	}
	if (listed) {
		forget_edits(*listed);
		program_files[listed.get()] = { path, read.kept };
	}
	return listed;
}

outcome load_local_programs()
{
	(void)host.files->make_folder(program_folder().c_str()); // shows when a program is written
	std::vector<program_pointer> list;
	std::string refused;
	for (const std::string &path : files_of_folder())
		if (program_pointer one = load_one(path, &refused))
			list.push_back(std::move(one));
	// Those without a file have not been written yet; of the others the file is gone.
	for (program_pointer &left : local_pgm) {
		if (file_of_program(*left).empty() || unsent_changes(*left).all())
			list.push_back(std::move(left));
		else
			forget_program(*left);
	}
	local_pgm = std::move(list);
	local_pgms = static_cast<int>(local_pgm.size());
	if (refused.empty())
		return {};
	return { .how = ending::local_failed,
		.words = refused,
		.line = tr("Not every program of this computer could be loaded.") };
}

// ---- Writing ----------------------------------------------------------------------------------

outcome save_local_program(const _program &program)
{
	program_file &file = program_files[&program];
	const bool fresh = file.path.empty();
	(void)host.files->make_folder(program_folder().c_str());
	const std::string path =
		fresh ? free_path(program_folder(), plain_name(program.name)) : file.path;
	const std::string text = program_text(program, file.kept);
	const int code = write_whole_file(path, text.data(), text.size());
	if (code) {
		if (fresh)
			program_files.erase(&program);
		return { .how = ending::local_failed,
			.words = write_failure(path, code),
			.caption = "ERROR",
			.line = format_text(
				tr("%s was not saved."), quoted(program.name).c_str()) };
	}
	file.path = path;
	edits_sent(program);
	return { .line = format_text(tr("Saved %s as [%s]."), quoted(program.name).c_str(),
			 shown_path(path).c_str()) };
}

outcome keep_program(const _program &program)
{
	program_pointer copy = std::make_unique<_program>(program);
	outcome saved = save_local_program(*copy);
	if (saved.done())
		saved.words = format_text(tr("%s was kept on this computer as [%s]."),
			quoted(program.name).c_str(), shown_path(file_of_program(*copy)).c_str());
	local_pgm.push_back(std::move(copy));
	local_pgms = static_cast<int>(local_pgm.size());
	return saved;
}

static bool is_listed(int index)
{
	return index >= 0 && static_cast<std::size_t>(index) < local_pgm.size();
}

outcome delete_local_program(int index)
{
	if (!is_listed(index))
		return { .how = ending::refused, .words = tr("There is no such program.") };
	const auto at = local_pgm.begin() + index;
	const std::string path = file_of_program(**at), name = (*at)->name;
	const std::string folder = current_config_path + "\\deleted";
	(void)host.files->make_folder(folder.c_str()); // shows at the move
	const std::string place = free_path(folder, plain_name(name));
	const int code = path.empty() ? 0 : host.files->rename(path.c_str(), place.c_str());
	if (code && !host.files->not_found(code))
		return { .how = ending::local_failed,
			.words = write_failure(path, code),
			.caption = "ERROR",
			.line = format_text(tr("%s was not deleted."), quoted(name).c_str()) };
	forget_program(**at);
	local_pgm.erase(at);
	local_pgms = static_cast<int>(local_pgm.size());
	return { .line = format_text(tr("Deleted %s from this computer: its file is [%s] now."),
			 quoted(name).c_str(), shown_path(place).c_str()) };
}

outcome rename_local_program(int index, const std::string &new_name)
{
	if (!is_listed(index))
		return { .how = ending::refused, .words = tr("There is no such program.") };
	if (new_name.empty())
		return { .how = ending::refused, .words = "Choose a new name!" };
	_program &program = *local_pgm[static_cast<std::size_t>(index)];
	const std::string before = program.name, path = file_of_program(program);
	const field_change change = { { field_of<&_program::name> }, text_value(new_name) };
	edit_fields(program, { "Name", before, new_name }, { &change, 1 });
	program_files[&program].path.clear(); // to a free name
	outcome saved = save_local_program(program);
	if (!saved.done()) {
		undo_edit(program);
		program_files[&program].path = path;
		return saved;
	}
	if (!path.empty())
		host.files->remove(path.c_str());
	saved.line = format_text(tr("%s on this computer is now %s."), quoted(before).c_str(),
		quoted(program.name).c_str());
	return saved;
}

// ---- Between models -----------------------------------------------------------------------------

bool same_family(const _sampler_type &one, const _sampler_type &other)
{
	return one.saveprogram && one.saveprogram == other.saveprogram;
}

template <typename record>
static void add_names(parameter_names *names, const parameters<record> &table)
{
	for (const auto &row : table)
		names->insert(row.field.name);
}

parameter_names parameters_of(const _sampler_type &model)
{
	parameter_names names;
	if (model.saveprogram == akai_s1000_prog_save) {
		add_names(&names, akai_s1000_program_parameters);
		add_names(&names, akai_s1000_keygroup_parameters);
		add_names(&names, akai_s1000_keyzone_parameters);
	} else if (model.saveprogram == akai_s5000_program_save) {
		for (const auto &block : akai_s5000_keygroup_blocks)
			add_names(&names, block);
		add_names(&names, akai_s5000_keygroup_values);
		add_names(&names, akai_s5000_zone_values);
	} else if (model.saveprogram == akai_z4_saveprogram) {
		add_names(&names, akai_z4_program_values);
		add_names(&names, akai_z4_keygroup_values);
		add_names(&names, akai_z4_zone_values);
	} else if (model.saveprogram == akai_s900_save_program) {
		add_names(&names, akai_s900_program_parameters);
		add_names(&names, akai_s900_keygroup_parameters);
		for (const auto &zone : { akai_s900_keyzone_parameters, akai_s900_soft_parameters,
			     akai_s900_loud_parameters })
			add_names(&names, zone);
	}
	if (!names.empty())
		names.insert({ "name", "samplename", "number", "index" });
	return names;
}

std::vector<std::string> not_carried(const _program &program, const _sampler_type &to)
{
	const _sampler_type *from = get_sampler(program.sampler_type);
	return from && same_family(*from, to) ? std::vector<std::string>{} : not_known(program, to);
}

std::vector<std::string> not_known(const _program &program, const _sampler_type &to)
{
	const parameter_names known = parameters_of(to);
	std::vector<std::string> lost;
	if (known.empty())
		return lost;
	std::set<std::string> seen;
	const std::string text = program_text(program); // names what the program holds
	std::size_t end = 0;
	for (std::size_t at = text.find("[program]"); at < text.size(); at = end + 1) {
		end = std::min(text.find('\n', at), text.size());
		const std::string line = text.substr(at, end - at);
		const std::size_t sign = line.find(" = ");
		const std::string name = line.substr(0, sign);
		if (sign != line.npos && !known.contains(name) && seen.insert(name).second)
			lost.push_back(name);
	}
	return lost;
}

} // namespace velmor
