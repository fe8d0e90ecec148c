// akais1000_rename.cpp - programs of the S1000 family under another name
//
// There is no request that renames: the program is read whole, deleted, and written again under
// its new name. It is deleted only when every part of it has come, and it stays in memory until
// every part was taken back. Its name is looked for exactly.
//
// Knows nothing of: windows.

#include "src/akais1000_programs.h"
#include <algorithm>

namespace velmor
{

// A program on its way from one name to another: its block and its keygroups, as messages that
// write them.
struct program_move {
	int index;
	akai_bytes common = {};
	std::vector<akai_bytes> keygroups = {};
	std::unique_ptr<_program> copy = {}; // for this computer
};

static bool rename_failed(const akai_answer &answer, const char *state)
{
	tell_failed(answer, save_box, state);
	return false;
}

// A keygroup's answer and the message that writes it share their head.
static bool collect_keygroup(program_move *m, int k)
{
	const akai_answer answer = ask_keygroup(m->index, k);
	const std::optional<akai_bytes> held = keygroup_in(answer, m->index, k);
	if (!held || held->size() < 3)
		return rename_failed(answer, nothing_changed);
	akai_bytes keygroup = *held;
	keygroup[0] = block_is_keygroup;
	keygroup[1] = keygroup[2] = 0;
	const std::span<const u8> head = answer.view().bytes.first(akai_keygroup_block);
	m->keygroups.push_back(with_block(head, keygroup));
	akai_s1000_keygroup_from_block({ keygroup }, &m->copy->keygroup[k]);
	log_line("[D] Stored %d Bytes of Keygroup-Data for Keygroup: %d\r\n", answer.size(), k);
	return true;
}

// Everything of the program; false when a part did not come, and nothing is changed then.
static bool collect(program_move *m)
{
	const akai_answer answer = ask_program(m->index);
	m->common = program_in(answer, m->index).value_or(akai_bytes());
	log_program(answer, m->common);
	const int keygroups = m->common.empty() ? 0 : m->common[program_keygroups];
	if (m->common.empty() || keygroups > max_keygroups)
		return rename_failed(answer, nothing_changed);
	m->copy = std::make_unique<_program>();
	akai_s1000_program_from_block({ m->common }, m->copy.get());
	trim_akai_name(m->copy->name);
	m->copy->sampler_type = static_cast<i32>(current_sampler->sampler_type);
	for (int k = 0; k < keygroups && !progress_stopped(); k++)
		if (!collect_keygroup(m, k))
			return false;
	if (progress_stopped())
		program_ended(ending::stopped,
			tr("Renaming was stopped. Nothing was changed on the sampler."));
	return !progress_stopped();
}

// The program leaves memory only when it is whole on the sampler again.
static bool lost(program_move *m, const akai_answer &answer, const char *where)
{
	const std::string state =
		format_text(tr("%s It is kept in this computer as [%s]."), where, m->copy->name);
	rescue_program(std::move(m->copy));
	return rename_failed(answer, state.c_str());
}

static bool take_off(program_move *m)
{
	const akai_answer answer = send_deletion(m->index);
	if (is_done(answer))
		return true;
	if (is_refusal(answer))
		return rename_failed(answer, nothing_changed);
	return lost(m, answer, tr("The program may be gone from the sampler."));
}

static bool put_back(program_move *m, const char *new_name)
{
	u8 name[akai_name_size + 1];
	make_akai_name(new_name, name, akai_name_size);
	m->common[0] = block_is_program;
	m->common[1] = m->common[2] = 0;
	std::copy_n(name, akai_name_size, &m->common[program_name]);
	m->common[program_unknown] = 0;
	log_line("[D] NAME [%s] --> AKAIED: [%s]\r\n", new_name,
		log_dump(std::span(name).first(akai_name_size)).c_str());
	const akai_answer answer = send_program(m->index, m->common);
	return is_done(answer) || lost(m, answer, tr("The program is gone from the sampler."));
}

// All of them are tried, but for a sampler that has fallen silent.
static bool restore_keygroups(program_move *m)
{
	constexpr int most_silent = 3;
	int silent = 0, failed = 0;
	akai_answer bad = {};
	for (std::size_t k = 0; k < m->keygroups.size() && silent < most_silent; k++) {
		const akai_answer answer = ask_akai(m->keygroups[k]);
		silent = answer.size() ? 0 : silent + 1;
		if (!is_done(answer))
			bad = answer;
		failed += !is_done(answer);
		log_line("[D] Restored %d Bytes of Keygroup-Data for Keygroup: %d [%s]\r\n",
			static_cast<int>(m->keygroups[k].size()), static_cast<int>(k),
			log_dump(answer.bytes).c_str());
	}
	return !failed ||
	       lost(m, bad, tr("The program has its new name, but not all of its keygroups."));
}

// Without the blanks at its end.
static std::string without_blanks(std::string name)
{
	name.resize(name.find_last_not_of(' ') + 1);
	return name;
}

// What stood behind the program may be overwritten by a machine that closes gaps.
static void keep_follower(const akai_answer &list, int index)
{
	const std::string name = index + 1 < list.number() ? akai_list_name(list, index + 1) : "";
	const _dev_status *status = current_sampler->status;
	for (int i = 0; i < status->programs && !name.empty(); i++) {
		const _program &loaded = status->program[i];
		if (without_blanks(loaded.name) == name)
			return endanger_program(std::make_unique<_program>(loaded));
	}
}

void akai_s1000_prog_rename(i32 program, const char *new_name)
{
	begin_program_operation();
	forget_stop();
	const _program *p = program_to_write(program, nullptr);
	if (!p || !new_name)
		return;
	log_line("[D] RENAMING Program %d (%s), SYSEX_CHANNEL: %d to [%s]\r\n", program, p->name,
		s1000_channel(), new_name);
	const std::optional<akai_answer> list = ask_program_list(save_box);
	program_move m = { .index = list ? find_exactly(*list, p->name, "Cannot delete program!")
					 : -1 };
	if (m.index < 0)
		return;
	log_line("[D] %s Program [%s] PGM_IDX: %d\r\n", "UPDATING", p->name, m.index);
	if (!collect(&m))
		return;
	keep_follower(*list, m.index);
	if (take_off(&m) && put_back(&m, new_name))
		restore_keygroups(&m);
}

} // namespace velmor
