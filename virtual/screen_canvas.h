// screen_canvas.h - a drawing of one bit a pixel, and its two forms on the wire
//
// On the wire a row follows a row, eight pixels a byte. The S5000 sends the leftmost pixel of
// the eight in the least significant bit, and a set bit is light; the Z4, the Z8 and the
// MPC 4000 send it in the most significant one, and a set bit is dark.
//
// What is drawn beyond an edge is cut off.
//
// Knows nothing of: what is drawn, the system under src/.

#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace velmor
{

struct screen_box {
	int x, y, width, height;
	int right() const { return x + width; }
	int bottom() const { return y + height; }
};

enum class wire_bits {
	leftmost_lowest_set_is_light,
	leftmost_highest_set_is_dark,
};

inline constexpr int letter_width = 6, letter_height = 8; // with the gap to the next one

class screen_canvas
{
public:
	const int width, height;

	screen_canvas(int columns, int rows);
	bool dark(int x, int y) const;
	std::vector<std::uint8_t> on_wire(wire_bits bits) const;

	void clear();
	void dot(int x, int y, bool is_dark = true);
	void fill(screen_box b, bool is_dark = true);
	void turn_over(screen_box b); // dark to light and light to dark
	void frame(screen_box b);
	void line(int x1, int y1, int x2, int y2);
	// Words from their upper left corner; large ones are twice the size, with their corners
	// smoothed.
	void words(int x, int y, const std::string &text);
	void large_words(int x, int y, const std::string &text);
	void words_right(int right, int y, const std::string &text);
	void words_centred(screen_box b, const std::string &text);

private:
	std::vector<bool> pixels;
};

// Whether a letter has a dot there, of 5 columns and 8 rows.
bool letter_dot(char letter, int column, int row);

inline int words_width(const std::string &text)
{
	return text.empty() ? 0 : static_cast<int>(text.size()) * letter_width - 1;
}

// So much of a text as goes into a width.
std::string words_cut(const std::string &text, int width);

} // namespace velmor
