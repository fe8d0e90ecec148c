// ctl_midi.cpp - verbs about the MIDI ports themselves: play, monitor

#include "programs/ctl.h"
#include "src/controls.h"
#include "src/velmor_midi.h"
#include "src/velmor_monitor.h"
#include "src/velmor_player.h"

namespace velmor
{

static constexpr int look_ms = 50; // longest wait between two looks at a wish to end

// ---- A song -------------------------------------------------------------------------------------

int ctl_play(const ctl_call &call)
{
	speed_factor = call.number("--speed", speed_factor);
	if (speed_factor < slowest_speed || speed_factor > fastest_speed)
		return ctl_usage(format_text(
			"--speed takes a number from %d to %d.", slowest_speed, fastest_speed));
	const std::string path = host.files->system_path(call.words[0].c_str());
	if (!open_midi_file(window_midi_files, path.c_str()))
		return ctl_tell(call.words[0],
			{ .how = ending::local_failed,
				.words = "File cannot be opened (invalid midi-file?)" });
	const std::string length = song_time(song_length());
	ctl_hook.play_position = [&](std::int64_t ticks, int) {
		if (ticks >= 0)
			ctl_show_bar(
				song_time(static_cast<std::uint64_t>(ticks)) + " of " + length);
	};
	ctl_ends_inside(exit_no_answer);
	box_keeper keeper; // of a port that fails on the way
	play_really_all(window_midi_files, &current_midi_file);
	while (song_plays() && !progress_stopped())
		host.ui->pump(look_ms);
	outcome result = { .line = "Played '" + call.words[0] + "'." };
	if (song_plays()) { // its end has let go of all notes
		result = { .how = ending::stopped, .line = "Stopped '" + call.words[0] + "'." };
		stop_really_all(window_midi_files);
	}
	free_midi(&current_midi_file);
	have_midi_file = 0;
	if (!keeper.boxes.empty())
		result = { .how = ending::no_answer, .told = keeper.take() };
	return ctl_tell(call.words[0], result);
}

// ---- What arrives ---------------------------------------------------------------------------------

static constexpr std::string_view received_mark = "[MONITOR]RCVD: [", line_end = "]\r\n";

// The words of one message in the log, "" for another text.
static std::string message_in(const std::string &text)
{
	const std::size_t at = text.find(received_mark);
	const std::size_t end = text.rfind(line_end);
	if (at == text.npos || end == text.npos || end < at + received_mark.size())
		return "";
	const std::size_t begin = at + received_mark.size();
	return text.substr(begin, end - begin);
}

// A text of the log may be several lines.
static void tell_messages(const std::string &text)
{
	for (std::size_t at = 0; at < text.size();) {
		const std::size_t feed = std::min(text.find('\n', at), text.size() - 1);
		const std::string words = message_in(text.substr(at, feed + 1 - at));
		at = feed + 1;
		if (!words.empty())
			ctl_print(ctl_object().text("received", words), words);
	}
}

int ctl_monitor(const ctl_call &call)
{
	ctl_hook.logged = tell_messages;
	monitor_on();
	if (!host.ui->get_text(window_sampler, sampler_monitor_state).starts_with("Listening")) {
		receive_monitor_active = 0;
		return exit_no_answer; // a box has said why
	}
	const double until = host.clock->counter() + call.number("--seconds", 0);
	while (receive_monitor_active && !progress_stopped() &&
		(!call.has("--seconds") || host.clock->counter() < until))
		host.ui->pump(look_ms);
	const bool failed = !receive_monitor_active;
	end_monitor();
	return failed ? exit_no_answer : exit_done;
}

} // namespace velmor
