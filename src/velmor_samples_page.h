// velmor_samples_page.h - what the files of the sample manager share
//
// Knows nothing of: toolkits, models.

#pragma once
#include "src/velmor_window.h"

namespace velmor
{

// ---- The page (velmor_samples_page.cpp) ---------------------------------------------------------

// An entry of a list, by its name and place; -1 for none.
struct chosen_entry {
	std::string name;
	int index;
};
// The current one of a list, and all that are chosen in it, as they stand there.
using chosen_entries = std::vector<chosen_entry>;
chosen_entry chosen_loaded();
chosen_entry chosen_local();
chosen_entries all_chosen_loaded();
chosen_entries all_chosen_local();
// The files of the chosen samples of this computer, for other programs.
std::vector<std::string> chosen_files();
// True, and the user knows it, where nothing is chosen.
bool no_loaded(const chosen_entry &entry);
bool no_local(const chosen_entry &entry);

// The names as the list of the sampler shows them.
extern std::vector<std::string> shown_loaded;
// Fill a list from what is known, and choose these entries, or what stands in the place of the
// first now.
void fill_loaded(const chosen_entries &before);
void fill_local(const chosen_entries &before);
// Read the sampler anew and show both sides.
void read_anew(const chosen_entries &loaded, const chosen_entries &local);
// Show what a change on the sampler has left, tell it, and go on in the list.
void show_change(const outcome &result, const chosen_entries &loaded, const chosen_entries &local);
void clear_details();

// ---- Its commands -------------------------------------------------------------------------------

// On the sampler (velmor_samples_loaded.cpp).
void show_loaded_information();
void download_selected_sample();
void download_all_samples();
void delete_loaded_sample();
void rename_loaded_sample();

// On this computer (velmor_samples_local.cpp).
void show_local_information();
void upload_selected_sample();
void delete_local_sample();
void rename_local_sample();
void export_spool();
void clear_spool();
void import_samples();
void import_paths(std::span<const std::string> paths);

} // namespace velmor
