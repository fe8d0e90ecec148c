// velmor_transfer_rate.cpp - how samples go to a sampler: exactly or not
//
// Knows nothing of: drivers, toolkits.

#include "src/velmor.h"
#include "src/velmor_transfer.h"
#include <cstring>

namespace velmor
{

static constexpr const char *exact_key = "exact_uploads";

bool exact_uploads()
{
	char value[setting_size];
	return host.settings->load_key(exact_key, value) == 0 && std::strcmp(value, "1") == 0;
}

void set_exact_uploads(bool wanted)
{
	save_key(exact_key, wanted ? "1" : "0");
}

bool has_exact_uploads(const _sampler_type &model)
{
	return !(model.sampler_flags & flag_usb) && model.sampler_type != model_s900;
}

} // namespace velmor
