// screen_keys.h - what the front panel of a virtual USB sampler is told: keys, wheel, characters
//
//   S5000, section 20           Z4 and Z8, section 2C
//   01 code                     01 code                  a key goes down, and does what it does
//   02 code                     02 code                  it comes up
//   03 way steps                03 way steps             the wheel; way 0 up, 1 down
//   04 character                                         a computer key is struck
//                               10 key kind 00 00        a computer key goes down;
//                               11 key kind 00 00        it comes up; kind 0 is a character,
//                                                        2 a cursor key: 1 left, 2 right,
//                                                        3 up, 4 down
//
// Each is done, or refused without effect: another item; another length, or a byte of eight
// bits; a code, a way or a kind that the panel does not have, no steps, no character; a key that
// goes down twice, or comes up without having gone down. A host that wakes the machine begins
// anew, with no key down. The MPC 4000 knows no such section.
//
// The S5000 has two keys each on the codes 58 and 59: MARK and 0, JUMP and 1. Where a number or
// a name can be typed they are digits.
//
// Knows nothing of: frames, the system under src/.

#pragma once
#include "virtual/screen.h"
#include "virtual/usb_requests.h"
#include <bitset>
#include <memory>

namespace velmor
{

// A run of codes; `number` is that of the first, and rises.
struct screen_key_code {
	std::uint8_t first, last;
	screen_key key;
	int number;
};

struct screen_keyboard {
	std::span<const screen_key_code> keys, cursor_keys;
	bool characters_come_up; // as the Z family's do
};

class front_panel
{
public:
	const std::unique_ptr<screen> display;

	front_panel(std::unique_ptr<screen> s, const screen_keyboard &k);
	void power_on();
	void let_go(); // of all keys
	const screen_canvas &shown() const { return display->shown(); }
	// A request from its section on; what is done has no data.
	request_outcome heard(std::span<const std::uint8_t> payload);

private:
	struct item;
	static const item items[];
	const screen_keyboard keyboard;
	std::array<std::bitset<128>, 3> held; // keys, characters, cursor keys
	request_outcome key(std::span<const std::uint8_t> a, bool down);
	request_outcome computer_key(std::span<const std::uint8_t> a, bool down);
	request_outcome wheel(std::span<const std::uint8_t> a);
	request_outcome character(std::span<const std::uint8_t> a);
	request_outcome hold(std::size_t kind, std::uint8_t code, bool down);
};

class s5000;
class z4;
std::unique_ptr<front_panel> make_panel(s5000 &machine);
std::unique_ptr<front_panel> make_panel(z4 &machine, bool is_mpc);

} // namespace velmor
