// velmor_entries.cpp - the entries of the list of samplers: edit, remove, read again; saving the log
//
// An entry is edited in the sampler dialog, which else stands for the loaded sampler. Saving it
// does not load it; a new name moves its file. What is removed goes to the folder "deleted" in the
// configuration folder, and Undo brings it back.
//
// Knows nothing of: toolkits, models.

#include "src/velmor_files.h"
#include "src/velmor_window.h"
#include <algorithm>

namespace velmor
{

// The name of the chosen entry, "" for none.
static std::string chosen_entry()
{
	const int index = host.ui->selection(window_main, main_sampler_list);
	return index >= 0 && index < static_cast<int>(conf_sampler.size())
		       ? conf_sampler[static_cast<std::size_t>(index)]
		       : "";
}

static void choose_entry(const std::string &name)
{
	const auto found = std::find(conf_sampler.begin(), conf_sampler.end(), name);
	if (found != conf_sampler.end())
		host.ui->select(window_main, main_sampler_list,
			static_cast<int>(found - conf_sampler.begin()));
	update_entry_commands();
}

void update_entry_commands()
{
	const char *why_not =
		chosen_entry().empty() ? tr("Choose a sampler in the list first.") : nullptr;
	for (const int control : { main_entry_edit, main_entry_remove })
		host.ui->set_reason(window_main, control, why_not);
}

// The folder is read again; who was chosen stays so.
static void read_entries_again()
{
	const std::string chosen = chosen_entry();
	load_sampler_list();
	choose_entry(chosen);
}

static void show_failure(int code, const std::string &line)
{
	box_keeper keeper;
	_display_error(__FILE_NAME__, __LINE__, code);
	show_outcome({ .how = ending::local_failed, .line = line, .told = keeper.take() });
}

// ---- Removing -----------------------------------------------------------------------------------

static bool file_exists(const std::string &path)
{
	file_info info;
	return host.files->stat(path.c_str(), &info) == 0;
}

// Move a configuration to where no file lies yet. A system code.
static int put_aside(const std::string &path, const std::string &name, std::string *place)
{
	const std::string folder = current_config_path + "\\deleted";
	(void)host.files->make_folder(folder.c_str()); // shows at the move
	*place = folder + "\\" + name + ".sampler";
	for (int i = 2; file_exists(*place); i++)
		*place = folder + "\\" + name + format_text(" (%d).sampler", i);
	return host.files->rename(path.c_str(), place->c_str());
}

static void remove_entry()
{
	const std::string name = chosen_entry();
	if (name.empty())
		return;
	const int index = host.ui->selection(window_main, main_sampler_list);
	const std::string path = sampler_file(name.c_str());
	std::string place;
	log_line("[I] Removing sampler [%s]\r\n", path.c_str());
	if (const int code = put_aside(path, name, &place))
		return show_failure(code, format_text(tr("'%s' was not removed."), name.c_str()));
	remember_undo({ .line = format_text(tr("Put the sampler '%s' back."), name.c_str()),
		.moves = { { place, path } },
		.show = read_entries_again });
	load_sampler_list();
	const int last = static_cast<int>(conf_sampler.size()) - 1;
	if (last >= 0)
		host.ui->select(window_main, main_sampler_list, std::min(index, last));
	update_entry_commands();
	show_outcome({ .line = format_text(
			       tr("Removed the sampler '%s' from the list."), name.c_str()) });
}

// ---- Editing --------------------------------------------------------------------------------------

static std::string edited_entry; // "": the dialog is that of the loaded sampler
static _sampler edited_record;   // as it was read

bool entry_is_edited()
{
	return !edited_entry.empty();
}

void forget_edited_entry()
{
	edited_entry.clear();
}

static void edit_entry()
{
	const std::string name = chosen_entry();
	_sampler record = {};
	if (name.empty())
		return;
	if (!read_configuration(name, &record)) {
		show_outcome({ .how = ending::local_failed,
			.words = format_text(tr("[%s] cannot be read any more."),
				host.files->host_path(sampler_file(name.c_str()).c_str())
					.c_str()) });
		return;
	}
	show_sampler_setup();
	edited_entry = name;
	edited_record = record;
	host.ui->set_text(window_sampler, sampler_name, name.c_str());
	host.ui->set_text(window_sampler, control_ok, "Save changes");
	select_in_sampler_dialog(record);
}

// A name that is free, or the entry's own in other letters.
static bool may_be_called(const std::string &name)
{
	if (name.empty() || file_name_of(name) != name) {
		show_box("Info", tr("Please choose a name for the sampler, without / and \\."));
		return false;
	}
	if (name == edited_entry || !file_exists(sampler_file(name.c_str())))
		return true;
	show_box("Info", tr("There is a sampler called '%s' already. Please choose another name."),
		name.c_str());
	return false;
}

static bool is_loaded(const std::string &name)
{
	return current_sampler && current_sampler->sampler_description == name;
}

// The loaded one takes its changes over, and has to be read again.
static int write_entry(const _sampler &record)
{
	if (is_loaded(edited_entry)) {
		const int code = may_lose_edits(false) ? store_sampler(record) : 1;
		if (!code)
			empty_open_pages();
		return code;
	}
	const std::string path = sampler_file(record.sampler_description);
	const int code = write_whole_file(path, &record, sizeof record);
	if (code)
		_display_error(__FILE_NAME__, __LINE__, code);
	return code ? 1 : 0;
}

int save_edited_entry()
{
	const std::string name = host.ui->get_text(window_sampler, sampler_name);
	if (!may_be_called(name))
		return 1;
	const std::string old_path = sampler_file(edited_entry.c_str());
	log_line("[I] Saving the changes of sampler [%s]\r\n", old_path.c_str());
	if (write_entry(described_sampler(name, edited_record.sampler_usbname)))
		return 1;
	std::string place;
	const int code = name == edited_entry ? 0 : put_aside(old_path, edited_entry, &place);
	load_sampler_list();
	choose_entry(name);
	if (code)
		show_failure(
			code, format_text(tr("'%s' is still in the list."), edited_entry.c_str()));
	else
		show_outcome({ .line = format_text(tr("Saved the changes of the sampler '%s'."),
				       name.c_str()) });
	return 0;
}

// ---- Saving the log -----------------------------------------------------------------------------

// All that was logged, or where no window keeps that, what the log shows.
static std::string text_to_save()
{
	const std::string whole = host.ui->get_text(window_main, main_log_whole);
	return whole.empty() ? host.ui->get_text(window_main, main_log) : whole;
}

static void save_log()
{
	const std::string path =
		host.ui->choose_new_file
			? host.ui->choose_new_file("Save log", "Text (*.txt *.log)", "velmor.txt")
			: "";
	if (path.empty())
		return;
	const std::string text = text_to_save();
	const std::string shown = host.files->host_path(path.c_str());
	if (const int code = write_whole_file(path, text.data(), text.size()))
		return show_outcome({ .how = ending::local_failed,
			.words = write_failure(path, code),
			.line = tr("The log was not saved.") });
	show_outcome({ .line = format_text(tr("Saved the log as %s."), shown.c_str()) });
}

// ---- Rows -----------------------------------------------------------------------------------------

// clang-format off
static constexpr caption_row entry_captions[] = {
	// window          control            caption, tooltip, empty
	{ window_main,     main_entry_edit,   own("Edit..."), own("Change the name, the model or the channels of this entry"), nullptr },
	{ window_main,     main_entry_remove, own("Remove"), own("Take this entry out of the list; Undo puts it back"), nullptr },
	{ window_main,     main_entry_folder, own("Show its folder"), own("Open the folder of your samplers"), nullptr },
	{ window_main,     main_read_again,   own("Read the list again"), own("Look again which samplers the folder holds"), nullptr },
	{ window_main,     main_log_save,     own("Save log..."), own("Keep the whole log, what is not shown too, as a text file"), nullptr },
};
static constexpr command_row entry_commands[] = {
	{ window_main,     main_entry_edit,   edit_entry,         alone },
	{ window_main,     main_entry_remove, remove_entry,       alone },
	{ window_main,     main_read_again,   read_entries_again, alone },
	{ window_main,     main_log_save,     save_log,           alone },
};
static constexpr command_row entry_selections[] = {
	{ window_main,     main_sampler_list, update_entry_commands, always },
};
// clang-format on

constinit const window_rows entry_rows = { entry_captions, entry_commands, entry_selections };

} // namespace velmor
