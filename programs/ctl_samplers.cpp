// ctl_samplers.cpp - verbs about the samplers themselves: samplers, info

#include "programs/ctl.h"
#include "src/velmor_window.h"
#include <algorithm>

namespace velmor
{

int ctl_samplers(const ctl_call &)
{
	if (conf_sampler.empty())
		ctl_say("No sampler is configured.");
	for (const std::string &name : conf_sampler) {
		_sampler s = {};
		if (!read_configuration(name, &s))
			continue;
		const reached to = { get_sampler(static_cast<i32>(s.sampler_type)),
			static_cast<int>(s.sampler_sysex_channel), s.sampler_usbname };
		const std::string model = to.model ? to.model->sampler_brand : "";
		ctl_print(ctl_object()
				  .text("name", name)
				  .text("model", model)
				  .text("way", way_text(to))
				  .number("channel", to.exclusive_channel),
			name + "\t" + model + "\t" + way_text(to));
	}
	return exit_done;
}

// ---- What a sampler says ------------------------------------------------------------------------

static int tell_of_sampler()
{
	const reached to = loaded_reached();
	char text[256] = "";
	int room = sizeof text;
	const outcome asked = get_device_info(control_channel(),
		static_cast<i32>(current_sampler->sampler_type), exclusive_channel(), text, &room);
	return ctl_tell(current_sampler->sampler_description, asked,
		ctl_object()
			.text("model", to.model ? to.model->sampler_brand : "")
			.text("way", way_text(to)));
}

static double seconds_of(const _sample &sample)
{
	const double words = static_cast<double>(sample.end_position) -
			     static_cast<double>(sample.start_position);
	return sample.sample_rate ? std::max(0.0, words / static_cast<double>(sample.sample_rate))
				  : 0;
}

static void print_sample(const _sample &s)
{
	const double rate = static_cast<double>(s.sample_rate);
	ctl_print(ctl_object()
			  .text("name", s.name)
			  .number("pitch", s.original_pitch)
			  .number("rate", rate)
			  .number("seconds", seconds_of(s))
			  .number("channels", s.channels)
			  .number("bits", s.bitspersample),
		format_text("%s\t%s\t%.0f Hz\t%.2f s\t%u channels\t%u bits", s.name,
			display_midi_note(s.original_pitch), rate, seconds_of(s), s.channels,
			s.bitspersample));
}

int ctl_info(const ctl_call &call)
{
	if (call.words.empty())
		return tell_of_sampler();
	int status = exit_done;
	for (const std::string &name : call.words) {
		const _sample *record = nullptr;
		const outcome asked = ask_sample(name, &record);
		if (record && asked.done())
			print_sample(*record);
		const int one =
			asked.done() && asked.told.empty() ? exit_done : ctl_tell(name, asked);
		status = status ? status : one;
		if (one == exit_no_answer || one == exit_stopped)
			break;
	}
	return status;
}

} // namespace velmor
