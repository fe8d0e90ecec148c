// screen_drawings.cpp - what stands beside the rows of a page

#include "virtual/screen_drawings.h"
#include "virtual/screen_pages.h"
#include "virtual/usb_sampler.h"
#include <algorithm>
#include <cmath>

namespace velmor
{

static screen_box inside(screen_box b, int by)
{
	return { b.x + by, b.y + by, b.width - 2 * by, b.height - 2 * by };
}

// A bar from the foot of a box up to so much of a whole.
static void rising_bar(screen_canvas &c, screen_box b, int part, int whole)
{
	const int height = b.height * std::clamp(part, 0, whole) / whole;
	c.fill({ b.x, b.bottom() - height, b.width, height });
}

static void dotted_line(screen_canvas &c, int x1, int y1, int x2, int y2)
{
	for (int x = x1, y = y1; x <= x2 && y <= y2; x1 == x2 ? y += 3 : x += 3)
		c.dot(x, y);
}

// ---- Keyboard ----------------------------------------------------------------------------

// Of the 75 white keys of 128 notes, how many lie below a note.
static int white_keys_below(int note)
{
	static const int in_octave[] = { 0, 1, 1, 2, 2, 3, 4, 4, 5, 5, 6, 6 };
	return note / 12 * 7 + in_octave[note % 12];
}

static bool is_black(int note)
{
	return white_keys_below(note + 1) == white_keys_below(note);
}

static constexpr int lowest_drawn = 21, white_drawn = 52; // as on a piano

static int key_place(screen_box b, int note)
{
	const int white = white_keys_below(note) - white_keys_below(lowest_drawn);
	return b.x + std::clamp(white, 0, white_drawn) * b.width / white_drawn;
}

static void draw_keys(screen_canvas &c, screen_box b)
{
	const int white = b.width / white_drawn, black = white > 4 ? 3 : 2;
	c.frame({ b.x, b.y, b.width + 1, b.height });
	for (int note = lowest_drawn; note <= 108; note++) {
		const int x = key_place(b, note);
		if (is_black(note))
			c.fill({ x - black / 2, b.y, white > 1 ? black : 1, b.height * 3 / 5 });
		else if (white > 1)
			c.line(x, b.y, x, b.bottom() - 1);
	}
}

// Each keygroup is a bar over the keys that it sounds on; the chosen one is full.
void draw_keyboard(screen &s, screen_canvas &c, screen_box b)
{
	const int width = (b.width - 6) / white_drawn * white_drawn;
	const int keys_height = b.height * 2 / 5, count = s.keygroups(s.chosen.program);
	const screen_box keys = { b.x + (b.width - width) / 2, b.bottom() - keys_height - 3, width,
		keys_height };
	const int room = keys.y - b.y - 5;
	const int lanes = std::clamp(room / 6, 1, std::max(1, count));
	const int step = std::min(12, room / lanes);
	c.frame(b);
	draw_keys(c, keys);
	for (int k = 0; k < count; k++) {
		const auto [low, high] = s.span(s.chosen.program, k);
		const int x = key_place(keys, low), right = key_place(keys, high + 1);
		const screen_box bar = { x, b.y + 4 + k % lanes * step, std::max(3, right - x + 1),
			step - 1 };
		k == s.chosen.keygroup ? c.fill(bar) : c.frame(bar);
	}
}

// ---- Sound -------------------------------------------------------------------------------

struct wave_peaks {
	int low = 0, high = 0;
};

// Of one column; at most 64 words of it are looked at.
static wave_peaks peaks_of(
	const usb_bytes &wave, const wave_facts &f, std::size_t first, std::size_t last)
{
	wave_peaks p;
	const std::size_t step = std::max<std::size_t>(1, (last - first) / 64);
	for (std::size_t i = first; i < last; i += step) {
		const std::size_t at = f.header + i * f.channels * 2u;
		if (at + 1 >= wave.size())
			break;
		const int word = static_cast<std::int16_t>(wave[at] | wave[at + 1] << 8);
		p = { std::min(p.low, word), std::max(p.high, word) };
	}
	return p;
}

void draw_wave(screen &s, screen_canvas &c, screen_box b)
{
	const int place = within(s.chosen.sample, s.machine.samples.size());
	wave_facts f;
	c.frame(b);
	if (place < 0)
		return;
	const usb_bytes &wave = s.machine.samples[static_cast<std::size_t>(place)].wave;
	if (!read_wave(wave, &f) || f.bits != 16 || f.frames == 0)
		return;
	const screen_box in = inside(b, 2);
	const int middle = in.y + in.height / 2;
	dotted_line(c, in.x, middle, in.right() - 1, middle);
	for (int x = 0; x < in.width; x++) {
		const auto frame = [&](int column) {
			return static_cast<std::size_t>(column) * f.frames /
			       static_cast<std::size_t>(in.width);
		};
		const wave_peaks p =
			peaks_of(wave, f, frame(x), std::max(frame(x) + 1, frame(x + 1)));
		c.line(in.x + x, middle - p.high * in.height / 65536, in.x + x,
			middle - p.low * in.height / 65536);
	}
	for (const std::uint32_t at : { f.loop_start, f.loop_end })
		if (f.loop_end > f.loop_start && at <= f.frames) {
			const int x = in.x + static_cast<int>(static_cast<std::uint64_t>(at) *
							      static_cast<unsigned>(in.width - 1) /
							      f.frames);
			dotted_line(c, x, in.y, x, in.bottom() - 1);
		}
}

// The level swings with the pictures, since a machine that nobody looks at has no time.
void draw_meter(screen &s, screen_canvas &c, screen_box b)
{
	static const int swing[] = { 62, 80, 71, 95, 66, 84, 58, 90, 75, 69, 88 };
	const int count = static_cast<int>(std::size(swing)), segments = (b.width - 24) / 4;
	const int height = std::min(34, (b.height - 8) / 2);
	c.frame(b);
	for (int side = 0; side < 2; side++) {
		const int y = b.y + 3 + side * (height + 2);
		const int level = swing[(s.pictures + side * 4) % count] * s.input_gain / 75;
		const int lit = std::min(level, 100) * segments / 100;
		c.words(b.x + 5, y + (height - letter_height) / 2 + 1, side ? "R" : "L");
		for (int i = 0; i < segments; i++) {
			const screen_box one = { b.x + 16 + i * 4, y, 3, height };
			i < lit ? c.fill(one) : c.fill({ one.x, one.bottom() - 1, 3, 1 });
		}
	}
}

// ---- Mix, effects, memory ----------------------------------------------------------------

void draw_mix(screen &s, screen_canvas &c, screen_box b)
{
	const int step = b.width / static_cast<int>(s.parts.size());
	for (std::size_t i = 0; i < s.parts.size(); i++) {
		const screen_box bar = { b.x + static_cast<int>(i) * step, b.y, step - 1,
			b.height };
		if (s.parts[i].program < 0) {
			c.fill({ bar.x, bar.bottom() - 1, bar.width, 1 });
			continue;
		}
		if (step > 8)
			c.frame(bar);
		rising_bar(c, step > 8 ? inside(bar, 2) : bar, s.parts[i].level, 100);
	}
}

// A chain of boxes, each filled as far as it is sent to; one that is off is passed by.
void draw_effects(screen &s, screen_canvas &c, screen_box b)
{
	const int step = b.width / static_cast<int>(s.effects.size()), middle = b.y + b.height / 2;
	const int height = std::min(40, b.height - 4);
	for (std::size_t i = 0; i < s.effects.size(); i++) {
		const screen_effect &e = s.effects[i];
		const int x = b.x + static_cast<int>(i) * step;
		const screen_box box = { x + 4, middle - height / 2, step - 8, height };
		c.line(x, middle, x + step - 1, middle);
		c.fill(box, false);
		if (!e.on) {
			dotted_line(c, box.x, middle, box.right() - 1, middle);
			continue;
		}
		c.frame(box);
		c.words(box.x + 4, box.y + 4, std::to_string(i + 1));
		rising_bar(c, { box.right() - 6, box.y + 3, 3, box.height - 6 }, e.level, 100);
	}
}

void draw_memory(screen &s, screen_canvas &c, screen_box b)
{
	const screen_box bar = { b.x + 4, b.y + b.height / 2 - 8, b.width - 8, 16 };
	const int used = static_cast<int>(s.memory_used() >> 10);
	const int whole = static_cast<int>(screen_memory >> 10);
	const screen_box in = inside(bar, 2);
	c.frame(bar);
	c.fill({ in.x, in.y, std::max(used > 0 ? 1 : 0, in.width * used / whole), in.height });
	for (int i = 1; i < 8; i++)
		c.line(bar.x + bar.width * i / 8, bar.bottom(), bar.x + bar.width * i / 8,
			bar.bottom() + 3);
}

// ---- Curves ------------------------------------------------------------------------------

void draw_envelope(screen_canvas &c, screen_box b, const screen_envelope &e)
{
	const screen_box in = inside(b, 4);
	const int third = in.width * 3 / 10, foot = in.bottom() - 1;
	const int peak = in.x + third * e.attack / 100, held = peak + third * e.decay / 100;
	const int level = foot - (in.height - 1) * e.sustain / 100;
	const int let_go = std::max(held, in.x + in.width * 7 / 10);
	c.frame(b);
	c.line(in.x, foot, peak, in.y);
	c.line(peak, in.y, held, level);
	c.line(held, level, let_go, level);
	c.line(let_go, level, let_go + third * e.release / 100, foot);
	dotted_line(c, let_go, in.y, let_go, foot);
	for (const auto &[x, y] : { std::pair{ peak, in.y }, { held, level }, { let_go, level } })
		c.fill({ x - 1, y - 1, 3, 3 });
}

// A low-pass filter, in decibels over octaves.
void draw_filter(screen_canvas &c, screen_box b, int cutoff, int resonance)
{
	const screen_box in = inside(b, 3);
	const double damping = 1.5 - resonance * 0.085;
	int before = 0;
	c.frame(b);
	for (int line = 1; line < 4; line++)
		dotted_line(c, in.x + in.width * line / 4, in.y, in.x + in.width * line / 4,
			in.bottom() - 1);
	for (int x = 0; x < in.width; x++) {
		const double octaves = 10.0 * x / in.width - cutoff / 10.0;
		const double w = std::exp2(octaves), square = 1 - w * w;
		const double db = -10 * std::log10(square * square + damping * damping * w * w);
		const int y = in.y + std::clamp(static_cast<int>((18 - db) * in.height / 60), 0,
					     in.height - 1);
		c.line(in.x + x, x ? before : y, in.x + x, y);
		before = y;
	}
}

} // namespace velmor
