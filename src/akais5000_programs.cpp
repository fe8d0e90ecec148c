// akais5000_programs.cpp - programs of the S5000/6000: saved, deleted, renamed
//
//   0A 05 name 00      select a program              0A 13    name of the current one
//   0A 02 name 00      create one                    0A 12    its index, for block requests
//   0A 08              delete the current one        0A 09 name 00   rename it
//   0A 0B 01           add a keygroup                08 01 kg, 08 02   select, which one is it
//   3A hh ll kg ..     three blocks of a keygroup
//   08 .., 06 ..       single values of the current keygroup, and of its zones
//
// The sampler is edited in place. Selecting an unknown name leaves another program current, so
// the name is read back before anything is written. The blocks of a keygroup are written before
// it is known to exist: a keygroup that has to be added afterwards does not get them.
//
// Knows nothing of: windows, frames.

#include "src/akaiusb_programs.h"
#include "src/controls.h"
#include "src/velmor_counts.h"

namespace velmor
{

// clang-format off
static constexpr u8 section_program = 0x0A;
static constexpr u8 create_program = 0x02, select_program = 0x05, rename_current = 0x09;
static constexpr u8 delete_current[]  = { section_program, 0x08 };
static constexpr u8 add_keygroup[]    = { section_program, 0x0B, 1 };
static constexpr u8 program_index[]   = { section_program, 0x12 };
static constexpr u8 program_name[]    = { section_program, 0x13 };
static constexpr u8 select_keygroup = 0x01;
static constexpr u8 keygroup_number[] = { section_keygroup, 0x02 };
static constexpr int most_keygroups = 127; // what one byte of seven bits can say
// clang-format on

// ---- Asking ------------------------------------------------------------------------------

static program_writer writer_on(_usbdev *usb)
{
	return { .usb = usb };
}

// The words of an operation that failed, and false.
static bool tell_failed(
	const program_writer &w, const char *operation, call_site where = call_site::current())
{
	const std::string text = format_text("[F] %s FAILED (%s:%d) SYSEX", operation,
		file_tag(where), static_cast<int>(where.line()));
	log_line("%s\r\n", text.c_str());
	show_box("FATAL", "%s", text.c_str());
	const bool heard = w.answer.length > 0;
	program_ended(heard ? ending::refused : ending::no_answer,
		format_text("%s %s",
			heard ? tr("The sampler did not do what was asked.")
			      : tr("No answer came from the sampler."),
			w.state())
			.c_str());
	return false;
}

// The current program's name, or that a request failed.
static bool select_by_name(program_writer *w, const char *name, std::string *current)
{
	if (!w->ask(text_request(section_program, select_program, name)) ||
		!w->ask_data(program_name, 1))
		return false;
	*current = w->text();
	return true;
}

// ---- Saving ------------------------------------------------------------------------------

struct s5000_save {
	program_writer *w;
	_program *program;
	int keygroups;
	u8 index_high = 0, index_low = 0;
	int added = 0; // keygroups
};

// Make the program current, and create it where there is none of that name.
static bool select_or_create(s5000_save *s)
{
	program_writer *w = s->w;
	const char *name = s->program->name;
	std::string current;
	if (!select_by_name(w, name, &current)) {
		hide_progressbar(window_programs);
		return tell_failed(*w, "SAVE");
	}
	const bool exists = current == name;
	log_line("[D] S5000 verified current-name --> %s, Keygroups: %d\r\n",
		exists ? "UPDATE" : "CREATE", s->keygroups);
	if (exists)
		return true;
	// The name of the second selection goes without its 0.
	std::vector<u8> select = text_request(section_program, select_program, name);
	select.pop_back();
	if (!w->ask(text_request(section_program, create_program, name)) || w->was_refused())
		return tell_failed(*w, "SAVE");
	w->begun = true;
	return w->ask(select) || tell_failed(*w, "SAVE");
}

// What fails here is told in the log alone.
static bool log_failed(const program_writer &w, call_site where = call_site::current())
{
	const int line = static_cast<int>(where.line());
	log_line("[I] (%s:%d) WARNING! SYSEX-MIDI_USB FAILED!\r\n", file_tag(where), line);
	program_ended(ending::no_answer,
		format_text(tr("The sampler did not answer as it should. %s"), w.state()).c_str());
	return false;
}

// The answers decide nothing: a keygroup that does not exist yet refuses all three.
static bool write_blocks(s5000_save *s, u8 kg)
{
	program_writer *w = s->w;
	for (int block = 1; block <= 3; block++) {
		const std::vector<u8> request = block_write_request(
			block, s->index_high, s->index_low, kg, s->program->keygroup[kg - 1]);
		log_line("[D] ------> SETTING KEYGROUP(%d) BLOCK-DATA (%d Bytes) [%s][%d]\r\n", kg,
			static_cast<int>(request.size()), log_dump(request).c_str(), block);
		if (!w->write(request))
			return log_failed(*w);
		log_line("[D] ------> BLOCKSETTINGANSWER: [%d Bytes] [%s]\r\n", w->answer.length,
			log_dump(w->answer.bytes().bytes).c_str());
	}
	return true;
}

static bool select_and_read_back(program_writer *w, u8 kg, u8 *current)
{
	const u8 select[] = { section_keygroup, select_keygroup, kg };
	if (!w->ask(select) || !w->ask_data(keygroup_number, 1))
		return false;
	*current = w->data(0);
	return true;
}

// Make the keygroup current, and add one where the sampler has fewer.
static bool reach_keygroup(s5000_save *s, u8 kg)
{
	program_writer *w = s->w;
	u8 current = 0;
	if (!select_and_read_back(w, kg, &current))
		return tell_failed(*w, "SAVE");
	log_line("[D] DADIDADA Selected Keygroup: %d/%d <> %d\r\n", kg, s->keygroups, current);
	if (current != kg) {
		log_line(
			"[D] Selected Keygroup: %d <> %d --> Creating a new one!\r\n", kg, current);
		if (!w->ask(add_keygroup) || !select_and_read_back(w, kg, &current))
			return tell_failed(*w, "SAVE");
		log_line("[D] Selected Keygroup: %d <> %d\n", kg, current);
		if (current != kg)
			return tell_failed(*w, "SAVE");
		s->added++;
	}
	log_line("[D] WE-ARE-RIGHT!!! Selected Keygroup: %d <> %d\r\n", kg, current);
	return true;
}

static bool write_keygroup(s5000_save *s, u8 kg)
{
	program_writer *w = s->w;
	_keygroup &keygroup = s->program->keygroup[kg - 1];
	const int refused = w->refused, added = s->added;
	if (!write_blocks(s, kg))
		return false;
	set_progressbar(kg - 1);
	if (!reach_keygroup(s, kg))
		return false;
	if (s->added != added)
		w->refused = refused; // its blocks, which are told apart
	bool good = write_values(w, akai_s5000_keygroup_notes, keygroup) &&
		    write_values(w, akai_s5000_keygroup_values, keygroup);
	const int zones = sent_count(keygroup.keyzones, usb_zones, "keyzones");
	for (int z = 1; z <= zones && good; z++)
		good = write_values(
			w, akai_s5000_zone_values, keygroup.keyzone[z - 1], static_cast<u8>(z));
	return good || tell_failed(*w, "SAVE");
}

static bool save_stopped(const program_writer &w)
{
	if (w.stopped())
		hide_progressbar(window_programs);
	return progress_stopped();
}

static bool save_program(s5000_save *s)
{
	program_writer *w = s->w;
	if (!select_or_create(s))
		return false;
	if (!w->ask_data(program_index, 2))
		return log_failed(*w);
	s->index_high = w->data(0);
	s->index_low = w->data(1);
	for (int kg = 1; kg <= s->keygroups; kg++)
		if (save_stopped(*w) || !write_keygroup(s, static_cast<u8>(kg)))
			return false;
	return true;
}

static void tell_what_is_missing(const s5000_save &s)
{
	save_once_more = s.added > 0;
	if (s.added)
		program_done_but(
			format_text(tr("The sampler added %s without their tuning, filter and "
				       "filter envelope, which take saving once more."),
				counted(s.added, noun::keygroup).c_str())
				.c_str());
	s.w->tell_refused();
}

void akai_s5000_program_save(i32 program, _program *source)
{
	begin_program_operation();
	_program *p = program_to_write(program, source);
	if (!p)
		return;
	const int keygroups = sent_count(p->keygroups, most_keygroups, "keygroups");
	show_progressbar(window_programs, keygroups + 1,
		format_text("Uploading Program [%s]...", p->name).c_str());
	log_line("[D] Saving Program [%s], Keygroups: %d\r\n", p->name, keygroups);
	open_usbdev usb = open_for_download();
	if (!usb) {
		program_ended(ending::no_answer, tr("The sampler is not connected."));
		return;
	}
	program_writer w = writer_on(usb.get());
	s5000_save s = { .w = &w, .program = p, .keygroups = keygroups };
	if (!save_program(&s))
		return;
	hide_progressbar(window_programs);
	usb.reset();
	tell_what_is_missing(s);
}

// ---- Deleting and renaming ---------------------------------------------------------------

// Verify that the program is current, and do that with it. What fails leaves the device open.
static void work_on_current(const char *name, const char *operation, std::span<const u8> request)
{
	open_usbdev usb = open_for_download();
	if (!usb) {
		program_ended(ending::no_answer, tr("The sampler is not connected."));
		return;
	}
	program_writer w = writer_on(usb.get());
	std::string current;
	bool good = select_by_name(&w, name, &current) && current == name;
	if (good) {
		log_line("[D] S5000 verified current-name!\r\n");
		w.begun = true;
		good = w.ask(request) && !w.was_refused();
	}
	if (good)
		return;
	tell_failed(w, operation);
	leave_midi_usb_open(usb.release());
}

void akai_s5000_program_delete(i32 program)
{
	begin_program_operation();
	const _program *p = program_to_write(program, nullptr);
	if (!p)
		return;
	log_line("[D] Deleting Program [%s]\r\n", p->name);
	work_on_current(p->name, "DELETE", delete_current);
}

void akai_s5000_program_rename(i32 program, const char *newname)
{
	begin_program_operation();
	const _program *p = program_to_write(program, nullptr);
	if (!p || !newname)
		return;
	log_line("[D] Renaming Program [%s] --> [%s]\r\n", p->name, newname);
	work_on_current(p->name, "RENAME", text_request(section_program, rename_current, newname));
}

} // namespace velmor
