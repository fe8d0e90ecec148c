// test_usb_conversations.cpp - whole operations against virtual samplers on a full-speed bus
//
// Every fault strikes at every write of the host, one after the other, and Stop is pressed at
// every moment. Whatever happens, an operation ends in bounded time, leaves no half file and no
// open device; and the very next one agrees with what the machine holds, though nobody has
// switched it off, and whether or not it drops unread answers when it is woken.

#include "src/akaiz4.h"
#include "src/lcd.h"
#include "tests/support/usb_fixture.h"
#include "virtual/s5000.h"
#include "virtual/wave_image.h"
#include "virtual/z4.h"
#include <cmath>

using namespace velmor;

namespace
{

std::vector<u8> sound(std::size_t words)
{
	std::vector<std::int16_t> values(words);
	for (std::size_t i = 0; i < words; i++)
		values[i] = static_cast<std::int16_t>(i * 37);
	return make_wave(values, {});
}

s5000_program program_of(const char *name, int keygroups)
{
	s5000_program program;
	program.name = name;
	program.keygroups.resize(static_cast<std::size_t>(keygroups));
	return program;
}

class usb_conversation : public usb_test
{
protected:
	void plug(usb_sampler &machine, i32 model)
	{
		host.usb = &virtual_usb;
		plug_usb(h.time, machine);
		h.use_sampler(model, 0, "Studio");
		machine.name = "Studio";
		init_usb(1);
	}
	const _sampler_type &row()
	{
		return *get_sampler(static_cast<i32>(current_sampler->sampler_type));
	}
	_dev_status &dev() { return *current_sampler->status; }
	void forget_lists()
	{
		dev().status = dev().samples = dev().programs = dev().multis = 0;
		dev().program[0].keygroups = 0;
		*dev().version = *dev().sample[0].name = *dev().program[0].name = 0;
		*dev().multi[0].name = 0;
	}
	void read_lists()
	{
		row().getstatus(1, 0, &dev());
		row().getsamplelist(1, 0, &dev());
		row().getproglist(1, 0, &dev());
		row().getmultilist(1, 0, &dev());
	}
	// What ends the process is the user's to read; here it is one more end of an operation.
	void run(const std::function<void()> &operation)
	{
		try {
			operation();
		} catch (const process_ended &) {
		}
		ASSERT_FALSE(usb_in_use());
		hide_progressbar(0);
		forget_stop();
		h.boxes.clear();
	}
	void strike_everywhere(usb_sampler &machine, const std::function<void()> &operation,
		const std::function<bool()> &agrees, double limit);
	void stop_everywhere(usb_sampler &machine, const std::function<void()> &operation,
		const std::function<bool()> &agrees);
};

constexpr usb_fault faults[] = { usb_fault::write_fails, usb_fault::write_stalls,
	usb_fault::write_short, usb_fault::write_hangs, usb_fault::answer_missing,
	usb_fault::answer_late, usb_fault::answer_short, usb_fault::answer_garbled,
	usb_fault::answer_fails, usb_fault::answer_stalls, usb_fault::unplugged,
	usb_fault::unplugged_answering };

void usb_conversation::strike_everywhere(usb_sampler &machine,
	const std::function<void()> &operation, const std::function<bool()> &agrees, double limit)
{
	current_run_mode.diagnostics = false; // thousands of lines that nobody reads
	operation();
	ASSERT_TRUE(agrees());
	const int before = machine.writes;
	operation();
	const int writes = machine.writes - before;
	for (const bool keeps : { false, true })
		for (const usb_fault fault : faults)
			// A machine that drops them is the easier one: every third write.
			for (int at = 1; at <= writes; at += keeps ? 1 : 3) {
				SCOPED_TRACE(format_text("fault %d at write %d, unread answers %s",
					static_cast<int>(fault), at, keeps ? "kept" : "dropped"));
				machine.keeps_unread = keeps;
				usb_trouble &trouble = machine.strike(fault, at);
				trouble.seconds = 7;
				trouble.bytes = 3;
				EXPECT_LT(took([&] { run(operation); }), limit);
				machine.troubles.clear();
				if (fault == usb_fault::unplugged ||
					fault == usb_fault::unplugged_answering)
					plug_usb(h.time, machine);
				if (!usbdevs) // the scan was struck
					init_usb(1);
				run(operation);
				ASSERT_TRUE(agrees());
			}
}

// Stop at every moment of an operation.
void usb_conversation::stop_everywhere(usb_sampler &machine, const std::function<void()> &operation,
	const std::function<bool()> &agrees)
{
	current_run_mode.diagnostics = false;
	machine.interrupted = 0;
	int moments = 0;
	h.on_pump = [&] { moments++; };
	run(operation);
	ASSERT_TRUE(agrees());
	for (const bool keeps : { false, true })
		for (int last = moments; last > 0; last -= 2) {
			SCOPED_TRACE(format_text("Stop at moment %d of %d", last, moments));
			machine.keeps_unread = keeps;
			int left = last;
			h.on_pump = [&] {
				if (--left == 0)
					stop_progress();
			};
			run(operation);
			h.on_pump = nullptr;
			ASSERT_EQ(machine.interrupted, 0) << "a block or its answer was cut";
			run(operation);
			ASSERT_TRUE(agrees());
		}
}

// ---- What is read ------------------------------------------------------------------------

TEST_F(usb_conversation, an_s5000_is_read)
{
	s5000 machine;
	machine.channel = 5;
	machine.programs = { program_of("PIANO", 2), program_of("EMPTY", 0) };
	s5000_keygroup &kg = machine.programs[0].keygroups[1];
	kg.amp = { 1, 2, 3, 4 };
	kg.zones[2].sample = "PIANO C3";
	kg.at(0x11) = { 1, 25 };
	machine.multis = { "LIVE", "SET 2" };
	// 54 bytes and the frame of 10: a list that fills its packet.
	machine.add_sample(std::string(53, 'K'), sound(100));
	for (const bool awkward : { false, true }) {
		machine.confirms_at_power_on = awkward;
		machine.empty_packets = !awkward;
		plug(machine, model_s5000);
		ASSERT_EQ(usbdevs, 1);
		probe_usb_sampler();
		EXPECT_LT(took([this] { read_lists(); }), 1);
		EXPECT_EQ(usbdev[0].sysex_channel, 5);
		EXPECT_STREQ(dev().version, "2.10");
		EXPECT_EQ(dev().sample[0].name, std::string(53, 'K'));
		EXPECT_STREQ(dev().multi[1].name, "SET 2");
		ASSERT_EQ(dev().programs, 2);
		EXPECT_EQ(dev().program[1].keygroups, 0);
		ASSERT_EQ(dev().program[0].keygroups, 2);
		const _keygroup &read = dev().program[0].keygroup[1];
		EXPECT_EQ(read.s5000_fine_tune, -25);
		EXPECT_EQ(read.amp_release, 4u);
		EXPECT_STREQ(read.keyzone[2].samplename, "PIANO C3");
		EXPECT_TRUE(h.boxes.empty());
		unplug_all_usb();
	}
}

TEST_F(usb_conversation, a_z8_and_an_mpc_are_read)
{
	for (const z4_model which : { z4_model::z8, z4_model::mpc4000 }) {
		z4 machine(which);
		machine.stray_end = true;
		machine.told_at = which == z4_model::z8 ? 8 : 9;
		machine.add_program("STRINGS", std::vector<z4_keygroup>(3));
		machine.programs[0].keygroups[1].zones = { { "CELLO", { 1, 5, 0 } } };
		machine.add_sample("CELLO", sound(100));
		plug(machine, which == z4_model::z8 ? model_z4 : model_mpc4000);
		ASSERT_EQ(usbdevs, 1);
		EXPECT_STREQ(usbdev[0].usb_name, "Studio");
		probe_usb_sampler();
		read_lists();
		ASSERT_EQ(dev().programs, 1);
		ASSERT_EQ(dev().program[0].keygroups, 3);
		ASSERT_EQ(dev().program[0].keygroup[1].keyzones, 1);
		EXPECT_EQ(dev().program[0].keygroup[1].keyzone[0].zone_level, -5);
		EXPECT_STREQ(dev().sample[0].name, "CELLO");
		unplug_all_usb();
	}
}

// ---- Samples there and back ----------------------------------------------------------------

TEST_F(usb_conversation, a_sample_goes_to_an_s5000_and_comes_back)
{
	s5000 machine;
	machine.busy = 2;
	machine.block_sizes = { 4096, 8192, 1000 };
	machine.add_sample("LOOP", sound(10));
	machine.add_sample("OTHER", sound(10));
	plug(machine, model_s5000);
	const std::vector<u8> wave = sound(20000);
	h.put_content(spool("LOOP.wav"), wave);
	row().uploadsample(spool("LOOP").c_str());
	ASSERT_EQ(machine.samples.size(), 2u) << "the one of that name is replaced";
	EXPECT_EQ(machine.samples[1].name, "LOOP");
	EXPECT_EQ(machine.samples[1].wave, wave);
	machine.busy = 0; // this model is not asked again during a download
	row().downloadsample(1, 0, "LOOP");
	EXPECT_EQ(h.content(spool("LOOP.wav")), wave);
	EXPECT_TRUE(h.boxes.empty());
	row().renamesample(1, 0, "LOOP", "BREAK");
	row().renamesample(1, 0, "OTHER", nullptr);
	ASSERT_EQ(machine.samples.size(), 1u);
	EXPECT_EQ(machine.samples[0].name, "BREAK");
}

TEST_F(usb_conversation, a_sample_goes_to_a_z4_and_comes_back)
{
	z4 machine;
	machine.busy = 2;
	machine.end_busy = 3;
	machine.end_phase = { { 1, 2, 3 }, { 0, 0, 0, 0, 1 } };
	machine.block_sizes = { 4096, 8192, 1000 };
	plug(machine, model_z4);
	const std::vector<u8> wave = sound(20000);
	h.put_content(spool("LOOP.wav"), wave);
	row().uploadsample(spool("LOOP").c_str());
	ASSERT_EQ(machine.samples.size(), 1u);
	EXPECT_EQ(machine.samples[0].wave, wave);
	row().downloadsample(1, 0, "LOOP");
	EXPECT_EQ(h.content(spool("LOOP.wav")), wave);
	EXPECT_EQ(h.boxes.back().text, "Sample successfully downloaded!");
}

// ---- Plugs ---------------------------------------------------------------------------------

TEST_F(usb_conversation, a_replugged_sampler_is_found_again)
{
	s5000 machine, other;
	machine.add_sample("KICK", sound(100));
	plug(machine, model_s5000);
	const auto list_again = [this] {
		dev().status = 1;
		dev().samples = 0;
		row().getsamplelist(1, 0, &dev());
		return dev().samples == 1 && std::string(dev().sample[0].name) == "KICK";
	};
	const std::string first = usbdev[0].address;
	const std::string socket = usbdev[0].device_path;
	unplug_usb(machine);
	EXPECT_FALSE(list_again());
	plug_usb(h.time, machine);
	EXPECT_TRUE(list_again());
	EXPECT_NE(usbdev[0].address, first);
	// Into another socket, behind another sampler of that product.
	other.name = "Elsewhere";
	unplug_usb(machine);
	plug_usb(h.time, other);
	plug_usb_elsewhere(h.time, machine);
	EXPECT_TRUE(list_again());
	EXPECT_NE(usbdev[0].device_path, socket);
	// Its socket, with the other one in it, is not its own.
	unplug_all_usb();
	plug_usb(h.time, other);
	copy_text(usbdev[0].device_path, "/virtual/usb/1");
	EXPECT_FALSE(list_again());
	EXPECT_TRUE(h.logged("[W] Another sampler than [Studio] is at [/virtual/usb/1]"));
}

// ---- Time ------------------------------------------------------------------------------------

TEST_F(usb_conversation, a_walk_costs_what_bus_and_sampler_take)
{
	s5000 machine;
	for (int i = 0; i < 10; i++)
		machine.programs.push_back(program_of(format_text("PROGRAM %d", i).c_str(), 16));
	plug(machine, model_s5000);
	current_run_mode.diagnostics = false;
	dev().status = 1;
	const double before_writes = machine.writes;
	machine.record = true;
	const double seconds = took([this] { row().getproglist(1, 0, &dev()); });
	machine.record = false;
	double least = (machine.writes - before_writes) * machine.latency;
	for (const auto &message : machine.recorded)
		least += usb_transfer_time(message.bytes.size());
	EXPECT_EQ(dev().program[9].keygroups, 16);
	EXPECT_LE(seconds, least * 1.02);
}

// 512 KiB of sound, in blocks of the sampler's choice.
TEST_F(usb_conversation, transfers_use_the_bus)
{
	const std::vector<u8> wave = sound(1 << 18);
	const auto least = [](std::size_t size, const usb_sampler &m, std::size_t answer) {
		const double blocks = std::ceil(static_cast<double>(size) / m.block_sizes[0]);
		return usb_transfer_time(size) + blocks * (m.block_latency + usb_transfer_time(1) +
								  usb_transfer_time(answer));
	};
	current_run_mode.diagnostics = false;
	for (const bool s5000_family : { true, false }) {
		s5000 five;
		z4 four;
		usb_sampler &machine = s5000_family ? static_cast<usb_sampler &>(five) : four;
		plug(machine, s5000_family ? model_s5000 : model_z4);
		h.put_content(spool("LONG.wav"), wave);
		const double up = took([&] { row().uploadsample(spool("LONG").c_str()); });
		ASSERT_EQ(machine.samples.size(), 1u);
		EXPECT_EQ(machine.samples[0].wave, wave);
		EXPECT_GE(least(wave.size(), machine, 8) / up, 0.9);
		const double down = took([&] { row().downloadsample(1, 0, "LONG"); });
		EXPECT_EQ(h.content(spool("LONG.wav")), wave);
		// A Z4 is given half a second to get the sample ready.
		const double ready = s5000_family ? 0 : 0.5;
		EXPECT_GE((least(wave.size(), machine, 4) + ready) / down, 0.9);
		unplug_all_usb();
	}
}

// ---- Faults and Stop ------------------------------------------------------------------------

TEST_F(usb_conversation, faults_while_an_s5000_is_found_and_read)
{
	s5000 machine;
	machine.programs = { program_of("PIANO", 0) };
	machine.multis = { "LIVE" };
	machine.add_sample("KICK", sound(10));
	plug(machine, model_s5000);
	strike_everywhere(
		machine,
		[&] {
			forget_lists();
			init_usb(1);
			probe_usb_sampler();
			read_lists();
		},
		[this] {
			return std::string(dev().multi[0].name) == "LIVE" &&
			       std::string(dev().sample[0].name) == "KICK" &&
			       std::string(dev().program[0].name) == "PIANO" &&
			       std::string(dev().version) == "2.10";
		},
		90);
}

TEST_F(usb_conversation, faults_while_a_z4_or_an_mpc_is_found_and_read)
{
	for (const z4_model which : { z4_model::z4, z4_model::mpc4000 }) {
		z4 machine(which);
		machine.add_program("STRINGS", std::vector<z4_keygroup>(1));
		machine.add_sample("KICK", sound(10));
		plug(machine, which == z4_model::z4 ? model_z4 : model_mpc4000);
		strike_everywhere(
			machine,
			[&] {
				forget_lists();
				init_usb(1);
				probe_usb_sampler();
				read_lists();
			},
			[this] {
				return dev().program[0].keygroups == 1 &&
				       std::string(dev().program[0].name) == "STRINGS" &&
				       std::string(dev().sample[0].name) == "KICK" &&
				       std::string(dev().version) == "2.10";
			},
			90);
		unplug_all_usb();
	}
}

// Up and down again; with Stop as well.
TEST_F(usb_conversation, faults_and_stop_in_transfers)
{
	const std::vector<u8> wave = sound(180); // two blocks and a half
	for (const bool s5000_family : { true, false }) {
		s5000 five;
		z4 four;
		usb_sampler &machine = s5000_family ? static_cast<usb_sampler &>(five) : four;
		machine.block_sizes = { 256 };
		plug(machine, s5000_family ? model_s5000 : model_z4);
		const auto operation = [&] {
			machine.samples.clear();
			machine.add_sample("LOOP", sound(10));
			h.put_content(spool("LOOP.wav"), wave);
			row().uploadsample(spool("LOOP").c_str());
			row().downloadsample(1, 0, "LOOP");
		};
		const auto agrees = [&] {
			const bool no_half = h.temporary_files() == 0;
			return no_half && machine.samples.size() == 1 &&
			       machine.samples[0].wave == wave &&
			       h.content(spool("LOOP.wav")) == wave;
		};
		strike_everywhere(machine, operation, agrees, 150);
		stop_everywhere(machine, operation, agrees);
		unplug_all_usb();
	}
}

// A scan that is stopped lists nobody whom it did not ask; the next one finds everybody.
TEST_F(usb_conversation, stop_in_a_scan)
{
	s5000 five;
	z4 four;
	plug_usb(h.time, four);
	plug(five, model_s5000);
	ASSERT_EQ(usbdevs, 2);
	EXPECT_EQ(h.progress.caption, "Looking for samplers on the USB...");
	five.keeps_unread = four.keeps_unread = true;
	for (const bool second : { false, true }) {
		(second ? static_cast<usb_sampler &>(five) : four)
			.strike(usb_fault::answer_late, 3)
			.seconds = 3;
		stop_after(1);
		EXPECT_LT(took([] { EXPECT_EQ(load_sampler("Studio"), 1); }), 1.3);
		h.on_pump = nullptr;
		EXPECT_EQ(usb_init_done, 0);
		EXPECT_EQ(usbdevs, second ? 1 : 0);
		five.troubles.clear();
		four.troubles.clear();
		init_usb(1);
		EXPECT_EQ(usbdevs, 2);
		EXPECT_NE(find_usbdev("Z4"), nullptr);
	}
}

TEST_F(usb_conversation, endless_busy_ends)
{
	z4 machine;
	plug(machine, model_z4);
	h.put_content(spool("LOOP.wav"), sound(500));
	current_run_mode.diagnostics = false;
	const auto upload = [this] { row().uploadsample(spool("LOOP").c_str()); };
	machine.busy = -1;
	EXPECT_LT(took(upload), 75);
	EXPECT_TRUE(h.boxes.back().text.ends_with("GET_SAMPLE [Sampler stays busy]"))
		<< h.boxes.back().text;
	machine.busy = 0;
	machine.end_busy = -1;
	stop_after(5);
	EXPECT_LT(took(upload), 20) << "Stop makes the wait shorter";
	EXPECT_TRUE(h.boxes.back().text.ends_with("GET_SAMPLE [Sampler stays busy]"))
		<< h.boxes.back().text;
}

} // namespace

TEST_F(usb_conversation, a_panel_shows_its_picture_and_takes_keys_after_every_fault)
{
	const auto each = [this](usb_sampler &machine, i32 model, u8 dark, const usb_bytes &up) {
		plug(machine, model);
		init_sampler_struct();
		std::fill(machine.picture.begin(), machine.picture.end(), dark);
		const std::vector<u8> good(machine.picture.size(), 0x81);
		const _sampler_ctrl &key = row().ctrl[3];
		std::vector<u8> pixels(good.size()), control(18);
		strike_everywhere(
			machine,
			[&] {
				u32 length = static_cast<u32>(pixels.size()), control_length = 18;
				pixels.assign(pixels.size(), 0);
				machine.key_presses.clear();
				row().getpanel(
					pixels.data(), &length, control.data(), &control_length);
				work_panel_control(key, 1);
			},
			[&] {
				return lcd_picture(row(), pixels) == good &&
				       machine.key_presses.size() == 2 &&
				       machine.key_presses[1] == up;
			},
			20);
		unplug_all_usb();
	};
	s5000 rack;
	each(rack, model_s5000, 0x7E, { 0x20, 0x02, 0x43 });
	z4 eight;
	eight.confirms_at_power_on = true; // so each key is answered twice
	each(eight, model_z4, 0x81, { 0x2C, 0x02, 0x01 });
}
