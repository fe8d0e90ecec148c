// ctl_machine.cpp - verbs about all that a sampler holds: backup, restore, undo

#include "programs/ctl.h"
#include "src/velmor_backup.h"
#include "src/velmor_history.h"

namespace velmor
{

static std::string folder_of(const ctl_call &call)
{
	return host.files->system_path(call.words[0].c_str());
}

static const char *name_of(item_state state)
{
	return state == item_state::done      ? "done"
	       : state == item_state::skipped ? "skipped"
	       : state == item_state::failed  ? "failed"
					      : "waiting";
}

// What became of each, one line of JSON; the words of the whole follow.
static int tell_items(const outcome &result, const work_queue &items)
{
	for (const work_item &item : items) {
		ctl_object object;
		object.text("name", item.name).text("ended", name_of(item.state));
		if (!item.words.empty())
			object.text("words", item.words);
		ctl_print(object, "");
	}
	return ctl_tell("", result);
}

int ctl_backup(const ctl_call &call)
{
	work_queue items;
	const outcome result =
		backup_sampler(folder_of(call), { .everything = call.has("--everything") }, &items);
	return tell_items(result, items);
}

// ---- And back -------------------------------------------------------------------------------------

static const char *name_of(restore_step step)
{
	static constexpr const char *names[] = { "keep", "send", "replace", "remove", "cannot" };
	return names[static_cast<int>(step)];
}

static void print_plan(const restore_plan &plan)
{
	for (const restore_item &item : plan.items) {
		ctl_object object;
		object.text("step", name_of(item.step))
			.text("kind", kind_name(item.kind))
			.text("name", item.name);
		if (!item.words.empty())
			object.text("words", item.words);
		ctl_print(object, std::string(name_of(item.step)) + "\t" + kind_name(item.kind) +
					  "\t" + item.name);
	}
	ctl_say(plan_words(plan));
}

static bool changes_nothing(const restore_plan &plan)
{
	return !plan.count(restore_step::send) && !plan.count(restore_step::replace) &&
	       !plan.count(restore_step::remove);
}

int ctl_restore(const ctl_call &call)
{
	restore_plan plan;
	const outcome planned = plan_restore(folder_of(call),
		{ .everything = call.has("--everything"),
			.remove_others = call.has("--remove-others") },
		&plan);
	if (!planned.done())
		return ctl_tell("", planned);
	print_plan(plan);
	if (call.has("--plan") || changes_nothing(plan))
		return exit_done;
	if (!ask_box("WARNING", "Do it now?"))
		return ctl_tell("", { .how = ending::refused, .words = "Nothing was sent." });
	work_queue items;
	const outcome result = carry_out(plan, &items);
	return tell_items(result, items);
}

// ---- One step back ----------------------------------------------------------------------------------

int ctl_undo(const ctl_call &)
{
	return ctl_tell("", undo_on_sampler());
}

} // namespace velmor
