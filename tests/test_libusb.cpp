// test_libusb.cpp - the USB back end on the real libusb, with a virtual S5000 behind usbfs
//
// Runs under umockdev. Waits here are real, and as short as the case allows.

#include "platform/backends.h"
#include "tests/umockdev/mock_usb.h"
#include "virtual/s5000.h"
#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <unistd.h>

namespace velmor
{

static std::atomic<int> wakes = 0;
static constexpr const char *the_socket = "usb:1-1.2";

class libusb_test : public ::testing::Test
{
protected:
	s5000 machine;
	std::unique_ptr<mock_usb> mock;
	int handle = 0;
	usb_bytes buffer = usb_bytes(1 << 20);

	void SetUp() override
	{
		if (!mock_usb::possible())
			GTEST_SKIP() << "run it with umockdev-wrapper";
		machine.name = "Studio";
		mock = std::make_unique<mock_usb>(machine);
		wakes = 0;
		libusb_usb.on_arrival([] {
			wakes++;
			wakes.notify_all();
		});
	}
	void TearDown() override
	{
		if (handle)
			libusb_usb.close(handle);
		libusb_usb.on_arrival(nullptr);
	}
	void open()
	{
		ASSERT_EQ(libusb_usb.open(the_socket, &handle), usb_ok);
		ASSERT_EQ(libusb_usb.claim(handle, 0), usb_ok);
	}
	int submit(std::uint8_t pipe, std::size_t count, int deadline_ms, int *transfer)
	{
		return libusb_usb.submit(handle, pipe, buffer.data(), count, deadline_ms, transfer);
	}
	int end(int transfer, std::size_t *moved)
	{
		for (;;) {
			const int seen = wakes;
			const int result = libusb_usb.finished(transfer, moved);
			if (result != usb_pending)
				return result;
			wakes.wait(seen); // each end of a transfer wakes
		}
	}
	int write(const usb_bytes &bytes)
	{
		std::copy(bytes.begin(), bytes.end(), buffer.begin());
		int transfer;
		std::size_t moved;
		const int result = submit(0x02, bytes.size(), 1000, &transfer);
		return result ? result : end(transfer, &moved);
	}
	int last_read = 0;
	usb_bytes read(std::size_t count, int deadline_ms = 1000)
	{
		int transfer;
		std::size_t moved = 0;
		last_read = submit(0x82, count, deadline_ms, &transfer);
		if (last_read == usb_ok)
			last_read = end(transfer, &moved);
		return usb_bytes(
			buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(moved));
	}
	void wake_up()
	{
		ASSERT_EQ(write({ 0x03, 0x14 }), usb_ok);
		ASSERT_EQ(write({ 0x04, 0x03 }), usb_ok);
	}
};

static const usb_bytes ask_name = { 0x10, 0x0A, 0x00, 0xF0, 0x47, 0x5E, 0x20, 0x00, 0x00, 0x02,
	0x03, 0x05, 0xF7 };
static const usb_bytes name_answer = { 0xF0, 0x47, 0x5E, 0x00, 0x00, 0x00, 0x52, 0x02, 0x03, 'S',
	't', 'u', 'd', 'i', 'o', 0x00, 0xF7 };

TEST_F(libusb_test, finds_the_device_by_its_socket_and_does_not_touch_it)
{
	std::vector<usb_device> devices;
	ASSERT_TRUE(libusb_usb.list(&devices));
	std::erase_if(devices, [](const usb_device &d) { return d.interfaces.empty(); }); // the hub
	ASSERT_EQ(devices.size(), 1u);
	EXPECT_EQ(devices[0].vendor, 0x09E8);
	EXPECT_EQ(devices[0].product, 0x005E);
	EXPECT_EQ(devices[0].path, the_socket);
	EXPECT_EQ(devices[0].address, "001/002");
	EXPECT_EQ(mock->controls, 0);
	ASSERT_EQ(devices[0].interfaces.size(), 1u);
	const usb_interface &i = devices[0].interfaces[0];
	EXPECT_EQ(i.interface_class, 0xFF);
	ASSERT_EQ(i.pipes.size(), 2u);
	EXPECT_EQ(i.pipes[0].id, 0x02);
	EXPECT_EQ(i.pipes[1].id, 0x82);
	EXPECT_EQ(i.pipes[1].type, 2);
	EXPECT_EQ(i.pipes[1].packet_size, 64);
}

TEST_F(libusb_test, asks_the_machine_and_wakes_its_caller)
{
	open();
	wake_up();
	ASSERT_EQ(write(ask_name), usb_ok);
	EXPECT_EQ(read(1024), name_answer);
	EXPECT_EQ(last_read, usb_ok);
	EXPECT_GE(wakes, 4);
}

TEST_F(libusb_test, keeps_what_a_packet_brings_beyond_the_count)
{
	open();
	wake_up();
	write(ask_name);
	EXPECT_EQ(read(4), usb_bytes(name_answer.begin(), name_answer.begin() + 4));
	EXPECT_EQ(mock->reads, std::vector<std::size_t>{ 64 }); // a whole packet was asked for
	EXPECT_EQ(read(1024), usb_bytes(name_answer.begin() + 4, name_answer.end()));
	EXPECT_EQ(mock->reads.size(), 1u);
	// until the pipe is reset
	write(ask_name);
	read(4);
	EXPECT_EQ(libusb_usb.reset_pipe(handle, 0x82), usb_ok);
	EXPECT_TRUE(read(1024, 30).empty());
	EXPECT_EQ(last_read, usb_timeout);
}

TEST_F(libusb_test, moves_a_long_block_in_one_piece)
{
	open();
	wake_up();
	{
		std::lock_guard held(mock->lock);
		machine.block_sizes = { 200000 };
		machine.add_sample(
			"LONG", make_wave(std::vector<std::int16_t>(150000, 0x1234), {}));
	}
	write({ 0x21, 0x01, 0x81 });
	EXPECT_EQ(read(4), (usb_bytes{ 0, 0, 0, 144 }));
	EXPECT_EQ(read(144).size(), 144u);
	write({ 0x00 });
	EXPECT_EQ(read(4), (usb_bytes{ 0x00, 0x03, 0x0D, 0x40 }));
	const usb_bytes block = read(200000);
	ASSERT_EQ(block.size(), 200000u);
	EXPECT_EQ(block[199998], 0x34);
	EXPECT_EQ(block[199999], 0x12);
}

TEST_F(libusb_test, ends_a_read_at_its_deadline)
{
	open();
	const auto before = std::chrono::steady_clock::now();
	EXPECT_TRUE(read(64, 50).empty());
	EXPECT_EQ(last_read, usb_timeout);
	const auto took = std::chrono::steady_clock::now() - before;
	EXPECT_GE(took, std::chrono::milliseconds(45));
	EXPECT_LT(took, std::chrono::seconds(5));
}

TEST_F(libusb_test, cancels_reads_that_run_and_reads_that_wait)
{
	open();
	wake_up();
	int first, second;
	std::size_t moved;
	ASSERT_EQ(submit(0x82, 64, 0, &first), usb_ok);
	ASSERT_EQ(submit(0x82, 64, 0, &second), usb_ok);
	EXPECT_EQ(libusb_usb.finished(first, &moved), usb_pending);
	libusb_usb.cancel(second);
	EXPECT_EQ(libusb_usb.finished(second, &moved), usb_cancelled);
	libusb_usb.cancel(first);
	EXPECT_EQ(end(first, &moved), usb_cancelled);
	write(ask_name);
	EXPECT_EQ(read(1024), name_answer);
}

TEST_F(libusb_test, hands_waiting_reads_to_the_device_in_order)
{
	open();
	wake_up();
	usb_bytes head(4), rest(64);
	int first, second;
	std::size_t moved;
	ASSERT_EQ(libusb_usb.submit(handle, 0x82, head.data(), 4, 1000, &first), usb_ok);
	ASSERT_EQ(libusb_usb.submit(handle, 0x82, rest.data(), 64, 1000, &second), usb_ok);
	write(ask_name);
	EXPECT_EQ(end(first, &moved), usb_ok);
	EXPECT_EQ(moved, 4u);
	EXPECT_EQ(end(second, &moved), usb_ok);
	rest.resize(moved);
	EXPECT_EQ(rest, usb_bytes(name_answer.begin() + 4, name_answer.end()));
}

TEST_F(libusb_test, clears_a_stall_by_a_reset_of_the_pipe)
{
	open();
	mock->stalled = true;
	EXPECT_EQ(write(ask_name), usb_stalled);
	EXPECT_EQ(libusb_usb.reset_pipe(handle, 0x02), usb_ok);
	EXPECT_EQ(mock->halts_cleared, std::vector<unsigned>{ 0x02 });
	EXPECT_EQ(write({ 0x03, 0x14 }), usb_ok);
}

TEST_F(libusb_test, takes_the_interface_from_the_kernel_but_not_from_another_program)
{
	mock->has_driver = true;
	open();
	EXPECT_EQ(mock->drivers_detached, 1);
	EXPECT_TRUE(mock->claimed.contains(0));
	libusb_usb.close(handle);
	EXPECT_FALSE(mock->claimed.contains(0));
	EXPECT_EQ(mock->drivers_attached, 1);
	mock->held = true;
	ASSERT_EQ(libusb_usb.open(the_socket, &handle), usb_ok);
	EXPECT_EQ(libusb_usb.claim(handle, 0), usb_busy);
}

TEST_F(libusb_test, loses_the_device_when_it_is_unplugged)
{
	open();
	int transfer;
	std::size_t moved;
	ASSERT_EQ(submit(0x82, 64, 0, &transfer), usb_ok);
	mock->unplug();
	EXPECT_EQ(end(transfer, &moved), usb_no_device);
	EXPECT_EQ(write(ask_name), usb_no_device);
	libusb_usb.close(handle);
	EXPECT_EQ(libusb_usb.open(the_socket, &handle), usb_no_device);
	mock->plug(7);
	open();
	EXPECT_EQ(write({ 0x03, 0x14 }), usb_ok) << "at its new address";
}

TEST_F(libusb_test, gives_everything_back_when_it_is_closed_in_the_middle)
{
	open();
	int transfers[3];
	for (int &t : transfers)
		ASSERT_EQ(submit(0x82, 100, 0, &t), usb_ok);
	libusb_usb.close(handle);
	std::size_t moved;
	for (int t : transfers)
		EXPECT_EQ(libusb_usb.finished(t, &moved), usb_cancelled);
	EXPECT_EQ(submit(0x82, 100, 0, transfers), usb_no_device);
	handle = 0;
}

TEST_F(libusb_test, says_which_rule_grants_access_when_it_is_denied)
{
	if (geteuid() != 0)
		GTEST_SKIP() << "needs root, to become somebody else";
	mock->deny();
	ASSERT_EQ(seteuid(65534), 0);
	const int result = libusb_usb.open(the_socket, &handle);
	ASSERT_EQ(seteuid(0), 0);
	handle = 0;
	EXPECT_EQ(result, usb_denied);
	EXPECT_NE(std::string(libusb_usb.error_text(result)).find("60-velmor.rules"),
		std::string::npos);
}

} // namespace velmor
