// velmor_fit.h - whether a sample fits the loaded sampler, what makes it fit, and its name there
//
// Knows nothing of: drivers, toolkits.

#pragma once
#include "src/velmor_shape.h"
#include <span>
#include <string>
#include <vector>

namespace velmor
{

// ---- Names -----------------------------------------------------------------------------------

// What a sampler of that model calls a sample of this computer.
std::string name_on_sampler(const _sampler_type &model, const std::string &name);
// The names that would stand there more than once, in words; "" for none.
std::string same_names(std::span<const std::string> on_sampler);
// Before samples of this computer are sent: false where the sampler would hold two of one name,
// because it has another that is called so or because two of these would be, and the user does not
// want that. Over the sample of its very name each goes as ever.
bool may_send_names(std::span<const std::string> names);

// ---- Shapes ----------------------------------------------------------------------------------

// What makes a file fit.
struct fit_plan {
	bool fits;                 // as it is
	bool possible;             // with this conversion
	import_options conversion; // of the file itself; 0 keeps what it has
	std::string words;         // what it becomes, or why it cannot
};
fit_plan plan_fit(const _sampler_type &model, const wave_shape &file);
// "" or that it has more words than a transfer to that model can count, as a sentence.
std::string length_trouble(const _sampler_type &model, const wave_shape &file);

// ---- The sample manager --------------------------------------------------------------------------

// Say how fast this connection is, and what of exact uploads and fitting can be chosen.
void show_transfer_choices();

} // namespace velmor
