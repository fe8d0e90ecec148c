// akais1000_programs.cpp - programs of the S1000 family: saved and deleted
//
//   request program list     F0 47 cc 02 48 F7
//   request program          F0 47 cc 06 48 pp PP F7
//   program                  F0 47 cc 07 48 pp PP nibbles F7         writes or creates it
//   request keygroup         F0 47 cc 08 48 pp PP kk F7
//   keygroup                 F0 47 cc 09 48 pp PP kk nibbles F7      writes or adds it
//   delete program           F0 47 cc 12 48 pp PP F7
//   delete keygroup          F0 47 00 13 48 pp PP kk F7              always on channel 0
//
// A program is known by its place in the sampler's list, which is asked for each time. Saving
// compares names without regard to case, deleting exactly. A program behind the last one is
// created. What is written goes over the block that the sampler holds, so that bytes that no row
// names stay.
//
// Not trusted: an answer that broke off, that is of another place, or that never came ends the
// operation; nothing is built on it, and nothing is told as done. The answer to a keygroup that
// does not exist is a short refusal, which reads as zeros and is never written back.
//
// Knows nothing of: windows.

#include "src/akais1000_programs.h"
#include "src/velmor_counts.h"
#include <algorithm>
#include <cstring>

namespace velmor
{

// WRITE PROGRAM, head                        0     1     2     3     4     5     6
static constexpr std::array<u8, 7> program_head = //
	{ 0xF0, 0x47, 0x00, 0x07, 0x48, 0x00, 0x00 };
// WRITE KEYGROUP, head                       0     1     2     3     4     5     6     7
static constexpr std::array<u8, 8> keygroup_head = //
	{ 0xF0, 0x47, 0x00, 0x09, 0x48, 0x00, 0x00, 0x00 };
// DELETE PROGRAM                             0     1     2     3     4     5     6     7
static constexpr std::array<u8, 8> delete_program = //
	{ 0xF0, 0x47, 0x00, 0x12, 0x48, 0x00, 0x00, 0xF7 };
// DELETE KEYGROUP                            0     1     2     3     4     5     6     7     8
static constexpr std::array<u8, 9> delete_keygroup = //
	{ 0xF0, 0x47, 0x00, 0x13, 0x48, 0x00, 0x00, 0x00, 0xF7 };
enum {
	program_function = 0x07,
	keygroup_function = 0x09
};
enum {
	shortest_answer = 7, // with a byte for done or not, and its end
	empty_list = 8,
	empty_keygroup = 9,
};

// ---- What came back ----------------------------------------------------------------------

static bool is_whole(const akai_answer &a)
{
	return a.size() >= shortest_answer && a[0] == 0xF0 && a[1] == 0x47 && a[4] == 0x48 &&
	       a.bytes.back() == 0xF7;
}

bool is_done(const akai_answer &a)
{
	return is_whole(a) && a[akai_index] == 0;
}

bool is_refusal(const akai_answer &a)
{
	return is_whole(a) && a.size() <= empty_keygroup && a[akai_function] != program_function &&
	       a[akai_function] != keygroup_function && a[akai_index] != 0;
}

// As long as its count says. The function is not looked at.
static bool is_whole_list(const akai_answer &a)
{
	return is_whole(a) && a.size() == empty_list + akai_name_size * a.number();
}

std::optional<akai_bytes> program_in(const akai_answer &a, int index)
{
	if (!is_whole(a) || a[akai_function] != program_function || a.number() != index)
		return std::nullopt;
	akai_bytes common = akai_bytes_from_nibbles(a.view().from(akai_block));
	const int length = static_cast<int>(common.size());
	if (length <= program_unknown || akai_block + 2 * length + 1 != a.size())
		return std::nullopt;
	return common;
}

std::optional<akai_bytes> keygroup_in(const akai_answer &a, int index, int k)
{
	if (!is_whole(a) || a[akai_function] != keygroup_function || a.number() != index ||
		a[akai_keygroup] != (k & 0x7F))
		return std::nullopt;
	akai_bytes keygroup = akai_bytes_from_nibbles(a.view().from(akai_keygroup_block));
	if (akai_keygroup_block + 2 * static_cast<int>(keygroup.size()) + 1 != a.size())
		return std::nullopt;
	return keygroup;
}

void tell_failed(const akai_answer &answer, const char *box, const char *state)
{
	const bool refused = is_refusal(answer);
	if (!answer.port_failed)
		show_box("FATAL", "%s", box);
	const char *why =
		refused ? tr("The sampler refused.") : tr("No answer came that could be used.");
	program_ended(refused ? ending::refused : ending::no_answer,
		format_text("%s %s", why, state).c_str());
}

// ---- Messages ----------------------------------------------------------------------------

akai_bytes with_block(std::span<const u8> head, std::span<const u8> data)
{
	akai_bytes message(head.size() + 2 * data.size() + 1);
	std::copy(head.begin(), head.end(), message.begin());
	int length = 0;
	create_akai_nibblebuf(
		data.data(), static_cast<unsigned>(data.size()), &message[head.size()], &length);
	return message;
}

akai_answer ask_program(int index)
{
	return ask_akai(akai_message(request_program, s1000_channel(), index));
}

akai_answer ask_keygroup(int index, int k)
{
	auto message = akai_message(request_keygroup, s1000_channel(), index);
	message[akai_keygroup] = static_cast<u8>(k & 0x7F);
	return ask_akai(message);
}

akai_answer send_program(int index, const akai_bytes &common, const std::string &note)
{
	const akai_bytes message =
		with_block(akai_message(program_head, s1000_channel(), index), common);
	const akai_answer answer = ask_akai(message);
	log_line("[D] Received %d Bytes of P-Data  [%s] FROM UPDATE-REQUEST! NIBBLE_LEN: %d, "
		 "REQUEST_LEN: %d%s\r\n",
		answer.size(), log_dump(answer.bytes).c_str(), static_cast<int>(2 * common.size()),
		static_cast<int>(message.size()), note.c_str());
	return answer;
}

void log_program(const akai_answer &answer, const akai_bytes &common)
{
	log_line("[D] Received %d Bytes of P-Data [%s] [%s] (TOTAL: %d)\r\n",
		static_cast<int>(common.size()), log_dump(common).c_str(),
		log_dump(answer.bytes).c_str(), answer.size());
}

static std::string name_in(const akai_bytes &common)
{
	return akai_trimmed_name(bounded_bytes{ common }.from(program_name));
}

// ---- Saving ------------------------------------------------------------------------------

struct s1000_save {
	_program *program;
	unsigned takers;
	int keygroups;
	int index = 0;            // on the sampler
	bool begun = false;       // something was changed there
	akai_bytes keygroup = {}; // as last read, for the next one that does not exist
	int held = 0;             // keygroups that are there
	int refused = 0;          // keygroups
};

static void save_failed(const s1000_save &s, const akai_answer &answer)
{
	tell_failed(answer, save_box,
		s.begun ? tr("The program on the sampler may hold only a part of the changes.")
			: tr("Nothing was changed on the sampler."));
	hide_progressbar(0);
}

static bool save_stopped(const s1000_save &s)
{
	if (!progress_stopped())
		return false;
	program_ended(ending::stopped,
		s.begun ? tr("Saving was stopped. The program on the sampler holds a part of the "
			     "changes.")
			: tr("Saving was stopped. Nothing was changed on the sampler."));
	hide_progressbar(0);
	return true;
}

static bool same_but_for_case(std::string_view a, std::string_view b)
{
	const auto lower = [](char c) {
		return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
	};
	return std::equal(a.begin(), a.end(), b.begin(), b.end(),
		[&](char x, char y) { return lower(x) == lower(y); });
}

// The place of the program on the sampler, one past the last where it has none.
struct found_place {
	int index;
	bool exists;
};

// Each program is asked for its name. Nothing when the operation is over.
static std::optional<found_place> find_for_saving(const s1000_save &s)
{
	const akai_answer list =
		ask_akai(akai_message(request_program_list, s1000_channel()), akai_list_room);
	log_line("[D] Loaded Programs: %d, RESULT: [%s] (%d Bytes)\r\n", list.number(),
		log_dump(list.bytes).c_str(), list.size());
	if (!is_whole_list(list)) {
		save_failed(s, list);
		return std::nullopt;
	}
	for (int i = 0; i < list.number(); i++) {
		if (save_stopped(s))
			return std::nullopt;
		const akai_answer answer = ask_program(i);
		const std::optional<akai_bytes> common = program_in(answer, i);
		const bool gone = is_refusal(answer) &&
				  !same_but_for_case(akai_list_name(list, i), s.program->name);
		if (!common && !gone) {
			save_failed(s, answer);
			return std::nullopt;
		}
		const std::string name = common ? name_in(*common) : "";
		log_line("[D] Comparing: [%s] (Sampler) <> [%s] (Memory)\r\n", name.c_str(),
			s.program->name);
		if (common && same_but_for_case(name, s.program->name))
			return found_place{ i, true };
	}
	return found_place{ list.number(), false };
}

static bool create_program(s1000_save *s)
{
	akai_bytes common(s2000_program_size);
	int length = 0;
	akai_s1000_init_progblock(common.data(), &length, s->program);
	common.resize(static_cast<std::size_t>(length));
	const akai_answer answer = send_program(
		s->index, common, format_text(" --> KEYGROUPS: %d", s->program->keygroups));
	s->begun = is_done(answer) || !is_whole(answer);
	if (!is_done(answer))
		save_failed(*s, answer);
	return is_done(answer);
}

// The fields go over the block that the sampler has. With a refused block the message is empty.
static bool save_common(s1000_save *s, bool existed)
{
	set_progressbar(5);
	const akai_answer held = ask_program(s->index);
	akai_bytes common = program_in(held, s->index).value_or(akai_bytes());
	log_program(held, common);
	const bool moved = existed && !same_but_for_case(name_in(common), s->program->name);
	if (!is_refusal(held) && (common.empty() || moved)) {
		save_failed(*s, held);
		return false;
	}
	if (!common.empty()) {
		common[0] = block_is_program;
		record_to_block(akai_s1000_program_parameters, s->takers, *s->program, common);
		s->held = common[program_keygroups];
		const int surplus = s->held - s->keygroups;
		if (surplus > 0)
			program_done_but(format_text(tr("The program on the sampler keeps %s that "
							"this one does not have."),
				counted(surplus, noun::keygroup).c_str())
						 .c_str());
	}
	const akai_answer answer = send_program(s->index, common);
	s->begun = s->begun || is_done(answer) || !is_whole(answer);
	if (!is_done(answer))
		save_failed(*s, answer);
	return is_done(answer);
}

enum class held_keygroup {
	read,    // into the block
	empty,   // it has no data
	refused, // there is none
	unknown  // no whole answer: the operation is over
};

// Byte 5 of a keygroup is the low half of the program's index, so the line comes for nearly
// every program, and says nothing.
static void log_not_found(const akai_answer &answer, int k)
{
	if (answer[akai_index])
		log_line("[D] KEYGROUP %d not found...creating now!\r\n", k);
}

static held_keygroup read_held(s1000_save *s, int k)
{
	const akai_answer answer = ask_keygroup(s->index, k);
	log_not_found(answer, k);
	std::optional<akai_bytes> held = keygroup_in(answer, s->index, k);
	if (held && held->empty())
		return held_keygroup::empty;
	if (held)
		s->keygroup = std::move(*held);
	if (held || (is_refusal(answer) && k >= s->held))
		return held ? held_keygroup::read : held_keygroup::refused;
	save_failed(*s, answer);
	return held_keygroup::unknown;
}

static void fill_keygroup(s1000_save *s, int k)
{
	_keygroup &keygroup = s->program->keygroup[k];
	record_to_block(akai_s1000_keygroup_parameters, s->takers, keygroup, s->keygroup);
	const int zones = sent_count(keygroup.keyzones, akai_zones, "keyzones");
	for (int z = 0; z < zones; z++) {
		_keyzone &zone = keygroup.keyzone[z];
		record_to_block(akai_s1000_keyzone_parameters, s->takers, zone, s->keygroup, z);
		log_line("[D] KG: %d, KEYZONE: %d, Sample: [%s]\r\n", k, z, zone.samplename);
	}
}

// Whatever a whole answer says decides nothing; what was refused is told at the end.
static bool send_keygroup(s1000_save *s, int k, std::span<const u8> data)
{
	auto head = akai_message(keygroup_head, s1000_channel(), s->index);
	head[akai_keygroup] = static_cast<u8>(k);
	const akai_answer answer = ask_akai(with_block(head, data));
	log_not_found(answer, k);
	log_line("[D] Keygroup update-Response: [%s] (%d Bytes)\r\n",
		log_dump(answer.bytes).c_str(), answer.size());
	s->refused += is_whole(answer) && !is_done(answer);
	if (!is_whole(answer))
		save_failed(*s, answer);
	return is_whole(answer);
}

// A keygroup that does not exist is made by writing it, with the unknown bytes of the one before
// it. Where there is none before it, the sampler makes an empty one, which is then read.
static bool save_keygroup(s1000_save *s, int k)
{
	held_keygroup held = read_held(s, k);
	const bool first = held == held_keygroup::refused && s->keygroup.empty();
	const int refused = s->refused;
	if (first) {
		if (!send_keygroup(s, k, {}))
			return false;
		held = read_held(s, k);
	}
	if (held == held_keygroup::unknown)
		return false;
	fill_keygroup(s, k);
	set_progressbar(k * 9);
	if (first && held != held_keygroup::read) {
		s->refused = refused + 1;
		return true;
	}
	return send_keygroup(s, k, held == held_keygroup::empty ? akai_bytes() : s->keygroup);
}

static bool save_program(s1000_save *s)
{
	const std::optional<found_place> found = find_for_saving(*s);
	if (!found || save_stopped(*s))
		return false;
	s->index = found->index;
	log_line("[D] %s Program [%s] PGM_IDX: %d\r\n", found->exists ? "UPDATING" : "CREATING",
		s->program->name, s->index);
	return (found->exists || create_program(s)) && save_common(s, found->exists);
}

static void tell_refused(int refused, int keygroups)
{
	if (refused)
		program_done_but(format_text(tr("The sampler did not take %d of %s. Its memory may "
						"be full."),
			refused, counted(keygroups, noun::keygroup).c_str())
					 .c_str());
}

// One blank at the end of a name goes, and no more.
static void cut_a_blank(char *name)
{
	const std::size_t length = std::strlen(name);
	if (length > 1 && name[length - 1] == ' ')
		name[length - 1] = '\0';
}

void akai_s1000_prog_save(i32 program, _program *source)
{
	begin_program_operation();
	_program *p = program_to_write(program, source);
	if (!p)
		return;
	cut_a_blank(p->name);
	s1000_save s = { .program = p,
		.takers = akai_s1000_takers(static_cast<i32>(current_sampler->sampler_type)),
		.keygroups = sent_count(p->keygroups, max_keygroups, "keygroups") };
	log_line("[D] Saving Program %d (%s), SYSEX_CHANNEL: %d [%s]\r\n", program, p->name,
		s1000_channel(), source ? "LOCAL" : "LOADED");
	show_progressbar(
		0, s.keygroups * 10, format_text("Saving [%s] to sampler...", p->name).c_str());
	if (!save_program(&s))
		return;
	for (int k = 0; k < s.keygroups; k++)
		if (save_stopped(s) || !save_keygroup(&s, k))
			return;
	set_progressbar(s.keygroups * 10);
	hide_progressbar(0);
	tell_refused(s.refused, s.keygroups);
}

// ---- Deleting ----------------------------------------------------------------------------

static constexpr char delete_box[] = "DELETE failed!!!";

std::optional<akai_answer> ask_program_list(const char *box)
{
	akai_answer list =
		ask_akai(akai_message(request_program_list, s1000_channel()), akai_list_room);
	log_line("[D] Loaded Programs: %d, RESULT: [%s]\r\n", list.number(),
		log_dump(list.bytes).c_str());
	if (is_whole_list(list))
		return list;
	tell_failed(list, box, nothing_changed);
	return std::nullopt;
}

int find_exactly(const akai_answer &list, const char *name, const char *box)
{
	for (int i = 0; i < list.number(); i++) {
		const std::string listed = akai_list_name(list, i);
		log_line("[D] Comparing: [%s] <> [%s]\r\n", listed.c_str(), name);
		if (listed == name)
			return i;
	}
	show_box("WARNING", "%s", box);
	program_ended(ending::refused, tr("The sampler has no program of that name."));
	return -1;
}

akai_answer send_deletion(int index)
{
	const akai_answer answer = ask_akai(akai_message(delete_program, s1000_channel(), index));
	log_line("[D] DELETE REQUEST RETURNED: [%s] (%d Bytes)\r\n", log_dump(answer.bytes).c_str(),
		answer.size());
	return answer;
}

void akai_s1000_prog_delete(i32 program)
{
	begin_program_operation();
	const _program *p = program_to_write(program, nullptr);
	if (!p)
		return;
	log_line("[D] DELETING Program %d (%s), SYSEX_CHANNEL: %d\r\n", program, p->name,
		s1000_channel());
	const std::optional<akai_answer> list = ask_program_list(delete_box);
	const int index =
		list ? find_exactly(*list, p->name, "Cannot delete program (not found)!") : -1;
	if (index < 0)
		return;
	const akai_answer answer = send_deletion(index);
	if (!is_done(answer))
		tell_failed(answer, delete_box, tr("Read the list again to see what is there."));
}

void akai_s1000_del_keygroup(i32 program, i32 keygroup)
{
	begin_program_operation();
	const _program *p = program_to_write(program, nullptr);
	if (!p)
		return;
	log_line("[D] Request to delete Keygroup %d for Program: %d (%s)\r\n", keygroup, program,
		p->name);
	if (keygroup < 0 || keygroup >= max_keygroups) {
		program_ended(ending::refused, tr("There is no such keygroup."));
		return;
	}
	// Not the sampler's channel, and not masked.
	auto message = akai_message(delete_keygroup, 0, program);
	message[akai_keygroup] = static_cast<u8>(keygroup);
	const akai_answer answer = ask_akai(message);
	log_line("[D] DELETE KG-REQUEST RETURNED: [%s] (%d Bytes)\r\n",
		log_dump(answer.bytes).c_str(), answer.size());
	if (!is_done(answer))
		tell_failed(answer, delete_box, tr("Read the list again to see what is there."));
}

} // namespace velmor
