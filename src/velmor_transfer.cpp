// velmor_transfer.cpp - how samples go to and from a sampler: exactly or not, and how fast
//
//   rate up 1007 MIDI 'USB MIDI 1'=1790 1804 1811     bytes of sound a second, the last one last
//
// Knows nothing of: drivers, toolkits.

#include "src/velmor_transfer.h"
#include "src/velmor_work.h"
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace velmor
{

// ---- Exactly ----------------------------------------------------------------------------------

static constexpr const char *exact_key = "exact_uploads";

bool exact_uploads()
{
	char value[setting_size];
	return host.settings->load_key(exact_key, value) == 0 && std::strcmp(value, "1") == 0;
}

void set_exact_uploads(bool wanted)
{
	save_key(exact_key, wanted ? "1" : "0");
}

bool has_exact_uploads(const _sampler_type &model)
{
	return !(model.sampler_flags & flag_usb) && model.sampler_type != model_s900;
}

// What a dump can count; an upload that announces twice as much leaves off what is above.
static constexpr u64 most_announced = 0x1FFFFF;

u64 carried_up(const _sampler_type &model, u64 audio_bytes, bool exact)
{
	if (!has_exact_uploads(model) || exact)
		return audio_bytes;
	return 2 * std::min(audio_bytes, most_announced);
}

// ---- What the wire allows -------------------------------------------------------------------

// Of the Sample Dump Standard: packets of 80 bytes of sound in 127, up with an answer of 6 bytes,
// down with a request of 18 and a pause. The S900 wants a pause for each block of 120 in 122.
static double unmeasured(const _sampler_type &model, transfer_way way)
{
	constexpr double usb = 1000000, midi = 3125;
	if (model.sampler_flags & flag_usb)
		return usb;
	if (model.sampler_type == model_s900)
		return 120 / (122 / midi + (way == transfer_way::up ? 0.3 : 0.2));
	return way == transfer_way::up ? 80 / ((127 + 6) / midi) : 80 / ((127 + 18) / midi + 0.05);
}

// ---- What was measured ------------------------------------------------------------------------

static constexpr std::size_t rates_kept = 5;
static constexpr long highest_rate = 1000000000; // bytes a second

static std::string rate_key(const reached &to, transfer_way way)
{
	return format_text("rate %s %d ", way == transfer_way::up ? "up" : "down",
		       to.model->sampler_type) +
	       way_text(to);
}

static std::vector<long> kept_rates(const std::string &key)
{
	std::vector<long> rates;
	char value[setting_size];
	if (host.settings->load_key(key.c_str(), value) != 0)
		return rates;
	const char *at = value;
	for (char *end = nullptr; rates.size() < rates_kept; at = end) {
		const long rate = std::strtol(at, &end, 10);
		if (end == at || rate < 1 || rate > highest_rate)
			break;
		rates.push_back(rate);
	}
	return rates;
}

static void keep_rate(const std::string &key, long rate)
{
	std::vector<long> rates = kept_rates(key);
	rates.push_back(std::clamp(rate, 1L, highest_rate));
	if (rates.size() > rates_kept)
		rates.erase(rates.begin());
	std::string value;
	for (const long each : rates)
		value += (value.empty() ? "" : " ") + std::to_string(each);
	// A box about a rate that could not be kept would help nobody.
	(void)host.settings->save_key(key.c_str(), value.c_str());
}

transfer_rate rate_of(const _sampler_type &model, transfer_way way)
{
	const reached to = loaded_reached();
	std::vector<long> rates;
	if (to.model == &model)
		rates = kept_rates(rate_key(to, way));
	if (rates.empty())
		return { unmeasured(model, way), false };
	const auto middle = rates.begin() + static_cast<std::ptrdiff_t>(rates.size() / 2);
	std::nth_element(rates.begin(), middle, rates.end());
	return { static_cast<double>(*middle), true };
}

transfer_clock::transfer_clock(transfer_way direction)
	: way(direction), began(host.clock->counter())
{
}

void transfer_clock::arrived(const std::string &path) const
{
	constexpr double shortest = 0.5; // seconds
	constexpr u64 head = 144;        // of a WAV file of the spool, about
	const reached to = loaded_reached();
	const double seconds = host.clock->counter() - began;
	file_info info = {};
	if (!to.model || seconds < shortest || host.files->stat(path.c_str(), &info) != 0 ||
		info.size <= head)
		return;
	const u64 audio = info.size - head;
	const u64 bytes =
		way == transfer_way::up ? carried_up(*to.model, audio, exact_uploads()) : audio;
	keep_rate(rate_key(to, way), std::lround(static_cast<double>(bytes) / seconds));
}

// ---- Words --------------------------------------------------------------------------------------

std::string rate_text(double bytes_per_second)
{
	if (bytes_per_second >= 1000000)
		return format_text("%.1f MB/s", bytes_per_second / 1000000);
	return format_text("%.1f kB/s", bytes_per_second / 1000);
}

std::string connection_text()
{
	const _sampler_type *model = loaded_reached().model;
	if (!model)
		return "";
	const transfer_rate up = rate_of(*model, transfer_way::up);
	const transfer_rate down = rate_of(*model, transfer_way::down);
	if (up.measured && down.measured)
		return format_text(tr("%s up, %s down\non this connection"),
			rate_text(up.bytes_per_second).c_str(),
			rate_text(down.bytes_per_second).c_str());
	if (down.measured)
		return format_text(tr("%s down\non this connection"),
			rate_text(down.bytes_per_second).c_str());
	return up.measured ? format_text(tr("%s on this connection"),
				     rate_text(up.bytes_per_second).c_str())
			   : tr("Not measured yet\non this connection");
}

} // namespace velmor
