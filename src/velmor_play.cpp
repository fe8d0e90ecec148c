// velmor_play.cpp - a sample of the spool through this computer, as the sampler will hold it
//
// What a sampler keeps of a sample is not what the file has: one over MIDI has one channel, the
// S900 has 12 bits and counts its rate otherwise. That is heard here before minutes of transfer
// are spent. What a sampler would refuse is heard as the conversion for it would make it.
//
// Knows nothing of: toolkits, the computer's sound system.

#include "src/velmor_wave_edit.h"
#include <utility>

namespace velmor
{

// ---- What a sampler holds ---------------------------------------------------------------------

struct holding {
	i32 model;         // 0: any other
	u8 flags;          // that its row has
	unsigned bits;     // 0: as many as the file
	unsigned channels; // at most
	u32 rate_times_10; // of the rate that a file has, which the sampler plays
	u32 most_rate;     // of a file that it takes as it stands; 0: any
};

// clang-format off
static constexpr holding holdings[] = {
	// model       flags     bits channels  rate  most_rate
	{ model_s900,  0,        12,  1,        25,   16000 },
	{ 0,           flag_usb,  0,  2,        10,   0 },
	{ 0,           0,        16,  1,        10,   0 },
};
// clang-format on

static const holding &holding_of(const _sampler_type &model)
{
	for (const holding &row : holdings)
		if ((!row.model || row.model == model.sampler_type) &&
			(model.sampler_flags & row.flags) == row.flags)
			return row;
	return holdings[std::size(holdings) - 1];
}

struct held_sound {
	std::vector<std::int16_t> words;
	unsigned bits = 0, channels = 0;
	u32 rate = 0;
	bool converted = false; // the sampler does not take the file as it stands
	wave_part loop;
};

static int as_16_bit(i32 value, unsigned bits)
{
	return bits == 24 ? value >> 8 : bits == 12 ? value * 16 : value;
}

static held_sound held_by(const holding &how, const wave_sound &file)
{
	held_sound held = { .words = {},
		.bits = how.bits ? how.bits : file.bits,
		.channels = std::min(how.channels, file.channels),
		.rate = file.rate,
		.loop = file.loop() };
	held.converted = held.bits != file.bits || held.channels != file.channels ||
			 (how.most_rate && file.rate > how.most_rate);
	if (!held.converted)
		held.rate = static_cast<u32>(u64{ file.rate } * how.rate_times_10 / 10);
	const int kept = held.bits == 12 ? ~15 : ~0;
	held.words.reserve(file.frame_count() * held.channels);
	for (u64 frame = 0; frame < file.frame_count(); frame++)
		for (unsigned channel = 0; channel < held.channels; channel++) {
			int word = as_16_bit(file.value(frame, channel), file.bits);
			if (held.channels < file.channels)
				word = (word + as_16_bit(file.value(frame, 1), file.bits)) >> 1;
			held.words.push_back(static_cast<std::int16_t>(word & kept));
		}
	return held;
}

// ---- Playing ----------------------------------------------------------------------------------

static held_sound playing; // its words live as long as they are heard
static int position_timer;
static std::string no_sound; // why this computer plays nothing

bool is_playing()
{
	return position_timer != 0;
}

void stop_playing()
{
	if (!position_timer)
		return;
	host.ui->stop_timer(std::exchange(position_timer, 0));
	host.audio->stop();
	playing = {};
	host.ui->set_checked(window_samples, samples_play, false);
	host.ui->set_play_position(window_samples, samples_waveform, -1, 0);
}

static void show_position()
{
	const std::int64_t heard = host.audio->position();
	if (heard < 0)
		return stop_playing();
	host.ui->set_play_position(
		window_samples, samples_waveform, heard, static_cast<int>(playing.rate));
}

static outcome told(const std::string &name, const _sampler_type &model)
{
	const char *as = playing.converted ? tr("as a conversion for %s would make it")
					   : tr("as %s will hold it");
	return { .line = format_text(tr("Playing '%s' %s: %u bit, %u Hz, %s%s."), name.c_str(),
			 format_text(as, model.sampler_brand).c_str(), playing.bits, playing.rate,
			 playing.channels == 1 ? tr("mono") : tr("stereo"),
			 playing.loop.empty() ? "" : tr(", looped")) };
}

static outcome begin_playing()
{
	constexpr int a_picture = 30; // milliseconds
	const _sampler_type *model =
		current_sampler ? get_sampler(static_cast<i32>(current_sampler->sampler_type))
				: nullptr;
	if (shown_wave().empty() || !model)
		return { .how = ending::refused,
			.words = tr("Choose a sample on this computer first!") };
	wave_sound file;
	if (const std::string why = read_wave_sound(shown_wave(), &file); !why.empty())
		return { .how = ending::refused, .words = why };
	playing = held_by(holding_of(*model), file);
	no_sound = !host.audio ? tr("This program was made without sound.")
			       : host.audio->play({ .words = playing.words,
					 .sample_rate = playing.rate,
					 .channels = playing.channels,
					 .loop_start = playing.loop.first,
					 .loop_end = playing.loop.end });
	if (!no_sound.empty()) {
		playing = {};
		return { .how = ending::local_failed, .words = no_sound };
	}
	position_timer = host.ui->start_timer(a_picture, show_position);
	const std::string file_name = shown_wave().substr(shown_wave().rfind('\\') + 1);
	return told(file_name.substr(0, file_name.rfind('.')), *model);
}

// It is told once why nothing is heard; from then on the button says it.
void offer_playing(bool shown)
{
	const char *why = !no_sound.empty() ? no_sound.c_str()
			  : shown           ? nullptr
					    : tr("Choose a sample on this computer first");
	host.ui->set_reason(window_samples, samples_play, why);
}

void play_or_stop()
{
	if (is_playing())
		return stop_playing();
	if (!no_sound.empty())
		return;
	const outcome result = begin_playing();
	host.ui->set_checked(window_samples, samples_play, is_playing());
	offer_playing(!shown_wave().empty());
	show_outcome(result);
}

void forget_playing()
{
	stop_playing();
	no_sound.clear();
}

} // namespace velmor
