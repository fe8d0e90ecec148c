// velmor_counts.h - how many of what, in words
//
// Knows nothing of: languages.

#pragma once
#include <string>

namespace velmor
{

// "1 keygroup", "12 keygroups".
enum class noun {
	keygroup,
	keyzone,
	sample,
	program,
	multi,
	parameter,
	value,
	change,
	track,
};
std::string counted(int count, noun of);

} // namespace velmor
