// journey.cpp - the main job of the program, done by hand on its own windows, and checked
//
// A user's way: load a sampler, look at its samples, fetch them all, send some
// WAV files, rename one, delete one; and what happens on the way: a wrong channel, a sampler
// that is off, a cable pulled, a download stopped. Every step is mouse and key events to the
// widgets, and every result is looked up where it must have arrived: in files on
// the disk and in the memory of the virtual sampler.

#include "platform/host.h"
#include "programs/journey_parts.h"
#include "src/velmor_midi.h"
#include "src/velmor_window.h"
#include "ui/parts/entry_list.h"
#include "ui/parts/palette.h"
#include "ui/qt_ui.h"
#include "ui/track_strip_list.h"
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QMouseEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QTabBar>
#include <QThread>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <cstdio>

namespace velmor
{

static journey const *the_trip;
static int failures;
static std::vector<std::string> boxes_seen;
static bool progress_pictured;
static bool stop_wanted; // press Stop when the work is half done

// ---- Telling --------------------------------------------------------------------------------

void check(bool good, const std::string &what)
{
	std::printf("%s %s\n", good ? "  ok    " : "  FAILED", what.c_str());
	std::fflush(stdout);
	if (!good)
		failures++;
}

void step(const char *what)
{
	std::printf("%s\n", what);
}

// As a screen of 100 or 200 % shows it.
void picture(int window, const char *name, int scale)
{
	QWidget *widget = find_widget(window, 0);
	if (!widget)
		return;
	// The screen of the offscreen platform is smaller than a desk's.
	if (window == window_samples)
		widget->resize(1000, 719);
	if (window == window_main)
		widget->resize(992, 600);
	if (window == window_programs)
		widget->resize(1280, 860);
	if (window == window_history)
		widget->resize(920, 520);
	if (window == window_midi_files)
		widget->resize(1100, 720);
	if (window == window_panel)
		widget->resize(980, 400);
	// What was told to the layouts arrives in several rounds.
	for (int round = 0; round < 4; round++)
		QApplication::processEvents();
	const QString file = QString::fromStdString(the_trip->pictures) + "/" + name + ".png";
	QPixmap drawn(widget->size() * scale);
	drawn.setDevicePixelRatio(scale);
	widget->render(&drawn);
	constexpr int smallest = 0; // without loss all the same
	check(drawn.save(file, "PNG", smallest), "picture " + file.toStdString());
}

// ---- Hands ----------------------------------------------------------------------------------

static void click_at(QWidget *widget, const QPoint &place)
{
	const QPointF there = widget->mapToGlobal(place);
	for (QEvent::Type type : { QEvent::MouseButtonPress, QEvent::MouseButtonRelease }) {
		QMouseEvent event(type, QPointF(place), there, Qt::LeftButton,
			type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
			Qt::NoModifier);
		QApplication::sendEvent(widget, &event);
	}
}

void click(QPushButton *button)
{
	std::printf("  press \"%s\"\n", button->text().remove('&').toUtf8().constData());
	click_at(button, button->rect().center());
}

void press(int window, int control)
{
	auto *button = qobject_cast<QPushButton *>(find_widget(window, control));
	if (!button || !button->isVisible() || !button->isEnabled()) {
		check(false,
			format_text("button %d of window %d cannot be pressed", control, window));
		return;
	}
	click(button);
}

// Open the menu that holds the entry, and click on it.
void choose_entry(int control)
{
	auto *entry = qobject_cast<QAction *>(find_control(window_main, control));
	auto *bar = find_widget(window_main, 0)->findChild<QMenuBar *>();
	if (!entry || !bar) {
		check(false, format_text("menu entry %d is missing", control));
		return;
	}
	for (QAction *top : bar->actions()) {
		QMenu *menu = top->menu();
		if (!menu || !menu->actions().contains(entry))
			continue;
		std::printf("  menu \"%s\", \"%s\"\n", top->text().remove('&').toUtf8().constData(),
			entry->text().remove('&').toUtf8().constData());
		click_at(bar, bar->actionGeometry(top).center());
		click_at(menu, menu->actionGeometry(entry).center());
		return;
	}
	check(false, format_text("menu entry %d is in no menu", control));
}

static entry_list *list_of(int window, int control)
{
	return dynamic_cast<entry_list *>(find_widget(window, control));
}

std::vector<std::string> names_in(int window, int control)
{
	std::vector<std::string> names;
	const entry_list *list = list_of(window, control);
	for (int i = 0; list && i < list->count(); i++)
		names.push_back(list->name_of(i).toStdString());
	return names;
}

void choose(int window, int control, const std::string &name)
{
	entry_list *list = list_of(window, control);
	const int found = list ? list->place_of(QString::fromStdString(name)) : -1;
	if (found < 0) {
		check(false, "\"" + name + "\" is not in the list");
		return;
	}
	list->scrollToItem(list->entry(found));
	click_at(list->viewport(), list->place_on_screen(found).center());
}

void type_into(int window, int control, const std::string &text)
{
	QWidget *field = find_widget(window, control);
	field->setFocus();
	if (auto *line = qobject_cast<QLineEdit *>(field))
		line->selectAll();
	for (QChar letter : QString::fromStdString(text)) {
		QKeyEvent down(QEvent::KeyPress, 0, Qt::NoModifier, letter);
		QApplication::sendEvent(field, &down);
		QKeyEvent up(QEvent::KeyRelease, 0, Qt::NoModifier, letter);
		QApplication::sendEvent(field, &up);
	}
}

void drop_files(const std::vector<std::string> &files)
{
	entry_list *list = list_of(window_samples, samples_local_list);
	QMimeData data;
	QList<QUrl> urls;
	for (const std::string &file : files)
		urls += QUrl::fromLocalFile(QString::fromStdString(file));
	data.setUrls(urls);
	const QPoint middle = list->viewport()->rect().center();
	QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
	QApplication::sendEvent(list->viewport(), &enter);
	QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
	QApplication::sendEvent(list->viewport(), &drop);
	QApplication::processEvents();
}

void journey_glance()
{
	auto *bar = qobject_cast<QProgressBar *>(find_control(window_progress, progress_bar));
	if (!the_trip || !bar || !bar->isVisible() ||
		!bar->window()->windowTitle().startsWith("Download") ||
		bar->value() * 2 < bar->maximum())
		return;
	if (stop_wanted) {
		stop_wanted = false;
		press(window_progress, progress_stop);
	} else if (!progress_pictured) {
		progress_pictured = true;
		picture(window_progress, "progress");
	}
}

// The files that the next dialog is to choose, and the box that is to be pictured.
static std::string folder_wanted, box_wanted, box_picture;
static std::vector<std::string> files_wanted;

void files_to_choose(const std::string &folder, const std::vector<std::string> &names)
{
	folder_wanted = folder;
	files_wanted = names;
}

void picture_box(const std::string &words, const std::string &name)
{
	box_wanted = words;
	box_picture = the_trip->pictures + "/" + name + ".png";
}

void forget_boxes()
{
	boxes_seen.clear();
}

bool box_began(const std::string &words)
{
	return std::any_of(boxes_seen.begin(), boxes_seen.end(),
		[&](const std::string &box) { return box.starts_with(words); });
}

// Names in quotation marks, as a person types several, and Return.
static void answer_file_dialog(QFileDialog *dialog)
{
	auto *field = dialog->findChild<QLineEdit *>("fileNameEdit");
	dialog->setDirectory(QString::fromStdString(folder_wanted));
	std::string typed;
	for (const std::string &name : files_wanted)
		typed += (typed.empty() ? "\"" : " \"") + name + "\"";
	std::printf("  choose %s\n", typed.c_str());
	field->setText(QString::fromStdString(typed));
	QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
	QApplication::sendEvent(field, &enter);
}

// A box opens in the middle of a press; this reads it and presses its OK.
static void answer_box()
{
	if (auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget()))
		answer_file_dialog(dialog);
	auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
	if (!box)
		return;
	boxes_seen.push_back(box->text().toStdString());
	if (!box_wanted.empty() && boxes_seen.back().starts_with(box_wanted)) {
		box_wanted.clear();
		check(box->grab().save(QString::fromStdString(box_picture)),
			"picture " + box_picture);
	}
	std::printf("  box \"%s\": %s\n", box->windowTitle().toUtf8().constData(),
		box->text().toUtf8().constData());
	QPushButton *yes = qobject_cast<QPushButton *>(box->button(QMessageBox::Ok));
	click_at(yes, yes->rect().center());
}

static bool box_said(const char *words)
{
	return std::find(boxes_seen.begin(), boxes_seen.end(), words) != boxes_seen.end();
}

// ---- Eyes -----------------------------------------------------------------------------------

static std::string machine_name(const stored_sample &sample)
{
	return machine::get_name(sample.header, 3);
}

static std::vector<std::string> machine_names()
{
	std::vector<std::string> names;
	for (const stored_sample &sample : the_trip->sampler.samples)
		names.push_back(machine_name(sample));
	return names;
}

static const stored_sample *on_machine(const std::string &name)
{
	for (const stored_sample &sample : the_trip->sampler.samples)
		if (machine_name(sample) == name)
			return &sample;
	return nullptr;
}

std::string spool_path(const std::string &name)
{
	return current_config_path + "\\sample\\" + file_name_of(name) + ".wav";
}

std::vector<u8> bytes_of(const std::string &path)
{
	file_info info;
	int file;
	if (host.files->stat(path.c_str(), &info) ||
		host.files->open(path.c_str(), file_read, &file))
		return {};
	std::vector<u8> bytes(info.size);
	std::size_t moved = 0;
	host.files->read(file, bytes.data(), bytes.size(), &moved);
	host.files->close(file);
	bytes.resize(moved);
	return bytes;
}

// What stands in a file from at on, as words; the head of the program's own files takes 144
// bytes.
static std::vector<std::int16_t> words_of(const std::string &path, std::size_t at)
{
	const std::vector<u8> bytes = bytes_of(path);
	std::vector<std::int16_t> words;
	for (std::size_t i = at; i + 1 < bytes.size(); i += 2)
		words.push_back(static_cast<std::int16_t>(bytes[i] | bytes[i + 1] << 8));
	return words;
}

// The names of a sampler: capitals, and a full stop for what its alphabet lacks.
static std::string sampler_name_of(const std::string &name)
{
	machine::bytes block(machine::name_size);
	machine::put_name(block, 0, name);
	return machine::get_name(block, 0);
}

// ---- The way --------------------------------------------------------------------------------

static void begin()
{
	step("Start for the first time");
	picture(window_main, "main-first-start");
	the_trip->set_up();
	check(!names_in(window_main, main_sampler_list).empty(), "the samplers are listed");
}

static void look_at_setup()
{
	step("Look at the settings and at the sampler dialog");
	choose_entry(menu_settings);
	picture(window_settings, "settings");
	press(window_settings, control_cancel);
	choose_entry(menu_midi_samplers);
	picture(window_sampler, "sampler-new");
	press(window_sampler, control_cancel);
}

static void load()
{
	step("Load the sampler");
	choose(window_main, main_sampler_list, the_trip->name);
	press(window_main, main_load);
	check(current_sampler && current_sampler->sampler_description == the_trip->name,
		the_trip->name + " is loaded");
	picture(window_main, "main");
	choose_entry(menu_midi_samplers);
	picture(window_sampler, "sampler");
	press(window_sampler, control_cancel);
}

static void list_samples()
{
	step("List its samples");
	press(window_main, main_samples);
	check(names_in(window_samples, samples_loaded_list) == machine_names(),
		format_text("the list shows the %zu samples of the sampler",
			the_trip->sampler.samples.size()));
}

// Whatever keeps the sampler from answering: nothing of it is shown, nothing is sent to it, and
// the list is back as soon as it is.
static void meet_silence(
	const char *why, const std::function<void(bool)> &silence, const char *name)
{
	step(why);
	const std::vector<std::string> before = machine_names();
	silence(true);
	press(window_samples, samples_refresh);
	check(list_of(window_samples, samples_loaded_list)->chosen() < 0,
		"no sample can be chosen that may not be there");
	picture(window_samples, name);
	silence(false);
	const int retry = samples_retry, refresh = samples_refresh;
	press(window_samples, host.ui->exists(window_samples, retry) ? retry : refresh);
	check(machine_names() == before, "the sampler is as it was");
	check(names_in(window_samples, samples_loaded_list) == before, "its list is back");
}

static void stop_download(const std::function<std::vector<std::string>()> &on_sampler)
{
	step("Stop a download in the middle");
	const std::vector<std::string> before = on_sampler();
	stop_wanted = true;
	press(window_samples, samples_download_all);
	check(!stop_wanted, "there was something to stop");
	stop_wanted = false;
	check(!find_widget(window_progress, progress_bar)->isVisible(), "the work has ended");
	press(window_progress, progress_close);
	press(window_samples, samples_refresh);
	check(on_sampler() == before && names_in(window_samples, samples_loaded_list) == before,
		"the sampler answers and is as it was");
}

static void download_all()
{
	step("Download all samples");
	press(window_samples, samples_download_all);
	for (const stored_sample &sample : the_trip->sampler.samples) {
		const std::string path = spool_path(machine_name(sample));
		check(words_of(path, 144) == sample.words,
			format_text("%s holds the sampler's %zu words",
				host.files->host_path(path.c_str()).c_str(), sample.words.size()));
	}
}

std::string base_name(const std::string &file)
{
	const std::string name = file.substr(file.rfind('/') + 1);
	return name.substr(0, name.rfind('.'));
}

static void upload(const std::string &file)
{
	const std::string name = base_name(file);
	choose(window_samples, samples_local_list, name);
	boxes_seen.clear();
	press(window_samples, samples_upload);
	check(box_said("Sample successfully uploaded!"), name + " was sent");
	const stored_sample *arrived = on_machine(sampler_name_of(name));
	check(arrived && !arrived->words.empty(),
		"the sampler holds " + sampler_name_of(name) +
			(arrived ? format_text(", %zu words", arrived->words.size()) : ""));
}

static void import_and_upload()
{
	step("Drop WAV files on the list, and upload them");
	drop_files(the_trip->files);
	check(box_said(format_text(
		      "%zu/%zu files converted!", the_trip->files.size(), the_trip->files.size())
			       .c_str()),
		"every file was converted");
	for (const std::string &file : the_trip->files)
		upload(file);
}

static void rename_one()
{
	step("Rename a sample on the sampler");
	// A file of the same name in small letters may have made a second one of that name.
	std::vector<std::string> names = machine_names();
	const std::string old_name = names.front();
	names.front() = "JOURNEY";
	choose(window_samples, samples_loaded_list, old_name);
	type_into(window_samples, samples_loaded_new_name, "JOURNEY");
	press(window_samples, samples_loaded_rename);
	check(machine_names() == names, "the sampler calls " + old_name + " JOURNEY now");
}

static void delete_one()
{
	step("Delete a sample on the sampler");
	const std::size_t before = the_trip->sampler.samples.size();
	choose(window_samples, samples_loaded_list, "JOURNEY");
	press(window_samples, samples_loaded_delete);
	check(!on_machine("JOURNEY") && the_trip->sampler.samples.size() == before - 1,
		"JOURNEY is gone from the sampler");
	check(names_in(window_samples, samples_loaded_list) == machine_names(),
		"the list agrees with the sampler");
}

// The first sample that loops, as a picture of it shows most.
static std::string looped_name()
{
	for (const stored_sample &sample : the_trip->sampler.samples)
		if (machine_name(sample).starts_with("STRING"))
			return machine_name(sample);
	return machine_name(the_trip->sampler.samples.front());
}

static void look_closer()
{
	step("Look at a sample on both sides");
	choose(window_samples, samples_loaded_list, machine_names()[1]);
	press(window_samples, samples_loaded_info);
	check(host.ui->get_text(window_samples, samples_detail_origin) == "LOADED",
		"the sampler told about its sample");
	choose(window_samples, samples_local_list, looped_name());
	press(window_samples, samples_local_info);
	check(host.ui->get_text(window_samples, samples_detail_origin) == "LOCAL",
		"the file told about its sample");
	picture(window_samples, "samples");
	picture(window_samples, "samples-200", 2);
	use_palette(true);
	picture(window_samples, "samples-dark");
	picture(window_main, "main-dark");
	use_palette(false);
	press(window_main, main_multis);
	picture(window_multis, "multis");
}

static std::vector<std::string> names_on(const usb_stop &stop)
{
	std::vector<std::string> names;
	for (const usb_sample &sample : stop.sampler.samples)
		names.push_back(sample.name);
	return names;
}

static void load_usb(const usb_stop &stop)
{
	step(("Load the " + stop.name + " on the USB, and list what it holds").c_str());
	choose(window_main, main_sampler_list, stop.name);
	press(window_main, main_load);
	check(current_sampler && current_sampler->sampler_usbname == stop.sampler.name,
		stop.name + " is loaded");
	press(window_main, main_multis);
	const _dev_status *status = current_sampler ? current_sampler->status : nullptr;
	check(status && status->programs == static_cast<i32>(stop.programs),
		format_text("its %zu programs were read", stop.programs));
	check(names_in(window_multis, multis_list) == stop.multis,
		format_text("the list shows its %zu multis", stop.multis.size()));
	press(window_main, main_samples);
	const std::vector<std::string> names = names_on(stop);
	check(names_in(window_samples, samples_loaded_list) == names,
		format_text("the list shows its %zu samples", names.size()));
}

static void replug(const usb_stop &stop)
{
	step("Pull its cable and put it in again");
	stop.replug();
	press(window_samples, samples_refresh);
	check(names_in(window_samples, samples_loaded_list) == names_on(stop),
		"its samples are listed as before");
}

static void transfer_usb(const usb_stop &stop)
{
	step("Download a sample from it, and upload one to it");
	const usb_sample first = stop.sampler.samples.front();
	choose(window_samples, samples_loaded_list, first.name);
	press(window_samples, samples_download);
	const std::string path = spool_path(first.name);
	check(bytes_of(path) == first.wave,
		format_text("%s is the sampler's %zu bytes",
			host.files->host_path(path.c_str()).c_str(), first.wave.size()));
	const std::string sent = base_name(the_trip->files.front());
	choose(window_samples, samples_local_list, sent);
	press(window_samples, samples_upload);
	const auto arrived = std::find_if(stop.sampler.samples.begin(), stop.sampler.samples.end(),
		[&](const usb_sample &sample) { return sample.name == sent; });
	check(arrived != stop.sampler.samples.end() && arrived->wave == bytes_of(spool_path(sent)),
		"the sampler holds the file " + sent);
}

static void look_at_usb()
{
	step("Look at the USB samplers");
	choose_entry(menu_usb_samplers);
	check(host.ui->get_text(window_usb, usb_name) == "Demo S5000",
		"the S5000 on the USB told its name");
	picture(window_usb, "usb");
	press(window_usb, control_cancel);
}

// ---- Programs -----------------------------------------------------------------------------------

static std::string unsent()
{
	return host.ui->get_text(window_programs, programs_unsent);
}

// The last key of a keygroup of the program that is shown.
static int high_note_of(int keygroup)
{
	const _dev_status *status = current_sampler ? current_sampler->status : nullptr;
	return status && current_pgm_index >= 0 && current_pgm_index < status->programs
		       ? status->program[current_pgm_index].keygroup[keygroup].high_note
		       : -1;
}

static void show_tab(int tab)
{
	auto *bar = qobject_cast<QTabBar *>(find_widget(window_programs, programs_tabs));
	click_at(bar, bar->tabRect(tab).center());
}

static void type_key(QWidget *widget, int key, Qt::KeyboardModifiers modifiers)
{
	widget->setFocus();
	QKeyEvent down(QEvent::KeyPress, key, modifiers);
	QApplication::sendEvent(widget, &down);
}

// One key less for the first keygroup, taken back and made again, sent, and read anew.
static void edit_program_on(const std::string &name, const std::string &pictured)
{
	step(("Edit a program of the " + name + ", send it and read it back").c_str());
	press(window_main, main_programs);
	const std::vector<std::string> names = names_in(window_programs, programs_loaded_list);
	check(!names.empty(), format_text("the list shows its %zu programs", names.size()));
	if (names.empty())
		return;
	choose(window_programs, programs_loaded_list, names.front());
	press(window_programs, programs_information);
	show_tab(1);
	const int before = high_note_of(0);
	type_key(find_widget(window_programs, programs_key_map), Qt::Key_Left, Qt::ShiftModifier);
	check(high_note_of(0) == before - 1 && unsent() == "1 change unsent",
		"its first keygroup ends a key lower, unsent");
	press(window_programs, programs_undo);
	check(high_note_of(0) == before && unsent().empty(), "undone, nothing is unsent");
	press(window_programs, programs_redo);
	picture(window_programs, pictured.c_str());
	press(window_programs, programs_life_update);
	check(unsent().empty(), "it was sent");
	press(window_programs, programs_refresh);
	check(high_note_of(0) == before - 1, "the sampler holds it as it was sent");
}

// ---- Music ----------------------------------------------------------------------------------

// Timers run on the real clock, so it goes on a little too.
static void let_pass(double seconds)
{
	for (const double end = host.clock->counter() + seconds; host.clock->counter() < end;) {
		host.ui->pump(10);
		QThread::msleep(1);
	}
}

static bool drop_song(const std::string &path)
{
	auto *list = dynamic_cast<track_list *>(find_widget(window_midi_files, player_tracks));
	QMimeData data;
	data.setUrls({ QUrl::fromLocalFile(QString::fromStdString(path)) });
	QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
	QApplication::sendEvent(list->viewport(), &enter);
	QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
	QApplication::sendEvent(list->viewport(), &drop);
	QApplication::processEvents();
	check(have_midi_file, format_text("%d tracks are loaded", current_midi_file.ntrks));
	return have_midi_file;
}

static QCheckBox *mute_of(int track)
{
	auto *list = dynamic_cast<track_list *>(find_widget(window_midi_files, player_tracks));
	track_row *row = list->row_of(track);
	return row ? row->frame->findChild<QCheckBox *>() : nullptr;
}

static void play_song()
{
	step("Play a MIDI file to the sampler");
	choose_entry(menu_midi_files);
	picture(window_midi_files, "player-empty");
	if (!drop_song(the_trip->song))
		return;
	const std::size_t before = the_trip->played().size();
	press(window_midi_files, player_play);
	let_pass(4);
	check(the_trip->played().size() > before + 30, "its notes reach the sampler's cable");
	const int muted = current_midi_file.ntrks > 1 ? 1 : 0;
	if (QCheckBox *mute = mute_of(muted))
		click_at(mute, QPoint(8, mute->height() / 2));
	check(current_midi_file.track[static_cast<std::size_t>(muted)].is_mute,
		"one track is mute");
	let_pass(4.2);
	picture(window_midi_files, "player");
	use_palette(true);
	picture(window_midi_files, "player-dark");
	use_palette(false);
	picture(window_midi_files, "player-200", 2);
	press(window_midi_files, player_stop);
	const machine::bytes played = the_trip->played();
	check(played.size() > 3 && played[played.size() - 3] == 0xBE,
		"Stop ends the notes of its channels");
	press(window_midi_files, player_unload);
	velmor_command(window_midi_files, control_cancel);
}

static void play_by_hand()
{
	step("Play a test note, then a keyboard through the monitor");
	choose_entry(menu_midi_samplers);
	press(window_sampler, sampler_note_on);
	check(the_trip->played().back() == 65, "the note is on");
	press(window_sampler, sampler_monitor_on);
	for (u8 note : { 60, 64, 67 }) {
		the_trip->press_keys({ 0x90, note, 100 });
		let_pass(0.3);
		the_trip->press_keys({ 0x80, note, 0 });
		let_pass(0.2);
	}
	check(the_trip->played().size() > 6 && the_trip->played().end()[-2] == 67,
		"the keyboard reaches the sampler");
	picture(window_sampler, "sampler-monitor");
	picture(window_main, "main-monitor");
	press(window_sampler, sampler_monitor_off);
	press(window_sampler, control_cancel);
	check(the_trip->played().end()[-3] == 0x80, "closing the dialog ends the test note");
}

// "Demo S900" has its picture as "programs-S900".
static std::string picture_of_programs(const std::string &name)
{
	return "programs-" + name.substr(name.rfind(' ') + 1);
}

static void visit_next_on_the_cable()
{
	const std::string &name = the_trip->next_on_the_cable;
	step(("Load the " + name + " on the same cable").c_str());
	choose(window_main, main_sampler_list, name);
	press(window_main, main_load);
	check(current_sampler && current_sampler->sampler_description == name, name + " is loaded");
	edit_program_on(name, picture_of_programs(name));
}

static void picture_programs()
{
	show_tab(3);
	picture(window_programs, "programs-envelopes");
	show_tab(1);
	use_palette(true);
	picture(window_programs, "programs-dark");
	use_palette(false);
	picture(window_programs, "programs-200", 2);
}

static void visit_usb(const usb_stop &stop)
{
	load_usb(stop);
	stop_download([&stop] { return names_on(stop); });
	replug(stop);
	transfer_usb(stop);
	edit_program_on(stop.name, picture_of_programs(stop.name));
	if (&stop.sampler == the_trip->akp_sampler)
		bring_akp_programs(*the_trip);
	walk_panel(*the_trip, stop);
}

int run_journey(const journey &trip)
{
	the_trip = &trip;
	QTimer eyes;
	QObject::connect(&eyes, &QTimer::timeout, answer_box);
	eyes.start(1);
	QApplication::processEvents();
	begin();
	look_at_setup();
	load();
	list_samples();
	meet_silence(
		"Ask on a channel on which nobody is",
		[](bool wrong) { the_trip->sampler.channel = wrong ? 5 : 0; }, "samples-channel");
	meet_silence(
		"Ask a sampler that is switched off", [](bool off) { the_trip->power(!off); },
		"samples-silent");
	stop_download(machine_names);
	download_all();
	import_and_upload();
	rename_one();
	delete_one();
	look_closer();
	edit_program_on(trip.name, "programs");
	picture_programs();
	play_song();
	play_by_hand();
	visit_next_on_the_cable();
	look_at_usb();
	for (const usb_stop &stop : trip.usb)
		visit_usb(stop);
	list_drive(trip);
	picture(window_multis, "multis-usb");
	walk_from_nothing(trip);
	std::printf("WAV files: %s\nScreenshots: %s\n",
		host.files->host_path((current_config_path + "\\sample").c_str()).c_str(),
		trip.pictures.c_str());
	std::printf(failures ? "%d steps FAILED\n" : "Every step did what it should.\n", failures);
	the_trip = nullptr;
	return failures ? 1 : 0;
}

} // namespace velmor
