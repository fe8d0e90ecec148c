// akaiz4_programs.cpp - programs of the Z4/Z8 and MPC 4000: updated, deleted, renamed
//
//   14 04 name 00      select a program              14 06    name of the current one
//   14 0A              delete the current one        14 0C name 00   rename it
//   14 41 01           add a keygroup                10 01 kg, 10 02   select, which one is it
//   16 10 v, 16 11 v   polyphony, reassignment       12 04 v, 12 05 v   notes of a keygroup
//   0E 01 z name 00    sample of a zone              0E 02 z sign low high   its level
//
// Only a program that the sampler holds is written, and of it only what is read. Keygroups count
// from 0, zones from 1.
//
// What deletes or renames the current program is only sent when
// the sampler says that the selection is done, for otherwise another program is current.
//
// Knows nothing of: windows, frames.

#include "src/akaiusb_programs.h"
#include "src/akaiz4.h"
#include <cstdlib>

namespace velmor
{

// clang-format off
static constexpr u8 section_program = 0x14, select_program = 0x04, rename_current = 0x0C;
static constexpr u8 delete_current[]  = { section_program, 0x0A };
static constexpr u8 program_name[]    = { section_program, 0x06 };
static constexpr u8 add_keygroup[]    = { section_program, 0x41, 1 };
static constexpr u8 keygroup_number[] = { 0x10, 0x02 };
// clang-format on

static program_writer writer_on(_usbdev *usb)
{
	return { .usb = usb };
}

// The device is closed first, as its line in the log tells.
static bool request_failed(open_usbdev *usb, const program_writer &w,
	ending how = ending::no_answer, call_site where = call_site::current())
{
	usb->reset();
	log_line("[F] (%s:%d) Error writing MIDI-COMMAND\r\n", file_tag(where),
		static_cast<int>(where.line()));
	program_ended(how,
		format_text(tr("The sampler did not do what was asked. %s"), w.state()).c_str());
	return false;
}

// ---- Saving ------------------------------------------------------------------------------

struct z4_save {
	open_usbdev *usb;
	program_writer *w;
	_program *program;
	int keygroups;
};

// Make the program current; false where the sampler does not hold it, and no program is made.
static bool select_existing(const z4_save &s)
{
	program_writer *w = s.w;
	const char *name = s.program->name;
	if (!w->ask(text_request(section_program, select_program, name)) ||
		!w->ask_data(program_name, 1))
		return request_failed(s.usb, *w);
	const std::string current = w->text();
	log_line("[D] LOADED PROGRAM: [%s].We are %s\r\n", current.c_str(),
		current == name ? "UPDATING" : "CREATING");
	if (current == name)
		return true;
	s.usb->reset();
	program_ended(ending::refused,
		tr("The sampler holds no program of that name, and this model's programs are only "
		   "updated. Nothing was changed on the sampler."));
	return false;
}

// words of the log line; current is the keygroup that the sampler says, -1 for none.
static bool select_and_verify(program_writer *w, u8 kg, const char *words, int *current)
{
	const u8 select[] = { 0x10, 0x01, kg };
	if (!w->ask(select))
		return false;
	const bool there = w->status() == status_done;
	if (!w->ask_data(keygroup_number, 1))
		return false;
	log_line("[D] %s KEYGROUP VERIFICATION: %d <> %d\r\n", words, kg, w->data());
	*current = there ? w->data() : -1;
	return true;
}

static bool reach_keygroup(const z4_save &s, u8 kg)
{
	program_writer *w = s.w;
	int current = 0;
	if (!select_and_verify(w, kg, "SELECTING", &current))
		return request_failed(s.usb, *w);
	if (current == kg)
		return true;
	if (!w->ask(add_keygroup))
		return request_failed(s.usb, *w);
	log_line("[D] CREATED NEW KEYGROUP : %d\r\n", kg);
	if (!select_and_verify(w, kg, "CREATED", &current))
		return request_failed(s.usb, *w);
	if (current == kg)
		return true;
	s.usb->reset();
	log_line("[F] (%s:%d) Error creating KEYGROUP\r\n", __FILE_NAME__, __LINE__);
	show_box("FATAL", "Keygroup creation failed");
	program_ended(ending::refused,
		format_text(tr("The sampler added no keygroup. %s"), w->state()).c_str());
	return false;
}

static bool write_zone(program_writer *w, u8 number, _keyzone &zone)
{
	const auto &name = akai_z4_zone_values[0], &level = akai_z4_zone_values[1];
	if (!w->write(write_request(name, zone, number)))
		return false;
	const std::vector<u8> request = write_request(level, zone, number);
	log_line("[D] Update for ZONE_LEVEL-REQUEST: %d [%s] (%d)\r\n",
		static_cast<int>(request.size()), log_dump(request).c_str(),
		static_cast<int>(std::labs(zone.zone_level)));
	if (!w->write(request))
		return false;
	log_line("[D] Update for ZONE_LEVEL-RESPONSE: %d [%s]\r\n", w->answer.length,
		log_dump(w->answer.bytes().bytes).c_str());
	return true;
}

static bool write_keygroup(const z4_save &s, u8 kg)
{
	_keygroup &keygroup = s.program->keygroup[kg];
	if (!reach_keygroup(s, kg))
		return false;
	bool good = write_values(s.w, akai_z4_keygroup_values, keygroup);
	const int zones = sent_count(keygroup.keyzones, usb_zones, "keyzones");
	for (int z = 1; z <= zones && good; z++)
		good = write_zone(s.w, static_cast<u8>(z), keygroup.keyzone[z - 1]);
	return good || request_failed(s.usb, *s.w);
}

static bool save_program(const z4_save &s)
{
	if (!select_existing(s) || s.w->stopped())
		return false;
	if (!write_values(s.w, akai_z4_program_values, *s.program))
		return request_failed(s.usb, *s.w);
	for (int kg = 0; kg < s.keygroups; kg++)
		if (s.w->stopped() || !write_keygroup(s, static_cast<u8>(kg)))
			return false;
	return true;
}

void akai_z4_saveprogram(i32 program, _program *source)
{
	begin_program_operation();
	forget_stop();
	_program *p = program_to_write(program, source);
	if (!p)
		return;
	log_line("[D] Saving/updating Z4 Program %d (%s)\r\n", program, p->name);
	open_usbdev usb = open_loaded_usbdev();
	if (!usb) {
		program_ended(ending::no_answer, tr("The sampler is not connected."));
		return;
	}
	program_writer w = writer_on(usb.get());
	const z4_save s = { &usb, &w, p, sent_count(p->keygroups, max_keygroups, "keygroups") };
	if (save_program(s))
		w.tell_refused();
}

// ---- Deleting and renaming ---------------------------------------------------------------

static void work_on(const char *name, std::span<const u8> request)
{
	open_usbdev usb = open_loaded_usbdev();
	if (!usb) {
		program_ended(ending::no_answer, tr("The sampler is not connected."));
		return;
	}
	program_writer w = writer_on(usb.get());
	if (!w.ask(text_request(section_program, select_program, name))) {
		request_failed(&usb, w);
		return;
	}
	if (w.status() != status_done) {
		request_failed(&usb, w, ending::refused);
		return;
	}
	if (!w.write(request))
		request_failed(&usb, w);
	else if (w.refused)
		program_ended(
			ending::refused, tr("The sampler refused. The program is as it was."));
}

void akai_z4_deleteprogram(i32 program)
{
	begin_program_operation();
	const _program *p = program_to_write(program, nullptr);
	if (!p)
		return;
	log_line("[D] Deleting Z4 Program %d (%s)\r\n", program, p->name);
	work_on(p->name, delete_current);
}

void akai_z4_renameprogram(i32 program, const char *newname)
{
	begin_program_operation();
	const _program *p = program_to_write(program, nullptr);
	if (!p || !newname)
		return;
	log_line("[D] Renaming Z4 Program %d (%s) to (%s)\r\n", program, p->name, newname);
	work_on(p->name, text_request(section_program, rename_current, newname));
}

} // namespace velmor
