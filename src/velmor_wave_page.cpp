// velmor_wave_page.cpp - the editor of a local sample: its buttons, and the handles in its picture
//
// The picture shows the chosen sample of the spool. Start and end are marks of the editor alone:
// they say what "Trim" keeps and where "Loop here" sets the loop. The loop is the file's own, and
// dropping one of its handles writes the file.
//
// Knows nothing of: toolkits, samplers, what is in the file.

#include "src/velmor_wave_edit.h"
#include <charconv>
#include <cmath>

namespace velmor
{

// ---- What is shown --------------------------------------------------------------------------------

static std::string shown_path;
static u64 shown_frames;
static wave_part marks;

void wave_shown(const std::string &path, u64 frames)
{
	if (path != shown_path || frames != shown_frames) {
		marks = { 0, frames };
		stop_playing();
	}
	shown_path = path;
	shown_frames = frames;
	for (const int button :
		{ wave_trim, wave_loop_here, wave_no_loop, wave_gain, wave_normalise, wave_fade })
		host.ui->set_reason(window_samples, button,
			path.empty() ? tr("Choose a sample on this computer first") : nullptr);
	offer_playing(!path.empty());
}

const std::string &shown_wave()
{
	return shown_path;
}

wave_part wave_marks()
{
	return marks;
}

void set_wave_marks(const wave_part &wanted)
{
	if (!wanted.empty() && wanted.end <= shown_frames)
		marks = wanted;
}

// ---- Changing it ----------------------------------------------------------------------------------

static outcome refusal(const std::string &words)
{
	return { .how = ending::refused, .words = words };
}

static std::string shown_name()
{
	const std::string file = shown_path.substr(shown_path.rfind('\\') + 1);
	return file.substr(0, file.rfind('.'));
}

// One edit of the shown sample. change gives "" or why not, and may say more of what it did.
using wave_change = std::function<std::string(wave_sound *sound, std::string *done)>;

static outcome edit_shown(std::string done, const wave_change &change)
{
	const std::string name = shown_name();
	wave_sound sound;
	std::string why = read_wave_sound(shown_path, &sound);
	if (why.empty())
		why = change(&sound, &done);
	if (!why.empty())
		return refusal(why);
	outcome result = replace_local(
		name, sound.file, format_text(tr("'%s' is as it was before."), name.c_str()));
	if (result.done()) {
		result.line = "'" + name + "': " + done;
		log_line("[I] Edited [%s]: %s\r\n", name.c_str(), done.c_str());
	}
	return result;
}

// Show what has become of it, also where nothing has: a handle goes back then.
static void edit_and_show(const char *done, const wave_change &change)
{
	stop_playing();
	const outcome result = shown_path.empty()
				       ? refusal(tr("Choose a sample on this computer first!"))
				       : edit_shown(done, change);
	if (result.done())
		show_spool();
	else
		show_local_selection();
	show_outcome(result);
}

bool move_wave_loop(const wave_part &loop)
{
	return run_through_gate([loop] {
		edit_and_show(tr("the loop was moved."), [&](wave_sound *sound, std::string *) {
			return set_wave_loop(sound, loop);
		});
	});
}

// ---- Numbers that are typed -------------------------------------------------------------------------

// A point or a comma, whatever the locale.
static bool typed_number(int control, double low, double high, double *number)
{
	std::string typed = host.ui->get_text(window_samples, control);
	for (char &c : typed)
		c = c == ',' ? '.' : c;
	std::size_t first = typed.find_first_not_of(' ');
	if (first == typed.npos)
		return false;
	first += typed[first] == '+' ? 1 : 0;
	const char *end = typed.data() + typed.find_last_not_of(' ') + 1;
	const auto [rest, code] = std::from_chars(typed.data() + first, end, *number);
	return code == std::errc() && rest == end && *number >= low && *number <= high;
}

// ---- Commands -----------------------------------------------------------------------------------------

static void trim()
{
	edit_and_show(tr("what was outside start and end was cut."),
		[](wave_sound *sound, std::string *) { return trim_wave(sound, marks); });
}

static void loop_here()
{
	edit_and_show(tr("it loops from start to end."),
		[](wave_sound *sound, std::string *) { return set_wave_loop(sound, marks); });
}

static void no_loop()
{
	edit_and_show(tr("it does not loop any more."),
		[](wave_sound *sound, std::string *) { return set_wave_loop(sound, {}); });
}

static void change_volume()
{
	double decibels = 0;
	if (!typed_number(wave_gain_decibels, -60, 60, &decibels) || decibels == 0)
		return show_outcome(refusal(tr("Type how many decibels louder (6) or softer (-6) "
					       "it is to be, up to 60.")));
	edit_and_show("", [&](wave_sound *sound, std::string *done) {
		u64 cut = 0;
		const std::string why = change_wave_volume(sound, decibels, &cut);
		*done = format_text(decibels > 0 ? tr("%g dB louder.") : tr("%g dB softer."),
			std::abs(decibels));
		if (cut)
			*done += format_text(tr(" %llu values were cut at full scale."),
				static_cast<unsigned long long>(cut));
		return why;
	});
}

static void normalise()
{
	edit_and_show(tr("its loudest value is full scale."),
		[](wave_sound *sound, std::string *) { return normalise_wave(sound); });
}

static void fade_seam()
{
	double milliseconds = 0;
	if (!typed_number(wave_fade_milliseconds, 0.1, 10000, &milliseconds))
		return show_outcome(
			refusal(tr("Type how many milliseconds the fade is to take, from "
				   "0.1 to 10000.")));
	edit_and_show("", [&](wave_sound *sound, std::string *done) {
		const double wanted = milliseconds * sound->rate / 1000;
		u64 frames = std::max<u64>(1, static_cast<u64>(wanted));
		const std::string why = fade_wave_seam(sound, &frames);
		*done = format_text(tr("the last %.1f ms of its loop lead into its beginning."),
			static_cast<double>(frames) * 1000 / std::max(1u, sound->rate));
		return why;
	});
}

// ---- Rows -----------------------------------------------------------------------------------------------

// clang-format off
static constexpr caption_row wave_captions[] = {
	// window          control                 caption, tooltip, empty
	{ window_samples,  samples_play,           own("Play"), own("Hear the chosen sample of this computer as the sampler will hold it; once more stops it (Space)"), nullptr },
	{ window_samples,  wave_trim,              own("Trim"), own("Cut the chosen sample of this computer to what lies between start and end"), nullptr },
	{ window_samples,  wave_loop_here,         own("Loop here"), own("Loop from start to end, which can be dragged in the picture"), nullptr },
	{ window_samples,  wave_no_loop,           "No Loop", own("Take the loop away; the sound stays"), nullptr },
	{ window_samples,  wave_gain,              own("Volume"), own("Make the sample louder or softer by the decibels in the field"), nullptr },
	{ window_samples,  wave_gain_decibels,     own("Decibels"), own("6 is twice as loud, -6 half as loud"), own("dB") },
	{ window_samples,  wave_normalise,         own("Normalise"), own("Make the sample so loud that its loudest value is full scale"), nullptr },
	{ window_samples,  wave_fade,              own("Fade Seam"), own("Turn the end of the loop slowly into what stands in front of it, so that it comes round without a click"), nullptr },
	{ window_samples,  wave_fade_milliseconds, own("Milliseconds of the fade"), own("How long the fade of the seam is"), own("ms") },
};
static constexpr command_row wave_commands[] = {
	{ window_samples,  samples_play,           play_or_stop,              alone },
	{ window_samples,  wave_trim,              trim,                      alone },
	{ window_samples,  wave_loop_here,         loop_here,                 alone },
	{ window_samples,  wave_no_loop,           no_loop,                   alone },
	{ window_samples,  wave_gain,              change_volume,             alone },
	{ window_samples,  wave_normalise,         normalise,                 alone },
	{ window_samples,  wave_fade,              fade_seam,                 alone },
};
// clang-format on

constinit const window_rows wave_rows = { wave_captions, wave_commands };

} // namespace velmor
