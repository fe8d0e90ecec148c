// journey_parts.h - hands and eyes of the journey, for its parts in other files
//
// What each does stands in journey.cpp.

#pragma once
#include "programs/journey.h"

class QPushButton;

namespace velmor
{

void check(bool good, const std::string &what);
void step(const char *what);
void picture(int window, const char *name, int scale = 1);
void press(int window, int control);
void click(QPushButton *button);
void choose_entry(int control); // of the menus
void choose(int window, int control, const std::string &name);
void type_into(int window, int control, const std::string &text);
void drop_files(const std::vector<std::string> &files); // on the samples of this computer
std::vector<std::string> names_in(int window, int control);
std::string spool_path(const std::string &name);
std::vector<std::uint8_t> bytes_of(const std::string &path); // of a file, with backslashes
std::string base_name(const std::string &file);              // of a host path

// Boxes from here on, and a box that begins with these words.
void forget_boxes();
bool box_began(const std::string &words);
// The next box that begins with these words has its picture taken.
void picture_box(const std::string &words, const std::string &name);
// The next file dialog chooses these, of one folder.
void files_to_choose(const std::string &folder, const std::vector<std::string> &names);

// AKP programs are made in a folder, imported, sent to the machine and read again.
void bring_akp_programs(const journey &trip);
// The panel of the loaded sampler is opened, its keys are pressed, and its picture is saved.
void walk_panel(const journey &trip, const usb_stop &stop);
// Another folder of configurations: a sampler is set up in it, and ten files of many kinds are sent.
void walk_from_nothing(const journey &trip);
// The disks of the USB samplers are listed, where this system mounts drives.
void list_drive(const journey &trip);

} // namespace velmor
