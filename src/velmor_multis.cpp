// velmor_multis.cpp - the multi view: the multis of the loaded sampler, by name
//
// A sampler is read anew each time, since its own panel may have changed it.
//
// Knows nothing of: models, toolkits.

#include "src/velmor_multis.h"
#include "src/velmor_window.h"
#include <algorithm>

namespace velmor
{

static constexpr list_controls multi_controls = {
	.window = window_multis,
	.list = multis_list,
	.heading = multis_heading,
	.retry = multis_retry,
	.what = noun::multi,
};

static std::vector<std::string> multi_names()
{
	std::vector<std::string> names;
	const _dev_status *dev = current_sampler ? current_sampler->status : nullptr;
	for (int i = 0; dev && i < std::clamp(dev->multis, 0, max_multis); i++)
		names.emplace_back(dev->multi[i].name);
	return names;
}

static void show_multis(const std::vector<std::string> &names)
{
	host.ui->set_list(window_multis, multis_list, names);
	if (!names.empty())
		host.ui->select(window_multis, multis_list, 0);
	update_multi_page();
}

void update_multi_page()
{
	if (was_opened(window_multis))
		show_list_knowledge(
			multi_controls, the_lists.multis, static_cast<int>(multi_names().size()));
}

void empty_multi_page()
{
	if (was_opened(window_multis))
		show_multis({});
}

static void log_multis(const std::vector<std::string> &names)
{
	log_line("[D] Found %d Multis on Sampler\r\n", static_cast<int>(names.size()));
	for (int i = 0; i < static_cast<int>(names.size()); i++)
		log_line("Loaded Multi[%d]: [%s]\r\n", i,
			names[static_cast<std::size_t>(i)].c_str());
}

void show_multi_setup()
{
	open_window(window_multis);
	host.ui->set_reason(window_multis, multis_download,
		tr("Multis stay in the sampler: there is nothing here that could keep one"));
	const outcome offered = current_sampler
					? offers_list(&_sampler_type::getmultilist)
					: outcome{ .how = ending::refused,
						  .words = "You must load a sampler first..." };
	if (!offered.done()) {
		show_outcome(offered);
		return;
	}
	if (!may_lose_edits(false))
		return;
	outcome read = read_multi_list();
	if (close_requested())
		return;
	const std::vector<std::string> names = multi_names();
	log_multis(names);
	show_multis(names);
	// What could not be read is told in place of the list.
	read.words.clear();
	read.line = read.done() ? "" : tr("The sampler's multis were not read.");
	show_outcome(read);
}

// The button is there and never works.
static void download_nothing() {}

// ---- Rows ------------------------------------------------------------------------------------

// clang-format off
static constexpr caption_row multis_captions[] = {
	// window        control         caption, tooltip, empty
	{ window_multis, 0,              "VELMOR Manage Multis", nullptr, nullptr },
	{ window_multis, multis_list,    own("Multis"), own("The multis in the sampler's memory"), own("No multis. Only an S5000 or S6000 tells what multis it holds.") },
	{ window_multis, multis_search,  own("Search multis"), own("Show only names that contain these letters"), own("Search") },
	{ window_multis, multis_heading, own("State of the list"), own("How many multis, and when they were read"), nullptr },
	{ window_multis, multis_retry,   own("Try again"), own("Ask the sampler once more"), nullptr },
	{ window_multis, multis_download, "Download this Multi", nullptr, nullptr },
	{ window_multis, multis_refresh, "&Refresh", own("Read the sampler anew"), nullptr },
	{ window_multis, control_cancel, "&Cancel", own("Close this window"), nullptr },
};
static constexpr command_row multis_commands[] = {
	{ window_multis, multis_refresh, show_multi_setup,           alone  },
	{ window_multis, multis_download, download_nothing,          alone  },
	{ window_multis, multis_retry,   show_multi_setup,           alone  },
	{ window_multis, control_cancel, hide_window<window_multis>, always },
};
// clang-format on

constinit const window_rows multis_rows = { multis_captions, multis_commands };

} // namespace velmor
