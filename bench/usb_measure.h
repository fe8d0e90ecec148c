// usb_measure.h - what an operation of small requests took, against what bus and machine need
//
//	packet = (bytes + 13) / 77 / 19000 s, at most 64 bytes a packet
//	least  = packets of every message both ways + the machine's rest before each answer

#pragma once
#include "tests/support/test_host.h"
#include "virtual/usb_bus.h"
#include "virtual/usb_sampler.h"
#include <cstdio>

namespace velmor
{

inline constexpr double most_above_least = 1.02;

inline bool missed = false; // a mark

inline void report(const char *what, const char *measure, bool good)
{
	std::printf("%-44s %s%s\n", what, measure, good ? "" : "   MISSED");
	missed |= !good;
}

inline double on_bus(std::size_t bytes)
{
	const auto packet = [](std::size_t n) {
		return (static_cast<double>(n) + 13) / 77 / 19000;
	};
	const std::size_t rest = bytes % 64;
	return static_cast<double>(bytes / 64) * packet(64) + (rest || !bytes ? packet(rest) : 0);
}

// One operation of small requests, against what crossed the bus. Gives the answers.
template <typename work>
std::size_t compare(const char *what, test_host &h, usb_sampler &machine, work run)
{
	machine.recorded.clear();
	machine.record = true;
	const double began = h.time.now();
	const bool good = run();
	const double took = h.time.now() - began;
	machine.record = false;
	double least = 0;
	std::size_t answers = 0;
	for (const usb_crossing &c : machine.recorded) {
		least += on_bus(c.bytes.size()) + (c.from_host ? 0 : machine.latency);
		answers += !c.from_host;
	}
	char measure[160];
	std::snprintf(measure, sizeof measure,
		"%9.3f s   least %9.3f s   ratio %.4f   (%zu answers)", took, least, took / least,
		answers);
	report(what, measure, good && answers && took / least <= most_above_least);
	return answers;
}

} // namespace velmor
