// fuzz_usb.cpp - answers of USB samplers: whatever comes, nothing is read or written outside
//
// The first byte chooses the model and the operation; from E8 on the front panel of one, from F8
// on a look at the bus. The rest are the answers.

#include "src/akais5000.h"
#include "src/akaiz4.h"
#include "src/lcd.h"
#include "tests/fuzz/fuzzed_usb.h"
#include <cstdlib>

using namespace velmor;

static void operate(u8 what, const _sampler_type &row, const char *path)
{
	_dev_status *dev = current_sampler->status;
	dev->status = 1;
	dev->samples = 1;
	copy_text(dev->sample[0].name, "A");
	switch (what % 8) {
	case 0:
		return row.getstatus(1, 0, dev);
	case 1:
		return row.getproglist(1, 0, dev);
	case 2:
		return row.getsamplelist(1, 0, dev);
	case 3:
		return row.getmultilist(1, 0, dev);
	case 4:
		return row.infosample(1, 0, "A");
	case 5:
		return row.uploadsample(path);
	case 6:
		return row.downloadsample(1, 0, "A");
	default:
		return probe_usb_sampler();
	}
}

// Three pictures, and keys and characters between them, as long as the line holds.
static void view_panel(const _sampler_type &model)
{
	try {
		view_lcd_display();
		if (model.ctrl)
			lcd_wnd_proc(lcd_message::command, model.ctrl[10].id, 3, 0);
		view_lcd_display();
		lcd_wnd_proc(lcd_message::character, 'A', 0, 0);
		view_lcd_display();
	} catch (const process_ended &) {
	}
	forget_panel();
}

extern "C" int LLVMFuzzerTestOneInput(const u8 *data, std::size_t size)
{
	if (!size)
		return 0;
	static test_host h;
	static const bool ready = [] {
		host.usb = &fuzzed_usb;
		current_run_mode.diagnostics = false;
		init_sampler_struct();
		h.put_content(h.config + "\\sample\\A.wav", std::vector<u8>(400, 1));
		return true;
	}();
	(void)ready;
	const i32 models[] = { model_s5000, model_z4, model_mpc4000 };
	const bool panel = data[0] >= 0xE8 && data[0] < 0xF8;
	const i32 model = models[(panel ? data[0] : data[0] / 8) % 3];
	answers = { data + 1, size - 1 };
	list_device(model);
	h.use_sampler(model, 0, "Fuzz");
	renew_limits(h);
	h.boxes.clear();
	h.progress.infos.clear();
	h.texts.clear();
	h.timers.clear();
	if (data[0] >= 0xF8)
		init_usb(1);
	else if (panel)
		view_panel(*get_sampler(model));
	else
		operate(data[0], *get_sampler(model), (h.config + "\\sample\\A").c_str());
	const _dev_status &dev = *current_sampler->status;
	const bool counts_hold = dev.programs <= max_programs && dev.samples <= max_samples &&
				 dev.multis <= max_multis &&
				 dev.program[0].keygroups <= max_keygroups;
	if (!counts_hold || usb_in_use())
		std::abort();
	return 0;
}
