// usb_fixture.h - what the tests with a sampler on USB have in common

#pragma once
#include "src/akaiusb.h"
#include "tests/support/transcript_usb.h"
#include "virtual/usb_bus.h"

namespace velmor
{

class usb_test : public host_test
{
protected:
	~usb_test() override
	{
		unplug_all_usb();
		forget_unread_usb();
		usbdev.clear();
		usbdevs = usb_init_done = 0;
	}
	void TearDown() override
	{
		EXPECT_FALSE(usb_in_use());
		EXPECT_FALSE(h.progress.visible);
	}
	// A device as the scan of a transcript's would leave it.
	static _usbdev *listed(i32 model)
	{
		_usbdev entry = {};
		copy_text(entry.device_path, "usb:1");
		copy_text(entry.usb_name, "Studio");
		entry.device_handle = entry.usb_handle = entry.interface_handle = no_usb_handle;
		entry.pipe_id = 2;
		entry.packet_size = 64;
		entry.device_type = model;
		usbdev.assign(1, entry);
		usbdevs = 1;
		return &usbdev[0];
	}
	// The loaded sampler, whose status is known.
	_dev_status *load(i32 model)
	{
		listed(model);
		h.use_sampler(model, 1, "Studio");
		current_sampler->status->status = 1;
		return current_sampler->status;
	}
	std::string spool(const std::string &name) { return h.config + "\\sample\\" + name; }
	double took(const std::function<void()> &what)
	{
		const double before = h.time.now();
		what();
		return h.time.now() - before;
	}
	// Press Stop so many seconds from now, whoever pumps then.
	void stop_after(double seconds)
	{
		h.on_pump = [this, at = h.time.now() + seconds] {
			if (h.time.now() >= at)
				stop_progress();
		};
	}
	// Box and log of a failure, without the source line in it.
	void expect_failed(std::string_view before, std::string_view after)
	{
		ASSERT_FALSE(h.boxes.empty());
		const shown_box &box = h.boxes.back();
		EXPECT_EQ(box.caption, "FATAL");
		EXPECT_TRUE(box.text.starts_with(before)) << box.text;
		EXPECT_TRUE(box.text.ends_with(after)) << box.text;
		EXPECT_TRUE(h.logged(box.text));
	}

	// A conversation that ends badly, the words of the box, and how long it may take.
	struct failure {
		std::string steps;
		const char *after;
		double seconds = 0.1;
		const char *before = nullptr;
	};
	// Each row behind what the device says first. Nothing stays open or half.
	void each_fails(u16 product, const std::string &first, const char *before,
		std::span<const failure> rows, const std::function<void()> &operation)
	{
		for (const failure &row : rows) {
			SCOPED_TRACE(row.steps);
			transcript_usb one(h, product);
			one.play((first + "\n" + row.steps).c_str());
			EXPECT_LE(took(operation), row.seconds);
			EXPECT_EQ(one.steps_left(), 0);
			expect_failed(row.before ? row.before : before, row.after);
			EXPECT_FALSE(h.progress.visible);
			EXPECT_FALSE(usb_in_use());
			EXPECT_EQ(h.temporary_files(), 0);
		}
	}
};

} // namespace velmor
