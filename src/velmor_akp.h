// velmor_akp.h - what of an AKP program arrives on a model, in a sentence
//
// Called by the program manager after an import. An AKP file tells more than some models take,
// and less than others want: both is named in the log, parameter by parameter.
//
// Main thread only. Knows nothing of: windows, the wire.

#pragma once
#include "src/resource.h"
#include <string>
#include <vector>

namespace velmor
{

struct akp_gap {
	std::vector<std::string> left_behind; // the program holds it, and the model is not sent it
	std::vector<std::string> untold;      // the model is sent it, and no AKP file tells it
};
akp_gap gap_of_akp(const _program &program, const _sampler_type &model);

// What was taken of a file for its program's model, and which samples are missing. The gap is
// named in the log, behind the sentence, and *in_log set.
std::string akp_summary(const _program &program, bool *in_log);

} // namespace velmor
