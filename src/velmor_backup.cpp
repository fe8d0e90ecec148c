// velmor_backup.cpp - all that a sampler holds into a folder, what changed alone
//
// Everything comes into the folder "incoming" first and takes its name there when it is whole.
// What had that name before goes to the folder "earlier", and so does what the sampler no longer
// holds. The manifest is written behind each of these steps: whatever ends the work, it tells of
// files that are there, and a file that it does not tell of is at worst fetched once more.
//
// Of samples of one name a sampler gives the first one alone, whatever asks for them.
//
// Knows nothing of: windows, models.

#include "src/velmor_backup_parts.h"
#include "src/velmor_checksum.h"
#include "src/velmor_files.h"
#include "src/velmor_library.h"
#include "src/velmor_programs.h"
#include "src/waveqx.h"
#include "src/waveqx_file.h"
#include <algorithm>
#include <map>
#include <utility>

namespace velmor
{

// ---- What backup and restore share ------------------------------------------------------------

std::string titled(backup_kind kind, const std::string &name)
{
	return std::string(kind_name(kind)) + " " + name;
}

std::string backup_text(const _program &program)
{
	auto copy = std::make_unique<_program>(program);
	copy_text(copy->name, without_end_blanks(copy->name));
	copy->sampler_type = static_cast<i32>(current_sampler->sampler_type);
	copy->number = copy->index = 0;
	return program_text(*copy);
}

bool is_intact(const std::string &folder, const backup_entry &entry)
{
	u64 size = 0;
	const std::string sum = checksum_of_file(path_of_entry(folder, entry), &size);
	return !sum.empty() && sum == entry.sum && size == entry.size;
}

// A rate is what every list tells that tells more than names.
static std::string facts_of(const _sample &s)
{
	if (!s.sample_rate)
		return "";
	const auto wide = [](u64 value) { return static_cast<unsigned long long>(value); };
	return format_text("%llu words, %llu Hz, pitch %d, %llu to %llu, loop %llu to %llu for "
			   "%llu, mode %d, tune %d %d",
		wide(s.sample_length), wide(s.sample_rate), s.original_pitch,
		wide(s.start_position), wide(s.end_position), wide(s.loop_start), wide(s.loop_end),
		wide(s.loop_times), s.playback_mode, s.semitone_tune, s.fine_tune);
}

// A list that was read without a gap along with another.
static void came_along(known_list *list)
{
	list->was_read = true;
	list->silent = false;
	list->asked_at = host.clock->time_of_day();
	list->way = way_key();
	list->failures = the_line.failures;
}

static outcome read_all_lists(_dev_status *dev, const _sampler_type &model)
{
	// What no sampler tells: what stands there afterwards was read now.
	dev->samples = dev->programs = -1;
	outcome read = model.getmultilist ? read_multi_list() : read_program_list();
	const bool whole = dev->samples >= 0 && dev->programs >= 0;
	dev->samples = std::max(dev->samples, 0);
	dev->programs = std::max(dev->programs, 0);
	if (read.done() && !whole)
		read = { .how = ending::no_answer, .words = silence_words(loaded_reached()) };
	for (known_list *list : { &the_lists.samples, &the_lists.programs })
		if (read.done())
			came_along(list);
	return read;
}

outcome read_machine(std::vector<listed_thing> *things)
{
	outcome why;
	const _sampler_type *model = loaded_model(&why);
	_dev_status *dev = model ? require_dev_status() : nullptr;
	if (!dev)
		return why.done() ? outcome{ .how = ending::local_failed,
			.words = tr("There is no memory for what the sampler holds.") }
				  : why;
	forget_stop(); // of earlier work
	why = read_all_lists(dev, *model);
	if (!why.done())
		return why;
	std::map<std::pair<backup_kind, std::string>, int> numbers;
	const auto add = [&](backup_kind kind, const std::string &name, int index) {
		const int number = ++numbers[{ kind, name }];
		things->push_back({ kind, name, {}, {}, index, number });
		return &things->back();
	};
	for (int i = 0; i < std::min(dev->programs, max_programs); i++)
		add(backup_kind::program, without_end_blanks(dev->program[i].name), i)->text =
			backup_text(dev->program[i]);
	for (int i = 0; i < std::min(dev->samples, max_samples); i++)
		add(backup_kind::sample, dev->sample[i].name, i)->facts = facts_of(dev->sample[i]);
	for (int i = 0; i < std::clamp(dev->multis, 0, max_multis); i++)
		add(backup_kind::multi, dev->multi[i].name, i);
	return progress_stopped() ? outcome{ .how = ending::stopped } : outcome{};
}

const listed_thing *find_thing(
	const std::vector<listed_thing> &things, const backup_entry &entry, int number)
{
	const auto found = std::ranges::find_if(things, [&](const listed_thing &t) {
		return t.kind == entry.kind && t.name == entry.name && t.number == number;
	});
	return found == things.end() ? nullptr : &*found;
}

int number_of(const std::vector<backup_entry> &entries, std::size_t index)
{
	return 1 + static_cast<int>(std::count_if(entries.begin(),
			   entries.begin() + static_cast<std::ptrdiff_t>(index),
			   [&](const backup_entry &e) {
				   return e.kind == entries[index].kind &&
					  e.name == entries[index].name;
			   }));
}

spool_elsewhere::spool_elsewhere(const std::string &where)
	: before(current_config_path), folder(where)
{
	(void)host.files->make_folder(folder.c_str()); // shows when a file is written
	(void)host.files->make_folder((folder + "\\sample").c_str());
	cleanup_dir((folder + "\\sample").c_str());
	current_config_path = folder;
}

spool_elsewhere::~spool_elsewhere()
{
	current_config_path = before;
	cleanup_dir(folder.c_str());
	(void)host.files->remove_folder(folder.c_str());
}

void log_failures(const char *work, const work_queue &items)
{
	for (const work_item &item : items)
		if (item.state == item_state::failed)
			log_line("[I] %s of %s: %s\r\n", work, item.name.c_str(),
				item.words.c_str());
}

// ---- Files of the folder ------------------------------------------------------------------------

static bool file_exists(const std::string &path)
{
	file_info info;
	return host.files->stat(path.c_str(), &info) == 0;
}

static std::string shown_path(const std::string &path)
{
	return host.files->host_path(path.c_str());
}

static outcome not_written(const std::string &path, int code)
{
	return {
		.how = ending::local_failed, .words = write_failure(path, code), .caption = "ERROR"
	};
}

// Under its own name, or the next one that is free, in a folder that keeps all it gets.
static outcome put_aside(
	const std::string &path, const std::string &folder, std::string *now = nullptr)
{
	if (!file_exists(path))
		return {};
	(void)host.files->make_folder(folder.c_str()); // shows at the move
	const std::string file = path.substr(path.rfind('\\') + 1);
	const std::size_t dot = file.rfind('.');
	std::string place = folder + "\\" + file;
	for (int i = 2; file_exists(place); i++)
		place = folder + "\\" + file.substr(0, dot) + format_text(" (%d)", i) +
			file.substr(dot);
	const int code = host.files->rename(path.c_str(), place.c_str());
	if (now && !code)
		*now = place;
	return code ? not_written(place, code) : outcome{};
}

// A name that no entry has, in other letters either, and no file but one of that content.
static std::string free_file(
	const std::string &folder, const backup_manifest &m, const backup_entry &wanted)
{
	const std::string extension = wanted.kind == backup_kind::program ? ".program" : ".wav";
	const std::string plain = file_name_of(wanted.name);
	for (int i = 1;; i++) {
		backup_entry entry = wanted;
		entry.file = plain + (i > 1 ? format_text(" (%d)", i) : "") + extension;
		const bool taken = std::ranges::any_of(m.entries, [&](const backup_entry &e) {
			return e.kind == wanted.kind && equal_but_for_case(e.file, entry.file);
		});
		if (!taken &&
			(!file_exists(path_of_entry(folder, entry)) || is_intact(folder, entry)))
			return entry.file;
	}
}

// ---- The work -------------------------------------------------------------------------------------

struct backup_work {
	std::string folder;
	bool everything = false;
	backup_manifest manifest = {};
	std::vector<listed_thing> things = {};
	work_queue remarks = {}; // what a person should know
	bool unkept = false;     // the manifest could not be written
};

static std::vector<backup_entry>::iterator find_entry(backup_manifest &m, const listed_thing &thing)
{
	int left = thing.number;
	return std::ranges::find_if(m.entries, [&](const backup_entry &e) {
		return e.kind == thing.kind && e.name == thing.name && !--left;
	});
}

static bool is_unchanged(backup_work *w, const listed_thing &thing)
{
	const auto entry = find_entry(w->manifest, thing);
	if (entry == w->manifest.entries.end())
		return false;
	if (thing.kind == backup_kind::multi)
		return true;
	if (thing.kind == backup_kind::program)
		return entry->sum == checksum_of_text(thing.text) && is_intact(w->folder, *entry);
	return !w->everything && entry->facts == thing.facts && is_intact(w->folder, *entry);
}

// Its place among the files, what stood there kept; store puts the content at a path. Then the
// manifest tells of it.
static outcome keep(backup_work *w, const listed_thing &thing, backup_entry fresh,
	const std::function<int(const std::string &path)> &store)
{
	const auto old = find_entry(w->manifest, thing);
	const bool known = old != w->manifest.entries.end();
	fresh.file = known ? old->file : free_file(w->folder, w->manifest, fresh);
	const std::string path = path_of_entry(w->folder, fresh);
	if (!is_intact(w->folder, fresh)) {
		std::string earlier;
		outcome aside = put_aside(path, w->folder + "\\earlier", &earlier);
		if (!aside.done())
			return aside;
		if (const int code = store(path)) {
			if (!earlier.empty()) // or it stays where it is
				(void)host.files->rename(earlier.c_str(), path.c_str());
			return not_written(path, code);
		}
		(void)host.files->sync_folder(path.substr(0, path.rfind('\\')).c_str());
	}
	if (known)
		*old = fresh;
	else
		w->manifest.entries.push_back(fresh);
	return write_manifest(w->folder, w->manifest);
}

static outcome bring_program(backup_work *w, const listed_thing &thing)
{
	backup_entry fresh = { .kind = thing.kind, .name = thing.name };
	fresh.size = thing.text.size();
	fresh.sum = checksum_of_text(thing.text);
	return keep(w, thing, fresh, [&](const std::string &path) {
		return write_whole_file(path, thing.text.data(), thing.text.size());
	});
}

static outcome bring_sample(backup_work *w, const listed_thing &thing)
{
	const spool_elsewhere incoming(w->folder + "\\incoming");
	outcome came = download_sample(thing.name);
	if (!came.done())
		return came;
	const std::string path = wave_path_of(spool_filebase(thing.name.c_str()));
	backup_entry fresh = { .kind = thing.kind, .name = thing.name, .facts = thing.facts };
	fresh.sum = checksum_of_file(path, &fresh.size);
	if (fresh.sum.empty())
		return { .how = ending::local_failed,
			.words =
				format_text(tr("[%s] cannot be read."), shown_path(path).c_str()) };
	return keep(w, thing, fresh, [&](const std::string &place) {
		return host.files->rename(path.c_str(), place.c_str());
	});
}

static outcome bring(backup_work *w, const listed_thing &thing)
{
	if (thing.kind == backup_kind::program)
		return bring_program(w, thing);
	if (thing.kind == backup_kind::sample)
		return bring_sample(w, thing);
	w->manifest.entries.push_back({ .kind = thing.kind, .name = thing.name });
	return {};
}

// What the folder holds already, as far as it is of this sampler. A manifest that is damaged is
// put aside: its files stay, and are known again by their content.
static outcome open_folder(backup_work *w)
{
	outcome read = read_manifest(w->folder, &w->manifest);
	backup_manifest &m = w->manifest;
	const std::string sampler = current_sampler->sampler_description;
	const std::string model =
		get_sampler(static_cast<i32>(current_sampler->sampler_type))->sampler_brand;
	if (read.done() && (m.sampler != sampler || m.model != model))
		return { .how = ending::refused,
			.words = format_text(tr("[%s] holds the backup of '%s', an %s. Choose "
						"another folder for '%s'."),
				shown_path(w->folder).c_str(), m.sampler.c_str(), m.model.c_str(),
				sampler.c_str()),
			.caption = "WARNING" };
	if (read.done())
		return {};
	m = { .sampler = sampler, .model = model };
	if (read.how == ending::refused)
		return {};
	w->remarks.push_back({ .name = "manifest.txt",
		.state = item_state::skipped,
		.words = read.words + " " +
			 tr("It was put into the folder earlier, and everything was looked at "
			    "anew.") });
	return put_aside(manifest_path(w->folder), w->folder + "\\earlier");
}

// Nothing is transferred for a folder that cannot be written.
static outcome make_ready(backup_work *w)
{
	(void)host.files->make_folder(w->folder.c_str()); // shows when the manifest is written
	for (const char *name : { "\\programs", "\\samples" }) {
		(void)host.files->make_folder((w->folder + name).c_str());
		remove_left_files(w->folder + name);
	}
	remove_left_files(w->folder);
	w->manifest.complete = false;
	return write_manifest(w->folder, w->manifest);
}

// ---- Its end ----------------------------------------------------------------------------------------

static bool is_on_sampler(const backup_work &w, std::size_t index)
{
	const std::vector<backup_entry> &entries = w.manifest.entries;
	return find_thing(w.things, entries[index], number_of(entries, index)) != nullptr;
}

// The manifest tells of what the sampler holds, in its order; the rest is earlier.
static outcome close_folder(backup_work *w)
{
	std::vector<backup_entry> entries;
	for (const listed_thing &thing : w->things) {
		const auto entry = find_entry(w->manifest, thing);
		if (entry != w->manifest.entries.end())
			entries.push_back(*entry);
	}
	std::vector<std::string> gone;
	for (std::size_t i = 0; i < w->manifest.entries.size(); i++)
		if (!is_on_sampler(*w, i))
			gone.push_back(path_of_entry(w->folder, w->manifest.entries[i]));
	w->manifest.entries = entries;
	w->manifest.complete = true;
	const outcome written = write_manifest(w->folder, w->manifest);
	for (const std::string &path : gone)
		if (written.done() && !path.empty())
			(void)put_aside(path, w->folder + "\\earlier"); // or it stays where it is
	return written;
}

static bool needs_closing(const backup_work &w)
{
	bool gone = false;
	for (std::size_t i = 0; i < w.manifest.entries.size(); i++)
		gone = gone || !is_on_sampler(w, i);
	return gone || !w.manifest.complete;
}

static void remark_twins(backup_work *w)
{
	for (const listed_thing &thing : w->things)
		if (thing.kind == backup_kind::sample && thing.number == 2)
			w->remarks.push_back({ .name = titled(thing.kind, thing.name),
				.state = item_state::skipped,
				.words = format_text(
					tr("The sampler holds several samples called '%s' and "
					   "gives the first alone. Rename the others on its "
					   "panel."),
					thing.name.c_str()) });
	std::erase_if(w->things, [](const listed_thing &thing) {
		return thing.kind == backup_kind::sample && thing.number > 1;
	});
}

// ---- One after the other ----------------------------------------------------------------------------

// A sample is as large as it was, as long as nobody knows better.
static work_item item_of(backup_work *w, const listed_thing &thing)
{
	work_item item = { .name = titled(thing.kind, thing.name) };
	const auto entry = find_entry(w->manifest, thing);
	if (thing.kind == backup_kind::sample && entry != w->manifest.entries.end())
		item.bytes = entry->size;
	if (is_unchanged(w, thing)) {
		item.state = item_state::skipped;
		item.words = tr("as before");
	}
	return item;
}

// What an earlier try brought is as it was since then.
static void keep_brought(work_queue *items, const work_queue &earlier)
{
	for (work_item &item : *items) {
		const auto brought = std::ranges::find_if(earlier, [&](const work_item &e) {
			return e.name == item.name && e.state == item_state::done;
		});
		if (item.state == item_state::skipped && brought != earlier.end())
			item = *brought;
	}
}

static void list_items(backup_work *w, work_queue *items)
{
	const work_queue earlier = std::exchange(*items, {});
	for (const listed_thing &thing : w->things)
		items->push_back(item_of(w, thing));
	keep_brought(items, earlier);
	items->insert(items->end(), w->remarks.begin(), w->remarks.end());
}

// A driver tells the cause in one box and what came of it in another; an item has one line.
static outcome in_one_line(outcome one)
{
	if (one.done() || one.how == ending::stopped || one.told.size() < 2)
		return one;
	one.words.clear();
	for (const kept_box &box : one.told)
		one.words += (one.words.empty() ? "" : " ") + box.text;
	one.told.clear();
	return one;
}

// A folder that takes no manifest takes nothing else: the same trouble once more ends the work
// before anything is transferred in vain.
static outcome bring_item(backup_work *w, const listed_thing &thing, work_item *item)
{
	const outcome kept = w->unkept ? write_manifest(w->folder, w->manifest) : outcome{};
	if (!kept.done())
		return kept;
	const outcome came = in_one_line(bring(w, thing));
	const auto entry = find_entry(w->manifest, thing);
	if (came.done() && thing.kind == backup_kind::sample)
		item->bytes = entry->size;
	const outcome written = came.how == ending::local_failed
					? write_manifest(w->folder, w->manifest)
					: outcome{};
	w->unkept = !written.done();
	return w->unkept ? written : came;
}

static outcome end_backup(backup_work *w, const work_queue &items)
{
	log_failures("Backup", items);
	const bool whole =
		!count_of(items, item_state::failed) && !count_of(items, item_state::waiting);
	return whole && !w->manifest.complete ? close_folder(w) : outcome{};
}

static outcome bring_all(backup_work *w, work_queue *items, const queue_view *view)
{
	const queue_work work = {
		.title = own("Backing up"),
		.verdict = own("%d of %d came into the backup."),
		.line = own("%d of %d came into the backup."),
		.count = own("%d of %d are in the backup"),
		.not_done = own("Not in the backup: "),
		.not_tried = own("Not tried: "),
		.kept = own("What is there stays; the next backup goes on from here."),
		.ready = nullptr,
		.run =
			[&](work_item *item) {
				return bring_item(w, w->things[item - items->data()], item);
			},
		.finish = [&](queue_run *) { return end_backup(w, *items); },
		.outlives_refusals = true,
	};
	return run_queue(items, work, view);
}

// What was there before counts, too.
static outcome verdict_of(const backup_work &w, const work_queue &items, outcome verdict)
{
	const int came = count_of(items, item_state::done);
	const int there = count_of(items, item_state::skipped) - static_cast<int>(w.remarks.size());
	verdict.line =
		format_text(tr("%d of %d are in the backup: %d came now, %d were as before."),
			came + there, static_cast<int>(w.things.size()), came, there);
	if (!verdict.done())
		verdict.line += std::string(" ") +
				tr("What is there stays; the next backup goes on from here.");
	const std::size_t rest = std::min(verdict.words.find('\n'), verdict.words.size());
	verdict.words = verdict.line + verdict.words.substr(rest);
	for (const work_item &remark : w.remarks)
		verdict.words += "\n" + remark.words;
	return verdict;
}

outcome backup_sampler(const std::string &folder, const backup_wish &wish, work_queue *told,
	const queue_view *view)
{
	outcome last;
	if (!loaded_model(&last))
		return last;
	backup_work w = { .folder = folder, .everything = wish.everything };
	last = open_folder(&w);
	if (last.done())
		last = read_machine(&w.things);
	if (!last.done())
		return last;
	remark_twins(&w);
	work_queue own_items;
	work_queue *items = told ? told : &own_items;
	list_items(&w, items);
	const bool moves = count_of(*items, item_state::waiting) > 0;
	if (moves || needs_closing(w))
		last = make_ready(&w);
	if (last.done() && !moves)
		last = end_backup(&w, *items);
	if (!last.done())
		return last;
	return verdict_of(w, *items, moves ? bring_all(&w, items, view) : last);
}

} // namespace velmor
