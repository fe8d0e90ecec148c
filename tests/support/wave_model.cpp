// wave_model.cpp - what a conversion of a WAV file has to give, told slowly and plainly

#include "tests/support/wave_model.h"
#include <cmath>
#include <cstring>
#include <string>

namespace wave_model
{

using word = std::uint64_t;

static unsigned byte_of(const bytes &file, word at)
{
	return at < file.size() ? file[at] : 0;
}

static word number(const bytes &file, word at, int count)
{
	word out = 0;
	for (int i = count - 1; i >= 0; i--)
		out = out * 256 + byte_of(file, at + static_cast<word>(i));
	return out;
}

static void set(bytes &file, word at, word value, int count)
{
	for (int i = 0; i < count; i++, value /= 256)
		if (at + static_cast<word>(i) < file.size())
			file[at + static_cast<word>(i)] = static_cast<std::uint8_t>(value % 256);
}

static std::string name(const bytes &file, word at)
{
	std::string out;
	for (word i = 0; i < 4; i++)
		out += static_cast<char>(byte_of(file, at + i));
	return out;
}

static word doubled(long times)
{
	std::uint32_t power = 1;
	while (times-- > 0)
		power = power + power;
	return power;
}

static word raw_value(const bytes &file, word at, word bits)
{
	if (bits == 12) {
		std::int64_t value = static_cast<std::int64_t>(number(file, at, 2) % 4096);
		if (value >= 2049)
			value = value - 4096;
		return static_cast<word>(value * 4096);
	}
	if (bits == 16)
		return number(file, at, 2) * 256;
	if (bits == 24 || bits == 32)
		return number(file, at, 3);
	return 0;
}

static std::int64_t signed_value(const bytes &file, word at, word bits)
{
	const std::int64_t raw = static_cast<std::int64_t>(raw_value(file, at, bits));
	if ((bits == 16 || bits == 24) && raw >= 0x800000)
		return raw - 0x1000000;
	return raw;
}

struct track {
	std::vector<std::int64_t> sign;
	std::vector<word> raw;
};

static track converted(const track &old, double factor, word frames, word new_frames)
{
	track out;
	for (word i = 0; i < new_frames; i++) {
		volatile double pos = static_cast<double>(i) * factor;
		const word idx = static_cast<word>(pos);
		const double frac = pos - static_cast<double>(idx);
		word near = idx;
		if (frac >= 0.5)
			near = idx + 1;
		if (near >= frames)
			near = near - 1;
		if (near >= frames)
			near = frames - 1;
		if (near < frames - 1) {
			const double s0 = static_cast<double>(old.sign[idx]);
			const double s1 = static_cast<double>(old.sign[idx + 1]);
			volatile double d = std::fabs(s1 - s0) * frac;
			const double result = s1 > s0 ? s0 + d : s0 - d;
			const std::int64_t whole = static_cast<std::int64_t>(result);
			out.sign.push_back(whole);
			out.raw.push_back(static_cast<word>(whole));
		} else {
			out.sign.push_back(old.sign[near]);
			out.raw.push_back(old.raw[near]);
		}
	}
	return out;
}

static word shifted(word value, long shifter)
{
	if (shifter > 0)
		return value / doubled(shifter);
	return value * doubled(-shifter);
}

static std::int64_t shifted_signed(std::int64_t value, long shifter)
{
	if (shifter > 0)
		return value / static_cast<std::int64_t>(doubled(shifter));
	return value * static_cast<std::int64_t>(doubled(-shifter));
}

std::optional<bytes> resample(
	const bytes &source, unsigned channels, unsigned mode, unsigned bits, std::uint64_t rate)
{
	if (name(source, 0) != "RIFF" || name(source, 8) + name(source, 12) != "WAVEfmt ")
		return {};
	const word fmt_length = number(source, 16, 4), old_channels = number(source, 22, 2);
	const word old_rate = number(source, 24, 4), old_frame = number(source, 32, 2);
	const word old_bits = number(source, 34, 2);
	if (old_frame == 0 || old_channels == 0)
		return {};
	if (old_rate != rate && (old_rate == 0 || rate == 0))
		return {};

	word at = fmt_length + 20, smpl = 0;
	while (at < source.size() && name(source, at) != "data") {
		if (name(source, at) == "smpl")
			smpl = at;
		at += 8 + number(source, at + 4, 4);
	}
	if (at >= source.size())
		return {};
	const word start = at + 8;
	word length = number(source, at + 4, 4);
	if (start + length > source.size())
		length = start < source.size() ? source.size() - start : 0;
	word frames = length / old_frame;

	track left, right;
	for (word i = 0; i < frames; i++) {
		const word l = start + i * old_frame;
		const word r = l + (old_channels - 1) * old_frame / old_channels;
		left.sign.push_back(signed_value(source, l, old_bits));
		left.raw.push_back(raw_value(source, l, old_bits));
		right.sign.push_back(signed_value(source, r, old_bits));
		right.raw.push_back(raw_value(source, r, old_bits));
	}

	bytes out(source.begin(),
		source.begin() + static_cast<long>(std::min<word>(start, source.size())));
	out.resize(start);
	if (old_rate != rate) {
		const double factor = static_cast<double>(old_rate) / static_cast<double>(rate);
		const word smpl_end = smpl + 8 + number(source, smpl + 4, 4);
		auto held = [&](word field) { return field + 4 <= smpl_end; };
		if (smpl && held(smpl + 16))
			set(out, smpl + 16, 1000000000 / rate, 4);
		const word loops = smpl && held(smpl + 36) ? number(source, smpl + 36, 4) : 0;
		for (word i = 0; i < loops && held(smpl + 44 + 24 * i + 12); i++)
			for (const word field : { smpl + 44 + 24 * i + 8, smpl + 44 + 24 * i + 12 })
				set(out, field,
					static_cast<word>(
						static_cast<double>(number(out, field, 4)) /
						factor),
					4);
		const word new_frames = static_cast<word>(static_cast<double>(frames) / factor);
		left = converted(left, factor, frames, new_frames);
		right = converted(right, factor, frames, new_frames);
		frames = new_frames;
	}

	const word frame = (bits / 8 + (bits % 8 != 0)) * channels;
	const long shifter = 24 - static_cast<long>(bits);
	const word data_size = frame * frames;
	if (start + data_size > 0xFFFFFFFF)
		return {};
	set(out, 32, frame, 2);
	set(out, 34, bits, 2);
	set(out, 22, channels, 2);
	set(out, 4, start + data_size - 8, 4);
	set(out, 24, rate, 4);
	set(out, start - 4, data_size, 4);

	out.resize(start + data_size + 16);
	const int wide = bits < 24 ? 2 : bits == 24 ? 3 : bits > 31 ? 4 : 0;
	for (word i = 0; i < frames; i++) {
		const word first = start + i * frame;
		if (old_channels == channels) {
			set(out, first, shifted(left.raw[i], shifter), bits < 24 ? 2 : 3);
		} else if (channels == 2) {
			const word value = shifted(left.raw[i], shifter);
			const word second = first + (channels - 1) * frame / channels;
			const bool both = mode & 2, only_second = !both && (mode & 1);
			set(out, first, only_second ? 0 : value, wide);
			set(out, second, both || only_second ? value : 0, wide);
		} else if (channels == 1) {
			word value = shifted(left.raw[i], shifter);
			if (mode & 1)
				value = shifted(right.raw[i], shifter);
			else if (mode & 2)
				value = static_cast<word>(
					(shifted_signed(left.sign[i], shifter) +
						shifted_signed(right.sign[i], shifter)) /
					2);
			set(out, first, value, wide);
		}
	}
	out.resize(start + data_size);
	return out;
}

std::optional<bytes> akai_it(const bytes &source, unsigned pitch)
{
	if (source.size() < 46)
		return {};
	const word fmt_length = number(source, 16, 4), frame = number(source, 32, 2);
	const word rate = number(source, 24, 2);
	bytes out(source.begin(), source.begin() + 38);
	if (fmt_length != 18) {
		set(out, 16, 18, 4);
		set(out, 36, 0, 2);
	}
	auto append = [&](word from, word count) {
		for (word i = 0; i < count; i++)
			out.push_back(static_cast<std::uint8_t>(byte_of(source, from + i)));
	};
	auto append_number = [&](word value) {
		for (int i = 0; i < 4; i++, value /= 256)
			out.push_back(static_cast<std::uint8_t>(value % 256));
	};
	auto append_name = [&](const char *text) { out.insert(out.end(), text, text + 4); };
	word fact = 0, smpl = 0, at = fmt_length + 20;
	for (; at < source.size() && name(source, at) != "data";
		at += 8 + number(source, at + 4, 4)) {
		if (name(source, at) == "fact")
			fact = at;
		if (name(source, at) == "smpl")
			smpl = at;
	}
	if (at >= source.size())
		return {};
	word length = number(source, at + 4, 4);
	if (at + 8 + length > source.size())
		length = at + 8 < source.size() ? source.size() - at - 8 : 0;
	if ((!fact && frame == 0) || (!smpl && rate == 0))
		return {};
	if (fact) {
		append(fact, 8 + number(source, fact + 4, 4));
	} else {
		append_name("fact");
		append_number(4);
		append_number(length / frame);
	}
	if (smpl) {
		append(smpl, 8 + number(source, smpl + 4, 4));
	} else {
		append_name("smpl");
		append_number(36);
		append_number(0x01000047);
		append_number(0x5E);
		append_number(1000000000 / rate);
		append_number(pitch % 256);
		for (int i = 0; i < 5; i++)
			append_number(0);
	}
	append_name("data");
	append_number(length);
	append(at + 8, length);
	set(out, 4, out.size() - 8, 4);
	return out;
}

} // namespace wave_model
