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
chosen_entry chosen_loaded();
chosen_entry chosen_local();
// True, and the user knows it, where nothing is chosen.
bool no_loaded(const chosen_entry &entry);
bool no_local(const chosen_entry &entry);

// The names as the list of the sampler shows them.
extern std::vector<std::string> shown_loaded;
// Fill a list from what is known, and choose that entry, or what stands in its place now.
void fill_loaded(const chosen_entry &before);
void fill_local(const chosen_entry &before);
// Read the sampler anew and show both sides.
void read_anew(const chosen_entry &loaded, const chosen_entry &local);
// Show what a change on the sampler has left, tell it, and go on in the list.
void show_change(const outcome &result, const chosen_entry &loaded, const chosen_entry &local);
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
