// test_verify.cpp - what arrived, compared with what was sent

#include "src/velmor_backup.h"
#include "src/velmor_verify.h"
#include "src/waveqx.h"
#include "tests/support/racks.h"

namespace velmor
{
namespace
{

class verify : public host_test
{
protected:
	// A file of the spool, and its path without extension.
	std::string spool(const std::string &name, const levels &words, unsigned channels = 1)
	{
		wave_facts facts = { .channels = static_cast<std::uint16_t>(channels) };
		std::vector<u8> file = make_wave(words, facts);
		for (const u8 byte : hex("4C 49 53 54 04 00 00 00 01 02 03 04")) // no sound
			file.push_back(byte);
		h.put_content(h.config + "\\sample\\" + name + ".wav", file);
		load_local_samples(nullptr);
		return h.config + "\\sample\\" + name;
	}
	std::string compare(const std::string &name)
	{
		const outcome result = compare_sample(
			h.config + "\\sample\\" + name + ".wav", compared_way::to_sampler);
		EXPECT_EQ(h.content(h.config + "\\compare"), std::nullopt);
		return result.words;
	}
};

} // namespace

// The file is sent as it is told: twice as long, and silent from its end on.
TEST_F(verify, an_upload_to_an_s3000_is_compared_with_what_was_meant)
{
	s1000_rack rack(h, s1000_model::s3000, model_s3000);
	const std::string path = spool("bell", ramp(100, 37));
	EXPECT_EQ(compare("bell"), "The sampler holds no sample called 'bell'.");
	ASSERT_TRUE(upload_sample(path).done());
	EXPECT_EQ(compare("bell"), "'BELL' on the sampler is as it was meant to arrive: 200 values "
				   "were compared.");
	levels &words = rack.machine.samples.back().words;
	words[5]++, words[52] = 9, words[199] = -1;
	EXPECT_EQ(compare("bell"), "'BELL': 3 of 200 values differ, the first at 5.");
	words[5]--, words[52] = ramp(100, 37)[52], words[199] = 0;
	for (auto &word : words)
		word = static_cast<std::int16_t>(word & ~3);
	EXPECT_NE(compare("bell").find("200 values were compared"), std::string::npos);
	words[99] ^= 4;
	EXPECT_EQ(compare("bell"), "'BELL': 1 of 200 values differ, the first at 99.");
	rack.machine.samples.back() = {};
	rack.machine.samples.pop_back();
	rack.machine.add_sample("BELL", 44100, ramp(100, 37));
	EXPECT_NE(compare("bell").find("100 values were compared"), std::string::npos);
	rack.machine.samples.pop_back();
	rack.machine.add_sample("BELL", 44100, ramp(70, 37));
	EXPECT_EQ(compare("bell"), "'BELL': 200 values were meant to arrive, and 70 did.");
}

TEST_F(verify, on_usb_a_file_is_compared_as_it_is_with_its_sides)
{
	usb_rack<s5000> rack(h, model_s5000);
	ASSERT_TRUE(upload_sample(spool("Pad", ramp(80, 5), 2)).done());
	EXPECT_NE(compare("Pad").find("80 values were compared"), std::string::npos);
	usb_sample &held = rack.machine.samples.back();
	held.wave[held.wave.size() - 13] ^= 1; // the last of the sound
	EXPECT_EQ(compare("Pad"), "'Pad': 1 of 80 values differ, the first at 39 on the right.");
	held.wave = make_wave(ramp(80, 5), { .channels = 2, .rate = 22050 });
	EXPECT_EQ(compare("Pad"), "'Pad': It has 22050 Hz instead of 44100 Hz.");
}

TEST_F(verify, always_means_behind_each_transfer_and_not_behind_its_own)
{
	usb_rack<z4> rack(h, model_z4, z4_model::z8);
	ASSERT_TRUE(read_sample_list().done());
	rack.forget_heard();
	ASSERT_TRUE(download_sample("KICK").done());
	const std::size_t once = rack.heard().size();
	set_verify_always(true);
	rack.forget_heard();
	EXPECT_EQ(download_sample("KICK").line,
		"Downloaded 'KICK'. It was compared and is the same.");
	EXPECT_EQ(rack.heard().size(), 2 * once);
}

TEST_F(verify, a_program_tells_the_first_parameter_that_differs)
{
	s1000_rack rack(h, s1000_model::s3000, model_s3000);
	ASSERT_TRUE(read_program_list().done());
	const auto piano = std::make_unique<_program>(current_sampler->status->program[0]);
	EXPECT_EQ(compare_program(*piano).words, "'PIANO' on the sampler is the same program.");
	rack.machine.programs[0].keygroups[1][3] = 50;
	const std::string words = compare_program(*piano).words;
	EXPECT_TRUE(words.starts_with("'PIANO': 1 of ")) << words;
	EXPECT_NE(words.find("the first is keygroup 2: low_note, which is 50 instead of 40."),
		words.npos)
		<< words;
	piano->keygroups = 1;
	EXPECT_NE(compare_program(*piano).words.find("the first is keygroup 2: too many."),
		std::string::npos);
	set_verify_always(true);
	copy_text(piano->name, "ORGAN");
	EXPECT_EQ(
		upload_program(*piano).line, "Uploaded 'ORGAN'. It was compared and is the same.");
}

} // namespace velmor
