// test_s1000_conversations.cpp - whole conversations with a virtual sampler of the S1000 family
//
// The machine's side is written apart from the driver, so what they agree on is what the
// protocol says. Every fault of the wire is tried at every exchange of every operation.

#include "src/akais1000.h"
#include "src/velmor_transfer.h"
#include "src/velmor_window.h"
#include "src/waveqx.h"
#include "tests/support/test_host.h"
#include "virtual/midi_ports.h"
#include "virtual/s1000.h"
#include <cmath>
#include <filesystem>
#include <utility>

namespace velmor
{
namespace
{

std::vector<std::int16_t> wave(std::size_t words)
{
	std::vector<std::int16_t> data(words);
	for (std::size_t i = 0; i < words; i++)
		data[i] = static_cast<std::int16_t>(20000 * std::sin(static_cast<double>(i) / 9));
	return data;
}

class conversation
{
public:
	conversation(test_host &owner, s1000_model model, i32 id) : h(owner), machine(model, 5)
	{
		machine.add_program("GRAND PIANO", 3);
		machine.add_program("SLAP BASS", 1);
		machine.add_program("EMPTY", 0);
		machine.add_sample("KICK", 44100, wave(100));
		machine.add_sample("SNARE", 22050, wave(81));
		before = host.midi;
		h.use_sampler(id, 5);
		row = get_sampler(id);
		plug();
	}
	~conversation()
	{
		unplug();
		host.midi = before;
	}

	void plug()
	{
		host.midi = &virtual_midi;
		port = plug_midi(h.time, machine, "virtual");
		selected_midi_in_interface = selected_midi_out_interface = 0;
		reload_midi_setup(false);
	}
	void unplug()
	{
		h.on_pump = nullptr;
		close_midi_output();
		unplug_all_midi();
	}

	_dev_status &dev() { return *current_sampler->status; }
	void status() { row->getstatus(1, 5, &dev()); }
	void programs() { row->getproglist(1, 5, &dev()); }
	void samples() { row->getsamplelist(1, 5, &dev()); }
	void list()
	{
		status();
		programs();
		samples();
	}
	std::string spool(const char *name) { return h.config + "\\sample\\" + name; }

	test_host &h;
	s1000_machine machine;
	_sampler_type *row;
	int port = 0;
	const midi_service *before;
};

class conversations : public host_test
{
};

struct model_row {
	s1000_model model;
	i32 id;
} const models[] = {
	{ s1000_model::s1000, model_s1000 },
	{ s1000_model::s2000, model_s2000 },
	{ s1000_model::s2800, model_s2800 },
	{ s1000_model::s3000, model_s3000 },
};

TEST_F(conversations, every_model_is_listed_with_programs_and_samples)
{
	for (const model_row &it : models) {
		conversation c(h, it.model, it.id);
		c.list();
		EXPECT_EQ(c.dev().status, 1);
		ASSERT_EQ(c.dev().programs, 3);
		EXPECT_STREQ(c.dev().program[0].name, "GRAND PIANO ");
		EXPECT_EQ(c.dev().program[0].keygroups, 3);
		EXPECT_EQ(c.dev().program[0].keygroup[2].keyzones, 4);
		EXPECT_EQ(c.dev().program[2].keygroups, 0);
		ASSERT_EQ(c.dev().samples, 2);
		EXPECT_STREQ(c.dev().sample[0].name, "KICK");
		EXPECT_STREQ(c.dev().sample[1].name, "SNARE");
		EXPECT_TRUE(h.boxes.empty());
	}
}

TEST_F(conversations, a_full_sampler_is_listed_whole)
{
	conversation c(h, s1000_model::s3000, model_s3000);
	for (int i = 3; i < 200; i++)
		c.machine.add_program(format_text("PROGRAM %d", i), 1);
	for (int i = 2; i < 300; i++)
		c.machine.add_sample(format_text("SAMPLE %d", i), 44100, {});
	c.list();
	ASSERT_EQ(c.dev().programs, 200);
	EXPECT_STREQ(c.dev().program[199].name, "PROGRAM 199 ");
	ASSERT_EQ(c.dev().samples, 300);
	EXPECT_STREQ(c.dev().sample[299].name, "SAMPLE 299");
	EXPECT_EQ(c.dev().sample[299].number, 299);
}

// 16 bit words of a file that write_sample wrote.
std::vector<std::int16_t> words_of(const std::optional<std::vector<u8>> &file)
{
	std::vector<std::int16_t> words;
	for (std::size_t i = wave_header_size; file && i + 1 < file->size(); i += 2)
		words.push_back(static_cast<std::int16_t>(wave_read_16bit(&(*file)[i])));
	return words;
}

TEST_F(conversations, what_is_downloaded_is_what_the_sampler_holds)
{
	for (const model_row &it : models) {
		conversation c(h, it.model, it.id);
		c.list();
		c.row->infosample(1, 5, "SNARE");
		EXPECT_EQ(c.dev().sample[1].sample_rate, 22050u);
		EXPECT_EQ(c.dev().sample[1].sample_length, 81u);
		for (const char *name : { "KICK", "SNARE" })
			c.row->downloadsample(1, 5, name);
		EXPECT_EQ(words_of(h.content(c.spool("KICK.wav"))), wave(100));
		EXPECT_EQ(words_of(h.content(c.spool("SNARE.wav"))), wave(81));
		EXPECT_TRUE(h.boxes.empty());
		EXPECT_FALSE(h.progress.visible);
	}
}

// The sampler is told of twice the length, and the second half is silence.
TEST_F(conversations, what_is_uploaded_arrives_with_its_name_and_goes_again)
{
	for (const model_row &it : models) {
		conversation c(h, it.model, it.id);
		c.list();
		c.row->downloadsample(1, 5, "KICK");
		std::filesystem::copy_file(host.files->host_path(c.spool("KICK.wav").c_str()),
			host.files->host_path(c.spool("Kick two.wav").c_str()),
			std::filesystem::copy_options::overwrite_existing);
		h.boxes.clear();
		c.row->uploadsample(c.spool("Kick two").c_str());
		ASSERT_EQ(h.boxes.size(), 1u);
		EXPECT_EQ(h.boxes[0], (shown_box{ "Sample successfully uploaded!", "INFO" }));
		c.samples();
		ASSERT_EQ(c.dev().samples, 3);
		EXPECT_STREQ(c.dev().sample[2].name, "KICK TWO");
		ASSERT_EQ(c.machine.samples.size(), 3u);
		std::vector<std::int16_t> expected = wave(100);
		expected.resize(200, 0);
		EXPECT_EQ(c.machine.samples[2].words, expected);

		c.row->renamesample(1, 5, "KICK TWO", "low kick");
		c.samples();
		EXPECT_STREQ(c.dev().sample[2].name, "LOW KICK");
		c.row->renamesample(1, 5, "LOW KICK", nullptr);
		c.samples();
		EXPECT_EQ(c.dev().samples, 2);
		EXPECT_EQ(c.machine.samples.size(), 2u);
	}
}

TEST_F(conversations, a_full_memory_is_told_and_the_sampler_stays_usable)
{
	conversation c(h, s1000_model::s3000, model_s3000);
	c.list();
	c.row->downloadsample(1, 5, "KICK");
	c.machine.word_room = 250;
	std::filesystem::rename(host.files->host_path(c.spool("KICK.wav").c_str()),
		host.files->host_path(c.spool("OTHER.wav").c_str()));
	c.row->uploadsample(c.spool("OTHER").c_str());
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_EQ(h.boxes[0], (shown_box{ "Upload failed (received bad header ACK)", "ERROR" }));
	EXPECT_EQ(c.machine.samples.size(), 2u);
	c.list();
	EXPECT_EQ(c.dev().samples, 2);
}

// ---- Stop --------------------------------------------------------------------------------

TEST_F(conversations, stop_leaves_sampler_and_spool_whole)
{
	conversation c(h, s1000_model::s3000, model_s3000);
	c.machine.add_sample("LONG", 44100, wave(4000));
	c.list();
	double stop_at = h.time.now() + 3;
	h.on_pump = [&] {
		if (h.time.now() > stop_at)
			stop_progress();
	};
	c.row->downloadsample(1, 5, "LONG");
	EXPECT_FALSE(h.progress.visible);
	EXPECT_FALSE(h.content(c.spool("LONG.wav")));
	h.on_pump = nullptr;
	c.row->downloadsample(1, 5, "LONG");
	EXPECT_EQ(words_of(h.content(c.spool("LONG.wav"))), wave(4000));

	stop_at = h.time.now() + 3;
	h.on_pump = [&] {
		if (h.time.now() > stop_at)
			stop_progress();
	};
	EXPECT_TRUE(h.boxes.empty());
	c.row->uploadsample(c.spool("LONG").c_str());
	EXPECT_FALSE(h.progress.visible);
	ASSERT_EQ(h.boxes.size(), 1u);
	EXPECT_NE(h.boxes[0].text.find("[LONG] that the sampler had in this place is gone"),
		std::string::npos);
	// The machine knows too: what comes now belongs to no dump.
	ASSERT_EQ(c.machine.heard.back().size(), 6u);
	EXPECT_EQ(c.machine.heard.back()[3], 0x7D);
	EXPECT_EQ(c.machine.answer(hex("F0 7E 05 02 00 00*120 79 F7")), hex("F0 7E 05 7D 00 F7"));
	EXPECT_TRUE(c.machine.samples[2].words.empty());
	h.on_pump = nullptr;
	c.list();
	EXPECT_EQ(c.dev().programs, 3);
	EXPECT_EQ(c.dev().samples, 3);
	EXPECT_STREQ(c.dev().sample[2].name, "LONG");
}

// An Exit ends a list at once, the first operation of it too, and the program behind it.
TEST_F(conversations, exit_in_the_first_list_operation_ends_the_program)
{
	conversation c(h, s1000_model::s3000, model_s3000);
	for (int i = 0; i < 100; i++)
		c.machine.add_sample(format_text("SAMPLE %d", i), 44100, {});
	h.on_pump = [&, done = false]() mutable {
		if (std::exchange(done, true))
			return;
		velmor_command(window_main, menu_exit);
	};
	EXPECT_THROW(velmor_command(window_main, main_samples), process_ended);
	EXPECT_LE(c.machine.heard.size(), 4u);
}

// ---- Faults ------------------------------------------------------------------------------

const struct {
	const char *name;
	void (*run)(conversation &c);
} operations[] = {
	{ "status", [](conversation &c) { c.status(); } },
	{ "programs", [](conversation &c) { c.programs(); } },
	{ "samples", [](conversation &c) { c.samples(); } },
	{ "info", [](conversation &c) { c.row->infosample(1, 5, "KICK"); } },
	{ "download", [](conversation &c) { c.row->downloadsample(1, 5, "KICK"); } },
	{ "upload", [](conversation &c) { c.row->uploadsample(c.spool("LOCAL").c_str()); } },
	{ "exact",
		[](conversation &c) {
			set_exact_uploads(true);
			c.row->uploadsample(c.spool("LOCAL").c_str());
		} },
	{ "rename", [](conversation &c) { c.row->renamesample(1, 5, "KICK", "TOM"); } },
	{ "delete", [](conversation &c) { c.row->renamesample(1, 5, "KICK", nullptr); } },
};

constexpr wire_fault_kind faults[] = {
	wire_fault_kind::silent,
	wire_fault_kind::slow,
	wire_fault_kind::truncated,
	wire_fault_kind::garbled,
	wire_fault_kind::wrong_function,
	wire_fault_kind::wait_first,
	wire_fault_kind::refused,
	wire_fault_kind::stray_bytes,
	wire_fault_kind::active_sensing,
	wire_fault_kind::overrun,
	wire_fault_kind::unplugged,
};

void write_local(conversation &c)
{
	std::vector<u32> words(50, 0x1234);
	_sample sample = {};
	sample.sample_rate = 44100;
	sample.sample_length = words.size();
	sample.sample_data = words.data();
	ASSERT_EQ(write_sample(&sample, c.spool("LOCAL").c_str()), 0);
}

// A file of the spool is whole: as long as its head says, and there are no others.
void expect_whole_files(test_host &h)
{
	const std::string folder = host.files->host_path((h.config + "\\sample").c_str());
	for (const auto &entry : std::filesystem::directory_iterator(folder)) {
		EXPECT_EQ(entry.path().extension(), ".wav") << entry.path();
		const auto file = h.content(entry.path().string());
		ASSERT_TRUE(file && file->size() >= wave_header_size);
		EXPECT_EQ(wave_read_32bit(&(*file)[140]) + wave_header_size, file->size());
	}
}

// Whether the operation came as far as that exchange.
bool try_fault(test_host &h, const model_row &model, std::size_t operation, wire_fault fault)
{
	conversation c(h, model.model, model.id);
	c.list();
	write_local(c);
	set_exact_uploads(false);
	h.boxes.clear();
	c.machine.heard.clear();
	port_wire(c.port).set_fault(fault);
	const double began = h.time.now();
	h.on_pump = [&] {
		if (h.time.now() > began + 60)
			stop_progress();
	};
	operations[operation].run(c);
	const bool reached = static_cast<int>(c.machine.heard.size()) >= fault.exchange ||
			     fault.kind == wire_fault_kind::silent ||
			     fault.kind == wire_fault_kind::unplugged;
	EXPECT_LT(h.time.now(), began + 90) << operations[operation].name;
	EXPECT_LE(c.dev().programs, 512);
	EXPECT_LE(c.dev().samples, 512);
	expect_whole_files(h);
	// Whatever happened, the next operation works.
	c.unplug();
	h.time.run_until(h.time.now() + 5);
	c.plug();
	c.dev().status = 0;
	c.list();
	EXPECT_EQ(c.dev().status, 1);
	EXPECT_EQ(c.dev().programs, 3);
	EXPECT_EQ(c.dev().samples, static_cast<int>(c.machine.samples.size()));
	EXPECT_FALSE(h.progress.visible);
	return reached;
}

class faults_of : public host_test, public ::testing::WithParamInterface<std::size_t>
{
};

TEST_P(faults_of, the_wire_at_every_exchange)
{
	current_run_mode.diagnostics = false; // the log of all this is long
	for (const model_row &model : { models[0], models[3] })
		for (wire_fault_kind kind : faults)
			for (bool on : { false, true })
				for (int exchange = 1; exchange <= 12; exchange++) {
					SCOPED_TRACE(format_text("%s, fault %d%s at %d of model %d",
						operations[GetParam()].name, static_cast<int>(kind),
						on ? " from then on" : "", exchange, model.id));
					const wire_fault fault = { .kind = kind,
						.exchange = exchange,
						.from_then_on = on };
					if (!try_fault(h, model, GetParam(), fault))
						break;
				}
}

INSTANTIATE_TEST_SUITE_P(conversations, faults_of,
	::testing::Range(std::size_t{ 0 }, std::size(operations)),
	[](const auto &it) { return operations[it.param].name; });

} // namespace
} // namespace velmor
