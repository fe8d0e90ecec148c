// demo_rack.h - the virtual samplers of the demo, their configurations, and a folder of its own
//
// An S3000, an S1000 and an S900 hang on one MIDI cable and tell each other apart by their
// exclusive channels, as in a rack; an S5000 and a Z8 are on the USB. Settings, configurations,
// samples and programs lie in a folder VELMOR-Demo beside the real VELMOR, so nothing of the
// user's is ever touched.

#pragma once
#include "virtual/demo_content.h"
#include "virtual/demo_usb.h"
#include <string>

namespace velmor
{

struct demo_rack {
	timeline time;
	// The dump of an S900 begins as a message to exclusive channel 1 does, so nobody else is
	// there.
	s1000_machine s3000{ s1000_model::s3000, 0 };
	s1000_machine s1000{ s1000_model::s1000, 2 };
	s900_machine s900{ s900_model::s900, 3 };
	bool s3000_on = true;
	machine::bytes played; // what reached the cable beside exclusive messages
	int keyboard = 0;      // its port
	s5000 usb_s5000;
	z4 usb_z8{ z4_model::z8 };

	demo_rack() = default;
	demo_rack(const demo_rack &) = delete;
};

// Fill the machines and plug them in.
void plug_in(demo_rack *rack);
// The folder of the demo, "" where this user has no folder for data.
std::string demo_folder();
// Make that folder, or another, the place of settings and configurations, with the first MIDI
// port chosen.
void use_demo_folder(const std::string &root);
// A configuration for each machine, unless it is there.
void write_demo_configurations(const std::string &root);

} // namespace velmor
