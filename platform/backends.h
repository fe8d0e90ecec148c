// backends.h - the back ends of this host, for the main functions and for tests
//
// A back end defines its table in its own folder and includes the header of its
// service alone, so this list is the only place that names them all.

#pragma once
#include "platform/drive.h"
#include "platform/host.h"

namespace velmor
{

extern const clock_service posix_clock;
extern const files_service posix_files;
extern const settings_service posix_settings;
extern const net_service posix_net;
extern const midi_service alsa_midi;
extern const usb_service libusb_usb;
extern const sound_service sndfile_sound;
extern const audio_service qt_audio;
extern const drive_service fuse_drive;
// Boxes to standard error, questions answered with OK unless headless_answers says no.
extern const ui_service headless_ui;

} // namespace velmor
