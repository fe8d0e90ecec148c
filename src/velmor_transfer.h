// velmor_transfer.h - how samples go to and from a sampler: exactly or not, and how fast
//
// How fast is measured: each transfer that arrived tells how many bytes of sound a second went over
// this connection, both directions apart. The last few of each are kept in the settings, one key
// for each way to a model, and their median counts. Where none was measured yet, it is what the
// wire and the pauses of the protocol allow.
//
// Main thread only. Knows nothing of: drivers, toolkits.

#pragma once
#include "src/resource.h"
#include <string>

namespace velmor
{

// The user wants exact uploads to the S1000 family: a choice that is kept in the settings, off by
// default.
bool exact_uploads();
void set_exact_uploads(bool wanted);
// True for the models that have the choice: their uploads send words over MIDI and announce them
// twice over.
bool has_exact_uploads(const _sampler_type &model);

enum class transfer_way {
	up,
	down,
};

// Bytes of sound a second between this computer and the loaded sampler; of another model, as the
// wire allows.
struct transfer_rate {
	double bytes_per_second;
	bool measured;
};
transfer_rate rate_of(const _sampler_type &model, transfer_way way);

// Bytes of sound that an upload of a file with so many bytes of audio carries.
u64 carried_up(const _sampler_type &model, u64 audio_bytes, bool exact);

// Times one transfer of the loaded sampler, from when it is made.
class transfer_clock
{
public:
	explicit transfer_clock(transfer_way way);
	// It arrived whole; path is that of its WAV file here. Transfers of a moment tell nothing.
	void arrived(const std::string &path) const;

private:
	transfer_way way;
	double began;
};

// "1.8 kB/s".
std::string rate_text(double bytes_per_second);
// "1.8 kB/s on this connection", with both directions, in two lines, where both were measured.
std::string connection_text();

} // namespace velmor
