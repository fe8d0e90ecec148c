// test_edits.cpp - steps of editing, what is not sent yet, and the way back

#include "src/velmor_edits.h"
#include "tests/support/test_host.h"
#include <cstring>
#include <random>

namespace velmor
{
namespace
{

const any_field polyphony = field_of<&_program::polyphony>,
		attack = field_of<&_keygroup::amp_attack>,
		low_note = field_of<&_keygroup::low_note>, level = field_of<&_keyzone::zone_level>,
		sample = field_of<&_keyzone::samplename>, tune = field_of<&_keyzone::tunning>;

class edits : public ::testing::Test
{
protected:
	// A program whose bytes are all different, with text behind the ends of its names.
	edits() : program(std::make_unique<_program>())
	{
		static const ui_service no_windows = {};
		host.ui = &no_windows; // whose language is ours
		auto *bytes = reinterpret_cast<u8 *>(program.get());
		for (std::size_t i = 0; i < sizeof(_program); i++)
			bytes[i] = static_cast<u8>(i * 7 + i / 256);
		program->keygroups = 3;
		as_read = std::make_unique<_program>(*program);
	}
	~edits() override
	{
		forget_edits();
		edits_changed = nullptr;
	}
	bool set(const field_place &at, field_value value, const gesture &movement = {})
	{
		const field_change change = { at, std::move(value) };
		return edit_fields(*program, { "a value", "", "" }, { &change, 1 }, movement);
	}
	bool as_it_was() const
	{
		return !std::memcmp(program.get(), as_read.get(), sizeof *as_read);
	}
	unsent_counts unsent() const { return unsent_changes(*program); }

	std::unique_ptr<_program> program, as_read;
};

TEST_F(edits, any_edits_undone_give_the_program_as_read_and_redone_the_edited_one)
{
	std::mt19937 random(4711);
	const auto below = [&](int end) {
		return static_cast<int>(random() % static_cast<u32>(end));
	};
	const any_field fields[] = { polyphony, attack, low_note, level, sample, tune };
	for (int round = 0; round < 30; round++) {
		forget_edits();
		*program = *as_read;
		for (int i = 0; i < 60; i++) {
			const int act = below(12);
			const any_field &field = fields[below(6)];
			const field_place at = { field, below(6), below(9) };
			if (act == 0)
				edit_add_keygroup(*program, 4);
			else if (act == 1)
				edit_remove_keygroup(*program, below(5), below(2));
			else if (act == 2)
				undo_edit(*program);
			else if (act == 3)
				redo_edit(*program);
			else if (&field == &fields[4])
				set(at, text_value(std::to_string(random())), { below(2) });
			else
				set(at, below(300) - 100, { below(3) });
		}
		const auto edited = std::make_unique<_program>(*program);
		int steps = 0;
		while (undo_edit(*program))
			steps++;
		EXPECT_TRUE(as_it_was()) << round;
		while (steps-- > 0)
			EXPECT_TRUE(redo_edit(*program));
		EXPECT_EQ(std::memcmp(edited.get(), program.get(), sizeof(_program)), 0) << round;
	}
}

TEST_F(edits, a_movement_is_one_step_until_it_ends)
{
	const gesture drag = { 1, 2, 3 };
	for (int value : { 10, 20, 30 })
		EXPECT_TRUE(set({ attack, 1 }, value, drag));
	end_gesture(*program);
	set({ attack, 1 }, 40, drag);
	set({ attack, 1 }, 50);
	EXPECT_TRUE(undo_edit(*program));
	EXPECT_EQ(program->keygroup[1].amp_attack, 40u);
	EXPECT_TRUE(undo_edit(*program));
	EXPECT_EQ(program->keygroup[1].amp_attack, 30u);
	EXPECT_TRUE(undo_edit(*program));
	EXPECT_TRUE(as_it_was());
	EXPECT_FALSE(undo_edit(*program));
	EXPECT_TRUE(redo_edit(*program));
	EXPECT_EQ(program->keygroup[1].amp_attack, 30u);
	set({ attack, 1 }, 31);
	EXPECT_FALSE(redo_edit(*program)) << "a new edit is another way on";
	undo_edit(*program);
	undo_edit(*program);
	// There and back is nothing.
	const int before = number_at(*program, { attack, 1 });
	set({ attack, 1 }, before + 1, drag);
	set({ attack, 1 }, before, drag);
	EXPECT_EQ(undo_words(*program), nullptr);
	EXPECT_EQ(unsent(), unsent_counts{});
}

TEST_F(edits, places_that_are_not_there_change_nothing)
{
	const field_place places[] = { { attack, 3 }, { attack, -1 }, { level, 1, 8 },
		{ level, 1, -1 }, { level, 3, 0 }, { {}, 1, 1 } };
	for (const field_place &at : places) {
		const field_change changes[] = { { { polyphony }, 5 }, { at, 5 } };
		EXPECT_FALSE(edit_fields(*program, {}, changes));
	}
	EXPECT_FALSE(set({ sample, 1, 1 }, 5)) << "a number is no name";
	EXPECT_FALSE(set({ level, 1, 1 }, text_value("5")));
	EXPECT_FALSE(edit_remove_keygroup(*program, 3, true) ||
		     edit_remove_keygroup(*program, -1, true));
	program->keygroups = max_keygroups;
	EXPECT_EQ(edit_add_keygroup(*program, 4), -1);
	program->keygroups = 200;
	EXPECT_FALSE(set({ attack, 128 }, 1) || edit_remove_keygroup(*program, 150, true));
	program->keygroups = 3;
	EXPECT_TRUE(as_it_was());
}

TEST_F(edits, unsent_changes_are_counted_where_they_are)
{
	set({ polyphony }, 9);
	set({ attack, 1 }, 9);
	set({ level, 1, 2 }, 9);
	set({ sample, 1, 3 }, text_value("BASS"));
	set({ level, 2, 2 }, 9);
	set({ level, 1, 2 }, 10);
	EXPECT_EQ(unsent(), (unsent_counts{ 1, 1, 3 }));
	EXPECT_EQ(unsent_changes(*program, 1, 2), (unsent_counts{ 1, 1, 1 }));
	EXPECT_EQ(unsent_changes(*program, 0, 0), (unsent_counts{ 1, 0, 0 }));
	EXPECT_TRUE(field_changed(*program, { attack, 1 }));
	EXPECT_FALSE(field_changed(*program, { attack, 2 }));
	EXPECT_EQ(text_at(*program, { sample, 1, 3 }), "BASS");
	const int read = as_read->keygroup[1].keyzone[2].zone_level;
	EXPECT_EQ(value_as_read(*program, { level, 1, 2 }), field_value(read));
	EXPECT_TRUE(put_back(*program, { level, 1, 2 }, {}));
	EXPECT_EQ(program->keygroup[1].keyzone[2].zone_level, read);
	EXPECT_FALSE(put_back(*program, { level, 1, 2 }, {}));
	EXPECT_EQ(unsent_changes(), 4);
}

TEST_F(edits, what_a_save_leaves_in_the_record_is_no_edit)
{
	set({ attack, 1 }, 9);
	program->keygroup[1].keyzone[0].tunning = -250; // by a driver
	EXPECT_EQ(unsent(), (unsent_counts{ 0, 1, 0 })) << "also when it failed half way";
	EXPECT_FALSE(field_changed(*program, { tune, 1, 0 }));
	edits_sent(*program);
	EXPECT_EQ(unsent(), unsent_counts{});
	EXPECT_EQ(value_as_read(*program, { tune, 1, 0 }), field_value(-250));
	EXPECT_TRUE(undo_edit(*program)) << "undo goes on behind a save";
	EXPECT_EQ(unsent(), (unsent_counts{ 0, 1, 0 }));
	EXPECT_TRUE(redo_edit(*program));
	EXPECT_EQ(unsent(), unsent_counts{});
}

TEST_F(edits, keygroups_are_compared_with_themselves)
{
	set({ attack, 2 }, 9);
	EXPECT_TRUE(edit_remove_keygroup(*program, 0, true)) << "the sampler did it too";
	EXPECT_EQ(unsent(), (unsent_counts{ 0, 1, 0 }));
	EXPECT_TRUE(field_changed(*program, { attack, 1 }));
	EXPECT_EQ(value_as_read(*program, { attack, 1 }),
		field_value(static_cast<i32>(as_read->keygroup[2].amp_attack)));
	EXPECT_EQ(edit_add_keygroup(*program, 2), 2);
	EXPECT_EQ(program->keygroups, 3);
	EXPECT_EQ(program->keygroup[2].high_note, 99);
	EXPECT_EQ(program->keygroup[2].keyzones, 2);
	EXPECT_EQ(program->keygroup[2].amp_attack, 0u);
	set({ attack, 2 }, 50);
	EXPECT_EQ(unsent(), (unsent_counts{ 0, 2, 0 })) << "a new keygroup is one change";
	EXPECT_EQ(unsent_changes(*program, 2, 0), (unsent_counts{ 0, 1, 0 }));
	EXPECT_FALSE(value_as_read(*program, { attack, 2 }));
	EXPECT_TRUE(edit_remove_keygroup(*program, 0, false));
	EXPECT_EQ(unsent(), (unsent_counts{ 0, 3, 0 })) << "the sampler still has it";
	for (int i = 0; i < 5; i++)
		EXPECT_TRUE(undo_edit(*program));
	EXPECT_TRUE(as_it_was());
	EXPECT_EQ(unsent(), (unsent_counts{ 0, 1, 0 })) << "the sampler has lost it";
}

TEST_F(edits, a_keygroup_that_only_the_sampler_has_stays_a_change)
{
	edit_remove_keygroup(*program, 1, false);
	EXPECT_EQ(keygroup_that_goes(*program, false), -1) << "undoing brings it back";
	EXPECT_EQ(keygroup_that_goes(*program, true), -1);
	EXPECT_EQ(edits_sent(*program, true), 1);
	EXPECT_EQ(unsent(), (unsent_counts{ 0, 1, 0 }));
	EXPECT_EQ(keygroup_as_read(*program, 1), 1);
	undo_edit(*program);
	EXPECT_EQ(keygroup_that_goes(*program, true), 1);
	EXPECT_EQ(keygroup_as_read(*program, 1), -1);
	EXPECT_EQ(keygroup_as_read(*program, 2), 1);
	EXPECT_EQ(edits_sent(*program, true), 0) << "all of them were sent";
	EXPECT_EQ(unsent(), unsent_counts{});
	EXPECT_TRUE(redo_edit(*program, true));
	EXPECT_EQ(unsent(), unsent_counts{}) << "the sampler has removed it too";
	EXPECT_EQ(keygroup_as_read(*program, 1), 1);
	edit_add_keygroup(*program, 4);
	EXPECT_EQ(keygroup_that_goes(*program, false), 2);
}

TEST_F(edits, a_program_read_anew_has_no_history)
{
	static int told;
	told = 0;
	edits_changed = [](const _program *) { told++; };
	set({ attack, 1 }, 9);
	EXPECT_EQ(told, 1);
	program->keygroups = 2; // read anew behind its back
	EXPECT_FALSE(undo_edit(*program) || redo_edit(*program));
	EXPECT_EQ(unsent_changes(), 0);
	set({ attack, 1 }, 9);
	set({ attack, 1 }, 10);
	EXPECT_EQ(unsent_changes(), 1);
	forget_edits(*program);
	EXPECT_EQ(unsent_changes(), 0);
	EXPECT_FALSE(undo_edit(*program));
	EXPECT_EQ(told, 4);
}

} // namespace
} // namespace velmor
