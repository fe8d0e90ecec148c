// ctl_programs.cpp - verbs about programs: program ls, get, put, rm, mv
//
// Names are without the blanks that some models fill them up with.

#include "programs/ctl.h"
#include "src/velmor_library.h"
#include "src/velmor_programs.h"
#include "src/waveqx.h"
#include <algorithm>

namespace velmor
{

static void print_programs(const _program *const *programs, std::size_t count)
{
	for (std::size_t i = 0; i < count; i++) {
		const _program &program = *programs[i];
		const std::string name = without_end_blanks(program.name);
		ctl_print(ctl_object()
				  .text("name", name)
				  .number("keygroups", program.keygroups)
				  .texts("samples", samples_of(program)),
			name);
	}
}

static int list_local()
{
	const outcome read = load_local_programs();
	std::vector<const _program *> programs;
	for (const auto &program : local_pgm)
		programs.push_back(program.get());
	print_programs(programs.data(), programs.size());
	return read.done() && read.words.empty() ? exit_done : ctl_tell("", read);
}

int ctl_program_ls(const ctl_call &call)
{
	if (call.has("--local"))
		return list_local();
	const outcome read = read_programs_again();
	std::vector<const _program *> programs;
	for (std::size_t i = 0; i < loaded_programs().size(); i++)
		programs.push_back(&current_sampler->status->program[i]);
	print_programs(programs.data(), programs.size());
	return read.done() && read.told.empty() ? exit_done : ctl_tell("", read);
}

// Work on one that the sampler lists.
static outcome on_sampler(
	const std::string &typed, const std::function<outcome(const program_entry &)> &work)
{
	const outcome ready = have_program_list();
	if (!ready.done())
		return ready;
	const std::vector<std::string> names = loaded_programs();
	const std::string name = without_end_blanks(typed);
	if (std::find(names.begin(), names.end(), name) == names.end())
		return { .how = ending::refused, .words = "'" + name + "' is not on the sampler." };
	return work({ .name = name });
}

int ctl_program_get(const ctl_call &call)
{
	return ctl_each(call.words,
		[](const std::string &name) { return on_sampler(name, download_program); });
}

// ---- Programs of this computer ------------------------------------------------------------------

// Its place in local_pgm, -1 for none.
static int local_place(const std::string &name)
{
	const auto found = std::find_if(local_pgm.begin(), local_pgm.end(), [&](const auto &one) {
		return without_end_blanks(one->name) == without_end_blanks(name);
	});
	return found == local_pgm.end() ? -1 : static_cast<int>(found - local_pgm.begin());
}

static outcome with_local(const std::string &name, const std::function<outcome(int)> &work)
{
	const int place = local_place(name);
	if (place >= 0)
		return work(place);
	return { .how = ending::local_failed,
		.words = "There is no program called '" + name + "' on this computer." };
}

// The samples follow where they are wanted, as behind the button.
static outcome put_with_samples(int place)
{
	const _program &program = *local_pgm[static_cast<std::size_t>(place)];
	outcome result = upload_program(program);
	if (!result.done())
		return result;
	const std::vector<std::string> paths = required_files(program);
	if (paths.empty() || !ask_box("INFO", "Also upload required samples (%d Samples)?",
				     static_cast<int>(paths.size())))
		return result;
	const outcome samples = upload_files(paths);
	result.how = samples.how;
	result.words += (result.words.empty() || samples.words.empty() ? "" : "\n") + samples.words;
	result.line += samples.line.empty() ? "" : " " + samples.line;
	return result;
}

int ctl_program_put(const ctl_call &call)
{
	if (const outcome read = load_local_programs(); !read.words.empty())
		ctl_say(read.words);
	return ctl_each(call.words,
		[](const std::string &name) { return with_local(name, put_with_samples); });
}

// ---- Names --------------------------------------------------------------------------------------

int ctl_program_rm(const ctl_call &call)
{
	const bool local = call.has("--local");
	if (local)
		(void)load_local_programs();
	return ctl_each(call.words, [&](const std::string &name) {
		return local ? with_local(name, delete_local_program)
			     : on_sampler(name, delete_program);
	});
}

int ctl_program_mv(const ctl_call &call)
{
	const std::string &name = call.words[0], &new_name = call.words[1];
	if (!call.has("--local"))
		return ctl_tell(name, on_sampler(name, [&](const program_entry &which) {
			return rename_program(which, new_name);
		}));
	(void)load_local_programs();
	return ctl_tell(name,
		with_local(name, [&](int place) { return rename_local_program(place, new_name); }));
}

} // namespace velmor
