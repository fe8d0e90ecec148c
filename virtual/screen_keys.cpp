// screen_keys.cpp - what the front panel of a virtual USB sampler is told: keys, wheel, characters

#include "virtual/screen_keys.h"
#include <algorithm>
#include <cstdio>

namespace velmor
{

using bytes_in = std::span<const std::uint8_t>;

enum : std::size_t {
	panel_key,
	computer_character,
	cursor_key,
};

static constexpr std::uint8_t key_up = 0x02, computer_key_up = 0x11, cursor_kind = 2;

front_panel::front_panel(std::unique_ptr<screen> s, const screen_keyboard &k)
	: display(std::move(s)), keyboard(k)
{
}

void front_panel::power_on()
{
	let_go();
	display->power_on();
}

void front_panel::let_go()
{
	held = {};
}

// ---- Requests ----------------------------------------------------------------------------

struct front_panel::item {
	std::uint8_t number;
	std::size_t count; // of arguments
	enum {
		every_panel,
		characters_struck,
		characters_held
	} on;
	request_outcome (*run)(front_panel &p, bytes_in a);
};

// clang-format off
const front_panel::item front_panel::items[] = {
	{ 0x01, 1, item::every_panel,       [](front_panel &p, bytes_in a) { return p.key(a, true); } },
	{ key_up, 1, item::every_panel,       [](front_panel &p, bytes_in a) { return p.key(a, false); } },
	{ 0x03, 2, item::every_panel,       [](front_panel &p, bytes_in a) { return p.wheel(a); } },
	{ 0x04, 1, item::characters_struck, [](front_panel &p, bytes_in a) { return p.character(a); } },
	{ 0x10, 4, item::characters_held,   [](front_panel &p, bytes_in a) { return p.computer_key(a, true); } },
	{ computer_key_up, 4, item::characters_held,   [](front_panel &p, bytes_in a) { return p.computer_key(a, false); } },
};
// clang-format on

request_outcome front_panel::heard(bytes_in payload)
{
	if (keyboard.keys.empty())
		return refuse(refused_unknown);
	const auto other =
		keyboard.characters_come_up ? item::characters_struck : item::characters_held;
	for (const item &i : items) {
		if (i.number != payload[1] || i.on == other)
			continue;
		request_arguments a;
		if (!take_arguments(request_form::bytes, i.count, payload.subspan(2), &a))
			return refuse(refused_length);
		const request_outcome outcome = i.run(*this, a.bytes);
		if (outcome.status != 'D')
			return outcome;
		if (i.number == key_up || i.number == computer_key_up)
			return outcome;
		display->last_key.clear();
		for (const std::uint8_t b : payload) {
			char text[4];
			std::snprintf(
				text, sizeof text, display->last_key.empty() ? "%02X" : " %02X", b);
			display->last_key += text;
		}
		return outcome;
	}
	return refuse(refused_unknown);
}

static const screen_key_code *find_code(std::span<const screen_key_code> codes, std::uint8_t code)
{
	const auto found = std::find_if(codes.begin(), codes.end(),
		[code](const screen_key_code &c) { return code >= c.first && code <= c.last; });
	return found == codes.end() ? nullptr : &*found;
}

request_outcome front_panel::hold(std::size_t kind, std::uint8_t code, bool down)
{
	if (held[kind].test(code) == down)
		return refuse(down ? refused_value : refused_missing);
	held[kind].set(code, down);
	return done();
}

request_outcome front_panel::key(bytes_in a, bool down)
{
	const screen_key_code *c = find_code(keyboard.keys, a[0]);
	if (!c)
		return refuse(refused_value);
	const request_outcome outcome = hold(panel_key, a[0], down);
	if (down && outcome.status == 'D')
		display->press(c->key, c->number + a[0] - c->first);
	return outcome;
}

request_outcome front_panel::computer_key(bytes_in a, bool down)
{
	const bool cursor = a[1] == cursor_kind;
	const screen_key_code *c = find_code(keyboard.cursor_keys, a[0]);
	if ((a[1] != 0 && !cursor) || a[2] != 0 || a[3] != 0 || (cursor ? !c : a[0] == 0))
		return refuse(refused_value);
	const request_outcome outcome = hold(cursor ? cursor_key : computer_character, a[0], down);
	if (!down || outcome.status != 'D')
		return outcome;
	if (cursor)
		display->press(c->key, c->number);
	else
		display->type(static_cast<char>(a[0]));
	return outcome;
}

request_outcome front_panel::wheel(bytes_in a)
{
	if (a[0] > 1 || a[1] == 0)
		return refuse(refused_value);
	display->turn_wheel(a[0] == 0 ? a[1] : -a[1]);
	return done();
}

request_outcome front_panel::character(bytes_in a)
{
	if (a[0] == 0)
		return refuse(refused_value);
	display->type(static_cast<char>(a[0]));
	return done();
}

} // namespace velmor
