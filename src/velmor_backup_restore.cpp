// velmor_backup_restore.cpp - all of a folder back to the sampler: first a plan, then the work
//
// What goes is deleted first, since a full memory takes nothing; then come the samples, and then
// the programs that name them. Each sample is sent as every upload, from a copy under the name
// that the sampler knew it by, and to the S1000 family exactly: with its own length and all of its
// header. Programs are sent one behind the other, and the list that is read
// behind them tells what became of each.
//
// Knows nothing of: windows, models (but for what takes a program only over its own).

#include "src/akaiprograms.h"
#include "src/akais1000.h"
#include "src/akais900.h"
#include "src/velmor_backup_parts.h"
#include "src/velmor_history.h"
#include "src/velmor_library.h"
#include "src/velmor_transfer.h"
#include "src/velmor_verify.h"
#include "src/waveqx.h"
#include "src/waveqx_file.h"
#include <algorithm>

namespace velmor
{

int restore_plan::count(restore_step step) const
{
	return static_cast<int>(std::ranges::count(items, step, &restore_item::step));
}

static const _sampler_type &row_of_loaded()
{
	return *get_sampler(static_cast<i32>(current_sampler->sampler_type));
}

static bool is_s900(const _sampler_type &model)
{
	return model.saveprogram == akai_s900_save_program;
}

// It makes a program of a name that it does not hold; others write one only over its own. And its
// uploads can be exact.
static bool is_s1000_family(const _sampler_type &model)
{
	return model.saveprogram == akai_s1000_prog_save;
}

// ---- The plan -----------------------------------------------------------------------------------

struct planning {
	restore_wish wish;
	std::string folder;
	backup_manifest manifest = {};
	std::vector<listed_thing> things = {}; // on the sampler
};

// A program of the folder; null, and why it cannot be taken.
static std::unique_ptr<_program> read_entry(
	const std::string &folder, const backup_entry &entry, std::string *why)
{
	constexpr u64 largest_program = 8u << 20;
	const std::string path = path_of_entry(folder, entry);
	input_file file;
	if (entry.size > largest_program) {
		*why = tr("It is too large.");
		return nullptr;
	}
	std::string text(static_cast<std::size_t>(entry.size), '\0');
	int code = file.measure(path.c_str());
	code = code ? code : file.open(path.c_str());
	code = code ? code : file.read(0, text.data(), text.size());
	kept_lines kept;
	program_refusal refusal;
	auto program = code ? nullptr : read_program_text(text, &kept, &refusal);
	if (!program)
		*why = code ? read_failure(path, code) : refusal.reason;
	return program;
}

// A sample whose list tells its name alone is asked for its header; the length there is in whole
// seconds.
static bool has_its_header(const listed_thing &thing, const std::string &path)
{
	const _sample *record = nullptr;
	u8 bits = 0, channels = 0, pitch = 0;
	int rate = 0;
	if (!ask_sample(thing.name, &record).done() || !record ||
		!get_wave_info(path.c_str(), &bits, &channels, &rate, &pitch) || rate <= 0)
		return false;
	return record->sample_rate == static_cast<u64>(rate) && record->channels == channels &&
	       record->original_pitch == pitch &&
	       record->sample_length == wave_frames(path) / static_cast<u64>(rate);
}

static restore_step compare_sample_with(const backup_entry &entry, const listed_thing &thing,
	const std::string &path, std::string *words)
{
	if (!entry.facts.empty() && !thing.facts.empty())
		return entry.facts == thing.facts ? restore_step::keep : restore_step::replace;
	if (!has_its_header(thing, path))
		return restore_step::replace;
	*words = tr("the same as far as its header tells");
	return restore_step::keep;
}

static void plan_sample(const planning &p, const listed_thing *thing, restore_item *item)
{
	const std::string path = path_of_entry(p.folder, item->entry);
	const upload_verdict check = upload_check(row_of_loaded(), path);
	if (!row_of_loaded().uploadsample)
		item->words = offers_upload().words;
	else if (!check.sends)
		item->words = check.words;
	else
		item->step = !thing ? restore_step::send
			     : p.wish.everything
				     ? restore_step::replace
				     : compare_sample_with(item->entry, *thing, path, &item->words);
}

static void plan_program(const planning &p, const listed_thing *thing, restore_item *item)
{
	const auto program = read_entry(p.folder, item->entry, &item->words);
	if (!program)
		return;
	if (!row_of_loaded().saveprogram)
		item->words = tr("this sampler takes no programs");
	else if (!thing && !is_s1000_family(row_of_loaded()))
		item->words =
			tr("this sampler takes a program only over one of its name; make one on "
			   "its own panel");
	else
		item->step = !thing ? restore_step::send
			     : !p.wish.everything && thing->text == backup_text(*program)
				     ? restore_step::keep
				     : restore_step::replace;
}

static restore_item plan_entry(const planning &p, std::size_t index)
{
	const backup_entry &entry = p.manifest.entries[index];
	restore_item item = { entry.kind, entry.name, restore_step::cannot, {}, entry };
	const int number = number_of(p.manifest.entries, index);
	const listed_thing *thing = find_thing(p.things, entry, number);
	if (entry.kind == backup_kind::multi) {
		item.step = thing ? restore_step::keep : restore_step::cannot;
		item.words = thing ? "" : tr("multis stay in the sampler; this is its name alone");
	} else if (number > 1) {
		item.words = tr("another one has the same name, and would be replaced");
	} else if (!is_intact(p.folder, entry)) {
		item.words = tr("its file is missing, or was changed since the backup");
	} else if (entry.kind == backup_kind::sample) {
		plan_sample(p, thing, &item);
	} else {
		plan_program(p, thing, &item);
	}
	return item;
}

static restore_item plan_removal(const listed_thing &thing)
{
	restore_item item = { thing.kind, thing.name, restore_step::remove };
	item.index = thing.index;
	const _sampler_type &model = row_of_loaded();
	const bool can = thing.kind == backup_kind::sample ? model.renamesample != nullptr
							   : model.deleteprogram != nullptr;
	const bool hidden = thing.number > 1;
	if (!can || hidden) {
		item.step = restore_step::cannot;
		item.words = can ? tr("another one has the same name, and would be deleted")
				 : tr("this sampler deletes it on its own panel alone");
	}
	return item;
}

static bool is_in_folder(const planning &p, const listed_thing &thing)
{
	for (std::size_t i = 0; i < p.manifest.entries.size(); i++) {
		const backup_entry &e = p.manifest.entries[i];
		if (e.kind == thing.kind && e.name == thing.name &&
			number_of(p.manifest.entries, i) == thing.number)
			return true;
	}
	return false;
}

// It is of a sampler that takes what is in it.
static outcome may_be_restored(const planning &p)
{
	outcome why;
	const _sampler_type *to = loaded_model(&why);
	if (!to)
		return why;
	for (const _sampler_type *from = sampler_type; from->sampler_brand; from++)
		if (p.manifest.model == from->sampler_brand && same_family(*from, *to))
			return {};
	return { .how = ending::refused,
		.words = format_text(tr("This is the backup of '%s', an %s. An %s cannot take it."),
			p.manifest.sampler.c_str(), p.manifest.model.c_str(), to->sampler_brand),
		.caption = "WARNING" };
}

outcome plan_restore(const std::string &folder, const restore_wish &wish, restore_plan *plan)
{
	planning p = { .wish = wish, .folder = folder };
	outcome ready = read_manifest(folder, &p.manifest);
	if (ready.done())
		ready = may_be_restored(p);
	if (ready.done())
		ready = read_machine(&p.things);
	if (!ready.done())
		return ready;
	*plan = {
		.folder = folder, .way = way_key(), .complete = p.manifest.complete, .items = {}
	};
	if (wish.remove_others)
		for (const listed_thing &thing : p.things)
			if (thing.kind != backup_kind::multi && !is_in_folder(p, thing))
				plan->items.push_back(plan_removal(thing));
	for (const backup_kind kind :
		{ backup_kind::sample, backup_kind::program, backup_kind::multi })
		for (std::size_t i = 0; i < p.manifest.entries.size(); i++)
			if (p.manifest.entries[i].kind == kind)
				plan->items.push_back(plan_entry(p, i));
	return {};
}

std::string plan_words(const restore_plan &plan)
{
	static constexpr struct {
		restore_step step;
		const char *words;
	} rows[] = {
		{ restore_step::send, own("send %d") },
		{ restore_step::replace, own("replace %d") },
		{ restore_step::remove, own("delete %d on the sampler") },
		{ restore_step::keep, own("keep %d as they are") },
		{ restore_step::cannot, own("leave out %d, which cannot be sent") },
	};
	std::string text;
	for (const auto &row : rows)
		if (const int count = plan.count(row.step))
			text += (text.empty() ? "" : ", ") + format_text(tr(row.words), count);
	text = text.empty() ? tr("The backup is empty.") : text + ".";
	text[0] =
		text[0] >= 'a' && text[0] <= 'z' ? static_cast<char>(text[0] - 'a' + 'A') : text[0];
	if (!plan.complete)
		text += std::string("\n") +
			tr("The backup broke off, and does not hold everything.");
	return text;
}

// ---- Sending ------------------------------------------------------------------------------------------

// A copy of a sample under the sampler's own name for it, listed as a file of the spool while it
// is sent; then the spool is listed again.
class outgoing_file
{
public:
	explicit outgoing_file(const std::string &file) : base(folder + "\\" + file)
	{
		(void)host.files->make_folder(folder.c_str()); // shows when the copy is written
		cleanup_dir(folder.c_str());
	}
	~outgoing_file()
	{
		cleanup_dir(folder.c_str());
		(void)host.files->remove_folder(folder.c_str());
		load_local_samples(nullptr);
	}
	outgoing_file(const outgoing_file &) = delete;

	// "" or why there is none.
	std::string copy(const std::string &from)
	{
		input_file source;
		fresh_file target;
		int read_code = source.measure(from.c_str());
		read_code = read_code ? read_code : source.open(from.c_str());
		if (read_code)
			return read_failure(from, read_code);
		int code = target.open(base + ".wav");
		if (!code)
			code = copy_bytes(source, 0, source.size, target, &read_code);
		if (read_code)
			return read_failure(from, read_code);
		code = code ? code : target.finish_unsynced();
		load_local_samples(folder.c_str());
		return code ? write_failure(base + ".wav", code) : "";
	}

private:
	const std::string folder = current_config_path + "\\outgoing";

public:
	const std::string base;
};

// While it lives, uploads are exact, whatever the user chose for others.
class exact_sending
{
public:
	exact_sending() : wanted(is_s1000_family(row_of_loaded()) && !exact_uploads())
	{
		if (wanted)
			set_exact_uploads(true);
	}
	~exact_sending()
	{
		if (wanted)
			set_exact_uploads(false);
	}
	exact_sending(const exact_sending &) = delete;

private:
	const bool wanted;
};

// Where a name cannot be a file's, the sample goes to the sampler under another one, which no
// sample there has.
static std::string name_on_the_way(const std::string &name)
{
	const std::string plain = file_name_of(name);
	const std::vector<std::string> names = loaded_names();
	const auto is_taken = [&](const std::string &file) {
		return std::ranges::any_of(
			names, [&](const auto &other) { return equal_but_for_case(other, file); });
	};
	std::string file = plain;
	for (int i = 2; plain != name && is_taken(file); i++)
		file = plain.substr(0, 8) + format_text(" %d", i);
	return file;
}

static outcome send_sample(const restore_plan &plan, const restore_item &item)
{
	const outcome ready = have_sample_list();
	if (!ready.done())
		return ready;
	const std::string file = name_on_the_way(item.name);
	outgoing_file outgoing(file);
	const std::string why = outgoing.copy(path_of_entry(plan.folder, item.entry));
	if (!why.empty())
		return { .how = ending::local_failed, .words = why };
	const exact_sending exactly;
	outcome sent = upload_sample(outgoing.base);
	if (!sent.done() || file == item.name)
		return sent;
	if (item.step == restore_step::replace) // now that the new one is there
		sent = delete_sample(item.name);
	return sent.done() ? rename_sample(file, item.name) : sent;
}

// The list behind all programs decides; until then it is stale.
static outcome send_program(const restore_plan &plan, const restore_item &item)
{
	std::string why;
	const auto program = read_entry(plan.folder, item.entry, &why);
	if (!program)
		return { .how = ending::local_failed, .words = why };
	const _sampler_type &model = row_of_loaded();
	if (is_s900(model))
		return upload_program(*program);
	machine_change kept({ step_kind::change_program, item.name, "", -1, program->keygroups });
	const outcome ready = kept.may_go_on() ? have_program_list() : kept.why();
	if (!ready.done())
		return ready;
	auto copy = std::make_unique<_program>(*program); // sending changes it
	box_keeper keeper;
	const line_watch watch;
	forget_stop(); // of earlier work
	model.saveprogram(0, copy.get());
	if (save_once_more && program_outcome.done() && !progress_stopped()) {
		*copy = *program;
		model.saveprogram(0, copy.get());
	}
	outcome result = program_outcome;
	result.told = troubles(keeper.take());
	if (result.done() && progress_stopped())
		result.how = ending::stopped;
	else if (result.done() && watch.dead())
		result.how = ending::no_answer;
	else if (result.done() && !result.told.empty())
		result.how = ending::refused;
	return kept.ended(result);
}

static outcome remove(const restore_item &item)
{
	return item.kind == backup_kind::sample ? delete_sample(item.name)
						: delete_program({ item.name, item.index });
}

static outcome do_step(const restore_plan &plan, const restore_item &item)
{
	if (item.step == restore_step::remove)
		return remove(item);
	if (!is_intact(plan.folder, item.entry))
		return { .how = ending::local_failed,
			.words = tr("its file is missing, or was changed since the backup") };
	return item.kind == backup_kind::sample ? send_sample(plan, item)
						: send_program(plan, item);
}

// ---- What became of it ----------------------------------------------------------------------------------

static std::string what_became_of(
	const restore_plan &plan, const restore_item &item, const std::vector<listed_thing> &things)
{
	const listed_thing *thing = find_thing(things, item.entry, 1);
	if (!thing)
		return tr("the sampler does not list it");
	std::string why;
	const auto program = read_entry(plan.folder, item.entry, &why);
	return program ? program_difference(*program,
				 current_sampler->status
					 ->program[static_cast<std::size_t>(thing->index)])
		       : why;
}

using places = std::vector<std::size_t>; // among the items of a plan

// The programs are looked for in a list that is read anew, whose text tells what arrived. A line
// that is dead is not asked.
static outcome look_at_programs(
	const restore_plan &plan, const places &sent, const outcome &last, work_queue *items)
{
	std::vector<listed_thing> things;
	const bool dead = last.how == ending::no_answer;
	const outcome read = sent.empty() || dead ? outcome{} : read_machine(&things);
	for (const std::size_t place : sent) {
		work_item &item = (*items)[place];
		item.words = read.done() && !dead ? what_became_of(plan, plan.items[place], things)
						  : tr("it is not known whether it arrived");
		item.state = item.words.empty() ? item_state::done : item_state::failed;
	}
	log_failures("Restore", *items);
	return read;
}

// ---- One after the other --------------------------------------------------------------------------------

work_queue items_of(const restore_plan &plan)
{
	work_queue items;
	for (const restore_item &item : plan.items) {
		work_item one = { .name = titled(item.kind, item.name), .words = item.words };
		if (item.step == restore_step::keep || item.step == restore_step::cannot)
			one.state = item_state::skipped;
		if (item.step == restore_step::keep && item.words.empty())
			one.words = tr("as before");
		if (item.kind == backup_kind::sample)
			one.bytes = item.entry.size;
		items.push_back(std::move(one));
	}
	return items;
}

static outcome run_item(const restore_plan &plan, std::size_t place, places *sent)
{
	const restore_item &item = plan.items[place];
	const outcome result = do_step(plan, item);
	if (result.done() && item.kind == backup_kind::program && item.step != restore_step::remove)
		sent->push_back(place);
	return result;
}

// A plan is for the sampler that it was made for.
static outcome may_be_carried_out(const restore_plan &plan)
{
	outcome why;
	if (loaded_model(&why) && plan.way != way_key())
		why = { .how = ending::refused,
			.words = tr("Another sampler is loaded than this restore is for."),
			.caption = "WARNING" };
	return why;
}

outcome carry_out(const restore_plan &plan, work_queue *items, const queue_view *view)
{
	const outcome ready = may_be_carried_out(plan);
	if (!ready.done())
		return ready;
	if (!count_of(*items, item_state::waiting))
		return { .words = tr("Nothing had to be brought to the sampler.") };
	places sent;
	const queue_work work = {
		.title = own("Restoring"),
		.verdict = own("%d of %d were brought to the sampler."),
		.line = own("%d of %d were brought to the sampler."),
		.count = own("%d of %d done"),
		.not_done = own("Not brought to the sampler: "),
		.not_tried = own("Not tried: "),
		.kept = own("What has arrived stays. Nothing half sent is kept."),
		.ready = nullptr,
		.run =
			[&](work_item *item) {
				return run_item(plan,
					static_cast<std::size_t>(item - items->data()), &sent);
			},
		.finish =
			[&](queue_run *run) {
				return look_at_programs(plan, sent, run->last, items);
			},
		.outlives_refusals = true,
	};
	return run_queue(items, work, view);
}

} // namespace velmor
