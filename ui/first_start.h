// first_start.h - the two ways to a first sampler, where none is set up yet

#pragma once

class QBoxLayout;

namespace velmor
{

// Show them above everything else in that column, or put them away.
void show_first_start(QBoxLayout *place, bool wanted);

} // namespace velmor
