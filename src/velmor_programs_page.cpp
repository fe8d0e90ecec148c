// velmor_programs_page.cpp - the program manager: two lists, the program that is shown, the buttons
//
// One program is shown, of the sampler or of this computer: whichever was chosen last. Forms, key
// map and envelopes edit its record; the buttons call the workflows (velmor_programs.h,
// velmor_library.h) and show how they ended. Afterwards the selection stays on its entry or goes
// to the neighbour, and the field of the new name is empty.
//
// Knows nothing of: models (but what their rows say), toolkits.

#include "src/velmor_programs_page.h"
#include "src/velmor_library.h"
#include "src/velmor_programs.h"
#include "src/waveqx.h"
#include <algorithm>
#include <set>

namespace velmor
{

static constexpr list_controls loaded_controls = {
	.window = window_programs,
	.list = programs_loaded_list,
	.heading = programs_loaded_heading,
	.retry = programs_retry,
	.what = noun::program,
};
static const char *const window_title = "VELMOR Manage Programs";

// What needs the sampler's list.
static constexpr int needs_the_list[] = { programs_download, programs_loaded_delete,
	programs_loaded_rename, programs_information, programs_upload, programs_life_update };

static bool local_side;
static std::vector<std::string> names_loaded, names_local; // of the entries
using list_rows = std::vector<std::vector<std::string>>;
static list_rows entries_loaded, entries_local; // as the lists show them
static std::set<std::string> samples_there;     // that the sampler holds

void forget_program_page()
{
	local_side = false;
	edit_local_program(nullptr);
	names_loaded.clear();
	names_local.clear();
	entries_loaded.clear();
	entries_local.clear();
	samples_there.clear();
}

// ---- What is shown ------------------------------------------------------------------------------

static const _dev_status *loaded_status()
{
	return current_sampler ? current_sampler->status : nullptr;
}

bool shown_is_local()
{
	return local_side;
}

static bool is_local(int index)
{
	return index >= 0 && static_cast<std::size_t>(index) < local_pgm.size();
}

_program *shown_program()
{
	const _dev_status *dev = loaded_status();
	if (local_side)
		return is_local(current_pgm_index)
			       ? local_pgm[static_cast<std::size_t>(current_pgm_index)].get()
			       : nullptr;
	return dev && current_pgm_index >= 0 && current_pgm_index < dev->programs
		       ? edited_program(current_pgm_index)
		       : nullptr;
}

bool sample_missing(const std::string &name)
{
	return local_side ? !in_spool(name) : !samples_there.contains(name);
}

const char *why_not_find()
{
	const _program *program = shown_program();
	const field_place at = { field_of<&_keyzone::samplename>, current_keygroup_index,
		current_keyzone_index };
	if (!program || !place_exists(*program, at))
		return tr("No keyzone is chosen.");
	const std::string name = without_end_blanks(text_at(*program, at));
	if (name.empty() || !sample_missing(name))
		return tr("The sample of the chosen keyzone is there, or it names none.");
	return local_side ? tr("Samples of a program of this computer are sent with the program.")
			  : nullptr;
}

static program_entry chosen_of(int list, const std::vector<std::string> &names)
{
	const int index = host.ui->selection(window_programs, list);
	if (index < 0 || index >= static_cast<int>(names.size()))
		return {};
	return { names[static_cast<std::size_t>(index)], index };
}

static std::vector<program_entry> all_chosen_of(int list, const std::vector<std::string> &names)
{
	std::vector<program_entry> all;
	for (const int index : host.ui->selections(window_programs, list))
		if (index >= 0 && index < static_cast<int>(names.size()))
			all.push_back({ names[static_cast<std::size_t>(index)], index });
	return all;
}

std::vector<program_entry> all_chosen_on_sampler()
{
	return all_chosen_of(programs_loaded_list, names_loaded);
}

std::vector<program_entry> all_chosen_on_computer()
{
	return all_chosen_of(programs_local_list, names_local);
}

program_entry chosen_on_sampler()
{
	return chosen_of(programs_loaded_list, names_loaded);
}

program_entry chosen_on_computer()
{
	return chosen_of(programs_local_list, names_local);
}

// ---- Titles and counts ------------------------------------------------------------------------------

static std::string title_of(const _program &program)
{
	const _sampler_type *model = get_sampler(edited_model());
	const char *make = model ? model->sampler_brand : "";
	const std::string name = without_end_blanks(program.name);
	const char *sampler = current_sampler ? current_sampler->sampler_description : "";
	const int tab = host.ui->selection(window_programs, programs_tabs);
	if (tab == 2)
		return format_text(
			"Keyzone: %d, Keygroup: %d, Prog: [%s], Sampler: [%s], Make: [%s]",
			current_keyzone_index + 1, current_keygroup_index + 1, name.c_str(),
			sampler, make);
	if (tab == 1 || tab == 3)
		return format_text("Keygroup: %d (%s), Sampler: %s, Make: %s",
			current_keygroup_index + 1, name.c_str(), sampler, make);
	return format_text("Program Settings for '%s' [Sampler: '%s', Make: '%s']", name.c_str(),
		sampler, make);
}

void show_title()
{
	const _program *program = shown_program();
	host.ui->set_text(
		window_programs, programs_title, program ? title_of(*program).c_str() : "");
}

// ---- What was edited --------------------------------------------------------------------------------

static std::string or_none(const std::string &value)
{
	return value.empty() ? tr("none") : value;
}

std::string sentence_of(const edit_words &edit)
{
	const bool values = !edit.from.empty() || !edit.to.empty();
	return edit.what + (values ? format_text(tr(" from %s to %s"), or_none(edit.from).c_str(),
					     or_none(edit.to).c_str())
				   : "");
}

void say_edit(const std::string &sentence)
{
	const _program *program = shown_program();
	const bool unsent = program && unsent_changes(*program).all();
	say_line(sentence + (!unsent             ? ""
				    : local_side ? tr("; not saved yet")
						 : tr("; not sent yet")),
		text_role::plain);
}

static std::string changes_words(int count)
{
	return count ? format_text(tr("%s unsent"), counted(count, noun::change).c_str()) : "";
}

// The name, how many keygroups, and how many changes wait, where some do.
static std::vector<std::string> entry_of(const std::string &name, const _program &program)
{
	std::vector<std::string> entry = { name, std::to_string(program.keygroups) };
	if (const int unsent = unsent_changes(program).all())
		entry.push_back(std::to_string(unsent));
	return entry;
}

// A list is set only when it changes: it may be shown while a bar is dragged.
static void set_entries(int list, list_rows *shown, list_rows now)
{
	if (*shown == now)
		return;
	const int chosen = host.ui->selection(window_programs, list);
	*shown = std::move(now);
	host.ui->set_rows(window_programs, list, *shown);
	if (chosen >= 0 && chosen < static_cast<int>(shown->size()))
		host.ui->select(window_programs, list, chosen);
}

static void show_entries()
{
	list_rows loaded, local;
	const _dev_status *dev = loaded_status();
	for (std::size_t i = 0; i < names_loaded.size(); i++)
		loaded.push_back(dev ? entry_of(names_loaded[i], dev->program[i])
				     : std::vector{ names_loaded[i] });
	for (std::size_t i = 0; i < std::min(names_local.size(), local_pgm.size()); i++)
		local.push_back(entry_of(names_local[i], *local_pgm[i]));
	set_entries(programs_loaded_list, &entries_loaded, std::move(loaded));
	set_entries(programs_local_list, &entries_local, std::move(local));
}

static void show_unsent()
{
	const _program *program = shown_program();
	const int here = program ? unsent_changes(*program).all() : 0, all = unsent_changes();
	host.ui->set_text(window_programs, programs_unsent, changes_words(here).c_str());
	host.ui->set_role(
		window_programs, programs_unsent, here ? text_role::plain : text_role::quiet);
	host.ui->set_text(window_programs, 0,
		(all ? std::string(window_title) + " - " + changes_words(all) : window_title)
			.c_str());
	host.ui->set_reason(window_programs, programs_undo,
		program && undo_words(*program) ? nullptr : tr("There is no edit to undo."));
	host.ui->set_reason(window_programs, programs_redo,
		program && redo_words(*program) ? nullptr : tr("No edit was undone."));
}

// Also from inside an event of a row: forms are left alone.
static void program_changed(const _program *program)
{
	if (!was_opened(window_programs) || (program && program != shown_program()))
		return;
	show_unsent();
	show_entries();
	show_key_map();
	show_envelopes();
}

// An edit that came back to where it began is none.
static void edited(const _program *program)
{
	program_changed(program);
	if (!was_opened(window_programs) || !program || program != shown_program())
		return;
	const edit_words *last = undo_words(*program);
	say_edit(last ? sentence_of(*last) : tr("Nothing is edited"));
}

// ---- Showing a program, a keygroup, a zone --------------------------------------------------------

static std::vector<std::string> numbered(const char *format, int count)
{
	std::vector<std::string> items;
	for (int i = 0; i < count; i++)
		items.push_back(std::string(format) + " " + std::to_string(i + 1));
	return items;
}

static void choose_entry(int list, const std::vector<std::string> &items, int index)
{
	host.ui->set_list(window_programs, list, items);
	if (index >= 0 && index < static_cast<int>(items.size()))
		host.ui->select(window_programs, list, index);
}

// Nothing, the sampler's samples, and at the end a sample that is not among them.
void show_zone_sample(const _program &program, int keygroup, int keyzone)
{
	std::vector<std::string> items = { tr("no sample") };
	for (const std::string &name : loaded_names())
		items.push_back(without_end_blanks(name));
	const field_place at = { field_of<&_keyzone::samplename>, keygroup, keyzone };
	if (!place_exists(program, at)) {
		choose_entry(programs_zone_sample, {}, -1);
		return;
	}
	const std::string name = without_end_blanks(text_at(program, at));
	auto found = name.empty() ? items.begin() : std::find(items.begin() + 1, items.end(), name);
	if (found == items.end())
		found = items.insert(items.end(), name + tr(" (not loaded)"));
	const int index = static_cast<int>(found - items.begin());
	choose_entry(programs_zone_sample, items, index);
}

// What stands where the model has no form. One that it has takes the place.
static void show_no_form(int form, const char *words)
{
	form_row row = {};
	row.kind = row_kind::heading;
	row.label = words;
	host.ui->build_form(window_programs, form, { &row, 1 });
}

void edit_keyzone(_program *program, int keygroup, int keyzone)
{
	current_keyzone_index = keyzone;
	const _sampler_type *model = get_sampler(edited_model());
	show_no_form(form_of_keyzone, tr("Of a keyzone of this model only the sample is edited."));
	if (model && model->assignvelocity)
		model->assignvelocity(window_programs, current_pgm_index, keygroup, keyzone);
	show_zone_sample(*program, keygroup, keyzone);
	show_title();
}

std::string facts_of(const _program &program, int keygroup)
{
	if (keygroup < 0 || keygroup >= program.keygroups)
		return tr("No keygroup");
	const _keygroup &group = program.keygroup[keygroup];
	return format_text(tr("Keygroup %d of %d: %s to %s"), keygroup + 1, program.keygroups,
		note_item(group.low_note).c_str(), note_item(group.high_note).c_str());
}

void edit_keygroup(_program *program, int keygroup, int keyzone)
{
	current_keygroup_index = keygroup;
	const _sampler_type *model = get_sampler(edited_model());
	show_no_form(
		form_of_keygroup, tr("Of a keygroup of this model only the keys are edited: drag "
				     "its edges in the key map."));
	if (model && model->assignvoice)
		model->assignvoice(window_programs, current_pgm_index, keygroup, keyzone);
	open_adsr_form();
	const bool there = keygroup >= 0 && keygroup < program->keygroups;
	const int zones =
		there ? std::clamp(program->keygroup[keygroup].keyzones, 0, max_keyzones) : 0;
	const int zone = std::clamp(keyzone, 0, std::max(zones - 1, 0));
	choose_entry(programs_keyzone_list, numbered("Keyzone", zones), zone);
	host.ui->set_text(
		window_programs, programs_keygroup_facts, facts_of(*program, keygroup).c_str());
	edit_keyzone(program, keygroup, zone);
}

void edit_program(_program *program, int index, int keygroup)
{
	current_pgm_index = index;
	if (local_side)
		edit_local_program(program, program->sampler_type);
	else
		edit_local_program(nullptr);
	const _sampler_type *model = get_sampler(edited_model());
	const int count = std::clamp(program->keygroups, 0, max_keygroups);
	current_keygroup_index = std::clamp(keygroup, 0, std::max(count - 1, 0));
	close_forms(window_programs);
	show_no_form(form_of_program, tr("This model has no values of the program to edit."));
	if (model && model->assignprog)
		model->assignprog(window_programs, index, current_keygroup_index, 0);
	choose_entry(programs_keygroup_list, numbered("Keygroup", count), current_keygroup_index);
	edit_keygroup(program, current_keygroup_index, current_keyzone_index);
	program_changed(program);
}

static void show_nothing()
{
	close_forms(window_programs);
	edit_local_program(nullptr);
	for (const int form : { int(form_of_program), int(form_of_keygroup), int(form_of_keyzone),
		     int(programs_adsr_form) })
		host.ui->build_form(window_programs, form, {});
	for (const int list : { int(programs_keygroup_list), int(programs_keyzone_list),
		     int(programs_zone_sample) })
		host.ui->set_list(window_programs, list, {});
	host.ui->set_text(window_programs, programs_keygroup_facts, "");
	show_title();
	program_changed(nullptr);
}

// The chosen program with the keygroup that was shown, or nothing.
static void show_chosen(int index, int keygroup)
{
	stop_test_note();
	current_pgm_index = index;
	edit_local_program(nullptr);
	if (_program *program = shown_program())
		edit_program(program, index, keygroup);
	else
		show_nothing();
}

void choose_program(bool local, int index)
{
	local_side = local;
	current_keyzone_index = 0;
	show_chosen(index, 0);
}

void choose_place(int keygroup, int keyzone)
{
	_program *program = shown_program();
	if (!program || keygroup < 0 || keygroup >= program->keygroups)
		return;
	host.ui->select(window_programs, programs_keygroup_list, keygroup);
	edit_keygroup(program, keygroup, std::max(keyzone, 0));
	show_key_map();
	show_envelopes();
}

// ---- Both lists -------------------------------------------------------------------------------------

static int place_in(const std::vector<std::string> &names, const program_entry &before)
{
	const int count = static_cast<int>(names.size());
	if (!count)
		return -1;
	const int place = std::clamp(before.index, 0, count - 1);
	const auto found = std::find(names.begin(), names.end(), before.name);
	const bool elsewhere =
		names[static_cast<std::size_t>(place)] != before.name && found != names.end();
	return elsewhere ? static_cast<int>(found - names.begin()) : place;
}

void show_program_again()
{
	show_chosen(current_pgm_index, current_keygroup_index);
}

void show_local_side()
{
	local_side = true;
}

// Fill both lists from what is known, and show the program that is chosen then.
void fill_lists(const program_entry &loaded, const program_entry &local)
{
	edit_local_program(nullptr);
	names_loaded = loaded_programs();
	names_local.clear();
	for (const auto &program : local_pgm)
		names_local.push_back(without_end_blanks(program->name));
	samples_there.clear();
	for (const std::string &name : loaded_names())
		samples_there.insert(without_end_blanks(name));
	show_entries();
	const int at_loaded = place_in(names_loaded, loaded),
		  at_local = place_in(names_local, local);
	if (at_loaded >= 0)
		host.ui->select(window_programs, programs_loaded_list, at_loaded);
	if (at_local >= 0)
		host.ui->select(window_programs, programs_local_list, at_local);
	host.ui->set_text(window_programs, programs_local_heading,
		counted(local_pgms, noun::program).c_str());
	local_side = local_side && at_local >= 0;
	const int shown = local_side ? at_local : at_loaded;
	const bool same = shown == current_pgm_index;
	show_chosen(shown, same ? current_keygroup_index : 0);
}

void update_program_page()
{
	if (!was_opened(window_programs))
		return;
	const known_list &known = the_lists.programs;
	show_list_knowledge(loaded_controls, known, static_cast<int>(names_loaded.size()));
	const bool silent = known.silent && known.way == way_key();
	for (const int control : needs_the_list)
		host.ui->set_reason(window_programs, control,
			silent ? tr("Not now: the sampler's list could not be read. Try again "
				    "first.")
			       : nullptr);
	const char *one = tr("This is for one program, and several are chosen.");
	if (all_chosen_on_sampler().size() > 1)
		for (const int control : { programs_loaded_rename, programs_information })
			host.ui->set_reason(window_programs, control, one);
	host.ui->set_reason(window_programs, programs_local_rename,
		all_chosen_on_computer().size() > 1 ? one : nullptr);
	show_unsent();
}

void empty_program_page()
{
	if (!was_opened(window_programs))
		return;
	stop_test_note();
	names_loaded.clear();
	samples_there.clear();
	show_entries();
	if (!local_side)
		show_chosen(-1, 0);
	update_program_page();
}

bool may_lose_edits(bool all)
{
	int unsent = all ? unsent_changes() : 0;
	const _dev_status *dev = loaded_status();
	for (int i = 0; !all && dev && i < max_programs; i++)
		unsent += unsent_changes(dev->program[i]).all();
	return !unsent ||
	       ask_box("WARNING",
		       unsent == 1 ? tr("%d change of programs would be lost, because it is not "
					"sent or saved. Go on all the same?")
				   : tr("%d changes of programs would be lost, because they are "
					"not sent or saved. Go on all the same?"),
		       unsent);
}

static void read_all(const program_entry &loaded, const program_entry &local, bool keeping_edits)
{
	const outcome read = keeping_edits ? read_programs_again() : read_program_list();
	if (close_requested())
		return;
	edit_local_program(nullptr);
	outcome kept = load_local_programs();
	fill_lists(loaded, local);
	// What could not be read is told in place of the list.
	if (!read.done())
		kept.line =
			tr("The sampler's list was not read. The computer's list is up to date.");
	kept.how = read.done() ? kept.how : read.how;
	kept.told.insert(kept.told.end(), read.told.begin(), read.told.end());
	if (!kept.done() || !kept.told.empty())
		show_outcome(kept);
}

void show_pgm_setup(int selection)
{
	const outcome offered = current_sampler
					? offers_list(&_sampler_type::getproglist)
					: outcome{ .how = ending::refused,
						  .words = "You must load a sampler first..." };
	if (!offered.done()) {
		show_outcome(offered);
		return;
	}
	// Edits that are still there after a reading that failed come through the next one.
	const bool keeping = the_lists.programs.silent;
	if (!keeping && !may_lose_edits(false)) {
		open_window(window_programs);
		return;
	}
	edits_changed = edited;
	program_entry loaded = chosen_on_sampler();
	if (loaded.index != selection)
		loaded = { "", selection };
	open_window(window_programs);
	read_all(loaded, chosen_on_computer(), keeping);
}

} // namespace velmor
