// host.h - the services of the host that are in use
//
// The main function of a program installs real ones, a test installs its own.
// Nothing else is a seam.

#pragma once
#include "platform/audio.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/midi.h"
#include "platform/net.h"
#include "platform/settings.h"
#include "platform/sound.h"
#include "platform/ui.h"
#include "platform/usb.h"

namespace velmor
{

struct host_services {
	const ui_service *ui;
	const midi_service *midi;
	const net_service *net;
	const usb_service *usb;
	const settings_service *settings;
	const clock_service *clock;
	const files_service *files;
	const sound_service *sound = nullptr; // of programs that import sounds
	const audio_service *audio = nullptr; // of programs that play them
};

// Set once by the main function before the system starts; all services are present.
extern host_services host;

} // namespace velmor
