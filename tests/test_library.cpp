// test_library.cpp - programs of this computer as text files

#include "src/velmor_edits.h"
#include "src/velmor_library.h"
#include "src/waveqx.h"
#include "tests/support/test_host.h"
#include <cstring>
#include <random>

namespace velmor
{
namespace
{

struct library : host_test {
	kept_lines kept;
	program_refusal why;

	library() { local_pgm.clear(); }
	~library() override
	{
		forget_edits();
		local_pgm.clear();
		local_pgms = 0;
	}
	std::unique_ptr<_program> read(const std::string &text)
	{
		return read_program_text(text, &kept, &why);
	}
	std::string path(const char *name) { return h.config + "\\pgm\\" + name + ".program"; }
	void put(const char *name, const std::string &text)
	{
		host.files->make_folder((h.config + "\\pgm").c_str());
		h.put_content(path(name), std::vector<u8>(text.begin(), text.end()));
	}
	std::string text_of(const char *name)
	{
		const auto bytes = h.content(path(name));
		return bytes ? std::string(bytes->begin(), bytes->end()) : "none";
	}
};

// Every byte of the record, but for what the text does not tell and what stands behind texts.
std::unique_ptr<_program> random_program(std::mt19937 &random, i32 model)
{
	auto p = std::make_unique<_program>();
	auto *bytes = reinterpret_cast<u8 *>(p.get());
	for (std::size_t i = 0; i < sizeof *p; i++)
		bytes[i] = static_cast<u8>(random() % 4 ? random() : 0);
	auto text = [&](char(&field)[name_size]) {
		std::string words(random() % 20, ' ');
		for (char &c : words)
			c = static_cast<char>(1 + random() % 255);
		copy_text(field, words);
	};
	text(p->name);
	p->sampler_type = model;
	p->loaded = 0;
	p->keygroups = static_cast<i32>(random() % 4);
	for (_keygroup &k : p->keygroup) {
		k.keyzones = static_cast<i32>(random() % (max_keyzones + 1));
		for (_keyzone &z : k.keyzone)
			text(z.samplename);
		for (int z = k.keyzones; z < max_keyzones; z++)
			k.keyzone[z] = {};
	}
	for (int k = p->keygroups; k < max_keygroups; k++)
		p->keygroup[k] = {};
	return p;
}

// Fields one by one: records have gaps that mean nothing.
std::string fields_of(const _program &p)
{
	return program_text(p);
}

} // namespace

TEST_F(library, what_is_written_is_read_again_exactly_for_every_model)
{
	std::mt19937 random(7);
	for (const i32 model : { 0, 1000, 1001, 1002, 1003, 1004, 1005, 1006, 1007 })
		for (int i = 0; i < 3; i++) {
			const auto p = random_program(random, model);
			const std::string text = program_text(*p);
			const auto again = read(text);
			ASSERT_TRUE(again) << why.line << why.reason << text.substr(0, 300);
			EXPECT_EQ(again->sampler_type, model);
			EXPECT_EQ(fields_of(*again), text);
			EXPECT_STREQ(again->name, p->name);
			EXPECT_TRUE(kept.empty());
			// Not by the same table: members in front of, and behind, those with gaps.
			EXPECT_EQ(std::memcmp(&again->midi_pgm_number, &p->midi_pgm_number, 4), 0);
			EXPECT_EQ(std::memcmp(&again->c_detune, &p->c_detune, 12 * 4 + 2), 0);
			for (int k = 0; k < p->keygroups; k++) {
				const _keygroup &a = again->keygroup[k], &b = p->keygroup[k];
				EXPECT_EQ(a.keyzones, b.keyzones);
				const auto at = offsetof(_keygroup, fx_level);
				EXPECT_EQ(std::memcmp(&a.fx_level, &b.fx_level,
						  offsetof(_keygroup, s5000_filter_mode) - at),
					0);
				EXPECT_EQ(std::memcmp(&a.s1000_env1_key_scaling,
						  &b.s1000_env1_key_scaling, 20 + 4),
					0);
				EXPECT_EQ(
					std::memcmp(&a.s1000_env2_r1, &b.s1000_env2_r1, 13 * 4), 0);
				EXPECT_EQ(std::memcmp(&a.s900_output, &b.s900_output, 9), 0);
				for (int z = 0; z < a.keyzones; z++) {
					EXPECT_STREQ(
						a.keyzone[z].samplename, b.keyzone[z].samplename);
					EXPECT_EQ(std::memcmp(&a.keyzone[z].tunning,
							  &b.keyzone[z].tunning, 6 * 4 + 3),
						0);
					EXPECT_EQ(std::memcmp(&a.keyzone[z].s900_loudness,
							  &b.keyzone[z].s900_loudness, 5 * 4 + 1),
						0);
				}
			}
		}
}

TEST_F(library, a_text_is_what_a_person_would_write)
{
	const std::string text = "model = Akai S3000/S3000XL\n"
				 "\n[program]\nname = \"A \\x22B\\x22 \\xE4\"\npolyphony = 16\n"
				 "s1000_tunning_offset = -50\n"
				 "\n[keygroup 1]\nlow_note = 24\nhigh_note = 127\n"
				 "amp_attack = 4294967295\n"
				 "\n[zone 1]\nsamplename = \"KICK  \"\n"
				 "\n[zone 2]\n"
				 "\n[keygroup 2]\n";
	const auto p = read(text);
	ASSERT_TRUE(p) << why.reason;
	EXPECT_STREQ(p->name, "A \"B\" \xE4");
	EXPECT_EQ(p->sampler_type, model_s3000);
	EXPECT_EQ(p->polyphony, 16);
	EXPECT_EQ(p->s1000_tunning_offset, -50);
	EXPECT_EQ(p->keygroups, 2);
	EXPECT_EQ(p->keygroup[0].keyzones, 2);
	EXPECT_EQ(p->keygroup[0].high_note, 127);
	EXPECT_EQ(p->keygroup[0].amp_attack, 0xFFFFFFFFu);
	EXPECT_STREQ(p->keygroup[0].keyzone[0].samplename, "KICK  ");
	EXPECT_EQ(program_text(*p), text);
}

TEST_F(library, what_is_refused_is_named_with_its_line)
{
	const std::string head = "model = Akai S900/950\n[program]\n", kg = head + "[keygroup 1]\n";
	std::string zones = kg;
	for (int i = 1; i <= 9; i++)
		zones += format_text("[zone %d]\n", i);
	const struct {
		std::string text;
		int line;
		const char *reason;
	} cases[] = {
		{ "", 0, "The model of the program is missing." },
		{ "model = Akai S900/950\n", 1, "The section [program] is missing." },
		{ "model = Roland\n", 1, "No model is called 'Roland'." },
		{ head + "play_range_low = 256\n", 3,
			"play_range_low is 256, and goes from 0 to 255." },
		{ kg + "low_note = -1\n", 4, "low_note is -1, and goes from 0 to 255." },
		{ kg + "amp_decay = 4294967296\n", 4,
			"amp_decay is 4294967296, and goes from 0 to 4294967295." },
		{ head + "polyphony = 2147483648\n", 3,
			"polyphony is 2147483648, and goes from -2147483648 to 2147483647." },
		{ head + "polyphony = 12x\n", 3, "polyphony is no whole number." },
		{ head + "polyphony =\n", 3, "polyphony is no whole number." },
		{ head + "name = PIANO\n", 3, "name is no text in quotation marks." },
		{ head + "name = \"A\\x0\"\n", 3, "name is no text in quotation marks." },
		{ head + "name = \"A\\x00\"\n", 3, "name is no text in quotation marks." },
		{ head + "name = \"" + std::string(128, 'A') + "\"\n", 3,
			"name is longer than 127 characters." },
		{ head + "nonsense\n", 3,
			"This is neither a section nor a parameter with its value." },
		{ head + "[keygroup 2]\n", 3, "The next keygroup is number 1, and this is 2." },
		{ head + "[keygroup 129]\n", 3, "A program has at most 128 keygroups." },
		{ head + "[zone 1]\n", 3, "A zone stands in front of the first keygroup." },
		{ head + "[program]\n", 3, "The section [program] comes a second time." },
		{ "[keygroup 1]\n", 1, "A keygroup stands in front of the section [program]." },
		{ head + "[multi]\n", 3, "[multi] is no section of a program." },
		{ head + "[keygroup 1\n", 3, "[keygroup 1 is no section of a program." },
		{ kg + "[zone 2]\n", 4, "The next zone is number 1, and this is 2." },
		{ zones, 12, "A keygroup has at most 8 zones." },
	};
	for (const auto &c : cases) {
		EXPECT_FALSE(read(c.text)) << c.text;
		EXPECT_EQ(why.reason, c.reason);
		EXPECT_EQ(why.line, c.line) << c.reason;
	}
}

TEST_F(library, names_that_nobody_knows_stay_in_their_file)
{
	const std::string text = "model = Generic\n# for the tour\n\n[program]\nname = \"A\"\n"
				 "glitter = 7\n\n[keygroup 1]\nlow_note = 5\nsparkle = on\n"
				 "\n[zone 1]\nsamplename = \"S\"\ndust = 1\n";
	put("A", text);
	EXPECT_TRUE(load_local_programs().done());
	ASSERT_EQ(local_pgms, 1);
	EXPECT_EQ(file_of_program(*local_pgm[0]), path("A"));
	const field_change change = { { field_of<&_keygroup::low_note>, 0 }, i32{ 6 } };
	edit_fields(*local_pgm[0], {}, { &change, 1 });
	EXPECT_TRUE(save_local_program(*local_pgm[0]).done());
	EXPECT_EQ(unsent_changes(), 0);
	std::string expected = text;
	expected.replace(expected.find("= 5"), 3, "= 6");
	EXPECT_EQ(text_of("A"), expected);
}

TEST_F(library, the_list_follows_the_folder_and_keeps_what_is_edited)
{
	const std::string good = "model = Generic\n[program]\nname = \"%\"\n";
	auto named = [&](const char *name) {
		std::string text = good;
		return text.replace(text.find('%'), 1, name);
	};
	put("B", named("B"));
	put("A", named("A"));
	put("bad", good + "polyphony = loud\n");
	const outcome loaded = load_local_programs();
	EXPECT_EQ(loaded.how, ending::local_failed);
	EXPECT_EQ(loaded.words,
		"[" + host.files->host_path(path("bad").c_str()) +
			"], line 4: polyphony is no whole number. It was not loaded.");
	ASSERT_EQ(local_pgms, 2);
	EXPECT_STREQ(local_pgm[0]->name, "A");
	// Edited A keeps its edits, changed B is read anew, into the same record.
	const _program *b = local_pgm[1].get();
	const field_change change = { { field_of<&_program::polyphony> }, i32{ 3 } };
	edit_fields(*local_pgm[0], {}, { &change, 1 });
	put("A", named("other"));
	put("B", named("new"));
	host.files->remove(path("bad").c_str());
	EXPECT_TRUE(load_local_programs().done());
	EXPECT_STREQ(local_pgm[0]->name, "A");
	EXPECT_EQ(unsent_changes(*local_pgm[0]).all(), 1);
	EXPECT_STREQ(b->name, "new");
	host.files->remove(path("B").c_str());
	EXPECT_TRUE(load_local_programs().done());
	EXPECT_EQ(local_pgms, 1);
}

TEST_F(library, programs_of_one_name_stand_side_by_side_and_nothing_is_lost)
{
	_program p = {};
	copy_text(p.name, "../P ");
	EXPECT_TRUE(keep_program(p).done());
	EXPECT_TRUE(keep_program(p).done());
	EXPECT_EQ(local_pgms, 2);
	EXPECT_NE(file_of_program(*local_pgm[0]), file_of_program(*local_pgm[1]));
	EXPECT_EQ(file_of_program(*local_pgm[0]).find(h.config + "\\pgm\\"), 0u);
	EXPECT_TRUE(rename_local_program(0, "Q").done());
	EXPECT_STREQ(local_pgm[0]->name, "Q");
	EXPECT_NE(text_of("Q").find("name = \"Q\""), std::string::npos);
	EXPECT_FALSE(rename_local_program(0, "").done());
	EXPECT_TRUE(delete_local_program(0).done());
	EXPECT_EQ(text_of("Q"), "none");
	EXPECT_TRUE(h.content(h.config + "\\deleted\\Q.program"));
	// A disk that is full: the old file stands, and the edits stay unsaved.
	const field_change change = { { field_of<&_program::polyphony> }, i32{ 9 } };
	edit_fields(*local_pgm[0], {}, { &change, 1 });
	h.disk.space_left = 10;
	const outcome full = save_local_program(*local_pgm[0]);
	EXPECT_EQ(full.how, ending::local_failed);
	EXPECT_EQ(unsent_changes(), 1);
	EXPECT_EQ(h.temporary_files(), 0);
}

TEST_F(library, what_another_family_cannot_hold_is_named)
{
	_program p = {};
	p.sampler_type = model_s3000;
	p.keygroups = p.keygroup[0].keyzones = 1;
	copy_text(p.name, "A");
	p.polyphony = 16;
	p.keygroup[0].low_note = 24;
	p.keygroup[0].keyzone[0].velocity_start = 5;
	EXPECT_TRUE(not_carried(p, *get_sampler(model_s1000)).empty());
	EXPECT_EQ(not_carried(p, *get_sampler(model_s5000)),
		(std::vector<std::string>{ "polyphony" }));
	EXPECT_EQ(not_carried(p, *get_sampler(model_mpc4000)),
		(std::vector<std::string>{ "velocity_start" }));
}

} // namespace velmor
