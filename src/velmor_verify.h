// velmor_verify.h - what arrived, compared with what was meant to arrive
//
// A transfer can lose or change words without anybody saying so. Here a sample is read back and
// compared with its file, value by value, and a program with what the sampler tells of it, on
// demand or behind every transfer.
//
// A sampler of the S1000 family is sent twice as many words as a file has, the second half silence,
// unless the upload is an exact one, and may drop their two lowest bits: then that is what was
// meant. What an upload does not carry is not compared: the header of its sample, and on MIDI the
// rate.
//
// Main thread only. Knows nothing of: windows.

#pragma once
#include "src/velmor_programs.h"

namespace velmor
{

// ---- Comparing files ------------------------------------------------------------------------

enum class compared_way {
	from_sampler, // both files came from it
	to_sampler,   // the first one was sent there
};
// "", or a sentence that names the differences by position and count. Paths have extensions.
std::string wave_difference(const _sampler_type &model, compared_way way, const std::string &sent,
	const std::string &arrived, u64 *values);
// Frames of a WAV file; 0 of what is none.
u64 wave_frames(const std::string &path);
// The same of two programs, as far as they have names: without their places on the sampler.
std::string program_difference(const _program &wanted, const _program &held);

// ---- Comparing with the sampler -------------------------------------------------------------

// Done: the sampler's sample is what such a file becomes there. Refused: they differ, and the
// words say where. The sample is the one that the sampler calls as the file, or the named one.
outcome compare_sample(const std::string &path, compared_way way, const std::string &name = "");
// The list of programs is read again.
outcome compare_program(const _program &wanted);

// Behind every transfer, kept in the settings.
bool verify_always();
void set_verify_always(bool wanted);
// Tick the boxes of the windows that want it, or not (velmor_verify_page.cpp).
void show_comparison_choice();
// The outcome of a transfer, and where it is done and wanted, of the comparison behind it. path is
// without extension.
outcome verified_upload(outcome sent, const std::string &path);
outcome verified_download(outcome came, const std::string &name);
outcome verified_program(outcome sent, const _program &wanted, bool list_is_new);

} // namespace velmor
