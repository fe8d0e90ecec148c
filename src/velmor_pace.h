// velmor_pace.h - how fast an interface takes long messages
//
// Some MIDI interfaces lose bytes of a run that is longer than their memory. For such a one, by
// the name of its port, a run and a pause are kept in the settings (the self-test finds them), and
// whatever is sent over it leaves in runs of that length with that pause between them. MIDI allows
// any time between two bytes of one message; what else is sent meanwhile waits for its end.
//
// Main thread only. Knows nothing of: messages.

#pragma once
#include "src/resource.h"
#include <string>

namespace velmor
{

struct send_pace {
	int run = 0; // bytes, 0: any number at once
	int pause_ms = 0;
	bool operator==(const send_pace &) const = default;
};

inline constexpr int longest_run = 1 << 20, longest_pause_ms = 2000;

// The name of the chosen output, "" for none.
std::string chosen_output();
send_pace kept_pace(const std::string &port);
// 0, or a system code that was shown. A run of 0 forgets it.
int keep_pace(const std::string &port, send_pace pace);
void forget_kept_paces(); // as at the start; for tests

// While one lives, this pace counts for everything that is sent.
class pace_trial
{
public:
	explicit pace_trial(send_pace pace);
	~pace_trial();
	pace_trial(const pace_trial &) = delete;

private:
	send_pace pace;
	const send_pace *before;
};

// Hand bytes over to an output, in runs where its interface needs that. 0, or the port's code.
// The last run may not have left yet.
int write_output(int handle, const u8 *bytes, std::size_t count);

} // namespace velmor
