// velmor_log.h - many texts for the log at once
//
// Main thread only. Knows nothing of: what the texts are about.

#pragma once
#include <string>

namespace velmor
{

// While one lives, velmor.log stays open between texts, which still reach it one by one, so that
// a crash loses nothing; the log control gets them all at the end. Log and files are what they
// would be without it. For work that logs thousands of lines and runs no interface events.
class log_batch
{
public:
	log_batch();
	~log_batch();
	log_batch(const log_batch &) = delete;

	std::string screen; // the control's text to come

private:
	std::string before;
};

} // namespace velmor
