// fake_model.h - a model whose operations are recorded, for tests of what calls them
//
// Takes the place of the S3000's row while it lives. Its sampler holds names;
// a download leaves a file of 144 + 2 * words bytes in the spool, in steps, each
// of which runs interface events and can be stopped.

#pragma once
#include "tests/support/test_host.h"

namespace velmor
{

struct fake_model {
	_sampler_type &row;
	std::vector<std::string> names; // on the sampler
	std::vector<std::string> calls; // "downloadsample KICK", in order
	int download_steps = 4;
	bool download_fails = false;
	bool silent = false;              // nothing is answered, as from a sampler that is off
	bool refuses = false;             // everything is answered, and nothing is done
	int answers_lost = 0;             // of the next operations
	std::function<void(int)> on_step; // in the middle of a download

	explicit fake_model(test_host &h);
	~fake_model();
	fake_model(const fake_model &) = delete;

private:
	_sampler_type before;
};

// A 16-bit WAV file in the order fmt, fact, smpl, data, with one loop.
std::vector<u8> wave_bytes(u32 rate, unsigned channels, const std::vector<int> &words,
	u32 loop_start = 0, u32 loop_end = 0);

} // namespace velmor
