// velmor_programs.cpp - programs between the sampler and this computer, by their names
//
// What a model can do is in its row of sampler_type; an empty slot has its words here. How an
// operation ended stands in program_outcome (akaiprograms.h), and where a list can show it, the
// list is read again and decides.
//
// Sending changes the record that is sent (tunings, magnitudes), so a copy is kept: a save that
// failed gives the user's edits back.
//
// Knows nothing of: models, windows.

#include "src/velmor_programs.h"
#include "src/akaiprograms.h"
#include "src/akais900.h"
#include "src/velmor_counts.h"
#include "src/velmor_edits.h"
#include "src/velmor_history.h"
#include "src/velmor_library.h"
#include "src/velmor_verify.h"
#include "src/waveqx.h"
#include "src/waveqx_file.h"
#include <algorithm>
#include <utility>

namespace velmor
{

static const char *const not_supported = "No Sampler loaded/Function not supported by Sampler";

static std::string quoted(const std::string &name)
{
	return "'" + name + "'";
}

std::string without_end_blanks(std::string name)
{
	name.resize(name.find_last_not_of(' ') + 1);
	return name;
}

static _dev_status *loaded_status()
{
	return current_sampler ? current_sampler->status : nullptr;
}

std::vector<std::string> loaded_programs()
{
	std::vector<std::string> names;
	const _dev_status *dev = loaded_status();
	for (int i = 0; dev && i < std::clamp(dev->programs, 0, max_programs); i++)
		names.push_back(without_end_blanks(dev->program[i].name));
	return names;
}

static int times_listed(const std::string &name)
{
	const std::vector<std::string> names = loaded_programs();
	return static_cast<int>(std::count(names.begin(), names.end(), name));
}

// Its place in the list now: where it was, or the first of its name; -1 for none.
static int place_of(const program_entry &which)
{
	const std::vector<std::string> names = loaded_programs();
	const auto at = static_cast<std::size_t>(which.index);
	if (which.index >= 0 && at < names.size() && names[at] == which.name)
		return which.index;
	const auto found = std::find(names.begin(), names.end(), which.name);
	return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

// ---- Reading, with edits on the way ---------------------------------------------------------------

struct kept_edit {
	std::unique_ptr<_program> program;
	program_entry was;
};

static std::vector<kept_edit> take_edited()
{
	std::vector<kept_edit> kept;
	_dev_status *dev = loaded_status();
	for (int i = 0; dev && i < max_programs; i++) {
		const _program &program = dev->program[i];
		if (!unsent_changes(program).all())
			continue;
		auto copy = std::make_unique<_program>(program);
		move_edits(program, *copy);
		kept.push_back({ std::move(copy), { without_end_blanks(program.name), i } });
	}
	return kept;
}

// Back into the list that was read, under the sampler's own numbers of now; after a reading that
// failed, to where it was. A program that is gone becomes one of this computer.
static void give_back(kept_edit *kept, bool read, outcome *result)
{
	const int at = read ? place_of(kept->was) : kept->was.index;
	if (at < 0) {
		forget_edits(*kept->program);
		const outcome saved = keep_program(*kept->program);
		result->words += result->words.empty() ? "" : "\n";
		result->words +=
			format_text(tr("%s is not on the sampler any more, but had edits. %s"),
				quoted(kept->was.name).c_str(), saved.words.c_str());
		return;
	}
	_program &place = current_sampler->status->program[at];
	if (read) {
		kept->program->index = place.index;
		kept->program->number = place.number;
	}
	place = *kept->program;
	move_edits(*kept->program, place);
}

// The list was read, if perhaps with a gap, and can be looked at.
static bool can_look(const outcome &read)
{
	return read.done() || (read.how == ending::no_answer && !the_lists.programs.silent);
}

outcome read_programs_again()
{
	std::vector<kept_edit> edited = take_edited();
	outcome read = read_program_list();
	for (kept_edit &one : edited)
		give_back(&one, can_look(read), &read);
	return read;
}

outcome have_program_list()
{
	if (the_lists.programs.state() == freshness::read)
		return {};
	outcome read = read_programs_again();
	if (read.done() || read.how == ending::stopped || !the_lists.programs.asked_at)
		return read;
	return nothing_sent(std::move(read));
}

// ---- What every operation begins and ends with ------------------------------------------------------

struct ready_program {
	outcome why;
	const _sampler_type *model = nullptr;
	int index = -1;
	_program *program = nullptr;
};

// A fresh list that holds the program, and a model that has the operation.
// What the operation goes over is kept by then.
template <typename slot>
static ready_program prepare(
	const program_entry &which, slot _sampler_type::*operation, const machine_change &kept)
{
	ready_program r;
	r.model = loaded_model(&r.why);
	if (!r.why.done())
		return r;
	if (!(r.model->*operation)) {
		r.why = { .how = ending::refused, .words = not_supported, .caption = "FATAL" };
		return r;
	}
	r.why = kept.may_go_on() ? have_program_list() : kept.why();
	if (!r.why.done())
		return r;
	r.index = place_of(which);
	if (r.index < 0) {
		r.why = { .how = ending::refused,
			.words = format_text(tr("%s is not on the sampler any more."),
				quoted(which.name).c_str()) };
		return r;
	}
	// Models search their own list by the name, which has no blanks at its end there.
	r.program = &current_sampler->status->program[r.index];
	copy_text(r.program->name, without_end_blanks(r.program->name));
	return r;
}

// How the driver says that it ended.
static outcome end_of_operation(box_keeper *keeper, const line_watch &watch)
{
	outcome result = program_outcome;
	result.told = troubles(keeper->take());
	if (result.done() && progress_stopped())
		result.how = ending::stopped;
	if (result.done() && watch.dead())
		result.how = ending::no_answer;
	if (result.done() && !result.told.empty())
		result.how = ending::refused;
	if (result.how == ending::no_answer && result.words.empty())
		result.words = silence_words(loaded_reached());
	return result;
}

// What was told in a box needs no second one.
static outcome one_box(outcome result)
{
	if (!result.told.empty() && !result.words.empty()) {
		result.line = result.line.empty() ? result.words : result.line;
		result.words.clear();
	}
	return result;
}

// ---- Saving -----------------------------------------------------------------------------------------

// The record as the driver leaves it, or as it was where it failed.
static outcome send_record(const _sampler_type &model, int index, _program *local, _program *record)
{
	const auto before = std::make_unique<_program>(*record);
	box_keeper keeper;
	const line_watch watch;
	forget_stop(); // of earlier work
	model.saveprogram(index, local);
	if (save_once_more && program_outcome.done() && !progress_stopped()) {
		*record = *before;
		model.saveprogram(index, local);
	}
	outcome result = end_of_operation(&keeper, watch);
	if (!result.done())
		*record = *before;
	return result;
}

// An S900 takes a program whole; others keep what keygroups they have more.
static bool sends_the_count(const _sampler_type &model)
{
	return model.saveprogram == akai_s900_save_program;
}

static outcome save_kept(const program_entry &which, const machine_change &kept)
{
	const ready_program r = prepare(which, &_sampler_type::saveprogram, kept);
	if (!r.why.done())
		return r.why;
	outcome result = send_record(*r.model, r.index, nullptr, r.program);
	if (result.done()) {
		const int surplus = edits_sent(*r.program, !sends_the_count(*r.model));
		result.line =
			format_text(tr("Sent %s to the sampler."), quoted(which.name).c_str());
		if (surplus && result.words.empty() && result.told.empty())
			result.words =
				format_text(tr("The program on the sampler keeps %s that this "
					       "one does not have."),
					counted(surplus, noun::keygroup).c_str());
	} else {
		result.line =
			result.how == ending::stopped
				? format_text(
					  tr("Sending %s was stopped."), quoted(which.name).c_str())
				: format_text(tr("%s was not sent."), quoted(which.name).c_str());
		if (result.words.empty() && result.told.empty() && result.how != ending::stopped)
			result.words = result.line;
	}
	return one_box(result);
}

outcome save_program(const program_entry &which)
{
	machine_change kept({ step_kind::change_program, which.name, "", which.index, -1 });
	return kept.ended(save_kept(which, kept));
}

// ---- Deleting and renaming ------------------------------------------------------------------------------

static outcome delete_kept(const program_entry &which, const machine_change &kept)
{
	const ready_program r = prepare(which, &_sampler_type::deleteprogram, kept);
	if (!r.why.done())
		return r.why;
	log_line("[D] Deleting Program-Info for [%s] (INDEX: %d)\r\n", r.program->name, r.index);
	const int before = times_listed(which.name);
	const auto copy = std::make_unique<_program>(*r.program);
	move_edits(*r.program, *copy); // they go with it, where it goes
	box_keeper keeper;
	const line_watch watch;
	forget_stop();
	r.model->deleteprogram(r.index);
	const outcome end = end_of_operation(&keeper, watch);
	const outcome read = read_programs_again();
	if (!can_look(read)) {
		_program &place = current_sampler->status->program[r.index];
		place = *copy;
		move_edits(*copy, place);
		outcome unknown = unknown_end(
			read, format_text(tr("%s was deleted"), quoted(which.name).c_str()));
		unknown.told = end.told;
		return unknown;
	}
	const int place = place_of(which);
	if (times_listed(which.name) < before)
		return { .line = format_text(
				 tr("Deleted %s on the sampler."), quoted(which.name).c_str()) };
	if (place >= 0 && unsent_changes(*copy).all()) {
		current_sampler->status->program[place] = *copy;
		move_edits(*copy, current_sampler->status->program[place]);
	}
	outcome result = { .how = end.done() ? ending::refused : end.how,
		.words =
			end.words.empty()
				? format_text(
					  tr("The sampler did not do it: %s is still in its list."),
					  quoted(which.name).c_str())
				: end.words,
		.line = format_text(tr("%s was not deleted."), quoted(which.name).c_str()),
		.told = end.told };
	forget_edits(*copy);
	return one_box(result);
}

outcome delete_program(const program_entry &which)
{
	machine_change kept({ step_kind::delete_program, which.name, "", which.index });
	return kept.ended(delete_kept(which, kept));
}

// A machine may keep a name in other letters, cut, and with blanks.
static bool may_be_called(const std::string &wanted, const std::string &name)
{
	constexpr std::size_t shortest_cut = 10;
	const bool fits = wanted.size() == name.size() ||
			  (name.size() >= shortest_cut && wanted.size() > name.size());
	return fits && equal_but_for_case(wanted.substr(0, name.size()), name);
}

static int find_renamed(const std::string &wanted, int near)
{
	const std::vector<std::string> names = loaded_programs();
	int found = -1;
	for (int i = 0; i < static_cast<int>(names.size()); i++)
		if (may_be_called(wanted, names[static_cast<std::size_t>(i)]) &&
			(found < 0 || i == near))
			found = i;
	return found;
}

// Programs that the renaming took, or may have taken, off the sampler become programs of this
// computer. The words say where; empty when nothing was in danger.
static std::string keep_endangered(bool looked)
{
	std::string words;
	auto keep = [&](std::unique_ptr<_program> program, bool endangered) {
		if (!program)
			return;
		const std::string name = without_end_blanks(program->name);
		if (endangered && looked && times_listed(name))
			return;
		const outcome kept = keep_program(*program);
		words += (words.empty() ? "" : "\n") + kept.words;
	};
	keep(take_rescued_program(), false);
	keep(take_endangered_program(), true);
	return words;
}

// The edits go on with their program, where it stands now.
static void give_edits_back(_program *copy, int place)
{
	_program &to = current_sampler->status->program[place];
	copy_text(copy->name, to.name);
	copy->index = to.index;
	copy->number = to.number;
	to = *copy;
	move_edits(*copy, to);
}

// What became of a renaming that the machine answered, if it is not there under the new name.
static void judge_renaming(
	const std::string &name, const outcome &read, bool gone, bool found, outcome *result)
{
	if (!result->done() || (gone && found))
		return;
	if (!can_look(read)) {
		const auto told = result->told;
		*result =
			unknown_end(read, format_text(tr("%s was renamed"), quoted(name).c_str()));
		result->told = told;
		return;
	}
	result->how = ending::refused;
	result->words = format_text(
		gone ? tr("The sampler did not do it: %s is gone, and no program has the new name.")
		     : tr("The sampler did not do it: %s is still in its list."),
		quoted(name).c_str());
}

static outcome rename_kept(
	const program_entry &which, const std::string &new_name, const machine_change &kept)
{
	const ready_program r = prepare(which, &_sampler_type::renameprogram, kept);
	if (!r.why.done())
		return r.why;
	log_line("[D] Renaming Program-Info for [%s] (INDEX: %d) --> [%s]\r\n", r.program->name,
		r.index, new_name.c_str());
	const auto copy = std::make_unique<_program>(*r.program);
	const bool edited = unsent_changes(*copy).all() || unsent_changes(*r.program).all();
	move_edits(*r.program, *copy);
	const int before = times_listed(which.name);
	box_keeper keeper;
	const line_watch watch;
	forget_stop();
	r.model->renameprogram(r.index, new_name.c_str());
	outcome result = end_of_operation(&keeper, watch);
	const outcome read = read_programs_again();
	const bool looked = can_look(read);
	const std::string rescued = keep_endangered(looked);
	const bool gone = looked && (times_listed(which.name) < before ||
					    may_be_called(new_name, which.name));
	const int now = looked ? find_renamed(new_name, r.index) : -1;
	const int place = now >= 0 && gone ? now : looked ? place_of(which) : r.index;
	if (edited && place >= 0)
		give_edits_back(copy.get(), place);
	forget_edits(*copy);
	judge_renaming(which.name, read, gone, now >= 0, &result);
	result.line = result.done()
			      ? format_text(tr("%s on the sampler is now %s."),
					quoted(which.name).c_str(), quoted(new_name).c_str())
			      : format_text(tr("%s was not renamed."), quoted(which.name).c_str());
	result = rescued.empty() ? one_box(result) : result;
	if (!rescued.empty())
		result.words += (result.words.empty() ? "" : "\n") + rescued;
	return result;
}

outcome rename_program(const program_entry &which, const std::string &new_name)
{
	if (new_name.empty())
		return { .how = ending::refused, .words = "Choose a new name!" };
	machine_change kept({ step_kind::rename_program, which.name, new_name, which.index });
	return kept.ended(rename_kept(which, new_name, kept));
}

// ---- Keygroups ------------------------------------------------------------------------------------------

void remove_keygroup(_program *program, int keygroup, bool sampler_told)
{
	log_line("[D] LOGICAL REMOVE OF KEYGROUP: %d FROM: [%s]\r\n", keygroup, program->name);
	(void)edit_remove_keygroup(*program, keygroup, sampler_told);
	log_line("[D] New count of Keygroups: %d\r\n", program->keygroups);
}

// What the sampler does not have yet, it need not remove.
static outcome tell_deletion(const ready_program &r, int keygroup)
{
	const int read = keygroup_as_read(*r.program, keygroup);
	if (read < 0)
		return {};
	box_keeper keeper;
	const line_watch watch;
	forget_stop();
	r.model->del_keygroup(r.index, read);
	return end_of_operation(&keeper, watch);
}

static outcome delete_keygroup_kept(
	const program_entry &which, int keygroup, const machine_change &kept)
{
	const ready_program r = prepare(which, &_sampler_type::del_keygroup, kept);
	if (!r.why.done())
		return r.why;
	if (keygroup < 0 || keygroup >= r.program->keygroups)
		return { .how = ending::refused, .words = tr("There is no such keygroup.") };
	log_line("[D] Deleting from PROG: %d Keygroup: %d !\r\n", r.index, keygroup);
	outcome result = tell_deletion(r, keygroup);
	if (result.done())
		remove_keygroup(r.program, keygroup, true);
	result.line = result.done() ? format_text(tr("Deleted keygroup %d of %s."), keygroup + 1,
					      quoted(which.name).c_str())
				    : format_text(tr("Keygroup %d was not deleted."), keygroup + 1);
	return one_box(result);
}

outcome delete_keygroup(const program_entry &which, int keygroup)
{
	machine_change kept({ step_kind::change_program, which.name, "", which.index });
	return kept.ended(delete_keygroup_kept(which, keygroup, kept));
}

static bool step_over(_program &program, bool forward, bool sampler_told)
{
	return forward ? redo_edit(program, sampler_told) : undo_edit(program, sampler_told);
}

outcome step_edit(const program_entry &which, bool forward)
{
	outcome result;
	const _sampler_type *model = loaded_model(&result);
	const int place = place_of(which);
	if (!model || place < 0)
		return model ? outcome{ .how = ending::refused,
			.words = format_text(tr("%s is not on the sampler any more."),
				quoted(which.name).c_str()) }
			     : result;
	_program &program = current_sampler->status->program[place];
	const int goes = keygroup_that_goes(program, forward);
	if (!model->del_keygroup || keygroup_as_read(program, goes) < 0) {
		(void)step_over(program, forward, false);
		return {};
	}
	machine_change kept({ step_kind::change_program, which.name, "", which.index });
	const ready_program r = prepare(which, &_sampler_type::del_keygroup, kept);
	// The list may have been read anew, and the edits with it.
	const bool same = r.why.done() && keygroup_that_goes(*r.program, forward) == goes;
	result = same ? tell_deletion(r, goes) : r.why;
	if (same && result.done())
		(void)step_over(*r.program, forward, true);
	else if (!same && result.done())
		result = { .how = ending::refused,
			.words = tr(
				"The programs were read anew, and what was edited before is known "
				"no more.") };
	else if (result.line.empty())
		result.line = format_text(tr("Keygroup %d was not deleted."), goes + 1);
	return kept.ended(one_box(result));
}

// ---- To the sampler -----------------------------------------------------------------------------------------

// "a, b, c and 12 more".
std::string first_of(const std::vector<std::string> &names)
{
	constexpr std::size_t shown = 8;
	std::string text;
	for (std::size_t i = 0; i < std::min(names.size(), shown); i++)
		text += (i ? ", " : "") + names[i];
	return names.size() > shown ? text + format_text(tr(" and %zu more"), names.size() - shown)
				    : text;
}

// Nothing is lost on the way, or the user knows what is.
static bool may_carry(const _program &program, const _sampler_type &model)
{
	const std::vector<std::string> lost = not_carried(program, model);
	return lost.empty() ||
	       ask_box("WARNING",
		       tr("'%s' holds what an %s does not know, and what would stay behind: %s.\n"
			  "Upload it all the same?"),
		       program.name, model.sampler_brand, first_of(lost).c_str());
}

// An S900 takes a program only over one that it holds, and from the loaded record of that one.
static bool takes_only_its_own(const _sampler_type &model)
{
	return model.saveprogram == akai_s900_save_program;
}

static outcome upload_over_its_own(const _sampler_type &model, const _program &program)
{
	const std::string name = without_end_blanks(program.name);
	const std::vector<std::string> names = loaded_programs();
	const auto found = std::find(names.begin(), names.end(), name);
	if (found == names.end())
		return { .how = ending::refused,
			.words = format_text(
				tr("This sampler takes a program only over one that it holds. Make "
				   "a program called %s on its own panel, then try again."),
				quoted(name).c_str()) };
	const int index = static_cast<int>(found - names.begin());
	_program &held = current_sampler->status->program[index];
	const auto before = std::make_unique<_program>(held);
	held = program;
	std::ranges::copy(before->name, held.name);
	held.number = before->number;
	held.index = before->index;
	outcome result = send_record(model, index, nullptr, &held);
	if (!result.done())
		held = *before;
	result.line = result.done() ? format_text(tr("Uploaded %s."), quoted(name).c_str())
				    : format_text(tr("%s was not sent."), quoted(name).c_str());
	return one_box(verified_program(std::move(result), program, false));
}

outcome upload_program(const _program &program)
{
	outcome why;
	const _sampler_type *model = loaded_model(&why);
	if (!model)
		return why;
	log_line("[D] REQUEST FOR UPLOADING [%s]\r\n", program.name);
	if (!model->saveprogram)
		return { .how = ending::refused, .words = not_supported, .caption = "FATAL" };
	const std::string name = without_end_blanks(program.name);
	if (!may_carry(program, *model))
		return { .how = ending::stopped,
			.line = format_text(tr("%s was not sent."), quoted(name).c_str()) };
	machine_change kept({ step_kind::change_program, name, "", -1, program.keygroups });
	const outcome ready = kept.may_go_on() ? have_program_list() : kept.why();
	if (!ready.done())
		return ready;
	if (takes_only_its_own(*model))
		return kept.ended(upload_over_its_own(*model, program));
	const std::size_t before = loaded_programs().size();
	const auto copy = std::make_unique<_program>(program); // sending changes it
	copy_text(copy->name, name);
	outcome result = send_record(*model, 0, copy.get(), copy.get());
	const outcome read = read_programs_again();
	if (result.done() && !can_look(read))
		result = unknown_end(read, format_text(tr("%s has arrived"), quoted(name).c_str()));
	else if (result.done() && loaded_programs().size() <= before && find_renamed(name, -1) < 0)
		result = { .how = ending::refused,
			.words = format_text(
				tr("The sampler does not list %s, so it did not keep it."),
				quoted(name).c_str()) };
	if (result.done() && result.line.empty())
		result.line = format_text(tr("Uploaded %s."), quoted(name).c_str());
	return one_box(verified_program(kept.ended(std::move(result)), program, true));
}

// ---- Queues ---------------------------------------------------------------------------------------------

// Ends at a dead line, at Stop, and at the same trouble twice in a row.
static outcome run_queue(const std::vector<std::string> &names, const char *verdict_words,
	const std::function<outcome(const std::string &)> &work)
{
	outcome last;
	std::string failed, before;
	int done = 0;
	for (const std::string &name : names) {
		last = work(name);
		const std::string trouble = last.done()         ? ""
					    : last.told.empty() ? last.words
								: last.told.back().text;
		done += last.done();
		if (!last.done())
			failed += "\n" + quoted(file_name_of(name.substr(name.rfind('\\') + 1))) +
				  (trouble.empty() ? "" : ": " + trouble);
		if (last.how == ending::no_answer || last.how == ending::stopped ||
			(!last.done() && trouble == before))
			break;
		before = trouble;
	}
	const int all = static_cast<int>(names.size());
	outcome verdict = { .how = done == all   ? ending::done
				   : last.done() ? ending::refused
						 : last.how,
		.caption = done == all ? "INFO" : "WARNING",
		.line = format_text(tr(verdict_words), done, all) };
	if (!failed.empty() || done < all)
		verdict.words = verdict.line + failed;
	return verdict;
}

outcome upload_files(const std::vector<std::string> &paths)
{
	if (paths.empty())
		return {};
	return run_queue(
		paths, own("%d of %d samples were uploaded."), [](const std::string &path) {
			return upload_sample(path.substr(0, path.size() - 4));
		});
}

outcome download_program(const program_entry &which)
{
	outcome ready = have_program_list();
	const int at = ready.done() ? place_of(which) : -1;
	if (ready.done() && at < 0)
		ready = { .how = ending::refused,
			.words = format_text(tr("%s is not on the sampler any more."),
				quoted(which.name).c_str()) };
	if (!ready.done())
		return ready;
	auto copy = std::make_unique<_program>(current_sampler->status->program[at]);
	copy_text(copy->name, without_end_blanks(copy->name));
	copy->sampler_type = static_cast<i32>(current_sampler->sampler_type);
	outcome kept = keep_program(*copy);
	if (!kept.done())
		return kept;
	work_queue queue;
	std::vector<std::string> missing;
	const std::vector<std::string> loaded = loaded_names();
	for (const std::string &name : samples_of(*copy)) {
		const auto found = std::find_if(loaded.begin(), loaded.end(),
			[&](const auto &one) { return without_end_blanks(one) == name; });
		if (found == loaded.end())
			missing.push_back(name);
		else if (!in_spool(*found))
			queue.push_back({ .name = *found });
	}
	outcome verdict = queue.empty() ? outcome{} : download_samples(&queue);
	verdict.words = kept.words + (verdict.words.empty() ? "" : "\n" + verdict.words);
	if (!missing.empty())
		verdict.words +=
			format_text(tr("\nNot on the sampler: %s"), first_of(missing).c_str());
	verdict.line = verdict.done()
			       ? format_text(tr("Downloaded %s."), quoted(which.name).c_str())
			       : verdict.line;
	return verdict;
}

} // namespace velmor
