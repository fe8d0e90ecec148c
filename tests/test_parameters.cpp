// test_parameters.cpp - rows of every kind, and what refuses to compile
//
// The conversions are tested with the rows that use them.

#include "src/parameters.h"
#include "tests/support/test_host.h"
#include "tests/support/told.h"

namespace velmor
{
namespace
{

using row = parameter<_keygroup>;

// ---- What is refused at compile time ------------------------------------------------------

template <std::size_t count> consteval bool sound(const row (&rows)[count], int size = 8)
{
	return table_is_sound<_keygroup>(rows, size);
}
template <std::size_t count> consteval bool asks(const row (&rows)[count])
{
	return requests_are_sound<_keygroup>(rows);
}
constexpr auto low = field_of<&_keygroup::low_note>;
constexpr auto high = field_of<&_keygroup::high_note>;
constexpr auto zone_name = field_of<&_keyzone::samplename>;
constexpr conversion as_wide = { .name = "five bytes", .width = 9 };

static_assert(sound({ { { 0 }, low, &as_word, 1 }, { { 2 }, high, &as_byte, 1 } }));
static_assert(sound({ { { 7 }, low, &as_byte, 1 } }) && !sound({ { { 7 }, low, &as_word, 1 } }));
static_assert(!sound({ { { 1 }, low, &as_byte }, { { 0 }, high, &as_byte } }), "out of order");
static_assert(!sound({ { { 0 }, low, &as_word, 1 }, { { 1 }, high, &as_byte, 1 } }), "overlap");
static_assert(sound({ { { 0 }, low, &as_word, 1 }, { { 1 }, high, &as_byte } }), "only read");
static_assert(sound({ { { 0, 0, 1 }, low, &as_byte, 1 }, { { 0, 0, 6 }, high, &as_byte, 1 } }));
static_assert(!sound({ { { 0, 0, 3 }, low, &as_byte, 1 }, { { 0, 0, 6 }, high, &as_byte, 1 } }));
static_assert(!sound({ { { 0, 0, 3 }, low, &as_word, 1 } }), "a mask of two bytes");
static_assert(!sound({ { { 0, 0, 0 }, low, &as_byte, 1 } }), "a mask of nothing");
static_assert(!sound({ { { 0 }, low, &as_byte }, { { 1 }, low, &as_byte } }), "read twice");
static_assert(sound({ { { 0 }, low, &as_byte }, { { 1 }, low, &as_byte, 1 | never_read } }));
static_assert(!sound({ { { 0 }, low, &as_text } }), "a number as a text");
static_assert(!sound({ { { 0 }, low, &as_wide } }), "wider than a number");
constexpr parameter<_keyzone> text_as_number[] = { { { 0 }, zone_name, &as_byte } };
static_assert(!table_is_sound<_keyzone>(text_as_number, 8));
constexpr row stepping[] = { { { 0, 2 }, low, &as_word, 1 } };
static_assert(table_is_sound<_keygroup>(stepping, 8, 4));
static_assert(!table_is_sound<_keygroup>(stepping, 8, 5), "the last element sticks out");
constexpr row too_close[] = { { { 0, 1 }, low, &as_word, 1 } };
static_assert(!table_is_sound<_keygroup>(too_close, 8, 2), "elements overlap");

static_assert(asks(
	{ { {}, low, &as_byte, 1, { 6, 2, 6, 1 } }, { {}, high, &as_byte, 1, { 6, 3, 6, 2 } } }));
static_assert(!asks(
	{ { {}, low, &as_byte, 1, { 6, 2, 6, 1 } }, { {}, high, &as_byte, 1, { 6, 2, 6, 2 } } }));
static_assert(!asks(
	{ { {}, low, &as_byte, 1, { 6, 2, 6, 1 } }, { {}, high, &as_byte, 1, { 6, 3, 6, 1 } } }));
static_assert(asks({ { {}, low, &as_byte, 1, { 6, 2, 6, 1, 1 } },
	{ {}, high, &as_byte, 1, { 6, 2, 6, 1, 2 } } }));
static_assert(!asks({ { {}, low, &as_byte, 1, { 6, 2, 6, 1 }, 1 },
	{ {}, high, &as_byte, 1, { 6, 3, 6, 2 }, 1 } }));
static_assert(!asks({ { {}, low, &as_byte, 1, { 6, 2, 6, 1 }, 1 },
	{ {}, high, &as_byte, 1, { 6, 3, 6, 2 } } }));
static_assert(rows_touch<_keygroup>(stepping, 0) && !rows_touch<_keygroup>(stepping, 1));

// ---- Reading and writing -------------------------------------------------------------------

constexpr row shared_rows[] = {
	{ { 1, 0, 0x01 }, field_of<&_keygroup::s900_transpose_disable>, &as_byte, taken_back },
	{ { 1, 0, 0x24 }, field_of<&_keygroup::s900_lfo_desync>, &as_byte, taken_back },
	{ { 2 }, low, &as_byte },
	{ { 3 }, high, &as_byte, taken_back | never_read },
	{ { 4 }, field_of<&_keygroup::s1000_tune_offset>, &as_word, 2 },
};
static_assert(table_is_sound<_keygroup>(shared_rows, 6));

TEST(parameters, bits_share_a_byte_and_what_no_row_names_stays)
{
	const auto k = std::make_unique<_keygroup>();
	k->high_note = 9;
	block_to_record(shared_rows, { hex("EE FD 11 22 33 44") }, *k);
	EXPECT_EQ(told<_keygroup>(shared_rows, *k),
		"s900_transpose_disable 1, s900_lfo_desync 36, "
		"low_note 17, high_note 9, s1000_tune_offset 17459");
	k->s900_transpose_disable = 0;
	k->s900_lfo_desync = 4;
	std::vector<u8> block = hex("EE FB 55 66 77 88");
	record_to_block(shared_rows, taken_back, *k, block);
	// FB is 1111 1011; bits 0 and 5 go, bit 2 comes.
	EXPECT_EQ(block, hex("EE DE 55 09 77 88"));
	k->high_note = 8;
	record_to_block(shared_rows, never_read, *k, block);
	EXPECT_EQ(block, hex("EE DE 55 09 77 88")) << "that it is not read makes nobody take it";
	record_to_block(shared_rows, 2, *k, block);
	EXPECT_EQ(block, hex("EE DE 55 09 33 44"));
	block.resize(5);
	k->s1000_tune_offset = 0;
	record_to_block(shared_rows, 3, *k, block);
	EXPECT_EQ(block[4], 0x33) << "a row that sticks out is left out";
}

TEST(parameters, what_never_came_is_zero_or_stays)
{
	const auto k = std::make_unique<_keygroup>();
	k->low_note = 7;
	k->s1000_tune_offset = 8;
	block_to_record(shared_rows, { hex("00 00") }, *k, 0, past_the_end::stays);
	EXPECT_EQ(k->low_note, 7);
	block_to_record(shared_rows, { hex("00*4 05") }, *k, 0, past_the_end::stays);
	EXPECT_EQ(k->s1000_tune_offset, 5) << "half of a word came";
	block_to_record(shared_rows, { hex("00 00") }, *k);
	EXPECT_EQ(k->low_note, 0);
}

TEST(parameters, the_order_of_writing_is_the_turns)
{
	constexpr row rows[] = {
		{ { 0 }, low, &as_byte, 1, { 6, 2, 6, 1 }, 2 },
		{ { 1 }, high, &as_byte, 1, { 6, 3, 6, 2 }, 1 },
	};
	std::string order;
	const auto note = [&](const row &r) { order += std::string(r.field.name) + " "; };
	in_order_of_writing<_keygroup>(rows, note);
	in_order_of_writing<_keygroup>(shared_rows, note);
	EXPECT_EQ(order, "high_note low_note s900_transpose_disable s900_lfo_desync high_note "
			 "s1000_tune_offset ");
}

TEST(parameters, fields_of_every_width_are_cut_to_it)
{
	_sample s = {};
	constexpr member<_sample> byte = &_sample::original_pitch, wide = &_sample::loop_times,
				  word = &_sample::channels, number = &_sample::number;
	for (const member<_sample> &field : { byte, wide, word, number })
		field.set(&s, -2);
	EXPECT_EQ(s.original_pitch, 254);
	EXPECT_EQ(s.loop_times, 0xFFFFFFFEu);
	EXPECT_EQ(s.channels, 0xFFFFFFFEu);
	EXPECT_EQ(s.number, -2);
	EXPECT_EQ(byte.get(s), 254);
	EXPECT_EQ(wide.get(s), -2);
	EXPECT_EQ(member<_sample>(&_sample::name).get(s), 0);
}

} // namespace
} // namespace velmor
