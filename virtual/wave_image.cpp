// wave_image.cpp - a sample as the USB machines keep and send it: a WAV file

#include "virtual/wave_image.h"
#include <cstring>
#include <string_view>

namespace velmor
{

using bytes_in = std::span<const std::uint8_t>;

static std::uint32_t number(bytes_in b, std::size_t at, int width)
{
	std::uint32_t value = 0;
	for (int i = width; i-- > 0;)
		value = value << 8 | (at + static_cast<std::size_t>(i) < b.size()
						     ? b[at + static_cast<std::size_t>(i)]
						     : 0u);
	return value;
}

static bool is(bytes_in b, std::size_t at, std::string_view word)
{
	return at + word.size() <= b.size() &&
	       std::memcmp(b.data() + at, word.data(), word.size()) == 0;
}

static void read_format(bytes_in b, std::size_t at, wave_facts *f)
{
	f->channels = static_cast<std::uint16_t>(number(b, at + 10, 2));
	f->rate = number(b, at + 12, 4);
	f->bits = static_cast<std::uint16_t>(number(b, at + 22, 2));
}

static void read_sampler(bytes_in b, std::size_t at, std::size_t size, wave_facts *f)
{
	f->note = static_cast<std::uint8_t>(number(b, at + 20, 1) & 0x7F);
	if (number(b, at + 36, 4) > 0 && size >= 60) {
		f->loop_start = number(b, at + 52, 4);
		f->loop_end = number(b, at + 56, 4);
	}
	if (size < 78)
		return;
	f->note = static_cast<std::uint8_t>(number(b, at + 70, 1) & 0x7F);
	f->semitones = static_cast<std::uint8_t>(number(b, at + 71, 1));
	f->fine = static_cast<std::uint8_t>(number(b, at + 72, 1));
	f->playback = static_cast<std::uint8_t>(number(b, at + 74, 1) & 0x7F);
	f->start = number(b, at + 78, 4);
	f->end = number(b, at + 82, 4);
}

bool read_wave(bytes_in b, wave_facts *facts)
{
	*facts = {};
	if (!is(b, 0, "RIFF") || !is(b, 8, "WAVE"))
		return false;
	bool format = false;
	for (std::size_t at = 12; at + 8 <= b.size();) {
		const std::size_t size = number(b, at + 4, 4);
		if (is(b, at, "data")) {
			facts->header = at + 8;
			facts->data = size;
			break;
		}
		if (is(b, at, "fmt ") && size >= 16) {
			read_format(b, at, facts);
			format = true;
		}
		if (is(b, at, "smpl"))
			read_sampler(b, at, size, facts);
		at += 8 + size;
	}
	const std::size_t frame = facts->channels * (facts->bits / 8u);
	if (!format || facts->header == 0 || frame == 0 || facts->rate == 0 ||
		facts->data > b.size() - facts->header)
		return false;
	facts->frames = static_cast<std::uint32_t>(facts->data / frame);
	if (facts->end == 0)
		facts->end = facts->frames;
	return true;
}

static void put(std::vector<std::uint8_t> *b, std::uint32_t value, int width)
{
	for (int i = 0; i < width; i++)
		b->push_back(static_cast<std::uint8_t>(value >> 8 * i));
}

static void put(std::vector<std::uint8_t> *b, std::string_view word)
{
	b->insert(b->end(), word.begin(), word.end());
}

static void put_format(std::vector<std::uint8_t> *b, const wave_facts &f)
{
	const std::uint32_t frame = f.channels * 2u;
	put(b, "fmt ");
	put(b, 18, 4);
	put(b, 1, 2); // PCM
	put(b, f.channels, 2);
	put(b, f.rate, 4);
	put(b, f.rate * frame, 4);
	put(b, frame, 2);
	put(b, 16, 2);
	put(b, 0, 2);
	put(b, "fact");
	put(b, 4, 4);
	put(b, f.frames, 4);
}

static void put_sampler(std::vector<std::uint8_t> *b, const wave_facts &f)
{
	put(b, "smpl");
	put(b, 78, 4);
	put(b, 0x01000047, 4); // manufacturer
	put(b, 0x5E, 4);
	put(b, 1000000000u / f.rate, 4);
	put(b, f.note, 4);
	put(b, 0, 4);
	put(b, 0, 4);
	put(b, 0, 4);
	put(b, 1, 4); // loops
	put(b, 18, 4);
	put(b, "loop");
	put(b, 0, 4);
	put(b, f.loop_start, 4);
	put(b, f.loop_end, 4);
	put(b, 0, 4);
	put(b, 0, 4);
	put(b, 0, 2);
	put(b, f.note, 1);
	put(b, f.semitones, 1);
	put(b, f.fine, 1);
	put(b, 0, 1);
	put(b, f.playback, 1);
	put(b, 0, 3);
	put(b, f.start, 4);
	put(b, f.end, 4);
}

std::vector<std::uint8_t> make_wave(std::span<const std::int16_t> words, wave_facts f)
{
	f.frames = static_cast<std::uint32_t>(words.size() / f.channels);
	if (f.end == 0)
		f.end = f.frames;
	const auto size = static_cast<std::uint32_t>(words.size() * 2);
	std::vector<std::uint8_t> b;
	b.reserve(144 + size);
	put(&b, "RIFF");
	put(&b, size + 136, 4);
	put(&b, "WAVE");
	put_format(&b, f);
	put_sampler(&b, f);
	put(&b, "data");
	put(&b, size, 4);
	for (std::int16_t word : words)
		put(&b, static_cast<std::uint16_t>(word), 2);
	return b;
}

} // namespace velmor
