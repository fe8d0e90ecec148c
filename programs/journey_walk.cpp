// journey_walk.cpp - from an empty configuration to ten mixed sound files on a sampler, and a backup
//
// The way of somebody who has never seen the program: each step is where a window leads to.

#include "programs/journey_parts.h"
#include "src/velmor_window.h"
#include "ui/parts/entry_list.h"
#include "ui/parts/palette.h"
#include "ui/qt_ui.h"
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QPushButton>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <sndfile.h>

namespace velmor
{

// ---- Ten files as they lie about ----------------------------------------------------------------

struct mixed_file {
	const char *name;
	int format, rate, channels;
	double pitch; // Hz
	bool looped;
};

static constexpr mixed_file mixed_files[] = {
	{ "Bass.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 1, 55, true },
	{ "Birds.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 44100, 2, 1760, false },
	{ "Choir in the church.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 48000, 2, 220, false },
	{ "Flute.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 48000, 1, 880, false },
	{ "Gong.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16, 44100, 2, 110, false },
	{ "Piano.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 44100, 2, 262, false },
	{ "Radio.wav", SF_FORMAT_WAV | SF_FORMAT_ALAW, 8000, 1, 440, false },
	{ "Rim.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 22050, 1, 660, false },
	{ "Strings.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 96000, 2, 196, false },
	{ "Tape.wav", SF_FORMAT_RF64 | SF_FORMAT_PCM_16, 32000, 1, 330, false },
};
static constexpr int tenths = 3; // of a second, each

// A tone that dies away.
static void write_file(const std::string &path, const mixed_file &file)
{
	SF_INFO info = {};
	info.format = file.format;
	info.samplerate = file.rate;
	info.channels = file.channels;
	SNDFILE *sound = sf_open(path.c_str(), SFM_WRITE, &info);
	if (!sound)
		return check(false, path + " is written");
	const int frames = file.rate * tenths / 10;
	if (file.looped) {
		SF_INSTRUMENT loop = {};
		loop.basenote = 33;
		loop.loop_count = 1;
		loop.loops[0] = { SF_LOOP_FORWARD, static_cast<std::uint32_t>(frames / 2),
			static_cast<std::uint32_t>(frames), 0 };
		sf_command(sound, SFC_SET_INSTRUMENT, &loop, sizeof loop);
	}
	std::vector<double> values;
	for (int n = 0; n < frames * file.channels; n++) {
		const int frame = n / file.channels;
		values.push_back(0.7 * std::exp(-3.0 * frame / frames) *
				 std::sin(2 * M_PI * file.pitch * frame / file.rate));
	}
	sf_writef_double(sound, values.data(), frames);
	sf_close(sound);
}

// ---- The way ------------------------------------------------------------------------------------

static std::vector<std::string> names_on(const journey &trip)
{
	std::vector<std::string> names;
	for (const stored_sample &sample : trip.sampler.samples)
		names.push_back(machine::get_name(sample.header, 3));
	return names;
}

static void choose_all(int control)
{
	QWidget *list = find_widget(window_samples, control);
	list->setFocus();
	QKeyEvent all(QEvent::KeyPress, Qt::Key_A, Qt::ControlModifier);
	QApplication::sendEvent(list, &all);
}

// The cards of a first start have the captions of the menu.
static void press_card(const char *words)
{
	for (QPushButton *button : find_widget(window_main, 0)->findChildren<QPushButton *>())
		if (button->isVisible() && button->text().remove('&') == words)
			return click(button);
	check(false, std::string("a card says ") + words);
}

static const std::string rack = "S3000 in the rack";

static void set_up_by_hand(const journey &trip)
{
	step("Begin anew, with nothing set up");
	choose_entry(menu_settings);
	type_into(window_settings, settings_config_path, trip.pictures + "/walk");
	press(window_settings, control_ok);
	check(names_in(window_main, main_sampler_list).empty(), "no sampler is listed");
	picture(window_main, "walk-start");
	press_card("Manage MIDI Samplers");
	type_into(window_sampler, sampler_name, rack);
	auto *brand = qobject_cast<QComboBox *>(find_widget(window_sampler, sampler_brand_list));
	for (int i = 0; i < brand->count(); i++)
		if (brand->itemText(i).contains("S3000"))
			brand->setCurrentIndex(i);
	press(window_sampler, sampler_device_info);
	picture(window_sampler, "sampler-answers");
	check(!host.ui->get_text(window_sampler, sampler_verdict).empty(), "the sampler answers");
	press(window_sampler, control_ok);
	choose(window_main, main_sampler_list, rack);
	press(window_main, main_load);
	check(current_sampler && current_sampler->sampler_description == rack, "it is loaded");
	picture(window_main, "walk-loaded");
	press(window_main, main_samples);
	check(names_in(window_samples, samples_loaded_list) == names_on(trip),
		"its samples are listed");
	picture(window_samples, "walk-empty");
}

static void send_all_of_them(const journey &trip)
{
	step("Drop ten mixed sound files on the list, and upload them together");
	std::vector<std::string> files;
	const std::string folder = trip.pictures + "/mixed";
	std::filesystem::create_directories(folder);
	for (const mixed_file &file : mixed_files) {
		files.push_back(folder + "/" + file.name);
		write_file(files.back(), file);
	}
	drop_files(files);
	const std::size_t count = std::size(mixed_files);
	check(names_in(window_samples, samples_local_list).size() == count,
		"all ten lie on this computer");
	picture(window_samples, "walk-imported");
	choose_all(samples_local_list);
	picture(window_samples, "samples-several");
	press(window_samples, samples_fit);
	picture(window_samples, "walk-fitted");
	const std::size_t before = trip.sampler.samples.size();
	press(window_samples, samples_upload); // they are chosen still
	picture(window_progress, "queue");
	use_palette(true);
	picture(window_progress, "queue-dark");
	use_palette(false);
	check(trip.sampler.samples.size() == before + count, "all ten are on the sampler");
	press(window_progress, progress_close);
	picture(window_samples, "walk-uploaded");
}

static void take_back(const journey &trip)
{
	step("Delete one of them on the sampler, and take that back");
	const std::vector<std::string> before = names_on(trip);
	choose(window_samples, samples_loaded_list, before.back());
	press(window_samples, samples_loaded_delete);
	check(names_on(trip).size() == before.size() - 1, before.back() + " is gone");
	choose_entry(menu_history);
	picture(window_history, "history");
	picture(window_history, "history-200", 2);
	use_palette(true);
	picture(window_history, "history-dark");
	use_palette(false);
	velmor_command(window_history, control_cancel);
	press(window_samples, status_undo_sampler);
	check(names_on(trip) == before, before.back() + " is back");
}

static void keep_it_all(const journey &trip)
{
	step("Bring all that the sampler holds into a folder");
	choose_entry(menu_backup);
	picture(window_backup, "walk-backup-before");
	press(window_backup, backup_begin);
	check(names_in(window_backup, backup_list).size() >= trip.sampler.samples.size(),
		"the backup lists what the sampler holds");
	picture(window_backup, "backup");
	velmor_command(window_backup, control_cancel);
	choose_entry(menu_settings);
	press(window_settings, settings_self_test);
	press(window_self_test, self_test_begin);
	picture(window_self_test, "self-test");
	velmor_command(window_self_test, control_cancel);
	velmor_command(window_settings, control_cancel);
}

void walk_from_nothing(const journey &trip)
{
	set_up_by_hand(trip);
	send_all_of_them(trip);
	take_back(trip);
	keep_it_all(trip);
}

} // namespace velmor
