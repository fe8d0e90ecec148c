// test_z4.cpp - lists and sample transfer with a Z4, Z8 and MPC 4000, byte for byte

#include "src/akaiz4.h"
#include "tests/support/told.h"
#include "tests/support/usb_fixture.h"

using namespace velmor;

namespace
{

class z4_driver : public usb_test
{
protected:
	z4_driver() : wire(h, 0x5F), dev(load(model_z4)) {}
	void TearDown() override
	{
		EXPECT_EQ(wire.steps_left(), 0);
		usb_test::TearDown();
	}
	void play(const std::string &steps) { wire.play(steps.c_str()); }
	// A framed request and its answer, with the status 'R' and data from offset 8.
	void ask(const std::string &command, const std::string &data, const char *status = "52")
	{
		const std::size_t size = hex(command).size();
		play(format_text(
			"> 10 %02X 00 F0 47 5F 00 %s F7 \n < F0 47 5F 00 %s 00 00 00 %s F7",
			static_cast<unsigned>(size + 5), command.c_str(), status, data.c_str()));
	}
	void open() { play("# open \n > 03 01"); }
	bool corrupted()
	{
		const std::vector<std::string> log = h.log();
		return std::any_of(log.begin(), log.end(), [](const std::string &line) {
			return line.ends_with("SYSEX-MIDI_USB DELIVERED CORRUPTED OUTPUT!\r\n");
		});
	}
	transcript_usb wire;
	_dev_status *dev;
};

TEST_F(z4_driver, status)
{
	dev->status = 0;
	open();
	ask("00 01 00", "", "44");
	play("> 10 07 00 F0 47 5F 00 04 00 F7 \n < F7 \n < 00*9 01 02 F7");
	play("> 10 07 00 F0 47 5F 00 07 01 F7 \n < 00*9 'Rack' 00 F7");
	akai_z4_getstatus(1, 7, dev);
	EXPECT_EQ(dev->status, 1);
	EXPECT_STREQ(dev->version, "1.2");
	EXPECT_STREQ(dev->sampler_name, "Rack");
	EXPECT_EQ(dev->exclusive_channel, 7);
	expect_logged({ "[D] Z4 trying to get status...",
		"[D] Requesting Akai Z4 CONFIRMATION OFF on Exclusive Channel: 1 "
		"[SYSEX-CHANNEL: 7]" });
	open();
	play("> 10 08 00 F0 47 5F 00 00 01 00 F7 \n ! silence");
	akai_mpc_getstatus(1, 7, dev);
	EXPECT_TRUE(h.logged("[D] MPC trying to get status...[Studio]"));
}

TEST_F(z4_driver, no_multis_and_samples_with_a_byte_in_front)
{
	dev->multis = 5;
	akai_z4_getmultilist(1, 2, dev);
	EXPECT_EQ(dev->multis, 0);
	EXPECT_TRUE(h.logged("[D] Requesting Akai S5000 MULTILIST on Exclusive Channel: 1 "
			     "[SYSEX-CHANNEL: 2]"));
	open();
	ask("1C 01", "02 00 00 00");
	ask("1C 02 03", "7F*20");
	ask("1C 02 01", "04 4B 49 43 4B 00 03 48 41 54 00");
	akai_z4_getsamplelist(1, 2, dev);
	EXPECT_EQ(dev->samples, 2);
	EXPECT_STREQ(dev->sample[0].name, "KICK");
	EXPECT_STREQ(dev->sample[1].name, "HAT");
	expect_logged(
		{ "[I] USB--> Sample-List-Len: 2 Entries", "[D] SAMPLE[1] --> 'HAT' (SLEN: 3)" });
	// 03 01 00 00 is 131; the list ends behind one.
	open();
	ask("1C 01", "03 01 00 00");
	ask("1C 02 03", "");
	ask("1C 02 01", "04 4B 49 43 4B 00");
	akai_z4_getsamplelist(1, 2, dev);
	EXPECT_EQ(dev->samples, 1);
	EXPECT_TRUE(h.logged("[W] The sampler announced 131 samples and listed 1"));
}

TEST_F(z4_driver, programs)
{
	open();
	ask("14 01", "01 00 00 00");
	// Handle 05 01 00 00 is 133.
	ask("14 02 02", "04 05 01 00 00 08 41 00");
	ask("14 03 05 01 00 00", "", "44");
	ask("14 06", "41 00");
	ask("17 10", "20");
	ask("17 11", "01");
	// Two keygroups; the first has two zones, the second one whose level is refused.
	ask("10 01 00", "", "44");
	ask("10 02", "00");
	ask("13 04", "18");
	ask("13 05", "60");
	ask("0F 01 01", "41 31 00");
	ask("0F 02 01", "01 05 01"); // -(5 + 128)
	ask("0F 01 02", "41 32 00");
	ask("0F 02 02", "00 05 00");
	ask("0F 01 03", "", "45");
	ask("10 01 01", "", "44");
	ask("10 02", "01");
	ask("13 04", "61");
	ask("13 05", "7F");
	ask("0F 01 01", "42 31 00");
	ask("0F 02 01", "00 63 00", "45");
	ask("10 01 02", "", "45");
	akai_z4_getproglist(1, 1, dev);
	ASSERT_EQ(dev->programs, 1);
	const _program &p = dev->program[0];
	EXPECT_STREQ(p.name, "A");
	EXPECT_EQ(p.number, 133);
	EXPECT_EQ(p.sampler_type, 1003);
	EXPECT_EQ(told(akai_z4_program_values, p), "polyphony 32, s1000_reasignement 1");
	ASSERT_EQ(p.keygroups, 2);
	EXPECT_EQ(told(akai_z4_keygroup_values, p.keygroup[0]), "low_note 24, high_note 96");
	EXPECT_EQ(p.keygroup[0].keyzones, 2);
	EXPECT_EQ(p.keygroup[1].keyzones, 1) << "a refused level leaves the zone counted";
	const auto zone = [&](int kg, int number) {
		return told(akai_z4_zone_values, p.keygroup[kg].keyzone[number]);
	};
	EXPECT_EQ(zone(0, 0), "samplename A1, zone_level -133");
	EXPECT_EQ(zone(0, 1), "samplename A2, zone_level 5");
	EXPECT_EQ(zone(1, 0), "samplename B1, zone_level 0");
	expect_logged(
		{ "[D] PROG-NR BEFORE DECODING: [05 01 00 00]", "[D] I: 0, PTR: [A] NUMBER: 133",
			"[D] PROGRAM[133] GETPOLYPHONY [F0 47 5F 00 52 00 00 00 20 F7]",
			"[D] PROGRAM[133] GET REASIGNEMENT [F0 47 5F 00 52 00 00 00 01 F7]",
			"[D] Requesting Keygroup LOW-Note", "[D] Requesting Keygroup HIGH-Note",
			"[D] KEYGROUP: 0, ZONE: 1, LEVEL: [F0 47 5F 00 52 00 00 00 01 05 01 F7] "
			"(-133)",
			"[D] Program has 2 Keygroups", "[D] Sampler has loaded 2 Keygroups" });
	EXPECT_TRUE(h.progress.caption.empty()) << "no bar is shown";
}

TEST_F(z4_driver, a_list_that_is_not_one)
{
	open();
	ask("14 01", "01 00 00 00");
	ask("14 02 02", "04 05 01 00 00 05 41 00");
	akai_z4_getproglist(1, 1, dev);
	EXPECT_TRUE(corrupted());
	open();
	ask("14 01", "00 00 00 00");
	ask("14 02 02", "");
	h.forget_log();
	akai_z4_getproglist(1, 1, dev);
	EXPECT_TRUE(h.logged("[D] Sampler has loaded 0 Keygroups"));
}

// And a list that is shorter than announced.
TEST_F(z4_driver, sixteen_keygroups_at_most)
{
	open();
	ask("14 01", "02 00 00 00");
	ask("14 02 02", "04 00 00 00 00 08 41 00");
	ask("14 03 00 00 00 00", "", "44");
	for (const char *command : { "14 06", "17 10", "17 11" })
		ask(command, "00");
	for (int kg = 0; kg < 16; kg++) {
		ask(format_text("10 01 %02X", kg), "", "44");
		for (const char *command : { "10 02", "13 04", "13 05" })
			ask(command, "00");
		ask("0F 01 01", "", "45");
	}
	akai_z4_getproglist(1, 1, dev);
	EXPECT_EQ(dev->program[0].keygroups, 16);
	EXPECT_TRUE(corrupted());
}

TEST_F(z4_driver, information)
{
	dev->samples = 1;
	copy_text(dev->sample[0].name, "KICK");
	open();
	ask("1C 04 4B 49 43 4B 00", "", "44");
	ask("1F 52", "18");
	ask("1F 51", "44 58 02"); // 44100
	ask("1F 55", "02");
	ask("1F 26", "01");
	ask("1F 20", "00 00 00 01 02"); // at offset 9, highest group first
	ask("1F 21", "00 00 05 31 08");
	ask("1F 50", "00 05 31 08");
	ask("1F 24", "3C");
	akai_z4_sampleinfo(1, 1, "KICK");
	const _sample &s = dev->sample[0];
	EXPECT_EQ(s.bitspersample, 24u);
	EXPECT_EQ(s.sample_rate, 44100u);
	EXPECT_EQ(s.channels, 2u);
	EXPECT_EQ(s.playback_mode, 1);
	EXPECT_EQ(s.start_position, 130u);
	EXPECT_EQ(s.end_position, 88200u);
	EXPECT_EQ(s.sample_length, 2u);
	EXPECT_EQ(s.original_pitch, 60);
	expect_logged({ "[D] Current Sample set at Z4/Z8", "[D] S5000 Current Sample start: 130" });
	EXPECT_STREQ(akai_z4_getplaymode(1), "LOOPING");
	EXPECT_STREQ(akai_z4_getplaymode(3), "OTHER(3)");
	open();
	ask("1C 04 4B 49 43 4B 00", "", "44");
	ask("1F 52", "18");
	ask("1F 51", "44 58 02");
	play("> 10 07 00 F0 47 5F 00 1F 55 F7 \n ! silence");
	akai_z4_sampleinfo(1, 1, "KICK");
	expect_failed("[F] GET CURRENT PLAYBACK MODE (", ") SYSEX");
}

// The sections are those of the S5000, and so are the words.
TEST_F(z4_driver, renaming)
{
	open();
	ask("0E 05 41 00", "", "45");
	ask("0E 09 42 00", "", "44");
	akai_z4_renamesample(1, 2, "A", "B");
	EXPECT_TRUE(h.logged("[D] S5000 RENAMED current sample!"));
	EXPECT_TRUE(h.boxes.empty());
}

// ---- Transfer --------------------------------------------------------------------------

// 100 bytes of the file in a block of 160; then a block that holds nothing of the first.
TEST_F(z4_driver, upload)
{
	std::vector<u8> content(160, 1);
	content.insert(content.end(), 40, 2);
	h.put_content(spool("KICK.wav"), content);
	open();
	play("> 20 00 00 00 C8 'KICK.wav' \n < 00*4 00 00 00 A0");
	play("> 01*160 \n > 00 \n < 'AkaI' 00 \n < 01 00*3 00 00 00 A0");
	play("> 02*40 00*120 \n > 00 \n < 01 00*3 00*4");
	play("# the end \n < 'AkaI' \n < 01 02 03 \n < 00*4 01");
	ask("1F 26", "00");
	akai_z4_uploadsample(spool("KICK").c_str());
	EXPECT_EQ(h.boxes,
		(std::vector<shown_box>{ { "Sample [KICK] successfully uploaded!", "INFO" } }));
	EXPECT_EQ(wire.most_in_flight, 3);
	EXPECT_EQ(h.progress.infos, (std::vector<std::string>{ "80.00 %", "100.00 %" }));
	expect_logged({ "[D] Z4 --> UPLOAD REQUEST [20 00 00 00 C8 4B 49 43 4B 2E 77 61 76]",
		"[D] STEPSIZE: 0", "[D] Sampler is still busy...[5]",
		"[D] Upload Block-Size: 160 [160/200], Response from Z4: 8 Bytes [01 "
		"00 00 00]",
		"[D] Sampler is still end-busy...[4]",
		"[D] Sampler is still sending some status...[3]",
		"[I] Upload completed! Received final confirmation! (5 Bytes)",
		"[D] Upload completed (Sample renamed)[KICK]!" });
}

TEST_F(z4_driver, a_refusal_is_only_in_the_log)
{
	h.put_content(spool("KICK.wav"), std::vector<u8>(200, 7));
	open();
	play("> 20 00 00 00 C8 'KICK.wav' \n < 00*4 00 00 00 64");
	play("> 07*100 \n > 00 \n < 00*8 \n < 00*5");
	ask("1F 26", "00");
	akai_z4_uploadsample(spool("KICK").c_str());
	EXPECT_TRUE(h.logged("[I] Upload failed! Received final confirmation! (5 Bytes)"));
	EXPECT_EQ(h.boxes.back().text, "Sample [KICK] successfully uploaded!");
}

TEST_F(z4_driver, uploads_that_fail)
{
	const std::string put = "> 20 00 00 00 C8 'KICK.wav' \n ";
	const std::string sent = put + "< 00*4 00 00 00 C8 \n > 07*200 \n > 00 \n < 01*8 \n ";
	std::string endless = sent;
	for (int i = 0; i < 13; i++)
		endless += "! wait 5000 \n < 01*8 \n ";
	const failure rows[] = {
		{ "! stall", ") PUT_SAMPLE" },
		{ put + "! silence", ") GET_SAMPLE", 10.1 },
		{ put + "< 00*8", ") PUT_SAMPLE [Block-Size: 0]" },
		{ sent + "! silence", ") GET_SAMPLE", 10.1 },
		// An end that never comes is left after a minute.
		{ endless, ") GET_SAMPLE [Sampler stays busy]", 66 },
	};
	h.put_content(spool("KICK.wav"), std::vector<u8>(200, 7));
	const auto upload = [this] { akai_z4_uploadsample(spool("KICK").c_str()); };
	each_fails(0x5F, "> 03 01", "[F] UPLOAD FAILED (akai", rows, upload);
	// No answer to the question behind a transfer.
	transcript_usb two(h, 0x5F);
	two.play(("> 03 01 \n " + sent + "< 00*5 \n > 10 07 00 F0 47 5F 00 1F 26 F7 \n ! silence")
			 .c_str());
	h.boxes.clear();
	upload();
	EXPECT_TRUE(h.boxes.empty());
	EXPECT_TRUE(h.logged("[D] SYSEX-TEST FAILED AFTER TRANSFER!!!"));
}

const char *const header_length = "> 21 00 00 41 85 \n < 00*4 00 00 00 46";
// Format of 18 bytes, a chunk of none, a chunk of none, data of 300 bytes.
const char *const header =
	"< 'RIFF' 00*12 12 00 00 00 00*18 'fact' 00*4 'smpl' 00*4 'data' 2C 01 00 00 00*8";

TEST_F(z4_driver, download)
{
	open();
	ask("1C 04 4B 49 43 4B 00", "", "44");
	ask("1C 05", "05 03 01 00"); // 5 + 384 + 16384 = 16773 = 4185
	play(header_length);
	play(header);
	play("> 00 \n < 'AkaI' \n < 'AkaI' 00*4 \n < 00*4 00 00 00 C8 \n < 11*200");
	play("> 00 \n < 00*4 00 00 00 64 \n < 22*100 \n > 00 \n < 00*8");
	const double before = h.time.now();
	akai_z4_downloadsample(1, 1, "KICK");
	EXPECT_GT(h.time.now() - before, 0.5) << "the sampler gets half a second";
	EXPECT_EQ(
		h.boxes, (std::vector<shown_box>{ { "Sample successfully downloaded!", "INFO" } }));
	ASSERT_TRUE(h.content(spool("KICK.wav")));
	EXPECT_EQ(h.content(spool("KICK.wav"))->size(), 370u);
	EXPECT_EQ(h.progress.caption, "Downloading [KICK]");
	EXPECT_EQ(h.progress.value, 300) << "the sum, and not each block's share";
	expect_logged({ "[D] Current Sample selected [KICK]",
		"[D] SAMPLE HANDLE: 0x00004185 (Request: [21 00 00 41 85])",
		"[D] Header-Length: 70 Bytes RESULT-LEN: 8 Bytes [00 00 00 00 00 00 00 "
		"46]",
		"[D] Data-Length: 200 Bytes [00 00 00 00 00 00 00 C8]",
		"[I] Downloaded Sample successfully...(370 Bytes, 300 Bytes Sample-Data)" });
}

// The sampler is left in the middle though every exchange ended well.
TEST_F(z4_driver, the_next_opening_breaks_off_a_transfer_that_went_wrong)
{
	h.put_content(spool("KICK.wav"), std::vector<u8>(200, 7));
	for (const bool up : { true, false }) {
		open();
		if (up) {
			play("> 20 00 00 00 C8 'KICK.wav' \n < 00*8");
			akai_z4_uploadsample(spool("KICK").c_str());
		} else {
			ask("1C 04 4B 49 43 4B 00", "", "44");
			ask("1C 05", "05 03 01 00");
			play("> 21 00 00 41 85 \n < 00*8");
			akai_z4_downloadsample(1, 1, "KICK");
		}
		play("> 03 01 \n > 03 01 \n > 03 01");
		EXPECT_TRUE(open_midi_usb(&usbdev[0]));
		close_midi_usb(&usbdev[0]);
		EXPECT_EQ(wire.steps_left(), 0);
	}
}

TEST_F(z4_driver, downloads_that_fail)
{
	const std::string get = "> 21 00 00 41 85 \n ";
	const std::string begun = std::string(header_length) + "\n" + header + "\n > 00 \n ";
	const failure rows[] = {
		{ get + "< 00*3", ") GET_SAMPLE [1], RESULT_LEN: 3", 0.6 },
		{ get + "! silence", ") GET_SAMPLE [0], RESULT_LEN: 0", 10.6 },
		{ get + "< 00*4 00 05 00 01", ") GET_SAMPLE [Header of 327681 Bytes]", 0.6 },
		{ get + "< 00*8", ") GET_SAMPLE [Header corrupted] READ 0/0]", 0.6 },
		{ begun + "< 00*4 00 05 00 01", ") GET_SAMPLE [Block of 327681 Bytes]", 0.6 },
		{ begun + "< 00*4 00 00 00 C8 \n < 11*129", ") GET_SAMPLE [SHORT READ 129/200]",
			0.6 },
		{ begun + "! unplug", ") GET_SAMPLE", 0.6 },
	};
	each_fails(0x5F,
		"> 03 01 \n > 10 0C 00 F0 47 5F 00 1C 04 'KICK' 00 F7 \n < 44*9 \n"
		"> 10 07 00 F0 47 5F 00 1C 05 F7 \n < 00*8 05 03 01 00 F7",
		"[F] DOWNLOAD FAILED (", rows, [] { akai_z4_downloadsample(1, 1, "KICK"); });
	EXPECT_FALSE(h.content(spool("KICK.wav")));
}

} // namespace
