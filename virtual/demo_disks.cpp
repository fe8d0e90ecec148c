// demo_disks.cpp - what the disks of the demo's USB samplers hold

#include "virtual/demo_disks.h"
#include <cstdio>

namespace velmor
{

// Sizes as such files have them: a sample is its header and 44100 words a second and channel.
static std::uint32_t mono(double seconds)
{
	return 144 + 2 * static_cast<std::uint32_t>(44100 * seconds);
}
static std::uint32_t stereo(double seconds)
{
	return 2 * mono(seconds) - 144;
}
static std::uint32_t program(std::uint32_t keygroups)
{
	return 190 + 344 * keygroups;
}

enum : std::uint8_t {
	floppy = 0,
	hard_disk = 1,
	cd_rom = 2,
	dos_format = 2,
	iso_format = 3,
};

// Every third note of the keyboard in eight layers of velocity.
static disk_folder grand_piano()
{
	static const char *const notes[] = { "C", "D#", "F#", "A" };
	disk_folder folder = { "GRAND PIANO", {}, {} };
	for (unsigned note = 0; note < 25; note++)
		for (unsigned layer = 1; layer <= 8; layer++) {
			char name[32];
			std::snprintf(name, sizeof name, "Grand %s%u v%u.wav", notes[note % 4],
				note / 4 + 1, layer);
			folder.files.push_back({ name, stereo(6.0 - 0.2 * note + 0.1 * layer) });
		}
	return folder;
}

// clang-format off
static const std::vector<disk_folder> studio = {
	{ "DRUMS", {
		{ "Studio Kit", {}, {
			{ "Studio Kit.akp", program(8) }, { "Kick 22in.wav", mono(0.6) },
			{ "Snare Maple.wav", mono(0.5) }, { "Hat Closed.wav", mono(0.1) },
			{ "Hat Open.wav", mono(1.1) } } },
		{ "Brushes", {}, {
			{ "Brush Kit.akp", program(3) }, { "Brush Sweep.wav", stereo(2.4) },
			{ "Brush Tap.wav", mono(0.3) } } },
	}, { { "All Drums.akm", 4210 } } },
	{ "BASS", {}, {
		{ "Finger Bass.akp", program(2) }, { "Finger Bass.wav", mono(2.2) },
		{ "Fretless.akp", program(2) }, { "Fretless E1.wav", mono(3.1) } } },
	{ "VOICES", {}, {
		{ "Choir Aah.akp", program(2) }, { "Choir Aah.wav", stereo(4.0) } } },
};

static const std::vector<disk_folder> strings = {
	{ "ENSEMBLE", {
		{ "SAMPLES", {}, {
			{ "Vl Ens C3 p.wav", stereo(5.2) }, { "Vl Ens C3 f.wav", stereo(4.8) },
			{ "Vc Ens C2 p.wav", stereo(6.0) }, { "Vc Ens C2 f.wav", stereo(5.5) } } },
	}, { { "String Section.akp", program(4) }, { "Slow Strings.akp", program(4) } } },
	{ "SOLO", {}, {
		{ "Solo Violin.akp", program(6) }, { "Violin G3.wav", mono(4.4) },
		{ "Violin D4.wav", mono(4.1) }, { "Violin A4.wav", mono(3.9) } } },
	{ "EFFECTS", {}, {
		{ "Tremolo.akp", program(1) }, { "Tremolo C3.wav", stereo(3.0) },
		{ "Pizzicato.akp", program(1) }, { "Pizz C3.wav", stereo(0.9) } } },
};

static const std::vector<disk_folder> loops = {
	{ "92 BPM", {}, { { "Funk 92 A.wav", stereo(5.217) }, { "Funk 92 B.wav", stereo(5.217) } } },
	{ "120 BPM", {}, { { "House 120.wav", stereo(4.0) }, { "Hats 120.wav", stereo(2.0) } } },
	{ "174 BPM", {}, { { "Break 174.wav", stereo(5.517) } } },
};

static const std::vector<disk_folder> pads = {
	{ "WARM", {}, {
		{ "Warm Pad.akp", program(3) }, { "Warm C2.wav", stereo(7.5) },
		{ "Warm C4.wav", stereo(7.1) } } },
	{ "GLASS", {}, {
		{ "Glass Pad.akp", program(2) }, { "Glass C4.wav", stereo(6.4) } } },
};

void fill_demo_disks_s5000(disk_rack *disks)
{
	disks->volumes = {
		//  id  type       format      id wr  name
		{   1, hard_disk, dos_format,  0, 1, "HARD DISK", studio, { { "Ballad.akm", 2310 }, { "readme.txt", 612 } } },
		{ 130, hard_disk, dos_format,  0, 1, "MULTISAMPLES", { grand_piano() }, { { "Concert Grand.akp", program(25) } } },
		{ 257, cd_rom,    iso_format,  5, 0, "STRINGS CD", strings },
		{ 258, cd_rom,    iso_format,  6, 0, "DRUM LOOPS", loops },
		{   3, floppy,    dos_format, 16, 1, "FLOPPY", {}, { { "Clav.akp", program(1) }, { "Clav C3.wav", mono(1.5) } } },
	};
}

void fill_demo_disks_z8(disk_rack *disks)
{
	disks->volumes = {
		{   1, hard_disk, dos_format,  0, 1, "HARD DISK", studio },
		{ 257, cd_rom,    iso_format,  4, 0, "PADS CD", pads, { { "Contents.txt", 1204 } } },
	};
}
// clang-format on

void fill_disk_for_benchmark(disk_rack *disks, std::size_t folders, std::size_t files)
{
	char name[32];
	disk_volume volume = { 1, hard_disk, dos_format, 0, 1, "BENCH" };
	for (std::size_t f = 0; f < folders; f++) {
		std::snprintf(name, sizeof name, "FOLDER %03zu", f + 1);
		disk_folder folder = { name, {}, {} };
		for (std::size_t i = 0; i < files; i++) {
			std::snprintf(name, sizeof name, "SAMPLE %03zu.WAV", i + 1);
			folder.files.push_back({ name, mono(0.01 * static_cast<double>(i)) });
		}
		volume.folders.push_back(std::move(folder));
	}
	disks->volumes = { std::move(volume) };
}

} // namespace velmor
