// midi_model.cpp - what a Standard MIDI File holds, told slowly and plainly

#include "tests/support/midi_model.h"
#include <cstdio>

namespace midi_model
{
namespace
{

struct reader {
	const bytes &file;
	std::size_t p = 0;

	int byte(std::size_t where) const { return where < file.size() ? file[where] : 0; }
	std::uint64_t big(std::size_t where, int count) const
	{
		std::uint64_t n = 0;
		for (int i = 0; i < count; i++)
			n = n * 256 + static_cast<std::uint64_t>(byte(where + i));
		return n;
	}
	bool says(std::size_t where, const char *name) const
	{
		for (int i = 0; i < 4; i++)
			if (byte(where + i) != name[i])
				return false;
		return true;
	}
	std::uint64_t variable()
	{
		const int a = byte(p++);
		std::uint64_t n = a % 128;
		if (a < 128)
			return n;
		for (int more = 0; more < 3; more++) {
			const int b = byte(p++);
			n = n * 128 + b % 128;
			if (b < 128)
				break;
		}
		return n;
	}
	// The next count bytes, zeros behind the end of the file.
	bytes take(std::uint64_t count)
	{
		bytes out;
		for (std::uint64_t i = 0; i < count; i++)
			out.push_back(static_cast<std::uint8_t>(byte(p++)));
		return out;
	}
	// A length from the file, as far as the file goes; the rest is passed over.
	bytes take_stated()
	{
		const std::uint64_t length = variable(), start = p;
		const std::uint64_t there = start < file.size() ? file.size() - start : 0;
		bytes out = take(length < there ? length : there);
		p = start + length;
		return out;
	}
};

bytes system_bytes(reader &r)
{
	const int status = r.byte(r.p++);
	reader peek = r;
	peek.variable();
	const bool again = peek.byte(peek.p) == 0xF0;
	bytes data = r.take_stated();
	const std::size_t length = data.size() + (status == 0xF0 ? 1 : 0);
	if (again)
		data.insert(data.begin(), 0xF0);
	data.resize(length);
	return data;
}

bool take_meta(reader &r, event &e, track &t, int division)
{
	e.type = r.byte(r.p + 1);
	r.p += 2;
	if ((e.type >= 1 && e.type <= 7) || e.type == 0x7F) {
		e.data = r.take_stated();
		return true;
	}
	static const struct {
		int type, length;
	} fixed[] = { { 0x2F, 0 }, { 0x20, 1 }, { 0x21, 1 }, { 0x51, 3 }, { 0x58, 4 },
		{ 0x59, 2 } };
	for (const auto &f : fixed)
		if (f.type == e.type) {
			e.sub = r.byte(r.p++);
			e.data = r.take(static_cast<std::uint64_t>(f.length));
			if (e.type == 0x58) {
				t.numerator = e.data[0];
				t.denominator = 1 << (e.data[1] < 30 ? e.data[1] : 30);
				t.bar = t.numerator * division * 4 / t.denominator;
			}
			return true;
		}
	return false;
}

int channel_length(int status)
{
	return status / 16 == 0xC || status / 16 == 0xD ? 2 : 3;
}

bool take_track(reader &r, track &t, int division)
{
	if (!r.says(r.p, "MTrk"))
		return false;
	const std::uint64_t start = r.p + 8, length = r.big(r.p + 4, 4);
	std::uint64_t time = 0;
	int last_length = 0;
	t.bar = division * 4;
	for (r.p = start; r.p < start + length && r.p < r.file.size();) {
		event e = { 0, r.variable() * (division == 0 ? 0 : 960 / division), -1, -1, {} };
		time += e.delta;
		e.time = time;
		const int status = r.byte(r.p);
		if (status == 0xFF) {
			if (!take_meta(r, e, t, division))
				return false;
		} else if (status >= 0xF0) {
			e.data = system_bytes(r);
		} else {
			if (status >= 0x80)
				last_length = channel_length(status);
			e.data = r.take(static_cast<std::uint64_t>(last_length));
		}
		t.events.push_back(e);
	}
	r.p = start + length;
	return true;
}

} // namespace

std::optional<song> read(const bytes &file)
{
	reader r{ file };
	if (!r.says(0, "MThd") || r.big(4, 4) != 6)
		return std::nullopt;
	song s;
	s.format = static_cast<int>(r.big(8, 2));
	s.division = static_cast<int>(r.big(12, 2));
	r.p = 14;
	for (std::uint64_t i = 0; i < r.big(10, 2); i++)
		if (!take_track(r, s.tracks.emplace_back(), s.division))
			return std::nullopt;
	return s;
}

std::string text_of(const event &e)
{
	std::string text = std::to_string(e.time) + "+" + std::to_string(e.delta);
	char hex[24];
	if (e.type >= 0) {
		std::snprintf(hex, sizeof hex, " %02X/%d", e.type, e.sub);
		text += hex;
	}
	text += " [";
	for (std::size_t i = 0; i < e.data.size(); i++) {
		std::snprintf(hex, sizeof hex, i ? " %02X" : "%02X", e.data[i]);
		text += hex;
	}
	return text + "]\n";
}

} // namespace midi_model
