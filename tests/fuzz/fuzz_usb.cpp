// fuzz_usb.cpp - answers of USB samplers: whatever comes, nothing is read or written outside
//
// The first byte chooses the model and the operation, E8 to F7 a front panel. The rest is cut into answers: a
// length byte, then so many bytes; 0 is silence, and FF takes 1024. Writes are swallowed.
// When the bytes run out every read fails.

#include "src/akais5000.h"
#include "src/akaiz4.h"
#include "src/lcd.h"
#include "tests/fuzz/limits.h"
#include <algorithm>
#include <cstdlib>

using namespace velmor;

static std::span<const u8> answers;
static std::size_t last_moved;

static int next_answer(u8 *buffer, std::size_t count)
{
	last_moved = 0;
	if (answers.empty())
		return usb_no_device;
	std::size_t size = answers[0] == 0xFF ? 1024 : answers[0];
	answers = answers.subspan(1);
	if (!size)
		return usb_timeout;
	size = std::min({ size, answers.size(), count });
	std::copy_n(answers.begin(), size, buffer);
	answers = answers.subspan(size);
	last_moved = size;
	return usb_ok;
}

// A transfer's number is its outcome.
static const usb_service fuzzed = {
	.list =
		[](std::vector<usb_device> *devices) {
			const usb_interface pipes = { 0, 255, { { 2, 2, 64 }, { 0x82, 2, 64 } } };
			devices->assign(1, { 0x09E8, 0x5F, "usb:1", "", { pipes } });
			return true;
		},
	.open =
		[](const char *, int *handle) {
			*handle = 1;
			return static_cast<int>(usb_ok);
		},
	.claim = [](int, std::uint8_t) { return static_cast<int>(usb_ok); },
	.close = [](int) {},
	.submit =
		[](int, std::uint8_t pipe, unsigned char *buffer, std::size_t count, int,
			int *transfer) {
			if (pipe & 0x80) {
				*transfer = 100 + next_answer(buffer, count);
				return static_cast<int>(usb_ok);
			}
			*transfer = static_cast<int>(1000 + count);
			return static_cast<int>(usb_ok);
		},
	.finished =
		[](int transfer, std::size_t *moved) {
			*moved = transfer >= 1000 ? static_cast<std::size_t>(transfer - 1000)
						  : last_moved;
			return transfer >= 1000 ? static_cast<int>(usb_ok) : transfer - 100;
		},
	.cancel = [](int) {},
	.reset_pipe = [](int, std::uint8_t) { return static_cast<int>(usb_ok); },
	.on_arrival = [](void (*)()) {},
	.error_text = [](int) { return "no words"; },
};

static void list_device(i32 model)
{
	forget_unread_usb();
	_usbdev entry = {};
	copy_text(entry.device_path, "usb:1");
	copy_text(entry.usb_name, "Fuzz");
	entry.device_handle = no_usb_handle;
	entry.pipe_id = 2;
	entry.packet_size = 64;
	entry.device_type = model;
	usbdev.assign(1, entry);
	usbdevs = 1;
}

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
		host.usb = &fuzzed;
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
