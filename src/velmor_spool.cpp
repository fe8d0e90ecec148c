// velmor_spool.cpp - samples of this computer: names, deletion with a way back, import
//
//   <configuration folder>\sample    the spool
//                         \deleted   what was deleted or replaced there, as it was
//                         \deleted\undo   what was edited, as it was before
//
// A sample is a .wav file and, of some, a .info file beside it. Both move together.
//
// Knows nothing of: samplers, windows beyond the number that shows an import.

#include "src/controls.h"
#include "src/velmor_wave_edit.h"
#include "src/waveqx.h"
#include "src/waveqx_file.h"
#include <algorithm>
#include <utility>

namespace velmor
{

// The pitch of an imported file that tells none: B4 of the sampler's keyboard.
static constexpr int import_pitch = 83;

std::string spool_folder()
{
	return current_config_path + "\\sample";
}

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

static outcome local_failure(int code, const std::string &line)
{
	box_keeper keeper;
	_display_error(__FILE_NAME__, __LINE__, code);
	return { .how = ending::local_failed, .line = line, .told = keeper.take() };
}

// ---- Moving files, and back ---------------------------------------------------------------------

static std::vector<undo_step> undo_steps;

using moves = std::vector<undo_step::move>;

// Move files back, the last first. The first code of a failure, which keeps nothing from moving
// the others.
static int move_back(const moves &done)
{
	int failed = 0;
	for (auto it = done.rbegin(); it != done.rend(); ++it) {
		const int code = host.files->rename(it->now.c_str(), it->before.c_str());
		failed = failed ? failed : code;
	}
	return failed;
}

// Move one file, and remember the way back; after a failure everything stands as before.
static int move_file(const std::string &from, const std::string &to, moves *done)
{
	const int code = host.files->rename(from.c_str(), to.c_str());
	if (!code)
		done->push_back({ to, from });
	else
		(void)move_back(std::exchange(*done, {}));
	return code;
}

// Both files of a sample, the first of which must be there.
static int move_sample(const std::string &from, const std::string &to, moves *done)
{
	const int code = move_file(wave_path_of(from), to + ".wav", done);
	return code || !file_exists(from + ".info") ? code
						    : move_file(from + ".info", to + ".info", done);
}

static std::string deleted_folder()
{
	return current_config_path + "\\deleted";
}

// A place for a sample in a folder beside the spool, where none of that name lies yet.
static std::string free_place(const std::string &folder, const std::string &name)
{
	(void)host.files->make_folder(folder.c_str()); // shows at the move
	std::string place = folder + "\\" + name;
	for (int i = 2; file_exists(place + ".wav") || file_exists(place + ".info"); i++)
		place = folder + "\\" + name + format_text(" (%d)", i);
	return place;
}

static std::string place_among_deleted(const std::string &name)
{
	return free_place(deleted_folder(), name);
}

void remember_undo(const undo_step &step)
{
	undo_steps.push_back(step);
}

bool can_undo()
{
	return !undo_steps.empty();
}

void forget_undo()
{
	undo_steps.clear();
}

std::size_t undo_steps_kept()
{
	return undo_steps.size();
}

void join_undo(std::size_t since, const std::string &line)
{
	if (undo_steps.size() <= since + 1)
		return;
	undo_step all = { .line = line, .moves = {} };
	for (std::size_t i = since; i < undo_steps.size(); i++)
		all.moves.insert(
			all.moves.end(), undo_steps[i].moves.begin(), undo_steps[i].moves.end());
	undo_steps.resize(since);
	undo_steps.push_back(all);
}

outcome undo_last()
{
	if (undo_steps.empty())
		return { .how = ending::refused, .words = tr("There is nothing to put back.") };
	const undo_step step = undo_steps.back();
	undo_steps.pop_back();
	for (const undo_step::move &move : step.moves)
		if (file_exists(move.before) && std::none_of(step.moves.begin(), step.moves.end(),
							[&](const undo_step::move &other) {
								return equal_but_for_case(
									other.now, move.before);
							}))
			return { .how = ending::refused,
				.words = format_text(tr("There is a file called [%s] again, so "
							"nothing was put back."),
					shown_path(move.before).c_str()) };
	log_line("[I] Putting back: %s\r\n", step.line.c_str());
	const int code = move_back(step.moves);
	if (step.show)
		step.show();
	return code ? local_failure(code, tr("Not everything could be put back."))
		    : outcome{ .line = step.line };
}

// ---- Deleting and renaming --------------------------------------------------------------------------

outcome delete_local(const std::string &name)
{
	log_line("[I] Deleting [%s]  PATH: [%s]\r\n", name.c_str(), spool_folder().c_str());
	undo_step step = { .line = format_text(tr("Put %s back."), quoted(name).c_str()),
		.moves = {} };
	const int code =
		move_sample(spool_folder() + "\\" + name, place_among_deleted(name), &step.moves);
	if (code)
		return local_failure(
			code, format_text(tr("%s was not deleted."), quoted(name).c_str()));
	undo_steps.push_back(step);
	return { .words = "Local sample successfully deleted",
		.line = format_text(tr("Deleted %s from this computer."), quoted(name).c_str()) };
}

// True if path names the file of before under other letters: a disk that does not tell cases
// apart finds it, and its folder does not list it.
static bool same_file(const std::string &before, const std::string &path)
{
	if (!equal_but_for_case(before, path) || !file_exists(path))
		return false;
	std::vector<std::string> names;
	host.files->list(path.substr(0, path.rfind('\\')).c_str(), &names);
	return std::find(names.begin(), names.end(), path.substr(path.rfind('\\') + 1)) ==
	       names.end();
}

// A renaming under way: paths without extension.
struct renaming {
	std::string old_name, new_name;
	std::string from, to;
};

// The file that a renaming would replace, "" where the name is free or its own.
static std::string replaced_by(const std::string &from, const std::string &to)
{
	return file_exists(to) && !same_file(from, to) ? to : "";
}

static std::string replaced_wave(const renaming &work)
{
	return replaced_by(wave_path_of(work.from), wave_path_of(work.to));
}

static std::string replaced_info(const renaming &work)
{
	return replaced_by(work.from + ".info", work.to + ".info");
}

// The name is free, or the user gives up what bears it. Both files of a sample are asked for.
static bool may_take_name(const renaming &work)
{
	const char *old_name = work.old_name.c_str(), *new_name = work.new_name.c_str();
	if (!replaced_wave(work).empty() &&
		!ask_box("INFO", "A sample with that name already exists, overwrite?")) {
		log_line("Not renaming [%s] --> [%s]\r\n", old_name, new_name);
		return false;
	}
	if (!replaced_info(work).empty() &&
		!ask_box("INFO", "A Sample with that name already exists, overwrite?")) {
		log_line("Not renaming sample [%s] --> [%s]\r\n", old_name, new_name);
		return false;
	}
	return true;
}

// What bears the new name goes to the deleted ones. A name that differs in letters alone is
// reached by a detour, since a disk that does not tell cases apart takes both for one file.
static int take_name(const renaming &work, moves *done)
{
	const std::string place = place_among_deleted(work.new_name);
	const std::string wave = replaced_wave(work), info = replaced_info(work);
	int code = wave.empty() ? 0 : move_file(wave, place + ".wav", done);
	if (!code && !info.empty())
		code = move_file(info, place + ".info", done);
	std::string from = work.from;
	if (!code && equal_but_for_case(work.from, work.to)) {
		from += "~";
		code = move_sample(work.from, from, done);
	}
	return code ? code : move_sample(from, work.to, done);
}

outcome rename_local(const std::string &old_name, const std::string &typed)
{
	if (typed.empty())
		return { .how = ending::refused, .words = "Choose a new name!" };
	const std::string new_name = file_name_of(typed);
	const renaming work = { old_name, new_name, spool_folder() + "\\" + old_name,
		spool_folder() + "\\" + new_name };
	log_line("[I] Renaming [%s] --> [%s] PATH: [%s]\r\n", old_name.c_str(), new_name.c_str(),
		spool_folder().c_str());
	if (new_name == old_name)
		return { .how = ending::refused,
			.words = format_text(
				tr("The sample is called %s already."), quoted(old_name).c_str()) };
	if (!file_exists(wave_path_of(work.from)))
		return { .how = ending::local_failed,
			.words = format_text(
				tr("[%s] is not there any more. Refresh reads the spool again."),
				shown_path(wave_path_of(work.from)).c_str()) };
	if (!may_take_name(work))
		return { .how = ending::stopped,
			.line = format_text(tr("%s keeps its name."), quoted(old_name).c_str()) };
	log_line("[D] renaming sample [%s] --> [%s]\r\n", old_name.c_str(), new_name.c_str());
	undo_step step = { .line = format_text(
				   tr("%s has its old name again."), quoted(old_name).c_str()),
		.moves = {} };
	if (const int code = take_name(work, &step.moves))
		return local_failure(
			code, format_text(tr("%s keeps its name."), quoted(old_name).c_str()));
	undo_steps.push_back(step);
	return { .words = "Local sample successfully renamed",
		.line = format_text(tr("%s on this computer is now %s."), quoted(old_name).c_str(),
			quoted(new_name).c_str()) };
}

// ---- Editing ------------------------------------------------------------------------------------------

static constexpr std::ptrdiff_t most_edits_kept = 30;

// What puts a file back as it was also takes what it became away from there.
static bool is_edit(const undo_step &step)
{
	return step.moves.size() == 2 && step.moves[0].before == step.moves[1].now;
}

// Files of minutes are large: of many edits the oldest cannot be undone any more.
static void forget_oldest_edit()
{
	if (std::count_if(undo_steps.begin(), undo_steps.end(), is_edit) <= most_edits_kept)
		return;
	const auto oldest = std::find_if(undo_steps.begin(), undo_steps.end(), is_edit);
	host.files->remove(oldest->moves[0].now.c_str());
	undo_steps.erase(oldest);
}

static outcome edit_failed(const std::string &words, const std::string &name)
{
	return { .how = ending::local_failed,
		.words = format_text(tr("%s Nothing was changed."), words.c_str()),
		.line = format_text(tr("%s stays as it was."), quoted(name).c_str()) };
}

// A copy beside what was deleted; "" or why there is none.
static std::string keep_copy(const std::string &path, const std::string &copy)
{
	input_file source;
	fresh_file target;
	int read_code = source.measure(path.c_str());
	if (!read_code)
		read_code = source.open(path.c_str());
	if (read_code)
		return read_failure(path, read_code);
	int code = target.open(copy);
	if (!code)
		code = copy_bytes(source, 0, source.size, target, &read_code);
	if (read_code)
		return read_failure(path, read_code);
	if (!code)
		code = target.finish();
	return code ? write_failure(copy, code) : "";
}

outcome replace_local(const std::string &name, std::span<const u8> file, const std::string &undone)
{
	const std::string path = wave_path_of(spool_folder() + "\\" + name);
	(void)host.files->make_folder(deleted_folder().c_str()); // shows at the copy
	const std::string folder = deleted_folder() + "\\undo";
	const std::string place = free_place(folder, name), copy = place + ".wav";
	if (const std::string why = keep_copy(path, copy); !why.empty())
		return edit_failed(why, name);
	if (const int code = write_whole_file(path, file.data(), file.size())) {
		host.files->remove(copy.c_str());
		return edit_failed(write_failure(path, code), name);
	}
	// No other step that can be undone has that copy, so none takes that name.
	const std::string edited =
		free_place(folder, place.substr(place.rfind('\\') + 1) + ", edited") + ".wav";
	undo_steps.push_back({ .line = undone, .moves = { { copy, path }, { path, edited } } });
	forget_oldest_edit();
	return {};
}

outcome convert_local(const std::string &name, const import_options &options, undo_step *undo)
{
	const std::string path = wave_path_of(spool_folder() + "\\" + name);
	(void)host.files->make_folder(deleted_folder().c_str()); // shows at the copy
	const std::string folder = deleted_folder() + "\\undo";
	const std::string place = free_place(folder, name), copy = place + ".wav";
	if (const std::string why = keep_copy(path, copy); !why.empty())
		return edit_failed(why, name);
	if (!import_sound(path.c_str(), window_samples, static_cast<unsigned>(options.bits),
		    options.rate, static_cast<unsigned>(options.channels),
		    static_cast<unsigned>(options.mixing), import_pitch)) {
		host.files->remove(copy.c_str());
		if (progress_stopped())
			return { .how = ending::stopped };
		return edit_failed(
			import_failure.empty() ? tr("It was not converted.") : import_failure,
			name);
	}
	const std::string before =
		free_place(folder, place.substr(place.rfind('\\') + 1) + ", edited") + ".wav";
	undo->moves.push_back({ copy, path });
	undo->moves.push_back({ path, before });
	return {};
}

// ---- The whole spool ----------------------------------------------------------------------------------

// Why the last import or export failed, on a line of its own.
static std::string reason_of_failure()
{
	return import_failure.empty() ? "" : "\n" + import_failure;
}

outcome export_spool_to(const std::string &folder)
{
	if (copy_folder(window_samples, spool_folder().c_str(), folder.c_str()))
		return { .words = "Export completed" };
	return { .how = ending::local_failed,
		.words = "Export failed" + reason_of_failure(),
		.caption = "FATAL" };
}

outcome clear_spool_folder()
{
	const std::string folder = spool_folder();
	if (!ask_box("INFO", "Are you sure, you want to clear spooldir (%s)?",
		    shown_path(folder).c_str()))
		return { .how = ending::stopped, .line = tr("The spool was left as it is.") };
	log_line("[I] Cleaning [%s]\r\n", folder.c_str());
	cleanup_dir(folder.c_str());
	forget_undo();
	return { .line = tr("The spool was cleared.") };
}

// ---- Import ---------------------------------------------------------------------------------------------

static void show_work(int window, int control, const std::string &text)
{
	if (window)
		host.ui->set_text(window, control, text.c_str());
}

static bool import_one(
	const std::string &path, const import_options &options, int window, int number, int count)
{
	show_work(window, samples_work_file, shown_path(path));
	show_work(window, samples_work_count, format_text("%d/%d", number, count));
	return import_sound(path.c_str(), window, static_cast<unsigned>(options.bits), options.rate,
		static_cast<unsigned>(options.channels), static_cast<unsigned>(options.mixing),
		import_pitch);
}

outcome import_files(std::span<const std::string> paths,
	const std::function<import_options()> &options, int window)
{
	const int count = static_cast<int>(paths.size());
	show_progressbar(window, count, "Converting Files...");
	int done = 0;
	for (const std::string &path : paths) {
		if (progress_stopped())
			break;
		const bool good = import_one(path, options(), window, done + 1, count);
		if (!good && progress_stopped())
			break;
		if (!good) {
			hide_progressbar(window);
			return { .how = ending::local_failed,
				.words = format_text("Conversion failed! [%s] (%d/%d)",
						 shown_path(path).c_str(), done + 1, count) +
					 reason_of_failure(),
				.caption = "ERROR",
				.line = format_text(
					tr("%d of %d files were converted."), done, count) };
		}
		done++;
		set_progressbar(done);
	}
	hide_progressbar(window);
	log_line("[D] Finished Import-Dialog for %d Sample(s)\r\n", done);
	return { .how = done < count ? ending::stopped : ending::done,
		.words = format_text("%d/%d files converted!", done, count) };
}

} // namespace velmor
