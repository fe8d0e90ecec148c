// bench_waveform.cpp - painting ten minutes of sound at every zoom
//
// Fails above 8 ms for one picture, also while the peaks are still being looked for. Runs without
// a display.

#include "platform/host.h"
#include "src/velmor_peaks.h"
#include "ui/qt_ui.h"
#include "ui/waveform.h"
#include <QApplication>
#include <QImage>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

using namespace velmor;

static constexpr double most_ms = 8;
static bool missed = false;

static double milliseconds(const std::function<void()> &work)
{
	const auto began = std::chrono::steady_clock::now();
	work();
	const std::chrono::duration<double, std::milli> passed =
		std::chrono::steady_clock::now() - began;
	return passed.count();
}

static void paint(waveform_widget *picture, QImage *into, const char *when)
{
	std::vector<double> taken;
	for (int i = 0; i < 15; i++)
		taken.push_back(milliseconds([&] { picture->render(into); }));
	std::sort(taken.begin(), taken.end());
	const double median = taken[taken.size() / 2];
	missed |= median > most_ms;
	std::printf("%12.0f words in view, %-9s %6.2f ms (at most %.0f)\n", picture->count_shown(),
		when, median, most_ms);
}

int main(int argc, char **argv)
{
	setenv("QT_QPA_PLATFORM", "offscreen", 0);
	QApplication application(argc, argv);
	host.ui = &qt_ui; // the picture has words
	std::vector<std::int16_t> words(44100 * 600);
	for (std::size_t i = 0; i < words.size(); i++)
		words[i] =
			static_cast<std::int16_t>(20000 * std::sin(static_cast<double>(i) * 0.03) +
						  static_cast<double>(i * 2654435761u % 8000));
	waveform_widget picture("", nullptr);
	picture.resize(1600, 300);
	QImage into(picture.size(), QImage::Format_RGB32);
	const waveform_view view = { words, 44100, words.size() / 3, words.size() / 2 };
	std::printf("shown after %.1f ms\n", milliseconds([&] { picture.show_view(&view); }));
	paint(&picture, &into, "growing");
	while (QApplication::processEvents(), picture.growing_still())
		;
	for (double factor = 1; picture.count_shown() > 16; factor = 0.5) {
		picture.zoom(factor, picture.length() / 2.0 + 0.3);
		paint(&picture, &into, "known");
	}
	std::fflush(nullptr);
	std::_Exit(missed ? 1 : 0);
}
