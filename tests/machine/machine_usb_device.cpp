// machine_usb_device.cpp - a virtual sampler as a real USB device, through FunctionFS
//
//   machine_usb_device s5000|z8 FOLDER      FOLDER is where its functionfs is mounted
//
// Runs in the virtual machine, in real time, beside the program under test. Says "ready"
// when the kernel may bind the gadget, and ends when it is killed.

#include "virtual/s5000.h"
#include "virtual/usb_bus.h"
#include "virtual/z4.h"
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <linux/usb/functionfs.h>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <unistd.h>

namespace velmor
{

// dummy_hcd hands its endpoints out in an order of its own: the first bulk OUT gets number
// 2, the fourth bulk IN as well. The three before it stay idle.
static constexpr int in_pipes = 4, pipes = in_pipes + 1;

#pragma pack(push, 1)
struct pipe_descriptors {
	usb_functionfs_descs_head_v2 head;
	__le32 count;
	usb_interface_descriptor interface;
	usb_endpoint_descriptor_no_audio endpoints[pipes];
};
struct pipe_strings {
	usb_functionfs_strings_head head;
	__le16 language;
	char name[8];
};
#pragma pack(pop)

static pipe_descriptors describe_pipes()
{
	pipe_descriptors d = {};
	d.head = { FUNCTIONFS_DESCRIPTORS_MAGIC_V2, sizeof d, FUNCTIONFS_HAS_FS_DESC };
	d.count = 1 + pipes;
	d.interface = { sizeof d.interface, USB_DT_INTERFACE, 0, 0, pipes, 0xFF, 0, 0, 1 };
	for (int i = 0; i < pipes; i++) {
		const int direction = i < in_pipes ? USB_DIR_IN : USB_DIR_OUT;
		d.endpoints[i] = { sizeof d.endpoints[i], USB_DT_ENDPOINT,
			static_cast<__u8>(direction | (i + 1)), USB_ENDPOINT_XFER_BULK, usb_packet,
			0 };
	}
	return d;
}

static int open_pipe(const std::string &folder, int number)
{
	const int file = open((folder + "/ep" + std::to_string(number)).c_str(), O_RDWR);
	if (file < 0) {
		std::perror("endpoint");
		std::exit(1);
	}
	return file;
}

class gadget
{
public:
	gadget(usb_machine &m, const std::string &folder)
		: machine(m), control(open_pipe(folder, 0))
	{
		const pipe_descriptors d = describe_pipes();
		const pipe_strings s = { { FUNCTIONFS_STRINGS_MAGIC, sizeof s, 1, 1 }, 0x409,
			"Sampler" };
		if (write(control, &d, sizeof d) < 0 || write(control, &s, sizeof s) < 0) {
			std::perror("descriptors");
			std::exit(1);
		}
		in = open_pipe(folder, in_pipes);
		out = open_pipe(folder, pipes);
		machine.plugged_in();
	}
	void serve()
	{
		std::thread(&gadget::hear, this).detach();
		std::thread(&gadget::speak, this).detach();
		std::puts("ready");
		std::fflush(stdout);
		usb_functionfs_event event;
		while (read(control, &event, sizeof event) > 0)
			;
	}

private:
	usb_machine &machine;
	int control, in, out;
	std::mutex lock;
	std::condition_variable said;

	static bool closed_for_now()
	{
		if (errno != EINTR)
			std::this_thread::sleep_for(std::chrono::milliseconds(20));
		return true;
	}
	// A packet at a time, so that its length tells whether a message ends.
	void hear()
	{
		std::uint8_t packet[usb_packet];
		for (;;) {
			const ssize_t count = read(out, packet, sizeof packet);
			if (count < 0 && closed_for_now())
				continue;
			std::lock_guard held(lock);
			machine.take({ packet, static_cast<std::size_t>(count) },
				static_cast<std::size_t>(count) < usb_packet);
			said.notify_one();
		}
	}
	void speak()
	{
		std::unique_lock held(lock);
		for (;;) {
			said.wait(held, [this] { return !machine.outbox.empty(); });
			const usb_message m = std::move(machine.outbox.front());
			machine.outbox.pop_front();
			held.unlock();
			std::this_thread::sleep_for(std::chrono::duration<double>(m.delay));
			if (write(in, m.bytes.data(), m.bytes.size()) < 0)
				closed_for_now();
			else if (m.closed && m.bytes.size() % usb_packet == 0 &&
				 write(in, "", 0) < 0)
				closed_for_now();
			held.lock();
		}
	}
};

// Little, for the machine that runs this is slow: two samples, two programs of two keygroups.
static void add_samples(usb_sampler &machine)
{
	std::vector<std::int16_t> ramp(6000);
	for (std::size_t i = 0; i < ramp.size(); i++)
		ramp[i] = static_cast<std::int16_t>(i * 257);
	machine.block_sizes = { 4096 };
	machine.add_sample("Kick 22in", make_wave(ramp, { .note = 36 }));
	machine.add_sample("Snare Maple", make_wave(ramp, { .note = 38 }));
}

static std::unique_ptr<usb_machine> make_s5000()
{
	auto m = std::make_unique<s5000>();
	m->name = "Demo S5000";
	add_samples(*m);
	s5000_keygroup low, high;
	low.at(0x04) = { 35 };
	low.zones[0].sample = "Kick 22in";
	high.zones[0].sample = "Snare Maple";
	high.zones[0].value[0x03] = { 69 }; // 5 to the right
	m->programs = { { "Studio Kit", { low, high } }, { "Other Kit", { high, low } } };
	m->multis = { "Ballad" };
	return m;
}

static std::unique_ptr<usb_machine> make_z8()
{
	auto m = std::make_unique<z4>(z4_model::z8);
	m->name = "Demo Z8";
	add_samples(*m);
	z4_keygroup low, high;
	low.zones[0] = { "Kick 22in", { 0, 20, 0 } };
	high.zones[0] = { "Snare Maple", { 1, 72, 1 } }; // minus 200
	m->add_program("Studio Kit", { low, high });
	m->add_program("Other Kit", { high });
	return m;
}

} // namespace velmor

int main(int count, char **words)
{
	using namespace velmor;
	if (count != 3)
		return 2;
	const auto machine = std::strcmp(words[1], "s5000") == 0 ? make_s5000() : make_z8();
	gadget(*machine, words[2]).serve();
}
