// test_virtual_screens.cpp - what virtual USB samplers show on their displays, and what keys do
//
// Pictures are read as a host gets them, with a bit order of the test's own; the letters of the
// machine's font are then looked for in them. A few letters and rows of pixels are drawn by hand.

#include "tests/support/test_host.h"
#include "virtual/demo_usb.h"
#include "virtual/screen_canvas.h"

namespace velmor
{

// A host without a cable: frames go in, answers come out at once.
class screens : public ::testing::Test
{
protected:
	s5000 big;
	z4 small{ z4_model::z8 };
	usb_sampler *machine = nullptr;
	usb_bytes picture;
	int width = 0;
	bool low_first = false; // the leftmost pixel is the lowest bit, and a clear bit is dark

	template <class model> void work_on(model &m, int columns, bool leftmost_lowest)
	{
		fill_demo(m);
		machine = &m;
		width = columns;
		low_first = leftmost_lowest;
		switch_on();
	}
	void work_on_s5000() { work_on(big, 320, true); }
	void work_on_z8() { work_on(small, 248, false); }
	void switch_on()
	{
		machine->plugged_in();
		for (const char *wake : { "03 14", "04 03", "03 01" })
			machine->take(hex(wake), true);
	}
	usb_bytes answer()
	{
		if (machine->outbox.empty())
			return {};
		usb_bytes bytes = machine->outbox.front().bytes;
		machine->outbox.pop_front();
		return bytes;
	}
	usb_bytes request(const std::string &text)
	{
		const usb_bytes payload = hex(text);
		const bool sum = machine == &big;
		usb_bytes frame =
			sum ? hex("10 00 00 F0 47 5E 20 00 00") : hex("10 00 00 F0 47 5F 00");
		unsigned added = 0;
		for (const std::uint8_t b : payload)
			frame.push_back(b), added += b;
		if (sum)
			frame.push_back(added & 0x7F);
		frame.push_back(0xF7);
		frame[1] = static_cast<std::uint8_t>(frame.size() - 3);
		machine->take(frame, true);
		return answer();
	}
	// Its status, and the reason if it is refused.
	std::string status(const std::string &text)
	{
		const usb_bytes a = request(text);
		const std::size_t at = machine == &big ? 6 : 4, reason = machine == &big ? 9 : 8;
		return a.size() <= at ? "silent"
		       : a[at] == 'E' ? "E" + std::to_string(a.at(reason))
				      : std::string(1, static_cast<char>(a[at]));
	}
	void fetch()
	{
		machine->take(hex("01 00"), true);
		picture = answer();
		EXPECT_EQ(answer(), usb_bytes(18));
		EXPECT_EQ(picture.size(), machine == &small ? 1860u : 9600u);
	}
	bool dark(int x, int y) const
	{
		const std::size_t at = static_cast<std::size_t>(y * width + x);
		const unsigned byte = picture.at(at / 8);
		return low_first ? !(byte >> at % 8 & 1) : byte << at % 8 & 0x80;
	}
	bool stands(const std::string &words, int x, int y, bool inverted) const
	{
		for (const char letter : words) {
			for (int i = 0; i < 48; i++)
				if (dark(x + i % 6, y + i / 6) !=
					(letter_dot(letter, i % 6, i / 6) != inverted))
					return false;
			x += 6;
		}
		return true;
	}
	// Whether words stand somewhere, dark on light or the other way round.
	bool shows(const std::string &words, bool inverted = false)
	{
		fetch();
		const int height = static_cast<int>(picture.size()) * 8 / width;
		for (int y = 0; y + 8 <= height; y++)
			for (int x = 0; x + static_cast<int>(words.size()) * 6 <= width; x++)
				if (stands(words, x, y, inverted))
					return true;
		return false;
	}
	// A key down and up, or what one request does; then words, inverted behind a "!".
	struct step {
		const char *keys, *words;
	};
	void walk(std::initializer_list<step> steps)
	{
		for (const step &s : steps) {
			for (std::istringstream keys(s.keys); keys;) {
				std::string key;
				if (!(keys >> key))
					break;
				press(key);
			}
			const bool inverted = *s.words == '!';
			EXPECT_TRUE(shows(s.words + inverted, inverted))
				<< s.keys << ": " << s.words;
		}
	}
	// "43" a key, "+7" and "-7" the wheel, "'a" or "$61" a character, "=3" a cursor key.
	void press(const std::string &key)
	{
		const std::string section = machine == &big ? "20 " : "2C ";
		char text[8];
		const std::string rest = key.substr(1);
		std::snprintf(text, sizeof text, "%02X", key[1]);
		const std::string character = key[0] == '$' ? rest : text;
		if (key[0] == '+' || key[0] == '-') {
			std::snprintf(text, sizeof text, "%02X", std::stoi(rest));
			EXPECT_EQ(status(section + (key[0] == '-' ? "03 01 " : "03 00 ") + text),
				"D");
		} else if (key[0] == '=') {
			EXPECT_EQ(status(section + "10 0" + rest + " 02 00 00"), "D") << key;
			EXPECT_EQ(status(section + "11 0" + rest + " 02 00 00"), "D") << key;
		} else if ((key[0] == '\'' || key[0] == '$') && machine == &big) {
			EXPECT_EQ(status(section + "04 " + character), "D") << key;
		} else if (key[0] == '\'' || key[0] == '$') {
			EXPECT_EQ(status(section + "10 " + character + " 00 00 00"), "D") << key;
			EXPECT_EQ(status(section + "11 " + character + " 00 00 00"), "D") << key;
		} else {
			EXPECT_EQ(status(section + "01 " + key), "D") << key;
			EXPECT_EQ(status(section + "02 " + key), "D") << key;
		}
	}
};

TEST_F(screens, letters_and_bits_are_as_drawn_by_hand)
{
	static const char *const drawn[] = {
		".###...........",
		"#...#..........",
		"#...#...####...",
		"#####..#...#...",
		"#...#..#...#...",
		"#...#...####...",
		"#...#......#...",
		"........###....",
	};
	screen_canvas c(16, 8);
	c.words(0, 0, "A");
	c.words(7, 0, "g");
	for (int y = 0; y < 8; y++)
		for (int x = 0; x < 15; x++)
			EXPECT_EQ(c.dark(x, y), drawn[y][x] == '#') << x << "," << y;
	using bits = wire_bits;
	const auto row = [&](bits b, std::size_t y) {
		const auto all = c.on_wire(b);
		return usb_bytes(all.begin() + static_cast<std::ptrdiff_t>(y * 2),
			all.begin() + static_cast<std::ptrdiff_t>(y * 2 + 2));
	};
	EXPECT_EQ(row(bits::leftmost_highest_set_is_dark, 3), hex("F9 10"));
	EXPECT_EQ(row(bits::leftmost_lowest_set_is_light, 3), hex("60 F7"));

	// What is drawn beyond an edge is lost, on every side.
	c.clear();
	c.fill({ -5, -5, 100, 100 });
	c.words(-3, -3, "##");
	c.large_words(12, 5, "##");
	c.line(-4, 3, 40, 90);
	EXPECT_EQ(c.on_wire(bits::leftmost_highest_set_is_dark), usb_bytes(16, 0xFF));
}

TEST_F(screens, a_display_is_sent_in_the_order_of_its_model)
{
	work_on_s5000();
	fetch();
	// The first line is light; the title begins in the third, from pixel 62 to 257.
	EXPECT_EQ(usb_bytes(picture.begin(), picture.begin() + 40), usb_bytes(40, 0xFF));
	EXPECT_EQ(usb_bytes(picture.begin() + 80, picture.begin() + 120),
		hex("FF*7 3F 00*24 FC FF*7"));
	machine->display_busy = true;
	machine->take(hex("01 00"), true);
	EXPECT_EQ(answer(), hex("41 6B 61 49"));
	EXPECT_EQ(answer(), usb_bytes());

	// A picture that somebody has put there is sent as it is.
	machine->display_busy = machine->shows_pages = false;
	machine->picture.assign(9600, 0xA5);
	fetch();
	EXPECT_EQ(picture, usb_bytes(9600, 0xA5));

	// The title is dark from edge to edge.
	work_on_z8();
	fetch();
	EXPECT_EQ(usb_bytes(picture.begin(), picture.begin() + 31), usb_bytes(31, 0xFF));
	EXPECT_EQ(usb_bytes(picture.begin() + 310, picture.begin() + 341), usb_bytes(31));
	z4 mpc(z4_model::mpc4000);
	work_on(mpc, 320, false);
	EXPECT_TRUE(shows("PROGRAMS", true));
	EXPECT_EQ(status("2C 01 01"), "E0"); // it has no keys
}

TEST_F(screens, the_keys_of_an_s5000_walk_its_pages_and_change_what_it_holds)
{
	work_on_s5000();
	// clang-format off
	walk({
		{ "40", "!EFFECTS" },  { "41", "!RECORD" },    { "42", "!SAMPLES" },   { "43", "!PROGRAMS" },
		{ "44", "!MULTI" },    { "45", "!UTILITIES" }, { "46", "!SAVE" },      { "47", "!LOAD" },
		// programs, their zones, and a level that the host reads
		{ "43 +1", "!String Section      " },          { "4A", "!PROGRAM: ZONES" },
		{ "51", "!2/2" },      { "51", "NO OTHER KEYGROUP" }, { "50", "!1/2" },
		{ "65 65 65", "!0 dB" },                       { "-30", "!-30 dB" },   { "-99", "!-60 dB" },
		{ "63", "!-59 dB" },   { "62 62", "!-60 dB" },
		// numbers: 12 is a note, 200 is none; 0 and 1 are digits here
		{ "49 65 59 5A", "!12_" }, { "6B", "!C-1" },   { "5A 58 58 6B", "FROM 0 TO 127" },
		{ "59 'x", "NOT HERE" },   { "6A", "!C-1" },   { "'9 '5 6B", "!B5" },
		// where there is no number, they mark a page and go back to it
		{ "47 59", "NO PAGE IS MARKED" }, { "43 48 58", "THIS PAGE IS MARKED" }, { "45 59", "!PROGRAMS" },
		{ "64 64", "THIS IS THE FIRST" }, { "5C", "NOT HERE" }, { "57", "NOT HERE" },
		{ "6B", "PLAYS Studio Kit" },     { "67", "5 PROGRAMS, 8 SAMPLES" },     { "6A", "!Studio Kit" },
		// disks
		{ "47 6B", "\\BASS" }, { "6B", "\\Brushes" }, { "51 51", "MULTISAMPLES" },
		{ "+2 52", "THIS DISK HOLDS NAMES ONLY" }, { "46 49 50", "THIS DISK IS LOCKED" },
	});
	// clang-format on
	EXPECT_EQ(status("0A 05 53 74 72 69 6E 67 20 53 65 63 74 69 6F 6E 00"), "D");
	EXPECT_EQ(request("06 22 01"), hex("F0 47 5E 00 00 00 52 06 22 01 3C F7"));
	EXPECT_EQ(big.programs[1].keygroups[0].at(0x04)[0], 95);
	EXPECT_EQ(big.programs[0].keygroups.size(), 4u);
	walk({ { "43 52", "KEYGROUP 5 IS NEW" } });
	EXPECT_EQ(big.programs[0].keygroups.size(), 5u);
	// Function keys stand left and right of the screen, 30 pixels apart; their labels beside them.
	EXPECT_TRUE(stands("KEYSPAN", 9, 44, false) && stands("KG -", 278, 14, false));
}

TEST_F(screens, characters_write_a_name_that_enter_takes_and_escape_drops)
{
	work_on_s5000();
	walk({ { "45 'V 'o 'x", "!Vox_" }, { "$08 $08 'X +1", "!VY_" } });
	EXPECT_EQ(big.name, "Demo S5000");
	walk({ { "$1B", "!Demo S5000" }, { "50", "!Demo S5000_" }, { "'2", "!Demo S50002_" },
		{ "48", "!Demo S50002" } }); // its first function key is OK then
	EXPECT_EQ(request("02 03"), hex("F0 47 5E 00 00 00 52 02 03 44 65 6D 6F 20 53 35 30 30 30 "
					"32 00 F7"));
	walk({ { "43 'C 'h 'o 'i 'r 6B", "!Choir" },
		{ "65 'C 'h 'o 'i 'r 6B", "THIS NAME IS TAKEN" } });
	EXPECT_EQ(big.programs[0].name, "Choir");
	EXPECT_EQ(big.programs[1].name, "String Section");
	// The host deletes what is being renamed.
	walk({ { "'Z", "!Z_" } });
	big.programs.erase(big.programs.begin() + 1);
	walk({ { "6B", "IT IS GONE" } });
	EXPECT_EQ(big.programs[1].name, "Finger Bass");

	work_on_z8();
	walk({ { "16 'k $0D", "!k " } });
	EXPECT_EQ(small.samples[0].name, "k");
}

TEST_F(screens, the_keys_of_a_z8_do_the_same_on_six_function_keys)
{
	work_on_z8();
	// clang-format off
	walk({
		{ "17", "!MULTI" },  { "13", "!EFFECTS" }, { "16", "!SAMPLES" }, { "12", "!PROGRAMS" },
		{ "15", "!RECORD" }, { "11", "!UTILITIES" }, { "14", "!SAVE" }, { "10", "!LOAD" },
		{ "12 =4 =4", "!Finger Bass" }, { "=2 =2", "!ZONES" }, { "=2", "!PROGRAMS" }, { "=1", "!ZONES" },
		{ "=4 =4 =4 =3", "!Finger Bass" }, { "=4 -127", "!-12.7 dB" }, { "-127 -127 -127 -127", "!-60.0 dB" }, { "=3 =3 +1", "!2/4" },
		{ "08", "!NOT HERE" }, { "09", "!NOT HERE" }, { "0A", "!PLAYS Finger Bass" },
		{ "07", "5 PROGRAMS, 8 SAMPLES" }, { "07 04", "!NO OTHER KEYGROUP" },
		{ "06 02", "!PROGRAMS" }, { "15 02", "!RECORDING" }, { "02", "!Recording 1 IS MADE" },
	});
	// clang-format on
	EXPECT_EQ(small.programs[2].keygroups[0].zones[0].level,
		(std::array<std::uint8_t, 3>{ 1, 0x58, 4 }));
	ASSERT_EQ(small.samples.size(), 9u);
	wave_facts facts;
	EXPECT_TRUE(read_wave(small.samples[8].wave, &facts));
	EXPECT_TRUE(stands("RECORD", 43, 50, false)) << "above the second key";
	EXPECT_EQ(facts.frames, 11025u); // one picture has passed
}

TEST_F(screens, what_no_panel_has_is_refused_and_does_nothing)
{
	struct refusal {
		const char *request, *status;
	};
	const auto all = [this](std::initializer_list<refusal> rows) {
		const std::size_t taken = machine->key_presses.size();
		fetch();
		const usb_bytes before = picture;
		for (const refusal &r : rows)
			EXPECT_EQ(status(r.request), r.status) << r.request;
		fetch();
		EXPECT_EQ(picture, before);
		EXPECT_EQ(machine->key_presses.size(), taken);
	};
	work_on_s5000();
	all({ { "20 01", "E1" }, { "20 01 44 00", "E1" }, { "20 01 3F", "E2" },
		{ "20 01 66", "E2" }, { "20 01 6C", "E2" }, { "20 02 44", "E3" },
		{ "20 03 02 01", "E2" }, { "20 03 00 00", "E2" }, { "20 03 00", "E1" },
		{ "20 04 00", "E2" }, { "20 04 C1", "E1" }, { "20 05 41", "E0" },
		{ "20 10 41 00 00 00", "E0" } });
	EXPECT_EQ(status("20 01 45"), "D");
	all({ { "20 01 45", "E2" }, { "20 02 44", "E3" } });
	EXPECT_EQ(machine->key_presses.back(), hex("20 01 45"));
	machine->take(hex("03 14"), true); // the host begins anew, without a key down
	EXPECT_EQ(status("20 02 45"), "E3");
	EXPECT_EQ(status("20 01 45"), "D");
	switch_on(); // its keys are up again, and it shows its first page
	EXPECT_TRUE(shows("MULTI", true));
	EXPECT_EQ(status("20 02 45"), "E3");

	work_on_z8();
	all({ { "2C 01 00", "E2" }, { "2C 01 0B", "E2" }, { "2C 01 18", "E2" },
		{ "2C 04 41", "E0" }, { "2C 10 41 00 00", "E1" }, { "2C 10 41 01 00 00", "E2" },
		{ "2C 10 41 00 01 00", "E2" }, { "2C 10 41 00 00 01", "E2" },
		{ "2C 10 00 00 00 00", "E2" }, { "2C 10 05 02 00 00", "E2" },
		{ "2C 10 00 02 00 00", "E2" }, { "2C 11 41 00 00 00", "E3" } });
	// A character and a cursor key of the same number are two keys.
	EXPECT_EQ(status("2C 10 03 02 00 00"), "D");
	all({ { "2C 11 03 00 00 00", "E3" }, { "2C 10 03 02 00 00", "E2" } });
}

// Any keys in any order, on machines that hold too little, or what no panel would have set.
TEST_F(screens, a_long_walk_at_random_never_leaves_what_is_there)
{
	const auto stroll = [this](const std::vector<int> &codes, unsigned seed) {
		for (int i = 0; i < 150; i++) {
			seed = seed * 1103515245 + 12345;
			const unsigned dice = seed >> 16;
			char text[8];
			std::snprintf(text, sizeof text, "%02X", codes[dice / 8 % codes.size()]);
			press(dice % 8 == 0     ? "+99"
				: dice % 8 == 1 ? "-1"
				: dice % 8 == 2 ? "'7"
						: text);
			fetch();
		}
	};
	std::vector<int> big_keys, small_keys;
	for (int code = 0x40; code <= 0x6B; code++)
		if (code != 0x66 && code != 0x68 && code != 0x69)
			big_keys.push_back(code);
	for (int code = 0x01; code <= 0x17; code++)
		if (code <= 0x0A || code >= 0x10)
			small_keys.push_back(code);
	work_on_s5000();
	stroll(big_keys, 1);
	for (const s5000_zone &z : big.programs[0].keygroups[0].zones)
		EXPECT_LE(z.value[0x02][1], 60);
	for (s5000_keygroup &k : big.programs[0].keygroups) {
		k.at(0x04) = { 127 };
		k.at(0x05) = k.at(0x21) = k.at(0x22) = { 0x7F, 0x7F };
		k.amp = { 127, 127, 127, 127 };
	}
	stroll(big_keys, 2);
	big.programs.clear(), big.samples.clear(), big.disks.volumes.clear();
	stroll(big_keys, 3);
	work_on_z8();
	stroll(small_keys, 4);
	small.programs.assign(2, z4_program{ "", {} }), small.samples[0].wave.resize(20);
	stroll(small_keys, 5);
}

} // namespace velmor
