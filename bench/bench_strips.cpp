// bench_strips.cpp - painting the tracks of a large song: a strip anew, and a step of the song
//
// 64 tracks with 200,000 events in all, and one track that holds all of them. Fails above 4 ms
// for a strip that is painted anew or a step that all rows in view make. Runs without a display.

#include "bench/windows.h"
#include "ui/parts/window.h"
#include "ui/track_strip_list.h"
#include <QApplication>
#include <QBoxLayout>
#include <QScrollBar>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

using namespace velmor;

static constexpr double most_ms = 4;
static bool missed = false;

static std::vector<strip_note> dense(int count, std::uint64_t length)
{
	std::vector<strip_note> notes;
	for (int i = 0; i < count; i++) {
		const std::uint64_t start =
			length * static_cast<std::uint64_t>(i) / static_cast<std::uint64_t>(count);
		notes.push_back(
			{ start, start + 700, static_cast<std::uint8_t>(30 + i * 7 % 60), 90 });
	}
	return notes;
}

static void measure(const char *what, int rounds, const std::function<void(int)> &work)
{
	std::vector<double> taken;
	for (int i = 0; i < rounds; i++) {
		const auto began = std::chrono::steady_clock::now();
		work(i);
		const std::chrono::duration<double, std::milli> passed =
			std::chrono::steady_clock::now() - began;
		taken.push_back(passed.count());
	}
	std::sort(taken.begin(), taken.end());
	const double p95 = taken[taken.size() * 95 / 100], median = taken[taken.size() / 2];
	missed |= median > most_ms;
	std::printf(
		"%-52s median %6.2f ms, p95 %6.2f ms (at most %.0f)\n", what, median, p95, most_ms);
}

int main(int argc, char **argv)
{
	setenv("QT_QPA_PLATFORM", "offscreen", 0);
	QApplication application(argc, argv);
	make_bench_windows();
	auto *window = new top_window(5000, 2, nullptr);
	auto *list = new track_list(window, 5001);
	window->content->addWidget(list);
	window->resize(1180, 820);
	window->show();
	const std::uint64_t length = 600000;
	const std::vector<strip_note> part = dense(100000 / 64, length),
				      all = dense(100000, length);
	track_strip alone(nullptr);
	alone.resize(740, 130);
	for (const auto *notes : { &part, &all }) {
		alone.show_view({ *notes, length, "" });
		measure(notes == &part ? "a strip of 1560 notes, anew"
				       : "a strip of 100000 notes, anew",
			60, [&](int i) {
				const auto from = static_cast<std::uint64_t>(i) * 9000;
				alone.show_span({ from, from + 24000 }, 4000);
				(void)alone.grab();
			});
	}
	list->set_count(64);
	for (int track = 0; track < 64; track++)
		list->set_strip(track, { part, length, "" });
	measure("a step of the song in all rows in view", 600, [&](int i) {
		list->set_position(i * 35, 1000);
		QApplication::processEvents();
	});
	measure("a step of the scroll bar", 200, [&](int i) {
		list->verticalScrollBar()->setValue(i * 35);
		QApplication::processEvents();
	});
	std::fflush(nullptr);
	std::_Exit(missed ? 1 : 0);
}
