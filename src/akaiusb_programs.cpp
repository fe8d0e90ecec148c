// akaiusb_programs.cpp - requests that change a program, for both USB drivers
//
// Knows nothing of: what a request means, windows.

#include "src/akaiusb_programs.h"
#include "src/velmor_counts.h"

namespace velmor
{

// So many bytes, and the end byte behind them.
static bool is_whole(const usb_answer &answer, int size)
{
	constexpr u8 start_byte = 0xF0, end_byte = 0xF7;
	return answer.length > size && answer.bytes()[0] == start_byte &&
	       answer.bytes()[static_cast<std::size_t>(answer.length) - 1] == end_byte;
}

bool program_writer::ask(std::span<const u8> payload)
{
	return ask_usb(usb, payload, &answer) &&
	       is_whole(answer, static_cast<int>(family_of(*usb).status_offset) + 1);
}

bool program_writer::ask_data(std::span<const u8> payload, int size)
{
	return ask_usb(usb, payload, &answer) && !was_refused() &&
	       is_whole(answer, static_cast<int>(data_at()) + size);
}

bool program_writer::write(std::span<const u8> payload)
{
	begun = true;
	if (!ask(payload))
		return false;
	refused += was_refused();
	return true;
}

const char *program_writer::state() const
{
	return begun ? tr("The program on the sampler may hold only a part of the changes.")
		     : tr("Nothing was changed on the sampler.");
}

bool program_writer::stopped() const
{
	if (progress_stopped())
		program_ended(ending::stopped,
			format_text(tr("Saving was stopped. %s"), state()).c_str());
	return progress_stopped();
}

void program_writer::tell_refused() const
{
	if (refused)
		program_done_but(format_text(
			tr("The sampler refused %s."), counted(refused, noun::value).c_str())
					 .c_str());
}

} // namespace velmor
