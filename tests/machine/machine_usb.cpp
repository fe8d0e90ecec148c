// machine_usb.cpp - the USB back end and the drivers against the kernel's own USB
//
// 20-usb.sh has plugged in a virtual S5000 and a virtual Z8, served by programs of their
// own. Runs inside the virtual machine only.

#include "platform/backends.h"
#include "src/usbqx.h"
#include "tests/support/test_host.h"
#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <mutex>

namespace velmor
{

static std::mutex wake_lock;
static std::condition_variable woken;
static bool awake = false;

static void wake_up()
{
	std::lock_guard held(wake_lock);
	awake = true;
	woken.notify_one();
}

// Real time, and a pump that rests until something has come.
class on_real_usb : public host_test
{
protected:
	on_real_usb()
	{
		static ui_service ui;
		ui = *host.ui;
		ui.wake = wake_up;
		ui.pump = [](int max_ms) {
			std::unique_lock held(wake_lock);
			woken.wait_for(
				held, std::chrono::milliseconds(max_ms), [] { return awake; });
			awake = false;
		};
		host.ui = &ui;
		host.clock = &posix_clock;
		host.usb = &libusb_usb;
		host.usb->on_arrival(wake_up);
		start_time = host.clock->time_of_day();
		init_usb(1);
	}
	~on_real_usb() override { libusb_usb.on_arrival(nullptr); }

	const _sampler_type &row()
	{
		return *get_sampler(static_cast<i32>(current_sampler->sampler_type));
	}
	_dev_status &status() { return *current_sampler->status; }

	void load(i32 model, const char *usb_name)
	{
		ASSERT_NE(find_usbdev(usb_name), nullptr) << usb_name;
		h.use_sampler(model, 0, usb_name);
		row().getstatus(1, 0, &status());
		ASSERT_EQ(status().status, 1);
		EXPECT_STREQ(status().version, "2.10");
		EXPECT_STREQ(status().sampler_name, usb_name);
		row().getsamplelist(1, 0, &status());
		ASSERT_EQ(status().samples, 2);
	}
	std::string in_spool(const std::string &name) { return h.config + "\\sample\\" + name; }

	// A sample down, and the same file up under another name.
	void move_a_sample(const char *name)
	{
		row().downloadsample(1, 0, name);
		const auto file = h.content(in_spool(name) + ".wav");
		ASSERT_TRUE(file.has_value());
		ASSERT_EQ(file->size(), 144u + 12000u);
		EXPECT_EQ(std::string(file->begin(), file->begin() + 4), "RIFF");
		EXPECT_EQ(std::string(file->begin() + 136, file->begin() + 140), "data");
		EXPECT_EQ((*file)[140] | (*file)[141] << 8 | (*file)[142] << 16,
			static_cast<int>(file->size() - 144));

		h.put_content(in_spool("Copy") + ".wav", *file);
		row().uploadsample(in_spool("Copy").c_str());
		row().getsamplelist(1, 0, &status());
		ASSERT_EQ(status().samples, 3);
		EXPECT_STREQ(status().sample[2].name, "Copy");
		row().downloadsample(1, 0, "Copy");
		EXPECT_EQ(h.content(in_spool("Copy") + ".wav"), file);
		row().renamesample(1, 0, "Copy", nullptr);
		row().getsamplelist(1, 0, &status());
		EXPECT_EQ(status().samples, 2);
	}
};

TEST_F(on_real_usb, an_s5000_is_read_and_moves_its_samples)
{
	load(model_s5000, "Demo S5000");
	row().getproglist(1, 0, &status());
	ASSERT_EQ(status().programs, 2);
	EXPECT_STREQ(status().program[1].name, "Other Kit");
	const _program &p = status().program[0];
	EXPECT_EQ(p.keygroups, 2);
	EXPECT_EQ(p.keygroup[0].low_note, 35);
	EXPECT_STREQ(p.keygroup[1].keyzone[0].samplename, "Snare Maple");
	EXPECT_EQ(p.keygroup[1].keyzone[0].zone_panning, 5);
	row().getmultilist(1, 0, &status());
	EXPECT_EQ(status().multis, 1);
	move_a_sample("Kick 22in");
}

TEST_F(on_real_usb, a_z8_is_read_and_moves_its_samples)
{
	load(model_z4, "Demo Z8");
	row().getproglist(1, 0, &status());
	ASSERT_EQ(status().programs, 2);
	EXPECT_EQ(status().program[0].keygroups, 2);
	EXPECT_EQ(status().program[0].keygroup[0].keyzone[0].zone_level, 20);
	EXPECT_STREQ(status().program[1].name, "Other Kit");
	EXPECT_EQ(status().program[1].keygroup[0].keyzone[0].zone_level, -200);
	move_a_sample("Snare Maple");
}

TEST_F(on_real_usb, an_unplugged_sampler_fails_and_comes_back)
{
	const char *plug = "/sys/kernel/config/usb_gadget/s5000/UDC";
	load(model_s5000, "Demo S5000");
	std::ofstream(plug) << "\n";
	status().status = 0;
	row().getstatus(1, 0, &status());
	EXPECT_EQ(status().status, 0);
	init_usb(1);
	EXPECT_EQ(find_usbdev("Demo S5000"), nullptr);
	EXPECT_NE(find_usbdev("Demo Z8"), nullptr);
	std::ofstream(plug) << "dummy_udc.0\n";
	for (int i = 0; i < 100 && !find_usbdev("Demo S5000"); i++) {
		host.clock->sleep_ms(90);
		init_usb(1);
	}
	load(model_s5000, "Demo S5000");
}

} // namespace velmor
