// velmor_verify_page.cpp - "Compare with the sampler" and the box that wants it after each transfer
//
// Knows nothing of: models, toolkits.

#include "src/velmor_verify.h"
#include "src/velmor_window.h"
#include "src/waveqx.h"

namespace velmor
{

static void compare_local_sample()
{
	const int index = host.ui->selection(window_samples, samples_local_list);
	if (index < 0 || index >= local_samples)
		return show_outcome(
			{ .how = ending::refused, .words = tr("Choose a local sample first.") });
	const std::string path =
		wave_path_of(local_sample[static_cast<std::size_t>(index)].pathname);
	const outcome result = compare_sample(path, compared_way::to_sampler);
	show_loaded_samples();
	show_outcome(result);
}

static void compare_local_program()
{
	const int index = host.ui->selection(window_programs, programs_local_list);
	if (index < 0 || index >= local_pgms)
		return show_outcome(
			{ .how = ending::refused, .words = tr("Choose a local program first.") });
	if (!current_sampler)
		return show_outcome(
			{ .how = ending::refused, .words = "You must load a sampler first..." });
	show_outcome(compare_program(*local_pgm[static_cast<std::size_t>(index)]));
}

void show_comparison_choice()
{
	const bool wanted = verify_always();
	if (was_opened(window_samples))
		host.ui->set_checked(window_samples, samples_verify, wanted);
	if (was_opened(window_backup))
		host.ui->set_checked(window_backup, backup_verify, wanted);
}

template <int window, int control> static void choose_comparison()
{
	set_verify_always(host.ui->checked(window, control));
	show_comparison_choice();
}

// clang-format off
static constexpr caption_row verify_captions[] = {
	// window          control           caption, tooltip, empty
	{ window_samples,  samples_compare,  own("Compare with the sampler"), own("Read the sampler's sample of that name back, and tell where it differs"), nullptr },
	{ window_samples,  samples_verify,   own("Compare after each transfer"), own("Each sample is read back, which takes as long again"), nullptr },
	{ window_programs, programs_compare, own("Compare with the sampler"), own("Read the sampler's programs again, and tell where the one of that name differs"), nullptr },
};
static constexpr command_row verify_commands[] = {
	{ window_samples,  samples_compare,  compare_local_sample,  alone },
	{ window_programs, programs_compare, compare_local_program, alone },
};
static constexpr command_row verify_selections[] = {
	{ window_samples,  samples_verify,   choose_comparison<window_samples, samples_verify>, alone },
	{ window_backup,   backup_verify,    choose_comparison<window_backup, backup_verify>,   alone },
};
// clang-format on

constinit const window_rows verify_rows = { verify_captions, verify_commands, verify_selections };

} // namespace velmor
