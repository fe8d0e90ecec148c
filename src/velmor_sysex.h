// velmor_sysex.h - what the exchange and the player of MIDI files share: bytes that leave
//
// Main thread only. Knows nothing of: models, the content of messages.

#pragma once

namespace velmor
{

inline constexpr double byte_seconds = 10 / 31250.0;

// Run the interface until the bytes written have left, a tenth of a second at most.
void let_bytes_leave(int handle, long count);

} // namespace velmor
