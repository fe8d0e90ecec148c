// screen_canvas.cpp - a drawing of one bit a pixel, and its two forms on the wire

#include "virtual/screen_canvas.h"
#include <cstdlib>

namespace velmor
{

screen_canvas::screen_canvas(int columns, int rows)
	: width(columns), height(rows), pixels(static_cast<std::size_t>(columns * rows))
{
}

bool screen_canvas::dark(int x, int y) const
{
	const bool inside = x >= 0 && y >= 0 && x < width && y < height;
	return inside && pixels[static_cast<std::size_t>(y * width + x)];
}

std::vector<std::uint8_t> screen_canvas::on_wire(wire_bits bits) const
{
	const bool light_is_set = bits == wire_bits::leftmost_lowest_set_is_light;
	std::vector<std::uint8_t> bytes(pixels.size() / 8);
	for (std::size_t i = 0; i < bytes.size() * 8; i++) {
		const std::size_t bit = light_is_set ? i % 8 : 7 - i % 8;
		if (pixels[i] != light_is_set)
			bytes[i / 8] = static_cast<std::uint8_t>(bytes[i / 8] | 1u << bit);
	}
	return bytes;
}

// ---- Shapes ------------------------------------------------------------------------------

void screen_canvas::clear()
{
	pixels.assign(pixels.size(), false);
}

void screen_canvas::dot(int x, int y, bool is_dark)
{
	if (x >= 0 && y >= 0 && x < width && y < height)
		pixels[static_cast<std::size_t>(y * width + x)] = is_dark;
}

void screen_canvas::fill(screen_box b, bool is_dark)
{
	for (int y = b.y; y < b.bottom(); y++)
		for (int x = b.x; x < b.right(); x++)
			dot(x, y, is_dark);
}

void screen_canvas::turn_over(screen_box b)
{
	for (int y = b.y; y < b.bottom(); y++)
		for (int x = b.x; x < b.right(); x++)
			dot(x, y, !dark(x, y));
}

void screen_canvas::frame(screen_box b)
{
	fill({ b.x, b.y, b.width, 1 });
	fill({ b.x, b.bottom() - 1, b.width, 1 });
	fill({ b.x, b.y, 1, b.height });
	fill({ b.right() - 1, b.y, 1, b.height });
}

void screen_canvas::line(int x1, int y1, int x2, int y2)
{
	const int across = std::abs(x2 - x1), down = std::abs(y2 - y1);
	const int steps = across > down ? across : down;
	for (int i = 0; i <= steps; i++) {
		const int half = steps / 2;
		const auto at = [&](int from, int to, int way) {
			const int part = (way * i + half) / (steps ? steps : 1);
			return to < from ? from - part : from + part;
		};
		dot(at(x1, x2, across), at(y1, y2, down));
	}
}

// ---- Words -------------------------------------------------------------------------------

void screen_canvas::words(int x, int y, const std::string &text)
{
	for (const char letter : text) {
		for (int row = 0; row < letter_height; row++)
			for (int column = 0; column < letter_width; column++)
				if (letter_dot(letter, column, row))
					dot(x + column, y + row);
		x += letter_width;
	}
}

// A dot becomes four. Where two dots meet at their corners only, the quarters between them are
// filled, so that slopes are no stairs.
static bool large_dot(char letter, int x, int y)
{
	const int column = x / 2, row = y / 2;
	if (letter_dot(letter, column, row))
		return true;
	const int beside = x % 2 ? 1 : -1, above = y % 2 ? 1 : -1;
	return letter_dot(letter, column + beside, row) &&
	       letter_dot(letter, column, row + above) &&
	       !letter_dot(letter, column + beside, row + above);
}

void screen_canvas::large_words(int x, int y, const std::string &text)
{
	for (const char letter : text) {
		for (int row = 0; row < letter_height * 2; row++)
			for (int column = 0; column < letter_width * 2; column++)
				if (large_dot(letter, column, row))
					dot(x + column, y + row);
		x += letter_width * 2;
	}
}

void screen_canvas::words_right(int right, int y, const std::string &text)
{
	words(right - words_width(text), y, text);
}

void screen_canvas::words_centred(screen_box b, const std::string &text)
{
	const std::string shown = words_cut(text, b.width);
	words(b.x + (b.width - words_width(shown)) / 2, b.y + (b.height - letter_height + 1) / 2,
		shown);
}

std::string words_cut(const std::string &text, int width)
{
	const int letters = width < 0 ? 0 : (width + 1) / letter_width;
	return text.substr(0, static_cast<std::size_t>(letters));
}

} // namespace velmor
