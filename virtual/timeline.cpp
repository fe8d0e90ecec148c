// timeline.cpp - when things happen to a virtual sampler

#include "virtual/timeline.h"
#include <chrono>
#include <condition_variable>
#include <limits>
#include <thread>

namespace velmor
{

using steady = std::chrono::steady_clock;

struct timeline::worker {
	steady::time_point began;
	double offset; // the timeline's time at began
	bool ended = false;
	std::condition_variable_any changed;
	std::thread thread;

	double now() const
	{
		return offset + std::chrono::duration<double>(steady::now() - began).count();
	}
};

timeline::timeline() = default;

timeline::~timeline()
{
	stop();
}

double timeline::now() const
{
	std::lock_guard held(lock);
	return real_time ? real_time->now() : present;
}

double timeline::next() const
{
	std::lock_guard held(lock);
	return events.empty() ? std::numeric_limits<double>::infinity() : events.begin()->first;
}

void timeline::at(double when, action what)
{
	std::lock_guard held(lock);
	events.emplace(when, std::move(what));
	if (real_time)
		real_time->changed.notify_all();
}

void timeline::run_until(double when)
{
	std::lock_guard held(lock);
	while (!events.empty() && events.begin()->first <= when) {
		auto node = events.extract(events.begin());
		if (node.key() > present)
			present = node.key();
		node.mapped()();
	}
	if (when > present)
		present = when;
}

void timeline::run_in_real_time()
{
	std::lock_guard held(lock);
	if (real_time)
		return;
	real_time = new worker{
		.began = steady::now(), .offset = present, .changed = {}, .thread = {}
	};
	real_time->thread = std::thread([this, w = real_time] {
		std::unique_lock running(lock);
		while (!w->ended) {
			const double due = next();
			if (due <= w->now()) {
				run_until(w->now());
				continue;
			}
			if (events.empty())
				w->changed.wait(running);
			else
				w->changed.wait_for(
					running, std::chrono::duration<double>(due - w->now()));
		}
	});
}

void timeline::stop()
{
	worker *w;
	{
		std::lock_guard held(lock);
		w = real_time;
		if (!w)
			return;
		w->ended = true;
		w->changed.notify_all();
	}
	w->thread.join();
	std::lock_guard held(lock);
	present = w->now();
	real_time = nullptr;
	delete w;
}

} // namespace velmor
