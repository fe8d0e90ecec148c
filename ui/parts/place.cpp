// place.cpp - where the windows stand: remembered in the settings, and on a screen in any case

#include "ui/parts/place.h"
#include "platform/host.h"
#include "src/velmor_window.h"
#include "ui/parts/window.h"
#include <QApplication>
#include <QScreen>
#include <QSplitter>
#include <charconv>

namespace velmor
{

// What must be seen of a window to take hold of it, and room for the desktop's frame.
static constexpr int grip_width = 64, grip_height = 24, frame_width = 16, frame_height = 48;

static std::string key_of(const top_window *window)
{
	return format_text("window_%d", window->id);
}

static std::vector<int> numbers_in(std::string_view text)
{
	std::vector<int> all;
	while (!text.empty()) {
		int number = 0;
		const auto [rest, error] =
			std::from_chars(text.data(), text.data() + text.size(), number);
		if (error != std::errc())
			break;
		all.push_back(number);
		text.remove_prefix(static_cast<std::size_t>(rest - text.data()));
		text = text.substr(std::min(text.size(), text.find_first_not_of(' ')));
	}
	return all;
}

// The part of a screen that shows the upper edge of a window, or none.
static QRect screen_of(const QRect &window)
{
	const QRect edge(window.left(), window.top(), window.width(), grip_height);
	for (const QScreen *screen : QGuiApplication::screens()) {
		const QRect seen = edge & screen->availableGeometry();
		if (seen.width() >= grip_width && seen.height() >= grip_height)
			return screen->availableGeometry();
	}
	return {};
}

// ---- Remembering --------------------------------------------------------------------------------

void remember_place(const top_window *window)
{
	if (!window->has_place)
		return;
	const bool maximized = window->isMaximized();
	const QRect place =
		maximized ? window->normalGeometry() : QRect(window->pos(), window->size());
	std::string text = format_text("%d %d %d %d %d", place.left(), place.top(), place.width(),
		place.height(), maximized ? 1 : 0);
	for (const QSplitter *splitter : window->findChildren<QSplitter *>())
		for (const int size : splitter->sizes())
			text += format_text(" %d", size);
	char before[setting_size];
	const std::string key = key_of(window);
	if (text.size() < setting_size &&
		(host.settings->load_key(key.c_str(), before) != 0 || text != before))
		// Not worth a word: the next start opens the window as if for the first time.
		(void)host.settings->save_key(key.c_str(), text.c_str());
}

int kept_setting(const char *name)
{
	char text[setting_size];
	const std::vector<int> numbers =
		host.settings->load_key(name, text) == 0 ? numbers_in(text) : std::vector<int>();
	return numbers.empty() ? -1 : numbers.front();
}

// As a place, not worth a word.
void keep_setting(const char *name, int value)
{
	(void)host.settings->save_key(name, format_text("%d", value).c_str());
}

void remember_places()
{
	for (const QWidget *widget : QApplication::topLevelWidgets())
		if (const auto *window = dynamic_cast<const top_window *>(widget);
			window && window->isVisible())
			remember_place(window);
}

// ---- Restoring ----------------------------------------------------------------------------------

// Sizes that do not belong to these splitters are left alone.
static void restore_splitters(const top_window *window, std::span<const int> sizes)
{
	std::size_t due = 0;
	const QList<QSplitter *> splitters = window->findChildren<QSplitter *>();
	for (const QSplitter *splitter : splitters)
		due += static_cast<std::size_t>(splitter->count());
	if (sizes.size() != due)
		return;
	for (QSplitter *splitter : splitters) {
		const auto count = static_cast<std::size_t>(splitter->count());
		splitter->setSizes({ sizes.begin(), sizes.begin() + splitter->count() });
		sizes = sizes.subspan(count);
	}
}

QRect beside(const QRect &other, const QSize &size, const QRect &screen)
{
	const int right = screen.right() - other.right(), left = other.left() - screen.left();
	QRect place(other.topLeft(), size);
	if (right >= size.width() || right >= left)
		place.moveLeft(std::min(other.right() + 1, screen.right() - size.width() + 1));
	else
		place.moveLeft(std::max(other.left() - size.width(), screen.left()));
	// What cannot stand beside it leaves its upper edge free.
	if (place.intersects(other))
		place.moveTop(other.top() + frame_height);
	place.moveTop(std::min(place.top(), screen.bottom() - size.height() + 1));
	place.moveTop(std::max(place.top(), screen.top()));
	place.moveLeft(std::max(place.left(), screen.left()));
	return place;
}

static void place_first(top_window *window)
{
	const QWidget *main = window->parentWidget();
	if (!main || !main->isVisible())
		return;
	const QSize size = window->size() + QSize(frame_width / 2, frame_height * 2 / 3);
	window->move(
		beside(main->frameGeometry(), size, main->screen()->availableGeometry()).topLeft());
}

void restore_place(top_window *window)
{
	char text[setting_size];
	std::vector<int> numbers;
	if (host.settings->load_key(key_of(window).c_str(), text) == 0)
		numbers = numbers_in(text);
	if (numbers.size() < 5)
		return place_first(window);
	restore_splitters(window, std::span(numbers).subspan(5));
	const QRect place(numbers[0], numbers[1], numbers[2], numbers[3]);
	const QRect screen = screen_of(place);
	if (screen.isNull())
		return place_first(window);
	if (window->keeps_size)
		window->resize(place.size()
				       .boundedTo(screen.size() - QSize(frame_width, frame_height))
				       .expandedTo(window->minimumSizeHint()));
	window->move(place.topLeft());
	if (numbers[4] == 1 && window->keeps_size)
		window->setWindowState(window->windowState() | Qt::WindowMaximized);
}

} // namespace velmor
