// velmor_programs_commands.cpp - the buttons of the program manager, and its rows
//
// Each button reads the selection, calls a workflow, and shows how it ended.
//
// Knows nothing of: models (but what their rows say), toolkits.

#include "src/velmor_akp.h"
#include "src/velmor_library.h"
#include "src/velmor_programs_page.h"
#include "src/waveqx.h"
#include <algorithm>

namespace velmor
{

// ---- What is chosen ---------------------------------------------------------------------------

static bool nothing_chosen(const program_entry &entry, const char *words)
{
	if (entry.index < 0)
		show_outcome({ .how = ending::refused, .words = words });
	return entry.index < 0;
}

static bool no_loaded(const program_entry &entry)
{
	return nothing_chosen(entry, tr("Choose a program on the sampler first!"));
}

static bool no_local(const program_entry &entry)
{
	return nothing_chosen(entry, tr("Choose a program on this computer first!"));
}

static bool nothing_shown()
{
	if (!shown_program())
		show_outcome({ .how = ending::refused, .words = tr("Choose a program first!") });
	return !shown_program();
}

// The row of the shown program's model; null after the told words.
static const _sampler_type *shown_model()
{
	const _sampler_type *model = get_sampler(
		shown_is_local()
			? edited_model()
			: static_cast<i32>(current_sampler ? current_sampler->sampler_type : 0));
	if (!model)
		show_box("FATAL", "No Sampler loaded/Function not supported by Sampler");
	return model;
}

static void fill_again()
{
	fill_lists(chosen_on_sampler(), chosen_on_computer());
}

static void choose_loaded_program()
{
	choose_program(false, chosen_on_sampler().index);
}

static void choose_local_program()
{
	choose_program(true, chosen_on_computer().index);
}

static void choose_keygroup()
{
	choose_place(host.ui->selection(window_programs, programs_keygroup_list), 0);
}

static void choose_keyzone()
{
	choose_place(
		current_keygroup_index, host.ui->selection(window_programs, programs_keyzone_list));
}

static void choose_zone_sample()
{
	_program *program = shown_program();
	const int item = host.ui->selection(window_programs, programs_zone_sample);
	const std::vector<std::string> loaded = loaded_names();
	const field_place at = { field_of<&_keyzone::samplename>, current_keygroup_index,
		current_keyzone_index };
	if (!program || item < 0 || item > static_cast<int>(loaded.size()) ||
		!place_exists(*program, at))
		return; // what stands behind the names is the sample that is missing
	const std::string name =
		item ? without_end_blanks(loaded[static_cast<std::size_t>(item - 1)]) : "";
	log_line("[D] New Sample-Name: [%s]\r\n", name.c_str());
	const field_change change = { at, text_value(name) };
	const edit_words words = { format_text(tr("Sample of keyzone %d of keygroup %d"),
					   current_keyzone_index + 1, current_keygroup_index + 1),
		text_at(*program, at), name };
	(void)edit_fields(*program, words, { &change, 1 });
	refresh_forms(window_programs);
	show_zone_sample(*program, current_keygroup_index, current_keyzone_index);
}

static void find_missing_sample()
{
	if (const char *why = why_not_find()) {
		show_outcome({ .how = ending::refused, .words = why });
		return;
	}
	const _keygroup &keygroup = shown_program()->keygroup[current_keygroup_index];
	const outcome result = find_and_upload(keygroup.keyzone[current_keyzone_index].samplename);
	if (!close_requested()) {
		fill_again();
		show_loaded_samples();
	}
	show_outcome(result);
}

static void refresh()
{
	show_pgm_setup(std::max(chosen_on_sampler().index, 0));
}

// ---- The sampler's programs -----------------------------------------------------------------------------

static void show_change(const outcome &result, const program_entry &loaded, int name_field)
{
	if (!close_requested())
		fill_lists(loaded, chosen_on_computer());
	if (result.done())
		host.ui->set_text(window_programs, name_field, "");
	show_outcome(result);
	host.ui->focus(window_programs, programs_loaded_list);
}

static void delete_chosen()
{
	if (delete_several_programs())
		return;
	const program_entry chosen = chosen_on_sampler();
	if (no_loaded(chosen))
		return;
	const outcome result = delete_program(chosen);
	show_change(result, { result.done() ? "" : chosen.name, chosen.index },
		programs_loaded_new_name);
}

static void rename_chosen()
{
	const std::string typed = host.ui->get_text(window_programs, programs_loaded_new_name);
	const program_entry chosen = chosen_on_sampler();
	if (no_loaded(chosen))
		return;
	const outcome result = rename_program(chosen, typed);
	show_change(result, { result.done() ? typed : chosen.name, chosen.index },
		programs_loaded_new_name);
}

static void show_information()
{
	const program_entry chosen = chosen_on_sampler();
	if (!no_loaded(chosen))
		choose_program(false, chosen.index);
}

static void download_chosen()
{
	if (download_several_programs())
		return;
	const program_entry chosen = chosen_on_sampler();
	if (no_loaded(chosen))
		return;
	const outcome result = download_program(chosen);
	show_spool();
	show_change(result, chosen, programs_loaded_new_name);
}

// Which window pressed it is in the log alone.
static void live_update(const char *where)
{
	if (nothing_shown())
		return;
	if (shown_is_local()) {
		show_outcome({ .how = ending::refused,
			.words = tr(
				"This program is on this computer: Save Changes writes it to its "
				"file, Upload selected Prog sends it.") });
		return;
	}
	log_line("[D] LIVE UPDATE PRESSED! NEW KEYGROUPS: %d%s\r\n", shown_program()->keygroups,
		where);
	const int index = current_pgm_index;
	const outcome result = save_program({ without_end_blanks(shown_program()->name), index });
	if (!close_requested())
		fill_again(); // sending changes the record
	show_outcome(result);
}

// By the form that is in front.
static void press_life_update()
{
	static constexpr const char *forms[] = { " (PROG)", " (ASSIGN-WINDOW)", " (KEYZONE)",
		" (ADSR)" };
	const int tab = host.ui->selection(window_programs, programs_tabs);
	live_update(tab >= 0 && tab < 4 ? forms[tab] : "");
}

// ---- Keygroups --------------------------------------------------------------------------------------------

static void add_keygroup()
{
	const _sampler_type *model = nothing_shown() ? nullptr : shown_model();
	if (!model)
		return;
	_program *program = shown_program();
	log_line("[D] Adding new keygroup with %d Keyzones\r\n", model->default_keyzones);
	const int added = edit_add_keygroup(*program, model->default_keyzones);
	if (added < 0) {
		show_outcome({ .how = ending::refused,
			.words = format_text(
				tr("A program has at most %d keygroups."), max_keygroups) });
		return;
	}
	log_line("[D] New count of Keygroups: %d\r\n", program->keygroups);
	edit_program(program, current_pgm_index, added);
}

static void delete_chosen_keygroup()
{
	if (nothing_shown())
		return;
	_program *program = shown_program();
	const int keygroup = current_keygroup_index;
	if (keygroup < 0 || keygroup >= program->keygroups) {
		show_outcome({ .how = ending::refused, .words = tr("Choose a keygroup first!") });
		return;
	}
	outcome result;
	if (shown_is_local())
		remove_keygroup(program, keygroup);
	else
		result = delete_keygroup(
			{ without_end_blanks(program->name), current_pgm_index }, keygroup);
	if (!close_requested())
		fill_again();
	show_outcome(result);
}

// ---- Undo ---------------------------------------------------------------------------------------------------

static void show_step(bool keygroups_changed)
{
	if (keygroups_changed)
		fill_again();
	else
		refresh_forms(window_programs);
	const _program *program = shown_program();
	if (!program)
		return;
	show_zone_sample(*program, current_keygroup_index, current_keyzone_index);
	host.ui->set_text(window_programs, programs_keygroup_facts,
		facts_of(*program, current_keygroup_index).c_str());
}

static void step_back_or_on(bool forward)
{
	_program *program = shown_program();
	const edit_words *next = !program  ? nullptr
				 : forward ? redo_words(*program)
					   : undo_words(*program);
	if (!next)
		return;
	const edit_words step = *next;
	const int before = program->keygroups;
	outcome result;
	if (!shown_is_local())
		result = step_edit(
			{ without_end_blanks(program->name), current_pgm_index }, forward);
	else
		(void)(forward ? redo_edit(*program) : undo_edit(*program));
	if (!close_requested())
		show_step(!result.done() || program->keygroups != before);
	if (result.done())
		say_edit(format_text(forward ? tr("Done again: %s") : tr("Undone: %s"),
			sentence_of(step).c_str()));
	else
		show_outcome(result);
}

static void undo_shown()
{
	step_back_or_on(false);
}

static void redo_shown()
{
	step_back_or_on(true);
}

// ---- Forms ----------------------------------------------------------------------------------------------------

static void open_tab(int tab, form_operation _sampler_type::*slot)
{
	const _sampler_type *model = nothing_shown() ? nullptr : shown_model();
	if (!model)
		return;
	if (slot && !(model->*slot)) {
		show_box("INFO", "[F] Function not implemented!");
		return;
	}
	host.ui->select(window_programs, programs_tabs, tab);
	show_title();
}

static void open_program_form()
{
	open_tab(0, &_sampler_type::assignprog);
}

static void open_keygroup_form()
{
	open_tab(1, &_sampler_type::assignvoice);
}

static void open_keyzone_form()
{
	open_tab(2, &_sampler_type::assignvelocity);
}

static void open_envelopes()
{
	open_tab(3, nullptr);
}

// ---- The computer's programs ------------------------------------------------------------------------------------

static void show_local_change(const outcome &result, const program_entry &local)
{
	fill_lists(chosen_on_sampler(), local);
	if (result.done())
		host.ui->set_text(window_programs, programs_local_new_name, "");
	show_outcome(result);
	host.ui->focus(window_programs, programs_local_list);
}

static void save_changes()
{
	if (nothing_shown())
		return;
	if (!shown_is_local()) {
		show_outcome({ .how = ending::refused,
			.words =
				tr("This program is on the sampler: Life Update sends it, Download "
				   "this Program keeps it on this computer.") });
		return;
	}
	show_outcome(save_local_program(*shown_program()));
	refresh_forms(window_programs);
}

static void delete_local_chosen()
{
	if (delete_several_local_programs())
		return;
	const program_entry chosen = chosen_on_computer();
	if (no_local(chosen))
		return;
	edit_local_program(nullptr);
	const outcome result = delete_local_program(chosen.index);
	show_local_change(result, { result.done() ? "" : chosen.name, chosen.index });
}

static void rename_local_chosen()
{
	const program_entry chosen = chosen_on_computer();
	if (no_local(chosen))
		return;
	const std::string typed = host.ui->get_text(window_programs, programs_local_new_name);
	const outcome result = rename_local_program(chosen.index, typed);
	show_local_change(result, { result.done() ? typed : chosen.name, chosen.index });
}

void upload_selected_local_program()
{
	if (upload_several_local_programs())
		return;
	const program_entry chosen = chosen_on_computer();
	if (no_local(chosen))
		return;
	const _program &program = *local_pgm[static_cast<std::size_t>(chosen.index)];
	outcome result = upload_program(program);
	if (result.done()) {
		const std::vector<std::string> paths = required_files(program);
		if (ask_box("INFO", "Also upload required samples (%d Samples)?",
			    static_cast<int>(paths.size()))) {
			const outcome samples = upload_files(paths);
			result.how = samples.how;
			result.caption = samples.caption;
			result.words +=
				(result.words.empty() || samples.words.empty() ? "" : "\n") +
				samples.words;
			result.line += samples.line.empty() ? "" : " " + samples.line;
		}
	}
	if (!close_requested()) {
		fill_again();
		show_loaded_samples();
	}
	show_outcome(result);
}

// ---- AKP files ----------------------------------------------------------------------------------------------------

static constexpr int most_summaries = 8; // that a box shows

// Behind those that were taken. False: nothing of it is listed, and a box has said why.
static bool import_one(const std::string &path, int taken, outcome *result, bool *in_log)
{
	const auto program = std::make_unique<_program>();
	if (!import_akp_file(path.c_str(), program.get())) {
		hide_progressbar(window_programs);
		return false;
	}
	if (!add_local_pgm(program.get()))
		return false;
	const outcome saved = save_local_program(*local_pgm.back());
	import_required_samples(window_programs, path.c_str(), program.get());
	const std::string summary = akp_summary(*program, in_log);
	if (taken < most_summaries)
		result->words += (result->words.empty() ? "" : "\n") + summary;
	if (!saved.done()) {
		result->how = saved.how;
		result->words += "\n" + saved.words;
	}
	return true;
}

static void import_akp()
{
	const std::vector<std::string> paths =
		host.ui->choose_files("Import AKP-File", tr("AKP (*.akp *.AKP);;All files (*)"));
	outcome result;
	int taken = 0, tried = 0;
	bool in_log = false;
	forget_stop();
	for (const std::string &path : paths) {
		if (progress_stopped())
			break;
		tried++;
		taken += import_one(path, taken, &result, &in_log);
	}
	const int all = static_cast<int>(paths.size());
	if (!all)
		return;
	if (taken > most_summaries)
		result.words += format_text(
			tr("\nAnd %d more, which the log names."), taken - most_summaries);
	if (in_log)
		result.words +=
			tr("\nThe log names the parameters that cannot go, and those that no "
			   "AKP file tells and that are sent as 0.");
	if (taken < all && result.done())
		result.how = tried < all ? ending::stopped : ending::local_failed;
	result.line = format_text(tr("%d of %d AKP files were imported."), taken, all);
	if (taken)
		show_local_side();
	show_spool();
	fill_lists(chosen_on_sampler(),
		taken ? program_entry{ "", static_cast<int>(local_pgm.size()) - 1 }
		      : chosen_on_computer());
	show_outcome(result);
}

// ---- Rows -----------------------------------------------------------------------------------------------------------

static void hide_programs()
{
	stop_test_note();
	host.ui->show(window_programs, 0, false);
}

// clang-format off
static constexpr caption_row programs_captions[] = {
	// window          control                   caption, tooltip, empty
	{ window_programs, 0,                        "VELMOR Manage Programs", nullptr, nullptr },
	{ window_programs, programs_loaded_list,     own("On the sampler"), own("The programs in the sampler's memory"), own("The sampler holds no programs") },
	{ window_programs, programs_loaded_search,   own("Search programs on the sampler"), own("Show only names that contain these letters"), own("Search") },
	{ window_programs, programs_loaded_delete,   "Delete this Program", own("Delete the chosen program from the sampler's memory"), nullptr },
	{ window_programs, programs_loaded_rename,   "Rename this Program", own("Give the chosen program the name in the field"), nullptr },
	{ window_programs, programs_loaded_new_name, own("New name on the sampler"), own("The name for Rename this Program"), own("New name") },
	{ window_programs, programs_information,     "Program Information", own("Show the chosen program"), nullptr },
	{ window_programs, programs_download,        "Download this Program", own("Bring the chosen program and every sample it names to this computer"), nullptr },
	{ window_programs, programs_local_list,      own("On this computer"), own("The programs of this computer"), own("No programs on this computer yet") },
	{ window_programs, programs_local_search,    own("Search programs on this computer"), own("Show only names that contain these letters"), own("Search") },
	{ window_programs, programs_upload,          "Upload selected Prog", own("Send the chosen program of this computer to the sampler"), nullptr },
	{ window_programs, programs_import_akp,      "Import AKP-File", own("Choose AKP program files and bring them to this computer"), nullptr },
	{ window_programs, programs_local_delete,    own("Delete Program File"), own("Move the chosen program of this computer to the folder of deleted files"), nullptr },
	{ window_programs, programs_local_rename,    own("Rename Program File"), own("Give the chosen program of this computer the name in the field"), nullptr },
	{ window_programs, programs_local_new_name,  own("New name on this computer"), own("The name for Rename Program File"), own("New name") },
	{ window_programs, programs_keygroup_list,   "Keygroup", own("The keygroups of the program"), own("No keygroup") },
	{ window_programs, programs_keyzone_list,    "Keyzone", own("The velocity zones of the keygroup"), own("No keyzone") },
	{ window_programs, programs_keygroup_facts,  own("Key range"), own("The keys of the chosen keygroup"), nullptr },
	{ window_programs, programs_zone_sample,     "Sample", own("The sample that the keyzone plays"), nullptr },
	{ window_programs, programs_find_sample,     own("Find in the spool and upload"), own("Send the spool's file of that name to the sampler"), nullptr },
	{ window_programs, programs_voice_form,      "Keygroup Specials Management", own("Show every parameter of the keygroup"), nullptr },
	{ window_programs, programs_zone_form,       "Keyzone Special Parameters", own("Show every parameter of the keyzone"), nullptr },
	{ window_programs, programs_program_form,    "Program-Specials Management", own("Show every parameter of the program"), nullptr },
	{ window_programs, programs_adsr,            "ADSR Management", own("Show the envelopes of the keygroup"), nullptr },
	{ window_programs, programs_life_update,     "Life Update", own("Send the program as it stands here to the sampler"), nullptr },
	{ window_programs, programs_save_changes,    "Save Changes", own("Write the edited program of this computer to its file"), nullptr },
	{ window_programs, programs_add_keygroup,    "Add Keygroup", own("Add a keygroup; the sampler learns of it with the next Life Update"), nullptr },
	{ window_programs, programs_delete_keygroup, "Delete selected Keygroup", own("Delete the chosen keygroup; the sampler is told at once"), nullptr },
	{ window_programs, programs_undo,            own("Undo Edit"), own("Take the last edit of this program back"), nullptr },
	{ window_programs, programs_redo,            own("Redo Edit"), own("Make the edit again that was taken back last"), nullptr },
	{ window_programs, programs_key_map,         own("Key map"), own("Each keygroup over its keys; drag an edge to change its range, press a key to hear it"), nullptr },
	{ window_programs, programs_amp_envelope,    own("Amplifier envelope"), own("Drag a point to change it"), nullptr },
	{ window_programs, programs_second_envelope, own("Envelope 2"), own("Drag a point to change it"), nullptr },
	{ window_programs, programs_filter_envelope, own("Filter envelope"), own("Drag a point to change it"), nullptr },
	{ window_programs, programs_aux_envelope,    own("Auxiliary envelope"), own("Drag a point to change it"), nullptr },
	{ window_programs, programs_adsr_form,       own("Envelopes"), nullptr, nullptr },
	{ window_programs, form_of_program,          "Program", nullptr, nullptr },
	{ window_programs, form_of_keygroup,         own("Keygroup parameters"), nullptr, nullptr },
	{ window_programs, form_of_keyzone,          own("Keyzone parameters"), nullptr, nullptr },
	{ window_programs, apply_to_keygroups,       "Apply to all Keygroups", own("A value that is changed goes to every keygroup"), nullptr },
	{ window_programs, apply_to_keyzones,        "Apply to all Keyzones", own("A value that is changed goes to every keyzone"), nullptr },
	{ window_programs, programs_tabs,            own("Parameters"), nullptr, nullptr },
	{ window_programs, programs_unsent,          own("Unsent changes"), nullptr, nullptr },
	{ window_programs, programs_title,           own("What is shown"), nullptr, nullptr },
	{ window_programs, programs_loaded_heading,  own("State of the sampler's list"), own("How many programs, and when they were read"), nullptr },
	{ window_programs, programs_local_heading,   own("State of this computer's list"), own("How many programs there are on this computer"), nullptr },
	{ window_programs, programs_retry,           own("Try again"), own("Ask the sampler once more"), nullptr },
	{ window_programs, programs_refresh,         "&Refresh", own("Read the sampler and this computer anew"), nullptr },
	{ window_programs, control_cancel,           "&Close", own("Close this window"), nullptr },
};
static constexpr command_row programs_commands[] = {
	// window          control                   what it does            when
	{ window_programs, control_cancel,           hide_programs,          always },
	{ window_programs, programs_refresh,         refresh,                alone  },
	{ window_programs, programs_retry,           refresh,                alone  },
	{ window_programs, programs_loaded_delete,   delete_chosen,          alone  },
	{ window_programs, programs_loaded_rename,   rename_chosen,          alone  },
	{ window_programs, programs_information,     show_information,       alone  },
	{ window_programs, programs_download,        download_chosen,        alone  },
	{ window_programs, programs_upload,          upload_selected_local_program, alone },
	{ window_programs, programs_import_akp,      import_akp,             alone  },
	{ window_programs, programs_local_delete,    delete_local_chosen,    alone  },
	{ window_programs, programs_local_rename,    rename_local_chosen,    alone  },
	{ window_programs, programs_voice_form,      open_keygroup_form,     alone  },
	{ window_programs, programs_zone_form,       open_keyzone_form,      alone  },
	{ window_programs, programs_program_form,    open_program_form,      alone  },
	{ window_programs, programs_adsr,            open_envelopes,         alone  },
	{ window_programs, programs_life_update,     press_life_update,      alone  },
	{ window_programs, programs_save_changes,    save_changes,           alone  },
	{ window_programs, programs_add_keygroup,    add_keygroup,           alone  },
	{ window_programs, programs_delete_keygroup, delete_chosen_keygroup, alone  },
	{ window_programs, programs_find_sample,     find_missing_sample,    alone  },
	{ window_programs, programs_undo,            undo_shown,             alone  },
	{ window_programs, programs_redo,            redo_shown,             alone  },
};
static constexpr command_row programs_selections[] = {
	{ window_programs, programs_loaded_list,     choose_loaded_program,  alone  },
	{ window_programs, programs_local_list,      choose_local_program,   alone  },
	{ window_programs, programs_keygroup_list,   choose_keygroup,        alone  },
	{ window_programs, programs_keyzone_list,    choose_keyzone,         alone  },
	{ window_programs, programs_zone_sample,     choose_zone_sample,     alone  },
	{ window_programs, programs_tabs,            show_title,             alone  },
};
// clang-format on

constinit const window_rows programs_rows = { programs_captions, programs_commands,
	programs_selections };

} // namespace velmor
