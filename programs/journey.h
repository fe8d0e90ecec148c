// journey.h - the main job of the program, done by hand on its own windows, and checked

#pragma once
#include "virtual/s1000.h"
#include "virtual/s5000.h"
#include "virtual/usb_sampler.h"
#include <functional>
#include <string>
#include <vector>

namespace velmor
{

// What is done at a sampler's front panel: a key is pressed, by its place in the model's
// table, or a text is typed.
struct panel_step {
	int key;
	const char *typed = nullptr;
	bool pictured = false; // the page that it leads to
};

// A sampler on the USB that the journey comes by.
struct usb_stop {
	usb_sampler &sampler;
	std::string name;                // in the list of samplers
	std::size_t programs;            // that it holds
	std::vector<std::string> multis; // that the program lists
	std::function<void()> replug;    // pulls its cable and puts it in again
	std::vector<panel_step> panel;
};

struct journey {
	s1000_machine &sampler;        // the one behind the configuration name
	std::string name;              // in the list of samplers
	std::string next_on_the_cable; // another one, in the list of samplers
	std::vector<usb_stop> usb;
	const s5000 *akp_sampler;               // one of these, which AKP programs are brought to
	std::string song;                       // a Standard MIDI File, host path
	std::function<machine::bytes()> played; // the notes that reached the cable
	std::function<void(machine::bytes)> press_keys; // of a keyboard at the monitor's input
	std::vector<std::string> files;                 // WAV files to send, host paths
	std::string pictures;                           // folder of the screenshots, host path
	std::function<void()> set_up;    // puts the configurations where the program looks for them
	std::function<void(bool)> power; // switches the sampler on and off
};

// Runs it, prints what it does, and gives the exit status: 0 if every step did what it should.
int run_journey(const journey &trip);

// To be called whenever the system waits: takes the picture of the progress window, and
// answers boxes as a user would.
void journey_glance();

} // namespace velmor
