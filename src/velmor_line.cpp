// velmor_line.cpp - how the sampler is reached, and whether it answers, in words
//
// Knows nothing of: what was asked, the transports beyond their names.

#include "src/velmor_work.h"
#include <ctime>

namespace velmor
{

line_state the_line;

void line_answered()
{
	the_line.answers++;
	the_line.failing = false;
	the_line.answered_at = host.clock->time_of_day();
}

void line_silent(const char *why)
{
	the_line.failures++;
	the_line.failing = true;
	the_line.failed_at = host.clock->time_of_day();
	the_line.why = why ? why : "";
}

void forget_line()
{
	the_line.changes++;
	the_line.answered_at = the_line.failed_at = 0;
	the_line.failing = false;
	the_line.why.clear();
}

// ---- The way ----------------------------------------------------------------------------------

reached loaded_reached()
{
	if (!current_sampler)
		return { nullptr, 0, "" };
	return { get_sampler(static_cast<i32>(current_sampler->sampler_type)),
		static_cast<int>(current_sampler->sampler_sysex_channel),
		current_sampler->sampler_usbname };
}

static bool on_usb(const reached &to)
{
	return to.model && (to.model->sampler_flags & flag_usb);
}

// Name of a chosen port, "" for none.
static std::string port_name(const std::vector<std::string> &ports, int chosen)
{
	return chosen >= 0 && chosen < static_cast<int>(ports.size())
		       ? ports[static_cast<std::size_t>(chosen)]
		       : "";
}

static std::string output_name()
{
	return port_name(midi_out_interface, selected_midi_out_interface);
}

static std::string input_name()
{
	return port_name(midi_in_interface, selected_midi_in_interface);
}

std::string way_text(const reached &to)
{
	if (on_usb(to))
		return format_text(tr("USB '%s'"), to.usb_name.c_str());
	if (use_tcp)
		return format_text("TCP %s:%d", tcp_address, tcp_port);
	const std::string port = output_name();
	return port.empty() ? tr("no MIDI port") : format_text(tr("MIDI '%s'"), port.c_str());
}

// "through 'USB MIDI 1'", with both ports where they have different names.
static std::string through(const reached &to)
{
	if (on_usb(to))
		return tr("on the USB");
	if (use_tcp)
		return format_text(tr("through the TCP bridge at %s:%d"), tcp_address, tcp_port);
	const std::string in = input_name(), out = output_name();
	if (out.empty())
		return tr("over MIDI");
	return in == out ? format_text(tr("through '%s'"), out.c_str())
			 : format_text(tr("through '%s' and '%s'"), out.c_str(), in.c_str());
}

std::string silence_words(const reached &to)
{
	if (on_usb(to))
		return format_text(tr("No answer from '%s' on the USB. Is the sampler on, and its "
				      "cable plugged in?"),
			to.usb_name.c_str());
	if (!use_tcp && (output_name().empty() || input_name().empty()))
		return tr("No MIDI port is chosen for the way to the sampler or back. Choose "
			  "MIDI-Out "
			  "and MIDI-In in Basic settings.");
	return format_text(
		tr("No answer on exclusive channel %d %s. Is the sampler on? Its channel "
		   "stands on its own MIDI page."),
		to.exclusive_channel, through(to).c_str());
}

std::string answer_words(const reached &to, const std::string &version)
{
	return format_text(tr("%s answered on exclusive channel %d %s%s."),
		to.model ? to.model->sampler_brand : "", to.exclusive_channel, through(to).c_str(),
		version.empty() ? "" : format_text(tr(": version %s"), version.c_str()).c_str());
}

std::string stranger_words(const reached &to)
{
	return format_text(
		tr("Something answered on exclusive channel %d %s, but not as %s does. Is "
		   "the right model chosen?"),
		to.exclusive_channel, through(to).c_str(),
		to.model ? to.model->sampler_brand : tr("this model"));
}

std::string way_key()
{
	const reached to = loaded_reached();
	return format_text("%u %d %d %d %d ", the_line.changes,
		       to.model ? to.model->sampler_type : -1, to.exclusive_channel, use_tcp,
		       current_sampler ? static_cast<int>(current_sampler->sampler_sysex) : 0) +
	       way_text(to) + " " + through(to);
}

// ---- The status line ----------------------------------------------------------------------------

std::string clock_text(double time_of_day)
{
	const std::time_t seconds = static_cast<std::time_t>(time_of_day);
	const std::tm *at = std::localtime(&seconds);
	return at ? format_text("%02d:%02d:%02d", at->tm_hour, at->tm_min, at->tm_sec) : "";
}

line_report report_line()
{
	if (!current_sampler)
		return { tr("No sampler loaded"), text_role::quiet };
	const reached to = loaded_reached();
	std::string text = format_text(tr("%s · %s · channel %d · "),
		std::string(current_sampler->sampler_description).c_str(), way_text(to).c_str(),
		to.exclusive_channel);
	if (the_line.failing)
		return { text + format_text(
					tr("no answer %s"), clock_text(the_line.failed_at).c_str()),
			text_role::careful };
	if (the_line.answered_at > 0)
		return { text + format_text(tr("answered %s"),
					clock_text(the_line.answered_at).c_str()),
			text_role::good };
	return { text + tr("not asked yet"), text_role::quiet };
}

} // namespace velmor
