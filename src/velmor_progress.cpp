// velmor_progress.cpp - the progress of a long operation
//
// Long operations run on the main thread, so set_progressbar also lets waiting
// interface events run: that is what keeps the windows alive meanwhile. The other
// windows are disabled from show to hide, which keeps the user from starting a
// second operation inside the first. A queue keeps the window between its items, and what
// the user wants of it is not taken back by the next one.
//
// Knows nothing of: what is being done, what the window looks like.

#include "src/velmor_queue.h"
#include <cmath>

namespace velmor
{

int progressbar_range = 100;

static bool stopped = false;
static bool closing = false;
static double shown_at = 0; // counter, when the window was shown

void show_progressbar(int, int range, const char *caption)
{
	progressbar_range = range > 0 ? range : 100;
	forget_stop();
	if (!queue_keeps_window())
		leave_verdict();
	shown_at = host.clock->counter();
	host.ui->progress_show(caption ? caption : "Progress", progressbar_range);
}

// Time left if the rest goes as fast as what is done; "" while there is nothing to go by.
static std::string time_left(double done)
{
	const double elapsed = host.clock->counter() - shown_at;
	if (done <= 0 || done >= 1 || elapsed < 2)
		return "";
	const double seconds = std::ceil(elapsed / done - elapsed);
	if (seconds >= 100 * 3600.0)
		return "";
	const int left = static_cast<int>(seconds);
	if (left >= 3600)
		return format_text(tr("%d:%02d:%02d left"), left / 3600, left / 60 % 60, left % 60);
	return format_text(tr("%d:%02d left"), left / 60, left % 60);
}

void set_progressbar(int val)
{
	const double part = val < 0 ? 0 : static_cast<double>(val) / progressbar_range;
	const double done = part > 1 ? 1 : part;
	const std::string info = format_text("%.02f %%", done * 100);
	host.ui->progress_set(val, info.c_str(), time_left(done).c_str());
	queue_moved(done);
	host.ui->pump(0);
}

void hide_progressbar(int)
{
	if (!queue_keeps_window())
		host.ui->progress_hide();
}

bool progress_stopped()
{
	return stopped || closing;
}

void request_close(bool wanted)
{
	closing = wanted;
}

bool close_requested()
{
	return closing;
}

void stop_progress()
{
	stopped = true;
	if (running_queue)
		running_queue->stop = true;
}

void forget_stop()
{
	stopped = running_queue && running_queue->stop;
}

} // namespace velmor
