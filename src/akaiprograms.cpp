// akaiprograms.cpp - how writing a program ended, and what was kept of it
//
// Knows nothing of: protocols, windows.

#include "src/akaiprograms.h"
#include <algorithm>

namespace velmor
{

outcome program_outcome;
bool save_once_more = false;

static std::unique_ptr<_program> rescued, endangered;

void begin_program_operation()
{
	program_outcome = {};
	save_once_more = false;
	endangered.reset();
}

void program_ended(ending how, const char *words)
{
	if (!program_outcome.done())
		return;
	program_outcome.how = how;
	program_outcome.words = words;
	log_line("[%s] %s\r\n", how == ending::stopped ? "I" : "W", words);
}

void program_done_but(const char *words)
{
	if (!program_outcome.done())
		return;
	program_outcome.words += program_outcome.words.empty() ? words : format_text(" %s", words);
	log_line("[W] %s\r\n", words);
}

_program *program_to_write(i32 index, _program *local)
{
	_dev_status *status = current_sampler ? current_sampler->status : nullptr;
	const bool loaded = status && index < std::clamp(status->programs, 0, max_programs);
	if (index >= 0 && current_sampler && (local || loaded))
		return local ? &local[index] : &status->program[index];
	program_ended(ending::refused, tr("There is no such program."));
	return nullptr;
}

int sent_count(i32 count, int most, const char *what)
{
	if (count > most)
		log_line("[W] Of %d %s only %d can be sent\r\n", count, what, most);
	return std::clamp(count, 0, most);
}

std::string log_dump(std::span<const u8> bytes)
{
	return current_run_mode.diagnostics ? hex_text(bytes) : "";
}

std::unique_ptr<_program> take_rescued_program()
{
	return std::move(rescued);
}

std::unique_ptr<_program> take_endangered_program()
{
	return std::move(endangered);
}

void rescue_program(std::unique_ptr<_program> program)
{
	rescued = std::move(program);
}

void endanger_program(std::unique_ptr<_program> program)
{
	endangered = std::move(program);
}

} // namespace velmor
