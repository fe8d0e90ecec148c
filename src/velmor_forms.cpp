// velmor_forms.cpp - the engine of the parameter forms
//
// What a form shows is made by one function from the row of the table and the value in the
// program; building, refreshing and marking use the same one. Events come in by the row's place
// in the form as it was built.

#include "src/velmor_forms.h"
#include <algorithm>
#include <map>

namespace velmor
{

static constexpr std::size_t typed_characters = 32; // that are read of a field

struct built_form {
	const form_table *table;
	i32 pgm, kg, kz;
	std::vector<const form_table_row *> rows; // as shown
	std::vector<form_row> shown;              // as built
};
static std::map<std::pair<int, int>, built_form> built_forms; // by window and control

static _program *local_program;
static i32 local_model;

// ---- What is edited -------------------------------------------------------------------------------

void edit_local_program(_program *program, i32 model)
{
	local_program = program;
	local_model = model;
}

_program *edited_program(i32 pgm)
{
	if (local_program)
		return local_program;
	if (!current_sampler || !current_sampler->status || pgm < 0 || pgm >= max_programs)
		return nullptr;
	return &current_sampler->status->program[pgm];
}

i32 edited_model()
{
	if (local_program)
		return local_model;
	return current_sampler ? static_cast<i32>(current_sampler->sampler_type) : 0;
}

bool apply_all_keygroups()
{
	return host.ui->checked(window_programs, apply_to_keygroups);
}

bool apply_all_keyzones()
{
	return host.ui->checked(window_programs, apply_to_keyzones);
}

// A row in the program, or a keygroup and a zone of it.
struct row_place {
	_program *program;
	field_place at;
};

static row_place place_of(const form_table_row &row, i32 pgm, i32 kg, i32 kz)
{
	const int zone = row.only_keyzone < 0 ? kz : row.only_keyzone;
	return { edited_program(pgm), { row.field, kg, zone } };
}

static bool exists(const row_place &place)
{
	return place.program && place_exists(*place.program, place.at);
}

// ---- Values as people see them --------------------------------------------------------------------

static i32 shown_of(const form_table_row &row, i32 held)
{
	return row.unit && row.unit->shown ? row.unit->shown(held) : held;
}

static i32 held_of(const form_table_row &row, i32 shown)
{
	return row.unit && row.unit->held ? row.unit->held(shown) : shown;
}

static std::string number_text(const form_table_row &row, i32 shown)
{
	return row.unit && row.unit->text ? row.unit->text(shown) : std::to_string(shown);
}

static std::vector<form_item> sample_items()
{
	std::vector<form_item> items = { { 0, tr("no sample") } };
	const _dev_status *dev = current_sampler ? current_sampler->status : nullptr;
	for (int i = 0; dev && i < dev->samples && i < max_samples; i++)
		items.push_back({ i + 1, dev->sample[i].name });
	return items;
}

static std::string first_line(const field_value &text)
{
	const std::string &whole = std::get<std::string>(text);
	return whole.substr(0, whole.find('\0'));
}

// The item that a value is, or -1. The first item of a text is none.
static int item_of(const std::vector<form_item> &items, const field_value &held)
{
	const bool text = std::holds_alternative<std::string>(held);
	const std::string name = text ? first_line(held) : "";
	for (std::size_t i = 0; i < items.size(); i++) {
		const std::string_view word = text && i == 0 ? "" : std::string_view(items[i].word);
		if (text ? same_sample(word, name) : items[i].value == std::get<i32>(held))
			return static_cast<int>(i);
	}
	return -1;
}

static std::vector<form_item> items_of(const form_table_row &row)
{
	return row.items                                           ? row.items()
	       : row.field.index() && row.kind == row_kind::choice ? sample_items()
								   : std::vector<form_item>{};
}

// A value in one word.
static std::string value_text(const form_table_row &row, const field_value &held)
{
	if (std::holds_alternative<std::string>(held))
		return first_line(held);
	const i32 number = std::get<i32>(held);
	if (!row.items)
		return number_text(row, shown_of(row, number));
	const std::vector<form_item> items = row.items();
	const int item = item_of(items, held);
	return item < 0 ? format_text("%d (unknown)", number)
			: items[static_cast<std::size_t>(item)].word;
}

// A label without its colon and line feeds.
static std::string plain_label(const form_table_row &row)
{
	std::string label = tr(row.label);
	return label.substr(0, label.find_last_not_of(":\n") + 1);
}

// ---- Building ---------------------------------------------------------------------------------------

static void fill_items(form_row *made, const form_table_row &row, const field_value &held)
{
	const std::vector<form_item> items = items_of(row);
	for (const form_item &item : items) {
		made->items.push_back(item.word);
		if (item.id)
			made->item_ids.push_back(item.id);
	}
	made->value = item_of(items, held);
	// A group that has no button for the value has none pressed; the told groups stay so.
	if (made->value >= 0 || !made->item_ids.empty())
		return;
	made->kind = row_kind::choice;
	made->value = static_cast<int>(items.size());
	made->items.push_back(std::holds_alternative<std::string>(held)
				      ? first_line(held) + tr(" (not loaded)")
				      : value_text(row, held));
}

static form_row make_row(const form_table &table, const form_table_row &row, const row_place &place)
{
	const int number = table.first_id + 2 * static_cast<int>(&row - table.rows.data());
	form_row made = {
		.kind = row.kind,
		.id = row.id || !table.first_id ? row.id : number,
		.field_id = row.field_id || !table.first_id ? row.field_id : number + 1,
		.label = tr(row.label),
		.unit = row.unit ? row.unit->word : "",
		.low = row.bar.low,
		.high = row.bar.high,
		.items = {},
		.item_ids = {},
		.value = 0,
		.text = "",
		.changed = false,
		.why_not = row.why_not ? row.why_not : "",
	};
	if (row.kind == row_kind::heading)
		return made;
	const field_value held = value_at(*place.program, place.at);
	made.changed = field_changed(*place.program, place.at);
	if (row.kind == row_kind::choice || row.kind == row_kind::radio)
		fill_items(&made, row, held);
	else if (row.kind == row_kind::check)
		made.value = std::get<i32>(held);
	else
		made.text = value_text(row, held);
	if (row.kind == row_kind::slider || row.kind == row_kind::number)
		made.value = shown_of(row, std::get<i32>(held));
	return made;
}

static std::vector<form_row> make_rows(const built_form &form)
{
	std::vector<form_row> rows;
	for (const form_table_row *row : form.rows)
		rows.push_back(
			make_row(*form.table, *row, place_of(*row, form.pgm, form.kg, form.kz)));
	return rows;
}

void open_form(const form_table &table, int window, i32 pgm, i32 kg, i32 kz)
{
	built_form form = { &table, pgm, kg, kz, {}, {} };
	const unsigned bits = table.shown_for ? table.shown_for(edited_model(), kz) : ~0u;
	bool all_there = true;
	for (const form_table_row &row : table.rows)
		if (row.shown_for & bits) {
			form.rows.push_back(&row);
			all_there = all_there && (row.kind == row_kind::heading ||
							 exists(place_of(row, pgm, kg, kz)));
		}
	if (!all_there)
		form.rows.clear();
	form.shown = make_rows(form);
	*table.busy = true;
	host.ui->build_form(window, table.control, form.shown);
	*table.busy = false;
	built_forms[{ window, table.control }] = std::move(form);
}

void close_forms(int window)
{
	std::erase_if(
		built_forms, [window](const auto &form) { return form.first.first == window; });
}

// ---- Showing anew -----------------------------------------------------------------------------------

static void set_choice(int window, const built_form &form, int row, const form_row &now)
{
	const bool grown =
		now.items.size() > form.shown[static_cast<std::size_t>(row)].items.size();
	host.ui->set_row_value(window, form.table->control, row, grown ? -1 : now.value);
}

static void set_row(int window, const built_form &form, int row, const form_row &now)
{
	const int control = form.table->control;
	switch (now.kind) {
	case row_kind::heading:
		return;
	case row_kind::choice:
	case row_kind::radio:
		set_choice(window, form, row, now);
		break;
	case row_kind::check:
	case row_kind::slider:
	case row_kind::number:
		host.ui->set_row_value(window, control, row,
			now.kind == row_kind::slider ? std::clamp(now.value, now.low, now.high)
						     : now.value);
		break;
	case row_kind::reading:
		break;
	}
	if (now.kind == row_kind::slider || now.kind == row_kind::number ||
		now.kind == row_kind::reading)
		host.ui->set_row_text(window, control, row, now.text.c_str());
	host.ui->set_row_changed(window, control, row, now.changed);
}

static void refresh(int window, const built_form &form)
{
	const std::vector<form_row> now = make_rows(form);
	bool same_lists = true;
	for (std::size_t i = 0; i < now.size(); i++)
		same_lists = same_lists && now[i].items == form.shown[i].items &&
			     now[i].kind == form.shown[i].kind;
	*form.table->busy = true;
	if (!same_lists)
		host.ui->build_form(window, form.table->control, now);
	for (std::size_t i = 0; same_lists && i < now.size(); i++)
		set_row(window, form, static_cast<int>(i), now[i]);
	*form.table->busy = false;
}

void refresh_forms(int window)
{
	for (auto &built : built_forms) {
		if (built.first.first != window)
			continue;
		built_form &form = built.second;
		const bool there = std::all_of(
			form.rows.begin(), form.rows.end(), [&](const form_table_row *row) {
				return row->kind == row_kind::heading ||
				       exists(place_of(*row, form.pgm, form.kg, form.kz));
			});
		if (!there)
			form.rows.clear();
		refresh(window, form);
		form.shown = make_rows(form);
	}
}

static bool is_field(const form_table_row &row, const any_field &field)
{
	return row.field.index() == field.index() &&
	       std::string_view(field_name(row.field)) == field_name(field);
}

void show_form_field(const form_table &table, const any_field &field, i32 pgm, i32 kg, i32 kz)
{
	for (const auto &[where, form] : built_forms)
		for (std::size_t i = 0; form.table == &table && i < form.rows.size(); i++) {
			const row_place place = place_of(*form.rows[i], pgm, kg, kz);
			if (is_field(*form.rows[i], field) && exists(place))
				set_row(where.first, form, static_cast<int>(i),
					make_row(table, *form.rows[i], place));
		}
}

// ---- Storing ------------------------------------------------------------------------------------------

// One event of a row, on its way through the engine.
struct row_event {
	const built_form *form;
	const form_table_row *row;
	int window, place; // of the row in the form
	i32 pgm, kg, kz;

	row_place at() const { return place_of(*row, pgm, kg, kz); }
	const form_table &table() const { return *form->table; }
};

static bool typing; // a number moves the bar, whose own event stores

// The envelopes are a keygroup's too.
static bool of_keygroups(const row_event &e)
{
	return e.table().control == form_of_keygroup || e.table().control == programs_adsr_form;
}

static bool to_all(const row_event &e)
{
	if (e.row->apply == applying::alone)
		return false;
	return of_keygroups(e)                        ? apply_all_keygroups()
	       : e.table().control == form_of_keyzone ? apply_all_keyzones()
						      : false;
}

static std::vector<field_change> changes_for(const row_event &e, const field_value &value)
{
	const row_place place = e.at();
	std::vector<field_change> changes = { { place.at, value } };
	if (e.row->also.index())
		changes.push_back(
			{ { e.row->also, place.at.keygroup, place.at.keyzone + 1 }, value });
	if (!to_all(e))
		return changes;
	const bool of_keygroup = of_keygroups(e);
	const int count = of_keygroup ? place.program->keygroups : e.table().keyzones;
	if (of_keygroup && e.row->apply_word)
		log_line("[D] Applying %s to %d Keygroups!\r\n", e.row->apply_word, count);
	for (int i = 0; i < count; i++) {
		const field_place other =
			of_keygroup ? field_place{ place.at.field, i, place.at.keyzone }
				    : field_place{ place.at.field, place.at.keygroup, i };
		changes.push_back({ other, value });
	}
	return changes;
}

static std::string where_of(const row_event &e)
{
	const any_field &field = e.row->field;
	if (std::holds_alternative<named_field<_program>>(field))
		return plain_label(*e.row);
	const std::string label = plain_label(*e.row);
	if (std::holds_alternative<named_field<_keygroup>>(field))
		return to_all(e) ? format_text(tr("%s of all keygroups"), label.c_str())
				 : format_text(tr("%s of keygroup %d"), label.c_str(), e.kg + 1);
	return to_all(e) ? format_text(
				   tr("%s of all keyzones of keygroup %d"), label.c_str(), e.kg + 1)
			 : format_text(tr("%s of keyzone %d of keygroup %d"), label.c_str(),
				   e.at().at.keyzone + 1, e.kg + 1);
}

static void mark_changed(const row_event &e)
{
	const row_place place = e.at();
	host.ui->set_row_changed(
		e.window, e.table().control, e.place, field_changed(*place.program, place.at));
}

static void store(const row_event &e, const field_value &value, bool in_movement)
{
	const row_place place = e.at();
	const edit_words words = { where_of(e),
		value_text(*e.row, value_at(*place.program, place.at)), value_text(*e.row, value) };
	const gesture movement = { e.window, e.table().control, e.place + 1, e.kg, e.kz, typing };
	const gesture none = {};
	(void)edit_fields(
		*place.program, words, changes_for(e, value), in_movement ? movement : none);
	mark_changed(e);
}

static void show_anew(const row_event &e)
{
	set_row(e.window, *e.form, e.place, make_row(e.table(), *e.row, e.at()));
}

// ---- Events -------------------------------------------------------------------------------------------

static void bar_moved(const row_event &e, i32 position, bool at_end)
{
	const i32 shown = std::clamp(position, e.row->bar.low, e.row->bar.high);
	log_line("[D] -->%s%s<-- POS: %d\r\n", e.row->log_word, e.table().bar_suffix, shown);
	if (at_end || (e.table().field_follows_drag && !typing))
		host.ui->set_row_text(
			e.window, e.table().control, e.place, number_text(*e.row, shown).c_str());
	store(e, held_of(*e.row, shown), true);
	if (at_end)
		end_gesture(*e.at().program);
}

// Two fields with one id are one: what is typed in the second is looked for in the first.
static int first_with_field_id(const built_form &form, int place)
{
	const int id = form.shown[static_cast<std::size_t>(place)].field_id;
	for (std::size_t i = 0; i < form.shown.size(); i++)
		if (form.shown[i].kind == row_kind::slider && form.shown[i].field_id == id)
			return static_cast<int>(i);
	return place;
}

static std::optional<i32> number_in_field(const row_event &e)
{
	const std::string typed =
		host.ui->row_text(e.window, e.table().control, e.place).substr(0, typed_characters);
	return e.row->unit && e.row->unit->number ? e.row->unit->number(typed)
						  : typed_number(typed, 1);
}

static void field_typed(row_event e)
{
	e.place = first_with_field_id(*e.form, e.place);
	e.row = e.form->rows[static_cast<std::size_t>(e.place)];
	const std::optional<i32> number = number_in_field(e);
	log_line("[D] -->%s%s<-- POS: %d\r\n", e.row->log_word, e.table().field_suffix,
		number.value_or(0));
	if (!number || *number < e.row->edit.low || *number > e.row->edit.high)
		return;
	const i32 position = std::clamp(*number, e.row->bar.low, e.row->bar.high);
	host.ui->set_row_value(e.window, e.table().control, e.place, position);
	if (!e.table().typing_stores)
		return;
	typing = true;
	e.table().callback(e.window, e.pgm, e.kg, e.kz, static_cast<unsigned>(form_event::drag),
		static_cast<std::uintptr_t>(e.place), position);
	typing = false;
}

static void text_chosen(const row_event &e, const std::string &name)
{
	log_line("[D] New Sample-Name: [%s]\r\n", name.c_str());
	const std::size_t filled = static_cast<std::size_t>(e.row->text_filled);
	std::string text = name;
	if (!text.empty() && text.size() < filled)
		text.resize(filled, ' ');
	store(e, text_value(text), false);
}

static void item_chosen(const row_event &e, int item)
{
	const std::vector<form_item> items = items_of(*e.row);
	if (item < 0 || static_cast<std::size_t>(item) >= items.size()) {
		show_anew(e); // what stands behind the items is no choice
		return;
	}
	const form_item &chosen = items[static_cast<std::size_t>(item)];
	if (!e.row->items) {
		text_chosen(e, item ? chosen.word : "");
		return;
	}
	const row_place place = e.at();
	if (e.row->allowed && !e.row->allowed(place.program->keygroup[e.kg], chosen.value)) {
		show_anew(e);
		return;
	}
	store(e, chosen.value, false);
	if (e.row->stored_line)
		log_line(e.row->stored_line, chosen.value);
	if (e.row->refresh)
		e.row->refresh(e.pgm, e.kg, e.kz);
}

static void box_clicked(const row_event &e)
{
	const row_place place = e.at();
	store(e, number_at(*place.program, place.at) ? 0 : 1, false);
	show_anew(e);
}

static void row_put_back(const row_event &e)
{
	const row_place place = e.at();
	const auto read = value_as_read(*place.program, place.at);
	if (!read)
		return;
	const edit_words words = { where_of(e),
		value_text(*e.row, value_at(*place.program, place.at)), value_text(*e.row, *read) };
	(void)put_back(*place.program, place.at, words);
	show_anew(e);
}

static const built_form *find_form(int window, int control)
{
	const auto found = built_forms.find({ window, control });
	return found == built_forms.end() ? nullptr : &found->second;
}

void take_form_event(const form_table &table, int window, i32 pgm, i32 kg, i32 kz, unsigned message,
	std::uintptr_t first, std::intptr_t second)
{
	const built_form *form = find_form(window, table.control);
	if (!form || form->table != &table || first >= form->rows.size())
		return;
	const row_event e = { form, form->rows[first], window, static_cast<int>(first), pgm, kg,
		kz };
	const row_kind kind = e.row->kind;
	if (kind == row_kind::heading || kind == row_kind::reading || !exists(e.at()))
		return;
	const auto event = static_cast<form_event>(message);
	const int value = static_cast<int>(second);
	const bool moved = event == form_event::drag || event == form_event::drag_end;
	if (event == form_event::put_back)
		row_put_back(e);
	else if (kind == row_kind::slider && moved)
		bar_moved(e, value, event == form_event::drag_end);
	else if (kind == row_kind::slider && event == form_event::edit)
		field_typed(e);
	else if (kind == row_kind::check && event == form_event::choice)
		box_clicked(e);
	else if (event == form_event::choice && kind != row_kind::slider)
		item_chosen(e, value);
}

// ---- For the windows ----------------------------------------------------------------------------------

std::string put_back_words(int window, int control, int row)
{
	const built_form *form = find_form(window, control);
	if (!form || row < 0 || static_cast<std::size_t>(row) >= form->rows.size())
		return "";
	const form_table_row &shown = *form->rows[static_cast<std::size_t>(row)];
	const row_place place = place_of(shown, form->pgm, form->kg, form->kz);
	if (!exists(place) || !field_changed(*place.program, place.at))
		return "";
	const auto read = value_as_read(*place.program, place.at);
	return read ? format_text(tr("Put back %s, as read"), value_text(shown, *read).c_str())
		    : "";
}

void form_changed(int window, int control, int row, form_event event, int value)
{
	const _sampler_type *model = get_sampler(edited_model());
	if (!model) {
		show_box("INFO", "Invalid sampler type");
		return;
	}
	const form_callback callback = control == form_of_program    ? model->assignprog_callback
				       : control == form_of_keygroup ? model->assignvoice_callback
				       : control == form_of_keyzone ? model->assignvelocity_callback
								    : nullptr;
	if (callback)
		callback(window, current_pgm_index, current_keygroup_index, current_keyzone_index,
			static_cast<unsigned>(event), static_cast<std::uintptr_t>(row), value);
}

} // namespace velmor
