// journey_panel.cpp - the front panel of a sampler on the USB, worked by hand
//
// After each key the picture in the window is compared, pixel by pixel, with what the virtual
// sampler drew.

#include "programs/journey_parts.h"
#include "src/velmor_window.h"
#include "ui/qt_ui.h"
#include "virtual/screen_canvas.h"
#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QWidget>
#include <filesystem>

namespace velmor
{

// The window asks for a picture four times a second; until the next one has come.
static void wait_for_screen(const usb_stop &stop)
{
	QElapsedTimer waited;
	waited.start();
	for (const int before = stop.sampler.writes;
		stop.sampler.writes == before && waited.elapsed() < 10000;)
		QApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

// Whether a picture shows, at any scale, what the sampler drew when it was last asked.
static bool shows_canvas(const QImage &image, const screen_canvas &canvas)
{
	const int scale = image.width() / canvas.width;
	if (scale < 1 || image.size() != scale * QSize(canvas.width, canvas.height))
		return false;
	for (int y = 0; y < image.height(); y++)
		for (int x = 0; x < image.width(); x++)
			if ((qGray(image.pixel(x, y)) < 128) != canvas.dark(x / scale, y / scale))
				return false;
	return true;
}

static QImage seen_screen()
{
	return find_widget(window_panel, panel_picture)->grab().toImage();
}

static void save_screen(const journey &trip, const usb_stop &stop)
{
	const std::string name = "screen-" + stop.name.substr(stop.name.rfind(' ') + 1) + ".png";
	const std::string file = trip.pictures + "/" + name;
	std::filesystem::remove(file); // of a journey before, or a box would ask
	files_to_choose(trip.pictures, { name });
	press(window_panel, panel_save);
	check(shows_canvas(QImage(QString::fromStdString(file)), stop.sampler.canvas()),
		file + " is what the sampler drew");
	picture(window_panel, ("panel-" + stop.name.substr(stop.name.rfind(' ') + 1)).c_str());
}

void walk_panel(const journey &trip, const usb_stop &stop)
{
	step(("Open the front panel of the " + stop.name + ", and walk its pages").c_str());
	press(window_main, main_lcd);
	check(shows_canvas(seen_screen(), stop.sampler.canvas()), "it shows the sampler's screen");
	for (const panel_step &s : stop.panel) {
		const QImage before = seen_screen();
		if (s.typed)
			type_into(window_panel, panel_picture, s.typed);
		else
			press(window_panel, panel_first_key + s.key);
		wait_for_screen(stop);
		const QImage after = seen_screen();
		check(after != before && shows_canvas(after, stop.sampler.canvas()),
			s.typed ? std::string("the screen shows \"") + s.typed + "\" typed"
				: "the screen follows");
		if (s.pictured)
			save_screen(trip, stop);
	}
	check(stop.sampler.name == stop.name, "the name that was begun is dropped");
	find_widget(window_panel, 0)->close();
}

} // namespace velmor
