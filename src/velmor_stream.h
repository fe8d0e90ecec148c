// velmor_stream.h - the chosen MIDI ports, or the bridge, as one stream that is listened to all the time
//
// For work that looks at every byte. Exchanges with a sampler go through send_midi_string_ex.
//
// Main thread only. Knows nothing of: messages.

#pragma once
#include "src/resource.h"
#include <string>
#include <vector>

namespace velmor
{

class byte_stream
{
public:
	byte_stream();
	~byte_stream();
	byte_stream(const byte_stream &) = delete;

	// Each gives "", or why not, a sentence or the port's own words.
	std::string open();
	// Returns when all has left; Stop breaks off the wait.
	std::string send(const std::vector<u8> &bytes);
	// Add what has come. Real time (F8 and above) may stand anywhere, and belongs to nothing.
	std::string take(std::vector<u8> *come);

private:
	const bool over_tcp;
	int input = -1;
};

// Run the interface, until that moment of the counter at most.
void pump_until(double moment);

} // namespace velmor
