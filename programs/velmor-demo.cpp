// velmor-demo.cpp - the desktop program with virtual samplers plugged in
//
//	velmor-demo                                       the windows, in real time
//	velmor-demo --journey [WAV ...] [--song MIDI] [--out FOLDER]
//	                                                  the main job by itself, in seconds
//
// The samplers, and the folder that it keeps to, are those of demo_rack.h.

#include "platform/backends.h"
#include "platform/signals.h"
#include "programs/demo_rack.h"
#include "programs/journey.h"
#include "programs/options.h"
#include "programs/windowed.h"
#include "src/velmor.h"
#include "ui/qt_ui.h"
#include "ui/translation.h"
#include "virtual/midi_ports.h"
#include "virtual/usb_bus.h"
#include <QApplication>
#include <QLocale>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>

using namespace velmor;

static const char help[] =
	"Usage: velmor-demo [--journey [WAV ...] [--song MIDI] [--out FOLDER]]\n"
	"The whole program with virtual samplers plugged in: an S3000, an S1000 and an S900 on a\n"
	"MIDI cable, an S5000 and a Z8 on the USB. It keeps to a folder of its own, VELMOR-Demo.\n"
	"\n"
	"  --journey [WAV ...]  do the main job without a hand, in seconds, and say what was "
	"done;\n"
	"                       needs no display\n"
	"  --song MIDI          the Standard MIDI File that the journey plays\n"
	"  --out FOLDER         put the pictures and files of the journey there\n"
	"  --version            show the version\n"
	"  --help               show this text\n";

static demo_rack *the_rack;

// ---- Where everything lies ----------------------------------------------------------------------

static void prepare_folder(const std::string &root)
{
	use_demo_folder(root);
	// The log is written where the program runs.
	std::filesystem::current_path(root);
}

// ---- Services -----------------------------------------------------------------------------------

static void install(const ui_service *ui, const clock_service *clock)
{
	host = { .ui = ui,
		.midi = &virtual_midi,
		.net = &posix_net,
		.usb = &virtual_usb,
		.settings = &posix_settings,
		.clock = clock,
		.files = &posix_files,
		.sound = &sndfile_sound,
		.audio = &qt_audio };
}

// Time that jumps to the next thing the samplers do.
static void pass_time(double seconds)
{
	const double end = the_rack->time.now() + seconds;
	the_rack->time.run_until(std::min(the_rack->time.next(), end));
}

static const clock_service jumping_clock = {
	.time_of_day = [] { return 1700000000.0 + the_rack->time.now(); },
	.counter = [] { return the_rack->time.now(); },
	.sleep_ms =
		[](int milliseconds) {
			the_rack->time.run_until(the_rack->time.now() + milliseconds / 1000.0);
		},
};

static ui_service jumping_ui()
{
	ui_service ui = qt_ui;
	ui.pump = [](int max_ms) {
		qt_ui.pump(0);
		journey_glance();
		pass_time(max_ms / 1000.0);
	};
	return ui;
}

// Pages of programs, samples and utilities, and a name that is begun and dropped.
static const std::vector<panel_step> s5000_walk = {
	{ 3 },                          // EDIT PROGRAM
	{ 44 },                         // WHEEL>
	{ 12, nullptr, true },          // F3, the zones
	{ 13 },                         // F4, the filter
	{ 27 },                         // > to the next row
	{ 5 },                          // UTILITIES
	{ 0, "G" }, { 0, "o" }, { 35 }, // Exit
};
static const std::vector<panel_step> z8_walk = {
	{ 19 },                        // Program
	{ 10 },                        // WHEEL>>
	{ 4, nullptr, true },          // F2, the keyspan
	{ 15 },                        // DOWN to the next row
	{ 18 },                        // Sample
	{ 4 },                         // F2, its waveform
	{ 21 },                        // Utilities
	{ 0, "G" }, { 0, "o" }, { 4 }, // F2, CANCEL
};

// ---- The two ways to run --------------------------------------------------------------------------

struct arguments {
	bool travel = false;
	std::vector<std::string> files;
	std::string song, out;
};

static bool read_arguments(int argc, char **argv, arguments *a)
{
	for (int i = 1; i < argc; i++) {
		const std::string word = argv[i];
		if (word == "--journey")
			a->travel = true;
		else if (word == "--out" && i + 1 < argc)
			a->out = std::filesystem::absolute(argv[++i]);
		else if (word == "--song" && i + 1 < argc)
			a->song = std::filesystem::absolute(argv[++i]);
		else if (a->travel && !word.starts_with("--"))
			a->files.push_back(std::filesystem::absolute(word));
		else
			return false;
	}
	return a->travel || argc == 1;
}

// Sound files as they lie about: one as any editor writes it, one of 24 bits and two channels, and
// an old one of 8 bits; for a journey without files of the user.
struct lying_about {
	const char *name;
	u32 bits, channels;
};
static constexpr lying_about sound_files[] = {
	{ "/Vowel.wav", 16, 1 },
	{ "/Choir 24.wav", 24, 2 },
	{ "/Old 8.wav", 8, 1 },
};

static std::string make_file(const std::string &folder, const lying_about &kind)
{
	const demo_sound sound = sung_vowel(22050, 220);
	machine::bytes data;
	for (const int word : sound.words)
		for (u32 channel = 0; channel < kind.channels; channel++) {
			if (kind.bits == 24)
				data.push_back(0);
			if (kind.bits > 8)
				data.push_back(static_cast<u8>(word));
			data.push_back(
				static_cast<u8>(kind.bits == 8 ? (word >> 8) + 128 : word >> 8));
		}
	const u32 bytes = static_cast<u32>(data.size()), frame = kind.bits / 8 * kind.channels;
	// More than one channel makes it an extensible format, and one of PCM.
	const bool extensible = kind.channels > 1;
	const u32 extension[] = { kind.bits << 16 | 22, 0, 1, 0x00100000, 0xAA000080, 0x719B3800 };
	const u32 longer = extensible ? sizeof extension : 0;
	const u32 head[] = { 0x46464952, 36 + longer + bytes, 0x45564157, 0x20746D66, 16 + longer,
		kind.channels << 16 | (extensible ? 0xFFFE : 1), sound.rate, sound.rate * frame,
		kind.bits << 16 | frame };
	const u32 data_head[] = { 0x61746164, bytes };
	const std::string path = folder + kind.name;
	std::ofstream file(path, std::ios::binary);
	file.write(reinterpret_cast<const char *>(head), sizeof head);
	file.write(reinterpret_cast<const char *>(extension), longer);
	file.write(reinterpret_cast<const char *>(data_head), sizeof data_head);
	file.write(reinterpret_cast<const char *>(data.data()), bytes);
	return path;
}

// A waltz for piano, bass and harp, for a journey without a song of the user: a quarter note has
// 960 ticks, and the program plays about a thousand a second.
class song_track
{
public:
	song_track(const char *name, u8 channel) : on(static_cast<u8>(0x90 | channel))
	{
		const std::string text = name;
		bytes = { 0, 0xFF, 0x03, static_cast<u8>(text.size()) };
		bytes.insert(bytes.end(), text.begin(), text.end());
	}
	void play(u32 start, u32 length, int pitch)
	{
		events.insert({ start + length, { on, static_cast<u8>(pitch), 0 } });
		events.insert({ start, { on, static_cast<u8>(pitch), 90 } });
	}
	machine::bytes chunk()
	{
		u32 now = 0;
		for (const auto &[when, event] : events) {
			const u32 delta = when - now; // below 2 to the power of 14
			bytes.push_back(static_cast<u8>(0x80 | delta >> 7));
			bytes.push_back(static_cast<u8>(delta & 0x7F));
			bytes.insert(bytes.end(), event.begin(), event.end());
			now = when;
		}
		bytes.insert(bytes.end(), { 0, 0xFF, 0x2F, 0 });
		const u32 size = static_cast<u32>(bytes.size());
		machine::bytes all;
		all.reserve(8 + bytes.size());
		all.insert(all.end(), { 'M', 'T', 'r', 'k', 0, 0, static_cast<u8>(size >> 8),
					      static_cast<u8>(size) });
		all.insert(all.end(), bytes.begin(), bytes.end());
		return all;
	}

private:
	const u8 on;
	machine::bytes bytes;
	std::multimap<u32, std::array<u8, 3>> events;
};

static std::string make_song(const std::string &folder)
{
	static constexpr int roots[] = { 0, 9, 5, 7 },
			     melody[] = { 16, 12, 14, 19, 17, 12, 11, 14 };
	song_track piano("Grand Piano", 0), bass("Bass", 1), harp("Harp", 2);
	constexpr u32 beat = 960;
	for (u32 bar = 0; bar < 24; bar++) {
		const int root = roots[bar / 2 % 4];
		const u32 start = bar * 3 * beat;
		bass.play(start, 2 * beat, 36 + root);
		for (u32 n : { 1u, 2u })
			for (int third : { 0, 4, 7 })
				piano.play(start + n * beat, beat / 2, 60 + root + third);
		piano.play(start, 3 * beat / 2, 60 + melody[bar % 8]);
		for (u32 n = 0; n < 6 && bar % 4 > 1; n++)
			harp.play(start + n * beat / 2, beat / 3,
				72 + root + static_cast<int>(n) * 4);
	}
	const std::string path = folder + "/Waltz.mid";
	std::ofstream file(path, std::ios::binary);
	machine::bytes all = { 'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 1, 0, 3, 3, 0xC0 };
	for (song_track *track : { &piano, &bass, &harp })
		for (const u8 byte : track->chunk())
			all.push_back(byte);
	file.write(reinterpret_cast<const char *>(all.data()),
		static_cast<std::streamsize>(all.size()));
	return path;
}

// The offscreen platform says at every window what it cannot do.
static void leave_out_platform_remarks(QtMsgType, const QMessageLogContext &, const QString &words)
{
	if (!words.startsWith("This plugin does not support"))
		std::fprintf(stderr, "%s\n", words.toUtf8().constData());
}

// What the journey takes along where the user names nothing.
static void pack(arguments *a)
{
	if (a->out.empty()) {
		std::string pattern =
			std::filesystem::temp_directory_path() / "velmor-journey-XXXXXX";
		a->out = mkdtemp(pattern.data());
	}
	std::filesystem::create_directories(a->out);
	std::filesystem::remove_all(a->out + "/data");
	if (a->files.empty())
		for (const lying_about &kind : sound_files)
			a->files.push_back(make_file(a->out, kind));
	if (a->song.empty())
		a->song = make_song(a->out);
	prepare_folder(a->out + "/data");
}

static int travel(arguments *a)
{
	qInstallMessageHandler(leave_out_platform_remarks);
	pack(a);
	static const ui_service ui = jumping_ui();
	install(&ui, &jumping_clock);
	create_windows();
	start_velmor();
	const auto replug = [](usb_machine &machine) {
		return [&machine] {
			unplug_usb(machine);
			plug_usb(the_rack->time, machine);
		};
	};
	const auto set_up = [root = a->out + "/data"] {
		write_demo_configurations(root);
		load_sampler_list();
	};
	return run_journey({ .sampler = the_rack->s3000,
		.name = "Demo S3000",
		.next_on_the_cable = "Demo S900",
		.usb = { { the_rack->usb_s5000, "Demo S5000", the_rack->usb_s5000.programs.size(),
				 the_rack->usb_s5000.multis, replug(the_rack->usb_s5000),
				 s5000_walk },
			{ the_rack->usb_z8, "Demo Z8", the_rack->usb_z8.programs.size(), {},
				replug(the_rack->usb_z8), z8_walk } },
		.akp_sampler = &the_rack->usb_s5000,
		.song = a->song,
		.played = [] { return the_rack->played; },
		.press_keys = [](machine::bytes keys) { port_wire(the_rack->keyboard).play(keys); },
		.files = a->files,
		.pictures = a->out,
		.set_up = set_up,
		.power = [](bool on) { the_rack->s3000_on = on; } });
}

static int run_demo()
{
	const std::string folder = demo_folder();
	if (folder.empty()) {
		std::fprintf(stderr, "velmor-demo: there is no home folder for its files\n");
		return 1;
	}
	prepare_folder(folder);
	write_demo_configurations(folder);
	install(&qt_ui, &posix_clock);
	load_translation(QLocale::system().uiLanguages());
	create_windows();
	watch_end_signals([] { host.ui->post(end_windows); });
	start_velmor();
	the_rack->time.run_in_real_time();
	return run_windows();
}

int main(int argc, char **argv)
{
	if (answered(argc, argv, "velmor-demo", help))
		return 0;
	arguments a;
	const bool travelling = argc > 1 && !std::strcmp(argv[1], "--journey");
	if (travelling)
		setenv("QT_QPA_PLATFORM", "offscreen", 0);
	else
		hold_end_signals();
	std::unique_ptr<QApplication> application;
	{
		const while_finding_a_display guard;
		application = std::make_unique<QApplication>(argc, argv);
	}
	QApplication::setApplicationName("velmor-demo");
	if (!read_arguments(argc, argv, &a)) {
		std::fprintf(stderr,
			"velmor-demo: these words are no options.\nTry 'velmor-demo --help'.\n");
		return 2;
	}
	static demo_rack r;
	the_rack = &r;
	plug_in(&r);
	const int status = a.travel ? travel(&a) : run_demo();
	std::fflush(nullptr);
	std::_Exit(status);
}
