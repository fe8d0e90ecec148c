// akaiz4_lists.cpp - status, programs with their notes and zones, samples
//
//   program list   04 h0 h1 h2 h3 08 name 00      from offset 8 on, one entry a program
//   sample list    length name 00                 the same
//   10 01 kg       select keygroup, from 0        'D' at offset 4 as long as there is one
//   0F 01 z        sample of zone z, from 1       'R' at offset 4 as long as there is one
//
// The sampler tells no number of keygroups or zones: the walk asks until it is refused, or
// 16 keygroups and 4 zones are read.
//
// Knows nothing of: windows, frames.

#include "src/akaikept.h"
#include "src/akais5000.h"
#include "src/akaiz4.h"

namespace velmor
{

// clang-format off
static constexpr u8 confirmation_off[]   = { 0x00, 0x01, 0x00 };
static constexpr u8 os_version[]         = { 0x04, 0x00 };       // data at 9
static constexpr u8 reported_name[]      = { 0x07, 0x01 };       // data at 9
static constexpr u8 program_count[]      = { 0x14, 0x01 };
static constexpr u8 program_list[]       = { 0x14, 0x02, 0x02 };
static constexpr u8 program_name[]       = { 0x14, 0x06 };
static constexpr u8 keygroup_number[]    = { 0x10, 0x02 };
static constexpr u8 sample_count[]       = { 0x1C, 0x01 };
static constexpr u8 sample_list_first[]  = { 0x1C, 0x02, 0x03 }; // not looked at
static constexpr u8 sample_list[]        = { 0x1C, 0x02, 0x01 };
enum { version_major = 9, version_minor = 10, name_text = 9 };
// An entry of the program list.
static constexpr u8 tag_handle = 0x04, tag_name = 0x08;
enum { entry_handle = 1, entry_name_tag = 5, entry_name = 6, handle_size = 4 };
// clang-format on

static bool has_status(const _dev_status *dev)
{
	if (dev->status == 1)
		return true;
	log_line("WARNING! Must do a 'getstatus' before\r\n");
	return false;
}

// ---- Status ------------------------------------------------------------------------------

static void read_status(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev)
{
	const open_usbdev usb = open_loaded_usbdev();
	usb_answer answer(scalar_capacity);
	if (!usb)
		return;
	log_line("[D] Requesting Akai Z4 CONFIRMATION OFF on Exclusive Channel: %d [SYSEX-CHANNEL: "
		 "%d]\r\n",
		exclusive_channel, sysex_channel);
	if (!ask_or_log(usb.get(), confirmation_off, &answer) ||
		!ask_or_log(usb.get(), os_version, &answer))
		return;
	log_line("[D] Requested Akai Z4 MAJOR OS NUMBER on Exclusive Channel: %d [SYSEX-CHANNEL: "
		 "%d]\r\n",
		exclusive_channel, sysex_channel);
	const std::string version =
		format_text("%d.%d", answer.bytes()[version_major], answer.bytes()[version_minor]);
	if (!ask_or_log(usb.get(), reported_name, &answer))
		return;
	copy_text(dev->version, version);
	copy_text(dev->sampler_name, answer.bytes().text(name_text));
	log_line("[D] Requested Akai Z4 Name on Exclusive Channel: %d [SYSEX-CHANNEL: %d][%s]\r\n",
		exclusive_channel, sysex_channel, dev->sampler_name);
	dev->exclusive_channel = sysex_channel;
	dev->status = 1;
}

void akai_z4_getstatus(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev)
{
	log_line("[D] Z4 trying to get status...\r\n");
	read_status(exclusive_channel, sysex_channel, dev);
}

void akai_mpc_getstatus(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev)
{
	log_line("[D] MPC trying to get status...[%s]\r\n",
		current_sampler ? current_sampler->sampler_usbname : "");
	read_status(exclusive_channel, sysex_channel, dev);
}

// ---- Lists -------------------------------------------------------------------------------

void akai_z4_getmultilist(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev)
{
	if (!has_status(dev))
		return;
	log_line("[D] Requesting Akai S5000 MULTILIST on Exclusive Channel: %d [SYSEX-CHANNEL: "
		 "%d]\r\n",
		exclusive_channel, sysex_channel);
	dev->multis = 0;
}

static void copy_sample_names(const usb_answer &list, _dev_status *dev)
{
	constexpr u8 end_byte = 0xF7;
	const bounded_bytes bytes = list.bytes();
	std::size_t at = z4_answer_data;
	for (int i = 0; i < dev->samples; i++) {
		const bool ended =
			at >= bytes.size() || (bytes[at] == end_byte && at + 1 == bytes.size());
		if (ended) {
			log_line("[W] The sampler announced %d samples and listed %d\r\n",
				dev->samples, i);
			dev->samples = i;
			return;
		}
		const u8 length = bytes[at];
		const std::string name = bytes.text(at + 1);
		copy_text(dev->sample[i].name, name);
		log_line("[D] SAMPLE[%d] --> '%s' (SLEN: %d)\r\n", i, dev->sample[i].name, length);
		at += 1 + name.size() + 1;
	}
}

void akai_z4_getsamplelist(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev)
{
	open_usbdev usb = open_loaded_usbdev();
	if (!usb || !has_status(dev))
		return;
	log_line("[D] Requesting Akai Z4 SAMPLELIST on Exclusive Channel: %d [SYSEX-CHANNEL: "
		 "%d]\r\n",
		exclusive_channel, sysex_channel);
	usb_answer answer(scalar_capacity), list(list_capacity);
	if (!ask_or_log(usb.get(), sample_count, &answer))
		return;
	const i32 announced = as_z4_word28.get(answer.bytes().from(z4_answer_data));
	dev->samples = bounded_count(announced, max_samples, "samples");
	log_line("[I] USB--> Sample-List-Len: %d Entries\r\n", announced);
	if (!ask_or_log(usb.get(), sample_list_first, &list) ||
		!ask_or_log(usb.get(), sample_list, &list))
		return;
	log_line("[D] USB--> Sample-List-Len: %d Bytes\r\n", list.length);
	usb.reset();
	copy_sample_names(list, dev);
}

// ---- The program walk ------------------------------------------------------------------------

struct z4_walk {
	_usbdev *usb;
	usb_answer answer{ list_capacity };

	bool ask(std::span<const u8> payload, call_site where = call_site::current())
	{
		return ask_or_log(usb, payload, &answer, where);
	}
	u8 status() const { return answer.bytes()[z4_answer_status]; }
	std::string dump() const
	{
		return current_run_mode.diagnostics ? hex_text(answer.bytes().bytes) : "";
	}
};

// What a step found: a value, that there are no more, or a request that failed.
enum class walk_step {
	read,
	no_more,
	failed
};

// Ask for the value of a row and store it, whatever the status says.
template <typename record>
static bool read_value(
	z4_walk *w, const parameter<record> &row, record *r, call_site where = call_site::current())
{
	if (!w->ask(read_request(row.items), where))
		return false;
	block_to_record({ &row, 1 }, w->answer.bytes(), *r);
	return true;
}

// The same of a zone, which may not be there.
static walk_step read_zone_value(
	z4_walk *w, const parameter<_keyzone> &row, u8 number, _keyzone *zone)
{
	if (!w->ask(read_request(row.items, number)))
		return walk_step::failed;
	if (w->status() != status_reply)
		return walk_step::no_more;
	block_to_record({ &row, 1 }, w->answer.bytes(), *zone);
	return walk_step::read;
}

static walk_step read_zone(z4_walk *w, int kg, u8 number, _keygroup *keygroup)
{
	const auto &name = akai_z4_zone_values[0], &level = akai_z4_zone_values[1];
	_keyzone &zone = keygroup->keyzone[keygroup->keyzones];
	walk_step step = read_zone_value(w, name, number, &zone);
	if (step != walk_step::read)
		return step;
	keygroup->keyzones++;
	log_line("[D] KEYGROUP: %d, ZONE: %d, Sample: [%s]\r\n", kg, number, zone.samplename);
	step = read_zone_value(w, level, number, &zone);
	if (step != walk_step::read)
		return step; // and the zone counts
	log_line("[D] KEYGROUP: %d, ZONE: %d, LEVEL: [%s] (%d)\r\n", kg, number, w->dump().c_str(),
		zone.zone_level);
	return step;
}

static walk_step read_keygroup(z4_walk *w, u8 kg, _program *program)
{
	static constexpr const char *words[] = { "LOW", "HIGH" };
	log_line("[D] Requesting Keygroup %d\r\n", kg);
	const u8 select[] = { 0x10, 0x01, kg };
	if (!w->ask(select))
		return walk_step::failed;
	if (w->status() != status_done)
		return walk_step::no_more;
	_keygroup *keygroup = &program->keygroup[program->keygroups++];
	if (!w->ask(keygroup_number))
		return walk_step::failed;
	for (std::size_t i = 0; i < std::size(words); i++) {
		log_line("[D] Requesting Keygroup %s-Note\r\n", words[i]);
		if (!read_value(w, akai_z4_keygroup_values[i], keygroup))
			return walk_step::failed;
	}
	keygroup->keyzones = 0;
	walk_step step = walk_step::read;
	for (u8 zone = 1; zone <= usb_zones && step == walk_step::read; zone++)
		step = read_zone(w, kg, zone, keygroup);
	return step == walk_step::failed ? step : walk_step::read;
}

static bool select_program(z4_walk *w, const _program &program)
{
	u8 select[2 + handle_size] = { 0x14, 0x03 };
	as_z4_word28.put(&select[2], program.number);
	return w->ask(select) && w->ask(program_name);
}

static bool read_program(z4_walk *w, _program *program)
{
	static constexpr const char *words[] = { "GETPOLYPHONY", "GET REASIGNEMENT" };
	if (!select_program(w, *program))
		return false;
	program->keygroups = 0;
	program->sampler_type = model_z4; // on the MPC as well
	for (std::size_t i = 0; i < std::size(words); i++) {
		if (!read_value(w, akai_z4_program_values[i], program))
			return false;
		log_line("[D] PROGRAM[%d] %s [%s]\r\n", program->number, words[i],
			w->dump().c_str());
	}
	walk_step step = walk_step::read;
	for (u8 kg = 0; kg < z4_keygroups && step == walk_step::read; kg++)
		step = read_keygroup(w, kg, program);
	if (step == walk_step::failed)
		return false;
	log_line("[D] Program has %d Keygroups\r\n", program->keygroups);
	return true;
}

bool akai_z4_read_kept_program(int index, _program *program, raw_blocks *)
{
	const open_usbdev usb = open_loaded_usbdev();
	if (!usb)
		return false;
	const _program &listed = current_sampler->status->program[index];
	copy_text(program->name, listed.name);
	program->number = listed.number;
	z4_walk w = { .usb = usb.get() };
	return read_program(&w, program);
}

// Take one entry of the list; false for one that is not as it should be.
static bool take_entry(bounded_bytes list, std::size_t *at, int index, _program *program)
{
	const bounded_bytes entry = list.from(*at);
	if (entry[0] != tag_handle || entry[entry_name_tag] != tag_name) {
		log_line("[D] (%s:%d) WARNING! SYSEX-MIDI_USB DELIVERED CORRUPTED OUTPUT!\r\n",
			__FILE_NAME__, __LINE__);
		return false;
	}
	const bounded_bytes handle = entry.from(entry_handle);
	log_line("[D] PROG-NR BEFORE DECODING: [%s]\r\n",
		hex_text(handle.bytes.first(handle_size)).c_str());
	program->number = as_z4_word28.get(handle);
	const std::string name = entry.text(entry_name);
	log_line("[D] I: %d, PTR: [%s] NUMBER: %d\r\n", index, name.c_str(), program->number);
	copy_text(program->name, name);
	*at += entry_name + name.size() + 1;
	return true;
}

static void read_programs(_usbdev *usb, const usb_answer &list, _dev_status *dev)
{
	z4_walk w = { .usb = usb };
	std::size_t at = z4_answer_data;
	int keygroups = 0;
	for (int i = 0; i < dev->programs; i++) {
		_program *program = &dev->program[i];
		if (!take_entry(list.bytes(), &at, i, program) || !read_program(&w, program))
			return;
		keygroups += program->keygroups;
	}
	log_line("[D] Sampler has loaded %d Keygroups\r\n", keygroups);
}

void akai_z4_getproglist(u8 exclusive_channel, u8 sysex_channel, _dev_status *dev)
{
	if (!has_status(dev))
		return;
	log_line("[D] Requesting Akai Z4 PROGLIST on Exclusive Channel: %d [SYSEX-CHANNEL: %d] "
		 "USB_NAME: [%s]\r\n",
		exclusive_channel, sysex_channel,
		current_sampler ? current_sampler->sampler_usbname : "");
	const open_usbdev usb = open_loaded_usbdev();
	usb_answer answer(scalar_capacity), list(list_capacity);
	if (!usb || !ask_or_log(usb.get(), program_count, &answer))
		return;
	const i32 announced = as_z4_word28.get(answer.bytes().from(z4_answer_data));
	log_line("[D] (%s:%d) Requested Akai Z4 Number of loaded Programs: %d\r\n", __FILE_NAME__,
		__LINE__, announced);
	dev->programs = bounded_count(announced, max_programs, "programs");
	if (ask_or_log(usb.get(), program_list, &list))
		read_programs(usb.get(), list, dev);
}

} // namespace velmor
