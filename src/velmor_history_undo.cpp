// velmor_history_undo.cpp - a step of the history is put back on the sampler
//
// By the workflows and by the operations of the model's row, as a user would: a renamed thing gets
// its name again, a new one is deleted, and what was deleted or replaced is sent from where it was
// kept. Each of these is a change of the sampler and keeps what it replaces. The place in a list may
// be another one afterwards.
//
// A step that does not fit what the sampler holds now is refused in words and counts as put back,
// so that the next one can be. One that broke off in the middle is the next again, and then goes
// over what it sent before: half a sample of the name is not the sample.
//
// Knows nothing of: windows, models but through their rows.

#include "src/akaiprograms.h"
#include "src/velmor_history.h"
#include "src/velmor_library.h"
#include "src/velmor_programs.h"
#include "src/waveqx.h"
#include "src/waveqx_file.h"
#include <algorithm>
#include <utility>

namespace velmor
{

static std::string quoted(const std::string &name)
{
	return "'" + name + "'";
}

static bool contains(const std::vector<std::string> &names, const std::string &name)
{
	return std::find(names.begin(), names.end(), name) != names.end();
}

static outcome local_failure(const std::string &words)
{
	return { .how = ending::local_failed,
		.words = words,
		.caption = "ERROR",
		.line = tr("Nothing was put back: what was kept cannot be read.") };
}

// ---- What was kept -----------------------------------------------------------------------------------

static constexpr u64 largest_text = 8u << 20;

// "" or why not.
static std::string read_text(const std::string &path, std::string *text)
{
	input_file file;
	int code = file.measure(path.c_str());
	code = code ? code : file.open(path.c_str());
	if (code)
		return read_failure(path, code);
	if (file.size > largest_text)
		return format_text(tr("%s is too large."), path.c_str());
	text->resize(static_cast<std::size_t>(file.size));
	code = file.read(0, text->data(), text->size());
	return code ? read_failure(path, code) : "";
}

static int hex_digit(char c)
{
	return c >= '0' && c <= '9' ? c - '0' : c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// Two digits a byte, with a blank between them; a line each.
static bool blocks_from_text(std::string_view text, raw_blocks *blocks)
{
	std::vector<u8> block;
	for (std::size_t at = 0; at + 2 < text.size(); at += 3) {
		const int high = hex_digit(text[at]), low = hex_digit(text[at + 1]);
		const char behind = text[at + 2];
		if (high < 0 || low < 0 || (behind != ' ' && behind != '\n'))
			return false;
		block.push_back(static_cast<u8>(high * 16 + low));
		if (behind == '\n')
			blocks->push_back(std::exchange(block, {}));
	}
	return block.empty() && !blocks->empty() && text.size() % 3 == 0;
}

static std::string read_blocks(
	const history_step &step, const kept_thing &thing, raw_blocks *blocks)
{
	if (thing.bytes.empty())
		return "";
	const std::string path = step_folder(step) + "\\" + thing.bytes;
	std::string text;
	const std::string why = read_text(path, &text);
	if (!why.empty() || blocks_from_text(text, blocks))
		return why;
	return format_text(tr("%s is damaged."), host.files->host_path(path.c_str()).c_str());
}

static std::string read_program(
	const history_step &step, const kept_thing &thing, std::unique_ptr<_program> *program)
{
	const std::string path = step_folder(step) + "\\" + thing.file;
	std::string text;
	const std::string why = read_text(path, &text);
	if (!why.empty())
		return why;
	kept_lines unknown;
	program_refusal refused;
	*program = read_program_text(text, &unknown, &refused);
	return *program ? ""
			: format_text(tr("[%s], line %d: %s"),
				  host.files->host_path(path.c_str()).c_str(), refused.line,
				  refused.reason.c_str());
}

// ---- Samples -------------------------------------------------------------------------------------------

// Some drivers take a file only where the spool lists it.
class listed_as_local
{
public:
	listed_as_local(const std::string &name, const std::string &path)
	{
		_local_sample local = {};
		copy_text(local.displayname, name);
		copy_text(local.pathname, path);
		local_sample.push_back(local);
	}
	~listed_as_local() { local_sample.pop_back(); }
	listed_as_local(const listed_as_local &) = delete;
};

struct sample_sender {
	const _sampler_type &model;
	const kept_family &family;
	const std::string &name, &path; // without extension
	const raw_blocks &header;
	std::vector<std::string> before;
};

// What the sampler calls it before it has its name.
static std::string arrived_as(const sample_sender &s)
{
	const std::vector<std::string> now = loaded_names();
	if (contains(now, s.name))
		return s.name;
	for (const std::string &name : now)
		if (!contains(s.before, name))
			return name;
	return "";
}

// Behind the words: the header, or at least the name.
static outcome finish_sample(const sample_sender &s, outcome read)
{
	const std::string now = arrived_as(s);
	if (!read.done() || now.empty())
		return read;
	if (s.family.write_header && !s.header.empty())
		(void)s.family.write_header(listed_sample(now), s.header);
	else if (now != s.name && s.model.renamesample)
		s.model.renamesample(
			control_channel(), exclusive_channel(), now.c_str(), s.name.c_str());
	else
		return read;
	return read_sample_list();
}

static outcome send_words(const sample_sender &s)
{
	const listed_as_local entry(s.path.substr(s.path.rfind('\\') + 1), s.path);
	box_keeper keeper;
	forget_stop(); // of earlier work
	if (s.family.send_sample)
		(void)s.family.send_sample(s.path, s.header);
	else
		s.model.uploadsample(s.path.c_str());
	const bool stopped = progress_stopped();
	std::vector<kept_box> told = troubles(keeper.take());
	const outcome read = finish_sample(s, read_sample_list());
	outcome result = { .told = told };
	if (!read.done())
		result = unknown_end(
			read, format_text(tr("%s was put back"), quoted(s.name).c_str()));
	else if (stopped)
		result.how = ending::stopped;
	else if (!told.empty() || !contains(loaded_names(), s.name))
		result.how = ending::refused;
	if (result.how == ending::refused && told.empty())
		result.words =
			format_text(tr("The sampler does not list %s, so it did not take it back."),
				quoted(s.name).c_str());
	return result;
}

static outcome send_sample(const history_step &step, const kept_thing &thing)
{
	outcome why;
	const _sampler_type *model = loaded_model(&why);
	const kept_family *family = model ? kept_family_of(*model) : nullptr;
	raw_blocks header;
	const std::string damage = read_blocks(step, thing, &header);
	if (!damage.empty())
		return local_failure(damage);
	const std::string file = step_folder(step) + "\\sample\\" + thing.file;
	file_info info = {};
	if (const int code = host.files->stat(file.c_str(), &info))
		return local_failure(read_failure(file, code));
	if (!family || !(family->send_sample || model->uploadsample))
		return why.done() ? offers_upload() : why;
	machine_change change({ .kind = step_kind::upload_sample, .name = thing.name });
	const outcome ready = change.may_go_on() ? have_sample_list() : change.why();
	if (!ready.done())
		return ready;
	const std::string path = file.substr(0, file.rfind('.'));
	return change.ended(
		send_words({ *model, *family, thing.name, path, header, loaded_names() }));
}

// ---- Programs -------------------------------------------------------------------------------------------

static int place_of_program(const std::string &name)
{
	const std::vector<std::string> names = loaded_programs();
	const auto found = std::find(names.begin(), names.end(), name);
	return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

// A program that has grown is made anew where the sampler makes programs: no request shortens it.
static void save_record(
	const _sampler_type &model, const kept_family &family, _program *program, int held)
{
	const int place = place_of_program(program->name);
	if (place >= 0 && held > program->keygroups && family.creates_programs &&
		model.deleteprogram) {
		model.deleteprogram(place);
		if (!program_outcome.done())
			return;
	}
	const auto before = std::make_unique<_program>(*program);
	model.saveprogram(0, program);
	if (save_once_more && program_outcome.done() && !progress_stopped()) {
		*program = *before;
		model.saveprogram(0, program);
	}
}

static outcome judge_program(
	const std::string &name, bool sent, const std::vector<kept_box> &told, bool stopped)
{
	const outcome read = read_programs_again();
	if (!read.done())
		return unknown_end(read, format_text(tr("%s was put back"), quoted(name).c_str()));
	outcome result = { .told = told };
	if (stopped)
		result.how = ending::stopped;
	else if (!sent || place_of_program(name) < 0)
		result.how = ending::refused;
	if (result.how == ending::refused && told.empty())
		result.words =
			format_text(tr("The sampler did not take %s back."), quoted(name).c_str());
	return result;
}

static outcome send_program(const history_step &step, const kept_thing &thing)
{
	outcome why;
	const _sampler_type *model = loaded_model(&why);
	const kept_family *family = model ? kept_family_of(*model) : nullptr;
	std::unique_ptr<_program> program;
	raw_blocks blocks;
	std::string damage = read_program(step, thing, &program);
	if (damage.empty())
		damage = read_blocks(step, thing, &blocks);
	if (!damage.empty())
		return local_failure(damage);
	if (!family)
		return why;
	machine_change change({ .kind = step_kind::change_program, .name = thing.name });
	const outcome ready = change.may_go_on() ? have_program_list() : change.why();
	if (!ready.done())
		return ready;
	box_keeper keeper;
	forget_stop(); // of earlier work
	copy_text(program->name, thing.name);
	begin_program_operation();
	bool sent = true;
	if (family->write_program && !blocks.empty())
		sent = family->write_program(place_of_program(thing.name), blocks);
	else
		save_record(*model, *family, program.get(), change.held_keygroups());
	sent = sent && program_outcome.done();
	const bool stopped = progress_stopped();
	return change.ended(judge_program(thing.name, sent, troubles(keeper.take()), stopped));
}

// ---- Steps ------------------------------------------------------------------------------------------------

static bool about_programs(const history_step &step)
{
	return step.kind >= step_kind::rename_program;
}

static bool renames(const history_step &step)
{
	return step.kind == step_kind::rename_sample || step.kind == step_kind::rename_program;
}

static bool deletes(const history_step &step)
{
	return step.kind == step_kind::delete_sample || step.kind == step_kind::delete_program;
}

static std::vector<std::string> listed(const history_step &step)
{
	return about_programs(step) ? loaded_programs() : loaded_names();
}

static outcome does_not_fit(const std::string &words)
{
	return { .how = ending::refused,
		.words = format_text(tr("%s Nothing was put back."), words.c_str()),
		.line = tr("Nothing was put back.") };
}

static outcome is_there_again(const history_step &step)
{
	return does_not_fit(
		format_text(tr("The sampler has a %s again."), quoted(step.name).c_str()));
}

// The name is taken, and not by what an undo that did not end has sent.
static bool is_in_the_way(const history_step &step)
{
	return step.state != step_state::half && contains(listed(step), step.name);
}

static outcome rename_back(const history_step &step)
{
	const std::string now = step.came.empty() ? step.new_name : step.came.front();
	if (!contains(listed(step), now))
		return does_not_fit(
			format_text(tr("%s is not on the sampler any more."), quoted(now).c_str()));
	if (contains(listed(step), step.name))
		return is_there_again(step);
	return about_programs(step) ? rename_program({ .name = now, .index = -1 }, step.name)
				    : rename_sample(now, step.name);
}

// Where the machine's own bytes were kept, a renamed program is sent as it was, and the renamed one
// deleted: every byte comes back, and a renaming would endanger what stands behind.
static bool comes_whole(const history_step &step)
{
	return step.kind == step_kind::rename_program && !step.there.empty() &&
	       !step.there.front().bytes.empty();
}

static bool is_there(const history_step &step, const std::string &name)
{
	return std::ranges::any_of(
		step.there, [&](const kept_thing &thing) { return thing.name == name; });
}

// What the step brought goes.
static outcome take_away(const history_step &step)
{
	for (const std::string &name : step.came) {
		if (is_there(step, name) || !contains(listed(step), name))
			continue;
		const outcome gone = about_programs(step)
					     ? delete_program({ .name = name, .index = -1 })
					     : delete_sample(name);
		if (!gone.done())
			return gone;
	}
	return {};
}

static outcome send_all(const history_step &step)
{
	for (const kept_thing &thing : step.there) {
		// What a renaming may have gone over, and has not.
		const bool behind = renames(step) && thing.name != step.name;
		if (behind && contains(listed(step), thing.name))
			continue;
		outcome sent = thing.program ? send_program(step, thing) : send_sample(step, thing);
		if (!sent.done())
			return sent;
	}
	return {};
}

static outcome go_back(const history_step &step)
{
	const outcome ready = about_programs(step) ? have_program_list() : have_sample_list();
	if (!ready.done())
		return ready;
	if (deletes(step) && is_in_the_way(step))
		return is_there_again(step);
	if (!renames(step) && step.there.empty() && step.came.empty())
		return does_not_fit(tr("Of this step nothing was kept."));
	if (renames(step) && !comes_whole(step))
		return rename_back(step);
	if (renames(step) && is_in_the_way(step))
		return is_there_again(step);
	const outcome first = renames(step) ? send_all(step) : take_away(step);
	if (!first.done())
		return first;
	return renames(step) ? take_away(step) : send_all(step);
}

static bool belongs_here(const history_step &step)
{
	const _sampler_type *model =
		current_sampler ? get_sampler(static_cast<i32>(current_sampler->sampler_type))
				: nullptr;
	return model && step.model == model->sampler_brand &&
	       step.sampler == current_sampler->sampler_description;
}

// What it is from now on is written down.
static void mark(history_step step, step_state state)
{
	step.state = state;
	const std::string why = write_step(&step);
	if (!why.empty())
		log_line("[W] The history could not be written: %s\r\n", why.c_str());
}

static int newest_number()
{
	const std::vector<history_step> &steps = history_steps();
	return steps.empty() ? 0 : steps.back().number;
}

outcome put_step_back(const history_step &given)
{
	history_step step = given; // the list changes meanwhile
	if (!step.damage.empty())
		return { .how = ending::local_failed,
			.words = format_text(tr("The text of this step cannot be used. %s"),
				step.damage.c_str()) };
	if (!belongs_here(step))
		return { .how = ending::refused,
			.words = format_text(
				tr("This was kept of '%s', a %s, and another sampler is "
				   "loaded."),
				step.sampler.c_str(), step.model.c_str()) };
	if (!step.cannot.empty() && step.there.empty())
		return { .how = ending::refused, .words = step.cannot };
	log_line("[I] Putting back on the sampler: %s\r\n", step_words(step).c_str());
	const putting_back undo(step.folder);
	const int before = newest_number();
	outcome result = go_back(step);
	const bool over = result.done() || result.line == tr("Nothing was put back.");
	// Whatever changes the sampler is a step, where steps are kept.
	const bool begun = !the_history.on || newest_number() > before;
	if (step.state != step_state::put_back && (over || begun))
		mark(step, over ? step_state::undone : step_state::half);
	if (result.done()) {
		result.words.clear();
		result.line = format_text(
			tr("Put back on the sampler: %s."), step_words(step, true).c_str());
	}
	return result;
}

const history_step *undoable_step()
{
	const std::vector<history_step> &steps = history_steps();
	for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
		const bool open = step->state == step_state::begun ||
				  step->state == step_state::done ||
				  step->state == step_state::half;
		const bool kept = !step->there.empty() || !step->came.empty() || renames(*step);
		if (step->damage.empty() && step->cannot.empty() && open && kept &&
			belongs_here(*step))
			return &*step;
	}
	return nullptr;
}

outcome undo_on_sampler()
{
	const history_step *step = undoable_step();
	return step ? put_step_back(*step)
		    : outcome{ .how = ending::refused,
			      .words = tr("There is nothing to put back on the sampler.") };
}

} // namespace velmor
