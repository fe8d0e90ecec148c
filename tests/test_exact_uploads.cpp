// test_exact_uploads.cpp - samples that arrive at the S1000 family as they are: length and header
//
// The machine's side is written apart from the driver, and refuses headers that cannot be.

#include "src/akais1000_exact.h"
#include "src/velmor_transfer.h"
#include "src/velmor_work.h"
#include "src/waveqx.h"
#include "tests/support/transcript_midi.h"
#include "virtual/akai_codec.h"
#include "virtual/midi_ports.h"
#include "virtual/s1000.h"
#include <filesystem>

namespace velmor
{
namespace
{

using machine::bytes;

struct exact_uploads_test : host_test {
	const midi_service *midi_before = host.midi;

	~exact_uploads_test() override
	{
		close_midi_output();
		unplug_all_midi();
		host.midi = midi_before;
	}
	int plug(s1000_machine &sampler, i32 model)
	{
		h.use_sampler(model, 5);
		host.midi = &virtual_midi;
		const int port = plug_midi(h.time, sampler, "virtual");
		selected_midi_in_interface = selected_midi_out_interface = 0;
		reload_midi_setup(false);
		row = get_sampler(model);
		list();
		return port;
	}
	void list()
	{
		row->getstatus(1, 5, current_sampler->status);
		row->getsamplelist(1, 5, current_sampler->status);
	}
	std::string spool(const char *name) { return h.config + "\\sample\\" + name; }
	std::string last_box() { return h.boxes.empty() ? "" : h.boxes.back().text; }

	_sampler_type *row = nullptr;
};

// 100 words, played from 5 to 97, looped from 20 to 90; note 3D, LOOP UNTIL RELEASE, tuned.
stored_sample &add_lead(s1000_machine &sampler)
{
	std::vector<std::int16_t> words;
	for (int i = 0; i < 100; i++)
		words.push_back(static_cast<std::int16_t>(i * 601 - 30000));
	stored_sample &lead = sampler.add_sample("LEAD", 44100, words);
	set_loop(lead, 20, 90);
	lead.header[2] = 0x3D;
	lead.header[19] = 1;
	lead.header[20] = 0xE7;
	lead.header[21] = 0xFE;
	machine::put_number(lead.header, 30, 5, 4);
	machine::put_number(lead.header, 34, 97, 4);
	return lead;
}

const struct {
	s1000_model model;
	i32 id;
} models[] = { { s1000_model::s1000, model_s1000 }, { s1000_model::s2000, model_s2000 },
	{ s1000_model::s2800, model_s2800 }, { s1000_model::s3000, model_s3000 } };

// The words once, and all of the header; without the choice as before.
TEST_F(exact_uploads_test, a_sample_goes_down_and_up_unchanged)
{
	for (const auto &it : models) {
		s1000_machine sampler(it.model, 5);
		const stored_sample lead = add_lead(sampler);
		plug(sampler, it.id);
		row->downloadsample(1, 5, "LEAD");
		row->renamesample(1, 5, "LEAD", "OLD");
		list();
		set_exact_uploads(true);
		sampler.heard.clear();
		row->uploadsample(spool("LEAD").c_str());
		EXPECT_EQ(last_box(), "Sample successfully uploaded!");
		ASSERT_EQ(sampler.samples.size(), 2u);
		EXPECT_EQ(sampler.samples[1].words, lead.words);
		EXPECT_EQ(sampler.samples[1].header, lead.header);
		// Announced: 100 words, loop from 20 to 90; three packets, five messages about it.
		ASSERT_EQ(sampler.heard.size(), 9u);
		EXPECT_EQ(bytes(sampler.heard[0].begin() + 10, sampler.heard[0].end()),
			hex("64 00 00 14 00 00 5A 00 00 00 F7"));

		set_exact_uploads(false);
		list();
		row->uploadsample(spool("LEAD").c_str());
		EXPECT_EQ(sampler.samples[1].words.size(), 200u);
		EXPECT_EQ(sampler.samples[1].header[2], 60);
		unplug_all_midi();
	}
}

// 4000 words, told twice and once, and down: packets of 127 bytes of which 80 are sound, at 3125
// bytes a second, with 6 bytes of answer or 18 of request and 50 ms of pause.
TEST_F(exact_uploads_test, transfers_measure_the_wire)
{
	s1000_machine sampler(s1000_model::s3000, 5);
	sampler.add_sample("LONG", 44100, std::vector<std::int16_t>(4000, 7));
	plug(sampler, model_s3000);
	EXPECT_TRUE(download_sample("LONG").done());
	EXPECT_NEAR(rate_of(*row, transfer_way::down).bytes_per_second, 830, 40);
	for (const bool exact : { false, true }) {
		set_exact_uploads(exact);
		h.settings.erase("rate up 1007 MIDI 'virtual'");
		EXPECT_TRUE(upload_sample(spool("LONG")).done());
		EXPECT_EQ(sampler.samples[0].words.size(), exact ? 4000u : 8000u);
		EXPECT_NEAR(rate_of(*row, transfer_way::up).bytes_per_second, exact ? 1530 : 1705,
			60); // the headers take their time
	}
	EXPECT_TRUE(connection_text().ends_with("kB/s up, 0.8 kB/s down\non this connection"));
}

// What the machine made of a dump, and what it is told: three words, note 3D, NO LOOPING, fine 5,
// semitone FE, start 1, end 2, one loop at 3 with a length of 2; 1E, 4E and 07 are the machine's.
std::string header_of(const char *pitch_to_tune, const char *from_start_to_loop)
{
	return nibbles("03 01 " + std::string(pitch_to_tune) + " 1E 00*2 4E 03 00 00 00 " +
		       from_start_to_loop + " 0F 27 00*84 07 02 03 04 44 AC 00*10") +
	       "F7\n";
}
const std::string name_x = "22 0A*11", ask_header = "> F0 47 05 0A 48 00 00 F7\n";
const std::string made = header_of(
	("3C " + name_x + " 09 00 07 08 02 00 00").c_str(), "00*4 02 00 00 00 00*4 34 12 00*4");
const std::string told = header_of(("3D " + name_x + " 09 01 07 08 00 05 FE").c_str(),
	"01 00 00 00 02 00 00 00 03 00 00 00 00 00 02 00 00 00");
const std::string head = "< F0 47 05 0B 48 00 00 ", write = "> F0 47 05 0B 48 00 00 ";

const std::string conversation = // 1 and 3 are where the loop stands
	"> F0 7E 05 01 00 00 10 13 31 01 03 00 00 01 00 00 03 00 00 00 F7\n< F0 7E 05 7F 00 F7\n"
	"> F0 7E 05 02 00 40 00 00 40 00 01 3F 7F 03 " +
	[] {
		std::string midpoints;
		for (int i = 0; i < 37; i++)
			midpoints += "40 00 00 ";
		return midpoints;
	}() +
	"7B F7\n< F0 7E 05 7F 00 F7\n" + ask_header + head + made + write + made +
	"< F0 47 05 16 48 00 F7\n" + ask_header + head + made + write + told +
	"< F0 47 05 16 48 00 F7\n" + ask_header;

struct exact_transcripts : host_test {
	std::string path = h.config + "\\sample\\X";

	exact_transcripts()
	{
		h.use_sampler(model_s3000, 5);
		current_sampler->status->samples = 0;
		u32 words[] = { 0, 1, 0xFFFF };
		_sample x = {};
		x.sample_rate = 44100;
		x.sample_length = 3;
		x.sample_data = words;
		x.original_pitch = 0x3D;
		x.fine_tune = 5;
		x.semitone_tune = 0xFE;
		x.start_position = 1;
		x.end_position = 2;
		x.loop_start = 1;
		x.loop_end = 3;
		EXPECT_EQ(write_sample(&x, path.c_str()), 0);
		set_exact_uploads(true);
	}
	std::string upload(const std::string &script)
	{
		h.boxes.clear();
		transcript_midi port(h, script);
		akai_s2000_sample_upload(path.c_str());
		EXPECT_TRUE(port.finished());
		return h.boxes.size() == 1 ? h.boxes[0].text : "";
	}
	void patch(std::size_t at, const char *put)
	{
		auto file = h.content(path + ".wav");
		const bytes with = hex(put);
		std::copy(with.begin(), with.end(), file->begin() + static_cast<long>(at));
		h.put_content(path + ".wav", *file);
	}
};

// The reply decides nothing, what is read back does.
TEST_F(exact_transcripts, the_header_is_written_behind_the_name_and_read_back)
{
	EXPECT_EQ(upload(conversation + head + told), "Sample successfully uploaded!");
	const char kept[] = "The sound of [X] was uploaded, but the sampler did not "
			    "take its pitch, loop, play mode and tuning.";
	EXPECT_EQ(upload(conversation + head + made), kept);
	EXPECT_EQ(upload(conversation + "< nothing"), kept);
	EXPECT_FALSE(h.progress.visible);
}

struct told_facts {
	std::size_t at; // in the file
	const char *put;
	bool looped, ranged;
	int mode, fine;
};

// 46: frames that fact tells. 66: maker; 86: loops; 90: own bytes. 102, 106: loop; 124: play mode;
// 128, 132: start and end.
TEST_F(exact_transcripts, what_a_file_says_is_believed_as_far_as_it_fits)
{
	const told_facts rows[] = {
		{ 124, "00", true, true, 0, 5 }, { 124, "03", true, true, 3, 5 },
		{ 124, "09", true, true, 0, 5 },           // no mode: the loop makes it
		{ 46, "06 00 00 00", true, false, 0, 5 },  // another rate since
		{ 132, "04 00 00 00", true, false, 0, 5 }, // behind the words
		{ 128, "02 00 00 00", true, false, 0, 5 }, // empty
		{ 106, "04 00 00 00", false, true, 2, 5 },
		{ 102, "03 00 00 00", false, true, 2, 5 },
		{ 86, "FF FF FF FF", true, true, 0, 5 }, // of one loop that is there
		{ 86, "00 00 00 00", false, false, 2, 0 },
		{ 90, "11 00 00 00", true, false, 0, 0 }, // own bytes of another kind
		{ 58, "48", true, false, 0, 0 },          // and of another maker
	};
	const auto whole = h.content(path + ".wav");
	for (const told_facts &row : rows) {
		SCOPED_TRACE(testing::Message() << row.at << " " << row.put);
		h.put_content(path + ".wav", *whole);
		patch(row.at, row.put);
		_sample sample = {};
		ASSERT_EQ(create_sample_from_file(path.c_str(), &sample), 1);
		const akai_sample_facts facts = akai_facts_of_file(path + ".wav", sample);
		free_sample_data(&sample);
		EXPECT_EQ(facts.looped, row.looped);
		EXPECT_EQ(facts.ranged, row.ranged);
		EXPECT_EQ(facts.playback_mode, row.mode);
		EXPECT_EQ(facts.fine_tune, row.fine);
		EXPECT_EQ(facts.pitch, 0x3D);
	}
}

// A kept header brings back what a file cannot tell: a second loop, the rate; the bytes that
// nobody knows are the machine's.
TEST_F(exact_uploads_test, a_kept_header_puts_a_sample_back_whatever_the_choice)
{
	s1000_machine sampler(s1000_model::s3000, 5);
	add_lead(sampler);
	stored_sample &lead = sampler.samples[0];
	lead.header[16] = 2;
	machine::put_number(lead.header, 50, 0x31, 4);
	machine::put_number(lead.header, 138, 32000, 2);
	const stored_sample before = lead;
	lead.header[134] = lead.header[22] = 0x55;
	plug(sampler, model_s3000);
	bytes header = akai_s1000_sample_header(5, "LEAD");
	EXPECT_EQ(header, sampler.samples[0].header);
	EXPECT_TRUE(akai_s1000_sample_header(5, "lead").empty());
	row->downloadsample(1, 5, "LEAD");
	std::filesystem::rename(host.files->host_path((spool("LEAD") + ".wav").c_str()),
		host.files->host_path((spool("LEAD (2)") + ".wav").c_str()));
	row->renamesample(1, 5, "LEAD", nullptr);
	list();
	ASSERT_TRUE(sampler.samples.empty());
	EXPECT_TRUE(akai_s1000_upload_exactly(spool("LEAD (2)").c_str(), header));
	ASSERT_EQ(sampler.samples.size(), 1u);
	EXPECT_EQ(sampler.samples[0].words, before.words);
	EXPECT_EQ(sampler.samples[0].header, before.header);

	// Over itself, under the header's name; a header of another sample stops it all.
	list();
	EXPECT_TRUE(akai_s1000_upload_exactly(spool("LEAD (2)").c_str(), header));
	EXPECT_EQ(sampler.samples.size(), 1u);
	sampler.heard.clear();
	header[26]++;
	EXPECT_FALSE(akai_s1000_upload_exactly(spool("LEAD (2)").c_str(), header));
	EXPECT_EQ(last_box(), "The header that was kept is not that of this sample.");
	EXPECT_FALSE(
		akai_s1000_upload_exactly(spool("LEAD (2)").c_str(), std::span(header).first(20)));
	EXPECT_TRUE(sampler.heard.empty());
}

} // namespace
} // namespace velmor
