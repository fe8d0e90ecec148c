// velmor_edits.cpp - steps, their undoing, and what differs from the program as read
//
// A keygroup has an identity of its own, so that it is compared with itself after others were
// added or removed in front of it.

#include "src/velmor_edits.h"
#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <tuple>
#include <utility>

namespace velmor
{

void (*edits_changed)(const _program *program);

// ---- Places -------------------------------------------------------------------------------------

// The record that a place is in, and its field: act is given both. The place exists.
template <typename program, typename action>
static auto at_place(program &p, const field_place &at, action act)
{
	const auto keygroup = static_cast<std::size_t>(std::max(at.keygroup, 0));
	const auto keyzone = static_cast<std::size_t>(std::max(at.keyzone, 0));
	if (const auto *of_program = std::get_if<named_field<_program>>(&at.field))
		return act(p, of_program->at);
	if (const auto *of_keygroup = std::get_if<named_field<_keygroup>>(&at.field))
		return act(p.keygroup[keygroup], of_keygroup->at);
	return act(p.keygroup[keygroup].keyzone[keyzone],
		std::get<named_field<_keyzone>>(at.field).at);
}

bool place_exists(const _program &program, const field_place &at)
{
	const bool in_keygroup =
		at.keygroup >= 0 && at.keygroup < max_keygroups && at.keygroup < program.keygroups;
	if (std::holds_alternative<named_field<_keygroup>>(at.field))
		return in_keygroup;
	if (std::holds_alternative<named_field<_keyzone>>(at.field))
		return in_keygroup && at.keyzone >= 0 && at.keyzone < max_keyzones;
	return std::holds_alternative<named_field<_program>>(at.field);
}

field_value text_value(std::string_view text)
{
	std::string whole(text.substr(0, name_size - 1));
	whole.resize(name_size);
	return whole;
}

field_value value_at(const _program &program, const field_place &at)
{
	return at_place(program, at, [](const auto &record, const auto &field) -> field_value {
		using text = typename std::remove_cvref_t<decltype(field)>::text;
		if (const auto *t = std::get_if<text>(&field.field))
			return std::string(record.*(*t), name_size);
		return field.get(record);
	});
}

i32 number_at(const _program &program, const field_place &at)
{
	const field_value value = value_at(program, at);
	return std::holds_alternative<i32>(value) ? std::get<i32>(value) : 0;
}

std::string text_at(const _program &program, const field_place &at)
{
	const field_value value = value_at(program, at);
	const auto *text = std::get_if<std::string>(&value);
	return text ? text->substr(0, text->find('\0')) : "";
}

static void write_place(_program *program, const field_place &at, const field_value &value)
{
	at_place(*program, at, [&](auto &record, const auto &field) {
		using text = typename std::remove_cvref_t<decltype(field)>::text;
		const auto *words = std::get_if<std::string>(&value);
		const auto *t = std::get_if<text>(&field.field);
		if (t && words && words->size() == name_size)
			std::copy(words->begin(), words->end(), record.*(*t));
		else if (const auto *number = std::get_if<i32>(&value); number && !t)
			field.set(&record, *number);
	});
}

const char *field_name(const any_field &field)
{
	return std::visit(
		[](const auto &named) -> const char * {
			if constexpr (requires { named.name; })
				return named.name;
			else
				return "";
		},
		field);
}

static bool same_place(const field_place &a, const field_place &b)
{
	return a.field.index() == b.field.index() && a.keygroup == b.keygroup &&
	       a.keyzone == b.keyzone &&
	       std::string_view(field_name(a.field)) == field_name(b.field);
}

// ---- Histories ----------------------------------------------------------------------------------

struct field_edit {
	field_place at;
	field_value before, after;
};
// Behind the others. What stood in its place is no keygroup of the program, but comes back too.
struct keygroup_added {
	int id;
	std::shared_ptr<const _keygroup> before, after;
};
struct keygroup_removed {
	int id, index;
	std::shared_ptr<const _keygroup> before;
};
using one_change = std::variant<field_edit, keygroup_added, keygroup_removed>;

struct edit_step {
	edit_words words;
	std::vector<one_change> changes;
};

struct history {
	std::unique_ptr<_program> as_read;
	std::vector<int> ids, ids_as_read; // of the keygroups, in their order
	int next_id = 0;
	std::vector<edit_step> done, undone;
	gesture movement = {};            // that the last step may still grow by
	std::vector<field_place> touched; // by users since it was read; keygroup is an id here
};
static std::map<const _program *, history> histories;

static void tell_change(const _program *program)
{
	if (edits_changed)
		edits_changed(program);
}

// Null before the first edit. One that does not fit its program any more is forgotten: the
// record was read anew behind its back.
static history *find_history(const _program &program)
{
	const auto found = histories.find(&program);
	if (found == histories.end())
		return nullptr;
	if (static_cast<int>(found->second.ids.size()) == program.keygroups)
		return &found->second;
	histories.erase(found);
	return nullptr;
}

static history &require_history(const _program &program)
{
	if (history *known = find_history(program))
		return *known;
	history &h = histories[&program];
	h.as_read = std::make_unique<_program>(program);
	for (; h.next_id < std::clamp(program.keygroups, 0, max_keygroups); h.next_id++)
		h.ids.push_back(h.next_id);
	h.ids_as_read = h.ids;
	return h;
}

static int index_of(const std::vector<int> &ids, int id)
{
	const auto found = std::find(ids.begin(), ids.end(), id);
	return found == ids.end() ? -1 : static_cast<int>(found - ids.begin());
}

// ---- Doing and undoing ----------------------------------------------------------------------------

static field_place by_id(const history &h, field_place at)
{
	if (!std::holds_alternative<named_field<_program>>(at.field))
		at.keygroup = h.ids[static_cast<std::size_t>(at.keygroup)];
	return at;
}

static void touch(history *h, const field_place &at)
{
	const field_place known = by_id(*h, at);
	for (const field_place &other : h->touched)
		if (same_place(other, known))
			return;
	h->touched.push_back(known);
}

static void drop_keygroup(_program *program, std::vector<int> *ids, int index)
{
	const int last = program->keygroups - 1;
	std::move(program->keygroup + index + 1, program->keygroup + last + 1,
		program->keygroup + index);
	program->keygroups = last;
	ids->erase(ids->begin() + index);
}

static void act(_program *program, history *h, const field_edit &change, bool forward)
{
	write_place(program, change.at, forward ? change.after : change.before);
	touch(h, change.at);
}

static void act(_program *program, history *h, const keygroup_added &change, bool forward)
{
	if (forward) {
		program->keygroup[program->keygroups++] = *change.after;
		h->ids.push_back(change.id);
	} else {
		program->keygroup[--program->keygroups] = *change.before;
		h->ids.pop_back();
	}
}

static void act(_program *program, history *h, const keygroup_removed &change, bool forward)
{
	if (forward) {
		drop_keygroup(program, &h->ids, change.index);
		return;
	}
	_keygroup *at = program->keygroup + change.index;
	_keygroup *end = program->keygroup + program->keygroups;
	std::move_backward(at, end, end + 1);
	*at = *change.before;
	program->keygroups++;
	h->ids.insert(h->ids.begin() + change.index, change.id);
}

static void run(_program *program, history *h, const one_change &change, bool forward)
{
	std::visit([&](const auto &kind) { act(program, h, kind, forward); }, change);
}

static void new_step(history *h, edit_step step, const gesture &movement)
{
	h->done.push_back(std::move(step));
	h->undone.clear();
	h->movement = movement;
}

// ---- Editing --------------------------------------------------------------------------------------

static void grow(edit_step *step, const edit_words &words, const field_edit &change)
{
	step->words.to = words.to;
	for (one_change &known : step->changes)
		if (auto *same = std::get_if<field_edit>(&known);
			same && same_place(same->at, change.at)) {
			same->after = change.after;
			return;
		}
	step->changes.emplace_back(change);
}

static bool changes_nothing(const edit_step &step)
{
	return std::all_of(step.changes.begin(), step.changes.end(), [](const one_change &change) {
		const auto *field = std::get_if<field_edit>(&change);
		return field && field->before == field->after;
	});
}

bool edit_fields(_program &program, const edit_words &words, std::span<const field_change> changes,
	const gesture &movement)
{
	for (const field_change &change : changes)
		if (!place_exists(program, change.at) ||
			value_at(program, change.at).index() != change.value.index())
			return false;
	history &h = require_history(program);
	const bool going_on = movement != gesture{} && movement == h.movement && !h.done.empty();
	edit_step step = going_on ? std::move(h.done.back()) : edit_step{ words, {} };
	if (going_on)
		h.done.pop_back();
	for (const field_change &change : changes) {
		field_edit edit = { change.at, value_at(program, change.at), change.value };
		act(&program, &h, edit, true);
		edit.after = value_at(program, change.at); // as the field could hold it
		grow(&step, words, edit);
	}
	// A movement that came back to where it began is gone, and may begin once more.
	if (!changes_nothing(step))
		new_step(&h, std::move(step), movement);
	else if (going_on)
		h.movement = {};
	tell_change(&program);
	return true;
}

void end_gesture(const _program &program)
{
	if (history *h = find_history(program))
		h->movement = {};
}

int edit_add_keygroup(_program &program, int keyzones)
{
	if (program.keygroups < 0 || program.keygroups >= max_keygroups)
		return -1;
	history &h = require_history(program);
	auto added = std::make_shared<_keygroup>();
	*added = {};
	added->high_note = 99;
	added->keyzones = std::clamp(keyzones, 0, max_keyzones);
	const keygroup_added change = { h.next_id++,
		std::make_shared<_keygroup>(program.keygroup[program.keygroups]), added };
	act(&program, &h, change, true);
	new_step(&h,
		{ { format_text(tr("Keygroup %d added"), program.keygroups), "", "" }, { change } },
		{});
	tell_change(&program);
	return program.keygroups - 1;
}

static void sampler_lost(history *h, const _program &program, int keygroup)
{
	const int read = keygroup_as_read(program, keygroup);
	if (read >= 0)
		drop_keygroup(h->as_read.get(), &h->ids_as_read, read);
}

bool edit_remove_keygroup(_program &program, int keygroup, bool sampler_told)
{
	if (keygroup < 0 || keygroup >= program.keygroups || program.keygroups > max_keygroups)
		return false;
	history &h = require_history(program);
	const int id = h.ids[static_cast<std::size_t>(keygroup)];
	const keygroup_removed change = { id, keygroup,
		std::make_shared<_keygroup>(program.keygroup[keygroup]) };
	if (sampler_told)
		sampler_lost(&h, program, keygroup);
	act(&program, &h, change, true);
	new_step(&h,
		{ { format_text(tr("Keygroup %d deleted"), keygroup + 1), "", "" }, { change } },
		{});
	tell_change(&program);
	return true;
}

int keygroup_that_goes(const _program &program, bool forward)
{
	const history *h = find_history(program);
	if (!h || (forward ? h->undone : h->done).empty())
		return -1;
	for (const one_change &change : (forward ? h->undone : h->done).back().changes) {
		const auto *removed = std::get_if<keygroup_removed>(&change);
		const auto *added = std::get_if<keygroup_added>(&change);
		if (removed && forward)
			return removed->index;
		if (added && !forward)
			return index_of(h->ids, added->id);
	}
	return -1;
}

static bool step_over(_program &program, bool forward, bool sampler_told)
{
	history *h = find_history(program);
	if (!h)
		return false;
	auto &from = forward ? h->undone : h->done;
	auto &to = forward ? h->done : h->undone;
	if (from.empty())
		return false;
	if (sampler_told)
		sampler_lost(h, program, keygroup_that_goes(program, forward));
	edit_step step = std::move(from.back());
	from.pop_back();
	if (forward)
		for (auto change = step.changes.begin(); change != step.changes.end(); ++change)
			run(&program, h, *change, true);
	else
		for (auto change = step.changes.rbegin(); change != step.changes.rend(); ++change)
			run(&program, h, *change, false);
	to.push_back(std::move(step));
	h->movement = {};
	tell_change(&program);
	return true;
}

bool undo_edit(_program &program, bool sampler_told)
{
	return step_over(program, false, sampler_told);
}

bool redo_edit(_program &program, bool sampler_told)
{
	return step_over(program, true, sampler_told);
}

const edit_words *undo_words(const _program &program)
{
	const history *h = find_history(program);
	return h && !h->done.empty() ? &h->done.back().words : nullptr;
}

const edit_words *redo_words(const _program &program)
{
	const history *h = find_history(program);
	return h && !h->undone.empty() ? &h->undone.back().words : nullptr;
}

// ---- What is not sent yet -------------------------------------------------------------------------

std::optional<field_value> value_as_read(const _program &program, const field_place &at)
{
	if (!place_exists(program, at))
		return {};
	const history *h = find_history(program);
	if (!h)
		return value_at(program, at);
	field_place read = at;
	if (!std::holds_alternative<named_field<_program>>(at.field))
		read.keygroup = index_of(h->ids_as_read, by_id(*h, at).keygroup);
	return place_exists(*h->as_read, read) ? std::optional(value_at(*h->as_read, read))
					       : std::nullopt;
}

bool field_changed(const _program &program, const field_place &at)
{
	const history *h = find_history(program);
	if (!h || !place_exists(program, at))
		return false;
	const field_place known = by_id(*h, at);
	for (const field_place &touched : h->touched)
		if (same_place(touched, known))
			return value_as_read(program, at) != value_at(program, at);
	return false;
}

bool put_back(_program &program, const field_place &at, const edit_words &words)
{
	const auto read = value_as_read(program, at);
	if (!read || !field_changed(program, at))
		return false;
	const field_change change = { at, *read };
	return edit_fields(program, words, { &change, 1 });
}

// Calls each with every place that a user changed and its place in the program, and with no
// field for a keygroup that only one of the two has (its index in the program, or -1).
template <typename action> static void each_unsent(const _program &program, action each)
{
	const history *h = find_history(program);
	if (!h)
		return;
	for (int id : h->ids)
		if (index_of(h->ids_as_read, id) < 0)
			each(field_place{ {}, index_of(h->ids, id), -1 });
	for (int id : h->ids_as_read)
		if (index_of(h->ids, id) < 0)
			each(field_place{ {}, -1, -1 });
	for (field_place at : h->touched) {
		if (!std::holds_alternative<named_field<_program>>(at.field))
			at.keygroup = index_of(h->ids, at.keygroup);
		const auto read = value_as_read(program, at);
		if (read && *read != value_at(program, at))
			each(at);
	}
}

static int *count_of(unsent_counts *counts, const field_place &at)
{
	return std::holds_alternative<named_field<_program>>(at.field)   ? &counts->program
	       : std::holds_alternative<named_field<_keyzone>>(at.field) ? &counts->keyzones
									 : &counts->keygroups;
}

unsent_counts unsent_changes(const _program &program)
{
	unsent_counts counts;
	each_unsent(program, [&](const field_place &at) { ++*count_of(&counts, at); });
	return counts;
}

unsent_counts unsent_changes(const _program &program, int keygroup, int keyzone)
{
	unsent_counts counts;
	each_unsent(program, [&](const field_place &at) {
		const bool zone = std::holds_alternative<named_field<_keyzone>>(at.field);
		const bool here = std::holds_alternative<named_field<_program>>(at.field) ||
				  (at.keygroup == keygroup && (!zone || at.keyzone == keyzone));
		*count_of(&counts, at) += here;
	});
	return counts;
}

int unsent_changes()
{
	int all = 0;
	for (const auto &[program, h] : histories)
		if (static_cast<int>(h.ids.size()) == program->keygroups)
			all += unsent_changes(*program).all();
	return all;
}

// Behind the keygroups that were sent, a sampler that had more still has what stood there.
static int keep_surplus(history *h, const _program &before)
{
	int kept = 0;
	for (int k = h->as_read->keygroups; k < before.keygroups && k < max_keygroups;
		k++, kept++) {
		h->as_read->keygroup[h->as_read->keygroups++] = before.keygroup[k];
		h->ids_as_read.push_back(h->next_id++);
	}
	return kept;
}

int edits_sent(const _program &program, bool surplus_stays)
{
	int kept = 0;
	if (history *h = find_history(program)) {
		const std::unique_ptr<_program> before =
			std::exchange(h->as_read, std::make_unique<_program>(program));
		h->ids_as_read = h->ids;
		h->touched.clear();
		h->movement = {};
		kept = surplus_stays ? keep_surplus(h, *before) : 0;
	}
	tell_change(&program);
	return kept;
}

void forget_edits(const _program &program)
{
	histories.erase(&program);
	tell_change(&program);
}

void forget_edits()
{
	histories.clear();
	tell_change(nullptr);
}

void forget_edits(const _program *first, const _program *end)
{
	const std::less<const _program *> before;
	std::erase_if(histories, [&](const auto &known) {
		return !before(known.first, first) && before(known.first, end);
	});
	tell_change(nullptr);
}

void move_edits(const _program &from, const _program &to)
{
	histories.erase(&to);
	auto known = histories.extract(&from);
	if (known.empty())
		return;
	known.key() = &to;
	histories.insert(std::move(known));
}

int keygroup_as_read(const _program &program, int keygroup)
{
	const history *h = find_history(program);
	if (keygroup < 0 || keygroup >= program.keygroups)
		return -1;
	return h ? index_of(h->ids_as_read, h->ids[static_cast<std::size_t>(keygroup)]) : keygroup;
}

} // namespace velmor
