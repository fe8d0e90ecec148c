// velmor_multis.cpp - the multi view: the multis of the loaded sampler, by name
//
// A sampler is read anew each time, since its own panel may have changed it.
//
// Knows nothing of: models, toolkits.

#include "src/controls.h"
#include "src/velmor.h"
#include "src/velmor_window.h"
#include <algorithm>

namespace velmor
{

// Read everything that a multi names, in the order in which the operations build on each
// other. A slot that the model lacks is left out.
static void read_multis(const _sampler_type &model, _dev_status *dev)
{
	const u8 control = static_cast<u8>(current_sampler->sampler_sysex);
	const u8 exclusive = static_cast<u8>(current_sampler->sampler_sysex_channel);
	for (list_operation read :
		{ model.getstatus, model.getsamplelist, model.getproglist, model.getmultilist })
		if (read && !close_requested())
			read(control, exclusive, dev);
}

void show_multi_setup()
{
	host.ui->show(window_multis, 0, true);
	if (!current_sampler) {
		show_box("INFO", "You must load a sampler first...");
		return;
	}
	const _sampler_type *model = get_sampler(static_cast<i32>(current_sampler->sampler_type));
	if (!model) {
		show_box("INFO", "Invalid sampler type");
		return;
	}
	if (!model->getmultilist) {
		show_box("FATAL", "No Sampler loaded/Function not supported by Sampler");
		return;
	}
	_dev_status *dev = require_dev_status();
	if (!dev)
		return;
	read_multis(*model, dev);
	log_line("[D] Found %d Multis on Sampler\r\n", dev->multis);
	std::vector<std::string> names;
	for (int i = 0; i < std::clamp(dev->multis, 0, max_multis); i++) {
		log_line("Loaded Multi[%d]: [%s]\r\n", i, dev->multi[i].name);
		names.emplace_back(dev->multi[i].name);
	}
	host.ui->set_list(window_multis, multis_list, names);
	if (!names.empty())
		host.ui->select(window_multis, multis_list, 0);
}

} // namespace velmor
