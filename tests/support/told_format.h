// told_format.h - a machine's format as a test reads it from the document, apart from the driver
//
// A run is fields that stand one behind the other and are counted alike. Tests of writers keep
// their tables in it, fill records with it, and work out from it what must be on the wire.

#pragma once
#include "src/parameters.h"
#include "virtual/akai_codec.h"
#include <algorithm>
#include <functional>
#include <map>

namespace velmor
{

// b byte, 7 byte of seven bits, s signed byte, m one less, z the same with FF for 0, n not,
// t tuning, w word low first, a name of twelve bytes, g sign and magnitude, l the same with seven
// bits, p plus 64, v sign and fourteen bits high first, x text with its 0
template <typename record> struct told_run {
	int at; // index of a block, or item of a request
	char as;
	std::vector<member<record>> fields;
	bool special = false; // what the table says
	int step = 0;         // from element to element
};
template <typename record> using told_runs = std::vector<told_run<record>>;

inline std::vector<u8> told_value(char as, i32 v, const char *text)
{
	const auto low = [](i32 n) { return static_cast<u8>(n); };
	const i32 cents = v < 0 ? v - 100 : v, size = v < 0 ? -v : v;
	const u8 sign = v < 0;
	std::vector<u8> name(12);
	machine::put_name(name, 0, text);
	std::vector<u8> whole(text, text + std::string_view(text).size() + 1);
	const std::map<char, std::vector<u8>> all = { { 'b', { low(v) } }, { '7', { low(v) } },
		{ 's', { low(v) } }, { 'm', { low(v - 1) } },
		{ 'z', { v ? low(v - 1) : low(255) } }, { 'n', { low(v == 0) } },
		{ 'w', { low(v), low(v >> 8) } }, { 'a', name },
		{ 't', { low(cents % 100 * 256 / 100), low(cents / 100) } },
		{ 'g', { sign, low(size) } }, { 'l', { sign, low(size & 0x7F) } },
		{ 'p', { low(v + 64) } }, { 'x', whole },
		{ 'v', { sign, low(size >> 7 & 0x7F), low(size & 0x7F) } } };
	return all.at(as);
}

// Each field's run, its place in it from 0, and its bytes.
template <typename record>
void each_told(const told_runs<record> &runs, const record &r,
	const std::function<void(const told_run<record> &, u8, const std::vector<u8> &)> &act)
{
	for (const auto &run : runs)
		for (u8 i = 0; i < run.fields.size(); i++) {
			const auto &field = run.fields[i];
			const auto *text = std::get_if<typename member<record>::text>(&field.field);
			act(run, i, told_value(run.as, field.get(r), text ? r.*(*text) : ""));
		}
}

// Every field at its least (pass 0), its most (1) or a value of its own.
template <typename record>
void fill_told(const told_runs<record> &runs, record &r, int pass, int *seed)
{
	const std::map<char, std::pair<i32, i32>> limits = { { '7', { 0, 127 } },
		{ 's', { -128, 127 } }, { 't', { -5000, 5000 } }, { 'w', { 0, 65535 } },
		{ 'g', { -127, 127 } }, { 'l', { -127, 127 } }, { 'p', { -64, 63 } },
		{ 'v', { -16383, 16383 } } };
	for (const auto &run : runs)
		for (const auto &field : run.fields) {
			const auto known = limits.find(run.as);
			const auto [least, most] =
				known == limits.end() ? std::pair(0, 255) : known->second;
			const i32 own = (++*seed * 37) % 100 - (least < 0 ? 50 : 0);
			field.set(&r, pass == 0 ? least : pass == 1 ? most : own);
			const auto *text = std::get_if<typename member<record>::text>(&field.field);
			if (text)
				copy_text(r.*(*text),
					pass ? format_text("Zone#%d.:+- abc", *seed) : "");
		}
}

} // namespace velmor
