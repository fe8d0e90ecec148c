// velmor_multis.h - what the window of the multis has besides the controls that every list has

#pragma once

namespace velmor
{

enum : int {
	multis_search = 60033,
};

} // namespace velmor
