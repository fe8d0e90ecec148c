// velmor_transfer.h - how samples go to a sampler: exactly or not, and how fast on this connection
//
// Main thread only. Knows nothing of: drivers, toolkits.

#pragma once
#include "src/resource.h"

namespace velmor
{

// The user wants exact uploads to the S1000 family: a choice that is kept in the settings, off by
// default.
bool exact_uploads();
void set_exact_uploads(bool wanted);
// True for the models that have the choice: their uploads send words over MIDI and announce them
// twice over.
bool has_exact_uploads(const _sampler_type &model);

} // namespace velmor
