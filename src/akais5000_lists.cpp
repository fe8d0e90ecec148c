// akais5000_lists.cpp - status, programs with their keygroups and zones, samples, multis
//
// A keygroup costs 3 block requests, 1 selection, 12 values and 4 times 14 zone values: the
// envelope, the aux rates and the zones have no block form.
//
//   0A 05 name    select program       08 01 kg   select keygroup, from 1
//   0A 12         its index            06 ii z    value of zone z, from 1
//
// Not done: a walk that asks only for what changed; every load reads everything.
// Knows nothing of: windows, frames.

#include "src/akaikept.h"
#include "src/akais5000.h"
#include "src/controls.h"

namespace velmor
{

// clang-format off
// Payloads without arguments. Their data stands at s5000_answer_data.
static constexpr u8 checksum_off[]      = { 0x00, 0x04, 0x00 };
static constexpr u8 confirmation_off[]  = { 0x00, 0x01, 0x00 };
static constexpr u8 os_version[]        = { 0x02, 0x00 };
static constexpr u8 reported_name[]     = { 0x02, 0x03 };
static constexpr u8 program_count[]     = { 0x0A, 0x10 };
static constexpr u8 program_names[]     = { 0x0A, 0x19 };
static constexpr u8 program_name[]      = { 0x0A, 0x13 };
static constexpr u8 program_index[]     = { 0x0A, 0x12 };
static constexpr u8 program_keygroups[] = { 0x0A, 0x14 };
static constexpr u8 multi_count[]       = { 0x0C, 0x40 };
static constexpr u8 multi_names[]       = { 0x0C, 0x51 };
static constexpr u8 sample_count[]      = { 0x0E, 0x10 };
static constexpr u8 sample_names[]      = { 0x0E, 0x12 };
static constexpr u8 section_program = 0x0A, select_program = 0x05;
static constexpr u8 select_keygroup = 0x01;
enum { first_byte = s5000_answer_data, second_byte = s5000_answer_data + 1 };
// clang-format on

static bool has_status(const _dev_status *dev)
{
	if (dev->status == 1)
		return true;
	log_line("WARNING! Must do a 'getstatus' before\r\n");
	return false;
}

void akai_s5000_getstatus(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev)
{
	const open_usbdev usb = open_loaded_usbdev();
	usb_answer answer(scalar_capacity);
	if (!usb || !ask_or_log(usb.get(), checksum_off, &answer))
		return;
	log_line("[D] (%s:%d) Requested Akai S5000 CHECKSUM OFF on Exclusive Channel: %d "
		 "[SYSEX-CHANNEL: %d]\r\n",
		__FILE_NAME__, __LINE__, exclusive_channel, sysex_channel);
	log_line("[D] Requesting Akai S5000 CONFIRMATION OFF on Exclusive Channel: %d "
		 "[SYSEX-CHANNEL: %d]\r\n",
		exclusive_channel, sysex_channel);
	if (!ask_or_log(usb.get(), confirmation_off, &answer) ||
		!ask_or_log(usb.get(), os_version, &answer))
		return;
	log_line("[D] Requested Akai S5000 MAJOR OS NUMBER on Exclusive Channel: %d "
		 "[SYSEX-CHANNEL: %d]\r\n",
		exclusive_channel, sysex_channel);
	const std::string version =
		format_text("%d.%d", answer.bytes()[first_byte], answer.bytes()[second_byte]);
	if (!ask_or_log(usb.get(), reported_name, &answer))
		return;
	copy_text(dev->version, version);
	copy_text(dev->sampler_name, answer.bytes().text(s5000_answer_data));
	log_line("[D] Requested Akai S5000 Name on Exclusive Channel: %d [SYSEX-CHANNEL: "
		 "%d][%s]\r\n",
		exclusive_channel, sysex_channel, dev->sampler_name);
	dev->exclusive_channel = sysex_channel;
	dev->status = 1;
}

// Copy listed names into records and return how many there were, at most count.
template <typename record>
static int copy_names(const usb_answer &list, record *records, int count, const char *what)
{
	name_walk names = { list.bytes(), s5000_answer_data };
	for (int i = 0; i < count; i++) {
		const std::optional<std::string> name = names.next();
		if (!name) {
			log_line("[W] The sampler announced %d %s and listed %d\r\n", count, what,
				i);
			return i;
		}
		copy_text(records[i].name, *name);
	}
	return count;
}

void akai_s5000_getmultilist(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev)
{
	if (!has_status(dev))
		return;
	log_line("[D] Requesting Akai S5000 MULTILIST on Exclusive Channel: %d [SYSEX-CHANNEL: "
		 "%d]\r\n",
		exclusive_channel, sysex_channel);
	const open_usbdev usb = open_loaded_usbdev();
	usb_answer answer(scalar_capacity), list(list_capacity);
	if (!usb || !ask_or_log(usb.get(), multi_count, &answer))
		return;
	const i32 announced = as_word14.get(answer.bytes().from(s5000_answer_data));
	log_line("[D] (%s:%d) Requested Akai S5000 Number of loaded MULTIS: %d\r\n", __FILE_NAME__,
		__LINE__, announced);
	dev->multis = bounded_count(announced, max_multis, "multis");
	if (ask_or_log(usb.get(), multi_names, &list))
		dev->multis = copy_names(list, dev->multi, dev->multis, "multis");
}

void akai_s5000_getsamplelist(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev)
{
	open_usbdev usb = open_loaded_usbdev();
	if (!usb || !has_status(dev))
		return;
	log_line("[D] Requesting Akai s5000 SAMPLELIST on Exclusive Channel: %d [SYSEX-CHANNEL: "
		 "%d]\r\n",
		exclusive_channel, sysex_channel);
	usb_answer answer(scalar_capacity), list(list_capacity);
	if (!ask_or_log(usb.get(), sample_count, &answer))
		return;
	// The count of before, and then a new one that takes only the low seven bits: with 128
	// samples or more the list shows their number modulo 128.
	log_line("[I] USB--> Sample-List-Len: %d Entries\r\n", dev->samples);
	dev->samples =
		bounded_count((answer.bytes()[first_byte] >> 7) + answer.bytes()[second_byte],
			max_samples, "samples");
	if (!ask_or_log(usb.get(), sample_names, &list))
		return;
	log_line("[D] USB--> Sample-List-Len: %d Bytes\r\n", list.length);
	usb.reset();
	dev->samples = copy_names(list, dev->sample, dev->samples, "samples");
}

// ---- The program walk ------------------------------------------------------------------

// What one walk carries from request to request.
struct program_walk {
	_usbdev *usb;
	usb_answer answer{ list_capacity };
	u8 index_high = 0, index_low = 0; // of the program, as block requests take it
};

static bool ask_value(program_walk *w, std::initializer_list<u8> payload)
{
	return ask_or_log(w->usb, std::span<const u8>(payload.begin(), payload.size()), &w->answer);
}

static bool read_block(program_walk *w, int block, u8 kg, _keygroup *keygroup)
{
	const std::vector<u8> request = block_read_request(block, w->index_high, w->index_low, kg);
	log_line("[D] ------> REQUESTING KEYGROUP(%d) BLOCK-DATA (%d Bytes)[%d]\r\n", kg,
		static_cast<int>(request.size()), block);
	if (!ask_or_log(w->usb, request, &w->answer))
		return false;
	// Only the answer to the third block is logged with its number.
	if (current_run_mode.diagnostics)
		log_line("[D] ------> BLOCK-ANSWER: [%d Bytes] [%s]%s\r\n", w->answer.length,
			hex_text(w->answer.bytes().bytes).c_str(), block == 3 ? "[3]" : "");
	block_to_record(akai_s5000_keygroup_blocks[static_cast<std::size_t>(block - 1)],
		w->answer.bytes(), *keygroup);
	return true;
}

// Values that travel alone, one request each; zone is 0 for those of the keygroup.
template <typename record>
static bool read_values(program_walk *w, parameters<record> rows, u8 zone, record *r)
{
	for (const auto &row : rows) {
		if (!ask_or_log(w->usb, read_request(row.items, zone), &w->answer))
			return false;
		block_to_record({ &row, 1 }, w->answer.bytes(), *r);
	}
	return true;
}

static bool read_zone(program_walk *w, u8 number, _keygroup *keygroup)
{
	constexpr std::size_t name = 1, velocities = 2;
	const parameters<_keyzone> rows = akai_s5000_zone_values;
	_keyzone &zone = keygroup->keyzone[keygroup->keyzones];
	if (!read_values(w, rows.first(name), number, &zone))
		return false;
	keygroup->keyzones++;
	if (!read_values(w, rows.subspan(name, velocities), number, &zone))
		return false;
	log_line("[D] Zone(%d) Sample: [%s] VEL-LOW: %d, VEL-HIGH: %d\r\n", number, zone.samplename,
		zone.low_velocity, zone.high_velocity);
	return read_values(w, rows.subspan(name + velocities), number, &zone);
}

static bool read_keygroup(program_walk *w, const char *name, u8 kg, _keygroup *keygroup)
{
	for (int block = 1; block <= 3; block++)
		if (!read_block(w, block, kg, keygroup))
			return false;
	log_line("[D] Selecting Keygroup %d for [%s]\r\n", kg, name);
	if (!ask_value(w, { section_keygroup, select_keygroup, kg }) ||
		!read_values(w, akai_s5000_keygroup_values, 0, keygroup))
		return false;
	keygroup->keyzones = 0;
	for (u8 zone = 1; zone <= usb_zones; zone++)
		if (!read_zone(w, zone, keygroup))
			return false;
	return true;
}

static bool read_program_head(program_walk *w, _program *program)
{
	if (!ask_or_log(w->usb, text_request(section_program, select_program, program->name),
		    &w->answer) ||
		!ask_or_log(w->usb, program_name, &w->answer) ||
		!ask_or_log(w->usb, program_index, &w->answer))
		return false;
	w->index_high = w->answer.bytes()[first_byte];
	w->index_low = w->answer.bytes()[second_byte];
	program->index = as_word14.get(w->answer.bytes().from(s5000_answer_data));
	program->sampler_type = model_s5000;
	log_line("[D] {%s} INDEX: %d\r\n", program->name, program->index);
	if (!ask_or_log(w->usb, program_keygroups, &w->answer))
		return false;
	const u8 announced = w->answer.bytes()[first_byte];
	log_line("[D] {%s} number of keygroups: %d\r\n", program->name, announced);
	program->keygroups = bounded_count(announced, max_keygroups, "keygroups");
	return true;
}

// Stop ends the walk behind a keygroup; the programs read so far are kept, and this one is
// cut to what was read.
enum class walk_outcome {
	done,
	failed,
	stopped
};

static walk_outcome read_program(program_walk *w, _program *program)
{
	if (!read_program_head(w, program))
		return walk_outcome::failed;
	for (int i = 0; i < program->keygroups; i++) {
		if (progress_stopped()) {
			program->keygroups = i;
			return walk_outcome::stopped;
		}
		if (!read_keygroup(w, program->name, static_cast<u8>(i + 1), &program->keygroup[i]))
			return walk_outcome::failed;
	}
	return walk_outcome::done;
}

bool akai_s5000_read_kept_program(int index, _program *program, raw_blocks *)
{
	const open_usbdev usb = open_loaded_usbdev();
	if (!usb)
		return false;
	copy_text(program->name, current_sampler->status->program[index].name);
	program_walk w = { .usb = usb.get() };
	const walk_outcome outcome = read_program(&w, program);
	return outcome == walk_outcome::done;
}

// The names of the list survive the walk, which has an answer of its own.
static walk_outcome read_programs(_usbdev *usb, const usb_answer &list, _dev_status *dev)
{
	program_walk w = { .usb = usb };
	name_walk names = { list.bytes(), s5000_answer_data };
	int keygroups = 0;
	for (int i = 0; i < dev->programs; i++) {
		const std::optional<std::string> name = names.next();
		if (!name) {
			log_line("[W] The sampler announced %d programs and listed %d\r\n",
				dev->programs, i);
			dev->programs = i;
			break;
		}
		log_line("[D] I: %d, PTR: [%s]\r\n", i, name->c_str());
		copy_text(dev->program[i].name, *name);
		set_progressbar(i);
		const walk_outcome outcome = read_program(&w, &dev->program[i]);
		if (outcome == walk_outcome::stopped)
			dev->programs = i + 1;
		if (outcome != walk_outcome::done)
			return outcome;
		keygroups += dev->program[i].keygroups;
	}
	log_line("[D] Sampler has loaded %d Keygroups\r\n", keygroups);
	return walk_outcome::done;
}

void akai_s5000_getproglist(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev)
{
	if (!has_status(dev))
		return;
	log_line("[D] Requesting Akai S5000 PROGLIST on Exclusive Channel: %d [SYSEX-CHANNEL: %d] "
		 "USB_NAME: [%s]\r\n",
		exclusive_channel, sysex_channel,
		current_sampler ? current_sampler->sampler_usbname : "");
	open_usbdev usb = open_loaded_usbdev();
	usb_answer answer(scalar_capacity), list(list_capacity);
	if (!usb || !ask_or_log(usb.get(), program_count, &answer))
		return;
	const i32 announced = as_word14.get(answer.bytes().from(s5000_answer_data));
	log_line("[D] (%s:%d) Requested Akai S5000 Number of 3oaded Programs: %d\r\n",
		__FILE_NAME__, __LINE__, announced);
	dev->programs = bounded_count(announced, max_programs, "programs");
	if (!ask_or_log(usb.get(), program_names, &list))
		return;
	show_progressbar(window_programs, dev->programs, "Retrieving programs information...");
	const walk_outcome outcome = read_programs(usb.get(), list, dev);
	if (outcome == walk_outcome::stopped)
		log_line("[I] Reading the programs was stopped\r\n");
	usb.reset();
	// After a failed request the bar stays, and with it what the user was waiting for.
	if (outcome != walk_outcome::failed)
		hide_progressbar(window_programs);
}

} // namespace velmor
