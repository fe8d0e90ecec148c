// velmor_forms_units.cpp - how people see numbers, notes and samples in a form
//
// Numbers are written with a full stop and never follow the locale; a comma is understood.

#include "src/velmor_forms.h"
#include <charconv>
#include <cmath>

namespace velmor
{

// ---- Numbers --------------------------------------------------------------------------------------

std::string hundredths(i32 value)
{
	const long long size = value < 0 ? -static_cast<long long>(value) : value;
	return format_text("%s%lld.%02lld", value < 0 ? "-" : "", size / 100, size % 100);
}

// The number that a text begins with, times so much, rounded; nothing where there is none.
std::optional<i32> typed_number(std::string typed, double times)
{
	const std::size_t first = typed.find_first_not_of(" \t");
	if (first == typed.npos)
		return {};
	typed.erase(0, typed[first] == '+' ? first + 1 : first);
	if (const std::size_t comma = typed.find(','); comma != typed.npos)
		typed[comma] = '.';
	double number = 0;
	const auto end = std::from_chars(
		typed.data(), typed.data() + typed.size(), number, std::chars_format::fixed);
	number *= times;
	if (end.ec != std::errc{} || !(std::fabs(number) < 2e9))
		return {};
	// Fractions of what has none are cut.
	return static_cast<i32>(std::fabs(times) == 1 ? std::trunc(number) : std::round(number));
}

static std::optional<i32> typed_cents(const std::string &typed)
{
	return typed_number(typed, 100);
}

// A signed byte or word that the record holds without a sign. Numbers that no such byte or word
// can be stay what they are.
template <i32 span> static i32 with_sign(i32 held)
{
	return held >= span / 2 && held < span ? held - span : held;
}

template <i32 span> static i32 without_sign(i32 shown)
{
	return shown < 0 ? shown + span : shown;
}

// ---- Pan ------------------------------------------------------------------------------------------

static std::string pan_text(i32 shown)
{
	return shown == 0 ? "MID" : format_text("%c%d", shown < 0 ? 'L' : 'R', std::abs(shown));
}

static std::optional<i32> typed_pan(const std::string &typed)
{
	if (typed == "MID" || typed == "mid")
		return 0;
	const bool left = typed.starts_with('L') || typed.starts_with('l');
	const bool right = typed.starts_with('R') || typed.starts_with('r');
	return typed_number(left || right ? typed.substr(1) : typed, left ? -1 : 1);
}

// clang-format off
//                                      word         from and to the record                 in the field
const form_unit unit_semitones        = { "semitones" };
const form_unit unit_cents            = { "semitones", nullptr,          nullptr,             hundredths, typed_cents };
const form_unit unit_signed_byte      = { "",          with_sign<256>,   without_sign<256> };
const form_unit unit_signed_word      = { "",          with_sign<65536>, without_sign<65536> };
const form_unit unit_signed_semitones = { "semitones", with_sign<256>,   without_sign<256> };
const form_unit unit_signed_pan       = { "",          with_sign<256>,   without_sign<256>,   pan_text,   typed_pan };
// clang-format on

// ---- Items ----------------------------------------------------------------------------------------

std::string note_item(int note)
{
	return format_text("%s [%d]", midi_note[static_cast<std::size_t>(note & 0x7F)], note);
}

std::vector<form_item> numbers_after(const char *word, int last)
{
	std::vector<form_item> items = { { 0, word } };
	for (int number = 1; number <= last; number++)
		items.push_back({ number, std::to_string(number) });
	return items;
}

bool same_sample(std::string_view one, std::string_view other)
{
	const auto trimmed = [](std::string_view name) {
		return name.substr(0, name.find_last_not_of(' ') + 1);
	};
	return trimmed(one) == trimmed(other);
}

bool low_note_allowed(const _keygroup &keygroup, i32 note)
{
	if (note <= keygroup.high_note)
		return true;
	show_box("ERROR", "New Low Note must be lower!");
	return false;
}

bool high_note_allowed(const _keygroup &keygroup, i32 note)
{
	if (note >= keygroup.low_note)
		return true;
	show_box("ERROR", "New High Note must be higher!");
	return false;
}

} // namespace velmor
