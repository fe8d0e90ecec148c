// waveform_places.h - the measures of the picture of a sample, for those who move and who paint it

#pragma once

namespace velmor
{

inline constexpr int ruler_height = 20, numbers_height = 22, wave_side = 12; // pixels

} // namespace velmor
