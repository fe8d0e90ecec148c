// timeline.h - when things happen to a virtual sampler
//
// A queue of events in time. Tests and the headless journey let time jump from
// event to event; the demo runs it beside the real clock on a thread of its own.
// Every call is safe from any thread.
//
// Knows nothing of: the system under src/.

#pragma once
#include <functional>
#include <map>
#include <mutex>

namespace velmor
{

class timeline
{
public:
	using action = std::function<void()>;

	// Seconds since the timeline began. In real time it follows the clock.
	double now() const;
	// Run what at that moment, on whichever thread drives the timeline. Events of one
	// moment run in the order in which they were added.
	void at(double when, action what);
	void after(double seconds, action what) { at(now() + seconds, std::move(what)); }

	// Moment of the next event; infinity when there is none.
	double next() const;
	// Jump to that moment, running every event on the way at its own time.
	void run_until(double when);

	// Follow the real clock from now on, on a thread of its own, until stop.
	void run_in_real_time();
	void stop();

	timeline();
	~timeline();
	timeline(const timeline &) = delete;
	timeline &operator=(const timeline &) = delete;

private:
	struct worker;
	mutable std::recursive_mutex lock;
	std::multimap<double, action> events;
	double present = 0;
	worker *real_time = nullptr;
};

} // namespace velmor
