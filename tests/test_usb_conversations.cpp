// test_usb_conversations.cpp - whole operations against virtual samplers on a full-speed bus
//
// Every fault strikes at every write of the host, one after the other. Whatever happens, an
// operation ends in bounded time, leaves no half file and no open device, and the same
// operation works afterwards.

#include "src/akais5000.h"
#include "src/akaiz4.h"
#include "tests/support/test_host.h"
#include "virtual/s5000.h"
#include "virtual/usb_bus.h"
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

class usb_conversation : public host_test
{
protected:
	void plug(usb_sampler &machine, i32 model)
	{
		host.usb = &virtual_usb;
		plug_usb(h.time, machine);
		h.use_sampler(model, 0, "Studio");
	}
	void TearDown() override
	{
		EXPECT_FALSE(usb_in_use());
		unplug_all_usb();
		usbdev.clear();
		usbdevs = 0;
		usb_init_done = 0;
	}
	std::string file(const char *name) { return h.config + "\\sample\\" + name; }
	double took(const std::function<void()> &what)
	{
		const double before = h.time.now();
		what();
		return h.time.now() - before;
	}
	void read_lists()
	{
		const _sampler_type *row =
			get_sampler(static_cast<i32>(current_sampler->sampler_type));
		_dev_status *dev = current_sampler->status;
		row->getstatus(1, 0, dev);
		row->getsamplelist(1, 0, dev);
		row->getproglist(1, 0, dev);
		row->getmultilist(1, 0, dev);
	}
	// What ends the process is the user's to read; here it is one more end of an operation.
	void run(const std::function<void()> &operation)
	{
		try {
			operation();
		} catch (const process_ended &) {
		}
		hide_progressbar(0);
		h.boxes.clear();
	}
	void strike_everywhere(usb_sampler &machine, const std::function<void()> &operation,
		const std::function<bool()> &worked, double limit);
};

constexpr usb_fault faults[] = { usb_fault::write_fails, usb_fault::write_stalls,
	usb_fault::write_short, usb_fault::write_hangs, usb_fault::answer_missing,
	usb_fault::answer_late, usb_fault::answer_short, usb_fault::answer_garbled,
	usb_fault::answer_fails, usb_fault::answer_stalls, usb_fault::unplugged,
	usb_fault::unplugged_answering };

void usb_conversation::strike_everywhere(usb_sampler &machine,
	const std::function<void()> &operation, const std::function<bool()> &worked, double limit)
{
	current_run_mode.diagnostics = false; // thousands of lines that nobody reads
	operation();
	ASSERT_TRUE(worked());
	const int before = machine.writes;
	operation();
	const int writes = machine.writes - before;
	for (const usb_fault fault : faults) {
		for (int at = 1; at <= writes; at++) {
			SCOPED_TRACE(
				format_text("fault %d at write %d", static_cast<int>(fault), at));
			usb_trouble &trouble = machine.strike(fault, at);
			trouble.seconds = 7;
			trouble.bytes = 3;
			EXPECT_LT(took([&] { run(operation); }), limit);
			ASSERT_FALSE(usb_in_use());
			machine.troubles.clear();
			// Power off and on, and it works again, which is looked at now and then.
			unplug_all_usb();
			plug_usb(h.time, machine);
			if (at % 5 != 1)
				continue;
			run([] { init_usb(1); });
			run(operation);
			ASSERT_TRUE(worked());
		}
	}
}

// ---- What is read ------------------------------------------------------------------------

TEST_F(usb_conversation, an_s5000_is_read)
{
	s5000 machine;
	machine.name = "Studio";
	machine.channel = 5;
	machine.programs = { program_of("PIANO", 2), program_of("EMPTY", 0) };
	s5000_keygroup &kg = machine.programs[0].keygroups[1];
	kg.amp = { 1, 2, 3, 4 };
	kg.zones[2].sample = "PIANO C3";
	kg.at(0x04) = { 30, 0 };
	kg.at(0x11) = { 1, 25 };
	machine.multis = { "LIVE", "SET 2" };
	machine.add_sample("KICK", sound(100));
	for (const bool confirms : { false, true }) {
		machine.confirms_at_power_on = confirms;
		plug(machine, model_s5000);
		init_usb(1);
		ASSERT_EQ(usbdevs, 1);
		EXPECT_STREQ(usbdev[0].usb_name, "Studio");
		probe_usb_sampler();
		read_lists();
		EXPECT_EQ(usbdev[0].sysex_channel, 5);
		const _dev_status &dev = *current_sampler->status;
		EXPECT_STREQ(dev.version, "2.10");
		EXPECT_EQ(dev.samples, 1);
		EXPECT_EQ(dev.multis, 2);
		EXPECT_STREQ(dev.multi[1].name, "SET 2");
		ASSERT_EQ(dev.programs, 2);
		EXPECT_EQ(dev.program[1].keygroups, 0);
		ASSERT_EQ(dev.program[0].keygroups, 2);
		const _keygroup &read = dev.program[0].keygroup[1];
		EXPECT_EQ(read.low_note, 30);
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
		machine.name = "Studio";
		machine.stray_end = true;
		machine.add_program("STRINGS", std::vector<z4_keygroup>(3));
		machine.programs[0].keygroups[1].zones = { { "CELLO", { 1, 5, 0 } } };
		machine.add_sample("CELLO", sound(100));
		plug(machine, which == z4_model::z8 ? model_z4 : model_mpc4000);
		init_usb(1);
		ASSERT_EQ(usbdevs, 1);
		probe_usb_sampler();
		read_lists();
		const _dev_status &dev = *current_sampler->status;
		EXPECT_STREQ(dev.sampler_name, "Studio");
		ASSERT_EQ(dev.programs, 1);
		ASSERT_EQ(dev.program[0].keygroups, 3);
		ASSERT_EQ(dev.program[0].keygroup[1].keyzones, 1);
		EXPECT_EQ(dev.program[0].keygroup[1].keyzone[0].zone_level, -5);
		EXPECT_STREQ(dev.sample[0].name, "CELLO");
		unplug_all_usb();
	}
}

// ---- Samples there and back ----------------------------------------------------------------

TEST_F(usb_conversation, a_sample_goes_to_an_s5000_and_comes_back)
{
	s5000 machine;
	machine.name = "Studio";
	machine.busy = 2;
	machine.block_sizes = { 4096, 8192, 1000 };
	machine.add_sample("LOOP", sound(10));
	machine.add_sample("OTHER", sound(10));
	plug(machine, model_s5000);
	init_usb(1);
	const std::vector<u8> wave = sound(20000);
	h.put_content(file("LOOP.wav"), wave);
	akai_s5000_uploadsample(file("LOOP").c_str());
	ASSERT_EQ(machine.samples.size(), 2u) << "the one of that name is replaced";
	EXPECT_EQ(machine.samples[1].name, "LOOP");
	EXPECT_EQ(machine.samples[1].wave, wave);
	machine.busy = 0; // this model is not asked again during a download
	current_sampler->status->status = 1;
	akai_s5000_downloadsample(1, 0, "LOOP");
	EXPECT_EQ(h.content(file("LOOP.wav")), wave);
	EXPECT_TRUE(h.boxes.empty());
	akai_s5000_renamesample(1, 0, "LOOP", "BREAK");
	akai_s5000_renamesample(1, 0, "OTHER", nullptr);
	ASSERT_EQ(machine.samples.size(), 1u);
	EXPECT_EQ(machine.samples[0].name, "BREAK");
}

TEST_F(usb_conversation, a_sample_goes_to_a_z4_and_comes_back)
{
	z4 machine;
	machine.name = "Studio";
	machine.busy = 2;
	machine.end_busy = 3;
	machine.end_phase = { { 1, 2, 3 }, { 0, 0, 0, 0, 1 } };
	machine.block_sizes = { 4096, 8192, 1000 };
	plug(machine, model_z4);
	init_usb(1);
	const std::vector<u8> wave = sound(20000);
	h.put_content(file("LOOP.wav"), wave);
	akai_z4_uploadsample(file("LOOP").c_str());
	ASSERT_EQ(machine.samples.size(), 1u);
	EXPECT_EQ(machine.samples[0].wave, wave);
	const std::string name = machine.samples[0].name;
	akai_z4_downloadsample(1, 0, name.c_str());
	EXPECT_EQ(h.content(file((name + ".wav").c_str())), wave);
	EXPECT_EQ(h.boxes.back().text, "Sample successfully downloaded!");
}

// ---- Time ------------------------------------------------------------------------------------

TEST_F(usb_conversation, a_walk_costs_what_bus_and_sampler_take)
{
	s5000 machine;
	machine.name = "Studio";
	for (int i = 0; i < 50; i++)
		machine.programs.push_back(program_of(format_text("PROGRAM %d", i).c_str(), 16));
	plug(machine, model_s5000);
	init_usb(1);
	current_run_mode.diagnostics = false;
	current_sampler->status->status = 1;
	const double before_writes = machine.writes;
	machine.record = true;
	const double seconds = took([] { akai_s5000_getproglist(1, 0, current_sampler->status); });
	machine.record = false;
	double least = (machine.writes - before_writes) * machine.latency;
	for (const auto &message : machine.recorded)
		least += usb_transfer_time(message.bytes.size());
	EXPECT_EQ(current_sampler->status->program[49].keygroups, 16);
	EXPECT_LE(seconds, least * 1.02);
}

// 2 MiB of sound, in blocks of the sampler's choice.
TEST_F(usb_conversation, transfers_use_the_bus)
{
	constexpr std::size_t words = 1 << 20;
	const std::vector<u8> wave = sound(words);
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
		machine.name = "Studio";
		plug(machine, s5000_family ? model_s5000 : model_z4);
		init_usb(1);
		h.put_content(file("LONG.wav"), wave);
		const _sampler_type *row =
			get_sampler(static_cast<i32>(current_sampler->sampler_type));
		const double up = took([&] { row->uploadsample(file("LONG").c_str()); });
		ASSERT_EQ(machine.samples.size(), 1u);
		EXPECT_EQ(machine.samples[0].wave, wave);
		EXPECT_GE(least(wave.size(), machine, 8) / up, 0.9);
		const std::string name = machine.samples[0].name;
		const double down = took([&] { row->downloadsample(1, 0, name.c_str()); });
		EXPECT_EQ(h.content(file((name + ".wav").c_str())), wave);
		// A Z4 is given half a second to get the sample ready.
		const double ready = s5000_family ? 0 : 0.5;
		EXPECT_GE((least(wave.size(), machine, 4) + ready) / down, 0.9);
		unplug_all_usb();
	}
}

// ---- Faults --------------------------------------------------------------------------------

TEST_F(usb_conversation, faults_while_an_s5000_is_found_and_read)
{
	s5000 machine;
	machine.name = "Studio";
	machine.programs = { program_of("PIANO", 1) };
	machine.multis = { "LIVE" };
	machine.add_sample("KICK", sound(10));
	plug(machine, model_s5000);
	strike_everywhere(
		machine,
		[&] {
			*current_sampler->status->version = 0;
			current_sampler->status->multis = 0;
			current_sampler->status->program[0].keygroups = 0;
			init_usb(1);
			probe_usb_sampler();
			read_lists();
		},
		[] {
			return current_sampler->status->multis == 1 &&
			       current_sampler->status->program[0].keygroups == 1;
		},
		90);
}

TEST_F(usb_conversation, faults_while_a_z4_is_found_and_read)
{
	z4 machine;
	machine.name = "Studio";
	machine.add_program("STRINGS", std::vector<z4_keygroup>(1));
	machine.add_sample("KICK", sound(10));
	plug(machine, model_z4);
	strike_everywhere(
		machine,
		[&] {
			current_sampler->status->program[0].keygroups = 0;
			init_usb(1);
			probe_usb_sampler();
			read_lists();
		},
		[] { return current_sampler->status->program[0].keygroups == 1; }, 90);
}

TEST_F(usb_conversation, faults_in_transfers_of_an_s5000)
{
	s5000 machine;
	machine.name = "Studio";
	machine.block_sizes = { 256 };
	plug(machine, model_s5000);
	init_usb(1);
	const std::vector<u8> wave = sound(500);
	strike_everywhere(
		machine,
		[&] {
			machine.samples.clear();
			h.put_content(file("LOOP.wav"), wave);
			akai_s5000_uploadsample(file("LOOP").c_str());
			akai_s5000_downloadsample(1, 0, "LOOP");
		},
		[&] {
			return h.temporary_files() == 0 && machine.samples.size() == 1 &&
			       h.content(file("LOOP.wav")) == wave;
		},
		120);
}

TEST_F(usb_conversation, faults_in_transfers_of_a_z4)
{
	z4 machine;
	machine.name = "Studio";
	machine.block_sizes = { 256 };
	plug(machine, model_z4);
	init_usb(1);
	const std::vector<u8> wave = sound(500);
	std::string name = "LOOP";
	strike_everywhere(
		machine,
		[&] {
			machine.samples.clear();
			h.put_content(file("LOOP.wav"), wave);
			akai_z4_uploadsample(file("LOOP").c_str());
			if (!machine.samples.empty())
				name = machine.samples[0].name;
			akai_z4_downloadsample(1, 0, name.c_str());
		},
		[&] {
			const std::string target = file((name + ".wav").c_str());
			return h.temporary_files() == 0 && machine.samples.size() == 1 &&
			       h.content(target) == wave;
		},
		150);
}

TEST_F(usb_conversation, endless_busy_ends)
{
	z4 machine;
	machine.name = "Studio";
	plug(machine, model_z4);
	init_usb(1);
	h.put_content(file("LOOP.wav"), sound(500));
	current_run_mode.diagnostics = false;
	machine.busy = -1;
	EXPECT_LT(took([&] { akai_z4_uploadsample(file("LOOP").c_str()); }), 75);
	unplug_all_usb();
	machine.busy = 0;
	machine.end_busy = -1;
	plug_usb(h.time, machine);
	init_usb(1);
	EXPECT_LT(took([&] { akai_z4_uploadsample(file("LOOP").c_str()); }), 75);
	EXPECT_TRUE(h.boxes.back().text.ends_with("GET_SAMPLE [Sampler stays busy]"));
}

} // namespace
