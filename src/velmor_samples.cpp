// velmor_samples.cpp - the sample manager: between the sampler, the spool and files of the user
//
// Two lists: the samples of the loaded sampler (its _dev_status), and the WAV
// files of the spool (local_sample). Each button is one function below. What a
// model can do is in its row of sampler_type; an empty slot has its words here.
//
// Knows nothing of: models, toolkits.

#include "src/velmor_window.h"
#include "src/waveqx.h"
#include "src/waveqx_file.h"
#include <algorithm>
#include <cstring>

namespace velmor
{

// The pitch of an imported file that tells none: B4 of the sampler's keyboard.
static constexpr int import_pitch = 83;

static std::string spool()
{
	return current_config_path + "\\sample";
}

static _sampler_type *current_model()
{
	_sampler_type *model =
		current_sampler ? get_sampler(static_cast<i32>(current_sampler->sampler_type))
				: nullptr;
	if (!model)
		show_box("INFO", "Invalid sampler type");
	return model;
}

static u8 control_channel()
{
	return static_cast<u8>(current_sampler->sampler_sysex);
}

static u8 exclusive_channel()
{
	return static_cast<u8>(current_sampler->sampler_sysex_channel);
}

// ---- The two lists --------------------------------------------------------------------------

static int loaded_count()
{
	const _dev_status *dev = current_sampler ? current_sampler->status : nullptr;
	return dev ? std::clamp(dev->samples, 0, max_samples) : 0;
}

// The chosen sample of the sampler, or null after saying so.
static _sample *selected_loaded()
{
	const int index = host.ui->selection(window_samples, samples_loaded_list);
	if (index >= 0 && index < loaded_count())
		return &current_sampler->status->sample[index];
	show_box("INFO", "Choose a sample on the sampler first!");
	return nullptr;
}

static const _local_sample *local_at(int index)
{
	return index >= 0 && index < local_samples ? &local_sample[static_cast<std::size_t>(index)]
						   : nullptr;
}

static const _local_sample *local_chosen()
{
	return local_at(host.ui->selection(window_samples, samples_local_list));
}

static const _local_sample *selected_local()
{
	const _local_sample *chosen = local_chosen();
	if (!chosen)
		show_box("INFO", "Choose a sample on this computer first!");
	return chosen;
}

// Fill a list, and choose again what was chosen before, by its name.
static void refill(int control, const std::vector<std::string> &names, std::string_view chosen)
{
	host.ui->set_list(window_samples, control, names);
	if (names.empty())
		return;
	const auto found = std::find(names.begin(), names.end(), chosen);
	host.ui->select(window_samples, control,
		found == names.end() ? 0 : static_cast<int>(found - names.begin()));
}

static void refill_loaded(const std::string &chosen)
{
	std::vector<std::string> names;
	for (int i = 0; i < loaded_count(); i++)
		names.emplace_back(current_sampler->status->sample[i].name);
	refill(samples_loaded_list, names, chosen);
}

static void refill_local(const std::string &chosen)
{
	load_local_samples(nullptr);
	std::vector<std::string> names;
	for (int i = 0; const _local_sample *local = local_at(i); i++)
		names.emplace_back(local->displayname);
	refill(samples_local_list, names, chosen);
	show_local_selection();
}

static constexpr int detail_fields[] = { samples_detail_origin, samples_detail_name,
	samples_detail_pitch, samples_detail_rate, samples_detail_seconds, samples_detail_channels,
	samples_detail_bits, samples_detail_playmode };

// Names are kept aside before anything is read: the lists live in what is read anew.
static void refresh(const std::string &loaded_name, const std::string &local_name)
{
	if (close_requested())
		return;
	if (!current_sampler) {
		show_box("INFO", "You must load a sampler first...");
		return;
	}
	_sampler_type *model = current_model();
	if (!model)
		return;
	if (!model->getsamplelist) {
		show_box("FATAL", "No Sampler loaded/Function not supported by Sampler");
		return;
	}
	_dev_status *dev = require_dev_status();
	if (!dev)
		return;
	host.ui->show(window_samples, 0, true);
	for (int field : detail_fields)
		host.ui->set_text(window_samples, field, "");
	if (model->getstatus)
		model->getstatus(control_channel(), exclusive_channel(), dev);
	model->getsamplelist(control_channel(), exclusive_channel(), dev);
	refill_loaded(loaded_name);
	refill_local(local_name);
}

static std::string loaded_name_chosen()
{
	const int index = host.ui->selection(window_samples, samples_loaded_list);
	return index >= 0 && index < loaded_count() ? current_sampler->status->sample[index].name
						    : "";
}

static std::string local_name_chosen()
{
	const _local_sample *chosen = local_chosen();
	return chosen ? chosen->displayname : "";
}

void show_sample_setup()
{
	refresh(loaded_name_chosen(), local_name_chosen());
}

// ---- Information ------------------------------------------------------------------------------

static const _sampler_type *row_of_play_modes(const _sampler_type *model, const char *origin)
{
	if (std::strcmp(origin, "LOCAL") != 0)
		return model;
	// A file's play mode is in the words of the S5000, whatever sampler is loaded.
	const int row = get_sampler_brand_index(model_s5000);
	log_line("[D] Sampler found: %d\r\n", row);
	return &sampler_type[row];
}

static std::string play_mode_text(const _sampler_type *row, int mode)
{
	if (!row->getplaymode)
		return format_text("%d", mode);
	const char *name = row->getplaymode(mode);
	return format_text("%d (%s)", mode, name ? name : "OTHER");
}

void display_sample_information(const _sample *sample, const char *origin)
{
	log_line("[D] PLAYBACK-MODE: %d\r\n", sample->playback_mode);
	const _sampler_type *model =
		current_sampler ? get_sampler(static_cast<i32>(current_sampler->sampler_type))
				: nullptr;
	if (!model) {
		show_box("FATAL", "Current Sampler not found!");
		return;
	}
	const double words = static_cast<double>(sample->end_position) -
			     static_cast<double>(sample->start_position);
	const double rate = static_cast<double>(sample->sample_rate);
	auto set = [](int control, const std::string &text) {
		host.ui->set_text(window_samples, control, text.c_str());
	};
	set(samples_detail_origin, origin);
	set(samples_detail_name, sample->name);
	set(samples_detail_pitch, display_midi_note(sample->original_pitch));
	set(samples_detail_rate, format_text("%d", static_cast<int>(sample->sample_rate)));
	set(samples_detail_seconds, format_text("%.02f", rate > 0 ? words / rate : 0.0));
	set(samples_detail_channels, format_text("%d", static_cast<int>(sample->channels)));
	set(samples_detail_bits, format_text("%d", static_cast<int>(sample->bitspersample)));
	set(samples_detail_playmode,
		play_mode_text(row_of_play_modes(model, origin), sample->playback_mode));
}

void show_loaded_information()
{
	const _sampler_type *model = current_model();
	const _sample *chosen = model ? selected_loaded() : nullptr;
	if (!chosen)
		return;
	if (!model->infosample) {
		show_box("FATAL", "No Sampler loaded/Function not supported by Sampler");
		return;
	}
	const std::string name = chosen->name;
	model->infosample(control_channel(), exclusive_channel(), name.c_str());
	for (int i = 0; i < loaded_count(); i++) {
		if (name != current_sampler->status->sample[i].name)
			continue;
		display_sample_information(&current_sampler->status->sample[i], "LOADED");
		return;
	}
}

void show_local_information()
{
	const _local_sample *chosen = selected_local();
	if (!chosen)
		return;
	_sample sample = {};
	if (create_sample_from_file(chosen->pathname, &sample))
		display_sample_information(&sample, "LOCAL");
	else
		show_box("INFO", "Sample corrupted...cannot read information!");
	free_sample_data(&sample);
}

// ---- From the sampler ---------------------------------------------------------------------------

static bool in_spool(const std::string &name)
{
	_sample sample = {};
	copy_text(sample.name, name);
	return test_sample(&sample, nullptr) != 0;
}

void download_selected_sample()
{
	const _sampler_type *model = current_model();
	if (!model)
		return;
	if (!model->downloadsample) {
		show_box("INFO", "DOWNLOADING OF SAMPLES NOT SUPPORTED!");
		return;
	}
	const _sample *chosen = selected_loaded();
	if (!chosen)
		return;
	const std::string name = chosen->name;
	if (in_spool(name) && !ask_box("WARNING", "Overwrite existing sample?")) {
		show_box("INFO", "Skipped download of sample!");
		return;
	}
	model->downloadsample(control_channel(), exclusive_channel(), name.c_str());
	refresh(name, file_name_of(name));
}

static std::vector<std::string> loaded_names()
{
	std::vector<std::string> names;
	for (int i = 0; i < loaded_count(); i++)
		names.emplace_back(current_sampler->status->sample[i].name);
	return names;
}

// One question for all, since a sampler holds hundreds. The answer Cancel keeps the files
// that are there, and still fetches the others.
static void leave_out_existing(std::vector<std::string> *names)
{
	const auto existing = std::count_if(names->begin(), names->end(), in_spool);
	if (existing && !ask_box("WARNING", "Overwrite existing samples? (%d of %d)",
				static_cast<int>(existing), static_cast<int>(names->size())))
		std::erase_if(*names, in_spool);
}

void download_all_samples()
{
	const _sampler_type *model = current_model();
	if (!model)
		return;
	if (!model->downloadsample) {
		show_box("INFO", "DOWNLOADING OF SAMPLES NOT SUPPORTED!");
		return;
	}
	std::vector<std::string> names = loaded_names();
	leave_out_existing(&names);
	int done = 0;
	for (const std::string &name : names) {
		log_line("[I] Downloading [%s] (%d/%d)\r\n", name.c_str(), done + 1,
			static_cast<int>(names.size()));
		model->downloadsample(control_channel(), exclusive_channel(), name.c_str());
		if (progress_stopped() || close_requested())
			break;
		if (in_spool(name))
			done++;
	}
	refresh(loaded_name_chosen(), local_name_chosen());
	if (!close_requested())
		show_box("INFO", "%d/%d samples downloaded!", done, static_cast<int>(names.size()));
}

// Rename, or delete where newname is null: one operation of the model.
static void change_loaded(const char *newname, const char *outcome)
{
	const _sampler_type *model = current_model();
	const _sample *chosen = model ? selected_loaded() : nullptr;
	if (!chosen)
		return;
	if (!model->renamesample) {
		show_box("FATAL", "No Sampler loaded/Function not supported by Sampler");
		return;
	}
	const std::string name = chosen->name;
	model->renamesample(control_channel(), exclusive_channel(), name.c_str(), newname);
	show_box("INFO", "%s", outcome);
	refresh(newname ? newname : "", local_name_chosen());
}

void delete_loaded_sample()
{
	change_loaded(nullptr, "Loaded sample successfully deleted");
}

void rename_loaded_sample()
{
	const std::string newname = host.ui->get_text(window_samples, samples_loaded_new_name);
	if (newname.empty()) {
		show_box("INFO", "Choose a new name!");
		return;
	}
	// The word stands for the sampler's side too.
	change_loaded(newname.c_str(), "Local sample successfully renamed");
}

// ---- To the sampler, and the files of the spool -----------------------------------------------

void upload_selected_sample()
{
	const _sampler_type *model = current_model();
	if (!model)
		return;
	if (!model->uploadsample) {
		show_box("FATAL", "Upload for this sampler is not supported (yet)!");
		return;
	}
	const _local_sample *chosen = selected_local();
	if (!chosen)
		return;
	const _local_sample local = *chosen;
	model->uploadsample(local.pathname);
	refresh(local.displayname, local.displayname);
}

void delete_local_sample()
{
	const _local_sample *chosen = selected_local();
	if (!chosen)
		return;
	const std::string base = spool() + "\\" + chosen->displayname;
	log_line("[I] Deleting [%s]  PATH: [%s]\r\n", chosen->displayname, spool().c_str());
	const int code = host.files->remove(wave_path_of(base).c_str());
	host.files->remove((base + ".info").c_str());
	if (code)
		_display_error(__FILE_NAME__, __LINE__, code);
	else
		show_box("INFO", "Local sample successfully deleted");
	refill_local("");
}

static bool file_exists(const std::string &path)
{
	file_info info;
	return host.files->stat(path.c_str(), &info) == 0;
}

// Two names of one file: both are found, but the folder lists only one of them.
static bool one_file(const std::string &from, const std::string &to)
{
	if (!equal_but_for_case(from, to) || !file_exists(from) || !file_exists(to))
		return false;
	std::vector<std::string> names;
	host.files->list(spool().c_str(), &names);
	return std::count_if(names.begin(), names.end(), [&](const std::string &name) {
		return equal_but_for_case(spool() + "\\" + name, from);
	}) < 2;
}

// The name is free, or the user gives up what bears it. Both files of a sample are asked for.
static bool may_take_name(
	const std::string &from, const std::string &to, const char *old_name, const char *new_name)
{
	// On a disk that does not tell cases apart, the name in another case is the file itself.
	if (one_file(wave_path_of(from), wave_path_of(to)))
		return true;
	if (file_exists(wave_path_of(to)) &&
		!ask_box("INFO", "A sample with that name already exists, overwrite?")) {
		log_line("Not renaming [%s] --> [%s]\r\n", old_name, new_name);
		return false;
	}
	if (file_exists(to + ".info") &&
		!ask_box("INFO", "A Sample with that name already exists, overwrite?")) {
		log_line("Not renaming sample [%s] --> [%s]\r\n", old_name, new_name);
		return false;
	}
	return file_exists(wave_path_of(from));
}

static void move_local(const std::string &from, const std::string &to)
{
	if (!one_file(wave_path_of(from), wave_path_of(to)))
		host.files->remove(wave_path_of(to).c_str());
	if (!one_file(from + ".info", to + ".info"))
		host.files->remove((to + ".info").c_str());
	int code = host.files->rename(wave_path_of(from).c_str(), (to + ".wav").c_str());
	if (!code && file_exists(from + ".info"))
		code = host.files->rename((from + ".info").c_str(), (to + ".info").c_str());
	if (code)
		_display_error(__FILE_NAME__, __LINE__, code);
	else
		show_box("INFO", "Local sample successfully renamed");
}

void rename_local_sample()
{
	const _local_sample *chosen = selected_local();
	if (!chosen)
		return;
	const std::string typed = host.ui->get_text(window_samples, samples_local_new_name);
	if (typed.empty()) {
		show_box("INFO", "Choose a new name!");
		return;
	}
	const std::string old_name = chosen->displayname;
	const std::string new_name = file_name_of(typed);
	log_line("[I] Renaming [%s] --> [%s] PATH: [%s]\r\n", old_name.c_str(), new_name.c_str(),
		spool().c_str());
	// Taking one's own name would delete the only copy first.
	if (new_name == old_name)
		return;
	const std::string from = spool() + "\\" + old_name;
	const std::string to = spool() + "\\" + new_name;
	if (!may_take_name(from, to, old_name.c_str(), new_name.c_str()))
		return;
	log_line("[D] renaming sample [%s] --> [%s]\r\n", old_name.c_str(), new_name.c_str());
	move_local(from, to);
	refill_local(new_name);
}

void export_spool()
{
	const std::string target = host.ui->choose_folder("Select target folder for samples");
	log_line("[D] SHBrowse returned with: [%s]\r\n", target.c_str());
	if (target.empty())
		return;
	if (copy_folder(window_samples, spool().c_str(), target.c_str()))
		show_box("INFO", "Export completed");
	else
		show_box("FATAL", "Export failed%s%s", import_failure.empty() ? "" : "\n",
			import_failure.c_str());
}

void clear_spool()
{
	const std::string folder = spool();
	if (ask_box("INFO", "Are you sure, you want to clear spooldir (%s)?", folder.c_str())) {
		log_line("[I] Cleaning [%s]\r\n", folder.c_str());
		cleanup_dir(folder.c_str());
	}
	refill_local("");
}

// ---- Import -------------------------------------------------------------------------------------

static bool import_one(const std::string &path, int number, int count)
{
	const import_options options = chosen_import_options();
	host.ui->set_text(
		window_samples, samples_work_file, host.files->host_path(path.c_str()).c_str());
	host.ui->set_text(
		window_samples, samples_work_count, format_text("%d/%d", number, count).c_str());
	return import_wave(path.c_str(), window_samples, static_cast<unsigned>(options.bits),
		options.rate, static_cast<unsigned>(options.channels),
		static_cast<unsigned>(options.mixing), import_pitch);
}

void import_files(std::span<const std::string> paths)
{
	const int count = static_cast<int>(paths.size());
	show_progressbar(window_samples, count, "Converting Files...");
	int done = 0;
	for (const std::string &path : paths) {
		if (progress_stopped() || close_requested())
			break;
		if (!import_one(path, done + 1, count)) {
			if (progress_stopped() || close_requested())
				break;
			hide_progressbar(window_samples);
			show_box("ERROR", "Conversion failed! [%s] (%d/%d)%s%s", path.c_str(),
				done + 1, count, import_failure.empty() ? "" : "\n",
				import_failure.c_str());
			refill_local(local_name_chosen());
			return;
		}
		done++;
		set_progressbar(done);
	}
	hide_progressbar(window_samples);
	show_box("INFO", "%d/%d files converted!", done, count);
	log_line("[D] Finished Import-Dialog for %d Sample(s)\r\n", done);
	show_sample_setup();
}

void import_samples()
{
	const std::vector<std::string> paths =
		host.ui->choose_files("Import Sample", "Wave files (*.wav *.WAV);;All files (*)");
	if (paths.empty())
		show_box("ERROR", "No file(s) selected!");
	else
		import_files(paths);
}

} // namespace velmor
