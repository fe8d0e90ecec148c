// velmor_status.cpp - the foot of every window: how the sampler is reached, what was done last, Undo
//
// Texts are set when they change, and only in windows that were opened: a dialog that nobody
// has asked for is not made for its status line.
//
// Knows nothing of: toolkits, models.

#include "src/velmor_history.h"
#include "src/velmor_window.h"

namespace velmor
{

static constexpr int windows_with_status[] = { window_main, window_settings, window_sampler,
	window_usb, window_multis, window_samples, window_programs, window_panel, window_midi_files,
	window_history, window_backup, window_self_test };

// The last outcome, as every window shows it.
struct last_outcome {
	std::string text;
	text_role role = text_role::quiet;
};
static last_outcome shown_outcome;

void forget_status()
{
	shown_outcome = {};
}

void update_status()
{
	const line_report line = report_line();
	for (const int window : windows_with_status) {
		if (!was_opened(window))
			continue;
		host.ui->set_text(window, status_line, line.text.c_str());
		host.ui->set_role(window, status_line, line.role);
		host.ui->set_text(window, status_outcome, shown_outcome.text.c_str());
		host.ui->set_role(window, status_outcome, shown_outcome.role);
		host.ui->show(window, status_undo, can_undo());
		host.ui->show(window, status_undo_sampler, undoable_step() != nullptr);
	}
	update_sample_page();
	update_program_page();
	update_multi_page();
	update_history_page();
}

static text_role role_of(ending how)
{
	if (how == ending::done)
		return text_role::good;
	return how == ending::stopped ? text_role::careful : text_role::failed;
}

static std::string first_line(const std::string &text)
{
	return text.substr(0, text.find('\n'));
}

void show_outcome(const outcome &result)
{
	std::string line = result.line.empty() ? first_line(result.words) : result.line;
	if (line.empty() && !result.told.empty())
		line = first_line(result.told.back().text);
	if (!line.empty())
		shown_outcome = { line, role_of(result.how) };
	if (!close_requested())
		update_status();
	for (const kept_box &box : result.told)
		show_box(box.caption.c_str(), "%s", box.text.c_str());
	// Who is closing the program has what the sampler is left with to read, and no more.
	if (!result.words.empty() && !close_requested())
		show_box(result.caption.c_str(), "%s", result.words.c_str());
}

void say_line(const std::string &line, text_role role)
{
	shown_outcome = { line, role };
}

// ---- Lists of the sampler ------------------------------------------------------------------------

static std::string heading_of(const list_controls &where, const known_list &known, int count)
{
	const std::string at = clock_text(known.asked_at);
	const std::string many =
		format_text(tr("%s · read %s"), counted(count, where.what).c_str(), at.c_str());
	if (known.silent)
		return format_text(tr("not read · asked %s"), at.c_str());
	if (known.state() == freshness::never)
		return tr("not read yet");
	return known.state() == freshness::read
		       ? many
		       : format_text(tr("%s, may have changed"), many.c_str());
}

void show_list_knowledge(const list_controls &where, const known_list &known, int count)
{
	// What was wrong with the way that a list was asked on is no news of another way.
	const bool silent = known.silent && known.way == way_key();
	list_state state = list_state::fresh;
	std::string words;
	if (silent) {
		state = list_state::silent;
		words = format_text(tr("%s What it holds is not known, so nothing is sent to it."),
			known.words.c_str());
	} else if (known.silent || known.state() == freshness::never) {
		state = list_state::unread;
		words = tr("Not read yet from this sampler. Refresh reads it.");
	} else if (known.state() == freshness::stale) {
		state = list_state::stale;
	} else if (!count) {
		state = list_state::empty;
	}
	host.ui->set_list_state(where.window, where.list, state, words.c_str());
	host.ui->show(where.window, where.retry, silent);
	host.ui->set_text(where.window, where.heading, heading_of(where, known, count).c_str());
	const bool good = known.state() == freshness::read && !known.silent;
	host.ui->set_role(
		where.window, where.heading, good ? text_role::quiet : text_role::careful);
}

// ---- Rows --------------------------------------------------------------------------------------------

static void undo()
{
	const outcome result = undo_last();
	show_spool();
	show_outcome(result);
}

// clang-format off
static constexpr caption_row status_captions[] = {
	// window, control, caption, tooltip, empty
	{ 0, status_line,    own("Sampler and connection"), own("How the sampler is reached, and whether it answered last"), nullptr },
	{ 0, status_outcome, own("Last outcome"), nullptr, nullptr },
	{ 0, status_undo,    own("Undo"), own("Put back what was deleted, renamed or edited on this computer last"), nullptr },
	{ 0, status_undo_sampler, own("Undo on the sampler"), own("Put back what was deleted, renamed or changed on the sampler last"), nullptr },
};
static constexpr command_row status_commands[] = {
	{ 0, status_undo, undo, alone },
	{ 0, status_undo_sampler, undo_last_on_sampler, alone },
};
// clang-format on

constinit const window_rows status_rows = { status_captions, status_commands };

} // namespace velmor
