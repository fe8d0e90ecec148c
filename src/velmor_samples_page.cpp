// velmor_samples_page.cpp - the sample manager: two lists, and what is chosen in them
//
// Each button reads the selection, calls a workflow (velmor_work.h), and shows how it ended.
// Names are taken from what the list shows, not from the record behind it, which another view
// may have read anew meanwhile. Afterwards the selection stays on its entry or goes to the
// neighbour, the field of the new name is empty, and the focus is in the list: a second press
// must not hit another sample.
//
// Knows nothing of: models (but what their rows say), toolkits.

#include "src/velmor_samples_page.h"
#include "src/velmor_verify.h"
#include "src/waveqx.h"
#include <algorithm>
#include <cstring>
#include <utility>

namespace velmor
{

// ---- The two lists --------------------------------------------------------------------------

static constexpr list_controls loaded_controls = {
	.window = window_samples,
	.list = samples_loaded_list,
	.heading = samples_loaded_heading,
	.retry = samples_retry,
	.what = noun::sample,
};

static constexpr int detail_fields[] = { samples_detail_origin, samples_detail_name,
	samples_detail_pitch, samples_detail_rate, samples_detail_seconds, samples_detail_channels,
	samples_detail_bits, samples_detail_playmode };

// What a command needs before it can do something.
struct need_row {
	int control;
	bool known_list;     // of the sampler
	int list;            // something chosen in it; 0: nothing
	const char *nothing; // is chosen there
	bool one;            // and not several
};
// clang-format off
static constexpr const char *no_loaded_words = own("Choose a sample on the sampler first.");
static constexpr const char *no_local_words = own("Choose a sample on this computer first.");
static constexpr need_row needs[] = {
	{ samples_download,      true,  samples_loaded_list, no_loaded_words, false },
	{ samples_download_all,  true,  0,                   nullptr,         false },
	{ samples_loaded_delete, true,  samples_loaded_list, no_loaded_words, false },
	{ samples_loaded_rename, true,  samples_loaded_list, no_loaded_words, true  },
	{ samples_loaded_info,   true,  samples_loaded_list, no_loaded_words, true  },
	{ samples_upload,        true,  samples_local_list,  no_local_words,  false },
	{ samples_local_delete,  false, samples_local_list,  no_local_words,  false },
	{ samples_local_rename,  false, samples_local_list,  no_local_words,  true  },
	{ samples_local_info,    false, samples_local_list,  no_local_words,  true  },
	{ samples_compare,       true,  samples_local_list,  no_local_words,  true  },
};
// clang-format on

std::vector<std::string> shown_loaded;

using list_rows = std::vector<std::vector<std::string>>;

chosen_entry chosen_loaded()
{
	const int index = host.ui->selection(window_samples, samples_loaded_list);
	if (index < 0 || index >= static_cast<int>(shown_loaded.size()))
		return { "", -1 };
	return { shown_loaded[static_cast<std::size_t>(index)], index };
}

chosen_entry chosen_local()
{
	const int index = host.ui->selection(window_samples, samples_local_list);
	if (index < 0 || index >= local_samples)
		return { "", -1 };
	return { local_sample[static_cast<std::size_t>(index)].displayname, index };
}

chosen_entries all_chosen_loaded()
{
	chosen_entries all;
	for (const int index : host.ui->selections(window_samples, samples_loaded_list))
		if (index >= 0 && index < static_cast<int>(shown_loaded.size()))
			all.push_back({ shown_loaded[static_cast<std::size_t>(index)], index });
	return all;
}

chosen_entries all_chosen_local()
{
	chosen_entries all;
	for (const int index : host.ui->selections(window_samples, samples_local_list))
		if (index >= 0 && index < local_samples)
			all.push_back({ local_sample[static_cast<std::size_t>(index)].displayname,
				index });
	return all;
}

std::vector<std::string> chosen_files()
{
	std::vector<std::string> paths;
	for (const chosen_entry &entry : all_chosen_local())
		paths.push_back(
			wave_path_of(local_sample[static_cast<std::size_t>(entry.index)].pathname));
	return paths;
}

static bool nothing_chosen(const chosen_entry &entry, const char *words)
{
	if (entry.index < 0)
		show_outcome({ .how = ending::refused, .words = words });
	return entry.index < 0;
}

bool no_loaded(const chosen_entry &entry)
{
	return nothing_chosen(entry, tr("Choose a sample on the sampler first!"));
}

bool no_local(const chosen_entry &entry)
{
	return nothing_chosen(entry, tr("Choose a sample on this computer first!"));
}

// Where an entry stands now: the name where it was, the name elsewhere; -1: nowhere.
static int place_now(const std::vector<std::string> &names, const chosen_entry &entry)
{
	if (entry.index >= 0 && entry.index < static_cast<int>(names.size()) &&
		names[static_cast<std::size_t>(entry.index)] == entry.name)
		return entry.index;
	const auto found = std::find(names.begin(), names.end(), entry.name);
	return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

// Fill a list, and choose what was chosen before, or what stands in the place of the first now.
static void refill(int control, const list_rows &rows, const std::vector<std::string> &names,
	const chosen_entries &before)
{
	host.ui->set_rows(window_samples, control, rows);
	const int count = static_cast<int>(names.size());
	if (!count)
		return;
	std::vector<int> places;
	for (const chosen_entry &entry : before)
		if (const int place = place_now(names, entry); place >= 0)
			places.push_back(place);
	if (places.size() > 1)
		host.ui->select_several(window_samples, control, places);
	else if (places.empty())
		host.ui->select(window_samples, control,
			before.empty() ? 0 : std::clamp(before.front().index, 0, count - 1));
	else
		host.ui->select(window_samples, control, places.front());
}

void clear_details()
{
	for (const int field : detail_fields)
		host.ui->set_text(window_samples, field, "");
}

// Name, length, rate, pitch and loop, where the sampler's list told more than the name.
static std::vector<std::string> loaded_row(const _sample &sample)
{
	std::vector<std::string> row = { sample.name };
	if (!sample.sample_rate)
		return row;
	const double words = static_cast<double>(sample.end_position) -
			     static_cast<double>(sample.start_position);
	row.push_back(format_text(
		"%.2f s", std::max(0.0, words / static_cast<double>(sample.sample_rate))));
	row.push_back(format_text("%llu Hz", static_cast<unsigned long long>(sample.sample_rate)));
	row.push_back(display_midi_note(sample.original_pitch));
	row.push_back(sample.loop_end > sample.loop_start ? tr("yes") : tr("no"));
	return row;
}

void fill_loaded(const chosen_entries &before)
{
	shown_loaded = loaded_names();
	list_rows rows;
	for (std::size_t i = 0; i < shown_loaded.size(); i++)
		rows.push_back(loaded_row(current_sampler->status->sample[i]));
	refill(samples_loaded_list, rows, shown_loaded, before);
	clear_details();
}

// ---- What the files of the spool tell ---------------------------------------------------------

// Heads are read after the names are shown, a few at a time, as a disk may be slow.
static list_rows local_rows;
static std::size_t local_heads_read;
static int head_timer;

static void stop_reading_heads()
{
	if (head_timer)
		host.ui->stop_timer(std::exchange(head_timer, 0));
}

// False when there is more to read.
static bool read_heads()
{
	constexpr double longest = 0.008; // seconds
	const double began = host.clock->counter();
	while (local_heads_read < std::min(local_rows.size(), local_sample.size()) &&
		host.clock->counter() - began < longest) {
		const std::size_t i = local_heads_read++;
		const std::vector<std::string> told =
			wave_columns(wave_path_of(local_sample[i].pathname));
		local_rows[i].insert(local_rows[i].end(), told.begin(), told.end());
	}
	return local_heads_read >= local_rows.size();
}

static void read_more_heads()
{
	if (!read_heads())
		return;
	stop_reading_heads();
	const std::vector<int> chosen = host.ui->selections(window_samples, samples_local_list);
	host.ui->set_rows(window_samples, samples_local_list, local_rows);
	host.ui->select_several(window_samples, samples_local_list, chosen);
}

void fill_local(const chosen_entries &before)
{
	load_local_samples(nullptr);
	std::vector<std::string> names;
	local_rows.clear();
	for (const _local_sample &local : local_sample) {
		names.emplace_back(local.displayname);
		local_rows.push_back({ local.displayname });
	}
	stop_reading_heads();
	local_heads_read = 0;
	if (!read_heads())
		head_timer = host.ui->start_timer(1, read_more_heads);
	refill(samples_local_list, local_rows, names, before);
	host.ui->set_text(window_samples, samples_local_heading,
		counted(local_samples, noun::sample).c_str());
	clear_details();
	show_local_selection();
}

void show_spool()
{
	if (was_opened(window_samples))
		fill_local(all_chosen_local());
}

void show_loaded_samples()
{
	if (was_opened(window_samples) && shown_loaded != loaded_names())
		fill_loaded(all_chosen_loaded());
}

// Null: it can be done.
static const char *why_not(const need_row &need, bool silent)
{
	if (need.known_list && silent)
		return tr("Not now: the sampler's list could not be read. Try again first.");
	if (!need.list)
		return nullptr;
	const std::size_t chosen = host.ui->selections(window_samples, need.list).size();
	if (!chosen)
		return tr(need.nothing);
	return need.one && chosen > 1 ? tr("This is for one sample, and several are chosen.")
				      : nullptr;
}

void update_sample_page()
{
	if (!was_opened(window_samples))
		return;
	const known_list &known = the_lists.samples;
	show_list_knowledge(loaded_controls, known, static_cast<int>(shown_loaded.size()));
	const bool silent = known.silent && known.way == way_key();
	for (const need_row &need : needs)
		host.ui->set_reason(window_samples, need.control, why_not(need, silent));
}

void empty_sample_page()
{
	if (!was_opened(window_samples))
		return;
	shown_loaded.clear();
	host.ui->set_list(window_samples, samples_loaded_list, {});
	clear_details();
	update_sample_page();
}

void read_anew(const chosen_entries &loaded, const chosen_entries &local)
{
	outcome read = read_sample_list();
	if (close_requested())
		return;
	fill_loaded(loaded);
	fill_local(local);
	if (read.done() && read.told.empty())
		return;
	// What could not be read is told in place of the list.
	read.words.clear();
	read.line = tr("The sampler's list was not read. The computer's list is up to date.");
	show_outcome(read);
}

void show_sample_setup()
{
	const chosen_entries loaded = all_chosen_loaded(), local = all_chosen_local();
	const outcome offered = current_sampler
					? offers_list(&_sampler_type::getsamplelist)
					: outcome{ .how = ending::refused,
						  .words = "You must load a sampler first..." };
	if (!offered.done()) {
		show_outcome(offered);
		return;
	}
	open_window(window_samples);
	show_comparison_choice();
	clear_details();
	read_anew(loaded, local);
}

// Another entry was chosen: what was shown of the one before goes.
static void choose_loaded()
{
	clear_details();
}

static void choose_local()
{
	clear_details();
	show_local_selection();
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

static void preview_options()
{
	show_import_preview({});
}

// ---- Rows ------------------------------------------------------------------------------------------

// clang-format off
static constexpr caption_row samples_captions[] = {
	// window          control                  caption, tooltip, empty
	{ window_samples,  0,                       "VELMOR Manage current Samples", nullptr, nullptr },
	{ window_samples,  samples_loaded_list,     own("On the sampler"), own("The samples in the sampler's memory"), own("The sampler holds no samples") },
	{ window_samples,  samples_loaded_search,   own("Search samples on the sampler"), own("Show only names that contain these letters"), own("Search") },
	{ window_samples,  samples_download,        "Download this Sample", own("Copy the chosen sample from the sampler to this computer"), nullptr },
	{ window_samples,  samples_download_all,    own("Download all Samples"), own("Copy every sample of the sampler to this computer"), nullptr },
	{ window_samples,  samples_loaded_delete,   "Delete this Sample", own("Remove the chosen sample from the sampler's memory"), nullptr },
	{ window_samples,  samples_loaded_rename,   "Rename this Sample", own("Give the chosen sample on the sampler the name in the field"), nullptr },
	{ window_samples,  samples_loaded_new_name, own("New name on the sampler"), own("The name for Rename this Sample"), own("New name") },
	{ window_samples,  samples_loaded_info,     "Sample Information", own("Ask the sampler about the chosen sample"), nullptr },
	{ window_samples,  samples_refresh,         "Refresh", own("Read the sampler and the spool anew"), nullptr },
	{ window_samples,  samples_local_list,      own("On this computer"), own("The samples in the spool; drop sound files here to import them"), own("The spool is empty: download samples, or drop sound files here") },
	{ window_samples,  samples_local_search,    own("Search samples on this computer"), own("Show only names that contain these letters"), own("Search") },
	{ window_samples,  samples_upload,          "Upload this Sample", own("Send the chosen sample to the sampler"), nullptr },
	{ window_samples,  samples_local_delete,    "Delete this Sample", own("Delete the chosen sample from this computer"), nullptr },
	{ window_samples,  samples_local_rename,    "Rename this Sample", own("Give the chosen sample on this computer the name in the field"), nullptr },
	{ window_samples,  samples_local_new_name,  own("New name on this computer"), own("The name for Rename this Sample"), own("New name") },
	{ window_samples,  samples_local_info,      "Sample Information", own("Show what the file says about the chosen sample"), nullptr },
	{ window_samples,  samples_waveform,        own("Waveform"), own("The chosen sample on this computer; its loop is shaded"), own("No local sample chosen") },
	{ window_samples,  samples_detail_origin,   own("Origin:"), nullptr, nullptr },
	{ window_samples,  samples_detail_name,     own("Name:"), nullptr, nullptr },
	{ window_samples,  samples_detail_pitch,    own("Original pitch:"), nullptr, nullptr },
	{ window_samples,  samples_detail_rate,     own("Rate (Hz):"), nullptr, nullptr },
	{ window_samples,  samples_detail_seconds,  own("Length (s):"), nullptr, nullptr },
	{ window_samples,  samples_detail_channels, own("Channels:"), nullptr, nullptr },
	{ window_samples,  samples_detail_bits,     own("Bits:"), nullptr, nullptr },
	{ window_samples,  samples_detail_playmode, own("Play mode:"), nullptr, nullptr },
	{ window_samples,  samples_import,          "Import Sample", own("Choose sound files and convert them into the spool"), nullptr },
	{ window_samples,  samples_export,          "Export Spool", own("Copy every sample of the spool to a folder of your choice"), nullptr },
	{ window_samples,  samples_clear,           "Clear Spool", own("Delete every sample of the spool from this computer"), nullptr },
	{ window_samples,  samples_bits_keep,       "Keep original", own("Leave the bits of a value as they are"), nullptr },
	{ window_samples,  samples_bits_16,         "Convert to 16 bit", own("What most samplers take"), nullptr },
	{ window_samples,  samples_bits_12,         "Convert to 12 bit", own("For the S900/950"), nullptr },
	{ window_samples,  samples_bits_24,         "Convert to 24 bit", nullptr, nullptr },
	{ window_samples,  samples_rate_keep,       "Keep original", own("Leave the sampling rate as it is"), nullptr },
	{ window_samples,  samples_rate_16000,      "16000 Hz", nullptr, nullptr },
	{ window_samples,  samples_rate_22000,      "22000 Hz", nullptr, nullptr },
	{ window_samples,  samples_rate_32000,      "32000 Hz", nullptr, nullptr },
	{ window_samples,  samples_rate_44100,      "44100 Hz", nullptr, nullptr },
	{ window_samples,  samples_rate_48000,      "48000 Hz", nullptr, nullptr },
	{ window_samples,  samples_rate_96000,      "96000 Hz", nullptr, nullptr },
	{ window_samples,  samples_channels_keep,   "Keep original", own("Leave mono mono and stereo stereo"), nullptr },
	{ window_samples,  samples_channels_1,      "1 Channel", own("Make every sample mono"), nullptr },
	{ window_samples,  samples_channels_2,      "2 Channel", own("Make every sample stereo"), nullptr },
	{ window_samples,  samples_mix_left,        "Left Channel", own("From a stereo file take the left channel; put a mono file on the left"), nullptr },
	{ window_samples,  samples_mix_right,       "Right Channel", own("From a stereo file take the right channel; put a mono file on the right"), nullptr },
	{ window_samples,  samples_mix_both_to_one, "Mix Channels", own("From a stereo file take the average of both channels"), nullptr },
	{ window_samples,  samples_mix_both,        "Both Channels", own("Put a mono file on both channels"), nullptr },
	{ window_samples,  samples_mix_files,       "Create L/R files", own("Make two mono samples of a stereo file, with -L and -R behind their names"), nullptr },
	{ window_samples,  samples_import_preview,  own("File"), own("The chosen sample, or the files that hover over the list"), nullptr },
	{ window_samples,  samples_loaded_heading,  own("State of the sampler's list"), own("How many samples, and when they were read"), nullptr },
	{ window_samples,  samples_local_heading,   own("State of the spool"), own("How many samples there are on this computer"), nullptr },
	{ window_samples,  samples_retry,           own("Try again"), own("Ask the sampler once more"), nullptr },
};
static constexpr command_row samples_commands[] = {
	// window          control                  what it does               when
	{ window_samples,  control_cancel,          hide_window<window_samples>, always },
	{ window_samples,  samples_refresh,         show_sample_setup,         alone  },
	{ window_samples,  samples_retry,           show_sample_setup,         alone  },
	{ window_samples,  samples_download,        download_selected_sample,  alone  },
	{ window_samples,  samples_download_all,    download_all_samples,      alone  },
	{ window_samples,  samples_loaded_delete,   delete_loaded_sample,      alone  },
	{ window_samples,  samples_loaded_rename,   rename_loaded_sample,      alone  },
	{ window_samples,  samples_loaded_info,     show_loaded_information,   alone  },
	{ window_samples,  samples_upload,          upload_selected_sample,    alone  },
	{ window_samples,  samples_local_delete,    delete_local_sample,       alone  },
	{ window_samples,  samples_local_rename,    rename_local_sample,       alone  },
	{ window_samples,  samples_local_info,      show_local_information,    alone  },
	{ window_samples,  samples_import,          import_samples,            alone  },
	{ window_samples,  samples_export,          export_spool,              alone  },
	{ window_samples,  samples_clear,           clear_spool,               alone  },
};
static constexpr command_row samples_selections[] = {
	{ window_samples,  samples_loaded_list,     choose_loaded,             alone  },
	{ window_samples,  samples_local_list,      choose_local,              alone  },
	{ window_samples,  samples_bits_keep,       preview_options,           alone  },
	{ window_samples,  samples_bits_16,         preview_options,           alone  },
	{ window_samples,  samples_bits_12,         preview_options,           alone  },
	{ window_samples,  samples_bits_24,         preview_options,           alone  },
	{ window_samples,  samples_rate_keep,       preview_options,           alone  },
	{ window_samples,  samples_rate_16000,      preview_options,           alone  },
	{ window_samples,  samples_rate_22000,      preview_options,           alone  },
	{ window_samples,  samples_rate_32000,      preview_options,           alone  },
	{ window_samples,  samples_rate_44100,      preview_options,           alone  },
	{ window_samples,  samples_rate_48000,      preview_options,           alone  },
	{ window_samples,  samples_rate_96000,      preview_options,           alone  },
	{ window_samples,  samples_channels_keep,   preview_options,           alone  },
	{ window_samples,  samples_channels_1,      preview_options,           alone  },
	{ window_samples,  samples_channels_2,      preview_options,           alone  },
	{ window_samples,  samples_mix_left,        preview_options,           alone  },
	{ window_samples,  samples_mix_right,       preview_options,           alone  },
	{ window_samples,  samples_mix_both_to_one, preview_options,           alone  },
	{ window_samples,  samples_mix_both,        preview_options,           alone  },
	{ window_samples,  samples_mix_files,       preview_options,           alone  },
};
static constexpr drop_row samples_drops[] = {
	{ window_samples,  samples_local_list,      show_import_preview,       import_paths },
};
// clang-format on

constinit const window_rows samples_rows = { samples_captions, samples_commands, samples_selections,
	samples_drops };

} // namespace velmor
