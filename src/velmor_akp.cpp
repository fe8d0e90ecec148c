// velmor_akp.cpp - what of an AKP program arrives on a model, in a sentence
//
// Knows nothing of: windows, the wire, what a parameter does.

#include "src/velmor_akp.h"
#include "src/akaiprograms.h"
#include "src/velmor_counts.h"
#include "src/velmor_library.h"
#include "src/velmor_programs.h"
#include "src/waveqx.h"
#include <algorithm>

namespace velmor
{

// Most bytes of a keygroup fill a field of each family: one that the model takes is enough.
static bool arrives(std::string_view field, const parameter_names &known)
{
	return std::ranges::any_of(
		known, [&](std::string_view other) { return akp_has_in_one_byte(field, other); });
}

akp_gap gap_of_akp(const _program &program, const _sampler_type &model)
{
	akp_gap gap;
	const parameter_names known = parameters_of(model);
	for (const std::string &name : not_known(program, model))
		if (!arrives(name, known))
			gap.left_behind.push_back(name);
	for (const std::string_view name : known)
		if (!akp_tells(name) && name != "number" && name != "index") // the sampler's own
			gap.untold.emplace_back(name);
	return gap;
}

static std::string listed(const std::vector<std::string> &names)
{
	std::string text;
	for (const std::string &name : names)
		text += (text.empty() ? "" : ", ") + name;
	return text;
}

static void log_gap(const _program &program, const _sampler_type &model, const akp_gap &gap)
{
	if (!gap.left_behind.empty())
		log_line("[I] '%s' holds what cannot reach an %s: %s\r\n", program.name,
			model.sampler_brand, listed(gap.left_behind).c_str());
	if (!gap.untold.empty())
		log_line("[I] '%s' does not tell what an %s is sent as 0: %s\r\n", program.name,
			model.sampler_brand, listed(gap.untold).c_str());
}

static int count_zones(const _program &program)
{
	int zones = 0;
	for (int k = 0; k < std::clamp(program.keygroups, 0, max_keygroups); k++)
		zones += std::clamp(program.keygroup[k].keyzones, 0, max_keyzones);
	return zones;
}

std::string akp_summary(const _program &program, bool *in_log)
{
	const std::vector<std::string> samples = samples_of(program);
	std::vector<std::string> missing;
	std::ranges::copy_if(samples, std::back_inserter(missing),
		[](const std::string &name) { return !in_spool(name); });
	std::string words = format_text("'%s': %s, %s, %s", program.name,
		counted(program.keygroups, noun::keygroup).c_str(),
		counted(count_zones(program), noun::keyzone).c_str(),
		counted(static_cast<int>(samples.size()), noun::sample).c_str());
	if (!missing.empty())
		words += format_text(tr(" (not on this computer: %s)"), first_of(missing).c_str());
	const _sampler_type *model = get_sampler(program.sampler_type);
	const akp_gap gap = model ? gap_of_akp(program, *model) : akp_gap{};
	if (!gap.left_behind.empty())
		words += format_text(tr("; %s cannot reach an %s"),
			counted(static_cast<int>(gap.left_behind.size()), noun::parameter).c_str(),
			model->sampler_brand);
	*in_log |= !gap.left_behind.empty() || !gap.untold.empty();
	if (model)
		log_gap(program, *model, gap);
	words += ".";
	log_line("[I] Imported %s\r\n", words.c_str());
	return words;
}

} // namespace velmor
